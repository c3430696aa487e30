// What does it cost to come to a field by way of an alias or a link?
//
// Beside them the plain lookup of the same fields. A kept alias has its source at hand; the others look it up each
// time.
#include "bench/PathModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace {

constexpr std::size_t mask = 16383;
constexpr GID materialGroup = 5;

/// The materials of the path model, numbered through from 1.
class MaterialNames final : public zo::RecordNames {
public:
    std::string NameOf(GGID const& record, zo::ZOSet&) const override {
        GID const index = record.id - 1;
        std::string module = std::to_string(index / 8);
        if (module.size() < 2) module.insert(0, 1, '0');
        return "Module" + module + ".Materials[" + std::to_string(index % 8) + "]";
    }
};

struct Site {
    Site() : leaves(bench::ShuffledLeaves(model)), links(400) {
        bench::RegisterPathModel(model, false);
        htl::handle<zo::RecordNames const> const names(new MaterialNames);
        auto const link = meta::AtomicBuilder<int>().Missing(0).LinkGroup(materialGroup).Build();
        meta::MetaDataTraits const none;
        using meta::MetaPersistTraits;
        for (std::size_t i = 0; i < links.size(); ++i) {
            links[i] = static_cast<int>(i) + 1;
            std::string const number = std::to_string(i);
            std::wstring const tag(number.begin(), number.end());
            std::string const source = MaterialNames().NameOf({materialGroup, GID(i) + 1}, *zo::ZORegistry::Instance());
            bench::Row("Kept" + number, zo::H(new zo::ZOAliasAbsolute(source, zo::IZO::npos, nullptr)),
                       {MetaPersistTraits::No, L"Kept" + tag}, none);
            bench::Row("Alias" + number, zo::H(new zo::ZOAlias(source, zo::IZO::npos, nullptr)),
                       {MetaPersistTraits::No, L"Alias" + tag}, none);
            bench::Row("Link" + number,
                       zo::H(new zo::ZOWrapperLink<int>(zo::IZO::npos, nullptr, link, nullptr, {}, names)),
                       {MetaPersistTraits::No, L"Link" + tag}, link, &links[i]);
        }
        zo::ZORegistry::Instance()->OnPostRegistration();
    }

    /// The leaves' names below `prefix` and the number of their material.
    std::vector<std::string> Names(std::string const& prefix) const {
        std::vector<std::string> names;
        for (bench::PathLeaf const& leaf : leaves) {
            std::size_t const module = std::stoul(leaf.name.substr(6, 2));
            std::size_t const open = leaf.name.find('['), close = leaf.name.find(']');
            std::size_t const material = std::stoul(leaf.name.substr(open + 1, close - open - 1));
            names.push_back(prefix + std::to_string(module * 8 + material) + leaf.name.substr(close + 1));
            double value = 0;
            zo::H const node = zo::Find(names.back());
            if (!node || node->Get(value).IsError() || value != *leaf.value) throw std::runtime_error(names.back());
        }
        return names;
    }

    bench::CurrentRegistry current;
    bench::PathModel model;
    std::vector<bench::PathLeaf> leaves;
    std::vector<int> links;
};

void FindAll(benchmark::State& state, std::vector<std::string> const& names) {
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::Find(names[i++ & mask]));
}

void BM_FindPlain(benchmark::State& state) {
    static Site site;
    std::vector<std::string> names;
    for (bench::PathLeaf const& leaf : site.leaves) names.push_back(leaf.name);
    FindAll(state, names);
}
BENCHMARK(BM_FindPlain);

void BM_FindThroughKeptAlias(benchmark::State& state) {
    static Site site;
    FindAll(state, site.Names("Kept"));
}
BENCHMARK(BM_FindThroughKeptAlias);

void BM_FindThroughAlias(benchmark::State& state) {
    static Site site;
    FindAll(state, site.Names("Alias"));
}
BENCHMARK(BM_FindThroughAlias);

void BM_FindThroughLink(benchmark::State& state) {
    static Site site;
    FindAll(state, site.Names("Link"));
}
BENCHMARK(BM_FindThroughLink);

} // namespace
