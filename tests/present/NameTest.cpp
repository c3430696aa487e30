// Names in reports: the rule of one node, its pieces, and the names of parents before it.
#include "tests/present/Levee.h"

#include <kit/kit.h>

#include <vector>

namespace levee {
namespace {

using zo::Find;
using zo::NameParts;
using zo::PrettyPrintName;
using zo::PrettyPrintNameFromParts;
using zo::PrettyPrintNameValue;

using Parts = std::vector<NameParts>;

class NameTest : public LeveeTest {
protected:
    /// Without a default label, so that what has none has no name.
    static TableText Names() { return TableText::WithDefault(); }
    /// The name with the separator that most reports use.
    static std::wstring NameOf(std::string const& name) { return PrettyPrintName(Find(name), L'.'); }
    /// What a rule gives for a node with this tag.
    static std::wstring Expanded(std::wstring const& tag, std::string const& name, std::wstring const& rule) {
        EXPECT_TRUE(Compiles(Names().Entry(tag, {{L"Label", L"&Label"}, {L"PrettyPrintNameTag", rule}})));
        return PrettyPrintNameValue(Find(name));
    }
};

// ---- Joining

TEST_F(NameTest, PiecesAreJoinedWithABlankBeforeEach) {
    EXPECT_EQ(PrettyPrintNameFromParts({{L"", L"Soils"}, {L"", L"[3]"}, {L".", L"Cohesion"}}), L" Soils [3] .Cohesion");
}

TEST_F(NameTest, AnEmptyPieceLeavesItsBlank) { EXPECT_EQ(PrettyPrintNameFromParts({{L"", L""}, {L"", L"X"}}), L"  X"); }

TEST_F(NameTest, NoPiecesAreNoText) { EXPECT_EQ(PrettyPrintNameFromParts({}), L""); }

TEST_F(NameTest, PercentSignsInPiecesStay) { EXPECT_EQ(PrettyPrintNameFromParts({{L"%s", L"5%d"}}), L" %s5%d"); }

// ---- Rules

TEST_F(NameTest, ARuleTakesTheValueAtAPath) { EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"Name"), L"Clay"); }

TEST_F(NameTest, ARuleTakesTheLabelWithoutMarks) { EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"!Label"), L"Label"); }

TEST_F(NameTest, ARuleTakesTheTag) { EXPECT_EQ(Expanded(L"Soils.[].Name", "Soils[0].Name", L"!Tag"), L"Name"); }

TEST_F(NameTest, ARuleTakesThePositionFromOne) { EXPECT_EQ(Expanded(L"Soils.[]", "Soils[2]", L"[]"), L"3"); }

TEST_F(NameTest, ThePositionOfWhatIsNoElementIsEmpty) { EXPECT_EQ(Expanded(L"Project", "Project", L"<[]>"), L"<>"); }

TEST_F(NameTest, PlainWordsOfARuleArePathsAndNoText) {
    EXPECT_EQ(Expanded(L"Soils.[]", "Soils[1]", L"No. "), L"") << "no node has the tag No";
}

TEST_F(NameTest, SignsOfARuleStand) { EXPECT_EQ(Expanded(L"Soils.[]", "Soils[1]", L"#[]: (Name)"), L"#2: (Sand)"); }

TEST_F(NameTest, EachPathOfARuleStartsAtTheNode) {
    EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"Name, Cohesion"), L"Clay, 25");
}

TEST_F(NameTest, APointIsASignAndNoStep) {
    EXPECT_EQ(Expanded(L"Regions.[]", "Regions[0]", L"Soil.Name"), L"1.Core") << "the link's number, the region's name";
}

TEST_F(NameTest, AnUnderlineEndsAPath) { EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"Name_Cohesion"), L"Clay_25"); }

TEST_F(NameTest, CommandsBehindAPathAreAboutTheNodeThere) {
    ASSERT_TRUE(Compiles(Names()
                             .Entry(L"Soils.[]", {{L"PrettyPrintNameTag", L"Name!Label=Name!Tag,[]"}})
                             .Entry(L"Soils.[].Name", {{L"Label", L"Called"}})));
    EXPECT_EQ(PrettyPrintNameValue(Find("Soils[2]")), L"Called=Name,3");
}

TEST_F(NameTest, ThePositionBehindAPathIsThatOfTheNodeThere) {
    EXPECT_EQ(Expanded(L"Layer2", "Layer2", L"Points[]|"), L"|") << "the array is no element";
}

TEST_F(NameTest, BehindAPositionTheRuleIsBackAtItsNode) {
    EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"Name[]|Cohesion"), L"|25") << "a name is no element";
}

TEST_F(NameTest, SignsAddNoValueOfTheNodeItself) {
    EXPECT_EQ(Expanded(L"Soils.[].Name", "Soils[0].Name", L"<!Tag>"), L"<Name>");
}

TEST_F(NameTest, AWordThatLeadsNowhereEmptiesTheWholeRule) {
    EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"Name: Author"), L"");
}

TEST_F(NameTest, ALoneExclamationMarkStands) { EXPECT_EQ(Expanded(L"Soils.[]", "Soils[0]", L"Name!"), L"Clay!"); }

TEST_F(NameTest, ANodeWithoutARuleHasNoNameOfItsOwn) {
    ASSERT_TRUE(Compiles(Names()));
    EXPECT_EQ(PrettyPrintNameValue(Find("Soils[0]")), L"");
    EXPECT_EQ(PrettyPrintNameValue(H()), L"");
}

TEST_F(NameTest, ARuleOnAnAliasIsAboutItsSource) { EXPECT_EQ(Expanded(L"Top", "Top", L"Name"), L"Clay"); }

TEST_F(NameTest, ARuleOnALinkIsAboutTheRecord) {
    EXPECT_EQ(Expanded(L"Regions.[].Soil", "Regions[1].Soil", L"Name"), L"Sand");
}

TEST_F(NameTest, RulesThatLeadToEachOtherEnd) {
    ASSERT_TRUE(Compiles(Names()
                             .Entry(L"Soils.[]", {{L"PrettyPrintNameTag", L"<Substitute>"}})
                             .Entry(L"Soils.[].Substitute", {{L"PrettyPrintValueTag", L"Substitute"}})));
    EXPECT_EQ(PrettyPrintNameValue(Find("Soils[0]")), L"<>");
}

// ---- A node's own pieces

TEST_F(NameTest, OwnPiecesAreTheLabel) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils", {{L"Label", L"&Soils"}})));
    bool fixed = true;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils"), fixed), (Parts{{L"", L"Soils"}}));
    EXPECT_FALSE(fixed);
}

TEST_F(NameTest, ANodeWithoutALabelHasNoPieces) {
    ASSERT_TRUE(Compiles(Names()));
    bool fixed = true;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils"), fixed), Parts());
    EXPECT_FALSE(fixed);
}

TEST_F(NameTest, AnEmptyHandleHasNoPieces) {
    ASSERT_TRUE(Compiles(Table()));
    bool fixed = true;
    EXPECT_EQ(zo::impl::OwnNameParts(H(), fixed), Parts());
    EXPECT_FALSE(fixed);
}

TEST_F(NameTest, ANameByARuleStandsInQuotesBehindTheLabel) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"PrettyPrintNameTag", L"Name"}})));
    bool fixed = false;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils[0]"), fixed), (Parts{{L"", L"Soil"}, {L" ", L"\"Clay\""}}));
    EXPECT_TRUE(fixed);
}

TEST_F(NameTest, ANameByARuleStandsAloneWithoutALabel) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils.[]", {{L"PrettyPrintNameTag", L"Name"}})));
    bool fixed = false;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils[0]"), fixed), (Parts{{L" ", L"\"Clay\""}}));
    EXPECT_TRUE(fixed);
}

TEST_F(NameTest, ARuleThatHoldsTheLabelIsThePieceAsItIs) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"PrettyPrintNameTag", L"!Label Name"}})));
    bool fixed = false;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils[0]"), fixed), (Parts{{L"", L"Soil Clay"}}));
    EXPECT_TRUE(fixed);
}

TEST_F(NameTest, ARuleThatGivesNothingLeavesTheLabel) {
    levee.model.soils[0].name.clear();
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"PrettyPrintNameTag", L"Name"}})));
    bool fixed = true;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils[0]"), fixed), (Parts{{L"", L"Soil"}}));
    EXPECT_FALSE(fixed);
}

TEST_F(NameTest, ARuleOfAnEmptyLabelIsNoName) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils.[]", {{L"PrettyPrintNameTag", L"!Label"}})));
    bool fixed = true;
    EXPECT_EQ(zo::impl::OwnNameParts(Find("Soils[0]"), fixed), Parts());
    EXPECT_FALSE(fixed);
}

// ---- With parents

TEST_F(NameTest, AnEmptyHandleHasNoName) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(PrettyPrintName(H(), L'.'), L"");
}

TEST_F(NameTest, ATopLevelNodeHasItsLabel) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Project", {{L"Label", L"Project"}})));
    EXPECT_EQ(NameOf("Project"), L" Project");
}

TEST_F(NameTest, TheSeparatorStandsBeforeWhatAStructureHolds) {
    ASSERT_TRUE(
        Compiles(Names().Entry(L"Project", {{L"Label", L"Project"}}).Entry(L"Project.Title", {{L"Label", L"Title"}})));
    EXPECT_EQ(NameOf("Project.Title"), L" Project .Title");
    EXPECT_EQ(PrettyPrintName(Find("Project.Title"), L'/'), L" Project /Title");
}

/// The labels of the soils, of one of them and of its cohesion.
TableText SoilNames() {
    return TableText::WithDefault()
        .Entry(L"Soils", {{L"Label", L"Soils"}})
        .Entry(L"Soils.[]", {{L"Label", L"Soil"}})
        .Entry(L"Soils.[].Cohesion", {{L"Label", L"Cohesion"}});
}

TEST_F(NameTest, AnElementIsCalledAsItsArrayWithItsPositionFromOne) {
    ASSERT_TRUE(Compiles(SoilNames()));
    EXPECT_EQ(NameOf("Soils[2]"), L" Soils [3]");
    EXPECT_EQ(NameOf("Soils[0]"), L" Soils [1]");
}

TEST_F(NameTest, WhatAnElementHoldsStandsBehindIt) {
    ASSERT_TRUE(Compiles(SoilNames()));
    EXPECT_EQ(NameOf("Soils[2].Cohesion"), L" Soils [3] .Cohesion");
}

TEST_F(NameTest, TheLengthOfAnArrayAddsOnlyTheSeparator) {
    ASSERT_TRUE(Compiles(SoilNames()));
    EXPECT_EQ(NameOf("Soils.Len"), L" Soils .");
}

TEST_F(NameTest, AnElementWithANameNeedsNoParents) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Soils", {{L"Label", L"Soils"}})
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"PrettyPrintNameTag", L"Name"}})
                             .Entry(L"Soils.[].Cohesion", {{L"Label", L"Cohesion"}})));
    EXPECT_EQ(NameOf("Soils[0]"), L" Soil  \"Clay\"");
    EXPECT_EQ(NameOf("Soils[0].Cohesion"), L" Soil  \"Clay\" .Cohesion");
}

TEST_F(NameTest, AnElementThatTellsItsLabelAndNameNeedsNoParents) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Soils", {{L"Label", L"Soils"}})
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"PrettyPrintNameTag", L"!Label Name"}})));
    EXPECT_EQ(NameOf("Soils[0]"), L" Soil Clay");
}

TEST_F(NameTest, ElementsOfAnArrayWithoutALabelHaveTheirOwn) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}})
                             .Entry(L"Soils.[].Cohesion", {{L"Label", L"Cohesion"}})));
    EXPECT_EQ(NameOf("Soils[2]"), L" Soil");
    EXPECT_EQ(NameOf("Soils[2].Cohesion"), L" Soil .Cohesion");
}

TEST_F(NameTest, ANodeWithoutALabelIsCalledAsItsParent) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Project", {{L"Label", L"Project"}})));
    EXPECT_EQ(NameOf("Project.Title"), L" Project");
}

TEST_F(NameTest, AnElementWithoutALabelStillHasItsPosition) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Soils", {{L"Label", L"Soils"}})));
    EXPECT_EQ(NameOf("Soils[1].Cohesion"), L" Soils [2]");
}

TEST_F(NameTest, ANodeBelowAParentWithoutANameHasItsOwn) {
    ASSERT_TRUE(Compiles(Names().Entry(L"Project.Title", {{L"Label", L"Title"}})));
    EXPECT_EQ(NameOf("Project.Title"), L" Title") << "without the separator";
}

TEST_F(NameTest, WhereNothingHasALabelThereIsNoName) {
    ASSERT_TRUE(Compiles(Names()));
    EXPECT_EQ(NameOf("Soils[1].Cohesion"), L"");
}

TEST_F(NameTest, ArraysInArraysHaveAPositionEach) {
    ASSERT_TRUE(Compiles(Names()
                             .Entry(L"Profiles", {{L"Label", L"Profiles"}})
                             .Entry(L"Profiles.[].Points", {{L"Label", L"Points"}})
                             .Entry(L"Profiles.[].Points.[].X", {{L"Label", L"Easting"}})));
    EXPECT_EQ(NameOf("Profiles[1].Points[2].X"), L" Profiles [2] .Points [3] .Easting");
    EXPECT_EQ(NameOf("Profiles[1].Points.Len"), L" Profiles [2] .Points .");
}

TEST_F(NameTest, DigitsInTheNamesOfParentsAreNoPosition) {
    ASSERT_TRUE(
        Compiles(Names().Entry(L"Layer2", {{L"Label", L"Layer"}}).Entry(L"Layer2.Points", {{L"Label", L"Points"}})));
    EXPECT_EQ(NameOf("Layer2.Points[5]"), L" Layer .Points [6]");
}

TEST_F(NameTest, TheLabelOfAParentMayBeComposed) {
    ASSERT_TRUE(Compiles(Names()
                             .Entry(L"Project", {{L"Label", L"Project"}, {L"LabelTag", L"!Label Title"}})
                             .Entry(L"Project.Description", {{L"Label", L"Description"}})));
    EXPECT_EQ(NameOf("Project.Description"), L" Project Levee 7 .Description");
}

TEST_F(NameTest, AnElementFoundThroughAnAliasIsCalledAsInItsArray) {
    Levee const other([](zo::kit::Kit& kit) { kit.Alias("Strata", L"Strata", "Soils"); });
    ASSERT_TRUE(Compiles(Names().Entry(L"Strata", {{L"Label", L"Strata"}}).Entry(L"Soils", {{L"Label", L"Soils"}})));
    EXPECT_EQ(NameOf("Strata"), L" Strata");
    EXPECT_EQ(NameOf("Strata[1]"), L" Soils [2]");
}

TEST_F(NameTest, AnArrayInTheTreeMayStandBehindAnAlias) {
    Levee const other([](zo::kit::Kit& kit) { kit.Alias("Strata", L"Strata", "Soils"); });
    ASSERT_TRUE(Compiles(Names().Entry(L"Strata", {{L"Label", L"Strata"}, {L"IsDynamic", L"1"}})));
    H const element(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, meta::AtomicTraits<double>(), 2.0));
    ASSERT_TRUE(Succeeds(other.registry->Insert("Strata[4]", element)));
    EXPECT_EQ(PrettyPrintName(element, L'.'), L" Strata [5]");
}

TEST_F(NameTest, ANumberThatIsNoIndexIsNoPosition) {
    ASSERT_TRUE(Compiles(SoilNames()));
    H const element(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, meta::AtomicTraits<double>(), 2.0));
    ASSERT_TRUE(Succeeds(levee.registry->Insert("Soils[18446744073709551615]", element)));
    EXPECT_EQ(PrettyPrintName(element, L'.'), L" Soils .Soil");
}

TEST_F(NameTest, ANodeWithoutAPlaceHasNoParents) {
    ASSERT_TRUE(Compiles(SoilNames()));
    H const copy(Find("Soils[0].Cohesion")->Clone());
    EXPECT_EQ(PrettyPrintName(copy, L'.'), L" Cohesion");
}

TEST_F(NameTest, ANodeInATransactionHasTheNameThatIsStagedForIt) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"PrettyPrintNameTag", L"Name"}})
                             .Entry(L"Soils.[].Cohesion", {{L"Label", L"Cohesion"}})));
    htl::handle<zo::ZOTransaction> const edit = levee.registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(edit->Find("Soils[0].Name")->Set(L"Marl")));
    EXPECT_EQ(PrettyPrintName(edit->Find("Soils[0].Cohesion"), L'.'), L" Soil  \"Marl\" .Cohesion");
    EXPECT_EQ(NameOf("Soils[0].Cohesion"), L" Soil  \"Clay\" .Cohesion");
}

/// A node with a node of its kind below it, and so on.
class Tower : public zo::IZO {
public:
    explicit Tower(std::size_t regID = npos, zo::ZOSet* owner = nullptr) : IZO(regID, owner, npos) {}
    IZO* Clone() override { return new Tower(RegID(), Owner()); }

protected:
    H GetSubZO(std::string const&) override { return H(Clone()); }
};

TEST_F(NameTest, ThousandsOfParentsAreClimbed) {
    levee.registry->RegisterZO(htl::handle<zo::ODS>(new zo::ODS("Tower", true, true, nullptr)), H(new Tower),
                               {meta::MetaPersistTraits::No, L"Tower"}, {});
    ASSERT_TRUE(Compiles(Names().Entry(L"Tower", {{L"Label", L"Floor"}})));
    std::string name = "Tower";
    std::wstring expected = L" Floor";
    for (int level = 0; level < 1000; ++level) {
        name += ".Up";
        expected += L" .Floor";
    }
    EXPECT_TRUE(NameOf(name) == expected);
}

} // namespace
} // namespace levee
