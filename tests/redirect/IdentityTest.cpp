// Which record a node belongs to, which record a field refers to, and the node of a record.
#include "tests/redirect/Records.h"

#include "Common/registry/SetImpl.h"

#include <limits>
#include <memory>

namespace {

using namespace records;
using zo::Link;

using IdentityTest = RecordsTest;

// The group of the wells in the second profile: 20, 2 and 300 in 7, 9 and 16 bits.
constexpr GID wellsOfSecondProfile = 0x2802012C;

/// An alias or, without the mark, any other node that leads to another name.
H Leading(std::string const& target, bool alias = true) { return H(new rows::OtherName(target, alias)); }

/// Gives how often it was asked for the group of its records.
class CountingAsks {
public:
    int Times() const { return timesAsked - before; }

private:
    int before = timesAsked;
};

// ---- IsLinkField

TEST_F(IdentityTest, AFieldThatRefersToARecordIsALinkField) {
    EXPECT_TRUE(zo::IsLinkField(zo::Find("Regions[0].Material")));
    EXPECT_TRUE(zo::IsLinkField("Regions[0].Material"));
    EXPECT_TRUE(zo::IsLinkField(zo::Find("Profiles[0].Wells[0].Next")));
}

TEST_F(IdentityTest, ALinkOfAnyOtherTypeIsALinkField) {
    EXPECT_TRUE(zo::IsLinkField(zo::Find("Site.Reference"))) << "its descriptor names no group";
}

TEST_F(IdentityTest, NothingElseIsALinkField) {
    EXPECT_FALSE(zo::IsLinkField(zo::Find("Materials[0].Cohesion")));
    EXPECT_FALSE(zo::IsLinkField(zo::Find("Materials[0]")));
    EXPECT_FALSE(zo::IsLinkField(zo::Find("Materials")));
    EXPECT_FALSE(zo::IsLinkField(registry->Root()));
    EXPECT_FALSE(zo::IsLinkField(H()));
    EXPECT_FALSE(zo::IsLinkField("Regions[9].Material"));
}

TEST_F(IdentityTest, AnAliasOfALinkFieldIsALinkField) {
    AddAlias("Core", "Regions[0].Material");
    AddAlias("CoreByAlias", "Core");
    AddAlias("Strength", "Materials[0].Cohesion");
    AddAlias("Gone", "Regions[9].Material");
    EXPECT_TRUE(zo::IsLinkField("Core"));
    EXPECT_TRUE(zo::IsLinkField("CoreByAlias"));
    EXPECT_FALSE(zo::IsLinkField("Strength"));
    EXPECT_FALSE(zo::IsLinkField("Gone"));
}

TEST_F(IdentityTest, APrototypeOfALinkFieldIsALinkField) {
    EXPECT_TRUE(zo::IsLinkField(H(zo::GetTemplate("Materials.[].Substitute"))));
    EXPECT_FALSE(zo::IsLinkField(H(zo::GetTemplate("Materials.[].Cohesion"))));
}

TEST_F(IdentityTest, ALinkFieldIsKnownThroughAThousandAliases) {
    for (int i = 0; i < 1001; ++i)
        AddAlias("Step" + std::to_string(i), i < 1000 ? "Step" + std::to_string(i + 1) : "Regions[0].Material");
    EXPECT_TRUE(zo::IsLinkField("Step1"));
    EXPECT_EQ(zo::GetLink(zo::Find("Step1"), Link::AsStored), (GGID{materialGroup, 2}));
    EXPECT_FALSE(zo::IsLinkField("Step0")) << "that is one more";
    EXPECT_EQ(zo::GetLink(zo::Find("Step0"), Link::AsStored), GGID());
}

TEST_F(IdentityTest, RedirectsInACircleAreNoLinkField) {
    registry.Add("North", Leading("South"), L"", rows::StructureTraits());
    registry.Add("South", Leading("North"), L"", rows::StructureTraits());
    registry.Add("East", Leading("West", false), L"", rows::StructureTraits());
    registry.Add("West", Leading("East", false), L"", rows::StructureTraits());
    EXPECT_FALSE(zo::IsLinkField("North"));
    EXPECT_FALSE(zo::IsLinkField("East"));
    EXPECT_EQ(zo::GetLink(zo::Find("North"), Link::AsStored), GGID());
    EXPECT_EQ(zo::GetLink(zo::Find("East"), Link::AsStored), GGID());
    EXPECT_EQ(zo::GetRecordID(zo::Find("North"), Link::Packed), GGID());
}

// ---- GetLink

TEST_F(IdentityTest, ALinkIsItsGroupAndItsNumber) {
    EXPECT_EQ(zo::GetLink(zo::Find("Regions[0].Material"), Link::AsStored), (GGID{materialGroup, 2}));
}

TEST_F(IdentityTest, AnUnsetLinkHasItsGroupAndNoNumber) {
    model.regions[0].material = 0;
    EXPECT_EQ(zo::GetLink(zo::Find("Regions[0].Material"), Link::AsStored), (GGID{materialGroup, 0}));
    EXPECT_EQ(zo::GetLink(zo::Find("Regions[0].Material"), Link::Packed), (GGID{materialGroup, 0}));
    EXPECT_EQ(zo::GetLink(zo::Find("Site.Foundation"), Link::AsStored), (GGID{materialGroup, 0}));
}

TEST_F(IdentityTest, ANumberOutOf32BitsIsNoLink) {
    H const link = zo::Find("Site.Foundation");
    for (Int64 const number : {Int64(-1), Int64(0x100000002), std::numeric_limits<Int64>::min()}) {
        model.site.foundation = number;
        EXPECT_EQ(zo::GetLink(link, Link::AsStored), (GGID{materialGroup, 0})) << number;
    }
    model.site.foundation = 0xFFFFFFFF;
    EXPECT_EQ(zo::GetLink(link, Link::AsStored), (GGID{materialGroup, 0xFFFFFFFF}));
}

TEST_F(IdentityTest, AnAliasHasTheLinkOfItsSource) {
    AddAlias("Core", "Regions[0].Material");
    EXPECT_EQ(zo::GetLink(zo::Find("Core"), Link::AsStored), (GGID{materialGroup, 2}));
    registry.Add("Door", Leading("Core", false), L"", rows::StructureTraits());
    EXPECT_EQ(zo::GetLink(zo::Find("Door"), Link::AsStored), (GGID{materialGroup, 2}));
}

TEST_F(IdentityTest, AnIdentifierIsALinkByItself) {
    model.site.reference = {regionGroup, 2};
    EXPECT_EQ(zo::GetLink(zo::Find("Site.Reference"), Link::AsStored), (GGID{regionGroup, 2}));
    model.site.reference = {0xFFFFFFFF, 0x7FFFFFFF};
    EXPECT_EQ(zo::GetLink(zo::Find("Site.Reference"), Link::AsStored), GGID()) << "both words together mean none";
}

TEST_F(IdentityTest, WhatRefersToNothingHasNoLink) {
    EXPECT_EQ(zo::GetLink(zo::Find("Materials[0].Cohesion"), Link::AsStored), GGID());
    EXPECT_EQ(zo::GetLink(zo::Find("Materials"), Link::Packed), GGID());
    EXPECT_EQ(zo::GetLink({}, Link::Packed), GGID());
}

TEST_F(IdentityTest, PrototypesAreNotRead) {
    EXPECT_EQ(zo::GetLink(H(zo::GetTemplate("Materials.[].Substitute")), Link::Packed), (GGID{materialGroup, 0}));
    EXPECT_EQ(zo::GetLink(H(zo::GetTemplate("Site.Reference")), Link::Packed), GGID());
    for (std::string const name : {"Materials", "Materials.[]", "Site", "Samples.[]", "Profiles.[].Wells"})
        EXPECT_EQ(zo::GetRecordID(H(zo::GetTemplate(name)), Link::Packed), GGID()) << name;
}

TEST_F(IdentityTest, PrototypesWithAnOwnerAreNotReadEither) {
    for (std::string const name : {"Materials", "Profiles.[].Wells", "Samples.[]"}) {
        H const prototype(zo::GetTemplate(name));
        ASSERT_TRUE(Succeeds(registry->InsertTemporary("Held", prototype)));
        EXPECT_EQ(zo::GetRecordID(prototype, Link::Packed).group, 0u) << name;
    }
}

TEST_F(IdentityTest, AStoredLinkAsksForNoRecord) {
    model.materials[0].substitute = 2;
    CountingAsks const asks;
    EXPECT_EQ(zo::GetLink(zo::Find("Materials[0].Substitute"), Link::AsStored), (GGID{materialGroup, 2}));
    EXPECT_EQ(asks.Times(), 0);
    EXPECT_EQ(zo::GetRecordID(zo::Find("Materials[0].Substitute"), Link::AsStored), (GGID{materialGroup, 1}));
    EXPECT_EQ(asks.Times(), 1) << "the count does count";
}

TEST_F(IdentityTest, ALinkInsideAContainerIsPackedWithIt) {
    H const next = zo::Find("Profiles[1].Wells[0].Next");
    EXPECT_EQ(zo::GetLink(next, Link::AsStored), (GGID{wellGroup, 3}));
    EXPECT_EQ(zo::GetLink(next, Link::Packed), (GGID{wellsOfSecondProfile, 3}));
}

TEST_F(IdentityTest, ALinkOfAPlainGroupIsNeverPacked) {
    EXPECT_EQ(zo::GetLink(zo::Find("Regions[0].Material"), Link::Packed), (GGID{materialGroup, 2}));
    EXPECT_EQ(zo::GetLink(zo::Find("Materials[0].Substitute"), Link::Packed), (GGID{materialGroup, 2}));
}

TEST_F(IdentityTest, ALinkOutsideAnyContainerStaysAsItIs) {
    unsigned number = 3;
    MetaDataTraits const traits = LinkTraits<unsigned>(wellGroup);
    registry.Add("Deepest", LinkPrototype<unsigned>(traits), L"Deepest", traits, &number);
    EXPECT_EQ(zo::GetLink(zo::Find("Deepest"), Link::Packed), (GGID{wellGroup, 3}));
}

// ---- GetRecordID

TEST_F(IdentityTest, AFieldOfAnElementBelongsToTheElement) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Materials[3].Cohesion"), Link::AsStored), (GGID{materialGroup, 4}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Materials[3]"), Link::AsStored), (GGID{materialGroup, 4}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Materials[0].Name"), Link::Packed), (GGID{materialGroup, 1}));
}

TEST_F(IdentityTest, AnArrayOfRecordsIsNoRecordOfItsOwn) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Materials"), Link::AsStored), (GGID{materialGroup, 0xFFFFFFFE}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Materials.Len"), Link::AsStored), (GGID{materialGroup, 0xFFFFFFFE}));
}

TEST_F(IdentityTest, AFieldOfAStructureWithAGroupBelongsToItsOnlyRecord) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Site.Width"), Link::AsStored), (GGID{siteGroup, 1}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Site"), Link::AsStored), (GGID{siteGroup, 1}));
}

TEST_F(IdentityTest, AStructureWithAGroupIsNumber1WhereverItStands) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Samples[0].Weight"), Link::AsStored), (GGID{31, 1})) << "group 31 is its own";
    model.site.layers = {3};
    EXPECT_EQ(zo::GetRecordID(zo::Find("Site.Layers[0]"), Link::AsStored), (GGID{siteGroup, 1}));
}

TEST_F(IdentityTest, AtTheTopTheResultStaysWithoutGroup) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Samples[1].Weight"), Link::Packed), (GGID{0, 1})) << "its group is 0";
    registry.AddPlain("Stage", L"Stage");
    EXPECT_EQ(zo::GetRecordID(zo::Find("Stage"), Link::Packed), GGID());
    EXPECT_EQ(zo::GetRecordID(registry->Root(), Link::Packed), GGID());
}

TEST_F(IdentityTest, TheNearestRecordCounts) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[1].Wells[2].Depth"), Link::AsStored), (GGID{wellGroup, 3}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[1].Wells"), Link::AsStored), (GGID{wellGroup, 0xFFFFFFFE}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[1]"), Link::AsStored), (GGID{profileGroup, 2}));
}

TEST_F(IdentityTest, ARecordInsideAContainerIsPackedWithIt) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[1].Wells[2].Depth"), Link::Packed), (GGID{wellsOfSecondProfile, 3}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[1]"), Link::Packed), (GGID{profileGroup, 2}));
}

TEST_F(IdentityTest, AContainerWhoseNumberDoesNotFitGivesNoRecord) {
    model.profiles.resize(512);
    model.profiles[510].wells.resize(1);
    model.profiles[511].wells.resize(1);
    // 20 << 25 | 511 << 16 | 300
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[510].Wells[0]"), Link::Packed), (GGID{0x29FF012C, 1}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Profiles[511].Wells[0]"), Link::Packed), (GGID{0, 1}));
}

TEST_F(IdentityTest, ANodeWithoutOwnerHasNoRecord) {
    EXPECT_EQ(zo::GetRecordID({}, Link::Packed), GGID());
    EXPECT_EQ(zo::GetRecordID(zo::GetWrapper(rows::RowOf("Materials.[]"), &model.materials[0]), Link::Packed), GGID());
}

TEST_F(IdentityTest, ANodeWithoutNameKnowsOnlyItself) {
    H const loose = registry->Wrap(rows::RowOf("Site"), &model.site);
    EXPECT_EQ(zo::GetRecordID(loose, Link::AsStored), (GGID{siteGroup, 1}));
    H const element = registry->Wrap(rows::RowOf("Materials.[]"), &model.materials[0]);
    EXPECT_EQ(zo::GetRecordID(element, Link::AsStored), GGID());
}

TEST_F(IdentityTest, AnAliasBelongsToTheRecordOfItsSource) {
    AddAlias("Strength", "Materials[2].Cohesion");
    AddAlias("StrengthByAlias", "Strength");
    EXPECT_EQ(zo::GetRecordID(zo::Find("Strength"), Link::AsStored), (GGID{materialGroup, 3}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("StrengthByAlias"), Link::AsStored), (GGID{materialGroup, 3}));
}

TEST_F(IdentityTest, ALinkFieldBelongsToTheRecordThatItStandsIn) {
    EXPECT_EQ(zo::GetRecordID(zo::Find("Regions[1].Material"), Link::AsStored), (GGID{regionGroup, 2}));
    EXPECT_EQ(zo::GetRecordID(zo::Find("Regions[1].Material.Cohesion"), Link::AsStored), (GGID{materialGroup, 4}));
    AddAlias("Core", "Regions[1].Material");
    EXPECT_EQ(zo::GetRecordID(zo::Find("Core"), Link::AsStored), GGID()) << "an alias of it stands in no record";
}

TEST_F(IdentityTest, WhatStandsBelowALinkBelongsToTheRecordOfTheLink) {
    registry.AddPlain("Regions.[].Material.Note", L"Note");
    EXPECT_EQ(zo::GetRecordID(zo::Find("Regions[1].Material.Note"), Link::Packed), (GGID{materialGroup, 4}));
    model.regions[1].material = 0;
    EXPECT_EQ(zo::GetRecordID(zo::Find("Regions[1].Material.Note"), Link::Packed), (GGID{materialGroup, 0}));
}

TEST_F(IdentityTest, StagedNodesHaveNoGroup) {
    auto const transaction = registry->CreateTransaction();
    EXPECT_EQ(zo::GetRecordID(transaction->Find("Materials[2].Cohesion"), Link::AsStored), (GGID{0, 3}));
}

TEST_F(IdentityTest, AnIndexWithoutANumberOf32BitsIsNone) {
    auto const recordOf = [this](std::string const& name) {
        H const element(new rows::Plain(rows::RowOf("Materials.[]")));
        EXPECT_TRUE(Succeeds(registry->InsertTemporary(name, element)));
        return zo::GetRecordID(element, Link::AsStored);
    };
    EXPECT_EQ(recordOf("Materials[4294967294]"), (GGID{materialGroup, 0xFFFFFFFF}));
    for (std::string const name : {"Materials[4294967295]", "Materials[4294967300]", "Materials[18446744073709551615]",
                                   "Materials[99999999999999999999]", "Materials[1x]"})
        EXPECT_EQ(recordOf(name), (GGID{materialGroup, 0xFFFFFFFE})) << name << " is as good as no element";
}

TEST_F(IdentityTest, NamesThatLeadToEachOtherEnd) {
    H const north = registry.AddPlain("North", L"North"), south = registry.AddPlain("South", L"South");
    ASSERT_TRUE(Succeeds(registry->Insert("South.x", north)));
    ASSERT_TRUE(Succeeds(registry->Insert("North.x", south)));
    ASSERT_EQ(zo::GetParent(zo::GetParent(north, 1), 1), north);
    EXPECT_EQ(zo::GetRecordID(north, Link::Packed), GGID());
}

// ---- SetLink

TEST_F(IdentityTest, SetLinkWritesTheNumber) {
    EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Regions[0].Material"), {materialGroup, 3})));
    EXPECT_EQ(model.regions[0].material, 3);
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.@")), "Materials[2]");
}

TEST_F(IdentityTest, AnEmptyIdentifierUnsetsALink) {
    H const link = zo::Find("Site.Foundation");
    ASSERT_TRUE(Succeeds(zo::SetLink(link, {materialGroup, 2})));
    EXPECT_EQ(model.site.foundation, 2);
    EXPECT_TRUE(Succeeds(zo::SetLink(link, {})));
    EXPECT_EQ(model.site.foundation, noLink);
    EXPECT_FALSE(hzn::gid::IsValid(zo::GetLink(link, Link::AsStored)));
    EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Regions[0].Material"), {materialGroup, 0})));
    EXPECT_EQ(model.regions[0].material, 0) << "this link's missing value";
}

TEST_F(IdentityTest, ARecordOfAnotherGroupIsRefused) {
    H const link = zo::Find("Regions[0].Material");
    EXPECT_TRUE(FailsAs(zo::SetLink(link, {regionGroup, 1}), htl::status(27568, L"", L"", L"", L"")));
    EXPECT_EQ(model.regions[0].material, 2);
}

TEST_F(IdentityTest, ANumberWithoutGroupIsTakenForTheFieldsOwn) {
    EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Regions[0].Material"), {0, 3})));
    EXPECT_EQ(model.regions[0].material, 3);
}

TEST_F(IdentityTest, AFieldWithoutGroupTakesTheNumberOfAnyRecord) {
    EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Materials[0].ID"), {regionGroup, 8})));
    EXPECT_EQ(model.materials[0].number, 8);
}

TEST_F(IdentityTest, ANumberThatTheFieldCannotHoldIsRefused) {
    EXPECT_TRUE(FailsAs(
        zo::SetLink(zo::Find("Regions[0].Material"), {materialGroup, 0xFFFFFFFF}),
        htl::Convert_error_status::OutOfRangeStatus(L"4294967295", htl::Convert_error_status::WholeNumberString())));
    EXPECT_EQ(model.regions[0].material, 2);
    EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Site.Foundation"), {materialGroup, 0xFFFFFFFF})));
    EXPECT_EQ(model.site.foundation, 4294967295);
}

TEST_F(IdentityTest, AnIdentifierIsWrittenWhole) {
    H const reference = zo::Find("Site.Reference");
    EXPECT_TRUE(Succeeds(zo::SetLink(reference, {regionGroup, 2})));
    EXPECT_EQ(model.site.reference, (GGID{regionGroup, 2}));
    EXPECT_TRUE(Succeeds(zo::SetLink(reference, {0xFFFFFFFF, 0xFFFFFFFF})));
    EXPECT_EQ(model.site.reference, (GGID{0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_TRUE(Succeeds(zo::SetLink(reference, {regionGroup, 0})));
    EXPECT_EQ(model.site.reference, GGID());
}

TEST_F(IdentityTest, AnAliasWritesTheLinkOfItsSource) {
    AddAlias("Core", "Regions[0].Material");
    EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Core"), {materialGroup, 1})));
    EXPECT_EQ(model.regions[0].material, 1);
    EXPECT_TRUE(FailsAs(zo::SetLink(zo::Find("Core"), {regionGroup, 1}), htl::status(27568, L"", L"", L"", L"")));
}

TEST_F(IdentityTest, WhatHasNoValueTakesNoLink) {
    htl::status const expected = HznError::internal("ZOUtil", "zo::SetLink", 2713);
    for (H const& node : {H(), zo::Find("Site"), zo::Find("Materials"), H(zo::GetTemplate("Regions.[].Material"))}) {
        htl::status const failure = zo::SetLink(node, {materialGroup, 1});
        ASSERT_TRUE(FailsAs(failure, expected)) << NameOf(node);
        EXPECT_EQ(failure.Detail()->source, "ZOUtil");
        EXPECT_EQ(failure.Detail()->position, 2713);
    }
}

// ---- GetSource of a node

TEST_F(IdentityTest, ANodeIsItsOwnSource) {
    H const node = zo::Find("Materials[0]");
    EXPECT_EQ(zo::GetSource(node), node);
    EXPECT_FALSE(zo::GetSource(H()));
    EXPECT_FALSE(zo::GetSource(H(), 3));
}

TEST_F(IdentityTest, TheSourceIsFollowedToItsEndOrToADepth) {
    AddAlias("A", "B");
    AddAlias("B", "C");
    AddAlias("C", "Site");
    H const a = zo::Find("A");
    EXPECT_EQ(NameOf(zo::GetSource(a)), "Site");
    EXPECT_EQ(NameOf(zo::GetSource(a, 0)), "B") << "one step is always taken";
    EXPECT_EQ(NameOf(zo::GetSource(a, 1)), "B");
    EXPECT_EQ(NameOf(zo::GetSource(a, 2)), "C");
    EXPECT_EQ(NameOf(zo::GetSource(a, 3)), "Site");
    EXPECT_EQ(NameOf(zo::GetSource(a, 4)), "Site");
}

TEST_F(IdentityTest, ARedirectToNothingIsTheSource) {
    AddAlias("A", "B");
    AddAlias("B", "Gone");
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("A"))), "B");
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("B"))), "B");
}

TEST_F(IdentityTest, TheSourceOfALinkIsItsRecord) {
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("Regions[0].Material"))), "Materials[1]");
    model.regions[0].material = 0;
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("Regions[0].Material"))), "Regions[0].Material");
}

TEST_F(IdentityTest, ACircleOfRedirectsEnds) {
    registry.Add("North", Leading("South"), L"", rows::StructureTraits());
    registry.Add("South", Leading("North"), L"", rows::StructureTraits());
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("North"))), "North") << "after 1,000 steps";
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("North"), 7)), "South");
}

TEST_F(IdentityTest, AThousandRedirectsAreFollowed) {
    for (int i = 0; i < 1000; ++i)
        registry.Add("Step" + std::to_string(i), Leading("Step" + std::to_string(i + 1)), L"", rows::StructureTraits());
    registry.AddPlain("Step1000", L"Step1000");
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("Step0"))), "Step1000");
}

// ---- GetSource of an identifier

TEST_F(IdentityTest, AnIdentifierLeadsToItsRecord) {
    AddRecordTemplates();
    EXPECT_EQ(NameOf(zo::GetSource(GGID{materialGroup, 2})), "Materials[1]");
    EXPECT_EQ(NameOf(zo::GetSource(&*registry, GGID{siteGroup, 1})), "Site");
    EXPECT_EQ(NameOf(zo::GetSource(GGID{wellsOfSecondProfile, 3})), "Profiles[1].Wells[2]");
}

TEST_F(IdentityTest, TheRecordOfANodeLeadsBackToIt) {
    AddRecordTemplates();
    for (std::string const name : {"Materials[3]", "Regions[0]", "Profiles[1]", "Profiles[1].Wells[1]", "Site"})
        EXPECT_EQ(NameOf(zo::GetSource(zo::GetRecordID(zo::Find(name), Link::Packed))), name);
}

TEST_F(IdentityTest, WithoutATemplateNoIdentifierLeadsAnywhere) {
    EXPECT_FALSE(zo::GetSource(&*registry, GGID{materialGroup, 2}));
    EXPECT_FALSE(zo::GetSource(&*registry, hzn::gid::ContainerRef({profileGroup, 2}, 1)));
    EXPECT_FALSE(zo::LookupRelative(GGID{materialGroup, 2}, L"Name"));
}

TEST_F(IdentityTest, ATemplateThatViewsNothingLeadsNowhere) {
    zo::ZOTypeTemplate::Register(typeid(GGID), registry.AddPlain("Identifier", L""));
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 2}));
}

TEST_F(IdentityTest, ATemplateThatIsNoLinkLeadsNowhere) {
    H const number = ValuePrototype<int>(meta::AtomicTraits<int>());
    registry.Add("Identifier", number, L"", meta::AtomicTraits<int>());
    zo::ZOTypeTemplate::Register(typeid(GGID), number);
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 2}));
}

TEST_F(IdentityTest, AnEmptyIdentifierLeadsNowhere) {
    AddRecordTemplates();
    for (GGID const& id : {GGID(), GGID{materialGroup, 0}, GGID{0, 2}}) EXPECT_FALSE(zo::GetSource(id));
}

TEST_F(IdentityTest, AnIdentifierOfNoRecordLeadsNowhere) {
    AddRecordTemplates();
    EXPECT_FALSE(zo::GetSource(GGID{99, 1})) << "an unknown group";
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 5})) << "after the last one";
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 0xFFFFFFFF}));
    EXPECT_FALSE(zo::GetSource(GGID{0xFFFFFFFF, 0xFFFFFFFF}));
    model.materials.pop_back();
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 4})) << "it was removed";
    materials->SetObject(nullptr);
    materials->SetAvailable(false);
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 1}));
}

TEST_F(IdentityTest, WithoutASetTheCurrentRegistryIsMeant) {
    AddRecordTemplates();
    EXPECT_EQ(NameOf(zo::GetSource(static_cast<zo::ZOSet*>(nullptr), GGID{materialGroup, 2})), "Materials[1]");
}

TEST_F(IdentityTest, AReferenceLeadsToTheObjectInTheContainer) {
    AddRecordTemplates();
    using hzn::gid::ContainerRef;
    EXPECT_EQ(NameOf(zo::GetSource(ContainerRef({profileGroup, 2}, 3))), "Profiles[1].Wells[2]");
    EXPECT_EQ(NameOf(zo::GetSource(&*registry, ContainerRef({profileGroup, 1}, 1))), "Profiles[0].Wells[0]");
    EXPECT_FALSE(zo::GetSource(ContainerRef({profileGroup, 2}, 4)));
    EXPECT_FALSE(zo::GetSource(ContainerRef({profileGroup, 0}, 1)));
    EXPECT_FALSE(zo::GetSource(ContainerRef()));
}

TEST_F(IdentityTest, InATransactionAnIdentifierLeadsToTheStagedRecord) {
    AddRecordTemplates();
    auto const transaction = registry->CreateTransaction();
    H const material = zo::GetSource(transaction.get(), GGID{materialGroup, 2});
    ASSERT_TRUE(material);
    EXPECT_EQ(material->Owner(), transaction.get());
    EXPECT_EQ(NameOf(material), "Materials[1]");
    H const well = zo::GetSource(transaction.get(), hzn::gid::ContainerRef({profileGroup, 2}, 3));
    ASSERT_TRUE(well);
    EXPECT_EQ(well->Owner(), transaction.get());
    EXPECT_EQ(NameOf(well), "Profiles[1].Wells[2]");
}

TEST_F(IdentityTest, AskingLeavesNothingOfItsOwnInTheTransaction) {
    AddRecordTemplates();
    auto const transaction = registry->CreateTransaction();
    (void)zo::GetSource(transaction.get(), GGID{materialGroup, 2});
    EXPECT_EQ(transaction->Impl()->entries.Size(), 2u) << "the array and its element";
    EXPECT_FALSE(zo::GetSource(transaction.get(), GGID{99, 1}));
    EXPECT_EQ(transaction->Impl()->entries.Size(), 2u);
    EXPECT_FALSE(transaction->Find("GetSource_GGID_10_2"));
}

TEST_F(IdentityTest, ARecordIsStagedOnceHoweverItIsReached) {
    AddRecordTemplates();
    auto const transaction = registry->CreateTransaction();
    H const byName = transaction->Find("Materials[1]");
    EXPECT_EQ(zo::GetSource(transaction.get(), GGID{materialGroup, 2}), byName);
    EXPECT_EQ(zo::GetSource(transaction.get(), GGID{materialGroup, 2}), byName);
}

TEST_F(IdentityTest, APathOfTagsGoesOnFromARecord) {
    AddRecordTemplates();
    EXPECT_EQ(NameOf(zo::LookupRelative(GGID{materialGroup, 2}, L"Cohesion")), "Materials[1].Cohesion");
    EXPECT_EQ(NameOf(zo::LookupRelative(GGID{profileGroup, 2}, L"Wells[3].Depth")), "Profiles[1].Wells[2].Depth");
    EXPECT_EQ(NameOf(zo::LookupRelative(GGID{materialGroup, 2}, L"")), "Materials[1]");
    EXPECT_FALSE(zo::LookupRelative(GGID{materialGroup, 9}, L"Cohesion"));
    EXPECT_FALSE(zo::LookupRelative(GGID(), L"Cohesion"));
}

// ---- CommitAs

TEST_F(IdentityTest, ARecordIsCommittedToAnother) {
    AddRecordTemplates();
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Materials[0].Cohesion")->Set(7.5)));
    ASSERT_TRUE(transaction->Find("Materials[0].Name"));
    EXPECT_TRUE(Succeeds(zo::CommitAs(transaction, {materialGroup, 1}, {materialGroup, 3}, "", "")));
    EXPECT_EQ(model.materials[2].cohesion, 7.5);
    EXPECT_EQ(model.materials[2].name, L"Fill");
    EXPECT_EQ(model.materials[2].number, 3) << "it was not staged";
    EXPECT_EQ(model.materials[0].cohesion, 5);
}

TEST_F(IdentityTest, AnIdentifierWithoutNodeCommitsNothing) {
    AddRecordTemplates();
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Materials[0].Cohesion")->Set(7.5)));
    EXPECT_TRUE(Succeeds(zo::CommitAs(transaction, {materialGroup, 1}, {materialGroup, 9}, "", "")));
    EXPECT_TRUE(Succeeds(zo::CommitAs(transaction, {materialGroup, 9}, {materialGroup, 3}, "", "")));
    EXPECT_TRUE(Succeeds(zo::CommitAs(transaction, {}, {}, "", "")));
    EXPECT_TRUE(Succeeds(zo::CommitAs({}, {materialGroup, 1}, {materialGroup, 3}, "", "")));
    EXPECT_EQ(model.materials[2].cohesion, 0);
    EXPECT_EQ(model.materials[0].cohesion, 5);
}

} // namespace
