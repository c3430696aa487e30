#include "Common/redirect/ZOAliasSet.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"

#include "support/text.h"

namespace zo {

namespace {

constexpr std::uint32_t noIndex = 0xFFFFFFFFu;

} // namespace

ZOAliasSet::ZOAliasSet(std::wstring const& tag, Pairs const& fields, std::size_t regID, ZOSet* owner)
    : IZO(regID, owner, npos), pairs(fields), sources(fields.begin(), fields.end()) {
    persist.Tag = tag;
}
ZOAliasSet::~ZOAliasSet() = default;

meta::MetaDataTraits ZOAliasSet::GetDataTraits() const {
    static meta::MetaTraitsStructure const record = [] {
        meta::MetaTraitsStructure structure;
        structure.kind = meta::Kind::Structure;
        return structure;
    }();
    return meta::MetaDataTraits(record);
}

meta::MetaPersistTraits ZOAliasSet::GetPersistTraits() const { return persist; }

IZO* ZOAliasSet::Clone() { return new ZOAliasSet(persist.Tag, pairs, RegID(), Owner()); }

ZOFwrdIterator ZOAliasSet::begin() {
    if (pairs.empty()) return end();
    ZOFwrdIterator first;
    first.parent = H(this);
    first.current = Find(first.parent, pairs.front().first);
    return first;
}

void ZOAliasSet::GetNextSubZO(ZOFwrdIterator& position) {
    ++position.index;
    position.current.release();
    if (position.index < pairs.size())
        position.current = Find(H(this), pairs[position.index].first);
    else
        position = end();
}

H ZOAliasSet::GetSubZO(std::string const& name) {
    auto const field = sources.find(name);
    return field == sources.end() ? H() : impl::MakeAlias(field->second, Owner());
}

ZOAssocByIDAlias::~ZOAssocByIDAlias() = default;

H ZOAssocByIDAlias::GetSubZO(std::string const& name) {
    bool isKey = false;
    impl::AssocKey const key = impl::ParseAssocKey(name, isKey);
    if (!isKey) return ZOAlias::GetSubZO(name);
    if (key.kind != impl::AssocKey::Integer) return {};
    std::uint32_t const index = IndexOfKey(key.integer);
    return index == noIndex ? H() : ZOAlias::GetSubZO(std::to_string(index));
}

H ZOSet::AssociateAlias(std::string const& name, std::string const& from) {
    if (!Find(from)) return {};
    H const alias(new ZOAlias(from, IZO::npos, nullptr));
    // Only one thing can go wrong, and the empty handle says it.
    return Insert(name, alias).IsError() ? H() : alias;
}

H ZOSet::AssociateAlias(std::string const& name, std::vector<std::pair<std::string, std::string>> const& pairs) {
    H const fields(new ZOAliasSet(str::as_wstring(name), pairs, IZO::npos, nullptr));
    return Insert(name, fields).IsError() ? H() : fields;
}

} // namespace zo
