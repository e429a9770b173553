#pragma once

#include "engine/json.h"
#include "engine/new_json_util.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qorcfg {

/// One row of an option table: the UCI option and the store key that feeds it, with a
/// transformation of the key's text where it does not travel as it is.
struct Option {
    const char *option;
    const char *key;
    std::string (*transform)(const std::string &value) = nullptr;
};

/// Transformation of an option row: the first `Limit` bytes of the value.
template <std::size_t Limit> std::string cut(const std::string &value)
{
    return value.substr(0, Limit);
}

class Document;

/// Handle to the options of one section of a document; valid as long as the document. Options keep
/// the order in which they were first added; adding one again replaces its value in place. What is
/// added to a section that could not be made is dropped.
class Section {
public:
    /// Adds each row of the table from the store, in order; empty values are left out.
    Section &add(std::span<const Option> options);
    /// Adds one option, unless the value is empty.
    Section &add(const char *option, std::string_view value);
    /// Adds one option even when its value is empty, for services that must see it cleared.
    Section &add_even_empty(const char *option, std::string_view value);
    /// Adds each row of the table from the store, in order, empty values too.
    Section &add_even_empty(std::span<const Option> options);
    /// Adds an option whose JSON type is an integer.
    Section &add_int(const char *option, int number);
    /// Adds a list with one text per item, empty lists and items included.
    Section &add_list(const char *option, std::span<const std::string> items);
    /// The options as a json-c object, null when memory ran out.
    json_object *get() const { return options_; }

private:
    friend class Document;
    Section(Document &document, json_object *options) : document_(document), options_(options) {}

    Document &document_;
    json_object *options_;
};

/// A package document: {section type: container of sections}, built by one run of a component and
/// handed to the engine. Belongs to one thread.
class Document {
public:
    Document();
    /// A document from JSON text; no object means an empty document.
    static Document parse(std::string_view text);

    /// Section `name` of the named sections of `type`, made on first use. A store value or a device
    /// file may give the name.
    Section section(const char *type, const std::string &name);
    /// The same for a section that a component can do without: when memory for it cannot be had,
    /// the document goes out without it, and what is added to it is dropped.
    Section optional_section(const char *type, const std::string &name);
    /// A new section at the end of the numbered or anonymous sections of `type`.
    Section append(const char *type, int kind);
    /// The container of a type, made on first use; null when memory ran out.
    json_object *container(const char *type, int kind);

    json_object *get() const { return root_.get(); }
    /// False once memory for a part of the document could not be had: it must not be handed over.
    bool complete() const { return complete_; }
    void mark_incomplete() { complete_ = false; }
    /// Makes an incomplete document an empty one that may be handed over, for services of which a
    /// part is worse than nothing. A document that could itself not be made stays incomplete.
    void drop_incomplete_parts();

private:
    explicit Document(Json root);
    json_object *named_options(const char *type, const std::string &name);

    Json root_;
    bool complete_ = true;
};

} // namespace qorcfg
