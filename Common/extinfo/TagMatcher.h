// Finds the pattern that speaks for a tag, among many with one "*" each.
#pragma once

#include "support/export.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zo::extinfo {

/// A set of patterns. The "*" of a pattern stands for at least one character; the rest of it has to be there as it is.
///
/// Patterns come in the order of the table. The longest that matches a tag wins. Those up to the last one with a
/// leading
/// "*", at least the first one, give way to later ones of equal length; otherwise the earlier of equal ones wins.
///
/// What stands before the "*" is kept in a tree, and for each such beginning what stands behind it, read backwards, in
/// one more. So a match costs no more for thousands of patterns that don't fit, and never more than in proportion to
/// the square of the tag's length.
class TagMatcher {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    /// Each pattern has one "*", and its text outlives the matcher.
    explicit TagMatcher(std::vector<std::wstring_view> const& patterns);

    /// The place of the pattern that wins, npos if none matches.
    std::size_t Match(std::wstring_view tag) const noexcept;
    /// Where the patterns begin that win over earlier ones of equal length; may lie beyond the last one.
    std::size_t Split() const noexcept { return split; }

private:
    static constexpr std::uint32_t none = 0xFFFFFFFFu;

    /// One step of a tree: what it takes to come here from the node above, and who ends here.
    struct Node {
        wchar_t const* label = nullptr; // its first character; the next one stands behind it, or before it in a suffix
        std::uint32_t length = 0;       // of the label
        std::uint32_t firstChild = none;
        std::uint32_t children = 0;
        std::uint32_t value = none; // after a prefix the root of its suffixes; after a suffix the pattern
    };
    /// The suffixes behind one prefix.
    struct Suffixes {
        std::uint32_t root;
        std::size_t longest;
    };
    struct Builder;

    std::uint32_t Child_(Node const& node, wchar_t first) const noexcept;
    /// Which of two patterns of equal length wins: the one with the smaller number.
    std::size_t Rank_(std::size_t pattern) const noexcept {
        return pattern >= split ? pattern - split : pattern + count;
    }

    std::size_t count;
    std::size_t split;
    std::vector<Node> nodes;     // the tree of prefixes starts at 0; children stand together, by their first characters
    std::vector<wchar_t> firsts; // the first character of each node's label
    std::vector<Suffixes> suffixes;
};

} // namespace zo::extinfo
