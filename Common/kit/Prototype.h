// Prototypes: the nodes that are registered for the parts of an object.
//
// For modules that register rows by hand. The declarations of the kit make their own.
#pragma once

#include "Common/model/ZOArray.h"
#include "Common/model/ZOWrapper.h"

#include "support/describe.h"

#include <cstddef>
#include <type_traits>

namespace zo::kit::prototype {

namespace impl {

template <class T>
inline constexpr bool isContainer = requires {
    meta::impl::ContainerShape<T>::contiguous;
};

/// What the prototype of a member has for memory: the offset in its parent.
inline void* AsMemory(std::size_t offset) noexcept { return reinterpret_cast<void*>(offset); }

} // namespace impl

/// Of a single value of type T: a view of its row type.
template <class T>
requires meta::ValueType<T> || meta::EnumType<T> H Value(meta::MetaDataTraits const& traits, std::size_t offset = 0) {
    return H(new ZOWrapperAtomic<meta::RowOf<T>>(IZO::npos, nullptr, traits, impl::AsMemory(offset), {}));
}

/// Of a structure.
inline H Struct(meta::MetaDataTraits const& traits, std::size_t offset = 0) {
    return H(new ZOWrapperStruct(IZO::npos, nullptr, traits, impl::AsMemory(offset), {}));
}

/// Of a container, with A as the class of its view.
template <class A = ZOArrayWrapper>
H Array(meta::MetaDataTraits const& traits, std::size_t offset = 0) {
    htl::handle<ZOMemMgr> const manager(new ZOArrayMemMgr(impl::AsMemory(offset), traits));
    return H(new A(IZO::npos, nullptr, {}, manager));
}

/// Of a T at an offset, whatever T is: a value, a container with a description by `meta::ArrayTraits`, or else a
/// structure. `traits` are those of T.
template <class T>
H Part(meta::MetaDataTraits const& traits, std::size_t offset = 0) {
    if constexpr (meta::ValueType<T> || meta::EnumType<T>)
        return Value<T>(traits, offset);
    else if constexpr (impl::isContainer<T>)
        return Array(traits, offset);
    else
        return Struct(traits, offset);
}

/// Of a member.
template <class S, class M>
H Member(M S::*member, meta::MetaDataTraits const& traits) {
    return Part<M>(traits, meta::OffsetOf(member));
}

/// Of the elements of an array: the row "[]".
template <class E>
H Element(meta::MetaDataTraits const& traits) {
    return Part<E>(traits);
}

/// Of a top-level object, whose store gives the memory.
template <class S>
H Object(meta::MetaDataTraits const& traits) {
    return Part<S>(traits);
}

} // namespace zo::kit::prototype
