#include "Common/redirect/ZOLink.h"

#include "Common/model/NodeTables.h"
#include "Common/model/ZOAtomicAccessImpl.h"
#include "Common/registry/Find.h"
#include "Common/registry/RedirectScope.h"

#include "support/pool.h"

#include <cassert>
#include <limits>
#include <utility>

namespace zo {

using impl::NodeAccess;

RecordNames::~RecordNames() = default;

// Each step through a link is a redirect of its own: links may lead to each other, or to themselves.

ZOFwrdIterator ZOLink::LinkBegin() {
    impl::RedirectScope const scope;
    if (!scope) return {};
    H const target = Redirect();
    return target ? target->begin() : ZOFwrdIterator();
}

void ZOLink::LinkGetNextSubZO(ZOFwrdIterator& position) {
    impl::RedirectScope const scope;
    H const target = scope ? position.parent : H();
    if (target)
        NodeAccess::GetNextSubZO(*target, position);
    else
        position = {};
}

H ZOLink::LinkGetSubZO(std::string const& name) {
    impl::RedirectScope const scope;
    if (!scope) return {};
    H target = Redirect();
    if (!target || (name.size() == 1 && name.front() == IZO::chLink)) return target;
    return Find(target, name);
}

ZOWrapperLinkBase::ZOWrapperLinkBase(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                                     htl::handle<ZOMemMgr> const& manager)
    : ZOWrapperBase(regID, owner, traits, memory, manager) {
    SetRedirector(this);
}

// A copy leads on from its own owner, not from that of its original, which may end first.
ZOWrapperLinkBase::ZOWrapperLinkBase(ZOWrapperLinkBase const& other) : ZOWrapperBase(other), ZOLink(other) {
    SetRedirector(this);
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): it copies
ZOWrapperLinkBase::ZOWrapperLinkBase(ZOWrapperLinkBase&& other)
    // NOLINTNEXTLINE(performance-move-constructor-init)
    : ZOWrapperLinkBase(static_cast<ZOWrapperLinkBase const&>(other)) {}

ZOWrapperLinkBase::~ZOWrapperLinkBase() = default;

ZOFwrdIterator ZOWrapperLinkBase::begin() { return LinkBegin(); }

H ZOWrapperLinkBase::GetSubZO(std::string const& name) {
    H child = IZO::GetSubZO(name);
    return child ? child : LinkGetSubZO(name);
}

void ZOWrapperLinkBase::GetNextSubZO(ZOFwrdIterator& position) { LinkGetNextSubZO(position); }

template <class T>
ZOAccessLink<T>::ZOAccessLink(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                              htl::handle<ZOMemMgr> const& manager, htl::handle<RecordNames const> names)
    : ZOWrapperLinkBase(regID, owner, traits, memory, manager), names(std::move(names)) {}

template <class T>
T ZOAccessLink<T>::GetData() const {
    assert(!IsPrototype());
    T value{};
    AccessTraits().AsAtomic()->read(Memory(), &value);
    return value;
}

template <class T>
htl::status ZOAccessLink<T>::SetData(T const& value) {
    assert(!IsPrototype());
    AccessTraits().AsAtomic()->write(Memory(), &value);
    return {};
}

template <class T>
std::string ZOAccessLink<T>::RedirectName() const {
    meta::MetaTraitsAtomic const* const record = AccessTraits().AsAtomic();
    // A prototype has an offset where a view has memory.
    if (!record || record->linkGroup == 0 || !names || IsPrototype() || !Memory()) return {};
    T const value = GetData();
    if (!std::in_range<GID>(value) || value == T{} || record->isMissing(&value)) return {};
    return names->NameOf({record->linkGroup, static_cast<GID>(value)}, impl::tables::OwnerOrCurrent(*this));
}

template <class T>
IZO* ZOWrapperLink<T>::RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) {
    return new ZOWrapperLink(this->RegID(), this->Owner(), this->AccessTraits(), memory, manager, this->names);
}

template <class T>
IZO* ZOWrapperLink<T>::Clone() {
    return this->IsPrototype() ? this->EmptyClone() : Base::Clone();
}

template <class T>
void* ZOWrapperLink<T>::operator new(std::size_t size) {
    return htl::pool::Allocate(size);
}

template <class T>
void ZOWrapperLink<T>::operator delete(void* block, std::size_t size) {
    htl::pool::Free(block, size);
}

#define ZO_LINK_ROW(T)                                                                                                 \
    template class ZOAccessLink<T>;                                                                                    \
    template class ZOAtomicAccess<ZOAccessLink<T>, ZOAtomicData<T>>;                                                   \
    template class ZOWrapperLink<T>;

ZO_LINK_ROW(int)
ZO_LINK_ROW(unsigned)
ZO_LINK_ROW(long)
ZO_LINK_ROW(unsigned long)
ZO_LINK_ROW(htl::Int64)
ZO_LINK_ROW(htl::UInt64)

#undef ZO_LINK_ROW

} // namespace zo
