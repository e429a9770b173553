#include "tools/scratch_device.h"

#include "core/base/globals.h"
#include "platform/path_root.h"
#include "platform/reference/store.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace qorcfg {

namespace {

namespace fs = std::filesystem;

std::string new_folder()
{
    std::string name = fs::temp_directory_path() / "qorctl.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make " + name);
    }
    return name;
}

void lay(const fs::path &root)
{
    for (const char *folder :
         {"etc/config", "tmp/cache/qorcfg", "tmp/cache/systeminfo", "tmp/cache/wireless"}) {
        fs::create_directories(root / folder);
    }
    // The firewall has keys of its own for boards that are sold everywhere.
    std::ofstream(root / "tmp/cache/systeminfo/boarddata.info") << R"({"board_region": "WW"})";
    // The wireless components do not run without a package, and report each fact that is missing.
    const fs::path packages = root / "etc/config";
    std::ofstream(packages / "wireless") << "";
    std::ofstream(packages / "systeminfo") << "config systeminfo 'sysinfo'\n"
                                              "\toption kova_type 'Base'\n"
                                              "config systeminfo 'boarddata'\n"
                                              "\toption board_wpspin '12345670'\n"
                                              "\toption wl2g_mac '00:00:5E:00:53:12'\n"
                                              "\toption wl5g_mac '00:00:5E:00:53:13'\n"
                                              "\toption wl2nd5g_mac '00:00:5E:00:53:14'\n";
    std::ofstream(packages / "repacd") << "config repacd 'repacd'\n\toption Role 'CAP'\n";
    std::ofstream(packages / "qcacfg80211") << "config qcacfg80211 'config'\n"
                                               "\toption enable '1'\n";
}

void remove(const std::string &root)
{
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

} // namespace

ScratchDevice::ScratchDevice() : root_(new_folder()), old_root_(path_root()), old_is_base_(is_base)
{
    try {
        lay(root_);
    } catch (...) {
        remove(root_);
        throw;
    }
    set_path_root(root_);
    is_base = 1;
}

ScratchDevice::~ScratchDevice()
{
    store_close();
    set_path_root(old_root_);
    is_base = old_is_base_;
    remove(root_);
}

} // namespace qorcfg
