#include "Common/registry/ZORedirect.h"

#include "Common/registry/ZORegistry.h"

namespace zo {

IZORedirector::~IZORedirector() = default;

H ZORedirect::Redirect() const {
    if (!redirector) return {};
    std::string const name = RedirectName();
    if (name.empty()) return {};
    ZOSet* const set = redirector->Owner() ? redirector->Owner() : ZORegistry::Instance();
    return set->Find(name);
}

bool ZORedirect::IsAlias() const noexcept { return false; }

} // namespace zo
