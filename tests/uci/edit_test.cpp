#include "uci/uci_scratch.h"

namespace qorcfg {
namespace {

class UciEditTest : public testing::Test {
protected:
    UciEditTest()
    {
        UciScratch::write(scratch_.config("p"),
                          "config t 'a'\n\toption x '1'\n\tlist l 'one'\n\tlist l 'two'\n"
                          "\toption z '9'\nconfig t\n");
        uci_load(ctx_.get(), "p", &package_);
    }

    /// Looks `text` up with a fresh ptr and makes the change.
    int change(int (*call)(uci_context *, uci_ptr *), std::string text)
    {
        uci_ptr ptr{};
        uci_lookup_ptr(ctx_.get(), &ptr, text.data(), true);
        return call(ctx_.get(), &ptr);
    }
    std::string exported(bool header = false)
    {
        const std::unique_ptr<FILE, int (*)(FILE *)> file(std::tmpfile(), &std::fclose);
        EXPECT_EQ(uci_export(ctx_.get(), file.get(), package_, header), UCI_OK);
        std::rewind(file.get());
        std::string text;
        for (int c = std::getc(file.get()); c != EOF; c = std::getc(file.get())) {
            text += static_cast<char>(c);
        }
        return text;
    }
    /// The changes that are saved so far.
    std::string changes()
    {
        EXPECT_EQ(uci_save(ctx_.get(), package_), UCI_OK);
        return UciScratch::read(scratch_.changes("p")).value_or("");
    }

    UciScratch scratch_;
    UciHandle ctx_ = open_uci(scratch_);
    uci_package *package_ = nullptr;
};

TEST_F(UciEditTest, SetRefusesWhatMakesNoSense)
{
    EXPECT_EQ(change(uci_set, "p.a.x"), UCI_ERR_INVAL) << "no value";
    EXPECT_EQ(change(uci_set, "p.nos.x=1"), UCI_ERR_INVAL) << "no section";
    EXPECT_EQ(change(uci_set, "p.nos.x="), UCI_ERR_INVAL) << "no section";
    EXPECT_EQ(change(uci_set, "p=v"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_set, "p.new=bad type"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_set, "p.a.nox="), UCI_OK) << "nothing to delete";
    EXPECT_EQ(change(uci_set, "p.nos="), UCI_OK) << "nothing to delete";
    EXPECT_EQ(change(uci_set, "p.a.x=1"), UCI_OK) << "as it is";
    EXPECT_EQ(change(uci_set, "p.a=t"), UCI_OK) << "as it is";
    EXPECT_EQ(changes(), "");
    EXPECT_EQ(uci_set(ctx_.get(), nullptr), UCI_ERR_INVAL);
}

TEST_F(UciEditTest, SetKeepsThePlaceOfAnOption)
{
    EXPECT_EQ(change(uci_set, "p.a.x=a much longer value than before"), UCI_OK);
    EXPECT_EQ(change(uci_set, "p.a.l=one"), UCI_OK);
    EXPECT_EQ(exported(), "\nconfig t 'a'\n\toption x 'a much longer value than before'\n"
                          "\toption l 'one'\n\toption z '9'\n\nconfig t\n\n");
    EXPECT_EQ(changes(), "p.a.x='a much longer value than before'\np.a.l='one'\n");
}

TEST_F(UciEditTest, ListItemsAreAddedAndRemoved)
{
    EXPECT_EQ(change(uci_add_list, "p.nos.l=v"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_add_list, "p.a.l"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_add_list, "p.a=junk"), UCI_OK) << "logged, and dropped when read back";
    EXPECT_EQ(change(uci_add_list, "p.a.x="), UCI_OK);
    EXPECT_EQ(change(uci_del_list, "p.a.l=one"), UCI_OK);
    EXPECT_EQ(change(uci_del_list, "p.a.z=9"), UCI_OK) << "no list: nothing";
    EXPECT_EQ(change(uci_del_list, "p.a.nol=9"), UCI_OK);
    EXPECT_EQ(change(uci_del_list, "p.nos.l=9"), UCI_ERR_INVAL);
    EXPECT_EQ(exported(), "\nconfig t 'a'\n\tlist x '1'\n\tlist x ''\n\tlist l 'two'\n"
                          "\toption z '9'\n\nconfig t\n\n");
    EXPECT_EQ(changes(), "|p.a='junk'\n|p.a.x=''\n~p.a.l='one'\n");
}

TEST_F(UciEditTest, AnItemCanNameItselfForRemoval)
{
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.section = "a";
    ptr.option = "l";
    uci_option *list =
        uci_lookup_option(ctx_.get(), uci_lookup_section(ctx_.get(), package_, "a"), "l");
    ptr.value = list_to_element(list->v.list.next)->name;
    EXPECT_EQ(uci_del_list(ctx_.get(), &ptr), UCI_OK);
    EXPECT_STREQ(list_to_element(list->v.list.next)->name, "two");
}

TEST_F(UciEditTest, DeleteTakesSectionsOptionsAndItemsByNumber)
{
    EXPECT_EQ(change(uci_delete, "p"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_delete, "p.nos"), UCI_ERR_NOTFOUND);
    EXPECT_EQ(change(uci_delete, "p.a.nox"), UCI_ERR_NOTFOUND);
    EXPECT_EQ(change(uci_delete, "p.a.l=7"), UCI_OK) << "too high: nothing";
    EXPECT_EQ(change(uci_delete, "p.a.l=abc"), 1);
    EXPECT_EQ(change(uci_delete, "p.a.l=0"), UCI_OK);
    EXPECT_EQ(change(uci_delete, "p.a.x=0"), UCI_OK) << "a string goes as a whole";
    EXPECT_EQ(change(uci_delete, "p.@t[-1]"), UCI_OK);
    EXPECT_EQ(exported(), "\nconfig t 'a'\n\tlist l 'two'\n\toption z '9'\n\n");
    EXPECT_EQ(changes(), "-p.a.l='0'\n-p.a.x\n-p.cfg02b619\n");
}

TEST_F(UciEditTest, RenameDoesNotLookAtTheNewName)
{
    EXPECT_EQ(change(uci_rename, "p.nos=b"), UCI_ERR_NOTFOUND);
    EXPECT_EQ(change(uci_rename, "p.a"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_rename, "p=q"), UCI_ERR_INVAL);
    EXPECT_EQ(change(uci_rename, "p.@t[1]=a"), UCI_OK);
    EXPECT_EQ(change(uci_rename, "p.a.x=y"), UCI_OK);
    EXPECT_EQ(exported(), "\nconfig t 'a'\n\toption y '1'\n\tlist l 'one'\n\tlist l 'two'\n"
                          "\toption z '9'\n\nconfig t 'a'\n\n");
    EXPECT_EQ(changes(), "@p.cfg02b619='a'\n@p.a.x='y'\n");
}

TEST_F(UciEditTest, ANameThatCannotBeStoredIsGoneAfterTheCommit)
{
    EXPECT_EQ(change(uci_rename, "p.a=bad-name"), UCI_OK);
    EXPECT_NE(uci_lookup_section(ctx_.get(), package_, "bad-name"), nullptr);
    EXPECT_EQ(uci_commit(ctx_.get(), &package_, false), UCI_OK);
    EXPECT_NE(uci_lookup_section(ctx_.get(), package_, "a"), nullptr);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "@p.a='bad-name'\n");
}

TEST_F(UciEditTest, AValueWithARefusedByteIsDroppedAtTheCommit)
{
    uci_ptr ptr{};
    ptr.p = package_;
    ptr.section = "a";
    ptr.option = "esc";
    ptr.value = "\x1b[0m";
    EXPECT_EQ(uci_set(ctx_.get(), &ptr), UCI_OK);
    EXPECT_EQ(change(uci_set, "p.a.good=1"), UCI_OK);
    EXPECT_EQ(uci_commit(ctx_.get(), &package_, false), UCI_OK);
    uci_section *section = uci_lookup_section(ctx_.get(), package_, "a");
    EXPECT_EQ(uci_lookup_option(ctx_.get(), section, "esc"), nullptr);
    EXPECT_STREQ(uci_lookup_option_string(ctx_.get(), section, "good"), "1");
}

TEST_F(UciEditTest, AddedSectionsGetNamesFromNumberAndType)
{
    uci_section *section = nullptr;
    EXPECT_EQ(uci_add_section(ctx_.get(), nullptr, "t", &section), UCI_ERR_INVAL);
    EXPECT_EQ(uci_add_section(ctx_.get(), package_, nullptr, &section), UCI_ERR_INVAL);
    ASSERT_EQ(uci_add_section(ctx_.get(), package_, "t", &section), UCI_OK);
    EXPECT_STREQ(section->e.name, "cfg03b619");
    EXPECT_TRUE(section->anonymous);
    EXPECT_STREQ(section->type, "t");
    EXPECT_EQ(section->package, package_);
    ASSERT_EQ(uci_add_section(ctx_.get(), package_, "wifi-iface", &section), UCI_OK);
    EXPECT_STREQ(section->e.name, "cfg043579");
    EXPECT_EQ(change(uci_delete, "p.cfg043579"), UCI_OK);
    for (int i = 5; i <= 256; ++i) {
        ASSERT_EQ(uci_add_section(ctx_.get(), package_, "t", &section), UCI_OK);
    }
    EXPECT_STREQ(section->e.name, "cfg100b619") << "deletions do not give numbers back";
}

TEST_F(UciEditTest, ATypeOfAnotherLengthMakesTheGeneratedNameAFixedOne)
{
    EXPECT_EQ(change(uci_set, "p.@t[1]=u"), UCI_OK);
    EXPECT_TRUE(uci_lookup_section(ctx_.get(), package_, "cfg02b619")->anonymous);
    EXPECT_EQ(change(uci_set, "p.@u[0]=longer"), UCI_OK);
    EXPECT_FALSE(uci_lookup_section(ctx_.get(), package_, "cfg02b619")->anonymous);
}

TEST_F(UciEditTest, ATypeThatNeedsQuotesIsReadBackAsItWas)
{
    EXPECT_EQ(change(uci_set, "p.q=it's;#\"\\"), UCI_OK);
    EXPECT_EQ(uci_commit(ctx_.get(), &package_, false), UCI_OK);
    const UciHandle other = open_uci(scratch_);
    uci_package *package = nullptr;
    ASSERT_EQ(uci_load(other.get(), "p", &package), UCI_OK);
    EXPECT_STREQ(uci_lookup_section(other.get(), package, "q")->type, "it's;#\"\\");
}

TEST_F(UciEditTest, SectionsMoveToAPositionAmongAll)
{
    uci_section *first = uci_lookup_section(ctx_.get(), package_, "a");
    EXPECT_EQ(uci_reorder_section(ctx_.get(), nullptr, 0), UCI_ERR_INVAL);
    EXPECT_EQ(uci_reorder_section(ctx_.get(), first, 0), UCI_OK);
    EXPECT_EQ(changes(), "") << "it stands there already";
    EXPECT_EQ(uci_reorder_section(ctx_.get(), first, 99), UCI_OK);
    EXPECT_EQ(package_->sections.prev, &first->e.list);
    EXPECT_EQ(uci_reorder_section(ctx_.get(), first, 0), UCI_OK);
    EXPECT_EQ(package_->sections.next, &first->e.list);
    EXPECT_EQ(changes(), "^p.a='99'\n^p.a='0'\n");
}

TEST_F(UciEditTest, WithoutAContextEveryCallIsInvalid)
{
    uci_ptr ptr{};
    uci_section *section = nullptr;
    uci_element *e = nullptr;
    char **names = nullptr;
    char *text = nullptr;
    std::string path = "p";
    EXPECT_EQ(uci_set_confdir(nullptr, "/x"), UCI_ERR_INVAL);
    EXPECT_EQ(uci_load(nullptr, "p", &package_), UCI_ERR_INVAL);
    EXPECT_EQ(uci_unload(nullptr, package_), UCI_ERR_INVAL);
    EXPECT_EQ(uci_lookup_ptr(nullptr, &ptr, path.data(), true), UCI_ERR_INVAL);
    EXPECT_EQ(uci_lookup_next(nullptr, &e, &package_->sections, "a"), UCI_ERR_INVAL);
    EXPECT_EQ(uci_add_section(nullptr, package_, "t", &section), UCI_ERR_INVAL);
    EXPECT_EQ(uci_set(nullptr, &ptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_add_list(nullptr, &ptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_del_list(nullptr, &ptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_rename(nullptr, &ptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_delete(nullptr, &ptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_save(nullptr, package_), UCI_ERR_INVAL);
    EXPECT_EQ(uci_revert(nullptr, &ptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_commit(nullptr, &package_, false), UCI_ERR_INVAL);
    EXPECT_EQ(uci_export(nullptr, stdout, package_, false), UCI_ERR_INVAL);
    EXPECT_EQ(uci_import(nullptr, stdin, "p", nullptr, true), UCI_ERR_INVAL);
    EXPECT_EQ(uci_list_configs(nullptr, &names), UCI_ERR_INVAL);
    EXPECT_EQ(uci_parse_argument(nullptr, stdin, &text, &text), UCI_ERR_INVAL);
    uci_free_context(nullptr);
}

TEST_F(UciEditTest, TextsThatCanBeStoredAreTold)
{
    EXPECT_TRUE(uci_validate_text("any \t\r\n\x7f\xff text"));
    EXPECT_TRUE(uci_validate_text(""));
    for (const char *text : {"\x01", "\x08", "\x0b", "\x0c", "\x0e", "\x1f"}) {
        EXPECT_FALSE(uci_validate_text(text));
    }
    EXPECT_FALSE(uci_validate_text(nullptr));
}

} // namespace
} // namespace qorcfg
