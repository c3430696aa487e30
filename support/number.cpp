#include "support/number.h"

#include "support/text.h"

#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace math {
namespace {

// Most numbers of a document fit; longer ones are rare enough to allocate.
constexpr std::size_t narrowRoom = 128;

// Beyond any exponent that a number of so many digits could make up for, and far from overflow when digits are added.
constexpr std::int64_t exponentLimit = 1'000'000'000'000'000;

template <class C>
constexpr bool IsDigitUnit(C c) noexcept {
    return c >= C('0') && c <= C('9');
}

template <class C>
std::basic_string_view<C> TrimBlanks(std::basic_string_view<C> text) noexcept {
    while (!text.empty() && str::IsBlank(static_cast<wchar_t>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && str::IsBlank(static_cast<wchar_t>(text.back()))) text.remove_suffix(1);
    return text;
}

/// What a decimal text says, as far as one pass tells.
template <class C>
struct Decimal {
    ParseResult result = ParseResult::BadCharacter;
    bool negative = false;
    bool hasExponent = false;
    bool isExact = true;              ///< `mantissa` times ten to the `exponent` is the number
    std::uint64_t mantissa = 0;       ///< the first 19 digits behind the leading zeros
    std::int64_t exponent = 0;        ///< of the last digit in `mantissa`
    std::int64_t magnitude = 0;       ///< exponent of the first digit that is not zero
    std::basic_string_view<C> digits; ///< the text from behind the sign, without blanks
};

template <class C>
Decimal<C> Scan(std::basic_string_view<C> text) noexcept {
    Decimal<C> number;
    if (text.empty()) {
        number.result = ParseResult::Empty;
        return number;
    }
    text = TrimBlanks(text);
    C const* p = text.data();
    C const* const end = p + text.size();
    if (p != end && (*p == C('-') || *p == C('+'))) number.negative = *p++ == C('-');
    number.digits = {p, static_cast<std::size_t>(end - p)};

    bool hasDigit = false;
    bool hasPoint = false;
    int kept = 0;
    for (; p != end; ++p) {
        if (IsDigitUnit(*p)) {
            hasDigit = true;
            auto const digit = static_cast<unsigned>(*p - C('0'));
            if (kept == 0 && digit == 0) {
                if (hasPoint) --number.exponent;
                continue;
            }
            if (kept < 19) {
                number.mantissa = number.mantissa * 10 + digit;
                ++kept;
                if (hasPoint) --number.exponent;
            } else {
                number.isExact = number.isExact && digit == 0;
                if (!hasPoint) ++number.exponent;
            }
        } else if (*p == C('.') && !hasPoint) {
            hasPoint = true;
        } else {
            break;
        }
    }
    if (!hasDigit) return number;

    if (p != end) {
        if (*p != C('e') && *p != C('E')) return number;
        number.hasExponent = true;
        ++p;
        bool const isBelow = p != end && *p == C('-');
        if (p != end && (*p == C('-') || *p == C('+'))) ++p;
        if (p == end) return number;
        std::int64_t exponent = 0;
        for (; p != end; ++p) {
            if (!IsDigitUnit(*p)) return number;
            if (exponent < exponentLimit) exponent = exponent * 10 + (*p - C('0'));
        }
        number.exponent += isBelow ? -exponent : exponent;
    }
    number.magnitude = number.exponent + kept - 1;
    number.result = ParseResult::Ok;
    return number;
}

template <class T>
struct ExactRange;
// Whole numbers up to `largest` and powers of ten up to the table's end are exact in the type, so one multiplication or
// division of the two rounds once and gives the nearest value.
template <>
struct ExactRange<double> {
    static constexpr std::uint64_t largest = std::uint64_t(1) << 53;
    static constexpr std::array powers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
};
template <>
struct ExactRange<float> {
    static constexpr std::uint64_t largest = std::uint64_t(1) << 24;
    static constexpr std::array powers{1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f, 1e10f};
};

/// Reads "digits" of ASCII characters, sign apart.
template <class T>
ParseResult FromChars(char const* first, char const* last, std::int64_t magnitude, T& value) noexcept {
    T read = 0;
    if (std::from_chars(first, last, read).ec == std::errc::result_out_of_range) {
        if (magnitude > 0) return ParseResult::OutOfRange;
        read = 0;
    }
    value = read;
    return ParseResult::Ok;
}

template <class T>
ParseResult FromText(std::string_view digits, std::int64_t magnitude, T& value) {
    return FromChars(digits.data(), digits.data() + digits.size(), magnitude, value);
}

template <class T>
ParseResult FromText(std::wstring_view digits, std::int64_t magnitude, T& value) {
    std::array<char, narrowRoom> room;
    std::string longText;
    char* first = room.data();
    if (digits.size() > room.size()) {
        longText.resize(digits.size());
        first = longText.data();
    }
    // The scan has seen to it that every character is ASCII.
    for (std::size_t i = 0; i < digits.size(); ++i) first[i] = static_cast<char>(digits[i]);
    return FromChars(first, first + digits.size(), magnitude, value);
}

template <class T, class C>
ParseResult ParseReal(std::basic_string_view<C> text, T& value) {
    using Exact = ExactRange<T>;
    constexpr auto maxPower = static_cast<std::int64_t>(Exact::powers.size()) - 1;

    Decimal<C> const number = Scan(text);
    if (number.result != ParseResult::Ok) return number.result;
    T read = 0;
    if (number.mantissa == 0) {
        read = 0;
    } else if (FLT_EVAL_METHOD == 0 && number.isExact && number.mantissa <= Exact::largest &&
               number.exponent >= -maxPower && number.exponent <= maxPower) {
        read = static_cast<T>(number.mantissa);
        if (number.exponent < 0)
            read /= Exact::powers[static_cast<std::size_t>(-number.exponent)];
        else
            read *= Exact::powers[static_cast<std::size_t>(number.exponent)];
    } else if (ParseResult const result = FromText(number.digits, number.magnitude, read); result != ParseResult::Ok) {
        return result;
    }
    value = number.negative ? -read : read;
    return ParseResult::Ok;
}

template <class C>
impl::Magnitude ParseDigits(std::basic_string_view<C> text, bool isSigned) noexcept {
    impl::Magnitude read{ParseResult::BadCharacter, false, 0};
    if (text.empty()) {
        read.result = ParseResult::Empty;
        return read;
    }
    text = TrimBlanks(text);
    C const* p = text.data();
    C const* const end = p + text.size();
    if (p != end && (*p == C('+') || (isSigned && *p == C('-')))) read.negative = *p++ == C('-');
    if (p == end) return read;
    bool fits = true;
    for (; p != end; ++p) {
        if (!IsDigitUnit(*p)) return read;
        auto const digit = static_cast<unsigned>(*p - C('0'));
        constexpr htl::UInt64 largest = std::numeric_limits<htl::UInt64>::max();
        fits = fits && (read.value < largest / 10 || (read.value == largest / 10 && digit <= largest % 10));
        read.value = read.value * 10 + digit;
    }
    read.result = fits ? ParseResult::Ok : ParseResult::OutOfRange;
    return read;
}

template <class T>
char* FormatReal(char* first, T value) noexcept {
    char* const last = first + numberTextSize;
    if (!std::isfinite(value)) return first;
    T const size = std::abs(value);
    if (size < T(1e15)) {
        auto const whole = static_cast<htl::Int64>(value);
        // Whole numbers of this size are told apart by their digits, and writing an integer is much the cheapest.
        if (static_cast<T>(whole) == value) {
            if (whole == 0 && std::signbit(value)) *first++ = '-';
            return std::to_chars(first, last, whole).ptr;
        }
        if (size >= T(1e-5)) return std::to_chars(first, last, value, std::chars_format::fixed).ptr;
    }
    return std::to_chars(first, last, value, std::chars_format::scientific).ptr;
}

void Append(std::wstring& out, char const* first, char const* last) {
    std::array<wchar_t, numberTextSize> wide;
    auto const length = static_cast<std::size_t>(last - first);
    for (std::size_t i = 0; i < length; ++i) wide[i] = static_cast<wchar_t>(first[i]);
    out.append(wide.data(), length);
}

template <class T>
void AppendWhole(std::wstring& out, T value) {
    std::array<char, numberTextSize> room;
    Append(out, room.data(), std::to_chars(room.data(), room.data() + room.size(), value).ptr);
}

template <class T, class S>
void ReadInteger(T& value, S const& text) noexcept {
    value = std::numeric_limits<T>::max();
    (void)ParseInteger<T>(text, value); // what can't be read is missing, which stands there already
}

template <class T, class S>
void ReadReal(T& value, S const& text) {
    value = std::numeric_limits<T>::max();
    (void)ParseReal(std::basic_string_view<typename S::value_type>(text), value); // as above
}

template <class T>
std::array<char, 66> Digits(T value, int base, std::size_t& length) noexcept {
    std::array<char, 66> room; // 64 binary digits and a sign
    length =
        static_cast<std::size_t>(std::to_chars(room.data(), room.data() + room.size(), value, base).ptr - room.data());
    return room;
}

template <class C>
bool IsWhole(std::basic_string<C> const& text, bool isSigned) noexcept {
    ParseResult const result = ParseDigits(std::basic_string_view<C>(text), isSigned).result;
    return result == ParseResult::Ok || result == ParseResult::OutOfRange;
}

template <class C>
bool IsDecimal(std::basic_string<C> const& text, bool allowExponent) noexcept {
    Decimal<C> const number = Scan(std::basic_string_view<C>(text));
    return number.result == ParseResult::Ok && (allowExponent || !number.hasExponent);
}

} // namespace

ParseResult ParseDouble(std::wstring_view text, double& value) { return ParseReal(text, value); }
ParseResult ParseDouble(std::string_view text, double& value) { return ParseReal(text, value); }
ParseResult ParseFloat(std::wstring_view text, float& value) { return ParseReal(text, value); }
ParseResult ParseFloat(std::string_view text, float& value) { return ParseReal(text, value); }

char* FormatDouble(char* first, double value) noexcept { return FormatReal(first, value); }
char* FormatFloat(char* first, float value) noexcept { return FormatReal(first, value); }

void AppendNumber(std::wstring& out, double value) {
    std::array<char, numberTextSize> room;
    Append(out, room.data(), FormatDouble(room.data(), value));
}
void AppendNumber(std::wstring& out, float value) {
    std::array<char, numberTextSize> room;
    Append(out, room.data(), FormatFloat(room.data(), value));
}
void AppendNumber(std::wstring& out, int value) { AppendWhole(out, value); }
void AppendNumber(std::wstring& out, unsigned value) { AppendWhole(out, value); }
void AppendNumber(std::wstring& out, long value) { AppendWhole(out, value); }
void AppendNumber(std::wstring& out, unsigned long value) { AppendWhole(out, value); }
void AppendNumber(std::wstring& out, htl::Int64 value) { AppendWhole(out, value); }
void AppendNumber(std::wstring& out, htl::UInt64 value) { AppendWhole(out, value); }

namespace impl {

Magnitude ParseMagnitude(std::wstring_view text, bool isSigned) noexcept { return ParseDigits(text, isSigned); }
Magnitude ParseMagnitude(std::string_view text, bool isSigned) noexcept { return ParseDigits(text, isSigned); }

template <class T>
void ConvertInt<T>::to_string(std::string& text, T const& value, int base) {
    std::size_t length = 0;
    auto const digits = Digits(value, base, length);
    text.assign(digits.data(), length);
}
template <class T>
void ConvertInt<T>::to_string(std::wstring& text, T const& value, int base) {
    std::size_t length = 0;
    auto const digits = Digits(value, base, length);
    text.assign(digits.data(), digits.data() + length);
}
template <class T>
void ConvertInt<T>::from_string(T& value, std::string const& text) {
    ReadInteger(value, text);
}
template <class T>
void ConvertInt<T>::from_string(T& value, std::wstring const& text) {
    ReadInteger(value, text);
}

template <class T>
void ConvertFloat<T>::to_string(std::string& text, T const& value) {
    std::array<char, numberTextSize> room;
    text.assign(room.data(), FormatReal(room.data(), value));
}
template <class T>
void ConvertFloat<T>::to_string(std::wstring& text, T const& value) {
    text.clear();
    AppendNumber(text, value);
}
template <class T>
void ConvertFloat<T>::from_string(T& value, std::string const& text) {
    ReadReal(value, text);
}
template <class T>
void ConvertFloat<T>::from_string(T& value, std::wstring const& text) {
    ReadReal(value, text);
}

template struct ConvertInt<int>;
template struct ConvertInt<unsigned>;
template struct ConvertInt<long>;
template struct ConvertInt<unsigned long>;
template struct ConvertInt<htl::Int64>;
template struct ConvertInt<htl::UInt64>;
template struct ConvertFloat<float>;
template struct ConvertFloat<double>;

} // namespace impl
} // namespace math

namespace htl::impl {

bool is_integral_valid_from(std::string const& text, bool isSigned) noexcept { return math::IsWhole(text, isSigned); }
bool is_integral_valid_from(std::wstring const& text, bool isSigned) noexcept { return math::IsWhole(text, isSigned); }
bool is_float_valid_from(std::string const& text, bool allowExponent) noexcept {
    return math::IsDecimal(text, allowExponent);
}
bool is_float_valid_from(std::wstring const& text, bool allowExponent) noexcept {
    return math::IsDecimal(text, allowExponent);
}

} // namespace htl::impl

namespace str {

htl::status from_wstring(std::wstring const& text, std::size_t& value) {
    using htl::Convert_error_status;
    constexpr std::size_t longest = 0x7FFFFFFF;
    // The reader of numbers would also take blanks and a sign.
    if (text.empty() || text.find_first_not_of(L"0123456789") != text.npos)
        return Convert_error_status::InvalidCharStatus(text, Convert_error_status::WholeNumberString());
    std::size_t length = 0;
    if (math::ParseInteger<std::size_t>(text, length) != math::ParseResult::Ok || length > longest)
        return Convert_error_status::OutOfRangeStatus(text, Convert_error_status::WholeNumberString());
    value = length;
    return htl::status::Success;
}

} // namespace str
