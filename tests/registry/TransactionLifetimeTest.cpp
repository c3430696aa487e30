// Nodes, transactions and registries that end in any order, and views that are held while arrays change.
#include "tests/registry/Staging.h"

#include <functional>
#include <optional>
#include <thread>
#include <utility>

namespace staging {
namespace {

using zo::ZOTransaction;
namespace ZOError = zo::ZOError;

testing::AssertionResult HasNoOwner(H const& node) {
    if (node->Owner()) return testing::AssertionFailure() << "there is an owner";
    if (node->OwnerID() != IZO::npos) return testing::AssertionFailure() << "there is a place " << node->OwnerID();
    if (!node->Name().empty()) return testing::AssertionFailure() << "there is a name " << node->Name();
    return testing::AssertionSuccess();
}

class TransactionLifetimeTest : public StagingTest {};

TEST_F(TransactionLifetimeTest, AStagedNodeOutlivesItsTransaction) {
    H const node = Staged("Soils[0].Cohesion");
    ASSERT_TRUE(Succeeds(node->Set(40.0)));
    transaction.release();
    EXPECT_TRUE(HasNoOwner(node));
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_EQ(TextOf(node), L"40");
    EXPECT_TRUE(Succeeds(node->Set(41.0)));
    EXPECT_TRUE(FailsAs(node->Set(-1.0), embankment::NegativeCohesion()));
}

TEST_F(TransactionLifetimeTest, StagedStructuresAndArraysOutliveTheirTransaction) {
    H const soils = Staged("Soils"), soil = Staged("Soils[0]"), root = Staged("HZNData");
    transaction.release();
    EXPECT_TRUE(HasNoOwner(soils));
    EXPECT_TRUE(HasNoOwner(soil));
    EXPECT_TRUE(HasNoOwner(root));
    EXPECT_EQ(soils->Length(), 3u);
    EXPECT_TRUE(Succeeds(soils->SetLength(5)));
    for (zo::ZOFwrdIterator at = soil->begin(); at.current; ++at) EXPECT_EQ(at.current->Owner(), nullptr);
    EXPECT_EQ(model.soils.size(), 3u);
}

TEST_F(TransactionLifetimeTest, AStagedAliasOutlivesItsTransaction) {
    H const alias = Staged("Soils.At(1).Cohesion");
    ASSERT_TRUE(alias);
    transaction.release();
    EXPECT_TRUE(HasNoOwner(alias));
    // What it kept it may still show; the model it must not reach.
    (void)alias->Set(99.0);
    (void)alias->Length();
    (void)alias->GetDataTraits();
    EXPECT_EQ(model.soils[0].cohesion, 25);
}

TEST_F(TransactionLifetimeTest, AliasAndTargetEndInEitherOrder) {
    for (bool const aliasFirst : {true, false}) {
        H alias = Staged("Soils.At(1).Cohesion"), target = Staged("Soils[0].Cohesion");
        transaction->Rollback();
        (aliasFirst ? alias : target).release();
        H const& rest = aliasFirst ? target : alias;
        EXPECT_TRUE(HasNoOwner(rest));
        EXPECT_EQ(rest->RefCount(), 1);
    }
}

TEST_F(TransactionLifetimeTest, AStagedLengthOutlivesItsTransaction) {
    StageLength("Regions", 3);
    H const detached = Staged("Soils.Len"), live = Staged("Regions[2].Points.Len");
    ASSERT_TRUE(live);
    transaction.release();
    EXPECT_TRUE(HasNoOwner(detached));
    EXPECT_TRUE(HasNoOwner(live));
    EXPECT_EQ(TextOf(detached), L"3");
    EXPECT_EQ(TextOf(live), L"0") << "there is no array any more";
    EXPECT_TRUE(FailsAs(live->Set(2), ZOError::not_supported("Len")));
}

TEST_F(TransactionLifetimeTest, AnInsertedNodeOutlivesItsTransaction) {
    H const node(new rows::Plain), temporary(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", node)));
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Draft", temporary)));
    transaction.release();
    EXPECT_TRUE(HasNoOwner(node));
    EXPECT_TRUE(HasNoOwner(temporary));
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_EQ(temporary->RefCount(), 1);
}

TEST_F(TransactionLifetimeTest, ATemporaryNodeEndsBeforeItsTransaction) {
    { ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Draft", H(new rows::Plain)))); }
    EXPECT_FALSE(Staged("Draft"));
    EXPECT_TRUE(Succeeds(Commit()));
    transaction->Rollback();
    transaction->Rollback();
}

TEST_F(TransactionLifetimeTest, ANodeMovesFromOneTransactionToAnother) {
    Transaction other = embankment.registry->CreateTransaction();
    H const node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Draft", node)));
    ASSERT_TRUE(Succeeds(other->Insert("Note", node)));
    EXPECT_EQ(node->Owner(), other.get());
    EXPECT_EQ(node->Name(), "Note");
    EXPECT_FALSE(Staged("Draft")) << "its place there ended";
    transaction.release();
    EXPECT_EQ(node->Owner(), other.get());
    other.release();
    EXPECT_TRUE(HasNoOwner(node));
}

TEST_F(TransactionLifetimeTest, ANodeThatTwoTransactionsKeepOutlivesEither) {
    Transaction other = embankment.registry->CreateTransaction();
    H const node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Draft", node)));
    ASSERT_TRUE(Succeeds(other->Insert("Note", node)));
    EXPECT_EQ(node->RefCount(), 3);
    other.release();
    EXPECT_EQ(node->Owner(), nullptr) << "the one that gave it its last place is gone";
    EXPECT_EQ(Staged("Draft"), node);
    transaction.release();
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_TRUE(HasNoOwner(node));
}

TEST_F(TransactionLifetimeTest, ANodeUnderTwoNamesOfOneTransactionEndsWithBoth) {
    H const node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Draft", node)));
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", node)));
    EXPECT_EQ(node->Name(), "Note");
    EXPECT_EQ(node->RefCount(), 3);
    transaction->Rollback();
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_TRUE(HasNoOwner(node));
}

TEST_F(TransactionLifetimeTest, ACopyOfAStagedNodeDoesNotEndItsPlace) {
    H const node = Staged("Soils[0].Cohesion");
    { H const copy(node->Clone()); }
    EXPECT_EQ(Staged("Soils[0].Cohesion"), node);
    EXPECT_EQ(node->Name(), "Soils[0].Cohesion");
}

TEST_F(TransactionLifetimeTest, ACopyOutlivesTheTransaction) {
    H const copy(Staged("Soils[0].Cohesion")->Clone());
    transaction.release();
    EXPECT_EQ(copy->Owner(), nullptr);
    EXPECT_EQ(copy->Name(), "");
    EXPECT_TRUE(Succeeds(copy->Set(40.0)));
    EXPECT_TRUE(FailsAs(copy->Set(-1.0), embankment::NegativeCohesion()));
}

TEST_F(TransactionLifetimeTest, AWalkOutlivesItsTransaction) {
    H soils = Staged("Soils");
    zo::ZOFwrdIterator at = soils->begin();
    ASSERT_TRUE(at.current);
    soils.release();
    transaction.release();
    for (int steps = 0; at.current && steps < 10; ++steps) ++at;
    EXPECT_FALSE(at.current);
}

TEST_F(TransactionLifetimeTest, ANestedTransactionKeepsTheOneBelow) {
    Transaction const nested = transaction->CreateTransaction();
    Stage("Soils[0].Cohesion", 40.0);
    ZOTransaction* const below = transaction.get();
    transaction.release();
    EXPECT_EQ(nested->Source(), below);
    ASSERT_TRUE(Succeeds(nested->Find("Soils[0].Cohesion")->Set(41.0)));
    ASSERT_TRUE(Succeeds(nested->Commit("", "")));
    EXPECT_EQ(TextOf(below->Find("Soils[0].Cohesion")), L"41");
    EXPECT_TRUE(Succeeds(below->Commit("", "")));
    EXPECT_EQ(model.soils[0].cohesion, 41);
}

TEST_F(TransactionLifetimeTest, AChainOfTransactionsEndsFromItsTop) {
    Transaction top = transaction;
    for (int i = 0; i < 100; ++i) top = top->CreateTransaction();
    H const node = top->Find("Soils[0].Cohesion");
    transaction.release();
    EXPECT_EQ(node->Owner(), top.get());
    top.release();
    EXPECT_TRUE(HasNoOwner(node));
}

TEST_F(TransactionLifetimeTest, AStagedNodeOfANestedTransactionOutlivesBoth) {
    Transaction nested = transaction->CreateTransaction();
    H const inner = nested->Find("Soils[0].Cohesion"), outer = Staged("Soils[0].Cohesion");
    nested.release();
    EXPECT_TRUE(HasNoOwner(inner));
    EXPECT_EQ(outer->Owner(), transaction.get());
    transaction.release();
    EXPECT_TRUE(HasNoOwner(outer));
}

TEST_F(TransactionLifetimeTest, APinnedTransactionEndsWithItsScope) {
    H node;
    {
        ZOTransaction pinned(htl::handle<zo::ZOSet>(embankment.registry), {}, true);
        node = pinned.Find("Soils[0].Cohesion");
        EXPECT_EQ(node->Owner(), &pinned);
    }
    EXPECT_TRUE(HasNoOwner(node));
    EXPECT_EQ(TextOf(node), L"25");
}

TEST_F(TransactionLifetimeTest, AnEmptyTransactionEndsBeforeItsNodes) {
    H node;
    Transaction nested;
    {
        Transaction const empty(new zo::ZOEmptyTransaction(htl::handle<zo::ZOSet>(embankment.registry), false));
        node = empty->Find("Project.Title");
        nested = empty->CreateTransaction();
    }
    EXPECT_EQ(NameOf(node), "Project.Title") << "the nested one keeps it";
    EXPECT_TRUE(Succeeds(nested->Find("Project.Title")->Set(L"New dam")));
    EXPECT_TRUE(Succeeds(nested->Commit("", "")));
    nested.release();
    EXPECT_TRUE(HasNoOwner(node));
    EXPECT_EQ(model.project.title, L"New dam");
}

/// Registries whose rows don't persist end with their last handle.
class RegistryEndTest : public testing::Test {
protected:
    RegistryEndTest() : own(std::in_place) {
        (*own).Add("Depth", embankment::ValuePrototype<double>(NumberTraits()), L"Depth", NumberTraits(), &depth);
        (*own)->OnPostRegistration();
        transaction = (*own)->CreateTransaction();
    }
    ~RegistryEndTest() override { transaction.release(); }

    double depth = 4;
    std::optional<rows::OwnRegistry> own;
    Transaction transaction;
};

TEST_F(RegistryEndTest, ATransactionKeepsItsRegistry) {
    H const staged = transaction->Find("Depth");
    ASSERT_TRUE(Succeeds(staged->Set(5.0)));
    zo::ZOSet* const registry = transaction->Source();
    own.reset(); // gives up its handle; its stores lead nowhere any more
    EXPECT_EQ(transaction->Source(), registry);
    EXPECT_EQ(TextOf(staged), L"5");
    EXPECT_TRUE(Succeeds(transaction->Commit("", ""))) << "what it staged isn't there any more";
    EXPECT_EQ(depth, 4);
}

TEST_F(RegistryEndTest, ANodeOutlivesTransactionAndRegistry) {
    H const staged = transaction->Find("Depth");
    transaction.release();
    own.reset();
    EXPECT_TRUE(HasNoOwner(staged));
    EXPECT_EQ(TextOf(staged), L"4");
}

TEST_F(RegistryEndTest, ANodeOutlivesItsRegistryInItsTransaction) {
    H staged = transaction->Find("Depth"), live = zo::Find("Depth");
    own.reset();
    live.release();
    EXPECT_EQ(NameOf(staged), "Depth");
    transaction->Rollback();
    EXPECT_TRUE(HasNoOwner(staged));
    transaction.release();
    EXPECT_EQ(TextOf(staged), L"4");
}

TEST_F(RegistryEndTest, AnotherRegistryMayBeCurrentWhileATransactionEnds) {
    H const staged = transaction->Find("Depth");
    rows::OwnRegistry const other;
    transaction->Rollback();
    transaction.release();
    EXPECT_TRUE(HasNoOwner(staged));
}

// --- threads ---

/// Edits a site of its own in a registry of its own, again and again.
void EditOnThisThread(int rounds, double& result) {
    double depth = 0;
    std::vector<double> samples;
    {
        rows::OwnRegistry own;
        own.Add("Depth", embankment::ValuePrototype<double>(NumberTraits()), L"Depth", NumberTraits(), &depth);
        own.Add("Samples", embankment::ArrayPrototype(NumbersTraits()), L"Samples", NumbersTraits(), &samples);
        own.Add("Samples.[]", embankment::ValuePrototype<double>(NumberTraits()), L"", NumberTraits());
        own->OnPostRegistration();
        for (int i = 1; i <= rounds; ++i) {
            Transaction const outer = own->CreateTransaction();
            Transaction const inner = outer->CreateTransaction();
            zo::ZOJournal journal;
            EXPECT_TRUE(Succeeds(inner->Find("Depth")->Set(static_cast<double>(i))));
            EXPECT_TRUE(Succeeds(inner->Find("Samples")->SetLength(static_cast<std::size_t>(i % 7) + 1)));
            EXPECT_TRUE(Succeeds(inner->Find("Samples.At(1)")->Set(0.5)));
            EXPECT_TRUE(FailsAs(inner->Insert("Depth", H(new rows::Plain)), ZOError::duplicate_name()));
            EXPECT_TRUE(Succeeds(inner->Commit("", "")));
            EXPECT_TRUE(Succeeds(outer->Commit("", "", &journal)));
            EXPECT_TRUE(Succeeds(journal.Undo(*own)));
            EXPECT_EQ(depth, i - 1);
            EXPECT_TRUE(Succeeds(journal.Redo(*own)));
        }
    }
    EXPECT_EQ(samples.size(), static_cast<std::size_t>(rounds % 7) + 1);
    result = depth;
}

TEST(TransactionThreadTest, ThreadsWithARegistryEachEditSideBySide) {
    double first = 0, second = 0;
    std::thread other([&second] { EditOnThisThread(300, second); });
    EditOnThisThread(300, first);
    other.join();
    EXPECT_EQ(first, 300);
    EXPECT_EQ(second, 300);
}

// --- arrays that are resized while views of their elements live ---

class ResizeConflictTest : public StagingTest {
protected:
    void ExpectConflict() const {
        EXPECT_TRUE(FailsAs(Commit(), ZOError::array_memory_conflict()));
        EXPECT_EQ(model.soils.size(), 3u);
        EXPECT_EQ(model.regions.size(), 2u);
        EXPECT_EQ(model.regions[0].points.size(), 3u);
    }
};

TEST_F(ResizeConflictTest, AViewOfAnElementKeepsACommitFromResizingItsArray) {
    for (std::size_t const length : {5u, 1u, 0u}) {
        H view = zo::Find("Soils[0]");
        StageLength("Soils", length);
        ExpectConflict();
        EXPECT_TRUE(view);
        transaction->Rollback();
    }
}

TEST_F(ResizeConflictTest, AViewOfAMemberKeepsACommitFromResizingTheArrayAroundIt) {
    H const view = zo::Find("Soils[2].Cohesion");
    StageLength("Soils", 1);
    ExpectConflict();
    EXPECT_EQ(TextOf(view), L"10.5");
}

TEST_F(ResizeConflictTest, TheLengthItselfIsAssigned) {
    H const view = zo::Find("Soils[0]");
    Stage("Soils.Len", 5);
    ExpectConflict();
}

TEST_F(ResizeConflictTest, AViewInAnInnerArrayProtectsTheOuterOne) {
    H const view = zo::Find("Regions[0].Points[1]");
    StageLength("Regions", 5);
    ExpectConflict();
    EXPECT_EQ(TextOf(view), L"2");
}

TEST_F(ResizeConflictTest, AViewOfAnInnerArrayProtectsTheOuterOneOnly) {
    H const view = zo::Find("Regions[0].Points");
    StageLength("Regions", 5);
    ExpectConflict();
    transaction->Rollback();
    StageLength("Regions[0].Points", 5);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(view->Length(), 5u);
}

TEST_F(ResizeConflictTest, AViewThroughATagOrAnotherSpellingCountsTheSame) {
    std::vector<std::function<H()>> const lookups{
        [this] { return embankment.registry->FindTag(L"Soils[1].Name"); },
        [] { return zo::Find("Soils.At(1).Name"); },
        [] { return zo::Find("HZNData.Soils.0.Name"); },
        [] { return zo::Find(zo::Find("Soils[0]"), "Name"); },
    };
    for (auto const& lookup : lookups) {
        {
            H const view = lookup();
            EXPECT_EQ(TextOf(view), L"Clay core");
            StageLength("Soils", 5);
            ExpectConflict();
        }
        StageLength("Soils", 3);
        EXPECT_TRUE(Succeeds(Commit()));
        transaction->Rollback();
    }
}

TEST_F(ResizeConflictTest, AWalkCountsAsAView) {
    H const soils = zo::Find("Soils");
    zo::ZOFwrdIterator const at = soils->begin();
    ASSERT_TRUE(at.current);
    StageLength("Soils", 5);
    ExpectConflict();
}

TEST_F(ResizeConflictTest, AnAliasThatKeepsAnElementCountsAsAView) {
    H const alias = embankment.registry->AssociateAlias("FirstSoil", "Soils[0]");
    ASSERT_TRUE(alias);
    ASSERT_TRUE(alias->begin().current);
    StageLength("Soils", 5);
    ExpectConflict();
    embankment.registry->InvalidateMemory("FirstSoil");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils.size(), 5u);
}

TEST_F(ResizeConflictTest, AnAliasThroughWhichAViewCameCountsTheSame) {
    H const alias = embankment.registry->AssociateAlias("AllSoils", "Soils");
    ASSERT_TRUE(alias);
    H const view = zo::Find("AllSoils[1].Cohesion");
    ASSERT_TRUE(view);
    StageLength("Soils", 5);
    ExpectConflict();
}

TEST_F(ResizeConflictTest, AnAliasResizesItsArrayUnderTheSameRule) {
    H const alias = embankment.registry->AssociateAlias("AllSoils", "Soils");
    ASSERT_TRUE(alias);
    {
        H const view = zo::Find("Soils[0].Cohesion");
        EXPECT_TRUE(FailsAs(alias->SetLength(5), ZOError::array_memory_conflict()));
        EXPECT_EQ(model.soils.size(), 3u);
    }
    EXPECT_TRUE(Succeeds(alias->SetLength(5)));
    EXPECT_EQ(model.soils.size(), 5u);
}

TEST_F(ResizeConflictTest, OnceTheViewIsGoneTheSameCommitSucceeds) {
    StageLength("Soils", 5);
    Stage("Soils[4].Name", L"Fill");
    {
        H const view = zo::Find("Soils[0]");
        ExpectConflict();
    }
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 5u);
    EXPECT_EQ(model.soils[4].name, L"Fill");
}

TEST_F(ResizeConflictTest, OtherValuesAreCommittedBesideAConflict) {
    StageLength("Soils", 5);
    Stage("Soils[0].Cohesion", 40.0);
    Stage("Soils[4].Cohesion", 50.0);
    Stage("Project.Title", L"Levee");
    H const view = zo::Find("Soils[0].Name");
    ExpectConflict();
    EXPECT_EQ(model.soils[0].cohesion, 40);
    EXPECT_EQ(model.project.title, L"Levee");
}

TEST_F(ResizeConflictTest, AViewOfTheArrayOrAnotherArrayIsNoConflict) {
    H const soils = zo::Find("Soils"), region = zo::Find("Regions[0].Points[0]"), length = zo::Find("Soils.Len");
    StageLength("Soils", 5);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(soils->Length(), 5u);
    EXPECT_EQ(TextOf(length), L"5");
}

TEST_F(ResizeConflictTest, TheSameLengthIsNoConflict) {
    H const view = zo::Find("Soils[0]");
    Stage("Soils[0].Cohesion", 40.0);
    StageLength("Soils", 3);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 40);
}

TEST_F(ResizeConflictTest, StagedElementsNeverStandInTheWay) {
    H const soil = Staged("Soils[2]"), cohesion = Staged("Soils[2].Cohesion");
    StageLength("Soils", 1);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils.size(), 1u);
    EXPECT_EQ(TextOf(cohesion), L"10.5");
}

TEST_F(ResizeConflictTest, ViewsOfOneTransactionDoNotProtectAnother) {
    Transaction const other = embankment.registry->CreateTransaction();
    H const node = other->Find("Soils[2].Cohesion");
    StageLength("Soils", 1);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils.size(), 1u);
}

} // namespace
} // namespace staging
