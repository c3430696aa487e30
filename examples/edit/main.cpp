// The functions that docs/editing.md quotes, and a program that runs them.
#include <iostream>
#include <kit/kit.h>
#include <zo/zo.h>

enum Group : std::uint32_t { soilGroup = 5, regionGroup = 6 };

struct Soil {
    std::wstring name;
    double cohesion = 0; // kPa or psf, as the project's units say
};
struct Region {
    int soil = 0; // the number of its soil, from 1; 0 for none
};
enum class UnitSystem { Metric = 1, Imperial = 2 };
struct Project {
    UnitSystem units = UnitSystem::Metric;
    int current = 0; // region that the user looks at
    std::vector<Soil> soils{{L"Clay", 25}, {L"Sand", 0}};
    std::vector<Region> regions{{1}, {2}};
} project;

constexpr std::array unitWords{meta::EnumWord{1, L"Metric", L"m", L"Metric"},
                               meta::EnumWord{2, L"Imperial", L"ft", L"Imperial"}};

void SoilModule(zo::kit::Kit& kit) {
    using zo::kit::Kind;
    kit.Enum<UnitSystem>(unitWords);
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.unit = Kind::Stress, .min = 0.0});
    kit.Record<Region>("Region").Link<&Region::soil>("Soil", L"Soil", soilGroup);
    kit.Record<Project>("Project")
        .Field<&Project::units>("Units", L"Units")
        .Link<&Project::current>("Current", L"Current", regionGroup)
        .Array<&Project::soils>("Soils", L"Soils[Soil]", {.recordGroup = soilGroup})
        .Array<&Project::regions>("Regions", L"Regions[Region]", {.recordGroup = regionGroup});
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
    kit.Alias("Current", L"CurrentRegion", "Project.Current.@");
}

// A print for the pieces below.
void Show(char const* what, zo::H const& node) {
    std::wstring text;
    if (!node || node->Get(text).IsError()) text = L"nothing";
    std::wcout << what << L": " << text << L'\n';
}

htl::status RaiseCohesion(double factor) {
    htl::handle<zo::ZOTransaction> const edit = zo::ZORegistry::Instance()->CreateTransaction();
    for (std::size_t i = 0; i < project.soils.size(); ++i) {
        zo::H const cohesion = edit->Find("Project.Soils[$1].Cohesion", static_cast<int>(i));
        double value = 0;
        if (htl::status failure = cohesion->Get(value); failure.IsError()) return failure;
        // A value that the field refuses ends the edit, and the model is as it was.
        if (htl::status failure = cohesion->Set(value * factor); failure.IsError()) return failure;
    }
    return edit->Commit("", "");
}

void FollowLinks() {
    Show("soil of the first region", zo::Find("Project.Regions[0].Soil.Name"));
    zo::H const link = zo::Find("Project.Regions[0].Soil");
    zo::H const sand = zo::Find("Project.Soils[1]");
    if (zo::SetLink(link, zo::GetRecordID(sand, zo::Link::AsStored)).IsError()) return;
    Show("and now", zo::Find("Project.Regions[0].Soil.Name"));
    Show("the record itself", zo::Find(zo::Find("Project.Regions[0].Soil.@"), "Name"));
    Show("by its identifier", zo::Find(zo::GetSource(GGID{soilGroup, 1}), "Name"));
}

void LookThroughAlias() {
    Show("no region is current", zo::Find("Current.Soil.Name"));
    project.current = 2;
    Show("the second one is", zo::Find("Current.Soil.Name"));
}

// What an application keeps of its edits, so that they can be taken back and done again.
std::vector<zo::ZOJournal> undoStack, redoStack;

htl::status AddSoil(std::wstring const& name) {
    htl::handle<zo::ZOTransaction> const edit = zo::ZORegistry::Instance()->CreateTransaction();
    zo::H const soils = edit->Find("Project.Soils");
    std::size_t const index = soils->Length();
    if (htl::status failure = soils->SetLength(index + 1); failure.IsError()) return failure;
    zo::H const added = edit->Find("Project.Soils[$1].Name", static_cast<int>(index));
    if (htl::status failure = added->Set(name); failure.IsError()) return failure;
    redoStack.clear(); // what was taken back before led elsewhere
    return edit->Commit("", "", &undoStack.emplace_back());
}

htl::status UndoLast() {
    if (htl::status failure = undoStack.back().Undo(*zo::ZORegistry::Instance()); failure.IsError()) return failure;
    redoStack.push_back(std::move(undoStack.back()));
    undoStack.pop_back();
    return {};
}

htl::status RedoLast() {
    if (htl::status failure = redoStack.back().Redo(*zo::ZORegistry::Instance()); failure.IsError()) return failure;
    undoStack.push_back(std::move(redoStack.back()));
    redoStack.pop_back();
    return {};
}

htl::status EnterInPounds(double cohesion) {
    htl::handle<zo::ZOTransaction> const edit = zo::ZORegistry::Instance()->CreateTransaction();
    // What this edit is given in. The project doesn't know the name, so the commit leaves it out.
    zo::H const units(
        new zo::ZOAtomicData<int>(zo::IZO::npos, nullptr, meta::AtomicTraits<int>(), int(UnitSystem::Imperial)));
    if (htl::status failure = edit->Insert("GivenIn", units); failure.IsError()) return failure;
    if (htl::status failure = edit->Find("Project.Soils[0].Cohesion")->Set(cohesion); failure.IsError()) return failure;
    return edit->Commit("GivenIn", "Project.Units");
}

void Report(char const* what, htl::status const& result) {
    std::wcout << what << L": " << (result.IsError() ? result.AsWString() : L"done") << L'\n';
}

int main() {
    zo::kit::Report const report = zo::kit::Register({&SoilModule});
    if (!report.IsClean()) return std::wcerr << report.Text(), 1;

    Report("raise the cohesion by half", RaiseCohesion(1.5));
    Report("turn it negative", RaiseCohesion(-1));
    Show("cohesion", zo::Find("Project.Soils[0].Cohesion"));
    FollowLinks();
    LookThroughAlias();
    Report("add a soil", AddSoil(L"Gravel"));
    Show("soils", zo::Find("Project.Soils.Len"));
    Report("undo", UndoLast());
    Show("soils", zo::Find("Project.Soils.Len"));
    Report("redo", RedoLast());
    Show("the last one", zo::Find("Project.Soils[2].Name"));
    Report("enter 500 psf", EnterInPounds(500));
    Show("cohesion", zo::Find("Project.Soils[0].Cohesion"));
}
