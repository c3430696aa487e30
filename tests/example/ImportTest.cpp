#include "examples/slope/Import.h"

#include "examples/slope/Text.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

namespace {

using slope::DefaultDataFolder;
using slope::FactorSource;
using slope::LineRole;
using slope::Message;
using slope::Project;

Project Import(std::string const& problem) {
    Project project;
    htl::status const failure = slope::ImportProblem(DefaultDataFolder(), problem, project);
    EXPECT_FALSE(failure.IsError()) << Message(failure);
    return project;
}

TEST(ImportTest, SixProblemsAreListedInTheOrderOfTheTable) {
    std::vector<std::string> names;
    ASSERT_FALSE(slope::ListProblems(DefaultDataFolder(), names).IsError());
    EXPECT_EQ(names, (std::vector<std::string>{"AT1", "AT2", "AT3", "FK1", "FK3", "GL1"}));
}

TEST(ImportTest, HomogeneousSlopeHasOneLayerAndNoWater) {
    Project const project = Import("AT1");
    EXPECT_EQ(project.title, "Arai and Tagyo 1985 example 1, homogeneous");
    EXPECT_EQ(project.units, slope::UnitSystem::Metric);
    EXPECT_EQ(project.settings.seismicCoefficient, 0);
    ASSERT_EQ(project.materials.size(), 1u);
    EXPECT_EQ(project.materials[0].cohesion, 41.65);
    EXPECT_EQ(project.materials[0].friction, 15);
    EXPECT_EQ(project.materials[0].unitWeight, 18.82);
    ASSERT_EQ(project.points.size(), 4u);
    EXPECT_EQ(project.points[2].x, 48);
    EXPECT_EQ(project.points[2].y, 35);
    ASSERT_EQ(project.lines.size(), 1u);
    EXPECT_EQ(project.lines[0].role, LineRole::Ground);
    EXPECT_EQ(project.lines[0].points, (std::vector<int>{1, 2, 3, 4}));
    ASSERT_EQ(project.regions.size(), 1u);
    EXPECT_EQ(project.regions[0].lines, std::vector<int>{1});
    EXPECT_FALSE(project.water);
    ASSERT_EQ(project.analyses.size(), 2u);
    EXPECT_EQ(project.analyses[0].factorOfSafety, 1.451);
    EXPECT_EQ(project.analyses[0].source, FactorSource::Published);
    EXPECT_EQ(project.analyses[1].factorOfSafety, 1.4);
    EXPECT_EQ(project.analyses[1].source, FactorSource::Recomputed);
    EXPECT_EQ(slope::SlopeHeight(project), 20); // 35 - 15
    EXPECT_EQ(slope::PublishedFactors(project).lowest, 1.451);
    EXPECT_EQ(slope::PublishedFactors(project).highest, 1.451);
}

TEST(ImportTest, LayersLieBetweenTheirLines) {
    Project const project = Import("AT2");
    ASSERT_EQ(project.materials.size(), 3u);
    EXPECT_EQ(project.materials[1].name, "Layer 2");
    EXPECT_EQ(project.materials[1].cohesion, 9.8);
    EXPECT_EQ(project.materials[1].friction, 5);
    EXPECT_EQ(project.materials[2].cohesion, 294);
    ASSERT_EQ(project.lines.size(), 3u);
    EXPECT_EQ(project.lines[1].name, "base1");
    EXPECT_EQ(project.lines[1].role, LineRole::LayerBottom);
    EXPECT_EQ(project.lines[2].points, (std::vector<int>{7, 8})); // behind 4 points of the ground and 2 of base1
    ASSERT_EQ(project.points.size(), 8u);
    EXPECT_EQ(project.points[4].x, 24);
    EXPECT_EQ(project.points[7].y, 25);
    ASSERT_EQ(project.regions.size(), 3u);
    EXPECT_EQ(project.regions[0].lines, (std::vector<int>{1, 2}));
    EXPECT_EQ(project.regions[1].lines, (std::vector<int>{2, 3}));
    EXPECT_EQ(project.regions[1].material, 2);
    EXPECT_EQ(project.regions[2].lines, std::vector<int>{3});
    EXPECT_EQ(project.analyses[0].factorOfSafety, 0.417);
}

TEST(ImportTest, PiezometricLineBecomesTheWaterTable) {
    Project const project = Import("AT3");
    ASSERT_TRUE(project.water);
    EXPECT_EQ(project.water->kind, slope::WaterKind::PiezometricLine);
    EXPECT_EQ(project.water->porePressureRatio, slope::missing);
    ASSERT_EQ(project.water->points.size(), 5u);
    EXPECT_EQ(project.water->points[2].x, 30);
    EXPECT_EQ(project.water->points[2].y, 23);
    EXPECT_EQ(project.points.size(), 4u); // the ground's alone
    EXPECT_EQ(project.analyses[1].factorOfSafety, 1.109);
}

TEST(ImportTest, FeetAndPoundsStayWhatTheyAre) {
    Project const project = Import("FK1");
    EXPECT_EQ(project.title, "Fredlund and Krahn 1977 case 1, simple 2:1 slope");
    EXPECT_EQ(project.units, slope::UnitSystem::Imperial);
    EXPECT_EQ(project.materials[0].cohesion, 600);
    EXPECT_EQ(project.materials[0].unitWeight, 120);
    ASSERT_EQ(project.slipCircles.size(), 1u);
    EXPECT_EQ(project.slipCircles[0].centre.x, 120);
    EXPECT_EQ(project.slipCircles[0].centre.y, 90);
    EXPECT_EQ(project.slipCircles[0].radius, 80);
    ASSERT_EQ(project.analyses.size(), 7u);
    EXPECT_EQ(project.analyses[2].method, "Janbu simplified (corrected)");
    EXPECT_EQ(project.analyses[2].lambda, slope::missing);
    EXPECT_EQ(project.analyses[3].method, "Spencer");
    EXPECT_EQ(project.analyses[3].factorOfSafety, 2.073);
    EXPECT_EQ(project.analyses[3].lambda, 0.237);
    EXPECT_FALSE(project.water);
    EXPECT_EQ(slope::SlopeHeight(project), 40); // 60 - 20
}

TEST(ImportTest, PorePressureRatioBecomesTheWaterTable) {
    Project const project = Import("FK3");
    ASSERT_TRUE(project.water);
    EXPECT_EQ(project.water->kind, slope::WaterKind::PorePressureRatio);
    EXPECT_EQ(project.water->porePressureRatio, 0.25);
    EXPECT_TRUE(project.water->points.empty());
    EXPECT_EQ(project.analyses[3].lambda, 0.255);
}

TEST(ImportTest, SlopeWithoutFoundationLayer) {
    Project const project = Import("GL1");
    EXPECT_EQ(project.materials[0].cohesion, 10);
    EXPECT_EQ(project.materials[0].friction, 20);
    EXPECT_EQ(project.points[3].x, 50);
    ASSERT_EQ(project.analyses.size(), 3u);
    EXPECT_EQ(project.analyses[0].method, "Finite element strength reduction");
    EXPECT_EQ(slope::SlopeHeight(project), 10);
    EXPECT_EQ(slope::PublishedFactors(project).lowest, 1.38); // from charts
    EXPECT_EQ(slope::PublishedFactors(project).highest, 1.4); // by finite elements
}

TEST(ImportTest, UnknownProblemIsRefusedWithTheNamesThereAre) {
    Project project;
    project.name = "mine";
    EXPECT_EQ(Message(slope::ImportProblem(DefaultDataFolder(), "AT9", project)),
              "There is no problem \"AT9\". There are AT1, AT2, AT3, FK1, FK3, GL1.");
    EXPECT_EQ(project.name, "mine");
}

TEST(ImportTest, BrokenReferencesAreTold) {
    Project project = Import("AT2");
    EXPECT_TRUE(slope::BrokenReferences(project).empty());
    project.lines[0].points[1] = 9;
    project.regions[2].material = 4;
    project.regions[2].lines = {0};
    EXPECT_EQ(slope::BrokenReferences(project),
              (std::vector<std::string>{"Line 1 (ground) refers to point 9, but there are 8.",
                                        "Region 3 (Layer 3) refers to material 4, but there are 3.",
                                        "Region 3 (Layer 3) refers to line 0, but there are 3."}));
}

/// The tables of the application, to be spoilt.
class SpoiltTablesTest : public example::FolderTest {
protected:
    SpoiltTablesTest() {
        for (std::string const name : {"problems.csv", "lines.csv", "materials.csv", "reference_fos.csv"})
            example::WriteFile(File(name), example::ReadFile(DefaultDataFolder() + "/" + name));
    }
    /// The refusal, less the folder's name, of importing a problem when `from` reads `to` in a table.
    std::string Refusal(std::string const& problem, std::string const& table, std::string const& from,
                        std::string const& to) {
        example::Replace(File(table), from, to);
        Project project;
        project.name = "mine";
        std::string const message = Message(slope::ImportProblem(folder, problem, project));
        EXPECT_EQ(project.name, "mine");
        return message.starts_with(folder + "/") ? message.substr(folder.size() + 1) : message;
    }
};

TEST_F(SpoiltTablesTest, NumberThatIsNoneIsRefused) {
    EXPECT_EQ(Refusal("AT2", "materials.csv", "AT2,2,9.8", "AT2,2,9;8"),
              "materials.csv, line 4: cohesion \"9;8\" is no number.");
}

TEST_F(SpoiltTablesTest, NegativeStrengthIsRefused) {
    EXPECT_EQ(Refusal("AT2", "materials.csv", "AT2,2,9.8,5", "AT2,2,9.8,-5"),
              "materials.csv, line 4: friction_deg \"-5\" is negative.");
}

TEST_F(SpoiltTablesTest, MissingLayerIsRefused) {
    EXPECT_EQ(Refusal("AT2", "materials.csv", "AT2,2,", "AT2,4,"),
              "materials.csv, line 4: layer \"4\" isn't the next layer, which is 2.");
}

TEST_F(SpoiltTablesTest, MissingPointIsRefused) {
    EXPECT_EQ(Refusal("AT3", "lines.csv", "AT3,piezo,piezometric line,3,30,23\n", ""),
              "lines.csv, line 20: point \"4\" isn't the next point, which is 3.");
}

TEST_F(SpoiltTablesTest, UnknownLineIsRefused) {
    EXPECT_EQ(Refusal("AT2", "lines.csv", "AT2,base2,bottom of layer 2,1,", "AT2,base2,bottom of layer 7,1,"),
              "lines.csv, line 12: role \"bottom of layer 7\" is no kind of line that is known.");
}

TEST_F(SpoiltTablesTest, WaterLineOfDryProblemIsRefused) {
    EXPECT_EQ(Refusal("AT3", "problems.csv", "0,piezometric line,", "0,none,"),
              "lines.csv, line 18: role \"piezometric line\" belongs to a problem without water.");
}

TEST_F(SpoiltTablesTest, UnknownWaterIsRefused) {
    EXPECT_EQ(Refusal("FK3", "problems.csv", "ru=0.25", "ru=2.5"),
              "problems.csv, line 6: water \"ru=2.5\" is none of \"none\", \"piezometric line\" and \"ru=\" with a "
              "ratio from 0 to 1.");
}

TEST_F(SpoiltTablesTest, MixedUnitsAreRefused) {
    EXPECT_EQ(Refusal("GL1", "problems.csv", "no foundation layer\",m,kPa", "no foundation layer\",m,psi"),
              "problems.csv, line 7: stress_unit \"psi\" doesn't go with lengths in m.");
}

TEST_F(SpoiltTablesTest, UnknownKindOfFactorIsRefused) {
    EXPECT_EQ(Refusal("GL1", "reference_fos.csv", "1.366,,recomputed", "1.366,,guessed"),
              "reference_fos.csv, line 24: kind \"guessed\" is neither published nor recomputed.");
}

TEST_F(SpoiltTablesTest, ProblemWithoutGroundIsRefused) {
    EXPECT_EQ(Refusal("GL1", "lines.csv",
                      "GL1,ground,ground surface,1,0,10\nGL1,ground,ground surface,2,10,10\n"
                      "GL1,ground,ground surface,3,30,20\nGL1,ground,ground surface,4,50,20\n",
                      ""),
              "lines.csv: problem GL1 has no ground surface.");
}

} // namespace
