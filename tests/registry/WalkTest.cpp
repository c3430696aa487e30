// Walking children, walking everything, clearing, and telling nodes that memory moved.
#include "tests/registry/Rows.h"

namespace {

using rows::H;
using rows::IZO;

std::vector<std::string> ChildrenOf(H const& node) {
    std::vector<std::string> names;
    for (zo::ZOFwrdIterator child = node->begin(); child.current; ++child) names.push_back(child.current->Name());
    return names;
}

using Texts = std::vector<std::string>;

class WalkTest : public embankment::EmbankmentTest {};

TEST_F(WalkTest, TopLevelNodesComeInTheOrderOfTheirTags) {
    EXPECT_EQ(ChildrenOf(embankment.registry->Root()),
              (Texts{"Points", "Project", "Regions", "Results", "Soils", "Summary", "WaterTable"}));
}

TEST_F(WalkTest, ChildrenComeInTheOrderOfRegistration) {
    EXPECT_EQ(ChildrenOf(zo::Find("Soils[1]")),
              (Texts{"Soils[1].Name", "Soils[1].Cohesion", "Soils[1].Friction", "Soils[1].UnitWeight",
                     "Soils[1].Drainage", "Soils[1].Color", "Soils[1].Anisotropy"}));
}

TEST_F(WalkTest, AChildWhoseStoreIsAwayIsSteppedOver) {
    embankment.ShowResults(false);
    EXPECT_EQ(ChildrenOf(embankment.registry->Root()),
              (Texts{"Points", "Project", "Regions", "Soils", "Summary", "WaterTable"}));
    embankment.ShowResults(true);
    EXPECT_EQ(ChildrenOf(embankment.registry->Root()).size(), 7u);
}

TEST_F(WalkTest, AWalkOverAbsentChildrenOnlyIsAtItsEnd) {
    rows::OwnRegistry registry;
    registry.AddPlain("a", L"A");
    registry.Add("a.b", H(new rows::Plain), L"B", rows::StructureTraits())->SetAvailable(false);
    registry.Add("a.c", H(new rows::Plain), L"C", rows::StructureTraits())->SetAvailable(false);
    registry->OnPostRegistration();
    H const node = zo::Find("a");
    EXPECT_EQ(node->begin(), node->end());
    EXPECT_EQ(node->begin().subID, IZO::npos);
    EXPECT_TRUE(zo::Find("a.b")) << "a lookup asks the first component's store only";
}

TEST_F(WalkTest, TheEndIsEmpty) {
    H const node = zo::Find("Project");
    zo::ZOFwrdIterator end = node->end();
    EXPECT_FALSE(end.current);
    EXPECT_FALSE(end.parent);
    EXPECT_EQ(end.subID, IZO::npos);
    EXPECT_EQ(end.index, 0u);
    ++end;
    EXPECT_FALSE(end.current);
}

TEST_F(WalkTest, SteppingPastTheEndStaysThere) {
    H const node = zo::Find("Project");
    zo::ZOFwrdIterator child = node->begin();
    EXPECT_EQ(child.subID, rows::RowOf("Project.Title"));
    ++child;
    EXPECT_EQ(child.subID, rows::RowOf("Project.Units"));
    ++child;
    EXPECT_EQ(child, node->end());
    EXPECT_EQ(child.subID, IZO::npos);
    ++child;
    EXPECT_EQ(child, node->end());
}

TEST_F(WalkTest, APositionHoldsTheNodeThatIsWalked) {
    zo::ZOFwrdIterator child = zo::Find("Project")->begin();
    ASSERT_TRUE(child.parent);
    EXPECT_EQ(child.parent->Name(), "Project");
    ++child;
    EXPECT_EQ(child.current->Name(), "Project.Units");
}

TEST_F(WalkTest, APositionIsFoundByRowAndSubName) {
    H const project = zo::Find("Project"), units = zo::Find("Project.Units");
    zo::ZOFwrdIterator const at = zo::Find(project, units);
    ASSERT_TRUE(at.current);
    EXPECT_NE(at.current, units) << "a lookup gives a fresh view";
    EXPECT_EQ(at.current->Name(), "Project.Units");
    H const soils = zo::Find("Soils");
    EXPECT_EQ(zo::Find(soils, zo::Find("Soils[2]")).current->Name(), "Soils[2]");
    EXPECT_EQ(zo::Find(project, zo::Find("Soils[0].Name")), project->end());
    EXPECT_FALSE(zo::Find(H(), units).current);
    EXPECT_FALSE(zo::Find(project, H()).current);
}

TEST_F(WalkTest, TheRegistryIsWalkedDepthFirst) {
    embankment.ShowResults(false);
    embankment.model.soils.clear();
    embankment.model.points.resize(1);
    embankment.model.regions.resize(1);
    embankment.model.regions[0].points.resize(2);
    embankment.model.waterTable.points.clear();
    Texts names;
    for (zo::ZORegistryIterator at = embankment.registry->begin(); !(at == embankment.registry->end()); ++at)
        names.push_back(at->Name());
    EXPECT_EQ(names, (Texts{"Points",
                            "Points[0]",
                            "Points[0].X",
                            "Points[0].Y",
                            "Project",
                            "Project.Title",
                            "Project.Units",
                            "Regions",
                            "Regions[0]",
                            "Regions[0].Soil",
                            "Regions[0].Points",
                            "Regions[0].Points[0]",
                            "Regions[0].Points[1]",
                            "Soils",
                            "Summary",
                            "Summary.SoilCount",
                            "Summary.MeanCohesion",
                            "WaterTable",
                            "WaterTable.UnitWeight",
                            "WaterTable.Points"}));
}

TEST_F(WalkTest, AnEmptyRegistryHasNothingToWalk) {
    rows::OwnRegistry registry;
    registry->OnPostRegistration();
    EXPECT_TRUE(registry->begin() == registry->end());
}

TEST_F(WalkTest, TheWalkDoesNotStepIntoNodesThatRedirect) {
    rows::OwnRegistry registry;
    registry.AddPlain("a", L"A");
    registry.Add("a.back", H(new rows::OtherName("a", false)), L"Back", rows::StructureTraits());
    registry->OnPostRegistration();
    Texts names;
    for (zo::ZORegistryIterator at = registry->begin(); !(at == registry->end()); ++at) names.push_back(at->Name());
    EXPECT_EQ(names, (Texts{"a", "a.back"}));
}

TEST_F(WalkTest, ClearingTheRootClearsActiveAndAvailableBranches) {
    embankment.ShowResults(false);
    embankment.registry->Clear();
    EXPECT_EQ(embankment.model.project.title, L"");
    ASSERT_EQ(embankment.model.soils.size(), 3u);
    EXPECT_EQ(embankment.model.soils[0].cohesion, 0);
    EXPECT_EQ(embankment.model.waterTable.unitWeight, 0);
    EXPECT_EQ(embankment.model.results.slips[0].factorOfSafety, 1.25) << "the results were away";
}

TEST_F(WalkTest, ClearingTheRootLeavesInactiveBranchesAlone) {
    double quiet = 4.5, active = 4.5;
    rows::OwnRegistry registry;
    auto const traits = meta::AtomicTraits<double>();
    registry.Add("Quiet", embankment::ValuePrototype<double>(traits), L"Quiet", traits, &quiet)->SetActive(false);
    registry.Add("Active", embankment::ValuePrototype<double>(traits), L"Active", traits, &active);
    registry->OnPostRegistration();
    registry->Clear();
    EXPECT_EQ(quiet, 4.5);
    EXPECT_EQ(active, 0);
}

TEST_F(WalkTest, ClearingTheRootLooksThroughMadeParents) {
    double active = 4.5, quiet = 4.5;
    rows::OwnRegistry registry;
    auto const traits = meta::AtomicTraits<double>();
    registry.Add("Site.North.Level", embankment::ValuePrototype<double>(traits), L"Site.North.Level", traits, &active);
    registry.Add("Site.North.Quiet", embankment::ValuePrototype<double>(traits), L"Site.North.Quiet", traits, &quiet)
        ->SetActive(false);
    registry->OnPostRegistration();
    registry->Clear();
    EXPECT_EQ(active, 0);
    EXPECT_EQ(quiet, 4.5);
}

TEST_F(WalkTest, ClearingEndsWhereTagsLeadBackUp) {
    // The row t.S stands below the made parent S.q in the tree of tags, where only the top-level S answers to its name.
    rows::OwnRegistry registry;
    registry.AddPlain("S.q.r", L"R");
    registry.AddPlain("t", L"S.q");
    registry.AddPlain("t.S", L"Z");
    registry->OnPostRegistration();
    registry->Clear();
    int steps = 0;
    for (zo::ZORegistryIterator at = registry->begin(); !(at == registry->end()) && steps < 1000; ++at) ++steps;
    EXPECT_LT(steps, 1000);
}

TEST_F(WalkTest, InvalidateMemoryTellsOneNode) {
    rows::OwnRegistry registry;
    H const first(new rows::OtherName("x", true)), second(new rows::OtherName("x", true));
    registry.Add("First", first, L"First", rows::StructureTraits());
    registry.Add("Second", second, L"Second", rows::StructureTraits());
    registry->OnPostRegistration();
    registry->InvalidateMemory("First");
    registry->InvalidateMemory("Nobody");
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*first).timesInvalidated, 1);
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*second).timesInvalidated, 0);
}

TEST_F(WalkTest, InvalidateMemoryOfAllTellsEveryTopLevelNodeOnceAliasesIncluded) {
    rows::OwnRegistry registry;
    H const alias(new rows::OtherName("x", true)), link(new rows::OtherName("x", false)),
        deeper(new rows::OtherName("x", false)), away(new rows::OtherName("x", false));
    registry.Add("Alias", alias, L"Alias", rows::StructureTraits());
    registry.Add("Link", link, L"Link", rows::StructureTraits());
    registry.AddPlain("Branch", L"Branch");
    registry.Add("Branch.Deeper", deeper, L"Deeper", rows::StructureTraits());
    registry.Add("Away", away, L"Away", rows::StructureTraits())->SetAvailable(false);
    registry->OnPostRegistration();
    registry->InvalidateMemory("");
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*alias).timesInvalidated, 1);
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*link).timesInvalidated, 1);
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*deeper).timesInvalidated, 0);
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*away).timesInvalidated, 0);
    registry->Root()->Clear();
    EXPECT_EQ(dynamic_cast<rows::OtherName&>(*alias).timesInvalidated, 2) << "clearing the root tells them first";
}

TEST_F(WalkTest, APositionLeadsToItsNode) {
    zo::ZORegistryIterator const at = embankment.registry->begin();
    EXPECT_EQ(at->Name(), "Points");
    EXPECT_EQ(at.operator->(), (*at).get());
}

} // namespace
