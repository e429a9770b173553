#pragma once

#include "platform/path_root.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace qorcfg {

/// A folder that lasts as long as the object and is the path root meanwhile. In memory where that
/// can be had, and of a short name, as socket addresses hold few bytes. "/tmp" and "/etc" exist in
/// it.
class ScratchRoot {
public:
    ScratchRoot()
    {
        const char *base = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        path_ = std::string(base) + "/qor.XXXXXX";
        if (::mkdtemp(path_.data()) == nullptr) {
            std::abort();
        }
        std::filesystem::create_directories(path_ + "/tmp/cache/qorcfg");
        std::filesystem::create_directory(path_ + "/etc");
        set_path_root(path_);
    }
    ~ScratchRoot()
    {
        set_path_root("");
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchRoot(const ScratchRoot &) = delete;
    ScratchRoot &operator=(const ScratchRoot &) = delete;

    const std::string &path() const { return path_; }
    /// A path below the root.
    std::string operator/(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

} // namespace qorcfg
