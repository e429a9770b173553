#include "components/components.h"

#include "engine/systeminfo.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;
using Settings = std::initializer_list<std::pair<const char *, std::string>>;

/// The document's text around the options of its one section.
std::string section(const std::string &options)
{
    return R"({"interface":{"wan16":{)" + options + "}}}";
}

constexpr const char *no_section = R"({"interface":{}})";
const std::string secured_and_manual = R"("ipv6_cone_filtering":"secured","peerdns":"0")";

class IetfNetworkIpv6Test : public testing::Test {
protected:
    std::string document(const std::string &type, Settings settings = {})
    {
        device_.set({{"ipv6_type", type}});
        device_.set(settings);
        device_.start_up(ietf_network_ipv6);
        return device_.document("network", "wan6");
    }

    const DeviceRoot device_;
};

TEST_F(IetfNetworkIpv6Test, The38KeysAreSubscribedInOrder)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_network_ipv6), (Lines{"ap_mode",
                                                                 "ipv6_type",
                                                                 "wan_ipv6_cone_fitering",
                                                                 "ipv6_auto_dns_asign",
                                                                 "ipv6_auto_dns",
                                                                 "ipv6_6to4_relay_type",
                                                                 "ipv6_6to4_relay",
                                                                 "ipv6_6to4_dns_assign",
                                                                 "ipv6_6to4_dns",
                                                                 "ipv6_fixed_wan_ip",
                                                                 "ipv6_fixed_wan_prefix_len",
                                                                 "ipv6_fixed_gw_ip",
                                                                 "ipv6_fixed_dns",
                                                                 "ipv6_dhcp_userClass",
                                                                 "ipv6_dhcp_domainName",
                                                                 "ipv6_dhcp_dns_assign",
                                                                 "ipv6_dhcp_dns",
                                                                 "ipv6_autoConfig_userClass",
                                                                 "ipv6_autoConfig_domainName",
                                                                 "ipv6_autoConfig_dns_assign",
                                                                 "ipv6_autoConfig_dns",
                                                                 "Ipv6rdPrefix",
                                                                 "Ipv6rdPlen",
                                                                 "Ipv6Relay",
                                                                 "Ipv6rdv4Mask",
                                                                 "ipv6_6rd_dns_assign",
                                                                 "ipv6_6rd_dns",
                                                                 "ipv6_pppoe_username",
                                                                 "ipv6_pppoe_passwd",
                                                                 "ipv6_pppoe_servername",
                                                                 "ipv6_sameinfo",
                                                                 "ipv6_pppoe_dns_assign",
                                                                 "ipv6_pppoe_dns",
                                                                 "ipv6_ripng",
                                                                 "ipv6.ndproxy.enable",
                                                                 "ipv6.dslite.fixed_aftr_enable",
                                                                 "ipv6.dslite.fixed_aftr_ip_addr",
                                                                 "wan_orange_username"}));
    EXPECT_EQ(device_.log()[0], "init() - Initializing network_ipv6");
}

TEST_F(IetfNetworkIpv6Test, TheRegisterRoutineAndTheUpdateLog)
{
    ietf_network_ipv6.register_();
    EXPECT_EQ(device_.log().back(), "register() -  network_ipv6");
    document("bridge");
    const Lines log = device_.log();
    EXPECT_EQ(Lines(log.end() - 2, log.end()),
              (Lines{" update network_ipv6",
                     "ipv6 json output " + section(R"("proto":"pasthru","ifname":"br-wan",)"
                                                   R"("ipv6_type":"pasthru")")}));
}

TEST_F(IetfNetworkIpv6Test, AccessPointModeAndDisabledGiveAnEmptyInterfaceObject)
{
    EXPECT_EQ(document("disabled"), no_section);
    EXPECT_EQ(document("dhcp", {{"ap_mode", "1"}}), no_section);
    EXPECT_EQ(device_.startup_lines("network", "wan6"), Lines{});
}

TEST_F(IetfNetworkIpv6Test, ASatelliteWritesToo)
{
    device_.be_base(false);
    device_.set({{"ipv6_type", "v6plus"}});
    EXPECT_EQ(device_.run_update(ietf_network_ipv6, 1), 0);
    EXPECT_EQ(device_.lines(1, "network", "wan6")[0], "set network.wan16=interface");
}

TEST_F(IetfNetworkIpv6Test, DhcpHasItsUserClassAndDomainWhenSet)
{
    EXPECT_EQ(document("dhcp", {{"ipv6_ripng", "1"}}),
              section(R"("proto":"dhcpv6","ifname":"br-wan","ipv6_type":"dhcpv6",)"
                      R"("ripng_enable":"1",)" +
                      secured_and_manual));
    EXPECT_EQ(document("dhcp", {{"ipv6_dhcp_userClass", "uc"}, {"ipv6_dhcp_domainName", "dn"}}),
              section(R"("proto":"dhcpv6","ifname":"br-wan","ipv6_type":"dhcpv6",)"
                      R"("userclass":"uc","domain_name":"dn","ripng_enable":"1",)" +
                      secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, AutoConfigHasKeysOfItsOwn)
{
    EXPECT_EQ(document("autoConfig", {{"ipv6_autoConfig_userClass", "uc"},
                                      {"ipv6_autoConfig_domainName", "dn"},
                                      {"ipv6_dhcp_userClass", "other"},
                                      {"ipv6_autoConfig_dns_assign", "0"},
                                      {"ipv6_ripng", "0"}}),
              section(R"("proto":"dhcpv6","ifname":"br-wan","ipv6_type":"autoconfig",)"
                      R"("userclass":"uc","domain_name":"dn","ripng_enable":"0",)"
                      R"("ipv6_cone_filtering":"secured","peerdns":"1")"));
}

TEST_F(IetfNetworkIpv6Test, BridgeHasNoConeFilteringAndNoDns)
{
    EXPECT_EQ(document("bridge", {{"ipv6_ripng", "1"}, {"wan_ipv6_cone_fitering", "1"}}),
              section(R"("proto":"pasthru","ifname":"br-wan","ipv6_type":"pasthru")"));
}

TEST_F(IetfNetworkIpv6Test, A6to4RelayTravelsOnlyWhenItIsChosenByHand)
{
    const std::string rest = R"("proto":"6to4","ifname":"br-wan","ipv6_type":"6to4",)"
                             R"("ripng_enable":"1",)" +
                             secured_and_manual;
    EXPECT_EQ(document("6to4", {{"ipv6_6to4_relay_type", "0"},
                                {"ipv6_6to4_relay", "192.0.2.1"},
                                {"ipv6_ripng", "1"}}),
              section(rest));
    EXPECT_EQ(document("6to4", {{"ipv6_6to4_relay_type", "1"}}),
              section(R"("usr_peeraddr":"192.0.2.1",)" + rest));
    EXPECT_EQ(document("6to4", {{"ipv6_6to4_relay", std::string(32, 'r')}}),
              section(R"("usr_peeraddr":")" + std::string(31, 'r') + R"(",)" + rest));
}

TEST_F(IetfNetworkIpv6Test, A6rdRelayIsReadFromAKeyThatIsNotSubscribed)
{
    EXPECT_EQ(document("6rd", {{"Ipv6rdPrefix", "2001:db8::"},
                               {"Ipv6rdPlen", "32"},
                               {"Ipv6rdRelay", "192.0.2.1"},
                               {"Ipv6Relay", "192.0.2.9"},
                               {"Ipv6rdv4Mask", "8"},
                               {"ipv6_ripng", "1"}}),
              section(R"("ip6prefix":"2001:db8::","ip6prefixlen":"32","peeraddr":"192.0.2.1",)"
                      R"("ip4prefixlen":"8","proto":"6rd","ifname":"br-wan","ipv6_type":"6rd",)"
                      R"("ripng_enable":"1",)" +
                      secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, The6rdFieldsAreCut)
{
    EXPECT_EQ(document("6rd", {{"Ipv6rdPrefix", std::string(128, 'p')},
                               {"Ipv6rdPlen", "1234"},
                               {"Ipv6rdRelay", std::string(32, 'r')},
                               {"Ipv6rdv4Mask", "5678"}}),
              section(R"("ip6prefix":")" + std::string(127, 'p') +
                      R"(","ip6prefixlen":"123","peeraddr":")" + std::string(31, 'r') +
                      R"(","ip4prefixlen":"567","proto":"6rd","ifname":"br-wan",)"
                      R"("ipv6_type":"6rd",)" +
                      secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, AFixedAddressAlwaysHasManualDns)
{
    EXPECT_EQ(document("fixed", {{"ipv6_fixed_wan_ip", "2001:db8::2"},
                                 {"ipv6_fixed_wan_prefix_len", "64"},
                                 {"ipv6_fixed_gw_ip", "2001:db8::1"},
                                 {"ipv6_fixed_dns_assign", "0"},
                                 {"ipv6_fixed_dns1", "2001:db8::53"},
                                 {"ipv6_fixed_dns2", "2001:db8::54"},
                                 {"ipv6_ripng", "0"}}),
              section(R"("ip6addr":"2001:db8::2/64","ip6gw":"2001:db8::1","proto":"static",)"
                      R"("ifname":"br-wan","ipv6_type":"static","ipv6":"1","ripng_enable":"0",)"
                      R"("ipv6_cone_filtering":"secured","peerdns":"0",)"
                      R"("dns":"2001:db8::53 2001:db8::54")"));
}

TEST_F(IetfNetworkIpv6Test, FixedAddressesAreCutAndNotJudged)
{
    EXPECT_EQ(document("fixed", {{"ipv6_fixed_wan_ip", std::string(128, 'a')},
                                 {"ipv6_fixed_wan_prefix_len", "long"},
                                 {"ipv6_fixed_gw_ip", std::string(128, 'g')}}),
              section(R"("ip6addr":")" + std::string(127, 'a') + R"(/lon","ip6gw":")" +
                      std::string(127, 'g') +
                      R"(","proto":"static","ifname":"br-wan","ipv6_type":"static","ipv6":"1",)" +
                      secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, AFixedAddressThatIsUnsetLeavesTheSlash)
{
    EXPECT_EQ(document("fixed"), section(R"("ip6addr":"/","proto":"static","ifname":"br-wan",)"
                                         R"("ipv6_type":"static","ipv6":"1",)" +
                                         secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, WithoutAFirstServerTheListBeginsWithABlank)
{
    document("fixed", {{"ipv6_fixed_dns2", "2001:db8::54"}});
    EXPECT_EQ(device_.startup_lines("network", "wan6").back(),
              "set network.wan16.dns= 2001:db8::54");
}

TEST_F(IetfNetworkIpv6Test, ServersAreCutAt127Bytes)
{
    document("fixed", {{"ipv6_fixed_dns1", std::string(200, '1')},
                       {"ipv6_fixed_dns2", std::string(200, '2')}});
    EXPECT_EQ(device_.startup_lines("network", "wan6").back(),
              "set network.wan16.dns=" + std::string(127, '1') + " " + std::string(127, '2'));
}

TEST_F(IetfNetworkIpv6Test, AutoDetectUsesTheAutoKeysForDns)
{
    EXPECT_EQ(document("autoDetect", {{"ipv6_ripng", "1"},
                                      {"ipv6_autoDetect_dns_assign", "0"},
                                      {"ipv6_autoDetect_dns1", "2001:db8::9"},
                                      {"ipv6_auto_dns_assign", "1"},
                                      {"ipv6_auto_dns1", "2001:db8::53"}}),
              section(R"("proto":"autodetect","ifname":"br-wan","ipv6_type":"autodetect",)"
                      R"("ripng_enable":"1","ipv6_cone_filtering":"secured","peerdns":"0",)"
                      R"("dns":"2001:db8::53")"));
    EXPECT_NE(document("autoDetect", {{"ipv6_auto_dns_assign", "0"}}).find(R"("peerdns":"1")"),
              std::string::npos);
}

TEST_F(IetfNetworkIpv6Test, PppoeOfItsOwnHasCredentials)
{
    EXPECT_EQ(document("pppoe", {{"ipv6_sameinfo", "0"},
                                 {"ipv6_pppoe_username", std::string(128, 'u')},
                                 {"ipv6_pppoe_passwd", std::string(128, 'p')},
                                 {"ipv6_pppoe_servername", std::string(64, 's')},
                                 {"ipv6_ripng", "1"}}),
              section(R"("ipv6":"auto","unit":"2","proto":"pppoe","demand":"0","username":")" +
                      std::string(127, 'u') + R"(","password":")" + std::string(127, 'p') +
                      R"(","service":")" + std::string(63, 's') +
                      R"(","ifname":"br-wan","ipv6_type":"pppoe","ripng_enable":"1",)" +
                      secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, PppoeWithTheAccountOfIpv4HasNoCredentials)
{
    EXPECT_EQ(document("pppoe", {{"ipv6_sameinfo", "1"}, {"ipv6_pppoe_username", "alice"}}),
              section(R"("proto":"qoripv6none","ifname":"br-wan","ipv6_type":"pppoe",)" +
                      secured_and_manual));
}

TEST_F(IetfNetworkIpv6Test, OrangeFranceHasConeFilteringAndNoDns)
{
    const std::string begin =
        R"("ifname":"@wan","proto":"dhcpv6","ipv6_type":"autoconfig",)"
        R"("orange_france_enable":"1","userclass":"FSVDSL_livebox.Internet.softathome.Livebox4",)";
    EXPECT_EQ(document("orange_france", {{"ipv6_ripng", "1"}}),
              section(begin + R"("ipv6_cone_filtering":"secured")"));
    EXPECT_EQ(document("orange_france", {{"wan_orange_username", std::string(128, 'o')}}),
              section(begin + R"("orange_france_username":")" + std::string(127, 'o') +
                      R"(","ipv6_cone_filtering":"secured")"));
}

TEST_F(IetfNetworkIpv6Test, DsliteHasItsTunnelEnd)
{
    EXPECT_EQ(document("dslite", {{"ipv6.ndproxy.enable", "1"},
                                  {"ipv6.dslite.fixed_aftr_enable", "1"},
                                  {"ipv6.dslite.fixed_aftr_ip_addr", "2001:db8::a"},
                                  {"ipv6_ripng", "1"}}),
              section(R"("ifname":"br-wan","proto":"dhcpv6","ipv6_type":"autoconfig",)"
                      R"("ds_enable":"1","nd_enable":"1","fixed_aftr_enable":"1",)"
                      R"("fixed_aftr_ip_addr":"2001:db8::a")"));
}

TEST_F(IetfNetworkIpv6Test, V6plusHasNoTunnelEnd)
{
    EXPECT_EQ(
        document("v6plus", {{"ipv6.ndproxy.enable", "0"}, {"ipv6.dslite.fixed_aftr_enable", "1"}}),
        section(R"("ifname":"br-wan","proto":"dhcpv6","ipv6_type":"autoconfig",)"
                R"("mape_enable":"1","nd_enable":"0")"));
}

TEST_F(IetfNetworkIpv6Test, AnyOtherTypeHasOnlyTheCommonOptionsUnderItsOwnName)
{
    EXPECT_EQ(document("auto", {{"ipv6_ripng", "1"},
                                {"wan_ipv6_cone_fitering", "1"},
                                {"ipv6_auto_dns_assign", "0"}}),
              section(R"("ipv6_cone_filtering":"open","peerdns":"1")"));
    EXPECT_EQ(document("", {{"ipv6__dns1", "2001:db8::53"}}),
              section(R"("ipv6_cone_filtering":"open","peerdns":"0","dns":"2001:db8::53")"));
    EXPECT_EQ(document("Dhcp"), section(R"("ipv6_cone_filtering":"open","peerdns":"0")"));
}

TEST_F(IetfNetworkIpv6Test, NamesComeFromTheSystemInformation)
{
    const auto saved = systeminfo;
    systeminfo[wan_net_if].value = "br-out";
    systeminfo[wanv6_net_section].value = "outside6";
    const std::string named = document("bridge");
    systeminfo = saved;
    EXPECT_EQ(named, R"({"interface":{"outside6":{"proto":"pasthru","ifname":"br-out",)"
                     R"("ipv6_type":"pasthru"}}})");
}

TEST_F(IetfNetworkIpv6Test, ATypeIsReadTo31Characters)
{
    const std::string kept(31, 't');
    document(kept + "lost", {{"ipv6_ttttttttttttttttttttttttttttttt_dns_assign", "0"}});
    EXPECT_EQ(device_.startup_lines("network", "wan6").back(), "set network.wan16.peerdns=1");
}

TEST_F(IetfNetworkIpv6Test, OnlyTheFirstCharacterOfTheDnsAssignmentCounts)
{
    document("dhcp", {{"ipv6_dhcp_dns_assign", "01"}});
    EXPECT_EQ(device_.startup_lines("network", "wan6").back(), "set network.wan16.peerdns=1");
    document("dhcp", {{"ipv6_dhcp_dns_assign", "10"}});
    EXPECT_EQ(device_.startup_lines("network", "wan6").back(), "set network.wan16.peerdns=0");
}

TEST_F(IetfNetworkIpv6Test, DisablingRemovesTheSection)
{
    document("v6plus");
    device_.set({{"ipv6_type", "disabled"}});
    device_.apply({"ipv6_type"}, 2);
    EXPECT_EQ(device_.lines(2, "network", "wan6"), (Lines{"delete network.wan16"}));
}

TEST_F(IetfNetworkIpv6Test, AChangedServerIsNotSeenUntilASubscribedKeyChanges)
{
    document("dhcp", {{"ipv6_dhcp_dns1", "2001:db8::53"}});
    device_.set({{"ipv6_dhcp_dns1", "2001:db8::54"}});
    device_.apply({"ipv6_dhcp_dns1"}, 1);
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.network.wan6"));
    device_.apply({"ipv6_dhcp_dns"}, 2);
    EXPECT_EQ(device_.lines(2, "network", "wan6").back(), "set network.wan16.dns=2001:db8::54");
}

} // namespace
} // namespace qorcfg
