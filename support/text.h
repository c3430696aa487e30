// Narrow and wide text: conversion, order, cutting and joining. Narrow text is UTF-8, one wchar_t is one code point.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace str {

/// UTF-8 with its own type.
using u8string = std::u8string;

/// Widens UTF-8. A byte that belongs to no well-formed sequence becomes U+FFFD; nothing fails.
ZO_API std::wstring as_wstring(std::string const& text);
ZO_API std::wstring as_wstring(char const* text, std::size_t length);
ZO_API std::wstring as_wstring(wchar_t const* text, std::size_t length);
ZO_API std::wstring as_wstring(u8string const& text);
/// Narrows to UTF-8. A unit that is no code point (a lone surrogate, above 0x10FFFF) becomes U+FFFD.
ZO_API std::string as_cstring(std::wstring const& text);
ZO_API std::string as_cstring(char const* text, std::size_t length);
/// The bytes taken as UTF-8.
ZO_API u8string as_u8string(std::string const& text);

/// Appends the UTF-8 form of `text` to `out`, as `as_cstring` does.
ZO_API void AppendUtf8(std::string& out, std::wstring_view text);
/// Encodes as UTF-8 what fits into `out` from the beginning of `text`, whole characters, and moves `text` behind it;
/// the number of bytes. A unit that is no code point becomes U+FFFD. Four bytes are room for any character.
ZO_API std::size_t EncodeUtf8(std::span<char> out, std::wstring_view& text) noexcept;
/// Replaces `out` by the widened `text`, as `as_wstring` does, reusing the memory of `out`.
ZO_API void AssignWide(std::wstring& out, std::string_view text);

/// Encodes to UTF-16, low byte first, without a mark.
/// Failure: a lone surrogate or a unit above 0x10FFFF (message 90012 with its position from 1); `out` is then empty.
ZO_API htl::status as_utf16le(std::wstring_view text, std::vector<unsigned char>& out);

/// Whether a document can carry the text: success, or the failure of `as_utf16le`.
ZO_API htl::status CheckCodePoints(std::wstring_view text);

/// Order by UTF-16 code units, a shorter text before a longer one with the same beginning: negative, 0 or positive.
///
/// The order of siblings in a document and of every table that is bisected by tag. It differs from the order of wide
/// strings only where a character above U+FFFF meets one in U+E000 to U+FFFF.
ZO_API int CompareUtf16(std::wstring_view a, std::wstring_view b) noexcept;

/// Function object for `CompareUtf16(a, b) < 0`.
struct LessUtf16 {
    /// Texts of any kind can be looked up.
    using is_transparent = void;
    /// Whether `a` stands before `b`.
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept { return CompareUtf16(a, b) < 0; }
};

/// Replaces every occurrence of `from` by `to`, left to right; what was put in is not searched again. An empty `from`
/// changes nothing.
ZO_API void replace_all(std::wstring& text, std::wstring const& from, std::wstring const& to);

/// Cuts `text` at every `separator` and replaces `out` by the pieces, empty ones included. Empty text: no pieces. An
/// empty separator: the whole text as one piece. S is std::string or std::wstring.
template <class S>
void split(std::vector<S>& out, std::type_identity_t<S> const& text, std::type_identity_t<S> const& separator);
extern template ZO_API void split<std::string>(std::vector<std::string>&, std::string const&, std::string const&);
extern template ZO_API void split<std::wstring>(std::vector<std::wstring>&, std::wstring const&, std::wstring const&);

/// Replaces `out` by the pieces with `separator` between each two.
template <class S>
void join(S& out, std::vector<S> const& pieces, std::type_identity_t<S> const& separator);
extern template ZO_API void join<std::string>(std::string&, std::vector<std::string> const&, std::string const&);
extern template ZO_API void join<std::wstring>(std::wstring&, std::vector<std::wstring> const&, std::wstring const&);

/// Whether the character is one of the blanks that number texts may be surrounded by: 9 to 13 and 32.
constexpr bool IsBlank(wchar_t c) noexcept { return c == L' ' || (c >= 9 && c <= 13); }
/// Whether the character is an ASCII digit. No locale takes part.
constexpr bool IsDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
/// The lower case of an ASCII letter; any other character as it is.
constexpr wchar_t ToLowerAscii(wchar_t c) noexcept { return c >= L'A' && c <= L'Z' ? wchar_t(c - L'A' + L'a') : c; }
/// `text` without the blanks at both ends.
ZO_API std::wstring_view Trim(std::wstring_view text) noexcept;
ZO_API std::string_view Trim(std::string_view text) noexcept;

} // namespace str

/// A text unlike any of `taken`, case ignored: `name` itself if it is free, else "name (2)", "name (3)" and so on.
/// Case is that of Unicode letters, never that of the process's locale.
ZO_API std::wstring GenerateUniqueDesriptionIgnoreCase(std::vector<std::wstring> const& taken,
                                                       std::wstring const& name);
