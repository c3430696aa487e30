// Which live nodes take part in a document.
#pragma once

#include "Common/model/IZO.h"

namespace zo::xml::impl {

/// Whether the node's data belong in a document: the store of its row is active, or it is a parent that nobody
/// registered, whose children decide. A node without a row counts only as an alias of an active node. An empty handle
/// doesn't.
bool IsActive(H const& node);

} // namespace zo::xml::impl
