#include "support/generated_document.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qorcfg::test {

GeneratedDocument::GeneratedDocument(Roll roll, const std::string &mark, bool whole_sections)
    : roll_(std::move(roll)), whole_sections_(whole_sections)
{
    for (const auto &[name, kind] :
         {std::pair("named", named_sections), std::pair("more", named_sections),
          std::pair("num", numbered_sections), std::pair("rule", anonymous_sections),
          std::pair("zone", anonymous_sections)}) {
        types_.push_back({std::string(name) + mark, kind, true, {}});
    }
}

void GeneratedDocument::change()
{
    for (Type &type : types_) {
        if (whole_sections_ && roll_(12) == 1) {
            type.there = !type.there;
        }
        for (std::size_t changes = roll_(4); changes > 0; --changes) {
            if (type.kind == named_sections) {
                change_named(type);
            } else {
                change_array(type);
            }
        }
    }
    if (whole_sections_ && roll_(8) == 1) {
        shuffle(types_);
    }
}

Document GeneratedDocument::build() const
{
    Document doc;
    for (const Type &type : types_) {
        if (!type.there) {
            continue;
        }
        doc.container(type.name.c_str(), type.kind);
        for (const NamedSection &section : type.sections) {
            Section target = type.kind == named_sections
                                 ? doc.section(type.name.c_str(), section.name)
                                 : doc.append(type.name.c_str(), type.kind);
            for (const Option &option : section.options) {
                if (option.is_list) {
                    target.add_list(option.name.c_str(), option.values);
                } else {
                    target.add_even_empty(option.name.c_str(), option.values.front());
                }
            }
        }
    }
    return doc;
}

template <typename Row> void GeneratedDocument::shuffle(std::vector<Row> &rows)
{
    for (std::size_t left = rows.size(); left > 1; --left) {
        std::swap(rows[left - 1], rows[roll_(left)]);
    }
}

std::string GeneratedDocument::value()
{
    static const std::array<std::string, 22> pieces{
        "a",    "B",    "7",    " ",  "  ", "'",     "\"", "#",        ";",
        "=",    "\\",   "\\n",  "\t", "\n", "@x[0]", ".",  "\xc3\xa4", "\xf0\x9f\x98\x80",
        "\xff", "\xc3", "$(x)", "`"};
    std::string text;
    for (std::size_t count = 1 + roll_(5); count > 0; --count) {
        const std::size_t piece = roll_(pieces.size() + 1);
        // UCI stores no other control bytes than those among the pieces.
        constexpr std::size_t first = ' ';
        constexpr std::size_t count_of_bytes = 256;
        text += piece < pieces.size()
                    ? pieces.at(piece)
                    : std::string(1, static_cast<char>(first + roll_(count_of_bytes - first)));
    }
    return text;
}

GeneratedDocument::NamedSection GeneratedDocument::section(const std::string &name, bool named)
{
    NamedSection result{name, {}};
    const bool plain = named && !whole_sections_;
    const std::size_t count = roll_(4) + (plain ? 1 : 0);
    for (std::size_t i = 0; i < count; ++i) {
        Option option{std::string("o").append(std::to_string(i)), {}, false};
        option.is_list = !plain && roll_(4) == 1;
        for (std::size_t items = option.is_list ? roll_(4) : 1; items > 0; --items) {
            option.values.push_back(value());
        }
        if (!option.is_list && !plain && roll_(12) == 1) {
            option.values.front().clear();
        }
        result.options.push_back(std::move(option));
    }
    if (!plain) {
        shuffle(result.options);
    }
    return result;
}

void GeneratedDocument::change_named(Type &type)
{
    const std::string name = type.name + "_s" + std::to_string(roll_(6));
    const auto known = std::find_if(type.sections.begin(), type.sections.end(),
                                    [&](const auto &each) { return each.name == name; });
    if (known == type.sections.end()) {
        type.sections.push_back(section(name, true));
    } else if (whole_sections_ && roll_(3) == 1) {
        type.sections.erase(known);
    } else {
        *known = section(name, true);
    }
}

void GeneratedDocument::change_array(Type &type)
{
    auto &sections = type.sections;
    const auto place = [&](std::size_t count) {
        return sections.begin() + static_cast<std::ptrdiff_t>(roll_(count));
    };
    switch (roll_(sections.empty() ? 2 : 7)) {
    case 0:
    case 1: {
        const auto before = place(sections.size() + 1);
        sections.insert(before, section("", false));
        break;
    }
    case 2:
    case 3: {
        const auto changed = place(sections.size());
        *changed = section("", false);
        break;
    }
    case 4:
        sections.erase(place(sections.size()));
        break;
    case 5: {
        const auto one = place(sections.size());
        std::iter_swap(one, place(sections.size()));
        break;
    }
    default:
        sections.erase(place(sections.size()), sections.end());
    }
}

} // namespace qorcfg::test
