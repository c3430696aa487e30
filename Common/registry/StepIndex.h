// One step of a name in one probe: from a row and a component to the child row.
//
// The lists of children answer the same question by bisection; a walk over a long name asks it for each component, so
// what a step reads is packed into one slot and one line of memory.
#pragma once

#include "Common/ZOUtil/NamePath.h"
#include "Common/model/IZO.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

class IODS;
class IZOWrapper;

/// What a step needs of a row. Derived from the columns when the row is added, and fixed from then on, save for the
/// element template, which comes with a row of its own.
struct alignas(64) StepRow {
    IZOWrapper* wrapper = nullptr;
    IODS* store = nullptr;
    IZO* node = nullptr;
    std::size_t parent = IZO::npos;
    std::size_t elementTemplate = IZO::npos;
    std::array<char, 23> start{}; // the beginning of the sub-name
    std::uint8_t length = 0;      // of the sub-name; `start.size() + 1` for one that is longer
};
static_assert(sizeof(StepRow) == 64);

/// Child rows by parent row and sub-name. The parent npos stands for whole names of one component. The first row of
/// equal sub-names is found.
class StepIndex {
public:
    void Add(std::size_t parent, std::string_view name, std::size_t row) {
        if ((count + 1) * 2 > slots.size()) Grow_();
        Put_({Key_(parent, name), row});
        ++count;
    }

    /// `is(row)` tells whether the row has the name: keys of different names may be equal.
    template <class Is>
    std::size_t Find(std::size_t parent, std::string_view name, Is const& is) const noexcept {
        if (slots.empty()) return IZO::npos;
        std::uint64_t const key = Key_(parent, name);
        for (std::size_t at = key & (slots.size() - 1);; at = (at + 1) & (slots.size() - 1)) {
            Slot const& slot = slots[at];
            if (slot.row == IZO::npos) return IZO::npos;
            if (slot.key == key && is(slot.row)) return slot.row;
        }
    }

private:
    struct Slot {
        std::uint64_t key = 0;
        std::size_t row = IZO::npos;
    };

    static std::uint64_t Key_(std::size_t parent, std::string_view name) noexcept {
        std::uint64_t hash = path::Hash(name) ^ (static_cast<std::uint64_t>(parent) * 0x9E3779B97F4A7C15u);
        hash *= 0xFF51AFD7ED558CCDu;
        return hash ^ (hash >> 32);
    }

    // Behind those that are there, so that of equal names the first is found.
    void Put_(Slot const& slot) noexcept {
        std::size_t at = slot.key & (slots.size() - 1);
        while (slots[at].row != IZO::npos) at = (at + 1) & (slots.size() - 1);
        slots[at] = slot;
    }

    void Grow_() {
        std::vector<Slot> old(slots.empty() ? 16384 : slots.size() * 2);
        old.swap(slots);
        // From a free place on: a run that goes round the end keeps its order.
        std::size_t start = 0;
        while (start < old.size() && old[start].row != IZO::npos) ++start;
        for (std::size_t i = 0; i < old.size(); ++i)
            if (Slot const& slot = old[(start + i) % old.size()]; slot.row != IZO::npos) Put_(slot);
    }

    std::vector<Slot> slots; // a power of two, at most half full
    std::size_t count = 0;
};

} // namespace zo
