// What a walk over the children of one node meets.
#include "tests/registry/Rows.h"
#include "tests/view/Shown.h"

#include <algorithm>
#include <iterator>

using namespace shown;
using dam::row::Crest;
using dam::row::Height;
using zo::view::ZOFwrdViewIterator;

static_assert(std::forward_iterator<ZOFwrdViewIterator>);

namespace {

class ViewIteratorTest : public dam::ViewModelTest {};

TEST_F(ViewIteratorTest, ShowsNothingBeforeATableIsCompiled) { EXPECT_EQ(RootNames(), List()); }

TEST_F(ViewIteratorTest, FollowsTheTreeWhereTheTableSaysNothingElse) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(RootNames(), (List{"Body", "Drain", "Gallery", "Points"}));
    EXPECT_EQ(Names("Body"), (List{"Body.Crest", "Body.Height"}));
}

TEST_F(ViewIteratorTest, MeetsTheClientsOwnValues) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator const first(zo::Find("Body"), all);
    ASSERT_TRUE(*first);
    EXPECT_TRUE(Succeeds((*first)->Set(7)));
    EXPECT_EQ(dam.model.body.crest, 7);
}

TEST_F(ViewIteratorTest, HasNothingBelowAValue) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Body.Crest"), List());
}

TEST_F(ViewIteratorTest, HasNothingBelowAnEmptyHandle) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names(H()), List());
}

TEST_F(ViewIteratorTest, HasNothingBelowANodeWithoutARow) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    H const length = zo::Find("Points.Len");
    ASSERT_TRUE(zo::IsVisible(length, all));
    EXPECT_EQ(Names(length), List());
}

TEST_F(ViewIteratorTest, PassesOverWhatTheTableHides) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body.Crest", Hidden()))));
    EXPECT_EQ(Names("Body"), (List{"Body.Height"}));
}

TEST_F(ViewIteratorTest, AsksEachQueryAfresh) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body.Crest", {{L"ViewExcl", L"data"}}))));
    int const define = 0x21000;
    EXPECT_EQ(Names("Body", define | 0x1), (List{"Body.Height"}));
    EXPECT_EQ(Names("Body", define | 0x2), (List{"Body.Crest", "Body.Height"}));
}

TEST_F(ViewIteratorTest, HasNothingBelowAHiddenNode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Body", Hidden())
                                     .Entry(L"Body.Crest", {{L"ViewExcl", L"none"}})
                                     .Entry(L"Body.Height", {{L"ViewExcl", L"none"}}))));
    EXPECT_EQ(Names("Body"), List());
}

TEST_F(ViewIteratorTest, GoesOverARangeFor) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    double sum = 0;
    for (H const& value : zo::view::Children(zo::Find("Body"), all)) {
        double each = 0;
        ASSERT_TRUE(Succeeds(value->Get(each)));
        sum += each;
    }
    EXPECT_EQ(sum, 30); // 6 and 24
}

TEST_F(ViewIteratorTest, ServesAlgorithms) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator const first(zo::Find("Points"), all);
    EXPECT_EQ(std::distance(first, {}), 3);
    auto const found = std::find_if(first, {}, [](H const& point) { return point->Name() == "Points[1]"; });
    ASSERT_NE(found, ZOFwrdViewIterator());
    EXPECT_EQ((*found)->Name(), "Points[1]");
}

TEST_F(ViewIteratorTest, GivesItsOldPlaceWhenItMovesOn) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    ZOFwrdViewIterator const before = at++;
    EXPECT_EQ((*before)->RegID(), Crest);
    EXPECT_EQ((*at)->RegID(), Height);
}

TEST_F(ViewIteratorTest, EqualsACopyUntilOneMovesOn) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator const first(zo::Find("Body"), all);
    ZOFwrdViewIterator other = first;
    EXPECT_EQ(other, first);
    EXPECT_NE(++other, first);
}

TEST_F(ViewIteratorTest, ReachesItsNodeByArrow) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator const first(zo::Find("Body"), all);
    EXPECT_EQ(first->get()->RegID(), Crest);
}

TEST_F(ViewIteratorTest, StaysAtTheEnd) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    ++at;
    ++at;
    EXPECT_EQ(at, ZOFwrdViewIterator());
    EXPECT_EQ(++at, ZOFwrdViewIterator());
    EXPECT_FALSE(*at);
}

/// What is left of a walk.
List Rest(ZOFwrdViewIterator at) {
    List names;
    for (; *at; ++at) names.push_back((*at)->Name());
    return names;
}

TEST_F(ViewIteratorTest, IsCopiedWithItsPlaceAmongSiblings) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator at(dam.registry->Root(), all);
    ZOFwrdViewIterator const copy = ++at;
    EXPECT_EQ(Rest(at), (List{"Drain", "Gallery", "Points"}));
    EXPECT_EQ(Rest(copy), (List{"Drain", "Gallery", "Points"}));
}

TEST_F(ViewIteratorTest, IsCopiedWithItsPlaceInAnArray) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator at(zo::Find("Points"), all);
    ZOFwrdViewIterator const copy = at;
    ++at;
    ++at;
    EXPECT_EQ(Rest(at), (List{"Points[2]"}));
    EXPECT_EQ(Rest(copy), (List{"Points[0]", "Points[1]", "Points[2]"}));
}

TEST_F(ViewIteratorTest, IsCopiedWithItsPlaceInASplice) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain.*")}))));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    ++at;
    ZOFwrdViewIterator const copy = ++at;
    EXPECT_EQ(Rest(++at), (List{"Drain.Flow"}));
    EXPECT_EQ(Rest(copy), (List{"Drain.Pitch", "Drain.Flow"}));
}

TEST_F(ViewIteratorTest, TakesOverAnotherWalk) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator at(zo::Find("Points"), all);
    at = ZOFwrdViewIterator(zo::Find("Body"), all);
    EXPECT_EQ(Rest(at), (List{"Body.Crest", "Body.Height"}));
    ZOFwrdViewIterator const other(zo::Find("Drain"), all);
    at = other;
    EXPECT_EQ(Rest(at), (List{"Drain.Pitch", "Drain.Flow"}));
    ZOFwrdViewIterator& same = at;
    at = same;
    EXPECT_EQ(Rest(at), (List{"Drain.Pitch", "Drain.Flow"}));
    at = ZOFwrdViewIterator();
    EXPECT_EQ(Rest(at), List());
}

TEST_F(ViewIteratorTest, LeavesTheEndBehindWhereItIsMovedFrom) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ZOFwrdViewIterator at(zo::Find("Body"), all);
    ZOFwrdViewIterator const taken = std::move(at);
    EXPECT_EQ(Rest(taken), (List{"Body.Crest", "Body.Height"}));
    EXPECT_EQ(Rest(at), List()); // NOLINT(bugprone-use-after-move)
}

TEST_F(ViewIteratorTest, DoesNotSeeElementsThatAreAddedBehindItsPosition) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    dam.model.points.reserve(4); // so that the elements stay where they are
    ZOFwrdViewIterator at(zo::Find("Points"), all);
    ++at;
    ++at;
    dam.model.points.push_back({110, L"Ditch"});
    EXPECT_EQ(Rest(at), (List{"Points[2]"}));
    EXPECT_EQ(Names("Points").size(), 4u);
}

// Branches that come and go.

struct Reading {
    double level = 0;
};

TEST(ViewBranchTest, LeavesOutABranchWithoutData) {
    Reading reading;
    Reading* there = nullptr;
    dam::ViewModel const dam([&](zo::kit::Kit& kit) {
        kit.Record<Reading>("Reading").Field<&Reading::level>("Level", L"Level");
        kit.Branch<Reading>("Reading", L"Reading", [&] { return there; });
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(RootNames(), (List{"Body", "Drain", "Gallery", "Points"}));
    there = &reading;
    EXPECT_EQ(RootNames(), (List{"Body", "Drain", "Gallery", "Points", "Reading"}));
}

TEST(ViewBranchTest, LeavesOutABranchWithoutDataBelowAGroup) {
    Reading reading;
    Reading* there = nullptr;
    dam::ViewModel const dam([&](zo::kit::Kit& kit) {
        kit.Record<Reading>("Reading").Field<&Reading::level>("Level", L"Level");
        kit.Group("Results", L"Results");
        kit.Branch<Reading>("Results.Reading", L"Reading", [&] { return there; });
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Results"), List());
    there = &reading;
    EXPECT_EQ(Names("Results"), (List{"Results.Reading"}));
    EXPECT_EQ(Names("Results.Reading"), (List{"Results.Reading.Level"}));
}

// Rules that types supply.

struct Gauge {
    double level = 0;
    double trend = 0;
};
struct Station {
    Gauge gauge;
    std::vector<Gauge> history;
};

/// A station whose fields ask the test whether they show.
class ViewRuleTest : public testing::Test {
protected:
    bool Shows(zo::IZO const& node) const {
        return std::find(hidden.begin(), hidden.end(), node.Name()) == hidden.end();
    }

    Station station{{}, std::vector<Gauge>(3)};
    List hidden;
    dam::ViewModel dam{[this](zo::kit::Kit& kit) {
        auto const rule = [this](zo::IZO const& node) { return Shows(node); };
        kit.Record<Gauge>("Gauge", {.visible = rule})
            .Field<&Gauge::level>("Level", L"Level", {.visible = rule})
            .Field<&Gauge::trend>("Trend", L"Trend", {.visible = rule});
        kit.Record<Station>("Station")
            .Struct<&Station::gauge>("Gauge", L"Gauge")
            .Array<&Station::history>("History", L"History[Gauge]");
        kit.Branch<Station>("Station", L"Station", [this] { return &station; });
    }};
};

TEST_F(ViewRuleTest, IsAskedAtEachWalk) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Station.Gauge"), (List{"Station.Gauge.Level", "Station.Gauge.Trend"}));
    hidden = {"Station.Gauge.Level"};
    EXPECT_EQ(Names("Station.Gauge"), (List{"Station.Gauge.Trend"}));
    hidden = {"Station.Gauge.Trend"};
    EXPECT_EQ(Names("Station.Gauge"), (List{"Station.Gauge.Level"}));
}

TEST_F(ViewRuleTest, HidesWhatIsBelowItsNode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    hidden = {"Station.Gauge"};
    EXPECT_EQ(Names("Station"), (List{"Station.History"}));
    EXPECT_EQ(Names("Station.Gauge"), List());
}

TEST_F(ViewRuleTest, EndsTheWalkOverAnArrayAtAHiddenFirstElement) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    hidden = {"Station.History[0]"};
    EXPECT_EQ(Names("Station.History"), List());
}

TEST_F(ViewRuleTest, IsNotAskedAboutFurtherElements) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    hidden = {"Station.History[1]"};
    EXPECT_EQ(Names("Station.History"), (List{"Station.History[0]", "Station.History[1]", "Station.History[2]"}));
    EXPECT_EQ(Names("Station.History[1]"), List());
}

TEST_F(ViewRuleTest, IsAskedAboutEachChildOfADynamicNode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Station.Gauge", {}, {From(L".*")}))));
    EXPECT_EQ(Names("Station.Gauge"), (List{"Station.Gauge.Level", "Station.Gauge.Trend"}));
    hidden = {"Station.Gauge.Level"};
    EXPECT_EQ(Names("Station.Gauge"), (List{"Station.Gauge.Trend"}));
}

// Arrays.

TEST_F(ViewIteratorTest, MeetsTheElementsOfAnArray) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Points"), (List{"Points[0]", "Points[1]", "Points[2]"}));
    EXPECT_EQ(Names("Points[2]"), (List{"Points[2].X", "Points[2].Name"}));
}

TEST_F(ViewIteratorTest, HasNothingBelowAnEmptyArray) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    dam.model.points.clear();
    EXPECT_EQ(Names("Points"), List());
}

TEST_F(ViewIteratorTest, HasNothingBelowAnArrayWhoseElementsTheTableHides) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[]", Hidden()))));
    EXPECT_EQ(Names("Points"), List());
}

// Rows of client classes.

class ViewRowTest : public rows::RegistryTest {};

/// An array without an element at index 0.
class Later : public rows::Plain {
public:
    using Plain::Plain;
    IZO* Clone() override { return new Later(RegID(), Owner()); }
    zo::ZOFwrdIterator begin() override {
        zo::ZOFwrdIterator first;
        first.parent = H(this);
        first.index = 1;
        first.current = Element_();
        return first;
    }

protected:
    void GetNextSubZO(zo::ZOFwrdIterator& position) override {
        position.current = ++position.index < 4 ? Element_() : H();
    }

private:
    H Element_() const { return H(new Plain(rows::RowOf("Later.[]"), Owner())); }
};

TEST_F(ViewRowTest, TheFirstElementSpeaksForAllWhateverItsIndex) {
    static int timesAsked;
    static meta::MetaTraitsStructure const shyElement = [] {
        meta::MetaTraitsStructure record;
        record.kind = meta::Kind::Structure;
        record.visible = [](void const*) { return ++timesAsked != 2; };
        return record;
    }();
    timesAsked = 0;
    registry.Add("Later", H(new Later), L"Later", rows::ArrayKindTraits());
    registry.Add("Later.[]", H(new rows::Plain), L"Later", meta::MetaDataTraits(shyElement));
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(std::distance(ZOFwrdViewIterator(zo::Find("Later"), all), {}), 3);
    EXPECT_EQ(timesAsked, 1);
    EXPECT_FALSE(*ZOFwrdViewIterator(zo::Find("Later"), all));
    EXPECT_EQ(timesAsked, 2);
}

TEST_F(ViewRowTest, ANodeWithoutATagDoesNotShow) {
    registry.AddPlain("Site", L"Site");
    registry.AddPlain("Site.Bare", L"");
    registry.AddPlain("Site.Named", L"Named");
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Site"), (List{"Site.Named"}));
}

/// A node that says its tag itself.
class Tagged : public rows::Plain {
public:
    using Plain::Plain;
    IZO* Clone() override { return new Tagged(RegID(), Owner()); }
    meta::MetaPersistTraits GetPersistTraits() const override { return {meta::MetaPersistTraits::No, L"Own"}; }
};

TEST_F(ViewRowTest, ANodeWithoutATagInItsRowIsFoundByName) {
    registry.AddPlain("Site", L"Site");
    registry.Add("Site.Bare", H(new Tagged), L"", rows::StructureTraits());
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Site"), (List{"Site.Bare"}));
}

/// A yard whose children are made as the walk comes to them: one without a name, one whose name leads nowhere, and one
/// that can be found.
class Yard : public rows::Plain {
public:
    using Plain::Plain;
    IZO* Clone() override { return new Yard(RegID(), Owner()); }
    zo::ZOFwrdIterator begin() override {
        zo::ZOFwrdIterator first;
        first.parent = H(this);
        first.current = Child_(0);
        return first;
    }

protected:
    void GetNextSubZO(zo::ZOFwrdIterator& position) override { position.current = Child_(++position.index); }

private:
    H Child_(std::size_t index) const {
        if (index > 2) return {};
        H const child(new Plain(rows::RowOf("Yard.Stock"), zo::ZORegistry::Instance()));
        if (index == 1)
            (void)zo::ZORegistry::Instance()->InsertTemporary("Quarry.Stock", child); // the test asks its name
        return index == 2 ? zo::Find("Yard.Stock") : child;
    }
};

TEST_F(ViewRowTest, LeavesOutUnderAnotherTagWhatCannotBeFoundByName) {
    registry.AddPlain("Site", L"Site");
    registry.Add("Yard", H(new Yard), L"Yard", rows::StructureTraits());
    registry.AddPlain("Yard.Stock", L"Stock");
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Site", {}, {As(L"Yard.*", L"Old*")}).Entry(L"Yard", {}, {From(L".*")}))));
    ASSERT_EQ(Names("Yard"), (List{"", "Quarry.Stock", "Yard.Stock"}));
    ZOFwrdViewIterator at(zo::Find("Site"), all);
    EXPECT_EQ(NameOf(*at), "Site.OldStock");
    EXPECT_EQ(zo::GetSource(*at)->Name(), "Yard.Stock");
    EXPECT_FALSE(*++at);
}

} // namespace
