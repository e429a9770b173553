#include "wireless/wireless_settings.h"

#include "platform/config_value.h"

namespace qorcfg {

namespace {

std::string value_or(const char *key, const char *otherwise)
{
    std::string value = config_value(key);
    return value.empty() ? otherwise : value;
}

std::string passphrase_key(std::string sectype_key, const char *ending)
{
    constexpr std::string_view replaced = "sectype";
    return sectype_key.replace(sectype_key.find(replaced), replaced.size(), ending);
}

} // namespace

std::string hwmode_of(const Radio &radio)
{
    return value_or(radio.hwmode_key, radio.hwmode_default);
}

std::string htmode_of(const Radio &radio)
{
    return value_or(radio.htmode_key, radio.htmode_default);
}

void add_security(WifiSection &section, const Interface &interface, const SecurityForm &form)
{
    if (interface.sectype_key == nullptr) {
        return;
    }
    const std::string value = cut<15>(config_value(interface.sectype_key));
    for (const SecurityType &type : form.types) {
        if (value == type.value) {
            section.add(form.type_option, type.word);
            if (type.passphrase_ending != nullptr) {
                section.add(
                    form.passphrase_option,
                    config_value(passphrase_key(interface.sectype_key, type.passphrase_ending)));
            }
            return;
        }
    }
}

bool is_without_wps(const Interface &interface)
{
    return interface.role == Role::guest ||
           (interface.wps_switch_key != nullptr && config_value(interface.wps_switch_key) == "0");
}

} // namespace qorcfg
