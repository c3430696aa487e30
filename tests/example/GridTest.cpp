#include "examples/slope/Grid.h"

#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using example::Expected;
using example::Holds;
using example::Outcome;
using example::Replace;
using example::Slope;
using example::WriteFile;

class GridTest : public example::FileTest {};

TEST_F(GridTest, ShowsWhatIsDefinedOfALayeredSlope) {
    Import("AT2");
    Outcome const outcome = Slope({"grid", file});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, Expected("AT2.grid.txt"));
}

TEST_F(GridTest, ShowsResultsInGermanAndInOtherUnits) {
    Import("FK1");
    Outcome const outcome = Slope({"grid", file, "--mode", "contour", "--lang", "de", "--units", "si"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, Expected("FK1.grid.de.txt"));
}

TEST_F(GridTest, ShowsTheReportViewWithTheCurrentFactorAndTheWater) {
    Import("AT3");
    ASSERT_EQ(Slope({"set", file, "Project.CurrentAnalysis", "2"}).exitStatus, 0);
    Outcome const outcome = Slope({"grid", file, "--view", "report", "--physics", "slope", "--mode", "contour"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, Expected("AT3.report.txt"));
}

TEST_F(GridTest, DataViewLeavesOutWhatIsWorkedOut) {
    Import("AT1");
    EXPECT_TRUE(Holds(Slope({"grid", file}).out, "Height of the slope"));
    EXPECT_FALSE(Holds(Slope({"grid", file, "--view", "data"}).out, "Height of the slope"));
    EXPECT_FALSE(Holds(Slope({"grid", file, "--view", "data"}).out, "Cohesion of the material"));
}

TEST_F(GridTest, AnalysisOfWaterLeavesOutStrength) {
    Import("AT3");
    std::string const slope = Slope({"grid", file, "--physics", "slope"}).out;
    std::string const water = Slope({"grid", file, "--physics", "water"}).out;
    EXPECT_TRUE(Holds(slope, "Friction angle"));
    EXPECT_FALSE(Holds(water, "Friction angle"));
    EXPECT_FALSE(Holds(water, "Analyses"));
    EXPECT_TRUE(Holds(water, "Piezometric line"));
}

TEST_F(GridTest, KindOfWaterDecidesWhatIsShownOfIt) {
    Import("AT3");
    EXPECT_FALSE(Holds(Slope({"grid", file}).out, "Pore pressure ratio"));
    ASSERT_EQ(Slope({"set", file, "Water.Kind", "PorePressureRatio", "Water.PorePressureRatio", "0.3"}).exitStatus, 0);
    std::string const text = Slope({"grid", file}).out;
    EXPECT_TRUE(Holds(text, "      Pore pressure ratio       0.3\n"));
    EXPECT_FALSE(Holds(text, "Piezometric line"));
}

TEST_F(GridTest, LinkToARecordThatIsNotThereShowsItsNumber) {
    WriteFile(file, "<HZNData Version=\"1.00\"><Regions Len=\"1\"><Region><Name>Fill</Name><Material>7</Material>"
                    "</Region></Regions></HZNData>");
    Outcome const outcome = Slope({"grid", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.err, "slope: " + file + " has 1 problem; `slope check` lists them.\n");
    EXPECT_TRUE(Holds(outcome.out, "      Material           7\n"));
}

TEST_F(GridTest, LongListsAreAbridged) {
    std::string text = "<HZNData Version=\"1.00\"><Project><HasAquifer>true</HasAquifer></Project><Aquifer>"
                       "<Cells Len=\"8\">";
    for (int i = 1; i <= 8; ++i) text += "<Cell N=\"" + std::to_string(i) + "\"/>";
    text += "</Cells><Head>";
    for (int i = 1; i <= 2000; ++i) text += (i > 1 ? "," : "") + std::to_string(i % 10) + ".25";
    WriteFile(file, text + "</Head></Aquifer></HZNData>");
    Outcome const outcome = Slope({"grid", file, "--physics", "water"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(Holds(outcome.out, "    Cell 5\n"));
    EXPECT_FALSE(Holds(outcome.out, "Cell 6"));
    EXPECT_TRUE(Holds(outcome.out, "    ... 3 more\n"));
    // A seventh value would pass the forty columns that a row of values has.
    EXPECT_TRUE(Holds(outcome.out, "1.25, 2.25, 3.25, 4.25, 5.25, 6.25, ... 1,994 more  m\n"));
    EXPECT_TRUE(Holds(Slope({"grid", file, "--lang", "de"}).out, "5,25; 6,25; ... 1.994 weitere  m\n"));
}

TEST_F(GridTest, ColourIsAPatchWhereItIsWanted) {
    Import("AT1");
    std::string const patch = "\x1B[48;2;200;161;101m  \x1B[0m #C8A165"; // C8 A1 65
    EXPECT_TRUE(Holds(Slope({"grid", file, "--color", "always"}).out, patch));
    // Neither of these goes to a terminal.
    EXPECT_FALSE(Holds(Slope({"grid", file}).out, "\x1B"));
    EXPECT_FALSE(Holds(Slope({"grid", file, "--color", "never"}).out, "\x1B"));
}

TEST_F(GridTest, PatchesDoNotMoveTheColumnsBehindThem) {
    Import("AT2");
    std::string colored = Slope({"grid", file, "--color", "always"}).out;
    std::istringstream lines(colored);
    std::size_t place = 0;
    for (std::string line; std::getline(lines, line);) {
        for (std::size_t escape; (escape = line.find('\x1B')) != std::string::npos;)
            line.erase(escape, line.find('m', escape) - escape + 1);
        std::size_t const unit = line.rfind("  kPa");
        if (unit == std::string::npos) continue;
        if (place) {
            EXPECT_EQ(unit, place) << line;
        }
        place = unit;
    }
    EXPECT_NE(place, 0u);
}

TEST_F(GridTest, EscapeSequencesInAFileDoNotReachTheTerminal) {
    Import("AT1");
    Replace(file, "<Name>AT1</Name>", "<Name>a&#x9B;31mb</Name>"); // a control sequence of eight-bit terminals
    Outcome const outcome = Slope({"grid", file});
    EXPECT_FALSE(Holds(outcome.out, "\xC2\x9B"));
    EXPECT_TRUE(Holds(outcome.out, "Project a 31mb\n"));
}

TEST_F(GridTest, NumberInItsOwnUnitsIsNotRounded) {
    Import("AT1");
    ASSERT_EQ(Slope({"set", file, "Materials[0].Cohesion", "41.123456789"}).exitStatus, 0);
    EXPECT_TRUE(Holds(Slope({"grid", file}).out, "41.123456789 "));
    // 41.123456789 kPa over 0.04788025898 kPa a psf.
    EXPECT_TRUE(Holds(Slope({"grid", file, "--units", "us"}).out, "858.881 "));
    EXPECT_TRUE(Holds(Slope({"grid", file, "--units", "us"}).out, "psf"));
}

TEST_F(GridTest, NumberBeyondTheUnitAskedForIsToldAsSuch) {
    Import("AT1");
    ASSERT_EQ(Slope({"set", file, "Materials[0].Cohesion", "1e308"}).exitStatus, 0); // 2e309 psf
    Outcome const outcome = Slope({"grid", file, "--units", "us"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_TRUE(Holds(outcome.out, "  inf "));
}

TEST_F(GridTest, ConvertedNumberHasAnExponentOnlyWhereItsDigitsMeanNothing) {
    Import("AT1");
    // One kPa is 20.88543423315 psf.
    ASSERT_EQ(Slope({"set", file, "Materials[0].Cohesion", "1e12"}).exitStatus, 0);
    EXPECT_TRUE(Holds(Slope({"grid", file, "--units", "us"}).out, "  20885434233150 "));
    ASSERT_EQ(Slope({"set", file, "Materials[0].Cohesion", "1e300"}).exitStatus, 0);
    EXPECT_TRUE(Holds(Slope({"grid", file, "--units", "us"}).out, "  2.08854e+301 "));
}

TEST_F(GridTest, WordsThatAreNotKnownAreRefused) {
    Import("AT1");
    struct Refusal {
        std::string option, word, choice;
    };
    for (Refusal const& refusal :
         {Refusal{"--view", "picture", "data, property or report"},
          {"--mode", "dream", "define, contour or all"},
          {"--physics", "magic", "solute, dynamic, water, stress, slope, heat, air, project or all"},
          {"--lang", "fr", "en or de"},
          {"--units", "cubits", "si or us"},
          {"--color", "red", "always, never or auto"}}) {
        Outcome const outcome = Slope({"grid", file, refusal.option, refusal.word});
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "slope: " + refusal.option + " takes " + refusal.choice + ", and not \"" + refusal.word +
                                   "\".\n`slope --help` says what there is.\n");
    }
}

TEST_F(GridTest, FileThatIsNotThereIsAProblem) {
    Outcome const outcome = Slope({"grid", File("absent.xml")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(Holds(outcome.err, "Cannot open " + File("absent.xml")));
}

TEST_F(GridTest, HelpTellsTheWordsOfEachOption) {
    std::string const text = Slope({"--help"}).out;
    for (std::string const part : {"grid FILE", "explain FILE NAME", "report FILE PAGE", "table", "--view WORD",
                                   "--physics WORD", "--mode WORD", "--lang WORD", "--units WORD", "--color WORD"})
        EXPECT_TRUE(Holds(text, part));
}

} // namespace
