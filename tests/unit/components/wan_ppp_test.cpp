#include "components/components.h"

#include "support/network_device.h"

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Settings = std::initializer_list<std::pair<const char *, std::string>>;

std::string document(const std::string &mac, const std::string &interfaces)
{
    return R"({"device":{"eth0":{"name":"eth0","macaddr":")" + mac + R"("}},"interface":{)" +
           interfaces + "}}";
}

class WanPppTest : public testing::Test {
protected:
    std::string wan(Settings settings) { return device_.document_for(ietf_wan, "wan", settings); }
    bool wan_has(Settings settings, const std::string &text)
    {
        return wan(settings).find(text) != std::string::npos;
    }

    NetworkDevice device_;
};

class WanPppoeTest : public WanPppTest {
protected:
    WanPppoeTest()
    {
        device_.set({{"wan_proto", "pppoe"},
                     {"wan_pppoe_username", "user@isp"},
                     {"wan_pppoe_passwd", "p w"},
                     {"wan_pppoe_service", "svc"},
                     {"wan_pppoe_ip", "192.0.2.9"},
                     {"wan_pppoe_mtu", "1480"},
                     {"wan_pppoe_mac_assign", "0"},
                     {"wan_pppoe_demand", "1"},
                     {"wan_pppoe_idletime", "300"},
                     {"wan_test_status", "none"},
                     {"wan_pppoe_intranet_ip", "10.0.0.2"},
                     {"wan_pppoe_intranet_mask", "255.0.0.0"}});
    }
};

TEST_F(WanPppoeTest, BridgeAndSessionHaveTheirOptionsInOrder)
{
    EXPECT_EQ(wan({{"wan_pppoe_wan_assign", "1"},
                   {"bas_auto_conn_flag", "1"},
                   {"bas_conn_time_num", "4"},
                   {"wan_pppoe_dns_assign", "1"},
                   {"wan_ether_dns1", "192.0.2.1"},
                   {"wan_ether_dns2", "192.0.2.2"}}),
              document("00:53:00:AA:BB:01",
                       R"("wan":{"ifname":"eth0","type":"bridge","mtu":"1480",)"
                       R"("macaddr":"00:53:00:AA:BB:01"},)"
                       R"("wan1p":{"ifname":"br-wan","proto":"pppoe","force_link":"1",)"
                       R"("ipv6":"0","username":"user@isp","password":"p w","service":"svc",)"
                       R"("ipaddr":"192.0.2.9","run_test":"0","connmode":"1","demand":"300",)"
                       R"("disconn_time":"4","peerdns":"0","dns":"192.0.2.1 192.0.2.2",)"
                       R"("mtu":"1480"})"));
}

TEST_F(WanPppoeTest, ADynamicAddressAndDnsOfThePeerLeaveTheirOptionsOut)
{
    EXPECT_TRUE(wan_has({{"wan_pppoe_wan_assign", "0"}},
                        R"("service":"svc","run_test":"0","connmode":"1","demand":"300",)"
                        R"("peerdns":"1","mtu":"1480"}}})"));
}

TEST_F(WanPppoeTest, ATestOfASessionDialledByHandHasNoAuto)
{
    EXPECT_TRUE(wan_has({{"wan_test_status", "test"}, {"wan_pppoe_demand", "2"}},
                        R"("run_test":"1","connmode":"2","peerdns")"));
}

TEST_F(WanPppoeTest, InRegionRuTheBridgeHasTheIntranetAddress)
{
    device_.write_board("RU");
    EXPECT_TRUE(wan_has({{"wan_pppoe_intranet_wan_assign", "0"}},
                        R"("wan":{"ifname":"eth0","type":"bridge","proto":"dhcp",)"
                        R"("force_link":"1","mtu":"1480")"));
    EXPECT_TRUE(wan_has({{"wan_pppoe_intranet_wan_assign", "1"}},
                        R"("wan":{"ifname":"eth0","type":"bridge","proto":"static",)"
                        R"("ipaddr":"10.0.0.2","netmask":"255.0.0.0","mtu":"1480")"));
    EXPECT_TRUE(wan_has({{"wan_pppoe_intranet_wan_assign", ""}}, R"("proto":"static")"));
}

TEST_F(WanPppoeTest, TheRegionIsReadOnEachRun)
{
    EXPECT_TRUE(wan_has({}, R"("type":"bridge","mtu")"));
    device_.write_board("RU");
    EXPECT_TRUE(wan_has({}, R"("type":"bridge","proto":"static")"));
    device_.write_board("RUSSIAN");
    EXPECT_TRUE(wan_has({}, R"("type":"bridge","mtu")"));
}

TEST_F(WanPppoeTest, Ipv6OverTheSameSessionIsAuto)
{
    EXPECT_TRUE(wan_has({{"ipv6_sameinfo", "1"}, {"ipv6_type", "pppoe"}},
                        R"("force_link":"1","ipv6":"auto","username")"));
}

class WanOrangePppoeTest : public WanPppTest {
protected:
    WanOrangePppoeTest()
    {
        device_.set({{"wan_proto", "orange_pppoe"},
                     {"wan_orange_username", "fti/user"},
                     {"wan_orange_pppoe_passwd", "pw"},
                     {"wan_pppoe_mtu", "1480"},
                     {"wan_orange_dhcp_mac_assign", "2"},
                     {"wan_orange_pppoe_mac_assign", "0"},
                     {"wan_orange_pppoe_this_mac", "00:53:00:00:00:05"},
                     {"wan_orange_pppoe_demand", "1"},
                     {"wan_orange_pppoe_idletime", "60"},
                     {"wan_test_status", "none"},
                     {"bas_auto_conn_flag", "1"},
                     {"bas_conn_time_num", "4"}});
    }
};

TEST_F(WanOrangePppoeTest, TheMacChoiceIsTheDhcpProfilesAndThereIsNoDisconnectTime)
{
    EXPECT_EQ(wan({}), document("00:53:00:00:00:05",
                                R"("wan":{"ifname":"eth0","type":"bridge","mtu":"1480",)"
                                R"("macaddr":"00:53:00:00:00:05"},)"
                                R"("wan1p":{"ifname":"br-wan","proto":"pppoe","force_link":"1",)"
                                R"("ipv6":"0","username":"fti/user","password":"pw",)"
                                R"("run_test":"0","connmode":"1","demand":"60","peerdns":"1",)"
                                R"("mtu":"1480"})"));
}

TEST_F(WanOrangePppoeTest, IptvAddsItsBridge)
{
    EXPECT_TRUE(wan_has({{"enable_orange", "1"},
                         {"enable_vlan", "1"},
                         {"vlan_type", "1"},
                         {"vlan_tag_1", "1 Internet 835 0 0"},
                         {"vlan_tag_2", "1 IPTV 840 5 0"}},
                        R"("mtu":"1480"},"iptv":{"ifname":"eth0-v838 eth0-v840","type":"bridge",)"
                        R"("force_link":"1","iptv_enable":"1","proto":"dhcp"}}})"));
}

TEST_F(WanOrangePppoeTest, Ipv6OverTheSameSessionIsAuto)
{
    EXPECT_TRUE(wan_has({{"ipv6_sameinfo", "1"}, {"ipv6_type", "pppoe"}},
                        R"("force_link":"1","ipv6":"auto","username")"));
}

TEST_F(WanOrangePppoeTest, ASessionDialledByHandIsNotAuto)
{
    EXPECT_TRUE(
        wan_has({{"wan_orange_pppoe_demand", "2"}}, R"("connmode":"2","auto":"0","peerdns":"1")"));
}

/// Keys of the two tunnel protocols differ by this word.
class WanTunnelTest : public WanPppTest, public testing::WithParamInterface<const char *> {
protected:
    WanTunnelTest()
    {
        const std::string wan = std::string("wan_") + GetParam();
        const std::pair<std::string, const char *> settings[] = {
            {wan + "_wan_assign", "1"},
            {wan + "_local_ip", "10.0.0.140"},
            {wan + "_eth_mask", "255.0.0.0"},
            {std::string(GetParam()) + "_gw_static_route", "10.0.0.1"},
            {wan + "_username", "user"},
            {wan + "_password", "pw"},
            {wan + "_server_ip", "10.0.0.138"},
            {wan + "_connection_id", "77"},
            {wan + "_demand", "1"},
            {wan + "_idle_time", "120"},
            {wan + "_dns_assign", "1"},
            {wan + "_mac_assign", "2"},
            {wan + "_this_mac", "00:53:00:00:00:06"},
            {wan + "_mtu", "1436"},
        };
        for (const auto &[key, value] : settings) {
            device_.set({{key.c_str(), value}});
        }
        device_.set({{"wan_proto", GetParam()},
                     {"wan_ether_dns1", "192.0.2.1"},
                     {"wan_test_status", "none"},
                     {"bas_auto_conn_flag", "1"},
                     {"bas_conn_time_num", "4"}});
    }
    std::string key(const char *end) const { return std::string("wan_") + GetParam() + end; }
};

TEST_P(WanTunnelTest, BridgeAndSessionHaveTheirOptionsInOrder)
{
    const std::string proto = GetParam();
    const std::string connection = proto == "pptp" ? R"("connid":"77",)" : "";
    EXPECT_EQ(wan({}),
              document("00:53:00:00:00:06",
                       R"("wan":{"ifname":"eth0","type":"bridge","proto":"static",)"
                       R"("ipaddr":"10.0.0.140","netmask":"255.0.0.0","gateway":"10.0.0.1",)"
                       R"("mtu":"1500","macaddr":"00:53:00:00:00:06"},)"
                       R"("wan1p":{"ifname":"br-wan","proto":")" +
                           proto +
                           R"(","force_link":"1","username":"user","password":"pw",)"
                           R"("server":"10.0.0.138",)" +
                           connection +
                           R"("gateway":"10.0.0.1","run_test":"0","connmode":"1",)"
                           R"("demand":"120","disconn_time":"4","peerdns":"0",)"
                           R"("dns":"192.0.2.1 ","mtu":"1436"})"));
}

TEST_P(WanTunnelTest, ADynamicPortAddressKeepsTheGateway)
{
    EXPECT_TRUE(wan_has({{key("_wan_assign").c_str(), "0"}, {key("_dns_assign").c_str(), "0"}},
                        R"("type":"bridge","proto":"dhcp","force_link":"1",)"
                        R"("gateway":"10.0.0.1","mtu":"1500")"));
    EXPECT_NE(device_.document("network", "wan").find(R"("peerdns":"1","mtu":"1436")"),
              std::string::npos);
}

TEST_P(WanTunnelTest, EmptySettingsAreWrittenEmpty)
{
    EXPECT_TRUE(wan_has({{key("_server_ip").c_str(), ""},
                         {key("_connection_id").c_str(), ""},
                         {key("_demand").c_str(), ""},
                         {key("_mtu").c_str(), ""}},
                        std::string(R"("server":"",)") +
                            (std::string(GetParam()) == "pptp" ? R"("connid":"",)" : "") +
                            R"("gateway":"10.0.0.1","run_test":"0","connmode":"",)"
                            R"("disconn_time":"4","peerdns":"0","dns":"192.0.2.1 ","mtu":""}}})"));
}

INSTANTIATE_TEST_SUITE_P(Protocols, WanTunnelTest, testing::Values("pptp", "l2tp"),
                         [](const auto &test) { return std::string(test.param); });

} // namespace
} // namespace qorcfg
