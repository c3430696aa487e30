// A load gives back what was saved, and damaged documents do no harm.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"

#include <bit>
#include <cmath>
#include <random>

namespace {

using namespace plan;
using embankment::Succeeds;
using P = meta::MetaPersistTraits;

class RoundTripTest : public PlanTest {
protected:
    RoundTripTest() {
        AddProject(rows, project);
        rows.Finish();
    }
    /// Saves, loads and saves again.
    void ExpectSameBytes() {
        std::string const first = TemporaryFile("first.xml");
        std::string const second = TemporaryFile("second.xml");
        ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(first), formatVersion)));
        std::vector<htl::status> errors;
        ASSERT_TRUE(Succeeds(zo::xml::FileRead(Wide(first), errors, {}, zo::xml::impl::UnknownAreErrors())));
        EXPECT_TRUE(errors.empty());
        ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(second), formatVersion)));
        EXPECT_EQ(Bytes(first), Bytes(second));
    }
};

TEST_F(RoundTripTest, SavingTwiceGivesTheSameBytes) {
    project = Example();
    ExpectSameBytes();
    EXPECT_EQ(project.Points.size(), 3u);
    project = {};
    ExpectSameBytes();
}

TEST(EmbankmentRoundTripTest, EmbankmentSurvivesALoad) {
    embankment::Embankment plan;
    std::wstring const text = Written();
    plan.model = embankment::Model();
    ASSERT_TRUE(IsClean(LoadText(text)));
    embankment::Model const example = embankment::Example();
    ASSERT_EQ(plan.model.soils.size(), 3u);
    EXPECT_EQ(plan.model.soils[2].drainage, embankment::Drainage::Partial);
    EXPECT_EQ(plan.model.soils[1].color, 65280u);
    EXPECT_EQ(plan.model.soils[0].anisotropy[2], 0.25);
    EXPECT_EQ(plan.model.regions[1].points, example.regions[1].points);
    EXPECT_EQ(plan.model.points.size(), 4u);
    EXPECT_EQ(plan.model.results.slips[1].radius, 42.5);
    EXPECT_EQ(Written(), text);
}

TEST_F(RoundTripTest, NumbersComeBackBitForBit) {
    std::vector<double> values{0.0,
                               0.1,
                               1.0 / 3,
                               1e-5,
                               9.999999999999999e-6,
                               1e15,
                               999999999999999.9,
                               100000,
                               -1e300,
                               5e-324,
                               2.2250738585072014e-308,
                               std::nextafter(std::numeric_limits<double>::max(), 0),
                               -std::numeric_limits<double>::max(),
                               12.03};
    std::mt19937_64 random(7);
    while (values.size() < 20000)
        if (double const value = std::bit_cast<double>(random()); std::isfinite(value)) values.push_back(value);
    project.Weights = values;
    project.Points.push_back({std::numeric_limits<double>::denorm_min(), -0.1});
    ASSERT_TRUE(IsClean(LoadText(Written())));
    ASSERT_EQ(project.Weights.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(std::bit_cast<std::uint64_t>(project.Weights[i]), std::bit_cast<std::uint64_t>(values[i]))
            << values[i];
    EXPECT_EQ(project.Points[0].X, std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(project.Points[0].Y, -0.1);
}

TEST_F(RoundTripTest, NegativeZeroOverZeroIsNoChange) {
    // The text keeps the sign; storing compares first, and the two zeros are equal.
    project.Weights = {1, -0.0};
    EXPECT_NE(Saved().find(L"<Weights>1,-0</Weights>"), std::wstring::npos);
    ASSERT_TRUE(IsClean(LoadText(Written())));
    EXPECT_FALSE(std::signbit(project.Weights[1]));
}

TEST_F(RoundTripTest, NumbersThatAreNotFiniteHaveNoTextAndComeBackAsDefaults) {
    project.Weights = {1, std::nan(""), std::numeric_limits<double>::infinity(), 4};
    EXPECT_NE(Saved().find(L"<Weights>1,,,4</Weights>"), std::wstring::npos);
    ASSERT_TRUE(IsClean(LoadText(Written())));
    EXPECT_EQ(project.Weights, (std::vector<double>{1, 0, 0, 4}));
}

TEST_F(RoundTripTest, MissingNumberComesBackMissingAsAnAttribute) {
    double const missing = std::numeric_limits<double>::max();
    project.Points = {{missing, 1}};
    ASSERT_TRUE(IsClean(LoadText(Written())));
    EXPECT_EQ(project.Points[0].X, missing);
    project.Tolerance = missing;
    ASSERT_TRUE(IsClean(LoadText(Written())));
    EXPECT_EQ(project.Tolerance, missing);
}

TEST_F(RoundTripTest, EveryCharacterOfXmlComesBack) {
    std::wstring text = L"\t\n\r";
    for (wchar_t c = 0x20; c <= 0x10FFFF; ++c)
        if (!(c >= 0xD800 && c <= 0xDFFF) && c != 0xFFFE && c != 0xFFFF) text += c;
    project.Title = text;
    project.Comment = L" ";
    std::wstring const document = Written();
    ASSERT_TRUE(IsClean(LoadText(document)));
    EXPECT_TRUE(project.Title == text);
    std::string const file = TemporaryFile("characters.xml");
    ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(file), formatVersion)));
    project.Title.clear();
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::FileRead(Wide(file), errors)));
    EXPECT_TRUE(project.Title == text);
    EXPECT_EQ(project.Comment, L" ");
}

TEST_F(RoundTripTest, BlanksQuotesAndLineBreaksComeBack) {
    for (wchar_t const* text : {L" ", L"  leading", L"trailing ", L"\n", L"\r\n", L"a\rb", L"a\tb", L"\"", L"'", L"]]>",
                                L"<![CDATA[x]]>", L"&amp;", L"&#32;", L"encoding=\"UTF-8\"", L"<!-- -->", L"\u00a0"}) {
        project.Title = text;
        project.Comment = text;
        ASSERT_TRUE(IsClean(LoadText(Written())));
        EXPECT_EQ(project.Title, text);
        EXPECT_EQ(project.Comment, text);
    }
}

TEST_F(RoundTripTest, TextInAttributesComesBack) {
    struct Note {
        std::wstring text;
    } note;
    Rows other;
    auto const traits = meta::StructureBuilder<Note>().Build();
    other.Add("Note", embankment::StructPrototype(traits), {P::Always, L"Note", false, true}, traits, &note);
    other.Add("Note.Text", embankment::ValuePrototype<std::wstring>(meta::AtomicTraits<std::wstring>()),
              {P::Always, L"Text"}, meta::AtomicTraits<std::wstring>());
    other.Finish();
    for (wchar_t const* text : {L"", L" ", L"  a  b ", L"\n\t\r", L"\"'<>&", L"\U0001D400"}) {
        note.text = text;
        std::wstring const document = Written();
        note.text = L"other";
        ASSERT_TRUE(IsClean(LoadText(document)));
        EXPECT_EQ(note.text, text);
    }
}

TEST_F(RoundTripTest, CharactersThatNoDocumentHoldsAreReplaced) {
    project.Title = std::wstring(L"a") + L'\x01' + wchar_t(0xD800) + wchar_t(0xFFFE) + L"b";
    ASSERT_TRUE(IsClean(LoadText(Written())));
    EXPECT_EQ(project.Title, L"a\uFFFD\uFFFD\uFFFDb");
}

TEST_F(RoundTripTest, DocumentCutOffAnywhereFailsWithoutHarm) {
    project = Example();
    std::string const file = TemporaryFile("whole.xml");
    ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(file), formatVersion)));
    std::string const whole = Bytes(file);
    std::string const cut = TemporaryFile("cut.xml");
    // Without its last line feed the document is whole.
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        Store(cut, whole.substr(0, length));
        std::vector<htl::status> errors;
        EXPECT_TRUE(zo::xml::FileRead(Wide(cut), errors).IsError()) << length;
        EXPECT_TRUE(errors.empty());
    }
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::FileRead(Wide(file), errors)));
    EXPECT_EQ(project.Points.size(), 3u);
}

TEST_F(RoundTripTest, DocumentWithAnyByteChangedDoesNoHarm) {
    project = Example();
    std::string const file = TemporaryFile("damaged.xml");
    ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(file), formatVersion)));
    std::string const whole = Bytes(file);
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (char const c : {'\0', '<', '"', '9', '[', '.', '\x80'}) {
            std::string damaged = whole;
            damaged[at] = c;
            Store(file, damaged);
            std::vector<htl::status> errors;
            htl::status const result = zo::xml::FileRead(Wide(file), errors, {}, zo::xml::impl::UnknownAreErrors());
            // Whatever was damaged, the list of failures stays bounded.
            EXPECT_LE(errors.size(), 11u);
            EXPECT_TRUE(!result.IsError() || errors.empty());
        }
}

TEST_F(RoundTripTest, EntryLeftOutAtItsDefaultIsNotLoadedAsConstructed) {
    struct Soil {
        double friction = 30;
    };
    auto const soilTraits = [] {
        return meta::StructureBuilder<Soil>()
            .Member(&Soil::friction, [] { return meta::AtomicTraits<double>(); })
            .Build();
    };
    auto const traits = meta::ArrayTraits<std::vector<Soil>>(soilTraits);
    std::vector<Soil> soils(2);
    soils[0].friction = 0;
    Rows other;
    other.Add("Soils", embankment::ArrayPrototype(traits), {P::Always, L"Soils[Soil]"}, traits, &soils);
    other.Add("Soils.[]", embankment::StructPrototype(soilTraits()), {P::Always, L"", false, true}, soilTraits());
    other.Add("Soils.[].Friction", embankment::ValuePrototype<double>(meta::AtomicTraits<double>()),
              {P::IfNotDefined, L"Friction"}, meta::AtomicTraits<double>());
    other.Finish();
    std::wstring const text = Written();
    soils.clear();
    ASSERT_TRUE(IsClean(LoadText(text)));
    ASSERT_EQ(soils.size(), 2u);
    EXPECT_EQ(soils[0].friction, 0);
    EXPECT_EQ(soils[1].friction, 30);
}

TEST_F(RoundTripTest, EmptyInnerArrayShiftsThoseBehindIt) {
    // An array without elements has no element of its own, as an entry neither.
    using Inner = std::vector<double>;
    std::vector<Inner> rings{{1}, {}, {2}};
    auto const traits = meta::ArrayTraits<std::vector<Inner>>(NumbersTraits);
    Rows other;
    other.Add("Rings", embankment::ArrayPrototype(traits), {P::Always, L"Rings[Ring]"}, traits, &rings);
    other.Add("Rings.[]", embankment::ArrayPrototype(NumbersTraits()), {P::Always, L"", true}, NumbersTraits());
    other.Add("Rings.[].[]", embankment::ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L""},
              meta::AtomicTraits<double>());
    other.Finish();
    ASSERT_TRUE(IsClean(LoadText(Written())));
    EXPECT_EQ(rings, (std::vector<Inner>{{1}, {2}, {}}));
}

TEST_F(RoundTripTest, NewTitleReplacesTheOldDocument) {
    std::string const file = TemporaryFile("replaced.xml");
    project.Title = std::wstring(5000, L'a');
    ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(file), formatVersion)));
    project.Title = L"b";
    ASSERT_TRUE(Succeeds(zo::xml::FileWrite(Wide(file), formatVersion)));
    EXPECT_EQ(Bytes(file).find("aaa"), std::string::npos);
    EXPECT_NE(Bytes(file).find("<Title>b</Title>"), std::string::npos);
}

} // namespace
