#include "components/wan_builders.h"

#include "support/network_device.h"

namespace qorcfg {
namespace {

using test::NetworkDevice;

class WanBlocksTest : public testing::Test {
protected:
    /// The options that `add` adds to an empty section, as JSON text.
    template <typename Add> static std::string added(Add add)
    {
        Document doc;
        Section section = doc.section("interface", "wan1p");
        add(section);
        return json_compact_text(section.get());
    }
    static std::string dial()
    {
        return added([](Section &section) { add_dial(section, {"demand_key", "idle_key"}); });
    }
    static std::string dns()
    {
        return added([](Section &section) { add_dns(section, "dns_choice"); });
    }

    NetworkDevice device_;
};

TEST_F(WanBlocksTest, TheChoiceDecidesTheMac)
{
    const MacKeys keys{"mac_choice", "own_mac"};
    device_.set({{"own_mac", "00:53:00:00:00:02"}, {"wan_remote_mac", "00:53:00:00:00:03"}});
    EXPECT_EQ(wan_mac(keys), "");
    const struct {
        const char *choice;
        const char *mac;
    } cases[] = {{"0", "00:53:00:AA:BB:01"},
                 {"1", "00:53:00:00:00:03"},
                 {"2", "00:53:00:00:00:02"},
                 {"3", ""},
                 {"00", ""}};
    for (const auto &[choice, mac] : cases) {
        device_.set({{"mac_choice", choice}});
        EXPECT_EQ(wan_mac(keys), mac) << choice;
    }
}

TEST_F(WanBlocksTest, MacsAreCutAt31Bytes)
{
    const std::string text(40, 'a');
    device_.set({{"own_mac", text}, {"wan_remote_mac", text}, {"mac_choice", "2"}});
    EXPECT_EQ(wan_mac({"mac_choice", "own_mac"}), text.substr(0, 31));
    device_.set({{"mac_choice", "1"}});
    EXPECT_EQ(wan_mac({"mac_choice", "own_mac"}), text.substr(0, 31));
    device_.write("/tmp/cache/systeminfo/boarddata.info", R"({"wan_mac": ")" + text + "\"}");
    EXPECT_EQ(factory_mac(), text.substr(0, 31));
}

TEST_F(WanBlocksTest, WithoutBoardFileTheFactoryMacIsEmpty)
{
    device_.write("/tmp/cache/systeminfo/boarddata.info", "damaged");
    device_.set({{"mac_choice", "0"}});
    EXPECT_EQ(wan_mac({"mac_choice", "own_mac"}), "");
}

TEST_F(WanBlocksTest, TypedServersAreJoinedWithTheirBlanks)
{
    device_.set({{"dns_choice", "1"},
                 {"wan_ether_dns1", "192.0.2.1"},
                 {"wan_ether_dns3", "192.0.2.3"},
                 {"wan_proto", "static"}});
    EXPECT_EQ(dns(), R"({"peerdns":"0","dns":"192.0.2.1  192.0.2.3"})");
    device_.set({{"wan_proto", "dhcp"}, {"wan_ether_dns3", ""}});
    EXPECT_EQ(dns(), R"({"peerdns":"0","dns":"192.0.2.1  "})");
    device_.set({{"wan_ether_dns1", ""}});
    EXPECT_EQ(dns(), R"({"peerdns":"0","dns":"  "})");
}

TEST_F(WanBlocksTest, OtherProtocolsAndIspProfilesHaveTwoServers)
{
    device_.set({{"dns_choice", "1"},
                 {"wan_ether_dns1", "192.0.2.1"},
                 {"wan_ether_dns2", "192.0.2.2"},
                 {"wan_ether_dns3", "192.0.2.3"}});
    for (const char *proto : {"pppoe", "unifi_malaysia_dhcp", "pptp"}) {
        device_.set({{"wan_proto", proto}});
        EXPECT_EQ(dns(), R"({"peerdns":"0","dns":"192.0.2.1 192.0.2.2"})") << proto;
    }
}

TEST_F(WanBlocksTest, AServerIsCutAt15Bytes)
{
    device_.set({{"dns_choice", "1"},
                 {"wan_proto", "static"},
                 {"wan_ether_dns1", "1234567890123456"},
                 {"wan_ether_dns2", "no address at all"},
                 {"wan_ether_dns3", "1234567890123456"}});
    EXPECT_EQ(dns(), R"({"peerdns":"0","dns":"123456789012345 no address at a 123456789012345"})");
}

TEST_F(WanBlocksTest, AnyOtherChoiceTakesTheServersOfThePeer)
{
    for (const char *choice : {"", "0", "2"}) {
        device_.set({{"dns_choice", choice}});
        EXPECT_EQ(dns(), R"({"peerdns":"1"})");
    }
}

TEST_F(WanBlocksTest, TestStatusAndDemandDecideHowASessionIsDialled)
{
    const struct {
        const char *test;
        const char *demand;
        const char *options;
    } cases[] = {
        {"", "", R"({"connmode":""})"},
        {"none", "0", R"({"run_test":"0","connmode":"0"})"},
        {"none", "1", R"({"run_test":"0","connmode":"1","demand":"300"})"},
        {"none", "2", R"({"run_test":"0","connmode":"2","auto":"0"})"},
        {"test", "1", R"({"run_test":"1","connmode":"1","demand":"300"})"},
        {"test", "2", R"({"run_test":"1","connmode":"2"})"},
        {"other", "2", R"({"connmode":"2"})"},
        {"test_multi1", "1", R"({"connmode":"1","demand":"300"})"},
    };
    device_.set({{"idle_key", "300"}});
    for (const auto &[test, demand, options] : cases) {
        device_.set({{"wan_test_status", test}, {"demand_key", demand}});
        EXPECT_EQ(dial(), options);
    }
    device_.set({{"idle_key", ""}});
    EXPECT_EQ(dial(), R"({"connmode":"1","demand":""})");
}

TEST_F(WanBlocksTest, TheDisconnectTimeNeedsItsFlag)
{
    device_.set({{"bas_conn_time_num", "4"}});
    EXPECT_EQ(added(add_disconnect_time), "{}");
    device_.set({{"bas_auto_conn_flag", "1"}});
    EXPECT_EQ(added(add_disconnect_time), R"({"disconn_time":"4"})");
}

TEST_F(WanBlocksTest, Ipv6SharesTheSessionOnlyForPppoeWithTheSameAccount)
{
    EXPECT_EQ(added(add_ipv6_over_ppp), R"({"ipv6":"0"})");
    device_.set({{"ipv6_sameinfo", "1"}, {"ipv6_type", "dhcp"}});
    EXPECT_EQ(added(add_ipv6_over_ppp), R"({"ipv6":"0"})");
    device_.set({{"ipv6_type", "pppoe"}});
    EXPECT_EQ(added(add_ipv6_over_ppp), R"({"ipv6":"auto"})");
    device_.set({{"ipv6_sameinfo", "0"}});
    EXPECT_EQ(added(add_ipv6_over_ppp), R"({"ipv6":"0"})");
}

TEST_F(WanBlocksTest, AFixedAddressNeedsItsChoice)
{
    const auto add = [](Section &section) { add_fixed_address(section, "choice", "address"); };
    device_.set({{"address", "not an address"}, {"choice", "0"}});
    EXPECT_EQ(added(add), "{}");
    device_.set({{"choice", "1"}});
    EXPECT_EQ(added(add), R"({"ipaddr":"not an address"})");
    device_.set({{"address", ""}});
    EXPECT_EQ(added(add), R"({"ipaddr":""})");
}

} // namespace
} // namespace qorcfg
