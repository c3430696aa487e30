#include "tests/present/Levee.h"

#include "Common/extinfo/ExtendedInfo.h"

#include <kit/kit.h>

namespace levee {

namespace {

void Declare(zo::kit::Kit& kit, Model& model) {
    kit.Record<Point>("Point").Field<&Point::x>("X", L"X").Field<&Point::y>("Y", L"Y").Field<&Point::name>("Name",
                                                                                                           L"Name");
    kit.Record<Soil>("Soil")
        .Field<&Soil::name>("Name", L"Name")
        .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.param = DataParamType::Cohesion})
        .Field<&Soil::color>("Color", L"Color")
        .Link<&Soil::substitute>("Substitute", L"Substitute", soilGroup);
    kit.Record<Region>("Region")
        .Field<&Region::name>("Name", L"Name")
        .Link<&Region::soil>("Soil", L"Soil", soilGroup)
        .Field<&Region::fill>("Fill", L"Fill");
    kit.Record<Profile>("Profile")
        .Field<&Profile::name>("Name", L"Name")
        .Array<&Profile::points>("Points", L"Points[Point]");
    kit.Record<Layer>("Layer").Array<&Layer::points>("Points", L"Points[Point]");
    kit.Record<Project>("Project")
        .Field<&Project::title>("Title", L"Title")
        .Field<&Project::description>("Description", L"Description")
        .Field<&Project::drainage>("Drainage", L"Drainage");
    kit.Branch<Project>("Project", L"Project", [&model] { return &model.project; });
    kit.Branch<std::vector<Soil>>("Soils", L"Soils[Soil]", [&model] { return &model.soils; },
                                  {.recordGroup = soilGroup});
    kit.Branch<std::vector<Region>>("Regions", L"Regions[Region]", [&model] { return &model.regions; });
    kit.Branch<std::vector<Profile>>("Profiles", L"Profiles[Profile]", [&model] { return &model.profiles; });
    kit.Branch<Layer>("Layer2", L"Layer2", [&model] { return &model.layer2; });
    kit.Alias("Cover", L"Cover", "Soils[0]");
    kit.Alias("Top", L"Top", "Cover");
    kit.Alias("Nothing", L"Nothing", "Soils[9]");
    kit.Alias("Round", L"Round", "About");
    kit.Alias("About", L"About", "Round");
}

} // namespace

Levee::Levee(std::function<void(zo::kit::Kit&)> const& more) : registry(new zo::ZORegistry) {
    previous = zo::ZORegistry::SetInstance(registry.get());
    zo::kit::Report const report = zo::kit::Register({{"Levee", [this, &more](zo::kit::Kit& kit) {
                                                           Declare(kit, model);
                                                           if (more) more(kit);
                                                       }}});
    EXPECT_TRUE(report.IsClean()) << str::as_cstring(report.Text());
}

Levee::~Levee() { zo::ZORegistry::SetInstance(previous); }

testing::AssertionResult LeveeTest::Compiles(TableText const& table) {
    if (htl::status const read = table.Read(); read.IsError()) return Succeeds(read);
    return Succeeds(zo::CompileExtendedInfo());
}

TableText LeveeTest::Table() { return TableText().Entry(L"Default", {{L"Label", L"?"}}); }

} // namespace levee
