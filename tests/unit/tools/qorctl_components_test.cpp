#include "support/qorctl_test.h"

#include "core/base/log.h"
#include "core/base/registry.h"
#include "core/component_table.h"
#include "engine/uci_commit.h"
#include "engine/writes_held.h"
#include "tools/subscribers.h"

#include <filesystem>

namespace qorcfg {

namespace {

constexpr const char *list_path = "/tmp/cache/qorcfg/qorcfg.conf";

class QorctlComponents : public QorctlTest {
protected:
    /// Every file below the root but the store.
    std::vector<std::string> files() const
    {
        std::vector<std::string> found;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(device.root())) {
            const std::string name = entry.path().filename();
            if (entry.is_regular_file() && name.rfind("config", 0) != 0) {
                found.push_back(entry.path());
            }
        }
        return found;
    }
};

TEST_F(QorctlComponents, EveryRowOfTheTableIsListedInItsOrder)
{
    write(list_path, "ietf_ddns=1\nietf_debug=0\n");
    const Outcome listed = run({"components"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.err, "");
    const std::vector<std::string> lines = test::split_lines(listed.out);
    ASSERT_EQ(lines.size(), components.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::istringstream line(lines[i]);
        std::string name;
        std::string build;
        std::string enabled;
        line >> name >> build >> enabled;
        EXPECT_EQ(name, components[i].name);
        EXPECT_EQ(build, components[i].ops != nullptr ? "built" : "absent") << name;
        EXPECT_EQ(enabled, name == "ietf_ddns" ? "enabled" : "-") << name;
    }
}

TEST_F(QorctlComponents, NamesThatNoRowHasAreUnknown)
{
    const std::string list = write("/etc/list", "ietf_ddns=1\nietf_none=1\nietf_other=0\n");
    const std::vector<std::string> lines = test::split_lines(run({"components", list}).out);
    ASSERT_EQ(lines.size(), components.size() + 1);
    EXPECT_EQ(lines.back().find("ietf_none"), 0u);
    EXPECT_NE(lines.back().find("unknown"), std::string::npos);
}

TEST_F(QorctlComponents, TheTableIsPrintedAsJson)
{
    const std::string list = write("/etc/list", "ietf_ddns=1\nietf_none=1\n");
    const Outcome listed = run({"components", "--json", list});
    const Json document = parse_json(listed.out, JsonSyntax::strict);
    EXPECT_NE(listed.out.find(R"({"name":"ietf_ddns","built":true,"enabled":true})"),
              std::string::npos);
    EXPECT_NE(listed.out.find(R"({"name":"ietf_debug","built":true,"enabled":false})"),
              std::string::npos);
    EXPECT_NE(json_of(listed).find(R"("unknown":["ietf_none"]})"), std::string::npos);
}

TEST_F(QorctlComponents, WithoutTheDevicesListTheTableIsPrintedAndThatIsSaid)
{
    const Outcome listed = run({"components"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(test::split_lines(listed.out).size(), components.size());
    EXPECT_NE(listed.err.find(path(list_path)), std::string::npos);
}

TEST_F(QorctlComponents, AListOfTheCommandLineThatCannotBeReadIsAFailure)
{
    EXPECT_TRUE(run({"components", path("/none")}).refused(1, path("/none")));
}

TEST_F(QorctlComponents, SubscribersOfAKeyAndOfItsStemAreNamed)
{
    EXPECT_EQ(run({"subscribers", "endis_ddns", "sysDNSUser_5", "nobody's"}).out,
              "endis_ddns: ietf_ddns update #1\n"
              "sysDNSUser_5: nobody\n"
              "sysDNSUser_: ietf_ddns update #1\n"
              "nobody's: nobody\n");
    EXPECT_TRUE(registry().records().empty());
}

TEST_F(QorctlComponents, ANameIsShownOnceHoweverManyKeysAnnounceIt)
{
    EXPECT_EQ(run({"subscribers", "sysDNSUser_1", "sysDNSUser_2"}).out,
              "sysDNSUser_1: nobody\n"
              "sysDNSUser_: ietf_ddns update #1\n"
              "sysDNSUser_2: nobody\n");
}

TEST_F(QorctlComponents, SubscribersArePrintedAsJson)
{
    EXPECT_EQ(json_of(run({"subscribers", "--json", "endis_ddns"})),
              R"([{"key":"endis_ddns","id":853673979,"subscribers":)"
              R"([{"component":"ietf_ddns","kind":"update","number":1}]}])");
}

TEST_F(QorctlComponents, LookingAtSubscribersWritesNothingAndLogsNothing)
{
    const std::vector<std::string> before = files();
    ASSERT_EQ(run({"subscribers", "endis_ddns"}).status, 0);
    EXPECT_EQ(files(), before);
    EXPECT_TRUE(device.log().empty());
    // Diagnostics are on: a line reaches the console once the tool is done.
    QORCFG_LOG("%s", "here");
    EXPECT_EQ(device.log(), std::vector<std::string>{"here"});
}

TEST_F(QorctlComponents, TheEngineWritesNothingWhileItsWritesAreHeld)
{
    Document doc;
    doc.section("package", "section").add("option", "value");
    const std::vector<std::string> before = files();
    {
        const WritesHeld held;
        commit_uci_section(doc, "package", "section", 1, 0);
        commit_uci_options(doc, "package", "section", 0, 7);
        EXPECT_EQ(files(), before);
    }
    commit_uci_section(doc, "package", "section", 1, 0);
    EXPECT_GT(files().size(), before.size());
}

} // namespace

} // namespace qorcfg
