// How does the library compare with others that read, write and edit the same model?
//
// Programs of other libraries report rows of the same names; a driver runs all of them in turn. Besides the flags of
// the benchmark there are
//
//     --verify [MEGABYTES]            makes all checks
//     --list-xml                      the name of the document's row
//     --rss OPERATION own MEGABYTES   one write_mem, write_file or read_file, and a line with its peak memory
//
// PEER_SIZES lists the megabytes of the documents, PEER_DOC_DIR holds them with the list of names, PEER_TMP is for
// output. Ends with 3 if something is read or written otherwise than it is, and with 4 for an operation that there
// isn't.
#include "bench/Memory.h"
#include "bench/peers/Documents.h"
#include "bench/peers/Paths.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace peers {
namespace {

Document& OfSize(std::size_t megabytes) {
    static std::map<std::size_t, std::unique_ptr<Document>> documents;
    auto& document = documents[megabytes];
    if (!document) document = std::make_unique<Document>(megabytes, Samples::refused);
    return *document;
}

void Count(benchmark::State& state, Document const& document, std::size_t ownBytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.bytes));
    state.counters["canon_bytes"] = static_cast<double>(document.bytes);
    state.counters["doc_bytes"] = static_cast<double>(ownBytes);
}

void WriteMemory(benchmark::State& state, std::size_t megabytes) {
    Document& document = OfSize(megabytes);
    std::size_t length = 0;
    for (auto _ : state) {
        std::wstring const text = Tree::Instance().SaveToText(document.model);
        benchmark::DoNotOptimize(text.data());
        benchmark::ClobberMemory();
        if (length != 0 && text.size() != length) state.SkipWithError("the size changed");
        length = text.size();
    }
    Count(state, document, length * sizeof(wchar_t));
}

void WriteFile(benchmark::State& state, std::size_t megabytes) {
    Document& document = OfSize(megabytes);
    OutputFile const output;
    for (auto _ : state) Tree::Instance().SaveToFile(document.model, output.path);
    Count(state, document, std::filesystem::file_size(output.path));
}

template <class Load>
void ReadFresh(benchmark::State& state, Document const& document, Load load) {
    for (auto _ : state) {
        Model model;
        load(model);
        benchmark::DoNotOptimize(model);
        if (model.project.points.size() != document.model.project.points.size()) state.SkipWithError("points are lost");
    }
}

void ReadMemory(benchmark::State& state, std::size_t megabytes) {
    Document const& document = OfSize(megabytes);
    ReadFresh(state, document, [&](Model& model) { Tree::Instance().LoadFromText(model, document.text); });
    Count(state, document, document.text.size() * sizeof(wchar_t));
}

void ReadFile(benchmark::State& state, std::size_t megabytes) {
    Document const& document = OfSize(megabytes);
    ReadFresh(state, document, [&](Model& model) { Tree::Instance().LoadFromFile(model, document.file.Path()); });
    Count(state, document, document.bytes);
}

void RegisterDocumentBenchmarks() {
    std::istringstream sizes(Environment("PEER_SIZES", "1 20"));
    for (std::size_t megabytes; sizes >> megabytes;) {
        auto const add = [&](char const* row, void (*run)(benchmark::State&, std::size_t)) {
            std::string const name = row + ("/" + std::to_string(megabytes) + "MB");
            benchmark::RegisterBenchmark(name.c_str(), run, megabytes)->Unit(benchmark::kMillisecond);
        };
        add("C_write_mem/own", &WriteMemory);
        add("C_write_file/own", &WriteFile);
        add("D_read_mem/own", &ReadMemory);
        // The same document as UTF-8, from a file that the system holds in memory.
        add("D_read_mem/own_file", &ReadFile);
    }
}

int Peak(std::string const& operation, std::string const& name, std::size_t megabytes) {
    bool const toText = operation == "write_mem", toFile = operation == "write_file";
    if (name != "own" || (!toText && !toFile && operation != "read_file")) return 4;
    Tree& tree = Tree::Instance();
    DocumentFile const document(megabytes, Samples::refused);
    OutputFile const output;
    Model model;
    std::wstring text;
    if (toText || toFile) model = ReadFileByHand(document.Path());

    malloc_trim(0);
    bench::ForgetPeak();
    double const before = bench::Resident("VmRSS:");
    auto const start = std::chrono::steady_clock::now();
    if (toText)
        text = tree.SaveToText(model);
    else if (toFile)
        tree.SaveToFile(model, output.path);
    else
        tree.LoadFromFile(model, document.Path());
    std::chrono::duration<double, std::milli> const took = std::chrono::steady_clock::now() - start;
    double const peak = bench::Resident("VmHWM:");

    std::size_t bytes = 0;
    if (toText) {
        bytes = text.size() * sizeof(wchar_t);
        Require(ReadTextByHand(text) == model, "the text was saved otherwise than the model is");
    } else if (toFile) {
        bytes = std::filesystem::file_size(output.path);
        Require(ReadFileByHand(output.path) == model, "the file was saved otherwise than the model is");
    } else {
        Require(ReadFileByHand(document.Path()) == model, "the file was loaded otherwise than it is");
    }
    std::printf(R"({"op":"%s","peer":"own","mb":%zu,"base_kb":%.0f,"peak_kb":%.0f,"ms":%.3f,"bytes":%zu})"
                "\n",
                operation.c_str(), megabytes, before * 1024, peak * 1024, took.count(), bytes);
    return 0;
}

int Verify(std::size_t megabytes) {
    Document const document(megabytes, Samples::taken);
    std::printf("own: the document of %zu MB%s is loaded and saved as it is\n", megabytes,
                document.file.IsSample() ? " (a sample)" : "");
    bool const ownNames = CheckPaths(Samples::taken);
    std::printf("own: 16,384 names%s are read and written, 1,000 edits committed\n", ownNames ? " (a sample)" : "");
    return 0;
}

int Run(int count, char** arguments) {
    std::string const mode = count > 1 ? arguments[1] : "";
    if (mode == "--list-xml") {
        std::puts("own");
        return 0;
    }
    if (mode == "--verify") return Verify(count > 2 ? std::stoul(arguments[2]) : 1);
    if (mode == "--rss") return count == 5 ? Peak(arguments[2], arguments[3], std::stoul(arguments[4])) : 4;

    RegisterDocumentBenchmarks();
    RegisterPathBenchmarks();
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace
} // namespace peers

int main(int count, char** arguments) {
    try {
        return peers::Run(count, arguments);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "zo_peer_bench: %s\n", failure.what());
        return 3;
    }
}
