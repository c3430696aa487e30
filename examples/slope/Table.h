// Tables on a terminal: columns as wide as their widest cell.
#pragma once

#include <cstddef>
#include <iosfwd>
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

    explicit Table(std::vector<Column> columns);

    /// Cells that are left out are empty.
    void Add(std::vector<std::string> cells);
    bool IsEmpty() const { return rows.empty(); }
    /// Two columns of blanks before each line and between each two cells; a column without any cell isn't printed.
    void Print(std::ostream& out) const;

private:
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
};

} // namespace slope
