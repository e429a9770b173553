#include "uci/uci_scratch.h"

#include <array>
#include <string_view>

namespace qorcfg {
namespace {

class UciParserTest : public testing::Test {
protected:
    /// Loads the text as package "p" in a context of its own and gives the message, empty when it
    /// was read.
    std::string load(const std::string &text)
    {
        UciScratch::write(scratch_.config("p"), text);
        ctx_ = open_uci(scratch_);
        package_ = nullptr;
        return uci_load(ctx_.get(), "p", &package_) == UCI_OK ? "" : uci_message(ctx_.get(), "p");
    }
    std::string value(const char *section, const char *option)
    {
        const char *text = uci_lookup_option_string(
            ctx_.get(), uci_lookup_section(ctx_.get(), package_, section), option);
        return text != nullptr ? text : "(none)";
    }

    UciScratch scratch_;
    UciHandle ctx_;
    uci_package *package_ = nullptr;
};

struct Malformed {
    const char *text;
    const char *message;
};

constexpr std::array malformed{
    Malformed{"config\n", "p: Parse error (invalid command) at line 1, byte 0"},
    Malformed{"config t a\n\toption\n", "p: Parse error (invalid command) at line 2, byte 1"},
    Malformed{"Config t\n", "p: Parse error (invalid command) at line 1, byte 0"},
    Malformed{"\xef\xbb\xbf"
              "config t\n",
              "p: Parse error (invalid command) at line 1, byte 0"},
    Malformed{"config\vt\n", "p: Parse error (invalid command) at line 1, byte 0"},
    Malformed{"config \n", "p: Parse error (insufficient arguments) at line 1, byte 8"},
    Malformed{"config", "p: Parse error (config without name) at line 0, byte 6"},
    Malformed{"package ", "p: Parse error (package without name) at line 0, byte 8"},
    Malformed{"config t a\noption ", "p: Parse error (option without name) at line 1, byte 7"},
    Malformed{"package a.b\n",
              "p: Parse error (invalid character in name field) at line 1, byte 12"},
    Malformed{"config 't t'\n",
              "p: Parse error (invalid character in type field) at line 1, byte 13"},
    Malformed{"config t a-b\n",
              "p: Parse error (invalid character in name field) at line 1, byte 13"},
    Malformed{"config t a b\n", "p: Parse error (too many arguments) at line 1, byte 13"},
    Malformed{"option x 1\n", "p: Parse error (option/list command found before the first "
                              "section) at line 1, byte 0"},
    Malformed{"config t a\noption x 'open\nlist y 1\n",
              "p: Parse error (EOF with unterminated ') at line 3, byte 24"},
    Malformed{"config t a\noption x \"open\\\"",
              "p: Parse error (EOF with unterminated \") at line 1, byte 16"},
    Malformed{"config t \"a\n", "p: Parse error (EOF with unterminated \") at line 1, byte 12"},
    Malformed{"config t a\n\nconfig u a\n",
              "p: Parse error (section of different type overwrites prior section with same name) "
              "at line 3, byte 11"},
};

TEST_F(UciParserTest, AMalformedFileIsRefusedWithReasonLineAndByte)
{
    for (const auto &[text, message] : malformed) {
        EXPECT_EQ(load(text), message) << text;
        EXPECT_EQ(package_, nullptr);
        EXPECT_TRUE(uci_list_empty(&ctx_->root)) << "a half-read package stays loaded";
    }
}

TEST_F(UciParserTest, ANulByteMakesTheFileUnreadableInsteadOfEmpty)
{
    EXPECT_EQ(load("config t a\n" + std::string(5, '\0')),
              "p: Parse error (invalid character) at line 2, byte 0");
    EXPECT_EQ(load(std::string(4096, '\0')),
              "p: Parse error (invalid character) at line 1, byte 0");
}

TEST_F(UciParserTest, WithoutStrictBadLinesArePassedOver)
{
    UciScratch::write(
        scratch_.config("p"),
        "rubbish\nconfig t a\noption x 1 2\noption y 3\nconfig u a\noption z 'open\n");
    ctx_ = open_uci(scratch_);
    ctx_->flags = UCI_FLAG_SAVED_DELTA;
    ASSERT_EQ(uci_load(ctx_.get(), "p", &package_), UCI_OK);
    EXPECT_EQ(value("a", "x"), "(none)");
    EXPECT_EQ(value("a", "y"), "3");
    EXPECT_EQ(value("a", "z"), "(none)");
    EXPECT_STREQ(uci_lookup_section(ctx_.get(), package_, "a")->type, "u");
}

TEST_F(UciParserTest, QuotesEscapesCommentsAndContinuationsAreUnderstood)
{
    ASSERT_EQ(load("c t a # comment\r\n"
                   "  o b 'one '\"two \"three\n"
                   "option c \"q\\\"b\\\\n\\n\"\n"
                   "option d a\\ b\\'c\n"
                   "option e one\\\ntwo\n"
                   "option f \"one\\\ntwo\"\n"
                   "option g 'one\\\ntwo'\n"
                   "option h a#b\n"
                   "option i a;b\n"
                   "option j 'a';option k 2 ; option l 3\n"
                   "option m \\\n 4\n"
                   "option n '\x01\xff'\n"
                   "option o 1 ;\n"),
              "");
    EXPECT_EQ(value("a", "b"), "one two three");
    EXPECT_EQ(value("a", "c"), "q\"b\\nn");
    EXPECT_EQ(value("a", "d"), "a b'c");
    EXPECT_EQ(value("a", "e"), "onetwo");
    EXPECT_EQ(value("a", "f"), "onetwo");
    EXPECT_EQ(value("a", "g"), "one\\\ntwo");
    EXPECT_EQ(value("a", "h"), "a");
    EXPECT_EQ(value("a", "i"), "a");
    EXPECT_EQ(value("a", "j"), "a");
    EXPECT_EQ(value("a", "k"), "2");
    EXPECT_EQ(value("a", "l"), "3");
    EXPECT_EQ(value("a", "m"), "4");
    EXPECT_EQ(value("a", "n"), "\x01\xff");
    EXPECT_EQ(value("a", "o"), "1");
}

TEST_F(UciParserTest, AnEmptyOptionKeepsTheEarlierValueAndAListHoldsEmptyItems)
{
    ASSERT_EQ(load("config t a\noption x 1\noption x ''\nlist l ''\nlist l\n"), "");
    EXPECT_EQ(value("a", "x"), "1");
    const uci_option *list =
        uci_lookup_option(ctx_.get(), uci_lookup_section(ctx_.get(), package_, "a"), "l");
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->type, UCI_TYPE_LIST);
    int items = 0;
    uci_element *item = nullptr;
    uci_foreach_element(&list->v.list, item)
    {
        EXPECT_STREQ(item->name, "");
        ++items;
    }
    EXPECT_EQ(items, 2);
}

const std::string whole_file = "package p\n\n# head\nconfig t 'a'\n\toption x 'it'\\''s'\n"
                               "\tlist l \"one\\\"\"\n\tlist l 'two\nlines'\n\nconfig wifi-x\n"
                               "\toption o a\\ b;c\n\nc u b\n\to x \"j\\\nk\" # tail\n";

/// Loads; what was read must be walkable to the last byte, and what was refused must say so.
void expect_read_or_refused(const UciScratch &scratch, const std::string &text)
{
    UciScratch::write(scratch.config("p"), text);
    const UciHandle ctx = open_uci(scratch);
    uci_package *package = nullptr;
    const int result = uci_load(ctx.get(), "p", &package);
    if (result != UCI_OK) {
        EXPECT_EQ(result, UCI_ERR_PARSE) << text;
        EXPECT_EQ(package, nullptr);
        EXPECT_NE(uci_message(ctx.get(), "p").find(") at line "), std::string::npos) << text;
        return;
    }
    const std::unique_ptr<FILE, int (*)(FILE *)> null(std::fopen("/dev/null", "w"), &std::fclose);
    EXPECT_EQ(uci_export(ctx.get(), null.get(), package, true), UCI_OK);
}

TEST_F(UciParserTest, AFileCutAtAnyByteIsReadOrRefused)
{
    for (std::size_t length = 0; length <= whole_file.size(); ++length) {
        expect_read_or_refused(scratch_, whole_file.substr(0, length));
    }
}

TEST_F(UciParserTest, AFileWithAnyByteFlippedIsReadOrRefused)
{
    for (std::size_t at = 0; at < whole_file.size(); ++at) {
        for (const int bit : {0x01, 0x08, 0x20, 0x80, 0xff}) {
            std::string text = whole_file;
            text[at] = static_cast<char>(text[at] ^ bit);
            expect_read_or_refused(scratch_, text);
        }
        for (const char byte : {'\'', '"', '\\', ';', '#', '\n', '\0'}) {
            std::string text = whole_file;
            text[at] = byte;
            expect_read_or_refused(scratch_, text);
        }
    }
}

TEST_F(UciParserTest, AChangeFileCutAtAnyByteNeverMakesThePackageUnreadable)
{
    const std::string changes = "p.n='t'\np.n.o='it'\\''s'\n|p.a.l='x\ny'\n+p.cfg02b619='t'\n"
                                "@p.n='m'\n^p.a='1'\n~p.a.l='x\ny'\n-p.a.x\n-p.m\n";
    std::filesystem::create_directory(scratch_.savedir());
    for (std::size_t length = 0; length <= changes.size(); ++length) {
        UciScratch::write(scratch_.changes("p"), changes.substr(0, length));
        EXPECT_EQ(load("config t a\n\toption x 1\n"), "") << length;
    }
    EXPECT_EQ(value("a", "x"), "(none)");
    EXPECT_NE(uci_lookup_section(ctx_.get(), package_, "cfg02b619"), nullptr);
    EXPECT_EQ(uci_lookup_section(ctx_.get(), package_, "m"), nullptr);
}

TEST_F(UciParserTest, ArgumentsAreReadWordByWordAndLineByLine)
{
    const std::unique_ptr<FILE, int (*)(FILE *)> input(std::tmpfile(), &std::fclose);
    std::fputs("set 'p.a.x=a b' # comment\n\n'two\nlines'\n'open", input.get());
    std::rewind(input.get());
    ctx_ = open_uci(scratch_);
    std::vector<std::vector<std::string>> lines;
    int result = UCI_OK;
    while (result == UCI_OK && lines.size() < 10) {
        char *rest = nullptr;
        char *word = nullptr;
        std::vector<std::string> words;
        while ((result = uci_parse_argument(ctx_.get(), input.get(), &rest, &word)) == UCI_OK &&
               *word != '\0') {
            words.emplace_back(word);
        }
        lines.push_back(words);
    }
    const std::vector<std::vector<std::string>> expected{
        {"set", "p.a.x=a b"}, {}, {"two\nlines"}, {}};
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(uci_message(ctx_.get(), nullptr),
              "Parse error (EOF with unterminated ') at line 4, byte 5");
}

} // namespace
} // namespace qorcfg
