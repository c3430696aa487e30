#include "Common/model/ZOArray.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/ArrayText.h"
#include "Common/model/NodeTables.h"

#include "support/pool.h"

#include <string_view>

namespace zo {

namespace tables = impl::tables;

ZOArray::ZOArray(std::size_t regID, ZOSet* owner) : IZO(regID, owner, npos) {}

meta::MetaDataTraits const& ZOArray::DefaultDataTraits() {
    // Never freed: arrays may outlive the statics of the library.
    static meta::MetaDataTraits const& traits = []() -> meta::MetaDataTraits const& {
        auto* const record = new meta::MetaTraitsArray;
        record->kind = meta::Kind::Array;
        return *new meta::MetaDataTraits(*record);
    }();
    return traits;
}

void ZOArray::Clear() {
    (void)Resize(0); // an array of fixed length keeps its elements
}

htl::status ZOArray::Set(std::wstring const& text) {
    return impl::SetArrayText(*this, text, [this](std::size_t index) {
        return tables::FindElement(tables::OwnerOrCurrent(*this), this, index);
    });
}

htl::status ZOArray::Get(std::wstring& text) {
    return impl::GetArrayText(*this, text, [this](std::size_t index) {
        return tables::FindElement(tables::OwnerOrCurrent(*this), this, index);
    });
}

ZOFwrdIterator ZOArray::begin() {
    ZOFwrdIterator first;
    first.parent = H(this);
    if (Length() > 0) first.current = tables::FindElement(tables::OwnerOrCurrent(*this), this, 0);
    return first;
}

void ZOArray::GetNextSubZO(ZOFwrdIterator& position) {
    position.current.release();
    ++position.index;
    // A staged array may be shorter than the one that its set finds elements in.
    if (position.index < Length())
        position.current = tables::FindElement(tables::OwnerOrCurrent(*this), this, position.index);
}

htl::status ZOArray::Assign(H const& source) {
    auto const* const array = dynamic_cast<ZOArray const*>(source.get());
    return array ? SetLength(array->Length()) : htl::status();
}

H ZOArray::GetSubZO(std::string const& name) {
    using LengthNode = ZOAtomicCustom<ZOArrayLenPolicy, ZOAccessDataVMT<htl::UInt64>>;
    if (name == "Len") return H(new LengthNode(npos, Owner(), meta::AtomicTraits<htl::UInt64>()));

    std::string_view const text = name;
    std::size_t index = 0;
    if (!text.empty() && text[0] >= '0' && text[0] <= '9') return path::ParseIndex(text, index) ? GetSubZO(index) : H();
    if (text.starts_with("At(")) {
        std::size_t const close = text.find(chFuncClose);
        if (close == text.npos || !path::ParseIndex(text.substr(3, close - 3), index) || index == 0) return {};
        return GetSubZO(index - 1);
    }
    return {};
}

ZOArrayClone::ZOArrayClone(std::size_t regID, ZOSet* owner, bool fixedLen, std::size_t length)
    : ZOArray(regID, owner), fixedLen(fixedLen), length(length) {}

meta::MetaDataTraits ZOArrayClone::GetDataTraits() const {
    return RegID() == npos ? DefaultDataTraits() : IZO::GetDataTraits();
}

IZO* ZOArrayClone::Clone() { return new ZOArrayClone(RegID(), Owner(), fixedLen, length); }

IZO* ZOArrayClone::EmptyClone() { return new ZOArrayClone(RegID(), Owner(), fixedLen, fixedLen ? length : 0); }

void* ZOArrayClone::operator new(std::size_t size) { return htl::pool::Allocate(size); }
void ZOArrayClone::operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

htl::status ZOArrayClone::Resize(std::size_t const& wanted) {
    if (fixedLen) return ZOError::not_supported("");
    length = wanted;
    return {};
}

H ZOArrayClone::GetSubZO(std::size_t const& index) {
    if (index >= length) return {};
    std::size_t const row = tables::ElementTemplate(RegID());
    IZO* const prototype = row == npos ? nullptr : tables::Prototype(row);
    return prototype ? H(prototype->EmptyClone()) : H();
}

ZOFwrdIterator ZOArrayClone::AddNew() { return end(); }

htl::status ZOArrayClone::RemoveAt(std::size_t const&) { return ZOError::not_supported(""); }

} // namespace zo
