#include "support/wireless_device.h"

#include "platform/key_id.h"
#include "wireless/wireless_keys.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::WirelessDevice;
using Names = std::vector<std::string>;

TEST(IetfWirelessKeysTest, KeysAreSubscribedInOrderRepeatsIncluded)
{
    const WirelessDevice device;
    EXPECT_EQ(device.subscribed_keys(ietf_wireless), (Names{"repacd_Daisy_Chain_Enable",
                                                            "atf_enable",
                                                            "wl_country",
                                                            "wl_hidden_channel",
                                                            "wl_tpscale",
                                                            "wlg_bf",
                                                            "wlg_implicit_bf",
                                                            "wlg_mu_mimo",
                                                            "wl_hw_btn_state",
                                                            "wl_vht_11ng",
                                                            "wl_htmode",
                                                            "wl_hwmode",
                                                            "wl_country",
                                                            "wla_hidden_channel",
                                                            "wla_tpscale",
                                                            "wla_bf",
                                                            "wla_implicit_bf",
                                                            "wla_mu_mimo",
                                                            "wl_hw_btn_state",
                                                            "wla_htmode",
                                                            "wla_hwmode",
                                                            "wl_country",
                                                            "wla_2nd_hidden_channel",
                                                            "wla_tpscale",
                                                            "wla_2nd_bf",
                                                            "wla_2nd_implicit_bf",
                                                            "wla_2nd_mu_mimo",
                                                            "bridge_mode",
                                                            "bridge_band_choose",
                                                            "endis_wl_wps",
                                                            "wps_status",
                                                            "wl_ssid",
                                                            "wl_sectype",
                                                            "wl_wpa2_psk",
                                                            "wl_wpas_psk",
                                                            "endis_ssid_broadcast",
                                                            "wl_disablecoext",
                                                            "wl_rts",
                                                            "wl_frag",
                                                            "endis_wl_wmm",
                                                            "wl_plcphdr",
                                                            "endis_wl_radio",
                                                            "wl_hw_btn_state",
                                                            "endis_wla_wps",
                                                            "wla_wps_status",
                                                            "wla_ssid",
                                                            "wla_sectype",
                                                            "wla_wpa2_psk",
                                                            "wla_wpas_psk",
                                                            "wla_endis_ssid_broadcast",
                                                            "wla_rts",
                                                            "wla_frag",
                                                            "endis_wla_wmm",
                                                            "wla_plcphdr",
                                                            "endis_wla_radio",
                                                            "wl_hw_btn_state",
                                                            "wlg1_ssid",
                                                            "wlg1_sectype",
                                                            "wlg1_wpa2_psk",
                                                            "wlg1_wpas_psk",
                                                            "wlg1_endis_guestSSIDbro",
                                                            "wl_frag",
                                                            "endis_wl_wmm",
                                                            "wl_plcphdr",
                                                            "wlg1_endis_allow_see_and_access",
                                                            "endis_wl_radio",
                                                            "wl_hw_btn_state",
                                                            "wlg1_endis_guestNet",
                                                            "wla1_ssid",
                                                            "wla1_sectype",
                                                            "wla1_wpa2_psk",
                                                            "wla1_wpas_psk",
                                                            "wla1_endis_guestSSIDbro",
                                                            "wla_frag",
                                                            "endis_wla_wmm",
                                                            "wla_plcphdr",
                                                            "wla1_endis_allow_see_and_access",
                                                            "endis_wla_radio",
                                                            "wl_hw_btn_state",
                                                            "wla1_endis_guestNet",
                                                            "wlg_ap_bh_ssid",
                                                            "wlg_ap_bh_sectype",
                                                            "wlg_ap_bh_wpa2_psk",
                                                            "wlg_ap_bh_wpas_psk",
                                                            "wla_2nd_ap_bh_ssid",
                                                            "wla_2nd_ap_bh_sectype",
                                                            "wla_2nd_ap_bh_wpa2_psk",
                                                            "wla_2nd_ap_bh_wpas_psk",
                                                            "wlg_sta_ssid",
                                                            "wlg_sta_sectype",
                                                            "wlg_sta_wpa2_psk",
                                                            "wlg_sta_wpas_psk",
                                                            "wla_2nd_sta_ssid",
                                                            "wla_2nd_sta_sectype",
                                                            "wla_2nd_sta_wpa2_psk",
                                                            "lbd_RSSISteeringPoint_UG"}));
}

TEST(IetfWirelessKeysTest, SoapKeysAreSubscribedInOrder)
{
    const WirelessDevice device;
    const Names keys{"atf_enable",
                     "wl_hidden_channel",
                     "wl_tpscale",
                     "wlg_bf",
                     "wlg_implicit_bf",
                     "wlg_mu_mimo",
                     "wl_hw_btn_state",
                     "wl_country",
                     "wl_vht_11ng",
                     "wl_htmode",
                     "wl_hwmode",
                     "wla_htmode",
                     "wla_hwmode",
                     "wla_hidden_channel",
                     "wla_tpscale",
                     "wla_bf",
                     "wla_implicit_bf",
                     "wla_mu_mimo",
                     "wla_2nd_hidden_channel",
                     "wla_tpscale",
                     "wla_2nd_bf",
                     "wla_2nd_implicit_bf",
                     "wla_2nd_mu_mimo",
                     "wl_ssid",
                     "wl_sectype",
                     "wl_wpa2_psk",
                     "wl_wpas_psk",
                     "endis_ssid_broadcast",
                     "wl_disablecoext",
                     "wl_rts",
                     "wl_frag",
                     "endis_wl_wmm",
                     "wl_plcphdr",
                     "endis_wl_radio",
                     "wla_ssid",
                     "wla_sectype",
                     "wla_wpa2_psk",
                     "wla_wpas_psk",
                     "wla_endis_ssid_broadcast",
                     "wla_rts",
                     "wla_frag",
                     "endis_wla_wmm",
                     "wla_plcphdr",
                     "endis_wla_radio",
                     "lbd_RSSISteeringPoint_UG",
                     "wl_ssid",
                     "wl_hidden_channel",
                     "wl_sectype",
                     "wl_wpa2_psk",
                     "wl_wpas_psk",
                     "wla_ssid",
                     "wla_hidden_channel",
                     "wla_sectype",
                     "wla_wpa2_psk",
                     "wla_wpas_psk",
                     "wlg1_ssid",
                     "wlg1_sectype",
                     "wlg1_wpa2_psk",
                     "wlg1_wpas_psk",
                     "wlg1_endis_guestSSIDbro",
                     "wlg1_endis_allow_see_and_access",
                     "wla1_ssid",
                     "wla1_sectype",
                     "wla1_wpa2_psk",
                     "wla1_wpas_psk",
                     "wla1_endis_guestSSIDbro",
                     "wla1_endis_allow_see_and_access",
                     "wlg1_endis_guestNet",
                     "wla1_endis_guestNet",
                     "repacd_Daisy_Chain_Enable",
                     "wlg_ap_bh_ssid",
                     "wlg_ap_bh_wpa2_psk",
                     "wlg_ap_bh_wpas_psk",
                     "wla_2nd_ap_bh_ssid",
                     "wla_2nd_ap_bh_wpa2_psk",
                     "wla_2nd_ap_bh_wpas_psk",
                     "ehc_wps",
                     "wla_2nd_enhance_dfs"};
    EXPECT_EQ(Names(wireless_soap_keys.begin(), wireless_soap_keys.end()), keys);
    std::vector<std::int32_t> wanted;
    for (const std::string &key : keys) {
        const std::int32_t id = config_key_id(key.c_str());
        if (std::find(wanted.begin(), wanted.end(), id) == wanted.end()) {
            wanted.push_back(id);
        }
    }
    registry().clear();
    ietf_wireless.soap_init();
    std::vector<std::int32_t> subscribed;
    for (const KeyRecord &record : registry().records()) {
        subscribed.push_back(record.key_id);
        EXPECT_EQ(record.soap.size(), 1U);
    }
    EXPECT_EQ(subscribed, wanted);
}

TEST(IetfWirelessKeysTest, EachKeyTriggersItsCallback)
{
    const WirelessDevice device;
    device.enable(ietf_wireless);
    const auto callbacks = [](const char *key) {
        const KeyRecord *record = registry().find(config_key_id(key));
        return record == nullptr ? "none"
                                 : std::to_string(record->normal.size()) + " " +
                                       std::to_string(record->soap.size());
    };
    const auto callback_of = [](const char *key) {
        return registry().find(config_key_id(key))->normal.at(0);
    };
    EXPECT_EQ(callbacks("wl_country"), "1 1");
    EXPECT_EQ(callbacks("bridge_mode"), "1 0");
    EXPECT_EQ(callbacks("ehc_wps"), "0 1");
    EXPECT_EQ(callbacks("repacd_Daisy_Chain_Enable"), "1 1");
    EXPECT_NE(callback_of("repacd_Daisy_Chain_Enable"), callback_of("wl_ssid"));
    EXPECT_NE(callback_of("lbd_RSSISteeringPoint_UG"), callback_of("wl_ssid"));
    for (const char *key : {"wla_2nd_htmode", "wla_2nd_hwmode", "wla_2nd_sta_wpas_psk", "vie_flag",
                            "Device_name", "wla_country"}) {
        EXPECT_EQ(callbacks(key), "none") << key;
    }
}

} // namespace
} // namespace qorcfg
