#include "platform/file.h"
#include "support/apply_test.h"
#include "support/wait.h"

#include <cstdio>
#include <fstream>
#include <future>
#include <sys/file.h>
#include <sys/stat.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

/// Others are at work on the same files while the applier runs.
class ApplyOverlapTest : public test::ApplyTest {
protected:
    /// Holds a shared lock on `path` until the applier waits behind it, then calls `change`.
    template <typename Change> void apply_while_locked(const std::string &path, Change change)
    {
        Fd held = lock_path(device.path(path), LOCK_SH);
        ASSERT_TRUE(held);
        auto run = std::async(std::launch::async, [this] { return apply_job(1); });
        const bool waits =
            test::wait_until([&] { return somebody_waits_for(path); }, std::chrono::seconds(20));
        change();
        held = Fd();
        EXPECT_TRUE(run.get()) << errors;
        EXPECT_TRUE(waits);
    }

private:
    bool somebody_waits_for(const std::string &path) const
    {
        struct stat info {};
        if (::stat(device.path(path).c_str(), &info) != 0) {
            return false;
        }
        const std::string inode = ":" + std::to_string(info.st_ino) + " ";
        std::ifstream locks("/proc/locks");
        for (std::string line; std::getline(locks, line);) {
            if (line.find("-> FLOCK") != std::string::npos &&
                line.find(inode) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
};

TEST_F(ApplyOverlapTest, ABatchIsTakenUpOnlyWhenItsWriterIsDone)
{
    batch("uci_update1.net.part", "set net.s=t\n");
    apply_while_locked("/tmp/cache/qorcfg/ucicfg.d", [&] {
        EXPECT_EQ(files(), Lines{"uci_update1.net.part"});
        batch("uci_update1.net.part", "set net.s.a=1\n");
    });
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a '1'\n\n");
    EXPECT_EQ(files(), Lines{});
}

TEST_F(ApplyOverlapTest, APackageThatOthersReplaceMeanwhileIsReadAnew)
{
    set_package("config t 's'\n");
    batch("uci_update1.net.part", "add_list net.s.l=1\n");
    apply_while_locked("/tmp/etc/config/net", [&] {
        set_package("config t 's'\n\tlist l 'theirs'\n", "net.tmp");
        const std::string path = device.path("/tmp/etc/config/net");
        EXPECT_EQ(std::rename((path + ".tmp").c_str(), path.c_str()), 0);
    });
    EXPECT_EQ(package(), "\nconfig t 's'\n\tlist l 'theirs'\n\tlist l '1'\n\n");
    EXPECT_EQ(device.names_in("/tmp/etc/config"), Lines{"net"});
}

TEST_F(ApplyOverlapTest, WhatTheWirelessLayerStagesMeanwhileStaysStaged)
{
    const std::string staged = "/tmp/.uci/wireless";
    set_package("config t 's'\n", "wireless");
    device.write(staged, "wireless.s.a='1'\n");
    batch("uci_update1.wireless.wifi", "set wireless.s.b=2\n");
    apply_while_locked("/tmp/etc/config/wireless",
                       [&] { device.write(staged, "wireless.s.a='1'\nwireless.s.c='3'\n"); });
    EXPECT_EQ(package("wireless"), "\nconfig t 's'\n\toption a '1'\n\toption b '2'\n\n");
    EXPECT_EQ(device.read(staged), "wireless.s.c='3'\n");
}

} // namespace
} // namespace qorcfg
