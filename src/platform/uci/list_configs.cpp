#include "platform/uci/context.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <set>
#include <sys/stat.h>

namespace qorcfg::uci {

namespace {

struct CloseFolder {
    void operator()(DIR *dir) const { ::closedir(dir); }
};

/// Adds the names of the packages in a folder: regular files without a "." in their names, which
/// leaves out hidden and temporary ones.
void add_packages(std::set<std::string> &names, const std::string &folder)
{
    const std::unique_ptr<DIR, CloseFolder> dir(::opendir(folder.c_str()));
    while (const dirent *entry = dir ? ::readdir(dir.get()) : nullptr) {
        struct stat info {};
        if (std::strchr(entry->d_name, '.') == nullptr &&
            ::stat((folder + "/" + entry->d_name).c_str(), &info) == 0 && S_ISREG(info.st_mode)) {
            names.insert(entry->d_name);
        }
    }
}

} // namespace

int Context::list_configs(char **&list) const
{
    std::set<std::string> names;
    add_packages(names, confdir_);
    if (!conf2dir_.empty()) {
        add_packages(names, conf2dir_);
    }
    if (names.empty()) {
        return UCI_ERR_NOTFOUND;
    }
    // One block, so that a single free, which is the caller's, releases pointers and texts.
    const std::size_t pointers = (names.size() + 1) * sizeof(char *);
    std::size_t bytes = pointers;
    for (const auto &name : names) {
        bytes += name.size() + 1;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    void *const block = std::calloc(1, bytes);
    if (block == nullptr) {
        return UCI_ERR_MEM;
    }
    list = static_cast<char **>(block);
    char *text = static_cast<char *>(block) + pointers;
    char **entry = list;
    for (const auto &name : names) {
        *entry++ = text;
        text = std::copy_n(name.c_str(), name.size() + 1, text);
    }
    return UCI_OK;
}

} // namespace qorcfg::uci
