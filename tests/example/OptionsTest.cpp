#include "examples/slope/Options.h"

#include "tests/example/Support.h"

#include <gtest/gtest.h>

namespace {

using example::Holds;
using slope::Options;

Options Parsed(std::vector<std::string> const& words) {
    Options options;
    std::string mistake;
    EXPECT_TRUE(slope::ParseOptions(words, options, mistake)) << mistake;
    return options;
}

std::string Mistake(std::vector<std::string> const& words) {
    Options options;
    std::string mistake;
    EXPECT_FALSE(slope::ParseOptions(words, options, mistake));
    return mistake;
}

TEST(OptionsTest, NoWordRunsTheMainJob) {
    Options const options = Parsed({});
    EXPECT_EQ(options.command, "run");
    EXPECT_EQ(options.problem, "");
}

TEST(OptionsTest, OptionsStandAnywhere) {
    Options const options = Parsed({"--tag", "set", "dam.xml", "Materials[1].Cohesion", "-12.5"});
    EXPECT_TRUE(options.tag);
    EXPECT_EQ(options.command, "set");
    EXPECT_EQ(options.arguments, (std::vector<std::string>{"dam.xml", "Materials[1].Cohesion", "-12.5"}));
    EXPECT_EQ(Parsed({"--problem", "AT1", "--out", "here"}).problem, "AT1");
}

TEST(OptionsTest, WordsBehindTwoDashesAreArguments) {
    EXPECT_EQ(Parsed({"set", "dam.xml", "Project.Title", "--", "--tag"}).arguments.back(), "--tag");
}

TEST(OptionsTest, SetTakesAnyNumberOfPairs) {
    EXPECT_EQ(Parsed({"set", "dam.xml", "Materials.Len", "2", "Materials[1].Name", "Clay"}).arguments.size(), 5u);
}

TEST(OptionsTest, MistakesAreNamed) {
    EXPECT_EQ(Mistake({"dance"}), "There is no command \"dance\".");
    EXPECT_EQ(Mistake({"run", "--fast"}), "There is no option --fast.");
    EXPECT_EQ(Mistake({"--problem"}), "--problem needs a value.");
    EXPECT_EQ(Mistake({"get", "dam.xml"}), "Usage: slope get FILE NAME");
    EXPECT_EQ(Mistake({"set", "dam.xml", "Materials.Len", "2", "Materials[1].Name"}),
              "Usage: slope set FILE NAME VALUE [NAME VALUE]...");
    EXPECT_EQ(Mistake({"show", "a.xml", "b.xml"}), "Usage: slope show FILE");
    EXPECT_EQ(Mistake({"show", "a.xml", "--problem", "AT1"}), "show takes no --problem.");
}

TEST(OptionsTest, HelpTellsCommandsAndExitStatuses) {
    EXPECT_TRUE(Parsed({"set", "--help"}).help);
    std::string const text = slope::HelpText();
    for (std::string const word : {"show FILE", "get FILE NAME", "set FILE NAME VALUE [NAME VALUE]...", "check FILE",
                                   "import PROBLEM FILE", "large [COUNT]", "--tag", "Exit status: 0"})
        EXPECT_TRUE(Holds(text, word));
}

} // namespace
