#include <kit/kit.h>
#include <zo/zo.h>

#include <iostream>

struct Soil {
    std::wstring name;
    double cohesion = 0.0;  // kPa
    double friction = 30.0; // degrees
};
struct Project {
    std::wstring title = L"Embankment";
    std::vector<Soil> soils{{L"Clay", 12.5, 18.0}, {L"Sand", 0.0, 35.0}};
} project;

void SoilModule(zo::kit::Kit& kit) {
    using zo::kit::Kind;
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.unit = Kind::Stress, .min = 0.0})
        .Field<&Soil::friction>("Friction", L"Phi", {.unit = Kind::Angle, .min = 0.0, .max = 60.0});
    kit.Record<Project>("Project")
        .Field<&Project::title>("Title", L"Title")
        .Array<&Project::soils>("Soils", L"Soils[Soil]");
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
}

int main() {
    zo::kit::Report const report = zo::kit::Register({&SoilModule});
    if (!report.IsClean()) return std::wcerr << report.Text(), 1;

    zo::H const friction = zo::Find("Project.Soils[1].Friction");       // names count from 0
    htl::status const refused = friction->Set(75.0);                    // out of range: nothing changes
    htl::status const accepted = friction->Set(L"32.5");                // the structure itself is written
    std::wcout << zo::FullTag(friction) << L": " << refused.AsWString() // tags count from 1
               << L"\nnow " << project.soils[1].friction << L'\n';

    std::wstring document;
    htl::status const saved = zo::xml::StringWrite(document, {1, 0}, 0, nullptr);
    std::wcout << document;
    return accepted.IsError() || saved.IsError() ? 1 : 0;
}
