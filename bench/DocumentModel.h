// A project of points, materials and regions that scales to a document of a wanted size.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

struct Point {
    bool operator==(Point const&) const = default;
    double x = 0, y = 0;
};
struct Material {
    bool operator==(Material const&) const = default;
    std::wstring name;
    double cohesion = 0, friction = 0, unitWeight = 0;
    int model = 0;
    bool drained = false;
    std::array<double, 4> properties{};
};
struct Region {
    bool operator==(Region const&) const = default;
    int material = 0;
    std::vector<int> indices;
};
struct Project {
    bool operator==(Project const&) const = default;
    std::wstring title;
    std::vector<Material> materials;
    std::vector<Point> points;
    std::vector<Region> regions;
    std::vector<std::wstring> reports;
};

/// About `megabytes` of document: mostly points as attribute records, 20,000 for each; some materials of elements, some
/// long index lists, one report of 32,000 characters for each.
Project MakeProject(std::size_t megabytes);
/// Registers the branch "Project" over `project` in the current registry.
void RegisterProject(Project& project);
/// The numbers of the project as text, appended to one buffer: the least that writing it takes.
std::size_t FormatNumbers(Project const& project, std::string& buffer);

} // namespace bench
