#include "components/components.h"

#include "core/base/globals.h"
#include "core/base/hooks.h"
#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{"http_passwd_hashed", "http_username"};

constexpr std::array soap_keys{"http_passwd_hashed", "GUI_only_PWD_question", "PWD_answer"};

// The store has the password's hash only, which the web server takes as it is.
constexpr std::array options{
    Option{"username", "http_username"},
    Option{"password", "http_passwd_hashed"},
};

int update(int job)
{
    QORCFG_LOG(" update password");
    Document doc;
    doc.section("users", "http").add(options);
    return commit(doc, "users", "http", job);
}

int tell_satellites(const ChangedKeys *changed, int /*action*/)
{
    if (any_key_changed(changed, soap_keys) && is_base != 0) {
        notify_soap_agent("SetPassword");
    }
    return 0;
}

void init()
{
    log_init("password");
    subscribe_all(keys, update);
}

void soap_init()
{
    log_init("password");
    subscribe_all_soap(soap_keys, tell_satellites);
}

void register_()
{
    log_register("password");
}

} // namespace

const Operations ietf_password{init, soap_init, register_};

} // namespace qorcfg
