// The pieces that docs/document.md quotes, and a program that prints the documents there.
#include <iostream>
#include <kit/kit.h>
#include <limits>
#include <map>
#include <zo/zo.h>

enum class Method { Bishop = 1, Janbu = 2 };
constexpr std::array methodWords{meta::EnumWord{1, L"Bishop", L"B", L"Bishop, simplified"},
                                 meta::EnumWord{2, L"Janbu", L"J", L"Janbu, corrected"}};

enum Group : std::uint32_t { soilGroup = 4 };

struct Point {
    double x = 0, y = 0;
};
struct Soil {
    std::wstring name;
    double cohesion = 0;
};
struct Settings {
    Method method = Method::Bishop;
    int slices = 30;
};
struct Project {
    std::wstring title = L"Cut \"A\" & ramp";
    double level = 2.5;
    bool isFinal = true;
    int year = std::numeric_limits<int>::max(); // the missing value: not known yet
    Settings settings;
    std::vector<Point> points{{0, 0}, {12.5, 0}};
    std::vector<Soil> soils{{L"Clay", 18}, {L"Sand", 0}};
    std::vector<std::wstring> notes{L"checked", L""};
    std::vector<double> weights{1, 0.5, 1e-3};
    std::vector<double> readings;
    std::vector<std::vector<double>> profiles{{1, 2}, {}};
    std::map<int, double> loads{{3, 1.5}};
    std::map<std::wstring, Soil> fills{{L"crest", {L"Gravel", 5}}};
    int current = 2; // the number of a soil
    double cache = 7.5;
} project;
std::unique_ptr<Settings> trial; // none now

void ProjectModule(zo::kit::Kit& kit) {
    using zo::kit::Persist;
    kit.Enum<Method>(methodWords);
    kit.Record<Point>("Point", {.attributes = true}).Field<&Point::x>("X", L"X").Field<&Point::y>("Y", L"Y");
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.persist = Persist::IfNotDefault});
    kit.Record<Settings>("Settings")
        .Field<&Settings::method>("Method", L"Method")
        .Field<&Settings::slices>("Slices", L"Slices");
    kit.Record<Project>("Project")
        .Field<&Project::title>("Title", L"Title")
        .Field<&Project::level>("Level", L"Level")
        .Field<&Project::isFinal>("IsFinal", L"IsFinal")
        .Field<&Project::year>("Year", L"Year")
        .Struct<&Project::settings>("Settings", L"Settings")
        .Array<&Project::points>("Points", L"Points[Point]")
        .Array<&Project::soils>("Soils", L"Soils[Soil]", {.recordGroup = soilGroup})
        .Array<&Project::notes>("Notes", L"Notes[Note]")
        .Array<&Project::weights>("Weights", L"Weights")
        .Array<&Project::readings>("Readings", L"Readings")
        .Array<&Project::profiles>("Profiles", L"Profiles[Profile]")
        .Map<&Project::loads>("Loads", L"Loads[Load]", {.valueTag = L"Force"})
        .Map<&Project::fills>("Fills", L"Fills[Fill]")
        .Link<&Project::current>("Current", L"Current", soilGroup)
        .Field<&Project::cache>("Cache", L"Cache", {.persist = Persist::Never})
        .Alias("First", L"First", L"Soils[1]");
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
    kit.Branch<Settings>("Trial", L"Trial", [] { return trial.get(); });
}

std::wstring Saved() {
    std::wstring document;
    if (htl::status failure = zo::xml::StringWrite(document, {1, 0}); failure.IsError()) return failure.AsWString();
    return document;
}

void Load(std::wstring const& document) {
    zo::xml::Unknowns unknown;
    auto const keep = [&unknown](zo::ZOSet*, zo::xml::Unknowns& items, double, zo::xml::impl::XMLError&) {
        unknown = items;
    };
    std::vector<htl::status> errors;
    htl::status const failure = zo::xml::StringRead(document, errors, {}, keep);
    if (failure.IsError()) std::wcout << failure.AsWString() << L'\n';
    for (htl::status const& error : errors) std::wcout << error.AsWString() << L'\n';
    for (auto const& [name, value] : unknown) std::wcout << L"unknown: " << name << L" = " << value << L'\n';
}

// From another version, and edited by hand.
constexpr wchar_t const* edited = LR"(<HZNData Version="1.00">
  <Project>
    <Level>two</Level>
    <Settings>
      <Method>Spencer</Method>
      <Slices>99999999999</Slices>
    </Settings>
    <Points Len="many">
      <Point X="1" Z="3"/>
    </Points>
    <Weights>1,,3</Weights>
    <Tension>0.5</Tension>
  </Project>
</HZNData>
)";

int main() {
    zo::kit::Report const report = zo::kit::Register({&ProjectModule});
    if (!report.IsClean()) return std::wcerr << report.Text(), 1;
    std::wcout << Saved();
    Load(edited);
    std::wcout << Saved();
    Load(L"<HZNData>\n  <Project>\n</HZNData>\n");
}
