// Text rules of names and tags: cutting into parent and last component, joining, normalising, hashing. Knows no node.
#pragma once

#include "support/export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zo::path {

/// What stands before the last "." or "[", less a "." just before that; empty for a name of one component.
/// `a.b` and `a.[]` and `a[3]` give `a`, `a.[].b` gives `a.[]`.
std::string_view ParentPart(std::string_view name) noexcept;
std::wstring_view ParentPart(std::wstring_view tag) noexcept;

/// The last component. `a[3]` gives `3`, `a.[]` gives `[]`, `a.[3]` keeps its bracket and gives `[3`.
std::string_view LastPart(std::string_view name) noexcept;
std::wstring_view LastPart(std::wstring_view tag) noexcept;

/// Joins a path and a component: a component that begins with a digit goes in square brackets, one that begins with "["
/// or "." is appended as it stands, any other after a ".". An empty path gives the component.
std::string Join(std::string_view path, std::string_view component);
std::wstring Join(std::wstring_view path, std::wstring_view component);
/// The same at the end of `path`.
void Append(std::string& path, std::string_view component);
void Append(std::wstring& path, std::wstring_view component);

/// Whether the component behind the first ".", "[" or "]", or the whole text without one, begins with ":".
bool IsAttributeComponent(std::string_view name) noexcept;

/// Replaces every index by "[]" with exactly one "." before it, in place.
///
/// False for a "[" that is never closed and for an empty index that needs a "." the text has no room for (`a[]`): the
/// text is then cut where writing stopped.
bool Normalize(std::string& name);
bool Normalize(std::wstring& tag);

/// Number of "." plus 1; 0 for an empty text.
std::size_t Depth(std::wstring_view tag) noexcept;

/// The hash of the empty text.
inline constexpr std::uint64_t emptyHash = 0x811c9dc5u;
/// The hash of a text by that of the text before its last character.
constexpr std::uint64_t Hash(std::uint64_t hash, char c) noexcept {
    return (hash * 16777619u) ^ static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<signed char>(c)));
}
/// The hash of names and tags: from 0x811c9dc5, for each character multiply by 16777619, then exclusive-or, in 64 bits.
/// Narrow characters are sign-extended, wide ones zero-extended.
constexpr std::uint64_t Hash(std::string_view text) noexcept {
    std::uint64_t hash = emptyHash;
    for (char const c : text) hash = Hash(hash, c);
    return hash;
}
constexpr std::uint64_t Hash(std::wstring_view text) noexcept {
    std::uint64_t hash = emptyHash;
    for (wchar_t const c : text) hash = (hash * 16777619u) ^ static_cast<std::uint32_t>(c);
    return hash;
}

/// A number written in decimal, blanks around it allowed. False for anything else and for one out of range.
bool ParseIndex(std::string_view text, std::size_t& index) noexcept;
bool ParseIndex(std::wstring_view text, std::size_t& index) noexcept;

/// Extends the canonical name of a place by the component just taken: an index goes in brackets, `At(n)` becomes the
/// index n - 1, a component that begins with "[" is appended as it stands, any other after a ".".
void ExtendCanonical(std::string& name, std::string_view component);

} // namespace zo::path
