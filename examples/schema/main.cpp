// The functions that docs/schema.md quotes, and a program that runs them and compares what they write with the page.
#include <array>
#include <fstream>
#include <iostream>
#include <iterator>
#include <kit/kit.h>
#include <zo/zo.h>

#include <cstdlib>
#include <filesystem>

enum class Drainage : unsigned char { Drained = 0, Undrained = 1 };
constexpr std::array drainageWords{
    meta::EnumWord{0, L"Drained", L"D", L"Drained"},
    meta::EnumWord{1, L"Undrained", L"U", L"Not drained"},
};

struct Soil {
    std::wstring name;
    double cohesion = 0; // kPa
    Drainage drainage = Drainage::Drained;
};
struct Survey {
    std::vector<Soil> soils{{L"Clay", 25, Drainage::Undrained}, {L"Sand", 0, Drainage::Drained}};
    std::vector<double> levels{12, 9.5};
} survey;

void SurveyModule(zo::kit::Kit& kit) {
    kit.Enum<Drainage>(drainageWords);
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.unit = zo::kit::Kind::Stress})
        .Field<&Soil::drainage>("Drainage", L"Drainage");
    kit.Record<Survey>("Survey")
        .Array<&Survey::soils>("Soils", L"Soils[Soil]")
        .Array<&Survey::levels>("Levels", L"Levels");
    kit.Branch<Survey>("Survey", L"Survey", [] { return &survey; });
}

constexpr std::string_view table = R"(<Meta_ExtendedInfo Rows="2">
  <Row Tag="Default"/>
  <Row Tag="Survey.Soils.[].Cohesion" Label="&amp;Cohesion" Category="Strength" ViewExcl="report"/>
</Meta_ExtendedInfo>)";

math::UnitSet Metric() { return hzn::units::SystemUnitSet(math::unitsystem::Metric); }

htl::status Describe(std::wstring const& folder) {
    if (htl::status failure = zo::schema::Save(folder + L"/rows.xml"); failure.IsError()) return failure;
    if (htl::status failure = zo::schema::Save(0, folder + L"/view.xml"); failure.IsError()) return failure;
    return zo::schema::SaveXsd(folder + L"/document.xsd");
}

// What the page shows of the files, and what it says of it.
constexpr std::string_view rowOfCohesion =
    R"(<Entry RegID="5" ZOName="Survey.Soils.[].Cohesion" NTag="Survey.Soils.[].Cohesion" DataType="double" UnitKind="Stress" Units="kPa" PersistBehaviour="Always" IsPersistedAsValue="true" IsAllChildrenValue="false" ViewTravSubID="18446744073709551615" ViewTravNextID="6" ExtendedInfoSearchTag="Survey.Soils.[].Cohesion" Label="&amp;Cohesion" Description="" PrettyPrintNameSubTag="" PrettyPrintValueSubTag="" ColorSubTag="" CustomView="" Category="Strength" ViewExcl="report" Physics="all" Modes="all"/>
)";
constexpr std::string_view wordOfDrainage =
    R"(<Entry RegID="6" ZOName="Survey.Soils.[].Drainage.Undrained" NTag="Undrained" DataType="Survey.Soils.[].Drainage" AbbrevValue="U" PrettyPrintValue="Not drained"/>
)";
constexpr std::string_view typeOfSoil =
    R"(  <xs:complexType name="HZNData.Survey.Soils.Soil">
    <xs:sequence>
      <xs:element name="Name" type="textElement" minOccurs="0"/>
      <xs:element name="Cohesion" type="numberElement" minOccurs="0">
        <xs:annotation>
          <xs:documentation>Cohesion (Stress, kPa)</xs:documentation>
        </xs:annotation>
      </xs:element>
      <xs:element name="Drainage" type="DrainageElement" minOccurs="0"/>
    </xs:sequence>
  </xs:complexType>
)";

bool Holds(std::filesystem::path const& file, std::string_view piece) {
    std::ifstream in(file, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    return text.find(piece) != text.npos;
}

int main() {
    zo::kit::Report const report = zo::kit::Register({&SurveyModule});
    if (!report.IsClean()) return std::wcerr << report.Text(), 1;
    zo::RegisterUnitsProvider(&Metric, {}, [](hzn::units::Kind::Type) { return Metric(); });
    htl::status failure = zo::ZOExtendedInfoRead(table.data(), table.data() + table.size());
    if (!failure.IsError()) failure = zo::CompileExtendedInfo();
    if (failure.IsError()) return std::wcerr << failure.AsWString() << L'\n', 1;

    std::string pattern = (std::filesystem::temp_directory_path() / "survey-XXXXXX").string();
    if (!mkdtemp(pattern.data())) return 1;
    std::filesystem::path const folder = pattern;
    failure = Describe(str::as_wstring(pattern));
    bool const isAsTold = Holds(folder / "rows.xml", rowOfCohesion) && Holds(folder / "rows.xml", wordOfDrainage) &&
                          Holds(folder / "view.xml", rowOfCohesion) && Holds(folder / "document.xsd", typeOfSoil);
    std::error_code ignored; // a folder that stays behind does no harm
    std::filesystem::remove_all(folder, ignored);
    if (failure.IsError()) return std::wcerr << failure.AsWString() << L'\n', 1;
    std::wcout << (isAsTold ? L"the files hold what the page shows\n" : L"the files hold something else\n");

    failure = zo::schema::SaveXsd(L"/nowhere/document.xsd");
    std::wcout << failure.AsWString() << L'\n';
}
