#include "apply/package_preview.h"

#include "apply/batch_claim.h"
#include "apply/batch_editor.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <ostream>
#include <unordered_map>

namespace qorcfg {

namespace {

using Lines = std::vector<std::string>;

std::string quoted(std::string_view text)
{
    std::string result(1, '\'');
    for (const char c : text) {
        if (c == '\'') {
            result.append("'\\''");
        } else {
            result.push_back(c);
        }
    }
    result.push_back('\'');
    return result;
}

std::string value_of(const uci_option *option)
{
    if (option->type == UCI_TYPE_STRING) {
        return quoted(option->v.string);
    }
    std::string items;
    const uci_element *item = nullptr;
    uci_foreach_element(&option->v.list, item)
    {
        items.append(items.empty() ? "" : " ").append(quoted(item->name));
    }
    return items;
}

Lines lines_of(const std::string &name, const uci_package *package)
{
    Lines lines;
    std::map<std::string, std::size_t> counts;
    const uci_element *element = nullptr;
    uci_foreach_element(&package->sections, element)
    {
        const uci_section *section = uci_to_section(element);
        const std::size_t place = counts[section->type]++;
        std::string path = name;
        path += section->anonymous ? ".@" : ".";
        path += section->anonymous ? section->type : section->e.name;
        if (section->anonymous) {
            path.append("[").append(std::to_string(place)).append("]");
        }
        lines.push_back(path + "=" + section->type);
        const uci_element *option = nullptr;
        uci_foreach_element(&section->options, option)
        {
            lines.push_back(path + "." + option->name + "=" + value_of(uci_to_option(option)));
        }
    }
    return lines;
}

/// Prints those of `lines` that `others` lacks, a line that occurs twice counting twice.
void print_missing(std::ostream &out, const char *mark, const Lines &lines, const Lines &others)
{
    std::unordered_map<std::string_view, std::size_t> there;
    for (const std::string &line : others) {
        ++there[line];
    }
    for (const std::string &line : lines) {
        std::size_t &count = there[line];
        if (count > 0) {
            --count;
        } else {
            out << mark << line << '\n';
        }
    }
}

} // namespace

void PackagePreview::fault(const BatchFile &file, const std::string &reason)
{
    report_.fault(file.path(BatchState::waiting) + ": " + reason);
}

PackagePreview::Package &PackagePreview::package(const BatchFile &file)
{
    const auto known = std::find_if(packages_.begin(), packages_.end(),
                                    [&](const Package &each) { return each.name == file.target; });
    if (known != packages_.end()) {
        return *known;
    }
    Package &fresh =
        packages_.emplace_back(file.target, std::make_unique<PackageFile>(file.target));
    if (fresh.file->open() == PackageFile::Opened::done) {
        fresh.before = lines_of(fresh.name, fresh.file->package().get());
    } else {
        fault(file, fresh.file->error());
        fresh.file.reset();
    }
    return fresh;
}

void PackagePreview::add(const BatchFile &file)
{
    if (file.side == BatchFile::Side::uci && file.state == BatchState::ready &&
        !has_prepared_version(file.target)) {
        return; // applied
    }
    const auto text = read_file(file.path(), batch_bound);
    if (!text) {
        fault(file, std::strerror(errno));
    } else if (file.side == BatchFile::Side::nvram) {
        add_nvram_lines(file.target, *text);
    } else if (text->empty()) {
        return;
    } else if (!is_package_name(file.target)) {
        fault(file, "no package has such a name");
    } else if (Package &target = package(file); target.file) {
        for (const BatchFault &each :
             BatchEditor(target.file->package()).apply(*text, file.target)) {
            report_.line_fault(file.path(BatchState::waiting), each.line, each.reason);
        }
    }
}

void PackagePreview::add_nvram_lines(const std::string &document, std::string_view text)
{
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        nvram_lines_.push_back(document + ": " + std::string(line));
    }
}

void PackagePreview::print(std::ostream &out) const
{
    for (const Package &each : packages_) {
        if (each.file) {
            const Lines after = lines_of(each.name, each.file->package().get());
            print_missing(out, "- ", each.before, after);
            print_missing(out, "+ ", after, each.before);
        }
    }
    for (const std::string &line : nvram_lines_) {
        out << line << '\n';
    }
}

} // namespace qorcfg
