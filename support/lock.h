// The exclusive lock of state that threads share.
#pragma once

#include "support/export.h"

#include <mutex>

namespace sys::thread::impl {

/// A lock that excludes all other threads of the process and that its holder may take again.
///
/// Every object is a lock of its own. It is free once `Unlock` was called as often as `Lock`, by the same thread;
/// destroying a lock that is held, or unlocking one that the thread doesn't hold, is a programming error.
class ZO_API ProcessExclusiveAccess {
public:
    ProcessExclusiveAccess();
    ~ProcessExclusiveAccess();
    ProcessExclusiveAccess(ProcessExclusiveAccess const&) = delete;
    ProcessExclusiveAccess& operator=(ProcessExclusiveAccess const&) = delete;

    /// Waits until no other thread holds the lock.
    void Lock();
    void Unlock();

private:
    std::recursive_mutex mutex;
};

/// Holds a lock for the length of a block.
class ExclusiveAccessGuard {
public:
    explicit ExclusiveAccessGuard(ProcessExclusiveAccess& lock) : access(lock) { access.Lock(); }
    ~ExclusiveAccessGuard() { access.Unlock(); }
    ExclusiveAccessGuard(ExclusiveAccessGuard const&) = delete;
    ExclusiveAccessGuard& operator=(ExclusiveAccessGuard const&) = delete;

private:
    ProcessExclusiveAccess& access;
};

} // namespace sys::thread::impl
