#include "support/xml/Utf16Check.h"

namespace sys::file {

std::optional<Utf16Check::Fault> Utf16Check::Check(std::span<char const> block, bool last) noexcept {
    if (width == Width::bytes) return {};
    highOffset = 0; // one that is pending stands in a block that was handed over already
    for (std::size_t at = 0; at < block.size(); ++at) {
        auto const byte = static_cast<unsigned char>(block[at]);
        if (!first) {
            first = byte;
            continue;
        }
        unsigned char const before = *first;
        first.reset();
        if (width == Width::unknown) {
            // The parser tells 16 bits from 8 in the same way: by a mark or by one zero byte among the first two.
            if ((before == 0xFE && byte == 0xFF) || before == 0)
                width = Width::bigEndian;
            else if ((before == 0xFF && byte == 0xFE) || byte == 0)
                width = Width::littleEndian;
            else {
                width = Width::bytes;
                return {};
            }
        }
        auto const unit = width == Width::bigEndian ? (before << 8) | byte : (byte << 8) | before;
        if (auto fault = Unit_(static_cast<std::uint16_t>(unit), at == 0 ? 0 : at - 1)) return fault;
    }
    if (last && high) return Fault{highOffset, line, column};
    return {};
}

std::optional<Utf16Check::Fault> Utf16Check::Unit_(std::uint16_t unit, std::size_t offset) noexcept {
    bool const isHigh = (unit & 0xFC00) == 0xD800;
    bool const isLow = (unit & 0xFC00) == 0xDC00;
    if (high && !isLow) return Fault{highOffset, line, column};
    if (!high && isLow) return Fault{offset, line, column};
    high = isHigh;
    highOffset = offset;
    if (isHigh) return {}; // counted as a column with its second half

    bool const mark = !started && unit == 0xFEFF;
    started = true;
    bool const afterReturn = carriageReturn;
    carriageReturn = unit == '\r';
    if (mark || (unit == '\n' && afterReturn)) return {};
    if (unit == '\n' || unit == '\r') {
        ++line;
        column = 1;
    } else {
        ++column;
    }
    return {};
}

} // namespace sys::file
