// The tables of a set: its entries by name and by order of insertion.
#pragma once

#include "Common/model/IZO.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

/// One node under one name.
///
/// Invariant: while `node` is set, `entryOrder[position]` of its set is this entry, and the node's owner and owner id
/// say the same. A counted entry keeps its node alive; any other ends when the node dies.
struct SetEntry {
    std::string name;
    IZO* node = nullptr;
    SetEntry* next = nullptr;  // in its bucket, or in the list of spare entries
    SetEntry** back = nullptr; // the pointer that leads here, so that unhooking needs no search
    std::uint64_t hash = 0;
    std::size_t position = 0;
    bool visible = false;
    bool counted = false;
    bool hashed = false; // stands in a bucket

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);
};

/// Entries by name: a hash multimap in which the first visible entry of equal names comes before later visible ones.
/// Entries stay where they are in memory.
///
/// A lookup enters a hidden entry for a node that is mostly dropped at once, and only a test for a taken name ever asks
/// for it. So hidden entries wait unhashed until somebody asks.
class EntryTable {
public:
    EntryTable();
    EntryTable(EntryTable const&) = delete;
    EntryTable& operator=(EntryTable const&) = delete;
    ~EntryTable();

    /// An entry to fill, with the name empty. Names keep their memory from use to use.
    SetEntry* Acquire();
    /// Gives back an entry that is not in the table.
    void Recycle(SetEntry* entry) noexcept;

    /// A visible entry goes behind every entry of the same name, a hidden one just behind the first: many handles to
    /// one node must not make each lookup search them all.
    void Insert(SetEntry* entry);
    /// A visible entry of a name that no other entry has, with its hash.
    void InsertNew(SetEntry* entry, std::uint64_t hash);
    /// Unhooks; the entry stays the caller's.
    void Remove(SetEntry* entry) noexcept;
    /// The first entry under the name, or null.
    SetEntry* First(std::string_view name);
    /// The first visible entry under the name, or null.
    SetEntry* FirstVisible(std::string_view name) const noexcept;
    SetEntry* FirstVisible(std::string_view name, std::uint64_t hash) const noexcept;
    /// No visible entry has had a longer name since the table was empty.
    std::size_t LongestVisible() const noexcept { return longestVisible; }
    /// Forgets all entries, which become the caller's, at once.
    void Forget() noexcept;
    std::size_t Size() const noexcept { return size; }
    bool HasHidden() const noexcept { return size != visible; }

private:
    void Grow_();
    void InsertHashed_(SetEntry* entry);
    SetEntry* Search_(std::string_view name, std::uint64_t hash) const noexcept;
    static void Hook_(SetEntry* entry, SetEntry** place) noexcept;

    std::vector<SetEntry*> buckets; // a power of two
    std::size_t size = 0;
    std::size_t hashed = 0;  // of those, in buckets
    std::size_t visible = 0; // of those
    std::size_t longestVisible = 0;
    SetEntry* waiting = nullptr;
    SetEntry* spare = nullptr;
    std::size_t spareCount = 0;
};

struct ZO_API ZOSetImpl {
    ZOSetImpl();
    ZOSetImpl(ZOSetImpl const&) = delete;
    ZOSetImpl& operator=(ZOSetImpl const&) = delete;
    virtual ~ZOSetImpl();
    virtual bool IsRegistryImpl() const;
    /// Until `ResumeTracking`: values are not checked; a registry's lookups add no entries either.
    virtual void SuspendTracking();
    virtual void ResumeTracking();

    bool trackTemporaries = true; ///< lookups record the nodes they make
    bool validateValues = true;   ///< values are checked before they are stored
    EntryTable entries;
    std::vector<SetEntry*> entryOrder; ///< by position; null where an entry ended, never at the end

    /// Enters `node` under the name that `entry` holds and gives it this place: the owner is `set`. A place that the
    /// node has elsewhere without being counted there ends first.
    void Enter(ZOSet* set, SetEntry* entry, IZO* node, bool visible, bool counted);
    void Enter(ZOSet* set, std::string_view name, IZO* node, bool visible, bool counted);
    /// A visible, counted place under a name that no entry has, with its hash.
    void Keep(ZOSet* set, std::string_view name, std::uint64_t hash, IZO* node);
    /// Ends the place that `node` has in its owner, unless it is counted there. The node keeps its identity fields.
    static void LeavePlace(IZO const& node) noexcept;
    /// Ends the entry at `position` if it holds `node`. The node keeps its identity fields.
    void Leave(IZO const* node, std::size_t position) noexcept;
    /// Lets go of every node: clears their owners first, then ends all entries.
    void ReleaseAll() noexcept;

private:
    // The entry's place in the order, and what the node knows of it.
    void Place_(ZOSet* set, SetEntry* entry, IZO* node, bool visible, bool counted);
};

namespace impl {

/// The name of a node's entry, empty without owner or entry. Valid as long as the entry.
std::string_view EntryName(IZO const& node) noexcept;

} // namespace impl

/// Suspends a set's tracking for as long as it lives.
class TrackingSuspension {
public:
    explicit TrackingSuspension(ZOSetImpl& impl) : impl(impl) { impl.SuspendTracking(); }
    TrackingSuspension(TrackingSuspension const&) = delete;
    TrackingSuspension& operator=(TrackingSuspension const&) = delete;
    ~TrackingSuspension() { impl.ResumeTracking(); }

private:
    ZOSetImpl& impl;
};

} // namespace zo
