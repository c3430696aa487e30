#include "Common/ZOUtil/NamePath.h"
#include "Common/registry/SetImpl.h"
#include "tests/registry/Rows.h"

#include <algorithm>
#include <chrono>
#include <random>

namespace {

using rows::H;
using rows::IZO;
using rows::Plain;
using zo::EntryTable;
using zo::SetEntry;

SetEntry* Put(EntryTable& table, std::string const& name, bool visible) {
    SetEntry* const entry = table.Acquire();
    entry->name = name;
    entry->visible = visible;
    table.Insert(entry);
    return entry;
}

void Drop(EntryTable& table, SetEntry* entry) {
    table.Remove(entry);
    table.Recycle(entry);
}

TEST(EntryTableTest, FindsEntriesByName) {
    EntryTable table;
    SetEntry* const soils = Put(table, "Soils", true);
    SetEntry* const points = Put(table, "Points", true);
    EXPECT_EQ(table.First("Soils"), soils);
    EXPECT_EQ(table.First("Points"), points);
    EXPECT_EQ(table.First("Regions"), nullptr);
    EXPECT_EQ(table.Size(), 2u);
    Drop(table, soils);
    EXPECT_EQ(table.First("Soils"), nullptr);
    EXPECT_EQ(table.Size(), 1u);
}

TEST(EntryTableTest, AnEmptyTableFindsNothing) {
    EntryTable table;
    EXPECT_EQ(table.First(""), nullptr);
    EXPECT_EQ(table.FirstVisible("Soils"), nullptr);
}

TEST(EntryTableTest, HiddenEntriesAreNotFoundAsVisible) {
    EntryTable table;
    SetEntry* const hidden = Put(table, "Soils", false);
    EXPECT_EQ(table.First("Soils"), hidden);
    EXPECT_EQ(table.FirstVisible("Soils"), nullptr);
    SetEntry* const visible = Put(table, "Soils", true);
    EXPECT_EQ(table.FirstVisible("Soils"), visible);
    Drop(table, hidden);
    EXPECT_EQ(table.FirstVisible("Soils"), visible);
}

TEST(EntryTableTest, TheFirstVisibleEntryOfANameStaysTheFirst) {
    EntryTable table;
    SetEntry* const first = Put(table, "Soils", true);
    SetEntry* const second = Put(table, "Soils", true);
    SetEntry* const third = Put(table, "Soils", true);
    Put(table, "Soils", false);
    EXPECT_EQ(table.FirstVisible("Soils"), first);
    Drop(table, first);
    EXPECT_EQ(table.FirstVisible("Soils"), second);
    Drop(table, second);
    EXPECT_EQ(table.FirstVisible("Soils"), third);
}

TEST(EntryTableTest, OrderOfEqualNamesOutlivesGrowth) {
    EntryTable table;
    SetEntry* const first = Put(table, "Soils", true);
    SetEntry* const second = Put(table, "Soils", true);
    for (int i = 0; i < 10'000; ++i) Put(table, "n" + std::to_string(i), true);
    EXPECT_EQ(table.FirstVisible("Soils"), first);
    Drop(table, first);
    EXPECT_EQ(table.FirstVisible("Soils"), second);
    for (int i = 0; i < 10'000; ++i) ASSERT_NE(table.First("n" + std::to_string(i)), nullptr) << i;
}

TEST(EntryTableTest, AForgottenTableIsFilledAnew) {
    EntryTable table;
    for (int const count : {0, 3, 10'000, 2, 1, 5'000, 0, 40}) {
        std::vector<SetEntry*> entries;
        for (int i = 0; i < count; ++i) entries.push_back(Put(table, "n" + std::to_string(i), i % 3 != 2));
        for (int i = 0; i < count; ++i) {
            std::string const name = "n" + std::to_string(i);
            ASSERT_EQ(table.FirstVisible(name), i % 3 != 2 ? entries[static_cast<std::size_t>(i)] : nullptr) << name;
        }
        EXPECT_EQ(table.Size(), entries.size());
        EXPECT_EQ(table.HasHidden(), count > 2);
        table.Forget();
        EXPECT_EQ(table.Size(), 0u);
        EXPECT_FALSE(table.HasHidden());
        EXPECT_EQ(table.LongestVisible(), 0u);
        EXPECT_EQ(table.First("n0"), nullptr);
        EXPECT_EQ(table.First("n2"), nullptr);
        for (SetEntry* const entry : entries) table.Recycle(entry);
    }
}

TEST(EntryTableTest, AnEntryThatIsKnownToBeNewIsFoundLikeAnyOther) {
    EntryTable table;
    std::vector<SetEntry*> entries;
    for (int i = 0; i < 1000; ++i) {
        SetEntry* const entry = table.Acquire();
        entry->name = "n" + std::to_string(i);
        entry->visible = true;
        table.InsertNew(entry, zo::path::Hash(entry->name));
        entries.push_back(entry);
    }
    SetEntry* const later = Put(table, "n7", true);
    EXPECT_EQ(table.FirstVisible("n7"), entries[7]);
    EXPECT_EQ(table.LongestVisible(), 4u);
    Drop(table, entries[7]);
    EXPECT_EQ(table.FirstVisible("n7"), later);
    EXPECT_EQ(table.Size(), 1000u);
    for (int i = 8; i < 1000; ++i)
        ASSERT_EQ(table.First("n" + std::to_string(i)), entries[static_cast<std::size_t>(i)]);
}

TEST(EntryTableTest, ManyHiddenEntriesOfOneNameCostNoSearch) {
    EntryTable table;
    constexpr int count = 100'000;
    std::vector<SetEntry*> entries;
    entries.push_back(Put(table, "Soils[1].Cohesion", true));
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) entries.push_back(Put(table, "Soils[1].Cohesion", false));
    for (int i = 0; i < count; ++i) ASSERT_EQ(table.FirstVisible("Soils[1].Cohesion"), entries.front());
    EXPECT_EQ(table.First("Soils[1].Cohesion"), entries.front());
    for (int i = 0; i < count; ++i) ASSERT_EQ(table.FirstVisible("Soils[1].Cohesion"), entries.front());
    std::shuffle(entries.begin() + 1, entries.end(), std::mt19937(1));
    for (SetEntry* const entry : entries) Drop(table, entry);
    auto const taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(table.Size(), 0u);
    // A search for each would be ten thousand million steps.
    EXPECT_LT(std::chrono::duration<double>(taken).count(), 30.0);
}

TEST(EntryTableTest, AgreesWithAnOrderedListUnderRandomUse) {
    EntryTable table;
    std::vector<SetEntry*> expected; // in order of insertion
    std::mt19937 random(20240607);
    std::string const names[] = {"a", "b", "a.b", "v[0]", "v[1]", ""};
    for (int step = 0; step < 20'000; ++step) {
        if (expected.empty() || random() % 5 < 3) {
            expected.push_back(Put(table, names[random() % std::size(names)], random() % 2 == 0));
        } else {
            std::size_t const at = random() % expected.size();
            Drop(table, expected[at]);
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
        }
        ASSERT_EQ(table.Size(), expected.size());
        for (std::string const& name : names) {
            SetEntry* firstVisible = nullptr;
            bool any = false;
            for (SetEntry* const entry : expected)
                if (entry->name == name) {
                    any = true;
                    if (entry->visible && !firstVisible) firstVisible = entry;
                }
            ASSERT_EQ(table.FirstVisible(name), firstVisible) << step << " \"" << name << '"';
            ASSERT_EQ(table.First(name) != nullptr, any);
        }
        if (expected.size() > 60)
            while (expected.size() > 5) {
                Drop(table, expected.back());
                expected.pop_back();
            }
    }
}

/// What a set knows of its nodes, without the root.
std::vector<std::string> Names(zo::ZOSet& set) {
    std::vector<std::string> names;
    for (SetEntry const* const entry : set.Impl()->entryOrder)
        if (entry && entry->name != "HZNData") names.push_back(entry->name);
    return names;
}

class SetImplTest : public rows::RegistryTest {};

TEST_F(SetImplTest, AFreshRegistryHoldsItsRootAlone) {
    auto const& order = registry->Impl()->entryOrder;
    ASSERT_EQ(order.size(), 1u);
    EXPECT_EQ(order[0]->name, "HZNData");
    EXPECT_TRUE(order[0]->visible);
    EXPECT_FALSE(order[0]->counted);
    EXPECT_EQ(order[0]->node, registry->Root().get());
    EXPECT_EQ(registry->Root()->OwnerID(), 0u);
}

TEST_F(SetImplTest, ANodesEntryEndsWithTheNode) {
    H node(new Plain);
    ASSERT_TRUE(embankment::Succeeds(registry->InsertTemporary("x", node)));
    EXPECT_EQ(node->RefCount(), 1);
    EXPECT_EQ(node->OwnerID(), 1u);
    EXPECT_EQ(Names(*registry), std::vector<std::string>{"x"});
    node.release();
    EXPECT_TRUE(Names(*registry).empty());
    EXPECT_EQ(registry->Impl()->entryOrder.size(), 1u) << "free places at the end are trimmed";
}

TEST_F(SetImplTest, FreePlacesInTheMiddleAreNotUsedAgain) {
    H first(new Plain), second(new Plain), third(new Plain);
    (void)registry->InsertTemporary("x", first);
    (void)registry->InsertTemporary("y", second);
    first.release();
    EXPECT_EQ(second->OwnerID(), 2u);
    (void)registry->InsertTemporary("z", third);
    EXPECT_EQ(third->OwnerID(), 3u);
    EXPECT_EQ(registry->Impl()->entryOrder[1], nullptr);
    third.release();
    second.release();
    EXPECT_EQ(registry->Impl()->entryOrder.size(), 1u);
}

TEST_F(SetImplTest, AnInsertedNodeOfANormalNameIsKeptAlive) {
    H node(new Plain);
    ASSERT_TRUE(embankment::Succeeds(registry->Insert("x", node)));
    EXPECT_EQ(node->RefCount(), 2);
    IZO* const raw = node.get();
    node.release();
    EXPECT_EQ(registry->Find("x").get(), raw);
}

TEST_F(SetImplTest, AnInsertedNodeOfAnIndexedNameIsNotKeptAlive) {
    H node(new Plain);
    ASSERT_TRUE(embankment::Succeeds(registry->Insert("x[3]", node)));
    EXPECT_EQ(node->RefCount(), 1);
    node.release();
    EXPECT_TRUE(Names(*registry).empty());
}

TEST_F(SetImplTest, ADyingCopyLeavesTheOriginalsEntryAlone) {
    H node(new Plain);
    (void)registry->InsertTemporary("x", node);
    {
        H const copy(new Plain(static_cast<Plain const&>(*node)));
        EXPECT_EQ(copy->OwnerID(), node->OwnerID());
        EXPECT_EQ(copy->RefCount(), 1);
    }
    EXPECT_EQ(registry->Find("x"), node);
}

TEST_F(SetImplTest, ASecondPlaceEndsTheFirstUncountedOne) {
    H node(new Plain);
    (void)registry->InsertTemporary("x", node);
    (void)registry->InsertTemporary("y", node);
    EXPECT_EQ(Names(*registry), std::vector<std::string>{"y"});
    EXPECT_EQ(node->Name(), "y");
}

TEST_F(SetImplTest, ASecondPlaceLeavesACountedOne) {
    H node(new Plain);
    (void)registry->Insert("x", node);
    (void)registry->InsertTemporary("y", node);
    EXPECT_EQ(Names(*registry), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(node->Name(), "y");
    EXPECT_EQ(registry->Find("x"), node);
}

TEST_F(SetImplTest, APlaceInAnotherSetEndsTheOneHere) {
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    H node(new Plain);
    (void)registry->InsertTemporary("x", node);
    (void)other->InsertTemporary("y", node);
    EXPECT_TRUE(Names(*registry).empty());
    EXPECT_EQ(node->Owner(), other.get());
    node.release();
    EXPECT_TRUE(Names(*other).empty());
}

TEST_F(SetImplTest, RegisteringANodeEndsItsTemporaryPlace) {
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    H node(new Plain);
    (void)other->InsertTemporary("x", node);
    registry.Add("Soils", node, L"Soils", rows::StructureTraits());
    EXPECT_TRUE(Names(*other).empty());
    EXPECT_EQ(node->Owner(), &*registry);
    EXPECT_EQ(node->OwnerID(), IZO::npos);
}

TEST_F(SetImplTest, InsertRefusesANormalNameThatAHiddenEntryHas) {
    registry.AddPlain("Soils", L"Soils");
    ASSERT_TRUE(registry->Find("Soils"));
    H const node(new Plain);
    EXPECT_TRUE(embankment::FailsAs(registry->Insert("Soils", node), zo::ZOError::duplicate_name()));
    EXPECT_EQ(node->Owner(), nullptr);
    EXPECT_EQ(node->RefCount(), 1);
}

TEST_F(SetImplTest, SuspendedTrackingOfARegistryNeitherRecordsNorValidates) {
    registry.AddPlain("Soils", L"Soils");
    zo::ZOSetImpl& impl = *registry->Impl();
    {
        zo::TrackingSuspension const suspension(impl);
        EXPECT_FALSE(impl.trackTemporaries);
        EXPECT_FALSE(impl.validateValues);
        H const node = registry->Find("Soils");
        ASSERT_TRUE(node);
        EXPECT_EQ(node->OwnerID(), IZO::npos);
        EXPECT_EQ(node->Name(), "");
        EXPECT_TRUE(Names(*registry).empty());
    }
    EXPECT_TRUE(impl.trackTemporaries);
    EXPECT_TRUE(impl.validateValues);
    H const node = registry->Find("Soils");
    EXPECT_EQ(node->Name(), "Soils");
}

TEST_F(SetImplTest, SuspendedTrackingOfAPlainSetStillRecords) {
    zo::ZOSetImpl impl;
    EXPECT_FALSE(impl.IsRegistryImpl());
    impl.SuspendTracking();
    EXPECT_TRUE(impl.trackTemporaries);
    EXPECT_FALSE(impl.validateValues);
    impl.ResumeTracking();
    EXPECT_TRUE(impl.validateValues);
    EXPECT_TRUE(registry->Impl()->IsRegistryImpl());
}

TEST_F(SetImplTest, ManyHandlesToOneNodeCostNoSearch) {
    embankment::Embankment project;
    std::vector<H> nodes;
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100'000; ++i) nodes.push_back(zo::Find("Soils[1].Cohesion"));
    EXPECT_EQ(nodes.front()->Name(), "Soils[1].Cohesion");
    EXPECT_EQ(nodes.back()->Name(), "Soils[1].Cohesion");
    nodes.clear();
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 30.0);
    EXPECT_TRUE(Names(*project.registry).empty());
}

TEST_F(SetImplTest, NodesThatOutliveTheirRegistryHaveNoOwner) {
    H kept, prototype;
    {
        htl::handle<zo::ZORegistry> const brief(new zo::ZORegistry);
        kept = H(new Plain);
        (void)brief->Insert("x", kept);
        zo::ZORegistry::SetInstance(brief.get());
        prototype = brief->Root();
        zo::ZORegistry::SetInstance(&*registry);
        ASSERT_EQ(prototype->Owner(), brief.get());
    }
    EXPECT_EQ(kept->Owner(), nullptr);
    EXPECT_EQ(kept->OwnerID(), IZO::npos);
    EXPECT_EQ(kept->Name(), "");
    EXPECT_EQ(prototype->Owner(), nullptr);
    EXPECT_EQ(kept->RefCount(), 1);
}

/// Holds another node of its set, which goes with it.
class Holder : public Plain {
public:
    explicit Holder(H held) : held(std::move(held)) {}

private:
    H held;
};

TEST_F(SetImplTest, NodesThatHoldEachOtherEndWithTheirSet) {
    htl::handle<zo::ZORegistry> brief(new zo::ZORegistry);
    H inner(new Plain);
    (void)brief->InsertTemporary("inner", inner);
    H outer(new Holder(inner));
    (void)brief->Insert("outer", outer);
    H outermost(new Holder(outer));
    (void)brief->Insert("outermost", outermost);
    inner.release();
    outer.release();
    IZO* const raw = outermost.get();
    outermost.release();
    ASSERT_EQ(brief->Find("outermost").get(), raw);
    brief.release(); // the sanitizers watch
}

} // namespace
