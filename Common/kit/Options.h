// What a line of a declaration can say beside its name and tag.
//
// Each set of options is an aggregate for designated initialisers, in the order in which the members stand here:
// `{.dflt = 30.0, .unit = Kind::Angle, .min = 0.0, .max = 60.0}`.
#pragma once

#include "Common/model/IZO.h"

#include "support/describe.h"
#include "support/units.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>

namespace zo::kit {

using hzn::units::Kind;

/// Where a declaration stands in the source.
///
/// The builtins stand for std::source_location, which one of our compilers lacks.
struct Place {
    char const* file = ""; ///< as the compiler names it
    unsigned line = 0;     ///< from 1, 0 for none

    /// The place of the call, as a default argument.
    static constexpr Place Here(char const* file = __builtin_FILE(), unsigned line = __builtin_LINE()) noexcept {
        return {file, line};
    }
};

/// What a document holds of a line.
enum class Persist {
    Always,       ///< written whatever it holds
    IfNotDefault, ///< left out at its default, which is what a load then leaves
    Never         ///< not in documents; a load still puts it to its default
};

/// The types of single values: the thirteen value types and enumerations.
template <class T>
concept Value = meta::ValueType<T> || meta::EnumType<T>;

/// Options of a single value.
template <Value T>
struct Options {
    /// What a reset stores. Without it: what a fresh structure holds there, if the structure is an aggregate; else T{}.
    std::optional<T> dflt = {};
    /// The value that stands for "none", whose text is empty; without it that of the type, if it has one. Of a text
    /// only the empty one can be named: others would take its place when a document is read.
    std::optional<T> missing = {};
    /// No value of this line stands for "none", so an empty text is refused.
    bool noMissing = false;
    /// What is measured.
    Kind::Type unit = Kind::None;
    /// The range of values that are accepted, its ends included. It refuses what is not finite, and the missing value
    /// unless the line names one.
    std::optional<T> min = {}, max = {};
    /// Asked after the range. It is also asked about the default when the line is registered, with a null node.
    std::function<htl::status(T const& value, IZO const* node)> valid = {};
    /// The data parameter of the value, `{}` for none.
    DataParamType param = {};
    /// The group of the records that this value refers to, 0 for none. The value knows its group and leads nowhere: a
    /// `Link` is a door to the record, too.
    std::uint32_t linkGroup = 0;
    /// Asked whether people see the node and may edit it; empty ones say yes.
    std::function<bool(IZO const&node)> visible = {}, editable = {};
    Persist persist = Persist::Always; ///< what documents hold of it
};

/// Options of a link. There is no other default than no record.
struct LinkOptions {
    /// Asked whether people see the node and may edit it; empty ones say yes.
    std::function<bool(IZO const&node)> visible = {}, editable = {};
    Persist persist = Persist::Always; ///< what documents hold of it
};

/// Options of an alias by name.
struct AliasOptions {
    /// The source is looked up once and held until the registry is told that memory moved
    /// (`ZORegistry::InvalidateMemory`, `Clear`, and each load). It keeps the array around it from being resized.
    bool kept = false;
};

/// Options of an array of single values; the first ones are those of each element.
template <Value T>
struct ValueArrayOptions {
    std::optional<T> dflt = {};    ///< T{} without it
    std::optional<T> missing = {}; ///< elements have none without it
    /// From here to `persist` as in `Options`, of each element.
    Kind::Type unit = Kind::None;
    std::optional<T> min = {}, max = {};
    std::function<htl::status(T const& value, IZO const* node)> valid = {};
    DataParamType param = {};
    std::uint32_t linkGroup = 0;
    /// Asked whether people see the node and may edit it; empty ones say yes.
    std::function<bool(IZO const&node)> visible = {}, editable = {};
    Persist persist = Persist::Always; ///< what documents hold of it
    /// An element of the document for each value, instead of one text with commas. So it is in any case where the text
    /// of a value may be empty or hold a comma.
    bool elements = false;
    /// The group of the records that the elements are, 0 for none. The first one is number 1. A group that stands by
    /// itself is 4 to 125, one inside other records 126 to 255.
    std::uint32_t recordGroup = 0;
};

/// Options of an array of records.
struct RecordArrayOptions {
    /// Asked whether people see the node and may edit it; empty ones say yes.
    std::function<bool(IZO const&node)> visible = {}, editable = {};
    Persist persist = Persist::Always; ///< what documents hold of it
    std::uint32_t recordGroup = 0;     ///< as for arrays of values
};

/// Options of an associative container of records or containers.
struct RecordMapOptions {
    std::wstring keyTag = L"Key";     ///< of the key in documents
    std::wstring valueTag = L"Value"; ///< of the value in documents
    /// Asked whether people see the node and may edit it; empty ones say yes.
    std::function<bool(IZO const&node)> visible = {}, editable = {};
    Persist persist = Persist::Always; ///< what documents hold of it
    std::uint32_t recordGroup = 0;     ///< of the elements by position, as for arrays: a key is no record's number
};

/// Options of an associative container of single values.
template <Value T>
struct ValueMapOptions {
    std::wstring keyTag = L"Key";     ///< of the key in documents
    std::wstring valueTag = L"Value"; ///< of the value in documents
    Options<T> value = {};            ///< of each value
    /// Asked whether people see the node and may edit it; empty ones say yes.
    std::function<bool(IZO const&node)> visible = {}, editable = {};
    Persist persist = Persist::Always; ///< what documents hold of it
    std::uint32_t recordGroup = 0;     ///< as for maps of records
};

/// Options of a structure within a structure.
struct StructOptions {
    Persist persist = Persist::Always; ///< a structure itself has no default: `IfNotDefault` is `Always`
};

/// Options of a type.
struct RecordOptions {
    /// The fields are attributes of the type's element, `<Point X="1" Y="2"/>`: single values and arrays in one text
    /// only.
    bool attributes = false;
    /// The group of the one record that a structure of this type is, number 1; 0 for none. For a type that stands in
    /// one place: the elements of an array get their group from the array.
    std::uint32_t recordGroup = 0;
    std::function<bool(IZO const&node)> visible = {}, editable = {};
};

/// Options of a top-level object.
struct BranchOptions {
    Persist persist = Persist::Always; ///< `IfNotDefault` for a single value only
    std::uint32_t recordGroup = 0;     ///< of the elements of a container, as for arrays
};

} // namespace zo::kit
