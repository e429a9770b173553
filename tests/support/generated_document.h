#pragma once

#include "engine/document.h"

#include <functional>
#include <string>
#include <vector>

namespace qorcfg::test {

/// Makes a choice: a number below `sides`, which is at least 1.
using Roll = std::function<std::size_t(std::size_t sides)>;

/// A document that changes by chance, as those of components do: sections of all three kinds come,
/// change, move and go, with options and lists of any text that a setting can hold.
class GeneratedDocument {
public:
    /// `mark` tells the types and sections of this document from those of others. `whole_sections`:
    /// the document is written section by section. Option by option, lists and sections of named
    /// types do not come and go.
    GeneratedDocument(Roll roll, const std::string &mark, bool whole_sections);

    void change();
    Document build() const;

private:
    struct Option {
        std::string name;
        std::vector<std::string> values;
        bool is_list = false;
    };
    struct NamedSection {
        std::string name; ///< of a named one
        std::vector<Option> options;
    };
    struct Type {
        std::string name;
        SectionKind kind;
        bool there = true;
        std::vector<NamedSection> sections;
    };

    template <typename Row> void shuffle(std::vector<Row> &rows);
    std::string value();
    NamedSection section(const std::string &name, bool named);
    void change_named(Type &type);
    void change_array(Type &type);

    Roll roll_;
    bool whole_sections_;
    std::vector<Type> types_;
};

} // namespace qorcfg::test
