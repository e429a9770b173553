#include "components/components.h"

#include "core/base/globals.h"
#include "support/network_device.h"

#include <algorithm>

namespace qorcfg {
namespace {

using test::NetworkDevice;
using Lines = std::vector<std::string>;
using Settings = std::initializer_list<std::pair<const char *, std::string>>;

std::string egress(const char *q)
{
    std::string map;
    for (const char *from : {"0", "1", "2", "3", "4", "5", "6", "7"}) {
        map += std::string(map.empty() ? "" : " ") + from + ":" + q;
    }
    return map;
}

/// The member of "device" that carries VLAN `id` on `port`; no `q` for no priority.
std::string device_section(const std::string &port, const std::string &id, const char *q = nullptr)
{
    return "\"" + port + "v" + id + R"(":{"name":")" + port + "-v" + id +
           R"(","type":"8021q","ifname":")" + port + R"(","vid":")" + id + "\"" +
           (q == nullptr ? "" : R"(,"egress_qos":")" + egress(q) + "\"") + "}";
}

std::string bridge_section(const std::string &name, const std::string &members)
{
    return "\"" + name + R"(":{"ifname":")" + members +
           R"(","type":"bridge","macaddr":"00:53:00:AA:BB:01"})";
}

constexpr const char *tagged_end = R"("network":{"vlan":{"type":1}}})";
constexpr const char *bridging_end = R"("network":{"vlan":{"type":0}}})";

class IetfVlanTest : public testing::Test {
protected:
    std::string document(Settings settings)
    {
        return device_.document_for(ietf_vlan, "vlan", settings);
    }
    /// The document of tagged VLANs.
    std::string tagged(Settings settings)
    {
        device_.set({{"enable_vlan", "1"}, {"vlan_type", "1"}});
        return document(settings);
    }
    /// The document of port bridging.
    std::string bridging(Settings settings)
    {
        device_.set({{"enable_vlan", "1"}, {"vlan_type", "0"}});
        return document(settings);
    }

    NetworkDevice device_;
};

TEST_F(IetfVlanTest, KeysAreSubscribedInOrder)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_vlan),
              (Lines{"ap_mode", "enable_vlan", "vlan_type", "iptv_mask", "iptv_vlan_enable",
                     "iptv_vlan", "vlan_tag_"}));
}

TEST_F(IetfVlanTest, EnablingLogsInitAndTheRegisterRoutineOfTheSecondSlot)
{
    device_.enable(ietf_vlan);
    EXPECT_EQ(device_.log().front(), "init() - Initializing vlan");
    EXPECT_EQ(device_.log().back(), "register() -  vlan");
    EXPECT_EQ(ietf_vlan.register_, nullptr);
}

TEST_F(IetfVlanTest, FourCallbacksOfTheirOwnFollowTheKeys)
{
    device_.enable(ietf_vlan);
    std::vector<UpdateCallback> callbacks;
    for (const KeyRecord &record : registry().records()) {
        ASSERT_EQ(record.normal.size(), 1U);
        callbacks.push_back(record.normal[0]);
    }
    ASSERT_EQ(callbacks.size(), 7U);
    EXPECT_EQ(callbacks[0], callbacks[1]);
    EXPECT_EQ(callbacks[3], callbacks[4]);
    EXPECT_EQ(callbacks[3], callbacks[5]);
    std::vector<UpdateCallback> distinct{callbacks[0], callbacks[2], callbacks[3], callbacks[6]};
    std::sort(distinct.begin(), distinct.end());
    EXPECT_EQ(std::unique(distinct.begin(), distinct.end()), distinct.end());
}

TEST_F(IetfVlanTest, AFilterRunsTheUpdateOnlyInItsMode)
{
    device_.enable(ietf_vlan);
    int job = 0;
    const auto runs = [&](const char *key) {
        device_.apply({key}, ++job);
        return device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update" + std::to_string(job) +
                              ".network.vlan");
    };
    EXPECT_TRUE(runs("ap_mode"));
    EXPECT_TRUE(runs("enable_vlan"));
    for (const char *key :
         {"vlan_type", "iptv_mask", "iptv_vlan_enable", "iptv_vlan", "vlan_tag_"}) {
        EXPECT_FALSE(runs(key)) << key;
    }
    device_.set({{"enable_vlan", "1"}});
    EXPECT_TRUE(runs("vlan_type"));
    EXPECT_FALSE(runs("iptv_mask"));
    EXPECT_FALSE(runs("vlan_tag_"));
    device_.set({{"vlan_type", "0"}});
    EXPECT_TRUE(runs("iptv_mask"));
    EXPECT_TRUE(runs("iptv_vlan_enable"));
    EXPECT_TRUE(runs("iptv_vlan"));
    EXPECT_FALSE(runs("vlan_tag_"));
    device_.set({{"vlan_type", "1"}});
    EXPECT_FALSE(runs("iptv_mask"));
    EXPECT_TRUE(runs("vlan_tag_"));
}

TEST_F(IetfVlanTest, EveryCallbackReturnsZero)
{
    device_.enable(ietf_vlan);
    for (const KeyRecord &record : registry().records()) {
        EXPECT_EQ(record.normal.at(0)(1), 0);
    }
}

TEST_F(IetfVlanTest, ASatelliteAnAccessPointAndVlansOffGiveTheEmptyDocument)
{
    EXPECT_EQ(document({}), "{}");
    const Settings on{{"vlan_tag_1", "1 Internet 10 0 0"}};
    EXPECT_NE(tagged(on), "{}");
    EXPECT_EQ(tagged({{"ap_mode", "1"}}), "{}");
    device_.set({{"ap_mode", "0"}});
    device_.be_base(false);
    EXPECT_EQ(tagged(on), "{}");
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update.network.vlan"));
}

TEST_F(IetfVlanTest, AnUpdateLogsNothing)
{
    device_.enable(ietf_vlan);
    device_.clear_log();
    registry().records().at(0).normal.at(0)(1);
    EXPECT_TRUE(device_.log().empty());
}

TEST_F(IetfVlanTest, InternetGetsItsSubInterfaceOnly)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 INTERNET 10 5 7"}}),
              R"({"device":{)" + device_section("eth0", "10", "5") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, AServiceIsBridgedWithThePortsOfItsMask)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 IPTV 20 4 3"}}),
              R"({"interface":{)" + bridge_section("v20", "eth0-v20 eth1 eth2") +
                  R"(},"device":{)" + device_section("eth0", "20", "4") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, ASwitchedOffEntryAndOneOfFourFieldsGiveNothing)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "0 IPTV 20 4 3"}, {"vlan_tag_2", "1 VoIP 30 4"}}),
              std::string("{") + tagged_end);
}

TEST_F(IetfVlanTest, IdsOutsideOneTo4094GiveNoSections)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 Internet 0 1 0"},
                      {"vlan_tag_2", "1 IPTV 4095 1 3"},
                      {"vlan_tag_3", "1 IPTV -1 1 3"},
                      {"vlan_tag_4", "1 IPTV 99999999999 1 3"},
                      {"vlan_tag_5", "1 IPTV id 1 3"}}),
              std::string("{") + tagged_end);
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 Internet 1 0 0"},
                      {"vlan_tag_2", "1 Internet 4094 0 0"},
                      {"vlan_tag_3", ""}}),
              R"({"device":{)" + device_section("eth0", "1", "0") + "," +
                  device_section("eth0", "4094", "0") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, ANegativePriorityMapsNothing)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 Internet 10 -1 0"}}),
              R"({"device":{)" + device_section("eth0", "10") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, InRegionRuTheScanBeginsAtZeroAndIntranetHasABridge)
{
    device_.write_board("RU");
    EXPECT_EQ(tagged({{"vlan_tag_0", "1 intranet 7 1 0"}, {"vlan_tag_1", "1 Internet 8 2 0"}}),
              R"({"interface":{)" + bridge_section("intra", "eth0-v7") + R"(},"device":{)" +
                  device_section("eth0", "7", "1") + "," + device_section("eth0", "8", "2") + "}," +
                  tagged_end);
    EXPECT_EQ(tagged({{"vlan_tag_0", ""}}), std::string("{") + tagged_end);
}

TEST_F(IetfVlanTest, ElsewhereIndexZeroIsNotReadAndIntranetIsAServiceLikeOthers)
{
    device_.write_board("RUS");
    EXPECT_EQ(tagged({{"vlan_tag_0", "1 Intranet 7 1 0"}, {"vlan_tag_1", "1 Intranet 8 2 1"}}),
              R"({"interface":{)" + bridge_section("v8", "eth0-v8 eth1") + R"(},"device":{)" +
                  device_section("eth0", "8", "2") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, TheRegionIsReadOnceAtInit)
{
    device_.enable(ietf_vlan);
    device_.write_board("RU");
    device_.set({{"enable_vlan", "1"}, {"vlan_type", "1"}, {"vlan_tag_0", "1 Internet 7 1 0"}});
    device_.apply({"vlan_tag_"}, 1);
    EXPECT_EQ(device_.document("network", "vlan"), std::string("{") + tagged_end);
}

TEST_F(IetfVlanTest, OrangeFranceEntry840StandsForBothVlans)
{
    EXPECT_EQ(tagged({{"enable_orange", "1"},
                      {"vlan_tag_1", "1 Internet 838 0 0"},
                      {"vlan_tag_2", "1 Orange 838 3 1"},
                      {"vlan_tag_3", "1 IPTV 840 5 1"}}),
              R"({"device":{)" + device_section("eth0", "838", "5") + "," +
                  device_section("eth0", "840", "5") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, OrangeFranceRulesNeedTheirSwitch)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 IPTV 840 5 1"}}),
              R"({"interface":{)" + bridge_section("v840", "eth0-v840 eth1") + R"(},"device":{)" +
                  device_section("eth0", "840", "5") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, OrangeFranceComesBeforeOrangeSpain)
{
    EXPECT_EQ(
        tagged(
            {{"enable_orange", "1"}, {"orange_spain_iptv", "1"}, {"vlan_tag_1", "1 IPTV 838 4 1"}}),
        std::string("{") + tagged_end);
}

TEST_F(IetfVlanTest, ALaterEntryOfTheSameVlanReplacesItsPriorityInPlace)
{
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 Internet 10 1 0"},
                      {"vlan_tag_2", "1 Internet 11 2 0"},
                      {"vlan_tag_3", "1 Internet 10 3 0"}}),
              R"({"device":{)" + device_section("eth0", "10", "3") + "," +
                  device_section("eth0", "11", "2") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, SpanishProfilesGetNoIptvBridge)
{
    const struct {
        const char *key;
        const char *id;
    } profiles[] = {
        {"voda_spain_iptv", "105"}, {"movistar_spain_iptv", "2"}, {"orange_spain_iptv", "838"}};
    for (const auto &[key, id] : profiles) {
        const std::string entry = std::string("1 IPTV ") + id + " 4 1";
        const std::string sub_interface = device_section("eth0", id, "4");
        EXPECT_EQ(tagged({{key, "1"}, {"vlan_tag_1", entry}}),
                  R"({"device":{)" + sub_interface + "}," + tagged_end);
        EXPECT_EQ(tagged({{key, "0"}, {"vlan_tag_1", entry}}),
                  R"({"interface":{)" +
                      bridge_section("v" + std::string(id), "eth0-v" + std::string(id) + " eth1") +
                      R"(},"device":{)" + sub_interface + "}," + tagged_end);
    }
}

TEST_F(IetfVlanTest, MembersOfATaggedBridgeAreCutAt64Bytes)
{
    device_.write("/tmp/cache/systeminfo/ethinfo.info",
                  R"({"eth_ifs_maps": "LAN1:aaaaaaa LAN2:bbbbbbb LAN3:ccccccc LAN4:ddddddd)"
                  R"( LAN5:eeeeeee LAN6:fffffff LAN7:ggggggg LAN8:hhhhhhh"})");
    const std::string members = "eth0-v1234 aaaaaaa bbbbbbb ccccccc ddddddd eeeeeee fffffff ggggg";
    ASSERT_EQ(members.size(), 64U);
    EXPECT_NE(tagged({{"vlan_tag_1", "1 IPTV 1234 0 255"}}).find("\"" + members + "\""),
              std::string::npos);
}

TEST_F(IetfVlanTest, ABoardWithoutMacGivesBridgesWithoutMacaddr)
{
    device_.write("/tmp/cache/systeminfo/boarddata.info", "{}");
    EXPECT_EQ(tagged({{"vlan_tag_1", "1 IPTV 20 0 0"}}),
              R"({"interface":{"v20":{"ifname":"eth0-v20","type":"bridge"}},"device":{)" +
                  device_section("eth0", "20", "0") + "}," + tagged_end);
}

TEST_F(IetfVlanTest, PortBridgingWithAVlanTagsEveryMember)
{
    EXPECT_EQ(bridging({{"iptv_vlan_enable", "1"}, {"iptv_vlan", "50"}, {"iptv_mask", "5"}}),
              R"({"device":{)" + device_section("eth0", "50") + "," + device_section("eth1", "50") +
                  "," + device_section("eth3", "50") + R"(},"interface":{)" +
                  bridge_section("v50", "eth0-v50 eth1-v50 eth3-v50") + "}," + bridging_end);
}

TEST_F(IetfVlanTest, PortBridgingWithoutAVlanOnlyNamesTheMode)
{
    const std::string mode_only = std::string("{") + bridging_end;
    EXPECT_EQ(bridging({{"iptv_vlan_enable", "0"}, {"iptv_vlan", "50"}, {"iptv_mask", "5"}}),
              mode_only);
    EXPECT_EQ(bridging({{"iptv_vlan_enable", "1"}, {"iptv_vlan", "0"}}), mode_only);
    EXPECT_EQ(bridging({{"iptv_vlan", "-3"}}), mode_only);
    EXPECT_EQ(bridging({{"iptv_vlan", "none"}}), mode_only);
    EXPECT_EQ(bridging({{"iptv_vlan", "4095"}}), mode_only);
}

TEST_F(IetfVlanTest, AMaskThatIsNoNumberBridgesNoPort)
{
    EXPECT_EQ(bridging({{"iptv_vlan_enable", "1"}, {"iptv_vlan", "50"}, {"iptv_mask", "all"}}),
              R"({"device":{)" + device_section("eth0", "50") + R"(},"interface":{)" +
                  bridge_section("v50", "eth0-v50") + "}," + bridging_end);
}

TEST_F(IetfVlanTest, MembersOfABridgeOfPortsAreCutAt128BytesAndALongFirstOneIsReported)
{
    const std::string port(117, 'w');
    systeminfo[wan_eth_ifs].value = port;
    const std::string members = port + "-v50 eth1-v50";
    ASSERT_EQ(members.size(), 130U);
    EXPECT_NE(bridging({{"iptv_vlan_enable", "1"}, {"iptv_vlan", "50"}, {"iptv_mask", "1"}})
                  .find("\"" + members.substr(0, 128) + "\""),
              std::string::npos);
    systeminfo[wan_eth_ifs].value = std::string(126, 'w');
    testing::internal::CaptureStderr();
    EXPECT_NE(document({}).find("\"" + std::string(126, 'w') + "-v\""), std::string::npos);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("bridge_mode_cdb_to_json"),
              std::string::npos);
}

TEST_F(IetfVlanTest, SwitchingVlansOffDeletesEverySection)
{
    tagged({{"vlan_tag_1", "1 IPTV 20 4 1"}});
    device_.set({{"enable_vlan", "0"}});
    device_.apply({"enable_vlan"}, 5);
    EXPECT_EQ(device_.lines(5, "network", "vlan"),
              (Lines{"delete network.v20", "delete network.eth0v20", "delete network.vlan"}));
}

} // namespace
} // namespace qorcfg
