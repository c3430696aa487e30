// A name leads where its components lead one by one: lookup passes most of what lies between without making nodes of
// it, and stepping makes one for each component.
#include "Common/model/ZOArray.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/SetImpl.h"
#include "tests/registry/Rows.h"

#include "support/describe.h"

#include <deque>
#include <functional>
#include <optional>
#include <random>
#include <typeinfo>
#include <utility>

namespace {

using embankment::ArrayPrototype;
using embankment::StructPrototype;
using embankment::TextOf;
using embankment::ValuePrototype;
using meta::MetaDataTraits;
using meta::OffsetOf;
using rows::H;
using rows::IZO;
using zo::ZOAlias;
using zo::ZOAliasRelative;

constexpr std::size_t npos = IZO::npos;

struct Tank {
    double depth = 0;
    std::vector<double> readings;
};
struct Gauge {
    std::uint32_t number = 0;
    std::string place;
    Tank tank;
};
struct Yard {
    double width = 0;
    Tank main;
    std::deque<Tank> tanks;
    double limits[2] = {};
};
/// Member by member: of temporary aggregates g++ 12 warns in optimised builds.
Yard YardOf(double width, Tank const& main, std::deque<Tank> const& tanks, double limit) {
    Yard yard;
    yard.width = width;
    yard.main = main;
    yard.tanks = tanks;
    yard.limits[0] = limit;
    yard.limits[1] = limit + 10;
    return yard;
}
struct Site {
    double height = 0;
    Yard yard;
    std::vector<Yard> yards;
    std::vector<std::vector<int>> grid;
    Yard guarded; // behind a structure that a client derived
    std::vector<Tank> log;
    std::vector<Gauge> gauges;
    std::vector<std::optional<Tank>> slots;
};

MetaDataTraits Double() { return meta::AtomicTraits<double>(); }
MetaDataTraits Int() { return meta::AtomicTraits<int>(); }
template <class Container>
MetaDataTraits ArrayOf(meta::MetaDataTraits (*element)()) {
    static MetaDataTraits const traits = meta::ArrayTraits<Container>(element);
    return traits;
}
MetaDataTraits DoublesTraits() { return ArrayOf<std::vector<double>>(Double); }
MetaDataTraits TankTraits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Tank>().Member(&Tank::depth, Double).Member(&Tank::readings, DoublesTraits).Build();
    return traits;
}
MetaDataTraits GaugeTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Gauge>().Member(&Gauge::tank, TankTraits).Build();
    return traits;
}
MetaDataTraits TankQueueTraits() { return ArrayOf<std::deque<Tank>>(TankTraits); }
MetaDataTraits TanksTraits() { return ArrayOf<std::vector<Tank>>(TankTraits); }
MetaDataTraits GaugesTraits() { return ArrayOf<std::vector<Gauge>>(GaugeTraits); }
MetaDataTraits LimitsTraits() { return ArrayOf<double[2]>(Double); }
MetaDataTraits LineTraits() { return ArrayOf<std::vector<int>>(Int); }
MetaDataTraits GridTraits() { return ArrayOf<std::vector<std::vector<int>>>(LineTraits); }
MetaDataTraits YardTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Yard>()
                                             .Member(&Yard::width, Double)
                                             .Member(&Yard::main, TankTraits)
                                             .Member(&Yard::tanks, TankQueueTraits)
                                             .Member(&Yard::limits, LimitsTraits)
                                             .Build();
    return traits;
}
MetaDataTraits YardsTraits() { return ArrayOf<std::vector<Yard>>(YardTraits); }

/// Tanks in slots, of which some are empty.
MetaDataTraits SlotsTraits() {
    using Slots = std::vector<std::optional<Tank>>;
    static meta::MetaTraitsArray const record = [] {
        meta::MetaTraitsArray array;
        array.kind = meta::Kind::Array;
        array.elementTraits = TankTraits;
        array.length = [](void const* memory) { return memory ? static_cast<Slots const*>(memory)->size() : 0; };
        array.elementAt = [](void* memory, std::size_t index) -> void* {
            auto& slot = (*static_cast<Slots*>(memory))[index];
            return slot ? &*slot : nullptr;
        };
        return array;
    }();
    return MetaDataTraits(record);
}
MetaDataTraits SiteTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Site>()
                                             .Member(&Site::height, Double)
                                             .Member(&Site::yard, YardTraits)
                                             .Member(&Site::yards, YardsTraits)
                                             .Member(&Site::grid, GridTraits)
                                             .Member(&Site::guarded, YardTraits)
                                             .Member(&Site::log, TanksTraits)
                                             .Member(&Site::gauges, GaugesTraits)
                                             .Member(&Site::slots, SlotsTraits)
                                             .Build();
    return traits;
}

H Number(double value) { return H(new zo::ZOAtomicData<double>(npos, nullptr, Double(), value)); }
void* AsMemory(std::size_t offset) { return reinterpret_cast<void*>(offset); }

/// A structure with one child more than it has rows, and one that it hides.
class GuardedYard : public zo::ZOWrapperStruct {
public:
    using ZOWrapperStruct::ZOWrapperStruct;
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        return new GuardedYard(RegID(), Owner(), AccessTraits(), memory, manager);
    }

protected:
    H GetSubZO(std::string const& name) override {
        if (name == "Limits") return {};
        if (name == "Area") return Number(42);
        return ZOWrapperStruct::GetSubZO(name);
    }
};

/// An array that counts from its end.
class Log : public zo::ZOArrayWrapper {
public:
    using ZOArrayWrapper::ZOArrayWrapper;
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        htl::handle<zo::ZOMemMgr> const child(ChildMemMgr()->RemapClone(memory));
        child->SetOuter(manager);
        return new Log(RegID(), Owner(), manager, child);
    }

    using ZOArrayWrapper::GetSubZO;
    H GetSubZO(std::size_t const& index) override {
        return index < Length() ? ZOArrayWrapper::GetSubZO(Length() - 1 - index) : H();
    }
};

/// Gauges by their number and by the place they stand at.
class Gauges : public zo::ZOAssocArrayWrapperBase {
public:
    using ZOAssocArrayWrapperBase::ZOAssocArrayWrapperBase;
    IZO* RemapClone(void* memory, htl::handle<zo::ZOMemMgr> const& manager) override {
        htl::handle<zo::ZOMemMgr> const child(ChildMemMgr()->RemapClone(memory));
        child->SetOuter(manager);
        return new Gauges(RegID(), Owner(), manager, child);
    }
    std::uint32_t IndexFromKey(std::uint32_t key) const override {
        return IndexOf_([&](Gauge const& gauge) { return gauge.number == key; });
    }
    std::uint32_t IndexFromKey(std::string const& key) const override {
        return IndexOf_([&](Gauge const& gauge) { return gauge.place == key; });
    }

private:
    template <class Test>
    std::uint32_t IndexOf_(Test const& test) const {
        auto const& all = *static_cast<std::vector<Gauge> const*>(Memory());
        for (std::size_t i = 0; i < all.size(); ++i)
            if (test(all[i])) return static_cast<std::uint32_t>(i);
        return 0xFFFFFFFFu;
    }
};

template <class Array>
H DerivedArray(MetaDataTraits const& traits, std::size_t offset) {
    htl::handle<zo::ZOMemMgr> const manager(new zo::ZOArrayMemMgr(AsMemory(offset), traits));
    return H(new Array(npos, nullptr, {}, manager));
}

/// A manager for a container that lies behind a pointer.
class Forwarding : public zo::ZOMemMgr {
public:
    using ZOMemMgr::ZOMemMgr;
    ZOMemMgr* RemapClone(void* memory) const override { return new Forwarding(*static_cast<void**>(memory), Traits()); }
};

/// A site with rows of all kinds, and branches that come and go.
class StepwiseFindTest : public rows::RegistryTest {
protected:
    StepwiseFindTest() {
        AddSite();
        site.yard = YardOf(30, {2.5, {1, 2}}, {{3.5, {}}, {4.5, {7}}}, 10);
        site.yards = {YardOf(31, {1.5, {9, 8, 7}}, {}, 11), YardOf(32, {0.5, {}}, {{5.5, {6}}}, 12)};
        site.grid = {{1, 2, 3}, {}, {4}};
        site.guarded = YardOf(33, {6.5, {3}}, {{7.5, {}}}, 13);
        site.log = {{1, {}}, {2, {5}}, {3, {}}};
        site.gauges = {{101, "crest", {12, {1}}}, {7, "toe", {3, {}}}};
        site.slots = {Tank{8, {2, 4}}, std::nullopt, Tank{9, {}}};

        AddLiveYard("Away", &away)->SetAvailable(false);
        AddLiveYard("Vacant", nullptr);
        comes = AddLiveYard("Comes", &away);
        registry.AddPlain("Group", L"Group");
        AddLiveYard("Group.Yard", &away);
        H const forwarding(new zo::ZOArrayWrapper(npos, nullptr, {},
                                                  htl::handle<zo::ZOMemMgr>(new Forwarding(nullptr, TanksTraits()))));
        registry.Add("Far", forwarding, L"Far", TanksTraits(), &farTanks);
        registry.Add("Far.[]", StructPrototype(TankTraits()), L"", TankTraits());
        AddTank("Far.[]");
        registry.Add("Gone", H(new ZOAlias("Nothing.There", npos, nullptr)), L"Gone", rows::StructureTraits());
        registry.Add("First", H(new ZOAlias("Site.Yards[0]", npos, nullptr)), L"First", rows::StructureTraits());
        registry->OnPostRegistration();

        EXPECT_TRUE(embankment::Succeeds(registry->Insert("Note", note)));
        EXPECT_TRUE(embankment::Succeeds(registry->Insert("Site.Note", siteNote)));
        EXPECT_TRUE(embankment::Succeeds(registry->Insert("Site.Yards[1].Note", yardNote)));
    }

    void AddTank(std::string const& tank) {
        registry.Add(tank + ".Depth", ValuePrototype<double>(Double(), OffsetOf(&Tank::depth)), L"Depth", Double());
        registry.Add(tank + ".Readings", ArrayPrototype(DoublesTraits(), OffsetOf(&Tank::readings)), L"Readings",
                     DoublesTraits());
        registry.Add(tank + ".Readings.[]", ValuePrototype<double>(Double()), L"", Double());
    }
    void AddYard(std::string const& yard) {
        registry.Add(yard + ".Width", ValuePrototype<double>(Double(), OffsetOf(&Yard::width)), L"Width", Double());
        registry.Add(yard + ".Main", StructPrototype(TankTraits(), OffsetOf(&Yard::main)), L"Main", TankTraits());
        AddTank(yard + ".Main");
        registry.Add(yard + ".Tanks", ArrayPrototype(TankQueueTraits(), OffsetOf(&Yard::tanks)), L"Tanks",
                     TankQueueTraits());
        registry.Add(yard + ".Tanks.[]", StructPrototype(TankTraits()), L"", TankTraits());
        AddTank(yard + ".Tanks.[]");
        registry.Add(yard + ".Limits", ArrayPrototype(LimitsTraits(), OffsetOf(&Yard::limits)), L"Limits",
                     LimitsTraits());
        registry.Add(yard + ".Limits.[]", ValuePrototype<double>(Double()), L"", Double());
        registry.Add(yard + ".Model", H(new ZOAlias("Site.Yard.Main", npos, nullptr)), L"", rows::StructureTraits());
        registry.Add(yard + ".Twin", H(new ZOAliasRelative(L"@Parent.Main", npos, nullptr)), L"",
                     rows::StructureTraits());
        registry.Add(yard + ".Self", H(new ZOAliasRelative(L"@Parent", npos, nullptr)), L"", rows::StructureTraits());
    }
    htl::handle<zo::ODS> AddLiveYard(std::string const& name, Yard* yard) {
        auto const store = registry.Add(name, StructPrototype(YardTraits()), L"", YardTraits(), yard);
        AddYard(name);
        return store;
    }
    void AddSite() {
        registry.Add("Site", StructPrototype(SiteTraits()), L"Site", SiteTraits(), &site);
        registry.Add("Site.Height", ValuePrototype<double>(Double(), OffsetOf(&Site::height)), L"Height", Double());
        registry.Add("Site.Yard", StructPrototype(YardTraits(), OffsetOf(&Site::yard)), L"Yard", YardTraits());
        AddYard("Site.Yard");
        registry.Add("Site.Yards", ArrayPrototype(YardsTraits(), OffsetOf(&Site::yards)), L"Yards", YardsTraits());
        registry.Add("Site.Yards.[]", StructPrototype(YardTraits()), L"", YardTraits());
        AddYard("Site.Yards.[]");
        registry.Add("Site.Grid", ArrayPrototype(GridTraits(), OffsetOf(&Site::grid)), L"Grid", GridTraits());
        registry.Add("Site.Grid.[]", ArrayPrototype(LineTraits()), L"", LineTraits());
        registry.Add("Site.Grid.[].[]", ValuePrototype<int>(Int()), L"", Int());
        registry.Add("Site.Guarded",
                     H(new GuardedYard(npos, nullptr, YardTraits(), AsMemory(OffsetOf(&Site::guarded)), {})),
                     L"Guarded", YardTraits());
        AddYard("Site.Guarded");
        registry.Add("Site.Log", DerivedArray<Log>(TanksTraits(), OffsetOf(&Site::log)), L"Log", TanksTraits());
        registry.Add("Site.Log.[]", StructPrototype(TankTraits()), L"", TankTraits());
        AddTank("Site.Log.[]");
        registry.Add("Site.Gauges", DerivedArray<Gauges>(GaugesTraits(), OffsetOf(&Site::gauges)), L"Gauges",
                     GaugesTraits());
        registry.Add("Site.Gauges.[]", StructPrototype(GaugeTraits()), L"", GaugeTraits());
        registry.Add("Site.Gauges.[].Tank", StructPrototype(TankTraits(), OffsetOf(&Gauge::tank)), L"Tank",
                     TankTraits());
        AddTank("Site.Gauges.[].Tank");
        registry.Add("Site.Slots", ArrayPrototype(SlotsTraits(), OffsetOf(&Site::slots)), L"Slots", SlotsTraits());
        registry.Add("Site.Slots.[]", StructPrototype(TankTraits()), L"", TankTraits());
        AddTank("Site.Slots.[]");
    }

    std::size_t Any(std::size_t count) { return random() % count; }
    template <class Choice>
    auto const& AnyOf(std::vector<Choice> const& choices) {
        return choices[Any(choices.size())];
    }

    /// Components of a name: mostly such as lead on, and sometimes others. `at` is where the steps lead.
    std::vector<std::string> AnyComponents(H& at) {
        static std::vector<std::string> const tops = {"Site", "Site", "Site",  "Away", "Vacant", "Comes",  "Group",
                                                      "Far",  "Gone", "First", "Note", "Nobody", "HZNData"};
        static std::vector<std::string> const steps = {"Site",
                                                       "Height",
                                                       "Yard",
                                                       "Yards",
                                                       "Width",
                                                       "Main",
                                                       "Depth",
                                                       "Readings",
                                                       "Tanks",
                                                       "Limits",
                                                       "Model",
                                                       "Twin",
                                                       "Self",
                                                       "Grid",
                                                       "Guarded",
                                                       "Area",
                                                       "Log",
                                                       "Gauges",
                                                       "Tank",
                                                       "Slots",
                                                       "Note",
                                                       "Len",
                                                       "0",
                                                       "1",
                                                       "2",
                                                       "3",
                                                       "007",
                                                       "At(1)",
                                                       "At(2)",
                                                       "At(0)",
                                                       "At(101)",
                                                       "At(crest)",
                                                       "At(toe",
                                                       "At(toe)",
                                                       "At(heel)",
                                                       "1 ",
                                                       "-1",
                                                       "0x1",
                                                       "2a",
                                                       "Nobody",
                                                       "width",
                                                       "Mai",
                                                       "Mainn",
                                                       "18446744073709551616",
                                                       "18446744073709551615",
                                                       " 1"};
        std::vector<std::string> components{AnyOf(tops)};
        at = registry->Find(components.front());
        for (std::size_t left = Any(8); left > 0; --left) {
            H next;
            for (int tries = Any(8) == 0 ? 1 : 60; !next && tries > 0; --tries) {
                std::string const& step = AnyOf(steps);
                // What was inserted is found by the name as it is written, and bears none that begins with the root.
                if (step == "Note" && components.front() == "HZNData") continue;
                next = zo::Find(at, step);
                if (next || tries == 1) components.push_back(step);
            }
            at = next;
            if (!at && Any(4) != 0) break;
        }
        return components;
    }

    /// The components in one name, with indices in any of their spellings.
    std::string Joined(std::vector<std::string> const& components) {
        std::string name = components.front();
        for (std::size_t i = 1; i < components.size(); ++i) {
            bool const isIndex = components[i].find_first_not_of("0123456789") == std::string::npos;
            std::size_t const spelling = isIndex ? Any(3) : 0;
            if (spelling == 0) name += '.' + components[i];
            if (spelling == 1) name += '[' + components[i] + ']';
            if (spelling == 2) name += ".[" + components[i] + ']';
        }
        return name;
    }

    static H Step(std::vector<std::string> const& components) {
        H at = zo::Find(components.front());
        for (std::size_t i = 1; i < components.size() && at; ++i) at = zo::Find(at, components[i]);
        return at;
    }

    /// Compares what the name finds with what the steps find, and counts what is found.
    void Compare(std::string const& name, H const& expected) {
        H const found = registry->Find(name);
        ASSERT_EQ(static_cast<bool>(found), static_cast<bool>(expected)) << name;
        if (!found) return;
        ++timesFound;
        IZO const &one = *found, &other = *expected;
        EXPECT_EQ(one.RegID(), other.RegID()) << name;
        EXPECT_TRUE(typeid(one) == typeid(other)) << name;
        EXPECT_EQ(one.Name(), other.Name()) << name;
        EXPECT_EQ(one.Owner(), other.Owner()) << name;
        EXPECT_EQ(one.OwnerID() == npos, other.OwnerID() == npos) << name;
        EXPECT_EQ(one.Length(), other.Length()) << name;
        EXPECT_EQ(TextOf(found), TextOf(expected)) << name;
        auto const* const view = dynamic_cast<zo::IZOWrapper const*>(found.get());
        auto const* const otherView = dynamic_cast<zo::IZOWrapper const*>(expected.get());
        ASSERT_EQ(view == nullptr, otherView == nullptr) << name;
        if (!view) return;
        EXPECT_EQ(view->Memory(), otherView->Memory()) << name;
        // The managers of clients needn't be shared.
        ASSERT_EQ(static_cast<bool>(view->Manager()), static_cast<bool>(otherView->Manager())) << name;
        if (!view->Manager()) return;
        EXPECT_EQ(view->Manager()->Memory(), otherView->Manager()->Memory()) << name;
    }

    void CompareManyNames() {
        for (int round = 0; round < 6000; ++round) {
            comes->SetAvailable(Any(2) == 0);
            H led;
            std::vector<std::string> const components = AnyComponents(led);
            led.release();
            Compare(Joined(components), Step(components));
            if (HasFailure()) break;
        }
        EXPECT_GT(timesFound, 1000);
    }

    Site site;
    Yard away{34, {1.25, {6}}, {{2.25, {}}}, {14, 24}};
    std::vector<Tank> tanks{{10, {1}}, {11, {}}};
    void* farTanks = &tanks;
    htl::handle<zo::ODS> comes;
    H note = Number(51), siteNote = Number(52), yardNote = Number(53);
    std::mt19937 random{20240611};
    int timesFound = 0;
};

TEST_F(StepwiseFindTest, ANameLeadsWhereItsComponentsLead) { CompareManyNames(); }

TEST_F(StepwiseFindTest, ANameLeadsThereWhileNothingIsTracked) {
    zo::TrackingSuspension const suspended(*registry->Impl());
    CompareManyNames();
}

// ---- What random names don't meet

TEST_F(StepwiseFindTest, ANodeRegisteredAgainAnswersForItsLastRow) {
    rows::OwnRegistry own;
    Tank tank{4, {1, 2}};
    H const shared = StructPrototype(TankTraits());
    own.Add("Old", shared, L"Old", TankTraits(), &tank);
    own.Add("Old.Depth", ValuePrototype<double>(Double(), OffsetOf(&Tank::depth)), L"Depth", Double());
    own.Add("New", shared, L"New", TankTraits(), &tank);
    own.Add("New.Deep", ValuePrototype<double>(Double(), OffsetOf(&Tank::depth)), L"Deep", Double());
    own->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("New.Deep")), L"4");
    EXPECT_EQ(TextOf(zo::Find(zo::Find("Old"), "Deep")), L"4");
    EXPECT_EQ(TextOf(zo::Find("Old.Deep")), L"4");
    EXPECT_FALSE(zo::Find(zo::Find("Old"), "Depth"));
    EXPECT_FALSE(zo::Find("Old.Depth"));
}

/// A structure of which there are no views.
class Sealed : public zo::ZOWrapperStruct {
public:
    using ZOWrapperStruct::ZOWrapperStruct;
    IZO* RemapClone(void*, htl::handle<zo::ZOMemMgr> const&) override { return nullptr; }
};

TEST_F(StepwiseFindTest, AWrapperThatGivesNoViewIsNotFound) {
    rows::OwnRegistry own;
    auto const sealed = [](std::size_t offset) {
        return H(new Sealed(npos, nullptr, TankTraits(), AsMemory(offset), {}));
    };
    auto const depth = [] { return ValuePrototype<double>(Double(), OffsetOf(&Tank::depth)); };
    own.Add("Yard", StructPrototype(YardTraits()), L"Yard", YardTraits(), &site.yard);
    own.Add("Yard.Main", sealed(OffsetOf(&Yard::main)), L"Main", TankTraits());
    own.Add("Yard.Main.Depth", depth(), L"Depth", Double());
    own.Add("Yard.Tanks", ArrayPrototype(TankQueueTraits(), OffsetOf(&Yard::tanks)), L"Tanks", TankQueueTraits());
    own.Add("Yard.Tanks.[]", sealed(0), L"", TankTraits());
    own.Add("Yard.Tanks.[].Depth", depth(), L"Depth", Double());
    own.Add("Tank", sealed(0), L"Tank", TankTraits(), &site.yard.main);
    own.Add("Tank.Depth", depth(), L"Depth", Double());
    own->OnPostRegistration();
    auto const findsNone = [] {
        for (char const* const name :
             {"Yard.Main", "Yard.Main.Depth", "Yard.Tanks[0]", "Yard.Tanks[0].Depth", "Tank", "Tank.Depth"})
            EXPECT_FALSE(zo::Find(name)) << name;
        EXPECT_TRUE(zo::Find("Yard.Tanks"));
    };
    findsNone();
    zo::TrackingSuspension const suspended(*own->Impl());
    findsNone();
}

TEST_F(StepwiseFindTest, SubNamesOfAllLengthsAreToldApart) {
    rows::OwnRegistry own;
    double value = 1;
    std::string const letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJ";
    own.Add("Top", StructPrototype(YardTraits()), L"Top", YardTraits(), &value);
    for (std::size_t length = 1; length <= letters.size(); ++length)
        own.Add("Top." + letters.substr(0, length), ValuePrototype<double>(Double()), L"", Double());
    own->OnPostRegistration();
    for (std::size_t length = 1; length <= letters.size(); ++length) {
        std::string name = "Top." + letters.substr(0, length);
        EXPECT_EQ(rows::NameOf(zo::Find(name)), name);
        for (std::size_t at = 4; at < name.size(); ++at) {
            std::string other = name;
            other[at] = '-';
            EXPECT_FALSE(zo::Find(other)) << other;
        }
    }
    EXPECT_FALSE(zo::Find("Top." + letters + "K"));
}

/// What the length of the array below does beside counting.
std::function<void()> whileCounted;

MetaDataTraits CountedTraits() {
    using Readings = std::vector<double>;
    static meta::MetaTraitsArray const record = [] {
        meta::MetaTraitsArray array;
        array.kind = meta::Kind::Array;
        array.elementTraits = Double;
        array.length = [](void const* memory) {
            if (whileCounted) std::exchange(whileCounted, {})();
            return memory ? static_cast<Readings const*>(memory)->size() : 0;
        };
        array.elementAt = [](void* memory, std::size_t index) -> void* {
            return &(*static_cast<Readings*>(memory))[index];
        };
        return array;
    }();
    return MetaDataTraits(record);
}

TEST_F(StepwiseFindTest, AnArrayIsNotResizedWhileAnInnerOneIsCounted) {
    rows::OwnRegistry own;
    own.Add("Tanks", ArrayPrototype(TanksTraits()), L"Tanks", TanksTraits(), &tanks);
    own.Add("Tanks.[]", StructPrototype(TankTraits()), L"", TankTraits());
    own.Add("Tanks.[].Readings", ArrayPrototype(CountedTraits(), OffsetOf(&Tank::readings)), L"Readings",
            CountedTraits());
    own.Add("Tanks.[].Readings.[]", ValuePrototype<double>(Double()), L"", Double());
    own->OnPostRegistration();
    htl::status resized;
    whileCounted = [&] { resized = zo::Find("Tanks")->SetLength(100); };
    EXPECT_EQ(TextOf(zo::Find("Tanks[0].Readings[0]")), L"1");
    EXPECT_TRUE(embankment::FailsAs(resized, zo::ZOError::array_memory_conflict()));
    EXPECT_EQ(tanks.size(), 2u);
}

} // namespace
