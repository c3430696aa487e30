// What does it cost to describe 5,000 rows, in a file of rows and as the schema of their document?
#include "bench/LayerModel.h"
#include "bench/Register.h"

#include "Common/schema/XmlZOSchemaWriter.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <stdexcept>

namespace {

void Need(htl::status const& result) {
    if (result.IsError()) throw std::runtime_error(str::as_cstring(result.AsWString()));
}

/// Layers with a compiled table, which has an entry for nearly every row.
struct Described {
    explicit Described(std::size_t count) : layers(count) {
        bench::RegisterLayers(layers);
        std::string const table = bench::LayerTable(count);
        Need(zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()));
        Need(zo::CompileExtendedInfo());
    }

    bench::CurrentRegistry current;
    std::vector<bench::Layer> layers;
};

void CountRows(benchmark::State& state) {
    state.SetItemsProcessed(state.range(0) * std::int64_t(bench::rowsOfLayer) * std::int64_t(state.iterations()));
}

// A device takes the bytes without a disk.
std::wstring const nowhere = L"/dev/null";

void BM_SaveSchema(benchmark::State& state) {
    Described const described(std::size_t(state.range(0)));
    for (auto _ : state) Need(zo::schema::Save(nowhere));
    CountRows(state);
}
BENCHMARK(BM_SaveSchema)->Arg(49)->Arg(490)->Unit(benchmark::kMillisecond);

void BM_SaveSchemaOfView(benchmark::State& state) {
    Described const described(std::size_t(state.range(0)));
    for (auto _ : state) Need(zo::schema::Save(0, nowhere));
    CountRows(state);
}
BENCHMARK(BM_SaveSchemaOfView)->Arg(49)->Unit(benchmark::kMillisecond);

/// The floor of both: the same attributes into one text.
void BM_FormatAttributes(benchmark::State& state) {
    Described const described(std::size_t(state.range(0)));
    std::vector<std::vector<sys::file::XmlAttribute>> entries;
    htl::handle<sys::file::XmlElemWriter> const cursor(new zo::schema::XmlZOSchemaWriter(true));
    for (auto at = cursor->FirstChild(); at; at = at->Next()) {
        auto const [first, last] = at->Attributes();
        entries.emplace_back(first, last);
    }
    std::string text;
    for (auto _ : state) {
        text.clear();
        for (auto const& attributes : entries) {
            text += "  <Entry";
            for (auto const& [name, value] : attributes) {
                text += ' ';
                str::AppendUtf8(text, name);
                text += "=\"";
                str::AppendUtf8(text, value);
                text += '"';
            }
            text += "/>\n";
        }
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["bytes"] = double(text.size());
    CountRows(state);
}
BENCHMARK(BM_FormatAttributes)->Arg(49)->Arg(490)->Unit(benchmark::kMillisecond);

/// As many rows, all saved: the values as elements of their own.
void RegisterSaved(std::size_t layers) {
    static auto const values = meta::AtomicBuilder<double>().Units(hzn::units::Kind::Stress).Build();
    static auto const structure = meta::StructureBuilder<bench::Layer>().Build();
    auto const add = [](std::string const& name, zo::H const& node, std::string const& tag, bool asValue,
                        meta::MetaDataTraits const& traits) {
        bench::Row(name, node, {meta::MetaPersistTraits::Always, str::as_wstring(tag), asValue}, traits);
    };
    for (std::size_t l = 0; l < layers; ++l) {
        std::string const top = "Layer" + std::to_string(l);
        add(top, bench::Structure(0, structure), top, false, structure);
        for (int s = 0; s < 10; ++s) {
            std::string const sample = "Sample" + std::to_string(s);
            add(top + '.' + sample, bench::Structure(0, structure), sample, false, structure);
            for (int v = 0; v < 9; ++v) {
                std::string const value = "Value" + std::to_string(v);
                add(top + '.' + sample + '.' + value, bench::Value<double>(0, values), value, true, values);
            }
        }
        add(top + ".Remark", bench::Value<double>(0, values), "Remark", true, values);
    }
    zo::ZORegistry::Instance()->OnPostRegistration();
}

void BM_SaveXsd(benchmark::State& state) {
    bench::CurrentRegistry const current;
    RegisterSaved(std::size_t(state.range(0)));
    for (auto _ : state) Need(zo::schema::SaveXsd(nowhere));
    CountRows(state);
}
BENCHMARK(BM_SaveXsd)->Arg(49)->Arg(490)->Unit(benchmark::kMillisecond);

} // namespace
