#pragma once

#include "core/base/component.h"
#include "core/pending_table.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qorcfg::test {

/// A scratch device root for one test: folders, device files, a store, a console, and a stub
/// `killall` first in PATH that records its calls. The process works below it until the fixture
/// goes; diagnostics are on. The device is the base unit unless told otherwise.
class DeviceRoot {
public:
    DeviceRoot();
    ~DeviceRoot();
    DeviceRoot(const DeviceRoot &) = delete;
    DeviceRoot &operator=(const DeviceRoot &) = delete;

    /// The folder itself, and a device path below it.
    const std::string &root() const { return root_; }
    std::string path(std::string_view device_path) const;

    /// Writes, reads and looks for files by device path; `read` gives "" for a missing one.
    void write(std::string_view device_path, std::string_view text) const;
    void write_program(std::string_view device_path, std::string_view text) const;
    std::string read(std::string_view device_path) const;
    bool exists(std::string_view device_path) const;
    std::vector<std::string> names_in(std::string_view device_folder) const;

    /// Sets store keys, marking them as changed.
    void set(std::initializer_list<std::pair<const char *, std::string>> settings) const;

    /// Makes the device a base unit or a satellite, in its role file and for this process.
    void be_base(bool base) const;

    /// Enables a component in an empty registry.
    void enable(const Operations &component) const;
    /// `enable`, and the keys that the component subscribed update callbacks to, in order.
    std::vector<std::string> subscribed_keys(const Operations &component) const;
    /// `enable`, and the result of the component's first update callback for `job`.
    int run_update(const Operations &component, int job) const;
    /// Runs every subscribed update callback as the start-up pass does.
    void start_up() const;
    /// Runs one job for the named keys, announced with `action`, through the worker's own code, its
    /// SOAP callbacks and hook script included.
    void apply(const std::vector<std::string> &keys, int job, int action = 2) const;
    /// `enable` and then `start_up`.
    void start_up(const Operations &component) const;

    /// The lines of a batch file, and the last document (compact JSON text, "" for none).
    std::vector<std::string> startup_lines(const std::string &package,
                                           const std::string &section) const;
    std::vector<std::string> lines(int job, const std::string &package,
                                   const std::string &section) const;
    std::string document(const std::string &package, const std::string &section) const;
    /// The same of the NVRAM-side writer.
    std::vector<std::string> nvram_startup_lines(const std::string &name) const;
    std::vector<std::string> nvram_lines(int job, const std::string &name) const;
    std::string nvram_document(const std::string &name) const;

    /// The messages logged so far, without time and place; and whole lines.
    std::vector<std::string> log() const;
    std::vector<std::string> log_lines() const;
    void clear_log() const;

    /// The calls of `killall` so far, one line of arguments each.
    std::vector<std::string> killall_calls() const;

private:
    std::string compact_document(const std::string &device_path) const;

    std::string root_;
    std::string old_path_;
};

/// The lines of a text, without their newlines.
std::vector<std::string> split_lines(std::string_view text);

} // namespace qorcfg::test
