// The XML Schema of the document: what the library writes is valid by it, and what nobody would write is not.
#include "Common/schema/Xsd.h"
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/present/UnitsProvider.h"
#include "Common/redirect/ZOAlias.h"
#include "tests/fixtures/ViewModel.h"
#include "tests/kit/Site.h"
#include "tests/schema/Files.h"
#include "tests/schema/Lint.h"
#include "tests/xml/Plan.h"

#include "support/describe.h"
#include "support/text.h"

#include <array>
#include <deque>
#include <limits>
#include <map>

namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using fixture::TableText;
using lint::IsRefused;
using lint::IsValid;
using lint::SavesWhatItsSchemaTells;
using lint::With;
using zo::kit::Kit;
using Filter = std::vector<std::wstring>;

// ---- The schema itself

struct Well {
    double depth = 12; // metres
    site::Method method = site::Method::Auger;
};
struct Survey {
    std::wstring title = L"North <bank>";
    std::vector<site::Point> points{{1.5, 0}, {0, -2}};
    std::vector<double> levels{3, 2.5};
    std::vector<Well> wells{Well()};
};

class SurveyTest : public site::KitTest {
protected:
    void Declare() {
        Register({&site::PointModule, {[this](Kit& kit) {
                      kit.Enum<site::Method>(site::methods);
                      kit.Record<Well>("Well")
                          .Field<&Well::depth>("Depth", L"Depth", {.unit = zo::kit::Kind::Length})
                          .Field<&Well::method>("Method", L"Method");
                      kit.Record<Survey>("Survey")
                          .Field<&Survey::title>("Title", L"Title")
                          .Array<&Survey::points>("Points", L"Points[Point]")
                          .Array<&Survey::levels>("Levels", L"Levels")
                          .Array<&Survey::wells>("Wells", L"Wells[Well]");
                      kit.Branch<Survey>("Survey", L"Survey", [this] { return &survey; });
                  }}});
    }

    Survey survey;
};

TEST_F(SurveyTest, SchemaHasATypeForEachElementAndForEachSortOfText) {
    Declare();
    EXPECT_EQ(lint::Schema(), R"x(<?xml version="1.0" encoding="UTF-8"?>
<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">
  <xs:annotation>
    <xs:documentation>The project document. Elements stand in the order in which they are declared. What is absent is at its default, or not there at all.</xs:documentation>
  </xs:annotation>
  <xs:element name="HZNData" type="HZNData"/>
  <xs:complexType name="HZNData">
    <xs:sequence>
      <xs:element name="Survey" type="HZNData.Survey" minOccurs="0"/>
    </xs:sequence>
    <xs:attribute name="Version" type="version" use="required"/>
    <xs:attribute name="AppVersion" type="appVersion"/>
  </xs:complexType>
  <xs:complexType name="HZNData.Survey">
    <xs:sequence>
      <xs:element name="Title" type="textElement" minOccurs="0"/>
      <xs:element name="Points" type="HZNData.Survey.Points" minOccurs="0"/>
      <xs:element name="Levels" type="numberListElement" minOccurs="0"/>
      <xs:element name="Wells" type="HZNData.Survey.Wells" minOccurs="0"/>
    </xs:sequence>
  </xs:complexType>
  <xs:complexType name="HZNData.Survey.Points">
    <xs:sequence>
      <xs:element name="Point" type="HZNData.Survey.Points.Point" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:attribute name="Len" type="length" use="required"/>
  </xs:complexType>
  <xs:complexType name="HZNData.Survey.Points.Point">
    <xs:attribute name="X" type="number"/>
    <xs:attribute name="Y" type="number"/>
  </xs:complexType>
  <xs:complexType name="HZNData.Survey.Wells">
    <xs:sequence>
      <xs:element name="Well" type="HZNData.Survey.Wells.Well" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:attribute name="Len" type="length" use="required"/>
  </xs:complexType>
  <xs:complexType name="HZNData.Survey.Wells.Well">
    <xs:sequence>
      <xs:element name="Depth" type="numberElement" minOccurs="0">
        <xs:annotation>
          <xs:documentation>Length</xs:documentation>
        </xs:annotation>
      </xs:element>
      <xs:element name="Method" type="MethodElement" minOccurs="0"/>
    </xs:sequence>
  </xs:complexType>
  <xs:simpleType name="version">
    <xs:restriction base="xs:token">
      <xs:pattern value="[0-9]+(\.[0-9]+)?"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:simpleType name="appVersion">
    <xs:restriction base="xs:token">
      <xs:pattern value="[0-9]+(\.[0-9]+){0,3}"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:simpleType name="missing">
    <xs:restriction base="xs:token">
      <xs:pattern value="true"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:complexType name="textElement">
    <xs:simpleContent>
      <xs:extension base="xs:string">
        <xs:attribute name="Missing" type="missing"/>
      </xs:extension>
    </xs:simpleContent>
  </xs:complexType>
  <xs:simpleType name="number">
    <xs:restriction base="xs:token">
      <xs:pattern value="([+\-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+\-]?[0-9]+)?)?"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:simpleType name="numberList">
    <xs:restriction base="xs:token">
      <xs:pattern value="( ?[+\-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+\-]?[0-9]+)? ?)?(,( ?[+\-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+\-]?[0-9]+)? ?)?)*"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:complexType name="numberListElement">
    <xs:simpleContent>
      <xs:extension base="numberList">
        <xs:attribute name="Missing" type="missing"/>
      </xs:extension>
    </xs:simpleContent>
  </xs:complexType>
  <xs:simpleType name="length">
    <xs:restriction base="xs:unsignedInt">
      <xs:maxInclusive value="2147483647"/>
      <xs:pattern value="[0-9]+"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:complexType name="numberElement">
    <xs:simpleContent>
      <xs:extension base="number">
        <xs:attribute name="Missing" type="missing"/>
      </xs:extension>
    </xs:simpleContent>
  </xs:complexType>
  <xs:simpleType name="empty">
    <xs:restriction base="xs:token">
      <xs:length value="0"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:simpleType name="int">
    <xs:union memberTypes="xs:int empty"/>
  </xs:simpleType>
  <xs:simpleType name="Method">
    <xs:union memberTypes="int">
      <xs:simpleType>
        <xs:restriction base="xs:string">
          <xs:enumeration value="Rotary"/>
          <xs:enumeration value="Percussion"/>
          <xs:enumeration value="Auger"/>
        </xs:restriction>
      </xs:simpleType>
    </xs:union>
  </xs:simpleType>
  <xs:complexType name="MethodElement">
    <xs:simpleContent>
      <xs:extension base="Method">
        <xs:attribute name="Missing" type="missing"/>
      </xs:extension>
    </xs:simpleContent>
  </xs:complexType>
</xs:schema>
)x");
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(SurveyTest, FileHoldsTheSameSchemaAsTheText) {
    Declare();
    ASSERT_TRUE(Succeeds(zo::schema::SaveXsd(files::WidePath("survey.xsd"))));
    EXPECT_EQ(files::Bytes(files::Path("survey.xsd")), lint::Schema());
}

TEST_F(SurveyTest, SchemaDoesNotDependOnValues) {
    Declare();
    std::string const schema = lint::Schema();
    survey = Survey{L"", {}, {}, {}};
    EXPECT_EQ(lint::Schema(), schema);
}

TEST_F(SurveyTest, RegistryWithoutSavedRowsHasAnEmptyDocument) {
    Register({});
    EXPECT_TRUE(SavesWhatItsSchemaTells());
    EXPECT_TRUE(IsRefused("<HZNData Version=\"1.00\" AppVersion=\"1\"><Survey/></HZNData>", lint::Schema()));
}

TEST_F(SurveyTest, LabelsAndKindsAreDocumentation) {
    Declare();
    ASSERT_TRUE(Succeeds(dam::Compile(TableText::WithDefault()
                                          .Entry(L"Survey.Wells.[].Depth", {{L"Label", L"&Depth < \"top\""}})
                                          .Entry(L"Survey.Title", {{L"Label", L"Name"}}))));
    math::UnitSet const metric = hzn::units::SystemUnitSet(math::unitsystem::Metric);
    math::UnitSet const imperial = hzn::units::SystemUnitSet(math::unitsystem::Imperial);
    zo::RegisterUnitsProvider([=] { return metric; }, {}, [=](hzn::units::Kind::Type) { return imperial; });
    std::string const schema = lint::Schema();
    EXPECT_NE(schema.find("<xs:documentation>Depth &lt; &quot;top&quot; (Length, m)</xs:documentation>"), schema.npos);
    EXPECT_NE(schema.find("<xs:documentation>Name</xs:documentation>"), schema.npos);
    EXPECT_TRUE(IsValid(lint::Document(), schema));
}

// ---- Documents of the example project

class EmbankmentXsdTest : public embankment::EmbankmentTest {};

TEST_F(EmbankmentXsdTest, WholeDocumentIsValid) { EXPECT_TRUE(SavesWhatItsSchemaTells()); }

TEST_F(EmbankmentXsdTest, DocumentWithoutABranchIsValid) {
    embankment.ShowResults(false);
    embankment.ShowWaterTable(false);
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(EmbankmentXsdTest, DocumentOfAnEmptyModelIsValid) {
    embankment.model = embankment::Model();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(EmbankmentXsdTest, MissingValuesAndOddNumbersAreValid) {
    auto& soils = embankment.model.soils;
    soils[0].cohesion = std::numeric_limits<double>::max(); // missing
    soils[0].friction = std::numeric_limits<double>::infinity();
    soils[0].unitWeight = 1e-300;
    soils[0].drainage = static_cast<embankment::Drainage>(200); // without a word
    soils[1].cohesion = -1e21;
    soils[1].unitWeight = -0.0;
    soils[1].anisotropy[1] = 1e-7;
    soils[1].anisotropy[2] = std::numeric_limits<double>::quiet_NaN();
    soils[2].color = std::numeric_limits<unsigned long>::max();
    soils[2].name = L"  \t\n<&>\"' ";
    embankment.model.regions[0].points = {std::numeric_limits<int>::max(), 0, -5, 0};
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

class FilteredXsdTest : public EmbankmentXsdTest, public testing::WithParamInterface<Filter> {};

TEST_P(FilteredXsdTest, IsValid) {
    Filter const filter = GetParam();
    EXPECT_TRUE(SavesWhatItsSchemaTells(&filter));
}

INSTANTIATE_TEST_SUITE_P(Documents, FilteredXsdTest,
                         testing::Values(Filter{L""}, Filter{L"HZNData"}, Filter{L"HZNData.Soils"},
                                         Filter{L"HZNData.Soils[2]"}, Filter{L"HZNData.Soils[2].Friction"},
                                         Filter{L"HZNData.Points[3]"}, Filter{L"HZNData.Points[3].X"},
                                         Filter{L"HZNData.Regions[1].Points"}, Filter{L"HZNData.Regions[1].Points[2]"},
                                         Filter{L"HZNData.Results.Slips[1]", L"HZNData.Project.Title"},
                                         Filter{L"HZNData.P"}, Filter{L"HZNData.Soils[99]"},
                                         Filter{L"HZNData.WaterTable.Points[1]", L"HZNData.Soils[1]"}));

// ---- Documents that nobody would write

struct Wrong {
    char const* what;
    char const* from;
    char const* to;
};
void PrintTo(Wrong const& wrong, std::ostream* out) { *out << wrong.what; }

class WrongXsdTest : public EmbankmentXsdTest, public testing::WithParamInterface<Wrong> {};

TEST_P(WrongXsdTest, IsRefused) {
    std::string const schema = lint::Schema();
    std::string const document = lint::Document();
    ASSERT_TRUE(IsValid(document, schema));
    EXPECT_TRUE(IsRefused(With(document, GetParam().from, GetParam().to), schema));
}

INSTANTIATE_TEST_SUITE_P(
    Documents, WrongXsdTest,
    testing::Values(
        Wrong{"unknown element", "<Cohesion>25</Cohesion>", "<Adhesion>25</Adhesion>"},
        Wrong{"unknown branch", "<Results>", "<Loads/><Results>"},
        Wrong{"unknown attribute of a record", "<Point X=\"40\"/>", "<Point Z=\"40\"/>"},
        Wrong{"unknown attribute of a structure", "<Project>", "<Project Owner=\"me\">"},
        Wrong{"unknown attribute of a value", "<Color>255", "<Color Space=\"rgb\">255"},
        Wrong{"unknown attribute of the document", "AppVersion=", "Author=\"me\" AppVersion="},
        Wrong{"element of another structure", "<Title>", "<Radius>3</Radius><Title>"},
        Wrong{"wrong order", "<Friction>18</Friction>\n      <UnitWeight>19.5</UnitWeight>",
              "<UnitWeight>19.5</UnitWeight><Friction>18</Friction>"},
        Wrong{"element given twice", "<Friction>18</Friction>", "<Friction>18</Friction><Friction>18</Friction>"},
        Wrong{"element in a record", "<Point X=\"40\"/>", "<Point X=\"40\"><Y>1</Y></Point>"},
        Wrong{"element in a value", "<Color>255</Color>", "<Color><Red>255</Red></Color>"},
        Wrong{"entry of another array", "<Slip>", "<Soil/><Slip>"},
        Wrong{"entry under its array's tag", "<Point/>", "<Points/>"},
        Wrong{"text in a structure", "<Project>", "<Project>Dam"},
        Wrong{"text in an array", "<Soils Len=\"3\">", "<Soils Len=\"3\">1,2,3"},
        Wrong{"text in a record", "<Point X=\"40\"/>", "<Point>40</Point>"},
        Wrong{"text in the document element", "<Project>", "Dam<Project>"},
        Wrong{"word that the enumeration lacks", ">Undrained<", ">Soaked<"},
        Wrong{"word in another case", ">Undrained<", ">undrained<"},
        Wrong{"letters for a number", "<Cohesion>25<", "<Cohesion>abc<"},
        Wrong{"number with a unit", "<Cohesion>25<", "<Cohesion>25 kPa<"},
        Wrong{"decimal comma", "<Radius>42.5<", "<Radius>42,5<"}, Wrong{"infinity", "<Cohesion>25<", "<Cohesion>INF<"},
        Wrong{"hexadecimal number", "<Cohesion>25<", "<Cohesion>0x19<"},
        Wrong{"letters in a record's number", "X=\"40\"", "X=\"forty\""},
        Wrong{"fraction for a whole number", "<Color>255<", "<Color>25.5<"},
        Wrong{"negative number for an unsigned one", "<Color>255<", "<Color>-1<"},
        Wrong{"whole number out of range", "<Soil>1<", "<Soil>2147483648<"},
        Wrong{"letters in a list", "<Points>1,2,3<", "<Points>1,b,3<"},
        Wrong{"fraction in a list of whole numbers", "<Points>1,2,3<", "<Points>1,2.5,3<"},
        Wrong{"list with another separator", "<Points>1,2,3<", "<Points>1;2;3<"},
        Wrong{"list with blanks between numbers", "<Points>1,2,3<", "<Points>1 2 3<"},
        Wrong{"negative length", "<Soils Len=\"3\">", "<Soils Len=\"-3\">"},
        Wrong{"length that is no number", "<Soils Len=\"3\">", "<Soils Len=\"three\">"},
        Wrong{"length with a fraction", "<Soils Len=\"3\">", "<Soils Len=\"3.0\">"},
        Wrong{"length with a sign", "<Soils Len=\"3\">", "<Soils Len=\"+3\">"},
        Wrong{"length beyond all arrays", "<Soils Len=\"3\">", "<Soils Len=\"2147483648\">"},
        Wrong{"no length", "<Soils Len=\"3\">", "<Soils>"},
        Wrong{"length of what is no array", "<Project>", "<Project Len=\"1\">"},
        Wrong{"Missing that isn't true", "<Title>Tailings dam</Title>", "<Title Missing=\"perhaps\"/>"},
        Wrong{"Missing on a structure", "<Project>", "<Project Missing=\"true\">"},
        Wrong{"no version", "Version=\"12.03\" ", ""},
        Wrong{"version that is no number", "Version=\"12.03\"", "Version=\"twelve\""},
        Wrong{"empty version", "Version=\"12.03\"", "Version=\"\""},
        Wrong{"version with too many parts", "Version=\"12.03\"", "Version=\"12.03.1\""},
        Wrong{"version of an application that is none", "AppVersion=\"0.0.0.0\"", "AppVersion=\"0.0.0.0.0\""},
        Wrong{"another document element", "<Results>", "<HZNData Version=\"12.03\"/><Results>"}));

TEST_F(EmbankmentXsdTest, DocumentOfAnotherApplicationIsRefused) {
    EXPECT_TRUE(IsRefused("<Drawing Version=\"1.00\"/>", lint::Schema()));
    EXPECT_TRUE(IsRefused("<d:HZNData xmlns:d=\"urn:drawing\" Version=\"1.00\"/>", lint::Schema()));
}

TEST_F(EmbankmentXsdTest, WhatPeopleTypeAroundNumbersIsValid) {
    std::string const schema = lint::Schema();
    std::string document = lint::Document();
    document = With(document, "<Points>1,2,3<", "<Points>\n 1, 2 ,+3, \n<");
    document = With(document, "<Cohesion>25<", "<Cohesion> +2.5E+1 <");
    document = With(document, "<Color>255<", "<Color> 255\n<");
    document = With(document, " AppVersion=\"0.0.0.0\"", "");
    EXPECT_TRUE(IsValid(document, schema));
}

TEST_F(EmbankmentXsdTest, ProgramKnowsWhatIsNoSchema) {
    EXPECT_FALSE(
        IsValid(lint::Document(), "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:bog/></xs:schema>"));
    EXPECT_FALSE(IsRefused(lint::Document(), "no schema at all"));
    EXPECT_FALSE(IsRefused("<HZNData", lint::Schema()));
}

// ---- Values of all types, and containers of all sorts

struct Peg {
    std::wstring name;
    double level = 0; // metres
};
struct Everything {
    std::vector<site::Instrument> instruments;
    std::array<std::array<int, 2>, 2> grid{{{1, 2}, {3, 4}}};
    std::vector<std::vector<double>> readings{{1, 2.5}, {}, {3}};
    std::vector<std::wstring> notes{L"a,b", L"", L"(c"};
    std::deque<site::Method> methods{site::Method::Auger, site::Method::Rotary, static_cast<site::Method>(77)};
    std::deque<double> steps{0, 1, 0};
    std::map<int, double> settlements{{3, 1.5}, {-7, 0}};
    std::map<std::wstring, site::Point> marks{{L"", {1, 2}}, {L"a \"b\"", {}}};
    std::map<int, std::map<int, int>> matrix{{1, {{2, 3}}}, {4, {}}};
    std::vector<Peg> pegs{{L"North", 1}, {L"South", 0}};
    bool flag = true;
};

class EverythingTest : public site::KitTest {
protected:
    void Declare(zo::kit::Persist persist) {
        Register({&site::PointModule, &site::InstrumentModule, {[=, this](Kit& kit) {
                      kit.Record<Peg>("Peg", {.attributes = true})
                          .Field<&Peg::name>("Name", L"Name", {.persist = persist})
                          .Field<&Peg::level>("Level", L"Level", {.persist = persist});
                      kit.Record<Everything>("Everything")
                          .Array<&Everything::instruments>("Instruments", L"Instruments[Instrument]")
                          .Array<&Everything::grid>("Grid", L"Grid[Row]", {.persist = persist})
                          .Array<&Everything::readings>("Readings", L"Readings[Row]", {.persist = persist})
                          .Array<&Everything::notes>("Notes", L"Notes[Note]", {.persist = persist})
                          .Array<&Everything::methods>("Methods", L"Methods",
                                                       {.dflt = site::Method::Rotary, .persist = persist})
                          .Array<&Everything::steps>("Steps", L"Steps[Step]", {.persist = persist})
                          .Map<&Everything::settlements>("Settlements", L"Settlements[Settlement]")
                          .Map<&Everything::marks>("Marks", L"Marks[Mark]")
                          .Map<&Everything::matrix>("Matrix", L"Matrix[Line]")
                          .Keyed<&Everything::pegs, &Peg::name>("Pegs", L"Pegs[Peg]")
                          .Field<&Everything::flag>("Flag", L"Flag", {.persist = persist});
                      kit.Branch<Everything>("Everything", L"Everything", [this] { return &everything; });
                  }}});
    }
    void Fill() {
        everything.instruments.resize(3);
        auto& last = everything.instruments.back();
        last = {255,
                std::numeric_limits<int>::lowest(),
                std::numeric_limits<unsigned>::max() - 1,
                std::numeric_limits<long>::lowest(),
                std::numeric_limits<unsigned long>::max() - 1,
                std::numeric_limits<float>::denorm_min(),
                std::numeric_limits<double>::lowest(),
                std::numeric_limits<htl::Int64>::lowest(),
                std::numeric_limits<htl::UInt64>::max() - 1,
                true,
                "\t<&>\"' ",
                L"]]> \U0001D400\x01",
                static_cast<DataParamType>(std::numeric_limits<int>::max()),
                static_cast<site::Method>(200)};
        auto& missing = everything.instruments.front();
        missing.offset = std::numeric_limits<int>::max();
        missing.serial = std::numeric_limits<unsigned>::max();
        missing.reference = std::numeric_limits<long>::max();
        missing.gain = std::numeric_limits<float>::max();
        missing.reading = std::numeric_limits<double>::max();
        missing.taken = std::numeric_limits<htl::Int64>::max();
    }

    Everything everything;
};

TEST_F(EverythingTest, DocumentIsValidWhereAllIsWritten) {
    Declare(zo::kit::Persist::Always);
    Fill();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(EverythingTest, DocumentIsValidWhereDefaultsAreLeftOut) {
    Declare(zo::kit::Persist::IfNotDefault);
    Fill();
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(EverythingTest, DocumentOfAnEmptyObjectIsValid) {
    Declare(zo::kit::Persist::Always);
    everything = Everything{{}, {}, {}, {}, {}, {}, {}, {}, {}, {}, false};
    EXPECT_TRUE(SavesWhatItsSchemaTells());
}

TEST_F(EverythingTest, FilteredDocumentsAreValid) {
    Declare(zo::kit::Persist::Always);
    Fill();
    for (wchar_t const* const text :
         {L"HZNData.Everything.Instruments[2]", L"HZNData.Everything.Readings[1]", L"HZNData.Everything.Readings[1][2]",
          L"HZNData.Everything.Settlements[2]", L"HZNData.Everything.Matrix[1]", L"HZNData.Everything.Steps[2]"}) {
        Filter const filter{text};
        EXPECT_TRUE(SavesWhatItsSchemaTells(&filter)) << testing::PrintToString(std::wstring(text));
    }
}

} // namespace
