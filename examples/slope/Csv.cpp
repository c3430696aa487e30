#include "examples/slope/Csv.h"

#include "examples/slope/Text.h"

#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <system_error>

namespace slope {

namespace {

/// Cuts a text into rows. One position in the text, which counts lines as it goes.
class Cutter {
public:
    explicit Cutter(std::string_view text) : text(text) {}

    bool AtEnd() const { return position >= text.size(); }
    std::size_t Line() const { return line; }

    /// The next row; empty for an empty line. False, with `problem` set, where the quotes are wrong.
    bool Row(std::vector<std::string>& fields, std::string& problem) {
        fields.clear();
        if (EndOfLine_()) return true;
        for (;;) {
            if (!Field_(fields.emplace_back(), problem)) return false;
            if (AtEnd() || EndOfLine_()) return true;
            if (text[position] != ',') {
                problem = "a quoted field goes on behind its closing quote";
                return false;
            }
            ++position;
        }
    }

private:
    bool EndOfLine_() {
        std::size_t const length = text.substr(position, 2) == "\r\n" ? 2 : !AtEnd() && text[position] == '\n' ? 1 : 0;
        position += length;
        line += length != 0;
        return length != 0;
    }

    bool Field_(std::string& field, std::string& problem) {
        if (AtEnd() || text[position] != '"') {
            for (; !AtEnd() && text[position] != ',' && text[position] != '\n' && text.substr(position, 2) != "\r\n";
                 ++position) {
                if (text[position] == '"') {
                    problem = "a quote stands inside a field that isn't quoted";
                    return false;
                }
                field += text[position];
            }
            return true;
        }
        std::size_t const opened = line;
        for (++position; !AtEnd(); ++position) {
            if (text[position] == '"') {
                if (text.substr(position, 2) != "\"\"") return ++position, true;
                ++position;
            }
            line += text[position] == '\n';
            field += text[position];
        }
        problem = "the quote opened in line " + std::to_string(opened) + " is never closed";
        return false;
    }

    std::string_view text;
    std::size_t position = 0;
    std::size_t line = 1;
};

htl::status Failure(std::string const& text) { return htl::status::FromText(Wide(text)); }

} // namespace

htl::status CsvTable::Read(std::string const& path, std::span<std::string_view const> columns) {
    rows.clear();
    std::ifstream file(path, std::ios::binary);
    std::string text;
    if (file) text.assign(std::istreambuf_iterator<char>(file), {});
    if (!file || file.bad()) return Failure(path + ": the file can't be read.");
    return Parse(path, text, columns);
}

htl::status CsvTable::Parse(std::string const& source, std::string_view text,
                            std::span<std::string_view const> columns) {
    name = source;
    header.assign(columns.begin(), columns.end());
    rows.clear();
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);

    Cutter cutter(text);
    std::vector<Row> read;
    for (bool first = true; !cutter.AtEnd();) {
        Row row{cutter.Line(), {}};
        std::string problem;
        if (!cutter.Row(row.fields, problem)) return Refuse(row, problem);
        if (row.fields.empty()) continue;
        if (std::exchange(first, false)) {
            if (row.fields != header) return Refuse(row, "the columns must be " + Join(header, ","));
            continue;
        }
        if (row.fields.size() != header.size())
            return Refuse(row, std::to_string(row.fields.size()) + " fields where there are " +
                                   std::to_string(header.size()) + " columns");
        read.push_back(std::move(row));
    }
    rows = std::move(read);
    return {};
}

htl::status CsvTable::Number(Row const& row, std::size_t column, double& value) const {
    std::string const& field = row.fields[column];
    char const* const end = field.data() + field.size();
    double number = 0;
    auto const [stop, error] = std::from_chars(field.data(), end, number);
    if (error == std::errc::result_out_of_range) return Refuse(row, column, "is out of range");
    if (error != std::errc() || stop != end || !std::isfinite(number)) return Refuse(row, column, "is no number");
    value = number;
    return {};
}

htl::status CsvTable::Ordinal(Row const& row, std::size_t column, int& value) const {
    std::string const& field = row.fields[column];
    char const* const end = field.data() + field.size();
    int number = 0;
    auto const [stop, error] = std::from_chars(field.data(), end, number);
    if (error != std::errc() || stop != end || number < 1) return Refuse(row, column, "is no whole number from 1");
    value = number;
    return {};
}

htl::status CsvTable::Refuse(Row const& row, std::size_t column, std::string const& why) const {
    return Refuse(row, header[column] + " \"" + row.fields[column] + "\" " + why);
}

htl::status CsvTable::Refuse(Row const& row, std::string const& why) const {
    return Failure(name + ", line " + std::to_string(row.line) + ": " + why + ".");
}

} // namespace slope
