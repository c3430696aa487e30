// Binding entries to rows, and what is wrong with that.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/kit/kit.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/ViewModel.h"

#include <string>
#include <vector>

namespace dam {
namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using fixture::Also;
using fixture::As;
using fixture::Cell;
using fixture::From;
using fixture::TableText;
using zo::ExtendedInfoField;

htl::status Text(std::wstring const& text) { return htl::status::FromText(text); }
htl::status Unused(std::vector<std::wstring> const& tags) {
    std::vector<htl::status> parts;
    for (std::wstring const& tag : tags) parts.push_back(Text(tag));
    return HznError::compound(Text(L"One or more extended info entries not used"), parts);
}
std::vector<Cell> IsDynamic() { return {{L"IsDynamic", L"1"}}; }

zo::ExtendedInfoStore& Store() { return zo::extinfo::Store(); }
/// The tag of the entry that speaks for a row, "" for the default entry.
std::wstring EntryOf(std::size_t row) {
    std::size_t const entry = Store().Lookup(row, ExtendedInfoField::Whole);
    return entry == zo::ExtendedInfoStore::End ? L"" : Store().Entry(entry).Tag;
}

class BindTest : public ViewModelTest {
protected:
    static constexpr std::size_t firstAlias = row::count;
};

TEST_F(BindTest, ATableOfTheDefaultAloneCompiles) { EXPECT_TRUE(Succeeds(Compile(TableText::WithDefault()))); }

TEST_F(BindTest, EveryRowHasTheEntryThatIsMostSpecific) {
    TableText const table =
        TableText::WithDefault().Entry(L"Drain").Entry(L"Drain.*").Entry(L"Drain.Flow").Entry(L"dam::DamGallery");
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(EntryOf(row::Drain), L"Drain");
    EXPECT_EQ(EntryOf(row::Pitch), L"Drain.*");
    EXPECT_EQ(EntryOf(row::Flow), L"Drain.Flow");
    EXPECT_EQ(EntryOf(row::Gallery), L"dam::DamGallery");
    EXPECT_EQ(EntryOf(row::Body), L"");
    EXPECT_EQ(EntryOf(row::Root), L"");
}

TEST_F(BindTest, AnEntryThatNoNodeUsesFails) {
    EXPECT_TRUE(FailsAs(Compile(TableText::WithDefault().Entry(L"Spillway").Entry(L"Body")), Unused({L"Spillway"})));
}

TEST_F(BindTest, AllUnusedEntriesAreToldInTheOrderOfTags) {
    TableText const table =
        TableText::WithDefault().Entry(L"Weir").Entry(L"Body").Entry(L"Spillway").Entry(L"double").Entry(L"*.Weir");
    EXPECT_TRUE(FailsAs(Compile(table), Unused({L"*.Weir", L"Spillway", L"Weir", L"double"})));
}

TEST_F(BindTest, AnEntryThatOnlyCompletesOthersIsUnused) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Gallery")
                                .Entry(L"Gall*", {{L"Description", L"A way through the dam"}})
                                .Entry(L"Gallery.Length")
                                .Entry(L"Gallery.Width");
    EXPECT_TRUE(FailsAs(Compile(table), Unused({L"Gall*"})));
}

TEST_F(BindTest, AnUnusedDynamicEntryIsInOrder) {
    EXPECT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Spillway", IsDynamic()))));
}

TEST_F(BindTest, UnusedEntriesAreBoundAllTheSame) {
    EXPECT_TRUE(Compile(TableText::WithDefault().Entry(L"Spillway").Entry(L"Body")).IsError());
    EXPECT_EQ(EntryOf(row::Body), L"Body");
}

TEST_F(BindTest, ADynamicEntryOnAPlainNodeFails) {
    EXPECT_TRUE(FailsAs(Compile(TableText::WithDefault().Entry(L"Drain.Flow", IsDynamic())),
                        Text(L"Entry {Drain.Flow} marked as dynamic, but is bound to {Drain.Flow}")));
}

TEST_F(BindTest, OfSeveralDynamicEntriesOnPlainNodesTheLastRowIsTold) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", IsDynamic()).Entry(L"Gall*", IsDynamic()).Entry(L"Weir");
    EXPECT_TRUE(FailsAs(Compile(table), Text(L"Entry {Gall*} marked as dynamic, but is bound to {Gallery.Width}")));
    EXPECT_EQ(EntryOf(row::Length), L"Gall*"); // the walk went on
}

TEST_F(BindTest, ADynamicEntryOnAnAliasIsInOrder) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}).Entry(L"Body.Flow", IsDynamic());
    EXPECT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(EntryOf(firstAlias), L"Body.Flow");
}

TEST_F(BindTest, ADynamicEntryOnAnAliasOfTheApplicationIsInOrder) {
    ViewModel other([](zo::kit::Kit& kit) { kit.Alias("Outlet", L"Outlet", "Drain.Flow"); });
    EXPECT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Outlet", IsDynamic()))));
}

TEST_F(BindTest, AnAliasOfTheViewUsesAnEntryOfItsOwnTag) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}).Entry(L"Body.Flow").Entry(L"Drain.Flow");
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(EntryOf(firstAlias), L"Body.Flow");
}

TEST_F(BindTest, AnAliasOfTheViewSharesTheEntryOfItsSource) {
    TableText const table = TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}).Entry(L"Drain.Flow");
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(EntryOf(firstAlias), L"Drain.Flow");
}

TEST_F(BindTest, AnAddedAliasCantHaveAListOfItsOwn) {
    htl::status const failure =
        Text(L"Body.Drain: You can't declare a fixed <ViewTravList/> to an alias added for a <ViewTravList/>.");
    TableText const exact =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Body.Drain", {}, {From(L"Gallery")});
    EXPECT_TRUE(FailsAs(Compile(exact), failure));
    ViewModel other;
    TableText const wildcard =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Body.Dr*", {}, {From(L"Gallery")});
    EXPECT_TRUE(FailsAs(Compile(wildcard), failure));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points"); // the list was not applied
}

TEST_F(BindTest, OfSeveralAliasesWithListsTheFirstIsTold) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Body", {}, {Also(L"Drain"), Also(L"Gallery")})
                                .Entry(L"Body.Drain", {}, {From(L"Points")})
                                .Entry(L"Body.Gallery", {}, {From(L"Points")});
    EXPECT_TRUE(FailsAs(
        Compile(table),
        Text(L"Body.Drain: You can't declare a fixed <ViewTravList/> to an alias added for a <ViewTravList/>.")));
}

TEST_F(BindTest, AnAddedAliasMayHaveTheDynamicForm) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Body.Drain", {}, {From(L".*")});
    EXPECT_TRUE(Succeeds(Compile(table)));
}

TEST_F(BindTest, AnAddedAliasMayHaveAnEmptyList) {
    TableText const table = TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Body.Drain", {}, {});
    EXPECT_TRUE(Succeeds(Compile(table)));
}

TEST_F(BindTest, TheListOfAnAliasesSourceIsNoListOfItsOwn) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Drain", {}, {From(L"Gallery.Length")});
    EXPECT_TRUE(Succeeds(Compile(table)));
}

TEST_F(BindTest, AnAliasBelowANodeWithoutATagHasNoListOfItsOwn) {
    struct Untagged : zo::IZO {
        Untagged() : IZO(npos, nullptr, npos) {}
        zo::IZO* Clone() override { return new Untagged(*this); }
    };
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure;
        structure.type = &typeid(fixture::TableText); // any type that the dam has not
        return structure;
    }();
    dam.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODSName("Scratch")), zo::H(new Untagged),
                             meta::MetaPersistTraits(meta::MetaPersistTraits::No, L""), meta::MetaDataTraits(record));
    dam.registry->OnPostRegistration();
    TableText const table = TableText::WithDefault()
                                .Entry(L"fixture::TableText", {}, {Also(L"Drain")})
                                .Entry(L"Drain", {}, {From(L"Gallery.Length")});
    EXPECT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(dam.registry->Tables()->names[row::count + 1], "Scratch.Drain");
}

TEST_F(BindTest, AfterAFailedItemNothingIsBound) {
    TableText const table = TableText::WithDefault().Entry(L"Body", {}, {From(L"Weir")}).Entry(L"Spillway");
    EXPECT_TRUE(FailsAs(Compile(table), Text(L"Unknown source tag: Weir"))); // no word of the unused entry
}

TEST_F(BindTest, AnEntryWithTheTagOfAnotherIsUnused) {
    TableText const table = TableText::WithDefault().Entry(L"Body").Entry(L"Body");
    EXPECT_TRUE(table.Read().IsError()); // told, and both are there
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(), Unused({L"Body"})));
}

TEST_F(BindTest, ASecondCompilationChangesNothing) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}))));
    EXPECT_TRUE(FailsAs(zo::CompileExtendedInfo(), Text(L"The extended information is already compiled.")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Flow");
    EXPECT_EQ(dam.registry->Tables()->RowCount(), firstAlias + 1);
}

TEST_F(BindTest, ACompilationThatFailedInTheTableCanBeRepeated) {
    ASSERT_TRUE(Succeeds(TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}).Read()));
    EXPECT_TRUE(FailsAs(Compile(TableText().Entry(L"Weir", {{L"Label", L"Wehr"}})),
                        Text(L"Unexpected entry {Weir} found in the second ExtendedInfo table.")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    // The translation is no longer there.
    ASSERT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Flow");
    EXPECT_EQ(EntryOf(row::Body), L"Body");
}

} // namespace
} // namespace dam
