#include "examples/slope/Model.h"

#include <algorithm>

namespace slope {

namespace {

/// Whether a number from 1 names one of `count` things.
bool Names(int number, std::size_t count) { return number >= 1 && static_cast<std::size_t>(number) <= count; }

std::string Sentence(std::string const& what, std::size_t index, std::string const& name, std::string const& refers,
                     int number, std::size_t count) {
    return what + " " + std::to_string(index + 1) + " (" + name + ") refers to " + refers + " " +
           std::to_string(number) + ", but there are " + std::to_string(count) + ".";
}

} // namespace

double SlopeHeight(Project const& project) {
    double lowest = 0, highest = 0;
    bool first = true;
    for (Line const& line : project.lines) {
        if (line.role != LineRole::Ground) continue;
        for (int const number : line.points) {
            if (!Names(number, project.points.size())) continue;
            double const y = project.points[static_cast<std::size_t>(number) - 1].y;
            lowest = first ? y : std::min(lowest, y);
            highest = first ? y : std::max(highest, y);
            first = false;
        }
    }
    return highest - lowest;
}

FactorRange PublishedFactors(Project const& project) {
    FactorRange range;
    for (Analysis const& analysis : project.analyses) {
        if (analysis.source != FactorSource::Published) continue;
        double const factor = analysis.factorOfSafety;
        if (range.lowest == missing || factor < range.lowest) range.lowest = factor;
        if (range.highest == missing || factor > range.highest) range.highest = factor;
    }
    return range;
}

std::vector<std::string> BrokenReferences(Project const& project) {
    std::vector<std::string> broken;
    for (std::size_t i = 0; i < project.lines.size(); ++i)
        for (int const number : project.lines[i].points)
            if (!Names(number, project.points.size()))
                broken.push_back(Sentence("Line", i, project.lines[i].name, "point", number, project.points.size()));
    for (std::size_t i = 0; i < project.regions.size(); ++i) {
        Region const& region = project.regions[i];
        if (region.material != 0 && !Names(region.material, project.materials.size()))
            broken.push_back(Sentence("Region", i, region.name, "material", region.material, project.materials.size()));
        for (int const number : region.lines)
            if (!Names(number, project.lines.size()))
                broken.push_back(Sentence("Region", i, region.name, "line", number, project.lines.size()));
    }
    for (std::size_t i = 0; i < project.analyses.size(); ++i) {
        Analysis const& analysis = project.analyses[i];
        if (analysis.region != 0 && !Names(analysis.region, project.regions.size()))
            broken.push_back(
                Sentence("Analysis", i, analysis.method, "region", analysis.region, project.regions.size()));
    }
    if (project.currentAnalysis != 0 && !Names(project.currentAnalysis, project.analyses.size()))
        broken.push_back("The current analysis is number " + std::to_string(project.currentAnalysis) +
                         ", but there are " + std::to_string(project.analyses.size()) + ".");
    return broken;
}

} // namespace slope
