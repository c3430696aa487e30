#include "Common/extinfo/Cells.h"

#include "support/fmt.h"
#include "support/text.h"

#include <algorithm>

namespace zo::extinfo {
namespace {

std::wstring Joined(std::span<Word const> words) {
    std::wstring text;
    for (Word const& word : words) {
        if (!text.empty()) text += L',';
        text += word.text;
    }
    return text;
}

/// A group of the mask; no bits at all stand for all of the group.
htl::status ReadGroup(std::uint32_t& mask, std::wstring const& cell, std::span<Word const> words, std::uint32_t group) {
    std::uint32_t bits = 0;
    if (htl::status failure = ReadWords(bits, cell, words); failure.IsError()) return failure;
    mask = (mask & ~group) | (bits ? bits : group);
    return {};
}

} // namespace

bool ReadBool(std::wstring_view cell) noexcept {
    if (cell.empty() || cell == L"N" || cell == L"0" || std::ranges::all_of(cell, str::IsBlank)) return false;
    constexpr std::wstring_view word = L"false";
    return cell.size() > word.size() || !std::ranges::equal(cell, word.substr(0, cell.size()), {}, str::ToLowerAscii);
}

htl::status ReadWords(std::uint32_t& bits, std::wstring const& cell, std::span<Word const> words) {
    std::uint32_t sum = 0;
    std::wstring_view rest = cell;
    for (;;) {
        std::size_t const comma = rest.find(L',');
        auto const word = std::ranges::find(words, rest.substr(0, comma), &Word::text);
        if (word == words.end())
            return htl::status::FromText(
                str::fmt::format(L"Unable to parse \"%s\". Expected one of {%s}", cell, Joined(words)));
        sum |= word->bits;
        if (comma == std::wstring_view::npos) break;
        rest.remove_prefix(comma + 1);
    }
    bits = sum;
    return {};
}

htl::status ReadViewExcl(std::uint32_t& mask, std::wstring const& cell) {
    std::uint32_t bits = 0;
    if (htl::status failure = ReadWords(bits, cell, viewWords); failure.IsError()) return failure;
    mask &= ~bits;
    return {};
}

htl::status ReadPhysics(std::uint32_t& mask, std::wstring const& cell) {
    return ReadGroup(mask, cell, physicsWords, viewmask::physics);
}

htl::status ReadMode(std::uint32_t& mask, std::wstring const& cell) {
    return ReadGroup(mask, cell, modeWords, viewmask::modes);
}

htl::status ReadStyle(style::Type& style, std::wstring const& cell) {
    if (cell.empty()) {
        style = style::text;
        return {};
    }
    auto const word = std::ranges::find(styleWords, cell, &Word::text);
    if (word == styleWords.end())
        return htl::status::FromText(
            str::fmt::format(L"Unexpected style \"%s\", expected one of {%s}", cell, Joined(styleWords)));
    style = static_cast<style::Type>(word->bits);
    return {};
}

} // namespace zo::extinfo
