#pragma once

namespace qorcfg {

/// Runs every subscribed update callback once, in order of subscription, with the id of the first
/// key under which it was subscribed. SOAP callbacks are not run.
void run_startup_pass();

} // namespace qorcfg
