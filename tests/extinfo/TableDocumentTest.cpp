// The document of a table: elements, attributes, columns, traversal lists.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"
#include "tests/registry/Rows.h"

#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <bitset>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;
using Field = zo::ExtendedInfoField;
using Fields = std::bitset<Field::count>;

constexpr std::uint32_t untouchedMask = 0x7FF07;

Fields Stated(std::initializer_list<unsigned> fields) {
    Fields set;
    for (unsigned const field : fields) set.set(field);
    return set;
}

htl::status ReadInto(ExtendedInfoStore& store, std::string_view document) {
    return store.ReadBytes(document.data(), document.data() + document.size());
}

class TableDocumentTest : public testing::Test {
protected:
    void Read(std::string_view document) {
        htl::status const result = ReadInto(store, document);
        ASSERT_TRUE(Succeeds(result));
    }
    void Read(TableText const& table) { Read(table.Bytes()); }
    /// The entry with a tag; an empty one, after a failure of the test, without.
    ExtendedInfoEntry Of(std::wstring const& tag) const {
        std::size_t const index = store.Find(tag);
        EXPECT_NE(index, ExtendedInfoStore::End) << testing::PrintToString(tag);
        return index == ExtendedInfoStore::End ? ExtendedInfoEntry() : store.Entry(index);
    }

    ExtendedInfoStore store;
};

TEST_F(TableDocumentTest, RowWithATagAloneHasTheDefaultsOfEveryField) {
    Read(TableText().Entry(L"Soils.[].Cohesion"));
    ASSERT_EQ(store.EntryCount(), 1u);
    ExtendedInfoEntry const& entry = store.Entry(0);
    EXPECT_EQ(entry.Tag, L"Soils.[].Cohesion");
    EXPECT_EQ(entry.Label, L"");
    EXPECT_EQ(entry.LabelTag, L"");
    EXPECT_EQ(entry.Description, L"");
    EXPECT_EQ(entry.PrettyPrintNameTag, L"");
    EXPECT_EQ(entry.PrettyPrintValueTag, L"");
    EXPECT_EQ(entry.ColorTag, L"");
    EXPECT_EQ(entry.CustomView, L"");
    EXPECT_EQ(entry.Category, L"");
    EXPECT_EQ(entry.mask, untouchedMask);
    EXPECT_EQ(entry.Style, zo::style::text);
    EXPECT_TRUE(entry.viewTravList.empty());
    EXPECT_FALSE(entry.IsDynamic);
    EXPECT_EQ(entry.fields, Stated({Field::IsDynamic}));
}

TEST_F(TableDocumentTest, EveryTextColumnFillsItsOwnField) {
    Read(TableText().Entry(L"Soils.[]", {{L"Description", L"One soil"},
                                         {L"Label", L"&Soil"},
                                         {L"LabelTag", L"!Label Name"},
                                         {L"PrettyPrintNameTag", L"Name"},
                                         {L"PrettyPrintValueTag", L"Cohesion"},
                                         {L"ColorTag", L"Paint"},
                                         {L"CustomView", L"soilEditor"},
                                         {L"Category", L"Materials"}}));
    ExtendedInfoEntry const entry = Of(L"Soils.[]");
    EXPECT_EQ(entry.Description, L"One soil");
    EXPECT_EQ(entry.Label, L"&Soil");
    EXPECT_EQ(entry.LabelTag, L"!Label Name");
    EXPECT_EQ(entry.PrettyPrintNameTag, L"Name");
    EXPECT_EQ(entry.PrettyPrintValueTag, L"Cohesion");
    EXPECT_EQ(entry.ColorTag, L"Paint");
    EXPECT_EQ(entry.CustomView, L"soilEditor");
    EXPECT_EQ(entry.Category, L"Materials");
    EXPECT_EQ(entry.fields,
              Stated({Field::IsDynamic, Field::Description, Field::Label, Field::LabelTag, Field::PrettyPrintNameTag,
                      Field::PrettyPrintValueTag, Field::ColorTag, Field::CustomView, Field::Category}));
}

TEST_F(TableDocumentTest, EachTextColumnStatesItsFieldAlone) {
    std::vector<std::pair<std::wstring, unsigned>> const columns = {{L"Label", 1},
                                                                    {L"LabelTag", 2},
                                                                    {L"Description", 3},
                                                                    {L"PrettyPrintNameTag", 4},
                                                                    {L"PrettyPrintValueTag", 5},
                                                                    {L"ColorTag", 6},
                                                                    {L"CustomView", 7},
                                                                    {L"Category", 8}};
    TableText table;
    for (auto const& [column, field] : columns) table.Entry(column, {{column, L"x"}});
    Read(table);
    for (auto const& [column, field] : columns)
        EXPECT_EQ(Of(column).fields, Stated({0, field})) << testing::PrintToString(column);
}

TEST_F(TableDocumentTest, EachParsedColumnStatesItsFieldAlone) {
    Read(TableText()
             .Entry(L"Dynamic", {{L"IsDynamic", L"1"}})
             .Entry(L"Views", {{L"ViewExcl", L"data"}})
             .Entry(L"Physics", {{L"Physics", L"water"}})
             .Entry(L"Mode", {{L"Mode", L"define"}})
             .Entry(L"Style", {{L"Style", L"header"}})
             .Entry(L"List", {}, {}));
    EXPECT_EQ(Of(L"Dynamic").fields, Stated({0}));
    EXPECT_EQ(Of(L"List").fields, Stated({0, 9}));
    EXPECT_EQ(Of(L"Views").fields, Stated({0, 10}));
    EXPECT_EQ(Of(L"Physics").fields, Stated({0, 11}));
    EXPECT_EQ(Of(L"Mode").fields, Stated({0, 12}));
    EXPECT_EQ(Of(L"Style").fields, Stated({0, 13}));
}

TEST_F(TableDocumentTest, TextIsTakenAsItStands) {
    Read(TableText().Entry(L"Soils", {{L"Label", L" 100 %s {%1} & <Böden>, \"a\" 𝛼 "}}));
    EXPECT_EQ(Of(L"Soils").Label, L" 100 %s {%1} & <Böden>, \"a\" 𝛼 ");
}

TEST_F(TableDocumentTest, BlankCellIsStatedText) {
    Read(TableText().Entry(L"Soils", {{L"Label", L" "}}));
    EXPECT_EQ(Of(L"Soils").Label, L" ");
    EXPECT_EQ(Of(L"Soils").fields, Stated({0, 1}));
}

TEST_F(TableDocumentTest, EmptyCellIsNotStated) {
    Read(TableText().Entry(L"Soils", {{L"Label", L""},
                                      {L"Description", L""},
                                      {L"ViewExcl", L""},
                                      {L"Physics", L""},
                                      {L"Mode", L""},
                                      {L"Style", L""}}));
    EXPECT_EQ(Of(L"Soils").fields, Stated({0}));
    EXPECT_EQ(Of(L"Soils").mask, untouchedMask);
}

TEST_F(TableDocumentTest, RowWithoutTagIsSkippedSilently) {
    Read(TableText().Row({{L"Label", L"Nobody"}}).Entry(L"", {{L"Label", L"Nobody"}}).Entry(L"Soils"));
    ASSERT_EQ(store.EntryCount(), 1u);
    EXPECT_EQ(store.Entry(0).Tag, L"Soils");
}

TEST_F(TableDocumentTest, CellsOfARowWithoutTagAreNotLookedAt) {
    Read(TableText().Row({{L"Physics", L"no such word"}}).Entry(L"Soils"));
    EXPECT_EQ(store.EntryCount(), 1u);
}

TEST_F(TableDocumentTest, AttributeThatIsNoColumnIsIgnored) {
    Read(TableText().Entry(L"Soils", {{L"Colour", L"red"}, {L"label", L"Soils"}, {L"Sourcetag", L"Points"}}));
    EXPECT_EQ(Of(L"Soils").fields, Stated({0}));
}

TEST_F(TableDocumentTest, ColumnViewHierarchyHasNoEffect) {
    Read(TableText().Entry(L"Soils", {{L"ViewHierarchy", L"Regions"}}));
    EXPECT_EQ(Of(L"Soils").fields, Stated({0}));
    EXPECT_TRUE(Of(L"Soils").viewTravList.empty());
}

TEST_F(TableDocumentTest, NamesOfElementsAndOfTheCountAreNotLookedAt) {
    Read("<Tabelle Anzahl='2'><Zeile Tag='Soils'><Liste n='1'><x SourceTag='Regions'/></Liste></Zeile>"
         "<Soils Tag='Points'/></Tabelle>");
    ASSERT_EQ(store.EntryCount(), 2u);
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 1u);
    EXPECT_EQ(Of(L"Soils").viewTravList[0].SourceTag, L"Regions");
}

TEST_F(TableDocumentTest, DeclaredRowsThatAreMissingGiveNoEntryAndNoMessage) {
    Read(TableText().Entry(L"Soils").Declare(L"40"));
    EXPECT_EQ(store.EntryCount(), 1u);
}

TEST_F(TableDocumentTest, RowsBeyondTheDeclaredOnesAreRead) {
    Read(TableText().Entry(L"Soils").Entry(L"Points").Entry(L"Regions").Declare(L"1"));
    EXPECT_EQ(store.EntryCount(), 3u);
}

TEST_F(TableDocumentTest, RowsAreReadWithoutAUsableCount) {
    for (std::string const count : {"", " n='no number'", " n='-1'", " n='99999999999999999999999'"}) {
        ExtendedInfoStore fresh;
        htl::status const result = ReadInto(fresh, "<T" + count + "><R Tag='Soils'/><R Tag='Points'/></T>");
        EXPECT_TRUE(Succeeds(result)) << count;
        EXPECT_EQ(fresh.EntryCount(), 2u) << count;
    }
}

TEST_F(TableDocumentTest, TextBetweenRowsIsIgnored) {
    Read("<T n='1'>words<R Tag='Soils'>more<L n='1'>words<I SourceTag='Regions'>x</I></L></R></T>");
    ASSERT_EQ(store.EntryCount(), 1u);
    EXPECT_EQ(Of(L"Soils").viewTravList.size(), 1u);
}

TEST_F(TableDocumentTest, FileIsReadAsBytesAre) {
    std::filesystem::path const path = std::filesystem::temp_directory_path() / "zo-table-document-test-Böden.xml";
    std::ofstream(path, std::ios::binary) << TableText::WithDefault().Entry(L"Soils", {{L"Label", L"Böden"}}).Bytes();
    htl::status const result = store.ReadFile(str::as_wstring(path.string()));
    std::filesystem::remove(path);
    EXPECT_TRUE(Succeeds(result));
    EXPECT_EQ(store.EntryCount(), 2u);
    EXPECT_EQ(Of(L"Soils").Label, L"Böden");
}

TEST_F(TableDocumentTest, FileThatIsMissingGivesTheFailureOfTheDocument) {
    std::wstring const name = L"/no/such/folder/table.xml";
    EXPECT_TRUE(FailsAs(store.ReadFile(name), sys::file::XmlFileRead(name, {})));
    EXPECT_EQ(store.EntryCount(), 0u);
}

TEST_F(TableDocumentTest, DocumentIn16BitsIsRead) {
    std::vector<unsigned char> document{0xFF, 0xFE};
    for (char const c : std::string_view("<T n='1'><R Tag='Soils'/></T>")) {
        document.push_back(static_cast<unsigned char>(c));
        document.push_back(0);
    }
    htl::status const result = store.ReadBytes(document.data(), document.data() + document.size());
    EXPECT_TRUE(Succeeds(result));
    EXPECT_NE(store.Find(L"Soils"), ExtendedInfoStore::End);
}

// Traversal lists.

TEST_F(TableDocumentTest, ListStatesItsFieldAndHoldsItsItemsInOrder) {
    Read(TableText().Entry(L"Soils", {}, {From(L"Regions"), As(L"Points.*", L"P*"), Also(L".Name")}));
    ExtendedInfoEntry const entry = Of(L"Soils");
    EXPECT_EQ(entry.fields, Stated({0, 9}));
    ASSERT_EQ(entry.viewTravList.size(), 3u);
    EXPECT_EQ(entry.viewTravList[0].SourceTag, L"Regions");
    EXPECT_EQ(entry.viewTravList[0].DestTag, L"");
    EXPECT_TRUE(entry.viewTravList[0].RemoveFromSource);
    EXPECT_EQ(entry.viewTravList[1].SourceTag, L"Points.*");
    EXPECT_EQ(entry.viewTravList[1].DestTag, L"P*");
    EXPECT_EQ(entry.viewTravList[2].SourceTag, L".Name");
    EXPECT_FALSE(entry.viewTravList[2].RemoveFromSource);
}

TEST_F(TableDocumentTest, ItemMovesItsSourceAndIsFixedUnlessItSaysOtherwise) {
    Read(TableText().Entry(L"Soils", {}, {From(L"Regions"), {{L"SourceTag", L"Points"}, {L"RemoveFromSource", L""}}}));
    for (zo::ViewTravItem const& item : Of(L"Soils").viewTravList) {
        EXPECT_TRUE(item.RemoveFromSource);
        EXPECT_FALSE(item.IsDynamic);
    }
}

TEST_F(TableDocumentTest, ItemStaysInItsOldPlaceForTheText0) {
    Read(TableText().Entry(L"Soils", {}, {{{L"SourceTag", L"Regions"}, {L"RemoveFromSource", L"0"}}}));
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 1u);
    EXPECT_FALSE(Of(L"Soils").viewTravList[0].RemoveFromSource);
}

TEST_F(TableDocumentTest, BlankCellOfAnItemIsFalseInBothColumns) {
    Read(TableText().Entry(L"Soils", {},
                           {{{L"SourceTag", L"Regions"}, {L"RemoveFromSource", L" "}, {L"IsDynamic", L" "}}}));
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 1u);
    EXPECT_FALSE(Of(L"Soils").viewTravList[0].RemoveFromSource);
    EXPECT_FALSE(Of(L"Soils").viewTravList[0].IsDynamic);
}

TEST_F(TableDocumentTest, ItemIsDynamicForAnyOtherText) {
    Read(TableText().Entry(L"Soils", {}, {{{L"SourceTag", L"Regions"}, {L"IsDynamic", L"yes"}}}));
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 1u);
    EXPECT_TRUE(Of(L"Soils").viewTravList[0].IsDynamic);
    EXPECT_TRUE(Of(L"Soils").viewTravList[0].RemoveFromSource);
}

TEST_F(TableDocumentTest, ListWithoutItemsStatesItsField) {
    Read("<T n='2'><R Tag='Soils'><L n='0'/></R><R Tag='Points'><L/></R></T>");
    EXPECT_EQ(Of(L"Soils").fields, Stated({0, 9}));
    EXPECT_EQ(Of(L"Points").fields, Stated({0, 9}));
    EXPECT_TRUE(Of(L"Soils").viewTravList.empty());
}

TEST_F(TableDocumentTest, ListBelongsToItsRowAlsoBehindRowsWithoutAttributes) {
    Read("<T n='4'><R/><R Tag='Soils'/><R/><R Tag='Points'><L n='1'><I SourceTag='Regions'/></L></R></T>");
    EXPECT_EQ(Of(L"Soils").fields, Stated({0}));
    ASSERT_EQ(Of(L"Points").viewTravList.size(), 1u);
}

TEST_F(TableDocumentTest, ListOfARowWithoutTagIsDropped) {
    Read("<T n='2'><R><L n='1'><I SourceTag='Regions'/></L></R><R Tag='Points'/></T>");
    ASSERT_EQ(store.EntryCount(), 1u);
    EXPECT_EQ(Of(L"Points").fields, Stated({0}));
}

TEST_F(TableDocumentTest, FirstOfTwoListsInARowCounts) {
    Read("<T n='2'><R Tag='Soils'><L n='1'><I SourceTag='Regions'/></L><L n='2'><I SourceTag='A'/>"
         "<I SourceTag='B'/></L></R><R Tag='Points'><L n='1'><I SourceTag='Results'/></L></R></T>");
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 1u);
    EXPECT_EQ(Of(L"Soils").viewTravList[0].SourceTag, L"Regions");
    ASSERT_EQ(Of(L"Points").viewTravList.size(), 1u);
    EXPECT_EQ(Of(L"Points").viewTravList[0].SourceTag, L"Results");
}

TEST_F(TableDocumentTest, ItemsThatAreMerelyDeclaredAreEmpty) {
    Read("<T n='1'><R Tag='Soils'><L n='3'><I SourceTag='Regions' RemoveFromSource='0'/></L></R></T>");
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 3u);
    EXPECT_EQ(Of(L"Soils").viewTravList[2].SourceTag, L"");
    EXPECT_TRUE(Of(L"Soils").viewTravList[2].RemoveFromSource);
}

TEST_F(TableDocumentTest, ItemsBeyondTheDeclaredOnesAreRead) {
    Read("<T n='1'><R Tag='Soils'><L n='1'><I SourceTag='A'/><I/><I SourceTag='C'/></L></R></T>");
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 3u);
    EXPECT_EQ(Of(L"Soils").viewTravList[1].SourceTag, L"");
    EXPECT_EQ(Of(L"Soils").viewTravList[2].SourceTag, L"C");
}

TEST_F(TableDocumentTest, WhatStandsInsideAnItemIsSkipped) {
    Read("<T n='1'><R Tag='Soils'><L n='1'><I SourceTag='A'><I SourceTag='B'><L n='7'/></I></I></L></R></T>");
    ASSERT_EQ(Of(L"Soils").viewTravList.size(), 1u);
    EXPECT_EQ(Of(L"Soils").viewTravList[0].SourceTag, L"A");
}

TEST_F(TableDocumentTest, CopyOfAnEntryIsDeep) {
    Read(TableText().Entry(L"Soils", {{L"Label", L"Soils"}}, {From(L"Regions")}));
    ExtendedInfoEntry copy = store.Entry(0);
    copy.Label[0] = L'x';
    copy.viewTravList[0].SourceTag = L"Points";
    EXPECT_EQ(store.Entry(0).Label, L"Soils");
    EXPECT_EQ(store.Entry(0).viewTravList[0].SourceTag, L"Regions");
}

// The registry's own store.

TEST(RegistryTableTest, BytesGoToTheCurrentRegistry) {
    embankment::Embankment const project;
    std::string const bytes = TableText::WithDefault().Entry(L"Soils").Bytes();
    EXPECT_TRUE(Succeeds(zo::ZOExtendedInfoRead(bytes.data(), bytes.data() + bytes.size())));
    EXPECT_EQ(zo::extinfo::Store().EntryCount(), 2u);
    {
        embankment::Embankment const other;
        EXPECT_EQ(zo::extinfo::Store().EntryCount(), 0u);
    }
    EXPECT_EQ(zo::extinfo::Store().EntryCount(), 2u);
}

TEST(RegistryTableTest, FileGoesToTheCurrentRegistry) {
    embankment::Embankment const project;
    std::filesystem::path const path = std::filesystem::temp_directory_path() / "zo-registry-table-test.xml";
    std::ofstream(path, std::ios::binary) << TableText::WithDefault().Bytes();
    htl::status const result = zo::ZOExtendedInfoRead(str::as_wstring(path.string()));
    std::filesystem::remove(path);
    EXPECT_TRUE(Succeeds(result));
    EXPECT_EQ(zo::extinfo::Store().EntryCount(), 1u);
}

TEST(RegistryTableTest, TableIsReadBeforeAnythingIsRegistered) {
    rows::OwnRegistry const empty;
    EXPECT_TRUE(Succeeds(TableText::WithDefault().Entry(L"Soils").Read()));
    EXPECT_EQ(zo::extinfo::Store().EntryCount(), 2u);
}

} // namespace
