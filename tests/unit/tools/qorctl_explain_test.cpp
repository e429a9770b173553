#include "support/qorctl_test.h"

#include "core/explained_jobs.h"
#include "core/job_board.h"
#include "platform/key_id.h"
#include "tools/explanations.h"

#include <filesystem>
#include <sys/stat.h>

namespace qorcfg {

namespace {

/// A document of two jobs. The number is that of the key endis_ddns.
constexpr const char *told = R"({"jobs": [
{"job":7,"us":1002,"keys":[],"callbacks":[],"hook":{"status":143,"error":0,"us":9}},
{"job":8,"us":134221,"keys":[
 {"id":853673979,"action":2,"callbacks":["ietf_ddns soap #1","ietf_ddns update #1"]},
 {"id":5,"action":7,"callbacks":[]}],"callbacks":[
 {"name":"ietf_ddns soap #1","us":1000250,"writes":[]},
 {"name":"ietf_ddns update #1","us":1030,"writes":[
  {"package":"ddns","section":"service","outcome":"written","line_count":3,
   "lines":"delete ddns.global\nset ddns.global=secret\n"},
  {"package":"ddns","section":"other","outcome":"written","line_count":0,"lines":""},
  {"package":"","section":"radio","outcome":"overtaken","line_count":0,"lines":""},
  {"package":"lan","section":"lan","outcome":"failed","line_count":0,"lines":""}]}],
 "hook":{"status":3,"error":0,"us":120400}}
]}
)";

class QorctlExplain : public QorctlTest {
protected:
    std::string told_with(const std::string &hook) const
    {
        write(explain_file,
              R"({"jobs":[{"job":1,"us":0,"keys":[],"callbacks":[],"hook":)" + hook + "}]}");
        return run({"explain"}).out;
    }
    /// `told` with the first `part` replaced.
    static std::string changed(const std::string &part, const std::string &replacement)
    {
        std::string text = told;
        return text.replace(text.find(part), part.size(), replacement);
    }
};

TEST_F(QorctlExplain, KeysCallbacksDocumentsAndLinesOfTheJobThatEndedLastArePrinted)
{
    write(explain_file, told);
    const Outcome outcome = run({"explain"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "job 8: 134.221 ms, 3 lines; hook script: exit status 3 after 120.400 ms\n"
              "  endis_ddns changed -> ietf_ddns soap #1, ietf_ddns update #1\n"
              "  key 5 action 7 -> nobody\n"
              "  ietf_ddns soap #1: 1000.250 ms\n"
              "  ietf_ddns update #1: 1.030 ms\n"
              "    ddns.service: 3 lines\n"
              "      delete ddns.global\n"
              "      set ddns.global=secret\n"
              "      (1 line not kept)\n"
              "    ddns.other: no difference\n"
              "    NVRAM radio: a newer job has written it\n"
              "    lan.lan: failed, nothing written\n");
}

TEST_F(QorctlExplain, AnEarlierJobIsPrintedByItsNumber)
{
    write(explain_file, told);
    EXPECT_EQ(run({"explain", "7"}).out,
              "job 7: 1.002 ms, 0 lines; hook script: signal 15 after 0.009 ms\n");
    EXPECT_TRUE(run({"explain", "9"}).refused(1, "job 9 is not among the explained ones: 7 8"));
    EXPECT_TRUE(run({"explain", "0"}).refused(2, "neither on, off nor a job number"));
    EXPECT_TRUE(run({"explain", "no"}).refused(2, "neither on, off nor a job number"));
}

TEST_F(QorctlExplain, EveryEndOfTheHookScriptIsPrintedInWords)
{
    const auto ending = [](const std::string &words) {
        return "job 1: 0.000 ms, 0 lines; hook script: " + words + " after 0.001 ms\n";
    };
    EXPECT_EQ(told_with(R"({"status":0,"error":0,"us":1})"), ending("exit status 0"));
    EXPECT_EQ(told_with(R"({"status":-1,"error":2,"us":1})"),
              ending("not run: No such file or directory"));
    EXPECT_EQ(told_with(R"({"status":-1,"error":)" + std::to_string(ETIMEDOUT) + R"(,"us":1})"),
              ending("ended at its time bound"));
}

TEST_F(QorctlExplain, TheSwitchIsAFileOfItsOwnerAlone)
{
    EXPECT_EQ(run({"explain", "on"}).status, 0);
    EXPECT_EQ(run({"explain", "on"}).status, 0);
    struct stat info {};
    ASSERT_EQ(::stat(path(explain_switch).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);
}

TEST_F(QorctlExplain, SwitchingItOffForgetsWhatWasTold)
{
    EXPECT_EQ(run({"explain", "off"}).status, 0);
    run({"explain", "on"});
    write(explain_file, told);
    EXPECT_EQ(run({"explain", "off"}).status, 0);
    EXPECT_FALSE(device.exists(explain_switch));
    EXPECT_FALSE(device.exists(explain_file));
}

TEST_F(QorctlExplain, ASwitchThatCannotBeMadeOrRemovedIsNamed)
{
    std::filesystem::create_directory(path(explain_switch));
    EXPECT_TRUE(run({"explain", "on"}).refused(1, path(explain_switch)));
    EXPECT_TRUE(run({"explain", "off"}).refused(1, path(explain_switch)));
}

TEST_F(QorctlExplain, WithoutExplainedJobsItIsSaidWhetherTheSwitchIsOn)
{
    EXPECT_TRUE(run({"explain"}).refused(1, "explaining is off"));
    run({"explain", "on"});
    EXPECT_TRUE(run({"explain", "7"}).refused(1, "no job has ended since"));
}

TEST_F(QorctlExplain, TheStatusAsJsonTellsOfExplainedJobsWithoutTheirLines)
{
    write(jobs_file, "{\"last\": 8, \"running\": [], \"ended\": 8}\n");
    write(status_file, "1");
    const std::string plain = R"({"status":"1","meaning":"done","last":8,"running":[],"ended":8)";
    EXPECT_EQ(run({"status", "--json"}).out, plain + "}\n");
    const std::string words = run({"status"}).out;
    write(explain_file, told);
    EXPECT_EQ(run({"status", "--json"}).out,
              plain + R"(,"explained":[{"job":7,"ms":1.002,"lines":0,"keys":[],"callbacks":[],)"
                      R"("hook":{"result":"signal 15","ms":0.009}},)"
                      R"({"job":8,"ms":134.221,"lines":3,"keys":[)"
                      R"({"key":"endis_ddns","id":853673979,"action":2,)"
                      R"("callbacks":["ietf_ddns soap #1","ietf_ddns update #1"]},)"
                      R"({"key":"","id":5,"action":7,"callbacks":[]}],"callbacks":[)"
                      R"({"name":"ietf_ddns soap #1","ms":1000.250,"lines":0},)"
                      R"({"name":"ietf_ddns update #1","ms":1.030,"lines":3}],)"
                      R"("hook":{"result":"exit status 3","ms":120.400}}]})"
                      "\n");
    EXPECT_EQ(run({"status"}).out, words);
}

TEST_F(QorctlExplain, ADamagedFileIsNamedWithThePlace)
{
    const std::vector<std::pair<std::string, std::string>> faults{
        {"", "at byte 0"},
        {"null", "no object"},
        {"[]", "no object"},
        {"{} x", "text behind the document at byte 3"},
        {"{}", "jobs: no list"},
        {R"({"jobs":[null]})", "jobs[0].job: no number"},
        {changed("\"job\":8", "\"job\":\"8\""), "jobs[1].job: no number"},
        {changed("1002", "-1"), "jobs[0].us: no number from 0 on"},
        {changed("\"keys\":[]", "\"keys\":{}"), "jobs[0].keys: no list"},
        {changed("\"ietf_ddns update #1\"", "[]"), "jobs[1].keys[0].callbacks[1]: no text"},
        {changed("\"id\":5,", ""), "jobs[1].keys[1].id: no number"},
        {changed("\"overtaken\"", "\"gone\""), "jobs[1].callbacks[1].writes[2].outcome: unknown"},
        {changed("\"line_count\":3", "\"line_count\":3.5"),
         "jobs[1].callbacks[1].writes[0].line_count: no number from 0 on"},
        {changed("{\"status\":143", "{\"state\":143"), "jobs[0].hook.status: no number"},
    };
    write(jobs_file, "{\"last\": 8, \"running\": [], \"ended\": 8}\n");
    for (const auto &[text, fault] : faults) {
        const std::string file = write(explain_file, text);
        EXPECT_TRUE(run({"explain"}).refused(1, file + ": ")) << text;
        EXPECT_TRUE(run({"explain"}).refused(1, fault)) << text;
        const Outcome status = run({"status", "--json"});
        EXPECT_EQ(status.status, 0);
        EXPECT_NE(json_of(status).find(R"("ended":8,"explain_error":)"), std::string::npos);
    }
    std::filesystem::remove(path(explain_file));
    std::filesystem::create_directory(path(explain_file));
    EXPECT_TRUE(run({"explain"}).refused(1, "cannot read " + path(explain_file)));
}

TEST_F(QorctlExplain, AFileThatIsCutOffOrHasAChangedByteIsReadOrRefused)
{
    const std::string text = told;
    const auto is_judged = [&](const std::string &damaged) {
        write(explain_file, damaged);
        const Outcome outcome = run({"explain"});
        return outcome.status == 0 ? outcome.out.rfind("job ", 0) == 0 && outcome.err.empty()
                                   : bool(outcome.refused(1, path(explain_file)));
    };
    for (std::size_t i = 0; i + 2 < text.size(); ++i) { // the last bytes are "}\n"
        write(explain_file, text.substr(0, i));
        EXPECT_TRUE(run({"explain"}).refused(1, path(explain_file))) << i;
        std::string flipped = text;
        flipped[i] = static_cast<char>(flipped[i] ^ 0x10);
        EXPECT_TRUE(is_judged(flipped)) << i;
    }
}

} // namespace

} // namespace qorcfg
