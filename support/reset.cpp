#include "support/reset.h"

#include <utility>

namespace meta {

RowValue::RowValue(MetaTraitsAtomic const& record) {
    // Every other row, enumerations included, is a number, which needs no construction.
    if (*record.type == typeid(std::string))
        value.emplace<std::string>();
    else if (*record.type == typeid(std::wstring))
        value.emplace<std::wstring>();
    if (record.setDefault) record.setDefault(Address());
}

void* RowValue::Address() noexcept {
    if (auto* const narrow = std::get_if<std::string>(&value)) return narrow;
    if (auto* const wide = std::get_if<std::wstring>(&value)) return wide;
    return std::get_if<Plain>(&value);
}

struct Resetter::Value {
    std::size_t offset;
    MetaDataTraits traits; // holds the record
    MetaTraitsAtomic const* record;
    RowValue initial;
};

struct Resetter::Container {
    std::size_t offset;
    MetaDataTraits traits;
    MetaTraitsArray const* record;
    // Made for the first element: a type may hold an array of itself.
    mutable std::unique_ptr<Resetter> element;
};

Resetter::Resetter(MetaDataTraits const& traits) { Collect_(traits, 0); }
Resetter::~Resetter() = default;

void Resetter::Collect_(MetaDataTraits const& traits, std::size_t offset) {
    if (auto const* const atomic = traits.AsAtomic()) {
        if (atomic->setDefault && atomic->write) values.push_back({offset, traits, atomic, RowValue(*atomic)});
    } else if (auto const* const array = traits.AsArray()) {
        if (array->length && array->elementAt && array->elementTraits)
            containers.push_back({offset, traits, array, nullptr});
    } else if (auto const* const structure = traits.AsStructure()) {
        for (MetaMember const& member : structure->members)
            if (member.traits) Collect_(member.traits(), offset + member.offset);
    }
}

void Resetter::Apply(void* memory) const {
    if (!memory) return;
    auto* const base = static_cast<std::byte*>(memory);
    for (Value const& value : values) value.record->write(base + value.offset, value.initial.Address());
    for (Container const& container : containers) {
        void* const array = base + container.offset;
        MetaTraitsArray const& record = *container.record;
        std::size_t const length = record.length(array);
        for (std::size_t i = 0; i < length; ++i) {
            if (record.isHole && record.isHole(array, i)) continue;
            void* const element = record.elementAt(array, i);
            if (!element) continue;
            if (!container.element) container.element = std::make_unique<Resetter>(record.elementTraits());
            container.element->Apply(element);
        }
    }
}

} // namespace meta
