#include "support/units.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <limits>

namespace hzn::units {
namespace {

constexpr std::size_t dimensionCount = 3; // length, force, time: the words of a set
constexpr std::size_t unitCount = 2;      // unit numbers 1 and 2

struct BaseUnit {
    std::wstring_view text;
    long double size; // in metres, kilonewtons, seconds
};

// By dimension, then by unit number from 1. The foot and the pound-force are exact by definition: NIST Special
// Publication 811 (2008), appendix B. All other factors follow from these two.
constexpr BaseUnit baseUnits[dimensionCount][unitCount] = {
    {{L"m", 1.0L}, {L"ft", 0.3048L}},
    {{L"kN", 1.0L}, {L"lbf", 4.4482216152605L / 1000}},
    {{L"s", 1.0L}, {L"s", 1.0L}},
};

struct Row {
    Kind::Type kind;
    std::wstring_view name;
    std::array<int, dimensionCount> powers; // of length, force, time
    std::wstring_view texts[unitCount];     // where the units of length and force are both of one system
};

constexpr std::array rows = {
    // indexed by Kind::Type
    Row{Kind::None, L"None", {0, 0, 0}, {L"", L""}},
    Row{Kind::Length, L"Length", {1, 0, 0}, {L"m", L"ft"}},
    Row{Kind::Area, L"Area", {2, 0, 0}, {L"m\u00B2", L"ft\u00B2"}},
    Row{Kind::Volume, L"Volume", {3, 0, 0}, {L"m\u00B3", L"ft\u00B3"}},
    Row{Kind::Angle, L"Angle", {0, 0, 0}, {L"\u00B0", L"\u00B0"}},
    Row{Kind::Time, L"Time", {0, 0, 1}, {L"s", L"s"}},
    Row{Kind::Mass, L"Mass", {-1, 1, 2}, {L"t", L"slug"}},
    Row{Kind::Force, L"Force", {0, 1, 0}, {L"kN", L"lbf"}},
    Row{Kind::Stress, L"Stress", {-2, 1, 0}, {L"kPa", L"psf"}},
    Row{Kind::UnitWeight, L"UnitWeight", {-3, 1, 0}, {L"kN/m\u00B3", L"pcf"}},
    Row{Kind::HydraulicConductivity, L"HydraulicConductivity", {1, 0, -1}, {L"m/s", L"ft/s"}},
    Row{Kind::Flux, L"Flux", {3, 0, -1}, {L"m\u00B3/s", L"ft\u00B3/s"}},
    Row{Kind::Temperature, L"Temperature", {0, 0, 0}, {L"\u00B0C", L"\u00B0F"}},
    Row{Kind::Energy, L"Energy", {1, 1, 0}, {L"kJ", L"ft\u00B7lbf"}},
};

constexpr bool RowsAreInOrder() {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (static_cast<std::size_t>(rows[i].kind) != i) return false;
    }
    return true;
}
static_assert(RowsAreInOrder());

/// The kind's row, or null for a number that is no kind.
Row const* FindRow(Kind::Type kind) noexcept {
    auto const place = static_cast<std::uint32_t>(kind);
    return place < rows.size() ? &rows[place] : nullptr;
}

bool DependsOn(Row const& row, std::size_t dimension) noexcept {
    return row.powers[dimension] != 0 || (row.kind == Kind::Temperature && dimension == 0);
}

bool IsUnit(std::uint32_t number) noexcept { return number >= 1 && number <= unitCount; }

/// Whether every unit that the kind depends on has a unit number.
bool HasUnits(Row const& row, math::UnitSet const& set) noexcept {
    for (std::size_t i = 0; i < dimensionCount; ++i) {
        if (DependsOn(row, i) && !IsUnit(set.w[i])) return false;
    }
    return true;
}

using SizesOfKind = std::array<std::array<std::array<long double, unitCount>, unitCount>, unitCount>;

// The size of each kind's unit in terms of metre, kilonewton and second, by the places of its units of length, force
// and time. Worked out beforehand: reports and tables convert every number that they show.
constexpr auto unitSizes = [] {
    std::array<SizesOfKind, rows.size()> sizes{};
    for (std::size_t kind = 0; kind < rows.size(); ++kind) {
        for (std::size_t set = 0; set < 8; ++set) {
            std::array<std::size_t, dimensionCount> const place{set / 4, set / 2 % 2, set % 2};
            long double size = 1;
            for (std::size_t i = 0; i < dimensionCount; ++i) {
                long double const base = baseUnits[i][place[i]].size;
                for (int n = rows[kind].powers[i]; n > 0; --n) size *= base;
                for (int n = rows[kind].powers[i]; n < 0; ++n) size /= base;
            }
            sizes[kind][place[0]][place[1]][place[2]] = size;
        }
    }
    return sizes;
}();

/// The size of the kind's unit. A unit that takes no part may be without a number.
long double UnitSize(Row const& row, math::UnitSet const& set) noexcept {
    auto const place = [&set](std::size_t i) -> std::size_t { return IsUnit(set.w[i]) ? set.w[i] - 1 : 0; };
    return unitSizes[static_cast<std::size_t>(row.kind)][place(0)][place(1)][place(2)];
}

/// The units of the dimensions whose power has the sign of `sign`, force first.
std::wstring Product(Row const& row, math::UnitSet const& set, int sign) {
    constexpr std::array<std::size_t, dimensionCount> order{1, 0, 2};
    std::wstring text;
    for (std::size_t const i : order) {
        int const power = row.powers[i] * sign;
        if (power <= 0) continue;
        if (!text.empty()) text += L'\u00B7';
        text += baseUnits[i][set.w[i] - 1].text;
        if (power == 2) text += L'\u00B2';
        if (power == 3) text += L'\u00B3';
    }
    return text;
}

std::wstring TextOf(Row const& row, math::UnitSet const& set) {
    if (!HasUnits(row, set)) return {};
    bool const byLength = DependsOn(row, 0);
    bool const byForce = DependsOn(row, 1);
    if (byLength && byForce && set.w[0] != set.w[1]) {
        std::wstring const below = Product(row, set, -1);
        return Product(row, set, 1) + (below.empty() ? L"" : L"/") + below;
    }
    // Seconds and degrees are the same in every set.
    std::uint32_t const number = byLength ? set.w[0] : byForce ? set.w[1] : 1;
    return std::wstring(row.texts[number - 1]);
}

constinit std::atomic<UnitText> unitText{nullptr};
constinit std::atomic<KindText> kindText{nullptr};
constinit std::atomic<math::units::Converter> currentConverter{nullptr};

double Convert(Kind::Type kind, double value, math::UnitSet const& from, math::UnitSet const& to) noexcept {
    Row const* const row = FindRow(kind);
    if (!row || !HasUnits(*row, from) || !HasUnits(*row, to)) return value;
    if (kind == Kind::Temperature) {
        if (from.w[0] == to.w[0]) return value;
        // The sum loses digits of a double where it is near 0.
        long double const degrees = value;
        return static_cast<double>(to.w[0] == 2 ? degrees * 9 / 5 + 32 : (degrees - 32) * 5 / 9);
    }
    return static_cast<double>(value * UnitSize(*row, from) / UnitSize(*row, to));
}

} // namespace

math::UnitSet SystemUnitSet(math::unitsystem::Type system) noexcept {
    auto const number = static_cast<std::uint32_t>(system);
    return IsUnit(number) ? math::UnitSet{{number, number, number}} : math::UnitSet{};
}

std::wstring GetEngUnitValueString(Kind::Type kind, math::UnitSet const& set) {
    if (kind == Kind::None || set.IsZero()) return {};
    if (UnitText const replacement = unitText.load()) return replacement(kind, set);
    Row const* const row = FindRow(kind);
    return row ? TextOf(*row, set) : std::wstring();
}

std::wstring KindName(Kind::Type kind) {
    if (KindText const replacement = kindText.load()) return replacement(kind);
    Row const* const row = FindRow(kind);
    return row ? std::wstring(row->name) : std::wstring();
}

bool KindFromName(std::wstring_view name, Kind::Type& kind) noexcept {
    for (Row const& row : rows) {
        if (row.name != name) continue;
        kind = row.kind;
        return true;
    }
    return false;
}

UnitText SetUnitText(UnitText text) noexcept { return unitText.exchange(text); }

KindText SetKindText(KindText text) noexcept { return kindText.exchange(text); }

} // namespace hzn::units

namespace math::units {

double ConvertBetweenUnitSets(hzn::units::Kind::Type kind, double value, UnitSet const& from, UnitSet const& to) {
    bool const isMissing = value == std::numeric_limits<double>::max();
    if (kind == hzn::units::Kind::None || from == to || from.IsZero() || to.IsZero()) return value;
    if (isMissing || !std::isfinite(value)) return value;
    if (Converter const replacement = hzn::units::currentConverter.load()) return replacement(kind, value, from, to);
    return hzn::units::Convert(kind, value, from, to);
}

Converter SetConverter(Converter converter) noexcept { return hzn::units::currentConverter.exchange(converter); }

} // namespace math::units
