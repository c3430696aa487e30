// Two threads that begin the same piece of work at the same moment.
//
// Each test of this folder runs in a process of its own, so what it uses first on both threads nobody used before: the
// order in which the library's statics are made is that of the two threads.
#pragma once

#include <barrier>
#include <thread>

namespace threads {

/// Where the two threads wait for each other.
class Meeting {
public:
    /// Goes on when the other thread is here, too, or has ended.
    void Wait() { barrier.arrive_and_wait(); }
    /// This thread comes no more.
    void Leave() { barrier.arrive_and_drop(); }

private:
    std::barrier<> barrier{2};
};

/// Calls `work(which, meeting)` on two threads, with 0 on one and 1 on the other, and waits for both.
template <class Work>
void SideBySide(Work const& work) {
    Meeting meeting;
    auto const run = [&](int which) {
        // A failed assertion returns early, and must not let the other thread wait for ever.
        struct Leaving {
            Meeting& meeting;
            ~Leaving() { meeting.Leave(); }
        } const leaving{meeting};
        meeting.Wait();
        work(which, meeting);
    };
    std::thread first(run, 0), second(run, 1);
    first.join();
    second.join();
}

} // namespace threads
