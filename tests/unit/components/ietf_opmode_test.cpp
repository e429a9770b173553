#include "components/components.h"

#include "core/base/globals.h"
#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfOpmodeTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_opmode),
              (Lines{"ap_mode", "ap_ipaddr", "ap_netmask", "ap_gateway", "ap_ether_dns1",
                     "ap_ether_dns2"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing opmode");
}

TEST(IetfOpmodeTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_opmode.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  opmode"});
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

TEST(IetfOpmodeTest, EnablingWritesTheFactoryFlagsBeforeAnyCallbackRuns)
{
    const DeviceRoot device;
    device.set({{"factory_mode", "1"}, {"factory_tt3", "1"}, {"ota", "2"}, {"cal", "done"}});
    qorcfg_change_is_trigger = 1;
    device.enable(ietf_opmode);
    EXPECT_EQ(device.startup_lines("opmode", "factory"),
              (Lines{"set opmode.factory=facotry", "set opmode.factory.mode=enable",
                     "set opmode.factory.tt3=1", "set opmode.factory.ota=2",
                     "set opmode.factory.cal=done"}));
    EXPECT_EQ(device.document("opmode", "operate"), "");
}

TEST(IetfOpmodeTest, AnythingButOneIsADisabledFactoryMode)
{
    const DeviceRoot device;
    device.set({{"factory_mode", "0"}, {"factory_tt3", "2"}});
    device.enable(ietf_opmode);
    EXPECT_EQ(device.document("opmode", "factory"),
              R"({"facotry":{"factory":{"mode":"disable","tt3":"0"}}})");
}

TEST(IetfOpmodeTest, OutsideTheStartUpPassTheFactoryFlagsAreThoseOfJobZero)
{
    const DeviceRoot device;
    device.enable(ietf_opmode);
    EXPECT_EQ(device.lines(0, "opmode", "factory"),
              (Lines{"set opmode.factory=facotry", "set opmode.factory.mode=disable",
                     "set opmode.factory.tt3=0"}));
}

std::string operating_mode(const DeviceRoot &device)
{
    device.start_up(ietf_opmode);
    return device.document("opmode", "operate");
}

TEST(IetfOpmodeTest, ARouterHasTheModeAlone)
{
    const DeviceRoot device;
    device.set({{"ap_mode", "0"}, {"ap_ether_ip_assign", "0"}, {"ap_ipaddr", "192.0.2.2"}});
    EXPECT_EQ(operating_mode(device), R"({"operate":{"operate":{"mode":"normal"}}})");
    EXPECT_EQ(device.log().back(), " update opmode");
}

TEST(IetfOpmodeTest, AnAccessPointWithDynamicAddressingHasTheModeAlone)
{
    const DeviceRoot device;
    for (const char *assignment : {"1", "", "00"}) {
        device.set(
            {{"ap_mode", "1"}, {"ap_ether_ip_assign", assignment}, {"ap_ipaddr", "192.0.2.2"}});
        EXPECT_EQ(operating_mode(device), R"({"operate":{"operate":{"mode":"apmode"}}})");
    }
}

TEST(IetfOpmodeTest, AnAccessPointWithStaticAddressingHasItsAddresses)
{
    const DeviceRoot device;
    device.set({{"ap_mode", "1"},
                {"ap_ether_ip_assign", "0"},
                {"ap_ipaddr", "192.0.2.2"},
                {"ap_netmask", "255.255.255.0"},
                {"ap_gateway", "192.0.2.1"},
                {"ap_ether_dns1", "192.0.2.53"},
                {"ap_ether_dns2", "192.0.2.54"}});
    EXPECT_EQ(operating_mode(device),
              R"({"operate":{"operate":{"mode":"apmode","ipaddr":"192.0.2.2",)"
              R"("netmask":"255.255.255.0","gateway":"192.0.2.1",)"
              R"("dns":"192.0.2.53 192.0.2.54"}}})");
}

TEST(IetfOpmodeTest, AMissingDnsServerLeavesItsBlank)
{
    const DeviceRoot device;
    device.set({{"ap_mode", "1"}, {"ap_ether_ip_assign", "0"}, {"ap_ether_dns1", "192.0.2.53"}});
    EXPECT_EQ(operating_mode(device),
              R"({"operate":{"operate":{"mode":"apmode","dns":"192.0.2.53 "}}})");
    device.set({{"ap_ether_dns1", ""}, {"ap_ether_dns2", "192.0.2.54"}});
    EXPECT_EQ(operating_mode(device),
              R"({"operate":{"operate":{"mode":"apmode","dns":" 192.0.2.54"}}})");
}

TEST(IetfOpmodeTest, TheDnsServersShare63Characters)
{
    const DeviceRoot device;
    device.set({{"ap_mode", "1"},
                {"ap_ether_ip_assign", "0"},
                {"ap_ether_dns1", std::string(40, 'a')},
                {"ap_ether_dns2", std::string(40, 'b')}});
    EXPECT_EQ(operating_mode(device), R"({"operate":{"operate":{"mode":"apmode","dns":")" +
                                          std::string(40, 'a') + " " + std::string(22, 'b') +
                                          R"("}}})");
}

TEST(IetfOpmodeTest, AddressingAloneTriggersNothingAndTheModeRewritesOnlyItsSection)
{
    const DeviceRoot device;
    device.start_up(ietf_opmode);
    device.set({{"ap_mode", "1"}, {"ap_ether_ip_assign", "0"}});
    device.apply({"ap_ether_ip_assign"}, 1);
    EXPECT_FALSE(device.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.opmode.operate"));
    device.apply({"ap_mode"}, 2);
    EXPECT_EQ(device.lines(2, "opmode", "operate"),
              (Lines{"delete opmode.operate", "set opmode.operate=operate",
                     "set opmode.operate.mode=apmode", "set opmode.operate.dns= "}));
    EXPECT_FALSE(device.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update2.opmode.factory"));
}

TEST(IetfOpmodeTest, ASatelliteWritesToo)
{
    const DeviceRoot device;
    device.be_base(false);
    EXPECT_EQ(device.run_update(ietf_opmode, 1), 0);
    EXPECT_EQ(device.document("opmode", "operate"), R"({"operate":{"operate":{"mode":"normal"}}})");
}

} // namespace
} // namespace qorcfg
