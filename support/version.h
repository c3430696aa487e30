// Version numbers of documents and of the application.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <compare>
#include <string>

namespace hzn::version {

/// A version number: kind 0 is that of a document format, kind 1 that of an application.
template <int Kind>
struct NumberKind;

/// The version of a document format. Text: "12.03", the second number with two digits at least.
///
/// Precondition: `minorPart` is below 100. Versions travel as decimal fractions, where 12.100 equals 12.10.
template <>
struct NumberKind<0> {
    unsigned majorPart = 0; ///< before the point
    unsigned minorPart = 0; ///< behind it, below 100

    friend auto operator<=>(NumberKind const&, NumberKind const&) = default;
};

/// The version of an application. Text: "11.2.0.4711".
template <>
struct NumberKind<1> {
    unsigned majorPart = 0; ///< the first number
    unsigned minorPart = 0; ///< the second
    unsigned release = 0;   ///< the third
    unsigned build = 0;     ///< the last

    friend auto operator<=>(NumberKind const&, NumberKind const&) = default;
};

/// What is running.
struct Record {
    NumberKind<1> application; ///< all zero until it is set
};

/// The running version; all zero until it is set.
///
/// Threads: reading is safe from any thread as long as nobody sets.
ZO_API Record const& Current() noexcept;
/// Sets the running version. An application does so at start-up, before other threads read it.
ZO_API void SetCurrent(Record const& record) noexcept;

namespace number {

/// The version as a number: exactly what reading its text as a `double` gives.
ZO_API double Encode(NumberKind<0> const& version);

} // namespace number
} // namespace hzn::version

namespace str {

/// The text of a version: "12.03", "11.2.0.4711".
ZO_API std::wstring as_wstring(hzn::version::NumberKind<0> const& version);
ZO_API std::wstring as_wstring(hzn::version::NumberKind<1> const& version);

/// Reads one to four whole numbers with "." between them; those not given are 0.
/// Failures: `HznError::syntax` for text of another form, OutOfRangeStatus for a number beyond 32 bits. `version` is
/// then as it was.
ZO_API htl::status from_wstring(std::wstring const& text, hzn::version::NumberKind<1>& version);

} // namespace str
