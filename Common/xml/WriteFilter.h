// Which elements a filter selects, asked once for each element of a document.
#pragma once

#include <string>
#include <vector>

namespace zo::xml::impl {

/// The texts of a filter, sorted, so that a document of as many elements as the filter has texts is written in
/// proportion to their number.
class WriteFilter {
public:
    /// How much of an element is written.
    enum class Selection {
        Nothing,
        Place, ///< an empty element, beside a selected entry of its array
        Path,  ///< the element, and below it what is selected there
        All    ///< the element and all below it
    };

    explicit WriteFilter(std::vector<std::wstring> const& texts);

    /// For a path such as "HZNData.Items[2].Title". Texts and paths are compared letter for letter, as prefixes of
    /// each other. Cost: logarithmic in the number of texts.
    Selection SelectionOf(std::wstring const& path) const;

private:
    std::vector<std::wstring> texts;  // ascending, none of them the beginning of another
    std::vector<std::wstring> arrays; // ascending: what stands before the last index of each text that ends in one
};

} // namespace zo::xml::impl
