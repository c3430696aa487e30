#include "bench/PathModel.h"

#include "bench/Register.h"

#include <algorithm>
#include <random>

namespace bench {
namespace {

constexpr std::size_t strengthCount = 9, cohesionCount = 10;

std::string ModuleName(std::size_t number) {
    return {'M', 'o', 'd', 'u', 'l', 'e', char('0' + number / 10), char('0' + number % 10)};
}
std::string StrengthName(std::size_t number) { return "Strength" + std::to_string(number); }
std::string CohesionName(std::size_t number) { return "Cohesion" + std::to_string(number); }

meta::MetaDataTraits StrengthTraits() {
    static auto const cohesions =
        meta::ArrayTraits<std::array<double, cohesionCount>>([] { return meta::AtomicTraits<double>(); });
    static auto const traits =
        meta::StructureBuilder<Strength>().Member(&Strength::cohesion, [] { return cohesions; }).Build();
    return traits;
}

meta::MetaDataTraits MaterialTraits() {
    static auto const strengths = meta::ArrayTraits<std::array<Strength, strengthCount>>(StrengthTraits);
    static auto const traits = meta::StructureBuilder<StrengthenedMaterial>()
                                   .Member(&StrengthenedMaterial::strengths, [] { return strengths; })
                                   .Build();
    return traits;
}

/// The strengths of a material and their cohesions.
void RegisterStrengths(std::string const& material, meta::MetaPersistTraits::PersistType persist) {
    for (std::size_t s = 0; s < strengthCount; ++s) {
        std::string const strength = StrengthName(s);
        std::string const inner = material + "." + strength;
        Row(inner, Structure(s * sizeof(Strength), StrengthTraits()), {persist, str::as_wstring(strength)},
            StrengthTraits());
        for (std::size_t c = 0; c < cohesionCount; ++c) {
            std::string const leaf = CohesionName(c);
            Row(inner + "." + leaf, Value<double>(c * sizeof(double)), {persist, str::as_wstring(leaf), true},
                meta::AtomicTraits<double>());
        }
    }
}

/// Gives each cohesion of a material a value of its own and adds it to the leaves.
void AddLeaves(std::vector<PathLeaf>& leaves, std::string const& name, StrengthenedMaterial& material) {
    for (std::size_t s = 0; s < strengthCount; ++s)
        for (std::size_t c = 0; c < cohesionCount; ++c) {
            double* const value = &material.strengths[s].cohesion[c];
            *value = static_cast<double>(leaves.size()) + 0.25;
            leaves.push_back({name + "." + StrengthName(s) + "." + CohesionName(c), value});
        }
}

} // namespace

void RegisterPathModel(PathModel& model, bool persisted) {
    static auto const materials = meta::ArrayTraits<std::vector<StrengthenedMaterial>>(MaterialTraits);
    static auto const module =
        meta::StructureBuilder<MaterialModule>().Member(&MaterialModule::materials, [] { return materials; }).Build();

    auto const always = persisted ? MetaPersistTraits::Always : MetaPersistTraits::No;
    for (std::size_t m = 0; m < model.modules.size(); ++m) {
        std::string const top = ModuleName(m);
        std::wstring const topTag = str::as_wstring(top);
        Row(top, Structure(0, module), {always, topTag}, module, &model.modules[m]);
        std::string const array = top + ".Materials";
        Row(array, Array(meta::OffsetOf(&MaterialModule::materials), materials), {always, L"Materials[Material]"},
            materials);
        std::string const element = array + ".[]";
        Row(element, Structure(0, MaterialTraits()), {always, L"Material"}, MaterialTraits());
        RegisterStrengths(element, always);
    }
    zo::ZORegistry::Instance()->OnPostRegistration();
}

std::vector<PathLeaf> ShuffledLeaves(PathModel& model) {
    std::vector<PathLeaf> leaves;
    for (std::size_t m = 0; m < model.modules.size(); ++m)
        for (std::size_t i = 0; i < model.modules[m].materials.size(); ++i)
            AddLeaves(leaves, ModuleName(m) + ".Materials[" + std::to_string(i) + "]", model.modules[m].materials[i]);
    std::shuffle(leaves.begin(), leaves.end(), std::mt19937(7));
    leaves.resize(16384);
    return leaves;
}

void RegisterFlatPathModel(FlatPathModel& model) {
    for (std::size_t m = 0; m < model.modules.size(); ++m) {
        std::string const top = ModuleName(m);
        Row(top, Structure(0, MaterialTraits()), {MetaPersistTraits::No, str::as_wstring(top)}, MaterialTraits(),
            &model.modules[m]);
        RegisterStrengths(top, MetaPersistTraits::No);
    }
    zo::ZORegistry::Instance()->OnPostRegistration();
}

std::vector<PathLeaf> ShuffledLeaves(FlatPathModel& model) {
    std::vector<PathLeaf> leaves;
    for (std::size_t m = 0; m < model.modules.size(); ++m) AddLeaves(leaves, ModuleName(m), model.modules[m]);
    std::shuffle(leaves.begin(), leaves.end(), std::mt19937(11));
    return leaves;
}

} // namespace bench
