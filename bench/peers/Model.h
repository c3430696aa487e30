// The model that all programs of a comparison share, and a reader for its document that knows nothing of the library.
#pragma once

#include "bench/DocumentModel.h"

#include <cstddef>
#include <string_view>

namespace peers {

struct Settings {
    bool operator==(Settings const&) const = default;
    double tolerance = 0;
    int maxIterations = 0;
    bool tensile = false;
};

/// The project of the other benchmarks without its reports, and settings. What a material keeps in `drained` is called
/// Visible in the document.
struct Model {
    bool operator==(Model const&) const = default;
    bench::Project project;
    Settings settings;
};

/// A model whose document has about so many megabytes, for runs without documents from outside.
Model MakeSample(std::size_t megabytes);

/// What stands in a document, taken apart by the parser alone, so that it can judge what the library reads and writes.
///
/// Every element and attribute has to be one that the model has, and each array as long as it says. The bytes
/// are UTF-8. Raises
/// std::runtime_error otherwise.
Model ReadByHand(std::string_view document);

} // namespace peers
