#pragma once

#include "apply/batch_file.h"

#include <cstddef>
#include <optional>
#include <string>

namespace qorcfg {

/// Largest batch file that is read, in bytes.
inline constexpr std::size_t batch_bound = std::size_t{64} << 20;

/// Gives a batch file the name of another state. False and errno on failure.
bool change_state(BatchFile &file, BatchState state);

/// Takes a waiting batch file out of its writers' sight, while no transaction of theirs is at work:
/// what they append later goes to a new file. False and errno on failure.
bool claim(BatchFile &file);

/// Removes a batch file that has been applied.
bool remove_batch(const BatchFile &file);

/// Lets a failed copy of the file outlive its application, also when that is cut off.
bool keep_failed_copy(const BatchFile &file);

/// Puts the file aside as one that could not be applied.
bool put_aside(const BatchFile &file);

} // namespace qorcfg
