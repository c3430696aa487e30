// Who says which units people see: three functions of the application.
//
// They stand in the registry under fixed names, each in a node that holds a function. A name that is not registered,
// or under which another kind of node stands, counts as no answer.
#pragma once

#include "Common/present/ZOFunction.h"

#include "support/meta.h"
#include "support/units.h"

#include <functional>

namespace zo {

/// Registers the application's functions in the calling thread's current registry, before or after
/// `ZORegistry::OnPostRegistration`. Empty functions are left out.
///
/// `active`: the units that values are stored in. `ofParameter`: the units that values of a data parameter are shown
/// in. `ofKind`: those of a kind. Both may give the zero set, which stands for the active units; they are never asked
/// about no parameter and no kind. The functions are called on the thread that asks and live as long as the registry.
/// Throws `htl::status_exception` with `duplicate_name()` if it was done before.
ZO_API void RegisterUnitsProvider(std::function<math::UnitSet()> active,
                                  std::function<math::UnitSet(DataParamType)> ofParameter,
                                  std::function<math::UnitSet(hzn::units::Kind::Type)> ofKind);

namespace impl {

/// What the three functions answer, the zero set where there is none.
math::UnitSet ActiveUnits();
math::UnitSet UnitsOfParameter(DataParamType parameter);
math::UnitSet UnitsOfKind(hzn::units::Kind::Type kind);

} // namespace impl
} // namespace zo
