#include "platform/uci/context.h"
#include "platform/uci/edit.h"
#include "platform/uci/export.h"
#include "platform/uci/lookup.h"
#include "platform/uci/names.h"

#include <cstdlib>
#include <cstring>

using namespace qorcfg::uci;

namespace {

Package &package_at(uci_package *p)
{
    return static_cast<Package &>(*p);
}

/// A change that a caller described: looked up first, logged after.
int change(uci_context *ctx, uci_ptr *ptr, bool complete, int (*apply)(uci_ptr &, Log))
{
    return call(ctx, [&](Context &) {
        if (ptr == nullptr) {
            return static_cast<int>(UCI_ERR_INVAL);
        }
        const int result = expand(ctx, *ptr, complete);
        return result == UCI_OK ? apply(*ptr, Log::yes) : result;
    });
}

std::string read_stream(FILE *stream)
{
    std::string text;
    std::string block(16384, '\0');
    while (const auto got = std::fread(block.data(), 1, block.size(), stream)) {
        text.append(block, 0, got);
    }
    return text;
}

} // namespace

uci_context *uci_alloc_context(void)
{
    try {
        return std::make_unique<Context>().release();
    } catch (...) {
        return nullptr;
    }
}

void uci_free_context(uci_context *ctx)
{
    if (ctx != nullptr) {
        std::unique_ptr<Context>(&Context::of(*ctx)).reset();
    }
}

int uci_set_confdir(uci_context *ctx, const char *dir)
{
    return call(ctx, [&](Context &context) { return context.set_confdir(dir); });
}

int uci_set_savedir(uci_context *ctx, const char *dir)
{
    return call(ctx, [&](Context &context) { return context.set_savedir(dir); });
}

int uci_set_conf2dir(uci_context *ctx, const char *dir)
{
    return call(ctx, [&](Context &context) { return context.set_conf2dir(dir); });
}

int uci_add_delta_path(uci_context *ctx, const char *dir)
{
    return call(ctx, [&](Context &context) { return context.add_delta_path(dir); });
}

void uci_get_errorstr(uci_context *ctx, char **dest, const char *prefix)
{
    if (dest != nullptr) {
        *dest = nullptr;
    }
    if (ctx == nullptr) {
        return;
    }
    try {
        const std::string text = Context::of(*ctx).message(prefix);
        if (dest != nullptr) {
            *dest = ::strdup(text.c_str()); // the caller frees it
        } else {
            std::fprintf(stderr, "%s\n", text.c_str());
        }
    } catch (...) {
        std::fputs("Out of memory\n", stderr);
    }
}

void uci_perror(uci_context *ctx, const char *prefix)
{
    uci_get_errorstr(ctx, nullptr, prefix);
}

int uci_load(uci_context *ctx, const char *name, uci_package **package)
{
    return call(ctx, [&](Context &context) {
        Package *loaded = nullptr;
        const int result = name != nullptr ? context.load(name, loaded) : UCI_ERR_INVAL;
        if (result == UCI_OK && package != nullptr) {
            *package = loaded;
        }
        return result;
    });
}

int uci_unload(uci_context *ctx, uci_package *p)
{
    return call(ctx, [&](Context &context) {
        if (p == nullptr) {
            return UCI_ERR_INVAL;
        }
        context.unload(package_at(p));
        return UCI_OK;
    });
}

int uci_import(uci_context *ctx, FILE *stream, const char *name, uci_package **package, bool single)
{
    return call(ctx, [&](Context &context) {
        if (stream == nullptr) {
            return static_cast<int>(UCI_ERR_INVAL);
        }
        Package *imported =
            package != nullptr && *package != nullptr ? &package_at(*package) : nullptr;
        const int result = context.import(read_stream(stream), name, imported, single);
        if (result == UCI_OK && package != nullptr) {
            *package = imported;
        }
        return result;
    });
}

int uci_export(uci_context *ctx, FILE *stream, uci_package *package, bool header)
{
    return call(ctx, [&](Context &context) {
        if (stream == nullptr) {
            return UCI_ERR_INVAL;
        }
        const ExportForm form{header, (context.flags & UCI_FLAG_EXPORT_NAME) != 0};
        std::string text;
        if (package != nullptr) {
            text = export_text(package_at(package), form);
        } else {
            const uci_element *e = nullptr;
            uci_foreach_element(&context.root, e)
            {
                text += export_text(static_cast<const Package &>(*uci_to_package(e)), form);
            }
        }
        const bool written = std::fwrite(text.data(), 1, text.size(), stream) == text.size();
        return std::fflush(stream) == 0 && written ? UCI_OK : UCI_ERR_IO;
    });
}

int uci_list_configs(uci_context *ctx, char ***list)
{
    return call(ctx, [&](Context &context) {
        return list != nullptr ? context.list_configs(*list) : UCI_ERR_INVAL;
    });
}

int uci_lookup_ptr(uci_context *ctx, uci_ptr *ptr, char *str, bool extended)
{
    return call(ctx, [&](Context &context) {
        if (ptr == nullptr) {
            return static_cast<int>(UCI_ERR_INVAL);
        }
        const int result = str != nullptr ? context.parse(*ptr, str) : UCI_OK;
        return result == UCI_OK ? context.look_up(*ptr, extended) : result;
    });
}

int uci_lookup_next(uci_context *ctx, uci_element **e, uci_list *list, const char *name)
{
    return call(ctx, [&](Context &) {
        if (e == nullptr || list == nullptr || name == nullptr) {
            return UCI_ERR_INVAL;
        }
        uci_element *one = nullptr;
        uci_foreach_element(list, one)
        {
            if (one->name != nullptr && std::strcmp(one->name, name) == 0) {
                *e = one;
                return UCI_OK;
            }
        }
        *e = nullptr;
        return UCI_ERR_NOTFOUND;
    });
}

uci_package *uci_lookup_package(uci_context *ctx, const char *name)
{
    return ctx != nullptr && name != nullptr ? Context::of(*ctx).find(name) : nullptr;
}

uci_section *uci_lookup_section(uci_context *, uci_package *p, const char *name)
{
    return p != nullptr && name != nullptr ? package_at(p).find(name) : nullptr;
}

uci_option *uci_lookup_option(uci_context *, uci_section *s, const char *name)
{
    return s != nullptr && name != nullptr ? static_cast<Section &>(*s).find(name) : nullptr;
}

const char *uci_lookup_option_string(uci_context *ctx, uci_section *s, const char *name)
{
    const uci_option *const option = uci_lookup_option(ctx, s, name);
    return option != nullptr && option->type == UCI_TYPE_STRING ? option->v.string : nullptr;
}

void uci_parse_section(uci_section *s, const uci_parse_option *opts, int n_opts, uci_option **tb)
{
    for (int i = 0; i < n_opts; ++i) {
        uci_option *const option = uci_lookup_option(nullptr, s, opts[i].name);
        tb[i] = option != nullptr && option->type == opts[i].type ? option : nullptr;
    }
}

int uci_add_section(uci_context *ctx, uci_package *p, const char *type, uci_section **res)
{
    return call(ctx, [&](Context &) {
        if (p == nullptr || type == nullptr) {
            return UCI_ERR_INVAL;
        }
        Package &package = package_at(p);
        Section &section = package.add_section(type, nullptr);
        log_change(package, UCI_CMD_ADD, section.e.name, nullptr, type);
        if (res != nullptr) {
            *res = &section;
        }
        return UCI_OK;
    });
}

int uci_set(uci_context *ctx, uci_ptr *ptr)
{
    return change(ctx, ptr, false, set);
}
int uci_add_list(uci_context *ctx, uci_ptr *ptr)
{
    return change(ctx, ptr, false, add_list);
}
int uci_del_list(uci_context *ctx, uci_ptr *ptr)
{
    return change(ctx, ptr, false, del_list);
}
int uci_rename(uci_context *ctx, uci_ptr *ptr)
{
    return change(ctx, ptr, true, rename);
}
int uci_delete(uci_context *ctx, uci_ptr *ptr)
{
    return change(ctx, ptr, true, remove);
}

int uci_reorder_section(uci_context *ctx, uci_section *s, int pos)
{
    return call(ctx, [&](Context &) {
        return s != nullptr ? reorder(static_cast<Section &>(*s), pos, Log::yes) : UCI_ERR_INVAL;
    });
}

int uci_save(uci_context *ctx, uci_package *p)
{
    return call(ctx, [&](Context &context) {
        return p != nullptr ? context.save(package_at(p)) : UCI_ERR_INVAL;
    });
}

int uci_revert(uci_context *ctx, uci_ptr *ptr)
{
    return call(ctx, [&](Context &context) {
        return ptr != nullptr ? context.revert(*ptr) : UCI_ERR_INVAL;
    });
}

int uci_commit(uci_context *ctx, uci_package **package, bool overwrite)
{
    return call(ctx, [&](Context &context) {
        if (package == nullptr || *package == nullptr) {
            return static_cast<int>(UCI_ERR_INVAL);
        }
        Package *committed = &package_at(*package);
        const int result = context.commit(committed, overwrite);
        *package = committed;
        return result;
    });
}

int uci_parse_argument(uci_context *ctx, FILE *stream, char **str, char **result)
{
    return call(ctx, [&](Context &context) {
        return str != nullptr && result != nullptr && (*str != nullptr || stream != nullptr)
                   ? context.parse_argument(stream, *str, *result)
                   : UCI_ERR_INVAL;
    });
}

bool uci_validate_text(const char *str)
{
    return str != nullptr && is_value(str);
}
