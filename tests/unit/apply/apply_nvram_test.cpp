#include "support/apply_test.h"
#include "support/hook_scripts.h"
#include "support/process.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

/// NVRAM-side update files and the shipped script that takes them.
class ApplyNvramTest : public test::ApplyTest {
protected:
    static constexpr const char *nvram = "/tmp/cache/qorcfg/nvramcfg.d/";

    void update(const std::string &name, const std::string &text)
    {
        device.write(nvram + name, text);
        const timespec time{1'000'000'000, ++clock_};
        const timespec times[]{time, time};
        ASSERT_EQ(::utimensat(AT_FDCWD, device.path(nvram + name).c_str(), times, 0), 0);
    }
    std::string settings(const std::string &name = "wlan") const
    {
        return device.read("/tmp/etc/nvram/" + name);
    }

    long clock_ = 0;
};

TEST_F(ApplyNvramTest, SettingsAreMergedInOrderAndTheLastValueWins)
{
    test::install_hook_scripts(device);
    update("nvram_update9.wlan", "set a.b=left over\nset a.c=9\n");
    update("nvram_update.wlan", "set a.b=1\nset a.s.d=2\n");
    EXPECT_TRUE(apply_startup()) << errors;
    EXPECT_EQ(settings(), "a.b=1\na.c=9\na.s.d=2\n");
    update("nvram_update2.wlan", "set a.b=2\n");
    update("nvram_update1.wlan", "set a.b=1\nset x=\n");
    update("nvram_update1.other.doc", "set y=1\n");
    EXPECT_TRUE(apply_job(2)) << errors;
    EXPECT_EQ(settings(), "a.b=2\na.c=9\na.s.d=2\nx=\n");
    EXPECT_EQ(settings("other.doc"), "y=1\n");
    EXPECT_EQ(device.names_in(nvram), Lines{});
    EXPECT_EQ(device.names_in("/tmp/etc/nvram"), (Lines{"other.doc", "wlan"}));
    struct stat info {};
    ASSERT_EQ(::stat(device.path("/tmp/etc/nvram/wlan").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);
}

TEST_F(ApplyNvramTest, ValuesAreNeverEvaluated)
{
    test::install_hook_scripts(device);
    const std::string value =
        "  $(touch " + device.path("/oops") + ") `x` \\n \"q\" 'q' # ; * = \xc3\xa4 \xff \\ ";
    update("nvram_update1.wlan", "set a.b=" + value + "\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    update("nvram_update2.wlan", "set a.c=2\n");
    EXPECT_TRUE(apply_job(2)) << errors;
    EXPECT_EQ(settings(), "a.b=" + value + "\na.c=2\n");
    EXPECT_FALSE(device.exists("/oops"));
}

TEST_F(ApplyNvramTest, AnUpdateIsKeptUntilItsScriptEndsWell)
{
    update("nvram_update1.wlan", "set a=1\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_NE(errors.find("/etc/qorcfg.d/nvram.sh: No such file"), std::string::npos) << errors;
    device.write_program("/etc/qorcfg.d/nvram.sh", "#!/bin/sh\nexit 3\n");
    update("nvram_update2.wlan", "set a=2\n");
    EXPECT_FALSE(apply_job(2));
    EXPECT_NE(errors.find("ended with status 3"), std::string::npos) << errors;
    EXPECT_EQ(device.names_in(nvram), (Lines{"claimed.nvram_update1.wlan", "nvram_update2.wlan"}));
    test::install_hook_scripts(device);
    EXPECT_TRUE(apply_job(2)) << errors;
    EXPECT_EQ(settings(), "a=2\n");
    EXPECT_EQ(device.names_in(nvram), Lines{});
}

TEST_F(ApplyNvramTest, TheScriptLeavesOldSettingsWhenItCannotWrite)
{
    test::install_hook_scripts(device);
    update("nvram_update1.wlan", "set a=1\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    device.write("/tmp/etc/nvram/.wlan.new/in-the-way", "");
    update("nvram_update2.wlan", "set a=2\n");
    EXPECT_FALSE(apply_job(2));
    EXPECT_EQ(settings(), "a=1\n");
    EXPECT_EQ(device.names_in(nvram), Lines{"claimed.nvram_update2.wlan"});
}

TEST_F(ApplyNvramTest, RunsOfTheScriptFollowOneAnother)
{
    test::install_hook_scripts(device);
    std::vector<std::unique_ptr<test::Process>> runs;
    for (int i = 0; i < 20; ++i) {
        const std::string number = std::to_string(i);
        const std::string name = "nvram_update" + number + ".wlan";
        update(name, "set key" + number + "=1\n");
        runs.push_back(std::make_unique<test::Process>(
            Lines{device.path("/etc/qorcfg.d/nvram.sh"), device.path(nvram + name)},
            Lines{"QORCFG_ROOT=" + device.root()}));
    }
    for (const auto &run : runs) {
        EXPECT_EQ(run->wait().status, 0);
    }
    const std::string text = settings();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 20) << text;
}

TEST_F(ApplyNvramTest, SettingsThatAFullDiskCutDoNotReplaceTheOldOnes)
{
    test::install_hook_scripts(device);
    update("nvram_update1.wlan", "set a=1\nset b=1\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    // An awk that does not notice what a file could not take.
    device.write_program("/bin/awk", "#!/bin/sh\nPATH=${PATH#*:}\nif [ -p /dev/stdout ]; then\n"
                                     "    exec awk \"$@\"\nfi\nawk \"$@\" | head -c 5\n");
    update("nvram_update2.wlan", "set a=2\n");
    EXPECT_FALSE(apply_job(2));
    EXPECT_EQ(settings(), "a=1\nb=1\n");
    EXPECT_EQ(device.names_in("/tmp/etc/nvram"), Lines{"wlan"});
    std::filesystem::remove(device.path("/bin/awk"));
    EXPECT_TRUE(apply_job(2)) << errors;
    EXPECT_EQ(settings(), "a=2\nb=1\n");
}

TEST_F(ApplyNvramTest, AnEmptyUpdateNeedsNoScript)
{
    update("nvram_update1.wlan", "");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(device.names_in(nvram), Lines{});
}

TEST_F(ApplyNvramTest, WhatTheScriptLeavesRunningDoesNotHoldTheLock)
{
    device.write_program(
        "/etc/qorcfg.d/nvram.sh",
        "#!/bin/sh\n(while [ -e \"$0\" ]; do sleep 0.01; done) >/dev/null 2>&1 &\n");
    update("nvram_update1.wlan", "set a=1\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    update("nvram_update2.wlan", "");
    EXPECT_TRUE(apply_job(2)) << errors; // would wait for ever
}

} // namespace
} // namespace qorcfg
