// What do a save, a load and a walk cost?
//
// Floors in the same run: the bare formatting of the same numbers into one buffer for a save, the parser with empty
// handlers over the same file for a load, the structs themselves for a walk.
#include "bench/DocumentModel.h"
#include "bench/Register.h"

#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>

namespace {

hzn::version::NumberKind<0> const fileVersion{1, 0};

// One model and its document for each size, made when first asked for.
struct Document {
    explicit Document(std::size_t megabytes) : project(bench::MakeProject(megabytes)) {
        bench::RegisterProject(project);
        path = std::filesystem::temp_directory_path() / ("zo_bench_" + std::to_string(megabytes) + ".xml");
        if (zo::xml::FileWrite(path.wstring(), fileVersion).IsError()) throw std::runtime_error("cannot write");
        bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    }
    ~Document() { std::filesystem::remove(path); }

    bench::CurrentRegistry current;
    bench::Project project;
    std::filesystem::path path;
    std::int64_t bytes = 0;
};

Document& OfSize(benchmark::State const& state) {
    static std::map<std::int64_t, std::unique_ptr<Document>> documents;
    auto& document = documents[state.range(0)];
    if (!document) document = std::make_unique<Document>(static_cast<std::size_t>(state.range(0)));
    document->current.Select();
    return *document;
}

void BM_FormatNumbers(benchmark::State& state) {
    Document const& document = OfSize(state);
    std::string buffer;
    for (auto _ : state) benchmark::DoNotOptimize(bench::FormatNumbers(document.project, buffer));
    state.SetBytesProcessed(state.iterations() * document.bytes);
}
BENCHMARK(BM_FormatNumbers)->Arg(1)->Arg(20)->Arg(100)->Unit(benchmark::kMillisecond);

void BM_SaveFile(benchmark::State& state) {
    Document const& document = OfSize(state);
    for (auto _ : state)
        if (zo::xml::FileWrite(document.path.wstring(), fileVersion).IsError()) state.SkipWithError("save failed");
    state.SetBytesProcessed(state.iterations() * document.bytes);
}
BENCHMARK(BM_SaveFile)->Arg(1)->Arg(20)->Arg(100)->Unit(benchmark::kMillisecond);

void BM_ParseEmptyHandlers(benchmark::State& state) {
    Document const& document = OfSize(state);
    for (auto _ : state) {
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen(document.path.c_str(), "rb"),
                                                                   &std::fclose);
        std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> const parser(XML_ParserCreate(nullptr),
                                                                             &XML_ParserFree);
        XML_SetElementHandler(
            parser.get(), [](void*, char const*, char const**) {}, [](void*, char const*) {});
        XML_SetCharacterDataHandler(parser.get(), [](void*, char const*, int) {});
        for (bool last = false; !last;) {
            void* const buffer = XML_GetBuffer(parser.get(), 65536);
            std::size_t const read = std::fread(buffer, 1, 65536, file.get());
            last = read < 65536;
            if (XML_ParseBuffer(parser.get(), static_cast<int>(read), last) != XML_STATUS_OK)
                state.SkipWithError("parse");
        }
    }
    state.SetBytesProcessed(state.iterations() * document.bytes);
}
BENCHMARK(BM_ParseEmptyHandlers)->Arg(1)->Arg(20)->Arg(100)->Unit(benchmark::kMillisecond);

void BM_LoadFile(benchmark::State& state) {
    Document const& document = OfSize(state);
    bench::Project const saved = document.project;
    for (auto _ : state) {
        std::vector<htl::status> errors;
        if (zo::xml::FileRead(document.path.wstring(), errors, {}, zo::xml::impl::UnknownAreErrors(), {}).IsError() ||
            !errors.empty() || document.project.points.size() != saved.points.size())
            state.SkipWithError("load failed");
    }
    if (document.project != saved) state.SkipWithError("read otherwise than it was written");
    state.SetBytesProcessed(state.iterations() * document.bytes);
}
BENCHMARK(BM_LoadFile)->Arg(1)->Arg(20)->Arg(100)->Unit(benchmark::kMillisecond);

void BM_WalkStructs(benchmark::State& state) {
    Document const& document = OfSize(state);
    for (auto _ : state) {
        double sum = 0;
        for (bench::Point const& point : document.project.points) sum += point.x;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(document.project.points.size()));
}
BENCHMARK(BM_WalkStructs)->Arg(10)->Unit(benchmark::kMillisecond);

void BM_WalkRecords(benchmark::State& state) {
    Document const& document = OfSize(state);
    for (auto _ : state) {
        double sum = 0;
        zo::H const points = zo::Find("Project.Points");
        for (zo::ZOFwrdIterator point = points->begin(); point.current; ++point) {
            double x = 0;
            (void)zo::Find(point.current, "X")->Get(x); // a double always reads
            sum += x;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(document.project.points.size()));
}
BENCHMARK(BM_WalkRecords)->Arg(10)->Unit(benchmark::kMillisecond);

} // namespace
