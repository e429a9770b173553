#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfSyslogTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_syslog),
              (Lines{"log_allow_sites", "log_block_sites_services", "log_conn_web_interface",
                     "log_router_operation", "log_dos_attacks_port_scans",
                     "log_port_firwarding_trigering", "log_wire_access", "log_vpn_head",
                     "log_internet_conn_reset", "log_wire_signal_sched", "log_mobile_conn",
                     "log_quillshare", "log_vantage"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing syslog");
}

TEST(IetfSyslogTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_syslog.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  syslog"});
}

TEST(IetfSyslogTest, EachCategoryHasItsSwitchFourUnderAnotherNameThanTheKey)
{
    const DeviceRoot device;
    device.set({{"log_allow_sites", "a"},
                {"log_block_sites_services", "b"},
                {"log_conn_web_interface", "c"},
                {"log_router_operation", "d"},
                {"log_dos_attacks_port_scans", "e"},
                {"log_port_firwarding_trigering", "f"},
                {"log_wire_access", "g"},
                {"log_vpn_head", "h"},
                {"log_internet_conn_reset", "i"},
                {"log_wire_signal_sched", "j"},
                {"log_mobile_conn", "k"},
                {"log_quillshare", "l"},
                {"log_vantage", "m"}});
    EXPECT_EQ(device.run_update(ietf_syslog, 1), 0);
    EXPECT_EQ(device.lines(1, "syslog", "log_server"),
              (Lines{"set syslog.log_server=logprofile", "set syslog.log_server.log_allow_sites=a",
                     "set syslog.log_server.log_block_sites_services=b",
                     "set syslog.log_server.log_conn_web_interface=c",
                     "set syslog.log_server.log_router_operation=d",
                     "set syslog.log_server.log_dos_attacks_port_scans=e",
                     "set syslog.log_server.log_port_firwarding_trigering=f",
                     "set syslog.log_server.log_wireless_access=g",
                     "set syslog.log_server.log_vpn_service=h",
                     "set syslog.log_server.log_internet_conn_reset=i",
                     "set syslog.log_server.log_wireless_signal_sched=j",
                     "set syslog.log_server.log_mobile=k", "set syslog.log_server.log_quillshare=l",
                     "set syslog.log_server.log_vantage=m"}));
    EXPECT_EQ(device.log().back(), " update package syslog");
}

TEST(IetfSyslogTest, ASatelliteWritesNothing)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"log_vantage", "1"}});
    EXPECT_EQ(device.run_update(ietf_syslog, 1), 1);
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
    EXPECT_EQ(device.log().back(), " update package syslog");
}

} // namespace
} // namespace qorcfg
