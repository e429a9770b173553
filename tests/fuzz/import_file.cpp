#include "tools/setting_lines.h"

#include "fuzz/fuzz.h"

#include <algorithm>

using namespace qorcfg;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text = test::input_text(data, size);
    std::vector<StoreWrite> writes;
    if (const auto fault = parse_setting_lines(text, writes)) {
        const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
        test::require(fault->line >= 1 && fault->line <= lines && !fault->reason.empty(),
                      "a fault has a line and a reason");
        return 0;
    }
    for (const StoreWrite &write : writes) {
        test::require(!write.key.empty() && write.key.size() <= store_key_limit && write.value &&
                          write.value->size() <= store_value_limit,
                      "the store takes every setting", write.key);
        const auto line = setting_line({write.key, *write.value});
        test::require(line.has_value(), "a setting that was read can be written", write.key);
        std::vector<StoreWrite> again;
        test::require(!parse_setting_lines(*line, again) && again.size() == 1 &&
                          again[0].key == write.key && again[0].value == write.value,
                      "a written setting is read the same", *line);
    }
    return 0;
}
