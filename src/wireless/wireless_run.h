#pragma once

#include "engine/document.h"
#include "wireless/hardware_names.h"
#include "wireless/wireless_model.h"
#include "wireless/wireless_package.h"

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace qorcfg {

/// One full update of a wireless component: the facts it works with, the live package, and the
/// document { section type: { section name: { option: value } } } with an option object for the
/// global section, each radio and each interface. All of it belongs to the run, so that overlapping
/// jobs do not meet. Belongs to one thread.
class WirelessRun {
public:
    /// Reads the board's facts and the hardware description through the model.
    explicit WirelessRun(WirelessModel &model);

    const Hardware &hardware() const { return facts_->hardware; }
    bool guest_vlan() const { return facts_->hardware.guest_vlan; }
    const std::string &board(BoardItem item) const { return facts_->board.at(item); }
    const WirelessScalars &scalars() const { return scalars_; }
    /// The logical radio that carries the interface; null when the device has none.
    const Radio *radio_of(const Interface &interface) const;

    /// Opens the live package; 0 on success, 1 with a message when the daemon cannot go on.
    int open_wifi_ctx() { return package_.open_wifi_ctx(); }
    /// Makes a section of the live package unless it is there; 0 on success.
    int add_wifi_section(const char *type, const std::string &name)
    {
        return package_.add_wifi_section(type, name);
    }

    /// The only way options are written. `section` selects the option object: "qcawifi", the driver
    /// device of a radio, or the role name of an interface, the first that fits in this order; a
    /// name that selects nothing is ignored. An empty value is left out.
    void set_wifi_option(std::string_view section, const char *option, std::string_view value);

    /// Puts an option object into the document, under "qcawifi", or as the section `name` of
    /// "wifi-device" or "wifi-iface".
    void nest_qcawifi();
    void nest(const Radio &radio, const std::string &name);
    void nest(const Interface &interface, const std::string &name);

    /// The document, with its three section types in order.
    const Document &document() const { return document_; }

private:
    json_object *select(std::string_view section) const;
    void nest_options(const char *type, const std::string &name, const Json &options);

    std::shared_ptr<const WirelessFacts> facts_;
    const WirelessScalars &scalars_;
    WirelessPackage package_;
    Document document_;
    Json qcawifi_options_;
    std::array<Json, radios.size()> radio_options_;
    std::array<Json, interfaces.size()> interface_options_;
};

/// An option whose value is fixed.
struct FixedOption {
    const char *option;
    const char *value;
};

/// The section of a run that a builder writes, by the name that selects its option object.
class WifiSection {
public:
    /// `own_keys`, where given, is what the names of the section's own settings in the store begin
    /// with: "<own_keys><option>" then comes before what is fixed for an option.
    WifiSection(WirelessRun &run, std::string name, std::string own_keys = {})
        : run_(run), name_(std::move(name)), own_keys_(std::move(own_keys))
    {
    }

    /// Writes one option, unless the value is empty.
    WifiSection &add(const char *option, std::string_view value)
    {
        run_.set_wifi_option(name_, option, value);
        return *this;
    }
    /// Writes the value of a store key; nothing for a null key.
    WifiSection &add_key(const char *option, const char *key);
    /// Writes the section's own setting of an option.
    WifiSection &add_own(const char *option);
    /// The same, but from `key` where it is not null.
    WifiSection &add_key_or_own(const char *option, const char *key);
    /// Writes an option whose value is fixed, unless the section has a setting of its own.
    WifiSection &add_fixed(const char *option, std::string_view value);
    /// Writes each row of the table.
    WifiSection &add_fixed(std::span<const FixedOption> options);

private:
    std::string own(const char *option) const;

    WirelessRun &run_;
    std::string name_;
    std::string own_keys_;
};

} // namespace qorcfg
