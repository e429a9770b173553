#include "apply/uci_package.h"
#include "fuzz/fuzz.h"

using namespace qorcfg;

namespace {

/// The package file as its next writer leaves it; nothing when it cannot be read.
std::optional<std::string> rewritten(const std::string &name)
{
    UciPackage package;
    if (package.read_with_changes(name) != UciPackage::Read::done) {
        test::require(!package.error().empty(), "a failure has a reason");
        return std::nullopt;
    }
    const auto text = package.text();
    test::require(text.has_value(), "a package that was read can be written", package.error());
    return text;
}

} // namespace

// A package file, and the changes that are staged for it.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const test::DeviceRoot &device = test::fuzz_device();
    const auto parts = test::input_parts(test::input_text(data, size), 2);
    device.write("/tmp/etc/config/net", parts[0]);
    device.write("/tmp/.uci/net", "");
    const auto first = rewritten("net");
    if (first) {
        device.write("/tmp/etc/config/net", *first);
        const auto second = rewritten("net");
        test::require(second == first, "what was written is read the same",
                      *first + "----\n" + second.value_or("(damaged)"));
        device.write("/tmp/.uci/net", parts[1]);
        rewritten("net");
    }
    return 0;
}
