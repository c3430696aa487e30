// Which entry speaks for a row, and what it takes over from others.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/ViewModel.h"
#include "tests/registry/Rows.h"

#include "support/describe.h"

#include <string>
#include <thread>
#include <vector>

namespace {

using namespace fixture;
using embankment::Succeeds;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;
using Field = zo::ExtendedInfoField;
namespace row = dam::row;

constexpr std::size_t none = ExtendedInfoStore::End;

ExtendedInfoStore& Store() { return zo::extinfo::Store(); }
std::size_t At(std::wstring const& tag) { return Store().Find(tag); }
ExtendedInfoEntry const& Of(std::wstring const& tag) { return Store().Entry(At(tag)); }
/// The tag of the entry that speaks for a field of a row, "none" if only the default entry could.
std::wstring Speaker(std::size_t regID, unsigned field) {
    std::size_t const index = Store().Lookup(regID, field);
    return index == none ? L"none" : Store().Entry(index).Tag;
}
std::wstring LabelOf(std::size_t regID) { return Store().LookupWhole(regID, Field::Label).Label; }

/// Reads a table and compiles it. That some entries are used by no row is no failure here: tests of one search have
/// entries for it alone.
void Use(TableText const& table) {
    ASSERT_TRUE(Succeeds(table.Read()));
    htl::status const result = zo::CompileExtendedInfo();
    ASSERT_TRUE(!result.IsError() || result.AsWString().starts_with(L"One or more extended info entries not used"))
        << testing::PrintToString(result.AsWString());
    ASSERT_TRUE(Store().IsCompiled());
}

std::vector<Cell> Label(std::wstring text) { return {{L"Label", std::move(text)}}; }

class LookupTest : public dam::ViewModelTest {};

// The four searches.

TEST_F(LookupTest, EntryUnderTheFullTagSpeaksForTheRow) {
    Use(TableText::WithDefault().Entry(L"Body.Crest", Label(L"Crest")));
    EXPECT_EQ(Speaker(row::Crest, Field::Label), L"Body.Crest");
    EXPECT_EQ(Speaker(row::Height, Field::Label), L"none");
}

TEST_F(LookupTest, AllElementsOfAnArrayShareTheEntryOfTheirNormalForm) {
    Use(TableText::WithDefault().Entry(L"Points.[].X", Label(L"Station")));
    for (char const* name : {"Points[0].X", "Points[2].X"})
        EXPECT_EQ(Store().Lookup(zo::Find(name), Field::Label).Label, L"Station");
}

TEST_F(LookupTest, EntryUnderATypeAndAPathSpeaksForWhatIsBelowTheType) {
    Use(TableText::WithDefault().Entry(L"dam::DamPoint.X", Label(L"Station")));
    EXPECT_EQ(Speaker(row::X, Field::Label), L"dam::DamPoint.X");
    EXPECT_EQ(Speaker(row::Name, Field::Label), L"none");
}

TEST_F(LookupTest, PathBelowATypeMayLeadThroughAnArray) {
    std::wstring const type = L"std::vector<dam::DamPoint, std::allocator<dam::DamPoint> >";
    Use(TableText::WithDefault().Entry(type + L".[].X", Label(L"Station")));
    EXPECT_EQ(Speaker(row::X, Field::Label), type + L".[].X");
}

TEST_F(LookupTest, OutermostAncestorWins) {
    std::wstring const type = L"std::vector<dam::DamPoint, std::allocator<dam::DamPoint> >";
    Use(TableText::WithDefault().Entry(L"dam::DamPoint.X", Label(L"near")).Entry(type + L".[].X", Label(L"far")));
    EXPECT_EQ(LabelOf(row::X), L"far");
}

TEST_F(LookupTest, RootIsNoAncestor) {
    Use(TableText::WithDefault().Entry(L"void.Body", Label(L"below the root")));
    EXPECT_EQ(Speaker(row::Body, Field::Label), L"none");
}

TEST_F(LookupTest, TypeOfTheRowItselfIsNoAncestor) {
    Use(TableText::WithDefault().Entry(L"dam::DamBody.Body", Label(L"x")));
    EXPECT_EQ(Speaker(row::Body, Field::Label), L"none");
}

TEST_F(LookupTest, LongestWildcardSpeaksForTheRow) {
    Use(TableText::WithDefault().Entry(L"*.X", Label(L"short")).Entry(L"Points.[].*", Label(L"long")));
    EXPECT_EQ(LabelOf(row::X), L"long");
}

TEST_F(LookupTest, WildcardNeedsOneMoreCharacter) {
    Use(TableText::WithDefault().Entry(L"Body*", Label(L"below")));
    EXPECT_EQ(Speaker(row::Body, Field::Label), L"none");
    EXPECT_EQ(Speaker(row::Crest, Field::Label), L"Body*");
}

TEST_F(LookupTest, EntryUnderTheTypeSpeaksForTheRow) {
    Use(TableText::WithDefault().Entry(L"dam::DamBody", Label(L"Body")));
    EXPECT_EQ(Speaker(row::Body, Field::Label), L"dam::DamBody");
    EXPECT_EQ(Speaker(row::Body, Field::Whole), L"dam::DamBody");
}

TEST_F(LookupTest, EntryOfAValueTypeSpeaksForFieldsAndNotForTheWhole) {
    Use(TableText::WithDefault().Entry(L"double", {{L"IsDynamic", L"1"}, {L"Label", L"Number"}}));
    EXPECT_EQ(Speaker(row::Crest, Field::Label), L"double");
    EXPECT_EQ(Speaker(row::Crest, Field::Whole), L"none");
}

TEST_F(LookupTest, SearchesGoFromTheTagOverTypeAndPathAndWildcardsToTheType) {
    std::vector<std::pair<std::wstring, std::wstring>> const entries{{L"Body.Crest", L"tag"},
                                                                     {L"dam::DamBody.Crest", L"type and path"},
                                                                     {L"*.Crest", L"wildcard"},
                                                                     {L"double", L"type"}};
    for (std::size_t first = 0; first < entries.size(); ++first) {
        dam::ViewModel dam;
        TableText table = TableText::WithDefault();
        for (std::size_t i = first; i < entries.size(); ++i) table.Entry(entries[i].first, Label(entries[i].second));
        Use(table);
        EXPECT_EQ(LabelOf(row::Crest), entries[first].second);
    }
}

TEST_F(LookupTest, EarlierOfTwoEqualTagsSpeaks) {
    TableText table = TableText::WithDefault();
    table.Entry(L"Drain", Label(L"first")).Entry(L"Drain", Label(L"second"));
    EXPECT_TRUE(table.Read().IsError());
    (void)zo::CompileExtendedInfo(); // the second one is used by nothing
    EXPECT_EQ(LabelOf(row::Drain), L"first");
}

TEST_F(LookupTest, NumbersFrom14AskForAnyField) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    for (unsigned const field : {14u, 15u, 16u, 17u, 4'000'000'000u}) EXPECT_EQ(Speaker(row::Drain, field), L"Drain");
}

TEST_F(LookupTest, RowThatIsNotThereHasNoEntry) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    EXPECT_EQ(Store().Lookup(row::count, Field::Label), none);
    EXPECT_EQ(Store().Lookup(zo::IZO::npos, Field::Whole), none);
    EXPECT_EQ(&Store().LookupWhole(zo::IZO::npos, Field::Whole), &Store().DefaultEntry());
}

TEST_F(LookupTest, BeforeCompilationNothingIsFoundOrCompleted) {
    ASSERT_TRUE(Succeeds(TableText::WithDefault().Entry(L"Drain", Label(L"Drain")).Read()));
    EXPECT_EQ(Store().Lookup(row::Drain, Field::Label), none);
    EXPECT_EQ(&Store().LookupWhole(row::Drain, Field::Whole), &Store().DefaultEntry());
    EXPECT_EQ(&Store().Lookup(zo::Find("Drain"), Field::Label), &Store().DefaultEntry());
    EXPECT_EQ(Of(L"Drain").fields.count(), 2u); // IsDynamic and Label
    ASSERT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_EQ(LabelOf(row::Drain), L"Drain");
}

// Taking over.

TEST_F(LookupTest, OwnEntryWithALabelAloneTakesItsDescriptionFromTheWildcard) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Crest", Label(L"Crest"))
            .Entry(L"Body.*", {{L"Description", L"Part of the body"}}));
    EXPECT_EQ(Speaker(row::Crest, Field::Description), L"Body.Crest");
    EXPECT_EQ(Of(L"Body.Crest").Description, L"Part of the body");
    EXPECT_EQ(Of(L"Body.Crest").Label, L"Crest");
}

TEST_F(LookupTest, WhatAnEntryTookOverIsThereForEveryNodeThatSharesIt) {
    Use(TableText::WithDefault()
            .Entry(L"Points.[].X", Label(L"Station"))
            .Entry(L"Points.*", {{L"Description", L"Of the outline"}}));
    EXPECT_FALSE(Of(L"Points.[].X").fields[Field::Description]);
    EXPECT_EQ(Store().Lookup(zo::Find("Points[0].X"), Field::Description).Description, L"Of the outline");
    EXPECT_TRUE(Of(L"Points.[].X").fields[Field::Description]);
    EXPECT_EQ(&Store().Lookup(zo::Find("Points[2].X"), Field::Description), &Of(L"Points.[].X"));
}

TEST_F(LookupTest, FieldComesFromTheNextEntryThatHasIt) {
    std::vector<std::pair<std::wstring, std::wstring>> const others{
        {L"dam::DamBody.Crest", L"type and path"}, {L"*.Crest", L"wildcard"}, {L"double", L"type"}};
    for (std::size_t first = 0; first <= others.size(); ++first) {
        dam::ViewModel dam;
        TableText table = TableText().Entry(L"Default", {{L"Category", L"default"}}).Entry(L"Body.Crest");
        for (std::size_t i = 0; i < others.size(); ++i)
            table.Entry(others[i].first, i < first ? Label(L"x") : std::vector<Cell>{{L"Category", others[i].second}});
        Use(table);
        EXPECT_EQ(Speaker(row::Crest, Field::Category), L"Body.Crest");
        EXPECT_EQ(Of(L"Body.Crest").Category, first < others.size() ? others[first].second : L"default");
    }
}

TEST_F(LookupTest, FirstEntryFoundTakesOverWhereTheRowHasNoneUnderItsTag) {
    Use(TableText::WithDefault()
            .Entry(L"dam::DamBody.Crest", Label(L"Crest"))
            .Entry(L"*.Crest", {{L"Category", L"Levels"}}));
    EXPECT_EQ(Speaker(row::Crest, Field::Category), L"dam::DamBody.Crest");
    EXPECT_EQ(Of(L"dam::DamBody.Crest").Category, L"Levels");
}

TEST_F(LookupTest, EachFieldIsTakenOverWithItsValue) {
    Use(TableText::WithDefault().Entry(L"Drain").Entry(L"dam::DamDrain",
                                                       {{L"Label", L"1"},
                                                        {L"LabelTag", L"2"},
                                                        {L"Description", L"3"},
                                                        {L"PrettyPrintNameTag", L"4"},
                                                        {L"PrettyPrintValueTag", L"5"},
                                                        {L"ColorTag", L"6"},
                                                        {L"CustomView", L"7"},
                                                        {L"Category", L"8"},
                                                        {L"Style", L"table"}},
                                                       {From(L".*")}));
    ExtendedInfoEntry const& entry = Store().LookupWhole(row::Drain, Field::Whole);
    EXPECT_EQ(entry.Tag, L"Drain");
    EXPECT_EQ(entry.Label, L"1");
    EXPECT_EQ(entry.LabelTag, L"2");
    EXPECT_EQ(entry.Description, L"3");
    EXPECT_EQ(entry.PrettyPrintNameTag, L"4");
    EXPECT_EQ(entry.PrettyPrintValueTag, L"5");
    EXPECT_EQ(entry.ColorTag, L"6");
    EXPECT_EQ(entry.CustomView, L"7");
    EXPECT_EQ(entry.Category, L"8");
    EXPECT_EQ(entry.Style, zo::style::table);
    ASSERT_EQ(entry.viewTravList.size(), 1u);
    EXPECT_EQ(entry.viewTravList[0].SourceTag, L".*");
    EXPECT_TRUE(entry.fields.all());
}

TEST_F(LookupTest, ViewThatTheOtherEntryLacksIsLost) {
    Use(TableText::WithDefault().Entry(L"Body.Crest").Entry(L"*.Crest", {{L"ViewExcl", L"data,report"}}));
    EXPECT_EQ(Store().LookupWhole(row::Crest, Field::ViewExcl).mask, 0x7FF02u);
}

TEST_F(LookupTest, StatedPhysicsOfAWildcardDoesNotNarrowAnEntryWithoutPhysics) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Crest")
            .Entry(L"*.Crest", {{L"Physics", L"slope"}, {L"Mode", L"define"}}));
    EXPECT_EQ(Store().LookupWhole(row::Crest, Field::Visibility).mask, 0x7FF07u);
}

TEST_F(LookupTest, StatedPhysicsStandsAgainstThatOfOthers) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Crest", {{L"Physics", L"water"}})
            .Entry(L"*.Crest", {{L"Physics", L"slope"}}));
    EXPECT_EQ(Store().LookupWhole(row::Crest, Field::Visibility).mask, 0x60407u);
}

TEST_F(LookupTest, EmptyTextThatIsStatedNowhereComesFromTheDefaultEntry) {
    Use(TableText().Entry(L"Default", {{L"Description", L"Not described"}}).Entry(L"Drain"));
    EXPECT_EQ(Speaker(row::Drain, Field::Description), L"Drain");
    EXPECT_EQ(Of(L"Drain").Description, L"Not described");
}

TEST_F(LookupTest, RowWithoutEntryIsAnsweredByTheDefaultEntry) {
    Use(TableText().Entry(L"Default", {{L"Description", L"Not described"}}));
    EXPECT_EQ(Speaker(row::Drain, Field::Description), L"none");
    EXPECT_EQ(&Store().LookupWhole(row::Drain, Field::Description), &Store().DefaultEntry());
}

TEST_F(LookupTest, FieldOfTheDefaultEntryThatAGeneralEntryTookOverIsPassedOn) {
    // Height has no entry of its own: the wildcard is its entry, and takes the category over for it.
    Use(TableText()
            .Entry(L"Default", {{L"Category", L"default"}})
            .Entry(L"Body.*", Label(L"Part"))
            .Entry(L"Body.Crest")
            .Entry(L"double", {{L"IsDynamic", L"1"}, {L"CustomView", L"numbers"}}));
    EXPECT_EQ(Speaker(row::Height, Field::Category), L"Body.*");
    EXPECT_EQ(Speaker(row::Crest, Field::Category), L"Body.Crest");
    EXPECT_EQ(Of(L"Body.Crest").Category, L"default");
    // The type is asked before the default entry.
    EXPECT_EQ(Speaker(row::Crest, Field::CustomView), L"Body.Crest");
    EXPECT_EQ(Of(L"Body.Crest").CustomView, L"numbers");
}

TEST_F(LookupTest, EntryOfATypeAndAPathTakesOverFromAType) {
    Use(TableText::WithDefault()
            .Entry(L"dam::DamBody.Crest")
            .Entry(L"double", {{L"IsDynamic", L"1"}, {L"Category", L"Numbers"}}));
    EXPECT_EQ(Speaker(row::Crest, Field::Category), L"dam::DamBody.Crest");
    EXPECT_EQ(Of(L"dam::DamBody.Crest").Category, L"Numbers");
}

TEST_F(LookupTest, AskingForAnyFieldCompletesNothing) {
    Use(TableText::WithDefault().Entry(L"Drain").Entry(L"*rain", Label(L"x")));
    (void)Store().Lookup(row::Drain, Field::Whole);
    EXPECT_EQ(Of(L"Drain").fields.count(), 2u); // IsDynamic, and ViewHierarchy, which the compilation asks for
}

// The whole entry.

TEST_F(LookupTest, WholeEntryHasAllFields) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    EXPECT_TRUE(Store().LookupWhole(row::Drain, Field::Whole).fields.all());
}

TEST_F(LookupTest, QuestionForTheVisibilityCompletesItsThreeFields) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    ExtendedInfoEntry const& entry = Store().LookupWhole(row::Drain, Field::Visibility);
    EXPECT_TRUE(entry.fields[Field::ViewExcl] && entry.fields[Field::Physics] && entry.fields[Field::Mode]);
    EXPECT_FALSE(entry.fields[Field::Label]);
}

TEST_F(LookupTest, Number14CompletesNothing) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    EXPECT_EQ(Store().LookupWhole(row::Drain, 14).fields.count(), 2u);
    EXPECT_EQ(Store().Lookup(zo::Find("Drain"), 14).fields.count(), 2u);
}

TEST_F(LookupTest, WholeQuestionForAValueLeavesTheEntryOfItsType) {
    Use(TableText::WithDefault().Entry(L"double", {{L"IsDynamic", L"1"}, {L"Label", L"Number"}}));
    EXPECT_EQ(&Store().LookupWhole(row::Crest, Field::Whole), &Store().DefaultEntry());
    EXPECT_EQ(Store().LookupWhole(row::Crest, Field::Label).Label, L"Number");
}

// Who stated it.

TEST_F(LookupTest, FieldIsKnownByTheEntryThatStatedIt) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Crest", Label(L"Crest"))
            .Entry(L"Body.*", {{L"Description", L"Part"}})
            .Entry(L"dam::DamBody"));
    std::size_t const crest = At(L"Body.Crest");
    EXPECT_EQ(Store().StatedBy(crest, Field::Description), none); // not asked for yet
    (void)Store().LookupWhole(row::Crest, Field::Whole);
    EXPECT_EQ(Store().StatedBy(crest, Field::Label), crest);
    EXPECT_EQ(Store().StatedBy(crest, Field::Description), At(L"Body.*"));
    EXPECT_EQ(Store().StatedBy(crest, Field::Category), none);
    EXPECT_EQ(Store().StatedBy(none, Field::Label), none);
    EXPECT_EQ(Store().StatedBy(crest, Field::Whole), none);
}

TEST_F(LookupTest, FieldThatWentFromEntryToEntryIsKnownByTheFirst) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Crest")
            .Entry(L"Body.*", Label(L"Part"))
            .Entry(L"double", {{L"IsDynamic", L"1"}, {L"Category", L"Numbers"}}));
    (void)Store().Lookup(row::Height, Field::Category); // the wildcard takes it from the type
    (void)Store().Lookup(row::Crest, Field::Category);  // and passes it on
    EXPECT_EQ(Store().StatedBy(At(L"Body.*"), Field::Category), At(L"double"));
    EXPECT_EQ(Store().StatedBy(At(L"Body.Crest"), Field::Category), At(L"double"));
}

TEST_F(LookupTest, PlaceOfAnEntryIsKnown) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    EXPECT_EQ(Store().IndexOf(Store().LookupWhole(row::Drain, Field::Whole)), At(L"Drain"));
    EXPECT_EQ(Store().IndexOf(Store().DefaultEntry()), none);
    ExtendedInfoEntry const elsewhere;
    EXPECT_EQ(Store().IndexOf(elsewhere), none);
}

// Masks that are kept.

TEST_F(LookupTest, MaskIsKeptOnceItIsFinal) {
    Use(TableText::WithDefault().Entry(L"Drain", {{L"ViewExcl", L"data"}}));
    EXPECT_EQ(Store().FinalMask(row::Drain), 0u);
    std::uint32_t mask = 0;
    EXPECT_EQ(Store().LookupVisibility(row::Drain, mask), At(L"Drain"));
    EXPECT_EQ(mask, 0x7FF06u);
    EXPECT_EQ(Store().FinalMask(row::Drain), 0x7FF06u | ExtendedInfoStore::maskIsKnown);
}

TEST_F(LookupTest, MaskOfTheDefaultEntryIsKeptForARowWithoutEntry) {
    Use(TableText().Entry(L"Default", {{L"ViewExcl", L"report"}}));
    std::uint32_t mask = 0;
    EXPECT_EQ(Store().LookupVisibility(row::Drain, mask), none);
    EXPECT_EQ(mask, 0x7FF03u);
    EXPECT_EQ(Store().FinalMask(row::Drain), 0x7FF03u | ExtendedInfoStore::maskIsKnown);
}

TEST_F(LookupTest, NoMaskIsKeptBeforeCompilationOrWithoutARow) {
    EXPECT_EQ(Store().FinalMask(row::Drain), 0u);
    std::uint32_t mask = 1;
    EXPECT_EQ(Store().LookupVisibility(row::Drain, mask), none);
    EXPECT_EQ(mask, 0u);
    Use(TableText::WithDefault());
    EXPECT_EQ(Store().LookupVisibility(row::count, mask), none);
    EXPECT_EQ(Store().FinalMask(row::count), 0u);
    EXPECT_EQ(Store().FinalMask(zo::IZO::npos), 0u);
}

// Aliases that a traversal list added.

constexpr std::size_t alias = row::count;

TEST_F(LookupTest, AliasOfTheViewIsSpokenForByTheEntryOfItsSource) {
    Use(TableText::WithDefault().Entry(L"Drain.Flow", Label(L"Flow")).Entry(L"Body", {}, {Also(L"Drain.Flow")}));
    EXPECT_EQ(zo::ZORegistry::Instance()->Tables()->tagNames[alias], L"Body.Flow");
    EXPECT_EQ(Speaker(alias, Field::Label), L"Drain.Flow");
    EXPECT_EQ(Speaker(alias, Field::Whole), L"Drain.Flow");
}

TEST_F(LookupTest, WhatAnAliasFindsByItsOwnTagGoesToTheEntryOfItsSource) {
    // Asked after binding, the alias has its source's entry, and the wildcard of its own tag has a description.
    Use(TableText::WithDefault()
            .Entry(L"Drain.Flow", Label(L"Flow"))
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Drain.*", {{L"Description", L"Of the drain"}}));
    EXPECT_EQ(Speaker(alias, Field::Category), L"Drain.Flow");
    EXPECT_EQ(Speaker(alias, Field::Description), L"Drain.Flow");
    EXPECT_EQ(Of(L"Drain.Flow").Description, L"Of the drain");
}

TEST_F(LookupTest, AliasWithAnEntryOfItsOwnTakesOverFromItsSource) {
    Use(TableText::WithDefault()
            .Entry(L"Drain.Flow", Label(L"Flow"))
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Body.Flow", {{L"Category", L"Water"}}));
    EXPECT_EQ(Speaker(alias, Field::Label), L"Body.Flow");
    EXPECT_EQ(Of(L"Body.Flow").Label, L"Flow");
    EXPECT_EQ(Store().StatedBy(At(L"Body.Flow"), Field::Label), At(L"Drain.Flow"));
}

TEST_F(LookupTest, SourceIsNotAskedWhereTheWildcardOfTheAliasIsFound) {
    Use(TableText::WithDefault()
            .Entry(L"Drain.Flow", Label(L"Flow"))
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Body.F*", {{L"Category", L"Water"}}));
    EXPECT_EQ(Speaker(alias, Field::Label), L"Body.F*");
    EXPECT_EQ(Of(L"Body.F*").Label, L"");
}

TEST_F(LookupTest, TypeDoesNotSpeakForAnAlias) {
    Use(TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}).Entry(L"void", Label(L"Anything")));
    EXPECT_EQ(Speaker(row::Root, Field::Label), L"void");
    EXPECT_EQ(Speaker(alias, Field::Label), L"none");
}

TEST_F(LookupTest, DynamicEntryTakesNothingOverForAnAlias) {
    Use(TableText::WithDefault()
            .Entry(L"Drain.Flow", Label(L"Flow"))
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Body.Flow", {{L"IsDynamic", L"1"}, {L"Category", L"Water"}}));
    EXPECT_EQ(Speaker(alias, Field::Category), L"Body.Flow");
    EXPECT_EQ(Speaker(alias, Field::Label), L"Drain.Flow"); // that of its source speaks instead
    EXPECT_EQ(Speaker(alias, Field::Description), L"Drain.Flow");
    EXPECT_FALSE(Of(L"Body.Flow").fields[Field::Label]);
    EXPECT_EQ(Store().LookupWhole(alias, Field::Whole).fields.count(), 2u);
}

TEST_F(LookupTest, WholeQuestionForAnAliasWithADynamicEntryLeavesTheEntryOfItsSourceAlone) {
    Use(TableText::WithDefault()
            .Entry(L"Drain.Flow", Label(L"Flow"))
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Body.Flow", {{L"IsDynamic", L"1"}}));
    auto const before = Of(L"Drain.Flow").fields;
    (void)Store().LookupWhole(alias, Field::Whole);
    (void)Store().Lookup(zo::Find("Body.Flow"), Field::Whole);
    std::uint32_t mask = 0;
    (void)Store().LookupVisibility(alias, mask);
    EXPECT_EQ(Of(L"Drain.Flow").fields, before);
}

TEST_F(LookupTest, MaskOfAnAliasWithADynamicEntryIsNotKept) {
    Use(TableText()
            .Entry(L"Default", {{L"ViewExcl", L"data"}})
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Body.Flow", {{L"IsDynamic", L"1"}}));
    std::uint32_t mask = 0;
    EXPECT_EQ(Store().LookupVisibility(alias, mask), At(L"Body.Flow"));
    EXPECT_EQ(mask, 0x7FF07u); // nothing is taken from the default entry
    EXPECT_EQ(Store().FinalMask(alias), 0u);
}

TEST_F(LookupTest, MaskOfAnAliasWithADynamicEntryIsKeptIfTheEntryStatesAllOfIt) {
    Use(TableText::WithDefault()
            .Entry(L"Body", {}, {Also(L"Drain.Flow")})
            .Entry(L"Body.Flow",
                   {{L"IsDynamic", L"1"}, {L"ViewExcl", L"data"}, {L"Physics", L"water"}, {L"Mode", L"define"}}));
    std::uint32_t mask = 0;
    (void)Store().LookupVisibility(alias, mask);
    EXPECT_EQ(Store().FinalMask(alias), 0x20406u | ExtendedInfoStore::maskIsKnown);
}

// Rows that are registered by hand: types, aliases and tags of any kind.

struct Pump {};

meta::MetaDataTraits PumpTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<Pump>().Build();
    return traits;
}

constexpr wchar_t const* pumpType = L"(anonymous namespace)::Pump";

class LookupRowsTest : public rows::RegistryTest {
protected:
    std::size_t Add(std::string const& name, std::wstring const& tag, meta::MetaDataTraits const& traits) {
        registry.Add(name, zo::H(new rows::Plain), tag, traits);
        return rows::RowOf(name);
    }
    /// An alias as traversal lists add them, for the row with a tag.
    std::size_t AddAlias(std::string const& name, std::wstring const& path) {
        registry.Add(name, zo::H(new rows::OtherName("Pump", true)), std::wstring(name.begin(), name.end()),
                     rows::StructureTraits());
        std::size_t const row = rows::RowOf(name);
        paths.emplace_back(row, path);
        return row;
    }
    void Finish(TableText const& table) {
        registry->OnPostRegistration();
        zo::ZORegistryImpl& tables = *registry->Tables();
        tables.viewIsFinal = true;
        for (auto const& [row, path] : paths) {
            tables.viewRecords[row].kind = zo::ViewTravRecord::RegistryName;
            tables.viewRecords[row].path = path;
        }
        Use(table);
    }

    std::vector<std::pair<std::size_t, std::wstring>> paths;
};

TEST_F(LookupRowsTest, RowWithoutTagIsFoundByItsTypeAlone) {
    std::size_t const row = Add("Pump", L"", PumpTraits());
    Finish(TableText::WithDefault().Entry(pumpType, Label(L"Pump")).Entry(L"*ump", Label(L"wildcard")));
    EXPECT_EQ(Speaker(row, Field::Label), pumpType);
}

TEST_F(LookupRowsTest, AncestorWithoutATypeEndsTheClimb) {
    Add("Station", L"Station", PumpTraits());
    Add("Station.Hall", L"Hall", rows::StructureTraits()); // a structure of no type
    std::size_t const row = Add("Station.Hall.Valve", L"Valve", PumpTraits());
    Finish(TableText::WithDefault().Entry(std::wstring(pumpType) + L".Hall.Valve", Label(L"Valve")));
    EXPECT_EQ(Speaker(row, Field::Label), L"none");
}

TEST_F(LookupRowsTest, EntryOfATypeAndAPathPassesOnWhatItTookFromAType) {
    // Both valves are below pumps; the second one has an entry of its own and another type.
    Add("East", L"East", PumpTraits());
    std::size_t const first = Add("East.Valve", L"Valve", PumpTraits());
    Add("West", L"West", PumpTraits());
    std::size_t const second = Add("West.Valve", L"Valve", rows::StructureTraits());
    Finish(TableText()
               .Entry(L"Default", {{L"Category", L"default"}})
               .Entry(std::wstring(pumpType) + L".Valve")
               .Entry(pumpType, {{L"Category", L"Pumps"}})
               .Entry(L"West.Valve"));
    EXPECT_EQ(Speaker(first, Field::Category), std::wstring(pumpType) + L".Valve");
    EXPECT_EQ(Speaker(second, Field::Category), L"West.Valve");
    EXPECT_EQ(Of(L"West.Valve").Category, L"Pumps");
}

TEST_F(LookupRowsTest, RowThatComesAfterCompilationIsFound) {
    Add("Pump", L"Pump", PumpTraits());
    Finish(TableText::WithDefault()
               .Entry(L"Late", {{L"IsDynamic", L"1"}, {L"Label", L"Late"}})
               .Entry(std::wstring(pumpType) + L".Valve", {{L"IsDynamic", L"1"}, {L"Label", L"Valve"}})
               .Entry(L"L*st", {{L"IsDynamic", L"1"}, {L"Label", L"Last"}}));
    EXPECT_EQ(LabelOf(Add("Late", L"Late", PumpTraits())), L"Late");
    EXPECT_EQ(LabelOf(Add("Pump.Valve", L"Valve", rows::StructureTraits())), L"Valve");
    EXPECT_EQ(LabelOf(Add("Latest", L"Latest", PumpTraits())), L"Last");
    std::uint32_t mask = 0;
    EXPECT_EQ(Store().LookupVisibility(rows::RowOf("Late"), mask), At(L"Late"));
    EXPECT_EQ(Store().FinalMask(rows::RowOf("Late")), 0u);
}

TEST_F(LookupRowsTest, TypeThatIsNamedAfterCompilationIsFound) {
    registry.AddPlain("Pump", L"Pump");
    std::size_t const row = rows::RowOf("Pump");
    Finish(TableText::WithDefault().Entry(pumpType, {{L"IsDynamic", L"1"}, {L"Label", L"Pump"}}));
    EXPECT_EQ(Speaker(row, Field::Label), L"none");
    zo::ZOTypeTemplate::Register(typeid(Pump), zo::H(zo::GetTemplate("Pump")));
    EXPECT_EQ(Speaker(row, Field::Label), pumpType);
}

TEST_F(LookupRowsTest, AliasWithoutATagIsSpokenForByItsSourceAlone) {
    Add("Pump", L"Pump", PumpTraits());
    registry.Add("Shortcut", zo::H(new rows::OtherName("Pump", true)), L"", rows::StructureTraits());
    std::size_t const row = rows::RowOf("Shortcut");
    paths.emplace_back(row, L"Pump");
    Finish(TableText::WithDefault().Entry(L"Pump", Label(L"Pump")).Entry(L"*cut", Label(L"wildcard")));
    EXPECT_EQ(Speaker(row, Field::Label), L"Pump");
    EXPECT_EQ(Speaker(row, Field::Whole), L"Pump");
}

TEST_F(LookupRowsTest, AliasOfAnAliasIsSpokenForByTheLastSource) {
    Add("Pump", L"Pump", PumpTraits());
    std::size_t const first = AddAlias("First", L"Pump");
    std::size_t const second = AddAlias("Second", L"First");
    Finish(TableText::WithDefault().Entry(L"Pump", Label(L"Pump")));
    EXPECT_EQ(Speaker(first, Field::Label), L"Pump");
    EXPECT_EQ(Speaker(second, Field::Label), L"Pump");
}

TEST_F(LookupRowsTest, AliasesInACircleAreAnsweredByTheDefaultEntry) {
    std::size_t const east = AddAlias("East", L"West");
    std::size_t const west = AddAlias("West", L"East");
    Finish(TableText::WithDefault());
    EXPECT_EQ(Speaker(east, Field::Label), L"none");
    EXPECT_EQ(Speaker(west, Field::Whole), L"none");
}

TEST_F(LookupRowsTest, EntryWithinACircleOfAliasesIsCompletedByTheDefaultEntry) {
    std::size_t const east = AddAlias("East", L"West");
    AddAlias("West", L"East");
    Finish(TableText().Entry(L"Default", {{L"Category", L"default"}}).Entry(L"West", Label(L"West")));
    EXPECT_EQ(Speaker(east, Field::Label), L"West");
    EXPECT_EQ(Speaker(east, Field::Category), L"West");
    EXPECT_EQ(Of(L"West").Category, L"default");
}

TEST_F(LookupRowsTest, AliasThatStandsForItselfIsAnsweredByTheDefaultEntry) {
    std::size_t const self = AddAlias("Self", L"Self");
    Finish(TableText::WithDefault());
    EXPECT_EQ(Speaker(self, Field::Label), L"none");
}

TEST_F(LookupRowsTest, AliasForNothingIsAnsweredByTheDefaultEntry) {
    std::size_t const row = AddAlias("Shadow", L"Nothing");
    Finish(TableText::WithDefault());
    EXPECT_EQ(Speaker(row, Field::Label), L"none");
}

TEST_F(LookupRowsTest, AliasesAreBoundThroughThoseThatTheyStandForHoweverMany) {
    // Each stands for the one before it, which is bound already.
    Add("Pump", L"Pump", PumpTraits());
    AddAlias("Alias1", L"Pump");
    constexpr int count = 3000;
    for (int i = 2; i <= count; ++i) AddAlias("Alias" + std::to_string(i), L"Alias" + std::to_wstring(i - 1));
    Finish(TableText::WithDefault().Entry(L"Pump", Label(L"Pump")));
    EXPECT_EQ(Speaker(rows::RowOf("Alias3000"), Field::Label), L"Pump");
    EXPECT_EQ(Speaker(rows::RowOf("Alias3000"), Field::Whole), L"Pump");
}

TEST_F(LookupRowsTest, AliasesAreFollowedForAThousandSteps) {
    // Backwards, so that none is bound before the one that it stands for; a type of values binds nothing.
    Add("Pump", L"Pump", meta::AtomicTraits<double>());
    constexpr int count = 1500;
    for (int i = count; i >= 1; --i)
        AddAlias("Alias" + std::to_string(i), i == 1 ? L"Pump" : L"Alias" + std::to_wstring(i - 1));
    Finish(TableText::WithDefault().Entry(L"double", {{L"IsDynamic", L"1"}, {L"Label", L"Number"}}));
    EXPECT_EQ(Speaker(rows::RowOf("Alias1000"), Field::Label), L"double");
    EXPECT_EQ(Speaker(rows::RowOf("Alias1001"), Field::Label), L"none");
    EXPECT_EQ(Speaker(rows::RowOf("Alias1500"), Field::Label), L"none");
}

// Threads.

TEST_F(LookupTest, ThreadsThatAskAtOnceFindTheSame) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Crest", Label(L"Crest"))
            .Entry(L"Points.[].X", Label(L"Station"))
            .Entry(L"*.Crest", {{L"Description", L"Part"}})
            .Entry(L"Body", {{L"ViewExcl", L"data"}}));
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            zo::ZORegistry* const before = zo::ZORegistry::SetInstance(dam.registry.get());
            constexpr auto rowCount = static_cast<unsigned>(row::count);
            for (unsigned i = 0; i < 2000; ++i) {
                std::size_t const id = i % rowCount;
                (void)Store().Lookup(id, (i / rowCount + t) % Field::count);
                std::uint32_t mask = 0;
                if (!Store().FinalMask(id)) (void)Store().LookupVisibility(id, mask);
            }
            zo::ZORegistry::SetInstance(before);
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(Of(L"Body.Crest").fields.all());
    EXPECT_EQ(Of(L"Body.Crest").Label, L"Crest");
    EXPECT_EQ(Of(L"Points.[].X").Category, L"");
    EXPECT_EQ(Store().FinalMask(row::Body), 0x7FF06u | ExtendedInfoStore::maskIsKnown);
    EXPECT_EQ(Store().FinalMask(row::Crest), 0x7FF07u | ExtendedInfoStore::maskIsKnown);
}

} // namespace
