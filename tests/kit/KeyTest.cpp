// Containers with keys, edited through a transaction.
#include "tests/kit/Site.h"

#include "Common/registry/ZOTransaction.h"

namespace site {
namespace {

using zo::kit::Kit;

struct Anchor {
    std::wstring name;
    double force = 0; // kN

    bool operator==(Anchor const&) const = default;
};

struct Wall {
    std::map<int, double> loads;
    std::map<std::string, Point> pins;
    std::map<std::wstring, Anchor> spares;
    std::vector<Anchor> anchors;
};

class KeyTest : public KitTest {
protected:
    KeyTest() {
        Register({&PointModule, [this](Kit& kit) {
                      kit.Record<Anchor>("Anchor")
                          .Field<&Anchor::name>("Name", L"Name")
                          .Field<&Anchor::force>("Force", L"Force");
                      kit.Record<Wall>("Wall")
                          .Map<&Wall::loads>("Loads", L"Loads[Load]")
                          .Map<&Wall::pins>("Pins", L"Pins[Pin]")
                          .Map<&Wall::spares>("Spares", L"Spares[Spare]")
                          .Keyed<&Wall::anchors, &Anchor::name>("Anchors", L"Anchors[Anchor]");
                      kit.Branch<Wall>("Wall", L"Wall", [this] { return &wall; });
                  }});
        transaction = registry->CreateTransaction();
    }

    htl::status Commit() { return transaction->Commit("", ""); }

    Wall wall{{{3, 1.5}, {7, 2}, {20, 4}},
              {{"A", {1, 2}}, {"B", {3, 4}}},
              {{L"S1", {L"Spare", 40}}},
              {{L"North", 100}, {L"South", 120}}};
    htl::handle<zo::ZOTransaction> transaction;
};

TEST_F(KeyTest, AnElementIsStagedUnderItsNumber) {
    ASSERT_TRUE(transaction->Find("Wall.Loads.At(7).second"));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads.At(7).second")->Set(2.5)));
    EXPECT_EQ(wall.loads.at(7), 2);
    EXPECT_EQ(TextOf(transaction->Find("Wall.Loads[1].second")), L"2.5") << "the same element by position";
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{3, 1.5}, {7, 2.5}, {20, 4}}));
}

TEST_F(KeyTest, AnElementIsStagedUnderItsText) {
    ASSERT_TRUE(transaction->Find("Wall.Pins.At(B).second.Y"));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Pins.At(B).second.Y")->Set(9.0)));
    EXPECT_EQ(wall.pins.at("B").y, 4);
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.pins.at("B"), (Point{3, 9}));
}

TEST_F(KeyTest, ARecordIsStagedUnderAMember) {
    ASSERT_TRUE(transaction->Find("Wall.Anchors.At(South).Force"));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Anchors.At(South).Force")->Set(150.0)));
    EXPECT_EQ(wall.anchors[1].force, 120);
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.anchors[1].force, 150);
}

TEST_F(KeyTest, AKeyWithoutElementFindsNothing) {
    EXPECT_FALSE(transaction->Find("Wall.Loads.At(8)"));
    EXPECT_FALSE(transaction->Find("Wall.Pins.At(C).second.X"));
    EXPECT_FALSE(transaction->Find("Wall.Anchors.At(East)"));
}

TEST_F(KeyTest, AChangedKeyMovesTheElementAtCommit) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[0].first")->Set(12)));
    EXPECT_TRUE(wall.loads.contains(3));
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{7, 2}, {12, 1.5}, {20, 4}}));
}

TEST_F(KeyTest, AKeyThatIsTakenIsRefusedAtCommitAndNothingIsLost) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[0].first")->Set(7)));
    EXPECT_TRUE(FailsAs(Commit(), htl::status::FromText(L"The key {7} is taken.")));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{3, 1.5}, {7, 2}, {20, 4}}));
}

TEST_F(KeyTest, ARenamedRecordIsFoundUnderItsNewKeyAfterCommit) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Anchors.At(South).Name")->Set(L"East")));
    EXPECT_TRUE(zo::Find("Wall.Anchors.At(South)"));
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_FALSE(zo::Find("Wall.Anchors.At(South)"));
    EXPECT_EQ(TextOf("Wall.Anchors.At(East).Force"), L"120");
}

TEST_F(KeyTest, ANewElementGetsItsKeyAndValueAtCommit) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads")->SetLength(4)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[3].first")->Set(30)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[3].second")->Set(8.0)));
    EXPECT_EQ(wall.loads.size(), 3u);
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{3, 1.5}, {7, 2}, {20, 4}, {30, 8}}));
}

TEST_F(KeyTest, ANewElementWithATextAsKeyGetsItAtCommit) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Pins")->SetLength(3)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Pins[2].first")->Set(L"C")));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Pins[2].second.X")->Set(6.0)));
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.pins, (std::map<std::string, Point>{{"A", {1, 2}}, {"B", {3, 4}}, {"C", {6, 0}}}));
}

TEST_F(KeyTest, AShorterLengthDropsTheLastElementsAtCommit) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads")->SetLength(1)));
    EXPECT_EQ(wall.loads.size(), 3u);
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{3, 1.5}}));
}

TEST_F(KeyTest, RollbackLeavesKeysAsTheyWere) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[0].first")->Set(12)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Spares.At(S1).second.Force")->Set(1.0)));
    transaction->Rollback();
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{3, 1.5}, {7, 2}, {20, 4}}));
    EXPECT_EQ(wall.spares, (std::map<std::wstring, Anchor>{{L"S1", {L"Spare", 40}}}));
}

// A key below all others puts the element first, and every position behind it moves.
TEST_F(KeyTest, ANewElementThatSortsFirstGetsItsOwnValue) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads")->SetLength(4)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[3].first")->Set(1)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[3].second")->Set(8.0)));
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{1, 8}, {3, 1.5}, {7, 2}, {20, 4}}));
}

TEST_F(KeyTest, AnElementWhoseKeyAndValueChangeKeepsThemTogether) {
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[0].first")->Set(12)));
    ASSERT_TRUE(Succeeds(transaction->Find("Wall.Loads[0].second")->Set(1.75)));
    ASSERT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(wall.loads, (std::map<int, double>{{7, 2}, {12, 1.75}, {20, 4}}));
}

} // namespace
} // namespace site
