// The registry described for people and tools: what is registered, of which type, in which units, under which labels.
//
// Nothing of it is a value, so a file of it says the same for every project of an application. It is read by tools that
// need the whole tree without running the application's modules; `docs/schema.md` lists its columns.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <cstddef>
#include <string>

namespace zo::schema {

/// Writes one element for each row of the current registry, in the order of registration, the root first. Each row of
/// an enumeration is followed by its words, save for the first word.
///
/// Call it after `ZORegistry::OnPostRegistration` and, if there is a table of labels, after `CompileExtendedInfo`.
/// Reads no values. Failure: those of `sys::file::XmlFileWrite`; the old file is then untouched.
/// Cost: in proportion to rows and words.
[[nodiscard]] ZO_API htl::status Save(std::wstring const& path);
/// The same for what shows in the view: its rows depth first, without the root. The walk always starts at the root;
/// `regID` takes no part.
[[nodiscard]] ZO_API htl::status Save(std::size_t regID, std::wstring const& path);

} // namespace zo::schema
