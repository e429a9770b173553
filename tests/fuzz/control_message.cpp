#include "core/control_message.h"

#include "fuzz/fuzz.h"

using namespace qorcfg;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text = test::input_text(data, size);
    const ControlMessage message = parse_control_message(text);
    const auto is_same = [&](const ControlMessage &other) {
        return other.action == message.action && other.key_id == message.key_id;
    };
    test::require(is_same(parse_control_message(std::to_string(message.action) + ":" +
                                                std::to_string(message.key_id))),
                  "a message is read back from its text");
    test::require(is_same(parse_control_message(text.substr(0, control_message_limit))),
                  "what one read cannot hold is not looked at");
    return 0;
}
