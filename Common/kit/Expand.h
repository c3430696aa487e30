// Registers a plan: under each place where a type is used, a row for each of its parts.
#pragma once

#include "Common/kit/Check.h"
#include "Common/kit/Groups.h"
#include "Common/kit/Plan.h"
#include "Common/kit/RecordTable.h"
#include "Common/redirect/Placeholders.h"
#include "Common/redirect/Stores.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/redirect/ZOAliasRegistrator.h"
#include "Common/redirect/ZOAliasSet.h"
#include "Common/registry/ZORegistry.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zo::kit::impl {

/// The store of a top-level object: there as long as a function gives the object.
class FunctionStore final : public IODS {
public:
    FunctionStore(std::string name, bool active, std::function<void*()> object)
        : IODS(std::move(name)), active(active), object(std::move(object)) {}

    bool IsActiveDataStore() const override { return active; }
    bool IsAvailable() const override { return object() != nullptr; }
    void* GetPtrType() const override { return object(); }

private:
    bool active;
    std::function<void*()> object;
};

/// A structure's description with members that were collected at run time.
inline meta::MetaDataTraits StructureTraits(std::size_t byteSize, std::type_info const& type,
                                            std::vector<meta::MetaMember> members, RecordOptions const& options) {
    struct Owning : meta::MetaTraitsStructure {
        std::vector<meta::MetaMember> owned;
    };
    auto record = std::make_shared<Owning>();
    record->kind = meta::Kind::Structure;
    record->byteSize = byteSize;
    record->type = &type;
    record->owned = std::move(members);
    record->members = record->owned;
    if (options.recordGroup) record->recordGroup = [group = options.recordGroup](void const*) { return group; };
    auto const rule = [](std::function<bool(IZO const&)> const& asked) {
        return [asked](void const* node) { return !node || asked(*static_cast<IZO const*>(node)); };
    };
    if (options.visible) record->visible = rule(options.visible);
    if (options.editable) record->editable = rule(options.editable);
    return meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(record)));
}

class Expansion {
public:
    explicit Expansion(Plan const& plan) : plan(plan), registry(ZORegistry::Instance()) {}

    void Run() {
        records = TableOfRegistry();
        if (std::vector<GroupPlace> const places = GroupWalk::Run(plan); !places.empty()) {
            records = MakeTableOfRegistry();
            for (GroupPlace const& place : places) records->Add(place);
        }
        for (RecordPlan const& record : plan.records) Describe_(record);
        for (BranchPlan const& branch : plan.branches)
            if (branch.object) Describe_(branch.line, branch.line.shape, Form::Single);
        // A parent before what lies below it, in whatever order the modules came.
        std::vector<BranchPlan const*> order;
        for (BranchPlan const& branch : plan.branches) order.push_back(&branch);
        auto const depth = [](BranchPlan const* branch) {
            return std::count(branch->line.name.begin(), branch->line.name.end(), '.');
        };
        std::stable_sort(order.begin(), order.end(),
                         [&depth](auto const* a, auto const* b) { return depth(a) < depth(b); });
        for (BranchPlan const* const branch : order) Register_(*branch);
    }

private:
    /// What a row is to the row above it.
    enum class Role { Child, Attribute, Element, Place };

    void Describe_(RecordPlan const& record) {
        std::vector<meta::MetaMember> members;
        for (Line const& line : record.lines) {
            Describe_(line, line.shape, Form::Single);
            if (!line.computed) members.push_back({line.offset, line.shape.traits});
        }
        record.slot->Put(registry, StructureTraits(record.byteSize, *record.type, std::move(members), record.options));
    }

    void Describe_(Line const& line, Shape const& shape, Form form) {
        switch (shape.kind) {
        case Shape::Value: shape.slot->Put(registry, shape.value->Make(plan.WordsOf(*shape.value), form)); return;
        case Shape::Record: // with its own plan
        case Shape::Alias: return;
        case Shape::Array: {
            Form const below = !IsOneText(plan, shape) ? Form::Single
                               : shape.fixedLength     ? Form::Place
                                                       : Form::ResizablePlace;
            Describe_(line, *shape.element, below);
            DescribeArray_(line, shape);
            return;
        }
        case Shape::Map:
            Describe_(line, *shape.element, Form::Single);
            DescribeArray_(line, shape);
            return;
        case Shape::Pair:
            Describe_(line, *shape.first, Form::Single);
            Describe_(line, *shape.second, Form::Single);
            // Not the key: a reset keeps it.
            shape.slot->Put(registry, StructureTraits(shape.byteSize, *shape.type,
                                                      {{shape.secondOffset, shape.second->traits}}, {}));
            return;
        case Shape::Wrap:
            Describe_(line, *shape.element, Form::Single);
            shape.slot->Put(registry, StructureTraits(shape.byteSize, *shape.type, {{0, shape.element->traits}}, {}));
            return;
        }
    }

    void DescribeArray_(Line const& line, Shape const& shape) {
        meta::MetaDataTraits const plain = shape.makeArray(shape.element->traits);
        auto record = std::make_shared<meta::MetaTraitsArray>(*plain.AsArray());
        record->recordGroup = FunctionOfGroup(shape.recordGroup);
        auto const rule = [](std::function<bool(IZO const&)> const& asked) {
            return [asked](void const* node) { return !node || asked(*static_cast<IZO const*>(node)); };
        };
        if (line.visible) record->visible = rule(line.visible);
        if (line.editable) record->editable = rule(line.editable);
        shape.slot->Put(registry, meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(record))));
    }

    void Register_(BranchPlan const& branch) {
        Line const& line = branch.line;
        if (line.shape.kind == Shape::Alias) return RegisterAlias_(line.name, line.tag, *line.shape.alias);
        if (branch.IsGroup()) {
            htl::handle<IODS> const store(new ODSName(line.name));
            H const node(new ZOParentPlaceholder(IZO::npos, nullptr));
            registry->RegisterZO(store, node, {meta::MetaPersistTraits::Always, line.tag},
                                 ZOParentPlaceholder::Traits());
            return;
        }
        htl::handle<IODS> const store(new FunctionStore(line.name, line.persist != Persist::Never, branch.object));
        Register_(store, line.tag, line.shape, 0, line.persist, Role::Child);
    }

    /// Its store is always there: whether the source is decides what is found.
    void RegisterAlias_(std::string const& name, std::wstring const& tag, AliasRules const& alias) {
        htl::handle<IODS> const store(new ODSName(name));
        ZOAliasRegistrator(AliasNode_(tag, alias), store, {meta::MetaPersistTraits::No, tag});
    }

    static H AliasNode_(std::wstring const& tag, AliasRules const& alias) {
        switch (alias.kind) {
        case AliasRules::ByName: return H(new ZOAlias(alias.name, IZO::npos, nullptr));
        case AliasRules::Kept: return H(new ZOAliasAbsolute(alias.name, IZO::npos, nullptr));
        case AliasRules::ByTag: return H(new ZOAliasAbsoluteSlow(alias.tag, IZO::npos, nullptr));
        case AliasRules::Relative: return H(new ZOAliasRelative(alias.tag, IZO::npos, nullptr));
        case AliasRules::Set: return H(new ZOAliasSet(tag, alias.pairs, IZO::npos, nullptr));
        }
        return {};
    }

    H Prototype_(Shape const& shape, meta::MetaDataTraits const& traits, std::size_t offset) const {
        return shape.link ? shape.link(traits, offset, records) : shape.prototype(traits, offset);
    }

    /// A row whose data lie in those of the row above: its own store says no more than whether documents hold it.
    void RegisterPart_(std::string const& name, std::wstring const& tag, Shape const& shape, std::size_t offset,
                       Persist persist, Role role) {
        htl::handle<IODS> const store(new ODS(name, persist != Persist::Never, true));
        Register_(store, tag, shape, offset, persist, role);
    }

    void Register_(htl::handle<IODS> const& store, std::wstring const& tag, Shape const& shape, std::size_t offset,
                   Persist persist, Role role) {
        std::string const name = store->Name();
        meta::MetaDataTraits const traits = shape.traits();
        bool asValue = false;
        bool attributes = false;
        bool const oneText = IsOneText(plan, shape);
        RecordPlan const* record = nullptr;
        switch (shape.kind) {
        case Shape::Value: asValue = role == Role::Child || role == Role::Element; break;
        case Shape::Record:
            record = plan.Find(*shape.type);
            attributes = record->options.attributes;
            break;
        case Shape::Array:
            asValue = oneText && role != Role::Attribute;
            // A list of default values would be left out, and its length with it.
            if (oneText && !shape.fixedLength && persist == Persist::IfNotDefault) persist = Persist::Always;
            break;
        case Shape::Pair: attributes = shape.second->kind == Shape::Value; break;
        default: break;
        }
        std::uint32_t const type = persist == Persist::Never          ? meta::MetaPersistTraits::No
                                   : persist == Persist::IfNotDefault ? meta::MetaPersistTraits::IfNotDefined
                                                                      : meta::MetaPersistTraits::Always;
        registry->RegisterZO(store, Prototype_(shape, traits, offset), {type, tag, asValue, attributes}, traits);

        switch (shape.kind) {
        case Shape::Value:
        case Shape::Alias: return;
        case Shape::Record:
            for (Line const& line : record->lines) {
                Persist const below = persist == Persist::Never ? Persist::Never : line.persist;
                if (line.shape.kind == Shape::Alias)
                    RegisterAlias_(name + "." + line.name, line.tag, *line.shape.alias);
                else
                    RegisterPart_(name + "." + line.name, line.tag, line.shape, line.offset, below,
                                  attributes ? Role::Attribute : Role::Child);
            }
            return;
        case Shape::Array:
        case Shape::Map:
            RegisterPart_(name + ".[]", L"", *shape.element, 0, persist, oneText ? Role::Place : Role::Element);
            return;
        case Shape::Pair: {
            Role const below = attributes ? Role::Attribute : Role::Child;
            Persist const always = persist == Persist::Never ? Persist::Never : Persist::Always;
            RegisterPart_(name + ".first", shape.keyTag, *shape.first, shape.firstOffset, always, below);
            RegisterPart_(name + ".second", shape.valueTag, *shape.second, shape.secondOffset, always, below);
            return;
        }
        case Shape::Wrap: RegisterPart_(name + ".Items", L"Items", *shape.element, 0, persist, Role::Child); return;
        }
    }

    Plan const& plan;
    ZORegistry* registry;
    htl::handle<RecordTable> records; // empty if no records have groups
};

} // namespace zo::kit::impl
