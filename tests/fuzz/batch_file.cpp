#include "apply/apply.h"
#include "apply/uci_package.h"
#include "fuzz/fuzz.h"

#include <sstream>

using namespace qorcfg;

namespace {

constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d";
constexpr const char *config = "/tmp/etc/config/wireless";

UciPackage::Read read_package(UciPackage &package)
{
    return package.read(test::fuzz_device().path(config));
}

} // namespace

// A batch file, the package that it is for, and the changes that others have staged for it.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const test::DeviceRoot &device = test::fuzz_device();
    const auto parts = test::input_parts(test::input_text(data, size), 3);
    for (const char *each : {folder, "/tmp/etc/config", "/tmp/.uci"}) {
        test::empty_folder(each);
    }
    device.write(std::string(folder) + "/uci_update1.wireless.part", parts[0]);
    device.write(config, parts[1]);
    if (!parts[2].empty()) {
        device.write("/tmp/.uci/wireless", parts[2]);
    }
    UciPackage old;
    const bool readable = read_package(old) == UciPackage::Read::done;

    std::ostringstream shown;
    std::ostringstream preview_faults;
    preview_batches({}, shown, preview_faults);
    test::require(device.read(config) == parts[1], "a preview changes nothing");

    std::ostringstream faults;
    const bool done = apply_batches({}, faults);
    const std::vector<std::string> expected =
        done ? std::vector<std::string>{}
             : std::vector<std::string>{"failed.uci_update1.wireless.part"};
    test::require(device.names_in(folder) == expected, "a batch is gone, or put aside as failed",
                  faults.str());
    test::require(done == faults.str().empty(), "a failure is told", faults.str());
    if (!readable) {
        test::require(device.read(config) == parts[1], "a damaged package stays as it was");
        return 0;
    }
    UciPackage applied;
    test::require(read_package(applied) == UciPackage::Read::done,
                  "a package that could be read can be read afterwards",
                  applied.error() + "\n" + device.read(config));
    if (device.read(config) != parts[1]) {
        test::require(applied.text() == device.read(config), "it is read as it was written",
                      device.read(config));
    }
    return 0;
}
