// From nodes and names to tags.
#include "tests/registry/Rows.h"

namespace {

using rows::H;
using rows::IZO;

class TagTest : public embankment::EmbankmentTest {};

TEST_F(TagTest, ATopLevelNodeIsTaggedByItsRow) {
    H const soils = zo::Find("Soils");
    EXPECT_EQ(soils->TagName(zo::FullTagType), L"Soils");
    EXPECT_EQ(soils->TagName(zo::SimpleTagType), L"Soils");
    EXPECT_EQ(soils->Tag(), L"Soils");
}

TEST_F(TagTest, AnIndexCountsFromOneInATag) {
    EXPECT_EQ(zo::Find("Soils[0]")->TagName(zo::FullTagType), L"Soils[1]");
    EXPECT_EQ(zo::Find("Soils[0]")->TagName(zo::SimpleTagType), L"[1]");
    EXPECT_EQ(zo::Find("Soils[2].Cohesion")->TagName(zo::FullTagType), L"Soils[3].Cohesion");
    EXPECT_EQ(zo::Find("Soils[2].Cohesion")->TagName(zo::SimpleTagType), L"Cohesion");
    EXPECT_EQ(zo::Find("Regions[1].Points[2]")->TagName(zo::FullTagType), L"Regions[2].Points[3]");
}

TEST_F(TagTest, ACloneWithoutEntryIsTaggedByItsRow) {
    H const clone(zo::Find("Soils[2].Cohesion")->Clone());
    EXPECT_EQ(clone->TagName(zo::FullTagType), L"Soils[Soil].Cohesion");
    EXPECT_EQ(clone->TagName(zo::SimpleTagType), L"Cohesion");
}

TEST_F(TagTest, AKeyAlreadyCountsFromOne) {
    H const node(new rows::Plain);
    (void)embankment.registry->InsertTemporary("Soils.At(2)", node);
    EXPECT_EQ(node->TagName(zo::FullTagType), L"Soils[2]");
    EXPECT_EQ(node->TagName(zo::SimpleTagType), L"[2]");
    (void)embankment.registry->InsertTemporary("Soils.At( 2 )", node);
    EXPECT_EQ(node->TagName(zo::FullTagType), L"Soils[2]");
}

TEST_F(TagTest, ALinksStepIsTransparent) {
    H const node(new rows::Plain);
    (void)embankment.registry->InsertTemporary("Soils[1].@", node);
    EXPECT_EQ(node->TagName(zo::FullTagType), L"Soils[2]");
    EXPECT_EQ(node->TagName(zo::SimpleTagType), L"[2]") << "the parent's";
}

TEST_F(TagTest, AnEmptyTagLeavesADotAtTheEnd) {
    H const length = zo::Find("Soils.Len");
    EXPECT_EQ(length->TagName(zo::FullTagType), L"Soils.");
    EXPECT_EQ(length->TagName(zo::SimpleTagType), L".");
}

TEST_F(TagTest, ANodeThatNobodyKnowsHasAnEmptyTag) {
    H const node(new rows::Plain);
    EXPECT_EQ(node->TagName(zo::FullTagType), L"");
    EXPECT_EQ(node->Tag(), L"");
}

TEST_F(TagTest, TagsOfNamesComeFromTheLiveNodeOrElseTheTemplate) {
    EXPECT_EQ(zo::FullTag(zo::Find("Soils[1].Name")), L"Soils[2].Name");
    EXPECT_EQ(zo::SimpleTag(zo::Find("Soils[1].Name")), L"Name");
    EXPECT_EQ(zo::FullTag(std::string("Soils[1].Name")), L"Soils[2].Name");
    EXPECT_EQ(zo::SimpleTag(std::string("Soils[1].Name")), L"Name");
    EXPECT_EQ(zo::FullTag(std::string("Soils[7].Name")), L"Soils[Soil].Name");
    EXPECT_EQ(zo::FullTag(std::string("Soils.[].Name")), L"Soils[Soil].Name");
    EXPECT_EQ(zo::SimpleTag(std::string("Soils.[].Name")), L"Name");
    EXPECT_EQ(zo::FullTag(std::string("Nobody")), L"");
    EXPECT_EQ(zo::SimpleTag(std::string("")), L"");
}

TEST_F(TagTest, SubTagIsTheLastComponent) {
    EXPECT_EQ(zo::SubTag(L"Soils[3].Cohesion"), L"Cohesion");
    EXPECT_EQ(zo::SubTag(L"Soils[3]"), L"3");
    EXPECT_EQ(zo::SubTag(L"Soils.[]"), L"[]");
    EXPECT_EQ(zo::SubTag(L"Soils"), L"Soils");
    EXPECT_EQ(zo::SubTag(L""), L"");
}

TEST_F(TagTest, TagFromNameJoinsTheTagsOfTheSteps) {
    EXPECT_EQ(zo::TagFromName("Soils"), L"Soils");
    EXPECT_EQ(zo::TagFromName("Soils[1].Cohesion"), L"Soils[2].Cohesion");
    EXPECT_EQ(zo::TagFromName("Soils.[1].Cohesion"), L"Soils[2].Cohesion");
    EXPECT_EQ(zo::TagFromName("Regions[1].Points[2]"), L"Regions[2].Points[3]");
    EXPECT_EQ(zo::TagFromName("Soils.[].Cohesion"), L"Soils.[].Cohesion");
    EXPECT_EQ(zo::TagFromName("HZNData"), L"HZNData");
}

TEST_F(TagTest, TagFromNameStopsAtTheLastNodeThatIsThere) {
    EXPECT_EQ(zo::TagFromName("Soils[1].Nobody.x"), L"Soils[2]");
    EXPECT_EQ(zo::TagFromName("Nobody.Name"), L"");
    EXPECT_EQ(zo::TagFromName(""), L"");
    EXPECT_EQ(zo::TagFromName("[]"), L"");
    EXPECT_EQ(zo::TagFromName("..."), L"");
}

TEST_F(TagTest, TagFromNameBeginsWithTheWholeTagOfTheFirstStep) {
    rows::OwnRegistry registry;
    registry.AddPlain("foo", L"Site.North.Foo");
    registry.AddPlain("foo.bar", L"Bar");
    registry->OnPostRegistration();
    EXPECT_EQ(zo::TagFromName("foo.bar"), L"Site.North.Foo.Bar");
}

TEST_F(TagTest, ATagOfALiveNodeLeadsBackToIt) {
    int count = 0;
    for (zo::ZORegistryIterator at = embankment.registry->begin(); !(at == embankment.registry->end()); ++at) {
        std::wstring const tag = at->TagName(zo::FullTagType);
        H const found = zo::FindTag(tag);
        ASSERT_TRUE(found) << at->Name();
        EXPECT_EQ(found->Name(), at->Name());
        EXPECT_EQ(zo::TagFromName(at->Name()), tag);
        ++count;
    }
    // Project 3; Soils 1 + 3 x (8 + 3); Points 1 + 4 x 3; Regions 1 + 2 x (3 + 3); WaterTable 3 + 2 x 3; Results 2 + 2
    // x 3; Summary 3.
    EXPECT_EQ(count, 3 + 34 + 13 + 13 + 9 + 8 + 3);
}

} // namespace
