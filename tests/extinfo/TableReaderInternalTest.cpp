// The readers of a table, called as the document layer calls them.
#include "Common/extinfo/Cells.h"
#include "Common/extinfo/TableReader.h"

#include <gtest/gtest.h>

#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using Reader = htl::handle<sys::file::XmlElemReader>;

class TableReaderTest : public testing::Test {
protected:
    htl::handle<zo::XmlZOExtendedInfoReader> table{new zo::XmlZOExtendedInfoReader};
    std::vector<zo::ExtendedInfoEntry> entries;
};

TEST_F(TableReaderTest, TableIsNamedAfterItsDocument) {
    EXPECT_EQ(table->Name(), L"Meta_ExtendedInfo");
    EXPECT_EQ(table->CurrentRow(), -1);
}

TEST_F(TableReaderTest, RowsOfATableShareOneReader) {
    Reader const first = table->Element(L"Row");
    ASSERT_TRUE(first);
    EXPECT_EQ(table->Element(L"Other"), first);
    EXPECT_EQ(table->CurrentRow(), 1);
}

TEST_F(TableReaderTest, ListIsNamedAfterItsElement) {
    Reader const list = table->Element(L"Row")->Element(L"ViewTravList");
    ASSERT_TRUE(list);
    EXPECT_EQ(dynamic_cast<zo::XmlZOExtendedInfoTravListReader&>(*list).Name(), L"ViewTravList");
}

TEST_F(TableReaderTest, RowHasOneListReader) {
    Reader const row = table->Element(L"Row");
    EXPECT_TRUE(row->Element(L"ViewTravList"));
    EXPECT_FALSE(row->Element(L"ViewTravList"));
    table->Element(L"Row");
    EXPECT_TRUE(row->Element(L"ViewTravList"));
}

TEST_F(TableReaderTest, ItemOfAListHasNoReaderForChildren) {
    Reader const list = table->Element(L"Row")->Element(L"ViewTravList");
    EXPECT_FALSE(list->Element(L"Item")->Element(L"Anything"));
}

TEST_F(TableReaderTest, RowPushedCellByCellBecomesAnEntry) {
    table->Attribute({L"Rows", L"1"});
    Reader const row = table->Element(L"Row");
    row->Attribute({L"Tag", L"Soils"});
    row->Attribute({L"Label", L"Soils"});
    Reader const list = row->Element(L"ViewTravList");
    list->Attribute({L"Rows", L"1"});
    list->Element(L"Item")->Attribute({L"SourceTag", L"Regions"});
    ASSERT_FALSE(table->Entries(entries).IsError());
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].Tag, L"Soils");
    EXPECT_EQ(entries[0].Label, L"Soils");
    ASSERT_EQ(entries[0].viewTravList.size(), 1u);
    EXPECT_EQ(entries[0].viewTravList[0].SourceTag, L"Regions");
}

TEST_F(TableReaderTest, CellGivenTwiceIsTheLastOne) {
    Reader const row = table->Element(L"Row");
    row->Attribute({L"Tag", L"Soils"});
    row->Attribute({L"Tag", L"Points"});
    ASSERT_FALSE(table->Entries(entries).IsError());
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].Tag, L"Points");
}

TEST_F(TableReaderTest, EntriesReplaceWhatWasThere) {
    entries.resize(3);
    ASSERT_FALSE(table->Entries(entries).IsError());
    EXPECT_TRUE(entries.empty());
}

TEST_F(TableReaderTest, EntriesAreEmptyAfterACellThatFails) {
    Reader const row = table->Element(L"Row");
    row->Attribute({L"Tag", L"Points"});
    table->Element(L"Row");
    row->Attribute({L"Tag", L"Soils"});
    row->Attribute({L"Style", L"wide"});
    EXPECT_EQ(table->Entries(entries).AsWString(),
              L"Error with entry Soils: Unexpected style \"wide\", expected one of {text,header,table}");
    EXPECT_TRUE(entries.empty());
}

TEST_F(TableReaderTest, RowWithoutATableHasNoList) {
    htl::handle<zo::XmlZOExtendedInfoArrayElementReader> const row(new zo::XmlZOExtendedInfoArrayElementReader);
    EXPECT_FALSE(row->Element(L"ViewTravList"));
    EXPECT_EQ(row->TravList(0), nullptr);
}

// The tables of words.

void ExpectEachWordOnce(std::span<zo::extinfo::Word const> words, std::uint32_t group) {
    std::set<std::wstring_view> seen;
    std::uint32_t all = 0;
    for (zo::extinfo::Word const& word : words) {
        EXPECT_TRUE(seen.insert(word.text).second) << testing::PrintToString(word.text);
        EXPECT_EQ(word.bits & ~group, 0u) << testing::PrintToString(word.text);
        all |= word.bits;
        std::uint32_t bits = 0xFFFFFFFF;
        EXPECT_FALSE(zo::extinfo::ReadWords(bits, std::wstring(word.text), words).IsError());
        EXPECT_EQ(bits, word.bits);
    }
    EXPECT_EQ(all, group);
}

TEST(TableWordsTest, EachViewWordStandsForBitsOfItsGroup) { ExpectEachWordOnce(zo::extinfo::viewWords, 0x7); }
TEST(TableWordsTest, EachPhysicsWordStandsForBitsOfItsGroup) { ExpectEachWordOnce(zo::extinfo::physicsWords, 0x1FF00); }
TEST(TableWordsTest, EachModeWordStandsForBitsOfItsGroup) { ExpectEachWordOnce(zo::extinfo::modeWords, 0x60000); }

TEST(TableWordsTest, FailureLeavesTheBitsAsTheyWere) {
    std::uint32_t bits = 0x400;
    EXPECT_TRUE(zo::extinfo::ReadWords(bits, L"slope,rock", zo::extinfo::physicsWords).IsError());
    EXPECT_EQ(bits, 0x400u);
}

TEST(TableWordsTest, EmptyStyleCellIsText) {
    zo::style::Type style = zo::style::table;
    ASSERT_FALSE(zo::extinfo::ReadStyle(style, L"").IsError());
    EXPECT_EQ(style, zo::style::text);
}

TEST(TableWordsTest, UnknownStyleLeavesTheFieldAsItWas) {
    zo::style::Type style = zo::style::table;
    EXPECT_TRUE(zo::extinfo::ReadStyle(style, L"wide").IsError());
    EXPECT_EQ(style, zo::style::table);
}

} // namespace
