// What nodes ask of the registry, beside the columns that answer.
#include "Common/model/NodeTables.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <string>
#include <utility>

namespace zo {

using impl::Current;
using impl::NodeAccess;

namespace impl::tables {

bool IsCurrentRegistry(ZOSet const* set) { return set && set == Current().owner; }
bool HasRow(std::size_t regID) { return Current().HasRow(regID); }
bool IsPrototype(IZO const& node) {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(node.RegID()) && tables.nodes[node.RegID()].get() == &node;
}
meta::MetaDataTraits const& DataTraits(std::size_t regID) { return zo::DataTraits(regID); }
IZOWrapper* WrapperPrototype(std::size_t regID) {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(regID) ? tables.wrappers[regID] : nullptr;
}
IZO* Prototype(std::size_t regID) {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(regID) ? tables.nodes[regID].get() : nullptr;
}
std::size_t ChildByName(std::size_t regID, std::string const& name) {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(regID) ? tables.ChildByName(regID, name) : IZO::npos;
}
std::size_t ElementTemplate(std::size_t regID) {
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(regID) ? tables.ElementTemplate(regID) : IZO::npos;
}
void MarkAssociative(std::size_t regID) { Current().assocBits[regID] = true; }
MemberRow FindMember(std::size_t regID, std::string const& name) {
    ZORegistryImpl& tables = Current();
    std::size_t child = std::exchange(tables.findHint, IZO::npos);
    if (!tables.HasRow(child) || tables.parents[child] != regID)
        child = tables.HasRow(regID) ? tables.ChildByName(regID, name) : IZO::npos;
    if (child == IZO::npos) return {};
    return {child, tables.stepRows[child].wrapper};
}
bool ValidatesValues(ZOSet const& set) { return set.Impl()->validateValues; }
ZOSet& OwnerOrCurrent(IZO const& node) { return node.Owner() ? *node.Owner() : *ZORegistry::Instance(); }
H Find(ZOSet& set, std::string const& name) { return set.Find(name); }
H FindElement(ZOSet& set, ZOArray* array, std::size_t index) { return set.Find(array, index); }

} // namespace impl::tables

void impl::NodeAccess::SetOwner(IZO& node, ZOSet* owner, std::size_t ownerID) noexcept {
    impl::SetAnchor* const anchor = owner ? owner->Anchor() : nullptr;
    if (anchor != node.anchor) impl::SetAnchor::Drop(std::exchange(node.anchor, impl::SetAnchor::Share(anchor)));
    node.ownerID = ownerID;
    node.entered = ownerID != IZO::npos;
}

namespace {

#ifdef NDEBUG
void CountNode(int) {}
std::size_t CountedNodes() { return 0; }
#else
std::atomic<std::size_t> nodes = 0;
void CountNode(int change) { nodes.fetch_add(static_cast<std::size_t>(change), std::memory_order_relaxed); }
std::size_t CountedNodes() { return nodes.load(std::memory_order_relaxed); }
#endif

} // namespace

std::size_t impl::NodeAccess::LiveNodes() noexcept { return CountedNodes(); }

IZO::IZO(std::size_t regID, ZOSet* owner, std::size_t ownerID)
    : anchor(impl::SetAnchor::Share(owner ? owner->Anchor() : nullptr)), ownerID(ownerID), regID(regID) {
    CountNode(1);
}

IZO::IZO(IZO const& other)
    : htl::handle_ref_counter(other), anchor(impl::SetAnchor::Share(other.anchor)), ownerID(other.ownerID),
      regID(other.regID) {
    CountNode(1);
}

IZO::~IZO() {
    CountNode(-1);
    if (entered) Owner()->Impl()->Leave(this, ownerID);
    impl::SetAnchor::Drop(anchor);
}

IZO& IZO::operator=(IZO const& other) {
    if (this == &other) return *this;
    ZOSetImpl::LeavePlace(*this);
    if (anchor != other.anchor) impl::SetAnchor::Drop(std::exchange(anchor, impl::SetAnchor::Share(other.anchor)));
    ownerID = other.ownerID;
    regID = other.regID;
    entered = false;
    return *this;
}

meta::MetaDataTraits IZO::GetDataTraits() const {
    ZORegistryImpl const& tables = Current();
    assert(tables.HasRow(regID) || !Owner()); // a node that outlived its set has lost its row with it
    return tables.HasRow(regID) ? tables.dataTraits[regID] : meta::MetaDataTraits();
}

meta::MetaPersistTraits IZO::GetPersistTraits() const {
    static meta::MetaPersistTraits const none;
    ZORegistryImpl const& tables = Current();
    return tables.HasRow(regID) ? tables.persistTraits[regID] : none;
}

std::string IZO::Name() const { return std::string(impl::EntryName(*this)); }

std::string IZO::SubName() const {
    ZORegistryImpl const& tables = Current();
    if (tables.HasRow(regID) && tables.subNames[regID] != "[]" && !tables.subNames[regID].empty())
        return tables.subNames[regID];
    return std::string(path::LastPart(impl::EntryName(*this)));
}

std::string IZO::ParentName() const { return std::string(path::ParentPart(impl::EntryName(*this))); }

int IZO::CompareName(IZO const& other) const {
    ZOSet const* const owner = Owner();
    if (ownerID == npos || other.ownerID == npos || ownerID == other.ownerID || !owner) return 0;
    std::vector<SetEntry*> const& order = owner->Impl()->entryOrder;
    auto const text = [&order](std::size_t id) -> std::string_view {
        return id < order.size() && order[id] ? std::string_view(order[id]->name) : std::string_view();
    };
    // Up to the terminator: a name with a null character in it ends there.
    auto const upToTerminator = [](std::string_view name) { return name.substr(0, name.find('\0')); };
    int const order3 = upToTerminator(text(ownerID)).compare(upToTerminator(text(other.ownerID)));
    return order3 < 0 ? -1 : order3 > 0 ? 1 : 0;
}

htl::status IZO::PushBack(H& value) {
    std::size_t const length = Length();
    if (htl::status failure = SetLength(length + 1); failure.IsError()) return failure;
    std::string const name = Name() + "[" + std::to_string(length) + "]";
    H const element = impl::tables::OwnerOrCurrent(*this).Find(name);
    if (!element) return ZOError::not_found(name);
    return element->Assign(value);
}

namespace {

// The first child from `id` on along the siblings whose store is there and that a lookup finds.
void StandOnChild(IZO& parent, std::size_t id, ZOFwrdIterator& position) {
    H const self(&parent);
    ZOSet& set = impl::tables::OwnerOrCurrent(parent);
    for (; id != IZO::npos; id = Current().nextSiblings[id]) {
        if (!Current().stores[id]->IsAvailable()) continue;
        position.current = set.Find(self, Current().subNames[id]);
        if (position.current) break;
    }
    position.subID = id;
}

} // namespace

ZOFwrdIterator IZO::begin() {
    ZOFwrdIterator first;
    first.parent = H(this);
    if (impl::tables::HasRow(regID)) StandOnChild(*this, Current().firstChildren[regID], first);
    return first;
}

void IZO::GetNextSubZO(ZOFwrdIterator& position) {
    position.current.release();
    if (!impl::tables::HasRow(position.subID)) {
        position.subID = npos;
        return;
    }
    StandOnChild(*this, Current().nextSiblings[position.subID], position);
}

H impl::LiveChild(IZO const& parent, std::size_t child) {
    ZORegistryImpl const& tables = Current();
    // A registered node stays this registry's, whichever set named it last: a detached child would swallow what is
    // written to it.
    if (parent.Owner() != tables.owner && !tables::IsPrototype(parent)) return H(tables.nodes[child]->EmptyClone());
    IZOWrapper* const wrapper = tables.wrappers[child];
    if (!wrapper) return H(tables.nodes[child]->Clone());
    IODS const& store = *tables.stores[child];
    void* const memory = store.IsAvailable() ? store.GetPtrType() : nullptr;
    return H(memory ? wrapper->RemapClone(memory, {}) : tables.nodes[child]->EmptyClone());
}

H IZO::GetSubZO(std::string const& name) {
    std::size_t const child = impl::tables::ChildByName(regID, name);
    return child == npos ? H() : impl::LiveChild(*this, child);
}

H GetWrapper(std::size_t regID, void* memory) {
    IZOWrapper* const prototype = impl::tables::WrapperPrototype(regID);
    if (!prototype) return {};
    H view(prototype->RemapClone(memory, {}));
    if (view) NodeAccess::SetOwner(*view, nullptr, IZO::npos);
    return view;
}

htl::status GetRegisteredWrapper(H& out, std::size_t regID, void* memory, std::string const& name) {
    H view = GetWrapper(regID, memory);
    if (!view) return ZOError::not_found(name);
    out = std::move(view);
    return ZORegistry::Instance()->InsertTemporary(name, out);
}

} // namespace zo
