// Memory for the small objects that every lookup makes and drops.
//
// A find makes a node for each step, so allocation would be most of its cost. Freed blocks are kept per thread and size
// and handed out again. Under the address sanitizer every block goes to the system, so that misuse is seen.
#pragma once

#include "support/export.h"

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define ZO_POOL_OFF 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZO_POOL_OFF 1
#endif
#endif

namespace htl::pool {

/// A block of at least `size` bytes, aligned as `::operator new` aligns. Throws std::bad_alloc.
ZO_API void* Allocate(std::size_t size);
/// Gives back a block that `Allocate(size)` made, on any thread.
ZO_API void Free(void* block, std::size_t size) noexcept;

} // namespace htl::pool
