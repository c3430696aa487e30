#include "Common/extinfo/Explain.h"

#include "Common/extinfo/Cells.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/extinfo/Visible.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include "support/fmt.h"
#include "support/text.h"

#include <bit>
#include <span>
#include <string_view>

namespace zo {
namespace {

using sys::thread::impl::ExclusiveAccessGuard;
using Field = ExtendedInfoField;

// By number.
constexpr std::array<std::wstring_view, Field::count> fieldNames = {
    L"IsDynamic", L"Label",      L"LabelTag", L"Description",   L"PrettyPrintNameTag", L"PrettyPrintValueTag",
    L"ColorTag",  L"CustomView", L"Category", L"ViewHierarchy", L"ViewExcl",           L"Physics",
    L"Mode",      L"Style",
};

/// The word for all bits of the group, else those for one bit each.
std::wstring Words(std::uint32_t bits, std::span<extinfo::Word const> words, std::uint32_t group) {
    if ((bits & group) == group) return L"all";
    std::wstring text;
    for (extinfo::Word const& word : words) {
        if (!std::has_single_bit(word.bits) || !(bits & word.bits)) continue;
        if (!text.empty()) text += L',';
        text += word.text;
    }
    return text.empty() ? L"none" : text;
}

std::wstring ListText(std::vector<ViewTravItem> const& list) {
    std::wstring text;
    for (ViewTravItem const& item : list) {
        if (!text.empty()) text += L", ";
        text += item.SourceTag;
        if (!item.DestTag.empty()) text.append(L" as ").append(item.DestTag);
    }
    return text;
}

std::wstring NameOf(H const& node) {
    if (!node) return {};
    std::wstring tag = FullTag(node);
    return tag.empty() ? str::as_wstring(node->Name()) : tag;
}

/// The row that states a field which `entry` has, or lacks; empty if none does.
std::wstring StatingTag(ExtendedInfoStore const& store, ExtendedInfoEntry const& entry, unsigned field) {
    std::size_t index = store.StatedBy(store.IndexOf(entry), field);
    // The default entry has all fields, but its row states some of them only.
    if (index == ExtendedInfoStore::End && entry.Has(field)) {
        index = store.Find(L"Default");
        if (index != ExtendedInfoStore::End && store.StatedBy(index, field) != index) return {};
    }
    return index == ExtendedInfoStore::End ? std::wstring() : store.Entry(index).Tag;
}

EntryTest Test(ExtendedInfoStore const& store, ExtendedInfoEntry const& entry, std::uint32_t mask,
               std::uint32_t query) {
    auto const group = [&](std::uint32_t bits, unsigned field) {
        return GroupTest{query & bits, mask & bits, (query & mask & bits) != 0, StatingTag(store, entry, field)};
    };
    EntryTest test;
    test.isAsked = true;
    test.entry = entry.Tag;
    test.views = group(viewmask::views, Field::ViewExcl);
    test.views.passes |= (query & viewmask::ignoreViews) != 0;
    test.physics = group(viewmask::physics, Field::Physics);
    test.modes = group(viewmask::modes, Field::Mode);
    test.passes = visible::impl::Passes(mask, query);
    return test;
}

EntryTest TestByRow(std::size_t row, std::uint32_t query) {
    ExtendedInfoStore& store = extinfo::Store();
    ExclusiveAccessGuard const guard(store.Lock());
    std::uint32_t mask = 0;
    std::size_t const index = store.LookupVisibility(row, mask);
    return Test(store, index == ExtendedInfoStore::End ? store.DefaultEntry() : store.Entry(index), mask, query);
}

EntryTest TestAtRunTime(H const& node, std::uint32_t query) {
    ExtendedInfoStore& store = extinfo::Store();
    ExclusiveAccessGuard const guard(store.Lock());
    ExtendedInfoEntry const& entry = store.Lookup(node, Field::Visibility);
    return Test(store, entry, entry.mask, query);
}

void Append(std::wstring& text, wchar_t const* name, GroupTest const& test, std::span<extinfo::Word const> words,
            std::uint32_t group) {
    text += str::fmt::format(L"    %s: %s, asked %s, shows in %s", name, test.passes ? L"yes" : L"no",
                             Words(test.asked, words, group), Words(test.shows, words, group));
    if (!test.statedBy.empty()) text += str::fmt::format(L", stated by {%s}", test.statedBy);
    text += L'\n';
}

void Append(std::wstring& text, wchar_t const* what, EntryTest const& test) {
    if (!test.isAsked) return;
    text += str::fmt::format(L"  %s {%s}: %s\n", what, test.entry, test.passes ? L"yes" : L"no");
    Append(text, L"views", test.views, extinfo::viewWords, viewmask::views);
    Append(text, L"physics", test.physics, extinfo::physicsWords, viewmask::physics);
    Append(text, L"modes", test.modes, extinfo::modeWords, viewmask::modes);
}

} // namespace

std::wstring CellText(ExtendedInfoEntry const& entry, unsigned field) {
    switch (field) {
    case Field::IsDynamic: return entry.IsDynamic ? L"1" : L"0";
    case Field::Label: return entry.Label;
    case Field::LabelTag: return entry.LabelTag;
    case Field::Description: return entry.Description;
    case Field::PrettyPrintNameTag: return entry.PrettyPrintNameTag;
    case Field::PrettyPrintValueTag: return entry.PrettyPrintValueTag;
    case Field::ColorTag: return entry.ColorTag;
    case Field::CustomView: return entry.CustomView;
    case Field::Category: return entry.Category;
    case Field::ViewHierarchy: return ListText(entry.viewTravList);
    case Field::ViewExcl: return Words(~entry.mask, extinfo::viewWords, viewmask::views);
    case Field::Physics: return Words(entry.mask, extinfo::physicsWords, viewmask::physics);
    case Field::Mode: return Words(entry.mask, extinfo::modeWords, viewmask::modes);
    case Field::Style:
        for (extinfo::Word const& word : extinfo::styleWords)
            if (word.bits == static_cast<std::uint32_t>(entry.Style)) return std::wstring(word.text);
        break;
    default: break;
    }
    return {};
}

FieldsExplained ExplainFields(H const& node) {
    FieldsExplained explained;
    explained.node = NameOf(node);
    ExtendedInfoStore& store = extinfo::Store();
    ExclusiveAccessGuard const guard(store.Lock());
    for (unsigned field = 0; field < Field::count; ++field) {
        ExtendedInfoEntry const& entry = store.Lookup(node, field);
        FieldSource& source = explained.fields[field];
        source.field = static_cast<Field::Type>(field);
        source.value = CellText(entry, field);
        source.entry = entry.Tag;
        source.statedBy = StatingTag(store, entry, field);
    }
    return explained;
}

VisibilityExplained ExplainVisibility(H const& node, int query) {
    VisibilityExplained explained;
    if (!node) return explained;
    explained.node = NameOf(node);
    auto const bits = static_cast<std::uint32_t>(query);
    bool const hasRow = impl::Current().HasRow(node->RegID());
    if (hasRow) {
        explained.byRow = TestByRow(node->RegID(), bits);
        if (!explained.byRow.passes) return explained;
    }
    if (!hasRow || dynamic_cast<ZORedirect const*>(node.get())) {
        explained.atRunTime = TestAtRunTime(node, bits);
        if (!explained.atRunTime.passes) return explained;
    }
    explained.isRuleAsked = true;
    explained.ruleOf = NameOf(visible::impl::RuleTarget(node));
    // Its entry passes, so the rule is all that is left of this layer.
    explained.rulePasses = visible::impl::PassesAtRunTime(node, query);
    explained.isVisible = explained.rulePasses;
    return explained;
}

std::wstring FieldsExplained::Text() const {
    std::wstring text = node + L'\n';
    for (FieldSource const& source : fields) {
        if (source.statedBy.empty()) continue;
        text +=
            str::fmt::format(L"  %s: \"%s\", stated by {%s}", fieldNames[source.field], source.value, source.statedBy);
        if (source.entry != source.statedBy) text += str::fmt::format(L", taken over by {%s}", source.entry);
        text += L'\n';
    }
    return text;
}

std::wstring VisibilityExplained::Text() const {
    std::wstring text = str::fmt::format(L"%s: %s\n", node, isVisible ? L"visible" : L"hidden");
    Append(text, L"entry of the row", byRow);
    Append(text, L"entry at run time", atRunTime);
    if (!isRuleAsked) return text;
    if (ruleOf.empty() && !rulePasses) return text + L"  what it stands for isn't there: no\n";
    text += str::fmt::format(L"  rule of the type of {%s}: %s\n", ruleOf, rulePasses ? L"yes" : L"no");
    return text;
}

} // namespace zo
