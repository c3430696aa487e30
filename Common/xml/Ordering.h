// The order of siblings in a document, where it is not that of their tags.
#pragma once

#include "support/export.h"

#include <string>

namespace zo::xml {

/// Orders elements of the current registry's documents, in the sequence of the calls: they are applied once, before the
/// first write, and calls after it change nothing. At first the children of a wrapper stand as they were registered,
/// all others by tag in UTF-16 order.
///
/// Paths hold the tags below the document element, with a "." before each, an array's element by its tag, too:
/// "Project.Points.Point.X". A path that leads nowhere is ignored.

/// Moves the element at `path` before all its siblings; so of two calls on siblings the later one stands first.
ZO_API void RegisterFirstOrdering(std::wstring const& path);
/// Exchanges the element at `a` with its sibling that has the last tag of `b`.
ZO_API void RegisterPersistanceOrdering(std::wstring const& a, std::wstring const& b);

} // namespace zo::xml
