#include "bench/peers/Paths.h"

#include "bench/PathModel.h"
#include "bench/peers/Documents.h"

#include <benchmark/benchmark.h>

#include <fstream>

namespace peers {
namespace {

constexpr std::size_t lookups = 16384; // a power of two, so that a mask cycles through them
constexpr std::size_t edits = 1000;

double ValueOf(std::string const& name) {
    zo::H const node = zo::Find(name);
    double value = 0;
    Require(node && !node->Get(value).IsError(), name + " can't be read");
    return value;
}

void Assign(std::string const& name, double value) {
    zo::H const node = zo::Find(name);
    Require(node && !node->Set(value).IsError(), name + " can't be written");
}

/// 5,050 registered names, and the lookups in the order of the list that the programs share.
struct Lookups {
    explicit Lookups(Samples samples) {
        bench::RegisterPathModel(model, false);
        std::vector<bench::PathLeaf> const own = bench::ShuffledLeaves(model);
        std::filesystem::path const list = std::filesystem::path(Environment("PEER_DOC_DIR", "")) / "paths.txt";
        isSample =
            Environment("PEER_DOC_DIR", "").empty() || (samples == Samples::taken && !std::filesystem::exists(list));
        if (isSample) {
            for (bench::PathLeaf const& leaf : own) Add_(leaf.name, *leaf.value);
        } else {
            std::ifstream file(list);
            std::string name;
            for (double value; file >> name >> value;) Add_(name, value);
        }
        Require(names.size() == lookups, list.string() + " doesn't have 16,384 names");
        Check_();
    }

    bench::CurrentRegistry current;
    bench::PathModel model;
    std::vector<std::string> names; // of whole names; they are spelled as the library spells them
    bool isSample;

private:
    void Add_(std::string const& name, double value) {
        Require(ValueOf(name) == value, name + " has another value");
        names.push_back(name);
    }

    /// Each write has to arrive under its own name; the old values come back.
    void Check_() const {
        std::vector<double> values;
        for (std::string const& name : names) values.push_back(ValueOf(name));
        for (std::size_t i = 0; i < lookups; ++i) Assign(names[i], 1e6 + static_cast<double>(i));
        for (std::size_t i = 0; i < lookups; ++i)
            Require(ValueOf(names[i]) == 1e6 + static_cast<double>(i), names[i] + " was written otherwise");
        for (std::size_t i = 0; i < lookups; ++i) Assign(names[i], values[i]);
    }
};

Lookups& TheLookups(Samples samples = Samples::refused) {
    static Lookups all(samples);
    all.current.Select();
    return all;
}

void Read(benchmark::State& state) {
    std::vector<std::string> const& names = TheLookups().names;
    std::size_t i = 0;
    double sum = 0;
    for (auto _ : state) {
        double value = 0;
        (void)zo::Find(names[i++ % lookups])->Get(value); // checked before
        benchmark::DoNotOptimize(value);
        sum += value;
    }
    benchmark::DoNotOptimize(sum);
}

void Write(benchmark::State& state) {
    std::vector<std::string> const& names = TheLookups().names;
    std::size_t i = 0;
    double value = 0;
    for (auto _ : state) {
        (void)zo::Find(names[i++ % lookups])->Set(value); // every value is accepted
        benchmark::ClobberMemory();
        value += 0.5;
    }
    if (ValueOf(names[(i - 1) % lookups]) != value - 0.5) state.SkipWithError("a write was lost");
}

/// 4,500 doubles without an index, of which 1,000 are edited at once.
struct Edits {
    Edits() {
        bench::RegisterFlatPathModel(model);
        leaves = bench::ShuffledLeaves(model);
        leaves.resize(edits);
        Edit(nullptr);
        CheckCommitted();
    }

    void Edit(zo::ZOJournal* journal) {
        first += 1000;
        htl::handle<zo::ZOTransaction> const transaction = zo::ZORegistry::Instance()->CreateTransaction();
        for (std::size_t i = 0; i < edits; ++i)
            (void)transaction->Find(leaves[i].name)->Set(first + static_cast<double>(i)); // every value is accepted
        Require(!transaction->Commit("", "", journal).IsError(), "a commit failed");
    }

    void CheckCommitted() const {
        for (std::size_t i = 0; i < edits; ++i)
            Require(*leaves[i].value == first + static_cast<double>(i), leaves[i].name + " was not committed");
    }

    bench::CurrentRegistry current;
    bench::FlatPathModel model;
    std::vector<bench::PathLeaf> leaves;
    double first = 0.5;
};

Edits& TheEdits() {
    static Edits all;
    all.current.Select();
    return all;
}

void Edit(benchmark::State& state, bool withJournal) {
    Edits& all = TheEdits();
    for (auto _ : state) {
        zo::ZOJournal journal;
        all.Edit(withJournal ? &journal : nullptr);
        benchmark::DoNotOptimize(journal);
    }
    all.CheckCommitted();
    state.counters["fields"] = static_cast<double>(edits);
}

} // namespace

bool CheckPaths(Samples samples) {
    TheEdits();
    return TheLookups(samples).isSample;
}

void RegisterPathBenchmarks() {
    benchmark::RegisterBenchmark("A_read/own", &Read);
    benchmark::RegisterBenchmark("B_write/own", &Write);
    benchmark::RegisterBenchmark("F_edit/own", &Edit, false)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("F_edit/own_journal", &Edit, true)->Unit(benchmark::kMicrosecond);
}

} // namespace peers
