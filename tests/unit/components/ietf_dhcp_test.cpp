#include "components/components.h"

#include "engine/systeminfo.h"
#include "platform/key_id.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

const std::string no_hosts = R"({"host":[{"alias-name":"true"}]})";

class IetfDhcpTest : public testing::Test {
protected:
    std::string document(const char *section)
    {
        device_.start_up(ietf_dhcp);
        return device_.document("dhcp", section);
    }

    const DeviceRoot device_;
};

TEST_F(IetfDhcpTest, KeysAreSubscribedInOrderToThreeCallbacks)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_dhcp),
              (Lines{"ap_mode", "lan_dhcp", "dhcp_start", "dhcp_end", "reservation", "lan_apply",
                     "dns_hijack"}));
    EXPECT_EQ(device_.log()[0], "init() - Initializing dhcp");
    const auto callback = [](const char *key) {
        return registry().find(config_key_id(key))->normal.at(0);
    };
    EXPECT_EQ(callback("lan_apply"), callback("ap_mode"));
    EXPECT_NE(callback("reservation"), callback("ap_mode"));
    EXPECT_NE(callback("dns_hijack"), callback("ap_mode"));
    EXPECT_NE(callback("dns_hijack"), callback("reservation"));
    ietf_dhcp.register_();
    EXPECT_EQ(device_.log().back(), "register() -  dhcp");
}

TEST_F(IetfDhcpTest, EachCallbackLogsItsLine)
{
    device_.enable(ietf_dhcp);
    for (const auto &[key, line] : {std::pair{"lan_apply", " update dhcp"},
                                    std::pair{"reservation", "1111 update reservation"},
                                    std::pair{"dns_hijack", "update dns_hijack status"}}) {
        registry().find(config_key_id(key))->normal.at(0)(1);
        EXPECT_EQ(device_.log().back(), line);
    }
}

TEST_F(IetfDhcpTest, APoolThatIsServed)
{
    device_.set({{"lan_dhcp", "1"},
                 {"dhcp_start", "192.168.1.2"},
                 {"dhcp_end", "192.168.1.254"},
                 {"lan_apply", "apply_7"}});
    EXPECT_EQ(document("lan"), R"({"dhcp":{"guest":{},"lan":{"interface":"lan",)"
                               R"("leasetime":"86400","start":"192.168.1.2",)"
                               R"("limit":"192.168.1.254","ignore":"0",)"
                               R"("apply_state":"apply_7"}}})");
}

TEST_F(IetfDhcpTest, APoolThatIsOffKeepsItsRange)
{
    device_.set({{"lan_dhcp", "0"}, {"dhcp_start", "192.168.1.2"}, {"dhcp_end", "192.168.1.254"}});
    EXPECT_EQ(document("lan"), R"({"dhcp":{"guest":{},"lan":{"interface":"lan",)"
                               R"("leasetime":"86400","start":"192.168.1.2",)"
                               R"("limit":"192.168.1.254","ignore":"1",)"
                               R"("apply_state":"apply_0"}}})");
}

TEST_F(IetfDhcpTest, AnEmptyStoreStillGivesTheLease)
{
    EXPECT_EQ(document("lan"), R"({"dhcp":{"guest":{},"lan":{"interface":"lan",)"
                               R"("leasetime":"86400","ignore":"1","apply_state":"apply_0"}}})");
}

TEST_F(IetfDhcpTest, PoolValuesAreCutAt31BytesAndNotJudged)
{
    device_.set({{"dhcp_start", "no address, and more than 31 bytes"},
                 {"dhcp_end", std::string(32, 'e')},
                 {"lan_apply", std::string(32, 'a')}});
    EXPECT_EQ(document("lan"), R"({"dhcp":{"guest":{},"lan":{"interface":"lan",)"
                               R"("leasetime":"86400","start":"no address, and more than 31 by",)"
                               R"("limit":")" +
                                   std::string(31, 'e') + R"(","ignore":"1","apply_state":")" +
                                   std::string(31, 'a') + R"("}}})");
}

TEST_F(IetfDhcpTest, AnAccessPointOnlyIgnores)
{
    device_.set({{"ap_mode", "1"}, {"lan_dhcp", "1"}, {"dhcp_start", "192.168.1.2"}});
    EXPECT_EQ(document("lan"), R"({"dhcp":{"guest":{},"lan":{"ignore":"1"}}})");
    EXPECT_EQ(device_.startup_lines("dhcp", "lan"),
              (Lines{"set dhcp.guest=dhcp", "set dhcp.lan=dhcp", "set dhcp.lan.ignore=1"}));
}

TEST_F(IetfDhcpTest, TheGuestVlanInformationChangesNothing)
{
    const std::string without = document("lan");
    device_.write("/tmp/cache/systeminfo/dgc_data.info", R"({"dgc_func_have_guest_vlan":"1"})");
    EXPECT_EQ(document("lan"), without);
    device_.write("/tmp/cache/systeminfo/dgc_data.info", "{\"dgc_func");
    EXPECT_EQ(document("lan"), without);
}

TEST_F(IetfDhcpTest, TheInterfaceIsTheDevicesAndTheSectionIsLan)
{
    const std::string section = systeminfo[lan_net_section].value;
    systeminfo[lan_net_section].value = "home";
    const std::string with_other = document("lan");
    systeminfo[lan_net_section].value = section;
    EXPECT_NE(with_other.find(R"("lan":{"interface":"home",)"), std::string::npos);
}

TEST_F(IetfDhcpTest, WithoutReservationsTheListHoldsOnlyItsMarker)
{
    EXPECT_EQ(document("host"), no_hosts);
    device_.set({{"reservation2", "192.168.1.5 02:00:5e:00:53:01 late"}});
    EXPECT_EQ(document("host"), no_hosts);
    EXPECT_EQ(device_.startup_lines("dhcp", "host"), Lines{});
}

TEST_F(IetfDhcpTest, ANameKeepsItsBlanks)
{
    device_.set({{"reservation1", "192.168.1.5 02:00:5e:00:53:01 my pc"},
                 {"reservation2", "192.168.1.6 02:00:5e:00:53:02 tv  set "}});
    EXPECT_EQ(document("host"),
              R"({"host":[{"alias-name":"true"},)"
              R"({"ip":"192.168.1.5","mac":"02:00:5e:00:53:01","name":"my pc"},)"
              R"({"ip":"192.168.1.6","mac":"02:00:5e:00:53:02","name":"tv  set "}]})");
}

TEST_F(IetfDhcpTest, ABadReservationWithdrawsTheWholeList)
{
    device_.set({{"reservation1", "192.168.1.5 02:00:5e:00:53:01 pc"}});
    document("host");
    for (const char *bad : {"192.168.1.6", "192.168.1.6 02:00:5e:00:53:02"}) {
        device_.set(
            {{"reservation2", bad}, {"reservation3", "192.168.1.7 02:00:5e:00:53:03 third"}});
        EXPECT_EQ(document("host"), "{}") << bad;
    }
    EXPECT_NE(device_.document("dhcp", "lan").find("86400"), std::string::npos);
    EXPECT_NE(device_.document("dhcp", "hijack").find("dnsmasq"), std::string::npos);
}

TEST_F(IetfDhcpTest, ABadReservationDeletesTheSectionsWritten)
{
    device_.set({{"reservation1", "192.168.1.5 02:00:5e:00:53:01 pc"}});
    device_.start_up(ietf_dhcp);
    EXPECT_EQ(device_.startup_lines("dhcp", "host")[0], "set dhcp.host_0=host");
    device_.set({{"reservation2", "192.168.1.6"}});
    device_.apply({"reservation"}, 1);
    EXPECT_EQ(device_.lines(1, "dhcp", "host"), (Lines{"delete dhcp.host_0"}));
}

TEST_F(IetfDhcpTest, TwoBlanksEncloseAnEmptyPart)
{
    device_.set({{"reservation1", "192.168.1.5  pc"}, {"reservation2", "192.168.1.6 mac "}});
    EXPECT_EQ(document("host"), R"({"host":[{"alias-name":"true"},)"
                                R"({"ip":"192.168.1.5","name":"pc"},)"
                                R"({"ip":"192.168.1.6","mac":"mac"}]})");
}

TEST_F(IetfDhcpTest, PartsOfAReservationAreCut)
{
    device_.set({{"reservation1", std::string(300, 'i') + " " + std::string(300, 'm') + " " +
                                      std::string(300, 'n')}});
    EXPECT_EQ(document("host"), R"({"host":[{"alias-name":"true"},{"ip":")" + std::string(31, 'i') +
                                    R"(","mac":")" + std::string(31, 'm') + R"(","name":")" +
                                    std::string(63, 'n') + R"("}]})");
}

TEST_F(IetfDhcpTest, ReservationsBehindThe128thAreNotLookedAt)
{
    for (int number = 1; number <= 130; ++number) {
        const std::string text = std::to_string(number);
        // The one behind the last is bad, and would withdraw the list.
        const std::string value = number == 129 ? "bad" : "192.168.1.5 mac pc" + text;
        device_.set({{("reservation" + text).c_str(), value}});
    }
    const std::string hosts = document("host");
    EXPECT_NE(hosts.find(R"("name":"pc128"}]})"), std::string::npos) << hosts;
}

TEST_F(IetfDhcpTest, TheHijackSwitchIsAnAnonymousSection)
{
    device_.set({{"dns_hijack", "1"}});
    EXPECT_EQ(document("hijack"), R"({"dnsmasq":[{"alias-name":false},{"dns_hijack":"1"}]})");
    EXPECT_EQ(device_.startup_lines("dhcp", "hijack"),
              (Lines{"add dhcp dnsmasq", "set dhcp.@dnsmasq[0].dns_hijack=1"}));
}

TEST_F(IetfDhcpTest, AnUnsetHijackSwitchIsASectionWithoutOptions)
{
    EXPECT_EQ(document("hijack"), R"({"dnsmasq":[{"alias-name":false},{}]})");
}

TEST_F(IetfDhcpTest, AChangeOfOneKeyWritesOneDocument)
{
    device_.start_up(ietf_dhcp);
    device_.set({{"dns_hijack", "0"}});
    device_.apply({"dns_hijack"}, 3);
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update3.dhcp.hijack"));
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update3.dhcp.lan"));
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update3.dhcp.host"));
}

TEST_F(IetfDhcpTest, ASatelliteWritesToo)
{
    device_.be_base(false);
    EXPECT_EQ(device_.run_update(ietf_dhcp, 1), 0);
    EXPECT_EQ(device_.lines(1, "dhcp", "lan")[0], "set dhcp.guest=dhcp");
}

} // namespace
} // namespace qorcfg
