// What the application gives to other tools, and to translators.
#include "examples/slope/TableText.h"
#include "tests/example/Support.h"

#include "Common/extinfo/ExtendedInfoStore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace {

using example::Holds;
using example::Outcome;
using example::ReadFile;
using example::Replace;
using example::Slope;
using example::WriteFile;

using ExchangeTest = example::FolderTest;

/// Whether the rows of a file are those of a table that have a text, with their texts and nothing else.
testing::AssertionResult HoldsTextsOf(std::string const& file, std::string_view table) {
    zo::ExtendedInfoStore written, expected;
    if (written.ReadFile(std::filesystem::path(file).wstring()).IsError() ||
        expected.ReadBytes(table.data(), table.data() + table.size()).IsError())
        return testing::AssertionFailure() << "unreadable";
    std::size_t count = 0;
    for (std::size_t i = 0; i < expected.EntryCount(); ++i) {
        zo::ExtendedInfoEntry const& entry = expected.Entry(i);
        if (entry.Label.empty() && entry.Description.empty()) continue;
        ++count;
        std::size_t const place = written.Find(entry.Tag);
        if (place == zo::ExtendedInfoStore::End || written.Entry(place).Label != entry.Label ||
            written.Entry(place).Description != entry.Description)
            return testing::AssertionFailure() << std::string(entry.Tag.begin(), entry.Tag.end());
        if (written.Entry(place).Has(zo::ExtendedInfoField::Category))
            return testing::AssertionFailure() << "more than texts";
    }
    return written.EntryCount() == count ? testing::AssertionSuccess()
                                         : testing::AssertionFailure() << written.EntryCount() << " rows";
}

TEST_F(ExchangeTest, LoctextWritesTheTextsOfTheTable) {
    std::string const file = File("texts.xml");
    Outcome const outcome = Slope({"loctext", file});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "The texts are in " + file + "\n");
    EXPECT_TRUE(HoldsTextsOf(file, slope::EnglishTable()));
    EXPECT_TRUE(Holds(ReadFile(file), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Meta_ExtendedInfo Len=\"75\">\n"));
}

TEST_F(ExchangeTest, LoctextTakesOverAnEarlierTranslation) {
    std::string const german = File("german.xml"), file = File("texts.xml");
    WriteFile(german, std::string(slope::GermanTable()));
    EXPECT_EQ(Slope({"loctext", file, german}).exitStatus, 0);
    EXPECT_TRUE(HoldsTextsOf(file, slope::GermanTable()));

    // A text that was lost is there in English; a row that nothing asks for is not.
    Replace(german, "Label=\"Fläche\"", "Label=\"\"");
    Replace(german, "Tag=\"Regions.[].Lines\"", "Tag=\"Regions.[].Strings\"");
    EXPECT_EQ(Slope({"loctext", german, german}).exitStatus, 0);
    EXPECT_TRUE(Holds(ReadFile(german), "<Entry Tag=\"Regions.[].Area\" Label=\"Area\" Description=\"Was ihr"));
    EXPECT_TRUE(Holds(ReadFile(german), "<Entry Tag=\"Regions.[].Lines\" Label=\"&amp;Lines\""));
    EXPECT_FALSE(Holds(ReadFile(german), "Strings"));
}

TEST_F(ExchangeTest, LoctextThatFailsLeavesTheFile) {
    std::string const file = File("texts.xml"), earlier = File("earlier.xml");
    WriteFile(file, "as it was");
    WriteFile(earlier, "<Meta_ExtendedInfo>");
    Outcome outcome = Slope({"loctext", file, earlier});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(Holds(outcome.err, "slope: XML error in line 1, column "));
    EXPECT_EQ(ReadFile(file), "as it was");
    outcome = Slope({"loctext", File("nowhere/texts.xml")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(Holds(outcome.err, "slope: Could not write to file:Cannot write "));
}

} // namespace
