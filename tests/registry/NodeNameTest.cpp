// Names of nodes: by their entries in a set, and by their rows.
#include "tests/registry/Rows.h"

namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using rows::H;
using rows::IZO;
using rows::NodeAccess;

class NodeNameTest : public embankment::EmbankmentTest {};

TEST_F(NodeNameTest, AFreshCloneHasNoNameButItsSubName) {
    H const node = zo::Find("Soils[1].Cohesion");
    H const clone(node->Clone());
    EXPECT_EQ(clone->Name(), "");
    EXPECT_EQ(clone->ParentName(), "");
    EXPECT_EQ(clone->SubName(), "Cohesion");
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
    EXPECT_EQ(clone->RegID(), node->RegID());
}

TEST_F(NodeNameTest, AnElementsSubNameIsItsIndex) {
    H const element = zo::Find("Soils[2]");
    EXPECT_EQ(element->SubName(), "2");
    EXPECT_EQ(element->ParentName(), "Soils");
    H const clone(element->Clone());
    EXPECT_EQ(clone->SubName(), "");
}

TEST_F(NodeNameTest, ParentNameIsTheNameWithoutItsLastComponent) {
    EXPECT_EQ(zo::Find("Project.Title")->ParentName(), "Project");
    EXPECT_EQ(zo::Find("Soils[2].Name")->ParentName(), "Soils[2]");
    EXPECT_EQ(zo::Find("Regions[1].Points[2]")->ParentName(), "Regions[1].Points");
    EXPECT_EQ(zo::Find("Project")->ParentName(), "");
}

TEST_F(NodeNameTest, ANodeWithoutRowTakesItsSubNameFromItsEntry) {
    H const node(new rows::Plain);
    (void)embankment.registry->InsertTemporary("x.[3]", node);
    EXPECT_EQ(node->SubName(), "[3");
    (void)embankment.registry->InsertTemporary("x[3]", node);
    EXPECT_EQ(node->SubName(), "3");
    EXPECT_EQ(H(new rows::Plain)->SubName(), "");
}

TEST_F(NodeNameTest, NodesWithoutEntryCompareAsEqual) {
    H const node = zo::Find("Soils[1].Cohesion");
    H const first(node->Clone()), second(node->Clone());
    EXPECT_EQ(first->CompareName(*second), 0);
    EXPECT_EQ(node->CompareName(*first), 0);
    EXPECT_EQ(first->CompareName(*node), 0);
    EXPECT_EQ(node->CompareName(*node), 0);
}

TEST_F(NodeNameTest, NamesCompareByBytes) {
    H const ten = zo::Find("Regions[1].Points"), two = zo::Find("Soils[2]");
    EXPECT_EQ(ten->CompareName(*two), -1);
    EXPECT_EQ(two->CompareName(*ten), 1);
    H const upper(new rows::Plain), high(new rows::Plain), longer(new rows::Plain);
    zo::ZORegistry& registry = *embankment.registry;
    (void)registry.InsertTemporary("Z", upper);
    (void)registry.InsertTemporary("\xc3\xa4", high);
    (void)registry.InsertTemporary("ZZ", longer);
    EXPECT_EQ(upper->CompareName(*high), -1) << "bytes are unsigned";
    EXPECT_EQ(upper->CompareName(*longer), -1);
    EXPECT_EQ(longer->CompareName(*upper), 1);
}

TEST_F(NodeNameTest, EqualNamesCompareAsEqual) {
    H const first = zo::Find("Soils[1].Cohesion"), second = zo::Find("Soils[1].Cohesion");
    ASSERT_NE(first->OwnerID(), second->OwnerID());
    EXPECT_EQ(first->CompareName(*second), 0);
}

TEST_F(NodeNameTest, BothNamesAreLookedUpInTheLeftNodesOwner) {
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    H const here(new rows::Plain), there(new rows::Plain), far(new rows::Plain);
    (void)embankment.registry->InsertTemporary("m", here);
    ASSERT_EQ(here->OwnerID(), 1u);
    (void)other->InsertTemporary("first", far);
    (void)other->InsertTemporary("z", there);
    ASSERT_EQ(there->OwnerID(), 2u);
    // Place 2 is free here, so its name counts as empty.
    EXPECT_EQ(here->CompareName(*there), 1);
    H const second(new rows::Plain);
    (void)embankment.registry->InsertTemporary("n", second);
    ASSERT_EQ(second->OwnerID(), 2u);
    EXPECT_EQ(here->CompareName(*there), -1) << "compared with n, not with z";
}

TEST_F(NodeNameTest, AChildIsFoundByItsWholeSubNameOnly) {
    rows::OwnRegistry registry;
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.abc", L"Abc");
    registry->OnPostRegistration();
    H const node = zo::Find("a");
    EXPECT_TRUE(NodeAccess::GetSubZO(*node, "abc"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*node, "ab"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*node, "abcd"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*node, ""));
    EXPECT_FALSE(NodeAccess::GetSubZO(*node, "Abc"));
}

TEST_F(NodeNameTest, ANodeWithoutRowHasNoChildren) {
    H const node(new rows::Plain);
    EXPECT_FALSE(NodeAccess::GetSubZO(*node, "Soils"));
    EXPECT_EQ(node->begin(), node->end());
}

TEST_F(NodeNameTest, ChildrenInTheCurrentRegistryAreClonesElsewhereEmptyOnes) {
    /// A value that tells which of the two made it.
    class Counted : public rows::Plain {
    public:
        explicit Counted(int value, std::size_t regID = npos, zo::ZOSet* owner = nullptr)
            : Plain(regID, owner), value(value) {}
        IZO* Clone() override { return new Counted(value, RegID(), Owner()); }
        IZO* EmptyClone() override { return new Counted(0, RegID(), Owner()); }
        int value;
    };
    rows::OwnRegistry registry;
    H const parent = registry.AddPlain("a", L"A");
    registry.Add("a.b", H(new Counted(5)), L"B", rows::StructureTraits());
    registry->OnPostRegistration();
    auto const valueBelow = [](H const& node) {
        H const child = NodeAccess::GetSubZO(*node, "b");
        return dynamic_cast<Counted&>(*child).value;
    };
    EXPECT_EQ(valueBelow(parent), 5);
    H const clone(parent->Clone());
    EXPECT_EQ(valueBelow(clone), 5);
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    NodeAccess::SetOwner(*clone, other.get(), IZO::npos);
    EXPECT_EQ(valueBelow(clone), 0);
    NodeAccess::SetOwner(*clone, nullptr, IZO::npos);
    EXPECT_EQ(valueBelow(clone), 0);
}

TEST_F(NodeNameTest, ThePresentLengthIsSetOnAnyNode) {
    H const title = zo::Find("Project.Title");
    EXPECT_TRUE(Succeeds(title->SetLength(1)));
    EXPECT_TRUE(FailsAs(title->SetLength(2), zo::ZOError::not_supported("")));
}

TEST_F(NodeNameTest, PushBackOnANodeWithoutLengthFailsBeforeAnyLookup) {
    H node = zo::Find("Project.Title");
    H value(node->Clone());
    EXPECT_TRUE(FailsAs(node->PushBack(value), zo::ZOError::not_supported("")));
}

TEST_F(NodeNameTest, PushBackAppendsACopy) {
    H corners = zo::Find("Regions[1].Points");
    H const third = zo::Find("Regions[0].Points[2]");
    H value(third->Clone());
    ASSERT_TRUE(Succeeds(corners->PushBack(value)));
    EXPECT_EQ(embankment.model.regions[1].points, (std::vector<int>{1, 3, 4, 3}));
}

TEST_F(NodeNameTest, PushBackOfAnotherTypeLeavesTheArrayOneLonger) {
    H corners = zo::Find("Regions[1].Points");
    H title = zo::Find("Project.Title");
    EXPECT_TRUE(FailsAs(corners->PushBack(title), zo::ZOError::not_supported("")));
    EXPECT_EQ(embankment.model.regions[1].points, (std::vector<int>{1, 3, 4, 0}));
}

TEST_F(NodeNameTest, PushBackOnAnArrayWithoutNameFindsNoElement) {
    H const view = zo::GetWrapper(rows::RowOf("Regions.[].Points"), &embankment.model.regions[1].points);
    ASSERT_TRUE(view);
    H value(zo::Find("Regions[0].Points[2]")->Clone());
    EXPECT_TRUE(FailsAs(view->PushBack(value), zo::ZOError::not_found("[3]")));
    EXPECT_EQ(embankment.model.regions[1].points.size(), 4u);
}

TEST_F(NodeNameTest, TheEventHasItsName) { EXPECT_STREQ(IZO::EventName(IZO::Changed), "!Changed"); }

TEST_F(NodeNameTest, ABareNodeRefusesWhatItCannotDo) {
    H const node = zo::Find("Summary");
    EXPECT_TRUE(FailsAs(node->Run(), zo::ZOError::not_supported("")));
    EXPECT_TRUE(FailsAs(node->Assign(node), zo::ZOError::not_supported("")));
    EXPECT_TRUE(FailsAs(NodeAccess::Resize(*node, 3), zo::ZOError::not_supported("")));
    std::wstring text = L"as it was";
    EXPECT_TRUE(FailsAs(node->Get(text), zo::ZOError::not_supported(zo::DataTraits(node).TypeName())));
    EXPECT_EQ(text, L"as it was");
    EXPECT_FALSE(node->IsDefault());
}

} // namespace
