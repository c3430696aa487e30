#include "Common/model/ZOAccessTrait.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/Embankment.h"

#include "Common/model/ZOArray.h"

#include "support/describe.h"

#include <limits>
#include <string>
#include <vector>

namespace {

using namespace embankment;
using zo::Find;
using zo::H;
using zo::IZO;
using zo::impl::NodeAccess;
using zo::ZOError::not_supported;

/// A client's node with nothing of its own.
class PlainNode : public IZO {
public:
    using IZO::IZO;
    PlainNode() : IZO(npos, nullptr, npos) {}
    IZO* Clone() override { return new PlainNode(RegID(), Owner(), npos); }
};

class NodeTest : public EmbankmentTest {};

TEST_F(NodeTest, ANewNodeHasTheGivenIdentityAndNoReferences) {
    PlainNode* const raw = new PlainNode(3, embankment.registry.get(), IZO::npos);
    EXPECT_EQ(raw->RefCount(), 0);
    H const node(raw);
    EXPECT_EQ(node->RegID(), 3u);
    EXPECT_EQ(node->Owner(), embankment.registry.get());
    EXPECT_EQ(node->OwnerID(), IZO::npos);
    EXPECT_EQ(node->RefCount(), 1);
}

TEST_F(NodeTest, ACopyHasTheSameIdentityAndNoReferences) {
    H const original(new PlainNode(3, nullptr, 5));
    PlainNode* const raw = new PlainNode(static_cast<PlainNode const&>(*original));
    EXPECT_EQ(raw->RefCount(), 0);
    H const copy(raw);
    EXPECT_EQ(copy->RegID(), 3u);
    EXPECT_EQ(copy->OwnerID(), 5u);
}

TEST_F(NodeTest, AssignmentCopiesTheIdentityAndLeavesTheCount) {
    H const left(new PlainNode);
    H const second = left;
    H const right(new PlainNode(3, nullptr, 5));
    static_cast<PlainNode&>(*left) = static_cast<PlainNode const&>(*right);
    EXPECT_EQ(left->RegID(), 3u);
    EXPECT_EQ(left->OwnerID(), 5u);
    EXPECT_EQ(left->RefCount(), 2);
}

TEST_F(NodeTest, ACopyThatDiesLeavesTheOriginalsEntry) {
    H const original(new PlainNode);
    ASSERT_TRUE(Succeeds(embankment.registry->InsertTemporary("Loose", original)));
    { H const copy(new PlainNode(static_cast<PlainNode const&>(*original))); }
    EXPECT_EQ(original->Name(), "Loose");
    EXPECT_EQ(Find("Loose"), original);
}

TEST_F(NodeTest, ADyingNodeTakesItsEntryAlongAndTrimsThePlaces) {
    auto const& order = embankment.registry->Impl()->entryOrder;
    std::size_t const before = order.size();
    H first(new PlainNode);
    H second(new PlainNode);
    ASSERT_TRUE(Succeeds(embankment.registry->InsertTemporary("First", first)));
    ASSERT_TRUE(Succeeds(embankment.registry->InsertTemporary("Second", second)));
    ASSERT_EQ(order.size(), before + 2);
    first.release();
    EXPECT_EQ(order.size(), before + 2) << "a free place in the middle stays";
    EXPECT_FALSE(Find("First"));
    EXPECT_EQ(Find("Second"), second);
    second.release();
    EXPECT_EQ(order.size(), before);
    EXPECT_FALSE(Find("Second"));
}

TEST_F(NodeTest, HasOneEvent) {
    EXPECT_STREQ(IZO::EventName(IZO::Changed), "!Changed");
    EXPECT_STREQ(IZO::evName[0], "!Changed");
}

TEST_F(NodeTest, SeparatorsOfNamesAreFixed) {
    EXPECT_EQ((std::string{IZO::chSeparator, IZO::chArrayOpen, IZO::chArrayClose, IZO::chAttribute, IZO::chFuncOpen,
                           IZO::chFuncClose, IZO::chLink, IZO::chSub}),
              ".[]:()@$");
    EXPECT_EQ(IZO::npos, std::numeric_limits<std::size_t>::max());
}

TEST_F(NodeTest, AStructureIsNeverDefaultOrUndefined) {
    embankment.model.soils[0] = {};
    EXPECT_FALSE(Find("Soils[0]")->IsDefault());
    EXPECT_FALSE(Find("Soils[0]")->IsUndefined());
}

TEST_F(NodeTest, ANodeWithoutADescriptorIsNeitherDefaultNorUndefined) {
    H const root = embankment.registry->Root();
    EXPECT_FALSE(root->IsDefault());
    EXPECT_FALSE(root->IsUndefined());
}

TEST_F(NodeTest, AnArrayIsDefaultExactlyWhenItIsEmpty) {
    EXPECT_FALSE(Find("Soils")->IsDefault());
    EXPECT_FALSE(Find("Soils")->IsUndefined());
    embankment.model.soils.assign(1, Soil{});
    EXPECT_FALSE(Find("Soils")->IsDefault()) << "elements don't count";
    embankment.model.soils.clear();
    EXPECT_TRUE(Find("Soils")->IsDefault());
    EXPECT_TRUE(Find("Soils")->IsUndefined());
}

TEST_F(NodeTest, AValueIsUndefinedWhenItIsMissing) {
    H const cohesion = Find("Soils[0].Cohesion");
    EXPECT_FALSE(cohesion->IsUndefined());
    embankment.model.soils[0].cohesion = std::numeric_limits<double>::max();
    EXPECT_TRUE(cohesion->IsUndefined());
}

TEST_F(NodeTest, GetAndSetWithoutAValueFailWithTheTypeName) {
    H const soil = Find("Soils[0]");
    htl::status const expected = not_supported("embankment::Soil");
    double number = 5;
    htl::Int64 whole = 5;
    bool truth = true;
    std::wstring text = L"before";
    EXPECT_TRUE(FailsAs(soil->Get(number), expected));
    EXPECT_TRUE(FailsAs(soil->Get(whole), expected));
    EXPECT_TRUE(FailsAs(soil->Get(truth), expected));
    EXPECT_TRUE(FailsAs(soil->Get(text), expected));
    EXPECT_EQ(number, 5);
    EXPECT_EQ(whole, 5);
    EXPECT_EQ(truth, true);
    EXPECT_EQ(text, L"before");
    EXPECT_TRUE(FailsAs(soil->Set(1.5), expected));
    EXPECT_TRUE(FailsAs(soil->Set(1), expected));
    EXPECT_TRUE(FailsAs(soil->Set(true), expected));
    EXPECT_TRUE(FailsAs(soil->Set(L"clay"), expected));
}

TEST_F(NodeTest, RunAssignAndResizeOfTheBaseFailWithoutAnArgument) {
    H const node(new PlainNode);
    EXPECT_TRUE(FailsAs(node->Run(), not_supported("")));
    EXPECT_TRUE(FailsAs(node->Assign(node), not_supported("")));
    EXPECT_TRUE(FailsAs(NodeAccess::Resize(*node, 7), not_supported("")));
}

TEST_F(NodeTest, AValueTraitIsNotSupportedByTheBase) {
    struct Trait : zo::IZOAccessValueTypeTrait {
        htl::status CallValueTypeTrait(void*) override { return {}; }
    } trait;
    H const node(new PlainNode);
    EXPECT_TRUE(FailsAs(NodeAccess::CallValueTypeTrait(*node, trait), not_supported("<IZO>")));
}

TEST_F(NodeTest, TheBaseIsValidOfLengthOneAndClearsNothing) {
    H const node(new PlainNode);
    EXPECT_TRUE(Succeeds(node->Verify()));
    EXPECT_EQ(node->Length(), 1u);
    node->Clear();
    NodeAccess::OnInvalidateMemory(*node);
    EXPECT_EQ(node->RegID(), IZO::npos);
}

TEST_F(NodeTest, ANodeWithoutARowPersistsNot) {
    H const node(new PlainNode);
    EXPECT_EQ(node->GetPersistTraits().Type, static_cast<std::uint32_t>(meta::MetaPersistTraits::No));
    EXPECT_EQ(node->Tag(), L"");
}

TEST_F(NodeTest, TagIsThatOfThePersistTraits) {
    EXPECT_EQ(Find("Soils[0].Cohesion")->Tag(), L"Cohesion");
    EXPECT_EQ(Find("Soils")->Tag(), L"Soils");
}

TEST_F(NodeTest, EmptyCloneOfTheBaseClones) {
    H const node(new PlainNode(3, nullptr, 5));
    H const clone(node->EmptyClone());
    EXPECT_NE(clone, node);
    EXPECT_EQ(clone->RegID(), 3u);
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
}

TEST_F(NodeTest, OnlyAtomicTypesAreValueTypes) {
    EXPECT_TRUE(Find("Soils[0].Name")->IsValueType());
    EXPECT_TRUE(Find("Soils[0].Drainage")->IsValueType());
    EXPECT_FALSE(Find("Soils[0]")->IsValueType());
    EXPECT_FALSE(Find("Soils")->IsValueType());
    EXPECT_FALSE(embankment.registry->Root()->IsValueType());
}

TEST_F(NodeTest, AFreshCloneHasNoNameAndItsRegisteredSubName) {
    H const clone(Find("Soils[0].Cohesion")->Clone());
    EXPECT_EQ(clone->Name(), "");
    EXPECT_EQ(clone->ParentName(), "");
    EXPECT_EQ(clone->SubName(), "Cohesion");
}

TEST_F(NodeTest, AnElementIsNamedByItsIndex) {
    H const soil = Find("Soils[2]");
    EXPECT_EQ(soil->Name(), "Soils[2]");
    EXPECT_EQ(soil->SubName(), "2");
    EXPECT_EQ(soil->ParentName(), "Soils");
    H const clone(soil->Clone());
    EXPECT_EQ(clone->SubName(), "") << "an index is known by an entry alone";
}

TEST_F(NodeTest, AMembersParentIsTheNameBeforeTheLastPoint) {
    EXPECT_EQ(Find("Project.Title")->ParentName(), "Project");
    EXPECT_EQ(Find("Project.Title")->SubName(), "Title");
    EXPECT_EQ(Find("Project")->ParentName(), "");
    EXPECT_EQ(Find("Soils[1].Anisotropy[2]")->ParentName(), "Soils[1].Anisotropy");
}

TEST_F(NodeTest, NamesCompareByTheirBytes) {
    H const first = Find("Soils[0]");
    H const second = Find("Soils[1]");
    EXPECT_EQ(first->CompareName(*second), -1);
    EXPECT_EQ(second->CompareName(*first), 1);
    EXPECT_EQ(first->CompareName(*first), 0);
    H const capital(new PlainNode);
    H const accented(new PlainNode);
    ASSERT_TRUE(Succeeds(embankment.registry->InsertTemporary("Z", capital)));
    ASSERT_TRUE(Succeeds(embankment.registry->InsertTemporary("\xC3\xA9", accented)));
    EXPECT_EQ(capital->CompareName(*accented), -1) << "bytes have no sign";
}

TEST_F(NodeTest, NamesOfNodesWithoutAnEntryCompareEqual) {
    H const a(Find("Soils[0].Cohesion")->Clone());
    H const b(Find("Soils[1].Friction")->Clone());
    EXPECT_EQ(a->CompareName(*b), 0);
    EXPECT_EQ(a->CompareName(*Find("Soils")), 0);
}

TEST_F(NodeTest, ThePresentLengthSucceedsOnEveryNode) {
    EXPECT_TRUE(Succeeds(Find("Project.Title")->SetLength(1)));
    EXPECT_TRUE(FailsAs(Find("Project.Title")->SetLength(2), not_supported("")));
    EXPECT_TRUE(Succeeds(Find("Soils[0].Anisotropy")->SetLength(3)));
}

TEST_F(NodeTest, PushBackAppendsACopy) {
    H value = Find("Regions[0].Soil");
    ASSERT_TRUE(Succeeds(value->Set(9)));
    // The view of the value lies in the array of regions, not in the array that grows.
    EXPECT_TRUE(Succeeds(Find("Regions[0].Points")->PushBack(value)));
    EXPECT_EQ(embankment.model.regions[0].points, (std::vector<int>{1, 2, 3, 9}));
}

TEST_F(NodeTest, PushBackWithoutResizeFailsBeforeAnyLookup) {
    H value = Find("Regions[0].Soil");
    EXPECT_TRUE(FailsAs(Find("Project.Title")->PushBack(value), not_supported("")));
}

TEST_F(NodeTest, PushBackOfAnotherTypeLeavesTheArrayLonger) {
    H value = Find("WaterTable.UnitWeight");
    EXPECT_TRUE(FailsAs(Find("Regions[0].Points")->PushBack(value), not_supported("")));
    EXPECT_EQ(embankment.model.regions[0].points, (std::vector<int>{1, 2, 3, 0}));
}

TEST_F(NodeTest, PushBackReportsAnElementThatIsNotFound) {
    H const clone(Find("Regions[0].Points")->Clone()); // no entry: its elements have no name to be found by
    H value = Find("Regions[0].Soil");
    EXPECT_TRUE(FailsAs(clone->PushBack(value), zo::ZOError::not_found("[3]")));
    EXPECT_EQ(clone->Length(), 4u);
}

TEST_F(NodeTest, AWalkShowsTheChildrenInTheOrderOfRegistration) {
    H const soil = Find("Soils[1]");
    std::vector<std::string> names;
    for (zo::ZOFwrdIterator at = soil->begin(); !(at == soil->end()); ++at) names.push_back((*at)->SubName());
    EXPECT_EQ(names, (std::vector<std::string>{"Name", "Cohesion", "Friction", "UnitWeight", "Drainage", "Color",
                                               "Anisotropy"}));
}

TEST_F(NodeTest, AWalkHoldsTheParentAndTheRow) {
    H const soil = Find("Soils[1]");
    zo::ZOFwrdIterator at = soil->begin();
    EXPECT_EQ(at.parent, soil);
    EXPECT_EQ(at.subID, at.current->RegID());
    EXPECT_EQ(at.index, 0u);
    while (at.current) ++at;
    EXPECT_EQ(at.subID, IZO::npos);
    ++at;
    EXPECT_FALSE(at.current);
    EXPECT_EQ(at.subID, IZO::npos);
}

TEST_F(NodeTest, TheEndIsEmpty) {
    zo::ZOFwrdIterator const end = Find("Soils")->end();
    EXPECT_FALSE(end.current);
    EXPECT_FALSE(end.parent);
    EXPECT_EQ(end.subID, IZO::npos);
    EXPECT_EQ(end.index, 0u);
}

TEST_F(NodeTest, AStepWithoutAParentOnlyEmptiesTheCurrentNode) {
    zo::ZOFwrdIterator at;
    at.current = Find("Soils");
    at.subID = 7;
    at.index = 5;
    ++at;
    EXPECT_FALSE(at.current);
    EXPECT_EQ(at.subID, 7u);
    EXPECT_EQ(at.index, 5u);
}

TEST_F(NodeTest, ANodeWithoutARowHasNoChildren) {
    H const node(new PlainNode);
    zo::ZOFwrdIterator const first = node->begin();
    EXPECT_TRUE(first == node->end());
    EXPECT_EQ(first.parent, node);
    EXPECT_FALSE(NodeAccess::GetSubZO(*node, "Title"));
}

TEST(NodeWalk, PassesByChildrenWhoseStoresAreAbsent) {
    htl::handle<zo::ODS> first, second, third;
    Embankment project([&](Embankment& rows) {
        auto const child = [&](char const* name, wchar_t const* tag) {
            return rows.Row(name, ValuePrototype<double>(CohesionTraits()), {meta::MetaPersistTraits::No, tag},
                            CohesionTraits());
        };
        rows.Row("Loads", H(new zo::ZOStructClone(IZO::npos, nullptr)), {meta::MetaPersistTraits::No, L"Loads"},
                 meta::StructureBuilder<Point>().Build());
        first = child("Loads.Dead", L"Dead");
        second = child("Loads.Live", L"Live");
        third = child("Loads.Wind", L"Wind");
    });
    auto const names = [] {
        std::vector<std::string> found;
        H const loads = Find("Loads");
        for (zo::ZOFwrdIterator at = loads->begin(); at.current; ++at) found.push_back(at.current->SubName());
        return found;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(names(), (Names{"Dead", "Live", "Wind"}));
    first->SetAvailable(false);
    EXPECT_EQ(names(), (Names{"Live", "Wind"}));
    third->SetAvailable(false);
    EXPECT_EQ(names(), (Names{"Live"}));
    second->SetAvailable(false);
    H const loads = Find("Loads");
    EXPECT_TRUE(loads->begin() == loads->end());
    EXPECT_EQ(loads->begin().parent, loads);
}

TEST_F(NodeTest, ASubNameMatchesWhole) {
    H const soil = Find("Soils[0]");
    EXPECT_FALSE(NodeAccess::GetSubZO(*soil, "Cohes"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*soil, "Cohesions"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*soil, ""));
    EXPECT_TRUE(NodeAccess::GetSubZO(*soil, "Cohesion"));
}

TEST_F(NodeTest, AChildOfADetachedStructureIsADetachedDefault) {
    H const clone(Find("Soils[0]")->Clone());
    H const cohesion = NodeAccess::GetSubZO(*clone, "Cohesion");
    EXPECT_EQ(TextOf(cohesion), L"0");
    EXPECT_TRUE(dynamic_cast<zo::ZOAtomicData<double>*>(cohesion.get()));
}

TEST_F(NodeTest, AComputedChildHasTheValueOfTheMoment) {
    EXPECT_EQ(TextOf(Find("Summary.SoilCount")), L"3");
    embankment.model.soils.pop_back();
    EXPECT_EQ(TextOf(Find("Summary.SoilCount")), L"2");
    EXPECT_EQ(TextOf(Find("Summary.MeanCohesion")), L"12.5");
}

TEST_F(NodeTest, ABranchThatIsAwayIsNotFound) {
    EXPECT_EQ(TextOf(Find("Results.Slips[0].FactorOfSafety")), L"1.25");
    embankment.ShowResults(false);
    EXPECT_FALSE(Find("Results.Slips[0].FactorOfSafety"));
    embankment.ShowResults(true);
    EXPECT_EQ(TextOf(Find("Results.Slips[1].FactorOfSafety")), L"1.5");
    embankment.ShowWaterTable(false);
    EXPECT_FALSE(Find("WaterTable"));
}

TEST_F(NodeTest, WholeNumbersAndLiteralsFindTheirSet) {
    H const soil = Find("Regions[0].Soil");
    EXPECT_TRUE(Succeeds(soil->Set(short(2))));
    EXPECT_EQ(embankment.model.regions[0].soil, 2);
    EXPECT_TRUE(Succeeds(soil->Set(3u)));
    EXPECT_EQ(embankment.model.regions[0].soil, 3);
    EXPECT_TRUE(Succeeds(soil->Set(L"4")));
    EXPECT_EQ(embankment.model.regions[0].soil, 4);
    EXPECT_TRUE(soil->Set(~htl::UInt64(0)).Is(90007));
    EXPECT_EQ(embankment.model.regions[0].soil, 4);
    H const title = Find("Project.Title");
    EXPECT_TRUE(Succeeds(title->Set(static_cast<wchar_t const*>(nullptr))));
    EXPECT_EQ(embankment.model.project.title, L"");
}

} // namespace
