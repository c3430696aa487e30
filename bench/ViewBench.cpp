// What does it cost to show things: to compile a table, to ask what is visible, to print a label or a value, to walk
// the view?
#include "bench/LayerModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t fewLayers = 49; // 4,998 rows
constexpr int query = 0x61F01;        // data view, every physics, both modes

void Need(htl::status const& result) {
    if (result.IsError()) throw std::runtime_error(str::as_cstring(result.AsWString()));
}

/// Layers with a table that was read and not compiled.
struct Layers {
    explicit Layers(std::size_t count) : layers(count) {
        bench::RegisterLayers(layers);
        std::string const table = bench::LayerTable(count);
        Need(zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()));
    }

    bench::CurrentRegistry current;
    std::vector<bench::Layer> layers;
};

/// The same, compiled and with units.
struct Shown : Layers {
    Shown() : Layers(fewLayers) {
        Need(zo::CompileExtendedInfo());
        for (bench::Layer& layer : layers)
            for (bench::Sample& sample : layer.samples)
                for (double& value : sample.values) value = 17.25 + double(&value - sample.values.data());
        std::size_t const count = fewLayers * bench::rowsOfLayer;
        std::mt19937 random(3);
        for (std::size_t i = 0; i < 4096; ++i) rows.push_back(1 + random() % count);
        for (std::size_t i = 0; i < 4096; ++i) {
            std::string const layer = std::to_string(random() % fewLayers);
            std::string const name = "Layer" + std::string(4 - layer.size(), '0') + layer + ".Sample" +
                                     std::to_string(random() % 10) + ".Value" + std::to_string(random() % 9);
            nodes.push_back(zo::Find(name));
            if (!nodes.back()) throw std::runtime_error(name);
        }
    }

    std::vector<std::size_t> rows;
    std::vector<zo::H> nodes;
};

void BM_CompileTable(benchmark::State& state) {
    std::size_t const rows = std::size_t(state.range(0)) * bench::rowsOfLayer;
    for (auto _ : state) {
        state.PauseTiming();
        {
            Layers const layers{std::size_t(state.range(0))};
            state.ResumeTiming();
            Need(zo::CompileExtendedInfo());
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(std::int64_t(rows) * std::int64_t(state.iterations()));
}
// As many times as given, for registries stay: a time to reach would fill the memory with them.
BENCHMARK(BM_CompileTable)->Arg(49)->Iterations(100)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CompileTable)->Arg(196)->Iterations(25)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CompileTable)->Arg(784)->Iterations(5)->Unit(benchmark::kMicrosecond);

/// What a compilation would do for the patterns alone, if it tried each pattern on each row.
void BM_ScanPatterns(benchmark::State& state) {
    std::size_t const layers = std::size_t(state.range(0));
    std::vector<std::wstring> const patterns = bench::LayerPatterns(layers);
    std::vector<std::wstring> const tags = bench::LayerTags(layers);
    for (auto _ : state) {
        for (std::wstring_view const tag : tags) {
            std::wstring const* longest = nullptr;
            for (std::wstring const& pattern : patterns) {
                std::size_t const star = pattern.find(L'*');
                std::wstring_view const before(pattern.data(), star);
                std::wstring_view const behind = std::wstring_view(pattern).substr(star + 1);
                if (pattern.size() <= tag.size() && tag.starts_with(before) && tag.ends_with(behind) &&
                    (!longest || longest->size() < pattern.size()))
                    longest = &pattern;
            }
            benchmark::DoNotOptimize(longest);
        }
    }
    state.SetItemsProcessed(std::int64_t(tags.size()) * std::int64_t(state.iterations()));
}
BENCHMARK(BM_ScanPatterns)->Arg(49)->Unit(benchmark::kMicrosecond);

void BM_IsVisibleRow(benchmark::State& state) {
    Shown const shown;
    for (std::size_t const row : shown.rows)
        if (!zo::IsVisible(row, query)) throw std::runtime_error("a row doesn't show");
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::IsVisible(shown.rows[i++ & 4095], query));
}
BENCHMARK(BM_IsVisibleRow);

[[gnu::noinline]] bool TestMask(std::vector<std::uint32_t> const& masks, std::size_t row, std::uint32_t asked) {
    std::uint32_t const both = masks[row] & asked;
    return (both & 0x7) && (both & 0x1FF00) && (both & 0x60000);
}

void BM_TestMask(benchmark::State& state) {
    std::vector<std::uint32_t> const masks(fewLayers * bench::rowsOfLayer + 1, 0x7FF07);
    std::vector<std::size_t> rows;
    std::mt19937 random(3);
    for (std::size_t i = 0; i < 4096; ++i) rows.push_back(random() % masks.size());
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(TestMask(masks, rows[i++ & 4095], query));
}
BENCHMARK(BM_TestMask);

void BM_IsVisibleNode(benchmark::State& state) {
    Shown const shown;
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::IsVisible(shown.nodes[i++ & 4095], query));
}
BENCHMARK(BM_IsVisibleNode);

void BM_Label(benchmark::State& state) {
    Shown const shown;
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::Label(shown.nodes[i++ & 4095]));
}
BENCHMARK(BM_Label);

void BM_CopyText(benchmark::State& state) {
    std::vector<std::wstring> const labels(4096, L"Value of a test");
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(std::wstring(labels[i++ & 4095]));
}
BENCHMARK(BM_CopyText);

void PrintWithUnits(benchmark::State& state, math::unitsystem::Type visible) {
    Shown const shown;
    zo::RegisterUnitsProvider([] { return hzn::units::SystemUnitSet(math::unitsystem::Metric); },
                              [](DataParamType) { return math::UnitSet(); },
                              [visible](hzn::units::Kind::Type) { return hzn::units::SystemUnitSet(visible); });
    std::wstring const unit = visible == math::unitsystem::Metric ? L" kPa" : L" psf";
    if (!zo::PrettyPrintValueWithUnits(shown.nodes[0]).ends_with(unit)) throw std::runtime_error("the unit is missing");
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zo::PrettyPrintValueWithUnits(shown.nodes[i++ & 4095]));
}
void BM_PrettyPrintValueWithUnits(benchmark::State& state) { PrintWithUnits(state, math::unitsystem::Metric); }
BENCHMARK(BM_PrettyPrintValueWithUnits);
void BM_PrettyPrintValueConverted(benchmark::State& state) { PrintWithUnits(state, math::unitsystem::Imperial); }
BENCHMARK(BM_PrettyPrintValueConverted);

void BM_FormatDouble(benchmark::State& state) {
    std::vector<double> values(4096);
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = 17.25 + double(i % 9);
    std::size_t i = 0;
    char text[32];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::to_chars(text, text + sizeof text, values[i++ & 4095]).ptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FormatDouble);

std::size_t WalkRaw(zo::H const& node) {
    std::size_t count = 0;
    for (zo::ZOFwrdIterator at = node->begin(); at.current; ++at) count += 1 + WalkRaw(at.current);
    return count;
}
std::size_t WalkView(zo::H const& node) {
    std::size_t count = 0;
    for (zo::H const& child : zo::view::Children(node, query)) count += 1 + WalkView(child);
    return count;
}

template <class Walk>
void WalkLayers(benchmark::State& state, Walk walk) {
    Shown const shown;
    zo::H const root = zo::ZORegistry::Instance()->Root();
    std::size_t nodes = 0;
    for (auto _ : state) nodes = walk(root);
    if (nodes != fewLayers * bench::rowsOfLayer) throw std::runtime_error("the walk misses nodes");
    state.SetItemsProcessed(std::int64_t(nodes) * std::int64_t(state.iterations()));
}
void BM_WalkView(benchmark::State& state) { WalkLayers(state, WalkView); }
BENCHMARK(BM_WalkView)->Unit(benchmark::kMicrosecond);
void BM_WalkTree(benchmark::State& state) { WalkLayers(state, WalkRaw); }
BENCHMARK(BM_WalkTree)->Unit(benchmark::kMicrosecond);

/// An array of 200,000 records.
struct Records {
    Records() : samples(200'000) {
        static auto const sample = meta::StructureBuilder<bench::Sample>().Build();
        static auto const array = meta::ArrayTraits<std::vector<bench::Sample>>([] { return sample; });
        bench::Row("Samples", bench::Array(0, array), {meta::MetaPersistTraits::Always, L"Samples[Sample]"}, array,
                   &samples);
        bench::Row("Samples.[]", bench::Structure(0, sample), {meta::MetaPersistTraits::Always, L"Sample"}, sample);
        zo::ZORegistry::Instance()->OnPostRegistration();
        std::string const table = "<Meta_ExtendedInfo Rows=\"1\"><Row Tag=\"Default\"/></Meta_ExtendedInfo>";
        Need(zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()));
        Need(zo::CompileExtendedInfo());
    }

    bench::CurrentRegistry current;
    std::vector<bench::Sample> samples;
};

template <class Walk>
void WalkArray(benchmark::State& state, Walk walk) {
    Records const records;
    zo::H const array = zo::Find("Samples");
    std::size_t nodes = 0;
    for (auto _ : state) nodes = walk(array);
    if (nodes != records.samples.size()) throw std::runtime_error("the walk misses elements");
    state.SetItemsProcessed(std::int64_t(nodes) * std::int64_t(state.iterations()));
}
void BM_WalkViewOfArray(benchmark::State& state) {
    WalkArray(state, [](zo::H const& array) {
        std::size_t count = 0;
        for (zo::H const& element : zo::view::Children(array, query)) count += element ? 1 : 0;
        return count;
    });
}
BENCHMARK(BM_WalkViewOfArray)->Unit(benchmark::kMillisecond);
void BM_WalkArray(benchmark::State& state) {
    WalkArray(state, [](zo::H const& array) {
        std::size_t count = 0;
        for (zo::ZOFwrdIterator at = array->begin(); at.current; ++at) ++count;
        return count;
    });
}
BENCHMARK(BM_WalkArray)->Unit(benchmark::kMillisecond);

} // namespace
