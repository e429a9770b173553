#include "core/component_table.h"

#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(ComponentTableTest, AllThirtyRowsStandInSearchOrder)
{
    const Lines expected{"ietf_igmpproxy",
                         "ietf_qoracl",
                         "ietf_qoracl_guest_sche",
                         "ietf_ntp",
                         "ietf_email",
                         "ietf_network_ipv6",
                         "ietf_password",
                         "ietf_openvpn",
                         "ietf_traffic_meter",
                         "ietf_attached_devices",
                         "ietf_ddns",
                         "ietf_devname",
                         "ietf_dhcp",
                         "ietf_firewall",
                         "ietf_lan",
                         "ietf_opmode",
                         "ietf_schedule",
                         "ietf_static_route",
                         "ietf_wan",
                         "ietf_rip",
                         "ietf_syslog",
                         "ietf_upnpd",
                         "ietf_parental",
                         "ietf_wireless",
                         "ietf_vlan",
                         "ietf_outdoor_led",
                         "ietf_debug",
                         "nvram_wireless",
                         "ietf_lighttpd",
                         "ietf_rae"};
    Lines names;
    for (const ComponentRow &row : components) {
        names.emplace_back(row.name);
    }
    EXPECT_EQ(names, expected);
}

TEST(ComponentTableTest, ALineEnablesByTheCharacterBehindItsFirstSign)
{
    EXPECT_EQ(enabled_name("ietf_ddns=1"), "ietf_ddns");
    EXPECT_EQ(enabled_name("ietf_ddns=10"), "ietf_ddns");
    EXPECT_EQ(enabled_name("ietf_ddns=1=0"), "ietf_ddns");
    EXPECT_EQ(enabled_name("ietf_ddns=0"), "");
    EXPECT_EQ(enabled_name("ietf_ddns="), "");
    EXPECT_EQ(enabled_name("ietf_ddns"), "");
    EXPECT_EQ(enabled_name("ietf_ddns=01"), "");
    EXPECT_EQ(enabled_name("ietf_ddns= 1"), "");
    EXPECT_EQ(enabled_name(""), "");
    EXPECT_EQ(enabled_name("=ietf_ddns=1"), "");
    EXPECT_EQ(enabled_name("=1=x"), "1");
    EXPECT_EQ(enabled_name("="), "");
    EXPECT_EQ(enabled_name(" ietf_ddns=1"), " ietf_ddns");
}

TEST(ComponentTableTest, ANameIsCutAt126Bytes)
{
    EXPECT_EQ(enabled_name(std::string(200, 'n') + "=1"), std::string(126, 'n'));
}

Lines visited;

Lines listed(const DeviceRoot &device, const std::string &content)
{
    device.write("/list", content);
    visited.clear();
    EXPECT_TRUE(for_each_listed_component(device.path("/list"),
                                          [](const char *name) { visited.emplace_back(name); }));
    return visited;
}

TEST(ComponentTableTest, LinesAreTakenInFileOrderTheLastOneWithoutNewlineToo)
{
    const DeviceRoot device;
    EXPECT_EQ(listed(device, "b=1\n\nc=0\n# d\na=1\r\ne=1"), (Lines{"b", "a", "e"}));
    EXPECT_EQ(listed(device, ""), Lines{});
}

TEST(ComponentTableTest, ALineOfMoreThan254CharactersGoesOnAsAFurtherLine)
{
    const DeviceRoot device;
    const std::string padding(254, 'x');
    EXPECT_EQ(listed(device, padding + "a=1\n"), Lines{"a"});
    // With 251 characters before it, "a=1" still fits the line and is its end.
    EXPECT_EQ(listed(device, std::string(251, 'x') + "a=1\nb=1\n"),
              (Lines{std::string(126, 'x'), "b"}));
    // The newline counts: 254 characters leave it to a line of its own.
    EXPECT_EQ(listed(device, std::string(252, 'x') + "=1\nb=1\n"),
              (Lines{std::string(126, 'x'), "b"}));
    // The sign is the last character that fits, so nothing follows it.
    EXPECT_EQ(listed(device, std::string(253, 'x') + "=1\n"), Lines{});
}

TEST(ComponentTableTest, AnUnreadableListEnablesNothing)
{
    const DeviceRoot device;
    enable_listed_components(device.path("/missing"));
    ASSERT_EQ(device.log().size(), 1U);
    EXPECT_NE(device.log()[0].find("/missing"), std::string::npos);
    EXPECT_TRUE(registry().records().empty());
    enable_listed_components(device.root()); // a folder
    EXPECT_TRUE(registry().records().empty());
}

TEST(ComponentTableTest, EnablingDebugAlsoPrintsItsRegisterLine)
{
    const DeviceRoot device;
    enable_component("ietf_debug");
    const Lines log = device.log();
    ASSERT_EQ(log.size(), 5U);
    EXPECT_EQ(log[0], "init() - Initializing debug");
    EXPECT_EQ(log[1].rfind("Subscribe name debug_boot_up spoint ", 0), 0U);
    EXPECT_EQ(log[2].rfind("Subscribe name debug_wanlan_capture spoint ", 0), 0U);
    EXPECT_EQ(log[3], "register() -  debug");
    EXPECT_EQ(log[4], "Enable component ietf_debug !!!!");
}

TEST(ComponentTableTest, EnablingAnyOtherComponentNeverRunsItsRegisterRoutine)
{
    const DeviceRoot device;
    for (const ComponentRow &row : components) {
        if (row.ops != nullptr && std::string(row.name) != "ietf_debug" &&
            std::string(row.name) != "ietf_vlan") {
            enable_component(row.name);
        }
    }
    for (const std::string &message : device.log()) {
        EXPECT_NE(message.rfind("register() -  ", 0), 0U) << message;
    }
}

TEST(ComponentTableTest, AnUnknownNameIsOnlyLoggedAndNullDoesNothing)
{
    const DeviceRoot device;
    enable_component("ietf_ddn");
    enable_component("ietf_ddnss");
    enable_component(nullptr);
    EXPECT_EQ(device.log(),
              (Lines{"Enable component ietf_ddn !!!!", "Enable component ietf_ddnss !!!!"}));
    EXPECT_TRUE(registry().records().empty());
}

} // namespace
} // namespace qorcfg
