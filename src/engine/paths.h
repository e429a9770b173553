#pragma once

#include "platform/batch_folders.h"

#include <string>
#include <string_view>

namespace qorcfg {

/// A path as it fits the fields that hold it on the device: its first 127 bytes.
inline std::string bounded_path(std::string path)
{
    constexpr std::size_t limit = 127;
    path.resize(path.size() < limit ? path.size() : limit);
    return path;
}

/// Whether a package, section or document name can be part of a file name. An empty one can: a
/// device whose information files are missing has empty names.
inline bool is_file_name(std::string_view name)
{
    return name.find('/') == std::string_view::npos;
}

} // namespace qorcfg
