#include "support/diag.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <vector>

namespace hzn::diag {
namespace {

// Bit 31 stays out of use: the mask travels as an int.
constexpr std::size_t bitCount = 31;

constinit std::atomic<int> loggedMask{0};
constinit std::atomic<std::int32_t> loggedFrom{Severity::Error};

struct Names {
    std::mutex access;
    std::vector<std::string> list; // the place of a name is its bit
};

// Categories are declared by statics of any module, so the table comes up on first use and is never freed.
Names& CategoryNames() {
    static Names& names = *new Names;
    return names;
}

} // namespace

DeclareCategoryMask::DeclareCategoryMask(char const* name) {
    Names& names = CategoryNames();
    std::lock_guard const lock(names.access);
    auto const place = static_cast<std::size_t>(std::ranges::find(names.list, name) - names.list.begin());
    if (place == names.list.size() && place < bitCount - 1) names.list.emplace_back(name);
    bit = 1 << place;
}

bool IsLogged(Severity::Type severity, int category) noexcept {
    return (loggedMask.load(std::memory_order_relaxed) & category) != 0 &&
           severity >= loggedFrom.load(std::memory_order_relaxed);
}

void SetLogged(int mask, Severity::Type minimum) noexcept {
    loggedFrom.store(minimum, std::memory_order_relaxed);
    loggedMask.store(mask, std::memory_order_relaxed);
}

} // namespace hzn::diag

namespace hzn::eventsink {
namespace {

class DroppingSink final : public IEventSink {
public:
    void Post(diag::Severity::Type, int, std::wstring const&) override {}
};

constinit DroppingSink dropping;
constinit std::atomic<IEventSink*> current{&dropping};

} // namespace

IEventSink* Instance() noexcept { return current.load(std::memory_order_acquire); }

IEventSink* SetInstance(IEventSink* sink) noexcept {
    return current.exchange(sink ? sink : &dropping, std::memory_order_acq_rel);
}

} // namespace hzn::eventsink

namespace hzn::feature {
namespace {

struct Switches {
    std::shared_mutex access;
    std::set<std::wstring> enabled;
};

Switches& Features() {
    static Switches& switches = *new Switches;
    return switches;
}

} // namespace

bool IsFeatureEnabled(std::wstring const& name) {
    Switches& features = Features();
    std::shared_lock const reading(features.access);
    return features.enabled.contains(name);
}

void SetFeature(std::wstring const& name, bool enabled) {
    Switches& features = Features();
    std::unique_lock const writing(features.access);
    if (enabled)
        features.enabled.insert(name);
    else
        features.enabled.erase(name);
}

} // namespace hzn::feature
