// Texts that differ in more than case.
#pragma once

#include "support/export.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace str {

/// The text with each letter in lower case: two texts are the same without regard to case if this is equal. Case is
/// that of Unicode letters, never that of the process's locale.
ZO_API std::wstring FoldCase(std::wstring text);

/// What `GenerateUniqueDesriptionIgnoreCase` does, for many names against one list that grows.
///
/// Cost: of `Make`, what it takes to fold the name, on average; many equal names share one search for a free number.
class ZO_API UniqueTexts {
public:
    /// Takes the text as one that is there.
    void Add(std::wstring const& text);
    /// `name` if no text that was added equals it, else "name (2)", "name (3)" and so on. The result is not added.
    std::wstring Make(std::wstring const& name);

private:
    std::unordered_set<std::wstring> taken;                // folded
    std::unordered_map<std::wstring, std::size_t> numbers; // by folded name: no lower one is free
};

} // namespace str
