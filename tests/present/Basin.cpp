#include "tests/present/Basin.h"

#include "Common/extinfo/ExtendedInfo.h"

#include <kit/kit.h>

namespace basin {
namespace {

constexpr GID markGroup = 6;

constexpr meta::EnumWord linings[] = {
    {0, L"None", L"-", L"no lining"},
    {1, L"Clay", L"cl", L"compacted clay"},
    {4, L"Sheet", L"", L"plastic sheet"},
};

void Declare(zo::kit::Kit& kit, Basin& model) {
    kit.Enum<Lining>(linings);
    kit.Record<Gauges>("Gauges")
        .Field<&Gauges::length>("Length", L"Length", {.unit = Kind::Length})
        .Field<&Gauges::area>("Area", L"Area", {.unit = Kind::Area})
        .Field<&Gauges::volume>("Volume", L"Volume", {.unit = Kind::Volume})
        .Field<&Gauges::angle>("Angle", L"Angle", {.unit = Kind::Angle})
        .Field<&Gauges::time>("Time", L"Time", {.unit = Kind::Time})
        .Field<&Gauges::mass>("Mass", L"Mass", {.unit = Kind::Mass})
        .Field<&Gauges::force>("Force", L"Force", {.unit = Kind::Force})
        .Field<&Gauges::stress>("Stress", L"Stress", {.unit = Kind::Stress})
        .Field<&Gauges::unitWeight>("UnitWeight", L"UnitWeight", {.unit = Kind::UnitWeight})
        .Field<&Gauges::conductivity>("Conductivity", L"Conductivity", {.unit = Kind::HydraulicConductivity})
        .Field<&Gauges::flux>("Flux", L"Flux", {.unit = Kind::Flux})
        .Field<&Gauges::temperature>("Temperature", L"Temperature", {.unit = Kind::Temperature})
        .Field<&Gauges::energy>("Energy", L"Energy", {.unit = Kind::Energy})
        .Field<&Gauges::factor>("Factor", L"Factor")
        .Field<&Gauges::depth>("Depth", L"Depth", {.unit = Kind::Length})
        .Field<&Gauges::lifts>("Lifts", L"Lifts")
        .Field<&Gauges::span>("Span", L"Span", {.unit = Kind::Length})
        .Field<&Gauges::count>("Count", L"Count")
        .Field<&Gauges::total>("Total", L"Total")
        .Field<&Gauges::lined>("Lined", L"Lined")
        .Field<&Gauges::lining>("Lining", L"Lining")
        .Field<&Gauges::remark>("Remark", L"Remark")
        .Field<&Gauges::governs>("Governs", L"Governs");
    kit.Record<Mark>("Mark")
        .Field<&Mark::level>("Level", L"Level", {.unit = Kind::Length, .min = 0.0, .max = 60.0})
        .Field<&Mark::cohesion>("Cohesion", L"Cohesion", {.param = DataParamType::Cohesion})
        .Field<&Mark::name>("Name", L"Name");
    kit.Branch<Gauges>("Gauges", L"Gauges", [&model] { return &model.gauges; });
    kit.Branch<std::vector<Mark>>("Marks", L"Marks[Mark]", [&model] { return &model.marks; },
                                  {.recordGroup = markGroup});
    kit.Alias("Sill", L"Sill", "Marks[0].Level");
}

} // namespace

Site::Site(bool provided) : registry(new zo::ZORegistry) {
    previous = zo::ZORegistry::SetInstance(registry.get());
    zo::kit::Report const report = zo::kit::Register({{"Basin", [this](zo::kit::Kit& kit) { Declare(kit, model); }}});
    EXPECT_TRUE(report.IsClean()) << str::as_cstring(report.Text());
    if (!provided) return;
    zo::RegisterUnitsProvider([this] { return ++questions, active; },
                              [this](DataParamType parameter) {
                                  ++questions;
                                  return parameter == DataParamType::Cohesion ? shownOfCohesion : UnitSet();
                              },
                              [this](Kind::Type) { return ++questions, shown; });
}

Site::~Site() { zo::ZORegistry::SetInstance(previous); }

void RegisterParameters() {
    static meta::MetaTraitsAtomic const record = [] {
        meta::MetaTraitsAtomic parameter = meta::MakeAtomic<DataParamType>(DataParamType::None, std::nullopt);
        parameter.unitKind = [](void const* value, zo::IZO const*) {
            return *static_cast<DataParamType const*>(value) == DataParamType::Cohesion ? Kind::Stress : Kind::None;
        };
        return parameter;
    }();
    meta::MetaDataTraits const traits(record);
    H const node(new zo::ZOAtomicData<DataParamType>(zo::IZO::npos, nullptr, traits));
    zo::ZORegistry::Instance()->RegisterZO(htl::handle<zo::IODS>(new zo::ODS("Parameter", false, true)), node,
                                           meta::MetaPersistTraits(), traits);
    zo::ZOTypeTemplate::Register(typeid(DataParamType), node);
}

testing::AssertionResult BasinTest::Compiles(TableText const& table) {
    if (htl::status const read = table.Read(); read.IsError()) return Succeeds(read);
    return Succeeds(zo::CompileExtendedInfo());
}

} // namespace basin
