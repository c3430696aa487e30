#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace plan {

using embankment::ArrayPrototype;
using embankment::StructPrototype;
using embankment::ValuePrototype;
using meta::OffsetOf;

namespace {

MetaDataTraits DoubleTraits() { return meta::AtomicTraits<double>(); }
MetaDataTraits TextTraits() { return meta::AtomicTraits<std::wstring>(); }
MetaDataTraits BranchTraits() {
    struct Branch {};
    static MetaDataTraits const traits = meta::StructureBuilder<Branch>().Build();
    return traits;
}

} // namespace

Rows::Rows() : registry(new zo::ZORegistry), previous(zo::ZORegistry::SetInstance(registry.get())) {}

Rows::~Rows() {
    // What aliases keep would count as in use for the next test's memory of the same place.
    registry->InvalidateMemory("");
    for (auto const& store : stores) {
        store->SetObject(nullptr);
        store->SetAvailable(false);
    }
    zo::ZORegistry::SetInstance(previous);
}

htl::handle<zo::ODS> Rows::Add(std::string const& name, H const& node, MetaPersistTraits const& persist,
                               MetaDataTraits const& traits, void* object, bool active) {
    htl::handle<zo::ODS> const store(new zo::ODS(name, active, true, object));
    stores.push_back(store);
    registry->RegisterZO(store, node, persist, traits);
    return store;
}

htl::handle<zo::ODS> Rows::Branch(std::string const& name, std::wstring const& tag, bool active) {
    return Add(name, H(new zo::ZOStructClone(IZO::npos, nullptr)), {MetaPersistTraits::Always, tag}, BranchTraits(),
               nullptr, active);
}

htl::handle<zo::ODS> Rows::Text(std::string const& name, std::wstring const& tag, std::wstring& value,
                                std::uint32_t type, bool active) {
    return Add(name, ValuePrototype<std::wstring>(TextTraits()), {type, tag, true}, TextTraits(), &value, active);
}

htl::handle<zo::ODS> Rows::Number(std::string const& name, std::wstring const& tag, double& value, std::uint32_t type,
                                  bool active) {
    return Add(name, ValuePrototype<double>(DoubleTraits()), {type, tag, true}, DoubleTraits(), &value, active);
}

void Rows::Numbers(std::string const& name, std::wstring const& tag, std::vector<double>& value, std::uint32_t type) {
    Add(name, ArrayPrototype(NumbersTraits()), {type, tag, true}, NumbersTraits(), &value);
    Add(name + ".[]", ValuePrototype<double>(DoubleTraits()), {type, L""}, DoubleTraits());
}

MetaDataTraits PointTraits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Point>().Member(&Point::X, DoubleTraits).Member(&Point::Y, DoubleTraits).Build();
    return traits;
}

MetaDataTraits PointsTraits() {
    static MetaDataTraits const traits = meta::ArrayTraits<std::vector<Point>>(PointTraits);
    return traits;
}

MetaDataTraits NumbersTraits() {
    static MetaDataTraits const traits = meta::ArrayTraits<std::vector<double>>(DoubleTraits);
    return traits;
}

MetaDataTraits ProjectTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Project>()
                                             .Member(&Project::Title, TextTraits)
                                             .Member(&Project::Points, PointsTraits)
                                             .Member(&Project::Weights, NumbersTraits)
                                             .Member(&Project::Tolerance, DoubleTraits)
                                             .Member(&Project::Comment, TextTraits)
                                             .Build();
    return traits;
}

void AddProject(Rows& rows, Project& project, std::string const& name, std::wstring const& tag) {
    using P = MetaPersistTraits;
    rows.Add(name, StructPrototype(ProjectTraits()), {P::Always, tag}, ProjectTraits(), &project);
    rows.Add(name + ".Title", ValuePrototype<std::wstring>(TextTraits(), OffsetOf(&Project::Title)),
             {P::Always, L"Title", true}, TextTraits());
    rows.Add(name + ".Points", ArrayPrototype(PointsTraits(), OffsetOf(&Project::Points)),
             {P::Always, L"Points[Point]"}, PointsTraits());
    rows.Add(name + ".Points.[]", StructPrototype(PointTraits()), {P::Always, L"", false, true}, PointTraits());
    rows.Add(name + ".Points.[].X", ValuePrototype<double>(DoubleTraits(), OffsetOf(&Point::X)),
             {P::IfNotDefined, L"X"}, DoubleTraits());
    rows.Add(name + ".Points.[].Y", ValuePrototype<double>(DoubleTraits(), OffsetOf(&Point::Y)),
             {P::IfNotDefined, L"Y"}, DoubleTraits());
    rows.Add(name + ".Weights", ArrayPrototype(NumbersTraits(), OffsetOf(&Project::Weights)),
             {P::Always, L"Weights", true}, NumbersTraits());
    rows.Add(name + ".Weights.[]", ValuePrototype<double>(DoubleTraits()), {P::Always, L""}, DoubleTraits());
    rows.Add(name + ".Tolerance", ValuePrototype<double>(DoubleTraits(), OffsetOf(&Project::Tolerance)),
             {P::IfNotDefined, L"Tolerance", true}, DoubleTraits());
    rows.Add(name + ".Comment", ValuePrototype<std::wstring>(TextTraits(), OffsetOf(&Project::Comment)),
             {P::Always, L"Comment", true}, TextTraits());
}

Project Example() { return {L"Dam <A> & \"B\"", {{1.5, 0}, {0, 0}, {2, -3}}, {1, 0, 2.5, 0}, 0, L""}; }

PlanTest::PlanTest() : before(hzn::version::Current()) { hzn::version::SetCurrent({{11, 2, 0, 4711}}); }

PlanTest::~PlanTest() { hzn::version::SetCurrent(before); }

std::wstring Written(std::vector<std::wstring> const* filter) {
    std::wstring text;
    htl::status const result = zo::xml::StringWrite(text, formatVersion, 0, filter);
    return result.IsError() ? L"<" + result.AsWString() + L">" : text;
}

std::wstring Compact(std::wstring const& document) {
    std::wstring result;
    for (std::size_t i = 0; i < document.size(); ++i) {
        result += document[i];
        if (document[i] != L'>') continue;
        std::size_t const next = document.find_first_not_of(L" \n", i + 1);
        if (next == std::wstring::npos) break;
        if (document[next] == L'<') i = next - 1;
    }
    return result;
}

std::wstring Saved(std::vector<std::wstring> const& filter) {
    std::wstring const text = Compact(Written(&filter));
    std::size_t const begin = text.find(L"AppVersion=\"11.2.0.4711\">");
    std::size_t const end = text.find(L"</HZNData>");
    if (begin == std::wstring::npos || end == std::wstring::npos)
        return text.find(L"AppVersion=\"11.2.0.4711\"/>") == std::wstring::npos ? text : L"";
    std::size_t const first = begin + 25;
    return text.substr(first, end - first);
}

std::wstring Saved() { return Saved({L""}); }

std::wstring Document(std::wstring const& body) {
    return L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<HZNData Version=\"12.03\" AppVersion=\"11.2.0.4711\">" +
           body + L"</HZNData>";
}

namespace {

zo::xml::UnknownHandler Keep(Loaded& loaded) {
    return [&loaded](zo::ZOSet*, zo::xml::Unknowns& items, double version, zo::xml::impl::XMLError&) {
        loaded.unknown = items;
        loaded.version = version;
        ++loaded.handled;
    };
}

} // namespace

Loaded LoadText(std::wstring const& text, zo::xml::Filter const& filter, zo::xml::TagPolicy const& policy) {
    Loaded loaded;
    loaded.result = zo::xml::StringRead(text, loaded.errors, filter, Keep(loaded), policy);
    return loaded;
}

Loaded Load(std::wstring const& body, zo::xml::Filter const& filter, zo::xml::TagPolicy const& policy) {
    return LoadText(Document(body), filter, policy);
}

Loaded Import(std::wstring const& body, zo::xml::Filter const& filter, zo::ZOSet* set) {
    Loaded loaded;
    loaded.result = zo::xml::StringImport(Document(body), loaded.errors, filter, set, Keep(loaded));
    return loaded;
}

testing::AssertionResult IsClean(Loaded const& loaded) {
    if (loaded.result.IsError()) return embankment::Succeeds(loaded.result);
    if (!loaded.errors.empty()) return embankment::Succeeds(loaded.errors.front());
    if (!loaded.unknown.empty())
        return testing::AssertionFailure() << "unknown: " << str::as_cstring(loaded.unknown.front().first);
    return testing::AssertionSuccess();
}

namespace {

/// A directory of this process that goes with it.
struct Folder {
    Folder() { std::filesystem::create_directories(path); }
    ~Folder() {
        std::error_code ignored; // a directory that stays behind does no harm
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path path = std::filesystem::temp_directory_path() / ("plan." + std::to_string(getpid()));
};

} // namespace

std::string TemporaryFile(std::string const& name) {
    static Folder const folder;
    return (folder.path / name).string();
}

std::string Bytes(std::string const& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void Store(std::string const& file, std::string const& bytes) { std::ofstream(file, std::ios::binary) << bytes; }

} // namespace plan
