// Traversal lists: what they make of the view.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/kit/kit.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/ViewModel.h"

#include <string>
#include <utility>
#include <vector>

namespace dam {
namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using fixture::Also;
using fixture::As;
using fixture::From;
using fixture::Item;
using fixture::TableText;
using zo::ViewTravRecord;

zo::ZORegistryImpl const& Tables() { return *zo::ZORegistry::Instance()->Tables(); }
ViewTravRecord const& RecordOf(std::size_t row) { return Tables().viewRecords[row]; }
htl::status Text(std::wstring const& text) { return htl::status::FromText(text); }

/// A source that is looked for while the application runs.
Item Dynamic(std::wstring source, std::wstring tag = {}) {
    return {{L"SourceTag", std::move(source)}, {L"DestTag", std::move(tag)}, {L"IsDynamic", L"1"}};
}
/// Shown under another tag, and left in its old place.
Item AlsoAs(std::wstring source, std::wstring tag) {
    return {{L"SourceTag", std::move(source)}, {L"DestTag", std::move(tag)}, {L"RemoveFromSource", L"0"}};
}

/// "Default" and one entry with a list.
TableText ListOf(std::wstring tag, std::vector<Item> const& list) {
    return TableText::WithDefault().Entry(std::move(tag), {}, list);
}

template <class Alias>
Alias const* AliasAt(std::size_t row) {
    zo::IZO const* const node = zo::GetTemplate(row);
    return typeid(*node) == typeid(Alias) ? static_cast<Alias const*>(node) : nullptr;
}

struct Spillway {
    double sill = 21; // metres
};
/// The branch "Spillway" with the field "Sill" under a tag of its own.
void AddSpillway(zo::kit::Kit& kit, std::wstring const& tag) {
    kit.Record<Spillway>("Spillway").Field<&Spillway::sill>("Sill", tag);
    kit.Branch<Spillway>("Spillway", L"Spillway", [] {
        static Spillway spillway;
        return &spillway;
    });
}

class CompileTraversalTest : public ViewModelTest {
protected:
    static constexpr std::size_t firstAlias = row::count;
};

TEST_F(CompileTraversalTest, BeforeATableTheViewIsTheTreeOfTags) {
    EXPECT_EQ(Tables().RowCount(), row::count);
    EXPECT_EQ(Tables().names[row::Width], "Gallery.Width");
    EXPECT_EQ(Tables().names[row::Name], "Points.[].Name");
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    EXPECT_EQ(ViewTags(row::Points), L"[]");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, ATableWithoutListsLeavesTheView) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body"))));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
    EXPECT_EQ(RecordOf(row::Pitch).kind, ViewTravRecord::RelativeTag);
    EXPECT_EQ(RecordOf(row::Pitch).path, L"Pitch");
}

TEST_F(CompileTraversalTest, OneListMovesShowsTwiceAndSplices) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"Drain.Pitch"), Also(L"Drain.Flow"), From(L"Gallery.*")}))));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Points");
    EXPECT_EQ(ViewChildren(row::Body),
              (std::vector<std::size_t>{row::Crest, row::Height, row::Pitch, firstAlias, row::Gallery}));
    EXPECT_EQ(ViewTags(row::Drain), L"Flow");
    EXPECT_EQ(ViewTags(row::Gallery), L"Length,Width");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, AMovedNodeIsReachedByItsFullTag) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"Drain.Pitch")}))));
    EXPECT_EQ(RecordOf(row::Pitch).kind, ViewTravRecord::AbsoluteTag);
    EXPECT_EQ(RecordOf(row::Pitch).path, L"Drain.Pitch");
    EXPECT_EQ(RecordOf(row::Pitch).flags, 0u);
    EXPECT_EQ(RecordOf(row::Pitch).renamePattern, L"");
    EXPECT_EQ(Tables().RowCount(), row::count);
}

TEST_F(CompileTraversalTest, AMovedNodeKeepsItsNameAndTag) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"Drain.Pitch")}))));
    EXPECT_EQ(zo::FullTag(zo::Find("Drain.Pitch")), L"Drain.Pitch");
    EXPECT_FALSE(zo::Find("Body.Pitch"));
    EXPECT_EQ(Tables().firstChildren[row::Drain], row::Pitch); // the tree of tags stays
}

TEST_F(CompileTraversalTest, ASplicedNodeIsMarked) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"Gallery.*")}))));
    EXPECT_EQ(RecordOf(row::Gallery).flags, ViewTravRecord::Splice);
    EXPECT_EQ(RecordOf(row::Gallery).kind, ViewTravRecord::AbsoluteTag);
    EXPECT_EQ(RecordOf(row::Gallery).path, L"Gallery");
    EXPECT_EQ(RecordOf(row::Gallery).renamePattern, L"");
}

TEST_F(CompileTraversalTest, ANodeThatStaysIsShownByAnAlias) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {Also(L"Drain.Flow")}))));
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow");
    ASSERT_EQ(Tables().RowCount(), firstAlias + 1);
    EXPECT_EQ(Tables().names[firstAlias], "Body.Flow");
    EXPECT_EQ(Tables().tagNames[firstAlias], L"Body.Flow");
    EXPECT_EQ(Tables().parents[firstAlias], row::Body);
    EXPECT_EQ(RecordOf(firstAlias).kind, ViewTravRecord::RegistryName);
    EXPECT_EQ(RecordOf(firstAlias).path, L"Drain.Flow");
    EXPECT_EQ(RecordOf(firstAlias).flags, 0u);
    ASSERT_TRUE(AliasAt<zo::ZOAliasAbsolute>(firstAlias));
    EXPECT_EQ(AliasAt<zo::ZOAliasAbsolute>(firstAlias)->SrcName(), "Drain.Flow");
}

TEST_F(CompileTraversalTest, AnAddedAliasIsANodeOfTheRegistry) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {Also(L"Drain.Flow")}))));
    EXPECT_EQ(TextOf(zo::Find("Body.Flow")), L"3.5");
    EXPECT_EQ(TextOf(zo::FindTag(L"Body.Flow")), L"3.5");
    ASSERT_TRUE(Succeeds(zo::Find("Body.Flow")->Set(4.25)));
    EXPECT_EQ(dam.model.drain.flow, 4.25);
    // It stands in no document.
    EXPECT_EQ(zo::GetTemplate(firstAlias)->GetPersistTraits().Type, meta::MetaPersistTraits::No);
    EXPECT_EQ(zo::DataTraits(firstAlias).Descriptor()->kind, meta::Kind::Structure);
}

TEST_F(CompileTraversalTest, AnotherTagNeedsAnAliasAndTakesTheSourceOut) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {As(L"Drain.Flow", L"Seepage")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Seepage");
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch");
    EXPECT_EQ(Tables().viewParents[row::Flow], zo::IZO::npos);
    // Its record is as if fresh.
    EXPECT_EQ(RecordOf(row::Flow).ViewTravNextID, zo::IZO::npos);
    EXPECT_EQ(RecordOf(row::Flow).flags, 0u);
    EXPECT_EQ(RecordOf(row::Flow).kind, ViewTravRecord::RegistryName);
    EXPECT_EQ(RecordOf(row::Flow).path, L"");
    EXPECT_EQ(TextOf(zo::Find("Body.Seepage")), L"3.5");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, OfTwoMoversTheFirstRowMovesAndTheOtherGetsAnAlias) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Drain", {}, {From(L"Gallery.Length")})
                                .Entry(L"Body", {}, {From(L"Gallery.Length")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewChildren(row::Body), (std::vector<std::size_t>{row::Crest, row::Height, row::Length}));
    EXPECT_EQ(ViewChildren(row::Drain), (std::vector<std::size_t>{row::Pitch, row::Flow, firstAlias}));
    EXPECT_EQ(Tables().names[firstAlias], "Drain.Length");
    EXPECT_EQ(ViewTags(row::Gallery), L"Width");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, WhatAnAliasTookOutCanStillBeMoved) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Body", {}, {As(L"Gallery.Length", L"Reach")})
                                .Entry(L"Drain", {}, {From(L"Gallery.Length")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Reach");
    EXPECT_EQ(ViewChildren(row::Drain), (std::vector<std::size_t>{row::Pitch, row::Flow, row::Length}));
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, AnAliasOfTheViewCanBeMovedOn) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain.Flow")}).Entry(L"Gallery", {}, {From(L"Body.Flow")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    EXPECT_EQ(ViewChildren(row::Gallery), (std::vector<std::size_t>{row::Length, row::Width, firstAlias}));
    EXPECT_EQ(RecordOf(firstAlias).kind, ViewTravRecord::AbsoluteTag);
    EXPECT_EQ(RecordOf(firstAlias).path, L"Body.Flow");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, TheFirstTheLastAndTheOnlyChildCanBeTakenOut) {
    TableText const table = TableText::WithDefault().Entry(
        L"Body", {},
        {From(L"Drain"), From(L"Points"), From(L"Gallery"), From(L"Gallery.Width"), From(L"Gallery.Length")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Root), L"Body");
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Drain,Points,Gallery,Width,Length");
    EXPECT_EQ(ViewTags(row::Gallery), L"");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, ASourceWithADotIsRelative) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L".Crest")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Height,Crest"); // behind the others now
    EXPECT_EQ(RecordOf(row::Crest).kind, ViewTravRecord::RelativeTag);
    EXPECT_EQ(RecordOf(row::Crest).path, L"Crest");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, ARelativeSourceMayLieDeeper) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"HZNData", {From(L".Gallery.Width")}))));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points,Width");
    EXPECT_EQ(RecordOf(row::Width).kind, ViewTravRecord::RelativeTag);
    EXPECT_EQ(RecordOf(row::Width).path, L"Gallery.Width");
}

TEST_F(CompileTraversalTest, ASourceMayStartAtTheParent) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"@Parent.Drain.Pitch")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Pitch");
    EXPECT_EQ(RecordOf(row::Pitch).kind, ViewTravRecord::RelativeTag);
    EXPECT_EQ(RecordOf(row::Pitch).path, L"@Parent.Drain.Pitch");
}

TEST_F(CompileTraversalTest, ASourceMayClimbMoreThanOnce) {
    for (std::wstring const climb : {L"@Parent@Parent.Drain", L"@Parent.@Parent.Drain"}) {
        ViewModel other;
        ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body.Crest", {From(climb)}))));
        EXPECT_EQ(ViewTags(row::Crest), L"Drain");
        EXPECT_EQ(RecordOf(row::Drain).path, climb);
    }
}

TEST_F(CompileTraversalTest, NothingIsAboveTheRoot) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(L"@Parent@Parent.Drain")})),
                        Text(L"Unknown source tag: @Parent@Parent.Drain")));
}

TEST_F(CompileTraversalTest, ARelativeSourceThatStaysGetsAnAliasFromItsOwnPlace) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {AlsoAs(L".Crest", L"Top"), Also(L"@Parent.Drain.Flow")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Top,Flow");
    ASSERT_TRUE(AliasAt<zo::ZOAliasRelative>(firstAlias));
    EXPECT_EQ(AliasAt<zo::ZOAliasRelative>(firstAlias)->SrcTag(), L"@Parent.Crest");
    EXPECT_EQ(RecordOf(firstAlias).path, L"Body.Crest");
    ASSERT_TRUE(AliasAt<zo::ZOAliasRelative>(firstAlias + 1));
    EXPECT_EQ(AliasAt<zo::ZOAliasRelative>(firstAlias + 1)->SrcTag(), L"@Parent@Parent.Drain.Flow");
    EXPECT_EQ(TextOf(zo::Find("Body.Top")), L"6");
    EXPECT_EQ(TextOf(zo::Find("Body.Flow")), L"3.5");
}

TEST_F(CompileTraversalTest, ARelativeAliasBelowAnElementFindsItsOwnElement) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Points.[]", {AlsoAs(L".X", L"Station")}))));
    EXPECT_EQ(ViewTags(row::Point), L"X,Name,Station");
    EXPECT_EQ(TextOf(zo::Find("Points[1].Station")), L"40");
}

TEST_F(CompileTraversalTest, AnEmptySourceIsTheNodeItself) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Drain", {AlsoAs(L"", L"Again")}))));
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow,Again");
    ASSERT_TRUE(AliasAt<zo::ZOAliasRelative>(firstAlias));
    EXPECT_EQ(AliasAt<zo::ZOAliasRelative>(firstAlias)->SrcTag(), L"@Parent");
    EXPECT_EQ(RecordOf(firstAlias).path, L"Drain");
    EXPECT_EQ(TextOf(zo::Find(zo::Find("Drain.Again"), "Pitch")), L"0.02");
}

TEST_F(CompileTraversalTest, TheNodeItselfNeedsAnotherTagBelowItself) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Drain", {From(L".*"), From(L"Body.Crest")})),
                        Text(L"Drain: Unable to find source {.*}.")));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow,Crest"); // the other item counts
}

TEST_F(CompileTraversalTest, AnEmptySourceWithoutATagFails) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Drain", {Also(L"")})), Text(L"Drain: Unable to find source {}.")));
    EXPECT_EQ(Tables().RowCount(), row::count);
}

TEST_F(CompileTraversalTest, TheListOfTheRootAddsTopLevelAliases) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"HZNData", {As(L"Drain.Pitch", L"Fall")}))));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points,Fall");
    EXPECT_EQ(Tables().names[firstAlias], "Fall");
    EXPECT_EQ(Tables().tagNames[firstAlias], L"Fall");
    EXPECT_EQ(TextOf(zo::Find("Fall")), L"0.02");
}

TEST_F(CompileTraversalTest, ADynamicItemIsNotLookedForAndTakesNothingOut) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {Dynamic(L"Drain.Flow"), Dynamic(L"Points[2].X", L"Station")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Flow,Station");
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow");
    ASSERT_TRUE(AliasAt<zo::ZOAliasAbsoluteSlow>(firstAlias));
    EXPECT_EQ(AliasAt<zo::ZOAliasAbsoluteSlow>(firstAlias)->SrcTag(), L"Drain.Flow");
    EXPECT_EQ(RecordOf(firstAlias).path, L"");
    EXPECT_EQ(TextOf(zo::Find("Body.Flow")), L"3.5");
    EXPECT_EQ(TextOf(zo::Find("Body.Station")), L"40");
}

TEST_F(CompileTraversalTest, ADynamicItemMayNameNothing) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {Dynamic(L"Survey.Datum"), Dynamic(L".Survey.Level")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Datum,Level");
    EXPECT_TRUE(AliasAt<zo::ZOAliasRelative>(firstAlias + 1));
}

TEST_F(CompileTraversalTest, ADynamicItemThatIsSplicedIsMarkedSo) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {Dynamic(L"Gallery.*", L"G*")}))));
    EXPECT_EQ(RecordOf(firstAlias).flags, ViewTravRecord::Splice);
    EXPECT_EQ(RecordOf(firstAlias).renamePattern, L"");
    EXPECT_EQ(AliasAt<zo::ZOAliasAbsoluteSlow>(firstAlias)->SrcTag(), L"Gallery");
}

TEST_F(CompileTraversalTest, AStarAtTheEndOfATagBecomesAnUnderscoreBelowSplicedSources) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {As(L"Gallery.*", L"G*")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,G_");
    EXPECT_EQ(Tables().names[firstAlias], "Body.G_");
    EXPECT_EQ(RecordOf(firstAlias).flags, ViewTravRecord::Splice);
    EXPECT_EQ(RecordOf(firstAlias).renamePattern, L""); // only children that are walked at run time get new tags
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Points");
}

TEST_F(CompileTraversalTest, AStarAtTheEndOfATagStaysOtherwise) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {As(L"Gallery.Width", L"W*")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,W*");
}

TEST_F(CompileTraversalTest, TheDynamicFormMarksItsNode) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Drain", {From(L".*")}))));
    EXPECT_EQ(RecordOf(row::Drain).flags, ViewTravRecord::WalkChildren);
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow");
}

TEST_F(CompileTraversalTest, TheDynamicFormCantRename) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Drain", {As(L".*", L"D*")})),
                        Text(L"Drain: You can't rename children of a dynamic traversal.")));
    EXPECT_EQ(RecordOf(row::Drain).flags, ViewTravRecord::WalkChildren);
}

TEST_F(CompileTraversalTest, TwoItemsAreNotTheDynamicForm) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Drain", {As(L".*", L"D*"), From(L"Body.Crest")}))));
    EXPECT_EQ(RecordOf(row::Drain).flags, 0u);
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow,D_,Crest");
    EXPECT_EQ(Tables().viewParents[row::Drain],
              zo::IZO::npos); // an alias below itself shows it, and it was not to stay
}

TEST_F(CompileTraversalTest, AMovedDynamicNodeStaysDynamicInEitherOrder) {
    TableText const early =
        TableText::WithDefault().Entry(L"Body", {}, {From(L".*")}).Entry(L"Drain", {}, {From(L"Body")});
    ASSERT_TRUE(Succeeds(Compile(early)));
    EXPECT_EQ(RecordOf(row::Body).flags, ViewTravRecord::WalkChildren);
    EXPECT_EQ(RecordOf(row::Body).kind, ViewTravRecord::AbsoluteTag);
    ViewModel other;
    TableText const late =
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain")}).Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(late)));
    EXPECT_EQ(RecordOf(row::Drain).flags, ViewTravRecord::WalkChildren);
}

TEST_F(CompileTraversalTest, AnAliasOfADynamicNodeIsNotMarked) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(RecordOf(firstAlias).flags, 0u);
    EXPECT_EQ(RecordOf(row::Drain).flags, ViewTravRecord::WalkChildren);
}

TEST_F(CompileTraversalTest, ASplicedDynamicNodeHasBothMarks) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}).Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(RecordOf(row::Drain).flags, ViewTravRecord::Splice | ViewTravRecord::WalkChildren);
    EXPECT_EQ(RecordOf(row::Drain).renamePattern, L"");
}

TEST_F(CompileTraversalTest, ChildrenWalkedAtRunTimeGetTheBeginningOfTheTag) {
    TableText const table =
        TableText::WithDefault().Entry(L"Body", {}, {As(L"Drain.*", L"Drain*")}).Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Drain_");
    EXPECT_EQ(RecordOf(firstAlias).flags, ViewTravRecord::Splice | ViewTravRecord::WalkChildren);
    EXPECT_EQ(RecordOf(firstAlias).renamePattern, L"Drain");
}

TEST_F(CompileTraversalTest, WhatLiesBehindADynamicNodeIsShownByAnAlias) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"HZNData", {}, {From(L".Drain.Pitch"), From(L".Drain.Nowhere")})
                                .Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points,Pitch,Nowhere");
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow");
    ASSERT_TRUE(AliasAt<zo::ZOAliasRelative>(firstAlias));
    EXPECT_EQ(AliasAt<zo::ZOAliasRelative>(firstAlias)->SrcTag(), L"@Parent.Drain.Pitch");
    EXPECT_EQ(RecordOf(firstAlias).path, L"");
    EXPECT_EQ(RecordOf(firstAlias).flags, 0u);
    EXPECT_EQ(TextOf(zo::Find("Pitch")), L"0.02");
}

TEST_F(CompileTraversalTest, WhatIsSplicedBehindADynamicNodeHasBothMarks) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"HZNData", {}, {As(L".Drain.Outlets.*", L"Outlet*")})
                                .Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(RecordOf(firstAlias).flags, ViewTravRecord::Splice | ViewTravRecord::WalkChildren);
    EXPECT_EQ(RecordOf(firstAlias).renamePattern, L"Outlet");
    EXPECT_EQ(AliasAt<zo::ZOAliasRelative>(firstAlias)->SrcTag(), L"@Parent.Drain.Outlets");
}

TEST_F(CompileTraversalTest, ADynamicNodeItselfIsNotBehindItself) {
    TableText const table =
        TableText::WithDefault().Entry(L"HZNData", {}, {From(L".Drain")}).Entry(L"Drain", {}, {From(L".*")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewChildren(row::Root), (std::vector<std::size_t>{row::Body, row::Gallery, row::Points, row::Drain}));
    EXPECT_EQ(RecordOf(row::Drain).kind, ViewTravRecord::RelativeTag);
    EXPECT_EQ(RecordOf(row::Drain).flags, ViewTravRecord::WalkChildren);
}

TEST_F(CompileTraversalTest, NothingCanBePutBelowAnArray) {
    htl::status const failure = Text(L"Points: Re-parenting an object under an array is not allowed.");
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Points", {From(L"Drain")})), failure));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
    ViewModel other;
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Points", {From(L".*")})), failure));
    EXPECT_EQ(RecordOf(row::Points).flags, 0u);
}

TEST_F(CompileTraversalTest, AnUnknownSourceFails) {
    for (std::wstring const source : {L"Spillway", L"Drain.Spillway", L".Spillway", L"@Parent.Spillway", L"@Spillway",
                                      L".", L"..Crest", L"Points[2].X", L".Crest.Deeper", L"Spillway.*"}) {
        ViewModel other;
        EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(source)})), Text(L"Unknown source tag: " + source)));
        EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
        EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    }
}

TEST_F(CompileTraversalTest, ASourceMayBeAnAliasOfTheApplication) {
    ViewModel other([](zo::kit::Kit& kit) { kit.Alias("Outlet", L"Outlet", "Drain.Flow"); });
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"@Parent.Outlet")}))));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Outlet");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, AnAbsoluteSourceInAnArrayFails) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(L"Points.[].X")})),
                        Text(L"Body: We can't support an array using an absolute tag of {Points.[].X}")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    EXPECT_EQ(ViewTags(row::Point), L"Name"); // what was done stays done
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, AnElementByItsAbsoluteTagFailsAndStaysInItsArray) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(L"Points.[]")})),
                        Text(L"Body: We can't support an array using an absolute tag of {Points.[]}")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    EXPECT_EQ(ViewTags(row::Points), L"[]");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, AnElementCantBeMoved) {
    for (auto const& [parent, source] : {std::pair(L"HZNData", L".Points.[]"), std::pair(L"Points.[].X", L"@Parent"),
                                         std::pair(L"Points.[].X", L"@Parent.*")}) {
        ViewModel other;
        std::wstring const tag = parent;
        EXPECT_TRUE(
            FailsAs(Compile(ListOf(tag, {From(source)})), Text(tag + L": Unable to find source {" + source + L"}.")));
        EXPECT_EQ(ViewTags(row::Points), L"[]");
        EXPECT_TRUE(ViewIsSound());
    }
}

TEST_F(CompileTraversalTest, AnElementStaysInItsArrayWhenAnAliasShowsIt) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Points.[].X", {As(L"@Parent", L"Owner")}))));
    EXPECT_EQ(ViewTags(row::Points), L"[]");
    EXPECT_EQ(TextOf(zo::Find(zo::Find("Points[2].X.Owner"), "Name")), L"Toe");
}

TEST_F(CompileTraversalTest, ATagOfARegisteredNodeIsTaken) {
    EXPECT_TRUE(
        FailsAs(Compile(ListOf(L"Body", {As(L"Drain.Pitch", L"Crest")})), Text(L"Body: Duplicate name {Body.Crest}")));
    EXPECT_EQ(Tables().RowCount(), row::count);
}

TEST_F(CompileTraversalTest, ANameOfARegisteredNodeIsTaken) {
    ViewModel other([](zo::kit::Kit& kit) { AddSpillway(kit, L"SillLevel"); });
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Spillway", {As(L"Drain.Pitch", L"Sill")})),
                        Text(L"Spillway: Duplicate name {Spillway.Sill}")));
}

TEST_F(CompileTraversalTest, TwoAliasesOfOneTagAreOneTooMany) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {As(L"Drain.Pitch", L"Fall"), As(L"Drain.Flow", L"Fall")})),
                        Text(L"Body: Duplicate name {Body.Fall}")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Fall");
    EXPECT_EQ(ViewTags(row::Drain), L""); // what was done stays done
}

TEST_F(CompileTraversalTest, TwoViewChildrenCantHaveOneTag) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(L"Gallery.Length"), From(L"Gallery.Length")})),
                        Text(L"Body: Duplicate tag {Length} assigned")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Length");
    // The alias was made already.
    EXPECT_EQ(Tables().names[firstAlias], "Body.Length");
    EXPECT_EQ(Tables().viewParents[firstAlias], zo::IZO::npos);
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, ANodeWhoseTagIsTakenInItsNewPlaceStandsNowhere) {
    ViewModel other([](zo::kit::Kit& kit) { AddSpillway(kit, L"Crest"); });
    std::size_t const sill = row::count + 1;
    ASSERT_EQ(Tables().tagNames[sill], L"Spillway.Crest");
    EXPECT_TRUE(
        FailsAs(Compile(ListOf(L"Body", {From(L"Spillway.Crest")})), Text(L"Body: Duplicate tag {Crest} assigned")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
    EXPECT_EQ(ViewTags(row::count), L"");
    EXPECT_EQ(Tables().viewParents[sill], zo::IZO::npos);
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, TagsOfManyItemsAreTestedAsThoseOfFew) {
    std::vector<Item> list;
    for (wchar_t c = L'A'; c <= L'Z'; ++c) list.push_back(AlsoAs(L"Drain.Pitch", std::wstring(1, c)));
    list.push_back(From(L".Crest"));         // moved to the end: its old place is free again
    list.push_back(From(L"Gallery.Length")); // fits
    list.push_back(From(L"Gallery.Length")); // an alias, whose tag is taken
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", list)), Text(L"Body: Duplicate tag {Length} assigned")));
    EXPECT_EQ(ViewTags(row::Body), L"Height,A,B,C,D,E,F,G,H,I,J,K,L,M,N,O,P,Q,R,S,T,U,V,W,X,Y,Z,Crest,Length");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, ATagIsOneComponent) {
    for (std::wstring const tag : {L"A[2]", L"A]", L"[]", L"2", L"2nd", L"@Parent"}) {
        ViewModel other;
        EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {As(L"Drain.Pitch", tag)})),
                            Text(L"Body: Traversal destination tags may not express their own sub hierarchy: " + tag)));
        EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow");
        EXPECT_EQ(Tables().RowCount(), row::count);
    }
}

TEST_F(CompileTraversalTest, ASourceThatGivesNoTagNeedsOne) {
    for (std::wstring const source : {L"Points[2]", L"Drain.", L"@Parent", L"."}) {
        ViewModel other;
        EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {Dynamic(source)})),
                            Text(L"Body: Unable to find source {" + source + L"}.")));
        EXPECT_EQ(Tables().RowCount(), row::count);
    }
    ViewModel other;
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"HZNData", {Also(L".Points.[]")})),
                        Text(L"HZNData: Unable to find source {.Points.[]}.")));
}

TEST_F(CompileTraversalTest, AFailedItemIsSkippedAndTheNextOnesCount) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(L"Drain.Pitch"), From(L"Spillway"), From(L"Drain.Flow")})),
                        Text(L"Unknown source tag: Spillway")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Pitch,Flow");
}

TEST_F(CompileTraversalTest, TheLastFailureIsReturned) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Body", {}, {From(L"Spillway")})
                                .Entry(L"Points", {}, {From(L"Drain")})
                                .Entry(L"Drain", {}, {From(L"Stairs"), From(L"Gallery")});
    EXPECT_TRUE(FailsAs(Compile(table), Text(L"Points: Re-parenting an object under an array is not allowed.")));
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow,Gallery");
}

TEST_F(CompileTraversalTest, AFailureOfTheTableKeepsTheViewAsItIs) {
    TableText const table = TableText().Entry(L"Body", {}, {From(L"Drain")});
    EXPECT_TRUE(FailsAs(Compile(table), Text(L"ExtendedInfo should always have a 'Default' entry.")));
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
}

TEST_F(CompileTraversalTest, NodesWithoutAnEntryHaveTheListOfTheDefault) {
    TableText const table = TableText().Entry(L"Default", {}, {From(L".*")});
    EXPECT_TRUE(FailsAs(Compile(table), Text(L"Points: Re-parenting an object under an array is not allowed.")));
    for (std::size_t row = 0; row < row::count; ++row)
        EXPECT_EQ(RecordOf(row).flags, row == row::Points ? 0u : ViewTravRecord::WalkChildren) << row;
}

TEST_F(CompileTraversalTest, AnEntryWithoutAListTakesThatOfALessSpecificOne) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Gallery")
                                .Entry(L"Gal*")
                                .Entry(L"dam::DamGallery", {{L"IsDynamic", L"1"}}, {From(L"Drain.Flow")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Gallery), L"Length,Width,Flow");
}

TEST_F(CompileTraversalTest, AListOfSeveralNodesMovesOnceAndThenAddsAliases) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Gal*th", {From(L"Drain.Flow")}))));
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch");
    EXPECT_EQ(ViewChildren(row::Length), std::vector<std::size_t>{row::Flow});
    EXPECT_EQ(ViewChildren(row::Width), std::vector<std::size_t>{firstAlias});
    EXPECT_EQ(Tables().names[firstAlias], "Gallery.Width.Flow");
}

TEST_F(CompileTraversalTest, MessagesCallANodeWithoutATagByItsName) {
    ViewModel other;
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure;
        structure.type = &typeid(fixture::TableText); // any type that the dam has not
        return structure;
    }();
    struct Untagged : zo::IZO {
        Untagged() : IZO(npos, nullptr, npos) {}
        zo::IZO* Clone() override { return new Untagged(*this); }
    };
    other.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODSName("Scratch")), zo::H(new Untagged),
                               meta::MetaPersistTraits(meta::MetaPersistTraits::No, L""), meta::MetaDataTraits(record));
    other.registry->OnPostRegistration();
    TableText const table = TableText::WithDefault().Entry(L"fixture::TableText", {},
                                                           {Also(L"Drain.Flow"), From(L"Spillway.*"), From(L".*")});
    EXPECT_TRUE(FailsAs(Compile(table), Text(L"Scratch: Unable to find source {.*}.")));
    // What is below a node without a tag has none either.
    std::size_t const alias = row::count + 1;
    ASSERT_EQ(Tables().RowCount(), alias + 1);
    EXPECT_EQ(Tables().names[alias], "Scratch.Flow");
    EXPECT_EQ(Tables().tagNames[alias], L"");
    EXPECT_EQ(ViewChildren(row::count), std::vector<std::size_t>{alias});
}

TEST_F(CompileTraversalTest, RowsThatComeLaterLeaveTheView) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body", {From(L"Drain.Pitch")}))));
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) { kit.Group("Appendix", L"Appendix"); }}).IsClean());
    EXPECT_EQ(ViewTags(row::Root), L"Body,Drain,Gallery,Points");
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Pitch");
}

TEST_F(CompileTraversalTest, RowsThatComeLaterAreInAViewThatNoListChanged) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) { kit.Group("Appendix", L"Appendix"); }}).IsClean());
    EXPECT_EQ(ViewTags(row::Root), L"Appendix,Body,Drain,Gallery,Points");
}

TEST_F(CompileTraversalTest, MovesThatEndBelowThemselvesAreReported) {
    htl::status const failure = Text(L"Body: Moving an object under itself is not allowed.");
    for (std::wstring const below : {L"Body.Crest", L"Body"}) {
        ViewModel other;
        EXPECT_TRUE(FailsAs(Compile(ListOf(below, {From(L"Body")})), failure));
        EXPECT_EQ(ViewTags(row::Root), L"Drain,Gallery,Points");
        EXPECT_TRUE(ViewIsSound());
    }
    ViewModel other;
    TableText const each =
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}).Entry(L"Drain", {}, {From(L"Body.*")});
    EXPECT_TRUE(FailsAs(Compile(each), failure));
    EXPECT_EQ(ViewTags(row::Root), L"Gallery,Points");
    EXPECT_EQ(RecordOf(row::Body).flags, ViewTravRecord::Splice);
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, TheRootCantBeMoved) {
    EXPECT_TRUE(FailsAs(Compile(ListOf(L"Body", {From(L"@Parent")})),
                        Text(L"HZNData: Moving an object under itself is not allowed.")));
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, ACircleThatALaterMoveOpensIsNone) {
    // The body goes below its crest, and then the crest below the drain.
    TableText const table =
        TableText::WithDefault().Entry(L"Body.Crest", {}, {From(L"Body")}).Entry(L"Drain", {}, {From(L"Body.Crest")});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(ViewTags(row::Root), L"Drain,Gallery,Points");
    EXPECT_EQ(ViewTags(row::Drain), L"Pitch,Flow,Crest");
    EXPECT_EQ(ViewTags(row::Crest), L"Body");
    EXPECT_EQ(ViewTags(row::Body), L"Height");
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileTraversalTest, AnAliasOfAnAncestorIsNoCircle) {
    ASSERT_TRUE(Succeeds(Compile(ListOf(L"Body.Crest", {AlsoAs(L"Body", L"Owner")}))));
    EXPECT_EQ(ViewTags(row::Crest), L"Owner");
    EXPECT_TRUE(ViewIsSound());
}

} // namespace
} // namespace dam
