#include "Common/redirect/Placeholders.h"

#include "Common/redirect/ParentChain.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZORegistry.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace zo {

namespace {

constexpr unsigned mostInherited = 6;

// The integers in the form that constructors take them.
struct Inherited {
    explicit Inherited(PlaceholderContext const& from) { std::copy_n(from.values, mostInherited, values); }
    int values[mostInherited];
};

// Hands the parent's integers down to a fresh clone. Last of all, the clone learns that they are in place.
H HandDown(PlaceholderContext const& parent, H clone, int const* own) {
    if (auto* const context = dynamic_cast<PlaceholderContext*>(clone.get())) {
        unsigned const inherited = std::min(context->count, mostInherited);
        std::copy_n(parent.values, inherited, context->values);
        if (own) context->values[inherited] = *own;
        context->InitializeContext();
    }
    return clone;
}

ZOSet& OwnerOf(IZO const& node) { return node.Owner() ? *node.Owner() : *ZORegistry::Instance(); }

} // namespace

PlaceholderContext::PlaceholderContext(unsigned int inheritedCount, int const (&inherited)[6], int own)
    : count(std::min(inheritedCount, mostInherited)) {
    assert(inheritedCount <= mostInherited);
    std::copy_n(inherited, count, values);
    values[count] = own;
}

PlaceholderContext::~PlaceholderContext() = default;
void PlaceholderContext::InitializeContext() {}

ZOPlaceholder::ZOPlaceholder(std::size_t regID, ZOSet* owner, unsigned int count, int const (&values)[6],
                             int const& own)
    : IZO(regID, owner, npos), PlaceholderContext(count, values, own) {}
ZOPlaceholder::~ZOPlaceholder() = default;

meta::MetaDataTraits ZOPlaceholder::GetDataTraits() const {
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure;
        return structure;
    }();
    return meta::MetaDataTraits(record);
}

IZO* ZOPlaceholder::Clone() {
    return new ZOPlaceholder(RegID(), Owner(), count, Inherited(*this).values, values[count]);
}

H ZOPlaceholder::GetSubZO(std::string const& name) {
    ZORegistryImpl const& tables = impl::Current();
    std::size_t const child = tables.HasRow(RegID()) ? tables.ChildByName(RegID(), name) : npos;
    if (child == npos) return {};
    // A value with a store of its own is bound to it here, too: a detached one would swallow what is written.
    if (tables.wrappers[child]) return HandDown(*this, impl::LiveChild(*this, child), nullptr);
    return HandDown(*this, H(tables.nodes[child]->Clone()), nullptr);
}

ZOPlaceholderArray::ZOPlaceholderArray(std::size_t regID, ZOSet* owner, LengthFunction lengthOf, unsigned int count,
                                       int const (&values)[6], int const& own)
    : ZOArray(regID, owner), PlaceholderContext(count, values, own), length(lengthOf) {
    assert(lengthOf);
}
ZOPlaceholderArray::~ZOPlaceholderArray() = default;

meta::MetaDataTraits ZOPlaceholderArray::GetDataTraits() const {
    static meta::MetaTraitsArray const record = [] {
        meta::MetaTraitsArray array;
        array.kind = meta::Kind::Array;
        return array;
    }();
    return meta::MetaDataTraits(record);
}

std::size_t ZOPlaceholderArray::Length() const { return length(this); }

IZO* ZOPlaceholderArray::Clone() {
    return new ZOPlaceholderArray(RegID(), Owner(), length, count, Inherited(*this).values, values[count]);
}

H ZOPlaceholderArray::GetSubZO(std::size_t const& index) {
    ZORegistryImpl const& tables = impl::Current();
    if (!tables.HasRow(RegID()) || index >= Length()) return {};
    std::size_t element = tables.ElementTemplate(RegID());
    if (element == npos) element = tables.firstChildren[RegID()];
    if (element == npos) return {};
    int const own = static_cast<int>(index + 1);
    return HandDown(*this, H(tables.nodes[element]->Clone()), &own);
}

ZOFwrdIterator ZOPlaceholderArray::AddNew() { return end(); }
htl::status ZOPlaceholderArray::RemoveAt(std::size_t const&) { return ZOError::not_supported(""); }
htl::status ZOPlaceholderArray::Resize(std::size_t const&) { return ZOError::not_supported(""); }

ZOParentPlaceholder::ZOParentPlaceholder(std::size_t regID, ZOSet* owner) : IZO(regID, owner, npos) {}
ZOParentPlaceholder::~ZOParentPlaceholder() = default;

meta::MetaDataTraits const& ZOParentPlaceholder::Traits() {
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure;
        return structure;
    }();
    static meta::MetaDataTraits const traits(record);
    return traits;
}

void ZOParentPlaceholder::Clear() {
    ZORegistryImpl const& tables = impl::Current();
    if (!tables.HasRow(RegID())) return;
    ZOSet& set = OwnerOf(*this);
    for (std::size_t child = tables.firstChildren[RegID()]; child != npos; child = tables.nextSiblings[child])
        if (tables.stores[child]->IsAvailable()) {
            H const node = set.Find(tables.names[child]);
            // Another made parent that answers to the name may be this one, or one above.
            if (node && (node->RegID() == child || !impl::IsParentPlaceholder(*node))) node->Clear();
        }
}

IZO* ZOParentPlaceholder::Clone() { return new ZOParentPlaceholder(RegID(), Owner()); }

H ZOParentPlaceholder::GetSubZO(std::string const& name) {
    ZORegistryImpl const& tables = impl::Current();
    std::size_t const self = RegID();
    std::size_t own = npos;
    if (tables.HasRow(self)) {
        own = tables.ChildByName(self, name);
        // A child with a deeper tag hangs below a made parent of its own, yet answers to its name here.
        // Only one level: what is deeper has to be reached through the nodes between, which know its memory.
        if (own == npos && name.find_first_of(".[]") == name.npos)
            own = tables.RowOfName(path::Join(std::string_view(tables.names[self]), name));
    }
    // A namesake elsewhere must not answer for the own child: a save and load would put one's value into the other.
    std::size_t const namesake = tables.RowOfName(name);
    bool const ask = !(own != npos && namesake != npos && tables.parents[namesake] != self);
    if (ask) {
        if (H found = OwnerOf(*this).Find(name)) {
            std::size_t const row = found->RegID();
            bool const isChild = tables.HasRow(row) && tables.parents[row] == self;
            if (isChild || (own == npos && row != self)) return found;
        }
    }
    return own == npos ? H() : impl::LiveChild(*this, own);
}

} // namespace zo
