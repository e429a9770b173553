#include "core/control_message.h"

#include <gtest/gtest.h>
#include <string>

namespace qorcfg {
namespace {

struct Row {
    std::string text;
    std::int32_t action;
    std::int32_t key_id;
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << '"' << row.text << '"';
}

class ControlMessageTest : public testing::TestWithParam<Row> {};

TEST_P(ControlMessageTest, IsReadAsStated)
{
    const ControlMessage message = parse_control_message(GetParam().text);
    EXPECT_EQ(message.action, GetParam().action);
    EXPECT_EQ(message.key_id, GetParam().key_id);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, ControlMessageTest,
    testing::Values(Row{"2:1234", 2, 1234}, Row{"3:0", 3, 0}, Row{"5:1234\n3:0\n", 5, 1234},
                    Row{"5:1234 3:0", 5, 1234}, Row{"-1:-2", -1, -2}, Row{" 7: 8", 7, 8},
                    Row{"7 :8", 7, 0}, Row{"7", 7, 0}, Row{"7:", 7, 0}, Row{"7:x", 7, 0},
                    Row{":8", 0, 0}, Row{"", 0, 0}, Row{"hello", 0, 0}, Row{"+3:+4", 3, 4},
                    Row{"99999999999:-99999999999", 2147483647, -2147483647 - 1},
                    Row{"99999999999999999999999:1", 2147483647, 1},
                    Row{std::string("1:2\0003:4", 7), 1, 2}, Row{std::string("\0", 1), 0, 0},
                    Row{std::string(128, '1'), 2147483647, 0},
                    Row{"1:" + std::string(126, '9'), 1, 2147483647},
                    Row{std::string(127, ' ') + "3:7", 3, 0}));

} // namespace
} // namespace qorcfg
