#include "components/components.h"

#include "support/network_device.h"

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Settings = std::initializer_list<std::pair<const char *, std::string>>;

class WanMultiPppoeTest : public testing::Test {
protected:
    WanMultiPppoeTest()
    {
        device_.set({{"wan_proto", "mulpppoe"},
                     {"wan_mulppp_mtu", "1454"},
                     {"wan_mulpppoe1_username", "u1"},
                     {"wan_mulpppoe1_passwd", "p1"},
                     {"wan_mulpppoe1_service", "s1"},
                     {"wan_mulpppoe1_ip", "192.0.2.11"},
                     {"wan_mulpppoe_demand", "1"},
                     {"wan_mulpppoe1_idletime", "300"},
                     {"wan_enable_session2", "0"},
                     {"wan_mulpppoe2_username", "u2"},
                     {"wan_mulpppoe2_password", "p2"},
                     {"wan_mulpppoe2_servicename", "s2"},
                     {"wan_mulpppoe2_passwd", "not read"},
                     {"wan_mulpppoe2_service", "not read"},
                     {"wan_mulpppoe2_ip", "192.0.2.12"},
                     {"wan_mulpppoe2_mtu", "1440"},
                     {"wan_ether_dns1", "192.0.2.1"},
                     {"wan_ether_dns2", "192.0.2.2"},
                     {"wan_ether_dns3", "192.0.2.3"},
                     {"wan_ether2_dns1", "192.0.2.4"},
                     {"wan_test_status", "none"},
                     {"bas_auto_conn_flag", "1"},
                     {"wan_ether_mac_assign", "2"}});
    }
    std::string wan(Settings settings) { return device_.document_for(ietf_wan, "wan", settings); }
    bool wan_has(Settings settings, const std::string &text)
    {
        return wan(settings).find(text) != std::string::npos;
    }
    static std::string document(const std::string &sessions)
    {
        return R"({"device":{"eth0":{"name":"eth0","macaddr":"00:53:00:AA:BB:01"}},)"
               R"("interface":{"wan":{"ifname":"eth0","type":"bridge","mtu":"1454",)"
               R"("macaddr":"00:53:00:AA:BB:01"},)" +
               sessions + "}}";
    }
    static constexpr const char *first_begin =
        R"("wan1p":{"ifname":"br-wan","proto":"mulpppoe","force_link":"1",)"
        R"("session":"session1","username":"u1","password":"p1","service":"s1",)";
    static constexpr const char *second_begin =
        R"("wan2p":{"ifname":"br-wan","proto":"mulpppoe","force_link":"1",)"
        R"("session":"session2",)";

    NetworkDevice device_;
};

TEST_F(WanMultiPppoeTest, OneSessionWithTheServersOfThePeer)
{
    EXPECT_EQ(wan({}),
              document(std::string(first_begin) + R"("run_test":"0","connmode":"1","demand":"300",)"
                                                  R"("peerdns":"1","mtu":"1454"})"));
}

TEST_F(WanMultiPppoeTest, OneSessionWithFixedAddressAndTypedServers)
{
    EXPECT_EQ(wan({{"wan_mulpppoe1_wan_assign", "1"}, {"wan_mulpppoe1_dns_assign", "1"}}),
              document(std::string(first_begin) +
                       R"("ipaddr":"192.0.2.11","run_test":"0","connmode":"1","demand":"300",)"
                       R"("peerdns":"0","dns":"192.0.2.1 192.0.2.2","mtu":"1454"})"));
}

TEST_F(WanMultiPppoeTest, TwoSessionsHaveTheirOptionsInOrder)
{
    EXPECT_EQ(wan({{"wan_enable_session2", "1"},
                   {"wan_mulpppoe2_session", "0"},
                   {"wan_mulpppoe2_wan_assign", "1"}}),
              document(std::string(first_begin) +
                       R"("run_test":"0","connmode":"1","demand":"300","peerdns":"1",)"
                       R"("mtu":"1454"},)" +
                       second_begin +
                       R"("area":"west","username":"u2","password":"p2","service":"s2",)"
                       R"("ipaddr":"192.0.2.12","peerdns":"1","mtu":"1440"})"));
}

TEST_F(WanMultiPppoeTest, TypedServersOfTheSecondSessionChangeTheFirstOnesWord)
{
    EXPECT_EQ(wan({{"wan_enable_session2", "1"},
                   {"wan_mulpppoe2_session", "1"},
                   {"wan_mulpppoe2_dns_assign", "1"}}),
              document(std::string(first_begin) +
                       R"("run_test":"0","connmode":"1","demand":"300","peerdns":"0",)"
                       R"("mtu":"1454"},)" +
                       second_begin +
                       R"("area":"east","username":"u2","password":"p2","service":"s2",)"
                       R"("dns":"192.0.2.4 ","mtu":"1440"})"));
}

TEST_F(WanMultiPppoeTest, AnythingButZeroEnablesTheSecondSession)
{
    EXPECT_TRUE(wan_has({{"wan_enable_session2", ""}}, R"("session":"session2","area":"other")"));
    EXPECT_TRUE(wan_has({{"wan_enable_session2", "00"}}, R"("session":"session2")"));
    EXPECT_FALSE(wan_has({{"wan_enable_session2", "0"}}, R"("session":"session2")"));
}

TEST_F(WanMultiPppoeTest, TestsOfOneSessionKeepTheOtherDown)
{
    EXPECT_TRUE(wan_has({{"wan_enable_session2", "1"}, {"wan_test_status", "test_multi1"}},
                        R"("run_test":"1","connmode":"1","demand":"300")"));
    EXPECT_TRUE(wan_has({}, R"("service":"s2","auto":"0","peerdns")"));
    EXPECT_TRUE(wan_has({{"wan_test_status", "test_multi2"}},
                        R"("run_test":"0","connmode":"1","auto":"0","demand":"300")"));
    EXPECT_TRUE(wan_has({}, R"("service":"s2","peerdns")"));
    EXPECT_TRUE(wan_has({{"wan_test_status", "test"}}, R"("run_test":"1","connmode")"));
    EXPECT_TRUE(wan_has({{"wan_test_status", "other"}}, R"("service":"s1","connmode")"));
}

TEST_F(WanMultiPppoeTest, ASessionDialledByHandIsNotAuto)
{
    EXPECT_TRUE(wan_has({{"wan_mulpppoe_demand", "2"}},
                        R"("run_test":"0","connmode":"2","auto":"0","peerdns")"));
    EXPECT_TRUE(wan_has({{"wan_test_status", "test_multi1"}},
                        R"("run_test":"1","connmode":"2","peerdns")"));
}

TEST_F(WanMultiPppoeTest, ListsOfServersAreCutAt63Bytes)
{
    const std::string server(40, 'a');
    EXPECT_TRUE(wan_has({{"wan_enable_session2", "1"},
                         {"wan_mulpppoe2_dns_assign", "1"},
                         {"wan_ether2_dns1", server},
                         {"wan_ether2_dns2", server}},
                        R"("dns":")" + server + " " + server.substr(0, 22) + "\""));
}

} // namespace
} // namespace qorcfg
