#include "components/components.h"

#include "support/device_root.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfDevnameTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_devname), (Lines{"Device_name", "GUI_Region"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing device name");
    device.clear_log();
    ietf_devname.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  device name"});
}

TEST(IetfDevnameTest, TheNameStandsInThreeOptionsAndTheRegionIsTheLanguage)
{
    const DeviceRoot device;
    device.set({{"Device_name", "Kova"}, {"GUI_Region", "English"}});
    device.start_up(ietf_devname);
    EXPECT_EQ(
        device.startup_lines("systemconfig", "system"),
        (Lines{"set systemconfig.system=system", "set systemconfig.system.devicename=Kova",
               "set systemconfig.system.hostname=Kova", "set systemconfig.system.netbiosname=Kova",
               "set systemconfig.system.language=English"}));
    EXPECT_EQ(device.log().back(), " update device name");
}

TEST(IetfDevnameTest, ASatelliteWritesToo)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"Device_name", "Kova"}});
    EXPECT_EQ(device.run_update(ietf_devname, 1), 0);
    EXPECT_EQ(device.lines(1, "systemconfig", "system").size(), 4U);
}

TEST(IetfDevnameTest, AnEmptyNameLeavesOutAllThreeOptions)
{
    const DeviceRoot device;
    device.set({{"GUI_Region", "German"}});
    device.start_up(ietf_devname);
    EXPECT_EQ(device.document("systemconfig", "system"),
              R"({"system":{"system":{"language":"German"}}})");
}

TEST(IetfDevnameTest, NamesAreCutAt127Bytes)
{
    const DeviceRoot device;
    const std::string kept(127, 'n');
    device.set({{"Device_name", kept + "lost"}, {"GUI_Region", kept + "lost"}});
    device.start_up(ietf_devname);
    for (const char *option : {"devicename", "hostname", "netbiosname", "language"}) {
        const Lines lines = device.startup_lines("systemconfig", "system");
        const std::string line = std::string("set systemconfig.system.") + option + "=" + kept;
        EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << option;
    }
}

} // namespace
} // namespace qorcfg
