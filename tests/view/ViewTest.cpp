// The walk over all levels, the list of children, and the path of view tags.
#include "tests/view/Shown.h"

#include <algorithm>
#include <utility>

using namespace shown;

namespace {

class WholeViewTest : public dam::ViewModelTest {};

struct Visited {
    std::vector<std::pair<std::string, unsigned>> nodes;
    std::size_t Count() const { return nodes.size(); }
    unsigned Deepest() const {
        unsigned deepest = 0;
        for (auto const& [name, level] : nodes) deepest = std::max(deepest, level);
        return deepest;
    }
};

Visited Walk(H const& node) {
    Visited visited;
    zo::view::Walk(node, all, [&visited](H const& at, unsigned level) {
        visited.nodes.emplace_back(at->Name(), level);
        return true;
    });
    return visited;
}

TEST_F(WholeViewTest, VisitsEachNodeBeforeWhatIsBelowIt) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body", {}, {From(L"Points")}))));
    std::vector<std::pair<std::string, unsigned>> const expected{
        {"Body", 0},        {"Body.Crest", 1},     {"Body.Height", 1},    {"Points", 1},       {"Points[0]", 2},
        {"Points[0].X", 3}, {"Points[0].Name", 3}, {"Points[1]", 2},      {"Points[1].X", 3},  {"Points[1].Name", 3},
        {"Points[2]", 2},   {"Points[2].X", 3},    {"Points[2].Name", 3}, {"Drain", 0},        {"Drain.Pitch", 1},
        {"Drain.Flow", 1},  {"Gallery", 0},        {"Gallery.Length", 1}, {"Gallery.Width", 1}};
    EXPECT_EQ(Walk(dam.registry->Root()).nodes, expected);
}

TEST_F(WholeViewTest, DoesNotEnterWhatTheVisitorRefuses) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    List names;
    zo::view::Walk(dam.registry->Root(), all, [&names](H const& at, unsigned) {
        names.push_back(at->Name());
        return at->Name() == "Drain";
    });
    EXPECT_EQ(names, (List{"Body", "Drain", "Drain.Pitch", "Drain.Flow", "Gallery", "Points"}));
}

TEST_F(WholeViewTest, VisitsNothingBelowAnEmptyOrHiddenNode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Drain", Hidden()))));
    EXPECT_EQ(Walk(H()).Count(), 0u);
    EXPECT_EQ(Walk(zo::Find("Drain")).Count(), 0u);
}

TEST_F(WholeViewTest, EndsWhereAnAliasLeadsBack) {
    fixture::Item up = As(L"@Parent", L"All");
    up.push_back({L"RemoveFromSource", L"0"});
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[]", {}, {up}))));
    // Three elements with two fields each and the way back, which is not entered.
    Visited const visited = Walk(zo::Find("Points"));
    EXPECT_EQ(visited.Count(), 3u * 4u);
    EXPECT_EQ(visited.nodes[3], (std::pair<std::string, unsigned>("Points[0].All", 1)));
}

TEST_F(WholeViewTest, EndsWhereTwoAliasesLeadToEachOther) {
    ASSERT_TRUE(Succeeds(
        Compile(TableText::WithDefault().Entry(L"Body", {}, {Also(L"Drain")}).Entry(L"Drain", {}, {Also(L"Body")}))));
    // Crest, Height, Drain; in it Pitch, Flow, Body, which leads back.
    EXPECT_EQ(Walk(zo::Find("Body")).Count(), 6u);
}

TEST_F(WholeViewTest, EndsWhereSplicesShowTheNodesAroundThem) {
    // The body and the drain have all that stands at the top among their children, themselves included.
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Body", {}, {Also(L"@Parent.*")}).Entry(L"Drain", {}, {Also(L"@Parent.*")}))));
    constexpr std::size_t enough = 1000;
    std::size_t count = 0;
    zo::view::Walk(zo::Find("Body"), all, [&count](H const&, unsigned) { return ++count < enough; });
    constexpr std::size_t gallery = 1 + 2;
    constexpr std::size_t points = 1 + 3 * (1 + 2);
    // In the drain neither the body, which is around it, nor the drain itself is entered once more.
    constexpr std::size_t drain = 1 + 2 + 1 + 1 + gallery + points;
    EXPECT_EQ(count, 2 + 1 + drain + gallery + points);
}

TEST(LargeViewTest, OfWhatShowsInEveryElementTwoMillionNodesAreVisited) {
    std::vector<std::vector<dam::DamGallery>> rows(3, std::vector<dam::DamGallery>(100));
    dam::ViewModel const dam([&rows](zo::kit::Kit& kit) {
        kit.Branch<std::vector<dam::DamGallery>>("Lower", L"Lower", [&rows] { return &rows[0]; });
        kit.Branch<std::vector<dam::DamGallery>>("Middle", L"Middle", [&rows] { return &rows[1]; });
        kit.Branch<std::vector<dam::DamGallery>>("Upper", L"Upper", [&rows] { return &rows[2]; });
    });
    ASSERT_TRUE(Succeeds(Compile(
        TableText::WithDefault().Entry(L"Lower.[]", {}, {From(L"Middle")}).Entry(L"Middle.[]", {}, {From(L"Upper")}))));
    std::size_t count = 0;
    zo::view::Walk(zo::Find("Lower"), all, [&count](H const&, unsigned) { return ++count > 0; });
    // A hundred galleries with two fields and the middle row each. All below those would be more than three millions.
    EXPECT_EQ(count, 100u * 4u + 2'000'000u);
}

struct Reach {
    std::wstring name;
    int upstream = 0;
    int downstream = 0;
};

/// Reaches of a canal that link to the ones before and behind them, in a ring.
class CanalTest : public testing::Test {
protected:
    explicit CanalTest(int count) {
        for (int i = 1; i <= count; ++i)
            reaches.push_back({L"Reach " + std::to_wstring(i), i == 1 ? count : i - 1, i == count ? 1 : i + 1});
    }
    CanalTest() : CanalTest(3) {}

    std::vector<Reach> reaches;
    dam::ViewModel dam{[this](zo::kit::Kit& kit) {
        kit.Record<Reach>("Reach")
            .Field<&Reach::name>("Name", L"Name")
            .Link<&Reach::upstream>("Upstream", L"Upstream", 9)
            .Link<&Reach::downstream>("Downstream", L"Downstream", 9);
        kit.Branch<std::vector<Reach>>("Reaches", L"Reaches[Reach]", [this] { return &reaches; }, {.recordGroup = 9});
    }};
};

TEST_F(CanalTest, AWalkShowsWhatALinkLeadsTo) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(Names("Reaches[0].Downstream"),
              (List{"Reaches[1].Name", "Reaches[1].Upstream", "Reaches[1].Downstream"}));
    reaches[0].downstream = 0;
    EXPECT_EQ(Names("Reaches[0].Downstream"), List());
}

TEST_F(CanalTest, AWalkEndsWhereLinksLeadBack) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    // An element with its three fields; either link leads to a reach with three fields, and on from there to the last
    // reach with three fields. All else leads back.
    EXPECT_EQ(Walk(zo::Find("Reaches")).Count(), 3u * (1u + 3u + 2u * (3u + 3u)));
}

class LongCanalTest : public CanalTest {
protected:
    LongCanalTest() : CanalTest(200) {}
};

TEST_F(LongCanalTest, AWalkGoesDownSixtyFourLevelsAndNoDeeper) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    for (Reach& reach : reaches) reach.upstream = 0; // one way around
    Visited const visited = Walk(zo::Find("Reaches[0]"));
    EXPECT_EQ(visited.Count(), 64u * 3u);
    EXPECT_EQ(visited.Deepest(), 63u);
}

TEST_F(WholeViewTest, AppendsTheChildrenOfANode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    std::vector<H> fields{dam.registry->Root()};
    zo::view::VisibleSubFields(fields, zo::Find("Body"), all);
    zo::view::VisibleSubFields(fields, H(), all);
    ASSERT_EQ(fields.size(), 3u);
    EXPECT_EQ(fields[0]->RegID(), dam::row::Root);
    EXPECT_EQ(fields[1]->RegID(), dam::row::Crest);
    EXPECT_EQ(fields[2]->RegID(), dam::row::Height);
}

TEST_F(WholeViewTest, ANodeIsValidWithATagWhereItShows) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body.Crest", {{L"ViewExcl", L"data"}}))));
    int const define = 0x21000;
    EXPECT_TRUE(zo::view::IsValid(zo::Find("Body.Crest"), define | 0x2));
    EXPECT_FALSE(zo::view::IsValid(zo::Find("Body.Crest"), define | 0x1));
    EXPECT_FALSE(zo::view::IsValid(zo::Find("Points.Len"), all)); // shows, and has no tag
    EXPECT_FALSE(zo::view::IsValid(H(), all));
}

// The path of view tags.

/// Every node has an entry of its own.
TableText Entries() {
    TableText table = TableText::WithDefault();
    for (wchar_t const* const tag : {L"Body.Crest", L"Body.Height", L"Drain", L"Drain.Pitch", L"Drain.Flow", L"Gallery",
                                     L"Gallery.Length", L"Points", L"Points.[]", L"Points.[].X"})
        table.Entry(tag);
    return table;
}

TEST_F(WholeViewTest, TurnsANameIntoAPathOfTags) {
    ASSERT_TRUE(Succeeds(Compile(Entries().Entry(L"Body"))));
    EXPECT_EQ(zo::FullTagFromView("Body", all, {}), L"Body");
    EXPECT_EQ(zo::FullTagFromView("Drain.Flow", all, {}), L"Drain.Flow");
}

TEST_F(WholeViewTest, TurnsANameBelowANodeIntoAPathOfTags) {
    ASSERT_TRUE(Succeeds(Compile(Entries().Entry(L"Body"))));
    EXPECT_EQ(zo::FullTagFromView("Flow", all, zo::Find("Drain")), L"Flow");
    EXPECT_EQ(zo::FullTagFromView("Drain.Flow", all, dam.registry->Root()), L"Drain.Flow");
}

TEST_F(WholeViewTest, WritesAnIndexOfAPathOfTagsEmpty) {
    ASSERT_TRUE(Succeeds(Compile(Entries().Entry(L"Body"))));
    EXPECT_EQ(zo::FullTagFromView("Points.1.X", all, {}), L"Points[].X");
}

TEST_F(WholeViewTest, HasNoPathOfTagsForWhatIsNotThere) {
    ASSERT_TRUE(Succeeds(Compile(Entries().Entry(L"Body"))));
    for (char const* const name : {"", ".", "Spillway", "Drain.", ".Drain", "Drain..Flow", "Drain.Spillway",
                                   "Drain.Flow.Deeper", "Spillway.Flow", "Points.7.X"})
        EXPECT_EQ(zo::FullTagFromView(name, all, {}), L"") << name;
    EXPECT_EQ(zo::FullTagFromView(std::string(1'000'000, '.'), all, {}), L"");
    EXPECT_EQ(zo::FullTagFromView("Drain" + std::string(1'000'000, '.'), all, {}), L"");
}

TEST_F(WholeViewTest, HasNoPathOfTagsForWhatDoesNotShowInItsPlace) {
    ASSERT_TRUE(
        Succeeds(Compile(Entries().Entry(L"Body", {}, {From(L"Drain.Pitch")}).Entry(L"Gallery.Width", Hidden()))));
    EXPECT_EQ(zo::FullTagFromView("Drain.Pitch", all, {}), L"");
    EXPECT_EQ(zo::FullTagFromView("Gallery.Width", all, {}), L"");
    EXPECT_EQ(zo::FullTagFromView("Gallery.Length", all, {}), L"Gallery.Length");
}

TEST_F(WholeViewTest, NamesAnAliasByItsEntryInAPathOfTags) {
    ASSERT_TRUE(Succeeds(Compile(Entries().Entry(L"Body", {}, {As(L"Drain", L"Outlet")}))));
    // The alias has its source's entry.
    EXPECT_EQ(zo::FullTagFromView("Body.Outlet.Flow", all, {}), L"Body.Drain.Flow");
}

TEST_F(WholeViewTest, TakesTheFirstOfChildrenThatShareAnEntryIntoAPathOfTags) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(zo::FullTagFromView("Gallery", all, {}), L"Default");
    // So it is at the body from there on, which has no width.
    EXPECT_EQ(zo::FullTagFromView("Gallery.Width", all, {}), L"");
}

} // namespace
