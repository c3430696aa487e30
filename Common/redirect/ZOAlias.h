// Aliases: nodes that stand for another node, their source, which is found by name or tag.
//
// Value, walk and type operations go to the source. The classes differ in how the source is found and in how long the
// answer is kept:
//
//   ZOAlias             by full name; in the current registry looked up at each use, elsewhere kept
//   ZOAliasAbsolute     by full name, kept
//   ZOAliasAbsoluteSlow by tag path from the top, kept
//   ZOAliasRelative     by tag path from the alias itself, kept
//
// A kept source is held alive, so it also keeps the array that it is an element of from being resized, and it must be
// dropped before the memory that it points into goes away: `ZORegistry::InvalidateMemory("")` reaches every registered
// alias of the top level and every inserted one. Below other nodes each lookup hands out an alias of its own, which
// keeps its source as long as it lives.
#pragma once

#include "Common/registry/ZORedirect.h"

#include <string>

namespace zo {

/// What all aliases share: they pass on what they are asked.
///
/// An alias to an alias goes to the last source, over at most 1,000 steps. Without a source, or in a circle, an alias
/// is undefined and has no children, its length is 0, its traits are empty, `Verify` succeeds, `Clear` does nothing,
/// and writes, reads, `Assign` and a resize fail with `not_found` and the redirect name.
class ZO_API ZOAliasBase : public IZO, public ZORedirect {
public:
    /// As `IZO`, without an owner id.
    ZOAliasBase(std::size_t regID, ZOSet* owner);
    /// The copy has the same row and owner, no owner id, and keeps nothing.
    ZOAliasBase(ZOAliasBase const& other);
    ZOAliasBase& operator=(ZOAliasBase const&) = delete;

    using IZO::Get;
    using IZO::Set;

    bool IsAlias() const noexcept override;
    /// Of the source.
    meta::MetaDataTraits GetDataTraits() const override;
    /// True without a source. Otherwise told by the source's value and type, even where the source has an answer of its
    /// own.
    bool IsUndefined() const override;
    std::size_t Length() const override;
    htl::status Verify() const override;
    /// The alias's own row, if it was registered with a tag; otherwise the source's tag and tag name, not persisted.
    meta::MetaPersistTraits GetPersistTraits() const override;
    void Clear() override;
    htl::status Set(double const& value) override;
    htl::status Set(__int64 const& value) override;
    htl::status Set(bool const& value) override;
    htl::status Set(std::wstring const& value) override;
    htl::status Get(double& value) override;
    htl::status Get(__int64& value) override;
    htl::status Get(bool& value) override;
    htl::status Get(std::wstring& value) override;
    /// A walk over the source's children, which goes on at the source; at the end without one.
    ZOFwrdIterator begin() override;
    htl::status Assign(H const& source) override;

    /// The source as it is found now; a derived class keeps it.
    virtual H WriteRedirect();
    /// Forgets what was kept, looks for the source and says whether there is one.
    bool Validate();

protected:
    ~ZOAliasBase() override;
    /// The source's child, by way of its owner. Empty for an empty name, and where the source has no owner.
    H GetSubZO(std::string const& name) override;
    htl::status CallValueTypeTrait(IZOAccessValueTypeTrait& trait) override;
    htl::status Resize(std::size_t const& length) override;
    void GetNextSubZO(ZOFwrdIterator& position) override;

    /// The last source behind this alias and those that it leads to, filling what they keep; empty in a circle. An
    /// alias of a client's class, which may have answers of its own, counts as a last source.
    H Target();
    /// The same without changing what they keep.
    H Target() const;

    /// What this alias keeps, possibly empty; null for a class that keeps nothing.
    virtual H* Kept() noexcept;
    /// Keeps `found` in `kept` and returns it. It is not kept where it keeps this alias, directly or through others:
    /// none of them would ever be freed. Nor is it at the end of a chain of more than 1,000.
    H Keep(H& kept, H found);
    /// Empties `kept`. Aliases that end with it end one by one, so that a chain of any length needs no stack.
    static void Drop(H& kept) noexcept;

private:
    /// Walks along aliases that pass on all that they are asked.
    template <class Alias, class Next>
    static H Follow_(Alias& from, Next next);
};

/// An alias by full name.
class ZO_API ZOAlias : public ZOAliasBase {
public:
    /// `source` is the full name, which need not lead anywhere.
    ZOAlias(std::string const& source, std::size_t regID, ZOSet* owner);
    ZOAlias(ZOAlias const& other);

    /// The full name of the source.
    std::string const& SrcName() const noexcept { return source; }
    std::string RedirectName() const override;
    H Redirect() const override;
    /// In the current registry the source is never kept, so that a replaced one is seen at the next use.
    H WriteRedirect() override;
    IZO* Clone() override;

protected:
    ~ZOAlias() override;
    void OnInvalidateMemory() override;
    H* Kept() noexcept override;

    std::string source; ///< its full name
    H kept;             ///< the source, from its first use; empty for none
};

/// An alias by full name that looks its source up once.
class ZO_API ZOAliasAbsolute : public ZOAlias {
public:
    using ZOAlias::ZOAlias;
    H WriteRedirect() override;
    IZO* Clone() override;

protected:
    ~ZOAliasAbsolute() override;
};

/// What aliases by tag share.
class ZO_API ZOAliasByTag : public ZOAliasBase {
public:
    /// `source` is the tag path, which need not lead anywhere.
    ZOAliasByTag(std::wstring const& source, std::size_t regID, ZOSet* owner);
    ZOAliasByTag(ZOAliasByTag const& other);

    /// The tag path of the source.
    std::wstring const& SrcTag() const noexcept { return source; }
    /// The alias's own name: its source has none that doesn't change.
    std::string RedirectName() const override;
    H Redirect() const override;
    H WriteRedirect() override;

protected:
    ~ZOAliasByTag() override;
    void OnInvalidateMemory() override;
    H* Kept() noexcept override;
    /// The node that the source tag leads to now; not asked for an empty one.
    virtual H Lookup() const = 0;

    std::wstring source; ///< its tag path
    H kept;              ///< the source, from its first use; empty for none
};

/// An alias by tag path from the top, with indices from 1.
class ZO_API ZOAliasAbsoluteSlow : public ZOAliasByTag {
public:
    using ZOAliasByTag::ZOAliasByTag;
    IZO* Clone() override;

protected:
    ~ZOAliasAbsoluteSlow() override;
    H Lookup() const override;
};

/// An alias by tag path from itself: "@Parent.Cohesion". An alias without a name finds nothing above it.
class ZO_API ZOAliasRelative : public ZOAliasByTag {
public:
    using ZOAliasByTag::ZOAliasByTag;
    IZO* Clone() override;

protected:
    ~ZOAliasRelative() override;
    H Lookup() const override;
};

} // namespace zo
