// How much memory does a save or a load take, above the model itself?
//
//     zo_peak [LIMIT [MEGABYTES...]]
//
// For each size (20 and 100 without arguments) and each operation a line: the document, the model in memory, the text
// that the caller keeps, and the peak above both. Ends with 1 if a peak exceeds LIMIT megabytes (16), and with 2 if
// something fails or is read back otherwise than it was written. Each operation runs in a process of its own, so that
// none profits from memory that another one has left.
#include "bench/DocumentModel.h"
#include "bench/Memory.h"
#include "bench/Register.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr double megabyte = 1024.0 * 1024.0;
hzn::version::NumberKind<0> const fileVersion{1, 0};

struct Measure {
    double document, model, text, above;
};

template <class T>
double BytesOf(std::vector<T> const& values) {
    return static_cast<double>(values.capacity() * sizeof(T));
}
double BytesOf(std::wstring const& text) {
    return text.capacity() < 4 ? 0 : static_cast<double>((text.capacity() + 1) * sizeof(wchar_t));
}

/// What the vectors and texts of a project hold, without what the allocator adds.
double ModelBytes(bench::Project const& project) {
    double bytes = BytesOf(project.title) + BytesOf(project.materials) + BytesOf(project.points) +
                   BytesOf(project.regions) + BytesOf(project.reports);
    for (bench::Material const& material : project.materials) bytes += BytesOf(material.name);
    for (bench::Region const& region : project.regions) bytes += BytesOf(region.indices);
    for (std::wstring const& report : project.reports) bytes += BytesOf(report);
    return bytes;
}

void Check(htl::status const& status, char const* what) {
    if (status.IsError()) throw std::runtime_error(what);
}

/// Saves a project of that size, which is there before.
Measure Save(std::size_t size, std::filesystem::path const& path, bool toFile) {
    bench::CurrentRegistry const current;
    bench::Project project = bench::MakeProject(size);
    bench::RegisterProject(project);
    std::wstring text;
    bench::ForgetPeak();
    double const before = bench::Resident("VmRSS:");
    if (toFile)
        Check(zo::xml::FileWrite(path.wstring(), fileVersion), "the file can't be written");
    else
        Check(zo::xml::StringWrite(text, fileVersion), "the text can't be written");
    double const peak = bench::Resident("VmHWM:");
    double const kept = BytesOf(text) / megabyte;
    double const document = toFile ? static_cast<double>(std::filesystem::file_size(path)) / megabyte : kept;
    return {document, ModelBytes(project) / megabyte, kept, peak - before - kept};
}

/// Loads what was saved into an empty project.
Measure Load(std::size_t size, std::filesystem::path const& path, bool fromFile) {
    std::wstring text;
    if (!fromFile) {
        bench::CurrentRegistry const current;
        bench::Project project = bench::MakeProject(size);
        bench::RegisterProject(project);
        Check(zo::xml::StringWrite(text, fileVersion), "the text can't be written");
        text.shrink_to_fit();
    }
    bench::CurrentRegistry const current;
    bench::Project project;
    bench::RegisterProject(project);
    std::vector<htl::status> errors;
    bench::ForgetPeak();
    double const before = bench::Resident("VmRSS:");
    Check(fromFile ? zo::xml::FileRead(path.wstring(), errors, {}, zo::xml::impl::UnknownAreErrors(), {})
                   : zo::xml::StringRead(text, errors, {}, zo::xml::impl::UnknownAreErrors(), {}),
          "the document can't be read");
    double const peak = bench::Resident("VmHWM:");
    if (!errors.empty() || project != bench::MakeProject(size)) throw std::runtime_error("read back otherwise");
    double const model = ModelBytes(project) / megabyte;
    double const document =
        fromFile ? static_cast<double>(std::filesystem::file_size(path)) / megabyte : BytesOf(text) / megabyte;
    return {document, model, fromFile ? 0 : document, peak - before - model};
}

/// Runs `operation` in a process of its own and prints its line. Whether it succeeded and stayed below the limit.
template <class Operation>
int Run(char const* name, double limit, Operation const& operation) {
    std::fflush(stdout);
    pid_t const child = fork();
    if (child == 0) {
        int result = 2;
        try {
            Measure const m = operation();
            result = m.above > limit ? 1 : 0;
            std::printf("%-12s %9.1f %9.1f %9.1f %9.1f%s\n", name, m.document, m.model, m.text, m.above,
                        result ? "  too much" : "");
        } catch (std::exception const& failure) {
            std::printf("%-12s %s\n", name, failure.what());
        }
        std::fflush(stdout);
        _exit(result);
    }
    int ended = 0;
    if (child < 0 || waitpid(child, &ended, 0) != child || !WIFEXITED(ended)) return 2;
    return WEXITSTATUS(ended);
}

} // namespace

int main(int count, char** arguments) {
    double const limit = count > 1 ? std::atof(arguments[1]) : 16;
    std::vector<std::size_t> sizes;
    for (int i = 2; i < count; ++i) sizes.push_back(static_cast<std::size_t>(std::atol(arguments[i])));
    if (sizes.empty()) sizes = {20, 100};

    std::string folder = (std::filesystem::temp_directory_path() / "zo_peak_XXXXXX").string();
    if (!mkdtemp(folder.data())) {
        std::perror("zo_peak");
        return 2;
    }
    std::printf("megabytes     document     model      text     above\n");
    int worst = 0;
    for (std::size_t const size : sizes) {
        std::filesystem::path const path = std::filesystem::path(folder) / (std::to_string(size) + ".xml");
        worst = std::max({worst, Run("FileWrite", limit, [&] { return Save(size, path, true); }),
                          Run("FileRead", limit, [&] { return Load(size, path, true); }),
                          Run("StringWrite", limit, [&] { return Save(size, path, false); }),
                          Run("StringRead", limit, [&] { return Load(size, path, false); })});
    }
    std::filesystem::remove_all(folder);
    return worst;
}
