#include "support/text.h"

#include "support/unique.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <utility>

namespace str {
namespace {

constexpr char32_t replacement = 0xFFFD;

constexpr bool IsCodePoint(char32_t c) { return c < 0xD800 || (c >= 0xE000 && c <= 0x10FFFF); }

/// Reads the character at `p`; a byte that belongs to no well-formed sequence is one U+FFFD.
char32_t NextUtf8(unsigned char const*& p, unsigned char const* end) noexcept {
    unsigned char const first = *p++;
    if (first < 0x80) return first;
    int const tail = first >= 0xC2 && first <= 0xDF   ? 1
                     : first >= 0xE0 && first <= 0xEF ? 2
                     : first >= 0xF0 && first <= 0xF4 ? 3
                                                      : 0;
    if (tail == 0 || end - p < tail) return replacement;
    char32_t c = first & (0x3Fu >> tail);
    for (int i = 0; i < tail; ++i) {
        if ((p[i] & 0xC0) != 0x80) return replacement;
        c = c << 6 | (p[i] & 0x3Fu);
    }
    // The shortest form alone is well-formed: two bytes were seen to by the first byte.
    if ((tail == 2 && c < 0x800) || (tail == 3 && c < 0x10000) || !IsCodePoint(c)) return replacement;
    p += tail;
    return c;
}

void AppendWide(std::wstring& out, char const* text, std::size_t length) {
    auto const* p = reinterpret_cast<unsigned char const*>(text);
    unsigned char const* const end = p + length;
    // One character per byte is the most there can be; cut to what was written.
    std::size_t const before = out.size();
    out.resize(before + length);
    wchar_t* to = out.data() + before;
    while (p != end) {
        if (*p < 0x80)
            *to++ = static_cast<wchar_t>(*p++);
        else
            *to++ = static_cast<wchar_t>(NextUtf8(p, end));
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
}

/// The 16-bit units of wide text, one after the other.
class Utf16Units {
public:
    explicit Utf16Units(std::wstring_view wide) noexcept : text(wide) {}

    /// The next unit, or -1 at the end.
    std::int64_t Next() noexcept {
        if (trail != 0) return std::exchange(trail, 0u);
        if (at == text.size()) return -1;
        auto const c = static_cast<std::uint32_t>(text[at++]);
        if (c < 0x10000) return c;
        trail = 0xDC00 + (c & 0x3FF);
        return 0xD7C0 + (c >> 10);
    }

private:
    std::wstring_view text;
    std::size_t at = 0;
    std::uint32_t trail = 0;
};

// How many units at the beginning of `text` are below the surrogates, short of the last of them by less than a step.
std::size_t RunBelowSurrogates(std::wstring_view text) noexcept {
    constexpr std::size_t step = 32;
    std::size_t run = 0;
    for (; text.size() - run >= step; run += step) {
        bool other = false;
        for (std::size_t i = 0; i < step; ++i) other |= static_cast<std::uint32_t>(text[run + i]) >= 0xD800;
        if (other) break;
    }
    return run;
}

template <class V>
V TrimView(V text) noexcept {
    while (!text.empty() && IsBlank(static_cast<wchar_t>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && IsBlank(static_cast<wchar_t>(text.back()))) text.remove_suffix(1);
    return text;
}

} // namespace

std::wstring as_wstring(std::string const& text) { return as_wstring(text.data(), text.size()); }

std::wstring as_wstring(char const* text, std::size_t length) {
    std::wstring out;
    AppendWide(out, text, length);
    return out;
}

std::wstring as_wstring(wchar_t const* text, std::size_t length) { return std::wstring(text, length); }

std::wstring as_wstring(u8string const& text) {
    return as_wstring(reinterpret_cast<char const*>(text.data()), text.size());
}

std::string as_cstring(std::wstring const& text) {
    std::string out;
    AppendUtf8(out, text);
    return out;
}

std::string as_cstring(char const* text, std::size_t length) { return std::string(text, length); }

u8string as_u8string(std::string const& text) {
    return u8string(reinterpret_cast<char8_t const*>(text.data()), text.size());
}

void AppendUtf8(std::string& out, std::wstring_view text) {
    out.reserve(out.size() + text.size());
    for (wchar_t const unit : text) {
        auto c = static_cast<char32_t>(unit);
        if (c < 0x80) {
            out += static_cast<char>(c);
            continue;
        }
        if (!IsCodePoint(c)) c = replacement;
        if (c < 0x800) {
            out += static_cast<char>(0xC0 | c >> 6);
        } else {
            if (c < 0x10000) {
                out += static_cast<char>(0xE0 | c >> 12);
            } else {
                out += static_cast<char>(0xF0 | c >> 18);
                out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
            }
            out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        }
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void AssignWide(std::wstring& out, std::string_view text) {
    out.clear();
    AppendWide(out, text.data(), text.size());
}

htl::status as_utf16le(std::wstring_view text, std::vector<unsigned char>& out) {
    out.clear();
    if (htl::status failure = CheckCodePoints(text); failure.IsError()) return failure;
    auto const pairs = std::ranges::count_if(text, [](wchar_t c) { return static_cast<char32_t>(c) >= 0x10000; });
    out.resize(2 * (text.size() + static_cast<std::size_t>(pairs)));
    EncodeUtf16le({reinterpret_cast<char*>(out.data()), out.size()}, text);
    return htl::status::Success;
}

std::size_t EncodeUtf16le(std::span<char> out, std::wstring_view& text) noexcept {
    char* to = out.data();
    char* const end = to + out.size();
    auto const append = [&to](std::uint32_t unit) {
        *to++ = static_cast<char>(unit & 0xFF);
        *to++ = static_cast<char>(unit >> 8);
    };
    auto const* from = text.data();
    auto const* const last = from + text.size();
    while (from != last) {
        // Most text is far from surrogates: as many units as fit, one for each character.
        auto const room = std::min(static_cast<std::size_t>(end - to) / 2, static_cast<std::size_t>(last - from));
        std::size_t const run = RunBelowSurrogates({from, room});
        for (std::size_t i = 0; i < run; ++i) append(static_cast<std::uint32_t>(from[i]));
        from += run;
        if (from == last || end - to < 2) break;
        auto c = static_cast<char32_t>(*from);
        if (!IsCodePoint(c)) c = replacement;
        if (c < 0x10000) {
            append(c);
        } else {
            if (end - to < 4) break;
            append(0xD7C0 + (c >> 10));
            append(0xDC00 + (c & 0x3FF));
        }
        ++from;
    }
    text.remove_prefix(static_cast<std::size_t>(from - text.data()));
    return static_cast<std::size_t>(to - out.data());
}

htl::status CheckCodePoints(std::wstring_view text) {
    constexpr unsigned unfitCharacter = 90012;
    for (std::size_t at = 0; at < text.size(); ++at) {
        at += RunBelowSurrogates(text.substr(at));
        if (at < text.size() && !IsCodePoint(static_cast<char32_t>(text[at])))
            return htl::status(unfitCharacter, at + 1);
    }
    return htl::status::Success;
}

int CompareUtf16(std::wstring_view a, std::wstring_view b) noexcept {
    std::size_t const shared = std::min(a.size(), b.size());
    std::size_t i = 0;
    while (i < shared && a[i] == b[i]) ++i;
    // Units rather than characters from here on, since a lone surrogate may meet half of a pair.
    Utf16Units left(a.substr(i));
    Utf16Units right(b.substr(i));
    for (;;) {
        std::int64_t const l = left.Next();
        std::int64_t const r = right.Next();
        if (l != r) return l < r ? -1 : 1;
        if (l < 0) return 0;
    }
}

void replace_all(std::wstring& text, std::wstring const& from, std::wstring const& to) {
    if (from.empty()) return;
    std::size_t hit = text.find(from);
    if (hit == std::wstring::npos) return;
    // Built beside the text: replacing in place would move the rest at each hit.
    std::wstring out;
    std::size_t start = 0;
    for (; hit != std::wstring::npos; hit = text.find(from, start)) {
        out.append(text, start, hit - start).append(to);
        start = hit + from.size();
    }
    out.append(text, start);
    text = std::move(out);
}

template <class S>
void split(std::vector<S>& out, std::type_identity_t<S> const& text, std::type_identity_t<S> const& separator) {
    std::vector<S> pieces;
    if (!text.empty()) {
        std::size_t start = 0;
        if (!separator.empty()) {
            for (std::size_t hit = 0; (hit = text.find(separator, start)) != S::npos; start = hit + separator.size())
                pieces.push_back(text.substr(start, hit - start));
        }
        pieces.push_back(text.substr(start));
    }
    // Last, since `text` or `separator` may be one of the old pieces.
    out = std::move(pieces);
}
template void split<std::string>(std::vector<std::string>&, std::string const&, std::string const&);
template void split<std::wstring>(std::vector<std::wstring>&, std::wstring const&, std::wstring const&);

template <class S>
void join(S& out, std::vector<S> const& pieces, std::type_identity_t<S> const& separator) {
    S text;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i != 0) text += separator;
        text += pieces[i];
    }
    out = std::move(text);
}
template void join<std::string>(std::string&, std::vector<std::string> const&, std::string const&);
template void join<std::wstring>(std::wstring&, std::vector<std::wstring> const&, std::wstring const&);

std::wstring_view Trim(std::wstring_view text) noexcept { return TrimView(text); }

std::string_view Trim(std::string_view text) noexcept { return TrimView(text); }

} // namespace str

std::wstring GenerateUniqueDesriptionIgnoreCase(std::vector<std::wstring> const& taken, std::wstring const& name) {
    std::unordered_set<std::wstring> lowered;
    for (std::wstring const& text : taken) lowered.insert(str::FoldCase(text));
    std::wstring candidate = name;
    for (std::size_t number = 2; lowered.contains(str::FoldCase(candidate)); ++number)
        candidate = name + L" (" + std::to_wstring(number) + L")";
    return candidate;
}
