// Which record a node belongs to, which record a field refers to, and the node of a record.
//
// Reads give empty results where there is nothing; redirects are followed for at most 1,000 steps.
#pragma once

#include "Common/registry/ZOTransaction.h"

#include "support/gid.h"

#include <string>

namespace zo {

/// How an identifier is given.
struct Link {
    /// Which of the two ways.
    enum Type {
        AsStored = 0, ///< the identifier as it stands
        Packed = 1    ///< packed with the enclosing container, where it isn't fully qualified
    };
};

/// Whether the node, or what it redirects to, refers to a record.
ZO_API bool IsLinkField(H const& node);
/// Of the current registry's node under `name`.
ZO_API bool IsLinkField(std::string const& name);
/// The record that the field refers to. A link that is not set, or whose value is no number of 32 bits, has the field's
/// group and the number 0; so has a registered prototype. Empty for what refers to nothing.
ZO_API GGID GetLink(H const& node, Link::Type type);
/// The record that holds the node: the group of the nearest record or array of records around it, and the element's
/// index plus 1, or 1 in a record that is no element. Beside the elements of an array of records, as in "Soils.Len",
/// the number is 0xFFFFFFFE. With group 0 where no record is around the node or its container's number can't be packed;
/// empty for a node without owner. A redirect counts as its source, a link field as itself.
ZO_API GGID GetRecordID(H const& node, Link::Type type);
/// Makes the field refer to a record, or to none: a link field for the number 0, a node of the type `GGID` for a zero
/// in either word. A link field takes a number without a group for one of its own group's. Failure:
/// `HznError::internal` for a node without a value and for a registered prototype, 27568 for a record of another group,
/// else the write's own.
ZO_API htl::status SetLink(H const& node, GGID const& value);

/// Follows at most `depth` redirects, and one for a depth of 0. A redirect to nothing gives the last node reached.
ZO_API H GetSource(H const& node, unsigned depth);
ZO_API H GetSource(H const& node);
/// The node of a record in a set. Empty for an identifier with a zero word, and unless the application has registered a
/// link as the template of the type `GGID`.
ZO_API H GetSource(ZOSet* set, GGID const& id);
/// In the current registry.
ZO_API H GetSource(GGID const& id);
/// The node that a reference to something inside a record leads to, by the template that the application registered for
/// the type `hzn::gid::ContainerRef`: that of the module kit leads to the container of the group that the reference
/// names, or to the group's structure. Empty without a link as template, and for a reference that it knows nothing of.
ZO_API H GetSource(ZOSet* set, hzn::gid::ContainerRef ref);
ZO_API H GetSource(hzn::gid::ContainerRef ref);
/// Follows a path of tags from a record's node in the current registry.
ZO_API H LookupRelative(GGID const& id, std::wstring const& path);

/// The number in the object's child with the tag "ID"; 0 without one.
ZO_API GID GetObjectIDByTag(H const& object);
/// Writes it. `HznError::internal` for an object without such a child.
ZO_API htl::status SetObjectIDByTag(H const& object, GID const& id);
/// The text in the object's child with the tag "Name"; empty without one.
ZO_API std::wstring GetObjectName(H const& object);
/// Writes it. `HznError::internal` for an object without such a child.
ZO_API htl::status SetObjectName(H const& object, std::wstring const& text);
/// Whether the node's tag is "ID".
ZO_API bool IsID(H const& node);

/// Commits what is staged for one record to another one. An identifier without a node: success, and nothing is done.
ZO_API htl::status CommitAs(htl::handle<ZOTransaction> const& transaction, GGID const& from, GGID const& to,
                            std::string const& sourceUnits, std::string const& targetUnits);

} // namespace zo
