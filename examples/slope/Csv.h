// Tables of comma separated values, read with a clear message for whatever is wrong with them.
#pragma once

#include <zo/zo.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace slope {

/// A table with a header. Every row has as many fields as the header.
///
/// Fields are UTF-8. A field between quotes may hold commas, line ends and, doubled, quotes. Lines end with LF or CR
/// LF; empty lines are stepped over.
class CsvTable {
public:
    struct Row {
        std::size_t line; // of the file, from 1
        std::vector<std::string> fields;
    };

    /// Replaces the table by that of a file, whose header must be `columns`.
    ///
    /// Failure, with the file's name and line: the file can't be read, another header, a row of another length, a
    /// quote that isn't closed or stands inside a field. The table is then empty.
    htl::status Read(std::string const& path, std::span<std::string_view const> columns);
    /// The same from text; `name` stands for the file in messages.
    htl::status Parse(std::string const& name, std::string_view text, std::span<std::string_view const> columns);

    std::vector<Row> const& Rows() const { return rows; }

    /// The number in a field: the whole field, finite, with a decimal point. Failure: with file, line and column name.
    htl::status Number(Row const& row, std::size_t column, double& value) const;
    /// The whole number from 1 in a field.
    htl::status Ordinal(Row const& row, std::size_t column, int& value) const;
    /// A failure that names the file, the row's line and the column's name, and quotes the field.
    htl::status Refuse(Row const& row, std::size_t column, std::string const& why) const;
    /// A failure that names the file and the row's line.
    htl::status Refuse(Row const& row, std::string const& why) const;

private:
    std::string name;
    std::vector<std::string> header;
    std::vector<Row> rows;
};

} // namespace slope
