#pragma once

#include <string>

namespace qorcfg {

/// "name7" of "name" and 7. (Written with "+", GCC 12 warns of copies inside its own std::string.)
inline std::string numbered(std::string name, long long number)
{
    return name.append(std::to_string(number));
}

} // namespace qorcfg
