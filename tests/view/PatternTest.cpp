// Patterns with wildcards over the view.
#include "tests/view/Shown.h"

#include <utility>

using namespace shown;
using zo::NameParts;
using zo::view::FindAllMatching;
using zo::view::ZONameParts;

namespace {

using Parts = std::vector<NameParts>;
using Patterns = std::vector<std::pair<std::wstring, std::wstring>>;

class PatternTest : public dam::ViewModelTest {};

List Found(std::vector<ZONameParts> const& all) {
    List names;
    for (ZONameParts const& each : all) names.push_back(each.node->Name());
    return names;
}
List Found(Patterns const& patterns) { return Found(FindAllMatching(patterns, all)); }
WideList Labels(Patterns const& patterns) {
    WideList labels;
    for (ZONameParts const& each : FindAllMatching(patterns, all)) labels.push_back(each.label);
    return labels;
}

/// Labels, so that nodes have a name in reports.
TableText Labelled() {
    return TableText::WithDefault()
        .Entry(L"Body", {{L"Label", L"Dam body"}})
        .Entry(L"Body.Crest", {{L"Label", L"Crest width"}})
        .Entry(L"Points", {{L"Label", L"Outline"}})
        .Entry(L"Points.[]", {{L"Label", L"Point"}})
        .Entry(L"Points.[].X", {{L"Label", L"Distance"}});
}

TEST_F(PatternTest, NamesOneNodeWithoutAWildcard) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    std::vector<ZONameParts> const found = FindAllMatching({{L"Body.Crest", L"Body.Crest[$]"}}, all);
    ASSERT_EQ(Found(found), (List{"Body.Crest"}));
    EXPECT_EQ(found[0].label, L"Body.Crest[$]");
    EXPECT_EQ(found[0].parts, (Parts{{L"", L"Dam body"}, {L"", L"Crest width"}}));
}

TEST_F(PatternTest, TakesAnIndexInTheFirstComponentAndAsOneOfItsOwn) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    EXPECT_EQ(Found(Patterns{{L"Points[2].X", L""}}), (List{"Points[1].X"}));
    EXPECT_EQ(Found(Patterns{{L"Points.[3].X", L""}}), (List{"Points[2].X"}));
}

TEST_F(PatternTest, ExpandsAWildcardToAllElements) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    std::vector<ZONameParts> const found = FindAllMatching({{L"Points.$.X", L"Points[$].X"}}, all);
    ASSERT_EQ(Found(found), (List{"Points[0].X", "Points[1].X", "Points[2].X"}));
    EXPECT_EQ(found[2].label, L"Points[2].X");
    EXPECT_EQ(found[2].parts, (Parts{{L"", L"Outline"}, {L"", L"Point"}, {L"", L"Distance"}}));
}

TEST_F(PatternTest, NamesTheChildrenThemselvesByWhatIsBeforeALastWildcard) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    std::vector<ZONameParts> const found = FindAllMatching({{L"Points.$", L"Points[$]"}}, all);
    ASSERT_EQ(Found(found), (List{"Points[0]", "Points[1]", "Points[2]"}));
    EXPECT_EQ(found[1].label, L"Points[1]");
    EXPECT_EQ(found[1].parts, (Parts{{L"", L"Outline"}}));
}

TEST_F(PatternTest, StartsTheNameAnewWhereTheTableSaysAllOfIt) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Points", {{L"Label", L"Outline"}})
                                     .Entry(L"Points.[]", {{L"Label", L"Point"}, {L"PrettyPrintNameTag", L"Name"}})
                                     .Entry(L"Points.[].X", {{L"Label", L"Distance"}}))));
    std::vector<ZONameParts> const found = FindAllMatching({{L"Points.$.X", L""}}, all);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].parts, (Parts{{L"", L"Point"}, {L" ", L"\"Heel\""}, {L"", L"Distance"}}));
}

TEST_F(PatternTest, ReplacesTheTextUpToTheBracketOnly) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    EXPECT_EQ(Labels({{L"Points.$", L"a$bc]d$e"}}), (WideList{L"a0]d$e", L"a1]d$e", L"a2]d$e"}));
    EXPECT_EQ(Labels({{L"Points.$", L"a]b$c"}}), (WideList{L"a]b0", L"a]b1", L"a]b2"}));
    EXPECT_EQ(Labels({{L"Points.$", L"none"}}), (WideList{L"none", L"none", L"none"}));
}

TEST_F(PatternTest, ReplacesOneIndexForEachArray) {
    std::vector<std::vector<double>> rows{{1, 2}, {3}};
    dam::ViewModel const grid([&rows](zo::kit::Kit& kit) {
        kit.Branch<std::vector<std::vector<double>>>("Rows", L"Rows[Row]", [&rows] { return &rows; });
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Labels({{L"Rows.$.Items.$", L"Rows[$].Items[$]"}}),
              (WideList{L"Rows[0].Items[0]", L"Rows[0].Items[1]", L"Rows[1].Items[0]"}));
}

TEST_F(PatternTest, KeepsTheLabelWhereChildrenAreNoElements) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    EXPECT_EQ(Found(Patterns{{L"Body.$", L"Body[$]"}}), (List{"Body.Crest", "Body.Height"}));
    EXPECT_EQ(Labels({{L"Body.$", L"Body[$]"}}), (WideList{L"Body[$]", L"Body[$]"}));
}

struct Intake {
    double gate1 = 0;
    double gate2 = 0;
};

TEST(PatternLabelTest, KeepsTheLabelOfChildrenThatHaveANumberAndAreNoElements) {
    Intake intake;
    dam::ViewModel const dam([&intake](zo::kit::Kit& kit) {
        kit.Record<Intake>("Intake").Field<&Intake::gate1>("Gate1", L"Gate1").Field<&Intake::gate2>("Gate2", L"Gate2");
        kit.Branch<Intake>("Intake", L"Intake", [&intake] { return &intake; });
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Found(Patterns{{L"Intake.$", L""}}), (List{"Intake.Gate1", "Intake.Gate2"}));
    EXPECT_EQ(Labels({{L"Intake.$", L"Gate[$]"}}), (WideList{L"Gate[$]", L"Gate[$]"}));
}

TEST_F(PatternTest, TakesAnyComponentWithTheSignForAWildcard) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    EXPECT_EQ(Found(Patterns{{L"Body.[$1]", L""}}), (List{"Body.Crest", "Body.Height"}));
}

TEST_F(PatternTest, ExpandsOverTheView) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {From(L"Drain.Pitch"), From(L"Gallery.*")})
                                     .Entry(L"Body.Height", Hidden()))));
    EXPECT_EQ(Found(Patterns{{L"Body.$", L""}}),
              (List{"Body.Crest", "Drain.Pitch", "Gallery.Length", "Gallery.Width"}));
    EXPECT_EQ(Found(Patterns{{L"Body.Pitch", L""}}), (List{"Drain.Pitch"}));
}

TEST_F(PatternTest, KeepsTheOrderOfThePatterns) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    EXPECT_EQ(Found(Patterns{{L"Gallery.Width", L""}, {L"Spillway", L""}, {L"Drain.$", L""}, {L"Gallery.Width", L""}}),
              (List{"Gallery.Width", "Drain.Pitch", "Drain.Flow", "Gallery.Width"}));
}

TEST_F(PatternTest, LeavesOutWhereTheRestLeadsNowhere) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[].X", Hidden()))));
    EXPECT_EQ(Found(Patterns{{L"Points.$.X", L""}}), List());
    EXPECT_EQ(Found(Patterns{{L"Points.$.Y", L""}}), List());
    EXPECT_EQ(Found(Patterns{{L"Points.$.Name", L""}}), (List{"Points[0].Name", "Points[1].Name", "Points[2].Name"}));
}

TEST_F(PatternTest, NamesNothingWithoutAFirstComponent) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    for (wchar_t const* const pattern : {L"", L".", L".Body", L"$", L"$.Crest", L"Body..Crest", L"Spillway.$"})
        EXPECT_EQ(Found(Patterns{{pattern, L""}}), List());
    EXPECT_EQ(FindAllMatching({}, all).size(), 0u);
}

TEST_F(PatternTest, TakesHostileTexts) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    EXPECT_EQ(Found(Patterns{{std::wstring(1'000'000, L'.'), L""}}), List());
    EXPECT_EQ(Found(Patterns{{L"Body" + std::wstring(1'000'000, L'.'), L""}}), List());
    EXPECT_EQ(Found(Patterns{{std::wstring(1'000'000, L'$'), L""}}), List());
    std::wstring wildcards = L"Points";
    for (int i = 0; i < 300'000; ++i) wildcards += L".$";
    EXPECT_EQ(Found(Patterns{{wildcards, std::wstring(1'000'000, L'$')}}), List());
}

// Objects with numbers of their own.

struct Well {
    int id = 0;
    double depth = 0;
    bool closed = false;
};

/// Wells whose numbers are not their places. A closed one doesn't show.
class WellTest : public testing::Test {
protected:
    explicit WellTest(std::uint32_t group) : group(group) {}
    WellTest() : WellTest(11) {}

    bool IsOpen(zo::IZO const& node) const {
        std::size_t const index = std::size_t(node.Name().back() == ']' ? node.Name()[6] - '0' : 9);
        return index >= wells.size() || !wells[index].closed;
    }

    std::uint32_t group;
    std::vector<Well> wells{{2, 8, false}, {1, 12, false}, {0, 15, false}, {7, 20, false}};
    dam::ViewModel dam{[this](zo::kit::Kit& kit) {
        kit.Record<Well>("Well", {.visible = [this](zo::IZO const& node) { return IsOpen(node); }})
            .Field<&Well::id>("ID", L"ID")
            .Field<&Well::depth>("Depth", L"Depth");
        kit.Branch<std::vector<Well>>("Wells", L"Wells[Well]", [this] { return &wells; }, {.recordGroup = group});
    }};
};

class PlainWellTest : public WellTest {
protected:
    PlainWellTest() : WellTest(0) {}
};

TEST_F(WellTest, StandForTheRecordsOfTheirNumbers) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    // Numbers 2 and 1; 0 is none, and there is no record 7.
    std::vector<ZONameParts> const found = FindAllMatching({{L"Wells.$.Depth", L"Wells[$]"}}, all);
    EXPECT_EQ(Found(found), (List{"Wells[1].Depth", "Wells[0].Depth"}));
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].label, L"Wells[0]");
    EXPECT_EQ(found[1].label, L"Wells[1]");
    EXPECT_EQ(Found(Patterns{{L"Wells.$", L""}}), (List{"Wells[1]", "Wells[0]"}));
}

TEST_F(PlainWellTest, StandForTheElementsOfTheirNumbers) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Found(Patterns{{L"Wells.$", L""}}), (List{"Wells[1]", "Wells[0]"}));
}

TEST_F(WellTest, DoNotStandForARecordThatIsHidden) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    wells[1].closed = true; // the record number 2, which the first element names
    EXPECT_EQ(Found(Patterns{{L"Wells.$", L""}}), (List{"Wells[0]"}));
}

// The name of one node.

TEST_F(PatternTest, GivesThePiecesOfTheNameOfOneNode) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    Patterns const patterns{{L"Body.$", L""}, {L"Points.$.X", L""}};
    EXPECT_EQ(zo::GetModifierViewTraversalName(zo::Find("Points[1].X"), patterns),
              (Parts{{L"", L"Outline"}, {L"", L"Point"}, {L"", L"Distance"}}));
}

TEST_F(PatternTest, GivesThePiecesOfTheFirstPatternThatReachesTheNode) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    Patterns const patterns{{L"Body.$", L""}, {L"Body.Crest", L""}};
    EXPECT_EQ(zo::GetModifierViewTraversalName(zo::Find("Body.Crest"), patterns), (Parts{{L"", L"Dam body"}}));
}

TEST_F(PatternTest, GivesNoPiecesForANodeThatNoPatternReaches) {
    ASSERT_TRUE(Succeeds(Compile(Labelled())));
    Patterns const patterns{{L"Body.$", L""}};
    EXPECT_EQ(zo::GetModifierViewTraversalName(zo::Find("Drain.Flow"), patterns), Parts());
    EXPECT_EQ(zo::GetModifierViewTraversalName(H(), patterns), Parts());
    EXPECT_EQ(zo::GetModifierViewTraversalName(zo::Find("Body.Crest"), {}), Parts());
}

TEST_F(PatternTest, ReachesTheSourceOfAnAlias) {
    ASSERT_TRUE(Succeeds(Compile(Labelled().Entry(L"Gallery", {{L"Label", L"Gallery"}}, {Also(L"Drain.Flow")}))));
    EXPECT_EQ(zo::GetModifierViewTraversalName(zo::Find("Drain.Flow"), {{L"Gallery.$", L""}}),
              (Parts{{L"", L"Gallery"}}));
}

TEST_F(PatternTest, AsksForTheDefinitionOfSlopesInAnyView) {
    ASSERT_TRUE(Succeeds(Compile(Labelled()
                                     .Entry(L"Drain.Pitch", {{L"Label", L"Pitch"}, {L"ViewExcl", L"all"}})
                                     .Entry(L"Drain.Flow", {{L"Label", L"Flow"}, {L"Physics", L"water"}})
                                     .Entry(L"Gallery.Length", {{L"Label", L"Length"}, {L"Mode", L"contour"}}))));
    auto const pieces = [](std::string const& name, std::wstring const& pattern) {
        return zo::GetModifierViewTraversalName(zo::Find(name), {{pattern, L""}});
    };
    EXPECT_EQ(pieces("Drain.Pitch", L"Drain.Pitch"), (Parts{{L"", L"Pitch"}}));
    EXPECT_EQ(pieces("Drain.Flow", L"Drain.Flow"), Parts());
    EXPECT_EQ(pieces("Gallery.Length", L"Gallery.Length"), Parts());
}

} // namespace
