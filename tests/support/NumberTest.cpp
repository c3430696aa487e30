#include "support/number.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>

namespace {

using htl::Int64;
using htl::UInt64;
using math::ParseResult;

std::string TextOf(double value) {
    char room[math::numberTextSize];
    return std::string(room, math::FormatDouble(room, value));
}
std::string TextOf(float value) {
    char room[math::numberTextSize];
    return std::string(room, math::FormatFloat(room, value));
}
std::wstring Widened(std::string const& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

bool SameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }
bool SameBits(float a, float b) { return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b); }

constexpr double largestDouble = 1.7976931348623157e308;

TEST(FormatDoubleTest, OrdinaryNumbersAreWrittenInFull) {
    EXPECT_EQ(TextOf(0.0), "0");
    EXPECT_EQ(TextOf(-0.0), "-0");
    EXPECT_EQ(TextOf(1.0), "1");
    EXPECT_EQ(TextOf(-18.5), "-18.5");
    EXPECT_EQ(TextOf(0.1), "0.1");
    EXPECT_EQ(TextOf(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(TextOf(2.0 / 3.0), "0.6666666666666666");
    EXPECT_EQ(TextOf(123456.789), "123456.789");
    EXPECT_EQ(TextOf(-1e14), "-100000000000000");
}

TEST(FormatDoubleTest, FullFormEndsBelowTenToTheFifteenth) {
    EXPECT_EQ(TextOf(999999999999999.0), "999999999999999");
    EXPECT_EQ(TextOf(std::nextafter(1e15, 0)), "999999999999999.9");
    EXPECT_EQ(TextOf(1e15), "1e+15");
    EXPECT_EQ(TextOf(std::nextafter(1e15, 1e16)), "1.0000000000000001e+15");
    EXPECT_EQ(TextOf(-1e15), "-1e+15");
    EXPECT_EQ(TextOf(1e20), "1e+20");
}

TEST(FormatDoubleTest, FullFormBeginsAtTenToTheMinusFifth) {
    EXPECT_EQ(TextOf(1e-5), "0.00001");
    EXPECT_EQ(TextOf(-1e-5), "-0.00001");
    EXPECT_EQ(TextOf(std::nextafter(1e-5, 1)), "0.00001" + std::string(15, '0') + "3");
    EXPECT_EQ(TextOf(std::nextafter(1e-5, 0)), "9.999999999999999e-06");
    EXPECT_EQ(TextOf(1.5e-9), "1.5e-09");
}

TEST(FormatDoubleTest, ExtremesAreShortest) {
    EXPECT_EQ(TextOf(std::numeric_limits<double>::denorm_min()), "5e-324");
    EXPECT_EQ(TextOf(std::numeric_limits<double>::min()), "2.2250738585072014e-308");
    EXPECT_EQ(TextOf(largestDouble), "1.7976931348623157e+308");
    EXPECT_EQ(TextOf(-largestDouble), "-1.7976931348623157e+308");
}

TEST(FormatDoubleTest, ValuesThatAreNotFiniteHaveNoText) {
    EXPECT_EQ(TextOf(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(TextOf(-std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(TextOf(std::numeric_limits<double>::quiet_NaN()), "");
    EXPECT_EQ(TextOf(std::numeric_limits<float>::infinity()), "");
}

TEST(FormatFloatTest, UsesTheDigitsOfItsOwnType) {
    EXPECT_EQ(TextOf(0.1f), "0.1");
    EXPECT_EQ(TextOf(-0.0f), "-0");
    EXPECT_EQ(TextOf(16777216.0f), "16777216");
    EXPECT_EQ(TextOf(1e-5f), "0.00001");
    EXPECT_EQ(TextOf(1e15f), "1e+15");
    EXPECT_EQ(TextOf(std::numeric_limits<float>::max()), "3.4028235e+38");
    EXPECT_EQ(TextOf(std::numeric_limits<float>::denorm_min()), "1e-45");
}

TEST(NumberRoundTripTest, DoublesOfAllSizesComeBackBitForBit) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 300000; ++i) {
        std::uint64_t bits = random();
        if (i % 8 == 0) bits &= 0x800FFFFFFFFFFFFFu; // denormal
        auto value = std::bit_cast<double>(bits);
        if (i % 8 == 1) value = static_cast<double>(static_cast<std::int64_t>(bits) >> (bits & 63)) / 1024;
        if (!std::isfinite(value)) continue;
        std::string const text = TextOf(value);
        ASSERT_LE(text.size(), math::numberTextSize);
        double narrow = 1;
        double wide = 1;
        ASSERT_EQ(math::ParseDouble(text, narrow), ParseResult::Ok) << text;
        ASSERT_EQ(math::ParseDouble(Widened(text), wide), ParseResult::Ok) << text;
        ASSERT_TRUE(SameBits(narrow, value) && SameBits(wide, value)) << text;
        ASSERT_EQ(text.find('e') == text.npos, value == 0 || (std::abs(value) >= 1e-5 && std::abs(value) < 1e15));
    }
}

TEST(NumberRoundTripTest, FloatsOfAllSizesComeBackBitForBit) {
    std::mt19937 random(12);
    for (int i = 0; i < 300000; ++i) {
        std::uint32_t bits = static_cast<std::uint32_t>(random());
        if (i % 8 == 0) bits &= 0x807FFFFFu;
        auto const value = std::bit_cast<float>(bits);
        if (!std::isfinite(value)) continue;
        std::string const text = TextOf(value);
        float narrow = 1;
        float wide = 1;
        ASSERT_EQ(math::ParseFloat(text, narrow), ParseResult::Ok) << text;
        ASSERT_EQ(math::ParseFloat(Widened(text), wide), ParseResult::Ok) << text;
        ASSERT_TRUE(SameBits(narrow, value) && SameBits(wide, value)) << text;
    }
}

TEST(ParseDoubleTest, AgreesWithTheStandardLibraryOnDecimalText) {
    std::mt19937 random(13);
    for (int i = 0; i < 300000; ++i) {
        std::string text;
        int const digits = 1 + static_cast<int>(random() % 24);
        int const point = static_cast<int>(random() % 26);
        for (int n = 0; n < digits; ++n) {
            if (n == point) text += '.';
            text += static_cast<char>('0' + (random() % 3 == 0 ? 0 : random() % 10));
        }
        if (random() % 2) text += "e" + std::to_string(static_cast<int>(random() % 80) - 40);
        double expected = 0;
        ASSERT_EQ(std::from_chars(text.data(), text.data() + text.size(), expected).ec, std::errc()) << text;
        double value = -1;
        ASSERT_EQ(math::ParseDouble(text, value), ParseResult::Ok) << text;
        ASSERT_TRUE(SameBits(value, expected)) << text;
        float expectedFloat = 0;
        float valueFloat = -1;
        if (std::from_chars(text.data(), text.data() + text.size(), expectedFloat).ec == std::errc()) {
            ASSERT_EQ(math::ParseFloat(Widened("-" + text), valueFloat), ParseResult::Ok) << text;
            ASSERT_TRUE(SameBits(valueFloat, -expectedFloat)) << text;
        }
    }
}

TEST(ParseDoubleTest, TakesEveryFormOfADecimalNumber) {
    struct Case {
        wchar_t const* text;
        double value;
    };
    Case const cases[] = {
        {L"0", 0},
        {L"+1", 1},
        {L"-1", -1},
        {L"1.", 1},
        {L".5", 0.5},
        {L"-.5e1", -5},
        {L"1e3", 1000},
        {L"1E+3", 1000},
        {L"25e-2", 0.25},
        {L" \t12.5\r\n", 12.5},
        {L"007.50", 7.5},
        {L"0e5", 0},
        {L"1e0000000000000000000000002", 100},
        {L"0e99999999999999999999", 0},
    };
    for (Case const& c : cases) {
        double value = -77;
        EXPECT_EQ(math::ParseDouble(std::wstring_view(c.text), value), ParseResult::Ok) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
    double negativeZero = 1;
    EXPECT_EQ(math::ParseDouble(L"-0", negativeZero), ParseResult::Ok);
    EXPECT_TRUE(SameBits(negativeZero, -0.0));
}

TEST(ParseDoubleTest, RefusesWhatIsNoDecimalNumberAndKeepsTheValue) {
    for (std::string const text : {" ",
                                   "+",
                                   "-",
                                   ".",
                                   "-.",
                                   "e5",
                                   ".e5",
                                   "1e",
                                   "1e+",
                                   "1e5.",
                                   "1..2",
                                   "1.2.3",
                                   "--1",
                                   "+-1",
                                   "1 2",
                                   "- 1",
                                   "1,5",
                                   "inf",
                                   "-inf",
                                   "nan",
                                   "infinity",
                                   "information",
                                   "0x10",
                                   "1f",
                                   "1e5x",
                                   "1d3",
                                   "\xC2\xA0"
                                   "1"}) {
        double value = -77;
        EXPECT_EQ(math::ParseDouble(text, value), ParseResult::BadCharacter) << text;
        EXPECT_EQ(math::ParseDouble(Widened(text), value), ParseResult::BadCharacter) << text;
        EXPECT_EQ(value, -77);
    }
    double value = -77;
    EXPECT_EQ(math::ParseDouble(L"", value), ParseResult::Empty);
    EXPECT_EQ(math::ParseDouble("", value), ParseResult::Empty);
    EXPECT_EQ(math::ParseDouble(L"\u0661", value), ParseResult::BadCharacter); // a digit, but no ASCII one
    EXPECT_EQ(math::ParseDouble(std::wstring{wchar_t(0x131)}, value), ParseResult::BadCharacter); // "1" in its low byte
    EXPECT_EQ(math::ParseDouble(std::wstring_view(L"1\0", 2), value), ParseResult::BadCharacter);
    EXPECT_EQ(value, -77);
}

TEST(ParseDoubleTest, TooLargeIsOutOfRangeAndTooSmallIsZero) {
    for (std::string const text : {"1e309", "-1.8e308", "1e99999999999999999999", "0.0001e400"}) {
        double value = -77;
        EXPECT_EQ(math::ParseDouble(text, value), ParseResult::OutOfRange) << text;
        EXPECT_EQ(value, -77) << text;
    }
    for (std::string const text : {"1e-400", "2e-324", "1e-99999999999999999999", "1000e-400"}) {
        double value = -77;
        EXPECT_EQ(math::ParseDouble(text, value), ParseResult::Ok) << text;
        EXPECT_TRUE(SameBits(value, 0.0)) << text;
        EXPECT_EQ(math::ParseDouble("-" + text, value), ParseResult::Ok) << text;
        EXPECT_TRUE(SameBits(value, -0.0)) << text;
    }
    float value = -77;
    EXPECT_EQ(math::ParseFloat("3.5e38", value), ParseResult::OutOfRange);
    EXPECT_EQ(value, -77);
    EXPECT_EQ(math::ParseFloat("1e-46", value), ParseResult::Ok);
    EXPECT_EQ(value, 0);
}

TEST(ParseDoubleTest, TextOfAnyLengthIsReadExactly) {
    std::string const zeros(400, '0');
    double value = 0;
    EXPECT_EQ(math::ParseDouble(Widened("0." + zeros + "1e401"), value), ParseResult::Ok);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(math::ParseDouble(Widened("1" + zeros + "e-400"), value), ParseResult::Ok);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(math::ParseDouble(Widened("1" + zeros), value), ParseResult::OutOfRange);
    EXPECT_EQ(math::ParseDouble(Widened("1" + zeros + "e-90"), value), ParseResult::OutOfRange); // 1e310
    EXPECT_EQ(math::ParseDouble(Widened("0." + zeros + "1e60"), value), ParseResult::Ok);        // 1e-341
    EXPECT_EQ(value, 0);
    // Between the neighbours 2^53 and 2^53 + 2: the exact middle goes to the even one, the least bit more goes up.
    EXPECT_EQ(math::ParseDouble(Widened("9007199254740993." + zeros), value), ParseResult::Ok);
    EXPECT_EQ(value, 9007199254740992.0);
    EXPECT_EQ(math::ParseDouble(Widened("9007199254740993." + zeros + "1"), value), ParseResult::Ok);
    EXPECT_EQ(value, 9007199254740994.0);
    EXPECT_EQ(math::ParseDouble(Widened(zeros + "12.5" + zeros), value), ParseResult::Ok);
    EXPECT_EQ(value, 12.5);
}

TEST(ParseDoubleTest, LengthsAroundTheStackBufferMakeNoDifference) {
    for (std::size_t length = 120; length < 140; ++length) {
        std::string const text = "0.3" + std::string(length - 4, '0') + "1";
        double value = 0;
        EXPECT_EQ(math::ParseDouble(Widened(text), value), ParseResult::Ok);
        EXPECT_EQ(value, 0.3) << length;
    }
}

TEST(ParseFloatTest, RoundsOnce) {
    // Just above the middle of 1 and its upper neighbour 1 + 2^-23: through a double it would round to the middle first
    // and then down.
    float value = 0;
    EXPECT_EQ(math::ParseFloat("1.00000005960464477540", value), ParseResult::Ok);
    EXPECT_EQ(value, 1.00000011920928955078125f);
}

template <class T>
class ParseIntegerTest : public testing::Test {};
using IntegerTypes = testing::Types<short, unsigned short, int, unsigned, long, unsigned long, Int64, UInt64>;
TYPED_TEST_SUITE(ParseIntegerTest, IntegerTypes);

/// The next whole number away from zero, digit by digit.
std::string Increased(std::string digits) {
    std::size_t at = digits.size();
    while (digits[at - 1] == '9') digits[--at] = '0';
    ++digits[at - 1];
    return digits;
}

TYPED_TEST(ParseIntegerTest, ReadsTheLimitsOfTheTypeAndNoNumberBeyond) {
    using Limits = std::numeric_limits<TypeParam>;
    for (TypeParam const limit : {Limits::min(), Limits::max(), TypeParam(1)}) {
        std::string const text = std::to_string(limit);
        TypeParam value = 5;
        EXPECT_EQ(math::ParseInteger(text, value), ParseResult::Ok) << text;
        EXPECT_EQ(value, limit);
        value = 5;
        EXPECT_EQ(math::ParseInteger(L" 0" + Widened(text).substr(text[0] == '-') + L"\n", value),
                  limit < 0 ? ParseResult::OutOfRange : ParseResult::Ok);
        if (limit == 0 || limit == 1) continue;
        value = 5;
        EXPECT_EQ(math::ParseInteger(Widened(Increased(text)), value), ParseResult::OutOfRange) << Increased(text);
        EXPECT_EQ(value, 5);
        EXPECT_EQ(math::ParseInteger(text + "0", value), ParseResult::OutOfRange);
        EXPECT_EQ(math::ParseInteger(text + std::string(30, '7'), value), ParseResult::OutOfRange);
        EXPECT_EQ(value, 5);
    }
}

TYPED_TEST(ParseIntegerTest, TakesBlanksPlusAndLeadingZeros) {
    TypeParam value = 5;
    EXPECT_EQ(math::ParseInteger(L" \t\v\f\r\n+0000000000000000000000000000012 ", value), ParseResult::Ok);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(math::ParseInteger("0", value), ParseResult::Ok);
    EXPECT_EQ(value, 0);
}

TYPED_TEST(ParseIntegerTest, TakesMinusForSignedTypesAlone) {
    TypeParam value = 5;
    bool const isSigned = std::is_signed_v<TypeParam>;
    EXPECT_EQ(math::ParseInteger("-3", value), isSigned ? ParseResult::Ok : ParseResult::BadCharacter);
    EXPECT_EQ(value, isSigned ? TypeParam(-3) : TypeParam(5));
    EXPECT_EQ(math::ParseInteger("-0", value), isSigned ? ParseResult::Ok : ParseResult::BadCharacter);
}

TYPED_TEST(ParseIntegerTest, RefusesEverythingElse) {
    TypeParam value = 5;
    for (wchar_t const* text : {L" ", L"+", L"-", L"1.0", L"1e3", L"0x1F", L"1 2", L"+-1", L"--1", L"- 1", L"1,000",
                                L"x", L"99999999999999999999999x", L"\u0661", L"\u0131"}) {
        EXPECT_EQ(math::ParseInteger(text, value), ParseResult::BadCharacter) << text;
    }
    EXPECT_EQ(math::ParseInteger(L"", value), ParseResult::Empty);
    EXPECT_EQ(math::ParseInteger("", value), ParseResult::Empty);
    EXPECT_EQ(value, 5);
}

TEST(AppendNumberTest, AppendsToWhatStands) {
    std::wstring text = L"(";
    math::AppendNumber(text, -1.5);
    text += L' ';
    math::AppendNumber(text, 0.1f);
    text += L' ';
    math::AppendNumber(text, std::numeric_limits<int>::min());
    text += L' ';
    math::AppendNumber(text, std::numeric_limits<unsigned>::max());
    text += L' ';
    math::AppendNumber(text, -7L);
    text += L' ';
    math::AppendNumber(text, 7UL);
    text += L' ';
    math::AppendNumber(text, std::numeric_limits<Int64>::min());
    text += L' ';
    math::AppendNumber(text, std::numeric_limits<UInt64>::max());
    EXPECT_EQ(text, L"(-1.5 0.1 -2147483648 4294967295 -7 7 -9223372036854775808 18446744073709551615");
    math::AppendNumber(text = L"x", std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(text, L"x");
}

template <class T>
std::string InBase(T value, int base) {
    std::string narrow = "old";
    std::wstring wide = L"old";
    math::impl::ConvertInt<T>::to_string(narrow, value, base);
    math::impl::ConvertInt<T>::to_string(wide, value, base);
    EXPECT_EQ(wide, Widened(narrow));
    return narrow;
}

TEST(ConvertIntTest, WritesDigitsInTheBase) {
    EXPECT_EQ(InBase(0, 10), "0");
    EXPECT_EQ(InBase(-255, 16), "-ff");
    EXPECT_EQ(InBase(255u, 2), "11111111");
    EXPECT_EQ(InBase(35u, 36), "z");
    EXPECT_EQ(InBase(std::numeric_limits<int>::min(), 10), "-2147483648");
    EXPECT_EQ(InBase(std::numeric_limits<Int64>::min(), 2), "-1" + std::string(63, '0'));
    EXPECT_EQ(InBase(std::numeric_limits<UInt64>::max(), 2), std::string(64, '1'));
    EXPECT_EQ(InBase(std::numeric_limits<UInt64>::max(), 10), "18446744073709551615");
    EXPECT_EQ(InBase(-1L, 10), "-1");
    EXPECT_EQ(InBase(1UL, 10), "1");
}

template <class T, class S>
T ReadInt(S const& text) {
    T value = 5;
    math::impl::ConvertInt<T>::from_string(value, text);
    return value;
}

TEST(ConvertIntTest, TextThatGivesNoValueLeavesTheMissingValue) {
    for (std::string const text : {"", " ", "x", "1.5", "99999999999999999999"}) {
        EXPECT_EQ(ReadInt<int>(text), 0x7FFFFFFF) << text;
        EXPECT_EQ(ReadInt<unsigned>(text), 0xFFFFFFFFu) << text;
        EXPECT_EQ(ReadInt<Int64>(text), 0x7FFFFFFFFFFFFFFF) << text;
        EXPECT_EQ(ReadInt<UInt64>(Widened(text)), 0xFFFFFFFFFFFFFFFFu) << text;
    }
    EXPECT_EQ(ReadInt<UInt64>(std::wstring(L"-1")), 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(ReadInt<Int64>(std::wstring(L" -12 ")), -12);
    EXPECT_EQ(ReadInt<unsigned>(std::string("4294967294")), 4294967294u);
}

TEST(ConvertFloatTest, ReadsAndWritesLikeTheBuildingBlocks) {
    std::string narrow = "old";
    std::wstring wide = L"old";
    math::impl::ConvertFloat<double>::to_string(narrow, 18.25);
    math::impl::ConvertFloat<double>::to_string(wide, -1e-9);
    EXPECT_EQ(narrow, "18.25");
    EXPECT_EQ(wide, L"-1e-09");
    double value = 5;
    math::impl::ConvertFloat<double>::from_string(value, narrow);
    EXPECT_EQ(value, 18.25);
    math::impl::ConvertFloat<double>::from_string(value, wide);
    EXPECT_EQ(value, -1e-9);
    for (wchar_t const* text : {L"", L"x", L"inf", L"1e999", L"-1e999"}) {
        value = 5;
        math::impl::ConvertFloat<double>::from_string(value, std::wstring(text));
        EXPECT_EQ(value, largestDouble) << text;
    }
    float small = 5;
    math::impl::ConvertFloat<float>::from_string(small, std::string("1e39"));
    EXPECT_EQ(small, std::numeric_limits<float>::max());
}

TEST(IntegralTextTest, AsksForAWholeNumberOfAnySize) {
    using htl::impl::is_integral_valid_from;
    for (std::string const text : {"0", " 12\n", "+5", "99999999999999999999999999"}) {
        EXPECT_TRUE(is_integral_valid_from(text, false)) << text;
        EXPECT_TRUE(is_integral_valid_from(Widened(text), true)) << text;
    }
    EXPECT_TRUE(is_integral_valid_from(std::string("-1"), true));
    EXPECT_FALSE(is_integral_valid_from(std::string("-1"), false));
    EXPECT_FALSE(is_integral_valid_from(std::wstring(L"-1"), false));
    for (std::string const text : {"", " ", "+", "-", "1.", "1e1", "0x1", "1 1", "one"}) {
        EXPECT_FALSE(is_integral_valid_from(text, true)) << text;
        EXPECT_FALSE(is_integral_valid_from(Widened(text), true)) << text;
    }
}

TEST(FloatTextTest, AsksForADecimalNumberOfAnySize) {
    using htl::impl::is_float_valid_from;
    for (std::string const text : {"0", " -12.5\n", "+.5", "5.", "123456789012345678901234567890.5"}) {
        EXPECT_TRUE(is_float_valid_from(text, false)) << text;
        EXPECT_TRUE(is_float_valid_from(Widened(text), true)) << text;
    }
    for (std::string const text : {"1e5", "1E-5", "1e999"}) {
        EXPECT_TRUE(is_float_valid_from(text, true)) << text;
        EXPECT_FALSE(is_float_valid_from(text, false)) << text;
        EXPECT_FALSE(is_float_valid_from(Widened(text), false)) << text;
    }
    for (std::string const text : {"", " ", ".", "-", "e5", "1e", "inf", "nan", "0x1p3", "1.2.3"}) {
        EXPECT_FALSE(is_float_valid_from(text, true)) << text;
        EXPECT_FALSE(is_float_valid_from(Widened(text), true)) << text;
    }
}

TEST(LengthTextTest, ReadsDigitsUpToTheLargestLength) {
    std::size_t length = 5;
    EXPECT_FALSE(str::from_wstring(L"0", length).IsError());
    EXPECT_EQ(length, 0u);
    EXPECT_FALSE(str::from_wstring(L"2147483647", length).IsError());
    EXPECT_EQ(length, 0x7FFFFFFFu);
    EXPECT_FALSE(str::from_wstring(L"00000000000000000000000000012", length).IsError());
    EXPECT_EQ(length, 12u);
}

TEST(LengthTextTest, RefusesEverythingElseAndKeepsTheValue) {
    using htl::Convert_error_status;
    std::wstring const kind = Convert_error_status::WholeNumberString();
    std::size_t length = 5;
    for (std::wstring const text : {L"", L" ", L" 1", L"1 ", L"+1", L"-1", L"1.0", L"0x1", L"\u0661"}) {
        EXPECT_EQ(str::from_wstring(text, length).AsWString(),
                  Convert_error_status::InvalidCharStatus(text, kind).AsWString());
    }
    for (std::wstring const text : {L"2147483648", L"18446744073709551615", L"18446744073709551616"}) {
        EXPECT_EQ(str::from_wstring(text, length).AsWString(),
                  Convert_error_status::OutOfRangeStatus(text, kind).AsWString());
    }
    EXPECT_EQ(length, 5u);
}

} // namespace
