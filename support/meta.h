// Descriptors: what the system knows of a client's value, array or structure type.
//
// A descriptor is a record of functions over client memory, so that one body of code serves every type. Records are
// made once, by `support/describe.h` or by hand, and shared by every node of their type.
#pragma once

#include "support/export.h"
#include "support/int64.h"
#include "support/status.h"
#include "support/units.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <typeinfo>
#include <vector>

namespace zo {
class IZO;
}

/// The application's data parameters. The library only carries the values: the application declares the words with
/// one definition of the enumeration. `DataParamType{}` means none.
enum class DataParamType : std::int32_t;

namespace meta {

class MetaDataTraits;

/// What a descriptor describes. The numbers are fixed.
enum class Kind : std::uint32_t {
    Atomic = 0,
    Array = 1,
    Structure = 2,
    Undefined = 0xFFFFFFFFu ///< a record that nobody filled
};

/// Rule functions for types that need none of their own.
struct ZO_API MetaTraitsTypes {
    /// Always true.
    static bool RuleTrue(void const* const node);
};

/// Marks a type with no missing value.
struct ZO_API MetaIsMissingValueNotSupported {
    /// False.
    static bool IsMissing(void const* = nullptr);
};

/// Marks a type with no default.
struct ZO_API MetaIsDefaultNever {
    /// False.
    static bool IsDefault(void const* = nullptr);
};

/// What every record begins with. The argument of a rule is the node, as `CallRule` hands it over.
struct MetaTraits {
    Kind kind = Kind::Undefined;                                                 ///< which record it is
    std::size_t byteSize = 0;                                                    ///< of the client's type
    std::function<bool(void const* node)> visible = &MetaTraitsTypes::RuleTrue;  ///< whether people see it
    std::function<bool(void const* node)> editable = &MetaTraitsTypes::RuleTrue; ///< whether people may edit it
    std::type_info const* type = &typeid(void); ///< `typeid(void)` where there is no type
};

/// Asks a rule about a node. An empty rule says true.
ZO_API bool CallRule(std::function<bool(void const*)> const& rule, zo::IZO const* node);

/// A value type. `value` is always an object of the row's type T (int for an enumeration), `memory` an object of the
/// client's type, which differs from T for enumerations that are stored in fewer bytes.
/// A record whose `type` is none of the value types has a number for T: int, as enumerations have.
///
/// Outputs stay as they were on failure, unless a function says otherwise. `format` is 0 for plain text, 1 abbreviated,
/// 2 pretty; `node` may be null. Functions marked (null) may be empty.
/// Formats 1 and 2 are for people: numbers have the decimal point of `str::locale::native()` and the visible units of
/// `node`. In these formats `fromWide` is given the present value, and leaves it as it is where the text is what is
/// shown of it; so the digits that are not shown survive.
struct MetaTraitsAtomic : MetaTraits {
    std::function<bool(void const* value)> isDefault;          ///< equal to the default
    std::function<bool(void const* value)> isMissing;          ///< equal to the missing value
    std::function<void(void const* value, void* out)> convert; ///< (null); accepts a null `out`
    /// The check of a value.
    std::function<htl::status(void const* value, zo::IZO const* node, MetaDataTraits const& traits)> isValid;
    /// Stores the default.
    std::function<void(void* value)> setDefault;
    /// From client memory and back.
    std::function<void(void const* memory, void* value)> read;
    std::function<void(void* memory, void const* value)> write;
    /// Conversions from the value.
    std::function<htl::status(void const* value, std::wstring& text, int format, zo::IZO const* node)> toWide;
    std::function<htl::status(void const* value, bool& out)> toBool;
    std::function<htl::status(void const* value, htl::Int64& out)> toInt64;
    std::function<htl::status(void const* value, double& out)> toDouble;
    /// Conversions to the value.
    std::function<htl::status(std::wstring const& text, void* value, int format, zo::IZO const* node)> fromWide;
    std::function<htl::status(bool const& in, void* value)> fromBool;
    std::function<htl::status(htl::Int64 const& in, void* value)> fromInt64;
    std::function<htl::status(double const& in, void* value)> fromDouble;
    std::uint32_t linkGroup = 0; ///< group of the records that a link field refers to, 0 for no link
    /// (null) The unit kind; `value` may be null when a registered node is asked for its kind.
    std::function<hzn::units::Kind::Type(void const* value, zo::IZO const* node)> unitKind;
    std::function<DataParamType(zo::IZO const* node)> dataParamType; ///< (null)
    /// (null) The values that the type takes: `which` 0 as `fromWide` takes them, 1 abbreviated, 2 pretty.
    std::function<void(std::vector<std::wstring>& out, int which)> valueList;
};

/// A container. Functions never throw; `memory` is the container object.
struct MetaTraitsArray : MetaTraits {
    bool fixedLength = false;                                        ///< the length can't change
    std::size_t (*length)(void const* memory) = nullptr;             ///< null memory: the fixed length, 0 if resizable
    bool (*resize)(void* memory, std::size_t length) = nullptr;      ///< (null) false: it can't
    void* (*elementAt)(void* memory, std::size_t index) = nullptr;   ///< index below the length
    void* unused = nullptr;                                          ///< keeps the layout
    std::uint32_t (*addNew)(void* memory) = nullptr;                 ///< (null) 0xFFFFFFFF: it can't
    void (*removeAt)(void* memory, std::size_t index) = nullptr;     ///< (null)
    bool (*isHole)(void const* memory, std::size_t index) = nullptr; ///< (null) no element here, walks skip it
    bool contiguous = false;                                         ///< simple values `byteSize` of the element apart
    MetaDataTraits (*elementTraits)() = nullptr;                     ///< a function, so that types may nest
    std::uint32_t (*recordGroup)(void const* arrayMemory) = nullptr; ///< (null) group of the records held
    bool elementsMove = false; ///< adding or removing moves elements: refused while views of elements live
};

/// One member of a described structure.
struct MetaMember {
    std::size_t offset;         ///< in bytes, in the structure
    MetaDataTraits (*traits)(); ///< a function, so that types may nest
};

/// A structure. Without members a traversal walks nothing.
struct MetaTraitsStructure : MetaTraits {
    std::span<MetaMember const> members;                          ///< those that a traversal reaches
    std::function<std::uint32_t(void const* memory)> recordGroup; ///< (null) group of the record
};

/// What a traversal does with each atomic part.
struct TravAction {
    std::uint32_t operation; ///< what is done
    std::uint32_t flags;     ///< of the operation
};
/// Sets every atomic part to its default.
inline constexpr TravAction resetToDefault{32, 0};

/// The description of a type: a descriptor record, kept alive by a holder if it was made at run time.
///
/// A small value type, copied freely. Only the holder counts atomically; copying traits with an empty holder touches no
/// counter. Records are read-only once traits refer to them, so traits may be used from several threads.
class ZO_API MetaDataTraits {
public:
    MetaDataTraits() noexcept = default;
    /// For records that live as long as the process.
    explicit MetaDataTraits(MetaTraits const& record) noexcept : descriptor(&record) {}
    /// For records made at run time; shares their ownership.
    explicit MetaDataTraits(std::shared_ptr<MetaTraits const> record) noexcept
        : descriptor(record.get()), holder(std::move(record)) {}

    /// The record, null when there are no traits.
    MetaTraits const* Descriptor() const noexcept { return descriptor; }
    explicit operator bool() const noexcept { return descriptor != nullptr; }
    /// The record as its kind, null for another kind and where there are no traits.
    MetaTraitsAtomic const* AsAtomic() const noexcept {
        return descriptor && descriptor->kind == Kind::Atomic ? static_cast<MetaTraitsAtomic const*>(descriptor)
                                                              : nullptr;
    }
    MetaTraitsArray const* AsArray() const noexcept {
        return descriptor && descriptor->kind == Kind::Array ? static_cast<MetaTraitsArray const*>(descriptor)
                                                             : nullptr;
    }
    MetaTraitsStructure const* AsStructure() const noexcept {
        return descriptor && descriptor->kind == Kind::Structure ? static_cast<MetaTraitsStructure const*>(descriptor)
                                                                 : nullptr;
    }

    /// The type's name, "void" where there is no type.
    std::string TypeName() const;

    /// Walks a described object in client memory, members in order, arrays by index, and performs the action on each
    /// atomic part. Holes, null memory, missing traits and unknown operations do nothing.
    void DepthFirstTraversal_(TravAction const& action, void* const memory, void* context) const;

private:
    MetaTraits const* descriptor = nullptr;
    std::shared_ptr<void const> holder;
};

/// How a node persists.
struct ZO_API MetaPersistTraits {
    /// What documents hold.
    enum PersistType : std::uint32_t {
        No = 0,          ///< not in the document
        Always = 1,      ///< always written
        IfNotDefined = 2 ///< a value at its default is left out
    };

    MetaPersistTraits() = default;
    /// `tagName` is the tag path; the tag is taken from it.
    MetaPersistTraits(std::uint32_t type, std::wstring tagName, bool asValue = false, bool allChildrenValue = false);

    /// The text behind the last "." of a tag path, a bracket suffix included; the whole text if there is none.
    static std::wstring TagFromTagName(std::wstring tagName);

    std::uint32_t Type = No;         ///< a `PersistType`
    std::wstring TagName;            ///< path of the node's tag
    std::wstring Tag;                ///< its last component
    bool IsPersistedAsValue = false; ///< the element's text holds the value
    bool IsAllChildrenValue = false; ///< the children are attributes of the element
};

/// Turns on extra checks of registered types; off at first. Set before registration starts.
extern ZO_API bool bValidateRegistry;

} // namespace meta
