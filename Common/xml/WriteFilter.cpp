#include "Common/xml/WriteFilter.h"

#include <algorithm>
#include <utility>

namespace zo::xml::impl {

WriteFilter::WriteFilter(std::vector<std::wstring> const& wanted) {
    std::vector<std::wstring> sorted = wanted;
    std::sort(sorted.begin(), sorted.end());
    for (std::wstring& text : sorted) {
        if (text.ends_with(L']'))
            if (std::size_t const bracket = text.rfind(L'['); bracket != text.npos) {
                std::wstring array = text.substr(0, bracket);
                if (arrays.empty() || arrays.back() != array) arrays.push_back(std::move(array));
            }
        // Behind a text stand those that begin with it, which select nothing that it doesn't.
        if (texts.empty() || !text.starts_with(texts.back())) texts.push_back(std::move(text));
    }
    std::sort(arrays.begin(), arrays.end());
}

WriteFilter::Selection WriteFilter::SelectionOf(std::wstring const& path) const {
    auto const above = std::upper_bound(texts.begin(), texts.end(), path);
    // No text stands between a path and the text that it begins with: such a one would begin with that text, too.
    if (above != texts.begin() && path.starts_with(*std::prev(above))) return Selection::All;
    if (above != texts.end() && above->starts_with(path)) return Selection::Path;
    if (path.ends_with(L']'))
        if (std::size_t const bracket = path.rfind(L'['); bracket != path.npos)
            if (std::binary_search(arrays.begin(), arrays.end(), path.substr(0, bracket))) return Selection::Place;
    return Selection::Nothing;
}

} // namespace zo::xml::impl
