// What labels, names in reports and printed values share.
#pragma once

#include "Common/model/IZO.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace zo::impl {

/// The node at a path of tags from `node`: from an alias's source, from the record that a link leads to. Empty where
/// the path leads nowhere and for an alias without a source.
H NodeAtPath(H const& node, std::wstring const& path);
/// The index of an element: the first run of digits in the last component of its name. False without digits, and for a
/// number out of range.
bool ElementIndex(H const& node, std::size_t& index);
/// The position of an element: its index plus 1. Empty without an index.
std::wstring PositionText(H const& node);
/// Whether a character is an ASCII letter or digit.
bool IsAlphanumeric(wchar_t c) noexcept;
/// Whether a text is one word of such characters.
bool IsAlphanumericToken(std::wstring_view text) noexcept;

/// Tags may lead to each other, so expansion of labels, names and values ends after 64 levels. True while there is one
/// left.
class NestingGuard {
public:
    NestingGuard() noexcept;
    ~NestingGuard();
    NestingGuard(NestingGuard const&) = delete;
    NestingGuard& operator=(NestingGuard const&) = delete;
    explicit operator bool() const noexcept { return inside; }

private:
    bool inside;
};

} // namespace zo::impl
