// Who guards client memory: a manager counts the views over it, so that an array isn't resized under them.
#pragma once

#include "support/handle.h"
#include "support/meta.h"

#include <cstdint>

namespace zo {

/// Stands for one object of client memory and counts the wrappers that are now built over it.
///
/// Counted by handles. Clients may derive their own; the library's is `ZOArrayMemMgr`.
class ZO_API ZOMemMgr : public htl::handle_ref_counter {
public:
    /// `memory` is described by `traits` and stays the client's.
    ZOMemMgr(void* memory, meta::MetaDataTraits traits);
    ZOMemMgr(ZOMemMgr const&) = delete;
    ZOMemMgr& operator=(ZOMemMgr const&) = delete;

    /// A manager of the same type for other memory: wrap it in a handle at once.
    virtual ZOMemMgr* RemapClone(void* memory) const = 0;

    /// The memory that the manager stands for; for an array, the array object.
    void* Memory() const noexcept { return memory; }
    /// The description of that memory.
    meta::MetaDataTraits const& Traits() const noexcept { return traits; }
    /// How many wrappers are built over the memory now.
    std::uint32_t WrapperCount() const noexcept { return wrapperCount; }
    /// Counts one more.
    void AddWrapper() noexcept { ++wrapperCount; }
    /// Takes one away, unless the count is 0.
    void RemoveWrapper() noexcept {
        if (wrapperCount > 0) --wrapperCount;
    }

    /// Makes this manager count as one wrapper over the memory that its own lies in, until it ends. Only the first call
    /// counts. So a view deep inside keeps every array around it from being resized.
    void SetOuter(htl::handle<ZOMemMgr> const& manager);

protected:
    ~ZOMemMgr() override;

private:
    void* memory;
    meta::MetaDataTraits traits;
    std::uint32_t wrapperCount = 0;
    htl::handle<ZOMemMgr> outer;
};

namespace impl {

/// Counts as a view for as long as it lives.
class ViewGuard {
public:
    explicit ViewGuard(ZOMemMgr& manager) : manager(manager) { manager.AddWrapper(); }
    ViewGuard(ViewGuard const&) = delete;
    ViewGuard& operator=(ViewGuard const&) = delete;
    ~ViewGuard() { manager.RemoveWrapper(); }

private:
    ZOMemMgr& manager;
};

} // namespace impl

class LiveManagers;

/// The manager of every described container. There is one live manager for each memory and descriptor, whichever lookup
/// asked for it, so a view from one lookup protects the array from a resize through another.
class ZO_API ZOArrayMemMgr final : public ZOMemMgr {
public:
    /// A manager on its own, for prototypes: it is not shared. `arrayTraits` is of array kind.
    ZOArrayMemMgr(void* memory, meta::MetaDataTraits const& arrayTraits);

    ZOMemMgr* RemapClone(void* memory) const override;

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);

private:
    ~ZOArrayMemMgr() override;

    friend class LiveManagers;
    ZOArrayMemMgr* next = nullptr; // in the table of live managers
    bool shared = false;           // stands in that table
};

} // namespace zo
