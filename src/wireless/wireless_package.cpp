#include "wireless/wireless_package.h"

#include "platform/file.h"
#include "platform/path_root.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <uci.h>

namespace qorcfg {

namespace {

constexpr const char *package_name = "wireless";
constexpr const char *package_file = "/etc/config/wireless";

/// libuci renames a section to anything and drops what it cannot hold only later, which would leave
/// the section without a name.
bool is_section_name(std::string_view name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char byte) {
        return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= 'a' && byte <= 'z') || byte == '_';
    });
}

} // namespace

int WirelessPackage::open_wifi_ctx()
{
    const auto lock = lock_uci();
    wifi_ctx_ = open_uci_context();
    if (!wifi_ctx_) {
        std::fprintf(stderr, "Alloc wifi_ctx fail...\n");
        return 1;
    }
    if (uci_load(wifi_ctx_.get(), package_name, &package_) != UCI_OK) {
        std::fprintf(stderr, "Can't load wireless package\n");
        return 1;
    }
    return 0;
}

int WirelessPackage::add_wifi_section(const char *type, const std::string &name)
{
    if (!is_section_name(name)) {
        return 1;
    }
    const auto lock = lock_uci();
    if (has_section(name)) {
        return 0;
    }
    const Fd held = load_and_hold();
    if (!held) {
        return 1;
    }
    return has_section(name)
               ? 0
               : uci_add_named_section(wifi_ctx_.get(), package_, package_name, type, name.c_str());
}

bool WirelessPackage::load()
{
    if (package_ != nullptr) {
        uci_unload(wifi_ctx_.get(), package_);
        package_ = nullptr;
    }
    return uci_load(wifi_ctx_.get(), package_name, &package_) == UCI_OK;
}

/// Loads the package anew and takes the lock under which programs commit it. While that is held,
/// nobody reads the changes between the making of a section and its renaming. An empty Fd when the
/// package cannot be loaded or locked.
Fd WirelessPackage::load_and_hold()
{
    const std::string path = rooted(package_file);
    for (;;) {
        struct stat loaded {};
        struct stat held {};
        struct stat named {};
        if (::stat(path.c_str(), &loaded) != 0 || !load()) {
            return {};
        }
        // Loading locks the file itself, so the lock can only be taken afterwards.
        Fd lock = lock_path(path, LOCK_EX);
        if (!lock || ::fstat(lock.get(), &held) != 0 || ::stat(path.c_str(), &named) != 0) {
            return {};
        }
        if (is_same_version(loaded, held) && is_same_version(held, named)) {
            return lock;
        }
    }
}

bool WirelessPackage::has_section(const std::string &name) const
{
    return package_ != nullptr &&
           uci_lookup_section(wifi_ctx_.get(), package_, name.c_str()) != nullptr;
}

} // namespace qorcfg
