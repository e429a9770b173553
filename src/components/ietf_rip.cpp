#include "components/components.h"

#include "core/base/predicates.h"
#include "engine/systeminfo.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "ap_mode",   "rip_direction",  "rip_version",  "ripd_enable",
    "wan_proto", "rip_key_string", "rip_password",
};

const char *enabled_version(const std::string &version)
{
    if (version == "1") {
        return "rip1";
    }
    return version == "2" ? "rip2b" : "rip2m";
}

/// The store's key string carries one character more than the secret that the daemon is given.
std::string md5_secret(const std::string &value)
{
    std::string secret = cut<32>(value);
    if (!secret.empty()) {
        secret.pop_back();
    }
    return secret;
}

constexpr std::array secrets{
    Option{"md5", "rip_key_string", md5_secret},
    Option{"text", "rip_password", cut<32>},
};

const char *direction()
{
    const std::string value = config_value("rip_direction");
    if (value == "0") {
        return "0";
    }
    return value == "1" ? "1" : "2";
}

int update(int job)
{
    QORCFG_LOG(" update rip");
    const bool access_point = is_ap_mode() != 0;
    const std::string version = config_value("rip_version");
    Document doc;
    Section lan = doc.section("rip", systeminfo[lan_net_section].value);
    if (access_point || version == "0") {
        lan.add("enable", "0").add("version", "0");
    } else {
        lan.add("enable", "1").add("version", enabled_version(version)).add(secrets);
    }
    lan.add("direction", access_point ? "0" : direction());
    return commit(doc, "rip", "lan", job);
}

void init()
{
    log_init("rip");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("rip");
}

} // namespace

const Operations ietf_rip{init, nullptr, register_};

} // namespace qorcfg
