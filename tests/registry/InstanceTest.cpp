// Registries: which one is current, how long they live, and two at a time.
#include "tests/registry/Rows.h"

#include <atomic>
#include <memory>
#include <thread>

namespace {

using rows::H;
using rows::IZO;

TEST(InstanceTest, AThreadThatNeverAskedHasNone) {
    zo::ZORegistry* before = reinterpret_cast<zo::ZORegistry*>(1);
    std::thread([&] { before = zo::ZORegistry::SetInstance(nullptr); }).join();
    EXPECT_EQ(before, nullptr);
}

TEST(InstanceTest, EveryThreadBeginsWithTheDefaultRegistry) {
    zo::ZORegistry *first = nullptr, *second = nullptr, *third = nullptr;
    std::thread([&] { first = zo::ZORegistry::Instance(); }).join();
    std::thread([&] {
        second = zo::ZORegistry::Instance();
        third = zo::ZORegistry::SetInstance(nullptr);
    }).join();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(second, third) << "asking stored it";
}

TEST(InstanceTest, TheRegistryBeforeIsGivenBackWithoutBeingAsked) {
    zo::ZORegistry* gone = nullptr;
    zo::ZORegistry* before = nullptr;
    std::thread([&] {
        auto own = std::make_unique<htl::handle<zo::ZORegistry>>(new zo::ZORegistry);
        gone = own->get();
        zo::ZORegistry::SetInstance(gone);
        std::thread([&] { own.reset(); }).join(); // its end on another thread leaves this thread's slot
        before = zo::ZORegistry::SetInstance(nullptr);
    }).join();
    EXPECT_EQ(before, gone);
}

TEST(InstanceTest, NullSendsTheThreadBackToTheDefault) {
    zo::ZORegistry* const before = zo::ZORegistry::Instance();
    htl::handle<zo::ZORegistry> const own(new zo::ZORegistry);
    EXPECT_EQ(zo::ZORegistry::SetInstance(own.get()), before);
    EXPECT_EQ(zo::ZORegistry::Instance(), own.get());
    EXPECT_EQ(own->RefCount(), 1) << "nothing is counted";
    EXPECT_EQ(zo::ZORegistry::SetInstance(nullptr), own.get());
    EXPECT_EQ(zo::ZORegistry::Instance(), before);
}

TEST(InstanceTest, ACurrentRegistryThatEndsLeavesTheDefault) {
    zo::ZORegistry* const before = zo::ZORegistry::Instance();
    {
        htl::handle<zo::ZORegistry> const own(new zo::ZORegistry);
        zo::ZORegistry::SetInstance(own.get());
    }
    EXPECT_EQ(zo::ZORegistry::Instance(), before);
}

TEST(InstanceTest, ARegistryHasNeitherSourceNorBase) {
    htl::handle<zo::ZORegistry> const own(new zo::ZORegistry);
    EXPECT_EQ(own->Source(), nullptr);
    EXPECT_EQ(own->Base(), nullptr);
    EXPECT_NE(own->Impl(), nullptr);
}

TEST(InstanceTest, TheRootIsANodeOfItsRegistry) {
    htl::handle<zo::ZORegistry> const own(new zo::ZORegistry);
    zo::ZORegistry* const before = zo::ZORegistry::SetInstance(own.get());
    H const root = own->Root();
    EXPECT_EQ(root->RegID(), 0u);
    EXPECT_EQ(root->Owner(), own.get());
    H const clone(root->Clone()), empty(root->EmptyClone());
    EXPECT_EQ(clone->RegID(), 0u);
    EXPECT_EQ(clone->Owner(), own.get());
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
    EXPECT_NE(dynamic_cast<ZORoot*>(empty.get()), nullptr);
    zo::ZORegistry::SetInstance(before);
}

TEST(InstanceTest, NodesMayOutliveTheirRegistry) {
    H named, nameless, prototype, inserted;
    double level = 3.5;
    {
        rows::OwnRegistry registry;
        auto const traits = meta::AtomicTraits<double>();
        registry.Add("Level", embankment::ValuePrototype<double>(traits), L"Level", traits, &level);
        prototype = registry.AddPlain("Plain", L"Plain");
        registry->OnPostRegistration();
        named = zo::Find("Level");
        nameless = H(named->Clone());
        inserted = H(new rows::Plain);
        (void)registry->Insert("Inserted", inserted);
        (void)registry->Find("Plain");
        ASSERT_EQ(named->Name(), "Level");
    }
    EXPECT_EQ(named->Owner(), nullptr);
    EXPECT_EQ(named->Name(), "");
    EXPECT_EQ(named->RefCount(), 1);
    double value = 0;
    EXPECT_TRUE(embankment::Succeeds(named->Get(value)));
    EXPECT_EQ(value, 3.5);
    EXPECT_EQ(prototype->Owner(), nullptr);
    EXPECT_EQ(prototype->RefCount(), 1);
    EXPECT_EQ(inserted->Owner(), nullptr);
    EXPECT_EQ(inserted->RefCount(), 1);
    EXPECT_TRUE(nameless);
}

TEST(InstanceTest, StoresLiveAsLongAsTheirRegistry) {
    htl::handle<zo::IODS> const store(new zo::ODSName("a"));
    {
        htl::handle<zo::ZORegistry> const own(new zo::ZORegistry);
        zo::ZORegistry* const before = zo::ZORegistry::SetInstance(own.get());
        own->RegisterZO(store, H(new rows::Plain), {}, rows::StructureTraits());
        EXPECT_EQ(store->RefCount(), 2);
        zo::ZORegistry::SetInstance(before);
    }
    EXPECT_EQ(store->RefCount(), 1);
}

TEST(InstanceTest, ANodeCanMoveFromOneRegistryToAnother) {
    H const node(new rows::Plain);
    htl::handle<zo::ZORegistry> first(new zo::ZORegistry), second(new zo::ZORegistry);
    (void)first->InsertTemporary("x", node);
    (void)second->InsertTemporary("y", node);
    first.release();
    EXPECT_EQ(node->Owner(), second.get());
    EXPECT_EQ(node->Name(), "y");
    second.release();
    EXPECT_EQ(node->Owner(), nullptr);
}

TEST(InstanceTest, ACountedPlaceElsewhereDoesNotTakeTheOwnerAway) {
    H const node(new rows::Plain);
    htl::handle<zo::ZORegistry> first(new zo::ZORegistry), second(new zo::ZORegistry);
    (void)first->Insert("x", node);
    (void)second->InsertTemporary("y", node);
    EXPECT_EQ(node->RefCount(), 2);
    first.release();
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_EQ(node->Owner(), second.get());
    EXPECT_EQ(node->Name(), "y");
}

TEST(InstanceTest, TwoThreadsWorkSideBySideWithARegistryEach) {
    zo::ZORegistry* const before = zo::ZORegistry::Instance();
    std::atomic<int> ready{0};
    int wrong[2] = {-1, -1};
    auto const work = [&](int which) {
        embankment::Embankment project;
        ++ready;
        while (ready < 2) std::this_thread::yield();
        int misses = 0;
        for (int round = 0; round < 300; ++round) {
            H const friction = zo::Find("Soils[$1].Friction", round % 3);
            if (!friction || friction->Set(double(which * 1000 + round)).IsError()) ++misses;
            double value = 0;
            if (zo::Find("Soils[$1].Friction", round % 3)->Get(value).IsError() || value != which * 1000 + round)
                ++misses;
            if (!zo::FindTag(L"Regions[2].Points[1]")) ++misses;
            if (zo::FullTag(std::string("Soils[2].Name")) != L"Soils[3].Name") ++misses;
            if (zo::Find("Nobody.Is[3].Here")) ++misses;
            if (!zo::GetTemplate("Soils[1].Anisotropy[0]")) ++misses;
            int nodes = 0;
            for (zo::ZORegistryIterator at = project.registry->begin(); !(at == project.registry->end()); ++at) ++nodes;
            if (nodes != 83) ++misses;
        }
        wrong[which] = misses;
    };
    std::thread first(work, 0), second(work, 1);
    first.join();
    second.join();
    EXPECT_EQ(wrong[0], 0);
    EXPECT_EQ(wrong[1], 0);
    EXPECT_EQ(zo::ZORegistry::Instance(), before);
}

} // namespace
