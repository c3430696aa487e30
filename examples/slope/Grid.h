// The property grid: what people see of a document, as a table on a terminal.
#pragma once

#include "examples/slope/Display.h"

#include <zo/zo.h>

#include <iosfwd>

namespace slope {

/// Prints label, value and unit of everything below `top` that shows for `query`, indented by its level in the view.
/// Of a list of records the first few are shown, and how many more there are. A link shows what it leads to and is not
/// entered. With `color` what has a colour has a patch of it.
void PrintGrid(std::ostream& out, Display const& display, zo::H const& top, int query, bool color);

} // namespace slope
