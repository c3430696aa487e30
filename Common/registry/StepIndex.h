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
#include <tuple>
#include <vector>

namespace zo {

class IODS;
class IZOWrapper;

/// What a step needs of a row. Derived from the columns when the row is added, and fixed from then on, save for the
/// element template, which comes with a row of its own.
struct alignas(64) StepRow {
    /// A row's number where space counts; `none` for npos. Rows don't come near 2^32.
    using Row = std::uint32_t;
    static constexpr Row none = 0xFFFFFFFFu;
    static constexpr std::size_t Wide(Row row) noexcept { return row == none ? IZO::npos : row; }

    /// How a step from here goes on without a node: by the library's own views only, and not by what clients derive.
    enum Kind : std::uint8_t { AskNode, Structure, Array };

    IZOWrapper* wrapper = nullptr;
    IODS* store = nullptr;
    IZO* node = nullptr;
    std::uintptr_t offset = 0; // of a wrapper, in the memory that it is a part of
    Row parent = none;
    Row elementTemplate = none;
    std::array<char, 22> start{}; // the beginning of the sub-name
    std::uint8_t length = 0;      // of the sub-name; `start.size() + 1` for one that is longer
    Kind kind = AskNode;

    /// Whether the beginning is all of `name`, which isn't longer.
    bool Starts(std::string_view name) const noexcept {
        auto const word = [](char const* text, auto value) {
            std::memcpy(&value, text, sizeof value);
            return value;
        };
        char const* const own = start.data();
        char const* const other = name.data();
        std::size_t const size = name.size();
        auto const same = [&](std::size_t at, auto value) { return word(own + at, value) == word(other + at, value); };
        constexpr std::uint64_t eight = 0;
        constexpr std::uint32_t four = 0;
        // Words that overlap, instead of a call for a few characters.
        if (size >= 8) return same(0, eight) && same(size - 8, eight) && (size <= 16 || same(8, eight));
        if (size >= 4) return same(0, four) && same(size - 4, four);
        for (std::size_t i = 0; i < size; ++i)
            if (own[i] != other[i]) return false;
        return true;
    }
};
static_assert(sizeof(StepRow) == 64 && std::tuple_size_v<decltype(StepRow::start)> <= 24);

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
