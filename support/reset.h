// Putting described memory back to defaults, many objects of one type in a row.
//
// A resize resets each new element, and a document may bring a million of them. The description is walked once, into a
// list of values and places, and the list is run for each object.
#pragma once

#include "support/meta.h"

#include <cstddef>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace meta {

/// An object of the type that a descriptor's `value` arguments point at, holding the type's default.
class RowValue {
public:
    explicit RowValue(MetaTraitsAtomic const& record);
    void* Address() noexcept;
    void const* Address() const noexcept { return const_cast<RowValue*>(this)->Address(); }

private:
    struct Plain {
        alignas(std::max_align_t) std::byte bytes[sizeof(std::max_align_t)];
    };
    std::variant<Plain, std::string, std::wstring> value;
};

/// Puts every atomic part of objects of one type to its default; containers keep their shape.
class Resetter {
public:
    explicit Resetter(MetaDataTraits const& traits);
    ~Resetter();

    /// `memory` is an object of the type; null does nothing.
    void Apply(void* memory) const;

private:
    struct Value;
    struct Container;
    void Collect_(MetaDataTraits const& traits, std::size_t offset);

    std::vector<Value> values;
    std::vector<Container> containers;
};

} // namespace meta
