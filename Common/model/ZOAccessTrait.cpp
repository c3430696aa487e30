#include "Common/model/ZOAccessTrait.h"

#include "Common/model/NodeTables.h"

namespace zo {

IZOAccessValueTypeTrait::~IZOAccessValueTypeTrait() = default;

htl::status IZOAccessValueTypeTrait::ConvertUnitsInStatusToVisible(htl::status const& failure) { return failure; }

htl::status ZOAccessValueTypeTrait<bool>::CallValueTypeTrait(void* value) {
    result = *question && (*question)(value);
    return {};
}

htl::status ZOAccessIsValidTrait::CallValueTypeTrait(void* value) {
    if (ZOSet const* const owner = node->Owner(); owner && !impl::tables::ValidatesValues(*owner)) return {};
    meta::MetaTraitsAtomic const* const record = traits->AsAtomic();
    return record && record->isValid ? record->isValid(value, node, *traits) : htl::status();
}

} // namespace zo
