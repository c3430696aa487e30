// Many branches of one transaction, committed one by one.
#pragma once

#include "support/status.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

class ZOTransaction;

namespace impl {

/// Commits branches of a transaction to other places, without units, as `ZOTransaction::CommitAs` does each time.
///
/// The entries are taken and sorted once, so what is staged later is not committed. Lifetime: holds the staged nodes
/// and the set that they are committed to; the transaction must live as long.
class BranchCommit {
public:
    explicit BranchCommit(ZOTransaction& transaction);
    BranchCommit(BranchCommit const&) = delete;
    BranchCommit& operator=(BranchCommit const&) = delete;
    ~BranchCommit();

    /// Assigns what stands under `from`, a staged name that is no alias, to the same places under `to`, and appends
    /// each failure. Cost: logarithmic in the number of entries, and a lookup and an assignment for each one below.
    void operator()(std::string_view from, std::string const& to, std::vector<htl::status>& failures) const;

private:
    struct Taken;
    std::unique_ptr<Taken> taken;
};

} // namespace impl
} // namespace zo
