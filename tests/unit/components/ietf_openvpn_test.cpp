#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfOpenvpnTest, EachKeyIsAnnouncedAndThenSubscribed)
{
    const DeviceRoot device;
    const Lines keys{"ap_mode",           "vpn_enable",        "vpn_serv_type",  "vpn_serv_port",
                     "tun_vpn_serv_type", "tun_vpn_serv_port", "vpn_access_mode"};
    EXPECT_EQ(device.subscribed_keys(ietf_openvpn), keys);
    const Lines log = device.log();
    ASSERT_EQ(log.size(), 1 + 2 * keys.size());
    EXPECT_EQ(log[0], "init() - Initializing openvpn");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(log[1 + 2 * i], "ietf_openvpn subscribe for config " + keys[i]);
        EXPECT_EQ(log[2 + 2 * i].rfind("Subscribe name " + keys[i] + " spoint ", 0), 0U);
    }
}

TEST(IetfOpenvpnTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_openvpn.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  openvpn"});
}

void set_servers(const DeviceRoot &device)
{
    device.set({{"vpn_enable", "1"},
                {"vpn_serv_type", "udp"},
                {"vpn_serv_port", "12974"},
                {"tun_vpn_serv_type", "tcp"},
                {"tun_vpn_serv_port", "12973"},
                {"vpn_access_mode", "auto"}});
}

TEST(IetfOpenvpnTest, BothServersShareTheSwitchAndTheAccessMode)
{
    const DeviceRoot device;
    set_servers(device);
    device.start_up(ietf_openvpn);
    EXPECT_EQ(device.document("openvpn", "openvpn"),
              R"({"openvpn":{"tap_server":{"enabled":"1","proto":"udp","port":"12974",)"
              R"("access_mode":"auto"},"tun_server":{"enabled":"1","proto":"tcp",)"
              R"("port":"12973","access_mode":"auto"}}})");
}

TEST(IetfOpenvpnTest, TheDocumentIsLoggedBehindTheUpdateLine)
{
    const DeviceRoot device;
    device.set({{"vpn_enable", "1"}, {"vpn_access_mode", "a/b"}});
    device.enable(ietf_openvpn);
    device.clear_log();
    device.start_up();
    const Lines log = device.log();
    ASSERT_GE(log.size(), 2U);
    EXPECT_EQ(log[log.size() - 2], " update openvpn");
    EXPECT_EQ(log.back(), R"(openvpn json output {"openvpn":{"tap_server":{"enabled":"1",)"
                          R"("access_mode":"a\/b"},"tun_server":{"enabled":"1",)"
                          R"("access_mode":"a\/b"}}})");
}

TEST(IetfOpenvpnTest, ValuesAreCutToTheirFields)
{
    const DeviceRoot device;
    device.set({{"vpn_enable", "12"},
                {"vpn_serv_type", "udp46"},
                {"vpn_serv_port", "123456"},
                {"tun_vpn_serv_type", "tcp46"},
                {"tun_vpn_serv_port", "654321"},
                {"vpn_access_mode", "fully"}});
    device.start_up(ietf_openvpn);
    EXPECT_EQ(device.document("openvpn", "openvpn"),
              R"({"openvpn":{"tap_server":{"enabled":"1","proto":"udp4","port":"12345",)"
              R"("access_mode":"full"},"tun_server":{"enabled":"1","proto":"tcp4",)"
              R"("port":"65432","access_mode":"full"}}})");
}

TEST(IetfOpenvpnTest, AnAccessPointServesNobodyWhateverTheSwitchSays)
{
    const DeviceRoot device;
    set_servers(device);
    device.start_up(ietf_openvpn);
    device.set({{"ap_mode", "1"}});
    device.apply({"ap_mode"}, 1);
    EXPECT_EQ(
        device.lines(1, "openvpn", "openvpn"),
        (Lines{"delete openvpn.tap_server", "delete openvpn.tun_server",
               "set openvpn.tap_server=openvpn", "set openvpn.tap_server.enabled=0",
               "set openvpn.tap_server.proto=udp", "set openvpn.tap_server.port=12974",
               "set openvpn.tap_server.access_mode=auto", "set openvpn.tun_server=openvpn",
               "set openvpn.tun_server.enabled=0", "set openvpn.tun_server.proto=tcp",
               "set openvpn.tun_server.port=12973", "set openvpn.tun_server.access_mode=auto"}));
}

TEST(IetfOpenvpnTest, WithoutSettingsBothSectionsAreEmpty)
{
    const DeviceRoot device;
    device.be_base(false);
    EXPECT_EQ(device.run_update(ietf_openvpn, 1), 0);
    EXPECT_EQ(device.document("openvpn", "openvpn"),
              R"({"openvpn":{"tap_server":{},"tun_server":{}}})");
}

} // namespace
} // namespace qorcfg
