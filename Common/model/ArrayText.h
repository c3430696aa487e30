// A whole array from and to one text.
#pragma once

#include "Common/model/ZOArray.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace zo::impl {

/// The places of an array text, one after the other: cut at commas, but not between "(" and the next ")".
///
/// Nothing is kept of the places, since a text may have millions. The text must outlive the cutter.
class ArrayCutter {
public:
    explicit ArrayCutter(std::wstring_view text) noexcept : text(text), isPlain(text.find(L'(') == text.npos) {}

    /// Counts the places that are left. False for a text that ends between parentheses. A comma at the very end begins
    /// no place.
    bool Count(std::size_t& count) const noexcept {
        count = 0;
        if (isPlain && start < text.size()) {
            std::wstring_view const rest = text.substr(start);
            count = static_cast<std::size_t>(std::ranges::count(rest, L',')) + (rest.back() != L',');
            return true;
        }
        ArrayCutter cutter = *this;
        for (std::wstring_view place; cutter.Next(place);) ++count;
        return !cutter.isOpen;
    }

    /// Gives the next place, false at the end.
    bool Next(std::wstring_view& place) noexcept {
        if (start >= text.size()) return false;
        std::size_t const end = std::min(isPlain ? text.find(L',', start) : EndOfPlace_(), text.size());
        place = text.substr(start, end - start);
        start = end + 1;
        return true;
    }

private:
    std::size_t EndOfPlace_() noexcept {
        for (std::size_t at = start; at < text.size(); ++at) {
            if (text[at] == L',') return at;
            if (text[at] != L'(') continue;
            at = text.find(L')', at);
            isOpen = at == text.npos;
            if (isOpen) break;
        }
        return text.npos;
    }

    std::wstring_view text;
    std::size_t start = 0;
    bool isPlain; // without parentheses, as lists of numbers are: the search for a comma is then one call
    bool isOpen = false;
};

inline htl::status MissingElement(ZOArray const& array, std::size_t index) {
    return ZOError::not_found(array.Name() + IZO::chArrayOpen + std::to_string(index) + IZO::chArrayClose);
}

/// `elementAt` gives a handle to the element of an index, empty if there is none.
template <class ElementAt>
htl::status SetArrayText(ZOArray& array, std::wstring const& text, ElementAt&& elementAt) {
    ArrayCutter cutter(text);
    // Counted before they are cut: a text that is no array's must leave the length alone.
    std::size_t count = 0;
    if (!cutter.Count(count)) return HznError::syntax(text);
    {
        meta::MetaDataTraits const traits = array.GetDataTraits();
        // If it can't be resized, the first element that is missing says so.
        if (auto const* const record = traits.AsArray(); record && !record->fixedLength) (void)array.SetLength(count);
    }
    std::wstring token;
    std::wstring_view place;
    for (std::size_t i = 0; cutter.Next(place); ++i) {
        if (place.empty()) continue;
        H const element = elementAt(i);
        if (!element) return MissingElement(array, i);
        token = place;
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
