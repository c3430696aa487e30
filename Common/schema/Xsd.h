// The project document of the current registry as an XML Schema 1.0, by which other tools can check a file.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <string>

namespace zo::schema {

/// Writes an XML Schema that every document of the current registry is valid by, parts of it that a filter selected
/// included. `docs/schema.md` says what it promises and what no schema can tell.
///
/// Call it after `ZORegistry::OnPostRegistration`, and after the orderings of the document are registered: as a first
/// save does, it settles the order of the document. Reads no values. Failure: those of `sys::file::XmlFileWrite`; the
/// old file is then untouched.
/// Cost: in proportion to rows and the words of enumerations; the schema is built in memory.
[[nodiscard]] ZO_API htl::status SaveXsd(std::wstring const& path);
/// Replaces `utf8` by the same document; empty after a failure, which is that of `sys::file::XmlStringWrite`.
[[nodiscard]] ZO_API htl::status XsdText(std::string& utf8);

} // namespace zo::schema
