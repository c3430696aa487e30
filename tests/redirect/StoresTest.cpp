// What a store says of its branch.
#include "Common/redirect/Stores.h"
#include "Common/registry/IODS.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using Store = htl::handle<zo::IODS>;

TEST(StoresTest, AStoreHoldsItsName) {
    int object = 0;
    EXPECT_EQ(Store(new zo::ODSName("Soils.[]"))->Name(), "Soils.[]");
    EXPECT_EQ(Store(new zo::ODS("Soils", true, true, &object))->Name(), "Soils");
    EXPECT_EQ(Store(new zo::ODSAccessor("Points", [](zo::ODSAccessor const&) -> void* { return nullptr; }))->Name(),
              "Points");
    EXPECT_EQ(Store(new zo::ODSFnAccessor("Summary", &object))->Name(), "Summary");
}

TEST(StoresTest, AStoreThatOnlyNamesABranchIsNeverActive) {
    Store const shown(new zo::ODSName("Soils")), hidden(new zo::ODSName("Soils", false));
    EXPECT_FALSE(shown->IsActiveDataStore());
    EXPECT_FALSE(hidden->IsActiveDataStore());
    EXPECT_TRUE(shown->IsAvailable());
    EXPECT_FALSE(hidden->IsAvailable());
    EXPECT_EQ(shown->GetPtrType(), nullptr);
}

TEST(StoresTest, AnObjectMakesAStoreAvailableWhateverItsFlag) {
    int object = 0;
    Store const store(new zo::ODS("Soils", true, false, &object));
    EXPECT_TRUE(store->IsAvailable());
    EXPECT_EQ(store->GetPtrType(), &object);
}

TEST(StoresTest, WithoutAnObjectTheFlagDecides) {
    Store const shown(new zo::ODS("Soils", true, true)), hidden(new zo::ODS("Soils", true, false));
    EXPECT_TRUE(shown->IsAvailable());
    EXPECT_FALSE(hidden->IsAvailable());
    EXPECT_EQ(shown->GetPtrType(), nullptr);
}

TEST(StoresTest, AStoreIsActiveAsItsFlagSays) {
    htl::handle<zo::ODS> const store(new zo::ODS("Soils", false, true));
    EXPECT_FALSE(store->IsActiveDataStore());
    store->SetActive(true);
    EXPECT_TRUE(store->IsActiveDataStore());
}

TEST(StoresTest, ABranchComesAndGoes) {
    int object = 0;
    htl::handle<zo::ODS> const store(new zo::ODS("Results", true, false));
    EXPECT_FALSE(store->IsAvailable());
    store->SetObject(&object);
    EXPECT_TRUE(store->IsAvailable());
    EXPECT_EQ(store->GetPtrType(), &object);
    store->SetObject(nullptr);
    EXPECT_FALSE(store->IsAvailable());
    store->SetAvailable(true);
    EXPECT_TRUE(store->IsAvailable());
}

std::array<char, 16> memory;
std::string askedName;

TEST(StoresTest, AnAccessorIsAskedAtEachUseAndItsOffsetAdded) {
    auto const accessor = [](zo::ODSAccessor const& store) -> void* {
        askedName = store.Name();
        return memory.data();
    };
    Store const plain(new zo::ODSAccessor("Soils", accessor)), shifted(new zo::ODSAccessor("Points", accessor, 8));
    EXPECT_EQ(plain->GetPtrType(), memory.data());
    EXPECT_EQ(askedName, "Soils");
    EXPECT_EQ(shifted->GetPtrType(), memory.data() + 8);
    EXPECT_EQ(askedName, "Points");
    EXPECT_TRUE(plain->IsAvailable());
    EXPECT_FALSE(plain->IsActiveDataStore());
}

TEST(StoresTest, AnAccessorThatGivesNothingGetsNoOffset) {
    Store const store(new zo::ODSAccessor(
        "Soils", [](zo::ODSAccessor const&) -> void* { return nullptr; }, 8));
    EXPECT_EQ(store->GetPtrType(), nullptr);
}

TEST(StoresTest, AStoreOverAFunctionsObjectIsAvailableAndNotActive) {
    int object = 0;
    Store const store(new zo::ODSFnAccessor("Summary", &object));
    EXPECT_TRUE(store->IsAvailable());
    EXPECT_FALSE(store->IsActiveDataStore());
    EXPECT_EQ(store->GetPtrType(), &object);
}

} // namespace
