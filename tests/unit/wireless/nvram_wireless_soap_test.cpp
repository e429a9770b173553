#include "core/base/hooks.h"
#include "platform/config_value.h"
#include "platform/key_id.h"
#include "support/nvram_wireless_device.h"
#include "wireless/nvram_wireless.h"

#include <ctime>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

class NvramWirelessSoapTest : public testing::Test {
protected:
    NvramWirelessSoapTest()
    {
        device_.enable(nvram_wireless);
        device_.clear_log();
    }
    /// What the SOAP callback logs when these keys have changed. It is asked itself, since most of
    /// the keys that it tests do not trigger it.
    Lines told(const std::vector<std::string> &keys)
    {
        ChangedKeys changed;
        for (const std::string &key : keys) {
            changed.append(config_key_id(key.c_str()));
        }
        device_.clear_log();
        device_.set({{"config_timestamp", "old"}, {"soap_setting", ""}});
        const SoapCallback callback = registry().find(config_key_id("wl_tpscale"))->soap.front();
        EXPECT_EQ(callback(&changed, 2), 0);
        return device_.log();
    }
    bool has_new_timestamp() const
    {
        const std::string stamp = config_value("config_timestamp");
        return stamp != "old" && std::abs(std::stoll(stamp) - std::time(nullptr)) < 60;
    }

    test::NvramWirelessDevice device_;
};

struct Group {
    std::vector<const char *> keys;
    const char *word;
    bool has_timestamp;
};

const Group groups[] = {
    {{"atf_enable",
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
      "wla_frag",
      "wl_country",
      "wla_country"},
     "AdvancedWLAN",
     true},
    {{"wl_ssid", "wl_hidden_channel", "wl_sectype", "wl_wpa2_psk", "wl_wpa3_psk", "wl_wpas_psk",
      "wla_ssid", "wla_hidden_channel", "wla_sectype", "wla_wpa2_psk", "wla_wpa3_psk",
      "wla_wpas_psk"},
     "FronthaulNetwork",
     false},
    {{"wlg1_ssid", "wlg1_sectype", "wlg1_wpa2_psk", "wlg1_wpas_psk", "wlg1_endis_guestSSIDbro",
      "wla1_ssid", "wla1_sectype", "wla1_wpa2_psk", "wla1_wpas_psk", "wla1_endis_guestSSIDbro",
      "wla1_endis_allow_see_and_access"},
     "GuestNetwork",
     false},
    {{"wlg1_endis_guestNet", "wla1_endis_guestNet"}, "GuestEnable", false},
    {{"repacd_Daisy_Chain_Enable"}, "DaisyEnable", false},
    {{"wlg_ap_bh_ssid", "wlg_ap_bh_wpa2_psk", "wlg_ap_bh_wpa3_psk", "wlg_ap_bh_wpas_psk",
      "wla_2nd_ap_bh_ssid", "wla_2nd_ap_bh_wpa2_psk", "wla_2nd_ap_bh_wpa3_psk",
      "wla_2nd_ap_bh_wpas_psk"},
     "BackhaulPassphrase5G",
     true},
    {{"ehc_wps"}, "SystemWps", false},
    {{"wla_2nd_enhance_dfs"}, "SystemDfs", false},
};

TEST_F(NvramWirelessSoapTest, EachKeyTellsItsGroup)
{
    for (const Group &group : groups) {
        for (const char *key : group.keys) {
            EXPECT_EQ(told({key}), Lines{std::string("soap sync wireless ") + group.word}) << key;
            EXPECT_EQ(config_value("soap_setting"), group.word) << key;
            EXPECT_EQ(group.has_timestamp ? has_new_timestamp()
                                          : config_value("config_timestamp") == "old",
                      true)
                << key;
        }
    }
}

TEST_F(NvramWirelessSoapTest, KeysOfNoGroupTellNothing)
{
    for (const char *key :
         {"endis_wl_radio", "wlg1_endis_allow_see_and_access", "wlg1_wpa3_psk", "wla1_wpa3_psk",
          "wla_2nd_tpscale", "wl_hw_btn_state", "wlg_sta_ssid", "wl_80211w"}) {
        EXPECT_EQ(told({key}), Lines{}) << key;
        EXPECT_EQ(config_value("soap_setting"), "") << key;
    }
    EXPECT_EQ(told({}), Lines{});
    EXPECT_EQ(device_.killall_calls(), Lines{});
}

TEST_F(NvramWirelessSoapTest, OnlyTheFirstGroupIsTold)
{
    std::vector<std::string> changed;
    for (auto group = std::rbegin(groups); group != std::rend(groups); ++group) {
        changed.emplace_back(group->keys.back());
        EXPECT_EQ(told(changed), Lines{std::string("soap sync wireless ") + group->word});
    }
    EXPECT_EQ(device_.killall_calls().size(), std::size(groups));
}

TEST_F(NvramWirelessSoapTest, AGuestSwitchWithOtherGuestSettingsTellsTheNetwork)
{
    EXPECT_EQ(told({"wlg1_endis_guestNet", "wla1_ssid"}), Lines{"soap sync wireless GuestNetwork"});
}

TEST_F(NvramWirelessSoapTest, AHijackedDnsKeepsNothingBack)
{
    device_.set({{"dns_hijack", "1"}});
    EXPECT_EQ(told({"wl_tpscale"}), Lines{"soap sync wireless AdvancedWLAN"});
}

TEST_F(NvramWirelessSoapTest, AJobThatChangesTheRegionOf5GhzStoresATimestampForGood)
{
    device_.set({{"config_timestamp", "old"}});
    device_.apply({"wla_country"}, 1);
    EXPECT_EQ(device_.log().back(), "soap sync wireless AdvancedWLAN");
    EXPECT_EQ(config_value("soap_setting"), "AdvancedWLAN");
    EXPECT_TRUE(has_new_timestamp());
    EXPECT_TRUE(device_.exists("/etc/qorcfg/config.mdb"));
    EXPECT_EQ(device_.killall_calls(), Lines{"-SIGUSR1 soap_agent"});
}

TEST_F(NvramWirelessSoapTest, TheTimestampIsThereWhenTheAgentIsTold)
{
    static std::string stamp_when_told;
    stamp_when_told.clear();
    set_soap_pause([] { stamp_when_told = config_value("config_timestamp"); });
    for (const char *key : {"wl_tpscale", "wla_country", "wlg_ap_bh_wpa3_psk"}) {
        told({key});
        EXPECT_NE(stamp_when_told, "old") << key;
        EXPECT_EQ(stamp_when_told, config_value("config_timestamp")) << key;
    }
    told({"wl_ssid"});
    EXPECT_EQ(stamp_when_told, "old");
}

TEST_F(NvramWirelessSoapTest, KeysThatAreNotSubscribedTellNothingInAJob)
{
    device_.apply({"wl_ssid", "wlg1_ssid", "ehc_wps"}, 1);
    EXPECT_EQ(device_.killall_calls(), Lines{});
}

} // namespace
} // namespace qorcfg
