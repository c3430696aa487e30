// The structures of the program that docs/kit.md begins with.
#pragma once

#include <kit/kit.h>

#include <array>
#include <iostream>
#include <string>
#include <vector>

enum class Drainage { Drained = 0, Undrained = 1 };

inline constexpr std::array drainageWords{meta::EnumWord{0, L"Drained", L"D", L"Drained"},
                                          meta::EnumWord{1, L"Undrained", L"U", L"Undrained"}};

struct Soil {
    std::wstring name;
    double cohesion = 0;    // kPa
    double friction = 30.0; // degrees
    Drainage drainage = Drainage::Drained;
};

struct Project {
    std::wstring title;
    std::vector<Soil> soils{{L"Clay", 25, 18}, {L"Sand", 0, 35}};
};

inline Project& TheProject() {
    static Project project;
    return project;
}
