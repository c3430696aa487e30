// Which rows of a table speak for the fields of a dam, and which tests show or hide its nodes.
#include "Common/extinfo/Explain.h"

#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/Visible.h"
#include "Common/kit/kit.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/ViewModel.h"

#include <random>
#include <string>
#include <vector>

namespace dam {
namespace {

using namespace fixture;
using embankment::Succeeds;
using zo::EntryTest;
using zo::ExplainFields;
using zo::ExplainVisibility;
using zo::FieldSource;
using zo::H;
using zo::VisibilityExplained;
using Field = zo::ExtendedInfoField;

// Queries: data, property, report, all views ignored; water, slope; define, contour.
constexpr int data = 0x1, property = 0x2, anyView = 0x8;
constexpr int water = 0x400, slope = 0x1000, allPhysics = 0x1FF00;
constexpr int define = 0x20000, contour = 0x40000, allModes = 0x60000;
constexpr int everything = 0x7FF07;

struct Spillway {
    double level = 22; // metres
    double gate = 1;
};

/// The dam with a spillway, whose gate shows while its level is high, and another name for the crest.
class ExplainTest : public testing::Test {
protected:
    static void Compile(TableText const& table) { ASSERT_TRUE(Succeeds(dam::Compile(table))); }

    Spillway spillway;
    bool isGateShown = true;
    int timesAsked = 0;
    ViewModel dam{[this](zo::kit::Kit& kit) {
        auto const rule = [this](zo::IZO const&) {
            ++timesAsked;
            return isGateShown;
        };
        kit.Record<Spillway>("Spillway")
            .Field<&Spillway::level>("Level", L"Level")
            .Field<&Spillway::gate>("Gate", L"Gate", {.visible = rule});
        kit.Branch<Spillway>("Spillway", L"Spillway", [this] { return &spillway; });
        kit.Alias("Top", L"Top", "Body.Crest");
        kit.Alias("Shutter", L"Shutter", "Spillway.Gate");
        kit.Alias("Nowhere", L"Nowhere", "Body.Freeboard");
    }};
};

FieldSource const& Of(zo::FieldsExplained const& explained, unsigned field) { return explained.fields[field]; }

// Fields.

TEST_F(ExplainTest, FieldIsStatedByTheNodesOwnRow) {
    Compile(TableText::WithDefault().Entry(L"Body.Crest", {{L"Label", L"Crest"}}));
    FieldSource const label = Of(ExplainFields(zo::Find("Body.Crest")), Field::Label);
    EXPECT_EQ(label.field, Field::Label);
    EXPECT_EQ(label.value, L"Crest");
    EXPECT_EQ(label.entry, L"Body.Crest");
    EXPECT_EQ(label.statedBy, L"Body.Crest");
}

TEST_F(ExplainTest, FieldThatIsTakenOverIsStatedByTheOtherRow) {
    Compile(TableText::WithDefault()
                .Entry(L"Body.Crest", {{L"Label", L"Crest"}})
                .Entry(L"Body.*", {{L"Description", L"Part of the body."}, {L"Label", L"Part"}}));
    FieldSource const description = Of(ExplainFields(zo::Find("Body.Crest")), Field::Description);
    EXPECT_EQ(description.value, L"Part of the body.");
    EXPECT_EQ(description.entry, L"Body.Crest");
    EXPECT_EQ(description.statedBy, L"Body.*");
    EXPECT_EQ(Of(ExplainFields(zo::Find("Body.Crest")), Field::Label).statedBy, L"Body.Crest");
}

TEST_F(ExplainTest, FieldOfTheDefaultIsStatedByIt) {
    Compile(TableText().Entry(L"Default", {{L"Category", L"Anything"}}).Entry(L"Body.Crest", {{L"Label", L"Crest"}}));
    FieldSource const own = Of(ExplainFields(zo::Find("Body.Crest")), Field::Category);
    EXPECT_EQ(own.value, L"Anything");
    EXPECT_EQ(own.entry, L"Body.Crest");
    EXPECT_EQ(own.statedBy, L"Default");
    FieldSource const none = Of(ExplainFields(zo::Find("Body.Height")), Field::Category);
    EXPECT_EQ(none.entry, L"Default");
    EXPECT_EQ(none.statedBy, L"Default");
}

TEST_F(ExplainTest, FieldThatNoRowStatesHasNobodyBehindIt) {
    Compile(TableText::WithDefault().Entry(L"Body.Crest", {{L"Label", L"Crest"}}));
    auto const explained = ExplainFields(zo::Find("Body.Crest"));
    EXPECT_EQ(Of(explained, Field::Style).statedBy, L"");
    EXPECT_EQ(Of(explained, Field::Style).value, L"text");
    EXPECT_EQ(Of(explained, Field::Physics).statedBy, L"");
    EXPECT_EQ(Of(explained, Field::Physics).value, L"all");
    EXPECT_EQ(Of(explained, Field::ViewExcl).value, L"none");
    EXPECT_EQ(Of(explained, Field::Description).value, L"");
}

TEST_F(ExplainTest, EveryFieldIsExplainedByItsNumber) {
    Compile(TableText::WithDefault().Entry(L"Body",
                                           {{L"IsDynamic", L"0"},
                                            {L"Label", L"a"},
                                            {L"LabelTag", L"b"},
                                            {L"Description", L"c"},
                                            {L"PrettyPrintNameTag", L"d"},
                                            {L"PrettyPrintValueTag", L"e"},
                                            {L"ColorTag", L"f"},
                                            {L"CustomView", L"g"},
                                            {L"Category", L"h"},
                                            {L"ViewExcl", L"report,data"},
                                            {L"Physics", L"slope,water"},
                                            {L"Mode", L"contour"},
                                            {L"Style", L"header"}},
                                           {From(L"Drain"), As(L"Gallery.Length", L"Reach")}));
    auto const explained = ExplainFields(zo::Find("Body"));
    std::vector<std::wstring> const values{
        L"0",           L"a",           L"b",       L"c",     L"d",
        L"e",           L"f",           L"g",       L"h",     L"Drain, Gallery.Length as Reach",
        L"data,report", L"water,slope", L"contour", L"header"};
    for (unsigned field = 0; field < Field::count; ++field) {
        EXPECT_EQ(Of(explained, field).field, field);
        EXPECT_EQ(Of(explained, field).value, values[field]);
        EXPECT_EQ(Of(explained, field).statedBy, L"Body");
    }
}

TEST_F(ExplainTest, AnswersOfTheLookupAreExplained) {
    Compile(TableText::WithDefault()
                .Entry(L"*.Crest", {{L"Label", L"Crest"}})
                .Entry(L"dam::DamBody", {{L"Category", L"Body"}})
                .Entry(L"dam::DamBody.Height", {{L"Style", L"header"}}));
    for (char const* const name : {"Body", "Body.Crest", "Body.Height", "Points[1].X", "Top", "Spillway"}) {
        H const node = zo::Find(name);
        ASSERT_TRUE(node) << name;
        auto const explained = ExplainFields(node);
        for (unsigned field = 0; field < Field::count; ++field)
            EXPECT_EQ(Of(explained, field).entry, zo::extinfo::Store().Lookup(node, field).Tag) << name << field;
    }
}

TEST_F(ExplainTest, EmptyHandleHasTheFieldsOfTheDefault) {
    Compile(TableText().Entry(L"Default", {{L"Label", L"Anything"}}));
    auto const explained = ExplainFields({});
    EXPECT_EQ(explained.node, L"");
    EXPECT_EQ(Of(explained, Field::Label).value, L"Anything");
    EXPECT_EQ(Of(explained, Field::Label).entry, L"Default");
}

TEST_F(ExplainTest, WithoutATableNoEntryAnswers) {
    auto const explained = ExplainFields(zo::Find("Body"));
    EXPECT_EQ(explained.node, L"Body");
    for (FieldSource const& source : explained.fields) {
        EXPECT_EQ(source.entry, L"");
        EXPECT_EQ(source.statedBy, L"");
    }
}

TEST_F(ExplainTest, TextListsWhatRowsState) {
    Compile(TableText()
                .Entry(L"Default", {{L"Category", L"Anything"}})
                .Entry(L"Body.Crest", {{L"Label", L"Crest"}, {L"Physics", L"water,slope"}})
                .Entry(L"Body.*", {{L"Description", L"100 %s."}}));
    EXPECT_EQ(ExplainFields(zo::Find("Body.Crest")).Text(),
              L"Body.Crest\n"
              L"  IsDynamic: \"0\", stated by {Body.Crest}\n"
              L"  Label: \"Crest\", stated by {Body.Crest}\n"
              L"  Description: \"100 %s.\", stated by {Body.*}, taken over by {Body.Crest}\n"
              L"  Category: \"Anything\", stated by {Default}, taken over by {Body.Crest}\n"
              L"  Physics: \"water,slope\", stated by {Body.Crest}\n");
}

TEST_F(ExplainTest, CellTextReadsBackAsTheSameMask) {
    for (std::wstring const cell : {L"data", L"property,report", L"all", L"none"}) {
        zo::ExtendedInfoStore store;
        ASSERT_TRUE(Succeeds(TableText().Entry(L"Body", {{L"ViewExcl", cell}}).ReadInto(store)));
        EXPECT_EQ(zo::CellText(store.Entry(0), Field::ViewExcl), cell);
    }
    for (std::wstring const cell : {L"solute", L"gas,project", L"dynamic,water,heat", L"all"}) {
        zo::ExtendedInfoStore store;
        ASSERT_TRUE(Succeeds(TableText().Entry(L"Body", {{L"Physics", cell}}).ReadInto(store)));
        EXPECT_EQ(zo::CellText(store.Entry(0), Field::Physics), cell);
    }
}

TEST_F(ExplainTest, FieldBeyondTheLastHasNoCellText) {
    EXPECT_EQ(zo::CellText({}, 14), L"");
    EXPECT_EQ(zo::CellText({}, Field::Whole), L"");
}

// Visibility.

TEST_F(ExplainTest, EachGroupOfTheMaskIsTestedWithTheRowThatStatesIt) {
    Compile(TableText::WithDefault()
                .Entry(L"Body.Crest", {{L"Physics", L"slope"}})
                .Entry(L"Body.*", {{L"ViewExcl", L"data"}}));
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Body.Crest"), data | water | define);
    EXPECT_EQ(explained.node, L"Body.Crest");
    EntryTest const& test = explained.byRow;
    EXPECT_TRUE(test.isAsked);
    EXPECT_EQ(test.entry, L"Body.Crest");
    EXPECT_EQ(test.views.asked, 0x1u);
    EXPECT_EQ(test.views.shows, 0x6u);
    EXPECT_FALSE(test.views.passes);
    EXPECT_EQ(test.views.statedBy, L"Body.*");
    EXPECT_EQ(test.physics.asked, 0x400u);
    EXPECT_EQ(test.physics.shows, 0x1000u);
    EXPECT_FALSE(test.physics.passes);
    EXPECT_EQ(test.physics.statedBy, L"Body.Crest");
    EXPECT_EQ(test.modes.asked, 0x20000u);
    EXPECT_EQ(test.modes.shows, 0x60000u);
    EXPECT_TRUE(test.modes.passes);
    EXPECT_EQ(test.modes.statedBy, L"");
    EXPECT_FALSE(test.passes);
    EXPECT_FALSE(explained.isVisible);
}

TEST_F(ExplainTest, NothingIsAskedAfterATestThatFails) {
    Compile(TableText::WithDefault().Entry(L"Spillway.Gate", {{L"Mode", L"define"}}));
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Spillway.Gate"), data | water | contour);
    EXPECT_FALSE(explained.byRow.passes);
    EXPECT_FALSE(explained.atRunTime.isAsked);
    EXPECT_FALSE(explained.isRuleAsked);
    EXPECT_EQ(timesAsked, 0);
}

TEST_F(ExplainTest, RuleOfTheTypeHidesANodeThatTheTableShows) {
    Compile(TableText::WithDefault());
    isGateShown = false;
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Spillway.Gate"), everything);
    EXPECT_TRUE(explained.byRow.passes);
    EXPECT_EQ(explained.byRow.entry, L"Default");
    EXPECT_FALSE(explained.atRunTime.isAsked);
    EXPECT_TRUE(explained.isRuleAsked);
    EXPECT_EQ(explained.ruleOf, L"Spillway.Gate");
    EXPECT_FALSE(explained.rulePasses);
    EXPECT_FALSE(explained.isVisible);
    EXPECT_EQ(timesAsked, 1);
}

TEST_F(ExplainTest, NodeThatPassesEveryTestIsVisible) {
    Compile(TableText::WithDefault().Entry(L"Spillway.Gate", {{L"Physics", L"water"}}));
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Spillway.Gate"), data | water | define);
    EXPECT_TRUE(explained.byRow.passes);
    EXPECT_TRUE(explained.rulePasses);
    EXPECT_TRUE(explained.isVisible);
}

TEST_F(ExplainTest, AliasIsTestedByItsRowThenAtRunTimeThenByItsSourcesRule) {
    Compile(TableText::WithDefault()
                .Entry(L"Shutter", {{L"ViewExcl", L"report"}})
                .Entry(L"Spillway.Gate", {{L"ViewExcl", L"all"}}));
    isGateShown = false;
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Shutter"), data | water | define);
    EXPECT_TRUE(explained.byRow.isAsked);
    EXPECT_EQ(explained.byRow.entry, L"Shutter");
    EXPECT_TRUE(explained.atRunTime.isAsked);
    EXPECT_EQ(explained.atRunTime.entry, L"Shutter");
    EXPECT_TRUE(explained.atRunTime.passes);
    EXPECT_EQ(explained.ruleOf, L"Spillway.Gate");
    EXPECT_FALSE(explained.isVisible);
}

TEST_F(ExplainTest, RuleOfAnAliasWithoutSourceSaysNo) {
    Compile(TableText::WithDefault());
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Nowhere"), everything);
    EXPECT_TRUE(explained.isRuleAsked);
    EXPECT_EQ(explained.ruleOf, L"");
    EXPECT_FALSE(explained.rulePasses);
    EXPECT_FALSE(explained.isVisible);
    EXPECT_TRUE(explained.Text().ends_with(L"\n  what it stands for isn't there: no\n"));
}

TEST_F(ExplainTest, NodeWithoutARowIsTestedAtRunTimeOnly) {
    Compile(TableText::WithDefault().Entry(L"Body.Crest", {{L"ViewExcl", L"data"}}));
    H const alias = zo::ZORegistry::Instance()->AssociateAlias("Peak", "Body.Crest");
    ASSERT_TRUE(alias);
    ASSERT_EQ(alias->RegID(), zo::IZO::npos);
    VisibilityExplained const hidden = ExplainVisibility(alias, data | water | define);
    EXPECT_FALSE(hidden.byRow.isAsked);
    EXPECT_TRUE(hidden.atRunTime.isAsked);
    EXPECT_EQ(hidden.atRunTime.entry, L"Body.Crest");
    EXPECT_FALSE(hidden.isVisible);
    EXPECT_TRUE(ExplainVisibility(alias, property | water | define).isVisible);
}

TEST_F(ExplainTest, QueryThatIgnoresViewsPassesTheirGroup) {
    Compile(TableText::WithDefault().Entry(L"Body", {{L"ViewExcl", L"all"}}));
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Body"), anyView | slope | define);
    EXPECT_EQ(explained.byRow.views.asked, 0u);
    EXPECT_EQ(explained.byRow.views.shows, 0u);
    EXPECT_TRUE(explained.byRow.views.passes);
    EXPECT_TRUE(explained.isVisible);
}

TEST_F(ExplainTest, NothingIsVisibleWithoutATable) {
    VisibilityExplained const explained = ExplainVisibility(zo::Find("Body"), everything);
    EXPECT_TRUE(explained.byRow.isAsked);
    EXPECT_EQ(explained.byRow.entry, L"");
    EXPECT_EQ(explained.byRow.views.shows, 0u);
    EXPECT_FALSE(explained.isVisible);
}

TEST_F(ExplainTest, EmptyHandleIsHiddenWithoutATest) {
    Compile(TableText::WithDefault());
    VisibilityExplained const explained = ExplainVisibility({}, everything);
    EXPECT_FALSE(explained.byRow.isAsked || explained.atRunTime.isAsked || explained.isRuleAsked);
    EXPECT_FALSE(explained.isVisible);
}

TEST_F(ExplainTest, TextTellsEachTestThatWasAsked) {
    Compile(TableText::WithDefault().Entry(L"Body.*", {{L"ViewExcl", L"data"}, {L"Physics", L"slope"}}));
    EXPECT_EQ(ExplainVisibility(zo::Find("Body.Crest"), data | slope | allModes).Text(),
              L"Body.Crest: hidden\n"
              L"  entry of the row {Body.*}: no\n"
              L"    views: no, asked data, shows in property,report, stated by {Body.*}\n"
              L"    physics: yes, asked slope, shows in slope, stated by {Body.*}\n"
              L"    modes: yes, asked all, shows in all\n");
    EXPECT_EQ(ExplainVisibility(zo::Find("Top"), property | slope | contour).Text(),
              L"Top: visible\n"
              L"  entry of the row {Default}: yes\n"
              L"    views: yes, asked property, shows in all\n"
              L"    physics: yes, asked slope, shows in all\n"
              L"    modes: yes, asked contour, shows in all\n"
              L"  entry at run time {Body.*}: yes\n"
              L"    views: yes, asked property, shows in property,report, stated by {Body.*}\n"
              L"    physics: yes, asked slope, shows in slope, stated by {Body.*}\n"
              L"    modes: yes, asked contour, shows in all\n"
              L"  rule of the type of {Body.Crest}: yes\n");
}

// The answer is always that of IsVisible.

std::vector<H> ManyNodes() {
    std::vector<H> nodes{H()};
    for (char const* const name :
         {"Body", "Body.Crest", "Body.Height", "Drain", "Drain.Pitch", "Drain.Flow", "Gallery", "Gallery.Length",
          "Gallery.Width", "Points", "Points[0]", "Points[1].X", "Points[2].Name", "Spillway", "Spillway.Level",
          "Spillway.Gate", "Top", "Shutter", "Nowhere"}) {
        nodes.push_back(zo::Find(name));
        EXPECT_TRUE(nodes.back()) << name;
    }
    zo::ZORegistry& registry = *zo::ZORegistry::Instance();
    nodes.push_back(registry.Root());
    nodes.push_back(registry.AssociateAlias("Peak", "Body.Crest"));
    nodes.push_back(registry.AssociateAlias("Barrier", "Spillway.Gate"));
    nodes.push_back(registry.AssociateAlias("Group", {{"Crest", "Body.Crest"}, {"Lost", "Body.Freeboard"}}));
    nodes.push_back(zo::Find("Group.Crest"));
    nodes.push_back(zo::Find("Group.Lost"));
    // Those that a traversal list added.
    for (std::size_t row = 0; row < registry.Tables()->RowCount(); ++row)
        if (registry.Tables()->IsAlias(row)) nodes.push_back(zo::Find(registry.Tables()->names[row]));
    return nodes;
}

/// Every view, some analyses, every mode.
std::vector<int> ManyQueries() {
    std::vector<int> queries;
    for (int view = 0; view < 16; ++view)
        for (int const physics : {0, water, slope, water | slope, 0x10000, allPhysics})
            for (int const mode : {0, define, contour, allModes}) queries.push_back(view | physics | mode);
    return queries;
}

void ExpectAnswersOfIsVisible(std::vector<H> const& nodes, std::vector<int> const& queries) {
    for (H const& node : nodes)
        for (int const query : queries) {
            bool const first = ExplainVisibility(node, query).isVisible;
            EXPECT_EQ(first, zo::IsVisible(node, query)) << (node ? node->Name() : "empty") << ' ' << query;
            EXPECT_EQ(first, ExplainVisibility(node, query).isVisible);
        }
}

TEST_F(ExplainTest, AnswerIsThatOfIsVisible) {
    Compile(TableText()
                .Entry(L"Default", {{L"ViewExcl", L"report"}})
                .Entry(L"HZNData", {}, {Also(L"Body.Crest"), As(L"Drain.Flow", L"Seepage"), From(L"Gallery")})
                .Entry(L"Body", {{L"ViewExcl", L"data"}})
                .Entry(L"Body.*", {{L"Physics", L"water"}, {L"Mode", L"define"}})
                .Entry(L"Points.[].*", {{L"Mode", L"contour"}})
                .Entry(L"Seepage", {{L"IsDynamic", L"1"}, {L"Physics", L"slope"}})
                .Entry(L"Top", {{L"IsDynamic", L"1"}, {L"ViewExcl", L"property"}})
                .Entry(L"dam::DamDrain", {{L"Physics", L"project"}}));
    ExpectAnswersOfIsVisible(ManyNodes(), ManyQueries());
    isGateShown = false;
    ExpectAnswersOfIsVisible(ManyNodes(), ManyQueries());
}

TEST_F(ExplainTest, AnswerIsThatOfIsVisibleWithoutATable) { ExpectAnswersOfIsVisible(ManyNodes(), ManyQueries()); }

TEST(ExplainRandomTest, AnswerIsThatOfIsVisibleForRandomTables) {
    std::mt19937 random(63);
    auto const pick = [&](auto const& list) {
        return list[std::uniform_int_distribution<std::size_t>(0, std::size(list) - 1)(random)];
    };
    wchar_t const* const tags[] = {
        L"Body",      L"Body.Crest", L"Body.*", L"*.Crest",       L"Drain",  L"dam::DamDrain", L"dam::DamDrain.Flow",
        L"Points.[]", L"Points.*",   L"*.Name", L"Gallery.Width", L"double", L"*.Width"};
    wchar_t const* const views[] = {L"", L"", L"data", L"property,report", L"all", L"none"};
    wchar_t const* const physics[] = {L"", L"", L"water", L"slope,project", L"all"};
    wchar_t const* const modes[] = {L"", L"", L"define", L"contour"};
    wchar_t const* const dynamic[] = {L"", L"1"};
    std::vector<int> queries;
    for (int const query : ManyQueries())
        if (query % 3 == 0) queries.push_back(query);
    for (int round = 0; round < 25; ++round) {
        ViewModel const dam([](zo::kit::Kit& kit) { kit.Alias("Top", L"Top", "Body.Crest"); });
        TableText table;
        table.Entry(L"Default", {{L"ViewExcl", pick(views)}});
        for (wchar_t const* const tag : tags)
            if (random() % 2)
                table.Entry(tag, {{L"ViewExcl", pick(views)},
                                  {L"Physics", pick(physics)},
                                  {L"Mode", pick(modes)},
                                  {L"IsDynamic", pick(dynamic)}});
        // Entries that nobody uses are a failure, and the table works all the same.
        (void)dam::Compile(table);
        std::vector<H> nodes;
        for (std::size_t row = 0; row < dam.registry->Tables()->RowCount(); ++row)
            nodes.push_back(dam.registry->Tables()->nodes[row]);
        nodes.push_back(zo::Find("Points[1].Name"));
        nodes.push_back(dam.registry->AssociateAlias("Peak", "Body.Crest"));
        ExpectAnswersOfIsVisible(nodes, queries);
    }
}

} // namespace
} // namespace dam
