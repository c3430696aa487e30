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
    void Wait() { done.wait(); }

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
    rival.Wait();
}

TEST(LockTest, EachObjectIsALockOfItsOwn) {
    ProcessExclusiveAccess held;
    ProcessExclusiveAccess free;
    held.Lock();
    Rival(free).Wait(); // would never return if the two were one
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
    Rival(lock).Wait();
}

} // namespace
