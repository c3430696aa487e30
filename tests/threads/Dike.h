// What the threads work on: a dike of two soils, declared on each thread in a registry of its own.
#pragma once

#include <kit/kit.h>
#include <zo/zo.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace threads {

enum class Drainage : unsigned char { Drained = 0, Undrained = 1 };
inline constexpr std::array drainages{
    meta::EnumWord{0, L"Drained", L"D", L"Drained"},
    meta::EnumWord{1, L"Undrained", L"U", L"Not drained"},
};

enum Group : std::uint32_t { soilGroup = 5, regionGroup = 6 };

struct Soil {
    int id = 0; // its number among the soils, from 1
    std::wstring name;
    double cohesion = 0; // kPa, never negative
    Drainage drainage = Drainage::Drained;

    bool operator==(Soil const&) const = default;
};
struct Region {
    int id = 0;
    int soil = 0;               // the number of its soil, 0 for none
    std::vector<double> levels; // m

    bool operator==(Region const&) const = default;
};
struct Dike {
    std::wstring title;
    std::vector<Soil> soils;
    std::vector<Region> regions;

    bool operator==(Dike const&) const = default;
};

/// The dike of thread 0 or 1: soils "Clay" (25 kPa and the thread's number, undrained) and "Sand" (0, drained), one
/// region of soil 1 with levels 2.5 and 4.
Dike Example(int which);
/// What a save of it gives, format version 1.02.
std::wstring DocumentOf(int which);

/// A dike with a registry of its own, current on this thread from construction to destruction: `Dike` { `Title`,
/// `Soils` [ { `ID`, `Name`, `Cohesion`, `Drainage` } ], `Regions` [ { `ID`, `Soil`, `Levels` [] } ] } and the alias
/// `Cover` for what the first region consists of.
class OwnDike {
public:
    explicit OwnDike(int which);
    OwnDike(OwnDike const&) = delete;
    OwnDike& operator=(OwnDike const&) = delete;
    ~OwnDike();

    Dike dike;
    zo::kit::Report report;
    htl::handle<zo::ZORegistry> registry;

private:
    zo::ZORegistry* previous;
};

/// The text of the node under `name`; a failure's text in "<>".
std::wstring TextOf(std::string const& name);
testing::AssertionResult Succeeds(htl::status const& result);
testing::AssertionResult FailsAs(htl::status const& failure, htl::status const& expected);

} // namespace threads
