#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <uci.h>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qorcfg {

/// The sections of a package by type and place, named ones included, as UCI counts them. Kept
/// beside the package while a batch is applied, since each look through the package itself would
/// walk all of it.
class SectionPlaces {
public:
    explicit SectionPlaces(const uci_package *package);

    std::size_t count(std::string_view type) const;
    /// The section at a place of its type; null behind the last one.
    uci_section *at(std::string_view type, std::size_t place) const;

    /// Tells of a section that now stands last of its type.
    void append(uci_section *section);
    /// Tells that the last section of its type now stands at `place`.
    void move_last_to(std::string_view type, std::size_t place);
    /// Tells that these sections are about to go.
    void remove(const std::unordered_set<uci_section *> &gone);

private:
    using Sections = std::vector<uci_section *>;

    const Sections *of(std::string_view type) const;

    std::unordered_map<std::string, Sections> types_;
};

} // namespace qorcfg
