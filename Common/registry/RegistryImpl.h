// The columns of the registry: one row for each registered node, one column for each attribute.
#pragma once

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/IZO.h"
#include "Common/registry/IODS.h"
#include "Common/registry/SetImpl.h"
#include "Common/registry/StepIndex.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zo {

class IZOWrapper;
class ZORedirect;
class ZORegistry;

class ExtendedInfoStore;

/// A row's place in the view of the tree, and how its node is reached from its parent in the view.
struct ViewTravRecord {
    enum Flag : std::uint32_t {
        WalkChildren = 1, ///< the children are walked at run time, by `begin()`
        Splice = 2        ///< the node is not shown: its children stand in its place
    };
    enum Kind : std::uint32_t { RelativeTag = 0, AbsoluteTag = 1, RegistryName = 2 };

    std::size_t ViewTravNextID = IZO::npos; ///< next sibling in the view
    std::uint32_t flags = 0;
    std::wstring renamePattern; ///< put before the tag of each spliced child; empty for none
    Kind kind = RegistryName;
    bool isOwnTag = false; ///< `path` is the row's tag, one component, by which its parent finds it
    std::wstring path;     ///< the tag of the first two kinds; of the third the full tag of an alias's source, or empty
};

struct PathHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return path::Hash(text); }
    std::size_t operator()(std::wstring_view text) const noexcept { return path::Hash(text); }
};

struct ZO_API ZORegistryImpl final : ZOSetImpl {
    explicit ZORegistryImpl(ZORegistry* owner);
    ~ZORegistryImpl() override;
    bool IsRegistryImpl() const override;
    void SuspendTracking() override;

    using RegID = std::size_t;
    using NameIndex = std::unordered_map<std::string, RegID, PathHash, std::equal_to<>>;
    using TagIndex = std::unordered_map<std::wstring, RegID, PathHash, std::equal_to<>>;
    using NamedChildren = std::vector<std::pair<std::string, RegID>>;
    using TaggedChildren = std::vector<std::pair<std::wstring, RegID>>;

    bool initializationComplete = false;
    bool viewIsFinal = false; // a table of rules was compiled: the view stays as it is
    NameIndex nameIndex;      // normalised name to row
    TagIndex tagIndex;        // normalised tag name to row
    std::map<std::string, RegID> typeTemplates;
    ZORegistry* owner;
    // The member that the next structure view is asked for. One use only.
    RegID findHint = IZO::npos;
    std::size_t longestTag = 0; // in tagIndex

    // Columns, by row, all appended to in the same call.
    std::vector<meta::MetaDataTraits> dataTraits;
    std::vector<meta::MetaPersistTraits> persistTraits; // after resolution against the parent
    std::vector<std::wstring> localTags;                // the resolved tag with its bracket suffix
    std::vector<htl::handle<IODS>> stores;
    std::vector<H> nodes;
    std::vector<std::string> names;    // normal form
    std::vector<std::string> subNames; // last component
    std::vector<std::wstring> tagNames;
    std::vector<std::wstring> subTags;  // last component, "[]" for an element
    std::vector<std::wstring> pathTags; // tagNames, or a path made of names where that is empty
    std::vector<IZOWrapper*> wrappers;
    std::vector<ZORedirect*> redirects;
    std::vector<bool> aliasBits;
    std::vector<bool> assocBits;
    std::vector<RegID> parents;
    std::vector<RegID> nextSiblings;           // tree of tags
    std::vector<RegID> firstChildren;          // tree of tags
    std::vector<RegID> viewFirstChildren;      // as firstChildren, until a table of rules changes it
    std::vector<RegID> viewParents;            // in the tree of tags; npos for the root and for what is in no chain
    std::vector<NamedChildren> childrenByName; // sorted once registration has ended
    std::vector<TaggedChildren> childrenByTag; // likewise, in UTF-16 order
    std::vector<ViewTravRecord> viewRecords;

    /// The table of labels and rules; made when it is first asked for, defined in a layer above.
    std::shared_ptr<ExtendedInfoStore> extendedInfo;

    std::vector<StepRow> stepRows; // what lookup reads of each row
    StepIndex steps;

    std::size_t RowCount() const noexcept { return names.size(); }
    bool HasRow(RegID id) const noexcept { return id < names.size(); }

    /// Appends a row; the name and tag must be free, see `ZORegistry::RegisterZO`.
    RegID AddRow(htl::handle<IODS> const& store, H const& node, IZO* parent, meta::MetaPersistTraits resolved,
                 meta::MetaDataTraits const& data);
    /// The traits that a node gets below `parent`, which may be null.
    meta::MetaPersistTraits Resolve(meta::MetaPersistTraits const& asked, IZO const* parent) const;
    void Finish();

    /// The child "[]" of a row, npos without one.
    RegID ElementTemplate(RegID id) const noexcept { return StepRow::Wide(stepRows[id].elementTemplate); }
    /// The child row of a sub-name, the first of equal ones; npos if absent. Cost: one probe.
    RegID ChildByName(RegID id, std::string_view name) const noexcept {
        return steps.Find(
            id, name, [&](RegID row) { return StepRow::Wide(stepRows[row].parent) == id && HasSubName(row, name); });
    }
    /// The row of a whole name of one component, npos if absent. Cost: one probe.
    RegID TopLevel(std::string_view component) const noexcept {
        return steps.Find(IZO::npos, component, [&](RegID row) { return names[row] == component; });
    }
    bool HasSubName(RegID id, std::string_view name) const noexcept {
        StepRow const& row = stepRows[id];
        if (row.length > row.start.size()) return subNames[id] == name;
        return row.length == name.size() && row.Starts(name);
    }
    RegID ChildByTag(RegID id, std::wstring_view tag) const noexcept;
    RegID RowOfName(std::string_view name) const noexcept;
    RegID RowOfTag(std::wstring_view tag) const noexcept;
    bool IsAlias(RegID id) const noexcept { return aliasBits[id]; }

private:
    void BuildTagTree_();
};

namespace impl {

/// What the registry needs of the layers above it; they are joined where the library is put together.
struct RegistryHooks {
    /// Adds a persisted row's node to the persist tree.
    void (*addPersistEntry)(H const& node, std::wstring const& tagName);
    /// Makes the parents that a name lacks and gives the last one; empty if there is nothing to make.
    H (*makeParents)(std::wstring const& tagPath, std::string const& namePath, std::uint32_t type);
    /// Whether the node stands in for a parent that nobody registered.
    bool (*isParentPlaceholder)(IZO const& node);
};
extern RegistryHooks const registryHooks;

/// The tables of the calling thread's current registry, null until somebody asks for it. Every step of a lookup asks,
/// so it must not cost a call.
extern thread_local constinit ZORegistryImpl* currentTables
    __attribute__((tls_model("initial-exec"), visibility("hidden")));

/// Makes the default registry current on this thread.
ZORegistryImpl& UseDefaultRegistry();

/// The current registry's tables.
inline ZORegistryImpl& Current() { return currentTables ? *currentTables : UseDefaultRegistry(); }

/// How many redirects one question follows: they may lead in a circle.
constexpr int mostRedirects = 1000;
/// Follows the redirects of a row; npos where they lead nowhere, or once none is left.
std::size_t FollowRedirects(std::size_t row, int& redirectsLeft);
/// The row that a name leads to, indices ignored; npos if there is none.
///
/// The node of such a row may lack a row of its own: one whose name or tag was taken never learnt it.
std::size_t TemplateRow(std::string const& name, int& redirectsLeft);

/// An alias to the node that `owner` finds under a full name, which it keeps; empty without such a node. It has no row.
/// Defined where aliases are.
H MakeAlias(std::string const& source, ZOSet* owner);

/// The node of row `child` as a child of `parent`, which has no memory of its own: below a node of the current registry
/// a view bound by the row's own store, or a clone; below any other an empty clone.
H LiveChild(IZO const& parent, std::size_t child);

} // namespace impl
} // namespace zo
