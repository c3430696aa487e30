#include "Common/present/Text.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/present/Measure.h"
#include "Common/present/RelativePath.h"
#include "Common/present/Values.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace zo {

namespace {

constexpr std::wstring_view labelToken = L"!Label";
constexpr std::wstring_view tagToken = L"!Tag";
constexpr std::wstring_view positionToken = L"[]";

// One field of the entry that speaks for it. It is complete now and stays as it is, so it needs no lock.
template <class T>
T Field(H const& node, ExtendedInfoField::Type field, T ExtendedInfoEntry::*member) {
    return extinfo::Store().Lookup(node, field).*member;
}

// Whether all fields of a node come out of one entry: only a redirect may get some from its target.
bool HasOneEntry(H const& node) {
    if (!node) return true;
    ZORegistryImpl const& tables = impl::Current();
    std::size_t const row = node->RegID();
    return tables.HasRow(row) && !tables.redirects[row] && !tables.aliasBits[row];
}

// Puts values in the place of a label's words. False where a path leads nowhere.
bool ComposeLabel(H const& node, std::wstring const& label, std::wstring_view words, std::wstring& text) {
    impl::NestingGuard const guard;
    if (!guard) return true;
    bool first = true;
    while (true) {
        words.remove_prefix(std::min(words.find_first_not_of(L' '), words.size()));
        if (words.empty()) return true;
        std::wstring_view const word = words.substr(0, words.find(L' '));
        words.remove_prefix(word.size());
        if (!std::exchange(first, false)) text += L' ';
        if (word == labelToken) {
            text += label;
        } else if (word == L"!PrettyPrintDataParam") {
            text += impl::ParameterText(DataParameterType(node), 2);
        } else if (word == L"!AbbrevDataParam") {
            text += impl::ParameterText(DataParameterType(node), 1);
        } else {
            H const found = impl::NodeAtPath(node, std::wstring(word));
            if (!found) return false;
            text += PrettyPrintValue(found);
        }
    }
}

std::wstring LabelText(H const& node, bool strip) {
    std::wstring label;
    std::wstring words;
    {
        ExtendedInfoStore& store = extinfo::Store();
        // Other threads may complete the entry, so what it has is asked under the lock.
        sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
        ExtendedInfoEntry const& entry = store.Lookup(node, ExtendedInfoField::Label);
        label = entry.Label;
        bool const complete = entry.Has(ExtendedInfoField::LabelTag) && HasOneEntry(node);
        words = complete ? entry.LabelTag : store.Lookup(node, ExtendedInfoField::LabelTag).LabelTag;
    }
    if (!words.empty()) {
        std::wstring text;
        if (!ComposeLabel(node, label, words, text)) return label;
        label = std::move(text);
    }
    if (strip) std::erase(label, L'&');
    return label;
}

bool IsCalled(H const& node, std::string_view name) { return node && node->SubName() == name; }

// Expands the rule for a name in reports. Empty where a word of it leads nowhere.
std::wstring ExpandName(H const& node, std::wstring_view rule, bool& usedLabel) {
    usedLabel = false;
    impl::NestingGuard const guard;
    if (!guard) return {};
    std::wstring text;
    H current = node;
    while (!rule.empty()) {
        std::size_t taken = 1;
        if (rule.starts_with(labelToken)) {
            taken = labelToken.size();
            text += Label(current);
            usedLabel = true;
            current = node;
        } else if (rule.starts_with(tagToken)) {
            taken = tagToken.size();
            text += SimpleTag(current);
            current = node;
        } else if (rule.starts_with(positionToken)) {
            taken = positionToken.size();
            text += impl::PositionText(current);
            current = node;
        } else if (impl::IsAlphanumeric(rule.front())) {
            taken = static_cast<std::size_t>(std::find_if_not(rule.begin(), rule.end(), impl::IsAlphanumeric) -
                                             rule.begin());
            current = impl::NodeAtPath(node, std::wstring(rule.substr(0, taken)));
            if (!current) return {};
        } else {
            if (current.get() != node.get()) text += PrettyPrintValue(current);
            current = node;
            text += rule.front();
        }
        rule.remove_prefix(taken);
    }
    if (current.get() != node.get()) text += PrettyPrintValue(current);
    return text;
}

bool IsArray(H const& node) {
    meta::MetaDataTraits const traits = node->GetDataTraits();
    return traits.AsArray() != nullptr;
}

void Append(std::vector<NameParts>& parts, std::vector<NameParts>&& more) {
    parts.insert(parts.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

// One step up from a node: what it adds to the name of its parent.
struct NameLevel {
    std::vector<NameParts> own;
    std::wstring position; // of an array's element
    bool isLength = false; // of an array
};

// The pieces of a node's name with those of its parents. Parents may be many: they are climbed first, and joined from
// the top.
std::vector<NameParts> AllNameParts(H const& node, wchar_t separator) {
    std::vector<NameLevel> levels;
    // Each parent's name is shorter, unless nodes of the application answer for others in a circle.
    std::size_t left = impl::mostRedirects + (node ? node->Name().size() : 0);
    for (H current = node; current && left > 0; --left) {
        NameLevel& level = levels.emplace_back();
        bool fixed = false;
        level.own = impl::OwnNameParts(current, fixed);
        if (fixed) break;
        std::string const above = current->ParentName();
        if (above.empty()) break;
        H parent = current->Owner() ? current->Owner()->Find(above) : Find(above);
        if (parent && IsArray(parent)) {
            level.isLength = IsCalled(current, "Len");
            if (!level.isLength) level.position = impl::PositionText(current);
        }
        current = std::move(parent);
    }

    std::vector<NameParts> parts;
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        if (parts.empty()) {
            parts = std::move(level->own);
        } else if (level->isLength) {
            parts.emplace_back(std::wstring(), std::wstring(1, separator));
        } else if (!level->position.empty()) {
            parts.emplace_back(std::wstring(), L"[" + level->position + L"]");
        } else {
            if (!level->own.empty()) level->own.front().first.assign(1, separator);
            Append(parts, std::move(level->own));
        }
    }
    return parts;
}

} // namespace

std::wstring Label(H const& node) { return LabelText(node, true); }
std::wstring Label(std::string const& name) {
    H const node = Find(name);
    return node ? Label(node) : std::wstring();
}

std::wstring LabelWithAccel(H const& node) { return LabelText(node, false); }
std::wstring LabelWithAccel(std::string const& name) {
    H const node = Find(name);
    return node ? LabelWithAccel(node) : std::wstring();
}

std::wstring Description(H const& node) {
    return Field(node, ExtendedInfoField::Description, &ExtendedInfoEntry::Description);
}

std::wstring Category(H const& node) { return Field(node, ExtendedInfoField::Category, &ExtendedInfoEntry::Category); }

std::wstring CustomView(H const& node) {
    std::wstring view = Field(node, ExtendedInfoField::CustomView, &ExtendedInfoEntry::CustomView);
    if (view.empty() && node && Find(node, ":Valid")) view = L"zoEnumTemplate";
    return view;
}

style::Type Style(H const& node) { return Field(node, ExtendedInfoField::Style, &ExtendedInfoEntry::Style); }

bool IsDescription(H const& node) { return IsCalled(node, "Description"); }

bool IsColor(H const& node) { return IsCalled(node, "Color"); }

bool HasColor(H const& node) {
    if (!node) return false;
    if (IsColor(node)) return true;
    // What the table says is taken at its word, for a list of many nodes asks this.
    if (!Field(node, ExtendedInfoField::ColorTag, &ExtendedInfoEntry::ColorTag).empty()) return true;
    return static_cast<bool>(impl::NodeAtPath(node, L"Color"));
}

H GetColorZO(H const& node) {
    if (!node || IsColor(node)) return node;
    std::wstring const tag = Field(node, ExtendedInfoField::ColorTag, &ExtendedInfoEntry::ColorTag);
    return impl::NodeAtPath(node, tag.empty() ? L"Color" : tag);
}

unsigned long Color(H const& node) {
    htl::Int64 value = MissingColor;
    if (H const color = GetColorZO(node)) (void)color->Get(value); // a failed read leaves what there was
    return static_cast<std::uint32_t>(value);
}

std::wstring PrettyPrintNameValue(H const& node) {
    if (!node) return {};
    std::wstring const rule =
        Field(node, ExtendedInfoField::PrettyPrintNameTag, &ExtendedInfoEntry::PrettyPrintNameTag);
    bool usedLabel = false;
    return rule.empty() ? std::wstring() : ExpandName(node, rule, usedLabel);
}

std::vector<NameParts> impl::OwnNameParts(H const& node, bool& fixed) {
    fixed = false;
    std::vector<NameParts> parts;
    if (!node) return parts;
    std::wstring const rule =
        Field(node, ExtendedInfoField::PrettyPrintNameTag, &ExtendedInfoEntry::PrettyPrintNameTag);
    bool usedLabel = false;
    std::wstring text;
    if (!rule.empty()) text = ExpandName(node, rule, usedLabel);
    fixed = !text.empty();
    if (fixed && usedLabel) {
        parts.emplace_back(std::wstring(), std::move(text));
        return parts;
    }
    if (std::wstring label = Label(node); !label.empty()) parts.emplace_back(std::wstring(), std::move(label));
    if (fixed) parts.emplace_back(L" ", L"\"" + text + L"\"");
    return parts;
}

std::wstring PrettyPrintName(H const& node, wchar_t separator) {
    return PrettyPrintNameFromParts(AllNameParts(node, separator));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): clients link against this signature
std::wstring PrettyPrintNameFromParts(std::vector<NameParts> parts) {
    std::wstring text;
    for (NameParts const& part : parts) {
        text += L' ';
        text += part.first;
        text += part.second;
    }
    return text;
}

} // namespace zo
