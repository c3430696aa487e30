// The functions that docs/computed.md quotes, and a program that runs them.
#include <iostream>
#include <kit/kit.h>
#include <zo/zo.h>

// What a curve is about.
enum class DataParamType : std::int32_t { None = 0, Area = 1, Storage = 2 };

struct Corner {
    double x = 0, y = 0; // m
};
struct Point {
    double level = 0, value = 0; // m, and what governs the curve
};
struct Curve {
    std::vector<Point> points;
};

// A pond of upright walls. Its area takes a walk around the corners, so it is kept.
struct Pond {
    std::wstring name;
    double depth = 0; // m
    std::vector<Corner> corners;
    double area = 0; // m2, as of the last calculation
    DataParamType governs = DataParamType::Storage;
    std::vector<Curve> curves;
};
struct Project {
    DataParamType governs = DataParamType::Area;
    std::vector<Pond> ponds;
    std::vector<Curve> curves;
} project;

// Cheap: worked out each time somebody asks.
double Storage(Pond const& pond) { return pond.area * pond.depth; }

// Dear: worked out when the trigger is written, and kept.
double Area(Pond const& pond) { return pond.area; }
int AtRest(Pond const&) { return 0; }
void Update(Pond& pond, int asked) {
    if (!asked) return; // put back to its default, with all else
    double twice = 0;
    for (std::size_t i = 0; i < pond.corners.size(); ++i) {
        Corner const& a = pond.corners[i];
        Corner const& b = pond.corners[(i + 1) % pond.corners.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    pond.area = twice / 2;
}

void PondModule(zo::kit::Kit& kit) {
    using zo::kit::Kind;
    kit.Record<Corner>("Corner").Field<&Corner::x>("X", L"X").Field<&Corner::y>("Y", L"Y");
    kit.Record<Pond>("Pond")
        .Field<&Pond::name>("Name", L"Name")
        .Field<&Pond::depth>("Depth", L"Depth", {.unit = Kind::Length})
        .Array<&Pond::corners>("Corners", L"Corners[Corner]")
        .Computed<&Area>("Area", L"Area", {.unit = Kind::Area})
        .Computed<&Storage>("Storage", L"Storage", {.unit = Kind::Volume})
        .Property<&AtRest, &Update>("Update", L"UpdateCalculatedValues", {.persist = zo::kit::Persist::Never})
        .Field<&Pond::governs>("Governs", L"Governs")
        .Array<&Pond::curves>("Curves", L"Curves[Curve]");
}

void ProjectModule(zo::kit::Kit& kit) {
    kit.Record<Point>("Point").Field<&Point::level>("Level", L"Level").Field<&Point::value>("Value", L"Value");
    kit.Record<Curve>("Curve").Array<&Curve::points>("Points", L"Points[Point]");
    kit.Record<Project>("Project")
        .Field<&Project::governs>("Governs", L"Governs")
        .Array<&Project::ponds>("Ponds", L"Ponds[Pond]")
        .Array<&Project::curves>("Curves", L"Curves[Curve]");
    kit.Branch<Project>("Project", L"Project", [] { return &project; });
}

void Print(std::wstring const& line) { std::cout << str::as_cstring(line) << '\n'; }

std::wstring ValueOf(char const* name) {
    std::wstring text;
    htl::status const failure = zo::Find(name)->Get(text);
    return failure.IsError() ? failure.AsWString() : text;
}

// All ponds, after an edit. Objects without a trigger are none of its business.
htl::status UpdatePonds() {
    zo::H const ponds = zo::Find("Project.Ponds");
    for (zo::ZOFwrdIterator pond = ponds->begin(); pond.current; ++pond)
        if (htl::status failure = zo::UpdateCalculatedValues(*pond); failure.IsError()) return failure;
    return {};
}

// What a curve's values are: the nearest "Governs" says so, that of the pond or that of the project.
std::wstring AxisTitle(zo::H const& point) {
    switch (zo::LookupParam(point, "Governs")) {
    case DataParamType::Area: return L"Area";
    case DataParamType::Storage: return L"Storage";
    default: return L"Value";
    }
}

// A function of the application, and the node that people run it by.
struct Fill : IFn {
    void Call() { project.ponds[0].depth += 1; }
};

class FunctionNode : public zo::ZOWrapperBase {
public:
    FunctionNode(std::size_t row, zo::ZOSet* owner, void* function, htl::handle<zo::ZOMemMgr> const& manager)
        : ZOWrapperBase(row, owner, {}, function, manager) {}
    zo::IZO* Clone() override { return RemapClone(Memory(), Manager()); }
    zo::IZO* RemapClone(void* function, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new FunctionNode(RegID(), Owner(), function, manager);
    }
    htl::status Run() override {
        // The memory is the `IFn*` that the node was made from.
        auto* const fill = dynamic_cast<Fill*>(static_cast<IFn*>(Memory()));
        if (!fill) return zo::ZOError::not_supported("Run");
        fill->Call();
        return {};
    }
};

void RegisterFunctions() {
    zo::H const prototype(new FunctionNode(zo::IZO::npos, nullptr, nullptr, {}));
    htl::handle<zo::IODS> const store(new zo::ODSName("Function"));
    zo::ZORegistry::Instance()->RegisterZO(store, prototype, {}, {});
    zo::ZOTypeTemplate::Register(typeid(IFn), prototype);
}

int main() {
    zo::kit::Report const report = zo::kit::Register({PondModule, ProjectModule});
    if (!report.IsClean()) {
        Print(report.Text());
        return 1;
    }
    RegisterFunctions();
    Pond& pond = project.ponds.emplace_back();
    pond.depth = 2;
    pond.corners = {{0, 0}, {30, 0}, {30, 20}, {0, 20}};
    pond.curves = {{{{0, 0}, {2, 1200}}}};
    project.curves = {{{{0, 0}, {2, 600}}}};

    Print(L"area " + ValueOf("Project.Ponds[0].Area"));
    htl::status failure = UpdatePonds();
    Print(L"area " + ValueOf("Project.Ponds[0].Area") + L", storage " + ValueOf("Project.Ponds[0].Storage"));

    Print(AxisTitle(zo::Find("Project.Ponds[0].Curves[0].Points[1].Value")));
    Print(AxisTitle(zo::Find("Project.Curves[0].Points[1].Value")));

    Fill fill;
    zo::H const node = zo::GetAtomicWrapper<IFn>(&fill);
    if (!failure.IsError()) failure = node->Run();
    Print(L"depth " + ValueOf("Project.Ponds[0].Depth") + L", storage " + ValueOf("Project.Ponds[0].Storage"));
    return failure.IsError() ? 1 : 0;
}
