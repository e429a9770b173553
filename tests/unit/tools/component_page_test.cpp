#include "support/qorctl_test.h"

#include "core/base/registry.h"
#include "platform/file.h"
#include "platform/path_root.h"

#include <filesystem>

namespace qorcfg {

namespace {

namespace fs = std::filesystem;

class ComponentPage : public QorctlTest {
protected:
    /// The part of the page that tells of a component.
    static std::string part_of(const std::string &component)
    {
        const std::string page = run({"components", "--markdown"}).out;
        const std::string title = "\n## " + component + "\n";
        const std::size_t begin = page.find(title);
        return begin == std::string::npos
                   ? ""
                   : page.substr(begin, page.find("\n## ", begin + 1) - begin);
    }

    std::vector<std::string> files() const
    {
        std::vector<std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(device.root())) {
            found.push_back(entry.path());
        }
        return found;
    }
};

TEST_F(ComponentPage, TheShippedPageIsTheOneThatIsPrinted)
{
    const Outcome printed = run({"components", "--markdown"});
    EXPECT_EQ(printed.status, 0);
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(read_file(QORCFG_TOP "/docs/components.md", std::size_t{1} << 20).value_or(""),
              printed.out)
        << "make it anew: build/qorctl components --markdown >docs/components.md";
}

TEST_F(ComponentPage, AComponentIsToldWithKeysPackagesAndSnapshots)
{
    EXPECT_EQ(part_of("ietf_devname"),
              "\n## ietf_devname\n"
              "\nUCI packages:\n- `systemconfig`\n"
              "\nSnapshots:\n"
              "- `/tmp/cache/qorcfg/ucicfg.d/uci-systemconfig-system.json`\n"
              "\nKeys (2):\n`Device_name`, `GUI_Region`\n");
}

TEST_F(ComponentPage, ADocumentThatOnlyOneChoiceOfASettingWritesIsThereToo)
{
    const std::string part = part_of("ietf_traffic_meter");
    EXPECT_NE(part.find("uci-trafficmeter-time_control.json"), std::string::npos);
    EXPECT_NE(part.find("uci-trafficmeter-volume_control.json"), std::string::npos);
}

TEST_F(ComponentPage, EverySnapshotOfTheGoldenCasesIsThere)
{
    const std::string page = run({"components", "--markdown"}).out;
    int snapshots = 0;
    for (const auto &entry : fs::recursive_directory_iterator(QORCFG_TOP "/tests/golden")) {
        if (entry.path().extension() == ".json") {
            const std::string name = entry.path().filename();
            const bool is_snapshot = name.rfind("uci-", 0) == 0 || name.rfind("nvram-", 0) == 0;
            snapshots += is_snapshot ? 1 : 0;
            EXPECT_TRUE(!is_snapshot || page.find("/" + name + "`") != std::string::npos)
                << entry.path();
        }
    }
    EXPECT_GT(snapshots, 100);
}

TEST_F(ComponentPage, TheDeviceAtHandIsNeitherReadNorTouched)
{
    device.be_base(false);
    device.set({{"ctrl_volumn_time", "0"}, {"dns_hijack", "1"}});
    const std::vector<std::string> before = files();
    const std::string root = path_root();
    const std::string page = run({"components", "--markdown"}).out;
    EXPECT_EQ(files(), before);
    EXPECT_EQ(path_root(), root);
    EXPECT_EQ(run({"get", "dns_hijack"}).out, "1\n");
    EXPECT_TRUE(registry().records().empty());
    EXPECT_TRUE(device.log().empty());
    device.be_base(true);
    EXPECT_EQ(run({"components", "--markdown"}).out, page);
}

TEST_F(ComponentPage, ThePageTakesNeitherAListNorJson)
{
    EXPECT_EQ(run({"components", "--markdown", "--json"}).status, 2);
    EXPECT_EQ(run({"components", "--markdown", "list"}).status, 2);
}

} // namespace

} // namespace qorcfg
