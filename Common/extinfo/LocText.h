// The texts of the table for translators: labels and descriptions, and nothing else.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <string>

namespace zo {

/// Writes the labels and descriptions of the current registry's table into a file, in which they are translated. The
/// translated file is read as the second table.
///
/// `earlier` names the file of an earlier translation, empty for none: its texts take the place of the table's own
/// where the tag is still there; an empty text takes no place, and tags that are gone are dropped. `file` is written as
/// a whole or not at all, and may be the same file. Source of truth: the entries as they stand in memory, in their
/// order, every one with a label or a description. An entry that has taken a text over from another one, which looking
/// labels up does, is written with it: merge before that. Before compilation merge with one table read only, or each
/// tag that both have comes twice. Failure: "No labels or descriptions found in metadata"; that of reading `earlier`;
/// "Could not write to file:" and the reason. Cost: linear in the rows of the table and of the earlier file.
[[nodiscard]] ZO_API htl::status MergeExtendedInfoLocTextToFile(std::wstring const& earlier, std::wstring const& file);

} // namespace zo
