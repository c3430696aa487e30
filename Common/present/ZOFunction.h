// A node that holds a function of the application.
#pragma once

#include "Common/model/ZOAtomicAccess.h"

#include "support/meta.h"
#include "support/units.h"

#include <functional>
#include <utility>

namespace zo {

template <class F>
class ZOFunction;

/// Has no value, no children and no tag; whoever knows its name and its type calls the function.
template <class R, class... A>
class ZO_API ZOFunction<R(A...)> : public IZO, public IZOKind<std::function<R(A...)>> {
public:
    /// Of a row, or of none.
    explicit ZOFunction(std::function<R(A...)> function, std::size_t regID = npos, ZOSet* owner = nullptr)
        : IZO(regID, owner, npos), function(std::move(function)) {}

    /// A copy of the function.
    std::function<R(A...)> GetData() const override { return function; }
    /// The function itself, valid as long as the node.
    std::function<R(A...)> const& Function() const noexcept { return function; }
    /// With the same function.
    IZO* Clone() override { return new ZOFunction(function, RegID(), Owner()); }

private:
    std::function<R(A...)> function;
};

extern template class ZO_API ZOFunction<math::UnitSet()>;
extern template class ZO_API ZOFunction<math::UnitSet(DataParamType)>;
extern template class ZO_API ZOFunction<math::UnitSet(hzn::units::Kind::Type)>;

} // namespace zo
