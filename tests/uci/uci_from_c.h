#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// Adds an option to a section and counts its options, lists as 100; -1 on failure. Plain C, to
/// prove that the interface can be used from it.
int count_options_from_c(const char *confdir, const char *package, const char *section);

#ifdef __cplusplus
}
#endif
