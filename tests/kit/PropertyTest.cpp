// Values behind two functions of the object.
#include "tests/kit/Site.h"

#include <memory>

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Persist;

struct WaterTable {
    double level = 0;
    std::vector<Point> points;
};

class Project {
public:
    bool HasWater() const { return water != nullptr; }
    void SetHasWater(bool on) {
        if (on != HasWater()) water = on ? std::make_unique<WaterTable>() : nullptr;
    }
    std::wstring const& Title() const { return title; }
    void SetTitle(std::wstring const& text) { title = text; }
    Method Drilling() const { return drilling; }
    void SetDrilling(Method method) { drilling = method; }

    std::unique_ptr<WaterTable> water;

private:
    std::wstring title;
    Method drilling = Method::Rotary;
};

double LevelInFeet(Project const& project) { return project.water ? project.water->level / 0.3048 : 0; }
void SetLevelInFeet(Project& project, double feet) {
    if (project.water) project.water->level = feet * 0.3048;
}

class PropertyTest : public KitTest {
protected:
    PropertyTest() {
        Register({&PointModule, [this](Kit& kit) {
                      kit.Enum<Method>(methods);
                      kit.Record<Project>("Project")
                          .Property<&Project::HasWater, &Project::SetHasWater>("HasWater", L"HasWater")
                          .Property<&Project::Title, &Project::SetTitle>("Title", L"Title")
                          .Property<&Project::Drilling, &Project::SetDrilling>(
                              "Drilling", L"Drilling", {.dflt = Method::Auger, .persist = Persist::IfNotDefault})
                          .Property<&LevelInFeet, &SetLevelInFeet>("Feet", L"Feet",
                                                                   {.min = 0.0, .persist = Persist::Never});
                      kit.Record<WaterTable>("WaterTable")
                          .Field<&WaterTable::level>("Level", L"Level")
                          .Array<&WaterTable::points>("Points", L"Points[Point]");
                      kit.Branch<Project>("Project", L"Project", [this] { return &project; });
                      kit.Branch<WaterTable>("Water", L"Water", [this] { return project.water.get(); });
                  }});
    }

    Project project;
};

TEST_F(PropertyTest, ReadsAndWritesThroughTheFunctions) {
    project.SetTitle(L"Quay");
    EXPECT_EQ(TextOf("Project.Title"), L"Quay");
    ASSERT_TRUE(Succeeds(zo::Find("Project.Title")->Set(L"Pier")));
    EXPECT_EQ(project.Title(), L"Pier");
    ASSERT_TRUE(Succeeds(zo::Find("Project.Drilling")->Set(L"Percussion")));
    EXPECT_EQ(project.Drilling(), Method::Percussion);
}

TEST_F(PropertyTest, ResetCallsTheWritingFunction) {
    project.SetTitle(L"Quay");
    project.SetHasWater(true);
    zo::Find("Project")->Clear();
    EXPECT_EQ(project.Title(), L"");
    EXPECT_FALSE(project.water);
    EXPECT_EQ(project.Drilling(), Method::Auger);
}

TEST_F(PropertyTest, FunctionsOutsideTheClassServeToo) {
    project.SetHasWater(true);
    ASSERT_TRUE(Succeeds(zo::Find("Project.Feet")->Set(10)));
    EXPECT_DOUBLE_EQ(project.water->level, 3.048);
    EXPECT_EQ(zo::Find("Project.Feet")->Set(-1).AsWString(), L"-1 is less than 0.");
}

TEST_F(PropertyTest, IsSavedLikeAMember) {
    project.SetTitle(L"Quay");
    project.SetDrilling(Method::Rotary);
    EXPECT_EQ(Body(), L"<Project><HasWater>false</HasWater><Title>Quay</Title><Drilling>Rotary</Drilling></Project>");
    std::wstring const document = Save();
    project.SetTitle(L"");
    project.SetDrilling(Method::Percussion);
    Load(document);
    EXPECT_EQ(project.Title(), L"Quay");
    EXPECT_EQ(project.Drilling(), Method::Rotary);
}

TEST_F(PropertyTest, MakesTheObjectOfABranchBeforeItIsRead) {
    project.SetHasWater(true);
    project.water->level = 2.5;
    project.water->points = {{0, 1}, {5, 2}};
    std::wstring const document = Save();
    project.SetHasWater(false);
    EXPECT_FALSE(zo::Find("Water.Level"));
    Load(document);
    ASSERT_TRUE(project.water);
    EXPECT_EQ(project.water->level, 2.5);
    EXPECT_EQ(project.water->points, (std::vector<Point>{{0, 1}, {5, 2}}));
    EXPECT_EQ(TextOf("Water.Points[1].X"), L"5");
}

TEST_F(PropertyTest, TakesTheObjectOfABranchAway) {
    std::wstring const document = Save();
    project.SetHasWater(true);
    project.water->points.resize(3);
    Load(document);
    EXPECT_FALSE(project.water);
    EXPECT_FALSE(zo::Find("Water"));
}

TEST_F(PropertyTest, LambdasWithoutCapturesServeToo) {
    struct Angle {
        double radians = 0;
    };
    static Angle angle;
    Register({[](Kit& kit) {
        kit.Record<Angle>("Angle")
            .Property<[](Angle const& a) { return a.radians * 100; },
                      [](Angle& a, double value) { a.radians = value / 100; }>("Gon", L"Gon")
            .Computed<[](Angle const& a) { return 1 < a.radians; }>("Large", L"Large");
        kit.Branch<Angle>("Angle", L"Angle", [] { return &angle; });
    }});
    ASSERT_TRUE(Succeeds(zo::Find("Angle.Gon")->Set(250)));
    EXPECT_EQ(angle.radians, 2.5);
    EXPECT_EQ(TextOf("Angle.Large"), L"true");
}

} // namespace
} // namespace site
