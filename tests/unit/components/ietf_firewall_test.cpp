#include "components/components.h"

#include "platform/key_id.h"
#include "support/device_root.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

const Lines keys_of_every_board{"wan_endis_spi",
                                "wan_endis_rspToPing",
                                "wan_endis_sipalg",
                                "wan_nat_fitering",
                                "remote_endis",
                                "remote_access",
                                "remote_iplist",
                                "remote_port",
                                "ipv6_allow_ping_internal_hosts",
                                "wan_endis_dmz",
                                "dmz_ipaddr",
                                "wan_enable_ipsec",
                                "wan_enable_pptp",
                                "wan_enable_l2tp",
                                "forwarding",
                                "disable_port_trigger",
                                "porttrigger_timeout",
                                "triggering",
                                "blockserv_ctrl",
                                "enable_multipppoe_serv",
                                "block_services",
                                "block_skeyword",
                                "block_KeyWord_DomainList",
                                "block_endis_Trusted_IP",
                                "block_trustedip",
                                "enable_multipppoe",
                                "mulpppoe_setting"};

class IetfFirewallTest : public testing::Test {
protected:
    void board(const std::string &region) const
    {
        device_.write("/tmp/cache/systeminfo/boarddata.info",
                      R"({"board_region": ")" + region + R"("})");
    }
    std::string document(const char *snapshot) const
    {
        device_.start_up(ietf_firewall);
        return device_.document("firewall", snapshot);
    }
    int result_of(const char *key, int job) const
    {
        device_.enable(ietf_firewall);
        return registry().find(config_key_id(key))->normal.at(0)(job);
    }

    DeviceRoot device_;
};

TEST_F(IetfFirewallTest, KeysAreSubscribedInOrder)
{
    board("PR");
    EXPECT_EQ(device_.subscribed_keys(ietf_firewall), keys_of_every_board);
    EXPECT_EQ(device_.log()[0], "init() - Initializing firewall");
    for (const KeyRecord &record : registry().records()) {
        EXPECT_EQ(record.normal.size(), 1U);
        EXPECT_TRUE(record.soap.empty());
    }
}

TEST_F(IetfFirewallTest, OnlyAWorldwideBoardFollowsTheLanguageAndItComesFirst)
{
    Lines with_language{"GUI_Region"};
    with_language.insert(with_language.end(), keys_of_every_board.begin(),
                         keys_of_every_board.end());
    board("WW");
    EXPECT_EQ(device_.subscribed_keys(ietf_firewall), with_language);
    board("WWX");
    EXPECT_EQ(device_.subscribed_keys(ietf_firewall), keys_of_every_board);
    board("");
    EXPECT_EQ(device_.subscribed_keys(ietf_firewall), keys_of_every_board);
}

TEST_F(IetfFirewallTest, EachKeyTriggersTheDocumentThatItFeeds)
{
    const std::pair<const char *, const char *> feeds[] = {
        {"wan_enable_l2tp", "basic"},          {"forwarding", "forwarding"},
        {"porttrigger_timeout", "triggering"}, {"block_services", "blockservc"},
        {"enable_multipppoe", "blocksites"},   {"mulpppoe_setting", "mulpppoe_policy"}};
    device_.enable(ietf_firewall);
    int job = 0;
    for (const auto &[key, snapshot] : feeds) {
        device_.apply({key}, ++job);
        const std::string start = "uci_update" + std::to_string(job) + ".";
        Lines batches;
        for (const std::string &name : device_.names_in("/tmp/cache/qorcfg/ucicfg.d")) {
            if (name.rfind(start, 0) == 0) {
                batches.push_back(name.substr(start.size()));
            }
        }
        EXPECT_EQ(batches, (Lines{std::string("firewall.") + snapshot})) << key;
    }
}

TEST_F(IetfFirewallTest, BasicSettingsStandInTheirOrder)
{
    device_.set({{"wan_endis_spi", "1"},
                 {"wan_endis_rspToPing", "0"},
                 {"wan_endis_sipalg", "1"},
                 {"wan_nat_fitering", "1"},
                 {"remote_endis", "1"},
                 {"remote_access", "1"},
                 {"remote_iplist", "192.0.2.1-192.0.2.9"},
                 {"remote_port", "8443"},
                 {"ipv6_allow_ping_internal_hosts", "0"},
                 {"wan_endis_dmz", "1"},
                 {"dmz_ipaddr", "192.168.1.9"}});
    device_.start_up(ietf_firewall);
    EXPECT_EQ(device_.startup_lines("firewall", "basic"),
              (Lines{"set firewall.basic_configuration=firewall",
                     "set firewall.basic_configuration.dos_protection=1",
                     "set firewall.basic_configuration.resp_wan_ping_req=0",
                     "set firewall.basic_configuration.sipalg=0",
                     "set firewall.basic_configuration.filtering=open",
                     "set firewall.basic_configuration.remote_management=1",
                     "set firewall.basic_configuration.remote_ipaddress=192.0.2.1-192.0.2.9",
                     "set firewall.basic_configuration.remote_port=8443",
                     "set firewall.basic_configuration.ipv6_allow_ping_internal=0",
                     "set firewall.dmzhost=host", "set firewall.dmzhost.status=1",
                     "set firewall.dmzhost.ipaddr=192.168.1.9"}));
}

TEST_F(IetfFirewallTest, UnsetBasicSettingsLeaveOnlyTheDerivedOptions)
{
    EXPECT_EQ(document("basic"),
              R"({"firewall":{"basic_configuration":{"sipalg":"1","filtering":"secured"}},)"
              R"("host":{"dmzhost":{}}})");
}

TEST_F(IetfFirewallTest, DerivedOptionsGoByTheWholeValue)
{
    device_.set({{"wan_endis_sipalg", "10"},
                 {"wan_nat_fitering", "11"},
                 {"remote_access", "2"},
                 {"remote_iplist", "192.0.2.1"}});
    EXPECT_EQ(document("basic"),
              R"({"firewall":{"basic_configuration":{"sipalg":"1","filtering":"secured",)"
              R"("remote_ipaddress":"any"}},"host":{"dmzhost":{}}})");
    device_.set({{"remote_access", "20"}});
    EXPECT_THAT(document("basic"), HasSubstr(R"("remote_ipaddress":"192.0.2.1")"));
}

TEST_F(IetfFirewallTest, PassThroughIsForTwoMarketsAndElsewhereForTwoLanguages)
{
    const std::string section = R"("vpn_passthrough":{"vpn_passthrough":{"ipsec_pass":"1",)"
                                R"("pptp_pass":"0","l2tp_pass":"1"}}})";
    device_.set({{"wan_enable_ipsec", "1"}, {"wan_enable_pptp", "0"}, {"wan_enable_l2tp", "1"}});
    const struct {
        const char *board;
        const char *language;
        bool present;
    } rows[] = {{"RU", "English", true},  {"PR", "", true},        {"US", "Chinese", false},
                {"US", "Russian", false}, {"WW", "Chinese", true}, {"WW", "Russian", true},
                {"WW", "English", false}, {"", "Chinese", true},   {"", "Russian", true},
                {"", "", false},          {"", "Chinese2", false}, {"RUS", "Russian", false}};
    for (const auto &row : rows) {
        board(row.board);
        device_.set({{"GUI_Region", row.language}});
        EXPECT_EQ(document("basic").find(section) != std::string::npos, row.present)
            << row.board << " " << row.language;
    }
}

TEST_F(IetfFirewallTest, WithoutBoardDataTheLanguageDecides)
{
    device_.set({{"GUI_Region", "Russian"}});
    EXPECT_THAT(document("basic"), HasSubstr(R"("vpn_passthrough":{"vpn_passthrough":{}})"));
}

TEST_F(IetfFirewallTest, TheBoardRegionIsReadOnce)
{
    board("US");
    device_.set({{"GUI_Region", "Russian"}, {"wan_enable_ipsec", "1"}});
    EXPECT_THAT(document("basic"), Not(HasSubstr("vpn_passthrough")));
    board("RU");
    device_.apply({"wan_enable_ipsec"}, 1);
    EXPECT_THAT(device_.document("firewall", "basic"), Not(HasSubstr("vpn_passthrough")));
}

TEST_F(IetfFirewallTest, LeavingTheLanguageDeletesThePassThroughSection)
{
    board("WW");
    device_.set({{"GUI_Region", "Chinese"}, {"wan_enable_ipsec", "1"}});
    device_.start_up(ietf_firewall);
    device_.set({{"GUI_Region", "German"}});
    device_.apply({"GUI_Region"}, 2);
    EXPECT_EQ(device_.lines(2, "firewall", "basic"), (Lines{"delete firewall.vpn_passthrough"}));
}

TEST_F(IetfFirewallTest, BothPortPairsOfAForwardingRuleAreSwappedIntoOrder)
{
    device_.set({{"forwarding1", "web TCP 8080 80 80 8080 192.168.1.5"}});
    device_.start_up(ietf_firewall);
    EXPECT_EQ(
        device_.startup_lines("firewall", "forwarding"),
        (Lines{"set firewall.portmap=portmap", "set firewall.portmap.port_forwarding=1",
               "set firewall.portmap.port_triggering=0", "set firewall.port_forward_0=port_forward",
               "set firewall.port_forward_0.service_name=web",
               "set firewall.port_forward_0.protocol=TCP",
               "set firewall.port_forward_0.ipaddr=192.168.1.5",
               "set firewall.port_forward_0.ext_port_start=80",
               "set firewall.port_forward_0.ext_port_end=8080",
               "set firewall.port_forward_0.int_port_start=80",
               "set firewall.port_forward_0.int_port_end=8080"}));
}

TEST_F(IetfFirewallTest, PortsAreOrderedByNumberAndKeepTheirText)
{
    device_.set({{"forwarding1", "a\tUDP  0900 \t1000 x -5 192.0.2.5 surplus"},
                 {"forwarding2", "b TCP 7 7x 99999999999 5 192.0.2.6"}});
    EXPECT_EQ(document("forwarding"),
              R"({"portmap":{"portmap":{"port_forwarding":"1","port_triggering":"0"}},)"
              R"("port_forward":{"port_forward_0":{"service_name":"a","protocol":"UDP",)"
              R"("ipaddr":"192.0.2.5","ext_port_start":"0900","ext_port_end":"1000",)"
              R"("int_port_start":"-5","int_port_end":"x"},)"
              R"("port_forward_1":{"service_name":"b","protocol":"TCP","ipaddr":"192.0.2.6",)"
              R"("ext_port_start":"7","ext_port_end":"7x","int_port_start":"5",)"
              R"("int_port_end":"99999999999"}}})");
}

TEST_F(IetfFirewallTest, AnEmptyFirstForwardingKeyLeavesThePortmapAlone)
{
    device_.set({{"forwarding2", "web TCP 80 80 80 80 192.168.1.5"}});
    EXPECT_EQ(document("forwarding"),
              R"({"portmap":{"portmap":{"port_forwarding":"1","port_triggering":"0"}}})");
}

TEST_F(IetfFirewallTest, ForwardingRuleWithSixFieldsIsSkippedAndItsNumberUsedUp)
{
    device_.set({{"forwarding1", "web TCP 80 80 80 80"},
                 {"forwarding2", "ssh TCP 22 22 22 22 192.168.1.6"}});
    const std::string doc = document("forwarding");
    EXPECT_THAT(doc, Not(HasSubstr("port_forward_0")));
    EXPECT_THAT(doc, HasSubstr(R"("port_forward_1":{"service_name":"ssh")"));
}

TEST_F(IetfFirewallTest, AListWithoutAUsableRuleHasNoContainer)
{
    device_.set({{"forwarding1", "web"}, {"triggering1", " "}, {"block_services1", "a b"}});
    EXPECT_THAT(document("forwarding"), Not(HasSubstr("\"port_forward\"")));
    EXPECT_THAT(document("triggering"), Not(HasSubstr("\"port_trigger\"")));
    EXPECT_THAT(document("blockservc"), Not(HasSubstr("\"block_serv\"")));
}

TEST_F(IetfFirewallTest, TriggeringFieldsGoToTheirOptionsAndTheSecondIsUnused)
{
    device_.set({{"disable_port_trigger", "0"},
                 {"porttrigger_timeout", "20"},
                 {"triggering1", "game f2 any TCP 6112 UDP 6000 6100 1"}});
    device_.start_up(ietf_firewall);
    EXPECT_EQ(
        device_.startup_lines("firewall", "triggering"),
        (Lines{"set firewall.portmap=portmap", "set firewall.portmap.port_forwarding=0",
               "set firewall.portmap.port_triggering=1", "set firewall.portmap.disabled=0",
               "set firewall.portmap.timeout=20", "set firewall.port_trigger_0=port_trigger",
               "set firewall.port_trigger_0.service_name=game",
               "set firewall.port_trigger_0.enable=1", "set firewall.port_trigger_0.protocol=TCP",
               "set firewall.port_trigger_0.user=any",
               "set firewall.port_trigger_0.trigger_port=6112",
               "set firewall.port_trigger_0.int_protocol=UDP",
               "set firewall.port_trigger_0.int_port_start=6000",
               "set firewall.port_trigger_0.int_port_end=6100"}));
}

TEST_F(IetfFirewallTest, TriggeringRuleWithEightFieldsIsSkippedAndPortsKeepTheirOrder)
{
    device_.set({{"triggering1", "a b c d e f g h"},
                 {"triggering2", "game f2 any TCP 1 UDP 9 3 0 surplus"}});
    EXPECT_EQ(document("triggering"),
              R"({"portmap":{"portmap":{"port_forwarding":"0","port_triggering":"1"}},)"
              R"("port_trigger":{"port_trigger_1":{"service_name":"game","enable":"0",)"
              R"("protocol":"TCP","user":"any","trigger_port":"1","int_protocol":"UDP",)"
              R"("int_port_start":"9","int_port_end":"3"}}})");
}

TEST_F(IetfFirewallTest, ForwardingAndTriggeringShareOneSectionInSnapshotsOfTheirOwn)
{
    device_.start_up(ietf_firewall);
    EXPECT_EQ(device_.document("firewall", "forwarding"),
              R"({"portmap":{"portmap":{"port_forwarding":"1","port_triggering":"0"}}})");
    EXPECT_EQ(device_.document("firewall", "triggering"),
              R"({"portmap":{"portmap":{"port_forwarding":"0","port_triggering":"1"}}})");
    device_.set({{"forwarding1", "web TCP 80 80 80 80 192.168.1.5"}});
    device_.apply({"forwarding"}, 3);
    EXPECT_EQ(device_.lines(3, "firewall", "forwarding")[0],
              "set firewall.port_forward_0=port_forward");
}

TEST_F(IetfFirewallTest, TheServicesSwitchCountsAsAWhole)
{
    const std::pair<const char *, const char *> rows[] = {{"0", "never"},   {"1", "block_sched"},
                                                          {"2", "always"},  {"10", "always"},
                                                          {"00", "always"}, {"", "always"}};
    for (const auto &[choice, schedule] : rows) {
        device_.set({{"blockserv_ctrl", choice}, {"enable_multipppoe_serv", "1"}});
        EXPECT_EQ(document("blockservc"),
                  std::string(R"({"block_service":{"block_service":{"schedule":")") + schedule +
                      R"(","enable_session2":"1"}}})")
            << choice;
    }
}

TEST_F(IetfFirewallTest, ABlockedServiceIsForOneAddressARangeOrEverybody)
{
    device_.set({{"block_services1", "ftp TCP 20 21 user 0 192.168.1.7"},
                 {"block_services2", "irc UDP 6667 6669 std 1 192.168.1.2-192.168.1.9"},
                 {"block_services3", "few fields"},
                 {"block_services4", "all TCP/UDP 1 2 std 2 all"},
                 {"block_services5", "odd TCP 1 2 std none 192.168.1.8"}});
    EXPECT_EQ(document("blockservc"),
              R"({"block_service":{"block_service":{"schedule":"always"}},"block_serv":{)"
              R"("block_serv_0":{"name":"ftp","define_name":"user","protocol":"TCP",)"
              R"("port_start":"20","port_end":"21","ipaddr_type":"one","ipaddr":"192.168.1.7"},)"
              R"("block_serv_1":{"name":"irc","define_name":"std","protocol":"UDP",)"
              R"("port_start":"6667","port_end":"6669","ipaddr_type":"range",)"
              R"("ipaddr":"192.168.1.2-192.168.1.9"},)"
              R"("block_serv_3":{"name":"all","define_name":"std","protocol":"TCP/UDP",)"
              R"("port_start":"1","port_end":"2","ipaddr_type":"all"},)"
              R"("block_serv_4":{"name":"odd","define_name":"std","protocol":"TCP",)"
              R"("port_start":"1","port_end":"2","ipaddr_type":"one","ipaddr":"192.168.1.8"}}})");
}

TEST_F(IetfFirewallTest, TheSitesSwitchCountsByItsFirstCharacter)
{
    const std::pair<const char *, const char *> rows[] = {
        {"0", "never"},        {"01", "never"}, {"1", "block_sched"},
        {"10", "block_sched"}, {"2", "always"}, {"", "always"}};
    for (const auto &[choice, schedule] : rows) {
        device_.set({{"block_skeyword", choice}});
        EXPECT_EQ(document("blocksites"),
                  std::string(R"({"block_site":{"blocksites":{"schedule":")") + schedule +
                      R"("}}})")
            << choice;
    }
}

TEST_F(IetfFirewallTest, SitesAndTrustedAddressTravelAsStored)
{
    device_.set({{"block_skeyword", "1"},
                 {"block_KeyWord_DomainList", "bad.example worse.example"},
                 {"block_endis_Trusted_IP", "1"},
                 {"block_trustedip", "192.168.1.10"},
                 {"enable_multipppoe", "0"}});
    device_.start_up(ietf_firewall);
    EXPECT_EQ(
        device_.startup_lines("firewall", "blocksites"),
        (Lines{"set firewall.blocksites=block_site", "set firewall.blocksites.schedule=block_sched",
               "set firewall.blocksites.keyword_list=bad.example worse.example",
               "set firewall.blocksites.allow_trusted_ip=1",
               "set firewall.blocksites.trusted_ip=192.168.1.10",
               "set firewall.blocksites.enable_session2=0"}));
}

TEST_F(IetfFirewallTest, EachKindOfSessionPolicyHasItsOptionsAndIsNumberedFromOne)
{
    device_.set({{"mulpppoe_setting1", "0 example.org a b c d e"},
                 {"mulpppoe_setting2", "1 x 192.0.2.1 192.0.2.9 p q TCP"},
                 {"mulpppoe_setting3", "2 x y z 80 90 UDP surplus"},
                 {"mulpppoe_setting4", "5 a b c d e f"}});
    EXPECT_EQ(document("mulpppoe_policy"),
              R"({"mulpppoe_policy":{)"
              R"("mulpppoe_policy1":{"rule_type":"domain","domain":"example.org"},)"
              R"("mulpppoe_policy2":{"rule_type":"ip","ip_min":"192.0.2.1","ip_max":"192.0.2.9",)"
              R"("protocol":"TCP"},)"
              R"("mulpppoe_policy3":{"rule_type":"port","port_min":"80","port_max":"90",)"
              R"("protocol":"UDP"},"mulpppoe_policy4":{}}})");
}

TEST_F(IetfFirewallTest, SessionPoliciesAreLoggedFieldByField)
{
    device_.set({{"mulpppoe_setting1", "5 a b c d e f"}, {"mulpppoe_setting2", "0 short"}});
    device_.enable(ietf_firewall);
    device_.clear_log();
    EXPECT_EQ(registry().find(config_key_id("mulpppoe_setting"))->normal.at(0)(1), 1);
    EXPECT_EQ(device_.log(), (Lines{"update multi pppoe policy setting", "5,a,b,c,d,e,f;"}));
}

TEST_F(IetfFirewallTest, OnlySingleBlanksSplitASessionPolicy)
{
    device_.set({{"mulpppoe_setting1", "1  192.0.2.1  p q TCP\tx"},
                 {"mulpppoe_setting2", "0\texample.org a b c d e f"},
                 {"mulpppoe_setting3", "0 example.org a b c d"}});
    EXPECT_EQ(document("mulpppoe_policy"),
              R"({"mulpppoe_policy":{"mulpppoe_policy1":{"rule_type":"ip","ip_min":"192.0.2.1",)"
              R"("protocol":"TCP\tx"},"mulpppoe_policy2":{}}})");
}

TEST_F(IetfFirewallTest, OnlyTheFirst127BytesOfASessionPolicyCount)
{
    device_.set({{"mulpppoe_setting1", "1 " + std::string(115, 'd') + " a b c d TCP"},
                 {"mulpppoe_setting2", "0 " + std::string(117, 'd') + " a b c d e f"}});
    EXPECT_EQ(document("mulpppoe_policy"),
              R"({"mulpppoe_policy":{"mulpppoe_policy1":{"rule_type":"ip","ip_min":"a",)"
              R"("ip_max":"b","protocol":"T"}}})");
}

TEST_F(IetfFirewallTest, WithoutSessionPoliciesTheContainerIsEmpty)
{
    EXPECT_EQ(document("mulpppoe_policy"), R"({"mulpppoe_policy":{}})");
}

TEST_F(IetfFirewallTest, EveryCallbackAnswersWhatTheReleaseOfItsDocumentAnswers)
{
    for (const char *key : {"remote_port", "forwarding", "triggering", "block_services",
                            "block_skeyword", "mulpppoe_setting"}) {
        EXPECT_EQ(result_of(key, 1), 1) << key;
    }
}

TEST_F(IetfFirewallTest, ASatelliteWritesToo)
{
    device_.be_base(false);
    EXPECT_EQ(document("forwarding"),
              R"({"portmap":{"portmap":{"port_forwarding":"1","port_triggering":"0"}}})");
}

TEST_F(IetfFirewallTest, UpdatesAreSilentButForTheSessionPolicies)
{
    device_.enable(ietf_firewall);
    device_.clear_log();
    for (const char *key :
         {"remote_port", "forwarding", "triggering", "block_services", "block_skeyword"}) {
        registry().find(config_key_id(key))->normal.at(0)(1);
    }
    EXPECT_EQ(device_.log(), Lines{});
    ietf_firewall.register_();
    EXPECT_EQ(device_.log(), Lines{"register() -  firewall"});
}

} // namespace
} // namespace qorcfg
