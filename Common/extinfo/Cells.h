// What the cells of a table mean: booleans, lists of words, the style.
#pragma once

#include "Common/extinfo/ExtendedInfoEntry.h"

#include "support/status.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zo::extinfo {

/// A word of a cell, and the bits that it stands for.
struct Word {
    std::wstring_view text;
    std::uint32_t bits;
};

// Messages list the words in this order.
inline constexpr std::array viewWords = {
    Word{L"data", 0x1}, Word{L"property", 0x2}, Word{L"report", 0x4}, Word{L"all", viewmask::views}, Word{L"none", 0},
};
inline constexpr std::array physicsWords = {
    Word{L"solute", 0x8000},   Word{L"gas", 0x100},    Word{L"dynamic", 0x200}, Word{L"water", 0x400},
    Word{L"heat", 0x2000},     Word{L"stress", 0x800}, Word{L"slope", 0x1000},  Word{L"air", 0x4000},
    Word{L"project", 0x10000}, Word{L"fe", 0xEF00},    Word{L"any", 0xFF00},    Word{L"all", viewmask::physics},
};
inline constexpr std::array modeWords = {
    Word{L"define", 0x20000},
    Word{L"contour", 0x40000},
    Word{L"all", viewmask::modes},
};
inline constexpr std::array styleWords = {
    Word{L"text", style::text},
    Word{L"header", style::header},
    Word{L"table", style::table},
};

/// False for an empty cell, blanks, "N", "0" and any beginning of "false" in either case ("f", "FA"); else true, also
/// for "n".
bool ReadBool(std::wstring_view cell) noexcept;

/// Replaces `bits` by those of all words of a list with commas. Blanks belong to the words, and case counts.
/// Failure: a piece, also an empty one, that is no word; `bits` is then as it was.
htl::status ReadWords(std::uint32_t& bits, std::wstring const& cell, std::span<Word const> words);

/// Takes the bits of the listed views off the mask.
htl::status ReadViewExcl(std::uint32_t& mask, std::wstring const& cell);
/// Replaces the mask's bits of analyses by those listed.
htl::status ReadPhysics(std::uint32_t& mask, std::wstring const& cell);
/// Replaces the mask's bits of modes by those listed.
htl::status ReadMode(std::uint32_t& mask, std::wstring const& cell);
/// One word; an empty cell is "text".
htl::status ReadStyle(style::Type& style, std::wstring const& cell);

} // namespace zo::extinfo
