// The node: what every value, structure, array, alias and placeholder of the tree derives from.
//
// A node holds who it is and nothing else: its row in the registry, the set it lives in and its place there. Names,
// tags, types and children stand in the tables of the registry and of the set, so a node is cloned cheaply.
#pragma once

#include "support/handle.h"
#include "support/int64.h"
#include "support/meta.h"
#include "support/status.h"

#include <concepts>
#include <cstddef>
#include <limits>
#include <string>

class ZORoot;

namespace zo {

class IZO;
class IZOAccessValueTypeTrait;
class ZOSet;
struct ZOFwrdIterator;

namespace impl {
struct NodeAccess;

/// Where a set is, for as long as it is. Shared by the set and everything that names it as its owner, so that it does
/// not matter which of them goes first. The count is plain, as that of nodes.
struct SetAnchor {
    ZOSet* set;
    std::size_t count = 1; // the set's own

    static SetAnchor* Share(SetAnchor* anchor) noexcept {
        if (anchor) ++anchor->count;
        return anchor;
    }
    static void Drop(SetAnchor* anchor) noexcept {
        if (anchor && --anchor->count == 0) delete anchor;
    }
};
} // namespace impl

/// The counted node handle. An empty one is the answer of a failed lookup.
using H = htl::handle<IZO, htl::handle_mgmt_refcounted>;

/// Which tag a node is asked for.
enum TagType {
    SimpleTagType = 0, ///< the last component
    FullTagType = 1    ///< the path from the top
};

/// Base of all nodes.
///
/// Lifetime: counted by handles; a fresh object has count 0. The owner set is not counted: a node that outlives it has
/// no owner. Threads: nodes have no lock, and a registry with its nodes belongs to one thread at a time.
class ZO_API IZO : public htl::handle_ref_counter {
public:
    static constexpr char chSeparator = '.';                          ///< between name components
    static constexpr char chArrayOpen = '[';                          ///< opens an array index
    static constexpr char chArrayClose = ']';                         ///< closes an array index
    static constexpr char chAttribute = ':';                          ///< marks an attribute sub-name
    static constexpr char chFuncOpen = '(';                           ///< opens a function argument
    static constexpr char chFuncClose = ')';                          ///< closes a function argument
    static constexpr char chLink = '@';                               ///< marks a link
    static constexpr char chSub = '$';                                ///< marks a substitution
    static constexpr std::size_t npos = static_cast<std::size_t>(-1); ///< no such index

    /// What can happen to a node. Nothing in the library fires an event.
    enum EventType { Changed };
    /// The names of the events, by their numbers.
    static char const* const evName[1];
    /// The event's name, "!Changed". Another number is a programming error: asserted in debug builds, "" in others.
    static char const* EventName(EventType event);

    /// `regID` is the node's row or npos. Derived classes pass npos as owner id: only a set gives one.
    IZO(std::size_t regID, ZOSet* owner, std::size_t ownerID);
    /// Copies the identity, the owner id included, with a count of 0. The place in the owner stays the original's: the
    /// copy's end doesn't touch it.
    IZO(IZO const& other);
    /// Copies the identity and leaves the count alone. A place that this node has in its owner ends, unless the owner
    /// counts it.
    IZO& operator=(IZO const& other);

protected:
    /// Takes the node out of its owner set, if it has an entry there.
    ~IZO() override;

public:
    /// Description of the node's type. A node without a row gives empty traits.
    virtual meta::MetaDataTraits GetDataTraits() const;
    /// Whether the value is its type's default; of an array, whether it is empty; false for any other node.
    virtual bool IsDefault() const;
    /// Whether the value is its type's missing value; of an array, whether it is empty; false for any other node.
    virtual bool IsUndefined() const;
    /// Number of elements of an array, 1 of any other node.
    virtual std::size_t Length() const;
    /// Whether the present value is valid: success, or the failure of the type's check. Always success while the owner
    /// has its validation switched off, and for a node without a value.
    virtual htl::status Verify() const;
    /// How the node persists. A node without a row gives default traits.
    virtual meta::MetaPersistTraits GetPersistTraits() const;
    /// Puts the value back to its default.
    virtual void Clear();
    /// Writes the value: convert, compare, validate, store. On failure the old value stays. A node without a value
    /// fails with `not_supported` and its type's name.
    virtual htl::status Set(double const& value);
    virtual htl::status Set(__int64 const& value);
    virtual htl::status Set(bool const& value);
    virtual htl::status Set(std::wstring const& value);
    /// Reads the value. A node without a value fails with `not_supported` and leaves the output alone.
    virtual htl::status Get(double& value);
    virtual htl::status Get(__int64& value);
    virtual htl::status Get(bool& value);
    virtual htl::status Get(std::wstring& value);
    /// A walk over the children whose stores are available, in registry order.
    virtual ZOFwrdIterator begin();
    /// Runs the node, for client classes that do something. The base fails with `not_supported`.
    virtual htl::status Run();
    /// A new node with the same row and owner, no owner id, count 0 and the value: wrap it in a handle at once.
    virtual IZO* Clone() = 0;
    /// The same with the type's default value, or the empty array. The base clones.
    virtual IZO* EmptyClone();
    /// Takes over the value of a node of the same value type.
    virtual htl::status Assign(H const& source);

protected:
    /// One step of a lookup: the child of exactly this sub-name, empty if there is none. The node is fresh, with no
    /// entry; the base gives the registered child, live where the owner is the current registry, else its default.
    virtual H GetSubZO(std::string const& name);
    /// Lets `trait` act on the value and writes back what it changed. Returns the trait's failure or that of the write,
    /// in visible units. A node without a value fails with `not_supported("<IZO>")`.
    virtual htl::status CallValueTypeTrait(IZOAccessValueTypeTrait& trait);
    /// The node became the prototype of row `regID`. An override calls its base.
    virtual void OnRegistration(std::size_t regID);
    /// Client memory below this node went away or moved: what was kept of it has to be dropped.
    virtual void OnInvalidateMemory();
    /// Changes the length, which is known to differ. A node that is no array fails with `not_supported("")`.
    virtual htl::status Resize(std::size_t const& length);
    /// Moves a walk of this node's children to the next one, or to the end.
    virtual void GetNextSubZO(ZOFwrdIterator& position);

public:
    /// Writes a wide literal as text.
    htl::status Set(wchar_t const* text) { return Set(std::wstring(text ? text : L"")); }
    /// Writes any whole number as a 64-bit integer. A value above that range is written as its digits, so a node that
    /// holds it takes it; any other fails as its conversion from text does.
    template <class V>
    requires(std::integral<V> && !std::same_as<V, bool> && !std::same_as<V, htl::Int64> && !std::same_as<V, wchar_t> &&
             !std::same_as<V, char>) htl::status Set(V value) {
        if constexpr (sizeof(V) == sizeof(htl::Int64) && std::unsigned_integral<V>)
            if (value > static_cast<V>(std::numeric_limits<htl::Int64>::max())) return Set(std::to_wstring(value));
        return Set(static_cast<htl::Int64 const&>(htl::Int64(value)));
    }
    /// Narrow text would be taken for a bool.
    htl::status Set(void const*) = delete;

    /// The set that the node lives in, null for a node handed out alone. Not counted.
    ZOSet* Owner() const noexcept { return anchor ? anchor->set : nullptr; }
    /// Index of the node's entry in its owner, npos without one.
    std::size_t OwnerID() const noexcept { return ownerID; }
    /// The node's row in the registry, npos without one.
    std::size_t RegID() const noexcept { return regID; }

    /// The name of the node's entry, "" without owner or entry.
    std::string Name() const;
    /// The last component of the name; for a registered node its sub-name, also without an entry.
    std::string SubName() const;
    /// The name less its last component, "" without owner or entry.
    std::string ParentName() const;
    /// The tag of the persist traits.
    std::wstring Tag() const;
    /// The tag by which documents and people know the node, a temporary one too; indices count from 1.
    std::wstring TagName(TagType type) const;
    /// Byte order of the two entry names, both looked up in this node's owner: -1, 0 or 1. 0 if a node has no entry.
    int CompareName(IZO const& other) const;
    /// Whether the type is atomic.
    bool IsValueType() const;
    /// Resizes an array. The present length succeeds on every node.
    htl::status SetLength(std::size_t const& length);
    /// Appends a copy of `value` to this array. The array stays one element longer if the copy fails.
    htl::status PushBack(H& value);
    /// The end of every walk.
    ZOFwrdIterator end();

private:
    friend struct impl::NodeAccess;

    impl::SetAnchor* anchor;
    std::size_t ownerID;
    std::size_t regID;
    bool entered = false; // a set gave this very object its place, which ends with it
};

/// A position in a walk over a node's children.
struct ZO_API ZOFwrdIterator {
    H current;                     ///< the node here, empty at the end
    H parent;                      ///< the node being walked, held alive
    std::size_t subID = IZO::npos; ///< row of the child in a walk over a structure; npos before the first and in arrays
    std::size_t index = 0;         ///< element index in a walk over an array

    /// Steps to the next child. Without a parent it ends.
    ZOFwrdIterator& operator++();
    H const& operator*() const noexcept { return current; }
    /// Equal when both stand on the same node or both at an end.
    friend bool operator==(ZOFwrdIterator const& a, ZOFwrdIterator const& b) noexcept {
        return a.current.get() == b.current.get();
    }
};

namespace impl {

/// The way to the protected operations of nodes, for the library's own classes and for client node classes.
///
/// Functions that take a raw node need it to be held by a handle.
struct ZO_API NodeAccess {
    static H GetSubZO(IZO& node, std::string const& name) { return node.GetSubZO(name); }
    static htl::status CallValueTypeTrait(IZO& node, IZOAccessValueTypeTrait& trait) {
        return node.CallValueTypeTrait(trait);
    }
    static void OnRegistration(IZO& node, std::size_t regID) { node.OnRegistration(regID); }
    static void OnInvalidateMemory(IZO& node) { node.OnInvalidateMemory(); }
    static htl::status Resize(IZO& node, std::size_t length) { return node.Resize(length); }
    static void GetNextSubZO(IZO& node, ZOFwrdIterator& position) { node.GetNextSubZO(position); }

    static void SetOwner(IZO& node, ZOSet* owner, std::size_t ownerID) noexcept;
    /// Whether a set gave this very node its place; a copy only knows the place of its original.
    static bool IsEntered(IZO const& node) noexcept { return node.entered; }

    /// How many nodes are alive in the process, for tests that nothing is left over. Only libraries that were built
    /// with assertions count; others give 0.
    static std::size_t LiveNodes() noexcept;
};

} // namespace impl

/// The failures of this library. One place knows each identifier and the order of its arguments.
namespace ZOError {

/// 21654: elements of the array are in use, so it can't be resized.
ZO_API htl::status array_memory_conflict();
/// 21655: a name is taken.
ZO_API htl::status duplicate_name();
/// 21656: the value couldn't be put where the file says, and why; the cause is nested as its text.
ZO_API htl::status file_assign(std::wstring const& name, std::wstring const& value, htl::status const& cause);
/// 21658: an element's attribute holds no value of its sort.
ZO_API htl::status file_invalid_element_attribute(std::wstring const& element, std::wstring const& attribute,
                                                  std::wstring const& value);
/// 21659: a text that is no name.
ZO_API htl::status invalid_name(std::string const& name);
/// 21660: nothing stands under the name.
ZO_API htl::status not_found(std::string const& name);
/// 21661: the node can't do this; `what` is often its type's name, and empty for operations that have no type.
ZO_API htl::status not_supported(std::string const& what);
/// 21662: a number outside its bounds, which are both allowed values.
ZO_API htl::status out_of_bounds(int value, int lowest, int highest);
/// 21663: a text that is none of the words.
ZO_API htl::status not_recognized(std::wstring const& text);
/// 29130: what the text names is not visible.
ZO_API htl::status not_visible(std::wstring const& text);

} // namespace ZOError

} // namespace zo
