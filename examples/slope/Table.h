// Tables on a terminal: columns as wide as their widest cell.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace slope {

/// Rows of text under a header. Cells are cut to one line and to a width of at most 60 columns.
class Table {
public:
    struct Column {
        std::string title;
        bool right = false; // aligned to the right, as numbers are
    };

    /// A patch of colour in front of a cell, 0xBBGGRR.
    struct Swatch {
        std::size_t column = 0;
        unsigned long color = 0;
    };

    explicit Table(std::vector<Column> columns);

    /// Cells that are left out are empty.
    void Add(std::vector<std::string> cells, std::optional<Swatch> swatch = {});
    bool IsEmpty() const { return rows.empty(); }
    /// Two columns of blanks before each line and between each two cells; a column without any cell isn't printed.
    /// Swatches are printed only in `color`, as escape sequences of terminals.
    void Print(std::ostream& out, bool color = false) const;

private:
    struct Row {
        std::vector<std::string> cells;
        std::optional<Swatch> swatch;
    };

    std::vector<Column> columns;
    std::vector<Row> rows;
};

} // namespace slope
