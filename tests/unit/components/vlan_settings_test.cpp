#include "components/vlan_settings.h"

#include "support/network_device.h"

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Names = std::vector<std::string>;

TEST(VlanModeTest, VlansAreOffUnlessEnabledAndTaggedByTheirType)
{
    const NetworkDevice device;
    device.set({{"vlan_type", "1"}});
    EXPECT_EQ(get_vlan_mode(), VlanMode::off);
    device.set({{"enable_vlan", "1"}});
    EXPECT_EQ(get_vlan_mode(), VlanMode::tagged);
    device.set({{"vlan_type", "0"}});
    EXPECT_EQ(get_vlan_mode(), VlanMode::port_bridging);
    device.set({{"vlan_type", "2"}});
    EXPECT_EQ(get_vlan_mode(), VlanMode::port_bridging);
    device.set({{"enable_vlan", "2"}});
    EXPECT_EQ(get_vlan_mode(), VlanMode::off);
}

TEST(VlanModeTest, AnUnsetTypeBridgesPortsButIsNotTypeZero)
{
    const NetworkDevice device;
    device.set({{"enable_vlan", "1"}});
    EXPECT_EQ(get_vlan_mode(), VlanMode::port_bridging);
    EXPECT_FALSE(vlan_type_is("0"));
    EXPECT_TRUE(is_vlan_enabled());
}

TEST(VlanTagTest, FieldsAreSeparatedByRunsOfBlanksAndTabs)
{
    const NetworkDevice device;
    device.set({{"vlan_tag_1", "1 \t IPTV  20\t4   3 surplus"}});
    const std::vector<VlanTag> tags = vlan_tags(1, 5);
    ASSERT_EQ(tags.size(), 1U);
    EXPECT_TRUE(tags[0].enabled);
    EXPECT_EQ(tags[0].service, "IPTV");
    EXPECT_EQ(tags[0].id, 20);
    EXPECT_EQ(tags[0].priority, 4);
    EXPECT_EQ(tags[0].port_mask, 3);
    EXPECT_TRUE(tags[0].is("iptv"));
    EXPECT_FALSE(tags[0].is("iptv2"));
}

TEST(VlanTagTest, AnEntryWithTooFewFieldsIsSkippedAndTheScanGoesOn)
{
    const NetworkDevice device;
    device.set({{"vlan_tag_1", "1 Internet"},
                {"vlan_tag_2", "1 Internet 10"},
                {"vlan_tag_3", "   "},
                {"vlan_tag_4", "0 VoIP 30 1 1"}});
    EXPECT_EQ(vlan_tags(1, 3).size(), 2U);
    ASSERT_EQ(vlan_tags(1, 5).size(), 1U);
    EXPECT_EQ(vlan_tags(1, 5)[0].service, "VoIP");
    EXPECT_FALSE(vlan_tags(1, 5)[0].enabled);
}

TEST(VlanTagTest, TheFirstEmptyEntryEndsTheScan)
{
    const NetworkDevice device;
    device.set({{"vlan_tag_1", "1 a 1 1 1"}, {"vlan_tag_3", "1 c 3 1 1"}});
    EXPECT_EQ(vlan_tags(1, 5).size(), 1U);
    EXPECT_TRUE(vlan_tags(0, 5).empty());
    device.set({{"vlan_tag_0", "1 z 9 1 1"}});
    EXPECT_EQ(vlan_tags(0, 5).size(), 2U);
}

TEST(VlanTagTest, FieldsThatAreNoNumberCountAsZero)
{
    const NetworkDevice device;
    device.set({{"vlan_tag_1", "yes IPTV ten high all"}});
    const VlanTag tag = vlan_tags(1, 5).at(0);
    EXPECT_FALSE(tag.enabled);
    EXPECT_EQ(tag.id, 0);
    EXPECT_EQ(tag.priority, 0);
    EXPECT_EQ(tag.port_mask, 0);
}

TEST(IptvVlanTest, TheVlanCountsOnlyWhileItIsSwitchedOn)
{
    const NetworkDevice device;
    device.set({{"iptv_vlan", "10"}});
    EXPECT_EQ(iptv_vlan_id(), 0);
    device.set({{"iptv_vlan_enable", "1"}});
    EXPECT_EQ(iptv_vlan_id(), 10);
    device.set({{"iptv_vlan", "none"}});
    EXPECT_EQ(iptv_vlan_id(), 0);
}

TEST(LanPortsTest, TokensThatNameNoLanPortAreSkipped)
{
    const NetworkDevice device;
    set_lan_ports("WAN:eth0 LAN1 \t lan2:eth2 LAN3:eth3:1000 xLAN4:eth4 LAN:eth5");
    EXPECT_EQ(lan_ports(), (Names{"eth3", "eth5"}));
}

TEST(LanPortsTest, NamesAreCutAtSevenBytesAndTheNinthPortIsLeftOut)
{
    const NetworkDevice device;
    set_lan_ports("LAN1:12345678 LAN2:2 LAN3:3 LAN4:4 LAN5:5 LAN6:6 LAN7:7 LAN8:8 LAN9:9");
    EXPECT_EQ(lan_ports(), (Names{"1234567", "2", "3", "4", "5", "6", "7", "8"}));
}

TEST(LanPortsTest, AMaskNamesPortsByBit)
{
    const NetworkDevice device;
    set_lan_ports("LAN1:eth1 LAN2:eth2 LAN3:eth3");
    EXPECT_EQ(lan_ports_in(5), (Names{"eth1", "eth3"}));
    EXPECT_EQ(lan_ports_in(8), Names{});
    EXPECT_EQ(lan_ports_in(-1), (Names{"eth1", "eth2", "eth3"}));
}

TEST(BoundedPrintTest, ALongerTextIsCutAndReportedInTheRoutinesName)
{
    EXPECT_EQ(bounded_print("a_routine", 4, "1234"), "1234");
    EXPECT_EQ(bounded_print("a_routine", 4, ""), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(bounded_print("a_routine", 4, "12345"), "1234");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("a_routine"), std::string::npos);
}

} // namespace
} // namespace qorcfg
