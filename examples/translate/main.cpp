// The functions and documents that docs/translation.md quotes, and a program that runs them.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <kit/kit.h>
#include <sstream>
#include <string_view>
#include <zo/zo.h>

struct Anchor {
    std::wstring name = L"A1";
    double length = 12; // m
    double force = 300; // kN
};
struct Wall {
    std::vector<Anchor> anchors{{}};
} wall;

void WallModule(zo::kit::Kit& kit) {
    using zo::kit::Kind;
    kit.Record<Anchor>("Anchor")
        .Field<&Anchor::name>("Name", L"Name")
        .Field<&Anchor::length>("Length", L"Length", {.unit = Kind::Length})
        .Field<&Anchor::force>("Force", L"Force", {.unit = Kind::Force});
    kit.Record<Wall>("Wall").Array<&Wall::anchors>("Anchors", L"Anchors[Anchor]");
    kit.Branch<Wall>("Wall", L"Wall", [] { return &wall; });
}

// The application's table, as of its first version.
constexpr std::string_view firstVersion = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Rows="5">
  <Row Tag="Default" Category="General"/>
  <Row Tag="Wall" Label="Wall" Style="header"/>
  <Row Tag="Wall.Anchors" Label="Anchors" Style="table"/>
  <Row Tag="Anchor" Label="Anchor" LabelTag="!Label Name"/>
  <Row Tag="Anchor.Length" Label="Length" Description="From the wall to the end of the grout"/>
</Meta_ExtendedInfo>
)";

// As of its second: a heading is gone, a field has a label.
constexpr std::string_view secondVersion = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Rows="5">
  <Row Tag="Default" Category="General"/>
  <Row Tag="Wall.Anchors" Label="Anchors" Style="table"/>
  <Row Tag="Anchor" Label="Anchor" LabelTag="!Label Name"/>
  <Row Tag="Anchor.Length" Label="Length" Description="From the wall to the end of the grout"/>
  <Row Tag="Anchor.Force" Label="Force" Description="When it is locked off"/>
</Meta_ExtendedInfo>
)";

// What a translator gets, and what comes back.
constexpr std::string_view forTranslator = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Len="4">
  <Entry Tag="Anchor" Label="Anchor" Description=""/>
  <Entry Tag="Anchor.Length" Label="Length" Description="From the wall to the end of the grout"/>
  <Entry Tag="Wall" Label="Wall" Description=""/>
  <Entry Tag="Wall.Anchors" Label="Anchors" Description=""/>
</Meta_ExtendedInfo>
)";
constexpr std::string_view translated = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Len="4">
  <Entry Tag="Anchor" Label="Anker" Description=""/>
  <Entry Tag="Anchor.Length" Label="Länge" Description="Von der Wand bis zum Ende der Verpressstrecke"/>
  <Entry Tag="Wall" Label="Wand" Description=""/>
  <Entry Tag="Wall.Anchors" Label="Anker" Description=""/>
</Meta_ExtendedInfo>
)";

// What the translator gets for the second version.
constexpr std::string_view forTranslatorAgain = R"(<?xml version="1.0" encoding="UTF-8"?>
<Meta_ExtendedInfo Len="4">
  <Entry Tag="Anchor" Label="Anker" Description=""/>
  <Entry Tag="Anchor.Force" Label="Force" Description="When it is locked off"/>
  <Entry Tag="Anchor.Length" Label="Länge" Description="Von der Wand bis zum Ende der Verpressstrecke"/>
  <Entry Tag="Wall.Anchors" Label="Anker" Description=""/>
</Meta_ExtendedInfo>
)";

// The texts of a table for a translator, with what was translated before; `earlier` is empty the first time.
htl::status WriteTexts(std::string_view table, std::wstring const& earlier, std::wstring const& file) {
    if (htl::status failure = zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()); failure.IsError())
        return failure;
    return zo::MergeExtendedInfoLocTextToFile(earlier, file);
}

// The application's start in another language: its table, then the translator's file.
htl::status Start(std::string_view table, std::wstring const& translation) {
    htl::status failure = zo::ZOExtendedInfoRead(table.data(), table.data() + table.size());
    if (!failure.IsError()) failure = zo::ZOExtendedInfoRead(translation);
    if (failure.IsError()) return failure;
    return zo::CompileExtendedInfo();
}

void Print(std::wstring const& line) { std::cout << str::as_cstring(line) << '\n'; }

// A registry of its own for each start of the application, with the wall. It stays to the end, as an application's
// does.
void NewRegistry() {
    static std::vector<htl::handle<zo::ZORegistry>> all;
    all.emplace_back(new zo::ZORegistry);
    zo::ZORegistry::SetInstance(all.back().get());
    zo::kit::Report const report = zo::kit::Register({WallModule});
    if (!report.IsClean()) Print(report.Text());
}

bool Holds(std::filesystem::path const& file, std::string_view expected) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    std::cout << text.str();
    return text.str() == expected;
}

bool Run(std::filesystem::path const& folder) {
    std::filesystem::path const texts = folder / "texts.xml";
    std::filesystem::path const german = folder / "german.xml";
    bool right = true;
    auto const expect = [&right](htl::status const& status) {
        if (status.IsError()) Print(status.AsWString());
        right = right && !status.IsError();
    };
    NewRegistry();
    expect(WriteTexts(firstVersion, L"", texts.wstring()));
    right = Holds(texts, forTranslator) && right;
    std::ofstream(german) << translated;

    NewRegistry();
    expect(Start(firstVersion, german.wstring()));
    Print(zo::Label("Wall.Anchors[0]") + L": " + zo::Label("Wall.Anchors[0].Length"));
    Print(zo::Description(zo::Find("Wall.Anchors[0].Length")));

    // The second version begins with what there is, and the file for the translator may take the place of the old one.
    NewRegistry();
    expect(WriteTexts(secondVersion, german.wstring(), german.wstring()));
    right = Holds(german, forTranslatorAgain) && right;

    NewRegistry();
    expect(Start(secondVersion, german.wstring()));
    Print(zo::Label("Wall.Anchors[0].Length") + L", " + zo::Label("Wall.Anchors[0].Force"));
    return right;
}

int main() {
    std::string name = (std::filesystem::temp_directory_path() / "zo-translate-XXXXXX").string();
    if (!::mkdtemp(name.data())) return 1;
    bool const right = Run(name);
    std::filesystem::remove_all(name);
    return right ? 0 : 1;
}
