#include "examples/slope/Areas.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace slope {

namespace {

using Path = std::vector<Point>;

/// Twice what lies below the way from `a` to `b`; the ways around an outline add up to twice what it encloses.
double TwiceBelow(Point const& a, Point const& b) { return (b.x - a.x) * (a.y + b.y); }

/// A line as far as it bounds a region: from end to end of the section.
struct Bound {
    Point left, right;
    double twiceBelow = 0;
};

class Section {
public:
    explicit Section(Project const& project) : project(project) {
        for (Line const& line : project.lines) paths.push_back(PathOf_(line));
        for (std::size_t i = 0; i < paths.size() && ground.empty(); ++i)
            if (project.lines[i].role == LineRole::Ground) ground = paths[i];
        if (!std::is_sorted(ground.begin(), ground.end(), LeftOf_)) ground.clear();
        below.resize(ground.size());
        for (std::size_t i = 1; i < ground.size(); ++i) below[i] = below[i - 1] + TwiceBelow(ground[i - 1], ground[i]);
        for (Path const& path : paths) bounds.push_back(BoundOf_(path));
    }

    double Area(Region const& region) const {
        if (region.lines.size() < 2) return missing;
        std::optional<Bound> const top = Named_(region.lines[0]), bottom = Named_(region.lines[1]);
        if (!top || !bottom) return missing;
        double const twice = top->twiceBelow + TwiceBelow(top->right, bottom->right) - bottom->twiceBelow +
                             TwiceBelow(bottom->left, top->left);
        return std::isfinite(twice) ? std::abs(twice) / 2 : missing;
    }

private:
    static bool LeftOf_(Point const& a, Point const& b) { return a.x < b.x; }

    /// From the left. Numbers that name no point, and points without a place, are passed over.
    Path PathOf_(Line const& line) const {
        Path path;
        for (int const number : line.points) {
            if (number < 1 || static_cast<std::size_t>(number) > project.points.size()) continue;
            Point const& point = project.points[static_cast<std::size_t>(number) - 1];
            auto const isPlace = [](double value) { return std::isfinite(value) && value != missing; };
            if (isPlace(point.x) && isPlace(point.y)) path.push_back(point);
        }
        if (path.size() > 1 && path.front().x > path.back().x) std::reverse(path.begin(), path.end());
        return path;
    }

    std::optional<Bound> BoundOf_(Path const& path) const {
        if (path.empty() || ground.empty()) return {};
        Bound bound{path.front(), path.back()};
        for (std::size_t i = 1; i < path.size(); ++i) bound.twiceBelow += TwiceBelow(path[i - 1], path[i]);
        if (auto const first = std::lower_bound(ground.begin(), ground.end(), bound.left, LeftOf_);
            first != ground.begin()) {
            bound.twiceBelow += below[static_cast<std::size_t>(first - ground.begin()) - 1];
            bound.twiceBelow += TwiceBelow(first[-1], bound.left);
            bound.left = ground.front();
        }
        if (auto const rest = std::upper_bound(ground.begin(), ground.end(), bound.right, LeftOf_);
            rest != ground.end()) {
            bound.twiceBelow += TwiceBelow(bound.right, *rest);
            bound.twiceBelow += below.back() - below[static_cast<std::size_t>(rest - ground.begin())];
            bound.right = ground.back();
        }
        return bound;
    }

    std::optional<Bound> Named_(int number) const {
        if (number < 1 || static_cast<std::size_t>(number) > bounds.size()) return {};
        return bounds[static_cast<std::size_t>(number) - 1];
    }

    Project const& project;
    std::vector<Path> paths;
    Path ground;
    std::vector<double> below; // twice what lies below the ground from its left end to each of its points
    std::vector<std::optional<Bound>> bounds; // of each line
};

} // namespace

void UpdateAreas(Project& project) {
    Section const section(project);
    for (Region& region : project.regions) region.area = section.Area(region);
}

} // namespace slope
