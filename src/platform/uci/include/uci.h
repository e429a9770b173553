/* Unified configuration interface: the C interface of the embedded library.
 *
 * Names, types and results are those that programs written for the device's libuci expect, so that
 * the code above never knows which of the two it was built with. The structures may be read; only
 * the members that callers of libuci fill themselves (those of struct uci_ptr, the flags of a
 * context) may be written. A context and everything in it belongs to one thread at a time; contexts
 * share nothing. */
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#define UCI_CONFDIR "/etc/config"
#define UCI_SAVEDIR "/tmp/.uci"
#define UCI_CONF2DIR "/var/run/uci"

enum {
    UCI_OK = 0,
    UCI_ERR_MEM,
    UCI_ERR_INVAL,
    UCI_ERR_NOTFOUND,
    UCI_ERR_IO,
    UCI_ERR_PARSE,
    UCI_ERR_DUPLICATE,
    UCI_ERR_UNKNOWN,
    UCI_ERR_LAST
};

enum uci_type {
    UCI_TYPE_UNSPEC = 0,
    UCI_TYPE_DELTA = 1,
    UCI_TYPE_PACKAGE = 2,
    UCI_TYPE_SECTION = 3,
    UCI_TYPE_OPTION = 4,
    UCI_TYPE_PATH = 5,
    UCI_TYPE_BACKEND = 6,
    UCI_TYPE_ITEM = 7,
    UCI_TYPE_HOOK = 8
};

enum uci_option_type { UCI_TYPE_STRING = 0, UCI_TYPE_LIST = 1 };

/* STRICT: one bad line makes a package unreadable, otherwise bad lines are passed over. PERROR:
 * such lines are reported on standard error. EXPORT_NAME: anonymous sections are exported under
 * their generated names. SAVED_DELTA: the changes read from the save folder are kept in
 * saved_delta. */
enum uci_flags {
    UCI_FLAG_STRICT = (1 << 0),
    UCI_FLAG_PERROR = (1 << 1),
    UCI_FLAG_EXPORT_NAME = (1 << 2),
    UCI_FLAG_SAVED_DELTA = (1 << 3)
};

enum uci_command {
    UCI_CMD_ADD,
    UCI_CMD_REMOVE,
    UCI_CMD_CHANGE,
    UCI_CMD_RENAME,
    UCI_CMD_REORDER,
    UCI_CMD_LIST_ADD,
    UCI_CMD_LIST_DEL
};

struct uci_list {
    struct uci_list *next;
    struct uci_list *prev;
};

/* The common head of everything that is kept in a list. */
struct uci_element {
    struct uci_list list;
    enum uci_type type;
    char *name;
};

struct uci_context {
    struct uci_list root; /* loaded packages */
    enum uci_flags flags;
    char *confdir;
    char *savedir;
    char *conf2dir;
    struct uci_list delta_path; /* further folders with pending changes, beside savedir */
    int err;                    /* result of the last call */
};

struct uci_package {
    struct uci_element e;
    struct uci_list sections;
    struct uci_context *ctx;
    bool has_delta; /* changes are logged and go through the save folder */
    char *path;
    int n_section; /* sections made so far; deletions do not reduce it */
    struct uci_list delta;
    struct uci_list saved_delta;
};

struct uci_section {
    struct uci_element e;
    struct uci_list options;
    struct uci_package *package;
    bool anonymous;
    char *type;
};

struct uci_option {
    struct uci_element e;
    struct uci_section *section;
    enum uci_option_type type;
    union {
        struct uci_list list; /* struct uci_element whose name is the item */
        char *string;
    } v;
};

/* One change: e.name is the option or NULL. */
struct uci_delta {
    struct uci_element e;
    enum uci_command cmd;
    char *section;
    char *value;
};

/* What a call is about, by name, by pointer or by both. Zero it before each use. */
struct uci_ptr {
    enum uci_type target;
    /* In C++ these are members: uci_ptr::UCI_LOOKUP_COMPLETE. */
    enum {
        UCI_LOOKUP_DONE = (1 << 0),
        UCI_LOOKUP_COMPLETE = (1 << 1),
        UCI_LOOKUP_EXTENDED = (1 << 2)
    } flags;
    struct uci_package *p;
    struct uci_section *s;
    struct uci_option *o;
    struct uci_element *last;
    const char *package;
    const char *section;
    const char *option;
    const char *value;
};

struct uci_parse_option {
    const char *name;
    enum uci_option_type type;
};

/* Contexts. uci_alloc_context gives NULL when memory is short. The folders need not exist. */
struct uci_context *uci_alloc_context(void);
void uci_free_context(struct uci_context *ctx);
int uci_set_confdir(struct uci_context *ctx, const char *dir);
int uci_set_savedir(struct uci_context *ctx, const char *dir);
/* A package that exists in this folder is used in place of the one in confdir; NULL: no such
 * folder. */
int uci_set_conf2dir(struct uci_context *ctx, const char *dir);
int uci_add_delta_path(struct uci_context *ctx, const char *dir);

/* Message of the last failure: "prefix: Entry not found". *dest is to be freed by the caller; with
 * dest NULL the message goes to standard error. */
void uci_get_errorstr(struct uci_context *ctx, char **dest, const char *prefix);
void uci_perror(struct uci_context *ctx, const char *prefix);

/* Packages. A name with a leading "/" or "./" is a path outside confdir; such a package has no
 * pending changes. *package is left alone on failure. */
int uci_load(struct uci_context *ctx, const char *name, struct uci_package **package);
int uci_unload(struct uci_context *ctx, struct uci_package *p);
/* Reads packages from a stream. *package not NULL: the text is merged into that package and logged.
 */
int uci_import(struct uci_context *ctx, FILE *stream, const char *name,
               struct uci_package **package, bool single);
/* Writes one package, or with package NULL all loaded ones, and flushes the stream. */
int uci_export(struct uci_context *ctx, FILE *stream, struct uci_package *package, bool header);
/* NULL-terminated names of all packages; one block, to be freed by the caller. */
int uci_list_configs(struct uci_context *ctx, char ***list);

/* Looking up. str ("package.section.option=value", section also "@type[n]") is changed and must
 * outlive ptr. What is missing in a loaded package is no error: look at UCI_LOOKUP_COMPLETE. */
int uci_lookup_ptr(struct uci_context *ctx, struct uci_ptr *ptr, char *str, bool extended);
int uci_lookup_next(struct uci_context *ctx, struct uci_element **e, struct uci_list *list,
                    const char *name);
struct uci_package *uci_lookup_package(struct uci_context *ctx, const char *name);
struct uci_section *uci_lookup_section(struct uci_context *ctx, struct uci_package *p,
                                       const char *name);
struct uci_option *uci_lookup_option(struct uci_context *ctx, struct uci_section *s,
                                     const char *name);
/* NULL also when the option is a list. */
const char *uci_lookup_option_string(struct uci_context *ctx, struct uci_section *s,
                                     const char *name);
/* Fills tb with the options of s that opts names with their type, NULL where there is none. */
void uci_parse_section(struct uci_section *s, const struct uci_parse_option *opts, int n_opts,
                       struct uci_option **tb);

/* Changes, in memory until they are saved. */
int uci_add_section(struct uci_context *ctx, struct uci_package *p, const char *type,
                    struct uci_section **res);
int uci_set(struct uci_context *ctx, struct uci_ptr *ptr);
int uci_add_list(struct uci_context *ctx, struct uci_ptr *ptr);
int uci_del_list(struct uci_context *ctx, struct uci_ptr *ptr);
int uci_rename(struct uci_context *ctx, struct uci_ptr *ptr);
int uci_delete(struct uci_context *ctx, struct uci_ptr *ptr);
int uci_reorder_section(struct uci_context *ctx, struct uci_section *s, int pos);

/* Appends the changes to the package's file in the save folder. On failure they stay in memory. */
int uci_save(struct uci_context *ctx, struct uci_package *p);
/* Drops pending changes of the package, section or option and loads the package anew. */
int uci_revert(struct uci_context *ctx, struct uci_ptr *ptr);
/* Saves, replays all pending changes on the package's file and replaces it; *package becomes a new
 * object. With overwrite the package is written as it stands in memory. After a failure the file,
 * the pending changes and *package are as they were. */
int uci_commit(struct uci_context *ctx, struct uci_package **package, bool overwrite);

/* Reads one quoted word. *str NULL: from the next line of the stream, else from where the last word
 * ended. *result is empty at the end of the line; it is good until the next call. */
int uci_parse_argument(struct uci_context *ctx, FILE *stream, char **str, char **result);
/* Whether str can be stored as a value. */
bool uci_validate_text(const char *str);

#define uci_container_of(_ptr, _type, _member)                                                     \
    ((_type *)(void *)((char *)(_ptr)-offsetof(_type, _member)))
#define list_to_element(_ptr) uci_container_of(_ptr, struct uci_element, list)
#define uci_to_delta(_ptr) uci_container_of(_ptr, struct uci_delta, e)
#define uci_to_package(_ptr) uci_container_of(_ptr, struct uci_package, e)
#define uci_to_section(_ptr) uci_container_of(_ptr, struct uci_section, e)
#define uci_to_option(_ptr) uci_container_of(_ptr, struct uci_option, e)

#define uci_foreach_element(_list, _ptr)                                                           \
    for ((_ptr) = list_to_element((_list)->next); &(_ptr)->list != (_list);                        \
         (_ptr) = list_to_element((_ptr)->list.next))
/* As above; the loop may remove _ptr. */
#define uci_foreach_element_safe(_list, _tmp, _ptr)                                                \
    for ((_ptr) = list_to_element((_list)->next), (_tmp) = list_to_element((_ptr)->list.next);     \
         &(_ptr)->list != (_list); (_ptr) = (_tmp), (_tmp) = list_to_element((_ptr)->list.next))

static inline bool uci_list_empty(const struct uci_list *list)
{
    return list->next == list;
}

#ifdef __cplusplus
}
#endif
