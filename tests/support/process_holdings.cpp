#include "support/process_holdings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace qorcfg::test {

namespace {

using Address = unsigned long long;

std::string proc(pid_t pid, const char *name)
{
    return "/proc/" + std::to_string(pid) + "/" + name;
}

const char *emulated_base()
{
    return std::getenv("QEMU_GUEST_BASE");
}

/// Entries of a folder of a process, none when it has ended.
long entries(const std::string &folder)
{
    std::error_code ended;
    const std::filesystem::directory_iterator begin(folder, ended);
    return static_cast<long>(std::distance(begin, {}));
}

} // namespace

long private_kib(pid_t pid)
{
    const char *const base = emulated_base();
    const Address begin = base != nullptr ? std::strtoull(base, nullptr, 0) : 0;
    const Address size = base != nullptr ? Address{1} << 32 : ~Address{0};
    std::ifstream file(proc(pid, "smaps"));
    long total = 0;
    bool counted = true;
    for (std::string line; std::getline(file, line);) {
        char *end = nullptr;
        const Address address = std::strtoull(line.c_str(), &end, 16);
        if (*end == '-') { // the first line of a mapping
            counted = address >= begin && address - begin < size;
        } else if (counted && line.rfind("Private_Dirty:", 0) == 0) {
            total += std::atol(line.c_str() + line.find(':') + 1);
        }
    }
    return total;
}

long descriptors_of(pid_t pid)
{
    return entries(proc(pid, "fd"));
}

long threads_of(pid_t pid)
{
    return entries(proc(pid, "task")) - (emulated_base() != nullptr ? 1 : 0);
}

} // namespace qorcfg::test
