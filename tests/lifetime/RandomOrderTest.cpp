// Handles, nodes, transactions and registries in every order: random sequences of operations, the same in every run.
//
// What is checked is what must hold whatever the order: no operation touches what is gone (sanitized builds see that),
// a refused resize loses nothing, and at the end of a sequence no node is alive.
#include <zo/zo.h>

#include "support/describe.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using zo::H;
using zo::IZO;
using zo::impl::NodeAccess;

struct Layer {
    double thickness = 1;
    std::vector<double> samples;
};
struct Soil {
    std::wstring name;
    double cohesion = 5;
    std::vector<Layer> layers;
};
struct Site {
    std::vector<Soil> soils;
    std::array<double, 3> load{1, 2, 3};
    int count = 4;
    int chosen = 2; // number of a soil
};

/// Soils are numbered from 1.
class SoilNames final : public zo::RecordNames {
public:
    std::string NameOf(GGID const& record, zo::ZOSet&) const override {
        return "Soils[" + std::to_string(record.id - 1) + "]";
    }
};

meta::MetaDataTraits NumberTraits() { return meta::AtomicTraits<double>(); }
meta::MetaDataTraits SamplesTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<double>>(NumberTraits);
    return traits;
}
meta::MetaDataTraits LayerTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<Layer>()
                                                   .Member(&Layer::thickness, NumberTraits)
                                                   .Member(&Layer::samples, SamplesTraits)
                                                   .Build();
    return traits;
}
meta::MetaDataTraits LayersTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<Layer>>(LayerTraits);
    return traits;
}
meta::MetaDataTraits CohesionTraits() {
    static meta::MetaDataTraits const traits =
        meta::AtomicBuilder<double>()
            .Valid([](double const& value, IZO const*) {
                return value < 0 ? zo::ZOError::out_of_bounds(-1, 0, 1000) : htl::status();
            })
            .Build();
    return traits;
}
meta::MetaDataTraits SoilTraits() {
    static meta::MetaDataTraits const traits = meta::StructureBuilder<Soil>()
                                                   .Member(&Soil::cohesion, CohesionTraits)
                                                   .Member(&Soil::layers, LayersTraits)
                                                   .Build();
    return traits;
}
meta::MetaDataTraits SoilsTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::vector<Soil>>(SoilTraits);
    return traits;
}
meta::MetaDataTraits LoadTraits() {
    static meta::MetaDataTraits const traits = meta::ArrayTraits<std::array<double, 3>>(NumberTraits);
    return traits;
}

template <class T>
H Value(std::size_t offset, meta::MetaDataTraits const& traits) {
    return H(new zo::ZOWrapperAtomic<T>(IZO::npos, nullptr, traits, reinterpret_cast<void*>(offset), {}));
}
H Structure(meta::MetaDataTraits const& traits) {
    return H(new zo::ZOWrapperStruct(IZO::npos, nullptr, traits, nullptr, {}));
}
H Array(std::size_t offset, meta::MetaDataTraits const& traits) {
    htl::handle<zo::ZOMemMgr> const manager(new zo::ZOArrayMemMgr(reinterpret_cast<void*>(offset), traits));
    return H(new zo::ZOArrayWrapper(IZO::npos, nullptr, {}, manager));
}

/// A registry over a site: soils of layers of samples, a fixed array, a number, and aliases of every class.
htl::handle<zo::ZORegistry> Register(Site& site) {
    htl::handle<zo::ZORegistry> registry(new zo::ZORegistry);
    zo::ZORegistry::SetInstance(registry.get());
    auto const row = [&registry](std::string const& name, H const& node, std::wstring const& tag,
                                 meta::MetaDataTraits const& traits, void* object = nullptr) {
        htl::handle<zo::IODS> const store(new zo::ODS(name, true, true, object));
        // Rows that persist would keep the registry until the process ends.
        registry->RegisterZO(store, node, {meta::MetaPersistTraits::No, tag}, traits);
    };
    row("Soils", Array(0, SoilsTraits()), L"Soils[Soil]", SoilsTraits(), &site.soils);
    row("Soils.[]", Structure(SoilTraits()), L"", SoilTraits());
    row("Soils.[].Name", Value<std::wstring>(meta::OffsetOf(&Soil::name), meta::AtomicTraits<std::wstring>()), L"Name",
        meta::AtomicTraits<std::wstring>());
    row("Soils.[].Cohesion", Value<double>(meta::OffsetOf(&Soil::cohesion), CohesionTraits()), L"Cohesion",
        CohesionTraits());
    row("Soils.[].Layers", Array(meta::OffsetOf(&Soil::layers), LayersTraits()), L"Layers[Layer]", LayersTraits());
    row("Soils.[].Layers.[]", Structure(LayerTraits()), L"", LayerTraits());
    row("Soils.[].Layers.[].Thickness", Value<double>(meta::OffsetOf(&Layer::thickness), NumberTraits()), L"Thickness",
        NumberTraits());
    row("Soils.[].Layers.[].Samples", Array(meta::OffsetOf(&Layer::samples), SamplesTraits()), L"Samples",
        SamplesTraits());
    row("Soils.[].Layers.[].Samples.[]", Value<double>(0, NumberTraits()), L"", NumberTraits());
    row("Load", Array(0, LoadTraits()), L"Load", LoadTraits(), &site.load);
    row("Load.[]", Value<double>(0, NumberTraits()), L"", NumberTraits());
    row("Count", Value<int>(0, meta::AtomicTraits<int>()), L"Count", meta::AtomicTraits<int>(), &site.count);
    static meta::MetaDataTraits const link = meta::AtomicBuilder<int>().Missing(0).LinkGroup(5).Build();
    row("Chosen",
        H(new zo::ZOWrapperLink<int>(IZO::npos, nullptr, link, nullptr, {},
                                     htl::handle<zo::RecordNames const>(new SoilNames))),
        L"Chosen", link, &site.chosen);
    meta::MetaDataTraits const none;
    row("First", H(new zo::ZOAlias("Soils[0]", IZO::npos, nullptr)), L"First", none);
    row("Kept", H(new zo::ZOAliasAbsolute("Soils[1].Cohesion", IZO::npos, nullptr)), L"Kept", none);
    row("ByTag", H(new zo::ZOAliasAbsoluteSlow(L"Soils[1].Layers[1]", IZO::npos, nullptr)), L"ByTag", none);
    row("Round", H(new zo::ZOAlias("About", IZO::npos, nullptr)), L"Round", none);
    row("About", H(new zo::ZOAliasAbsolute("Round", IZO::npos, nullptr)), L"About", none);
    row("Nowhere", H(new zo::ZOAlias("Nothing.There", IZO::npos, nullptr)), L"Nowhere", none);
    row("Summary", H(new zo::ZOAliasSet(L"Summary", {{"C", "Soils[0].Cohesion"}, {"L", "Load"}}, IZO::npos, nullptr)),
        L"Summary", none);
    registry->OnPostRegistration();
    return registry;
}

constexpr std::array names = {"Soils",
                              "Soils[0]",
                              "Soils[0].Cohesion",
                              "Soils[1].Layers",
                              "Soils[1].Layers[0].Thickness",
                              "Soils[2]",
                              "Soils[2].Name",
                              "Soils.Len",
                              "Soils[0].Layers.Len",
                              "Soils[0].Layers[1].Samples",
                              "Load",
                              "Load[1]",
                              "Load.At(3)",
                              "Soils.At(2).Name",
                              "Soils.[1].Cohesion",
                              "Count",
                              "First",
                              "First.Cohesion",
                              "First.Layers[0]",
                              "Kept",
                              "ByTag",
                              "ByTag.Thickness",
                              "Round",
                              "Round.Name",
                              "About",
                              "Nowhere",
                              "Nowhere.Name",
                              "Summary",
                              "Summary.C",
                              "Summary.L",
                              "Soils[99]",
                              "Soils[5].Layers[3]",
                              "Nothing",
                              "",
                              "HZNData",
                              "Soils[0].Layers[0].Samples[2]",
                              "HZNData.Count",
                              "Extra",
                              "Extra.Cohesion",
                              "Soils[1].Layers[0].Samples.Len",
                              "Soils[18446744073709551615]"};
constexpr std::array<wchar_t const*, 6> texts = {L"7.5", L"-3", L"", L"1,2,3", L"none", L"2"};

/// One sequence. Whatever it made is gone when it ends, in an order of its own.
class Sequence {
public:
    explicit Sequence(std::uint32_t seed) : random(seed) {}

    void Run(int operations) {
        NewRegistry_();
        for (int i = 0; i < operations; ++i) Step_();
        while (!handles.empty() || !sets.empty() || !registries.empty()) DropAny_();
        journals.clear();
    }

private:
    std::size_t Below_(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random); }
    bool Chance_(std::size_t of) { return Below_(of) == 0; }
    std::string Name_() { return names[Below_(names.size())]; }
    H& Any_() {
        if (handles.empty()) handles.emplace_back();
        return handles[Below_(handles.size())];
    }
    void Hold_(H node) {
        if (handles.size() < 12)
            handles.push_back(std::move(node));
        else
            Any_() = std::move(node);
    }
    /// A transaction or a registry; null without one.
    htl::handle<zo::ZOSet> AnySet_() {
        std::size_t const count = sets.size() + registries.size();
        if (count == 0) return {};
        std::size_t const at = Below_(count);
        return at < sets.size() ? htl::handle<zo::ZOSet>(sets[at])
                                : htl::handle<zo::ZOSet>(registries[at - sets.size()].first);
    }
    htl::handle<zo::ZOTransaction> AnyTransaction_() {
        return sets.empty() ? htl::handle<zo::ZOTransaction>() : sets[Below_(sets.size())];
    }

    void NewRegistry_() {
        models.push_back(std::make_unique<Site>());
        Site& site = *models.back();
        site.soils.resize(3);
        site.soils[1].layers.resize(2);
        site.soils[0].layers.resize(2);
        site.soils[0].layers[0].samples = {1, 2, 3};
        registries.emplace_back(Register(site), &site);
    }

    void DropAny_() {
        switch (Below_(3)) {
        case 0:
            if (!handles.empty()) handles.erase(handles.begin() + static_cast<std::ptrdiff_t>(Below_(handles.size())));
            return;
        case 1:
            if (!sets.empty()) sets.erase(sets.begin() + static_cast<std::ptrdiff_t>(Below_(sets.size())));
            KeepOneCurrent_();
            return;
        default:
            // Transactions go on reading from their source, which they hold.
            if (registries.empty() || !Chance_(4)) return;
            registries.erase(registries.begin() + static_cast<std::ptrdiff_t>(Below_(registries.size())));
            if (zo::ZORegistry* const other = registries.empty() ? nullptr : registries[0].first.get())
                zo::ZORegistry::SetInstance(other);
            KeepOneCurrent_();
            return;
        }
    }

    /// Nodes of a transaction are asked with a registry of these rows current: when no other is left, its own.
    void KeepOneCurrent_() {
        if (!registries.empty() || sets.empty()) return;
        zo::ZOSet* source = sets[0].get();
        while (source->Source()) source = source->Source();
        zo::ZORegistry::SetInstance(dynamic_cast<zo::ZORegistry*>(source));
    }

    void Write_(H const& node) {
        switch (Below_(5)) {
        case 0: (void)node->Set(static_cast<double>(Below_(50)) - 5); return;
        case 1: (void)node->Set(static_cast<htl::Int64>(Below_(6))); return;
        case 2: (void)node->Set(Chance_(2)); return;
        case 3: node->Clear(); return;
        default: (void)node->Set(texts[Below_(texts.size())]); return;
        }
    }

    void Read_(H const& node) {
        double number = 0;
        std::wstring text;
        (void)node->Get(number);
        // A staged array may be long.
        if (node->Length() < 1000) (void)node->Get(text);
        (void)node->Name();
        (void)node->SubName();
        (void)node->TagName(zo::FullTagType);
        (void)node->IsDefault();
        (void)node->IsUndefined();
        (void)node->Verify();
        (void)zo::GetSource(node);
        (void)zo::GetRecordID(node, zo::Link::Packed);
        (void)zo::GetParent(node, 1);
    }

    void Walk_(H const& node) {
        int steps = 0;
        for (zo::ZOFwrdIterator at = node->begin(); at.current && steps < 8; ++at, ++steps)
            if (Chance_(6)) Hold_(at.current);
    }

    void Step_() {
        std::size_t const operation = Below_(24);
        H const node = Any_();
        switch (operation) {
        case 0:
        case 1:
        case 2:
        case 3:
            if (htl::handle<zo::ZOSet> const set = AnySet_()) Hold_(set->Find(Name_()));
            return;
        case 4:
            if (htl::handle<zo::ZOTransaction> const set = AnyTransaction_()) Hold_(set->Find(Name_()));
            return;
        case 5: Hold_(zo::Find(node, Name_())); return;
        case 6:
            if (auto* const array = dynamic_cast<zo::ZOArray*>(node.get())) Hold_(zo::Find(array, Below_(4)));
            return;
        case 7:
            if (node) Hold_(H(Chance_(2) ? node->Clone() : node->EmptyClone()));
            return;
        case 8:
        case 9:
            if (node) Write_(node);
            return;
        case 10:
            if (node) Read_(node);
            return;
        case 11:
            if (node) {
                std::size_t const before = node->Length();
                htl::status const refused = node->SetLength(Below_(6));
                EXPECT_TRUE(!refused.IsError() || node->Length() == before);
            }
            return;
        case 12:
            if (node) (void)node->Assign(Any_());
            return;
        case 13:
            if (node && node->Length() < 100) (void)node->PushBack(Any_());
            return;
        case 14:
            if (node) Walk_(node);
            return;
        case 15: Hold_(node); return;
        case 16: DropAny_(); return;
        case 17:
            if (htl::handle<zo::ZOSet> const set = AnySet_(); set && sets.size() < 5) {
                if (Chance_(3))
                    sets.emplace_back(new zo::ZOEmptyTransaction(set, false));
                else
                    sets.push_back(set->CreateTransaction());
            }
            return;
        case 18:
            if (htl::handle<zo::ZOTransaction> const set = AnyTransaction_()) {
                if (Chance_(3)) {
                    journals.emplace_back();
                    (void)set->Commit("", "", &journals.back());
                } else if (Chance_(3)) {
                    (void)set->CommitAs(Name_(), Name_(), "", "");
                } else {
                    (void)set->Commit("", "");
                }
            }
            return;
        case 19:
            if (htl::handle<zo::ZOSet> const set = AnySet_(); set && !journals.empty()) {
                zo::ZOJournal const& journal = journals[Below_(journals.size())];
                (void)(Chance_(2) ? journal.Undo(*set) : journal.Redo(*set));
            }
            return;
        case 20:
            if (htl::handle<zo::ZOTransaction> const set = AnyTransaction_()) set->Rollback();
            return;
        case 21:
            if (!registries.empty())
                registries[Below_(registries.size())].first->InvalidateMemory(Chance_(2) ? std::string() : Name_());
            return;
        case 22:
            if (htl::handle<zo::ZOSet> const set = AnySet_()) {
                if (Chance_(2))
                    Hold_(set->AssociateAlias(Chance_(2) ? "Extra" : Name_(), Name_()));
                else if (node && Chance_(2))
                    (void)set->InsertTemporary("Extra", node);
                else if (node)
                    (void)set->Insert("Extra", node);
            }
            return;
        default:
            if (registries.size() < 2 && Chance_(20)) NewRegistry_();
            if (auto* const alias = dynamic_cast<zo::ZOAliasBase*>(node.get())) (void)alias->Validate();
            if (!registries.empty() && Chance_(2))
                zo::ZORegistry::SetInstance(registries[Below_(registries.size())].first.get());
            return;
        }
    }

    std::mt19937 random;
    // Client memory outlives the views of it.
    std::vector<std::unique_ptr<Site>> models;
    std::vector<zo::ZOJournal> journals;
    std::vector<std::pair<htl::handle<zo::ZORegistry>, Site*>> registries;
    std::vector<htl::handle<zo::ZOTransaction>> sets;
    std::vector<H> handles;
};

#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint32_t sequences = 4'000;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr std::uint32_t sequences = 4'000;
#else
constexpr std::uint32_t sequences = 100'000;
#endif
#else
constexpr std::uint32_t sequences = 100'000;
#endif

/// A part of the seeds, so that parts can run side by side.
class RandomOrderTest : public testing::TestWithParam<std::uint32_t> {};

constexpr std::uint32_t parts = 4;

TEST_P(RandomOrderTest, NoNodeOutlivesASequenceOfOperationsInAnyOrder) {
    zo::ZORegistry* const before = zo::ZORegistry::SetInstance(nullptr);
    (void)zo::ZORegistry::Instance(); // the default registry's root is alive from here on
    std::size_t const alive = NodeAccess::LiveNodes();
    for (std::uint32_t seed = GetParam(); seed < sequences; seed += parts) {
        SCOPED_TRACE(seed);
        Sequence(seed).Run(50);
        ASSERT_EQ(NodeAccess::LiveNodes(), alive);
    }
    zo::ZORegistry::SetInstance(before);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomOrderTest, testing::Range(0u, parts));

} // namespace
