// The persist tree of each registry: what a document of it holds, in which form and order.
#pragma once

#include "Common/xml/PersistEntry.h"

#include <string>
#include <utility>

namespace zo::xml::impl {

/// Adds the node of a fresh row to the current registry's tree, below the entries that `tagName` leads through; nothing
/// for an empty tag path or one with a missing step. A registry that has a tree stays alive until the process ends.
/// Cost: independent of the number of siblings.
void AddPersistEntry(H const& node, std::wstring const& tagName);

/// The root entries of the current registry's tree, which is made at first need; in practice one, of the registry's
/// root. `ordered` asks for document order, which is settled once: entries that come later stay at the end.
/// Valid until the next row is registered.
ZO_API std::pair<ZOPersistEntry*, ZOPersistEntry*> PersistRoots(bool ordered);

} // namespace zo::xml::impl
