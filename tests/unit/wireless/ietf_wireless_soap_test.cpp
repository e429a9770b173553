#include "support/wireless_device.h"

#include "platform/config_value.h"
#include "platform/key_id.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::WirelessDevice;
using Names = std::vector<std::string>;

const Names advanced{"atf_enable",
                     "wl_tpscale",
                     "wlg_bf",
                     "wlg_implicit_bf",
                     "wlg_mu_mimo",
                     "wla_tpscale",
                     "wla_bf",
                     "wla_implicit_bf",
                     "wla_mu_mimo",
                     "wla_2nd_bf",
                     "wla_2nd_implicit_bf",
                     "wla_2nd_mu_mimo",
                     "endis_wla_radio",
                     "lbd_RSSISteeringPoint_UG",
                     "endis_wla_wmm",
                     "endis_wl_wmm",
                     "wl_disablecoext",
                     "wl_rts",
                     "wl_frag",
                     "wl_plcphdr",
                     "wla_plcphdr",
                     "wla_endis_ssid_broadcast",
                     "wla_rts",
                     "endis_ssid_broadcast",
                     "wla_frag"};
const Names fronthaul{"wl_ssid",      "wl_hidden_channel", "wl_sectype",         "wl_wpa2_psk",
                      "wl_wpas_psk",  "wla_ssid",          "wla_hidden_channel", "wla_sectype",
                      "wla_wpa2_psk", "wla_wpas_psk"};
const Names guest{"wlg1_ssid",
                  "wlg1_sectype",
                  "wlg1_wpa2_psk",
                  "wlg1_wpas_psk",
                  "wlg1_endis_guestSSIDbro",
                  "wla1_ssid",
                  "wla1_sectype",
                  "wla1_wpa2_psk",
                  "wla1_wpas_psk",
                  "wla1_endis_guestSSIDbro",
                  "wla1_endis_allow_see_and_access"};
const Names guest_switches{"wlg1_endis_guestNet", "wla1_endis_guestNet"};
const Names backhaul{"wlg_ap_bh_ssid",     "wlg_ap_bh_wpa2_psk",     "wlg_ap_bh_wpas_psk",
                     "wla_2nd_ap_bh_ssid", "wla_2nd_ap_bh_wpa2_psk", "wla_2nd_ap_bh_wpas_psk"};

class IetfWirelessSoapTest : public testing::Test {
protected:
    IetfWirelessSoapTest() { device_.enable(ietf_wireless); }

    /// The word stored for the agent after the SOAP callback has run for these keys; "" when it was
    /// not notified. Keys that the callback is not subscribed to count too.
    std::string word(const Names &keys)
    {
        device_.set({{"soap_setting", ""}});
        device_.clear_log();
        ChangedKeys changed;
        for (const std::string &key : keys) {
            changed.append(config_key_id(key.c_str()));
        }
        const SoapCallback callback = registry().find(config_key_id("wl_ssid"))->soap.at(0);
        EXPECT_EQ(callback(&changed, 2), 0);
        const Names log = device_.log();
        last_log_ = log.empty() ? "" : log.front();
        const std::string stored = config_value("soap_setting");
        EXPECT_EQ(last_log_, stored.empty() ? "" : "soap sync wireless " + stored);
        return stored;
    }
    void expect_each(const Names &keys, const std::string &wanted)
    {
        for (const std::string &key : keys) {
            EXPECT_EQ(word({key}), wanted) << key;
        }
    }

    WirelessDevice device_;
    std::string last_log_;
};

TEST_F(IetfWirelessSoapTest, EachKeyOfAGroupNotifiesWithItsWord)
{
    expect_each(advanced, "AdvancedWLAN");
    expect_each({"wl_country", "wla_country"}, "WLANRegion");
    expect_each(fronthaul, "FronthaulNetwork");
    expect_each(guest, "GuestNetwork");
    expect_each(guest_switches, "GuestEnable");
    expect_each({"repacd_Daisy_Chain_Enable"}, "DaisyEnable");
    expect_each(backhaul, "BackhaulPassphrase5G");
    expect_each({"ehc_wps"}, "SystemWps");
    expect_each({"wla_2nd_enhance_dfs"}, "SystemDfs");
}

TEST_F(IetfWirelessSoapTest, TheLineStandsUnderTheComponentsName)
{
    EXPECT_EQ(word({"wl_ssid"}), "FronthaulNetwork");
    EXPECT_NE(device_.log_lines().at(0).find("[ietf_wireless "), std::string::npos);
}

TEST_F(IetfWirelessSoapTest, OtherKeysNotifyNothing)
{
    expect_each({"endis_wl_radio", "wlg1_endis_allow_see_and_access", "wl_hw_btn_state",
                 "wl_vht_11ng", "wl_htmode", "wl_hwmode", "wla_htmode", "wla_hwmode",
                 "wla_2nd_hidden_channel", "wlg_ap_bh_sectype", "bridge_mode"},
                "");
    EXPECT_EQ(word({}), "");
}

TEST_F(IetfWirelessSoapTest, TheFirstGroupThatAppliesIsTheOnlyOne)
{
    Names keys{"wla_2nd_enhance_dfs",
               "ehc_wps",
               "wlg_ap_bh_ssid",
               "repacd_Daisy_Chain_Enable",
               "wla1_endis_guestNet",
               "wla1_ssid",
               "wla_wpas_psk",
               "wla_country",
               "wla_frag"};
    for (const char *wanted :
         {"AdvancedWLAN", "WLANRegion", "FronthaulNetwork", "GuestNetwork", "GuestEnable",
          "DaisyEnable", "BackhaulPassphrase5G", "SystemWps", "SystemDfs"}) {
        EXPECT_EQ(word(keys), wanted);
        keys.pop_back();
    }
}

TEST_F(IetfWirelessSoapTest, AGuestSwitchWithAGuestKeyIsTheGuestNetwork)
{
    for (const std::string &key : guest_switches) {
        EXPECT_EQ(word({key, "wlg1_wpas_psk"}), "GuestNetwork");
        EXPECT_EQ(word({key, "wlg1_endis_allow_see_and_access"}), "GuestEnable");
    }
}

TEST_F(IetfWirelessSoapTest, DuringAHijackNothingIsNotified)
{
    device_.set({{"dns_hijack", "1"}, {"soap_setting", ""}});
    for (const Names &keys : {advanced, fronthaul, guest, guest_switches, backhaul}) {
        device_.clear_log();
        device_.apply(keys, 1);
        const Names log = device_.log();
        EXPECT_NE(std::find(log.begin(), log.end(),
                            "soap sync:hijack in process, don't need do wireless soap sync"),
                  log.end());
        EXPECT_EQ(config_value("soap_setting"), "");
    }
    EXPECT_EQ(device_.killall_calls(), Names{});
}

TEST_F(IetfWirelessSoapTest, AJobNotifiesTheAgentOnce)
{
    device_.apply({"wl_ssid", "wla_ssid", "wl_sectype"}, 1);
    EXPECT_EQ(config_value("soap_setting"), "FronthaulNetwork");
    EXPECT_EQ(device_.killall_calls().size(), 1U);
}

TEST_F(IetfWirelessSoapTest, ARegionOfTheHighBandAloneReachesNobody)
{
    device_.apply({"wla_country"}, 1);
    EXPECT_EQ(config_value("soap_setting"), "");
}

} // namespace
} // namespace qorcfg
