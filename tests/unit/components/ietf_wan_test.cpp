#include "components/components.h"

#include "support/network_device.h"

#include <algorithm>

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Lines = std::vector<std::string>;

TEST(IetfWanTest, KeysAreSubscribedInOrder)
{
    const NetworkDevice device;
    EXPECT_EQ(device.subscribed_keys(ietf_wan), (Lines{"wan_proto",
                                                       "ap_mode",
                                                       "factory_mode",
                                                       "wan_domain",
                                                       "Device_name",
                                                       "wan_ether_wan_assign",
                                                       "wan_ipaddr",
                                                       "wan_netmask",
                                                       "wan_gateway",
                                                       "wan_ether_dns_assign",
                                                       "wan_ether_dns",
                                                       "wan_ether_mac_assign",
                                                       "wan_remote_mac",
                                                       "wan_ether_this_mac",
                                                       "wan_dhcp_mtu",
                                                       "dhcp_vendorid",
                                                       "dhcp_clientid",
                                                       "wan_endis_dod",
                                                       "bas_auto_conn_flag",
                                                       "bas_conn_time_num",
                                                       "wan_test_status",
                                                       "wan_pppoe_username",
                                                       "wan_pppoe_passwd",
                                                       "wan_pppoe_demand",
                                                       "wan_pppoe_idletime",
                                                       "wan_pppoe_service",
                                                       "wan_pppoe_ip",
                                                       "wan_pppoe_eth_mask",
                                                       "wan_pppoe_intranet_ip",
                                                       "wan_pppoe_mask",
                                                       "wan_pppoe_wan_assign",
                                                       "wan_pppoe_dns_assign",
                                                       "wan_pppoe_mac_assign",
                                                       "wan_pppoe_this_mac",
                                                       "wan_pppoe_mtu",
                                                       "wan_pptp_username",
                                                       "wan_pptp_password",
                                                       "wan_pptp_demand",
                                                       "wan_pptp_idle_time",
                                                       "wan_pptp_wan_assign",
                                                       "wan_pptp_local_ip",
                                                       "wan_pptp_eth_mask",
                                                       "wan_pptp_server_ip",
                                                       "pptp_gw_static_route",
                                                       "wan_pptp_connection_id",
                                                       "wan_pptp_dns_assign",
                                                       "wan_pptp_mac_assign",
                                                       "wan_pptp_this_mac",
                                                       "wan_pptp_mtu",
                                                       "wan_l2tp_username",
                                                       "wan_l2tp_password",
                                                       "wan_l2tp_demand",
                                                       "wan_l2tp_idle_time",
                                                       "wan_l2tp_wan_assign",
                                                       "wan_l2tp_local_ip",
                                                       "wan_l2tp_eth_mask",
                                                       "wan_l2tp_server_ip",
                                                       "l2tp_gw_static_route",
                                                       "wan_l2tp_connection_id",
                                                       "wan_l2tp_dns_assign",
                                                       "wan_l2tp_mac_assign",
                                                       "wan_l2tp_this_mac",
                                                       "wan_l2tp_mtu",
                                                       "wan_mulpppoe1_username",
                                                       "wan_mulpppoe1_passwd",
                                                       "wan_mulpppoe1_service",
                                                       "wan_mulpppoe1_ip",
                                                       "wan_mulpppoe1_dns_assign",
                                                       "wan_mulpppoe_demand",
                                                       "wan_mulpppoe1_idletime",
                                                       "wan_mulppp_mtu",
                                                       "wan_enable_session",
                                                       "wan_mulpppoe2_session",
                                                       "wan_mulpppoe2_username",
                                                       "wan_mulpppoe2_passwd",
                                                       "wan_mulpppoe2_service",
                                                       "wan_mulpppoe2_wan_assign",
                                                       "wan_mulpppoe2_ip",
                                                       "wan_mulpppoe2_dns_assign",
                                                       "wan_ether2_dns",
                                                       "wan_mulpppoe2_mtu",
                                                       "wan_orange_username",
                                                       "enable_orange",
                                                       "wan_orange_dhcp_mac_assign",
                                                       "wan_orange_dhcp_this_mac",
                                                       "wan_orange_pppoe_passwd",
                                                       "wan_orange_pppoe_demand",
                                                       "wan_orange_pppoe_idletime",
                                                       "wan_orange_pppoe_mac_assign",
                                                       "wan_orange_pppoe_this_mac",
                                                       "ipv6_sameinfo",
                                                       "ipv6_type",
                                                       "enable_vlan",
                                                       "iptv_vlan_enable",
                                                       "iptv_vlan",
                                                       "vlan_type",
                                                       "vlan_tag_",
                                                       "iptv_mask"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing wan");
    ietf_wan.register_();
    EXPECT_EQ(device.log().back(), "register() -  wan");
}

TEST(IetfWanTest, TheThreeFiltersAreCallbacksOfTheirOwn)
{
    const NetworkDevice device;
    device.enable(ietf_wan);
    const std::vector<KeyRecord> &records = registry().records();
    ASSERT_EQ(records.size(), 98U);
    std::vector<UpdateCallback> distinct;
    for (const KeyRecord &record : records) {
        ASSERT_EQ(record.normal.size(), 1U);
        distinct.push_back(record.normal[0]);
    }
    EXPECT_EQ(std::count(distinct.begin(), distinct.end(), distinct[0]), 95);
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    EXPECT_EQ(distinct.size(), 4U);
}

TEST(IetfWanTest, AFilterRunsTheUpdateOnlyInItsMode)
{
    const NetworkDevice device;
    device.enable(ietf_wan);
    int job = 0;
    const auto runs = [&](const char *key) {
        device.clear_log();
        device.apply({key}, ++job);
        const Lines log = device.log();
        return std::find(log.begin(), log.end(), " update wan") != log.end();
    };
    EXPECT_TRUE(runs("wan_proto"));
    EXPECT_FALSE(runs("vlan_type"));
    EXPECT_FALSE(runs("vlan_tag_"));
    EXPECT_FALSE(runs("iptv_mask"));
    device.set({{"enable_vlan", "1"}});
    EXPECT_TRUE(runs("vlan_type"));
    EXPECT_FALSE(runs("vlan_tag_"));
    EXPECT_FALSE(runs("iptv_mask"));
    device.set({{"vlan_type", "1"}});
    EXPECT_TRUE(runs("vlan_type"));
    EXPECT_TRUE(runs("vlan_tag_"));
    EXPECT_FALSE(runs("iptv_mask"));
    device.set({{"vlan_type", "0"}});
    EXPECT_FALSE(runs("vlan_tag_"));
    EXPECT_TRUE(runs("iptv_mask"));
    device.set({{"enable_vlan", "0"}});
    EXPECT_FALSE(runs("vlan_type"));
    EXPECT_FALSE(runs("iptv_mask"));
}

TEST(IetfWanTest, EveryCallbackReturnsZeroAlsoOnASatellite)
{
    const NetworkDevice device;
    device.be_base(false);
    device.enable(ietf_wan);
    for (const KeyRecord &record : registry().records()) {
        EXPECT_EQ(record.normal.at(0)(1), 0);
    }
}

TEST(IetfWanTest, AnUnknownTypeHandsOverTheEmptyDocument)
{
    const NetworkDevice device;
    EXPECT_EQ(device.document_for(ietf_wan, "wan", {}), "{}");
    EXPECT_EQ(device.document_for(ietf_wan, "wan", {{"wan_proto", "bridge"}}), "{}");
    EXPECT_TRUE(device.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update.network.wan"));
    EXPECT_TRUE(device.startup_lines("network", "wan").empty());
}

TEST(IetfWanTest, FactoryModeAndSatellitesGiveTheEmptyDocument)
{
    const NetworkDevice device;
    EXPECT_EQ(device.document_for(ietf_wan, "wan", {{"wan_proto", "dhcp"}, {"factory_mode", "1"}}),
              "{}");
    device.be_base(false);
    EXPECT_EQ(device.document_for(ietf_wan, "wan", {{"factory_mode", "0"}, {"ap_mode", "1"}}),
              "{}");
}

TEST(IetfWanTest, AnAccessPointHasTheMembersOfTheBridgeOnly)
{
    const NetworkDevice device;
    EXPECT_EQ(device.document_for(ietf_wan, "wan", {{"ap_mode", "1"}, {"wan_proto", "pppoe"}}),
              R"({"interface":{"wan":{"ifname":"eth0"}}})");
}

TEST(IetfWanTest, AnAccessPointKeepsTheSubInterfaceOfTheInternetService)
{
    const NetworkDevice device;
    EXPECT_EQ(device.document_for(ietf_wan, "wan",
                                  {{"ap_mode", "1"},
                                   {"enable_vlan", "1"},
                                   {"vlan_type", "1"},
                                   {"vlan_tag_1", "1 Internet 10 0 0"}}),
              R"({"interface":{"wan":{"ifname":"eth0-v10"}}})");
}

TEST(IetfWanTest, SessionsAreNamedByTheSystemInformation)
{
    const NetworkDevice device;
    systeminfo[wan_net_if].value = "br-out";
    systeminfo[ppp_net_section].value = "first";
    systeminfo[mppp_net_section].value = "second";
    const std::string text = device.document_for(ietf_wan, "wan", {{"wan_proto", "mulpppoe"}});
    EXPECT_NE(text.find(R"("first":{"ifname":"br-out")"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("second":{"ifname":"br-out")"), std::string::npos) << text;
}

TEST(IetfWanTest, NamesComeFromTheSystemInformation)
{
    const NetworkDevice device;
    systeminfo[wan_eth_ifs].value = "eth9";
    systeminfo[wan_net_section].value = "wide";
    EXPECT_EQ(device.document_for(ietf_wan, "wide", {{"ap_mode", "1"}}),
              R"({"interface":{"wide":{"ifname":"eth9"}}})");
}

TEST(IetfWanTest, EachTypeAndProfileHasItsBuilder)
{
    const NetworkDevice device;
    const struct {
        const char *proto;
        const char *text; ///< that only this builder's document has
        bool session;
    } types[] = {
        {"orange_dhcp", R"("speisp":"orange_france_dhcp")", false},
        {"orange_pppoe",
         R"("proto":"pppoe","force_link":"1","ipv6":"0","username":"","password":"","connmode")",
         true},
        {"static", R"("proto":"static","ipaddr":"","netmask":"","gateway":"")", false},
        {"dhcp", R"("proto":"dhcp","force_link":"1","domain":"")", false},
        {"unifi_malaysia_dhcp", R"("proto":"dhcp","force_link":"1","domain":"")", false},
        {"singtel_singa_dhcp", R"("proto":"dhcp","force_link":"1","domain":"")", false},
        {"maxis_malaysia_dhcp", R"("proto":"dhcp","force_link":"1","domain":"")", false},
        {"pppoe",
         R"("proto":"pppoe","force_link":"1","ipv6":"0","username":"","password":"","service")",
         true},
        {"movistar_spain_pppoe",
         R"("proto":"pppoe","force_link":"1","ipv6":"0","username":"","password":"","service")",
         true},
        {"vodafone_spain_pppoe",
         R"("proto":"pppoe","force_link":"1","ipv6":"0","username":"","password":"","service")",
         true},
        {"pptp", R"("proto":"pptp")", true},
        {"l2tp", R"("proto":"l2tp")", true},
        {"mulpppoe", R"("session":"session1")", true},
    };
    for (const auto &[proto, text, session] : types) {
        const std::string document = device.document_for(ietf_wan, "wan", {{"wan_proto", proto}});
        EXPECT_NE(document.find(text), std::string::npos) << proto << " " << document;
        EXPECT_EQ(document.find("\"wan1p\"") != std::string::npos, session) << proto;
    }
}

TEST(IetfWanTest, AnUpdateLogsItsLine)
{
    const NetworkDevice device;
    device.run_update(ietf_wan, 1);
    EXPECT_EQ(device.log().back(), " update wan");
}

} // namespace
} // namespace qorcfg
