// What people read about a node: label, description, colour, name in reports. All of it stands in the table.
//
// An empty handle has the texts of the default entry where a text is one field of the table, and empty ones elsewhere.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"
#include "Common/model/IZO.h"
#include "Common/present/NameParts.h"

#include "support/color.h"

#include <string>
#include <vector>

namespace zo {

/// The label without accelerator marks ("&"). It may be composed: "!Label" stands for the label of the table, any other
/// word for the value at that path. Where a path leads nowhere it is the label of the table as it stands.
ZO_API std::wstring Label(H const& node);
/// Of the current registry's node under `name`; empty without one.
ZO_API std::wstring Label(std::string const& name);
/// The label as it stands.
ZO_API std::wstring LabelWithAccel(H const& node);
ZO_API std::wstring LabelWithAccel(std::string const& name);
ZO_API std::wstring Description(H const& node);
ZO_API std::wstring Category(H const& node);
/// The editor that the table names; "zoEnumTemplate" for a node with a list ":Valid", else empty.
ZO_API std::wstring CustomView(H const& node);
ZO_API style::Type Style(H const& node);

/// Whether the node's last name component is "Description".
ZO_API bool IsDescription(H const& node);
/// Whether the node's last name component is "Color".
ZO_API bool IsColor(H const& node);
/// Whether the node is a colour, the table says where its colour is, be it right or not, or it has a child "Color".
ZO_API bool HasColor(H const& node);
/// The node itself if it is a colour, else the one that the table names, else the child "Color".
ZO_API H GetColorZO(H const& node);
/// The colour as 0x00BBGGRR, `MissingColor` without one.
ZO_API unsigned long Color(H const& node);

/// The name for reports, with the names of what the node is part of: " Soils [3] .Cohesion" with "." as separator.
///
/// An element of an array is called as the array with its position from 1, "Len" as the array with the separator. The
/// parents of a node that has a name by the table's rule take no part. Cost: a lookup for each parent.
ZO_API std::wstring PrettyPrintName(H const& node, wchar_t separator);
/// Joins pieces: each has a blank before it.
ZO_API std::wstring PrettyPrintNameFromParts(std::vector<NameParts> parts);
/// What the table's rule for the name in reports gives. Empty without one, and where a tag in it leads nowhere.
ZO_API std::wstring PrettyPrintNameValue(H const& node);

namespace impl {

/// The node's own pieces of its name in reports; `fixed` says whether those of its parents take no part. Empty without
/// a label and a name.
ZO_API std::vector<NameParts> OwnNameParts(H const& node, bool& fixed);

} // namespace impl
} // namespace zo
