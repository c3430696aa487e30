// Views on client memory: nodes that own no value and read and write through a pointer.
//
// A view is made from a prototype, which the registry keeps for each row. The prototype of a member holds no address
// but the member's offset in its parent; a live view arises by remapping it onto real memory.
#pragma once

#include "Common/model/ZOAtomicData.h"
#include "Common/model/ZOMemMgr.h"

#include <cstdint>

namespace zo {

/// What every wrapper is beside its node.
class ZO_API IZOWrapper {
public:
    /// Counts one wrapper over the memory of `manager`, which may be empty.
    IZOWrapper(void* memory, htl::handle<ZOMemMgr> const& manager);
    IZOWrapper(IZOWrapper const& other);
    IZOWrapper& operator=(IZOWrapper const&) = delete;
    virtual ~IZOWrapper();

    /// A new view of the same row over `memory`: wrap it in a handle at once. The client keeps the memory alive as long
    /// as the view.
    virtual IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) = 0;

    /// The wrapped object; in a prototype, the offset in the parent.
    void* Memory() const noexcept { return memory; }
    /// Who guards the memory that the object lies in; may be empty.
    htl::handle<ZOMemMgr> const& Manager() const noexcept { return manager; }
    /// The address of the part that a prototype of a member stands for, in an object at `base`.
    void* MemberOf(void* base) const noexcept;

private:
    // Moves one view along the elements of its array, so that long texts need no node for each value.
    friend class ZOArrayWrapper;

    void* memory;
    htl::handle<ZOMemMgr> manager;
};

/// A wrapper with the description of the wrapped type.
class ZO_API ZOWrapperBase : public IZO, public IZOWrapper {
public:
    /// `memory` is described by `traits`; of a prototype it is the offset in the parent. `manager` may be empty.
    ZOWrapperBase(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                  htl::handle<ZOMemMgr> const& manager);

    meta::MetaDataTraits GetDataTraits() const override;
    /// The traits of the wrapped type, by reference.
    meta::MetaDataTraits const& AccessTraits() const noexcept { return traits; }
    /// A registered prototype is undefined, since it has no memory.
    bool IsUndefined() const override;
    /// Puts every atomic part of the memory to its default; containers keep their shape.
    void Clear() override;

    /// Whether this is the registered prototype of its row.
    bool IsPrototype() const noexcept { return prototype; }

protected:
    ~ZOWrapperBase() override;
    /// Takes over the row's traits.
    void OnRegistration(std::size_t regID) override;

private:
    meta::MetaDataTraits traits;
    bool prototype = false;
};

/// The view of a structure: its members are views at their offsets.
class ZO_API ZOWrapperStruct : public ZOWrapperBase {
public:
    /// As `ZOWrapperBase`.
    ZOWrapperStruct(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                    htl::handle<ZOMemMgr> const& manager);

    /// The detached form: a `ZOStructClone`.
    IZO* Clone() override;
    IZO* EmptyClone() override;
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);

protected:
    H GetSubZO(std::string const& name) override;
};

/// The detached form of a structure: identity alone. Its members are clones of their prototypes.
class ZO_API ZOStructClone : public IZO {
public:
    /// Of the row `regID`.
    ZOStructClone(std::size_t regID, ZOSet* owner);
    IZO* Clone() override;
    IZO* EmptyClone() override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);
};

/// Reads and writes a value in client memory with the functions of its descriptor.
template <class T>
class ZO_API ZOAccessWrapperValueType : public ZOWrapperBase {
public:
    using ZOWrapperBase::ZOWrapperBase;

    /// The value in memory. A prototype has none: asserted in debug builds.
    T GetData() const {
        assert_();
        T value{};
        this->AccessTraits().AsAtomic()->read(this->Memory(), &value);
        return value;
    }
    /// Writes it to memory; always succeeds.
    htl::status SetData(T const& value) {
        assert_();
        this->AccessTraits().AsAtomic()->write(this->Memory(), &value);
        return {};
    }

private:
    // A prototype has an offset where a view has memory: reading it is a programming error.
    void assert_() const;
};

/// A value node that can format values straight from client memory.
///
/// Nothing but its memory ties such a node to a place: an array may move one view along its elements.
class ZO_API IZOSimple {
public:
    /// Replaces `text` by the values from `first` to before `last`, separated by ",". With `last` null or equal to
    /// `first`: the one value at `first`. A value at its default leaves an empty place when `skipDefaults` is set.
    /// Commas at the end of a run are cut. `allDefault` receives whether every value is at its default. Values stand
    /// the client type's byte size apart. The first failure of a value is returned; its place stays empty and the rest
    /// is formatted.
    virtual htl::status FormatRange(void const* first, void const* last, bool skipDefaults, std::wstring& text,
                                    bool& allDefault) const = 0;

protected:
    ~IZOSimple() = default;
};

/// A value view of row T over client memory of type M, as the descriptor's read and write know it.
template <class T, class M>
class ZO_API ZOWrapperAtomicCustom : public ZOAtomicAccess<ZOAccessWrapperValueType<T>, ZOAtomicData<T>> {
    using Base = ZOAtomicAccess<ZOAccessWrapperValueType<T>, ZOAtomicData<T>>;

public:
    using Base::Base;
    /// The value in memory.
    T GetData() const override { return ZOAccessWrapperValueType<T>::GetData(); }
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override;
    /// A registered prototype gives the default value.
    IZO* Clone() override;
};

/// A value view that formats values straight from memory.
template <class T, class M = T, class Custom = ZOWrapperAtomicCustom<T, M>>
class ZO_API ZOWrapperAtomic : public Custom, public IZOSimple {
public:
    using Custom::Custom;
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override;
    htl::status FormatRange(void const* first, void const* last, bool skipDefaults, std::wstring& text,
                            bool& allDefault) const override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);
};

extern template class ZO_API ZOAccessWrapperValueType<unsigned char>;
extern template class ZO_API ZOAccessWrapperValueType<int>;
extern template class ZO_API ZOAccessWrapperValueType<unsigned>;
extern template class ZO_API ZOAccessWrapperValueType<long>;
extern template class ZO_API ZOAccessWrapperValueType<unsigned long>;
extern template class ZO_API ZOAccessWrapperValueType<float>;
extern template class ZO_API ZOAccessWrapperValueType<double>;
extern template class ZO_API ZOAccessWrapperValueType<htl::Int64>;
extern template class ZO_API ZOAccessWrapperValueType<htl::UInt64>;
extern template class ZO_API ZOAccessWrapperValueType<bool>;
extern template class ZO_API ZOAccessWrapperValueType<std::string>;
extern template class ZO_API ZOAccessWrapperValueType<std::wstring>;
extern template class ZO_API ZOAccessWrapperValueType<DataParamType>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<unsigned char>, ZOAtomicData<unsigned char>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<int>, ZOAtomicData<int>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<unsigned>, ZOAtomicData<unsigned>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<long>, ZOAtomicData<long>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<unsigned long>, ZOAtomicData<unsigned long>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<float>, ZOAtomicData<float>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<double>, ZOAtomicData<double>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<htl::Int64>, ZOAtomicData<htl::Int64>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<htl::UInt64>, ZOAtomicData<htl::UInt64>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<bool>, ZOAtomicData<bool>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<std::string>, ZOAtomicData<std::string>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<std::wstring>, ZOAtomicData<std::wstring>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessWrapperValueType<DataParamType>, ZOAtomicData<DataParamType>>;
extern template class ZO_API ZOWrapperAtomicCustom<unsigned char, unsigned char>;
extern template class ZO_API ZOWrapperAtomicCustom<int, int>;
extern template class ZO_API ZOWrapperAtomicCustom<unsigned, unsigned>;
extern template class ZO_API ZOWrapperAtomicCustom<long, long>;
extern template class ZO_API ZOWrapperAtomicCustom<unsigned long, unsigned long>;
extern template class ZO_API ZOWrapperAtomicCustom<float, float>;
extern template class ZO_API ZOWrapperAtomicCustom<double, double>;
extern template class ZO_API ZOWrapperAtomicCustom<htl::Int64, htl::Int64>;
extern template class ZO_API ZOWrapperAtomicCustom<htl::UInt64, htl::UInt64>;
extern template class ZO_API ZOWrapperAtomicCustom<bool, bool>;
extern template class ZO_API ZOWrapperAtomicCustom<std::string, std::string>;
extern template class ZO_API ZOWrapperAtomicCustom<std::wstring, std::wstring>;
extern template class ZO_API ZOWrapperAtomicCustom<DataParamType, DataParamType>;
extern template class ZO_API ZOWrapperAtomic<unsigned char>;
extern template class ZO_API ZOWrapperAtomic<int>;
extern template class ZO_API ZOWrapperAtomic<unsigned>;
extern template class ZO_API ZOWrapperAtomic<long>;
extern template class ZO_API ZOWrapperAtomic<unsigned long>;
extern template class ZO_API ZOWrapperAtomic<float>;
extern template class ZO_API ZOWrapperAtomic<double>;
extern template class ZO_API ZOWrapperAtomic<htl::Int64>;
extern template class ZO_API ZOWrapperAtomic<htl::UInt64>;
extern template class ZO_API ZOWrapperAtomic<bool>;
extern template class ZO_API ZOWrapperAtomic<std::string>;
extern template class ZO_API ZOWrapperAtomic<std::wstring>;
extern template class ZO_API ZOWrapperAtomic<DataParamType>;

/// A view of row `regID` over `memory`, without an owner. Empty for npos, for a row that isn't there and for a row
/// whose node is no wrapper.
ZO_API H GetWrapper(std::size_t regID, void* memory);
/// The same, entered under `name` in the current registry as a temporary. Without a view: `not_found(name)` and `out`
/// stays as it was.
ZO_API htl::status GetRegisteredWrapper(H& out, std::size_t regID, void* memory, std::string const& name);
/// A view of a single value whose type is one of the thirteen, told by the descriptor's type. Empty for any other type,
/// null memory or missing traits. `traits` is shared by the view.
ZO_API H GetAtomicWrapper(void* memory, meta::MetaDataTraits const& traits);

} // namespace zo
