#include "support/lock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using sys::thread::impl::ExclusiveAccessGuard;
using sys::thread::impl::ProcessExclusiveAccess;

/// Another thread that wants the lock once.
class Rival {
public:
    explicit Rival(ProcessExclusiveAccess& lock)
        : done(std::async(std::launch::async, [&lock] {
              lock.Lock();
              lock.Unlock();
          })) {}
    bool HasHadTheLock() { return done.wait_for(std::chrono::milliseconds(50)) == std::future_status::ready; }
    /// Generous, since a free lock is had at once and only a failure waits so long.
    bool GetsTheLock() { return done.wait_for(std::chrono::seconds(30)) == std::future_status::ready; }

private:
    std::future<void> done;
};

TEST(LockTest, HolderMayTakeItAgainAndItIsFreeAfterAsManyUnlocks) {
    ProcessExclusiveAccess lock;
    lock.Lock();
    lock.Lock();
    Rival rival(lock);
    EXPECT_FALSE(rival.HasHadTheLock());
    lock.Unlock();
    EXPECT_FALSE(rival.HasHadTheLock());
    lock.Unlock();
    EXPECT_TRUE(rival.GetsTheLock());
}

TEST(LockTest, EachObjectIsALockOfItsOwn) {
    ProcessExclusiveAccess held;
    ProcessExclusiveAccess free;
    held.Lock();
    Rival rival(free);
    EXPECT_TRUE(rival.GetsTheLock());
    held.Unlock();
}

TEST(LockTest, ExcludesOtherThreads) {
    ProcessExclusiveAccess lock;
    int sum = 0; // plain on purpose
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&] {
                for (int i = 0; i < 10000; ++i) {
                    ExclusiveAccessGuard const outer(lock);
                    ExclusiveAccessGuard const inner(lock);
                    ++sum;
                }
            });
        }
    }
    EXPECT_EQ(sum, 40000);
}

TEST(LockTest, GuardFreesTheLockWhenAnExceptionPasses) {
    ProcessExclusiveAccess lock;
    EXPECT_THROW(
        {
            ExclusiveAccessGuard const guard(lock);
            throw std::runtime_error("interrupted");
        },
        std::runtime_error);
    EXPECT_TRUE(Rival(lock).GetsTheLock());
}

} // namespace
