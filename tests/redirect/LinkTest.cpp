// Links: values that refer to a record, with the record's fields below them.
#include "tests/redirect/Records.h"

#include "support/text.h"

#include <limits>
#include <utility>

namespace {

using namespace records;

using LinkTest = RecordsTest;

zo::ZOLink* AsLink(H const& node) { return dynamic_cast<zo::ZOLink*>(node.get()); }

/// A link to one name.
class Door : public zo::ZOWrapperLinkBase {
public:
    Door(std::string target, std::size_t regID = npos, zo::ZOSet* owner = nullptr)
        : ZOWrapperLinkBase(regID, owner, rows::StructureTraits(), nullptr, {}), target(std::move(target)) {}
    std::string RedirectName() const override { return target; }
    IZO* Clone() override { return new Door(target, RegID(), Owner()); }
    IZO* RemapClone(void*, htl::handle<zo::ZOMemMgr> const&) override { return Clone(); }

private:
    std::string target;
};

/// A link that finds its record without a name.
class Passage : public Door {
public:
    explicit Passage(H target) : Door(""), target(std::move(target)) {}
    H Redirect() const override { return target; }

private:
    H target;
};

/// Registers a door; a view needs memory, which a door never reads.
void AddDoor(rows::OwnRegistry& registry, std::string const& name, std::string const& target) {
    static char memory;
    registry.Add(name, H(new Door(target)), str::as_wstring(name), rows::StructureTraits(), &memory);
}

std::vector<std::string> NamesBelow(H const& node) {
    std::vector<std::string> found;
    for (zo::ZOFwrdIterator at = node->begin(); at.current; ++at) found.push_back(NameOf(at.current));
    return found;
}

TEST_F(LinkTest, ALinkIsAValueLikeAnyOther) {
    H const link = zo::Find("Regions[0].Material");
    EXPECT_EQ(TextOf(link), L"2");
    EXPECT_TRUE(Succeeds(link->Set(4)));
    EXPECT_EQ(model.regions[0].material, 4);
    EXPECT_TRUE(link->IsValueType());
    EXPECT_EQ(NameOf(link), "Regions[0].Material");
}

TEST_F(LinkTest, ALinkTakesOverTheNumberOfAnother) {
    EXPECT_TRUE(Succeeds(zo::Find("Regions[0].Material")->Assign(zo::Find("Regions[1].Material"))));
    EXPECT_EQ(model.regions[0].material, 4);
}

TEST_F(LinkTest, BelowALinkStandTheFieldsOfTheRecord) {
    H const cohesion = zo::Find("Regions[0].Material.Cohesion");
    EXPECT_EQ(TextOf(cohesion), L"25");
    EXPECT_EQ(NameOf(cohesion), "Materials[1].Cohesion");
    EXPECT_TRUE(Succeeds(cohesion->Set(30.0)));
    EXPECT_EQ(model.materials[1].cohesion, 30);
}

TEST_F(LinkTest, FieldsOfTheRecordAreFoundByTagToo) {
    EXPECT_EQ(NameOf(zo::FindTag(zo::Find("Regions[0].Material"), L"Cohesion")), "Materials[1].Cohesion");
}

TEST_F(LinkTest, TheLinkSignIsTheRecordItself) {
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.@")), "Materials[1]");
    EXPECT_EQ(NameOf(AsLink(zo::Find("Regions[0].Material"))->LinkGetSubZO("@")), "Materials[1]");
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.@.Name")), "Materials[1].Name");
}

TEST_F(LinkTest, OnlyTheSignAloneIsTheRecord) {
    EXPECT_FALSE(zo::Find("Regions[0].Material.@@"));
    EXPECT_FALSE(zo::Find("Regions[0].Material.@Name"));
}

TEST_F(LinkTest, ALinkLeadsToWhateverItsNumberSaysNow) {
    H const link = zo::Find("Regions[0].Material");
    EXPECT_EQ(NameOf(AsLink(link)->Redirect()), "Materials[1]");
    model.regions[0].material = 4;
    EXPECT_EQ(NameOf(AsLink(link)->Redirect()), "Materials[3]");
    EXPECT_EQ(TextOf(zo::Find(link, "Name")), L"Rock");
}

TEST_F(LinkTest, ARecordHasNoFieldThatItsTypeLacks) { EXPECT_FALSE(zo::Find("Regions[0].Material.Porosity")); }

TEST_F(LinkTest, BehindALinkToNothingIsNothing) {
    // No record, a negative number, the number after the last record, the largest number.
    for (int const number : {0, -1, 5, std::numeric_limits<int>::max()}) {
        model.regions[0].material = number;
        H const link = zo::Find("Regions[0].Material");
        EXPECT_FALSE(AsLink(link)->Redirect()) << number;
        EXPECT_FALSE(zo::Find("Regions[0].Material.Cohesion")) << number;
        EXPECT_FALSE(zo::Find("Regions[0].Material.@")) << number;
        EXPECT_FALSE(link->begin().current) << number;
    }
}

TEST_F(LinkTest, ANumberOfMoreThan32BitsIsNoRecord) {
    model.site.foundation = 0x100000002;
    EXPECT_FALSE(zo::Find("Site.Foundation.Name")) << "the low 32 bits are those of another material";
    model.site.foundation = std::numeric_limits<Int64>::min() + 2;
    EXPECT_FALSE(zo::Find("Site.Foundation.Name"));
    model.site.foundation = 2;
    EXPECT_EQ(TextOf(zo::Find("Site.Foundation.Name")), L"Clay");
}

TEST_F(LinkTest, ALinkWithoutNamesLeadsNowhere) {
    H const link = zo::Find("Profiles[0].Wells[0].Next");
    EXPECT_EQ(TextOf(link), L"2");
    EXPECT_EQ(AsLink(link)->RedirectName(), "");
    EXPECT_FALSE(zo::Find("Profiles[0].Wells[0].Next.@"));
}

TEST_F(LinkTest, ALinkHoldsItsNamesAliveBeyondItsRow) {
    int number = 2;
    records::NamesHandle own(new records::NamesBy([](GGID const&, zo::ZOSet&) { return "Site"; }));
    H const link(new zo::ZOWrapperLink<int>(IZO::npos, &*registry, LinkTraits<int>(materialGroup), &number, {}, own));
    ASSERT_EQ(own->RefCount(), 2);
    own.release();
    EXPECT_EQ(NameOf(AsLink(link)->Redirect()), "Site");
}

TEST_F(LinkTest, ALinkWithoutGroupLeadsNowhere) {
    int number = 2;
    H const link(new zo::ZOWrapperLink<int>(IZO::npos, &*registry, meta::AtomicTraits<int>(), &number, {}, names));
    EXPECT_EQ(AsLink(link)->RedirectName(), "");
}

TEST_F(LinkTest, ALinkWithoutMemoryLeadsNowhere) {
    H const link = LinkPrototype<int>(LinkTraits<int>(materialGroup));
    EXPECT_EQ(AsLink(link)->RedirectName(), "");
}

TEST_F(LinkTest, TheNameIsAskedWithTheRecordAndTheOwner) {
    GGID record;
    zo::ZOSet* set = nullptr;
    records::NamesHandle const noted(new records::NamesBy([&](GGID const& asked, zo::ZOSet& where) {
        record = asked;
        set = &where;
        return std::string("Site");
    }));
    int number = 9;
    MetaDataTraits const traits = LinkTraits<int>(regionGroup);
    H const loose(new zo::ZOWrapperLink<int>(IZO::npos, nullptr, traits, &number, {}, noted));
    EXPECT_EQ(NameOf(AsLink(loose)->Redirect()), "Site");
    EXPECT_EQ(record, (GGID{regionGroup, 9}));
    EXPECT_EQ(set, &*registry) << "the current registry, where there is no owner";

    auto const transaction = registry->CreateTransaction();
    H const owned(new zo::ZOWrapperLink<int>(IZO::npos, transaction.get(), traits, &number, {}, noted));
    EXPECT_EQ(AsLink(owned)->Redirect()->Owner(), transaction.get());
    EXPECT_EQ(set, transaction.get());
}

TEST_F(LinkTest, AWalkOverALinkIsAWalkOverTheRecord) {
    registry->OnPostRegistration();
    std::vector<std::string> const expected{"Materials[1].ID", "Materials[1].Name", "Materials[1].Cohesion",
                                            "Materials[1].Substitute"};
    EXPECT_EQ(NamesBelow(zo::Find("Regions[0].Material")), expected);
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material")->begin().parent), "Materials[1]");
}

TEST_F(LinkTest, AStepWithoutParentEndsTheWalk) {
    H const link = zo::Find("Regions[0].Material");
    zo::ZOFwrdIterator position;
    position.current = zo::Find("Site");
    position.subID = 3;
    AsLink(link)->LinkGetNextSubZO(position);
    EXPECT_FALSE(position.current);
    EXPECT_EQ(position.subID, IZO::npos);
}

TEST_F(LinkTest, AWalkThatStandsOnTheLinkItselfEnds) {
    zo::ZOFwrdIterator position;
    position.parent = zo::Find("Regions[0].Material");
    position.current = zo::Find("Site");
    ++position;
    EXPECT_FALSE(position.current);
}

TEST_F(LinkTest, OwnChildrenHideThoseOfTheRecord) {
    double factor = 1.5;
    MetaDataTraits const& number = meta::AtomicTraits<double>();
    registry.Add("Regions.[].Material.Cohesion", ValuePrototype<double>(number), L"Cohesion", number, &factor);
    EXPECT_EQ(TextOf(zo::Find("Regions[0].Material.Cohesion")), L"1.5");
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.Cohesion")), "Regions[0].Material.Cohesion");
    EXPECT_EQ(TextOf(zo::Find("Regions[0].Material.Name")), L"Clay");
}

TEST_F(LinkTest, AnOwnChildMayTakeTheSign) {
    registry.AddPlain("Regions.[].Material.@", L"");
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.@")), "Regions[0].Material.@");
}

TEST_F(LinkTest, ALinkToNothingKeepsItsOwnChildren) {
    registry.AddPlain("Regions.[].Material.Note", L"Note");
    model.regions[0].material = 0;
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.Note")), "Regions[0].Material.Note");
}

TEST_F(LinkTest, APrototypeLeadsNowhere) {
    // Its memory is the offset 4: reading it would crash.
    H const prototype(zo::GetTemplate("Materials.[].Substitute"));
    ASSERT_TRUE(AsLink(prototype));
    EXPECT_EQ(AsLink(prototype)->RedirectName(), "");
    EXPECT_FALSE(AsLink(prototype)->Redirect());
    EXPECT_FALSE(prototype->begin().current);
    EXPECT_FALSE(NodeAccess::GetSubZO(*prototype, "Cohesion"));
    EXPECT_TRUE(prototype->IsUndefined());
}

TEST_F(LinkTest, APrototypeClonesToItsDefault) {
    H const clone(zo::GetTemplate("Materials.[].Substitute")->Clone());
    EXPECT_EQ(TextOf(clone), L"0");
}

TEST_F(LinkTest, ADetachedLinkIsItsNumberAlone) {
    H const clone(zo::Find("Regions[0].Material")->Clone());
    EXPECT_EQ(TextOf(clone), L"2");
    EXPECT_FALSE(AsLink(clone));
    EXPECT_TRUE(Succeeds(clone->Set(3)));
    EXPECT_EQ(model.regions[0].material, 2);
    EXPECT_TRUE(zo::IsLinkField(clone));
    EXPECT_EQ(zo::GetLink(clone, zo::Link::AsStored), (GGID{materialGroup, 3}));
    EXPECT_TRUE(Succeeds(zo::Find("Regions[0].Material")->Assign(clone)));
    EXPECT_EQ(model.regions[0].material, 3);
}

TEST_F(LinkTest, AnEmptyCloneHasTheDefault) {
    H const clone(zo::Find("Regions[0].Material")->EmptyClone());
    EXPECT_EQ(TextOf(clone), L"") << "0 is this link's missing value";
    EXPECT_EQ(zo::GetLink(clone, zo::Link::AsStored), (GGID{materialGroup, 0}));
}

TEST_F(LinkTest, ElementsOfAnArrayMayBeLinks) {
    model.site.layers = {1, 4};
    EXPECT_EQ(NameOf(zo::Find("Site.Layers[1].Cohesion")), "Materials[3].Cohesion");
    EXPECT_EQ(TextOf(zo::Find("Site.Layers")), L"1,4");
    EXPECT_TRUE(Succeeds(zo::Find("Site.Layers")->Set(L"2,3,1")));
    EXPECT_EQ(model.site.layers, (std::vector<unsigned>{2, 3, 1}));
    EXPECT_EQ(NameOf(zo::Find("Site.Layers[2].@")), "Materials[0]");
}

TEST_F(LinkTest, ADerivedLinkMaySupplyItsRecordDirectly) {
    H const link(new Passage(zo::Find("Materials[2]")));
    EXPECT_EQ(NameOf(AsLink(link)->LinkGetSubZO("Name")), "Materials[2].Name");
    EXPECT_EQ(NameOf(AsLink(link)->LinkGetSubZO("@")), "Materials[2]");
}

TEST_F(LinkTest, ChildrenOfARecordWithoutOwnerHaveNone) {
    Material loose{9, L"Peat", 3, 0};
    H const link(new Passage(zo::GetWrapper(rows::RowOf("Materials.[]"), &loose)));
    H const name = AsLink(link)->LinkGetSubZO("Name");
    EXPECT_EQ(TextOf(name), L"Peat");
    EXPECT_EQ(name->Owner(), nullptr);
}

TEST_F(LinkTest, ACopyLeadsOnFromItsOwnOwner) {
    auto const transaction = registry->CreateTransaction();
    H copy, moved;
    {
        H const original(new Door("Materials[2]"));
        auto& door = static_cast<Door&>(*original);
        copy = H(new Door(door));
        moved = H(new Door(std::move(door)));
    }
    NodeAccess::SetOwner(*copy, transaction.get(), IZO::npos);
    EXPECT_EQ(AsLink(copy)->Redirect()->Owner(), transaction.get());
    EXPECT_EQ(AsLink(moved)->Redirect()->Owner(), &*registry) << "the original has ended, and its owner was no set";
    NodeAccess::SetOwner(*copy, nullptr, IZO::npos);
}

// ---- Circles

TEST_F(LinkTest, ADeepNameFollowsACircleToItsEnd) {
    // Fill and clay are each other's substitute.
    std::string byFields = "Materials[0]", bySigns = "Materials[0]";
    for (int i = 0; i < 501; ++i) {
        byFields += ".Substitute";
        bySigns += ".Substitute.@";
    }
    EXPECT_EQ(NameOf(zo::Find(byFields)), "Materials[0].Substitute") << "an even number of circles, then the field";
    EXPECT_EQ(NameOf(zo::Find(bySigns)), "Materials[1]");
    EXPECT_EQ(TextOf(zo::Find(bySigns + ".Name")), L"Clay");
}

TEST_F(LinkTest, ALinkToItselfHasNoFields) {
    AddDoor(registry, "Door", "Door");
    EXPECT_FALSE(zo::Find("Door.Name"));
    EXPECT_FALSE(zo::Find("Door")->begin().current);
    EXPECT_EQ(NameOf(zo::Find("Door.@")), "Door");
}

TEST_F(LinkTest, LinksToEachOtherHaveNoFields) {
    AddDoor(registry, "North", "South");
    AddDoor(registry, "South", "North");
    EXPECT_FALSE(zo::Find("North.Name"));
    EXPECT_FALSE(zo::Find("North")->begin().current);
    EXPECT_EQ(NameOf(zo::Find("North.@")), "South");
}

TEST_F(LinkTest, ALinkWhoseRecordIsFoundThroughItselfLeadsNowhere) {
    AddDoor(registry, "Door", "Door.Name");
    EXPECT_FALSE(zo::Find("Door.Name"));
    EXPECT_FALSE(zo::Find("Door")->begin().current);
}

TEST_F(LinkTest, ALinkMayLeadToALink) {
    AddDoor(registry, "North", "Regions[0].Material");
    EXPECT_EQ(NameOf(zo::Find("North.Cohesion")), "Materials[1].Cohesion");
    EXPECT_EQ(NameOf(zo::Find("North.@")), "Regions[0].Material");
    EXPECT_EQ(NameOf(zo::Find("North.@.@")), "Materials[1]");
}

TEST_F(LinkTest, TheWalkOverAllNodesDoesNotGoThroughLinks) {
    registry->OnPostRegistration();
    int links = 0, names = 0, steps = 0;
    for (zo::ZORegistryIterator at = registry->begin(); !(at == registry->end()) && steps < 1000; ++at, ++steps) {
        if (at->SubName() == "Substitute") ++links;
        if (at->SubName() == "Name") ++names;
    }
    EXPECT_EQ(links, 4);
    EXPECT_EQ(names, 4) << "each material once, although six links lead to them";
}

// ---- What ends while a link lives

TEST_F(LinkTest, ARemovedRecordIsGoneAtTheNextStep) {
    H const link = zo::Find("Regions[1].Material");
    EXPECT_EQ(NameOf(zo::Find(link, "@")), "Materials[3]");
    model.materials.pop_back();
    EXPECT_FALSE(zo::Find(link, "@"));
    EXPECT_EQ(TextOf(link), L"4");
}

TEST_F(LinkTest, RecordsWhoseStoreIsAwayAreNotFound) {
    H const link = zo::Find("Regions[0].Material");
    materials->SetObject(nullptr);
    materials->SetAvailable(false);
    EXPECT_FALSE(zo::Find(link, "Name"));
    EXPECT_FALSE(link->begin().current);
    materials->SetObject(&model.materials);
    EXPECT_EQ(TextOf(zo::Find(link, "Name")), L"Clay");
}

TEST_F(LinkTest, AWalkGoesOnAtTheRecordThatItBeganWith) {
    registry->OnPostRegistration();
    zo::ZOFwrdIterator at = zo::Find("Regions[0].Material")->begin();
    model.regions[0].material = 0;
    ++at;
    EXPECT_EQ(NameOf(at.current), "Materials[1].Name");
}

TEST(LinkLifeTest, ALinkOutlivesItsRegistryAsAValue) {
    int number = 2;
    MetaDataTraits const traits = LinkTraits<int>(materialGroup);
    H link;
    {
        rows::OwnRegistry registry;
        registry.Add("Foundation", LinkPrototype<int>(traits), L"Foundation", traits, &number);
        link = zo::Find("Foundation");
        ASSERT_EQ(link->Owner(), &*registry);
    }
    rows::OwnRegistry const other;
    EXPECT_EQ(link->Owner(), nullptr);
    EXPECT_EQ(TextOf(link), L"2");
    EXPECT_FALSE(AsLink(link)->Redirect());
    EXPECT_FALSE(link->begin().current);
}

// ---- In a transaction

TEST_F(LinkTest, ATransactionStagesTheRecordBehindALink) {
    auto const transaction = registry->CreateTransaction();
    H const cohesion = transaction->Find("Regions[0].Material.Cohesion");
    ASSERT_TRUE(cohesion);
    EXPECT_TRUE(Succeeds(cohesion->Set(30.0)));
    EXPECT_EQ(TextOf(transaction->Find("Materials[1].Cohesion")), L"30");
    EXPECT_EQ(model.materials[1].cohesion, 25);
    EXPECT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(model.materials[1].cohesion, 30);
}

TEST_F(LinkTest, ATransactionStagesALinkAsItsNumber) {
    auto const transaction = registry->CreateTransaction();
    H const link = transaction->Find("Regions[0].Material");
    EXPECT_TRUE(zo::IsLinkField(link));
    EXPECT_TRUE(Succeeds(zo::SetLink(link, {materialGroup, 3})));
    EXPECT_EQ(model.regions[0].material, 2);
    EXPECT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(model.regions[0].material, 3);
}

TEST_F(LinkTest, ATransactionFollowsACircleOfLinksToItsEnd) {
    auto const transaction = registry->CreateTransaction();
    std::string name = "Materials[0]";
    for (int i = 0; i < 101; ++i) name += ".Substitute.@";
    ASSERT_TRUE(transaction->Find(name + ".Name"));
    EXPECT_TRUE(Succeeds(transaction->Find(name + ".Name")->Set(L"Silt")));
    EXPECT_EQ(TextOf(transaction->Find("Materials[1].Name")), L"Silt");
    EXPECT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(model.materials[1].name, L"Silt");
    EXPECT_EQ(model.materials[0].name, L"Fill");
}

TEST_F(LinkTest, AStagedLinkOutlivesItsTransactionAsAValue) {
    H link, cohesion;
    {
        auto const transaction = registry->CreateTransaction();
        link = transaction->Find("Regions[0].Material");
        cohesion = transaction->Find("Regions[0].Material.Cohesion");
    }
    EXPECT_EQ(link->Owner(), nullptr);
    EXPECT_EQ(zo::GetLink(link, zo::Link::Packed), (GGID{materialGroup, 2}));
    EXPECT_EQ(zo::GetRecordID(link, zo::Link::Packed), GGID());
    EXPECT_FALSE(zo::IsLinkField(cohesion));
}

// ---- The six types

template <class T>
class LinkTypeTest : public RecordsTest {
protected:
    H Over(T& number) {
        return H(new zo::ZOWrapperLink<T>(IZO::npos, &*registry, LinkTraits<T>(materialGroup), &number, {}, names));
    }
};
using LinkTypes = testing::Types<int, unsigned, long, unsigned long, htl::Int64, htl::UInt64>;
TYPED_TEST_SUITE(LinkTypeTest, LinkTypes);

TYPED_TEST(LinkTypeTest, LeadsToTheRecordOfItsNumber) {
    TypeParam number = 3;
    EXPECT_EQ(NameOf(AsLink(this->Over(number))->Redirect()), "Materials[2]");
}

TYPED_TEST(LinkTypeTest, LeadsNowhereWithoutNumber) {
    for (TypeParam number : {TypeParam(0), *meta::StandardMissing<TypeParam>()})
        EXPECT_EQ(AsLink(this->Over(number))->RedirectName(), "");
}

TYPED_TEST(LinkTypeTest, IsSetAndUnset) {
    TypeParam number = 0;
    H const link = this->Over(number);
    EXPECT_TRUE(Succeeds(zo::SetLink(link, {materialGroup, 4})));
    EXPECT_EQ(number, TypeParam(4));
    EXPECT_EQ(zo::GetLink(link, zo::Link::AsStored), (GGID{materialGroup, 4}));
    EXPECT_TRUE(Succeeds(zo::SetLink(link, {})));
    EXPECT_EQ(number, *meta::StandardMissing<TypeParam>());
    EXPECT_EQ(zo::GetLink(link, zo::Link::AsStored), (GGID{materialGroup, 0}));
}

TYPED_TEST(LinkTypeTest, ClonesToADetachedValueOfTheType) {
    TypeParam number = 3;
    H const clone(this->Over(number)->Clone());
    EXPECT_NE(dynamic_cast<zo::ZOAtomicData<TypeParam>*>(clone.get()), nullptr);
    EXPECT_EQ(TextOf(clone), L"3");
}

TYPED_TEST(LinkTypeTest, ViewsOtherMemoryWithTheSameNames) {
    TypeParam number = 3, other = 1;
    H const link = this->Over(number);
    H const view(dynamic_cast<zo::IZOWrapper*>(link.get())->RemapClone(&other, {}));
    EXPECT_EQ(NameOf(AsLink(view)->Redirect()), "Materials[0]");
    EXPECT_TRUE(Succeeds(view->Set(2)));
    EXPECT_EQ(other, TypeParam(2));
    EXPECT_EQ(number, TypeParam(3));
}

} // namespace
