#include "platform/key_id.h"
#include "support/nvram_wireless_device.h"
#include "wireless/nvram_wireless.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

constexpr const char *flag_file = "/tmp/cache/wireless/soap_sync_flag";

class NvramWirelessTest : public testing::Test {
protected:
    /// The keys of one callback's subscriptions, which follow each other in the log.
    Lines keys(std::size_t begin, std::size_t count)
    {
        const Lines all = device_.subscribed_keys(nvram_wireless);
        const auto first = all.begin() + static_cast<std::ptrdiff_t>(begin);
        return {first, first + static_cast<std::ptrdiff_t>(count)};
    }
    /// Makes the device record its install events.
    void record_events() const
    {
        device_.write_program("/usr/sbin/ra_installevent",
                              "#!/bin/sh\necho \"$*\" >>\"" + device_.path("/tmp/events") + "\"\n");
    }
    Lines events() const { return test::split_lines(device_.read("/tmp/events")); }
    void run(const std::vector<std::string> &changed)
    {
        device_.enable(nvram_wireless);
        device_.clear_log();
        device_.apply(changed, 1);
    }

    test::NvramWirelessDevice device_;
};

TEST_F(NvramWirelessTest, MeshLinkKeyIsSubscribedFirst)
{
    EXPECT_EQ(keys(0, 1), Lines{"repacd_Daisy_Chain_Enable"});
    EXPECT_EQ(device_.log().front(), "init() - Initializing wireless");
}

TEST_F(NvramWirelessTest, TheFullUpdateIsSubscribedToEverySettingInOrder)
{
    EXPECT_EQ(keys(1, 102), (Lines{"atf_enable",
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
                                   "wl_wpa3_psk",
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
                                   "wla_wpa3_psk",
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
                                   "wlg1_wpa3_psk",
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
                                   "wla1_wpa3_psk",
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
                                   "wlg_ap_bh_wpa3_psk",
                                   "wlg_ap_bh_wpas_psk",
                                   "wla_2nd_ap_bh_ssid",
                                   "wla_2nd_ap_bh_sectype",
                                   "wla_2nd_ap_bh_wpa2_psk",
                                   "wla_2nd_ap_bh_wpa3_psk",
                                   "wla_2nd_ap_bh_wpas_psk",
                                   "wlg_sta_ssid",
                                   "wlg_sta_sectype",
                                   "wlg_sta_wpa2_psk",
                                   "wlg_sta_wpa3_psk",
                                   "wlg_sta_wpas_psk",
                                   "wla_2nd_sta_ssid",
                                   "wla_2nd_sta_sectype",
                                   "wla_2nd_sta_wpa2_psk",
                                   "wla_2nd_sta_wpa3_psk"}));
}

TEST_F(NvramWirelessTest, SteeringFlagAndEventKeysFollow)
{
    EXPECT_EQ(keys(103, 1), Lines{"lbd_RSSISteeringPoint_UG"});
    EXPECT_EQ(
        keys(104, 12),
        (Lines{"wl_tpscale", "wl_country", "wla_tpscale", "wla_2nd_tpscale", "wl_plcphdr",
               "wla_plcphdr", "wlg_ap_bh_wpa2_psk", "wlg_ap_bh_wpa3_psk", "wlg_ap_bh_wpas_psk",
               "wla_2nd_ap_bh_wpa2_psk", "wla_2nd_ap_bh_wpa3_psk", "wla_2nd_ap_bh_wpas_psk"}));
    EXPECT_EQ(keys(116, 5),
              (Lines{"wl_ssid", "wl_sectype", "wl_wpa2_psk", "wl_wpa3_psk", "wl_wpas_psk"}));
    EXPECT_EQ(device_.subscribed_keys(nvram_wireless).size(), 121U);
    EXPECT_NE(test::split_lines(device_.read("/dev/console"))[0].find("[nvram_wireless "),
              std::string::npos);
}

TEST_F(NvramWirelessTest, WhatSatellitesMirrorIsSubscribedInOrder)
{
    nvram_wireless.soap_init();
    std::vector<std::int32_t> ids;
    for (const KeyRecord &record : registry().records()) {
        EXPECT_EQ(record.normal.size(), 0U);
        EXPECT_EQ(record.soap.size(), 1U);
        ids.push_back(record.key_id);
    }
    std::vector<std::int32_t> wanted;
    for (const char *key :
         {"wl_tpscale", "wl_country", "wla_country", "wla_tpscale", "wla_2nd_tpscale", "wl_plcphdr",
          "wla_plcphdr", "wlg_ap_bh_wpa2_psk", "wlg_ap_bh_wpa3_psk", "wlg_ap_bh_wpas_psk",
          "wla_2nd_ap_bh_wpa2_psk", "wla_2nd_ap_bh_wpa3_psk", "wla_2nd_ap_bh_wpas_psk"}) {
        wanted.push_back(config_key_id(key));
    }
    EXPECT_EQ(ids, wanted);
}

TEST_F(NvramWirelessTest, InitAndRegisterAreLogged)
{
    nvram_wireless.register_();
    device_.clear_log();
    nvram_wireless.soap_init();
    EXPECT_EQ(device_.log().front(), "init() - Initializing soap wireless");
    device_.clear_log();
    nvram_wireless.register_();
    EXPECT_EQ(device_.log(), Lines{"register() -  nvram wireless"});
}

TEST_F(NvramWirelessTest, AChangedKeyRunsItsCallbackWhichLogsItsName)
{
    const std::pair<const char *, const char *> rows[] = {
        {"wla_2nd_sta_wpa3_psk", " update all wireless"},
        {"repacd_Daisy_Chain_Enable", " update repacd nvram wireless"},
        {"lbd_RSSISteeringPoint_UG", " update lbd nvram wireless"},
    };
    for (const auto &[key, text] : rows) {
        run({key});
        EXPECT_EQ(device_.log().at(1), text) << key; // behind the job's own line
    }
    run({"wl_ssid"});
    EXPECT_EQ(device_.log().at(1), " update all wireless");
    EXPECT_EQ(device_.log().back(), " update wirelessi RA wifi change");
}

TEST_F(NvramWirelessTest, UpdatesReturnOne)
{
    device_.enable(nvram_wireless);
    for (const char *key :
         {"repacd_Daisy_Chain_Enable", "atf_enable", "lbd_RSSISteeringPoint_UG"}) {
        EXPECT_EQ(device_.callback_of(key)(1), 1) << key;
    }
}

TEST_F(NvramWirelessTest, SteeringAndMeshLinkDocumentsAreEmpty)
{
    device_.set({{"lbd_RSSISteeringPoint_UG", "20"}, {"repacd_Daisy_Chain_Enable", "1"}});
    device_.translate();
    EXPECT_EQ(device_.nvram_document("lbd"), "{}");
    EXPECT_EQ(device_.nvram_document("repacd"), "{}");
    EXPECT_EQ(device_.nvram_startup_lines("lbd"), Lines{});
    EXPECT_EQ(device_.nvram_startup_lines("repacd"), Lines{});
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/nvramcfg.d"),
              (Lines{"nvram-lbd.json", "nvram-repacd.json", "nvram-wireless.json",
                     "nvram_update.lbd", "nvram_update.repacd", "nvram_update.wireless"}));
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

TEST_F(NvramWirelessTest, AJobCarriesOnlyWhatChanged)
{
    device_.set({{"wl_ssid", "old"}});
    device_.translate();
    device_.set({{"wl_ssid", "new"}, {"wl_country", "4"}});
    device_.apply({"wl_ssid"}, 3);
    EXPECT_EQ(device_.nvram_lines(3, "wireless"),
              (Lines{"set wifi-device.radio2g.country=GER", "set wifi-device.radio5gl.country=GER",
                     "set wifi-device.radio5gh.country=GER", "set wifi-iface.FhAp2.ssid=new"}));
}

TEST_F(NvramWirelessTest, AChangeOfAFlagKeyTouchesTheFlagFile)
{
    for (const char *key :
         {"wl_tpscale", "wl_country", "wla_tpscale", "wla_2nd_tpscale", "wl_plcphdr", "wla_plcphdr",
          "wlg_ap_bh_wpa2_psk", "wlg_ap_bh_wpa3_psk", "wlg_ap_bh_wpas_psk",
          "wla_2nd_ap_bh_wpa2_psk", "wla_2nd_ap_bh_wpa3_psk", "wla_2nd_ap_bh_wpas_psk"}) {
        run({key});
        EXPECT_TRUE(device_.exists(flag_file)) << key;
        std::filesystem::remove(device_.path(flag_file));
    }
    run({"wl_ssid", "wl_hidden_channel"});
    EXPECT_FALSE(device_.exists(flag_file));
}

TEST_F(NvramWirelessTest, TheFlagCallbackReturnsTheResultOfItsCommand)
{
    device_.enable(nvram_wireless);
    device_.clear_log();
    std::filesystem::remove(device_.path("/tmp/cache/wireless"));
    EXPECT_NE(device_.callback_of("wla_2nd_tpscale")(1), 0);
    std::filesystem::create_directory(device_.path("/tmp/cache/wireless"));
    EXPECT_EQ(device_.callback_of("wla_2nd_tpscale")(1), 0);
    EXPECT_EQ(device_.log(), Lines{});
}

TEST_F(NvramWirelessTest, TheSecondRadiosPowerTouchesTheFlagAndTellsNobody)
{
    run({"wla_2nd_tpscale"});
    EXPECT_TRUE(device_.exists(flag_file));
    EXPECT_EQ(device_.killall_calls(), Lines{});
}

TEST_F(NvramWirelessTest, AnInstallEventIsRaisedOncePerJobWhileDnsIsHijacked)
{
    record_events();
    device_.set({{"dns_hijack", "0"}});
    run({"wl_ssid"});
    EXPECT_EQ(events(), Lines{});
    device_.set({{"dns_hijack", "1"}});
    run({"wl_ssid", "wl_sectype", "wl_wpa2_psk", "wl_wpa3_psk", "wl_wpas_psk"});
    EXPECT_EQ(events(), Lines{"wifichange"});
    run({"wl_ssid"});
    EXPECT_EQ(events().size(), 2U);
    run({"wla_ssid"});
    EXPECT_EQ(events().size(), 2U);
}

TEST_F(NvramWirelessTest, TheEventCallbackReturnsItsCommandsResult)
{
    device_.enable(nvram_wireless);
    const UpdateCallback callback = device_.callbacks_of("wl_ssid").back();
    EXPECT_EQ(callback(1), 0);
    device_.set({{"dns_hijack", "1"}});
    device_.write_program("/usr/sbin/ra_installevent", "#!/bin/sh\nexit 7\n");
    EXPECT_EQ(callback(1), 7);
}

TEST_F(NvramWirelessTest, APackageThatCannotBeLoadedEndsTheDaemon)
{
    std::filesystem::remove(device_.path("/tmp/etc/config/wireless"));
    device_.enable(nvram_wireless);
    EXPECT_EXIT(device_.callback_of("atf_enable")(1), testing::ExitedWithCode(1),
                "Can't load wireless package");
}

TEST_F(NvramWirelessTest, LiveSectionsHaveTheSectionNamesOfTheDocument)
{
    device_.set({{"wla1_endis_guestNet", "0"}});
    device_.translate();
    EXPECT_EQ(device_.live_sections(),
              (Lines{"qcawifi=qcawifi", "radio2g=wifi-device", "radio5gl=wifi-device",
                     "radio5gh=wifi-device", "FhAp2=wifi-iface", "Guest2=wifi-iface",
                     "FhAp5=wifi-iface", "BhAp2=wifi-iface", "BhAp5=wifi-iface"}));
}

} // namespace
} // namespace qorcfg
