#include "bench/peers/Documents.h"

#include "support/text.h"

#include <kit/kit.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace peers {
namespace {

hzn::version::NumberKind<0> const fileVersion{1, 0};

std::string ContentOf(std::filesystem::path const& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content(std::filesystem::file_size(path), '\0');
    Require(file.read(content.data(), static_cast<std::streamsize>(content.size())).good(),
            path.string() + " can't be read");
    return content;
}

std::string AsUtf8(std::wstring const& text) {
    std::string bytes;
    str::AppendUtf8(bytes, text);
    return bytes;
}

void RequireSuccess(htl::status const& status, char const* what) {
    if (status.IsError()) throw std::runtime_error(what + (": " + AsUtf8(status.AsWString())));
}

/// Whatever of a document leads nowhere is a failure.
void RequireAll(std::vector<htl::status> const& errors) {
    if (!errors.empty()) RequireSuccess(errors.front(), "a document was not read in full");
}

} // namespace

std::string Environment(char const* name, std::string const& otherwise) {
    char const* const value = std::getenv(name);
    return value && *value ? value : otherwise;
}

OutputFile::OutputFile(std::string const& name)
    : path(std::filesystem::path(Environment("PEER_TMP", std::filesystem::temp_directory_path())) /
           ("zo_peer_" + std::to_string(getpid()) + "_" + name + ".xml")) {}

OutputFile::~OutputFile() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

Model ReadFileByHand(std::filesystem::path const& path) { return ReadByHand(ContentOf(path)); }

Model ReadTextByHand(std::wstring const& text) { return ReadByHand(std::string_view(AsUtf8(text))); }

Tree::Tree() {
    auto const declare = [this](zo::kit::Kit& kit) {
        using bench::Material, bench::Point, bench::Region;
        kit.Record<Material>("Material")
            .Field<&Material::cohesion>("Cohesion", L"Cohesion")
            .Field<&Material::friction>("FrictionAngle", L"FrictionAngle")
            .Field<&Material::model>("Model", L"Model")
            .Field<&Material::name>("Name", L"Name")
            .Array<&Material::properties>("Props", L"Props")
            .Field<&Material::unitWeight>("UnitWeight", L"UnitWeight")
            .Field<&Material::drained>("Visible", L"Visible");
        kit.Record<Point>("Point", {.attributes = true}).Field<&Point::x>("X", L"X").Field<&Point::y>("Y", L"Y");
        kit.Record<Region>("Region")
            .Array<&Region::indices>("Indices", L"Indices")
            .Field<&Region::material>("Material", L"Material");
        kit.Record<Settings>("Settings")
            .Field<&Settings::maxIterations>("MaxIterations", L"MaxIterations")
            .Field<&Settings::tensile>("Tensile", L"Tensile")
            .Field<&Settings::tolerance>("Tolerance", L"Tolerance");
        kit.Branch<std::vector<Material>>("Materials", L"Materials[Material]",
                                          [this] { return &model->project.materials; });
        kit.Branch<std::vector<Point>>("Points", L"Points[Point]", [this] { return &model->project.points; });
        kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [this] { return &model->project.regions; });
        kit.Branch<Settings>("Settings", L"Settings", [this] { return &model->settings; });
        kit.Branch<std::wstring>("Title", L"Title", [this] { return &model->project.title; });
    };
    zo::kit::Report const report = zo::kit::Register({declare});
    Require(report.IsClean(), AsUtf8(report.Text()));
}

Tree& Tree::Instance() {
    static Tree tree;
    return tree;
}

void Tree::Select_(Model& other) {
    registry.Select();
    model = &other;
}

std::wstring Tree::SaveToText(Model& saved) {
    Select_(saved);
    std::wstring text;
    RequireSuccess(zo::xml::StringWrite(text, fileVersion), "the text can't be written");
    return text;
}

void Tree::SaveToFile(Model& saved, std::filesystem::path const& path) {
    Select_(saved);
    RequireSuccess(zo::xml::FileWrite(path.wstring(), fileVersion), "the file can't be written");
}

void Tree::LoadFromText(Model& loaded, std::wstring const& text) {
    Select_(loaded);
    std::vector<htl::status> errors;
    RequireSuccess(zo::xml::StringRead(text, errors, {}, zo::xml::impl::UnknownAreErrors()), "the text can't be read");
    RequireAll(errors);
}

void Tree::LoadFromFile(Model& loaded, std::filesystem::path const& path) {
    Select_(loaded);
    std::vector<htl::status> errors;
    RequireSuccess(zo::xml::FileRead(path.wstring(), errors, {}, zo::xml::impl::UnknownAreErrors()),
                   "the file can't be read");
    RequireAll(errors);
}

DocumentFile::DocumentFile(std::size_t megabytes, Samples samples) {
    std::string const name = "doc_" + std::to_string(megabytes) + "MB";
    std::string const folder = Environment("PEER_DOC_DIR", "");
    path = std::filesystem::path(folder) / (name + ".xml");
    if (!folder.empty() && std::filesystem::exists(path)) return;
    Require(folder.empty() || samples == Samples::taken, path.string() + " isn't there");
    path = sample.emplace(name).path;
    Model model = MakeSample(megabytes);
    Tree::Instance().SaveToFile(model, path);
    Require(ReadFileByHand(path) == model, "a sample was saved otherwise than it is");
}

std::string DocumentFile::Content() const { return ContentOf(path); }

Document::Document(std::size_t megabytes, Samples samples) : file(megabytes, samples) {
    std::string const content = file.Content();
    bytes = content.size();
    model = ReadByHand(content);
    text = str::as_wstring(content);
    // The declaration of wide text has to name 16 bits, or nothing.
    constexpr std::wstring_view bytewise = L"encoding=\"UTF-8\"";
    std::size_t const declared = text.find(bytewise);
    if (declared < text.find(L"?>")) text.replace(declared, bytewise.size(), L"encoding=\"UTF-16\"");
    Check_();
}

void Document::Check_() {
    Tree& tree = Tree::Instance();
    {
        Model loaded;
        tree.LoadFromFile(loaded, file.Path());
        Require(loaded == model, "the file was loaded otherwise than it is");
    }
    {
        Model loaded;
        tree.LoadFromText(loaded, text);
        Require(loaded == model, "the text was loaded otherwise than it is");
    }
    Require(ReadTextByHand(tree.SaveToText(model)) == model, "the text was saved otherwise than the model is");
    OutputFile const output;
    tree.SaveToFile(model, output.path);
    Require(ReadFileByHand(output.path) == model, "the file was saved otherwise than the model is");
}

} // namespace peers
