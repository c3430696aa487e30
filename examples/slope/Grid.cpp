#include "examples/slope/Grid.h"

#include "examples/slope/Table.h"

#include <ostream>

namespace slope {

namespace {

constexpr std::size_t shownRecords = 5;
// The model is no deeper than this; a table that leads aliases in a circle would be.
constexpr unsigned deepest = 12;

class Grid {
public:
    Grid(Display const& display, int query)
        : table({{std::string(display.OwnWords().label)},
                 {std::string(display.OwnWords().value)},
                 {std::string(display.OwnWords().unit)}}),
          display(display), query(query) {}

    void Children(zo::H const& parent, unsigned level) {
        std::size_t shown = 0;
        bool const list = IsList(parent);
        for (zo::H const& child : ShownChildren(parent, query)) {
            if (list && shown++ == shownRecords) {
                std::string const rest = display.Amount(parent->Length() - shownRecords);
                table.Add({Indented_(Filled(display.OwnWords().more, rest), level)});
                return;
            }
            Row_(child, level);
            if (level < deepest && !child->IsValueType() && (!IsList(child) || IsListOfRecords(child)))
                Children(child, level + 1);
        }
    }

    Table table;

private:
    void Row_(zo::H const& node, unsigned level) {
        std::optional<Table::Swatch> swatch;
        if (std::optional<unsigned long> const color = display.Color(node)) swatch = Table::Swatch{1, *color};
        table.Add({Indented_(display.Label(node), level), display.Value(node), display.Unit(node)}, swatch);
    }

    static std::string Indented_(std::string const& text, unsigned level) {
        return std::string(2 * static_cast<std::size_t>(level), ' ') + text;
    }

    Display const& display;
    int query;
};

} // namespace

void PrintGrid(std::ostream& out, Display const& display, zo::H const& top, int query, bool color) {
    Grid grid(display, query);
    grid.Children(top, 0);
    grid.table.Print(out, color);
}

} // namespace slope
