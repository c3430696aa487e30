#include "support/gid.h"

namespace hzn::gid {
namespace {

// A packed number, from the high end: 7 bits of the container's group, 9 of its number, 16 of the inner number. Plain
// groups fit into 7 bits, so the group part tells a packed number from a plain one, whose group part is 0.
constexpr int groupShift = 25;
constexpr int idShift = 16;
constexpr GID idMask = 0x1FF;
constexpr GID innerMask = 0xFFFF;

} // namespace

bool IsNestedContainerId(GID const& gid) noexcept { return IsPlainGroup(gid >> groupShift); }

bool IsContainerObjectId(GGID const& record) noexcept { return IsNestedContainerId(record.group); }

bool IsFullyQualified(GGID const& record) noexcept {
    return IsPlainGroup(record.group) || IsNestedContainerId(record.group);
}

GID PackedContainerGID(GGID const& record, GID const& gid) noexcept {
    bool const fits =
        IsPlainGroup(record.group) && record.id != 0 && record.id <= idMask && gid != 0 && gid <= innerMask;
    return fits ? record.group << groupShift | record.id << idShift | gid : 0;
}

GGID ContainerRef::EnclosingRecordId() const noexcept {
    if (IsValid(container)) return container;
    GGID const packed{object >> groupShift, object >> idShift & idMask};
    return IsNestedContainerId(object) && packed.id != 0 ? packed : GGID{};
}

} // namespace hzn::gid
