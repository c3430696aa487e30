#include "examples/slope/Table.h"

#include "examples/slope/Text.h"

#include <algorithm>
#include <ostream>

namespace slope {

namespace {

constexpr std::size_t widestCell = 60;
constexpr std::size_t swatchWidth = 3; // with the blank behind it

std::string Blanks(std::size_t count) { return std::string(count, ' '); }

std::string Painted(unsigned long color) {
    return "\x1B[48;2;" + std::to_string(color & 0xFF) + ";" + std::to_string(color >> 8 & 0xFF) + ";" +
           std::to_string(color >> 16 & 0xFF) + "m" + Blanks(swatchWidth - 1) + "\x1B[0m ";
}

} // namespace

Table::Table(std::vector<Column> titles) : columns(std::move(titles)) {}

void Table::Add(std::vector<std::string> cells, std::optional<Swatch> swatch) {
    cells.resize(columns.size());
    for (std::string& cell : cells) cell = Fit(cell, widestCell);
    rows.push_back({std::move(cells), swatch});
}

void Table::Print(std::ostream& out, bool color) const {
    struct Cell {
        std::string text;
        std::size_t width = 0;
    };
    auto const cellOf = [&](Row const& row, std::size_t column) {
        Cell cell{row.cells[column], Width(row.cells[column])};
        if (color && row.swatch && row.swatch->column == column)
            cell = {Painted(row.swatch->color) + cell.text, cell.width + swatchWidth};
        return cell;
    };
    std::vector<std::size_t> widths;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        std::size_t widest = 0;
        for (Row const& row : rows) widest = std::max(widest, cellOf(row, c).width);
        widths.push_back(widest ? std::max(widest, Width(columns[c].title)) : 0);
    }
    auto const line = [&](auto const& cellIn) {
        std::string text;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            if (!widths[c]) continue;
            Cell const cell = cellIn(c);
            std::string const fill = Blanks(widths[c] - cell.width);
            text += "  " + (columns[c].right ? fill + cell.text : cell.text + fill);
        }
        out << text.substr(0, text.find_last_not_of(' ') + 1) << '\n';
    };
    line([&](std::size_t c) { return Cell{columns[c].title, Width(columns[c].title)}; });
    line([&](std::size_t c) { return Cell{std::string(widths[c], '-'), widths[c]}; });
    for (Row const& row : rows) line([&](std::size_t c) { return cellOf(row, c); });
}

} // namespace slope
