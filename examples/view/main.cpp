// The functions that docs/views.md and docs/units.md quote, and a program that runs them.
#include <iostream>
#include <kit/kit.h>
#include <string_view>
#include <zo/zo.h>

struct Soil {
    std::wstring name;
    double cohesion = 0; // kPa
    double weight = 0;   // kN/m3
    unsigned long color = 0;
};
struct Water {
    double level = 0; // m
    double weight = 9.81;
};
struct Project {
    std::wstring title = L"Embankment at the weir";
    std::vector<Soil> soils{{L"Clay", 25, 18.5, 0x4060A0}, {L"Sand", 0, 20, 0x40C0E0}};
    Water water{2.5};
} project;

void SiteModule(zo::kit::Kit& kit) {
    using zo::kit::Kind;
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.unit = Kind::Stress, .min = 0.0, .max = 500.0})
        .Field<&Soil::weight>("Weight", L"Weight", {.unit = Kind::UnitWeight, .min = 0.0})
        .Field<&Soil::color>("Color", L"Color");
    kit.Record<Water>("Water")
        .Field<&Water::level>("Level", L"Level", {.unit = Kind::Length})
        .Field<&Water::weight>("Weight", L"Weight", {.unit = Kind::UnitWeight});
    kit.Record<Project>("Project")
        .Field<&Project::title>("Title", L"Title")
        .Array<&Project::soils>("Soils", L"Soils[Soil]")
        .Struct<&Project::water>("Water", L"Water");
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
}

// What the water has stands in the project itself, and the weight of the first soil is shown there once more.
constexpr std::string_view table = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Rows="11">
  <Row Tag="Default"/>
  <Row Tag="Project" Label="Project">
    <List Rows="2">
      <Item SourceTag=".Water.*"/>
      <Item SourceTag=".Soils[1].Weight" DestTag="TopWeight" IsDynamic="1"/>
    </List>
  </Row>
  <Row Tag="Project.Title" Label="Title" ViewExcl="property"/>
  <Row Tag="Project.TopWeight" Label="Unit weight at the top"/>
  <Row Tag="Project.Soils" Label="Soils"/>
  <Row Tag="Project.Soils.[]" Label="Soil" LabelTag="!Label Name"/>
  <Row Tag="Soil.Name" Label="Name" ViewExcl="property"/>
  <Row Tag="Soil.Cohesion" Label="Cohesion" Physics="stress,slope"/>
  <Row Tag="Soil.Color" Label="Color" ViewExcl="all"/>
  <Row Tag="*.Weight" Label="Unit weight"/>
  <Row Tag="Project.Water.Level" Label="Water level"/>
</Meta_ExtendedInfo>
)";

void Print(std::wstring const& line) { std::cout << str::as_cstring(line) << '\n'; }

// What a property grid shows: the view below a node, with labels and values.
void PrintGrid(zo::H const& top, int query) {
    zo::view::Walk(top, query, [](zo::H const& node, unsigned level) {
        std::wstring line(2 * level, L' ');
        line += zo::Label(node);
        if (zo::HasPrettyPrintValue(node)) line += L": " + zo::PrettyPrintValueWithUnits(node);
        Print(line);
        return true; // and on to what is below it
    });
}

// A query: one view, an analysis, a mode.
int const properties = 0x2 | zo::visible::Mask(hzn::apptype::Slope) | zo::visible::Mask(hzn::appmode::Define);
int const flow = 0x2 | zo::visible::Mask(hzn::apptype::Water) | zo::visible::Mask(hzn::appmode::Define);

// The children of one node, one by one.
std::size_t CountShown(zo::H const& node, int query) {
    std::size_t count = 0;
    for (zo::H const& child : zo::view::Children(node, query)) count += zo::IsEditable(child) ? 1 : 0;
    return count;
}

// Values are stored in metres and kilonewtons; people see what they chose.
math::unitsystem::Type chosen = math::unitsystem::Metric;

void ProvideUnits() {
    zo::RegisterUnitsProvider([] { return hzn::units::SystemUnitSet(math::unitsystem::Metric); }, {},
                              [](hzn::units::Kind::Type) { return hzn::units::SystemUnitSet(chosen); });
}

// What a person typed, into the model; what was wrong with it, in the units that he sees.
void Type(char const* name, std::wstring const& text) {
    htl::status const refused = zo::SetPrettyPrintValue(zo::Find(name), text);
    if (refused.IsError()) Print(refused.AsWString());
    Print(zo::Label(name) + L": " + zo::PrettyPrintValueWithUnits(name));
}

htl::status Start() {
    zo::kit::Report const report = zo::kit::Register({SiteModule});
    if (!report.IsClean()) return htl::status::FromText(report.Text());
    ProvideUnits();
    if (htl::status failure = zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()); failure.IsError())
        return failure;
    return zo::CompileExtendedInfo();
}

int main() {
    if (htl::status const failure = Start(); failure.IsError()) {
        Print(failure.AsWString());
        return 1;
    }
    zo::H const root = zo::ZORegistry::Instance()->Root();
    Print(L"For slopes:");
    PrintGrid(root, properties);
    Print(L"For flow:");
    PrintGrid(zo::Find("Project.Soils"), flow);
    Print(L"Shown in the project: " + std::to_wstring(CountShown(zo::Find("Project"), properties)));

    chosen = math::unitsystem::Imperial;
    Print(L"In feet and pounds:");
    Type("Project.Soils[0].Cohesion", L"600 psf");
    Type("Project.Soils[0].Cohesion", L"20000");
    Type("Project.Soils[0].Cohesion", L"12 kPa");
    return 0;
}
