// The number and the name of an object, by the tags of its children.
#include "tests/redirect/Records.h"

namespace {

using namespace records;

using ObjectHelperTest = RecordsTest;

TEST_F(ObjectHelperTest, TheNumberIsTheValueOfTheChildWithTheTagID) {
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Materials[2]")), 3u);
    model.materials[2].number = 41;
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Materials[2]")), 41u);
}

TEST_F(ObjectHelperTest, TheNumberOfAnObjectWithoutOneIs0) {
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Regions[0]")), 0u);
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Materials[0].Cohesion")), 0u);
    EXPECT_EQ(zo::GetObjectIDByTag({}), 0u);
}

TEST_F(ObjectHelperTest, AMissingNumberIs0) {
    model.materials[2].number = 0x7FFFFFFF;
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Materials[2]")), 0u);
}

TEST_F(ObjectHelperTest, OfALongNumberTheLow32BitsCount) {
    Int64 number = 0x500000007;
    registry.AddPlain("Stage", L"Stage");
    MetaDataTraits const& traits = meta::AtomicTraits<Int64>();
    registry.Add("Stage.ID", H(new zo::ZOWrapperAtomic<Int64>(IZO::npos, nullptr, traits, nullptr, {})), L"ID", traits,
                 &number);
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Stage")), 7u);
}

TEST_F(ObjectHelperTest, ANumberThatCannotBeReadIs0) {
    registry.AddPlain("Stage", L"Stage");
    registry.AddPlain("Stage.ID", L"ID");
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Stage")), 0u);
}

TEST_F(ObjectHelperTest, SetObjectIDByTagWritesTheNumber) {
    EXPECT_TRUE(Succeeds(zo::SetObjectIDByTag(zo::Find("Materials[1]"), 17)));
    EXPECT_EQ(model.materials[1].number, 17);
}

TEST_F(ObjectHelperTest, TheNumber0IsWrittenAsMissing) {
    EXPECT_TRUE(Succeeds(zo::SetObjectIDByTag(zo::Find("Materials[1]"), 0)));
    EXPECT_EQ(model.materials[1].number, 0x7FFFFFFF);
    EXPECT_EQ(zo::GetObjectIDByTag(zo::Find("Materials[1]")), 0u);
}

TEST_F(ObjectHelperTest, ANumberThatTheFieldCannotHoldIsRefused) {
    EXPECT_TRUE(FailsAs(
        zo::SetObjectIDByTag(zo::Find("Materials[1]"), 0xFFFFFFFFu),
        htl::Convert_error_status::OutOfRangeStatus(L"4294967295", htl::Convert_error_status::WholeNumberString())));
    EXPECT_EQ(model.materials[1].number, 2);
}

TEST_F(ObjectHelperTest, ANumberNeedsAFieldToBeWritten) {
    htl::status const expected = HznError::internal("", "zo::SetObjectIDByTag", 0);
    EXPECT_TRUE(FailsAs(zo::SetObjectIDByTag(zo::Find("Regions[0]"), 3), expected));
    EXPECT_TRUE(FailsAs(zo::SetObjectIDByTag({}, 3), expected));
}

TEST_F(ObjectHelperTest, TheNameIsTheTextOfTheChildWithTheTagName) {
    EXPECT_EQ(zo::GetObjectName(zo::Find("Materials[1]")), L"Clay");
    EXPECT_EQ(zo::GetObjectName(zo::Find("Regions[0].Material.@")), L"Clay");
}

TEST_F(ObjectHelperTest, TheNameOfAnObjectWithoutOneIsEmpty) {
    EXPECT_EQ(zo::GetObjectName(zo::Find("Regions[0]")), L"");
    EXPECT_EQ(zo::GetObjectName({}), L"");
}

TEST_F(ObjectHelperTest, ANameThatCannotBeReadIsEmpty) {
    registry.AddPlain("Stage", L"Stage");
    registry.AddPlain("Stage.Name", L"Name");
    EXPECT_EQ(zo::GetObjectName(zo::Find("Stage")), L"");
}

TEST_F(ObjectHelperTest, SetObjectNameWritesTheName) {
    EXPECT_TRUE(Succeeds(zo::SetObjectName(zo::Find("Materials[1]"), L"Soft clay")));
    EXPECT_EQ(model.materials[1].name, L"Soft clay");
}

TEST_F(ObjectHelperTest, ANameNeedsAFieldToBeWritten) {
    htl::status const expected = HznError::internal("", "zo::SetObjectName", 0);
    EXPECT_TRUE(FailsAs(zo::SetObjectName(zo::Find("Regions[0]"), L"Core"), expected));
    EXPECT_TRUE(FailsAs(zo::SetObjectName({}, L"Core"), expected));
}

TEST_F(ObjectHelperTest, ThePrototypeOfAnObjectIsAskedWithoutItsMemory) {
    H const prototype(zo::GetTemplate("Materials.[]"));
    EXPECT_EQ(zo::GetObjectIDByTag(prototype), 0u) << "the default of the number";
    EXPECT_EQ(zo::GetObjectName(prototype), L"");
}

TEST_F(ObjectHelperTest, ANumberIsToldByExactlyItsTag) {
    registry.AddPlain("Id", L"Id");
    registry.AddPlain("Number", L"ID");
    EXPECT_TRUE(zo::IsID(zo::Find("Materials[0].ID")));
    EXPECT_TRUE(zo::IsID(zo::Find("Number")));
    EXPECT_FALSE(zo::IsID(zo::Find("Id")));
    EXPECT_FALSE(zo::IsID(zo::Find("Materials[0].Name")));
    EXPECT_FALSE(zo::IsID({}));
}

} // namespace
