#include "engine/diff.h"

#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;

std::string sections(const char *base, const char *doc)
{
    const Json left = parse_json(base, JsonSyntax::strict);
    const Json right = parse_json(doc, JsonSyntax::strict);
    return json_compact_text(diff_sections(left.get(), right.get()).get());
}

std::string options(const char *base, const char *doc)
{
    const Json left = parse_json(base, JsonSyntax::strict);
    const Json right = parse_json(doc, JsonSyntax::strict);
    return json_compact_text(diff_options(left.get(), right.get()).get());
}

TEST(DiffTest, NullDocumentsGiveNullAndANullBaseGivesTheDocumentItself)
{
    const Json doc = parse_json(R"({"t": {}})", JsonSyntax::strict);
    EXPECT_FALSE(diff_sections(doc.get(), nullptr));
    EXPECT_EQ(diff_sections(nullptr, doc.get()).get(), doc.get());
    EXPECT_EQ(diff_options(nullptr, doc.get()).get(), doc.get());
}

TEST(DiffTest, ANewTypeIsCopiedWhole)
{
    EXPECT_EQ(sections("{}", R"({"t":{"a":{}},"u":[{"alias-name":true},{}],"v":{}})"),
              R"({"t":{"a":{}},"u":[{"alias-name":true},{}],"v":{}})");
    EXPECT_EQ(options("{}", R"({"t":{"a":{"l":["1"]}}})"), R"({"t":{"a":{"l":["1"]}}})");
}

TEST(DiffTest, EqualNamedSectionsAreLeftOutAndChangedOnesTravelWhole)
{
    EXPECT_EQ(sections(R"({"t":{"a":{"x":"1"},"b":{"x":"1"}}})",
                       R"({"t":{"a":{"x":"1"},"b":{"x":"2","y":"3"},"c":{}}})"),
              R"({"t":{"b":{"x":"2","y":"3"},"c":{}}})");
    EXPECT_EQ(sections(R"({"t":{"a":{"x":"1"}}})", R"({"t":{"a":{"x":"1"}}})"), "{}");
}

TEST(DiffTest, AnotherOrderOfOptionsIsAChange)
{
    EXPECT_EQ(sections(R"({"t":{"a":{"x":"1","y":"2"}}})", R"({"t":{"a":{"y":"2","x":"1"}}})"),
              R"({"t":{"a":{"y":"2","x":"1"}}})");
}

TEST(DiffTest, ArraysKeepPositionsAndMarkUnchangedElements)
{
    EXPECT_EQ(sections(R"({"t":[{"alias-name":true},{"x":"1"},{"x":"2"}]})",
                       R"({"t":[{"alias-name":true},{"x":"1"},{"x":"3"},{"x":"4"}]})"),
              R"({"t":[{"alias-name":true},0,{"x":"3"},{"x":"4"}]})");
    EXPECT_EQ(sections(R"({"t":[{"alias-name":false},{"x":"1"},{"x":"2"}]})",
                       R"({"t":[{"alias-name":false},{"x":"1"}]})"),
              R"({"t":[{"alias-name":false},0]})");
}

TEST(DiffTest, TheMarkerOfAnArrayIsWrittenAsABoolean)
{
    EXPECT_EQ(
        sections(R"({"t":[{"alias-name":"true"}]})", R"({"t":[{"alias-name":"true"},{"x":"1"}]})"),
        R"({"t":[{"alias-name":true},{"x":"1"}]})");
}

TEST(DiffTest, AContainerOfTheOtherFormCountsAsEmpty)
{
    EXPECT_EQ(sections(R"({"t":{"a":{"x":"1"}}})", R"({"t":[{"alias-name":false},{"x":"1"}]})"),
              R"({"t":[{"alias-name":false},{"x":"1"}]})");
    EXPECT_EQ(sections(R"({"t":[{"alias-name":false},{"x":"1"}]})", R"({"t":{"a":{"x":"1"}}})"),
              R"({"t":{"a":{"x":"1"}}})");
    EXPECT_EQ(sections(R"({"t":"text"})", R"({"t":{"a":{}}})"), R"({"t":{"a":{}}})");
    EXPECT_EQ(sections(R"({"t":{"a":{}}})", R"({"t":"text"})"), "{}");
}

TEST(DiffTest, OptionGranularityCarriesOnlyWhatChanged)
{
    EXPECT_EQ(options(R"({"t":{"lan":{"proto":"static","ip":"1","gone":"x"}}})",
                      R"({"t":{"lan":{"proto":"static","ip":"2","new":"y"}}})"),
              R"({"t":{"lan":{"ip":"2","new":"y"}}})");
    EXPECT_EQ(options(R"({"t":{"lan":{"ip":"1"}}})", R"({"t":{"lan":{"ip":"1"}}})"), "{}");
    // Only the order changed: each option is the same.
    EXPECT_EQ(options(R"({"t":{"lan":{"a":"1","b":"2"}}})", R"({"t":{"lan":{"b":"2","a":"1"}}})"),
              "{}");
}

TEST(DiffTest, AnOptionThatBecameEmptyLeavesItsSectionPresent)
{
    EXPECT_EQ(options(R"({"t":{"lan":{"ip":"1"}}})", R"({"t":{"lan":{"ip":""}}})"),
              R"({"t":{"lan":{}}})");
}

TEST(DiffTest, AChangedListTravelsAsItsTextUnderAKnownType)
{
    EXPECT_EQ(options(R"({"t":{"lan":{"l":["a"]}}})", R"({"t":{"lan":{"l":["a","b/c"]}}})"),
              R"({"t":{"lan":{"l":"[ \"a\", \"b\\\/c\" ]"}}})");
}

TEST(DiffTest, ANewSectionWithoutOptionsUnderAKnownTypeDoesNotAppearWithOptionGranularity)
{
    EXPECT_EQ(options(R"({"t":{"lan":{}}})", R"({"t":{"lan":{},"new":{}}})"), "{}");
}

TEST(DiffTest, NumbersAndBooleansAreComparedAndCarriedAsText)
{
    EXPECT_EQ(options(R"({"t":{"s":{"n":1,"b":true}}})", R"({"t":{"s":{"n":2,"b":"true"}}})"),
              R"({"t":{"s":{"n":"2"}}})");
}

TEST(DiffTest, ThreeDiagnosticLinesAreWrittenForEachComparedOption)
{
    const DeviceRoot device;
    options(R"({"t":{"s":{"a":"1","secret":"old"}}})", R"({"t":{"s":{"a":"1","secret":"word"}}})");
    const std::vector<std::string> log = device.log();
    EXPECT_EQ(log.size(), 6U);
    for (const std::string &message : log) {
        EXPECT_EQ(message.rfind("TEST ", 0), 0U);
        EXPECT_EQ(message.find("word"), std::string::npos);
    }
}

} // namespace
} // namespace qorcfg
