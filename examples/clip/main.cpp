// The functions that docs/clipboard.md quotes, and a program that runs them on two projects.
#include <iostream>
#include <kit/kit.h>
#include <zo/zo.h>

enum Group : std::uint32_t { soilGroup = 5, regionGroup = 6 };

struct Soil {
    int id = 0; // its number among the soils, from 1
    std::wstring name;
    double cohesion = 0; // kPa
};
struct Region {
    int id = 0;
    std::wstring name;
    int soil = 0; // the number of its soil
};
struct Project {
    std::vector<Soil> soils;
    std::vector<Region> regions;
};

void SoilModule(zo::kit::Kit& kit, Project& project) {
    kit.Record<Soil>("Soil")
        .Field<&Soil::id>("ID", L"ID")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion");
    kit.Record<Region>("Region", {.attributes = true})
        .Field<&Region::id>("ID", L"ID")
        .Field<&Region::name>("Name", L"Name")
        .Link<&Region::soil>("Soil", L"Soil", soilGroup);
    kit.Record<Project>("Project")
        .Array<&Project::soils>("Soils", L"Soils[Soil]", {.recordGroup = soilGroup})
        .Array<&Project::regions>("Regions", L"Regions[Region]", {.recordGroup = regionGroup});
    kit.Branch<Project>("Project", L"Project", [&project] { return &project; });
}

constexpr hzn::version::NumberKind<0> fileVersion{1, 0};

// What goes to the system's clipboard.
htl::status CopyRegion(int index, zo::clip::ClipboardContents& contents) {
    return zo::clip::Serialize(contents, {zo::Find("Project.Regions[$1]", index)}, fileVersion, "");
}

// Whether the menu offers to paste regions.
bool CanPasteRegions(zo::clip::ClipboardContents& contents) {
    return zo::clip::Contains(regionGroup, contents, fileVersion);
}

htl::status PasteRegions(zo::clip::ClipboardContents& contents) {
    std::vector<std::wstring> replaced;
    std::vector<htl::status> reasons;
    htl::status result = zo::clip::Deserialize(regionGroup, contents, fileVersion, replaced, "", &reasons);
    for (std::wstring const& name : replaced) std::wcout << L"replaced: " << name << L'\n';
    for (htl::status const& reason : reasons) std::wcout << L"because: " << reason.AsWString() << L'\n';
    return result;
}

// What the projects hold, for the program's output.
void Show(wchar_t const* what, Project const& project) {
    std::wcout << what << L'\n';
    for (Soil const& soil : project.soils)
        std::wcout << L"  soil " << soil.id << L": " << soil.name << L", " << soil.cohesion << L'\n';
    for (Region const& region : project.regions)
        std::wcout << L"  region " << region.id << L": " << region.name << L", soil " << region.soil << L'\n';
}

// Each project has a registry of its own; one of them is current.
struct OpenProject {
    explicit OpenProject(Project start) : project(std::move(start)), registry(new zo::ZORegistry) {
        Use();
        zo::kit::Report const report =
            zo::kit::Register({{"Soils", [this](zo::kit::Kit& kit) { SoilModule(kit, project); }}});
        if (!report.IsClean()) std::wcerr << report.Text();
    }
    void Use() const { zo::ZORegistry::SetInstance(registry.get()); }

    Project project;
    htl::handle<zo::ZORegistry> registry;
};

int main() {
    OpenProject dam({{{1, L"Clay", 25}, {2, L"Sand", 0}}, {{1, L"Core", 1}, {2, L"Shell", 2}}});
    OpenProject levee({{{1, L"Peat", 4}, {2, L"sand", 1}}, {{1, L"Core", 1}}});

    dam.Use();
    zo::clip::ClipboardContents core, shell;
    if (CopyRegion(0, core).IsError() || CopyRegion(1, shell).IsError()) return 1;
    std::wcout << core.document;

    levee.Use();
    if (!CanPasteRegions(core) || PasteRegions(core).IsError() || PasteRegions(shell).IsError()) return 1;
    Show(L"the levee with both regions of the dam:", levee.project);

    core.document = L"<HZNData Version=\"2.00\"/>";
    std::wcout << PasteRegions(core).AsWString() << L'\n';
    zo::ZORegistry::SetInstance(nullptr);
}
