// What shows: the table's word, and that of the node's type.
#include "Common/extinfo/Visible.h"

#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/kit/kit.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZOTransaction.h"
#include "tests/fixtures/ViewModel.h"

#include "support/diag.h"

#include <atomic>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace dam {
namespace {

using embankment::Succeeds;
using fixture::Also;
using fixture::Cell;
using fixture::From;
using fixture::TableText;
using zo::H;
using zo::IsVisible;
using zo::visible::Mask;

// One bit of each group, and all of them.
constexpr int data = 0x1, property = 0x2, report = 0x4, allViews = 0x7, ignoreViews = 0x8;
constexpr int water = 0x400, slope = 0x1000, allPhysics = 0x1FF00;
constexpr int define = 0x20000, contour = 0x40000, allModes = 0x60000;
constexpr int everything = allViews | allPhysics | allModes;

/// Takes down what is posted about visibility.
class Listening final : public hzn::IEventSink {
public:
    Listening() : previous(hzn::eventsink::SetInstance(this)) {
        hzn::diag::SetLogged(hzn::diag::DeclareCategoryMask("ZO.IsVisible"), hzn::diag::Severity::Info);
    }
    Listening(Listening const&) = delete;
    Listening& operator=(Listening const&) = delete;
    ~Listening() {
        hzn::diag::SetLogged(0, hzn::diag::Severity::Error);
        hzn::eventsink::SetInstance(previous);
    }
    void Post(hzn::diag::Severity::Type severity, int, std::wstring const& text) override {
        EXPECT_EQ(severity, hzn::diag::Severity::Info);
        texts.push_back(text);
    }

    std::vector<std::wstring> texts;

private:
    hzn::IEventSink* previous;
};

class VisibleTest : public ViewModelTest {
protected:
    /// Compiles a table with the entry "Default" and these.
    void Table(std::vector<std::pair<std::wstring, std::vector<Cell>>> const& entries) {
        TableText table = TableText::WithDefault();
        for (auto const& [tag, cells] : entries) table.Entry(tag, cells);
        ASSERT_TRUE(Succeeds(Compile(table)));
    }
};

TEST_F(VisibleTest, AnAnalysisHasItsBit) {
    std::pair<int, int> const bits[] = {{0, 0x8000}, {1, 0x200},  {2, 0x400},   {3, 0x800},   {4, 0x1000},
                                        {5, 0x2000}, {6, 0x4000}, {7, 0x1FF00}, {8, 0x10000}, {0x7FFFFFFF, 0x1FF00}};
    for (auto const& [analysis, mask] : bits)
        EXPECT_EQ(Mask(static_cast<hzn::apptype::Value>(analysis)), mask) << analysis;
    for (int const unknown : {-1, 9, 100, std::numeric_limits<int>::min()})
        EXPECT_EQ(Mask(static_cast<hzn::apptype::Value>(unknown)), 0x1FF00) << unknown;
}

TEST_F(VisibleTest, NoAnalysisHasTheBitOfGas) {
    for (int analysis = 0; analysis <= 8; ++analysis) {
        if (analysis == hzn::apptype::AllPhysics) continue;
        EXPECT_EQ(Mask(static_cast<hzn::apptype::Value>(analysis)) & 0x100, 0) << analysis;
    }
}

TEST_F(VisibleTest, AModeHasItsBit) {
    EXPECT_EQ(Mask(hzn::appmode::Define), 0x20000);
    EXPECT_EQ(Mask(hzn::appmode::Contour), 0x40000);
    EXPECT_EQ(Mask(hzn::appmode::Any), 0x60000);
    for (int const unknown : {-1, 2, 100})
        EXPECT_EQ(Mask(static_cast<hzn::appmode::Value>(unknown)), 0x60000) << unknown;
}

TEST_F(VisibleTest, AQueryNeedsABitOfEachGroup) {
    Table({});
    EXPECT_TRUE(IsVisible(row::Body, data | slope | define));
    EXPECT_FALSE(IsVisible(row::Body, slope | define));
    EXPECT_FALSE(IsVisible(row::Body, data | define));
    EXPECT_FALSE(IsVisible(row::Body, data | slope));
    EXPECT_FALSE(IsVisible(row::Body, 0));
    EXPECT_TRUE(IsVisible(row::Body, -1));
}

TEST_F(VisibleTest, AQueryCanIgnoreViews) {
    Table({{L"Body", {{L"ViewExcl", L"all"}}}, {L"Drain", {{L"ViewExcl", L"all"}, {L"Physics", L"water"}}}});
    EXPECT_FALSE(IsVisible(row::Body, everything));
    EXPECT_TRUE(IsVisible(row::Body, ignoreViews | slope | define));
    EXPECT_TRUE(IsVisible(row::Body, ignoreViews | everything));
    // The other groups are tested all the same.
    EXPECT_FALSE(IsVisible(row::Drain, ignoreViews | slope | define));
    EXPECT_TRUE(IsVisible(row::Drain, ignoreViews | water | define));
    EXPECT_FALSE(IsVisible(row::Body, ignoreViews | slope));
    EXPECT_FALSE(IsVisible(row::Body, ignoreViews | define));
}

TEST_F(VisibleTest, AnEntryIsHiddenInTheViewsThatItExcludes) {
    Table({{L"Body", {{L"ViewExcl", L"data"}}}});
    EXPECT_FALSE(IsVisible(row::Body, data | slope | define));
    EXPECT_TRUE(IsVisible(row::Body, property | slope | define));
    EXPECT_TRUE(IsVisible(row::Body, report | slope | define));
    EXPECT_TRUE(IsVisible(row::Body, data | property | slope | define));
}

TEST_F(VisibleTest, AnEntryShowsForTheAnalysesThatItNames) {
    Table({{L"Body", {{L"Physics", L"slope"}}}});
    EXPECT_FALSE(IsVisible(row::Body, allViews | water | allModes));
    EXPECT_TRUE(IsVisible(row::Body, allViews | slope | allModes));
    EXPECT_TRUE(IsVisible(row::Body, allViews | water | slope | allModes));
}

TEST_F(VisibleTest, AnEntryShowsInTheModesThatItNames) {
    Table({{L"Body", {{L"Mode", L"contour"}}}});
    EXPECT_FALSE(IsVisible(row::Body, allViews | allPhysics | define));
    EXPECT_TRUE(IsVisible(row::Body, allViews | allPhysics | contour));
}

TEST_F(VisibleTest, WhatHasNoEntryShowsAsTheDefaultSays) {
    ASSERT_TRUE(Succeeds(Compile(TableText().Entry(L"Default", {{L"ViewExcl", L"data"}}).Entry(L"Body"))));
    EXPECT_FALSE(IsVisible(row::Drain, data | slope | define));
    EXPECT_TRUE(IsVisible(row::Drain, property | slope | define));
    // What an entry doesn't state, the default does.
    EXPECT_FALSE(IsVisible(row::Body, data | slope | define));
}

TEST_F(VisibleTest, AnEntryTakesTheViewsOverThatALessSpecificOneExcludes) {
    Table({{L"Body", {{L"Label", L"Dam body"}}}, {L"Bod*", {{L"ViewExcl", L"property"}}}});
    EXPECT_FALSE(IsVisible(row::Body, property | slope | define));
    EXPECT_TRUE(IsVisible(row::Body, data | slope | define));
}

TEST_F(VisibleTest, AnEntryIsNotNarrowedToTheAnalysesOrModesOfALessSpecificOne) {
    Table({{L"Body", {}}, {L"Bod*", {{L"Physics", L"slope"}, {L"Mode", L"contour"}}}});
    EXPECT_TRUE(IsVisible(row::Body, allViews | water | define));
    EXPECT_FALSE(IsVisible(row::Crest, allViews | water | allModes));
    EXPECT_FALSE(IsVisible(row::Crest, allViews | slope | define));
}

TEST_F(VisibleTest, AnEntryIsCompleteAfterTheFirstQuestion) {
    Table({{L"Body", {}}});
    zo::ExtendedInfoEntry const& entry = zo::extinfo::Store().Entry(zo::extinfo::Store().Find(L"Body"));
    EXPECT_FALSE(entry.fields[zo::ExtendedInfoField::ViewExcl]);
    EXPECT_TRUE(IsVisible(row::Body, everything));
    EXPECT_TRUE(entry.fields[zo::ExtendedInfoField::ViewExcl]);
    EXPECT_TRUE(entry.fields[zo::ExtendedInfoField::Physics]);
    EXPECT_TRUE(entry.fields[zo::ExtendedInfoField::Mode]);
    EXPECT_TRUE(IsVisible(row::Body, everything));
}

TEST_F(VisibleTest, AnAliasWithADynamicEntryTakesNothingFromOthers) {
    TableText const table = TableText()
                                .Entry(L"Default", {{L"ViewExcl", L"data"}})
                                .Entry(L"Body", {}, {Also(L"Drain.Flow"), Also(L"Drain.Pitch")})
                                .Entry(L"Body.Flow", {{L"IsDynamic", L"1"}})
                                .Entry(L"Body.Pitch")
                                .Entry(L"Body.*", {{L"ViewExcl", L"report"}});
    ASSERT_TRUE(Succeeds(Compile(table)));
    std::size_t const flow = row::count, pitch = row::count + 1;
    for (int again = 0; again < 2; ++again) {
        EXPECT_TRUE(IsVisible(flow, report | slope | define));
        EXPECT_TRUE(IsVisible(flow, data | slope | define));
        EXPECT_FALSE(IsVisible(pitch, report | slope | define)); // its entry is not dynamic
    }
}

TEST_F(VisibleTest, AnAliasOfTheViewIsHiddenWithItsSourcesEntry) {
    TableText const table = TableText::WithDefault()
                                .Entry(L"Body", {}, {Also(L"Drain.Flow")})
                                .Entry(L"Drain.Flow", {{L"ViewExcl", L"data"}});
    ASSERT_TRUE(Succeeds(Compile(table)));
    EXPECT_FALSE(IsVisible(row::count, data | slope | define));
    EXPECT_TRUE(IsVisible(row::count, report | slope | define));
}

TEST_F(VisibleTest, BeforeATableIsCompiledNothingShows) {
    EXPECT_FALSE(IsVisible(row::Body, everything));
    EXPECT_FALSE(IsVisible(zo::Find("Body"), everything));
    EXPECT_FALSE(IsVisible(zo::Find("Body"), -1));
    ASSERT_TRUE(Succeeds(TableText::WithDefault().Read()));
    EXPECT_FALSE(IsVisible(row::Body, everything));
}

TEST_F(VisibleTest, WithoutADefaultNothingShows) {
    EXPECT_TRUE(Compile(TableText().Entry(L"Body", {{L"ViewExcl", L"none"}, {L"Physics", L"all"}, {L"Mode", L"all"}}))
                    .IsError());
    EXPECT_FALSE(IsVisible(row::Drain, everything));
    EXPECT_FALSE(IsVisible(row::Body, everything));
    EXPECT_FALSE(IsVisible(zo::Find("Body"), everything));
}

TEST_F(VisibleTest, WhatIsNoRowIsNotVisible) {
    Table({});
    EXPECT_FALSE(IsVisible(zo::IZO::npos, everything));
    EXPECT_FALSE(IsVisible(row::count, everything));
}

TEST_F(VisibleTest, ARowThatComesLaterShowsAsItsEntrySays) {
    Table({{L"App*", {{L"IsDynamic", L"1"}, {L"ViewExcl", L"data"}}}});
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Group("Appendix", L"Appendix");
                    kit.Group("Zone", L"Zone");
                }}).IsClean());
    EXPECT_FALSE(IsVisible(row::count, data | slope | define));
    EXPECT_TRUE(IsVisible(row::count, report | slope | define));
    EXPECT_TRUE(IsVisible(row::count + 1, data | slope | define));
}

TEST_F(VisibleTest, NoNodeIsNeitherVisibleNorEditable) {
    Table({});
    EXPECT_FALSE(IsVisible(H(), everything));
    EXPECT_FALSE(zo::IsEditable(H()));
}

TEST_F(VisibleTest, ANodeShowsAsItsRow) {
    Table({{L"Body", {{L"ViewExcl", L"data"}}}, {L"Points.[].X", {{L"Physics", L"slope"}}}});
    EXPECT_FALSE(IsVisible(zo::Find("Body"), data | slope | define));
    EXPECT_TRUE(IsVisible(zo::Find("Body"), report | slope | define));
    EXPECT_TRUE(IsVisible(zo::Find("Points[1].X"), data | slope | define));
    EXPECT_FALSE(IsVisible(zo::Find("Points[1].X"), data | water | define));
}

TEST_F(VisibleTest, TheRootShowsAndIsEditable) {
    Table({});
    EXPECT_TRUE(IsVisible(zo::ZORegistry::Instance()->Root(), everything)); // it has no type, and so no rule
    EXPECT_TRUE(zo::IsEditable(zo::ZORegistry::Instance()->Root()));
}

struct Weir {
    bool isBuilt = false;
    double level = 12; // metres
    double width = 9;
};

/// A branch "Weir" whose level shows once it is built, and whose width can be edited until then.
class RuleTest : public testing::Test {
protected:
    Weir weir;
    int asked = 0;
    H lastAsked;
    ViewModel dam{[this](zo::kit::Kit& kit) {
        kit.Record<Weir>("Weir")
            .Field<&Weir::isBuilt>("IsBuilt", L"IsBuilt")
            .Field<&Weir::level>("Level", L"Level",
                                 {.visible =
                                      [this](zo::IZO const& node) {
                                          ++asked;
                                          lastAsked = H(const_cast<zo::IZO*>(&node));
                                          return weir.isBuilt;
                                      }})
            .Field<&Weir::width>("Width", L"Width", {.editable = [this](zo::IZO const&) { return !weir.isBuilt; }});
        kit.Branch<Weir>("Weir", L"Weir", [this] { return &weir; });
        kit.Alias("Crown", L"Crown", "Weir.Level");
        kit.Alias("Span", L"Span", "Weir.Width");
        kit.Alias("Second", L"Second", "Crown");
    }};
};

TEST_F(RuleTest, TheRuleOfTheTypeIsAskedEachTime) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    H const level = zo::Find("Weir.Level");
    EXPECT_FALSE(IsVisible(level, everything));
    weir.isBuilt = true;
    EXPECT_TRUE(IsVisible(level, everything));
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(lastAsked, level);
    lastAsked = {};
}

TEST_F(RuleTest, TheTableTakesNoRuleIntoAccount) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_TRUE(IsVisible(zo::Find("Weir.Level")->RegID(), everything));
    EXPECT_EQ(asked, 0);
}

TEST_F(RuleTest, WhatTheTableHidesIsNotAskedForItsRule) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Weir.Level", {{L"ViewExcl", L"all"}}))));
    weir.isBuilt = true;
    EXPECT_FALSE(IsVisible(zo::Find("Weir.Level"), everything));
    EXPECT_EQ(asked, 0);
}

TEST_F(RuleTest, AnAliasHasTheRuleOfItsSource) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    for (std::string const name : {"Crown", "Second"}) {
        weir.isBuilt = false;
        EXPECT_FALSE(IsVisible(zo::Find(name), everything)) << name;
        weir.isBuilt = true;
        EXPECT_TRUE(IsVisible(zo::Find(name), everything)) << name;
        EXPECT_EQ(lastAsked->Name(), "Weir.Level"); // the rule sees the node, not what stands for it
        lastAsked = {};
    }
}

TEST_F(RuleTest, AnAliasIsHiddenByItsOwnEntryAndNotByItsSources) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault()
                                     .Entry(L"Crown", {{L"ViewExcl", L"data"}})
                                     .Entry(L"Weir.Level", {{L"ViewExcl", L"report"}}))));
    weir.isBuilt = true;
    EXPECT_FALSE(IsVisible(zo::Find("Crown"), data | slope | define));
    EXPECT_TRUE(IsVisible(zo::Find("Crown"), report | slope | define));
    lastAsked = {};
}

TEST_F(RuleTest, EditingIsTheTypesToAllow) {
    // No table takes part.
    EXPECT_TRUE(zo::IsEditable(zo::Find("Weir.Width")));
    EXPECT_TRUE(zo::IsEditable(zo::Find("Span")));
    EXPECT_TRUE(zo::IsEditable(zo::Find("Weir.Level")));
    weir.isBuilt = true;
    EXPECT_FALSE(zo::IsEditable(zo::Find("Weir.Width")));
    EXPECT_FALSE(zo::IsEditable(zo::Find("Span")));
    EXPECT_TRUE(zo::IsEditable(zo::Find("Weir")));
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Weir.Level", {{L"ViewExcl", L"all"}}))));
    EXPECT_TRUE(zo::IsEditable(zo::Find("Weir.Level")));
}

TEST_F(RuleTest, ANodeOfATransactionHasTheEntryAndTheRuleOfItsRow) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Weir.Width", {{L"ViewExcl", L"data"}}))));
    htl::handle<zo::ZOTransaction> const edit = zo::ZORegistry::Instance()->CreateTransaction();
    H const width = edit->Find("Weir.Width");
    ASSERT_TRUE(width);
    ASSERT_NE(width->Owner(), zo::ZORegistry::Instance());
    EXPECT_FALSE(IsVisible(width, data | slope | define));
    EXPECT_TRUE(IsVisible(width, report | slope | define));
    H const level = edit->Find("Weir.Level");
    EXPECT_FALSE(IsVisible(level, everything));
    EXPECT_TRUE(zo::IsEditable(width));
    weir.isBuilt = true;
    EXPECT_TRUE(IsVisible(level, everything));
    EXPECT_FALSE(zo::IsEditable(width));
    EXPECT_TRUE(IsVisible(edit->Find("Crown"), everything));
    lastAsked = {};
}

TEST_F(VisibleTest, AnAliasWithoutARowIsHiddenByTheEntryOfItsTag) {
    Table({{L"Drain.Flow", {{L"ViewExcl", L"data"}}}});
    H const alias(new zo::ZOAlias("Drain.Flow", zo::IZO::npos, nullptr));
    ASSERT_TRUE(Succeeds(dam.registry->Insert("Outflow", alias)));
    ASSERT_EQ(alias->RegID(), zo::IZO::npos);
    EXPECT_FALSE(IsVisible(alias, data | slope | define));
    EXPECT_TRUE(IsVisible(alias, report | slope | define));
}

TEST_F(VisibleTest, AnAliasWithoutAnEntryIsHiddenByThatOfItsSource) {
    ViewModel other([](zo::kit::Kit& kit) { kit.Alias("Outlet", L"Outlet", "Drain.Flow"); });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Drain.Flow", {{L"ViewExcl", L"data"}}))));
    H const outlet = zo::Find("Outlet");
    EXPECT_TRUE(IsVisible(outlet->RegID(), data | slope | define)); // its row has the default entry
    EXPECT_FALSE(IsVisible(outlet, data | slope | define));
    EXPECT_TRUE(IsVisible(outlet, report | slope | define));
}

TEST_F(VisibleTest, ADanglingAliasIsNeitherVisibleNorEditable) {
    ViewModel other([](zo::kit::Kit& kit) { kit.Alias("Lost", L"Lost", "Spillway"); });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    ASSERT_TRUE(zo::Find("Lost"));
    EXPECT_TRUE(IsVisible(zo::Find("Lost")->RegID(), everything));
    EXPECT_FALSE(IsVisible(zo::Find("Lost"), everything));
    EXPECT_FALSE(zo::IsEditable(zo::Find("Lost")));
}

TEST_F(VisibleTest, AliasesThatLeadInACircleAreNotVisible) {
    ViewModel other([](zo::kit::Kit& kit) {
        kit.Alias("Left", L"Left", "Right");
        kit.Alias("Right", L"Right", "Left");
        kit.Alias("Self", L"Self", "Self");
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    for (std::string const name : {"Left", "Right", "Self"}) {
        EXPECT_FALSE(IsVisible(zo::Find(name), everything)) << name;
        EXPECT_FALSE(zo::IsEditable(zo::Find(name))) << name;
    }
}

TEST_F(VisibleTest, ALinkHasItsOwnRule) {
    struct Gate {
        int pump = 1;
    };
    struct Pump {
        double rate = 40; // litres per second
    };
    static Gate gate;
    static std::vector<Pump> pumps{{}, {}};
    static bool linkShows;
    constexpr std::uint32_t pumpGroup = 11;
    ViewModel other([](zo::kit::Kit& kit) {
        kit.Record<Pump>("Pump").Field<&Pump::rate>("Rate", L"Rate", {.visible = [](zo::IZO const&) { return false; }});
        kit.Branch<std::vector<Pump>>("Pumps", L"Pumps[Pump]", [] { return &pumps; }, {.recordGroup = pumpGroup});
        kit.Record<Gate>("Gate").Link<&Gate::pump>("Pump", L"Pump", pumpGroup,
                                                   {.visible = [](zo::IZO const&) { return linkShows; }});
        kit.Branch<Gate>("Gate", L"Gate", [] { return &gate; });
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Gate.Pump", {{L"ViewExcl", L"data"}}))));
    linkShows = false;
    EXPECT_FALSE(IsVisible(zo::Find("Gate.Pump"), everything));
    linkShows = true;
    EXPECT_TRUE(IsVisible(zo::Find("Gate.Pump"), everything));
    EXPECT_FALSE(IsVisible(zo::Find("Gate.Pump"), data | slope | define));
    EXPECT_FALSE(IsVisible(zo::Find("Gate.Pump.Rate"), everything));
}

TEST_F(VisibleTest, NothingIsPostedUnlessItIsLogged) {
    Table({{L"Body", {}}});
    Listening listening;
    hzn::diag::SetLogged(hzn::diag::DeclareCategoryMask("ZO.Registry"), hzn::diag::Severity::Info);
    EXPECT_TRUE(IsVisible(zo::Find("Body"), everything));
    hzn::diag::SetLogged(hzn::diag::DeclareCategoryMask("ZO.IsVisible"), hzn::diag::Severity::Note);
    EXPECT_TRUE(IsVisible(zo::Find("Body"), everything));
    EXPECT_EQ(listening.texts, std::vector<std::wstring>());
}

TEST_F(VisibleTest, TheEntryThatDecidesIsPosted) {
    Table({{L"Body", {{L"ViewExcl", L"data"}}}});
    Listening listening;
    for (int again = 0; again < 2; ++again) {
        EXPECT_FALSE(IsVisible(row::Body, data | slope | define));
        EXPECT_TRUE(IsVisible(row::Point, data | slope | define));
    }
    std::wstring const hidden = L"{Body} uses entry {Body}, Visiblity=false\n";
    std::wstring const shown = L"{Points.[]} uses entry {Default}, Visiblity=true\n";
    EXPECT_EQ(listening.texts, (std::vector<std::wstring>{hidden, shown, hidden, shown}));
}

TEST_F(VisibleTest, TheRuleOfTheTypeIsPosted) {
    Table({});
    Listening listening;
    EXPECT_TRUE(IsVisible(zo::Find("Points[1].X"), data | slope | define));
    EXPECT_EQ(listening.texts, (std::vector<std::wstring>{L"{Points.[].X} uses entry {Default}, Visiblity=true\n",
                                                          L"{Points[2].X} run time visibility is true.\n"}));
}

TEST_F(VisibleTest, WhatTheTableHidesHasNoWordAboutItsType) {
    Table({{L"Body", {{L"ViewExcl", L"data"}}}});
    Listening listening;
    EXPECT_FALSE(IsVisible(zo::Find("Body"), data | slope | define));
    EXPECT_EQ(listening.texts, std::vector<std::wstring>{L"{Body} uses entry {Body}, Visiblity=false\n"});
}

TEST_F(VisibleTest, TheEntryOfARedirectIsPostedAtRunTime) {
    ViewModel other([](zo::kit::Kit& kit) { kit.Alias("Outlet", L"Outlet", "Drain.Flow"); });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Outlet"))));
    Listening listening;
    EXPECT_TRUE(IsVisible(zo::Find("Outlet"), everything));
    EXPECT_EQ(listening.texts, (std::vector<std::wstring>{L"{Outlet} uses entry {Outlet}, Visiblity=true\n",
                                                          L"{Outlet} uses entry {Outlet}, Visibility=true )\n",
                                                          L"{Outlet} run time visibility is true.\n"}));
}

TEST_F(VisibleTest, WhatItsEntryHidesAtRunTimeIsPostedToTheEnd) {
    Table({{L"Drain.Flow", {{L"ViewExcl", L"data"}}}});
    H const alias(new zo::ZOAlias("Drain.Flow", zo::IZO::npos, nullptr));
    ASSERT_TRUE(Succeeds(dam.registry->Insert("Outflow", alias)));
    Listening listening;
    EXPECT_FALSE(IsVisible(alias, data | slope | define));
    EXPECT_EQ(listening.texts, (std::vector<std::wstring>{L"{Drain.Flow} uses entry {Drain.Flow}, Visibility=false )\n",
                                                          L"{Drain.Flow} run time visibility is false.\n"}));
}

TEST_F(VisibleTest, EveryMaskAnswersEveryQueryAsItsBitsSay) {
    std::vector<std::pair<std::wstring, std::vector<Cell>>> const entries = {
        {L"Body", {{L"ViewExcl", L"data,report"}, {L"Physics", L"water,slope"}}},
        {L"Body.Crest", {{L"Mode", L"define"}}},
        {L"Body.Height", {{L"ViewExcl", L"none"}, {L"Physics", L"gas"}, {L"Mode", L"contour"}}},
        {L"Drain", {{L"Physics", L"project"}}}};
    Table(entries);
    std::uint32_t const masks[] = {0x2 | 0x1400 | 0x60000, 0x7 | 0x1FF00 | 0x20000, 0x7 | 0x100 | 0x40000,
                                   0x7 | 0x10000 | 0x60000};
    std::size_t const asked[] = {row::Body, row::Crest, row::Height, row::Drain};
    std::mt19937 random(4711);
    for (int i = 0; i < 20000; ++i) {
        std::uint32_t const query = random() & 0x7FF0F;
        std::size_t const which = random() % 4;
        std::uint32_t const both = query & masks[which];
        bool const expected = ((query & 0x8) || (both & 0x7)) && (both & 0x1FF00) && (both & 0x60000);
        ASSERT_EQ(IsVisible(asked[which], static_cast<int>(query)), expected) << which << ' ' << query;
    }
}

TEST_F(VisibleTest, SeveralThreadsMayAsk) {
    Table({{L"Body", {}}, {L"Body.*", {{L"ViewExcl", L"data"}}}, {L"Dra*", {{L"Physics", L"slope"}}}});
    int const query = data | water | define;
    std::atomic<int> wrong = 0;
    auto const ask = [&] {
        zo::ZORegistry::SetInstance(dam.registry.get());
        for (int i = 0; i < 200; ++i)
            for (std::size_t id = 0; id < row::count; ++id) {
                bool const isHidden = id == row::Crest || id == row::Height || (id >= row::Drain && id <= row::Flow);
                if (IsVisible(id, query) == isHidden) ++wrong;
            }
        zo::ZORegistry::SetInstance(nullptr);
    };
    std::thread first(ask), second(ask);
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace dam
