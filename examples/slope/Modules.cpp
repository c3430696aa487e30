// Written as a table: one line for each part of a structure, one function for each subject.
#include "examples/slope/Modules.h"

#include "examples/slope/Areas.h"
#include "examples/slope/Text.h"

#include <kit/kit.h>

#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace slope {

namespace {

using zo::kit::Kind;
using zo::kit::Kit;
using zo::kit::Persist;

/// A word of an enumeration. Documents keep `text`, so an enumerator may get another number, but no word another
/// meaning. Only what people read depends on their language.
struct Word {
    int value;
    std::wstring_view text, abbreviated, english, german;
};
constexpr std::array unitSystemWords{
    Word{int(UnitSystem::Metric), L"Metric", L"m", L"Metres, kilopascals", L"Meter, Kilopascal"},
    Word{int(UnitSystem::Imperial), L"Imperial", L"ft", L"Feet, pounds", L"Fuß, Pfund"},
};
constexpr std::array methodWords{
    Word{int(Method::Ordinary), L"Ordinary", L"OMS", L"Ordinary method of slices", L"Lamellenverfahren nach Fellenius"},
    Word{int(Method::Bishop), L"Bishop", L"B", L"Bishop, simplified", L"Bishop, vereinfacht"},
    Word{int(Method::Janbu), L"Janbu", L"J", L"Janbu, simplified and corrected", L"Janbu, vereinfacht mit Beiwert"},
    Word{int(Method::Spencer), L"Spencer", L"S", L"Spencer", L"Spencer"},
    Word{int(Method::MorgensternPrice), L"MorgensternPrice", L"MP", L"Morgenstern and Price", L"Morgenstern und Price"},
    Word{int(Method::StrengthReduction), L"StrengthReduction", L"SR", L"Strength reduction",
         L"Abminderung der Festigkeit"},
};
constexpr std::array strengthWords{
    Word{int(StrengthModel::MohrCoulomb), L"MohrCoulomb", L"MC", L"Cohesion and friction", L"Kohäsion und Reibung"},
    Word{int(StrengthModel::Undrained), L"Undrained", L"U", L"Cohesion alone", L"Nur Kohäsion"},
    Word{int(StrengthModel::Impenetrable), L"Impenetrable", L"I", L"No slip through it", L"Undurchdringlich"},
};
constexpr std::array lineRoleWords{
    Word{int(LineRole::Ground), L"Ground", L"G", L"Ground surface", L"Gelände"},
    Word{int(LineRole::LayerBottom), L"LayerBottom", L"L", L"Bottom of a layer", L"Unterkante einer Schicht"},
};
constexpr std::array waterKindWords{
    Word{int(WaterKind::PiezometricLine), L"PiezometricLine", L"line", L"Piezometric line", L"Piezometerlinie"},
    Word{int(WaterKind::PorePressureRatio), L"PorePressureRatio", L"ru", L"Pore pressure ratio",
         L"Porenwasserdruckbeiwert"},
};
constexpr std::array factorSourceWords{
    Word{int(FactorSource::Published), L"Published", L"P", L"Published by the source", L"Veröffentlicht"},
    Word{int(FactorSource::Recomputed), L"Recomputed", L"R", L"Recomputed as a check", L"Nachgerechnet"},
};

/// Declares an enumeration with what people read in their language.
template <class E, std::size_t N>
void Enum(Kit& kit, std::array<Word, N> const& words, Language language,
          zo::kit::Place place = zo::kit::Place::Here()) {
    std::vector<meta::EnumWord> chosen;
    for (Word const& word : words)
        chosen.push_back(
            {word.value, word.text, word.abbreviated, language == Language::German ? word.german : word.english});
    kit.Enum<E>(chosen, place);
}

/// Where a branch finds its object: a function that gives a part of the project, null once the project is gone.
template <class T>
auto Part(std::shared_ptr<Project> const& project, T Project::*member) {
    return [weak = std::weak_ptr(project), member]() -> T* {
        auto const held = weak.lock();
        return held ? &((*held).*member) : nullptr;
    };
}

/// The same for a part that comes and goes: with it the branch.
template <class T>
auto Part(std::shared_ptr<Project> const& project, std::unique_ptr<T> Project::*member) {
    return [weak = std::weak_ptr(project), member]() -> T* {
        auto const held = weak.lock();
        return held ? ((*held).*member).get() : nullptr;
    };
}

/// Makes or removes a part that comes and goes. The library is told, since it may know where the old one was: as the
/// part's own branch, or as what an alias led to.
template <class T>
void Make(std::unique_ptr<T>& part, bool wanted) {
    if (static_cast<bool>(part) == wanted) return;
    part = wanted ? std::make_unique<T>() : nullptr;
    zo::ZORegistry::Instance()->InvalidateMemory("");
}

bool HasWater(Project const& project) { return static_cast<bool>(project.water); }
void SetHasWater(Project& project, bool wanted) { Make(project.water, wanted); }
bool HasAquifer(Project const& project) { return static_cast<bool>(project.aquifer); }
void SetHasAquifer(Project& project, bool wanted) { Make(project.aquifer, wanted); }

/// The trigger of what is worked out and kept. It is at rest, so that each write of 1 is one.
int AtRest(Project const&) { return 0; }
void StartUpdate(Project& project, int asked) {
    if (asked) UpdateAreas(project); // a load puts it back to its default, as all else
}
bool NotByPeople(zo::IZO const&) { return false; }

int PointCount(Project const& project) { return static_cast<int>(project.points.size()); }

void ProjectModule(Kit& kit, std::shared_ptr<Project> const& project, Language language) {
    Enum<UnitSystem>(kit, unitSystemWords, language);
    Enum<Method>(kit, methodWords, language);
    kit.Record<Settings>("Settings")
        .Field<&Settings::method>("Method", L"Method")
        .Field<&Settings::tolerance>("Tolerance", L"Tolerance", {.min = 1e-12, .max = 0.1})
        .Field<&Settings::maximumIterations>("MaximumIterations", L"MaximumIterations", {.min = 1, .max = 100000})
        .Field<&Settings::slices>("Slices", L"Slices", {.min = 1, .max = 10000})
        .Field<&Settings::seismicCoefficient>("SeismicCoefficient", L"SeismicCoefficient", {.min = 0, .max = 1});
    // The properties stand before the branches that they make: a load comes to them first.
    kit.Record<Project>("Project")
        .Field<&Project::name>("Name", L"Name")
        .Field<&Project::title>("Title", L"Title")
        .Field<&Project::units>("Units", L"Units")
        .Struct<&Project::settings>("Settings", L"Settings")
        .Link<&Project::currentAnalysis>("CurrentAnalysis", L"CurrentAnalysis", analysisRecords,
                                         {.persist = Persist::IfNotDefault})
        .Property<&HasWater, &SetHasWater>("HasWater", L"HasWater")
        .Property<&HasAquifer, &SetHasAquifer>("HasAquifer", L"HasAquifer", {.persist = Persist::IfNotDefault})
        .Computed<&SlopeHeight>("SlopeHeight", L"SlopeHeight", {.unit = Kind::Length})
        .Computed<&PointCount>("PointCount", L"PointCount")
        .Property<&AtRest, &StartUpdate>("UpdateCalculatedValues", L"UpdateCalculatedValues",
                                         {.editable = NotByPeople, .persist = Persist::Never});
    kit.Branch<Project>("Project", L"Project",
                        [weak = std::weak_ptr(project)]() -> Project* { return weak.lock().get(); });
    // Another name for the analysis that the link leads to now: CurrentAnalysis.FactorOfSafety.
    kit.Alias("CurrentAnalysis", L"CurrentAnalysis", "Project.CurrentAnalysis.@");
}

void MaterialModule(Kit& kit, std::shared_ptr<Project> const& project, Language language) {
    Enum<StrengthModel>(kit, strengthWords, language);
    kit.Record<Material>("Material")
        .Field<&Material::id>("ID", L"ID", {.editable = NotByPeople, .persist = Persist::IfNotDefault})
        .Field<&Material::name>("Name", L"Name")
        .Field<&Material::strength>("Strength", L"Strength")
        .Field<&Material::cohesion>("Cohesion", L"Cohesion", {.unit = Kind::Stress, .min = 0})
        .Field<&Material::friction>("Friction", L"Friction", {.unit = Kind::Angle, .min = 0, .max = 60})
        .Field<&Material::unitWeight>("UnitWeight", L"UnitWeight", {.unit = Kind::UnitWeight, .min = 0})
        .Field<&Material::color>("Color", L"Color", {.max = 0xFFFFFF})
        .Array<&Material::anisotropy>("Anisotropy", L"Anisotropy", {.dflt = 1, .min = 0});
    kit.Branch<std::vector<Material>>("Materials", L"Materials[Material]", Part(project, &Project::materials),
                                      {.recordGroup = materialRecords});
}

void GeometryModule(Kit& kit, std::shared_ptr<Project> const& project, Language language) {
    Enum<LineRole>(kit, lineRoleWords, language);
    kit.Record<Point>("Point", {.attributes = true}) // <Point X="48" Y="35"/>
        .Field<&Point::x>("X", L"X", {.unit = Kind::Length})
        .Field<&Point::y>("Y", L"Y", {.unit = Kind::Length});
    kit.Record<Line>("Line")
        .Field<&Line::name>("Name", L"Name")
        .Field<&Line::role>("Role", L"Role")
        .Array<&Line::points>("Points", L"Points", {.dflt = 1, .min = 1});
    kit.Record<Region>("Region")
        .Field<&Region::id>("ID", L"ID", {.editable = NotByPeople, .persist = Persist::IfNotDefault})
        .Field<&Region::name>("Name", L"Name")
        .Link<&Region::material>("Material", L"Material", materialRecords) // Regions[2].Material.Cohesion
        .Array<&Region::lines>("Lines", L"Lines", {.dflt = 1, .min = 1})
        .Computed<&Region::area>("Area", L"Area", {.unit = Kind::Area}); // as of the project's last update
    kit.Branch<std::vector<Point>>("Points", L"Points[Point]", Part(project, &Project::points));
    kit.Branch<std::vector<Line>>("Lines", L"Lines[Line]", Part(project, &Project::lines));
    kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", Part(project, &Project::regions),
                                    {.recordGroup = regionRecords});
}

void WaterModule(Kit& kit, std::shared_ptr<Project> const& project, Language language) {
    Enum<WaterKind>(kit, waterKindWords, language);
    // People see only what goes with the kind of water; the other is kept.
    auto const onlyFor = [&](WaterKind kind) {
        return [weak = std::weak_ptr(project), kind](zo::IZO const&) {
            auto const held = weak.lock();
            return held && held->water && held->water->kind == kind;
        };
    };
    kit.Record<WaterTable>("WaterTable")
        .Field<&WaterTable::kind>("Kind", L"Kind")
        .Field<&WaterTable::porePressureRatio>(
            "PorePressureRatio", L"PorePressureRatio",
            {.missing = missing, .min = 0, .max = 1, .visible = onlyFor(WaterKind::PorePressureRatio)})
        .Array<&WaterTable::points>("Points", L"Points[Point]", {.visible = onlyFor(WaterKind::PiezometricLine)});
    kit.Branch<WaterTable>("Water", L"Water", Part(project, &Project::water));
}

void AnalysisModule(Kit& kit, std::shared_ptr<Project> const& project, Language language) {
    Enum<FactorSource>(kit, factorSourceWords, language);
    kit.Record<Analysis>("Analysis")
        .Field<&Analysis::id>("ID", L"ID", {.editable = NotByPeople, .persist = Persist::IfNotDefault})
        .Field<&Analysis::method>("Method", L"Method")
        .Link<&Analysis::region>("Region", L"Region", regionRecords, {.persist = Persist::IfNotDefault})
        .Field<&Analysis::factorOfSafety>("FactorOfSafety", L"FactorOfSafety", {.min = 0})
        .Field<&Analysis::lambda>("Lambda", L"Lambda")
        .Field<&Analysis::source>("Source", L"Source");
    kit.Record<SlipCircle>("SlipCircle")
        .Struct<&SlipCircle::centre>("Centre", L"Centre")
        .Field<&SlipCircle::radius>("Radius", L"Radius", {.unit = Kind::Length, .min = 0});
    kit.Branch<std::vector<Analysis>>("Analyses", L"Analyses[Analysis]", Part(project, &Project::analyses),
                                      {.recordGroup = analysisRecords});
    kit.Branch<std::vector<SlipCircle>>("SlipCircles", L"SlipCircles[SlipCircle]",
                                        Part(project, &Project::slipCircles));
}

void AquiferModule(Kit& kit, std::shared_ptr<Project> const& project, Language) {
    // Values at their defaults are left out: of 106,257 records every attribute counts.
    kit.Record<Cell>("Cell", {.attributes = true})
        .Field<&Cell::number>("Number", L"N", {.persist = Persist::IfNotDefault})
        .Field<&Cell::top>("Top", L"Top", {.unit = Kind::Length, .persist = Persist::IfNotDefault})
        .Field<&Cell::bottom>("Bottom", L"Bottom", {.unit = Kind::Length, .persist = Persist::IfNotDefault})
        .Field<&Cell::conductivity>("Conductivity", L"K", {.min = 0, .persist = Persist::IfNotDefault})
        .Field<&Cell::active>("Active", L"Active", {.persist = Persist::IfNotDefault});
    kit.Record<Aquifer>("Aquifer")
        .Array<&Aquifer::cells>("Cells", L"Cells[Cell]")
        .Array<&Aquifer::transmissivity>("Transmissivity", L"Transmissivity") // one text with commas
        .Array<&Aquifer::head>("Head", L"Head", {.unit = Kind::Length});
    kit.Branch<Aquifer>("Aquifer", L"Aquifer", Part(project, &Project::aquifer));
}

} // namespace

void RegisterModules(std::shared_ptr<Project> const& project, Language language) {
    std::vector<zo::kit::Module> modules;
    for (auto* const declare :
         {&ProjectModule, &MaterialModule, &GeometryModule, &WaterModule, &AnalysisModule, &AquiferModule})
        modules.emplace_back([=](Kit& kit) { declare(kit, project, language); });
    zo::kit::Report const report = zo::kit::Register(modules);
    if (!report.IsClean()) throw std::logic_error(Narrow(report.Text()));

    // Otherwise branches stand in the order of their tags, and the aquifer would come before the property that makes
    // it.
    zo::xml::RegisterFirstOrdering(L"Project");
}

} // namespace slope
