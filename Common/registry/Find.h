// Lookup by name and tag, and the text of names and tags, on the calling thread's current registry.
//
// Nothing here raises. A lookup that finds nothing gives an empty handle. Names count indices from 0, tags from 1. Any
// text is accepted, of any length.
#pragma once

#include "Common/registry/ZORegistry.h"

#include <string>

namespace zo {

/// The live node under a full name: "Soils[3].Cohesion", indices from 0. Empty if the name leads nowhere.
ZO_API H Find(std::string const& name);
/// Through `ZOSet::FormName`: `Find("Soils[$1].Cohesion", 3)`.
ZO_API H Find(std::string const& name, int a, int b = -1, int c = -1);
/// The child of a node, through the node's owner, or the current registry if it has none.
ZO_API H Find(H const& node, std::string const& name);
ZO_API H Find(ZOArray* array, std::size_t index);
/// A position at `child` in the walk over `parent`, told by row and sub-name; the end if it isn't there.
ZO_API ZOFwrdIterator Find(H const& parent, H const& child);

/// The live node under a tag path, from the top or from a node; indices count from 1. Empty if it leads nowhere. Narrow
/// text is UTF-8.
ZO_API H FindTag(std::wstring const& tag);
ZO_API H FindTag(std::string const& tag);
ZO_API H FindTag(H const& node, std::wstring const& tag);
ZO_API H FindTag(H const& node, std::string const& tag);

/// The registered node that a name leads to, indices ignored; null if there is none. Lives as long as the registry.
/// Follows redirects, for at most 1,000 steps.
ZO_API IZO* GetTemplate(std::string const& name);

/// The node `levels` levels up by name; 0 gives the node itself. Empty above a top-level node.
ZO_API H GetParent(H const& node, unsigned levels);
/// The child `name` of the node's parent.
ZO_API H GetSibling(H const& node, std::string const& name);
/// The child with the tag "Name".
ZO_API H GetNameZO(H const& node);
/// The child with the tag "ID".
ZO_API H GetIDZO(H const& node);
/// Follows a path of tags from a node. "@Parent." climbs one level, as often as it is repeated; an empty text gives the
/// node itself. A node without a name has nothing above it.
ZO_API H LookupRelative(H const& node, std::wstring const& path);

/// The last component of the node's tag path.
ZO_API std::wstring SimpleTag(H const& node);
/// Of the live node under `name`, else of its template; empty without either.
ZO_API std::wstring SimpleTag(std::string const& name);
/// The node's tag path.
ZO_API std::wstring FullTag(H const& node);
ZO_API std::wstring FullTag(std::string const& name);
/// The last component of a tag.
ZO_API std::wstring SubTag(std::wstring const& tag);
/// The tag path of a name, as far as its components are found.
ZO_API std::wstring TagFromName(std::string const& name);
/// Whether two names lead to the same template; two unknown names match.
ZO_API bool IsMatching(std::string const& a, std::string const& b);

} // namespace zo
