// Lookups through a transaction step by step: what they give, and which entries they leave in what order.
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZOTransaction.h"
#include "tests/registry/Grid.h"

namespace {

using grid::Texts;
using rows::H;
using rows::IZO;
using rows::NameOf;
using Transaction = htl::handle<zo::ZOTransaction>;

class TransactionTraceTest : public grid::GridTest {
protected:
    TransactionTraceTest() : transaction(registry->CreateTransaction()) {}
    ~TransactionTraceTest() override { transaction.release(); }

    H Staged(std::string const& name) const { return transaction->Find(name); }
    /// The entries in the order of their places, aliases with "@" in front.
    Texts Entries() const {
        Texts names;
        std::size_t position = 0;
        for (zo::SetEntry const* const entry : transaction->Impl()->entryOrder) {
            EXPECT_NE(entry, nullptr);
            if (!entry) continue;
            EXPECT_TRUE(entry->visible) << entry->name;
            EXPECT_TRUE(entry->counted) << entry->name;
            EXPECT_EQ(entry->position, position) << entry->name;
            EXPECT_EQ(entry->node->OwnerID(), position++) << entry->name;
            EXPECT_EQ(entry->node->Owner(), transaction.get()) << entry->name;
            auto const* const redirect = dynamic_cast<zo::ZORedirect const*>(entry->node);
            names.push_back((redirect && redirect->IsAlias() ? "@" : "") + entry->name);
        }
        return names;
    }
    bool IsAlias(H const& node) const {
        auto const* const redirect = dynamic_cast<zo::ZORedirect const*>(node.get());
        return redirect && redirect->IsAlias();
    }
    /// Nothing but the root, and templates that are handed out themselves, has an entry in the registry.
    Texts Left() const {
        Texts names;
        for (zo::SetEntry const* const entry : registry->Impl()->entryOrder)
            if (entry && entry->name != "HZNData") names.push_back(entry->name);
        return names;
    }

    Transaction transaction;
};

TEST_F(TransactionTraceTest, AMemberIsStagedBehindItsStructure) {
    H const node = Staged("s.b");
    ASSERT_TRUE(node);
    EXPECT_EQ(NameOf(node), "s.b");
    EXPECT_EQ(node->Owner(), transaction.get());
    EXPECT_EQ(node->OwnerID(), 1u);
    EXPECT_TRUE(dynamic_cast<zo::ZOAtomicData<double>*>(node.get()));
    EXPECT_EQ(ValueOf(node), 7);
    EXPECT_EQ(Entries(), (Texts{"s", "s.b"}));
    EXPECT_TRUE(Left().empty());
}

TEST_F(TransactionTraceTest, AnElementIsStagedBehindItsArray) {
    H const node = Staged("a[3]");
    EXPECT_EQ(NameOf(node), "a[3]");
    EXPECT_EQ(node->OwnerID(), 1u);
    EXPECT_TRUE(dynamic_cast<zo::ZOStructClone*>(node.get()));
    H const array = Staged("a");
    EXPECT_TRUE(dynamic_cast<zo::ZOArrayClone*>(array.get()));
    EXPECT_EQ(array->Length(), 5u);
    EXPECT_EQ(Entries(), (Texts{"a", "a[3]"}));
    EXPECT_TRUE(Left().empty());
}

TEST_F(TransactionTraceTest, ABracketBehindADotLeadsToTheElementStagedBesideIt) {
    H const node = Staged("a.[3].b");
    EXPECT_TRUE(IsAlias(node));
    EXPECT_EQ(NameOf(node), "a.[3].b");
    EXPECT_EQ(Entries(), (Texts{"a", "a[3]", "@a.[3]", "a[3].b", "@a.[3].b"}));
    ASSERT_TRUE(embankment::Succeeds(node->Set(44.0)));
    EXPECT_EQ(ValueOf(Staged("a[3].b")), 44);
    EXPECT_EQ(grid.a[3].b, 30);
    EXPECT_TRUE(Left().empty());
}

TEST_F(TransactionTraceTest, AnIndexBehindADotLeadsToTheElementStagedBesideIt) {
    EXPECT_TRUE(IsAlias(Staged("a.3")));
    EXPECT_EQ(Entries(), (Texts{"a", "a[3]", "@a.3"}));
}

TEST_F(TransactionTraceTest, AKeyLeadsToTheElementThatIsStagedFirst) {
    H const node = Staged("a.At(2)");
    EXPECT_TRUE(IsAlias(node));
    EXPECT_EQ(NameOf(node), "a.At(2)");
    EXPECT_EQ(Entries(), (Texts{"a", "a[1]", "@a.At(2)"}));
    EXPECT_TRUE(Left().empty());
}

TEST_F(TransactionTraceTest, TheLengthIsStagedAsANumber) {
    H const node = Staged("a.Len");
    htl::Int64 value = 0;
    ASSERT_TRUE(embankment::Succeeds(node->Get(value)));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(node->RegID(), IZO::npos);
    EXPECT_TRUE(dynamic_cast<zo::ZOAtomicData<htl::UInt64>*>(node.get()));
    EXPECT_EQ(Entries(), (Texts{"a", "a.Len"}));
    EXPECT_TRUE(Left().empty());
}

TEST_F(TransactionTraceTest, ANewElementIsStagedFromItsTemplate) {
    ASSERT_TRUE(embankment::Succeeds(Staged("a")->SetLength(10)));
    H const node = Staged("a[7]");
    EXPECT_EQ(NameOf(node), "a[7]");
    EXPECT_EQ(node->RegID(), rows::RowOf("a.[]"));
    EXPECT_EQ(Entries(), (Texts{"a", "a[7]"}));
}

TEST_F(TransactionTraceTest, ANewElementInAnotherSpellingIsStagedOnce) {
    ASSERT_TRUE(embankment::Succeeds(Staged("a")->SetLength(10)));
    EXPECT_TRUE(IsAlias(Staged("a.[7]")));
    EXPECT_EQ(Entries(), (Texts{"a", "a[7]", "@a.[7]"}));
    EXPECT_TRUE(IsAlias(Staged("a.At(8)")));
    EXPECT_EQ(Entries(), (Texts{"a", "a[7]", "@a.[7]", "@a.At(8)"}));
}

TEST_F(TransactionTraceTest, AMemberOfANewElementIsStagedBehindIt) {
    ASSERT_TRUE(embankment::Succeeds(Staged("a")->SetLength(10)));
    H const node = Staged("a[7].b");
    EXPECT_EQ(NameOf(node), "a[7].b");
    EXPECT_EQ(node->RegID(), rows::RowOf("a.[].b"));
    EXPECT_EQ(Entries(), (Texts{"a", "a[7]", "a[7].b"}));
}

TEST_F(TransactionTraceTest, AnAbsentChildLeavesItsParents) {
    EXPECT_FALSE(Staged("a.zz"));
    EXPECT_EQ(Entries(), Texts{"a"});
    EXPECT_FALSE(Staged("a[5]"));
    EXPECT_FALSE(Staged("a[2].zz"));
    EXPECT_EQ(Entries(), (Texts{"a", "a[2]"}));
    EXPECT_TRUE(Left().empty());
}

TEST_F(TransactionTraceTest, AnEmptyIndexLeadsNowhere) {
    // An application then goes on to the template.
    for (char const* const name : {"a[]", "a.[]", "a[].b", "a.[].b"}) EXPECT_FALSE(Staged(name)) << name;
    EXPECT_EQ(Entries(), Texts{"a"});
}

TEST_F(TransactionTraceTest, ElementsOfElementsAreStagedLevelByLevel) {
    H const node = Staged("g[1][2]");
    EXPECT_EQ(NameOf(node), "g[1][2]");
    EXPECT_EQ(Entries(), (Texts{"g", "g[1]", "g[1][2]"}));
    EXPECT_TRUE(IsAlias(Staged("g.1.2")));
    EXPECT_EQ(Entries(), (Texts{"g", "g[1]", "g[1][2]", "@g.1", "@g.1.2"}));
}

TEST_F(TransactionTraceTest, ARegisteredAliasIsStagedAndItsChildrenAreTheTargets) {
    H const member = Staged("al.b");
    EXPECT_TRUE(IsAlias(member));
    EXPECT_EQ(Entries(), (Texts{"@al", "s", "s.b", "@al.b"}));
    ASSERT_TRUE(embankment::Succeeds(member->Set(9.0)));
    EXPECT_EQ(ValueOf(Staged("s.b")), 9);
    EXPECT_EQ(single.b, 7);
}

TEST_F(TransactionTraceTest, ThroughTheRootTheNodeIsStagedUnderItsOwnName) {
    EXPECT_TRUE(IsAlias(Staged("HZNData.s")));
    EXPECT_EQ(Entries(), (Texts{"HZNData", "s", "@HZNData.s"}));
}

TEST_F(TransactionTraceTest, AWrittenOutIndexLeadsToTheElementStagedBesideIt) {
    // The registry keeps its digits in the name; two copies of one element would undo each other in a commit.
    H const node = Staged("a[03].b");
    EXPECT_EQ(NameOf(node), "a[03].b");
    EXPECT_TRUE(IsAlias(node));
    EXPECT_EQ(Entries(), (Texts{"a", "a[3]", "@a[03]", "a[3].b", "@a[03].b"}));
}

TEST_F(TransactionTraceTest, AnEntryOfTheSourceIsFoundAsItIsWritten) {
    H const node(new rows::Plain);
    for (char const* const name : {"a.9", "s.extra", "s.[9]", "s[09]"}) {
        ASSERT_TRUE(embankment::Succeeds(registry->Insert(name, node))) << name;
        ASSERT_EQ(registry->Find(name), node) << name;
        H const staged = Staged(name);
        ASSERT_TRUE(staged) << name;
        EXPECT_EQ(NameOf(staged), name);
        EXPECT_FALSE(IsAlias(staged)) << name;
        transaction->Rollback();
    }
}

TEST_F(TransactionTraceTest, AnInsertedElementIsFoundInAnotherSpelling) {
    H const element(new rows::Plain), member(new rows::Plain);
    ASSERT_TRUE(embankment::Succeeds(transaction->Insert("s[9]", element)));
    ASSERT_TRUE(embankment::Succeeds(transaction->Insert("s[9].b", member)));
    H const alias = Staged("s.[9].b");
    ASSERT_TRUE(IsAlias(alias));
    EXPECT_EQ(dynamic_cast<zo::ZORedirect const*>(alias.get())->Redirect(), member);
}

TEST_F(TransactionTraceTest, HiddenEntriesAreCommitted) {
    H const hidden(new zo::ZOAtomicData<double>(IZO::npos, nullptr, meta::AtomicTraits<double>(), 12));
    transaction->Impl()->Enter(transaction.get(), "s.b", hidden.get(), false, false);
    EXPECT_TRUE(embankment::Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(single.b, 12);
}

TEST_F(TransactionTraceTest, AHiddenEntryMakesItsNameTaken) {
    H const hidden(new rows::Plain), other(new rows::Plain);
    transaction->Impl()->Enter(transaction.get(), "s.b", hidden.get(), false, false);
    EXPECT_TRUE(embankment::FailsAs(transaction->Insert("s.b", other), zo::ZOError::duplicate_name()));
    try {
        (void)Staged("s.b");
        ADD_FAILURE() << "nothing was raised";
    } catch (htl::status_exception const& failure) {
        EXPECT_TRUE(embankment::FailsAs(failure.Status(), zo::ZOError::duplicate_name()));
    }
}

TEST_F(TransactionTraceTest, WhatASetBelowRaisesLeavesBothSetsWhole) {
    Transaction const nested = transaction->CreateTransaction();
    H hidden(new rows::Plain);
    transaction->Impl()->Enter(transaction.get(), "s.b", hidden.get(), false, false);
    EXPECT_THROW((void)nested->Find("s.b"), htl::status_exception);
    EXPECT_EQ(NameOf(nested->Find("s")), "s") << "staged on the way";
    hidden.release();
    H const node = nested->Find("s.b");
    ASSERT_TRUE(node);
    ASSERT_TRUE(embankment::Succeeds(node->Set(8.0)));
    EXPECT_TRUE(embankment::Succeeds(nested->Commit("", "")));
    EXPECT_TRUE(embankment::Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(single.b, 8);
}

TEST_F(TransactionTraceTest, ManyHiddenEntriesOfOneNameAreCommittedInTheirOrder) {
    std::vector<H> nodes;
    for (int i = 0; i < 100'000; ++i) {
        nodes.emplace_back(new zo::ZOAtomicData<double>(IZO::npos, nullptr, meta::AtomicTraits<double>(), i));
        transaction->Impl()->Enter(transaction.get(), "s.b", nodes.back().get(), false, false);
    }
    EXPECT_TRUE(embankment::Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(single.b, 99'999);
    transaction->Rollback();
    EXPECT_EQ(nodes.front()->RefCount(), 1);
    EXPECT_EQ(nodes.front()->Owner(), nullptr);
}

TEST_F(TransactionTraceTest, AHiddenEntryDoesNotKeepItsNode) {
    {
        H const hidden(new rows::Plain);
        transaction->Impl()->Enter(transaction.get(), "note", hidden.get(), false, false);
        EXPECT_EQ(hidden->RefCount(), 1);
    }
    EXPECT_TRUE(Entries().empty());
}

TEST_F(TransactionTraceTest, ATemporaryEntryIsVisibleAndNotCounted) {
    H const node(new rows::Plain);
    ASSERT_TRUE(embankment::Succeeds(transaction->InsertTemporary("note", node)));
    zo::SetEntry const* const entry = transaction->Impl()->entryOrder.at(0);
    EXPECT_TRUE(entry->visible);
    EXPECT_FALSE(entry->counted);
}

TEST_F(TransactionTraceTest, PlacesAreNotUsedAgainWhileLaterOnesAreTaken) {
    H first(new rows::Plain), second(new rows::Plain);
    ASSERT_TRUE(embankment::Succeeds(transaction->InsertTemporary("first", first)));
    ASSERT_TRUE(embankment::Succeeds(transaction->InsertTemporary("second", second)));
    first.release();
    H const third(new rows::Plain);
    ASSERT_TRUE(embankment::Succeeds(transaction->InsertTemporary("third", third)));
    EXPECT_EQ(second->OwnerID(), 1u);
    EXPECT_EQ(third->OwnerID(), 2u);
    // A hole takes no part in a commit.
    EXPECT_TRUE(embankment::Succeeds(transaction->Commit("", "")));
    transaction->Rollback();
    EXPECT_EQ(transaction->Impl()->entryOrder.size(), 0u);
}

TEST_F(TransactionTraceTest, RollbackEmptiesTheTables) {
    (void)Staged("a.[3].b");
    transaction->Rollback();
    EXPECT_TRUE(transaction->Impl()->entryOrder.empty());
    EXPECT_EQ(transaction->Impl()->entries.Size(), 0u);
    EXPECT_EQ(transaction->Impl()->entries.FirstVisible("a"), nullptr);
}

TEST_F(TransactionTraceTest, WithoutNamesInTheSourceNothingIsStaged) {
    zo::TrackingSuspension const suspension(*registry->Impl());
    EXPECT_FALSE(Staged("s.b"));
    EXPECT_FALSE(Staged("a[3].b"));
    EXPECT_TRUE(Entries().empty());
}

} // namespace
