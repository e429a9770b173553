#include "platform/path_root.h"

#include <atomic>
#include <cstdlib>
#include <mutex>

namespace qorcfg {

namespace {

std::atomic<unsigned> generation{0};

std::string without_trailing_slashes(std::string_view root)
{
    while (!root.empty() && root.back() == '/') {
        root.remove_suffix(1);
    }
    return std::string(root);
}

std::string root_from_environment()
{
    const char *root = std::getenv("QORCFG_ROOT");
    return without_trailing_slashes(root == nullptr ? "" : root);
}

struct Root {
    std::mutex mutex;
    std::string value = root_from_environment();
};

Root &root()
{
    static Root instance;
    return instance;
}

} // namespace

std::string path_root()
{
    const std::lock_guard lock(root().mutex);
    return root().value;
}

void set_path_root(std::string_view new_root)
{
    const std::lock_guard lock(root().mutex);
    root().value = without_trailing_slashes(new_root);
    ++generation;
}

unsigned path_root_generation()
{
    return generation.load(std::memory_order_acquire);
}

std::string rooted(std::string_view path)
{
    return path_root().append(path);
}

} // namespace qorcfg
