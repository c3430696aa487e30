#include "Common/registry/ZOSet.h"

#include "Common/registry/Find.h"
#include "tests/fixtures/Embankment.h"

namespace {

std::string Form(std::string const& text, int a = -1, int b = -1, int c = -1) {
    return zo::ZOSet::FormName(text, a, b, c);
}

TEST(FormNameTest, TurnsAnAccessExpressionIntoAName) {
    EXPECT_EQ(Form("HZDocumentGetCurrent()->Analyses(ZO_INDEX1)->Name", 3), "Analyses(3).Name");
    EXPECT_EQ(Form("HZDocumentGetCurrent().Soils[$1].Cohesion", 2), "Soils[2].Cohesion");
}

TEST(FormNameTest, TakesThePrefixAwayWithOneSeparator) {
    EXPECT_EQ(Form("HZDocumentGetCurrent()Soils"), "Soils");
    EXPECT_EQ(Form("HZDocumentGetCurrent().Soils"), "Soils");
    EXPECT_EQ(Form("HZDocumentGetCurrent()->Soils"), "Soils");
    EXPECT_EQ(Form("HZDocumentGetCurrent()..Soils"), ".Soils");
    EXPECT_EQ(Form("HZDocumentGetCurrent()"), "");
}

TEST(FormNameTest, ATextOf21CharactersHasNoPrefix) {
    std::string const text = "HZDocumentGetCurrent(";
    ASSERT_EQ(text.size(), 21u);
    EXPECT_EQ(Form(text), text);
}

TEST(FormNameTest, MarkersTakeTheirArguments) {
    EXPECT_EQ(Form("x$1y$2z$3", 1, 22, 333), "x1y22z333");
    EXPECT_EQ(Form("aZO_INDEX2b", 1, 22, 333), "a22b");
    EXPECT_EQ(Form("aZO_ARG3b", 1, 22, 333), "a333b");
    EXPECT_EQ(Form("x$1", 0), "x0");
    EXPECT_EQ(Form("x$1", 2147483647), "x2147483647");
}

TEST(FormNameTest, AMarkerWithoutArgumentStays) {
    EXPECT_EQ(Form("x$1", -1), "x$1");
    EXPECT_EQ(Form("x$2.y", 4), "x$2.y");
    EXPECT_EQ(Form("ZO_INDEX1"), "$1");
    EXPECT_EQ(Form("ZO_ARG2"), "$2");
}

TEST(FormNameTest, AMarkerWithAnotherCharacterVanishesWithIt) {
    EXPECT_EQ(Form("x$4y", 1, 2, 3), "xy");
    EXPECT_EQ(Form("x$ay", 1, 2, 3), "xy");
    EXPECT_EQ(Form("xZO_INDEX9y", 1, 2, 3), "xy");
    EXPECT_EQ(Form("x$", 1), "x");
    EXPECT_EQ(Form("ZO_INDEX", 1), "");
    EXPECT_EQ(Form("ZO_ARG", 1), "");
}

TEST(FormNameTest, AnEmptyPairOfParenthesesVanishes) {
    EXPECT_EQ(Form("f()"), "f");
    EXPECT_EQ(Form("f().g()->h"), "f.g.h");
}

TEST(FormNameTest, WhatStandsInANestedParenthesisIsDropped) {
    EXPECT_EQ(Form("f(g(h))"), "f(g)");
    EXPECT_EQ(Form("f(g()h)"), "f(gh)");
}

TEST(FormNameTest, AnArrowInsideParenthesesStays) { EXPECT_EQ(Form("f(a->b)->c"), "f(a->b).c"); }

TEST(FormNameTest, AnUnclosedParenthesisReachesToTheEnd) {
    EXPECT_EQ(Form("f(a"), "f(a");
    EXPECT_EQ(Form("f(a(b"), "f(a");
}

TEST(FormNameTest, AParenthesisAtTheEndStays) { EXPECT_EQ(Form("f("), "f("); }

TEST(FormNameTest, AnyBytesGiveSomeText) {
    EXPECT_EQ(Form(""), "");
    EXPECT_EQ(Form(std::string("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(Form("\xff\x80"), "\xff\x80");
    EXPECT_EQ(Form(std::string(100'000, ')')), "") << "nothing is open that they could close";
    EXPECT_EQ(Form(std::string(100'000, '$'), 1), "");
}

class FindByArgumentsTest : public embankment::EmbankmentTest {};

TEST_F(FindByArgumentsTest, FindFillsInTheArguments) {
    EXPECT_EQ(embankment::TextOf(zo::Find("Soils[$1].Name", 2)), L"Foundation");
    EXPECT_EQ(embankment::TextOf(zo::Find("Regions[$1].Points[$2]", 1, 2)), L"4");
    EXPECT_EQ(embankment::TextOf(embankment.registry->Find("Soils[ZO_INDEX1].Name", 1)), L"Sand shell");
    EXPECT_FALSE(zo::Find("Soils[$1].Name", -1));
}

} // namespace
