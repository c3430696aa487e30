#include "tests/clip/Valley.h"

namespace valley {
namespace {

void Declare(zo::kit::Kit& kit, Model& model) {
    using zo::kit::Persist;
    kit.Record<Material>("Material")
        .Field<&Material::id>("ID", L"ID")
        .Field<&Material::name>("Name", L"Name")
        .Field<&Material::cohesion>("Cohesion", L"Cohesion", {.min = 0.0, .max = 1000.0})
        .Link<&Material::substitute>("Substitute", L"Substitute", materialGroup, {.persist = Persist::IfNotDefault})
        .Array<&Material::strengths>("Strengths", L"Strengths[Strength]", {.elements = true});
    kit.Record<Region>("Region", {.attributes = true})
        .Field<&Region::id>("ID", L"ID")
        .Field<&Region::name>("Name", L"Name")
        .Field<&Region::area>("Area", L"Area")
        .Link<&Region::material>("Material", L"Material", materialGroup)
        .Link<&Region::next>("Next", L"Next", regionGroup)
        .Link<&Region::settings>("Settings", L"Settings", settingsGroup, {.persist = Persist::IfNotDefault})
        .Array<&Region::layers>("Layers", L"Layers", {.linkGroup = materialGroup});
    kit.Record<Well>("Well")
        .Field<&Well::id>("ID", L"ID")
        .Field<&Well::name>("Name", L"Name")
        .Field<&Well::depth>("Depth", L"Depth")
        .Field<&Well::next>("Next", L"Next", {.missing = 0u, .linkGroup = wellGroup})
        .Field<&Well::probe>("Probe", L"Probe",
                             {.missing = 0u, .linkGroup = probeGroup, .persist = Persist::IfNotDefault});
    kit.Record<Probe>("Probe")
        .Field<&Probe::id>("ID", L"ID")
        .Field<&Probe::name>("Name", L"Name")
        .Field<&Probe::pressure>("Pressure", L"Pressure");
    kit.Record<Profile>("Profile")
        .Field<&Profile::id>("ID", L"ID")
        .Field<&Profile::name>("Name", L"Name")
        .Link<&Profile::material>("Material", L"Material", materialGroup)
        .Array<&Profile::wells>("Wells", L"Wells[Well]", {.recordGroup = wellGroup})
        .Array<&Profile::probes>("Probes", L"Probes[Probe]", {.recordGroup = probeGroup});
    kit.Record<Settings>("Settings", {.recordGroup = settingsGroup})
        .Field<&Settings::tolerance>("Tolerance", L"Tolerance")
        .Link<&Settings::cover>("Cover", L"Cover", materialGroup);
    kit.Branch<std::vector<Material>>("Materials", L"Materials[Material]", [&model] { return &model.materials; },
                                      {.recordGroup = materialGroup});
    kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [&model] { return &model.regions; },
                                    {.recordGroup = regionGroup});
    kit.Branch<std::vector<Profile>>("Profiles", L"Profiles[Profile]", [&model] { return &model.profiles; },
                                     {.recordGroup = profileGroup});
    kit.Branch<Settings>("Settings", L"Settings", [&model] { return &model.settings; });
}

} // namespace

Project::Project(Model start) : model(std::make_unique<Model>(std::move(start))), registry(new zo::ZORegistry) {
    Use();
    zo::kit::Report const report = zo::kit::Register({[this](zo::kit::Kit& kit) { Declare(kit, *model); }});
    if (!report.IsClean()) ADD_FAILURE() << str::as_cstring(report.Text());
}

Model Ground() {
    Model model;
    model.materials = {{1, L"Fill", 5, 2}, {2, L"Clay", 25, 1, {20, 30}}, {3, L"Rock", 400, 0}};
    model.regions = {{1, L"Slope", 60, 2, 2}, {2, L"Base", 90, 3, 0}};
    return model;
}

ClipTest::ClipTest() : before(zo::ZORegistry::SetInstance(nullptr)) { project.Use(); }

ClipTest::~ClipTest() { zo::ZORegistry::SetInstance(before); }

ClipboardContents ClipTest::Copy(std::vector<std::string> const& nodes, std::string const& path) {
    std::vector<zo::H> found;
    for (std::string const& name : nodes) {
        found.push_back(zo::Find(name));
        EXPECT_TRUE(found.back()) << name;
    }
    ClipboardContents contents;
    EXPECT_TRUE(Succeeds(zo::clip::Serialize(contents, found, version, path)));
    return contents;
}

void ClipTest::Paste(GID id, ClipboardContents const& contents) {
    ClipboardContents copy = contents;
    EXPECT_TRUE(Succeeds(zo::clip::Deserialize(id, copy, version, names, "", &reasons)));
    EXPECT_EQ(Texts(reasons), std::vector<std::wstring>());
}

std::wstring ClipTest::Save() {
    std::wstring text;
    EXPECT_TRUE(Succeeds(zo::xml::StringWrite(text, version)));
    return text;
}

std::wstring ClipTest::Document(std::wstring const& body) {
    return L"<?xml version=\"1.0\" encoding=\"UTF-16\"?><HZNData Version=\"1.00\" AppVersion=\"0.0.0.0\">" + body +
           L"</HZNData>";
}

ClipboardContents ClipTest::Contents(std::wstring const& body) { return {Document(body), L"10,12", L"1.00"}; }

htl::status Failure(unsigned id) { return htl::status(id); }

std::vector<std::wstring> Texts(std::vector<htl::status> const& statuses) {
    std::vector<std::wstring> texts;
    for (htl::status const& status : statuses) texts.push_back(status.AsWString());
    return texts;
}

} // namespace valley
