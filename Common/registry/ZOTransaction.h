// Transactions: a scratch copy of a part of the tree, to be committed or taken back.
#pragma once

#include "Common/registry/ZOSet.h"

#include <cstddef>
#include <string>

namespace zo {

class ZOJournal;

/// Stages what is found through it. Nothing in the source changes until `Commit`.
///
/// A lookup clones the node and the nodes above it on first use, so a second lookup gives the same staged node. What
/// the source reaches by another name, through an alias, a link or another spelling of an index, comes as an alias to
/// the staged node of that name.
///
/// Lifetime: on the heap behind a handle, unless it is pinned. Staged nodes live as long as the transaction or a
/// handle; one that outlives its transaction has no owner any more. Threads: as sets; the source must not change under
/// it.
class ZO_API ZOTransaction : public ZOSet {
public:
    /// Reads from `source`, which must be there, and commits to `base`, which is `source` if empty. A pinned
    /// transaction is an automatic object: no handle ever deletes it.
    ZOTransaction(htl::handle<ZOSet> const& source, htl::handle<ZOSet> const& base, bool pin);
    ~ZOTransaction() override;

    using ZOSet::Find;

    /// The array's staged element: `Find` of its name and the index in brackets.
    H Find(ZOArray* array, std::size_t index) override;
    /// `Find` of both names joined; below the root, and below a node without a name, of `name` as it stands.
    H Find(H const& node, std::string const& name) override;
    /// The staged node under a name, staged now if the source knows it, or if it lies in a staged array that was made
    /// longer. Names of more than `mostComponents` components or `longestName` characters lead nowhere. The nodes above
    /// a name are staged even if it leads nowhere itself.
    ///
    /// Raises `htl::status_exception` with `duplicate_name()` if a hidden entry has the name.
    ///
    /// Cost: a lookup in the source for the first node that isn't staged yet; each staged node is one entry.
    H Find(std::string const& name) override;
    /// Keeps the node until `Rollback` or the end of the transaction. A name that is taken: `duplicate_name()`.
    htl::status Insert(std::string const& name, H const& node) override;
    htl::status InsertTemporary(std::string const& name, H const& node) override;

    /// Assigns every staged value to the node of its name in `Base()`, by name in byte order. Names that the base
    /// doesn't know are skipped, and so are aliases. The entries stay, so a second commit assigns again.
    ///
    /// The units are names of nodes that hold a unit system, the first one in this transaction, the second in the base;
    /// empty for none. If both systems are known and differ, values with a unit are converted.
    ///
    /// Goes on behind a failure and returns the first one; what was assigned stays. Nodes without a value are no
    /// failure. `journal`, if given, receives what changed, in place of what it held. Cost: a lookup and an assignment
    /// for each entry.
    htl::status Commit(std::string const& sourceUnits, std::string const& targetUnits, ZOJournal* journal = nullptr);
    /// Commits what is staged under `from`, after aliases, to the same place under `to`. Success without `from`.
    htl::status CommitAs(std::string const& from, std::string const& to, std::string const& sourceUnits,
                         std::string const& targetUnits, ZOJournal* journal = nullptr);
    /// Drops everything that is staged. Nodes that are still held have no owner any more. The transaction can be used
    /// again.
    void Rollback();

    static constexpr std::size_t mostComponents = 4096; ///< of a name that can be staged
    static constexpr std::size_t longestName = 65536;   ///< in bytes

private:
    struct Step;
    H Stage_(Step& step);
};

/// Stages empty nodes, to build new content: each has its type's default value, each array is empty. Elements of arrays
/// are not found by index.
class ZO_API ZOEmptyTransaction : public ZOTransaction {
public:
    /// Commits to the current registry.
    ZOEmptyTransaction(htl::handle<ZOSet> const& source, bool pin);
    ~ZOEmptyTransaction() override;

    /// A transaction on this one that commits to this one's source.
    htl::handle<ZOTransaction> CreateTransaction() override;

    using ZOTransaction::Find;
    /// Always empty.
    H Find(ZOArray* array, std::size_t index) override;
    H Find(H const& node, std::string const& name) override;
    /// An empty node of the type that the source has under the name; empty for a name that is not in normal form.
    /// Raises as a transaction's does.
    H Find(std::string const& name) override;
};

} // namespace zo
