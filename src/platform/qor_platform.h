/* The device's closed libraries as this project sees them: the key/value store and the maker's
 * helpers. `platform/reference` implements them for development; a device build links its own
 * libraries instead (QORCFG_PLATFORM=external). */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Text of a store key; "" when the key is unset, empty or null, never null. The text stays valid
 * until the calling thread's next call. C++ code reads through `config_value` instead. */
const char *config_get(const char *key);

/* 1 when the key's text equals `value`, else 0. */
int config_match(const char *key, const char *value);

/* 1 when the key's text differs from `value`, else 0. */
int config_invmatch(const char *key, const char *value);

/* Makes everything written so far survive a power cut. 0 on success, -1 on failure. */
int config_commit(void);

/* Stores `value` under the key `name`. 0 on success, -1 on failure. */
int mappi_set(const char *name, const char *value);

/* Runs the program `path` (searched in PATH when it has no "/") with the arguments that follow, up
 * to a terminating null pointer, without a shell; waits for its end, 300 s at most, after which its
 * process group is ended. The three leading numbers are reserved, 0 everywhere. Returns the exit
 * status, 128 plus the signal number of a killed program, or -1 when it could not be run or was
 * ended at the bound (errno is then ETIMEDOUT). */
int qor_safe_system(int reserved1, int reserved2, int reserved3, const char *path, ...);

/* Formats into `buffer` of `size` bytes, cutting at size-1 and always terminating. `routine` names
 * the caller in the diagnostic that a cut prints on standard error. Returns the length of the text
 * now in the buffer, or -1 for a null or empty buffer or a text that cannot be formed. */
int qor_sprintf_s(const char *routine, char *buffer, size_t size, const char *format, ...);

/* Scans `text`. The format knows "%d" (an int *), "%s" and "%[^c...]" (each a char * followed by
 * its buffer size as a size_t, text kept to size-1 bytes); other characters must match themselves,
 * a blank matches any run of blanks. Returns the number of fields stored, or -1 when the text ended
 * before the first of them. */
int qor_sscanf_s(const char *text, const char *format, ...);

/* snprintf that always terminates; returns the length of the text now in the buffer or -1, as
 * above. */
int qor_snprintf(char *buffer, size_t size, const char *format, ...);

#ifdef __cplusplus
}
#endif
