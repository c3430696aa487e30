#include "Common/xml/ActiveNode.h"

#include "Common/redirect/Placeholders.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

namespace zo::xml::impl {

bool IsActive(H const& node) {
    // Aliases without a row may lead to each other.
    constexpr int redirectLimit = 1000;
    H at = node;
    for (int step = 0; at && step < redirectLimit; ++step) {
        if (at->RegID() != IZO::npos) {
            auto const& stores = zo::impl::Current().stores;
            if (at->RegID() >= stores.size()) return false;
            auto const& store = stores[at->RegID()];
            if (store && store->IsActiveDataStore()) return true;
            return dynamic_cast<ZOParentPlaceholder const*>(at.get()) != nullptr;
        }
        auto const* redirect = dynamic_cast<ZORedirect const*>(at.get());
        if (!redirect || !redirect->IsAlias()) return false;
        at = redirect->Redirect();
    }
    return false;
}

} // namespace zo::xml::impl
