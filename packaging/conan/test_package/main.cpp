// Declares a structure and reads it back, from outside the tree.
#include <kit/kit.h>
#include <zo/zo.h>

struct Soil {
    double friction = 30.0; // degrees
} soil;

int main() {
    zo::kit::Report const report = zo::kit::Register({[](zo::kit::Kit& kit) {
        kit.Record<Soil>("Soil").Field<&Soil::friction>("Friction", L"Phi");
        kit.Branch<Soil>("Soil", L"Soil", [] { return &soil; });
    }});
    zo::H const friction = zo::Find("Soil.Friction");
    return report.IsClean() && friction && !friction->Set(32.5).IsError() && soil.friction == 32.5 ? 0 : 1;
}
