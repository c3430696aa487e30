// What can be told of nodes by their rows alone, so that a walk for links makes no node of a value that is none.
#pragma once

#include "Common/model/ZOWrapper.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/gid.h"

#include <cstddef>
#include <typeinfo>

namespace zo::clip::impl {

/// Whether nodes of the row hold a value that refers to nothing.
inline bool IsPlainRow(std::size_t row) {
    ZORegistryImpl const& tables = zo::impl::Current();
    if (!tables.HasRow(row) || tables.redirects[row] || tables.firstChildren[row] != IZO::npos) return false;
    auto const* const record = tables.dataTraits[row].AsAtomic();
    return record && record->linkGroup == 0 && *record->type != typeid(GGID);
}

/// Whether the elements of an array hold such values.
inline bool HasPlainElements(IZO const& array) {
    return zo::impl::Current().HasRow(array.RegID()) && IsPlainRow(SubRegID(array.RegID(), "[]"));
}

/// Whether the node's children are those of its row, neither more nor others. By address: a second description of the
/// type only costs the walk.
inline bool IsPlainStructure(IZO const& node) {
    return (&typeid(node) == &typeid(ZOWrapperStruct) || &typeid(node) == &typeid(ZOStructClone)) &&
           zo::impl::Current().HasRow(node.RegID());
}

/// Calls `visit` for each child of a node that is no array, in order, save those that hold a plain value.
template <class Visit>
void ForEachReference(H const& node, Visit const& visit) {
    if (!IsPlainStructure(*node)) {
        for (ZOFwrdIterator at = node->begin(); at.current; ++at)
            if (!IsPlainRow(at.current->RegID())) visit(at.current);
        return;
    }
    ZORegistryImpl const& tables = zo::impl::Current();
    for (std::size_t row = tables.firstChildren[node->RegID()]; row != IZO::npos; row = tables.nextSiblings[row])
        if (!IsPlainRow(row) && tables.stores[row]->IsAvailable())
            if (H const child = Find(node, tables.subNames[row])) visit(child);
}

} // namespace zo::clip::impl
