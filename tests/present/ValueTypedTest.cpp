// What people type into values.
#include "tests/present/Basin.h"

#include "Common/model/ZOAtomicData.h"
#include "support/diag.h"

namespace basin {
namespace {

using htl::Convert_error_status;
using zo::SetAbbrevValue;
using zo::SetPrettyPrintValue;
using zo::ZOError::not_supported;

htl::status NoNumber(std::wstring const& text) {
    return Convert_error_status::InvalidCharStatus(text, Convert_error_status::FloatingPointString());
}
htl::status NoWhole(std::wstring const& text) {
    return Convert_error_status::InvalidCharStatus(text, Convert_error_status::WholeNumberString());
}
htl::status OutOfRange(std::wstring const& text) {
    return Convert_error_status::OutOfRangeStatus(text, Convert_error_status::FloatingPointString());
}
htl::status WholeOutOfRange(std::wstring const& text) {
    return Convert_error_status::OutOfRangeStatus(text, Convert_error_status::WholeNumberString());
}
htl::status TwoNumbers(std::wstring const& text, std::wstring const& point) { return htl::status(90013, text, point); }

class TypedTest : public BasinTest {
protected:
    testing::AssertionResult Types(std::string const& name, std::wstring const& text) {
        return Succeeds(SetPrettyPrintValue(Find(name), text));
    }
    testing::AssertionResult Refuses(std::string const& name, std::wstring const& text, htl::status const& failure) {
        std::wstring const before = TextOf(Find(name));
        testing::AssertionResult const result = FailsAs(SetPrettyPrintValue(Find(name), text), failure);
        if (TextOf(Find(name)) != before) return testing::AssertionFailure() << "the value changed";
        return result;
    }
    double& length = site.model.gauges.length;
};

TEST_F(TypedTest, ANumberIsInTheVisibleUnit) {
    EXPECT_TRUE(Types("Gauges.Length", L"10"));
    EXPECT_EQ(length, 3.048);
    EXPECT_TRUE(Types("Gauges.Stress", L"500"));
    EXPECT_NEAR(site.model.gauges.stress, 23.94012949016792130806, 4e-15);
    EXPECT_TRUE(Types("Gauges.Temperature", L"-40"));
    EXPECT_EQ(site.model.gauges.temperature, -40);
    EXPECT_TRUE(Types("Gauges.Angle", L"45"));
    EXPECT_EQ(site.model.gauges.angle, 45);
}

TEST_F(TypedTest, TheShortFormIsReadAlike) {
    EXPECT_TRUE(Succeeds(SetAbbrevValue(Find("Gauges.Length"), L"10 ft")));
    EXPECT_EQ(length, 3.048);
}

TEST_F(TypedTest, TheVisibleUnitMayStandBehindTheNumber) {
    for (wchar_t const* text : {L"10 ft", L"10ft", L"  10  ft  ", L"10\u00A0ft", L"\t10.0\tft\n", L"+1e1 ft"}) {
        length = 0;
        EXPECT_TRUE(Types("Gauges.Length", text)) << text;
        EXPECT_EQ(length, 3.048) << text;
    }
    EXPECT_TRUE(Types("Gauges.Area", L"1 ft\u00B2"));
    EXPECT_EQ(site.model.gauges.area, 0.09290304);
    EXPECT_TRUE(Types("Gauges.Temperature", L"212 \u00B0F"));
    EXPECT_EQ(site.model.gauges.temperature, 100);
}

TEST_F(TypedTest, AnythingElseBehindTheNumberIsRefused) {
    for (wchar_t const* text : {L"10 m", L"10 Ft", L"10 feet", L"10 ft 3", L"10 ft.", L"10 10", L"ft 10", L"ft", L"ten",
                                L"10,5", L"1,000", L"0x10", L"inf", L"nan", L"--1", L".", L"e5", L"10 psf"}) {
        EXPECT_TRUE(Refuses("Gauges.Length", text, NoNumber(text))) << text;
    }
    EXPECT_TRUE(Refuses("Gauges.Factor", L"1 ft", NoNumber(L"1 ft"))); // has no unit
}

TEST_F(TypedTest, AUnitOfAnApplicationIsReadAsItIsPrinted) {
    auto const before =
        hzn::units::SetUnitText([](Kind::Type, UnitSet const&) { return std::wstring(L"foot (intl.)"); });
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Gauges.Length"), L"8.20209973753281 foot (intl.)");
    EXPECT_TRUE(Types("Gauges.Length", L"10 foot (intl.)"));
    (void)hzn::units::SetUnitText(before);
    EXPECT_EQ(length, 3.048);
}

TEST_F(TypedTest, AUnitWithItsKindIsReadAsItIsPrinted) {
    hzn::feature::SetFeature(L"HZN_UK", true);
    std::wstring const shown = zo::PrettyPrintValueWithUnits("Gauges.Length");
    EXPECT_TRUE(Types("Gauges.Length", L"10 ft [Length]"));
    hzn::feature::SetFeature(L"HZN_UK", false);
    EXPECT_EQ(shown, L"8.20209973753281 ft [Length]");
    EXPECT_EQ(length, 3.048);
}

TEST_F(TypedTest, NothingIsTheMissingValue) {
    for (wchar_t const* text : {L"", L" ", L"\t\u00A0"}) {
        length = 1;
        EXPECT_TRUE(Types("Gauges.Length", text));
        EXPECT_EQ(length, missing);
        site.model.gauges.span = 30;
        EXPECT_TRUE(Types("Gauges.Span", text));
        EXPECT_EQ(site.model.gauges.span, std::numeric_limits<int>::max());
    }
}

TEST_F(TypedTest, NothingIsRefusedWhereNoValueIsMissing) {
    EXPECT_TRUE(Refuses("Gauges.Count", L"", NoWhole(L"")));
    H const needed(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr,
                                                meta::AtomicBuilder<double>().Missing(std::nullopt).Build(), 5));
    EXPECT_TRUE(FailsAs(SetPrettyPrintValue(needed, L""), NoNumber(L"")));
    EXPECT_EQ(TextOf(needed), L"5");
}

TEST_F(TypedTest, TheDecimalPointIsThatOfTheNotation) {
    Notation const comma(german);
    EXPECT_TRUE(Types("Gauges.Length", L"1,25 ft"));
    EXPECT_EQ(length, 0.381);
    EXPECT_TRUE(Types("Gauges.Factor", L"-,5"));
    EXPECT_EQ(site.model.gauges.factor, -0.5);
    EXPECT_TRUE(Types("Gauges.Factor", L"2,5e-3"));
    EXPECT_EQ(site.model.gauges.factor, 0.0025);
}

TEST_F(TypedTest, APointIsADecimalPointWhereItCannotGroup) {
    Notation const comma(german);
    struct Row {
        wchar_t const* text;
        double value;
    };
    for (Row const& row : {Row{L"1.25", 1.25},
                           {L"1.5", 1.5},
                           {L"-12.5", -12.5},
                           {L"1.2345", 1.2345},
                           {L"0.500", 0.5},
                           {L".500", 0.5},
                           {L"1234.500", 1234.5},
                           {L"2.", 2},
                           {L"2.5e3", 2500},
                           {L"+00.125", 0.125}}) {
        EXPECT_TRUE(Types("Gauges.Factor", row.text)) << row.text;
        EXPECT_EQ(site.model.gauges.factor, row.value) << row.text;
    }
}

TEST_F(TypedTest, APointThatMayGroupIsRefused) {
    Notation const comma(german);
    for (wchar_t const* text :
         {L"1.500", L"-12.500", L"+123.456", L" 1.500 ", L"1.500,25", L"1.500.000", L"1.500e3", L"12.5,5"})
        EXPECT_TRUE(Refuses("Gauges.Factor", text, TwoNumbers(text, L","))) << text;
    EXPECT_TRUE(Refuses("Gauges.Length", L"1.500 ft", TwoNumbers(L"1.500 ft", L",")));
    EXPECT_TRUE(Refuses("Gauges.Lifts", L"1.500", TwoNumbers(L"1.500", L",")));
}

TEST_F(TypedTest, APointIsADecimalPointWhereSomethingElseGroups) {
    Notation const comma(french);
    EXPECT_TRUE(Types("Gauges.Factor", L"1.500"));
    EXPECT_EQ(site.model.gauges.factor, 1.5);
    for (wchar_t const* text : {L"1\u202F500", L"1 500", L"1.500,25", L"1.500.000"})
        EXPECT_TRUE(Refuses("Gauges.Factor", text, NoNumber(text))) << text;
}

TEST_F(TypedTest, GroupsAreNeverRead) {
    Notation const english(str::locale::ID(L'.', L','));
    for (wchar_t const* text : {L"1,500", L"1,500.25", L"1'500"})
        EXPECT_TRUE(Refuses("Gauges.Factor", text, NoNumber(text))) << text;
}

TEST_F(TypedTest, ANumberBeyondTheTypeIsRefused) {
    EXPECT_TRUE(Refuses("Gauges.Factor", L"1e309", OutOfRange(L"1e309")));
    EXPECT_TRUE(Refuses("Gauges.Length", L"-1e309 ft", OutOfRange(L"-1e309 ft")));
    EXPECT_TRUE(Refuses("Gauges.Depth", L"2e39", OutOfRange(L"2e39")));
    site.shown = metric;
    EXPECT_TRUE(Refuses("Gauges.Depth", L"1e39 m", OutOfRange(L"1e39 m")));
    site.active = imperial;
    EXPECT_TRUE(Refuses("Gauges.Length", L"1e308 m", OutOfRange(L"1e308 m"))); // 3e308 ft
}

TEST_F(TypedTest, WholeNumbersAreReadInTheirRange) {
    EXPECT_TRUE(Types("Gauges.Lifts", L" -12 "));
    EXPECT_EQ(site.model.gauges.lifts, -12);
    EXPECT_TRUE(Types("Gauges.Total", L"-9007199254740993"));
    EXPECT_EQ(site.model.gauges.total, -9007199254740993);
    EXPECT_TRUE(Types("Gauges.Count", L"255"));
    EXPECT_EQ(site.model.gauges.count, 255);
    EXPECT_TRUE(Refuses("Gauges.Count", L"256", WholeOutOfRange(L"256")));
    EXPECT_TRUE(Refuses("Gauges.Lifts", L"2147483648", WholeOutOfRange(L"2147483648")));
    for (wchar_t const* text : {L"1.5", L"1e2", L"1.", L"twelve", L"12 m", L"- 1"})
        EXPECT_TRUE(Refuses("Gauges.Lifts", text, NoWhole(text))) << text;
}

TEST_F(TypedTest, AnUnsignedNumberBeyondItsTypeIsNoMissingOne) {
    H const node(
        new zo::ZOAtomicData<htl::UInt64>(zo::IZO::npos, nullptr, meta::AtomicTraits<htl::UInt64>(), htl::UInt64(5)));
    EXPECT_TRUE(FailsAs(SetPrettyPrintValue(node, L"18446744073709551616"), WholeOutOfRange(L"18446744073709551616")));
    EXPECT_EQ(TextOf(node), L"5");
}

TEST_F(TypedTest, AWholeNumberOfAnotherUnitMustBeWholeWhereItIsStored) {
    EXPECT_TRUE(Types("Gauges.Span", L"65.6167979002625 ft"));
    EXPECT_EQ(site.model.gauges.span, 20);
    EXPECT_TRUE(Types("Gauges.Span", L"-1250"));
    EXPECT_EQ(site.model.gauges.span, -381);
    EXPECT_TRUE(Refuses("Gauges.Span", L"100 ft", NoWhole(L"100 ft"))); // 30.48 m
    EXPECT_TRUE(Refuses("Gauges.Span", L"1e300", WholeOutOfRange(L"1e300")));
    EXPECT_TRUE(Refuses("Gauges.Span", L"1e309", WholeOutOfRange(L"1e309")));
    EXPECT_TRUE(Refuses("Gauges.Span", L"100 m", NoWhole(L"100 m")));
}

TEST_F(TypedTest, AnEnumerationIsReadByTheWordsOfTheFormat) {
    Lining& lining = site.model.gauges.lining;
    EXPECT_TRUE(Types("Gauges.Lining", L"compacted clay"));
    EXPECT_EQ(lining, Lining::Clay);
    EXPECT_TRUE(Succeeds(SetAbbrevValue(Find("Gauges.Lining"), L"-")));
    EXPECT_EQ(lining, Lining::None);
    EXPECT_TRUE(Succeeds(SetAbbrevValue(Find("Gauges.Lining"), L"Sheet")));
    EXPECT_EQ(lining, Lining::Sheet);
    EXPECT_TRUE(Types("Gauges.Lining", L" no lining "));
    EXPECT_EQ(lining, Lining::None);
    EXPECT_TRUE(Types("Gauges.Lining", L"Clay")); // as documents have it
    EXPECT_EQ(lining, Lining::Clay);
}

TEST_F(TypedTest, OtherWordsAreRefused) {
    for (wchar_t const* text : {L"", L"cl", L"Compacted clay", L"gravel", L"300"})
        EXPECT_TRUE(Refuses("Gauges.Lining", text, zo::ZOError::not_recognized(text))) << text;
    EXPECT_TRUE(FailsAs(SetAbbrevValue(Find("Gauges.Lining"), L"compacted clay"),
                        zo::ZOError::not_recognized(L"compacted clay")));
}

TEST_F(TypedTest, TruthValuesAreReadWithBlanksAround) {
    EXPECT_TRUE(Types("Gauges.Lined", L" false "));
    EXPECT_FALSE(site.model.gauges.lined);
    EXPECT_TRUE(Types("Gauges.Lined", L"Yes"));
    EXPECT_TRUE(site.model.gauges.lined);
    EXPECT_TRUE(Refuses("Gauges.Lined", L"maybe", Convert_error_status::InvalidCharStatus(L"maybe", L"truth value")));
}

TEST_F(TypedTest, TextIsTakenAsItStands) {
    EXPECT_TRUE(Types("Gauges.Remark", L"  1.500 ft  "));
    EXPECT_EQ(site.model.gauges.remark, L"  1.500 ft  ");
}

TEST_F(TypedTest, AnAliasWritesItsSource) {
    EXPECT_TRUE(Types("Sill", L"10 ft"));
    EXPECT_EQ(site.model.marks[0].level, 3.048);
}

TEST_F(TypedTest, WithoutAProviderNothingIsConverted) {
    Site const bare(false);
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Gauges.Length"), L"2.5");
    EXPECT_TRUE(Types("Gauges.Length", L"10"));
    EXPECT_EQ(bare.model.gauges.length, 10);
    EXPECT_TRUE(Refuses("Gauges.Length", L"10 m", NoNumber(L"10 m")));
}

TEST_F(TypedTest, WhatIsNoValueCantBeTypedInto) {
    for (H const& node : {H(), Find("Gauges"), Find("Marks"), Find("Nowhere")}) {
        EXPECT_TRUE(FailsAs(SetPrettyPrintValue(node, L"1"), not_supported("")));
        EXPECT_TRUE(FailsAs(SetAbbrevValue(node, L"1"), not_supported("")));
    }
}

TEST_F(TypedTest, TheNodeThatTheTablePrintsIsWritten) {
    ASSERT_TRUE(Compiles(TableText::WithDefault().Entry(L"Marks.[]", {{L"PrettyPrintValueTag", L"Level"}})));
    EXPECT_TRUE(Types("Marks[1]", L"10 ft"));
    EXPECT_EQ(site.model.marks[1].level, 3.048);
    EXPECT_TRUE(Succeeds(SetAbbrevValue(Find("Marks[0]"), L"20 ft")));
    EXPECT_EQ(site.model.marks[0].level, 6.096);
}

TEST_F(TypedTest, WhereTheTablesNodeIsNotThereTheNodeItselfIsWritten) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Gauges.Length", {{L"PrettyPrintValueTag", L"Nowhere"}})
                             .Entry(L"Gauges", {{L"PrettyPrintValueTag", L"Nowhere"}})));
    EXPECT_TRUE(Types("Gauges.Length", L"10"));
    EXPECT_EQ(length, 3.048);
    EXPECT_TRUE(FailsAs(SetPrettyPrintValue(Find("Gauges"), L"10"), not_supported("")));
}

TEST_F(TypedTest, ATagThatIsNoPathRedirectsNoWrite) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Gauges.Length", {{L"PrettyPrintValueTag", L"[]"}})
                             .Entry(L"Gauges.Factor", {{L"PrettyPrintValueTag", L"Length[]"}})));
    EXPECT_TRUE(Types("Gauges.Length", L"10"));
    EXPECT_EQ(length, 3.048);
    EXPECT_TRUE(Types("Gauges.Factor", L"0.5"));
    EXPECT_EQ(site.model.gauges.factor, 0.5);
}

} // namespace
} // namespace basin
