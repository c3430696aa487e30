// Numbers in the user's notation.
//
// Only what people read and type goes through here; documents know no locale.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace str::locale {

/// How numbers are written somewhere. A small value type.
class ZO_API ID {
public:
    /// The classic notation: decimal point ".", no grouping.
    static ID Classic() noexcept { return ID(L'.', L'\0'); }

    /// `separator` 0 for none.
    ID(wchar_t point, wchar_t separator) noexcept : decimalPoint(point), grouping(separator) {}
    /// The notation of the system's locale `name`, "" for the user's; the classic one if the system has no such locale.
    explicit ID(std::string const& name);

    /// What stands before the fraction.
    wchar_t DecimalPoint() const noexcept { return decimalPoint; }
    /// What stands between groups of digits, 0 for nothing. Numbers are neither written nor read with it.
    wchar_t Grouping() const noexcept { return grouping; }

    friend bool operator==(ID const&, ID const&) = default;

private:
    wchar_t decimalPoint;
    wchar_t grouping;
};

/// How a number is written.
struct floatformat {
    /// As %g, %f and %e of the C library.
    enum Type : std::int32_t { General = 0, Fixed = 1, Scientific = 2 };
};

/// Stands for a precision or a number of digits that is not given.
inline constexpr unsigned notGiven = 0xFFFFFFFFu;

/// The user's locale. Read once, on the first call; the classic notation if the environment names a missing locale.
ZO_API ID const& native();
/// Puts another notation in place of the user's and returns the one before, for applications with a setting of their
/// own. Set at start-up, before other threads ask: `native` gives the same object, with what was set.
ZO_API ID SetNative(ID const& id);

/// Whether the character is one of the digits that numbers are written with: 0 to 9 in every locale.
ZO_API bool isdigit(wchar_t c, ID const& id) noexcept;
/// Whether the character is white space; the same for all locales, no-break spaces included.
ZO_API bool isspace(wchar_t c, ID const& id) noexcept;

/// Reads the number that `text` begins with: a sign, digits with at most one decimal point of the locale, an exponent
/// if digits follow it; at least one digit. No leading blanks, no grouping, no "inf", "nan" or hexadecimal.
///
/// `used` is the number of characters read; a decimal point behind the last digit counts.
/// Failures: `HznError::syntax` if the text begins with no number, OutOfRangeStatus if it is beyond a `double`. `value`
/// and `used` are then as they were. A number too small for a `double` is a zero.
ZO_API htl::status from_string(double& value, std::size_t& used, std::wstring_view text, ID const& id);

/// How many characters of `text` `from_string` reads as a number; 0 if it begins with none. Cost: linear in the answer.
ZO_API std::size_t NumberLength(std::wstring_view text, ID const& id) noexcept;

/// Appends the shortest text that reads back to the same value, in the form of `math::FormatDouble`, with the locale's
/// decimal point and without grouping. A value that is not finite has no text.
ZO_API void AppendNumber(std::wstring& out, double value, ID const& id);
ZO_API void AppendNumber(std::wstring& out, float value, ID const& id);
/// The same, rounded to `significantDigits` if that text has more of them. No digits give 0.
ZO_API void AppendRounded(std::wstring& out, double value, int significantDigits, ID const& id);

/// Replaces `text` by the number's text, with the locale's decimal point and without grouping.
///
/// General rounds to `significantDigits`, drops zeros at the end, and has an exponent below 1e-4 and where the number
/// has more whole digits than that; `precision` takes no part. Fixed and Scientific write `precision` digits behind the
/// point and `significantDigits` takes no part. Not given means as many as reading back needs; more than 1,100 digits
/// are never written. Failure: OutOfRangeStatus for a value that is not finite; `text` is then as it was.
ZO_API htl::status to_string(std::wstring& text, double value, unsigned precision, unsigned significantDigits,
                             floatformat::Type format, ID const& id);

} // namespace str::locale
