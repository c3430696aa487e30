// Where a document from the clipboard is read into, before any of it reaches the registry.
#pragma once

#include "Common/registry/ZOTransaction.h"

#include <string>

namespace zo::clip {

namespace impl {

/// A transaction that can be told to stage nothing more.
class ZO_API ZOTransactionLockable : public ZOTransaction {
public:
    /// As `ZOTransaction`.
    ZOTransactionLockable(htl::handle<ZOSet> const& source, htl::handle<ZOSet> const& base, bool pin);
    ~ZOTransactionLockable() override;

    using ZOTransaction::Find;
    /// As `ZOTransaction::Find`; when locked, only what is staged is found.
    H Find(std::string const& name) override;

    /// A mode of the transaction; nothing to do with threads.
    bool locked = false;
};

} // namespace impl

/// A transaction on the current registry through which nothing of the registry shows: what is read into it starts from
/// empty nodes. It commits to the registry.
class ZO_API ZOClipImportTransaction : public impl::ZOTransactionLockable {
public:
    ZOClipImportTransaction();
    ~ZOClipImportTransaction() override;
};

} // namespace zo::clip
