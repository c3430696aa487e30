// Staging, committing and taking back, as an application does it.
#include "tests/registry/Staging.h"

#include <functional>
#include <random>
#include <set>

namespace staging {
namespace {

using zo::ZOEmptyTransaction;
using zo::ZOTransaction;
namespace ZOError = zo::ZOError;

std::string Repeated(std::string const& piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) text += piece;
    return text;
}

// --- staging ---

class TransactionTest : public StagingTest {};

TEST_F(TransactionTest, ANodeFoundTwiceIsTheSameStagedNode) {
    H const first = Staged("Soils[1].Cohesion"), second = Staged("Soils[1].Cohesion");
    ASSERT_TRUE(first);
    EXPECT_EQ(first, second);
}

TEST_F(TransactionTest, AStagedNodeBelongsToTheTransaction) {
    H const node = Staged("Soils[1].Cohesion");
    EXPECT_EQ(node->Owner(), transaction.get());
    EXPECT_EQ(node->Name(), "Soils[1].Cohesion");
    EXPECT_EQ(node->RegID(), rows::RowOf("Soils.[].Cohesion"));
}

TEST_F(TransactionTest, NodesAboveAreStagedFirst) {
    EXPECT_EQ(Staged("Soils[1].Cohesion")->OwnerID(), 2u);
    EXPECT_EQ(Staged("Soils")->OwnerID(), 0u);
    EXPECT_EQ(Staged("Soils[1]")->OwnerID(), 1u);
}

TEST_F(TransactionTest, AStagedValueStartsWithThatOfTheSource) {
    EXPECT_EQ(TextOf(Staged("Soils[2].Cohesion")), L"10.5");
    EXPECT_EQ(TextOf(Staged("Soils[2].Name")), L"Foundation");
    EXPECT_EQ(Staged("Soils")->Length(), 3u);
    EXPECT_EQ(Staged("Soils[0].Anisotropy")->Length(), 3u);
}

TEST_F(TransactionTest, AStagedValueIsInvisibleUntilCommit) {
    Stage("Soils[0].Cohesion", 40.0);
    EXPECT_EQ(TextOf(zo::Find("Soils[0].Cohesion")), L"25");
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_EQ(TextOf(Staged("Soils[0].Cohesion")), L"40");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 40);
    EXPECT_EQ(TextOf(zo::Find("Soils[0].Cohesion")), L"40");
}

TEST_F(TransactionTest, AStagedValueStaysWhenTheSourceChanges) {
    H const node = Staged("Soils[0].Cohesion");
    model.soils[0].cohesion = 60;
    EXPECT_EQ(TextOf(node), L"25");
}

TEST_F(TransactionTest, AStagedValueIsChecked) {
    EXPECT_TRUE(FailsAs(Staged("Soils[0].Cohesion")->Set(-1.0), embankment::NegativeCohesion()));
    EXPECT_EQ(TextOf(Staged("Soils[0].Cohesion")), L"25");
}

TEST_F(TransactionTest, AnAbsentNameGivesNoNodeButStagesItsParents) {
    EXPECT_FALSE(Staged("Soils[1].Density"));
    EXPECT_EQ(Staged("Project")->OwnerID(), 2u) << "behind Soils and Soils[1]";
}

TEST_F(TransactionTest, AnAbsentNameWithoutParentsStagesNothing) {
    EXPECT_FALSE(Staged("Tunnels"));
    EXPECT_FALSE(Staged("Tunnels[3].Lining"));
    EXPECT_FALSE(Staged(""));
    EXPECT_EQ(Staged("Project")->OwnerID(), 0u);
}

TEST_F(TransactionTest, AChildIsFoundByItsNodeAndName) {
    H const soil = Staged("Soils[1]");
    EXPECT_EQ(transaction->Find(soil, "Cohesion"), Staged("Soils[1].Cohesion"));
    EXPECT_EQ(transaction->Find(Staged("Soils"), "2"), Staged("Soils[2]")) << "an index goes in brackets";
    EXPECT_EQ(transaction->Find(Staged("Soils"), "[2].Name"), Staged("Soils[2].Name"));
    EXPECT_FALSE(transaction->Find(H(), "Cohesion"));
}

TEST_F(TransactionTest, ANodeOfTheSourceLeadsToItsStagedChild) {
    EXPECT_EQ(transaction->Find(zo::Find("Soils[1]"), "Cohesion"), Staged("Soils[1].Cohesion"));
}

TEST_F(TransactionTest, BelowTheRootNamesStandAlone) {
    EXPECT_EQ(transaction->Find(embankment.registry->Root(), "Soils[1].Cohesion"), Staged("Soils[1].Cohesion"));
}

TEST_F(TransactionTest, BelowANodeWithoutNameNamesStandAlone) {
    H const nameless(new rows::Plain);
    EXPECT_EQ(transaction->Find(nameless, "Project"), Staged("Project"));
}

TEST_F(TransactionTest, AnElementIsFoundByItsArrayAndIndex) {
    H const soils = Staged("Soils");
    auto* const array = dynamic_cast<zo::ZOArray*>(soils.get());
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(transaction->Find(array, 2), Staged("Soils[2]"));
    EXPECT_FALSE(transaction->Find(array, 3));
    EXPECT_FALSE(transaction->Find(static_cast<zo::ZOArray*>(nullptr), 0));
}

TEST_F(TransactionTest, ATagLeadsToTheStagedNode) {
    EXPECT_EQ(transaction->FindTag(L"Soils[2].Cohesion"), Staged("Soils[1].Cohesion"));
    EXPECT_EQ(transaction->FindTag(Staged("Soils[1]"), L"Cohesion"), Staged("Soils[1].Cohesion"));
}

TEST_F(TransactionTest, AWalkIsOverStagedNodes) {
    Stage("Regions[1].Points[0]", 4);
    std::vector<std::wstring> texts;
    for (zo::ZOFwrdIterator at = Staged("Regions[1].Points")->begin(); at.current; ++at) {
        EXPECT_EQ(at.current->Owner(), transaction.get());
        texts.push_back(TextOf(at.current));
    }
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"4", L"3", L"4"}));
}

class SpellingTest : public StagingTest, public testing::WithParamInterface<char const*> {};

TEST_P(SpellingTest, LeadsToTheStagedNodeOfTheNodesOwnName) {
    H const other = Staged(GetParam());
    ASSERT_TRUE(other);
    ASSERT_TRUE(Succeeds(other->Set(33.0)));
    EXPECT_EQ(TextOf(Staged("Soils[1].Cohesion")), L"33");
    EXPECT_EQ(model.soils[1].cohesion, 0);
    ASSERT_TRUE(Succeeds(Staged("Soils[1].Cohesion")->Set(34.0)));
    EXPECT_EQ(TextOf(other), L"34");
    EXPECT_EQ(Staged(GetParam()), other) << "it is staged under this name, too";
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[1].cohesion, 34);
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_EQ(model.soils[2].cohesion, 10.5);
}

INSTANTIATE_TEST_SUITE_P(Indices, SpellingTest,
                         testing::Values("Soils.[1].Cohesion", "Soils.1.Cohesion", "Soils.At(2).Cohesion",
                                         "Soils.At( 2 ).Cohesion", "Soils[1]Cohesion", "Soils]1].Cohesion",
                                         "HZNData.Soils[1].Cohesion", "Soils..1.Cohesion", "Soils[1].Cohesion.",
                                         "Soils[01].Cohesion", "Soils.[001].Cohesion", "Soils.01.Cohesion",
                                         "Soils[1 ].Cohesion", "HZNData.Soils[01].Cohesion"));

TEST_F(TransactionTest, AnEditInAnotherSpellingIsNotUndoneByAnUneditedCopy) {
    ASSERT_TRUE(Staged("Soils[1].Cohesion")); // only read; by name behind the other one
    Stage("Soils[01].Cohesion", 33.0);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[1].cohesion, 33);
}

class NowhereTest : public StagingTest, public testing::WithParamInterface<char const*> {};

TEST_P(NowhereTest, LeadsToNothingInATransaction) { EXPECT_FALSE(Staged(GetParam())); }

INSTANTIATE_TEST_SUITE_P(Texts, NowhereTest,
                         testing::Values("", ".", "[", "]", "[]", ".Soils", "[Soils]", "Soils[]", "Soils.[]",
                                         "Soils.[].Cohesion", "Soils[3]", "Soils[3].Cohesion", "Soils[-1]",
                                         "Soils[18446744073709551615]", "Soils[18446744073709551616]", "Soils[x]",
                                         "Soils.At(0)", "Soils.At(4)", "Soils.At()", "Soils[[1]]", "Soils...Len",
                                         "Project[0]", "Project.Title.Length", "Soil", "Soilss"));

TEST_F(TransactionTest, LongNamesLeadNowhere) {
    EXPECT_FALSE(Staged("Soils" + Repeated("[0]", 1'000'000)));
    EXPECT_FALSE(Staged(Repeated("Soils.", 1'000'000)));
    EXPECT_FALSE(Staged(Repeated(".", 1'000'000)));
    EXPECT_FALSE(Staged(std::string(10'000'000, 'a')));
}

TEST_F(TransactionTest, LongNamesLeadNowhereBesideEntriesAsLong) {
    // Asking every set for every part of the name would take hours.
    std::string const entered = "a" + Repeated(".aaaaaaaaaaaaaaa", ZOTransaction::mostComponents - 1);
    ASSERT_TRUE(Succeeds(transaction->Insert(entered, H(new rows::Plain))));
    std::string other = entered;
    other.back() = 'b';
    Transaction top = transaction;
    for (int level = 0; level < 4; ++level) {
        EXPECT_FALSE(top->Find(other)) << level;
        EXPECT_TRUE(top->Find(entered)) << level;
        top = top->CreateTransaction();
    }
}

TEST_F(TransactionTest, ALongNameThroughAliasesIsStagedAndCommitted) {
    embankment.Row("Trial.Self", H(new rows::OtherName("Trial", true)), {MetaPersistTraits::No, L"Self"},
                   rows::StructureTraits());
    embankment.registry->OnPostRegistration();
    std::string const name = "Trial" + Repeated(".Self", 4000) + ".Factor";
    Stage(name, 1.5);
    EXPECT_EQ(TextOf(Staged("Trial.Factor")), L"1.5");
    Transaction const nested = transaction->CreateTransaction();
    EXPECT_EQ(TextOf(nested->Find(name)), L"1.5");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(trial.factor, 1.5);
}

TEST_F(TransactionTest, ANameMayHave4096Components) {
    std::string const longest = "a" + Repeated(".a", ZOTransaction::mostComponents - 1);
    H const node(new rows::Plain), other(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert(longest, node)));
    ASSERT_TRUE(Succeeds(transaction->Insert(longest + ".a", other)));
    EXPECT_EQ(Staged(longest), node);
    EXPECT_FALSE(Staged(longest + ".a"));
}

TEST_F(TransactionTest, ANameMayHave65536Characters) {
    std::string const longest(ZOTransaction::longestName, 'a');
    H const node(new rows::Plain), other(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert(longest, node)));
    ASSERT_TRUE(Succeeds(transaction->Insert(longest + "a", other)));
    EXPECT_EQ(Staged(longest), node);
    EXPECT_FALSE(Staged(longest + "a"));
}

TEST_F(TransactionTest, AnInsertedNodeIsFoundBelowNamesThatLeadNowhere) {
    H const node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Tunnels[3].Lining", node)));
    EXPECT_EQ(Staged("Tunnels[3].Lining"), node);
    EXPECT_FALSE(Staged("Tunnels[3]"));
    EXPECT_FALSE(Staged("Tunnels[3].Lining.Thickness"));
}

TEST_F(TransactionTest, AnInsertedNodeStandsBeforeThatOfTheSource) {
    H const node(new zo::ZOAtomicData<double>(IZO::npos, nullptr, NumberTraits(), 77));
    ASSERT_TRUE(Succeeds(transaction->Insert("Soils[0].Cohesion", node)));
    EXPECT_EQ(Staged("Soils[0].Cohesion"), node);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 77);
}

TEST_F(TransactionTest, AbsentBranchesAreNotStaged) {
    embankment.ShowResults(false);
    EXPECT_FALSE(Staged("Results"));
    EXPECT_FALSE(Staged("Results.Slips[0].Radius"));
    embankment.ShowResults(true);
    EXPECT_EQ(TextOf(Staged("Results.Slips[1].Radius")), L"42.5");
}

TEST_F(TransactionTest, ValuesBelowMadeParentsAreStagedAndCommitted) {
    surveyHeight = 3;
    Stage("Site.Survey.Height", 5.0);
    EXPECT_EQ(surveyHeight, 3);
    EXPECT_EQ(NameOf(Staged("Site.Survey")), "Site.Survey");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(surveyHeight, 5);
}

TEST_F(TransactionTest, TheRootIsStagedAndLeadsToStagedNodes) {
    H const root = Staged("HZNData");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->Owner(), transaction.get());
    EXPECT_EQ(transaction->Find(root, "Project.Title"), Staged("Project.Title"));
    Stage("Project.Title", L"Levee");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.project.title, L"Levee");
}

TEST_F(TransactionTest, NothingIsStagedWhileTheSourceKeepsNoNames) {
    zo::TrackingSuspension const suspension(*embankment.registry->Impl());
    EXPECT_FALSE(Staged("Soils[0].Cohesion"));
    EXPECT_FALSE(Staged("Soils"));
}

TEST_F(TransactionTest, StagingWorksAgainOnceTheSourceKeepsNames) {
    {
        zo::TrackingSuspension const suspension(*embankment.registry->Impl());
        EXPECT_FALSE(Staged("Soils[0].Cohesion"));
    }
    Stage("Soils[0].Cohesion", 31.0);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 31);
}

TEST_F(TransactionTest, LookupsLeaveNothingInTheSource) {
    std::size_t const before = embankment.registry->Impl()->entryOrder.size();
    Stage("Soils.At(2).Cohesion", 5.0);
    (void)Staged("Regions[1].Points[2]");
    EXPECT_EQ(embankment.registry->Impl()->entryOrder.size(), before);
}

// --- entries ---

TEST_F(TransactionTest, AnInsertedNodeGetsItsPlace) {
    H const node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", node)));
    EXPECT_EQ(node->Owner(), transaction.get());
    EXPECT_EQ(node->OwnerID(), 0u);
    EXPECT_EQ(node->Name(), "Note");
    EXPECT_EQ(Staged("Note"), node);
}

TEST_F(TransactionTest, ATakenNameIsRefused) {
    H const first(new rows::Plain), second(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", first)));
    EXPECT_TRUE(FailsAs(transaction->Insert("Note", second), ZOError::duplicate_name()));
    EXPECT_EQ(Staged("Note"), first);
    EXPECT_EQ(second->Owner(), nullptr);
    EXPECT_EQ(second->RefCount(), 1);
    (void)Staged("Project");
    EXPECT_TRUE(FailsAs(transaction->Insert("Project", second), ZOError::duplicate_name()));
}

TEST_F(TransactionTest, ATakenNameIsRefusedInAnySpelling) {
    // In a transaction every name is checked; a registry checks those in normal form only.
    H const first(new rows::Plain), second(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Note[3]", first)));
    EXPECT_TRUE(FailsAs(transaction->Insert("Note[3]", second), ZOError::duplicate_name()));
    EXPECT_TRUE(Succeeds(transaction->Insert("Note.3", second)));
}

TEST_F(TransactionTest, AnInsertedNodeIsKept) {
    H node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", node)));
    EXPECT_EQ(node->RefCount(), 2);
    node.release();
    EXPECT_EQ(NameOf(Staged("Note")), "Note");
}

TEST_F(TransactionTest, ATemporaryNodeIsNotKept) {
    H node(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Note", node)));
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_EQ(node->Owner(), transaction.get());
    EXPECT_EQ(Staged("Note"), node);
    node.release();
    EXPECT_FALSE(Staged("Note"));
}

TEST_F(TransactionTest, ATemporaryNodeMayHaveATakenName) {
    H first(new rows::Plain), second(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Note", first)));
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Note", second)));
    EXPECT_EQ(second->OwnerID(), 1u);
    EXPECT_EQ(Staged("Note"), first) << "the first one of a name answers";
    first.release();
    EXPECT_EQ(Staged("Note"), second);
}

TEST_F(TransactionTest, NoNodeIsNotEntered) {
    EXPECT_TRUE(Succeeds(transaction->Insert("Note", H())));
    EXPECT_TRUE(Succeeds(transaction->InsertTemporary("Note", H())));
    EXPECT_FALSE(Staged("Note"));
    EXPECT_EQ(Staged("Project")->OwnerID(), 0u);
}

TEST_F(TransactionTest, AStagedNodeIsKept) {
    {
        H const node = Staged("Soils[1].Cohesion");
        EXPECT_EQ(node->RefCount(), 2) << "the transaction's and this one";
        ASSERT_TRUE(Succeeds(node->Set(12.0)));
    }
    EXPECT_EQ(TextOf(Staged("Soils[1].Cohesion")), L"12");
}

TEST_F(TransactionTest, RollbackLeavesOnlyTheCallersHandle) {
    H const staged = Staged("Soils[1].Cohesion"), inserted(new rows::Plain), temporary(new rows::Plain);
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", inserted)));
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Draft", temporary)));
    transaction->Rollback();
    EXPECT_EQ(staged->RefCount(), 1);
    EXPECT_EQ(inserted->RefCount(), 1);
    EXPECT_EQ(temporary->RefCount(), 1);
}

/// A node whose copy enters itself: while it is staged, its name is asked for.
class SelfEntering : public IZO {
public:
    explicit SelfEntering(std::size_t regID = npos, zo::ZOSet* owner = nullptr) : IZO(regID, owner, npos) {}
    IZO* Clone() override {
        H copy(new SelfEntering(RegID(), Owner()));
        if (target) {
            result = target->Insert("Beacon", copy);
            entered = copy;
        }
        return new SelfEntering(RegID(), Owner());
    }

    static inline zo::ZOSet* target = nullptr;
    static inline H entered;
    static inline htl::status result;
};

class SelfEnteringTest : public rows::RegistryTest {
protected:
    SelfEnteringTest() {
        registry.Add("Beacon", H(new SelfEntering), L"Beacon", rows::StructureTraits());
        registry->OnPostRegistration();
    }
    ~SelfEnteringTest() override {
        SelfEntering::target = nullptr;
        SelfEntering::entered.release();
        SelfEntering::result = {};
    }
};

TEST_F(SelfEnteringTest, ANameThatIsTakenWhileItIsStagedKeepsItsNode) {
    Transaction const transaction = registry->CreateTransaction();
    SelfEntering::target = transaction.get();
    H const found = transaction->Find("Beacon");
    EXPECT_TRUE(Succeeds(SelfEntering::result));
    EXPECT_EQ(found, SelfEntering::entered);
    EXPECT_EQ(transaction->Find("Beacon"), found);
}

TEST_F(SelfEnteringTest, AnEmptyTransactionRaisesWhatItsEntryFailedWith) {
    Transaction const transaction(new ZOEmptyTransaction(htl::handle<zo::ZOSet>(registry.registry), false));
    SelfEntering::target = transaction.get();
    try {
        (void)transaction->Find("Beacon");
        ADD_FAILURE() << "nothing was raised";
    } catch (htl::status_exception const& failure) {
        EXPECT_TRUE(FailsAs(failure.Status(), ZOError::duplicate_name()));
    }
}

// --- arrays ---

TEST_F(TransactionTest, AnElementPastTheEndOfAShortenedArrayIsNotThere) {
    StageLength("Soils", 1);
    EXPECT_TRUE(Staged("Soils[0].Cohesion"));
    EXPECT_FALSE(Staged("Soils[1]"));
    EXPECT_FALSE(Staged("Soils[2].Cohesion"));
    EXPECT_FALSE(Staged("Soils.At(2)"));
}

TEST_F(TransactionTest, AWalkOverAShortenedArrayEndsAtItsNewEnd) {
    StageLength("Soils", 2);
    std::vector<std::string> names;
    H const soils = Staged("Soils");
    for (zo::ZOFwrdIterator at = soils->begin(); at.current; ++at) names.push_back(at.current->Name());
    EXPECT_EQ(names, (std::vector<std::string>{"Soils[0]", "Soils[1]"}));
}

TEST_F(TransactionTest, AnElementThatWasStagedBeforeItsArrayWasShortenedStaysStaged) {
    H const last = Staged("Soils[2].Cohesion");
    StageLength("Soils", 1);
    EXPECT_EQ(Staged("Soils[2].Cohesion"), last);
    EXPECT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(model.soils.size(), 1u);
}

TEST_F(TransactionTest, ALengthenedArrayHasNewElements) {
    StageLength("Soils", 5);
    H const cohesion = Staged("Soils[4].Cohesion");
    ASSERT_TRUE(cohesion);
    EXPECT_EQ(TextOf(cohesion), L"0");
    EXPECT_EQ(cohesion->Name(), "Soils[4].Cohesion");
    ASSERT_TRUE(Succeeds(cohesion->Set(8.0)));
    EXPECT_FALSE(Staged("Soils[5]"));
    EXPECT_EQ(model.soils.size(), 3u);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 5u);
    EXPECT_EQ(model.soils[4].cohesion, 8);
    EXPECT_EQ(model.soils[2].cohesion, 10.5);
}

TEST_F(TransactionTest, ANewElementIsOneInAnySpelling) {
    StageLength("Soils", 5);
    Stage("Soils.[4].Cohesion", 8.0);
    EXPECT_EQ(TextOf(Staged("Soils[4].Cohesion")), L"8");
    EXPECT_EQ(TextOf(Staged("Soils.4.Cohesion")), L"8");
    EXPECT_EQ(TextOf(Staged("Soils.At(5).Cohesion")), L"8");
    EXPECT_EQ(TextOf(Staged("Soils[04].Cohesion")), L"8");
    Stage("Soils.At(4).Cohesion", 9.0);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 5u);
    EXPECT_EQ(model.soils[4].cohesion, 8);
    EXPECT_EQ(model.soils[3].cohesion, 9);
}

TEST_F(TransactionTest, AShortenedArrayLosesItsLastElements) {
    StageLength("Soils", 1);
    EXPECT_EQ(Staged("Soils")->Length(), 1u);
    EXPECT_EQ(model.soils.size(), 3u);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 1u);
    EXPECT_EQ(model.soils[0].name, L"Clay core");
}

TEST_F(TransactionTest, ValuesBehindAShortenedArraysEndAreNotCommitted) {
    Stage("Soils[2].Cohesion", 99.0);
    Stage("Soils[0].Cohesion", 26.0);
    StageLength("Soils", 1);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 1u);
    EXPECT_EQ(model.soils[0].cohesion, 26);
}

TEST_F(TransactionTest, AStagedArrayPutsItsLengthBack) {
    // The source changed behind the transaction.
    Stage("Soils[2].Cohesion", 11.0);
    model.soils.resize(1);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 3u);
    EXPECT_EQ(model.soils[2].cohesion, 11);
}

TEST_F(TransactionTest, AnArrayOfFixedLengthStaysSo) {
    EXPECT_TRUE(FailsAs(Staged("Soils[0].Anisotropy")->SetLength(5), ZOError::not_supported("")));
    Stage("Soils[0].Anisotropy[2]", 0.75);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].anisotropy[2], 0.75);
}

TEST_F(TransactionTest, AStagedLengthIsANumberUntilCommit) {
    H const length = Staged("Soils.Len");
    EXPECT_EQ(TextOf(length), L"3");
    ASSERT_TRUE(Succeeds(length->Set(5)));
    EXPECT_EQ(Staged("Soils")->Length(), 3u);
    EXPECT_FALSE(Staged("Soils[4]"));
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils.size(), 5u);
}

TEST_F(TransactionTest, AStaleStagedLengthIsTheLastWord) {
    ASSERT_EQ(TextOf(Staged("Soils.Len")), L"3");
    StageLength("Soils", 5);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils.size(), 3u) << "assigned behind the array";
}

TEST_F(TransactionTest, TheLengthOfAnArrayThatIsOnlyStagedIsLive) {
    StageLength("Regions", 3);
    H const length = Staged("Regions[2].Points.Len");
    ASSERT_TRUE(length);
    EXPECT_EQ(TextOf(length), L"0");
    ASSERT_TRUE(Succeeds(length->Set(2)));
    EXPECT_EQ(Staged("Regions[2].Points")->Length(), 2u);
    Stage("Regions[2].Points[1]", 9);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.regions.size(), 3u);
    EXPECT_EQ(model.regions[2].points, (std::vector<int>{0, 9}));
}

TEST_F(TransactionTest, ArraysInNewElementsAreFilled) {
    StageLength("Regions", 3);
    Stage("Regions[2].Soil", 3);
    StageLength("Regions[2].Points", 3);
    Stage("Regions[2].Points[0]", 2);
    Stage("Regions[2].Points[2]", 4);
    StageLength("Regions[0].Points", 1);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.regions.size(), 3u);
    EXPECT_EQ(model.regions[2].soil, 3);
    EXPECT_EQ(model.regions[2].points, (std::vector<int>{2, 0, 4}));
    EXPECT_EQ(model.regions[0].points, std::vector<int>{1});
    EXPECT_EQ(model.regions[1].points, (std::vector<int>{1, 3, 4}));
}

TEST_F(TransactionTest, ElementsAreAppendedToAStagedArray) {
    H const points = Staged("Regions[0].Points");
    H value(new zo::ZOAtomicData<int>(IZO::npos, nullptr, meta::AtomicTraits<int>(), 7));
    ASSERT_TRUE(Succeeds(points->PushBack(value)));
    ASSERT_TRUE(Succeeds(points->PushBack(value)));
    EXPECT_EQ(TextOf(points), L"1,2,3,7,7");
    EXPECT_EQ(model.regions[0].points.size(), 3u);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{1, 2, 3, 7, 7}));
}

TEST_F(TransactionTest, AWholeArrayIsStagedFromItsText) {
    Stage("Regions[0].Points", L"4,5,6,7");
    EXPECT_EQ(TextOf(Staged("Regions[0].Points")), L"4,5,6,7");
    EXPECT_EQ(TextOf(Staged("Regions[0].Points[3]")), L"7");
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{4, 5, 6, 7}));
}

TEST_F(TransactionTest, AShorterTextShortensTheArray) {
    Stage("Regions[0].Points", L"9");
    EXPECT_EQ(TextOf(Staged("Regions[0].Points")), L"9");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.regions[0].points, std::vector<int>{9});
}

TEST_F(TransactionTest, IndicesAboveNineAreCommitted) {
    // In byte order "[10]" comes before "[2]".
    StageLength("Regions[0].Points", 12);
    for (int i = 0; i < 12; ++i) Stage("Regions[0].Points[" + std::to_string(i) + "]", 100 + i);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111}));
}

TEST_F(TransactionTest, AContainerWhoseElementsStayIsCommitted) {
    StageLength("Points", 6);
    Stage("Points[5].X", 7.5);
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.points.size(), 6u);
    EXPECT_EQ(model.points[5].x, 7.5);
    EXPECT_EQ(model.points[1].x, 40);
}

// --- commit ---

TEST_F(TransactionTest, ACommitKeepsTheEntries) {
    Stage("Soils[0].Cohesion", 40.0);
    EXPECT_TRUE(Succeeds(Commit()));
    model.soils[0].cohesion = 1;
    EXPECT_EQ(TextOf(Staged("Soils[0].Cohesion")), L"40");
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 40) << "a second commit assigns again";
}

TEST_F(TransactionTest, AnEmptyTransactionCommitsNothing) {
    std::wstring const before = Document();
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(Document(), before);
}

TEST_F(TransactionTest, WhatWasOnlyReadIsCommittedUnchanged) {
    std::wstring const before = Document();
    for (char const* const name : {"Soils[0].Name", "Soils[1].Drainage", "Soils[2].Color", "Soils[0].Anisotropy[1]",
                                   "Points[2].X", "Regions[1].Points[2]", "WaterTable.Points[1].Y", "Project.Units"})
        ASSERT_TRUE(Staged(name)) << name;
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(Document(), before);
}

TEST_F(TransactionTest, ValuesOfEachTypeAreCommitted) {
    Stage("Project.Title", L"Levee \u00E9");
    Stage("Project.Units", 2);
    Stage("Soils[1].Friction", 33.5);
    Stage("Soils[1].Drainage", L"Partial");
    Stage("Soils[1].Color", 4294967295u);
    Stage("Regions[1].Soil", -2147483647);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.project.title, L"Levee \u00E9");
    EXPECT_EQ(model.project.units, embankment::UnitSystem::Imperial);
    EXPECT_EQ(model.soils[1].friction, 33.5);
    EXPECT_EQ(model.soils[1].drainage, embankment::Drainage::Partial);
    EXPECT_EQ(model.soils[1].color, 4294967295u);
    EXPECT_EQ(model.regions[1].soil, -2147483647);
}

TEST_F(TransactionTest, StagedNamesThatTheBaseLacksAreSkipped) {
    H const note(new zo::ZOAtomicData<double>(IZO::npos, nullptr, NumberTraits(), 5));
    ASSERT_TRUE(Succeeds(transaction->Insert("Note", note)));
    Stage("Soils[0].Cohesion", 40.0);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 40);
}

TEST_F(TransactionTest, ABranchThatWentAwayIsSkipped) {
    Stage("Results.Slips[0].Radius", 31.0);
    Stage("Soils[0].Cohesion", 40.0);
    embankment.ShowResults(false);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.results.slips[0].radius, 30);
    EXPECT_EQ(model.soils[0].cohesion, 40);
    embankment.ShowResults(true);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.results.slips[0].radius, 31) << "still staged when it comes back";
}

TEST_F(TransactionTest, TheFirstFailureIsReturnedAndTheOthersAreAttempted) {
    Stage("Level", 1.0);
    Stage("Sealed", 2.0); // by name behind the locked one
    Stage("Locked", 3.0);
    Stage("TrialNote", 4.0);
    EXPECT_TRUE(FailsAs(Commit(), locked.refusal));
    EXPECT_EQ(level.value, 1);
    EXPECT_EQ(trialNote, 4);
    EXPECT_EQ(locked.writes, 1);
    EXPECT_EQ(sealed.writes, 1);
    EXPECT_EQ(sealed.value, 0);
}

TEST_F(TransactionTest, WhatHasNoValueIsNoFailure) {
    level.refusal = ZOError::not_supported("double");
    Stage("Level", 1.0);
    Stage("TrialNote", 4.0);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(level.writes, 1);
    EXPECT_EQ(trialNote, 4);
}

TEST_F(TransactionTest, AFailureBehindANodeWithoutValueIsReturned) {
    level.refusal = ZOError::not_supported("double");
    Stage("Level", 1.0);
    Stage("Locked", 2.0);
    EXPECT_TRUE(FailsAs(Commit(), locked.refusal));
}

TEST_F(TransactionTest, ARefusedValueStays) {
    {
        zo::TrackingSuspension const unchecked(*transaction->Impl());
        Stage("Soils[0].Cohesion", -4.0);
    }
    Stage("Soils[1].Cohesion", 3.0);
    EXPECT_TRUE(FailsAs(Commit(), embankment::NegativeCohesion()));
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_EQ(model.soils[1].cohesion, 3);
}

TEST_F(TransactionTest, AliasesAreNotCommittedButTheirTargetsAre) {
    // Two names, one node: it is written once.
    H const other = Staged("HZNData.Level");
    ASSERT_TRUE(other);
    ASSERT_TRUE(Succeeds(other->Set(6.0)));
    ASSERT_NE(other, Staged("Level"));
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(level.value, 6);
    EXPECT_EQ(level.writes, 1);
}

TEST_F(TransactionTest, ABaseOfItsOwnReceivesTheCommit) {
    Transaction const draft = embankment.registry->CreateTransaction();
    Transaction const copy(
        new ZOTransaction(htl::handle<zo::ZOSet>(embankment.registry), htl::handle<zo::ZOSet>(draft), false));
    EXPECT_EQ(copy->Base(), draft.get());
    EXPECT_EQ(copy->Source(), embankment.registry.get());
    ASSERT_TRUE(Succeeds(copy->Find("Soils[0].Cohesion")->Set(40.0)));
    EXPECT_TRUE(Succeeds(copy->Commit("", "")));
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_EQ(TextOf(draft->Find("Soils[0].Cohesion")), L"40");
}

TEST_F(TransactionTest, TheBaseIsTheSourceUnlessItIsGiven) {
    Transaction const plain(new ZOTransaction(htl::handle<zo::ZOSet>(embankment.registry), {}, false));
    EXPECT_EQ(plain->Base(), embankment.registry.get());
    EXPECT_EQ(transaction->Source(), embankment.registry.get());
    EXPECT_EQ(transaction->Base(), embankment.registry.get());
}

TEST_F(TransactionTest, APinnedTransactionOutlivesItsHandles) {
    ZOTransaction pinned(htl::handle<zo::ZOSet>(embankment.registry), {}, true);
    EXPECT_EQ(pinned.RefCount(), 1);
    { htl::handle<zo::ZOSet> const handle(&pinned); }
    { Transaction const nested = pinned.CreateTransaction(); }
    ASSERT_TRUE(Succeeds(pinned.Find("Soils[0].Cohesion")->Set(40.0)));
    EXPECT_TRUE(Succeeds(pinned.Commit("", "")));
    EXPECT_EQ(model.soils[0].cohesion, 40);
}

// --- commits in which an assignment reaches back ---

/// A value whose writing does something else first.
struct Reaching {
    std::function<void()> act;
    double value = 0;
};
struct ReachingValue {
    Reaching* object;

    double GetData(IZO const*) const { return object->value; }
    htl::status SetData(IZO*, double const& value) const {
        object->value = value;
        if (object->act) object->act();
        return {};
    }
};

class ReachingTest : public StagingTest {
protected:
    ReachingTest() {
        embankment.Row("Reach",
                       H(new zo::ZOAtomicCustom<ReachingValue, zo::ZOAccessDataVMT<double>>(
                           IZO::npos, nullptr, NumberTraits(), ReachingValue{&reaching})),
                       {MetaPersistTraits::No, L"Reach"}, NumberTraits());
        embankment.registry->OnPostRegistration();
        Stage("Level", 1.0); // by name before the one that reaches back
        Stage("Reach", 2.0);
        Stage("Soils[0].Cohesion", 40.0); // and behind it
    }
    ~ReachingTest() override { reaching.act = nullptr; }

    void ExpectAllIsCommitted() const {
        EXPECT_EQ(level.value, 1);
        EXPECT_EQ(reaching.value, 2);
        EXPECT_EQ(model.soils[0].cohesion, 40);
    }

    Reaching reaching;
};

TEST_F(ReachingTest, ARollbackWithinACommitEndsTheEntriesAndNotTheCommit) {
    H const held = Staged("Soils[0].Cohesion");
    reaching.act = [this] { transaction->Rollback(); };
    EXPECT_TRUE(Succeeds(Commit()));
    ExpectAllIsCommitted();
    EXPECT_EQ(held->Owner(), nullptr);
    EXPECT_EQ(held->RefCount(), 1);
    EXPECT_TRUE(transaction->Impl()->entryOrder.empty());
}

TEST_F(ReachingTest, ATransactionThatIsDroppedWithinItsCommitIsCommitted) {
    reaching.act = [this] { transaction.release(); };
    ZOTransaction* const raw = transaction.get();
    EXPECT_TRUE(Succeeds(raw->Commit("", "")));
    ExpectAllIsCommitted();
}

TEST_F(ReachingTest, ATransactionThatIsDroppedWithItsJournalIsCommittedAndUndone) {
    reaching.act = [this] { transaction.release(); };
    std::wstring const before = Document();
    zo::ZOJournal journal;
    ZOTransaction* const raw = transaction.get();
    EXPECT_TRUE(Succeeds(raw->Commit("", "", &journal)));
    ExpectAllIsCommitted();
    reaching.act = nullptr;
    EXPECT_TRUE(Succeeds(journal.Undo(*embankment.registry)));
    EXPECT_EQ(Document(), before);
    EXPECT_EQ(level.value, 0);
}

TEST_F(ReachingTest, ATransactionThatIsDroppedWithinACommitToAnotherPlaceIsCommitted) {
    Stage("Trial.Factor", 1.3);
    H const reach(new zo::ZOAtomicData<double>(IZO::npos, nullptr, NumberTraits(), 5));
    ASSERT_TRUE(Succeeds(transaction->Insert("Draft.Reach", reach)));
    ASSERT_TRUE(Succeeds(transaction->Insert("Draft", H(new rows::Plain))));
    reaching.act = [this] { transaction.release(); };
    ZOTransaction* const raw = transaction.get();
    EXPECT_TRUE(Succeeds(raw->CommitAs("Draft", "HZNData", "", "")));
    EXPECT_EQ(reaching.value, 5);
    EXPECT_EQ(reach->RefCount(), 1);
}

TEST_F(ReachingTest, WhatIsStagedWithinACommitWaitsForTheNext) {
    reaching.act = [this] {
        if (Staged("Soils[1].Cohesion")->OwnerID() == IZO::npos) return;
        (void)Staged("Soils[1].Cohesion")->Set(7.0);
        (void)transaction->Insert("Note", H(new rows::Plain));
        for (int i = 0; i < 1000; ++i) (void)transaction->InsertTemporary("Note", H(new rows::Plain));
    };
    EXPECT_TRUE(Succeeds(Commit()));
    ExpectAllIsCommitted();
    EXPECT_EQ(model.soils[1].cohesion, 0);
    reaching.act = nullptr;
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[1].cohesion, 7);
}

TEST_F(ReachingTest, ACommitMayCommitAnotherTransaction) {
    Transaction const inner = embankment.registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(inner->Find("Soils[1].Cohesion")->Set(7.0)));
    ASSERT_TRUE(Succeeds(inner->Find("Soils")->SetLength(5)));
    zo::ZOJournal innerJournal, journal;
    reaching.act = [&] { EXPECT_TRUE(Succeeds(inner->Commit("", "", &innerJournal))); };
    EXPECT_TRUE(Succeeds(transaction->Commit("", "", &journal)));
    // The outer one has staged the soils, too, and their length is assigned behind the inner commit.
    EXPECT_EQ(model.soils.size(), 3u);
    EXPECT_EQ(model.soils[1].cohesion, 7);
    ExpectAllIsCommitted();
    EXPECT_EQ(innerJournal.Entries().size(), 2u);
}

TEST_F(ReachingTest, AnExceptionOfASetterEndsTheCommitAndNothingElse) {
    struct Refusal {};
    H const held = Staged("Soils[0].Cohesion");
    reaching.act = [] { throw Refusal(); };
    zo::ZOJournal journal;
    EXPECT_THROW((void)transaction->Commit("", "", &journal), Refusal);
    EXPECT_EQ(level.value, 1);
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_EQ(held->RefCount(), 2) << "the transaction's and this one";
    reaching.act = nullptr;
    EXPECT_TRUE(Succeeds(Commit()));
    ExpectAllIsCommitted();
}

// --- the order of a commit ---

/// Notes what is assigned to it.
class Recorder : public IZO {
public:
    Recorder(std::string label, std::vector<std::string>& order)
        : IZO(npos, nullptr, npos), label(std::move(label)), order(order) {}
    IZO* Clone() override { return new Recorder(label, order); }
    htl::status Assign(H const&) override {
        order.push_back(label);
        return {};
    }

private:
    std::string label;
    std::vector<std::string>& order;
};

class OrderTest : public StagingTest {
protected:
    OrderTest()
        : draft(new ZOTransaction(htl::handle<zo::ZOSet>(embankment.registry), htl::handle<zo::ZOSet>(transaction),
                                  false)) {}
    ~OrderTest() override { draft.release(); }

    /// In the order in which the names are entered, which is the reverse of the one that is expected.
    std::vector<std::string> OrderOf(std::vector<std::string> const& expected) {
        std::vector<std::string> order;
        for (auto name = expected.rbegin(); name != expected.rend(); ++name) {
            EXPECT_TRUE(Succeeds(transaction->Insert(*name, H(new Recorder(*name, order)))));
            EXPECT_TRUE(Succeeds(draft->Insert(*name, H(new rows::Plain))));
        }
        EXPECT_TRUE(Succeeds(draft->Commit("", "")));
        transaction->Rollback();
        return order;
    }

    Transaction draft; // commits to the fixture's
};

TEST_F(OrderTest, NamesAreInTheOrderOfTheirBytes) {
    std::vector<std::string> const expected{"A",    "A-B", "A.B",  "AA",       "A[0]", "A[10]",
                                            "A[2]", "a",   "\x7F", "\xC3\xA9", "\xFF"};
    EXPECT_EQ(OrderOf(expected), expected);
}

TEST_F(OrderTest, ANameComesBeforeThoseThatGoOn) {
    // Of lengths around the pieces of 8 bytes in which names are compared.
    std::vector<std::string> expected;
    for (std::size_t length = 1; length <= 40; ++length) expected.push_back(std::string(length, 'a'));
    EXPECT_EQ(OrderOf(expected), expected);
}

TEST_F(OrderTest, ZeroBytesAreBytes) {
    std::vector<std::string> expected;
    for (std::size_t zeros = 0; zeros <= 20; ++zeros) expected.push_back("abcdefgh" + std::string(zeros, '\0'));
    expected.push_back(std::string("abcdefgh\0\0\1", 11));
    expected.push_back(std::string("abcdefgh\0\1", 10));
    expected.push_back(std::string("abcdefgh\1", 9));
    EXPECT_EQ(OrderOf(expected), expected);
}

TEST_F(OrderTest, ManyNamesThatDifferLateAreInOrder) {
    std::mt19937 random(5);
    std::set<std::string> names;
    while (names.size() < 3000) {
        std::string name = "Project.Sections[12].Layers";
        for (std::size_t i = random() % 14; i > 0; --i) name += std::string("\0.[09a\xFF", 7)[random() % 7];
        names.insert(name + "x");
    }
    std::vector<std::string> const expected(names.begin(), names.end());
    EXPECT_EQ(OrderOf(expected), expected);
}

TEST_F(OrderTest, EntriesOfOneNameAreInTheOrderOfTheirPlaces) {
    // The target takes the last one.
    std::vector<H> nodes;
    for (int i = 0; i < 2000; ++i) {
        nodes.emplace_back(new zo::ZOAtomicData<double>(IZO::npos, nullptr, NumberTraits(), i));
        ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Level", nodes.back())));
    }
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(level.value, 1999);
    EXPECT_EQ(level.writes, 1999) << "the first one is the value that is there";
}

// --- transactions on transactions ---

TEST_F(TransactionTest, ANestedTransactionCommitsToTheOneBelow) {
    Transaction const nested = transaction->CreateTransaction();
    EXPECT_EQ(nested->Source(), transaction.get());
    EXPECT_EQ(nested->Base(), transaction.get());
    Stage("Soils[0].Cohesion", 40.0);
    H const inner = nested->Find("Soils[0].Cohesion");
    EXPECT_EQ(TextOf(inner), L"40");
    ASSERT_TRUE(Succeeds(inner->Set(41.0)));
    EXPECT_EQ(TextOf(Staged("Soils[0].Cohesion")), L"40");
    EXPECT_TRUE(Succeeds(nested->Commit("", "")));
    EXPECT_EQ(TextOf(Staged("Soils[0].Cohesion")), L"41");
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 41);
}

TEST_F(TransactionTest, ADroppedNestedTransactionChangesNothing) {
    Stage("Soils[0].Cohesion", 40.0);
    {
        Transaction const nested = transaction->CreateTransaction();
        ASSERT_TRUE(Succeeds(nested->Find("Soils[0].Cohesion")->Set(41.0)));
        ASSERT_TRUE(Succeeds(nested->Find("Soils")->SetLength(9)));
    }
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 40);
    EXPECT_EQ(model.soils.size(), 3u);
}

TEST_F(TransactionTest, ANestedTransactionSeesNewElementsAndMakesMore) {
    StageLength("Soils", 4);
    Stage("Soils[3].Cohesion", 4.0);
    Transaction const nested = transaction->CreateTransaction();
    EXPECT_EQ(TextOf(nested->Find("Soils[3].Cohesion")), L"4");
    ASSERT_TRUE(Succeeds(nested->Find("Soils")->SetLength(5)));
    ASSERT_TRUE(Succeeds(nested->Find("Soils[4].Cohesion")->Set(5.0)));
    EXPECT_FALSE(Staged("Soils[4]"));
    EXPECT_TRUE(Succeeds(nested->Commit("", "")));
    EXPECT_EQ(TextOf(Staged("Soils[4].Cohesion")), L"5");
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 5u);
    EXPECT_EQ(model.soils[3].cohesion, 4);
    EXPECT_EQ(model.soils[4].cohesion, 5);
}

TEST_F(TransactionTest, ManyNestedTransactionsPassAValueDown) {
    std::vector<Transaction> levels{transaction};
    for (int i = 0; i < 20; ++i) levels.push_back(levels.back()->CreateTransaction());
    ASSERT_TRUE(Succeeds(levels.back()->Find("Soils.At(1).Cohesion")->Set(41.0)));
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) EXPECT_TRUE(Succeeds((*level)->Commit("", "")));
    EXPECT_EQ(model.soils[0].cohesion, 41);
}

// --- rollback ---

TEST_F(TransactionTest, RollbackLeavesTheSourceAsItWas) {
    std::wstring const before = Document();
    Stage("Soils[0].Cohesion", 40.0);
    StageLength("Regions", 7);
    transaction->Rollback();
    EXPECT_EQ(Document(), before);
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(Document(), before) << "nothing was left to commit";
}

TEST_F(TransactionTest, AfterRollbackHeldNodesHaveNoOwner) {
    H const node = Staged("Soils[0].Cohesion");
    transaction->Rollback();
    EXPECT_EQ(node->Owner(), nullptr);
    EXPECT_EQ(node->OwnerID(), IZO::npos);
    EXPECT_EQ(node->Name(), "");
}

TEST_F(TransactionTest, AfterRollbackTheTransactionStagesAnew) {
    H const before = Staged("Soils[0].Cohesion");
    ASSERT_TRUE(Succeeds(before->Set(40.0)));
    transaction->Rollback();
    H const after = Staged("Soils[0].Cohesion");
    EXPECT_NE(after, before);
    EXPECT_EQ(TextOf(after), L"25");
    EXPECT_EQ(after->OwnerID(), 2u);
    ASSERT_TRUE(Succeeds(after->Set(41.0)));
    EXPECT_TRUE(Succeeds(Commit()));
    EXPECT_EQ(model.soils[0].cohesion, 41);
}

/// Notes the names that it and its neighbour have when it is told that memory went away, and drops the neighbour.
class Listener : public rows::Plain {
public:
    explicit Listener(std::vector<std::string>& heard) : heard(heard) {}
    H neighbour;

protected:
    void OnInvalidateMemory() override {
        heard.push_back(Name() + " beside " + (neighbour ? neighbour->Name() : "nobody"));
        neighbour.release();
    }

private:
    std::vector<std::string>& heard;
};

TEST_F(TransactionTest, RollbackTellsAllNodesWhileTheyHaveNames) {
    std::vector<std::string> heard;
    htl::handle<Listener> const first(new Listener(heard)), second(new Listener(heard));
    first->neighbour = H(second);
    second->neighbour = H(first);
    ASSERT_TRUE(Succeeds(transaction->Insert("First", first)));
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Second", second)));
    transaction->Rollback();
    EXPECT_EQ(heard, (std::vector<std::string>{"First beside Second", "Second beside First"}));
}

TEST_F(TransactionTest, RollbackBearsNodesThatDropOthers) {
    // The first one holds the last handle of the second, which the transaction doesn't keep.
    std::vector<std::string> heard;
    htl::handle<Listener> const first(new Listener(heard));
    ASSERT_TRUE(Succeeds(transaction->Insert("First", first)));
    first->neighbour = H(new Listener(heard));
    ASSERT_TRUE(Succeeds(transaction->InsertTemporary("Second", first->neighbour)));
    transaction->Rollback();
    EXPECT_EQ(heard, (std::vector<std::string>{"First beside Second", "Second beside nobody"}));
}

// --- units ---

class UnitsTest : public StagingTest {
protected:
    /// The staged project is in feet and pounds, the registry's in metres and kilonewtons.
    void StageImperial() { Stage("Project.Units", 2); }
    htl::status CommitUnits() const { return transaction->Commit("Project.Units", "Project.Units"); }
};

TEST_F(UnitsTest, ValuesAreConvertedBetweenDifferentSystems) {
    StageImperial();
    Stage("Points[1].X", 10.0);
    Stage("Results.Slips[0].Radius", 100.0);
    EXPECT_TRUE(Succeeds(CommitUnits()));
    EXPECT_DOUBLE_EQ(model.points[1].x, 3.048);
    EXPECT_DOUBLE_EQ(model.results.slips[0].radius, 30.48);
    EXPECT_EQ(model.project.units, embankment::UnitSystem::Imperial) << "the system itself was staged, too";
}

TEST_F(UnitsTest, StressAndUnitWeightAreConverted) {
    StageImperial();
    Stage("Soils[0].Cohesion", 1000.0);
    Stage("Soils[0].UnitWeight", 120.0);
    EXPECT_TRUE(Succeeds(CommitUnits()));
    // A foot is 0.3048 m and a pound-force 4.4482216152605 N.
    EXPECT_NEAR(model.soils[0].cohesion, 47.880258980, 1e-8);
    EXPECT_NEAR(model.soils[0].unitWeight, 18.850495661, 1e-8);
}

TEST_F(UnitsTest, AKindWithAnOffsetIsConverted) {
    StageImperial();
    Stage("Borehole.Temperature", 68.0);
    EXPECT_TRUE(Succeeds(CommitUnits()));
    EXPECT_DOUBLE_EQ(borehole.temperature, 20);
}

TEST_F(UnitsTest, WholeNumbersAreConvertedAndRounded) {
    StageImperial();
    Stage("Borehole.Depth", 100); // 30.48 m
    EXPECT_TRUE(Succeeds(CommitUnits()));
    EXPECT_EQ(borehole.depth, 30);
}

TEST_F(UnitsTest, WhatHasNoUnitOrTheSameInBothIsNotConverted) {
    StageImperial();
    Stage("Borehole.Friction", 31.0);
    Stage("Borehole.Ratio", 0.25);
    Stage("Borehole.Remark", L"12 ft");
    EXPECT_TRUE(Succeeds(CommitUnits()));
    EXPECT_EQ(borehole.friction, 31);
    EXPECT_EQ(borehole.ratio, 0.25);
    EXPECT_EQ(borehole.remark, L"12 ft");
}

TEST_F(UnitsTest, AMissingValueStaysMissing) {
    StageImperial();
    Stage("Borehole.Temperature", missing);
    Stage("Borehole.Depth", std::numeric_limits<int>::max());
    Stage("Points[1].X", missing);
    EXPECT_TRUE(Succeeds(CommitUnits()));
    EXPECT_EQ(borehole.temperature, missing);
    EXPECT_EQ(borehole.depth, std::numeric_limits<int>::max());
    EXPECT_EQ(model.points[1].x, missing);
}

TEST_F(UnitsTest, ArraysAreResizedAndTheirNewValuesConverted) {
    StageImperial();
    StageLength("Points", 5);
    Stage("Points[4].Y", 10.0);
    EXPECT_TRUE(Succeeds(CommitUnits()));
    ASSERT_EQ(model.points.size(), 5u);
    EXPECT_DOUBLE_EQ(model.points[4].y, 3.048);
}

TEST_F(UnitsTest, AConvertedValueIsChecked) {
    StageImperial();
    {
        zo::TrackingSuspension const unchecked(*transaction->Impl());
        Stage("Soils[0].Cohesion", -4.0);
    }
    EXPECT_TRUE(FailsAs(CommitUnits(), embankment::NegativeCohesion()));
    EXPECT_EQ(model.soils[0].cohesion, 25);
}

TEST_F(UnitsTest, ValuesOfOneSystemAreAssignedAsTheyAre) {
    Stage("Points[1].X", 10.1);
    EXPECT_TRUE(Succeeds(CommitUnits()));
    EXPECT_EQ(model.points[1].x, 10.1);
}

/// The names of the staged and of the base's unit system, of which at least one gives none.
struct UnitNames {
    char const* source;
    char const* target;
};
class NoUnitsTest : public UnitsTest, public testing::WithParamInterface<UnitNames> {};

TEST_P(NoUnitsTest, NothingIsConverted) {
    StageImperial();
    model.project.title = L"1";
    borehole.ratio = 1;
    Stage("Points[1].X", 10.0);
    EXPECT_TRUE(Succeeds(transaction->Commit(GetParam().source, GetParam().target)));
    EXPECT_EQ(model.points[1].x, 10);
}

INSTANTIATE_TEST_SUITE_P(Names, NoUnitsTest,
                         testing::Values(UnitNames{"", ""}, UnitNames{"Project.Units", ""},
                                         UnitNames{"", "Project.Units"}, UnitNames{"Project.Units", "Project.System"},
                                         UnitNames{"Project.System", "Project.Units"},
                                         UnitNames{"Project.Units", "Project"}, UnitNames{"Project", "Project.Units"},
                                         UnitNames{"Project.Units", "Soils"}));

TEST_F(UnitsTest, AnUnknownSystemConvertsNothing) {
    for (int const number : {7, -1, 0, std::numeric_limits<int>::max()}) {
        borehole.depth = number;
        transaction->Rollback();
        StageImperial();
        Stage("Points[1].X", 10.0);
        EXPECT_TRUE(Succeeds(transaction->Commit("Project.Units", "Borehole.Depth")));
        EXPECT_EQ(model.points[1].x, 10) << number;
        EXPECT_TRUE(Succeeds(transaction->Commit("Borehole.Depth", "Project.Units")));
        EXPECT_EQ(model.points[1].x, 10) << number;
    }
}

// --- commit to another place ---

class CommitAsTest : public StagingTest {
protected:
    htl::status CommitAs(std::string const& from, std::string const& to) const {
        return transaction->CommitAs(from, to, "", "");
    }
};

TEST_F(CommitAsTest, AStagedPartIsAssignedToAnotherPlace) {
    trial.slices = {1, 2};
    Stage("Trial.Factor", 1.3);
    ASSERT_TRUE(Staged("Trial.Slices[1]"));
    Stage("Trial.Slices[0]", 4.0);
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "Final")));
    EXPECT_EQ(finalTrial.factor, 1.3);
    EXPECT_EQ(finalTrial.slices, (std::vector<double>{4, 2}));
    EXPECT_EQ(trial.factor, 1);
    EXPECT_EQ(trial.slices, (std::vector<double>{1, 2}));
}

TEST_F(CommitAsTest, AnElementIsAssignedToAnother) {
    for (char const* const name : {"Name", "Cohesion", "Color", "Anisotropy[0]", "Anisotropy[1]"})
        ASSERT_TRUE(Staged(std::string("Soils[0].") + name));
    EXPECT_TRUE(Succeeds(CommitAs("Soils[0]", "Soils[2]")));
    EXPECT_EQ(model.soils[2].name, L"Clay core");
    EXPECT_EQ(model.soils[2].cohesion, 25);
    EXPECT_EQ(model.soils[2].color, 255u);
    EXPECT_EQ(model.soils[2].anisotropy[1], 0.5);
    EXPECT_EQ(model.soils[2].friction, 27) << "it was not staged";
    EXPECT_EQ(model.soils[1].name, L"Sand shell");
}

TEST_F(CommitAsTest, ASingleValueIsAssignedToAnother) {
    Stage("Trial.Factor", 1.4);
    EXPECT_TRUE(Succeeds(CommitAs("Trial.Factor", "FinalNote")));
    EXPECT_EQ(finalNote, 1.4);
}

TEST_F(CommitAsTest, NamesThatOnlyBeginAlikeStay) {
    Stage("Trial.Factor", 1.3);
    Stage("TrialNote", 9.0);
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "Final")));
    EXPECT_EQ(finalTrial.factor, 1.3);
    EXPECT_EQ(finalNote, 0);
}

TEST_F(CommitAsTest, WhatIsBehindANameThatOnlyBeginsAlikeIsAssigned) {
    // In byte order "Trial-B" stands before "Trial.Factor".
    H const other(new zo::ZOAtomicData<double>(IZO::npos, nullptr, NumberTraits(), 5));
    ASSERT_TRUE(Succeeds(transaction->Insert("Trial-B", other)));
    Stage("Trial.Factor", 1.3);
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "Final")));
    EXPECT_EQ(finalTrial.factor, 1.3);
}

TEST_F(CommitAsTest, AnAbsentPlaceToTakeFromIsSuccess) {
    std::wstring const before = Document();
    EXPECT_TRUE(Succeeds(CommitAs("Tunnels", "Final")));
    EXPECT_TRUE(Succeeds(CommitAs("", "Final")));
    EXPECT_EQ(Document(), before);
}

TEST_F(CommitAsTest, AnAbsentPlaceToGoToIsSkipped) {
    Stage("Trial.Factor", 1.3);
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "Tunnels")));
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "")));
    EXPECT_EQ(finalTrial.factor, 1);
    EXPECT_EQ(trial.factor, 1);
}

TEST_F(CommitAsTest, TheFirstFailureIsReturnedAndTheOthersAreAttempted) {
    Stage("Soils[0].Cohesion", 3.0);
    {
        zo::TrackingSuspension const unchecked(*transaction->Impl());
        Stage("Soils[0].Cohesion", -3.0);
    }
    Stage("Soils[0].Name", L"Copy");
    EXPECT_TRUE(FailsAs(CommitAs("Soils[0]", "Soils[1]"), embankment::NegativeCohesion()));
    EXPECT_EQ(model.soils[1].name, L"Copy");
    EXPECT_EQ(model.soils[1].cohesion, 0);
}

TEST_F(CommitAsTest, WhatHasNoValueIsNoFailure) {
    level.refusal = ZOError::not_supported("double");
    Stage("TrialNote", 2.0);
    EXPECT_TRUE(Succeeds(CommitAs("TrialNote", "Level")));
    EXPECT_EQ(level.writes, 1);
}

TEST_F(CommitAsTest, ValuesAreConverted) {
    Stage("Project.Units", 2);
    Stage("Points[0].X", 10.0);
    Stage("Points[0].Y", 100.0);
    EXPECT_TRUE(Succeeds(transaction->CommitAs("Points[0]", "Points[2]", "Project.Units", "Project.Units")));
    EXPECT_DOUBLE_EQ(model.points[2].x, 3.048);
    EXPECT_DOUBLE_EQ(model.points[2].y, 30.48);
    EXPECT_EQ(model.project.units, embankment::UnitSystem::Metric) << "only what stands under the name";
}

TEST_F(CommitAsTest, AnotherSpellingIsFollowedToTheNode) {
    Stage("Soils[0].Cohesion", 31.0);
    EXPECT_TRUE(Succeeds(CommitAs("Soils.At(1)", "Soils[2]")));
    EXPECT_EQ(model.soils[2].cohesion, 31);
}

TEST_F(CommitAsTest, ARedirectIsFollowedToTheNode) {
    Stage("Trial.Factor", 1.5);
    ASSERT_TRUE(Succeeds(transaction->Insert("Best", H(new rows::OtherName("Better", true)))));
    ASSERT_TRUE(Succeeds(transaction->Insert("Better", H(new rows::OtherName("Trial", false)))));
    EXPECT_TRUE(Succeeds(CommitAs("Best", "Final")));
    EXPECT_EQ(finalTrial.factor, 1.5);
}

TEST_F(CommitAsTest, RedirectsInACircleOrToNothingAreSuccess) {
    ASSERT_TRUE(Succeeds(transaction->Insert("Best", H(new rows::OtherName("Better", true)))));
    ASSERT_TRUE(Succeeds(transaction->Insert("Better", H(new rows::OtherName("Best", true)))));
    ASSERT_TRUE(Succeeds(transaction->Insert("Lost", H(new rows::OtherName("Tunnels", true)))));
    EXPECT_TRUE(Succeeds(CommitAs("Best", "Final")));
    EXPECT_TRUE(Succeeds(CommitAs("Lost", "Final")));
    EXPECT_EQ(finalTrial.factor, 1);
}

TEST_F(CommitAsTest, APlaceWithinTheOneItComesFromGetsWhatWasStaged) {
    // Nothing that is assigned is assigned on.
    model.regions = {{1, {5, 6}}, {2, {7, 8, 9}}};
    Stage("Regions[0].Points[0]", 4);
    Stage("Regions[1].Points[0]", 3);
    EXPECT_TRUE(Succeeds(CommitAs("Regions", "Regions[0].Points")));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{5, 6})) << "numbers have no elements";
    EXPECT_TRUE(Succeeds(CommitAs("Regions[0].Points", "Regions[0].Points[1]")));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{5, 6}));
    EXPECT_TRUE(Succeeds(CommitAs("Regions[0].Points[0]", "Regions[0].Points[1]")));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{5, 4}));
}

TEST_F(CommitAsTest, ThePlaceItselfIsCommittedInPlace) {
    Stage("Trial.Factor", 1.3);
    Stage("TrialNote", 9.0);
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "Trial")));
    EXPECT_EQ(trial.factor, 1.3);
    EXPECT_EQ(trialNote, 0);
}

TEST_F(CommitAsTest, AliasesUnderThePlaceAreAssigned) {
    Stage("TrialNote", 7.0);
    ASSERT_TRUE(Staged("Trial"));
    ASSERT_TRUE(transaction->AssociateAlias("Trial.Factor", "TrialNote"));
    EXPECT_TRUE(Succeeds(CommitAs("Trial", "Final")));
    EXPECT_TRUE(Succeeds(Commit()));
    // A reference gives no value of its own, but the attempt is made.
    EXPECT_EQ(trial.factor, 1) << "a plain commit leaves aliases out";
    EXPECT_EQ(trialNote, 7);
}

// --- new content ---

class EmptyTransactionTest : public StagingTest {
protected:
    EmptyTransactionTest() : empty(new ZOEmptyTransaction(htl::handle<zo::ZOSet>(embankment.registry), false)) {}

    htl::handle<ZOEmptyTransaction> empty;
};

TEST_F(EmptyTransactionTest, NodesHaveDefaultValues) {
    EXPECT_EQ(TextOf(empty->Find("Project.Title")), L"");
    EXPECT_EQ(TextOf(empty->Find("Borehole.Depth")), L"0");
    EXPECT_EQ(empty->Find("Soils")->Length(), 0u);
    EXPECT_TRUE(empty->Find("WaterTable"));
    EXPECT_EQ(model.project.title, L"Tailings dam");
}

TEST_F(EmptyTransactionTest, ANodeFoundTwiceIsTheSame) {
    H const title = empty->Find("Project.Title");
    EXPECT_EQ(empty->Find("Project.Title"), title);
    EXPECT_EQ(title->Owner(), empty.get());
    EXPECT_EQ(title->Name(), "Project.Title");
    EXPECT_EQ(title->OwnerID(), 0u) << "nodes above are not staged";
    EXPECT_EQ(title->RefCount(), 2);
}

TEST_F(EmptyTransactionTest, ElementsAreNotFoundByIndex) {
    H const soils = empty->Find("Soils");
    auto* const array = dynamic_cast<zo::ZOArray*>(soils.get());
    ASSERT_NE(array, nullptr);
    ASSERT_TRUE(Succeeds(soils->SetLength(5)));
    EXPECT_FALSE(empty->Find(array, 3));
    EXPECT_FALSE(empty->Find(array, 0));
    EXPECT_FALSE(empty->Find("Soils[0]"));
    EXPECT_FALSE(empty->Find("Soils[0].Name"));
    EXPECT_FALSE(empty->Find("Soils.0"));
    EXPECT_FALSE(empty->Find("Soils.At(1)"));
    EXPECT_FALSE(empty->Find(soils, "0"));
}

TEST_F(EmptyTransactionTest, AbsentNamesAreNull) {
    for (char const* const name : {"", "Tunnels", "Project.Length", "Soils[", "Soils[]", "Soils.[]"})
        EXPECT_FALSE(empty->Find(name)) << name;
    EXPECT_FALSE(empty->Find(H(), "Title"));
}

TEST_F(EmptyTransactionTest, AChildIsFoundByNodeAndName) {
    H const project = empty->Find("Project");
    EXPECT_EQ(empty->Find(project, "Title"), empty->Find("Project.Title"));
}

TEST_F(EmptyTransactionTest, AnotherNameLeadsToTheNodesOwn) {
    H const title = empty->Find("HZNData.Project.Title");
    ASSERT_TRUE(title);
    EXPECT_EQ(title, empty->Find("Project.Title"));
    EXPECT_EQ(title->Name(), "Project.Title");
}

TEST_F(EmptyTransactionTest, InsertChecksNames) {
    H const first(new rows::Plain), second(new rows::Plain);
    ASSERT_TRUE(Succeeds(empty->Insert("Note", first)));
    EXPECT_TRUE(FailsAs(empty->Insert("Note", second), ZOError::duplicate_name()));
    EXPECT_TRUE(Succeeds(empty->InsertTemporary("Note", second)));
    EXPECT_EQ(first->RefCount(), 2);
    EXPECT_EQ(second->RefCount(), 1);
}

TEST_F(EmptyTransactionTest, ACommitGoesToTheCurrentRegistry) {
    EXPECT_EQ(empty->Base(), embankment.registry.get());
    ASSERT_TRUE(Succeeds(empty->Find("Project.Title")->Set(L"New dam")));
    ASSERT_TRUE(empty->Find("Borehole.Remark"));
    EXPECT_TRUE(Succeeds(empty->Commit("", "")));
    EXPECT_EQ(model.project.title, L"New dam");
    EXPECT_EQ(borehole.remark, L"") << "staged empty";
    EXPECT_EQ(borehole.depth, 3) << "not staged";
}

TEST_F(EmptyTransactionTest, ATransactionOnItCommitsToItsSource) {
    Transaction const nested = empty->CreateTransaction();
    EXPECT_EQ(nested->Source(), empty.get());
    EXPECT_EQ(nested->Base(), embankment.registry.get());
    H const title = nested->Find("Project.Title");
    EXPECT_EQ(TextOf(title), L"");
    ASSERT_TRUE(Succeeds(title->Set(L"New dam")));
    EXPECT_EQ(TextOf(empty->Find("Project.Title")), L"");
    EXPECT_TRUE(Succeeds(nested->Commit("", "")));
    EXPECT_EQ(model.project.title, L"New dam");
}

TEST_F(EmptyTransactionTest, ATransactionOnItMakesElements) {
    Transaction const nested = empty->CreateTransaction();
    ASSERT_TRUE(Succeeds(nested->Find("Regions")->SetLength(2)));
    ASSERT_TRUE(Succeeds(nested->Find("Regions[1].Soil")->Set(3)));
    EXPECT_EQ(TextOf(nested->Find("Regions[0].Soil")), L"0");
    EXPECT_TRUE(Succeeds(nested->Commit("", "")));
    ASSERT_EQ(model.regions.size(), 2u);
    EXPECT_EQ(model.regions[1].soil, 3);
    EXPECT_EQ(model.regions[0].soil, 0);
}

TEST_F(EmptyTransactionTest, APinnedOneOutlivesItsHandles) {
    ZOEmptyTransaction pinned(htl::handle<zo::ZOSet>(embankment.registry), true);
    { htl::handle<zo::ZOSet> const handle(&pinned); }
    EXPECT_EQ(pinned.RefCount(), 1);
    EXPECT_TRUE(pinned.Find("Project.Title"));
}

} // namespace
} // namespace staging
