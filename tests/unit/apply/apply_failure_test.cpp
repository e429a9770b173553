#include "support/apply_test.h"

#include <csignal>
#include <filesystem>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

class ApplyFailureTest : public test::ApplyTest {
protected:
    bool reports(const std::string &text) const { return errors.find(text) != std::string::npos; }
    /// "FILE:LINE" of a batch file, as reports name it.
    std::string at(const std::string &name, int line) const
    {
        return device.path(folder) + name + ":" + std::to_string(line) + ": ";
    }
    /// Batch files and a package that a run is to leave as they are.
    void lay()
    {
        set_package(old_);
        batch("uci_update1.net.part", "set net.s.a=new\n");
        batch("uci_update2.net.part", "set net.s.b=new\n");
        batch("uci_update3.other.part", "set other.s=t\n");
    }
    void expect_kept()
    {
        EXPECT_EQ(package(), old_);
        EXPECT_TRUE(reports("/tmp/etc/config/net")) << errors;
        EXPECT_TRUE(reports(device.path(folder) + "uci_update1.net.part: ")) << errors;
        EXPECT_EQ(files().front(), "claimed.uci_update1.net.part");
    }
    void expect_applied_at_last()
    {
        EXPECT_TRUE(apply_job(3)) << errors;
        EXPECT_EQ(package(), "\nconfig t 's'\n\toption a 'new'\n\toption b 'new'\n\n");
        EXPECT_EQ(package("other"), "\nconfig t 's'\n\n");
        EXPECT_EQ(files(), Lines{});
    }

    const std::string old_ = "config t 's'\n\toption a 'old'\n";
};

TEST_F(ApplyFailureTest, ALineThatCannotBeAppliedIsReportedAndTheRestGoesOn)
{
    set_package("config t 's'\n");
    batch("uci_update1.net.part", "set net.s.a=1\nset net.none.a=1\nset net.s.bad-name=1\n"
                                  "nonsense\nset other.s.a=1\nset net.bad-name=t\n"
                                  "set net.q=it's\nset net.@t[4].a=1\nadd net #x\n"
                                  "set net.s.z=26\nset net.s.cut=of");
    EXPECT_FALSE(apply_job(1));
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a '1'\n\toption z '26'\n\n");
    const std::string name = "uci_update1.net.part";
    EXPECT_EQ(errors, at(name, 2) + "there is no section none\n" + at(name, 3) +
                          "an option of this name cannot be stored\n" + at(name, 4) +
                          "no such command\n" + at(name, 5) + "the line is about package other\n" +
                          at(name, 6) + "a section of this name cannot be stored\n" + at(name, 7) +
                          "a section of this type cannot be stored\n" + at(name, 8) +
                          "there is no section @t[4]\n" + at(name, 9) +
                          "a section of this type cannot be stored\n" + at(name, 11) +
                          "the line is cut off\n" + device.path(folder) + name + ": kept as " +
                          device.path(folder) + "failed." + name + "\n");
    EXPECT_EQ(files(), Lines{"failed.uci_update1.net.part"});
    EXPECT_NE(device.read(folder + std::string("failed.uci_update1.net.part")).find("nonsense"),
              std::string::npos);
}

TEST_F(ApplyFailureTest, ARefusedControlByteCostsItsOwnLineOnly)
{
    Document doc;
    doc.section("t", "s").add("a", "1").add("bad", "x\x01y").add("c", "3");
    doc.append("r", anonymous_sections).add("bad", "\x1f").add("d", "4");
    commit_uci_section(doc, "net", "part", 0, 1);
    EXPECT_FALSE(apply_job(1));
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a '1'\n\toption c '3'\n\nconfig r\n"
                         "\toption d '4'\n\n");
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 3);
    EXPECT_TRUE(reports(at("uci_update1.net.part", 3) + "a value with such a control byte"));
    EXPECT_TRUE(reports(at("uci_update1.net.part", 6) + "a value with such a control byte"));
}

TEST_F(ApplyFailureTest, ASectionWhoseNewTypeIsRefusedIsGoneAllTheSame)
{
    set_package("config t 's'\n\toption a '1'\nconfig t 'u'\n");
    batch("uci_update1.net.part", "delete net.s\nset net.s=ba'd\nset net.s.a=2\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_EQ(package(), "\nconfig t 'u'\n\n");
}

TEST_F(ApplyFailureTest, ADamagedPackageStaysAndItsBatchIsPutAside)
{
    const std::string damaged = "config t 's\n\toption a\n";
    set_package(damaged);
    batch("uci_update1.net.part", "set net.s.a=1\n");
    batch("uci_update1.other.part", "set other.s=t\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_EQ(package(), damaged);
    EXPECT_EQ(files(), Lines{"failed.uci_update1.net.part"});
    EXPECT_TRUE(reports("/tmp/etc/config/net: Parse error")) << errors;
    EXPECT_EQ(package("other"), "\nconfig t 's'\n\n");
    EXPECT_EQ(device.names_in("/tmp/etc/config"), (Lines{"net", "other"}));
}

TEST_F(ApplyFailureTest, ALinkThatLeadsNowhereIsToldAndTheBatchKept)
{
    const std::string link = device.path("/tmp/etc/config/net");
    std::filesystem::create_symlink("../../../flash/net", link);
    batch("uci_update1.net.part", "set net.s=t\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_TRUE(reports(link + ": No such file or directory; nothing is changed")) << errors;
    EXPECT_EQ(files(), Lines{"claimed.uci_update1.net.part"});
    EXPECT_EQ(device.names_in("/tmp/etc/config"), Lines{"net"});
    device.write("/flash/net", "");
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(package(), "\nconfig t 's'\n\n");
}

TEST_F(ApplyFailureTest, ABatchAboveTheBoundIsPutAsideAndLaterOnesGoOn)
{
    batch("uci_update1.net.part", "");
    std::filesystem::resize_file(device.path(folder) + "uci_update1.net.part",
                                 (std::uintmax_t{64} << 20) + 1);
    batch("uci_update2.net.part", "set net.s=t\n");
    EXPECT_FALSE(apply_job(2));
    EXPECT_TRUE(reports("uci_update1.net.part: cannot be read: File too large")) << errors;
    EXPECT_EQ(package(), "\nconfig t 's'\n\n");
    EXPECT_EQ(files(), Lines{"failed.uci_update1.net.part"});
}

TEST_F(ApplyFailureTest, AFullDiskLeavesPackageAndBatchesForTheNextRun)
{
    lay();
    struct rlimit old {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const struct rlimit small {
        16, old.rlim_max
    };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool done = apply_job(3);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(done);
    expect_kept();
    EXPECT_TRUE(reports("File too large")) << errors;
    EXPECT_EQ(device.names_in("/tmp/etc/config"), (Lines{"net", "other"}));
    expect_applied_at_last();
}

TEST_F(ApplyFailureTest, ANewVersionThatCannotBeMadeLeavesPackageAndBatches)
{
    lay();
    device.write("/tmp/etc/config/net.qorcfg-new/in-the-way", "");
    EXPECT_FALSE(apply_job(3));
    expect_kept();
    // Packages do not wait for each other.
    EXPECT_EQ(files(), (Lines{"claimed.uci_update1.net.part", "uci_update2.net.part"}));
    EXPECT_EQ(package("other"), "\nconfig t 's'\n\n");
    std::filesystem::remove_all(device.path("/tmp/etc/config/net.qorcfg-new"));
    expect_applied_at_last();
}

/// Mounts a file system of its own on the configuration folder, in a process of its own, and runs
/// `body` there; its result, or nothing where mounting is not allowed.
std::optional<int> with_mounted_config(const std::string &path, const char *options,
                                       const std::function<int()> &body)
{
    constexpr int not_allowed = 77;
    const pid_t child = ::fork();
    if (child == 0) {
        const bool mounted = ::unshare(CLONE_NEWNS) == 0 &&
                             ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             ::mount("tmpfs", path.c_str(), "tmpfs", 0, options) == 0;
        ::_exit(mounted ? body() : not_allowed);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == not_allowed) {
        return std::nullopt;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(ApplyFailureTest, AReadOnlyConfigurationFolderLeavesPackageAndBatches)
{
    const std::string config = device.path("/tmp/etc/config");
    batch("uci_update1.net.part", "set net.s.a=new\n");
    const auto failures = with_mounted_config(config, "size=1m", [&] {
        lay();
        ::mount("tmpfs", config.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=1m");
        const bool done = apply_job(3);
        expect_kept();
        return (done ? 1 : 0) + (reports("Read-only file system") ? 0 : 2) + (HasFailure() ? 4 : 0);
    });
    if (!failures) {
        GTEST_SKIP() << "mounting is not allowed here; "
                        "ANewVersionThatCannotBeMadeLeavesPackageAndBatches stands in";
    }
    EXPECT_EQ(*failures, 0);
}

TEST_F(ApplyFailureTest, AFullFileSystemLeavesPackageAndBatches)
{
    const std::string config = device.path("/tmp/etc/config");
    const auto failures = with_mounted_config(config, "size=64k", [&] {
        lay();
        device.write("/tmp/etc/config/filler", std::string(65536, 'x'));
        const bool done = apply_job(3);
        expect_kept();
        std::filesystem::remove(device.path("/tmp/etc/config/filler"));
        expect_applied_at_last();
        return (done ? 1 : 0) + (HasFailure() ? 4 : 0);
    });
    if (!failures) {
        GTEST_SKIP() << "mounting is not allowed here; "
                        "AFullDiskLeavesPackageAndBatchesForTheNextRun stands in";
    }
    EXPECT_EQ(*failures, 0);
}

TEST_F(ApplyFailureTest, AMissingConfigurationFolderIsToldAndTheBatchKept)
{
    std::filesystem::remove_all(device.path("/tmp/etc/config"));
    batch("uci_update1.net.part", "set net.s=t\n");
    EXPECT_FALSE(apply_job(1));
    EXPECT_TRUE(reports("/etc/config/net: No such file or directory")) << errors;
    EXPECT_EQ(files(), Lines{"claimed.uci_update1.net.part"});
    std::filesystem::create_directories(device.path("/tmp/etc/config"));
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig t 's'\n\n");
}

} // namespace
} // namespace qorcfg
