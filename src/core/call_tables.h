#pragma once

#include "core/base/registry.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qorcfg {

/// An update callback and the first key id under which it was collected.
struct UpdateCall {
    std::int32_t key_id;
    UpdateCallback callback;
};

/// A SOAP callback, the changed keys that brought it in, and the action of the first of them.
struct SoapCall {
    ChangedKeys keys;
    int action;
    SoapCallback callback;
};

/// The calls of one job or of the start-up pass: each callback once, in order of first appearance.
/// What does not fit the bounds is logged with the job number ("Too many callbacks in job %d") and
/// left out.
class CallTables {
public:
    static constexpr std::size_t update_limit = 256;
    static constexpr std::size_t soap_limit = 16;

    explicit CallTables(int job) : job_(job) {}

    /// Collects the update callbacks of a key record.
    void collect_updates(const KeyRecord &record);
    /// Collects its SOAP callbacks: a callback that is there already gets the key id added to its
    /// list.
    void collect_soap(const KeyRecord &record, int action);

    const std::vector<UpdateCall> &updates() const { return updates_; }
    std::vector<SoapCall> &soap() { return soap_; }

private:
    bool has_room(std::size_t used, std::size_t limit) const;

    int job_;
    std::vector<UpdateCall> updates_;
    std::vector<SoapCall> soap_;
};

} // namespace qorcfg
