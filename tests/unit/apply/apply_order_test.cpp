#include "support/apply_test.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

/// Batch files that each add one item to a list: the list tells the order, and what came twice.
class ApplyOrderTest : public test::ApplyTest {
protected:
    void SetUp() override { set_package("config t 's'\n"); }

    /// Writes a file later than all before it.
    void add(const std::string &name, const std::string &item)
    {
        batch(name, "add_list net.s.l=" + item + "\n");
        touch(folder + name);
    }
    void touch(const std::string &path)
    {
        const timespec time{1'000'000'000, ++clock_};
        const timespec times[]{time, time};
        ASSERT_EQ(::utimensat(AT_FDCWD, device.path(path).c_str(), times, 0), 0);
    }
    Lines items() const { return test::list_items(device, "net", "s", "l"); }

    long clock_ = 0;
};

TEST_F(ApplyOrderTest, FilesOfOneJobComeInTheOrderOfTheirLastWrite)
{
    add("uci_update5.net.z", "1");
    add("uci_update5.net.a", "2");
    add("uci_update5.net.m", "3");
    EXPECT_TRUE(apply_job(5)) << errors;
    EXPECT_EQ(items(), (Lines{"1", "2", "3"}));
    EXPECT_EQ(files(), Lines{});
}

TEST_F(ApplyOrderTest, AJobTakesOlderJobsAlongAndLeavesNewerOnes)
{
    add("uci_update7.net.a", "7");
    add("uci_update10.net.a", "10");
    add("uci_update9.net.a", "9");
    add("uci_update8.net.a", "8");
    EXPECT_TRUE(apply_job(9)) << errors;
    EXPECT_EQ(items(), (Lines{"7", "8", "9"}));
    EXPECT_EQ(files(), Lines{"uci_update10.net.a"});
    // The script of the older job comes late and finds nothing.
    EXPECT_TRUE(apply_job(8)) << errors;
    EXPECT_TRUE(apply_job(10)) << errors;
    EXPECT_EQ(items(), (Lines{"7", "8", "9", "10"}));
}

TEST_F(ApplyOrderTest, NumbersGoRoundInACircle)
{
    add("uci_update2.net.a", "2");
    add("uci_update1.net.a", "1");
    add("uci_update4097.net.a", "4097");
    add("uci_update4000.net.a", "4000");
    add("uci_update3.net.a", "3");
    EXPECT_TRUE(apply_job(2)) << errors;
    EXPECT_EQ(items(), (Lines{"4000", "4097", "1", "2"}));
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items(), (Lines{"4000", "4097", "1", "2", "3"}));
}

TEST_F(ApplyOrderTest, FilesOfOverlappingJobsComeByTheirNumbersWhicheverWasWrittenLast)
{
    add("uci_update4.net.a", "4");
    add("uci_update6.net.a", "6");
    add("uci_update5.net.a", "5");
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items(), (Lines{"4", "5", "6"}));
}

TEST_F(ApplyOrderTest, AgesAreCountedBackFromTheLatestJobWhereItIsKnown)
{
    add("uci_update10.net.a", "10");
    add("uci_update2100.net.a", "2100");
    add("uci_update2102.net.a", "2102");
    add("uci_update2101.net.a", "2101");
    const auto latest = [] { return 2102; };
    EXPECT_TRUE(apply({Kind::job, 2101, latest})) << errors;
    EXPECT_EQ(items(), (Lines{"10", "2100", "2101"}));
    EXPECT_EQ(files(), Lines{"uci_update2102.net.a"});

    add("uci_update2103.net.a", "2103");
    EXPECT_TRUE(apply({Kind::everything, 0, [] { return 2103; }})) << errors;
    EXPECT_EQ(items(), (Lines{"10", "2100", "2101", "2102", "2103"}));
}

TEST_F(ApplyOrderTest, AJobThatWasNotYetKnownIsTheLatest)
{
    add("uci_update2.net.a", "2");
    add("uci_update3.net.a", "3");
    EXPECT_TRUE(apply({Kind::job, 3, [] { return 2; }})) << errors;
    EXPECT_EQ(items(), (Lines{"2", "3"}));
}

TEST_F(ApplyOrderTest, StartUpTakesLeftOverJobsFirstWhateverTheirNumbers)
{
    add("uci_update900.net.a", "900");
    add("uci_update3.net.a", "3");
    add("uci_update901.net.a", "901");
    add("uci_update.net.z", "first");
    add("uci_update.net.b", "second");
    EXPECT_TRUE(apply_startup()) << errors;
    EXPECT_EQ(items(), (Lines{"900", "3", "901", "first", "second"}));
    EXPECT_EQ(files(), Lines{});
}

TEST_F(ApplyOrderTest, AJobAfterAStartUpThatWasNotAppliedBringsItsFilesFirst)
{
    add("uci_update900.net.a", "900");
    add("uci_update.net.a", "start");
    add("uci_update1.net.a", "1");
    add("uci_update2.net.a", "2");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(items(), (Lines{"900", "start", "1"}));
    EXPECT_EQ(files(), Lines{"uci_update2.net.a"});
}

TEST_F(ApplyOrderTest, TheEngineAndTheApplierAgreeOnTheOrderOfScripts)
{
    const auto write = [&](int number, const char *section, const char *text) {
        commit_uci_section(Document::parse(text), "doc", section, 0, number);
    };
    write(1, "b", R"({"r":[{"alias-name":false},{"p":"1"},{"p":"2"}]})");
    write(2, "b", R"({"r":[{"alias-name":false},{"p":"2"}]})");
    write(2, "a", R"({"t":{"s":{"v":"1"}}})");
    write(3, "b", R"({"r":[{"alias-name":false},{"p":"0"},{"p":"2"},{"p":"3"}]})");
    EXPECT_TRUE(apply_job(2)) << errors;
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_TRUE(apply_job(3)) << errors;
    const Document last =
        Document::parse(R"({"r":[{"alias-name":false},{"p":"0"},{"p":"2"},{"p":"3"}]})");
    const Document other = Document::parse(R"({"t":{"s":{"v":"1"}}})");
    const std::vector<json_object *> documents{last.get(), other.get()};
    EXPECT_EQ(test::applied_text(device, "doc", documents), test::wanted_text(documents));
}

TEST_F(ApplyOrderTest, OtherFilesOfTheFoldersAreLeftAlone)
{
    const Lines others{"failed.uci_update1.net.a", "uci_update", "uci_update1x.net.a",
                       "uci_update99999999999.net.a", "uci_updates.net.a"};
    for (const std::string &name : others) {
        batch(name, "add_list net.s.l=no\n");
    }
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items(), Lines{});
    EXPECT_EQ(files(), others);
}

TEST_F(ApplyOrderTest, ThePackageEndsAtTheFirstDotWhateverTheSectionIsCalled)
{
    add("uci_update.net.", "no section");
    add("uci_update1.net", "no dot");
    add("uci_update2.net.a.b..c.", "dots");
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items(), (Lines{"no section", "no dot", "dots"}));
    EXPECT_EQ(files(), Lines{});
}

TEST_F(ApplyOrderTest, AnEmptyBatchFileIsRemovedAndItsPackageNotTouched)
{
    batch("uci_update1.none.a", "");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(files(), Lines{});
    EXPECT_FALSE(device.exists("/tmp/etc/config/none"));
}

TEST_F(ApplyOrderTest, WithoutTheFoldersThereIsNothingToDo)
{
    std::filesystem::remove_all(device.path("/tmp/cache/qorcfg"));
    EXPECT_TRUE(apply_startup()) << errors;
    EXPECT_EQ(errors, "");
}

TEST_F(ApplyOrderTest, ARunTakesUpWhereAnEarlierOneWasCutOff)
{
    add("claimed.uci_update9.net.a", "claimed");
    add("uci_update8.net.a", "8");
    EXPECT_TRUE(apply_job(8)) << errors;
    EXPECT_EQ(items(), (Lines{"claimed", "8"}));

    // Prepared but not in place: neither its text nor a later change of the package is lost.
    add("ready.uci_update9.net.a", "ready");
    device.write("/tmp/etc/config/net.qorcfg-new", "config stale\n");
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items(), (Lines{"claimed", "8", "ready"}));

    // In place already.
    add("ready.uci_update9.net.a", "again");
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items(), (Lines{"claimed", "8", "ready"}));
    EXPECT_EQ(files(), Lines{});
    EXPECT_EQ(device.names_in("/tmp/etc/config"), Lines{"net"});
}

} // namespace
} // namespace qorcfg
