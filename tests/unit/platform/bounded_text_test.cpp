#include "platform/qor_platform.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

template <std::size_t Size> using Buffer = std::array<char, Size>;

TEST(BoundedTextTest, ATextThatFitsIsPrintedWithItsLength)
{
    Buffer<16> buffer{};
    EXPECT_EQ(qor_sprintf_s("vlan", buffer.data(), buffer.size(), "%s-v%d", "eth0", 12), 8);
    EXPECT_STREQ(buffer.data(), "eth0-v12");
}

TEST(BoundedTextTest, ATextThatIsTooLongIsCutAndTheRoutineNamed)
{
    Buffer<6> buffer{};
    testing::internal::CaptureStderr();
    EXPECT_EQ(qor_sprintf_s("vlan", buffer.data(), buffer.size(), "%s-v%d", "eth0", 12), 5);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "vlan: text of 8 bytes cut to 5\n");
    EXPECT_STREQ(buffer.data(), "eth0-");
}

TEST(BoundedTextTest, ATextThatJustFillsTheBufferIsNotCut)
{
    Buffer<9> buffer{};
    testing::internal::CaptureStderr();
    EXPECT_EQ(qor_sprintf_s("vlan", buffer.data(), buffer.size(), "%s-v%d", "eth0", 12), 8);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_STREQ(buffer.data(), "eth0-v12");
}

TEST(BoundedTextTest, TheSilentPrintCutsAndTerminates)
{
    Buffer<4> buffer{'x', 'x', 'x', 'x'};
    testing::internal::CaptureStderr();
    EXPECT_EQ(qor_snprintf(buffer.data(), buffer.size(), "%d", 123456), 3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_STREQ(buffer.data(), "123");
}

TEST(BoundedTextTest, NoBufferIsAFailure)
{
    Buffer<2> buffer{'x', 'y'};
    EXPECT_EQ(qor_sprintf_s("r", nullptr, 4, "a"), -1);
    EXPECT_EQ(qor_snprintf(buffer.data(), 0, "a"), -1);
    EXPECT_EQ(buffer[0], 'x');
}

TEST(BoundedTextTest, TwoTextsAroundADashAreScanned)
{
    Buffer<18> mac{};
    Buffer<4> index{};
    EXPECT_EQ(qor_sscanf_s("A1B2C3D4E5F6-12", "%[^-]-%s", mac.data(), mac.size(), index.data(),
                           index.size()),
              2);
    EXPECT_STREQ(mac.data(), "A1B2C3D4E5F6");
    EXPECT_STREQ(index.data(), "12");
}

TEST(BoundedTextTest, WithoutTheDashOnlyTheFirstTextIsStored)
{
    Buffer<18> mac{};
    Buffer<4> index{'?', '\0'};
    EXPECT_EQ(qor_sscanf_s("A1B2", "%[^-]-%s", mac.data(), mac.size(), index.data(), index.size()),
              1);
    EXPECT_STREQ(mac.data(), "A1B2");
    EXPECT_STREQ(index.data(), "?");
    EXPECT_EQ(qor_sscanf_s("A1B2-", "%[^-]-%s", mac.data(), mac.size(), index.data(), index.size()),
              1);
    EXPECT_EQ(qor_sscanf_s("-1", "%[^-]-%s", mac.data(), mac.size(), index.data(), index.size()),
              0);
    EXPECT_EQ(qor_sscanf_s("", "%[^-]-%s", mac.data(), mac.size(), index.data(), index.size()), -1);
}

TEST(BoundedTextTest, ATextLongerThanItsBufferIsCutAndScanningGoesOnBehindIt)
{
    Buffer<3> first{};
    Buffer<3> second{};
    EXPECT_EQ(qor_sscanf_s("abcdef-12345 x", "%[^-]-%s", first.data(), first.size(), second.data(),
                           second.size()),
              2);
    EXPECT_STREQ(first.data(), "ab");
    EXPECT_STREQ(second.data(), "12");
}

TEST(BoundedTextTest, ATextEndsAtWhiteSpaceAndBeginsBehindIt)
{
    Buffer<8> text{};
    int number = 0;
    EXPECT_EQ(qor_sscanf_s(" \tab 7", "%s%d", text.data(), text.size(), &number), 2);
    EXPECT_STREQ(text.data(), "ab");
    EXPECT_EQ(number, 7);
}

TEST(BoundedTextTest, NumbersTakeASignAndStopAtTheEndsOfTheirRange)
{
    int a = 0;
    int b = 0;
    int c = 0;
    EXPECT_EQ(qor_sscanf_s("  -12,+5, 99999999999999999999", "%d,%d,%d", &a, &b, &c), 3);
    EXPECT_EQ(a, -12);
    EXPECT_EQ(b, 5);
    EXPECT_EQ(c, std::numeric_limits<int>::max());
    EXPECT_EQ(qor_sscanf_s("-2147483649", "%d", &a), 1);
    EXPECT_EQ(a, std::numeric_limits<int>::min());
    EXPECT_EQ(qor_sscanf_s("-2147483648", "%d", &a), 1);
    EXPECT_EQ(a, std::numeric_limits<int>::min());
}

TEST(BoundedTextTest, WhatIsNoNumberStoresNothing)
{
    int number = 42;
    EXPECT_EQ(qor_sscanf_s("x1", "%d", &number), 0);
    EXPECT_EQ(qor_sscanf_s("-", "%d", &number), 0);
    EXPECT_EQ(qor_sscanf_s("  ", "%d", &number), -1);
    EXPECT_EQ(qor_sscanf_s("1", "%x", &number), 0);
    EXPECT_EQ(number, 42);
}

TEST(BoundedTextTest, ABlankOfTheFormatMatchesAnyRunOfBlanksAndOtherCharactersThemselves)
{
    int number = 0;
    EXPECT_EQ(qor_sscanf_s("vlan   \t 7", "vlan %d", &number), 1);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(qor_sscanf_s("vlan8", "vlan %d", &number), 1);
    EXPECT_EQ(number, 8);
    EXPECT_EQ(qor_sscanf_s("50%/9", "50%%/%d", &number), 1);
    EXPECT_EQ(number, 9);
    EXPECT_EQ(qor_sscanf_s("wlan9", "vlan %d", &number), 0);
}

TEST(BoundedTextTest, SeveralExcludedCharactersAndABracketAmongThem)
{
    Buffer<8> text{};
    EXPECT_EQ(qor_sscanf_s("ab;cd", "%[^,;]", text.data(), text.size()), 1);
    EXPECT_STREQ(text.data(), "ab");
    EXPECT_EQ(qor_sscanf_s("x-]y", "%[^]-]", text.data(), text.size()), 1);
    EXPECT_STREQ(text.data(), "x");
}

TEST(BoundedTextTest, ABufferWithoutRoomIsNotWritten)
{
    Buffer<2> buffer{'x', 'y'};
    EXPECT_EQ(qor_sscanf_s("ab", "%s", buffer.data(), std::size_t{0}), 0);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(qor_sscanf_s("ab", "%s", buffer.data(), std::size_t{1}), 1);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[1], 'y');
}

} // namespace
