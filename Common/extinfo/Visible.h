// Whether a node shows in a view, for an analysis and in a mode.
//
// A query is one integer: the views asked for (`viewmask::views`), or `viewmask::ignoreViews`, with the bits of the
// analysis and of the mode. A query without bits of analyses or of modes sees nothing.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"
#include "Common/model/IZO.h"

#include <cstddef>

namespace hzn::apptype {

/// What the application analyses. The numbers are fixed; the words are those of the table's column Physics.
enum Value : int { Solute = 0, Dynamic, Water, Stress, Slope, Heat, Air, AllPhysics, Project, Any = 0x7FFFFFFF };

} // namespace hzn::apptype

namespace hzn::appmode {

/// What the user does: defining the model, or looking at results.
enum Value : int { Define = 0, Contour, Any = 0x7FFFFFFF };

} // namespace hzn::appmode

namespace zo {

/// Whether the entry of a registered node lets it show. Before a table is compiled nothing does; after a compilation
/// that failed in its checks, the entry "Default" speaks for all. Cost: after the first question about a row a read and
/// three bit tests.
ZO_API bool IsVisible(std::size_t regID, int query);
/// The same for any node, with the rule of its type, which is asked each time. False for an empty handle.
ZO_API bool IsVisible(H const& node, int query);
/// Whether the rule of the node's type lets people change it; of an alias its source's. The table takes no part.
ZO_API bool IsEditable(H const& node);

namespace visible {

/// The bits of an analysis: its own, or those of all for `Any`, `AllPhysics` and unknown numbers.
ZO_API int Mask(hzn::apptype::Value analysis);
/// The bits of a mode, or of both for `Any` and unknown numbers.
ZO_API int Mask(hzn::appmode::Value mode);

namespace impl {

/// Whether an entry's mask answers a query.
constexpr bool Passes(std::uint32_t mask, std::uint32_t query) noexcept {
    std::uint32_t const both = mask & query;
    if (!(query & viewmask::ignoreViews) && !(both & viewmask::views)) return false;
    return (both & viewmask::physics) && (both & viewmask::modes);
}
/// The node whose type's rules count: what an alias stands for, any other node itself; empty without a source and in a
/// circle.
H RuleTarget(H node);
/// The second layer of visibility: the entry of a node that has no row or redirects, and the rule of its type.
bool PassesAtRunTime(H const& node, int query);

} // namespace impl
} // namespace visible
} // namespace zo
