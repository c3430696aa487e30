// Copies of nodes: they know the original's place without owning it.
#include "tests/registry/Rows.h"

namespace {

using rows::H;
using rows::IZO;

class CopiedNode : public IZO {
public:
    CopiedNode() : IZO(npos, nullptr, npos) {}
    CopiedNode(CopiedNode const&) = default;
    CopiedNode& operator=(CopiedNode const&) = default;
    IZO* Clone() override { return new CopiedNode(*this); }
};

class NodeCopyTest : public ::testing::Test {
protected:
    rows::OwnRegistry own;
    htl::handle<CopiedNode> const original{new CopiedNode};
};

TEST_F(NodeCopyTest, ACopyHasTheOriginalsIdentityAndNoCount) {
    ASSERT_FALSE(zo::ZORegistry::Instance()->InsertTemporary("Slip 1", original).IsError());
    htl::handle<CopiedNode> const copy(new CopiedNode(*original));
    EXPECT_EQ(copy->RefCount(), 1);
    EXPECT_EQ(copy->Owner(), original->Owner());
    EXPECT_EQ(copy->OwnerID(), original->OwnerID());
    EXPECT_EQ(copy->RegID(), original->RegID());
}

TEST_F(NodeCopyTest, TheEndOfACopyLeavesTheOriginalEntered) {
    ASSERT_FALSE(zo::ZORegistry::Instance()->InsertTemporary("Slip 1", original).IsError());
    { htl::handle<CopiedNode> const copy(new CopiedNode(*original)); }
    EXPECT_EQ(original->Name(), "Slip 1");
    EXPECT_EQ(zo::Find("Slip 1"), H(original));
}

TEST_F(NodeCopyTest, ACopyMayOutliveTheSetOfItsOriginal) {
    htl::handle<CopiedNode> copy;
    {
        htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
        ASSERT_FALSE(other->InsertTemporary("Slip 1", original).IsError());
        copy = htl::handle<CopiedNode>(new CopiedNode(*original));
    }
    EXPECT_EQ(original->Owner(), nullptr);
    copy.release(); // reaches into no set
    EXPECT_FALSE(copy);
}

TEST_F(NodeCopyTest, AssigningOverAnEnteredNodeEndsItsEntry) {
    ASSERT_FALSE(zo::ZORegistry::Instance()->InsertTemporary("Slip 1", original).IsError());
    htl::handle<CopiedNode> const fresh(new CopiedNode);
    *original = *fresh;
    EXPECT_EQ(original->RefCount(), 1) << "the count is the object's own";
    EXPECT_EQ(original->Name(), "");
    EXPECT_FALSE(zo::Find("Slip 1"));
}

TEST_F(NodeCopyTest, AssigningANodeToItselfKeepsItsEntry) {
    ASSERT_FALSE(zo::ZORegistry::Instance()->InsertTemporary("Slip 1", original).IsError());
    CopiedNode& same = *original;
    *original = same;
    EXPECT_EQ(original->Name(), "Slip 1");
}

} // namespace
