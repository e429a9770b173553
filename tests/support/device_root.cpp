#include "support/device_root.h"

#include "core/base/globals.h"
#include "core/base/hooks.h"
#include "core/job_board.h"
#include "core/startup.h"
#include "core/worker.h"
#include "engine/json.h"
#include "engine/systeminfo.h"
#include "platform/file.h"
#include "platform/key_id.h"
#include "platform/path_root.h"
#include "platform/reference/store.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace qorcfg::test {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t read_bound = std::size_t{64} << 20;

std::string new_scratch_folder()
{
    // Socket addresses are short, and memory is faster than a disk.
    std::string name = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm/qor.XXXXXX" : "/tmp/qor.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no scratch folder");
    }
    return name;
}

} // namespace

std::vector<std::string> split_lines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

DeviceRoot::DeviceRoot() : root_(new_scratch_folder())
{
    for (const char *folder : {"/dev", "/etc/qorcfg.d", "/etc/qorcfg", "/bin",
                               "/tmp/cache/qorcfg/ucicfg.d", "/tmp/cache/qorcfg/nvramcfg.d",
                               "/tmp/cache/systeminfo", "/tmp/etc/config", "/tmp/.uci"}) {
        fs::create_directories(path(folder));
    }
    fs::create_symlink("../tmp/etc/config", path("/etc/config"));
    write("/tmp/qorcfg_debug", "");
    write_program("/bin/killall",
                  "#!/bin/sh\necho \"$*\" >>\"" + path("/tmp/killall_calls") + "\"\n");
    const char *old_path = std::getenv("PATH");
    old_path_ = old_path == nullptr ? "" : old_path;
    ::setenv("PATH", (path("/bin") + ":" + old_path_).c_str(), 1);
    set_path_root(root_);
    set_soap_pause([] {});
    registry().clear();
    qorcfg_change_is_trigger = 0;
    pth_count = 0;
    be_base(true);
}

DeviceRoot::~DeviceRoot()
{
    store_close();
    set_soap_pause(nullptr);
    set_path_root("");
    ::setenv("PATH", old_path_.c_str(), 1);
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

std::string DeviceRoot::path(std::string_view device_path) const
{
    return root_ + std::string(device_path);
}

void DeviceRoot::write(std::string_view device_path, std::string_view text) const
{
    const std::string target = path(device_path);
    fs::create_directories(fs::path(target).parent_path());
    std::ofstream(target, std::ios::binary | std::ios::trunc) << text;
}

void DeviceRoot::write_program(std::string_view device_path, std::string_view text) const
{
    write(device_path, text);
    fs::permissions(path(device_path), fs::perms::owner_all);
}

std::string DeviceRoot::read(std::string_view device_path) const
{
    return read_file(path(device_path), read_bound).value_or("");
}

bool DeviceRoot::exists(std::string_view device_path) const
{
    return fs::exists(path(device_path));
}

std::vector<std::string> DeviceRoot::names_in(std::string_view device_folder) const
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(path(device_folder))) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void DeviceRoot::set(std::initializer_list<std::pair<const char *, std::string>> settings) const
{
    std::vector<StoreWrite> writes;
    for (const auto &[key, value] : settings) {
        writes.push_back({key, value});
    }
    ASSERT_EQ(store_write(writes, Marking::mark), "");
}

void DeviceRoot::be_base(bool base) const
{
    write("/tmp/cache/systeminfo/sysinfo.info",
          base ? R"({"kova_type": "Base"})" : R"({"kova_type": "Satellite"})");
    is_base = read_is_base();
}

void DeviceRoot::enable(const Operations &component) const
{
    registry().clear();
    for (const auto routine : {component.init, component.soap_init}) {
        if (routine != nullptr) {
            routine();
        }
    }
}

std::vector<std::string> DeviceRoot::subscribed_keys(const Operations &component) const
{
    const std::size_t before = log().size();
    enable(component);
    constexpr std::string_view begin = "Subscribe name ";
    std::vector<std::string> keys;
    const std::vector<std::string> messages = log();
    for (std::size_t i = before; i < messages.size(); ++i) {
        if (messages[i].rfind(begin, 0) == 0) {
            keys.push_back(
                messages[i].substr(begin.size(), messages[i].find(" spoint ") - begin.size()));
        }
    }
    return keys;
}

int DeviceRoot::run_update(const Operations &component, int job) const
{
    enable(component);
    return registry().records().at(0).normal.at(0)(job);
}

void DeviceRoot::start_up() const
{
    qorcfg_change_is_trigger = 1;
    run_startup_pass();
    qorcfg_change_is_trigger = 0;
}

void DeviceRoot::start_up(const Operations &component) const
{
    enable(component);
    start_up();
}

void DeviceRoot::apply(const std::vector<std::string> &keys, int job, int action) const
{
    JobRecord record;
    record.job = job;
    for (const std::string &key : keys) {
        record.changes.at(record.count++) = {config_key_id(key.c_str()), action};
    }
    run_job(record);
}

std::vector<std::string> DeviceRoot::startup_lines(const std::string &package,
                                                   const std::string &section) const
{
    return split_lines(read("/tmp/cache/qorcfg/ucicfg.d/uci_update." + package + "." + section));
}

std::vector<std::string> DeviceRoot::lines(int job, const std::string &package,
                                           const std::string &section) const
{
    return split_lines(read("/tmp/cache/qorcfg/ucicfg.d/uci_update" + std::to_string(job) + "." +
                            package + "." + section));
}

std::vector<std::string> DeviceRoot::nvram_startup_lines(const std::string &name) const
{
    return split_lines(read("/tmp/cache/qorcfg/nvramcfg.d/nvram_update." + name));
}

std::vector<std::string> DeviceRoot::nvram_lines(int job, const std::string &name) const
{
    return split_lines(
        read("/tmp/cache/qorcfg/nvramcfg.d/nvram_update" + std::to_string(job) + "." + name));
}

std::string DeviceRoot::document(const std::string &package, const std::string &section) const
{
    return compact_document("/tmp/cache/qorcfg/ucicfg.d/uci-" + package + "-" + section + ".json");
}

std::string DeviceRoot::nvram_document(const std::string &name) const
{
    return compact_document("/tmp/cache/qorcfg/nvramcfg.d/nvram-" + name + ".json");
}

std::string DeviceRoot::compact_document(const std::string &device_path) const
{
    const Json document = parse_json(read(device_path), JsonSyntax::strict);
    return document ? json_object_to_json_string_ext(
                          document.get(), JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE)
                    : "";
}

std::vector<std::string> DeviceRoot::log_lines() const
{
    return split_lines(read("/dev/console"));
}

std::vector<std::string> DeviceRoot::log() const
{
    std::vector<std::string> messages;
    for (const std::string &line : log_lines()) {
        const std::size_t mark = line.find("] : ");
        messages.push_back(mark == std::string::npos ? line : line.substr(mark + 4));
    }
    return messages;
}

void DeviceRoot::clear_log() const
{
    write("/dev/console", "");
}

std::vector<std::string> DeviceRoot::killall_calls() const
{
    return split_lines(read("/tmp/killall_calls"));
}

} // namespace qorcfg::test
