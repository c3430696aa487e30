#include "support/fmt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>

namespace {

using str::fmt::arg;
using str::fmt::format;

TEST(FormatTest, FillsPlaceholdersByPosition) {
    EXPECT_EQ(format(L"%s.%s", L"Soils", std::wstring(L"Cohesion")), L"Soils.Cohesion");
    EXPECT_EQ(format("Soils[%d] has %u of %x", 3, 4u, 255), "Soils[3] has 4 of 255");
    EXPECT_EQ(format(std::string("%s"), "x"), "x");
    EXPECT_EQ(format(std::wstring(L"\"%s\""), L"x"), L"\"x\"");
}

TEST(FormatTest, TheArgumentsTypeDecidesNotTheLetter) {
    EXPECT_EQ(format("%d %u %x %s", "text", -1, 1.5, true), "text -1 1.5 true");
}

TEST(FormatTest, MissingArgumentsAreEmptyAndSurplusOnesDropped) {
    EXPECT_EQ(format("[%s][%s]", 1), "[1][]");
    EXPECT_EQ(format(L"[%s]", 1, 2, 3), L"[1]");
    EXPECT_EQ(format("plain", 1), "plain");
    EXPECT_EQ(format("%s"), "");
    EXPECT_EQ(format(L""), L"");
}

TEST(FormatTest, PercentSigns) {
    EXPECT_EQ(format("100%% of %s", "it"), "100% of it");
    EXPECT_EQ(format("%%s %%%s", 1), "%s %1");
    EXPECT_EQ(format("5% slope, %f, %5d, %"), "5% slope, %f, %5d, %");
    EXPECT_EQ(format(L"%s", L"%s%%"), L"%s%%");
}

TEST(FormatTest, EveryTypeOfArgumentInNarrowAndWideText) {
    auto const both = [](auto const& value) {
        std::string const narrow = format("%s", value);
        EXPECT_EQ(format(L"%s", value), std::wstring(narrow.begin(), narrow.end()));
        return narrow;
    };
    EXPECT_EQ(both('c'), "c");
    EXPECT_EQ(both(L'c'), "c");
    EXPECT_EQ(both(short{-7}), "-7");
    EXPECT_EQ(both(static_cast<unsigned short>(65535)), "65535");
    EXPECT_EQ(both(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(both(std::numeric_limits<unsigned>::max()), "4294967295");
    EXPECT_EQ(both(std::numeric_limits<htl::Int64>::min()), "-9223372036854775808");
    EXPECT_EQ(both(std::numeric_limits<htl::UInt64>::max()), "18446744073709551615");
    EXPECT_EQ(both(-3L), "-3");
    EXPECT_EQ(both(std::size_t{3}), "3");
    EXPECT_EQ(both(static_cast<unsigned char>(200)), "200");
    EXPECT_EQ(both(0.1), "0.1");
    EXPECT_EQ(both(1e20), "1e+20");
    EXPECT_EQ(both(0.5f), "0.5");
    EXPECT_EQ(both(true), "true");
    EXPECT_EQ(both(false), "false");
    EXPECT_EQ(both(std::string_view("view")), "view");
    EXPECT_EQ(both(std::wstring_view(L"view")), "view");
    EXPECT_EQ(both(reinterpret_cast<void const*>(0x1F2E)), "0x1f2e");
    EXPECT_EQ(both(static_cast<void const*>(nullptr)), "0x0");
    EXPECT_EQ(both(static_cast<char const*>(nullptr)), "");
    EXPECT_EQ(both(static_cast<wchar_t const*>(nullptr)), "");
}

TEST(FormatTest, NarrowTextIsUtf8) {
    EXPECT_EQ(format(L"%s %s",
                     "B\xC3\xB6"
                     "den",
                     L'\u00F6'),
              L"B\u00F6den \u00F6");
    EXPECT_EQ(format("%s %s", L"B\u00F6den", L'\u00F6'), "B\xC3\xB6"
                                                         "den \xC3\xB6");
    EXPECT_EQ(format(L"%s", '\xC3'), L"\uFFFD");
}

TEST(FormatTest, TextMayHoldZeroCharacters) {
    EXPECT_EQ(format(L"%s", std::wstring(L"a\0b", 3)), std::wstring(L"a\0b", 3));
    EXPECT_EQ(format("%s", std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(ConvertToTextTest, ReplacesTheOutput) {
    std::wstring wide = L"old";
    arg<int>{-5}.convert_to_text(wide, L"%d");
    EXPECT_EQ(wide, L"-5");
    std::string narrow = "old";
    arg<wchar_t const*>{L"new"}.convert_to_text(narrow, "%s");
    EXPECT_EQ(narrow, "new");
    arg<bool>{false}.convert_to_text(narrow, "%d");
    EXPECT_EQ(narrow, "false");
    arg<double>{std::numeric_limits<double>::infinity()}.convert_to_text(narrow, "%s");
    EXPECT_EQ(narrow, "");
}

TEST(TokenizeTest, LiteralTextAndPlaceholdersAlternate) {
    std::wstring const pattern = L"a%% %s%d z";
    wchar_t const* const expected[] = {L"a% ", L"%s", L"", L"%d", L" z"};
    std::wstring token;
    for (unsigned i = 0; i < 5; ++i) {
        EXPECT_TRUE(str::fmt::tokenize(token, i, pattern)) << i;
        EXPECT_EQ(token, expected[i]) << i;
    }
    for (unsigned i : {5u, 6u, 7u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        token = L"old";
        EXPECT_FALSE(str::fmt::tokenize(token, i, pattern)) << i;
        EXPECT_EQ(token, L"");
    }
}

TEST(TokenizeTest, TextWithoutPlaceholdersIsOneToken) {
    std::string token = "old";
    EXPECT_TRUE(str::fmt::tokenize(token, 0, ""));
    EXPECT_EQ(token, "");
    EXPECT_FALSE(str::fmt::tokenize(token, 1, ""));
    EXPECT_TRUE(str::fmt::tokenize(token, 0, "5% and %"));
    EXPECT_EQ(token, "5% and %");
}

TEST(TokenizeTest, TheFormatMayBeTheOutput) {
    std::string text = "Soils[%d]";
    EXPECT_TRUE(str::fmt::tokenize(text, 2, text));
    EXPECT_EQ(text, "]");
}

TEST(SnprintfTest, CutsAndTerminatesAndTellsTheWholeLength) {
    char narrow[8];
    std::fill_n(narrow, 8, 'x');
    EXPECT_EQ(str::snprintf(narrow, 5, "Soils[%d]", 12), 9u);
    EXPECT_EQ(std::string(narrow, 8), std::string("Soil\0xxx", 8));
    wchar_t wide[8];
    std::fill_n(wide, 8, L'x');
    EXPECT_EQ(str::snprintf(wide, 8, L"%s", L"Cohesion"), 8u);
    EXPECT_EQ(std::wstring(wide), L"Cohesio");
}

TEST(SnprintfTest, TextThatFitsIsWhole) {
    char narrow[6];
    EXPECT_EQ(str::snprintf(narrow, 6, "%s", "Soils"), 5u);
    EXPECT_STREQ(narrow, "Soils");
    wchar_t wide[1] = {L'x'};
    EXPECT_EQ(str::snprintf(wide, 1, L"%s", L"Soils"), 5u);
    EXPECT_EQ(wide[0], L'\0');
}

TEST(SnprintfTest, SizeZeroWritesNothing) {
    EXPECT_EQ(str::snprintf(static_cast<char*>(nullptr), 0, "%d", 123), 3u);
    EXPECT_EQ(str::snprintf(static_cast<wchar_t*>(nullptr), 0, L"%d", 123), 3u);
}

} // namespace
