#include "apply/merge_sections.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace qorcfg {

namespace {

bool take_option(UciPackage &package, uci_section *section, const uci_option *option)
{
    if (option->type == UCI_TYPE_STRING) {
        return package.set_option(section, option->e.name, option->v.string);
    }
    if (!package.delete_option(section, option->e.name)) {
        return false;
    }
    const uci_element *item = nullptr;
    uci_foreach_element(&option->v.list, item)
    {
        if (!package.add_item(section, option->e.name, item->name)) {
            return false;
        }
    }
    return true;
}

bool merge(UciPackage &package, uci_section *section, uci_section *later)
{
    if (!package.set_type(section, later->type)) {
        return false;
    }
    const uci_element *element = nullptr;
    uci_foreach_element(&later->options, element)
    {
        if (!take_option(package, section, uci_to_option(element))) {
            return false;
        }
    }
    return package.delete_section(later);
}

} // namespace

bool merge_equal_names(UciPackage &package)
{
    std::vector<uci_section *> sections;
    uci_element *element = nullptr;
    uci_foreach_element(&package.get()->sections, element)
    {
        sections.push_back(uci_to_section(element));
    }
    std::unordered_map<std::string, uci_section *> first;
    for (uci_section *section : sections) {
        const auto [known, is_new] = first.emplace(section->e.name, section);
        if (!is_new && !merge(package, known->second, section)) {
            return false;
        }
    }
    return true;
}

} // namespace qorcfg
