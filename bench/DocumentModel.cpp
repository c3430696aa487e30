#include "bench/DocumentModel.h"

#include "bench/Register.h"

#include <charconv>
#include <cmath>
#include <random>

namespace bench {

Project MakeProject(std::size_t megabytes) {
    std::mt19937 random(17);
    std::uniform_real_distribution<double> uniform(-600, 600);
    Project project;
    project.title = L"Embankment on soft clay";
    project.points.resize(20000 * megabytes);
    for (std::size_t i = 0; i < project.points.size(); ++i) {
        // Three of four as a surveyor gives them, every fourth as a mesh generator does.
        auto const coordinate = [&] {
            double const value = uniform(random);
            return i % 4 == 3 ? value : std::round(value * 10000) / 10000;
        };
        project.points[i] = {coordinate(), coordinate()};
    }
    project.materials.resize(100 * megabytes);
    for (std::size_t i = 0; i < project.materials.size(); ++i) {
        Material& material = project.materials[i];
        material.name = L"Ton, weich & nass <" + std::to_wstring(i) + L"> \u00fcber Kies";
        material.cohesion = std::round(std::abs(uniform(random)) * 10) / 10;
        material.friction = std::round(std::abs(uniform(random))) / 20;
        material.unitWeight = 18.82;
        material.model = static_cast<int>(i % 5);
        material.drained = i % 2 == 0;
        for (double& value : material.properties) value = uniform(random);
    }
    project.regions.resize(200 * megabytes);
    for (std::size_t i = 0; i < project.regions.size(); ++i) {
        project.regions[i].material = static_cast<int>(i % project.materials.size());
        for (int k = 0; k < 104; ++k)
            project.regions[i].indices.push_back(
                static_cast<int>((i * 131 + static_cast<std::size_t>(k) * 7919) % project.points.size()));
    }
    project.reports.resize(megabytes);
    for (std::size_t i = 0; i < project.reports.size(); ++i)
        for (int line = 1; project.reports[i].size() < 32000; ++line)
            project.reports[i] += L"Borehole " + std::to_wstring(i + 1) + L", sample " + std::to_wstring(line) +
                                  L": silty clay, \u03c6 > 20\u00b0 & w < 0.3, soft\n";
    return project;
}

void RegisterProject(Project& project) {
    using meta::AtomicTraits;
    static auto const point = meta::StructureBuilder<Point>()
                                  .Member(&Point::x, [] { return AtomicTraits<double>(); })
                                  .Member(&Point::y, [] { return AtomicTraits<double>(); })
                                  .Build();
    static auto const points = meta::ArrayTraits<std::vector<Point>>([] { return point; });
    static auto const properties = meta::ArrayTraits<std::array<double, 4>>([] { return AtomicTraits<double>(); });
    static auto const material = meta::StructureBuilder<Material>()
                                     .Member(&Material::name, [] { return AtomicTraits<std::wstring>(); })
                                     .Member(&Material::cohesion, [] { return AtomicTraits<double>(); })
                                     .Member(&Material::friction, [] { return AtomicTraits<double>(); })
                                     .Member(&Material::unitWeight, [] { return AtomicTraits<double>(); })
                                     .Member(&Material::model, [] { return AtomicTraits<int>(); })
                                     .Member(&Material::drained, [] { return AtomicTraits<bool>(); })
                                     .Member(&Material::properties, [] { return properties; })
                                     .Build();
    static auto const materials = meta::ArrayTraits<std::vector<Material>>([] { return material; });
    static auto const indices = meta::ArrayTraits<std::vector<int>>([] { return AtomicTraits<int>(); });
    static auto const region = meta::StructureBuilder<Region>()
                                   .Member(&Region::material, [] { return AtomicTraits<int>(); })
                                   .Member(&Region::indices, [] { return indices; })
                                   .Build();
    static auto const regions = meta::ArrayTraits<std::vector<Region>>([] { return region; });
    static auto const reports =
        meta::ArrayTraits<std::vector<std::wstring>>([] { return AtomicTraits<std::wstring>(); });
    static auto const whole = meta::StructureBuilder<Project>()
                                  .Member(&Project::title, [] { return AtomicTraits<std::wstring>(); })
                                  .Member(&Project::materials, [] { return materials; })
                                  .Member(&Project::points, [] { return points; })
                                  .Member(&Project::regions, [] { return regions; })
                                  .Member(&Project::reports, [] { return reports; })
                                  .Build();
    constexpr auto always = MetaPersistTraits::Always;
    auto const value = []<class T, class S>(char const* name, wchar_t const* tag, T S::*member) {
        Row(name, Value<T>(meta::OffsetOf(member)), {always, tag, true}, AtomicTraits<T>());
    };
    Row("Project", Structure(0, whole), {always, L"Project"}, whole, &project);
    value("Project.Title", L"Title", &Project::title);

    Row("Project.Materials", Array(meta::OffsetOf(&Project::materials), materials), {always, L"Materials[Material]"},
        materials);
    Row("Project.Materials.[]", Structure(0, material), {always, L"Material"}, material);
    value("Project.Materials.[].Name", L"Name", &Material::name);
    value("Project.Materials.[].Cohesion", L"Cohesion", &Material::cohesion);
    value("Project.Materials.[].Friction", L"Phi", &Material::friction);
    value("Project.Materials.[].UnitWeight", L"UnitWeight", &Material::unitWeight);
    value("Project.Materials.[].Model", L"Model", &Material::model);
    value("Project.Materials.[].Drained", L"Drained", &Material::drained);
    Row("Project.Materials.[].Props", Array(meta::OffsetOf(&Material::properties), properties),
        {always, L"Props", true}, properties);
    Row("Project.Materials.[].Props.[]", Value<double>(0), {always, L"Prop"}, AtomicTraits<double>());

    Row("Project.Points", Array(meta::OffsetOf(&Project::points), points), {always, L"Points[Point]"}, points);
    Row("Project.Points.[]", Structure(0, point), {always, L"Point", false, true}, point);
    Row("Project.Points.[].X", Value<double>(meta::OffsetOf(&Point::x)), {always, L"X"}, AtomicTraits<double>());
    Row("Project.Points.[].Y", Value<double>(meta::OffsetOf(&Point::y)), {always, L"Y"}, AtomicTraits<double>());

    Row("Project.Regions", Array(meta::OffsetOf(&Project::regions), regions), {always, L"Regions[Region]"}, regions);
    Row("Project.Regions.[]", Structure(0, region), {always, L"Region"}, region);
    value("Project.Regions.[].Material", L"Material", &Region::material);
    Row("Project.Regions.[].Indices", Array(meta::OffsetOf(&Region::indices), indices), {always, L"Indices", true},
        indices);
    Row("Project.Regions.[].Indices.[]", Value<int>(0), {always, L"Index"}, AtomicTraits<int>());

    Row("Project.Reports", Array(meta::OffsetOf(&Project::reports), reports), {always, L"Reports[Report]"}, reports);
    Row("Project.Reports.[]", Value<std::wstring>(0), {always, L"Report", true}, AtomicTraits<std::wstring>());
    zo::ZORegistry::Instance()->OnPostRegistration();
}

std::size_t FormatNumbers(Project const& project, std::string& buffer) {
    buffer.clear();
    auto const append = [&buffer](auto number) {
        char text[32];
        buffer.append(text, std::to_chars(text, text + sizeof text, number).ptr);
    };
    for (Point const& point : project.points) append(point.x), append(point.y);
    for (Material const& material : project.materials) {
        append(material.cohesion), append(material.friction), append(material.unitWeight), append(material.model);
        for (double const value : material.properties) append(value);
    }
    for (Region const& region : project.regions)
        for (int const index : region.indices) append(index);
    return buffer.size();
}

} // namespace bench
