#pragma once

#include <string>

namespace qorcfg {

/// The reference page of this build's components as Markdown: for each its keys, the UCI packages
/// and NVRAM-side documents that it writes, and their snapshots. Told by the components themselves:
/// their updates run below a scratch root, as on a base unit, with the engine's writes held, so the
/// page is the same on every machine. Path root, registry and role of the process are as before
/// afterwards, but the registry is empty. Throws when no scratch root can be laid.
std::string component_page();

} // namespace qorcfg
