// The bodies of the value views, for the sources that instantiate them.
#pragma once

#include "Common/model/ZOAtomicAccessImpl.h"
#include "Common/model/ZOWrapper.h"

#include "support/pool.h"

#include <cassert>
#include <cstddef>

namespace zo {

template <class T>
void ZOAccessWrapperValueType<T>::assert_() const {
    assert(!this->IsPrototype());
}

template <class T, class M>
IZO* ZOWrapperAtomicCustom<T, M>::RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) {
    return new ZOWrapperAtomicCustom(this->RegID(), this->Owner(), this->AccessTraits(), memory, manager);
}

template <class T, class M>
IZO* ZOWrapperAtomicCustom<T, M>::Clone() {
    return this->IsPrototype() ? this->EmptyClone() : Base::Clone();
}

template <class T, class M, class Custom>
IZO* ZOWrapperAtomic<T, M, Custom>::RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) {
    return new ZOWrapperAtomic(this->RegID(), this->Owner(), this->AccessTraits(), memory, manager);
}

template <class T, class M, class Custom>
htl::status ZOWrapperAtomic<T, M, Custom>::FormatRange(void const* first, void const* last, bool skipDefaults,
                                                       std::wstring& text, bool& allDefault) const {
    meta::MetaTraitsAtomic const& record = *this->AccessTraits().AsAtomic();
    htl::status result;
    T value{};
    // Formats the value at `place` and says whether it is at its default.
    auto const format = [&](void const* place, std::wstring& out) {
        record.read(place, &value);
        bool const isDefault = record.isDefault(&value);
        out.clear();
        if (isDefault && skipDefaults) return true;
        if (htl::status failure = record.toWide(&value, out, 0, nullptr); failure.IsError()) {
            out.clear();
            if (!result.IsError()) result = std::move(failure);
        }
        return isDefault;
    };

    allDefault = format(first, text);
    if (!last || last == first || record.byteSize == 0) return result;

    auto const* place = static_cast<std::byte const*>(first);
    std::size_t const count = static_cast<std::size_t>(static_cast<std::byte const*>(last) - place) / record.byteSize;
    text.reserve(5 * count);
    std::wstring scratch;
    for (std::size_t i = 1; i < count; ++i) {
        place += record.byteSize;
        allDefault = format(place, scratch) && allDefault;
        text += L',';
        text += scratch;
    }
    std::size_t const end = text.find_last_not_of(L',');
    text.resize(end == text.npos ? 0 : end + 1);
    return result;
}

template <class T, class M, class Custom>
void* ZOWrapperAtomic<T, M, Custom>::operator new(std::size_t size) {
    return htl::pool::Allocate(size);
}

template <class T, class M, class Custom>
void ZOWrapperAtomic<T, M, Custom>::operator delete(void* block, std::size_t size) {
    htl::pool::Free(block, size);
}

} // namespace zo

#define ZO_WRAPPER_ROW(T)                                                                                              \
    template class ZOAccessWrapperValueType<T>;                                                                        \
    template class ZOAtomicAccess<ZOAccessWrapperValueType<T>, ZOAtomicData<T>>;                                       \
    template class ZOWrapperAtomicCustom<T, T>;                                                                        \
    template class ZOWrapperAtomic<T>;
