// Sequences: their rows, the form in which documents hold them, and that each form gives everything back.
#include "tests/kit/Site.h"

#include <cmath>
#include <limits>

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Persist;

constexpr double greatest = std::numeric_limits<double>::max();

struct Survey {
    std::vector<double> depths;
    std::deque<int> counts;
    std::array<float, 3> gains{};
    double corner[2] = {};
    std::vector<Method> methods;
    std::vector<std::wstring> notes;
    std::deque<std::string> makers;
    std::vector<Point> points;
    std::deque<Point> stations;
    std::array<Point, 2> ends{};
    std::vector<std::vector<double>> readings;
    std::vector<std::array<int, 2>> pairs;
    double grid[2][3] = {};
    std::vector<std::deque<std::vector<int>>> deep;
    std::deque<bool> flags;
    std::vector<std::vector<Point>> profiles;
    std::vector<DataParamType> parameters;

    bool operator==(Survey const&) const = default;
};

class ArrayTest : public KitTest {
protected:
    Survey survey;

    /// Registers the branch "Survey" with the lines that a test wants.
    template <class Lines>
    void Declare(Lines lines) {
        Register({&PointModule, [&](Kit& kit) {
                      kit.Enum<Method>(methods);
                      auto record = kit.Record<Survey>("Survey");
                      lines(record);
                      kit.Branch<Survey>("Survey", L"Survey", [this] { return &survey; });
                  }});
    }
    /// Saves, empties the model, loads.
    void SaveAndLoad() {
        std::wstring const document = Save();
        survey = Survey();
        Load(document);
        EXPECT_EQ(Save(), document);
    }
};

using Record = zo::kit::Record<Survey>;

TEST_F(ArrayTest, NumbersAreOneTextAndOneRowForTheElements) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths"); });
    survey.depths = {1.5, 0, -3};
    EXPECT_EQ(Body(), L"<Survey><Depths>1.5,0,-3</Depths></Survey>");
    EXPECT_TRUE(PersistOf("Survey.Depths").IsPersistedAsValue);
    EXPECT_TRUE(zo::GetTemplate("Survey.Depths.[]"));
    EXPECT_EQ(TextOf("Survey.Depths[2]"), L"-3");
    EXPECT_EQ(TextOf("Survey.Depths.Len"), L"3");
    ASSERT_TRUE(Succeeds(zo::Find("Survey.Depths[1]")->Set(8)));
    EXPECT_EQ(survey.depths[1], 8);
}

TEST_F(ArrayTest, EveryElementOfAListComesBack) {
    Declare([](Record& r) {
        r.Array<&Survey::depths>("Depths", L"Depths")
            .Array<&Survey::counts>("Counts", L"Counts")
            .Array<&Survey::gains>("Gains", L"Gains")
            .Array<&Survey::corner>("Corner", L"Corner")
            .Array<&Survey::methods>("Methods", L"Methods", {.dflt = Method::Rotary})
            .Array<&Survey::flags>("Flags", L"Flags")
            .Array<&Survey::parameters>("Parameters", L"Parameters");
    });
    survey.depths = {0, greatest, -greatest, 5e-324, 0.1, greatest, 0};
    survey.counts = {0, std::numeric_limits<int>::max(), 7, std::numeric_limits<int>::min(), 0, 0};
    survey.gains = {std::numeric_limits<float>::max(), 0, std::numeric_limits<float>::max()};
    survey.corner[0] = greatest;
    survey.corner[1] = greatest;
    survey.methods = {Method::Auger, Method::Rotary, static_cast<Method>(77), Method::Rotary};
    survey.flags = {true, false, false};
    survey.parameters = {DataParamType::Modulus, DataParamType::None};
    Survey const saved = survey;
    SaveAndLoad();
    EXPECT_EQ(survey, saved);
}

TEST_F(ArrayTest, ListOfOneDefaultKeepsItsLength) {
    Declare([](Record& r) {
        r.Array<&Survey::depths>("Depths", L"Depths", {.persist = Persist::IfNotDefault})
            .Array<&Survey::counts>("Counts", L"Counts", {.persist = Persist::IfNotDefault});
    });
    survey.depths = {0};
    survey.counts = {0, 0};
    SaveAndLoad();
    EXPECT_EQ(survey.depths, (std::vector<double>{0}));
    EXPECT_EQ(survey.counts, (std::deque<int>{0, 0}));
}

TEST_F(ArrayTest, FixedListAtItsDefaultIsLeftOutOnRequest) {
    Declare([](Record& r) {
        r.Array<&Survey::gains>("Gains", L"Gains", {.dflt = 1.0f, .persist = Persist::IfNotDefault});
    });
    survey.gains = {1, 1, 1};
    EXPECT_EQ(Body(), L"<Survey/>");
    survey.gains = {1, 1, 2.5f};
    EXPECT_EQ(Body(), L"<Survey><Gains>,,2.5</Gains></Survey>");
    SaveAndLoad();
    EXPECT_EQ(survey.gains, (std::array<float, 3>{1, 1, 2.5f}));
}

TEST_F(ArrayTest, NumberThatIsNotFiniteBecomesTheGreatest) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths"); });
    survey.depths = {1, std::nan(""), -std::numeric_limits<double>::infinity()};
    SaveAndLoad();
    EXPECT_EQ(survey.depths, (std::vector<double>{1, greatest, greatest}));
}

TEST_F(ArrayTest, EmptyListIsNotInTheDocumentAndComesBackEmpty) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths"); });
    std::wstring const document = Save();
    EXPECT_EQ(Body(), L"<Survey/>");
    survey.depths = {1, 2};
    Load(document);
    EXPECT_TRUE(survey.depths.empty());
}

TEST_F(ArrayTest, WholeListIsReadAndWrittenAsText) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths"); });
    zo::H const depths = zo::Find("Survey.Depths");
    ASSERT_TRUE(Succeeds(depths->Set(L"4,0,0")));
    EXPECT_EQ(survey.depths, (std::vector<double>{4, 0, 0}));
    EXPECT_EQ(TextOf(depths), L"4,0,0");
}

TEST_F(ArrayTest, ListWithANamedMissingValueHasAnElementForEach) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths[Depth]", {.missing = -999.0}); });
    survey.depths = {1, -999, 2, -999};
    EXPECT_EQ(Body(), L"<Survey><Depths Len=\"4\"><Depth>1</Depth><Depth Missing=\"true\"/><Depth>2</Depth>"
                      L"<Depth Missing=\"true\"/></Depths></Survey>");
    SaveAndLoad();
    EXPECT_EQ(survey.depths, (std::vector<double>{1, -999, 2, -999}));
}

TEST_F(ArrayTest, ElementsOnRequest) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths", {.elements = true}); });
    survey.depths = {1, 0};
    EXPECT_EQ(Body(), L"<Survey><Depths Len=\"2\"><Depths_>1</Depths_><Depths_>0</Depths_></Depths></Survey>");
    SaveAndLoad();
    EXPECT_EQ(survey.depths, (std::vector<double>{1, 0}));
}

TEST_F(ArrayTest, ElementsOfAListHaveTheLinesRule) {
    Declare([](Record& r) {
        r.Array<&Survey::depths>("Depths", L"Depths",
                                 {.dflt = 2.0, .unit = zo::kit::Kind::Length, .min = 0.0, .max = 9.0});
    });
    ASSERT_TRUE(Succeeds(zo::Find("Survey.Depths")->SetLength(2)));
    EXPECT_EQ(survey.depths, (std::vector<double>{2, 2}));
    EXPECT_EQ(zo::Find("Survey.Depths[0]")->Set(10).AsWString(), L"10 is not between 0 and 9.");
    EXPECT_EQ(zo::DataTraits("Survey.Depths.[]").AsAtomic()->unitKind(nullptr, nullptr), zo::kit::Kind::Length);
}

TEST_F(ArrayTest, TextsAreElements) {
    Declare([](Record& r) {
        r.Array<&Survey::notes>("Notes", L"Notes[Note]").Array<&Survey::makers>("Makers", L"Makers[Maker]");
    });
    survey.notes = {L"a,b", L"", L"(open", L"  ", L"<&\">", L"line\nbreak", L""};
    survey.makers = {"", ",", "x"};
    EXPECT_NE(Body().find(L"<Note>a,b</Note><Note Missing=\"true\"/><Note>(open</Note>"), std::wstring::npos);
    Survey const saved = survey;
    SaveAndLoad();
    EXPECT_EQ(survey, saved);
}

TEST_F(ArrayTest, WordsWithCommasMakeElements) {
    Register({[&](Kit& kit) {
        std::array const words{meta::EnumWord{1, L"Rotary, cored", L"R", L"R"},
                               meta::EnumWord{9, L"Auger", L"A", L"A"}};
        kit.Enum<Method>(words);
        kit.Record<Survey>("Survey").Array<&Survey::methods>("Methods", L"Methods[Method]", {.dflt = Method::Auger});
        kit.Branch<Survey>("Survey", L"Survey", [this] { return &survey; });
    }});
    survey.methods = {Method::Rotary, Method::Auger};
    SaveAndLoad();
    EXPECT_EQ(survey.methods, (std::vector<Method>{Method::Rotary, Method::Auger}));
}

TEST_F(ArrayTest, StructuresAreElementsWithTheirFields) {
    Declare([](Record& r) {
        r.Array<&Survey::points>("Points", L"Points[Point]")
            .Array<&Survey::stations>("Stations", L"Stations")
            .Array<&Survey::ends>("Ends", L"Ends[End]");
    });
    survey.points = {{1, 2}, {}, {3, 4}};
    survey.stations = {{5, 6}};
    survey.ends[1] = {7, 8};
    EXPECT_EQ(Body(), L"<Survey><Points Len=\"3\"><Point X=\"1\" Y=\"2\"/><Point X=\"0\" Y=\"0\"/>"
                      L"<Point X=\"3\" Y=\"4\"/></Points><Stations Len=\"1\"><Stations_ X=\"5\" Y=\"6\"/></Stations>"
                      L"<Ends Len=\"2\"><End X=\"0\" Y=\"0\"/><End X=\"7\" Y=\"8\"/></Ends></Survey>");
    EXPECT_EQ(TextOf("Survey.Points[2].Y"), L"4");
    EXPECT_EQ(TextOf(zo::FindTag(std::wstring(L"Survey.Points[3].Y"))), L"4");
    ASSERT_TRUE(Succeeds(zo::Find("Survey.Stations[0].X")->Set(9)));
    EXPECT_EQ(survey.stations[0].x, 9);
    Survey const saved = survey;
    SaveAndLoad();
    EXPECT_EQ(survey, saved);
}

TEST_F(ArrayTest, EmptyInnerListKeepsItsPlace) {
    Declare([](Record& r) { r.Array<&Survey::readings>("Readings", L"Readings[Row]"); });
    survey.readings = {{1}, {}, {2, 3}, {}};
    EXPECT_EQ(Body(), L"<Survey><Readings Len=\"4\"><Row><Items>1</Items></Row><Row/><Row><Items>2,3</Items></Row>"
                      L"<Row/></Readings></Survey>");
    EXPECT_EQ(TextOf("Survey.Readings[2].Items[1]"), L"3");
    SaveAndLoad();
    EXPECT_EQ(survey.readings, (std::vector<std::vector<double>>{{1}, {}, {2, 3}, {}}));
}

TEST_F(ArrayTest, InnerListOfFixedLengthNeedsNoStructure) {
    Declare(
        [](Record& r) { r.Array<&Survey::pairs>("Pairs", L"Pairs[Pair]").Array<&Survey::grid>("Grid", L"Grid[Row]"); });
    survey.pairs = {{0, 0}, {1, 2}, {0, 0}};
    survey.grid[1][2] = 5;
    EXPECT_EQ(Body(), L"<Survey><Pairs Len=\"3\"><Pair>0,0</Pair><Pair>1,2</Pair><Pair>0,0</Pair></Pairs>"
                      L"<Grid Len=\"2\"><Row>0,0,0</Row><Row>0,0,5</Row></Grid></Survey>");
    EXPECT_EQ(TextOf("Survey.Pairs[1][1]"), L"2");
    EXPECT_EQ(TextOf("Survey.Grid[1][2]"), L"5");
    Survey const saved = survey;
    SaveAndLoad();
    EXPECT_EQ(survey, saved);
}

TEST_F(ArrayTest, ArraysNestToAnyDepth) {
    Declare([](Record& r) {
        r.Array<&Survey::deep>("Deep", L"Deep[Level]").Array<&Survey::profiles>("Profiles", L"Profiles[Profile]");
    });
    survey.deep = {{}, {{1, 2}, {}, {3}}, {{}}};
    survey.profiles = {{}, {{1, 2}, {3, 4}}, {}};
    Survey const saved = survey;
    SaveAndLoad();
    EXPECT_EQ(survey, saved);
    EXPECT_EQ(TextOf("Survey.Deep[1].Items[0].Items[1]"), L"2");
    EXPECT_EQ(TextOf("Survey.Profiles[1].Items[1].X"), L"3");
}

TEST_F(ArrayTest, ArrayThatIsNeverSavedIsNotInTheDocument) {
    Declare([](Record& r) {
        r.Array<&Survey::depths>("Depths", L"Depths", {.persist = Persist::Never})
            .Array<&Survey::points>("Points", L"Points[Point]", {.persist = Persist::Never});
    });
    survey.depths = {1};
    survey.points = {{1, 2}};
    EXPECT_EQ(Body(), L"<Survey/>");
    EXPECT_EQ(TextOf("Survey.Points[0].Y"), L"2");
}

TEST_F(ArrayTest, ArrayHasItsOwnRulesAndGroup) {
    Declare([](Record& r) {
        r.Array<&Survey::points>("Points", L"Points[Point]",
                                 {.visible = [](zo::IZO const&) { return false; }, .recordGroup = 10});
    });
    meta::MetaDataTraits const traits = zo::DataTraits("Survey.Points");
    EXPECT_FALSE(meta::CallRule(traits.Descriptor()->visible, zo::Find("Survey.Points").get()));
    EXPECT_EQ(traits.AsArray()->recordGroup(&survey.points), 10u);
}

TEST_F(ArrayTest, ListIsAnAttributeOfARecordOfAttributes) {
    Register({[&](Kit& kit) {
        kit.Enum<Method>(methods);
        kit.Record<Survey>("Survey", {.attributes = true})
            .Array<&Survey::depths>("Depths", L"Depths")
            .Array<&Survey::gains>("Gains", L"Gains")
            .Array<&Survey::counts>("Counts", L"Counts")
            .Array<&Survey::methods>("Methods", L"Methods", {.dflt = Method::Rotary});
        kit.Branch<Survey>("Survey", L"Survey", [this] { return &survey; });
    }});
    survey.depths = {1, 0};
    survey.gains = {0, 0, 4};
    survey.methods = {Method::Auger, Method::Rotary};
    EXPECT_EQ(Body(), L"<Survey Depths=\"1,0\" Gains=\"0,0,4\" Counts=\"\" Methods=\"Auger,Rotary\"/>");
    Survey const saved = survey;
    SaveAndLoad();
    EXPECT_EQ(survey, saved);
}

TEST_F(ArrayTest, RecordsOfAttributesAndListsFollowEachOther) {
    struct Well {
        Point mouth;
        std::vector<Point> bends;
    };
    static std::vector<Well> wells;
    wells = {{{1, 2}, {{3, 4}}}, {{5, 6}, {{7, 8}, {9, 0}}}};
    Register({&PointModule, [](Kit& kit) {
                  kit.Record<Well>("Well")
                      .Struct<&Well::mouth>("Mouth", L"Mouth")
                      .Array<&Well::bends>("Bends", L"Bends[Bend]");
                  kit.Branch<std::vector<Well>>("Wells", L"Wells[Well]", [] { return &wells; });
              }});
    EXPECT_EQ(
        Body(),
        L"<Wells Len=\"2\">"
        L"<Well><Mouth X=\"1\" Y=\"2\"/><Bends Len=\"1\"><Bend X=\"3\" Y=\"4\"/></Bends></Well>"
        L"<Well><Mouth X=\"5\" Y=\"6\"/><Bends Len=\"2\"><Bend X=\"7\" Y=\"8\"/><Bend X=\"9\" Y=\"0\"/></Bends></Well>"
        L"</Wells>");
}

TEST_F(ArrayTest, NewElementsAreAtTheirDefaults) {
    struct Gauge {
        double zero = 4;
    };
    struct Panel {
        std::vector<Gauge> gauges;
    };
    static Panel panel;
    Register({[](Kit& kit) {
        kit.Record<Panel>("Panel").Array<&Panel::gauges>("Gauges", L"Gauges[Gauge]");
        kit.Record<Gauge>("Gauge").Field<&Gauge::zero>("Zero", L"Zero", {.dflt = 6.0});
        kit.Branch<Panel>("Panel", L"Panel", [] { return &panel; });
    }});
    ASSERT_TRUE(Succeeds(zo::Find("Panel.Gauges")->SetLength(2)));
    EXPECT_EQ(panel.gauges.at(1).zero, 6);
}

TEST_F(ArrayTest, LongListComesBackBitForBit) {
    Declare([](Record& r) { r.Array<&Survey::depths>("Depths", L"Depths"); });
    survey.depths.resize(100'000);
    for (std::size_t i = 0; i < survey.depths.size(); ++i)
        survey.depths[i] = 1.0 / (1.0 + static_cast<double>(i % 977));
    std::vector<double> const saved = survey.depths;
    SaveAndLoad();
    EXPECT_EQ(survey.depths, saved);
}

} // namespace
} // namespace site
