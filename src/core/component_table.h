#pragma once

#include "core/base/component.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

namespace qorcfg {

/// A component that the program knows. `ops` is null where the build does not have it.
struct ComponentRow {
    const char *name;
    const Operations *ops;
};

/// Every component, in search order.
extern const std::array<ComponentRow, 30> components;

/// The component list that is read when the command line names none.
inline constexpr const char *default_component_list = "/tmp/cache/qorcfg/qorcfg.conf";

/// The first row of this name that has operations; null when there is none.
const ComponentRow *find_component(std::string_view name);

/// Runs init and SOAP init of the named component, which subscribe its callbacks, and logs "Enable
/// component %s !!!!". Null does nothing; an unknown name is only logged.
void enable_component(const char *name);

/// The component that one line of a list file enables: "name=1", where only the first character
/// behind the first "=" counts. Empty when the line enables nothing. A name is cut at 126 bytes.
std::string enabled_name(std::string_view line);

/// Calls `visit(name)` for each component that the list file at `path` enables, in file order.
/// Lines of more than 254 bytes go on as further lines. False when the file cannot be read.
bool for_each_listed_component(const std::string &path,
                               const std::function<void(const char *name)> &visit);

/// Enables each listed component. A file that cannot be read enables none.
void enable_listed_components(const std::string &path);

} // namespace qorcfg
