#include "support/locale.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <locale>
#include <stdexcept>
#include <utility>

namespace str::locale {
namespace {

constexpr unsigned maxDigits = 1100; // a double has no more places than 1,074 behind the point

std::size_t LengthOfNumber(std::wstring_view text, wchar_t point) noexcept {
    std::size_t at = 0;
    auto const isAt = [&](wchar_t c) { return at < text.size() && text[at] == c; };
    auto const skipDigits = [&] {
        std::size_t const start = at;
        while (at < text.size() && IsDigit(text[at])) ++at;
        return at - start;
    };
    if (isAt(L'-') || isAt(L'+')) ++at;
    std::size_t digits = skipDigits();
    if (isAt(point)) {
        ++at;
        digits += skipDigits();
    }
    if (digits == 0) return 0;
    std::size_t const end = at;
    if (isAt(L'e') || isAt(L'E')) {
        ++at;
        if (isAt(L'-') || isAt(L'+')) ++at;
        if (skipDigits() > 0) return at;
    }
    return end;
}

ID& Native() {
    static ID user{std::string()};
    return user;
}

void Widen(std::wstring& out, char const* first, char const* last, wchar_t point) {
    std::array<wchar_t, math::numberTextSize> wide;
    wchar_t* to = wide.data();
    for (; first != last; ++first) *to++ = *first == '.' ? point : static_cast<wchar_t>(*first);
    out.append(wide.data(), to);
}

/// A number in decimal: d.ddd times ten to the exponent.
struct Decimal {
    std::array<char, 17> digits{}; // no double needs more, see `std::to_chars`
    int count = 0;
    int exponent = 0;
    bool negative = false;

    /// Takes apart what `std::to_chars` writes in scientific form; zeros at the end are left out.
    Decimal(char const* first, char const* last) noexcept {
        if (*first == '-') {
            negative = true;
            ++first;
        }
        int size = 0;
        for (; first != last && *first != 'e'; ++first) {
            if (*first == '.') continue;
            digits[static_cast<std::size_t>(size++)] = *first;
            if (*first != '0') count = size;
        }
        // A sign of "+" is none for from_chars.
        first += first[1] == '+' ? 2 : 1;
        std::from_chars(first, last, exponent);
    }

    static Decimal Shortest(double value) noexcept {
        std::array<char, math::numberTextSize> room;
        return {room.data(),
                std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::scientific).ptr};
    }

    void Append(std::wstring& out, wchar_t point) const {
        std::array<wchar_t, math::numberTextSize> wide;
        wchar_t* to = wide.data();
        auto const digit = [this](int i) {
            return i < count ? static_cast<wchar_t>(digits[static_cast<std::size_t>(i)]) : L'0';
        };
        if (negative) *to++ = L'-';
        if (exponent < -5 || exponent >= 15) {
            *to++ = digit(0);
            if (count > 1) *to++ = point;
            for (int i = 1; i < count; ++i) *to++ = digit(i);
            *to++ = L'e';
            *to++ = exponent < 0 ? L'-' : L'+';
            int const size = std::abs(exponent);
            if (size >= 100) *to++ = static_cast<wchar_t>(L'0' + size / 100);
            *to++ = static_cast<wchar_t>(L'0' + size / 10 % 10);
            *to++ = static_cast<wchar_t>(L'0' + size % 10);
        } else if (exponent < 0) {
            *to++ = L'0';
            *to++ = point;
            for (int i = exponent + 1; i < 0; ++i) *to++ = L'0';
            for (int i = 0; i < count; ++i) *to++ = digit(i);
        } else {
            for (int i = 0; i <= exponent; ++i) *to++ = digit(i);
            if (count > exponent + 1) *to++ = point;
            for (int i = exponent + 1; i < count; ++i) *to++ = digit(i);
        }
        out.append(wide.data(), to);
    }
};

/// `value`, whose shortest digits are `shortest`, rounded to fewer digits.
Decimal Rounded(double value, Decimal const& shortest, int digits) noexcept {
    // Where the digits left out are not half a unit, they say which way to round: a half between the value and its
    // shortest digits would itself be a shorter or a nearer text of the value. At a half only the value can tell.
    auto const at = static_cast<std::size_t>(digits);
    bool const isHalf = shortest.digits[at] == '5' && shortest.count == digits + 1;
    if (isHalf) {
        std::array<char, math::numberTextSize> room;
        return {room.data(),
                std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::scientific, digits - 1)
                    .ptr};
    }
    Decimal rounded = shortest;
    rounded.count = digits;
    if (shortest.digits[at] >= '5') {
        while (rounded.count > 0 && rounded.digits[static_cast<std::size_t>(rounded.count - 1)] == '9') --rounded.count;
        if (rounded.count > 0) {
            ++rounded.digits[static_cast<std::size_t>(rounded.count - 1)];
        } else {
            rounded.digits[0] = '1';
            rounded.count = 1;
            ++rounded.exponent;
        }
    }
    while (rounded.count > 1 && rounded.digits[static_cast<std::size_t>(rounded.count - 1)] == '0') --rounded.count;
    return rounded;
}

} // namespace

ID::ID(std::string const& name) : ID(Classic()) {
    try {
        std::locale const system(name);
        auto const& punctuation = std::use_facet<std::numpunct<wchar_t>>(system);
        decimalPoint = punctuation.decimal_point();
        grouping = punctuation.grouping().empty() ? L'\0' : punctuation.thousands_sep();
    } catch (std::runtime_error const&) {
        // The system has no such locale: LANG may name one that was never installed.
    }
}

ID const& native() { return Native(); }

ID SetNative(ID const& id) { return std::exchange(Native(), id); }

bool isdigit(wchar_t c, ID const&) noexcept { return IsDigit(c); }

bool isspace(wchar_t c, ID const&) noexcept {
    return IsBlank(c) || c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

htl::status from_string(double& value, std::size_t& used, std::wstring_view text, ID const& id) {
    std::size_t const length = NumberLength(text, id);
    if (length == 0) return HznError::syntax(std::wstring(text));
    std::wstring number(text.substr(0, length));
    std::ranges::replace(number, id.DecimalPoint(), L'.');
    double read = 0;
    if (math::ParseDouble(number, read) != math::ParseResult::Ok) {
        using htl::Convert_error_status;
        return Convert_error_status::OutOfRangeStatus(std::wstring(text.substr(0, length)),
                                                      Convert_error_status::FloatingPointString());
    }
    value = read;
    used = length;
    return htl::status::Success;
}

std::size_t NumberLength(std::wstring_view text, ID const& id) noexcept {
    return LengthOfNumber(text, id.DecimalPoint());
}

void AppendNumber(std::wstring& out, double value, ID const& id) {
    std::array<char, math::numberTextSize> room;
    Widen(out, room.data(), math::FormatDouble(room.data(), value), id.DecimalPoint());
}

void AppendNumber(std::wstring& out, float value, ID const& id) {
    std::array<char, math::numberTextSize> room;
    Widen(out, room.data(), math::FormatFloat(room.data(), value), id.DecimalPoint());
}

void AppendRounded(std::wstring& out, double value, int significantDigits, ID const& id) {
    if (!std::isfinite(value)) return;
    if (significantDigits <= 0) {
        out += L'0';
        return;
    }
    Decimal const shortest = Decimal::Shortest(value);
    Decimal const& rounded =
        shortest.count <= significantDigits ? shortest : Rounded(value, shortest, significantDigits);
    rounded.Append(out, id.DecimalPoint());
}

htl::status to_string(std::wstring& text, double value, unsigned precision, unsigned significantDigits,
                      floatformat::Type format, ID const& id) {
    std::array<char, maxDigits + 400> room; // besides the digits: 309 ahead of the point, sign, point, exponent
    char* const first = room.data();
    char* const last = first + room.size();
    if (!std::isfinite(value)) {
        std::to_chars_result const word = std::to_chars(first, last, value);
        using htl::Convert_error_status;
        return Convert_error_status::OutOfRangeStatus(std::wstring(first, word.ptr),
                                                      Convert_error_status::FloatingPointString());
    }
    auto const style = format == floatformat::Fixed        ? std::chars_format::fixed
                       : format == floatformat::Scientific ? std::chars_format::scientific
                                                           : std::chars_format::general;
    unsigned const digits = style == std::chars_format::general ? significantDigits : precision;
    char* end = nullptr;
    if (digits != notGiven)
        end = std::to_chars(first, last, value, style, static_cast<int>(std::min(digits, maxDigits))).ptr;
    else if (style == std::chars_format::general)
        end = math::FormatDouble(first, value);
    else
        end = std::to_chars(first, last, value, style).ptr;
    text.assign(first, end);
    std::ranges::replace(text, L'.', id.DecimalPoint());
    return htl::status::Success;
}

} // namespace str::locale
