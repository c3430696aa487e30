// From a transaction that holds a document into the set that it commits to.
#pragma once

#include "Common/registry/BranchCommit.h"
#include "Common/registry/ZOTransaction.h"

#include "support/gid.h"
#include "support/status.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace zo::clip::impl {

/// 26502.
htl::status CannotPaste();

/// One paste.
///
/// It keeps names and no views: a view of an element would keep its array from growing.
class Merge {
public:
    /// All are held for as long as the merge. `names` and `failures` are appended to.
    Merge(ZOTransaction& transaction, std::vector<std::wstring>& names, std::vector<htl::status>& failures);
    ~Merge();
    void Run(GID id, GGID const& source, GGID const& target);

private:
    /// Where objects of one group stand in the target.
    struct Container {
        std::string name;
        GID group = 0; // of its records
        bool isArray = false;
        bool isIndexed = false;
        std::unordered_map<std::wstring, std::string> byName; // folded name to element, the first of each name
    };
    struct LinkField {
        H node;
        GGID link; // with the record around the container, where there is one
    };
    /// An object of the document on its way.
    struct Object {
        H node; // in the transaction
        std::wstring name;
        GID group = 0;                  // in the document
        Container* container = nullptr; // in the target, null if it isn't there
        std::vector<LinkField> links;
        std::size_t next = 0; // of the links: those before it are rewritten
        bool isBegun = false;
        bool isChosen = false;  // place and number are
        bool isRefused = false; // it isn't merged, and links to it become links to nothing
        bool exists = false;    // the place holds an object of the same name
        std::string place;      // in the target; empty for what isn't merged
        GID number = 0;         // in the target, 0 for none
    };
    /// Where a link leads in the document: to an object, or into one.
    struct Goal {
        Object* object = nullptr; // null if the document doesn't hold it
        bool isInside = false;
    };

    void ListChildren_(H const& container);
    void MakeNamesUnique_(Container& destination);
    void Merge_(Object& first);
    void Begin_(Object& object);
    void FindLinks_(Object& object);
    void AddLink_(Object& object, H const& field);
    Goal GoalOf_(GGID const& link);
    Object& ObjectAt_(H const& node, GID group);
    htl::status Rewrite_(LinkField const& field, Goal const& goal);
    /// Settles the object's place and number: those of the object of its name, or new ones.
    void Choose_(Object& object);
    htl::status Resize_(std::string const& name, std::size_t length);
    void ClearPresent_(H const& present);
    void Finish_(Object& object);
    void Commit_(Object const& object);

    /// The target container of a group in the document, null without one.
    Container* ContainerOf_(GID group);
    Container* OpenContainer_(hzn::gid::ContainerRef const& reference, GID group, GID groupInDocument);
    void Index_(Container& container);
    /// The name of the first object with this name, "" without one.
    std::string FindByName_(Container& container, std::wstring const& name);
    GID NumberOf_(Container const& container, std::string const& place);
    void Keep_(htl::status failure);

    ZOTransaction& transaction;
    ZOSet& base;
    std::vector<std::wstring>& names;
    std::vector<htl::status>& failures;

    GGID source;                   // the record around the pasted container in the document, and
    GGID target;                   // in the target
    GID sourceGroup = 0;           // of the pasted objects in the document
    std::vector<Object*> named;    // the objects of the pasted container that have a number
    std::vector<Object*> children; // those that are pasted: the first of each number
    std::unordered_map<GID, std::unique_ptr<Container>> containers;  // by the group in the document
    std::unordered_map<IZO const*, std::unique_ptr<Object>> objects; // by node
    std::unordered_map<std::uint64_t, Goal> goals;                   // by link
    std::optional<zo::impl::BranchCommit> commit;
};

} // namespace zo::clip::impl
