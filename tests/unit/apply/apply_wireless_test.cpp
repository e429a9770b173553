#include "support/apply_test.h"

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

class ApplyWirelessTest : public test::ApplyTest {
protected:
    static constexpr const char *staged = "/tmp/.uci/wireless";
};

TEST_F(ApplyWirelessTest, SectionsThatTheWirelessLayerStagedAreMergedAndExistOnce)
{
    set_package("config wifi-iface 'ath0'\n\toption ssid 'old'\n\toption kept '1'\n", "wireless");
    // The same section made twice beside the one in the file, as two updates of the daemon do.
    device.write(staged, "+wireless.cfg02aaaa='wifi-iface'\n@wireless.cfg02aaaa='ath0'\n"
                         "wireless.ath0.ssid='newer'\n"
                         "+wireless.cfg03aaaa='wifi-iface'\n@wireless.cfg03aaaa='ath0'\n"
                         "+wireless.cfg04aaaa='wifi-device'\n@wireless.cfg04aaaa='wifi0'\n");
    batch("uci_update1.wireless.wifi", "set wireless.wifi0.hwmode=11ac\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package("wireless"), "\nconfig wifi-iface 'ath0'\n\toption ssid 'newer'\n"
                                   "\toption kept '1'\n\nconfig wifi-device 'wifi0'\n"
                                   "\toption hwmode '11ac'\n\n");
    EXPECT_EQ(device.read(staged), "");
    EXPECT_EQ(files(), Lines{});
}

TEST_F(ApplyWirelessTest, LaterSectionsOfANameGiveTheirTypeAndOptions)
{
    set_package("config a 's'\n\tlist l '1'\n\toption v '1'\n\nconfig a 'other'\n", "wireless");
    device.write(staged, "+wireless.cfg03aaaa='bb'\nwireless.cfg03aaaa.v='2'\n"
                         "|wireless.cfg03aaaa.l='2'\n|wireless.cfg03aaaa.l='3'\n"
                         "@wireless.cfg03aaaa='s'\n");
    batch("uci_update1.wireless.wifi", "set wireless.other.x=1\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package("wireless"), "\nconfig bb 's'\n\toption v '2'\n\tlist l '2'\n\tlist l '3'\n\n"
                                   "config a 'other'\n\toption x '1'\n\n");
}

TEST_F(ApplyWirelessTest, StagedChangesAreMergedForAnEmptyBatchToo)
{
    set_package("config t 's'\n", "wireless");
    device.write(staged, "+wireless.cfg02aaaa='t'\n@wireless.cfg02aaaa='made'\n");
    batch("uci_update1.wireless.wifi", "");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package("wireless"), "\nconfig t 's'\n\nconfig t 'made'\n\n");
    EXPECT_EQ(device.read(staged), "");
}

TEST_F(ApplyWirelessTest, StagedChangesStayUntilTheNewPackageStands)
{
    const std::string changes = "+wireless.cfg02aaaa='t'\n@wireless.cfg02aaaa='made'\n";
    set_package("config t 's'\n", "wireless");
    device.write(staged, changes);
    device.write("/tmp/etc/config/wireless.qorcfg-new/in-the-way", "");
    batch("uci_update1.wireless.wifi", "set wireless.s.a=1\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_EQ(device.read(staged), changes);
    EXPECT_EQ(package("wireless"), "config t 's'\n");
    EXPECT_EQ(files(), Lines{"claimed.uci_update1.wireless.wifi"});
}

TEST_F(ApplyWirelessTest, ADamagedPackageKeepsTheStagedChanges)
{
    set_package("config\n", "wireless");
    device.write(staged, "+wireless.cfg01aaaa='t'\n");
    batch("uci_update1.wireless.wifi", "set wireless.s.a=1\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_EQ(device.read(staged), "+wireless.cfg01aaaa='t'\n");
    EXPECT_EQ(files(), Lines{"failed.uci_update1.wireless.wifi"});
}

} // namespace
} // namespace qorcfg
