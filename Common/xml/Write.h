// Saving: the current registry, or a part of it, as a document.
#pragma once

#include "Common/model/IZO.h"

#include "support/version.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zo {
namespace xml {

/// Writes the current registry into a file, in UTF-8. `version` is that of the document format and goes into the
/// attribute "Version". A file that is there is replaced only when the new one is complete.
///
/// What is written: every node that persists and whose store is active, in the order of the persist tree. A value that
/// can't be read is left out. An array without elements is left out, too. Nodes, names and entries stay as they are.
/// Failure: those of `sys::file::XmlFileWrite`; the old file is then untouched.
[[nodiscard]] ZO_API htl::status FileWrite(std::wstring const& path, hzn::version::NumberKind<0> const& version);

/// Replaces `text` by the document in wide text, whose declaration names UTF-16; empty after a failure.
///
/// `reserve` is how many bytes of UTF-8 are expected, 0 if that is not known. The text is allocated once in any case,
/// so all that it does is that above the greatest signed 64-bit integer std::length_error is thrown. `filter` null:
/// everything. Else only what its texts select: each selects the node that it names, all above and all below it. Texts
/// are compared as prefixes of paths such as "HZNData.Items[2]", letter for letter and in both directions, so
/// "HZNData.Ab" selects "HZNData.Abc", too. Where a text names an entry of an array, the other entries are written
/// without attributes and children, so that each keeps its place. An empty list selects nothing, which is a failure,
/// since a document needs its document element; an empty text selects everything. Failure: those of
/// `sys::file::XmlTextWrite`.
[[nodiscard]] ZO_API htl::status StringWrite(std::wstring& text, hzn::version::NumberKind<0> const& version,
                                             std::size_t reserve = 0,
                                             std::vector<std::wstring> const* filter = nullptr);

/// The text that selects `node` in a filter: "HZNData." and its tag path, indices from 1. An empty handle gives a text
/// that selects no node.
ZO_API std::wstring TransformForWriteFilterList(H const& node);

namespace rootattribute {

/// "AppVersion": the version of the application that wrote the document.
ZO_API std::wstring AppVersion();
/// "Version": the version of the document format.
ZO_API std::wstring FileVersion();

} // namespace rootattribute
} // namespace xml

/// Whether what `a` would save is matched by `b`: the values of all persisted nodes under `a` have the same text under
/// `b`. What only `b` has goes unnoticed. Where `b`, or a node under it, is missing, the value has to be at its
/// default. An empty `a` and one that doesn't persist are matched by anything.
ZO_API bool AreZOsIdenticalUsingPersistance(H const& a, H const& b);

} // namespace zo
