// A walk over the children that a node has in the view.
#pragma once

#include "Common/model/IZO.h"

#include <cstddef>
#include <iterator>
#include <memory>

namespace zo::view::impl {

/// A forward iterator over the view children of a node, for one query. The end of every walk is `{}`.
///
/// Tables can splice in circles. A splice that leads back to a node whose children are being gathered gives nothing,
/// and so do splices more than 256 levels deep and all behind the first 10,000 that one walk comes to.
///
/// Lifetime: valid as long as the registry. Copies are deep and go on by themselves. Elements that are added to an
/// array behind the position are not seen. Threads: none of it is shared.
class ZO_API ZOFwrdViewIterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = H;
    using difference_type = std::ptrdiff_t;
    using pointer = H const*;
    using reference = H const&;

    ZOFwrdViewIterator() noexcept;
    /// The first child of `node` that shows for `query`; the end if there is none or the node itself doesn't show.
    ZOFwrdViewIterator(H const& node, int query);
    ZOFwrdViewIterator(ZOFwrdViewIterator const& other);
    ZOFwrdViewIterator(ZOFwrdViewIterator&& other) noexcept;
    ZOFwrdViewIterator& operator=(ZOFwrdViewIterator const& other);
    ZOFwrdViewIterator& operator=(ZOFwrdViewIterator&& other) noexcept;
    ~ZOFwrdViewIterator();

    /// Empty at the end.
    H const& operator*() const noexcept { return current; }
    H const* operator->() const noexcept { return &current; }
    /// An iterator at the end stays there.
    ZOFwrdViewIterator& operator++();
    ZOFwrdViewIterator operator++(int);
    /// Equal when both stand on the same node or both at an end.
    friend bool operator==(ZOFwrdViewIterator const& a, ZOFwrdViewIterator const& b) noexcept {
        return a.current.get() == b.current.get();
    }

private:
    struct State;
    struct Level;

    void BeginZO_(H const& node, int query);
    void NextZO_();
    void CopyImpl_(ZOFwrdViewIterator const& other);
    void ReleaseImpl_();
    // The same as a part of a walk that is at `above`, which may be null.
    void Begin_(H const& node, int query, Level const* above);
    void Next_(Level const* above);

    std::unique_ptr<State> state;
    H current;
};

} // namespace zo::view::impl
