// Adding rows: parents, missing parents, names and tags that are taken, and rows that come late.
#include "tests/registry/Rows.h"

#include <algorithm>
#include <random>

namespace {

using rows::H;
using rows::IZO;
using rows::MetaPersistTraits;
using rows::RowOf;

bool IsMadeParent(std::string const& name) {
    return dynamic_cast<zo::ZOParentPlaceholder*>(zo::GetTemplate(name)) != nullptr;
}
std::wstring TagPath(std::string const& name) { return zo::GetTemplate(name)->GetPersistTraits().TagName; }

class RegistrationTest : public rows::RegistryTest {};

TEST_F(RegistrationTest, ATopLevelNodeIsAChildOfTheRoot) {
    registry.AddPlain("a", L"A");
    registry->OnPostRegistration();
    EXPECT_EQ(zo::SubRegID(0, "a"), 1u);
    EXPECT_EQ(zo::SubRegIDByTag(0, L"A"), 1u);
}

TEST_F(RegistrationTest, ChildrenAreFoundBeforeRegistrationEnds) {
    registry.AddPlain("b", L"B");
    registry.AddPlain("b.z", L"Z");
    registry.AddPlain("b.a", L"A");
    EXPECT_FALSE(registry->InitializationComplete());
    EXPECT_EQ(zo::SubRegID(1, "z"), 2u);
    EXPECT_EQ(zo::SubRegID(1, "a"), 3u);
    EXPECT_EQ(zo::SubRegID(1, "m"), IZO::npos);
    EXPECT_EQ(zo::SubRegIDByTag(1, L"A"), 3u);
    registry->OnPostRegistration();
    EXPECT_TRUE(registry->InitializationComplete());
    EXPECT_EQ(zo::SubRegID(1, "z"), 2u);
    EXPECT_EQ(zo::SubRegID(1, "a"), 3u);
    EXPECT_EQ(zo::SubRegID(1, "m"), IZO::npos);
}

TEST_F(RegistrationTest, AMissingParentIsMadeFirst) {
    H const node = registry.AddPlain("a.b", L"A.B");
    EXPECT_TRUE(IsMadeParent("a"));
    EXPECT_EQ(RowOf("a"), 1u);
    EXPECT_EQ(node->RegID(), 2u);
    EXPECT_EQ(TagPath("a"), L"A");
    EXPECT_EQ(TagPath("a.b"), L"A.B");
    EXPECT_EQ(zo::SubRegID(1, "b"), 2u);
}

TEST_F(RegistrationTest, AWholeChainOfParentsIsMade) {
    H const node = registry.AddPlain("a.b.c", L"A.B.C");
    EXPECT_TRUE(IsMadeParent("a"));
    EXPECT_TRUE(IsMadeParent("a.b"));
    EXPECT_EQ(RowOf("a"), 1u);
    EXPECT_EQ(RowOf("a.b"), 2u);
    EXPECT_EQ(node->RegID(), 3u);
    EXPECT_EQ(TagPath("a.b"), L"A.B");
    EXPECT_EQ(zo::GetTemplate("a")->GetPersistTraits().Type, MetaPersistTraits::IfNotDefined);
    EXPECT_EQ(zo::SubRegID(2, "c"), 3u);
}

TEST_F(RegistrationTest, OnlyWhatIsMissingIsMade) {
    registry.AddPlain("a", L"A");
    H const node = registry.AddPlain("a.b.c", L"A.B.C");
    EXPECT_FALSE(IsMadeParent("a"));
    EXPECT_TRUE(IsMadeParent("a.b"));
    EXPECT_EQ(node->RegID(), 3u);
}

TEST_F(RegistrationTest, ATagDeeperThanItsNameMakesNames) {
    H const node = registry.AddPlain("foo", L"Site.North.Foo");
    EXPECT_TRUE(IsMadeParent("placeholder_Site"));
    EXPECT_TRUE(IsMadeParent("placeholder_Site.placeholder_North"));
    EXPECT_EQ(TagPath("placeholder_Site.placeholder_North"), L"Site.North");
    EXPECT_EQ(node->RegID(), 3u);
    EXPECT_EQ(TagPath("foo"), L"Site.North.Foo");
    EXPECT_EQ(zo::SubRegID(RowOf("placeholder_Site.placeholder_North"), "foo"), 3u);
    EXPECT_EQ(rows::NameOf(zo::Find("foo")), "foo") << "it stays a top-level name";
}

TEST_F(RegistrationTest, ANameDeeperThanItsTagMakesParentsWithoutTags) {
    registry.AddPlain("a.b.c", L"C");
    EXPECT_TRUE(IsMadeParent("a"));
    EXPECT_TRUE(IsMadeParent("a.b"));
    EXPECT_EQ(TagPath("a"), L"");
    EXPECT_EQ(TagPath("a.b"), L"");
    EXPECT_EQ(TagPath("a.b.c"), L"C") << "settled before its parents were made";
}

TEST_F(RegistrationTest, TheLevelsOfATagGoToTheFirstLevelsOfTheName) {
    registry.AddPlain("a.b.c", L"A.C");
    EXPECT_EQ(TagPath("a"), L"A");
    EXPECT_TRUE(IsMadeParent("a.b"));
    EXPECT_EQ(TagPath("a.b"), L"");
    EXPECT_EQ(TagPath("a.b.c"), L"A.C");
}

TEST_F(RegistrationTest, ATagThatAnotherNameOwnsIsNotMadeAgain) {
    registry.AddPlain("geo", L"Geometry");
    H const node = registry.AddPlain("foo", L"Geometry.Foo");
    EXPECT_EQ(node->RegID(), 2u);
    EXPECT_EQ(zo::SubRegID(1, "foo"), 2u);
    H const deeper = registry.AddPlain("bar", L"Geometry.Shapes.Bar");
    EXPECT_EQ(deeper->RegID(), 4u) << "one parent is made for Geometry.Shapes";
}

TEST_F(RegistrationTest, APartOfATagThatIsNotAsciiIsNarrowedIntoTheMadeName) {
    registry.AddPlain("foo", L"B\u00f6den.Foo");
    EXPECT_TRUE(IsMadeParent("placeholder_B\xc3\xb6"
                             "den"));
}

TEST_F(RegistrationTest, AnAliasMakesParentsForItsNameOnly) {
    registry.Add("x", H(new rows::OtherName("nobody", true)), L"y.z", rows::StructureTraits());
    EXPECT_EQ(RowOf("x"), 1u);
    EXPECT_EQ(zo::SubRegID(0, "x"), 1u);
    registry.Add("p.q", H(new rows::OtherName("nobody", true)), L"s.t", rows::StructureTraits());
    EXPECT_TRUE(IsMadeParent("p"));
    EXPECT_EQ(TagPath("p"), L"");
    EXPECT_EQ(RowOf("p.q"), 3u);
    EXPECT_EQ(zo::GetTemplate("p")->GetPersistTraits().Type, MetaPersistTraits::No) << "the alias's type";
}

TEST_F(RegistrationTest, ANodeWithADottedTagMakesParentsWhereAnAliasDoesNot) {
    H const node = registry.AddPlain("x", L"y.z");
    EXPECT_EQ(node->RegID(), 2u);
    EXPECT_TRUE(IsMadeParent("placeholder_y"));
}

TEST_F(RegistrationTest, ANameThatIsTakenRaises) {
    registry.AddPlain("Soils", L"Soils");
    try {
        registry.AddPlain("Soils", L"Others");
        FAIL() << "the name was taken twice";
    } catch (htl::status_exception const& taken) {
        EXPECT_TRUE(embankment::FailsAs(taken.Status(), zo::ZOError::duplicate_name()));
        ASSERT_NE(taken.Status().Detail(), nullptr);
        EXPECT_EQ(taken.Status().Detail()->source, "ZOImpl");
        EXPECT_EQ(taken.Status().Detail()->position, 1234);
        EXPECT_TRUE(taken.Status().Is(21655));
    }
}

TEST_F(RegistrationTest, ATagThatIsTakenRaises) {
    registry.AddPlain("Soils", L"Soils");
    try {
        registry.AddPlain("Others", L"Soils");
        FAIL() << "the tag was taken twice";
    } catch (htl::status_exception const& taken) {
        EXPECT_TRUE(embankment::FailsAs(taken.Status(), zo::ZOError::duplicate_name()));
        ASSERT_NE(taken.Status().Detail(), nullptr);
        EXPECT_EQ(taken.Status().Detail()->source, "ZOImpl");
        EXPECT_EQ(taken.Status().Detail()->position, 1248);
    }
}

TEST_F(RegistrationTest, ANameWhoseTagWasTakenCanBeAskedFor) {
    registry.AddPlain("Soils", L"Soils");
    // Its row stays, but its node never learns it.
    htl::handle<zo::IODS> const away(new zo::ODSName("Others", false));
    EXPECT_THROW(registry->RegisterZO(away, H(new rows::Plain), MetaPersistTraits(MetaPersistTraits::No, L"Soils"),
                                      rows::StructureTraits()),
                 htl::status_exception);
    std::string name = "Others";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(name));
    EXPECT_EQ(name, "Others");
    EXPECT_EQ(zo::TagFromName("Others"), L"");
    EXPECT_TRUE(zo::IsMatching("Others", "Others"));
}

TEST_F(RegistrationTest, RegistrationGoesOnBelowARowWhoseTagWasTaken) {
    registry.AddPlain("Soils", L"Soils");
    EXPECT_THROW(registry.AddPlain("Others", L"Soils"), htl::status_exception);
    H const child = registry.AddPlain("Others.Name", L"Name");
    EXPECT_EQ(child->RegID(), 3u);
    EXPECT_EQ(RowOf("Others.Name"), 3u);
}

TEST_F(RegistrationTest, EmptyTagsNeverCollide) {
    registry.AddPlain("a", L"");
    registry.AddPlain("b", L"");
    EXPECT_EQ(RowOf("b"), 2u);
}

TEST_F(RegistrationTest, LookupsGoOnAfterADuplicate) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.b", L"B");
    EXPECT_THROW(registry.AddPlain("a.b", L"C"), htl::status_exception);
    registry.AddPlain("a.d", L"D");
    registry->OnPostRegistration();
    EXPECT_TRUE(zo::Find("a.b"));
    EXPECT_TRUE(zo::Find("a.d"));
    EXPECT_TRUE(zo::FindTag(L"A.D"));
}

TEST_F(RegistrationTest, RowsAddedAfterRegistrationAreFoundAtOnce) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.m", L"M");
    registry->OnPostRegistration();
    for (char const* const sub : {"z", "b", "n", "a"}) {
        std::wstring const tag(sub, sub + 1);
        H const node = registry.AddPlain(std::string("a.") + sub, tag);
        EXPECT_EQ(zo::SubRegID(1, sub), node->RegID()) << sub;
        EXPECT_EQ(zo::SubRegIDByTag(1, tag), node->RegID()) << sub;
        EXPECT_TRUE(zo::Find(std::string("a.") + sub));
        EXPECT_TRUE(zo::FindTag(L"A." + tag));
    }
    EXPECT_EQ(zo::SubRegID(1, "m"), 2u);
    EXPECT_EQ(zo::NextRegID(2), IZO::npos) << "the tree of tags doesn't hold them yet";
    registry->OnPostRegistration();
    EXPECT_EQ(zo::NextRegID(2), 3u);
}

TEST_F(RegistrationTest, ALateParentIsMadeToo) {
    registry->OnPostRegistration();
    registry.AddPlain("p.q", L"P.Q");
    EXPECT_TRUE(IsMadeParent("p"));
    EXPECT_TRUE(zo::Find("p.q"));
}

TEST_F(RegistrationTest, ChildrenByTagAreFoundInUtf16Order) {
    // U+1F30D is 0xD83C 0xDF0D in UTF-16, so it comes before U+FB01; as numbers they stand the other way round.
    registry.AddPlain("a", L"A");
    std::vector<std::wstring> const tags = {L"\uFB01", L"\U0001F30D", L"b", L"\uE000", L"\U00010000", L"B"};
    for (std::size_t i = 0; i < tags.size(); ++i) registry.AddPlain("a.c" + std::to_string(i), tags[i]);
    registry->OnPostRegistration();
    for (std::size_t i = 0; i < tags.size(); ++i) EXPECT_EQ(zo::SubRegIDByTag(1, tags[i]), i + 2);
    registry.AddPlain("a.late", L"\U0001F30E");
    for (std::size_t i = 0; i < tags.size(); ++i) EXPECT_EQ(zo::SubRegIDByTag(1, tags[i]), i + 2);
    EXPECT_EQ(zo::SubRegIDByTag(1, L"\U0001F30E"), 8u);
}

TEST_F(RegistrationTest, ManyRowsInRandomOrderAreAllFound) {
    std::vector<int> numbers(2000);
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<int>(i);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(7));
    registry.AddPlain("a", L"A");
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i == numbers.size() / 2) registry->OnPostRegistration();
        std::string const number = std::to_string(numbers[i]);
        registry.AddPlain("a.n" + number, L"T" + std::to_wstring(numbers[i]));
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ASSERT_EQ(zo::SubRegID(1, "n" + std::to_string(numbers[i])), i + 2);
        ASSERT_EQ(zo::SubRegIDByTag(1, L"T" + std::to_wstring(numbers[i])), i + 2);
    }
}

TEST_F(RegistrationTest, RegistersInTheCurrentRegistryWhicheverIsAsked) {
    htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
    other->RegisterZO(htl::handle<zo::IODS>(new zo::ODSName("a")), H(new rows::Plain),
                      MetaPersistTraits(MetaPersistTraits::No, L"A"), rows::StructureTraits());
    EXPECT_EQ(RowOf("a"), 1u);
    EXPECT_EQ(other->Root(), registry->Root());
    zo::ZORegistry::SetInstance(other.get());
    EXPECT_EQ(RowOf("a"), IZO::npos);
    EXPECT_NE(other->Root(), H());
    zo::ZORegistry::SetInstance(&*registry);
}

} // namespace
