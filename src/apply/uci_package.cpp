#include "apply/uci_package.h"

#include "platform/path_root.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace qorcfg {

namespace {

struct FreeText {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    void operator()(char *text) const { std::free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

struct CloseStream {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory)
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

bool is_name(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               c == '_';
    });
}

/// Types are written to the file without quotes: what would not be read back would take the whole
/// package with it.
bool is_type(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return c > ' ' && c < 0x7f && std::strchr("'\"#;\\", c) == nullptr;
    });
}

constexpr const char *bad_type = "a section of this type cannot be stored";
constexpr const char *bad_name = "a section of this name cannot be stored";

} // namespace

UciPackage::UciPackage() : context_(uci_alloc_context())
{
    if (!context_) {
        throw std::bad_alloc();
    }
#ifdef QORCFG_UCI_HAS_CONF2DIR
    // A package of that folder would stand in for the one that is to be changed.
    uci_set_conf2dir(context_.get(), nullptr);
#endif
}

bool UciPackage::done(int result)
{
    if (result == UCI_OK) {
        return true;
    }
    char *message = nullptr;
    uci_get_errorstr(context_.get(), &message, nullptr);
    const Text owner(message);
    error_ = message == nullptr ? "out of memory" : message;
    while (!error_.empty() && (error_.back() == '\n' || error_.back() == ' ')) {
        error_.pop_back();
    }
    return false;
}

UciPackage::Read UciPackage::loaded(int result)
{
    if (done(result)) {
        return Read::done;
    }
    switch (result) {
    case UCI_ERR_NOTFOUND:
        return Read::missing;
    case UCI_ERR_PARSE:
        return Read::damaged;
    default:
        return Read::failed;
    }
}

UciPackage::Read UciPackage::read(const std::string &path)
{
    return loaded(uci_load(context_.get(), path.c_str(), &package_));
}

UciPackage::Read UciPackage::read_with_changes(const std::string &name)
{
    const std::string config = rooted("/etc/config");
    const std::string changes = rooted("/tmp/.uci");
    if (config != context_->confdir) {
        uci_set_confdir(context_.get(), config.c_str());
    }
    if (changes != context_->savedir) {
        uci_set_savedir(context_.get(), changes.c_str());
    }
    return loaded(uci_load(context_.get(), name.c_str(), &package_));
}

bool UciPackage::make_empty(const std::string &name)
{
    std::string nothing = "\n";
    const Stream stream(::fmemopen(nothing.data(), nothing.size(), "r"));
    return stream &&
           done(uci_import(context_.get(), stream.get(), name.c_str(), &package_, true)) &&
           package_ != nullptr;
}

std::optional<std::string> UciPackage::text()
{
    char *content = nullptr;
    std::size_t size = 0;
    Stream stream(::open_memstream(&content, &size));
    if (!stream) {
        error_ = "out of memory";
        return std::nullopt;
    }
    const int result = uci_export(context_.get(), stream.get(), package_, false);
    const bool written = std::ferror(stream.get()) == 0;
    const bool closed = std::fclose(stream.release()) == 0;
    const Text owner(content);
    if (!done(result)) {
        return std::nullopt;
    }
    if (!written || !closed) {
        error_ = "out of memory";
        return std::nullopt;
    }
    return std::string(content, size);
}

uci_section *UciPackage::find(std::string_view name) const
{
    return uci_lookup_section(context_.get(), package_, std::string(name).c_str());
}

uci_section *UciPackage::make_section(std::string_view name, std::string_view type)
{
    if (!is_name(name) || !is_type(type)) {
        error_ = is_name(name) ? bad_type : bad_name;
        return nullptr;
    }
    const std::string name_text(name);
    const std::string type_text(type);
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.section = name_text.c_str();
    ptr.value = type_text.c_str();
    return done(uci_set(context_.get(), &ptr)) ? ptr.s : nullptr;
}

uci_section *UciPackage::add_section(std::string_view type)
{
    if (!is_type(type)) {
        error_ = bad_type;
        return nullptr;
    }
    uci_section *section = nullptr;
    const int result =
        uci_add_section(context_.get(), package_, std::string(type).c_str(), &section);
    return done(result) ? section : nullptr;
}

bool UciPackage::set_type(uci_section *section, std::string_view type)
{
    if (!is_type(type)) {
        error_ = bad_type;
        return false;
    }
    const std::string type_text(type);
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.s = section;
    ptr.section = section->e.name;
    ptr.value = type_text.c_str();
    return done(uci_set(context_.get(), &ptr));
}

bool UciPackage::delete_section(uci_section *section)
{
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.s = section;
    return done(uci_delete(context_.get(), &ptr));
}

void UciPackage::move_before(uci_section *section, uci_section *before)
{
    // libuci's own call counts the sections from the first one: with thousands of them to place,
    // that takes seconds. Nothing but the list knows of the order.
    uci_list &link = section->e.list;
    link.prev->next = link.next;
    link.next->prev = link.prev;
    link.next = &before->e.list;
    link.prev = before->e.list.prev;
    link.prev->next = &link;
    link.next->prev = &link;
}

bool UciPackage::check_value(std::string_view option, std::string_view value)
{
    if (!is_name(option)) {
        error_ = "an option of this name cannot be stored";
        return false;
    }
    if (value.find('\0') != std::string_view::npos ||
        !uci_validate_text(std::string(value).c_str())) {
        error_ = "a value with such a control byte cannot be stored";
        return false;
    }
    return true;
}

bool UciPackage::store_value(uci_section *section, std::string_view option, std::string_view value,
                             ValueCall &call)
{
    if (!check_value(option, value)) {
        return false;
    }
    const std::string option_text(option);
    const std::string value_text(value);
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.s = section;
    ptr.option = option_text.c_str();
    ptr.value = value_text.c_str();
    return done(call(context_.get(), &ptr));
}

bool UciPackage::set_option(uci_section *section, std::string_view option, std::string_view value)
{
    return value.empty() ? delete_option(section, option)
                         : store_value(section, option, value, uci_set);
}

bool UciPackage::add_item(uci_section *section, std::string_view option, std::string_view value)
{
    return store_value(section, option, value, uci_add_list);
}

bool UciPackage::delete_option(uci_section *section, std::string_view option)
{
    const std::string option_text(option);
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.s = section;
    ptr.o = uci_lookup_option(context_.get(), section, option_text.c_str());
    ptr.option = option_text.c_str();
    return ptr.o == nullptr || done(uci_delete(context_.get(), &ptr));
}

bool UciPackage::delete_options(uci_section *section)
{
    std::vector<std::string> names;
    uci_element *element = nullptr;
    uci_foreach_element(&section->options, element)
    {
        names.emplace_back(element->name);
    }
    return std::all_of(names.begin(), names.end(),
                       [&](const std::string &name) { return delete_option(section, name); });
}

} // namespace qorcfg
