#include "Common/clip/ZOClipImportTransaction.h"

#include "Common/registry/SetImpl.h"
#include "Common/registry/ZORegistry.h"

namespace zo::clip {
namespace {

htl::handle<ZOSet> CurrentRegistry() { return htl::handle<ZOSet>(ZORegistry::Instance()); }

} // namespace

impl::ZOTransactionLockable::ZOTransactionLockable(htl::handle<ZOSet> const& source, htl::handle<ZOSet> const& base,
                                                   bool pin)
    : ZOTransaction(source, base, pin) {}

impl::ZOTransactionLockable::~ZOTransactionLockable() = default;

H impl::ZOTransactionLockable::Find(std::string const& name) {
    if (!locked) return ZOTransaction::Find(name);
    SetEntry const* const entry = Impl()->entries.FirstVisible(name);
    return entry ? H(entry->node) : H();
}

ZOClipImportTransaction::ZOClipImportTransaction()
    : ZOTransactionLockable(htl::handle<ZOSet>(new ZOEmptyTransaction(CurrentRegistry(), false)), CurrentRegistry(),
                            false) {}

ZOClipImportTransaction::~ZOClipImportTransaction() = default;

} // namespace zo::clip
