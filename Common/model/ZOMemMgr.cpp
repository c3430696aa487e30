#include "Common/model/ZOMemMgr.h"

#include "support/pool.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace zo {

ZOMemMgr::ZOMemMgr(void* memory, meta::MetaDataTraits traits) : memory(memory), traits(std::move(traits)) {}

ZOMemMgr::~ZOMemMgr() {
    if (outer) outer->RemoveWrapper();
}

void ZOMemMgr::SetOuter(htl::handle<ZOMemMgr> const& manager) {
    if (outer || !manager || manager.get() == this) return;
    outer = manager;
    outer->AddWrapper();
}

/// The live managers of the process, by memory and descriptor.
///
/// In shards with a lock each, since every step into an array asks here and threads work side by side. A registry's
/// nodes and managers stay on one thread at a time, so the locks guard the table and not the managers.
class LiveManagers {
public:
    static LiveManagers& Instance() {
        // Never freed: nodes may die after the statics of the library.
        static LiveManagers& table = *new LiveManagers;
        return table;
    }

    ZOArrayMemMgr* FindOrMake(void* memory, meta::MetaDataTraits const& traits) {
        std::uint64_t const hash = Hash_(memory, traits.Descriptor());
        Shard& shard = ShardOf_(hash);
        std::lock_guard const lock(shard.access);
        if (!shard.buckets.empty())
            for (ZOArrayMemMgr* at = *shard.BucketOf(hash); at; at = at->next)
                if (at->Memory() == memory && at->Traits().Descriptor() == traits.Descriptor()) return at;
        if (shard.count >= shard.buckets.size()) Grow_(shard);
        auto* const made = new ZOArrayMemMgr(memory, traits);
        ZOArrayMemMgr** const bucket = shard.BucketOf(hash);
        made->shared = true;
        made->next = std::exchange(*bucket, made);
        ++shard.count;
        return made;
    }

    void Remove(ZOArrayMemMgr* manager) noexcept {
        std::uint64_t const hash = Hash_(manager->Memory(), manager->Traits().Descriptor());
        Shard& shard = ShardOf_(hash);
        std::lock_guard const lock(shard.access);
        ZOArrayMemMgr** place = shard.BucketOf(hash);
        while (*place != manager) place = &(*place)->next;
        *place = manager->next;
        --shard.count;
    }

private:
    struct Shard {
        std::mutex access;
        std::vector<ZOArrayMemMgr*> buckets; // a power of two
        std::size_t count = 0;

        ZOArrayMemMgr** BucketOf(std::uint64_t hash) noexcept { return &buckets[hash & (buckets.size() - 1)]; }
    };

    static std::uint64_t Hash_(void const* memory, void const* descriptor) noexcept {
        std::uint64_t hash = reinterpret_cast<std::uintptr_t>(memory) * 0x9E3779B97F4A7C15u;
        hash ^= reinterpret_cast<std::uintptr_t>(descriptor);
        hash *= 0x9E3779B97F4A7C15u;
        return hash ^ (hash >> 32);
    }
    // From the top, as buckets go by the low bits.
    Shard& ShardOf_(std::uint64_t hash) noexcept { return shards[hash >> 58]; }

    static void Grow_(Shard& shard) {
        std::vector<ZOArrayMemMgr*> old(shard.buckets.empty() ? 8 : 2 * shard.buckets.size());
        old.swap(shard.buckets);
        for (ZOArrayMemMgr* first : old)
            while (first) {
                ZOArrayMemMgr* const moved = std::exchange(first, first->next);
                ZOArrayMemMgr** const bucket = shard.BucketOf(Hash_(moved->Memory(), moved->Traits().Descriptor()));
                moved->next = std::exchange(*bucket, moved);
            }
    }

    std::array<Shard, 64> shards;
};

ZOArrayMemMgr::ZOArrayMemMgr(void* memory, meta::MetaDataTraits const& arrayTraits) : ZOMemMgr(memory, arrayTraits) {}

ZOArrayMemMgr::~ZOArrayMemMgr() {
    if (shared) LiveManagers::Instance().Remove(this);
}

ZOMemMgr* ZOArrayMemMgr::RemapClone(void* memory) const {
    return LiveManagers::Instance().FindOrMake(memory, Traits());
}

void* ZOArrayMemMgr::operator new(std::size_t size) { return htl::pool::Allocate(size); }
void ZOArrayMemMgr::operator delete(void* block, std::size_t size) { htl::pool::Free(block, size); }

} // namespace zo
