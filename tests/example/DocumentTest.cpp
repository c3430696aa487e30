#include "examples/slope/Document.h"

#include "examples/slope/Import.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

namespace {

using example::Holds;
using slope::Document;
using slope::LoadReport;
using slope::Message;
using slope::Project;

void Import(Document& document, std::string const& problem) {
    Project project;
    htl::status const failure = slope::ImportProblem(slope::DefaultDataFolder(), problem, project);
    ASSERT_FALSE(failure.IsError()) << Message(failure);
    document.SetContent(std::move(project));
}

std::string Value(Document& document, std::string const& name) {
    zo::H const node = document.Find(name);
    return node ? slope::ValueText(node) : "<no node>";
}

class DocumentTest : public example::FolderTest {
protected:
    void Save(Document& document, std::string const& name = "slope.xml") {
        htl::status const failure = document.Save(File(name));
        ASSERT_FALSE(failure.IsError()) << Message(failure);
    }
    void LoadClean(Document& document, std::string const& name = "slope.xml") {
        LoadReport const report = document.Load(File(name));
        ASSERT_FALSE(report.failure.IsError()) << Message(report.failure);
        EXPECT_EQ(report.dropped, std::vector<std::string>());
        EXPECT_EQ(report.invalid, std::vector<std::string>());
    }
};

class ProblemRoundTripTest : public DocumentTest, public testing::WithParamInterface<char const*> {};

TEST_P(ProblemRoundTripTest, LoadGivesBackWhatWasSaved) {
    Document saved, loaded;
    Import(saved, GetParam());
    Save(saved);
    LoadClean(loaded);
    slope::Comparison const comparison = slope::CompareTrees(saved, loaded);
    EXPECT_GT(comparison.nodes, 50u);
    EXPECT_EQ(comparison.differences, std::vector<std::string>());

    // What the nodes say is one thing, what the application's own fields hold another.
    Project const &before = saved.Content(), &after = loaded.Content();
    EXPECT_EQ(after.title, before.title);
    EXPECT_EQ(after.units, before.units);
    ASSERT_EQ(after.materials.size(), before.materials.size());
    for (std::size_t i = 0; i < before.materials.size(); ++i) {
        EXPECT_EQ(after.materials[i].name, before.materials[i].name);
        EXPECT_EQ(after.materials[i].cohesion, before.materials[i].cohesion);
        EXPECT_EQ(after.materials[i].color, before.materials[i].color);
        EXPECT_EQ(after.materials[i].anisotropy, before.materials[i].anisotropy);
    }
    ASSERT_EQ(after.lines.size(), before.lines.size());
    for (std::size_t i = 0; i < before.lines.size(); ++i) EXPECT_EQ(after.lines[i].points, before.lines[i].points);
    ASSERT_EQ(after.analyses.size(), before.analyses.size());
    for (std::size_t i = 0; i < before.analyses.size(); ++i) {
        EXPECT_EQ(after.analyses[i].factorOfSafety, before.analyses[i].factorOfSafety);
        EXPECT_EQ(after.analyses[i].lambda, before.analyses[i].lambda);
        EXPECT_EQ(after.analyses[i].source, before.analyses[i].source);
    }
    EXPECT_EQ(static_cast<bool>(after.water), static_cast<bool>(before.water));
}

INSTANTIATE_TEST_SUITE_P(Published, ProblemRoundTripTest, testing::Values("AT1", "AT2", "AT3", "FK1", "FK3", "GL1"),
                         [](auto const& problem) { return problem.param; });

TEST_F(DocumentTest, NamesCountFromZeroAndTagsFromOne) {
    Document document;
    Import(document, "AT2");
    EXPECT_EQ(Value(document, "Materials[1].Cohesion"), "9.8");
    zo::H const byTag = document.FindTag("Materials[2].Cohesion");
    ASSERT_TRUE(byTag);
    EXPECT_EQ(byTag->Name(), "Materials[1].Cohesion");
    EXPECT_FALSE(document.Find("Materials[3].Cohesion"));
    EXPECT_FALSE(document.FindTag("Materials[0].Cohesion"));
    EXPECT_FALSE(document.Find("Materials[0].Colour"));
}

TEST_F(DocumentTest, EditReachesTheApplicationsOwnField) {
    Document document;
    Import(document, "AT1");
    ASSERT_FALSE(document.Find("Materials[0].Cohesion")->Set(12.5).IsError());
    ASSERT_FALSE(document.Find("Materials[0].Strength")->Set(L"Undrained").IsError());
    ASSERT_FALSE(document.Find("Lines[0].Points")->Set(L"1,2,4").IsError());
    EXPECT_EQ(document.Content().materials[0].cohesion, 12.5);
    EXPECT_EQ(document.Content().materials[0].strength, slope::StrengthModel::Undrained);
    EXPECT_EQ(document.Content().lines[0].points, (std::vector<int>{1, 2, 4}));
}

TEST_F(DocumentTest, FrictionOutOfItsRangeIsRefusedAndTheOldValueStays) {
    Document document;
    Import(document, "AT1");
    htl::status const refusal = document.Find("Materials[0].Friction")->Set(L"75");
    EXPECT_EQ(Message(refusal), "75 is not between 0 and 60.");
    EXPECT_EQ(document.Content().materials[0].friction, 15);
}

TEST_F(DocumentTest, ComputedValuesFollowTheModelAndCanNotBeSet) {
    Document document;
    Import(document, "AT2");
    EXPECT_EQ(Value(document, "Project.SlopeHeight"), "20");
    EXPECT_EQ(Value(document, "Project.PointCount"), "8");
    document.Content().points[2].y = 45;
    EXPECT_EQ(Value(document, "Project.SlopeHeight"), "30"); // 45 - 15
    EXPECT_TRUE(document.Find("Project.SlopeHeight")->Set(7.0).IsError());
    Save(document);
    EXPECT_FALSE(Holds(example::ReadFile(File("slope.xml")), "SlopeHeight"));
}

TEST_F(DocumentTest, WaterBranchComesAndGoesWithItsProperty) {
    Document document;
    Import(document, "AT1");
    EXPECT_FALSE(document.Find("Water"));
    EXPECT_FALSE(document.Find("Water.Kind"));
    EXPECT_EQ(Value(document, "Project.HasWater"), "false");

    ASSERT_FALSE(document.Find("Project.HasWater")->Set(true).IsError());
    ASSERT_TRUE(document.Content().water);
    EXPECT_EQ(Value(document, "Water.PorePressureRatio"), "(missing)");
    ASSERT_FALSE(document.Find("Water.PorePressureRatio")->Set(0.25).IsError());
    EXPECT_EQ(document.Content().water->porePressureRatio, 0.25);

    ASSERT_FALSE(document.Find("Project.HasWater")->Set(false).IsError());
    EXPECT_FALSE(document.Content().water);
    EXPECT_FALSE(document.Find("Water.PorePressureRatio"));
}

TEST_F(DocumentTest, FileWithWaterGivesWaterToADryDocument) {
    Document wet, other;
    Import(wet, "AT3");
    Import(other, "AT1");
    Save(wet);
    LoadClean(other);
    ASSERT_TRUE(other.Content().water);
    EXPECT_EQ(other.Content().water->porePressureRatio, slope::missing);
    ASSERT_EQ(other.Content().water->points.size(), 5u);
    EXPECT_EQ(other.Content().water->points[2].y, 23);
}

TEST_F(DocumentTest, FileWithoutWaterTakesItFromAWetDocument) {
    Document dry, other;
    Import(dry, "AT1");
    Import(other, "AT3");
    Save(dry);
    LoadClean(other);
    EXPECT_FALSE(other.Content().water);
    EXPECT_FALSE(Holds(example::ReadFile(File("slope.xml")), "<Water>"));
}

TEST_F(DocumentTest, EmptyProjectSurvives) {
    Document saved, loaded;
    Import(loaded, "FK3");
    Save(saved);
    LoadClean(loaded);
    EXPECT_EQ(slope::CompareTrees(saved, loaded).differences, std::vector<std::string>());
    EXPECT_TRUE(loaded.Content().materials.empty());
    EXPECT_TRUE(loaded.Content().analyses.empty());
}

TEST_F(DocumentTest, TextsSurviveWhateverTheyHold) {
    Document saved, loaded;
    Import(saved, "AT1");
    saved.Content().title = "Böschung <\"A\" & 'B'>, γ = 18.82,\n\tzweite Zeile ";
    saved.Content().materials[0].name = "   ";
    saved.Content().lines[0].name = "";
    Save(saved);
    LoadClean(loaded);
    EXPECT_EQ(loaded.Content().title, saved.Content().title);
    EXPECT_EQ(loaded.Content().materials[0].name, "   ");
    EXPECT_EQ(loaded.Content().lines[0].name, "");
}

TEST_F(DocumentTest, NumbersSurviveToTheLastBit) {
    Document saved, loaded;
    Import(saved, "AT1");
    slope::Material& material = saved.Content().materials[0];
    material.cohesion = 0.1 + 0.2;
    material.unitWeight = 5e-324;
    material.color = 0xFFFFFF;
    material.anisotropy = {1.0 / 3, 0, 1, 0.5};
    Save(saved);
    LoadClean(loaded);
    EXPECT_EQ(loaded.Content().materials[0].cohesion, 0.1 + 0.2);
    EXPECT_EQ(loaded.Content().materials[0].unitWeight, 5e-324);
    EXPECT_EQ(loaded.Content().materials[0].color, 0xFFFFFFu);
    EXPECT_EQ(loaded.Content().materials[0].anisotropy, material.anisotropy);
}

TEST_F(DocumentTest, DocumentsStandSideBySide) {
    Document metric, imperial;
    Import(metric, "AT1");
    Import(imperial, "FK1");
    EXPECT_EQ(Value(metric, "Materials[0].Cohesion"), "41.65");
    EXPECT_EQ(Value(imperial, "Materials[0].Cohesion"), "600");
    EXPECT_EQ(Value(metric, "Project.Units"), "Metric");
    EXPECT_EQ(Value(imperial, "Project.Units"), "Imperial");
    EXPECT_EQ(slope::UnitText(metric.Find("Materials[0].Cohesion"), metric.Units()), "kPa");
    EXPECT_EQ(slope::UnitText(imperial.Find("Materials[0].Cohesion"), imperial.Units()), "psf");
}

TEST_F(DocumentTest, ProjectStandsFirstInTheFile) {
    Document document;
    Import(document, "AT3");
    Save(document);
    std::string const text = example::ReadFile(File("slope.xml"));
    std::size_t const project = text.find("<Project>");
    ASSERT_NE(project, std::string::npos);
    // A load must know that there is water before it comes to the water.
    EXPECT_LT(project, text.find("<HasWater>"));
    EXPECT_LT(text.find("<HasWater>"), text.find("<Water>"));
    EXPECT_LT(project, text.find("<Analyses"));
}

TEST_F(DocumentTest, LoadOfAMissingFileFails) {
    Document document;
    EXPECT_TRUE(document.Load(File("absent.xml")).failure.IsError());
}

TEST_F(DocumentTest, DocumentOfAnotherKindIsToldByItsMissingVersion) {
    example::WriteFile(File("drawing.xml"), "<svg/>");
    Document document;
    LoadReport const report = document.Load(File("drawing.xml"));
    EXPECT_EQ(report.dropped, std::vector<std::string>{"The document has no version, so it may be no slope project."});
}

TEST_F(DocumentTest, DocumentOfALaterVersionIsTold) {
    Document document;
    Save(document);
    example::Replace(File("slope.xml"), " Version=\"1.00\"", " Version=\"1.05\"");
    LoadReport const report = document.Load(File("slope.xml"));
    EXPECT_EQ(report.dropped, std::vector<std::string>{"The document's format is version 1.05, and this application "
                                                       "knows 1 and below."});
}

} // namespace
