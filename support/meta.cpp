#include "support/meta.h"

#include "support/reset.h"
#include "support/typename.h"

namespace meta {

bool bValidateRegistry = false;

bool MetaTraitsTypes::RuleTrue(void const* const) { return true; }

bool MetaIsMissingValueNotSupported::IsMissing(void const*) { return false; }

bool MetaIsDefaultNever::IsDefault(void const*) { return false; }

bool CallRule(std::function<bool(void const*)> const& rule, zo::IZO const* node) {
    // The parameter is the node itself: a derived pointer with another base in front would be another address.
    return !rule || rule(static_cast<void const*>(node));
}

std::string MetaDataTraits::TypeName() const { return meta::TypeName(descriptor ? *descriptor->type : typeid(void)); }

void MetaDataTraits::DepthFirstTraversal_(TravAction const& action, void* const memory, void*) const {
    if (!descriptor || !memory || (action.operation & resetToDefault.operation) == 0) return;
    Resetter(*this).Apply(memory);
}

MetaPersistTraits::MetaPersistTraits(std::uint32_t type, std::wstring tagName, bool asValue, bool allChildrenValue)
    : Type(type), TagName(std::move(tagName)), Tag(TagFromTagName(TagName)), IsPersistedAsValue(asValue),
      IsAllChildrenValue(allChildrenValue) {}

std::wstring MetaPersistTraits::TagFromTagName(std::wstring tagName) {
    if (std::size_t const dot = tagName.rfind(L'.'); dot != std::wstring::npos) tagName.erase(0, dot + 1);
    return tagName;
}

} // namespace meta
