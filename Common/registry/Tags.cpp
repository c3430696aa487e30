// From a tag to a live node, and from a node to its tag. Tags count indices from 1.
#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ZOArray.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include "support/text.h"

#include <string>
#include <string_view>
#include <vector>

namespace zo {

using impl::Current;

namespace {

ZOSet& SetOf(IZO const* node) { return node && node->Owner() ? *node->Owner() : *ZORegistry::Instance(); }

// Puts the indices of a tag into a registered name. Empty where the tag lacks one or has another text in brackets.
std::string FillIndices(std::string_view name, std::wstring_view tag) {
    std::string filled;
    std::size_t open = 0;
    while (true) {
        std::size_t const place = name.find(".[]");
        filled += name.substr(0, place);
        if (place == name.npos) return filled;
        name.remove_prefix(place + 3);
        open = tag.find(L'[', open);
        std::size_t const close = tag.find(L']', open);
        std::size_t number = 0;
        if (open == tag.npos || close == tag.npos ||
            !path::ParseIndex(tag.substr(open + 1, close - open - 1), number) || number == 0)
            return {};
        filled += '[';
        filled += std::to_string(number - 1);
        filled += ']';
        open = close;
    }
}

// The number of an index component, "[n]" or "n"; 0 for anything else.
std::size_t IndexOf(std::wstring_view component) {
    if (component.size() >= 3 && component.front() == L'[' && component.back() == L']')
        component = component.substr(1, component.size() - 2);
    else if (component.empty() || !str::IsDigit(component.front()))
        return 0;
    std::size_t number = 0;
    return path::ParseIndex(component, number) ? number : 0;
}

// One component of a tag: an index with its brackets, or a tag.
std::wstring_view TakeComponent(std::wstring_view& rest) {
    if (rest.starts_with(L'.')) rest.remove_prefix(1);
    std::size_t end;
    if (rest.starts_with(L'[')) {
        end = rest.find(L']');
        end = end == rest.npos ? rest.size() : end + 1;
    } else {
        end = rest.find_first_of(L".[");
    }
    std::wstring_view const component = rest.substr(0, end);
    rest.remove_prefix(component.size());
    return component;
}

// The child row that a tag leads to below a row, its redirects and its type's template.
std::size_t ChildRow(std::size_t row, std::wstring_view tag, int& redirectsLeft) {
    ZORegistryImpl const& tables = Current();
    row = impl::FollowRedirects(row, redirectsLeft);
    if (row == IZO::npos) return row;
    if (std::size_t const child = tables.ChildByTag(row, tag); child != IZO::npos) return child;
    auto const type = tables.typeTemplates.find(tables.dataTraits[row].TypeName());
    if (type != tables.typeTemplates.end() && tables.HasRow(type->second))
        if (std::size_t const child = tables.ChildByTag(type->second, tag); child != IZO::npos) return child;
    return tables.RowOfTag(path::Join(std::wstring_view(tables.tagNames[row]), tag));
}

// The name that a tag stands for, empty for none.
std::string NameOfTag(std::wstring const& tag) {
    ZORegistryImpl const& tables = Current();
    std::wstring normal = tag;
    if (!path::Normalize(normal)) return {};
    if (std::size_t const row = tables.RowOfTag(normal); row != IZO::npos) return FillIndices(tables.names[row], tag);

    // From the longest beginning that is a registered tag, component by component. Nothing that is registered is
    // longer than the longest registered tag, so a hostile tag costs no more than its length.
    std::size_t row = IZO::npos;
    std::wstring_view left;
    std::size_t taken = 0;
    std::wstring prefix;
    for (std::wstring_view walk = tag; !walk.empty();) {
        std::wstring_view const component = TakeComponent(walk);
        if (component.empty()) break;
        if (component.front() == L'[')
            prefix += L".[]";
        else
            path::Append(prefix, component);
        if (std::size_t const hit = tables.RowOfTag(prefix); hit != IZO::npos) {
            row = hit;
            left = walk;
            taken = tag.size() - walk.size();
        }
        if (tables.longestTag < prefix.size()) break;
    }
    if (row == IZO::npos) return {};
    std::string name = FillIndices(tables.names[row], std::wstring_view(tag).substr(0, taken));
    if (name.empty()) return {};
    int redirectsLeft = impl::mostRedirects;
    while (!left.empty()) {
        std::wstring_view const component = TakeComponent(left);
        if (component.empty()) return {};
        if (std::size_t const number = IndexOf(component)) {
            row = impl::FollowRedirects(row, redirectsLeft);
            if (row == IZO::npos) return {};
            name += '[';
            name += std::to_string(number - 1);
            name += ']';
            row = tables.ChildByName(row, "[]");
        } else {
            row = ChildRow(row, component, redirectsLeft);
            if (row != IZO::npos) path::Append(name, tables.subNames[row]);
        }
        if (row == IZO::npos) return {};
    }
    return name;
}

} // namespace

H ZOSet::FindTag(std::wstring const& tag) {
    if (tag.empty() || tag.front() == L'.' || tag.front() == L'[') return {};
    std::string const name = NameOfTag(tag);
    return name.empty() ? H() : Find(name);
}

namespace {

H FindTagBelow(ZOSet& set, H const& node, std::wstring const& tag, int redirectsLeft) {
    ZORegistryImpl const& tables = Current();
    if (!node || !tables.HasRow(node->RegID())) return {};
    std::size_t const row = node->RegID();
    if (std::size_t const number = IndexOf(tag))
        if (auto* const array = dynamic_cast<ZOArray*>(node.get())) return set.Find(array, number - 1);
    if (std::size_t const child = tables.ChildByTag(row, tag); child != IZO::npos)
        return set.Find(node, tables.subNames[child]);
    if (auto const* const redirect = dynamic_cast<ZORedirect const*>(node.get()); redirect && redirectsLeft > 0)
        if (H found = FindTagBelow(set, redirect->Redirect(), tag, redirectsLeft - 1)) return found;
    // Aliases stand in no list of tags, but they are known under their own.
    std::size_t const hit = tables.RowOfTag(row == 0 ? tag : tables.tagNames[row] + L"." + tag);
    return hit != IZO::npos && tables.parents[hit] == row ? set.Find(node, tables.subNames[hit]) : H();
}

} // namespace

H ZOSet::FindTag(H const& node, std::wstring const& tag) { return FindTagBelow(*this, node, tag, impl::mostRedirects); }

H FindTag(std::wstring const& tag) { return ZORegistry::Instance()->FindTag(tag); }
H FindTag(std::string const& tag) { return FindTag(str::as_wstring(tag)); }
H FindTag(H const& node, std::wstring const& tag) { return SetOf(node.get()).FindTag(node, tag); }
H FindTag(H const& node, std::string const& tag) { return FindTag(node, str::as_wstring(tag)); }

H GetNameZO(H const& node) { return FindTag(node, std::wstring(L"Name")); }
H GetIDZO(H const& node) { return FindTag(node, std::wstring(L"ID")); }

H LookupRelative(H const& start, std::wstring const& path) {
    constexpr std::wstring_view climb = L"@Parent";
    H node = start;
    std::wstring_view rest = path;
    while (node && !rest.empty()) {
        auto const climbs = [&rest, climb] {
            return rest.starts_with(climb) &&
                   (rest.size() == climb.size() || rest[climb.size()] == L'.' || rest[climb.size()] == L'@');
        };
        if (climbs()) {
            std::string const from = node->Name();
            if (from.empty()) return {}; // nobody knows what is above it
            std::string_view name = from;
            while (climbs()) {
                rest.remove_prefix(climb.size());
                if (rest.starts_with(L'.')) rest.remove_prefix(1);
                name = path::ParentPart(name);
            }
            node = SetOf(node.get()).Find(name.empty() ? ZORegistry::RootName() : std::string(name));
            continue;
        }
        std::size_t const end = rest.find_first_of(L".[", rest.front() == L'[' ? 1 : 0);
        std::wstring const first(rest.substr(0, end));
        rest.remove_prefix(first.size());
        if (rest.starts_with(L'.')) rest.remove_prefix(1);
        node = FindTag(node, first);
    }
    return node;
}

std::wstring IZO::TagName(TagType type) const {
    std::string const entry = Name();
    std::string const above(path::ParentPart(std::string_view(entry)));
    H const parent = above.empty() ? H() : Owner()->Find(above);
    if (!parent) {
        meta::MetaPersistTraits const traits = GetPersistTraits();
        return type == FullTagType ? traits.TagName : traits.Tag;
    }
    std::string_view const last = path::LastPart(std::string_view(entry));
    if (last == "@") return parent->TagName(type); // a link's step has no tag of its own
    std::wstring full = type == FullTagType ? parent->TagName(FullTagType) : std::wstring();
    std::size_t number = 0;
    std::size_t const close = last.find(')');
    if (!last.empty() && last.front() >= '0' && last.front() <= '9' && path::ParseIndex(last, number))
        return full + L"[" + std::to_wstring(number + 1) + L"]";
    if (last.starts_with("At(") && close != last.npos && path::ParseIndex(last.substr(3, close - 3), number))
        return full + L"[" + std::to_wstring(number) + L"]";
    std::wstring const tag = GetPersistTraits().Tag;
    if (tag.empty()) return full + L".";
    path::Append(full, tag);
    return full;
}

std::wstring SimpleTag(H const& node) { return node ? node->TagName(SimpleTagType) : std::wstring(); }
std::wstring FullTag(H const& node) { return node ? node->TagName(FullTagType) : std::wstring(); }

namespace {

std::wstring TagOf(std::string const& name, TagType type) {
    if (H const node = Find(name)) return node->TagName(type);
    IZO const* const known = GetTemplate(name);
    return known ? known->TagName(type) : std::wstring();
}

} // namespace

std::wstring SimpleTag(std::string const& name) { return TagOf(name, SimpleTagType); }
std::wstring FullTag(std::string const& name) { return TagOf(name, FullTagType); }
std::wstring SubTag(std::wstring const& tag) { return std::wstring(path::LastPart(std::wstring_view(tag))); }

std::wstring TagFromName(std::string const& name) {
    std::wstring tag;
    std::string read;
    std::string_view rest = name;
    bool live = true;
    int redirectsLeft = impl::mostRedirects;
    while (!rest.empty()) {
        // One component with what separates it.
        std::size_t const start = rest.find_first_not_of(".[]");
        bool const element = start != 0 && rest.starts_with("[]");
        bool const dottedElement = start != 0 && rest.starts_with(".[]");
        std::size_t length;
        std::string_view component;
        if (element || dottedElement) {
            length = element ? 2 : 3;
            component = "[]";
        } else {
            if (start == rest.npos) break;
            std::size_t const end = rest.find_first_of(".[]", start);
            component = rest.substr(start, end == rest.npos ? end : end - start);
            length = start + component.size();
            if (length < rest.size() && rest[length] == ']') ++length;
        }
        rest.remove_prefix(length);
        bool const first = read.empty();
        if (component == "[]")
            read += ".[]";
        else
            path::Append(read, component);

        // Where a beginning of the name has no live node, nothing below it has.
        H node = live ? Find(read) : H();
        // Names may lead in a circle. The place reached has a short name of its own, so the cost stays that of the
        // text.
        std::string place = node ? node->Name() : std::string();
        if (!node) {
            live = false;
            std::size_t const row = impl::TemplateRow(read, redirectsLeft);
            if (row == IZO::npos) break;
            node = Current().nodes[row];
            place = RegNormalizedName(row);
        }
        if (!place.empty() && place.size() < read.size()) read = std::move(place);
        if (first)
            tag = node->TagName(FullTagType);
        else if (component == "[]")
            tag += L".[]";
        else
            path::Append(tag, node->TagName(SimpleTagType));
    }
    return tag;
}

} // namespace zo
