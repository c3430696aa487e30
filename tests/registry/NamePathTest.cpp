#include "Common/ZOUtil/NamePath.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace zo::path;
using std::string;
using std::wstring;

TEST(NamePathTest, ParentPartIsWhatStandsBeforeTheLastSeparator) {
    EXPECT_EQ(ParentPart(string("a.b")), "a");
    EXPECT_EQ(ParentPart(string("a.[]")), "a");
    EXPECT_EQ(ParentPart(string("a[3]")), "a");
    EXPECT_EQ(ParentPart(string("a.[3]")), "a");
    EXPECT_EQ(ParentPart(string("a.[].b")), "a.[]");
    EXPECT_EQ(ParentPart(wstring(L"Soils[2].Cohesion")), L"Soils[2]");
}

TEST(NamePathTest, ParentPartOfOneComponentIsEmpty) {
    EXPECT_EQ(ParentPart(string()), "");
    EXPECT_EQ(ParentPart(string("a")), "");
    EXPECT_EQ(ParentPart(string(".a")), "");
    EXPECT_EQ(ParentPart(string("[3]")), "");
}

TEST(NamePathTest, LastPartIsTheLastComponentWithoutItsClosingBracket) {
    EXPECT_EQ(LastPart(string("a.b")), "b");
    EXPECT_EQ(LastPart(string("a[3]")), "3");
    EXPECT_EQ(LastPart(string("a")), "a");
    EXPECT_EQ(LastPart(wstring(L"Soils[2]")), L"2");
}

TEST(NamePathTest, LastPartKeepsAnEmptyPairOfBrackets) {
    EXPECT_EQ(LastPart(string("a.[]")), "[]");
    EXPECT_EQ(LastPart(string("a.[].[]")), "[]");
}

TEST(NamePathTest, LastPartKeepsAnEmptyIndexesBracketWithoutDot) { EXPECT_EQ(LastPart(string("a[]")), "]"); }

TEST(NamePathTest, LastPartKeepsTheOpeningBracketOfADottedIndex) { EXPECT_EQ(LastPart(string("a.[3]")), "[3"); }

TEST(NamePathTest, LastPartOfAnEmptyTextIsEmpty) {
    EXPECT_EQ(LastPart(string()), "");
    EXPECT_EQ(LastPart(wstring()), L"");
    EXPECT_EQ(LastPart(string("]")), "");
}

TEST(NamePathTest, JoinPutsADotBeforeAPlainComponent) {
    EXPECT_EQ(Join(std::string_view("a"), "b"), "a.b");
    EXPECT_EQ(Join(std::wstring_view(L"A"), L"B"), L"A.B");
}

TEST(NamePathTest, JoinPutsAnIndexInBrackets) {
    EXPECT_EQ(Join(std::string_view("a"), "3"), "a[3]");
    EXPECT_EQ(Join(std::wstring_view(L"A"), L"12"), L"A[12]");
}

TEST(NamePathTest, JoinAppendsAComponentThatBringsItsOwnSeparator) {
    EXPECT_EQ(Join(std::string_view("a"), "[]"), "a[]");
    EXPECT_EQ(Join(std::string_view("a"), ".b"), "a.b");
}

TEST(NamePathTest, JoinToAnEmptyPathIsTheComponent) {
    EXPECT_EQ(Join(std::string_view(), "3"), "3");
    EXPECT_EQ(Join(std::wstring_view(), L"[A]"), L"[A]");
}

TEST(NamePathTest, JoinOfAnEmptyComponentEndsInADot) { EXPECT_EQ(Join(std::string_view("a"), ""), "a."); }

TEST(NamePathTest, AppendActsLikeJoin) {
    string name;
    Append(name, "v");
    Append(name, "3");
    Append(name, "x");
    EXPECT_EQ(name, "v[3].x");
    wstring tag = L"V";
    Append(tag, L"X");
    EXPECT_EQ(tag, L"V.X");
}

TEST(NamePathTest, AttributeComponentBeginsWithAColon) {
    EXPECT_TRUE(IsAttributeComponent(":Size"));
    EXPECT_TRUE(IsAttributeComponent("a.:Size"));
    EXPECT_TRUE(IsAttributeComponent("a[:x"));
    EXPECT_FALSE(IsAttributeComponent("Size"));
    EXPECT_FALSE(IsAttributeComponent("a.b.:Size")) << "only the component behind the first separator counts";
    EXPECT_FALSE(IsAttributeComponent(""));
    EXPECT_FALSE(IsAttributeComponent("a."));
}

struct NormalCase {
    char const* text;
    char const* normal;
    bool good;
};

class NormalizeTextTest : public testing::TestWithParam<NormalCase> {};

TEST_P(NormalizeTextTest, BringsIndicesToTheirRegisteredForm) {
    string name = GetParam().text;
    EXPECT_EQ(Normalize(name), GetParam().good);
    if (GetParam().good) {
        EXPECT_EQ(name, GetParam().normal);
    }
    wstring wide(GetParam().text, GetParam().text + string(GetParam().text).size());
    EXPECT_EQ(Normalize(wide), GetParam().good);
    EXPECT_EQ(wide, wstring(name.begin(), name.end()));
}

INSTANTIATE_TEST_SUITE_P(Texts, NormalizeTextTest,
                         testing::Values(NormalCase{"", "", true}, NormalCase{"a", "a", true},
                                         NormalCase{"a[12].b", "a.[].b", true}, NormalCase{"a.[12].b", "a.[].b", true},
                                         NormalCase{"a.[]", "a.[]", true}, NormalCase{"a.[].b", "a.[].b", true},
                                         NormalCase{"a[1][2]", "a.[].[]", true}, NormalCase{"a.3", "a.3", true},
                                         NormalCase{"a.At(2)", "a.At(2)", true},
                                         NormalCase{"a[12].b[]", "a.[].b.[]", true}, // the index pays for the dot
                                         NormalCase{"x[12][]", "x.[].[]", true}, NormalCase{"x[1][]", "", false},
                                         NormalCase{"a[]", "", false}, NormalCase{"a[1", "", false},
                                         NormalCase{"[", "", false}, NormalCase{"a]", "a]", true},
                                         NormalCase{"a[[1]", "a.[]", true}));

TEST(NamePathTest, AMalformedTextIsCutWhereWritingStopped) {
    string unclosed = "a[1";
    EXPECT_FALSE(Normalize(unclosed));
    EXPECT_EQ(unclosed, "a");
    string full = "a[]";
    EXPECT_FALSE(Normalize(full));
    EXPECT_LE(full.size(), 3u);
}

TEST(NamePathTest, NormalizingTwiceChangesNothingMore) {
    string name = "v[12].x.[3].At(4)";
    ASSERT_TRUE(Normalize(name));
    string again = name;
    EXPECT_TRUE(Normalize(again));
    EXPECT_EQ(again, name);
}

TEST(NamePathTest, DepthCountsDots) {
    EXPECT_EQ(Depth(L""), 0u);
    EXPECT_EQ(Depth(L"A"), 1u);
    EXPECT_EQ(Depth(L"A.[].B"), 3u);
}

TEST(NamePathTest, ParseIndexTakesWholeNumbersWithBlanks) {
    std::size_t index = 77;
    EXPECT_TRUE(ParseIndex(std::string_view("0"), index));
    EXPECT_EQ(index, 0u);
    EXPECT_TRUE(ParseIndex(std::string_view(" \t12\r\n"), index));
    EXPECT_EQ(index, 12u);
    EXPECT_TRUE(ParseIndex(std::wstring_view(L"007"), index));
    EXPECT_EQ(index, 7u);
    EXPECT_TRUE(ParseIndex(std::string_view("18446744073709551615"), index));
    EXPECT_EQ(index, std::size_t(-1));
}

TEST(NamePathTest, ParseIndexRefusesAnythingElseAndLeavesTheOutputAlone) {
    std::size_t index = 77;
    for (std::string_view const text : {"", " ", "-1", "+1", "1a", "1.5", "0x1", "18446744073709551616", "1 2",
                                        "99999999999999999999999999", "\xd9\xa3"})
        EXPECT_FALSE(ParseIndex(text, index)) << text;
    EXPECT_FALSE(ParseIndex(std::wstring_view(L"\u0663"), index)) << "a digit of another script";
    EXPECT_EQ(index, 77u);
}

TEST(NamePathTest, CanonicalNameTakesIndicesInBrackets) {
    string name = "a";
    ExtendCanonical(name, "3");
    EXPECT_EQ(name, "a[3]");
    ExtendCanonical(name, "03");
    EXPECT_EQ(name, "a[3][03]") << "digits stay as they were typed";
}

TEST(NamePathTest, CanonicalNameTurnsAKeyIntoItsIndex) {
    string name = "m";
    ExtendCanonical(name, "At( 7 )");
    EXPECT_EQ(name, "m[6]");
    name = "m";
    ExtendCanonical(name, "At(\t12\v)");
    EXPECT_EQ(name, "m[11]");
    name = "m";
    ExtendCanonical(name, "At(1)");
    EXPECT_EQ(name, "m[0]");
}

TEST(NamePathTest, CanonicalNameKeepsAKeyThatIsNoNumber) {
    for (string const key : {"At(x)", "At()", "At(", "At(1", "At(0)", "At", "At(18446744073709551616)"}) {
        string name = "m";
        ExtendCanonical(name, key);
        EXPECT_EQ(name, "m." + key);
    }
}

TEST(NamePathTest, CanonicalNameTakesOtherComponentsAsTheyAre) {
    string name;
    ExtendCanonical(name, "a");
    EXPECT_EQ(name, "a");
    ExtendCanonical(name, "b");
    EXPECT_EQ(name, "a.b");
    ExtendCanonical(name, "[]");
    EXPECT_EQ(name, "a.b[]");
}

TEST(NamePathTest, HashMultipliesBeforeItMixes) {
    EXPECT_EQ(Hash(std::string_view("")), 0x811c9dc5u);
    EXPECT_EQ(Hash(std::string_view("a")), 0x811d69050c5d7eu);
    EXPECT_EQ(Hash(std::string_view("a.b")), 0xfb2e14ee7f9c8dfeu);
    EXPECT_EQ(Hash(std::string_view("HZNData")), 0xaed7f5a9096eca83u);
}

TEST(NamePathTest, HashExtendsTheSignOfNarrowCharactersOnly) {
    EXPECT_EQ(Hash(std::string_view("\xe9")), 0xff7ee296faf3a2f6u);
    EXPECT_EQ(Hash(std::wstring_view(L"\u00e9")), 0x811d69050c5df6u);
}

TEST(NamePathTest, LongTextsAreCutInLinearTime) {
    string name;
    for (int i = 0; i < 1'000'000; ++i) name += "[1]";
    name = "v" + name;
    EXPECT_EQ(ParentPart(name).size(), name.size() - 3);
    EXPECT_EQ(LastPart(name), "1");
    ASSERT_TRUE(Normalize(name));
    EXPECT_EQ(name.substr(name.size() - 6), ".[].[]");
    string open(2'000'000, '[');
    EXPECT_FALSE(Normalize(open));
}

} // namespace
