// Kinds of quantities, unit sets, and the conversion between them.
//
// Values are stored in one consistent unit set and shown in another. A set names a unit of length, one of force and one
// of time; the unit of every other kind follows from these three.
#pragma once

#include "support/export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace hzn::units {

/// What a number measures.
struct Kind {
    /// The numbers are part of the module interface and never change meaning.
    enum Type : std::int32_t {
        None = 0,              ///< a bare number, never converted
        Length,                ///< m, ft
        Area,                  ///< m², ft²
        Volume,                ///< m³, ft³
        Angle,                 ///< degrees in every set
        Time,                  ///< seconds in every set
        Mass,                  ///< tonnes, slugs: what the unit of force accelerates by one unit of length per s²
        Force,                 ///< kN, lbf
        Stress,                ///< kPa, psf
        UnitWeight,            ///< kN/m³, pcf
        HydraulicConductivity, ///< m/s, ft/s
        Flux,                  ///< volume that flows per time: m³/s, ft³/s
        Temperature,           ///< °C, °F; follows the unit of length
        Energy,                ///< kJ, ft·lbf
    };
};

} // namespace hzn::units

namespace math {

/// The systems of units.
struct unitsystem {
    /// A whole system of units. The value is also the unit number of each word of the system's `UnitSet`.
    enum Type : std::int32_t { None = 0, Metric = 1, Imperial = 2 };
};

/// The units of length, force and time, in this order, by unit number: 1 is m, kN, s; 2 is ft, lbf, s.
///
/// All zero stands for no set. The words need not agree: {1, 2, 1} measures in metres and pounds-force.
struct UnitSet {
    std::uint32_t w[3]{}; ///< length, force, time

    friend bool operator==(UnitSet const&, UnitSet const&) = default;
    /// Whether it stands for no set.
    bool IsZero() const noexcept { return (w[0] | w[1] | w[2]) == 0; }
};

} // namespace math

namespace hzn::units {

/// The set of a unit system. None, or a number that is no system, gives the zero set.
ZO_API math::UnitSet SystemUnitSet(math::unitsystem::Type system) noexcept;

/// The unit's text, such as "kPa" or "pcf". Where the set mixes systems the text is put together from the units of
/// length, force and time ("kN/ft²"). Kind None, the zero set, and units without a number of their own give "".
ZO_API std::wstring GetEngUnitValueString(Kind::Type kind, math::UnitSet const& set);

/// The kind's name, such as "UnitWeight"; "None" for None and "" for a number that is no kind.
ZO_API std::wstring KindName(Kind::Type kind);
/// The kind of a name, letter for letter. False, with `kind` as it was, for a name that is no kind's. The inverse of
/// the built-in names; a replacement of `KindName` takes no part.
ZO_API bool KindFromName(std::wstring_view name, Kind::Type& kind) noexcept;

/// Replacements for the built-in texts. Setting returns the function that was in place, null standing for the built-in
/// one in both directions. An application sets them at start-up, before other threads ask.
using UnitText = std::wstring (*)(Kind::Type, math::UnitSet const&);
using KindText = std::wstring (*)(Kind::Type);
ZO_API UnitText SetUnitText(UnitText text) noexcept;
ZO_API KindText SetKindText(KindText text) noexcept;

} // namespace hzn::units

namespace math::units {

/// The value in the other set.
///
/// Unchanged are: values of kind None, the missing value (largest finite double), values that are not finite, and
/// everything when the sets are equal, either is the zero set, or a unit that takes part has no number of its own.
ZO_API double ConvertBetweenUnitSets(hzn::units::Kind::Type kind, double value, UnitSet const& from, UnitSet const& to);

/// A replacement for the built-in table, asked only about values that do change (kind not None, sets different and not
/// zero, value finite and not missing). Setting returns the one in place; null stands for the built-in one. Set at
/// start-up, before other threads ask.
using Converter = double (*)(hzn::units::Kind::Type, double, UnitSet const& from, UnitSet const& to);
ZO_API Converter SetConverter(Converter converter) noexcept;

} // namespace math::units
