#include "core/base/explanation.h"

#include "core/base/globals.h"
#include "engine/nvram_commit.h"
#include "engine/uci_commit.h"
#include "platform/key_id.h"
#include "support/device_root.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

int update_one(int)
{
    return 0;
}
int update_two(int)
{
    return 0;
}
int soap(const ChangedKeys *, int)
{
    return 0;
}

class ExplanationTest : public testing::Test {
protected:
    ExplanationTest()
    {
        pth_count = 3;
        registry().begin_component("one");
        registry().subscribe("a", update_one);
        registry().begin_component("two");
        registry().subscribe("a", update_two);
        registry().subscribe_soap("a", soap);
    }

    static void write_lan(const char *address, int job)
    {
        const std::string text = std::string(R"({"interface":{"lan":{"ip":")") + address + "\"}}}";
        commit_uci_section(Document::parse(text.c_str()), "net", "part", 0, job);
    }
    static void write_nvram(const char *value, int job)
    {
        const std::string text = std::string(R"({"wifi":{"ssid":")") + value + "\"}}";
        commit_nvram_document(Document::parse(text.c_str()), "radio", 0, job);
    }
    static std::string told(const ExplainedWrite &write)
    {
        return write.package + "/" + write.section + " " + outcome_name(write.outcome) + " " +
               std::to_string(write.line_count) + " " + write.lines;
    }

    DeviceRoot device_;
};

TEST_F(ExplanationTest, AKeyNamesTheCallbacksThatItTriggersWithTheirComponents)
{
    Explanation explanation(1);
    Explanation::key(config_key_id("a"), 2);
    Explanation::key(config_key_id("unknown"), 0);
    const ExplainedJob &job = explanation.finish();
    ASSERT_EQ(job.keys.size(), 2U);
    EXPECT_EQ(job.keys[0].callbacks, (Lines{"two soap #1", "one update #1", "two update #1"}));
    EXPECT_EQ(job.keys[0].id, config_key_id("a"));
    EXPECT_EQ(job.keys[0].action, 2);
    EXPECT_TRUE(job.keys[1].callbacks.empty());
}

TEST_F(ExplanationTest, DocumentsBelongToTheCallbackThatHandedThemIn)
{
    write_lan("1", 1);
    write_nvram("old", 1);
    Explanation explanation(2);
    Explanation::begin_callback(update_one);
    write_lan("1", 2);
    write_lan("2", 2);
    Explanation::end_callback();
    Explanation::begin_callback(update_two);
    write_nvram("new", 2);
    Explanation::end_callback();
    const ExplainedJob &job = explanation.finish();
    ASSERT_EQ(job.callbacks.size(), 2U);
    EXPECT_EQ(job.callbacks[0].name, "one update #1");
    ASSERT_EQ(job.callbacks[0].writes.size(), 2U);
    EXPECT_EQ(told(job.callbacks[0].writes[0]), "net/part written 0 ");
    EXPECT_EQ(told(job.callbacks[0].writes[1]),
              "net/part written 3 delete net.lan\nset net.lan=interface\nset net.lan.ip=2\n");
    EXPECT_EQ(job.callbacks[1].name, "two update #1");
    ASSERT_EQ(job.callbacks[1].writes.size(), 1U);
    EXPECT_EQ(told(job.callbacks[1].writes[0]), "/radio written 1 set wifi.ssid=new\n");
    EXPECT_EQ(job.line_count(), 4U);
}

TEST_F(ExplanationTest, ADocumentThatIsNotWrittenTellsWhy)
{
    write_lan("1", 3);
    write_nvram("1", 3);
    Explanation explanation(2);
    Explanation::begin_callback(update_one);
    write_lan("2", 2);
    write_nvram("2", 2);
    std::filesystem::remove_all(device_.path("/tmp/cache/qorcfg/ucicfg.d"));
    std::filesystem::remove_all(device_.path("/tmp/cache/qorcfg/nvramcfg.d"));
    write_lan("2", 4);
    write_nvram("2", 4);
    Explanation::end_callback();
    const std::vector<ExplainedWrite> &writes = explanation.finish().callbacks.at(0).writes;
    ASSERT_EQ(writes.size(), 4U);
    EXPECT_EQ(told(writes[0]), "net/part overtaken 0 ");
    EXPECT_EQ(told(writes[1]), "/radio overtaken 0 ");
    EXPECT_EQ(told(writes[2]), "net/part failed 0 ");
    EXPECT_EQ(told(writes[3]), "/radio failed 0 ");
}

TEST_F(ExplanationTest, TheTimeOfACallbackIsItsOwnAndPartOfTheJobs)
{
    using std::chrono::microseconds;
    const auto spin = [](microseconds time) {
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end) {
        }
    };
    Explanation explanation(1);
    spin(microseconds(300));
    Explanation::begin_callback(update_one);
    spin(microseconds(200));
    Explanation::end_callback();
    Explanation::begin_callback(soap);
    Explanation::end_callback();
    Explanation::begin_hook();
    spin(microseconds(100));
    Explanation::end_hook({3, 0});
    const ExplainedJob &job = explanation.finish();
    EXPECT_GE(job.callbacks.at(0).time, microseconds(200));
    EXPECT_GE(job.hook_time, microseconds(100));
    EXPECT_GE(job.time,
              microseconds(300) + job.callbacks[0].time + job.callbacks[1].time + job.hook_time);
    EXPECT_EQ(job.hook.status, 3);
}

TEST_F(ExplanationTest, LinesBeyondTheirNumberAreOnlyCounted)
{
    Explanation explanation(1);
    Explanation::begin_callback(update_one);
    std::string lines;
    for (std::size_t i = 0; i + 1 < Explanation::kept_lines; ++i) {
        lines += "set a\n";
    }
    Explanation::write("p", "first", WriteOutcome::written, lines);
    Explanation::write("p", "second", WriteOutcome::written, "set b\nset c\n");
    Explanation::write("p", "third", WriteOutcome::written, "set d\n");
    const ExplainedJob &job = explanation.finish();
    const std::vector<ExplainedWrite> &writes = job.callbacks.at(0).writes;
    EXPECT_EQ(writes.at(0).lines, lines);
    EXPECT_EQ(told(writes.at(1)), "p/second written 2 set b\n");
    EXPECT_EQ(told(writes.at(2)), "p/third written 1 ");
    EXPECT_EQ(job.line_count(), Explanation::kept_lines + 2);
}

TEST_F(ExplanationTest, LinesAreKeptWholeOrNotAtAllUpToTheirBytes)
{
    Explanation explanation(1);
    Explanation::begin_callback(update_one);
    const std::string line = std::string(Explanation::kept_bytes - 11, 'x') + "\n";
    Explanation::write("p", "s", WriteOutcome::written, line + "twelve bytes\nset\n");
    Explanation::write("p", "s", WriteOutcome::written, "ten bytes\nset\n");
    const std::vector<ExplainedWrite> &writes = explanation.finish().callbacks.at(0).writes;
    EXPECT_EQ(writes.at(0).lines, line);
    EXPECT_EQ(writes.at(0).line_count, 3U);
    EXPECT_EQ(told(writes.at(1)), "p/s written 2 ten bytes\n");
}

TEST_F(ExplanationTest, AThreadWithoutOneAddsToNobodys)
{
    Explanation explanation(1);
    std::thread([] {
        Explanation::key(1, 2);
        Explanation::begin_callback(update_one);
        Explanation::write("p", "s", WriteOutcome::written, "set a\n");
        Explanation::end_callback();
    }).join();
    EXPECT_TRUE(explanation.finish().keys.empty());
    EXPECT_TRUE(explanation.finish().callbacks.empty());
}

TEST_F(ExplanationTest, AWriteOutsideOfCallbacksIsNotToldOf)
{
    Explanation explanation(1);
    write_lan("1", 1);
    EXPECT_TRUE(explanation.finish().callbacks.empty());
}

} // namespace
} // namespace qorcfg
