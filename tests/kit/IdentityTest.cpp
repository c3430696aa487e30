// Records: which one a node belongs to, and the node of one.
#include "tests/kit/Ground.h"

#include "Common/registry/RegistryImpl.h"

#include <map>

namespace site {
namespace {

using hzn::gid::ContainerRef;
using hzn::gid::PackedContainerGID;
using zo::Link;
using zo::kit::Kit;

GGID RecordOf(std::string const& name, Link::Type type = Link::AsStored) {
    return zo::GetRecordID(zo::Find(name), type);
}

class IdentityTest : public GroundTest {
protected:
    IdentityTest() { RegisterGround(); }
};

TEST_F(IdentityTest, AnElementHasTheGroupOfItsArrayAndCountsFromOne) {
    EXPECT_EQ(RecordOf("Materials[2]"), (GGID{materialGroup, 3}));
    EXPECT_EQ(RecordOf("Materials[0].Cohesion"), (GGID{materialGroup, 1}));
    EXPECT_EQ(RecordOf("Regions[1].Area"), (GGID{regionGroup, 2}));
    EXPECT_EQ(RecordOf("Survey.Profiles[1].Name"), (GGID{profileGroup, 2}));
}

TEST_F(IdentityTest, AStructureWithAGroupIsRecordOne) {
    EXPECT_EQ(RecordOf("Survey.Settings"), (GGID{settingsGroup, 1}));
    EXPECT_EQ(RecordOf("Survey.Settings.Tolerance"), (GGID{settingsGroup, 1}));
    EXPECT_EQ(NameOf(zo::GetSource(GGID{settingsGroup, 1})), "Survey.Settings");
    EXPECT_FALSE(zo::GetSource(GGID{settingsGroup, 2}));
}

TEST_F(IdentityTest, WhatLiesInNoRecordHasNone) { EXPECT_EQ(RecordOf("Survey"), GGID()); }

TEST_F(IdentityTest, ARecordInsideAnotherIsPackedWithIt) {
    EXPECT_EQ(RecordOf("Survey.Profiles[1].Wells[2].Depth"), (GGID{wellGroup, 3}));
    GGID const packed = RecordOf("Survey.Profiles[1].Wells[2].Depth", Link::Packed);
    EXPECT_EQ(packed, (GGID{PackedContainerGID({profileGroup, 2}, wellGroup), 3}));
    EXPECT_EQ(NameOf(zo::GetSource(packed)), "Survey.Profiles[1].Wells[2]");
    EXPECT_FALSE(zo::GetSource(GGID{wellGroup, 3})) << "of which profile?";
}

TEST_F(IdentityTest, EveryRecordIsFoundByItsIdentifier) {
    for (std::string const name : {"Materials[0]", "Materials[2]", "Regions[1]", "Survey.Settings",
                                   "Survey.Profiles[0]", "Survey.Profiles[0].Wells[1]", "Survey.Profiles[1].Wells[0]"})
        EXPECT_EQ(NameOf(zo::GetSource(RecordOf(name, Link::Packed))), name);
}

TEST_F(IdentityTest, ACopyOfTheViewOfAnIdentifierLeadsToTheSameRecord) {
    GGID id{materialGroup, 2};
    zo::H const view = registry->Wrap(zo::ZOTypeTemplate::Lookup(typeid(GGID))->RegID(), &id);
    zo::H const copy(view->Clone());
    EXPECT_EQ(NameOf(zo::GetSource(copy)), "Materials[1]");
    id.id = 3;
    EXPECT_EQ(NameOf(zo::GetSource(copy)), "Materials[2]");
}

TEST_F(IdentityTest, ACopyOfTheViewOfAReferenceLeadsToTheSameContainer) {
    ContainerRef reference(GGID{profileGroup, 2}, wellGroup);
    zo::H const view = registry->Wrap(zo::ZOTypeTemplate::Lookup(typeid(ContainerRef))->RegID(), &reference);
    EXPECT_EQ(NameOf(zo::GetSource(zo::H(view->Clone()))), "Survey.Profiles[1].Wells");
}

TEST_F(IdentityTest, NoRecordIsFoundPastTheEndOrForAWordThatIsZeroOrUnknown) {
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 4}));
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 0xFFFFFFFF}));
    EXPECT_FALSE(zo::GetSource(GGID{materialGroup, 0}));
    EXPECT_FALSE(zo::GetSource(GGID{0, 1}));
    EXPECT_FALSE(zo::GetSource(GGID{11, 1}));
    EXPECT_FALSE(zo::GetSource(GGID{0xFFFFFFFF, 1}));
    EXPECT_FALSE(zo::GetSource(GGID{PackedContainerGID({profileGroup, 9}, wellGroup), 1}));
    EXPECT_FALSE(zo::GetSource(GGID{PackedContainerGID({profileGroup, 1}, 131), 1}));
    EXPECT_FALSE(zo::GetSource(GGID{PackedContainerGID({materialGroup, 1}, wellGroup), 1}));
    EXPECT_FALSE(zo::GetSource(GGID{PackedContainerGID({settingsGroup, 2}, wellGroup), 1}));
}

TEST_F(IdentityTest, ATransactionFindsItsOwnStateOfARecord) {
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Materials[1].Cohesion")->Set(40.0)));
    zo::H const material = zo::GetSource(transaction.get(), GGID{materialGroup, 2});
    ASSERT_TRUE(material);
    EXPECT_EQ(material->Owner(), transaction.get());
    EXPECT_EQ(TextOf(transaction->Find(material, "Cohesion")), L"40");
    EXPECT_EQ(TextOf(zo::Find(zo::GetSource(GGID{materialGroup, 2}), "Cohesion")), L"25");
}

TEST_F(IdentityTest, WhatWasStagedForOneRecordIsCommittedToAnother) {
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Materials[0].Cohesion")->Set(7.5)));
    ASSERT_TRUE(Succeeds(zo::CommitAs(transaction, GGID{materialGroup, 1}, GGID{materialGroup, 3}, "", "")));
    EXPECT_EQ(materials[2].cohesion, 7.5);
    EXPECT_EQ(materials[0].cohesion, 5);
}

TEST_F(IdentityTest, APathOfTagsGoesOnFromARecord) {
    EXPECT_EQ(TextOf(zo::LookupRelative(GGID{materialGroup, 2}, L"Cohesion")), L"25");
    EXPECT_EQ(zo::GetObjectName(zo::GetSource(GGID{materialGroup, 3})), L"Rock");
}

TEST_F(IdentityTest, AReferenceIntoARecordLeadsToTheContainerOfTheGroup) {
    EXPECT_EQ(NameOf(zo::GetSource(ContainerRef({profileGroup, 2}, wellGroup))), "Survey.Profiles[1].Wells");
    EXPECT_EQ(NameOf(zo::GetSource(ContainerRef({}, PackedContainerGID({profileGroup, 1}, wellGroup)))),
              "Survey.Profiles[0].Wells");
    EXPECT_EQ(NameOf(zo::GetSource(ContainerRef({}, materialGroup))), "Materials") << "which stands by itself";
    EXPECT_EQ(NameOf(zo::GetSource(ContainerRef({}, settingsGroup))), "Survey.Settings");
    auto const transaction = registry->CreateTransaction();
    zo::H const staged = zo::GetSource(transaction.get(), ContainerRef({profileGroup, 2}, wellGroup));
    ASSERT_TRUE(staged);
    EXPECT_EQ(staged->Owner(), transaction.get());
}

TEST_F(IdentityTest, AReferenceToWhatIsNotThereLeadsNowhere) {
    EXPECT_FALSE(zo::GetSource(ContainerRef()));
    EXPECT_FALSE(zo::GetSource(ContainerRef({}, wellGroup)));
    EXPECT_FALSE(zo::GetSource(ContainerRef({profileGroup, 3}, wellGroup)));
    EXPECT_FALSE(zo::GetSource(ContainerRef({profileGroup, 1}, materialGroup)));
    EXPECT_FALSE(zo::GetSource(ContainerRef({profileGroup, 1}, 0)));
}

TEST_F(IdentityTest, TheRowsOfIdentifiersAreNeitherWalkedNorSavedNorFound) {
    for (auto at = registry->begin(); !(at == registry->end()); ++at) EXPECT_NE(at->Name().front(), ':');
    EXPECT_EQ(Save().find(L':'), std::wstring::npos);
    EXPECT_FALSE(zo::Find(":Record"));
    EXPECT_FALSE(zo::Find(":Contained"));
    registry->Clear();
    EXPECT_EQ(NameOf(zo::GetSource(GGID{regionGroup, 1})), "Regions[0]") << "they are still there";
}

TEST_F(IdentityTest, ALaterRegistrationAddsItsGroups) {
    static std::vector<Point> pins{{1, 2}, {3, 4}};
    std::size_t const before = registry->Tables()->RowCount();
    Register({&PointModule, [](Kit& kit) {
                  kit.Branch<std::vector<Point>>("Pins", L"Pins[Pin]", [] { return &pins; }, {.recordGroup = 40});
              }});
    EXPECT_EQ(registry->Tables()->RowCount(), before + 4) << "the rows of identifiers stand once";
    EXPECT_EQ(NameOf(zo::GetSource(GGID{40, 2})), "Pins[1]");
    EXPECT_EQ(NameOf(zo::GetSource(GGID{materialGroup, 2})), "Materials[1]");
}

class OtherIdentityTest : public GroundTest {};

TEST_F(OtherIdentityTest, NothingIsAddedWhereNoGroupIsDeclared) {
    static std::vector<Point> pins{{1, 2}};
    Register(
        {&PointModule, [](Kit& kit) { kit.Branch<std::vector<Point>>("Pins", L"Pins[Pin]", [] { return &pins; }); }});
    EXPECT_EQ(registry->Tables()->RowCount(), 5u) << "the root, the array, its element and two coordinates";
    EXPECT_FALSE(zo::GetSource(GGID{40, 1}));
}

/// What an application may register itself: every identifier is the survey.
class SurveyView final : public zo::ZOWrapperLinkBase {
public:
    SurveyView() : SurveyView(npos, nullptr, nullptr, {}) {}
    SurveyView(std::size_t regID, zo::ZOSet* owner, void* memory, htl::handle<zo::ZOMemMgr> const& manager)
        : ZOWrapperLinkBase(regID, owner, zo::kit::impl::RecordView::Traits(), memory, manager) {}
    std::string RedirectName() const override { return "Survey"; }
    IZO* Clone() override { return new SurveyView(RegID(), Owner(), Memory(), Manager()); }
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new SurveyView(RegID(), Owner(), memory, manager);
    }
};

TEST_F(OtherIdentityTest, AnApplicationKeepsItsOwnNodeOfIdentifiers) {
    zo::H const view(new SurveyView);
    registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODSName("Identifiers", false)), view,
                         {meta::MetaPersistTraits::No, L""}, zo::kit::impl::RecordView::Traits());
    zo::ZOTypeTemplate::Register(typeid(GGID), view);
    RegisterGround();
    EXPECT_EQ(NameOf(zo::GetSource(GGID{materialGroup, 1})), "Survey");
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Clay") << "links go by the declared groups all the same";
}

TEST_F(OtherIdentityTest, ValuesAndElementsOfMapsCanBeRecords) {
    struct Gauge {
        std::vector<double> readings{1, 2};
        std::map<int, double> limits{{4, 0.5}, {9, 0.75}};
        std::map<int, Point> pins{{3, {1, 2}}};
    };
    static Gauge gauge;
    gauge = {};
    Register({&PointModule, [](Kit& kit) {
                  kit.Record<Gauge>("Gauge")
                      .Array<&Gauge::readings>("Readings", L"Readings", {.recordGroup = 50})
                      .Map<&Gauge::limits>("Limits", L"Limits[Limit]", {.recordGroup = 51})
                      .Map<&Gauge::pins>("Pins", L"Pins[Pin]", {.recordGroup = 52});
                  kit.Branch<Gauge>("Gauge", L"Gauge", [] { return &gauge; });
              }});
    EXPECT_EQ(RecordOf("Gauge.Readings[1]"), (GGID{50, 2}));
    EXPECT_EQ(NameOf(zo::GetSource(GGID{50, 2})), "Gauge.Readings[1]");
    EXPECT_EQ(RecordOf("Gauge.Limits.At(9).second"), (GGID{51, 2}));
    EXPECT_EQ(TextOf(zo::Find(zo::GetSource(GGID{51, 2}), "second")), L"0.75");
    EXPECT_EQ(RecordOf("Gauge.Pins[0].second.Y"), (GGID{52, 1}));
}

TEST_F(OtherIdentityTest, AStructureAndTheRecordsOfAStructureLieInsideIt) {
    struct Head {
        double level = 3; // m
    };
    struct Shaft {
        Head head;
        std::vector<Point> pins;
    };
    struct Works {
        Shaft shaft{{}, {{1, 2}, {5, 6}}};
        std::vector<Point> piles{{7, 8}};
        std::vector<Shaft> others{{{4}, {{3, 4}}}};
    };
    static Works works;
    Register({&PointModule, [](Kit& kit) {
                  kit.Record<Head>("Head", {.recordGroup = 201}).Field<&Head::level>("Level", L"Level");
                  kit.Record<Shaft>("Shaft")
                      .Struct<&Shaft::head>("Head", L"Head")
                      .Array<&Shaft::pins>("Pins", L"Pins[Pin]", {.recordGroup = 202});
                  kit.Record<Works>("Works", {.recordGroup = 60})
                      .Array<&Works::piles>("Piles", L"Piles[Pile]", {.recordGroup = 62})
                      .Struct<&Works::shaft>("Shaft", L"Shaft");
                  kit.Branch<Works>("Works", L"Works", [] { return &works; });
                  kit.Branch<std::vector<Shaft>>("Shafts", L"Shafts[Shaft]", [] { return &works.others; },
                                                 {.recordGroup = 61});
              }});
    for (std::string const name : {"Works.Shaft.Head", "Works.Shaft.Pins[1]", "Shafts[0].Head", "Shafts[0].Pins[0]"})
        EXPECT_EQ(NameOf(zo::GetSource(RecordOf(name, Link::Packed))), name);
    EXPECT_EQ(RecordOf("Works.Piles[0]", Link::Packed), (GGID{62, 1})) << "a group that stands by itself";
    EXPECT_EQ(NameOf(zo::GetSource(GGID{62, 1})), "Works.Piles[0]");
    EXPECT_EQ(RecordOf("Works.Shaft.Head.Level", Link::Packed), (GGID{PackedContainerGID({60, 1}, 201), 1}));
}

TEST_F(OtherIdentityTest, OnlyTheFirst511RecordsHaveRecordsInsideThatAreFound) {
    RegisterGround();
    survey.profiles.assign(512, {L"Row", {{1, 0}}});
    GGID const last = RecordOf("Survey.Profiles[510].Wells[0]", Link::Packed);
    EXPECT_EQ(NameOf(zo::GetSource(last)), "Survey.Profiles[510].Wells[0]");
    GGID const beyond = RecordOf("Survey.Profiles[511].Wells[0]", Link::Packed);
    EXPECT_FALSE(hzn::gid::IsValid(beyond)) << "the numbers do not fit, and must not be another record's";
    EXPECT_EQ(NameOf(zo::GetSource(GGID{profileGroup, 512})), "Survey.Profiles[511]");
}

} // namespace
} // namespace site
