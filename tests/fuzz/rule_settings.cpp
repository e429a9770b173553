#include "apply/apply.h"
#include "apply/uci_package.h"
#include "components/vlan_settings.h"
#include "core/base/globals.h"
#include "core/base/registry.h"
#include "core/component_table.h"
#include "fuzz/fuzz.h"
#include "platform/reference/store.h"
#include "support/sample_device.h"
#include "tools/setting_lines.h"

#include <map>
#include <set>
#include <sstream>

using namespace qorcfg;

namespace {

constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d";
constexpr const char *nvram_folder = "/tmp/cache/qorcfg/nvramcfg.d";
constexpr const char *config = "/tmp/etc/config";

/// The sample device with the packages that it was shipped with, and no traces of other inputs.
void lay_out()
{
    const test::DeviceRoot &device = test::fuzz_device();
    static const std::map<std::string, std::string> packages = [&] {
        test::lay_sample_device(device);
        std::map<std::string, std::string> texts;
        for (const std::string &name : device.names_in(config)) {
            texts[name] = device.read(std::string(config) + "/" + name);
        }
        return texts;
    }();
    for (const char *each : {folder, nvram_folder, config, "/tmp/.uci"}) {
        test::empty_folder(each);
    }
    for (const auto &[name, text] : packages) {
        device.write(std::string(config) + "/" + name, text);
    }
    set_lan_ports("");
    registry().clear();
}

/// Makes the lines of `text` all that the store holds; false when they are no settings.
bool set_all(const std::string &text)
{
    std::vector<StoreWrite> lines;
    if (parse_setting_lines(text, lines)) {
        return false;
    }
    std::vector<Setting> old;
    test::require(store_settings("", old).empty(), "the store can be read");
    std::vector<StoreWrite> writes;
    for (const Setting &setting : old) {
        writes.push_back({setting.key, std::nullopt});
    }
    writes.insert(writes.end(), lines.begin(), lines.end());
    const std::string error = store_write(writes, Marking::leave);
    test::require(error.empty(), "the store takes what the lines say", error);
    return true;
}

/// Runs each callback once, as a start-up pass or a job that is about all of its keys.
void run_updates(int trigger)
{
    std::set<UpdateCallback> done;
    qorcfg_change_is_trigger = trigger;
    for (const KeyRecord &record : registry().records()) {
        for (const UpdateCallback callback : record.normal) {
            if (done.insert(callback).second) {
                callback(1);
            }
        }
    }
    qorcfg_change_is_trigger = 0;
}

/// The component that the first line names behind a "#"; rules come to the firewall otherwise.
const ComponentRow &component_of(const std::string &text)
{
    const ComponentRow *row = nullptr;
    if (!text.empty() && text.front() == '#') {
        row = find_component(std::string_view(text).substr(1, text.find('\n') - 1));
    }
    return row == nullptr ? *find_component("ietf_firewall") : *row;
}

/// Packages of the sample device can be read, and so they can afterwards.
void require_readable_packages()
{
    std::ostringstream faults;
    apply_batches({}, faults); // a setting may give a name that UCI does not take
    for (const std::string &name : test::fuzz_device().names_in(config)) {
        UciPackage package;
        test::require(package.read(test::fuzz_device().path(std::string(config) + "/" + name)) ==
                          UciPackage::Read::done,
                      "a package can be read", name + ": " + package.error());
    }
}

} // namespace

// Settings of one component as the daemon meets them at its start, and those of a later job.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = test::input_parts(test::input_text(data, size), 2);
    lay_out();
    if (!set_all(parts[0])) {
        return 0;
    }
    enable_component(component_of(parts[0]).name);
    run_updates(1);
    if (set_all(parts[1])) {
        run_updates(0);
    }
    test::empty_folder(nvram_folder); // their program takes any line
    require_readable_packages();
    return 0;
}
