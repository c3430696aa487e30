#include "examples/slope/Csv.h"

#include "examples/slope/Text.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using slope::CsvTable;
using slope::Message;

constexpr std::array<std::string_view, 2> columns{"layer", "cohesion"};

std::string Refusal(std::string_view text) {
    CsvTable table;
    htl::status const failure = table.Parse("soils.csv", text, columns);
    EXPECT_TRUE(table.Rows().empty());
    return Message(failure);
}

TEST(CsvTest, RowsAreReadBehindTheHeaderWithTheirLines) {
    CsvTable table;
    ASSERT_FALSE(table.Parse("soils.csv", "layer,cohesion\n1,41.65\n\n2,9.8\n", columns).IsError());
    ASSERT_EQ(table.Rows().size(), 2u);
    EXPECT_EQ(table.Rows()[0].fields, (std::vector<std::string>{"1", "41.65"}));
    EXPECT_EQ(table.Rows()[0].line, 2u);
    EXPECT_EQ(table.Rows()[1].fields, (std::vector<std::string>{"2", "9.8"}));
    EXPECT_EQ(table.Rows()[1].line, 4u);
}

TEST(CsvTest, LastLineNeedsNoEndAndLinesMayEndAsElsewhere) {
    CsvTable table;
    ASSERT_FALSE(table.Parse("soils.csv", "layer,cohesion\r\n1,\r\n2,9.8", columns).IsError());
    ASSERT_EQ(table.Rows().size(), 2u);
    EXPECT_EQ(table.Rows()[0].fields[1], "");
    EXPECT_EQ(table.Rows()[1].fields[1], "9.8");
}

TEST(CsvTest, QuotedFieldsHoldCommasQuotesAndLineEnds) {
    CsvTable table;
    ASSERT_FALSE(
        table.Parse("soils.csv", "layer,cohesion\n\"clay, stiff\",\"so called \"\"soft\"\"\nclay\"\n3,4\n", columns)
            .IsError());
    ASSERT_EQ(table.Rows().size(), 2u);
    EXPECT_EQ(table.Rows()[0].fields[0], "clay, stiff");
    EXPECT_EQ(table.Rows()[0].fields[1], "so called \"soft\"\nclay");
    EXPECT_EQ(table.Rows()[1].line, 4u); // the quoted line end counts
}

TEST(CsvTest, MarkBeforeTheHeaderIsNoPartOfIt) {
    CsvTable table;
    EXPECT_FALSE(table.Parse("soils.csv", "\xEF\xBB\xBFlayer,cohesion\n1,2\n", columns).IsError());
    EXPECT_EQ(table.Rows().size(), 1u);
}

TEST(CsvTest, EachKindOfBadRowIsRefusedWithItsLine) {
    EXPECT_EQ(Refusal("layer,friction\n"), "soils.csv, line 1: the columns must be layer,cohesion.");
    EXPECT_EQ(Refusal("layer,cohesion\n1,2\n1,2,3\n"), "soils.csv, line 3: 3 fields where there are 2 columns.");
    EXPECT_EQ(Refusal("layer,cohesion\n1,2\n7\n"), "soils.csv, line 3: 1 fields where there are 2 columns.");
    EXPECT_EQ(Refusal("layer,cohesion\n\"1,2\n"), "soils.csv, line 2: the quote opened in line 2 is never closed.");
    EXPECT_EQ(Refusal("layer,cohesion\n\"1\"x,2\n"),
              "soils.csv, line 2: a quoted field goes on behind its closing quote.");
    EXPECT_EQ(Refusal("layer,cohesion\n1,2\"\n"),
              "soils.csv, line 2: a quote stands inside a field that isn't quoted.");
}

TEST(CsvTest, FileThatIsNotThereIsRefusedByName) {
    CsvTable table;
    EXPECT_EQ(Message(table.Read("/nowhere/soils.csv", columns)), "/nowhere/soils.csv: the file can't be read.");
}

class CsvNumberTest : public testing::Test {
protected:
    void Field(std::string const& text) {
        ASSERT_FALSE(table.Parse("soils.csv", "layer,cohesion\n" + text + ",0\n", columns).IsError());
    }
    std::string NumberRefusal() {
        double value = -7;
        std::string const message = Message(table.Number(table.Rows()[0], 0, value));
        EXPECT_EQ(value, -7);
        return message;
    }
    std::string OrdinalRefusal() {
        int value = -7;
        std::string const message = Message(table.Ordinal(table.Rows()[0], 0, value));
        EXPECT_EQ(value, -7);
        return message;
    }

    CsvTable table;
};

TEST_F(CsvNumberTest, NumbersAreWholeFields) {
    Field("-41.65e1");
    double value = 0;
    EXPECT_FALSE(table.Number(table.Rows()[0], 0, value).IsError());
    EXPECT_EQ(value, -416.5);
    Field("12x");
    EXPECT_EQ(NumberRefusal(), "soils.csv, line 2: layer \"12x\" is no number.");
    Field("inf");
    EXPECT_EQ(NumberRefusal(), "soils.csv, line 2: layer \"inf\" is no number.");
    Field("1e999");
    EXPECT_EQ(NumberRefusal(), "soils.csv, line 2: layer \"1e999\" is out of range.");
    Field("");
    EXPECT_EQ(NumberRefusal(), "soils.csv, line 2: layer \"\" is no number.");
}

TEST_F(CsvNumberTest, OrdinalsCountFromOne) {
    Field("12");
    int value = 0;
    EXPECT_FALSE(table.Ordinal(table.Rows()[0], 0, value).IsError());
    EXPECT_EQ(value, 12);
    for (std::string const text : {"0", "-1", "1.5", "99999999999"}) {
        Field(text);
        EXPECT_EQ(OrdinalRefusal(), "soils.csv, line 2: layer \"" + text + "\" is no whole number from 1.");
    }
}

} // namespace
