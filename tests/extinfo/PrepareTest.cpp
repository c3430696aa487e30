// What a compilation does with the tables before it looks at rows: joining, the default entry, the checks.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "tests/fixtures/ViewModel.h"

#include "support/status.h"

#include <string>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;
using Field = zo::ExtendedInfoField;
using Table = zo::ExtendedInfoStore::Table;
namespace row = dam::row;

htl::status Says(std::wstring const& text) { return htl::status::FromText(text); }

class PrepareTest : public dam::ViewModelTest {
protected:
    static ExtendedInfoStore& Store() { return zo::extinfo::Store(); }
    /// Reads both tables and compiles them.
    static htl::status Join(TableText const& first, TableText const& second) {
        EXPECT_TRUE(Succeeds(first.Read()));
        EXPECT_TRUE(Succeeds(second.Read()));
        return zo::CompileExtendedInfo();
    }
    static ExtendedInfoEntry const& Of(std::wstring const& tag) { return Store().Entry(Store().Find(tag)); }
};

TableText Body() {
    return TableText::WithDefault()
        .Entry(L"Body", {{L"Label", L"Body"}, {L"Description", L"What holds the water"}, {L"Category", L"Parts"}})
        .Entry(L"Drain", {{L"Label", L"Drain"}});
}

// The second table.

TEST_F(PrepareTest, LabelsAndDescriptionsOfTheSecondTableReplaceThoseOfTheFirst) {
    ASSERT_TRUE(Succeeds(
        Join(Body(), TableText().Entry(L"Body", {{L"Label", L"Damm"}, {L"Description", L"Was das Wasser hält"}}))));
    EXPECT_EQ(Of(L"Body").Label, L"Damm");
    EXPECT_EQ(Of(L"Body").Description, L"Was das Wasser hält");
    EXPECT_EQ(Of(L"Drain").Label, L"Drain");
}

TEST_F(PrepareTest, EmptyTextOfTheSecondTableLeavesThatOfTheFirst) {
    ASSERT_TRUE(Succeeds(Join(Body(), TableText().Entry(L"Body", {{L"Label", L""}, {L"Description", L"Damm"}}))));
    EXPECT_EQ(Of(L"Body").Label, L"Body");
    EXPECT_EQ(Of(L"Body").Description, L"Damm");
}

TEST_F(PrepareTest, TextThatOnlyTheSecondTableHasIsStated) {
    ASSERT_TRUE(
        Succeeds(Join(TableText::WithDefault().Entry(L"Drain"),
                      TableText().Entry(L"Drain", {{L"Label", L"Drän"}, {L"Description", L"Führt Wasser ab"}}))));
    // Own texts: what is completed from the default entry is empty.
    EXPECT_EQ(Store().StatedBy(Store().Find(L"Drain"), Field::Label), Store().Find(L"Drain"));
    EXPECT_EQ(Store().LookupWhole(row::Drain, Field::Label).Label, L"Drän");
    EXPECT_EQ(Store().LookupWhole(row::Drain, Field::Description).Description, L"Führt Wasser ab");
}

TEST_F(PrepareTest, OtherColumnsOfTheSecondTableAreIgnored) {
    ASSERT_TRUE(Succeeds(Join(Body(), TableText().Entry(L"Body",
                                                        {{L"IsDynamic", L"1"},
                                                         {L"LabelTag", L"x"},
                                                         {L"ViewExcl", L"all"},
                                                         {L"Physics", L"water"},
                                                         {L"Mode", L"define"},
                                                         {L"Style", L"header"},
                                                         {L"PrettyPrintNameTag", L"x"},
                                                         {L"PrettyPrintValueTag", L"x"},
                                                         {L"ColorTag", L"x"},
                                                         {L"CustomView", L"x"},
                                                         {L"Category", L"Teile"}},
                                                        {From(L"Drain")}))));
    ExtendedInfoEntry const& entry = Store().LookupWhole(row::Body, Field::Whole);
    EXPECT_FALSE(entry.IsDynamic);
    EXPECT_EQ(entry.LabelTag, L"");
    EXPECT_EQ(entry.mask, 0x7FF07u);
    EXPECT_EQ(entry.Style, zo::style::text);
    EXPECT_EQ(entry.PrettyPrintNameTag, L"");
    EXPECT_EQ(entry.PrettyPrintValueTag, L"");
    EXPECT_EQ(entry.ColorTag, L"");
    EXPECT_EQ(entry.CustomView, L"");
    EXPECT_EQ(entry.Category, L"Parts");
    EXPECT_TRUE(entry.viewTravList.empty());
}

TEST_F(PrepareTest, SecondTableIsCutOff) {
    ASSERT_TRUE(Succeeds(Join(Body(), TableText().Entry(L"Drain").Entry(L"Body"))));
    EXPECT_EQ(Store().EntryCount(), 3u);
    EXPECT_EQ(Store().FirstTableCount(), 0u);
}

TEST_F(PrepareTest, UnknownTagOfTheSecondTableFails) {
    EXPECT_TRUE(FailsAs(Join(Body(), TableText().Entry(L"Spillway", {{L"Label", L"Überlauf"}})),
                        Says(L"Unexpected entry {Spillway} found in the second ExtendedInfo table.")));
}

TEST_F(PrepareTest, LastUnknownTagIsTold) {
    EXPECT_TRUE(FailsAs(Join(Body(), TableText().Entry(L"Apron").Entry(L"Spillway").Entry(L"Crest")),
                        Says(L"Unexpected entry {Spillway} found in the second ExtendedInfo table.")));
}

TEST_F(PrepareTest, RestOfASecondTableWithAnUnknownTagIsJoined) {
    EXPECT_TRUE(FailsAs(Join(Body(), TableText()
                                         .Entry(L"Apron", {{L"Label", L"Vorfeld"}})
                                         .Entry(L"Body", {{L"Label", L"Damm"}})
                                         .Entry(L"Crest", {{L"Label", L"Krone"}})
                                         .Entry(L"Drain", {{L"Label", L"Drän"}})),
                        Says(L"Unexpected entry {Crest} found in the second ExtendedInfo table.")));
    EXPECT_EQ(Of(L"Body").Label, L"Damm");
    EXPECT_EQ(Of(L"Drain").Label, L"Drän");
    EXPECT_EQ(Store().EntryCount(), 3u);
}

TEST_F(PrepareTest, TagBeyondTheLastOfTheFirstTableIsUnknown) {
    EXPECT_TRUE(FailsAs(Join(Body(), TableText().Entry(L"Zone")),
                        Says(L"Unexpected entry {Zone} found in the second ExtendedInfo table.")));
}

TEST_F(PrepareTest, DefaultEntryTakesTranslatedTexts) {
    ASSERT_TRUE(Succeeds(Join(Body(), TableText().Entry(L"Default", {{L"Description", L"Ohne Beschreibung"}}))));
    EXPECT_EQ(Store().DefaultEntry().Description, L"Ohne Beschreibung");
}

TEST_F(PrepareTest, EmptySecondTableIsNone) {
    ASSERT_TRUE(Succeeds(Join(Body(), TableText())));
    EXPECT_EQ(Of(L"Body").Label, L"Body");
    EXPECT_EQ(Store().EntryCount(), 3u);
}

TEST_F(PrepareTest, EntriesOfMoreThanTwoTablesAreFoundByTheirTags) {
    EXPECT_TRUE(Succeeds(TableText().Entry(L"Drain", {{L"Label", L"Drain"}}).Read()));
    EXPECT_TRUE(Succeeds(TableText::WithDefault().Entry(L"Body", {{L"Label", L"Body"}}).Read()));
    EXPECT_TRUE(Succeeds(TableText().Read()));
    ASSERT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_EQ(Store().LookupWhole(row::Body, Field::Label).Label, L"Body");
    EXPECT_EQ(Store().LookupWhole(row::Drain, Field::Label).Label, L"Drain");
}

TEST_F(PrepareTest, TextsAreKnownByTheTableThatTheyCameWith) {
    ASSERT_TRUE(Succeeds(Join(Body(), TableText()
                                          .Entry(L"Body", {{L"Description", L"Was das Wasser hält"}})
                                          .Entry(L"Drain", {{L"Description", L"Führt Wasser ab"}}))));
    EXPECT_TRUE(Store().HasSecondTable());
    std::size_t const body = Store().Find(L"Body");
    std::size_t const drain = Store().Find(L"Drain");
    EXPECT_TRUE(Store().CameWith(Table::First, body, Field::Label));
    EXPECT_FALSE(Store().CameWith(Table::Second, body, Field::Label));
    EXPECT_TRUE(Store().CameWith(Table::First, body, Field::Description));
    EXPECT_TRUE(Store().CameWith(Table::Second, body, Field::Description));
    EXPECT_FALSE(Store().CameWith(Table::First, drain, Field::Description));
    EXPECT_TRUE(Store().CameWith(Table::Second, drain, Field::Description));
}

TEST_F(PrepareTest, CompletedTextsCameWithNoTable) {
    ASSERT_TRUE(Succeeds(dam::Compile(Body())));
    std::size_t const drain = Store().Find(L"Drain");
    EXPECT_EQ(Store().Lookup(row::Drain, Field::Description), drain);
    EXPECT_FALSE(Store().HasSecondTable());
    EXPECT_FALSE(Store().CameWith(Table::First, drain, Field::Description));
    EXPECT_FALSE(Store().CameWith(Table::First, drain, Field::Category));
    EXPECT_FALSE(Store().CameWith(Table::First, ExtendedInfoStore::End, Field::Label));
}

TEST_F(PrepareTest, TextsOfTwoTablesAreKnownAfterASecondAttempt) {
    EXPECT_TRUE(FailsAs(Join(TableText().Entry(L"Body"), TableText().Entry(L"Body", {{L"Label", L"Damm"}})),
                        Says(L"ExtendedInfo should always have a 'Default' entry.")));
    EXPECT_TRUE(Succeeds(TableText().Entry(L"Body", {{L"Description", L"Was das Wasser hält"}}).Read()));
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(), Says(L"ExtendedInfo should always have a 'Default' entry.")));
    EXPECT_FALSE(Store().CameWith(Table::First, 0, Field::Label));
    EXPECT_TRUE(Store().CameWith(Table::Second, 0, Field::Label));
    EXPECT_TRUE(Store().CameWith(Table::Second, 0, Field::Description));
}

// The default entry.

TEST_F(PrepareTest, TableWithoutDefaultFails) {
    EXPECT_TRUE(
        FailsAs(dam::Compile(TableText().Entry(L"Body")), Says(L"ExtendedInfo should always have a 'Default' entry.")));
}

TEST_F(PrepareTest, EmptyStoreHasNoDefaultEither) {
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(), Says(L"ExtendedInfo should always have a 'Default' entry.")));
}

TEST_F(PrepareTest, DefaultIsWrittenInThatCase) {
    EXPECT_TRUE(FailsAs(dam::Compile(TableText().Entry(L"default")),
                        Says(L"ExtendedInfo should always have a 'Default' entry.")));
}

TEST_F(PrepareTest, LookupWithoutDefaultGivesTheUnsetDefaultEntry) {
    EXPECT_TRUE(
        FailsAs(dam::Compile(TableText().Entry(L"Body")), Says(L"ExtendedInfo should always have a 'Default' entry.")));
    ExtendedInfoEntry const& entry = Store().LookupWhole(row::Drain, Field::Whole);
    EXPECT_EQ(&entry, &Store().DefaultEntry());
    EXPECT_TRUE(entry.fields.none());
    EXPECT_EQ(entry.mask, 0u);
}

TEST_F(PrepareTest, DefaultEntryHasAllFields) {
    ASSERT_TRUE(Succeeds(dam::Compile(TableText().Entry(
        L"Default", {{L"Label", L"?"}, {L"ViewExcl", L"report"}, {L"Physics", L"water"}, {L"Mode", L"define"}}))));
    EXPECT_TRUE(Store().DefaultEntry().fields.all());
    EXPECT_EQ(Store().DefaultEntry().Label, L"?");
    EXPECT_EQ(Store().DefaultEntry().mask, 0x20403u);
    // The row of the table stays as it was written.
    EXPECT_EQ(Of(L"Default").fields.count(), 5u);
}

TEST_F(PrepareTest, DefaultEntryKeepsItsList) {
    // Each row would have this list; the first one with items that name nothing stops the compilation, not the checks.
    (void)dam::Compile(TableText().Entry(L"Default", {}, {From(L"Nowhere")}));
    ASSERT_EQ(Store().DefaultEntry().viewTravList.size(), 1u);
    EXPECT_EQ(Store().DefaultEntry().viewTravList[0].SourceTag, L"Nowhere");
}

// Wildcards and lists.

TEST_F(PrepareTest, StarAloneIsRefused) {
    EXPECT_TRUE(FailsAs(dam::Compile(TableText::WithDefault().Entry(L"*")),
                        Says(L"* '*' is not allowed; it matches everything and destroys all other lookup logic")));
    EXPECT_FALSE(Store().IsCompiled());
}

TEST_F(PrepareTest, StarWithATextIsAllowed) {
    ASSERT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"*.Name", {{L"Label", L"Name"}}))));
    EXPECT_EQ(Store().LookupWhole(row::Name, Field::Label).Label, L"Name");
}

TEST_F(PrepareTest, TwoStarsInATagAreRefused) {
    for (std::wstring const tag : {L"**", L"*.Points.*", L"Points.*.*"}) {
        dam::ViewModel other;
        EXPECT_TRUE(FailsAs(dam::Compile(TableText::WithDefault().Entry(tag)),
                            Says(tag + L" Multiple wildcards in the same match string are not supported")));
    }
}

struct BadItem {
    Item item;
    std::wstring message;
};

class ItemTest : public testing::TestWithParam<BadItem> {};

TEST_P(ItemTest, IsRefused) {
    dam::ViewModel dam;
    EXPECT_TRUE(FailsAs(dam::Compile(TableText::WithDefault().Entry(L"Body", {}, {GetParam().item})),
                        Says(GetParam().message)));
}

BadItem const badItems[] = {
    {From(L"Dra*"), L"Body: Traversal source tags can only end in '.*': Dra*"},
    {From(L"*"), L"Body: Traversal source tags can only end in '.*': *"},
    {From(L"*.Flow"), L"Body: Traversal source tags can only end in '.*': *.Flow"},
    {From(L"Drain.*.*"), L"Body: Traversal source tags do not support multiple wildcards : Drain.*.*"},
    {From(L"**"), L"Body: Traversal source tags do not support multiple wildcards : **"},
    {As(L"Drain.*", L"*Part"), L"Body: Traversal destination tags can only end in '*': *Part"},
    {As(L"Drain.*", L"Pa*rt"), L"Body: Traversal destination tags can only end in '*': Pa*rt"},
    {As(L"Drain.*", L"**"), L"Body: Traversal destination tags do not support multiple wildcards : **"},
    {As(L"Drain", L"Parts.Drain"),
     L"Body: Traversal destination tags may not express their own sub hierarchy: Parts.Drain"},
    // The last one that is found is told.
    {As(L"Dra*", L"*Part"), L"Body: Traversal destination tags can only end in '*': *Part"},
    {As(L"Drain.*", L"*.Part"), L"Body: Traversal destination tags may not express their own sub hierarchy: *.Part"},
};
INSTANTIATE_TEST_SUITE_P(PrepareTest, ItemTest, testing::ValuesIn(badItems));

TEST_F(PrepareTest, SourceMayEndInADotAndAStar) {
    EXPECT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}))));
}

TEST_F(PrepareTest, SourceOfADotAndAStarIsTheShortest) {
    EXPECT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L".*")}))));
}

TEST_F(PrepareTest, DestinationMayEndInAStar) {
    EXPECT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"Body", {}, {As(L"Drain.*", L"Drain*")}))));
}

TEST_F(PrepareTest, PercentSignsOfATagArePlainText) {
    EXPECT_TRUE(FailsAs(dam::Compile(TableText::WithDefault().Entry(L"%s*%1*")),
                        Says(L"%s*%1* Multiple wildcards in the same match string are not supported")));
}

TEST_F(PrepareTest, ChecksGoOnAndTheLastFailureIsTold) {
    // Joining, default, wildcards, then entry by entry.
    EXPECT_TRUE(FailsAs(Join(TableText().Entry(L"*").Entry(L"Body"), TableText().Entry(L"Spillway")),
                        Says(L"* '*' is not allowed; it matches everything and destroys all other lookup logic")));
    dam::ViewModel other;
    EXPECT_TRUE(FailsAs(Join(TableText().Entry(L"Body"), TableText().Entry(L"Spillway")),
                        Says(L"ExtendedInfo should always have a 'Default' entry.")));
    dam::ViewModel third;
    EXPECT_TRUE(FailsAs(dam::Compile(TableText().Entry(L"*").Entry(L"A**").Entry(L"Body", {}, {From(L"D*")})),
                        Says(L"Body: Traversal source tags can only end in '.*': D*")));
}

TEST_F(PrepareTest, FailureStopsCompilationBeforeTheViewChanges) {
    std::vector<std::size_t> const before = dam::ViewChildren(row::Root);
    EXPECT_TRUE(FailsAs(dam::Compile(TableText().Entry(L"Body", {}, {From(L"Drain")})),
                        Says(L"ExtendedInfo should always have a 'Default' entry.")));
    EXPECT_EQ(dam::ViewChildren(row::Root), before);
    EXPECT_EQ(Store().Lookup(row::Body, Field::ViewHierarchy), ExtendedInfoStore::End);
}

TEST_F(PrepareTest, DefaultHasToComeWithTheFirstTable) {
    EXPECT_TRUE(FailsAs(Join(TableText().Entry(L"Body"), TableText::WithDefault()),
                        Says(L"ExtendedInfo should always have a 'Default' entry.")));
}

TEST_F(PrepareTest, WildcardsOfARefusedTableAreListedOnce) {
    ASSERT_TRUE(Succeeds(TableText::WithDefault().Entry(L"*.Name", {{L"Label", L"Name"}}).Read()));
    ASSERT_TRUE(Succeeds(TableText().Entry(L"Spillway").Read()));
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(),
                        Says(L"Unexpected entry {Spillway} found in the second ExtendedInfo table.")));
    ASSERT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_EQ(Store().LookupWhole(row::Name, Field::Label).Label, L"Name");
}

TEST_F(PrepareTest, CompiledTableIsNotCompiledAgain) {
    ASSERT_TRUE(Succeeds(dam::Compile(Body())));
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(), Says(L"The extended information is already compiled.")));
    EXPECT_EQ(Store().LookupWhole(row::Body, Field::Label).Label, L"Body");
}

TEST_F(PrepareTest, TableThatFailedBehindItsChecksIsCompiled) {
    EXPECT_TRUE(dam::Compile(TableText::WithDefault().Entry(L"Spillway")).IsError());
    EXPECT_TRUE(Store().IsCompiled());
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(), Says(L"The extended information is already compiled.")));
}

TEST_F(PrepareTest, HundredThousandBadTagsAreCheckedOneByOne) {
    std::vector<ExtendedInfoEntry> table(100'000);
    for (std::size_t i = 0; i < table.size(); ++i) table[i].Tag = L"A*" + std::to_wstring(100'000 + i) + L"*";
    ASSERT_TRUE(Succeeds(Store().Add(std::move(table))));
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(),
                        Says(L"A*199999* Multiple wildcards in the same match string are not supported")));
}

} // namespace
