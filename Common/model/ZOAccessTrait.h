// Trait objects: one operation carried to where a value is, by callers that don't know its type.
#pragma once

#include "Common/model/IZO.h"

#include <functional>

namespace zo {

/// A small stack object that `IZO`'s value classes call with the address of their value.
class ZO_API IZOAccessValueTypeTrait {
public:
    virtual ~IZOAccessValueTypeTrait();
    /// Acts on `value`, an object of the node's value type. A change of it is written back.
    virtual htl::status CallValueTypeTrait(void* value) = 0;
    /// Rewrites the numbers of a failure into the node's visible units. The base passes the status on unchanged.
    virtual htl::status ConvertUnitsInStatusToVisible(htl::status const& failure);
};

/// Asks a question about a value: `ZOAccessValueTypeTrait<bool>` holds a function from value to bool and its answer.
template <class R>
class ZOAccessValueTypeTrait;

/// The question and its answer.
template <>
class ZO_API ZOAccessValueTypeTrait<bool> : public IZOAccessValueTypeTrait {
public:
    /// `question` is not copied and must live as long as the trait. The answer is false until the trait was called.
    explicit ZOAccessValueTypeTrait(std::function<bool(void const*)> const& question) : question(&question) {}
    htl::status CallValueTypeTrait(void* value) override;
    /// The answer; false until the trait was called.
    bool Result() const noexcept { return result; }

private:
    std::function<bool(void const*)> const* question;
    bool result = false;
};

/// Checks a value by its type's rule, unless the node's owner has its validation switched off. A node without an owner
/// is always checked.
class ZO_API ZOAccessIsValidTrait : public IZOAccessValueTypeTrait, private htl::not_copyable {
public:
    /// Both must outlive the trait; `traits` is of an atomic type.
    ZOAccessIsValidTrait(meta::MetaDataTraits const* traits, IZO const* node) : traits(traits), node(node) {}
    htl::status CallValueTypeTrait(void* value) override;

private:
    meta::MetaDataTraits const* traits;
    IZO const* node;
};

} // namespace zo
