// Nodes for branches without a client object: parents that nobody registered, and branches computed from indices.
#pragma once

#include "Common/model/ZOArray.h"

#include <array>
#include <cstddef>
#include <string>

namespace zo {

/// The integers that a computed branch carries down: which elements the walk came through.
///
/// `values[0]` to `values[count - 1]` are inherited from the parent; `values[count]` is this level's own. Elements
/// count from 1.
class ZO_API PlaceholderContext {
public:
    virtual ~PlaceholderContext();
    /// Called last on every node that is handed out below a placeholder, when its integers are in place.
    virtual void InitializeContext();

    unsigned int count = 0; ///< of those inherited
    int values[7] = {};     ///< elements count from 1

protected:
    PlaceholderContext() = default;
    /// `count` is at most 6: asserted in debug builds, cut in others.
    PlaceholderContext(unsigned int count, int const (&inherited)[6], int own);
    PlaceholderContext(PlaceholderContext const&) = default;
    PlaceholderContext& operator=(PlaceholderContext const&) = default;
};

/// A prototype of a computed branch with named children. Client classes derive from it and override `Clone`. A child
/// value whose own store has an object is bound to that object.
class ZO_API ZOPlaceholder : public IZO, public PlaceholderContext {
public:
    /// The integers are as in `PlaceholderContext`.
    ZOPlaceholder(std::size_t regID, ZOSet* owner, unsigned int count, int const (&values)[6], int const& own);

    /// A static structure descriptor.
    meta::MetaDataTraits GetDataTraits() const override;
    IZO* Clone() override;

protected:
    ~ZOPlaceholder() override;
    H GetSubZO(std::string const& name) override;
};

/// A prototype of a computed array. Its length is what the function says; it can't be changed.
class ZO_API ZOPlaceholderArray : public ZOArray, public PlaceholderContext {
public:
    /// Says the length of an array.
    using LengthFunction = std::size_t (*)(ZOPlaceholderArray const*);
    /// `length` must not be null. The integers are as in `PlaceholderContext`.
    ZOPlaceholderArray(std::size_t regID, ZOSet* owner, LengthFunction length, unsigned int count,
                       int const (&values)[6], int const& own);

    /// A static array descriptor.
    meta::MetaDataTraits GetDataTraits() const override;
    std::size_t Length() const override;
    IZO* Clone() override;

    using ZOArray::GetSubZO;
    H GetSubZO(std::size_t const& index) override;
    ZOFwrdIterator AddNew() override;
    htl::status RemoveAt(std::size_t const& index) override;

protected:
    ~ZOPlaceholderArray() override;
    htl::status Resize(std::size_t const& length) override;

private:
    LengthFunction length;
};

/// Stands in for a parent that nobody registered. It has no data; its children decide what is saved.
class ZO_API ZOParentPlaceholder : public IZO {
public:
    /// Of the row `regID`.
    ZOParentPlaceholder(std::size_t regID, ZOSet* owner);

    /// Clears every child whose store is available.
    void Clear() override;
    IZO* Clone() override;

    /// The descriptor that its row is registered with: a structure without a type.
    static meta::MetaDataTraits const& Traits();

protected:
    ~ZOParentPlaceholder() override;
    H GetSubZO(std::string const& name) override;
};

} // namespace zo
