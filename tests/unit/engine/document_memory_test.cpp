#include "components/components.h"
#include "components/vlan_settings.h"
#include "platform/key_id.h"
#include "support/device_root.h"
#include "wireless/ietf_wireless.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <string>
#include <vector>

namespace {

/// Which of the next JSON objects cannot be had, counted from 1; 0 and below: none.
thread_local int refused_object = 0;

} // namespace

// Stands before the library's own, so that a test can let memory run out at a chosen object.
extern "C" json_object *json_object_new_object(void)
{
    using Maker = json_object *(*)();
    static const auto maker = reinterpret_cast<Maker>(::dlsym(RTLD_NEXT, "json_object_new_object"));
    return --refused_object == 0 ? nullptr : maker();
}

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

/// A document's objects are made in this order.
constexpr int whole_document = 1;
constexpr int container = 2;
constexpr int first_section = 3;
constexpr int second_section = 4;

class DocumentMemoryTest : public testing::Test {
protected:
    ~DocumentMemoryTest() override { refused_object = 0; }
    /// The result of the component's update while the given object cannot be had.
    int update_without(int object, const Operations &component)
    {
        device_.enable(component);
        return call_without(object, registry().records().at(0).normal.at(0));
    }
    /// The same for the update of one key.
    int update_without(int object, const Operations &component, const char *key)
    {
        device_.enable(component);
        return call_without(object, registry().find(config_key_id(key))->normal.at(0));
    }
    static int call_without(int object, UpdateCallback update)
    {
        refused_object = object;
        return update(1);
    }
    Lines files() { return device_.names_in("/tmp/cache/qorcfg/ucicfg.d"); }

    DeviceRoot device_;
};

TEST_F(DocumentMemoryTest, ASectionThatCannotBeMadeIsLeftOutWhereTheServiceCanDoWithoutIt)
{
    device_.set({{"email_addr", "you@example.com"}, {"email_notify", "1"}});
    EXPECT_EQ(update_without(second_section, ietf_email), 0);
    EXPECT_EQ(device_.document("email", "email"),
              R"({"email":{"status":{"enable":"1"},"visit_blocked_site":{},)"
              R"("log":{"notify":1,"day":"sun","time":"00:00"}}})");
    EXPECT_EQ(update_without(first_section, ietf_upnpd), 0);
    EXPECT_EQ(device_.document("upnpd", "config"), R"({"upnpd":{}})");
    EXPECT_EQ(update_without(second_section + 1, ietf_ntp), 0);
    EXPECT_EQ(device_.document("system", "ntp"), R"({"system":{"ntp":{},"systemtimezone":{}}})");
}

TEST_F(DocumentMemoryTest, WithoutItsContainerNoDocumentIsHandedOver)
{
    for (const int object : {whole_document, container}) {
        for (const Operations *component : {&ietf_email, &ietf_ntp, &ietf_upnpd}) {
            EXPECT_EQ(update_without(object, *component), -1);
        }
    }
    EXPECT_EQ(files(), Lines{});
}

TEST_F(DocumentMemoryTest, AnyOtherDocumentIsHandedOverWholeOrNotAtAll)
{
    device_.set({{"log_vantage", "1"}, {"schedule_days_to_block", "1"}});
    for (const int object : {whole_document, container, first_section}) {
        EXPECT_EQ(update_without(object, ietf_syslog), -1);
        EXPECT_EQ(update_without(object, ietf_schedule), -1);
    }
    EXPECT_EQ(files(), Lines{});
    EXPECT_EQ(update_without(0, ietf_syslog), 0);
}

TEST_F(DocumentMemoryTest, TheFirewallGoesOutWithoutTheSectionOrContainerThatCannotBeMade)
{
    const std::string basic = R"({"firewall":{"basic_configuration":{"sipalg":"1",)"
                              R"("filtering":"secured"}})";
    device_.set({{"dmz_ipaddr", "192.168.1.9"}, {"mulpppoe_setting1", "0 example.org a b c d e"}});
    EXPECT_EQ(update_without(second_section, ietf_firewall), 1);
    EXPECT_EQ(device_.document("firewall", "basic"), basic + "}");
    EXPECT_EQ(update_without(second_section + 1, ietf_firewall), 1);
    EXPECT_EQ(device_.document("firewall", "basic"), basic + R"(,"host":{}})");
    EXPECT_EQ(update_without(container, ietf_firewall, "mulpppoe_setting"), 1);
    EXPECT_EQ(device_.document("firewall", "mulpppoe_policy"), "{}");
}

TEST_F(DocumentMemoryTest, WithoutADocumentTheFirewallWritesNothing)
{
    for (const char *key : {"remote_port", "forwarding", "triggering", "block_services",
                            "block_skeyword", "mulpppoe_setting"}) {
        EXPECT_EQ(update_without(whole_document, ietf_firewall, key), -1) << key;
    }
    EXPECT_EQ(files(), Lines{});
}

TEST_F(DocumentMemoryTest, WanAndLanGoOutEmptyRatherThanInPart)
{
    set_lan_ports("");
    device_.set({{"wan_proto", "orange_dhcp"}, {"enable_orange", "1"}});
    EXPECT_EQ(update_without(0, ietf_wan), 0);
    EXPECT_NE(device_.document("network", "wan").find(R"("iptv")"), std::string::npos);
    // The objects of the two containers and of the port, the bridge and the IPTV bridge.
    for (const int object : {container, first_section, second_section, 5, 6}) {
        EXPECT_EQ(update_without(object, ietf_wan), 0) << object;
        EXPECT_EQ(device_.document("network", "wan"), "{}") << object;
    }
    EXPECT_EQ(update_without(0, ietf_lan), 0);
    EXPECT_NE(device_.document("network", "lan").find(R"("proto":"static")"), std::string::npos);
    EXPECT_EQ(update_without(first_section, ietf_lan), 0);
    EXPECT_EQ(device_.document("network", "lan"), "{}");
}

TEST_F(DocumentMemoryTest, WithoutADocumentWanAndLanKeepWhatTheyWrote)
{
    device_.set({{"wan_proto", "dhcp"}});
    for (const auto &[section, component] : {std::pair{"wan", &ietf_wan}, {"lan", &ietf_lan}}) {
        EXPECT_EQ(update_without(0, *component), 0);
        const std::string written = device_.document("network", section);
        EXPECT_EQ(update_without(whole_document, *component), -1);
        EXPECT_EQ(device_.document("network", section), written);
    }
}

TEST_F(DocumentMemoryTest, DhcpGoesOutEmptyWithoutItsContainer)
{
    device_.set({{"reservation1", "192.168.1.5 02:00:5e:00:53:01 pc"}, {"dns_hijack", "1"}});
    for (const auto &[key, section] :
         {std::pair{"lan_dhcp", "lan"}, {"reservation", "host"}, {"dns_hijack", "hijack"}}) {
        EXPECT_EQ(update_without(0, ietf_dhcp, key), 0);
        EXPECT_NE(device_.document("dhcp", section), "{}");
        EXPECT_EQ(update_without(container, ietf_dhcp, key), 0);
        EXPECT_EQ(device_.document("dhcp", section), "{}");
    }
}

TEST_F(DocumentMemoryTest, StaticRoutesAreNotHandedOverWithoutTheirList)
{
    for (const int object : {whole_document, container}) {
        EXPECT_EQ(update_without(object, ietf_static_route), 1);
    }
    EXPECT_EQ(files(), Lines{});
}

TEST_F(DocumentMemoryTest, VlansAreNotHandedOverWithoutADocument)
{
    EXPECT_EQ(update_without(whole_document, ietf_vlan), -1);
    EXPECT_EQ(files(), Lines{});
}

TEST_F(DocumentMemoryTest, TheWirelessDocumentGoesOutWholeOrNotAtAll)
{
    device_.write("/tmp/etc/config/wireless", "");
    // The document, its three groups, and the options of the global section, of each radio and of
    // each interface, built or not.
    constexpr int objects = 1 + 3 + 1 + 3 + 10;
    for (int object = 1; object <= objects; ++object) {
        EXPECT_EQ(update_without(object, ietf_wireless, "wl_ssid"), 0) << object;
        EXPECT_EQ(files(), Lines{}) << object;
    }
    EXPECT_EQ(update_without(objects + 1, ietf_wireless, "wl_ssid"), 1);
    EXPECT_EQ(files(), (Lines{"uci-wireless-all.json", "uci_update1.wireless.all"}));
}

} // namespace
} // namespace qorcfg
