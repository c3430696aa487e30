// Containers whose elements also have keys: std::map, and sequences of records with a key among their members.
//
// The elements of a map are reached by position like those of any array, so a document holds them as one. A load sets
// the length first, which makes elements under keys that no one gave; then each element's own key is written to it.
#pragma once

#include "Common/model/ZOArray.h"
#include "Common/model/ZOAtomicAccess.h"
#include "Common/model/ZOWrapper.h"

#include "support/describe.h"
#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace zo::kit::impl {

/// The types of keys: whole numbers and text.
template <class K>
concept KeyType =
    meta::ValueType<K> && !std::floating_point<K> && !std::same_as<K, bool> && !std::same_as<K, DataParamType>;

inline constexpr std::uint32_t noIndex = 0xFFFFFFFFu;

template <class K>
inline constexpr bool isTextKey = std::same_as<K, std::string> || std::same_as<K, std::wstring>;

/// The key that a name gives as a number.
template <KeyType K>
std::optional<K> KeyOf(std::uint32_t number) {
    if constexpr (std::same_as<K, std::string>) {
        return std::to_string(number);
    } else if constexpr (std::same_as<K, std::wstring>) {
        return std::to_wstring(number);
    } else {
        if (!std::in_range<K>(number)) return std::nullopt;
        return static_cast<K>(number);
    }
}

/// The key that a name gives as text. A number that is negative or longer than 32 bits comes as text, too.
template <KeyType K>
std::optional<K> KeyOf(std::string const& text) {
    if constexpr (std::same_as<K, std::string>) {
        return text;
    } else if constexpr (std::same_as<K, std::wstring>) {
        return str::as_wstring(text);
    } else {
        htl::Int64 number = 0;
        if (math::ParseInteger(std::string_view(text), number) == math::ParseResult::Ok) {
            if (!std::in_range<K>(number)) return std::nullopt;
            return static_cast<K>(number);
        }
        htl::UInt64 large = 0; // the upper half of the types without sign
        if (math::ParseInteger(std::string_view(text), large) != math::ParseResult::Ok || !std::in_range<K>(large))
            return std::nullopt;
        return static_cast<K>(large);
    }
}

template <class C>
struct MapShape; // not a map

template <class K, class V, class Less, class A>
struct MapShape<std::map<K, V, Less, A>> {
    static_assert(KeyType<K>, "the keys of a map must be whole numbers or text");
    static_assert(std::same_as<Less, std::less<K>> || std::same_as<Less, std::less<>>,
                  "the keys of a map must ascend: new elements are put behind all others");
    using Key = K;
    using Mapped = V;
    using Element = std::pair<K const, V>;
};

template <class C>
inline constexpr bool isMap = requires {
    typename MapShape<C>::Key;
};

/// Adds elements to a map under keys that sort behind all that an application or a document uses.
template <class C>
class KeyMaker {
    using K = typename MapShape<C>::Key;
    using V = typename MapShape<C>::Mapped;

public:
    /// Adds `count` elements in ascending order, at the end unless the last keys of all are taken. Gives the first one;
    /// `map.end()` if there are not that many keys, and the map is then as it was. Throws for lack of memory.
    static typename C::iterator Append(C& map, std::size_t count) {
        if constexpr (isTextKey<K>)
            return AppendTexts_(map, count);
        else
            return AppendNumbers_(map, count);
    }

private:
    static typename C::iterator Insert_(C& map, std::vector<K>& keys) {
        auto first = map.end();
        std::size_t inserted = 0;
        try {
            for (K& key : keys) {
                auto const at = map.emplace_hint(map.end(), std::piecewise_construct, std::forward_as_tuple(key),
                                                 std::forward_as_tuple());
                if (inserted++ == 0) first = at;
            }
        } catch (...) {
            for (std::size_t i = 0; i < inserted; ++i) map.erase(keys[i]);
            throw;
        }
        return first;
    }

    // The last code point of all, in front of a number of fixed width: behind every text that people write.
    static typename C::iterator AppendTexts_(C& map, std::size_t count) {
        constexpr std::size_t digits = 12;
        K prefix;
        if constexpr (std::same_as<K, std::string>)
            prefix = "\xF4\x8F\xBF\xBF";
        else
            prefix = K(1, static_cast<wchar_t>(0x10FFFF));

        htl::UInt64 number = 0;
        if (!map.empty()) {
            std::basic_string_view<typename K::value_type> last = map.rbegin()->first;
            if (last.size() == prefix.size() + digits && last.starts_with(prefix)) {
                last.remove_prefix(prefix.size());
                if (math::ParseInteger(last, number) == math::ParseResult::Ok) ++number;
            }
        }
        std::vector<K> keys;
        keys.reserve(count);
        for (; keys.size() < count; ++number) {
            std::string const text = std::to_string(number);
            K key = prefix;
            if (text.size() < digits) key.append(digits - text.size(), '0');
            key.append(text.begin(), text.end());
            if (!map.contains(key)) keys.push_back(std::move(key));
        }
        return Insert_(map, keys);
    }

    // From the largest number downward, over those that are taken.
    static typename C::iterator AppendNumbers_(C& map, std::size_t count) {
        std::vector<K> keys;
        keys.reserve(count);
        K key = std::numeric_limits<K>::max();
        for (auto taken = map.rbegin(); keys.size() < count; --key) {
            if (taken != map.rend() && taken->first == key)
                ++taken;
            else
                keys.push_back(key);
            if (key == std::numeric_limits<K>::lowest()) break;
        }
        if (keys.size() < count) return map.end();
        std::reverse(keys.begin(), keys.end());
        return Insert_(map, keys);
    }
};

/// The element at a position, from the nearer end. Cost: linear in that distance.
template <class C>
auto ElementAt(C& map, std::size_t index) {
    std::size_t const behind = map.size() - index;
    return index <= behind ? std::next(map.begin(), static_cast<std::ptrdiff_t>(index))
                           : std::prev(map.end(), static_cast<std::ptrdiff_t>(behind));
}

template <class C>
std::uint32_t IndexOf(C const& map, typename C::const_iterator at) {
    return static_cast<std::uint32_t>(std::distance(map.begin(), at));
}

template <class C>
bool ResizeMap(C& map, std::size_t length) {
    if (length <= map.size()) {
        map.erase(ElementAt(map, length), map.end());
        return true;
    }
    try {
        return KeyMaker<C>::Append(map, length - map.size()) != map.end();
    } catch (std::length_error const&) {
    } catch (std::bad_alloc const&) {
    }
    return false;
}

/// The description of a map. Its elements are the pairs, which stay where they are in memory.
template <class C>
meta::MetaDataTraits MapTraits(meta::MetaDataTraits (*element)()) {
    auto record = std::make_shared<meta::MetaTraitsArray>();
    record->kind = meta::Kind::Array;
    record->byteSize = sizeof(C);
    record->type = &typeid(C);
    record->length = [](void const* memory) -> std::size_t {
        return memory ? static_cast<C const*>(memory)->size() : 0;
    };
    record->resize = [](void* memory, std::size_t length) { return ResizeMap(*static_cast<C*>(memory), length); };
    record->elementAt = [](void* memory, std::size_t index) -> void* {
        return std::addressof(*ElementAt(*static_cast<C*>(memory), index));
    };
    record->addNew = [](void* memory) -> std::uint32_t {
        auto& map = *static_cast<C*>(memory);
        if (map.size() >= noIndex) return noIndex;
        try {
            auto const added = KeyMaker<C>::Append(map, 1);
            return added == map.end() ? noIndex : IndexOf(map, added);
        } catch (std::length_error const&) {
        } catch (std::bad_alloc const&) {
        }
        return noIndex;
    };
    record->removeAt = [](void* memory, std::size_t index) {
        auto& map = *static_cast<C*>(memory);
        if (index < map.size()) map.erase(ElementAt(map, index));
    };
    record->elementTraits = element;
    return meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(record)));
}

/// The key of a map's element, as a node.
///
/// Writing it moves the element to the place of the new key; the element's address stays. A key that another element
/// has is refused, and the element stays under its own.
template <class C>
class MapKeyNode final
    : public ZOAtomicAccess<ZOAccessDataVMT<typename MapShape<C>::Key>, ZOAtomicData<typename MapShape<C>::Key>>,
      public IZOWrapper {
    using K = typename MapShape<C>::Key;
    using Base = ZOAtomicAccess<ZOAccessDataVMT<K>, ZOAtomicData<K>>;

public:
    MapKeyNode(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
               htl::handle<ZOMemMgr> const& manager)
        : Base(regID, owner, traits), IZOWrapper(memory, manager) {}

    K GetData() const override { return prototype ? K() : *static_cast<K const*>(this->Memory()); }

    htl::status SetData(K const& key) override {
        C* const map = Map_();
        if (!map) return ZOError::not_supported(this->SubName());
        auto const at = map->find(GetData());
        // The same key in another map would be another element.
        if (at == map->end() || std::addressof(at->first) != this->Memory())
            return ZOError::not_supported(this->SubName());
        if (map->contains(key)) return Taken(this->AccessTraits(), key);
        K copy = key; // before the element is taken out: it must not be lost for lack of memory
        auto node = map->extract(at);
        node.key() = std::move(copy);
        map->insert(std::move(node));
        return {};
    }

    /// The failure of a key that is taken.
    static htl::status Taken(meta::MetaDataTraits const& traits, K const& key) {
        std::wstring text;
        (void)traits.AsAtomic()->toWide(&key, text, 0, nullptr); // whole numbers and text always have one
        return htl::status::FromText(L"The key {" + text + L"} is taken.");
    }

    /// A registered prototype is undefined.
    bool IsUndefined() const override { return prototype || Base::IsUndefined(); }
    /// An element keeps its key.
    void Clear() override {}
    IZO* Clone() override { return prototype ? this->EmptyClone() : Base::Clone(); }
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override {
        return new MapKeyNode(this->RegID(), this->Owner(), this->AccessTraits(), memory, manager);
    }

protected:
    void OnRegistration(std::size_t regID) override {
        Base::OnRegistration(regID);
        prototype = true;
    }

private:
    // The manager of the elements stands for the container.
    C* Map_() const {
        if (prototype || !this->Manager()) return nullptr;
        auto const* const record = this->Manager()->Traits().AsArray();
        return record && *record->type == typeid(C) ? static_cast<C*>(this->Manager()->Memory()) : nullptr;
    }

    bool prototype = false;
};

/// What the views of containers with keys of type K share. Node is the view itself and says which index a key has.
template <class Node, class K>
class AssocNode : public ZOAssocArrayWrapperBase {
public:
    using ZOAssocArrayWrapperBase::ZOAssocArrayWrapperBase;

    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override {
        htl::handle<ZOMemMgr> const child(ChildMemMgr()->RemapClone(memory));
        child->SetOuter(manager);
        return new Node(RegID(), Owner(), manager, child);
    }
    /// `array_memory_conflict` while views of elements live.
    htl::status RemoveAt(std::size_t const& index) override {
        if (ChildMemMgr()->WrapperCount() > 0) return ZOError::array_memory_conflict();
        return ZOAssocArrayWrapperBase::RemoveAt(index);
    }
    std::uint32_t IndexFromKey(std::uint32_t key) const override {
        return static_cast<Node const*>(this)->Index(KeyOf<K>(key));
    }
    std::uint32_t IndexFromKey(std::string const& key) const override {
        return static_cast<Node const*>(this)->Index(KeyOf<K>(key));
    }
};

/// The view of a map.
template <class C>
class MapNode final : public AssocNode<MapNode<C>, typename MapShape<C>::Key> {
    using K = typename MapShape<C>::Key;
    using Base = AssocNode<MapNode<C>, K>;

public:
    using Base::Base;

    /// New elements need not be the last ones: keys that were made before may be behind them. Only new ones are put to
    /// their defaults.
    htl::status Resize(std::size_t const& wanted) override {
        std::size_t const length = this->Length(); // 0 of a prototype
        if (length == 0 || wanted <= length || this->ChildMemMgr()->WrapperCount() > 0) return Base::Resize(wanted);
        auto& map = *static_cast<C*>(this->Memory());
        std::set<void const*> old;
        for (auto const& element : map) old.insert(std::addressof(element));
        if (!ResizeMap(map, wanted)) return ZOError::not_supported("");
        meta::MetaDataTraits const traits = this->ChildMemMgr()->Traits().AsArray()->elementTraits();
        for (auto& element : map)
            if (!old.contains(std::addressof(element)))
                traits.DepthFirstTraversal_(meta::resetToDefault, std::addressof(element), nullptr);
        return {};
    }
    /// The index of a key, 0xFFFFFFFF for none.
    std::uint32_t Index(std::optional<K> const& key) const {
        if (!key) return noIndex;
        auto const& map = *static_cast<C const*>(this->Memory());
        auto const at = map.find(*key);
        return at == map.end() ? noIndex : IndexOf(map, at);
    }
};

/// The type of a member of a sequence's records.
template <class C, auto KeyMember>
using KeyMemberOf =
    std::remove_cvref_t<decltype(std::declval<std::remove_cvref_t<decltype(std::declval<C&>()[0])>&>().*KeyMember)>;

/// The view of a sequence of records, with a member as key. The first record of a key is the one that is found.
template <class C, auto KeyMember>
class KeyedNode final : public AssocNode<KeyedNode<C, KeyMember>, KeyMemberOf<C, KeyMember>> {
    using E = std::remove_cvref_t<decltype(std::declval<C&>()[0])>;
    using K = KeyMemberOf<C, KeyMember>;
    using Base = AssocNode<KeyedNode<C, KeyMember>, K>;

public:
    using Base::Base;

    /// The index of a key, 0xFFFFFFFF for none.
    std::uint32_t Index(std::optional<K> const& key) const {
        if (!key) return noIndex;
        std::uint32_t index = 0;
        for (E const& record : *static_cast<C const*>(this->Memory())) {
            if (record.*KeyMember == *key) return index;
            ++index;
        }
        return noIndex;
    }
};

} // namespace zo::kit::impl
