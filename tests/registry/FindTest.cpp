// From names to live nodes of the project.
#include "tests/registry/Rows.h"

namespace {

using embankment::TextOf;
using rows::H;
using rows::IZO;
using rows::NameOf;

class FindTest : public embankment::EmbankmentTest {};

TEST_F(FindTest, ReadsValuesByName) {
    EXPECT_EQ(TextOf(zo::Find("Project.Title")), L"Tailings dam");
    EXPECT_EQ(TextOf(zo::Find("Soils[1].Name")), L"Sand shell");
    EXPECT_EQ(TextOf(zo::Find("Soils[0].Anisotropy[2]")), L"0.25");
    EXPECT_EQ(TextOf(zo::Find("WaterTable.Points[1].X")), L"40");
    EXPECT_EQ(TextOf(zo::Find("Summary.SoilCount")), L"3");
}

TEST_F(FindTest, WritesThroughToClientMemory) {
    ASSERT_TRUE(embankment::Succeeds(zo::Find("Soils[2].Friction")->Set(28.5)));
    EXPECT_EQ(embankment.model.soils[2].friction, 28.5);
}

TEST_F(FindTest, GivesNothingWhileTheStoreIsAway) {
    EXPECT_TRUE(zo::Find("Results.Slips[0].FactorOfSafety"));
    embankment.ShowResults(false);
    EXPECT_FALSE(zo::Find("Results.Slips[0].FactorOfSafety"));
    EXPECT_FALSE(zo::Find("Results"));
    EXPECT_NE(zo::GetTemplate("Results"), nullptr);
}

TEST_F(FindTest, AnAvailableStoreWithoutAnObjectGivesNoView) {
    rows::OwnRegistry registry;
    auto const traits = meta::AtomicTraits<double>();
    registry.Add("Level", embankment::ValuePrototype<double>(traits), L"Level", traits, nullptr);
    registry->OnPostRegistration();
    EXPECT_FALSE(zo::Find("Level"));
}

TEST_F(FindTest, TheFirstAndTheLastElementAreThereTheNextIsNot) {
    EXPECT_EQ(NameOf(zo::Find("Soils[0]")), "Soils[0]");
    EXPECT_EQ(NameOf(zo::Find("Soils[2]")), "Soils[2]");
    EXPECT_FALSE(zo::Find("Soils[3]"));
    EXPECT_FALSE(zo::Find("Soils[3].Name"));
}

TEST_F(FindTest, ChildrenAndElementsAreFoundFromANode) {
    H const soils = zo::Find("Soils");
    H const shell = zo::Find(dynamic_cast<zo::ZOArray*>(soils.get()), 1);
    EXPECT_EQ(NameOf(shell), "Soils[1]");
    EXPECT_EQ(TextOf(zo::Find(shell, "Name")), L"Sand shell");
    EXPECT_FALSE(zo::Find(shell, "Nobody"));
    EXPECT_FALSE(zo::Find(shell, ""));
}

TEST_F(FindTest, NothingIsFoundFromNothing) {
    EXPECT_FALSE(zo::Find(H(), "Name"));
    EXPECT_FALSE(embankment.registry->Find(H(), "Name"));
    EXPECT_FALSE(zo::Find(static_cast<zo::ZOArray*>(nullptr), 0));
    EXPECT_FALSE(zo::FindTag(H(), std::wstring(L"Name")));
    EXPECT_FALSE(embankment.registry->FindTag(H(), L"Name"));
    EXPECT_FALSE(zo::GetParent(H(), 0));
    EXPECT_FALSE(zo::GetParent(H(), 5));
    EXPECT_FALSE(zo::GetSibling(H(), "Name"));
    EXPECT_FALSE(zo::LookupRelative(H(), L""));
    EXPECT_FALSE(zo::LookupRelative(H(), L"@Parent"));
    EXPECT_EQ(zo::SimpleTag(H()), L"");
    EXPECT_EQ(zo::FullTag(H()), L"");
}

TEST_F(FindTest, AViewsOwnerIsTheRegistryAndItIsCountedOnce) {
    H const node = zo::Find("Soils[1].Name");
    EXPECT_EQ(node->Owner(), embankment.registry.get());
    EXPECT_NE(node->OwnerID(), IZO::npos);
    EXPECT_EQ(node->RegID(), zo::GetTemplate("Soils.[].Name")->RegID());
    EXPECT_EQ(node->RefCount(), 1);
}

TEST_F(FindTest, ATopLevelNodeThatIsNoViewIsTheTemplateItself) {
    EXPECT_EQ(zo::Find("Summary").get(), zo::GetTemplate("Summary"));
    EXPECT_EQ(zo::Find("Summary"), zo::Find("Summary"));
    EXPECT_NE(zo::Find("Project").get(), zo::GetTemplate("Project"));
}

TEST_F(FindTest, TheRootIsFoundByItsName) {
    EXPECT_EQ(zo::ZORegistry::RootName(), "HZNData");
    EXPECT_EQ(zo::Find("HZNData"), embankment.registry->Root());
    EXPECT_EQ(embankment.registry->Root()->Name(), "HZNData");
    EXPECT_EQ(TextOf(zo::Find("HZNData.Project.Title")), L"Tailings dam");
}

TEST_F(FindTest, ParentsAreFoundLevelByLevel) {
    H const corner = zo::Find("Regions[1].Points[2]");
    EXPECT_EQ(zo::GetParent(corner, 0), corner);
    EXPECT_EQ(NameOf(zo::GetParent(corner, 1)), "Regions[1].Points");
    EXPECT_EQ(NameOf(zo::GetParent(corner, 2)), "Regions[1]");
    EXPECT_EQ(NameOf(zo::GetParent(corner, 3)), "Regions");
    EXPECT_FALSE(zo::GetParent(corner, 4)) << "the root is no parent by name";
    EXPECT_FALSE(zo::GetParent(corner, 4'000'000'000u));
}

TEST_F(FindTest, SiblingsAreFoundThroughTheParent) {
    EXPECT_EQ(NameOf(zo::GetSibling(zo::Find("Soils[1].Name"), "Color")), "Soils[1].Color");
    EXPECT_FALSE(zo::GetSibling(zo::Find("Soils[1].Name"), "Nobody"));
    EXPECT_FALSE(zo::GetSibling(zo::Find("Project"), "Soils")) << "a top-level node has no parent by name";
}

TEST_F(FindTest, NodesAreFoundByTheirWellKnownTags) {
    H const soil = zo::Find("Soils[1]");
    EXPECT_EQ(TextOf(zo::GetNameZO(soil)), L"Sand shell");
    EXPECT_FALSE(zo::GetIDZO(soil));
    EXPECT_FALSE(zo::GetNameZO(zo::Find("Project")));
}

TEST_F(FindTest, AnEmptyRelativePathIsTheNodeItself) {
    H const soil = zo::Find("Soils[1]");
    EXPECT_EQ(zo::LookupRelative(soil, L""), soil);
}

TEST_F(FindTest, ARelativePathFollowsTags) {
    EXPECT_EQ(NameOf(zo::LookupRelative(zo::Find("Soils"), L"[2].Name")), "Soils[1].Name");
    EXPECT_EQ(NameOf(zo::LookupRelative(zo::Find("WaterTable"), L"Points[2].X")), "WaterTable.Points[1].X");
    EXPECT_EQ(NameOf(zo::LookupRelative(zo::Find("WaterTable"), L"Points.[2].X")), "WaterTable.Points[1].X");
    EXPECT_FALSE(zo::LookupRelative(zo::Find("WaterTable"), L"Points[3].X"));
    EXPECT_FALSE(zo::LookupRelative(zo::Find("WaterTable"), L"Nobody"));
    EXPECT_FALSE(zo::LookupRelative(zo::Find("WaterTable"), L".Points"));
}

TEST_F(FindTest, ARelativePathClimbs) {
    H const corner = zo::Find("Regions[1].Points[2]");
    EXPECT_EQ(NameOf(zo::LookupRelative(corner, L"@Parent.")), "Regions[1].Points");
    EXPECT_EQ(NameOf(zo::LookupRelative(corner, L"@Parent")), "Regions[1].Points");
    EXPECT_EQ(NameOf(zo::LookupRelative(corner, L"@Parent.@Parent.Soil")), "Regions[1].Soil");
    EXPECT_EQ(NameOf(zo::LookupRelative(corner, L"@Parent@Parent.Soil")), "Regions[1].Soil");
    EXPECT_EQ(NameOf(zo::LookupRelative(zo::Find("Soils[1].Name"), L"@Parent.Color")), "Soils[1].Color");
}

TEST_F(FindTest, ClimbingAboveTheTopGoesOnFromTheRoot) {
    EXPECT_EQ(zo::LookupRelative(zo::Find("Project"), L"@Parent"), embankment.registry->Root());
    EXPECT_EQ(NameOf(zo::LookupRelative(zo::Find("Project"), L"@Parent.Soils[1]")), "Soils[0]");
    EXPECT_EQ(NameOf(zo::LookupRelative(zo::Find("Soils[1].Name"), L"@Parent@Parent@Parent@Parent.Project.Title")),
              "Project.Title");
}

TEST_F(FindTest, ANodeWithoutNameHasNothingAboveIt) {
    H const clone(zo::Find("Soils[1].Name")->Clone());
    EXPECT_FALSE(zo::LookupRelative(clone, L"@Parent"));
    EXPECT_FALSE(zo::LookupRelative(clone, L"@Parent.Project.Title"));
}

TEST_F(FindTest, AWordThatOnlyBeginsLikeAClimbIsATag) {
    EXPECT_FALSE(zo::LookupRelative(zo::Find("Soils[1].Name"), L"@Parents"));
    EXPECT_FALSE(zo::LookupRelative(zo::Find("Soils[1].Name"), L"@Parent[1]"));
    EXPECT_FALSE(zo::LookupRelative(zo::Find("Soils[1].Name"), L"@parent"));
}

TEST_F(FindTest, NodesAreFoundByTag) {
    EXPECT_EQ(NameOf(zo::FindTag(L"Project.Title")), "Project.Title");
    EXPECT_EQ(NameOf(zo::FindTag(std::string("Project.Title"))), "Project.Title");
    EXPECT_EQ(NameOf(zo::FindTag(L"Soils[2].Name")), "Soils[1].Name");
    EXPECT_EQ(NameOf(zo::FindTag(L"Soils.[2].Name")), "Soils[1].Name");
    EXPECT_EQ(NameOf(zo::FindTag(L"Regions[2].Points[3]")), "Regions[1].Points[2]");
    EXPECT_EQ(NameOf(zo::FindTag(L"Soils")), "Soils");
    EXPECT_EQ(NameOf(zo::FindTag(L"HZNData")), "HZNData");
}

TEST_F(FindTest, TagsCountFromOne) {
    EXPECT_EQ(NameOf(zo::FindTag(L"Soils[1]")), "Soils[0]");
    EXPECT_EQ(NameOf(zo::FindTag(L"Soils[3]")), "Soils[2]");
    EXPECT_FALSE(zo::FindTag(L"Soils[0]"));
    EXPECT_FALSE(zo::FindTag(L"Soils[4]"));
}

class NoTagTest : public FindTest, public testing::WithParamInterface<wchar_t const*> {};
TEST_P(NoTagTest, LeadsToNothing) { EXPECT_FALSE(zo::FindTag(std::wstring(GetParam()))); }
INSTANTIATE_TEST_SUITE_P(Tags, NoTagTest,
                         testing::Values(L"", L".", L".Project", L"[1]", L"[", L"Soils[", L"Soils[Soil]",
                                         L"Soils[].Name", L"Soils.[].Name", L"Soils[x].Name", L"Soils[-1]",
                                         L"Soils[1].Nobody", L"Nobody", L"Nobody[1].X", L"Soils[1]Name.x",
                                         L"Soils[99999999999999999999]", L"Soils[18446744073709551615]",
                                         L"Project..Title", L"Project.Title.x", L"project.title", L"Soils[1.5]"));

TEST_F(FindTest, ChildrenAreFoundByTheirTag) {
    H const soil = zo::Find("Soils[1]");
    EXPECT_EQ(NameOf(zo::FindTag(soil, std::wstring(L"Cohesion"))), "Soils[1].Cohesion");
    EXPECT_EQ(NameOf(zo::FindTag(soil, std::string("Cohesion"))), "Soils[1].Cohesion");
    EXPECT_FALSE(zo::FindTag(soil, std::wstring(L"Nobody")));
    EXPECT_FALSE(zo::FindTag(soil, std::wstring(L"")));
    EXPECT_EQ(NameOf(zo::FindTag(embankment.registry->Root(), std::wstring(L"Soils"))), "Soils");
    EXPECT_FALSE(zo::FindTag(embankment.registry->Root(), std::wstring(L"Soils.[].Name"))) << "not its child";
}

TEST_F(FindTest, AnArraysElementsAreFoundByNumber) {
    H const soils = zo::Find("Soils");
    EXPECT_EQ(NameOf(zo::FindTag(soils, std::wstring(L"[1]"))), "Soils[0]");
    EXPECT_EQ(NameOf(zo::FindTag(soils, std::wstring(L"3"))), "Soils[2]");
    EXPECT_FALSE(zo::FindTag(soils, std::wstring(L"[4]")));
    EXPECT_FALSE(zo::FindTag(zo::Find("Soils[0]"), std::wstring(L"[1]"))) << "no array";
}

TEST_F(FindTest, TheNumberZeroIsATagAndNoIndex) {
    rows::OwnRegistry registry;
    std::vector<int> values{7, 8};
    static auto const element = [] { return meta::AtomicTraits<int>(); };
    static meta::MetaDataTraits (*const elementTraits)() = +element;
    auto const traits = meta::ArrayTraits<std::vector<int>>(elementTraits);
    registry.Add("v", embankment::ArrayPrototype(traits), L"V", traits, &values);
    registry.Add("v.[]", embankment::ValuePrototype<int>(elementTraits()), L"", elementTraits());
    registry->OnPostRegistration();
    H const array = zo::Find("v");
    EXPECT_EQ(TextOf(zo::FindTag(array, std::wstring(L"1"))), L"7");
    EXPECT_FALSE(zo::FindTag(array, std::wstring(L"[0]")));
    EXPECT_FALSE(zo::FindTag(array, std::wstring(L"0")));
}

TEST_F(FindTest, ATagIsFoundThroughAnAlias) {
    rows::OwnRegistry registry;
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.b", L"B");
    registry.Add("al", H(new rows::OtherName("a", true)), L"Al", rows::StructureTraits());
    registry.Add("a.own", H(new rows::OtherName("a.b", true)), L"Own", rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(NameOf(zo::FindTag(zo::Find("al"), std::wstring(L"B"))), "a.b");
    EXPECT_EQ(NameOf(zo::FindTag(L"Al.B")), "a.b");
    H const own = zo::FindTag(zo::Find("a"), std::wstring(L"Own"));
    EXPECT_EQ(NameOf(own), "a.own") << "an alias stands in no list of tags, and is found";
    EXPECT_EQ(NameOf(zo::FindTag(L"A.Own")), "a.own");
}

TEST_F(FindTest, ATagGoesOnBelowATypesTemplate) {
    rows::OwnRegistry registry;
    embankment::Soil core{L"Core", 1, 2, 3, embankment::Drainage::Drained, 4, {}};
    auto const soil = embankment::SoilTraits();
    H const prototype = embankment::StructPrototype(soil);
    registry.Add("Core", prototype, L"Core", soil, &core);
    registry.Add(
        "Core.Name",
        embankment::ValuePrototype<std::wstring>(embankment::TitleTraits(), meta::OffsetOf(&embankment::Soil::name)),
        L"Name", embankment::TitleTraits());
    zo::ZOTypeTemplate::Register(typeid(embankment::Soil), prototype);
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::FindTag(L"Core.Name")), L"Core");
    EXPECT_FALSE(zo::FindTag(L"Core.Cohesion"));
}

TEST_F(FindTest, ANodeWithoutRowHasNoTags) {
    H const node(new rows::Plain);
    EXPECT_FALSE(zo::FindTag(node, std::wstring(L"Project")));
    EXPECT_FALSE(zo::FindTag(node, std::wstring(L"[1]")));
}

TEST_F(FindTest, ARegistryThatIsNotCurrentReadsTheCurrentRowsAndItsOwnEntries) {
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    H const own(new rows::Plain);
    (void)other->Insert("Own", own);
    EXPECT_EQ(other->Find("Own"), own);
    EXPECT_FALSE(embankment.registry->Find("Own"));
    H const title = other->Find("Project.Title");
    EXPECT_EQ(TextOf(title), L"Tailings dam");
    EXPECT_EQ(title->Owner(), other.get()) << "the set that was asked names it";
    EXPECT_EQ(title->Name(), "Project.Title");
}

TEST_F(FindTest, InsertedNodesAreFoundByTheirTopLevelName) {
    H const node(new rows::Plain);
    zo::ZORegistry& registry = *embankment.registry;
    ASSERT_TRUE(embankment::Succeeds(registry.Insert("Scratch", node)));
    EXPECT_EQ(zo::Find("Scratch"), node);
    EXPECT_EQ(node->Name(), "Scratch");
    H const second(new rows::Plain);
    EXPECT_TRUE(embankment::FailsAs(registry.Insert("Scratch", second), zo::ZOError::duplicate_name()));
    EXPECT_TRUE(embankment::Succeeds(registry.InsertTemporary("Scratch", second)));
    EXPECT_EQ(zo::Find("Scratch"), node) << "the first one answers";
}

TEST_F(FindTest, InsertingNothingSucceedsAndAddsNothing) {
    EXPECT_TRUE(embankment::Succeeds(embankment.registry->Insert("Scratch", H())));
    EXPECT_TRUE(embankment::Succeeds(embankment.registry->InsertTemporary("Scratch", H())));
    EXPECT_FALSE(zo::Find("Scratch"));
}

TEST_F(FindTest, ANameOutOfNormalFormMayBeInsertedTwice) {
    H const first(new rows::Plain), second(new rows::Plain);
    EXPECT_TRUE(embankment::Succeeds(embankment.registry->Insert("Soils[9]", first)));
    EXPECT_TRUE(embankment::Succeeds(embankment.registry->Insert("Soils[9]", second)));
    EXPECT_EQ(zo::Find("Soils[9]"), first);
}

TEST_F(FindTest, AnIndexWithADotCountsAsANormalName) {
    H const first(new rows::Plain), second(new rows::Plain);
    for (char const* const name : {"Soils.9", "Soils.At(9)"}) {
        EXPECT_TRUE(embankment::Succeeds(embankment.registry->Insert(name, first))) << name;
        EXPECT_TRUE(embankment::FailsAs(embankment.registry->Insert(name, second), zo::ZOError::duplicate_name()));
    }
}

} // namespace
