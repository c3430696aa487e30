// A set of nodes: the registry, and every set that reads through another.
#pragma once

#include "Common/model/IZO.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zo {

class ZOArray;
class ZOTransaction;
struct ZOSetImpl;

/// Nodes under names, found by name or tag.
///
/// Lifetime: counted, so it lives on the heap behind a handle. Nodes name their set as owner without counting it; when
/// a set ends they have no owner any more. Threads: none of it is locked.
class ZO_API ZOSet : public htl::handle_ref_counter {
public:
    ZOSet(ZOSet const&) = delete;
    ZOSet& operator=(ZOSet const&) = delete;

protected:
    ~ZOSet() override;

public:
    /// A transaction that reads from this set and commits to it. The set must live behind a handle.
    virtual htl::handle<ZOTransaction> CreateTransaction();
    /// The element of an array. Empty for a null array or an index past the end. Elements of an array without owner
    /// come without owner, too.
    virtual H Find(ZOArray* array, std::size_t index) = 0;
    /// The child of a node. In a registry `name` is one component.
    virtual H Find(H const& node, std::string const& name) = 0;
    /// The node under a name, with indices from 0: `a[3].b`, `a.[3].b` and `a.3.b` alike. Any text is accepted.
    virtual H Find(std::string const& name) = 0;
    /// Enters a node under a name of its own. A name under which the set holds a node, inserted or staged:
    /// `duplicate_name()`.
    virtual htl::status Insert(std::string const& name, H const& node) = 0;
    /// Enters a node under a name for as long as the caller holds it.
    virtual htl::status InsertTemporary(std::string const& name, H const& node) = 0;

    /// `Find(FormName(name, a, b, c))`.
    H Find(std::string const& name, int a, int b = -1, int c = -1);
    /// The node under a tag, with indices from 1. Empty for a tag that is empty or begins with "." or "[".
    H FindTag(std::wstring const& tag);
    /// The child of a node by tag; "[n]" and "n" give element n - 1 of an array.
    H FindTag(H const& node, std::wstring const& tag);

    /// Enters an alias to the node under `source`. Empty, with nothing entered, if there is none or the name is taken.
    H AssociateAlias(std::string const& name, std::string const& source);
    /// Enters a structure of aliases, with `name` as its tag; each pair is a sub-name and a source name. Empty if the
    /// name is taken. The sources need not be there yet.
    H AssociateAlias(std::string const& name, std::vector<std::pair<std::string, std::string>> const& pairs);

    /// Turns the text of an access expression into a name; `$1`, `ZO_INDEX1` and `ZO_ARG1` take the first argument.
    /// A negative argument leaves the marker as "$1".
    static std::string FormName(std::string const& text, int a, int b, int c);

    /// The set that this one reads through, null for a registry.
    ZOSet* Source() const noexcept { return source.get(); }
    /// The set that changes go to.
    ZOSet* Base() const noexcept { return base ? base.get() : source.get(); }

    /// The tables of this set, for the library's own use.
    ZOSetImpl* Impl() const noexcept { return impl.get(); }
    /// What its nodes hold of it, for the library's own use.
    impl::SetAnchor* Anchor() const noexcept { return anchor; }

protected:
    /// `base` empty: the same as `source`.
    ZOSet(std::unique_ptr<ZOSetImpl> impl, htl::handle<ZOSet> source, htl::handle<ZOSet> base);

    std::unique_ptr<ZOSetImpl> impl;
    htl::handle<ZOSet> source; ///< what is read from; may be empty
    htl::handle<ZOSet> base;   ///< what is committed to; may be empty

private:
    impl::SetAnchor* anchor;
};

} // namespace zo
