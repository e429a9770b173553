#include "apply/section_places.h"

#include <algorithm>

namespace qorcfg {

SectionPlaces::SectionPlaces(const uci_package *package)
{
    uci_element *element = nullptr;
    uci_foreach_element(&package->sections, element)
    {
        append(uci_to_section(element));
    }
}

const SectionPlaces::Sections *SectionPlaces::of(std::string_view type) const
{
    const auto found = types_.find(std::string(type));
    return found == types_.end() ? nullptr : &found->second;
}

std::size_t SectionPlaces::count(std::string_view type) const
{
    const Sections *sections = of(type);
    return sections == nullptr ? 0 : sections->size();
}

uci_section *SectionPlaces::at(std::string_view type, std::size_t place) const
{
    return place < count(type) ? (*of(type))[place] : nullptr;
}

void SectionPlaces::append(uci_section *section)
{
    types_[section->type].push_back(section);
}

void SectionPlaces::move_last_to(std::string_view type, std::size_t place)
{
    Sections &sections = types_[std::string(type)];
    std::rotate(sections.begin() + static_cast<std::ptrdiff_t>(place), sections.end() - 1,
                sections.end());
}

void SectionPlaces::remove(const std::unordered_set<uci_section *> &gone)
{
    if (gone.empty()) {
        return;
    }
    for (auto &[type, sections] : types_) {
        sections.erase(
            std::remove_if(sections.begin(), sections.end(),
                           [&](uci_section *section) { return gone.count(section) != 0; }),
            sections.end());
    }
}

} // namespace qorcfg
