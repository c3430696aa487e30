// Loading: a document into the current registry, or into any set.
//
// A document never stops a load unless it isn't well-formed. Values that don't fit are collected; names that lead
// nowhere are kept and given to a handler after the document was read.
#pragma once

#include "Common/model/IZO.h"

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zo::xml {

namespace impl {

/// Collects failures up to a limit.
class ZO_API XMLError {
public:
    explicit XMLError(unsigned int limit) : limit(limit) {}

    /// Keeps the failure unless more than `limit` are kept already: one more than the limit in all. The rest is
    /// dropped.
    void ReportError(htl::status const& error);
    /// The failures kept, in the order in which they were reported.
    std::vector<htl::status> const& GetErrors() const { return errors; }

private:
    unsigned int limit;
    std::vector<htl::status> errors;
};

} // namespace impl

/// What is read: pairs of a path of tags below the document element and a flag; an empty list reads everything.
///
/// At each level of a path only the elements named by some pair are read. The flag is for the element at the end: false
/// reads all below it, true reads its attributes and text but none of its child elements. Elements of arrays are named
/// by tag ("Items[Item].X" or "Items.Item.X"), never by index, and those skipped count for no position. Of two pairs
/// with the same first tag the first counts. A pair with an empty path says by its flag whether what no pair names is
/// skipped.
using Filter = std::vector<std::pair<std::wstring, bool>>;

/// Elements and attributes that led to no node: full name and value, in document order. Indices count from 1:
/// "HZNData.Foo[2].Bar".
///
/// A name of more than `unknownNameLimit` characters is shortened: its first 125 and last 128 characters stay, with
/// "..." between them. So the list grows with the size of a document and not with the square of its depth.
using Unknowns = std::vector<std::pair<std::wstring, std::wstring>>;
inline constexpr std::size_t unknownNameLimit = 256;

/// Called once after a document was read, with the set read into, the unknown items, the document's format version
/// (1.7976931348623157e308 for none) and the failures so far, to which it may add. An empty one does nothing.
using UnknownHandler = std::function<void(ZOSet*, Unknowns&, double, impl::XMLError&)>;

/// Asked for the full name of each element whose node exists but takes no part in documents: "" reads into the node as
/// far as its store is active, any other answer makes the element an unknown item. An empty one answers "".
using TagPolicy = std::function<std::wstring(std::wstring const&)>;

namespace impl {

/// The handler that reports each item's name as `not_recognized`.
ZO_API UnknownHandler UnknownAreErrors();
/// The policy that answers "".
ZO_API TagPolicy UnknownTagIsMissing();

} // namespace impl

/// Clears the current registry, arrays included, and reads a file into it.
///
/// `errors` receives the failures of values, 11 at most: `file_assign` with the element's last tags, the text and the
/// cause; `not_recognized` for an attribute of the document element. What failed keeps its value. Values are converted,
/// but not checked against the rules of their types. Lengths of arrays that claim, all together, 65,536 entries more
/// than the document has bytes fail with `file_invalid_element_attribute` as the cause: memory stays in proportion.
/// Failure: the file can't be opened, or isn't well-formed: those of `sys::file::XmlFileRead`. The registry is then
/// cleared and holds what was read up to there, `errors` stays as it was, and the handler isn't called.
[[nodiscard]] ZO_API htl::status FileRead(std::wstring const& path, std::vector<htl::status>& errors,
                                          Filter const& filter = {}, UnknownHandler const& handler = {},
                                          TagPolicy const& policy = {});

/// Reads a file into `set` and clears nothing. Otherwise as `FileRead`. A null set is the current registry.
[[nodiscard]] ZO_API htl::status FileImport(std::wstring const& path, std::vector<htl::status>& errors,
                                            Filter const& filter, ZOSet* set, UnknownHandler const& handler = {},
                                            TagPolicy const& policy = {});

/// As `FileRead`, from the wide text that `StringWrite` makes. Further failure: message 90012 for a lone surrogate.
[[nodiscard]] ZO_API htl::status StringRead(std::wstring const& text, std::vector<htl::status>& errors,
                                            Filter const& filter = {}, UnknownHandler const& handler = {},
                                            TagPolicy const& policy = {});

/// As `FileImport`, from wide text.
[[nodiscard]] ZO_API htl::status StringImport(std::wstring const& text, std::vector<htl::status>& errors,
                                              Filter const& filter, ZOSet* set, UnknownHandler const& handler = {},
                                              TagPolicy const& policy = {});

} // namespace zo::xml
