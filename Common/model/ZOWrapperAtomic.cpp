#include "Common/model/ZOWrapperAtomicImpl.h"

namespace zo {
namespace {

template <class T>
bool Wraps(H& out, void* memory, meta::MetaDataTraits const& traits) {
    if (*traits.Descriptor()->type != typeid(T)) return false;
    out = H(new ZOWrapperAtomic<T>(IZO::npos, nullptr, traits, memory, {}));
    return true;
}

template <class... T>
H WrapAs(void* memory, meta::MetaDataTraits const& traits) {
    H node;
    (void)(Wraps<T>(node, memory, traits) || ...); // a type that is none of these gives no node
    return node;
}

} // namespace

H GetAtomicWrapper(void* memory, meta::MetaDataTraits const& traits) {
    if (!memory || !traits.AsAtomic()) return {};
    return WrapAs<unsigned char, int, unsigned, long, unsigned long, float, double, htl::Int64, htl::UInt64, bool,
                  std::string, std::wstring, DataParamType>(memory, traits);
}

ZO_WRAPPER_ROW(unsigned char)
ZO_WRAPPER_ROW(int)
ZO_WRAPPER_ROW(unsigned)
ZO_WRAPPER_ROW(long)
ZO_WRAPPER_ROW(unsigned long)
ZO_WRAPPER_ROW(float)
ZO_WRAPPER_ROW(double)
ZO_WRAPPER_ROW(htl::Int64)
ZO_WRAPPER_ROW(htl::UInt64)
ZO_WRAPPER_ROW(bool)
ZO_WRAPPER_ROW(std::string)
ZO_WRAPPER_ROW(std::wstring)
ZO_WRAPPER_ROW(DataParamType)

} // namespace zo
