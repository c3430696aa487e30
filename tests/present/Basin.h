// A basin with a gauge for every kind of quantity, for what people read and type of values.
//
// Values are stored in metric units; people see imperial ones unless a test says otherwise.
#pragma once

#include "Common/present/UnitsProvider.h"
#include "Common/present/Values.h"
#include "Common/registry/Find.h"
#include "support/locale.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"
#include "tests/present/Levee.h" // for the words of DataParamType

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace basin {

using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using fixture::TableText;
using hzn::units::Kind;
using math::UnitSet;
using zo::Find;
using zo::H;

inline UnitSet const metric = hzn::units::SystemUnitSet(math::unitsystem::Metric);
inline UnitSet const imperial = hzn::units::SystemUnitSet(math::unitsystem::Imperial);
inline UnitSet const metresAndPounds{{1, 2, 1}};
inline UnitSet const noUnits;

inline double const missing = std::numeric_limits<double>::max();

enum class Lining : unsigned char { None = 0, Clay = 1, Sheet = 4 };

/// A gauge for every kind, named after it; then numbers of other types, and what has no units.
struct Gauges {
    double length = 2.5;
    double area = 100;
    double volume = 1000;
    double angle = 30;
    double time = 60;
    double mass = 1;
    double force = 100;
    double stress = 100;
    double unitWeight = 9.81;
    double conductivity = 1e-7;
    double flux = 1;
    double temperature = 20;
    double energy = 1;
    double factor = 0.125; // has no kind
    float depth = 0.1f;    // a length
    int lifts = 3;         // has no kind
    int span = 30;         // a length
    unsigned char count = 7;
    htl::Int64 total = 9007199254740993; // one more than a double can tell
    bool lined = true;
    Lining lining = Lining::Sheet;
    std::wstring remark = L" 12 m ";
    DataParamType governs = DataParamType::Cohesion;
};
/// In metres.
struct Mark {
    double level = 0;     // 0 to 60
    double cohesion = 25; // of the parameter
    std::wstring name;
};
struct Basin {
    Gauges gauges;
    std::vector<Mark> marks{{12, 25, L"Sill"}, {30, 4, L"Crest"}};
};

/// Rows: `Gauges` { a field for each member, in capitals }, `Marks` [ { `Level`, `Cohesion`, `Name` } ], and the
/// alias `Sill` to `Marks[0].Level`. Marks are records.
class Site {
public:
    /// With `provided` the registry has functions that give `active`, `shown` and `shownOfCohesion`.
    explicit Site(bool provided = true);
    Site(Site const&) = delete;
    Site& operator=(Site const&) = delete;
    ~Site();

    Basin model;
    UnitSet active = metric;
    UnitSet shown = imperial;
    UnitSet shownOfCohesion = imperial;
    int questions = 0; ///< that the functions were asked
    htl::handle<zo::ZORegistry> registry;

private:
    zo::ZORegistry* previous = nullptr;
};

/// Registers a template of DataParamType, by which cohesion is a stress. Other parameters have no kind.
void RegisterParameters();

/// The notation that people use, for as long as this lives.
class Notation {
public:
    explicit Notation(str::locale::ID const& id) : previous(str::locale::SetNative(id)) {}
    Notation(Notation const&) = delete;
    Notation& operator=(Notation const&) = delete;
    ~Notation() { (void)str::locale::SetNative(previous); }

private:
    str::locale::ID previous;
};

inline str::locale::ID const classic = str::locale::ID::Classic();
inline str::locale::ID const german(L',', L'.');      // 1.234,5
inline str::locale::ID const french(L',', L'\u202F'); // 1 234,5

/// Every test gets a basin of its own, and the classic notation whatever the user's is.
class BasinTest : public testing::Test {
protected:
    /// Reads a table with the entry "Default" and compiles it.
    static testing::AssertionResult Compiles(TableText const& table);

    Notation notation{classic};
    Site site;
};

} // namespace basin
