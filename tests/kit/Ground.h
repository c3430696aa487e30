// A ground whose parts are records that refer to each other.
//
// Materials (group 10) and regions (group 12) are branches of their own. The survey holds its settings, which are one
// record (group 7), and profiles (group 20) with wells, whose group 130 means nothing without the profile.
#pragma once

#include "tests/kit/Site.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace site {

inline constexpr GID settingsGroup = 7, materialGroup = 10, regionGroup = 12, profileGroup = 20, wellGroup = 130;

struct Material {
    std::wstring name;
    double cohesion = 0; // kPa
    int substitute = 0;  // another material

    bool operator==(Material const&) const = default;
};
struct Region {
    double area = 0; // m2
    int material = 0;

    bool operator==(Region const&) const = default;
};
struct Well {
    double depth = 0;  // m
    unsigned next = 0; // in the same profile

    bool operator==(Well const&) const = default;
};
struct Profile {
    std::wstring name;
    std::vector<Well> wells;

    bool operator==(Profile const&) const = default;
};
struct Settings {
    double tolerance = 0.01;
    unsigned cover = 0; // a material
};
struct Survey {
    Settings settings;
    std::vector<Profile> profiles;
};

/// Fill and clay replace each other.
class GroundTest : public KitTest {
protected:
    void RegisterGround() {
        Register({{"Materials", [this](zo::kit::Kit& kit) { MaterialModule(kit); }},
                  {"Regions", [this](zo::kit::Kit& kit) { RegionModule(kit); }},
                  {"Survey", [this](zo::kit::Kit& kit) { SurveyModule(kit); }}});
    }

    void MaterialModule(zo::kit::Kit& kit) {
        kit.Record<Material>("Material")
            .Field<&Material::name>("Name", L"Name")
            .Field<&Material::cohesion>("Cohesion", L"Cohesion")
            .Link<&Material::substitute>("Substitute", L"Substitute", materialGroup,
                                         {.persist = zo::kit::Persist::IfNotDefault});
        kit.Branch<std::vector<Material>>("Materials", L"Materials[Material]",
                                          [this] { return hasMaterials ? &materials : nullptr; },
                                          {.recordGroup = materialGroup});
    }
    void RegionModule(zo::kit::Kit& kit) {
        kit.Record<Region>("Region", {.attributes = true})
            .Field<&Region::area>("Area", L"Area")
            .Link<&Region::material>("Material", L"Material", materialGroup);
        kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [this] { return &regions; },
                                        {.recordGroup = regionGroup});
    }
    void SurveyModule(zo::kit::Kit& kit) {
        kit.Record<Settings>("Settings", {.recordGroup = settingsGroup})
            .Field<&Settings::tolerance>("Tolerance", L"Tolerance")
            .Link<&Settings::cover>("Cover", L"Cover", materialGroup);
        kit.Record<Well>("Well")
            .Field<&Well::depth>("Depth", L"Depth")
            .Field<&Well::next>("Next", L"Next", {.missing = 0u, .linkGroup = wellGroup});
        kit.Record<Profile>("Profile")
            .Field<&Profile::name>("Name", L"Name")
            .Array<&Profile::wells>("Wells", L"Wells[Well]", {.recordGroup = wellGroup});
        kit.Record<Survey>("Survey")
            .Struct<&Survey::settings>("Settings", L"Settings")
            .Array<&Survey::profiles>("Profiles", L"Profiles[Profile]", {.recordGroup = profileGroup});
        kit.Branch<Survey>("Survey", L"Survey", [this] { return &survey; });
    }

    bool hasMaterials = true;
    std::vector<Material> materials{{L"Fill", 5, 2}, {L"Clay", 25, 1}, {L"Rock", 400, 0}};
    std::vector<Region> regions{{60, 2}, {90, 3}};
    Survey survey{{}, {{L"West", {{12, 2}, {15, 1}}}, {L"East", {{8, 3}, {9, 1}, {10, 0}}}}};
};

/// The name of a node, "" for none.
inline std::string NameOf(zo::H const& node) { return node ? node->Name() : std::string(); }

} // namespace site

// For messages of failed expectations.
inline void PrintTo(GGID const& id, std::ostream* out) { *out << '{' << id.group << ", " << id.id << '}'; }
