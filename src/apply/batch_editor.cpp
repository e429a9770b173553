#include "apply/batch_editor.h"

#include <algorithm>
#include <utility>

namespace qorcfg {

namespace {

std::string shown(std::string_view name)
{
    constexpr std::size_t enough = 80;
    return std::string(name.substr(0, enough)) + (name.size() > enough ? "..." : "");
}

std::string shown_section(const BatchLine &line)
{
    std::string text = line.by_type ? "@" : "";
    text += shown(line.section);
    if (line.by_type) {
        text += '[';
        text += line.position ? std::to_string(*line.position) : "";
        text += ']';
    }
    return text;
}

} // namespace

BatchEditor::BatchEditor(UciPackage &package) : package_(package) {}

SectionPlaces &BatchEditor::places()
{
    if (!places_) {
        places_.emplace(package_.get());
    }
    return *places_;
}

void BatchEditor::fault(std::size_t line, std::string reason)
{
    faults_.push_back({line, std::move(reason)});
}

bool BatchEditor::fail(std::string reason)
{
    reason_ = std::move(reason);
    return false;
}

std::vector<BatchFault> BatchEditor::apply(std::string_view text, std::string_view name)
{
    Commands deletions;
    Commands settings;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (end == std::string_view::npos) {
            // Its writer was stopped in the middle: what is there of a value is not the value.
            fault(number, "the line is cut off");
            break;
        }
        if (line.empty()) {
            continue;
        }
        const char *reason = nullptr;
        const auto command = parse_batch_line(line, reason);
        if (!command) {
            fault(number, reason);
        } else if (command->package != name) {
            fault(number, "the line is about package " + shown(command->package));
        } else if (!command->is_deletion()) {
            settings.push_back({number, *command});
        } else {
            if (!settings.empty()) {
                run_transaction(std::exchange(deletions, {}), std::exchange(settings, {}));
            }
            deletions.push_back({number, *command});
        }
    }
    run_transaction(deletions, settings);
    std::stable_sort(faults_.begin(), faults_.end(),
                     [](const BatchFault &a, const BatchFault &b) { return a.line < b.line; });
    return std::exchange(faults_, {});
}

void BatchEditor::run_transaction(const Commands &deletions, const Commands &settings)
{
    Names made;
    for (const auto &[number, line] : settings) {
        if (line.verb == BatchLine::Verb::set && line.option.empty()) {
            made.insert(line.section);
        }
    }
    counts_.clear();
    delete_all(deletions, made);
    for (const Command &command : settings) {
        run_setting(command);
    }
    place_addition({});
    delete_unless_made_again();
}

uci_section *BatchEditor::deleted_section(const BatchLine &line, Deletions &deletions)
{
    const auto is_gone = [&](uci_section *section) { return deletions.gone.count(section) != 0; };
    if (line.by_type && !line.position) {
        std::size_t &place = deletions.first_left[line.section];
        while (places().at(line.section, place) != nullptr &&
               is_gone(places().at(line.section, place))) {
            ++place;
        }
        return places().at(line.section, place);
    }
    uci_section *section =
        line.by_type ? places().at(line.section, *line.position) : package_.find(line.section);
    return section != nullptr && !is_gone(section) ? section : nullptr;
}

void BatchEditor::delete_all(const Commands &deletions, const Names &made_again)
{
    // All lines are resolved before the first of them takes effect.
    std::vector<std::pair<const Command *, uci_section *>> targets;
    Deletions found;
    for (const Command &command : deletions) {
        const BatchLine &line = command.line;
        uci_section *section = deleted_section(line, found);
        if (section == nullptr) {
            continue;
        }
        targets.emplace_back(&command, section);
        if (line.option.empty()) {
            found.gone.insert(section);
            if (line.by_type && line.position) {
                counts_[line.section].deleted.push_back(*line.position);
            }
        }
    }
    auto &gone = found.gone;
    for (auto &[type, count] : counts_) {
        std::sort(count.deleted.begin(), count.deleted.end());
    }
    for (const auto &[command, section] : targets) {
        const BatchLine &line = command->line;
        bool done = false;
        if (!line.option.empty()) {
            done = package_.delete_option(section, line.option);
        } else if (!line.by_type && made_again.count(line.section) != 0) {
            // It keeps its place among the others this way.
            emptied_.insert(section);
            gone.erase(section);
            done = package_.delete_options(section);
        } else {
            continue;
        }
        if (!done) {
            fault(command->number, package_.error());
        }
    }
    if (places_) {
        places_->remove(gone);
    }
    for (const auto &[command, section] : targets) {
        if (command->line.option.empty() && gone.count(section) != 0 &&
            !package_.delete_section(section)) {
            fault(command->number, package_.error());
        }
    }
    last_found_ = nullptr;
}

void BatchEditor::delete_unless_made_again()
{
    if (places_) {
        places_->remove(emptied_);
    }
    for (uci_section *section : std::exchange(emptied_, {})) {
        package_.delete_section(section);
    }
    last_found_ = nullptr;
}

void BatchEditor::run_setting(const Command &command)
{
    const BatchLine &line = command.line;
    bool done = false;
    if (line.verb == BatchLine::Verb::add) {
        done = add_section(line);
    } else if (line.option.empty()) {
        done = make_section(line);
    } else {
        done = change_option(line);
    }
    if (!done) {
        fault(command.number, reason_);
    }
}

bool BatchEditor::make_section(const BatchLine &line)
{
    place_addition({});
    uci_section *section = package_.find(line.section);
    if (section == nullptr) {
        section = package_.make_section(line.section, line.value);
        if (section == nullptr) {
            return fail(package_.error());
        }
        if (places_) {
            places_->append(section);
        }
    } else if (line.value != section->type) {
        if (!package_.set_type(section, line.value)) {
            return fail(package_.error());
        }
        places_.reset();
    }
    emptied_.erase(section);
    last_found_ = section;
    return true;
}

bool BatchEditor::add_section(const BatchLine &line)
{
    place_addition({});
    uci_section *section = package_.add_section(line.section);
    if (section == nullptr) {
        return fail(package_.error());
    }
    if (places_) {
        places_->append(section);
    }
    TypeCounts &count = counts_[line.section];
    std::optional<std::size_t> place;
    if (count.added < count.deleted.size()) {
        place = count.deleted[count.added];
    }
    ++count.added;
    addition_ = Addition{section, line.section, place};
    return true;
}

void BatchEditor::place_addition(std::optional<std::size_t> place)
{
    placed_.reset();
    if (!addition_) {
        return;
    }
    const Addition added = *std::exchange(addition_, {});
    if (!place) {
        // Nothing was said of the section but that it exists. Changed sections are deleted and
        // added in the same order, so it comes for the next one that was deleted.
        place = added.place;
    }
    if (place && *place + 1 < places().count(added.type)) {
        package_.move_before(added.section, places().at(added.type, *place));
        places().move_last_to(added.type, *place);
    }
}

uci_section *BatchEditor::section_of(const BatchLine &line)
{
    if (!line.by_type) {
        if (last_found_ == nullptr || line.section != last_found_->e.name) {
            last_found_ = package_.find(line.section);
        }
        return last_found_;
    }
    const std::size_t place = line.position.value_or(0);
    if (addition_ && addition_->type == line.section) {
        uci_section *section = addition_->section;
        place_addition(place);
        placed_ = Placed{section, line.section, place};
        return section;
    }
    // Where the package has fewer sections than its writer thought, the new one stands before the
    // place that its lines name.
    const bool added = placed_ && placed_->type == line.section && placed_->place == place;
    return added ? placed_->section : places().at(line.section, place);
}

bool BatchEditor::change_option(const BatchLine &line)
{
    uci_section *section = section_of(line);
    if (section == nullptr) {
        return fail("there is no section " + shown_section(line));
    }
    const bool done = line.verb == BatchLine::Verb::set
                          ? package_.set_option(section, line.option, line.value)
                          : package_.add_item(section, line.option, line.value);
    return done || fail(package_.error());
}

} // namespace qorcfg
