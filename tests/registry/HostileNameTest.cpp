// Any text is a name or a tag that may be asked for: the answer is a node or none.
#include "tests/registry/Rows.h"

#include "support/text.h"

#include <random>

namespace {

using rows::H;
using rows::IZO;

/// Asks everything that takes a name.
void Ask(std::string const& name) {
    H const node = zo::Find(name);
    if (node) {
        // What was found has a name that leads to the same row again.
        H const again = zo::Find(node->Name());
        ASSERT_TRUE(again) << name;
        ASSERT_EQ(again->RegID(), node->RegID()) << name;
        ASSERT_EQ(again->Name(), node->Name()) << name;
        (void)node->TagName(zo::FullTagType);
        (void)node->SubName();
        (void)zo::GetParent(node, 1);
    }
    IZO* const known = zo::GetTemplate(name);
    std::string normal = name;
    bool const wellFormed = zo::ZORegistry::NormalizeName(normal);
    if (known) {
        ASSERT_TRUE(wellFormed) << name;
        ASSERT_EQ(zo::GetTemplate(normal), known) << name;
    }
    ASSERT_TRUE(zo::IsMatching(name, name));
    (void)zo::TagFromName(name);
    (void)zo::FullTag(name);
    (void)zo::SimpleTag(name);
    (void)zo::ZOSet::FormName(name, 1, -1, 3);
    (void)zo::Find(name, 1, 2, 0);
}

/// Asks everything that takes a tag.
void AskTag(std::wstring const& tag, H const& from) {
    if (H const node = zo::FindTag(tag)) {
        ASSERT_NE(node->Name(), "");
    }
    (void)zo::FindTag(from, tag);
    (void)zo::LookupRelative(from, tag);
    std::wstring normal = tag;
    if (zo::ZORegistry::NormalizeTag(normal)) {
        std::wstring again = normal;
        ASSERT_TRUE(zo::ZORegistry::NormalizeTag(again));
        ASSERT_EQ(again, normal);
    }
    (void)zo::SubTag(tag);
}

class HostileNameTest : public testing::Test {
protected:
    HostileNameTest()
        : embankment([](embankment::Embankment& more) {
              more.Row("Alias", H(new rows::OtherName("Soils[1]", true)), {meta::MetaPersistTraits::No, L"Alias"},
                       rows::StructureTraits());
              more.Row("Ring", H(new rows::OtherName("Ring", true)), {meta::MetaPersistTraits::No, L"Ring"},
                       rows::StructureTraits());
              more.Row("Site.North.Level", H(new rows::Plain), {meta::MetaPersistTraits::No, L"Site.North.Level"},
                       rows::StructureTraits());
          }) {}

    embankment::Embankment embankment;
};

TEST_F(HostileNameTest, RandomTextsOfTheGrammarGiveANodeOrNone) {
    std::vector<std::string> const pieces = {".",
                                             "[",
                                             "]",
                                             "[]",
                                             ".[]",
                                             "@",
                                             ":",
                                             "$",
                                             "(",
                                             ")",
                                             "At(",
                                             "0",
                                             "1",
                                             "2",
                                             "3",
                                             "-1",
                                             "99",
                                             "a",
                                             "At(1)",
                                             "At( 2 )",
                                             "Len",
                                             "Soils",
                                             "Name",
                                             "Points",
                                             "X",
                                             "Regions",
                                             "Soil",
                                             "Alias",
                                             "Site",
                                             "North",
                                             "Level",
                                             "HZNData",
                                             "Project",
                                             "Title",
                                             "Results",
                                             "Slips",
                                             "18446744073709551616",
                                             "\xff",
                                             std::string(1, '\0'),
                                             " ",
                                             "\t",
                                             "Anisotropy",
                                             "HZNData.",
                                             "Soils[1].",
                                             "Regions[0].Points"};
    std::mt19937 random(424242);
    H const soil = zo::Find("Soils[1]");
    for (int i = 0; i < 100'000; ++i) {
        std::string name;
        for (auto parts = random() % 9; parts > 0; --parts) name += pieces[random() % pieces.size()];
        ASSERT_NO_FATAL_FAILURE(Ask(name)) << i;
        ASSERT_NO_FATAL_FAILURE(AskTag(str::as_wstring(name), soil)) << i;
        // Also as one component below a node, which must not walk.
        (void)zo::Find(soil, name);
    }
}

TEST_F(HostileNameTest, NamesBelowARedirectToItselfLeadToNothing) {
    H const soil = zo::Find("Soils[1]");
    for (char const* const rest : {".a", "[1]", ".Ring", ".At(1)", ".Ring.Name", ".@", ".Len", ".", ".[].x"}) {
        std::string const name = std::string("Ring") + rest;
        ASSERT_NO_FATAL_FAILURE(Ask(name));
        ASSERT_NO_FATAL_FAILURE(AskTag(str::as_wstring(name), soil));
    }
    EXPECT_FALSE(zo::Find("Ring.Name"));
    EXPECT_FALSE(zo::FindTag(L"Ring.Name"));
}

TEST_F(HostileNameTest, RandomBytesGiveANodeOrNone) {
    std::mt19937 random(171717);
    H const soils = zo::Find("Soils");
    for (int i = 0; i < 20'000; ++i) {
        std::string name(random() % 12, ' ');
        std::wstring tag(random() % 12, L' ');
        for (char& c : name) c = static_cast<char>(random());
        for (wchar_t& c : tag) c = static_cast<wchar_t>(random());
        ASSERT_NO_FATAL_FAILURE(Ask(name));
        ASSERT_NO_FATAL_FAILURE(AskTag(tag, soils));
        (void)zo::Find(soils, name);
    }
}

class LongNameTest : public HostileNameTest, public testing::WithParamInterface<char const*> {};

TEST_P(LongNameTest, AMillionComponentsEndInTime) {
    std::string const piece = GetParam();
    std::string name = "Soils";
    for (int i = 0; i < 1'000'000; ++i) name += piece;
    (void)zo::Find(name);
    (void)zo::GetTemplate(name);
    (void)zo::Find(zo::Find("Soils[1]"), name);
    (void)zo::ZOSet::FormName(name, 1, 2, 3);
    std::wstring tag(name.begin(), name.end());
    (void)zo::FindTag(tag);
    (void)zo::ZORegistry::NormalizeTag(tag);
    (void)zo::SubTag(tag);
}

TEST_P(LongNameTest, EveryBeginningEndsInTime) {
    std::string const piece = GetParam();
    H const soil = zo::Find("Soils[1]");
    for (std::string name : std::vector<std::string>{"", "Soils", "HZNData", "Alias", "Site.North"}) {
        for (int i = 0; i < 20'000; ++i) name += piece;
        ASSERT_NO_FATAL_FAILURE(Ask(name));
        ASSERT_NO_FATAL_FAILURE(AskTag(std::wstring(name.begin(), name.end()), soil));
    }
}

INSTANTIATE_TEST_SUITE_P(Pieces, LongNameTest,
                         testing::Values(".a", "[1]", ".[]", "[", "]", ".", "a", ".At(1)", ".HZNData", "@Parent.", "(",
                                         "$1", ".Site.North", ".1", ".North", ".Alias", ".Ring"));

TEST_F(HostileNameTest, IndicesAtTheEdgesOfTheirRange) {
    for (std::string const index : {"-1", "3", "4294967295", "4294967296", "9223372036854775807", "9223372036854775808",
                                    "18446744073709551615", "18446744073709551616", "1e9", "0x1", " ", "x"}) {
        EXPECT_FALSE(zo::Find("Soils[" + index + "]")) << index;
        EXPECT_FALSE(zo::Find("Soils." + index)) << index;
        EXPECT_FALSE(zo::Find("Soils.At(" + std::string(index == "3" ? "4" : index) + ")")) << index;
    }
    EXPECT_TRUE(zo::Find("Soils[0]"));
    EXPECT_TRUE(zo::Find("Soils.At(1)"));
    EXPECT_FALSE(zo::Find("Soils.At(0)"));
    EXPECT_FALSE(zo::Find("Soils.At(1.5)"));
}

TEST_F(HostileNameTest, NamesThatLeadInACircleStayShort) {
    std::string name = "HZNData";
    for (int i = 0; i < 1000; ++i) name += ".HZNData";
    H const root = zo::Find(name);
    EXPECT_EQ(root, embankment.registry->Root());
    EXPECT_EQ(root->Name(), "HZNData");
    EXPECT_EQ(zo::Find(name + ".Soils[1].Name")->Name(), "Soils[1].Name");
}

TEST_F(HostileNameTest, ANullCharacterIsACharacter) {
    EXPECT_FALSE(zo::Find(std::string("Project\0", 8)));
    EXPECT_FALSE(zo::Find(std::string("Project\0.Title", 14)));
    H const node(new rows::Plain);
    (void)embankment.registry->Insert(std::string("x\0y", 3), node);
    EXPECT_EQ(zo::Find(std::string("x\0y", 3)), node);
    EXPECT_FALSE(zo::Find("x"));
}

} // namespace
