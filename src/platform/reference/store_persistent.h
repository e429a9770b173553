#pragma once

#include <string>

// The copy of the store that survives a power cut. For the sources of the reference store only.
namespace qorcfg::store {

/// Where the persistent copy is.
std::string persistent_path();

/// Writes a compact copy of the store over the persistent one. The file is the database followed by
/// one line with its check sum, as LMDB trusts every page that it reads. Returns "" or the error;
/// the old copy then stands.
std::string write_persistent_copy();

/// Puts the persistent copy, without the marks in it, in the place of a missing live store; the
/// caller keeps other processes out. A copy that is damaged is set aside as "config.mdb.damaged",
/// which is said on standard error, so that no later commit replaces it. Returns "" also when there
/// is no copy, else the error.
std::string restore_missing_store(const std::string &live);

} // namespace qorcfg::store
