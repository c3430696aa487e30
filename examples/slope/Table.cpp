#include "examples/slope/Table.h"

#include "examples/slope/Text.h"

#include <algorithm>
#include <ostream>

namespace slope {

namespace {

constexpr std::size_t widestCell = 60;

std::string Blanks(std::size_t count) { return std::string(count, ' '); }

} // namespace

Table::Table(std::vector<Column> titles) : columns(std::move(titles)) {}

void Table::Add(std::vector<std::string> cells) {
    cells.resize(columns.size());
    for (std::string& cell : cells) cell = Fit(cell, widestCell);
    rows.push_back(std::move(cells));
}

void Table::Print(std::ostream& out) const {
    std::vector<std::size_t> widths;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        std::size_t widest = 0;
        for (auto const& row : rows) widest = std::max(widest, Width(row[c]));
        widths.push_back(widest ? std::max(widest, Width(columns[c].title)) : 0);
    }
    auto const line = [&](auto const& cellOf) {
        std::string text;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            if (!widths[c]) continue;
            std::string const cell = cellOf(c);
            std::string const fill = Blanks(widths[c] - Width(cell));
            text += "  " + (columns[c].right ? fill + cell : cell + fill);
        }
        out << text.substr(0, text.find_last_not_of(' ') + 1) << '\n';
    };
    line([&](std::size_t c) { return columns[c].title; });
    line([&](std::size_t c) { return std::string(widths[c], '-'); });
    for (auto const& row : rows) line([&](std::size_t c) { return row[c]; });
}

} // namespace slope
