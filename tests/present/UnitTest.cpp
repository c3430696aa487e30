// What values measure, and the units that they are shown in.
#include "tests/present/Basin.h"

#include "Common/model/ZOAtomicData.h"
#include "Common/present/FormattedTraits.h"
#include "support/diag.h"

namespace basin {
namespace {

using zo::DataParameterType;
using zo::Units;
using zo::UnitString;
using zo::VisibleUnits;

std::size_t RowOf(std::string const& name) { return zo::GetTemplate(name)->RegID(); }

/// A value that stands alone, whose type is described by the test.
H Detached(meta::AtomicBuilder<double> const& type, double value = 0) {
    return H(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, type.Build(), value));
}

using UnitTest = BasinTest;

TEST_F(UnitTest, ANodeHasTheKindOfItsType) {
    EXPECT_EQ(Units(Find("Gauges.Stress")), Kind::Stress);
    EXPECT_EQ(Units("Gauges.Stress"), Kind::Stress);
    EXPECT_EQ(Units(RowOf("Gauges.Stress"), nullptr), Kind::Stress);
    EXPECT_EQ(Units(Find("Sill")), Kind::Length); // of the alias's source
}

TEST_F(UnitTest, WhatHasNoKindHasNone) {
    for (char const* name : {"Gauges.Factor", "Gauges.Remark", "Gauges", "Marks", "Nowhere", ""}) {
        EXPECT_EQ(Units(name), Kind::None) << name;
        EXPECT_EQ(Units(Find(name)), Kind::None) << name;
        EXPECT_EQ(UnitString(Find(name)), L"") << name;
    }
    EXPECT_EQ(Units(zo::IZO::npos, nullptr), Kind::None);
    EXPECT_EQ(Units(RowOf("Gauges"), nullptr), Kind::None);
    EXPECT_EQ(UnitString(zo::IZO::npos, nullptr), L"");
}

TEST_F(UnitTest, ANameWithoutDataHasTheKindOfItsTemplate) {
    site.model.marks.clear();
    EXPECT_EQ(Units("Marks[5].Level"), Kind::Length);
    EXPECT_EQ(DataParameterType("Marks[5].Cohesion"), DataParamType::Cohesion);
}

TEST_F(UnitTest, AKindMayDependOnTheValue) {
    auto const type = meta::AtomicBuilder<double>().Units([](void const* value, zo::IZO const*) {
        return value && *static_cast<double const*>(value) < 0 ? Kind::Stress : Kind::Length;
    });
    EXPECT_EQ(Units(Detached(type, -1)), Kind::Stress);
    EXPECT_EQ(Units(Detached(type, 1)), Kind::Length);

    H const node(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, type.Build()));
    site.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODS("Probe", false, true)), node, {}, type.Build());
    double const suction = -4;
    EXPECT_EQ(Units(node->RegID(), &suction), Kind::Stress);
    EXPECT_EQ(Units(node->RegID(), nullptr), Kind::Length);
    EXPECT_EQ(UnitString(node->RegID(), &suction), L"psf");
    EXPECT_EQ(zo::AbbrevValueWithUnits(node->RegID(), &suction), L"-83.5417369326005 psf");
}

TEST_F(UnitTest, AKindMayDependOnTheNode) {
    zo::IZO const* asked = nullptr;
    H const node = Detached(meta::AtomicBuilder<double>().Units([&asked](void const*, zo::IZO const* at) {
        asked = at;
        return Kind::Force;
    }));
    EXPECT_EQ(Units(node), Kind::Force);
    EXPECT_EQ(asked, node.get());
}

TEST_F(UnitTest, ARegisteredPrototypeHasTheKindOfItsRow) {
    H const prototype(zo::GetTemplate("Gauges.Stress"));
    EXPECT_EQ(Units(prototype), Kind::Stress);
    EXPECT_EQ(VisibleUnits(prototype), imperial);
    EXPECT_EQ(UnitString(prototype), L"psf");
}

TEST_F(UnitTest, TheTableSaysWhoseKindANodeHas) {
    ASSERT_TRUE(Compiles(TableText::WithDefault()
                             .Entry(L"Marks.[]", {{L"PrettyPrintValueTag", L"Level"}})
                             .Entry(L"Gauges.Length", {{L"PrettyPrintValueTag", L"Nowhere"}})
                             .Entry(L"Gauges.Stress", {{L"PrettyPrintValueTag", L"[]"}})));
    EXPECT_EQ(Units(Find("Marks[0]")), Kind::Length);
    EXPECT_EQ(VisibleUnits(Find("Marks[0]")), imperial);
    EXPECT_EQ(UnitString(Find("Marks[0]")), L"ft");
    EXPECT_EQ(Units(Find("Gauges.Length")), Kind::None);
    EXPECT_EQ(Units(Find("Gauges.Stress")), Kind::Stress); // no path
    EXPECT_EQ(Units(RowOf("Gauges.Length"), nullptr), Kind::Length);
}

TEST_F(UnitTest, ANodeHasTheParameterOfItsType) {
    EXPECT_EQ(DataParameterType(Find("Marks[0].Cohesion")), DataParamType::Cohesion);
    EXPECT_EQ(DataParameterType("Marks[0].Cohesion"), DataParamType::Cohesion);
    EXPECT_EQ(DataParameterType(RowOf("Marks[0].Cohesion")), DataParamType::Cohesion);
    for (char const* name : {"Gauges.Length", "Gauges", "Nowhere"}) {
        EXPECT_EQ(DataParameterType(name), DataParamType::None) << name;
        EXPECT_EQ(DataParameterType(Find(name)), DataParamType::None) << name;
    }
    EXPECT_EQ(DataParameterType(zo::IZO::npos), DataParamType::None);
    EXPECT_EQ(DataParameterType(RowOf("Gauges")), DataParamType::None);
}

TEST_F(UnitTest, TheTableSaysWhoseParameterIsAskedForTheNode) {
    H asked;
    H const source(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr,
                                                meta::AtomicBuilder<double>()
                                                    .Param([&asked](zo::IZO const* node) {
                                                        asked = H(const_cast<zo::IZO*>(node));
                                                        return DataParamType::Modulus;
                                                    })
                                                    .Build()));
    site.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODS("Gauges.Probe", false, true)), source,
                              meta::MetaPersistTraits(0, L"Probe"), source->GetDataTraits());
    ASSERT_TRUE(Compiles(TableText::WithDefault().Entry(L"Gauges", {{L"PrettyPrintValueTag", L"Probe"}})));
    H const gauges = Find("Gauges");
    EXPECT_EQ(DataParameterType(gauges), DataParamType::Modulus);
    EXPECT_EQ(asked.get(), gauges.get());
    asked.release();
}

TEST_F(UnitTest, AParameterWithoutATemplateHasNoKind) {
    EXPECT_EQ(Units(Find("Marks[0].Cohesion")), Kind::None);
    EXPECT_EQ(UnitString(DataParamType::Cohesion), L"");
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Marks[0].Cohesion"), L"25");
}

TEST_F(UnitTest, AParameterHasTheKindThatItsTemplateSays) {
    RegisterParameters();
    EXPECT_EQ(Units(Find("Marks[0].Cohesion")), Kind::Stress);
    EXPECT_EQ(Units(RowOf("Marks[0].Cohesion"), nullptr), Kind::Stress);
    EXPECT_EQ(UnitString(DataParamType::Cohesion), L"psf");
    EXPECT_EQ(UnitString(DataParamType::Modulus), L"");
    EXPECT_EQ(UnitString(DataParamType::None), L"");
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Marks[0].Cohesion"), L"522.135855828753 psf");
}

TEST_F(UnitTest, AParametersKindComesBeforeTheTypesOwn) {
    RegisterParameters();
    auto const type = [](DataParamType parameter) {
        return meta::AtomicBuilder<double>().Units(Kind::Length).Param(parameter);
    };
    EXPECT_EQ(Units(Detached(type(DataParamType::Cohesion))), Kind::Stress);
    EXPECT_EQ(Units(Detached(type(DataParamType::Modulus))), Kind::Length); // its parameter has none
}

TEST_F(UnitTest, AParametersUnitsComeBeforeTheKinds) {
    RegisterParameters();
    site.shown = metric;
    EXPECT_EQ(VisibleUnits(Find("Marks[0].Cohesion")), imperial);
    EXPECT_EQ(VisibleUnits("Marks[0].Cohesion"), imperial);
    EXPECT_EQ(VisibleUnits(RowOf("Marks[0].Cohesion"), nullptr), imperial);
    EXPECT_EQ(VisibleUnits(DataParamType::Cohesion), imperial);
    EXPECT_EQ(VisibleUnits(Find("Marks[0].Level")), metric);
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Marks[0].Cohesion"), L"522.135855828753 psf");
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Marks[0].Level"), L"12 m");
}

TEST_F(UnitTest, WhereNothingIsSaidTheActiveUnitsAreShown) {
    RegisterParameters();
    site.active = metresAndPounds;
    site.shown = noUnits;
    site.shownOfCohesion = noUnits;
    EXPECT_EQ(VisibleUnits(Find("Gauges.Length")), metresAndPounds);
    EXPECT_EQ(VisibleUnits(Find("Marks[0].Cohesion")), metresAndPounds);
    EXPECT_EQ(VisibleUnits(DataParamType::Modulus), metresAndPounds);
    EXPECT_EQ(VisibleUnits(DataParamType::None), metresAndPounds);
    EXPECT_EQ(VisibleUnits(Find("Gauges.Factor")), metresAndPounds);
    EXPECT_EQ(VisibleUnits(Find("Gauges")), metresAndPounds);
    EXPECT_EQ(UnitString(Find("Gauges.Stress")), L"lbf/m\u00B2");
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Gauges.Stress"), L"100 lbf/m\u00B2");
}

TEST_F(UnitTest, NothingHasNoVisibleUnits) {
    EXPECT_TRUE(VisibleUnits(H()).IsZero());
    EXPECT_TRUE(VisibleUnits("Nowhere").IsZero());
    EXPECT_TRUE(VisibleUnits(zo::IZO::npos, nullptr).IsZero());
}

TEST_F(UnitTest, TheUnitIsThatOfTheVisibleUnits) {
    EXPECT_EQ(UnitString(Find("Gauges.UnitWeight")), L"pcf");
    EXPECT_EQ(UnitString(RowOf("Gauges.UnitWeight"), nullptr), L"pcf");
    site.shown = metric;
    EXPECT_EQ(UnitString(Find("Gauges.UnitWeight")), L"kN/m\u00B3");
}

TEST_F(UnitTest, TheKindIsNamedOnlyWhereTheFeatureIsOn) {
    std::wstring text = L"kPa";
    zo::Debug_AppendUKName(text, Kind::Stress);
    EXPECT_EQ(text, L"kPa");
    EXPECT_EQ(UnitString(Find("Gauges.Stress")), L"psf");

    hzn::feature::SetFeature(L"HZN_UK", true);
    zo::Debug_AppendUKName(text, Kind::Stress);
    std::wstring none = L"-";
    zo::Debug_AppendUKName(none, Kind::None);
    zo::Debug_AppendUKName(none, static_cast<Kind::Type>(99)); // has no name
    std::wstring const unit = UnitString(Find("Gauges.Stress"));
    std::wstring const value = zo::AbbrevValueWithUnits("Gauges.Stress");
    std::wstring const factor = zo::PrettyPrintValueWithUnits("Gauges.Factor");
    hzn::feature::SetFeature(L"HZN_UK", false);
    EXPECT_EQ(text, L"kPa [Stress]");
    EXPECT_EQ(none, L"-");
    EXPECT_EQ(unit, L"psf [Stress]");
    EXPECT_EQ(value, L"2088.54342331501 psf [Stress]");
    EXPECT_EQ(factor, L"0.125");
}

TEST_F(UnitTest, AParametersNodeIsNotConverted) {
    RegisterParameters();
    H const node = Find("Parameter");
    ASSERT_TRUE(Succeeds(node->Set(7)));
    EXPECT_EQ(Units(node), Kind::Stress); // what its values measure
    EXPECT_EQ(zo::PrettyPrintValue(node), L"7");
    EXPECT_TRUE(Succeeds(zo::SetPrettyPrintValue(node, L"9")));
    EXPECT_EQ(TextOf(node), L"9");
}

using UnitKindTraitTest = BasinTest;

htl::status CallOn(H const& node, zo::IZOAccessValueTypeTrait& trait) {
    return zo::impl::NodeAccess::CallValueTypeTrait(*node, trait);
}

TEST_F(UnitKindTraitTest, AsksTheFunctionAboutTheValue) {
    zo::ZOAccessUnitKindTrait::Function const byValue = [](void const* value, zo::IZO const*) {
        return *static_cast<double const*>(value) == 2.5 ? Kind::Area : Kind::None;
    };
    H const node = Find("Gauges.Length");
    zo::ZOAccessUnitKindTrait trait(byValue, node, node->RegID());
    EXPECT_EQ(trait.Result(), Kind::None);
    EXPECT_TRUE(Succeeds(CallOn(node, trait)));
    EXPECT_EQ(trait.Result(), Kind::Area);
}

TEST_F(UnitKindTraitTest, TheParameterComesFirst) {
    RegisterParameters();
    zo::ZOAccessUnitKindTrait::Function const area = [](void const*, zo::IZO const*) { return Kind::Area; };
    H const node = Find("Marks[0].Cohesion");
    zo::ZOAccessUnitKindTrait ofNode(area, node, zo::IZO::npos);
    EXPECT_TRUE(Succeeds(CallOn(node, ofNode)));
    EXPECT_EQ(ofNode.Result(), Kind::Stress);

    H const other = Find("Gauges.Length");
    zo::ZOAccessUnitKindTrait ofRow(area, other, node->RegID());
    EXPECT_TRUE(Succeeds(CallOn(other, ofRow)));
    EXPECT_EQ(ofRow.Result(), Kind::Stress);
}

TEST_F(UnitKindTraitTest, WithoutAFunctionThereIsNoKind) {
    zo::ZOAccessUnitKindTrait::Function const none;
    H const node = Find("Gauges.Length");
    zo::ZOAccessUnitKindTrait trait(none, node, zo::IZO::npos);
    EXPECT_TRUE(Succeeds(CallOn(node, trait)));
    EXPECT_EQ(trait.Result(), Kind::None);
}

} // namespace
} // namespace basin
