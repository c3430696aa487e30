// Single values and structures: the rows that their lines make, and what can be done through them.
#include "tests/kit/Site.h"

#include <algorithm>
#include <limits>

namespace site {
namespace {

using zo::kit::Kind;
using zo::kit::Kit;
using zo::kit::Persist;
using zo::ZOError::not_supported;

struct Layer {
    std::wstring name;
    double friction = 30;
    double cohesion = 0;
    int grade = 3;
    Method method = Method::Auger;
    Point top;

    bool operator==(Layer const&) const = default;
};

/// A class with a constructor, whose fresh members the kit does not look at.
struct Pump {
    Pump() : rate(4) {}
    double rate;
};

class DeclareTest : public KitTest {
protected:
    Instrument instrument;
    Layer layer;
    Pump pump;

    void RegisterLayer(zo::kit::Options<double> const& friction = {}) {
        Register({&PointModule, [&](Kit& kit) {
                      kit.Enum<Method>(methods);
                      kit.Record<Layer>("Layer")
                          .Field<&Layer::name>("Name", L"Title")
                          .Field<&Layer::friction>("Friction", L"Phi", friction)
                          .Field<&Layer::cohesion>("Cohesion", L"Cohesion")
                          .Field<&Layer::grade>("Grade", L"Grade")
                          .Field<&Layer::method>("Method", L"Method")
                          .Struct<&Layer::top>("Top", L"Top");
                      kit.Branch<Layer>("Layer", L"Stratum", [this] { return &layer; });
                  }});
    }
    void RegisterInstrument() {
        Register({&InstrumentModule, [&](Kit& kit) {
                      kit.Branch<Instrument>("Instrument", L"Instrument", [this] { return &instrument; });
                  }});
    }
};

TEST_F(DeclareTest, FieldsAreRowsUnderTheirNamesAndTags) {
    RegisterLayer();
    ASSERT_TRUE(zo::GetTemplate("Layer.Friction"));
    EXPECT_EQ(PersistOf("Layer.Friction").TagName, L"Stratum.Phi");
    EXPECT_EQ(PersistOf("Layer.Friction").Tag, L"Phi");
    EXPECT_TRUE(zo::FindTag(std::wstring(L"Stratum.Phi")));
    EXPECT_FALSE(zo::Find("Layer.Phi"));
    EXPECT_TRUE(registry->InitializationComplete());
}

TEST_F(DeclareTest, FieldsArePersistedAsValuesAlways) {
    RegisterLayer();
    meta::MetaPersistTraits const friction = PersistOf("Layer.Friction");
    EXPECT_EQ(friction.Type, meta::MetaPersistTraits::Always);
    EXPECT_TRUE(friction.IsPersistedAsValue);
    EXPECT_FALSE(friction.IsAllChildrenValue);
    EXPECT_FALSE(PersistOf("Layer").IsPersistedAsValue);
    EXPECT_FALSE(PersistOf("Layer").IsAllChildrenValue);
}

TEST_F(DeclareTest, FieldsOfAnAttributeRecordAreAttributes) {
    RegisterLayer();
    EXPECT_TRUE(PersistOf("Layer.Top").IsAllChildrenValue);
    EXPECT_FALSE(PersistOf("Layer.Top.X").IsPersistedAsValue);
    layer.top = {1.5, -2};
    EXPECT_NE(Body().find(L"<Top X=\"1.5\" Y=\"-2\"/>"), std::wstring::npos);
}

TEST_F(DeclareTest, ChildrenStandInTheOrderOfTheirLines) {
    RegisterLayer();
    std::vector<std::string> names;
    zo::H const node = zo::Find("Layer");
    for (auto child = node->begin(); child.current; ++child) names.push_back((*child)->SubName());
    EXPECT_EQ(names, (std::vector<std::string>{"Name", "Friction", "Cohesion", "Grade", "Method", "Top"}));
}

TEST_F(DeclareTest, EveryTypeReadsAndWritesItsMember) {
    RegisterInstrument();
    auto const set = [](char const* name, std::wstring const& text) {
        EXPECT_TRUE(Succeeds(zo::Find("Instrument." + std::string(name))->Set(text))) << name;
        EXPECT_EQ(TextOf("Instrument." + std::string(name)), text) << name;
    };
    set("Channel", L"255");
    set("Offset", L"-2147483648");
    set("Serial", L"4294967294");
    set("Reference", L"-9000000000");
    set("Color", L"65280");
    set("Gain", L"0.1");
    set("Reading", L"-1.25e-300");
    set("Taken", L"-9223372036854775808");
    set("Mask", L"18446744073709551614");
    set("Calibrated", L"true");
    set("Maker", L"Gebr\u00fcder");
    set("Note", L"\u4e95");
    set("Parameter", L"7");
    set("Method", L"Percussion");

    Instrument expected;
    expected.channel = 255;
    expected.offset = std::numeric_limits<int>::min();
    expected.serial = 4294967294u;
    expected.reference = -9000000000L;
    expected.color = 65280;
    expected.gain = 0.1f;
    expected.reading = -1.25e-300;
    expected.taken = std::numeric_limits<htl::Int64>::min();
    expected.mask = 18446744073709551614u;
    expected.calibrated = true;
    expected.maker = "Gebr\xC3\xBC"
                     "der";
    expected.note = L"\u4e95";
    expected.parameter = DataParamType::Cohesion;
    expected.method = Method::Percussion;
    EXPECT_EQ(instrument, expected);
}

TEST_F(DeclareTest, RowsHaveTheirTypesTraits) {
    RegisterInstrument();
    EXPECT_EQ(zo::DataTraits("Instrument").TypeName(), "site::Instrument");
    EXPECT_TRUE(zo::DataTraits("Instrument").AsStructure());
    EXPECT_EQ(zo::DataTraits("Instrument.Gain").TypeName(), "float");
    EXPECT_EQ(zo::DataTraits("Instrument.Method").TypeName(), "site::Method");
    EXPECT_EQ(zo::DataTraits("Instrument.Method").Descriptor()->byteSize, 1u);
}

TEST_F(DeclareTest, EnumerationHasItsThreeTexts) {
    RegisterInstrument();
    meta::MetaDataTraits const traits = zo::DataTraits("Instrument.Method");
    meta::MetaTraitsAtomic const& record = *traits.AsAtomic();
    int const auger = 9;
    std::wstring text;
    ASSERT_TRUE(Succeeds(record.toWide(&auger, text, 0, nullptr)));
    EXPECT_EQ(text, L"Auger");
    ASSERT_TRUE(Succeeds(record.toWide(&auger, text, 1, nullptr)));
    EXPECT_EQ(text, L"A");
    ASSERT_TRUE(Succeeds(record.toWide(&auger, text, 2, nullptr)));
    EXPECT_EQ(text, L"Hollow auger");
}

TEST_F(DeclareTest, EnumerationRefusesWhatIsNoWord) {
    RegisterInstrument();
    EXPECT_TRUE(FailsAs(zo::Find("Instrument.Method")->Set(L"Drill"), zo::ZOError::not_recognized(L"Drill")));
    EXPECT_EQ(instrument.method, Method::Rotary);
}

TEST_F(DeclareTest, WordTableNeedNotOutliveItsModule) {
    Register({[&](Kit& kit) {
        std::wstring const text = L"A rather long word that has memory of its own";
        std::vector<meta::EnumWord> const words{{9, text, text, text}};
        kit.Enum<Method>(words);
        kit.Record<Layer>("Layer").Field<&Layer::method>("Method", L"Method");
        kit.Branch<Layer>("Layer", L"Layer", [this] { return &layer; });
    }});
    EXPECT_EQ(TextOf("Layer.Method"), L"A rather long word that has memory of its own");
}

TEST_F(DeclareTest, DefaultIsWhatAFreshAggregateHolds) {
    RegisterLayer();
    layer.friction = 12;
    layer.grade = 7;
    layer.method = Method::Rotary;
    zo::Find("Layer")->Clear();
    EXPECT_EQ(layer, Layer());
    EXPECT_TRUE(zo::Find("Layer.Friction")->IsDefault());
}

TEST_F(DeclareTest, NamedDefaultWins) {
    RegisterLayer({.dflt = 28.5});
    zo::Find("Layer.Friction")->Clear();
    EXPECT_EQ(layer.friction, 28.5);
    layer.friction = 1;
    zo::Find("Layer")->Clear();
    EXPECT_EQ(layer.friction, 28.5);
}

TEST_F(DeclareTest, DefaultOfAClassWithConstructorIsZero) {
    Register({[&](Kit& kit) {
        kit.Record<Pump>("Pump").Field<&Pump::rate>("Rate", L"Rate");
        kit.Branch<Pump>("Pump", L"Pump", [this] { return &pump; });
    }});
    zo::Find("Pump")->Clear();
    EXPECT_EQ(pump.rate, 0);
}

TEST_F(DeclareTest, RangeTakesItsEnds) {
    RegisterLayer({.min = 0.0, .max = 60.0});
    zo::H const friction = zo::Find("Layer.Friction");
    EXPECT_TRUE(Succeeds(friction->Set(0)));
    EXPECT_EQ(layer.friction, 0);
    EXPECT_TRUE(Succeeds(friction->Set(60)));
    EXPECT_EQ(layer.friction, 60);
}

TEST_F(DeclareTest, RangeRefusesWhatIsOutside) {
    RegisterLayer({.min = 0.0, .max = 60.5});
    zo::H const friction = zo::Find("Layer.Friction");
    htl::status const refused = friction->Set(75.25);
    EXPECT_EQ(refused.AsWString(), L"75.25 is not between 0 and 60.5.");
    EXPECT_TRUE(friction->Set(-0.001).IsError());
    EXPECT_TRUE(friction->Set(std::numeric_limits<double>::infinity()).IsError());
    EXPECT_EQ(layer.friction, 30);
}

TEST_F(DeclareTest, RangeWithOneEndSaysWhich) {
    RegisterLayer({.min = 1.0});
    EXPECT_EQ(zo::Find("Layer.Friction")->Set(0.5).AsWString(), L"0.5 is less than 1.");
    EXPECT_TRUE(Succeeds(zo::Find("Layer.Friction")->Set(1e300)));
}

TEST_F(DeclareTest, RangeWithOneEndRefusesWhatIsNotFinite) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    RegisterLayer({.min = 0.0});
    for (double const value : {infinity, -infinity})
        EXPECT_EQ(zo::Find("Layer.Friction")->Set(value).AsWString(), L"A value is needed here.") << value;
    EXPECT_EQ(layer.friction, 30);
}

TEST_F(DeclareTest, RangeWithAMaximumSaysSo) {
    RegisterLayer({.max = 60.0});
    EXPECT_EQ(zo::Find("Layer.Friction")->Set(61).AsWString(), L"61 is more than 60.");
    EXPECT_TRUE(Succeeds(zo::Find("Layer.Friction")->Set(-1e300)));
}

TEST_F(DeclareTest, RangeRefusesTheMissingValue) {
    RegisterLayer({.min = 0.0});
    EXPECT_EQ(zo::Find("Layer.Friction")->Set(L"").AsWString(), L"A value is needed here.");
    EXPECT_EQ(layer.friction, 30);
}

TEST_F(DeclareTest, RangeAcceptsANamedMissingValue) {
    RegisterLayer({.missing = -1.0, .min = 0.0, .max = 60.0});
    EXPECT_TRUE(Succeeds(zo::Find("Layer.Friction")->Set(L"")));
    EXPECT_EQ(layer.friction, -1);
    EXPECT_EQ(TextOf("Layer.Friction"), L"");
    EXPECT_TRUE(zo::Find("Layer.Friction")->IsUndefined());
}

TEST_F(DeclareTest, ValueWithoutMissingRefusesTheEmptyText) {
    RegisterLayer({.noMissing = true});
    EXPECT_TRUE(zo::Find("Layer.Friction")->Set(L"").IsError());
    EXPECT_EQ(layer.friction, 30);
}

TEST_F(DeclareTest, OwnRuleIsAskedAfterTheRange) {
    htl::status const odd = htl::status::FromText(L"Not a multiple of 5.");
    RegisterLayer({.max = 60.0, .valid = [odd](double const& value, zo::IZO const*) {
                       return static_cast<int>(value) % 5 == 0 ? htl::status() : odd;
                   }});
    zo::H const friction = zo::Find("Layer.Friction");
    EXPECT_TRUE(FailsAs(friction->Set(31), odd));
    EXPECT_EQ(friction->Set(61).AsWString(), L"61 is more than 60.");
    EXPECT_TRUE(Succeeds(friction->Set(35)));
}

TEST_F(DeclareTest, OwnRuleSeesTheNode) {
    std::string seen;
    RegisterLayer({.valid = [&seen](double const&, zo::IZO const* node) {
        if (node) seen = node->Name();
        return htl::status();
    }});
    ASSERT_TRUE(Succeeds(zo::Find("Layer.Friction")->Set(31)));
    EXPECT_EQ(seen, "Layer.Friction");
}

TEST_F(DeclareTest, UnitsParameterAndLinkGroupStandInTheTraits) {
    RegisterLayer({.unit = Kind::Angle, .param = DataParamType::Modulus, .linkGroup = 12});
    meta::MetaDataTraits const traits = zo::DataTraits("Layer.Friction");
    meta::MetaTraitsAtomic const& record = *traits.AsAtomic();
    ASSERT_TRUE(record.unitKind && record.dataParamType);
    EXPECT_EQ(record.unitKind(nullptr, nullptr), Kind::Angle);
    EXPECT_EQ(record.dataParamType(nullptr), DataParamType::Modulus);
    EXPECT_EQ(record.linkGroup, 12u);
    EXPECT_FALSE(zo::DataTraits("Layer.Cohesion").AsAtomic()->unitKind);
}

TEST_F(DeclareTest, RulesOfVisibilityAreAskedWithTheNode) {
    RegisterLayer({.visible = [](zo::IZO const& node) { return node.SubName() == "Other"; },
                   .editable = [](zo::IZO const& node) { return node.SubName() == "Friction"; }});
    zo::H const friction = zo::Find("Layer.Friction");
    meta::MetaDataTraits const traits = friction->GetDataTraits();
    EXPECT_FALSE(meta::CallRule(traits.Descriptor()->visible, friction.get()));
    EXPECT_TRUE(meta::CallRule(traits.Descriptor()->editable, friction.get()));
}

TEST_F(DeclareTest, RecordHasItsOwnRulesAndGroup) {
    Register({[&](Kit& kit) {
        kit.Record<Point>("Point", {.recordGroup = 5, .visible = [](zo::IZO const&) { return false; }})
            .Field<&Point::x>("X", L"X");
        kit.Branch<Point>("Point", L"Point", [this] { return &layer.top; });
    }});
    meta::MetaDataTraits const traits = zo::DataTraits("Point");
    ASSERT_TRUE(traits.AsStructure()->recordGroup);
    EXPECT_EQ(traits.AsStructure()->recordGroup(&layer.top), 5u);
    EXPECT_FALSE(meta::CallRule(traits.Descriptor()->visible, zo::Find("Point").get()));
}

TEST_F(DeclareTest, ValueAtItsDefaultIsLeftOutOnRequest) {
    RegisterLayer({.persist = Persist::IfNotDefault});
    EXPECT_EQ(Body().find(L"<Phi>"), std::wstring::npos);
    layer.friction = 31;
    std::wstring const document = Save();
    EXPECT_NE(document.find(L"<Phi>31</Phi>"), std::wstring::npos);
    layer = Layer();
    Load(document);
    EXPECT_EQ(layer.friction, 31);
}

TEST_F(DeclareTest, WhatIsNeverSavedIsNotInDocuments) {
    RegisterLayer({.persist = Persist::Never});
    layer.friction = 31;
    EXPECT_EQ(Body().find(L"Phi"), std::wstring::npos);
    Load(Save());
    EXPECT_EQ(layer.friction, 30) << "a load puts it to its default";
}

TEST_F(DeclareTest, StructureThatIsNeverSavedTakesItsPartsAlong) {
    Register({[&](Kit& kit) {
        kit.Record<Point>("Point").Field<&Point::x>("X", L"X");
        kit.Record<Layer>("Layer")
            .Field<&Layer::name>("Name", L"Name")
            .Struct<&Layer::top>("Top", L"Top", {.persist = Persist::Never});
        kit.Branch<Layer>("Layer", L"Layer", [this] { return &layer; });
    }});
    layer.name = L"Sand";
    EXPECT_EQ(Body(), L"<Layer><Name>Sand</Name></Layer>");
    EXPECT_TRUE(Succeeds(zo::Find("Layer.Top.X")->Set(2)));
    EXPECT_EQ(layer.top.x, 2);
}

TEST_F(DeclareTest, MemberOfABaseIsDeclaredWithTheDerivedStructure) {
    struct Tagged {
        int tag = 0;
    };
    struct Core : Tagged, Point {
        double depth = 0;
    };
    static Core core;
    Register({[](Kit& kit) {
        kit.Record<Core>("Core")
            .Field<&Core::depth>("Depth", L"Depth")
            .Field<&Core::y>("Y", L"Y")
            .Field<&Core::tag>("Tag", L"Tag");
        kit.Branch<Core>("Core", L"Core", [] { return &core; });
    }});
    EXPECT_TRUE(Succeeds(zo::Find("Core.Y")->Set(2.5)));
    EXPECT_TRUE(Succeeds(zo::Find("Core.Tag")->Set(4)));
    EXPECT_EQ(core.y, 2.5);
    EXPECT_EQ(core.tag, 4);
    EXPECT_EQ(core.depth, 0);
}

TEST_F(DeclareTest, OneTypeIsUsedInManyPlaces) {
    struct Borehole {
        Point top, bottom;
    };
    static Borehole hole;
    Register({&PointModule, [](Kit& kit) {
                  kit.Record<Borehole>("Borehole")
                      .Struct<&Borehole::top>("Top", L"Top")
                      .Struct<&Borehole::bottom>("Bottom", L"Bottom");
                  kit.Branch<Borehole>("Hole", L"Hole", [] { return &hole; });
              }});
    EXPECT_TRUE(Succeeds(zo::Find("Hole.Top.X")->Set(1)));
    EXPECT_TRUE(Succeeds(zo::Find("Hole.Bottom.X")->Set(2)));
    EXPECT_EQ(hole.top.x, 1);
    EXPECT_EQ(hole.bottom.x, 2);
}

TEST_F(DeclareTest, ComputedValueFollowsTheObject) {
    struct Tank {
        double area = 2, height = 3;
        double Volume() const { return area * height; }
    };
    static Tank tank;
    Register({[](Kit& kit) {
        kit.Record<Tank>("Tank")
            .Field<&Tank::height>("Height", L"Height")
            .Computed<&Tank::Volume>("Volume", L"Volume", {.unit = Kind::Volume});
        kit.Branch<Tank>("Tank", L"Tank", [] { return &tank; });
    }});
    EXPECT_EQ(TextOf("Tank.Volume"), L"6");
    ASSERT_TRUE(Succeeds(zo::Find("Tank.Height")->Set(5)));
    zo::H const volume = zo::Find("Tank.Volume");
    EXPECT_EQ(TextOf(volume), L"10");
    EXPECT_TRUE(FailsAs(volume->Set(11), not_supported("Volume")));
    EXPECT_EQ(TextOf(volume), L"10");
    EXPECT_FALSE(meta::CallRule(volume->GetDataTraits().Descriptor()->editable, volume.get()));
    EXPECT_EQ(volume->GetDataTraits().AsAtomic()->unitKind(nullptr, nullptr), Kind::Volume);
    EXPECT_EQ(Body(), L"<Tank><Height>5</Height></Tank>");

    zo::Find("Tank")->Clear(); // passes over it
    EXPECT_EQ(tank.height, 3);
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::StringRead(Document(L"<Tank><Volume>7</Volume></Tank>"), errors)));
    EXPECT_EQ(TextOf("Tank.Volume"), L"6");
}

} // namespace
} // namespace site
