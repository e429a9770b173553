#include "wireless/wireless_package.h"

#include "apply/uci_package.h"
#include "support/apply_test.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace qorcfg {
namespace {

class WirelessPackageTest : public test::ApplyTest {
protected:
    WirelessPackageTest() { set_package("config wifi-device 'wifi0'\n", "wireless"); }

    /// The package with its saved changes: "type name" of each section, "-" for one without name.
    std::string sections()
    {
        UciPackage uci;
        EXPECT_EQ(uci.read_with_changes("wireless"), UciPackage::Read::done);
        std::string text;
        const uci_element *element = nullptr;
        uci_foreach_element(&uci.get()->sections, element)
        {
            const uci_section *section = uci_to_section(element);
            text += std::string(section->type) + " " +
                    (section->anonymous ? "-" : section->e.name) + ", ";
        }
        return text;
    }
    std::string saved() const { return device.read("/tmp/.uci/wireless"); }
};

TEST_F(WirelessPackageTest, ASectionIsMadeAndSavedNotCommitted)
{
    WirelessPackage wireless;
    ASSERT_EQ(wireless.open_wifi_ctx(), 0);
    EXPECT_EQ(wireless.add_wifi_section("wifi-iface", "2gfh_main"), 0);
    EXPECT_EQ(sections(), "wifi-device wifi0, wifi-iface 2gfh_main, ");
    EXPECT_EQ(package("wireless"), "config wifi-device 'wifi0'\n");
}

TEST_F(WirelessPackageTest, ASectionThatIsThereStaysTheOnlyOneOfItsName)
{
    WirelessPackage wireless;
    ASSERT_EQ(wireless.open_wifi_ctx(), 0);
    EXPECT_EQ(wireless.add_wifi_section("wifi-device", "wifi0"), 0);
    EXPECT_EQ(wireless.add_wifi_section("wifi-iface", "wifi0"), 0);
    EXPECT_EQ(sections(), "wifi-device wifi0, ");
    EXPECT_EQ(saved(), "");
}

TEST_F(WirelessPackageTest, WhatAnotherRunHasMadeSinceIsNotMadeAgain)
{
    WirelessPackage one;
    WirelessPackage other;
    ASSERT_EQ(one.open_wifi_ctx(), 0);
    ASSERT_EQ(other.open_wifi_ctx(), 0);
    EXPECT_EQ(one.add_wifi_section("wifi-iface", "2gfh_main"), 0);
    EXPECT_EQ(other.add_wifi_section("wifi-iface", "2gfh_main"), 0);
    EXPECT_EQ(other.add_wifi_section("wifi-iface", "5gfh_main"), 0);
    EXPECT_EQ(sections(), "wifi-device wifi0, wifi-iface 2gfh_main, wifi-iface 5gfh_main, ");
}

TEST_F(WirelessPackageTest, ANameThatUciCannotHoldIsNotTried)
{
    WirelessPackage wireless;
    ASSERT_EQ(wireless.open_wifi_ctx(), 0);
    for (const char *name : {"", "wifi-0", "wifi 0", "a.b", "a=b", "a'b"}) {
        EXPECT_EQ(wireless.add_wifi_section("wifi-device", name), 1) << name;
    }
    EXPECT_EQ(saved(), "");
}

TEST_F(WirelessPackageTest, WithoutThePackageOpeningFailsWithAMessage)
{
    std::filesystem::remove(device.path("/tmp/etc/config/wireless"));
    WirelessPackage wireless;
    testing::internal::CaptureStderr();
    EXPECT_EQ(wireless.open_wifi_ctx(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Can't load wireless package\n");
    EXPECT_EQ(wireless.add_wifi_section("wifi-iface", "2gfh_main"), 1);
}

TEST_F(WirelessPackageTest, APackageThatIsRemovedMeanwhileFailsTheAdditionOnly)
{
    WirelessPackage wireless;
    ASSERT_EQ(wireless.open_wifi_ctx(), 0);
    std::filesystem::remove(device.path("/tmp/etc/config/wireless"));
    EXPECT_EQ(wireless.add_wifi_section("wifi-iface", "2gfh_main"), 1);
}

TEST_F(WirelessPackageTest, OverlappingRunsAndAppliesLeaveEachSectionOnce)
{
    const std::vector<std::string> names{"2gfh_main", "2gfh_guest", "5gfh_main", "5gfh_guest"};
    std::atomic<int> failures{0};
    std::vector<std::thread> runs;
    for (int i = 0; i < 3; ++i) {
        runs.emplace_back([&] {
            for (int run = 0; run < 10; ++run) {
                WirelessPackage wireless;
                failures += wireless.open_wifi_ctx();
                for (const std::string &name : names) {
                    failures += wireless.add_wifi_section("wifi-iface", name);
                }
            }
        });
    }
    for (int number = 1; number <= 10; ++number) {
        batch("uci_update" + std::to_string(number) + ".wireless.all",
              number % 2 == 0 ? "set wireless.2gfh_main=wifi-iface\n"
                              : "delete wireless.2gfh_main\n");
        EXPECT_TRUE(apply_job(number)) << errors;
    }
    for (std::thread &run : runs) {
        run.join();
    }
    EXPECT_EQ(failures, 0);
    batch("uci_update11.wireless.all", "set wireless.2gfh_main=wifi-iface\n");
    EXPECT_TRUE(apply_job(11)) << errors;
    EXPECT_EQ(saved(), "");
    std::string text = sections();
    EXPECT_EQ(text.find('-' + std::string(",")), std::string::npos) << text;
    for (const std::string &name : names) {
        const std::string section = "wifi-iface " + name + ", ";
        ASSERT_NE(text.find(section), std::string::npos) << text;
        text.erase(text.find(section), section.size());
    }
    EXPECT_EQ(text, "wifi-device wifi0, ");
}

} // namespace
} // namespace qorcfg
