// Does registration grow in proportion to the rows? One registry a round, rows of top-level branches with 90 fields.
#include "bench/PathModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>

namespace {

void BM_Register(benchmark::State& state) {
    auto const rows = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        bench::CurrentRegistry const current;
        for (std::size_t row = 0; row < rows; ++row) {
            std::string const branch = "Branch" + std::to_string(row / 91);
            if (row % 91 == 0) {
                bench::Row(branch, zo::H(new zo::ZOStructClone(zo::IZO::npos, nullptr)),
                           {meta::MetaPersistTraits::No, str::as_wstring(branch)}, {});
            } else {
                std::string const field = "Field" + std::to_string(row % 91);
                bench::Row(branch + "." + field, bench::Value<double>(0),
                           {meta::MetaPersistTraits::No, str::as_wstring(field)}, meta::AtomicTraits<double>());
            }
        }
        zo::ZORegistry::Instance()->OnPostRegistration();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
// Fixed, since registries stay.
BENCHMARK(BM_Register)->Arg(5000)->Iterations(32)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Register)->Arg(20000)->Iterations(8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Register)->Arg(80000)->Iterations(2)->Unit(benchmark::kMillisecond);

} // namespace
