#include "fault/fault_sweep.h"

#include "engine/json.h"
#include "platform/file.h"
#include "platform/reference/store.h"
#include "support/golden_case.h"

#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace qorcfg::test {

namespace fs = std::filesystem;

namespace {

constexpr std::array kept{"/tmp", "/etc"};
constexpr std::array engine_folders{"/tmp/cache/qorcfg/ucicfg.d", "/tmp/cache/qorcfg/nvramcfg.d"};

/// Copies a tree. Times go with it: batches are applied in the order of theirs.
void copy_tree(const std::string &from, const std::string &to)
{
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    for (const auto &entry : fs::recursive_directory_iterator(from)) {
        if (entry.is_regular_file() && !entry.is_symlink()) {
            fs::last_write_time(to / entry.path().lexically_relative(from),
                                entry.last_write_time());
        }
    }
}

bool ends_with(const std::string &text, const std::string &ending)
{
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

} // namespace

SavedState::SavedState(const DeviceRoot &device) : device_(device), folder_(device.root() + ".kept")
{
    store_close();
    fs::remove(device.path("/tmp/cache/qorcfg/server.socket"));
    // The console is no part of what is tested, and its lines would count as calls.
    fs::remove(device.path("/tmp/qorcfg_debug"));
    for (const char *folder : kept) {
        fs::create_directories(folder_);
        copy_tree(device.path(folder), folder_ + folder);
    }
}

SavedState::~SavedState()
{
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void SavedState::restore() const
{
    store_close();
    fs::remove(log());
    for (const char *folder : kept) {
        fs::remove_all(device_.path(folder));
        copy_tree(folder_ + folder, device_.path(folder));
    }
}

void print_nothing()
{
    const Fd nothing = open_file("/dev/null", O_WRONLY);
    ::dup2(nothing.get(), STDOUT_FILENO);
    ::dup2(nothing.get(), STDERR_FILENO);
}

void expect_whole_snapshots(const DeviceRoot &device)
{
    for (const char *folder : engine_folders) {
        for (const std::string &name : device.names_in(folder)) {
            if (ends_with(name, ".json")) {
                const std::string text = device.read(folder + ("/" + name));
                EXPECT_TRUE(is_json_object(parse_json(text, JsonSyntax::strict).get()))
                    << name << ": " << text;
            }
        }
    }
}

void expect_packages_hold_the_documents(const DeviceRoot &device)
{
    Files snapshots;
    for (const char *folder : engine_folders) {
        snapshots.merge(files_in(device.path(folder)));
    }
    expect_applied(device, snapshots);
}

void expect_nothing_left(const DeviceRoot &device)
{
    for (const char *folder : engine_folders) {
        for (const std::string &name : device.names_in(folder)) {
            EXPECT_TRUE(ends_with(name, ".json")) << name;
        }
    }
    for (const std::string &name : device.names_in("/tmp/etc/config")) {
        EXPECT_EQ(name.find('.'), std::string::npos) << name;
    }
}

bool put_away_cut_off_batches(const DeviceRoot &device, const Fault &fault)
{
    bool found = false;
    for (const std::string &name : device.names_in(engine_folders[0])) {
        const std::string path = engine_folders[0] + ("/" + name);
        if (name.rfind("failed.", 0) == 0 && fault.kind == FaultKind::half_stop &&
            !ends_with(device.read(path), "\n")) {
            found = fs::remove(device.path(path));
        }
    }
    return found;
}

} // namespace qorcfg::test
