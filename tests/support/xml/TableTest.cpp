#include "Documents.h"
#include "support/xml/XmlTable.h"

using namespace documents;
using sys::file::XmlArrayElementDataTableReader;
using sys::file::XmlArrayElementReader;
using sys::file::XmlArrayReader;

namespace {

struct Materials {
    htl::handle<XmlArrayElementDataTableReader> table{new XmlArrayElementDataTableReader(L"Name,Cohesion,Phi")};
    htl::handle<XmlArrayReader> array{new XmlArrayReader(L"Materials", table)};

    void Read(std::string_view document) {
        htl::status const failure = sys::file::XmlStringRead(AsBytes(document), array);
        EXPECT_FALSE(failure.IsError()) << testing::PrintToString(failure.AsWString());
    }
    std::vector<std::wstring> Row(std::size_t row) const {
        std::vector<std::wstring> cells;
        for (std::size_t column = 0; column < table->ColumnCount(); ++column) cells.push_back(table->Cell(row, column));
        return cells;
    }
};

using Cells = std::vector<std::wstring>;

} // namespace

TEST(XmlTableTest, CellsStandInTheOrderOfTheColumnList) {
    Materials materials;
    materials.Read("<Ms Count='2'><M Phi='20' Name='Clay'/><M Cohesion='0' Name='Sand' Phi='35'/></Ms>");
    ASSERT_EQ(materials.table->ColumnCount(), 3u);
    ASSERT_EQ(materials.table->RowCount(), 2u);
    EXPECT_EQ(materials.Row(0), (Cells{L"Clay", L"", L"20"}));
    EXPECT_EQ(materials.Row(1), (Cells{L"Sand", L"0", L"35"}));
    EXPECT_EQ(materials.array->DeclaredRows(), 2u);
    EXPECT_EQ(materials.array->CurrentRow(), 1);
    EXPECT_EQ(materials.array->Name(), L"Materials");
    EXPECT_EQ(materials.array->ElementReader(), materials.table);
}

TEST(XmlTableTest, NamesOfElementsAndOfTheCountAreNotLookedAt) {
    Materials materials;
    materials.Read("<x y='1'><z Name='Clay'/></x>");
    EXPECT_EQ(materials.table->RowCount(), 1u);
    EXPECT_EQ(materials.table->Cell(0, 0), L"Clay");
}

TEST(XmlTableTest, UnknownAttributesAndChildrenOfRowsAreIgnored) {
    Materials materials;
    materials.Read("<Ms Count='1'><M Colour='red' Name='Clay'><Name Name='Peat'>text</Name></M></Ms>");
    EXPECT_EQ(materials.Row(0), (Cells{L"Clay", L"", L""}));
    EXPECT_EQ(materials.table->RowCount(), 1u);
}

TEST(XmlTableTest, RowsThatAreDeclaredButMissingAreEmpty) {
    Materials materials;
    materials.Read("<Ms Count='3'><M Name='Clay'/></Ms>");
    ASSERT_EQ(materials.table->RowCount(), 3u);
    EXPECT_EQ(materials.Row(0), (Cells{L"Clay", L"", L""}));
    EXPECT_EQ(materials.Row(1), (Cells{L"", L"", L""}));
    EXPECT_EQ(materials.Row(2), (Cells{L"", L"", L""}));
}

TEST(XmlTableTest, RowsBeyondTheDeclaredCountAreRead) {
    Materials materials;
    materials.Read("<Ms Count='1'><M Name='Clay'/><M/><M Name='Sand'/></Ms>");
    ASSERT_EQ(materials.table->RowCount(), 3u);
    EXPECT_EQ(materials.table->Cell(1, 0), L"");
    EXPECT_EQ(materials.table->Cell(2, 0), L"Sand");
}

TEST(XmlTableTest, CountThatIsNoNumberCountsAsZero) {
    for (char const* count : {"", "two", "-1", "+1", " 1", "1.0", "1000001", "99999999999999999999999999"}) {
        Materials materials;
        materials.Read(std::string("<Ms Count='") + count + "'/>");
        EXPECT_EQ(materials.table->RowCount(), 0u) << count;
        materials.Read(std::string("<Ms Count='") + count + "'><M Name='Clay'/></Ms>");
        EXPECT_EQ(materials.table->RowCount(), 1u) << count;
    }
}

TEST(XmlTableTest, GreatestCountIsDeclaredWithoutTakingMemoryForEachRow) {
    std::vector<Materials> many(1000);
    for (Materials& materials : many) {
        materials.Read("<Ms Count='1000000'/>");
        ASSERT_EQ(materials.table->RowCount(), 1000000u);
        EXPECT_EQ(materials.table->Cell(999999, 2), L"");
    }
}

TEST(XmlTableTest, CellsOutsideOfTheTableAreEmpty) {
    Materials materials;
    materials.Read("<Ms><M Name='Clay'/></Ms>");
    EXPECT_EQ(materials.table->Cell(0, 3), L"");
    EXPECT_EQ(materials.table->Cell(7, 0), L"");
}

TEST(XmlTableTest, NewCountEmptiesAllRows) {
    Materials materials;
    materials.Read("<Ms Count='2'><M Name='Clay'/></Ms>");
    materials.array->Attribute({L"Count", L"1"});
    EXPECT_EQ(materials.table->RowCount(), 1u);
    EXPECT_EQ(materials.table->Cell(0, 0), L"");
}

TEST(XmlTableTest, ColumnListMayQuoteAndEscape) {
    htl::handle<XmlArrayElementDataTableReader> const table(new XmlArrayElementDataTableReader(L"\"a,b\",c\\,d,c"));
    htl::handle<XmlArrayReader> const array(new XmlArrayReader(L"T", table));
    ASSERT_EQ(table->ColumnCount(), 3u);
    (void)array->Element(L"row");
    table->Attribute({L"a,b", L"1"});
    table->Attribute({L"c,d", L"2"});
    table->Attribute({L"c", L"3"});
    table->Attribute({L"a", L"4"});
    EXPECT_EQ(table->Cell(0, 0), L"1");
    EXPECT_EQ(table->Cell(0, 1), L"2");
    EXPECT_EQ(table->Cell(0, 2), L"3");
}

TEST(XmlTableTest, CellsWithoutARowAreDropped) {
    htl::handle<XmlArrayElementDataTableReader> const table(new XmlArrayElementDataTableReader(L"Name"));
    table->Attribute({L"Name", L"no array yet"});
    {
        htl::handle<XmlArrayReader> const array(new XmlArrayReader(L"T", table));
        table->Attribute({L"Name", L"no row yet"});
    }
    table->Attribute({L"Name", L"no array any more"});
    table->ArrayLengthKnown();
    EXPECT_EQ(table->RowCount(), 0u);
}

TEST(XmlTableTest, ElementReaderLearnsTheCountAndTheRow) {
    struct Rows final : XmlArrayElementReader {
        std::vector<std::size_t> lengths;
        std::vector<std::ptrdiff_t> rows;
        void ArrayLengthKnown() override { lengths.push_back(Array()->DeclaredRows()); }
        void Text(std::wstring const&) override { rows.push_back(Array()->CurrentRow()); }
    };
    htl::handle<Rows> const rows(new Rows);
    htl::handle<XmlArrayReader> const array(new XmlArrayReader(L"T", rows));
    ASSERT_FALSE(sys::file::XmlStringRead(AsBytes("<T n='2'><r>a</r><r/><r>b</r></T>"), array).IsError());
    EXPECT_EQ(rows->lengths, std::vector<std::size_t>{2});
    EXPECT_EQ(rows->rows, (std::vector<std::ptrdiff_t>{0, 2}));
}
