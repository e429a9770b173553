#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfLighttpdTest, OneKeyIsSubscribedAndThereIsNoRegisterRoutine)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_lighttpd), Lines{"force_https"});
    EXPECT_EQ(device.log()[0], "init() - Initializing lighttpd");
    EXPECT_EQ(ietf_lighttpd.soap_init, nullptr);
    EXPECT_EQ(ietf_lighttpd.register_, nullptr);
}

TEST(IetfLighttpdTest, OnlyOneForcesHttpsAndTheSwitchIsANumber)
{
    const DeviceRoot device;
    device.be_base(false);
    const std::vector<std::pair<std::string, std::string>> values{
        {"1", "1"}, {"0", "0"}, {"", "0"}, {"2", "0"}, {"11", "0"}, {"on", "0"}};
    for (const auto &[stored, written] : values) {
        device.set({{"force_https", stored}});
        device.start_up(ietf_lighttpd);
        EXPECT_EQ(device.document("system", "lighttpd"),
                  R"({"system":{"lighttpd":{"enable":)" + written + "}}}")
            << stored;
    }
    EXPECT_EQ(device.log().back(), " update lighttpd");
}

TEST(IetfLighttpdTest, AChangeTouchesNoOtherSectionOfThePackage)
{
    const DeviceRoot device;
    device.enable(ietf_lighttpd);
    ietf_rae.init();
    device.set({{"ra_enable", "1"}});
    device.start_up();
    const std::string rae = device.document("system", "rae");
    device.set({{"force_https", "1"}});
    device.apply({"force_https"}, 1);
    EXPECT_EQ(device.lines(1, "system", "lighttpd"),
              (Lines{"delete system.lighttpd", "set system.lighttpd=system",
                     "set system.lighttpd.enable=1"}));
    EXPECT_FALSE(device.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.system.rae"));
    EXPECT_EQ(device.document("system", "rae"), rae);
}

} // namespace
} // namespace qorcfg
