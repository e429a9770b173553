#include "support/applied_package.h"

#include "apply/uci_package.h"
#include "engine/new_json_util.h"

#include <algorithm>
#include <map>
#include <set>

namespace qorcfg::test {

namespace {

struct SectionText {
    std::string name; ///< "" for one without a name
    std::string options;
};
using Types = std::map<std::string, std::vector<SectionText>>;

void add_value(std::string &options, const std::string &name, const char *kind, std::string value)
{
    std::replace_if(
        value.begin(), value.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    options.append("    ").append(kind).append(" ").append(name).append(" [");
    options.append(value).append("]\n");
}

std::string options_of(json_object *options)
{
    std::string text;
    for_each_member(options, [&](const char *name, json_object *value) {
        if (is_json_array(value)) {
            for (std::size_t i = 0; i < json_size(value); ++i) {
                add_value(text, name, "item", json_value_text(json_element(value, i)));
            }
        } else if (!json_value_text(value).empty()) {
            add_value(text, name, "option", json_value_text(value));
        }
    });
    return text;
}

std::string options_of(const uci_section *section)
{
    std::string text;
    const uci_element *element = nullptr;
    uci_foreach_element(&section->options, element)
    {
        const uci_option *option = uci_to_option(element);
        if (option->type == UCI_TYPE_STRING) {
            add_value(text, element->name, "option", option->v.string);
            continue;
        }
        const uci_element *item = nullptr;
        uci_foreach_element(&option->v.list, item)
        {
            add_value(text, element->name, "item", item->name);
        }
    }
    return text;
}

/// A section that is there already is written anew.
void put(std::vector<SectionText> &sections, SectionText section)
{
    const auto old = std::find_if(sections.begin(), sections.end(), [&](const SectionText &each) {
        return !section.name.empty() && each.name == section.name;
    });
    if (old != sections.end()) {
        sections.erase(old);
    }
    sections.push_back(std::move(section));
}

void sort_by_name(std::vector<SectionText> &sections)
{
    std::stable_sort(sections.begin(), sections.end(),
                     [](const auto &a, const auto &b) { return a.name < b.name; });
}

std::string text_of(const Types &types)
{
    std::string text;
    for (const auto &[type, sections] : types) {
        for (const SectionText &section : sections) {
            text.append(type).append(" '").append(section.name).append("'\n");
            text.append(section.options);
        }
    }
    return text;
}

} // namespace

std::string applied_text(const DeviceRoot &device, const std::string &package,
                         const std::vector<json_object *> &documents,
                         const std::set<std::string> &foreign)
{
    UciPackage uci;
    if (uci.read(device.path("/tmp/etc/config/" + package)) != UciPackage::Read::done) {
        return uci.error();
    }
    Types types;
    const uci_element *element = nullptr;
    uci_foreach_element(&uci.get()->sections, element)
    {
        const uci_section *section = uci_to_section(element);
        types[section->type].push_back(
            {section->anonymous ? "" : section->e.name, options_of(section)});
    }
    for (const std::string &type : foreign) {
        types.erase(type);
    }
    for (json_object *document : documents) {
        for_each_member(document, [&](const char *type, json_object *container) {
            if (!is_json_array(container)) {
                sort_by_name(types[type]);
            }
        });
    }
    return text_of(types);
}

std::string wanted_text(const std::vector<json_object *> &documents)
{
    Types types;
    for (json_object *document : documents) {
        for_each_member(document, [&](const char *type, json_object *container) {
            std::vector<SectionText> &sections = types[type];
            for_each_member(container, [&](const char *name, json_object *options) {
                put(sections, {name, options_of(options)});
            });
            for (std::size_t i = 1; i < json_size(container) && is_json_array(container); ++i) {
                const bool numbered = section_kind(container) == numbered_sections;
                put(sections, {numbered ? std::string(type) + "_" + std::to_string(i - 1) : "",
                               options_of(json_element(container, i))});
            }
            if (!is_json_array(container)) {
                sort_by_name(sections);
            }
        });
    }
    return text_of(types);
}

std::string with_sorted_options(const std::string &text)
{
    std::vector<std::string> lines = split_lines(text);
    const auto is_option = [](const std::string &line) { return line.rfind("    ", 0) == 0; };
    const auto name_of = [](const std::string &line) { return line.substr(0, line.find('[')); };
    for (auto begin = lines.begin(); begin != lines.end();) {
        begin = std::find_if(begin, lines.end(), is_option);
        const auto end = std::find_if_not(begin, lines.end(), is_option);
        std::stable_sort(begin, end, [&](const std::string &a, const std::string &b) {
            return name_of(a) < name_of(b);
        });
        begin = end;
    }
    std::string sorted;
    for (const std::string &line : lines) {
        sorted += line + "\n";
    }
    return sorted;
}

std::vector<std::string> list_items(const DeviceRoot &device, const std::string &package,
                                    const std::string &section, const std::string &option)
{
    UciPackage uci;
    std::vector<std::string> items;
    if (uci.read(device.path("/tmp/etc/config/" + package)) != UciPackage::Read::done) {
        return items;
    }
    uci_section *found = uci.find(section);
    const uci_element *element = nullptr;
    if (found == nullptr) {
        return items;
    }
    uci_foreach_element(&found->options, element)
    {
        const uci_option *list = uci_to_option(element);
        if (option != element->name || list->type != UCI_TYPE_LIST) {
            continue;
        }
        const uci_element *item = nullptr;
        uci_foreach_element(&list->v.list, item)
        {
            items.emplace_back(item->name);
        }
    }
    return items;
}

} // namespace qorcfg::test
