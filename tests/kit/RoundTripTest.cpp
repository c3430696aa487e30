// Every value of every type, out to a document and back.
#include "tests/kit/Site.h"

#include <cmath>
#include <filesystem>
#include <limits>

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Persist;

template <class T>
constexpr T least = std::numeric_limits<T>::lowest();
template <class T>
constexpr T greatest = std::numeric_limits<T>::max();

/// Instruments with the ends of each type, and texts that a document has to take care of.
std::vector<Instrument> Extremes() {
    std::vector<Instrument> all(7);
    all[1] = {0,
              least<int>,
              0,
              least<long>,
              0,
              least<float>,
              least<double>,
              least<htl::Int64>,
              0,
              true,
              "<&>\"'",
              L"]]> encoding=\"UTF-8\"",
              DataParamType::Cohesion,
              Method::Auger};
    all[2] = {255,
              greatest<int>,
              greatest<unsigned>,
              greatest<long>,
              greatest<unsigned long>,
              greatest<float>,
              greatest<double>,
              greatest<htl::Int64>,
              greatest<htl::UInt64>,
              true,
              "  both ends  ",
              L"\ttab\nline\rreturn ",
              DataParamType::Modulus,
              Method::Percussion};
    all[3].gain = std::numeric_limits<float>::denorm_min();
    all[3].reading = std::numeric_limits<double>::denorm_min();
    all[3].maker = " ";
    all[3].note = L"\n";
    all[4].gain = std::nextafter(1.0f, 2.0f);
    all[4].reading = std::nextafter(1.0, 2.0);
    all[4].maker = "\xF0\x9F\x92\xA7,(";
    all[4].note = L"\U0010FFFD \ue000 \u00e9";
    all[5].offset = greatest<int> - 1;
    all[5].serial = greatest<unsigned> - 1;
    all[5].reading = 1e15;
    all[5].gain = 1e-5f;
    all[5].parameter = static_cast<DataParamType>(least<int>);
    all[6].method = static_cast<Method>(200); // no word
    all[6].parameter = static_cast<DataParamType>(greatest<int>);
    all[6].note = std::wstring(100'000, L'x');
    return all;
}

class RoundTripTest : public KitTest {
protected:
    void Declare(Persist persist, bool attributes) {
        Register({[=, this](Kit& kit) {
            kit.Enum<Method>(methods);
            kit.Record<Instrument>("Instrument", {.attributes = attributes})
                .Field<&Instrument::channel>("Channel", L"Channel", {.persist = persist})
                .Field<&Instrument::offset>("Offset", L"Offset", {.persist = persist})
                .Field<&Instrument::serial>("Serial", L"Serial", {.persist = persist})
                .Field<&Instrument::reference>("Reference", L"Reference", {.persist = persist})
                .Field<&Instrument::color>("Color", L"Color", {.persist = persist})
                .Field<&Instrument::gain>("Gain", L"Gain", {.persist = persist})
                .Field<&Instrument::reading>("Reading", L"Reading", {.persist = persist})
                .Field<&Instrument::taken>("Taken", L"Taken", {.persist = persist})
                .Field<&Instrument::mask>("Mask", L"Mask", {.persist = persist})
                .Field<&Instrument::calibrated>("Calibrated", L"Calibrated", {.persist = persist})
                .Field<&Instrument::maker>("Maker", L"Maker", {.persist = persist})
                .Field<&Instrument::note>("Note", L"Note", {.persist = persist})
                .Field<&Instrument::parameter>("Parameter", L"Parameter", {.persist = persist})
                .Field<&Instrument::method>("Method", L"Method", {.persist = persist});
            kit.Branch<std::vector<Instrument>>("Instruments", L"Instruments[Instrument]",
                                                [this] { return &instruments; });
            kit.Branch<Instrument>("Reference", L"Reference", [this] { return &reference; });
        }});
    }
    void ExpectEverythingBack() {
        instruments = Extremes();
        reference = instruments[2];
        std::wstring const document = Save();
        instruments = std::vector<Instrument>(2, instruments[1]);
        reference = instruments[1];
        Load(document);
        std::vector<Instrument> const expected = Extremes();
        ASSERT_EQ(instruments.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_TRUE(instruments[i] == expected[i]) << i;
        EXPECT_TRUE(reference == expected[2]);
        EXPECT_EQ(Save(), document);
    }

    std::vector<Instrument> instruments;
    Instrument reference;
};

TEST_F(RoundTripTest, ElementsAlways) {
    Declare(Persist::Always, false);
    ExpectEverythingBack();
}

TEST_F(RoundTripTest, ElementsUnlessDefault) {
    Declare(Persist::IfNotDefault, false);
    ExpectEverythingBack();
}

TEST_F(RoundTripTest, AttributesAlways) {
    Declare(Persist::Always, true);
    ExpectEverythingBack();
}

TEST_F(RoundTripTest, AttributesUnlessDefault) {
    Declare(Persist::IfNotDefault, true);
    ExpectEverythingBack();
}

TEST_F(RoundTripTest, ValueThatIsNotFiniteBecomesMissing) {
    Declare(Persist::Always, false);
    reference.reading = std::nan("");
    reference.gain = std::numeric_limits<float>::infinity();
    Load(Save());
    EXPECT_EQ(reference.reading, greatest<double>);
    EXPECT_EQ(reference.gain, greatest<float>);
}

TEST_F(RoundTripTest, ValueThatIsNotFiniteBecomesTheGreatestWhereNoneIsMissing) {
    struct Probe {
        double depth = 0;
    };
    static Probe probe;
    probe.depth = -std::numeric_limits<double>::infinity();
    Register({[](Kit& kit) {
        kit.Record<Probe>("Probe").Field<&Probe::depth>("Depth", L"Depth", {.noMissing = true});
        kit.Branch<Probe>("Probe", L"Probe", [] { return &probe; });
    }});
    Load(Save());
    EXPECT_EQ(probe.depth, greatest<double>);
}

TEST_F(RoundTripTest, ThroughAFile) {
    Declare(Persist::Always, false);
    instruments = Extremes();
    std::filesystem::path const path = std::filesystem::temp_directory_path() / "kit_round_trip.xml";
    ASSERT_TRUE(Succeeds(zo::xml::FileWrite(path.wstring(), {1, 0})));
    instruments.clear();
    std::vector<htl::status> errors;
    EXPECT_TRUE(Succeeds(zo::xml::FileRead(path.wstring(), errors, {}, zo::xml::impl::UnknownAreErrors())));
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(instruments == Extremes());
    std::filesystem::remove(path);
}

} // namespace
} // namespace site
