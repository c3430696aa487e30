// The numbers by which records are known.
//
// A record is known by its group and its number within the group. A record inside a container record has a packed group
// word, which holds the container's group and number beside the inner group.
#pragma once

#include "support/export.h"

#include <cstdint>

/// One number of an identifier. Zero means none.
typedef std::uint32_t GID;

/// The identifier of a record. With a zero word it is empty: it names no record.
struct GGID {
    GID group = 0; ///< a group, or a packed container number
    GID id = 0;    ///< the record's number in it

    friend bool operator==(GGID const&, GGID const&) = default;
    /// By group, then by number.
    friend bool operator<(GGID const& a, GGID const& b) noexcept {
        return a.group != b.group ? a.group < b.group : a.id < b.id;
    }
};

namespace hzn::gid {

/// Whether both words are non-zero.
constexpr bool IsValid(GGID const& record) noexcept { return record.group != 0 && record.id != 0; }
/// Both words as one number, the group in the low half. This is the number that documents hold.
constexpr std::uint64_t Value(GGID const& record) noexcept { return std::uint64_t(record.id) << 32 | record.group; }
/// The inverse of `Value`.
constexpr GGID FromValue(std::uint64_t value) noexcept { return {GID(value & 0xFFFFFFFFu), GID(value >> 32)}; }

/// Whether the word is a group by itself: 4 to 125.
constexpr bool IsPlainGroup(GID group) noexcept { return group >= 4 && group <= 125; }
/// Whether the number is a packed container number.
ZO_API bool IsNestedContainerId(GID const& gid) noexcept;
/// Whether the identifier names an object inside a container.
ZO_API bool IsContainerObjectId(GGID const& record) noexcept;
/// Whether the group word tells everything: it is a plain group or a packed container number.
ZO_API bool IsFullyQualified(GGID const& record) noexcept;

/// The group `gid` (1 to 0xFFFF) inside the container `record` (plain group, number 1 to 511) as one number, whose low
/// 16 bits are `gid`. What does not fit gives 0, never the number of another record.
ZO_API GID PackedContainerGID(GGID const& record, GID const& gid) noexcept;

/// A reference to an object inside a container record: one of its groups, or whatever else the application numbers
/// there.
class ZO_API ContainerRef {
public:
    ContainerRef() noexcept = default;
    /// Explicit, so that no overload takes an identifier for a reference.
    explicit ContainerRef(GGID const& record, GID const& gid) noexcept : container(record), object(gid) {}

    /// The record that holds the object; empty where it is packed in the number.
    GGID const& Container() const noexcept { return container; }
    /// The object's number.
    GID Object() const noexcept { return object; }

    /// The identifier of the record around the object: the container if it is not empty, else what is packed in the
    /// object's number, else the empty identifier.
    GGID EnclosingRecordId() const noexcept;

    friend bool operator==(ContainerRef const&, ContainerRef const&) = default;

private:
    GGID container;
    GID object = 0;
};

} // namespace hzn::gid
