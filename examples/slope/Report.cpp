#include "examples/slope/Report.h"

#include "examples/slope/CrossSection.h"
#include "examples/slope/Display.h"
#include "examples/slope/Html.h"
#include "examples/slope/Text.h"
#include "examples/slope/Words.h"

#include "support/xml/AtomicFile.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace slope {

namespace {

constexpr std::size_t mostRows = 500; // of one table; a page is for reading
constexpr unsigned deepest = 12;
constexpr std::string_view nothing = "–";

// Everything in one file: no font, script or picture comes from elsewhere.
constexpr std::string_view style = R"(
:root { color-scheme: light dark; --paper: #fff; --ink: #1d2327; --soft: #5c6770; --rule: #d5dadd; --tint: #f4f6f7;
  --water: #1769aa; --slip: #b3261e; }
@media (prefers-color-scheme: dark) { :root { --paper: #171b1e; --ink: #e4e8ea; --soft: #9aa5ad; --rule: #3a4248;
  --tint: #20262a; --water: #6db7f2; --slip: #ff8a80; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--paper); color: var(--ink); font: 16px/1.5 system-ui, "Segoe UI", Roboto,
  "Helvetica Neue", Arial, sans-serif; }
main { max-width: 56rem; margin: 0 auto; padding: 2.5rem 1.5rem 3rem; }
h1 { margin: 0; font-size: 1.75rem; line-height: 1.25; }
h2 { margin: 2.5rem 0 0.25rem; padding-bottom: 0.25rem; border-bottom: 1px solid var(--rule); font-size: 1.25rem; }
h3 { margin: 1.5rem 0 0.25rem; font-size: 1rem; }
p { margin: 0.25rem 0; }
.about, footer, figcaption { color: var(--soft); font-size: 0.9rem; }
.frame { overflow-x: auto; }
dl { display: grid; grid-template-columns: minmax(10rem, max-content) 1fr; gap: 0.2rem 1.5rem; margin: 0.75rem 0; }
dt { color: var(--soft); }
dd { margin: 0; }
table { border-collapse: collapse; margin: 0.75rem 0; min-width: 50%; font-variant-numeric: tabular-nums; }
th, td { padding: 0.35rem 1rem 0.35rem 0; border-bottom: 1px solid var(--rule); text-align: left;
  vertical-align: baseline; }
thead th { border-bottom: 2px solid var(--rule); color: var(--soft); font-size: 0.85rem; font-weight: 600;
  vertical-align: bottom; }
tbody th { font-weight: 600; }
.number { text-align: right; }
.unit { color: var(--soft); font-weight: 400; }
.swatch { display: inline-block; width: 1em; height: 1em; margin-right: 0.5em; border: 1px solid var(--soft);
  border-radius: 2px; vertical-align: -0.12em; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
figure { margin: 1.5rem 0 0; }
svg { display: block; max-width: 100%; height: auto; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
svg text { fill: var(--soft); font-size: 12px; }
svg path, svg circle { fill: none; stroke-linejoin: round; }
svg .layer { stroke: var(--paper); stroke-width: 1; }
svg .ground { stroke: var(--ink); stroke-width: 2.5; }
svg .water { stroke: var(--water); stroke-width: 2; stroke-dasharray: 8 4; }
svg .level { fill: var(--water); }
svg .slip { fill: var(--slip); fill-opacity: 0.15; stroke: var(--slip); stroke-width: 2; }
svg .radius { stroke: var(--slip); stroke-width: 1; stroke-dasharray: 2 4; }
svg .centre { fill: var(--slip); }
svg .axis { stroke: var(--soft); stroke-width: 1; }
ul.legend { display: flex; flex-wrap: wrap; gap: 0.25rem 1.5rem; margin: 0.5rem 0 0; padding: 0; list-style: none;
  color: var(--ink); }
.line { display: inline-block; width: 1.75em; margin-right: 0.5em; vertical-align: 0.25em; }
.line.water { border-top: 2px dashed var(--water); }
.line.slip { border-top: 2px solid var(--slip); }
footer { margin-top: 3rem; padding-top: 0.5rem; border-top: 1px solid var(--rule); }
@media print { :root { color-scheme: light; --paper: #fff; --ink: #000; --soft: #444; --rule: #bbb; --water: #1769aa;
  --slip: #b3261e; } main { max-width: none; padding: 0; } body { font-size: 10.5pt; }
  figure, table, dl { break-inside: avoid; } h2, h3, section > .about { break-after: avoid; } }
)";

std::string Element(std::string_view name, std::string_view text) {
    return "<" + std::string(name) + ">" + Escaped(text) + "</" + std::string(name) + ">";
}

std::string SwatchOf(unsigned long color) {
    return "<span class=\"swatch\" style=\"background:" + ColorText(color) + "\"></span>";
}

struct Column {
    std::string path; // below the record
    std::string label, description, unit;
    bool isNumber = false;
};

class Page {
public:
    explicit Page(Document& document)
        : document(document), display(document), words(display.OwnWords()), query(ReportQuery()) {}

    std::string Make(std::string const& source) {
        std::string const name = ValueOf_("Project.Name"), title = ValueOf_("Project.Title");
        std::string const heading = !title.empty() ? title : !name.empty() ? name : std::string(words.unnamed);
        html = "<!DOCTYPE html>\n<html lang=\"" + std::string(words.code) +
               "\">\n<head>\n<meta charset=\"utf-8\"/>\n<meta name=\"viewport\" content=\"width=device-width, "
               "initial-scale=1\"/>\n" +
               Element("title", heading) + "\n<style>" + std::string(style) + "</style>\n</head>\n<body>\n<main>\n" +
               Element("h1", heading) + "\n";
        Figure_();
        Children_(document.Root(), 2);
        html += "<footer>" + Escaped(Filled(words.made, source)) + "</footer>\n</main>\n</body>\n</html>\n";
        return std::move(html);
    }

private:
    std::string ValueOf_(std::string const& name) {
        zo::H const node = document.Find(name);
        return node && !node->IsUndefined() ? display.Value(node) : std::string();
    }

    void Figure_() {
        std::optional<Drawing> const drawing = DrawCrossSection(document, display);
        if (!drawing) return;
        if (drawing->svg.empty()) {
            html += "<p class=\"about\">" + Escaped(words.tooLarge) + "</p>\n";
            return;
        }
        html += "<figure>\n<div class=\"frame\">" + drawing->svg + "</div>\n<figcaption>" +
                Escaped(words.crossSection) + "\n<ul class=\"legend\">\n";
        for (LegendItem const& item : drawing->legend) {
            std::string mark;
            if (item.mark == LegendItem::Fill) mark = SwatchOf(item.color);
            if (item.mark == LegendItem::WaterLine) mark = "<span class=\"line water\"></span>";
            if (item.mark == LegendItem::Circle) mark = "<span class=\"line slip\"></span>";
            html += "<li>" + mark + Escaped(item.text) + "</li>\n";
        }
        html += "</ul>\n</figcaption>\n</figure>\n";
    }

    /// Lines first, then the sections, whatever their order in the view: a line behind a section would belong to it.
    void Children_(zo::H const& parent, unsigned level) {
        std::string lines;
        std::vector<zo::H> sections;
        for (zo::H const& child : ShownChildren(parent, query)) {
            if (IsListOfRecords(child) || (!IsList(child) && !child->IsValueType()))
                sections.push_back(child);
            else if (!IsList(child) || child->Length())
                lines += "<dt>" + Escaped(display.Label(child)) + "</dt><dd>" + ValueWithUnit_(child) + "</dd>\n";
        }
        if (!lines.empty()) html += "<dl>\n" + lines + "</dl>\n";
        for (zo::H const& section : sections) Section_(section, level);
    }

    void Section_(zo::H const& node, unsigned level) {
        if (level > deepest) return;
        std::size_t const before = html.size();
        std::string const tag = "h" + std::to_string(std::min(level, 6U));
        html += "<section>\n" + Element(tag, display.Label(node)) + "\n";
        std::string const description = display.Description(node);
        if (!description.empty()) html += "<p class=\"about\">" + Escaped(description) + "</p>\n";
        std::size_t const heading = html.size();
        if (!IsList(node))
            Children_(node, level + 1);
        else if (zo::CustomView(node) == L"factors")
            Factors_(node);
        else if (zo::Style(node) == zo::style::table)
            Table_(node);
        else
            for (zo::H const& record : ShownChildren(node, query)) Section_(record, level + 1);
        // A section without content isn't worth its heading.
        if (html.size() == heading)
            html.resize(before);
        else
            html += "</section>\n";
    }

    std::string ValueWithUnit_(zo::H const& node) const {
        std::string const value = display.Value(node), unit = display.Unit(node);
        bool const bare = unit.empty() || node->IsUndefined();
        return Escaped(value) + (bare ? "" : " <span class=\"unit\">" + Escaped(unit) + "</span>");
    }

    /// The values below a record, by their name below it.
    void Leaves_(zo::H const& record, std::size_t prefix, unsigned level,
                 std::vector<std::pair<std::string, zo::H>>& leaves) const {
        for (zo::H const& child : ShownChildren(record, query)) {
            if (child->IsValueType() || IsList(child))
                leaves.emplace_back(child->Name().substr(std::min(prefix, child->Name().size())), child);
            else if (level < deepest)
                Leaves_(child, prefix, level + 1, leaves);
        }
    }

    std::vector<std::pair<std::string, zo::H>> LeavesOf_(zo::H const& record) const {
        std::vector<std::pair<std::string, zo::H>> leaves;
        Leaves_(record, record->Name().size(), 0, leaves);
        return leaves;
    }

    struct Records {
        std::vector<zo::H> shown;
        std::size_t more = 0;
    };
    Records RecordsOf_(zo::H const& list) const {
        Records records;
        for (zo::H const& record : ShownChildren(list, query)) {
            if (records.shown.size() == mostRows) {
                records.more = list->Length() - mostRows;
                break;
            }
            records.shown.push_back(record);
        }
        return records;
    }

    void Head_(std::vector<Column> const& columns) {
        html += "<div class=\"frame\">\n<table>\n<thead><tr>";
        for (Column const& column : columns) {
            if (column.label.empty()) {
                html += "<td></td>";
                continue;
            }
            html += std::string("<th scope=\"col\"") + (column.isNumber ? " class=\"number\"" : "") +
                    (column.description.empty() ? "" : " title=\"" + Escaped(column.description) + "\"") + ">" +
                    Escaped(column.label) +
                    (column.unit.empty() ? "" : " <span class=\"unit\">" + Escaped(column.unit) + "</span>") + "</th>";
        }
        html += "</tr></thead>\n<tbody>\n";
    }

    /// A row; the first cell is its heading, with a patch of colour where there is one.
    void Row_(std::vector<Column> const& columns, std::vector<std::string> const& cells,
              std::optional<unsigned long> color) {
        html += "<tr>";
        for (std::size_t c = 0; c < columns.size(); ++c) {
            std::string const tag = c == 0 ? "th" : "td";
            html += "<" + tag + (c == 0 ? " scope=\"row\"" : "") + (columns[c].isNumber ? " class=\"number\"" : "") +
                    ">" + (c == 0 && color ? SwatchOf(*color) : "") +
                    (cells[c].empty() ? std::string(nothing) : Escaped(cells[c])) + "</" + tag + ">";
        }
        html += "</tr>\n";
    }

    void Foot_(Records const& records) {
        html += "</tbody>\n</table>\n</div>\n";
        if (records.more)
            html += "<p class=\"about\">" + Escaped(Filled(words.more, display.Amount(records.more))) + "</p>\n";
    }

    void Table_(zo::H const& list) {
        Records const records = RecordsOf_(list);
        if (records.shown.empty()) return;
        std::vector<Column> columns;
        for (auto const& [path, node] : LeavesOf_(records.shown.front()))
            columns.push_back({path, display.Label(node), display.Description(node), display.Unit(node), false});
        if (columns.empty()) return;

        std::vector<std::vector<std::string>> rows;
        for (zo::H const& record : records.shown) {
            std::map<std::string, zo::H> nodes;
            for (auto& [path, node] : LeavesOf_(record)) nodes.emplace(path, node);
            std::vector<std::string>& cells = rows.emplace_back();
            for (Column const& column : columns) {
                auto const found = nodes.find(column.path);
                bool const there = found != nodes.end() && !found->second->IsUndefined();
                cells.push_back(there ? display.Value(found->second) : std::string());
            }
        }
        MarkNumbers_(columns, rows);
        if (columns[0].isNumber) {
            // A number is no heading of a row: that is what the record is called.
            columns.insert(columns.begin(), Column());
            for (std::size_t i = 0; i < rows.size(); ++i)
                rows[i].insert(rows[i].begin(), display.Label(records.shown[i]));
        }
        Head_(columns);
        for (std::size_t i = 0; i < rows.size(); ++i) Row_(columns, rows[i], display.Color(records.shown[i]));
        Foot_(records);
    }

    /// A column whose values are all numbers is aligned to the right.
    void MarkNumbers_(std::vector<Column>& columns, std::vector<std::vector<std::string>> const& rows) const {
        for (std::size_t c = 0; c < columns.size(); ++c) {
            bool any = false, all = true;
            for (auto const& cells : rows) {
                if (cells[c].empty()) continue;
                any = true;
                all = all && IsNumber(cells[c], words);
            }
            columns[c].isNumber = any && all;
        }
    }

    /// Factors of safety: a row for each method, a column for each source.
    void Factors_(zo::H const& list) {
        Records const records = RecordsOf_(list);
        std::vector<Column> columns(1);
        std::vector<std::vector<std::string>> rows;
        for (zo::H const& record : records.shown) {
            std::map<std::wstring, zo::H> fields;
            for (zo::H const& field : ShownChildren(record, query)) fields.emplace(zo::SimpleTag(field), field);
            zo::H const method = fields[L"Method"], source = fields[L"Source"], factor = fields[L"FactorOfSafety"];
            if (!method || !source || !factor) return Table_(list);
            columns[0].label = display.Label(method);
            columns[0].description = display.Description(method);

            std::vector<std::string>& cells = CellsOf_(rows, display.Value(method));
            Put_(columns, cells, display.Value(source), display.Description(factor), display.Number(factor));
            if (zo::H const lambda = fields[L"Lambda"]; lambda && !lambda->IsUndefined())
                Put_(columns, cells, display.Label(lambda), display.Description(lambda), display.Number(lambda));
        }
        if (rows.empty()) return;
        for (auto& cells : rows) cells.resize(columns.size());
        MarkNumbers_(columns, rows);
        Head_(columns);
        for (auto const& cells : rows) Row_(columns, cells, {});
        Foot_(records);
    }

    static std::vector<std::string>& CellsOf_(std::vector<std::vector<std::string>>& rows, std::string const& method) {
        for (auto& cells : rows)
            if (cells[0] == method) return cells;
        return rows.emplace_back(std::vector{method});
    }

    /// Puts a number under a heading, behind one that is there already.
    void Put_(std::vector<Column>& columns, std::vector<std::string>& cells, std::string const& heading,
              std::string const& description, std::optional<double> number) const {
        if (!number) return;
        auto const found = std::find_if(columns.begin() + 1, columns.end(),
                                        [&](Column const& column) { return column.label == heading; });
        auto const place = static_cast<std::size_t>(found - columns.begin());
        if (found == columns.end()) columns.push_back({{}, heading, description, {}, false});
        if (cells.size() <= place) cells.resize(place + 1);
        cells[place] += (cells[place].empty() ? "" : " / ") + display.Fixed(*number, 3);
    }

    Document& document;
    Display display;
    Words const& words;
    int query;
    std::string html;
};

} // namespace

int ReportQuery() { return reportView | zo::visible::Mask(hzn::apptype::Any) | zo::visible::Mask(hzn::appmode::Any); }

std::string ReportPage(Document& document, std::string const& source) { return Page(document).Make(source); }

htl::status WritePage(std::string const& path, std::string const& page) {
    sys::file::AtomicFile file;
    if (htl::status failure = file.Open(Wide(path)); failure.IsError()) return failure;
    if (htl::status failure = file.Write(page.data(), page.size()); failure.IsError()) return failure;
    return file.Commit();
}

} // namespace slope
