// The view of nodes that are staged in a transaction.
#include "Common/registry/ZOTransaction.h"
#include "tests/view/Shown.h"

using namespace shown;

namespace {

class StagedViewTest : public dam::ViewModelTest {
protected:
    /// A body that shows a node of the drain in a second place, one that was moved there, and the points' names.
    void SetUp() override {
        ASSERT_TRUE(Succeeds(
            Compile(TableText::WithDefault()
                        .Entry(L"Body", {}, {Also(L"Drain.Flow"), From(L"Drain.Pitch"), As(L"Gallery.*", L"Inner*")})
                        .Entry(L"Gallery", {}, {From(L".*")})
                        .Entry(L"Points.[]", {}, {As(L".Name", L"Called")}))));
        transaction = dam.registry->CreateTransaction();
    }
    H Child(std::string const& parent, std::size_t index) {
        std::vector<H> children;
        zo::view::VisibleSubFields(children, transaction->Find(parent), all);
        return index < children.size() ? children[index] : H();
    }

    htl::handle<zo::ZOTransaction> transaction;
};

TEST_F(StagedViewTest, ChildrenAreStaged) {
    H const crest = Child("Body", 0);
    ASSERT_TRUE(crest);
    EXPECT_EQ(crest->Owner(), transaction.get());
    ASSERT_TRUE(Succeeds(crest->Set(9)));
    EXPECT_EQ(dam.model.body.crest, 6);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(dam.model.body.crest, 9);
}

TEST_F(StagedViewTest, ElementsAreStaged) {
    H const second = Child("Points", 1);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->Owner(), transaction.get());
    ASSERT_TRUE(Succeeds(zo::view::FindTag(second, L"X", all)->Set(41)));
    EXPECT_EQ(dam.model.points[1].x, 40);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(dam.model.points[1].x, 41);
}

TEST_F(StagedViewTest, AliasesLeadToWhatIsStaged) {
    H const flow = Child("Body", 2);
    ASSERT_EQ(NameOf(flow), "Body.Flow");
    EXPECT_EQ(flow->Owner(), transaction.get());
    ASSERT_TRUE(Succeeds(flow->Set(5)));
    EXPECT_EQ(dam.model.drain.flow, 3.5);
    EXPECT_EQ(TextOf(transaction->Find("Drain.Flow")), L"5");
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(dam.model.drain.flow, 5);
}

TEST_F(StagedViewTest, RelativeAliasesLeadToWhatIsStaged) {
    H const called = Child("Points[0]", 1);
    ASSERT_EQ(NameOf(called), "Points[0].Called");
    ASSERT_TRUE(Succeeds(called->Set(L"Heel drain")));
    EXPECT_EQ(dam.model.points[0].name, L"Heel");
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(dam.model.points[0].name, L"Heel drain");
}

TEST_F(StagedViewTest, ChildrenUnderOtherTagsLeadToWhatIsStaged) {
    H const length = Child("Body", 4);
    ASSERT_EQ(NameOf(length), "Body.InnerLength");
    EXPECT_EQ(length->Owner(), transaction.get());
    ASSERT_TRUE(Succeeds(length->Set(90)));
    EXPECT_EQ(dam.model.gallery.length, 80);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(dam.model.gallery.length, 90);
}

TEST_F(StagedViewTest, WhatWasMovedFromElsewhereIsTheRegistrys) {
    H const pitch = Child("Body", 3);
    ASSERT_EQ(NameOf(pitch), "Drain.Pitch");
    EXPECT_EQ(pitch->Owner(), dam.registry.get());
}

TEST_F(StagedViewTest, SearchByTagFindsWhatIsStaged) {
    H const crest = zo::view::FindTag(transaction->Find("Body"), L"Crest", all);
    ASSERT_TRUE(crest);
    EXPECT_EQ(crest->Owner(), transaction.get());
    EXPECT_EQ(TextOf(crest), L"6");
    H const third = zo::view::FindTag(transaction->Find("Points"), L"[3]", all);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->Owner(), transaction.get());
}

TEST_F(StagedViewTest, AliasesThatNobodyHoldsLeaveNoEntry) {
    (void)Names(transaction->Find("Body")); // stages what the aliases lead to
    std::size_t const before = EntryCount(*transaction);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Names(transaction->Find("Body")).size(), 6u);
    EXPECT_EQ(EntryCount(*transaction), before);
}

TEST_F(StagedViewTest, AliasesThatAreHeldDoNotStandInTheWayOfACommit) {
    H const flow = Child("Body", 2);
    ASSERT_TRUE(Succeeds(flow->Set(5)));
    EXPECT_TRUE(transaction->Find("Body.Flow"));
    EXPECT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(dam.model.drain.flow, 5);
}

TEST_F(StagedViewTest, AWalkOutlivesARollback) {
    zo::view::ZOFwrdViewIterator at(transaction->Find("Body"), all);
    ASSERT_TRUE(*at);
    transaction->Rollback();
    std::size_t count = 0;
    for (; *at && count < endless; ++at) ++count;
    EXPECT_LE(count, 6u);
}

} // namespace
