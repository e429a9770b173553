#include "support/golden_case.h"

#include "engine/json.h"
#include "platform/file.h"
#include "support/applied_package.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <set>

namespace qorcfg::test {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t file_bound = std::size_t{1} << 20;

std::string content_of(const fs::path &file)
{
    return read_file(file, file_bound).value_or("");
}

std::vector<std::string> cases_with(const char *file)
{
    std::vector<std::string> cases;
    for (const auto &entry : fs::recursive_directory_iterator(GOLDEN_FOLDER)) {
        if (entry.path().filename() == file) {
            cases.push_back(fs::relative(entry.path().parent_path(), GOLDEN_FOLDER));
        }
    }
    std::sort(cases.begin(), cases.end());
    return cases;
}

} // namespace

GoldenCase::GoldenCase(const std::string &name) : folder_(fs::path(GOLDEN_FOLDER) / name) {}

std::vector<std::string> GoldenCase::all()
{
    return cases_with("settings");
}

std::vector<std::string> GoldenCase::all_with_change()
{
    return cases_with("change");
}

std::string GoldenCase::test_name(std::string name)
{
    std::replace_if(
        name.begin(), name.end(), [](unsigned char byte) { return std::isalnum(byte) == 0; }, '_');
    return name;
}

std::vector<std::string> GoldenCase::components() const
{
    const std::string listed = content_of(folder_ / "components");
    return listed.empty() ? std::vector<std::string>{folder_.parent_path().filename()}
                          : split_lines(listed);
}

bool GoldenCase::has_change() const
{
    return fs::exists(change());
}

void GoldenCase::lay(const DeviceRoot &device) const
{
    if (fs::exists(folder_ / "root")) {
        fs::copy(folder_ / "root", device.root(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }
}

Files files_in(const fs::path &folder)
{
    Files files;
    if (fs::exists(folder)) {
        for (const auto &entry : fs::directory_iterator(folder)) {
            files[entry.path().filename()] = content_of(entry.path());
        }
    }
    return files;
}

namespace {

/// Each setting of an NVRAM-side document is in its settings file. Others may be there too: nothing
/// is ever removed.
void expect_settings(const DeviceRoot &device, const std::string &name, json_object *document)
{
    const std::vector<std::string> lines = split_lines(device.read("/tmp/etc/nvram/" + name));
    const std::set<std::string> settings(lines.begin(), lines.end());
    for_each_member(document, [&](const char *type, json_object *sections) {
        for_each_member(sections, [&](const char *section, json_object *options) {
            for_each_member(options, [&](const char *option, json_object *value) {
                std::string text = json_value_text(value);
                std::replace_if(
                    text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
                const std::string setting =
                    std::string(type) + "." + section + "." + option + "=" + text;
                EXPECT_EQ(settings.count(setting), 1U) << name << " lacks " << setting;
            });
        });
    });
}

} // namespace

void expect_applied(const DeviceRoot &device, const Files &files,
                    const std::set<std::string> &foreign)
{
    std::map<std::string, std::vector<Json>> packages;
    for (const auto &[name, content] : files) {
        const std::string_view prefix = "uci-";
        if (name.rfind(prefix, 0) == 0) {
            const std::string rest = name.substr(prefix.size());
            packages[rest.substr(0, rest.find('-'))].push_back(
                parse_json(content, JsonSyntax::strict));
        }
        const std::string_view nvram_prefix = "nvram-";
        const std::string_view ending = ".json";
        if (name.rfind(nvram_prefix, 0) == 0) {
            const Json document = parse_json(content, JsonSyntax::strict);
            expect_settings(
                device,
                name.substr(nvram_prefix.size(), name.size() - nvram_prefix.size() - ending.size()),
                document.get());
        }
    }
    for (const auto &[package, documents] : packages) {
        std::vector<json_object *> all;
        for (const Json &document : documents) {
            all.push_back(document.get());
        }
        EXPECT_EQ(with_sorted_options(applied_text(device, package, all, foreign)),
                  with_sorted_options(wanted_text(all)))
            << "package " << package;
    }
}

} // namespace qorcfg::test
