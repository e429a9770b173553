#include "support/wireless_device.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::WirelessDevice;
using Names = std::vector<std::string>;
using Settings = std::initializer_list<std::pair<const char *, std::string>>;

const Names built_names{"2gfh_main", "2gfh_guest", "5gfh_main", "5gfh_guest",
                        "2gbh_ap",   "5gbh_ap",    "2gbh_sta",  "5gbh_sta"};

/// A satellite, on which all interfaces but the bridge stations are built.
class IetfWirelessInterfaceTest : public testing::Test {
protected:
    IetfWirelessInterfaceTest()
    {
        device_.be_base(false);
        describe("0");
    }
    void describe(const std::string &guest_vlan) const
    {
        auto interfaces = WirelessDevice::base_interfaces();
        interfaces.push_back({"2.4G", "backhaul-sta_raw", "ath03"});
        interfaces.push_back({"5G_2nd", "backhaul-sta_raw", "ath21"});
        device_.describe(guest_vlan, {"wifi0", "wifi1", "wifi2"}, interfaces);
    }
    /// An option of all interfaces in the order in which they are built, "|" between them.
    std::string all(const char *option) const
    {
        std::string text;
        for (const std::string &name : built_names) {
            const std::string value = device_.interface(name.c_str(), option);
            text += (text.empty() ? "" : "|") + (value == "(none)" ? "-" : value);
        }
        return text;
    }
    std::string all(const char *option, Settings settings) const
    {
        device_.update(settings);
        return all(option);
    }

    WirelessDevice device_;
};

const Names wps_options{"ap_setup_locked", "wps_state",          "wps_config",
                        "wps_pbc",         "wps_device_name",    "wps_pbc_enable",
                        "wps_pbc_noclone", "wps_pbc_start_time", "wps_pbc_duration"};
const Names beamforming_options{"implicitbf", "vhtsubfee", "vhtsubfer", "vhtmubfee", "vhtmubfer"};

TEST_F(IetfWirelessInterfaceTest, OptionsOfAMainFronthaulStandInTheirOrder)
{
    device_.update({{"wl_vht_11ng", "1"},
                    {"Device_name", "Kova"},
                    {"wl_ssid", "Home"},
                    {"wl_sectype", "4"},
                    {"wl_wpa2_psk", "secret"},
                    {"wl_disablecoext", "0"},
                    {"wl_htmode", "HT160"},
                    {"wl_rts", "2347"},
                    {"wl_frag", "2346"},
                    {"endis_wl_wmm", "1"},
                    {"wl_plcphdr", "0"},
                    {"endis_wl_radio", "0"},
                    {"vie_flag", "1"}});
    EXPECT_EQ(device_.options("wifi-iface", "2gfh_main"), (Names{"device",
                                                                 "bridge",
                                                                 "network",
                                                                 "mode",
                                                                 "vht_11ng",
                                                                 "11ngvhtintop",
                                                                 "ap_setup_locked",
                                                                 "wps_state",
                                                                 "wps_config",
                                                                 "wps_pbc",
                                                                 "wps_device_name",
                                                                 "ssid",
                                                                 "encryption",
                                                                 "key",
                                                                 "hidden",
                                                                 "doth",
                                                                 "disablecoext",
                                                                 "assocwar160",
                                                                 "rrm",
                                                                 "mcastenhance",
                                                                 "rts",
                                                                 "frag",
                                                                 "wmm",
                                                                 "short_preamble",
                                                                 "bintval",
                                                                 "dtim_period",
                                                                 "ifname",
                                                                 "wps_pin",
                                                                 "vap_disable",
                                                                 "vhtsubfee",
                                                                 "vhtsubfer",
                                                                 "vhtmubfee",
                                                                 "vhtmubfer"}));
}

TEST_F(IetfWirelessInterfaceTest, OptionsOfAnIsolatedGuestStandInTheirOrder)
{
    device_.update({{"wlg1_endis_allow_see_and_access", "0"}, {"wl_frag", "1"}});
    EXPECT_EQ(device_.options("wifi-iface", "2gfh_guest"),
              (Names{"device", "bridge", "network", "mode", "wsplcd_unmanaged",
                     "repacd_security_unmanaged", "hidden", "doth", "frag", "isolate",
                     "lan_restricted", "lan_ipaddr", "bintval", "dtim_period", "ifname",
                     "vhtsubfee", "vhtsubfer", "vhtmubfee", "vhtmubfer"}));
}

TEST_F(IetfWirelessInterfaceTest, OptionsOfABackhaulStationStandInTheirOrder)
{
    describe("1");
    device_.write("/tmp/etc/config/repacd", "config repacd 'repacd'\n\toption Role 'CAP'\n");
    device_.update({{"wlg_sta_ssid", "bh"}, {"vie_flag", "1"}, {"wl_disablecoext", "0"}});
    EXPECT_EQ(device_.options("wifi-iface", "2gbh_sta"), (Names{"device",
                                                                "network",
                                                                "mode",
                                                                "wds",
                                                                "athnewind",
                                                                "vap_ind",
                                                                "backhaul",
                                                                "wsplcd_unmanaged",
                                                                "repacd_security_unmanaged",
                                                                "wps_state",
                                                                "wps_config",
                                                                "wps_pbc",
                                                                "wps_pbc_enable",
                                                                "wps_pbc_noclone",
                                                                "wps_pbc_start_time",
                                                                "wps_pbc_duration",
                                                                "ssid",
                                                                "hidden",
                                                                "doth",
                                                                "disablecoext",
                                                                "bintval",
                                                                "dtim_period",
                                                                "ifname",
                                                                "implicitbf",
                                                                "vhtsubfee",
                                                                "vhtsubfer",
                                                                "vhtmubfee",
                                                                "vhtmubfer",
                                                                "vie_flag",
                                                                "rept_spl",
                                                                "disabled"}));
}

TEST_F(IetfWirelessInterfaceTest, DeviceAndIfnameComeFromTheDescription)
{
    device_.update();
    EXPECT_EQ(all("device"), "wifi0|wifi0|wifi1|wifi1|wifi0|wifi2|wifi0|wifi2");
    EXPECT_EQ(all("ifname"), "ath0|ath02|ath1|ath12|ath01|ath2|ath03|ath21");
}

TEST_F(IetfWirelessInterfaceTest, BridgeAndNetworkFollowTheGuestVlan)
{
    device_.update();
    EXPECT_EQ(all("bridge"), "br-lan|br-lan|br-lan|br-lan|br-lan|br-lan|br-lan|br-lan");
    EXPECT_EQ(all("network"), "lan|lan|lan|lan|lan|lan|lan|lan");
    describe("1");
    device_.update();
    EXPECT_EQ(all("bridge"), "-|-|-|-|-|-|-|-");
    EXPECT_EQ(all("network"), "lan|guest|lan|guest|backhaul|backhaul|backhaul|backhaul");
}

TEST_F(IetfWirelessInterfaceTest, RolesHaveTheirOptions)
{
    device_.update();
    EXPECT_EQ(all("mode"), "ap|ap|ap|ap|ap|ap|sta|sta");
    EXPECT_EQ(all("wds"), "-|-|-|-|1|1|1|1");
    EXPECT_EQ(all("athnewind"), "-|-|-|-|1|1|1|1");
    EXPECT_EQ(all("vap_ind"), "-|-|-|-|0|0|0|0");
    EXPECT_EQ(all("backhaul"), "-|-|-|-|1|1|1|1");
    EXPECT_EQ(all("backhaul_ap"), "-|-|-|-|1|1|-|-");
    EXPECT_EQ(all("wsplcd_unmanaged"), "-|1|-|1|1|1|1|1");
    EXPECT_EQ(all("repacd_security_unmanaged"), "-|1|-|1|1|1|1|1");
}

TEST_F(IetfWirelessInterfaceTest, AGuestVlanChangesTheFronthaulsRoleOptions)
{
    describe("1");
    device_.update();
    EXPECT_EQ(all("athnewind"), "-|0|-|0|1|1|1|1");
    EXPECT_EQ(all("wsplcd_unmanaged"), "-|-|-|-|1|1|1|1");
    EXPECT_EQ(all("repacd_security_unmanaged"), "1|1|1|1|1|1|1|1");
}

TEST_F(IetfWirelessInterfaceTest, TheLowBandHasTheVhtFlagTwice)
{
    EXPECT_EQ(all("vht_11ng", {{"wl_vht_11ng", "1"}}), "1|1|-|-|1|-|1|-");
    EXPECT_EQ(all("11ngvhtintop"), "1|1|-|-|1|-|1|-");
    EXPECT_EQ(all("vht_11ng", {{"wl_vht_11ng", ""}}), "-|-|-|-|-|-|-|-");
}

TEST_F(IetfWirelessInterfaceTest, WpsOfEachRole)
{
    device_.update({{"Device_name", "Kova"}, {"wps_status", "5"}});
    const std::string methods = "wps_config=virtual_push_button physical_push_button wps_pbc=1";
    const std::string main =
        "ap_setup_locked=0 wps_state=2 " + methods + " wps_device_name=Kova(Wireless AP)";
    EXPECT_EQ(device_.interface("2gfh_main", wps_options), main);
    EXPECT_EQ(device_.interface("5gfh_main", wps_options), main);
    for (const char *name : {"2gbh_ap", "5gbh_ap", "2gbh_sta", "5gbh_sta"}) {
        EXPECT_EQ(device_.interface(name, wps_options), "wps_state=2 " + methods) << name;
    }
    EXPECT_EQ(device_.interface("2gfh_guest", wps_options), "");
    EXPECT_EQ(device_.interface("5gfh_guest", wps_options), "");
}

TEST_F(IetfWirelessInterfaceTest, AGuestVlanGivesWpsTimesThatDoNotMeet)
{
    describe("1");
    device_.update();
    const Names times{"wps_pbc", "wps_pbc_enable", "wps_pbc_noclone", "wps_pbc_start_time",
                      "wps_pbc_duration"};
    for (const char *name : {"2gfh_main", "5gfh_main"}) {
        EXPECT_EQ(device_.interface(name, times), "wps_pbc=1 wps_pbc_enable=1 wps_pbc_noclone=1 "
                                                  "wps_pbc_start_time=0 wps_pbc_duration=60");
    }
    for (const char *name : {"2gbh_ap", "5gbh_ap", "2gbh_sta", "5gbh_sta"}) {
        EXPECT_EQ(device_.interface(name, times), "wps_pbc=1 wps_pbc_enable=1 wps_pbc_noclone=0 "
                                                  "wps_pbc_start_time=61 wps_pbc_duration=120");
    }
}

TEST_F(IetfWirelessInterfaceTest, AWpsSwitchIsForItsFronthaulAlone)
{
    EXPECT_EQ(all("wps_state", {{"endis_wl_wps", "0"}}), "-|-|2|-|2|2|2|2");
    EXPECT_EQ(all("wps_state", {{"endis_wl_wps", "1"}, {"endis_wla_wps", "0"}}), "2|-|-|-|2|2|2|2");
    EXPECT_EQ(all("wps_pin"), "12345670|-|12345670|-|-|-|-|-");
}

TEST_F(IetfWirelessInterfaceTest, AWpsStatusIsForItsFronthaulAlone)
{
    EXPECT_EQ(all("wps_state", {{"wps_status", "1"}}), "1|-|2|-|2|2|2|2");
    EXPECT_EQ(all("wps_state", {{"wps_status", "0"}, {"wla_wps_status", "1"}}), "2|-|1|-|2|2|2|2");
}

TEST_F(IetfWirelessInterfaceTest, TheWpsNameHasNineteenBytesOfTheDevices)
{
    const auto name = [&](const std::string &device_name) {
        device_.update({{"Device_name", device_name}});
        return device_.interface("2gfh_main", "wps_device_name");
    };
    EXPECT_EQ(name("1234567890123456789"), "1234567890123456789(Wireless AP)");
    EXPECT_EQ(name("12345678901234567890"), "1234567890123456789(Wireless AP)");
    EXPECT_EQ(name(""), "(Wireless AP)");
}

TEST_F(IetfWirelessInterfaceTest, EachInterfaceHasItsSsid)
{
    device_.update({{"wl_ssid", "a"},
                    {"wlg1_ssid", "b"},
                    {"wla_ssid", "c"},
                    {"wla1_ssid", "d"},
                    {"wlg_ap_bh_ssid", "e"},
                    {"wla_2nd_ap_bh_ssid", "f"},
                    {"wlg_sta_ssid", "g"},
                    {"wla_2nd_sta_ssid", "h"}});
    EXPECT_EQ(all("ssid"), "a|b|c|d|e|f|g|h");
}

TEST_F(IetfWirelessInterfaceTest, EachInterfaceHasItsSecurityKeys)
{
    const Names stems{"wl",        "wlg1",          "wla",     "wla1",
                      "wlg_ap_bh", "wla_2nd_ap_bh", "wlg_sta", "wla_2nd_sta"};
    const auto set_all = [&](const char *type) {
        for (const std::string &stem : stems) {
            device_.set({{(stem + "_sectype").c_str(), type},
                         {(stem + "_wpa2_psk").c_str(), stem + "2"},
                         {(stem + "_wpas_psk").c_str(), stem + "s"}});
        }
        device_.update();
    };
    set_all("4");
    EXPECT_EQ(device_.interface("2gfh_main", "encryption"), "psk2+ccmp");
    EXPECT_EQ(all("key"), "wl2|wlg12|wla2|wla12|wlg_ap_bh2|wla_2nd_ap_bh2|wlg_sta2|wla_2nd_sta2");
    set_all("5");
    EXPECT_EQ(device_.interface("5gbh_sta", "encryption"), "mixed-psk+tkip+ccmp");
    EXPECT_EQ(all("key"), "wls|wlg1s|wlas|wla1s|wlg_ap_bhs|wla_2nd_ap_bhs|wlg_stas|wla_2nd_stas");
    set_all("1");
    EXPECT_EQ(all("encryption"), "none|none|none|none|none|none|none|none");
    EXPECT_EQ(all("key"), "-|-|-|-|-|-|-|-");
    for (const char *type : {"", "0", "2", "3", "6", "7", "44", "4 "}) {
        set_all(type);
        EXPECT_EQ(all("encryption"), "-|-|-|-|-|-|-|-") << type;
        EXPECT_EQ(all("key"), "-|-|-|-|-|-|-|-") << type;
    }
}

TEST_F(IetfWirelessInterfaceTest, AFronthaulIsHiddenWhenItsBroadcastIsOff)
{
    device_.update({{"endis_ssid_broadcast", "0"},
                    {"wla_endis_ssid_broadcast", "1"},
                    {"wlg1_endis_guestSSIDbro", "1"},
                    {"wla1_endis_guestSSIDbro", "0"}});
    EXPECT_EQ(all("hidden"), "1|0|0|1|0|0|0|0");
    device_.update({{"endis_ssid_broadcast", ""},
                    {"wla_endis_ssid_broadcast", "0"},
                    {"wlg1_endis_guestSSIDbro", "0"},
                    {"wla1_endis_guestSSIDbro", "1"}});
    EXPECT_EQ(all("hidden"), "0|1|1|0|0|0|0|0");
}

TEST_F(IetfWirelessInterfaceTest, CoexistenceIsTheStoresOnTheLowBand)
{
    EXPECT_EQ(all("disablecoext", {{"wl_disablecoext", "0"}}), "0|0|1|1|0|1|0|1");
    EXPECT_EQ(all("disablecoext", {{"wl_disablecoext", ""}}), "-|-|1|1|-|1|-|1");
    EXPECT_EQ(all("doth"), "1|1|1|1|1|1|1|1");
}

TEST_F(IetfWirelessInterfaceTest, WideChannelsAreMarkedByTheRadiosMode)
{
    EXPECT_EQ(all("assocwar160", {{"wl_htmode", "HT40"}}), "-|-|-|-|-|-|-|-");
    EXPECT_EQ(all("assocwar160", {{"wla_htmode", "HT80_80"}}), "-|-|1|1|-|-|-|-");
    EXPECT_EQ(all("assocwar160", {{"wla_htmode", "HT80"}, {"wla_2nd_htmode", "HT160"}}),
              "-|-|-|-|-|1|-|1");
    EXPECT_EQ(all("assocwar160", {{"wla_htmode", "HT80_80+"}, {"wla_2nd_htmode", "HT1600"}}),
              "-|-|-|-|-|-|-|-");
}

TEST_F(IetfWirelessInterfaceTest, MeasurementsAndMulticast)
{
    device_.update();
    EXPECT_EQ(all("rrm"), "1|-|1|-|1|1|-|-");
    EXPECT_EQ(all("mcastenhance"), "2|-|2|-|-|-|-|-");
    describe("1");
    device_.update();
    EXPECT_EQ(all("rrm"), "1|1|1|1|1|1|-|-");
}

TEST_F(IetfWirelessInterfaceTest, ThresholdsAndWmmOfTheFronthauls)
{
    device_.update({{"wl_rts", "a"},
                    {"wla_rts", "b"},
                    {"wl_frag", "c"},
                    {"wla_frag", "d"},
                    {"endis_wl_wmm", "e"},
                    {"endis_wla_wmm", "f"}});
    EXPECT_EQ(all("rts"), "a|-|b|-|-|-|-|-");
    EXPECT_EQ(all("frag"), "c|c|d|d|-|-|-|-");
    EXPECT_EQ(all("wmm"), "e|e|f|f|-|-|-|-");
}

TEST_F(IetfWirelessInterfaceTest, ThePreambleIsMapped)
{
    EXPECT_EQ(all("short_preamble", {{"wl_plcphdr", "0"}, {"wla_plcphdr", "1"}}),
              "1|1|0|0|-|-|-|-");
    EXPECT_EQ(all("short_preamble", {{"wl_plcphdr", "2"}, {"wla_plcphdr", "3"}}),
              "1|1|-|-|-|-|-|-");
}

TEST_F(IetfWirelessInterfaceTest, GuestsAreIsolatedFromTheDeliveredLanAddress)
{
    device_.update({{"wlg1_endis_allow_see_and_access", "0"},
                    {"wla1_endis_allow_see_and_access", "1"},
                    {"lan_ipaddr", "192.0.2.1"}});
    EXPECT_EQ(all("isolate"), "-|1|-|-|-|-|-|-");
    EXPECT_EQ(all("lan_restricted"), "-|1|-|-|-|-|-|-");
    EXPECT_EQ(all("lan_ipaddr"), "-|192.168.1.1|-|-|-|-|-|-");
    EXPECT_EQ(all("isolate", {{"wla1_endis_allow_see_and_access", "0"}}), "-|1|-|1|-|-|-|-");
    describe("1");
    EXPECT_EQ(all("isolate", {}), "-|-|-|-|-|-|-|-");
}

TEST_F(IetfWirelessInterfaceTest, BeaconsAreTheSameEverywhere)
{
    device_.update();
    EXPECT_EQ(all("bintval"), "100|100|100|100|100|100|100|100");
    EXPECT_EQ(all("dtim_period"), "4|4|4|4|4|4|4|4");
}

TEST_F(IetfWirelessInterfaceTest, InterfacesAreDisabledByTheirSwitches)
{
    EXPECT_EQ(all("vap_disable", {}), "-|-|-|-|-|-|-|-");
    EXPECT_EQ(all("vap_disable", {{"endis_wl_radio", "0"}}), "1|1|-|-|-|-|-|-");
    EXPECT_EQ(all("vap_disable", {{"endis_wl_radio", "1"}, {"endis_wla_radio", "0"}}),
              "-|-|1|1|-|-|-|-");
    EXPECT_EQ(all("vap_disable", {{"endis_wla_radio", "1"}, {"wl_hw_btn_state", "off"}}),
              "1|1|1|1|-|-|-|-");
    EXPECT_EQ(all("vap_disable", {{"wl_hw_btn_state", "on"}, {"wlg1_endis_guestNet", "2"}}),
              "-|1|-|-|-|-|-|-");
    EXPECT_EQ(all("vap_disable", {{"wlg1_endis_guestNet", "1"}, {"wla1_endis_guestNet", "2"}}),
              "-|-|-|1|-|-|-|-");
    EXPECT_EQ(
        all("vap_disable", {{"wla1_endis_guestNet", "1"}, {"repacd_Daisy_Chain_Enable", "0"}}),
        "-|-|-|-|1|1|-|-");
}

TEST_F(IetfWirelessInterfaceTest, BackhaulsFormBeamsAndFronthaulsFollowTheirRadio)
{
    const std::string off = "vhtsubfee=0 vhtsubfer=0 vhtmubfee=0 vhtmubfer=0";
    const std::string single = "vhtsubfee=1 vhtsubfer=1 vhtmubfee=0 vhtmubfer=0";
    const std::string both = "vhtsubfee=1 vhtsubfer=1 vhtmubfee=1 vhtmubfer=1";
    device_.update({{"wlg_bf", "1"}, {"wlg_mu_mimo", "1"}, {"wla_bf", "0"}, {"wla_mu_mimo", "1"}});
    EXPECT_EQ(device_.interface("2gfh_main", beamforming_options), both);
    EXPECT_EQ(device_.interface("2gfh_guest", beamforming_options), both);
    EXPECT_EQ(device_.interface("5gfh_main", beamforming_options), off);
    EXPECT_EQ(device_.interface("5gfh_guest", beamforming_options), off);
    for (const char *name : {"2gbh_ap", "5gbh_ap", "2gbh_sta", "5gbh_sta"}) {
        EXPECT_EQ(device_.interface(name, beamforming_options), "implicitbf=0 " + both) << name;
    }
    device_.update({{"wla_bf", "1"}, {"wla_mu_mimo", "0"}});
    EXPECT_EQ(device_.interface("5gfh_main", beamforming_options), single);
    for (const char *other : {"", "2", "11"}) {
        device_.update({{"wlg_bf", other}, {"wla_mu_mimo", other}});
        EXPECT_EQ(device_.interface("2gfh_main", beamforming_options), off) << other;
        EXPECT_EQ(device_.interface("5gfh_main", beamforming_options), single) << other;
    }
}

TEST_F(IetfWirelessInterfaceTest, AFronthaulOfTheSecondHighRadioHasItsKeys)
{
    device_.describe("0", {"wifi0", "wifi1", "wifi2"}, {{"5G_2nd", "primary", "ath2"}});
    device_.update({{"wla_2nd_bf", "1"}, {"wla_2nd_mu_mimo", "1"}, {"wla_2nd_htmode", "HT160"}});
    EXPECT_EQ(device_.interface("5gfh_main", {"device", "assocwar160", "vhtmubfee"}),
              "device=wifi2 assocwar160=1 vhtmubfee=1");
}

TEST_F(IetfWirelessInterfaceTest, BackhaulExtras)
{
    EXPECT_EQ(all("vie_flag", {{"vie_flag", "1"}}), "-|-|-|-|1|1|1|1");
    EXPECT_EQ(all("rept_spl"), "-|-|-|-|-|-|-|-");
    describe("1");
    EXPECT_EQ(all("rept_spl", {}), "-|-|-|-|1|1|1|1");
    EXPECT_EQ(all("disabled"), "-|-|-|-|-|-|-|-");
    device_.write("/tmp/etc/config/repacd", "config repacd 'repacd'\n\toption Role 'CAPS'\n");
    EXPECT_EQ(all("disabled", {}), "-|-|-|-|-|-|-|-");
    device_.write("/tmp/etc/config/repacd", "config repacd 'repacd'\n\toption Role 'CAP'\n");
    EXPECT_EQ(all("disabled", {}), "-|-|-|-|-|-|1|1");
}

} // namespace
} // namespace qorcfg
