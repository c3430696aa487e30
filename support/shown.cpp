#include "support/shown.h"

#include "support/text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace meta::impl {
namespace {

using str::locale::ID;

std::wstring_view TrimSpace(std::wstring_view text, ID const& id) noexcept {
    while (!text.empty() && str::locale::isspace(text.front(), id)) text.remove_prefix(1);
    while (!text.empty() && str::locale::isspace(text.back(), id)) text.remove_suffix(1);
    return text;
}

std::size_t DigitsAt(std::wstring_view text, std::size_t start) noexcept {
    std::size_t end = start;
    while (end < text.size() && str::IsDigit(text[end])) ++end;
    return end - start;
}

/// Whether the "." of a number, which it has, may stand between groups of digits.
bool MayGroup(std::wstring_view number) noexcept {
    std::size_t const first = number.front() == L'-' || number.front() == L'+';
    std::size_t const before = DigitsAt(number, first);
    // No group is written in front of the first digit that counts: "0.500" is a half everywhere.
    if (before == 0 || before > 3 || number[first] == L'0') return false;
    return DigitsAt(number, first + before + 1) == 3;
}

} // namespace

int DigitsThatCount(double shown, double step) noexcept {
    double const size = std::abs(shown);
    // A step of a double is at most 2.3e-16 of it, so this is the answer wherever a conversion only multiplies.
    if (!(step > size * 1e-15)) return shownDigits;
    double const digits = std::ceil(std::floor(std::log10(size)) + 1 - std::log10(step)) - 1;
    return digits >= 1 ? std::min(static_cast<int>(digits), shownDigits) : 0;
}

TypedNumber ReadTyped(std::wstring_view text, ID const& id) {
    constexpr wchar_t classicPoint = L'.';
    TypedNumber typed;
    text = TrimSpace(text, id);
    if (text.empty()) {
        typed.result = TypedResult::Nothing;
        return typed;
    }
    wchar_t point = id.DecimalPoint();
    std::size_t length = str::locale::NumberLength(text, id);
    if (point != classicPoint) {
        std::size_t const classic = str::locale::NumberLength(text, ID::Classic());
        if (classic > length) {
            bool const goesOn = classic < text.size() && (text[classic] == point || text[classic] == classicPoint);
            if (id.Grouping() == classicPoint && (goesOn || MayGroup(text.substr(0, classic)))) {
                typed.result = TypedResult::Ambiguous;
                return typed;
            }
            length = classic;
            point = classicPoint;
        }
    }
    if (length == 0) return typed;
    typed.result = TypedResult::Number;
    typed.digits = text.substr(0, length);
    std::ranges::replace(typed.digits, point, classicPoint);
    typed.rest = TrimSpace(text.substr(length), id);
    return typed;
}

} // namespace meta::impl
