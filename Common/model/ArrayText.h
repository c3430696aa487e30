// A whole array from and to one text.
#pragma once

#include "Common/model/ZOArray.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zo::impl {

/// The places of an array text: cut at commas, but not between "(" and the next ")".
class ArrayTokens {
public:
    /// False for a text that ends between parentheses. A comma at the very end begins no place.
    bool Cut(std::wstring_view text) {
        std::size_t start = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == L'(') {
                i = text.find(L')', i + 1);
                if (i == text.npos) return false;
            } else if (text[i] == L',') {
                Add_(text.substr(start, i - start));
                start = i + 1;
            }
        }
        if (start < text.size()) Add_(text.substr(start));
        return true;
    }
    std::size_t Count() const noexcept { return count; }
    std::wstring_view operator[](std::size_t i) const noexcept {
        return i < fixed.size() ? fixed[i] : more[i - fixed.size()];
    }

private:
    void Add_(std::wstring_view token) {
        if (count < fixed.size())
            fixed[count] = token;
        else
            more.push_back(token);
        ++count;
    }

    // Most arrays are short and are cut without an allocation.
    std::array<std::wstring_view, 64> fixed;
    std::vector<std::wstring_view> more;
    std::size_t count = 0;
};

inline htl::status MissingElement(ZOArray const& array, std::size_t index) {
    return ZOError::not_found(array.Name() + IZO::chArrayOpen + std::to_string(index) + IZO::chArrayClose);
}

/// `elementAt` gives a handle to the element of an index, empty if there is none.
template <class ElementAt>
htl::status SetArrayText(ZOArray& array, std::wstring const& text, ElementAt&& elementAt) {
    ArrayTokens tokens;
    if (!tokens.Cut(text)) return HznError::syntax(text);
    {
        meta::MetaDataTraits const traits = array.GetDataTraits();
        // If it can't be resized, the first element that is missing says so.
        if (auto const* const record = traits.AsArray(); record && !record->fixedLength)
            (void)array.SetLength(tokens.Count());
    }
    std::wstring token;
    for (std::size_t i = 0; i < tokens.Count(); ++i) {
        if (tokens[i].empty()) continue;
        H const element = elementAt(i);
        if (!element) return MissingElement(array, i);
        token = tokens[i];
        if (htl::status failure = element->Set(token); failure.IsError()) return failure;
    }
    return {};
}

template <class ElementAt>
htl::status GetArrayText(ZOArray& array, std::wstring& text, ElementAt&& elementAt) {
    std::size_t const length = array.Length();
    constexpr std::size_t mostReserved = std::size_t(1) << 20; // a staged array can claim any length
    text.clear();
    text.reserve(length < mostReserved / 5 ? 5 * length : mostReserved);
    std::wstring token;
    for (std::size_t i = 0; i < length; ++i) {
        H const element = elementAt(i);
        if (!element) return MissingElement(array, i);
        if (!element->IsDefault()) {
            if (htl::status failure = element->Get(token); failure.IsError()) return failure;
            text += token;
        }
        text += L',';
    }
    if (length > 0) text.pop_back();
    return {};
}

} // namespace zo::impl
