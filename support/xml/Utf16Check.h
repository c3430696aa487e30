// Finds unpaired surrogates in the bytes of a 16-bit document.
//
// The parser takes whatever follows a high surrogate for the second half of a character and so would join two
// characters into one that stands nowhere in the document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace sys::file {

/// Looks at a document block by block. Documents of 8 bits pass unseen.
class Utf16Check {
public:
    struct Fault {
        std::size_t
            offset;       ///< first byte of the block that must not be parsed; 0 if the fault began in an earlier block
        std::size_t line; ///< from 1
        std::size_t column; ///< from 1, in characters
    };

    /// The first unpaired surrogate of the document so far; `last` says that the block ends the document.
    std::optional<Fault> Check(std::span<char const> block, bool last) noexcept;

private:
    enum class Width { unknown, bytes, littleEndian, bigEndian };

    std::optional<Fault> Unit_(std::uint16_t unit, std::size_t offset) noexcept;

    Width width = Width::unknown;
    std::optional<unsigned char> first; // the byte of a unit, or of the document, whose second byte is still to come
    bool started = false;               // behind a mark, which counts as no column
    bool high = false;                  // the last unit was a high surrogate
    std::size_t highOffset = 0;         // where it stands in the block
    bool carriageReturn = false;        // a line feed right after it is the same line end
    std::size_t line = 1;
    std::size_t column = 1;
};

} // namespace sys::file
