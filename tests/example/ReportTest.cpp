#include "examples/slope/Report.h"

#include "examples/slope/CrossSection.h"
#include "examples/slope/Html.h"
#include "examples/slope/Import.h"
#include "tests/example/Support.h"

#include "support/locale.h"
#include "support/xml/XmlFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <optional>

namespace {

using example::Expected;
using example::Holds;
using example::Outcome;
using example::ReadFile;
using example::Slope;
using example::WriteFile;
using slope::Document;
using slope::Language;

/// The page without its style sheet, which says nothing of the project.
std::string WithoutStyle(std::string page) {
    std::size_t const begin = page.find("<style>") + 7, end = page.find("</style>");
    return end == std::string::npos ? page : page.erase(begin, end - begin);
}

class ReportCommandTest : public example::FileTest {
protected:
    std::string page = File("slope.html");
};

/// Works on the page of a project.
class ReportTest : public testing::Test {
protected:
    ReportTest() : notation(str::locale::SetNative(str::locale::ID::Classic())) {
        project.name = "Dam";
        project.points = {{0, 10}, {10, 10}, {30, 20}, {50, 20}};
        project.lines.push_back({"ground", slope::LineRole::Ground, {1, 2, 3, 4}});
        project.materials.resize(1);
        project.materials[0].name = "Clay";
        project.materials[0].color = 0x0000FF;
        project.regions.push_back({"Fill", 1, {1}});
    }
    ~ReportTest() override { str::locale::SetNative(notation); }

    std::string Page(Language language = Language::English, std::optional<slope::UnitSystem> units = {}) {
        Document document(language);
        document.SetContent(std::move(project));
        htl::status const failure = document.Present(units);
        EXPECT_FALSE(failure.IsError());
        return ReportPage(document, "dam.xml");
    }

    slope::Project project;
    str::locale::ID notation;
};

TEST_F(ReportCommandTest, WritesThePage) {
    file = File("GL1.xml");
    Import("GL1");
    Outcome const outcome = Slope({"report", file, page});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "The report is in " + page + "\n");
    EXPECT_EQ(WithoutStyle(ReadFile(page)), Expected("GL1.report.html"));
}

TEST_F(ReportCommandTest, PagesAreWellFormedAndNeedNothingElse) {
    for (std::string const problem : {"AT1", "AT2", "AT3", "FK1", "FK3", "GL1"}) {
        Import(problem);
        for (std::vector<std::string> const& options :
             {std::vector<std::string>{}, {"--lang", "de"}, {"--units", "si"}, {"--units", "us"}}) {
            std::vector<std::string> words{"report", file, page};
            words.insert(words.end(), options.begin(), options.end());
            ASSERT_EQ(Slope(words).exitStatus, 0);
            std::string const text = ReadFile(page);
            std::string const doctype = "<!DOCTYPE html>\n";
            ASSERT_EQ(text.substr(0, doctype.size()), doctype);
            std::vector<unsigned char> const rest(text.begin() + static_cast<std::ptrdiff_t>(doctype.size()),
                                                  text.end());
            htl::status const failure = sys::file::XmlStringRead(rest, {});
            EXPECT_FALSE(failure.IsError()) << problem << str::as_cstring(failure.AsWString());
            for (std::string const part : {"http:", "https:", "<script", "src=", "@import"})
                EXPECT_FALSE(Holds(text, part)) << problem;
        }
    }
}

TEST_F(ReportCommandTest, LayersAreFilledBetweenTheirLinesToScale) {
    Import("AT2");
    ASSERT_EQ(Slope({"report", file, page}).exitStatus, 0);
    std::string const text = ReadFile(page);
    // 66 m wide and, with 12 % of 32 m below the lowest point at 3 m, 35.84 m high: 760 / 66 = 11.515 pixels a metre.
    // x = 64 + 11.515 x, y = 20 + 11.515 (35 - y). The upper layer ends where its bottom meets the ground at x = 24.
    EXPECT_TRUE(Holds(text, "style=\"fill:#C8A165\" d=\"M64.0 250.3L271.3 250.3L616.7 20.0L824.0 20.0L824.0 43.0L340.4 "
                            "204.2L271.3 250.3L64.0 250.3Z\""));
    EXPECT_TRUE(Holds(text,
                      "style=\"fill:#8C6D46\" d=\"M64.0 250.3L271.3 250.3L340.4 204.2L824.0 43.0L824.0 135.2L64.0 "
                      "388.5Z\""));
    // The lowest layer has no bottom: it reaches down to the edge, at -0.84 m.
    EXPECT_TRUE(Holds(text, "style=\"fill:#5E6B73\" d=\"M64.0 388.5L824.0 135.2L824.0 432.7L64.0 432.7Z\""));
}

TEST_F(ReportCommandTest, SlipCircleLeavesTheGroundWhereGeometrySays) {
    Import("FK1");
    ASSERT_EQ(Slope({"report", file, page}).exitStatus, 0);
    std::string const text = ReadFile(page);
    // 200 ft wide: 3.8 pixels a foot; the top is the centre at 90 ft. The circle of 80 ft around (120, 90) cuts the
    // ground at 60 ft at x = 120 - sqrt(80^2 - 30^2) = 45.838, and at 20 ft at x = 120 + sqrt(80^2 - 70^2) = 158.730.
    EXPECT_TRUE(Holds(text, "<path class=\"radius\" d=\"M238.2 134.0L520.0 20.0L667.2 286.0\"/>"));
    EXPECT_TRUE(Holds(text, "<circle class=\"slip\" clip-path=\"url(#below-ground)\" cx=\"520.0\" cy=\"20.0\" "
                            "r=\"304.0\"/>"));
    EXPECT_TRUE(Holds(text, "</span>Slip circle 1</li>"));
    EXPECT_TRUE(Holds(text, "<th scope=\"row\">Slip circle 1</th><td class=\"number\">120</td><td class=\"number\">90"
                            "</td><td class=\"number\">80</td>"));
}

TEST_F(ReportCommandTest, AxesAreInTheUnitsAskedFor) {
    Import("FK1");
    ASSERT_EQ(Slope({"report", file, page, "--units", "si"}).exitStatus, 0);
    std::string const text = ReadFile(page);
    EXPECT_TRUE(Holds(text, ">Distance in m</text>"));
    EXPECT_TRUE(Holds(text, "text-anchor=\"middle\">60</text>")); // of 60.96 m
    EXPECT_FALSE(Holds(text, "text-anchor=\"middle\">65</text>"));
    EXPECT_TRUE(Holds(text, "Cohesion <span class=\"unit\">kPa</span>"));
    EXPECT_TRUE(Holds(text, "<td class=\"number\">28.7282</td>"));
}

TEST_F(ReportCommandTest, FactorsStandByMethodAndSource) {
    Import("FK3");
    ASSERT_EQ(Slope({"report", file, page}).exitStatus, 0);
    std::string const text = ReadFile(page);
    EXPECT_TRUE(Holds(text, "<tr><th scope=\"row\">Bishop simplified</th><td class=\"number\">1.766</td><td "
                            "class=\"number\">–</td><td class=\"number\">1.756</td></tr>"));
    EXPECT_TRUE(Holds(text, "<tr><th scope=\"row\">Spencer</th><td class=\"number\">1.761</td><td "
                            "class=\"number\">0.255</td><td class=\"number\">–</td></tr>"));
    EXPECT_TRUE(Holds(text, "<li>Pore pressure ratio 0.25</li>"));
}

TEST_F(ReportCommandTest, GermanPageIsGermanThroughout) {
    Import("AT3");
    ASSERT_EQ(Slope({"report", file, page, "--lang", "de"}).exitStatus, 0);
    std::string const text = ReadFile(page);
    for (std::string const part : {"<html lang=\"de\">", "<h2>Projekt AT3</h2>", "<dd>Meter, Kilopascal</dd>",
                                   "Querschnitt von AT3, maßstäblich", ">Höhe in m</text>", "Piezometerlinie</li>",
                                   "<td class=\"number\">41,65</td>", "Erstellt aus slope.xml."})
        EXPECT_TRUE(Holds(text, part));
    for (std::string const part : {"Cohesion", "Ground", "Published", "Project", "Made from", "41.65"})
        EXPECT_FALSE(Holds(text, part));
}

TEST_F(ReportCommandTest, WaterLineIsDrawn) {
    Import("AT3");
    ASSERT_EQ(Slope({"report", file, page}).exitStatus, 0);
    // 760 / 66 pixels a metre, the top at 35 m.
    EXPECT_TRUE(Holds(ReadFile(page), "<path class=\"water\" d=\"M64.0 250.3L271.3 250.3L409.5 158.2L616.7 89.1L824.0 "
                                      "54.5\"/>"));
}

TEST_F(ReportCommandTest, PageThatCannotBeWrittenIsAProblem) {
    Import("AT1");
    Outcome const outcome = Slope({"report", file, File("absent/slope.html")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(Holds(outcome.err, File("absent/slope.html")));
    std::filesystem::create_directory(page);
    EXPECT_EQ(Slope({"report", file, page}).exitStatus, 1);
    EXPECT_TRUE(std::filesystem::is_directory(page));
}

TEST_F(ReportCommandTest, PageStaysWhereTheProjectCannotBeLoaded) {
    WriteFile(page, "the page of yesterday");
    WriteFile(file, "<HZNData Version=\"1.00\"><Project>");
    Outcome const outcome = Slope({"report", file, page});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(Holds(outcome.err, "XML error in line 1"));
    EXPECT_EQ(ReadFile(page), "the page of yesterday");
    EXPECT_EQ(Slope({"report", File("absent.xml"), page}).exitStatus, 1);
    EXPECT_EQ(ReadFile(page), "the page of yesterday");
}

TEST_F(ReportCommandTest, NothingIsLeftBesideThePage) {
    Import("AT1");
    WriteFile(page, "the page of yesterday");
    ASSERT_EQ(Slope({"report", file, page}).exitStatus, 0);
    EXPECT_TRUE(Holds(ReadFile(page), "<h2>Project AT1</h2>"));
    std::size_t files = 0;
    for ([[maybe_unused]] auto const& entry : std::filesystem::directory_iterator(folder)) ++files;
    EXPECT_EQ(files, 2u);
}

TEST_F(ReportCommandTest, ProjectIsNotReplacedByItsPage) {
    Import("AT1");
    std::string const before = ReadFile(file);
    Outcome const outcome = Slope({"report", file, folder + "/./slope.xml"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.err,
              "slope: " + folder + "/./slope.xml is the project itself; a page needs a file of its own.\n");
    EXPECT_EQ(ReadFile(file), before);
}

TEST_F(ReportCommandTest, UnknownWordsAreRefused) {
    EXPECT_EQ(Slope({"report", file, page, "--lang", "fr"}).exitStatus, 2);
    EXPECT_EQ(Slope({"report", file, page, "--view", "data"}).err,
              "slope: report takes no --view.\n`slope --help` says what there is.\n");
    EXPECT_EQ(Slope({"report", file}).err,
              "slope: Usage: slope report FILE PAGE\n`slope --help` says what there is.\n");
}

TEST_F(ReportTest, TextsAreEscaped) {
    project.title = "<b>\"Dam\" & 'co'</b>";
    project.materials[0].name = "</svg><script>";
    std::string const page = Page();
    EXPECT_TRUE(Holds(page, "<h1>&lt;b&gt;&quot;Dam&quot; &amp; &#39;co&#39;&lt;/b&gt;</h1>"));
    EXPECT_FALSE(Holds(page, "<script>"));
    EXPECT_TRUE(Holds(page, "&lt;/svg&gt;&lt;script&gt;"));
}

TEST_F(ReportTest, ProjectWithoutTitleIsCalledByItsName) {
    EXPECT_TRUE(Holds(Page(), "<h1>Dam</h1>"));
    project = {};
    EXPECT_TRUE(Holds(Page(), "<h1>A slope</h1>"));
}

TEST_F(ReportTest, SectionsWithoutContentAreLeftOut) {
    std::string const page = Page();
    EXPECT_TRUE(Holds(page, "<h2>Materials</h2>"));
    for (std::string const part : {"Slip circles", "Analyses", "Aquifer", "Ground water"})
        EXPECT_FALSE(Holds(page, part));
}

TEST_F(ReportTest, ProjectWithoutGroundHasNoDrawing) {
    project.lines.clear();
    EXPECT_FALSE(Holds(Page(), "<figure>"));
    project = {};
    project.points = {{3, 4}};
    project.lines.push_back({"ground", slope::LineRole::Ground, {1}});
    EXPECT_FALSE(Holds(Page(), "<figure>"));
    project = {};
    project.points = {{3, 4}, {3, 9}}; // a line of no width
    project.lines.push_back({"ground", slope::LineRole::Ground, {1, 2}});
    EXPECT_FALSE(Holds(Page(), "<figure>"));
}

TEST_F(ReportTest, BrokenNumbersAreNotDrawn) {
    project.lines[0].points = {1, 99, -1, 0, 4};
    project.regions[0].lines = {1, 77};
    project.regions.push_back({"Nowhere", 9, {0}});
    std::string const page = Page();
    // From the first point to the last, 760 / 50 pixels a metre.
    EXPECT_TRUE(Holds(page, "<path class=\"ground\" d=\"M64.0 172.0L824.0 20.0\"/>"));
}

TEST_F(ReportTest, ValuesThatCannotBeDrawnToScaleAreLeftOut) {
    project.points[1].x = slope::missing;
    project.points[2].y = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(Holds(Page(), "<path class=\"ground\" d=\"M64.0 172.0L824.0 20.0\"/>"));
    project = {};
    project.points = {{-1e308, 0}, {1e308, 1e308}};
    project.lines.push_back({"ground", slope::LineRole::Ground, {1, 2}});
    EXPECT_FALSE(Holds(Page(), "<figure>"));
}

TEST_F(ReportTest, LineGivenFromTheRightIsDrawnTheSame) {
    project.lines[0].points = {4, 3, 2, 1};
    EXPECT_TRUE(Holds(Page(), "<path class=\"ground\" d=\"M64.0 172.0L216.0 172.0L520.0 20.0L824.0 20.0\"/>"));
}

TEST_F(ReportTest, HeightLimitsTheScaleOfASteepSlope) {
    project.points = {{0, 0}, {1, 0}, {2, 100}};
    project.lines[0].points = {1, 2, 3};
    std::string const page = Page();
    // 30 % of 100 m below the ground: 420 pixels for 130 m, so 2 m are 6.5 pixels wide.
    EXPECT_TRUE(Holds(page, "<path class=\"ground\" d=\"M64.0 343.1L67.2 343.1L70.5 20.0\"/>"));
}

TEST_F(ReportTest, MoreThanAnybodyCouldLookAtIsNotDrawn) {
    project.regions.resize(10'000, project.regions[0]);
    std::string const page = Page();
    EXPECT_FALSE(Holds(page, "<figure>"));
    EXPECT_TRUE(Holds(page, "<p class=\"about\">There is too much in the cross-section for a drawing.</p>"));
    project = {};
    project.points = {{0, 0}, {9, 9}};
    project.lines.push_back({"ground", slope::LineRole::Ground, {1, 2}});
    project.slipCircles.assign(10'000, {{1, 2}, 3});
    EXPECT_FALSE(Holds(Page(), "<figure>"));
}

TEST_F(ReportTest, RegionWithoutMaterialIsNamedInTheLegend) {
    project.regions[0].material = 0;
    std::string const page = Page();
    EXPECT_TRUE(Holds(page, "</span>No material</li>"));
    EXPECT_TRUE(Holds(page, "<path class=\"layer\" d=\""));
}

TEST_F(ReportTest, MaterialOfSeveralRegionsStandsInTheLegendOnce) {
    project.regions.push_back({"More fill", 1, {1}});
    std::string const page = Page();
    std::string const legend = page.substr(page.find("<ul class=\"legend\">"));
    std::string const item = "</span>Clay</li>";
    std::size_t const first = legend.find(item);
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(legend.find(item, first + 1), std::string::npos);
}

TEST_F(ReportTest, LongTablesAreAbridged) {
    project.slipCircles.assign(503, {{1, 2}, 3});
    std::string const page = Page();
    EXPECT_TRUE(Holds(page, "<th scope=\"row\">Slip circle 500</th>"));
    EXPECT_FALSE(Holds(page, "<th scope=\"row\">Slip circle 501</th>"));
    EXPECT_TRUE(Holds(page, "<p class=\"about\">... 3 more</p>"));
}

TEST_F(ReportTest, FactorsOfOneMethodAndSourceShareACell) {
    for (double const factor : {1.5, 1.25}) project.analyses.push_back({.method = "Bishop", .factorOfSafety = factor});
    EXPECT_TRUE(Holds(Page(), "<tr><th scope=\"row\">Bishop</th><td>1.500 / 1.250</td></tr>"));
}

TEST(HtmlTest, ControlCharactersBecomeBlanks) {
    EXPECT_EQ(slope::Escaped("a\x1B[1mb\x7F"), "a [1mb ");
    EXPECT_EQ(slope::Escaped("a\xC2\x9B"
                             "b"),
              "a b");
    EXPECT_EQ(slope::Escaped("Böschung\n"), "Böschung\n");
}

} // namespace
