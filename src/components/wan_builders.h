#pragma once

#include "engine/document.h"
#include "engine/systeminfo.h"

#include <string>

// Inside of the component `ietf_wan`: one builder per connection type, and the blocks that they
// share. Options whose value is empty are written, so that the network scripts see them cleared.

namespace qorcfg {

/// Builders of the whole document, by connection type.
void build_access_point(Document &doc);
void build_static(Document &doc);
void build_dhcp(Document &doc);
void build_orange_dhcp(Document &doc);
void build_pppoe(Document &doc);
void build_orange_pppoe(Document &doc);
void build_pptp(Document &doc);
void build_l2tp(Document &doc);
void build_multi_pppoe(Document &doc);

/// Members of the WAN bridge: the WAN port, its sub-interface for the VLAN of the Internet service,
/// or the port together with the LAN ports that are bridged to it. At most 63 bytes.
std::string wan_ifname();

/// Members of the IPTV bridge: sub-interfaces of the WAN port by the ISP profile, "" without one.
/// At most 31 bytes.
std::string get_iptv_eth_ports();

/// Keys of a choice of MAC address: "0" for the factory's, "1" for the one of the user's computer,
/// "2" for the one typed in.
struct MacKeys {
    const char *choice;
    const char *own;
};

/// The MAC address of the WAN port by that choice, "" for any other; at most 31 bytes.
std::string wan_mac(const MacKeys &keys);
/// The MAC address that the factory gave it; at most 31 bytes.
std::string factory_mac();

/// Adds the section of the WAN port, and the WAN bridge with its members. The caller goes on with
/// the bridge and ends it with "macaddr".
Section begin_wan(Document &doc, const std::string &mac);

/// Adds a PPP session over the WAN bridge, named by a row of `systeminfo`.
Section begin_ppp(Document &doc, SystemInfoRow name, const char *proto);

/// Adds "ipaddr" when `choice` is "1", for an address that the ISP fixed.
void add_fixed_address(Section &session, const char *choice, const char *address);

/// Adds "peerdns", and "dns" when `choice` is "1", for servers that the user typed in.
void add_dns(Section &section, const char *choice);

/// Keys of when a PPP session is dialled.
struct DialKeys {
    const char *demand;
    const char *idle_time;
};

/// Adds "run_test", "connmode", and what `add_demand` adds.
void add_dial(Section &session, const DialKeys &keys);
/// Adds "demand", or "auto" for a session that the user dials by hand. `test` is the value of
/// "wan_test_status".
void add_demand(Section &session, const DialKeys &keys, const std::string &test);
/// Adds the time at which the session is cut every day, where the user chose one.
void add_disconnect_time(Section &session);

/// Adds whether IPv6 goes through the same PPP session.
void add_ipv6_over_ppp(Section &session);

} // namespace qorcfg
