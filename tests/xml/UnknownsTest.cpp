// What becomes of names that lead nowhere.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"

#include <chrono>

namespace {

using namespace plan;
using zo::xml::Unknowns;

class UnknownsTest : public PlanTest {
protected:
    UnknownsTest() {
        AddProject(rows, project);
        rows.Finish();
    }
    static std::size_t Size(Unknowns const& items) {
        std::size_t size = 0;
        for (auto const& [name, value] : items) size += name.size() + value.size();
        return size;
    }
    static std::wstring Repeated(std::wstring const& text, std::size_t count) {
        std::wstring result;
        for (std::size_t i = 0; i < count; ++i) result += text;
        return result;
    }
};

TEST_F(UnknownsTest, ElementsAndAttributesAreKeptInTheOrderOfTheDocument) {
    Loaded const loaded = Load(L"<Odd a=\"1\" b=\"2\">text</Odd><Project><Points Len=\"2\"><Point/><Point Z=\"5\"/>"
                               L"</Points><Extra>&lt;</Extra></Project>");
    EXPECT_TRUE(loaded.errors.empty());
    EXPECT_EQ(loaded.unknown, (Unknowns{{L"HZNData.Odd", L"text"},
                                        {L"HZNData.Odd.a", L"1"},
                                        {L"HZNData.Odd.b", L"2"},
                                        {L"HZNData.Project.Points[2].Z", L"5"},
                                        {L"HZNData.Project.Extra", L"<"}}));
}

TEST_F(UnknownsTest, ChildrenOfAnUnknownElementAreKeptWithTheirFullNames) {
    EXPECT_EQ(Load(L"<Foo><Bar x=\"1\"><Baz>2</Baz></Bar></Foo>").unknown, (Unknowns{{L"HZNData.Foo", L""},
                                                                                     {L"HZNData.Foo.Bar", L""},
                                                                                     {L"HZNData.Foo.Bar.x", L"1"},
                                                                                     {L"HZNData.Foo.Bar.Baz", L"2"}}));
}

TEST_F(UnknownsTest, LengthOfAnUnknownElementCountsItsChildren) {
    EXPECT_EQ(Load(L"<Foo Len=\"2\"><a>1</a><b y=\"3\">2</b></Foo><Foo Len=\"abc\"><c/></Foo>").unknown,
              (Unknowns{{L"HZNData.Foo", L""},
                        {L"HZNData.Foo.Len", L"2"},
                        {L"HZNData.Foo[1]", L"1"},
                        {L"HZNData.Foo[2]", L"2"},
                        {L"HZNData.Foo[2].y", L"3"},
                        {L"HZNData.Foo", L""},
                        {L"HZNData.Foo.Len", L"abc"},
                        {L"HZNData.Foo[1]", L""}}));
}

TEST_F(UnknownsTest, NameOfTheNextElementIsFreshAfterAnUnknownOne) {
    EXPECT_EQ(
        Load(L"<Foo><Bar/></Foo><Project><Bar/></Project><Foo/>").unknown,
        (Unknowns{
            {L"HZNData.Foo", L""}, {L"HZNData.Foo.Bar", L""}, {L"HZNData.Project.Bar", L""}, {L"HZNData.Foo", L""}}));
}

TEST_F(UnknownsTest, MissingOnAnUnknownElementIsAnAttributeLikeOthers) {
    EXPECT_EQ(Load(L"<Foo Missing=\"true\"/>").unknown,
              (Unknowns{{L"HZNData.Foo", L""}, {L"HZNData.Foo.Missing", L"true"}}));
}

TEST_F(UnknownsTest, LongNameIsShortenedInTheMiddle) {
    // "HZNData." and 248 letters are 256 characters; one more is too long.
    std::wstring const whole(248, L'a');
    EXPECT_EQ(Load(L"<" + whole + L"/>").unknown, (Unknowns{{L"HZNData." + whole, L""}}));
    std::wstring const longer = std::wstring(120, L'a') + std::wstring(129, L'b');
    EXPECT_EQ(Load(L"<" + longer + L"/>").unknown,
              (Unknowns{{L"HZNData." + std::wstring(117, L'a') + L"..." + std::wstring(128, L'b'), L""}}));
    EXPECT_EQ(zo::xml::unknownNameLimit, 256u);
}

TEST_F(UnknownsTest, ShortenedNameEndsInItsLastSteps) {
    std::wstring const step(100, L'a');
    Unknowns const items = Load(L"<" + step + L"><" + step + L"><" + step + L"><Leaf z=\"1\"/></" + step + L"></" +
                                step + L"></" + step + L">")
                               .unknown;
    ASSERT_EQ(items.size(), 5u);
    // The first 125 characters and the last 128 of the whole path.
    std::wstring const front = L"HZNData." + step + L"." + std::wstring(16, L'a') + L"...";
    EXPECT_EQ(items[3].first, front + std::wstring(22, L'a') + L"." + step + L".Leaf");
    EXPECT_EQ(items[4].first, front + std::wstring(20, L'a') + L"." + step + L".Leaf.z");
}

TEST_F(UnknownsTest, ListOfDeeplyNestedElementsGrowsWithTheirNumber) {
    constexpr std::size_t depth = 4000;
    Loaded const loaded = Load(Repeated(L"<Foo>", depth) + Repeated(L"</Foo>", depth));
    ASSERT_TRUE(embankment::Succeeds(loaded.result));
    ASSERT_EQ(loaded.unknown.size(), depth);
    EXPECT_LE(Size(loaded.unknown), depth * zo::xml::unknownNameLimit);
    EXPECT_EQ(loaded.unknown.back().first.size(), zo::xml::unknownNameLimit);
}

TEST_F(UnknownsTest, ListOfManySiblingsGrowsWithTheirNumber) {
    constexpr std::size_t count = 100000;
    Loaded const loaded = Load(L"<Project>" + Repeated(L"<Foo/>", count) + L"</Project>");
    ASSERT_TRUE(embankment::Succeeds(loaded.result));
    ASSERT_EQ(loaded.unknown.size(), count);
    EXPECT_EQ(Size(loaded.unknown), count * 19); // HZNData.Project.Foo
}

TEST_F(UnknownsTest, TimeForNestedElementsGrowsWithTheirNumber) {
    auto const seconds = [](std::size_t depth, std::size_t times) {
        std::wstring const nest = Repeated(L"<Foo>", depth) + Repeated(L"</Foo>", depth);
        std::wstring const body = Repeated(nest, times);
        auto const start = std::chrono::steady_clock::now();
        Loaded const loaded = Load(body);
        EXPECT_EQ(loaded.unknown.size(), depth * times);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    // The same number of elements, four levels deep and four thousand.
    double const flat = seconds(4, 40000);
    double const deep = seconds(4000, 40);
    EXPECT_LT(deep, 20 * flat + 1);
}

} // namespace
