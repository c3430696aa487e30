#include "examples/slope/Progress.h"

#include "examples/slope/Text.h"

#include <iostream>

#include <unistd.h>

namespace slope {

namespace {

constexpr std::chrono::milliseconds firstLine{1000}, nextLine{200};

} // namespace

Progress::Progress(std::string work, std::size_t count) : what(std::move(work)), total(count) {
    if (isatty(STDERR_FILENO)) thread = std::thread([this] { Show_(); });
}

Progress::~Progress() {
    if (!thread.joinable()) return;
    {
        std::lock_guard const lock(mutex);
        over = true;
    }
    wake.notify_one();
    thread.join();
}

std::chrono::milliseconds Progress::Elapsed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - started);
}

void Progress::Show_() {
    std::unique_lock lock(mutex);
    bool shown = false;
    for (auto wait = firstLine; !wake.wait_for(lock, wait, [this] { return over; }); wait = nextLine) {
        auto const tenths = Elapsed().count() / 100;
        std::string line = what + " ... " + std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
        if (total) line += ", " + Count(done.load(std::memory_order_relaxed)) + " of " + Count(total);
        std::cerr << "\r\x1B[K" << line << std::flush;
        shown = true;
    }
    if (shown) std::cerr << "\r\x1B[K" << std::flush;
}

} // namespace slope
