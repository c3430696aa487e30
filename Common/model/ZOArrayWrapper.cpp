#include "Common/model/ArrayText.h"
#include "Common/model/NodeTables.h"
#include "Common/model/ZOArray.h"

#include "support/pool.h"
#include "support/reset.h"

namespace zo {

namespace tables = impl::tables;

namespace {

std::size_t LengthOf(meta::MetaTraitsArray const* record, void const* memory) {
    return record && record->length ? record->length(memory) : 0;
}

} // namespace

ZOArrayWrapper::ZOArrayWrapper(std::size_t regID, ZOSet* owner, htl::handle<ZOMemMgr> const& manager,
                               htl::handle<ZOMemMgr> const& childManager)
    : ZOArray(regID, owner), IZOWrapper(childManager->Memory(), manager), childManager(childManager) {}

ZOArrayWrapper::~ZOArrayWrapper() = default;

meta::MetaDataTraits ZOArrayWrapper::GetDataTraits() const { return AccessTraits(); }

void ZOArrayWrapper::OnRegistration(std::size_t regID) {
    ZOArray::OnRegistration(regID);
    prototype = true;
}

bool ZOArrayWrapper::IsUndefined() const { return prototype || ZOArray::IsUndefined(); }

std::size_t ZOArrayWrapper::Length() const { return LengthOf(Record_(), prototype ? nullptr : Memory()); }

void ZOArrayWrapper::Clear() {
    if (prototype) return; // an offset is no memory
    AccessTraits().DepthFirstTraversal_(meta::resetToDefault, Memory(), nullptr);
}

IZOWrapper* ZOArrayWrapper::ElementPrototype_() const {
    std::size_t const row = tables::ElementTemplate(RegID());
    return row == npos ? nullptr : tables::WrapperPrototype(row);
}

/// One view that is moved along the elements, for arrays whose elements are told apart by nothing but their memory.
class ZOArrayWrapper::SharedView {
public:
    SharedView(ZOArrayWrapper& array, IZOWrapper& prototype) : array(array), prototype(prototype) {}

    H operator()(std::size_t index) {
        meta::MetaTraitsArray const& record = *array.Record_();
        void* const place = index < array.Length() ? record.elementAt(array.Memory(), index) : nullptr;
        if (!place) return {};
        // A check of values may have kept the view that it was handed.
        if (!view || view->RefCount() > 1) {
            view = H(prototype.RemapClone(place, array.childManager));
            wrapper = dynamic_cast<IZOWrapper*>(view.get());
        } else {
            wrapper->memory = place;
        }
        return view;
    }

private:
    ZOArrayWrapper& array;
    IZOWrapper& prototype;
    H view;
    IZOWrapper* wrapper = nullptr;
};

bool ZOArrayWrapper::ElementsShareView_() const {
    if (prototype || OwnerID() != npos || !tables::IsCurrentRegistry(Owner())) return false;
    meta::MetaTraitsArray const* const record = Record_();
    return record && record->elementAt && dynamic_cast<IZOSimple*>(ElementPrototype_());
}

htl::status ZOArrayWrapper::Set(std::wstring const& text) {
    // An array without an entry gives its elements none: a registry's lookup would make a bare view of each.
    if (!ElementsShareView_()) return ZOArray::Set(text);
    return impl::SetArrayText(*this, text, SharedView(*this, *ElementPrototype_()));
}

htl::status ZOArrayWrapper::Get(std::wstring& text) {
    if (!ElementsShareView_()) return ZOArray::Get(text);
    return impl::GetArrayText(*this, text, SharedView(*this, *ElementPrototype_()));
}

void ZOArrayWrapper::SkipHoles_(std::size_t& index) const {
    meta::MetaTraitsArray const* const record = Record_();
    if (prototype || !record || !record->isHole) return;
    std::size_t const length = Length();
    while (index < length && record->isHole(Memory(), index)) ++index;
}

ZOFwrdIterator ZOArrayWrapper::begin() {
    ZOFwrdIterator first;
    first.parent = H(this);
    SkipHoles_(first.index);
    first.current = tables::FindElement(tables::OwnerOrCurrent(*this), this, first.index);
    return first;
}

void ZOArrayWrapper::GetNextSubZO(ZOFwrdIterator& position) {
    position.current.release();
    ++position.index;
    SkipHoles_(position.index);
    position.current = tables::FindElement(tables::OwnerOrCurrent(*this), this, position.index);
}

IZO* ZOArrayWrapper::Clone() {
    if (prototype) return EmptyClone();
    meta::MetaTraitsArray const* const record = Record_();
    return new ZOArrayClone(RegID(), Owner(), !record || record->fixedLength, Length());
}

IZO* ZOArrayWrapper::EmptyClone() {
    meta::MetaTraitsArray const* const record = Record_();
    bool const fixed = !record || record->fixedLength;
    return new ZOArrayClone(RegID(), Owner(), fixed, fixed ? LengthOf(record, nullptr) : 0);
}

IZO* ZOArrayWrapper::RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) {
    htl::handle<ZOMemMgr> const child(childManager->RemapClone(memory));
    child->SetOuter(manager);
    return new ZOArrayWrapper(RegID(), Owner(), manager, child);
}

htl::status ZOArrayWrapper::Resize(std::size_t const& wanted) {
    meta::MetaTraitsArray const* const record = Record_();
    if (prototype || !record) return ZOError::not_supported("");
    std::size_t const length = Length();
    if (wanted == length) return {};
    if (childManager->WrapperCount() > 0) return ZOError::array_memory_conflict();
    if (!record->resize || !record->resize(Memory(), wanted)) return ZOError::not_supported("");

    std::size_t const row = tables::ElementTemplate(RegID());
    if (row == npos || wanted < length || !record->elementAt) return {};
    impl::ViewGuard const guard(*childManager);
    meta::Resetter const resetter(tables::DataTraits(row));
    for (std::size_t i = length; i < wanted; ++i) resetter.Apply(record->elementAt(Memory(), i));
    return {};
}

H ZOArrayWrapper::GetSubZO(std::size_t const& index) {
    meta::MetaTraitsArray const* const record = Record_();
    if (prototype || !record || !record->elementAt || index >= Length()) return {};
    IZOWrapper* const element = ElementPrototype_();
    impl::ViewGuard const guard(*childManager);
    void* const place = record->elementAt(Memory(), index);
    return place && element ? H(element->RemapClone(place, childManager)) : H();
}

ZOFwrdIterator ZOArrayWrapper::AddNew() {
    meta::MetaTraitsArray const* const record = Record_();
    if (prototype || !record || !record->addNew) return end();
    if (record->elementsMove && childManager->WrapperCount() > 0) return end();
    std::uint32_t const index = record->addNew(Memory());
    if (index == 0xFFFFFFFFu) return end();
    ZOFwrdIterator added;
    added.parent = H(this);
    added.index = index;
    added.current = tables::FindElement(tables::OwnerOrCurrent(*this), this, index);
    return added;
}

htl::status ZOArrayWrapper::RemoveAt(std::size_t const& index) {
    meta::MetaTraitsArray const* const record = Record_();
    if (prototype || !record || !record->removeAt) return ZOError::not_supported(AccessTraits().TypeName());
    if (record->elementsMove && childManager->WrapperCount() > 0) return ZOError::array_memory_conflict();
    record->removeAt(Memory(), index);
    return {};
}

void* ZOArrayWrapper::operator new(std::size_t size) { return htl::pool::Allocate(size); }
void ZOArrayWrapper::operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

} // namespace zo
