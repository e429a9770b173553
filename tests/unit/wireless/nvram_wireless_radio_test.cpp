#include "support/nvram_wireless_device.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

class NvramWirelessRadioTest : public testing::Test {
protected:
    /// What `option` of `section` becomes when `key` has `value`.
    std::string with(const char *key, const std::string &value, const std::string &section,
                     const std::string &option)
    {
        device_.set({{key, value}});
        device_.translate();
        return device_.option(section, option);
    }

    test::NvramWirelessDevice device_;
};

TEST_F(NvramWirelessRadioTest, TheDocumentHasItsTypesInOrder)
{
    device_.translate();
    EXPECT_EQ(device_.types(), (Lines{"qcawifi", "wifi-device", "wifi-iface"}));
    EXPECT_EQ(device_.sections("qcawifi"), Lines{"qcawifi"});
    EXPECT_EQ(device_.sections("wifi-device"), (Lines{"radio2g", "radio5gl", "radio5gh"}));
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Lines{"FhAp2", "Guest2", "FhAp5", "Guest5", "BhAp2", "BhAp5"}));
}

TEST_F(NvramWirelessRadioTest, AGuestIsThereUnlessItsSwitchIsZero)
{
    device_.set({{"wlg1_endis_guestNet", "0"}, {"wla1_endis_guestNet", "1"}});
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Lines{"FhAp2", "FhAp5", "Guest5", "BhAp2", "BhAp5"}));
    device_.set({{"wlg1_endis_guestNet", "2"}, {"wla1_endis_guestNet", "0"}});
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Lines{"FhAp2", "Guest2", "FhAp5", "BhAp2", "BhAp5"}));
}

TEST_F(NvramWirelessRadioTest, OnlyASatelliteHasBackhaulStations)
{
    device_.set({{"wlg1_endis_guestNet", "0"}, {"wla1_endis_guestNet", "0"}});
    for (const char *type : {"Base", "Router", ""}) {
        device_.be(type);
        device_.translate();
        EXPECT_EQ(device_.sections("wifi-iface"), (Lines{"FhAp2", "FhAp5", "BhAp2", "BhAp5"}))
            << type;
    }
    device_.be("Satellite");
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Lines{"FhAp2", "FhAp5", "BhAp2", "BhAp5", "BhSta2", "BhSta5"}));
}

TEST_F(NvramWirelessRadioTest, ASatelliteWithoutDaisyChainHasNoBackhaulAccessPoints)
{
    device_.set({{"wlg1_endis_guestNet", "0"},
                 {"wla1_endis_guestNet", "0"},
                 {"repacd_Daisy_Chain_Enable", "0"}});
    device_.be("Satellite");
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-iface"), (Lines{"FhAp2", "FhAp5", "BhSta2", "BhSta5"}));
    device_.be("Base");
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-iface"), (Lines{"FhAp2", "FhAp5", "BhAp2", "BhAp5"}));
}

TEST_F(NvramWirelessRadioTest, TheRoleFileOfOtherComponentsDoesNotDecide)
{
    device_.be_base(false);
    device_.set({{"repacd_Daisy_Chain_Enable", "0"}});
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-iface").back(), "BhAp5");
}

TEST_F(NvramWirelessRadioTest, AWirelessBridgeHasOneRadioAndItsStation)
{
    device_.set({{"bridge_mode", "1"}, {"bridge_band_choose", "2.4g"}});
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-device"), Lines{"radio2g"});
    EXPECT_EQ(device_.sections("wifi-iface"), Lines{"2gfh_sta"});
    device_.set({{"bridge_band_choose", "5g"}});
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-device"), Lines{"radio5gl"});
    EXPECT_EQ(device_.sections("wifi-iface"), Lines{"5gfh_sta"});
    device_.set({{"bridge_band_choose", "auto"}});
    device_.translate();
    EXPECT_EQ(device_.types(), (Lines{"qcawifi", "wifi-device", "wifi-iface"}));
    EXPECT_EQ(device_.sections("wifi-device"), Lines{});
    EXPECT_EQ(device_.sections("wifi-iface"), Lines{});
}

TEST_F(NvramWirelessRadioTest, ABridgeStationHasTheOptionsOfNoRole)
{
    device_.set({{"bridge_mode", "1"}, {"bridge_band_choose", "5g"}});
    device_.translate();
    EXPECT_EQ(device_.options("5gfh_sta"),
              (Lines{"bridge=br-lan", "network=lan", "wps_state=2",
                     "wps_config=virtual_push_button physical_push_button", "wps_pbc=1", "hidden=0",
                     "doth=1", "bintval=100", "dtim_period=4", "vhtsubfee=0", "vhtsubfer=0",
                     "vhtmubfee=0", "vhtmubfer=0"}));
}

TEST_F(NvramWirelessRadioTest, TheGlobalSectionIsThatOfTheDescription)
{
    device_.set({{"atf_enable", "1234567890123456"}});
    device_.translate();
    EXPECT_EQ(device_.options("qcawifi"),
              (Lines{"atf_enable=123456789012345", "thermal_analytics=0"}));
    device_.describe("1");
    EXPECT_EQ(with("atf_enable", "", "qcawifi", "atf_enable"), "(none)");
    EXPECT_EQ(
        device_.options("qcawifi"),
        (Lines{"thermal_analytics=0", "wps_pbc_extender_enhance=1",
               "wps_pbc_overwrite_ap_settings_all=1", "wps_pbc_overwrite_sta_settings_all=1"}));
}

TEST_F(NvramWirelessRadioTest, RadiosHaveTheirOptionsInOrder)
{
    device_.set({{"wl_country", "10"}, {"bridge_mode", "0"}, {"wl_hw_btn_state", "on"}});
    device_.set({{"radio2g_mac", "00:00:5E:00:53:01"}, {"wl_hidden_channel", "6"}});
    device_.set({{"wl_tpscale", "75"}, {"wlg_bf", "1"}, {"wlg_implicit_bf", "0"}});
    device_.set({{"wlg_mu_mimo", "1"}, {"radio5gh_mac", "00:00:5E:00:53:03"}});
    device_.translate();
    EXPECT_EQ(device_.options("radio2g"),
              (Lines{"type=qcawificfg80211", "band_type=2.4G", "country=USA", "ODM=qor",
                     "sys_bridge=br-lan", "repacd_auto_create_vaps=0", "nf_baseline=-102",
                     "obss_rssi_th=25", "obss_rx_rssi_th=20", "hw_btn_state=on",
                     "macaddr=00:00:5E:00:53:01", "hwmode=11ng", "htmode=HT40", "channel=6",
                     "tpc_mode=75", "bf=1", "implicitbf=0", "mu_mimo=1"}));
    EXPECT_EQ(device_.options("radio5gh"),
              (Lines{"type=qcawificfg80211", "band_type=5G", "country=USA", "ODM=qor",
                     "sys_bridge=br-lan", "repacd_auto_create_vaps=0", "nf_baseline=-104",
                     "macaddr=00:00:5E:00:53:03", "hwmode=11ac", "htmode=HT80"}));
}

TEST_F(NvramWirelessRadioTest, GuestVlanHasItsRadioOptions)
{
    device_.describe("1");
    device_.translate();
    EXPECT_EQ(device_.options("radio5gl"),
              (Lines{"type=qcawificfg80211", "band_type=5G", "ODM=qor", "repacd_auto_create_vaps=0",
                     "nf_baseline=-104", "hwmode=11ac", "htmode=HT80", "no_vlan=1"}));
    EXPECT_EQ(device_.options("radio5gh"),
              (Lines{"type=qcawificfg80211", "band_type=5G", "ODM=qor", "repacd_auto_create_vaps=0",
                     "nf_baseline=-104", "hwmode=11ac", "htmode=HT80", "wsplcd_unmanaged=1",
                     "ul_hyst=3", "no_vlan=1"}));
}

TEST_F(NvramWirelessRadioTest, AddressesComeFromTheStoreAndKeep32Characters)
{
    constexpr std::pair<const char *, const char *> keys[] = {
        {"radio2g", "radio2g_mac"}, {"radio5gl", "radio5gl_mac"}, {"radio5gh", "radio5gh_mac"}};
    for (const auto &[section, key] : keys) {
        EXPECT_EQ(with(key, std::string(40, 'a'), section, "macaddr"), std::string(32, 'a'));
        EXPECT_EQ(with(key, "", section, "macaddr"), "(none)");
    }
}

TEST_F(NvramWirelessRadioTest, ChannelZeroIsAuto)
{
    constexpr std::pair<const char *, const char *> keys[] = {
        {"radio2g", "wl_hidden_channel"},
        {"radio5gl", "wla_hidden_channel"},
        {"radio5gh", "wla_2nd_hidden_channel"}};
    for (const auto &[section, key] : keys) {
        EXPECT_EQ(with(key, "0", section, "channel"), "auto") << key;
        EXPECT_EQ(with(key, "44", section, "channel"), "44") << key;
        EXPECT_EQ(with(key, "", section, "channel"), "(none)") << key;
    }
}

TEST_F(NvramWirelessRadioTest, PowerStepsPassThroughAndOthersGiveNothing)
{
    for (const char *step : {"100", "75", "50", "25"}) {
        EXPECT_EQ(with("wl_tpscale", step, "radio2g", "tpc_mode"), step);
        EXPECT_EQ(with("wla_tpscale", step, "radio5gl", "tpc_mode"), step);
        EXPECT_EQ(device_.option("radio5gh", "tpc_mode"), step);
    }
    for (const char *other : {"60", "0", ""}) {
        EXPECT_EQ(with("wl_tpscale", other, "radio2g", "tpc_mode"), "(none)") << other;
        EXPECT_EQ(with("wla_tpscale", other, "radio5gh", "tpc_mode"), "(none)") << other;
    }
    EXPECT_EQ(device_.option("radio2g", "tpscale"), "(none)");
}

TEST_F(NvramWirelessRadioTest, ModesComeFromTheStore)
{
    device_.set({{"wl_hwmode", "11g"}, {"wla_hwmode", "11a"}, {"wla_2nd_hwmode", "11axa"}});
    device_.set({{"wl_htmode", "HT20"}, {"wla_htmode", "HT160"}, {"wla_2nd_htmode", "HT40"}});
    device_.translate();
    EXPECT_EQ(device_.option("radio2g", "hwmode"), "11g");
    EXPECT_EQ(device_.option("radio5gl", "hwmode"), "11a");
    EXPECT_EQ(device_.option("radio5gh", "hwmode"), "11axa");
    EXPECT_EQ(device_.option("radio2g", "htmode"), "HT20");
    EXPECT_EQ(device_.option("radio5gl", "htmode"), "HT160");
    EXPECT_EQ(device_.option("radio5gh", "htmode"), "HT40");
}

TEST_F(NvramWirelessRadioTest, BeamformingKeysAreThoseOfEachRadio)
{
    constexpr std::pair<const char *, const char *> prefixes[] = {
        {"radio2g", "wlg_"}, {"radio5gl", "wla_"}, {"radio5gh", "wla_2nd_"}};
    for (const auto &[section, prefix] : prefixes) {
        for (const auto &[option, key] :
             {std::pair("bf", "bf"), std::pair("implicitbf", "implicit_bf"),
              std::pair("mu_mimo", "mu_mimo")}) {
            const std::string name = std::string(prefix) + key;
            EXPECT_EQ(with(name.c_str(), "of " + name, section, option), "of " + name);
        }
    }
}

TEST_F(NvramWirelessRadioTest, RegionsAreCountriesOfThreeLetters)
{
    constexpr std::pair<const char *, const char *> regions[] = {
        {"0", "ZAF"},  {"1", "THA"},  {"2", "AUS"},  {"3", "CAN"},  {"4", "GER"},  {"5", "ISR"},
        {"6", "JPN"},  {"7", "KOR"},  {"8", "MEX"},  {"9", "BRA"},  {"10", "USA"}, {"11", "CHN"},
        {"12", "IND"}, {"13", "MYS"}, {"14", "DZA"}, {"16", "TUR"}, {"17", "SAU"}, {"18", "ARE"},
        {"19", "RUS"}, {"20", "SGP"}, {"21", "TWN"}, {"22", "HKG"}, {"23", "VNM"}, {"24", "NZL"}};
    device_.set({{"wla_country", "1"}});
    for (const auto &[region, country] : regions) {
        EXPECT_EQ(with("wl_country", region, "radio2g", "country"), country) << region;
        EXPECT_EQ(device_.option("radio5gh", "country"), country) << region;
    }
    for (const char *region : {"15", "25", "", "010"}) {
        EXPECT_EQ(with("wl_country", region, "radio2g", "country"), "(none)") << region;
    }
}

TEST_F(NvramWirelessRadioTest, TheButtonStateIsThatOfBothBandsAndOnForABridge)
{
    device_.set({{"wl_hw_btn_state", "off"}});
    device_.translate();
    EXPECT_EQ(device_.option("radio2g", "hw_btn_state"), "off");
    EXPECT_EQ(device_.option("radio5gl", "hw_btn_state"), "off");
    EXPECT_EQ(device_.option("radio5gh", "hw_btn_state"), "(none)");
    device_.set({{"bridge_mode", "1"}, {"bridge_band_choose", "5g"}});
    device_.translate();
    EXPECT_EQ(device_.option("radio5gl", "hw_btn_state"), "on");
}

TEST_F(NvramWirelessRadioTest, InterferenceThresholdsNeedBridgeModeExactlyZero)
{
    EXPECT_EQ(with("bridge_mode", "0", "radio2g", "obss_rssi_th"), "25");
    EXPECT_EQ(device_.option("radio2g", "obss_rx_rssi_th"), "20");
    EXPECT_EQ(device_.option("radio5gl", "obss_rssi_th"), "(none)");
    EXPECT_EQ(with("bridge_mode", "", "radio2g", "obss_rssi_th"), "(none)");
}

TEST_F(NvramWirelessRadioTest, TheDriverTypeIsOnTheBoard)
{
    device_.set_driver("0");
    device_.translate();
    EXPECT_EQ(device_.option("radio2g", "type"), "qcawifi");
}

TEST_F(NvramWirelessRadioTest, FixedValuesOfARadioGiveWayToItsOwnKeys)
{
    device_.set({{"bridge_mode", "0"}});
    for (const char *option : {"band_type", "ODM", "sys_bridge", "repacd_auto_create_vaps",
                               "nf_baseline", "obss_rssi_th", "obss_rx_rssi_th"}) {
        const std::string key = std::string("radio2g_") + option;
        EXPECT_EQ(with(key.c_str(), "own", "radio2g", option), "own") << option;
    }
    EXPECT_EQ(with("radio5gh_nf_baseline", "-90", "radio5gh", "nf_baseline"), "-90");
    EXPECT_EQ(device_.option("radio5gl", "nf_baseline"), "-104");
}

TEST_F(NvramWirelessRadioTest, ADeviceWithoutDescriptionHasNoRadios)
{
    std::filesystem::remove(device_.path("/etc/ath/athinfo.json"));
    device_.translate();
    EXPECT_EQ(device_.sections("wifi-device"), Lines{});
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Lines{"FhAp2", "Guest2", "FhAp5", "Guest5", "BhAp2", "BhAp5"}));
    EXPECT_EQ(device_.option("FhAp2", "device"), "(none)");
}

} // namespace
} // namespace qorcfg
