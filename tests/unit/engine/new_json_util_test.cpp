#include "engine/new_json_util.h"

#include "engine/document.h"
#include "engine/systeminfo.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;

TEST(JsonTest, StrictTextIsOneDocumentAndNothingElse)
{
    EXPECT_TRUE(parse_json("{\"a\": 1} \n", JsonSyntax::strict));
    std::string error;
    EXPECT_FALSE(parse_json("{\"a\": 1} x", JsonSyntax::strict, &error));
    EXPECT_EQ(error, "text behind the document at byte 9");
    EXPECT_FALSE(parse_json("{\"a\": ", JsonSyntax::strict, &error));
    EXPECT_NE(error.find("unexpected end"), std::string::npos);
    EXPECT_TRUE(parse_json("{\"a\": 1} x", JsonSyntax::lenient));
    EXPECT_FALSE(parse_json("", JsonSyntax::lenient));
    EXPECT_FALSE(parse_json("{", JsonSyntax::lenient));
}

TEST(JsonTest, AccessToTheWrongTypeFindsNothing)
{
    const Json text = Json::string("x");
    EXPECT_EQ(json_size(text.get()), 0U);
    EXPECT_EQ(json_element(text.get(), 0), nullptr);
    EXPECT_EQ(json_get_member(text.get(), "a"), nullptr);
    EXPECT_FALSE(json_set(text.get(), "a", Json::integer(1)));
    EXPECT_FALSE(json_append(text.get(), Json::integer(1)));
    EXPECT_EQ(json_get_member(nullptr, "a"), nullptr);
    EXPECT_EQ(json_value_text(nullptr), "");
    const Json object = Json::object();
    EXPECT_EQ(json_element(object.get(), 0), nullptr);
    int visits = 0;
    for_each_member(text.get(), [&](const char *, json_object *) { ++visits; });
    EXPECT_EQ(visits, 0);
}

TEST(JsonTest, ValuesAreComparedByTheirCompactTextSoOrderMatters)
{
    const Json left = parse_json(R"({"a": "1", "b": "2"})", JsonSyntax::strict);
    const Json same = parse_json(R"({ "a":"1","b":"2" })", JsonSyntax::strict);
    const Json moved = parse_json(R"({"b": "2", "a": "1"})", JsonSyntax::strict);
    EXPECT_TRUE(json_equal(left.get(), same.get()));
    EXPECT_FALSE(json_equal(left.get(), moved.get()));
    EXPECT_FALSE(json_equal(Json::string("1").get(), Json::integer(1).get()));
    EXPECT_FALSE(json_equal(left.get(), nullptr));
}

TEST(NewJsonUtilTest, AnEmptyOrNullStringAddsNothing)
{
    const Json object = Json::object();
    json_add_string(object.get(), "x", "");
    json_add_string(object.get(), "y", static_cast<const char *>(nullptr));
    json_add_string(object.get(), "z", std::string());
    EXPECT_EQ(json_compact_text(object.get()), "{}");
    json_add_string(object.get(), "x", "1");
    json_add_int(object.get(), "n", 0);
    EXPECT_EQ(json_compact_text(object.get()), R"({"x":"1","n":0})");
}

TEST(NewJsonUtilTest, AnOptionWrittenTwiceKeepsItsPlaceAndItsLastValue)
{
    const Json object = Json::object();
    json_add_string(object.get(), "x", "1");
    json_add_string(object.get(), "y", "2");
    json_add_string(object.get(), "x", "3");
    EXPECT_EQ(json_compact_text(object.get()), R"({"x":"3","y":"2"})");
}

TEST(NewJsonUtilTest, EachKindHasItsContainer)
{
    EXPECT_EQ(json_compact_text(new_section_container(2).get()), "{}");
    EXPECT_EQ(json_compact_text(new_section_container(1).get()), R"([{"alias-name":true}])");
    EXPECT_EQ(json_compact_text(new_section_container(0).get()), R"([{"alias-name":false}])");
    EXPECT_FALSE(new_section_container(3));
    EXPECT_FALSE(new_section_container(-1));
}

int kind_of(const char *text)
{
    return section_kind(parse_json(text, JsonSyntax::strict).get());
}

TEST(NewJsonUtilTest, TheKindIsReadFromTheContainer)
{
    EXPECT_EQ(kind_of("{}"), 2);
    EXPECT_EQ(kind_of("\"text\""), 2);
    EXPECT_EQ(kind_of("[{}]"), 1);
    EXPECT_EQ(kind_of("[]"), 1);
    EXPECT_EQ(kind_of("[5]"), 1);
    EXPECT_EQ(kind_of(R"([{"alias-name": true}])"), 1);
    EXPECT_EQ(kind_of(R"([{"alias-name": false}])"), 0);
    EXPECT_EQ(kind_of(R"([{"alias-name": "true"}])"), 1);
    EXPECT_EQ(kind_of(R"([{"alias-name": "false"}])"), 1);
    EXPECT_EQ(kind_of(R"([{"alias-name": ""}])"), 0);
    EXPECT_EQ(kind_of(R"([{"alias-name": 0}])"), 0);
    for (const int kind : {0, 1, 2}) {
        EXPECT_EQ(section_kind(new_section_container(kind).get()), kind);
    }
}

TEST(ReadInfoValueTest, AMemberIsReadAsTextOfAtMost127Bytes)
{
    const DeviceRoot device;
    device.write("/tmp/cache/systeminfo/x.info", R"({"text": "abc", "number": 5, "flag": true,
        "null": null, "long": ")" + std::string(200, 'x') +
                                                     "\"} trailing text");
    const auto read = [](const char *key) {
        return read_info_value("/tmp/cache/systeminfo/x.info", key);
    };
    EXPECT_EQ(read("text"), "abc");
    EXPECT_EQ(read("number"), "5");
    EXPECT_EQ(read("flag"), "true");
    EXPECT_EQ(read("null"), "");
    EXPECT_EQ(read("missing"), "");
    EXPECT_EQ(read("long"), std::string(127, 'x'));
}

TEST(ReadInfoValueTest, AnUnreadableFileGivesTheEmptyText)
{
    const DeviceRoot device;
    EXPECT_EQ(read_info_value("/tmp/cache/systeminfo/none.info", "a"), "");
    device.write("/tmp/cache/systeminfo/bad.info", "{\"a\": ");
    EXPECT_EQ(read_info_value("/tmp/cache/systeminfo/bad.info", "a"), "");
    device.write("/tmp/cache/systeminfo/list.info", "[1]");
    EXPECT_EQ(read_info_value("/tmp/cache/systeminfo/list.info", "a"), "");
}

TEST(DocumentTest, SectionsAndOptionsKeepTheOrderOfFirstUse)
{
    const DeviceRoot device;
    device.set({{"key_a", "1"}, {"key_c", "a longer text"}});
    constexpr std::array options{
        Option{"a", "key_a"},
        Option{"b", "key_b"},
        Option{"c", "key_c", cut<8>},
    };
    Document doc;
    doc.section("type", "one").add(options);
    doc.section("other", "two").add("x", "").add_even_empty("y", "").add_int("n", 3);
    doc.section("type", "one").add_list("l", std::vector<std::string>{"p", "q"});
    doc.append("array", numbered_sections).add("z", "1");
    doc.append("array", numbered_sections);
    doc.container("empty", anonymous_sections);
    EXPECT_EQ(json_compact_text(doc.get()),
              R"({"type":{"one":{"a":"1","c":"a longer","l":["p","q"]}},)"
              R"("other":{"two":{"y":"","n":3}},)"
              R"("array":[{"alias-name":true},{"z":"1"},{}],"empty":[{"alias-name":false}]})");
    EXPECT_TRUE(doc.complete());
}

TEST(DocumentTest, ATextThatIsNoObjectIsAnEmptyDocument)
{
    EXPECT_EQ(json_compact_text(Document::parse("[1]").get()), "{}");
    EXPECT_EQ(json_compact_text(Document::parse("{").get()), "{}");
}

TEST(DocumentTest, AContainerOfTheWrongFormMakesTheDocumentIncomplete)
{
    Document doc;
    doc.container("type", named_sections);
    doc.append("type", numbered_sections).add("a", "1");
    EXPECT_FALSE(doc.complete());
}

constexpr const char *interface_file = "/tmp/cache/systeminfo/ethinfo.info";

TEST(SystemInfoTest, RowsAreReadInOrderAndPrintedOnStandardError)
{
    const DeviceRoot device;
    device.write(interface_file, R"({"wan_eth_ifs": "eth5", "wanv6_net_section": "wan6"})");
    testing::internal::CaptureStderr();
    init_all_systeminfo();
    const std::vector<std::string> lines =
        test::split_lines(testing::internal::GetCapturedStderr());
    ASSERT_EQ(lines.size(), 12U);
    EXPECT_EQ(lines[0].rfind("qorcfgs:", 0), 0U);
    EXPECT_NE(lines[0].find("  init_all_systeminfo eth5"), std::string::npos);
    EXPECT_EQ(systeminfo[wan_eth_ifs].value, "eth5");
    EXPECT_EQ(systeminfo[lan_eth_ifs].value, "");
    EXPECT_EQ(systeminfo[wanv6_net_section].value, "wan6");
    EXPECT_STREQ(systeminfo[mppp_net_section].key, "mppp_net_section");
}

TEST(SystemInfoTest, EachRowHasItsKeyAtItsPosition)
{
    const DeviceRoot device;
    device.write(interface_file,
                 R"({"wan_eth_ifs": "0", "lan_eth_ifs": "1", "wan_net_if": "2",
                     "lan_net_if": "3", "ppp_net_if": "4", "mppp_net_if": "5",
                     "pppv6_net_if": "6", "wan_net_section": "7", "lan_net_section": "8",
                     "ppp_net_section": "9", "mppp_net_section": "10",
                     "wanv6_net_section": 11})");
    init_all_systeminfo();
    ASSERT_EQ(systeminfo.size(), 12U);
    for (std::size_t row = 0; row < systeminfo.size(); ++row) {
        EXPECT_EQ(systeminfo[row].value, std::to_string(row));
    }
}

TEST(SystemInfoTest, AValueIsCutAt126Bytes)
{
    const DeviceRoot device;
    device.write(interface_file, R"({"wan_net_if": ")" + std::string(150, 'w') + "\"}");
    init_all_systeminfo();
    EXPECT_EQ(systeminfo[wan_net_if].value, std::string(126, 'w'));
}

TEST(SystemInfoTest, AMissingFileEmptiesAllTwelveValues)
{
    const DeviceRoot device;
    init_all_systeminfo();
    for (const SystemInfo &row : systeminfo) {
        EXPECT_EQ(row.value, "") << row.key;
    }
}

TEST(SystemInfoTest, OnlyTheTextBaseMakesABaseUnit)
{
    const DeviceRoot device;
    const auto role = [&](const char *text) {
        device.write("/tmp/cache/systeminfo/sysinfo.info", text);
        return read_is_base();
    };
    EXPECT_EQ(role(R"({"kova_type": "Base"})"), 1);
    EXPECT_EQ(role(R"({"kova_type": "base"})"), 0);
    EXPECT_EQ(role(R"({"kova_type": "Base "})"), 0);
    EXPECT_EQ(role(R"({"kova_type": "Satellite"})"), 0);
    EXPECT_EQ(role(R"({"kova_type": ["Base"]})"), 0);
    EXPECT_EQ(role(R"({"other": "Base"})"), 0);
    EXPECT_EQ(role("{"), 0);
}

} // namespace
} // namespace qorcfg
