// The entries of a table, and the search for the one that speaks for a node.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"
#include "Common/model/IZO.h"

#include "support/lock.h"
#include "support/status.h"

#include <atomic>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <vector>

namespace zo {

class ExtendedInfoStore;
struct ZORegistryImpl;

namespace extinfo {

/// The store of the calling thread's current registry.
ZO_API ExtendedInfoStore& Store();

/// The failure of what can't be done any more once the tables are joined.
htl::status AlreadyCompiled();

class TagMatcher;
class ViewShaper;

} // namespace extinfo

/// Holds the entries of a table, read in one or two parts, and answers for nodes of the current registry.
///
/// Life: tables are read, then `Compile` joins, checks and binds them, once. From then on entries don't move, but they
/// are completed: an entry that lacks a field takes it over from the next less specific entry when it is first asked
/// for, and all nodes that share the entry share that. A store that is only read is useful without a registry.
/// Threads: what reads tables, compiles or looks up takes the store's lock. Counts, and entries by place, don't: hold
/// the lock while others may read tables or ask.
class ZO_API ExtendedInfoStore {
public:
    /// No entry.
    static constexpr std::size_t End = static_cast<std::size_t>(-1);

    ExtendedInfoStore();
    ~ExtendedInfoStore();
    ExtendedInfoStore(ExtendedInfoStore const&) = delete;
    ExtendedInfoStore& operator=(ExtendedInfoStore const&) = delete;

    /// Reads a table from the bytes of a document, or from a file, and adds its rows.
    ///
    /// Failure: that of the document; "Error with entry ..." for a cell that can't be read, and then nothing is added;
    /// "Duplicate entry ..." for equal tags, and then everything is added; after compilation "The extended information
    /// is already compiled.", and nothing is added.
    htl::status ReadBytes(void const* begin, void const* end);
    htl::status ReadFile(std::wstring const& name);
    /// Adds the rows of one table, sorted by tag. The part of reading that follows the document.
    htl::status Add(std::vector<ExtendedInfoEntry> rows);

    /// Joins the two tables, checks them, shapes the view and binds entries to the rows of the current registry. Runs
    /// to the end and returns the last failure. Once it got past the checks of the table it can't be repeated.
    htl::status Compile();
    /// Whether `Compile` got past the checks of the table.
    bool IsCompiled() const noexcept { return compiled; }

    /// The two tables that take part.
    enum class Table { First, Second };
    /// Whether a second table, with translated texts, was joined to the first one.
    bool HasSecondTable() const;
    /// Whether a table had a text for the Label or the Description of an entry. False for other fields, and until the
    /// tables are joined.
    bool CameWith(Table table, std::size_t index, unsigned field) const;

    /// Number of entries; before compilation those of both tables.
    std::size_t EntryCount() const noexcept { return entries.size(); }
    /// How many of them came with the tables before the latest one; 0 once the tables are joined.
    std::size_t FirstTableCount() const noexcept { return firstTableCount; }
    /// An entry by its place, which is below the count. Valid until the next read.
    ExtendedInfoEntry const& Entry(std::size_t index) const noexcept { return entries[index]; }
    /// The copy of the entry "Default" with all fields set, made by the first compilation that finds one, even if it
    /// fails later; until then an entry without fields and with an empty mask.
    ExtendedInfoEntry const& DefaultEntry() const noexcept { return defaultEntry; }
    /// The place of the entry with exactly this tag, the first of equal ones; `End` without one.
    std::size_t Find(std::wstring const& tag) const;

    /// The place of the entry that speaks for a field (`ExtendedInfoField`, 14 and above count as `Whole`) of a row of
    /// the current registry; `End` if only the default entry could. The field is completed in it.
    /// Cost: after the first question about a field a read and a bit test under the lock.
    std::size_t Lookup(std::size_t regID, unsigned field);
    /// The same for any node, registered or not, through redirects; at last the default entry. For `Visibility` and
    /// `Whole` the fields of the question are completed.
    ExtendedInfoEntry const& Lookup(H const& node, unsigned field);
    /// As by row, at last the default entry; for `Visibility` and `Whole` the fields of the question are completed.
    ExtendedInfoEntry const& LookupWhole(std::size_t regID, unsigned field);

    /// The place of the entry that says in which views a row shows, with its mask; `End` for the default entry. What
    /// the mask needs is completed first, unless the row is an alias and the entry dynamic.
    std::size_t LookupVisibility(std::size_t regID, std::uint32_t& mask);
    /// The mask of `LookupVisibility` with the bit `maskIsKnown`, once it can't change any more; 0 where that is not
    /// known yet: then ask `LookupVisibility`. Takes no lock.
    std::uint32_t FinalMask(std::size_t regID) const noexcept {
        return regID < finalMaskCount.load(std::memory_order_acquire)
                   ? finalMasks[regID].load(std::memory_order_relaxed)
                   : 0;
    }
    /// Outside all groups of `viewmask`.
    static constexpr std::uint32_t maskIsKnown = 0x80000000u;

    /// Which entry a field of an entry was stated by: the entry itself, or the one that it was completed from in the
    /// end. `End` for the default entry and for a field that is not set. `index` may be `End` for the default entry.
    std::size_t StatedBy(std::size_t index, unsigned field) const;
    /// Where an entry returned by a lookup stands; `End` for the default entry.
    std::size_t IndexOf(ExtendedInfoEntry const& entry) const noexcept;

    /// The lock that every operation takes. It may be taken again by its holder.
    sys::thread::impl::ProcessExclusiveAccess& Lock() noexcept { return lock; }

private:
    friend class extinfo::ViewShaper; // asks for each row while it holds the lock

    /// Reads what `parse`, called with a reader, takes apart.
    template <class Parse>
    htl::status Read_(Parse const& parse);

    // Places of entries in columns; tables don't come near 2^32 entries.
    using Place = std::uint32_t;
    static constexpr Place none = 0xFFFFFFFFu;
    static constexpr Place unknown = 0xFFFFFFFEu;

    /// What the searches for a row found. It depends on the row alone, not on the field that is asked for.
    struct RowSearch {
        Place exact = unknown;
        Place qualified = unknown;
        Place wildcard = unknown;
        Place type = none;      // in `types`
        Place source = unknown; // the row of what an alias in the view stands for
        std::uint32_t flags = 0;
    };
    enum RowFlag : std::uint32_t { Alias = 1, Atomic = 2, Tagged = 4, BelowQualified = 8 };

    /// What the table says of a type of rows.
    struct TypeSearch {
        Place entry = none;           // under the type's name
        Place first = 0, last = 0;    // entries whose tags begin with the type's name and "."
        std::size_t prefixLength = 0; // of that beginning
        bool isVoid = false;          // no ancestor above such a row counts
    };
    enum EntryFlag : std::uint8_t {
        FirstLabel = 1,
        FirstDescription = 2,
        SecondLabel = 4,
        SecondDescription = 8,
        General = 16,  // a wildcard, or a type and a path: speaks for rows beside their own entries
        Speaks = 32,   // came with some field
        Optional = 64, // is dynamic
        Shapes = 128,  // has a list of what shows below
    };

    /// Joins the tables, checks them and makes what lookups need. Success sets `compiled`; "The extended information is
    /// already compiled." if it is set. `Compile` begins with it, under the lock.
    htl::status Prepare_();
    /// Finds the entry of every row, and what is wrong with that. `firstAlias` and those behind it came with the view.
    htl::status Bind_(std::size_t firstAlias);
    /// `Compile` ends with it: the view's records are final, and masks are kept.
    void FinishBinding_();
    /// By tag rather than by row, as for nodes without one; `End` if only the default entry could. Asks the tag of the
    /// node, which may have a row.
    std::size_t LookupByText_(IZO& node, unsigned field);

    htl::status Join_();
    htl::status FillDefault_();
    htl::status CheckEntries_();
    void NoteTexts_(std::size_t index);
    Place ExactOf_(ZORegistryImpl const& tables, std::size_t row);
    std::size_t BoundTo_(ZORegistryImpl const& tables, std::size_t row);

    std::size_t LookupRow_(std::size_t row, unsigned field);
    bool SearchRow_(ZORegistryImpl const& tables, std::size_t row, unsigned field, std::size_t& candidate,
                    std::size_t& found, bool& foundLast);
    bool GeneralHasNothing_(RowSearch const& search, unsigned field) const;
    std::size_t SourceOf_(ZORegistryImpl const& tables, std::size_t row);
    std::size_t LookupNode_(H const& node, unsigned field, H& last);
    bool MayTakeOver_(IZO const& node, std::size_t entry) const;
    std::size_t TakeOver_(bool redirects, std::size_t candidate, std::size_t found, unsigned field);
    void Complete_(std::size_t index, std::size_t source, unsigned field);
    static std::size_t FieldPlace_(std::size_t index, unsigned field) noexcept {
        return index * ExtendedInfoField::count + field;
    }
    /// Which entry stated a field that an entry has; `none` for the default entry.
    Place Origin_(std::size_t index, unsigned field) const;
    /// The rows below `rowCount` whose entries have to be asked for a list of what shows below them, in their order.
    /// For the others the answer is known to be none, and noted in their entries.
    std::vector<std::size_t> RowsWithLists_(ZORegistryImpl const& tables, std::size_t rowCount);

    void SyncRows_(ZORegistryImpl const& tables);
    bool IsAliasRow_(std::size_t row) const noexcept { return row < searches.size() && searches[row].flags & Alias; }
    Place TypeOf_(meta::MetaDataTraits const& traits);
    Place Bisect_(std::wstring_view tag) const noexcept;
    std::uint64_t HashOf_(std::wstring_view tag) const noexcept;
    Place FindExact_(std::wstring_view tag, std::uint64_t hash) const noexcept;
    Place FindExact_(std::wstring_view tag) const noexcept { return FindExact_(tag, HashOf_(tag)); }
    void FindExactFrom_(ZORegistryImpl const& tables, std::size_t row);
    Place FindBelow_(TypeSearch const& type, std::wstring_view path) const noexcept;
    Place FindQualified_(ZORegistryImpl const& tables, std::size_t row);
    Place FindQualified_(IZO& node, std::wstring_view tag, std::wstring_view normal);
    Place FindWildcard_(std::wstring_view tag) const noexcept;

    std::size_t firstTableCount = 0;
    mutable sys::thread::impl::ProcessExclusiveAccess lock;
    std::vector<ExtendedInfoEntry> entries;
    std::vector<std::size_t> regIDMap;
    ExtendedInfoEntry defaultEntry;
    std::atomic<bool> compiled = false;
    bool finished = false;
    bool secondTable = false;

    // Entries by their tags, the first of equal ones: a table with open places. The hash's own start keeps tables from
    // being made to collide.
    struct TagSlot {
        std::uint32_t hash;
        Place entry;
    };
    std::vector<TagSlot> tagSlots; // a power of two, at most two thirds taken

    // By entry.
    std::vector<std::uint8_t> entryFlags;
    std::vector<std::uint16_t> fromDefault;           // fields, a bit each, that were taken over from the default entry
    std::unordered_map<std::size_t, Place> takenFrom; // by `FieldPlace_`: who stated a field taken over from an entry

    // Entries with a "*" in their tags, in the order of the table.
    std::vector<Place> wildcards;
    std::shared_ptr<extinfo::TagMatcher const> matcher;
    // Fields that some general entry has from anywhere but the default entry.
    std::bitset<ExtendedInfoField::count> generalFields;
    bool unstatedIsWhole = true; // no mask lacks bits of a field that its entry came without

    std::vector<RowSearch> searches; // by row
    std::vector<TypeSearch> types;
    std::unordered_map<std::type_info const*, Place> typePlaces;
    std::size_t typeTemplatesSeen = 0;
    std::wstring scratch;

    // Written once, before the count.
    std::unique_ptr<std::atomic<std::uint32_t>[]> finalMasks;
    std::atomic<std::size_t> finalMaskCount = 0;
};

} // namespace zo
