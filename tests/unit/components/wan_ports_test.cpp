#include "components/wan_builders.h"

#include "support/network_device.h"

namespace qorcfg {
namespace {

using test::NetworkDevice;

class WanPortsTest : public testing::Test {
protected:
    WanPortsTest() { set_lan_ports("LAN1:eth1 LAN2:eth2 LAN3:eth3"); }
    void tagged() { device_.set({{"enable_vlan", "1"}, {"vlan_type", "1"}}); }
    void bridging() { device_.set({{"enable_vlan", "1"}, {"vlan_type", "0"}}); }

    NetworkDevice device_;
};

TEST_F(WanPortsTest, WithoutVlansTheWanIsThePlainPort)
{
    device_.set({{"vlan_type", "1"}, {"vlan_tag_1", "1 Internet 10"}, {"iptv_mask", "7"}});
    EXPECT_EQ(wan_ifname(), "eth0");
}

TEST_F(WanPortsTest, TheFirstInternetEntryNamesTheSubInterfaceItsFlagDoesNotMatter)
{
    tagged();
    device_.set({{"vlan_tag_1", "1 IPTV 20 0 0"},
                 {"vlan_tag_2", "0 iNTERNET 10"},
                 {"vlan_tag_3", "1 Internet 11"}});
    EXPECT_EQ(wan_ifname(), "eth0-v10");
}

TEST_F(WanPortsTest, AnInternetEntryOfIdZeroEndsTheScan)
{
    tagged();
    device_.set({{"vlan_tag_1", "1 Internet 0"}, {"vlan_tag_2", "1 Internet 10"}});
    EXPECT_EQ(wan_ifname(), "eth0");
}

TEST_F(WanPortsTest, AnyOtherInternetIdIsTakenAsItReads)
{
    tagged();
    for (const char *id : {"-5", "4095"}) {
        device_.set({{"vlan_tag_1", std::string("1 Internet ") + id}});
        EXPECT_EQ(wan_ifname(), std::string("eth0-v") + id);
    }
    device_.set({{"vlan_tag_1", "1 Internet ten"}, {"vlan_tag_2", "1 Internet 10"}});
    EXPECT_EQ(wan_ifname(), "eth0");
}

TEST_F(WanPortsTest, AnInternetEntryOfTwoFieldsIsPassedOver)
{
    tagged();
    device_.set({{"vlan_tag_1", "1 Internet"}, {"vlan_tag_2", "1 Internet 10"}});
    EXPECT_EQ(wan_ifname(), "eth0-v10");
}

TEST_F(WanPortsTest, TaggedVlansWithoutInternetEntryLeaveThePlainPort)
{
    tagged();
    device_.set({{"vlan_tag_0", "1 Internet 10"}, {"vlan_tag_1", "1 IPTV 20"}});
    EXPECT_EQ(wan_ifname(), "eth0");
}

TEST_F(WanPortsTest, BridgedPortsFollowTheWanPort)
{
    bridging();
    device_.set({{"iptv_mask", "5"}});
    EXPECT_EQ(wan_ifname(), "eth0 eth1 eth3");
    device_.set({{"iptv_mask", "many"}});
    EXPECT_EQ(wan_ifname(), "eth0");
}

TEST_F(WanPortsTest, AnIptvVlanKeepsBridgedPortsOutOfTheWan)
{
    bridging();
    device_.set({{"iptv_mask", "5"}, {"iptv_vlan_enable", "1"}, {"iptv_vlan", "10"}});
    EXPECT_EQ(wan_ifname(), "eth0");
    device_.set({{"iptv_vlan", "0"}});
    EXPECT_EQ(wan_ifname(), "eth0 eth1 eth3");
}

TEST_F(WanPortsTest, MembersAreCutAt63Bytes)
{
    set_lan_ports("LAN1:aaaaaaa LAN2:bbbbbbb LAN3:ccccccc LAN4:ddddddd LAN5:eeeeeee LAN6:fffffff "
                  "LAN7:ggggggg LAN8:hhhhhhh");
    bridging();
    device_.set({{"iptv_mask", "255"}});
    EXPECT_EQ(wan_ifname(), "eth0 aaaaaaa bbbbbbb ccccccc ddddddd eeeeeee fffffff ggggggg hh");
    EXPECT_EQ(wan_ifname().size(), 63U);
}

TEST_F(WanPortsTest, EachIspProfileHasItsIptvPorts)
{
    const struct {
        const char *key;
        const char *entry;
        const char *ports;
    } profiles[] = {
        {"enable_orange", "1 IPTV 840", "eth0-v838 eth0-v840"},
        {"voda_spain_iptv", "1 IPTV 105", "eth0-v105"},
        {"movistar_spain_iptv", "1 IPTV 2", "eth0-v2"},
        {"orange_spain_iptv", "1 IPTV 838", "eth0-v838"},
    };
    tagged();
    device_.set({{"vlan_tag_1", "1 Internet 10"}});
    for (const auto &[key, entry, ports] : profiles) {
        device_.set({{key, "1"}, {"vlan_tag_2", entry}});
        EXPECT_EQ(get_iptv_eth_ports(), ports);
        device_.set({{key, "0"}});
        EXPECT_EQ(get_iptv_eth_ports(), "") << key;
    }
}

TEST_F(WanPortsTest, IptvPortsNeedTaggedVlans)
{
    device_.set({{"enable_orange", "1"}, {"vlan_tag_1", "1 a 1"}, {"vlan_tag_2", "1 IPTV 840"}});
    EXPECT_EQ(get_iptv_eth_ports(), "");
    bridging();
    EXPECT_EQ(get_iptv_eth_ports(), "");
    tagged();
    EXPECT_EQ(get_iptv_eth_ports(), "eth0-v838 eth0-v840");
}

TEST_F(WanPortsTest, TheFirstEntrySwitchedOffOnesAndInternetAreNoIptv)
{
    tagged();
    device_.set({{"enable_orange", "1"},
                 {"vlan_tag_1", "1 IPTV 840"},
                 {"vlan_tag_2", "0 IPTV 840"},
                 {"vlan_tag_3", "1 internet 840"},
                 {"vlan_tag_4", "1 IPTV"}});
    EXPECT_EQ(get_iptv_eth_ports(), "");
}

TEST_F(WanPortsTest, ALaterIptvEntryOverwritesAnEarlierOne)
{
    tagged();
    device_.set({{"enable_orange", "1"},
                 {"movistar_spain_iptv", "1"},
                 {"vlan_tag_1", "1 Internet 10"},
                 {"vlan_tag_2", "1 IPTV 840"},
                 {"vlan_tag_3", "1 IPTV 2"},
                 {"vlan_tag_4", "1 IPTV 77"}});
    EXPECT_EQ(get_iptv_eth_ports(), "eth0-v2");
}

TEST_F(WanPortsTest, IptvPortsAreCutAt31BytesAndTheCutIsReported)
{
    tagged();
    systeminfo[wan_eth_ifs].value = "ethernet-wan0";
    device_.set({{"enable_orange", "1"}, {"vlan_tag_1", "1 a 1"}, {"vlan_tag_2", "1 IPTV 840"}});
    testing::internal::CaptureStderr();
    EXPECT_EQ(get_iptv_eth_ports(), "ethernet-wan0-v838 ethernet-wan");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("get_iptv_eth_ports"), std::string::npos);
}

} // namespace
} // namespace qorcfg
