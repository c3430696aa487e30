// The pieces that docs/guide.md quotes, step by step, and one of docs/lifetimes.md, and a program that runs them.
#include <iostream>
#include <thread>

#include <kit/kit.h>
#include <zo/zo.h>

using zo::kit::Kind;

// Prints the value of a name, or what is wrong.
void Show(std::string const& name) {
    zo::H const node = zo::Find(name);
    std::wstring text;
    if (!node) {
        text = L"not there";
    } else if (htl::status failure = node->Get(text); failure.IsError()) {
        text = failure.AsWString();
    }
    std::wcout << str::as_wstring(name) << L": " << text << L'\n';
}

// One structure.

struct Site {
    std::wstring title = L"Harbour wall";
    double datum = 2.5; // m above sea level
};
Site site;

void SiteModule(zo::kit::Kit& kit) {
    kit.Record<Site>("Site")
        .Field<&Site::title>("Title", L"Title")
        .Field<&Site::datum>("Datum", L"Datum", {.unit = Kind::Length, .min = -10.0, .max = 9000.0});
    kit.Branch<Site>("Site", L"Site", [] { return &site; });
}

void ReadAndWrite() {
    Show("Site.Title");
    htl::status const refused = zo::Find("Site.Datum")->Set(9999.0);
    std::wcout << refused.AsWString() << L'\n';
    if (htl::status failure = zo::Find("Site.Datum")->Set(L"3.25"); failure.IsError()) return;
    std::wcout << L"the structure holds " << site.datum << L'\n';
}

// An array, and an enumeration.

enum class Drainage { Drained = 1, Undrained = 2 };
constexpr std::array drainageWords{
    meta::EnumWord{1, L"Drained", L"D", L"Drained"},
    meta::EnumWord{2, L"Undrained", L"U", L"Undrained"},
};
struct Soil {
    std::wstring name;
    double unitWeight = 19.0; // kN/m3
    Drainage drainage = Drainage::Drained;
};
std::vector<Soil> soils{{L"Fill", 18.0}, {L"Marine clay", 16.5, Drainage::Undrained}};

enum Group : std::uint32_t { soilGroup = 4 };

void SoilModule(zo::kit::Kit& kit) {
    kit.Enum<Drainage>(drainageWords);
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::unitWeight>("UnitWeight", L"UnitWeight", {.unit = Kind::UnitWeight, .min = 0.0})
        .Field<&Soil::drainage>("Drainage", L"Drainage");
    kit.Branch<std::vector<Soil>>("Soils", L"Soils[Soil]", [] { return &soils; }, {.recordGroup = soilGroup});
}

void AddSoil() {
    zo::H const array = zo::Find("Soils");
    std::size_t const last = array->Length();
    if (array->SetLength(last + 1).IsError()) return; // a view of a soil is held somewhere
    Show("Soils.Len");
    Show("Soils[2].UnitWeight"); // what a fresh Soil holds
    Show("Soils[1].Drainage");
    if (zo::Find("Soils[$1].Name", static_cast<int>(last))->Set(L"Sand").IsError()) return;
}

// Arrays in arrays, and links.

struct Layer {
    double base = 0; // m below the surface
    int soil = 0;    // the number of its soil, from 1; 0 for none
};
struct Boring {
    std::wstring name;
    double easting = 0;           // m
    std::vector<double> readings; // depths of the water, m
    std::vector<Layer> layers;
};
std::vector<Boring> borings{{L"B1", 12.0, {1.5, 1.75}, {{2.0, 1}, {7.5, 2}}}, {L"B2", 30.0, {}, {{3.0, 1}}}};

void BoringModule(zo::kit::Kit& kit) {
    kit.Record<Layer>("Layer", {.attributes = true})
        .Field<&Layer::base>("Base", L"Base", {.unit = Kind::Length})
        .Link<&Layer::soil>("Soil", L"Soil", soilGroup);
    kit.Record<Boring>("Boring")
        .Field<&Boring::name>("Name", L"Name")
        .Field<&Boring::easting>("Easting", L"Easting", {.unit = Kind::Length})
        .Array<&Boring::readings>("Readings", L"Readings", {.unit = Kind::Length})
        .Array<&Boring::layers>("Layers", L"Layers[Layer]");
    kit.Branch<std::vector<Boring>>("Borings", L"Borings[Boring]", [] { return &borings; });
}

void FollowLink() {
    Show("Borings[0].Readings");
    Show("Borings[0].Layers[1].Soil");
    Show("Borings[0].Layers[1].Soil.Name");
    zo::H const link = zo::Find("Borings[1].Layers[0].Soil");
    if (zo::SetLink(link, GGID{soilGroup, 3}).IsError()) return;
    Show("Borings[1].Layers[0].Soil.Name");
}

// Aliases.

void AliasModule(zo::kit::Kit& kit) {
    kit.Group("Design", L"Design");
    kit.Alias("Design.Top", L"Top", "Borings[0].Layers[0].Soil.@");
    kit.Alias("Design.WaterLevel", L"WaterLevel", "Water.Level");
}

void LookThroughAliases() {
    Show("Design.Top.Name");
    borings[0].layers[0].soil = 3; // the alias follows the link
    Show("Design.Top.Name");
    Show("Design.WaterLevel"); // its branch is not there yet
}

// A branch that comes and goes.

struct Water {
    double level = 0; // m above sea level
};
std::unique_ptr<Water> water;

struct Options {
    bool HasWater() const { return water != nullptr; }
    void SetHasWater(bool wanted) {
        if (wanted == HasWater()) return;
        zo::ZORegistry::Instance()->InvalidateMemory(""); // no alias may go on holding the old object
        water = wanted ? std::make_unique<Water>() : nullptr;
    }
};
Options options;

void WaterModule(zo::kit::Kit& kit) {
    kit.Record<Options>("Options").Property<&Options::HasWater, &Options::SetHasWater>("HasWater", L"HasWater");
    kit.Branch<Options>("Options", L"Options", [] { return &options; });
    kit.Record<Water>("Water").Field<&Water::level>("Level", L"Level", {.unit = Kind::Length});
    kit.Branch<Water>("Water", L"Water", [] { return water.get(); });
}

void FloodAndDrain() {
    Show("Water.Level");
    if (zo::Find("Options.HasWater")->Set(true).IsError()) return;
    if (zo::Find("Water.Level")->Set(1.25).IsError()) return;
    Show("Water.Level");
    Show("Design.WaterLevel");
}

// All modules.

bool RegisterAll() {
    zo::kit::Report const report =
        zo::kit::Register({&SiteModule, &SoilModule, &BoringModule, &AliasModule, &WaterModule});
    if (!report.IsClean()) std::wcerr << report.Text();
    return report.IsClean();
}

void MistakenModule(zo::kit::Kit& kit) {
    kit.Record<Water>("Water").Field<&Water::level>("Level", L"2nd level").Field<&Water::level>("Level", L"Level");
    kit.Branch<Water>("Site", L"Flood", [] { return water.get(); });
}

void ReportMistakes() {
    zo::kit::Report const report = zo::kit::Register({&MistakenModule});
    for (zo::kit::Mistake const& mistake : report.mistakes) std::wcout << mistake.text << L'\n';
}

// The document.

void SaveAndLoad() {
    std::wstring document;
    if (zo::xml::StringWrite(document, {1, 0}).IsError()) return;
    std::wcout << document;

    zo::ZORegistry::Instance()->InvalidateMemory("");
    soils.clear();
    water = nullptr;
    std::vector<htl::status> errors;
    if (htl::status failure = zo::xml::StringRead(document, errors); failure.IsError()) return;
    std::wcout << errors.size() << L" values did not fit\n";
    Show("Soils[2].Name");
    Show("Water.Level");
}

// Another document.

// What a document says, read into a registry and a structure of its own. Any thread may call it.
std::wstring TitleIn(std::wstring const& document) {
    Site own; // outlives all use of the registry
    htl::handle<zo::ZORegistry> const registry(new zo::ZORegistry);
    zo::ZORegistry* const before = zo::ZORegistry::SetInstance(registry.get());
    zo::kit::Report const report = zo::kit::Register({[&own](zo::kit::Kit& kit) {
        kit.Record<Site>("Site").Field<&Site::title>("Title", L"Title");
        kit.Branch<Site>("Site", L"Site", [&own] { return &own; });
    }});
    std::vector<htl::status> errors;
    bool const isRead = report.IsClean() && !zo::xml::StringRead(document, errors).IsError();
    zo::ZORegistry::SetInstance(before);
    return isRead ? own.title : std::wstring();
}

void ReadBeside() {
    std::wstring title;
    std::thread([&title] {
        title = TitleIn(L"<HZNData Version=\"1.00\"><Site><Title>Quay</Title></Site></HZNData>");
    }).join();
    std::wcout << L"beside: " << title << L'\n';
    Show("Site.Title");
}

int main() {
    if (!RegisterAll()) return 1;
    ReadAndWrite();
    AddSoil();
    FollowLink();
    LookThroughAliases();
    FloodAndDrain();
    ReportMistakes();
    SaveAndLoad();
    ReadBeside();
}
