#include <iostream>
#include <kit/kit.h>
#include <zo/zo.h>

struct Soil {
    std::wstring name;
    double friction = 30.0; // degrees
};
struct Project {
    std::vector<Soil> soils{{L"Clay", 18.0}, {L"Sand", 35.0}};
} project;

void SoilModule(zo::kit::Kit& kit) {
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::friction>("Friction", L"Phi", {.unit = zo::kit::Kind::Angle, .min = 0.0, .max = 60.0});
    kit.Record<Project>("Project").Array<&Project::soils>("Soils", L"Soils[Soil]");
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
}

int main() {
    zo::kit::Report const report = zo::kit::Register({&SoilModule});
    if (!report.IsClean()) return std::wcerr << report.Text(), 1;

    zo::H const friction = zo::Find("Project.Soils[1].Friction"); // names count from 0, tags from 1
    std::wcout << zo::FullTag(friction) << L": " << friction->Set(75.0).AsWString() << L'\n';
    htl::status const accepted = friction->Set(32.5); // writes the structure itself

    std::wstring document;
    htl::status const saved = zo::xml::StringWrite(document, {1, 0}, 0, nullptr);
    std::wcout << L"now " << project.soils[1].friction << L'\n' << document;
    return accepted.IsError() || saved.IsError() ? 1 : 0;
}
