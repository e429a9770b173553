#pragma once

#include "platform/config_value.h"

#include <string>
#include <type_traits>

namespace qorcfg {

/// Walks a list that the store keeps under numbered keys: calls `visit(number, value)` for `stem` +
/// `first`, `stem` + `first`+1 and so on, up to the first key whose value is empty. A visit that
/// returns a bool ends the walk with false.
template <typename Visit>
void for_each_numbered_key(const std::string &stem, int first, Visit visit)
{
    for (int number = first;; ++number) {
        const std::string value = config_value(stem + std::to_string(number));
        if (value.empty()) {
            return;
        }
        if constexpr (std::is_same_v<decltype(visit(number, value)), bool>) {
            if (!visit(number, value)) {
                return;
            }
        } else {
            visit(number, value);
        }
    }
}

} // namespace qorcfg
