#include "components/components.h"

#include "support/network_device.h"

#include <algorithm>

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Lines = std::vector<std::string>;

/// The document of a device section with this MAC and these interface sections.
std::string document(const std::string &mac, const std::string &interfaces)
{
    return R"({"device":{"eth0":{"name":"eth0","macaddr":")" + mac + R"("}},"interface":{)" +
           interfaces + "}}";
}

class WanEthernetTest : public testing::Test {
protected:
    WanEthernetTest()
    {
        device_.set({{"wan_domain", "example.net"},
                     {"Device_name", "Kova"},
                     {"wan_dhcp_mtu", "1492"},
                     {"wan_ether_mac_assign", "2"},
                     {"wan_ether_this_mac", "00:53:00:00:00:02"},
                     {"wan_ether_dns_assign", "1"},
                     {"wan_ether_dns1", "192.0.2.1"}});
    }
    std::string wan(std::initializer_list<std::pair<const char *, std::string>> settings)
    {
        return device_.document_for(ietf_wan, "wan", settings);
    }

    NetworkDevice device_;
};

TEST_F(WanEthernetTest, StaticHasItsOptionsInOrder)
{
    EXPECT_EQ(wan({{"wan_proto", "static"},
                   {"wan_ipaddr", "198.51.100.2"},
                   {"wan_netmask", "255.255.255.0"},
                   {"wan_gateway", "198.51.100.1"}}),
              document("00:53:00:00:00:02",
                       R"("wan":{"ifname":"eth0","type":"bridge","proto":"static",)"
                       R"("ipaddr":"198.51.100.2","netmask":"255.255.255.0",)"
                       R"("gateway":"198.51.100.1","domain":"example.net","hostname":"Kova",)"
                       R"("peerdns":"0","dns":"192.0.2.1  ","mtu":"1492",)"
                       R"("macaddr":"00:53:00:00:00:02"})"));
}

TEST_F(WanEthernetTest, AddressesThatDoNotParseTravelAsTheyStand)
{
    const std::string text =
        wan({{"wan_proto", "static"}, {"wan_ipaddr", "1.2.3"}, {"wan_netmask", "/x y"}});
    EXPECT_NE(text.find(R"("ipaddr":"1.2.3","netmask":"/x y","gateway":"")"), std::string::npos);
}

TEST_F(WanEthernetTest, ALineFeedInAnAddressDoesNotBreakItsLine)
{
    wan({{"wan_proto", "static"}, {"wan_ipaddr", "1.2.3.4\nset network.x=y"}});
    const Lines lines = device_.startup_lines("network", "wan");
    EXPECT_EQ(
        std::count(lines.begin(), lines.end(), "set network.wan.ipaddr=1.2.3.4 set network.x=y"),
        1);
}

TEST_F(WanEthernetTest, AnotherMacChoiceIsEmptyInBothSections)
{
    EXPECT_EQ(wan({{"wan_proto", "static"}, {"wan_ether_mac_assign", "3"}}),
              document("", R"("wan":{"ifname":"eth0","type":"bridge","proto":"static",)"
                           R"("ipaddr":"","netmask":"","gateway":"","domain":"example.net",)"
                           R"("hostname":"Kova","peerdns":"0","dns":"192.0.2.1  ",)"
                           R"("mtu":"1492","macaddr":""})"));
    EXPECT_EQ(device_.startup_lines("network", "wan").at(2), "set network.eth0.macaddr=");
}

TEST_F(WanEthernetTest, DhcpHasItsOptionsInOrder)
{
    EXPECT_EQ(wan({{"wan_proto", "dhcp"},
                   {"wan_ether_dns_assign", "0"},
                   {"dhcp_vendorid", "vendor"},
                   {"dhcp_clientid", "client"}}),
              document("00:53:00:00:00:02",
                       R"("wan":{"ifname":"eth0","type":"bridge","proto":"dhcp",)"
                       R"("force_link":"1","domain":"example.net","hostname":"Kova",)"
                       R"("peerdns":"1","mtu":"1492","dhcp_option60":"vendor",)"
                       R"("dhcp_option61":"client","macaddr":"00:53:00:00:00:02"})"));
}

TEST_F(WanEthernetTest, EmptyDhcpIdentificationsAreLeftOutAndOtherEmptyOptionsAreNot)
{
    EXPECT_EQ(wan({{"wan_proto", "dhcp"},
                   {"wan_domain", ""},
                   {"Device_name", ""},
                   {"wan_dhcp_mtu", ""},
                   {"wan_ether_mac_assign", ""}}),
              document("", R"("wan":{"ifname":"eth0","type":"bridge","proto":"dhcp",)"
                           R"("force_link":"1","domain":"","hostname":"","peerdns":"0",)"
                           R"("dns":"192.0.2.1  ","mtu":"","macaddr":""})"));
}

TEST_F(WanEthernetTest, DhcpIdentificationsAreCutAt127Bytes)
{
    const std::string kept(127, 'v');
    const std::string text = wan({{"wan_proto", "dhcp"},
                                  {"dhcp_vendorid", kept + "lost"},
                                  {"dhcp_clientid", kept + "lost"}});
    EXPECT_NE(text.find(R"("dhcp_option60":")" + kept + R"(","dhcp_option61":")" + kept + "\","),
              std::string::npos);
}

TEST_F(WanEthernetTest, OrangeDhcpWithoutIptv)
{
    EXPECT_EQ(wan({{"wan_proto", "orange_dhcp"},
                   {"wan_orange_username", "fti/user"},
                   {"wan_orange_dhcp_mac_assign", "2"},
                   {"wan_orange_dhcp_this_mac", "00:53:00:00:00:04"}}),
              document("00:53:00:00:00:04",
                       R"("wan":{"ifname":"eth0","type":"bridge","proto":"dhcp",)"
                       R"("force_link":"1","peerdns":"1","mtu":"1492",)"
                       R"("speisp":"orange_france_dhcp","orange_enable":"1",)"
                       R"("username":"fti/user","macaddr":"00:53:00:00:00:04"})"));
}

TEST_F(WanEthernetTest, OrangeDhcpWithIptvAddsItsBridge)
{
    const std::string text = wan({{"wan_proto", "orange_dhcp"},
                                  {"enable_orange", "1"},
                                  {"enable_vlan", "1"},
                                  {"vlan_type", "1"},
                                  {"vlan_tag_1", "1 Internet 832 0 0"},
                                  {"vlan_tag_2", "1 IPTV 840 5 0"}});
    EXPECT_NE(text.find(R"("wan":{"ifname":"eth0-v832",)"), std::string::npos);
    EXPECT_NE(text.find(R"("macaddr":""},"iptv":{"ifname":"eth0-v838 eth0-v840","type":"bridge",)"
                        R"("proto":"dhcp","force_link":"1","peerdns":"1","orange_enable":"1",)"
                        R"("iptv_enable":"1"}}})"),
              std::string::npos);
}

TEST_F(WanEthernetTest, OrangeIptvWithoutVlanHasNoPorts)
{
    EXPECT_NE(wan({{"wan_proto", "orange_dhcp"}, {"enable_orange", "1"}})
                  .find(R"("iptv":{"ifname":"","type":"bridge")"),
              std::string::npos);
}

} // namespace
} // namespace qorcfg
