#include "Common/registry/ZORedirect.h"

#include "Common/registry/RedirectScope.h"
#include "Common/registry/ZORegistry.h"

namespace zo {

thread_local constinit int impl::RedirectScope::depth = 0;
thread_local constinit int impl::RedirectScope::steps = 0;

IZORedirector::~IZORedirector() = default;

H ZORedirect::Redirect() const {
    impl::RedirectScope const scope;
    if (!redirector || !scope) return {};
    std::string const name = RedirectName();
    if (name.empty()) return {};
    ZOSet* const set = redirector->Owner() ? redirector->Owner() : ZORegistry::Instance();
    return set->Find(name);
}

bool ZORedirect::IsAlias() const noexcept { return false; }

} // namespace zo
