// The areas of the regions: worked out from their outlines when somebody asks, and kept until somebody asks again.
#pragma once

#include "examples/slope/Model.h"

namespace slope {

/// Puts the area of each region to what its outline encloses. A line that ends within the section goes on along the
/// ground, as in the drawing. `missing` for a region that reaches down without end, whose lines name no points, or
/// whose area is no finite number; and for all where the ground is not in order of x.
///
/// Cost: in proportion to the points of all lines, a search in the ground for each line.
void UpdateAreas(Project& project);

} // namespace slope
