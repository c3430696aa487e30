#include "support/pool.h"

#include <array>
#include <new>
#include <utility>

namespace htl::pool {

#if defined(ZO_POOL_OFF)

void* Allocate(std::size_t size) { return ::operator new(size); }
void Free(void* block, std::size_t) noexcept { ::operator delete(block); }

#else

namespace {

constexpr std::size_t grain = 16;
constexpr std::size_t classes = 16; // blocks of up to 256 bytes
// Per class and thread, so that neither one large walk nor one large transaction holds memory for ever.
constexpr auto kept = [] {
    std::array<unsigned, classes> blocks{};
    for (unsigned i = 0; i < classes; ++i) blocks[i] = (1u << 20) / ((i + 1) * static_cast<unsigned>(grain));
    return blocks;
}();

struct Block {
    Block* next;
};

struct List {
    Block* first;
    unsigned count;
};

// Plain data, so that it may be read after the thread's other objects are gone.
// Without a call: initial-exec takes 264 bytes of the static block that the loader keeps for libraries.
__attribute__((tls_model("initial-exec"))) thread_local constinit std::array<List, classes> lists{};
__attribute__((tls_model("initial-exec"))) thread_local constinit bool ended = false;

// Gives the kept blocks back when the thread ends. Nodes may die later still: their blocks go to the system.
struct Ending {
    ~Ending() {
        ended = true;
        for (List& list : lists)
            while (list.first) ::operator delete(std::exchange(list.first, list.first->next));
    }
    void Arm() const noexcept {}
};
thread_local Ending const ending;

} // namespace

void* Allocate(std::size_t size) {
    std::size_t const index = (size - 1) / grain;
    if (index >= classes) return ::operator new(size);
    List& list = lists[index];
    if (Block* const block = list.first) {
        list.first = block->next;
        --list.count;
        return block;
    }
    return ::operator new((index + 1) * grain);
}

void Free(void* block, std::size_t size) noexcept {
    if (!block) return;
    std::size_t const index = (size - 1) / grain;
    if (index >= classes || ended || lists[index].count >= kept[index]) {
        ::operator delete(block);
        return;
    }
    List& list = lists[index];
    if (list.count == 0) ending.Arm();
    auto* const freed = static_cast<Block*>(block);
    freed->next = list.first;
    list.first = freed;
    ++list.count;
}

#endif

} // namespace htl::pool
