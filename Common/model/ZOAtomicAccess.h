// Value nodes: one body of value operations for every value type and every kind of storage.
//
// The templates decide only the order of things: convert, compare, validate, store. All knowledge of a type stands in
// its descriptor. They are instantiated once, in the library, for the thirteen value types.
#pragma once

#include "Common/model/IZO.h"

#include "support/describe.h"

#include <string>
#include <utility>

namespace zo {

/// A node that carries the description of its value type itself.
class ZO_API ZOAccessTraits : public IZO {
public:
    /// With the traits that it has until it is registered.
    ZOAccessTraits(std::size_t regID, ZOSet* owner, meta::MetaDataTraits traits)
        : IZO(regID, owner, npos), traits(std::move(traits)) {}

    meta::MetaDataTraits GetDataTraits() const override;
    /// The traits by reference, for the library's own value operations.
    meta::MetaDataTraits const& AccessTraits() const noexcept { return traits; }

protected:
    ~ZOAccessTraits() override;
    /// Takes over the row's traits.
    void OnRegistration(std::size_t regID) override;

private:
    meta::MetaDataTraits traits;
};

/// A value node whose value is reached through two virtuals.
template <class T>
class ZO_API ZOAccessDataVMT : public ZOAccessTraits {
public:
    using ZOAccessTraits::ZOAccessTraits;
    /// The value now.
    virtual T GetData() const = 0;
    /// Stores a value that was converted and checked.
    virtual htl::status SetData(T const& value) = 0;
};

/// How the value of another node of the same value type is reached.
template <class T>
class ZO_API IZOKind {
public:
    /// The value now.
    virtual T GetData() const = 0;

protected:
    ~IZOKind() = default;
};

template <class T>
class ZOAtomicData;

/// The value type of a data class, known while the class is still incomplete.
template <class Data>
struct DataOf;
template <class T>
struct DataOf<ZOAtomicData<T>> {
    /// The value type.
    using type = T;
};

/// All value operations, over an Access that has `GetData`, `SetData` and the traits, with Data as the detached form.
///
/// Set: converts into a temporary; a value equal to the present one succeeds at once, without a check; then the check,
/// then the store. Floating point values are equal when neither is less, so a NaN equals everything. A failure leaves
/// the value as it was.
template <class Access, class Data>
class ZO_API ZOAtomicAccess : public Access, public IZOKind<typename DataOf<Data>::type> {
public:
    /// The value type.
    using T = typename DataOf<Data>::type;
    using Access::Access;
    using IZO::Get;
    using IZO::Set;

    /// By the functions of the type.
    bool IsDefault() const override;
    htl::status Verify() const override;
    /// Stores the default, without comparison or check. A failed store is dropped.
    void Clear() override;
    htl::status Set(double const& value) override;
    htl::status Set(__int64 const& value) override;
    htl::status Set(bool const& value) override;
    htl::status Set(std::wstring const& value) override;
    /// The conversion's output goes straight to `value`.
    htl::status Get(double& value) override;
    htl::status Get(__int64& value) override;
    htl::status Get(bool& value) override;
    htl::status Get(std::wstring& value) override;
    IZO* Clone() override;
    IZO* EmptyClone() override;
    /// Only from a node of exactly the same value type; any other fails with `not_supported("")`.
    htl::status Assign(H const& source) override;

protected:
    /// On a copy of the value, which is written back if it changed.
    htl::status CallValueTypeTrait(IZOAccessValueTypeTrait& trait) override;

private:
    // Through the Access: a virtual call on a detached value, a direct read on a view of memory.
    T Value_() const { return static_cast<Access const&>(*this).GetData(); }
    meta::MetaTraitsAtomic const& Record_() const { return *Access::AccessTraits().AsAtomic(); }
    htl::status Write_(T const& candidate);
};

} // namespace zo
