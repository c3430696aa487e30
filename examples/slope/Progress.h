// What a long piece of work shows to somebody who waits for it.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace slope {

/// A line on standard error that says what is going on, once it takes longer than a second: seconds gone, and how much
/// is done where that is known. Shown only on a terminal; gone when the object ends.
///
/// The line is written by a thread of its own, so that work that reports nothing, such as a save, shows that it lives.
class Progress {
public:
    /// `total` is what there is to do, 0 where that isn't known.
    explicit Progress(std::string what, std::size_t total = 0);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    void Done(std::size_t count) { done.store(count, std::memory_order_relaxed); }

    std::chrono::milliseconds Elapsed() const;

private:
    void Show_();

    std::string what;
    std::size_t total;
    std::atomic<std::size_t> done = 0;
    std::chrono::steady_clock::time_point started = std::chrono::steady_clock::now();
    std::mutex mutex;
    std::condition_variable wake;
    bool over = false; // under `mutex`
    std::thread thread;
};

} // namespace slope
