#pragma once

#include <array>
#include <cstddef>
#include <list>
#include <optional>
#include <string>

namespace qorcfg {

/// What is known of one attached device. Fields that nobody reported are empty.
struct DeviceRecord {
    std::string mac;           ///< text as read, at most 17 bytes
    std::string custom_name;   ///< that the user gave, escaped for HTML, at most 255 bytes
    std::string reported_name; ///< that a satellite reported, likewise
    std::string type;          ///< at most 29 bytes
    std::string type_v2;       ///< at most 29 bytes
};

/// Bucket of a MAC address among the 32 of the table; nothing when the text does not begin with an
/// address, or holds a "/" (it is used as a file name, and the C library looks no further than the
/// address).
std::optional<std::size_t> mac_bucket(const std::string &mac);

/// `text` with the characters that mean something to HTML or to a script replaced by entities.
std::string html_escaped(const std::string &text);

/// Attached devices by MAC address, for one run of the component: a table that outlived its run, or
/// that two runs shared, would show devices that are gone. Consumers number the devices as the
/// buckets give them, so the order belongs to the output.
class DeviceTable {
public:
    /// The record of a MAC address, made on first mention; addresses are compared as text. Null for
    /// one that has no bucket. Valid as long as the table.
    DeviceRecord *record(const std::string &mac);

    /// Calls `visit(record)` bucket by bucket, within a bucket the record made last first.
    template <typename Visit> void for_each(Visit visit) const
    {
        for (const auto &bucket : buckets_) {
            for (const DeviceRecord &record : bucket) {
                visit(record);
            }
        }
    }

private:
    std::array<std::list<DeviceRecord>, 32> buckets_;
};

} // namespace qorcfg
