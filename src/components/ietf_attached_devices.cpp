#include "components/components.h"
#include "components/device_table.h"
#include "components/numbered_keys.h"
#include "components/text.h"

#include "core/base/hooks.h"
#include "engine/uci_commit.h"
#include "platform/file.h"
#include "platform/file_calls.h"
#include "platform/path_root.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace qorcfg {

namespace {

constexpr const char *package = "conndev";
constexpr const char *type_folder = "/tmp/cache/netscan";
constexpr const char *type_file = "/tmp/cache/netscan/kova_dev_type_zltx";
constexpr const char *default_names = "/tmp/cache/soapclient/sr/defaultname/";
constexpr mode_t type_folder_mode = 0755;
constexpr mode_t shared_file_mode = 0644;

constexpr std::array device_keys{"kova_dev_name", "kova_dev_name_zltx", "kova_dev_type_zltx",
                                 "kova_dev_name_v2_zltx"};
constexpr std::array name_set_keys{"set_zltx_dev_name"};
constexpr std::array attach_point_keys{"kova_hid_mac", "kova_hid_name", "kova_hid_model",
                                       "kova_hid_devtype"};

constexpr std::array custom_name_keys{"kova_dev_name"};

constexpr std::array name_set_options{Option{"device_name_set", "set_zltx_dev_name"}};

constexpr std::array attach_point_options{
    Option{"device_mac", "kova_hid_mac"},
    Option{"device_name", "kova_hid_name"},
    Option{"device_model", "kova_hid_model"},
    Option{"device_type", "kova_hid_devtype"},
};

/// Which parts of a satellite's report about a device are taken.
struct TypeFlags {
    bool name = true;
    bool type = true;
};

using TypeFlagsByMac = std::map<std::string, TypeFlags>;

std::string escaped_name(const std::string &name)
{
    return cut<255>(html_escaped(name));
}

std::string_view first_line(std::string_view text)
{
    return text.substr(0, text.find('\n'));
}

/// Takes the first blank-separated token and the one blank behind it off `line`.
std::string take_token(std::string_view &line)
{
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    std::string token(line.substr(0, line.find(' ')));
    line.remove_prefix(std::min(token.size() + 1, line.size()));
    return token;
}

bool looks_like_mac(const std::string &token)
{
    return token.find(':') != std::string::npos;
}

/// Puts the user's name into the file that the SOAP client keeps about a device, if it keeps one.
/// What is no JSON object stays as it is.
void name_for_soap_client(const std::string &mac, const std::string &name)
{
    const std::string path = cut<127>(default_names + mac);
    const Json device = read_json_file(rooted(path), info_file_bound);
    if (!json_set(device.get(), "custom name", Json::string(name))) {
        return;
    }
    const char *text = json_object_to_json_string_ext(device.get(), JSON_C_TO_STRING_PRETTY);
    if (text == nullptr || !replace_file(rooted(path), text, shared_file_mode)) {
        QORCFG_LOG("cannot write %s: %s", path.c_str(), std::strerror(errno));
    }
}

void take_custom_names(DeviceTable &table)
{
    for_each_numbered_key("kova_dev_name", 1, [&](int, const std::string &value) {
        const std::string kept = cut<255>(value);
        std::string_view line = first_line(kept);
        const std::string mac = take_token(line);
        const std::string name(line);
        if (!looks_like_mac(mac) || name.empty()) {
            return;
        }
        if (DeviceRecord *device = table.record(mac)) {
            device->custom_name = escaped_name(name);
            name_for_soap_client(mac, name);
        }
    });
}

/// Replaces the type file by the store's list and returns what now stands in it: nothing when it
/// could not be written. The content comes from this run, so that another's cannot mix in.
std::string publish_types()
{
    std::string lines;
    for_each_numbered_key("kova_dev_type_zltx", 1,
                          [&](int, const std::string &value) { lines += value + "\n"; });
    const std::string folder = rooted(type_folder);
    if (file_calls::mkdir(folder.c_str(), type_folder_mode) == 0) {
        ::chmod(folder.c_str(), type_folder_mode);
    }
    if (!replace_file(rooted(type_file), lines, shared_file_mode)) {
        QORCFG_LOG("cannot write %s: %s", type_file, std::strerror(errno));
        return {};
    }
    return lines;
}

/// The flags of each device that the type lines list, by the first line that names it.
TypeFlagsByMac flags_of(std::string_view lines)
{
    TypeFlagsByMac flags;
    while (!lines.empty()) {
        const std::string_view line = first_line(lines);
        if (const auto fields = first_fields<3>(split_at_blanks(line))) {
            const auto &[mac, name, type] = *fields;
            flags.emplace(cut<17>(mac), TypeFlags{number_of(name) != 0, number_of(type) != 0});
        }
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    return flags;
}

/// Takes the names and types that satellites reported under one family of keys.
void take_reports(DeviceTable &table, const char *stem, std::string DeviceRecord::*type_field,
                  const TypeFlagsByMac &flags)
{
    for_each_numbered_key(stem, 1, [&](int, const std::string &value) {
        std::string_view line = first_line(value);
        const std::string mac = take_token(line);
        const std::string type = take_token(line);
        if (!looks_like_mac(mac)) {
            return;
        }
        const auto listed = flags.find(cut<17>(mac));
        const TypeFlags wanted = listed == flags.end() ? TypeFlags{} : listed->second;
        DeviceRecord *device = wanted.name || wanted.type ? table.record(mac) : nullptr;
        if (device == nullptr) {
            return;
        }
        if (wanted.name) {
            device->reported_name = escaped_name(std::string(line));
        }
        if (wanted.type) {
            device->*type_field = cut<29>(type);
        }
    });
}

Document document_of(const DeviceTable &table)
{
    constexpr const char *type = "dev_custom";
    Document doc;
    json_object *list = doc.container(type, numbered_sections);
    // Here the marker's value is a text, as the readers of the snapshot know it.
    if (!json_set(json_element(list, 0), "alias-name", Json::string("true"))) {
        doc.mark_incomplete();
    }
    table.for_each([&](const DeviceRecord &device) {
        doc.append(type, numbered_sections)
            .add("device_mac", device.mac)
            .add("device_name", device.custom_name)
            .add("device_model", device.reported_name)
            .add("device_type", device.type)
            .add("device_type_v2", device.type_v2);
    });
    return doc;
}

int update_devices(int job)
{
    QORCFG_LOG(" update attached_devices");
    DeviceTable table;
    take_custom_names(table);
    const TypeFlagsByMac flags = flags_of(publish_types());
    take_reports(table, "kova_dev_name_zltx", &DeviceRecord::type, flags);
    take_reports(table, "kova_dev_name_v2_zltx", &DeviceRecord::type_v2, flags);
    return commit(document_of(table), package, "dev_custom", job);
}

int update_attach_point(int job)
{
    QORCFG_LOG(" update device custom");
    Document doc;
    doc.section("conndev", "custom").add(attach_point_options);
    return commit(doc, package, "custom", job);
}

int update_name_set(int job)
{
    QORCFG_LOG(" update set zltx device name");
    Document doc;
    doc.section("conndev", "zltx_name").add(name_set_options);
    return commit(doc, package, "zltx_name", job);
}

int tell_custom_names(const ChangedKeys *keys, int)
{
    if (any_key_changed(keys, custom_name_keys)) {
        QORCFG_LOG("Send soap KovaDevName");
        notify_soap_agent("KovaDevName");
    }
    return 0;
}

int tell_name_set(const ChangedKeys *keys, int)
{
    if (any_key_changed(keys, name_set_keys)) {
        QORCFG_LOG("Send soap ZeltraxDeviceName");
        notify_soap_agent("ZeltraxDeviceName");
    }
    return 0;
}

void init()
{
    log_init("attached_devices");
    subscribe_all(device_keys, update_devices);
    subscribe_all(name_set_keys, update_name_set);
    subscribe_all(attach_point_keys, update_attach_point);
}

void soap_init()
{
    QORCFG_LOG("init() - Soap Initializing %s", "attached_devices");
    subscribe_all_soap(custom_name_keys, tell_custom_names);
    subscribe_all_soap(name_set_keys, tell_name_set);
}

void register_()
{
    log_register("attached_devices");
}

} // namespace

const Operations ietf_attached_devices{init, soap_init, register_};

} // namespace qorcfg
