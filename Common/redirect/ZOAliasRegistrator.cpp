#include "Common/redirect/ZOAliasRegistrator.h"

namespace zo {

// NOLINTNEXTLINE(performance-unnecessary-value-param): clients link against this signature
ZOAliasRegistrator::ZOAliasRegistrator(H const& alias, htl::handle<IODS> const& store, meta::MetaPersistTraits traits) {
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure; // the rules of a fresh record say yes
        return structure;
    }();
    ZORegistry::Instance()->RegisterZO(store, alias, traits, meta::MetaDataTraits(record));
}

} // namespace zo
