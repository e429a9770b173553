#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

struct uci_context;
struct uci_package;

namespace qorcfg {

struct FreeUciContext {
    void operator()(uci_context *context) const noexcept;
};

/// Owner of a libuci context and of every package loaded in it. Belongs to one thread at a time.
using UciContext = std::unique_ptr<uci_context, FreeUciContext>;

/// A context on the device's configuration folder "/etc/config" and the folder of saved changes
/// "/tmp/.uci". Empty without memory.
UciContext open_uci_context();

/// Held by whoever calls libuci in this process: its error texts lie in one static buffer, and two
/// contexts that add sections at once make the same generated name.
std::unique_lock<std::mutex> lock_uci();

/// Reads one UCI value, "package.section.option" or "package.section" (also "@type[n]" sections),
/// in a context of its own. A section gives its type; a string option its value, at most `size`-1
/// bytes of it. A list leaves `value` alone; it is printed on standard output when `value` is null.
/// Returns 0 when the element was found, else 1 with `value` as it was; a lookup that fails is
/// reported on standard error. Takes `lock_uci` itself. Safe from any thread.
int get_uci_option_value(const char *path, std::string *value, std::size_t size);

/// Adds a section of `type` at the end of a loaded package and saves it; where `name` is not null
/// the section is then given that name and saved again. Does not look whether the name is taken.
/// Returns 0 on success, 1 when adding, renaming or saving fails. Call it under `lock_uci`.
int uci_add_named_section(uci_context *context, uci_package *package, const char *package_name,
                          const char *type, const char *name);

/// Renames a section and saves its package: "package.section=name", at most 255 bytes of it; the
/// section may stand as "@type[n]". Returns the result of libuci's rename or save, 1 when the
/// section could not be looked up, which is reported on standard error. Call it under `lock_uci`.
int uci_rename_section(uci_context *context, const char *expression);

} // namespace qorcfg
