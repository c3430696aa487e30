// Where a path of tags in the table starts: at nodes, and beyond aliases and links. Told by labels, which are composed
// of what such paths lead to.
#include "tests/present/Levee.h"

namespace levee {
namespace {

using zo::Find;
using zo::Label;

class RelativePathTest : public LeveeTest {
protected:
    /// Composes the label of a node from one path; its plain label is "plain".
    static std::wstring Along(std::wstring const& tag, std::string const& name, std::wstring const& path) {
        EXPECT_TRUE(Compiles(Table().Entry(tag, {{L"Label", L"plain"}, {L"LabelTag", path}})));
        return Label(Find(name));
    }
};

TEST_F(RelativePathTest, APathStartsAtTheNode) { EXPECT_EQ(Along(L"Project", "Project", L"Title"), L"Levee 7"); }

TEST_F(RelativePathTest, APathFromAnAliasStartsAtItsSource) { EXPECT_EQ(Along(L"Cover", "Cover", L"Name"), L"Clay"); }

TEST_F(RelativePathTest, APathFromAnAliasToAnAliasStartsAtTheLastSource) {
    EXPECT_EQ(Along(L"Top", "Top", L"Name"), L"Clay");
}

TEST_F(RelativePathTest, AnAliasToNothingLeadsNowhere) { EXPECT_EQ(Along(L"Nothing", "Nothing", L"Name"), L"plain"); }

TEST_F(RelativePathTest, AliasesInACircleLeadNowhere) { EXPECT_EQ(Along(L"Round", "Round", L"Name"), L"plain"); }

TEST_F(RelativePathTest, APathFromALinkStartsAtTheRecord) {
    EXPECT_EQ(Along(L"Regions.[].Soil", "Regions[1].Soil", L"Name"), L"Sand");
}

TEST_F(RelativePathTest, APathFromALinkClimbsFromTheRecord) {
    EXPECT_EQ(Along(L"Regions.[].Soil", "Regions[1].Soil", L"@Parent.[3].Name"), L"Peat");
}

TEST_F(RelativePathTest, ALinkToNoRecordLeadsNowhere) {
    EXPECT_EQ(Along(L"Regions.[].Soil", "Regions[2].Soil", L"Name"), L"plain");
}

} // namespace
} // namespace levee
