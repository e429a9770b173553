#pragma once

#include "components/vlan_settings.h"
#include "engine/systeminfo.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg::test {

/// A device root whose interface and board files name the usual ports (WAN eth0, LAN eth1 eth2
/// eth3) and MAC addresses. The table of names is read from it; the LAN port list is empty until
/// `ietf_vlan` is enabled.
class NetworkDevice : public DeviceRoot {
public:
    NetworkDevice()
    {
        set_lan_ports("");
        write("/tmp/cache/systeminfo/ethinfo.info",
              R"({"wan_eth_ifs": "eth0", "lan_eth_ifs": "eth1", "wan_net_if": "br-wan",)"
              R"( "lan_net_if": "br-lan", "ppp_net_if": "ppp0", "mppp_net_if": "ppp1",)"
              R"( "pppv6_net_if": "ppp2", "wan_net_section": "wan", "lan_net_section": "lan",)"
              R"( "ppp_net_section": "wan1p", "mppp_net_section": "wan2p",)"
              R"( "wanv6_net_section": "wan16",)"
              R"( "eth_ifs_maps": "WAN:eth0 LAN1:eth1 LAN2:eth2 LAN3:eth3"})");
        write_board("");
        testing::internal::CaptureStderr();
        init_all_systeminfo();
        testing::internal::GetCapturedStderr();
    }

    /// Writes the board's facts, with its region ("" for none).
    void write_board(const std::string &region) const
    {
        write("/tmp/cache/systeminfo/boarddata.info",
              R"({"wan_mac": "00:53:00:AA:BB:01", "lan_mac": "00:11:22:33:44:55")" +
                  (region.empty() ? "" : R"(, "board_region": ")" + region + "\"") + "}");
    }

    /// Sets the keys, runs the component as the start-up pass does, and gives back its last
    /// document as compact JSON text.
    std::string
    document_for(const Operations &component, const std::string &section,
                 std::initializer_list<std::pair<const char *, std::string>> settings) const
    {
        set(settings);
        start_up(component);
        return document("network", section);
    }
};

} // namespace qorcfg::test
