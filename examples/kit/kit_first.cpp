// The program that docs/kit.md begins with.
#include "examples/kit/Soils.h"

#include <kit/kit.h>

using zo::kit::Kind;

void SoilModule(zo::kit::Kit& kit) {
    kit.Enum<Drainage>(drainageWords);
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.unit = Kind::Stress, .min = 0.0})
        .Field<&Soil::friction>("Friction", L"Phi", {.dflt = 30.0, .unit = Kind::Angle, .min = 0.0, .max = 60.0})
        .Field<&Soil::drainage>("Drainage", L"Drainage");
    kit.Record<Project>("Project")
        .Field<&Project::title>("Title", L"Title")
        .Array<&Project::soils>("Soils", L"Soils[Soil]");
    kit.Branch<Project>("Project", L"Project", [] { return &TheProject(); });
}

int main() {
    zo::kit::Report const report = zo::kit::Register({&SoilModule});
    if (!report.IsClean()) {
        std::wcerr << report.Text(); // "soil.cpp:12: {Friction}: the tag {Phi} is taken in {Soil}."
        return 1;
    }
    (void)zo::Find("Project.Soils[1].Friction")->Set(25);
}
