// The 64-bit integer of node values, a type of its own beside `long`.
//
// Where `std::int64_t` is `long` it would name a second row of the value types, so it is never used for node values.
// `__int64` has to be a macro: an alias could not be combined with `unsigned`.
#pragma once

#include <type_traits>

#if !defined(_MSC_VER) && !defined(__int64)
#define __int64 long long
#endif

namespace htl {

/// 64 bits, and a type of its own beside long.
using Int64 = __int64;
using UInt64 = unsigned __int64;

static_assert(sizeof(Int64) == 8);
static_assert(!std::is_same_v<Int64, long> && !std::is_same_v<UInt64, unsigned long>);

} // namespace htl
