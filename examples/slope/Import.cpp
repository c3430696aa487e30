#include "examples/slope/Import.h"

#include "examples/slope/Csv.h"
#include "examples/slope/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace slope {

namespace {

// Beside each table: its columns, by number.
namespace problemTable {
constexpr std::array<std::string_view, 8> columns{"problem",          "title",      "length_unit", "stress_unit",
                                                  "unit_weight_unit", "seismic_kh", "water",       "grid_files"};
enum { problem, title, lengthUnit, stressUnit, unitWeightUnit, seismic, water };
} // namespace problemTable
namespace lineTable {
constexpr std::array<std::string_view, 6> columns{"problem", "line", "role", "point", "x", "y"};
enum { problem, line, role, point, x, y };
} // namespace lineTable
namespace materialTable {
constexpr std::array<std::string_view, 5> columns{"problem", "layer", "cohesion", "friction_deg", "unit_weight"};
enum { problem, layer, cohesion, friction, unitWeight };
} // namespace materialTable
namespace factorTable {
constexpr std::array<std::string_view, 5> columns{"problem", "method", "factor_of_safety", "lambda", "kind"};
enum { problem, method, factor, lambda, kind };
} // namespace factorTable

constexpr std::array<unsigned long, 4> layerColors{0x65A1C8, 0x466D8C, 0x736B5E, 0x504A3F}; // 0xBBGGRR

/// Reads one problem. Each step stops at the first row that makes no sense.
class Importer {
public:
    Importer(std::string folder, std::string problem) : folder(std::move(folder)), problem(std::move(problem)) {}

    htl::status Run(Project& into) {
        // The order matters: materials tell the layers, lines bound them, and water may be given by a line.
        for (auto const step :
             {&Importer::Problem_, &Importer::Materials_, &Importer::Lines_, &Importer::Regions_, &Importer::Analyses_})
            if (htl::status failure = (this->*step)(); failure.IsError()) return failure;
        into = std::move(project);
        return {};
    }

private:
    std::string Path_(char const* file) const { return folder + "/" + file; }

    htl::status Problem_();
    htl::status Units_(CsvTable const& table, CsvTable::Row const& row);
    htl::status Water_(CsvTable const& table, CsvTable::Row const& row);
    htl::status Materials_();
    htl::status Lines_();
    htl::status LinePoint_(CsvTable const& table, CsvTable::Row const& row);
    htl::status Regions_();
    htl::status Analyses_();
    int NumberOfPoint_(Point const& point);

    std::string folder, problem;
    Project project;
    std::vector<int> bottoms; // of layer k the number of its bottom line, 0 without one
    std::string lineName;     // of the line whose points are being read
    int pointsRead = 0;
    int ground = 0;
};

htl::status Importer::Problem_() {
    CsvTable table;
    if (htl::status failure = table.Read(Path_("problems.csv"), problemTable::columns); failure.IsError())
        return failure;
    std::vector<std::string> names;
    CsvTable::Row const* found = nullptr;
    for (CsvTable::Row const& row : table.Rows()) {
        names.push_back(row.fields[problemTable::problem]);
        if (names.back() != problem) continue;
        if (found) return table.Refuse(row, problemTable::problem, "is there twice");
        found = &row;
    }
    if (!found)
        return htl::status::FromText(
            Wide("There is no problem \"" + problem + "\". There are " + Join(names, ", ") + "."));

    project.name = problem;
    project.title = found->fields[problemTable::title];
    if (htl::status failure = Units_(table, *found); failure.IsError()) return failure;
    if (htl::status failure = table.Number(*found, problemTable::seismic, project.settings.seismicCoefficient);
        failure.IsError())
        return failure;
    return Water_(table, *found);
}

htl::status Importer::Units_(CsvTable const& table, CsvTable::Row const& row) {
    struct Words {
        std::string_view length, stress, unitWeight;
        UnitSystem system;
    };
    constexpr std::array systems{Words{"m", "kPa", "kN/m3", UnitSystem::Metric},
                                 Words{"ft", "lbf/ft2", "lbf/ft3", UnitSystem::Imperial}};
    auto const& fields = row.fields;
    for (Words const& words : systems) {
        if (fields[problemTable::lengthUnit] != words.length) continue;
        if (fields[problemTable::stressUnit] != words.stress)
            return table.Refuse(row, problemTable::stressUnit,
                                "doesn't go with lengths in " + fields[problemTable::lengthUnit]);
        if (fields[problemTable::unitWeightUnit] != words.unitWeight)
            return table.Refuse(row, problemTable::unitWeightUnit,
                                "doesn't go with lengths in " + fields[problemTable::lengthUnit]);
        project.units = words.system;
        return {};
    }
    return table.Refuse(row, problemTable::lengthUnit, "is no unit of length, which are m and ft");
}

htl::status Importer::Water_(CsvTable const& table, CsvTable::Row const& row) {
    std::string const& water = row.fields[problemTable::water];
    if (water == "none") return {};
    project.water = std::make_unique<WaterTable>();
    if (water == "piezometric line") return {};
    double ratio = 0;
    if (water.starts_with("ru=")) {
        char const* const end = water.data() + water.size();
        auto const [stop, error] = std::from_chars(water.data() + 3, end, ratio);
        if (error == std::errc() && stop == end && std::isfinite(ratio) && ratio >= 0 && ratio <= 1) {
            project.water->kind = WaterKind::PorePressureRatio;
            project.water->porePressureRatio = ratio;
            return {};
        }
    }
    return table.Refuse(row, problemTable::water,
                        "is none of \"none\", \"piezometric line\" and \"ru=\" with a ratio from 0 to 1");
}

htl::status Importer::Materials_() {
    CsvTable table;
    if (htl::status failure = table.Read(Path_("materials.csv"), materialTable::columns); failure.IsError())
        return failure;
    for (CsvTable::Row const& row : table.Rows()) {
        if (row.fields[materialTable::problem] != problem) continue;
        int layer = 0;
        if (htl::status failure = table.Ordinal(row, materialTable::layer, layer); failure.IsError()) return failure;
        if (static_cast<std::size_t>(layer) != project.materials.size() + 1)
            return table.Refuse(row, materialTable::layer,
                                "isn't the next layer, which is " + std::to_string(project.materials.size() + 1));
        Material material;
        for (auto const& [column, value] : {std::pair{materialTable::cohesion, &material.cohesion},
                                            std::pair{materialTable::friction, &material.friction},
                                            std::pair{materialTable::unitWeight, &material.unitWeight}}) {
            if (htl::status failure = table.Number(row, column, *value); failure.IsError()) return failure;
            if (*value < 0) return table.Refuse(row, column, "is negative");
        }
        material.name = "Layer " + std::to_string(layer);
        material.strength = material.friction == 0 ? StrengthModel::Undrained : StrengthModel::MohrCoulomb;
        material.color = layerColors[project.materials.size() % layerColors.size()];
        project.materials.push_back(std::move(material));
    }
    if (project.materials.empty())
        return htl::status::FromText(Wide(Path_("materials.csv") + ": problem " + problem + " has no layer."));
    bottoms.assign(project.materials.size(), 0);
    return {};
}

htl::status Importer::Lines_() {
    CsvTable table;
    if (htl::status failure = table.Read(Path_("lines.csv"), lineTable::columns); failure.IsError()) return failure;
    for (CsvTable::Row const& row : table.Rows()) {
        if (row.fields[lineTable::problem] != problem) continue;
        if (htl::status failure = LinePoint_(table, row); failure.IsError()) return failure;
    }
    for (auto const& [lacks, what] :
         {std::pair{!ground, "no ground surface"},
          std::pair{!project.slipCircles.empty() && project.slipCircles.back().radius == missing,
                    "a slip circle without radius"},
          std::pair{project.water && project.water->points.empty() && project.water->kind == WaterKind::PiezometricLine,
                    "no points of its piezometric line"}})
        if (lacks)
            return htl::status::FromText(Wide(Path_("lines.csv") + ": problem " + problem + " has " + what + "."));
    return {};
}

htl::status Importer::LinePoint_(CsvTable const& table, CsvTable::Row const& row) {
    std::string const& name = row.fields[lineTable::line];
    std::string const& role = row.fields[lineTable::role];
    if (name != lineName) {
        lineName = name;
        pointsRead = 0;
    }
    int number = 0;
    Point point;
    if (htl::status failure = table.Ordinal(row, lineTable::point, number); failure.IsError()) return failure;
    if (htl::status failure = table.Number(row, lineTable::x, point.x); failure.IsError()) return failure;
    if (htl::status failure = table.Number(row, lineTable::y, point.y); failure.IsError()) return failure;
    if (number != pointsRead + 1)
        return table.Refuse(row, lineTable::point, "isn't the next point, which is " + std::to_string(pointsRead + 1));
    pointsRead = number;

    if (role == "slip circle, centre") {
        if (!project.slipCircles.empty() && project.slipCircles.back().radius == missing)
            return table.Refuse(row, lineTable::role, "follows a centre that has no radius");
        project.slipCircles.push_back({point, missing});
        return {};
    }
    if (role == "slip circle, radius in x") {
        if (project.slipCircles.empty() || project.slipCircles.back().radius != missing)
            return table.Refuse(row, lineTable::role, "has no centre before it");
        project.slipCircles.back().radius = point.x;
        return {};
    }
    if (role == "piezometric line") {
        if (!project.water) return table.Refuse(row, lineTable::role, "belongs to a problem without water");
        project.water->points.push_back(point);
        return {};
    }

    if (number == 1) {
        Line line;
        line.name = name;
        if (role == "ground surface") {
            ground = static_cast<int>(project.lines.size()) + 1;
        } else {
            constexpr std::string_view words = "bottom of layer ";
            std::size_t layer = 0;
            if (role.starts_with(words)) {
                char const* const end = role.data() + role.size();
                auto const [stop, error] = std::from_chars(role.data() + words.size(), end, layer);
                if (error != std::errc() || stop != end) layer = 0;
            }
            if (layer < 1 || layer > bottoms.size())
                return table.Refuse(row, lineTable::role, "is no kind of line that is known");
            line.role = LineRole::LayerBottom;
            bottoms[layer - 1] = static_cast<int>(project.lines.size()) + 1;
        }
        project.lines.push_back(std::move(line));
    }
    project.lines.back().points.push_back(NumberOfPoint_(point));
    return {};
}

htl::status Importer::Regions_() {
    for (std::size_t layer = 0; layer < project.materials.size(); ++layer) {
        Region region;
        region.name = project.materials[layer].name;
        region.material = static_cast<int>(layer) + 1;
        for (int const line : {layer ? bottoms[layer - 1] : ground, bottoms[layer]})
            if (line) region.lines.push_back(line);
        project.regions.push_back(std::move(region));
    }
    return {};
}

htl::status Importer::Analyses_() {
    CsvTable table;
    if (htl::status failure = table.Read(Path_("reference_fos.csv"), factorTable::columns); failure.IsError())
        return failure;
    for (CsvTable::Row const& row : table.Rows()) {
        if (row.fields[factorTable::problem] != problem) continue;
        Analysis analysis;
        analysis.method = row.fields[factorTable::method];
        if (htl::status failure = table.Number(row, factorTable::factor, analysis.factorOfSafety); failure.IsError())
            return failure;
        if (!row.fields[factorTable::lambda].empty())
            if (htl::status failure = table.Number(row, factorTable::lambda, analysis.lambda); failure.IsError())
                return failure;
        std::string const& kind = row.fields[factorTable::kind];
        if (kind != "published" && kind != "recomputed")
            return table.Refuse(row, factorTable::kind, "is neither published nor recomputed");
        // In a slope of one soil every slip surface lies in it. Where there are more, the tables don't tell which ones.
        if (project.regions.size() == 1) analysis.region = 1;
        analysis.source = kind == "published" ? FactorSource::Published : FactorSource::Recomputed;
        project.analyses.push_back(std::move(analysis));
    }
    return {};
}

int Importer::NumberOfPoint_(Point const& point) {
    auto const same = [&](Point const& other) { return other.x == point.x && other.y == point.y; };
    auto const found = std::find_if(project.points.begin(), project.points.end(), same);
    std::ptrdiff_t const index = found - project.points.begin();
    if (found == project.points.end()) project.points.push_back(point);
    return static_cast<int>(index) + 1;
}

} // namespace

std::string DefaultDataFolder() { return SLOPE_DATA_FOLDER; }

htl::status ListProblems(std::string const& folder, std::vector<std::string>& names) {
    CsvTable table;
    if (htl::status failure = table.Read(folder + "/problems.csv", problemTable::columns); failure.IsError())
        return failure;
    names.clear();
    for (CsvTable::Row const& row : table.Rows()) names.push_back(row.fields[problemTable::problem]);
    return {};
}

htl::status ImportProblem(std::string const& folder, std::string const& name, Project& project) {
    return Importer(folder, name).Run(project);
}

} // namespace slope
