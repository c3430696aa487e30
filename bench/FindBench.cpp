// What does a lookup cost, and a read or write behind it: names of one to four components, with and without an index,
// over 5,000 rows?
//
// Floors in the same run, over the same values in the same order: the struct itself, and one probe of a hash map of
// whole names, which is what an application without the library would keep.
#include "bench/Register.h"

#include <benchmark/benchmark.h>

#include <array>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t lookups = 16384; // a power of two, so that a mask cycles through them
constexpr std::size_t strengths = 9, cohesions = 10;

struct Material {
    std::array<double, strengths * cohesions> fields{};
};

std::string Digits(std::size_t number, std::size_t count) {
    std::string const digits = std::to_string(number);
    return std::string(count - digits.size(), '0') + digits;
}

/// 5,000 to 5,100 rows whose doubles have names of so many components: one of depth, or fields of materials.
///
///     Depth0042                               Depths0042[3]
///     Material07.Cohesion55                   Materials07[3].Cohesion55
///     Material07.Strength2.Cohesion5          Materials07[3].Strength2.Cohesion5
///     Module07.Material.Strength2.Cohesion5   Module07.Materials[3].Strength2.Cohesion5
struct Site {
    struct Lookup {
        std::string name;
        double* value;
    };

    Site(std::size_t components, bool indexed) : components(components), indexed(indexed) {
        if (components == 1) {
            // An array takes a row for itself and one for its elements.
            for (std::size_t i = 0; i < depths.size() / (indexed ? 2 : 1); ++i) RegisterDepth_(i);
        } else {
            for (std::size_t i = 0; i < materials.size(); ++i) RegisterMaterials_(i);
        }
        zo::ZORegistry::Instance()->OnPostRegistration();
        Choose_();
    }

    std::vector<Lookup> chosen; ///< `lookups` of all values in a random order that is the same in every run
    /// All values, in the order of the model: entered in that of the lookups, its nodes would lie in their order, too.
    std::unordered_map<std::string, double*> byName;
    bench::CurrentRegistry current;

private:
    static bench::MetaPersistTraits Persist_() { return {bench::MetaPersistTraits::No, L""}; }

    void RegisterDepth_(std::size_t i) {
        static auto const array = meta::ArrayTraits<std::vector<double>>([] { return meta::AtomicTraits<double>(); });
        std::string const name = (indexed ? "Depths" : "Depth") + Digits(i, 4);
        if (!indexed) {
            bench::Row(name, bench::Value<double>(0), Persist_(), meta::AtomicTraits<double>(), depths[i].data());
            all.push_back({name, depths[i].data()});
            return;
        }
        bench::Row(name, bench::Array(0, array), Persist_(), array, &depths[i]);
        bench::Row(name + ".[]", bench::Value<double>(0), Persist_(), meta::AtomicTraits<double>());
        for (std::size_t k = 0; k < depths[i].size(); ++k)
            all.push_back({name + "[" + std::to_string(k) + "]", &depths[i][k]});
    }

    void RegisterMaterials_(std::size_t i) {
        static auto const material = meta::StructureBuilder<Material>().Build();
        static auto const array = meta::ArrayTraits<std::vector<Material>>([] { return material; });
        static auto const module = meta::StructureBuilder<std::vector<Material>>().Build();
        // What stands above the materials has the object; what stands below a module is found by its offset.
        void* object = indexed ? static_cast<void*>(&materials[i]) : static_cast<void*>(materials[i].data());
        std::string name = indexed ? "Materials" : "Material";
        if (components == 4) {
            std::string const top = "Module" + Digits(i, 2);
            bench::Row(top, bench::Structure(0, module), Persist_(), module, std::exchange(object, nullptr));
            name = top + "." + name;
        } else {
            name += Digits(i, 2);
        }
        std::string row = name;
        if (indexed) {
            bench::Row(name, bench::Array(0, array), Persist_(), array, object);
            row += ".[]";
            object = nullptr;
        }
        bench::Row(row, bench::Structure(0, material), Persist_(), material, object);
        RegisterFields_(row);
        for (std::size_t k = 0; k < (indexed ? materials[i].size() : 1); ++k)
            for (std::size_t field = 0; field < strengths * cohesions; ++field)
                all.push_back({(indexed ? name + "[" + std::to_string(k) + "]" : name) + "." + FieldName_(field),
                               &materials[i][k].fields[field]});
    }

    std::string FieldName_(std::size_t field) const {
        if (components == 2) return "Cohesion" + Digits(field, 2);
        return "Strength" + Digits(field / cohesions, 1) + ".Cohesion" + Digits(field % cohesions, 1);
    }

    void RegisterFields_(std::string const& material) const {
        static auto const strength = meta::StructureBuilder<std::array<double, cohesions>>().Build();
        for (std::size_t field = 0; field < strengths * cohesions; ++field) {
            std::string const name = material + "." + FieldName_(field);
            if (components > 2 && field % cohesions == 0)
                bench::Row(name.substr(0, name.rfind('.')), bench::Structure(field * sizeof(double), strength),
                           Persist_(), strength);
            std::size_t const inParent = components > 2 ? field % cohesions : field;
            bench::Row(name, bench::Value<double>(inParent * sizeof(double)), Persist_(), meta::AtomicTraits<double>());
        }
    }

    void Choose_() {
        for (std::size_t i = 0; i < all.size(); ++i) {
            *all[i].value = static_cast<double>(i) + 0.25;
            byName.emplace(all[i].name, all[i].value);
        }
        std::mt19937 random(7);
        while (chosen.size() < lookups) chosen.push_back(all[random() % all.size()]);
        for (Lookup const& lookup : chosen) {
            double value = 0;
            zo::H const node = zo::Find(lookup.name);
            if (!node || node->Get(value).IsError() || value != *lookup.value) throw std::runtime_error(lookup.name);
        }
    }

    std::size_t const components;
    bool const indexed;
    std::vector<std::vector<double>> depths{5000, std::vector<double>(4)};
    std::vector<std::vector<Material>> materials{50, std::vector<Material>(8)};
    std::vector<Lookup> all;
};

Site& TheSite(benchmark::State const& state) {
    static std::map<std::pair<std::int64_t, std::int64_t>, std::unique_ptr<Site>> sites;
    auto& site = sites[{state.range(0), state.range(1)}];
    if (!site) site = std::make_unique<Site>(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
    site->current.Select();
    return *site;
}

void EachKindOfName(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"components", "indexed"})->ArgsProduct({{1, 2, 3, 4}, {0, 1}});
}

void BM_StructRead(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(*site.chosen[i++ % lookups].value);
}
BENCHMARK(BM_StructRead)->Apply(EachKindOfName);

void BM_HashMapRead(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(*site.byName.find(site.chosen[i++ % lookups].name)->second);
}
BENCHMARK(BM_HashMapRead)->Apply(EachKindOfName);

void BM_Find(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::Find(site.chosen[i++ % lookups].name));
}
BENCHMARK(BM_Find)->Apply(EachKindOfName);

void BM_FindGetDouble(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        (void)zo::Find(site.chosen[i++ % lookups].name)->Get(value); // checked once, above
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_FindGetDouble)->Apply(EachKindOfName);

void BM_StructWrite(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(*site.chosen[i++ % lookups].value = value);
        value += 0.5;
    }
}
BENCHMARK(BM_StructWrite)->Apply(EachKindOfName);

void BM_HashMapWrite(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(*site.byName.find(site.chosen[i++ % lookups].name)->second = value);
        value += 0.5;
    }
}
BENCHMARK(BM_HashMapWrite)->Apply(EachKindOfName);

void BM_FindSetDouble(benchmark::State& state) {
    Site const& site = TheSite(state);
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        (void)zo::Find(site.chosen[i++ % lookups].name)->Set(value); // every value is accepted
        value += 0.5;
    }
}
BENCHMARK(BM_FindSetDouble)->Apply(EachKindOfName);

} // namespace
