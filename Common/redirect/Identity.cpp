#include "Common/redirect/Identity.h"

#include "Common/model/ZOArray.h"
#include "Common/redirect/ZOLink.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/text.h"

#include <limits>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace zo {
namespace {

using namespace hzn::gid;

// What a 64-bit read gives for no record.
constexpr htl::Int64 noRecord = std::numeric_limits<htl::Int64>::max();
// The number of what lies in an array of records but in none of its elements.
constexpr GID besideElements = static_cast<GID>(-2);

/// Whether the node is a wrapper that can't be read: a prototype has an offset where a view has memory.
bool LacksMemory(IZO const& node) {
    if (auto const* const value = dynamic_cast<ZOWrapperBase const*>(&node))
        return value->IsPrototype() || !value->Memory();
    if (auto const* const array = dynamic_cast<ZOArrayWrapper const*>(&node))
        return array->IsPrototype() || !array->Memory();
    return false;
}

/// Reads a number of 32 bits. 0 for a failed read, for none and for what is no such number.
GID ReadID(IZO& node) {
    htl::Int64 value = noRecord;
    if (node.Get(value).IsError()) return 0;
    return std::in_range<GID>(value) ? static_cast<GID>(value) : 0;
}

std::uint32_t LinkGroup(IZO const& node) {
    meta::MetaDataTraits const traits = node.GetDataTraits();
    meta::MetaTraitsAtomic const* const record = traits.AsAtomic();
    return record ? record->linkGroup : 0;
}

/// An alias describes itself as its source, so asking the source next gives the same answer with fewer lookups.
bool IsAlias(ZORedirect const* redirect) { return redirect && redirect->IsAlias(); }

/// The record that the field behind `node` refers to, as it is stored.
GGID StoredLink(H const& node) {
    H current = node;
    for (int steps = 0; current && steps <= impl::mostRedirects; ++steps) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(current.get());
        if (!IsAlias(redirect)) {
            if (GID const group = LinkGroup(*current)) return {group, LacksMemory(*current) ? 0 : ReadID(*current)};
            if (auto const* const record = dynamic_cast<IZOKind<GGID> const*>(current.get())) {
                GGID const value = LacksMemory(*current) ? GGID() : record->GetData();
                return Value(value) == static_cast<std::uint64_t>(noRecord) ? GGID() : value;
            }
        }
        if (!redirect) break;
        current = redirect->Redirect();
    }
    return {};
}

/// The number of the element that a sub-name tells, counted from 1; 0 if it tells none.
GID ElementNumber(std::string_view name) {
    if (name.size() > 2 && name.front() == IZO::chArrayOpen && name.back() == IZO::chArrayClose)
        name = name.substr(1, name.size() - 2);
    else if (name.empty() || !str::IsDigit(name.front()))
        return 0;
    std::size_t index = 0;
    // An index without a number of 32 bits must not become another element's.
    return path::ParseIndex(name, index) && index < std::numeric_limits<GID>::max() ? static_cast<GID>(index + 1) : 0;
}

/// What one node says of the record around it. False if it says nothing.
bool AskForRecord(IZO const& node, GGID& record) {
    if (auto const* const array = dynamic_cast<ZOArrayWrapper const*>(&node)) {
        meta::MetaTraitsArray const* const traits = array->AccessTraits().AsArray();
        if (!traits || !traits->recordGroup || LacksMemory(node)) return false;
        record.group = traits->recordGroup(array->Memory());
        if (record.id == 0) record.id = besideElements;
        return true;
    }
    if (auto const* const structure = dynamic_cast<ZOWrapperStruct const*>(&node)) {
        meta::MetaTraitsStructure const* const traits = structure->AccessTraits().AsStructure();
        if (!traits || !traits->recordGroup || LacksMemory(node)) return false;
        record = {traits->recordGroup(structure->Memory()), 1};
        return true;
    }
    return false;
}

/// The node that a view of an identifier leads to: `memory` holds a value of `type`.
H SourceOf(ZOSet* set, std::type_info const& type, void* memory, std::string const& name) {
    IZO const* const known = ZOTypeTemplate::Lookup(type);
    H const view = GetWrapper(known ? known->RegID() : IZO::npos, memory);
    if (!view) return {};
    // In a transaction the view leads to what is staged. A name that is taken leaves it to lead to the registry.
    if (dynamic_cast<ZOTransaction*>(set)) (void)set->InsertTemporary(name, view);
    H source = GetSource(view);
    return source.get() == view.get() ? H() : source;
}

std::string Words(GGID const& id) { return std::to_string(id.group) + '_' + std::to_string(id.id); }

} // namespace

bool IsLinkField(H const& node) {
    H current = node;
    for (int steps = 0; current && steps <= impl::mostRedirects; ++steps) {
        if (dynamic_cast<ZOLink const*>(current.get())) return true;
        auto const* const redirect = dynamic_cast<ZORedirect const*>(current.get());
        if (!IsAlias(redirect) && LinkGroup(*current) != 0) return true;
        if (!redirect) return false;
        current = redirect->Redirect();
    }
    return false;
}

bool IsLinkField(std::string const& name) { return IsLinkField(Find(name)); }

GGID GetLink(H const& node, Link::Type type) {
    GGID result = StoredLink(node);
    if (type == Link::Packed && IsValid(result) && !IsFullyQualified(result)) {
        GID const around = GetRecordID(node, Link::Packed).group;
        GGID const enclosing = ContainerRef(GGID(), around).EnclosingRecordId();
        if (IsValid(enclosing)) result.group = PackedContainerGID(enclosing, result.group);
    }
    return result;
}

GGID GetRecordID(H const& node, Link::Type type) {
    if (!node || !node->Owner()) return {};
    H const start = IsLinkField(node) ? node : GetSource(node);
    H current = start;
    GGID result;
    // A name has fewer components than characters. Only nodes that were entered under other names can lead on and on.
    std::size_t stepsLeft = start->Name().size() + impl::mostRedirects;
    while (result.group == 0) {
        if (!current || stepsLeft-- == 0) return result;
        if (GID const number = ElementNumber(current->SubName())) result.id = number;
        if (!AskForRecord(*current, result) && current.get() != start.get() && IsLinkField(current))
            result = StoredLink(current);
        if (IsValid(result)) break;
        current = GetParent(current, 1);
    }
    if (type == Link::Packed && result.id != 0 && !IsFullyQualified(result)) {
        GGID const around = GetRecordID(GetParent(current, 1), Link::AsStored);
        if (IsValid(around) && IsPlainGroup(around.group) && !IsContainerObjectId(around))
            result.group = PackedContainerGID(around, result.group);
    }
    return result;
}

htl::status SetLink(H const& node, GGID const& value) {
    meta::MetaDataTraits const traits = node ? node->GetDataTraits() : meta::MetaDataTraits();
    meta::MetaTraitsAtomic const* const record = traits.AsAtomic();
    if (!record || LacksMemory(*node)) return HznError::internal("ZOUtil", "zo::SetLink", 2713);
    htl::Int64 number = noRecord;
    if (*record->type == typeid(GGID)) {
        if (IsValid(value)) number = static_cast<htl::Int64>(Value(value));
    } else {
        if (value.group != 0 && record->linkGroup != 0 && value.group != record->linkGroup)
            return htl::status(27568, L"", L"", L"", L"");
        if (value.id != 0) number = value.id;
    }
    return node->Set(static_cast<htl::Int64 const&>(number));
}

H GetSource(H const& node, unsigned depth) {
    H current = node;
    // At least one step, and none beyond the bound: redirects may lead in a circle.
    for (unsigned count = 0; count < static_cast<unsigned>(impl::mostRedirects);) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(current.get());
        if (!redirect) break;
        H target = redirect->Redirect();
        if (!target) break;
        current = std::move(target);
        if (++count >= depth) break;
    }
    return current;
}

H GetSource(H const& node) { return GetSource(node, 0xFFFFFFFFu); }

H GetSource(ZOSet* set, GGID const& id) {
    if (!IsValid(id)) return {};
    GGID copy = id;
    return SourceOf(set, typeid(GGID), &copy, "GetSource_GGID_" + Words(id));
}

H GetSource(GGID const& id) { return GetSource(ZORegistry::Instance(), id); }

H GetSource(ZOSet* set, ContainerRef ref) {
    std::string const name = "GetSource_Container_" + Words(ref.Container()) + '_' + std::to_string(ref.Object());
    return SourceOf(set, typeid(ContainerRef), &ref, name);
}

H GetSource(ContainerRef ref) { return GetSource(ZORegistry::Instance(), ref); }

H LookupRelative(GGID const& id, std::wstring const& path) { return LookupRelative(GetSource(id), path); }

GID GetObjectIDByTag(H const& object) {
    H const child = GetIDZO(object);
    htl::Int64 value = noRecord;
    if (!child || child->Get(value).IsError() || value == noRecord) return 0;
    return static_cast<GID>(static_cast<std::uint64_t>(value) & 0xFFFFFFFFu);
}

htl::status SetObjectIDByTag(H const& object, GID const& id) {
    H const child = GetIDZO(object);
    if (!child) return HznError::internal("ZOUtil", "zo::SetObjectIDByTag", __LINE__);
    htl::Int64 const number = id == 0 ? noRecord : htl::Int64(id);
    return child->Set(number);
}

std::wstring GetObjectName(H const& object) {
    H const child = GetNameZO(object);
    std::wstring text;
    if (!child || child->Get(text).IsError()) return {};
    return text;
}

htl::status SetObjectName(H const& object, std::wstring const& text) {
    H const child = GetNameZO(object);
    if (!child) return HznError::internal("ZOUtil", "zo::SetObjectName", __LINE__);
    return child->Set(text);
}

bool IsID(H const& node) { return node && node->Tag() == L"ID"; }

htl::status CommitAs(htl::handle<ZOTransaction> const& transaction, GGID const& from, GGID const& to,
                     std::string const& sourceUnits, std::string const& targetUnits) {
    if (!transaction) return {};
    H const source = GetSource(transaction.get(), from);
    H const target = source ? GetSource(transaction->Base(), to) : H();
    if (!target) return {};
    return transaction->CommitAs(source->Name(), target->Name(), sourceUnits, targetUnits);
}

} // namespace zo
