#include "Common/view/ZOViewAlias.h"

#include "Common/ZOUtil/NamePath.h"
#include "Common/registry/SetImpl.h"
#include "Common/registry/ZORegistry.h"

#include "support/text.h"

#include <utility>

namespace zo::view::impl {

ZOViewAlias::ZOViewAlias(std::string const& source, meta::MetaPersistTraits persist, ZOSet* owner)
    : ZOAlias(source, npos, owner), persist(std::move(persist)) {}

ZOViewAlias::ZOViewAlias(ZOViewAlias const& other) : ZOAlias(other), persist(other.persist) {}

ZOViewAlias::~ZOViewAlias() = default;

meta::MetaPersistTraits ZOViewAlias::GetPersistTraits() const { return persist; }

IZO* ZOViewAlias::Clone() { return new ZOViewAlias(*this); }

H ZOViewAlias::For(H const& child, IZO const& walked, std::wstring const& pattern) {
    std::string const source = child->Name();
    if (source.empty()) return {};
    std::wstring const tag = pattern + child->Tag();
    // What stands at the top has names and tags without the root's before them.
    bool const isTop = walked.RegID() == 0;
    // The child of an unnamed node has no name, either.
    bool const isNamed = isTop || walked.OwnerID() != npos;
    std::string const name = path::Join(isTop ? std::string() : walked.Name(), str::as_cstring(tag));

    ZOSet& set = child->Owner() ? *child->Owner() : *ZORegistry::Instance();
    if (SetEntry const* const entry = isNamed ? set.Impl()->entries.FirstVisible(name) : nullptr)
        if (auto* const known = dynamic_cast<ZOAlias*>(entry->node); known && known->SrcName() == source) {
            H const held(known);
            return known->Validate() ? held : H();
        }

    meta::MetaPersistTraits persist;
    persist.TagName = path::Join(isTop ? std::wstring() : walked.TagName(FullTagType), tag);
    persist.Tag = tag;
    htl::handle<ZOViewAlias> const alias(new ZOViewAlias(source, std::move(persist), &set));
    if (isNamed && set.InsertTemporary(name, alias).IsError()) return {};
    return alias->Validate() ? H(alias) : H();
}

} // namespace zo::view::impl
