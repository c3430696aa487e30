// What a table makes of a walk: nodes moved, shown twice, spliced and renamed.
#include "tests/view/Shown.h"

#include "Common/redirect/ZOAlias.h"

using namespace shown;
using zo::view::ZOFwrdViewIterator;

namespace {

class ViewTableTest : public dam::ViewModelTest {};

/// A body with one node of the drain moved in, another one shown as well, and the gallery's spliced.
TableText Gathered() {
    return TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.Pitch"), Also(L"Drain.Flow"), From(L"Gallery.*")});
}

TEST_F(ViewTableTest, GathersWhatAListNames) {
    ASSERT_TRUE(Succeeds(Compile(Gathered())));
    EXPECT_EQ(Names("Body"),
              (List{"Body.Crest", "Body.Height", "Drain.Pitch", "Body.Flow", "Gallery.Length", "Gallery.Width"}));
    EXPECT_EQ(Names("Drain"), (List{"Drain.Flow"}));
    EXPECT_EQ(RootNames(), (List{"Body", "Drain", "Points"}));
}

TEST_F(ViewTableTest, KeepsAMovedNodeOutOfItsOldPlace) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Drain", {}, {From(L"Body.Crest")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Height"}));
    EXPECT_EQ(Names("Drain"), (List{"Drain.Pitch", "Drain.Flow", "Body.Crest"}));
}

TEST_F(ViewTableTest, MovesANodeWithAllBelowIt) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L"Points")}))));
    EXPECT_EQ(RootNames(), (List{"Body", "Drain", "Gallery"}));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Points"}));
    EXPECT_EQ(Names("Points"), (List{"Points[0]", "Points[1]", "Points[2]"}));
}

TEST_F(ViewTableTest, KeepsTheTagOfAMovedNode) {
    ASSERT_TRUE(Succeeds(Compile(Gathered())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 2);
    EXPECT_EQ((*at)->TagName(zo::FullTagType), L"Drain.Pitch");
}

TEST_F(ViewTableTest, MovesANodeToTheEndOfItsOwnSiblings) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[]", {}, {From(L".X")}))));
    EXPECT_EQ(Names("Points[1]"), (List{"Points[1].Name", "Points[1].X"}));
}

TEST_F(ViewTableTest, PassesOverAMovedNodeThatIsHidden) {
    ASSERT_TRUE(Succeeds(Compile(Gathered().Entry(L"Drain.Pitch", Hidden()))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Body.Flow", "Gallery.Length", "Gallery.Width"}));
}

// Structures within structures.

struct Inner {
    double depth = 0;
};
struct Outer {
    Inner inner;
    double width = 0;
};

class NestedViewTest : public testing::Test {
protected:
    Outer outer;
    dam::ViewModel dam{[this](zo::kit::Kit& kit) {
        kit.Record<Inner>("Inner").Field<&Inner::depth>("Depth", L"Depth");
        kit.Record<Outer>("Outer").Struct<&Outer::inner>("Inner", L"Inner").Field<&Outer::width>("Width", L"Width");
        kit.Branch<Outer>("Outer", L"Outer", [this] { return &outer; });
    }};
};

TEST_F(NestedViewTest, AMovedNodeIsFoundByItsPathFromItsNewParent) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Outer", {}, {From(L".Inner.Depth")}))));
    EXPECT_EQ(Names("Outer"), (List{"Outer.Inner", "Outer.Width", "Outer.Inner.Depth"}));
    EXPECT_EQ(Names("Outer.Inner"), List());
}

TEST_F(NestedViewTest, AMovedNodeIsFoundByAPathThatClimbs) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Outer.Inner", {}, {From(L"@Parent.Width")}))));
    EXPECT_EQ(Names("Outer"), (List{"Outer.Inner"}));
    EXPECT_EQ(Names("Outer.Inner"), (List{"Outer.Inner.Depth", "Outer.Width"}));
}

// Aliases.

TEST_F(ViewTableTest, ShowsANodeInTwoPlacesByAnAlias) {
    ASSERT_TRUE(Succeeds(Compile(Gathered())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 3);
    ASSERT_TRUE(dynamic_cast<zo::ZOAliasBase*>(at->get()));
    EXPECT_EQ((*at)->TagName(zo::FullTagType), L"Body.Flow");
    EXPECT_EQ(TextOf(*at), L"3.5");
    EXPECT_TRUE(Succeeds((*at)->Set(4)));
    EXPECT_EQ(dam.model.drain.flow, 4);
}

TEST_F(ViewTableTest, NamesAnAliasByTheElementThatItIsIn) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[]", {}, {Also(L"Body.Crest")}))));
    EXPECT_EQ(Names("Points[1]"), (List{"Points[1].X", "Points[1].Name", "Points[1].Crest"}));
}

TEST_F(ViewTableTest, FindsTheSourceOfARelativeAliasInItsOwnElement) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[]", {}, {As(L".Name", L"Called")}))));
    EXPECT_EQ(Names("Points[2]"), (List{"Points[2].X", "Points[2].Called"}));
    ZOFwrdViewIterator at(zo::Find("Points[2]"), all);
    EXPECT_EQ(TextOf(*++at), L"Toe");
}

TEST_F(ViewTableTest, NamesAnAliasAtTheTopByItsTagAlone) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"HZNData", {}, {Also(L"Body.Crest")}))));
    EXPECT_EQ(RootNames(), (List{"Body", "Drain", "Gallery", "Points", "Crest"}));
}

TEST_F(ViewTableTest, LeavesOutAnAliasWhoseSourceIsNotThere) {
    fixture::Item item = From(L"Points[3].X");
    item.push_back({L"IsDynamic", L"1"});
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {item}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Body.X"}));
    dam.model.points.pop_back();
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height"}));
}

TEST_F(ViewTableTest, HidesAnAliasByItsOwnEntry) {
    TableText table = Gathered();
    table.Entry(L"Body.Flow", {{L"IsDynamic", L"1"}, {L"ViewExcl", L"all"}});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch", "Gallery.Length", "Gallery.Width"}));
    EXPECT_EQ(Names("Drain"), (List{"Drain.Flow"}));
}

TEST_F(ViewTableTest, WalksTheSourceOfAnAlias) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {As(L"Drain", L"Outlet")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Body.Outlet"}));
    EXPECT_EQ(Names("Body.Outlet"), (List{"Drain.Pitch", "Drain.Flow"}));
}

TEST_F(ViewTableTest, WalksTheSourceOfAnAliasWithoutARow) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    H const alias = dam.registry->AssociateAlias("Shortcut", "Drain");
    ASSERT_TRUE(alias);
    EXPECT_EQ(Names(alias), (List{"Drain.Pitch", "Drain.Flow"}));
}

TEST_F(ViewTableTest, HasNothingBelowAnAliasWithoutASource) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names(H(new zo::ZOAlias("Spillway", zo::IZO::npos, dam.registry.get()))), List());
}

TEST_F(ViewTableTest, KeepsNoEntryOfAnAliasThatNobodyHolds) {
    ASSERT_TRUE(Succeeds(Compile(Gathered())));
    std::size_t const before = EntryCount(*dam.registry);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Names("Body").size(), 6u);
    EXPECT_EQ(EntryCount(*dam.registry), before);
}

TEST_F(ViewTableTest, GivesTheChildrenOfAnUnnamedViewNoEntry) {
    ASSERT_TRUE(Succeeds(
        Compile(TableText::WithDefault().Entry(L"Points.[]", {}, {Also(L"Body.Crest"), As(L".Name", L"Called")}))));
    H const view = dam.registry->Wrap(dam::row::Point, &dam.model.points[1]);
    std::size_t const before = EntryCount(*dam.registry);
    // What climbs from its own place can't be found without one.
    ZOFwrdViewIterator at(view, all);
    ASSERT_TRUE(*at);
    EXPECT_EQ(TextOf(*at), L"40");
    ASSERT_TRUE(*++at);
    EXPECT_EQ(TextOf(*at), L"6");
    EXPECT_EQ((*at)->Name(), "");
    EXPECT_FALSE(zo::Find("Crest"));
    EXPECT_FALSE(*++at);
    EXPECT_EQ(EntryCount(*dam.registry), before);
}

TEST_F(ViewTableTest, ShowsAnAliasAgainThatAnotherWalkHolds) {
    ASSERT_TRUE(Succeeds(Compile(Gathered())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 3);
    ASSERT_EQ(NameOf(*at), "Body.Flow");
    ZOFwrdViewIterator again(zo::Find("Body"), all);
    std::advance(again, 3);
    EXPECT_EQ(NameOf(*again), "Body.Flow");
    EXPECT_EQ(TextOf(*at), L"3.5");
    EXPECT_EQ(TextOf(*again), L"3.5");
}

// Splices.

TEST_F(ViewTableTest, GoesOnBehindASplice) {
    ASSERT_TRUE(
        Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L"Gallery.*"), From(L"Drain.Pitch")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Gallery.Length", "Gallery.Width", "Drain.Pitch"}));
}

TEST_F(ViewTableTest, GoesOnBehindASpliceWithoutVisibleChildren) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {From(L"Gallery.*"), From(L"Drain.Pitch")})
                                     .Entry(L"Gallery.Length", Hidden())
                                     .Entry(L"Gallery.Width", Hidden()))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch"}));
}

TEST_F(ViewTableTest, BeginsWithASplice) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {From(L"Gallery.*")})
                                     .Entry(L"Body.Crest", Hidden())
                                     .Entry(L"Body.Height", Hidden()))));
    EXPECT_EQ(Names("Body"), (List{"Gallery.Length", "Gallery.Width"}));
}

TEST_F(ViewTableTest, HidesWhatIsSplicedFromAHiddenNode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {From(L"Gallery.*"), From(L"Drain.Pitch")})
                                     .Entry(L"Gallery", Hidden())
                                     .Entry(L"Gallery.*", {{L"ViewExcl", L"none"}}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch"}));
}

TEST_F(ViewTableTest, SplicesWhatIsSplicedAlready) {
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}).Entry(L"Drain", {}, {From(L"Gallery.*")}))));
    EXPECT_EQ(Names("Body"),
              (List{"Body.Crest", "Body.Height", "Drain.Pitch", "Drain.Flow", "Gallery.Length", "Gallery.Width"}));
}

TEST_F(ViewTableTest, SplicesTheElementsOfAnArray) {
    ASSERT_TRUE(
        Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L"Points.*"), From(L"Drain.Pitch")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Points[0]", "Points[1]", "Points[2]", "Drain.Pitch"}));
}

TEST_F(ViewTableTest, SplicesWhatANodeHasAtRunTime) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {From(L"Drain.*"), From(L"Gallery.Length")})
                                     .Entry(L"Drain", {}, {From(L".*")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch", "Drain.Flow", "Gallery.Length"}));
}

TEST_F(ViewTableTest, WalksADynamicNodeAsItIsAtRunTime) {
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.Pitch")}).Entry(L"Drain", {}, {From(L".*")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch"}));
    EXPECT_EQ(Names("Drain"), (List{"Drain.Pitch", "Drain.Flow"})) << "with what a list has moved away";
}

TEST_F(ViewTableTest, GoesOnBehindANodeThatHasNothingAtRunTime) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {From(L"Drain.*"), From(L"Gallery.Length")})
                                     .Entry(L"Drain", {}, {From(L".*")})
                                     .Entry(L"Drain.Pitch", Hidden())
                                     .Entry(L"Drain.Flow", Hidden()))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Gallery.Length"}));
}

TEST_F(ViewTableTest, EndsWhereSplicesLeadBack) {
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}).Entry(L"Drain", {}, {Also(L"Body.*")}))));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch", "Drain.Flow"}));
    EXPECT_EQ(Names("Drain"), (List{"Drain.Pitch", "Drain.Flow", "Body.Crest", "Body.Height"}));
}

TEST_F(ViewTableTest, EndsWhereSplicesLeadBackOverAliases) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", {}, {Also(L"Drain.*"), Also(L"Gallery.*")})
                                     .Entry(L"Drain", {}, {Also(L"Body.*"), Also(L"Gallery.*")})
                                     .Entry(L"Gallery", {}, {Also(L"Body.*"), Also(L"Drain.*")}))));
    // The drain with the gallery in it, then the gallery with the drain in it.
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Drain.Pitch", "Drain.Flow", "Gallery.Length",
                                   "Gallery.Width", "Gallery.Length", "Gallery.Width", "Drain.Pitch", "Drain.Flow"}));
}

TEST_F(ViewTableTest, GoesOnFromACopyWhereSplicesLeadBack) {
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}).Entry(L"Drain", {}, {Also(L"Body.*")}))));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 2);
    ZOFwrdViewIterator copy = at;
    at = {};
    EXPECT_EQ((*copy)->Name(), "Drain.Pitch");
    ++copy;
    EXPECT_EQ((*copy)->Name(), "Drain.Flow");
    EXPECT_FALSE(*++copy);
}

TEST(ManySplicesTest, EndInTime) {
    constexpr std::size_t count = 24; // each splices the next one twice, so there are more than 10 to the 7 ways
    std::vector<dam::DamDrain> drains(count);
    dam::ViewModel const dam([&](zo::kit::Kit& kit) {
        for (std::size_t i = 0; i < count; ++i) {
            std::wstring const tag = L"Drain" + std::to_wstring(i);
            kit.Branch<dam::DamDrain>(std::string(tag.begin(), tag.end()), tag, [&drains, i] { return &drains[i]; });
        }
    });
    TableText table = TableText::WithDefault();
    for (std::size_t i = 0; i + 1 < count; ++i) {
        std::wstring const next = L"Drain" + std::to_wstring(i + 1) + L".*";
        table.Entry(L"Drain" + std::to_wstring(i), {}, {Also(next), As(next, L"Again*")});
    }
    ASSERT_TRUE(Succeeds(Compile(table)));
    // Its own two and two of each splice that is followed.
    EXPECT_EQ(Names("Drain0").size(), 2u + 2u * 10'000u);
}

// Splices under other tags.

TableText Renamed() {
    return TableText::WithDefault().Entry(L"Body", {}, {As(L"Drain.*", L"Outlet*")}).Entry(L"Drain", {}, {From(L".*")});
}

TEST_F(ViewTableTest, ShowsSplicedChildrenUnderOtherTags) {
    ASSERT_TRUE(Succeeds(Compile(Renamed())));
    EXPECT_EQ(Tags(zo::Find("Body")), (WideList{L"Crest", L"Height", L"OutletPitch", L"OutletFlow"}));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height", "Body.OutletPitch", "Body.OutletFlow"}));
    EXPECT_EQ(RootNames(), (List{"Body", "Gallery", "Points"}));
}

TEST_F(ViewTableTest, ReadsAndWritesThroughAnotherTag) {
    ASSERT_TRUE(Succeeds(Compile(Renamed())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 3);
    EXPECT_EQ(TextOf(*at), L"3.5");
    EXPECT_TRUE(Succeeds((*at)->Set(2)));
    EXPECT_EQ(dam.model.drain.flow, 2);
    EXPECT_EQ((*at)->TagName(zo::FullTagType), L"Body.OutletFlow");
    EXPECT_EQ((*at)->GetPersistTraits().Type, meta::MetaPersistTraits::No);
}

TEST_F(ViewTableTest, LeadsToTheChildItselfFromAnotherTag) {
    ASSERT_TRUE(Succeeds(Compile(Renamed())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 2);
    EXPECT_EQ(zo::GetSource(*at)->Name(), "Drain.Pitch");
    H const copy((*at)->Clone());
    EXPECT_EQ(copy->Tag(), L"OutletPitch");
    EXPECT_EQ(TextOf(copy), L"0.02");
}

TEST_F(ViewTableTest, LeavesTheTagsOfSplicedChildrenAloneInTheirOwnPlace) {
    ASSERT_TRUE(Succeeds(Compile(Renamed())));
    EXPECT_EQ(Tags(zo::Find("Drain")), (WideList{L"Pitch", L"Flow"}));
}

TEST_F(ViewTableTest, GivesOtherTagsBelowAnUnnamedViewNoEntry) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Points.[]", {}, {As(L"Drain.*", L"Outlet*")})
                                     .Entry(L"Drain", {}, {From(L".*")}))));
    H const view = dam.registry->Wrap(dam::row::Point, &dam.model.points[1]);
    ZOFwrdViewIterator at(view, all);
    std::advance(at, 2);
    ASSERT_TRUE(*at);
    EXPECT_EQ((*at)->Tag(), L"OutletPitch");
    EXPECT_EQ(TextOf(*at), L"0.02");
    EXPECT_EQ((*at)->Name(), "");
    EXPECT_FALSE(zo::Find("OutletPitch")) << "nothing shows at the top";
}

TEST_F(ViewTableTest, UsesTheEntryOfAnotherTagThatIsHeld) {
    ASSERT_TRUE(Succeeds(Compile(Renamed())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    std::advance(at, 2);
    H const held = *at;
    ZOFwrdViewIterator again(zo::Find("Body"), all);
    std::advance(again, 2);
    EXPECT_EQ(again->get(), held.get());
}

TEST_F(ViewTableTest, KeepsNoEntryOfAnotherTagThatNobodyHolds) {
    ASSERT_TRUE(Succeeds(Compile(Renamed())));
    std::size_t const before = EntryCount(*dam.registry);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Names("Body").size(), 4u);
    EXPECT_EQ(EntryCount(*dam.registry), before);
}

} // namespace
