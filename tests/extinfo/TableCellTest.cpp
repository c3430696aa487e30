// What single cells of a table mean, and what is told of those that mean nothing.
#include "Common/extinfo/ExtendedInfoStore.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;
using Field = zo::ExtendedInfoField;

constexpr std::uint32_t untouched = 0x7FF07;

/// The entry of a row with one cell beside its tag; an empty one, after a failure of the test, if it can't be read.
ExtendedInfoEntry With(std::wstring const& column, std::wstring const& cell) {
    ExtendedInfoStore store;
    EXPECT_TRUE(Succeeds(TableText().Entry(L"Soils", {{column, cell}}).ReadInto(store)));
    return store.EntryCount() == 1 ? store.Entry(0) : ExtendedInfoEntry();
}

/// What reading a row with one cell gives; a failure leaves the store empty.
htl::status ReadWith(std::wstring const& column, std::wstring const& cell) {
    ExtendedInfoStore store;
    htl::status const result = TableText().Entry(L"Soils", {{column, cell}}).ReadInto(store);
    EXPECT_EQ(store.EntryCount(), result.IsError() ? 0u : 1u);
    return result;
}

htl::status CellFailure(std::wstring const& text) { return htl::status::FromText(L"Error with entry Soils: " + text); }

htl::status NoViewWord(std::wstring const& cell) {
    return CellFailure(L"Unable to parse \"" + cell + L"\". Expected one of {data,property,report,all,none}");
}

htl::status NoPhysicsWord(std::wstring const& cell) {
    return CellFailure(L"Unable to parse \"" + cell +
                       L"\". Expected one of {solute,gas,dynamic,water,heat,stress,slope,air,project,fe,any,all}");
}

htl::status NoModeWord(std::wstring const& cell) {
    return CellFailure(L"Unable to parse \"" + cell + L"\". Expected one of {define,contour,all}");
}

htl::status NoStyle(std::wstring const& cell) {
    return CellFailure(L"Unexpected style \"" + cell + L"\", expected one of {text,header,table}");
}

// Booleans.

TEST(TableCellTest, BooleanIsFalseForTheTextsOfNo) {
    for (std::wstring const cell : {L"", L"N", L"0", L" ", L"   "})
        EXPECT_FALSE(With(L"IsDynamic", cell).IsDynamic) << testing::PrintToString(cell);
}

TEST(TableCellTest, BooleanIsFalseForEachBeginningOfFalseInEitherCase) {
    for (std::wstring const cell : {L"f", L"F", L"fa", L"FA", L"fAl", L"fals", L"false", L"False", L"FALSE"})
        EXPECT_FALSE(With(L"IsDynamic", cell).IsDynamic) << testing::PrintToString(cell);
}

TEST(TableCellTest, BooleanIsTrueForAnythingElse) {
    for (std::wstring const cell : {L"1", L"n", L"no", L"NO", L"NN", L"00", L"0.0", L"yes", L"true", L"falsehood",
                                    L"falsE ", L" N", L" f", L"x", L"-", L"\xA0"})
        EXPECT_TRUE(With(L"IsDynamic", cell).IsDynamic) << testing::PrintToString(cell);
}

TEST(TableCellTest, BooleanOfLineEndsAndTabsIsFalse) {
    // As references: a document turns the characters themselves into blanks.
    for (std::string const cell : {"&#9;", "&#10;&#13;", "&#32;&#9;"}) {
        ExtendedInfoStore store;
        std::string const document = "<T><R Tag='Soils' IsDynamic='" + cell + "'/></T>";
        ASSERT_TRUE(Succeeds(store.ReadBytes(document.data(), document.data() + document.size())));
        EXPECT_FALSE(store.Entry(0).IsDynamic) << cell;
    }
}

TEST(TableCellTest, LowerCaseNIsTrueAndUpperCaseNIsFalse) {
    EXPECT_TRUE(With(L"IsDynamic", L"n").IsDynamic);
    EXPECT_FALSE(With(L"IsDynamic", L"N").IsDynamic);
}

TEST(TableCellTest, IsDynamicIsStatedWhateverItsCell) {
    for (std::wstring const cell : {L"", L"0", L"1"})
        EXPECT_TRUE(With(L"IsDynamic", cell).Has(Field::IsDynamic)) << testing::PrintToString(cell);
    EXPECT_TRUE(With(L"Label", L"Soils").Has(Field::IsDynamic));
}

// Views: the listed ones are taken away.

TEST(TableCellTest, EveryViewWordTakesItsViewsAway) {
    std::vector<std::pair<std::wstring, std::uint32_t>> const words = {
        {L"data", 0x7FF06}, {L"property", 0x7FF05}, {L"report", 0x7FF03}, {L"all", 0x7FF00}, {L"none", 0x7FF07}};
    for (auto const& [word, mask] : words) {
        EXPECT_EQ(With(L"ViewExcl", word).mask, mask) << testing::PrintToString(word);
        EXPECT_TRUE(With(L"ViewExcl", word).Has(Field::ViewExcl)) << testing::PrintToString(word);
    }
}

TEST(TableCellTest, ViewWordsAddUp) {
    EXPECT_EQ(With(L"ViewExcl", L"data,report").mask, 0x7FF02u);
    EXPECT_EQ(With(L"ViewExcl", L"none,property").mask, 0x7FF05u);
    EXPECT_EQ(With(L"ViewExcl", L"data,data").mask, 0x7FF06u);
}

TEST(TableCellTest, ViewWordNoneLeavesAllViewsAndIsStated) {
    ExtendedInfoEntry const entry = With(L"ViewExcl", L"none");
    EXPECT_EQ(entry.mask, untouched);
    EXPECT_TRUE(entry.Has(Field::ViewExcl));
    EXPECT_FALSE(With(L"ViewExcl", L"").Has(Field::ViewExcl));
}

// Analyses and modes: the listed ones replace all.

TEST(TableCellTest, EveryPhysicsWordReplacesTheAnalyses) {
    std::vector<std::pair<std::wstring, std::uint32_t>> const words = {
        {L"solute", 0x68007},  {L"gas", 0x60107},    {L"dynamic", 0x60207}, {L"water", 0x60407},
        {L"heat", 0x62007},    {L"stress", 0x60807}, {L"slope", 0x61007},   {L"air", 0x64007},
        {L"project", 0x70007}, {L"fe", 0x6EF07},     {L"any", 0x6FF07},     {L"all", 0x7FF07}};
    for (auto const& [word, mask] : words) {
        EXPECT_EQ(With(L"Physics", word).mask, mask) << testing::PrintToString(word);
        EXPECT_TRUE(With(L"Physics", word).Has(Field::Physics)) << testing::PrintToString(word);
    }
}

TEST(TableCellTest, PhysicsWaterAndSlopeGiveTheirTwoBits) {
    EXPECT_EQ(With(L"Physics", L"water,slope").mask & 0x1FF00, 0x1400u);
    EXPECT_EQ(With(L"Physics", L"water,slope").mask, 0x61407u);
}

TEST(TableCellTest, PhysicsAllSetsTheBitsOfAnEmptyCellAndIsStated) {
    EXPECT_EQ(With(L"Physics", L"all").mask, With(L"Physics", L"").mask);
    EXPECT_TRUE(With(L"Physics", L"all").Has(Field::Physics));
    EXPECT_FALSE(With(L"Physics", L"").Has(Field::Physics));
}

TEST(TableCellTest, EveryModeWordReplacesTheModes) {
    EXPECT_EQ(With(L"Mode", L"define").mask, 0x3FF07u);
    EXPECT_EQ(With(L"Mode", L"contour").mask, 0x5FF07u);
    EXPECT_EQ(With(L"Mode", L"all").mask, untouched);
    EXPECT_EQ(With(L"Mode", L"define,contour").mask, untouched);
    EXPECT_TRUE(With(L"Mode", L"all").Has(Field::Mode));
}

TEST(TableCellTest, GroupsOfOneMaskDoNotTouchEachOther) {
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(TableText()
                             .Entry(L"Soils", {{L"ViewExcl", L"report"}, {L"Physics", L"slope"}, {L"Mode", L"contour"}})
                             .ReadInto(store)));
    EXPECT_EQ(store.Entry(0).mask, 0x41003u);
}

TEST(TableCellTest, UnknownWordIsToldWithTheWholeCellAndAllWords) {
    EXPECT_TRUE(FailsAs(ReadWith(L"ViewExcl", L"data,tree"), NoViewWord(L"data,tree")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Physics", L"water,rock,slope"), NoPhysicsWord(L"water,rock,slope")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Mode", L"design"), NoModeWord(L"design")));
}

TEST(TableCellTest, BlankBesideACommaBelongsToTheWord) {
    EXPECT_TRUE(FailsAs(ReadWith(L"Physics", L"water, slope"), NoPhysicsWord(L"water, slope")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Mode", L"define ,contour"), NoModeWord(L"define ,contour")));
    EXPECT_TRUE(FailsAs(ReadWith(L"ViewExcl", L" "), NoViewWord(L" ")));
}

TEST(TableCellTest, CaseOfAWordCounts) {
    EXPECT_TRUE(FailsAs(ReadWith(L"ViewExcl", L"Data"), NoViewWord(L"Data")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Physics", L"WATER"), NoPhysicsWord(L"WATER")));
}

TEST(TableCellTest, EmptyPieceIsNoWord) {
    for (std::wstring const cell : {L"water,", L",water", L"water,,slope", L","})
        EXPECT_TRUE(FailsAs(ReadWith(L"Physics", cell), NoPhysicsWord(cell)));
}

TEST(TableCellTest, BeginningOfAWordIsNoWord) {
    EXPECT_TRUE(FailsAs(ReadWith(L"Mode", L"def"), NoModeWord(L"def")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Mode", L"defines"), NoModeWord(L"defines")));
}

TEST(TableCellTest, WordsOfOneColumnAreUnknownToTheOthers) {
    EXPECT_TRUE(FailsAs(ReadWith(L"ViewExcl", L"water"), NoViewWord(L"water")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Physics", L"none"), NoPhysicsWord(L"none")));
    EXPECT_TRUE(FailsAs(ReadWith(L"Mode", L"any"), NoModeWord(L"any")));
}

TEST(TableCellTest, PercentSignsOfACellArePlainTextInItsMessage) {
    EXPECT_TRUE(FailsAs(ReadWith(L"Mode", L"%s%1%%"), NoModeWord(L"%s%1%%")));
    EXPECT_EQ(ReadWith(L"Mode", L"%s%1%%").AsWString(),
              L"Error with entry Soils: Unable to parse \"%s%1%%\". Expected one of {define,contour,all}");
}

// Style.

TEST(TableCellTest, EveryStyleWordGivesItsStyle) {
    EXPECT_EQ(With(L"Style", L"header").Style, 0);
    EXPECT_EQ(With(L"Style", L"table").Style, 1);
    EXPECT_EQ(With(L"Style", L"text").Style, 2);
    EXPECT_TRUE(With(L"Style", L"text").Has(Field::Style));
}

TEST(TableCellTest, EmptyStyleIsTextAndNotStated) {
    EXPECT_EQ(With(L"Style", L"").Style, zo::style::text);
    EXPECT_FALSE(With(L"Style", L"").Has(Field::Style));
}

TEST(TableCellTest, UnknownStyleIsToldWithAllStyles) {
    for (std::wstring const cell : {L"Table", L"tables", L" text", L"text,table", L" "})
        EXPECT_TRUE(FailsAs(ReadWith(L"Style", cell), NoStyle(cell)));
}

// Which failure is told.

TEST(TableCellTest, FirstCellThatFailsIsToldInTheOrderOfReading) {
    ExtendedInfoStore store;
    EXPECT_TRUE(
        FailsAs(TableText()
                    .Entry(L"Soils", {{L"Style", L"s"}, {L"Mode", L"m"}, {L"Physics", L"p"}, {L"ViewExcl", L"v"}})
                    .ReadInto(store),
                NoViewWord(L"v")));
    EXPECT_TRUE(
        FailsAs(TableText().Entry(L"Soils", {{L"Style", L"s"}, {L"Mode", L"m"}, {L"Physics", L"p"}}).ReadInto(store),
                NoPhysicsWord(L"p")));
    EXPECT_TRUE(
        FailsAs(TableText().Entry(L"Soils", {{L"Style", L"s"}, {L"Mode", L"m"}}).ReadInto(store), NoModeWord(L"m")));
}

TEST(TableCellTest, FirstRowThatFailsIsToldAndNothingOfTheTableIsKept) {
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(TableText::WithDefault().ReadInto(store)));
    EXPECT_TRUE(FailsAs(TableText()
                            .Entry(L"Regions", {{L"Label", L"Regions"}})
                            .Entry(L"Soils", {{L"Mode", L"m"}})
                            .Entry(L"Points", {{L"Style", L"s"}})
                            .ReadInto(store),
                        NoModeWord(L"m")));
    EXPECT_EQ(store.EntryCount(), 1u);
    EXPECT_EQ(store.FirstTableCount(), 0u);
}

TEST(TableCellTest, FailureNamesTheTagAsItStands) {
    ExtendedInfoStore store;
    EXPECT_EQ(TableText().Entry(L"100% {%s}", {{L"Style", L"x"}}).ReadInto(store).AsWString(),
              L"Error with entry 100% {%s}: Unexpected style \"x\", expected one of {text,header,table}");
}

} // namespace
