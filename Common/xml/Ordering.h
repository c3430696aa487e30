// The order of siblings in a document, where it is not that of their tags.
//
// At first the children of a wrapper stand as they were registered, all others by tag in UTF-16 order. Orderings change
// that. They belong to the registry that is current when they are registered, and are applied in the sequence of the
// calls, once, before the first write; calls after it change nothing.
#pragma once

#include "support/export.h"

#include <string>

namespace zo::xml {

/// Moves the element at `path` before all its siblings; so of two calls on siblings the later one stands first.
///
/// A path holds the tags below the document element, with a "." between each two, an array's element by its tag, too:
/// "Project.Points.Point.X". One that leads nowhere is ignored.
ZO_API void RegisterFirstOrdering(std::wstring const& path);

/// Exchanges the element at `a` with its sibling that has the last tag of `b`. Paths are as above.
ZO_API void RegisterPersistanceOrdering(std::wstring const& a, std::wstring const& b);

} // namespace zo::xml
