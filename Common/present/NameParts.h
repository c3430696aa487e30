// A piece of a node's name in reports.
#pragma once

#include <string>
#include <utility>

namespace zo {

/// What stands before a text, and the text.
using NameParts = std::pair<std::wstring, std::wstring>;

} // namespace zo
