// The document of a table's texts:
//
//     <Meta_ExtendedInfo Len="1">
//       <Entry Tag="Soils.[]" Label="Soil" Description=""/>
//     </Meta_ExtendedInfo>
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"

#include "support/xml/XmlElemWriter.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zo {

/// A cursor over the document, first on its element, then on each row. One walk a writer.
class XmlExtendedZOWriter final : public sys::file::XmlElemWriter {
public:
    /// `entries` outlive the writer.
    explicit XmlExtendedZOWriter(std::vector<ExtendedInfoEntry> const& entries);
    ~XmlExtendedZOWriter() override;

    std::wstring Tag() override;
    /// Empty.
    std::wstring Text() override;
    std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> Attributes() override;
    htl::handle<sys::file::XmlElemWriter> Next() override;
    /// The writer itself, on the first row.
    htl::handle<sys::file::XmlElemWriter> FirstChild() override;
    bool IsArrayEntry() override;

private:
    enum class State : std::uint32_t { Head = 0, Row = 1 };

    State state = State::Head;
    std::vector<sys::file::XmlAttribute> attributes; // of the current element
    ExtendedInfoEntry const* current;
    ExtendedInfoEntry const* end;
};

} // namespace zo
