// Registers an alias where a module is put together.
#pragma once

#include "Common/registry/IODS.h"
#include "Common/registry/ZORegistry.h"

namespace zo {

/// Its constructor does the work; a module makes one as a static object.
struct ZO_API ZOAliasRegistrator {
    /// Registers `alias` in the current registry under the store's name, with the traits of a structure that is always
    /// visible and editable. Throws as `ZORegistry::RegisterZO`.
    ZOAliasRegistrator(H const& alias, htl::handle<IODS> const& store, meta::MetaPersistTraits traits);
};

} // namespace zo
