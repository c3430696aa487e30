// What the application gives to other tools, and to translators.
#include "examples/slope/TableText.h"
#include "tests/example/Support.h"

#include "Common/extinfo/ExtendedInfoStore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
    EXPECT_TRUE(Holds(ReadFile(file), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Meta_ExtendedInfo Len=\"76\">\n"));
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

/// The rows of a schema, without their numbers.
std::vector<std::string> RowsOf(std::string const& file) {
    std::vector<std::string> rows;
    std::string const text = ReadFile(file);
    for (std::size_t at = text.find("  <Entry "); at != text.npos; at = text.find("  <Entry ", at + 1))
        rows.push_back(text.substr(at, text.find('\n', at) - at));
    return rows;
}
std::string CellOf(std::string const& row, std::string const& column) {
    std::size_t const at = row.find(" " + column + "=\"");
    if (at == row.npos) return "(none)";
    std::size_t const begin = at + column.size() + 3;
    return row.substr(begin, row.find('"', begin) - begin);
}
/// The row of a tag, "" if there is none.
std::string RowOf(std::vector<std::string> const& rows, std::string const& tag) {
    for (std::string const& row : rows)
        if (CellOf(row, "NTag") == tag) return row;
    return "";
}

TEST_F(ExchangeTest, SchemaDescribesWhatIsDeclared) {
    std::string const file = File("schema.xml");
    Outcome const outcome = Slope({"schema", file});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "The schema is in " + file + "\n");
    std::vector<std::string> const rows = RowsOf(file);
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(CellOf(rows[0], "ZOName"), "HZNData");
    std::string const cohesion = RowOf(rows, "Materials.[].Cohesion");
    EXPECT_EQ(CellOf(cohesion, "DataType"), "double");
    EXPECT_EQ(CellOf(cohesion, "PersistBehaviour"), "Always");
    EXPECT_EQ(CellOf(cohesion, "Label"), "&amp;Cohesion");
    EXPECT_EQ(CellOf(cohesion, "Physics"), "stress,slope");
    EXPECT_EQ(CellOf(RowOf(rows, "Regions.[].Area"), "PersistBehaviour"), "No");
    EXPECT_EQ(CellOf(RowOf(rows, "Project.UpdateCalculatedValues"), "Label"), "Update");
}

TEST_F(ExchangeTest, SchemaOfTheViewHasWhatPeopleSee) {
    std::string const file = File("schema.xml");
    EXPECT_EQ(Slope({"schema", file, "--view"}).exitStatus, 0);
    std::vector<std::string> const rows = RowsOf(file);
    std::vector<std::string> branches;
    for (std::string const& row : rows)
        if (std::string const tag = CellOf(row, "NTag");
            tag.find('.') == tag.npos && CellOf(row, "AbbrevValue") == "(none)")
            branches.push_back(tag); // and no word of an enumeration
    // As the table puts them: water stands below the project.
    EXPECT_EQ(branches, (std::vector<std::string>{"Project", "Water", "Materials", "Regions", "Lines", "Points",
                                                  "SlipCircles", "Analyses", "Aquifer"}));
    EXPECT_EQ(CellOf(RowOf(rows, "Regions.[].Area"), "Label"), "Area");
}

TEST_F(ExchangeTest, SchemaThatCanNotBeWrittenFails) {
    for (std::vector<std::string> command : {std::vector<std::string>{"schema"}, {"xsd"}}) {
        command.push_back(File("nowhere/schema.xml"));
        Outcome const outcome = Slope(command);
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_TRUE(Holds(outcome.err, "slope: Cannot write " + File("nowhere/schema.xml")));
    }
}

TEST_F(ExchangeTest, ViewOfASchemaHasNoWord) {
    EXPECT_EQ(Slope({"schema", File("schema.xml"), "--view", "data"}).exitStatus, 2);
    EXPECT_EQ(Slope({"xsd", File("schema.xml"), "--view"}).exitStatus, 2);
    EXPECT_FALSE(std::filesystem::exists(File("schema.xml")));
}

/// Files that another program checks by the application's XML Schema.
class XsdTest : public example::FileTest {
protected:
    XsdTest() {
        Outcome const outcome = Slope({"xsd", schema});
        EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
        EXPECT_EQ(outcome.out, "The XML Schema is in " + schema + "\n");
    }

    Outcome Check() const { return example::Run("xmllint", {"--noout", "--nonet", "--schema", schema, file}); }

    std::string schema = File("slope.xsd");
};

TEST_F(XsdTest, AllPublishedProblemsAreValid) {
    for (std::string const problem : {"AT1", "AT2", "AT3", "FK1", "FK3", "GL1"}) {
        Import(problem);
        EXPECT_EQ(Check().exitStatus, 0) << problem << Check().err;
    }
}

TEST_F(XsdTest, ACopiedTextIsValid) {
    Import("AT2");
    std::string const text = Slope({"copy", file, "Regions[1]", "Regions[2]"}).out;
    WriteFile(file, text);
    EXPECT_EQ(Check().exitStatus, 0) << Check().err;
}

TEST_F(XsdTest, WhatIsWrongWithAFileIsFound) {
    for (auto const& [from, to] :
         {std::pair{"<Cohesion>9.8</Cohesion>", "<Cohesion>lots</Cohesion>"},
          std::pair{"<Cohesion>9.8</Cohesion>", "<Crystal>9.8</Crystal>"},
          std::pair{"<Units>Metric</Units>", "<Units>Cubits</Units>"}, std::pair{"X=\"48\"", "Z=\"48\""},
          std::pair{"<Materials Len=\"3\">", "<Materials Len=\"-3\">"}}) {
        Import("AT2");
        Replace(file, from, to);
        EXPECT_EQ(Check().exitStatus, 3) << to; // not valid
    }
}

} // namespace
