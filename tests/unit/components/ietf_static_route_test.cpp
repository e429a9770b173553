#include "components/components.h"

#include "engine/systeminfo.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

const std::string no_routes = R"({"route":[{"alias-name":true}]})";

class IetfStaticRouteTest : public testing::Test {
protected:
    IetfStaticRouteTest()
    {
        device_.set({{"lan_ipaddr", "192.168.1.1"}, {"lan_netmask", "255.255.255.0"}});
    }
    std::string document()
    {
        device_.start_up(ietf_static_route);
        return device_.document("network", "static_route");
    }
    /// The interface of the only route.
    std::string interface()
    {
        constexpr std::string_view begin = R"("interface":")";
        const std::string text = document();
        const std::size_t place = text.find(begin) + begin.size();
        return text.substr(place, text.find('"', place) - place);
    }
    std::string interface_behind(const std::string &gateway, const char *wan_proto)
    {
        device_.set({{"static_router1", "r1 0 1 10.0.0.0 255.0.0.0 " + gateway + " 2"},
                     {"wan_proto", wan_proto}});
        return interface();
    }

    const DeviceRoot device_;
};

TEST_F(IetfStaticRouteTest, KeysAreSubscribedInOrderAndTheUpdateLogsAnothersLine)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_static_route),
              (Lines{"ap_mode", "static_router", "lan_ipaddr", "lan_netmask", "wan_proto"}));
    EXPECT_EQ(device_.log()[0], "init() - Initializing static route");
    device_.start_up();
    EXPECT_EQ(device_.log().back(), " update igmpproxy");
    ietf_static_route.register_();
    EXPECT_EQ(device_.log().back(), "register() -  static route");
}

TEST_F(IetfStaticRouteTest, WithoutRoutesTheListHoldsOnlyItsMarker)
{
    EXPECT_EQ(document(), no_routes);
}

TEST_F(IetfStaticRouteTest, AGatewayInTheLanGivesTheLanInterface)
{
    device_.set({{"static_router1", "r1 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2"}});
    EXPECT_EQ(document(), R"({"route":[{"alias-name":true},{"name":"r1","private":"0",)"
                          R"("target":"10.0.0.0","netmask":"255.0.0.0",)"
                          R"("gateway":"192.168.1.254","interface":"lan","metric":"2"}]})");
}

TEST_F(IetfStaticRouteTest, AnyOtherGatewayGivesTheInterfaceOfTheWanProtocol)
{
    EXPECT_EQ(interface_behind("10.1.1.1", "pppoe"), "wan1p");
    EXPECT_EQ(interface_behind("10.1.1.1", "l2tp"), "wan1p");
    EXPECT_EQ(interface_behind("10.1.1.1", ""), "wan1p");
    EXPECT_EQ(interface_behind("10.1.1.1", "dhcp"), "wan");
    EXPECT_EQ(interface_behind("10.1.1.1", "static"), "wan");
    EXPECT_EQ(interface_behind("192.168.1.254", "pppoe"), "lan");
}

TEST_F(IetfStaticRouteTest, TheInterfacesAreTheDevicesNames)
{
    const auto saved = systeminfo;
    systeminfo[lan_net_section].value = "home";
    systeminfo[wan_net_section].value = "outside";
    systeminfo[ppp_net_section].value = "dialled";
    const Lines found{interface_behind("192.168.1.254", "dhcp"),
                      interface_behind("10.1.1.1", "dhcp"), interface_behind("10.1.1.1", "pptp")};
    systeminfo = saved;
    EXPECT_EQ(found, (Lines{"home", "outside", "dialled"}));
}

TEST_F(IetfStaticRouteTest, AGatewayThatIsNoAddressCountsAsAllOnes)
{
    EXPECT_EQ(interface_behind("nowhere", "dhcp"), "wan");
    EXPECT_EQ(interface_behind("192.168.1.300", "dhcp"), "wan");
    device_.set({{"lan_ipaddr", "255.255.255.1"}});
    EXPECT_EQ(interface_behind("nowhere", "dhcp"), "lan");
}

TEST_F(IetfStaticRouteTest, AMaskThatIsNoAddressComparesWholeAddresses)
{
    device_.set({{"lan_netmask", "mask"}});
    EXPECT_EQ(interface_behind("192.168.1.254", "dhcp"), "wan");
    EXPECT_EQ(interface_behind("192.168.1.1", "dhcp"), "lan");
}

TEST_F(IetfStaticRouteTest, ARouteThatIsOffIsSkippedAndTheScanGoesOn)
{
    device_.set({{"static_router1", "off 0 0 10.0.0.0 255.0.0.0 192.168.1.254 2"},
                 {"static_router2", "on 1 1 10.0.0.0 255.0.0.0 192.168.1.254 3"}});
    EXPECT_EQ(document(), R"({"route":[{"alias-name":true},{"name":"on","private":"1",)"
                          R"("target":"10.0.0.0","netmask":"255.0.0.0",)"
                          R"("gateway":"192.168.1.254","interface":"lan","metric":"3"}]})");
    EXPECT_EQ(device_.startup_lines("network", "static_route")[0], "set network.route_0=route");
}

TEST_F(IetfStaticRouteTest, ARouteWithSixFieldsEndsTheScan)
{
    const std::string good = " 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2";
    device_.set({{"static_router1", "first" + good},
                 {"static_router2", "short 0 1 10.0.0.0 255.0.0.0 192.168.1.254"},
                 {"static_router3", "later" + good}});
    const std::string routes = document();
    EXPECT_NE(routes.find(R"("first")"), std::string::npos);
    EXPECT_EQ(routes.find(R"("short")"), std::string::npos);
    EXPECT_EQ(routes.find(R"("later")"), std::string::npos);
}

TEST_F(IetfStaticRouteTest, AShortRouteThatIsOffEndsTheScanToo)
{
    device_.set({{"static_router1", "off 0 0"},
                 {"static_router2", "r 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2"}});
    EXPECT_EQ(document(), no_routes);
}

TEST_F(IetfStaticRouteTest, TwoBlanksEncloseAnEmptyField)
{
    device_.set({{"static_router1", "r1  1 10.0.0.0  192.168.1.254 "}});
    EXPECT_EQ(document(), R"({"route":[{"alias-name":true},{"name":"r1","target":"10.0.0.0",)"
                          R"("gateway":"192.168.1.254","interface":"lan"}]})");
}

TEST_F(IetfStaticRouteTest, ARouteOf300CharactersIsCutAndLacksItsLastFields)
{
    device_.set({{"static_router1", std::string(240, 'n') + " 0 1 10.0.0.0 255.0.0.0 192.0.2.1 2" +
                                        std::string(25, '3')},
                 {"static_router2", "r 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2"}});
    EXPECT_EQ(document(), no_routes);
}

TEST_F(IetfStaticRouteTest, ARouteOf300CharactersKeepsWhatFits)
{
    // The cut at 255 bytes comes first: of a metric that begins there one digit is left.
    const std::string begin = " 0 1 10.0.0.0 255.0.0.0 192.168.1.254 ";
    device_.set(
        {{"static_router1", std::string(254 - begin.size(), 'n') + begin + std::string(46, '7')}});
    EXPECT_EQ(document(), R"({"route":[{"alias-name":true},{"name":")" + std::string(63, 'n') +
                              R"(","private":"0","target":"10.0.0.0","netmask":"255.0.0.0",)"
                              R"("gateway":"192.168.1.254","interface":"lan","metric":"7"}]})");
}

TEST_F(IetfStaticRouteTest, FieldsAreCut)
{
    device_.set({{"static_router1", "n " + std::string(16, 'p') + " " + std::string(16, 'a') + " " +
                                        std::string(32, 't') + " " + std::string(32, 'm') + " " +
                                        std::string(32, 'g') + " " + std::string(16, '2')}});
    EXPECT_EQ(document(), R"({"route":[{"alias-name":true},{"name":"n","private":")" +
                              std::string(15, 'p') + R"(","target":")" + std::string(31, 't') +
                              R"(","netmask":")" + std::string(31, 'm') + R"(","gateway":")" +
                              std::string(31, 'g') + R"(","interface":"wan1p","metric":")" +
                              std::string(15, '2') + R"("}]})");
}

TEST_F(IetfStaticRouteTest, AccessPointModeChangesNothing)
{
    device_.set({{"static_router1", "r1 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2"}});
    const std::string routes = document();
    device_.set({{"ap_mode", "1"}});
    EXPECT_EQ(document(), routes);
}

TEST_F(IetfStaticRouteTest, ARemovedRouteIsDeletedByItsNumber)
{
    device_.set({{"static_router1", "r1 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2"},
                 {"static_router2", "r2 0 1 10.0.0.0 255.0.0.0 192.168.1.254 2"}});
    document();
    device_.set({{"static_router2", ""}});
    device_.apply({"static_router"}, 5);
    EXPECT_EQ(device_.lines(5, "network", "static_route"), (Lines{"delete network.route_1"}));
}

TEST_F(IetfStaticRouteTest, ASatelliteWritesToo)
{
    device_.be_base(false);
    EXPECT_EQ(device_.run_update(ietf_static_route, 1), 0);
    EXPECT_EQ(device_.document("network", "static_route"), no_routes);
}

} // namespace
} // namespace qorcfg
