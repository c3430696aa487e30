// Where a node's colour is.
#include "tests/present/Levee.h"

#include "support/color.h"

namespace levee {
namespace {

using zo::Color;
using zo::Find;
using zo::GetColorZO;
using zo::HasColor;
using zo::IsColor;

std::string NameOf(H const& node) { return node ? node->Name() : "<no node>"; }

class ColorTest : public LeveeTest {};

TEST_F(ColorTest, AColorIsANodeOfThatName) {
    EXPECT_TRUE(IsColor(Find("Soils[0].Color")));
    EXPECT_FALSE(IsColor(Find("Regions[0].Fill")));
    EXPECT_FALSE(IsColor(Find("Soils[0]")));
    EXPECT_FALSE(IsColor(H()));
}

TEST_F(ColorTest, AColorIsItsOwnColor) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[].Color", {{L"ColorTag", L"@Parent.Cohesion"}})));
    EXPECT_TRUE(HasColor(Find("Soils[0].Color")));
    EXPECT_EQ(NameOf(GetColorZO(Find("Soils[0].Color"))), "Soils[0].Color") << "whatever the table says";
    EXPECT_EQ(Color(Find("Soils[1].Color")), 0x00FF00u);
}

TEST_F(ColorTest, TheTableSaysWhereTheColorIs) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Regions.[]", {{L"ColorTag", L"Fill"}})));
    EXPECT_TRUE(HasColor(Find("Regions[1]")));
    EXPECT_EQ(NameOf(GetColorZO(Find("Regions[1]"))), "Regions[1].Fill");
    EXPECT_EQ(Color(Find("Regions[1]")), 0x00FFFFu);
}

TEST_F(ColorTest, TheColorMayBeThatOfALinkedRecord) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Regions.[]", {{L"ColorTag", L"Soil.Color"}})));
    EXPECT_EQ(Color(Find("Regions[1]")), 0x00FF00u);
}

TEST_F(ColorTest, WithoutAWordInTheTableItIsTheChildOfThatName) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_TRUE(HasColor(Find("Soils[2]")));
    EXPECT_EQ(NameOf(GetColorZO(Find("Soils[2]"))), "Soils[2].Color");
    EXPECT_EQ(Color(Find("Soils[2]")), 0x808080u);
}

TEST_F(ColorTest, BeforeATableIsCompiledItIsTheChildOfThatName) { EXPECT_EQ(Color(Find("Soils[0]")), 0x0000FFu); }

TEST_F(ColorTest, AnAliasAndALinkHaveTheColorOfWhatTheyLeadTo) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(Color(Find("Top")), 0x0000FFu);
    EXPECT_EQ(Color(Find("Regions[1].Soil")), 0x00FF00u);
    EXPECT_TRUE(HasColor(Find("Top")));
    EXPECT_TRUE(HasColor(Find("Regions[1].Soil")));
}

TEST_F(ColorTest, ANodeWithoutAColorHasTheMissingOne) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_FALSE(HasColor(Find("Project")));
    EXPECT_FALSE(GetColorZO(Find("Project")));
    EXPECT_EQ(Color(Find("Project")), MissingColor);
}

TEST_F(ColorTest, TheTableIsTakenAtItsWordOnlyWhereAColorIsAskedAbout) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Project", {{L"ColorTag", L"Shade"}})));
    EXPECT_TRUE(HasColor(Find("Project")));
    EXPECT_FALSE(GetColorZO(Find("Project")));
    EXPECT_EQ(Color(Find("Project")), MissingColor);
}

TEST_F(ColorTest, AColorThatCannotBeReadIsTheMissingOne) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"ColorTag", L"Name"}})));
    EXPECT_EQ(Color(Find("Soils[0]")), MissingColor);
}

TEST_F(ColorTest, OfAWiderNumberTheLow32BitsAreTheColor) {
    levee.model.regions[0].fill = 0x700000012;
    ASSERT_TRUE(Compiles(Table().Entry(L"Regions.[]", {{L"ColorTag", L"Fill"}})));
    EXPECT_EQ(Color(Find("Regions[0]")), 0x12u);
}

TEST_F(ColorTest, AnEmptyHandleHasNoColor) {
    ASSERT_TRUE(Compiles(TableText().Entry(L"Default", {{L"ColorTag", L"Fill"}})));
    EXPECT_FALSE(HasColor(H()));
    EXPECT_FALSE(GetColorZO(H()));
    EXPECT_EQ(Color(H()), MissingColor);
}

} // namespace
} // namespace levee
