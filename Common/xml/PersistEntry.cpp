#include "Common/xml/PersistEntry.h"

#include "Common/model/ZOWrapper.h"
#include "Common/registry/ZORegistry.h"

namespace zo::xml::impl {

std::size_t ChildIndex::Find(std::vector<ZOPersistEntry> const& children, std::wstring_view tag) {
    constexpr std::size_t scanLimit = 16;
    if (children.size() <= scanLimit) {
        for (std::size_t i = 0; i < children.size(); ++i)
            if (children[i].tag == tag) return i;
        return IZO::npos;
    }
    if (!table) table = std::make_unique<Table>();
    // The first child of a tag wins, as in a scan.
    for (; table->counted < children.size(); ++table->counted)
        table->first.emplace(children[table->counted].tag, table->counted);
    table->key.assign(tag);
    auto const found = table->first.find(table->key);
    return found == table->first.end() ? IZO::npos : found->second;
}

ZOPersistEntry::ZOPersistEntry(H const& node, ZOPersistEntry* parent)
    : node(node), wrapper(asWrapper(*node)), simple(dynamic_cast<IZOSimple*>(node.get())),
      name(RegSubName(node->RegID())), tag(node->Tag()), persist(node->GetPersistTraits()),
      traits(node->GetDataTraits()) {
    if (auto const* record = traits.AsArray()) {
        isArray = true;
        fixedLength = record->fixedLength;
        contiguous = record->contiguous;
        // The registered node has an offset where a live one has memory; the descriptor knows a fixed length by itself.
        if (fixedLength && record->length) length = record->length(nullptr);
    }
    getter = ChooseGetter_(parent);
}

ZOPersistEntry::ZOPersistEntry(ZOPersistEntry const& other) = default;
ZOPersistEntry::ZOPersistEntry(ZOPersistEntry&& other) noexcept = default;
ZOPersistEntry& ZOPersistEntry::operator=(ZOPersistEntry const& other) = default;
ZOPersistEntry& ZOPersistEntry::operator=(ZOPersistEntry&& other) noexcept = default;
ZOPersistEntry::~ZOPersistEntry() = default;

void ZOPersistEntry::AddChild(H const& child) { children.emplace_back(child, this); }

ZOPersistEntry::Getter ZOPersistEntry::ChooseGetter_(ZOPersistEntry const* parent) const {
    bool const isAttribute = parent && parent->persist.Type != meta::MetaPersistTraits::No &&
                             parent->persist.IsAllChildrenValue && !parent->isArray &&
                             !parent->persist.IsPersistedAsValue;
    if (isAttribute) {
        bool const inMemory = parent->wrapper && wrapper;
        if (isArray)
            return contiguous && inMemory ? &ZOPersistEntry::FnZOGetArrayDataViaParent
                                          : &ZOPersistEntry::FnZOGetViaParent;
        if (!inMemory) return &ZOPersistEntry::FnZOGetViaParent;
        return simple ? &ZOPersistEntry::FnZOGetWrapperDataViaParent : &ZOPersistEntry::FnZOGetWrapperViaParent;
    }
    if (persist.Type == meta::MetaPersistTraits::No || !persist.IsPersistedAsValue) return nullptr;
    // An alias of an array has the array's traits and none of its memory.
    if (isArray) return contiguous && wrapper ? &ZOPersistEntry::FnZOGetArrayData : &ZOPersistEntry::FnZOGet;
    return simple ? &ZOPersistEntry::FnZOGetData : &ZOPersistEntry::FnZOGet;
}

IZOWrapper const* ZOPersistEntry::WrapperOf_(H const& live) const { return live ? asWrapper.Recall(*live) : nullptr; }

htl::status ZOPersistEntry::FnZOGet(H& live, IZOWrapper*, std::wstring& value, bool& isDefault) const {
    if (!live) return ZOError::not_found(name);
    isDefault = live->IsDefault();
    if (SkipsDefaults_() && isDefault) return {};
    return live->Get(value);
}

htl::status ZOPersistEntry::FnZOGetData(H& live, IZOWrapper* parentWrapper, std::wstring& value,
                                        bool& isDefault) const {
    IZOWrapper const* const view = WrapperOf_(live);
    if (!view || !view->Memory()) return FnZOGet(live, parentWrapper, value, isDefault);
    return simple->FormatRange(view->Memory(), nullptr, SkipsDefaults_(), value, isDefault);
}

htl::status ZOPersistEntry::FnZOGetArrayData(H& live, IZOWrapper* parentWrapper, std::wstring& value,
                                             bool& isDefault) const {
    if (!live) return ZOError::not_found(name);
    std::size_t const count = length ? length : live->Length();
    if (count == 0) {
        value.clear();
        return {};
    }
    IZOWrapper const* const view = WrapperOf_(live);
    auto const* record = traits.AsArray();
    if (children.empty() || !record->elementAt || !record->elementTraits) return ZOError::not_found(name);
    // A client's own value class may know nothing of formatting memory; its array still writes itself.
    if (!view || !view->Memory() || !children.front().simple) return FnZOGet(live, parentWrapper, value, isDefault);

    meta::MetaDataTraits const element = record->elementTraits();
    if (!element) return ZOError::not_found(name);
    auto const* first = static_cast<char const*>(record->elementAt(view->Memory(), 0));
    return children.front().simple->FormatRange(first, first + count * element.Descriptor()->byteSize, SkipsDefaults_(),
                                                value, isDefault);
}

htl::status ZOPersistEntry::FnZOGetViaParent(H& live, IZOWrapper* parentWrapper, std::wstring& value,
                                             bool& isDefault) const {
    H child = ZORegistry::Instance()->Find(live, name);
    return FnZOGet(child, parentWrapper, value, isDefault);
}

htl::status ZOPersistEntry::FnZOGetArrayDataViaParent(H&, IZOWrapper* parentWrapper, std::wstring& value,
                                                      bool& isDefault) const {
    if (!parentWrapper || !parentWrapper->Memory()) return ZOError::not_found(name);
    H child(wrapper->RemapClone(wrapper->MemberOf(parentWrapper->Memory()), parentWrapper->Manager()));
    return FnZOGetArrayData(child, parentWrapper, value, isDefault);
}

htl::status ZOPersistEntry::FnZOGetWrapperViaParent(H&, IZOWrapper* parentWrapper, std::wstring& value,
                                                    bool& isDefault) const {
    if (!parentWrapper || !parentWrapper->Memory()) return ZOError::not_found(name);
    H child(wrapper->RemapClone(wrapper->MemberOf(parentWrapper->Memory()), parentWrapper->Manager()));
    return FnZOGet(child, parentWrapper, value, isDefault);
}

htl::status ZOPersistEntry::FnZOGetWrapperDataViaParent(H&, IZOWrapper* parentWrapper, std::wstring& value,
                                                        bool& isDefault) const {
    if (!parentWrapper || !parentWrapper->Memory()) return ZOError::not_found(name);
    return simple->FormatRange(wrapper->MemberOf(parentWrapper->Memory()), nullptr, SkipsDefaults_(), value, isDefault);
}

} // namespace zo::xml::impl
