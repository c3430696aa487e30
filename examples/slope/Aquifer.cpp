#include "examples/slope/Aquifer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>

namespace slope {

namespace {

constexpr std::size_t largeActiveCount = 94696;
constexpr double lowestTop = -40.6736, highestTop = 4.57;
constexpr double lowestBottom = -42.6101, highestBottom = -11.366;
constexpr double lowestConductivity = 76.5536, highestConductivity = 9189.81;
constexpr double thinnest = 0.5;

/// The number rounded to six significant digits, as tables of such models give it.
double SixDigits(double number) {
    char buffer[32];
    auto const end = std::to_chars(buffer, buffer + sizeof(buffer), number, std::chars_format::general, 6).ptr;
    std::from_chars(buffer, end, number);
    return number;
}

/// Pseudo-random numbers that are the same everywhere: the distributions of the standard library are not.
class Numbers {
public:
    double Between(double lowest, double highest) {
        double const fraction = static_cast<double>(engine() >> 11) * 0x1p-53;
        return SixDigits(lowest + fraction * (highest - lowest));
    }
    /// Below `limit`, which is not 0. The bias of the remainder is of no matter here.
    std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(engine() % limit); }

private:
    std::mt19937_64 engine{106257};
};

} // namespace

std::size_t ActiveCells(std::size_t count) {
    double const share = static_cast<double>(largeActiveCount) / static_cast<double>(largeCellCount);
    return static_cast<std::size_t>(std::llround(static_cast<double>(count) * share));
}

Aquifer MakeAquifer(std::size_t count, std::function<void(std::size_t)> const& progress) {
    Aquifer aquifer;
    aquifer.cells.reserve(count);
    aquifer.transmissivity.reserve(count);
    aquifer.head.reserve(count);
    Numbers numbers;
    std::size_t activeLeft = ActiveCells(count);
    for (std::size_t i = 0; i < count; ++i) {
        Cell cell;
        cell.number = static_cast<int>(i) + 1;
        cell.top = numbers.Between(lowestTop, highestTop);
        cell.bottom = numbers.Between(lowestBottom, std::min(highestBottom, cell.top - thinnest));
        cell.conductivity = numbers.Between(lowestConductivity, highestConductivity);
        // The first cells stand at the ends of the ranges.
        if (count >= 4 && i < 4) {
            cell.top = i == 0 ? lowestTop : i == 1 ? highestTop : cell.top;
            cell.bottom = i == 0 ? lowestBottom : i == 1 ? highestBottom : cell.bottom;
            cell.conductivity = i == 2 ? lowestConductivity : i == 3 ? highestConductivity : cell.conductivity;
        }
        // Of the cells that are left, each is active with the chance that makes the total come out exactly.
        cell.active = numbers.Below(count - i) < activeLeft;
        activeLeft -= cell.active;
        aquifer.transmissivity.push_back(cell.conductivity * (cell.top - cell.bottom));
        aquifer.head.push_back(SixDigits(cell.top - 0.25 * (cell.top - cell.bottom)));
        aquifer.cells.push_back(cell);
        if (progress && i % 1024 == 0) progress(i);
    }
    return aquifer;
}

} // namespace slope
