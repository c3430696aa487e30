// The few rules of HTML that a generated page has to keep.
#pragma once

#include <string>
#include <string_view>

namespace slope {

/// A text as HTML has it in elements and attributes. Control characters, which HTML refuses, become blanks.
std::string Escaped(std::string_view text);

} // namespace slope
