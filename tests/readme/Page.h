// The tables of a page in docs.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace page {

using Row = std::vector<std::string>;

/// The text of the page `name`; empty if there is none.
inline std::string Text(std::string const& name) {
    std::ifstream file(ZO_DOCS + ("/" + name), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The cells of every line of a table, without blanks around them.
inline std::vector<Row> Rows(std::string const& text) {
    std::vector<Row> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] != '|') continue;
        Row cells;
        std::istringstream rest(line.substr(1));
        for (std::string cell; std::getline(rest, cell, '|');) {
            std::size_t const begin = cell.find_first_not_of(' ');
            cells.push_back(begin == cell.npos ? "" : cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin));
        }
        rows.push_back(cells);
    }
    return rows;
}

/// What stands between the first two back quotes of a cell that begins with one; else empty.
inline std::string Quoted(std::string const& cell) {
    return cell.empty() || cell[0] != '`' ? "" : cell.substr(1, cell.find('`', 1) - 1);
}

} // namespace page
