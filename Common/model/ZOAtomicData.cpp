#include "Common/model/ZOAtomicData.h"

#include "Common/model/NodeTables.h"
#include "Common/model/ZOAtomicAccessImpl.h"

#include "support/pool.h"

namespace zo {

ZOAccessTraits::~ZOAccessTraits() = default;

meta::MetaDataTraits ZOAccessTraits::GetDataTraits() const { return traits; }

void ZOAccessTraits::OnRegistration(std::size_t regID) {
    IZO::OnRegistration(regID);
    traits = impl::tables::DataTraits(regID);
}

template <class T>
ZOAtomicData<T>::ZOAtomicData(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits)
    : Base(regID, owner, traits), value{} {
    traits.AsAtomic()->setDefault(&value);
}

template <class T>
ZOAtomicData<T>::ZOAtomicData(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, T const& value)
    : Base(regID, owner, traits), value(value) {}

template <class T>
T ZOAtomicData<T>::GetData() const {
    return value;
}

template <class T>
htl::status ZOAtomicData<T>::SetData(T const& candidate) {
    value = candidate;
    return {};
}

template <class T>
void* ZOAtomicData<T>::operator new(std::size_t size) {
    return htl::pool::Allocate(size);
}

template <class T>
void ZOAtomicData<T>::operator delete(void* block, std::size_t size) {
    htl::pool::Free(block, size);
}

namespace {

/// The array that the node's name stands below.
H ArrayOf(IZO const& node) {
    ZOSet* const owner = node.Owner();
    std::string const name = owner ? node.ParentName() : std::string();
    // The empty name would be no array.
    return name.empty() ? H() : impl::tables::Find(*owner, name);
}

} // namespace

htl::UInt64 ZOArrayLenPolicy::GetData(IZO const* node) const {
    H const array = ArrayOf(*node);
    return array ? array->Length() : 0;
}

htl::status ZOArrayLenPolicy::SetData(IZO* node, htl::UInt64 const& length) const {
    H const array = ArrayOf(*node);
    return array ? array->SetLength(static_cast<std::size_t>(length)) : ZOError::not_supported("Len");
}

#define ZO_ROW(T)                                                                                                      \
    template class ZOAccessDataVMT<T>;                                                                                 \
    template class ZOAtomicAccess<ZOAccessDataVMT<T>, ZOAtomicData<T>>;                                                \
    template class ZOAtomicData<T>;
ZO_ROW(unsigned char)
ZO_ROW(int)
ZO_ROW(unsigned)
ZO_ROW(long)
ZO_ROW(unsigned long)
ZO_ROW(float)
ZO_ROW(double)
ZO_ROW(htl::Int64)
ZO_ROW(htl::UInt64)
ZO_ROW(bool)
ZO_ROW(std::string)
ZO_ROW(std::wstring)
ZO_ROW(DataParamType)
#undef ZO_ROW

} // namespace zo
