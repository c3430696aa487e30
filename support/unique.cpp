#include "support/unique.h"

#include "support/text.h"

#include <locale.h>
#include <wctype.h>

namespace str {
namespace {

/// The tables of one fixed locale, so that two users of a file see the same duplicates. Null where the system lacks it.
locale_t UnicodeTables() noexcept {
    static locale_t const tables = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
    return tables;
}

wchar_t ToLower(wchar_t c) noexcept {
    if (c < 0x80 || !UnicodeTables()) return ToLowerAscii(c);
    return static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), UnicodeTables()));
}

} // namespace

std::wstring FoldCase(std::wstring text) {
    for (wchar_t& c : text) c = ToLower(c);
    return text;
}

void UniqueTexts::Add(std::wstring const& text) { taken.insert(FoldCase(text)); }

std::wstring UniqueTexts::Make(std::wstring const& name) {
    std::wstring const folded = FoldCase(name);
    if (!taken.contains(folded)) return name;
    // Texts are only ever added, so a number that was taken stays taken.
    std::size_t& number = numbers.try_emplace(folded, 2).first->second;
    auto const suffix = [&number] { return L" (" + std::to_wstring(number) + L")"; };
    while (taken.contains(folded + suffix())) ++number;
    return name + suffix();
}

} // namespace str
