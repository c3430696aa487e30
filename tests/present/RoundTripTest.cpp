// What is printed can be typed: it gives the value that it stands for.
#include "tests/present/Basin.h"

#include <cmath>
#include <cstring>

namespace basin {
namespace {

using zo::PrettyPrintValueWithUnits;
using zo::SetPrettyPrintValue;

struct Gauge {
    char const* name;
    double Gauges::*member;
};
constexpr Gauge gauges[] = {
    {"Gauges.Length", &Gauges::length},
    {"Gauges.Area", &Gauges::area},
    {"Gauges.Volume", &Gauges::volume},
    {"Gauges.Angle", &Gauges::angle},
    {"Gauges.Time", &Gauges::time},
    {"Gauges.Mass", &Gauges::mass},
    {"Gauges.Force", &Gauges::force},
    {"Gauges.Stress", &Gauges::stress},
    {"Gauges.UnitWeight", &Gauges::unitWeight},
    {"Gauges.Conductivity", &Gauges::conductivity},
    {"Gauges.Flux", &Gauges::flux},
    {"Gauges.Temperature", &Gauges::temperature},
    {"Gauges.Energy", &Gauges::energy},
    {"Gauges.Factor", &Gauges::factor},
};
static_assert(std::size(gauges) == Kind::Energy + 1);

// Of every size that a gauge may have, with all digits; a zero keeps its sign, as no write changes it.
double const values[] = {0.0,
                         -0.0,
                         1.0,
                         -1.0,
                         1.0 / 3,
                         0.1 + 0.2,
                         -123456.789,
                         9.80665,
                         1e15,
                         123456789012345680.0,
                         1e22,
                         -6.02214076e23,
                         1e-5,
                         9.999999999999999e-6,
                         1.6e-19,
                         1e100,
                         -1e-100,
                         1.5e290,
                         3e-290,
                         std::numeric_limits<double>::min(),
                         std::numeric_limits<double>::denorm_min(),
                         2.2204460492503131e-16,
                         0.99999999999999989,
                         31.999999999999996,
                         -17.777777777777779,
                         missing};

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// The unit systems in which values are stored and shown, and the notation of people.
struct Situation {
    UnitSet stored, shown;
    str::locale::ID notation;
};

class RoundTripTest : public BasinTest, public testing::WithParamInterface<Situation> {
protected:
    RoundTripTest() {
        site.active = GetParam().stored;
        site.shown = GetParam().shown;
    }
    Notation people{GetParam().notation};
};

TEST_P(RoundTripTest, TypingWhatIsPrintedLeavesTheValueToTheLastBit) {
    for (Gauge const& gauge : gauges) {
        H const node = Find(gauge.name);
        double& value = site.model.gauges.*gauge.member;
        for (double const stored : values) {
            value = stored;
            std::wstring const text = PrettyPrintValueWithUnits(node);
            EXPECT_TRUE(Succeeds(SetPrettyPrintValue(node, text))) << gauge.name << ' ' << stored;
            EXPECT_TRUE(SameBits(value, stored)) << gauge.name << ' ' << stored << " became " << value;
        }
    }
}

TEST_P(RoundTripTest, WhatIsPrintedGivesANeighbourOfTheValueElsewhere) {
    for (Gauge const& gauge : gauges) {
        H const node = Find(gauge.name);
        double& value = site.model.gauges.*gauge.member;
        bool const isTemperature = gauge.member == &Gauges::temperature;
        for (double const stored : values) {
            // It, or what is shown of it, has fewer digits itself.
            if (stored != 0 && std::abs(stored) < 1e-300) continue;
            value = stored;
            std::wstring const text = PrettyPrintValueWithUnits(node);
            value = 77; // another value
            ASSERT_TRUE(Succeeds(SetPrettyPrintValue(node, text))) << gauge.name << ' ' << stored;
            if (site.active == site.shown || stored == missing) {
                EXPECT_TRUE(SameBits(value, stored)) << gauge.name << ' ' << stored;
                continue;
            }
            // Half a unit in the 15th digit, which is 5e-15 where the first digit is 1, and the rounding of two
            // conversions, 1.1e-16 each. Temperatures have the digits of the 32 degrees between their zeros.
            double const size = isTemperature ? std::max(std::abs(stored), 32.0) : std::abs(stored);
            EXPECT_LE(std::abs(value - stored), 5.3e-15 * size) << gauge.name << ' ' << stored;
            EXPECT_EQ(PrettyPrintValueWithUnits(node), text) << gauge.name << ' ' << stored;
        }
    }
}

TEST_P(RoundTripTest, WhatIsTypedIsPrinted) {
    // Up to 15 digits; in degrees as many as their doubles tell apart.
    wchar_t const* const texts[] = {L"0",
                                    L"1",
                                    L"-1",
                                    L"0.1",
                                    L"10",
                                    L"12.5",
                                    L"3.28084",
                                    L"999.9",
                                    L"-0.0625",
                                    L"1e+20",
                                    L"1e-07",
                                    L"2.54e-09",
                                    L"123456.789012345",
                                    L"99999999999999.9",
                                    L"-32.1",
                                    L"-17.7"};
    for (Gauge const& gauge : gauges) {
        H const node = Find(gauge.name);
        for (std::wstring text : texts) {
            if (gauge.member == &Gauges::temperature && text.find(L'-') != 0 && text.find(L"e-") != text.npos) continue;
            std::replace(text.begin(), text.end(), L'.', GetParam().notation.DecimalPoint());
            ASSERT_TRUE(Succeeds(SetPrettyPrintValue(node, text))) << gauge.name;
            EXPECT_EQ(zo::PrettyPrintValue(node), text) << gauge.name;
        }
    }
}

TEST_P(RoundTripTest, FloatsAreKept) {
    float& depth = site.model.gauges.depth;
    H const node = Find("Gauges.Depth");
    for (float const stored :
         {0.0f, 0.1f, -1.0f / 3, 16777217.0f, 1e-30f, 3e37f, 1.17549435e-38f, std::numeric_limits<float>::max()}) {
        depth = stored;
        std::wstring const text = PrettyPrintValueWithUnits(node);
        ASSERT_TRUE(Succeeds(SetPrettyPrintValue(node, text)));
        EXPECT_EQ(depth, stored);
        depth = 77;
        ASSERT_TRUE(Succeeds(SetPrettyPrintValue(node, text)));
        // Six digits at least: half a unit in the sixth is 5e-6 where the first is 1.
        EXPECT_LE(std::abs(depth - stored), 5e-6f * std::abs(stored)) << stored;
        EXPECT_EQ(PrettyPrintValueWithUnits(node), text);
    }
}

TEST_P(RoundTripTest, WholeNumbersAreKept) {
    H const span = Find("Gauges.Span");
    for (int const stored : {0, 1, -1, 7, 1000, 2147483646, -2147483647 - 1, std::numeric_limits<int>::max()}) {
        site.model.gauges.span = stored;
        std::wstring const text = PrettyPrintValueWithUnits(span);
        site.model.gauges.span = 77;
        EXPECT_TRUE(Succeeds(SetPrettyPrintValue(span, text))) << stored;
        EXPECT_EQ(site.model.gauges.span, stored);
    }
    H const total = Find("Gauges.Total");
    for (htl::Int64 const stored : {htl::Int64(0), htl::Int64(-9007199254740993), htl::Int64(9223372036854775807),
                                    -htl::Int64(9223372036854775807) - 1}) {
        site.model.gauges.total = stored;
        std::wstring const text = PrettyPrintValueWithUnits(total);
        site.model.gauges.total = 77;
        EXPECT_TRUE(Succeeds(SetPrettyPrintValue(total, text)));
        EXPECT_EQ(site.model.gauges.total, stored);
    }
}

TEST_P(RoundTripTest, WordsAreKeptInBothForms) {
    H const node = Find("Gauges.Lining");
    Lining& lining = site.model.gauges.lining;
    for (Lining const stored : {Lining::None, Lining::Clay, Lining::Sheet, static_cast<Lining>(3)}) {
        lining = stored;
        std::wstring const pretty = PrettyPrintValueWithUnits(node);
        std::wstring const abbreviated = zo::AbbrevValueWithUnits(node);
        lining = stored == Lining::None ? Lining::Clay : Lining::None;
        EXPECT_TRUE(Succeeds(SetPrettyPrintValue(node, pretty)));
        EXPECT_EQ(lining, stored);
        lining = stored == Lining::None ? Lining::Clay : Lining::None;
        EXPECT_TRUE(Succeeds(zo::SetAbbrevValue(node, abbreviated)));
        EXPECT_EQ(lining, stored);
    }
}

INSTANTIATE_TEST_SUITE_P(Units, RoundTripTest,
                         testing::Values(Situation{metric, metric, classic}, Situation{metric, imperial, classic},
                                         Situation{imperial, metric, classic}, Situation{imperial, imperial, classic},
                                         Situation{metresAndPounds, imperial, classic},
                                         Situation{metric, metric, german}, Situation{metric, imperial, german},
                                         Situation{imperial, metric, german}, Situation{imperial, imperial, french},
                                         Situation{imperial, metresAndPounds, french}));

} // namespace
} // namespace basin
