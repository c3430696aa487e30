#include "Common/model/ZOWrapper.h"

#include "Common/model/NodeTables.h"

#include "support/pool.h"

#include <cstdint>

namespace zo {

IZOWrapper::IZOWrapper(void* memory, htl::handle<ZOMemMgr> const& manager) : memory(memory), manager(manager) {
    if (manager) manager->AddWrapper();
}

IZOWrapper::IZOWrapper(IZOWrapper const& other) : IZOWrapper(other.memory, other.manager) {}

IZOWrapper::~IZOWrapper() {
    if (manager) manager->RemoveWrapper();
}

void* IZOWrapper::MemberOf(void* base) const noexcept {
    // As numbers: the offset is no pointer, and arithmetic on one would be undefined.
    return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(base) + reinterpret_cast<std::uintptr_t>(memory));
}

ZOWrapperBase::ZOWrapperBase(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                             htl::handle<ZOMemMgr> const& manager)
    : IZO(regID, owner, npos), IZOWrapper(memory, manager), traits(traits) {}

ZOWrapperBase::~ZOWrapperBase() = default;

meta::MetaDataTraits ZOWrapperBase::GetDataTraits() const { return traits; }

bool ZOWrapperBase::IsUndefined() const { return prototype || IZO::IsUndefined(); }

void ZOWrapperBase::Clear() {
    if (prototype) return; // an offset is no memory
    traits.DepthFirstTraversal_(meta::resetToDefault, Memory(), nullptr);
}

void ZOWrapperBase::OnRegistration(std::size_t regID) {
    IZO::OnRegistration(regID);
    traits = impl::tables::DataTraits(regID);
    prototype = true;
}

ZOWrapperStruct::ZOWrapperStruct(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                                 htl::handle<ZOMemMgr> const& manager)
    : ZOWrapperBase(regID, owner, traits, memory, manager) {}

IZO* ZOWrapperStruct::Clone() { return new ZOStructClone(RegID(), Owner()); }

IZO* ZOWrapperStruct::EmptyClone() { return new ZOStructClone(RegID(), Owner()); }

IZO* ZOWrapperStruct::RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) {
    return new ZOWrapperStruct(RegID(), Owner(), AccessTraits(), memory, manager);
}

H ZOWrapperStruct::GetSubZO(std::string const& name) {
    namespace tables = impl::tables;
    tables::MemberRow const member = tables::FindMember(RegID(), name);
    if (member.row == npos) return {};

    if (member.wrapper && !IsPrototype()) {
        if (!Memory()) return {};
        return H(member.wrapper->RemapClone(member.wrapper->MemberOf(Memory()), Manager()));
    }
    // Aliases and computed branches below a structure have no memory in it, and a prototype has none at all.
    IZO* const prototype = tables::Prototype(member.row);
    if (!prototype) return {};
    return H(tables::IsCurrentRegistry(Owner()) ? prototype->Clone() : prototype->EmptyClone());
}

void* ZOWrapperStruct::operator new(std::size_t size) { return htl::pool::Allocate(size); }
void ZOWrapperStruct::operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

ZOStructClone::ZOStructClone(std::size_t regID, ZOSet* owner) : IZO(regID, owner, npos) {}

IZO* ZOStructClone::Clone() { return new ZOStructClone(RegID(), Owner()); }

IZO* ZOStructClone::EmptyClone() { return new ZOStructClone(RegID(), Owner()); }

void* ZOStructClone::operator new(std::size_t size) { return htl::pool::Allocate(size); }
void ZOStructClone::operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

} // namespace zo
