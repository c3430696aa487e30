// Colours as values.
#pragma once

/// The colour value that means no colour. Colours are 0x00BBGGRR in 32 bits.
inline constexpr unsigned long MissingColor = 0xFFFFFFFFul;
