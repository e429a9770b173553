#include "support/qorctl_test.h"

#include "tools/status.h"

namespace qorcfg {

namespace {

constexpr const char *status_path = "/tmp/cache/qorcfg/GUI_apply_result";
constexpr const char *jobs_path = "/tmp/cache/qorcfg/jobs.json";

class QorctlStatus : public QorctlTest {};

TEST_F(QorctlStatus, CharacterMeaningAndJobsArePrinted)
{
    write(status_path, "2");
    write(jobs_path, "{\"last\": 8, \"running\": [7, 8], \"ended\": 6}\n");
    EXPECT_EQ(run({"status"}).out, "status 2 (working), last job 8, running 7 8, last ended 6\n");
    EXPECT_EQ(json_of(run({"status", "--json"})),
              R"({"status":"2","meaning":"working","last":8,"running":[7,8],"ended":6})");
}

TEST_F(QorctlStatus, EveryCharacterHasItsMeaning)
{
    write(jobs_path, "{\"last\": 1, \"running\": [], \"ended\": 1}\n");
    const auto shown = [&](const std::string &character) {
        write(status_path, character);
        return run({"status"}).out;
    };
    EXPECT_EQ(shown("1"), "status 1 (done), last job 1, running none, last ended 1\n");
    EXPECT_EQ(shown("3"), "status 3 (invalid job), last job 1, running none, last ended 1\n");
    EXPECT_EQ(shown("9"), "status 9 (unknown), last job 1, running none, last ended 1\n");
}

TEST_F(QorctlStatus, ADaemonBeforeItsFirstJobHasNoCharacter)
{
    write(jobs_path, "{\"last\": 0, \"running\": [], \"ended\": 0}\n");
    EXPECT_EQ(run({"status"}).out,
              "status - (no job yet), last job 0, running none, last ended 0\n");
    EXPECT_EQ(json_of(run({"status", "--json"})),
              R"({"status":"","meaning":"no job yet","last":0,"running":[],"ended":0})");
}

TEST_F(QorctlStatus, JobsThatCannotBeReadAreLeftOut)
{
    write(status_path, "1");
    for (const char *text : {"", "{", "[]", "{\"last\": \"1\", \"running\": [], \"ended\": 1}",
                             "{\"last\": 1, \"running\": 2, \"ended\": 1}",
                             "{\"last\": 1, \"running\": [null], \"ended\": 1}"}) {
        write(jobs_path, text);
        EXPECT_EQ(run({"status"}).out, "status 1 (done), jobs not known\n") << text;
        EXPECT_EQ(json_of(run({"status", "--json"})), R"({"status":"1","meaning":"done"})");
    }
}

TEST_F(QorctlStatus, WhereNoDaemonHasEverRunThatIsSaid)
{
    EXPECT_TRUE(run({"status"}).refused(1, "no daemon has ever run"));
    EXPECT_TRUE(run({"status", "--json"}).refused(1, "no daemon has ever run"));
    EXPECT_TRUE(run({"status", "--watch"}).refused(1, "no daemon has ever run"));
}

TEST_F(QorctlStatus, WatchingPrintsALineForEachChangeOnly)
{
    int looks = 0;
    const auto change = [&] {
        switch (++looks) {
        case 2:
            write(status_path, "2");
            break;
        case 4:
            write(jobs_path, "{\"last\": 1, \"running\": [1], \"ended\": 0}\n");
            break;
        case 5:
            write(status_path, "1");
            write(jobs_path, "{\"last\": 1, \"running\": [], \"ended\": 1}\n");
            break;
        default:
            break;
        }
    };
    std::ostringstream out;
    watch_status(
        out, false, [&] { return looks == 8; }, change);
    EXPECT_EQ(out.str(), "status 2 (working), jobs not known\n"
                         "status 2 (working), last job 1, running 1, last ended 0\n"
                         "status 1 (done), last job 1, running none, last ended 1\n");
}

TEST_F(QorctlStatus, WatchingEndsWhenNobodyReads)
{
    write(status_path, "1");
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(run({"status"}).status, 0);
    watch_status(
        out, false, [] { return false; }, [] { FAIL() << "went on"; });
}

} // namespace

} // namespace qorcfg
