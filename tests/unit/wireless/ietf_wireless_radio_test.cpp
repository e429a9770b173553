#include "support/wireless_device.h"

#include "platform/config_value.h"
#include "wireless/wireless_update.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::WirelessDevice;
using Names = std::vector<std::string>;

class IetfWirelessRadioTest : public testing::Test {
protected:
    /// An option of the three radios, "|" between them.
    std::string all(const char *option) const
    {
        return device_.radio("wifi0", option) + "|" + device_.radio("wifi1", option) + "|" +
               device_.radio("wifi2", option);
    }
    /// The same after an update with these settings.
    std::string all(const char *option,
                    std::initializer_list<std::pair<const char *, std::string>> settings) const
    {
        device_.update(settings);
        return all(option);
    }
    /// The same of a model with these settings.
    static std::string all_with(const WirelessScalars &scalars, const char *option)
    {
        WirelessModel model({}, scalars);
        WirelessRun run(model);
        std::string values;
        for (const Radio &radio : radios) {
            add_ietf_radio_options(run, radio);
            run.nest(radio, radio.name);
            json_object *sections = json_get_member(run.document().get(), "wifi-device");
            values +=
                json_value_text(json_get_member(json_get_member(sections, radio.name), option)) +
                "|";
        }
        return values;
    }

    WirelessDevice device_;
};

TEST_F(IetfWirelessRadioTest, OptionsStandInTheirOrder)
{
    device_.update({{"bridge_mode", "0"},
                    {"wl_country", "10"},
                    {"wl_hw_btn_state", "on"},
                    {"wl_hidden_channel", "6"},
                    {"wl_tpscale", "100"},
                    {"wlg_bf", "1"},
                    {"wlg_implicit_bf", "1"},
                    {"wlg_mu_mimo", "1"}});
    EXPECT_EQ(device_.options("wifi-device", "wifi0"),
              (Names{"type", "band_type", "country", "ODM", "sys_bridge", "repacd_auto_create_vaps",
                     "nf_baseline", "obss_rssi_th", "obss_rx_rssi_th", "hw_btn_state", "macaddr",
                     "hwmode", "htmode", "channel", "tpscale", "bf", "implicitbf", "mu_mimo"}));
}

TEST_F(IetfWirelessRadioTest, OptionsStandInTheirOrderWithAGuestVlanToo)
{
    device_.describe("1", {"wifi0", "wifi1", "wifi2"}, {{"5G_2nd", "backhaul-ap_raw", "ath2"}});
    device_.update();
    EXPECT_EQ(device_.options("wifi-device", "wifi2"),
              (Names{"type", "band_type", "ODM", "repacd_auto_create_vaps", "nf_baseline",
                     "macaddr", "hwmode", "htmode", "wsplcd_unmanaged", "ul_hyst", "no_vlan"}));
}

TEST_F(IetfWirelessRadioTest, TheDriverTypeFollowsTheBoard)
{
    EXPECT_EQ(all("type"), "(none)|(none)|(none)");
    EXPECT_EQ(all("type", {}), "qcawificfg80211|qcawificfg80211|qcawificfg80211");
    device_.write("/tmp/etc/config/qcacfg80211",
                  "config qcacfg80211 'config'\n\toption enable '0'");
    EXPECT_EQ(all("type", {}), "qcawifi|qcawifi|qcawifi");
}

TEST_F(IetfWirelessRadioTest, FixedOptionsAndThoseOfTheModel)
{
    device_.update();
    EXPECT_EQ(all("band_type"), "2.4G|5G|5G");
    EXPECT_EQ(all("ODM"), "qor|qor|qor");
    EXPECT_EQ(all("sys_bridge"), "br-lan|br-lan|br-lan");
    EXPECT_EQ(all("repacd_auto_create_vaps"), "0|0|0");
    EXPECT_EQ(all("nf_baseline"), "-102|-104|-104");
    EXPECT_EQ(all("macaddr"), "00:00:5E:00:53:12|00:00:5E:00:53:13|00:00:5E:00:53:14");
}

TEST_F(IetfWirelessRadioTest, OneRegionGivesTheCountryOfAllRadios)
{
    EXPECT_EQ(all("country", {{"wl_country", "4"}, {"wla_country", "10"}}), "276|276|276");
    EXPECT_EQ(all("country", {{"wl_country", "15"}}), "(none)|(none)|(none)");
    EXPECT_EQ(all("country", {{"wl_country", ""}}), "(none)|(none)|(none)");
}

TEST_F(IetfWirelessRadioTest, ObssThresholdsAreForTheLowBandOutsideBridgeMode)
{
    EXPECT_EQ(all("obss_rssi_th", {{"bridge_mode", "0"}}), "25|(none)|(none)");
    EXPECT_EQ(all("obss_rx_rssi_th"), "20|(none)|(none)");
    EXPECT_EQ(all("obss_rssi_th", {{"bridge_mode", ""}}), "(none)|(none)|(none)");
    EXPECT_EQ(all("obss_rssi_th", {{"bridge_mode", "2"}}), "(none)|(none)|(none)");
}

TEST_F(IetfWirelessRadioTest, TheButtonStateIsTheStoresForTwoRadios)
{
    EXPECT_EQ(all("hw_btn_state", {{"wl_hw_btn_state", "off"}}), "off|off|(none)");
    EXPECT_EQ(all("hw_btn_state", {{"wl_hw_btn_state", ""}}), "(none)|(none)|(none)");
}

TEST_F(IetfWirelessRadioTest, InBridgeModeTheButtonIsOn)
{
    device_.update(
        {{"wl_hw_btn_state", "off"}, {"bridge_mode", "1"}, {"bridge_band_choose", "5g"}});
    EXPECT_EQ(device_.radio("wifi1", "hw_btn_state"), "on");
}

TEST_F(IetfWirelessRadioTest, WithOneBandAbsentTheBandsFlagsGiveTheButtonState)
{
    device_.set({{"wl_hw_btn_state", "on"}});
    const auto state_with = [&](WirelessScalars scalars) {
        return all_with(scalars, "hw_btn_state");
    };
    EXPECT_EQ(state_with({.wlg_exist = false, .wla_if_onoff = false}), "on|off||");
    EXPECT_EQ(state_with({.wla_exist = false, .wlg_if_onoff = false}), "off|on||");
    EXPECT_EQ(state_with({.wlg_if_onoff = false, .wla_if_onoff = false}), "on|on||");
}

TEST_F(IetfWirelessRadioTest, EachRadioHasANoiseFloorOfItsOwn)
{
    EXPECT_EQ(all_with({.g_nf_baseline = "-1", .a_nf_baseline = "-2", .a2_nf_baseline = "-3"},
                       "nf_baseline"),
              "-1|-2|-3|");
}

TEST_F(IetfWirelessRadioTest, ModesHaveDefaults)
{
    device_.update();
    EXPECT_EQ(all("hwmode"), "11ng|11ac|11ac");
    EXPECT_EQ(all("htmode"), "HT40|HT80|HT80");
    device_.update({{"wl_hwmode", "a"},
                    {"wla_hwmode", "b"},
                    {"wla_2nd_hwmode", "c"},
                    {"wl_htmode", "d"},
                    {"wla_htmode", "e"},
                    {"wla_2nd_htmode", "f"}});
    EXPECT_EQ(all("hwmode"), "a|b|c");
    EXPECT_EQ(all("htmode"), "d|e|f");
}

TEST_F(IetfWirelessRadioTest, ChannelAndBeamformingHaveTheRadiosKeys)
{
    device_.update({{"wl_hidden_channel", "6"},
                    {"wla_hidden_channel", "36"},
                    {"wla_2nd_hidden_channel", "0"},
                    {"wlg_bf", "1"},
                    {"wla_bf", "2"},
                    {"wla_2nd_bf", "3"},
                    {"wlg_implicit_bf", "4"},
                    {"wla_implicit_bf", "5"},
                    {"wla_2nd_implicit_bf", "6"},
                    {"wlg_mu_mimo", "7"},
                    {"wla_mu_mimo", "8"},
                    {"wla_2nd_mu_mimo", "9"}});
    EXPECT_EQ(all("channel"), "6|36|0");
    EXPECT_EQ(all("bf"), "1|2|3");
    EXPECT_EQ(all("implicitbf"), "4|5|6");
    EXPECT_EQ(all("mu_mimo"), "7|8|9");
}

TEST_F(IetfWirelessRadioTest, TransmitPowerIsMappedAndBothHighRadiosShareAKey)
{
    device_.set({{"wla_2nd_tpscale", "25"}});
    EXPECT_EQ(all("tpscale", {{"wl_tpscale", "100"}, {"wla_tpscale", "75"}}), "0|1|1");
    EXPECT_EQ(all("tpscale", {{"wl_tpscale", "50"}, {"wla_tpscale", "25"}}), "2|3|3");
    EXPECT_EQ(all("tpscale", {{"wl_tpscale", "60"}, {"wla_tpscale", ""}}), "(none)|(none)|(none)");
}

TEST_F(IetfWirelessRadioTest, AGuestVlanTakesTheBridgeAndMarksRadios)
{
    device_.with_guest_vlan();
    device_.update();
    EXPECT_EQ(all("sys_bridge"), "(none)|(none)|(none)");
    EXPECT_EQ(all("wsplcd_unmanaged"), "(none)|(none)|1");
    EXPECT_EQ(all("ul_hyst"), "3|(none)|3");
    EXPECT_EQ(all("no_vlan"), "1|1|1");
}

TEST_F(IetfWirelessRadioTest, OnlyMainFronthaulsAndBackhaulAccessPointsTellOnTheMarks)
{
    device_.describe("1", {"wifi0", "wifi1", "wifi2"},
                     {{"2.4G", "guest", "ath02"},
                      {"2.4G", "backhaul-sta_raw", "ath03"},
                      {"5G", "backhaul-ap_raw", "ath11"},
                      {"5G_2nd", "primary", "ath2"}});
    device_.update();
    EXPECT_EQ(all("wsplcd_unmanaged"), "1|1|(none)");
    EXPECT_EQ(all("ul_hyst"), "(none)|3|(none)");
}

TEST_F(IetfWirelessRadioTest, WithoutAGuestVlanRadiosAreNotMarked)
{
    device_.describe("0", {"wifi0", "wifi1", "wifi2"}, {{"2.4G", "backhaul-ap_raw", "ath01"}});
    device_.update();
    EXPECT_EQ(all("wsplcd_unmanaged"), "(none)|(none)|(none)");
    EXPECT_EQ(all("ul_hyst"), "(none)|(none)|(none)");
    EXPECT_EQ(all("no_vlan"), "(none)|(none)|(none)");
}

} // namespace
} // namespace qorcfg
