#include "wireless/uci_access.h"

#include "core/base/xmalloc.h"
#include "engine/document.h"
#include "platform/path_root.h"

#include <cstdio>
#include <uci.h>

namespace qorcfg {

namespace {

constexpr const char *config_folder = "/etc/config";
constexpr const char *saved_folder = "/tmp/.uci";
constexpr const char *error_prefix = "get_uci_option_value Error";
constexpr std::size_t expression_limit = 255;

/// Reports the context's last failure. (libuci's own report grows by a newline each time.)
void report_error(uci_context *context)
{
    char *text = nullptr;
    uci_get_errorstr(context, &text, error_prefix);
    const std::unique_ptr<char, FreeMemory> owner(text);
    if (text != nullptr) {
        std::string line(text);
        line.erase(line.find_last_not_of('\n') + 1);
        std::fprintf(stderr, "%s\n", line.c_str());
    }
}

/// An item of a list as shells read it.
std::string quoted_item(const std::string &item)
{
    if (item.find_first_of(" \t\r\n") == std::string::npos) {
        return item;
    }
    std::string quoted = "'";
    for (const char byte : item) {
        quoted += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
    }
    return quoted + "'";
}

void print_list(const uci_option &option)
{
    std::string line;
    const char *separator = ""; // an item may be empty
    const uci_element *item = nullptr;
    uci_foreach_element(&option.v.list, item)
    {
        line += separator + quoted_item(item->name);
        separator = " ";
    }
    std::printf("%s\n", line.c_str());
}

void take_option(const uci_option &option, std::string *value, std::size_t size)
{
    switch (option.type) {
    case UCI_TYPE_STRING:
        if (value != nullptr && size > 0) {
            *value = std::string(option.v.string).substr(0, size - 1);
        }
        break;
    case UCI_TYPE_LIST:
        if (value == nullptr) {
            print_list(option);
        }
        break;
    default:
        if (value == nullptr) {
            std::printf("<unknown>\n");
        }
    }
}

bool is_complete(const uci_ptr &found)
{
    return (static_cast<int>(found.flags) & static_cast<int>(uci_ptr::UCI_LOOKUP_COMPLETE)) != 0;
}

} // namespace

void FreeUciContext::operator()(uci_context *context) const noexcept
{
    uci_free_context(context);
}

UciContext open_uci_context()
{
    UciContext context(uci_alloc_context());
    if (!context) {
        return context;
    }
    uci_set_confdir(context.get(), rooted(config_folder).c_str());
    // Where it is the default already, naming it again would have its changes read twice.
    if (const std::string saved = rooted(saved_folder); saved != context->savedir) {
        uci_set_savedir(context.get(), saved.c_str());
    }
#ifdef QORCFG_UCI_HAS_CONF2DIR
    if (!path_root().empty()) {
        // Packages of the host's override folder would stand in for those below the root.
        uci_set_conf2dir(context.get(), nullptr);
    }
#endif
    return context;
}

std::unique_lock<std::mutex> lock_uci()
{
    static std::mutex mutex;
    return std::unique_lock(mutex);
}

int get_uci_option_value(const char *path, std::string *value, std::size_t size)
{
    const auto lock = lock_uci();
    const UciContext context = open_uci_context();
    if (!context) {
        std::fprintf(stderr, "Out of memory\n");
        return 1;
    }
    std::string text(path); // the lookup cuts it up, and its parts must stay
    uci_ptr found{};
    if (uci_lookup_ptr(context.get(), &found, text.data(), true) != UCI_OK) {
        report_error(context.get());
        return 1;
    }
    if (!is_complete(found)) {
        return 1;
    }
    if (found.last->type == UCI_TYPE_OPTION) {
        take_option(*found.o, value, size);
    } else if (found.last->type == UCI_TYPE_SECTION && value != nullptr && size > 0) {
        *value = std::string(found.s->type).substr(0, size - 1);
    }
    return 0;
}

int uci_add_named_section(uci_context *context, uci_package *package, const char *package_name,
                          const char *type, const char *name)
{
    uci_section *section = nullptr;
    if (uci_add_section(context, package, type, &section) != UCI_OK ||
        uci_save(context, package) != UCI_OK) {
        return 1;
    }
    if (name == nullptr) {
        return 0;
    }
    const std::string expression =
        cut<expression_limit>(std::string(package_name) + "." + section->e.name + "=" + name);
    return uci_rename_section(context, expression.c_str()) == UCI_OK &&
                   uci_save(context, package) == UCI_OK
               ? 0
               : 1;
}

int uci_rename_section(uci_context *context, const char *expression)
{
    std::string text = cut<expression_limit>(expression);
    uci_ptr found{};
    if (uci_lookup_ptr(context, &found, text.data(), true) != UCI_OK) {
        report_error(context);
        return 1;
    }
    const int renamed = uci_rename(context, &found);
    return renamed == UCI_OK ? uci_save(context, found.p) : renamed;
}

} // namespace qorcfg
