// How one registered node is written, settled when it is registered.
//
// A save must not ask every node what it is. An entry holds the answers, above all which getter fetches the value, so
// that the values of large arrays are formatted straight from client memory without a lookup.
#pragma once

#include "Common/model/CastCache.h"
#include "Common/model/IZO.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zo {
class IZOSimple;
class IZOWrapper;
} // namespace zo

namespace zo::xml::impl {

class ZOElemWriter;
class ZOPersistEntry;

/// Finds children by tag without a scan, so that registration stays linear in the number of siblings.
///
/// It follows children that are appended; whoever moves them forgets it. Copies start empty.
class ZO_API ChildIndex {
public:
    ChildIndex() = default;
    ChildIndex(ChildIndex const&) noexcept {}
    ChildIndex(ChildIndex&&) noexcept = default;
    ChildIndex& operator=(ChildIndex const& other) noexcept {
        if (this != &other) Forget();
        return *this;
    }
    ChildIndex& operator=(ChildIndex&&) noexcept = default;
    ~ChildIndex() = default;

    /// The first child with the tag, npos without one.
    std::size_t Find(std::vector<ZOPersistEntry> const& children, std::wstring_view tag);
    void Forget() noexcept { table.reset(); }

private:
    struct Table {
        std::unordered_map<std::wstring, std::size_t> first;
        std::size_t counted = 0; // children that stand in `first`
        std::wstring key;        // memory of the last question
    };
    std::unique_ptr<Table> table;
};

/// One node of the persist tree.
///
/// Source of truth: the registered node, as it stood when the entry was made. Lifetime: entries are values inside their
/// parent's list; appending a sibling or ordering the tree moves them. Entries hold the registered node alive.
class ZO_API ZOPersistEntry {
public:
    /// `node` is registered. `parent` is null for a root entry; it is asked here and not kept.
    ZOPersistEntry(H const& node, ZOPersistEntry* parent);
    ZOPersistEntry(ZOPersistEntry const& other);
    ZOPersistEntry(ZOPersistEntry&& other) noexcept;
    ZOPersistEntry& operator=(ZOPersistEntry const& other);
    ZOPersistEntry& operator=(ZOPersistEntry&& other) noexcept;
    ~ZOPersistEntry();

    /// Index of the first child with the tag, npos without one.
    std::size_t ChildByTag(std::wstring_view childTag) { return index.Find(children, childTag); }
    /// Appends an entry for `child`.
    void AddChild(H const& child);
    /// To be called when children changed places.
    void ChildrenMoved() noexcept { index.Forget(); }

    /// Fetches the value's text. `node` is the live node, or the live parent for an attribute of a record, whose
    /// wrapper is then `parentWrapper`. `value` is to be empty before: a default that is left out doesn't touch it.
    /// A getter that lacks what it needs fails with `not_found` of the entry's name.
    using Getter = htl::status (ZOPersistEntry::*)(H& node, IZOWrapper* parentWrapper, std::wstring& value,
                                                   bool& isDefault) const;

protected:
    htl::status FnZOGet(H& node, IZOWrapper* parentWrapper, std::wstring& value, bool& isDefault) const;
    htl::status FnZOGetData(H& node, IZOWrapper* parentWrapper, std::wstring& value, bool& isDefault) const;
    htl::status FnZOGetArrayData(H& node, IZOWrapper* parentWrapper, std::wstring& value, bool& isDefault) const;
    htl::status FnZOGetViaParent(H& node, IZOWrapper* parentWrapper, std::wstring& value, bool& isDefault) const;
    htl::status FnZOGetArrayDataViaParent(H& node, IZOWrapper* parentWrapper, std::wstring& value,
                                          bool& isDefault) const;
    htl::status FnZOGetWrapperViaParent(H& node, IZOWrapper* parentWrapper, std::wstring& value, bool& isDefault) const;
    htl::status FnZOGetWrapperDataViaParent(H& node, IZOWrapper* parentWrapper, std::wstring& value,
                                            bool& isDefault) const;

private:
    friend class ZOElemWriter;

    Getter ChooseGetter_(ZOPersistEntry const* parent) const;
    IZOWrapper const* WrapperOf_(H const& live) const;
    bool SkipsDefaults_() const noexcept { return persist.Type == meta::MetaPersistTraits::IfNotDefined; }

    // A live node is a clone of the registered one, as a rule, and then of its class.
    zo::impl::CastCache<IZOWrapper> asWrapper;

public:
    H node;                  ///< the registered node
    IZOWrapper* wrapper;     ///< the same as a wrapper, or null
    IZOSimple* simple;       ///< the same as a value that formats memory, or null
    std::string name;        ///< relative to the parent; live nodes are found by it
    std::wstring tag;        ///< what the tree is built and ordered by
    bool isArray = false;    ///< by the node's traits; an alias of an array is one, too
    bool fixedLength = true; ///< of an array, whether its length can't change; else true
    bool contiguous = false; ///< the elements are simple values in one block of memory
    std::size_t length = 0;  ///< of an array with a fixed length; 0: the live node knows
    meta::MetaPersistTraits persist;
    meta::MetaDataTraits traits;
    Getter getter = nullptr;              ///< null where the element has no value of its own
    std::vector<ZOPersistEntry> children; ///< in document order

private:
    ChildIndex index;
};

} // namespace zo::xml::impl
