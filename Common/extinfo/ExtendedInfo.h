// The table of labels and rules: reading it and joining it with what is registered.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <string>

namespace zo {

/// Reads a table into the current registry. `begin` and `end` bound the bytes of an XML document.
///
/// A second table may follow, with translated labels and descriptions. Reading needs no rows; it has to come before
/// `CompileExtendedInfo`. Failure: the document's own; a cell that can't be read ("Error with entry ..."), and the
/// store is as before; tags that come twice ("Duplicate entry ..."), and the rows are there.
ZO_API htl::status ZOExtendedInfoRead(void const* begin, void const* end);
/// The same from a file.
ZO_API htl::status ZOExtendedInfoRead(std::wstring const& file);

/// Joins the tables with what is registered: call it once, after `ZORegistry::OnPostRegistration` and the reads. From
/// then on labels, rules of visibility and views work.
///
/// It goes on after a failure and returns the last one; `docs/table.md` lists the messages. What it did stays done.
/// Cost: in proportion to rows and entries.
ZO_API htl::status CompileExtendedInfo();

} // namespace zo
