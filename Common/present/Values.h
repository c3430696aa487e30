// Values as people read and type them: in their units, or as the table prints them.
#pragma once

#include "Common/model/IZO.h"
#include "Common/model/ZOAccessTrait.h"

#include "support/meta.h"
#include "support/units.h"

#include <cstddef>
#include <string>

namespace zo {

/// The value's text for people; the table may print another node's value in its place. Numbers are in the visible
/// units. Empty for an empty handle and for a node without a value.
ZO_API std::wstring PrettyPrintValue(H const& node);
/// Of the current registry's node under `name`, empty without one.
ZO_API std::wstring PrettyPrintValue(std::string const& name);
/// Of a value of the row's type, which need not stand in any node. The table takes no part.
ZO_API std::wstring PrettyPrintValue(std::size_t regID, void const* value);
/// The same, short.
ZO_API std::wstring AbbrevValue(H const& node);
ZO_API std::wstring AbbrevValue(std::string const& name);
ZO_API std::wstring AbbrevValue(std::size_t regID, void const* value);
/// With the unit behind it, where there is a text and a unit.
ZO_API std::wstring PrettyPrintValueWithUnits(H const& node);
ZO_API std::wstring PrettyPrintValueWithUnits(std::string const& name);
ZO_API std::wstring AbbrevValueWithUnits(H const& node);
ZO_API std::wstring AbbrevValueWithUnits(std::string const& name);
ZO_API std::wstring AbbrevValueWithUnits(std::size_t regID, void const* value);
/// Whether there is a value to print; one without a text counts, too.
ZO_API bool HasPrettyPrintValue(H const& node);

/// Writes what a person typed: a number in the visible units, its unit behind it or not, or a word of an enumeration.
/// Where the table prints another node's value, that node is written.
///
/// Failure: the write's own, its numbers in the visible units; `not_supported("")` where there is no value to write.
/// The value is then as it was.
ZO_API htl::status SetPrettyPrintValue(H const& node, std::wstring const& text);
/// The same for the short texts.
ZO_API htl::status SetAbbrevValue(H const& node, std::wstring const& text);

/// What the node's value measures; `None` for what has no units.
ZO_API hzn::units::Kind::Type Units(H const& node);
ZO_API hzn::units::Kind::Type Units(std::string const& name);
ZO_API hzn::units::Kind::Type Units(std::size_t regID, void const* value);
/// The application's data parameter that the value is of, 0 for none.
ZO_API DataParamType DataParameterType(H const& node);
ZO_API DataParamType DataParameterType(std::string const& name);
ZO_API DataParamType DataParameterType(std::size_t regID);
/// The units that values are shown in: those of the parameter, else of the kind, else those of the active view. Zero if
/// nobody provides units.
ZO_API math::UnitSet VisibleUnits(H const& node);
ZO_API math::UnitSet VisibleUnits(std::string const& name);
ZO_API math::UnitSet VisibleUnits(std::size_t regID, void const* value);
ZO_API math::UnitSet VisibleUnits(DataParamType const& parameter);
/// The text of the unit that the value is shown in, empty for none.
ZO_API std::wstring UnitString(H const& node);
ZO_API std::wstring UnitString(std::size_t regID, void const* value);
ZO_API std::wstring UnitString(DataParamType const& parameter);
/// With the feature "HZN_UK" on: appends the kind's name in square brackets.
ZO_API void Debug_AppendUKName(std::wstring& text, hzn::units::Kind::Type kind);

} // namespace zo
