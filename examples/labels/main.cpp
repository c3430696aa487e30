// The functions and tables that docs/table.md quotes, and a program that runs them.
#include <extinfo/Explain.h>
#include <extinfo/TableCheck.h>
#include <iostream>
#include <kit/kit.h>
#include <string_view>
#include <zo/zo.h>

struct Layer {
    std::wstring soil;
    double base = 0; // depth below ground, m
    unsigned long color = 0;
};
struct Boring {
    std::wstring name;
    double easting = 0; // m
    std::vector<Layer> layers;
};
struct Water {
    double level = -2.5; // m above datum
    double weight = 9.81;
};
struct Site {
    std::wstring title = L"Weir at the old mill";
    std::vector<Boring> borings{{L"B1", 12.5, {{L"Fill", 1.25, 0x5080A0}, {L"Clay", 6.5, 0x4060A0}}},
                                {L"B2", 40, {{L"Clay", 4, 0x4060A0}}}};
    Water water;
} site;

void SiteModule(zo::kit::Kit& kit) {
    kit.Record<Layer>("Layer")
        .Field<&Layer::soil>("Soil", L"Soil")
        .Field<&Layer::base>("Base", L"Base")
        .Field<&Layer::color>("Color", L"Color");
    kit.Record<Boring>("Boring")
        .Field<&Boring::name>("Name", L"Name")
        .Field<&Boring::easting>("Easting", L"Easting")
        .Array<&Boring::layers>("Layers", L"Layers[Layer]");
    kit.Record<Water>("Water").Field<&Water::level>("Level", L"Level").Field<&Water::weight>("Weight", L"Weight");
    kit.Record<Site>("Site")
        .Field<&Site::title>("Title", L"Title")
        .Array<&Site::borings>("Borings", L"Borings[Boring]")
        .Struct<&Site::water>("Water", L"Water");
    kit.Branch<Site>("Survey", L"Survey", [] { return &site; });
    kit.Group("Summary", L"Summary");
}

constexpr std::string_view english = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Rows="17">
  <Row Tag="Default" Category="General"/>
  <Row Tag="Survey" Label="Survey" Style="header"/>
  <Row Tag="Survey.Title" Label="&amp;Title" Description="Printed on each page"/>
  <Row Tag="Survey.Borings" Label="Borings" Style="table"/>
  <Row Tag="Survey.Borings.[].Easting" Label="Easting"/>
  <Row Tag="Survey.Water.Level" Label="Water level"/>
  <Row Tag="Survey.Water.*" Label="Unit weight" Category="Ground water"/>
  <Row Tag="Boring" Label="Boring" LabelTag="!Label Name" PrettyPrintNameTag="!Label" ColorTag="Layers[1].Color"/>
  <Row Tag="Layer" Label="Layer" LabelTag="Soil"/>
  <Row Tag="Layer.Base" Label="Depth of the base"/>
  <Row Tag="Layer.Color" Label="Color" ViewExcl="property,report"/>
  <Row Tag="Water" Label="Ground water"/>
  <Row Tag="*.Name" Label="Name"/>
  <Row Tag="*.Layers" Label="Layers"/>
  <Row Tag="*.Soil" Label="Soil"/>
  <Row Tag="Summary" Label="Summary">
    <ViewTravList Rows="4">
      <Item SourceTag="Survey.Title"/>
      <Item SourceTag="Survey.Borings" RemoveFromSource="0"/>
      <Item SourceTag="Survey.Water.*"/>
      <Item SourceTag="Survey.Borings[1].Easting" DestTag="Start" IsDynamic="1"/>
    </ViewTravList>
  </Row>
  <Row Tag="Summary.Start" Label="First boring at"/>
</Meta_ExtendedInfo>
)";

constexpr std::string_view german = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Rows="4">
  <Row Tag="Survey.Title" Label="&amp;Titel" Description="Steht auf jeder Seite"/>
  <Row Tag="Survey.Borings" Label="Bohrungen"/>
  <Row Tag="Boring" Label="Bohrung"/>
  <Row Tag="Layer.Base" Label="Tiefe der Unterkante"/>
</Meta_ExtendedInfo>
)";

void Print(std::wstring const& line) { std::cout << str::as_cstring(line) << '\n'; }

// ---- Reading

htl::status ReadTables(bool inGerman) {
    htl::status failure = zo::ZOExtendedInfoRead(english.data(), english.data() + english.size());
    if (!failure.IsError() && inGerman) failure = zo::ZOExtendedInfoRead(german.data(), german.data() + german.size());
    if (failure.IsError()) return failure;
    return zo::CompileExtendedInfo();
}

// ---- What people read

void PrintTexts() {
    Print(zo::Label("Survey.Title"));                 // Title
    Print(zo::LabelWithAccel("Survey.Title"));        // &Title
    Print(zo::Description(zo::Find("Survey.Title"))); // Printed on each page
    Print(zo::Label("Survey.Borings[1]"));            // Boring B2
    Print(zo::Label("Survey.Borings[1].Layers[0]"));  // Clay
    zo::H const base = zo::Find("Survey.Borings[1].Layers[0].Base");
    Print(zo::PrettyPrintName(base, L'.'));                           // Boring B2 .Layers [1] .Depth of the base
    Print(zo::PrettyPrintName(zo::Find("Survey.Water.Level"), L'.')); // Survey .Ground water .Water level
}

void PrintColors() {
    std::cout << std::hex;
    std::cout << zo::Color(zo::Find("Survey.Borings[0].Layers[1]")) << '\n'; // 4060a0, of its child "Color"
    std::cout << zo::Color(zo::Find("Survey.Borings[0]")) << '\n';           // 5080a0, where the table says
    std::cout << std::dec;
}

// ---- The view

int const properties = 0x2 | zo::visible::Mask(hzn::apptype::Any) | zo::visible::Mask(hzn::appmode::Define);

void PrintView(char const* name) {
    zo::view::Walk(zo::Find(name), properties, [](zo::H const& node, unsigned level) {
        Print(std::wstring(2 * level, L' ') + zo::Label(node));
        return level < 1;
    });
}

// ---- Diagnostics

void PrintDiagnostics() {
    zo::TableReport const report = zo::CheckTable();
    if (!report.IsClean()) Print(report.Text());
    Print(zo::ExplainFields(zo::Find("Survey.Water.Level")).Text());
    Print(zo::ExplainVisibility(zo::Find("Survey.Borings[0].Layers[0].Color"), properties).Text());
}

// Everything once more in a registry of its own, as another run of the application would have it.
int Run(bool inGerman) {
    static std::vector<htl::handle<zo::ZORegistry>> registries;
    registries.emplace_back(new zo::ZORegistry);
    zo::ZORegistry::SetInstance(registries.back().get());
    zo::kit::Report const report = zo::kit::Register({&SiteModule});
    if (!report.IsClean()) return std::wcerr << report.Text(), 1;
    if (htl::status const failure = ReadTables(inGerman); failure.IsError()) {
        Print(failure.AsWString());
        return 1;
    }
    PrintTexts();
    PrintColors();
    Print(L"Survey:");
    PrintView("Survey");
    Print(L"Summary:");
    PrintView("Summary");
    PrintDiagnostics();
    return 0;
}

int main() { return Run(false) + Run(true); }
