#include "fuzz/fuzz.h"

#include "core/base/log.h"
#include "platform/file.h"
#include "platform/reference/store.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace qorcfg::test {

namespace {

constexpr std::string_view divider = "----\n";

/// Where the next part begins to end: a divider at the start of a line.
std::size_t find_divider(std::string_view text)
{
    for (std::size_t at = text.find(divider); at != std::string_view::npos;
         at = text.find(divider, at + 1)) {
        if (at == 0 || text[at - 1] == '\n') {
            return at;
        }
    }
    return std::string_view::npos;
}

} // namespace

void require(bool holds, const char *property, const std::string &detail)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n%s\n", property, detail.c_str());
        std::abort();
    }
}

std::string input_text(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), size};
}

std::vector<std::string> input_parts(const std::string &text, std::size_t count)
{
    std::vector<std::string> parts(count);
    std::string_view rest = text;
    for (std::size_t i = 0; i + 1 < count && !rest.empty(); ++i) {
        const std::size_t end = find_divider(rest);
        parts[i] = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + divider.size());
    }
    parts.back() += rest;
    return parts;
}

const DeviceRoot &fuzz_device()
{
    static const DeviceRoot device = [] {
        store_close(); // what the root closes at its end has to live until then
        return DeviceRoot();
    }();
    static const LogSilence silence;
    static const bool quiet = [] {
        return ::dup2(open_file("/dev/null", O_WRONLY).get(), STDOUT_FILENO) >= 0;
    }();
    require(quiet, "standard output goes nowhere");
    return device;
}

void empty_folder(const char *device_folder)
{
    for (const std::string &name : fuzz_device().names_in(device_folder)) {
        std::filesystem::remove_all(fuzz_device().path(device_folder) + "/" + name);
    }
}

std::size_t InputBytes::roll(std::size_t sides)
{
    if (rest_.empty()) {
        return 0;
    }
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return byte % sides;
}

} // namespace qorcfg::test
