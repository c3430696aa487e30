#include "support/locale.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <stdexcept>

namespace str::locale {
namespace {

constexpr unsigned maxDigits = 1100; // a double has no more places than 1,074 behind the point

/// How many characters `text` begins with that make a number; 0 if it begins with none.
std::size_t NumberLength(std::wstring_view text, wchar_t point) noexcept {
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

ID const& native() {
    static ID const user{std::string()};
    return user;
}

bool isdigit(wchar_t c, ID const&) noexcept { return IsDigit(c); }

bool isspace(wchar_t c, ID const&) noexcept {
    return IsBlank(c) || c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

htl::status from_string(double& value, std::size_t& used, std::wstring_view text, ID const& id) {
    std::size_t const length = NumberLength(text, id.DecimalPoint());
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
