#include "platform/uci/export.h"

namespace qorcfg::uci {

namespace {

/// Types are written bare, but for those that would not be read back as they are.
void append_type(std::string &out, std::string_view type)
{
    if (type.find_first_of("'\"#;\\ \t\r\n\v\f") == std::string_view::npos) {
        out += type;
    } else {
        append_quoted(out, type);
    }
}

void append_line(std::string &out, std::string_view keyword, const char *name,
                 std::string_view value)
{
    out += keyword;
    out += name;
    out += ' ';
    append_quoted(out, value);
    out += '\n';
}

void append_option(std::string &out, const uci_option &option)
{
    if (option.type == UCI_TYPE_STRING) {
        append_line(out, "\toption ", option.e.name, option.v.string);
        return;
    }
    const uci_element *item = nullptr;
    uci_foreach_element(&option.v.list, item)
    {
        append_line(out, "\tlist ", option.e.name, item->name);
    }
}

} // namespace

void append_quoted(std::string &out, std::string_view text)
{
    out += '\'';
    for (const char c : text) {
        if (c == '\'') {
            out += "'\\''";
        } else {
            out += c;
        }
    }
    out += '\'';
}

std::string export_text(const Package &package, ExportForm form)
{
    std::string out;
    if (form.header) {
        out.append("package ").append(package.name()).append("\n");
    }
    const uci_element *e = nullptr;
    uci_foreach_element(&package.sections, e)
    {
        const uci_section *const section = uci_to_section(e);
        out += "\nconfig ";
        append_type(out, section->type);
        if (!section->anonymous || form.generated_names) {
            out += ' ';
            append_quoted(out, section->e.name);
        }
        out += '\n';
        const uci_element *option = nullptr;
        uci_foreach_element(&section->options, option)
        {
            append_option(out, *uci_to_option(option));
        }
    }
    return out += '\n';
}

} // namespace qorcfg::uci
