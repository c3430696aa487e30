// What a value measures and how its numbers are shown, for the sources of this folder.
#pragma once

#include "Common/present/Values.h"

#include "support/shown.h"

#include <functional>
#include <string>

namespace zo::impl {

using KindFunction = std::function<hzn::units::Kind::Type(void const* value, IZO const* node)>;

/// The parameter that a type's function says, none without a function.
inline DataParamType ParameterOf(meta::MetaTraitsAtomic const& record, IZO const* node) {
    return record.dataParamType ? record.dataParamType(node) : DataParamType{};
}
/// The kind of a data parameter's values, by the template that the application registered for the type.
hzn::units::Kind::Type KindOfParameter(DataParamType parameter);
/// The parameter's text in a format of the type's functions, by the same template; empty without one.
std::wstring ParameterText(DataParamType parameter, int format);
/// The kind of a value: that of its parameter, else what the function says of value and node.
hzn::units::Kind::Type KindOf(KindFunction const& function, DataParamType parameter, void const* value,
                              IZO const* node);
/// The kind of a node with a value, which `record` describes.
hzn::units::Kind::Type KindOfNode(IZO const& node, meta::MetaTraitsAtomic const& record);
/// The units that values are shown in.
math::UnitSet UnitsShown(DataParamType parameter, hzn::units::Kind::Type kind);
std::wstring UnitText(hzn::units::Kind::Type kind, math::UnitSet const& units);

/// What descriptors ask when they format and parse: see `meta::impl::UnitHooks`.
meta::impl::ShownUnits ShownUnitsOf(void const* value, IZO const& node);
std::wstring ShownUnitText(meta::impl::ShownUnits const& units);

} // namespace zo::impl
