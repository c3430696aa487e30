#include "examples/slope/Areas.h"
#include "examples/slope/Display.h"
#include "examples/slope/SetValues.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using example::Holds;
using example::Outcome;
using example::ReadFile;
using example::Slope;
using slope::LineRole;
using slope::Project;

/// Level ground at 10 over 20 m, with a step of 2 m at its middle, and a layer whose bottom ends on the step's foot.
Project Section() {
    Project project;
    project.points = {{0, 12}, {10, 12}, {10, 10}, {20, 10}, {0, 6}, {20, 6}, {5, 8}, {15, 8}};
    project.lines = {{"ground", LineRole::Ground, {1, 2, 3, 4}},
                     {"base", LineRole::LayerBottom, {5, 6}},
                     {"lens", LineRole::LayerBottom, {7, 8}}};
    project.regions = {{"Fill", 0, {1, 2}}, {"Rock", 0, {2}}};
    return project;
}

double Area(Project& project, std::size_t region = 0) {
    slope::UpdateAreas(project);
    return project.regions[region].area;
}

TEST(AreasTest, ARegionBetweenTwoLinesHasTheAreaBetweenThem) {
    Project project = Section();
    EXPECT_DOUBLE_EQ(Area(project), 10 * 6 + 10 * 4);
}

TEST(AreasTest, ARegionWithoutABottomHasNone) {
    Project project = Section();
    EXPECT_EQ(Area(project, 1), slope::missing);
}

TEST(AreasTest, ALineFromRightToLeftIsTheSameLine) {
    Project project = Section();
    project.lines[0].points = {4, 3, 2, 1};
    project.lines[1].points = {6, 5};
    EXPECT_DOUBLE_EQ(Area(project), 100);
}

TEST(AreasTest, ALineThatEndsWithinTheSectionGoesOnAlongTheGround) {
    Project project = Section();
    project.regions[0].lines = {1, 3};
    // From (0,12) to (5,8): of 12 and 10 above 0 to 5; then 8; then from (15,8) to the ground's end at (20,10).
    EXPECT_DOUBLE_EQ(Area(project), (10 * 12 + 10 * 10) - (5 * 10 + 10 * 8 + 5 * 9));
}

TEST(AreasTest, LinesOfDifferentLengthsAreJoinedAtTheirEnds) {
    Project project = Section();
    project.points[4] = {-4, 6};
    // A triangle of 4 by 6 more, from the ground's left end down to the line's.
    EXPECT_DOUBLE_EQ(Area(project), 100 + 12);
}

TEST(AreasTest, NumbersThatNameNothingLeaveNoArea) {
    for (std::vector<int> const& lines : {std::vector<int>{}, {1, 9}, {0, 2}, {-1, 2}}) {
        Project project = Section();
        project.regions[0].lines = lines;
        EXPECT_EQ(Area(project), slope::missing);
    }
    Project project = Section();
    project.lines[1].points = {99, 0};
    EXPECT_EQ(Area(project), slope::missing);
}

TEST(AreasTest, PointsWithoutAPlaceArePassedOver) {
    Project project = Section();
    project.points.push_back({7, slope::missing});
    project.points.push_back({std::nan(""), 7});
    project.lines[1].points = {5, 9, 10, 6};
    EXPECT_DOUBLE_EQ(Area(project), 100);
}

TEST(AreasTest, AnAreaBeyondAllNumbersIsNone) {
    Project project = Section();
    project.points[5] = {1e200, -1e200};
    EXPECT_EQ(Area(project), slope::missing);
}

TEST(AreasTest, GroundThatGoesBackAndForthBoundsNothing) {
    Project project = Section();
    project.lines[0].points = {1, 3, 2, 5, 4};
    EXPECT_EQ(Area(project), slope::missing);
    project.lines.clear();
    EXPECT_EQ(Area(project), slope::missing);
}

TEST(AreasTest, AnAreaThatCanNoLongerBeToldIsGone) {
    Project project = Section();
    EXPECT_DOUBLE_EQ(Area(project), 100);
    project.lines[1].points.clear();
    EXPECT_EQ(Area(project), slope::missing);
}

/// On AT2, whose ground is (0,15) (18,15) (48,35) (66,35) over the lines (24,19) (66,33) and (0,3) (66,25): there are
/// 1650 m2 above 0 below the ground, 1464 below the first line with what goes along the ground, 924 below the second.
class AreaNodeTest : public example::ProblemTest {
protected:
    AreaNodeTest() { Import("AT2"); }

    std::wstring Text(std::string const& name) {
        std::wstring text;
        EXPECT_FALSE(document.Find(name)->Get(text).IsError()) << name;
        return text;
    }
};

TEST_F(AreaNodeTest, TheTreeHasTheAreaOfEachRegion) {
    EXPECT_EQ(Text("Regions[0].Area"), L"186");
    EXPECT_EQ(Text("Regions[1].Area"), L"540");
    EXPECT_EQ(Text("Regions[2].Area"), L"");
    EXPECT_TRUE(document.Find("Regions[2].Area")->IsUndefined());
}

TEST_F(AreaNodeTest, ItStaysUntilTheTriggerIsWritten) {
    // The second line 1 m deeper at its left end.
    ASSERT_FALSE(document.Find("Points[6].Y")->Set(2).IsError());
    EXPECT_EQ(Text("Regions[1].Area"), L"540");
    EXPECT_FALSE(zo::UpdateCalculatedValues(document.Find("Project")).IsError());
    EXPECT_EQ(Text("Regions[1].Area"), L"573");
}

TEST_F(AreaNodeTest, ItIsUpToDateAfterAnEditAndAnUndo) {
    std::vector<slope::ChangedValue> changed;
    EXPECT_TRUE(slope::SetValues(document, {{"Points[6].Y", "2"}}, false, changed).empty());
    EXPECT_EQ(Text("Regions[1].Area"), L"573");

    auto const transaction = document.Begin();
    ASSERT_FALSE(transaction->Find("Points[6].Y")->Set(3).IsError());
    zo::ZOJournal journal;
    ASSERT_FALSE(transaction->Commit("", "", &journal).IsError());
    document.UpdateCalculated();
    EXPECT_EQ(Text("Regions[1].Area"), L"540");
    ASSERT_FALSE(document.Undo(journal).IsError());
    EXPECT_EQ(Text("Regions[1].Area"), L"573");
    ASSERT_FALSE(document.Redo(journal).IsError());
    EXPECT_EQ(Text("Regions[1].Area"), L"540");
}

TEST_F(AreaNodeTest, NeitherItNorItsTriggerIsSaved) {
    std::string const file = File("at2.xml");
    ASSERT_FALSE(document.Save(file).IsError());
    std::string const text = ReadFile(file);
    EXPECT_EQ(text.find("Area"), std::string::npos);
    EXPECT_EQ(text.find("UpdateCalculatedValues"), std::string::npos);
    EXPECT_EQ(Slope({"get", file, "Regions[0].Area"}).out, "186\n");
}

TEST_F(AreaNodeTest, ItCanNotBeWritten) {
    std::string const file = File("at2.xml");
    ASSERT_FALSE(document.Save(file).IsError());
    Outcome outcome = Slope({"set", file, "Regions[0].Area", "1"});
    EXPECT_EQ(outcome.exitStatus, 1);
    outcome = Slope({"set", file, "Project.UpdateCalculatedValues", "1"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "Project.UpdateCalculatedValues can't be edited.\n"));
}

TEST_F(AreaNodeTest, TheGridShowsItInTheUnitsThatPeopleWant) {
    std::string const file = File("at2.xml");
    ASSERT_FALSE(document.Save(file).IsError());
    // 186 / 0.3048 squared
    EXPECT_TRUE(Holds(Slope({"grid", file, "--units", "us"}).out,
                      "      Area                      2002.09                                           ft²\n"));
}

TEST_F(AreaNodeTest, TheTriggerShowsInNoView) {
    ASSERT_FALSE(document.Present().IsError());
    zo::H const trigger = document.Find("Project.UpdateCalculatedValues");
    int const any = zo::visible::Mask(hzn::apptype::Any) | zo::visible::Mask(hzn::appmode::Any);
    for (int const view : {slope::dataView, slope::propertyView, slope::reportView})
        EXPECT_FALSE(zo::IsVisible(trigger, any | view));
    EXPECT_TRUE(zo::IsVisible(document.Find("Regions[0].Area"), any | slope::propertyView));
}

} // namespace
