// Cutting text: into components at a set of separators, and into fields that may stand in quotes.
#pragma once

#include "support/export.h"

#include <string>
#include <string_view>
#include <vector>

namespace str {

/// Replaces `out` by the pieces of `text` between characters of the set `separators`. Runs of separators count as one,
/// and no piece is empty. An empty set: the whole text, if it is not empty. The pieces point into `text`.
ZO_API void SplitComponents(std::vector<std::string_view>& out, std::string_view text, std::string_view separators);
ZO_API void SplitComponents(std::vector<std::wstring_view>& out, std::wstring_view text, std::wstring_view separators);

/// The characters with a meaning in a text of fields. They differ from the backslash, which takes away the meaning of
/// the character behind it; `separator` differs from the quotes.
struct FieldSyntax {
    wchar_t separator = L','; ///< between fields
    wchar_t open = L'"';      ///< the quote that begins a field
    wchar_t close = L'"';     ///< the quote that ends it
};

/// Replaces `out` by the fields of `text`, with their quotes and backslashes; there is always one at least, which may
/// be empty. The fields point into `text`.
///
/// A separator counts neither behind a backslash nor in a quoted part; a quotation mark that is never closed is a
/// character as any other. A backslash with nothing but a line end behind it, or nothing at all, ends the field, and
/// what stands between it and the next separator belongs to none.
/// Cost: linear.
ZO_API void SplitFields(std::vector<std::wstring_view>& out, std::wstring_view text, FieldSyntax const& syntax = {});

/// A field without its quotes, then without the backslashes that escape something. Cost: linear.
ZO_API std::wstring StripField(std::wstring_view field, FieldSyntax const& syntax = {});

} // namespace str
