// Schemas of registries that nobody had in mind, and of large ones.
#include "Common/redirect/Placeholders.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/schema/Xsd.h"
#include "Common/xml/Ordering.h"
#include "tests/registry/Rows.h"
#include "tests/schema/Files.h"
#include "tests/schema/Lint.h"
#include "tests/xml/Plan.h"

#include "support/describe.h"
#include "support/text.h"

#include <array>
#include <deque>
#include <memory>

namespace {

using embankment::ArrayPrototype;
using embankment::FailsAs;
using embankment::StructPrototype;
using embankment::Succeeds;
using embankment::ValuePrototype;
using lint::IsRefused;
using lint::IsValid;
using lint::SavesWhatItsSchemaTells;
using lint::With;
using meta::MetaDataTraits;
using zo::H;
using zo::IZO;
using P = meta::MetaPersistTraits;

MetaDataTraits const& Number() { return meta::AtomicTraits<double>(); }
MetaDataTraits const& Text() { return meta::AtomicTraits<std::wstring>(); }
MetaDataTraits StepsTraits() {
    static MetaDataTraits const traits = meta::ArrayTraits<std::deque<double>>([] { return Number(); });
    return traits;
}
MetaDataTraits NotesTraits() {
    static MetaDataTraits const traits = meta::ArrayTraits<std::vector<std::wstring>>([] { return Text(); });
    return traits;
}

std::size_t Count(std::string const& text, std::string const& what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + what.size())) ++count;
    return count;
}

class XsdRowsTest : public plan::PlanTest {
protected:
    /// A value of any type in memory of its own.
    template <class T>
    void Value(std::string const& name, MetaDataTraits const& traits, T& value) {
        rows.Add(name, ValuePrototype<T>(traits), {P::Always, str::as_wstring(name), true}, traits, &value);
    }
};

// ---- Tags

TEST_F(XsdRowsTest, TagsThatReachIntoAnArraysElementsAreChoices) {
    plan::AddProject(rows, project);
    project = plan::Example();
    rows.Add("Steps", ArrayPrototype(plan::PointsTraits()), {P::Always, L"Steps[Step]"}, plan::PointsTraits(),
             &project.Points);
    rows.Add("Steps.[]", StructPrototype(plan::PointTraits()), {P::Always, L""}, plan::PointTraits());
    rows.Add("Steps.[].X", ValuePrototype<double>(Number()), {P::Always, L"X", true}, Number());
    // Not the elements, by its name; the elements, by its tag.
    rows.Branch("Extra", L"Steps.Step");
    double x = 7;
    rows.Add("Extra.X", ValuePrototype<double>(Number()), {P::Always, L"X", true}, Number(), &x);
    rows.Finish();
    std::string const schema = lint::Schema();
    EXPECT_NE(schema.find("<xs:choice minOccurs=\"0\" maxOccurs=\"unbounded\">\n"
                          "      <xs:element name=\"X\" type=\"xs:anyType\"/>\n    </xs:choice>"),
              schema.npos);
    std::string const document = lint::Document();
    EXPECT_NE(document.find("<Step>\n      <X>1.5</X>\n      <X>1.5</X>\n    </Step>"), document.npos);
    EXPECT_TRUE(IsValid(document, schema));
}

TEST_F(XsdRowsTest, TagsThatAreNoNamesAreLeftOut) {
    double good = 1, bad = 2;
    rows.Number("Good", L"Good", good);
    rows.Number("Bad", L"1st", bad);
    rows.Finish();
    std::string const schema = lint::Schema();
    EXPECT_EQ(schema.find("1st"), schema.npos);
    EXPECT_TRUE(IsValid("<HZNData Version=\"1.00\"><Good>1</Good></HZNData>", schema));
}

TEST_F(XsdRowsTest, TagsWithColonsAreLeftOut) {
    double good = 1, bad = 2;
    rows.Number("Good", L"Good", good);
    rows.Number("Bad", L"geo:Bad", bad);
    rows.Finish();
    std::string const schema = lint::Schema();
    EXPECT_EQ(schema.find("geo"), schema.npos);
    EXPECT_TRUE(IsValid("<HZNData Version=\"1.00\"><Good>1</Good></HZNData>", schema));
}

TEST_F(XsdRowsTest, TagsOfOtherScriptsAreNames) {
    double value = 1;
    rows.Number("Height", L"H\u00F6he.\u6DF1\u3055", value);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(XsdRowsTest, NamesOfTypesDontCollideWithTags) {
    std::vector<double> values(5, 1);
    rows.Number("number", L"number", values[0]);
    rows.Branch("HZNData_", L"textElement");
    rows.Number("HZNData_.Inner", L"missing", values[1]);
    std::wstring text = L"a";
    rows.Text("empty", L"empty", text);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(XsdRowsTest, DeepNestingIsValid) {
    std::string name;
    for (int level = 0; level < 300; ++level) {
        name += level ? ".In" : "In";
        rows.Branch(name, L"In");
    }
    double value = 1;
    rows.Number(name + ".Last", L"Last", value);
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, "<Last>1</Last>", "<Last>x</Last>"), schema));
}

TEST_F(XsdRowsTest, VeryManyChildrenMayStandInAnyOrder) {
    std::vector<double> values(501, 1);
    for (int i = 0; i < 501; ++i) {
        std::string const name = "Level" + std::to_string(1000 + i);
        rows.Number(name, str::as_wstring(name), values[std::size_t(i)]);
    }
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const first = "<HZNData Version=\"1.00\"><Level1002>1</Level1002>";
    EXPECT_TRUE(IsValid(lint::Document(), schema));
    EXPECT_TRUE(IsValid(first + "<Level1000>1</Level1000></HZNData>", schema));
    EXPECT_TRUE(IsRefused(first + "<Level1002>1</Level1002></HZNData>", schema));
    EXPECT_TRUE(IsRefused(first + "<Level1501>1</Level1501></HZNData>", schema));
}

// ---- Forms

TEST_F(XsdRowsTest, ValuesInArraysMayBeEmpty) {
    std::deque<double> steps{0, 1, 0};
    rows.Add("Steps", ArrayPrototype(StepsTraits()), {P::IfNotDefined, L"Steps[Step]"}, StepsTraits(), &steps);
    rows.Add("Steps.[]", ValuePrototype<double>(Number()), {P::IfNotDefined, L"", true}, Number());
    rows.Finish();
    std::string const document = lint::Document();
    EXPECT_NE(document.find("<Step/>"), document.npos);
    EXPECT_TRUE(IsValid(document, lint::Schema()));
}

TEST_F(XsdRowsTest, ArraysInRecordsAreLists) {
    struct Profile {
        std::vector<double> levels{1.5, 0, -2};
        std::deque<double> steps{1, 2};
        std::vector<std::wstring> notes{L"a", L"b,c"};
    } profile;
    auto const traits = meta::StructureBuilder<Profile>().Build();
    rows.Add("Profile", StructPrototype(traits), {P::Always, L"Profile", false, true}, traits, &profile);
    auto const add = [&](std::string const& name, MetaDataTraits const& array, std::size_t offset, H const& element) {
        rows.Add("Profile." + name, ArrayPrototype(array, offset), {P::Always, str::as_wstring(name)}, array);
        rows.Add("Profile." + name + ".[]", element, {P::Always, L""}, element->GetDataTraits());
    };
    add("Levels", plan::NumbersTraits(), meta::OffsetOf(&Profile::levels), ValuePrototype<double>(Number()));
    add("Steps", StepsTraits(), meta::OffsetOf(&Profile::steps), ValuePrototype<double>(Number()));
    add("Notes", NotesTraits(), meta::OffsetOf(&Profile::notes), ValuePrototype<std::wstring>(Text()));
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_NE(document.find("<Profile Levels=\"1.5,0,-2\" Steps=\"1,2\" Notes=\"a,b,c\"/>"), document.npos);
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, "1.5,0,-2", "1.5,zero,-2"), schema));
}

TEST_F(XsdRowsTest, StructuresInRecordsAreNoAttributes) {
    plan::Project inner;
    rows.Add("Frame", StructPrototype(plan::PointTraits()), {P::Always, L"Frame", false, true}, plan::PointTraits(),
             &inner);
    rows.Add("Frame.X", ValuePrototype<double>(Number()), {P::Always, L"X"}, Number());
    rows.Add("Frame.Inner", StructPrototype(plan::PointTraits()), {P::Always, L"Inner"}, plan::PointTraits());
    rows.Finish();
    std::string const schema = lint::Schema();
    EXPECT_EQ(schema.find("\"Inner\""), schema.npos);
    EXPECT_TRUE(IsValid(lint::Document(), schema));
}

TEST_F(XsdRowsTest, BranchesUnderMadeParentsAreValid) {
    double value = 3;
    rows.Number("Far.Away.Level", L"Far.Away.Level", value);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(XsdRowsTest, BranchOfAnInactiveStoreMayBeThere) {
    double a = 1, b = 2;
    rows.Number("A", L"A", a);
    rows.Number("B", L"B", b, P::Always, false);
    rows.Finish();
    std::string const schema = lint::Schema();
    EXPECT_TRUE(IsValid(lint::Document(), schema));
    EXPECT_TRUE(IsValid("<HZNData Version=\"1.00\"><A>1</A><B>2</B></HZNData>", schema));
}

TEST_F(XsdRowsTest, RowsThatAreNotSavedAreUnknown) {
    double a = 1, b = 2;
    rows.Number("A", L"A", a);
    rows.Number("B", L"B", b, P::No);
    rows.Finish();
    EXPECT_TRUE(IsRefused("<HZNData Version=\"1.00\"><A>1</A><B>2</B></HZNData>", lint::Schema()));
}

TEST_F(XsdRowsTest, OrderIsThatOfTheDocument) {
    double a = 1, b = 2, c = 3;
    rows.Number("A", L"A", a);
    rows.Number("C", L"C", c);
    rows.Number("B", L"B", b);
    zo::xml::RegisterFirstOrdering(L"C");
    rows.Finish();
    std::string const schema = lint::Schema(); // the first to ask for the order
    EXPECT_TRUE(IsValid(lint::Document(), schema));
    EXPECT_TRUE(IsValid("<HZNData Version=\"1.00\"><C>3</C><A>1</A><B>2</B></HZNData>", schema));
    EXPECT_TRUE(IsRefused("<HZNData Version=\"1.00\"><A>1</A><B>2</B><C>3</C></HZNData>", schema));
}

TEST_F(XsdRowsTest, RowsThatCameAfterASaveStandBehind) {
    double a = 1, b = 2;
    rows.Number("B", L"B", b);
    rows.Finish();
    (void)lint::Document();
    rows.Number("A", L"A", a);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

// ---- Aliases

class XsdAliasTest : public XsdRowsTest {
protected:
    void Alias(std::string const& name, std::string const& source, bool asValue, MetaDataTraits const& traits = {}) {
        rows.Add(name, H(new zo::ZOAlias(source, IZO::npos, nullptr)), {P::Always, str::as_wstring(name), asValue},
                 traits);
    }
};

TEST_F(XsdAliasTest, ValueHasTheTypeOfItsSource) {
    double level = 3;
    Alias("Datum", "Level", true); // before its source
    rows.Number("Level", L"Level", level);
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, "<Datum>3</Datum>", "<Datum>three</Datum>"), schema));
}

TEST_F(XsdAliasTest, ValueWithoutASourceMayBeAnyText) {
    Alias("Datum", "Nowhere", true);
    rows.Finish();
    std::string const schema = lint::Schema();
    EXPECT_TRUE(IsValid(lint::Document(), schema));
    EXPECT_TRUE(IsValid("<HZNData Version=\"1.00\"><Datum>three</Datum></HZNData>", schema));
}

TEST_F(XsdAliasTest, AliasesInACircleMayBeAnyText) {
    Alias("First", "Second", true);
    Alias("Second", "First", true);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(XsdAliasTest, StructuresAndArraysHaveNoContentButTheLength) {
    plan::AddProject(rows, project);
    project = plan::Example();
    Alias("Plan", "Project", false);
    Alias("Corners", "Project.Points", false);
    Alias("Loads", "Project.Weights", true);
    rows.Finish();
    std::string const document = lint::Document();
    EXPECT_NE(document.find("<Corners Len=\"3\"/>"), document.npos);
    EXPECT_NE(document.find("<Plan/>"), document.npos);
    std::string const schema = lint::Schema();
    EXPECT_TRUE(IsValid(document, schema));
    // Elements at their defaults leave their places empty.
    EXPECT_TRUE(IsRefused(With(document, "<Loads>1,,2.5,<", "<Loads>1,,heavy,<"), schema));
}

// ---- Types

enum class Lining : unsigned char { None = 0, Clay = 1 };
namespace other {
enum class Lining : unsigned char { None = 0, Steel = 3 };
enum class number : unsigned char { One = 1 };
enum class HZNData : unsigned char { All = 1 };
} // namespace other
constexpr std::array linings{
    meta::EnumWord{0, L"None", L"-", L"-"},
    meta::EnumWord{1, L"a.\\?*+{}()[]|^-$,b \"&\" \u00E9", L"C", L"C"},
};
constexpr std::array steels{meta::EnumWord{0, L"None", L"", L""}, meta::EnumWord{3, L"Steel", L"", L""}};
constexpr std::array ones{meta::EnumWord{1, L"One", L"", L""}};
MetaDataTraits LiningTraits() {
    static MetaDataTraits const traits = meta::EnumTraits<Lining>(linings, Lining::None);
    return traits;
}

TEST_F(XsdRowsTest, WordsMayHoldAnyCharacter) {
    int lining = 1;
    std::vector<Lining> list{Lining::Clay, Lining::None, Lining::Clay};
    auto const traits = meta::ArrayTraits<std::vector<Lining>>([] { return LiningTraits(); });
    auto const record = meta::EnumTraits<Lining>(linings, Lining::None);
    Value("Lining", record, lining);
    rows.Add("Linings", ArrayPrototype(traits), {P::Always, L"Linings", true}, traits, &list);
    rows.Add("Linings.[]", ValuePrototype<int>(LiningTraits()), {P::Always, L""}, LiningTraits());
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, "<Linings>a.", "<Linings>ab"), schema));
    EXPECT_TRUE(IsRefused(With(document, ",None,", ",Nine,"), schema));
    EXPECT_TRUE(IsValid(With(document, ",None,", ",,"), schema));
    EXPECT_EQ(Count(schema, "<xs:simpleType name=\"Lining"), 2u); // the words, and lists of them
}

TEST_F(XsdRowsTest, TypesOfTheSameNameAreToldApart) {
    int a = 0, b = 3, c = 1, d = 1;
    double e = 1;
    Value("A", LiningTraits(), a);
    Value("B", meta::EnumTraits<other::Lining>(steels, other::Lining::None), b);
    Value("C", meta::EnumTraits<other::number>(ones, other::number::One), c);
    Value("D", meta::EnumTraits<other::HZNData>(ones, other::HZNData::All), d);
    rows.Number("E", L"E", e);
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, ">Steel<", ">a.<"), schema));
}

TEST_F(XsdRowsTest, OneTypeMayHaveOtherWordsElsewhere) {
    int a = 0, b = 3;
    Value("A", LiningTraits(), a);
    Value("B", meta::EnumTraits<Lining>(steels, Lining::None), b);
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, "<A>None<", "<A>Steel<"), schema));
}

TEST_F(XsdRowsTest, NumberWithoutAWordIsValid) {
    unsigned char stored = 200;
    rows.Add("Lining", ValuePrototype<int>(LiningTraits()), {P::Always, L"Lining", true}, LiningTraits(), &stored);
    rows.Finish();
    std::string const document = lint::Document();
    EXPECT_NE(document.find("<Lining>200</Lining>"), document.npos);
    EXPECT_TRUE(IsValid(document, lint::Schema()));
}

TEST_F(XsdRowsTest, TextWithSuggestionsMayBeAnyText) {
    auto record = std::make_shared<meta::MetaTraitsAtomic>(*Text().AsAtomic());
    record->valueList = [](std::vector<std::wstring>& out, int) { out = {L"Clay", L"Sand"}; };
    MetaDataTraits const traits{std::shared_ptr<meta::MetaTraits const>(record)};
    std::wstring soil = L"Peat";
    Value("Soil", traits, soil);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(XsdRowsTest, TypesThatNobodyKnowsMayHaveAnyText) {
    struct Chainage {};
    auto record = std::make_shared<meta::MetaTraitsAtomic>(*Number().AsAtomic());
    record->type = &typeid(Chainage);
    record->toWide = [](void const*, std::wstring& text, int, IZO const*) {
        text = L"12+345.6";
        return htl::status();
    };
    MetaDataTraits const traits{std::shared_ptr<meta::MetaTraits const>(record)};
    double value = 12345.6;
    Value("Station", traits, value);
    rows.Finish();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(XsdRowsTest, ListOfManyNumbersIsJudged) {
    std::vector<double> loads(100'000, 1.25);
    rows.Numbers("Loads", L"Loads", loads);
    rows.Finish();
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    EXPECT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, "1.25</Loads>", "1.2.5</Loads>"), schema));
}

// ---- Size

TEST_F(XsdRowsTest, SchemaGrowsWithTheRowsAlone) {
    std::vector<double> values(2000);
    auto const add = [&](int from, int to) {
        for (int i = from; i < to; ++i) {
            std::string const name = "Well" + std::to_string(i);
            rows.Branch(name, str::as_wstring(name));
            for (int k = 0; k < 9; ++k) {
                std::string const field = "Level" + std::to_string(k);
                rows.Number(name + "." + field, str::as_wstring(field), values[0]);
            }
        }
    };
    add(100, 120);
    rows.Finish();
    std::size_t const small = lint::Schema().size();
    add(120, 200);
    rows.Finish();
    std::string const large = lint::Schema();
    EXPECT_LT(large.size(), 5 * small);
    EXPECT_EQ(Count(large, "<xs:simpleType name=\"number\">"), 1u);
    EXPECT_TRUE(IsValid(lint::Document(), large));
}

// ---- Failures

TEST_F(XsdRowsTest, PathThatCanNotBeWrittenGivesTheFilesFailure) {
    rows.Finish();
    std::wstring const path = files::WidePath("gone/schema.xsd");
    EXPECT_TRUE(FailsAs(zo::schema::SaveXsd(path), htl::status(90003, path, L"No such file or directory")));
    EXPECT_TRUE(zo::schema::SaveXsd(std::wstring(1, wchar_t(0xDFFF))).Is(90011));
}

TEST_F(XsdRowsTest, FailedSaveLeavesTheOldFileAndNothingElse) {
    rows.Finish();
    files::Store(files::Path("old.xsd"), "old");
    std::vector<std::string> const before = files::Names();
    htl::status failure;
    {
        files::SizeLimit const limit(100);
        failure = zo::schema::SaveXsd(files::WidePath("old.xsd"));
    }
    EXPECT_TRUE(FailsAs(failure, htl::status(90003, files::WidePath("old.xsd"), L"File too large")));
    EXPECT_EQ(files::Bytes(files::Path("old.xsd")), "old");
    EXPECT_EQ(files::Names(), before);
}

TEST_F(XsdRowsTest, TextReplacesWhatWasThere) {
    rows.Finish();
    std::string text = "old";
    ASSERT_TRUE(Succeeds(zo::schema::XsdText(text)));
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xs:schema "));
    EXPECT_TRUE(text.ends_with("</xs:schema>\n"));
}

} // namespace
