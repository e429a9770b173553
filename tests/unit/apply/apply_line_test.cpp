#include "apply/batch_line.h"

#include <gtest/gtest.h>
#include <string>

namespace qorcfg {
namespace {

using Verb = BatchLine::Verb;

BatchLine parsed(std::string_view line)
{
    const char *fault = nullptr;
    const auto result = parse_batch_line(line, fault);
    EXPECT_TRUE(result) << line << ": " << fault;
    return result.value_or(BatchLine{});
}

std::string fault_of(std::string_view line)
{
    const char *fault = nullptr;
    EXPECT_FALSE(parse_batch_line(line, fault)) << line;
    return fault == nullptr ? "" : fault;
}

TEST(ApplyLineTest, TheValueIsTheRestOfTheLine)
{
    const BatchLine line = parsed("set net.lan.descr=  a=b.c 'd' \"e\" #f ;g \\ ");
    EXPECT_EQ(line.verb, Verb::set);
    EXPECT_EQ(line.package, "net");
    EXPECT_EQ(line.section, "lan");
    EXPECT_EQ(line.option, "descr");
    EXPECT_EQ(line.value, "  a=b.c 'd' \"e\" #f ;g \\ ");
    EXPECT_EQ(parsed("add_list net.lan.l=").value, "");
}

TEST(ApplyLineTest, BothDeletionVerbsTakeSectionsAndOptions)
{
    for (const char *verb : {"delete ", "del "}) {
        EXPECT_EQ(parsed(verb + std::string("net.lan")).option, "");
        EXPECT_EQ(parsed(verb + std::string("net.lan.ip")).option, "ip");
        EXPECT_TRUE(parsed(verb + std::string("net.lan")).is_deletion());
    }
}

TEST(ApplyLineTest, AnIndexIsANumberOrEmptyAndItsTypeMayHoldDots)
{
    const BatchLine line = parsed("set net.@a.b-c[12].x=1");
    EXPECT_TRUE(line.by_type);
    EXPECT_EQ(line.section, "a.b-c");
    EXPECT_EQ(line.position, 12U);
    EXPECT_EQ(line.option, "x");
    EXPECT_EQ(parsed("delete net.@rule[]").position, std::nullopt);
    EXPECT_EQ(parsed("add net some type").section, "some type");
}

TEST(ApplyLineTest, WhatIsNoCommandHasItsReason)
{
    EXPECT_EQ(fault_of("move net.a"), "no such command");
    EXPECT_EQ(fault_of("set"), "no \"=\"");
    EXPECT_EQ(fault_of("set net.a.b"), "no \"=\"");
    EXPECT_EQ(fault_of("set net=x"), "no section");
    EXPECT_EQ(fault_of("set .a.b=x"), "no package");
    EXPECT_EQ(fault_of("set net..b=x"), "no section");
    EXPECT_EQ(fault_of("set net.a.=x"), "no option name behind the dot");
    EXPECT_EQ(fault_of("set net.@t[0]=x"), "the type of a section without a name cannot be set");
    EXPECT_EQ(fault_of("add_list net.a=x"), "no option name");
    EXPECT_EQ(fault_of("add net"), "no package and type");
    EXPECT_EQ(fault_of("delete net"), "no section");
    EXPECT_EQ(fault_of("delete net.@t"), "no section index that can be read");
    EXPECT_EQ(fault_of("delete net.@t[x]"), "no section index that can be read");
    EXPECT_EQ(fault_of("delete net.@t[-1]"), "no section index that can be read");
    EXPECT_EQ(fault_of("delete net.@t[99999999999999999999]"), "no section index that can be read");
    EXPECT_EQ(fault_of("delete net.@t[1]x"), "text behind the section index");
}

} // namespace
} // namespace qorcfg
