// Descriptions made at run time behind plain functions.
//
// The members of a structure and the elements of a container name their description by a function without arguments,
// so that types may nest. What a line of a declaration says is known at run time only, and may differ from registry to
// registry. So each line has a place of its own, found by a type that names the line, where each registration leaves
// what it made.
#pragma once

#include "Common/registry/ZORegistry.h"

#include "support/meta.h"

#include <atomic>
#include <cstddef>
#include <utility>

namespace zo::kit::impl {

/// What one line's description is in each registry.
///
/// Lifetime: descriptions stay until the process ends, since rows refer to them. Threads: any; a reader takes no lock.
/// Cost: a registry's own registration is found at once if it is the latest one, else after all later ones.
class Slot {
public:
    constexpr Slot() noexcept = default;
    Slot(Slot const&) = delete;
    Slot& operator=(Slot const&) = delete;

    void Put(ZORegistry const* registry, meta::MetaDataTraits traits) {
        auto* const entry = new Entry{registry, std::move(traits), first.load(std::memory_order_relaxed)};
        while (!first.compare_exchange_weak(entry->next, entry, std::memory_order_release, std::memory_order_relaxed)) {
        }
    }

    /// The current registry's description, else the latest one. It does not count the record's owner.
    meta::MetaDataTraits Get() const {
        Entry const* const latest = first.load(std::memory_order_acquire);
        if (!latest) return {};
        Entry const* entry = latest;
        if (entry->next) {
            ZORegistry const* const registry = ZORegistry::Instance();
            while (entry && entry->registry != registry) entry = entry->next;
            if (!entry) entry = latest;
        }
        return entry->traits ? meta::MetaDataTraits(*entry->traits.Descriptor()) : meta::MetaDataTraits();
    }

private:
    struct Entry {
        ZORegistry const* registry; // compared, never followed: its registry may be gone
        meta::MetaDataTraits traits;
        Entry* next;
    };
    std::atomic<Entry*> first{nullptr};
};

/// A description by function.
using TraitsFunction = meta::MetaDataTraits (*)();

/// A slot and the function that reads it.
struct SlotRef {
    Slot* slot = nullptr;
    TraitsFunction traits = nullptr;
};

/// The slots of the line that `Key` names: one for each type that its own is made of.
template <class Key, std::size_t Index = 0>
struct SlotOf {
    static inline constinit Slot slot;
    static meta::MetaDataTraits Traits() { return slot.Get(); }
    static constexpr SlotRef Ref() noexcept { return {&slot, &Traits}; }
};

} // namespace zo::kit::impl
