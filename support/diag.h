// Diagnostics: named categories, what is logged, where it goes; and named feature switches.
#pragma once

#include "support/export.h"

#include <cstdint>
#include <string>

namespace hzn::diag {

/// How much a message matters.
struct Severity {
    /// In this order.
    enum Type : std::int32_t { Info = 0, Note = 1, Warning = 2, Error = 3 };
};

/// A named diagnostic category: one bit for each distinct name, the same for all objects of a name.
///
/// There are 31 bits. The names beyond 30 share the last one and so are logged together. Threads: any.
class ZO_API DeclareCategoryMask {
public:
    /// Gives the name its bit at the first call.
    explicit DeclareCategoryMask(char const* name);

    /// The bit.
    operator int() const noexcept { return bit; }

private:
    int bit;
};

/// Whether a message of this severity and category is being logged; nothing is until `SetLogged` asks for it. Ask
/// before the text is made. Threads: any. Cost: two loads.
ZO_API bool IsLogged(Severity::Type severity, int category) noexcept;
/// From now on logs the messages of `mask`'s categories that are at least as severe as `minimum`. Mask 0 logs nothing.
ZO_API void SetLogged(int mask, Severity::Type minimum) noexcept;

} // namespace hzn::diag

namespace hzn {

/// Where diagnostics are posted. The receiver implements it.
class ZO_API IEventSink {
public:
    /// Called on the thread that found something to say; threads may call at the same time.
    virtual void Post(hzn::diag::Severity::Type severity, int category, std::wstring const& text) = 0;

protected:
    IEventSink() = default;
    IEventSink(IEventSink const&) = default;
    IEventSink& operator=(IEventSink const&) = default;
    ~IEventSink() = default;
};

} // namespace hzn

namespace hzn::eventsink {

/// The process's sink; never null. The one in place at first drops everything. Threads: any.
ZO_API IEventSink* Instance() noexcept;
/// Puts another sink in place and returns the one before. Null puts the dropping one back. The sink is borrowed: it has
/// to outlive its time in place.
ZO_API IEventSink* SetInstance(IEventSink* sink) noexcept;

} // namespace hzn::eventsink

namespace hzn::feature {

/// Whether the named feature is on; features are off until they are set. Names count letter for letter. Threads: any.
ZO_API bool IsFeatureEnabled(std::wstring const& name);
ZO_API void SetFeature(std::wstring const& name, bool enabled);

} // namespace hzn::feature
