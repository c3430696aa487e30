// The side of a node that another class describes, asked for a million times in a row.
#pragma once

#include "Common/model/IZO.h"

#include <cstddef>
#include <typeinfo>

namespace zo::impl {

/// `dynamic_cast<To*>` that remembers the last answer. The elements of an array are of one class, and the distance from
/// a node to its other base is the same in all objects of a class; searching for it takes longer than formatting a
/// value.
template <class To>
class CastCache {
public:
    To* operator()(IZO& node) {
        std::type_info const& type = typeid(node);
        // Two descriptions of one type only cost a search.
        if (&type != last) {
            To* const found = dynamic_cast<To*>(&node);
            last = &type;
            isOne = found != nullptr;
            if (isOne) distance = reinterpret_cast<std::byte*>(found) - reinterpret_cast<std::byte*>(&node);
            return found;
        }
        return At_(node);
    }

    /// The same without remembering another class.
    To* Recall(IZO& node) const { return &typeid(node) == last ? At_(node) : dynamic_cast<To*>(&node); }

private:
    To* At_(IZO& node) const {
        return isOne ? reinterpret_cast<To*>(reinterpret_cast<std::byte*>(&node) + distance) : nullptr;
    }

    std::type_info const* last = nullptr;
    bool isOne = false;
    std::ptrdiff_t distance = 0;
};

} // namespace zo::impl
