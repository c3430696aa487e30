// Values as people read them.
#include "tests/present/Basin.h"

#include "Common/model/ZOAtomicData.h"
#include "Common/registry/ZORedirect.h"

namespace basin {
namespace {

using zo::AbbrevValue;
using zo::AbbrevValueWithUnits;
using zo::HasPrettyPrintValue;
using zo::PrettyPrintValue;
using zo::PrettyPrintValueWithUnits;

using ValueTest = BasinTest;

TEST_F(ValueTest, EveryKindIsPrintedInItsVisibleUnit) {
    struct Row {
        char const* name;
        wchar_t const* text;
    };
    // Worked out with 40 digits from 1 ft = 0.3048 m and 1 lbf = 4.4482216152605 N, and rounded to 15.
    constexpr Row rows[] = {
        {"Gauges.Length", L"8.20209973753281 ft"},
        {"Gauges.Area", L"1076.39104167097 ft\u00B2"},
        {"Gauges.Volume", L"35314.6667214886 ft\u00B3"},
        {"Gauges.Angle", L"30 \u00B0"},
        {"Gauges.Time", L"60 s"},
        {"Gauges.Mass", L"68.5217658567918 slug"},
        {"Gauges.Force", L"22480.894309971 lbf"},
        {"Gauges.Stress", L"2088.54342331501 psf"},
        {"Gauges.UnitWeight", L"62.4492862753314 pcf"},
        {"Gauges.Conductivity", L"3.28083989501312e-07 ft/s"},
        {"Gauges.Flux", L"35.3146667214886 ft\u00B3/s"},
        {"Gauges.Temperature", L"68 \u00B0F"},
        {"Gauges.Energy", L"737.562149277265 ft\u00B7lbf"},
    };
    static_assert(std::size(rows) == Kind::Energy);
    for (Row const& row : rows) {
        EXPECT_EQ(PrettyPrintValueWithUnits(row.name), row.text) << row.name;
        EXPECT_EQ(AbbrevValueWithUnits(row.name), row.text) << row.name;
        std::wstring const text = row.text;
        EXPECT_EQ(PrettyPrintValue(row.name), text.substr(0, text.find(L' '))) << row.name;
        EXPECT_EQ(AbbrevValue(row.name), text.substr(0, text.find(L' '))) << row.name;
    }
}

TEST_F(ValueTest, StoredUnitsArePrintedInFull) {
    site.shown = metric;
    site.model.gauges.length = 0.1 + 0.2;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Length"), L"0.30000000000000004 m");
}

TEST_F(ValueTest, ConvertedNumbersHaveNoDigitsThatMeanNothing) {
    site.active = imperial;
    site.shown = metric;
    site.model.gauges.length = 1; // 0.3048 m, whose nearest doubles would be printed with 17 digits
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Length"), L"0.3048 m");
    site.model.gauges.length = 3;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Length"), L"0.9144 m");
}

TEST_F(ValueTest, PlainTextKnowsNoUnitsAndNoNotation) {
    Notation const comma(german);
    EXPECT_EQ(TextOf(Find("Gauges.Length")), L"2.5");
    EXPECT_EQ(TextOf(Find("Gauges.Factor")), L"0.125");
}

TEST_F(ValueTest, PeopleReadTheirDecimalPoint) {
    Notation const comma(german);
    EXPECT_EQ(PrettyPrintValue("Gauges.Factor"), L"0,125");
    EXPECT_EQ(AbbrevValue("Gauges.Factor"), L"0,125");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Stress"), L"2088,54342331501 psf");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Conductivity"), L"3,28083989501312e-07 ft/s");
    EXPECT_EQ(PrettyPrintValue("Gauges.Total"), L"9007199254740993"); // without groups
}

TEST_F(ValueTest, AMissingValueHasNoTextAndNoUnit) {
    site.model.gauges.length = missing;
    site.model.gauges.span = std::numeric_limits<int>::max();
    for (char const* name : {"Gauges.Length", "Gauges.Span"}) {
        EXPECT_EQ(PrettyPrintValue(name), L"") << name;
        EXPECT_EQ(PrettyPrintValueWithUnits(name), L"") << name;
        EXPECT_EQ(AbbrevValueWithUnits(name), L"") << name;
        EXPECT_EQ(AbbrevValueWithUnits(zo::GetTemplate(name)->RegID(),
                                       name[7] == 'L' ? static_cast<void const*>(&site.model.gauges.length)
                                                      : &site.model.gauges.span),
                  L"")
            << name;
    }
}

TEST_F(ValueTest, ValuesThatAreNotFiniteHaveNoText) {
    site.model.gauges.length = std::numeric_limits<double>::infinity();
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Length"), L"");
}

TEST_F(ValueTest, ANumberBeyondTheVisibleUnitIsNoMissingOne) {
    site.model.gauges.stress = 1e308; // 2e309 psf
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Stress"), L"inf psf");
    site.model.gauges.stress = -1e308;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Stress"), L"-inf psf");
}

TEST_F(ValueTest, ADegreeIsPrintedAsFineAsItIsStored) {
    // 0 F is no double in degrees Celsius; the nearest one is 2e-15 F off.
    site.model.gauges.temperature = -160.0 / 9;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Temperature"), L"0 \u00B0F");
    site.model.gauges.temperature = -40;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Temperature"), L"-40 \u00B0F");
    site.model.gauges.temperature = 1e-20;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Temperature"), L"32 \u00B0F");
}

TEST_F(ValueTest, AFloatIsPrintedAsFineAsItIsStored) {
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Depth"), L"0.328084 ft");
    site.shown = metric;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Depth"), L"0.1 m");
}

TEST_F(ValueTest, AWholeNumberWithAKindIsConvertedToo) {
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Span"), L"98.4251968503937 ft");
    site.shown = metric;
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Span"), L"30 m");
}

TEST_F(ValueTest, WhatHasNoKindHasNoUnit) {
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Factor"), L"0.125");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Lifts"), L"3");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Count"), L"7");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Lined"), L"true");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Remark"), L" 12 m ");
}

TEST_F(ValueTest, AnEnumerationIsPrintedByItsWords) {
    site.model.gauges.lining = Lining::Clay;
    EXPECT_EQ(TextOf(Find("Gauges.Lining")), L"Clay");
    EXPECT_EQ(AbbrevValue("Gauges.Lining"), L"cl");
    EXPECT_EQ(PrettyPrintValue("Gauges.Lining"), L"compacted clay");
}

TEST_F(ValueTest, AWordWithoutATextForPeopleIsPrintedByItsOwn) {
    EXPECT_EQ(AbbrevValue("Gauges.Lining"), L"Sheet");
    EXPECT_EQ(PrettyPrintValue("Gauges.Lining"), L"plastic sheet");
}

TEST_F(ValueTest, ANumberWithoutAWordIsPrintedAsANumber) {
    site.model.gauges.lining = static_cast<Lining>(3);
    EXPECT_EQ(PrettyPrintValue("Gauges.Lining"), L"3");
}

TEST_F(ValueTest, AnAliasPrintsItsSourceInItsUnits) {
    EXPECT_EQ(PrettyPrintValueWithUnits("Sill"), L"39.3700787401575 ft");
    EXPECT_TRUE(HasPrettyPrintValue(Find("Sill")));
}

TEST_F(ValueTest, WhatIsNoValueHasNoText) {
    EXPECT_EQ(PrettyPrintValue("Gauges"), L"");
    EXPECT_EQ(PrettyPrintValue("Marks"), L"");
    EXPECT_EQ(AbbrevValueWithUnits("Gauges"), L"");
    EXPECT_FALSE(HasPrettyPrintValue(Find("Gauges")));
}

TEST_F(ValueTest, AnEmptyHandleHasNoText) {
    H const none;
    EXPECT_EQ(PrettyPrintValue(none), L"");
    EXPECT_EQ(AbbrevValue(none), L"");
    EXPECT_EQ(PrettyPrintValueWithUnits(none), L"");
    EXPECT_EQ(AbbrevValueWithUnits(none), L"");
    EXPECT_FALSE(HasPrettyPrintValue(none));
}

TEST_F(ValueTest, ANameWithoutANodeHasNoText) {
    for (char const* name : {"", "Nowhere", "Marks[2].Level"}) {
        EXPECT_EQ(PrettyPrintValue(name), L"") << name;
        EXPECT_EQ(AbbrevValue(name), L"") << name;
        EXPECT_EQ(PrettyPrintValueWithUnits(name), L"") << name;
        EXPECT_EQ(AbbrevValueWithUnits(name), L"") << name;
    }
}

TEST_F(ValueTest, ARegisteredPrototypeHasNoValueToPrint) {
    H const prototype(zo::GetTemplate("Gauges.Length"));
    EXPECT_EQ(PrettyPrintValue(prototype), L"");
    EXPECT_TRUE(FailsAs(zo::SetPrettyPrintValue(prototype, L"1"), zo::ZOError::not_supported("")));
}

TEST_F(ValueTest, AValueWithoutANodeIsPrintedByItsRow) {
    double const level = 30;
    std::size_t const row = zo::GetTemplate("Marks[0].Level")->RegID();
    EXPECT_EQ(PrettyPrintValue(row, &level), L"98.4251968503937");
    EXPECT_EQ(AbbrevValue(row, &level), L"98.4251968503937");
    EXPECT_EQ(AbbrevValueWithUnits(row, &level), L"98.4251968503937 ft");
    // An enumeration's value is an int, whatever the structure holds.
    int const lining = 1;
    std::size_t const words = zo::GetTemplate("Gauges.Lining")->RegID();
    EXPECT_EQ(PrettyPrintValue(words, &lining), L"compacted clay");
    EXPECT_EQ(AbbrevValue(words, &lining), L"cl");
}

TEST_F(ValueTest, ARowWithoutAValueTypeOrAValueHasNoText) {
    double const level = 30;
    EXPECT_EQ(PrettyPrintValue(zo::IZO::npos, &level), L"");
    EXPECT_EQ(AbbrevValueWithUnits(zo::IZO::npos, &level), L"");
    EXPECT_EQ(PrettyPrintValue(zo::GetTemplate("Gauges")->RegID(), &level), L"");
    EXPECT_EQ(AbbrevValue(zo::GetTemplate("Gauges.Length")->RegID(), nullptr), L"");
}

TEST_F(ValueTest, ADetachedValueIsPrintedByItsType) {
    H const detached(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr,
                                                  meta::AtomicBuilder<double>().Units(Kind::Length).Build(), 3.048));
    EXPECT_EQ(PrettyPrintValueWithUnits(detached), L"10 ft");
}

TEST_F(ValueTest, AStagedValueIsPrintedInItsUnits) {
    htl::handle<zo::ZOTransaction> const edit = site.registry->CreateTransaction();
    H const staged = edit->Find("Gauges.Length");
    ASSERT_TRUE(Succeeds(staged->Set(3.048)));
    EXPECT_EQ(PrettyPrintValueWithUnits(staged), L"10 ft");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Length"), L"8.20209973753281 ft");
}

TEST_F(ValueTest, ATypesOwnFormatIsGivenTheFormatAndTheNode) {
    struct Seen {
        int format = 0;
        zo::IZO const* node = nullptr;
    };
    static Seen seen;
    seen = {};
    auto record = std::make_shared<meta::MetaTraitsAtomic>(meta::MakeAtomic<double>(0, missing));
    record->toWide = [](void const*, std::wstring& text, int format, zo::IZO const* node) {
        seen = {format, node};
        text = L"as far as it got";
        return zo::ZOError::not_supported("Gauge");
    };
    H const node(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr,
                                              meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(record))));
    EXPECT_EQ(PrettyPrintValue(node), L"as far as it got");
    EXPECT_EQ(seen.format, 2);
    EXPECT_EQ(seen.node, node.get());
    EXPECT_EQ(AbbrevValue(node), L"as far as it got");
    EXPECT_EQ(seen.format, 1);
}

/// What the table prints in place of a value.
class ValueTagTest : public BasinTest {
protected:
    static testing::AssertionResult Prints(std::wstring const& entry, std::wstring const& tag) {
        return Compiles(TableText::WithDefault().Entry(entry, {{L"PrettyPrintValueTag", tag}}));
    }
};

TEST_F(ValueTagTest, ANodeMayPrintItsPosition) {
    ASSERT_TRUE(Prints(L"Marks.[]", L"[]"));
    EXPECT_EQ(PrettyPrintValue("Marks[1]"), L"2");
    EXPECT_EQ(AbbrevValue("Marks[0]"), L"1");
    EXPECT_TRUE(HasPrettyPrintValue(Find("Marks[1]")));
}

TEST_F(ValueTagTest, ANodeWithoutAPositionPrintsNothing) {
    ASSERT_TRUE(Prints(L"Gauges", L"[]"));
    EXPECT_EQ(PrettyPrintValue("Gauges"), L"");
    EXPECT_FALSE(HasPrettyPrintValue(Find("Gauges")));
}

TEST_F(ValueTagTest, ANodeMayPrintAnotherNodesValueWithItsUnit) {
    ASSERT_TRUE(Prints(L"Marks.[]", L"Level"));
    EXPECT_EQ(PrettyPrintValue("Marks[0]"), L"39.3700787401575");
    EXPECT_EQ(PrettyPrintValueWithUnits("Marks[0]"), L"39.3700787401575 ft");
    EXPECT_EQ(AbbrevValueWithUnits("Marks[0]"), L"39.3700787401575 ft");
    EXPECT_TRUE(HasPrettyPrintValue(Find("Marks[0]")));
}

TEST_F(ValueTagTest, AMissingNodePrintsNothing) {
    ASSERT_TRUE(Prints(L"Gauges.Length", L"Nowhere"));
    EXPECT_EQ(PrettyPrintValue("Gauges.Length"), L"");
    EXPECT_EQ(PrettyPrintValueWithUnits("Gauges.Length"), L"");
    EXPECT_FALSE(HasPrettyPrintValue(Find("Gauges.Length")));
}

TEST_F(ValueTagTest, APathMayEndInThePositionOfWhatItLeadsTo) {
    H const fifth(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, meta::AtomicTraits<double>(), 20));
    site.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODS("Gauges.Probe4", false, true)), fifth,
                              meta::MetaPersistTraits(0, L"Probe"), fifth->GetDataTraits());
    ASSERT_TRUE(Prints(L"Gauges", L"Probe[]"));
    EXPECT_EQ(PrettyPrintValue("Gauges"), L"5");
    EXPECT_EQ(AbbrevValueWithUnits("Gauges"), L"5");
    EXPECT_TRUE(HasPrettyPrintValue(Find("Gauges")));
}

TEST_F(ValueTagTest, APositionIsThatOfTheFoundNodeAlone) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Marks.[].Name", {{L"PrettyPrintValueTag", L"[]"}})
                             .Entry(L"Marks.[]", {{L"PrettyPrintValueTag", L"Name[]"}})));
    // Only the element around it has digits in its own name.
    EXPECT_EQ(PrettyPrintValue("Marks[1]"), L"");
    EXPECT_EQ(PrettyPrintValue("Marks[1].Name"), L"");
}

TEST_F(ValueTagTest, AMissingNodeHasNoPosition) {
    ASSERT_TRUE(Prints(L"Marks.[]", L"Nowhere[]"));
    EXPECT_EQ(PrettyPrintValue("Marks[1]"), L"");
    EXPECT_FALSE(HasPrettyPrintValue(Find("Marks[1]")));
}

TEST_F(ValueTagTest, AnythingElseBehindAPathPrintsNothing) {
    ASSERT_TRUE(Prints(L"Gauges", L"Length!"));
    EXPECT_EQ(PrettyPrintValue("Gauges"), L"");
    EXPECT_FALSE(HasPrettyPrintValue(Find("Gauges")));
}

TEST_F(ValueTagTest, ATagOfBlanksPrintsNothing) {
    ASSERT_TRUE(Prints(L"Gauges.Length", L"  "));
    EXPECT_EQ(PrettyPrintValue("Gauges.Length"), L"");
    EXPECT_FALSE(HasPrettyPrintValue(Find("Gauges.Length")));
}

TEST_F(ValueTagTest, TheTagOfAValueHidesItsOwnText) {
    ASSERT_TRUE(Prints(L"Marks.[].Name", L"@Parent"));
    EXPECT_EQ(PrettyPrintValue("Marks[1].Name"), L""); // "@" begins no path of a value
}

TEST_F(ValueTagTest, AChainOfTagsIsFollowed) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Gauges", {{L"PrettyPrintValueTag", L"Lining"}})
                             .Entry(L"Marks.[]", {{L"PrettyPrintValueTag", L"Name"}})));
    EXPECT_EQ(PrettyPrintValue("Gauges"), L"plastic sheet");
    EXPECT_EQ(AbbrevValue("Gauges"), L"Sheet"); // the other node is printed in the same form
    EXPECT_EQ(PrettyPrintValue("Marks[1]"), L"Crest");
}

TEST_F(ValueTagTest, WhatLeadsToAnotherNodeHasAValueWhereThatHasOne) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Gauges", {{L"PrettyPrintValueTag", L"Remark"}})
                             .Entry(L"Marks.[]", {{L"PrettyPrintValueTag", L"Level"}})
                             .Entry(L"Marks.[].Level", {{L"PrettyPrintValueTag", L"Nowhere"}})));
    site.model.gauges.remark.clear();
    EXPECT_TRUE(HasPrettyPrintValue(Find("Gauges"))) << "a value is one without a text, too";
    EXPECT_FALSE(HasPrettyPrintValue(Find("Marks[0]"))) << "what it leads to prints nothing";
}

TEST_F(ValueTagTest, TheTableTakesNoPartInAValueWithoutANode) {
    ASSERT_TRUE(Prints(L"Gauges.Length", L"Nowhere"));
    double const length = 3.048;
    EXPECT_EQ(PrettyPrintValue(zo::GetTemplate("Gauges.Length")->RegID(), &length), L"10");
}

/// Records whose links stand for each other.
class ValueCycleTest : public levee::LeveeTest {
protected:
    Notation notation{classic};
};

TEST_F(ValueCycleTest, ALinkPrintsItsRecordsName) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Regions.[].Soil", {{L"PrettyPrintValueTag", L"Name"}})));
    EXPECT_EQ(PrettyPrintValue("Regions[0].Soil"), L"Clay");
    EXPECT_EQ(PrettyPrintValue("Regions[2].Soil"), L""); // refers to nothing
    EXPECT_FALSE(HasPrettyPrintValue(Find("Regions[2].Soil")));
}

TEST_F(ValueCycleTest, RecordsThatStandForEachOtherPrintNothing) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[].Substitute", {{L"PrettyPrintValueTag", L"Substitute"}})));
    H const link = Find("Soils[0].Substitute");
    EXPECT_EQ(PrettyPrintValue(link), L"");
    EXPECT_EQ(PrettyPrintValueWithUnits(link), L"");
    EXPECT_FALSE(HasPrettyPrintValue(link));
    EXPECT_TRUE(FailsAs(zo::SetPrettyPrintValue(link, L"3"), zo::ZOError::not_supported("")));
    EXPECT_EQ(levee.model.soils[0].substitute, 2);
}

} // namespace
} // namespace basin
