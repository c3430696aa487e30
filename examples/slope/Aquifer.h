// A large model on demand: an aquifer of many cells, always the same for the same number of them.
#pragma once

#include "examples/slope/Model.h"

#include <cstddef>
#include <functional>

namespace slope {

/// As many cells as the large case has.
inline constexpr std::size_t largeCellCount = 106257;

/// How many of `count` cells are active: 94,696 of 106,257, and that share of any other number, rounded.
std::size_t ActiveCells(std::size_t count);

/// Makes an aquifer of `count` cells of pseudo-random numbers with six significant digits.
///
/// Tops are -40.6736 to 4.57 m, bottoms -42.6101 to -11.366 m and below the top, conductivities 76.5536 to 9189.81
/// m/day, each range from end to end as far as there are cells for it (four or more). Exactly `ActiveCells(count)` are
/// active. `progress` is called with the number of cells made, now and then; it may be empty.
Aquifer MakeAquifer(std::size_t count, std::function<void(std::size_t done)> const& progress = {});

} // namespace slope
