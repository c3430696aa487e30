// Arrays: nodes with a length and elements that are reached by index, by key or by sub-name.
#pragma once

#include "Common/model/ZOWrapper.h"

#include <cstdint>
#include <string>

namespace zo {

/// What all arrays share: the text of the whole array, the grammar of sub-names and the walk.
///
/// Sub-names: "Len" is the length as a node; a name that begins with a digit is an index from 0; "At(n)" counts from 1.
class ZO_API ZOArray : public IZO {
public:
    /// As `IZO`, without an owner id.
    ZOArray(std::size_t regID, ZOSet* owner);

    using IZO::Get;
    using IZO::Set;

    /// Traits of an array with no registered type: array kind, resizable, no functions.
    static meta::MetaDataTraits const& DefaultDataTraits();

    std::size_t Length() const override = 0;
    /// `Resize(0)`; a refusal is dropped.
    void Clear() override;
    /// The whole array from one text, cut at commas outside parentheses. An empty place leaves its element as it is. A
    /// resizable array takes its length from the number of places. Stops at the first element that fails: earlier ones
    /// stay changed. Failure: `HznError::syntax` for an open parenthesis (nothing is stored), `not_found` of an
    /// element.
    htl::status Set(std::wstring const& text) override;
    /// The elements' texts with "," between each two; an element at its default gives an empty place. The text reads
    /// back to the same array unless the last element of a resizable array is at its default, which is then lost.
    htl::status Get(std::wstring& text) override;
    ZOFwrdIterator begin() override;
    /// Takes over the length of another array; elements are the caller's business. Any other node changes nothing.
    htl::status Assign(H const& source) override;

protected:
    H GetSubZO(std::string const& name) override;
    htl::status Resize(std::size_t const& length) override = 0;
    void GetNextSubZO(ZOFwrdIterator& position) override;

public:
    /// The element at `index`, empty past the end.
    virtual H GetSubZO(std::size_t const& index) = 0;
    /// Appends an element and stands on it; the end where that can't be done.
    virtual ZOFwrdIterator AddNew() = 0;
    /// Removes an element. The base failure is `not_supported`.
    virtual htl::status RemoveAt(std::size_t const& index) = 0;
};

/// The detached form of an array: a length. Elements are fresh defaults until a set holds them.
class ZO_API ZOArrayClone : public ZOArray {
public:
    /// With as many elements; `fixedLen`: the length stays.
    ZOArrayClone(std::size_t regID, ZOSet* owner, bool fixedLen, std::size_t length);

    /// Whether the length stays.
    bool IsFixedLen() const noexcept { return fixedLen; }
    /// `DefaultDataTraits()` for a node without a row.
    meta::MetaDataTraits GetDataTraits() const override;
    std::size_t Length() const override { return length; }
    IZO* Clone() override;
    IZO* EmptyClone() override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);

protected:
    /// A fixed array fails with `not_supported("")`.
    htl::status Resize(std::size_t const& length) override;
    using ZOArray::GetSubZO;
    H GetSubZO(std::size_t const& index) override;
    ZOFwrdIterator AddNew() override;
    htl::status RemoveAt(std::size_t const& index) override;

private:
    bool fixedLen;
    std::size_t length;
};

/// The view of a client container.
class ZO_API ZOArrayWrapper : public ZOArray, public IZOWrapper {
public:
    /// `manager` guards the memory that the container lies in and may be empty; `childManager` stands for the container
    /// itself and counts the views of its elements. The container's address and traits are those of `childManager`.
    ZOArrayWrapper(std::size_t regID, ZOSet* owner, htl::handle<ZOMemMgr> const& manager,
                   htl::handle<ZOMemMgr> const& childManager);

    /// Who guards the memory that the container lies in; may be empty.
    htl::handle<ZOMemMgr> const& MemMgr() const noexcept { return Manager(); }
    /// Who stands for the container and counts the views of its elements.
    htl::handle<ZOMemMgr> const& ChildMemMgr() const noexcept { return childManager; }
    /// The traits of the container, by reference.
    meta::MetaDataTraits const& AccessTraits() const noexcept { return childManager->Traits(); }

    using ZOArray::Get;
    using ZOArray::Set;

    /// Whether this is the registered prototype of its row.
    bool IsPrototype() const noexcept { return prototype; }

    meta::MetaDataTraits GetDataTraits() const override;
    /// A registered prototype is undefined.
    bool IsUndefined() const override;
    /// A registered prototype has the fixed length, or 0.
    std::size_t Length() const override;
    /// Puts every atomic part of the elements to its default; the length stays.
    void Clear() override;
    /// As every array. Where elements get no entry of their own, one view serves all simple ones.
    htl::status Set(std::wstring const& text) override;
    htl::status Get(std::wstring& text) override;
    ZOFwrdIterator begin() override;
    IZO* Clone() override;
    IZO* EmptyClone() override;
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override;

    using ZOArray::GetSubZO;
    H GetSubZO(std::size_t const& index) override;
    /// Also the end while views of elements live and adding would move them.
    ZOFwrdIterator AddNew() override;
    /// Without a function for it: `not_supported` with the type's name. `array_memory_conflict` while views of elements
    /// live and removing would move them. The index is not tested.
    htl::status RemoveAt(std::size_t const& index) override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);

protected:
    ~ZOArrayWrapper() override;
    void OnRegistration(std::size_t regID) override;
    /// `array_memory_conflict()` while a view of an element lives: its memory could move. `not_supported("")` where the
    /// container can't. New elements are put to their defaults.
    htl::status Resize(std::size_t const& length) override;
    void GetNextSubZO(ZOFwrdIterator& position) override;

private:
    meta::MetaTraitsArray const* Record_() const noexcept { return AccessTraits().AsArray(); }
    void SkipHoles_(std::size_t& index) const;
    IZOWrapper* ElementPrototype_() const;
    bool ElementsShareView_() const;
    class SharedView;

    htl::handle<ZOMemMgr> childManager;
    bool prototype = false;
};

/// The view of a container whose elements also have keys.
///
/// Keys in names: `At(12)` is an integer key, `At(text)` and `At("text")` a text key. A name that begins with a digit
/// stays a plain index from 0, so that the names of elements find them again. A key without an element, or one out of
/// 32 bits, gives an empty handle. ".", "[" and "]" can't stand in a key.
class ZO_API ZOAssocArrayWrapperBase : public ZOArrayWrapper {
public:
    using ZOArrayWrapper::GetSubZO;
    using ZOArrayWrapper::ZOArrayWrapper;

protected:
    H GetSubZO(std::string const& name) override;
    /// Marks the row as an associative array, too.
    void OnRegistration(std::size_t regID) override;

public:
    /// The index of an integer key, 0xFFFFFFFF for none.
    virtual std::uint32_t IndexFromKey(std::uint32_t key) const = 0;
    /// The index of a text key, 0xFFFFFFFF for none.
    virtual std::uint32_t IndexFromKey(std::string const& key) const = 0;
};

namespace impl {

/// What the text between the parentheses of a key form says.
struct AssocKey {
    enum { None, Integer, Text } kind = None;
    std::uint32_t integer = 0;
    std::string text;
};
/// Reads "At(...)". Any other name, and an integer out of 32 bits, gives none; `isKey` tells the two apart.
ZO_API AssocKey ParseAssocKey(std::string const& name, bool& isKey);

} // namespace impl
} // namespace zo
