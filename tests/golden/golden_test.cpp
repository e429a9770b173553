#include "core/base/globals.h"
#include "core/component_table.h"
#include "core/worker.h"
#include "engine/systeminfo.h"
#include "platform/file.h"
#include "platform/reference/notifier.h"
#include "platform/reference/store.h"
#include "support/device_root.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>

// Each folder tests/golden/<component>/<case> is one test: device files and settings in, batch
// files and documents out, of the start-up pass and of one changed setting. README.md there tells
// the files.
namespace qorcfg {
namespace {

namespace fs = std::filesystem;
using test::DeviceRoot;
using test::split_lines;
using Files = std::map<std::string, std::string>;

constexpr std::size_t file_bound = std::size_t{1} << 20;

std::string content_of(const fs::path &file)
{
    return read_file(file, file_bound).value_or("");
}

std::vector<std::string> all_cases()
{
    std::vector<std::string> cases;
    for (const auto &entry : fs::recursive_directory_iterator(GOLDEN_FOLDER)) {
        if (entry.path().filename() == "settings") {
            cases.push_back(fs::relative(entry.path().parent_path(), GOLDEN_FOLDER));
        }
    }
    std::sort(cases.begin(), cases.end());
    return cases;
}

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
    for (const std::string &line : split_lines(content_of(file))) {
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

Files expected(const fs::path &folder)
{
    Files files;
    if (fs::exists(folder)) {
        for (const auto &entry : fs::directory_iterator(folder)) {
            files[entry.path().filename()] = content_of(entry.path());
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
    const Files wanted = expected(folder);
    for (const auto &[name, content] : wanted) {
        ASSERT_TRUE(files.count(name)) << folder << ": " << name << " was not written";
        EXPECT_EQ(files.at(name), content) << folder << ": " << name;
    }
    EXPECT_EQ(files.size(), wanted.size()) << folder << ": more files were written than expected";
}

void remove_batch_files(const DeviceRoot &device)
{
    for (const char *folder : {"/tmp/cache/qorcfg/ucicfg.d", "/tmp/cache/qorcfg/nvramcfg.d"}) {
        for (const std::string &name : device.names_in(folder)) {
            if (name.find("_update") != std::string::npos) {
                fs::remove(device.path(std::string(folder) + "/" + name));
            }
        }
    }
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
    const fs::path folder = fs::path(GOLDEN_FOLDER) / GetParam();
    const DeviceRoot device;
    if (fs::exists(folder / "root")) {
        fs::copy(folder / "root", device.root(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }
    is_base = read_is_base();
    set_from(folder / "settings", Marking::leave);
    // A component may write as soon as it is enabled, which the daemon does as part of the start.
    qorcfg_change_is_trigger = 1;
    const std::string own_component = folder.parent_path().filename();
    const std::string listed = content_of(folder / "components");
    for (const std::string &name : split_lines(listed.empty() ? own_component : listed)) {
        ASSERT_NE(find_component(name), nullptr) << name;
        enable_component(name.c_str());
    }
    init_all_systeminfo();
    device.start_up();
    check(folder / "start", written(device));
    if (fs::exists(folder / "change")) {
        remove_batch_files(device);
        set_from(folder / "change", Marking::mark);
        apply_changes();
        check(folder / "changed", written(device));
    }
}

std::string test_name(const testing::TestParamInfo<std::string> &info)
{
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char byte) { return std::isalnum(byte) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenTest, testing::ValuesIn(all_cases()), test_name);

} // namespace
} // namespace qorcfg
