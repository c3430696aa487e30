// How the rows of tables stand in a store until they are joined.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"
#include "tests/fixtures/ViewModel.h"

#include "support/xml/XmlFile.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using sys::thread::impl::ExclusiveAccessGuard;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;

std::vector<std::wstring> Tags(ExtendedInfoStore const& store) {
    std::vector<std::wstring> tags;
    for (std::size_t i = 0; i < store.EntryCount(); ++i) tags.push_back(store.Entry(i).Tag);
    return tags;
}

using Texts = std::vector<std::wstring>;

class TableStoreTest : public testing::Test {
protected:
    void Read(TableText const& table) { ASSERT_TRUE(Succeeds(table.ReadInto(store))); }

    ExtendedInfoStore store;
};

TEST_F(TableStoreTest, NewStoreIsEmpty) {
    EXPECT_EQ(store.EntryCount(), 0u);
    EXPECT_EQ(store.FirstTableCount(), 0u);
    EXPECT_FALSE(store.IsCompiled());
    EXPECT_EQ(store.Find(L"Default"), ExtendedInfoStore::End);
    EXPECT_EQ(store.Find(L""), ExtendedInfoStore::End);
}

TEST_F(TableStoreTest, DefaultEntryHasNoFieldsAndNoMaskBeforeTheTablesAreJoined) {
    Read(TableText::WithDefault());
    EXPECT_EQ(store.DefaultEntry().mask, 0u);
    EXPECT_TRUE(store.DefaultEntry().fields.none());
    EXPECT_EQ(store.DefaultEntry().Tag, L"");
}

TEST_F(TableStoreTest, EntriesAreSortedByTagAShorterOneFirst) {
    Read(TableText()
             .Entry(L"Soils.[]")
             .Entry(L"soils")
             .Entry(L"Soils")
             .Entry(L"*.Name")
             .Entry(L"Default")
             .Entry(L"Soils.[].Name"));
    EXPECT_EQ(Tags(store), (Texts{L"*.Name", L"Default", L"Soils", L"Soils.[]", L"Soils.[].Name", L"soils"}));
}

TEST_F(TableStoreTest, OrderIsThatOfUnitsOf16Bits) {
    // U+10000 is the pair D800 DC00 and stands before U+FF21; by the number of the character it would stand behind.
    Read(TableText().Entry(L"\uFF21").Entry(L"\U00010000").Entry(L"z"));
    EXPECT_EQ(Tags(store), (Texts{L"z", L"\U00010000", L"\uFF21"}));
    EXPECT_EQ(store.Find(L"\U00010000"), 1u);
    EXPECT_EQ(store.Find(L"\uFF21"), 2u);
}

TEST_F(TableStoreTest, RowKeepsItsCellsWhenItIsSorted) {
    Read(TableText()
             .Entry(L"Soils", {{L"Label", L"Soils of the embankment"}, {L"Mode", L"define"}}, {From(L"Regions")})
             .Entry(L"Points", {{L"Description", L"Corners of the regions"}}));
    EXPECT_EQ(store.Entry(0).Tag, L"Points");
    EXPECT_EQ(store.Entry(0).Description, L"Corners of the regions");
    EXPECT_TRUE(store.Entry(0).viewTravList.empty());
    EXPECT_EQ(store.Entry(1).Label, L"Soils of the embankment");
    EXPECT_EQ(store.Entry(1).mask, 0x3FF07u);
    ASSERT_EQ(store.Entry(1).viewTravList.size(), 1u);
    EXPECT_EQ(store.Entry(1).viewTravList[0].SourceTag, L"Regions");
}

TEST_F(TableStoreTest, SecondTableStandsBehindTheFirstSortedByItself) {
    Read(TableText().Entry(L"Soils").Entry(L"Points"));
    EXPECT_EQ(store.FirstTableCount(), 0u);
    Read(TableText().Entry(L"Soils", {{L"Label", L"Böden"}}).Entry(L"Default"));
    EXPECT_EQ(store.FirstTableCount(), 2u);
    EXPECT_EQ(Tags(store), (Texts{L"Points", L"Soils", L"Default", L"Soils"}));
    EXPECT_EQ(store.Entry(1).Label, L"");
    EXPECT_EQ(store.Entry(3).Label, L"Böden");
}

TEST_F(TableStoreTest, ThirdTableMovesTheCountBehindTheFirstTwo) {
    Read(TableText().Entry(L"Soils"));
    Read(TableText().Entry(L"Points"));
    Read(TableText().Entry(L"Regions").Entry(L"Default"));
    EXPECT_EQ(store.FirstTableCount(), 2u);
    EXPECT_EQ(Tags(store), (Texts{L"Soils", L"Points", L"Default", L"Regions"}));
}

TEST_F(TableStoreTest, TableWithoutRowsMovesTheCountAlone) {
    Read(TableText().Entry(L"Soils").Entry(L"Points"));
    Read(TableText().Declare(L"0"));
    EXPECT_EQ(store.FirstTableCount(), 2u);
    EXPECT_EQ(Tags(store), (Texts{L"Points", L"Soils"}));
}

TEST_F(TableStoreTest, TagIsFoundInEitherTableTheFirstOneBefore) {
    Read(TableText().Entry(L"Soils").Entry(L"Points"));
    Read(TableText().Entry(L"Soils").Entry(L"Regions"));
    EXPECT_EQ(store.Find(L"Points"), 0u);
    EXPECT_EQ(store.Find(L"Soils"), 1u);
    EXPECT_EQ(store.Find(L"Regions"), 2u);
    EXPECT_EQ(store.Find(L"Soil"), ExtendedInfoStore::End);
    EXPECT_EQ(store.Find(L"Soils."), ExtendedInfoStore::End);
    EXPECT_EQ(store.Find(L"soils"), ExtendedInfoStore::End);
}

TEST_F(TableStoreTest, EqualTagsAreToldAndKept) {
    EXPECT_TRUE(FailsAs(TableText().Entry(L"Soils").Entry(L"Points").Entry(L"Soils").ReadInto(store),
                        htl::status::FromText(L"Duplicate entry {Soils} found!\n")));
    EXPECT_EQ(Tags(store), (Texts{L"Points", L"Soils", L"Soils"}));
}

TEST_F(TableStoreTest, EachPairOfEqualTagsIsToldInOneMessage) {
    EXPECT_TRUE(FailsAs(TableText()
                            .Entry(L"Soils")
                            .Entry(L"Points")
                            .Entry(L"Soils")
                            .Entry(L"Points")
                            .Entry(L"Regions")
                            .Entry(L"Soils")
                            .ReadInto(store),
                        htl::status::FromText(L"Duplicate entry {Points} found!\nDuplicate entry {Soils} found!\n"
                                              L"Duplicate entry {Soils} found!\n")));
}

TEST_F(TableStoreTest, RowsWithEqualTagsKeepTheOrderOfTheDocument) {
    EXPECT_TRUE(TableText()
                    .Entry(L"Soils", {{L"Label", L"first"}})
                    .Entry(L"Points")
                    .Entry(L"Soils", {{L"Label", L"second"}})
                    .Entry(L"Soils", {{L"Label", L"third"}})
                    .ReadInto(store)
                    .IsError());
    ASSERT_EQ(store.EntryCount(), 4u);
    EXPECT_EQ(store.Entry(1).Label, L"first");
    EXPECT_EQ(store.Entry(2).Label, L"second");
    EXPECT_EQ(store.Entry(3).Label, L"third");
    EXPECT_EQ(store.Find(L"Soils"), 1u);
}

TEST_F(TableStoreTest, TagsThatDifferInCaseOrByABlankAreNoDuplicates) {
    Read(TableText().Entry(L"Soils").Entry(L"soils").Entry(L"Soils "));
    EXPECT_EQ(store.EntryCount(), 3u);
}

TEST_F(TableStoreTest, EqualTagsOfTwoTablesAreNoDuplicates) {
    Read(TableText().Entry(L"Soils"));
    Read(TableText().Entry(L"Soils"));
    EXPECT_EQ(store.EntryCount(), 2u);
}

TEST_F(TableStoreTest, DuplicateNamesItsTagAsItStands) {
    EXPECT_EQ(TableText().Entry(L"%1%s").Entry(L"%1%s").ReadInto(store).AsWString(),
              L"Duplicate entry {%1%s} found!\n");
}

TEST_F(TableStoreTest, EntriesAreAddedWithoutADocument) {
    std::vector<ExtendedInfoEntry> rows(2);
    rows[0].Tag = L"Soils";
    rows[1].Tag = L"Points";
    ASSERT_TRUE(Succeeds(store.Add(rows)));
    EXPECT_EQ(Tags(store), (Texts{L"Points", L"Soils"}));
    EXPECT_EQ(rows[0].Tag, L"Soils");
}

TEST_F(TableStoreTest, FailureOfTheDocumentLeavesTheStoreAsItWas) {
    Read(TableText().Entry(L"Soils"));
    Read(TableText().Entry(L"Soils"));
    std::string const document = "<T><R Tag='Points'/><R Tag='Regions'></T>";
    EXPECT_TRUE(FailsAs(store.ReadBytes(document.data(), document.data() + document.size()),
                        sys::file::XmlStringRead({document.begin(), document.end()}, {})));
    EXPECT_EQ(Tags(store), (Texts{L"Soils", L"Soils"}));
    EXPECT_EQ(store.FirstTableCount(), 1u);
}

TEST_F(TableStoreTest, OtherThreadsSeeAWholeTableOrNone) {
    TableText table;
    for (int i = 500; i > 0; --i) table.Entry(L"Soils." + std::to_wstring(100 + i));
    std::atomic<bool> done = false;
    std::atomic<bool> torn = false;
    std::thread watcher([&] {
        while (!done) {
            ExclusiveAccessGuard const guard(store.Lock());
            std::size_t const count = store.EntryCount();
            if (count % 500 != 0) torn = true;
            for (std::size_t i = 1; i < count; ++i)
                if (i % 500 != 0 && !(store.Entry(i - 1).Tag < store.Entry(i).Tag)) torn = true;
        }
    });
    for (int reads = 0; reads < 5; ++reads) EXPECT_TRUE(Succeeds(table.ReadInto(store)));
    done = true;
    watcher.join();
    EXPECT_FALSE(torn);
    EXPECT_EQ(store.EntryCount(), 2500u);
}

TEST_F(TableStoreTest, HolderOfTheLockMayAdd) {
    ExclusiveAccessGuard const guard(store.Lock());
    Read(TableText().Entry(L"Soils"));
    EXPECT_EQ(store.Find(L"Soils"), 0u);
}

class CompiledTableTest : public dam::ViewModelTest {
protected:
    CompiledTableTest() { EXPECT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"Body")))); }

    static htl::status Refusal() { return htl::status::FromText(L"The extended information is already compiled."); }
};

TEST_F(CompiledTableTest, TableIsRefusedAndNothingChanges) {
    EXPECT_TRUE(FailsAs(TableText().Entry(L"Drain").Read(), Refusal()));
    EXPECT_TRUE(FailsAs(TableText().Declare(L"0").Read(), Refusal()));
    EXPECT_TRUE(FailsAs(zo::extinfo::Store().Add({}), Refusal()));
    EXPECT_EQ(Tags(zo::extinfo::Store()), (Texts{L"Body", L"Default"}));
    EXPECT_EQ(zo::extinfo::Store().FirstTableCount(), 0u);
}

TEST_F(CompiledTableTest, DocumentIsNotLookedAt) {
    EXPECT_TRUE(FailsAs(zo::ZOExtendedInfoRead(nullptr, nullptr), Refusal()));
    EXPECT_TRUE(FailsAs(zo::ZOExtendedInfoRead(L"/no/such/folder/table.xml"), Refusal()));
}

TEST_F(CompiledTableTest, OtherStoreStillReads) {
    ExtendedInfoStore translation;
    EXPECT_TRUE(Succeeds(TableText().Entry(L"Body", {{L"Label", L"Damm"}}).ReadInto(translation)));
    EXPECT_EQ(translation.EntryCount(), 1u);
}

TEST(RefusedTableTest, TableMayBeReadAfterACompilationThatFoundItWanting) {
    dam::ViewModel const dam;
    EXPECT_TRUE(FailsAs(dam::Compile(TableText().Entry(L"Body")),
                        htl::status::FromText(L"ExtendedInfo should always have a 'Default' entry.")));
    EXPECT_TRUE(Succeeds(TableText().Entry(L"Body", {{L"Label", L"Damm"}}).Read()));
}

} // namespace
