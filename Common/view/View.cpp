#include "Common/view/View.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/Visible.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include "support/text.h"

#include <algorithm>
#include <string_view>

namespace zo {

namespace {

constexpr std::size_t mostComponents = ZOTransaction::mostComponents;
/// Splices within each other that one walk follows.
constexpr int mostSpliced = 256;
/// Of what stands below detours.
constexpr std::size_t mostBelowDetours = 2'000'000;

/// The children of one node on the way down.
struct Level {
    H source; // the node behind its redirects
    view::ZOFwrdViewIterator at;
    bool isBelowDetour; // what shows here may show elsewhere, too
};

bool IsRedirect(IZO const& node) {
    ZORegistryImpl const& tables = impl::Current();
    if (tables.HasRow(node.RegID()) && !tables.redirects[node.RegID()]) return false;
    return dynamic_cast<ZORedirect const*>(&node) != nullptr;
}

/// Whether a child shows below this one node only, given that it shows in one place itself.
bool HasOnePlace(IZO const& child, IZO const& node) {
    ZORegistryImpl const& tables = impl::Current();
    std::size_t const row = child.RegID();
    std::size_t const above = node.RegID();
    if (!tables.HasRow(row) || !tables.HasRow(above)) return true; // nothing stands below it
    // What is spliced stands in the list of the node that it is spliced from.
    std::size_t at = tables.viewParents[row] != IZO::npos ? tables.viewParents[row] : tables.parents[row];
    for (int left = mostSpliced; at != above; at = tables.viewParents[at])
        if (!tables.HasRow(at) || !(tables.viewRecords[at].flags & ViewTravRecord::Splice) || left-- == 0) return false;
    if (tables.parents[row] == above) return true;
    // What was moved below an element from outside of it shows below all elements.
    std::string_view const name = tables.names[above];
    return tables.names[row].starts_with(name.substr(0, name.rfind(IZO::chArrayClose) + 1));
}

/// Whether two nodes stand for one place.
bool IsSamePlace(IZO const& a, IZO const& b) {
    if (&a == &b) return true;
    if (a.RegID() != b.RegID() || a.Owner() != b.Owner()) return false;
    std::string_view const name = impl::EntryName(a);
    return !name.empty() && name == impl::EntryName(b);
}

bool Leads(H const& source, std::vector<Level> const& levels) {
    return std::any_of(levels.begin(), levels.end(),
                       [&source](Level const& level) { return IsSamePlace(*level.source, *source); });
}

} // namespace

void view::Walk(H const& node, int query, std::function<bool(H const&, unsigned)> const& visit) {
    if (!node) return;
    std::size_t leftBelowDetours = mostBelowDetours;
    std::vector<Level> levels;
    levels.push_back({GetSource(node), {node, query}, false});
    while (true) {
        H const child = *levels.back().at;
        bool const isBelowDetour = levels.back().isBelowDetour;
        if (!child || (isBelowDetour && leftBelowDetours == 0)) {
            levels.pop_back();
            if (levels.empty()) return;
            ++levels.back().at;
            continue;
        }
        if (isBelowDetour) --leftBelowDetours;
        if (visit(child, static_cast<unsigned>(levels.size() - 1)) && levels.size() < deepest) {
            bool const isRedirect = IsRedirect(*child);
            bool const isDetour = isRedirect || !HasOnePlace(*child, *levels.back().source);
            H source = isRedirect ? GetSource(child) : child;
            if (!isDetour || !Leads(source, levels)) {
                ZOFwrdViewIterator first(child, query);
                if (*first) {
                    levels.push_back({std::move(source), std::move(first), isBelowDetour || isDetour});
                    continue;
                }
            }
        }
        ++levels.back().at;
    }
}

void view::VisibleSubFields(std::vector<H>& fields, H const& node, int query) {
    for (ZOFwrdViewIterator at(node, query); *at; ++at) fields.push_back(*at);
}

bool view::IsValid(H const& node, int query) { return node && !node->Tag().empty() && IsVisible(node, query); }

H view::FindTag(H const& node, std::wstring const& tag, int query) {
    if (!node) return {};
    // In the node's own set: another one would make a child that doesn't know what is staged.
    if (H found = zo::FindTag(node, tag); IsVisible(found, query)) return found;
    for (ZOFwrdViewIterator at(node, query); *at; ++at)
        if ((*at)->TagName(SimpleTagType) == tag) return *at;
    return {};
}

H view::FindTag(std::wstring const& tag, int query) {
    constexpr wchar_t const* separators = L".[";
    auto const isSeparator = [](wchar_t c) { return c == L'.' || c == L'['; };
    if (std::size_t(std::count_if(tag.begin(), tag.end(), isSeparator)) >= mostComponents) return {};
    std::size_t end = std::min(tag.find_first_of(separators), tag.size());
    if (end == 0) return {};
    H node = ZORegistry::Instance()->FindTag(tag.substr(0, end));
    if (!IsVisible(node, query)) return {};
    while (end < tag.size()) {
        // An index keeps its bracket.
        std::size_t const start = tag[end] == L'.' ? end + 1 : end;
        end = std::min(tag.find_first_of(separators, end + 1), tag.size());
        if (end == start) return {};
        node = FindTag(node, tag.substr(start, end - start), query);
        if (!node) return {};
    }
    return node;
}

std::wstring FullTagFromView(std::string const& name, int query, H const& start) {
    if (std::size_t(std::count(name.begin(), name.end(), IZO::chSeparator)) >= mostComponents) return {};
    std::vector<std::string> parts;
    str::split(parts, name, ".");
    ExtendedInfoStore& store = extinfo::Store();
    std::wstring tag;
    H current = start;
    for (std::string const& part : parts) {
        H const found = part.empty() ? H() : current ? Find(current, part) : Find(part);
        if (!found) return {};
        std::wstring const entry = store.Lookup(found, ExtendedInfoField::Whole).Tag;
        view::ZOFwrdViewIterator at(current ? current : ZORegistry::Instance()->Root(), query);
        while (*at && store.Lookup(*at, ExtendedInfoField::Whole).Tag != entry) ++at;
        if (!*at) return {};
        path::Append(tag, SubTag(entry));
        current = *at;
    }
    return tag;
}

} // namespace zo
