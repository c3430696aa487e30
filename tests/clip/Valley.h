// A valley whose parts are copied from one project into another.
//
// Materials (group 10) may be replaced by each other, regions (group 12) lie in a material and have neighbours, the
// settings (group 7) are one record, and profiles (group 20) hold wells (group 130) and probes (group 131), which mean
// nothing without their profile. The numbers of all records are those of their fields "ID".
#pragma once

#include "Common/clip/Clipboard.h"
#include "tests/kit/Site.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace valley {

using site::FailsAs;
using site::Succeeds;
using site::TextOf;
using zo::clip::ClipboardContents;

inline constexpr GID settingsGroup = 7, materialGroup = 10, regionGroup = 12, profileGroup = 20, wellGroup = 130,
                     probeGroup = 131;
inline constexpr hzn::version::NumberKind<0> version{1, 0};

struct Material {
    int id = 0;
    std::wstring name;
    double cohesion = 0;             // kPa, 0 to 1,000
    int substitute = 0;              // another material
    std::vector<double> strengths{}; // kPa, by test
    GGID sampled{};                  // a record of any group; not declared, for those who need it

    bool operator==(Material const&) const = default;
};
struct Region {
    int id = 0;
    std::wstring name;
    double area = 0; // m2
    int material = 0;
    int next = 0;              // a region
    unsigned settings = 0;     // those that it was worked out with
    std::vector<int> layers{}; // materials

    bool operator==(Region const&) const = default;
};
struct Well {
    int id = 0;
    std::wstring name;
    double depth = 0;   // m
    unsigned next = 0;  // in the same profile
    unsigned probe = 0; // in the same profile, too

    bool operator==(Well const&) const = default;
};
struct Probe {
    int id = 0;
    std::wstring name;
    double pressure = 0; // kPa

    bool operator==(Probe const&) const = default;
};
struct Profile {
    int id = 0;
    std::wstring name;
    int material = 0; // at the surface
    std::vector<Well> wells{};
    GGID seen{}; // a record of any group; not declared, for those who need it
    std::vector<Probe> probes{};

    bool operator==(Profile const&) const = default;
};
struct Settings {
    double tolerance = 0.01;
    int cover = 0; // a material

    bool operator==(Settings const&) const = default;
};
struct Model {
    std::vector<Material> materials;
    std::vector<Region> regions;
    std::vector<Profile> profiles;
    Settings settings;

    bool operator==(Model const&) const = default;
};

/// A project with a registry of its own, which is current from the start.
class Project {
public:
    explicit Project(Model model = {});
    Project(Project const&) = delete;
    Project& operator=(Project const&) = delete;

    void Use() const { zo::ZORegistry::SetInstance(registry.get()); }
    Model& operator*() const { return *model; }
    Model* operator->() const { return model.get(); }

    std::unique_ptr<Model> model;
    htl::handle<zo::ZORegistry> registry;
};

/// Three materials, of which fill and clay replace each other, and two neighbouring regions in clay and rock.
Model Ground();

/// Starts with an empty project beside one with the ground, which is current.
class ClipTest : public testing::Test {
protected:
    ClipTest();
    ~ClipTest() override;

    /// Copies the nodes of the current project; expects success.
    static ClipboardContents Copy(std::vector<std::string> const& nodes, std::string const& path = {});
    /// Pastes into the current project; expects success.
    void Paste(GID id, ClipboardContents const& contents);
    /// The current project as a document.
    static std::wstring Save();
    /// A document with `body` inside its document element.
    static std::wstring Document(std::wstring const& body);
    static ClipboardContents Contents(std::wstring const& body);

    zo::ZORegistry* before;
    Project other;
    Project project{Ground()};
    std::vector<std::wstring> names;
    std::vector<htl::status> reasons;
};

htl::status Failure(unsigned id);
std::vector<std::wstring> Texts(std::vector<htl::status> const& statuses);

} // namespace valley
