#include "components/text.h"

#include "components/device_table.h"
#include "components/vlan_settings.h"
#include "fuzz/fuzz.h"

#include <charconv>
#include <optional>

using namespace qorcfg;

namespace {

std::string without(std::string text, std::string_view characters)
{
    std::erase_if(text, [&](char c) { return characters.find(c) != std::string_view::npos; });
    return text;
}

void check_fields(const std::string &rule)
{
    std::string joined;
    for (const std::string &field : split_at_blanks(rule)) {
        test::require(!field.empty(), "no field is empty", rule);
        joined += field;
    }
    test::require(joined == without(rule, " \t"), "the fields are all but the blanks", rule);

    std::string rebuilt;
    const std::vector<std::string> fields = split_at_single_blanks(rule);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        rebuilt.append(i == 0 ? "" : " ").append(fields[i]);
    }
    test::require(!fields.empty() && rebuilt == rule, "fields and single blanks are the rule",
                  rule);
    constexpr std::size_t few = 4;
    const auto first = first_fields<few>(fields);
    test::require(first.has_value() == (fields.size() >= few), "there are enough fields or none");
    test::require(!first || first->back() == fields[few - 1], "they are the first ones", rule);
}

void check_ports(const std::string &maps)
{
    set_lan_ports(maps);
    constexpr std::size_t most_ports = 8;
    constexpr std::size_t longest_name = 7;
    test::require(lan_ports().size() <= most_ports, "there are 8 ports at most", maps);
    for (const std::string &port : lan_ports()) {
        test::require(port.size() <= longest_name, "a port's name has 7 bytes at most", port);
    }
    test::require(lan_ports_in(-1) == lan_ports() && lan_ports_in(0).empty(),
                  "a mask chooses among the ports");
    set_lan_ports("");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string rule = test::input_text(data, size);
    check_fields(rule);
    check_ports(rule);

    int exact = 0;
    const auto [end, error] = std::from_chars(rule.data(), rule.data() + rule.size(), exact);
    if (error == std::errc()) {
        test::require(number_of(rule) == exact, "a number that fits is read as it is", rule);
    }
    number_of(rule);

    const std::string escaped = html_escaped(rule);
    test::require(escaped.find_first_of("\\\"()<>'") == std::string::npos,
                  "nothing that HTML or scripts take for more than text is left", escaped);
    constexpr std::size_t buckets = 32;
    const auto bucket = mac_bucket(rule);
    test::require(!bucket || (*bucket < buckets && rule.find('/') == std::string::npos),
                  "an address has one of the buckets and is a file name", rule);
    DeviceTable table;
    DeviceRecord *record = table.record(rule);
    test::require((record != nullptr) == bucket.has_value(), "what has a bucket has a record");
    test::require(record == table.record(rule), "an address has one record", rule);
    return 0;
}
