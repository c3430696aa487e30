#include "tests/fixtures/Embankment.h"
#include "tests/model/Conversions.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace conversions;
using embankment::FailsAs;
using embankment::Succeeds;
using htl::Int64;
using htl::UInt64;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

template <class T>
class EveryRow : public testing::Test {};
using RowTypes = testing::Types<unsigned char, int, unsigned, long, unsigned long, float, double, Int64, UInt64, bool,
                                std::string, std::wstring, DataParamType>;
TYPED_TEST_SUITE(EveryRow, RowTypes);

TYPED_TEST(EveryRow, DescribesItsTypeAsAtomic) {
    Row<TypeParam> const row;
    EXPECT_EQ(row.Record().kind, meta::Kind::Atomic);
    EXPECT_EQ(row.Record().byteSize, sizeof(TypeParam));
    EXPECT_EQ(*row.Record().type, typeid(TypeParam));
}

TYPED_TEST(EveryRow, HasOneDescriptorThatCopiesShare) {
    EXPECT_EQ(&meta::AtomicTraits<TypeParam>(), &meta::AtomicTraits<TypeParam>());
    meta::MetaDataTraits const copy = meta::AtomicTraits<TypeParam>();
    EXPECT_EQ(copy.Descriptor(), meta::AtomicTraits<TypeParam>().Descriptor());
}

TYPED_TEST(EveryRow, DefaultIsTheEmptyValue) {
    Row<TypeParam> const row;
    EXPECT_TRUE(row.IsDefault(TypeParam{}));
    TypeParam value = row.FromBool(true);
    EXPECT_FALSE(row.IsDefault(value));
    row.Record().setDefault(&value);
    EXPECT_EQ(value, TypeParam{});
}

TYPED_TEST(EveryRow, ReadAndWriteCopyBetweenMemoryAndValue) {
    Row<TypeParam> const row;
    TypeParam memory = row.FromBool(true);
    TypeParam value{};
    row.Record().read(&memory, &value);
    EXPECT_EQ(value, memory);
    TypeParam const other{};
    row.Record().write(&memory, &other);
    EXPECT_EQ(memory, other);
}

TYPED_TEST(EveryRow, EveryValueIsValid) {
    Row<TypeParam> const row;
    TypeParam const value{};
    EXPECT_TRUE(Succeeds(row.Record().isValid(&value, nullptr, row.Traits())));
}

TYPED_TEST(EveryRow, RulesSayTrueAndOptionalFunctionsAreAbsent) {
    meta::MetaTraitsAtomic const& record = *meta::AtomicTraits<TypeParam>().AsAtomic();
    EXPECT_TRUE(meta::CallRule(record.visible, nullptr));
    EXPECT_TRUE(meta::CallRule(record.editable, nullptr));
    EXPECT_FALSE(record.convert || record.unitKind || record.dataParamType || record.valueList);
    EXPECT_EQ(record.linkGroup, 0u);
}

TYPED_TEST(EveryRow, TextComesBackAsTheSameValue) {
    Row<TypeParam> const row;
    for (bool const in : {false, true}) {
        TypeParam const value = row.FromBool(in);
        EXPECT_EQ(row.FromText(row.Text(value)), value);
    }
}

template <class T>
class RowsWithMissing : public testing::Test {};
using MissingTypes = testing::Types<int, unsigned, long, unsigned long, float, double, Int64, UInt64>;
TYPED_TEST_SUITE(RowsWithMissing, MissingTypes);

TYPED_TEST(RowsWithMissing, MissingIsTheGreatestValue) {
    Row<TypeParam> const row;
    EXPECT_TRUE(row.IsMissing(std::numeric_limits<TypeParam>::max()));
    EXPECT_FALSE(row.IsMissing(TypeParam{}));
}

TYPED_TEST(RowsWithMissing, MissingPassesThroughEveryForm) {
    Row<TypeParam> const row;
    TypeParam const missing = std::numeric_limits<TypeParam>::max();
    EXPECT_EQ(row.Text(missing), L"");
    EXPECT_EQ(row.Int64(missing), missingInt64);
    EXPECT_EQ(row.Double(missing), missingDouble);
    EXPECT_FALSE(row.Bool(missing));
    EXPECT_EQ(row.FromText(L""), missing);
    EXPECT_EQ(row.FromInt64(missingInt64), missing);
    EXPECT_EQ(row.FromDouble(missingDouble), missing);
}

TYPED_TEST(RowsWithMissing, AnotherMissingValueCanBeNamed) {
    Row<TypeParam> const row(meta::AtomicBuilder<TypeParam>().Missing(TypeParam{}).Build());
    EXPECT_TRUE(row.IsMissing(TypeParam{}));
    EXPECT_EQ(row.Text(TypeParam{}), L"");
    EXPECT_EQ(row.Int64(TypeParam{}), missingInt64);
    EXPECT_EQ(row.FromText(L""), TypeParam{});
    EXPECT_EQ(row.FromInt64(missingInt64), TypeParam{});
    EXPECT_EQ(row.FromDouble(missingDouble), TypeParam{});
}

TYPED_TEST(RowsWithMissing, WithoutAMissingValueEmptyTextIsRefused) {
    Row<TypeParam> const row(meta::AtomicBuilder<TypeParam>().Missing(std::nullopt).Build());
    EXPECT_FALSE(row.IsMissing(std::numeric_limits<TypeParam>::max()));
    EXPECT_TRUE(row.TextFailure(L"").Is(90006));
}

template <class T>
class RowsWithoutMissing : public testing::Test {};
using NoMissingTypes = testing::Types<unsigned char, bool, std::string, std::wstring, DataParamType>;
TYPED_TEST_SUITE(RowsWithoutMissing, NoMissingTypes);

TYPED_TEST(RowsWithoutMissing, NothingIsMissing) {
    Row<TypeParam> const row;
    EXPECT_FALSE(row.IsMissing(TypeParam{}));
    EXPECT_FALSE(row.IsMissing(row.FromBool(true)));
}

TYPED_TEST(RowsWithoutMissing, AMissingValueCanBeNamed) {
    TypeParam const missing = Row<TypeParam>().FromBool(true);
    Row<TypeParam> const row(meta::AtomicBuilder<TypeParam>().Missing(missing).Build());
    EXPECT_TRUE(row.IsMissing(missing));
    EXPECT_FALSE(row.IsMissing(TypeParam{}));
    EXPECT_EQ(row.Text(missing), L"");
    EXPECT_EQ(row.Text(missing, 2), L"");
    EXPECT_EQ(row.Int64(missing), missingInt64);
    EXPECT_EQ(row.Double(missing), missingDouble);
    EXPECT_EQ(row.FromText(L""), missing);
    EXPECT_EQ(row.FromInt64(missingInt64), missing);
    EXPECT_EQ(row.FromDouble(missingDouble), missing);
}

TEST(TextRow, MissingTextIsFalse) {
    Row<std::wstring> const row(meta::AtomicBuilder<std::wstring>().Missing(L"unknown").Build());
    EXPECT_FALSE(row.Bool(L"unknown"));
    EXPECT_TRUE(row.Bool(L"true"));
}

template <class T>
class WholeRows : public testing::Test {};
using WholeTypes = testing::Types<unsigned char, int, unsigned, long, unsigned long, Int64, UInt64>;
TYPED_TEST_SUITE(WholeRows, WholeTypes);

TYPED_TEST(WholeRows, ConvertSmallNumbers) {
    Row<TypeParam> const row;
    TypeParam const n = 42;
    EXPECT_EQ(row.Text(n), L"42");
    EXPECT_EQ(row.Int64(n), 42);
    EXPECT_EQ(row.Double(n), 42.0);
    EXPECT_TRUE(row.Bool(n));
    EXPECT_FALSE(row.Bool(0));
    EXPECT_EQ(row.FromText(L"42"), n);
    EXPECT_EQ(row.FromText(L" \t+42\n"), n);
    EXPECT_EQ(row.FromText(L"0042"), n);
    EXPECT_EQ(row.FromInt64(42), n);
    EXPECT_EQ(row.FromBool(true), TypeParam(1));
    EXPECT_EQ(row.FromBool(false), TypeParam(0));
}

TYPED_TEST(WholeRows, RoundDoublesHalfAwayFromZero) {
    Row<TypeParam> const row;
    EXPECT_EQ(row.FromDouble(2.5), TypeParam(3));
    EXPECT_EQ(row.FromDouble(2.4999), TypeParam(2));
    EXPECT_EQ(row.FromDouble(0.5), TypeParam(1));
    EXPECT_EQ(row.FromDouble(-0.0), TypeParam(0));
    EXPECT_EQ(row.FromDouble(-0.4), TypeParam(0));
    // 0.49999999999999994 + 0.5 is 1 in doubles.
    EXPECT_EQ(row.FromDouble(0.49999999999999994), TypeParam(1));
}

TYPED_TEST(WholeRows, RefuseTextThatIsNoWholeNumber) {
    Row<TypeParam> const row;
    for (wchar_t const* text : {L" ", L"x", L"1x", L"1 2", L"1.5", L"1e3", L"0x10", L"+", L"-", L"--1", L"1,000"}) {
        SCOPED_TRACE(str::as_cstring(text));
        EXPECT_TRUE(FailsAs(row.TextFailure(text, 7), BadWhole(text)));
    }
}

TEST(IntRow, TakesItsWholeRangeAndNoMore) {
    Row<int> const row;
    EXPECT_EQ(row.FromText(L"-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(row.FromText(L"2147483646"), 2147483646);
    EXPECT_TRUE(FailsAs(row.TextFailure(L"2147483648", 5), WholeOutOfRange(L"2147483648")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"-2147483649", 5), WholeOutOfRange(L"-2147483649")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"99999999999999999999", 5), WholeOutOfRange(L"99999999999999999999")));
    EXPECT_EQ(row.FromInt64(-2147483648LL), std::numeric_limits<int>::min());
    EXPECT_TRUE(FailsAs(row.Int64Failure(2147483648LL, 5), WholeOutOfRange(L"2147483648")));
    EXPECT_TRUE(FailsAs(row.Int64Failure(-2147483649LL, 5), WholeOutOfRange(L"-2147483649")));
    EXPECT_EQ(row.FromDouble(-2147483648.0), std::numeric_limits<int>::min());
    EXPECT_EQ(row.FromDouble(-2.5), -3);
    EXPECT_TRUE(FailsAs(row.DoubleFailure(2147483648.0, 5), WholeOutOfRange(L"2147483648")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(1e300, 5), WholeOutOfRange(L"1e+300")));
    EXPECT_EQ(row.FromDouble(nan), 0x7FFFFFFF);
    EXPECT_EQ(row.FromDouble(-infinity), 0x7FFFFFFF);
    EXPECT_EQ(row.Text(-17), L"-17");
}

TEST(UnsignedRow, RefusesNegativeNumbers) {
    Row<unsigned> const row;
    EXPECT_TRUE(FailsAs(row.TextFailure(L"-1", 5), BadWhole(L"-1")));
    EXPECT_TRUE(FailsAs(row.Int64Failure(-1, 5), WholeOutOfRange(L"-1")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(-1, 5), WholeOutOfRange(L"-1")));
    EXPECT_EQ(row.FromText(L"4294967294"), 4294967294u);
    EXPECT_TRUE(FailsAs(row.TextFailure(L"4294967296", 5), WholeOutOfRange(L"4294967296")));
}

TEST(ByteRow, HoldsZeroTo255) {
    Row<unsigned char> const row;
    EXPECT_EQ(row.Text(255), L"255");
    EXPECT_EQ(row.FromText(L"255"), 255);
    EXPECT_TRUE(FailsAs(row.TextFailure(L"256", 5), WholeOutOfRange(L"256")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"99999", 5), WholeOutOfRange(L"99999")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"-1", 5), BadWhole(L"-1")));
    EXPECT_TRUE(FailsAs(row.Int64Failure(256, 5), WholeOutOfRange(L"256")));
    EXPECT_TRUE(FailsAs(row.Int64Failure(missingInt64, 5), WholeOutOfRange(L"9223372036854775807")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(255.5, 5), WholeOutOfRange(L"255.5")));
    EXPECT_TRUE(row.DoubleFailure(nan, 5).Is(90007));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"", 5), BadWhole(L"")));
}

TEST(LongRows, FollowTheWidthOfTheirType) {
    EXPECT_EQ(Row<long>().FromText(L"-2147483648"), -2147483647L - 1);
    EXPECT_EQ(Row<unsigned long>().FromText(L"4294967294"), 4294967294UL);
    EXPECT_TRUE(Row<unsigned long>().TextFailure(L"-1", 5).Is(90006));
    EXPECT_TRUE(Row<unsigned long>().Int64Failure(-1, 5).Is(90007));
    EXPECT_TRUE(Row<unsigned long>().DoubleFailure(-1, 5).Is(90007));
    EXPECT_TRUE(Row<unsigned long>().DoubleFailure(1e20, 5).Is(90007));
    EXPECT_TRUE(Row<long>().DoubleFailure(1e19, 5).Is(90007));
}

TEST(Int64Row, TakesItsWholeRange) {
    Row<Int64> const row;
    EXPECT_EQ(row.FromText(L"-9223372036854775808"), std::numeric_limits<Int64>::min());
    EXPECT_EQ(row.FromText(L"9223372036854775806"), 9223372036854775806LL);
    EXPECT_TRUE(row.TextFailure(L"9223372036854775808", 5).Is(90007));
    EXPECT_EQ(row.FromDouble(-9223372036854775808.0), std::numeric_limits<Int64>::min());
    EXPECT_TRUE(row.DoubleFailure(9223372036854775808.0, 5).Is(90007));
}

TEST(UInt64Row, TakesDoublesUpToTwoToThe64) {
    Row<UInt64> const row;
    EXPECT_EQ(row.FromDouble(9223372036854775808.0), UInt64(1) << 63);
    EXPECT_EQ(row.FromDouble(13835058055282163712.0), UInt64(3) << 62);
    EXPECT_EQ(row.FromDouble(4611686018427387904.0), UInt64(1) << 62);
}

TEST(UInt64Row, MakesDoublesOutOfRangeMissingAndAlwaysSucceeds) {
    Row<UInt64> const row;
    UInt64 const missing = ~UInt64(0);
    EXPECT_EQ(row.FromDouble(18446744073709551616.0), missing);
    EXPECT_EQ(row.FromDouble(1e300), missing);
    EXPECT_EQ(row.FromDouble(-1e19), missing);
    EXPECT_EQ(row.FromDouble(nan), missing);
    EXPECT_EQ(row.FromDouble(infinity), missing);
}

TEST(UInt64Row, WithoutAMissingValueRefusesWhatIsOutOfRange) {
    Row<UInt64> const row(meta::AtomicBuilder<UInt64>().Missing(std::nullopt).Build());
    EXPECT_TRUE(FailsAs(row.TextFailure(L"18446744073709551616", 5), WholeOutOfRange(L"18446744073709551616")));
    EXPECT_EQ(row.FromText(L"18446744073709551615"), ~UInt64(0));
}

TEST(UInt64Row, PassesIntegersBitForBit) {
    Row<UInt64> const row;
    EXPECT_EQ(row.FromInt64(-1), ~UInt64(0));
    EXPECT_EQ(row.FromInt64(-2), ~UInt64(0) - 1);
    EXPECT_EQ(row.Int64(~UInt64(0) - 1), -2);
    EXPECT_EQ(row.Int64(UInt64(1) << 63), std::numeric_limits<Int64>::min());
    EXPECT_EQ(row.FromDouble(-2), ~UInt64(0) - 1);
    EXPECT_EQ(row.FromInt64(missingInt64), ~UInt64(0));
}

TEST(UInt64Row, ReadsTooLargeANumberAsMissingAndRefusesOtherText) {
    Row<UInt64> const row;
    EXPECT_EQ(row.FromText(L"18446744073709551614"), ~UInt64(0) - 1);
    EXPECT_EQ(row.FromText(L"18446744073709551615"), ~UInt64(0));
    EXPECT_EQ(row.FromText(L"99999999999999999999"), ~UInt64(0));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"-1", 5), BadWhole(L"-1")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"12a", 5), BadWhole(L"12a")));
}

TEST(UInt64Row, GivesTheNearestDouble) {
    Row<UInt64> const row;
    EXPECT_EQ(row.Double(9007199254740993ULL), 9007199254740992.0); // 2^53 + 1 has no double, the even one is next
    EXPECT_EQ(row.Double(~UInt64(0) - 1), 18446744073709551616.0);
}

TEST(UnsignedLongRow, RefusesAnIntegerThatWouldTurnNegative) {
    if (sizeof(unsigned long) < sizeof(Int64)) GTEST_SKIP() << "every value fits";
    Row<unsigned long> const row;
    unsigned long const value = std::numeric_limits<unsigned long>::max() - 1;
    Int64 out = 5;
    EXPECT_TRUE(row.Record().toInt64(&value, out).Is(90007));
    EXPECT_EQ(out, 5);
}

TEST(DoubleRow, WritesTheShortestTextThatReadsBack) {
    Row<double> const row;
    struct {
        double value;
        wchar_t const* text;
    } const rows[] = {{0.1, L"0.1"},
                      {-0.0, L"-0"},
                      {1e15, L"1e+15"},
                      {999999999999999.0, L"999999999999999"},
                      {1e-5, L"0.00001"},
                      {9e-6, L"9e-06"},
                      {1e20, L"1e+20"},
                      {-2.5, L"-2.5"},
                      {1.0 / 3, L"0.3333333333333333"},
                      {5e-324, L"5e-324"}};
    for (auto const& [value, text] : rows) {
        EXPECT_EQ(row.Text(value), text);
        EXPECT_EQ(row.FromText(text), value);
        EXPECT_EQ(std::signbit(row.FromText(text)), std::signbit(value));
    }
}

TEST(DoubleRow, HasNoTextForValuesThatAreNotFinite) {
    Row<double> const row;
    EXPECT_EQ(row.Text(nan), L"");
    EXPECT_EQ(row.Text(infinity), L"");
    EXPECT_EQ(row.Text(-infinity), L"");
    EXPECT_FALSE(row.Bool(nan));
    EXPECT_EQ(row.Int64(nan), missingInt64);
}

TEST(DoubleRow, TakesValuesThatAreNotFiniteAsTheyAre) {
    Row<double> const row;
    EXPECT_TRUE(std::isnan(row.FromDouble(nan)));
    EXPECT_EQ(row.FromDouble(-infinity), -infinity);
    EXPECT_EQ(row.Double(infinity), infinity);
}

TEST(DoubleRow, RefusesTextThatIsNoNumber) {
    Row<double> const row;
    for (wchar_t const* text : {L" ", L"x", L"1.5x", L"1,5", L"nan", L"inf", L"0x1p3", L".", L"e5", L"1e", L"1.2.3"})
        EXPECT_TRUE(FailsAs(row.TextFailure(text, 7), BadNumber(text))) << str::as_cstring(text);
    EXPECT_TRUE(FailsAs(row.TextFailure(L"1e999", 7), NumberOutOfRange(L"1e999")));
    EXPECT_EQ(row.FromText(L"1e-999"), 0.0);
}

TEST(DoubleRow, RoundsToIntegersAndRefusesThoseOutOfRange) {
    Row<double> const row;
    EXPECT_EQ(row.Int64(2.5), 3);
    EXPECT_EQ(row.Int64(-2.5), -3);
    EXPECT_EQ(row.Int64(0.25), 0);
    EXPECT_TRUE(row.Bool(0.25));
    EXPECT_FALSE(row.Bool(-0.0));
    double const large = 1e19;
    Int64 out = 5;
    EXPECT_TRUE(FailsAs(row.Record().toInt64(&large, out), WholeOutOfRange(L"1e+19")));
    EXPECT_EQ(out, 5);
    EXPECT_EQ(row.FromInt64(-3), -3.0);
}

TEST(DoubleRow, DefaultCanBeNamed) {
    Row<double> const row(meta::AtomicBuilder<double>().Default(9.81).Build());
    EXPECT_TRUE(row.IsDefault(9.81));
    EXPECT_FALSE(row.IsDefault(0));
    double value = 0;
    row.Record().setDefault(&value);
    EXPECT_EQ(value, 9.81);
}

TEST(FloatRow, WritesAsFewDigitsAsAFloatNeeds) {
    Row<float> const row;
    EXPECT_EQ(row.Text(0.1f), L"0.1");
    EXPECT_EQ(row.FromText(L"0.1"), 0.1f);
    EXPECT_EQ(row.Double(0.5f), 0.5);
}

TEST(FloatRow, RefusesDoublesThatAFloatCantHold) {
    Row<float> const row;
    EXPECT_TRUE(FailsAs(row.DoubleFailure(1e39, 5), NumberOutOfRange(L"1e+39")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(-1e39, 5), NumberOutOfRange(L"-1e+39")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"1e39", 5), NumberOutOfRange(L"1e39")));
    EXPECT_EQ(row.FromDouble(1e-60), 0.0f);
    EXPECT_EQ(row.FromDouble(infinity), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(row.FromDouble(nan)));
}

TEST(BoolRow, WritesTrueAndFalse) {
    Row<bool> const row;
    EXPECT_EQ(row.Text(true), L"true");
    EXPECT_EQ(row.Text(false), L"false");
    EXPECT_EQ(row.Int64(true), 1);
    EXPECT_EQ(row.Double(true), 1.0);
    EXPECT_EQ(row.Int64(false), 0);
}

TEST(BoolRow, ReadsWordsTheirBeginningsAndNumbers) {
    Row<bool> const row;
    for (wchar_t const* text : {L"true", L"TRUE", L"t", L"Tru", L"yes", L"Y", L"ye", L"1", L"-2.5", L"1e999", L" 3 "})
        EXPECT_TRUE(row.FromText(text)) << str::as_cstring(text);
    for (wchar_t const* text : {L"", L"N", L"0", L"0.0", L"-0", L"f", L"FA", L"fals", L"false", L"False", L" 0 "})
        EXPECT_FALSE(row.FromText(text)) << str::as_cstring(text);
}

TEST(BoolRow, RefusesEveryOtherWord) {
    Row<bool> const row;
    for (wchar_t const* text : {L"No", L"n", L"off", L"on", L"falsehood", L"trues", L" ", L"yess"}) {
        SCOPED_TRACE(str::as_cstring(text));
        EXPECT_TRUE(
            FailsAs(row.TextFailure(text, true), htl::Convert_error_status::InvalidCharStatus(text, L"truth value")));
    }
}

TEST(BoolRow, TakesEveryNumberButZeroAsTrue) {
    Row<bool> const row;
    EXPECT_TRUE(row.FromInt64(-7));
    EXPECT_FALSE(row.FromInt64(0));
    EXPECT_TRUE(row.FromDouble(0.25));
    EXPECT_FALSE(row.FromDouble(-0.0));
    EXPECT_FALSE(row.FromInt64(missingInt64));
    EXPECT_FALSE(row.FromDouble(missingDouble));
    EXPECT_FALSE(row.FromDouble(nan));
}

template <class T>
T Make(wchar_t const* text) {
    if constexpr (std::is_same_v<T, std::wstring>)
        return text;
    else
        return str::as_cstring(text);
}

template <class T>
class TextRows : public testing::Test {};
using TextTypes = testing::Types<std::string, std::wstring>;
TYPED_TEST_SUITE(TextRows, TextTypes);

TYPED_TEST(TextRows, KeepTextAsItIs) {
    Row<TypeParam> const row;
    for (wchar_t const* text : {L"", L" clay ", L"\u00e9\u4e2d\U0001D400", L"a,b\n"}) {
        EXPECT_EQ(row.FromText(text), Make<TypeParam>(text));
        EXPECT_EQ(row.Text(Make<TypeParam>(text)), text);
    }
}

TYPED_TEST(TextRows, ReadNumbersOutOfTheirText) {
    Row<TypeParam> const row;
    EXPECT_EQ(row.Int64(Make<TypeParam>(L" -12 ")), -12);
    EXPECT_EQ(row.Double(Make<TypeParam>(L"-1.5e2")), -150.0);
    EXPECT_EQ(row.Int64(TypeParam()), missingInt64);
    EXPECT_EQ(row.Double(TypeParam()), missingDouble);
    TypeParam const word = Make<TypeParam>(L"clay");
    Int64 whole = 5;
    double number = 5;
    EXPECT_TRUE(FailsAs(row.Record().toInt64(&word, whole), BadWhole(L"clay")));
    EXPECT_TRUE(FailsAs(row.Record().toDouble(&word, number), BadNumber(L"clay")));
    TypeParam const large = Make<TypeParam>(L"9223372036854775808");
    EXPECT_TRUE(FailsAs(row.Record().toInt64(&large, whole), WholeOutOfRange(L"9223372036854775808")));
    TypeParam const huge = Make<TypeParam>(L"1e999");
    EXPECT_TRUE(FailsAs(row.Record().toDouble(&huge, number), NumberOutOfRange(L"1e999")));
    EXPECT_EQ(whole, 5);
    EXPECT_EQ(number, 5);
}

TYPED_TEST(TextRows, WriteNumbersAsTheirText) {
    Row<TypeParam> const row;
    EXPECT_EQ(row.FromInt64(-12), Make<TypeParam>(L"-12"));
    EXPECT_EQ(row.FromDouble(0.1), Make<TypeParam>(L"0.1"));
    EXPECT_EQ(row.FromBool(true), Make<TypeParam>(L"true"));
    EXPECT_EQ(row.FromBool(false), Make<TypeParam>(L"false"));
    EXPECT_EQ(row.FromInt64(missingInt64), TypeParam());
    EXPECT_EQ(row.FromDouble(missingDouble), TypeParam());
    EXPECT_EQ(row.FromDouble(infinity), TypeParam());
}

TYPED_TEST(TextRows, CountAsFalseOverTheirOwnLength) {
    Row<TypeParam> const row;
    for (wchar_t const* text : {L"", L"N", L"0", L"f", L"FA", L"fals", L"False", L"0.00", L"-0", L" 0"})
        EXPECT_FALSE(row.Bool(Make<TypeParam>(text))) << str::as_cstring(text);
    for (wchar_t const* text : {L"falsehood", L"n", L"No", L" ", L"x", L"1", L"NN", L"1e999"})
        EXPECT_TRUE(row.Bool(Make<TypeParam>(text))) << str::as_cstring(text);
}

TEST(NarrowTextRow, ReplacesBytesThatAreNoText) { EXPECT_EQ(Row<std::string>().Text("a\xFFz"), L"a\uFFFDz"); }

TEST(DataParamRow, ConvertsAsAWholeNumber) {
    Row<DataParamType> const row;
    EXPECT_EQ(row.Text(DataParamType(7)), L"7");
    EXPECT_EQ(row.FromText(L"-7"), DataParamType(-7));
    EXPECT_EQ(row.FromInt64(7), DataParamType(7));
    EXPECT_EQ(row.FromDouble(6.5), DataParamType(7));
    EXPECT_EQ(row.Int64(DataParamType(7)), 7);
    EXPECT_TRUE(row.Bool(DataParamType(7)));
    EXPECT_TRUE(FailsAs(row.Int64Failure(2147483648LL), WholeOutOfRange(L"2147483648")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L""), BadWhole(L"")));
}

TEST(EnumerationRow, StandsForWordsInThreeForms) {
    Row<int> const row(embankment::DrainageTraits());
    EXPECT_EQ(row.Text(1), L"Undrained");
    EXPECT_EQ(row.Text(1, 1), L"U");
    EXPECT_EQ(row.Text(7, 2), L"Partially drained");
    EXPECT_EQ(row.FromText(L"Partial"), 7);
    EXPECT_EQ(row.FromText(L"P", 1), 7);
    EXPECT_EQ(row.FromText(L"Partially drained", 2), 7);
    EXPECT_EQ(row.FromText(L"Partial", 2), 7); // what documents hold is taken in every form
    EXPECT_EQ(row.Int64(7), 7);
    EXPECT_EQ(row.Double(7), 7.0);
    EXPECT_TRUE(row.Bool(7));
    EXPECT_FALSE(row.Bool(0));
    EXPECT_EQ(row.FromInt64(7), 7);
    EXPECT_EQ(row.FromDouble(6.5), 7);
    EXPECT_EQ(row.FromBool(true), 1);
    EXPECT_EQ(row.FromBool(false), 0);
    EXPECT_FALSE(row.IsMissing(0x7FFFFFFF));
}

TEST(EnumerationRow, RefusesWhatIsNoWord) {
    Row<int> const row(embankment::DrainageTraits());
    for (wchar_t const* text : {L"", L"drained", L"Wet", L"D", L"1.5", L"99999999999"})
        EXPECT_TRUE(FailsAs(row.TextFailure(text, 1), zo::ZOError::not_recognized(text))) << str::as_cstring(text);
    EXPECT_TRUE(FailsAs(row.Int64Failure(2, 1), zo::ZOError::not_recognized(L"2")));
    EXPECT_TRUE(FailsAs(row.Int64Failure(4294967296LL, 1), zo::ZOError::not_recognized(L"4294967296")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(2.5, 1), zo::ZOError::not_recognized(L"3")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(nan, 1), zo::ZOError::not_recognized(L"")));
    EXPECT_TRUE(FailsAs(row.DoubleFailure(1e300, 1), zo::ZOError::not_recognized(L"1e+300")));
}

TEST(EnumerationRow, KeepsAStoredValueWithoutAWord) {
    Row<int> const row(embankment::DrainageTraits());
    EXPECT_EQ(row.Text(5), L"5");
    EXPECT_EQ(row.FromText(L"5"), 5);
}

TEST(EnumerationRow, FindsANumberInvalidThatItsStorageCantHold) {
    Row<int> const row(embankment::DrainageTraits());
    int const fits = 255;
    int const large = 300;
    EXPECT_TRUE(Succeeds(row.Record().isValid(&fits, nullptr, row.Traits())));
    EXPECT_TRUE(FailsAs(row.Record().isValid(&large, nullptr, row.Traits()), zo::ZOError::not_recognized(L"300")));
}

TEST(EnumerationRow, RefusesTextThatItsStorageCantHold) {
    Row<int> const row(embankment::DrainageTraits());
    EXPECT_EQ(row.FromText(L"255"), 255);
    EXPECT_TRUE(FailsAs(row.TextFailure(L"256", 1), zo::ZOError::not_recognized(L"256")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"-1", 1), zo::ZOError::not_recognized(L"-1")));
}
TEST(EnumerationRow, WithoutAFixedTypeHoldsTheBitsOfItsWords) {
    enum Section { Circle, Square, Hexagon = 5 }; // three bits
    static constexpr meta::EnumWord words[] = {{0, L"Circle", L"C", L"Circle"}, {5, L"Hexagon", L"H", L"Hexagon"}};
    Row<int> const row(meta::EnumTraits<Section>(words, Circle));
    EXPECT_EQ(row.FromText(L"1"), Square);
    EXPECT_EQ(row.FromText(L"7"), 7);
    EXPECT_TRUE(FailsAs(row.TextFailure(L"8", 1), zo::ZOError::not_recognized(L"8")));
    EXPECT_TRUE(FailsAs(row.TextFailure(L"-1", 1), zo::ZOError::not_recognized(L"-1")));

    enum Side { Outer = -3, Inner = 2 }; // two bits and a sign
    static constexpr meta::EnumWord sides[] = {{2, L"Inner", L"I", L"Inner"}};
    Row<int> const side(meta::EnumTraits<Side>(sides, Outer));
    EXPECT_EQ(side.FromText(L"-4"), -4);
    EXPECT_EQ(side.FromText(L"3"), 3);
    EXPECT_TRUE(FailsAs(side.TextFailure(L"-5", 1), zo::ZOError::not_recognized(L"-5")));
    EXPECT_TRUE(FailsAs(side.TextFailure(L"4", 1), zo::ZOError::not_recognized(L"4")));
}
TEST(EnumerationRow, MayBeStoredInAnyTypeOfWholeNumber) {
    enum class Grade : char { Fine = 'f', Coarse = 'c' };
    static constexpr meta::EnumWord grades[] = {{'f', L"Fine", L"F", L"Fine"}, {'c', L"Coarse", L"C", L"Coarse"}};
    Row<int> const grade(meta::EnumTraits<Grade>(grades, Grade::Fine));
    EXPECT_EQ(grade.FromText(L"Coarse"), 'c');
    EXPECT_TRUE(FailsAs(grade.TextFailure(L"300", 'f'), zo::ZOError::not_recognized(L"300")));

    enum class Frozen : bool { No, Yes };
    static constexpr meta::EnumWord answers[] = {{0, L"No", L"N", L"No"}, {1, L"Yes", L"Y", L"Yes"}};
    Row<int> const frozen(meta::EnumTraits<Frozen>(answers, Frozen::No));
    EXPECT_EQ(frozen.FromText(L"Yes"), 1);
    EXPECT_TRUE(FailsAs(frozen.TextFailure(L"2", 1), zo::ZOError::not_recognized(L"2")));

    enum class Flags : unsigned { None = 0 };
    static constexpr meta::EnumWord flags[] = {{0, L"None", L"-", L"None"}};
    Row<int> const all(meta::EnumTraits<Flags>(flags, Flags::None));
    auto memory = static_cast<Flags>(0xFFFFFFFFu);
    int value = 0;
    all.Record().read(&memory, &value);
    EXPECT_EQ(all.Text(value), L"-1");
    value = all.FromText(L"-1");
    EXPECT_TRUE(Succeeds(all.Record().isValid(&value, nullptr, all.Traits()))) << "every bit may be set";
    memory = Flags::None;
    all.Record().write(&memory, &value);
    EXPECT_EQ(static_cast<unsigned>(memory), 0xFFFFFFFFu);
}
TEST(EnumerationRow, IsStoredInTheWidthOfItsType) {
    meta::MetaDataTraits const traits = embankment::DrainageTraits();
    EXPECT_EQ(traits.Descriptor()->byteSize, 1u);
    EXPECT_EQ(*traits.Descriptor()->type, typeid(embankment::Drainage));
    embankment::Drainage memory[2] = {embankment::Drainage::Partial, embankment::Drainage::Partial};
    int value = 0;
    traits.AsAtomic()->read(&memory[0], &value);
    EXPECT_EQ(value, 7);
    value = 1;
    traits.AsAtomic()->write(&memory[0], &value);
    EXPECT_EQ(memory[0], embankment::Drainage::Undrained);
    EXPECT_EQ(memory[1], embankment::Drainage::Partial);
}

TEST(EnumerationRow, ListsItsWords) {
    meta::MetaDataTraits const traits = embankment::DrainageTraits();
    std::vector<std::wstring> words{L"old"};
    traits.AsAtomic()->valueList(words, 0);
    EXPECT_EQ(words, (std::vector<std::wstring>{L"Drained", L"Undrained", L"Partial"}));
    traits.AsAtomic()->valueList(words, 1);
    EXPECT_EQ(words, (std::vector<std::wstring>{L"D", L"U", L"P"}));
    traits.AsAtomic()->valueList(words, 2);
    EXPECT_EQ(words, (std::vector<std::wstring>{L"Drained", L"Undrained", L"Partially drained"}));
}

TEST(AtomicBuilder, PutsEveryPartInPlace) {
    meta::MetaDataTraits const traits = meta::AtomicBuilder<double>()
                                            .Units(hzn::units::Kind::Stress)
                                            .Param(DataParamType(7))
                                            .LinkGroup(12)
                                            .Visible([](zo::IZO const&) { return false; })
                                            .Editable([](zo::IZO const&) { return false; })
                                            .Build();
    meta::MetaTraitsAtomic const& record = *traits.AsAtomic();
    EXPECT_EQ(record.unitKind(nullptr, nullptr), hzn::units::Kind::Stress);
    EXPECT_EQ(record.dataParamType(nullptr), DataParamType(7));
    EXPECT_EQ(record.linkGroup, 12u);
    embankment::Embankment const project;
    zo::H const node = project.registry->Root();
    EXPECT_FALSE(meta::CallRule(record.visible, node.get()));
    EXPECT_FALSE(meta::CallRule(record.editable, node.get()));
    EXPECT_TRUE(meta::CallRule(record.visible, nullptr)) << "no node, no rule";
}

TEST(ArrayTraits, DescribeAVector) {
    std::vector<int> memory{1, 2, 3};
    meta::MetaDataTraits const traits =
        meta::ArrayTraits<std::vector<int>>([] { return meta::MetaDataTraits(meta::AtomicTraits<int>()); });
    meta::MetaTraitsArray const& record = *traits.AsArray();
    EXPECT_FALSE(record.fixedLength);
    EXPECT_TRUE(record.contiguous && record.elementsMove);
    EXPECT_EQ(record.length(&memory), 3u);
    EXPECT_EQ(record.length(nullptr), 0u);
    EXPECT_EQ(record.elementAt(&memory, 2), &memory[2]);
    EXPECT_TRUE(record.resize(&memory, 5));
    EXPECT_EQ(memory, (std::vector<int>{1, 2, 3, 0, 0}));
    EXPECT_EQ(record.addNew(&memory), 5u);
    record.removeAt(&memory, 0);
    record.removeAt(&memory, 99);
    EXPECT_EQ(memory, (std::vector<int>{2, 3, 0, 0, 0}));
    EXPECT_EQ(record.elementTraits().Descriptor(), meta::AtomicTraits<int>().Descriptor());
}

TEST(ArrayTraits, RefuseALengthThatMemoryCantHold) {
    std::vector<double> memory{1};
    meta::MetaDataTraits const traits =
        meta::ArrayTraits<std::vector<double>>([] { return meta::MetaDataTraits(meta::AtomicTraits<double>()); });
    EXPECT_FALSE(traits.AsArray()->resize(&memory, std::size_t(1) << 63));
    EXPECT_FALSE(traits.AsArray()->resize(&memory, ~std::size_t(0)));
    EXPECT_EQ(memory, std::vector<double>{1});
}

TEST(ArrayTraits, DescribeAFixedArray) {
    double memory[3] = {1, 2, 3};
    meta::MetaDataTraits const traits =
        meta::ArrayTraits<double[3]>([] { return meta::MetaDataTraits(meta::AtomicTraits<double>()); });
    meta::MetaTraitsArray const& record = *traits.AsArray();
    EXPECT_TRUE(record.fixedLength && record.contiguous);
    EXPECT_FALSE(record.elementsMove);
    EXPECT_EQ(record.length(nullptr), 3u);
    EXPECT_EQ(record.byteSize, 24u);
    EXPECT_EQ(record.elementAt(memory, 1), &memory[1]);
    EXPECT_EQ(record.resize, nullptr);
    EXPECT_EQ(record.addNew, nullptr);
    EXPECT_EQ(record.removeAt, nullptr);
}

} // namespace
