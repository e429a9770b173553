#pragma once

#include "core/base/component.h"

namespace qorcfg {

extern const Operations ietf_attached_devices;
extern const Operations ietf_ddns;
extern const Operations ietf_debug;
extern const Operations ietf_devname;
extern const Operations ietf_dhcp;
extern const Operations ietf_email;
extern const Operations ietf_firewall;
extern const Operations ietf_igmpproxy;
extern const Operations ietf_lan;
extern const Operations ietf_lighttpd;
extern const Operations ietf_network_ipv6;
extern const Operations ietf_ntp;
extern const Operations ietf_openvpn;
extern const Operations ietf_opmode;
extern const Operations ietf_outdoor_led;
extern const Operations ietf_parental;
extern const Operations ietf_password;
extern const Operations ietf_qoracl;
extern const Operations ietf_qoracl_guest_sche;
extern const Operations ietf_rae;
extern const Operations ietf_rip;
extern const Operations ietf_schedule;
extern const Operations ietf_static_route;
extern const Operations ietf_syslog;
extern const Operations ietf_traffic_meter;
extern const Operations ietf_upnpd;
extern const Operations ietf_vlan;
extern const Operations ietf_wan;

} // namespace qorcfg
