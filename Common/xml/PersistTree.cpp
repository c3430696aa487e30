#include "Common/xml/PersistTree.h"

#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORegistry.h"
#include "Common/xml/ActiveNode.h"
#include "Common/xml/Ordering.h"

#include "support/diag.h"
#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>

namespace zo::xml {
namespace impl {
namespace {

struct Ordering {
    enum Kind { First = 0, Swap = 1 } kind;
    std::wstring a;
    std::wstring b; // of a swap
};

struct Tree {
    bool ordered = false;
    std::vector<ZOPersistEntry> roots;
};

// Keys are plain so that a lookup makes no handle; the handle beside each keeps its registry alive. Members go in
// reverse order at the end of the process: the tree's nodes before the registry that they live in.
template <class V>
struct Kept {
    htl::handle<ZOSet> registry;
    V value;
};

struct Store {
    std::mutex mutex;
    std::map<ZORegistry const*, Kept<Tree>> trees;
    std::map<ZORegistry const*, Kept<std::vector<Ordering>>> orderings;
};

Store& TheStore() {
    static Store store;
    return store;
}

template <class V>
V& Of(std::map<ZORegistry const*, Kept<V>>& map, ZORegistry* registry) {
    auto& kept = map[registry];
    if (!kept.registry) kept.registry = htl::handle<ZOSet>(registry);
    return kept.value;
}

/// The tree of the current registry. Only its thread goes on with the result, so the lock guards the maps alone.
Tree& CurrentTree() {
    ZORegistry* const registry = ZORegistry::Instance();
    Store& store = TheStore();
    std::scoped_lock const lock(store.mutex);
    Tree& tree = Of(store.trees, registry);
    if (tree.roots.empty()) tree.roots.emplace_back(registry->Root(), nullptr);
    return tree;
}

std::vector<Ordering> CurrentOrderings() {
    Store& store = TheStore();
    std::scoped_lock const lock(store.mutex);
    auto const found = store.orderings.find(ZORegistry::Instance());
    return found == store.orderings.end() ? std::vector<Ordering>() : found->second.value;
}

void AddOrdering(Ordering ordering) {
    Store& store = TheStore();
    std::scoped_lock const lock(store.mutex);
    Of(store.orderings, ZORegistry::Instance()).push_back(std::move(ordering));
}

void Sort(ZOPersistEntry& entry) {
    if (!entry.wrapper) {
        std::stable_sort(entry.children.begin(), entry.children.end(),
                         [](ZOPersistEntry const& a, ZOPersistEntry const& b) {
                             return str::CompareUtf16(a.persist.Tag, b.persist.Tag) < 0;
                         });
        entry.ChildrenMoved();
    }
    for (ZOPersistEntry& child : entry.children) Sort(child);
}

/// Parent path and leaf of an ordering's path.
std::pair<std::wstring_view, std::wstring_view> CutLeaf(std::wstring_view path) {
    std::size_t const dot = path.rfind(L'.');
    if (dot == std::wstring_view::npos) return {{}, path};
    return {path.substr(0, dot), path.substr(dot + 1)};
}

ZOPersistEntry* Descend(ZOPersistEntry& from, std::wstring_view path) {
    ZOPersistEntry* at = &from;
    while (!path.empty()) {
        std::size_t const dot = path.find(L'.');
        std::size_t const child = at->ChildByTag(path.substr(0, dot));
        if (child == IZO::npos) return nullptr;
        at = &at->children[child];
        path = dot == std::wstring_view::npos ? std::wstring_view() : path.substr(dot + 1);
    }
    return at;
}

void Apply(Ordering const& ordering, ZOPersistEntry& root) {
    auto const [parentPath, leaf] = CutLeaf(ordering.a);
    ZOPersistEntry* const parent = Descend(root, parentPath);
    std::size_t const a = parent ? parent->ChildByTag(leaf) : IZO::npos;
    if (a == IZO::npos) return;
    auto const first = parent->children.begin();
    if (ordering.kind == Ordering::First) {
        std::rotate(first, first + static_cast<std::ptrdiff_t>(a), first + static_cast<std::ptrdiff_t>(a) + 1);
    } else {
        std::size_t const b = parent->ChildByTag(CutLeaf(ordering.b).second);
        if (b == IZO::npos || b == a) return;
        std::swap(parent->children[a], parent->children[b]);
    }
    parent->ChildrenMoved();
}

hzn::diag::DeclareCategoryMask const& Category() {
    static hzn::diag::DeclareCategoryMask const category("Persist");
    return category;
}

bool IsLogged() { return hzn::diag::IsLogged(hzn::diag::Severity::Warning, Category()); }

void Log(std::wstring const& tagName, wchar_t const* what) {
    hzn::eventsink::Instance()->Post(hzn::diag::Severity::Warning, Category(), tagName + L": " + what);
}

/// Says what would be lost between a save and a load.
void CheckEntry(ZOPersistEntry const& entry, ZOPersistEntry const& parent, std::wstring const& tagName) {
    auto const& parents = zo::impl::Current().parents;
    if (parents[entry.node->RegID()] != parent.node->RegID())
        Log(tagName, L"the name and the tag have different parents; the row is not saved.");
    if (entry.tag == L"Len" || entry.tag == L"Missing")
        Log(tagName, L"the tag is reserved.");
    else if (!sys::file::IsXmlName(entry.tag))
        Log(tagName, L"the tag is no XML name.");
    // The elements of an array are written whatever their own store says.
    if (RegSubName(entry.node->RegID()) != "[]" && !IsActive(entry.node))
        Log(tagName, L"the row is persisted, but its data store is not active.");
}

} // namespace

void AddPersistEntry(H const& node, std::wstring const& tagName) {
    ZOPersistEntry* at = &CurrentTree().roots.front();
    constexpr std::wstring_view separators = L"[].";
    std::wstring_view const path = tagName;

    std::size_t begin = path.find_first_not_of(separators);
    while (begin != std::wstring_view::npos) {
        std::size_t const end = path.find_first_of(separators, begin);
        std::size_t const next = path.find_first_not_of(separators, end);
        if (next == std::wstring_view::npos) {
            at->AddChild(node);
            if (IsLogged()) CheckEntry(at->children.back(), *at, tagName);
            return;
        }
        std::size_t const child = at->ChildByTag(path.substr(begin, end - begin));
        if (child == IZO::npos) break;
        at = &at->children[child];
        begin = next;
    }
    if (IsLogged()) Log(tagName, L"no parent with this tag path is persisted; the row is not saved.");
}

std::pair<ZOPersistEntry*, ZOPersistEntry*> PersistRoots(bool ordered) {
    Tree& tree = CurrentTree();
    if (ordered && !tree.ordered) {
        Sort(tree.roots.back());
        for (Ordering const& ordering : CurrentOrderings()) Apply(ordering, tree.roots.back());
        tree.ordered = true;
    }
    return {tree.roots.data(), tree.roots.data() + tree.roots.size()};
}

} // namespace impl

void RegisterFirstOrdering(std::wstring const& path) { impl::AddOrdering({impl::Ordering::First, path, {}}); }

void RegisterPersistanceOrdering(std::wstring const& a, std::wstring const& b) {
    impl::AddOrdering({impl::Ordering::Swap, a, b});
}

} // namespace zo::xml
