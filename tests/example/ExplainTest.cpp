#include "tests/example/Support.h"

#include <gtest/gtest.h>

namespace {

using example::Expected;
using example::Holds;
using example::Outcome;
using example::Slope;

class ExplainTest : public example::FileTest {};

TEST_F(ExplainTest, TellsWhichRowsSpeakAndWhichTestHides) {
    Import("AT2");
    Outcome const outcome = Slope({"explain", file, "Materials[1].Color", "--view", "report"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, Expected("AT2.explain.txt"));
}

TEST_F(ExplainTest, NodesAreFoundByTagAndCalledInTheLanguageAsked) {
    Import("AT2");
    std::string const text = Slope({"explain", file, "--tag", "Materials[2].Color", "--lang", "de"}).out;
    EXPECT_TRUE(Holds(text, "Boden \"Layer 2\" /Farbe\n"));
    EXPECT_TRUE(Holds(text, "Description: \"Wie der Boden gezeichnet wird.\""));
}

TEST_F(ExplainTest, RuleOfTheTypeIsNamedWhenItHides) {
    Import("AT3");
    std::string const text = Slope({"explain", file, "Water.PorePressureRatio"}).out;
    EXPECT_TRUE(Holds(text, "Water.PorePressureRatio: hidden\n"));
    EXPECT_TRUE(Holds(text, "rule of the type of {Water.PorePressureRatio}: no\n"));
}

TEST_F(ExplainTest, PhysicsAndModeAreAsked) {
    Import("AT1");
    EXPECT_TRUE(Holds(Slope({"explain", file, "Materials[0].Cohesion", "--physics", "water"}).out, "hidden\n"));
    EXPECT_TRUE(Holds(Slope({"explain", file, "Materials[0].Cohesion", "--physics", "slope"}).out, "visible\n"));
    EXPECT_TRUE(Holds(Slope({"explain", file, "Analyses[0].FactorOfSafety"}).out, "hidden\n"));
    EXPECT_TRUE(Holds(Slope({"explain", file, "Analyses[0].FactorOfSafety", "--mode", "contour"}).out, "visible\n"));
}

TEST_F(ExplainTest, NameThatIsNotThereIsAProblem) {
    Import("AT1");
    Outcome const outcome = Slope({"explain", file, "Materials[7]"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "slope: There is no name Materials[7] in " + file + ".\n");
}

TEST_F(ExplainTest, FileThatIsNotThereIsAProblem) {
    Outcome const outcome = Slope({"explain", File("absent.xml"), "Project"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(Holds(outcome.err, "Cannot open "));
}

TEST_F(ExplainTest, OptionsOfOtherCommandsAreRefused) {
    EXPECT_EQ(Slope({"explain", file, "Project", "--units", "si"}).err,
              "slope: explain takes no --units.\n`slope --help` says what there is.\n");
}

} // namespace
