#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using example::Holds;
using example::Outcome;
using example::ReadFile;
using example::Replace;
using example::Slope;

/// Works on a file of its own that the program made from a published problem.
class CommandTest : public example::FolderTest {
protected:
    void Import(std::string const& problem) {
        Outcome const outcome = Slope({"import", problem, file});
        ASSERT_EQ(outcome.exitStatus, 0) << outcome.err;
        EXPECT_EQ(outcome.out, problem + " saved as " + file + "\n");
    }

    std::string file = File("slope.xml");
};

TEST_F(CommandTest, GetPrintsAValueByNameAndByTag) {
    Import("AT2");
    EXPECT_EQ(Slope({"get", file, "Materials[1].Cohesion"}).out, "9.8\n");
    EXPECT_EQ(Slope({"get", "--tag", file, "Materials[2].Cohesion"}).out, "9.8\n");
    EXPECT_EQ(Slope({"get", file, "Project.Title"}).out, "Arai and Tagyo 1985 example 2, weak middle layer\n");
    EXPECT_EQ(Slope({"get", file, "Project.Settings.Method"}).out, "Bishop\n");
}

TEST_F(CommandTest, GetOfANameThatIsNotThereSaysSo) {
    Import("AT1");
    Outcome const outcome = Slope({"get", file, "Materials[7].Cohesion"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "slope: There is no name Materials[7].Cohesion in " + file + ".\n");
}

TEST_F(CommandTest, GetOfAStructureSaysThatItHasNoValue) {
    Import("AT1");
    Outcome const outcome = Slope({"get", file, "Materials[0]"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.err, "slope: Materials[0] has no value of its own; `slope show` lists its parts.\n");
    EXPECT_EQ(Slope({"set", file, "Materials", "1"}).err,
              "slope: Materials is a list: Materials.Len is its length, Materials[0] its first element.\nslope: " +
                  file + " stays as it is.\n");
}

TEST_F(CommandTest, SetSavesTheFile) {
    Import("AT1");
    Outcome const outcome = Slope({"set", file, "Materials[0].Cohesion", "12.5"});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Materials[0].Cohesion: 41.65 -> 12.5\n");
    EXPECT_EQ(Slope({"get", file, "Materials[0].Cohesion"}).out, "12.5\n");
    EXPECT_EQ(Slope({"set", "--tag", file, "Materials[1].Name", "Ton γ"}).exitStatus, 0);
    EXPECT_EQ(Slope({"get", file, "Materials[0].Name"}).out, "Ton γ\n");
    EXPECT_EQ(Slope({"check", file}).exitStatus, 0);
}

TEST_F(CommandTest, RefusedSetKeepsTheFile) {
    Import("AT1");
    std::string const before = ReadFile(file);
    Outcome const outcome = Slope({"set", file, "Materials[0].Friction", "75"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "slope: Materials[0].Friction: 75 is not between 0 and 60.\nslope: " + file + " stays as it is.\n");
    EXPECT_EQ(ReadFile(file), before);

    for (auto const& [name, value] : {std::pair{"Materials[0].Cohesion", "much"}, std::pair{"Project.SlopeHeight", "3"},
                                      std::pair{"Project.Units", "Cubits"}, std::pair{"Nowhere", "1"},
                                      std::pair{"Materials[0].Friction", "-1"}, std::pair{"Materials", "1"}}) {
        EXPECT_EQ(Slope({"set", file, name, value}).exitStatus, 1) << name;
        EXPECT_EQ(ReadFile(file), before) << name;
    }
}

TEST_F(CommandTest, SetOfTheWaterPropertyAddsAndRemovesTheWater) {
    Import("AT1");
    EXPECT_EQ(Slope({"get", file, "Water.Kind"}).exitStatus, 1);
    EXPECT_EQ(Slope({"set", file, "Project.HasWater", "true"}).exitStatus, 0);
    EXPECT_EQ(Slope({"get", file, "Water.Kind"}).out, "PiezometricLine\n");
    EXPECT_EQ(Slope({"set", file, "Project.HasWater", "false"}).exitStatus, 0);
    EXPECT_EQ(Slope({"get", file, "Water.Kind"}).exitStatus, 1);
}

TEST_F(CommandTest, SetDoesNotSaveWhatItCouldNotRead) {
    Import("AT1");
    Replace(file, "<Cohesion>", "<Crystal>3</Crystal><Cohesion>");
    std::string const before = ReadFile(file);
    Outcome const outcome = Slope({"set", file, "Materials[0].Cohesion", "12.5"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "Materials[1].Crystal: unknown element or attribute \"3\""));
    EXPECT_TRUE(Holds(outcome.err, "Saving would lose what couldn't be read.\nslope: " + file + " stays as it is.\n"));
    EXPECT_EQ(ReadFile(file), before);
}

TEST_F(CommandTest, SetDoesNotSaveWithoutElementsThatLenLeavesOut) {
    Import("AT2");
    Replace(file, "<Materials Len=\"3\">", "<Materials Len=\"2\">");
    std::string const before = ReadFile(file);
    Outcome const outcome = Slope({"set", file, "Materials[0].Cohesion", "12.5"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "Materials: has 3 elements, but its Len is 2, so the rest is not read\n"));
    EXPECT_EQ(ReadFile(file), before);
    EXPECT_TRUE(Holds(Slope({"check", file}).out, "Materials: has 3 elements, but its Len is 2"));
}

TEST_F(CommandTest, SetDoesNotSaveWithoutAValueThatStandsTwice) {
    Import("AT1");
    Replace(file, "<Friction>15</Friction>", "<Friction>15</Friction><Friction>16</Friction>");
    std::string const before = ReadFile(file);
    Outcome const outcome = Slope({"set", file, "Materials[0].Cohesion", "12.5"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(
        Holds(outcome.err, "Materials[1].Friction: stands there more than once, and only one of them is kept\n"));
    EXPECT_EQ(ReadFile(file), before);
}

TEST_F(CommandTest, CheckTellsElementsThatAreNotThere) {
    Import("AT2");
    Replace(file, "<Materials Len=\"3\">", "<Materials Len=\"5\">");
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "Materials: has 3 elements, but its Len is 5\n"));
    EXPECT_EQ(Slope({"set", file, "Materials.Len", "3"}).exitStatus, 0);
    EXPECT_EQ(Slope({"check", file}).exitStatus, 0);
}

TEST_F(CommandTest, SetMendsAValueThatItsRuleRefuses) {
    Import("AT1");
    Replace(file, "<Friction>15</Friction>", "<Friction>75</Friction>");
    EXPECT_EQ(Slope({"check", file}).exitStatus, 1);
    EXPECT_EQ(Slope({"set", file, "Materials[0].Friction", "25"}).exitStatus, 0);
    EXPECT_EQ(Slope({"check", file}).exitStatus, 0);
}

TEST_F(CommandTest, CheckOfAGoodFileFindsNothing) {
    Import("FK3");
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.out, file + ": no problems\n");
}

TEST_F(CommandTest, CheckTellsLineAndColumnOfATruncatedFile) {
    Import("AT1");
    std::string const text = ReadFile(file);
    std::string const kept = text.substr(0, text.find("</Title>"));
    example::WriteFile(file, kept);
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    auto const lines = std::count(kept.begin(), kept.end(), '\n') + 1;
    EXPECT_TRUE(Holds(outcome.out, "XML error in line " + std::to_string(lines) + ", column "));
}

TEST_F(CommandTest, CheckTellsTheElementOfABadValue) {
    Import("AT2");
    Replace(file, "<Cohesion>9.8</Cohesion>", "<Cohesion>lots</Cohesion>");
    Replace(file, "<Friction>5</Friction>", "<Friction>75</Friction>");
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "Unable to assign \"lots\" to Materials[2].Cohesion: "));
    EXPECT_TRUE(Holds(outcome.out, "Materials[2].Friction: 75 is not between 0 and 60.\n"));
    EXPECT_TRUE(Holds(outcome.out, file + ": 2 problems\n"));
}

TEST_F(CommandTest, CheckTellsUnknownElementsAndAttributes) {
    Import("AT1");
    Replace(file, "<Cohesion>", "<Crystal>3</Crystal><Cohesion>");
    Replace(file, "<Point X=\"48\"", "<Point Z=\"1\" X=\"48\"");
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "HZNData.Materials[1].Crystal: unknown element or attribute \"3\"\n"));
    EXPECT_TRUE(Holds(outcome.out, "HZNData.Points[3].Z: unknown element or attribute \"1\"\n"));
    EXPECT_TRUE(Holds(outcome.out, file + ": 2 problems\n"));
}

TEST_F(CommandTest, CheckSaysWhenThereMayBeMoreBadValuesThanItNames) {
    std::string text = "<HZNData Version=\"1.00\"><Points Len=\"12\">";
    for (int i = 0; i < 12; ++i) text += "<Point X=\"far\"/>";
    example::WriteFile(file, text + "</Points></HZNData>");
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "\"far\" to Points[11].X"));
    EXPECT_FALSE(Holds(outcome.out, "Points[12].X"));
    EXPECT_TRUE(Holds(outcome.out, "There may be more values like these; the first 11 are named.\n"));
}

TEST_F(CommandTest, CheckTellsNumbersThatLeadNowhere) {
    Import("AT1");
    Replace(file, "1,2,3,4", "1,2,3,9");
    Outcome const outcome = Slope({"check", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "Line 1 (ground) refers to point 9, but there are 4.\n"));
}

TEST_F(CommandTest, CheckOfAFileThatIsNotThereFails) {
    Outcome const outcome = Slope({"check", File("absent.xml")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.out, "Cannot open " + File("absent.xml")));
}

TEST_F(CommandTest, FileWithProblemsCanBeLookedAt) {
    Import("AT1");
    Replace(file, "<Friction>15</Friction>", "<Friction>75</Friction>");
    Outcome const outcome = Slope({"get", file, "Materials[0].Friction"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "75\n");
    EXPECT_EQ(outcome.err, "slope: " + file + " has 1 problem; `slope check` lists them.\n");
}

TEST_F(CommandTest, ShowPrintsTheTree) {
    Import("FK1");
    Outcome const outcome = Slope({"show", file});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_TRUE(Holds(outcome.out, "Analyses[3].Lambda"));
    EXPECT_TRUE(Holds(outcome.out, "Analyses[4].Lambda"));
    EXPECT_TRUE(Holds(outcome.out, "0.237"));
    EXPECT_TRUE(Holds(outcome.out, "psf"));
}

TEST_F(CommandTest, ImportOfAnUnknownProblemWritesNothing) {
    Outcome const outcome = Slope({"import", "AT9", file});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "There is no problem \"AT9\"."));
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(CommandTest, MainJobFindsNothingChangedAndIsTheSameEachTime) {
    Outcome const first = Slope({}), second = Slope({"run"});
    EXPECT_EQ(first.exitStatus, 0) << first.out << first.err;
    EXPECT_EQ(first.out, second.out);
    for (std::string const part :
         {"AT1: Arai and Tagyo 1985 example 1, homogeneous", "GL1: Griffiths and Lane 1999",
          "Refused: Materials[0].Friction = 75: 75 is not between 0 and 60.", "Nothing changed.", "Saved as AT1.xml, ",
          "Undone: the file would be the one from before the edit, byte for byte (",
          "Materials[0].Cohesion       600  psf   28.72815539  kPa "})
        EXPECT_TRUE(Holds(first.out, part));
    for (std::string const part : {"SOMETHING CHANGED", "FAILED", "THE ", "UNDONE"})
        EXPECT_FALSE(Holds(first.out, part));
    EXPECT_EQ(first.err, "");
}

TEST_F(CommandTest, MainJobOnOneProblemKeepsItsFileWhereItIsTold) {
    Outcome const outcome = Slope({"--problem", "AT3", "--out", folder});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.out << outcome.err;
    EXPECT_FALSE(Holds(outcome.out, "AT1"));
    EXPECT_TRUE(Holds(outcome.out, "Saved as " + File("AT3.xml")));
    // Edited by the job: 41.65 + 2.5.
    EXPECT_EQ(Slope({"get", File("AT3.xml"), "Materials[0].Cohesion"}).out, "44.15\n");
}

TEST_F(CommandTest, FolderThatCannotBeMadeIsToldBeforeAnythingElse) {
    example::WriteFile(File("taken"), "");
    for (std::vector<std::string> const& words : {std::vector<std::string>{"run"}, {"large", "10"}}) {
        std::vector<std::string> command = words;
        command.insert(command.end(), {"--out", File("taken")});
        Outcome const outcome = Slope(command);
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "slope: The folder " + File("taken") + " can't be made.\n");
    }
}

TEST_F(CommandTest, MainJobFailsWithoutItsTables) {
    Outcome const outcome = Slope({"--data", folder});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "problems.csv: the file can't be read."));
}

TEST_F(CommandTest, CommandLineThatMakesNoSenseHasItsOwnStatus) {
    EXPECT_EQ(Slope({"dance"}).exitStatus, 2);
    EXPECT_EQ(Slope({"get", file}).exitStatus, 2);
    EXPECT_EQ(Slope({"--help"}).exitStatus, 0);
}

} // namespace
