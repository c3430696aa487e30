// The tree as people see it: nodes moved, shown twice, spliced or hidden as the table says.
//
// `query` is that of `IsVisible`. A search that finds nothing gives an empty handle or an empty text. Any text is
// accepted, of any length; paths of more than 4,096 components lead nowhere.
#pragma once

#include "Common/present/NameParts.h"
#include "Common/view/ZOFwrdViewIterator.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zo::view {

/// A position in a walk over what people see below a node.
using ZOFwrdViewIterator = impl::ZOFwrdViewIterator;

/// The view children of a node, for a range `for`.
class ZO_API Children {
public:
    /// Of `node` as a query sees it.
    Children(H node, int query) : node(std::move(node)), query(query) {}
    /// The first child, or the end.
    ZOFwrdViewIterator begin() const { return {node, query}; }
    /// Behind the last child.
    ZOFwrdViewIterator end() const { return {}; }

private:
    H node;
    int query;
};

/// Levels that `Walk` goes down.
inline constexpr unsigned deepest = 64;
/// Calls `visit` for everything below `node` in the view, depth first, with its level from 0. What `visit` answers no
/// for is not entered. Nothing below level `deepest` - 1 is visited.
///
/// Links, aliases and splices may lead in a circle: what leads to a node around it is visited and not entered. They may
/// also lead to each other in very many ways: of what stands below them, and below what a list shows in each element
/// of an array, at most 2,000,000 nodes are visited.
///
/// Cost: for each node what finding it by name costs, and its rule of visibility.
ZO_API void Walk(H const& node, int query, std::function<bool(H const& node, unsigned level)> const& visit);

/// Appends every view child of a node, in order.
ZO_API void VisibleSubFields(std::vector<H>& fields, H const& node, int query);
/// Whether the node has a tag and shows.
ZO_API bool IsValid(H const& node, int query);
/// The node with a tag below another, by its place in the registry or in the view, if it shows. Cost: a lookup; for a
/// node that only the view has in this place, a walk over the children.
ZO_API H FindTag(H const& node, std::wstring const& tag, int query);
/// The node under a tag path, component by component. Indices count from 1: "Soils[2].Cohesion".
ZO_API H FindTag(std::wstring const& tag, int query);

/// A node, the label of the pattern that it was found by, and the pieces of its name.
struct ZONameParts {
    H node;                       ///< that was found
    std::wstring label;           ///< of the pattern, with indices in place
    std::vector<NameParts> parts; ///< of its name
};
/// Expands pairs of pattern and label into the nodes that they name.
///
/// A pattern is a path of components with "." between them. The first one may have indices ("Soils[2].Cohesion"), below
/// it an index is a component of its own ("Project.Soils.[2].Cohesion"). A component with "$" stands for all view
/// children. For those of an array the label gets their index, from 0, in place of its text from "$" to "]"; where they
/// have a field with the tag "ID", each stands for the record of that number.
///
/// Patterns may lead in circles: at most 1,000,000 nodes are looked at for wildcards, and more than 64 wildcards in
/// one pattern lead nowhere.
ZO_API std::vector<ZONameParts> FindAllMatching(std::vector<std::pair<std::wstring, std::wstring>> const& patterns,
                                                int query);

} // namespace zo::view

namespace zo {

/// The pieces of the name under which `node` is reached by the patterns, in the definition of a slope analysis whatever
/// the view; empty if it is not. Bounded as `view::FindAllMatching`.
ZO_API std::vector<NameParts>
GetModifierViewTraversalName(H const& node, std::vector<std::pair<std::wstring, std::wstring>> const& patterns);
/// The path of view tags that a dotted name stands for, from `start` or, if that is empty, from the root. Empty if a
/// part of the name leads nowhere. Parts are matched by the entry of the table that speaks for them.
ZO_API std::wstring FullTagFromView(std::string const& name, int query, H const& start);

} // namespace zo
