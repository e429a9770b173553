#include "uci/uci_scratch.h"

namespace qorcfg {
namespace {

constexpr int D = uci_ptr::UCI_LOOKUP_DONE;
constexpr int C = uci_ptr::UCI_LOOKUP_COMPLETE;
constexpr int E = uci_ptr::UCI_LOOKUP_EXTENDED;

class UciLookupTest : public testing::Test {
protected:
    UciLookupTest()
    {
        UciScratch::write(scratch_.config("p"),
                          "config t 'a'\n\toption x '1'\nconfig t\n\toption x '2'\nconfig u 'b'\n");
        UciScratch::write(scratch_.config("broken"), "config t 'a\n");
    }

    /// Looks a text up with a fresh ptr; `ptr_` then speaks of it.
    int look_up(const std::string &text, bool extended = true)
    {
        text_ = text;
        ptr_ = {};
        return uci_lookup_ptr(ctx_.get(), &ptr_, text_.data(), extended);
    }
    std::string section() const { return ptr_.section != nullptr ? ptr_.section : "(none)"; }
    /// Which of package, section and option were found.
    std::string found() const
    {
        return std::string(ptr_.p != nullptr ? "p" : "") + (ptr_.s != nullptr ? "s" : "") +
               (ptr_.o != nullptr ? "o" : "");
    }
    bool zeroed() const
    {
        return ptr_.flags == 0 && found().empty() && ptr_.package == nullptr &&
               ptr_.section == nullptr && ptr_.option == nullptr && ptr_.value == nullptr;
    }

    UciScratch scratch_;
    UciHandle ctx_ = open_uci(scratch_);
    std::string text_;
    uci_ptr ptr_{};
};

TEST_F(UciLookupTest, WhatExistsIsComplete)
{
    EXPECT_EQ(look_up("p"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);
    EXPECT_EQ(found(), "p");
    EXPECT_EQ(ptr_.target, UCI_TYPE_PACKAGE);
    EXPECT_EQ(ptr_.last, &ptr_.p->e);

    EXPECT_EQ(look_up("p.a"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);
    EXPECT_EQ(found(), "ps");
    EXPECT_EQ(ptr_.target, UCI_TYPE_SECTION);
    EXPECT_EQ(ptr_.last, &ptr_.s->e);

    EXPECT_EQ(look_up("p.a.x"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);
    EXPECT_EQ(found(), "pso");
    EXPECT_EQ(ptr_.target, UCI_TYPE_OPTION);
    EXPECT_EQ(ptr_.last, &ptr_.o->e);
    EXPECT_STREQ(ptr_.o->v.string, "1");
}

TEST_F(UciLookupTest, WhatIsMissingInAPackageIsNoErrorButNotComplete)
{
    EXPECT_EQ(look_up("p.a.nox"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D);
    EXPECT_EQ(found(), "ps");
    EXPECT_EQ(ptr_.last, &ptr_.s->e);
    for (const char *text : {"p.nos", "p.nos.o"}) {
        EXPECT_EQ(look_up(text), UCI_OK);
        EXPECT_EQ(ptr_.flags, D);
        EXPECT_EQ(found(), "p");
        EXPECT_EQ(ptr_.last, &ptr_.p->e);
    }
}

TEST_F(UciLookupTest, AnIndexBecomesTheNameOfItsSection)
{
    const std::vector<std::pair<const char *, const char *>> indexes{
        {"p.@t[0]", "a"},
        {"p.@t[1]", "cfg02b619"},
        {"p.@t[-1]", "cfg02b619"},
        {"p.@t[-2]", "a"},
        {"p.@t[]", "a"},
        {"p.@[2]", "b"},
        {"p.@[-1]", "b"},
        {"p.@[]", "a"},
        {"p.@t[ 1]", "cfg02b619"},
        {"p.@t[+1]", "cfg02b619"},
        {"p.@t[01]", "cfg02b619"},
        {"p.@u[0]", "b"},
        {"p.@t[4294967297]", "cfg02b619"},
    };
    for (const auto &[text, name] : indexes) {
        EXPECT_EQ(look_up(text), UCI_OK) << text;
        EXPECT_EQ(ptr_.flags, D | C | E) << text;
        EXPECT_EQ(found(), "ps") << text;
        EXPECT_EQ(section(), name) << text;
    }
    EXPECT_EQ(look_up("p.@t[].x"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C | E);
    EXPECT_EQ(found(), "pso");
}

TEST_F(UciLookupTest, AnIndexThatNothingHasKeepsItsText)
{
    for (const char *text : {"p.@t[9]", "p.@t[-3]", "p.@nos[0]", "p.@nos[]", "p.@[3]",
                             "p.@t[99999999999999999999]", "p.@t[-99999999999999999999]"}) {
        EXPECT_EQ(look_up(text), UCI_OK) << text;
        EXPECT_EQ(ptr_.flags, D | E) << text;
        EXPECT_EQ(found(), "p") << text;
        EXPECT_EQ("p." + section(), text);
    }
}

TEST_F(UciLookupTest, ATextThatIsNotWellFormedZeroesThePtr)
{
    for (const char *text : {"p.@t", "p.@t[x]", "p.@t[1]z", "p.@t[1 ]", "p.@t[ ]", "p.@t[-]",
                             "p.a-b", "p.", "p..x", "p.@"}) {
        EXPECT_EQ(look_up(text), UCI_ERR_INVAL) << text;
        EXPECT_TRUE(zeroed()) << text;
    }
    for (const char *text : {"p.a.", "p.a.x.y", "", ".", "p.a.bad-opt", "p.a.x=\x01", "a b",
                             "p.@a.b[0].x", "p.a.x=\x0b", "p.a.x=\x1f"}) {
        EXPECT_EQ(look_up(text), UCI_ERR_PARSE) << text;
        EXPECT_TRUE(zeroed()) << text;
    }
    EXPECT_EQ(uci_message(ctx_.get(), nullptr), "Parse error");
}

TEST_F(UciLookupTest, APackageThatCannotBeLoadedKeepsItsName)
{
    for (const char *text : {"nop", "nop.a.x", "../p"}) {
        const int expected = text[0] == '.' ? UCI_ERR_PARSE : UCI_ERR_NOTFOUND;
        EXPECT_EQ(look_up(text), expected) << text;
        if (expected == UCI_ERR_NOTFOUND) {
            EXPECT_EQ(ptr_.flags, D);
            EXPECT_STREQ(ptr_.package, "nop");
        }
    }
    EXPECT_EQ(look_up("broken.a"), UCI_ERR_PARSE);
    EXPECT_EQ(ptr_.flags, D);
    EXPECT_STREQ(ptr_.package, "broken");
    EXPECT_EQ(uci_message(ctx_.get(), "x"),
              "x: Parse error (EOF with unterminated ') at line 1, byte 12");
}

TEST_F(UciLookupTest, TheFirstEqualsSignBeginsTheValue)
{
    EXPECT_EQ(look_up("p.a.x=v=w.y"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);
    EXPECT_STREQ(ptr_.value, "v=w.y");
    EXPECT_EQ(look_up("p.a.x="), UCI_OK);
    EXPECT_STREQ(ptr_.value, "");
    EXPECT_EQ(look_up("p.a.x"), UCI_OK);
    EXPECT_EQ(ptr_.value, nullptr);
    EXPECT_EQ(look_up("p.a.x=\t\r\n\x7f\xff"), UCI_OK);
    EXPECT_STREQ(ptr_.value, "\t\r\n\x7f\xff");
}

TEST_F(UciLookupTest, IndexesAreRefusedWhereTheCallerWantsNames)
{
    EXPECT_EQ(look_up("p.@t[0]", false), UCI_ERR_INVAL);
    EXPECT_EQ(ptr_.flags, D | E);
    EXPECT_EQ(found(), "p");
    EXPECT_EQ(look_up("p.a", false), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);
}

TEST_F(UciLookupTest, APtrFilledByHandIsCompleted)
{
    uci_package *package = nullptr;
    ASSERT_EQ(uci_load(ctx_.get(), "p", &package), UCI_OK);
    ptr_ = {};
    ptr_.p = package;
    ptr_.s = uci_lookup_section(ctx_.get(), package, "a");
    ptr_.option = "y";
    ptr_.value = "new";
    EXPECT_EQ(uci_set(ctx_.get(), &ptr_), UCI_OK);
    EXPECT_EQ(section(), "a");
    EXPECT_STREQ(uci_lookup_option_string(ctx_.get(), ptr_.s, "y"), "new");
}

TEST_F(UciLookupTest, OneOfManyNamesIsFoundAlsoAfterRemovalAndRenaming)
{
    uci_package *package = nullptr;
    ASSERT_EQ(uci_load(ctx_.get(), "p", &package), UCI_OK);
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(look_up("p.s" + std::to_string(i) + "=t"), UCI_OK);
        ASSERT_EQ(uci_set(ctx_.get(), &ptr_), UCI_OK);
        ASSERT_EQ(look_up("p.a.o" + std::to_string(i) + "=v"), UCI_OK);
        ASSERT_EQ(uci_set(ctx_.get(), &ptr_), UCI_OK);
    }
    ASSERT_EQ(look_up("p.s100"), UCI_OK);
    ASSERT_EQ(uci_delete(ctx_.get(), &ptr_), UCI_OK);
    ASSERT_EQ(look_up("p.s150=s7"), UCI_OK);
    ASSERT_EQ(uci_rename(ctx_.get(), &ptr_), UCI_OK); // now there are two of that name
    ASSERT_EQ(look_up("p.a.o50"), UCI_OK);
    ASSERT_EQ(uci_delete(ctx_.get(), &ptr_), UCI_OK);
    EXPECT_EQ(uci_lookup_section(ctx_.get(), package, "s100"), nullptr);
    EXPECT_EQ(uci_lookup_section(ctx_.get(), package, "s150"), nullptr);
    EXPECT_NE(uci_lookup_section(ctx_.get(), package, "s199"), nullptr);
    EXPECT_EQ(look_up("p.a.o50"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D);
    EXPECT_EQ(look_up("p.a.o51"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);

    // The first of two is meant, then the other one.
    ASSERT_EQ(look_up("p.s7"), UCI_OK);
    ASSERT_EQ(uci_delete(ctx_.get(), &ptr_), UCI_OK);
    EXPECT_EQ(look_up("p.s7"), UCI_OK);
    EXPECT_EQ(ptr_.flags, D | C);
    EXPECT_EQ(ptr_.s->e.list.next, &uci_lookup_section(ctx_.get(), package, "s151")->e.list);
}

TEST_F(UciLookupTest, TheNextElementOfANameIsFoundInAnyList)
{
    uci_package *package = nullptr;
    ASSERT_EQ(uci_load(ctx_.get(), "p", &package), UCI_OK);
    uci_element *e = nullptr;
    EXPECT_EQ(uci_lookup_next(ctx_.get(), &e, &package->sections, "b"), UCI_OK);
    EXPECT_STREQ(e->name, "b");
    EXPECT_EQ(uci_lookup_next(ctx_.get(), &e, &package->sections, "c"), UCI_ERR_NOTFOUND);
    EXPECT_EQ(uci_lookup_package(ctx_.get(), "p"), package);
    EXPECT_EQ(uci_lookup_package(ctx_.get(), "q"), nullptr);
}

TEST_F(UciLookupTest, AnOptionTableTakesOnlyOptionsOfTheRightKind)
{
    uci_package *package = nullptr;
    ASSERT_EQ(uci_load(ctx_.get(), "p", &package), UCI_OK);
    const uci_parse_option wanted[] = {
        {"x", UCI_TYPE_STRING}, {"x", UCI_TYPE_LIST}, {"y", UCI_TYPE_STRING}};
    uci_option *options[3] = {};
    uci_parse_section(uci_lookup_section(ctx_.get(), package, "a"), wanted, 3, options);
    ASSERT_NE(options[0], nullptr);
    EXPECT_STREQ(options[0]->v.string, "1");
    EXPECT_EQ(options[1], nullptr);
    EXPECT_EQ(options[2], nullptr);
}

} // namespace
} // namespace qorcfg
