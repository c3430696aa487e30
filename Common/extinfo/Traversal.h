// Reshapes the view of the tree as the traversal lists of a table say.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"
#include "Common/registry/RegistryImpl.h"

#include "support/status.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zo {

class ExtendedInfoStore;

namespace extinfo {

/// Whether a list says that the children are walked while the application runs: one item, of all children.
bool IsDynamicForm(std::vector<ViewTravItem> const& list) noexcept;

/// The lists of view children while they are changed. They are linked forwards only; this knows the way back, so that
/// taking a row out costs no walk.
class ViewChains {
public:
    explicit ViewChains(ZORegistryImpl& tables) : tables(tables) {}

    /// Learns the lists of all rows. Comes first.
    void Fill();
    /// Takes a row out of its list, if it stands in one; its record is then as if fresh.
    void Remove(std::size_t row);
    /// Puts a row that stands in no list behind the view children of `parent`.
    void Append(std::size_t parent, std::size_t row);
    /// A row that was added behind all others.
    void Grow();

    /// Counts the tags below `parent`, so that many rows can be appended there.
    void Index(std::size_t parent);
    /// Whether a view child of `parent` has this tag. Cost: of an indexed parent a probe, else a walk.
    bool HasTag(std::size_t parent, std::wstring const& tag) const;

private:
    ZORegistryImpl& tables;
    std::vector<std::size_t> previous;
    std::vector<std::size_t> last; // of the children of a row
    std::size_t indexed = IZO::npos;
    std::unordered_map<std::wstring, std::size_t, PathHash, std::equal_to<>> tagCounts; // of the indexed parent
};

/// Applies the lists of all entries to the view of the current registry.
class ViewShaper {
public:
    explicit ViewShaper(ExtendedInfoStore& store);

    /// Goes through the rows below `rowCount`, with the list of the entry that speaks for each. Goes on after a failure
    /// and returns the last one. What it registers are aliases, behind all rows.
    htl::status Run(std::size_t rowCount);
    /// Whether any list was there to apply.
    bool HasChanged() const noexcept { return changed; }
    /// A failure if some row was moved to a place below itself. Such rows show nowhere.
    htl::status FindCircle() const;

private:
    /// Where an item takes its node from.
    struct Source {
        std::size_t row = IZO::npos;
        bool isBehindDynamic = false; ///< what is there is known while the application runs
    };

    htl::status ApplyList_(std::size_t parent, std::vector<ViewTravItem> const& list);
    htl::status ApplyItem_(std::size_t parent, ViewTravItem const& item, std::size_t& shown);
    htl::status AddAlias_(std::size_t parent, std::wstring const& tag, std::wstring const& sourceTag, Source source,
                          std::size_t& alias);
    Source Resolve_(std::size_t parent, std::wstring_view tag) const;
    bool IsDynamic_(std::size_t row) const;
    bool WasMoved_(std::size_t row) const { return row < moved.size() && moved[row]; }
    /// How messages call a row.
    std::wstring CallOf_(std::size_t row) const;

    ExtendedInfoStore& store;
    ZORegistryImpl& tables;
    ViewChains chains;
    std::vector<bool> moved;
    bool changed = false;
};

} // namespace extinfo
} // namespace zo
