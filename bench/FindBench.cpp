// What does a lookup cost, and a read or write behind it?
//
// Floors in the same run: the struct itself, and one probe of a hash map of whole names, which is what an application
// without the library would keep.
#include "bench/PathModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace {

constexpr std::size_t mask = 16383;

struct Paths {
    Paths() : leaves(bench::ShuffledLeaves(model)), byName(bench::LeavesByName(leaves)) {
        bench::RegisterPathModel(model, false);
        for (bench::PathLeaf const& leaf : leaves) {
            double value = 0;
            zo::H const node = zo::Find(leaf.name);
            if (!node || node->Get(value).IsError() || value != *leaf.value) throw std::runtime_error(leaf.name);
        }
    }
    bench::CurrentRegistry current;
    bench::PathModel model;
    std::vector<bench::PathLeaf> leaves;
    std::unordered_map<std::string, double*> byName;
};

void BM_StructRead(benchmark::State& state) {
    static Paths paths;
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(*paths.leaves[i++ & mask].value);
}
BENCHMARK(BM_StructRead);

void BM_HashMapRead(benchmark::State& state) {
    static Paths paths;
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(*paths.byName.find(paths.leaves[i++ & mask].name)->second);
}
BENCHMARK(BM_HashMapRead);

// One, two, three (with an index) and four components, then the whole leaf read and written.
void BM_Find(benchmark::State& state) {
    static Paths paths;
    std::vector<std::string> names;
    for (bench::PathLeaf const& leaf : paths.leaves) {
        std::size_t end = 0;
        for (auto n = state.range(0); n > 0; --n) end = leaf.name.find('.', end + 1);
        names.push_back(leaf.name.substr(0, end));
    }
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::Find(names[i++ & mask]));
}
BENCHMARK(BM_Find)->DenseRange(1, 4);

void BM_FindGetDouble(benchmark::State& state) {
    static Paths paths;
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        (void)zo::Find(paths.leaves[i++ & mask].name)->Get(value); // checked once, above
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_FindGetDouble);

void BM_FindSetDouble(benchmark::State& state) {
    static Paths paths;
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        (void)zo::Find(paths.leaves[i++ & mask].name)->Set(value); // every value is accepted
        value += 0.5;
    }
}
BENCHMARK(BM_FindSetDouble);

} // namespace
