#include "engine/document.h"

#include "platform/config_value.h"

namespace qorcfg {

namespace {

std::string option_value(const Option &row)
{
    std::string value = config_value(row.key);
    return row.transform == nullptr ? value : row.transform(value);
}

} // namespace

Section &Section::add(std::span<const Option> options)
{
    for (const Option &row : options) {
        add(row.option, option_value(row));
    }
    return *this;
}

Section &Section::add_even_empty(std::span<const Option> options)
{
    for (const Option &row : options) {
        add_even_empty(row.option, option_value(row));
    }
    return *this;
}

Section &Section::add(const char *option, std::string_view value)
{
    if (options_ != nullptr && !json_add_string(options_, option, value)) {
        document_.mark_incomplete();
    }
    return *this;
}

Section &Section::add_even_empty(const char *option, std::string_view value)
{
    Json text = Json::string(value);
    if (options_ != nullptr && (!text || !json_set(options_, option, std::move(text)))) {
        document_.mark_incomplete();
    }
    return *this;
}

Section &Section::add_int(const char *option, int number)
{
    if (options_ != nullptr && !json_add_int(options_, option, number)) {
        document_.mark_incomplete();
    }
    return *this;
}

Section &Section::add_list(const char *option, std::span<const std::string> items)
{
    Json list = Json::array();
    for (const std::string &item : items) {
        Json text = Json::string(item);
        if (!text || !json_append(list.get(), std::move(text))) {
            document_.mark_incomplete();
        }
    }
    if (options_ != nullptr && !json_set(options_, option, std::move(list))) {
        document_.mark_incomplete();
    }
    return *this;
}

Document::Document() : Document(Json::object()) {}

Document::Document(Json root) : root_(std::move(root)), complete_(static_cast<bool>(root_)) {}

void Document::drop_incomplete_parts()
{
    if (!complete_ && root_) {
        *this = Document();
    }
}

Document Document::parse(std::string_view text)
{
    Json root = parse_json(text, JsonSyntax::lenient);
    return is_json_object(root.get()) ? Document(std::move(root)) : Document();
}

json_object *Document::container(const char *type, int kind)
{
    json_object *container = json_get_member(root_.get(), type);
    if (container != nullptr) {
        return container;
    }
    Json made = new_section_container(kind);
    container = made.get();
    if (!made || !json_set(root_.get(), type, std::move(made))) {
        mark_incomplete();
        return nullptr;
    }
    return container;
}

json_object *Document::named_options(const char *type, const std::string &name)
{
    json_object *sections = container(type, named_sections);
    if (json_object *options = json_get_member(sections, name.c_str())) {
        return options;
    }
    Json made = Json::object();
    json_object *options = made.get();
    return made && json_set(sections, name.c_str(), std::move(made)) ? options : nullptr;
}

Section Document::section(const char *type, const std::string &name)
{
    json_object *options = named_options(type, name);
    if (options == nullptr) {
        mark_incomplete();
    }
    return {*this, options};
}

Section Document::optional_section(const char *type, const std::string &name)
{
    return {*this, named_options(type, name)};
}

Section Document::append(const char *type, int kind)
{
    json_object *sections = container(type, kind);
    Json made = Json::object();
    json_object *options = made.get();
    if (!made || !json_append(sections, std::move(made))) {
        mark_incomplete();
        options = nullptr;
    }
    return {*this, options};
}

} // namespace qorcfg
