#include "support/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <string>

namespace {

using hzn::units::Kind;
using math::UnitSet;
using math::units::ConvertBetweenUnitSets;

UnitSet const metric = hzn::units::SystemUnitSet(math::unitsystem::Metric);
UnitSet const imperial = hzn::units::SystemUnitSet(math::unitsystem::Imperial);
UnitSet const metresAndPounds{{1, 2, 1}};
UnitSet const feetAndKilonewtons{{2, 1, 1}};

constexpr int kindCount = Kind::Energy + 1;

/// How much one imperial unit is in metric ones, worked out from 1 ft = 0.3048 m and 1 lbf = 4.4482216152605 N.
struct ImperialUnit {
    Kind::Type kind;
    double inMetric;
};
constexpr ImperialUnit imperialUnits[] = {
    {Kind::Length, 0.3048},
    {Kind::Area, 0.09290304},
    {Kind::Volume, 0.028316846592},
    {Kind::Angle, 1},
    {Kind::Time, 1},
    {Kind::Mass, 0.01459390293720636482939633}, // 1 slug = 1 lbf s²/ft = 14.5939... kg
    {Kind::Force, 0.0044482216152605},
    {Kind::Stress, 0.04788025898033584261612968},    // 1 lbf/ft² = 47.880... Pa
    {Kind::UnitWeight, 0.1570874638462462028088244}, // 1 lbf/ft³ = 157.087... N/m³
    {Kind::HydraulicConductivity, 0.3048},
    {Kind::Flux, 0.028316846592},
    {Kind::Energy, 0.0013558179483314004}, // 1 ft lbf = 1.3558... J
};

void ExpectClose(double value, double expected, Kind::Type kind) {
    EXPECT_NEAR(value, expected, std::abs(expected) * 4e-16) << hzn::units::KindName(kind);
}

TEST(UnitsTest, EveryKindConvertsBothWays) {
    std::set<int> seen{Kind::None, Kind::Temperature}; // these have no factor
    for (ImperialUnit const& unit : imperialUnits) {
        ExpectClose(ConvertBetweenUnitSets(unit.kind, 1, imperial, metric), unit.inMetric, unit.kind);
        ExpectClose(ConvertBetweenUnitSets(unit.kind, -250, imperial, metric), -250 * unit.inMetric, unit.kind);
        ExpectClose(ConvertBetweenUnitSets(unit.kind, unit.inMetric, metric, imperial), 1, unit.kind);
        EXPECT_EQ(ConvertBetweenUnitSets(unit.kind, 0, metric, imperial), 0);
        seen.insert(unit.kind);
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(kindCount));
}

TEST(UnitsTest, LengthAndForceFactorsAreExact) {
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 1, imperial, metric), 0.3048);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 0.3048, metric, imperial), 1);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 3.048, metric, imperial), 10);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Force, 1000, imperial, metric), 4.4482216152605);
}

TEST(UnitsTest, FactorsAreThoseOfTheStandard) {
    // As printed in NIST Special Publication 811 (2008), appendix B.8, with seven digits.
    struct Row {
        Kind::Type kind;
        double factor;
    };
    constexpr Row rows[] = {
        {Kind::Length, 3.048000E-01},                // foot to metre
        {Kind::Area, 9.290304E-02},                  // square foot to square metre
        {Kind::Volume, 2.831685E-02},                // cubic foot to cubic metre
        {Kind::Mass, 1.459390E+01 / 1000},           // slug to kilogram
        {Kind::Force, 4.448222E+00 / 1000},          // pound-force to newton
        {Kind::Stress, 4.788026E+01 / 1000},         // pound-force per square foot to pascal
        {Kind::HydraulicConductivity, 3.048000E-01}, // foot per second to metre per second
        {Kind::Flux, 2.831685E-02},                  // cubic foot per second to cubic metre per second
        {Kind::Energy, 1.355818E+00 / 1000},         // foot pound-force to joule
    };
    for (Row const& row : rows) {
        double const factor = ConvertBetweenUnitSets(row.kind, 1, imperial, metric);
        EXPECT_NEAR(factor / row.factor, 1, 5e-7) << static_cast<int>(row.kind);
    }
    // Pound-force per cubic foot isn't listed: the pound per cubic foot, 1.601846E+01 kg/m3, at standard gravity.
    EXPECT_NEAR(ConvertBetweenUnitSets(Kind::UnitWeight, 1, imperial, metric) / (1.601846E+01 * 9.80665E-03), 1, 5e-7);
}

TEST(UnitsTest, TemperatureNearAZeroKeepsItsDigits) {
    // 0.1 F is -17.7222... C, whose double is within 1.8e-15 C.
    double const celsius = ConvertBetweenUnitSets(Kind::Temperature, 0.1, imperial, metric);
    EXPECT_NEAR(celsius, -17.722222222222222222, 1.8e-15);
    EXPECT_NEAR(ConvertBetweenUnitSets(Kind::Temperature, celsius, metric, imperial), 0.1, 3.3e-15);
    double const above = 32.000000000000007105; // the double after 32
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, above, imperial, metric), 7.105427357601002e-15 * 5 / 9);
}

TEST(UnitsTest, TemperatureHasAnOffset) {
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, 0, metric, imperial), 32);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, 100, metric, imperial), 212);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, -40, metric, imperial), -40);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, 212, imperial, metric), 100);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, 32, imperial, metric), 0);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Temperature, 50, metric, metresAndPounds), 50);
}

TEST(UnitsTest, MixedSetsConvertEachDimensionByItself) {
    ExpectClose(ConvertBetweenUnitSets(Kind::Stress, 1, metresAndPounds, metric), 0.0044482216152605, Kind::Stress);
    ExpectClose(ConvertBetweenUnitSets(Kind::Stress, 0.09290304, feetAndKilonewtons, metric), 1, Kind::Stress);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 7, metresAndPounds, metric), 7);
}

TEST(UnitsTest, WhatHasNoUnitsToConvertPassesUnchanged) {
    UnitSet const none;
    double const missing = std::numeric_limits<double>::max();
    double const infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::None, 5, metric, imperial), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 5, metric, metric), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 5, none, imperial), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 5, metric, none), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, missing, imperial, metric), missing);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, infinite, imperial, metric), infinite);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, -infinite, imperial, metric), -infinite);
    EXPECT_TRUE(std::isnan(ConvertBetweenUnitSets(Kind::Length, std::nan(""), imperial, metric)));
}

TEST(UnitsTest, UnknownKindsAndUnitNumbersPassUnchanged) {
    UnitSet const unknown{{3, 3, 3}};
    UnitSet const lengthAlone{{2, 0, 0}};
    for (auto const kind : {static_cast<Kind::Type>(-1), static_cast<Kind::Type>(kindCount),
                            static_cast<Kind::Type>(std::numeric_limits<std::int32_t>::max())}) {
        EXPECT_EQ(ConvertBetweenUnitSets(kind, 5, metric, imperial), 5);
        EXPECT_EQ(hzn::units::GetEngUnitValueString(kind, metric), L"");
        EXPECT_EQ(hzn::units::KindName(kind), L"");
    }
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 5, metric, unknown), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Stress, 5, lengthAlone, metric), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 10, lengthAlone, metric), 3.048);
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Length, unknown), L"");
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Stress, lengthAlone), L"");
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Length, lengthAlone), L"ft");
}

TEST(UnitSetTest, SystemsAreSets) {
    EXPECT_EQ(metric, (UnitSet{{1, 1, 1}}));
    EXPECT_EQ(imperial, (UnitSet{{2, 2, 2}}));
    EXPECT_TRUE(hzn::units::SystemUnitSet(math::unitsystem::None).IsZero());
    EXPECT_TRUE(hzn::units::SystemUnitSet(static_cast<math::unitsystem::Type>(3)).IsZero());
    EXPECT_TRUE(hzn::units::SystemUnitSet(static_cast<math::unitsystem::Type>(-1)).IsZero());
    EXPECT_TRUE(UnitSet().IsZero());
    EXPECT_FALSE((UnitSet{{0, 0, 1}}).IsZero());
    static_assert(sizeof(UnitSet) == 3 * sizeof(std::uint32_t));
}

TEST(UnitTextTest, EveryKindHasATextInBothSystems) {
    struct Texts {
        Kind::Type kind;
        wchar_t const* metric;
        wchar_t const* imperial;
    };
    Texts const all[] = {
        {Kind::Length, L"m", L"ft"},
        {Kind::Area, L"m\u00B2", L"ft\u00B2"},
        {Kind::Volume, L"m\u00B3", L"ft\u00B3"},
        {Kind::Angle, L"\u00B0", L"\u00B0"},
        {Kind::Time, L"s", L"s"},
        {Kind::Mass, L"t", L"slug"},
        {Kind::Force, L"kN", L"lbf"},
        {Kind::Stress, L"kPa", L"psf"},
        {Kind::UnitWeight, L"kN/m\u00B3", L"pcf"},
        {Kind::HydraulicConductivity, L"m/s", L"ft/s"},
        {Kind::Flux, L"m\u00B3/s", L"ft\u00B3/s"},
        {Kind::Temperature, L"\u00B0C", L"\u00B0F"},
        {Kind::Energy, L"kJ", L"ft\u00B7lbf"},
    };
    std::set<int> seen{Kind::None};
    for (Texts const& row : all) {
        EXPECT_EQ(hzn::units::GetEngUnitValueString(row.kind, metric), row.metric);
        EXPECT_EQ(hzn::units::GetEngUnitValueString(row.kind, imperial), row.imperial);
        EXPECT_EQ(hzn::units::GetEngUnitValueString(row.kind, UnitSet()), L"");
        seen.insert(row.kind);
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(kindCount));
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::None, metric), L"");
}

TEST(UnitTextTest, MixedSetsSpellTheUnitOut) {
    using hzn::units::GetEngUnitValueString;
    EXPECT_EQ(GetEngUnitValueString(Kind::Stress, metresAndPounds), L"lbf/m\u00B2");
    EXPECT_EQ(GetEngUnitValueString(Kind::Stress, feetAndKilonewtons), L"kN/ft\u00B2");
    EXPECT_EQ(GetEngUnitValueString(Kind::UnitWeight, feetAndKilonewtons), L"kN/ft\u00B3");
    EXPECT_EQ(GetEngUnitValueString(Kind::Energy, metresAndPounds), L"lbf\u00B7m");
    EXPECT_EQ(GetEngUnitValueString(Kind::Mass, metresAndPounds), L"lbf\u00B7s\u00B2/m");
    EXPECT_EQ(GetEngUnitValueString(Kind::Force, metresAndPounds), L"lbf");
    EXPECT_EQ(GetEngUnitValueString(Kind::Flux, feetAndKilonewtons), L"ft\u00B3/s");
    EXPECT_EQ(GetEngUnitValueString(Kind::Temperature, feetAndKilonewtons), L"\u00B0F");
}

TEST(KindNameTest, NamesAreDistinctAndReadBack) {
    std::set<std::wstring> names;
    for (int i = 0; i < kindCount; ++i) {
        auto const kind = static_cast<Kind::Type>(i);
        std::wstring const name = hzn::units::KindName(kind);
        EXPECT_FALSE(name.empty()) << i;
        EXPECT_TRUE(names.insert(name).second) << name;
        auto back = static_cast<Kind::Type>(-1);
        EXPECT_TRUE(hzn::units::KindFromName(name, back)) << name;
        EXPECT_EQ(back, kind);
    }
    EXPECT_EQ(hzn::units::KindName(Kind::UnitWeight), L"UnitWeight");
}

TEST(KindNameTest, UnknownNamesAreRefused) {
    for (wchar_t const* name : {L"", L"length", L"Length ", L"Pressure"}) {
        Kind::Type kind = Kind::Angle;
        EXPECT_FALSE(hzn::units::KindFromName(name, kind)) << name;
        EXPECT_EQ(kind, Kind::Angle);
    }
}

TEST(UnitReplacementTest, ConverterIsAskedOnlyAboutValuesThatChange) {
    static int calls = 0;
    calls = 0;
    auto const before = math::units::SetConverter([](Kind::Type, double value, UnitSet const&, UnitSet const&) {
        ++calls;
        return value * 10;
    });
    EXPECT_EQ(before, nullptr);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 5, metric, imperial), 50);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 5, metric, metric), 5);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::None, 5, metric, imperial), 5);
    double const missing = std::numeric_limits<double>::max();
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, missing, metric, imperial), missing);
    EXPECT_EQ(calls, 1);
    EXPECT_NE(math::units::SetConverter(nullptr), nullptr);
    EXPECT_EQ(ConvertBetweenUnitSets(Kind::Length, 10, imperial, metric), 3.048);
}

TEST(UnitReplacementTest, TextsMayBeReplacedAndPutBack) {
    EXPECT_EQ(hzn::units::SetUnitText([](Kind::Type, UnitSet const&) { return std::wstring(L"unit"); }), nullptr);
    EXPECT_EQ(hzn::units::SetKindText([](Kind::Type) { return std::wstring(L"kind"); }), nullptr);
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Length, metric), L"unit");
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::None, metric), L"");
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Length, UnitSet()), L"");
    EXPECT_EQ(hzn::units::KindName(Kind::Length), L"kind");
    EXPECT_NE(hzn::units::SetUnitText(nullptr), nullptr);
    EXPECT_NE(hzn::units::SetKindText(nullptr), nullptr);
    EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Length, metric), L"m");
    EXPECT_EQ(hzn::units::KindName(Kind::Length), L"Length");
}

} // namespace
