#include "wireless/hardware.h"

#include "support/wireless_device.h"
#include "wireless/country_tables.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::Vap;
using test::WirelessDevice;

std::string rows(const Hardware &hardware)
{
    std::string text;
    for (const RadioRow &row : hardware.radio_map_table) {
        text += row.name + "/" + row.device + "/" + row.prefix + " ";
    }
    for (const InterfaceRow &row : hardware.iface_map_table) {
        text += row.name + ":" + row.radio + ":" + row.config_prefix + ":" + row.ifname + " ";
    }
    return text;
}

Hardware load()
{
    Hardware hardware;
    EXPECT_EQ(load_athinfo(hardware), 0);
    return hardware;
}

TEST(WirelessHardwareTest, RadiosAndInterfacesStandInTheirOrder)
{
    const WirelessDevice device;
    device.write(
        WirelessDevice::description,
        R"({"a2_device": "wifi2", "g_device": "wifi0", "a_device": "wifi1",)"
        R"( "guest_vlan": "1", "atf_enable": "1", "thermal_analytics": "0", "athinfo": [)"
        R"({"radio": "5G", "vap_type": "primary", "ifname": "ath1", "config_prefix": "a"},)"
        R"({"radio": "2.4G", "vap_type": "backhaul-sta_raw", "ifname": "ath3"}]})");
    const Hardware hardware = load();
    EXPECT_EQ(rows(hardware), "2g/wifi0/wl 5g1/wifi1/wla 5g2/wifi2/wla_2nd "
                              "5gfh_main:5g1:a:ath1 2gbh_sta:2g::ath3 ");
    EXPECT_TRUE(hardware.guest_vlan);
    EXPECT_EQ(hardware.atf_enable, "1");
    EXPECT_EQ(hardware.thermal_analytics, "0");
}

TEST(WirelessHardwareTest, ARadioWithoutAKeyHasNoRowAndNoDevice)
{
    const WirelessDevice device;
    device.describe("0", {"wifi0", "wifi1"}, {});
    const Hardware hardware = load();
    EXPECT_EQ(rows(hardware), "2g/wifi0/wl 5g1/wifi1/wla ");
    EXPECT_EQ(hardware.radio("5g2"), nullptr);
    EXPECT_EQ(hardware.device_of("5g2"), "");
    EXPECT_EQ(hardware.device_of("5g2", "None"), "None");
}

TEST(WirelessHardwareTest, EveryBandAndRoleMakesAName)
{
    const WirelessDevice device;
    std::vector<Vap> all;
    for (const char *radio : {"2.4G", "5G", "5G_2nd"}) {
        for (const char *type : {"primary", "guest", "backhaul-ap_raw", "backhaul-sta_raw"}) {
            all.push_back({radio, type, "i"});
        }
    }
    device.describe("0", {}, all);
    EXPECT_EQ(rows(load()),
              "2gfh_main:2g:p:i 2gfh_guest:2g:p:i 2gbh_ap:2g:p:i 2gbh_sta:2g:p:i "
              "5gfh_main:5g1:p:i 5gfh_guest:5g1:p:i 5gbh_ap:5g1:p:i 5gbh_sta:5g1:p:i "
              "5gfh_main:5g2:p:i 5gfh_guest:5g2:p:i 5gbh_ap:5g2:p:i 5gbh_sta:5g2:p:i ");
}

TEST(WirelessHardwareTest, UnknownBandsAndRolesAreLeftOut)
{
    const WirelessDevice device;
    device.describe("0", {},
                    {{"2.4G", "backhaul-ap", "a"},
                     {"2.4G", "backhaul-sta", "b"},
                     {"6G", "primary", "c"},
                     {"", "guest", "d"},
                     {"5G", "", "e"},
                     {"5G", "guest", "f"}});
    EXPECT_EQ(rows(load()), "5gfh_guest:5g1:p:f ");
}

TEST(WirelessHardwareTest, OfTwoRowsOfOneNameTheFirstWins)
{
    const WirelessDevice device;
    device.describe("0", {"wifi0", "wifi1", "wifi2"},
                    {{"5G", "primary", "ath1"}, {"5G_2nd", "primary", "ath2"}});
    const Hardware hardware = load();
    EXPECT_EQ(hardware.iface_map_table.size(), 2U);
    EXPECT_EQ(hardware.iface_map_table[1].radio, "5g2");
    EXPECT_EQ(hardware.radio_of("5gfh_main"), "5g1");
    EXPECT_EQ(hardware.interface("5gfh_main")->ifname, "ath1");
    EXPECT_TRUE(hardware.carries("5g2", "fh_main"));
    EXPECT_FALSE(hardware.carries("5g2", "bh_ap"));
    EXPECT_EQ(hardware.radio_of("2gfh_main"), "");
}

TEST(WirelessHardwareTest, TextsAreCutAtFifteenBytes)
{
    const WirelessDevice device;
    const std::string kept = "123456789012345";
    device.write(WirelessDevice::description,
                 R"({"g_device": ")" + kept + R"(6", "atf_enable": ")" + kept +
                     R"(6", "thermal_analytics": ")" + kept +
                     R"(6", "athinfo": [{"radio": "2.4G", "vap_type": "guest", "ifname": ")" +
                     kept + R"(6", "config_prefix": ")" + kept + R"(6"}]})");
    const Hardware hardware = load();
    EXPECT_EQ(rows(hardware), "2g/" + kept + "/wl 2gfh_guest:2g:" + kept + ":" + kept + " ");
    EXPECT_EQ(hardware.atf_enable, kept);
    EXPECT_EQ(hardware.thermal_analytics, kept);
}

TEST(WirelessHardwareTest, FifteenInterfacesAreKept)
{
    const WirelessDevice device;
    std::vector<Vap> many(14, Vap{"2.4G", "guest", "a"});
    many.push_back({"6G", "guest", "unknown ones do not count"});
    many.push_back({"5G", "guest", "last"});
    many.push_back({"5G", "primary", "too many"});
    device.describe("0", {"wifi0", "wifi1", "wifi2"}, many);
    const Hardware hardware = load();
    EXPECT_EQ(hardware.radio_map_table.size(), 3U);
    ASSERT_EQ(hardware.iface_map_table.size(), 15U);
    EXPECT_EQ(hardware.iface_map_table.back().ifname, "last");
}

TEST(WirelessHardwareTest, NumbersAndBooleansReadAsTheirText)
{
    const WirelessDevice device;
    device.write(WirelessDevice::description,
                 R"({"guest_vlan": 1, "g_device": 7, "a_device": true, "a2_device": null})");
    const Hardware hardware = load();
    EXPECT_TRUE(hardware.guest_vlan);
    EXPECT_EQ(rows(hardware), "2g/7/wl 5g1/true/wla ");
}

TEST(WirelessHardwareTest, OnlyTheTextOneTurnsTheGuestVlanOn)
{
    const WirelessDevice device;
    for (const char *value : {"0", "", "11", "yes", " 1"}) {
        device.describe(value, {}, {});
        EXPECT_FALSE(load().guest_vlan) << value;
    }
}

class WirelessHardwareLaterTest : public testing::Test {
protected:
    WirelessHardwareLaterTest()
    {
        device_.write(WirelessDevice::description,
                      R"({"guest_vlan": "1", "g_device": "wifi0", "atf_enable": "1",)"
                      R"( "thermal_analytics": "2", "athinfo": [{"radio": "2.4G",)"
                      R"( "vap_type": "guest", "ifname": "a"}]})");
        load_athinfo(hardware_);
    }
    void reload(const std::string &text)
    {
        device_.write(WirelessDevice::description, text);
        EXPECT_EQ(load_athinfo(hardware_), 0);
    }

    WirelessDevice device_;
    Hardware hardware_;
};

TEST_F(WirelessHardwareLaterTest, WithoutTheFileEverythingStays)
{
    std::filesystem::remove(device_.path(WirelessDevice::description));
    EXPECT_EQ(load_athinfo(hardware_), 0);
    EXPECT_TRUE(hardware_.guest_vlan);
    EXPECT_EQ(rows(hardware_), "2g/wifi0/wl 2gfh_guest:2g::a ");
}

TEST_F(WirelessHardwareLaterTest, AFileThatIsNoJsonEmptiesTheTablesAndKeepsTheTexts)
{
    for (const char *text : {"{\"guest_vlan\": \"1\", ", "", "[1, 2]", "\"text\"", "no json"}) {
        reload(text);
        EXPECT_FALSE(hardware_.guest_vlan) << text;
        EXPECT_EQ(rows(hardware_), "") << text;
        EXPECT_EQ(hardware_.atf_enable, "1") << text;
        EXPECT_EQ(hardware_.thermal_analytics, "2") << text;
    }
}

TEST_F(WirelessHardwareLaterTest, TextsThatTheFileLacksStayAndEmptyOnesReplace)
{
    reload(R"({"g_device": "wifi0", "atf_enable": ""})");
    EXPECT_EQ(hardware_.atf_enable, "");
    EXPECT_EQ(hardware_.thermal_analytics, "2");
    EXPECT_EQ(rows(hardware_), "2g/wifi0/wl ");
}

TEST_F(WirelessHardwareLaterTest, MembersOfOddKindsDoNoHarm)
{
    reload(R"({"athinfo": {"radio": "2.4G"}})");
    EXPECT_EQ(rows(hardware_), "");
    reload(R"({"athinfo": [null, 7, "text", [], {"radio": ["2.4G"], "vap_type": "guest"}]})");
    EXPECT_EQ(rows(hardware_), "");
}

TEST(WirelessCountryTest, RegionsHaveTheirNumericCodes)
{
    std::string codes;
    for (int region = -1; region <= 25; ++region) {
        codes += std::string(country_code(country_map_table, std::to_string(region))) + " ";
    }
    EXPECT_EQ(codes, " 710 764 36 124 276 376 392 410 484 76 840 156 356 458 12  792 682 784 643 "
                     "702 158     ");
    EXPECT_STREQ(country_code(country_map_table, ""), "");
    EXPECT_STREQ(country_code(country_map_table, "01"), "");
}

TEST(WirelessCountryTest, RegionsHaveTheirThreeLetterCodes)
{
    std::string codes;
    for (int region = -1; region <= 25; ++region) {
        codes += std::string(country_code(nvram_country_map_table, std::to_string(region))) + " ";
    }
    EXPECT_EQ(codes, " ZAF THA AUS CAN GER ISR JPN KOR MEX BRA USA CHN IND MYS DZA  TUR SAU ARE "
                     "RUS SGP TWN HKG VNM NZL  ");
}

TEST(WirelessCountryTest, TheSameRegionsLimitThePowerInBothTables)
{
    const auto limited = [](std::span<const CountryRow> table) {
        std::string regions;
        for (const CountryRow &row : table) {
            regions += row.limits_power ? std::string(row.region) + " " : "";
        }
        return regions;
    };
    EXPECT_EQ(limited(country_map_table), "0 5 6 8 9 14 16 17 18 19 ");
    EXPECT_EQ(limited(nvram_country_map_table), "0 5 6 8 9 14 16 17 18 19 ");
}

} // namespace
} // namespace qorcfg
