// Rows and a table of labels and rules over them, in any size: layers, each with ten samples of nine values.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

struct Sample {
    std::array<double, 9> values;
};
struct Layer {
    std::array<Sample, 10> samples;
    double remark;
};

inline constexpr std::size_t rowsOfLayer = 1 + 10 * (1 + 9) + 1;

/// Registers `Layer0007.Sample3.Value5` and `Layer0007.Remark` for each layer in the current registry.
void RegisterLayers(std::vector<Layer>& layers);

/// The patterns among the table's entries, 200 of them for 19 layers or more. Half of them begin with "*".
std::vector<std::wstring> LayerPatterns(std::size_t layers);
/// The document of a table that compiles: an entry for every row but those that the patterns are for, and "Default".
std::string LayerTable(std::size_t layers);
/// The full tags of the rows.
std::vector<std::wstring> LayerTags(std::size_t layers);

} // namespace bench
