// What does an edit cost that can be taken back: staging a field and committing it?
//
// Floors in the same run: writing the fields directly, and copying the structures out and back, which is what an
// application without the library would do. Beside them a find and a write of the same fields, with nothing to take
// back.
#include "bench/PathModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t soilCount = 10'000;
constexpr std::size_t fieldsOfSoil = 10;

struct Soil {
    std::array<double, fieldsOfSoil> strength{};
};

meta::MetaDataTraits StrengthTraits() { return meta::AtomicTraits<double>(); }
meta::MetaDataTraits SoilTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<Soil>().Build();
    return traits;
}
meta::MetaDataTraits SoilsTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<Soil>>(SoilTraits);
    return traits;
}

struct Edit {
    std::string name;
    double* field;
};

/// 10,000 soils of 10 fields, and all fields in a random order that is the same in every run.
struct Site {
    Site() {
        bench::Row("Soils", bench::Array(0, SoilsTraits()), {meta::MetaPersistTraits::No, L"Soils"}, SoilsTraits(),
                   &soils);
        bench::Row("Soils.[]", bench::Structure(0, SoilTraits()), {meta::MetaPersistTraits::No, L""}, SoilTraits());
        for (std::size_t field = 0; field < fieldsOfSoil; ++field) {
            std::string const name = "Strength" + std::to_string(field);
            bench::Row("Soils.[]." + name, bench::Value<double>(field * sizeof(double), StrengthTraits()),
                       {meta::MetaPersistTraits::No, std::wstring(name.begin(), name.end())}, StrengthTraits());
        }
        zo::ZORegistry::Instance()->OnPostRegistration();
        for (std::size_t soil = 0; soil < soilCount; ++soil)
            for (std::size_t field = 0; field < fieldsOfSoil; ++field)
                edits.push_back({"Soils[" + std::to_string(soil) + "].Strength" + std::to_string(field),
                                 &soils[soil].strength[field]});
        std::shuffle(edits.begin(), edits.end(), std::mt19937(5));
    }

    bench::CurrentRegistry current;
    std::vector<Soil> soils{soilCount};
    std::vector<Edit> edits;
    double value = 0;
};

Site& TheSite() {
    static Site site;
    return site;
}

/// Names of four components in a registry of 5,050: 1,000 of its first materials' 4,500 fields.
struct Modules {
    Modules() {
        bench::RegisterPathModel(model, false);
        for (bench::PathLeaf const& leaf : bench::ShuffledLeaves(model))
            if (edits.size() < 1'000 && leaf.name.find("[0]") != leaf.name.npos)
                edits.push_back({leaf.name, leaf.value});
        if (edits.size() != 1'000) throw std::runtime_error("too few fields");
    }

    bench::CurrentRegistry current;
    bench::PathModel model;
    std::vector<Edit> edits;
    double value = 0;
};

void Counted(benchmark::State& state) {
    state.counters["per_field"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Require(bool condition, char const* what) {
    if (!condition) throw std::runtime_error(what);
}

void BM_WriteFields(benchmark::State& state) {
    Site& site = TheSite();
    for (auto _ : state) {
        site.value += 0.5;
        for (std::int64_t i = 0; i < state.range(0); ++i) *site.edits[static_cast<std::size_t>(i)].field = site.value;
        benchmark::ClobberMemory();
    }
    Counted(state);
}
BENCHMARK(BM_WriteFields)->Arg(1'000)->Arg(100'000);

void BM_CopyStructures(benchmark::State& state) {
    Site& site = TheSite();
    for (auto _ : state) {
        site.value += 0.5;
        std::vector<Soil> copy = site.soils;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            double const* const field = site.edits[static_cast<std::size_t>(i)].field;
            auto const index = static_cast<std::size_t>(field - site.soils[0].strength.data());
            copy[index / fieldsOfSoil].strength[index % fieldsOfSoil] = site.value;
        }
        std::copy(copy.begin(), copy.end(), site.soils.begin());
        benchmark::ClobberMemory();
    }
    Counted(state);
}
BENCHMARK(BM_CopyStructures)->Arg(1'000)->Arg(100'000);

void BM_FindAndSet(benchmark::State& state) {
    Site& site = TheSite();
    for (auto _ : state) {
        site.value += 0.5;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            (void)zo::Find(site.edits[static_cast<std::size_t>(i)].name)->Set(site.value); // every value is accepted
    }
    Counted(state);
}
BENCHMARK(BM_FindAndSet)->Arg(1'000)->Arg(100'000);

template <class Model>
void Stage(zo::ZOTransaction& transaction, Model const& site, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i)
        (void)transaction.Find(site.edits[static_cast<std::size_t>(i)].name)->Set(site.value); // as above
}

template <class Model>
void CheckCommitted(Model const& site, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i)
        Require(*site.edits[static_cast<std::size_t>(i)].field == site.value, "a field was not committed");
}

void BM_StageAndCommit(benchmark::State& state) {
    Site& site = TheSite();
    for (auto _ : state) {
        site.value += 0.5;
        htl::handle<zo::ZOTransaction> const transaction = zo::ZORegistry::Instance()->CreateTransaction();
        Stage(*transaction, site, state.range(0));
        Require(!transaction->Commit("", "").IsError(), "the commit failed");
    }
    CheckCommitted(site, state.range(0));
    Counted(state);
}
BENCHMARK(BM_StageAndCommit)->Arg(1'000)->Arg(10'000)->Arg(100'000);

void BM_StageAndCommitWithJournal(benchmark::State& state) {
    Site& site = TheSite();
    for (auto _ : state) {
        site.value += 0.5;
        htl::handle<zo::ZOTransaction> const transaction = zo::ZORegistry::Instance()->CreateTransaction();
        Stage(*transaction, site, state.range(0));
        zo::ZOJournal journal;
        Require(!transaction->Commit("", "", &journal).IsError(), "the commit failed");
        benchmark::DoNotOptimize(journal);
    }
    CheckCommitted(site, state.range(0));
    Counted(state);
}
BENCHMARK(BM_StageAndCommitWithJournal)->Arg(1'000)->Arg(100'000);

void BM_StageAndRollBack(benchmark::State& state) {
    Site& site = TheSite();
    for (auto _ : state) {
        site.value += 0.5;
        htl::handle<zo::ZOTransaction> const transaction = zo::ZORegistry::Instance()->CreateTransaction();
        Stage(*transaction, site, state.range(0));
        transaction->Rollback();
    }
    Counted(state);
}
BENCHMARK(BM_StageAndRollBack)->Arg(1'000)->Arg(100'000);

void BM_FindAndSetOfFour(benchmark::State& state) {
    static Modules modules;
    for (auto _ : state) {
        modules.value += 0.5;
        for (Edit const& edit : modules.edits) (void)zo::Find(edit.name)->Set(modules.value); // every value is accepted
    }
    Counted(state);
}
BENCHMARK(BM_FindAndSetOfFour)->Arg(1'000);

void BM_StageAndCommitOfFour(benchmark::State& state) {
    static Modules modules;
    for (auto _ : state) {
        modules.value += 0.5;
        htl::handle<zo::ZOTransaction> const transaction = zo::ZORegistry::Instance()->CreateTransaction();
        Stage(*transaction, modules, state.range(0));
        Require(!transaction->Commit("", "").IsError(), "the commit failed");
    }
    CheckCommitted(modules, state.range(0));
    Counted(state);
}
BENCHMARK(BM_StageAndCommitOfFour)->Arg(1'000);

} // namespace
