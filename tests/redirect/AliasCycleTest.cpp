// Aliases that lead to aliases: long chains, circles, and what they hold alive.
#include "Common/redirect/ZOAlias.h"
#include "tests/registry/Rows.h"

#include <functional>

namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using rows::H;
using rows::IZO;
using rows::NameOf;
using zo::ZOAlias;
using zo::ZOAliasAbsolute;
using zo::ZOAliasBase;
using zo::ZOAliasRelative;
using zo::impl::NodeAccess;

constexpr std::size_t npos = IZO::npos;

std::string Step(std::size_t number) { return "Step" + std::to_string(number); }

/// Aliases Step0, Step1 and so on in the current registry, each to the next one and the last one to `last`.
std::vector<H> Chain(std::size_t length, std::string const& last) {
    std::vector<H> aliases;
    for (std::size_t i = 0; i < length; ++i) {
        aliases.emplace_back(new ZOAlias(i + 1 < length ? Step(i + 1) : last, npos, nullptr));
        EXPECT_TRUE(Succeeds(zo::ZORegistry::Instance()->Insert(Step(i), aliases.back())));
    }
    return aliases;
}

/// Each operation once.
void UseAll(IZO& alias) {
    std::wstring text;
    (void)alias.Get(text);
    (void)alias.Set(L"1");
    (void)alias.Assign(H());
    (void)alias.GetDataTraits();
    (void)alias.GetPersistTraits();
    (void)alias.Length();
    (void)alias.SetLength(3);
    (void)alias.Verify();
    (void)alias.IsDefault();
    (void)alias.begin();
    (void)alias.TagName(zo::FullTagType);
    (void)NodeAccess::GetSubZO(alias, "Name");
    alias.Clear();
}

class AliasChainTest : public embankment::EmbankmentTest {};

TEST_F(AliasChainTest, AThousandAliasesLeadToTheirSource) {
    std::vector<H> const aliases = Chain(1000, "Soils[0].Cohesion");
    EXPECT_EQ(TextOf(aliases[0]), L"25");
    ASSERT_TRUE(Succeeds(aliases[0]->Set(26.0)));
    EXPECT_EQ(embankment.model.soils[0].cohesion, 26.0);
    EXPECT_TRUE(aliases[0]->IsValueType());
    EXPECT_EQ(aliases[0]->GetPersistTraits().TagName, L"Soils[1].Cohesion");
}

TEST_F(AliasChainTest, MoreThanAThousandLeadNowhere) {
    std::vector<H> const aliases = Chain(1001, "Soils[0].Cohesion");
    std::wstring text;
    EXPECT_TRUE(FailsAs(aliases[0]->Get(text), zo::ZOError::not_found("Step1")));
    EXPECT_FALSE(aliases[0]->GetDataTraits());
    EXPECT_EQ(TextOf(aliases[1]), L"25");
}

TEST_F(AliasChainTest, ChildrenAreFoundThroughAThousandAliases) {
    std::vector<H> const aliases = Chain(1000, "Soils[1]");
    EXPECT_EQ(NameOf(zo::Find("Step0.Name")), "Soils[1].Name");
    EXPECT_EQ(NameOf((aliases[0]->begin()).parent), "Soils[1]");
}

TEST_F(AliasChainTest, AliasesThatKeepOneAnotherEndOneByOne) {
    std::vector<H> aliases = Chain(50000, "Soils[0].Cohesion");
    // Each keeps the next one before that keeps anything: the longest chain that can come about.
    for (H const& alias : aliases) (void)dynamic_cast<ZOAliasBase&>(*alias).WriteRedirect();
    EXPECT_EQ(aliases[49999]->RefCount(), 3) << "the registry's entry, the alias before, and the one here";
    embankment.registry->InvalidateMemory("Step25000");
    EXPECT_EQ(aliases[25001]->RefCount(), 2);
}

class AliasCircleTest : public rows::RegistryTest {};

TEST_F(AliasCircleTest, AnAliasToItselfLeadsNowhere) {
    H const alias(new ZOAlias("Ring", npos, nullptr));
    ASSERT_TRUE(Succeeds(registry->Insert("Ring", alias)));
    std::wstring text;
    EXPECT_TRUE(FailsAs(alias->Get(text), zo::ZOError::not_found("Ring")));
    UseAll(*alias);
    EXPECT_TRUE(alias->IsUndefined());
    EXPECT_FALSE(zo::Find("Ring.Name"));
    EXPECT_EQ(alias->RefCount(), 2) << "the registry's entry and the handle here";
}

TEST_F(AliasCircleTest, RegisteredAliasesInACircleLeadNowhere) {
    registry.Add("One", H(new ZOAlias("Two", npos, nullptr)), L"One", rows::StructureTraits());
    registry.Add("Two", H(new ZOAliasAbsolute("Three", npos, nullptr)), L"", rows::StructureTraits());
    registry.Add("Three", H(new ZOAliasRelative(L"@Parent.One", npos, nullptr)), L"", rows::StructureTraits());
    registry->OnPostRegistration();
    for (char const* const name : {"One", "Two", "Three"}) {
        H const alias = zo::Find(name);
        ASSERT_TRUE(alias) << name;
        UseAll(*alias);
        EXPECT_TRUE(alias->IsUndefined()) << name;
        EXPECT_FALSE(zo::Find(std::string(name) + ".Name")) << name;
        EXPECT_EQ(zo::GetTemplate(std::string(name) + ".Name"), nullptr) << name;
        EXPECT_FALSE(zo::FindTag(alias, L"Name")) << name;
    }
}

TEST_F(AliasCircleTest, TheTagsOfACircleAreThoseOfTheNextRowWithOne) {
    registry.Add("One", H(new ZOAlias("Two", npos, nullptr)), L"One", rows::StructureTraits());
    registry.Add("Two", H(new ZOAlias("One", npos, nullptr)), L"", rows::StructureTraits());
    EXPECT_EQ(zo::FullTag(zo::Find("Two")), L"One");
}

TEST_F(AliasCircleTest, TwoThatLeadToEachOtherAreFreed) {
    H const one(new ZOAlias("Two", npos, nullptr)), two(new ZOAlias("One", npos, nullptr));
    ASSERT_TRUE(Succeeds(registry->Insert("One", one)));
    ASSERT_TRUE(Succeeds(registry->Insert("Two", two)));
    UseAll(*one);
    UseAll(*two);
    EXPECT_EQ(one->RefCount(), 2) << "the registry's entry and the handle here: the second one doesn't keep it";
    EXPECT_EQ(two->RefCount(), 3) << "the first one keeps it";
}

TEST_F(AliasCircleTest, ACircleOfAThousandIsFreed) {
    std::vector<H> const aliases = Chain(1000, Step(0));
    UseAll(*aliases[0]);
    UseAll(*aliases[500]);
    EXPECT_TRUE(aliases[0]->IsUndefined());
    EXPECT_EQ(aliases[0]->RefCount(), 2) << "the last one doesn't keep the first";
    EXPECT_EQ(aliases[999]->RefCount(), 3);
}

TEST_F(AliasCircleTest, AnAliasBelowItselfLeadsNowhere) {
    registry.Add("Nest", H(new ZOAlias("Nest.Inner", npos, nullptr)), L"Nest", rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_FALSE(zo::Find("Nest.Inner"));
    EXPECT_TRUE(zo::Find("Nest")->IsUndefined());
    UseAll(*zo::Find("Nest"));
}

/// An alias of a client, which passes on what it is asked as the base does.
class ClientAlias : public ZOAlias {
public:
    using ZOAlias::ZOAlias;
};

TEST_F(AliasCircleTest, AliasesOfClientsInACircleLeadNowhere) {
    H const one(new ClientAlias("Two", npos, nullptr)), two(new ClientAlias("One", npos, nullptr));
    ASSERT_TRUE(Succeeds(registry->Insert("One", one)));
    ASSERT_TRUE(Succeeds(registry->Insert("Two", two)));
    std::wstring text;
    EXPECT_TRUE(one->Get(text).IsError());
    UseAll(*one);
    UseAll(*two);
    EXPECT_TRUE(one->IsUndefined());
    EXPECT_EQ(one->RefCount(), 2);
}

TEST_F(AliasCircleTest, ARowsWalkOverACircleEnds) {
    registry.AddPlain("Site", L"Site");
    registry.Add("Site.Back", H(new ZOAlias("Site", npos, nullptr)), L"Back", rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(NameOf(zo::Find("Site.Back.Back.Back")), "Site.Back");
    EXPECT_EQ(NameOf(zo::FindTag(L"Site.Back")), "Site.Back");
    std::size_t count = 0;
    for (auto at = registry->begin(); !(at == registry->end()); ++at) ++count;
    EXPECT_EQ(count, 1u) << "aliases stand in no walk";
}

} // namespace
