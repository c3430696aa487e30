// What a table lacks for the fields of a dam, and what it says in vain.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/TableCheck.h"
#include "Common/kit/kit.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/ViewModel.h"

#include "support/text.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using zo::CheckTable;
using zo::TableReport;
using Field = zo::ExtendedInfoField;
using Tags = std::vector<std::wstring>;

/// One text that stands in one table: tag, field, text.
using Gap = std::tuple<std::wstring, unsigned, std::wstring>;

std::vector<Gap> Gaps(std::vector<TableReport::OneLanguage> const& texts) {
    std::vector<Gap> gaps;
    for (auto const& text : texts) gaps.emplace_back(text.tag, text.field, text.text);
    return gaps;
}

/// A table with a labelled row for every field of the dam, and a list of what shows below one of them.
TableText FullTable(std::wstring const& parent = {}, std::vector<Item> const& list = {}) {
    TableText table = TableText::WithDefault();
    for (wchar_t const* const tag :
         {L"Body", L"Body.Crest", L"Body.Height", L"Drain", L"Drain.Pitch", L"Drain.Flow", L"Gallery",
          L"Gallery.Length", L"Gallery.Width", L"Points", L"Points.[]", L"Points.[].X", L"Points.[].Name"}) {
        std::vector<fixture::Cell> const label{{L"Label", std::wstring(L"Label of ") + tag}};
        if (tag == parent)
            table.Entry(tag, label, list);
        else
            table.Entry(tag, label);
    }
    return table;
}

/// A pattern for each record of the dam, with a label, and its four top-level fields.
TableText PatternTable() {
    return TableText::WithDefault()
        .Entry(L"Body", {{L"Label", L"Body"}})
        .Entry(L"Body.*", {{L"Label", L"Part of the body"}})
        .Entry(L"Drain", {{L"Label", L"Drain"}})
        .Entry(L"Drain.*", {{L"Label", L"Part of the drain"}})
        .Entry(L"Gallery", {{L"Label", L"Gallery"}})
        .Entry(L"Gallery.*", {{L"Label", L"Part of the gallery"}})
        .Entry(L"Points", {{L"Label", L"Points"}})
        .Entry(L"Points.*", {{L"Label", L"Part of the points"}});
}

class CheckTest : public dam::ViewModelTest {
protected:
    static void Read(TableText const& table) { ASSERT_TRUE(Succeeds(table.Read())); }
    static void Compile(TableText const& table) { ASSERT_TRUE(Succeeds(dam::Compile(table))); }
};

// Fields and entries.

TEST_F(CheckTest, EmptyTableLacksEveryFieldInTheOrderOfRegistration) {
    TableReport const report = CheckTable();
    EXPECT_EQ(report.withoutEntry,
              (Tags{L"Body", L"Body.Crest", L"Body.Height", L"Drain", L"Drain.Pitch", L"Drain.Flow", L"Gallery",
                    L"Gallery.Length", L"Gallery.Width", L"Points", L"Points.[]", L"Points.[].X", L"Points.[].Name"}));
    EXPECT_EQ(report.fieldCount, 13u);
    EXPECT_EQ(report.entryCount, 0u);
    EXPECT_FALSE(report.IsClean());
}

TEST_F(CheckTest, TableWithALabelForEveryFieldIsClean) {
    Read(FullTable());
    TableReport const report = CheckTable();
    EXPECT_TRUE(report.IsClean());
    EXPECT_EQ(report.fieldCount, 13u);
    EXPECT_EQ(report.entryCount, 14u);
    EXPECT_FALSE(report.hasSecondTable);
    EXPECT_EQ(report.Text(), L"13 fields, 14 entries.\n");
    EXPECT_EQ(report.SkeletonRows(), "");
}

TEST_F(CheckTest, DefaultSpeaksForNoField) {
    Read(TableText().Entry(L"Default", {{L"Label", L"Anything"}}));
    EXPECT_EQ(CheckTable().withoutEntry.size(), 13u);
}

TEST_F(CheckTest, PatternSpeaksForTheFieldsThatItMatches) {
    Read(PatternTable());
    EXPECT_TRUE(CheckTable().IsClean());
}

TEST_F(CheckTest, TypeAndPathSpeakForAField) {
    Read(TableText::WithDefault().Entry(L"dam::DamBody.Crest", {{L"Label", L"Crest"}}));
    TableReport const report = CheckTable();
    EXPECT_EQ(report.withoutEntry.size(), 12u);
    EXPECT_EQ(std::ranges::count(report.withoutEntry, L"Body.Crest"), 0);
    EXPECT_EQ(report.unused, Tags{});
}

TEST_F(CheckTest, TypeAndPathOfTwoLevelsSpeakForAField) {
    // The element's type is the nearer one, the array's the outer one.
    std::wstring const arrayType =
        str::as_wstring(zo::ZORegistry::Instance()->Tables()->dataTraits[dam::row::Points].TypeName());
    Read(TableText::WithDefault()
             .Entry(arrayType + L".[].X", {{L"Label", L"X of a point"}})
             .Entry(L"dam::DamPoint.X", {{L"Label", L"X"}}));
    TableReport const report = CheckTable();
    EXPECT_EQ(std::ranges::count(report.withoutEntry, L"Points.[].X"), 0);
    // The outermost one speaks first, so nothing is left for the other.
    EXPECT_EQ(report.unused, Tags{L"dam::DamPoint.X"});
}

TEST_F(CheckTest, TypeSpeaksForItsRecords) {
    Read(TableText::WithDefault().Entry(L"dam::DamBody", {{L"Label", L"Body"}}));
    TableReport const report = CheckTable();
    EXPECT_EQ(report.withoutEntry.front(), L"Body.Crest");
    EXPECT_EQ(report.unused, Tags{});
}

TEST_F(CheckTest, TypeOfValuesSpeaksForThemAndIsUsedByNone) {
    // Values are never bound by their type: the entry only completes others, and compilation says so.
    Read(FullTable().Entry(L"double", {{L"Description", L"A number."}}));
    EXPECT_EQ(CheckTable().unused, Tags{L"double"});
}

TEST_F(CheckTest, ValuesWithATypeEntryAloneAreNotWithoutEntry) {
    Read(TableText::WithDefault().Entry(L"double", {{L"Label", L"Number"}, {L"IsDynamic", L"1"}}));
    EXPECT_EQ(CheckTable().withoutEntry,
              (Tags{L"Body", L"Drain", L"Gallery", L"Points", L"Points.[]", L"Points.[].Name"}));
}

TEST_F(CheckTest, EntryThatNoFieldUsesIsListed) {
    Read(FullTable().Entry(L"Body.Freeboard", {{L"Label", L"Freeboard"}}).Entry(L"Spillway.*"));
    EXPECT_EQ(CheckTable().unused, (Tags{L"Body.Freeboard", L"Spillway.*"}));
}

TEST_F(CheckTest, DynamicEntryMayBeWithoutAField) {
    Read(FullTable().Entry(L"Body.Freeboard", {{L"IsDynamic", L"1"}}));
    EXPECT_EQ(CheckTable().unused, Tags{});
}

TEST_F(CheckTest, PatternThatOnlyCompletesOthersIsUnused) {
    Read(FullTable().Entry(L"Body.*", {{L"Description", L"Part of the body"}}));
    EXPECT_EQ(CheckTable().unused, Tags{L"Body.*"});
}

TEST_F(CheckTest, UnusedEntriesAreThoseThatCompilationRefuses) {
    Read(FullTable().Entry(L"Body.*").Entry(L"Spillway").Entry(L"double"));
    Tags const unused = CheckTable().unused;
    std::vector<htl::status> parts;
    for (std::wstring const& tag : unused) parts.push_back(htl::status::FromText(tag));
    EXPECT_EQ(unused, (Tags{L"Body.*", L"Spillway", L"double"}));
    EXPECT_TRUE(
        FailsAs(zo::CompileExtendedInfo(),
                HznError::compound(htl::status::FromText(L"One or more extended info entries not used"), parts)));
}

TEST_F(CheckTest, RootMayHaveAnEntryAndIsNoField) {
    Read(FullTable().Entry(L"HZNData", {}, {From(L"Drain")}));
    TableReport const report = CheckTable();
    EXPECT_TRUE(report.IsClean());
    EXPECT_EQ(report.fieldCount, 13u);
}

TEST_F(CheckTest, EntryOfAnAliasThatATraversalListAddsIsUsed) {
    TableText const table = FullTable()
                                .Entry(L"HZNData", {}, {Also(L"Body.Crest"), As(L"Drain.Flow", L"Seepage")})
                                .Entry(L"Crest", {{L"Label", L"Crest of the dam"}})
                                .Entry(L"Seep*", {{L"Label", L"Seepage"}})
                                .Entry(L"Flow", {{L"Label", L"Flow"}});
    Read(table);
    EXPECT_EQ(CheckTable().unused, Tags{L"Flow"});
}

TEST_F(CheckTest, EntryOfTheAliasOfASplicedNodeIsUsed) {
    Read(FullTable()
             .Entry(L"HZNData", {}, {As(L"Drain.*", L"Outlet*")})
             .Entry(L"Outlet_", {{L"Label", L"Outlet"}})
             .Entry(L"Outlet", {{L"Label", L"Outlet"}}));
    EXPECT_EQ(CheckTable().unused, Tags{L"Outlet"});
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(),
                        HznError::compound(htl::status::FromText(L"One or more extended info entries not used"),
                                           {htl::status::FromText(L"Outlet")})));
}

TEST_F(CheckTest, EntryOfATagThatNoAliasHasBecauseItsNodeMovesIsUnused) {
    Read(FullTable().Entry(L"HZNData", {}, {From(L"Body.Crest")}).Entry(L"Crest", {{L"Label", L"Crest of the dam"}}));
    EXPECT_EQ(CheckTable().unused, Tags{L"Crest"});
}

TEST_F(CheckTest, EntryOfTheAliasThatASecondListGetsForAMovedNodeIsUsed) {
    Read(FullTable(L"Body", {From(L"Drain")})
             .Entry(L"HZNData", {}, {From(L"Drain")})
             .Entry(L"Body.Drain", {{L"Label", L"Drain of the body"}})
             .Entry(L"Gallery.Drain", {{L"Label", L"Drain of the gallery"}}));
    EXPECT_EQ(CheckTable().unused, Tags{L"Gallery.Drain"});
}

TEST_F(CheckTest, AliasOfATraversalListIsNoField) {
    Compile(FullTable().Entry(L"HZNData", {}, {Also(L"Body.Crest")}));
    ASSERT_EQ(dam.registry->Tables()->RowCount(), dam::row::count + 1);
    TableReport const report = CheckTable();
    EXPECT_TRUE(report.IsClean());
    EXPECT_EQ(report.fieldCount, 13u);
}

// Labels.

TEST_F(CheckTest, FieldWhoseEntryHasNoLabelIsListed) {
    Read(PatternTable().Entry(L"Body.Crest", {{L"Label", L" "}}).Entry(L"Drain.Flow", {{L"Category", L"Water"}}));
    // The pattern has a label for the flow; a blank one is a label of its own, if a poor one.
    EXPECT_EQ(CheckTable().withoutLabel, Tags{L"Body.Crest"});
}

TEST_F(CheckTest, LabelOfTheDefaultCounts) {
    Read(TableText().Entry(L"Default", {{L"Label", L"Anything"}}).Entry(L"*.Crest").Entry(L"*.Height"));
    EXPECT_EQ(CheckTable().withoutLabel, Tags{});
}

TEST_F(CheckTest, ComposedLabelCounts) {
    Read(TableText::WithDefault().Entry(L"Body", {{L"LabelTag", L"Crest"}}).Entry(L"Drain"));
    EXPECT_EQ(CheckTable().withoutLabel, Tags{L"Drain"});
}

TEST_F(CheckTest, FieldThatShowsInNoViewNeedsNoLabel) {
    Read(TableText::WithDefault()
             .Entry(L"Body", {{L"ViewExcl", L"all"}})
             .Entry(L"Drain", {{L"ViewExcl", L"data,property"}})
             .Entry(L"*.Length")
             .Entry(L"Gallery.*", {{L"ViewExcl", L"all"}}));
    // The longer of two patterns speaks for the length.
    EXPECT_EQ(CheckTable().withoutLabel, Tags{L"Drain"});
}

TEST_F(CheckTest, ViewsOfALessSpecificEntryHideAField) {
    Read(TableText::WithDefault().Entry(L"Gallery.Length").Entry(L"Gallery.*", {{L"ViewExcl", L"all"}}));
    EXPECT_EQ(CheckTable().withoutLabel, Tags{});
}

TEST_F(CheckTest, FieldWithoutEntryIsNotListedTwice) { EXPECT_EQ(CheckTable().withoutLabel, Tags{}); }

// Before and after compilation.

TEST_F(CheckTest, ReportIsTheSameAfterCompilation) {
    TableText const table = PatternTable()
                                .Entry(L"Body.Crest", {{L"Description", L"Top of the dam"}})
                                .Entry(L"Drain.Flow", {{L"Label", L" "}})
                                .Entry(L"HZNData", {}, {Also(L"Body.Crest"), From(L"Drain")})
                                .Entry(L"Crest");
    Read(table);
    TableReport const before = CheckTable();
    ASSERT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    TableReport const after = CheckTable();
    EXPECT_EQ(before.Text(), L"13 fields, 13 entries.\nFields without a label (1):\n  Drain.Flow\n");
    EXPECT_EQ(after.Text(), before.Text());
    EXPECT_EQ(after.rowsToAdd, before.rowsToAdd);
}

TEST_F(CheckTest, LabelThatAnEntryTookOverIsNotItsOwn) {
    // The crest has the label of the pattern from the first question on. Whether it had it before makes no difference.
    Compile(PatternTable()
                .Entry(L"Body.Crest", {{L"Description", L"Top of the dam"}})
                .Entry(L"Gallery.Width", {{L"Label", L" "}}));
    zo::extinfo::Store().Lookup(dam::row::Crest, Field::Label);
    EXPECT_EQ(CheckTable().withoutLabel, Tags{L"Gallery.Width"});
}

TEST_F(CheckTest, CheckCompletesNoEntry) {
    Compile(PatternTable().Entry(L"Body.Crest", {{L"Description", L"Top of the dam"}}));
    auto const& store = zo::extinfo::Store();
    std::size_t const crest = store.Find(L"Body.Crest");
    auto const before = store.Entry(crest).fields;
    CheckTable();
    EXPECT_EQ(store.Entry(crest).fields, before);
    EXPECT_FALSE(store.Entry(crest).Has(Field::Label));
}

TEST_F(CheckTest, TableThatIsNotTheRegistrysIsChecked) {
    zo::ExtendedInfoStore draft;
    ASSERT_TRUE(Succeeds(FullTable().ReadInto(draft)));
    EXPECT_TRUE(CheckTable(draft).IsClean());
    EXPECT_EQ(CheckTable().withoutEntry.size(), 13u);
}

TEST_F(CheckTest, RowsThatCompilationRefusesDoNotStopTheCheck) {
    Read(TableText().Entry(L"*").Entry(L"*a*").Entry(L"**"));
    TableReport const report = CheckTable();
    EXPECT_EQ(report.withoutEntry.size(), 13u);
    EXPECT_EQ(report.unused, (Tags{L"*", L"**", L"*a*"}));
}

TEST_F(CheckTest, OfEqualTagsTheFirstIsUsed) {
    EXPECT_TRUE(FullTable().Entry(L"Body", {{L"Label", L"Again"}}).Read().IsError());
    EXPECT_EQ(CheckTable().unused, Tags{L"Body"});
}

// Rows to add.

TEST_F(CheckTest, SkeletonHasARowForEachFieldThatNeedsOne) {
    Read(PatternTable().Entry(L"Gallery.Width", {{L"Label", L" "}}));
    EXPECT_EQ(CheckTable().SkeletonRows(), "");
    dam::ViewModel const other;
    Read(TableText::WithDefault()
             .Entry(L"Body", {{L"Label", L"Body"}})
             .Entry(L"Body.*")
             .Entry(L"Drain")
             .Entry(L"Drain.*", {{L"Label", L"Part"}})
             .Entry(L"Gallery", {{L"Label", L"Gallery"}})
             .Entry(L"Gallery.*", {{L"Label", L"Part"}})
             .Entry(L"Points.*", {{L"Label", L"Part"}}));
    TableReport const report = CheckTable();
    EXPECT_EQ(report.withoutEntry, Tags{L"Points"});
    EXPECT_EQ(report.withoutLabel, (Tags{L"Body.Crest", L"Body.Height", L"Drain"}));
    EXPECT_EQ(report.rowsToAdd, (Tags{L"Body.Crest", L"Body.Height", L"Points"}));
    EXPECT_EQ(report.SkeletonRows(), "  <Entry Tag=\"Body.Crest\" Label=\"\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"Body.Height\" Label=\"\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"Points\" Label=\"\" Description=\"\"/>\n");
}

TEST_F(CheckTest, SkeletonCompletesTheDocumentThatItIsPastedInto) {
    Read(TableText::WithDefault());
    std::string const document =
        "<Meta_ExtendedInfo><Entry Tag='Default'/>\n" + CheckTable().SkeletonRows() + "</Meta_ExtendedInfo>";
    zo::ExtendedInfoStore completed;
    ASSERT_TRUE(Succeeds(completed.ReadBytes(document.data(), document.data() + document.size())));
    EXPECT_EQ(completed.EntryCount(), 14u);
    EXPECT_EQ(CheckTable(completed).withoutEntry, Tags{});
}

TEST(CheckSkeletonTest, TagIsEscapedAndStaysOnItsLine) {
    TableReport report;
    report.rowsToAdd = {L"A&\"<B>\"", L"line\nend", L"Böden"};
    EXPECT_EQ(report.SkeletonRows(), "  <Entry Tag=\"A&amp;&quot;&lt;B&gt;&quot;\" Label=\"\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"line&#10;end\" Label=\"\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"B\xC3\xB6"
                                     "den\" Label=\"\" Description=\"\"/>\n");
}

// Two languages.

TEST_F(CheckTest, TextsOfOneTableAloneAreListed) {
    Read(TableText::WithDefault()
             .Entry(L"Body", {{L"Label", L"Body"}, {L"Description", L"What stands."}})
             .Entry(L"Drain", {{L"Label", L"Drain"}})
             .Entry(L"Gallery", {{L"Description", L"A passage."}})
             .Entry(L"Points", {{L"Label", L"Points"}}));
    Read(TableText()
             .Entry(L"Body", {{L"Label", L"Damm"}})
             .Entry(L"Gallery", {{L"Label", L"Stollen"}, {L"Description", L"Ein Gang."}})
             .Entry(L"Drain", {{L"Label", L"Drainage"}, {L"Description", L"Sammelt Wasser."}}));
    TableReport const report = CheckTable();
    EXPECT_TRUE(report.hasSecondTable);
    EXPECT_EQ(report.entryCount, 5u);
    EXPECT_EQ(Gaps(report.untranslated),
              (std::vector<Gap>{{L"Body", Field::Description, L"What stands."}, {L"Points", Field::Label, L"Points"}}));
    EXPECT_EQ(Gaps(report.onlyTranslated), (std::vector<Gap>{{L"Drain", Field::Description, L"Sammelt Wasser."},
                                                             {L"Gallery", Field::Label, L"Stollen"}}));
    EXPECT_EQ(report.unknownTranslations, Tags{});
    EXPECT_FALSE(report.IsClean());
}

TEST_F(CheckTest, TextsOfOneTableAloneAreListedAfterCompilation) {
    Read(PatternTable()
             .Entry(L"Body.Crest", {{L"Label", L"Crest"}, {L"Description", L"Top of the dam."}})
             .Entry(L"Gallery.Width"));
    TableText second;
    for (wchar_t const* const tag : {L"Body", L"Body.*", L"Drain", L"Drain.*", L"Gallery", L"Gallery.*", L"Points"})
        second.Entry(tag, {{L"Label", L"x"}});
    Read(second.Entry(L"Body.Crest", {{L"Label", L"Krone"}}).Entry(L"Gallery.Width", {{L"Label", L"Breite"}}));
    TableReport const before = CheckTable();
    ASSERT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    TableReport const after = CheckTable();
    std::vector<Gap> const untranslated{{L"Body.Crest", Field::Description, L"Top of the dam."},
                                        {L"Points.*", Field::Label, L"Part of the points"}};
    std::vector<Gap> const onlyTranslated{{L"Gallery.Width", Field::Label, L"Breite"}};
    EXPECT_EQ(Gaps(before.untranslated), untranslated);
    EXPECT_EQ(Gaps(after.untranslated), untranslated);
    EXPECT_EQ(Gaps(before.onlyTranslated), onlyTranslated);
    EXPECT_EQ(Gaps(after.onlyTranslated), onlyTranslated);
    EXPECT_TRUE(after.hasSecondTable);
}

TEST_F(CheckTest, TranslationOfAnUnknownEntryIsListed) {
    Read(FullTable());
    Read(TableText().Entry(L"Spillway", {{L"Label", L"Überlauf"}}));
    EXPECT_EQ(CheckTable().unknownTranslations, Tags{L"Spillway"});
    EXPECT_EQ(Gaps(CheckTable().onlyTranslated), std::vector<Gap>{});
}

TEST_F(CheckTest, OtherColumnsOfATranslationAreNoTexts) {
    Read(FullTable());
    Read(TableText().Entry(L"Default", {{L"Category", L"Allgemeines"}, {L"LabelTag", L"Name"}}));
    EXPECT_EQ(Gaps(CheckTable().onlyTranslated), std::vector<Gap>{});
}

TEST_F(CheckTest, OneTableHasNoLanguageToCompare) {
    Read(FullTable());
    EXPECT_EQ(Gaps(CheckTable().untranslated), std::vector<Gap>{});
}

TEST(CheckTextTest, ReportListsEachFindingUnderItsHeading) {
    TableReport report;
    report.fieldCount = 3;
    report.entryCount = 4;
    report.hasSecondTable = true;
    report.withoutEntry = {L"Body", L"Drain"};
    report.withoutLabel = {L"Body.Crest"};
    report.unused = {L"Spillway.*"};
    report.untranslated = {{L"Points", Field::Label, L"100 %s points"}};
    report.onlyTranslated = {{L"Drain", Field::Description, L"Sammelt Wasser."}};
    report.unknownTranslations = {L"Spillway"};
    EXPECT_EQ(report.Text(), L"3 fields, 4 entries, two languages.\n"
                             L"Fields without an entry (2):\n  Body\n  Drain\n"
                             L"Fields without a label (1):\n  Body.Crest\n"
                             L"Entries that no field uses (1):\n  Spillway.*\n"
                             L"Texts that are not translated (1):\n  Points, label: \"100 %s points\"\n"
                             L"Texts that stand in the translation alone (1):\n"
                             L"  Drain, description: \"Sammelt Wasser.\"\n"
                             L"Entries of the translation that the table does not have (1):\n  Spillway\n");
}

TEST(CheckTextTest, EachListMakesAReportUnclean) {
    EXPECT_TRUE(TableReport().IsClean());
    for (auto const list : {&TableReport::withoutEntry, &TableReport::withoutLabel, &TableReport::unused,
                            &TableReport::unknownTranslations}) {
        TableReport report;
        (report.*list).push_back(L"Body");
        EXPECT_FALSE(report.IsClean());
    }
    for (auto const list : {&TableReport::untranslated, &TableReport::onlyTranslated}) {
        TableReport report;
        (report.*list).push_back({L"Body", Field::Label, L"Body"});
        EXPECT_FALSE(report.IsClean());
    }
}

} // namespace
