// Very many objects: chains and circles of links, and names that are all the same.
#include "tests/clip/Valley.h"

#include <algorithm>
#include <string>

namespace valley {
namespace {

constexpr int many = 10000;

class LargeTest : public ClipTest {
protected:
    LargeTest() { *project = {}; }

    /// Regions of which each leads to the next one, and the last one to `last`.
    void MakeChain(int last) {
        for (int i = 1; i <= many; ++i)
            project->regions.push_back({i, L"R" + std::to_wstring(i), 1, 0, i < many ? i + 1 : last});
    }
    void MakeMaterials() {
        for (int i = 1; i <= many; ++i) project->materials.push_back({i, L"M" + std::to_wstring(i), 1, i % many + 1});
    }
};

TEST_F(LargeTest, AChainOfLinksIsCopiedAndPasted) {
    MakeChain(0);
    auto const contents = Copy({"Regions[0]"});
    other.Use();
    Paste(regionGroup, contents);
    ASSERT_EQ(other->regions.size(), project->regions.size());
    // The end of the chain is merged first.
    for (int i = 0; i < many; ++i) {
        Region const expected{i + 1, L"R" + std::to_wstring(many - i), 1, 0, i};
        ASSERT_EQ(other->regions[static_cast<std::size_t>(i)], expected);
    }
}

TEST_F(LargeTest, ACircleOfLinksIsCopiedAndPasted) {
    MakeChain(1);
    auto const contents = Copy({"Regions[5000]"});
    other.Use();
    Paste(regionGroup, contents);
    ASSERT_EQ(other->regions.size(), project->regions.size());
    // All the way round from one region to itself.
    int number = 1;
    for (int i = 0; i < many; ++i) {
        Region const& region = other->regions.at(static_cast<std::size_t>(number) - 1);
        ASSERT_EQ(region.id, number);
        Region const& next = other->regions.at(static_cast<std::size_t>(region.next) - 1);
        int const own = std::stoi(region.name.substr(1)), following = std::stoi(next.name.substr(1));
        ASSERT_EQ(following, own % many + 1);
        number = region.next;
    }
    EXPECT_EQ(number, 1);
}

TEST_F(LargeTest, ACircleBehindALinkIsReusedWhenItIsThere) {
    MakeMaterials();
    project->regions = {{1, L"Slope", 60, 7, 0}};
    auto const contents = Copy({"Regions[0]"});
    auto const materials = project->materials;
    Paste(regionGroup, contents);
    EXPECT_TRUE(project->materials == materials);
    EXPECT_EQ(project->regions.at(1).material, 7);
    EXPECT_EQ(names, std::vector<std::wstring>());
}

TEST_F(LargeTest, ObjectsOfOneNameAllGetNamesOfTheirOwn) {
    for (int i = 1; i <= many; ++i) project->materials.push_back({i, L"Clay", 1, 0});
    auto const contents = Copy({"Materials"});
    Paste(materialGroup, contents);
    ASSERT_EQ(project->materials.size(), 2 * static_cast<std::size_t>(many));
    // "Clay" is taken, so the first copy is the second of its name.
    for (std::size_t i = 0; i < many; ++i)
        ASSERT_EQ(project->materials[many + i].name, L"Clay (" + std::to_wstring(i + 2) + L")");
}

TEST_F(LargeTest, OneOfManyIsPastedAlone) {
    MakeMaterials();
    for (Material& material : project->materials) material.substitute = 0;
    auto const contents = Copy({"Materials[9999]"});
    other.Use();
    Paste(materialGroup, contents);
    std::vector<Material> const expected{{1, L"M10000", 1, 0}};
    EXPECT_EQ(other->materials, expected);
}

} // namespace
} // namespace valley
