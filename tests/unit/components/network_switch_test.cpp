#include "components/components.h"

#include "engine/document.h"
#include "support/network_device.h"

#include <array>
#include <map>

// Switches a router from each connection type, role and VLAN mode to each other one. What the batch
// lines make of a UCI package must be what the new documents say, with nothing left of the old.
namespace qorcfg {
namespace {

using test::NetworkDevice;
using Settings = std::map<std::string, std::string>;
using Options = std::map<std::string, std::string>;
/// Sections of a UCI package by name; the option "" is the section's type.
using Package = std::map<std::string, Options>;

constexpr std::array sections{"wan", "lan", "vlan", "wan6"};

struct State {
    std::string name;
    Settings settings; ///< that differ from a router with an unknown type and VLANs off
};

std::vector<State> all_states()
{
    std::vector<State> states;
    for (const char *proto : {"", "static", "dhcp", "unifi_malaysia_dhcp", "orange_dhcp", "pppoe",
                              "vodafone_spain_pppoe", "orange_pppoe", "pptp", "l2tp", "mulpppoe"}) {
        states.push_back({proto, {{"wan_proto", proto}}});
    }
    states.push_back({"one session", {{"wan_proto", "mulpppoe"}, {"wan_enable_session2", "0"}}});
    states.push_back({"access point", {{"wan_proto", "dhcp"}, {"ap_mode", "1"}}});
    states.push_back({"own pppoe of IPv6", {{"wan_proto", "pppoe"}, {"ipv6_type", "pppoe"}}});
    states.push_back({"no IPv6", {{"wan_proto", "dhcp"}, {"ipv6_type", "disabled"}}});
    states.push_back(
        {"port bridging", {{"wan_proto", "dhcp"}, {"enable_vlan", "1"}, {"iptv_mask", "5"}}});
    states.push_back({"port bridging with a VLAN",
                      {{"wan_proto", "pppoe"}, {"enable_vlan", "1"}, {"iptv_vlan_enable", "1"}}});
    for (const char *proto : {"dhcp", "pppoe", "orange_dhcp", "orange_pppoe"}) {
        states.push_back({std::string("tagged ") + proto,
                          {{"wan_proto", proto}, {"enable_vlan", "1"}, {"vlan_type", "1"}}});
    }
    return states;
}

/// All keys of a state, those that it leaves alone included.
Settings whole(const State &state)
{
    Settings settings{{"wan_proto", ""},     {"ap_mode", "0"},         {"wan_enable_session2", "1"},
                      {"ipv6_type", "dhcp"}, {"enable_vlan", "0"},     {"vlan_type", "0"},
                      {"iptv_mask", "2"},    {"iptv_vlan_enable", "0"}};
    for (const auto &[key, value] : state.settings) {
        settings[key] = value;
    }
    return settings;
}

/// Applies batch lines of named sections; nothing else may come.
void apply_lines(Package &package, const std::vector<std::string> &lines)
{
    for (const std::string &line : lines) {
        const std::size_t blank = line.find(' ');
        const std::size_t sign = line.find('=');
        const std::string verb = line.substr(0, blank);
        const std::string path = line.substr(blank + 1, sign - blank - 1);
        const std::size_t first = path.find('.');
        ASSERT_EQ(path.substr(0, first), "network") << line;
        const std::size_t second = path.find('.', first + 1);
        const std::string section = path.substr(first + 1, second - first - 1);
        const std::string option = second == std::string::npos ? "" : path.substr(second + 1);
        if (verb == "set") {
            ASSERT_TRUE(option.empty() || package.count(section) != 0) << line;
            package[section][option] = line.substr(sign + 1);
        } else if (verb == "delete") {
            ASSERT_TRUE(option.empty()) << line;
            EXPECT_EQ(package.erase(section), 1U) << line;
        } else {
            ASSERT_EQ(verb, "del") << line;
            EXPECT_EQ(package[section].erase(option), 1U) << line;
        }
    }
}

/// What the documents that the device wrote last say.
Package documented(const NetworkDevice &device)
{
    Package package;
    for (const char *section : sections) {
        const Document doc = Document::parse(device.document("network", section));
        for_each_member(doc.get(), [&](const char *type, json_object *container) {
            for_each_member(container, [&](const char *name, json_object *options) {
                Options &made = package[name];
                made[""] = type;
                for_each_member(options, [&](const char *option, json_object *value) {
                    made[option] = json_value_text(value);
                });
            });
        });
    }
    return package;
}

class NetworkSwitchTest : public testing::Test {
protected:
    /// Starts all components with these settings, and what the start's lines make.
    static Package start(const NetworkDevice &device, const Settings &settings)
    {
        device.set({{"enable_orange", "1"},
                    {"iptv_vlan", "50"},
                    {"vlan_tag_1", "1 Internet 10 0 0"},
                    {"vlan_tag_2", "1 IPTV 840 4 2"},
                    {"vlan_tag_3", "1 VoIP 30 5 4"},
                    {"lan_ipaddr", "192.0.2.1"},
                    {"lan_netmask", "255.255.255.0"},
                    {"ap_ether_ip_assign", "0"},
                    {"ap_ipaddr", "198.51.100.20"},
                    {"ap_netmask", "255.255.255.0"},
                    {"wan_test_status", "none"}});
        for (const auto &[key, value] : settings) {
            device.set({{key.c_str(), value}});
        }
        device.enable(ietf_vlan);
        ietf_wan.init();
        ietf_lan.init();
        ietf_network_ipv6.init();
        device.start_up();
        Package package;
        for (const char *section : sections) {
            apply_lines(package, device.startup_lines("network", section));
        }
        return package;
    }
    /// Changes the settings that differ as one job, and applies its lines to the package.
    static void change(const NetworkDevice &device, const Settings &from, const Settings &to,
                       int job, Package &package)
    {
        std::vector<std::string> keys;
        for (const auto &[key, value] : to) {
            if (from.at(key) != value) {
                device.set({{key.c_str(), value}});
                // Numbered keys are announced by their stem too.
                keys.push_back(key);
                keys.push_back(key.substr(0, key.find_last_not_of("0123456789") + 1));
            }
        }
        device.apply(keys, job);
        for (const char *section : sections) {
            apply_lines(package, device.lines(job, "network", section));
        }
    }
};

TEST_F(NetworkSwitchTest, EachSwitchLeavesWhatAStartInTheNewStateWrites)
{
    const std::vector<State> states = all_states();
    std::vector<Package> wanted;
    for (const State &state : states) {
        const NetworkDevice device;
        wanted.push_back(start(device, whole(state)));
        EXPECT_EQ(wanted.back(), documented(device)) << state.name;
    }
    const NetworkDevice device;
    Package package = start(device, whole(states[0]));
    Settings settings = whole(states[0]);
    int job = 0;
    const auto switch_to = [&](std::size_t i) {
        change(device, settings, whole(states[i]), ++job, package);
        settings = whole(states[i]);
        EXPECT_EQ(package, wanted[i]);
    };
    for (std::size_t i = 0; i < states.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            SCOPED_TRACE(states[i].name + " and " + states[j].name);
            switch_to(i);
            switch_to(j);
        }
    }
    // Different types never write the same: the comparison above can tell them apart.
    EXPECT_NE(wanted[1], wanted[2]);
}

} // namespace
} // namespace qorcfg
