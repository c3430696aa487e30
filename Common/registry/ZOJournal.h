// What a commit changed, as text, so that an application can take it back and do it again.
#pragma once

#include "Common/registry/ZOSet.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zo {

/// The values that one commit changed, each with its text before and after.
///
/// Holds text and no handles, so it outlives the transaction, and it can be kept for as long as its names mean the same
/// nodes. An application's undo stack is a list of journals. Undoing and redoing restores every value that has a text,
/// so the saved document is the same to the byte.
///
/// Beside the assigned names it has the values of elements that a shorter array lost, and those under the names that
/// were handed to `Cover`. What a client's setter changes elsewhere is not known to a commit: cover it.
class ZO_API ZOJournal {
public:
    /// One name that a commit assigned.
    struct Entry {
        /// What the text is.
        enum Kind {
            Value,  ///< text is the value's
            Length, ///< text is the number of elements
            Keyed   ///< the same, of a container that is sorted by keys: it is emptied before its elements come back
        };
        std::string name;          ///< in full
        std::wstring before;       ///< the text before the commit
        std::wstring after;        ///< and after it
        Kind kind = Value;         ///< of both texts
        bool existedBefore = true; ///< there was a node of this name
        bool existsAfter = true;   ///< there is one after it

        friend bool operator==(Entry const&, Entry const&) = default;
    };

    /// Commits record everything under this name as well, whether it is there or not. An alias covers what it leads to
    /// when the commit begins.
    void Cover(std::string name);

    /// In the order of names, in which values are written back.
    std::vector<Entry> const& Entries() const noexcept { return entries; }
    /// Whether there are no entries.
    bool IsEmpty() const noexcept { return entries.empty(); }
    /// Drops all entries; what is covered stays.
    void Clear();

    /// Writes all texts from before back to `set`, the set that was committed to. Values are not checked: an old value
    /// may be one that would be refused now. Goes on behind a failure and returns the first one; `not_found` with the
    /// name of a value whose node is gone.
    htl::status Undo(ZOSet& set) const;
    /// The same with the texts from after.
    htl::status Redo(ZOSet& set) const;

private:
    friend class JournalWriter;

    std::vector<std::string> covered;
    std::vector<Entry> entries;
};

} // namespace zo
