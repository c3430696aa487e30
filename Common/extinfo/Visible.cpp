#include "Common/extinfo/Visible.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/model/CastCache.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/diag.h"
#include "support/fmt.h"

#include <functional>
#include <string>

namespace zo {

namespace {

using Rule = std::function<bool(void const*)> meta::MetaTraits::*;

[[gnu::always_inline]] inline hzn::diag::DeclareCategoryMask const& Category() {
    // Not a global: modules ask while the process starts.
    static hzn::diag::DeclareCategoryMask const category("ZO.IsVisible");
    return category;
}

bool IsLogged() { return hzn::diag::IsLogged(hzn::diag::Severity::Info, Category()); }

template <class... A>
void Log(wchar_t const* pattern, A const&... arguments) {
    hzn::eventsink::Instance()->Post(hzn::diag::Severity::Info, Category(), str::fmt::format(pattern, arguments...));
}

std::uint32_t Bits(int query) { return static_cast<std::uint32_t>(query); }

ZORedirect* AsRedirect(IZO& node) {
    // A walk asks for one sibling after the other, and most are of one class.
    thread_local constinit impl::CastCache<ZORedirect> cast;
    return cast(node);
}

// What the node's type says. Where there is no type there is no rule.
bool RuleSays(Rule rule, IZO const& node) {
    meta::MetaDataTraits const traits = node.GetDataTraits();
    meta::MetaTraits const* const record = traits.Descriptor();
    return !record || meta::CallRule(record->*rule, &node);
}

// Out of line: the usual answer must not pay for saving registers.
[[gnu::noinline]] bool IsVisibleByTable(std::size_t regID, std::uint32_t query) {
    ZORegistryImpl const& tables = impl::Current();
    if (!tables.HasRow(regID)) return false;
    ExtendedInfoStore& store = extinfo::Store();
    std::uint32_t mask = 0;
    std::size_t const index = store.LookupVisibility(regID, mask);
    bool const answer = visible::impl::Passes(mask, query);
    if (IsLogged()) {
        // Tags of entries stay as they are; only fields are completed.
        ExtendedInfoEntry const& entry = index == ExtendedInfoStore::End ? store.DefaultEntry() : store.Entry(index);
        Log(L"{%s} uses entry {%s}, Visiblity=%s\n", tables.tagNames[regID], entry.Tag, answer);
    }
    return answer;
}

} // namespace

bool IsVisible(std::size_t regID, int query) {
    ExtendedInfoStore const* const store = impl::Current().extendedInfo.get();
    std::uint32_t const mask = store ? store->FinalMask(regID) : 0;
    if (mask == 0 || IsLogged()) return IsVisibleByTable(regID, Bits(query));
    return visible::impl::Passes(mask, Bits(query));
}

bool IsVisible(H const& node, int query) {
    if (!node) return false;
    if (impl::Current().HasRow(node->RegID()) && !IsVisible(node->RegID(), query)) return false;
    return visible::impl::PassesAtRunTime(node, query);
}

H visible::impl::RuleTarget(H node) {
    for (int left = zo::impl::mostRedirects; node; --left) {
        ZORedirect const* const redirect = AsRedirect(*node);
        if (!redirect || !dynamic_cast<ZOAliasBase const*>(redirect)) break;
        if (left == 0) return {};
        node = redirect->Redirect();
    }
    return node;
}

bool visible::impl::PassesAtRunTime(H const& node, int query) {
    if (!node) return false;
    bool const isLogged = IsLogged();
    bool answer = true;
    ZORedirect const* const redirect = AsRedirect(*node);
    if (redirect || !zo::impl::Current().HasRow(node->RegID())) {
        ExtendedInfoStore& store = extinfo::Store();
        std::wstring entryTag;
        {
            sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
            ExtendedInfoEntry const& entry = store.Lookup(node, ExtendedInfoField::Visibility);
            answer = Passes(entry.mask, Bits(query));
            if (isLogged) entryTag = entry.Tag;
        }
        if (isLogged) Log(L"{%s} uses entry {%s}, Visibility=%s )\n", FullTag(node), entryTag, answer);
    }
    if (answer) {
        H const target = redirect ? RuleTarget(node) : node;
        answer = target && RuleSays(&meta::MetaTraits::visible, *target);
    }
    if (isLogged) Log(L"{%s} run time visibility is %s.\n", FullTag(node), answer);
    return answer;
}

bool IsEditable(H const& node) {
    H const target = visible::impl::RuleTarget(node);
    return target && RuleSays(&meta::MetaTraits::editable, *target);
}

int visible::Mask(hzn::apptype::Value analysis) {
    using namespace hzn::apptype;
    switch (analysis) {
    case Solute: return 0x8000;
    case Dynamic: return 0x200;
    case Water: return 0x400;
    case Stress: return 0x800;
    case Slope: return 0x1000;
    case Heat: return 0x2000;
    case Air: return 0x4000;
    case Project: return 0x10000;
    case AllPhysics:
    case Any: break;
    }
    return viewmask::physics;
}

int visible::Mask(hzn::appmode::Value mode) {
    using namespace hzn::appmode;
    switch (mode) {
    case Define: return 0x20000;
    case Contour: return 0x40000;
    case Any: break;
    }
    return viewmask::modes;
}

} // namespace zo
