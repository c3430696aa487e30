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

// How many units are looked at together, and all their bits: as great as the greatest unit, or greater.
constexpr std::size_t step = 32;
std::uint32_t BitsOf(wchar_t const* units) noexcept {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < step; ++i) bits |= static_cast<std::uint32_t>(units[i]);
    return bits;
}

// Writes up to four bytes, and how many; U+FFFD for what is no code point.
std::size_t PutUtf8(char* to, char32_t c) noexcept {
    auto const put = [&to](char32_t byte) { *to++ = static_cast<char>(byte); };
    if (!IsCodePoint(c)) c = replacement;
    if (c < 0x80) {
        put(c);
        return 1;
    }
    if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
        return 3;
    }
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
    return 4;
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
        auto const c = static_cast<char32_t>(unit);
        if (c < 0x80) {
            out += static_cast<char>(c);
            continue;
        }
        char bytes[4];
        out.append(bytes, PutUtf8(bytes, c));
    }
}

void AssignWide(std::wstring& out, std::string_view text) {
    out.clear();
    AppendWide(out, text.data(), text.size());
}

htl::status as_utf16le(std::wstring_view text, std::vector<unsigned char>& out) {
    out.clear();
    if (htl::status failure = CheckCodePoints(text); failure.IsError()) return failure;
    out.reserve(2 * text.size());
    auto const append = [&out](std::uint32_t unit) {
        out.push_back(static_cast<unsigned char>(unit & 0xFF));
        out.push_back(static_cast<unsigned char>(unit >> 8));
    };
    for (wchar_t const unit : text) {
        auto const c = static_cast<char32_t>(unit);
        if (c < 0x10000) {
            append(c);
        } else {
            append(0xD7C0 + (c >> 10));
            append(0xDC00 + (c & 0x3FF));
        }
    }
    return htl::status::Success;
}

std::size_t EncodeUtf8(std::span<char> out, std::wstring_view& text) noexcept {
    char* to = out.data();
    char* const end = to + out.size();
    wchar_t const* from = text.data();
    wchar_t const* const last = from + text.size();
    while (from != last) {
        // Most text is ASCII, a byte for each character.
        while (last - from >= std::ptrdiff_t(step) && end - to >= std::ptrdiff_t(step) && BitsOf(from) < 0x80) {
            for (std::size_t i = 0; i < step; ++i) to[i] = static_cast<char>(from[i]);
            from += step;
            to += step;
        }
        if (from == last) break;
        // The others of the step at hand, one by one.
        wchar_t const* const stop = last - from > std::ptrdiff_t(step) ? from + step : last;
        for (; from != stop; ++from) {
            char bytes[4];
            std::size_t const size = PutUtf8(bytes, static_cast<char32_t>(*from));
            if (static_cast<std::size_t>(end - to) < size) {
                text.remove_prefix(static_cast<std::size_t>(from - text.data()));
                return static_cast<std::size_t>(to - out.data());
            }
            to = std::copy_n(bytes, size, to);
        }
    }
    text = {};
    return static_cast<std::size_t>(to - out.data());
}

htl::status CheckCodePoints(std::wstring_view text) {
    constexpr unsigned unfitCharacter = 90012;
    for (std::size_t at = 0; at < text.size();) {
        if (text.size() - at >= step && BitsOf(text.data() + at) < 0xD800) {
            at += step;
            continue;
        }
        for (std::size_t const stop = std::min(at + step, text.size()); at != stop; ++at)
            if (!IsCodePoint(static_cast<char32_t>(text[at]))) return htl::status(unfitCharacter, at + 1);
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
