// Does registration grow in proportion to the rows? One registry a round, rows of top-level branches with 90 fields.
#include "bench/PathModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

struct Names {
    std::string branch, field;
};

Names NamesOf(std::size_t row) {
    return {"Branch" + std::to_string(row / 91), row % 91 == 0 ? std::string() : "Field" + std::to_string(row % 91)};
}

void BM_Register(benchmark::State& state) {
    auto const rows = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        std::optional<bench::CurrentRegistry> current(std::in_place);
        for (std::size_t row = 0; row < rows; ++row) {
            auto const [branch, field] = NamesOf(row);
            if (field.empty())
                bench::Row(branch, zo::H(new zo::ZOStructClone(zo::IZO::npos, nullptr)),
                           {meta::MetaPersistTraits::No, str::as_wstring(branch)}, {});
            else
                bench::Row(branch + "." + field, bench::Value<double>(0),
                           {meta::MetaPersistTraits::No, str::as_wstring(field)}, meta::AtomicTraits<double>());
        }
        zo::ZORegistry::Instance()->OnPostRegistration();
        // An application's registry lives as long as the application.
        state.PauseTiming();
        current.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The same names and tags in two hash maps: what any table that finds rows by both has to do.
void BM_RegisterFloor(benchmark::State& state) {
    auto const rows = static_cast<std::size_t>(state.range(0));
    struct Tables {
        std::unordered_map<std::string, std::size_t> names;
        std::unordered_map<std::wstring, std::size_t> tags;
    };
    for (auto _ : state) {
        std::optional<Tables> tables(std::in_place);
        for (std::size_t row = 0; row < rows; ++row) {
            auto const [branch, field] = NamesOf(row);
            std::string const name = field.empty() ? branch : branch + "." + field;
            tables->tags.emplace(str::as_wstring(name), row);
            tables->names.emplace(name, row);
        }
        benchmark::DoNotOptimize(tables);
        state.PauseTiming();
        tables.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
// 160,000 rows each.
BENCHMARK(BM_Register)->Arg(5000)->Iterations(32)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Register)->Arg(20000)->Iterations(8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Register)->Arg(80000)->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegisterFloor)->Arg(5000)->Iterations(32)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegisterFloor)->Arg(20000)->Iterations(8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegisterFloor)->Arg(80000)->Iterations(2)->Unit(benchmark::kMillisecond);

} // namespace
