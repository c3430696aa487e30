// The command that sets several values: all of them, or none is saved.
#include "tests/example/Support.h"

#include <gtest/gtest.h>

namespace {

using example::Outcome;
using example::ReadFile;
using example::Slope;

/// Works on a slope of three layers, cohesions 29.4, 9.8 and 294 kPa, without water.
class SetTest : public example::FolderTest {
protected:
    SetTest() { EXPECT_EQ(Slope({"import", "AT2", file}).exitStatus, 0); }

    Outcome Set(std::vector<std::string> const& pairs, bool tags = false) {
        std::vector<std::string> words{"set", file};
        if (tags) words.emplace_back("--tag");
        words.insert(words.end(), pairs.begin(), pairs.end());
        return Slope(words);
    }
    /// The lines that say what was set, in a file that is as good as before.
    std::string Changed(std::vector<std::string> const& pairs, bool tags = false) {
        Outcome const outcome = Set(pairs, tags);
        EXPECT_EQ(outcome.exitStatus, 0);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
    /// The lines that say what is wrong, without the last one; the file must be as before.
    std::string Refused(std::vector<std::string> const& pairs) {
        std::string const before = ReadFile(file);
        Outcome const outcome = Set(pairs);
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(ReadFile(file), before);
        std::string const last = "slope: " + file + " stays as it is.\n";
        EXPECT_TRUE(outcome.err.ends_with(last)) << outcome.err;
        return outcome.err.substr(0, outcome.err.size() - std::min(last.size(), outcome.err.size()));
    }
    std::string Get(std::string const& name) { return Slope({"get", file, name}).out; }

    std::string file = File("slope.xml");
};

TEST_F(SetTest, SeveralValuesAreSavedTogether) {
    EXPECT_EQ(Changed({"Materials[0].Cohesion", "30", "Project.Title", "Weak layer", "Materials[1].Friction", "6"}),
              "Materials[0].Cohesion: 29.4 -> 30\n"
              "Project.Title: Arai and Tagyo 1985 example 2, weak middle layer -> Weak layer\n"
              "Materials[1].Friction: 5 -> 6\n");
    EXPECT_EQ(Get("Materials[0].Cohesion"), "30\n");
    EXPECT_EQ(Get("Project.Title"), "Weak layer\n");
    EXPECT_EQ(Get("Materials[1].Friction"), "6\n");
}

TEST_F(SetTest, OneRefusalKeepsAllFromBeingSaved) {
    EXPECT_EQ(Refused({"Materials[0].Cohesion", "30", "Materials[1].Friction", "75"}),
              "slope: Materials[1].Friction: 75 is not between 0 and 60.\n");
}

TEST_F(SetTest, AllProblemsAreListedInTheOrderOfThePairs) {
    EXPECT_EQ(
        Refused({"Materials[0].Friction", "75", "Project.SlopeHeight", "3", "Materials[0].Cohesion", "7", "Colour", "4",
                 "Regions[0].Material", "-3", "Regions[0].Material.@", "2", "Materials[9].Name", "x"}),
        "slope: Materials[0].Friction: 75 is not between 0 and 60.\n"
        "slope: Project.SlopeHeight can't be edited.\n"
        "slope: There is no name Colour.\n"
        "slope: Regions[0].Material: -3 is less than 0.\n"
        "slope: Materials[0] has no value of its own; `slope show` lists its parts.\n"
        "slope: There is no name Materials[9].Name.\n");
}

TEST_F(SetTest, LengthComesBeforeElements) {
    EXPECT_EQ(Changed({"Materials[3].Cohesion", "5", "Materials.Len", "4"}),
              "Materials.Len: 3 -> 4\nMaterials[3].Cohesion: 0 -> 5\n");
    EXPECT_EQ(Get("Materials[3].Cohesion"), "5\n");
}

TEST_F(SetTest, LengthsWithinNewElementsComeBeforeTheirElements) {
    EXPECT_EQ(Changed({"Lines[3].Points[1]", "3", "Lines[3].Points.Len", "2", "Lines.Len", "4"}),
              "Lines.Len: 3 -> 4\nLines[3].Points.Len: 0 -> 2\nLines[3].Points[1]: 1 -> 3\n");
}

TEST_F(SetTest, ElementThatALengthCutsOffIsRefusedInAnyOrder) {
    std::string const gone = "slope: Materials[2].Cohesion isn't there any more once the other values are set.\n";
    EXPECT_EQ(Refused({"Materials.Len", "2", "Materials[2].Cohesion", "5"}), gone);
    EXPECT_EQ(Refused({"Materials[2].Cohesion", "5", "Materials.Len", "2"}), gone);
}

TEST_F(SetTest, WaterAndItsValuesAreSetTogetherInAnyOrder) {
    EXPECT_EQ(
        Changed({"Water.PorePressureRatio", "0.3", "Project.HasWater", "true", "Water.Kind", "PorePressureRatio"}),
        "Project.HasWater: false -> true\n"
        "Water.PorePressureRatio: (missing) -> 0.3\n"
        "Water.Kind: PiezometricLine -> PorePressureRatio\n");
    EXPECT_EQ(Get("Water.PorePressureRatio"), "0.3\n");
}

TEST_F(SetTest, ValueOfTheWaterThatIsRemovedIsRefusedInAnyOrder) {
    Changed({"Project.HasWater", "true"});
    std::string const gone = "slope: Water.PorePressureRatio isn't there any more once the other values are set.\n";
    EXPECT_EQ(Refused({"Water.PorePressureRatio", "0.3", "Project.HasWater", "false"}), gone);
    EXPECT_EQ(Refused({"Project.HasWater", "false", "Water.PorePressureRatio", "0.3"}), gone);
}

TEST_F(SetTest, NameThroughALinkEditsTheRecord) {
    EXPECT_EQ(Changed({"Regions[2].Material.Cohesion", "290"}),
              "Materials[2].Cohesion: 294 -> 290 (by way of Regions[2].Material.Cohesion)\n");
    EXPECT_EQ(Get("Materials[2].Cohesion"), "290\n");
}

TEST_F(SetTest, LinkIsSetBeforeWhatIsReachedThroughIt) {
    std::string const expected = "Regions[1].Material: 2 -> 3\n"
                                 "Materials[2].Name: Layer 3 -> Rock (by way of Regions[1].Material.Name)\n";
    EXPECT_EQ(Changed({"Regions[1].Material.Name", "Rock", "Regions[1].Material", "3"}), expected);
    EXPECT_EQ(Get("Materials[1].Name"), "Layer 2\n");
}

TEST_F(SetTest, AliasIsEditedAtItsSource) {
    Changed({"Project.CurrentAnalysis", "2"});
    EXPECT_EQ(Changed({"CurrentAnalysis.FactorOfSafety", "0.5"}),
              "Analyses[1].FactorOfSafety: 0.415 -> 0.5 (by way of CurrentAnalysis.FactorOfSafety)\n");
    EXPECT_EQ(Get("Analyses[1].FactorOfSafety"), "0.5\n");
}

TEST_F(SetTest, AliasLeadsWhereTheOtherValuesSendIt) {
    Changed({"Project.CurrentAnalysis", "2"});
    EXPECT_EQ(Changed({"CurrentAnalysis.FactorOfSafety", "0.42", "Project.CurrentAnalysis", "1"}),
              "Project.CurrentAnalysis: 2 -> 1\n"
              "Analyses[0].FactorOfSafety: 0.417 -> 0.42 (by way of CurrentAnalysis.FactorOfSafety)\n");
    EXPECT_EQ(Get("Analyses[1].FactorOfSafety"), "0.415\n");
}

TEST_F(SetTest, TagsLeadThroughLinksAndAliasesToo) {
    EXPECT_EQ(Changed({"CurrentAnalysis.Region", "2", "Project.CurrentAnalysis", "1", "Regions[2].Material.Cohesion",
                       "11", "Regions[2].Material", "1"},
                      true),
              "Project.CurrentAnalysis: (none) -> 1\n"
              "Regions[1].Material: 2 -> 1\n"
              "Analyses[0].Region: (none) -> 2 (by way of CurrentAnalysis.Region)\n"
              "Materials[0].Cohesion: 29.4 -> 11 (by way of Regions[2].Material.Cohesion)\n");
}

TEST_F(SetTest, ValueThatIsGivenTwiceIsRefused) {
    EXPECT_EQ(Refused({"Materials[0].Cohesion", "7", "Regions[0].Material.Cohesion", "8"}),
              "slope: Regions[0].Material.Cohesion is given twice.\n");
    EXPECT_EQ(Refused({"Materials.Len", "2", "Materials.Len", "3"}), "slope: Materials.Len is given twice.\n");
}

TEST_F(SetTest, ValueThatIsGivenTwiceIsRefusedHoweverItsIndexIsWritten) {
    EXPECT_EQ(Refused({"Materials[1].Friction", "6", "Materials[01].Friction", "7"}),
              "slope: Materials[01].Friction is given twice.\n");
    EXPECT_EQ(Refused({"Materials.0.Friction", "6", "Materials[000].Friction", "7"}),
              "slope: Materials[000].Friction is given twice.\n");
}

TEST_F(SetTest, LinkComesFirstHoweverItsIndexIsWritten) {
    EXPECT_EQ(Changed({"Regions[1].Material.Name", "Rock", "Regions[01].Material", "3"}),
              "Regions[01].Material: 2 -> 3\n"
              "Materials[2].Name: Layer 3 -> Rock (by way of Regions[1].Material.Name)\n");
    EXPECT_EQ(Get("Materials[1].Name"), "Layer 2\n");
}

TEST_F(SetTest, LengthThatNoListCanHaveIsRefused) {
    std::string const problem = "slope: Lines[0].Points.Len: a list has a length from 0 to 10,000,000.\n";
    EXPECT_EQ(Refused({"Lines[0].Points.Len", "10000001"}), problem);
    EXPECT_EQ(Refused({"Lines[0].Points.Len", "99999999999999999999"}), problem);
    EXPECT_EQ(Refused({"Lines[0].Points.Len", ""}), problem);
}

TEST_F(SetTest, ListIsNoValueAndSaysWhatItsPartsAre) {
    std::string const sentence =
        "slope: Lines[0].Points is a list: Lines[0].Points.Len is its length, Lines[0].Points[0] its first element.\n";
    EXPECT_EQ(Refused({"Lines[0].Points", "1,2"}), sentence);
    EXPECT_EQ(Slope({"get", file, "Lines[0].Points"}).err, sentence);
}

TEST_F(SetTest, NumbersThatLeadNowhereAfterwardsAreToldAndSaved) {
    Outcome const outcome = Set({"Materials.Len", "1"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.out, "Materials.Len: 3 -> 1\n");
    EXPECT_EQ(outcome.err, "slope: " + file + " has 2 problems now; `slope check` lists them.\n");
}

TEST_F(SetTest, FileWithProblemsIsMendedAndTheyAreTold) {
    example::Replace(file, "<Material>3</Material>", "<Material>4</Material>");
    Outcome const outcome = Set({"Regions[2].Material", "3"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.out, "Regions[2].Material: 4 -> 3\n");
    EXPECT_EQ(outcome.err, "slope: " + file + " has 1 problem; `slope check` lists them.\n");
    EXPECT_EQ(Slope({"check", file}).exitStatus, 0);
}

TEST_F(SetTest, LengthOfAListThatHasAFixedOneIsRefused) {
    EXPECT_EQ(Refused({"Materials[0].Anisotropy.Len", "3", "Materials[0].Cohesion", "30"}),
              "slope: Materials[0].Anisotropy.Len can't be set to 3.\n");
}

TEST_F(SetTest, EmptyTextTakesALinkAway) {
    EXPECT_EQ(Changed({"Regions[0].Material", ""}), "Regions[0].Material: 1 -> (none)\n");
}

TEST_F(SetTest, NameWithoutAValueIsAMistakeOfTheCommandLine) {
    Outcome const outcome = Set({"Materials[0].Cohesion", "3", "Materials[1].Cohesion"});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.err, "slope: Usage: slope set FILE NAME VALUE [NAME VALUE]...\n"
                           "`slope --help` says what there is.\n");
}

} // namespace
