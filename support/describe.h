// How an application describes its types: descriptors of values, enumerations, structures and containers.
//
// Header-only over the records of `support/meta.h`; the conversions of the thirteen value types are compiled once, in
// the library.
#pragma once

#include "support/meta.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace meta {

/// The thirteen types that node values have.
template <class T>
concept ValueType = std::same_as<T, unsigned char> || std::same_as<T, int> || std::same_as<T, unsigned> ||
    std::same_as<T, long> || std::same_as<T, unsigned long> || std::same_as<T, float> || std::same_as<T, double> ||
    std::same_as<T, htl::Int64> || std::same_as<T, htl::UInt64> || std::same_as<T, bool> ||
    std::same_as<T, std::string> || std::same_as<T, std::wstring> || std::same_as<T, DataParamType>;

/// An enumeration of the client; it is read and written as an int whatever its width.
template <class E>
concept EnumType = std::is_enum_v<E> && !std::same_as<E, DataParamType>;

/// The value type that stands for a client type: the type itself, int for an enumeration.
template <class M>
requires ValueType<M> || EnumType<M>
using RowOf = std::conditional_t<EnumType<M>, int, M>;

/// The missing value that the rows have unless a builder names another: none for unsigned char, bool, text and
/// DataParamType.
template <ValueType T>
std::optional<T> StandardMissing() {
    if constexpr (std::same_as<T, unsigned char> || std::same_as<T, bool> || std::same_as<T, std::string> ||
                  std::same_as<T, std::wstring> || std::same_as<T, DataParamType>)
        return std::nullopt;
    else
        return std::numeric_limits<T>::max();
}

/// A fresh record of the row T with its conversions.
///
/// Whole numbers: "" is the missing value, other text must be a whole number in range (90006, 90007). Missing converts
/// to the greatest Int64 and the greatest double and back; a double is rounded half away from zero. Floating point: the
/// text is the shortest that reads back; missing and non-finite values give "". bool: "true" and "false". Narrow text
/// is UTF-8. `missing` empty: the type has no missing value.
template <ValueType T>
MetaTraitsAtomic MakeAtomic(T const& defaultValue, std::optional<T> const& missing);
extern template ZO_API MetaTraitsAtomic MakeAtomic(unsigned char const&, std::optional<unsigned char> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(int const&, std::optional<int> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(unsigned const&, std::optional<unsigned> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(long const&, std::optional<long> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(unsigned long const&, std::optional<unsigned long> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(float const&, std::optional<float> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(double const&, std::optional<double> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(htl::Int64 const&, std::optional<htl::Int64> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(htl::UInt64 const&, std::optional<htl::UInt64> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(bool const&, std::optional<bool> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(std::string const&, std::optional<std::string> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(std::wstring const&, std::optional<std::wstring> const&);
extern template ZO_API MetaTraitsAtomic MakeAtomic(DataParamType const&, std::optional<DataParamType> const&);

/// The standard traits of a value type: default T{}, the standard missing value, always valid. One static record each,
/// so copies touch no counter.
template <ValueType T>
MetaDataTraits const& AtomicTraits();
extern template ZO_API MetaDataTraits const& AtomicTraits<unsigned char>();
extern template ZO_API MetaDataTraits const& AtomicTraits<int>();
extern template ZO_API MetaDataTraits const& AtomicTraits<unsigned>();
extern template ZO_API MetaDataTraits const& AtomicTraits<long>();
extern template ZO_API MetaDataTraits const& AtomicTraits<unsigned long>();
extern template ZO_API MetaDataTraits const& AtomicTraits<float>();
extern template ZO_API MetaDataTraits const& AtomicTraits<double>();
extern template ZO_API MetaDataTraits const& AtomicTraits<htl::Int64>();
extern template ZO_API MetaDataTraits const& AtomicTraits<htl::UInt64>();
extern template ZO_API MetaDataTraits const& AtomicTraits<bool>();
extern template ZO_API MetaDataTraits const& AtomicTraits<std::string>();
extern template ZO_API MetaDataTraits const& AtomicTraits<std::wstring>();
extern template ZO_API MetaDataTraits const& AtomicTraits<DataParamType>();

/// One value of an enumeration, within the range of int, with its three texts: in documents and `Set`, abbreviated,
/// pretty.
struct EnumWord {
    htl::Int64 value; ///< of the enumerator
    /// In documents and `Set`; short; for people.
    std::wstring_view text, abbreviated, pretty;
};

/// A record of the row int whose texts are `words`. Text and numbers outside the words are refused with
/// `not_recognized` (21663); a stored value outside the words has its number as text, so that it is not lost, and that
/// text is accepted back. The caller sets byteSize, type, read and write. The words must outlive the record.
ZO_API MetaTraitsAtomic MakeEnum(std::span<EnumWord const> words, int defaultValue);

namespace impl {

/// The numbers that an enumeration's storage can hold, the ends included.
struct EnumRange {
    int lowest = std::numeric_limits<int>::min();
    int highest = std::numeric_limits<int>::max();

    bool Holds(int number) const noexcept { return number >= lowest && number <= highest; }
};
/// What the bits of the words and of the default can say. `record` is a fresh one of `MakeEnum`.
ZO_API EnumRange RangeOfWords(MetaTraitsAtomic const& record);

// A number initialises an enumeration only where the type behind it is fixed.
template <class E>
inline constexpr bool hasFixedType = requires {
    E{0};
};

template <EnumType E>
void StoreAsEnum(MetaTraitsAtomic& record) {
    static_assert(sizeof(E) <= sizeof(int), "an enumeration is read and written as an int");
    using Stored = std::underlying_type_t<E>;
    EnumRange range;
    // Without a fixed type only the enumerators' bits are values, and the words are what is known of the enumerators.
    if constexpr (!hasFixedType<E>)
        range = RangeOfWords(record);
    else if constexpr (sizeof(Stored) < sizeof(int))
        range = {std::numeric_limits<Stored>::min(), std::numeric_limits<Stored>::max()};

    record.byteSize = sizeof(E);
    record.type = &typeid(E);
    // As the stored type: a number that is no value of E must not pass as one.
    record.read = [](void const* memory, void* value) {
        Stored stored;
        std::memcpy(&stored, memory, sizeof stored);
        *static_cast<int*>(value) = static_cast<int>(stored);
    };
    record.write = [](void* memory, void const* value) {
        auto const stored = static_cast<Stored>(*static_cast<int const*>(value));
        std::memcpy(memory, &stored, sizeof stored);
    };
    // A number without a word is taken as text: what E can't hold would come back as another value. The conversion sees
    // to it, since documents are read while validation is off; the check is for values that come as they are.
    record.fromWide = [range, convert = std::move(record.fromWide)](std::wstring const& text, void* value, int format,
                                                                    zo::IZO const* node) {
        int number = 0;
        if (htl::status failure = convert(text, &number, format, node); failure.IsError()) return failure;
        if (!range.Holds(number)) return htl::status(21663, text);
        *static_cast<int*>(value) = number;
        return htl::status();
    };
    record.isValid = [range](void const* value, zo::IZO const*, MetaDataTraits const&) {
        int const number = *static_cast<int const*>(value);
        return range.Holds(number) ? htl::status() : htl::status(21663, number);
    };
}

/// The address of a member within its structure, also where `offsetof` is not allowed.
template <class S, class M>
std::size_t OffsetOf(M S::*member) {
    // A buffer that is never an object: only addresses inside it are taken.
    alignas(S) static std::byte buffer[sizeof(S)];
    auto const* const object = reinterpret_cast<S const*>(buffer);
    return static_cast<std::size_t>(reinterpret_cast<std::byte const*>(std::addressof(object->*member)) - buffer);
}

} // namespace impl

using impl::OffsetOf;

/// The traits of an enumeration E. `words` must live as long as the process (a static table).
///
/// A number that E can't hold is refused as text and invalid as a value: `not_recognized` (21663). An enumeration
/// without a fixed underlying type holds what the bits of its words can say, as its enumerators define it.
template <EnumType E>
MetaDataTraits EnumTraits(std::span<EnumWord const> words, E defaultValue) {
    auto record = std::make_shared<MetaTraitsAtomic>(MakeEnum(words, static_cast<int>(defaultValue)));
    impl::StoreAsEnum<E>(*record);
    return MetaDataTraits(std::shared_ptr<MetaTraits const>(std::move(record)));
}

/// Makes traits of a value type with what differs from the standard. Each call is made at most once.
template <ValueType T>
class AtomicBuilder {
public:
    AtomicBuilder() : missing(StandardMissing<T>()) {}

    /// What a reset stores; T{} without it.
    AtomicBuilder& Default(T value) { return defaultValue = std::move(value), *this; }
    /// The value that stands for none and has an empty text, or that there is none.
    AtomicBuilder& Missing(std::optional<T> value) { return missing = std::move(value), *this; }
    /// The check of a candidate value: success or the failure that the writer of the value gets.
    AtomicBuilder& Valid(std::function<htl::status(T const& value, zo::IZO const* node)> check) {
        return valid = std::move(check), *this;
    }
    /// What is measured, as a constant or by value and node.
    AtomicBuilder& Units(hzn::units::Kind::Type kind) {
        unitKind = [kind](void const*, zo::IZO const*) { return kind; };
        return *this;
    }
    AtomicBuilder& Units(std::function<hzn::units::Kind::Type(void const* value, zo::IZO const* node)> kind) {
        return unitKind = std::move(kind), *this;
    }
    /// The data parameter, as a constant or by node.
    AtomicBuilder& Param(DataParamType parameter) {
        dataParamType = [parameter](zo::IZO const*) { return parameter; };
        return *this;
    }
    AtomicBuilder& Param(std::function<DataParamType(zo::IZO const*)> parameter) {
        return dataParamType = std::move(parameter), *this;
    }
    /// The group of the records that the value refers to.
    AtomicBuilder& LinkGroup(std::uint32_t group) { return linkGroup = group, *this; }
    /// Asked whether people see the node.
    AtomicBuilder& Visible(std::function<bool(zo::IZO const&)> rule) { return visible = Rule(std::move(rule)), *this; }
    /// Asked whether people may edit the node.
    AtomicBuilder& Editable(std::function<bool(zo::IZO const&)> rule) {
        return editable = Rule(std::move(rule)), *this;
    }

    /// The traits, which hold what they were made of.
    MetaDataTraits Build() const {
        auto record = std::make_shared<MetaTraitsAtomic>(MakeAtomic<T>(defaultValue, missing));
        Apply(*record);
        return MetaDataTraits(std::shared_ptr<MetaTraits const>(std::move(record)));
    }

    /// Puts everything but default and missing value into a record that was made elsewhere.
    void Apply(MetaTraitsAtomic& record) const {
        if (valid)
            record.isValid = [check = valid](void const* value, zo::IZO const* node, MetaDataTraits const&) {
                return check(*static_cast<T const*>(value), node);
            };
        if (unitKind) record.unitKind = unitKind;
        if (dataParamType) record.dataParamType = dataParamType;
        record.linkGroup = linkGroup;
        if (visible) record.visible = visible;
        if (editable) record.editable = editable;
    }

private:
    static std::function<bool(void const*)> Rule(std::function<bool(zo::IZO const&)> rule) {
        return [rule = std::move(rule)](void const* node) { return !node || rule(*static_cast<zo::IZO const*>(node)); };
    }

    T defaultValue{};
    std::optional<T> missing;
    std::function<htl::status(T const&, zo::IZO const*)> valid;
    std::function<hzn::units::Kind::Type(void const*, zo::IZO const*)> unitKind;
    std::function<DataParamType(zo::IZO const*)> dataParamType;
    std::uint32_t linkGroup = 0;
    std::function<bool(void const*)> visible, editable;
};

/// Makes the traits of a structure S, which name its members so that a reset reaches them.
template <class S>
class StructureBuilder {
public:
    /// Names a member: `Member(&Soil::cohesion, &CohesionTraits)`, where the function gives the traits of its type.
    template <class M>
    StructureBuilder& Member(M S::*member, MetaDataTraits (*traits)()) {
        members.push_back({OffsetOf(member), traits});
        return *this;
    }
    /// Asked for the group of the record that an object is.
    StructureBuilder& RecordGroup(std::function<std::uint32_t(S const&)> group) {
        recordGroup = [group = std::move(group)](void const* memory) { return group(*static_cast<S const*>(memory)); };
        return *this;
    }
    /// Asked whether people see the node.
    StructureBuilder& Visible(std::function<bool(zo::IZO const&)> rule) {
        return visible = Rule(std::move(rule)), *this;
    }
    /// Asked whether people may edit the node.
    StructureBuilder& Editable(std::function<bool(zo::IZO const&)> rule) {
        return editable = Rule(std::move(rule)), *this;
    }

    /// The traits, which hold what they were made of.
    MetaDataTraits Build() const {
        struct Owned : MetaTraitsStructure {
            std::vector<MetaMember> owned;
        };
        auto record = std::make_shared<Owned>();
        record->kind = Kind::Structure;
        record->byteSize = sizeof(S);
        record->type = &typeid(S);
        record->owned = members;
        record->members = record->owned;
        record->recordGroup = recordGroup;
        if (visible) record->visible = visible;
        if (editable) record->editable = editable;
        return MetaDataTraits(std::shared_ptr<MetaTraits const>(std::move(record)));
    }

private:
    static std::function<bool(void const*)> Rule(std::function<bool(zo::IZO const&)> rule) {
        return [rule = std::move(rule)](void const* node) { return !node || rule(*static_cast<zo::IZO const*>(node)); };
    }

    std::vector<MetaMember> members;
    std::function<std::uint32_t(void const*)> recordGroup;
    std::function<bool(void const*)> visible, editable;
};

namespace impl {

template <class C>
struct ContainerShape; // length, element access and change of one container type

template <class V, class A>
struct ContainerShape<std::vector<V, A>> {
    static_assert(!std::same_as<V, bool>, "std::vector<bool> has no addressable elements");
    static constexpr bool fixed = false, contiguous = true, moves = true;
};
template <class V, class A>
struct ContainerShape<std::deque<V, A>> {
    static constexpr bool fixed = false, contiguous = false, moves = false;
};
template <class V, std::size_t N>
struct ContainerShape<std::array<V, N>> {
    static constexpr bool fixed = true, contiguous = true, moves = false;
    static constexpr std::size_t length = N;
};
template <class V, std::size_t N>
struct ContainerShape<V[N]> {
    static constexpr bool fixed = true, contiguous = true, moves = false;
    static constexpr std::size_t length = N;
};

template <class C>
void FillArray(MetaTraitsArray& record) {
    using Shape = ContainerShape<C>;
    record.kind = Kind::Array;
    record.byteSize = sizeof(C);
    record.type = &typeid(C);
    record.fixedLength = Shape::fixed;
    record.elementAt = [](void* memory, std::size_t index) -> void* {
        return std::addressof((*static_cast<C*>(memory))[index]);
    };
    if constexpr (Shape::fixed) {
        record.length = [](void const*) -> std::size_t { return Shape::length; };
    } else {
        record.length = [](void const* memory) -> std::size_t {
            return memory ? static_cast<C const*>(memory)->size() : 0;
        };
        // A document can claim any length: what memory can't hold is refused, not thrown.
        record.resize = [](void* memory, std::size_t length) {
            try {
                static_cast<C*>(memory)->resize(length);
                return true;
            } catch (std::length_error const&) {
            } catch (std::bad_alloc const&) {
            }
            return false;
        };
        record.addNew = [](void* memory) -> std::uint32_t {
            auto& container = *static_cast<C*>(memory);
            if (container.size() >= 0xFFFFFFFFu) return 0xFFFFFFFFu;
            try {
                container.emplace_back();
                return static_cast<std::uint32_t>(container.size() - 1);
            } catch (std::length_error const&) {
            } catch (std::bad_alloc const&) {
            }
            return 0xFFFFFFFFu;
        };
        record.removeAt = [](void* memory, std::size_t index) {
            auto& container = *static_cast<C*>(memory);
            if (index < container.size()) container.erase(container.begin() + static_cast<std::ptrdiff_t>(index));
        };
        record.elementsMove = Shape::moves;
    }
}

} // namespace impl

/// The traits of a container: std::vector, std::deque, std::array or a C array. `element` gives the traits of its
/// elements; simple values in one block are read and written without a node each.
///
/// Adding to or removing from a std::vector moves elements, so it is refused while views of elements live.
template <class C>
MetaDataTraits ArrayTraits(MetaDataTraits (*element)(), std::uint32_t (*recordGroup)(void const*) = nullptr) {
    auto record = std::make_shared<MetaTraitsArray>();
    impl::FillArray<C>(*record);
    record->elementTraits = element;
    record->recordGroup = recordGroup;
    // Told from the type, not from `element()`: a structure that holds an array of itself would ask for ever.
    using Element = std::remove_cvref_t<decltype(std::declval<C&>()[0])>;
    record->contiguous = impl::ContainerShape<C>::contiguous && (ValueType<Element> || EnumType<Element>);
    return MetaDataTraits(std::shared_ptr<MetaTraits const>(std::move(record)));
}

} // namespace meta
