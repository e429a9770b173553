#pragma once

#include <string>

namespace qorcfg {

/// A folder with the few files that a component needs to run as on a base unit, and an empty store.
/// While it lives it is the path root of this process; then it goes, and the root and role of
/// before come back.
class ScratchDevice {
public:
    /// Throws when the folder cannot be made.
    ScratchDevice();
    ~ScratchDevice();
    ScratchDevice(const ScratchDevice &) = delete;
    ScratchDevice &operator=(const ScratchDevice &) = delete;

private:
    std::string root_;
    std::string old_root_;
    int old_is_base_;
};

} // namespace qorcfg
