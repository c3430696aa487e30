// A site whose objects are records that refer to each other.
//
// Materials (group 10) and regions (group 12) are elements of arrays, the site (group 7) is a record by itself, and
// each profile (group 20) is a container of wells, whose group 300 means nothing outside it.
#pragma once

#include "Common/redirect/Identity.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/redirect/ZOLink.h"
#include "Common/registry/ZOTransaction.h"
#include "tests/registry/Rows.h"

#include "support/describe.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace records {

using embankment::ArrayPrototype;
using embankment::FailsAs;
using embankment::StructPrototype;
using embankment::Succeeds;
using embankment::TextOf;
using embankment::ValuePrototype;
using htl::Int64;
using meta::MetaDataTraits;
using meta::OffsetOf;
using rows::H;
using rows::IZO;
using rows::NameOf;
using rows::NodeAccess;

inline constexpr GID siteGroup = 7, materialGroup = 10, regionGroup = 12, profileGroup = 20, wellGroup = 300;
inline constexpr Int64 noLink = 0x7FFFFFFFFFFFFFFF;

struct Material {
    int number = 0;
    std::wstring name;
    double cohesion = 0;               // kPa
    unsigned substitute = 0xFFFFFFFFu; // another material, all bits for none
};
struct Region {
    int material = 0; // 0 for none
    double area = 0;  // m2
};
struct Well {
    double depth = 0; // m
    unsigned next = 0;
};
struct Profile {
    std::vector<Well> wells;
};
/// A structure that knows its group itself.
struct Sample {
    GID group = 0;
    double weight = 0; // N
};
struct Site {
    GID group = siteGroup;
    double width = 250; // m
    Int64 foundation = noLink;
    std::vector<unsigned> layers; // materials from the top
    GGID reference;
};

struct Model {
    Site site;
    std::vector<Material> materials{
        {1, L"Fill", 5, 2}, {2, L"Clay", 25, 1}, {3, L"Sand", 0, 0xFFFFFFFFu}, {4, L"Rock", 400, 3}};
    std::vector<Region> regions{{2, 60}, {4, 90}};
    std::vector<Profile> profiles{{{{12, 2}, {15, 1}}}, {{{8, 3}, {9, 1}, {10, 0}}}};
    std::vector<Sample> samples{{31, 1.5}, {0, 2.5}};
};

/// The name of a record's node; "" for a group that nobody knows.
inline std::string NameOfRecord(GGID const& record) {
    auto const element = [&record](std::string const& array) {
        return array + '[' + std::to_string(record.id - 1) + ']';
    };
    if (record.group == siteGroup) return "Site";
    if (record.group == materialGroup) return element("Materials");
    if (record.group == regionGroup) return element("Regions");
    if (record.group == profileGroup) return element("Profiles");
    GGID const container = hzn::gid::ContainerRef(GGID(), record.group).EnclosingRecordId();
    return hzn::gid::IsValid(container) ? element(NameOfRecord(container) + ".Wells") : std::string();
}
/// Asks a function for the names of records.
class NamesBy final : public zo::RecordNames {
public:
    using Function = std::function<std::string(GGID const& record, zo::ZOSet& set)>;
    explicit NamesBy(Function function) : function(std::move(function)) {}
    std::string NameOf(GGID const& record, zo::ZOSet& set) const override { return function(record, set); }

private:
    Function function;
};
using NamesHandle = htl::handle<zo::RecordNames const>;
inline NamesHandle const names(new NamesBy([](GGID const& record, zo::ZOSet&) { return NameOfRecord(record); }));

/// What an application registers for identifiers: a link that reads the whole identifier.
class RecordView : public zo::ZOWrapperLinkBase, public zo::IZOKind<GGID> {
public:
    explicit RecordView(std::size_t offset = 0)
        : RecordView(npos, nullptr, Traits(), reinterpret_cast<void*>(offset), {}) {}
    RecordView(std::size_t regID, zo::ZOSet* owner, MetaDataTraits const& traits, void* memory,
               htl::handle<zo::ZOMemMgr> const& manager)
        : ZOWrapperLinkBase(regID, owner, traits, memory, manager) {}

    static MetaDataTraits Traits() {
        static meta::MetaTraitsAtomic const record = [] {
            meta::MetaTraitsAtomic atomic;
            atomic.kind = meta::Kind::Atomic;
            atomic.byteSize = sizeof(GGID);
            atomic.type = &typeid(GGID);
            return atomic;
        }();
        return MetaDataTraits(record);
    }

    using IZO::Set;
    GGID GetData() const override { return *static_cast<GGID const*>(Memory()); }
    htl::status Set(__int64 const& value) override {
        *static_cast<GGID*>(Memory()) =
            value == noLink ? GGID() : hzn::gid::FromValue(static_cast<std::uint64_t>(value));
        return {};
    }
    std::string RedirectName() const override { return IsPrototype() ? std::string() : NameOfRecord(GetData()); }
    IZO* Clone() override { return new RecordView(RegID(), Owner(), AccessTraits(), Memory(), Manager()); }
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new RecordView(RegID(), Owner(), AccessTraits(), memory, manager);
    }
};

/// The same for references into containers: a well by its container and its number.
class ContainerView : public zo::ZOWrapperLinkBase {
public:
    ContainerView() : ContainerView(npos, nullptr, rows::StructureTraits(), nullptr, {}) {}
    ContainerView(std::size_t regID, zo::ZOSet* owner, MetaDataTraits const& traits, void* memory,
                  htl::handle<zo::ZOMemMgr> const& manager)
        : ZOWrapperLinkBase(regID, owner, traits, memory, manager) {}

    std::string RedirectName() const override {
        if (IsPrototype()) return {};
        auto const& reference = *static_cast<hzn::gid::ContainerRef const*>(Memory());
        GGID const container = reference.EnclosingRecordId();
        if (!hzn::gid::IsValid(container)) return {};
        return NameOfRecord(container) + ".Wells[" + std::to_string((reference.Object() & 0xFFFF) - 1) + ']';
    }
    IZO* Clone() override { return new ContainerView(RegID(), Owner(), AccessTraits(), Memory(), Manager()); }
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new ContainerView(RegID(), Owner(), AccessTraits(), memory, manager);
    }
};

template <class T>
MetaDataTraits LinkTraits(GID group, std::optional<T> missing = meta::StandardMissing<T>()) {
    return meta::AtomicBuilder<T>().LinkGroup(group).Missing(missing).Build();
}
template <class T>
H LinkPrototype(MetaDataTraits const& traits, std::size_t offset = 0, NamesHandle const& recordNames = names) {
    return H(new zo::ZOWrapperLink<T>(IZO::npos, nullptr, traits, reinterpret_cast<void*>(offset), {}, recordNames));
}

/// How often an array of materials was asked for the group of its records.
inline int timesAsked = 0;

inline MetaDataTraits MaterialTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Material>().Build();
    return traits;
}
inline MetaDataTraits RegionTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Region>().Build();
    return traits;
}
inline MetaDataTraits WellTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Well>().Build();
    return traits;
}
inline MetaDataTraits ProfileTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Profile>().Build();
    return traits;
}
inline MetaDataTraits SampleTraits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Sample>().RecordGroup([](Sample const& sample) { return sample.group; }).Build();
    return traits;
}
inline MetaDataTraits SiteTraits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Site>().RecordGroup([](Site const& site) { return site.group; }).Build();
    return traits;
}

inline MetaDataTraits LayerTraits() {
    static MetaDataTraits const traits = LinkTraits<unsigned>(materialGroup);
    return traits;
}

/// Every test gets a site of its own.
class RecordsTest : public testing::Test {
protected:
    RecordsTest() {
        MetaDataTraits const& number = meta::AtomicTraits<double>();
        MetaDataTraits const& whole = meta::AtomicTraits<int>();
        MetaDataTraits const& text = meta::AtomicTraits<std::wstring>();
        auto const value = [&](std::string const& name, std::wstring const& tag, std::size_t offset) {
            registry.Add(name, ValuePrototype<double>(number, offset), tag, number);
        };
        auto const array = [&](std::string const& name, std::wstring const& tag, MetaDataTraits const& traits,
                               MetaDataTraits const& element, void* object, std::size_t offset = 0) {
            store = registry.Add(name, ArrayPrototype(traits, offset), tag, traits, object);
            registry.Add(name + ".[]", StructPrototype(element), L"", element);
        };

        array("Materials", L"Materials[Material]",
              meta::ArrayTraits<std::vector<Material>>(MaterialTraits,
                                                       [](void const*) -> GID {
                                                           ++timesAsked;
                                                           return materialGroup;
                                                       }),
              MaterialTraits(), &model.materials);
        materials = store;
        registry.Add("Materials.[].ID", ValuePrototype<int>(whole, OffsetOf(&Material::number)), L"ID", whole);
        registry.Add("Materials.[].Name", ValuePrototype<std::wstring>(text, OffsetOf(&Material::name)), L"Name", text);
        value("Materials.[].Cohesion", L"Cohesion", OffsetOf(&Material::cohesion));
        MetaDataTraits const substitute = LinkTraits<unsigned>(materialGroup);
        registry.Add("Materials.[].Substitute", LinkPrototype<unsigned>(substitute, OffsetOf(&Material::substitute)),
                     L"Substitute", substitute);

        array("Regions", L"Regions[Region]",
              meta::ArrayTraits<std::vector<Region>>(RegionTraits, [](void const*) -> GID { return regionGroup; }),
              RegionTraits(), &model.regions);
        MetaDataTraits const material = LinkTraits<int>(materialGroup, 0);
        registry.Add("Regions.[].Material", LinkPrototype<int>(material, OffsetOf(&Region::material)), L"Material",
                     material);
        value("Regions.[].Area", L"Area", OffsetOf(&Region::area));

        array("Profiles", L"Profiles[Profile]",
              meta::ArrayTraits<std::vector<Profile>>(ProfileTraits, [](void const*) -> GID { return profileGroup; }),
              ProfileTraits(), &model.profiles);
        array("Profiles.[].Wells", L"Wells[Well]",
              meta::ArrayTraits<std::vector<Well>>(WellTraits, [](void const*) -> GID { return wellGroup; }),
              WellTraits(), nullptr, OffsetOf(&Profile::wells));
        value("Profiles.[].Wells.[].Depth", L"Depth", OffsetOf(&Well::depth));
        MetaDataTraits const next = LinkTraits<unsigned>(wellGroup, 0u);
        registry.Add("Profiles.[].Wells.[].Next", LinkPrototype<unsigned>(next, OffsetOf(&Well::next), {}), L"Next",
                     next);

        array("Samples", L"Samples[Sample]", meta::ArrayTraits<std::vector<Sample>>(SampleTraits), SampleTraits(),
              &model.samples);
        value("Samples.[].Weight", L"Weight", OffsetOf(&Sample::weight));

        registry.Add("Site", StructPrototype(SiteTraits()), L"Site", SiteTraits(), &model.site);
        value("Site.Width", L"Width", OffsetOf(&Site::width));
        MetaDataTraits const foundation = LinkTraits<Int64>(materialGroup);
        registry.Add("Site.Foundation", LinkPrototype<Int64>(foundation, OffsetOf(&Site::foundation)), L"Foundation",
                     foundation);
        MetaDataTraits const layers = meta::ArrayTraits<std::vector<unsigned>>(LayerTraits);
        registry.Add("Site.Layers", ArrayPrototype(layers, OffsetOf(&Site::layers)), L"Layers[Layer]", layers);
        MetaDataTraits const layer = LayerTraits();
        registry.Add("Site.Layers.[]", LinkPrototype<unsigned>(layer), L"", layer);
        registry.Add("Site.Reference", H(new RecordView(OffsetOf(&Site::reference))), L"Reference",
                     RecordView::Traits());
    }

    /// Registers what tells the nodes of identifiers.
    void AddRecordTemplates() {
        H const record(new RecordView);
        registry.Add("RecordView", record, L"RecordView", RecordView::Traits());
        zo::ZOTypeTemplate::Register(typeid(GGID), record);
        H const contained(new ContainerView);
        registry.Add("ContainerView", contained, L"ContainerView", rows::StructureTraits());
        zo::ZOTypeTemplate::Register(typeid(hzn::gid::ContainerRef), contained);
    }
    void AddAlias(std::string const& name, std::string const& source) {
        registry.Add(name, H(new zo::ZOAlias(source, IZO::npos, nullptr)), L"", {});
    }

    Model model;
    rows::OwnRegistry registry;
    htl::handle<zo::ODS> materials; ///< the store of the materials

private:
    htl::handle<zo::ODS> store;
};

} // namespace records

// For messages of failed expectations.
inline void PrintTo(GGID const& id, std::ostream* out) { *out << '{' << id.group << ", " << id.id << '}'; }
