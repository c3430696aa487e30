#include "bench/PathModel.h"

#include "bench/Register.h"

#include <algorithm>
#include <random>

namespace bench {
namespace {

std::string TwoDigits(std::size_t number) { return {char('0' + number / 10), char('0' + number % 10)}; }

} // namespace

void RegisterPathModel(PathModel& model, bool persisted) {
    static auto const cohesions =
        meta::ArrayTraits<std::array<double, 10>>([] { return meta::AtomicTraits<double>(); });
    static auto const strength =
        meta::StructureBuilder<Strength>().Member(&Strength::cohesion, [] { return cohesions; }).Build();
    static auto const strengths = meta::ArrayTraits<std::array<Strength, 9>>([] { return strength; });
    static auto const material = meta::StructureBuilder<StrengthenedMaterial>()
                                     .Member(&StrengthenedMaterial::strengths, [] { return strengths; })
                                     .Build();
    static auto const materials = meta::ArrayTraits<std::vector<StrengthenedMaterial>>([] { return material; });
    static auto const module =
        meta::StructureBuilder<MaterialModule>().Member(&MaterialModule::materials, [] { return materials; }).Build();

    auto const always = persisted ? MetaPersistTraits::Always : MetaPersistTraits::No;
    for (std::size_t m = 0; m < model.modules.size(); ++m) {
        std::string const top = "Module" + TwoDigits(m);
        std::wstring const topTag = str::as_wstring(top);
        Row(top, Structure(0, module), {always, topTag}, module, &model.modules[m]);
        std::string const array = top + ".Materials";
        Row(array, Array(meta::OffsetOf(&MaterialModule::materials), materials), {always, L"Materials[Material]"},
            materials);
        std::string const element = array + ".[]";
        Row(element, Structure(0, material), {always, L"Material"}, material);
        for (std::size_t s = 0; s < 9; ++s) {
            std::string const strengthName = "Strength" + std::string(1, char('0' + s));
            std::string const inner = element + "." + strengthName;
            Row(inner, Structure(s * sizeof(Strength), strength), {always, str::as_wstring(strengthName)}, strength);
            for (std::size_t c = 0; c < 10; ++c) {
                std::string const leaf = "Cohesion" + std::string(1, char('0' + c));
                Row(inner + "." + leaf, Value<double>(c * sizeof(double)), {always, str::as_wstring(leaf), true},
                    meta::AtomicTraits<double>());
            }
        }
    }
    zo::ZORegistry::Instance()->OnPostRegistration();
}

std::vector<PathLeaf> ShuffledLeaves(PathModel& model) {
    std::vector<PathLeaf> leaves;
    for (std::size_t m = 0; m < model.modules.size(); ++m)
        for (std::size_t i = 0; i < 8; ++i)
            for (std::size_t s = 0; s < 9; ++s)
                for (std::size_t c = 0; c < 10; ++c) {
                    double* const value = &model.modules[m].materials[i].strengths[s].cohesion[c];
                    *value = static_cast<double>(leaves.size()) + 0.25;
                    leaves.push_back({"Module" + TwoDigits(m) + ".Materials[" + std::to_string(i) + "].Strength" +
                                          std::to_string(s) + ".Cohesion" + std::to_string(c),
                                      value});
                }
    std::shuffle(leaves.begin(), leaves.end(), std::mt19937(7));
    leaves.resize(16384);
    return leaves;
}

} // namespace bench
