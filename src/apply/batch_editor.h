#pragma once

#include "apply/batch_line.h"
#include "apply/section_places.h"
#include "apply/uci_package.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace qorcfg {

/// A line that could not be applied, counted from 1, and why.
struct BatchFault {
    std::size_t line;
    std::string reason;
};

/// Applies the text of a batch file to a package in memory. Lines that cannot be applied are left
/// out and reported; the others take effect.
///
/// A batch is a row of transactions: a run of deletion lines and the setting lines that follow it,
/// as the engine appends them. What the lines of one transaction say of places is meant for all of
/// them at once: indexes of deletions are those before its first line, and an added section goes to
/// the place that its lines give it.
class BatchEditor {
public:
    explicit BatchEditor(UciPackage &package);

    /// `name` is the package that every line has to speak of.
    std::vector<BatchFault> apply(std::string_view text, std::string_view name);

private:
    struct Command {
        std::size_t number;
        BatchLine line;
    };
    using Commands = std::vector<Command>;
    using Names = std::unordered_set<std::string_view>;

    /// A section that was added and whose place is not yet known.
    struct Addition {
        uci_section *section;
        std::string_view type;
        std::optional<std::size_t> place; ///< of the deleted section that it seems to follow
    };
    /// The section that was added last, and the place that its lines have named since.
    struct Placed {
        uci_section *section;
        std::string_view type;
        std::size_t place;
    };
    struct TypeCounts {
        std::vector<std::size_t> deleted; ///< places, in ascending order
        std::size_t added = 0;
    };

    /// What the deletion lines of a transaction remove, while they are resolved.
    struct Deletions {
        std::unordered_set<uci_section *> gone;
        std::map<std::string_view, std::size_t> first_left; ///< where to look on, by type
    };

    void run_transaction(const Commands &deletions, const Commands &settings);
    void delete_all(const Commands &deletions, const Names &made_again);
    uci_section *deleted_section(const BatchLine &line, Deletions &deletions);
    void delete_unless_made_again();

    void run_setting(const Command &command);
    bool make_section(const BatchLine &line);
    bool add_section(const BatchLine &line);
    bool change_option(const BatchLine &line);
    uci_section *section_of(const BatchLine &line);
    /// Puts the section that was added last to a place among those of its type.
    void place_addition(std::optional<std::size_t> place);
    SectionPlaces &places();

    void fault(std::size_t line, std::string reason);
    bool fail(std::string reason);

    UciPackage &package_;
    std::optional<SectionPlaces> places_; ///< none until the next look after a change of types
    std::optional<Addition> addition_;
    std::optional<Placed> placed_;
    std::map<std::string_view, TypeCounts> counts_;
    /// Sections that were emptied instead of deleted, since a later line makes them again.
    std::unordered_set<uci_section *> emptied_;
    uci_section *last_found_ = nullptr;
    std::string reason_;
    std::vector<BatchFault> faults_;
};

} // namespace qorcfg
