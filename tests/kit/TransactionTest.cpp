// Edits of declared structures that are staged, committed, taken back and done again.
#include "tests/kit/Site.h"

#include "Common/registry/ZOJournal.h"
#include "Common/registry/ZOTransaction.h"

#include <limits>
#include <memory>
#include <optional>
#include <random>

namespace site {
namespace {

using zo::H;
using zo::ZOJournal;
using zo::kit::Kit;
using Transaction = htl::handle<zo::ZOTransaction>;

struct Force {
    double force = 0;
    std::vector<double> history;

    bool operator==(Force const&) const = default;
};

struct Pile {
    std::wstring name;
    double length = 0;

    bool operator==(Pile const&) const = default;
};

struct Water {
    double level = 0;
    std::vector<Point> points;

    bool operator==(Water const&) const = default;
};

struct Pier {
    std::map<int, double> settlements;
    std::map<std::wstring, Force> loads;
    std::map<int, std::map<int, int>> matrix;
    std::vector<std::map<int, int>> stages;
    std::vector<Pile> piles;
    std::vector<Instrument> instruments;
    std::vector<std::string> codes;
    std::optional<Water> water;

    bool HasWater() const { return water.has_value(); }
    void SetHasWater(bool on) {
        if (!on)
            water.reset();
        else if (!water)
            water.emplace();
    }
};

class JournalTest : public KitTest {
protected:
    JournalTest() {
        Register(
            {&PointModule, &InstrumentModule, [this](Kit& kit) {
                 kit.Record<Force>("Force")
                     .Field<&Force::force>("Force", L"Force")
                     .Array<&Force::history>("History", L"History");
                 kit.Record<Pile>("Pile").Field<&Pile::name>("Name", L"Name").Field<&Pile::length>("Length", L"Length");
                 kit.Record<Water>("Water")
                     .Field<&Water::level>("Level", L"Level")
                     .Array<&Water::points>("Points", L"Points[Point]");
                 kit.Record<Pier>("Pier")
                     .Map<&Pier::settlements>("Settlements", L"Settlements[Settlement]", {.value = {.min = 0.0}})
                     .Map<&Pier::loads>("Loads", L"Loads[Load]")
                     .Map<&Pier::matrix>("Matrix", L"Matrix[Line]")
                     .Array<&Pier::stages>("Stages", L"Stages[Stage]")
                     .Keyed<&Pier::piles, &Pile::name>("Piles", L"Piles[Pile]")
                     .Array<&Pier::instruments>("Instruments", L"Instruments[Instrument]")
                     .Array<&Pier::codes>("Codes", L"Codes[Code]")
                     .Property<&Pier::HasWater, &Pier::SetHasWater>("HasWater", L"HasWater");
                 kit.Branch<Pier>("Pier", L"Pier", [this] { return &pier; });
                 // By name and by tag before the property that brings it about.
                 kit.Branch<Water>("Lake", L"Water", [this] { return pier.water ? &*pier.water : nullptr; });
             }});
        transaction = registry->CreateTransaction();
    }
    ~JournalTest() override { transaction.release(); }

    H Staged(std::string const& name) const { return transaction->Find(name); }
    template <class V>
    void Stage(std::string const& name, V const& value) const {
        H const node = Staged(name);
        ASSERT_TRUE(node) << name;
        EXPECT_TRUE(Succeeds(node->Set(value))) << name;
    }
    void StageLength(std::string const& name, std::size_t length) const {
        H const node = Staged(name);
        ASSERT_TRUE(node) << name;
        EXPECT_TRUE(Succeeds(node->SetLength(length))) << name;
    }
    void ExpectUndoAndRedo() {
        std::wstring const before = Save();
        ASSERT_TRUE(Succeeds(transaction->Commit("", "", &journal)));
        std::wstring const after = Save();
        EXPECT_NE(after, before) << "nothing was committed";
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
            ASSERT_EQ(Save(), before);
            ASSERT_TRUE(Succeeds(journal.Redo(*registry)));
            ASSERT_EQ(Save(), after);
        }
    }
    void FillSettlements() {
        for (int day = 1; day <= 13; ++day) pier.settlements[10 * day] = day / 8.0;
    }

    Pier pier;
    ZOJournal journal;
    Transaction transaction;
};

// --- values ---

TEST_F(JournalTest, ValuesOfEveryTypeGoBackAndForth) {
    pier.instruments = {
        {7, -3, 9, -4, 5, 0.5f, 1.25, -6, 8, true, "Maker", L"Note", DataParamType::Modulus, Method::Auger}};
    Instrument const old = pier.instruments[0];
    std::string const name = "Pier.Instruments[0].";
    Stage(name + "Channel", 255);
    Stage(name + "Offset", std::numeric_limits<int>::min());
    Stage(name + "Serial", std::numeric_limits<unsigned>::max() - 1);
    Stage(name + "Reference", std::numeric_limits<long>::min());
    Stage(name + "Color", std::numeric_limits<unsigned long>::max() - 1);
    Stage(name + "Gain", 0.1);
    Stage(name + "Reading", 1.0 / 3);
    Stage(name + "Taken", std::numeric_limits<htl::Int64>::min());
    Stage(name + "Mask", std::numeric_limits<htl::UInt64>::max() - 1);
    Stage(name + "Calibrated", false);
    Stage(name + "Maker", L"\u00C9tude, \"A\" <B>");
    Stage(name + "Note", L"");
    Stage(name + "Parameter", L"7");
    Stage(name + "Method", L"Percussion");
    ExpectUndoAndRedo();
    Instrument const changed = pier.instruments[0];
    EXPECT_EQ(changed.offset, std::numeric_limits<int>::min());
    EXPECT_EQ(changed.mask, std::numeric_limits<htl::UInt64>::max() - 1);
    EXPECT_EQ(changed.gain, 0.1f);
    EXPECT_EQ(changed.parameter, DataParamType::Cohesion);
    EXPECT_EQ(changed.method, Method::Percussion);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.instruments[0], old);
    ASSERT_TRUE(Succeeds(journal.Redo(*registry)));
    EXPECT_EQ(pier.instruments[0], changed);
}

TEST_F(JournalTest, ValuesOfEveryTypeComeBackWithTheirElement) {
    pier.instruments = {
        {}, {7, -3, 9, -4, 5, 0.1f, 1.0 / 3, -6, 8, true, "Maker", L"Note", DataParamType::Modulus, Method::Auger}};
    std::vector<Instrument> const old = pier.instruments;
    StageLength("Pier.Instruments", 0);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.instruments, old);
}

TEST_F(JournalTest, MissingValuesGoBackAndForth) {
    pier.instruments = {{}};
    pier.instruments[0].reading = std::numeric_limits<double>::max();
    pier.instruments[0].offset = std::numeric_limits<int>::max();
    Instrument const old = pier.instruments[0];
    Stage("Pier.Instruments[0].Reading", 3.0);
    Stage("Pier.Instruments[0].Offset", 3);
    Stage("Pier.Instruments[0].Gain", L"");
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.instruments[0], old);
}

TEST_F(JournalTest, TextsInArraysGoBackAndForth) {
    pier.codes = {"a,b", "", "(c", "d)"};
    StageLength("Pier.Codes", 2);
    Stage("Pier.Codes[0]", L"x");
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.codes, (std::vector<std::string>{"a,b", "", "(c", "d)"}));
}

// --- maps ---

TEST_F(JournalTest, AValueInAMapGoesBackAndForth) {
    FillSettlements();
    std::map<int, double> const old = pier.settlements;
    Stage("Pier.Settlements.At(100).second", 4.0);
    Stage("Pier.Settlements[2].second", 5.0);
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.settlements.at(100), 4);
    EXPECT_EQ(pier.settlements.at(30), 5);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
}

TEST_F(JournalTest, AKeyThatIsChangedMovesItsElementBackAndForth) {
    FillSettlements();
    std::map<int, double> const old = pier.settlements;
    Stage("Pier.Settlements[1].first", 500);
    Stage("Pier.Settlements[11].first", -5);
    ExpectUndoAndRedo();
    std::map<int, double> moved = old;
    moved.erase(20);
    moved.erase(120);
    moved[500] = 0.25;
    moved[-5] = 1.5;
    EXPECT_EQ(pier.settlements, moved);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
}

TEST_F(JournalTest, KeysAndValuesChangeTogether) {
    FillSettlements();
    Stage("Pier.Settlements[0].first", 1000);
    Stage("Pier.Settlements[0].second", 7.5);
    Stage("Pier.Settlements[12].second", 8.5);
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.settlements.at(1000), 7.5);
    EXPECT_EQ(pier.settlements.at(130), 8.5);
    EXPECT_EQ(pier.settlements.size(), 13u);
}

TEST_F(JournalTest, AMapThatGrowsGoesBackAndForth) {
    FillSettlements();
    std::map<int, double> const old = pier.settlements;
    StageLength("Pier.Settlements", 15);
    Stage("Pier.Settlements[13].first", 5);
    Stage("Pier.Settlements[13].second", 0.5);
    Stage("Pier.Settlements[14].first", 15);
    Stage("Pier.Settlements[14].second", 1.5);
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.settlements.size(), 15u);
    EXPECT_EQ(pier.settlements.at(5), 0.5);
    EXPECT_EQ(pier.settlements.at(15), 1.5);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
}

TEST_F(JournalTest, AMapThatShrinksGoesBackAndForth) {
    FillSettlements();
    std::map<int, double> const old = pier.settlements;
    StageLength("Pier.Settlements", 2);
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.settlements.size(), 2u);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
}

TEST_F(JournalTest, AMapThatIsEmptiedGoesBackAndForth) {
    FillSettlements();
    std::map<int, double> const old = pier.settlements;
    StageLength("Pier.Settlements", 0);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
}

TEST_F(JournalTest, AMapThatWasEmptyGoesBackAndForth) {
    StageLength("Pier.Settlements", 3);
    for (int i = 0; i < 3; ++i) {
        Stage("Pier.Settlements[" + std::to_string(i) + "].first", 30 - 10 * i);
        Stage("Pier.Settlements[" + std::to_string(i) + "].second", 1.0 + i);
    }
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.settlements, (std::map<int, double>{{30, 1}, {20, 2}, {10, 3}}));
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_TRUE(pier.settlements.empty());
}

TEST_F(JournalTest, AMapThatIsReadOnlyInATransactionIsNotRecorded) {
    FillSettlements();
    ASSERT_TRUE(Staged("Pier.Settlements[4].first"));
    ASSERT_TRUE(Staged("Pier.Settlements[11].second"));
    ASSERT_TRUE(Succeeds(transaction->Commit("", "", &journal)));
    EXPECT_TRUE(journal.IsEmpty());
}

TEST_F(JournalTest, AnInvalidOldValueInAMapIsRestored) {
    FillSettlements();
    pier.settlements[70] = -2; // refused now
    std::map<int, double> const old = pier.settlements;
    Stage("Pier.Settlements[0].first", 999);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
}

TEST_F(JournalTest, TextKeysGoBackAndForth) {
    for (int i = 0; i < 12; ++i)
        pier.loads[L"L" + std::to_wstring(i)] = {1.0 * i, std::vector<double>(static_cast<std::size_t>(i), 0.5)};
    std::map<std::wstring, Force> const old = pier.loads;
    Stage("Pier.Loads.At(L3).first", L"Crane");
    Stage("Pier.Loads.At(L11).second.Force", 77.0);
    Stage("Pier.Loads[0].second.Force", 78.0);
    StageLength("Pier.Loads.At(L5).second.History", 1);
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.loads.at(L"Crane"), old.at(L"L3"));
    EXPECT_EQ(pier.loads.at(L"L11").force, 77);
    EXPECT_EQ(pier.loads.at(L"L5").history.size(), 1u);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.loads, old);
}

TEST_F(JournalTest, MapsInMapsGoBackAndForth) {
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 12; ++j) pier.matrix[i][10 * j] = i * j;
    auto const old = pier.matrix;
    Stage("Pier.Matrix[0].first", 9);
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.matrix.at(9), old.at(1));
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.matrix, old);
    transaction->Rollback();
    StageLength("Pier.Matrix", 1);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.matrix, old);
}

TEST_F(JournalTest, MapsInArraysGoBackAndForth) {
    pier.stages = {{{1, 2}, {3, 4}}, {}, {{5, 6}}};
    auto const old = pier.stages;
    StageLength("Pier.Stages", 1);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.stages, old);
}

TEST_F(JournalTest, ElementsWithAKeyAmongTheirMembersStayInPlace) {
    for (int i = 0; i < 12; ++i) pier.piles.push_back({L"P" + std::to_wstring(i), 1.0 * i});
    auto const old = pier.piles;
    Stage("Pier.Piles.At(P3).Name", L"Last");
    Stage("Pier.Piles[11].Length", 99.0);
    StageLength("Pier.Piles", 13);
    Stage("Pier.Piles[12].Name", L"New");
    ExpectUndoAndRedo();
    EXPECT_EQ(pier.piles[3].name, L"Last");
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.piles, old);
    transaction->Rollback();
    StageLength("Pier.Piles", 2);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.piles, old);
}

TEST_F(JournalTest, AViewInAMapLosesNothing) {
    FillSettlements();
    std::wstring const before = Save();
    std::map<int, double> const old = pier.settlements;
    Stage("Pier.Settlements[1].first", 500);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "", &journal)));
    std::map<int, double> const moved = pier.settlements;
    {
        H const view = zo::Find("Pier.Settlements[0].second");
        EXPECT_TRUE(FailsAs(journal.Undo(*registry), zo::ZOError::array_memory_conflict()));
        EXPECT_EQ(pier.settlements, moved);
    }
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(pier.settlements, old);
    EXPECT_EQ(Save(), before);
}

// --- branches that come and go ---

TEST_F(JournalTest, ABranchThatAPropertyTakesAwayComesBack) {
    pier.water = Water{3.5, {{1, 2}, {3, 4}}};
    journal.Cover("Lake");
    Stage("Pier.HasWater", false);
    ExpectUndoAndRedo();
    EXPECT_FALSE(pier.water);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    ASSERT_TRUE(pier.water);
    EXPECT_EQ(*pier.water, (Water{3.5, {{1, 2}, {3, 4}}}));
}

TEST_F(JournalTest, ABranchThatAPropertyBringsGoesAgain) {
    journal.Cover("Lake");
    Stage("Pier.HasWater", true);
    ExpectUndoAndRedo();
    EXPECT_TRUE(pier.water);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_FALSE(pier.water);
}

TEST_F(JournalTest, WhatWasFilledInLaterComesBackCommitByCommit) {
    journal.Cover("Lake");
    std::wstring const dry = Save();
    Stage("Pier.HasWater", true);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "", &journal)));
    std::wstring const wet = Save();
    transaction->Rollback();
    ZOJournal filling;
    StageLength("Lake.Points", 2);
    Stage("Lake.Points[1].X", 7.0);
    Stage("Lake.Level", 2.5);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "", &filling)));
    std::wstring const full = Save();
    ASSERT_TRUE(Succeeds(filling.Undo(*registry)));
    EXPECT_EQ(Save(), wet);
    ASSERT_TRUE(Succeeds(journal.Undo(*registry)));
    EXPECT_EQ(Save(), dry);
    ASSERT_TRUE(Succeeds(journal.Redo(*registry)));
    ASSERT_TRUE(Succeeds(filling.Redo(*registry)));
    EXPECT_EQ(Save(), full);
}

// --- many edits ---

class RandomEditsTest : public JournalTest, public testing::WithParamInterface<unsigned> {
protected:
    RandomEditsTest() : random(GetParam()) {}

    std::size_t Below(std::size_t bound) { return random() % bound; }
    template <class V>
    void Try(std::string const& name, V const& value) const {
        if (H const node = Staged(name)) (void)node->Set(value); // a key that is taken is refused at the commit
    }
    void TryLength(std::string const& name, std::size_t length) const {
        if (H const node = Staged(name)) (void)node->SetLength(length);
    }
    void Edit() {
        std::string const element = "[" + std::to_string(Below(14)) + "]";
        switch (Below(10)) {
        case 0: return TryLength("Pier.Settlements", Below(14));
        case 1: return Try("Pier.Settlements" + element + ".first", static_cast<int>(Below(40)));
        case 2: return Try("Pier.Settlements" + element + ".second", static_cast<double>(Below(40)));
        case 3: return TryLength("Pier.Loads", Below(14));
        case 4: return Try("Pier.Loads" + element + ".first", L"K" + std::to_wstring(Below(40)));
        case 5: return TryLength("Pier.Loads" + element + ".second.History", Below(5));
        case 6: return Try("Pier.Loads" + element + ".second.History[2]", static_cast<double>(Below(9)));
        case 7: return TryLength("Pier.Matrix", Below(4));
        case 8: return TryLength("Pier.Piles", Below(14));
        default: return Try("Pier.Piles" + element + ".Name", L"P" + std::to_wstring(Below(40)));
        }
    }

    std::mt19937 random;
};

TEST_P(RandomEditsTest, AreTakenBackAndDoneAgain) {
    FillSettlements();
    for (int i = 0; i < 12; ++i) pier.loads[L"K" + std::to_wstring(3 * i)] = {1.0 * i, {0.5, 0.25, 0.125}};
    std::vector<ZOJournal> stack;
    std::vector<std::wstring> documents{Save()};
    for (int i = 0; i < 20; ++i) {
        for (std::size_t edits = 1 + Below(6); edits > 0; --edits) Edit();
        stack.emplace_back();
        (void)transaction->Commit("", "", &stack.back());
        transaction->Rollback();
        documents.push_back(Save());
    }
    for (std::size_t i = stack.size(); i-- > 0;) {
        ASSERT_TRUE(Succeeds(stack[i].Undo(*registry))) << i;
        ASSERT_EQ(Save(), documents[i]) << i;
    }
    for (std::size_t i = 0; i < stack.size(); ++i) {
        ASSERT_TRUE(Succeeds(stack[i].Redo(*registry))) << i;
        ASSERT_EQ(Save(), documents[i + 1]) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEditsTest, testing::Range(1u, 7u));

} // namespace
} // namespace site
