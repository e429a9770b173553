#pragma once

#include "tools/subscribers.h"

#include <functional>
#include <iosfwd>
#include <string>

namespace qorcfg {

/// What is known of the daemon's jobs as one line, in words or as JSON; "" when no daemon has ever
/// run. As JSON it also has what is told of explained jobs, their keys by the names in `names`.
std::string status_line(bool json, KeyNames &names);

/// Prints the status line, and again whenever it has changed. Returns when `out` fails or `stop`,
/// asked after each look, says so. `pause` lies between two looks.
void watch_status(std::ostream &out, bool json, const std::function<bool()> &stop,
                  const std::function<void()> &pause);

} // namespace qorcfg
