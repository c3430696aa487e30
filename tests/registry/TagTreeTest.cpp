// The tree that tags shape: first children and next siblings.
#include "tests/registry/Rows.h"

namespace {

using rows::H;
using rows::IZO;

class TagTreeTest : public rows::RegistryTest {
protected:
    /// The names of a row's children in the tree, in order.
    std::vector<std::string> Children(std::string const& name) {
        std::vector<std::string> names;
        std::size_t const parent = name.empty() ? 0 : rows::RowOf(name);
        for (std::size_t row = zo::SubRegID(parent); row != IZO::npos; row = zo::NextRegID(row)) {
            names.push_back(zo::RegNormalizedName(row));
            if (names.size() > 100) return {"the siblings never end"};
        }
        return names;
    }
};

using Texts = std::vector<std::string>;

TEST_F(TagTreeTest, WithoutRowsTheRootHasNoChild) {
    registry->OnPostRegistration();
    EXPECT_EQ(zo::SubRegID(0), IZO::npos);
    EXPECT_EQ(zo::NextRegID(0), IZO::npos);
}

TEST_F(TagTreeTest, TheTopLevelIsInTheOrderOfTagsDeeperLevelsInTheOrderOfRegistration) {
    registry.AddPlain("z", L"B");
    registry.AddPlain("z.y", L"Y");
    registry.AddPlain("z.x", L"X");
    registry.AddPlain("z.m", L"M");
    registry.AddPlain("a", L"C");
    registry.AddPlain("m", L"A");
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), (Texts{"m", "z", "a"}));
    EXPECT_EQ(Children("z"), (Texts{"z.y", "z.x", "z.m"}));
    EXPECT_EQ(Children("a"), Texts{});
}

TEST_F(TagTreeTest, TheTopLevelIsInUtf16Order) {
    registry.AddPlain("ligature", L"\uFB01");
    registry.AddPlain("globe", L"\U0001F30D");
    registry.AddPlain("private", L"\uE000");
    registry.AddPlain("z", L"z");
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), (Texts{"z", "globe", "private", "ligature"}));
}

TEST_F(TagTreeTest, ASecondPassChangesNothing) {
    registry.AddPlain("p", L"P");
    registry.AddPlain("p.c", L"B");
    registry.AddPlain("p.b", L"C");
    registry.AddPlain("p.a", L"A");
    registry->OnPostRegistration();
    EXPECT_EQ(Children("p"), (Texts{"p.c", "p.b", "p.a"}));
    registry->OnPostRegistration();
    EXPECT_EQ(Children("p"), (Texts{"p.c", "p.b", "p.a"}));
    EXPECT_EQ(Children(""), Texts{"p"});
}

TEST_F(TagTreeTest, ASecondPassTakesInLateRows) {
    registry.AddPlain("p", L"P");
    registry.AddPlain("p.c", L"C");
    registry->OnPostRegistration();
    registry.AddPlain("o", L"O");
    registry.AddPlain("p.a", L"A");
    EXPECT_EQ(Children(""), Texts{"p"});
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), (Texts{"o", "p"}));
    EXPECT_EQ(Children("p"), (Texts{"p.c", "p.a"}));
}

TEST_F(TagTreeTest, TagsWithBlanksAndHyphensKeepTheirChildren) {
    // In the order of characters "A-X" and "A B" stand between "A" and "A.B".
    registry.AddPlain("a", L"A");
    registry.AddPlain("ax", L"A-X");
    registry.AddPlain("ab", L"A B");
    registry.AddPlain("a.b", L"B");
    registry.AddPlain("ax.c", L"C");
    registry.AddPlain("ab.d", L"D D");
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), (Texts{"a", "ab", "ax"}));
    EXPECT_EQ(Children("a"), Texts{"a.b"});
    EXPECT_EQ(Children("ax"), Texts{"ax.c"});
    EXPECT_EQ(Children("ab"), Texts{"ab.d"});
}

TEST_F(TagTreeTest, AMissingLevelGoesToTheLongestTagThatIsThere) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.:hidden", L""); // has no path
    registry.AddPlain("a.d", L"D");
    registry.Add("b", H(new rows::OtherName("nobody", true)), L"A.B", rows::StructureTraits());
    registry.AddPlain("c", L"A.B.C"); // A.B is an alias's and stands in no tree
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), Texts{"a"});
    EXPECT_EQ(Children("a"), (Texts{"a.d", "c"}));
}

TEST_F(TagTreeTest, ATagThatBeginsLikeAnotherIsNotItsChild) {
    registry.AddPlain("a", L"Soil");
    registry.AddPlain("b", L"Soils");
    registry.AddPlain("b.c", L"C");
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), (Texts{"a", "b"}));
    EXPECT_EQ(Children("a"), Texts{});
    EXPECT_EQ(Children("b"), Texts{"b.c"});
}

TEST_F(TagTreeTest, RowsWithoutTagStandUnderTheirNames) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.b", L"");
    registry.AddPlain("a.b.c", L"");
    registry.AddPlain("n", L"");
    registry->OnPostRegistration();
    EXPECT_EQ(Children(""), (Texts{"a", "n"}));
    EXPECT_EQ(Children("a"), Texts{"a.b"});
    EXPECT_EQ(Children("a.b"), Texts{"a.b.c"});
}

TEST_F(TagTreeTest, ElementsStandUnderTheirArrays) {
    registry.AddArray("v", L"V");
    registry.AddPlain("v.[]", L"");
    registry.AddPlain("v.[].x", L"X");
    registry.AddArray("v.[].w", L"W[One]");
    registry.AddPlain("v.[].w.[]", L"");
    registry->OnPostRegistration();
    EXPECT_EQ(Children("v"), Texts{"v.[]"});
    EXPECT_EQ(Children("v.[]"), (Texts{"v.[].x", "v.[].w"}));
    EXPECT_EQ(Children("v.[].w"), Texts{"v.[].w.[]"});
}

TEST_F(TagTreeTest, EveryRowButTheRootHasOnePlace) {
    embankment::Embankment project;
    std::size_t count = 0;
    std::vector<std::size_t> open{0};
    std::vector<int> seen(1000, 0);
    while (!open.empty()) {
        std::size_t const row = open.back();
        open.pop_back();
        for (std::size_t child = zo::SubRegID(row); child != IZO::npos; child = zo::NextRegID(child)) {
            ASSERT_LT(child, seen.size());
            ASSERT_EQ(seen[child]++, 0);
            open.push_back(child);
            ++count;
        }
    }
    // Project 3, Soils 10 with the anisotropy and its numbers, Points 4, Regions 5, WaterTable 6, Results 5, Summary 3.
    EXPECT_EQ(count, 3u + 10u + 4u + 5u + 6u + 5u + 3u);
}

TEST_F(TagTreeTest, ADeepAndWideRegistryIsFinishedInLinearTime) {
    std::string name = "n";
    std::wstring tag = L"N";
    registry.AddPlain(name, tag);
    for (int i = 0; i < 200; ++i) {
        name += ".n";
        registry.AddPlain(name, tag);
    }
    for (int i = 0; i < 20'000; ++i) registry.AddPlain("w" + std::to_string(i), L"W" + std::to_wstring(i));
    registry->OnPostRegistration();
    registry->OnPostRegistration();
    EXPECT_EQ(zo::SubRegID(rows::RowOf("n")), rows::RowOf("n.n"));
}

} // namespace
