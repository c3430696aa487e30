// Links between the parts of a project, and the alias that follows one of them.
#include "examples/slope/Document.h"
#include "examples/slope/Modules.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using example::Holds;
using example::Slope;
using slope::Document;
using slope::Message;

std::string Value(Document& document, std::string const& name) {
    zo::H const node = document.Find(name);
    return node ? slope::ValueText(node) : "<no node>";
}

class LinkTest : public example::ProblemTest {
protected:
    std::string Shown() {
        std::ostringstream out;
        slope::PrintTree(out, document.Root(), document.Units(), 20, document.Aliases());
        return out.str();
    }
};

TEST_F(LinkTest, RegionLeadsToItsMaterial) {
    Import("AT2");
    EXPECT_EQ(Value(document, "Regions[1].Material"), "2");
    EXPECT_EQ(Value(document, "Regions[1].Material.Cohesion"), "9.8");
    zo::H const material = document.Find("Regions[1].Material.@");
    ASSERT_TRUE(material);
    EXPECT_EQ(material->Name(), "Materials[1]");
    ASSERT_FALSE(document.Find("Regions[1].Material.Cohesion")->Set(10.0).IsError());
    EXPECT_EQ(document.Content().materials[1].cohesion, 10);
}

TEST_F(LinkTest, PathOfTagsLeadsThroughALink) {
    Import("AT2");
    zo::H const cohesion = document.FindTag("Regions[2].Material.Cohesion");
    ASSERT_TRUE(cohesion);
    EXPECT_EQ(cohesion->Name(), "Materials[1].Cohesion");
}

TEST_F(LinkTest, PathOfTagsLeadsThroughAnAlias) {
    Import("AT2");
    document.Content().currentAnalysis = 2;
    zo::H const factor = document.FindTag("CurrentAnalysis.FactorOfSafety");
    ASSERT_TRUE(factor);
    EXPECT_EQ(factor->Name(), "Analyses[1].FactorOfSafety");
    EXPECT_FALSE(document.FindTag(""));
    EXPECT_FALSE(document.FindTag("[1]"));
    EXPECT_FALSE(document.FindTag("@Parent"));
}

TEST_F(LinkTest, LinkRefusesARecordThatIsNoMaterial) {
    Import("AT2");
    htl::status const refusal = zo::SetLink(document.Find("Regions[1].Material"), GGID{slope::regionRecords, 3});
    EXPECT_EQ(Message(refusal), "The link refers to a record of another group.");
    EXPECT_EQ(document.Content().regions[1].material, 2);
}

TEST_F(LinkTest, AnalysisLeadsThroughItsRegionToTheSoil) {
    Import("FK1");
    EXPECT_EQ(Value(document, "Analyses[3].Region.Material.Cohesion"), "600");
}

TEST_F(LinkTest, AnalysisOfALayeredSlopeLeadsToNoRegion) {
    Import("AT2"); // the tables don't say through which layers the slip surface goes
    EXPECT_EQ(Value(document, "Analyses[0].Region"), "(none)");
    EXPECT_FALSE(document.Find("Analyses[0].Region.Name"));
}

TEST_F(LinkTest, CurrentAnalysisFollowsItsLink) {
    Import("FK1");
    EXPECT_FALSE(document.Find("CurrentAnalysis.FactorOfSafety"));
    ASSERT_FALSE(document.Find("Project.CurrentAnalysis")->Set(1).IsError());
    EXPECT_EQ(Value(document, "CurrentAnalysis.FactorOfSafety"), "1.928");
    ASSERT_FALSE(document.Find("Project.CurrentAnalysis")->Set(4).IsError());
    EXPECT_EQ(Value(document, "CurrentAnalysis.FactorOfSafety"), "2.073");
    EXPECT_EQ(Value(document, "CurrentAnalysis.Region.Material.Friction"), "20");
}

TEST_F(LinkTest, TreeShowsWhatLinksAndAliasesLeadTo) {
    Import("AT2");
    EXPECT_TRUE(Holds(Shown(), " 2 (Materials[1])\n"));
    EXPECT_TRUE(Holds(Shown(), "stands for nothing now\n"));
    document.Content().currentAnalysis = 2;
    EXPECT_TRUE(Holds(Shown(), " 2 (Analyses[1])\n"));
    EXPECT_TRUE(Holds(Shown(), "stands for Analyses[1]\n"));
    document.Content().regions[2].material = 0;
    EXPECT_TRUE(Holds(Shown(), " (none)\n"));
}

TEST_F(LinkTest, LinksComeBackFromAFile) {
    Import("FK1");
    document.Content().currentAnalysis = 4;
    document.Content().analyses[1].region = 0;
    ASSERT_FALSE(document.Save(File("slope.xml")).IsError());
    EXPECT_FALSE(Holds(example::ReadFile(File("slope.xml")), "<CurrentAnalysis>\n")) << "the alias is not saved";
    Document loaded;
    EXPECT_TRUE(loaded.Load(File("slope.xml")).IsClean());
    EXPECT_EQ(loaded.Content().currentAnalysis, 4);
    EXPECT_EQ(loaded.Content().analyses[0].region, 1);
    EXPECT_EQ(loaded.Content().analyses[1].region, 0);
    EXPECT_EQ(loaded.Content().regions[0].material, 1);
    EXPECT_EQ(slope::CompareTrees(document, loaded).differences, std::vector<std::string>());
}

TEST_F(LinkTest, FileFromBeforeThereWereLinksIsLoaded) {
    example::WriteFile(File("old.xml"), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<HZNData Version=\"1.00\" AppVersion=\"1.0.0.0\">\n"
                                        "  <Project><Name>Old</Name><HasWater>false</HasWater></Project>\n"
                                        "  <Analyses Len=\"1\"><Analysis><Method>Ordinary</Method>"
                                        "<FactorOfSafety>1.2</FactorOfSafety></Analysis></Analyses>\n"
                                        "  <Materials Len=\"1\"><Material><Name>Clay</Name></Material></Materials>\n"
                                        "  <Regions Len=\"2\">"
                                        "<Region><Name>Fill</Name><Material>0</Material></Region>"
                                        "<Region><Name>Ground</Name><Material>1</Material></Region></Regions>\n"
                                        "</HZNData>\n");
    slope::LoadReport const report = document.Load(File("old.xml"));
    EXPECT_FALSE(report.failure.IsError()) << Message(report.failure);
    EXPECT_EQ(report.dropped, std::vector<std::string>());
    EXPECT_EQ(report.invalid, std::vector<std::string>());
    EXPECT_EQ(Value(document, "Project.CurrentAnalysis"), "(none)");
    EXPECT_EQ(Value(document, "Analyses[0].Region"), "(none)");
    EXPECT_EQ(Value(document, "Regions[0].Material"), "(none)");
    EXPECT_EQ(Value(document, "Regions[1].Material.Name"), "Clay");
}

TEST_F(LinkTest, AliasLeadsOnWhereItLedAfterTheWaterIsGone) {
    Import("AT3");
    document.Content().currentAnalysis = 1;
    zo::H const alias = document.Find("CurrentAnalysis");
    EXPECT_EQ(slope::LeadsTo(alias), "Analyses[0]");
    ASSERT_FALSE(document.Find("Project.HasWater")->Set(false).IsError());
    EXPECT_EQ(slope::LeadsTo(alias), "Analyses[0]");
}

class LinkCommandTest : public example::FolderTest {
protected:
    LinkCommandTest() { EXPECT_EQ(Slope({"import", "AT2", file}).exitStatus, 0); }

    std::string file = File("slope.xml");
};

TEST_F(LinkCommandTest, GetWalksThroughLinksAndAliases) {
    EXPECT_EQ(Slope({"get", file, "Regions[2].Material.Cohesion"}).out, "294\n");
    EXPECT_EQ(Slope({"get", file, "CurrentAnalysis.FactorOfSafety"}).err,
              "slope: There is no name CurrentAnalysis.FactorOfSafety in " + file + ".\n");
    EXPECT_EQ(Slope({"set", file, "Project.CurrentAnalysis", "2"}).out, "Project.CurrentAnalysis: (none) -> 2\n");
    EXPECT_EQ(Slope({"get", file, "CurrentAnalysis.FactorOfSafety"}).out, "0.415\n");
    EXPECT_EQ(Slope({"get", file, "Regions[2].Material.@"}).err,
              "slope: Materials[2] has no value of its own; `slope show` lists its parts.\n");
}

TEST_F(LinkCommandTest, ShowTellsWhereTheAliasLeads) {
    EXPECT_TRUE(Holds(Slope({"show", file}).out, "stands for nothing now\n"));
}

TEST_F(LinkCommandTest, CheckTellsLinksToRecordsThatAreGone) {
    ASSERT_EQ(Slope({"set", file, "Project.CurrentAnalysis", "2"}).exitStatus, 0);
    ASSERT_EQ(Slope({"set", file, "Analyses[0].Region", "3"}).exitStatus, 0);
    ASSERT_EQ(Slope({"set", file, "Analyses.Len", "1"}).exitStatus, 0);
    ASSERT_EQ(Slope({"set", file, "Regions.Len", "2"}).exitStatus, 0);
    ASSERT_EQ(Slope({"set", file, "Materials.Len", "1"}).exitStatus, 0);
    example::Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "Region 2 (Layer 2) refers to material 2, but there are 1.\n"
                           "Analysis 1 (Bishop simplified) refers to region 3, but there are 2.\n"
                           "The current analysis is number 2, but there are 1.\n" +
                               file + ": 3 problems\n");
}

TEST_F(LinkCommandTest, NegativeNumberInALinkIsReported) {
    example::Replace(file, "<Material>2</Material>", "<Material>-2</Material>");
    example::Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "Regions[2].Material: -2 is less than 0.\n"));
}

} // namespace
