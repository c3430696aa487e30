// Two threads that work for a while, and a registry that goes from thread to thread.
#include "tests/threads/Dike.h"
#include "tests/threads/SideBySide.h"

namespace threads {
namespace {

/// One round of everything: edits, takes back, saves, loads; the dike is as before then.
void Round(OwnDike& own, int which, int round) {
    zo::ZOJournal journal;
    {
        htl::handle<zo::ZOTransaction> const edit = own.registry->CreateTransaction();
        ASSERT_TRUE(Succeeds(edit->Find("Dike.Soils[1].Cohesion")->Set(double(round))));
        ASSERT_TRUE(Succeeds(edit->Find("Dike.Regions[0].Levels")->Set(L"1,2,3")));
        ASSERT_TRUE(Succeeds(edit->Commit("", "", &journal)));
    }
    ASSERT_EQ(own.dike.soils[1].cohesion, round);
    ASSERT_EQ(own.dike.regions[0].levels, (std::vector<double>{1, 2, 3}));
    ASSERT_TRUE(Succeeds(journal.Undo(*own.registry)));

    std::wstring document;
    ASSERT_TRUE(Succeeds(zo::xml::StringWrite(document, {1, 2})));
    ASSERT_EQ(document, DocumentOf(which));
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::StringRead(document, errors)));
    ASSERT_TRUE(errors.empty());
    ASSERT_EQ(own.dike, Example(which));
}

TEST(WorkTest, ThreadsWithARegistryEachDoNotMeet) {
    SideBySide([](int which, Meeting&) {
        OwnDike own(which);
        for (int round = 0; round < 50 && !testing::Test::HasFailure(); ++round) Round(own, which, round);
    });
}

TEST(WorkTest, RegistriesComeAndGoSideBySide) {
    SideBySide([](int which, Meeting&) {
        for (int round = 0; round < 10 && !testing::Test::HasFailure(); ++round) {
            OwnDike own(which);
            Round(own, which, round);
        }
    });
}

TEST(WorkTest, RegistryIsHandedOverWhenNothingOfItIsHeld) {
    struct Passed {
        Dike dike = Example(0);
        htl::handle<zo::ZORegistry> registry;
    } passed;
    auto const take = [&](auto const& work) {
        std::thread([&] {
            zo::ZORegistry* const before = zo::ZORegistry::SetInstance(passed.registry.get());
            work();
            zo::ZORegistry::SetInstance(before);
        }).join();
    };
    std::thread([&] { passed.registry = htl::handle<zo::ZORegistry>(new zo::ZORegistry); }).join();
    take([&] {
        auto const declare = [&](zo::kit::Kit& kit) {
            kit.Branch<double>("Crest", L"Crest", [&] { return &passed.dike.regions[0].levels[1]; });
        };
        EXPECT_TRUE(zo::kit::Register({declare}).IsClean());
    });
    take([&] { EXPECT_TRUE(Succeeds(zo::Find("Crest")->Set(5.25))); });
    take([&] {
        EXPECT_EQ(TextOf("Crest"), L"5.25");
        passed.registry = {}; // its persist tree still holds it
    });
    EXPECT_EQ(passed.dike.regions[0].levels[1], 5.25);
}

TEST(WorkTest, WhatOneThreadMadeAnotherMayEnd) {
    // Memory of small objects is kept for each thread, and goes with the object.
    std::vector<htl::status> failures;
    std::vector<zo::H> nodes;
    for (int round = 0; round < 4; ++round) {
        std::thread([&] {
            failures.clear();
            nodes.clear();
            for (int i = 0; i < 100; ++i) {
                failures.push_back(zo::ZOError::not_found("Soils[" + std::to_string(i) + "]"));
                nodes.emplace_back(
                    new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, meta::AtomicTraits<double>(), double(i)));
            }
        }).join();
    }
    EXPECT_EQ(failures[99].AsWString(), L"Not found: Soils[99]");
    double value = 0;
    EXPECT_TRUE(Succeeds(nodes[99]->Get(value)));
    EXPECT_EQ(value, 99);
}

} // namespace
} // namespace threads
