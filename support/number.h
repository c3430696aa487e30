// Numbers as text and text as numbers, the same in every locale.
//
// Documents are mostly numbers, so the building blocks here take views, work on the stack and allocate nothing.
#pragma once

#include "support/export.h"
#include "support/int64.h"
#include "support/status.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace math {

/// How the reading of a number ended.
enum class ParseResult : std::uint8_t {
    Ok,
    Empty,        ///< no characters at all; blanks alone are a BadCharacter
    BadCharacter, ///< the text is no number of this sort
    OutOfRange,   ///< a number, but the type can't hold it
};

/// Reads a whole number: blanks, a sign ("-" for signed T alone), decimal digits, blanks. `value` keeps its old value
/// unless the result is Ok. T is any signed or unsigned integer type from `short` on.
template <class T>
ParseResult ParseInteger(std::wstring_view text, T& value) noexcept;
template <class T>
ParseResult ParseInteger(std::string_view text, T& value) noexcept;

/// Reads a decimal number: blanks, a sign, digits with at most one ".", an exponent, blanks; at least one digit before
/// the exponent. No "inf", no "nan", no hexadecimal. `value` keeps its old value unless the result is Ok.
///
/// The result is the nearest value of the type, so what `FormatDouble` wrote comes back bit for bit; a number too small
/// for the type is a zero of its sign. Cost: linear; text beyond 128 characters takes an allocation.
ZO_API ParseResult ParseDouble(std::wstring_view text, double& value);
ZO_API ParseResult ParseDouble(std::string_view text, double& value);
/// The same for `float`, rounded once.
ZO_API ParseResult ParseFloat(std::wstring_view text, float& value);
ZO_API ParseResult ParseFloat(std::string_view text, float& value);

/// Room that the text of any number of this header needs at most.
inline constexpr std::size_t numberTextSize = 32;

/// Writes the shortest text that reads back to the same value: in full from 1e-5 up to below 1e15 and for zero, with an
/// exponent elsewhere ("1e+20"). The sign of zero is kept. A value that is not finite has no text.
/// `first` has room for `numberTextSize` characters; no terminating zero is written. Returns the end of the text.
ZO_API char* FormatDouble(char* first, double value) noexcept;
ZO_API char* FormatFloat(char* first, float value) noexcept;

/// Appends the number's text: `FormatDouble`, `FormatFloat`, or decimal digits. No temporary string is made.
ZO_API void AppendNumber(std::wstring& out, double value);
ZO_API void AppendNumber(std::wstring& out, float value);
ZO_API void AppendNumber(std::wstring& out, int value);
ZO_API void AppendNumber(std::wstring& out, unsigned value);
ZO_API void AppendNumber(std::wstring& out, long value);
ZO_API void AppendNumber(std::wstring& out, unsigned long value);
ZO_API void AppendNumber(std::wstring& out, htl::Int64 value);
ZO_API void AppendNumber(std::wstring& out, htl::UInt64 value);

namespace impl {

/// Whole numbers to and from text. T is int, unsigned, long, unsigned long, `__int64` or `unsigned __int64`.
template <class T>
struct ConvertInt {
    /// Replaces `text` by the digits of `value` in `base` (2 to 36, small letters), "-" in front of a negative one.
    static void to_string(std::string& text, T const& value, int base = 10);
    static void to_string(std::wstring& text, T const& value, int base = 10);
    /// Reads as `ParseInteger` does. Text that gives no value of T leaves the largest T, which stands for missing.
    static void from_string(T& value, std::string const& text);
    static void from_string(T& value, std::wstring const& text);
};

/// Floating point numbers to and from text. T is float or double.
template <class T>
struct ConvertFloat {
    /// Replaces `text` by the shortest text that reads back.
    static void to_string(std::string& text, T const& value);
    static void to_string(std::wstring& text, T const& value);
    /// Reads as `ParseDouble` does. Text that gives no value of T leaves the largest finite T, which stands for
    /// missing.
    static void from_string(T& value, std::string const& text);
    static void from_string(T& value, std::wstring const& text);
};

extern template struct ZO_API ConvertInt<int>;
extern template struct ZO_API ConvertInt<unsigned>;
extern template struct ZO_API ConvertInt<long>;
extern template struct ZO_API ConvertInt<unsigned long>;
extern template struct ZO_API ConvertInt<htl::Int64>;
extern template struct ZO_API ConvertInt<htl::UInt64>;
extern template struct ZO_API ConvertFloat<float>;
extern template struct ZO_API ConvertFloat<double>;

/// How the characters of a whole number were read.
struct Magnitude {
    ParseResult result;
    bool negative;
    htl::UInt64 value;
};
/// Reads sign and digits; OutOfRange when the magnitude needs more than 64 bits.
ZO_API Magnitude ParseMagnitude(std::wstring_view text, bool isSigned) noexcept;
ZO_API Magnitude ParseMagnitude(std::string_view text, bool isSigned) noexcept;

template <class T, class View>
ParseResult ParseIntegerText(View text, T& value) noexcept {
    constexpr bool isSigned = T(-1) < T(0);
    constexpr auto largest =
        static_cast<htl::UInt64>(static_cast<T>(~htl::UInt64(0) >> (64 - 8 * sizeof(T) + isSigned)));
    Magnitude const read = ParseMagnitude(text, isSigned);
    if (read.result != ParseResult::Ok) return read.result;
    if (read.value > largest + (read.negative ? 1u : 0u)) return ParseResult::OutOfRange;
    // Unsigned arithmetic, since the smallest value's magnitude is no value of T.
    value = static_cast<T>(read.negative ? htl::UInt64(0) - read.value : read.value);
    return ParseResult::Ok;
}

} // namespace impl

template <class T>
ParseResult ParseInteger(std::wstring_view text, T& value) noexcept {
    return impl::ParseIntegerText(text, value);
}
template <class T>
ParseResult ParseInteger(std::string_view text, T& value) noexcept {
    return impl::ParseIntegerText(text, value);
}

} // namespace math

namespace htl::impl {

/// Whether the text is a whole number of any size: blanks, a sign ("-" only if `isSigned`), digits, blanks.
ZO_API bool is_integral_valid_from(std::string const& text, bool isSigned) noexcept;
ZO_API bool is_integral_valid_from(std::wstring const& text, bool isSigned) noexcept;
/// Whether the text is a decimal number of any size: blanks, a sign, digits with at most one ".", an exponent only if
/// `allowExponent`, blanks; at least one digit before the exponent.
ZO_API bool is_float_valid_from(std::string const& text, bool allowExponent) noexcept;
ZO_API bool is_float_valid_from(std::wstring const& text, bool allowExponent) noexcept;

} // namespace htl::impl

namespace str {

/// Reads a length: one or more digits and nothing else, at most 0x7FFFFFFF, which no array of a document exceeds.
/// Failures: InvalidCharStatus, OutOfRangeStatus; `value` is then as it was.
ZO_API htl::status from_wstring(std::wstring const& text, std::size_t& value);

} // namespace str
