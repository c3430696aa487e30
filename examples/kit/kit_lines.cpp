// Every line that docs/kit.md gives as an example, and a program that registers them all.
#include <array>
#include <deque>
#include <iostream>
#include <kit/kit.h>
#include <map>
#include <memory>
#include <zo/zo.h>

using zo::kit::Kind;

namespace {

enum Group : std::uint32_t { soilGroup = 4 };

struct Point {
    double x = 0, y = 0;
};
struct Settings {
    double datum = 2.5;
};
struct Soil {
    std::wstring name;
    double cohesion = 0;
    unsigned long color = 0xFFFFFF;
    double anisotropy[3] = {1, 0.5, 0.25};
};
struct Analysis {
    double lambda = 0;
};
struct Region {
    int soil = 0;
};
struct Water {
    double level = 0;
};
struct Project {
    Settings settings;
    std::wstring title;
    std::vector<Soil> soils{{L"Clay", 25}, {L"Sand", 0}};
    std::vector<Region> regions{{1}};
    std::vector<std::wstring> notes;
    std::vector<std::vector<double>> readings;
    std::map<int, double> loads;
    std::unique_ptr<Water> water;

    bool HasWater() const { return water != nullptr; }
    void SetHasWater(bool wanted) { water = wanted ? std::make_unique<Water>() : nullptr; }
    double Height() const { return 12.5; }
} project;
std::vector<Soil> soils{{L"Gravel", 0}};

htl::status CheckName(std::wstring const& name) {
    return name.find(L'/') == name.npos ? htl::status() : htl::status::FromText(L"A name has no slash.");
}

// Each line stands as in the page.
// clang-format off
void Lines(zo::kit::Kit& kit) {
    kit.Record<Point>("Point", {.attributes = true}).Field<&Point::x>("X", L"X").Field<&Point::y>("Y", L"Y");
    kit.Record<Settings>("Settings").Field<&Settings::datum>("Datum", L"Datum");
    kit.Record<Analysis>("Analysis")
        .Field<&Analysis::lambda>("Lambda", L"Lambda", {.persist = zo::kit::Persist::IfNotDefault});
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name", {.valid = [](std::wstring const& name, zo::IZO const*) { return CheckName(name); }})
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion")
        .Field<&Soil::color>("Color", L"Color", {.dflt = 0xFFFFFFul})
        .Array<&Soil::anisotropy>("Anisotropy", L"Anisotropy", {.min = 0.0})
        .Alias("Project", L"Project", L"@Parent@Parent@Parent.Title");
    kit.Record<Water>("Water").Field<&Water::level>("Level", L"Level");
    kit.Record<Project>("Project")
        .Field<&Project::title>("Title", L"Title")
        .Struct<&Project::settings>("Settings", L"Settings")
        .Keyed<&Project::soils, &Soil::name>("Soils", L"Soils[Soil]")
        .Array<&Project::notes>("Notes", L"Notes[Note]")
        .Array<&Project::readings>("Readings", L"Readings[Row]")
        .Map<&Project::loads>("Loads", L"Loads[Load]", {.valueTag = L"Force"})
        .Property<&Project::HasWater, &Project::SetHasWater>("HasWater", L"HasWater")
        .Computed<&Project::Height>("Height", L"Height", {.unit = Kind::Length});
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
    kit.Branch<Water>("Water", L"Water", [&] { return project.water.get(); });
    kit.Branch<std::vector<Soil>>("Soils", L"Soils[Soil]", [&] { return &soils; }, {.recordGroup = soilGroup});
    kit.Alias("Cover", L"Cover", "Project.Soils[0]");
    kit.Alias("Datum", L"Datum", "Project.Settings.Datum", {.kept = true});
    kit.AliasByTag("Base", L"Base", L"Project.Soils[4]");
    kit.AliasSet("Design", L"Design", {{"Cohesion", "Cover.Cohesion"}, {"Datum", "Datum"}});
}

// One member as a link, and as a number that only knows its group.
void LinkLines(zo::kit::Kit& kit) {
    kit.Record<Region>("Region")
        .Link<&Region::soil>("Soil", L"Soil", soilGroup);
    kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [] { return &project.regions; });
}
void GroupLines(zo::kit::Kit& kit) {
    kit.Record<Region>("Region")
        .Field<&Region::soil>("Soil", L"Soil", {.missing = 0, .linkGroup = soilGroup});
    kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [] { return &project.regions; });
}
// clang-format on

bool Registers(std::vector<zo::kit::Module> const& modules) {
    zo::kit::Report const report = zo::kit::Register(modules);
    std::wcerr << report.Text();
    return report.IsClean();
}

void Show(char const* name) {
    zo::H const node = zo::Find(name);
    std::wstring text;
    if (!node || node->Get(text).IsError()) text = L"nothing";
    std::wcout << name << L": " << text << L'\n';
}

} // namespace

int main() {
    if (!Registers({&Lines, &LinkLines})) return 1;
    project.title = L"Cut";
    Show("Project.Soils.At(Clay).Cohesion");
    Show("Project.Soils[1].Anisotropy");
    Show("Project.Soils[1].Project");
    Show("Soils[0].Name");
    Show("Regions[0].Soil.Name");
    Show("Cover.Cohesion");
    Show("Design.Datum");
    Show("Project.Height");
    Show("Base.Name");

    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    zo::ZORegistry* const before = zo::ZORegistry::SetInstance(other.get());
    bool const registered = Registers({&Lines, &GroupLines});
    if (registered) Show("Regions[0].Soil");
    zo::ZORegistry::SetInstance(before);
    return registered ? 0 : 1;
}
