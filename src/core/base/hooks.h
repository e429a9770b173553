#pragma once

#include "platform/child.h"

namespace qorcfg {

/// Runs the hook script at the built-in path `path` with the job number as its single argument
/// (decimal, at most 6 characters) and waits for its end. A script that is missing or fails is no
/// error; one that was ended at its time bound is logged. Returns how it ended.
ProgramEnd run_hook_script(const char *path, int job);

/// Tells the local SOAP agent that a setting which satellites mirror has changed: stores `value`
/// under "soap_setting", signals the agent, and pauses one second so that the agent has read the
/// word before the next one replaces it. Null does nothing.
void notify_soap_agent(const char *value);

/// Replaces the pause of `notify_soap_agent`, for tests. Null brings the real one back.
void set_soap_pause(void (*pause)());

} // namespace qorcfg
