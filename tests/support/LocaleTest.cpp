#include "support/locale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using str::locale::floatformat;
using str::locale::ID;
using str::locale::notGiven;

ID const classic = ID::Classic();
ID const german(L',', L'.');

struct Read {
    double value;
    std::size_t used;
};

testing::AssertionResult Reads(std::wstring const& text, double expected, std::size_t length, ID const& id = classic) {
    Read read{-77, 77};
    htl::status const failure = str::locale::from_string(read.value, read.used, text, id);
    if (failure.IsError()) return testing::AssertionFailure() << failure.AsWString();
    if (read.value != expected || read.used != length)
        return testing::AssertionFailure() << text << ": " << read.value << " in " << read.used << " characters";
    return testing::AssertionSuccess();
}

testing::AssertionResult IsNoNumber(std::wstring const& text, ID const& id = classic) {
    Read read{-77, 77};
    htl::status const failure = str::locale::from_string(read.value, read.used, text, id);
    if (failure.AsWString() != HznError::syntax(text).AsWString()) return testing::AssertionFailure() << text;
    if (read.value != -77 || read.used != 77) return testing::AssertionFailure() << "outputs changed by " << text;
    return testing::AssertionSuccess();
}

std::wstring Text(double value, unsigned precision, unsigned digits, floatformat::Type format, ID const& id = classic) {
    std::wstring text = L"old";
    EXPECT_FALSE(str::locale::to_string(text, value, precision, digits, format, id).IsError());
    return text;
}
std::wstring General(double value, unsigned digits, ID const& id = classic) {
    return Text(value, notGiven, digits, floatformat::General, id);
}

TEST(LocaleReadTest, TakesTheNumberAtTheBeginning) {
    EXPECT_TRUE(Reads(L"12", 12, 2));
    EXPECT_TRUE(Reads(L"12 kPa", 12, 2));
    EXPECT_TRUE(Reads(L"-1.5e3]", -1500, 6));
    EXPECT_TRUE(Reads(L"+.5", 0.5, 3));
    EXPECT_TRUE(Reads(L"1.2.3", 1.2, 3));
    EXPECT_TRUE(Reads(L"1-2", 1, 1));
    EXPECT_TRUE(Reads(L"0x10", 0, 1));
}

TEST(LocaleReadTest, APointBehindTheLastDigitCounts) {
    EXPECT_TRUE(Reads(L"12.", 12, 3));
    EXPECT_TRUE(Reads(L"12. Next", 12, 3));
    EXPECT_TRUE(Reads(L"12..", 12, 3));
}

TEST(LocaleReadTest, AnExponentCountsOnlyIfDigitsFollow) {
    EXPECT_TRUE(Reads(L"1e", 1, 1));
    EXPECT_TRUE(Reads(L"1e+", 1, 1));
    EXPECT_TRUE(Reads(L"1each", 1, 1));
    EXPECT_TRUE(Reads(L"1.e2", 100, 4));
    EXPECT_TRUE(Reads(L"1E-2x", 0.01, 4));
}

TEST(LocaleReadTest, WordsAreNoNumbers) {
    for (wchar_t const* text : {L"", L" 1", L"information", L"inf", L"-inf", L"nan", L"NaN(1)", L"infinity", L"e5",
                                L".", L"-", L"+-1", L"--1", L"-.e1", L"x1", L"\u0661", L"\u00BD"}) {
        EXPECT_TRUE(IsNoNumber(text)) << text;
    }
}

TEST(LocaleReadTest, TheLocalesPointIsTheOnlyOne) {
    EXPECT_TRUE(Reads(L"1,5", 1.5, 3, german));
    EXPECT_TRUE(Reads(L",5", 0.5, 2, german));
    EXPECT_TRUE(Reads(L"1.500,25", 1, 1, german)); // no grouping is read
    EXPECT_TRUE(Reads(L"1,5", 1, 1));
    EXPECT_TRUE(IsNoNumber(L".5", german));
    EXPECT_TRUE(Reads(L"3\u066B5", 3.5, 3, ID(L'\u066B', L'\0')));
}

TEST(LocaleReadTest, ANumberBeyondADoubleIsOutOfRange) {
    using htl::Convert_error_status;
    Read read{-77, 77};
    htl::status const failure = str::locale::from_string(read.value, read.used, L"1e999 kPa", classic);
    EXPECT_EQ(
        failure.AsWString(),
        Convert_error_status::OutOfRangeStatus(L"1e999", Convert_error_status::FloatingPointString()).AsWString());
    EXPECT_EQ(read.value, -77);
    EXPECT_EQ(read.used, 77u);
    EXPECT_TRUE(Reads(L"1e-999", 0, 6));
}

TEST(LocaleReadTest, LongNumbersAreRead) { EXPECT_TRUE(Reads(L"0." + std::wstring(1000, L'0') + L"5e1001", 5, 1008)); }

TEST(LocaleWriteTest, GeneralRoundsToSignificantDigits) {
    EXPECT_EQ(General(0, 8), L"0");
    EXPECT_EQ(General(2.0 / 3, 8), L"0.66666667");
    EXPECT_EQ(General(65.6167979, 4), L"65.62");
    EXPECT_EQ(General(100, 8), L"100");
    EXPECT_EQ(General(-12.5, 8), L"-12.5");
    EXPECT_EQ(General(1234567.891, 8), L"1234567.9");
    EXPECT_EQ(General(123456789, 8), L"1.2345679e+08");
    EXPECT_EQ(General(0.00012, 8), L"0.00012");
    EXPECT_EQ(General(0.000012, 8), L"1.2e-05");
    EXPECT_EQ(General(0.5, 0), L"0.5"); // one digit at least
}

TEST(LocaleWriteTest, GeneralWithoutDigitsReadsBack) {
    EXPECT_EQ(General(0.1 + 0.2, notGiven), L"0.30000000000000004");
    EXPECT_EQ(General(1e20, notGiven), L"1e+20");
}

TEST(LocaleWriteTest, GeneralIgnoresThePrecision) { EXPECT_EQ(Text(1.23456, 1, 4, floatformat::General), L"1.235"); }

TEST(LocaleWriteTest, FixedAndScientificTakeThePrecision) {
    EXPECT_EQ(Text(1.25, 3, 1, floatformat::Fixed), L"1.250");
    EXPECT_EQ(Text(2.75, 0, 1, floatformat::Fixed), L"3");
    EXPECT_EQ(Text(1.5, notGiven, 1, floatformat::Fixed), L"1.5");
    EXPECT_EQ(Text(1500, 2, 1, floatformat::Scientific), L"1.50e+03");
    EXPECT_EQ(Text(1500, notGiven, 1, floatformat::Scientific), L"1.5e+03");
}

TEST(LocaleWriteTest, TheLocalesPointIsWrittenAndNoGrouping) {
    EXPECT_EQ(General(1234.5, 8, german), L"1234,5");
    EXPECT_EQ(Text(1e6, 1, 0, floatformat::Fixed, german), L"1000000,0");
}

TEST(LocaleWriteTest, TheLargestPrecisionIsBounded) {
    std::wstring const whole = Text(-std::numeric_limits<double>::max(), notGiven - 1, 0, floatformat::Fixed);
    EXPECT_EQ(whole.substr(0, 7), L"-179769");
    EXPECT_EQ(whole.size(), 1u + 309 + 1 + 1100);
    EXPECT_EQ(Text(1, notGiven - 1, 0, floatformat::Scientific).size(), 2u + 1100 + 4);
    EXPECT_EQ(General(0.5, notGiven - 1), L"0.5");
    EXPECT_EQ(Text(std::numeric_limits<double>::denorm_min(), notGiven, 0, floatformat::Fixed),
              L"0." + std::wstring(323, L'0') + L"5");
}

TEST(LocaleWriteTest, ValuesThatAreNotFiniteFailAndLeaveTheText) {
    for (double const value :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), std::nan("")}) {
        std::wstring text = L"old";
        htl::status const failure = str::locale::to_string(text, value, notGiven, 8, floatformat::General, classic);
        EXPECT_TRUE(failure.Is(90007));
        EXPECT_EQ(text, L"old");
    }
}

std::wstring Appended(double value, ID const& id = classic) {
    std::wstring text = L"=";
    str::locale::AppendNumber(text, value, id);
    return text;
}
std::wstring Rounded(double value, int digits, ID const& id = classic) {
    std::wstring text = L"=";
    str::locale::AppendRounded(text, value, digits, id);
    return text;
}

TEST(LocaleAppendTest, TheShortestTextIsAppendedWithTheLocalesPoint) {
    EXPECT_EQ(Appended(0.1 + 0.2), L"=0.30000000000000004");
    EXPECT_EQ(Appended(-1234.5, german), L"=-1234,5");
    EXPECT_EQ(Appended(1.5e20, german), L"=1,5e+20");
    EXPECT_EQ(Appended(1e6), L"=1000000");
    std::wstring text;
    str::locale::AppendNumber(text, 0.1f, german);
    EXPECT_EQ(text, L"0,1");
}

TEST(LocaleAppendTest, NumbersWithFewerDigitsAreNotRounded) {
    EXPECT_EQ(Rounded(0, 15), L"=0");
    EXPECT_EQ(Rounded(-0.0, 15), L"=-0");
    EXPECT_EQ(Rounded(-12.5, 15, german), L"=-12,5");
    EXPECT_EQ(Rounded(100, 15), L"=100");
    EXPECT_EQ(Rounded(0.1, 1), L"=0.1");
    EXPECT_EQ(Rounded(0.1 + 0.2, 17), L"=0.30000000000000004");
}

TEST(LocaleAppendTest, RoundingDropsZerosAtTheEnd) {
    EXPECT_EQ(Rounded(0.1 + 0.2, 15), L"=0.3");
    EXPECT_EQ(Rounded(0.30479999999999996, 15), L"=0.3048");
    EXPECT_EQ(Rounded(2.0 / 3, 15), L"=0.666666666666667");
    EXPECT_EQ(Rounded(-1.0 / 3, 15), L"=-0.333333333333333");
    EXPECT_EQ(Rounded(1234.5678, 6), L"=1234.57");
    EXPECT_EQ(Rounded(10.04, 3), L"=10");
    EXPECT_EQ(Rounded(123456, 2), L"=120000");
}

TEST(LocaleAppendTest, RoundingCarries) {
    EXPECT_EQ(Rounded(0.99999999999999989, 15), L"=1");
    EXPECT_EQ(Rounded(9.96, 2), L"=10");
    EXPECT_EQ(Rounded(1999.9, 3), L"=2000");
    EXPECT_EQ(Rounded(129.96, 4), L"=130");
    EXPECT_EQ(Rounded(999999999999999.9, 15), L"=1e+15");
    EXPECT_EQ(Rounded(9.999999999999999e-6, 15), L"=0.00001"); // in full from 1e-5 on
}

TEST(LocaleAppendTest, AHalfIsRoundedByWhatTheNumberIs) {
    EXPECT_EQ(Rounded(0.125, 2), L"=0.12"); // exactly half: to the even digit
    EXPECT_EQ(Rounded(0.375, 2), L"=0.38"); // likewise
    EXPECT_EQ(Rounded(0.15, 1), L"=0.1");   // 0.1499999999999999944...
    EXPECT_EQ(Rounded(0.35, 1), L"=0.3");   // 0.3499999999999999778...
    EXPECT_EQ(Rounded(0.45, 1), L"=0.5");   // 0.4500000000000000111...
    EXPECT_EQ(Rounded(1.005, 3), L"=1");    // 1.00499999999999989...
    EXPECT_EQ(Rounded(8.345, 3), L"=8.35"); // 8.3450000000000006394...
    EXPECT_EQ(Rounded(-2.5, 1), L"=-2");    // exactly half
    EXPECT_EQ(Rounded(1.2500001, 2), L"=1.3");
}

TEST(LocaleAppendTest, RoundedNumbersHaveTheFormOfOthers) {
    EXPECT_EQ(Rounded(1.0 / 3 * 1e-4, 3), L"=0.0000333");
    EXPECT_EQ(Rounded(1.0 / 3 * 1e-5, 3, german), L"=3,33e-06");
    EXPECT_EQ(Rounded(2.0 / 3 * 1e15, 3), L"=667000000000000");
    EXPECT_EQ(Rounded(2.0 / 3 * 1e16, 3), L"=6.67e+15");
    EXPECT_EQ(Rounded(2.0 / 3 * 1e300, 1), L"=7e+299");
    EXPECT_EQ(Rounded(std::numeric_limits<double>::max(), 15), L"=1.79769313486232e+308");
    EXPECT_EQ(Rounded(std::numeric_limits<double>::denorm_min(), 15), L"=5e-324");
}

TEST(LocaleAppendTest, NoDigitsGiveZero) {
    EXPECT_EQ(Rounded(-0.75, 0), L"=0");
    EXPECT_EQ(Rounded(12, -3), L"=0");
}

TEST(LocaleAppendTest, WhatIsNotFiniteHasNoText) {
    EXPECT_EQ(Appended(std::nan("")), L"=");
    EXPECT_EQ(Rounded(std::numeric_limits<double>::infinity(), 15), L"=");
}

TEST(LocaleReadTest, TheLengthOfANumberIsWhatIsRead) {
    EXPECT_EQ(str::locale::NumberLength(L"-1.5e3]", classic), 6u);
    EXPECT_EQ(str::locale::NumberLength(L"1,5 m", german), 3u);
    EXPECT_EQ(str::locale::NumberLength(L"1,5 m", classic), 1u);
    EXPECT_EQ(str::locale::NumberLength(L"1e999", classic), 5u);
    for (wchar_t const* text : {L"", L" 1", L"m", L"-", L"."}) EXPECT_EQ(str::locale::NumberLength(text, classic), 0u);
}

TEST(LocaleCharacterTest, DigitsAreAscii) {
    for (wchar_t c = L'0'; c <= L'9'; ++c) EXPECT_TRUE(str::locale::isdigit(c, german));
    for (wchar_t const c : {L'/', L':', L'a', L'\u0661', L'\uFF11', L'\0'})
        EXPECT_FALSE(str::locale::isdigit(c, german));
}

TEST(LocaleCharacterTest, WhiteSpaceIncludesNoBreakSpaces) {
    for (wchar_t const c : {L' ', L'\t', L'\n', L'\v', L'\f', L'\r', wchar_t(0x85), L'\u00A0', L'\u1680', L'\u2000',
                            L'\u200A', L'\u2028', L'\u2029', L'\u202F', L'\u205F', L'\u3000'}) {
        EXPECT_TRUE(str::locale::isspace(c, german)) << static_cast<unsigned>(c);
    }
    for (wchar_t const c : {L'\0', L'\b', L'a', L'_', L'\u200B', L'\uFEFF', L'\u180E'}) {
        EXPECT_FALSE(str::locale::isspace(c, german)) << static_cast<unsigned>(c);
    }
}

TEST(LocaleIDTest, MissingLocaleIsTheClassicOne) {
    EXPECT_EQ(ID(std::string("xx_XX.no-such-locale")), ID::Classic());
    EXPECT_EQ(ID(std::string("C")), ID::Classic());
    EXPECT_EQ(ID::Classic().DecimalPoint(), L'.');
    EXPECT_EQ(ID::Classic().Grouping(), L'\0');
    EXPECT_NE(ID::Classic(), german);
    EXPECT_EQ(german.Grouping(), L'.');
}

TEST(LocaleIDTest, UsersLocaleIsReadOnce) {
    ID const& first = str::locale::native();
    EXPECT_EQ(&first, &str::locale::native());
}

TEST(LocaleIDTest, AnApplicationMaySetTheUsersNotation) {
    ID const& native = str::locale::native();
    ID const before = str::locale::SetNative(german);
    EXPECT_EQ(native, german);
    EXPECT_EQ(&native, &str::locale::native());
    EXPECT_EQ(str::locale::SetNative(before), german);
    EXPECT_EQ(native, before);
}

TEST(LocaleIDTest, ReadsBackWhatItWrites) {
    for (ID const& id : {classic, german, str::locale::native()}) {
        std::wstring const text = General(-1234.0625, notGiven, id);
        EXPECT_TRUE(Reads(text, -1234.0625, text.size(), id));
    }
}

} // namespace
