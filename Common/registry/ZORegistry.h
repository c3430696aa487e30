// The table of everything that an application's modules registered.
#pragma once

#include "Common/registry/IODS.h"
#include "Common/registry/ZOSet.h"

#include <deque>
#include <string>
#include <typeinfo>

namespace zo {

struct ZORegistryImpl;
class ZORegistryIterator;

/// The registered nodes and their tables.
///
/// A registry goes through two phases: rows are added, then `OnPostRegistration` sorts the lists. The operations that
/// say so work on the current registry of the calling thread, whichever registry they are called on. Threads: a
/// registry belongs to one thread at a time; each thread can be pointed at one of its own.
class ZO_API ZORegistry : public ZOSet {
public:
    /// A registry with its root, not current anywhere. Put it behind a handle.
    ZORegistry();

protected:
    ~ZORegistry() override;

public:
    using ZOSet::Find;

    /// The calling thread's current registry; at first the process's default registry, which lives until the process
    /// exits. Not counted.
    static ZORegistry* Instance();
    /// Makes `registry` current on this thread and returns the one before, null if the thread never asked. Null sends
    /// the thread back to the default. Nothing is counted: the caller keeps the registry alive.
    static ZORegistry* SetInstance(ZORegistry* registry);
    /// "HZNData".
    static std::string RootName();

    /// Adds the row of a node to the current registry, below the parent that its store's name says; parents that are
    /// missing are made. Registered nodes and stores live as long as the registry.
    ///
    /// Throws `htl::status_exception` with `duplicate_name()` for a name or tag that is taken; the row stays.
    /// Cost: independent of the number of rows, save for the persist tree, where siblings are searched, and for rows
    /// that come after `OnPostRegistration`, which move their siblings.
    void RegisterZO(htl::handle<IODS> const& store, H const& node, meta::MetaPersistTraits const& persist,
                    meta::MetaDataTraits const& data);
    /// Ends registration: sorts the lists of children and builds the tree of tags. May be called again after more rows.
    void OnPostRegistration();
    /// Whether the current registry's registration has ended.
    bool InitializationComplete() const;
    /// The root of the current registry.
    H Root() const;

    /// Puts every branch that is available and active back to its defaults.
    void Clear();
    /// Tells the node under `name` that client memory moved; with an empty name every registered node of the top level
    /// and every inserted one. Unknown names do nothing.
    void InvalidateMemory(std::string const& name);
    /// A view of row `regID` of the current registry over `memory`, without a name. The row's node must be a wrapper.
    H Wrap(std::size_t regID, void* memory);

    /// Brings a name to its registered form: the name of the template that it leads to, else every index as ".[]".
    /// False for malformed text, which is cut where writing stopped.
    static bool NormalizeName(std::string& name);
    /// Brings every index of a tag to ".[]".
    static bool NormalizeTag(std::wstring& tag);

    H Find(ZOArray* array, std::size_t index) override;
    H Find(H const& node, std::string const& name) override;
    H Find(std::string const& name) override;
    /// A name in normal form is refused if it is taken; any other name is entered without a test and not kept alive.
    htl::status Insert(std::string const& name, H const& node) override;
    htl::status InsertTemporary(std::string const& name, H const& node) override;

    /// A walk over all live nodes, depth first, root excluded. It does not step into nodes that redirect.
    ZORegistryIterator begin();
    ZORegistryIterator end();

    /// The columns, for the library's own use.
    ZORegistryImpl* Tables() const noexcept;
};

/// A position in the walk over all live nodes of a registry.
class ZO_API ZORegistryIterator {
public:
    /// The node here; asked at the end only by mistake.
    H const& operator*() const { return levels.back().current; }
    IZO* operator->() const { return levels.back().current.get(); }
    /// Steps to the next node.
    ZORegistryIterator& operator++();
    friend bool operator==(ZORegistryIterator const& a, ZORegistryIterator const& b) {
        return a.Current_() == b.Current_();
    }

private:
    friend class ZORegistry;
    IZO* Current_() const { return levels.empty() ? nullptr : levels.back().current.get(); }
    void DropEnded_();

    std::deque<ZOFwrdIterator> levels;
};

/// The registered node that stands for a C++ type.
struct ZO_API ZOTypeTemplate {
    /// The first registration of a type wins. The row then reports the registered type.
    static void Register(std::type_info const& type, H const& node);
    /// The type's node, null for an unknown type. Lives as long as the registry.
    static IZO* Lookup(std::type_info const& type);

protected:
    /// What is asked of the table of types.
    enum AccessType { RegisterAccess = 0, LookupAccess = 1 };
    /// Reads or writes the entry of a type.
    static void Access_(std::type_info const& type, IZO*& node, AccessType access);
};

/// Direct reads of the current registry's columns. Rows are not tested: asserted in debug builds.
ZO_API meta::MetaDataTraits const& DataTraits(std::size_t regID);
/// The traits of the registered node under `name`, which must exist.
ZO_API meta::MetaDataTraits DataTraits(std::string const& name);
ZO_API meta::MetaDataTraits DataTraits(H const& node);
/// Whether the row's traits are filled; false for npos.
ZO_API bool IsDefinedDataTraits(std::size_t regID);
/// The registered node of a row.
ZO_API IZO* GetTemplate(std::size_t regID);
ZO_API std::string const& RegNormalizedName(std::size_t regID);
ZO_API std::string const& RegSubName(std::size_t regID);
ZO_API std::wstring const& RegSubTag(std::size_t regID);
/// First child in the tree of tags, npos without one. Meaningful after `OnPostRegistration`.
ZO_API std::size_t SubRegID(std::size_t regID);
/// Next sibling in the tree of tags, npos at the end. Meaningful after `OnPostRegistration`.
ZO_API std::size_t NextRegID(std::size_t regID);
/// The child row by sub-name, npos if absent.
ZO_API std::size_t SubRegID(std::size_t regID, std::string const& name);
/// The child row by tag, npos if absent.
ZO_API std::size_t SubRegIDByTag(std::size_t regID, std::wstring const& tag);
/// Checks of traits at registration: logs a type whose name is taken by a row of another type (while
/// `meta::bValidateRegistry` is on), and runs an integer conversion once so that a bad one fails early.
ZO_API void ValidateMetaData(std::type_info const& type, meta::MetaDataTraits const& traits);

} // namespace zo

/// The root of a registry's tree: row 0.
class ZO_API ZORoot : public zo::IZO {
public:
    /// Made with its registry.
    explicit ZORoot(zo::ZOSet* owner);
    /// Tells every top-level node that memory moved, then clears the branches that are available and active, looking
    /// through made parents.
    void Clear() override;
    zo::IZO* Clone() override;
    zo::IZO* EmptyClone() override;

protected:
    zo::H GetSubZO(std::string const& name) override;
};
