// A drawing of the slope, to scale: ground and layers, water, slip circles, axes.
#pragma once

#include "examples/slope/Display.h"

#include <optional>
#include <string>
#include <vector>

namespace slope {

/// What a mark of the drawing means.
struct LegendItem {
    enum Mark { Fill, WaterLine, Note, Circle };
    Mark mark = Fill;
    std::string text;        // UTF-8, not yet escaped
    unsigned long color = 0; // of a fill, 0xBBGGRR
};

struct Drawing {
    std::string svg; // an element of HTML; empty if there is more to draw than anybody could look at
    std::vector<LegendItem> legend;
};

/// Draws the cross-section of the display's document in the units that people see. None without a ground line of at
/// least two points at different places.
std::optional<Drawing> DrawCrossSection(Document& document, Display const& display);

} // namespace slope
