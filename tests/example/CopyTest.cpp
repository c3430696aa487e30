// Copying from one project and pasting into another.
#include "examples/slope/Exchange.h"
#include "examples/slope/Text.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace {

using example::Holds;
using example::Outcome;
using example::ReadFile;
using example::Replace;
using example::Slope;
using example::WriteFile;

/// Two projects: AT2 of three layers, and AT1, whose only material and region are called "Layer 1", too.
class CopyTest : public example::FolderTest {
protected:
    CopyTest() {
        for (auto const& [problem, file] : {std::pair{"AT2", &from}, std::pair{"AT1", &to}})
            EXPECT_EQ(Slope({"import", problem, *file}).exitStatus, 0);
    }

    std::string Copy(std::vector<std::string> names) const {
        names.insert(names.begin(), {"copy", from});
        Outcome const outcome = Slope(names);
        EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
    Outcome Paste(std::string const& text) const { return Slope({"paste", to}, text); }
    std::string Value(std::string const& name) const { return Slope({"get", to, name}).out; }

    std::string from = File("from.xml"), to = File("to.xml");
};

TEST_F(CopyTest, PrintsADocumentWithWhatItHolds) { EXPECT_EQ(Copy({"Regions[1]"}), example::Expected("AT2.copy.xml")); }

TEST_F(CopyTest, LeavesTheFileAsItIs) {
    std::string const before = ReadFile(from);
    Copy({"Regions"});
    EXPECT_EQ(ReadFile(from), before);
}

TEST_F(CopyTest, TakesTagsAndOtherNames) {
    EXPECT_EQ(Copy({"--tag", "Regions[2]"}), Copy({"Regions[1]"}));
    EXPECT_EQ(Copy({"Regions[1].Material"}), Copy({"Materials[1]"})); // a link stands for what it leads to
    EXPECT_EQ(Slope({"set", from, "Project.CurrentAnalysis", "2"}).exitStatus, 0);
    EXPECT_EQ(Copy({"CurrentAnalysis"}), Copy({"Analyses[1]"}));
}

TEST_F(CopyTest, RefusesWhatCanNotBeCopied) {
    for (auto const& [name, problem] :
         {std::pair{"Regions[7]", "There is no name Regions[7]."},
          std::pair{"Regions[0].Name", "Regions[0].Name is no material, region or analysis, and no list of them."},
          std::pair{"Points[0]", "Points[0] is no material, region or analysis, and no list of them."},
          std::pair{"Project", "Project is no material, region or analysis, and no list of them."},
          std::pair{"CurrentAnalysis", "CurrentAnalysis is no material, region or analysis, and no list of them."}}) {
        Outcome const outcome = Slope({"copy", from, "Regions[0]", name});
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("slope: ") + problem + "\n");
    }
}

TEST_F(CopyTest, RefusesTwoKindsAtOnce) {
    Outcome const outcome = Slope({"copy", from, "Regions[0]", "Materials[1]"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "slope: Materials[1] goes with Materials, and what stands before it with Regions: copy one "
                           "after the other.\n");
}

TEST_F(CopyTest, RefusesAnEmptyList) {
    EXPECT_EQ(Slope({"set", from, "Analyses.Len", "0"}).exitStatus, 0);
    Outcome const outcome = Slope({"copy", from, "Analyses"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.err, "slope: There is nothing in Analyses.\n");
}

TEST_F(CopyTest, ARegionBringsItsMaterialAlong) {
    Outcome const outcome = Paste(Copy({"Regions[1]"}));
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Added Materials[1] (Layer 2)\nAdded Regions[1] (Layer 2)\n");
    EXPECT_EQ(Value("Regions[1].Material.Name"), "Layer 2\n");
    EXPECT_EQ(Value("Regions[1].Material.Cohesion"), "9.8\n");
    EXPECT_EQ(Value("Materials[0].Cohesion"), "41.65\n");
    EXPECT_EQ(Value("Regions.Len"), "2\n");
}

TEST_F(CopyTest, NumbersOfLinesStayAndAreReported) {
    // Lines 2 and 3, of which the other project has none.
    Outcome const outcome = Paste(Copy({"Regions[1]"}));
    EXPECT_EQ(outcome.err, "slope: " + to + " has 2 problems now; `slope check` lists them.\n");
    EXPECT_EQ(Slope({"check", to}).out, "Region 2 (Layer 2) refers to line 2, but there are 1.\n"
                                        "Region 2 (Layer 2) refers to line 3, but there are 1.\n" +
                                            to + ": 2 problems\n");
}

TEST_F(CopyTest, ACopiedThingGetsANameOfItsOwn) {
    Outcome const outcome = Paste(Copy({"Materials[0]"}));
    EXPECT_EQ(outcome.out, "Added Materials[1] (Layer 1 (2))\n");
    EXPECT_EQ(Value("Materials[0].Cohesion"), "41.65\n");
    EXPECT_EQ(Value("Materials[1].Cohesion"), "29.4\n");
    EXPECT_EQ(Value("Regions[0].Material"), "1\n");
}

TEST_F(CopyTest, WhatItUsesReplacesWhatGoesByThatName) {
    Outcome const outcome = Paste(Copy({"Regions[0]"}));
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Added Regions[1] (Layer 1 (2))\nReplaced what is called Layer 1\n");
    EXPECT_EQ(Value("Materials.Len"), "1\n");
    EXPECT_EQ(Value("Materials[0].Cohesion"), "29.4\n");
    EXPECT_EQ(Value("Regions[1].Material"), "1\n");
}

TEST_F(CopyTest, WhatItUsesIsUsedAgainIfItIsTheSame) {
    Outcome const outcome = Slope({"paste", from}, Copy({"Regions[1]"}));
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Added Regions[3] (Layer 2 (2))\n");
    EXPECT_EQ(Slope({"get", from, "Regions[3].Material"}).out, "2\n");
    EXPECT_EQ(Slope({"get", from, "Materials.Len"}).out, "3\n");
}

TEST_F(CopyTest, PastingTwiceAddsTwo) {
    std::string const text = Copy({"Materials[1]"});
    EXPECT_EQ(Paste(text).out, "Added Materials[1] (Layer 2)\n");
    EXPECT_EQ(Paste(text).out, "Added Materials[2] (Layer 2 (2))\n");
}

TEST_F(CopyTest, SeveralOfAKindAndAWholeListGoTogether) {
    EXPECT_EQ(Paste(Copy({"Materials[1]", "Materials[2]"})).out,
              "Added Materials[1] (Layer 2)\nAdded Materials[2] (Layer 3)\n");
    EXPECT_EQ(Copy({"Materials"}), Copy({"Materials[0]", "Materials[1]", "Materials[2]"}));
}

TEST_F(CopyTest, AnAnalysisBringsItsRegionAndThatItsMaterial) {
    EXPECT_EQ(Slope({"set", to, "Materials[0].Name", "Clay", "Regions[0].Name", "Dam"}).exitStatus, 0);
    std::swap(from, to); // from AT1, whose analyses are of its one region
    std::string const text = Copy({"Analyses[0]"});
    Outcome const outcome = Paste(text);
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "Added Materials[3] (Clay)\nAdded Regions[3] (Dam)\nAdded Analyses[2] (Bishop simplified)\n");
    EXPECT_EQ(Value("Analyses[2].Region.Material.Cohesion"), "41.65\n");
}

TEST_F(CopyTest, NumbersForTheWayAreNotSaved) {
    EXPECT_EQ(Paste(Copy({"Regions[1]"})).exitStatus, 0);
    EXPECT_EQ(ReadFile(to).find("<ID>"), std::string::npos);
    EXPECT_EQ(Value("Regions[1].ID"), "0\n");
}

TEST_F(CopyTest, TheAreaOfWhatIsPastedIsKnown) {
    Outcome const outcome = Slope({"paste", from}, Copy({"Regions[1]"}));
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(Slope({"get", from, "Regions[3].Area"}).out, "540\n");
}

TEST_F(CopyTest, OtherUnitsAreRefused) {
    EXPECT_EQ(Slope({"import", "FK1", to}).exitStatus, 0);
    std::string const before = ReadFile(to);
    Outcome const outcome = Paste(Copy({"Regions[1]"}));
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "slope: The text is in the units Metric, and the project in Imperial.\nslope: " + to +
                               " stays as it is.\n");
    EXPECT_EQ(ReadFile(to), before);
}

TEST_F(CopyTest, RefusalsSayWhyAndLeaveTheFile) {
    std::string const good = Copy({"Regions[1]"});
    auto const with = [&](std::string const& part, std::string const& other) {
        std::string text = good;
        EXPECT_NE(text.find(part), text.npos) << part;
        return text.replace(text.find(part), part.size(), other);
    };
    std::string const before = ReadFile(to), foreign = "The text is none that `slope copy` makes.";
    for (auto const& [text, problem] : std::vector<std::pair<std::string, std::string>>{
             {"", foreign},
             {"Layer 2", foreign},
             {std::string("\0\xFF\xFE\x01", 4), foreign},
             {before, foreign},
             {with("objects=\"10,11\"", "objects=\"99\""), "The text holds nothing that this application could paste."},
             {with("objects=\"10,11\"", "objects=\"12\""), "The text holds nothing that this application could paste."},
             {with(" version=\"1.00\"", " version=\"2.00\""),
              "The text holds nothing that this application could paste."},
             {good.substr(0, good.size() - 4), "XML error in line 31, column "},
             {with("<HZNData Version", "<!DOCTYPE HZNData>\n<HZNData Version"), "a document type declaration"},
             {with("Version=\"1.00\" App", "Version=\"2.00\" App"), "2"},
             {with("<Cohesion>9.8<", "<Cohesion>lots<"), "Unable to assign \"lots\" to Materials[2].Cohesion"},
             {with("<Cohesion>", "<Crystal>3</Crystal><Cohesion>"), "Materials[2].Crystal"},
             {with("<Units>Metric<", "<Units>Imperial<"),
              "The text is in the units Imperial, and the project in Metric."}}) {
        Outcome const outcome = Paste(text);
        EXPECT_EQ(outcome.exitStatus, 1) << text;
        EXPECT_EQ(outcome.out, "") << text;
        EXPECT_TRUE(Holds(outcome.err, problem));
        EXPECT_TRUE(Holds(outcome.err, "slope: " + to + " stays as it is.\n"));
        EXPECT_EQ(ReadFile(to), before);
    }
}

TEST_F(CopyTest, NothingIsPastedIntoAFileThatCouldNotBeReadWhole) {
    Replace(to, "<Cohesion>", "<Crystal>3</Crystal><Cohesion>");
    std::string const before = ReadFile(to);
    Outcome const outcome = Paste(Copy({"Regions[1]"}));
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "Saving would lose what couldn't be read.\nslope: " + to + " stays as it is.\n"));
    EXPECT_EQ(ReadFile(to), before);
    EXPECT_EQ(Slope({"paste", File("absent.xml")}, Copy({"Regions[1]"})).exitStatus, 1);
}

/// On texts that are pasted into an open document.
class PasteTextTest : public example::ProblemTest {
protected:
    PasteTextTest() {
        Import("AT2");
        EXPECT_TRUE(slope::CopyText(document, {"Regions[1]"}, false, text).empty());
    }

    std::string Saved() {
        std::string const file = File("saved.xml");
        EXPECT_FALSE(document.Save(file).IsError());
        return ReadFile(file);
    }

    std::string text;
};

TEST_F(PasteTextTest, CutOffAnywhereIsRefusedAndChangesNothing) {
    std::string const before = Saved();
    for (std::size_t length = 0; length + 2 < text.size(); length += 7) {
        EXPECT_FALSE(slope::PasteText(document, text.substr(0, length)).problems.empty()) << length;
        if (length % 5 == 0) {
            ASSERT_EQ(Saved(), before) << length;
        }
    }
    EXPECT_EQ(Saved(), before);
}

TEST_F(PasteTextTest, ChangedAnywhereBreaksNothing) {
    for (std::size_t at = 0; at < text.size(); at += 11) {
        std::string changed = text;
        changed[at] = static_cast<char>(changed[at] ^ 0x15);
        slope::PasteText(document, changed); // refused, or another value
    }
    EXPECT_TRUE(slope::PasteText(document, text).problems.empty());
}

TEST_F(PasteTextTest, ManyRegionsOfOneNameAreTakenAndGetNamesOfTheirOwn) {
    constexpr int count = 500;
    std::string regions = "<Regions Len=\"" + std::to_string(count) + "\">";
    for (int i = 1; i <= count; ++i)
        regions += "<Region><ID>" + std::to_string(i) + "</ID><Name>Sand</Name><Material>0</Material></Region>";
    std::string const many = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<?slope-clipboard objects=\"11\" version=\"1.00\"?>\n"
                             "<HZNData Version=\"1.00\"><Project><Units>Metric</Units></Project>" +
                             regions + "</Regions></HZNData>\n";
    slope::Pasted const pasted = slope::PasteText(document, many);
    EXPECT_TRUE(pasted.problems.empty());
    ASSERT_EQ(pasted.added.size(), std::size_t(count));
    EXPECT_EQ(pasted.added[0], "Regions[3] (Sand)");
    EXPECT_EQ(pasted.added[1], "Regions[4] (Sand (2))");
    EXPECT_EQ(pasted.added[499], "Regions[502] (Sand (500))");
}

} // namespace
