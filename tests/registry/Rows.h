// What the registry's tests share: a registry of their own, and plain nodes to register in it.
#pragma once

#include "Common/redirect/Placeholders.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZORedirect.h"
#include "tests/fixtures/Embankment.h"

#include <string>
#include <utility>
#include <vector>

namespace rows {

using meta::MetaDataTraits;
using meta::MetaPersistTraits;
using zo::H;
using zo::IZO;
using zo::impl::NodeAccess;

/// A node without data.
class Plain : public IZO {
public:
    explicit Plain(std::size_t regID = npos, zo::ZOSet* owner = nullptr) : IZO(regID, owner, npos) {}
    IZO* Clone() override { return new Plain(RegID(), Owner()); }
};

/// Answers for the node of another name. Its children are the other node's.
class OtherName : public IZO, public zo::ZORedirect {
public:
    OtherName(std::string target, bool alias, std::size_t regID = npos, zo::ZOSet* owner = nullptr)
        : IZO(regID, owner, npos), target(std::move(target)), alias(alias) {
        SetRedirector(this);
    }
    IZO* Clone() override { return new OtherName(target, alias, RegID(), Owner()); }
    std::string RedirectName() const override { return target; }
    bool IsAlias() const noexcept override { return alias; }

    int timesInvalidated = 0;

protected:
    H GetSubZO(std::string const& name) override {
        // Two of these may lead to each other.
        if (depth == 1000) return {};
        ++depth;
        H const other = Redirect();
        H const child = other ? zo::Find(other, name) : H();
        --depth;
        return child;
    }
    void OnInvalidateMemory() override { ++timesInvalidated; }

private:
    static inline thread_local int depth = 0;
    std::string target;
    bool alias;
};

inline MetaDataTraits StructureTraits() {
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure;
        return structure;
    }();
    return MetaDataTraits(record);
}

inline MetaDataTraits ArrayKindTraits() {
    static meta::MetaTraitsArray const record = [] {
        meta::MetaTraitsArray array;
        array.kind = meta::Kind::Array;
        return array;
    }();
    return MetaDataTraits(record);
}

/// A registry, current for as long as this lives.
class OwnRegistry {
public:
    OwnRegistry() : registry(new zo::ZORegistry), previous(zo::ZORegistry::SetInstance(registry.get())) {}
    OwnRegistry(OwnRegistry const&) = delete;
    OwnRegistry& operator=(OwnRegistry const&) = delete;
    ~OwnRegistry() {
        // A registry whose rows persist lives on: its stores must not point at the test's objects.
        for (auto const& store : stores) {
            store->SetObject(nullptr);
            store->SetAvailable(false);
        }
        zo::ZORegistry::SetInstance(previous);
    }

    zo::ZORegistry* operator->() const { return registry.get(); }
    zo::ZORegistry& operator*() const { return *registry; }

    /// Registers a node and gives its store. What isn't persisted lets the registry go with the test.
    htl::handle<zo::ODS> Add(std::string const& name, H const& node, std::wstring const& tag,
                             MetaDataTraits const& traits, void* object = nullptr,
                             std::uint32_t type = MetaPersistTraits::No) {
        htl::handle<zo::ODS> const store(new zo::ODS(name, true, true, object));
        stores.push_back(store);
        registry->RegisterZO(store, node, MetaPersistTraits(type, tag), traits);
        return store;
    }
    /// A plain row; the tag is the name's last component unless it is given.
    H AddPlain(std::string const& name, std::wstring const& tag) {
        H const node(new Plain);
        Add(name, node, tag, StructureTraits());
        return node;
    }
    H AddArray(std::string const& name, std::wstring const& tag) {
        H const node(new Plain);
        Add(name, node, tag, ArrayKindTraits());
        return node;
    }

    htl::handle<zo::ZORegistry> registry;

private:
    zo::ZORegistry* previous;
    std::vector<htl::handle<zo::ODS>> stores;
};

/// Every test gets an empty registry of its own.
class RegistryTest : public testing::Test {
protected:
    OwnRegistry registry;
};

inline std::string NameOf(H const& node) { return node ? node->Name() : "<no node>"; }
inline std::size_t RowOf(std::string const& name) {
    IZO const* const known = zo::GetTemplate(name);
    return known ? known->RegID() : IZO::npos;
}

} // namespace rows
