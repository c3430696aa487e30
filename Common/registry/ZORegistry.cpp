#include "Common/registry/ZORegistry.h"

#include "Common/model/ZOWrapper.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORedirect.h"

#include "support/diag.h"
#include "support/text.h"
#include "support/typename.h"

#include <cassert>
#include <cstdlib>
#include <utility>

namespace zo {

using impl::Current;
using impl::NodeAccess;

namespace {

// The default registry's one reference, dropped when the process exits.
htl::handle<ZORegistry>& DefaultHandle() {
    static auto* const handle = new htl::handle<ZORegistry>();
    return *handle;
}

ZORegistry* DefaultRegistry() {
    // The guard of a function static: made once, whichever thread comes first.
    [[maybe_unused]] static bool const made = [] {
        DefaultHandle() = htl::handle<ZORegistry>(new ZORegistry);
        std::atexit([] { DefaultHandle().release(); });
        return true;
    }();
    // A static of a client that asks while the process ends gets an empty one.
    if (!DefaultHandle()) DefaultHandle() = htl::handle<ZORegistry>(new ZORegistry);
    return DefaultHandle().get();
}

bool IsNormalForm(std::string const& name) {
    std::string normal = name;
    return path::Normalize(normal) && normal == name;
}

} // namespace

thread_local constinit ZORegistryImpl* impl::currentTables = nullptr;

namespace {

// Beside its tables, so that the registry before can be given back without being asked: it may be gone.
thread_local constinit ZORegistry* current = nullptr;

void MakeCurrent(ZORegistry* registry) {
    current = registry;
    impl::currentTables = registry ? registry->Tables() : nullptr;
}

} // namespace

ZORegistryImpl& impl::UseDefaultRegistry() {
    MakeCurrent(DefaultRegistry());
    return *currentTables;
}

ZORegistry::ZORegistry() : ZOSet(std::make_unique<ZORegistryImpl>(this), {}, {}) {
    meta::MetaPersistTraits const persist(meta::MetaPersistTraits::Always, str::as_wstring(RootName()));
    H const root(new ZORoot(this));
    htl::handle<IODS> const store(new ODSName(RootName()));
    ZORegistryImpl& tables = *Tables();
    tables.AddRow(store, root, nullptr, tables.Resolve(persist, nullptr), {});
    tables.Enter(this, RootName(), root.get(), true, false);
}

ZORegistry::~ZORegistry() {
    if (current == this) MakeCurrent(nullptr);
}

ZORegistry* ZORegistry::Instance() { return Current().owner; }

ZORegistry* ZORegistry::SetInstance(ZORegistry* registry) {
    ZORegistry* const before = current;
    MakeCurrent(registry);
    return before;
}

std::string ZORegistry::RootName() { return "HZNData"; }

ZORegistryImpl* ZORegistry::Tables() const noexcept { return static_cast<ZORegistryImpl*>(Impl()); }

void ZORegistry::RegisterZO(htl::handle<IODS> const& store, H const& node, meta::MetaPersistTraits const& persist,
                            meta::MetaDataTraits const& data) {
    ZORegistryImpl& tables = Current();
    std::string const& name = store->Name();
    assert(IsNormalForm(name));
    std::size_t const parentRow = tables.RowOfName(path::ParentPart(std::string_view(name)));
    H parent = parentRow == IZO::npos ? H() : tables.nodes[parentRow];
    meta::MetaPersistTraits const resolved = tables.Resolve(persist, parent.get());

    if (!parent) {
        ZORedirect const* const redirect = dynamic_cast<ZORedirect const*>(node.get());
        bool const isAlias = redirect && redirect->IsAlias();
        bool const dotted =
            name.find('.') != name.npos || (!isAlias && resolved.TagName.find(L'.') != resolved.TagName.npos);
        if (dotted) {
            std::wstring const tagPath =
                isAlias ? std::wstring() : std::wstring(path::ParentPart(std::wstring_view(resolved.TagName)));
            std::string const namePath(path::ParentPart(std::string_view(name)));
            parent = impl::registryHooks.makeParents(tagPath, namePath,
                                                     isAlias ? resolved.Type : meta::MetaPersistTraits::IfNotDefined);
        }
        if (!parent) parent = tables.nodes[0];
    }
    tables.AddRow(store, node, parent.get(), resolved, data);
    if (resolved.Type != meta::MetaPersistTraits::No && !resolved.TagName.empty())
        impl::registryHooks.addPersistEntry(node, resolved.TagName);
}

void ZORegistry::OnPostRegistration() { Current().Finish(); }
bool ZORegistry::InitializationComplete() const { return Current().initializationComplete; }
H ZORegistry::Root() const { return Current().nodes[0]; }
void ZORegistry::Clear() { Root()->Clear(); }

void ZORegistry::InvalidateMemory(std::string const& name) {
    if (!name.empty()) {
        if (H const node = Find(name)) NodeAccess::OnInvalidateMemory(*node);
        return;
    }
    // Those that the tree of tags knows in its order, then the rest: aliases stand in no tree.
    ZORegistryImpl const& tables = Current();
    std::vector<std::size_t> rows;
    std::vector<bool> listed(tables.RowCount(), false);
    for (std::size_t id = tables.firstChildren[0]; id != IZO::npos; id = tables.nextSiblings[id])
        if (tables.parents[id] == 0) {
            rows.push_back(id);
            listed[id] = true;
        }
    for (std::size_t id = 1; id < tables.RowCount(); ++id)
        if (tables.parents[id] == 0 && !listed[id]) rows.push_back(id);
    for (std::size_t const id : rows)
        if (H const node = Find(Current().subNames[id])) NodeAccess::OnInvalidateMemory(*node);
    // What was inserted has no row. The handles are held: what a node drops may be the last one of another.
    std::vector<H> inserted;
    for (SetEntry const* const entry : Impl()->entryOrder)
        if (entry && entry->visible) inserted.emplace_back(entry->node);
    for (H const& node : inserted) NodeAccess::OnInvalidateMemory(*node);
}

H ZORegistry::Wrap(std::size_t regID, void* memory) {
    IZOWrapper* const prototype = Current().wrappers[regID];
    assert(prototype);
    return H(prototype->RemapClone(memory, {}));
}

bool ZORegistry::NormalizeName(std::string& name) {
    int redirectsLeft = impl::mostRedirects;
    if (std::size_t const row = impl::TemplateRow(name, redirectsLeft); row != IZO::npos) {
        name = Current().names[row];
        return true;
    }
    return path::Normalize(name);
}

bool ZORegistry::NormalizeTag(std::wstring& tag) { return path::Normalize(tag); }

htl::status ZORegistry::Insert(std::string const& name, H const& node) {
    if (!node) return {};
    bool const normal = IsNormalForm(name);
    if (normal && Impl()->entries.First(name)) return ZOError::duplicate_name();
    Impl()->Enter(this, name, node.get(), true, normal);
    return {};
}

htl::status ZORegistry::InsertTemporary(std::string const& name, H const& node) {
    if (node) Impl()->Enter(this, name, node.get(), true, false);
    return {};
}

ZORegistryIterator ZORegistry::begin() {
    ZORegistryIterator first;
    first.levels.push_back(Root()->begin());
    first.DropEnded_();
    return first;
}

ZORegistryIterator ZORegistry::end() { return {}; }

ZORegistryIterator& ZORegistryIterator::operator++() {
    // Not into nodes that redirect: links may lead in a circle.
    // Nor into a namesake that answers for a child: it may be one of the nodes above.
    IZO& node = *levels.back().current;
    std::size_t const asked = levels.back().subID;
    if ((asked == IZO::npos || asked == node.RegID()) && !dynamic_cast<ZORedirect*>(&node)) {
        ZOFwrdIterator children = node.begin();
        if (children.current) {
            levels.push_back(std::move(children));
            return *this;
        }
    }
    ++levels.back();
    DropEnded_();
    return *this;
}

void ZORegistryIterator::DropEnded_() {
    while (!levels.empty() && !levels.back().current) {
        levels.pop_back();
        if (!levels.empty()) ++levels.back();
    }
}

void ZOTypeTemplate::Register(std::type_info const& type, H const& node) {
    IZO* registered = node.get();
    Access_(type, registered, RegisterAccess);
}

IZO* ZOTypeTemplate::Lookup(std::type_info const& type) {
    IZO* found = nullptr;
    Access_(type, found, LookupAccess);
    return found;
}

namespace {

// A copy of a record with another type. Each kind copies its own kind of record.
meta::MetaDataTraits WithType(meta::MetaDataTraits const& traits, std::type_info const& type) {
    auto const retyped = [&type](auto const& record) {
        auto copy = std::make_shared<std::remove_cvref_t<decltype(record)>>(record);
        copy->type = &type;
        return meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(copy)));
    };
    if (auto const* const atomic = traits.AsAtomic()) return retyped(*atomic);
    if (auto const* const array = traits.AsArray()) return retyped(*array);
    if (auto const* const structure = traits.AsStructure()) {
        // The members may be owned by the record that they came from.
        struct Owning : meta::MetaTraitsStructure {
            meta::MetaDataTraits from;
        };
        auto copy = std::make_shared<Owning>();
        static_cast<meta::MetaTraitsStructure&>(*copy) = *structure;
        copy->from = traits;
        copy->type = &type;
        return meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(copy)));
    }
    return traits;
}

} // namespace

void ZOTypeTemplate::Access_(std::type_info const& type, IZO*& node, AccessType access) {
    ZORegistryImpl& tables = Current();
    std::string const& key = meta::TypeName(type);
    if (access == LookupAccess) {
        auto const row = tables.typeTemplates.find(key);
        node = row == tables.typeTemplates.end() || !tables.HasRow(row->second) ? nullptr
                                                                                : tables.nodes[row->second].get();
        return;
    }
    if (!node || !tables.typeTemplates.emplace(key, node->RegID()).second || !tables.HasRow(node->RegID())) return;
    meta::MetaDataTraits& traits = tables.dataTraits[node->RegID()];
    if (traits && traits.TypeName() != key) traits = WithType(traits, type);
}

meta::MetaDataTraits const& DataTraits(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().dataTraits[regID];
}

meta::MetaDataTraits DataTraits(std::string const& name) {
    IZO const* const node = GetTemplate(name);
    assert(node);
    return node ? node->GetDataTraits() : meta::MetaDataTraits();
}

meta::MetaDataTraits DataTraits(H const& node) { return node->GetDataTraits(); }

bool IsDefinedDataTraits(std::size_t regID) {
    if (regID == IZO::npos) return false;
    meta::MetaDataTraits const& traits = DataTraits(regID);
    return traits && traits.Descriptor()->kind != meta::Kind::Undefined;
}

IZO* GetTemplate(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().nodes[regID].get();
}

std::string const& RegNormalizedName(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().names[regID];
}

std::string const& RegSubName(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().subNames[regID];
}

std::wstring const& RegSubTag(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().subTags[regID];
}

std::size_t SubRegID(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().firstChildren[regID];
}

std::size_t NextRegID(std::size_t regID) {
    assert(Current().HasRow(regID));
    return Current().nextSiblings[regID];
}

std::size_t SubRegID(std::size_t regID, std::string const& name) {
    assert(Current().HasRow(regID));
    return Current().ChildByName(regID, name);
}

std::size_t SubRegIDByTag(std::size_t regID, std::wstring const& tag) {
    assert(Current().HasRow(regID));
    return Current().ChildByTag(regID, tag);
}

void ValidateMetaData(std::type_info const& type, meta::MetaDataTraits const& traits) {
    ZORegistryImpl const& tables = Current();
    if (traits.AsStructure()) {
        std::string const& name = meta::TypeName(type);
        auto const isOther = [&](std::size_t row) {
            return row != IZO::npos && tables.dataTraits[row].TypeName() != name;
        };
        bool const clash = isOther(tables.RowOfName(name)) || isOther(tables.RowOfTag(str::as_wstring(name)));
        static hzn::diag::DeclareCategoryMask const category("ZO.Registry");
        if (clash && meta::bValidateRegistry && hzn::diag::IsLogged(hzn::diag::Severity::Error, category))
            hzn::eventsink::Instance()->Post(
                hzn::diag::Severity::Error, category,
                L"Invalid typename in data traits. Rename ZO so its name/tag is not the same as the type.\n");
    }
    if (auto const* const atomic = traits.AsAtomic(); atomic && *atomic->type == typeid(int) && type != typeid(int)) {
        int const zero = 0;
        if (atomic->convert) atomic->convert(&zero, nullptr);
    }
}

} // namespace zo

ZORoot::ZORoot(zo::ZOSet* owner) : IZO(0, owner, npos) {}

zo::IZO* ZORoot::Clone() { return new ZORoot(Owner()); }
zo::IZO* ZORoot::EmptyClone() { return new ZORoot(Owner()); }

zo::H ZORoot::GetSubZO(std::string const& name) {
    zo::ZOSet* const set = Owner() ? Owner() : zo::ZORegistry::Instance();
    return set->Find(name);
}

namespace {

void ClearActiveChildren(zo::IZO& parent) {
    for (zo::ZOFwrdIterator child = parent.begin(); child.current; ++child) {
        zo::IZO& node = *child.current;
        std::size_t const row = node.RegID();
        // A made parent has no data of its own: what is below it decides. Only the child itself: a namesake that
        // answers for it may be one of the nodes above.
        if (zo::impl::registryHooks.isParentPlaceholder(node)) {
            if (row == child.subID) ClearActiveChildren(node);
        } else if (zo::impl::Current().HasRow(row) && zo::impl::Current().stores[row]->IsActiveDataStore()) {
            node.Clear();
        }
    }
}

} // namespace

void ZORoot::Clear() {
    zo::ZORegistry::Instance()->InvalidateMemory("");
    ClearActiveChildren(*this);
}
