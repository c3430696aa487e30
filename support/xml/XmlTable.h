// Readers for tables: an element whose children are rows, with the cells as attributes.
//
//     <Materials Count="2">
//       <Material Name="Clay" Cohesion="5"/>
//       <Material Name="Sand"/>
//     </Materials>
#pragma once

#include "support/export.h"
#include "support/xml/XmlElemReader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sys::file {

class XmlArrayReader;

/// Receives the rows of an `XmlArrayReader`, one after the other, in one object.
class ZO_API XmlArrayElementReader : public XmlElemReader {
public:
    XmlArrayElementReader() = default;
    // A copy would refer to an array that does not know it.
    XmlArrayElementReader(XmlArrayElementReader const&) = delete;
    XmlArrayElementReader& operator=(XmlArrayElementReader const&) = delete;
    ~XmlArrayElementReader() override;

    /// The array's declared row count has become known, or known anew. The base class does nothing.
    virtual void ArrayLengthKnown();

protected:
    /// The array whose rows these are: for the current row and the declared count. Null before an array reader was made
    /// with this object and after that one is gone.
    XmlArrayReader const* Array() const noexcept { return array; }

private:
    friend class XmlArrayReader;
    XmlArrayReader const* array = nullptr;
};

/// Reads an element whose children are the rows of an array and whose attribute, of any name, declares their number.
///
/// The names of the element and of the rows are not looked at. Rows count from 0.
class ZO_API XmlArrayReader : public XmlElemReader {
public:
    /// Declared counts above this are taken for no number at all.
    static constexpr std::size_t maxDeclaredRows = 1'000'000;

    /// `name` is for messages. `element` receives the rows; it must not be null nor belong to another array.
    XmlArrayReader(std::wstring name, htl::handle<XmlArrayElementReader> element);
    XmlArrayReader(XmlArrayReader const&) = delete;
    XmlArrayReader& operator=(XmlArrayReader const&) = delete;
    ~XmlArrayReader() override;

    /// Steps to the next row and returns the element reader.
    htl::handle<XmlElemReader> Element(std::wstring const& tag) override;
    /// Takes the value for the row count, whatever the name, and tells the element reader. A value other than decimal
    /// digits for a number up to `maxDeclaredRows` counts as 0: rows are read all the same.
    void Attribute(XmlAttribute const& item) override;

    /// The name that it was made with.
    std::wstring const& Name() const noexcept { return name; }
    /// The row that is being read, or was read last; -1 before the first.
    std::ptrdiff_t CurrentRow() const noexcept { return row; }
    /// The declared row count, 0 if there was none.
    std::size_t DeclaredRows() const noexcept { return declaredRows; }
    /// Who reads the rows.
    htl::handle<XmlArrayElementReader> const& ElementReader() const noexcept { return element; }

private:
    std::wstring name;
    htl::handle<XmlArrayElementReader> element;
    std::ptrdiff_t row = -1;
    std::size_t declaredRows = 0;
};

/// Keeps the cells of a table with fixed columns.
///
/// Shape: `RowCount` rows of one wide string a column; a cell that the document omits is empty. The rows are as many as
/// the document declares, or as it holds, if these are more. Attributes that name no column are ignored, and so are
/// child elements of rows.
/// Cost: memory for the rows that the document holds; rows that are merely declared take none.
class ZO_API XmlArrayElementDataTableReader : public XmlArrayElementReader {
public:
    /// `columnList` holds the names of the columns, separated by commas. A name may stand in double quotes, and a
    /// backslash escapes the next character (`str::SplitFields`). Of equal names the first is used.
    explicit XmlArrayElementDataTableReader(std::wstring_view columnList);
    ~XmlArrayElementDataTableReader() override;

    /// Returns none: what stands inside a row is skipped.
    htl::handle<XmlElemReader> Element(std::wstring const& tag) override;
    /// Stores a cell of the array's current row.
    void Attribute(XmlAttribute const& item) override;
    /// Makes all rows empty and their number the declared one.
    void ArrayLengthKnown() override;

    /// Of the list.
    std::size_t ColumnCount() const noexcept { return columnCount; }
    /// Those declared or those there, if these are more.
    std::size_t RowCount() const noexcept;
    /// The text of a cell, empty where the document has none and outside of the table. Columns count from 0 in the
    /// order of the list. Valid until the reader gets more rows.
    std::wstring const& Cell(std::size_t row, std::size_t column) const noexcept;

private:
    using Column = std::pair<std::wstring, std::size_t>;

    std::vector<Column> columns; // sorted by name, with the place in the list
    std::size_t columnCount = 0;
    std::size_t declaredRows = 0;
    std::vector<std::vector<std::wstring>> rows; // up to the last row with a cell; rows without cells are empty
};

} // namespace sys::file
