// Structures made of aliases, and aliases to arrays that understand keys.
#pragma once

#include "Common/redirect/ZOAlias.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zo {

/// A structure with no data of its own, whose fields are aliases to nodes elsewhere.
class ZO_API ZOAliasSet : public IZO {
public:
    /// Sub-name and source name of each field, in the order of walks.
    using Pairs = std::vector<std::pair<std::string, std::string>>;

    /// Of a sub-name that comes twice the first source counts; a walk visits it twice.
    ZOAliasSet(std::wstring const& tag, Pairs const& pairs, std::size_t regID, ZOSet* owner);

    /// A static structure descriptor.
    meta::MetaDataTraits GetDataTraits() const override;
    /// The given tag, not persisted.
    meta::MetaPersistTraits GetPersistTraits() const override;
    IZO* Clone() override;
    /// A field whose source is gone ends the walk.
    ZOFwrdIterator begin() override;

protected:
    ~ZOAliasSet() override;
    /// An alias to the field's source. Empty for a sub-name that isn't there, and for a source that is gone.
    H GetSubZO(std::string const& name) override;
    void GetNextSubZO(ZOFwrdIterator& position) override;

private:
    Pairs pairs;
    std::map<std::string, std::string> sources;
    meta::MetaPersistTraits persist;
};

/// An alias to an array whose elements also have numbers: "At(12)" is the element with the number 12, "[3]" stays the
/// element at index 3.
class ZO_API ZOAssocByIDAlias : public ZOAlias {
public:
    using ZOAlias::ZOAlias;

    /// The index of a key, 0xFFFFFFFF for none.
    virtual std::uint32_t IndexOfKey(std::uint32_t key) const = 0;

protected:
    ~ZOAssocByIDAlias() override;
    /// A text key, one out of 32 bits and one without an element give an empty handle.
    H GetSubZO(std::string const& name) override;
};

} // namespace zo
