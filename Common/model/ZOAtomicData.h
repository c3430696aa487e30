// Detached values: nodes that hold their value themselves, and nodes whose value a policy works out.
#pragma once

#include "Common/model/ZOAtomicAccess.h"

namespace zo {

/// A value held in the node.
template <class T>
class ZO_API ZOAtomicData : public ZOAtomicAccess<ZOAccessDataVMT<T>, ZOAtomicData<T>> {
    using Base = ZOAtomicAccess<ZOAccessDataVMT<T>, ZOAtomicData<T>>;

public:
    /// With the default of the type. `traits` must describe an atomic type whose row is T.
    ZOAtomicData(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits);
    /// With this value.
    ZOAtomicData(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, T const& value);

    /// The value held.
    T GetData() const override;
    /// Stores `value`; always succeeds.
    htl::status SetData(T const& value) override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);

private:
    T value;
};

/// A value that a Policy reads and writes: `T Policy::GetData(IZO const*) const` and
/// `htl::status Policy::SetData(IZO*, T const&)`. Its clones are detached values.
template <class Policy, class Access>
class ZOAtomicCustom;

/// For a policy over values of type T.
template <class Policy, class T>
class ZOAtomicCustom<Policy, ZOAccessDataVMT<T>> : public ZOAtomicAccess<ZOAccessDataVMT<T>, ZOAtomicData<T>> {
    using Base = ZOAtomicAccess<ZOAccessDataVMT<T>, ZOAtomicData<T>>;

public:
    /// `traits` must describe an atomic type whose row is T.
    ZOAtomicCustom(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, Policy policy = {})
        : Base(regID, owner, traits), policy(std::move(policy)) {}

    /// Through the policy.
    T GetData() const override { return policy.GetData(this); }
    htl::status SetData(T const& value) override { return policy.SetData(this, value); }

private:
    Policy policy;
};

/// The length of the array that the node's name stands below: what "Len" of an array reads and writes.
///
/// The array is found by the node's parent name. Without owner or array the length is 0 and a write fails with
/// `not_supported("Len")`; so it is for a node without an entry, as while a document is read.
struct ZO_API ZOArrayLenPolicy {
    /// The length of the array of `node`.
    htl::UInt64 GetData(IZO const* node) const;
    /// Resizes the array of `node`.
    htl::status SetData(IZO* node, htl::UInt64 const& length) const;
};

// Bases first: what a derived instantiation brought about implicitly could no longer be declared.
extern template class ZO_API ZOAccessDataVMT<unsigned char>;
extern template class ZO_API ZOAccessDataVMT<int>;
extern template class ZO_API ZOAccessDataVMT<unsigned>;
extern template class ZO_API ZOAccessDataVMT<long>;
extern template class ZO_API ZOAccessDataVMT<unsigned long>;
extern template class ZO_API ZOAccessDataVMT<float>;
extern template class ZO_API ZOAccessDataVMT<double>;
extern template class ZO_API ZOAccessDataVMT<htl::Int64>;
extern template class ZO_API ZOAccessDataVMT<htl::UInt64>;
extern template class ZO_API ZOAccessDataVMT<bool>;
extern template class ZO_API ZOAccessDataVMT<std::string>;
extern template class ZO_API ZOAccessDataVMT<std::wstring>;
extern template class ZO_API ZOAccessDataVMT<DataParamType>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<unsigned char>, ZOAtomicData<unsigned char>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<int>, ZOAtomicData<int>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<unsigned>, ZOAtomicData<unsigned>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<long>, ZOAtomicData<long>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<unsigned long>, ZOAtomicData<unsigned long>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<float>, ZOAtomicData<float>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<double>, ZOAtomicData<double>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<htl::Int64>, ZOAtomicData<htl::Int64>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<htl::UInt64>, ZOAtomicData<htl::UInt64>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<bool>, ZOAtomicData<bool>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<std::string>, ZOAtomicData<std::string>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<std::wstring>, ZOAtomicData<std::wstring>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessDataVMT<DataParamType>, ZOAtomicData<DataParamType>>;
extern template class ZO_API ZOAtomicData<unsigned char>;
extern template class ZO_API ZOAtomicData<int>;
extern template class ZO_API ZOAtomicData<unsigned>;
extern template class ZO_API ZOAtomicData<long>;
extern template class ZO_API ZOAtomicData<unsigned long>;
extern template class ZO_API ZOAtomicData<float>;
extern template class ZO_API ZOAtomicData<double>;
extern template class ZO_API ZOAtomicData<htl::Int64>;
extern template class ZO_API ZOAtomicData<htl::UInt64>;
extern template class ZO_API ZOAtomicData<bool>;
extern template class ZO_API ZOAtomicData<std::string>;
extern template class ZO_API ZOAtomicData<std::wstring>;
extern template class ZO_API ZOAtomicData<DataParamType>;

} // namespace zo
