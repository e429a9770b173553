#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <uci.h>

namespace qorcfg {

/// A UCI package in memory, in a libuci context of its own: changes stay there, nothing is saved or
/// committed. Calls that can fail return false and leave the reason in `error`.
class UciPackage {
public:
    enum class Read { done, missing, damaged, failed };

    UciPackage();

    /// Reads the package file at `path` (absolute) and nothing else: neither other programs' staged
    /// changes nor a file of an override folder.
    Read read(const std::string &path);
    /// Reads the device's package `name` together with the changes that are staged for it.
    Read read_with_changes(const std::string &name);
    /// Starts with a package without sections.
    bool make_empty(const std::string &name);

    uci_package *get() const { return package_; }
    const std::string &error() const { return error_; }
    /// The package as the text of its file.
    std::optional<std::string> text();

    uci_section *find(std::string_view name) const;
    /// A new section at the end, with and without a name.
    uci_section *make_section(std::string_view name, std::string_view type);
    uci_section *add_section(std::string_view type);
    bool set_type(uci_section *section, std::string_view type);
    bool delete_section(uci_section *section);
    /// Puts a section to the place that `before` has.
    void move_before(uci_section *section, uci_section *before);

    /// An empty value is no value: it removes the option.
    bool set_option(uci_section *section, std::string_view option, std::string_view value);
    bool add_item(uci_section *section, std::string_view option, std::string_view value);
    /// An option that is not there is no failure.
    bool delete_option(uci_section *section, std::string_view option);
    bool delete_options(uci_section *section);

private:
    struct FreeContext {
        void operator()(uci_context *context) const { uci_free_context(context); }
    };

    Read loaded(int result);
    /// Keeps the reason of a failure; true for success.
    bool done(int result);
    bool check_value(std::string_view option, std::string_view value);
    /// uci_set for an option, uci_add_list for an item.
    using ValueCall = int(uci_context *, uci_ptr *);
    bool store_value(uci_section *section, std::string_view option, std::string_view value,
                     ValueCall &call);

    std::unique_ptr<uci_context, FreeContext> context_;
    uci_package *package_ = nullptr;
    std::string error_;
};

} // namespace qorcfg
