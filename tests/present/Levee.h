// A levee whose soils are records, for what people read about nodes.
//
// Regions lead to their soil, soils to what may replace them: the first two replace each other. Profiles hold points,
// so arrays stand in arrays; the branch `Layer2` has a digit in its name. Two aliases lead to the first soil, one of
// them by way of the other, and one leads nowhere.
#pragma once

#include "Common/present/Text.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

enum class DataParamType : std::int32_t { None = 0, Cohesion = 7, Modulus = 9 };

namespace zo::kit {
class Kit;
}

namespace levee {

using embankment::Succeeds;
using embankment::TextOf;
using fixture::TableText;
using zo::H;

inline constexpr GID soilGroup = 5;

/// In metres.
struct Point {
    double x = 0;
    double y = 0;
    std::wstring name;
};
struct Soil {
    std::wstring name;
    double cohesion = 0; // kPa
    unsigned long color = 0;
    int substitute = 0; // a soil, 0 for none
};
struct Region {
    std::wstring name;
    int soil = 0;        // 0 for none
    htl::Int64 fill = 0; // a colour
};
struct Profile {
    std::wstring name;
    std::vector<Point> points;
};
struct Layer {
    std::vector<Point> points;
};
struct Project {
    std::wstring title;
    std::wstring description;
    int drainage = 0;
};

/// What the application holds.
struct Model {
    Project project{L"Levee 7", L"North bank", 1};
    std::vector<Soil> soils{{L"Clay", 25, 0x0000FF, 2}, {L"Sand", 0, 0x00FF00, 1}, {L"Peat", 4, 0x808080, 0}};
    std::vector<Region> regions{{L"Core", 1, 0xFF0000}, {L"Shell", 2, 0x00FFFF}, {L"Gap", 0, 0}};
    std::vector<Profile> profiles{{L"West", {{0, 0, L"P1"}, {40, 0, L"P2"}}},
                                  {L"East", {{0, 1, L"P3"}, {25, 9, L"P4"}, {40, 1, L"P5"}}}};
    Layer layer2{{{0, 4, L""}, {5, 4, L""}, {10, 4, L""}, {15, 4, L""}, {20, 4, L""}, {25, 4, L""}}};
};

/// The rows: `Project` { `Title`, `Description`, `Drainage` }, `Soils` [ { `Name`, `Cohesion`, `Color`, `Substitute` }
/// ], `Regions` [ { `Name`, `Soil`, `Fill` } ], `Profiles` [ { `Name`, `Points` [ { `X`, `Y`, `Name` } ] } ], `Layer2`
/// { `Points` [ { `X`, `Y`, `Name` } ] }, and the aliases `Cover` to `Soils[0]`, `Top` to `Cover`, `Nothing` to
/// `Soils[9]`, `Round` and `About` to each other. Tags are names. Cohesion is of the data parameter of that name.
class Levee {
public:
    /// `more` declares what a test adds.
    explicit Levee(std::function<void(zo::kit::Kit&)> const& more = {});
    Levee(Levee const&) = delete;
    Levee& operator=(Levee const&) = delete;
    ~Levee();

    Model model;
    htl::handle<zo::ZORegistry> registry;

private:
    zo::ZORegistry* previous = nullptr;
};

/// Every test gets a levee of its own.
class LeveeTest : public testing::Test {
protected:
    /// Reads a table with the entry "Default" and compiles it.
    static testing::AssertionResult Compiles(TableText const& table);
    /// A table with the entry "Default", whose label is "?".
    static TableText Table();

    Levee levee;
};

} // namespace levee
