// Readers for the document of a table of labels and rules.
//
//     <Meta_ExtendedInfo Rows="2">
//       <Row Tag="Default"/>
//       <Row Tag="Soils.[]" Label="Soil">
//         <ViewTravList Rows="1"><Item SourceTag="Regions" RemoveFromSource="0"/></ViewTravList>
//       </Row>
//     </Meta_ExtendedInfo>
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"

#include "support/status.h"
#include "support/xml/XmlTable.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zo {

/// Reads the traversal list of a row.
class XmlZOExtendedInfoTravListReader : public sys::file::XmlArrayReader {
public:
    explicit XmlZOExtendedInfoTravListReader(std::wstring name);
    ~XmlZOExtendedInfoTravListReader() override;

    /// How many rows were merely declared.
    std::size_t AbsentRows() const noexcept;
    /// The items in the order of the document, then at most `mostAbsent` empty ones for rows that were merely declared.
    std::vector<ViewTravItem> Items(std::size_t mostAbsent) const;

private:
    explicit XmlZOExtendedInfoTravListReader(std::wstring name,
                                             htl::handle<sys::file::XmlArrayElementDataTableReader> const& cells);

    htl::handle<sys::file::XmlArrayElementDataTableReader> cells;
};

/// Reads the rows of a table, with their traversal lists.
class XmlZOExtendedInfoArrayElementReader : public sys::file::XmlArrayElementDataTableReader {
public:
    XmlZOExtendedInfoArrayElementReader();
    ~XmlZOExtendedInfoArrayElementReader() override;

    /// Any child of a row is its traversal list. A row has one; further ones are skipped.
    htl::handle<sys::file::XmlElemReader> Element(std::wstring const& tag) override;
    /// The traversal list of a row, null without one.
    XmlZOExtendedInfoTravListReader const* TravList(std::size_t row) const;

private:
    std::vector<std::pair<std::size_t, htl::handle<XmlZOExtendedInfoTravListReader>>> lists; // sorted by row
};

/// Reads a table.
class XmlZOExtendedInfoReader : public sys::file::XmlArrayReader {
public:
    XmlZOExtendedInfoReader();
    ~XmlZOExtendedInfoReader() override;

    /// Replaces `entries` by those of the rows with a tag, in the order of the document.
    ///
    /// Failure: "Error with entry <tag>: ..." for the first cell that can't be read; `entries` is then empty.
    htl::status Entries(std::vector<ExtendedInfoEntry>& entries) const;

private:
    explicit XmlZOExtendedInfoReader(htl::handle<XmlZOExtendedInfoArrayElementReader> const& rows);

    htl::handle<XmlZOExtendedInfoArrayElementReader> rows;
};

} // namespace zo
