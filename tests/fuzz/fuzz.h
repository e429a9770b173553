#pragma once

#include "support/device_root.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// One input of a fuzzer: what it breaks ends the program. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

// What the fuzzers share.
namespace qorcfg::test {

/// Ends the program, as a finding, unless the property holds.
void require(bool holds, const char *property, const std::string &detail = "");

/// The input as text, of any content.
std::string input_text(const std::uint8_t *data, std::size_t size);

/// Exactly `count` parts of an input that is divided by lines of four dashes; those that it does
/// not have are empty.
std::vector<std::string> input_parts(const std::string &text, std::size_t count);

/// The one device root of this process, without diagnostics; a new root for each input would take
/// longer than the input. Standard output goes nowhere from the first call on.
const DeviceRoot &fuzz_device();

/// Removes the files of a folder of that device, so that no input sees those of another.
void empty_folder(const char *device_folder);

/// Choices made by the bytes of an input, one byte each; behind its end all are 0.
class InputBytes {
public:
    InputBytes(const std::uint8_t *data, std::size_t size)
        : rest_(reinterpret_cast<const char *>(data), size)
    {
    }
    bool at_end() const { return rest_.empty(); }
    /// A number below `sides`.
    std::size_t roll(std::size_t sides);

private:
    std::string_view rest_;
};

} // namespace qorcfg::test
