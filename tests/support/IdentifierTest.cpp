#include "support/gid.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace {

using namespace hzn::gid;

TEST(IdentifierTest, ValueHasTheGroupInTheLowHalf) {
    GGID const record{0x11223344, 0xAABBCCDD};
    EXPECT_EQ(Value(record), 0xAABBCCDD11223344u);
    EXPECT_EQ(FromValue(0xAABBCCDD11223344u), record);
    EXPECT_EQ(FromValue(Value(GGID{0xFFFFFFFF, 0xFFFFFFFF})), (GGID{0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_EQ(Value(GGID()), 0u);
}

TEST(IdentifierTest, AZeroWordIsEmpty) {
    EXPECT_TRUE(IsValid({4, 1}));
    EXPECT_FALSE(IsValid({4, 0}));
    EXPECT_FALSE(IsValid({0, 1}));
    EXPECT_FALSE(IsValid({}));
}

TEST(IdentifierTest, OrderIsByGroupThenNumber) {
    EXPECT_TRUE((GGID{4, 9}) < (GGID{5, 1}));
    EXPECT_FALSE((GGID{5, 1}) < (GGID{4, 9}));
    EXPECT_TRUE((GGID{4, 1}) < (GGID{4, 2}));
    EXPECT_FALSE((GGID{4, 2}) < (GGID{4, 2}));
    EXPECT_NE((GGID{4, 2}), (GGID{2, 4}));
}

TEST(IdentifierTest, PlainGroupsAreFourTo125) {
    for (GID const group : {0u, 1u, 3u, 126u, 127u, 128u, 0xFFFFFFFFu}) EXPECT_FALSE(IsPlainGroup(group)) << group;
    for (GID const group : {4u, 5u, 64u, 124u, 125u}) EXPECT_TRUE(IsPlainGroup(group)) << group;
}

TEST(IdentifierTest, NestedNumbersHaveAPlainGroupInTheirTopSevenBits) {
    for (GID const top : {0u, 3u, 126u, 127u}) EXPECT_FALSE(IsNestedContainerId(top << 25 | 0x1FFFFFF)) << top;
    for (GID const top : {4u, 125u}) {
        EXPECT_TRUE(IsNestedContainerId(top << 25)) << top;
        EXPECT_TRUE(IsNestedContainerId(top << 25 | 0x1FFFFFF)) << top;
        EXPECT_TRUE(IsContainerObjectId({top << 25 | 1, 7})) << top;
    }
    EXPECT_FALSE(IsContainerObjectId({125, 4u << 25}));
    EXPECT_FALSE(IsNestedContainerId(125));
}

TEST(IdentifierTest, FullyQualifiedIsPlainOrNested) {
    EXPECT_TRUE(IsFullyQualified({4, 1}));
    EXPECT_TRUE(IsFullyQualified({125, 1}));
    EXPECT_TRUE(IsFullyQualified({4u << 25 | 7, 1}));
    EXPECT_FALSE(IsFullyQualified({3, 1}));
    EXPECT_FALSE(IsFullyQualified({126, 1}));
    EXPECT_FALSE(IsFullyQualified({}));
}

TEST(IdentifierTest, PackingKeepsTheInnerNumberInTheLowSixteenBits) {
    GID const packed = PackedContainerGID({10, 3}, 0x1234);
    EXPECT_EQ(packed, 0x14031234u); // 10 << 25, 3 << 16, 0x1234
    EXPECT_EQ(packed & 0xFFFF, 0x1234u);
    EXPECT_TRUE(IsNestedContainerId(packed));
}

TEST(IdentifierTest, PackedContainersReadBackAtTheLimits) {
    for (GID const group : {4u, 125u}) {
        for (GID const id : {1u, 511u}) {
            for (GID const inner : {1u, 0xFFFFu}) {
                GID const packed = PackedContainerGID({group, id}, inner);
                EXPECT_TRUE(IsNestedContainerId(packed));
                EXPECT_EQ(ContainerRef(GGID(), packed).EnclosingRecordId(), (GGID{group, id}));
                EXPECT_EQ(packed & 0xFFFF, inner);
            }
        }
    }
}

TEST(IdentifierTest, WhatDoesNotFitPacksToNothing) {
    EXPECT_EQ(PackedContainerGID({10, 512}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({10, 0xFFFFFFFF}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({10, 1}, 0x10000), 0u);
    EXPECT_EQ(PackedContainerGID({3, 1}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({126, 1}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({10u << 25 | 1, 1}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({10, 0}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({0, 1}, 1), 0u);
    EXPECT_EQ(PackedContainerGID({10, 1}, 0), 0u);
}

TEST(ContainerRefTest, AContainerThatIsGivenComesFirst) {
    GID const packed = PackedContainerGID({10, 3}, 7);
    EXPECT_EQ(ContainerRef({20, 5}, packed).EnclosingRecordId(), (GGID{20, 5}));
    EXPECT_EQ(ContainerRef({20, 5}, 7).EnclosingRecordId(), (GGID{20, 5}));
    EXPECT_EQ(ContainerRef({20, 0}, packed).EnclosingRecordId(), (GGID{10, 3}));
}

TEST(ContainerRefTest, WithoutAContainerThereIsNoRecordAround) {
    EXPECT_EQ(ContainerRef().EnclosingRecordId(), GGID());
    EXPECT_EQ(ContainerRef(GGID(), 7).EnclosingRecordId(), GGID());
    EXPECT_EQ(ContainerRef(GGID(), 10u << 25 | 7).EnclosingRecordId(), GGID()); // number 0 in the container's group
    EXPECT_EQ(ContainerRef({0, 5}, 126u << 25 | 3u << 16 | 7).EnclosingRecordId(), GGID());
}

TEST(ContainerRefTest, KeepsBothParts) {
    ContainerRef const reference({20, 5}, 7);
    EXPECT_EQ(reference.Container(), (GGID{20, 5}));
    EXPECT_EQ(reference.Object(), 7u);
    EXPECT_EQ(reference, ContainerRef({20, 5}, 7));
    EXPECT_NE(reference, ContainerRef({20, 5}, 8));
    static_assert(!std::is_convertible_v<GGID, ContainerRef>);
    static_assert(std::is_same_v<GID, std::uint32_t> && sizeof(GGID) == 8);
}

} // namespace
