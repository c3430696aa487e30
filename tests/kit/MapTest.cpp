// Containers with keys: maps, and sequences of records with a key among their members.
#include "tests/kit/Site.h"

#include <limits>
#include <new>

namespace site {
namespace {

using zo::kit::Kit;

struct Force {
    double force = 0;
    std::vector<double> history;

    bool operator==(Force const&) const = default;
};

struct Pile {
    std::wstring name;
    int number = 0;
    double length = 0;

    bool operator==(Pile const&) const = default;
};

/// A result that can't be made where memory is short.
struct Result {
    Result() {
        if (left-- == 0) throw std::bad_alloc();
    }

    static inline int left = 1'000'000; // how many can still be made
    double value = 0;
};

struct Foundation {
    std::map<int, double> settlements;
    std::map<std::wstring, Force> loads;
    std::map<std::string, int> counts;
    std::map<htl::Int64, std::wstring> remarks;
    std::map<unsigned char, std::vector<int>> rows;
    std::map<int, std::map<int, int>> matrix;
    std::vector<std::map<int, int>> stages;
    std::vector<Pile> piles;
    std::deque<Pile> anchors;

    bool operator==(Foundation const&) const = default;
};

class MapTest : public KitTest {
protected:
    MapTest() {
        Register({[this](Kit& kit) {
            kit.Record<Force>("Force")
                .Field<&Force::force>("Force", L"Force")
                .Array<&Force::history>("History", L"History");
            kit.Record<Pile>("Pile")
                .Field<&Pile::name>("Name", L"Name")
                .Field<&Pile::number>("Number", L"Number")
                .Field<&Pile::length>("Length", L"Length");
            kit.Record<Foundation>("Foundation")
                .Map<&Foundation::settlements>("Settlements", L"Settlements[Settlement]",
                                               {.keyTag = L"Day", .valueTag = L"Depth", .value = {.min = 0.0}})
                .Map<&Foundation::loads>("Loads", L"Loads[Load]")
                .Map<&Foundation::counts>("Counts", L"Counts[Count]")
                .Map<&Foundation::remarks>("Remarks", L"Remarks[Remark]")
                .Map<&Foundation::rows>("Rows", L"Rows[Row]")
                .Map<&Foundation::matrix>("Matrix", L"Matrix[Line]")
                .Array<&Foundation::stages>("Stages", L"Stages[Stage]")
                .Keyed<&Foundation::piles, &Pile::name>("Piles", L"Piles[Pile]")
                .Keyed<&Foundation::anchors, &Pile::number>("Anchors", L"Anchors[Anchor]");
            kit.Branch<Foundation>("Foundation", L"Foundation", [this] { return &foundation; });
        }});
    }
    void SaveAndLoad() {
        std::wstring const document = Save();
        foundation = Foundation();
        ASSERT_NO_FATAL_FAILURE(KitTest::Load(document));
        EXPECT_EQ(Save(), document);
    }

    Foundation foundation;
};

TEST_F(MapTest, ElementsAreFoundByPosition) {
    foundation.settlements = {{30, 1.5}, {-7, 0.25}};
    EXPECT_EQ(TextOf("Foundation.Settlements[0].first"), L"-7");
    EXPECT_EQ(TextOf("Foundation.Settlements[1].second"), L"1.5");
    EXPECT_EQ(TextOf("Foundation.Settlements.Len"), L"2");
    EXPECT_FALSE(zo::Find("Foundation.Settlements[2]"));
}

TEST_F(MapTest, ElementsAreFoundByKey) {
    foundation.settlements = {{30, 1.5}, {-7, 0.25}};
    foundation.loads[L"Crane"].force = 120;
    foundation.loads[L"12"].force = 12;
    foundation.remarks[5'000'000'000] = L"late";
    EXPECT_EQ(TextOf("Foundation.Settlements.At(30).second"), L"1.5");
    EXPECT_EQ(TextOf("Foundation.Settlements.At(-7).second"), L"0.25");
    EXPECT_EQ(TextOf("Foundation.Loads.At(Crane).second.Force"), L"120");
    EXPECT_EQ(TextOf("Foundation.Loads.At(12).second.Force"), L"12");
    EXPECT_EQ(TextOf("Foundation.Loads.At(\"12\").second.Force"), L"12");
    EXPECT_EQ(TextOf("Foundation.Remarks.At(\"5000000000\").second"), L"late");
    EXPECT_FALSE(zo::Find("Foundation.Settlements.At(31)"));
    EXPECT_FALSE(zo::Find("Foundation.Settlements.At(Crane)"));
    EXPECT_FALSE(zo::Find("Foundation.Loads.At(crane)"));
    EXPECT_FALSE(zo::Find("Foundation.Rows.At(256)"));
}

TEST_F(MapTest, ElementFoundByKeyHasTheNameOfItsPosition) {
    foundation.settlements = {{30, 1.5}, {-7, 0.25}};
    zo::H const element = zo::Find("Foundation.Settlements.At(30)");
    ASSERT_TRUE(element);
    EXPECT_EQ(element->Name(), "Foundation.Settlements[1]");
    EXPECT_TRUE(zo::GetTemplate("Foundation.Loads.At(Crane).Force"));
}

TEST_F(MapTest, ValueIsWrittenInPlace) {
    foundation.settlements = {{30, 1.5}};
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Settlements.At(30).second")->Set(2.5)));
    EXPECT_EQ(foundation.settlements.at(30), 2.5);
    EXPECT_EQ(zo::Find("Foundation.Settlements[0].second")->Set(-1).AsWString(), L"-1 is less than 0.");
}

TEST_F(MapTest, WritingAKeyMovesTheElement) {
    foundation.settlements = {{1, 0.1}, {2, 0.2}, {3, 0.3}};
    double const* const place = &foundation.settlements.at(1);
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Settlements[0].first")->Set(9)));
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{2, 0.2}, {3, 0.3}, {9, 0.1}}));
    EXPECT_EQ(&foundation.settlements.at(9), place);
}

TEST_F(MapTest, KeyThatIsTakenIsRefused) {
    foundation.settlements = {{1, 0.1}, {2, 0.2}};
    htl::status const refused = zo::Find("Foundation.Settlements[0].first")->Set(2);
    EXPECT_EQ(refused.AsWString(), L"The key {2} is taken.");
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{1, 0.1}, {2, 0.2}}));
    EXPECT_TRUE(Succeeds(zo::Find("Foundation.Settlements[0].first")->Set(1))) << "its own key is none that is taken";
}

TEST_F(MapTest, KeyThatDoesNotConvertIsRefused) {
    foundation.settlements = {{1, 0.1}};
    EXPECT_TRUE(zo::Find("Foundation.Settlements[0].first")->Set(L"").IsError());
    EXPECT_TRUE(zo::Find("Foundation.Settlements[0].first")->Set(L"Monday").IsError());
    EXPECT_EQ(foundation.settlements.count(1), 1u);
}

TEST_F(MapTest, ResetKeepsTheKeys) {
    foundation.settlements = {{1, 0.1}, {2, 0.2}};
    zo::Find("Foundation.Settlements")->Clear();
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{1, 0}, {2, 0}}));
    zo::Find("Foundation.Settlements[0].first")->Clear();
    EXPECT_EQ(foundation.settlements.count(1), 1u);
}

TEST_F(MapTest, SimpleElementsAreAttributesInTheDocument) {
    foundation.settlements = {{30, 1.5}, {-7, 0}};
    foundation.counts = {{"", 3}, {"b", 0}};
    EXPECT_EQ(Body(), L"<Foundation><Settlements Len=\"2\"><Settlement Day=\"-7\" Depth=\"0\"/>"
                      L"<Settlement Day=\"30\" Depth=\"1.5\"/></Settlements><Counts Len=\"2\">"
                      L"<Count Key=\"\" Value=\"3\"/><Count Key=\"b\" Value=\"0\"/></Counts></Foundation>");
}

TEST_F(MapTest, RecordsAreElementsInTheDocument) {
    foundation.loads[L"Crane"] = {120, {1, 2}};
    EXPECT_EQ(Body(), L"<Foundation><Loads Len=\"1\"><Load><Key>Crane</Key><Value><Force>120</Force>"
                      L"<History>1,2</History></Value></Load></Loads></Foundation>");
}

TEST_F(MapTest, EverythingComesBack) {
    foundation.settlements = {{std::numeric_limits<int>::min(), 0.5}, {0, 0}, {std::numeric_limits<int>::max(), 7}};
    foundation.loads = {{L"", {1, {}}}, {L"A, (b", {2, {0, 0}}}, {L"\U0001F4A7 \u4e95", {3, {5}}}};
    foundation.counts = {{"", 0}, {"x", 2147483647}, {"  y ", -1}};
    foundation.remarks = {{std::numeric_limits<htl::Int64>::min(), L""},
                          {std::numeric_limits<htl::Int64>::max(), L"<&>"}};
    foundation.rows = {{0, {}}, {7, {1, 0}}, {255, {}}};
    foundation.matrix = {{1, {}}, {2, {{1, 12}, {5, 0}}}, {3, {}}};
    foundation.stages = {{}, {{1, 2}}, {}};
    foundation.piles = {{L"P1", 1, 12}, {L"", 0, 0}};
    foundation.anchors = {{L"A", 3, 4}};
    Foundation const saved = foundation;
    SaveAndLoad();
    EXPECT_EQ(foundation, saved);
}

TEST_F(MapTest, EveryKeyOfASmallTypeComesBack) {
    for (unsigned i = 0; i < 256; ++i) foundation.rows[static_cast<unsigned char>(i)] = {static_cast<int>(i)};
    auto const saved = foundation.rows;
    SaveAndLoad();
    EXPECT_EQ(foundation.rows, saved);
}

TEST_F(MapTest, KeysOutOfOrderFindTheirPlaces) {
    KitTest::Load(Document(L"<Foundation><Settlements Len=\"3\"><Settlement Day=\"5\" Depth=\"0.5\"/>"
                           L"<Settlement Day=\"1\" Depth=\"0.1\"/><Settlement Day=\"3\" Depth=\"0.3\"/>"
                           L"</Settlements></Foundation>"));
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{1, 0.1}, {3, 0.3}, {5, 0.5}}));
}

TEST_F(MapTest, ValueMayStandBeforeItsKey) {
    KitTest::Load(Document(L"<Foundation><Settlements Len=\"2\"><Settlement Depth=\"0.5\" Day=\"5\"/>"
                           L"<Settlement Depth=\"0.1\" Day=\"1\"/></Settlements></Foundation>"));
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{1, 0.1}, {5, 0.5}}));
}

TEST_F(MapTest, KeyTwiceInADocumentIsReportedAndNothingIsLost) {
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::StringRead(
        Document(
            L"<Foundation><Settlements Len=\"3\"><Settlement Day=\"5\" Depth=\"0.5\"/>"
            L"<Settlement Day=\"5\" Depth=\"0.6\"/><Settlement Day=\"7\" Depth=\"0.7\"/></Settlements>"
            L"<Counts Len=\"2\"><Count Key=\"b\" Value=\"1\"/><Count Key=\"b\" Value=\"2\"/></Counts></Foundation>"),
        errors)));
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_NE(errors[0].AsWString().find(L"The key {5} is taken."), std::wstring::npos);
    constexpr int last = std::numeric_limits<int>::max();
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{5, 0.5}, {7, 0.7}, {last - 1, 0.6}}));
    EXPECT_EQ(foundation.counts, (std::map<std::string, int>{{"b", 1},
                                                             {"\xF4\x8F\xBF\xBF"
                                                              "000000000001",
                                                              2}}));

    Foundation const saved = foundation;
    SaveAndLoad();
    EXPECT_EQ(foundation, saved);
}

TEST_F(MapTest, NewElementsStandBehindAllOthers) {
    foundation.settlements = {{1, 0.1}, {2, 0.2}};
    foundation.loads[L"\uFFFDz"];
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Settlements")->SetLength(4)));
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Loads")->SetLength(3)));
    constexpr int last = std::numeric_limits<int>::max();
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{1, 0.1}, {2, 0.2}, {last - 1, 0}, {last, 0}}));
    EXPECT_EQ(foundation.loads.begin()->first, L"\uFFFDz");
    EXPECT_EQ(foundation.loads.size(), 3u);
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Loads")->SetLength(5)));
    EXPECT_EQ(foundation.loads.rbegin()->first, std::wstring(1, static_cast<wchar_t>(0x10FFFF)) + L"000000000003");
}

TEST_F(MapTest, ShorterLengthTakesFromTheEnd) {
    foundation.settlements = {{1, 0.1}, {2, 0.2}, {3, 0.3}};
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Settlements")->SetLength(1)));
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{1, 0.1}}));
}

TEST_F(MapTest, MapWithoutRoomForKeysRefusesALength) {
    for (unsigned i = 0; i < 255; ++i) foundation.rows[static_cast<unsigned char>(i)];
    EXPECT_TRUE(FailsAs(zo::Find("Foundation.Rows")->SetLength(257), zo::ZOError::not_supported("")));
    EXPECT_EQ(foundation.rows.size(), 255u);
    EXPECT_TRUE(Succeeds(zo::Find("Foundation.Rows")->SetLength(256)));
    EXPECT_EQ(foundation.rows.count(255), 1u);
}

TEST_F(MapTest, AddingAndRemoving) {
    foundation.settlements = {{1, 0.1}, {2, 0.2}};
    zo::H const node = zo::Find("Foundation.Settlements");
    auto* const map = dynamic_cast<zo::ZOArray*>(node.get());
    ASSERT_TRUE(map);
    {
        zo::ZOFwrdIterator const added = map->AddNew();
        ASSERT_TRUE(added.current);
        EXPECT_EQ(added.index, 2u);
        ASSERT_TRUE(Succeeds(zo::Find("Foundation.Settlements[2].first")->Set(0)));
        EXPECT_EQ(foundation.settlements.begin()->first, 0);
        EXPECT_TRUE(FailsAs(map->RemoveAt(0), zo::ZOError::array_memory_conflict())) << "a view of an element lives";
    }
    EXPECT_TRUE(Succeeds(map->RemoveAt(1)));
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{0, 0}, {2, 0.2}}));
    EXPECT_TRUE(Succeeds(map->RemoveAt(5)));
    EXPECT_EQ(foundation.settlements.size(), 2u);
}

TEST_F(MapTest, WalkVisitsElementsInTheOrderOfKeys) {
    foundation.settlements = {{3, 0.3}, {1, 0.1}, {2, 0.2}};
    std::wstring seen;
    zo::H const map = zo::Find("Foundation.Settlements");
    for (auto element = map->begin(); element.current; ++element) seen += TextOf(zo::Find(*element, "second")) + L" ";
    EXPECT_EQ(seen, L"0.1 0.2 0.3 ");
}

TEST_F(MapTest, DetachedKeyIsAPlainValue) {
    foundation.settlements = {{3, 0.3}};
    zo::H const key(zo::Find("Foundation.Settlements[0].first")->Clone());
    EXPECT_EQ(TextOf(key), L"3");
    ASSERT_TRUE(Succeeds(key->Set(4)));
    EXPECT_EQ(foundation.settlements.count(3), 1u);
}

TEST_F(MapTest, KeyOfTheRegisteredNodeHasNoMap) {
    zo::IZO* const prototype = zo::GetTemplate("Foundation.Settlements.[].first");
    ASSERT_TRUE(prototype);
    EXPECT_TRUE(prototype->IsUndefined());
    zo::H const clone(prototype->Clone());
    EXPECT_EQ(TextOf(clone), L"0");
    EXPECT_TRUE(FailsAs(prototype->Set(3), zo::ZOError::not_supported("first")));
}

TEST_F(MapTest, TenThousandElementsComeBack) {
    for (int i = 0; i < 10'000; ++i) foundation.settlements[i * 7 - 20'000] = i / 4.0;
    auto const saved = foundation.settlements;
    SaveAndLoad();
    EXPECT_EQ(foundation.settlements, saved);
}

TEST_F(MapTest, RecordsOfASequenceAreFoundByTheirKey) {
    foundation.piles = {{L"P1", 1, 12}, {L"P2", 2, 14}, {L"P2", 3, 16}};
    foundation.anchors = {{L"A", 30, 4}, {L"B", -2, 5}};
    EXPECT_EQ(TextOf("Foundation.Piles.At(P2).Length"), L"14");
    EXPECT_EQ(TextOf("Foundation.Anchors.At(30).Length"), L"4");
    EXPECT_EQ(TextOf("Foundation.Anchors.At(-2).Name"), L"B");
    EXPECT_EQ(TextOf("Foundation.Piles[2].Length"), L"16");
    EXPECT_FALSE(zo::Find("Foundation.Piles.At(P3)"));
    EXPECT_EQ(zo::Find("Foundation.Anchors.At(-2)")->Name(), "Foundation.Anchors[1]");
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Piles.At(P1).Name")->Set(L"P9")));
    EXPECT_EQ(TextOf("Foundation.Piles.At(P9).Length"), L"12");
}

TEST_F(MapTest, GrowingKeepsTheValuesUnderTheLastKeys) {
    constexpr int last = std::numeric_limits<int>::max();
    foundation.settlements = {{3, 0.5}, {last, 2.5}};
    ASSERT_TRUE(Succeeds(zo::Find("Foundation.Settlements")->SetLength(3)));
    EXPECT_EQ(foundation.settlements, (std::map<int, double>{{3, 0.5}, {last - 1, 0}, {last, 2.5}}));
}

TEST_F(MapTest, RecordIsNotRemovedUnderItsViews) {
    foundation.anchors = {{L"A", 30, 4}, {L"B", -2, 5}};
    zo::H const node = zo::Find("Foundation.Anchors");
    auto* const anchors = dynamic_cast<zo::ZOArray*>(node.get());
    zo::H view = zo::Find("Foundation.Anchors[1].Name");
    EXPECT_TRUE(FailsAs(anchors->RemoveAt(0), zo::ZOError::array_memory_conflict()));
    view.release();
    EXPECT_TRUE(Succeeds(anchors->RemoveAt(0)));
    EXPECT_EQ(foundation.anchors, (std::deque<Pile>{{L"B", -2, 5}}));
}

TEST_F(MapTest, KeysPastTheirTypeFindNothing) {
    foundation.rows[255] = {1};
    EXPECT_TRUE(zo::Find("Foundation.Rows.At(255)"));
    EXPECT_FALSE(zo::Find("Foundation.Rows.At(256)"));
    EXPECT_FALSE(zo::Find("Foundation.Rows.At(-1)"));
    EXPECT_FALSE(zo::Find("Foundation.Rows.At(top)"));
}

class ShortMemoryTest : public KitTest {
protected:
    ShortMemoryTest() {
        Register({[this](Kit& kit) {
            kit.Record<Result>("Result").Field<&Result::value>("Value", L"Value");
            kit.Branch<std::map<int, Result>>("Slips", L"Slips[Slip]", [this] { return &slips; });
            kit.Branch<std::vector<Result>>("Steps", L"Steps[Step]", [this] { return &steps; });
        }});
        slips[4].value = 1.25;
        steps.resize(1);
        steps[0].value = 0.5;
    }
    ~ShortMemoryTest() override { Result::left = 1'000'000; }

    std::map<int, Result> slips;
    std::vector<Result> steps;
};

TEST_F(ShortMemoryTest, MapThatCannotTakeALengthStaysAsItWas) {
    Result::left = 1; // the second of two
    EXPECT_TRUE(FailsAs(zo::Find("Slips")->SetLength(3), zo::ZOError::not_supported("")));
    ASSERT_EQ(slips.size(), 1u);
    EXPECT_EQ(slips[4].value, 1.25);
    Result::left = 2;
    EXPECT_TRUE(Succeeds(zo::Find("Slips")->SetLength(3)));
    EXPECT_EQ(slips.size(), 3u);
}

TEST_F(ShortMemoryTest, SequenceThatCannotTakeALengthStaysAsItWas) {
    Result::left = 1;
    EXPECT_TRUE(FailsAs(zo::Find("Steps")->SetLength(3), zo::ZOError::not_supported("")));
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].value, 0.5);
}

TEST_F(ShortMemoryTest, NothingIsAddedWithoutMemory) {
    for (char const* name : {"Slips", "Steps"}) {
        zo::H const node = zo::Find(name);
        auto* const array = dynamic_cast<zo::ZOArray*>(node.get());
        ASSERT_TRUE(array);
        Result::left = 0;
        EXPECT_FALSE(array->AddNew().current);
        EXPECT_EQ(node->Length(), 1u);
    }
}

} // namespace
} // namespace site
