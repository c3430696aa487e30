// The declaration of a structure: one line for each of its parts.
#pragma once

#include "Common/kit/Plan.h"

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zo::kit {

namespace impl {

/// The type of a member of S, as it is declared.
template <class S, auto Member>
using MemberOf = std::remove_reference_t<decltype(std::declval<S&>().*Member)>;

/// The options of an array by what is at the bottom of it.
template <class E>
struct ArrayOptionsOf {
    using type = RecordArrayOptions;
};
template <Value E>
struct ArrayOptionsOf<E> {
    using type = ValueArrayOptions<E>;
};
template <class E>
struct MapOptionsOf {
    using type = RecordMapOptions;
};
template <Value E>
struct MapOptionsOf<E> {
    using type = ValueMapOptions<E>;
};

template <class M>
using ArrayOptions = typename ArrayOptionsOf<Innermost<M>>::type;
template <class M>
using MapOptions = typename MapOptionsOf<Innermost<M>>::type;

/// What the elements of an array are checked by and described with; null for records.
template <class E>
RulesPointer ElementRules(ArrayOptions<E> const& options) {
    if constexpr (Value<E>) {
        Options<E> each{.dflt = options.dflt,
                        .missing = options.missing,
                        .unit = options.unit,
                        .min = options.min,
                        .max = options.max,
                        .valid = options.valid,
                        .param = options.param,
                        .linkGroup = options.linkGroup,
                        .visible = options.visible,
                        .editable = options.editable};
        return std::make_shared<ValueRulesOf<E>>(std::move(each), E());
    } else {
        return nullptr;
    }
}

template <class O>
bool AsElements(O const& options) {
    if constexpr (requires { options.elements; })
        return options.elements;
    else
        return false;
}

/// Every array down to the values, so that none of them becomes one text.
inline void MarkAsElements(Shape& shape) {
    shape.asElements = true;
    if (shape.element) MarkAsElements(*shape.element);
}

// What a line costs to compile is spent once for each type of member, not for each member.

inline Line MakeLine(std::string_view name, std::wstring_view tag, Place place, std::size_t offset, Shape shape,
                     Persist persist) {
    Line line;
    line.name = name;
    line.tag = tag;
    line.place = place;
    line.offset = offset;
    line.shape = std::move(shape);
    line.persist = persist;
    return line;
}

/// `fresh` is the value in a new object, null where that is not known.
template <class M>
Line FieldLine(std::string_view name, std::wstring_view tag, Options<M> const& options, Place place, std::size_t offset,
               SlotRef slot, M const* fresh) {
    auto rules = std::make_shared<ValueRulesOf<M>>(options, fresh ? *fresh : M{});
    return MakeLine(name, tag, place, offset, ValueShape<M>(slot, std::move(rules)), options.persist);
}

/// The types of members that can hold a record's number.
template <class M>
concept LinkValue = std::same_as<M, int> || std::same_as<M, unsigned> || std::same_as<M, long> ||
    std::same_as<M, unsigned long> || std::same_as<M, htl::Int64> || std::same_as<M, htl::UInt64>;

/// Numbers that no record can have are refused.
template <LinkValue M>
Line LinkLine(std::string_view name, std::wstring_view tag, std::uint32_t group, LinkOptions const& options,
              Place place, std::size_t offset, SlotRef slot) {
    Options<M> rules{.missing = M{0}, .linkGroup = group, .visible = options.visible, .editable = options.editable};
    if constexpr (std::signed_integral<M>) rules.min = M{0};
    if constexpr (sizeof(M) > sizeof(GID)) rules.max = M{std::numeric_limits<GID>::max()};
    return MakeLine(name, tag, place, offset, LinkShape<M>(slot, group, std::make_shared<ValueRulesOf<M>>(rules, M{0})),
                    options.persist);
}

inline Line AliasLine(std::string_view name, std::wstring_view tag, Place place, AliasRules rules) {
    Line line = MakeLine(name, tag, place, 0, AliasShape(std::move(rules)), Persist::Never);
    line.computed = true;
    return line;
}

template <class M>
Line ArrayLine(std::string_view name, std::wstring_view tag, ArrayOptions<M> const& options, Place place,
               std::size_t offset, SlotRef const* slots) {
    Shape shape = ArrayShape<M>(slots, ElementRules<Innermost<M>>(options));
    if (AsElements(options)) MarkAsElements(shape);
    shape.recordGroup = options.recordGroup;
    Line line = MakeLine(name, tag, place, offset, std::move(shape), options.persist);
    line.visible = options.visible;
    line.editable = options.editable;
    return line;
}

template <class M>
Line MapLine(std::string_view name, std::wstring_view tag, MapOptions<M> const& options, Place place,
             std::size_t offset, SlotRef const* slots) {
    using V = Innermost<M>;
    RulesPointer rules;
    if constexpr (Value<V>) rules = std::make_shared<ValueRulesOf<V>>(options.value, V());
    Shape shape = MapShapeOf<M>(slots, rules);
    shape.element->keyTag = options.keyTag;
    shape.element->valueTag = options.valueTag;
    shape.recordGroup = options.recordGroup;
    Line line = MakeLine(name, tag, place, offset, std::move(shape), options.persist);
    line.visible = options.visible;
    line.editable = options.editable;
    return line;
}

/// `write` empty: the value is computed.
template <class T>
Line FunctionLine(std::string_view name, std::wstring_view tag, Options<T> const& options, Place place, SlotRef slot,
                  typename ValueRulesOf<T>::Read read, typename ValueRulesOf<T>::Write write) {
    bool const computed = !write;
    auto rules = std::make_shared<ValueRulesOf<T>>(options, T(), std::move(read), std::move(write));
    Line line = MakeLine(name, tag, place, 0, ValueShape<T>(slot, std::move(rules)),
                         computed ? Persist::Never : options.persist);
    line.computed = computed;
    return line;
}

/// The value that a function of the object gives.
template <auto Get, class S>
using ResultOf = std::remove_cvref_t<std::invoke_result_t<decltype(Get), S const&>>;

} // namespace impl

/// Declares the parts of the structure S, one call for each.
///
/// Every call takes a name, by which modules find the part, a tag, by which documents and people know it, and options.
/// In documents the parts stand in the order of the calls. A call returns the object it was made on. Nothing is
/// registered here; mistakes are kept for the report.
///
/// Lifetime: refers to its kit, and is used while the module's function runs.
template <class S>
class Record {
public:
    /// Made by `Kit::Record`.
    Record(impl::RecordPlan& plan, std::shared_ptr<S const> fresh) : plan(&plan), fresh(std::move(fresh)) {}

    /// A single value or an enumeration: `.Field<&Soil::friction>("Friction", L"Phi", {.dflt = 30.0})`.
    template <auto Member>
    Record& Field(std::string_view name, std::wstring_view tag, Options<impl::MemberOf<S, Member>> const& options = {},
                  Place place = Place::Here()) {
        using M = impl::MemberOf<S, Member>;
        constexpr M S::*member = Member;
        plan->lines.push_back(impl::FieldLine<M>(name, tag, options, place, meta::OffsetOf(member),
                                                 impl::SlotOf<impl::MemberKey<S, Member>>::Ref(),
                                                 fresh ? std::addressof((*fresh).*member) : nullptr));
        return *this;
    }

    /// A structure, whose type is declared by itself.
    template <auto Member>
    Record& Struct(std::string_view name, std::wstring_view tag, StructOptions const& options = {},
                   Place place = Place::Here()) {
        using M = impl::MemberOf<S, Member>;
        static_assert(!impl::isContainer<M> && !impl::isMap<M>, "a container is declared with Array, Map or Keyed");
        constexpr M S::*member = Member;
        Persist const persist = options.persist == Persist::Never ? Persist::Never : Persist::Always;
        plan->lines.push_back(
            impl::MakeLine(name, tag, place, meta::OffsetOf(member), impl::RecordShape<M>(), persist));
        return *this;
    }

    /// A std::vector, std::deque, std::array or C array of values, enumerations, structures or containers. The tag can
    /// name the elements in brackets: `L"Soils[Soil]"`.
    template <auto Member>
    Record& Array(std::string_view name, std::wstring_view tag,
                  impl::ArrayOptions<impl::MemberOf<S, Member>> const& options = {}, Place place = Place::Here()) {
        using M = impl::MemberOf<S, Member>;
        static_assert(impl::isContainer<M>, "a std::vector, std::deque, std::array or C array is needed");
        constexpr M S::*member = Member;
        plan->lines.push_back(impl::ArrayLine<M>(name, tag, options, place, meta::OffsetOf(member),
                                                 impl::SlotsOf<M, impl::MemberKey<S, Member>>()));
        if constexpr (impl::isResizable<M>) plan->lines.back().filled = fresh && !((*fresh).*member).empty();
        return *this;
    }

    /// A std::map. Its elements are found by position, or by key as `Loads.At(7)`.
    template <auto Member>
    Record& Map(std::string_view name, std::wstring_view tag,
                impl::MapOptions<impl::MemberOf<S, Member>> const& options = {}, Place place = Place::Here()) {
        using M = impl::MemberOf<S, Member>;
        static_assert(impl::isMap<M>, "a std::map is needed");
        constexpr M S::*member = Member;
        plan->lines.push_back(impl::MapLine<M>(name, tag, options, place, meta::OffsetOf(member),
                                               impl::SlotsOf<M, impl::MemberKey<S, Member>>()));
        if constexpr (impl::isResizable<M>) plan->lines.back().filled = fresh && !((*fresh).*member).empty();
        return *this;
    }

    /// A std::vector or std::deque of structures that are also found by a member: `Soils.At(Clay)`. Cost of that:
    /// linear.
    template <auto Member, auto KeyMember>
    Record& Keyed(std::string_view name, std::wstring_view tag, RecordArrayOptions const& options = {},
                  Place place = Place::Here()) {
        using M = impl::MemberOf<S, Member>;
        static_assert(impl::isContainer<M> && impl::isResizable<M>, "a std::vector or std::deque is needed");
        static_assert(impl::KeyType<impl::MemberOf<impl::ElementOf<M>, KeyMember>>,
                      "a key must be a whole number or text");
        Array<Member>(name, tag, options, place);
        plan->lines.back().shape.prototype = &prototype::Array<impl::KeyedNode<M, KeyMember>>;
        return *this;
    }

    /// A value that two functions of the object read and write, held in documents like a member:
    /// `.Property<&Project::HasWater, &Project::SetHasWater>("HasWater", L"HasWater")`. Without a named default it is
    /// T{}: a reset calls the writing function with it. What a document holds is not checked by the line's rule, so the
    /// writing function takes any value. Any function pointer or captureless lambda will do.
    template <auto Get, auto Set>
    Record& Property(std::string_view name, std::wstring_view tag, Options<impl::ResultOf<Get, S>> const& options = {},
                     Place place = Place::Here()) {
        using T = impl::ResultOf<Get, S>;
        plan->lines.push_back(impl::FunctionLine<T>(
            name, tag, options, place, impl::SlotOf<impl::PropertyKey<S, Get, Set>>::Ref(),
            [](void const* object) { return static_cast<T>(std::invoke(Get, *static_cast<S const*>(object))); },
            [](void* object, T const& value) { (void)std::invoke(Set, *static_cast<S*>(object), value); }));
        return *this;
    }

    /// A value that a function of the object works out. It is never in documents, and another value is refused with
    /// `not_supported` and its name.
    template <auto Get>
    Record& Computed(std::string_view name, std::wstring_view tag, Options<impl::ResultOf<Get, S>> const& options = {},
                     Place place = Place::Here()) {
        using T = impl::ResultOf<Get, S>;
        plan->lines.push_back(impl::FunctionLine<T>(
            name, tag, options, place, impl::SlotOf<impl::PropertyKey<S, Get, nullptr>>::Ref(),
            [](void const* object) { return static_cast<T>(std::invoke(Get, *static_cast<S const*>(object))); },
            nullptr));
        return *this;
    }

    /// A whole-number member that holds the number of a record of a group, 0 for none:
    /// `.Link<&Region::material>("Material", L"Material", materialGroup)`. It is a value like any other and the
    /// record's door: `Regions[2].Material.Cohesion`, and `Regions[2].Material.@` is the record itself.
    ///
    /// The group is declared with the array or structure that holds its records, by any module of this or an earlier
    /// registration, and stands by itself.
    template <auto Member>
    Record& Link(std::string_view name, std::wstring_view tag, std::uint32_t group, LinkOptions const& options = {},
                 Place place = Place::Here()) {
        using M = impl::MemberOf<S, Member>;
        static_assert(impl::LinkValue<M>, "a link is a whole number of at least 32 bits");
        constexpr M S::*member = Member;
        plan->lines.push_back(impl::LinkLine<M>(name, tag, group, options, place, meta::OffsetOf(member),
                                                impl::SlotOf<impl::MemberKey<S, Member>>::Ref()));
        return *this;
    }

    /// Another name for a node that is found from here by a path of tags: `.Alias("Owner", L"Owner", L"@Parent.Name")`.
    /// It stands under every object of the type and is never in documents. The source need not be there. It is looked
    /// up once for each alias that is handed out.
    Record& Alias(std::string_view name, std::wstring_view tag, std::wstring path, Place place = Place::Here()) {
        plan->lines.push_back(
            impl::AliasLine(name, tag, place, {.kind = impl::AliasRules::Relative, .tag = std::move(path)}));
        return *this;
    }

private:
    impl::RecordPlan* plan;
    std::shared_ptr<S const> fresh;
};

} // namespace zo::kit
