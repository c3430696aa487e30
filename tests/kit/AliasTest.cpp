// Aliases: other names for nodes that are declared elsewhere, or not at all.
#include "tests/kit/Ground.h"

namespace site {
namespace {

using zo::kit::Kit;

class AliasTest : public GroundTest {
protected:
    AliasTest() { RegisterGround(); }
};

TEST_F(AliasTest, AnAliasReadsAndWritesItsSource) {
    Register({[](Kit& kit) { kit.Alias("Strength", L"Strength", "Materials[1].Cohesion"); }});
    EXPECT_EQ(TextOf("Strength"), L"25");
    ASSERT_TRUE(Succeeds(zo::Find("Strength")->Set(26.0)));
    EXPECT_EQ(materials[1].cohesion, 26);
}

TEST_F(AliasTest, WhatLiesBelowTheSourceLiesBelowTheAlias) {
    Register({[](Kit& kit) { kit.Alias("Soils", L"Soils", "Materials"); }});
    EXPECT_EQ(TextOf("Soils[2].Name"), L"Rock");
    EXPECT_EQ(zo::Find("Soils")->Length(), 3u);
    EXPECT_EQ(TextOf(zo::FindTag(L"Soils[1].Name")), L"Fill");
}

TEST_F(AliasTest, AnAliasSeesASourceThatIsReplaced) {
    Register({[](Kit& kit) { kit.Alias("Top", L"Top", "Materials[0]"); }});
    zo::H const top = zo::Find("Top.Name");
    EXPECT_EQ(TextOf(top), L"Fill");
    EXPECT_TRUE(zo::Find("Top"));
    materials = {{L"Peat", 1, 0}};
    EXPECT_EQ(TextOf("Top.Name"), L"Peat");
}

TEST_F(AliasTest, AKeptSourceStaysUntilMemoryIsInvalidated) {
    struct Gate {
        double width = 4; // m
    };
    static Gate first, second;
    first.width = 4;
    second.width = 5;
    static Gate* gate;
    gate = &first;
    Register({[](Kit& kit) {
        kit.Record<Gate>("Gate").Field<&Gate::width>("Width", L"Width");
        kit.Branch<Gate>("Gate", L"Gate", [] { return gate; });
        kit.Alias("Kept", L"Kept", "Gate.Width", {.kept = true});
        kit.AliasByTag("Tagged", L"Tagged", L"Gate.Width");
        kit.Alias("Fresh", L"Fresh", "Gate.Width");
    }});
    EXPECT_EQ(TextOf("Kept"), L"4");
    EXPECT_EQ(TextOf("Tagged"), L"4");
    EXPECT_EQ(TextOf("Fresh"), L"4");
    gate = &second;
    EXPECT_EQ(TextOf("Kept"), L"4");
    EXPECT_EQ(TextOf("Tagged"), L"4");
    EXPECT_EQ(TextOf("Fresh"), L"5");
    registry->InvalidateMemory("");
    EXPECT_EQ(TextOf("Kept"), L"5");
    EXPECT_EQ(TextOf("Tagged"), L"5");
}

TEST_F(AliasTest, AnAliasByTagCountsFromOne) {
    Register({[](Kit& kit) { kit.AliasByTag("Strength", L"Strength", L"Materials[1].Cohesion"); }});
    EXPECT_EQ(TextOf("Strength"), L"5");
}

TEST_F(AliasTest, AnAliasGoesThroughALink) {
    Register({[](Kit& kit) { kit.Alias("Strength", L"Strength", "Regions[1].Material.Cohesion"); }});
    EXPECT_EQ(TextOf("Strength"), L"400");
    regions[1].material = 1;
    EXPECT_EQ(TextOf("Strength"), L"5");
}

TEST_F(AliasTest, AnAliasOfALinkIsALink) {
    Register({[](Kit& kit) { kit.Alias("First", L"First", "Regions[0].Material"); }});
    EXPECT_TRUE(zo::IsLinkField("First"));
    EXPECT_EQ(zo::GetLink(zo::Find("First"), zo::Link::AsStored), (GGID{materialGroup, 2}));
    EXPECT_EQ(TextOf("First.Name"), L"Clay");
}

TEST_F(AliasTest, TheSourceNeedNotBeThere) {
    Register({[](Kit& kit) {
        kit.Alias("Later", L"Later", "Pins[0].X");
        kit.AliasByTag("LaterTag", L"LaterTag", L"Pins[1].Y");
    }});
    EXPECT_TRUE(FailsAs(zo::Find("Later")->Set(1.0), zo::ZOError::not_found("Pins[0].X")));
    EXPECT_TRUE(zo::Find("Later")->IsUndefined());
    static std::vector<Point> pins;
    pins = {{3, 4}};
    Register(
        {&PointModule, [](Kit& kit) { kit.Branch<std::vector<Point>>("Pins", L"Pins[Pin]", [] { return &pins; }); }});
    EXPECT_EQ(TextOf("Later"), L"3");
    EXPECT_EQ(TextOf("LaterTag"), L"4");
}

TEST_F(AliasTest, AnAliasLiesBelowAGroup) {
    Register({[](Kit& kit) {
        kit.Alias("Short.Top", L"Top", "Materials[0]");
        kit.Group("Short", L"Short");
        kit.AliasSet("Short.Cover", L"Cover", {{"Strength", "Materials[0].Cohesion"}});
    }});
    EXPECT_EQ(TextOf("Short.Top.Name"), L"Fill");
    EXPECT_EQ(TextOf("Short.Cover.Strength"), L"5");
    EXPECT_EQ(NameOf(zo::FindTag(L"Short.Top")), "Short.Top");
}

TEST_F(AliasTest, BelowAGroupEachAliasHandedOutKeepsItsSourceForItself) {
    Register({[](Kit& kit) {
        kit.Group("Short", L"Short");
        kit.Alias("Short.Strength", L"Strength", "Materials[1].Cohesion", {.kept = true});
    }});
    zo::H strength = zo::Find("Short.Strength");
    EXPECT_EQ(TextOf(strength), L"25");
    registry->InvalidateMemory("");
    EXPECT_TRUE(FailsAs(zo::Find("Materials")->SetLength(2), zo::ZOError::array_memory_conflict()));
    strength.release();
    EXPECT_TRUE(Succeeds(zo::Find("Materials")->SetLength(2)));
}

TEST_F(AliasTest, AliasesThatLeadInACircleAnswerNothing) {
    Register({[](Kit& kit) {
        kit.Alias("Hen", L"Hen", "Egg");
        kit.Alias("Egg", L"Egg", "Hen", {.kept = true});
    }});
    EXPECT_TRUE(FailsAs(zo::Find("Hen")->Set(1.0), zo::ZOError::not_found("Egg")));
    EXPECT_FALSE(zo::Find("Hen.Name"));
}

TEST_F(AliasTest, AliasesAreNeverInDocuments) {
    std::wstring const before = Body();
    Register({[](Kit& kit) {
        kit.Alias("Top", L"Top", "Materials[0]");
        kit.Alias("Kept", L"Kept", "Materials[1].Cohesion", {.kept = true});
        kit.AliasByTag("Tagged", L"Tagged", L"Materials[1].Cohesion");
        kit.AliasSet("Cover", L"Cover", {{"Cohesion", "Materials[0].Cohesion"}});
    }});
    EXPECT_EQ(TextOf("Kept"), L"25");
    EXPECT_EQ(Body(), before);
    std::wstring const document = Save();
    auto const saved = materials;
    materials = {{L"Peat", 1, 0}};
    Load(document);
    EXPECT_EQ(materials, saved);
    EXPECT_EQ(TextOf("Kept"), L"25");
}

TEST_F(AliasTest, ATransactionStagesTheSourceOfAnAlias) {
    Register({[](Kit& kit) { kit.Alias("Strength", L"Strength", "Materials[1].Cohesion"); }});
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Strength")->Set(31.0)));
    EXPECT_EQ(materials[1].cohesion, 25);
    EXPECT_EQ(TextOf(transaction->Find("Materials[1].Cohesion")), L"31");
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(materials[1].cohesion, 31);
}

TEST_F(AliasTest, ATransactionSetsALinkThroughItsAlias) {
    Register({[](Kit& kit) { kit.Alias("First", L"First", "Regions[0].Material"); }});
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(zo::SetLink(transaction->Find("First"), {materialGroup, 3})));
    EXPECT_EQ(zo::GetLink(transaction->Find("Regions[0].Material"), zo::Link::AsStored), (GGID{materialGroup, 3}));
    EXPECT_EQ(regions[0].material, 2);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(regions[0].material, 3);
}

// ---- Sets

TEST_F(AliasTest, TheFieldsOfASetStandElsewhere) {
    Register({[](Kit& kit) {
        kit.AliasSet("Cover", L"Cover", {{"Strength", "Materials[0].Cohesion"}, {"Area", "Regions[1].Area"}});
    }});
    EXPECT_EQ(TextOf("Cover.Strength"), L"5");
    ASSERT_TRUE(Succeeds(zo::Find("Cover.Area")->Set(95.0)));
    EXPECT_EQ(regions[1].area, 95);
    EXPECT_FALSE(zo::Find("Cover.Name"));
    EXPECT_EQ(zo::Find("Cover")->Tag(), L"Cover");
}

TEST_F(AliasTest, AWalkOverASetVisitsItsFieldsInOrder) {
    Register({[](Kit& kit) {
        kit.AliasSet("Cover", L"Cover", {{"Strength", "Materials[0].Cohesion"}, {"Area", "Regions[1].Area"}});
    }});
    std::vector<std::wstring> texts;
    for (zo::ZOFwrdIterator at = zo::Find("Cover")->begin(); at.current; ++at) texts.push_back(TextOf(at.current));
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"5", L"90"}));
}

TEST_F(AliasTest, ATransactionStagesTheSourcesOfASet) {
    Register({[](Kit& kit) {
        kit.AliasSet("Cover", L"Cover", {{"Strength", "Materials[0].Cohesion"}, {"Area", "Regions[1].Area"}});
    }});
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Cover.Strength")->Set(6.0)));
    EXPECT_EQ(TextOf(transaction->Find("Materials[0].Cohesion")), L"6");
    EXPECT_EQ(materials[0].cohesion, 5);
    std::vector<std::wstring> texts;
    for (zo::ZOFwrdIterator at = transaction->Find("Cover")->begin(); at.current; ++at)
        texts.push_back(TextOf(at.current));
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"6", L"90"}));
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    EXPECT_EQ(materials[0].cohesion, 6);
}

// ---- Below records

class RelativeAliasTest : public KitTest {
protected:
    struct Layer {
        double thickness = 1; // m
    };
    struct Boring {
        std::wstring name;
        std::vector<Layer> layers;
        Layer crust;
    };
    struct Field {
        std::wstring owner = L"Parish";
        std::vector<Boring> borings;
    };

    RelativeAliasTest() {
        Register({[this](Kit& kit) {
            kit.Record<Layer>("Layer")
                .Field<&Layer::thickness>("Thickness", L"Thickness")
                .Alias("Boring", L"Boring", L"@Parent@Parent@Parent.Name")
                .Alias("Above", L"Above", L"@Parent@Parent.Name");
            kit.Record<Boring>("Boring")
                .Field<&Boring::name>("Name", L"Name")
                .Array<&Boring::layers>("Layers", L"Layers[Layer]")
                .Struct<&Boring::crust>("Crust", L"Crust")
                .Alias("Top", L"Top", L"@Parent.Layers[1].Thickness");
            kit.Record<Field>("Field")
                .Field<&Field::owner>("Owner", L"Owner")
                .Array<&Field::borings>("Borings", L"Borings[Boring]");
            kit.Branch<Field>("Field", L"Field", [this] { return &field; });
        }});
    }

    Field field{L"Parish", {{L"B1", {{0.5}, {2}}, {0.1}}, {L"B2", {{3}}, {0.2}}}};
};

TEST_F(RelativeAliasTest, AnAliasStandsUnderEveryPlaceOfItsRecord) {
    EXPECT_EQ(TextOf("Field.Borings[0].Layers[1].Boring"), L"B1");
    EXPECT_EQ(TextOf("Field.Borings[1].Layers[0].Boring"), L"B2");
    EXPECT_EQ(TextOf("Field.Borings[1].Crust.Above"), L"B2");
}

TEST_F(RelativeAliasTest, AnAliasLeadsDownAsWell) {
    EXPECT_EQ(TextOf("Field.Borings[1].Top"), L"3");
    ASSERT_TRUE(Succeeds(zo::Find("Field.Borings[0].Top")->Set(0.75)));
    EXPECT_EQ(field.borings[0].layers[0].thickness, 0.75);
}

TEST_F(RelativeAliasTest, InATransactionAnAliasLeadsToWhatIsStaged) {
    auto const transaction = registry->CreateTransaction();
    ASSERT_TRUE(Succeeds(transaction->Find("Field.Borings")->SetLength(3)));
    ASSERT_TRUE(Succeeds(transaction->Find("Field.Borings[2].Layers")->SetLength(1)));
    zo::H const top = transaction->Find("Field.Borings[2].Top");
    ASSERT_TRUE(top);
    ASSERT_TRUE(Succeeds(top->Set(0.75)));
    ASSERT_TRUE(Succeeds(transaction->Find("Field.Borings[0].Top")->Set(0.25)));
    EXPECT_EQ(field.borings.size(), 2u);
    EXPECT_EQ(field.borings[0].layers[0].thickness, 0.5);
    ASSERT_TRUE(Succeeds(transaction->Commit("", "")));
    ASSERT_EQ(field.borings.size(), 3u);
    ASSERT_EQ(field.borings[2].layers.size(), 1u);
    EXPECT_EQ(field.borings[2].layers[0].thickness, 0.75);
    EXPECT_EQ(field.borings[0].layers[0].thickness, 0.25);
}

TEST_F(RelativeAliasTest, AnAliasWithoutASourceIsUndefined) {
    field.borings[0].layers.clear();
    zo::H const top = zo::Find("Field.Borings[0].Top");
    EXPECT_TRUE(top->IsUndefined());
    EXPECT_TRUE(top->Set(1.0).IsError());
}

TEST_F(RelativeAliasTest, AliasesOfRecordsAreNotInDocuments) {
    EXPECT_EQ(Body(), L"<Field><Owner>Parish</Owner><Borings Len=\"2\">"
                      L"<Boring><Name>B1</Name><Layers Len=\"2\"><Layer><Thickness>0.5</Thickness></Layer>"
                      L"<Layer><Thickness>2</Thickness></Layer></Layers>"
                      L"<Crust><Thickness>0.1</Thickness></Crust></Boring>"
                      L"<Boring><Name>B2</Name><Layers Len=\"1\"><Layer><Thickness>3</Thickness></Layer></Layers>"
                      L"<Crust><Thickness>0.2</Thickness></Crust></Boring></Borings></Field>");
}

TEST_F(RelativeAliasTest, ClearLeavesWhatAnAliasLeadsToAlone) {
    zo::Find("Field.Borings[0].Crust")->Clear();
    EXPECT_EQ(field.borings[0].crust.thickness, 1);
    EXPECT_EQ(field.borings[0].name, L"B1");
}

} // namespace
} // namespace site
