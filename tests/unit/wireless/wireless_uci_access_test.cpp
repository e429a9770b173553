#include "wireless/uci_access.h"

#include "support/device_root.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <uci.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;

class WirelessUciAccessTest : public testing::Test {
protected:
    WirelessUciAccessTest()
    {
        device_.write("/tmp/etc/config/net", "config host 'a'\n"
                                             "\toption name 'first'\n"
                                             "\tlist l 'plain'\n"
                                             "\tlist l 'two words'\n"
                                             "\tlist l 'it'\\''s\ta tab'\n"
                                             "\nconfig host\n"
                                             "\toption name 'second'\n");
    }

    /// Result and value of a read into a field of `size` bytes that held "before"; and what it
    /// printed on standard error.
    std::string read(const char *path, std::size_t size = 32)
    {
        std::string value = "before";
        testing::internal::CaptureStderr();
        const int result = get_uci_option_value(path, &value, size);
        return std::to_string(result) + " " + value + " " + testing::internal::GetCapturedStderr();
    }

    /// Loads "net", adds a section, and gives back the result.
    int add(const char *type, const char *name)
    {
        const auto lock = lock_uci();
        const UciContext context = open_uci_context();
        uci_package *package = nullptr;
        EXPECT_EQ(uci_load(context.get(), "net", &package), 0);
        return uci_add_named_section(context.get(), package, "net", type, name);
    }
    std::string saved() const { return device_.read("/tmp/.uci/net"); }

    DeviceRoot device_;
};

TEST_F(WirelessUciAccessTest, AnOptionGivesItsValueAndASectionItsType)
{
    EXPECT_EQ(read("net.a.name"), "0 first ");
    EXPECT_EQ(read("net.@host[1].name"), "0 second ");
    EXPECT_EQ(read("net.a"), "0 host ");
    EXPECT_EQ(read("net.@host[1]"), "0 host ");
}

TEST_F(WirelessUciAccessTest, APackageIsFoundAndHasNoValue)
{
    EXPECT_EQ(read("net"), "0 before ");
}

TEST_F(WirelessUciAccessTest, AValueIsCutOneByteBelowTheSize)
{
    EXPECT_EQ(read("net.a.name", 5), "0 firs ");
    EXPECT_EQ(read("net.a.name", 6), "0 first ");
    EXPECT_EQ(read("net.a", 3), "0 ho ");
}

TEST_F(WirelessUciAccessTest, WhatIsMissingInAPackageLeavesTheValue)
{
    EXPECT_EQ(read("net.a.other"), "1 before ");
    EXPECT_EQ(read("net.b"), "1 before ");
    EXPECT_EQ(read("net.b.name"), "1 before ");
}

TEST_F(WirelessUciAccessTest, ALookupThatFailsIsReported)
{
    EXPECT_EQ(read("nothing.a.name"), "1 before get_uci_option_value Error: Entry not found\n");
    EXPECT_EQ(read("net.a.name.more").substr(0, 41), "1 before get_uci_option_value Error: Pars");
    // However often, one line each.
    EXPECT_EQ(read("nothing.a.name"), "1 before get_uci_option_value Error: Entry not found\n");
}

TEST_F(WirelessUciAccessTest, AListLeavesTheValueAndIsFound)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(read("net.a.l"), "0 before ");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(WirelessUciAccessTest, WithoutAFieldAListIsPrintedQuotedWhereItMustBe)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(get_uci_option_value("net.a.l", nullptr, 0), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "plain 'two words' 'it'\\''s\ta tab'\n");
}

TEST_F(WirelessUciAccessTest, AnEmptyItemOfAListIsPrintedBetweenItsBlanks)
{
    device_.write("/tmp/etc/config/net", "config host 'a'\n\tlist l ''\n\tlist l 'x'\n"
                                         "\tlist l ''\n\tlist l 'y'\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(get_uci_option_value("net.a.l", nullptr, 0), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), " x  y\n");
}

TEST_F(WirelessUciAccessTest, ItemsWithLineEndsArePrintedQuoted)
{
    device_.write("/tmp/etc/config/net", "config host 'a'\n\tlist l \"a\rb\"\n"
                                         "\tlist l 'c\nd'\n\tlist l '\"e\"'\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(get_uci_option_value("net.a.l", nullptr, 0), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "'a\rb' 'c\nd' \"e\"\n");
}

TEST_F(WirelessUciAccessTest, ChangesThatAreSavedAreSeen)
{
    device_.write("/tmp/.uci/net", "net.a.name='changed'\n");
    EXPECT_EQ(read("net.a.name"), "0 changed ");
}

TEST_F(WirelessUciAccessTest, ANamedSectionIsAddedAndSavedOnce)
{
    EXPECT_EQ(add("host", "c"), 0);
    EXPECT_EQ(read("net.c"), "0 host ");
    EXPECT_EQ(read("net.@host[2]"), "0 host ");
    EXPECT_EQ(read("net.@host[3]"), "1 before ");
    const std::string changes = saved();
    EXPECT_EQ(std::count(changes.begin(), changes.end(), '\n'), 2) << changes;
}

TEST_F(WirelessUciAccessTest, WithoutANameTheSectionStaysAnonymous)
{
    EXPECT_EQ(add("host", nullptr), 0);
    EXPECT_EQ(read("net.@host[2]"), "0 host ");
    EXPECT_EQ(saved().find('@'), std::string::npos);
}

TEST_F(WirelessUciAccessTest, AFolderThatCannotHoldChangesFailsTheAddition)
{
    std::filesystem::remove_all(device_.path("/tmp/.uci"));
    device_.write("/tmp/.uci", "a file");
    EXPECT_EQ(add("host", "c"), 1);
}

TEST_F(WirelessUciAccessTest, RenamingWhatIsNotThereFails)
{
    const auto lock = lock_uci();
    const UciContext context = open_uci_context();
    EXPECT_NE(uci_rename_section(context.get(), "net.nothing=other"), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(uci_rename_section(context.get(), "nothing.a=other"), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "get_uci_option_value Error: Entry not found\n");
    EXPECT_EQ(uci_rename_section(context.get(), "net.@host[1]=b"), 0);
    EXPECT_EQ(saved().substr(saved().find('=')), "='b'\n");
}

TEST_F(WirelessUciAccessTest, ARenamingExpressionIsCutAt255Bytes)
{
    const auto lock = lock_uci();
    const UciContext context = open_uci_context();
    const std::string kept(255 - std::string("net.a=").size(), 'n');
    EXPECT_EQ(uci_rename_section(context.get(), ("net.a=" + kept + "lost").c_str()), 0);
    EXPECT_EQ(saved(), "@net.a='" + kept + "'\n");
}

} // namespace
} // namespace qorcfg
