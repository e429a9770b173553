#include "wireless/wireless_model.h"

#include "support/wireless_device.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::WirelessDevice;

constexpr std::array<BoardRead, 2> reads{{
    {board_wps_pin, "systeminfo.boarddata.board_wpspin", 16},
    {board_mesh_role, "repacd.repacd.Role", 10},
}};

class WirelessModelTest : public testing::Test {
protected:
    void set_pin(const std::string &line) const
    {
        device_.write("/tmp/etc/config/systeminfo", "config systeminfo 'boarddata'\n" + line);
    }
    std::string pin() { return model_.refresh()->board[board_wps_pin]; }

    WirelessDevice device_;
    WirelessModel model_{reads};
};

TEST_F(WirelessModelTest, BoardFactsAreReadWithTheirSizes)
{
    set_pin("\toption board_wpspin '1234567890123456'\n");
    device_.write("/tmp/etc/config/repacd", "config repacd 'repacd'\n\toption Role 'ABCDEFGHIJ'\n");
    const auto facts = model_.refresh();
    EXPECT_EQ(facts->board[board_wps_pin], "123456789012345");
    EXPECT_EQ(facts->board[board_mesh_role], "ABCDEFGHI");
    EXPECT_EQ(facts->board[board_mac_2g], "") << "nobody asked for it";
}

TEST_F(WirelessModelTest, AFactThatIsMissingStaysWhatItWasLast)
{
    EXPECT_EQ(pin(), "12345670");
    set_pin("");
    EXPECT_EQ(pin(), "12345670");
    std::filesystem::remove(device_.path("/tmp/etc/config/systeminfo"));
    EXPECT_EQ(pin(), "12345670");
    set_pin("\toption board_wpspin '7'\n");
    EXPECT_EQ(pin(), "7");
}

TEST_F(WirelessModelTest, AFactThatIsMissingFromTheFirstIsEmpty)
{
    set_pin("");
    EXPECT_EQ(pin(), "");
}

TEST_F(WirelessModelTest, AFactThatIsAListStaysWhatItWasLast)
{
    set_pin("\tlist board_wpspin '1'\n\tlist board_wpspin '2'\n");
    EXPECT_EQ(pin(), "");
    set_pin("\toption board_wpspin '3'\n");
    EXPECT_EQ(pin(), "3");
    set_pin("\tlist board_wpspin '4'\n");
    EXPECT_EQ(pin(), "3");
}

TEST_F(WirelessModelTest, TheTablesOfAMissingDescriptionStay)
{
    EXPECT_EQ(model_.refresh()->hardware.radio_map_table.size(), 3U);
    std::filesystem::remove(device_.path(WirelessDevice::description));
    EXPECT_EQ(model_.refresh()->hardware.radio_map_table.size(), 3U);
}

TEST_F(WirelessModelTest, InstancesShareNothing)
{
    model_.refresh();
    WirelessModel other(reads);
    std::filesystem::remove(device_.path(WirelessDevice::description));
    EXPECT_EQ(other.refresh()->hardware.radio_map_table.size(), 0U);
}

TEST_F(WirelessModelTest, WhatARunHoldsDoesNotChangeUnderIt)
{
    const auto held = model_.refresh();
    device_.describe("1", {"other"}, {});
    EXPECT_EQ(model_.refresh()->hardware.device_of("2g"), "other");
    EXPECT_EQ(held->hardware.device_of("2g"), "wifi0");
    EXPECT_FALSE(held->hardware.guest_vlan);
}

} // namespace
} // namespace qorcfg
