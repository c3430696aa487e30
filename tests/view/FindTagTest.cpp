// The search by tag, below a node and from the top.
#include "tests/view/Shown.h"

using namespace shown;
using zo::view::FindTag;

namespace {

class FindTagInViewTest : public dam::ViewModelTest {};

/// The drain's pitch stands in the body, its flow shows there, too, and so does the gallery under other tags.
TableText Reshaped() {
    return TableText::WithDefault()
        .Entry(L"Body", {}, {From(L"Drain.Pitch"), Also(L"Drain.Flow"), As(L"Gallery.*", L"Inner*")})
        .Entry(L"Gallery", {}, {From(L".*")});
}

TEST_F(FindTagInViewTest, FindsAChild) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_EQ(NameOf(FindTag(zo::Find("Body"), L"Crest", all)), "Body.Crest");
}

TEST_F(FindTagInViewTest, FindsAnElementByItsNumber) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_EQ(NameOf(FindTag(zo::Find("Points"), L"[2]", all)), "Points[1]");
    EXPECT_EQ(NameOf(FindTag(zo::Find("Points"), L"[4]", all)), "<no node>");
}

TEST_F(FindTagInViewTest, FindsAMovedNodeByItsOldPlace) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_EQ(NameOf(FindTag(zo::Find("Drain"), L"Pitch", all)), "Drain.Pitch");
    EXPECT_EQ(NameOf(FindTag(L"Drain.Pitch", all)), "Drain.Pitch");
}

TEST_F(FindTagInViewTest, FindsAMovedNodeByItsNewPlace) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_EQ(NameOf(FindTag(zo::Find("Body"), L"Pitch", all)), "Drain.Pitch");
    EXPECT_EQ(NameOf(FindTag(L"Body.Pitch", all)), "Drain.Pitch");
}

TEST_F(FindTagInViewTest, FindsAnAlias) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_EQ(NameOf(FindTag(zo::Find("Body"), L"Flow", all)), "Body.Flow");
    EXPECT_EQ(NameOf(FindTag(L"Body.Flow", all)), "Body.Flow");
}

TEST_F(FindTagInViewTest, FindsANodeUnderTheTagThatOnlyTheViewKnows) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_FALSE(zo::FindTag(zo::Find("Body"), std::wstring(L"InnerLength")));
    H const found = FindTag(zo::Find("Body"), L"InnerLength", all);
    EXPECT_EQ(NameOf(found), "Body.InnerLength");
    EXPECT_EQ(TextOf(found), L"80");
    EXPECT_EQ(TextOf(FindTag(L"Body.InnerLength", all)), L"80");
}

TEST_F(FindTagInViewTest, GivesNothingForAnUnknownTag) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_FALSE(FindTag(zo::Find("Body"), L"Spillway", all));
    EXPECT_FALSE(FindTag(zo::Find("Body"), L"crest", all));
    EXPECT_FALSE(FindTag(zo::Find("Body"), L"", all));
    EXPECT_FALSE(FindTag(L"Spillway", all));
    EXPECT_FALSE(FindTag(L"Body.Spillway", all));
}

TEST_F(FindTagInViewTest, GivesNothingBelowAnEmptyHandle) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_FALSE(FindTag(H(), L"Body", all));
}

TEST_F(FindTagInViewTest, NeverGivesWhatTheTableHides) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Body.Crest", Hidden()).Entry(L"Drain", Hidden()))));
    EXPECT_FALSE(FindTag(zo::Find("Body"), L"Crest", all));
    EXPECT_FALSE(FindTag(L"Body.Crest", all));
    EXPECT_FALSE(FindTag(L"Drain", all));
}

TEST_F(FindTagInViewTest, GivesNothingBehindAHiddenNode) {
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Drain", Hidden()))));
    EXPECT_EQ(NameOf(FindTag(zo::Find("Drain"), L"Flow", all)), "Drain.Flow");
    EXPECT_FALSE(FindTag(L"Drain.Flow", all));
}

struct Spillway {
    double level = 0;
    double width = 0;
};

TEST(FindTagByRuleTest, NeverGivesWhatARuleHides) {
    Spillway spillway;
    bool shows = true;
    dam::ViewModel const dam([&](zo::kit::Kit& kit) {
        kit.Record<Spillway>("Spillway")
            .Field<&Spillway::level>("Level", L"Level", {.visible = [&shows](zo::IZO const&) { return shows; }})
            .Field<&Spillway::width>("Width", L"Width");
        kit.Branch<Spillway>("Spillway", L"Spillway", [&] { return &spillway; });
    });
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault())));
    EXPECT_EQ(NameOf(FindTag(L"Spillway.Level", all)), "Spillway.Level");
    shows = false;
    EXPECT_FALSE(FindTag(L"Spillway.Level", all));
    EXPECT_FALSE(FindTag(zo::Find("Spillway"), L"Level", all));
}

TEST_F(FindTagInViewTest, FollowsAPathWithIndices) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_EQ(NameOf(FindTag(L"Points[3].Name", all)), "Points[2].Name");
    EXPECT_EQ(NameOf(FindTag(L"Points[3]", all)), "Points[2]");
    EXPECT_EQ(NameOf(FindTag(L"Points", all)), "Points");
}

TEST_F(FindTagInViewTest, GivesNothingForAnEmptyComponent) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    for (wchar_t const* const tag : {L"", L".", L"[", L".Body", L"[1]", L"Body.", L"Body..Crest", L"Points.[1]",
                                     L"Points[1]..X", L"Points[", L"Points[[1]", L"Points[]"})
        EXPECT_FALSE(FindTag(tag, all)) << std::string(tag, tag + std::char_traits<wchar_t>::length(tag));
}

TEST_F(FindTagInViewTest, TakesHostileTexts) {
    ASSERT_TRUE(Succeeds(Compile(Reshaped())));
    EXPECT_FALSE(FindTag(std::wstring(1'000'000, L'.'), all));
    EXPECT_FALSE(FindTag(std::wstring(1'000'000, L'['), all));
    EXPECT_FALSE(FindTag(L"Body" + std::wstring(1'000'000, L'.'), all));
    EXPECT_FALSE(FindTag(std::wstring(1'000'000, L'x'), all));
    EXPECT_FALSE(FindTag(zo::Find("Body"), std::wstring(1'000'000, L'.'), all));
    std::wstring deep = L"Body";
    for (int i = 0; i < 500'000; ++i) deep += L".Body";
    EXPECT_FALSE(FindTag(deep, all));
}

TEST_F(FindTagInViewTest, FollowsPathsOfFourThousandComponentsAndNoLonger) {
    fixture::Item back = As(L"@Parent", L"Up");
    back.push_back({L"RemoveFromSource", L"0"});
    ASSERT_TRUE(Succeeds(Compile(TableText::WithDefault().Entry(L"Points.[]", {}, {back}))));
    // From the first element by way of the array to the first element.
    std::wstring path = L"Points";
    std::size_t components = 1;
    for (; components + 2 <= 4096; components += 2) path += L"[1].Up";
    path += L"[1]";
    ASSERT_EQ(++components, 4096u);
    EXPECT_TRUE(FindTag(path, all));
    EXPECT_FALSE(FindTag(path + L".X", all));
}

} // namespace
