// What does it cost to copy objects that link to each other, and to paste them?
//
// Floors in the same run: writing all of the same objects as a document, and reading one into emptied containers.
// Beside them the first step of a paste alone, which reads into a transaction.
#include "bench/Register.h"

#include "Common/clip/Clipboard.h"

#include <kit/kit.h>

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace {

constexpr GID soilGroup = 10;
constexpr GID regionGroup = 12;
constexpr hzn::version::NumberKind<0> version{1, 0};

struct Soil {
    int id = 0;
    std::wstring name;
    double cohesion = 0, friction = 0, unitWeight = 0;
    int substitute = 0;
};
struct Region {
    int id = 0;
    std::wstring name;
    double area = 0;
    int soil = 0, next = 0;
};

/// As many regions as soils: each region leads to a soil and to the next region, each soil to the next soil.
struct Site {
    Site() {
        zo::kit::Report const report = zo::kit::Register({[this](zo::kit::Kit& kit) {
            kit.Record<Soil>("Soil")
                .Field<&Soil::id>("ID", L"ID")
                .Field<&Soil::name>("Name", L"Name")
                .Field<&Soil::cohesion>("Cohesion", L"Cohesion")
                .Field<&Soil::friction>("Friction", L"Phi")
                .Field<&Soil::unitWeight>("UnitWeight", L"UnitWeight")
                .Link<&Soil::substitute>("Substitute", L"Substitute", soilGroup);
            kit.Record<Region>("Region")
                .Field<&Region::id>("ID", L"ID")
                .Field<&Region::name>("Name", L"Name")
                .Field<&Region::area>("Area", L"Area")
                .Link<&Region::soil>("Soil", L"Soil", soilGroup)
                .Link<&Region::next>("Next", L"Next", regionGroup);
            kit.Branch<std::vector<Soil>>("Soils", L"Soils[Soil]", [this] { return &soils; },
                                          {.recordGroup = soilGroup});
            kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [this] { return &regions; },
                                            {.recordGroup = regionGroup});
        }});
        if (!report.IsClean()) throw std::runtime_error("a mistake in the declarations");
    }

    /// `objects` in all.
    void Fill(int objects) {
        Empty();
        int const half = objects / 2;
        for (int i = 1; i <= half; ++i) {
            soils.push_back({i, L"Soil " + std::to_wstring(i), 0.25 * i, 30.5, 18.25, i % half + 1});
            regions.push_back({i, L"Region " + std::to_wstring(i), 1.5 * i, half + 1 - i, i % half + 1});
        }
    }
    void Empty() {
        soils.clear();
        regions.clear();
    }

    bench::CurrentRegistry current;
    std::vector<Soil> soils;
    std::vector<Region> regions;
};

Site& TheSite() {
    static Site site;
    return site;
}

void Check(htl::status const& result) {
    if (result.IsError()) throw std::runtime_error(str::as_cstring(result.AsWString()));
}

zo::clip::ClipboardContents Copied() {
    zo::clip::ClipboardContents contents;
    Check(zo::clip::Serialize(contents, {zo::Find("Regions[0]")}, version, ""));
    return contents;
}

void Count(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * state.range(0)); }

// One region is chosen; its links bring all the others.
void BM_CopyObjects(benchmark::State& state) {
    TheSite().Fill(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(Copied());
    Count(state);
}
BENCHMARK(BM_CopyObjects)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void BM_WriteObjects(benchmark::State& state) {
    TheSite().Fill(static_cast<int>(state.range(0)));
    std::wstring text;
    for (auto _ : state) Check(zo::xml::StringWrite(text, version));
    Count(state);
}
BENCHMARK(BM_WriteObjects)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void BM_PasteObjects(benchmark::State& state) {
    Site& site = TheSite();
    site.Fill(static_cast<int>(state.range(0)));
    auto contents = Copied();
    std::vector<std::wstring> names;
    for (auto _ : state) {
        state.PauseTiming();
        site.Empty();
        state.ResumeTiming();
        Check(zo::clip::Deserialize(regionGroup, contents, version, names, ""));
    }
    if (site.regions.size() + site.soils.size() != static_cast<std::size_t>(state.range(0)))
        state.SkipWithError("not everything was pasted");
    Count(state);
}
BENCHMARK(BM_PasteObjects)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

// Beside objects of the same names: every soil is found and used again, every region gets another name.
void BM_PasteObjectsAgain(benchmark::State& state) {
    Site& site = TheSite();
    site.Fill(static_cast<int>(state.range(0)));
    auto contents = Copied();
    std::vector<std::wstring> names;
    for (auto _ : state) {
        state.PauseTiming();
        site.Fill(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        Check(zo::clip::Deserialize(regionGroup, contents, version, names, ""));
    }
    Count(state);
}
BENCHMARK(BM_PasteObjectsAgain)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void BM_ReadObjectsToTransaction(benchmark::State& state) {
    TheSite().Fill(static_cast<int>(state.range(0)));
    auto const contents = Copied();
    for (auto _ : state)
        Check(zo::clip::DeserializeToTransaction(zo::clip::MakeClipImportTransaction(), contents.document, version));
    Count(state);
}
BENCHMARK(BM_ReadObjectsToTransaction)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void BM_ReadObjects(benchmark::State& state) {
    TheSite().Fill(static_cast<int>(state.range(0)));
    auto const contents = Copied();
    std::vector<htl::status> errors;
    for (auto _ : state) Check(zo::xml::StringRead(contents.document, errors));
    Count(state);
}
BENCHMARK(BM_ReadObjects)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace
