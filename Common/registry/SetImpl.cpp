#include "Common/registry/SetImpl.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/registry/ZOSet.h"

#include "support/pool.h"

#include <algorithm>
#include <utility>

namespace zo {

using impl::NodeAccess;
using Count = htl::handle_mgmt_refcounted;

void* SetEntry::operator new(std::size_t size) { return htl::pool::Allocate(size); }
void SetEntry::operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

EntryTable::EntryTable() : buckets(8, nullptr) {}

EntryTable::~EntryTable() {
    for (SetEntry* entry : buckets)
        while (entry) delete std::exchange(entry, entry->next);
    while (waiting) delete std::exchange(waiting, waiting->next);
    while (spare) delete std::exchange(spare, spare->next);
}

SetEntry* EntryTable::Acquire() {
    if (!spare) return new SetEntry;
    SetEntry* const entry = std::exchange(spare, spare->next);
    --spareCount;
    entry->name.clear();
    return entry;
}

void EntryTable::Recycle(SetEntry* entry) noexcept {
    // Neither one very long name nor many entries may hold their memory for ever.
    constexpr std::size_t longest = 1024;
    constexpr std::size_t most = 64;
    if (entry->name.capacity() > longest || spareCount == most) {
        delete entry;
        return;
    }
    entry->node = nullptr;
    entry->next = spare;
    spare = entry;
    ++spareCount;
}

void EntryTable::Hook_(SetEntry* entry, SetEntry** place) noexcept {
    entry->next = *place;
    entry->back = place;
    if (entry->next) entry->next->back = &entry->next;
    *place = entry;
}

void EntryTable::Insert(SetEntry* entry) {
    ++size;
    entry->hashed = false;
    if (!entry->visible) return Hook_(entry, &waiting);
    ++visible;
    if (entry->name.size() > longestVisible) longestVisible = entry->name.size();
    InsertHashed_(entry);
}

void EntryTable::InsertNew(SetEntry* entry, std::uint64_t hash) {
    if (2 * hashed >= buckets.size()) Grow_();
    ++size;
    ++visible;
    ++hashed;
    if (entry->name.size() > longestVisible) longestVisible = entry->name.size();
    entry->hash = hash;
    entry->hashed = true;
    Hook_(entry, &buckets[hash & (buckets.size() - 1)]);
}

void EntryTable::Forget() noexcept {
    // One large transaction must not make every small one after it clear as many buckets.
    if (hashed * 64 < buckets.size()) buckets.resize(8);
    std::fill(buckets.begin(), buckets.end(), nullptr);
    size = hashed = visible = longestVisible = 0;
    waiting = nullptr;
}

void EntryTable::InsertHashed_(SetEntry* entry) {
    if (2 * hashed >= buckets.size()) Grow_();
    entry->hash = path::Hash(entry->name);
    SetEntry** const head = &buckets[entry->hash & (buckets.size() - 1)];
    SetEntry** place = head;
    for (SetEntry** at = head; *at; at = &(*at)->next) {
        if ((*at)->hash != entry->hash || (*at)->name != entry->name) continue;
        place = &(*at)->next;
        if (!entry->visible) break;
    }
    Hook_(entry, place);
    entry->hashed = true;
    ++hashed;
}

void EntryTable::Remove(SetEntry* entry) noexcept {
    *entry->back = entry->next;
    if (entry->next) entry->next->back = entry->back;
    --size;
    if (entry->visible) --visible;
    if (entry->hashed) --hashed;
}

SetEntry* EntryTable::First(std::string_view name) {
    while (waiting) {
        SetEntry* const entry = waiting;
        waiting = entry->next;
        if (waiting) waiting->back = &waiting;
        InsertHashed_(entry);
    }
    return hashed == 0 ? nullptr : Search_(name, path::Hash(name));
}

SetEntry* EntryTable::Search_(std::string_view name, std::uint64_t hash) const noexcept {
    for (SetEntry* entry = buckets[hash & (buckets.size() - 1)]; entry; entry = entry->next)
        if (entry->hash == hash && entry->name == name) return entry;
    return nullptr;
}

SetEntry* EntryTable::FirstVisible(std::string_view name) const noexcept {
    return visible == 0 ? nullptr : FirstVisible(name, path::Hash(name));
}

SetEntry* EntryTable::FirstVisible(std::string_view name, std::uint64_t hash) const noexcept {
    for (SetEntry* entry = Search_(name, hash); entry; entry = entry->next)
        if (entry->visible && entry->name == name) return entry;
    return nullptr;
}

void EntryTable::Grow_() {
    std::vector<SetEntry*> old(buckets.size() * 2, nullptr);
    old.swap(buckets);
    // Each chain is split in two. From its end, so that putting each entry in front keeps the order.
    std::vector<SetEntry*> chain;
    for (SetEntry* entry : old) {
        chain.clear();
        for (; entry; entry = entry->next) chain.push_back(entry);
        for (auto at = chain.rbegin(); at != chain.rend(); ++at)
            Hook_(*at, &buckets[(*at)->hash & (buckets.size() - 1)]);
    }
}

std::string_view impl::EntryName(IZO const& node) noexcept {
    ZOSet const* const owner = node.Owner();
    if (!owner || node.OwnerID() == IZO::npos) return {};
    std::vector<SetEntry*> const& order = owner->Impl()->entryOrder;
    SetEntry const* const entry = node.OwnerID() < order.size() ? order[node.OwnerID()] : nullptr;
    return entry ? std::string_view(entry->name) : std::string_view();
}

ZOSetImpl::ZOSetImpl() = default;

ZOSetImpl::~ZOSetImpl() { ReleaseAll(); }

bool ZOSetImpl::IsRegistryImpl() const { return false; }

void ZOSetImpl::SuspendTracking() { validateValues = false; }

void ZOSetImpl::ResumeTracking() {
    trackTemporaries = true;
    validateValues = true;
}

void ZOSetImpl::Enter(ZOSet* set, SetEntry* entry, IZO* node, bool visible, bool counted) {
    // An entry that the node has elsewhere can't end with the node any more once the node knows this place.
    LeavePlace(*node);
    Place_(set, entry, node, visible, counted);
    entries.Insert(entry);
}

void ZOSetImpl::Place_(ZOSet* set, SetEntry* entry, IZO* node, bool visible, bool counted) {
    entry->node = node;
    entry->visible = visible;
    entry->counted = counted;
    entry->position = entryOrder.size();
    entryOrder.push_back(entry);
    if (counted) Count::AddRef(node);
    NodeAccess::SetOwner(*node, set, entry->position);
}

void ZOSetImpl::Keep(ZOSet* set, std::string_view name, std::uint64_t hash, IZO* node) {
    SetEntry* const entry = entries.Acquire();
    entry->name = name;
    LeavePlace(*node);
    Place_(set, entry, node, true, true);
    entries.InsertNew(entry, hash);
}

void ZOSetImpl::Enter(ZOSet* set, std::string_view name, IZO* node, bool visible, bool counted) {
    SetEntry* const entry = entries.Acquire();
    entry->name = name;
    Enter(set, entry, node, visible, counted);
}

void ZOSetImpl::LeavePlace(IZO const& node) noexcept {
    if (!NodeAccess::IsEntered(node)) return;
    ZOSetImpl& owner = *node.Owner()->Impl();
    std::size_t const place = node.OwnerID();
    if (place < owner.entryOrder.size() && owner.entryOrder[place] && !owner.entryOrder[place]->counted)
        owner.Leave(&node, place);
}

void ZOSetImpl::Leave(IZO const* node, std::size_t position) noexcept {
    if (position >= entryOrder.size()) return;
    SetEntry* const entry = entryOrder[position];
    // A copy of a node knows the original's place, too.
    if (!entry || entry->node != node) return;
    entryOrder[position] = nullptr;
    while (!entryOrder.empty() && !entryOrder.back()) entryOrder.pop_back();
    entries.Remove(entry);
    entries.Recycle(entry);
}

void ZOSetImpl::ReleaseAll() noexcept {
    std::vector<SetEntry*> all;
    all.swap(entryOrder);
    // All owners first: the end of one node may end others, and none may reach into these tables any more.
    for (SetEntry* entry : all)
        if (entry && NodeAccess::IsEntered(*entry->node) && entry->node->OwnerID() == entry->position &&
            entry->node->Owner()->Impl() == this)
            NodeAccess::SetOwner(*entry->node, nullptr, IZO::npos);
    entries.Forget();
    for (SetEntry* entry : all) {
        if (!entry) continue;
        IZO* const node = entry->node;
        bool const counted = entry->counted;
        entries.Recycle(entry);
        if (counted) Count::Release(node);
    }
}

} // namespace zo
