#include "support/daemon.h"
#include "support/golden_case.h"
#include "support/jobs.h"
#include "support/wait.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::Daemon;
using test::DeviceRoot;
using test::files_in;
using test::GoldenCase;

/// A device whose daemon runs the shipped hook scripts, so that what it writes is applied.
class AppliedTest : public testing::Test {
protected:
    AppliedTest() { daemon_.install_hooks(); }

    void qorctl(const std::vector<std::string> &arguments) const
    {
        const test::ProcessEnd end = daemon_.qorctl(arguments);
        ASSERT_EQ(end.status, 0) << arguments[0] << ": " << end.out << end.err;
    }
    /// Sets keys, commits them, and waits for the end of the job.
    void change(std::vector<std::string> settings) const
    {
        settings.insert(settings.begin(), "set");
        qorctl(settings);
        qorctl({"commit", "--wait"});
    }
    void expect_nothing_left() const
    {
        for (const char *folder : {"/tmp/cache/qorcfg/ucicfg.d", "/tmp/cache/qorcfg/nvramcfg.d"}) {
            for (const std::string &name : device_.names_in(folder)) {
                EXPECT_EQ(name.find("_update"), std::string::npos) << name;
            }
        }
    }

    Daemon daemon_;
    DeviceRoot &device_ = daemon_.device();
};

/// Every golden case that changes something, through the programs of this build: the settings go
/// into the store and are committed with qorctl, the daemon writes, and its scripts apply.
class ComponentsTest : public AppliedTest, public testing::WithParamInterface<std::string> {};

TEST_P(ComponentsTest, UciHoldsWhatTheSettingsSay)
{
    const GoldenCase golden(GetParam());
    golden.lay(device_);
    daemon_.list_components(golden.components());
    qorctl({"import", "--no-announce", golden.settings()});
    daemon_.start();
    test::expect_applied(device_, files_in(golden.start()));
    expect_nothing_left();

    qorctl({"import", golden.change()});
    qorctl({"commit", "--wait"});
    test::expect_applied(device_, files_in(golden.changed()));
    expect_nothing_left();
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_EQ(daemon_.stop().status, 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, ComponentsTest, testing::ValuesIn(GoldenCase::all_with_change()),
                         [](const auto &info) { return GoldenCase::test_name(info.param); });

class SettingsTest : public AppliedTest {
protected:
    void start_with(const std::vector<std::string> &components, const std::string &defaults)
    {
        daemon_.list_components(components);
        device_.write("/tmp/defaults", defaults);
        qorctl({"import", "--no-announce", device_.path("/tmp/defaults")});
        daemon_.start();
    }
    std::string package(const char *name) const
    {
        return device_.read(std::string("/tmp/etc/config/") + name);
    }
};

TEST_F(SettingsTest, AnAddressOfTheLanTravelsAloneAndWhatElseIsInItsSectionStays)
{
    start_with({"ietf_vlan", "ietf_lan"},
               "ap_mode=0\nlan_ipaddr=192.0.2.1\nlan_netmask=255.255.255.0\n");
    // Something that another program has put there.
    std::string before = package("network");
    ASSERT_EQ(before.substr(before.size() - 2), "\n\n");
    before.back() = '\t';
    before += "option note 'kept'\n";
    device_.write("/tmp/etc/config/network", before);
    change({"lan_ipaddr=192.0.2.129"});
    const std::string printed = daemon_.stop().out;
    const std::string lines = "del network.lan.ipaddr\n"
                              "set network.lan=interface\n"
                              "set network.lan.ipaddr=192.0.2.129\n";
    ASSERT_GE(printed.size(), lines.size());
    EXPECT_EQ(printed.substr(printed.find("del ")), lines);

    std::string wanted = before;
    const std::string address = "\toption ipaddr '192.0.2.1'\n";
    ASSERT_NE(wanted.find(address), std::string::npos) << wanted;
    wanted.erase(wanted.find(address), address.size());
    EXPECT_EQ(package("network"), wanted + "\toption ipaddr '192.0.2.129'\n\n");
}

TEST_F(SettingsTest, PortForwardingAndTriggeringShareASectionAndTheLastToRunLeavesItsPair)
{
    start_with({"ietf_firewall"}, "forwarding1=web TCP 80 80 80 80 192.0.2.5\n");
    EXPECT_NE(package("firewall")
                  .find("config portmap 'portmap'\n"
                        "\toption port_forwarding '0'\n"
                        "\toption port_triggering '1'\n"),
              std::string::npos)
        << package("firewall");
}

TEST_F(SettingsTest, SettingsOfAnOutdoorUnitReachTheAgentInTheOrderOfItsTable)
{
    // Notes beside each signal the word that the agent would find.
    device_.write_program("/bin/killall",
                          "#!/bin/sh\necho \"$* $(\"$QORCTL\" get soap_setting)\" >>" +
                              device_.path("/tmp/killall_calls") + "\n");
    start_with({"ietf_outdoor_led"}, "led_light=1\nled_time_schedule=1\nmac_led_index=m-0\n");
    EXPECT_EQ(device_.killall_calls(), std::vector<std::string>{});
    change({"Location=Garden", "led_light=0"});
    qorctl({"unset", "led_time_schedule"});
    qorctl({"commit", "--wait"});
    EXPECT_EQ(device_.killall_calls(),
              (std::vector<std::string>{"-SIGUSR1 soap_agent SetLightingLEDSettings",
                                        "-SIGUSR1 soap_agent SetDeviceLocation",
                                        "-SIGUSR1 soap_agent DeleteLightingLEDOnAllPeriod"}));
    EXPECT_EQ(daemon_.stop().status, 0);
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), std::vector<std::string>{});
}

TEST_F(SettingsTest, JobsWhoseScriptsRunInTheWrongOrderAreAppliedInTheirs)
{
    start_with({"ietf_ddns"}, "endis_ddns=1\nsysDNSProviderlist=ZELTRAX\n");
    // The script of job 1 comes late: after that of job 2.
    const std::string script = "/etc/qorcfg.d/commit.sh";
    device_.write_program(script + ".kept", device_.read(script));
    device_.write_program(script, "#!/bin/sh\n"
                                  "[ \"$1\" != 1 ] || until [ -e " +
                                      device_.path("/tmp/go") +
                                      " ] || [ ! -e \"$0\" ]; do sleep 0.01; done\n"
                                      "exec \"${0%.sh}-shipped.sh\" \"$@\"\n");
    qorctl({"set", "sysDNSHost_5=first.example.net"});
    qorctl({"commit"});
    qorctl({"set", "sysDNSHost_5=second.example.net"});
    qorctl({"commit"});
    ASSERT_TRUE(test::wait_until(
        [&] { return package("ddns").find("second.example.net") != std::string::npos; }));
    EXPECT_EQ(package("ddns").find("first.example.net"), std::string::npos);
    device_.write("/tmp/go", "");
    ASSERT_TRUE(test::wait_until([&] { return test::ended_jobs(device_); }));
    EXPECT_NE(package("ddns").find("second.example.net"), std::string::npos);
    EXPECT_EQ(package("ddns").find("first.example.net"), std::string::npos);
    expect_nothing_left();
}

TEST_F(SettingsTest, WhatADaemonLeftThatWasKilledIsAppliedBeforeTheNextStart)
{
    device_.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\n");
    start_with({"ietf_devname"}, "Device_name=first\n");
    change({"Device_name=second"});
    change({"Device_name=third"});
    daemon_.kill();
    EXPECT_NE(package("systemconfig").find("first"), std::string::npos);
    qorctl({"set", "--no-announce", "Device_name=fourth"});
    daemon_.start();
    EXPECT_NE(package("systemconfig").find("fourth"), std::string::npos);
    expect_nothing_left();
}

} // namespace
} // namespace qorcfg
