#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

std::string expected(int disable, const std::string &version, int bt_enable)
{
    return R"({"igmpproxy":{"igmpproxy":{"disable":)" + std::to_string(disable) +
           R"(,"igmpversion":")" + version + R"(","bt_enable":)" + std::to_string(bt_enable) +
           "}}}";
}

class IetfIgmpproxyTest : public testing::Test {
protected:
    std::string document(std::initializer_list<std::pair<const char *, std::string>> settings)
    {
        device_.set(settings);
        device_.start_up(ietf_igmpproxy);
        return device_.document("igmpproxy", "igmpproxy");
    }

    const DeviceRoot device_;
};

TEST_F(IetfIgmpproxyTest, KeysAreSubscribedInOrder)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_igmpproxy),
              (Lines{"ap_mode", "wan_endis_igmp", "force_igmp_version", "enable_bt_igmp"}));
    EXPECT_EQ(device_.log()[0], "init() - Initializing igmpproxy");
    device_.start_up();
    EXPECT_EQ(device_.log().back(), " update igmpproxy");
    ietf_igmpproxy.register_();
    EXPECT_EQ(device_.log().back(), "register() -  igmpproxy");
}

TEST_F(IetfIgmpproxyTest, AccessPointModeSwitchesItOff)
{
    EXPECT_EQ(document({{"ap_mode", "1"},
                        {"wan_endis_igmp", "1"},
                        {"force_igmp_version", "2"},
                        {"enable_bt_igmp", "1"}}),
              expected(1, "Auto", 0));
}

TEST_F(IetfIgmpproxyTest, OnlyZeroDisablesAndTheVersionStaysTheForcedOne)
{
    EXPECT_EQ(document({{"wan_endis_igmp", "0"}}), expected(1, "Auto", 0));
    EXPECT_EQ(document({{"force_igmp_version", "1"}, {"enable_bt_igmp", "1"}}),
              expected(1, "IGMPv2", 1));
    EXPECT_EQ(document({{"wan_endis_igmp", "1"}}), expected(0, "IGMPv2", 1));
    EXPECT_EQ(document({{"wan_endis_igmp", ""}}), expected(0, "IGMPv2", 1));
}

TEST_F(IetfIgmpproxyTest, UnknownVersionsAreAuto)
{
    EXPECT_EQ(document({{"force_igmp_version", "2"}}), expected(0, "IGMPv3", 0));
    EXPECT_EQ(document({{"force_igmp_version", "3"}}), expected(0, "Auto", 0));
    EXPECT_EQ(document({{"force_igmp_version", std::string(300, '1')}}), expected(0, "Auto", 0));
    EXPECT_EQ(document({{"force_igmp_version", ""}}), expected(0, "Auto", 0));
}

TEST_F(IetfIgmpproxyTest, ASatelliteWritesToo)
{
    device_.be_base(false);
    EXPECT_EQ(device_.run_update(ietf_igmpproxy, 1), 0);
    EXPECT_EQ(
        device_.lines(1, "igmpproxy", "igmpproxy"),
        (Lines{"set igmpproxy.igmpproxy=igmpproxy", "set igmpproxy.igmpproxy.disable=0",
               "set igmpproxy.igmpproxy.igmpversion=Auto", "set igmpproxy.igmpproxy.bt_enable=0"}));
}

} // namespace
} // namespace qorcfg
