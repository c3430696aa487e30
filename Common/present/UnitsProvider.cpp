#include "Common/present/UnitsProvider.h"

#include "Common/redirect/Stores.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include <string>
#include <typeinfo>

namespace zo {

template class ZOFunction<math::UnitSet()>;
template class ZOFunction<math::UnitSet(DataParamType)>;
template class ZOFunction<math::UnitSet(hzn::units::Kind::Type)>;

namespace {

using Kind = hzn::units::Kind::Type;

// Never freed: nodes may be asked for their units while statics go.
std::string const& activeName = *new std::string("hzn::units::ActiveViewConsistentUnitSet()");
std::string const& parameterName = *new std::string("hzn::units::VisibleUnitSetForDataParamType()");
std::string const& kindName = *new std::string("hzn::units::VisibleUnitSetForUnitKind()");

/// As `Find(name)`, without the entry that a lookup gives its node: every number that is shown asks for two of these.
H Provider(std::string const& name) {
    ZORegistryImpl const& tables = impl::Current();
    std::size_t const row = tables.TopLevel(name);
    if (row == IZO::npos || tables.stepRows[row].wrapper) return Find(name);
    return tables.stepRows[row].store->IsAvailable() ? H(tables.stepRows[row].node) : H();
}

template <class... A>
math::UnitSet Ask(std::string const& name, A... argument) {
    using Node = ZOFunction<math::UnitSet(A...)>;
    H const node = Provider(name);
    if (!node) return {};
    IZO const& found = *node;
    // Every question about units comes here, and the search for a base class takes longer than all the rest.
    if (&typeid(found) == &typeid(Node)) {
        std::function<math::UnitSet(A...)> const& function = static_cast<Node const&>(found).Function();
        return function ? function(argument...) : math::UnitSet();
    }
    auto const* const kind = dynamic_cast<IZOKind<std::function<math::UnitSet(A...)>> const*>(&found);
    std::function<math::UnitSet(A...)> const function = kind ? kind->GetData() : nullptr;
    return function ? function(argument...) : math::UnitSet();
}

template <class F>
void Register(std::string const& name, std::function<F> function) {
    if (!function) return;
    ZORegistry::Instance()->RegisterZO(htl::handle<IODS>(new ODS(name, false, true)),
                                       H(new ZOFunction<F>(std::move(function))), meta::MetaPersistTraits(), {});
}

} // namespace

void RegisterUnitsProvider(std::function<math::UnitSet()> active,
                           std::function<math::UnitSet(DataParamType)> ofParameter,
                           std::function<math::UnitSet(Kind)> ofKind) {
    Register(activeName, std::move(active));
    Register(parameterName, std::move(ofParameter));
    Register(kindName, std::move(ofKind));
}

math::UnitSet impl::ActiveUnits() { return Ask<>(activeName); }

math::UnitSet impl::UnitsOfParameter(DataParamType parameter) {
    return parameter == DataParamType{} ? math::UnitSet() : Ask(parameterName, parameter);
}

math::UnitSet impl::UnitsOfKind(Kind kind) { return kind == Kind::None ? math::UnitSet() : Ask(kindName, kind); }

} // namespace zo
