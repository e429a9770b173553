#include "wireless/wireless_run.h"

#include "platform/config_value.h"

namespace qorcfg {

namespace {

/// Stands for the device of a radio that the device does not have.
constexpr const char *no_device = "None";

/// Position of an element in the table that it is part of.
template <typename Table> std::size_t place_in(const Table &table, const auto &element)
{
    return static_cast<std::size_t>(&element - table.data());
}

} // namespace

WirelessRun::WirelessRun(WirelessModel &model)
    : facts_(model.refresh()), scalars_(model.scalars()), qcawifi_options_(Json::object())
{
    bool complete = static_cast<bool>(qcawifi_options_);
    for (Json &options : radio_options_) {
        options = Json::object();
        complete = complete && options;
    }
    for (Json &options : interface_options_) {
        options = Json::object();
        complete = complete && options;
    }
    for (const char *type : {"qcawifi", "wifi-device", "wifi-iface"}) {
        document_.container(type, named_sections);
    }
    if (!complete) {
        document_.mark_incomplete();
    }
}

const Radio *WirelessRun::radio_of(const Interface &interface) const
{
    return find_radio(hardware().radio_of(interface.name));
}

json_object *WirelessRun::select(std::string_view section) const
{
    if (section == "qcawifi") {
        return qcawifi_options_.get();
    }
    for (const Radio &radio : radios) {
        if (section == hardware().device_of(radio.name, no_device)) {
            return radio_options_[place_in(radios, radio)].get();
        }
    }
    for (const Interface &interface : interfaces) {
        if (section == interface.name) {
            return interface_options_[place_in(interfaces, interface)].get();
        }
    }
    return nullptr;
}

void WirelessRun::set_wifi_option(std::string_view section, const char *option,
                                  std::string_view value)
{
    json_object *options = select(section);
    if (options != nullptr && !json_add_string(options, option, value)) {
        document_.mark_incomplete();
    }
}

void WirelessRun::nest_options(const char *type, const std::string &name, const Json &options)
{
    // The document takes a reference of its own: document and object each free what is theirs.
    if (!json_set(document_.container(type, named_sections), name.c_str(),
                  Json::share(options.get()))) {
        document_.mark_incomplete();
    }
}

void WirelessRun::nest_qcawifi()
{
    nest_options("qcawifi", "qcawifi", qcawifi_options_);
}

void WirelessRun::nest(const Radio &radio, const std::string &name)
{
    nest_options("wifi-device", name, radio_options_[place_in(radios, radio)]);
}

void WirelessRun::nest(const Interface &interface, const std::string &name)
{
    nest_options("wifi-iface", name, interface_options_[place_in(interfaces, interface)]);
}

WifiSection &WifiSection::add_key(const char *option, const char *key)
{
    return key == nullptr ? *this : add(option, config_value(key));
}

WifiSection &WifiSection::add_own(const char *option)
{
    return add(option, own(option));
}

WifiSection &WifiSection::add_key_or_own(const char *option, const char *key)
{
    return key == nullptr ? add_own(option) : add_key(option, key);
}

WifiSection &WifiSection::add_fixed(const char *option, std::string_view value)
{
    const std::string setting = own(option);
    return add(option, setting.empty() ? value : setting);
}

WifiSection &WifiSection::add_fixed(std::span<const FixedOption> options)
{
    for (const FixedOption &row : options) {
        add_fixed(row.option, row.value);
    }
    return *this;
}

std::string WifiSection::own(const char *option) const
{
    return own_keys_.empty() ? "" : config_value(own_keys_ + option);
}

} // namespace qorcfg
