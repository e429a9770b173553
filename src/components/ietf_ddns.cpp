#include "components/components.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace qorcfg {

namespace {

// The last three are the bare stems of the numbered keys that the providers use.
constexpr std::array keys{
    "endis_ddns",  "sysDNSProviderlist", "endis_wildcards", "n_dns_have_account",
    "sysDNSUser_", "sysDNSHost_",        "sysDNSPassword_",
};

constexpr std::array zeltrax_options{
    Option{"enabled", "endis_ddns"},
    Option{"username", "sysDNSUser_5"},
    Option{"domain", "sysDNSHost_5"},
    Option{"have_account", "n_dns_have_account"},
};

constexpr std::array dyndns_options{
    Option{"enabled", "endis_ddns"},
    Option{"username", "sysDNSUser_1"},
    Option{"password", "sysDNSPassword_1"},
    Option{"domain", "sysDNSHost_1"},
};

constexpr std::array oray_options{
    Option{"enabled", "endis_ddns"},
    Option{"username", "sysDNSUser_2"},
    Option{"password", "sysDNSPassword_2"},
    Option{"domain", "sysDNSHost_2"},
};

constexpr std::array ddns3322_options{
    Option{"enabled", "endis_ddns"},
    Option{"username", "sysDNSUser_3"},
    Option{"password", "sysDNSPassword_3"},
    Option{"domain", "sysDNSHost_3"},
    Option{"use_wildcards", "endis_wildcards"},
};

constexpr std::array noip_options{
    Option{"enabled", "endis_ddns"},
    Option{"username", "sysDNSUser_4"},
    Option{"password", "sysDNSPassword_4"},
    Option{"domain", "sysDNSHost_4"},
};

/// A provider that the web interface offers.
struct Provider {
    const char *word; ///< by which the chosen provider's name is recognised
    const char *section;
    std::span<const Option> options;
    const char *service_name; ///< domain of the update service, added last; "" for none
};

constexpr std::array<Provider, 5> providers{{
    {"ZELTRAX", "ddns_zeltrax", zeltrax_options, ""},
    {"DynDNS", "ddns_dyn", dyndns_options, "members.dyndns.org"},
    {"oray", "ddns_oray", oray_options, "ddns.oray.com"},
    {"3322", "ddns_ddns3322", ddns3322_options, "members.3322.org"},
    {"no-ip", "ddns_noip", noip_options, "dynupdate.no-ip.com"},
}};

/// The provider that the store names, the first of the table whose word occurs; null for none.
const Provider *chosen_provider()
{
    const std::string chosen = cut<29>(config_value("sysDNSProviderlist"));
    const auto provider =
        std::find_if(providers.begin(), providers.end(), [&](const Provider &each) {
            return chosen.find(each.word) != std::string::npos;
        });
    return provider == providers.end() ? nullptr : &*provider;
}

int update(int job)
{
    QORCFG_LOG(" update package ddns");
    if (is_base == 0) {
        return 1;
    }
    const Provider *provider = chosen_provider();
    Document doc;
    doc.section("ddns", "global")
        .add("enabled", config_value("endis_ddns"))
        .add("upd_privateip", "1")
        .add("provider", provider == nullptr ? "N/A" : provider->section);
    doc.container("service", named_sections);
    if (provider != nullptr) {
        doc.section("service", provider->section)
            .add(provider->options)
            .add("service_name", provider->service_name);
    }
    return commit(doc, "ddns", "service", job);
}

void init()
{
    log_init("ddns");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("ddns");
}

} // namespace

const Operations ietf_ddns{init, nullptr, register_};

} // namespace qorcfg
