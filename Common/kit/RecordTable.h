// From the identifier of a record to its node: the table that links and identifiers go by.
#pragma once

#include "Common/kit/Groups.h"
#include "Common/model/ZOAtomicAccess.h"
#include "Common/redirect/Stores.h"
#include "Common/redirect/ZOLink.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZORegistry.h"

#include "support/describe.h"
#include "support/gid.h"

#include <cstdint>
#include <map>
#include <string>
#include <typeinfo>
#include <utility>

namespace zo::kit::impl {

/// The registered node of exactly this name, null without one.
inline IZO* RegisteredNode(std::string const& name) {
    IZO* const node = zo::GetTemplate(name);
    return node && RegNormalizedName(node->RegID()) == name ? node : nullptr;
}

/// Where the records of each group stand, of all that was registered in one registry.
///
/// Lifetime: held by the registry's row of identifiers and by each view of a link, so by the last of them.
class RecordTable final : public RecordNames {
public:
    void Add(GroupPlace const& place) {
        bool const byItself = hzn::gid::IsPlainGroup(place.group);
        places.insert({KeyOf_(place), {byItself ? place.name : place.Below(), place.elements}});
    }
    /// Where other records stand that can't be told from those of a place; "" if there are none.
    std::string Taken(GroupPlace const& place) const {
        auto const found = places.find(KeyOf_(place));
        return found == places.end() ? std::string() : found->second.name;
    }
    /// Whether records of the group stand by themselves, so that a number alone tells one of them.
    bool Has(GID group) const { return places.contains({0, group}); }

    std::string NameOf(GGID const& record, ZOSet&) const override { return NameOf(record); }
    /// The node need not be there.
    std::string NameOf(GGID const& record) const {
        if (!hzn::gid::IsContainerObjectId(record)) return Element_(Find_(0, record.group), record.id);
        GGID const around = hzn::gid::ContainerRef(GGID(), record.group).EnclosingRecordId();
        return Join_(NameOf(around), Element_(Find_(around.group, record.group & 0xFFFFu), record.id));
    }
    /// The name of what holds the records of a group inside the record `around`, or by themselves if that is empty.
    std::string NameOf(GGID const& around, GID group) const {
        Entry const* const entry = Find_(around.group, group);
        if (!entry) return {};
        return hzn::gid::IsValid(around) ? Join_(NameOf(around), entry->name) : entry->name;
    }

private:
    using Key = std::pair<GID, GID>; // the group of the record around an inner group, else 0; its own group
    struct Entry {
        std::string name; // of an inner group, below the record around it
        bool elements;
    };

    static Key KeyOf_(GroupPlace const& place) {
        return {hzn::gid::IsPlainGroup(place.group) ? 0 : place.around, place.group};
    }

    Entry const* Find_(GID around, GID group) const {
        auto const found = places.find({around, group});
        return found == places.end() ? nullptr : &found->second;
    }
    static std::string Element_(Entry const* entry, GID id) {
        if (!entry || id == 0) return {};
        if (entry->elements) return entry->name + '[' + std::to_string(id - 1) + ']';
        return id == 1 ? entry->name : std::string();
    }
    static std::string Join_(std::string const& above, std::string const& below) {
        return above.empty() || below.empty() ? std::string() : above + '.' + below;
    }

    std::map<Key, Entry> places;
};

/// The row of identifiers: a view of one leads to its record. It is never walked, found or saved.
class RecordView final : public ZOWrapperLinkBase, public IZOKind<GGID> {
public:
    // A name that no declared line can have, and that begins no tag.
    static constexpr char const* rowName = ":Record";

    explicit RecordView(htl::handle<RecordTable> table) : RecordView(npos, nullptr, Traits(), nullptr, {}, table) {}
    RecordView(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
               htl::handle<ZOMemMgr> const& manager, htl::handle<RecordTable> table)
        : ZOWrapperLinkBase(regID, owner, traits, memory, manager), table(std::move(table)) {}

    static meta::MetaDataTraits Traits() {
        static meta::MetaTraitsAtomic const record = [] {
            meta::MetaTraitsAtomic atomic;
            atomic.kind = meta::Kind::Atomic;
            atomic.byteSize = sizeof(GGID);
            atomic.type = &typeid(GGID);
            return atomic;
        }();
        return meta::MetaDataTraits(record);
    }

    htl::handle<RecordTable> const& Table() const noexcept { return table; }

    GGID GetData() const override { return HasMemory_() ? *static_cast<GGID const*>(Memory()) : GGID(); }
    std::string RedirectName() const override { return table->NameOf(GetData()); }
    IZO* Clone() override { return RemapClone(HasMemory_() ? Memory() : nullptr, Manager()); }
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override {
        return new RecordView(RegID(), Owner(), AccessTraits(), memory, manager, table);
    }

private:
    bool HasMemory_() const { return !IsPrototype() && Memory(); }

    htl::handle<RecordTable> table;
};

/// The same for references to what lies inside a record: a view leads to the container or the structure of the group,
/// which is the reference's object or the low 16 bits of a packed one. Without a record around it the group stands by
/// itself.
class ContainedView final : public ZOWrapperLinkBase {
public:
    static constexpr char const* rowName = ":Contained";

    explicit ContainedView(htl::handle<RecordTable> table)
        : ContainedView(npos, nullptr, Traits(), nullptr, {}, table) {}
    ContainedView(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                  htl::handle<ZOMemMgr> const& manager, htl::handle<RecordTable> table)
        : ZOWrapperLinkBase(regID, owner, traits, memory, manager), table(std::move(table)) {}

    static meta::MetaDataTraits Traits() {
        static meta::MetaTraitsStructure const record = [] {
            meta::MetaTraitsStructure structure;
            structure.kind = meta::Kind::Structure;
            structure.byteSize = sizeof(hzn::gid::ContainerRef);
            structure.type = &typeid(hzn::gid::ContainerRef);
            return structure;
        }();
        return meta::MetaDataTraits(record);
    }

    std::string RedirectName() const override {
        if (IsPrototype() || !Memory()) return {};
        auto const& reference = *static_cast<hzn::gid::ContainerRef const*>(Memory());
        GID const object = reference.Object();
        GID const group = hzn::gid::IsNestedContainerId(object) ? object & 0xFFFFu : object;
        return table->NameOf(reference.EnclosingRecordId(), group);
    }
    IZO* Clone() override { return RemapClone(IsPrototype() ? nullptr : Memory(), Manager()); }
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override {
        return new ContainedView(RegID(), Owner(), AccessTraits(), memory, manager, table);
    }

private:
    htl::handle<RecordTable> table;
};

/// The table of the current registry, empty before the first group is registered there.
inline htl::handle<RecordTable> TableOfRegistry() {
    auto const* const row = dynamic_cast<RecordView const*>(RegisteredNode(RecordView::rowName));
    return row ? row->Table() : htl::handle<RecordTable>();
}

/// The same, made together with the rows of identifiers if it isn't there. An application that has registered nodes of
/// its own for identifiers keeps them.
inline htl::handle<RecordTable> MakeTableOfRegistry() {
    if (htl::handle<RecordTable> known = TableOfRegistry()) return known;
    htl::handle<RecordTable> const table(new RecordTable);
    auto const add = [](std::string name, std::type_info const& type, H const& node,
                        meta::MetaDataTraits const& traits) {
        htl::handle<IODS> const store(new ODSName(std::move(name), false));
        ZORegistry::Instance()->RegisterZO(store, node, {meta::MetaPersistTraits::No, L""}, traits);
        ZOTypeTemplate::Register(type, node);
    };
    add(RecordView::rowName, typeid(GGID), H(new RecordView(table)), RecordView::Traits());
    add(ContainedView::rowName, typeid(hzn::gid::ContainerRef), H(new ContainedView(table)), ContainedView::Traits());
    return table;
}

} // namespace zo::kit::impl
