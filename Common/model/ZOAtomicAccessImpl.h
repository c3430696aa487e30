// The bodies of the value operations, for the sources that instantiate them.
#pragma once

#include "Common/model/ZOAccessTrait.h"
#include "Common/model/ZOAtomicAccess.h"
#include "Common/model/ZOAtomicData.h"

#include <concepts>
#include <typeinfo>

namespace zo {
namespace impl {

/// The rule by which a write is left out. Neither less nor greater: a NaN equals everything, and so do the two zeros.
template <class T>
bool SameValue(T const& a, T const& b) {
    if constexpr (std::floating_point<T>)
        return !(a < b) && !(a > b);
    else
        return a == b;
}

} // namespace impl

template <class Access, class Data>
bool ZOAtomicAccess<Access, Data>::IsDefault() const {
    T const value = Value_();
    return Record_().isDefault(&value);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Verify() const {
    T value = Value_();
    return ZOAccessIsValidTrait(&Access::AccessTraits(), this).CallValueTypeTrait(&value);
}

template <class Access, class Data>
void ZOAtomicAccess<Access, Data>::Clear() {
    T value{};
    Record_().setDefault(&value);
    (void)static_cast<Access&>(*this).SetData(value); // nobody to tell: a value that can't be stored stays
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Set(double const& value) {
    T candidate{};
    if (htl::status failure = Record_().fromDouble(value, &candidate); failure.IsError()) return failure;
    return Write_(candidate);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Set(__int64 const& value) {
    T candidate{};
    if (htl::status failure = Record_().fromInt64(value, &candidate); failure.IsError()) return failure;
    return Write_(candidate);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Set(bool const& value) {
    T candidate{};
    if (htl::status failure = Record_().fromBool(value, &candidate); failure.IsError()) return failure;
    return Write_(candidate);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Set(std::wstring const& value) {
    T candidate{};
    if (htl::status failure = Record_().fromWide(value, &candidate, 0, nullptr); failure.IsError()) return failure;
    return Write_(candidate);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Get(double& value) {
    T const present = Value_();
    return Record_().toDouble(&present, value);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Get(__int64& value) {
    T const present = Value_();
    return Record_().toInt64(&present, value);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Get(bool& value) {
    T const present = Value_();
    return Record_().toBool(&present, value);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Get(std::wstring& value) {
    T const present = Value_();
    return Record_().toWide(&present, value, 0, nullptr);
}

template <class Access, class Data>
IZO* ZOAtomicAccess<Access, Data>::Clone() {
    return new Data(this->RegID(), this->Owner(), Access::AccessTraits(), Value_());
}

template <class Access, class Data>
IZO* ZOAtomicAccess<Access, Data>::EmptyClone() {
    return new Data(this->RegID(), this->Owner(), Access::AccessTraits());
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Assign(H const& source) {
    // A commit hands over detached values, and the search for a base class takes longer than all the rest.
    if (IZO const* const node = source.get(); node && &typeid(*node) == &typeid(ZOAtomicData<T>))
        return Write_(static_cast<ZOAtomicData<T> const*>(node)->GetData());
    auto const* const kind = dynamic_cast<IZOKind<T> const*>(source.get());
    if (!kind) return ZOError::not_supported("");
    return Write_(kind->GetData());
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::CallValueTypeTrait(IZOAccessValueTypeTrait& trait) {
    T const old = Value_();
    T value = old;
    htl::status result = trait.CallValueTypeTrait(&value);
    if (!result.IsError() && !impl::SameValue(value, old)) result = Write_(value);
    return trait.ConvertUnitsInStatusToVisible(result);
}

template <class Access, class Data>
htl::status ZOAtomicAccess<Access, Data>::Write_(T const& candidate) {
    // Equal before valid: a stored value is never refused.
    if (impl::SameValue(Value_(), candidate)) return {};
    T checked = candidate;
    ZOAccessIsValidTrait validity(&Access::AccessTraits(), this);
    if (htl::status failure = validity.CallValueTypeTrait(&checked); failure.IsError()) return failure;
    return static_cast<Access&>(*this).SetData(candidate);
}

} // namespace zo
