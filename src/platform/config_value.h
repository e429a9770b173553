#pragma once

#include <string>

namespace qorcfg {

/// Text of the store key `key`, "" when it is unset. A copy of the caller's own: the platform's
/// buffer may be shared by all threads. Safe from several workers at once.
std::string config_value(const char *key);
inline std::string config_value(const std::string &key)
{
    return config_value(key.c_str());
}

} // namespace qorcfg
