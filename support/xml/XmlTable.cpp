#include "support/xml/XmlTable.h"

#include "support/split.h"
#include "support/text.h"

#include <algorithm>

namespace sys::file {
namespace {

std::size_t RowCountFrom(std::wstring const& text) {
    std::size_t count = 0;
    for (wchar_t const c : text) {
        if (!str::IsDigit(c)) return 0;
        count = 10 * count + static_cast<std::size_t>(c - L'0');
        if (count > XmlArrayReader::maxDeclaredRows) return 0;
    }
    return count;
}

} // namespace

XmlArrayElementReader::~XmlArrayElementReader() = default;

void XmlArrayElementReader::ArrayLengthKnown() {}

XmlArrayReader::XmlArrayReader(std::wstring itsName, htl::handle<XmlArrayElementReader> itsElement)
    : name(std::move(itsName)), element(std::move(itsElement)) {
    element->array = this;
}

XmlArrayReader::~XmlArrayReader() { element->array = nullptr; }

htl::handle<XmlElemReader> XmlArrayReader::Element(std::wstring const&) {
    ++row;
    return element;
}

void XmlArrayReader::Attribute(XmlAttribute const& item) {
    declaredRows = RowCountFrom(item.second);
    element->ArrayLengthKnown();
}

XmlArrayElementDataTableReader::XmlArrayElementDataTableReader(std::wstring_view columnList) {
    std::vector<std::wstring_view> fields;
    str::SplitFields(fields, columnList);
    columnCount = fields.size();
    for (std::size_t i = 0; i < columnCount; ++i) columns.emplace_back(str::StripField(fields[i]), i);
    std::ranges::sort(columns);
}

XmlArrayElementDataTableReader::~XmlArrayElementDataTableReader() = default;

htl::handle<XmlElemReader> XmlArrayElementDataTableReader::Element(std::wstring const&) { return {}; }

void XmlArrayElementDataTableReader::Attribute(XmlAttribute const& item) {
    if (!Array() || Array()->CurrentRow() < 0) return;
    auto const found = std::ranges::lower_bound(columns, item.first, {}, &Column::first);
    if (found == columns.end() || found->first != item.first) return;
    auto const row = static_cast<std::size_t>(Array()->CurrentRow());
    if (rows.size() <= row) rows.resize(row + 1);
    if (rows[row].empty()) rows[row].resize(columnCount);
    rows[row][found->second] = item.second;
}

void XmlArrayElementDataTableReader::ArrayLengthKnown() {
    // A few bytes of document can declare a million rows, so the empty ones are not made until a cell arrives.
    rows.clear();
    declaredRows = Array() ? Array()->DeclaredRows() : 0;
}

std::size_t XmlArrayElementDataTableReader::RowCount() const noexcept { return std::max(declaredRows, rows.size()); }

std::wstring const& XmlArrayElementDataTableReader::Cell(std::size_t row, std::size_t column) const noexcept {
    static std::wstring const none;
    return row < rows.size() && column < rows[row].size() ? rows[row][column] : none;
}

} // namespace sys::file
