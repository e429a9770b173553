#include "wireless/hardware.h"

#include "fuzz/fuzz.h"

#include <filesystem>

using namespace qorcfg;

namespace {

constexpr const char *description = "/etc/ath/athinfo.json";

void require_bounds(const Hardware &hardware)
{
    constexpr std::size_t most_radios = 3;
    constexpr std::size_t most_interfaces = 15;
    test::require(hardware.radio_map_table.size() <= most_radios &&
                      hardware.iface_map_table.size() <= most_interfaces,
                  "the tables have room for 3 and 15 rows");
    const auto fits = [](const std::string &text) {
        constexpr std::size_t most_bytes = 15;
        return text.size() <= most_bytes;
    };
    for (const RadioRow &row : hardware.radio_map_table) {
        test::require(fits(row.device) && hardware.radio(row.name) == &row,
                      "a radio is there once, with 15 bytes a text", row.device);
    }
    for (const InterfaceRow &row : hardware.iface_map_table) {
        test::require(fits(row.config_prefix) && fits(row.ifname),
                      "an interface has 15 bytes a text", row.ifname);
        test::require(!hardware.radio_of(row.name).empty() && hardware.carries(row.radio, row.name),
                      "an interface is carried by a radio", row.name);
    }
    test::require(fits(hardware.atf_enable) && fits(hardware.thermal_analytics),
                  "texts keep 15 bytes");
}

} // namespace

// Two descriptions, one after the other.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const test::DeviceRoot &device = test::fuzz_device();
    Hardware hardware;
    for (const std::string &part : test::input_parts(test::input_text(data, size), 2)) {
        device.write(description, part);
        test::require(load_athinfo(hardware) == 0, "loading returns 0");
        require_bounds(hardware);
    }
    std::filesystem::remove(device.path(description));
    const std::size_t radios = hardware.radio_map_table.size();
    load_athinfo(hardware);
    test::require(hardware.radio_map_table.size() == radios,
                  "without the file everything stays as it is");
    return 0;
}
