// Links: members that hold the number of a record and lead to it.
#include "tests/kit/Ground.h"

#include <limits>
#include <map>

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Persist;

class LinkTest : public GroundTest {
protected:
    LinkTest() { RegisterGround(); }
};

TEST_F(LinkTest, ALinkIsTheNumberOfItsRecord) {
    EXPECT_EQ(TextOf("Regions[0].Material"), L"2");
    htl::Int64 number = 0;
    ASSERT_TRUE(Succeeds(zo::Find("Regions[1].Material")->Get(number)));
    EXPECT_EQ(number, 3);
    ASSERT_TRUE(Succeeds(zo::Find("Regions[1].Material")->Set(1)));
    EXPECT_EQ(regions[1].material, 1);
}

TEST_F(LinkTest, NamesAndTagsGoOnThroughALink) {
    EXPECT_EQ(TextOf("Regions[0].Material.Cohesion"), L"25");
    EXPECT_EQ(TextOf(zo::FindTag(zo::Find("Regions[0].Material"), L"Name")), L"Clay");
    EXPECT_EQ(TextOf(zo::LookupRelative(zo::Find("Regions"), L"[1].Material.Name")), L"Clay") << "tags count from 1";
    EXPECT_EQ(TextOf(zo::Find(zo::Find("Regions[0].Material"), "Name")), L"Clay");
}

TEST_F(LinkTest, AtIsTheRecordItself) {
    EXPECT_EQ(NameOf(zo::Find("Regions[0].Material.@")), "Materials[1]");
    EXPECT_EQ(NameOf(zo::GetSource(zo::Find("Regions[1].Material"))), "Materials[2]");
}

TEST_F(LinkTest, WritingThroughALinkChangesTheRecord) {
    ASSERT_TRUE(Succeeds(zo::Find("Regions[0].Material.Cohesion")->Set(30.0)));
    EXPECT_EQ(materials[1].cohesion, 30);
}

TEST_F(LinkTest, LinksOfRecordsLeadOn) {
    EXPECT_EQ(TextOf("Regions[0].Material.Substitute.Name"), L"Fill");
    EXPECT_EQ(TextOf("Regions[0].Material.Substitute.Substitute.Name"), L"Clay") << "and back, in a circle";
    EXPECT_EQ(TextOf("Survey.Settings.Cover"), L"");
    survey.settings.cover = 3;
    EXPECT_EQ(TextOf("Survey.Settings.Cover.Cohesion"), L"400");
}

TEST_F(LinkTest, ALinkToNoRecordIsEmptyAndLeadsNowhere) {
    regions[0].material = 0;
    zo::H const link = zo::Find("Regions[0].Material");
    EXPECT_EQ(TextOf(link), L"");
    EXPECT_TRUE(link->IsUndefined());
    EXPECT_TRUE(link->IsDefault());
    EXPECT_EQ(zo::GetLink(link, zo::Link::AsStored), (GGID{materialGroup, 0}));
    EXPECT_FALSE(zo::Find("Regions[0].Material.@"));
    EXPECT_FALSE(zo::Find("Regions[0].Material.Cohesion"));
}

TEST_F(LinkTest, ALinkPastTheLastRecordKeepsItsNumberAndLeadsNowhere) {
    ASSERT_TRUE(Succeeds(zo::Find("Regions[0].Material")->Set(4)));
    EXPECT_EQ(TextOf("Regions[0].Material"), L"4");
    EXPECT_FALSE(zo::Find("Regions[0].Material.@"));
    materials.push_back({L"Peat", 2, 0});
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Peat");
}

TEST_F(LinkTest, ALinkLeadsNowhereWhileTheBranchOfItsRecordsIsNotThere) {
    hasMaterials = false;
    EXPECT_FALSE(zo::Find("Regions[0].Material.@"));
    EXPECT_EQ(TextOf("Regions[0].Material"), L"2");
    hasMaterials = true;
    EXPECT_TRUE(zo::Find("Regions[0].Material.@"));
}

TEST_F(LinkTest, ANegativeNumberIsRefused) {
    EXPECT_TRUE(FailsAs(zo::Find("Regions[0].Material")->Set(-1), htl::status::FromText(L"-1 is less than 0.")));
    EXPECT_EQ(regions[0].material, 2);
}

TEST_F(LinkTest, ANegativeNumberInMemoryLeadsNowhere) {
    regions[0].material = -1;
    EXPECT_FALSE(zo::Find("Regions[0].Material.@"));
    regions[0].material = std::numeric_limits<int>::min();
    EXPECT_FALSE(zo::Find("Regions[0].Material.@"));
}

TEST_F(LinkTest, SetLinkStoresTheNumberAndZeroForNone) {
    zo::H const link = zo::Find("Regions[0].Material");
    EXPECT_TRUE(zo::IsLinkField(link));
    ASSERT_TRUE(Succeeds(zo::SetLink(link, {materialGroup, 3})));
    EXPECT_EQ(regions[0].material, 3);
    EXPECT_EQ(zo::GetLink(link, zo::Link::AsStored), (GGID{materialGroup, 3}));
    ASSERT_TRUE(Succeeds(zo::SetLink(link, {})));
    EXPECT_EQ(regions[0].material, 0);
}

TEST_F(LinkTest, SetLinkTakesTheRecordThatANodeLiesIn) {
    zo::H const cohesion = zo::Find("Materials[2].Cohesion");
    ASSERT_TRUE(Succeeds(zo::SetLink(zo::Find("Regions[0].Material"), zo::GetRecordID(cohesion, zo::Link::AsStored))));
    EXPECT_EQ(regions[0].material, 3);
}

TEST_F(LinkTest, SetLinkRefusesARecordOfAnotherGroup) {
    EXPECT_TRUE(FailsAs(zo::SetLink(zo::Find("Regions[0].Material"), {regionGroup, 1}),
                        htl::status(27568, L"", L"", L"", L"")));
    EXPECT_EQ(regions[0].material, 2);
}

TEST_F(LinkTest, EmptyTextMeansNone) {
    ASSERT_TRUE(Succeeds(zo::Find("Regions[0].Material")->Set(L"")));
    EXPECT_EQ(regions[0].material, 0);
}

TEST_F(LinkTest, ATransactionStagesALinkAndWhatItLeadsTo) {
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Regions[0].Material")->Set(3)));
    ASSERT_TRUE(Succeeds(transaction->Find("Regions[1].Material.Cohesion")->Set(450.0)));
    EXPECT_EQ(regions[0].material, 2);
    EXPECT_EQ(materials[2].cohesion, 400);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(regions[0].material, 3);
    EXPECT_EQ(materials[2].cohesion, 450);
}

TEST_F(LinkTest, AWalkOverAllNodesStopsAtLinks) {
    int links = 0;
    for (auto at = registry->begin(); !(at == registry->end()); ++at) {
        EXPECT_EQ(at->Name().find(".Substitute."), std::string::npos);
        if (at->SubName() == "Substitute" || at->SubName() == "Material") ++links;
    }
    EXPECT_EQ(links, 5) << "of three materials and two regions";
}

// ---- Documents

TEST_F(LinkTest, ADocumentHoldsTheNumberAndAnEmptyPlaceForNone) {
    regions[1].material = 0;
    std::wstring const body = Body();
    EXPECT_NE(body.find(L"<Regions Len=\"2\"><Region Area=\"60\" Material=\"2\"/><Region Area=\"90\" Material=\"\"/>"
                        L"</Regions>"),
              std::wstring::npos)
        << str::as_cstring(body);
    EXPECT_NE(body.find(L"<Material><Name>Rock</Name><Cohesion>400</Cohesion></Material>"), std::wstring::npos)
        << "no substitute, and left out: " << str::as_cstring(body);
}

TEST_F(LinkTest, LinksComeBackFromADocument) {
    regions[1].material = 0;
    survey.settings.cover = 1;
    auto const savedMaterials = materials;
    auto const savedRegions = regions;
    auto const savedProfiles = survey.profiles;
    std::wstring const document = Save();
    materials = {{L"Peat", 1, 1}};
    regions = {{1, 1}, {1, 1}, {1, 1}};
    survey = {};
    survey.settings.cover = 9;
    Load(document);
    EXPECT_EQ(materials, savedMaterials);
    EXPECT_EQ(regions, savedRegions);
    EXPECT_EQ(survey.profiles, savedProfiles);
    EXPECT_EQ(survey.settings.cover, 1u);
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Clay");
}

TEST_F(LinkTest, ADocumentWithALinkToNoRecordIsLoadedAsItIs) {
    Load(Document(L"<Regions Len=\"1\"><Region Area=\"1\" Material=\"70\"/></Regions>"));
    ASSERT_EQ(regions.size(), 1u);
    EXPECT_EQ(regions[0].material, 70);
    EXPECT_FALSE(zo::Find("Regions[0].Material.@"));
}

TEST_F(LinkTest, RemovingARecordInTheMiddleMovesWhatLinksLeadTo) {
    materials.erase(materials.begin());
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Rock") << "record 2 is another one now";
    EXPECT_FALSE(zo::Find("Regions[1].Material.@"));
}

TEST_F(LinkTest, ClearSetsALinkToNone) {
    zo::Find("Regions[0].Material")->Clear();
    EXPECT_EQ(regions[0].material, 0);
    EXPECT_EQ(materials[1].name, L"Clay") << "the record stays";
}

TEST_F(LinkTest, APlainFieldWithAGroupKnowsItsRecordAndLeadsNowhere) {
    zo::H const next = zo::Find("Survey.Profiles[1].Wells[0].Next");
    EXPECT_TRUE(zo::IsLinkField(next));
    EXPECT_EQ(zo::GetLink(next, zo::Link::AsStored), (GGID{wellGroup, 3}));
    EXPECT_FALSE(zo::Find("Survey.Profiles[1].Wells[0].Next.@"));
    EXPECT_EQ(NameOf(zo::GetSource(zo::GetLink(next, zo::Link::Packed))), "Survey.Profiles[1].Wells[2]");
}

// ---- Several registrations and lifetimes

class LaterLinkTest : public GroundTest {};

TEST_F(LaterLinkTest, ALinkReachesTheRecordsOfAnEarlierRegistration) {
    Register({[this](Kit& kit) { MaterialModule(kit); }});
    Register({[this](Kit& kit) { RegionModule(kit); }});
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Clay");
}

TEST_F(LaterLinkTest, TheOrderOfModulesDoesNotMatter) {
    Register({[this](Kit& kit) { RegionModule(kit); }, [this](Kit& kit) { MaterialModule(kit); }});
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Clay");
}

TEST_F(LaterLinkTest, EachRegistryHasRecordsOfItsOwn) {
    RegisterGround();
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    zo::ZORegistry::SetInstance(other.get());
    static std::vector<Material> others{{L"Basalt", 900, 0}, {L"Tuff", 80, 1}};
    Register({[](Kit& kit) {
        kit.Record<Material>("Material")
            .Field<&Material::name>("Name", L"Name")
            .Link<&Material::substitute>("Substitute", L"Substitute", materialGroup);
        kit.Branch<std::vector<Material>>("Rocks", L"Rocks[Rock]", [] { return &others; },
                                          {.recordGroup = materialGroup});
    }});
    EXPECT_EQ(TextOf("Rocks[1].Substitute.Name"), L"Basalt");
    zo::ZORegistry::SetInstance(registry.get());
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Clay");
}

TEST_F(LaterLinkTest, AViewOfALinkOutlivesItsRegistry) {
    RegisterGround();
    zo::H const link = zo::Find("Regions[0].Material");
    zo::ZORegistry::SetInstance(nullptr);
    registry.release();
    htl::handle<zo::ZORegistry> const empty(new zo::ZORegistry);
    zo::ZORegistry::SetInstance(empty.get());
    EXPECT_EQ(dynamic_cast<zo::ZORedirect const&>(*link).RedirectName(), "Materials[1]");
    EXPECT_FALSE(dynamic_cast<zo::ZORedirect const&>(*link).Redirect());
    EXPECT_EQ(TextOf(link), L"2");
}

TEST_F(LaterLinkTest, ElementsOfMapsHaveLinks) {
    struct Load {
        double force = 0; // kN
        unsigned long region = 0;
    };
    struct Loads {
        std::map<std::string, Load> byName;
    };
    static Loads loads{{{"Crane", {40, 2}}, {"Truck", {25, 1}}}};
    Register({[this](Kit& kit) { MaterialModule(kit); }, [this](Kit& kit) { RegionModule(kit); },
              [](Kit& kit) {
                  kit.Record<Load>("Load")
                      .Field<&Load::force>("Force", L"Force")
                      .Link<&Load::region>("Region", L"Region", regionGroup);
                  kit.Record<Loads>("Loads").Map<&Loads::byName>("ByName", L"ByName[Load]");
                  kit.Branch<Loads>("Loads", L"Loads", [] { return &loads; });
              }});
    EXPECT_EQ(TextOf("Loads.ByName.At(Crane).second.Region.Material.Name"), L"Rock");
    EXPECT_EQ(TextOf("Loads.ByName[1].second.Region.Area"), L"60");
}

// ---- The types of members

template <class T>
class LinkTypeTest : public KitTest {
protected:
    struct Drain {
        double flow = 1.5; // l/s
        T outlet = 0;
    };

    LinkTypeTest() {
        this->Register({[this](Kit& kit) {
            kit.Record<Drain>("Drain")
                .template Field<&Drain::flow>("Flow", L"Flow")
                .template Link<&Drain::outlet>("Outlet", L"Outlet", 33);
            kit.Branch<std::vector<Drain>>("Drains", L"Drains[Drain]", [this] { return &drains; }, {.recordGroup = 33});
        }});
    }

    std::vector<Drain> drains{{2, 2}, {3, 0}};
};
using LinkTypes = testing::Types<int, unsigned, long, unsigned long, htl::Int64, htl::UInt64>;
TYPED_TEST_SUITE(LinkTypeTest, LinkTypes);

TYPED_TEST(LinkTypeTest, LeadsToTheRecord) {
    EXPECT_EQ(TextOf("Drains[0].Outlet.Flow"), L"3");
    EXPECT_EQ(TextOf("Drains[1].Outlet"), L"");
    ASSERT_TRUE(Succeeds(zo::SetLink(zo::Find("Drains[1].Outlet"), {33, 1})));
    EXPECT_TRUE(this->drains[1].outlet == 1);
}

TYPED_TEST(LinkTypeTest, ComesBackFromADocument) {
    EXPECT_EQ(this->Body(), L"<Drains Len=\"2\"><Drain><Flow>2</Flow><Outlet>2</Outlet></Drain>"
                            L"<Drain><Flow>3</Flow><Outlet Missing=\"true\"/></Drain></Drains>");
    std::wstring const document = this->Save();
    this->drains = {{7, 1}, {7, 1}};
    this->Load(document);
    EXPECT_TRUE(this->drains[0].outlet == 2);
    EXPECT_TRUE(this->drains[1].outlet == 0);
}

TYPED_TEST(LinkTypeTest, ARecordsLargestNumberIsTaken) {
    constexpr htl::Int64 largest = std::min<htl::Int64>(
        std::numeric_limits<GID>::max() - 1, sizeof(TypeParam) == 4 ? std::numeric_limits<int>::max() - 1 : 0xFFFFFFFE);
    ASSERT_TRUE(Succeeds(zo::Find("Drains[0].Outlet")->Set(largest)));
    EXPECT_TRUE(static_cast<htl::Int64>(this->drains[0].outlet) == largest);
    EXPECT_FALSE(zo::Find("Drains[0].Outlet.@"));
}

TYPED_TEST(LinkTypeTest, ANumberThatNoRecordHasIsRefused) {
    EXPECT_TRUE(zo::Find("Drains[0].Outlet")->Set(-1).IsError());
    EXPECT_TRUE(zo::Find("Drains[0].Outlet")->Set(0x100000000).IsError());
    EXPECT_TRUE(this->drains[0].outlet == 2);
}

using LargeLinkTest = LinkTypeTest<htl::Int64>;

TEST_F(LargeLinkTest, TheRefusalNamesTheRange) {
    EXPECT_TRUE(FailsAs(zo::Find("Drains[0].Outlet")->Set(0x100000000),
                        htl::status(21662, L"4294967296", L"0", L"4294967295")));
}

} // namespace
} // namespace site
