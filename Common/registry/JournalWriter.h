// Fills a journal while a commit runs.
#pragma once

#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZOJournal.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace zo {

/// Records texts before and after each assignment of one commit.
///
/// Holds no node between calls: a view that lives on would keep its array from being resized.
class JournalWriter {
public:
    /// Empties the journal and takes the texts of what it covers.
    JournalWriter(ZOJournal& journal, ZOSet& base);
    JournalWriter(JournalWriter const&) = delete;
    JournalWriter& operator=(JournalWriter const&) = delete;

    /// Takes the texts of everything under `name` now and compares them at the end.
    void CoverWhole(std::string_view name);
    /// Before `staged` is assigned to `target`, which stands under `name`.
    void Before(std::string const& name, IZO const& staged, H const& target);
    /// Behind the assignment, whatever came of it.
    void After(H const& target);
    /// Compares what was covered and brings the journal to its final order.
    void Finish();

private:
    using Entry = ZOJournal::Entry;

    struct Covered {
        std::string name;
        std::vector<Entry> before;
    };

    bool IsCovered_(std::string_view name) const;
    void Compare_(Covered& whole);
    void Lose_(std::string const& array, std::size_t from, std::size_t length);

    ZOJournal& journal;
    ZOSet& base;
    std::vector<Covered> covered;
    std::unordered_set<std::string, PathHash, std::equal_to<>> coveredNames;
    std::vector<Entry> lost; // elements that were cut off, as they stood
    Entry open;
    bool isOpen = false;
};

namespace impl {

/// Orders names as bytes, and indices in brackets as numbers: `a[2]` before `a[10]`.
bool ComesBefore(std::string_view a, std::string_view b) noexcept;
/// Whether `name` is `whole` or stands below it.
bool IsWithin(std::string_view name, std::string_view whole) noexcept;
/// Whether a row is the key of the elements of an associative container.
bool IsKeyRow(std::size_t row) noexcept;
/// How many components a row stands below the nearest container around it that is sorted by keys, 0 for the container
/// itself; -1 without one.
int LevelsBelowKeys(std::size_t row) noexcept;

} // namespace impl
} // namespace zo
