#include "core/component_table.h"

#include "core/base/registry.h"
#include "fuzz/fuzz.h"

using namespace qorcfg;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const test::DeviceRoot &device = test::fuzz_device();
    device.write(default_component_list, test::input_text(data, size));
    const std::string path = device.path(default_component_list);
    std::size_t listed = 0;
    const bool readable = for_each_listed_component(path, [&](const char *text) {
        constexpr std::size_t name_limit = 126;
        const std::string_view name = text;
        test::require(!name.empty() && name.size() <= name_limit, "a name has 1 to 126 bytes");
        test::require(name.find_first_of("=\n") == std::string_view::npos, "a name ends at \"=\"");
        ++listed;
    });
    test::require(readable, "the list is read");
    registry().clear();
    enable_listed_components(path);
    test::require(listed > 0 || registry().records().empty(), "only listed components subscribe");
    return 0;
}
