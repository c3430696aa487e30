#include "tests/threads/Dike.h"

namespace threads {

Dike Example(int which) {
    return {
        L"Dike " + std::to_wstring(which),
        {{1, L"Clay", 25.0 + which, Drainage::Undrained}, {2, L"Sand", 0, Drainage::Drained}},
        {{1, 1, {2.5, 4}}},
    };
}

std::wstring DocumentOf(int which) {
    return L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
           L"<HZNData Version=\"1.02\" AppVersion=\"0.0.0.0\">\n"
           L"  <Dike>\n"
           L"    <Title>Dike " +
           std::to_wstring(which) +
           L"</Title>\n"
           L"    <Soils Len=\"2\">\n"
           L"      <Soil>\n"
           L"        <ID>1</ID>\n"
           L"        <Name>Clay</Name>\n"
           L"        <Cohesion>" +
           std::to_wstring(25 + which) +
           L"</Cohesion>\n"
           L"        <Drainage>Undrained</Drainage>\n"
           L"      </Soil>\n"
           L"      <Soil>\n"
           L"        <ID>2</ID>\n"
           L"        <Name>Sand</Name>\n"
           L"        <Cohesion>0</Cohesion>\n"
           L"        <Drainage>Drained</Drainage>\n"
           L"      </Soil>\n"
           L"    </Soils>\n"
           L"    <Regions Len=\"1\">\n"
           L"      <Region>\n"
           L"        <ID>1</ID>\n"
           L"        <Soil>1</Soil>\n"
           L"        <Levels>2.5,4</Levels>\n"
           L"      </Region>\n"
           L"    </Regions>\n"
           L"  </Dike>\n"
           L"</HZNData>\n";
}

OwnDike::OwnDike(int which)
    : dike(Example(which)), registry(new zo::ZORegistry), previous(zo::ZORegistry::SetInstance(registry.get())) {
    auto const declare = [this](zo::kit::Kit& kit) {
        kit.Enum<Drainage>(drainages);
        kit.Record<Soil>("Soil")
            .Field<&Soil::id>("ID", L"ID")
            .Field<&Soil::name>("Name", L"Name")
            .Field<&Soil::cohesion>("Cohesion", L"Cohesion", {.unit = zo::kit::Kind::Stress, .min = 0.0})
            .Field<&Soil::drainage>("Drainage", L"Drainage");
        kit.Record<Region>("Region")
            .Field<&Region::id>("ID", L"ID")
            .Link<&Region::soil>("Soil", L"Soil", soilGroup)
            .Array<&Region::levels>("Levels", L"Levels", {.unit = zo::kit::Kind::Length});
        kit.Record<Dike>("Dike")
            .Field<&Dike::title>("Title", L"Title")
            .Array<&Dike::soils>("Soils", L"Soils[Soil]", {.recordGroup = soilGroup})
            .Array<&Dike::regions>("Regions", L"Regions[Region]", {.recordGroup = regionGroup});
        kit.Branch<Dike>("Dike", L"Dike", [this] { return &dike; });
        kit.Alias("Cover", L"Cover", "Dike.Regions[0].Soil.@");
    };
    report = zo::kit::Register({declare});
    EXPECT_TRUE(report.IsClean()) << str::as_cstring(report.Text());
}

OwnDike::~OwnDike() { zo::ZORegistry::SetInstance(previous); }

std::wstring TextOf(std::string const& name) {
    zo::H const node = zo::Find(name);
    if (!node) return L"<no node>";
    std::wstring text;
    if (htl::status const failure = node->Get(text); failure.IsError()) return L"<" + failure.AsWString() + L">";
    return text;
}

testing::AssertionResult Succeeds(htl::status const& result) {
    if (!result.IsError()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << str::as_cstring(result.AsWString());
}

testing::AssertionResult FailsAs(htl::status const& failure, htl::status const& expected) {
    if (failure.AsWString() == expected.AsWString() && failure.IsError() == expected.IsError())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << '"' << str::as_cstring(failure.AsWString()) << "\" where \""
                                       << str::as_cstring(expected.AsWString()) << "\" was expected";
}

} // namespace threads
