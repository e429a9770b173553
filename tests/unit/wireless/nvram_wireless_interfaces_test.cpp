#include "support/nvram_wireless_device.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

class NvramWirelessInterfacesTest : public testing::Test {
protected:
    /// What `option` of `section` becomes when `key` has `value`.
    std::string with(const char *key, const std::string &value, const std::string &section,
                     const std::string &option)
    {
        device_.set({{key, value}});
        device_.translate();
        return device_.option(section, option);
    }
    void have_guests() const
    {
        device_.set({{"wlg1_endis_guestNet", "1"}, {"wla1_endis_guestNet", "1"}});
    }

    test::NvramWirelessDevice device_;
};

struct Source {
    const char *section;
    const char *option;
    const char *key;
};

/// Options that carry a store key as it is.
constexpr Source sources[] = {
    {"FhAp2", "implicitbf", "wlg_implicit_bf"},
    {"FhAp2", "vhtsubfee", "FhAp2_vhtsubfee"},
    {"FhAp2", "vhtsubfer", "FhAp2_vhtsubfer"},
    {"FhAp2", "vhtmubfee", "FhAp2_vhtmubfee"},
    {"FhAp2", "vhtmubfer", "FhAp2_vhtmubfer"},
    {"Guest2", "implicitbf", "Guest2_implicitbf"},
    {"Guest2", "vhtsubfee", "Guest2_vhtsubfee"},
    {"Guest2", "vhtsubfer", "Guest2_vhtsubfer"},
    {"Guest2", "vhtmubfee", "Guest2_vhtmubfee"},
    {"Guest2", "vhtmubfer", "Guest2_vhtmubfer"},
    {"BhAp2", "implicitbf", "BhAp2_implicitbf"},
    {"BhAp2", "vhtsubfee", "BhAp2_vhtsubfee"},
    {"BhAp2", "vhtsubfer", "BhAp2_vhtsubfer"},
    {"BhAp2", "vhtmubfee", "BhAp2_vhtmubfee"},
    {"BhAp2", "vhtmubfer", "BhAp2_vhtmubfer"},
    {"FhAp5", "implicitbf", "wla_implicit_bf"},
    {"FhAp5", "vhtsubfee", "FhAp5_vhtsubfee"},
    {"FhAp5", "vhtsubfer", "FhAp5_vhtsubfer"},
    {"FhAp5", "vhtmubfee", "FhAp5_vhtmubfee"},
    {"FhAp5", "vhtmubfer", "FhAp5_vhtmubfer"},
    {"Guest5", "implicitbf", "Guest5_implicitbf"},
    {"Guest5", "vhtsubfee", "Guest5_vhtsubfee"},
    {"Guest5", "vhtsubfer", "Guest5_vhtsubfer"},
    {"Guest5", "vhtmubfee", "Guest5_vhtmubfee"},
    {"Guest5", "vhtmubfer", "Guest5_vhtmubfer"},
    {"BhAp5", "implicitbf", "BhAp5_implicitbf"},
    {"BhAp5", "vhtsubfee", "BhAp5_vhtsubfee"},
    {"BhAp5", "vhtsubfer", "BhAp5_vhtsubfer"},
    {"BhAp5", "vhtmubfee", "BhAp5_vhtmubfee"},
    {"BhAp5", "vhtmubfer", "BhAp5_vhtmubfer"},
    {"FhAp2", "wps_pbc_enable", "endis_wl_wps"},
    {"FhAp2", "wps_pbc", "FhAp2_wps_pbc"},
    {"FhAp2", "wps_config", "FhAp2_wps_config"},
    {"FhAp2", "ap_setup_locked", "FhAp2_ap_setup_locked"},
    {"BhAp2", "wps_pbc_enable", "BhAp2_wps_pbc_enable"},
    {"BhAp2", "wps_pbc", "BhAp2_wps_pbc"},
    {"BhAp2", "wps_config", "BhAp2_wps_config"},
    {"BhAp2", "ap_setup_locked", "BhAp2_ap_setup_locked"},
    {"FhAp5", "wps_pbc_enable", "endis_wla_wps"},
    {"FhAp5", "wps_pbc", "FhAp5_wps_pbc"},
    {"FhAp5", "wps_config", "FhAp5_wps_config"},
    {"FhAp5", "ap_setup_locked", "FhAp5_ap_setup_locked"},
    {"BhAp5", "wps_pbc_enable", "BhAp5_wps_pbc_enable"},
    {"BhAp5", "wps_pbc", "BhAp5_wps_pbc"},
    {"BhAp5", "wps_config", "BhAp5_wps_config"},
    {"BhAp5", "ap_setup_locked", "BhAp5_ap_setup_locked"},
    {"FhAp2", "wps_pin", "FhAp2_wps_pin"},
    {"FhAp5", "wps_pin", "FhAp5_wps_pin"},
    {"FhAp2", "ifname", "FhAp2_ifname"},
    {"Guest2", "ifname", "Guest2_ifname"},
    {"BhAp2", "ifname", "BhAp2_ifname"},
    {"FhAp5", "ifname", "FhAp5_ifname"},
    {"Guest5", "ifname", "Guest5_ifname"},
    {"BhAp5", "ifname", "BhAp5_ifname"},
    {"FhAp2", "isolate", "FhAp2_isolate"},
    {"Guest2", "isolate", "wlg1_endis_allow_see_and_access"},
    {"BhAp2", "isolate", "BhAp2_isolate"},
    {"FhAp5", "isolate", "FhAp5_isolate"},
    {"Guest5", "isolate", "wla1_endis_allow_see_and_access"},
    {"BhAp5", "isolate", "BhAp5_isolate"},
    {"FhAp2", "80211w", "wl_80211w"},
    {"Guest2", "80211w", "Guest2_80211w"},
    {"BhAp2", "80211w", "BhAp2_80211w"},
    {"FhAp5", "80211w", "wla_80211w"},
    {"Guest5", "80211w", "Guest5_80211w"},
    {"BhAp5", "80211w", "BhAp2_80211w"},
    {"FhAp2", "enable", "FhAp2_enable"},
    {"Guest2", "enable", "wlg1_endis_guestNet"},
    {"BhAp2", "enable", "BhAp2_enable"},
    {"FhAp5", "enable", "FhAp5_enable"},
    {"Guest5", "enable", "wla1_endis_guestNet"},
    {"BhAp5", "enable", "BhAp5_enable"},
    {"FhAp2", "ssid", "wl_ssid"},
    {"Guest2", "ssid", "wlg1_ssid"},
    {"BhAp2", "ssid", "wlg_ap_bh_ssid"},
    {"BhSta2", "ssid", "wlg_sta_ssid"},
    {"FhAp5", "ssid", "wla_ssid"},
    {"Guest5", "ssid", "wla1_ssid"},
    {"BhAp5", "ssid", "wla_2nd_ap_bh_ssid"},
    {"BhSta5", "ssid", "wla_2nd_sta_ssid"},
    {"FhAp2", "wmm", "endis_wl_wmm"},
    {"Guest2", "wmm", "endis_wl_wmm"},
    {"FhAp5", "wmm", "endis_wla_wmm"},
    {"Guest5", "wmm", "endis_wla_wmm"},
    {"FhAp2", "frag", "wl_frag"},
    {"Guest2", "frag", "wl_frag"},
    {"BhAp2", "frag", "wl_frag"},
    {"FhAp5", "frag", "wla_frag"},
    {"Guest5", "frag", "wla_frag"},
    {"BhAp5", "frag", "wla_frag"},
    {"FhAp2", "rts", "wl_rts"},
    {"Guest2", "rts", "wl_rts"},
    {"BhAp2", "rts", "wl_rts"},
    {"FhAp5", "rts", "wla_rts"},
    {"Guest5", "rts", "wla_rts"},
    {"BhAp5", "rts", "wla_rts"},
    {"FhAp2", "vht_11ng", "wl_vht_11ng"},
    {"BhSta2", "11ngvhtintop", "wl_vht_11ng"},
    {"BhAp2", "vie_flag", "vie_flag"},
    {"BhSta5", "vie_flag", "vie_flag"},
};

TEST_F(NvramWirelessInterfacesTest, OptionsCarryTheirKeysAsTheyAre)
{
    device_.be("Satellite");
    for (const Source &source : sources) {
        device_.set({{source.key, std::string("of ") + source.key}});
    }
    device_.translate();
    for (const Source &source : sources) {
        EXPECT_EQ(device_.option(source.section, source.option), std::string("of ") + source.key)
            << source.section << " " << source.option;
    }
}

TEST_F(NvramWirelessInterfacesTest, AnOptionWithoutItsKeyIsLeftOut)
{
    device_.be("Satellite");
    device_.translate();
    for (const Source &source : sources) {
        EXPECT_EQ(device_.option(source.section, source.option), "(none)")
            << source.section << " " << source.option;
    }
}

TEST_F(NvramWirelessInterfacesTest, StationsHaveNeitherInterfaceNameNorIsolationNorPin)
{
    device_.be("Satellite");
    for (const char *section : {"BhSta2", "BhSta5"}) {
        for (const char *option :
             {"ifname", "isolate", "wps_pin", "80211w", "enable", "preamble"}) {
            const std::string key = std::string(section) + "_" + option;
            EXPECT_EQ(with(key.c_str(), "1", section, option), "(none)") << key;
        }
    }
}

TEST_F(NvramWirelessInterfacesTest, OnlyMainFronthaulsHaveAPin)
{
    for (const char *section : {"Guest2", "Guest5", "BhAp2", "BhAp5"}) {
        const std::string key = std::string(section) + "_wps_pin";
        EXPECT_EQ(with(key.c_str(), "12345670", section, "wps_pin"), "(none)") << key;
    }
    EXPECT_EQ(device_.option("FhAp2", "wps_pin"), "(none)"); // the board's own PIN is not used
}

TEST_F(NvramWirelessInterfacesTest, ThePinOfAMainFronthaulIsWrittenWhateverItsWpsSwitchSays)
{
    device_.set({{"FhAp2_wps_pin", "1"}, {"FhAp5_wps_pin", "2"}, {"endis_wl_wps", "0"}});
    EXPECT_EQ(with("endis_wla_wps", "0", "FhAp2", "wps_pin"), "1");
    EXPECT_EQ(device_.option("FhAp5", "wps_pin"), "2");
}

TEST_F(NvramWirelessInterfacesTest, AMainFronthaulWithItsWpsSwitchOffHasNoWpsOptions)
{
    device_.describe("1");
    device_.set(
        {{"FhAp2_wps_pbc", "1"}, {"FhAp2_wps_config", "x"}, {"FhAp2_ap_setup_locked", "1"}});
    device_.set(
        {{"FhAp5_wps_pbc", "1"}, {"FhAp5_wps_config", "x"}, {"FhAp5_ap_setup_locked", "1"}});
    device_.set({{"Device_name", "router"}, {"endis_wl_wps", "0"}, {"endis_wla_wps", "1"}});
    device_.translate();
    for (const char *option :
         {"wps_pbc_enable", "wps_pbc", "wps_config", "ap_setup_locked", "wps_state",
          "wps_device_name", "wps_pbc_noclone", "wps_pbc_start_time", "wps_pbc_duration"}) {
        EXPECT_EQ(device_.option("FhAp2", option), "(none)") << option;
        EXPECT_NE(device_.option("FhAp5", option), "(none)") << option;
    }
    EXPECT_EQ(with("endis_wla_wps", "0", "FhAp5", "wps_state"), "(none)");
    EXPECT_EQ(device_.option("BhAp5", "wps_state"), "2");
}

TEST_F(NvramWirelessInterfacesTest, GuestsHaveNoWpsOptions)
{
    have_guests();
    device_.set({{"Guest2_wps_pbc", "1"}, {"Guest5_wps_config", "x"}});
    device_.translate();
    for (const char *section : {"Guest2", "Guest5"}) {
        for (const char *option : {"wps_pbc_enable", "wps_pbc", "wps_config", "ap_setup_locked",
                                   "wps_state", "wps_device_name"}) {
            EXPECT_EQ(device_.option(section, option), "(none)") << section << " " << option;
        }
    }
}

TEST_F(NvramWirelessInterfacesTest, AMainFronthaulThatIsConfiguredAlreadyHasStateOne)
{
    device_.set({{"wps_status", "1"}, {"wla_wps_status", "0"}});
    device_.translate();
    EXPECT_EQ(device_.option("FhAp2", "wps_state"), "1");
    EXPECT_EQ(device_.option("FhAp5", "wps_state"), "2");
    EXPECT_EQ(with("wla_wps_status", "1", "FhAp5", "wps_state"), "1");
    EXPECT_EQ(device_.option("BhAp5", "wps_state"), "2");
}

TEST_F(NvramWirelessInterfacesTest, TheWpsNameKeeps19CharactersOfTheDeviceName)
{
    EXPECT_EQ(with("Device_name", "a-name-of-more-than-19-bytes", "FhAp2", "wps_device_name"),
              "a-name-of-more-than(Wireless AP)");
    EXPECT_EQ(device_.option("BhAp2", "wps_device_name"), "(none)");
}

TEST_F(NvramWirelessInterfacesTest, GuestVlanHasPushButtonTimes)
{
    device_.be("Satellite");
    device_.describe("1");
    device_.translate();
    for (const char *section : {"FhAp2", "FhAp5"}) {
        EXPECT_EQ(device_.option(section, "wps_pbc_noclone"), "1");
        EXPECT_EQ(device_.option(section, "wps_pbc_start_time"), "0");
        EXPECT_EQ(device_.option(section, "wps_pbc_duration"), "60");
    }
    for (const char *section : {"BhAp2", "BhAp5", "BhSta2", "BhSta5"}) {
        EXPECT_EQ(device_.option(section, "wps_pbc_noclone"), "0");
        EXPECT_EQ(device_.option(section, "wps_pbc_start_time"), "61");
        EXPECT_EQ(device_.option(section, "wps_pbc_duration"), "120");
    }
    EXPECT_EQ(device_.option("BhSta2", "wps_pbc_enable"), "1");
    device_.describe("0");
    device_.translate();
    EXPECT_EQ(device_.option("FhAp2", "wps_pbc_duration"), "(none)");
    EXPECT_EQ(device_.option("BhSta2", "wps_pbc_enable"), "(none)");
}

TEST_F(NvramWirelessInterfacesTest, ANameIsHiddenWhenItsBroadcastKeyIsOne)
{
    device_.be("Satellite");
    have_guests();
    constexpr std::pair<const char *, const char *> keys[] = {
        {"FhAp2", "endis_ssid_broadcast"},
        {"FhAp5", "wla_endis_ssid_broadcast"},
        {"Guest2", "wlg1_endis_guestSSIDbro"},
        {"Guest5", "wla1_endis_guestSSIDbro"},
    };
    for (const auto &[section, key] : keys) {
        EXPECT_EQ(with(key, "1", section, "hidden"), "1") << key;
        EXPECT_EQ(with(key, "0", section, "hidden"), "0") << key;
        EXPECT_EQ(with(key, "", section, "hidden"), "0") << key;
    }
    for (const char *section : {"BhAp2", "BhAp5", "BhSta2", "BhSta5"}) {
        EXPECT_EQ(device_.option(section, "hidden"), "0") << section;
    }
}

TEST_F(NvramWirelessInterfacesTest, PreamblesAreAutoOffAndOn)
{
    have_guests();
    constexpr std::pair<const char *, const char *> keys[] = {
        {"FhAp2", "wl_plcphdr"},  {"Guest2", "wl_plcphdr"},  {"BhAp2", "wl_plcphdr"},
        {"FhAp5", "wla_plcphdr"}, {"Guest5", "wla_plcphdr"}, {"BhAp5", "wla_plcphdr"},
    };
    for (const auto &[section, key] : keys) {
        EXPECT_EQ(with(key, "0", section, "preamble"), "auto") << section;
        EXPECT_EQ(with(key, "1", section, "preamble"), "0") << section;
        EXPECT_EQ(with(key, "2", section, "preamble"), "1") << section;
        EXPECT_EQ(with(key, "3", section, "preamble"), "(none)") << section;
        EXPECT_EQ(with(key, "", section, "preamble"), "(none)") << section;
        EXPECT_EQ(device_.option(section, "short_preamble"), "(none)") << section;
    }
}

TEST_F(NvramWirelessInterfacesTest, CoexistenceIsTheReverseOfItsKey)
{
    have_guests();
    constexpr std::pair<const char *, const char *> keys[] = {
        {"FhAp2", "wl_disablecoext"},   {"Guest2", "wl_disablecoext"},
        {"BhAp2", "wl_disablecoext"},   {"FhAp5", "wla_disablecoext"},
        {"Guest5", "wla_disablecoext"}, {"BhAp5", "wla_disablecoext"},
    };
    for (const auto &[section, key] : keys) {
        EXPECT_EQ(with(key, "1", section, "obss_coex"), "0") << section;
        EXPECT_EQ(with(key, "0", section, "obss_coex"), "1") << section;
        EXPECT_EQ(with(key, "2", section, "obss_coex"), "(none)") << section;
        EXPECT_EQ(with(key, "", section, "obss_coex"), "(none)") << section;
        EXPECT_EQ(device_.option(section, "disablecoext"), "(none)") << section;
    }
}

constexpr std::pair<const char *, const char *> security_keys[] = {
    {"FhAp2", "wl_"},  {"Guest2", "wlg1_"}, {"BhAp2", "wlg_ap_bh_"},     {"BhSta2", "wlg_sta_"},
    {"FhAp5", "wla_"}, {"Guest5", "wla1_"}, {"BhAp5", "wla_2nd_ap_bh_"}, {"BhSta5", "wla_2nd_sta_"},
};

TEST_F(NvramWirelessInterfacesTest, SecurityTypesNameTheirPassphraseKey)
{
    device_.be("Satellite");
    have_guests();
    for (const auto &[section, prefix] : security_keys) {
        const std::string key = std::string(prefix) + "sectype";
        for (const char *type : {"wpa2", "wpas", "wpa3"}) {
            const std::string passphrase_key = std::string(prefix) + type + "_psk";
            device_.set({{passphrase_key.c_str(), std::string("secret ") + type}});
        }
        const struct {
            const char *value;
            const char *type;
            const char *passphrase;
        } rows[] = {
            {"1", "None", "(none)"},
            {"4", "WPA2-PSK", "secret wpa2"},
            {"5", "WPA-AUTO-PSK", "secret wpas"},
            {"7", "WPA3-Personal", "secret wpa3"},
            {"3", "(none)", "(none)"},
            {"", "(none)", "(none)"},
        };
        for (const auto &row : rows) {
            EXPECT_EQ(with(key.c_str(), row.value, section, "secu_type"), row.type) << key;
            EXPECT_EQ(device_.option(section, "passphrase"), row.passphrase) << key;
            EXPECT_EQ(device_.option(section, "encryption"), "(none)") << key;
            EXPECT_EQ(device_.option(section, "key"), "(none)") << key;
        }
    }
}

TEST_F(NvramWirelessInterfacesTest, APassphraseThatIsNotSetIsLeftOut)
{
    EXPECT_EQ(with("wl_sectype", "7", "FhAp2", "secu_type"), "WPA3-Personal");
    EXPECT_EQ(device_.option("FhAp2", "passphrase"), "(none)");
}

TEST_F(NvramWirelessInterfacesTest, OptionsOfAMainFronthaulComeInTheirOrder)
{
    device_.describe("0");
    for (const char *key : {"FhAp2_wps_pbc",   "FhAp2_wps_config", "FhAp2_ap_setup_locked",
                            "FhAp2_wps_pin",   "FhAp2_ifname",     "FhAp2_isolate",
                            "FhAp2_enable",    "wl_80211w",        "wl_ssid",
                            "wl_wpa3_psk",     "wl_rts",           "wl_frag",
                            "endis_wl_wmm",    "wlg_implicit_bf",  "FhAp2_vhtsubfee",
                            "FhAp2_vhtsubfer", "FhAp2_vhtmubfee",  "FhAp2_vhtmubfer",
                            "wl_vht_11ng",     "Device_name",      "endis_wl_wps"}) {
        device_.set({{key, "1"}});
    }
    device_.set({{"wl_sectype", "7"}, {"wl_plcphdr", "0"}, {"wl_disablecoext", "0"}});
    device_.translate();
    EXPECT_EQ(device_.options("FhAp2"), (Lines{"device=wifi0",
                                               "bridge=br-lan",
                                               "network=lan",
                                               "mode=ap",
                                               "vht_11ng=1",
                                               "11ngvhtintop=1",
                                               "ap_setup_locked=1",
                                               "wps_state=2",
                                               "wps_config=1",
                                               "wps_pbc=1",
                                               "wps_device_name=1(Wireless AP)",
                                               "wps_pbc_enable=1",
                                               "ssid=1",
                                               "secu_type=WPA3-Personal",
                                               "passphrase=1",
                                               "hidden=0",
                                               "doth=1",
                                               "obss_coex=1",
                                               "assocwar160=0",
                                               "rrm=1",
                                               "mcastenhance=2",
                                               "rts=1",
                                               "frag=1",
                                               "wmm=1",
                                               "preamble=auto",
                                               "isolate=1",
                                               "80211w=1",
                                               "enable=1",
                                               "bintval=100",
                                               "dtim_period=4",
                                               "ifname=1",
                                               "wps_pin=1",
                                               "vap_disable=0",
                                               "implicitbf=1",
                                               "vhtsubfee=1",
                                               "vhtsubfer=1",
                                               "vhtmubfee=1",
                                               "vhtmubfer=1"}));
}

TEST_F(NvramWirelessInterfacesTest, AGuestHasNoBridgeUnderGuestVlan)
{
    have_guests();
    device_.translate();
    EXPECT_EQ(
        device_.options("Guest5"),
        (Lines{"device=wifi1", "bridge=br-lan", "network=lan", "mode=ap", "wsplcd_unmanaged=1",
               "repacd_security_unmanaged=1", "hidden=0", "doth=1", "assocwar160=0",
               "lan_restricted=0", "enable=1", "bintval=100", "dtim_period=4", "vap_disable=0"}));
    device_.describe("1");
    device_.translate();
    EXPECT_EQ(device_.options("Guest5"),
              (Lines{"device=wifi1", "network=guest", "mode=ap", "athnewind=0",
                     "repacd_security_unmanaged=1", "hidden=0", "doth=1", "assocwar160=0", "rrm=1",
                     "enable=1", "bintval=100", "dtim_period=4", "vap_disable=0"}));
}

TEST_F(NvramWirelessInterfacesTest, ABackhaulAccessPointHasItsRoleOptions)
{
    device_.describe("1");
    device_.translate();
    EXPECT_EQ(device_.options("BhAp5"), (Lines{"device=wifi2",
                                               "network=backhaul",
                                               "mode=ap",
                                               "wds=1",
                                               "athnewind=1",
                                               "vap_ind=0",
                                               "backhaul=1",
                                               "backhaul_ap=1",
                                               "wsplcd_unmanaged=1",
                                               "repacd_security_unmanaged=1",
                                               "wps_state=2",
                                               "wps_pbc_noclone=0",
                                               "wps_pbc_start_time=61",
                                               "wps_pbc_duration=120",
                                               "hidden=0",
                                               "doth=1",
                                               "assocwar160=0",
                                               "rrm=1",
                                               "bintval=100",
                                               "dtim_period=4",
                                               "rept_spl=1"}));
}

TEST_F(NvramWirelessInterfacesTest, ABackhaulStationHasItsRoleOptionsAndBeamforming)
{
    device_.be("Satellite");
    device_.set({{"wlg_sta_sectype", "1"}});
    device_.translate();
    EXPECT_EQ(device_.options("BhSta2"),
              (Lines{"device=wifi0",
                     "bridge=br-lan",
                     "network=lan",
                     "mode=sta",
                     "wds=1",
                     "athnewind=1",
                     "vap_ind=0",
                     "backhaul=1",
                     "wsplcd_unmanaged=1",
                     "repacd_security_unmanaged=1",
                     "wps_state=2",
                     "wps_config=virtual_push_button physical_push_button",
                     "wps_pbc=1",
                     "secu_type=None",
                     "hidden=0",
                     "doth=1",
                     "assocwar160=0",
                     "bintval=100",
                     "dtim_period=4",
                     "implicitbf=0",
                     "vhtsubfee=1",
                     "vhtsubfer=1",
                     "vhtmubfee=1",
                     "vhtmubfer=1"}));
}

TEST_F(NvramWirelessInterfacesTest, AStationOfACentralAccessPointIsDisabled)
{
    device_.be("Satellite");
    device_.set_role("CAP");
    device_.translate();
    EXPECT_EQ(device_.option("BhSta2", "disabled"), "1");
    EXPECT_EQ(device_.option("BhSta5", "disabled"), "1");
    EXPECT_EQ(device_.option("BhAp2", "disabled"), "(none)");
    device_.set_role("NonCAP");
    device_.translate();
    EXPECT_EQ(device_.option("BhSta2", "disabled"), "(none)");
}

TEST_F(NvramWirelessInterfacesTest, FixedValuesGiveWayToTheSectionsOwnKeys)
{
    device_.be("Satellite");
    constexpr std::pair<const char *, const char *> fixed[] = {
        {"FhAp2", "bridge"},      {"FhAp2", "network"},     {"FhAp5", "mode"},
        {"BhAp2", "wds"},         {"BhAp2", "vap_ind"},     {"BhAp5", "backhaul_ap"},
        {"BhSta2", "wps_config"}, {"BhSta5", "wps_pbc"},    {"FhAp2", "wps_state"},
        {"FhAp2", "doth"},        {"FhAp2", "rrm"},         {"FhAp5", "mcastenhance"},
        {"BhSta2", "bintval"},    {"FhAp2", "dtim_period"}, {"BhSta2", "implicitbf"},
        {"BhSta5", "vhtmubfer"},
    };
    for (const auto &[section, option] : fixed) {
        const std::string key = std::string(section) + "_" + option;
        device_.set({{key.c_str(), "own " + key}});
    }
    device_.translate();
    for (const auto &[section, option] : fixed) {
        EXPECT_EQ(device_.option(section, option), "own " + std::string(section) + "_" + option);
    }
    EXPECT_EQ(device_.option("FhAp5", "dtim_period"), "4");
}

TEST_F(NvramWirelessInterfacesTest, OwnKeysOfASwitchCountOnlyWhileItIsOn)
{
    have_guests();
    device_.set({{"FhAp2_vap_disable", "own"}, {"FhAp5_assocwar160", "own"}});
    device_.set({{"Guest2_lan_restricted", "own"}});
    device_.translate();
    EXPECT_EQ(device_.option("FhAp2", "vap_disable"), "0");
    EXPECT_EQ(device_.option("FhAp5", "assocwar160"), "0");
    EXPECT_EQ(device_.option("Guest2", "lan_restricted"), "0");
    device_.set({{"endis_wl_radio", "0"}, {"wla_htmode", "HT160"}});
    device_.set({{"wlg1_endis_allow_see_and_access", "0"}});
    device_.translate();
    EXPECT_EQ(device_.option("FhAp2", "vap_disable"), "own");
    EXPECT_EQ(device_.option("FhAp5", "assocwar160"), "own");
    EXPECT_EQ(device_.option("Guest2", "lan_restricted"), "own");
}

TEST_F(NvramWirelessInterfacesTest, WideChannelsAreTold)
{
    EXPECT_EQ(with("wla_htmode", "HT160", "FhAp5", "assocwar160"), "1");
    EXPECT_EQ(device_.option("FhAp2", "assocwar160"), "0");
    EXPECT_EQ(with("wla_htmode", "HT80_80", "FhAp5", "assocwar160"), "1");
    EXPECT_EQ(with("wla_htmode", "HT80", "FhAp5", "assocwar160"), "0");
    EXPECT_EQ(with("wla_2nd_htmode", "HT160", "BhAp5", "assocwar160"), "1");
}

TEST_F(NvramWirelessInterfacesTest, GuestsMayBeKeptFromTheLan)
{
    have_guests();
    device_.set({{"wlg1_endis_allow_see_and_access", "0"}});
    EXPECT_EQ(with("wla1_endis_allow_see_and_access", "1", "Guest2", "lan_restricted"), "1");
    EXPECT_EQ(device_.option("Guest2", "isolate"), "0");
    EXPECT_EQ(device_.option("Guest2", "lan_ipaddr"), "192.168.1.1");
    EXPECT_EQ(device_.option("Guest5", "lan_restricted"), "0");
    EXPECT_EQ(device_.option("Guest5", "lan_ipaddr"), "(none)");
    device_.describe("1");
    device_.translate();
    EXPECT_EQ(device_.option("Guest2", "lan_restricted"), "(none)");
    EXPECT_EQ(device_.option("Guest2", "isolate"), "0");
}

TEST_F(NvramWirelessInterfacesTest, ASwitchedOffRadioDisablesItsAccessPointsUntilItIsOnAgain)
{
    have_guests();
    const auto disabled = [&] {
        device_.translate();
        Lines sections;
        for (const char *section : {"FhAp2", "Guest2", "FhAp5", "Guest5", "BhAp2", "BhAp5"}) {
            if (device_.option(section, "vap_disable") == "1") {
                sections.emplace_back(section);
            }
        }
        return sections;
    };
    device_.set({{"endis_wl_radio", "0"}, {"endis_wla_radio", "1"}});
    EXPECT_EQ(disabled(), (Lines{"FhAp2", "Guest2"}));
    device_.set({{"endis_wl_radio", "1"}, {"endis_wla_radio", "0"}});
    EXPECT_EQ(disabled(), (Lines{"FhAp5", "Guest5"}));
    device_.set({{"endis_wla_radio", "1"}, {"wl_hw_btn_state", "off"}});
    EXPECT_EQ(disabled(), (Lines{"FhAp2", "Guest2", "FhAp5", "Guest5"}));
    device_.set({{"wl_hw_btn_state", "on"}, {"wlg1_endis_guestNet", "2"}});
    EXPECT_EQ(disabled(), Lines{"Guest2"});
    device_.set({{"wlg1_endis_guestNet", "1"}, {"wla1_endis_guestNet", "2"}});
    EXPECT_EQ(disabled(), Lines{"Guest5"});
    // Nothing is ever deleted on this side, so what is on again must be told.
    EXPECT_EQ(device_.option("FhAp2", "vap_disable"), "0");
}

} // namespace
} // namespace qorcfg
