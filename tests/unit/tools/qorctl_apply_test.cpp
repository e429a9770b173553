#include "support/qorctl_test.h"

namespace qorcfg {
namespace {

constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d/";

class QorctlApply : public QorctlTest {
protected:
    void batch(const std::string &name, const std::string &text) { write(folder + name, text); }
    std::string package() { return device.read("/tmp/etc/config/net"); }
};

TEST_F(QorctlApply, AJobTakesOlderJobsAlongAndLeavesNewerOnes)
{
    batch("uci_update1.net.a", "set net.s=t\nset net.s.a=1\n");
    batch("uci_update2.net.a", "set net.s.b=2\n");
    batch("uci_update3.net.a", "set net.s.c=3\n");
    const auto end = run({"apply", "2"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(end.out + end.err, "");
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a '1'\n\toption b '2'\n\n");
    EXPECT_TRUE(device.exists(std::string(folder) + "uci_update3.net.a"));
}

TEST_F(QorctlApply, TheLatestJobThatTheDaemonHasNumberedTellsWhichFilesAreOld)
{
    batch("uci_update1000.net.a", "set net.s=t\nset net.s.a=old\n");
    batch("uci_update100.net.a", "set net.s.a=new\n");
    write("/tmp/cache/qorcfg/jobs.json", R"({"last": 100, "running": [], "ended": 99})");
    const auto end = run({"apply", "100"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a 'new'\n\n");

    batch("uci_update101.net.a", "set net.s.b=1\n");
    batch("uci_update1500.net.a", "set net.s.b=2\n");
    write("/tmp/cache/qorcfg/jobs.json", R"({"last": 101, "running": [], "ended": 99})");
    EXPECT_EQ(run({"apply", "101"}).status, 0);
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a 'new'\n\toption b '1'\n\n");
    EXPECT_FALSE(device.exists(std::string(folder) + "uci_update1500.net.a"));
}

TEST_F(QorctlApply, ADaemonThatHasJustBeenStartedTellsNothingOfTheJobsBeforeIt)
{
    batch("uci_update50.net.a", "set net.s=t\nadd_list net.s.l=50\n");
    batch("uci_update51.net.a", "set net.s=t\nadd_list net.s.l=51\n");
    write("/tmp/cache/qorcfg/jobs.json", R"({"last": 0, "running": [], "ended": 0})");
    EXPECT_EQ(run({"apply", "50"}).status, 0);
    EXPECT_EQ(package(), "\nconfig t 's'\n\tlist l '50'\n\n");
    EXPECT_EQ(run({"apply"}).status, 0);
    EXPECT_EQ(package(), "\nconfig t 's'\n\tlist l '50'\n\tlist l '51'\n\n");
}

TEST_F(QorctlApply, StartupTakesLeftOverFilesAndThenThoseOfTheStart)
{
    batch("uci_update7.net.a", "set net.s=t\nset net.s.a=old\n");
    batch("uci_update.net.a", "set net.s=t\nset net.s.a=new\n");
    EXPECT_EQ(run({"apply", "--startup"}).status, 0);
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a 'new'\n\n");
}

TEST_F(QorctlApply, WithoutArgumentEverythingIsApplied)
{
    batch("uci_update.net.a", "set net.s=t\n");
    batch("uci_update1.net.a", "set net.s.a=1\n");
    EXPECT_EQ(run({"apply"}).status, 0);
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a '1'\n\n");
}

TEST_F(QorctlApply, ADryRunPrintsWhatWouldChangeAndChangesNothing)
{
    write("/tmp/etc/config/net", "config t 's'\n\toption a '1'\n");
    batch("uci_update1.net.a", "del net.s.a\nset net.s=t\nset net.s.b=2\n");
    const auto end = run({"apply", "1", "--dry-run"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(end.out, "- net.s.a='1'\n+ net.s.b='2'\n");
    EXPECT_EQ(package(), "config t 's'\n\toption a '1'\n");
    EXPECT_TRUE(device.exists(std::string(folder) + "uci_update1.net.a"));
}

TEST_F(QorctlApply, ALineThatCannotBeAppliedMakesTheStatusOneAndIsNamed)
{
    batch("uci_update1.net.a", "set net.s=t\nset net.gone.a=1\n");
    const auto end = run({"apply", "1"});
    EXPECT_EQ(end.status, 1);
    EXPECT_NE(end.err.find("uci_update1.net.a:2: there is no section gone"), std::string::npos)
        << end.err;
    EXPECT_EQ(package(), "\nconfig t 's'\n\n");
    EXPECT_TRUE(device.exists(std::string(folder) + "failed.uci_update1.net.a"));
}

TEST_F(QorctlApply, WrongUsageIsToldFromFailure)
{
    for (const char *job : {"0", "4098", "x", "1x", "-1", ""}) {
        EXPECT_EQ(run({"apply", "--", job}).status, 2) << job;
    }
    EXPECT_EQ(run({"apply", "1", "--startup"}).status, 2);
    EXPECT_EQ(run({"apply", "1", "2"}).status, 2);
}

} // namespace
} // namespace qorcfg
