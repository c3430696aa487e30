#include "examples/slope/Display.h"
#include "examples/slope/TableText.h"
#include "examples/slope/Text.h"
#include "tests/example/Support.h"

#include <zo/zo.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace {

using example::Holds;
using slope::Document;
using slope::Language;

int Query(int view) { return view | zo::visible::Mask(hzn::apptype::Any) | zo::visible::Mask(hzn::appmode::Any); }

/// Works on a slope with water, an aquifer and a current analysis, so that all of the table has something to speak for.
class TableOfSlopeTest : public testing::Test {
protected:
    TableOfSlopeTest() { Open(Language::English); }

    void Open(Language language) {
        document.emplace(language);
        slope::Project project;
        project.name = "Dam";
        project.materials.resize(1);
        project.materials[0].name = "Clay";
        project.materials[0].cohesion = 25;
        project.materials[0].color = 0x0000FF; // red
        project.regions.push_back({"Core", 1, {}});
        project.analyses.push_back({.method = "Bishop", .region = 1, .factorOfSafety = 1.4});
        project.currentAnalysis = 1;
        project.points.resize(1);
        project.slipCircles.push_back({{1, 2}, 3});
        project.water = std::make_unique<slope::WaterTable>();
        project.aquifer = std::make_unique<slope::Aquifer>();
        document->SetContent(std::move(project));
        failure = document->Present();
    }

    /// The names of what a node shows, "" for the root.
    std::vector<std::string> Shown(std::string const& name, int view = slope::propertyView) {
        zo::H const node = name.empty() ? document->Root() : document->Find(name);
        std::vector<std::string> names;
        for (zo::H const& child : zo::view::Children(node, Query(view))) names.push_back(child->Name());
        return names;
    }
    bool Shows(std::string const& parent, std::string const& child, int view = slope::propertyView) {
        std::vector<std::string> const names = Shown(parent, view);
        return std::find(names.begin(), names.end(), child) != names.end();
    }

    std::optional<Document> document;
    htl::status failure;
};

TEST_F(TableOfSlopeTest, CompilesWithoutAMessageInEachLanguage) {
    EXPECT_FALSE(failure.IsError()) << slope::Message(failure);
    Open(Language::German);
    EXPECT_EQ(failure.AsWString(), L"");
}

TEST_F(TableOfSlopeTest, HasARowForEachFieldAndEachTextInBothLanguages) {
    Open(Language::German);
    zo::TableReport const report = zo::CheckTable();
    EXPECT_TRUE(report.IsClean()) << slope::Narrow(report.Text());
    EXPECT_TRUE(report.hasSecondTable);
}

TEST_F(TableOfSlopeTest, CommandFindsNothingWrong) {
    example::Outcome const outcome = example::Slope({"table"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.err, "");
    // Counted by branch: 15 of the project, the current analysis, 10 of materials, 6 of regions, 6 of lines, 4 of
    // points, 6 of slip circles, 7 of analyses, 7 of the water and 12 of the aquifer.
    EXPECT_EQ(outcome.out, "79 fields, 76 entries, two languages.\n");
}

TEST_F(TableOfSlopeTest, DeclaresAsManyRowsAsItHas) {
    for (std::string_view const table : {slope::EnglishTable(), slope::GermanTable()}) {
        std::size_t rows = 0;
        for (std::size_t at = table.find("<Entry "); at != table.npos; at = table.find("<Entry ", at + 1)) ++rows;
        EXPECT_TRUE(Holds(std::string(table), "<Meta_ExtendedInfo Len=\"" + std::to_string(rows) + "\">"));
    }
}

TEST_F(TableOfSlopeTest, RootShowsBranchesInTheOrderOfTheTable) {
    EXPECT_EQ(Shown(""), (std::vector<std::string>{"Project", "Materials", "Regions", "Lines", "Points", "SlipCircles",
                                                   "Analyses", "Aquifer"}));
}

TEST_F(TableOfSlopeTest, WaterIsMovedIntoTheProject) {
    EXPECT_TRUE(Shows("Project", "Water"));
    EXPECT_FALSE(Shows("", "Water"));
    document->Content().water = nullptr;
    zo::ZORegistry::Instance()->InvalidateMemory("");
    EXPECT_FALSE(Shows("Project", "Water"));
}

TEST_F(TableOfSlopeTest, SettingsShowAmongTheFieldsOfTheProject) {
    EXPECT_TRUE(Shows("Project", "Project.Settings.Tolerance"));
    EXPECT_FALSE(Shows("Project", "Project.Settings"));
}

TEST_F(TableOfSlopeTest, CircleShowsItsCentreByCoordinates) {
    EXPECT_EQ(Shown("SlipCircles[0]"), (std::vector<std::string>{"SlipCircles[0].Centre.X", "SlipCircles[0].Centre.Y",
                                                                 "SlipCircles[0].Radius"}));
    EXPECT_EQ(zo::Label(document->Find("SlipCircles[0].Centre.Y")), L"Centre y");
    EXPECT_EQ(zo::Label(document->Find("Points[0].Y")), L"y");
}

TEST_F(TableOfSlopeTest, CurrentFactorShowsInTheProjectAndInItsAnalysis) {
    EXPECT_TRUE(Shows("Analyses[0]", "Analyses[0].FactorOfSafety"));
    ASSERT_TRUE(Shows("Project", "Project.FactorOfSafety"));
    EXPECT_EQ(zo::PrettyPrintValue("Project.FactorOfSafety"), L"1.4");
    document->Content().analyses[0].factorOfSafety = 1.25;
    EXPECT_EQ(zo::PrettyPrintValue("Project.FactorOfSafety"), L"1.25");
}

TEST_F(TableOfSlopeTest, ProjectWithoutACurrentAnalysisShowsNoFactor) {
    document->Content().currentAnalysis = 0;
    EXPECT_FALSE(Shows("Project", "Project.FactorOfSafety"));
}

TEST_F(TableOfSlopeTest, RegionShowsTheCohesionOfItsMaterialAndEditsIt) {
    zo::H const cohesion = document->Find("Regions[0].Cohesion");
    ASSERT_TRUE(cohesion);
    EXPECT_EQ(zo::PrettyPrintValueWithUnits(cohesion), L"25 kPa");
    EXPECT_FALSE(zo::SetPrettyPrintValue(cohesion, L"30 kPa").IsError());
    EXPECT_EQ(document->Content().materials[0].cohesion, 30);
}

TEST_F(TableOfSlopeTest, RegionHasTheColourOfItsMaterial) {
    EXPECT_EQ(zo::Color(document->Find("Regions[0]")), 0x0000FFu);
    EXPECT_EQ(zo::Color(document->Find("Materials[0]")), 0x0000FFu);
}

TEST_F(TableOfSlopeTest, LabelsAndNamesAreComposedOfValues) {
    EXPECT_EQ(zo::Label("Project"), L"Project Dam");
    EXPECT_EQ(zo::PrettyPrintName(document->Find("Materials[0].Cohesion"), L'.'), L" Material  \"Clay\" .Cohesion");
    EXPECT_EQ(zo::PrettyPrintNameValue(document->Find("Regions[0]")), L"Region Core");
    EXPECT_EQ(zo::PrettyPrintNameValue(document->Find("SlipCircles[0]")), L"Slip circle 1");
}

TEST_F(TableOfSlopeTest, LinksPrintWhatTheyLeadTo) {
    EXPECT_EQ(zo::PrettyPrintValue("Regions[0].Material"), L"Clay");
    EXPECT_EQ(zo::PrettyPrintValue("Analyses[0].Region"), L"Core");
    EXPECT_EQ(zo::PrettyPrintValue("Project.CurrentAnalysis"), L"Bishop");
}

TEST_F(TableOfSlopeTest, AcceleratorsAreOnlyInLabelsForMenus) {
    EXPECT_EQ(zo::Label("Materials[0].Cohesion"), L"Cohesion");
    EXPECT_EQ(zo::LabelWithAccel("Materials[0].Cohesion"), L"&Cohesion");
}

TEST_F(TableOfSlopeTest, GermanTextsLieOverTheEnglishOnes) {
    Open(Language::German);
    EXPECT_EQ(zo::Label("Materials[0].Cohesion"), L"Kohäsion");
    EXPECT_EQ(zo::Description(document->Find("Materials[0].Cohesion")), L"Festigkeit ohne Auflast.");
    EXPECT_EQ(zo::Label("Project"), L"Projekt Dam");
    EXPECT_EQ(zo::PrettyPrintValue("Materials[0].Strength"), L"Kohäsion und Reibung");
    // What the second table doesn't tell is that of the first.
    EXPECT_TRUE(Shows("Project", "Water"));
    EXPECT_EQ(zo::Style(document->Find("Materials")), zo::style::table);
}

TEST_F(TableOfSlopeTest, StyleTellsHeadersTablesAndLines) {
    EXPECT_EQ(zo::Style(document->Find("Project")), zo::style::header);
    EXPECT_EQ(zo::Style(document->Find("Analyses")), zo::style::table);
    EXPECT_EQ(zo::Style(document->Find("Project.Title")), zo::style::text);
}

} // namespace
