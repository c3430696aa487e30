// Numbers as people see and type them: in their units, with their decimal point.
//
// Descriptors hand formatted texts over to here. Which units a node's numbers are shown in is known in a layer above,
// which is asked through a table of functions.
#pragma once

#include "support/locale.h"
#include "support/units.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zo {
class IZO;
}

namespace meta::impl {

/// The units that a node's numbers are stored and shown in; without a kind nothing is known.
struct ShownUnits {
    hzn::units::Kind::Type kind = hzn::units::Kind::None;
    math::UnitSet stored;
    math::UnitSet shown;

    /// Whether a number may be shown as another one than is stored.
    bool Differ() const noexcept {
        return kind != hzn::units::Kind::None && !(stored == shown) && !stored.IsZero() && !shown.IsZero();
    }
    double ToShown(double number) const { return math::units::ConvertBetweenUnitSets(kind, number, stored, shown); }
    double ToStored(double number) const { return math::units::ConvertBetweenUnitSets(kind, number, shown, stored); }
};

/// What the layer above knows of a node's units. `value` is of the row's type.
struct UnitHooks {
    ShownUnits (*unitsOf)(void const* value, zo::IZO const& node);
    /// The unit's text as people read it behind a number.
    std::wstring (*unitText)(ShownUnits const& units);
};
extern UnitHooks const unitHooks;

/// Significant digits of a number that was converted: as many as any decimal number keeps in a double.
inline constexpr int shownDigits = 15;

/// How many of the digits of `shown` mean something where stored numbers lie `step` apart in its units: with more of
/// them a number that was typed would come back as its neighbour. At most `shownDigits`, 0 where `shown` is less than
/// one step.
int DigitsThatCount(double shown, double step) noexcept;

/// How the reading of a typed number ended.
enum class TypedResult : std::uint8_t {
    Number,
    Nothing,   ///< only blanks
    NoNumber,  ///< the text doesn't begin with a number
    Ambiguous, ///< its "." may be a decimal point or stand between groups of digits
};

/// A number that a person typed and what stands behind it.
struct TypedNumber {
    TypedResult result = TypedResult::NoNumber;
    std::wstring digits;    ///< the number, with "." as decimal point
    std::wstring_view rest; ///< without blanks at its ends; a part of the text
};

/// Reads the number that `text` begins with, in the notation `id`, behind blanks.
///
/// Where the decimal point is another character "." is taken for one, too, since numbers are pasted from everywhere.
/// Only where "." groups digits and may do so in this text the number is ambiguous: up to three digits in front of it
/// and exactly three behind it.
TypedNumber ReadTyped(std::wstring_view text, str::locale::ID const& id);

} // namespace meta::impl
