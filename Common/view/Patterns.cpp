// Patterns with wildcards, expanded over the view.
#include "Common/view/View.h"

#include "Common/extinfo/Visible.h"
#include "Common/present/RelativePath.h"
#include "Common/present/Text.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"

#include <algorithm>
#include <string_view>

namespace zo {

namespace {

using Patterns = std::vector<std::pair<std::wstring, std::wstring>>;
using view::ZONameParts;

constexpr std::size_t mostComponents = ZOTransaction::mostComponents;
constexpr std::size_t mostWildcards = 64;
constexpr std::size_t mostNodes = 1'000'000;
constexpr wchar_t wildcard = L'$';

/// The next component of a pattern, taken off it.
std::wstring_view TakeHead(std::wstring_view& pattern) noexcept {
    std::wstring_view const head = pattern.substr(0, pattern.find(L'.'));
    pattern.remove_prefix(std::min(head.size() + 1, pattern.size()));
    return head;
}

bool IsWildcard(std::wstring_view component) noexcept { return component.find(wildcard) != component.npos; }

/// Whether a pattern is short enough to be followed.
bool IsBounded(std::wstring_view pattern) noexcept {
    std::size_t components = 0;
    std::size_t wildcards = 0;
    while (!pattern.empty() && components <= mostComponents && wildcards <= mostWildcards) {
        ++components;
        if (IsWildcard(TakeHead(pattern))) ++wildcards;
    }
    return components <= mostComponents && wildcards <= mostWildcards;
}

/// The label of an element: its index in place of the text from "$" to "]".
std::wstring LabelOf(std::wstring const& label, H const& element) {
    std::size_t const begin = label.find(wildcard);
    std::size_t index = 0;
    if (begin == label.npos || !impl::ElementIndex(element, index)) return label;
    std::size_t const end = std::min(label.find(L']', begin), label.size());
    return label.substr(0, begin) + std::to_wstring(index) + label.substr(end);
}

/// The record that the number in `child` names.
H RecordOf(H const& container, H const& child) {
    GID const number = GetObjectIDByTag(child);
    if (number == 0) return {};
    ZOSet* const set = container->Owner() ? container->Owner() : ZORegistry::Instance();
    if (H record = GetSource(set, {GetRecordID(child, Link::AsStored).group, number})) return record;
    return Find(container, "At(" + std::to_string(number) + ")");
}

class Expansion {
public:
    /// `found` is asked for each node that a pattern names; the expansion ends when it answers no.
    Expansion(int query, std::function<bool(ZONameParts&& match)> found) : query(query), found(std::move(found)) {}

    void Run(Patterns const& patterns) {
        for (auto const& [pattern, label] : patterns)
            if (IsBounded(pattern) && !Expand_({}, pattern, label, {})) return;
    }

private:
    // Below `node`, which is empty for the top. No depth but that of the wildcards.
    bool Expand_(H node, std::wstring_view pattern, std::wstring const& label, std::vector<NameParts> parts) {
        do {
            std::wstring_view const head = TakeHead(pattern);
            if (IsWildcard(head)) return !node || ExpandChildren_(node, pattern, label, parts);
            std::wstring const tag(head);
            node = node ? view::FindTag(node, tag, query) : view::FindTag(tag, query);
            if (!node) return true;
            AddOwnParts_(parts, node);
        } while (!pattern.empty());
        return !IsVisible(node, query) || found({std::move(node), label, std::move(parts)});
    }

    bool ExpandChildren_(H const& node, std::wstring_view rest, std::wstring const& label,
                         std::vector<NameParts> const& parts) {
        bool const isArray = node->GetDataTraits().AsArray() != nullptr;
        view::ZOFwrdViewIterator at(node, query);
        bool const isByRecord = *at && GetIDZO(*at);
        for (; *at; ++at) {
            if (nodesLeft == 0) return false;
            --nodesLeft;
            H const child = isByRecord ? RecordOf(node, *at) : *at;
            if (!child || (isByRecord && !IsVisible(child, query))) continue;
            std::wstring text = isArray ? LabelOf(label, *at) : label;
            if (rest.empty()) {
                if (!found({child, std::move(text), parts})) return false;
                continue;
            }
            std::vector<NameParts> childParts = parts;
            AddOwnParts_(childParts, child);
            if (!Expand_(child, rest, text, std::move(childParts))) return false;
        }
        return true;
    }

    static void AddOwnParts_(std::vector<NameParts>& parts, H const& node) {
        bool fixed = false;
        std::vector<NameParts> own = impl::OwnNameParts(node, fixed);
        if (fixed)
            parts = std::move(own); // it says all that there is to say
        else
            std::move(own.begin(), own.end(), std::back_inserter(parts));
    }

    int query;
    std::function<bool(ZONameParts&&)> found;
    std::size_t nodesLeft = mostNodes;
};

} // namespace

std::vector<ZONameParts> view::FindAllMatching(Patterns const& patterns, int query) {
    std::vector<ZONameParts> all;
    Expansion(query, [&all](ZONameParts&& match) {
        all.push_back(std::move(match));
        return true;
    }).Run(patterns);
    return all;
}

std::vector<NameParts> GetModifierViewTraversalName(H const& node, Patterns const& patterns) {
    constexpr int definingSlopes = 0x21008; // any view
    std::string const name = node ? node->Name() : std::string();
    std::vector<NameParts> parts;
    if (name.empty()) return parts;
    Expansion(definingSlopes, [&](ZONameParts&& match) {
        if (GetSource(match.node)->Name() != name) return true;
        parts = std::move(match.parts);
        return false;
    }).Run(patterns);
    return parts;
}

} // namespace zo
