#include "Common/extinfo/ExtendedInfo.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/registry/RegistryImpl.h"

namespace zo {

namespace extinfo {

ExtendedInfoStore& Store() {
    auto& store = impl::Current().extendedInfo;
    if (!store) store = std::make_shared<ExtendedInfoStore>();
    return *store;
}

htl::status AlreadyCompiled() { return htl::status::FromText(L"The extended information is already compiled."); }

} // namespace extinfo

htl::status ZOExtendedInfoRead(void const* begin, void const* end) { return extinfo::Store().ReadBytes(begin, end); }

htl::status ZOExtendedInfoRead(std::wstring const& file) { return extinfo::Store().ReadFile(file); }

htl::status CompileExtendedInfo() { return extinfo::Store().Compile(); }

} // namespace zo
