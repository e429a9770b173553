#include "apply/apply.h"
#include "core/base/globals.h"
#include "core/component_table.h"
#include "core/worker.h"
#include "engine/systeminfo.h"
#include "platform/file.h"
#include "platform/reference/notifier.h"
#include "platform/reference/store.h"
#include "support/device_root.h"
#include "support/golden_case.h"
#include "support/hook_scripts.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

// Each folder tests/golden/<component>/<case> is one test: device files and settings in, batch
// files and documents out, of the start-up pass and of one changed setting. What was written is
// then applied, and the packages compared with the documents. README.md there tells the files.
namespace qorcfg {
namespace {

namespace fs = std::filesystem;
using test::DeviceRoot;
using test::Files;
using test::files_in;
using test::GoldenCase;
using test::split_lines;

std::string unescaped(std::string_view value)
{
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) {
            ++i;
            text += value[i] == 'n' ? '\n' : value[i] == 'r' ? '\r' : value[i];
        } else {
            text += value[i];
        }
    }
    return text;
}

void set_from(const fs::path &file, Marking marking)
{
    std::vector<StoreWrite> writes;
    const std::string text = read_file(file, std::size_t{1} << 20).value_or("");
    for (const std::string &line : split_lines(text)) {
        const std::size_t sign = line.find('=');
        if (!line.empty() && line[0] != '#') {
            ASSERT_NE(sign, std::string::npos) << file << ": " << line;
            writes.push_back({line.substr(0, sign), unescaped(line.substr(sign + 1))});
        }
    }
    ASSERT_EQ(store_write(writes, marking), "");
}

/// What the engine's folders hold, by file name.
Files written(const DeviceRoot &device)
{
    Files files;
    for (const char *folder : {"/tmp/cache/qorcfg/ucicfg.d", "/tmp/cache/qorcfg/nvramcfg.d"}) {
        for (const std::string &name : device.names_in(folder)) {
            files[name] = device.read(std::string(folder) + "/" + name);
        }
    }
    return files;
}

/// Compares, or with QORCFG_GOLDEN_WRITE set writes, what a case expects.
void check(const fs::path &folder, const Files &files)
{
    if (std::getenv("QORCFG_GOLDEN_WRITE") != nullptr) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (const auto &[name, content] : files) {
            ASSERT_TRUE(replace_file(folder / name, content, 0644));
        }
        return;
    }
    const Files wanted = files_in(folder);
    for (const auto &[name, content] : wanted) {
        ASSERT_TRUE(files.count(name)) << folder << ": " << name << " was not written";
        EXPECT_EQ(files.at(name), content) << folder << ": " << name;
    }
    EXPECT_EQ(files.size(), wanted.size()) << folder << ": more files were written than expected";
}

/// Applies what was written, so that nothing of it is left, and compares the packages with the
/// documents.
void apply_and_compare(const DeviceRoot &device, const BatchSelection &selection)
{
    std::ostringstream err;
    EXPECT_TRUE(apply_batches(selection, err)) << err.str();
    test::expect_applied(device, written(device));
}

/// Announces every changed key as one job, as the notifier does.
void apply_changes()
{
    std::vector<MarkedKey> keys;
    ASSERT_EQ(store_marked_keys(keys), "");
    const auto groups = plan_announcements(keys);
    ASSERT_EQ(groups.size(), 1U) << "a case changes something, and fits one job";
    JobRecord record;
    record.job = 1;
    for (const Announcement &announcement : groups[0].announcements) {
        record.changes.at(record.count++) = {announcement.id, announcement.action};
    }
    run_job(record);
}

class GoldenTest : public testing::TestWithParam<std::string> {};

TEST_P(GoldenTest, Holds)
{
    const GoldenCase golden(GetParam());
    const DeviceRoot device;
    // The commit hook stays out: what a job wrote is looked at before it is applied.
    test::install_hook_script(device, "nvram.sh");
    golden.lay(device);
    is_base = read_is_base();
    set_from(golden.settings(), Marking::leave);
    // A component may write as soon as it is enabled, which the daemon does as part of the start.
    qorcfg_change_is_trigger = 1;
    for (const std::string &name : golden.components()) {
        ASSERT_NE(find_component(name), nullptr) << name;
        enable_component(name.c_str());
    }
    init_all_systeminfo();
    device.start_up();
    check(golden.start(), written(device));
    apply_and_compare(device, {BatchSelection::Kind::startup, 0});
    if (golden.has_change()) {
        set_from(golden.change(), Marking::mark);
        apply_changes();
        check(golden.changed(), written(device));
        apply_and_compare(device, {BatchSelection::Kind::job, 1});
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenTest, testing::ValuesIn(GoldenCase::all()),
                         [](const auto &info) { return GoldenCase::test_name(info.param); });

} // namespace
} // namespace qorcfg
