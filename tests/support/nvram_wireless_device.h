#pragma once

#include "engine/json.h"
#include "support/device_root.h"

#include <string>
#include <vector>

namespace qorcfg::test {

/// A device whose Wi-Fi stack takes settings files: a base unit with three radios, all eight access
/// points and stations described, guest VLAN off, and board data in UCI.
class NvramWirelessDevice : public DeviceRoot {
public:
    NvramWirelessDevice();

    /// Makes the unit of type `kova_type` ("Base", "Satellite") where the component looks for it.
    void be(const std::string &kova_type) const;
    /// Sets what the board data say of the mesh role and the driver ("1" for cfg80211).
    void set_role(const std::string &role) const;
    void set_driver(const std::string &enable) const;
    /// Writes the hardware description with this "guest_vlan".
    void describe(const std::string &guest_vlan) const;

    /// Runs the start-up pass with the component enabled and keeps the document that it wrote.
    void translate();
    /// Of the document that `translate` kept: its section types; the names of the sections of a
    /// type, and the options of a section as "name=value", both in their order; one option,
    /// "(none)" for one that is missing.
    std::vector<std::string> types() const;
    std::vector<std::string> sections(const char *type) const;
    std::vector<std::string> options(const std::string &section) const;
    std::string option(const std::string &section, const std::string &name) const;

    /// The update callbacks that a key triggers, and the first of them.
    static const std::vector<UpdateCallback> &callbacks_of(const char *key);
    static UpdateCallback callback_of(const char *key) { return callbacks_of(key).front(); }

    /// Sections of the live UCI package "wireless" with what is saved but not committed, as
    /// "name=type".
    static std::vector<std::string> live_sections();

private:
    json_object *find(const std::string &section) const;

    Json document_;
};

} // namespace qorcfg::test
