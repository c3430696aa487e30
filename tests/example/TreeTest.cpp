#include "examples/slope/Tree.h"

#include "examples/slope/Document.h"
#include "examples/slope/Table.h"
#include "examples/slope/Text.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using example::Holds;
using slope::Comparison;
using slope::Document;

slope::Project TwoSoils() {
    slope::Project project;
    project.title = "Dam";
    project.materials.resize(2);
    project.materials[0].cohesion = 25;
    project.lines.resize(1);
    project.lines[0].points = {1, 2, 3, 4, 5, 6, 7, 8};
    project.lines.push_back(project.lines[0]);
    project.lines[1].points.assign(5000, 12);
    return project;
}

class TreeTest : public testing::Test {
protected:
    TreeTest() {
        a.SetContent(TwoSoils());
        b.SetContent(TwoSoils());
    }
    Comparison Compare() { return slope::CompareTrees(a, b); }

    Document a, b;
};

TEST_F(TreeTest, SameTreesDoNotDiffer) {
    Comparison const comparison = Compare();
    EXPECT_EQ(comparison.differing, 0u);
    EXPECT_GT(comparison.nodes, 20u);
}

TEST_F(TreeTest, EachChangedValueIsNamed) {
    b.Content().materials[0].cohesion = 24;
    b.Content().lines[0].points[7] = 9;
    EXPECT_EQ(Compare().differences, (std::vector<std::string>{"Lines[0].Points[7] was 8 and is 9",
                                                               "Materials[0].Cohesion was 25 and is 24"}));
}

TEST_F(TreeTest, ChangedLengthsAndBranchesAreNamed) {
    b.Content().materials.pop_back();
    a.Content().water = std::make_unique<slope::WaterTable>();
    Comparison const comparison = Compare();
    std::string all;
    for (std::string const& line : comparison.differences) all += line + "\n";
    EXPECT_TRUE(Holds(all, "Materials had 2 elements and has 1\n"));
    EXPECT_TRUE(Holds(all, "Water isn't there any more\n"));
    EXPECT_TRUE(Holds(all, "Project.HasWater was true and is false\n"));
    EXPECT_EQ(comparison.differing, 3u);
}

TEST_F(TreeTest, NewBranchIsNamed) {
    b.Content().water = std::make_unique<slope::WaterTable>();
    Comparison const comparison = Compare();
    EXPECT_EQ(comparison.differing, 2u); // the branch and the property
    EXPECT_EQ(comparison.differences.back(), "Water is new");
}

TEST_F(TreeTest, LongerTreesAreNotWalkedPastTheShorterOne) {
    a.Content().analyses.resize(1);
    b.Content().slipCircles.resize(2);
    EXPECT_EQ(Compare().differences,
              (std::vector<std::string>{"Analyses had 1 element and has 0", "SlipCircles had 0 elements and has 2"}));
}

TEST_F(TreeTest, SavedValuesAreTheSameOnlyInBothDirections) {
    EXPECT_TRUE(slope::SaveTheSame(a, b));
    b.Content().materials[1].friction = 20;
    EXPECT_FALSE(slope::SaveTheSame(a, b));
    b.Content().materials[1].friction = 0;
    EXPECT_TRUE(slope::SaveTheSame(a, b));
    b.Content().analyses.resize(1);
    b.Content().analyses[0].method = "Bishop"; // what only the second one has
    EXPECT_FALSE(slope::SaveTheSame(a, b));
    EXPECT_FALSE(slope::SaveTheSame(b, a));
}

TEST_F(TreeTest, NoMoreThanTwentyDifferencesAreNamed) {
    a.Content().points.resize(50);
    b.Content().points.assign(50, {1, 0});
    Comparison const comparison = Compare();
    EXPECT_EQ(comparison.differing, 50u);
    EXPECT_EQ(comparison.differences.size(), 20u);
}

TEST_F(TreeTest, LongListsAreAbridged) {
    EXPECT_EQ(slope::ValueText(a.Find("Lines[0].Points")), "1, 2, 3, 4, 5, 6, 7, 8");
    EXPECT_EQ(slope::ValueText(a.Find("Lines[1].Points")), "12, 12, 12, 12, 12, 12, 12, 12, 12, 12, ... (5,000)");
    EXPECT_EQ(slope::ValueText(a.Find("Materials")), "(2)");
    EXPECT_EQ(slope::ValueText(a.Find("Points")), "(none)");
    EXPECT_EQ(slope::ValueText(a.Find("Project")), "");
}

TEST_F(TreeTest, TreeShowsNamesTagsValuesAndUnits) {
    std::ostringstream out;
    slope::PrintTree(out, a.Root(), a.Units(), 1);
    std::string const text = out.str();
    EXPECT_TRUE(Holds(text, "Name"));
    EXPECT_TRUE(Holds(text, "Materials[0].Cohesion"));
    EXPECT_TRUE(Holds(text, "Materials[1].Cohesion"));
    EXPECT_FALSE(Holds(text, "Materials[2].Cohesion")); // of the second material
    EXPECT_TRUE(Holds(text, "1 more"));
    EXPECT_TRUE(Holds(text, "kPa"));
}

TEST(TableTest, ColumnsAreAsWideAsTheirWidestCell) {
    slope::Table table({{"Soil"}, {"Cohesion", true}, {"Note"}});
    table.Add({"Ton, weich", "9.8"});
    table.Add({"Böden", "294"});
    std::ostringstream out;
    table.Print(out);
    EXPECT_EQ(out.str(), "  Soil        Cohesion\n"
                         "  ----------  --------\n"
                         "  Ton, weich       9.8\n"
                         "  Böden            294\n");
}

TEST(TextTest, CellsStayOnOneLine) {
    EXPECT_EQ(slope::Fit("a\nb\x1B[2J", 20), "a b [2J");
    EXPECT_EQ(slope::Fit("Böschungsbruch", 9), "Böschu...");
    EXPECT_EQ(slope::Width("Böschung"), 8u);
}

TEST(TextTest, CountsAreGrouped) {
    EXPECT_EQ(slope::Count(0), "0");
    EXPECT_EQ(slope::Count(999), "999");
    EXPECT_EQ(slope::Count(106257), "106,257");
    EXPECT_EQ(slope::Count(1234567), "1,234,567");
    EXPECT_EQ(slope::Count(1, "point", "points"), "1 point");
}

TEST(TextTest, MissingNumberHasNoText) {
    EXPECT_EQ(slope::Decimal(slope::missing), "");
    EXPECT_EQ(slope::Decimal(0.1), "0.1");
    EXPECT_EQ(slope::ThreePlaces(2.0396), "2.040");
    EXPECT_EQ(slope::ThreePlaces(slope::missing), "");
}

} // namespace
