// What an application's modules declared, before any of it is registered.
#pragma once

#include "Common/kit/Assoc.h"
#include "Common/kit/Options.h"
#include "Common/kit/Prototype.h"
#include "Common/kit/Slot.h"
#include "Common/kit/Values.h"
#include "Common/redirect/ZOAliasSet.h"
#include "Common/redirect/ZOLink.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <typeindex>
#include <typeinfo>
#include <utility>
#include <vector>

namespace zo::kit {

/// One mistake in a declaration.
struct Mistake {
    std::wstring text; ///< what is wrong, and with which name
    std::string file;  ///< of the line that declares it
    unsigned line = 0; ///< from 1, 0 for none
};

/// What came of a registration.
struct [[nodiscard]] Report {
    /// All mistakes, in the order in which they were found. Empty: everything is registered. Else nothing is.
    std::vector<Mistake> mistakes;

    /// Whether there are no mistakes.
    bool IsClean() const noexcept { return mistakes.empty(); }
    /// A line for each mistake: "file:line: text".
    std::wstring Text() const {
        std::wstring all;
        for (Mistake const& mistake : mistakes)
            all += str::as_wstring(mistake.file) + L":" + std::to_wstring(mistake.line) + L": " + mistake.text + L"\n";
        return all;
    }
};

namespace impl {

/// Where an alias leads.
struct AliasRules {
    enum Kind { ByName, Kept, ByTag, Relative, Set };
    Kind kind = ByName;
    std::string name = {};        // by name and kept
    std::wstring tag = {};        // by tag and relative
    ZOAliasSet::Pairs pairs = {}; // of a set
};

/// How a C++ type is laid out in nodes.
///
/// A tree: an array's element, a map's key and value, the array that a wrapping holds.
struct Shape {
    enum Kind {
        Value,
        Record,
        Array,
        Map,
        Pair, ///< an element of a map: "first" and "second"
        Wrap, ///< a structure that holds nothing but an array, so that an empty array has a place in a document
        Alias ///< no part of the object: it leads elsewhere
    };
    using Prototype = H (*)(meta::MetaDataTraits const& traits, std::size_t offset);
    using LinkPrototype = H (*)(meta::MetaDataTraits const& traits, std::size_t offset,
                                htl::handle<RecordNames const> const& names);
    using MakeArray = meta::MetaDataTraits (*)(TraitsFunction element);

    Kind kind = Value;
    std::type_info const* type = &typeid(void);
    std::size_t byteSize = 0;
    Slot* slot = nullptr; // where the description goes
    TraitsFunction traits = nullptr;
    Prototype prototype = nullptr;

    std::shared_ptr<ValueRules const> value; // of a value
    std::uint32_t linkGroup = 0;             // of a link: the value's prototype is made by `link`
    LinkPrototype link = nullptr;
    std::shared_ptr<AliasRules const> alias; // of an alias

    MakeArray makeArray = nullptr; // of arrays and maps
    bool fixedLength = false;
    bool asElements = false; // one text is not wanted
    std::uint32_t recordGroup = 0;

    std::shared_ptr<Shape> element; // of an array, a map and a wrapping
    std::shared_ptr<Shape> first, second;
    std::size_t firstOffset = 0, secondOffset = 0;
    std::wstring keyTag, valueTag; // of a pair
};

/// A declared line: one child of a record, or a top-level object.
struct Line {
    std::string name;
    std::wstring tag;
    Place place;
    std::size_t offset = 0;
    Shape shape;
    Persist persist = Persist::Always;
    bool computed = false;                             // no reset writes to it
    bool filled = false;                               // a container that isn't empty in a new object
    std::function<bool(IZO const&)> visible, editable; // of an array; values and records carry their own
};

struct RecordPlan {
    std::wstring name; // for people
    std::type_info const* type = nullptr;
    std::size_t byteSize = 0;
    Slot* slot = nullptr;
    Place place;
    RecordOptions options;
    std::vector<Line> lines;
};

struct EnumPlan {
    std::type_info const* type = nullptr;
    Words words;
    Place place;
};

struct BranchPlan {
    Line line;
    std::function<void*()> object; // empty for a group and an alias

    bool IsGroup() const noexcept { return !object && line.shape.kind != Shape::Alias; }
};

struct Plan {
    std::deque<RecordPlan> records; // stay where they are
    std::map<std::type_index, RecordPlan*> recordOf;
    std::deque<EnumPlan> enums;
    std::vector<BranchPlan> branches;
    std::vector<Mistake> mistakes; // found while declaring

    void Complain(Place const& place, std::wstring text) {
        mistakes.push_back({std::move(text), place.file, place.line});
    }
    RecordPlan const* Find(std::type_info const& type) const {
        auto const found = recordOf.find(type);
        return found == recordOf.end() ? nullptr : found->second;
    }
    Words WordsOf(ValueRules const& rules) const {
        if (!rules.EnumType()) return nullptr;
        for (EnumPlan const& declared : enums)
            if (*declared.type == *rules.EnumType()) return declared.words;
        return nullptr;
    }
};

/// Whether a document holds an array as one text.
inline bool IsOneText(Plan const& plan, Shape const& array) {
    return array.kind == Shape::Array && !array.asElements && array.element->kind == Shape::Value &&
           array.element->value->FitsOneText(plan.WordsOf(*array.element->value));
}

// Keys of slots.
template <class S>
struct RecordKey;
template <class S, auto Member>
struct MemberKey;
template <class S, auto Get, auto Set>
struct PropertyKey;
template <class T>
struct BranchKey;

template <class T>
inline constexpr bool isContainer = prototype::impl::isContainer<T>;

template <class C>
using ElementOf = std::remove_cvref_t<decltype(std::declval<C&>()[0])>;

/// The type at the bottom of nested containers.
template <class T>
struct InnermostOf {
    using type = T;
};
template <class T>
requires isContainer<T>
struct InnermostOf<T> : InnermostOf<ElementOf<T>> {
};
template <class T>
requires isMap<T>
struct InnermostOf<T> : InnermostOf<typename MapShape<T>::Mapped> {
};
template <class T>
using Innermost = typename InnermostOf<T>::type;

template <class T>
inline constexpr bool isResizable = [] {
    if constexpr (isMap<T>)
        return true;
    else if constexpr (isContainer<T>)
        return !meta::impl::ContainerShape<T>::fixed;
    else
        return false;
}();

/// What values are made with at the bottom of a shape, null where it has none.
using RulesPointer = std::shared_ptr<ValueRules const>;

/// How many slots the shape of a type takes.
template <class T>
constexpr std::size_t SlotCount() {
    if constexpr (isMap<T>)
        return 3 + SlotCount<typename MapShape<T>::Mapped>();
    else if constexpr (isContainer<T>)
        return 1 + (isResizable<ElementOf<T>> ? 1 : 0) + SlotCount<ElementOf<T>>();
    else
        return 1;
}

template <class Key, std::size_t... I>
inline constexpr SlotRef slotList[] = {SlotOf<Key, I>::Ref()...};

template <class Key, std::size_t... I>
SlotRef const* SlotsOf(std::index_sequence<I...>) {
    return slotList<Key, I...>;
}

/// The slots of a line whose type is T, in the order in which its shape takes them.
template <class T, class Key>
SlotRef const* SlotsOf() {
    return SlotsOf<Key>(std::make_index_sequence<SlotCount<T>()>());
}

template <class T>
Shape BareShape(Shape::Kind kind, SlotRef const& slot) {
    Shape shape;
    shape.kind = kind;
    shape.type = &typeid(T);
    shape.byteSize = sizeof(T);
    shape.slot = slot.slot;
    shape.traits = slot.traits;
    return shape;
}

template <Value T>
Shape ValueShape(SlotRef const& slot, RulesPointer rules) {
    Shape shape = BareShape<T>(Shape::Value, slot);
    shape.prototype = &prototype::Value<T>;
    shape.value = std::move(rules);
    return shape;
}

template <class T>
Shape LinkShape(SlotRef const& slot, std::uint32_t group, RulesPointer rules) {
    Shape shape = ValueShape<T>(slot, std::move(rules));
    shape.linkGroup = group;
    shape.link = [](meta::MetaDataTraits const& traits, std::size_t offset,
                    htl::handle<RecordNames const> const& names) {
        return H(new ZOWrapperLink<T>(IZO::npos, nullptr, traits, prototype::impl::AsMemory(offset), {}, names));
    };
    return shape;
}

inline Shape AliasShape(AliasRules rules) {
    Shape shape;
    shape.kind = Shape::Alias;
    shape.alias = std::make_shared<AliasRules const>(std::move(rules));
    return shape;
}

template <class T>
Shape RecordShape() {
    static_assert(std::is_class_v<T>, "not one of the types that a line can have");
    Shape shape = BareShape<T>(Shape::Record, SlotOf<RecordKey<T>>::Ref());
    shape.prototype = &prototype::Struct;
    return shape;
}

// Each function below takes slots from the front of `slots`.
template <class T>
Shape ShapeOf(SlotRef const*& slots, RulesPointer const& rules);

template <class C>
Shape ArrayShape(SlotRef const*& slots, RulesPointer const& rules) {
    using E = ElementOf<C>;
    Shape shape = BareShape<C>(Shape::Array, *slots++);
    shape.prototype = &prototype::Array<ZOArrayWrapper>;
    shape.makeArray = [](TraitsFunction element) { return meta::ArrayTraits<C>(element); };
    shape.fixedLength = !isResizable<C>;
    if constexpr (isResizable<E>) {
        auto wrap = std::make_shared<Shape>(BareShape<E>(Shape::Wrap, *slots++));
        wrap->prototype = &prototype::Struct;
        wrap->element = std::make_shared<Shape>(ShapeOf<E>(slots, rules));
        shape.element = std::move(wrap);
    } else {
        shape.element = std::make_shared<Shape>(ShapeOf<E>(slots, rules));
    }
    return shape;
}

template <class C>
Shape MapShapeOf(SlotRef const*& slots, RulesPointer const& rules) {
    using K = typename MapShape<C>::Key;
    using V = typename MapShape<C>::Mapped;
    using E = typename MapShape<C>::Element;
    Shape shape = BareShape<C>(Shape::Map, *slots++);
    shape.prototype = &prototype::Array<MapNode<C>>;
    shape.makeArray = &MapTraits<C>;

    auto pair = std::make_shared<Shape>(BareShape<E>(Shape::Pair, *slots++));
    pair->prototype = &prototype::Struct;
    pair->first = std::make_shared<Shape>(BareShape<K>(Shape::Value, *slots++));
    pair->first->prototype = [](meta::MetaDataTraits const& traits, std::size_t offset) {
        return H(new MapKeyNode<C>(IZO::npos, nullptr, traits, prototype::impl::AsMemory(offset), {}));
    };
    pair->first->value = std::make_shared<ValueRulesOf<K>>(Options<K>{.noMissing = true}, K());
    pair->second = std::make_shared<Shape>(ShapeOf<V>(slots, rules));
    pair->firstOffset = meta::OffsetOf(&E::first);
    pair->secondOffset = meta::OffsetOf(&E::second);
    pair->keyTag = L"Key";
    pair->valueTag = L"Value";
    shape.element = std::move(pair);
    return shape;
}

template <class T>
Shape ShapeOf(SlotRef const*& slots, RulesPointer const& rules) {
    if constexpr (kit::Value<T>)
        return ValueShape<T>(*slots++, rules);
    else if constexpr (isMap<T>)
        return MapShapeOf<T>(slots, rules);
    else if constexpr (isContainer<T>)
        return ArrayShape<T>(slots, rules);
    else
        return RecordShape<T>();
}

} // namespace impl
} // namespace zo::kit
