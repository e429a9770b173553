#pragma once

#include "core/base/registry.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qorcfg {

/// A callback that a key triggers.
struct Subscriber {
    enum class Kind { update, soap };
    CallbackOwner owner;
    Kind kind;
};

/// The callbacks that the announcement of one name triggers.
struct Subscribers {
    std::string name;
    std::int32_t id;
    std::vector<Subscriber> callbacks; ///< update callbacks and then SOAP callbacks, each in order
                                       ///< of the component table
};

/// What triggers when `keys` change: one entry for each name that is announced then, each once.
/// Enables every component of this build in this process, and empties its registry; nothing is
/// written.
std::vector<Subscribers> subscribers_of(const std::vector<std::string> &keys);

/// Names of the keys that components of this build subscribe to. At the first question it enables
/// them as `subscribers_of` does.
class KeyNames {
public:
    /// The name of a key by its number on the control socket; "" where no component looks at it.
    std::string of(std::int32_t id);

private:
    std::optional<std::map<std::int32_t, std::string>> names_;
};

} // namespace qorcfg
