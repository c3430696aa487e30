// The fast way from UTF-8 that is known to be well-formed into wide text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace sys::file {

/// Appends well-formed UTF-8, whole characters.
inline void AppendWide(std::wstring& out, std::string_view text) {
    std::size_t const before = out.size();
    out.resize(before + text.size()); // no character has fewer bytes than one
    wchar_t* to = out.data() + before;
    auto const* from = reinterpret_cast<unsigned char const*>(text.data());
    auto const* const end = from + text.size();
    while (from != end) {
        // Most text is ASCII: eight characters at a time as long as no byte has its top bit set.
        while (end - from >= 8) {
            std::uint64_t word;
            std::memcpy(&word, from, 8);
            if ((word & 0x8080808080808080u) != 0) break;
            for (int i = 0; i < 8; ++i) to[i] = from[i];
            to += 8;
            from += 8;
        }
        if (from == end) break;
        unsigned const lead = *from++;
        if (lead < 0x80) {
            *to++ = static_cast<wchar_t>(lead);
            continue;
        }
        int const more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        unsigned code = lead & (0x3Fu >> more);
        for (int i = 0; i < more && from != end; ++i) code = (code << 6) | (*from++ & 0x3Fu);
        *to++ = static_cast<wchar_t>(code);
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
}

} // namespace sys::file
