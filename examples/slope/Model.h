// What the application is about: a slope, its soils and its water, and what others computed for it.
//
// Ordinary structures. Nothing here knows that they can be looked up by name, edited as text or saved: that is what the
// modules declare (Modules.h), beside the structures and not in them.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace slope {

/// Texts are UTF-8. Lengths, stresses and unit weights are stored in the project's units: m, kPa, kN/m3 or ft, lbf/ft2,
/// lbf/ft3. Angles are degrees in both.
enum class UnitSystem { Metric = 1, Imperial = 2 };

/// What a list of a project holds at most. More is a slip of the hand, and would take all memory before it failed.
inline constexpr std::size_t mostElements = 10'000'000;

/// A number that nobody gave.
inline constexpr double missing = std::numeric_limits<double>::max();

enum class Method { Ordinary = 1, Bishop, Janbu, Spencer, MorgensternPrice, StrengthReduction };

struct Settings {
    Method method = Method::Bishop;
    double tolerance = 0.0001; // of the factor of safety
    int maximumIterations = 100;
    int slices = 40;
    double seismicCoefficient = 0; // horizontal acceleration over gravity
};

enum class StrengthModel { MohrCoulomb = 1, Undrained, Impenetrable };

struct Material {
    std::string name;
    StrengthModel strength = StrengthModel::MohrCoulomb;
    double cohesion = 0;
    double friction = 0;
    double unitWeight = 0;
    unsigned long color = 0xB0B0B0; // 0xBBGGRR, the order that the library has colours in
    std::array<double, 4> anisotropy{1, 1, 1,
                                     1}; // factor on the strength at 0, 30, 60 and 90 degrees to the horizontal
    int id = 0;                          // its number, from 1, while it is copied or pasted; else 0
};

struct Point {
    double x = 0;
    double y = 0;
};

enum class LineRole { Ground = 1, LayerBottom };

struct Line {
    std::string name;
    LineRole role = LineRole::Ground;
    std::vector<int> points; // numbers of points, from 1, in order of x
};

/// The soil between two lines; without a second line it reaches down without end.
struct Region {
    std::string name;
    int material = 0;       // number of the material, from 1; 0 for none
    std::vector<int> lines; // numbers of its top line and of its bottom line, from 1
    double area = missing;  // m2 or ft2, as of the last `UpdateAreas`; nobody saves it
    int id = 0;             // as that of a material
};

enum class WaterKind { PiezometricLine = 1, PorePressureRatio };

/// Water in the slope. A dry slope has none.
struct WaterTable {
    WaterKind kind = WaterKind::PiezometricLine;
    double porePressureRatio = missing; // of the weight above; missing where a line says more
    std::vector<Point> points;          // of the piezometric line, in order of x
};

enum class FactorSource { Published = 1, Recomputed };

/// A factor of safety that somebody computed.
struct Analysis {
    std::string method; // as its source names it
    int region = 0;     // number of the region that holds all of its slip surface, from 1; 0 where none is known to
    double factorOfSafety = 0;
    double lambda = missing; // of the methods that have one
    FactorSource source = FactorSource::Published;
    int id = 0; // as that of a material
};

struct SlipCircle {
    Point centre;
    double radius = 0;
};

/// One cell of a layered aquifer below the slope.
struct Cell {
    int number = 0;          // from 1
    double top = 0;          // m
    double bottom = 0;       // m
    double conductivity = 0; // horizontal, m/day
    bool active = false;     // outside of the aquifer, if not
};

/// A large model: records for what belongs to each cell, and plain arrays for what a computation works on.
struct Aquifer {
    std::vector<Cell> cells;
    std::vector<double> transmissivity; // conductivity times thickness of each cell, m2/day
    std::vector<double> head;           // of each cell, m
};

struct Project {
    std::string name; // short: "AT1"
    std::string title;
    UnitSystem units = UnitSystem::Metric;
    Settings settings;
    std::vector<Material> materials;
    std::vector<Point> points;
    std::vector<Line> lines;
    std::vector<Region> regions;
    std::vector<SlipCircle> slipCircles;
    std::vector<Analysis> analyses;
    int currentAnalysis = 0; // number of the one that is worked on, from 1; 0 for none
    std::unique_ptr<WaterTable> water;
    std::unique_ptr<Aquifer> aquifer;
};

/// The difference between the highest and the lowest point of the ground; 0 without ground.
double SlopeHeight(Project const& project);

/// The lowest and the highest of a project's published factors of safety, which differ by method.
struct FactorRange {
    double lowest = missing;
    double highest = missing; ///< both `missing` if none is published
};
FactorRange PublishedFactors(Project const& project);

/// What refers to something that isn't there: a sentence each. A number typed by hand can name any point.
std::vector<std::string> BrokenReferences(Project const& project);

} // namespace slope
