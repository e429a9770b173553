#include "support/wireless_device.h"

#include "apply/apply.h"
#include "platform/config_value.h"
#include "platform/key_id.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace qorcfg {
namespace {

using test::split_lines;
using test::WirelessDevice;
using Names = std::vector<std::string>;

class IetfWirelessTest : public testing::Test {
protected:
    UpdateCallback callback_of(const char *key) const
    {
        device_.enable(ietf_wireless);
        return registry().find(config_key_id(key))->normal.at(0);
    }
    bool logged(const char *line) const
    {
        const Names log = device_.log();
        return std::find(log.begin(), log.end(), line) != log.end();
    }
    bool apply(const BatchSelection &selection) const
    {
        std::ostringstream err;
        const bool done = apply_batches(selection, err);
        EXPECT_EQ(err.str(), "");
        return done;
    }

    WirelessDevice device_;
};

TEST_F(IetfWirelessTest, EntryRoutinesSayWhatTheyDo)
{
    ietf_wireless.register_();
    EXPECT_EQ(device_.log(), Names{"register() -  wireless"});
    EXPECT_NE(device_.log_lines()[0].find("[ietf_wireless "), std::string::npos);
    device_.clear_log();
    ietf_wireless.init();
    EXPECT_EQ(device_.log()[0], "init() - Initializing wireless");
    device_.clear_log();
    ietf_wireless.soap_init();
    EXPECT_EQ(device_.log()[0], "init() - Initializing soap wireless");
}

TEST_F(IetfWirelessTest, EachUpdateLogsItsLineAndReturnsOne)
{
    EXPECT_EQ(callback_of("wl_ssid")(1), 1);
    EXPECT_EQ(callback_of("lbd_RSSISteeringPoint_UG")(1), 1);
    EXPECT_EQ(callback_of("repacd_Daisy_Chain_Enable")(1), 1);
    EXPECT_TRUE(logged(" update all wireless"));
    EXPECT_TRUE(logged(" update lbd wireless"));
    EXPECT_TRUE(logged(" update repacd wireless"));
    EXPECT_NE(device_.log_lines().back().find("[ietf_wireless "), std::string::npos);
}

TEST_F(IetfWirelessTest, TheGlobalSectionHasTheStoresAirTimeAndTheDescriptionsAnalytics)
{
    device_.update({{"atf_enable", "1234567890123456"}});
    EXPECT_EQ(device_.options("qcawifi", "qcawifi"), (Names{"atf_enable", "thermal_analytics"}));
    EXPECT_EQ(device_.option("qcawifi", "qcawifi", "atf_enable"), "123456789012345");
    EXPECT_EQ(device_.option("qcawifi", "qcawifi", "thermal_analytics"), "1");
}

TEST_F(IetfWirelessTest, AnEmptyAirTimeOfTheStoreCountsToo)
{
    device_.write(WirelessDevice::description, R"({"atf_enable": "1"})");
    device_.update();
    EXPECT_EQ(device_.options("qcawifi", "qcawifi"), Names{});
}

TEST_F(IetfWirelessTest, AGuestVlanWidensThePushButton)
{
    device_.with_guest_vlan();
    device_.update({{"atf_enable", "1"}});
    EXPECT_EQ(device_.options("qcawifi", "qcawifi"),
              (Names{"atf_enable", "thermal_analytics", "wps_pbc_extender_enhance",
                     "wps_pbc_overwrite_ap_settings_all", "wps_pbc_overwrite_sta_settings_all"}));
    EXPECT_EQ(device_.option("qcawifi", "qcawifi", "wps_pbc_extender_enhance"), "1");
}

TEST_F(IetfWirelessTest, ABaseUnitHasBackhaulAccessPointsWhateverTheChain)
{
    const Names base{"2gfh_main", "2gfh_guest", "5gfh_main", "5gfh_guest", "2gbh_ap", "5gbh_ap"};
    device_.update();
    EXPECT_EQ(device_.sections("wifi-iface"), base);
    device_.update({{"repacd_Daisy_Chain_Enable", "0"}});
    EXPECT_EQ(device_.sections("wifi-iface"), base);
    EXPECT_EQ(device_.interface("2gbh_ap", "vap_disable"), "(none)");
}

TEST_F(IetfWirelessTest, ASatelliteHasStationsTooAndSwitchesItsAccessPointsOff)
{
    device_.be_base(false);
    const Names satellite{"2gfh_main", "2gfh_guest", "5gfh_main", "5gfh_guest",
                          "2gbh_ap",   "5gbh_ap",    "2gbh_sta",  "5gbh_sta"};
    device_.update();
    EXPECT_EQ(device_.sections("wifi-iface"), satellite);
    device_.update({{"repacd_Daisy_Chain_Enable", "0"}});
    EXPECT_EQ(device_.sections("wifi-iface"), satellite);
    EXPECT_EQ(device_.interface("2gbh_ap", "vap_disable"), "1");
    EXPECT_EQ(device_.interface("5gbh_ap", "vap_disable"), "1");
}

TEST_F(IetfWirelessTest, AGuestNetworkThatIsOffIsNotBuilt)
{
    device_.update({{"wlg1_endis_guestNet", "0"}});
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Names{"2gfh_main", "5gfh_main", "5gfh_guest", "2gbh_ap", "5gbh_ap"}));
    device_.update({{"wlg1_endis_guestNet", "2"}, {"wla1_endis_guestNet", "0"}});
    EXPECT_EQ(device_.sections("wifi-iface"),
              (Names{"2gfh_main", "2gfh_guest", "5gfh_main", "2gbh_ap", "5gbh_ap"}));
    EXPECT_EQ(device_.interface("2gfh_guest", "vap_disable"), "1");
}

TEST_F(IetfWirelessTest, OnlyRadiosOfTheDescriptionAreBuilt)
{
    for (const Names &devices :
         {Names{}, Names{"r0"}, Names{"r0", "r1"}, Names{"r0", "r1", "r2"}}) {
        device_.describe("0", devices, {});
        device_.update();
        EXPECT_EQ(device_.sections("wifi-device"), devices);
    }
    device_.write(WirelessDevice::description, R"({"a2_device": "r2", "a_device": "r1"})");
    device_.update();
    EXPECT_EQ(device_.sections("wifi-device"), (Names{"r1", "r2"}));
}

TEST_F(IetfWirelessTest, ABridgeIsOneStationOnTheChosenBand)
{
    device_.update({{"bridge_mode", "1"}, {"bridge_band_choose", "5g"}});
    EXPECT_EQ(device_.sections("wifi-device"), Names{"wifi1"});
    EXPECT_EQ(device_.sections("wifi-iface"), Names{"5gfh_sta"});
    device_.update({{"bridge_band_choose", "2.4g"}});
    EXPECT_EQ(device_.sections("wifi-device"), Names{"wifi0"});
    EXPECT_EQ(device_.sections("wifi-iface"), Names{"2gfh_sta"});
}

TEST_F(IetfWirelessTest, ABridgeWithoutABandHasEmptyGroups)
{
    for (const char *band : {"auto", "", "2.4G", "5G"}) {
        device_.update({{"bridge_mode", "1"}, {"bridge_band_choose", band}});
        EXPECT_EQ(device_.document("wireless", "all"),
                  R"({"qcawifi":{"qcawifi":{"thermal_analytics":"1"}},"wifi-device":{},)"
                  R"("wifi-iface":{}})");
    }
}

TEST_F(IetfWirelessTest, ABridgesStationHasTheCommonOptions)
{
    device_.update({{"bridge_mode", "1"},
                    {"bridge_band_choose", "2.4g"},
                    {"wl_disablecoext", "0"},
                    {"wl_vht_11ng", "1"},
                    {"wlg_bf", "1"},
                    {"wl_htmode", "HT160"}});
    EXPECT_EQ(device_.options("wifi-iface", "2gfh_sta"),
              (Names{"bridge", "network", "vht_11ng", "11ngvhtintop", "wps_state", "wps_config",
                     "wps_pbc", "hidden", "doth", "disablecoext", "bintval", "dtim_period",
                     "vhtsubfee", "vhtsubfer", "vhtmubfee", "vhtmubfer"}));
    EXPECT_EQ(device_.interface("2gfh_sta", {"network", "hidden", "disablecoext", "vhtsubfee"}),
              "network=lan hidden=0 disablecoext=1 vhtsubfee=0");
    device_.with_guest_vlan();
    device_.update();
    EXPECT_EQ(device_.interface("2gfh_sta", "network"), "lan");
    EXPECT_EQ(device_.interface("2gfh_sta", "bridge"), "(none)");
}

TEST_F(IetfWirelessTest, ABridgesRadioThatTheDeviceLacksIsNotBuilt)
{
    device_.describe("0", {"wifi0"}, {});
    device_.update({{"bridge_mode", "1"}, {"bridge_band_choose", "5g"}});
    EXPECT_EQ(device_.sections("wifi-device"), Names{});
    EXPECT_EQ(device_.sections("wifi-iface"), Names{"5gfh_sta"});
}

TEST_F(IetfWirelessTest, WithoutADescriptionThereAreNoRadiosAndInterfacesStandAlone)
{
    std::filesystem::remove(device_.path(WirelessDevice::description));
    device_.update({{"wl_ssid", "Home"}, {"wl_disablecoext", "0"}});
    EXPECT_EQ(device_.sections("wifi-device"), Names{});
    EXPECT_EQ(device_.interface("2gfh_main", {"device", "ifname", "ssid", "disablecoext"}),
              "ssid=Home disablecoext=1");
}

TEST_F(IetfWirelessTest, ADescriptionThatGoesAwayStaysInForce)
{
    device_.update();
    std::filesystem::remove(device_.path(WirelessDevice::description));
    device_.update({{"wl_ssid", "Home"}});
    EXPECT_EQ(device_.sections("wifi-device"), (Names{"wifi0", "wifi1", "wifi2"}));
    EXPECT_EQ(device_.interface("2gfh_main", {"device", "ifname", "ssid"}),
              "device=wifi0 ssid=Home ifname=ath0");
}

TEST_F(IetfWirelessTest, ADescriptionThatIsDamagedEmptiesTheTables)
{
    device_.update();
    device_.write(WirelessDevice::description, "{ damaged");
    device_.update();
    EXPECT_EQ(device_.sections("wifi-device"), Names{});
    EXPECT_EQ(device_.interface("2gfh_main", "device"), "(none)");
    EXPECT_EQ(device_.option("qcawifi", "qcawifi", "thermal_analytics"), "1");
}

TEST_F(IetfWirelessTest, BoardFactsThatAreListsAreLeftOut)
{
    device_.write("/tmp/etc/config/systeminfo", "config systeminfo 'boarddata'\n"
                                                "\tlist board_wpspin '1'\n"
                                                "\tlist wl2g_mac '00:00:5E:00:53:12'\n"
                                                "\toption wl5g_mac '00:00:5E:00:53:13'\n");
    device_.update();
    EXPECT_EQ(device_.interface("2gfh_main", "wps_pin"), "(none)");
    EXPECT_EQ(device_.radio("wifi0", "macaddr"), "(none)");
    EXPECT_EQ(device_.radio("wifi1", "macaddr"), "00:00:5E:00:53:13");
}

TEST_F(IetfWirelessTest, BoardFactsAreCutAtTheirOwnSizes)
{
    const auto write_board = [&](std::size_t pin, std::size_t mac, const std::string &role,
                                 const std::string &driver) {
        const std::string macs(mac, 'm');
        device_.write("/tmp/etc/config/systeminfo",
                      "config systeminfo 'boarddata'\n\toption board_wpspin '" +
                          std::string(pin, 'p') + "'\n\toption wl2g_mac '" + macs +
                          "'\n\toption wl5g_mac '" + macs + "'\n\toption wl2nd5g_mac '" + macs +
                          "'\n");
        device_.write("/tmp/etc/config/repacd",
                      "config repacd 'repacd'\n\toption Role '" + role + "'\n");
        device_.write("/tmp/etc/config/qcacfg80211",
                      "config qcacfg80211 'config'\n\toption enable '" + driver + "'\n");
        device_.update();
    };
    write_board(16, 32, "CAP", "1");
    EXPECT_EQ(device_.interface("2gfh_main", "wps_pin"), std::string(15, 'p'));
    for (const char *radio : {"wifi0", "wifi1", "wifi2"}) {
        EXPECT_EQ(device_.radio(radio, "macaddr"), std::string(31, 'm')) << radio;
    }
    const auto facts_of = [&](std::size_t role, std::size_t driver) {
        write_board(1, 1, std::string(role, 'r'), std::string(driver, 'd'));
        const auto facts = ietf_wireless_model().refresh();
        return facts->board[board_mesh_role] + " " + facts->board[board_driver_type];
    };
    EXPECT_EQ(facts_of(10, 8), "rrrrrrrrr ddddddd");
    EXPECT_EQ(facts_of(9, 7), "rrrrrrrrr ddddddd");
}

TEST_F(IetfWirelessTest, SteeringHasOneThresholdFromTheStore)
{
    device_.update({{"lbd_RSSISteeringPoint_UG", "20"}});
    EXPECT_EQ(
        device_.startup_lines("lbd", "IdleSteer"),
        (Names{"set lbd.IdleSteer=IdleSteer", "set lbd.IdleSteer.RSSISteeringPoint_DG=5",
               "set lbd.IdleSteer.InactCheckInterval=1", "set lbd.IdleSteer.AuthAllow=0",
               "set lbd.IdleSteer.NormalInactTimeout=5", "set lbd.IdleSteer.OverloadInactTimeout=5",
               "set lbd.IdleSteer.RSSISteeringPoint_UG=20"}));
}

TEST_F(IetfWirelessTest, TheMeshLinkHasTheChainBehindItsFixedOptions)
{
    device_.update({{"repacd_Daisy_Chain_Enable", "1"}});
    const Names lines = device_.startup_lines("repacd", "WiFiLink");
    ASSERT_EQ(lines.size(), 34U);
    EXPECT_EQ(lines[0], "set repacd.WiFiLink=WiFiLink");
    EXPECT_EQ(lines[1], "set repacd.WiFiLink.EnableSNRBasedPrefer2GBackhaul=1");
    EXPECT_EQ(lines[32], "set repacd.WiFiLink.ManageVAPInd=0");
    EXPECT_EQ(lines[33], "set repacd.WiFiLink.DaisyChain=1");
}

TEST_F(IetfWirelessTest, SteeringAndMeshLinkNeedNoWirelessPackage)
{
    std::filesystem::remove(device_.path("/tmp/etc/config/wireless"));
    EXPECT_EQ(callback_of("lbd_RSSISteeringPoint_UG")(1), 1);
    EXPECT_EQ(callback_of("repacd_Daisy_Chain_Enable")(1), 1);
    EXPECT_EQ(device_.read("/tmp/.uci/wireless"), "");
}

TEST_F(IetfWirelessTest, EverySectionIsMadeInTheLivePackage)
{
    device_.be_base(false);
    device_.describe("0", {"wifi0"}, {});
    device_.update();
    const Names changes = split_lines(device_.read("/tmp/.uci/wireless"));
    Names renamed;
    for (const std::string &line : changes) {
        if (line[0] == '@') {
            renamed.push_back(line.substr(line.find('=') + 1));
        }
    }
    EXPECT_EQ(renamed,
              (Names{"'qcawifi'", "'wifi0'", "'2gfh_main'", "'2gfh_guest'", "'5gfh_main'",
                     "'5gfh_guest'", "'2gbh_ap'", "'5gbh_ap'", "'2gbh_sta'", "'5gbh_sta'"}));
    EXPECT_EQ(changes.size(), 2 * renamed.size());
}

TEST_F(IetfWirelessTest, AfterFiftyUpdatesAndAppliesEachSectionIsThereOnce)
{
    device_.be_base(false);
    device_.update({{"wlg1_endis_guestNet", "1"}});
    EXPECT_TRUE(apply({BatchSelection::Kind::startup, 0}));
    for (int job = 1; job <= 50; ++job) {
        device_.set({{"wlg1_endis_guestNet", job % 3 == 0 ? "0" : "1"},
                     {"wl_ssid", "Home " + std::to_string(job)}});
        device_.apply({"wlg1_endis_guestNet", "wl_ssid"}, job);
        // Some jobs' batches wait for the next.
        if (job % 4 != 1) {
            EXPECT_TRUE(apply({BatchSelection::Kind::job, job}));
            EXPECT_EQ(device_.read("/tmp/.uci/wireless"), "") << job;
        }
    }
    const std::string package = device_.read("/tmp/etc/config/wireless");
    Names sections;
    for (const std::string &line : split_lines(package)) {
        if (line.rfind("config ", 0) == 0) {
            sections.push_back(line);
        }
    }
    std::sort(sections.begin(), sections.end());
    EXPECT_EQ(sections, (Names{"config qcawifi 'qcawifi'", "config wifi-device 'wifi0'",
                               "config wifi-device 'wifi1'", "config wifi-device 'wifi2'",
                               "config wifi-iface '2gbh_ap'", "config wifi-iface '2gbh_sta'",
                               "config wifi-iface '2gfh_guest'", "config wifi-iface '2gfh_main'",
                               "config wifi-iface '5gbh_ap'", "config wifi-iface '5gbh_sta'",
                               "config wifi-iface '5gfh_guest'", "config wifi-iface '5gfh_main'"}));
    EXPECT_NE(package.find("option ssid 'Home 50'"), std::string::npos);
}

TEST_F(IetfWirelessTest, OverlappingFullUpdatesSeeNothingOfEachOther)
{
    device_.update({{"wl_ssid", "Home"}, {"wl_sectype", "4"}, {"wl_wpa2_psk", "secret"}});
    const std::string alone = device_.document("wireless", "all");
    const UpdateCallback update = callback_of("wl_ssid");
    std::atomic<int> failures{0};
    std::vector<std::thread> workers;
    for (int i = 0; i < 3; ++i) {
        workers.emplace_back([&] {
            for (int run = 0; run < 10; ++run) {
                failures += update(1) == 1 ? 0 : 1;
            }
        });
    }
    for (std::thread &worker : workers) {
        worker.join();
    }
    EXPECT_EQ(failures, 0);
    // A run that had seen less, or more, would have written a difference.
    EXPECT_EQ(device_.lines(1, "wireless", "all"), Names{});
    EXPECT_EQ(device_.document("wireless", "all"), alone);
    const Names changes = split_lines(device_.read("/tmp/.uci/wireless"));
    EXPECT_EQ(changes.size(), 2 * 10U) << "one addition and one name for each of ten sections";
}

} // namespace
} // namespace qorcfg
