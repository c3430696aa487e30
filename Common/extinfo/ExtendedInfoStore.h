// The entries of a table, and the search for the one that speaks for a node.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"
#include "Common/model/IZO.h"

#include "support/lock.h"
#include "support/status.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zo {

class ExtendedInfoStore;

namespace extinfo {

/// The store of the calling thread's current registry.
ZO_API ExtendedInfoStore& Store();

/// The failure of what can't be done any more once the tables are joined.
htl::status AlreadyCompiled();

class TagMatcher;

} // namespace extinfo

/// Holds the entries of a table, read in one or two parts, and answers for nodes of the current registry.
///
/// Life: tables are read, then `Compile` joins, checks and binds them, once. From then on entries don't move, but they
/// are completed: an entry that lacks a field takes it over from the next less specific entry when it is first asked
/// for, and all nodes that share the entry share that. A store that is only read is useful without a registry.
/// Threads: each operation takes the store's lock.
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

    /// Number of entries; before compilation those of both tables.
    std::size_t EntryCount() const noexcept { return entries.size(); }
    /// How many of them came with the tables before the latest one; 0 once the tables are joined.
    std::size_t FirstTableCount() const noexcept { return firstTableCount; }
    /// An entry by its place, which is below the count. Valid until the next read.
    ExtendedInfoEntry const& Entry(std::size_t index) const noexcept { return entries[index]; }
    /// The copy of the entry "Default" with all fields set; before compilation, and where there is none, an entry
    /// without fields and with an empty mask.
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

    /// Which entry a field of an entry was stated by: the entry itself, or the one that it was completed from. `End`
    /// for the default entry and for a field that is not set. `index` may be `End` for the default entry.
    std::size_t StatedBy(std::size_t index, unsigned field) const;
    /// Where an entry returned by a lookup stands; `End` for the default entry.
    std::size_t IndexOf(ExtendedInfoEntry const& entry) const noexcept;

    /// The lock that every operation takes. It may be taken again by its holder.
    sys::thread::impl::ProcessExclusiveAccess& Lock() noexcept { return lock; }

private:
    /// Reads what `parse`, called with a reader, takes apart.
    template <class Parse>
    htl::status Read_(Parse const& parse);

    // (to be completed by the implementation)
    std::size_t firstTableCount = 0;
    mutable sys::thread::impl::ProcessExclusiveAccess lock;
    std::vector<ExtendedInfoEntry> entries;
    std::vector<std::size_t> regIDMap;
    ExtendedInfoEntry defaultEntry;
    bool compiled = false;
};

} // namespace zo
