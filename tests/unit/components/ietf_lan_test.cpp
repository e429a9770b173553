#include "components/components.h"

#include "support/network_device.h"

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Lines = std::vector<std::string>;
using Settings = std::initializer_list<std::pair<const char *, std::string>>;

constexpr const char *common = R"("ieee1905managed":"1","ageing_time":"30")";
constexpr const char *ipv6 = R"("ip6ifaceid":"::0211:22ff:fe33:4455","ipv6":"1","ip6assign":"64")";

class IetfLanTest : public testing::Test {
protected:
    std::string lan(Settings settings) { return device_.document_for(ietf_lan, "lan", settings); }
    bool lan_has(Settings settings, const std::string &text)
    {
        return lan(settings).find(text) != std::string::npos;
    }
    void wireless(const char *text) { device_.write("/tmp/cache/systeminfo/athinfo.json", text); }
    /// The document of a section with these options.
    static std::string document(const std::string &options)
    {
        return R"({"interface":{"lan":{)" + options + "}}}";
    }
    static std::string router(const std::string &ifname, const std::string &rest)
    {
        return document(R"("proto":"static","ifname":")" + ifname +
                        R"(","type":"bridge","force_link":1,)" + common + "," + rest);
    }
    /// The bridge members of a router with three LAN ports.
    std::string members(Settings settings)
    {
        set_lan_ports("LAN1:eth1 LAN2:eth2 LAN3:eth3");
        const std::string text = lan(settings);
        const std::string before = R"("ifname":")";
        const std::size_t begin = text.find(before) + before.size();
        return text.substr(begin, text.find('"', begin) - begin);
    }

    NetworkDevice device_;
};

TEST_F(IetfLanTest, KeysAreSubscribedInOrder)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_lan), (Lines{"ap_mode",
                                                        "ap_ether_ip_assign",
                                                        "ap_ipaddr",
                                                        "ap_netmask",
                                                        "ap_gateway",
                                                        "ap_ether_dns1",
                                                        "ap_ether_dns2",
                                                        "lan_ipaddr",
                                                        "lan_netmask",
                                                        "ipv6_type",
                                                        "ipv6_dhcps_enable",
                                                        "ipv6_dhcps_interface_id_enable",
                                                        "ipv6_dhcps_interface_id",
                                                        "ipv6_fixed_lan_ip",
                                                        "ipv6_fixed_lan_prefix_len",
                                                        "enable_vlan",
                                                        "vlan_type",
                                                        "iptv_mask",
                                                        "vlan_tag_",
                                                        "iptv_vlan_enable",
                                                        "iptv_vlan"}));
    EXPECT_EQ(device_.log()[0], "init() - Initializing lan");
    ietf_lan.register_();
    EXPECT_EQ(device_.log().back(), "register() -  lan");
}

TEST_F(IetfLanTest, AnUpdateLogsItsLineAndReturnsZero)
{
    EXPECT_EQ(device_.run_update(ietf_lan, 3), 0);
    EXPECT_EQ(device_.log().back(), " update network lan");
}

TEST_F(IetfLanTest, ARouterHasItsAddress)
{
    EXPECT_EQ(
        lan({{"ap_mode", "0"}, {"lan_ipaddr", "192.0.2.1"}, {"lan_netmask", "255.255.255.0"}}),
        router("eth1 ", R"("ipaddr":"192.0.2.1","netmask":"255.255.255.0",)" + std::string(ipv6)));
}

TEST_F(IetfLanTest, AnUnsetApModeGivesARouterWithoutAddress)
{
    EXPECT_EQ(lan({{"lan_ipaddr", "192.0.2.1"}}), router("eth1 ", ipv6));
}

TEST_F(IetfLanTest, AddressesThatDoNotParseTravelAndEmptyOnesAreLeftOut)
{
    EXPECT_TRUE(lan_has({{"ap_mode", "0"}, {"lan_ipaddr", "300.1"}},
                        R"("ageing_time":"30","ipaddr":"300.1","ip6ifaceid")"));
}

TEST_F(IetfLanTest, InFactoryModeAnAccessPointIsARouterOfAllPorts)
{
    EXPECT_EQ(lan({{"factory_mode", "1"}, {"ap_mode", "1"}, {"lan_ipaddr", "192.0.2.1"}}),
              document(R"("proto":"static","ifname":"eth1 eth0 ","type":"bridge","force_link":1,)" +
                       std::string(common)));
}

TEST_F(IetfLanTest, InFactoryModeTheWanPortJoinsARouterToo)
{
    EXPECT_TRUE(lan_has({{"factory_mode", "1"}, {"ap_mode", "0"}, {"enable_vlan", "1"}},
                        R"({"proto":"static","ifname":"eth1 eth0 ",)"));
}

TEST_F(IetfLanTest, PortListsAreCutAt63Bytes)
{
    const std::string port(70, 'p');
    systeminfo[lan_eth_ifs].value = port;
    EXPECT_TRUE(lan_has({}, R"("ifname":")" + port.substr(0, 63) + " \""));
    systeminfo[lan_eth_ifs].value = port.substr(0, 60);
    EXPECT_TRUE(lan_has({{"ap_mode", "1"}}, R"("ifname":")" + port.substr(0, 60) + " et \""));
}

TEST_F(IetfLanTest, TheSectionIsLanWhateverTheDeviceCallsItsLan)
{
    systeminfo[lan_net_section].value = "home";
    EXPECT_TRUE(lan_has({}, R"({"interface":{"lan":{)"));
}

TEST_F(IetfLanTest, ASatelliteOfAnAccessPointHasNoIpv6)
{
    device_.be_base(false);
    EXPECT_EQ(lan({{"ap_mode", "1"}, {"lan_ipaddr", "192.0.2.1"}}),
              document(R"("proto":"dhcp","ifname":"eth1 eth0","type":"bridge","force_link":1,)" +
                       std::string(common)));
}

TEST_F(IetfLanTest, ASatelliteHasThePortsAloneAndDhcp)
{
    device_.be_base(false);
    wireless(R"({"athinfo": [{"vap_type": "backhaul-ap", "ifname": "ath1"}]})");
    EXPECT_EQ(lan({}), document(R"("proto":"dhcp","ifname":"eth1 eth0","type":"bridge",)"
                                R"("force_link":1,)" +
                                std::string(common) + "," + ipv6));
}

TEST_F(IetfLanTest, AddressAndIpv6StepsApplyToASatelliteToo)
{
    device_.be_base(false);
    EXPECT_TRUE(lan_has({{"ap_mode", "0"}, {"lan_ipaddr", "192.0.2.1"}},
                        R"("ageing_time":"30","ipaddr":"192.0.2.1","ip6ifaceid")"));
}

TEST_F(IetfLanTest, AnAccessPointWithFixedAddress)
{
    EXPECT_EQ(lan({{"ap_mode", "1"},
                   {"ap_ether_ip_assign", "0"},
                   {"ap_ipaddr", "192.0.2.2"},
                   {"ap_netmask", "255.255.255.0"},
                   {"ap_gateway", "192.0.2.1"},
                   {"ap_ether_dns1", "192.0.2.3"},
                   {"ipv6_type", "fixed"},
                   {"ipv6_fixed_lan_ip", "2001:db8::1"}}),
              document(R"("ifname":"eth1 eth0 ","type":"bridge","force_link":"1",)"
                       R"("proto":"static","peerdns":"0","ipaddr":"192.0.2.2",)"
                       R"("netmask":"255.255.255.0","gateway":"192.0.2.1","dns":"192.0.2.3 ",)" +
                       std::string(common)));
}

TEST_F(IetfLanTest, AccessPointAddressesAreCutAt31BytesAndServersAt63)
{
    const std::string text(40, '1');
    const std::string kept = text.substr(0, 31);
    EXPECT_TRUE(lan_has({{"ap_mode", "1"},
                         {"ap_ether_ip_assign", "0"},
                         {"ap_ipaddr", text},
                         {"ap_netmask", text},
                         {"ap_gateway", text},
                         {"ap_ether_dns1", text},
                         {"ap_ether_dns2", text}},
                        R"("ipaddr":")" + kept + R"(","netmask":")" + kept + R"(","gateway":")" +
                            kept + R"(","dns":")" + text + " " + text.substr(0, 22) + "\""));
}

TEST_F(IetfLanTest, AnAccessPointByDhcpTakesThePeersServers)
{
    for (const char *choice : {"1", ""}) {
        EXPECT_TRUE(lan_has({{"ap_mode", "1"}, {"ap_ether_ip_assign", choice}},
                            R"("force_link":"1","proto":"dhcp","peerdns":"1","ieee1905managed")"));
    }
}

TEST_F(IetfLanTest, BackhaulAccessPointsJoinTheBridge)
{
    wireless(R"({"athinfo": [{"vap_type": "backhaul-ap", "ifname": "ath1"},
                 {"vap_type": "fronthaul", "ifname": "ath0"}, 7, {"ifname": "ath9"},
                 {"vap_type": "backhaul-ap", "ifname": "ath11"}]})");
    EXPECT_TRUE(lan_has({{"ap_mode", "1"}}, R"("ifname":"eth1 eth0 ath1 ath11")"));
    EXPECT_TRUE(lan_has({{"ap_mode", "0"}}, R"("ifname":"eth1 ath1 ath11")"));
}

TEST_F(IetfLanTest, ADamagedWirelessDescriptionGivesNoBackhaul)
{
    for (const char *text : {"{\"athinfo\": [", "[]", R"({"athinfo": {"a": "b"}})", ""}) {
        wireless(text);
        EXPECT_TRUE(lan_has({}, R"("ifname":"eth1 ")")) << text;
    }
}

TEST_F(IetfLanTest, BackhaulNamesAreCutAt63Bytes)
{
    const std::string name(60, 'a');
    wireless((R"({"athinfo": [{"vap_type": "backhaul-ap", "ifname": ")" + name +
              R"("}, {"vap_type": "backhaul-ap", "ifname": "ath11"}]})")
                 .c_str());
    EXPECT_TRUE(lan_has({}, R"("ifname":"eth1 )" + name + R"( at")"));
}

TEST_F(IetfLanTest, PortsOfTheMaskLeaveTheLan)
{
    EXPECT_EQ(members({{"enable_vlan", "1"}, {"vlan_type", "0"}, {"iptv_mask", "2"}}),
              "eth1 eth3 ");
    EXPECT_EQ(members({{"iptv_mask", "no number"}}), "eth1 eth2 eth3 ");
}

TEST_F(IetfLanTest, AnIptvVlanLeavesAllPortsInTheLan)
{
    EXPECT_EQ(members({{"enable_vlan", "1"},
                       {"vlan_type", "0"},
                       {"iptv_mask", "2"},
                       {"iptv_vlan_enable", "1"},
                       {"iptv_vlan", "10"}}),
              "eth1 eth2 eth3 ");
    EXPECT_EQ(members({{"iptv_vlan", "0"}}), "eth1 eth3 ");
}

TEST_F(IetfLanTest, ThePortListIsEmptyUntilTheVlanComponentIsEnabled)
{
    device_.set({{"enable_vlan", "1"}});
    EXPECT_EQ(lan({}).find("ifname"), std::string::npos);
    device_.enable(ietf_wan);
    EXPECT_TRUE(lan_ports().empty());
    device_.enable(ietf_vlan);
    EXPECT_TRUE(lan_has({}, R"("ifname":"eth1 eth2 eth3 ")"));
}

TEST_F(IetfLanTest, WithoutAnyPortTheBackhaulStandsAlone)
{
    wireless(R"({"athinfo": [{"vap_type": "backhaul-ap", "ifname": "ath1"}]})");
    EXPECT_EQ(members({{"enable_vlan", "1"}, {"vlan_type", "0"}, {"iptv_mask", "7"}}), "ath1");
    wireless("{}");
    EXPECT_EQ(lan({}).find("ifname"), std::string::npos);
}

TEST_F(IetfLanTest, PortsOfTaggedServicesLeaveTheLanButNotThoseOfInternetAndIntranet)
{
    EXPECT_EQ(members({{"enable_vlan", "1"},
                       {"vlan_type", "1"},
                       {"vlan_tag_0", "1 IPTV 9 0 7"},
                       {"vlan_tag_1", "1 internet 10 0 7"},
                       {"vlan_tag_2", "1 INTRANET 11 0 7"},
                       {"vlan_tag_3", "0 IPTV 12 0 7"},
                       {"vlan_tag_4", "1 IPTV 4095 0 1"},
                       {"vlan_tag_5", "1 VoIP 14 0"},
                       {"vlan_tag_6", "1 VoIP 15 0 4"},
                       {"vlan_tag_8", "1 VoIP 16 0 2"}}),
              "eth2 ");
}

TEST_F(IetfLanTest, EightPortsOfFullLengthFitTheList)
{
    set_lan_ports("LAN1:aaaaaaa LAN2:bbbbbbb LAN3:ccccccc LAN4:ddddddd LAN5:eeeeeee LAN6:fffffff "
                  "LAN7:ggggggg LAN8:hhhhhhh");
    EXPECT_TRUE(lan_has({{"enable_vlan", "1"}},
                        R"("ifname":"aaaaaaa bbbbbbb ccccccc ddddddd eeeeeee fffffff ggggggg )"
                        R"(hhhhhhh ")"));
}

TEST_F(IetfLanTest, GuestVlansKeepTheAgeingTime)
{
    device_.write("/tmp/cache/systeminfo/dgc_data.info", R"({"dgc_func_have_guest_vlan": "1"})");
    EXPECT_EQ(lan({}), router("eth1 ", ipv6));
}

TEST_F(IetfLanTest, DisabledAndBridgedIpv6HaveNoOptions)
{
    for (const char *type : {"disabled", "bridge"}) {
        EXPECT_EQ(lan({{"ipv6_type", type}}),
                  document(R"("proto":"static","ifname":"eth1 ","type":"bridge","force_link":1,)" +
                           std::string(common)));
    }
}

TEST_F(IetfLanTest, FixedIpv6HasItsAddress)
{
    EXPECT_EQ(lan({{"ipv6_type", "fixed"},
                   {"ipv6_fixed_lan_ip", "2001:db8::1"},
                   {"ipv6_fixed_lan_prefix_len", "6456"},
                   {"ipv6_dhcps_interface_id_enable", "1"}}),
              router("eth1 ", R"("ip6addr":"2001:db8::1/645","ipv6":"1","ip6assign":"64")"));
}

TEST_F(IetfLanTest, TheFixedIpv6AddressIsCutAt127Bytes)
{
    EXPECT_TRUE(lan_has({{"ipv6_type", "fixed"}, {"ipv6_fixed_lan_ip", std::string(128, 'a')}},
                        R"("ip6addr":")" + std::string(127, 'a') + R"(/","ipv6":"1")"));
}

TEST_F(IetfLanTest, ATypedInterfaceIdReplacesTheComputedOne)
{
    EXPECT_TRUE(
        lan_has({{"ipv6_dhcps_interface_id_enable", "1"}, {"ipv6_dhcps_interface_id", "1:2:3:4"}},
                R"("ip6ifaceid":"::1:2:3:4")"));
    EXPECT_TRUE(lan_has({{"ipv6_dhcps_interface_id_enable", "2"}}, ipv6));
    EXPECT_TRUE(lan_has({{"ipv6_dhcps_interface_id_enable", "01"}}, R"("::1:2:3:4")"));
}

TEST_F(IetfLanTest, TheInterfaceIdFlipsTheCharacterOfTheSecondDigit)
{
    const struct {
        const char *mac;
        const char *id;
    } cases[] = {
        {"08:11:22:33:44:55", "::0:11:22ff:fe33:4455"},
        {"0a:11:22:33:44:55", "::0c11:22ff:fe33:4455"},
        {"00-11-22-33-44-55", "::02-1:1-ff:fe22:-33-:44-5:5"},
        {"", "::fdfe"},
        {"0", "::0dff:e"},
    };
    for (const auto &[mac, id] : cases) {
        device_.write("/tmp/cache/systeminfo/boarddata.info",
                      std::string(R"({"lan_mac": ")") + mac + "\"}");
        EXPECT_TRUE(lan_has({}, std::string(R"("ip6ifaceid":")") + id + "\"")) << mac;
    }
}

TEST_F(IetfLanTest, TheDhcpv6ServerIsForcedForDsliteAndV6plus)
{
    EXPECT_FALSE(lan_has({{"ipv6_type", "dslite"}}, "ipv6_dhcps_enable"));
    EXPECT_TRUE(
        lan_has({{"ipv6_dhcps_enable", "0"}}, R"("ip6assign":"64","ipv6_dhcps_enable":"1"}}})"));
    EXPECT_TRUE(lan_has({{"ipv6_type", "v6plus"}}, R"("ipv6_dhcps_enable":"1")"));
    EXPECT_TRUE(lan_has({{"ipv6_type", "dhcp"}}, R"("ipv6_dhcps_enable":"0")"));
    EXPECT_TRUE(lan_has({{"ipv6_type", "fixed"}}, R"("ipv6_dhcps_enable":"0")"));
}

TEST_F(IetfLanTest, AChangeTravelsOptionByOption)
{
    lan({{"ap_mode", "0"}, {"lan_ipaddr", "192.0.2.1"}, {"lan_netmask", "255.255.255.0"}});
    device_.set({{"lan_ipaddr", "192.0.2.129"}});
    device_.apply({"lan_ipaddr"}, 7);
    EXPECT_EQ(device_.lines(7, "network", "lan"),
              (Lines{"del network.lan.ipaddr", "set network.lan=interface",
                     "set network.lan.ipaddr=192.0.2.129"}));
}

} // namespace
} // namespace qorcfg
