// Structures made of aliases, and arrays whose elements have numbers.
#include "Common/redirect/ZOAliasSet.h"
#include "Common/registry/ZOTransaction.h"
#include "tests/registry/Rows.h"

namespace {

using embankment::Embankment;
using embankment::Succeeds;
using embankment::TextOf;
using rows::H;
using rows::IZO;
using rows::NameOf;
using zo::ZOAliasSet;
using zo::impl::NodeAccess;

constexpr std::size_t npos = IZO::npos;

using Pairs = ZOAliasSet::Pairs;

Pairs const overview{{"Title", "Project.Title"}, {"Core", "Soils[0]"}, {"Cohesion", "Soils[0].Cohesion"}};

std::vector<std::string> Walked(H const& node) {
    std::vector<std::string> names;
    for (zo::ZOFwrdIterator at = node->begin(); at.current; ++at) names.push_back(NameOf(at.current));
    return names;
}

class AliasSetTest : public embankment::EmbankmentTest {
protected:
    zo::ZORegistry& registry = *embankment.registry;
};

TEST_F(AliasSetTest, FieldsReadAndWriteTheirSources) {
    H const set = registry.AssociateAlias("Overview", overview);
    ASSERT_TRUE(set);
    EXPECT_EQ(NameOf(set), "Overview");
    EXPECT_EQ(TextOf(zo::Find("Overview.Title")), L"Tailings dam");
    EXPECT_EQ(NameOf(zo::Find("Overview.Title")), "Overview.Title");
    ASSERT_TRUE(Succeeds(zo::Find("Overview.Cohesion")->Set(26.0)));
    EXPECT_EQ(embankment.model.soils[0].cohesion, 26.0);
    EXPECT_EQ(NameOf(zo::Find("Overview.Core.Name")), "Soils[0].Name");
    EXPECT_FALSE(zo::Find("Overview.Nothing"));
    EXPECT_FALSE(zo::Find(set, ""));
}

TEST_F(AliasSetTest, IsAStructureWithTheNameAsItsTag) {
    H const set = registry.AssociateAlias("Overview", overview);
    EXPECT_NE(set->GetDataTraits().AsStructure(), nullptr);
    EXPECT_EQ(set->GetPersistTraits().Type, meta::MetaPersistTraits::No);
    EXPECT_EQ(set->Tag(), L"Overview");
    EXPECT_EQ(set->RegID(), npos);
    EXPECT_EQ(set->Length(), 1u);
    EXPECT_FALSE(set->IsUndefined());
}

TEST_F(AliasSetTest, AWalkVisitsTheFieldsInTheGivenOrder) {
    H const set = registry.AssociateAlias("Overview", overview);
    EXPECT_EQ(Walked(set), (std::vector<std::string>{"Overview.Title", "Overview.Core", "Overview.Cohesion"}));
    zo::ZOFwrdIterator const first = set->begin();
    EXPECT_EQ(first.parent, set);
    EXPECT_EQ(first.index, 0u);
    EXPECT_EQ(first.subID, npos);
}

TEST_F(AliasSetTest, AnIteratorPastTheEndIsEmpty) {
    H const set = registry.AssociateAlias("Short", Pairs{{"Title", "Project.Title"}});
    zo::ZOFwrdIterator position = set->begin();
    ++position;
    EXPECT_FALSE(position.current);
    EXPECT_FALSE(position.parent);
    ++position;
    EXPECT_FALSE(position.current);
}

TEST_F(AliasSetTest, OfARepeatedFieldTheFirstSourceCountsAndAWalkVisitsItTwice) {
    H const set = registry.AssociateAlias("Twice", Pairs{{"Value", "Soils[0].Cohesion"}, {"Value", "Project.Title"}});
    std::vector<std::wstring> texts;
    for (zo::ZOFwrdIterator at = set->begin(); at.current; ++at) texts.push_back(TextOf(at.current));
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"25", L"25"}));
}

TEST_F(AliasSetTest, AFieldWhoseSourceIsGoneIsNotThereAndEndsTheWalk) {
    H const set = registry.AssociateAlias(
        "Mixed", Pairs{{"Title", "Project.Title"}, {"Radius", "Results.Slips[0].Radius"}, {"Core", "Soils[0]"}});
    EXPECT_EQ(TextOf(zo::Find("Mixed.Radius")), L"30");
    EXPECT_EQ(Walked(set).size(), 3u);
    embankment.ShowResults(false);
    EXPECT_FALSE(zo::Find("Mixed.Radius"));
    EXPECT_EQ(Walked(set), std::vector<std::string>{"Mixed.Title"});
    EXPECT_TRUE(zo::Find("Mixed.Core"));
}

TEST_F(AliasSetTest, WithoutFieldsThereIsNothingToWalk) {
    H const set = registry.AssociateAlias("Empty", Pairs());
    ASSERT_TRUE(set);
    EXPECT_FALSE(set->begin().current);
    EXPECT_FALSE(set->begin().parent);
}

TEST_F(AliasSetTest, WithoutAnOwnerTheSourcesAreThoseOfTheCurrentRegistry) {
    H const set(new ZOAliasSet(L"Overview", overview, npos, nullptr));
    std::vector<std::wstring> texts;
    for (zo::ZOFwrdIterator at = set->begin(); at.current; ++at) texts.push_back(at.current->Tag());
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"Title", L"Soil", L"Cohesion"}));
    EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*set, "Title")), L"Tailings dam");
}

TEST_F(AliasSetTest, ACloneHasTheSameTagAndFields) {
    H const set = registry.AssociateAlias("Overview", overview);
    H const clone(set->Clone());
    EXPECT_EQ(clone->Tag(), L"Overview");
    EXPECT_EQ(clone->Owner(), set->Owner());
    EXPECT_EQ(clone->OwnerID(), npos);
    std::vector<std::wstring> texts;
    for (zo::ZOFwrdIterator at = clone->begin(); at.current; ++at) texts.push_back(at.current->Tag());
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"Title", L"Soil", L"Cohesion"}));
}

TEST_F(AliasSetTest, AFieldThatLeadsBackToItselfIsNotThere) {
    H const set = registry.AssociateAlias("Loop", Pairs{{"Self", "Loop"}, {"Again", "Loop.Again"}});
    ASSERT_TRUE(set);
    EXPECT_FALSE(zo::Find("Loop.Again"));
    EXPECT_EQ(NameOf(zo::Find("Loop.Self.Self")), "Loop.Self");
}

TEST_F(AliasSetTest, ARegisteredSetIsFoundByName) {
    rows::OwnRegistry own;
    double level = 3.5;
    auto const& traits = meta::AtomicTraits<double>();
    own.Add("Level", embankment::ValuePrototype<double>(traits), L"Level", traits, &level);
    own.Add("Water", H(new ZOAliasSet(L"Water", {{"Height", "Level"}}, npos, nullptr)), L"Water",
            rows::StructureTraits());
    own->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("Water.Height")), L"3.5");
    EXPECT_EQ(Walked(zo::Find("Water")), std::vector<std::string>{"Water.Height"});
}

TEST_F(AliasSetTest, OutlivesItsSet) {
    H set, field;
    {
        auto const transaction = registry.CreateTransaction();
        set = transaction->AssociateAlias("Overview", overview);
        field = transaction->Find("Overview.Cohesion");
        EXPECT_EQ(TextOf(field), L"25");
    }
    EXPECT_EQ(set->Owner(), nullptr);
    EXPECT_EQ(TextOf(set->begin().current), L"Tailings dam");
    EXPECT_EQ(TextOf(field), L"25");
}

// ---- Associating

TEST_F(AliasSetTest, AnAliasIsEnteredUnderItsName) {
    H const alias = registry.AssociateAlias("Short", "Soils[0].Cohesion");
    ASSERT_TRUE(alias);
    EXPECT_EQ(zo::Find("Short"), alias);
    EXPECT_EQ(alias->RegID(), npos);
    EXPECT_EQ(alias->Owner(), &registry);
    EXPECT_EQ(TextOf(alias), L"25");
}

TEST_F(AliasSetTest, AnAliasToNothingIsNotEntered) {
    EXPECT_FALSE(registry.AssociateAlias("Short", "Soils[3].Cohesion"));
    EXPECT_FALSE(registry.AssociateAlias("Short", ""));
    EXPECT_FALSE(zo::Find("Short"));
    EXPECT_TRUE(registry.AssociateAlias("Short", "Soils[2].Cohesion")) << "the name is still free";
}

TEST_F(AliasSetTest, ATakenNameGivesNothing) {
    ASSERT_TRUE(registry.AssociateAlias("Short", "Soils[0].Cohesion"));
    EXPECT_FALSE(registry.AssociateAlias("Short", "Soils[2].Cohesion"));
    EXPECT_FALSE(registry.AssociateAlias("Short", overview));
    EXPECT_EQ(TextOf(zo::Find("Short")), L"25");
}

TEST_F(AliasSetTest, TheSourcesOfASetNeedNotBeThereYet) {
    H const set = registry.AssociateAlias("Later", Pairs{{"Level", "Noted"}});
    ASSERT_TRUE(set);
    EXPECT_FALSE(zo::Find("Later.Level"));
    ASSERT_TRUE(registry.AssociateAlias("Noted", "Soils[0].Cohesion"));
    EXPECT_EQ(TextOf(zo::Find("Later.Level")), L"25");
}

TEST_F(AliasSetTest, InATransactionAliasesLeadToStagedNodes) {
    auto const transaction = registry.CreateTransaction();
    ASSERT_TRUE(transaction->AssociateAlias("Overview", overview));
    H const field = transaction->Find("Overview.Cohesion");
    ASSERT_TRUE(Succeeds(field->Set(30.0)));
    EXPECT_EQ(TextOf(transaction->Find("Soils[0].Cohesion")), L"30");
    EXPECT_EQ(embankment.model.soils[0].cohesion, 25.0);
    EXPECT_EQ(transaction->Find("Overview.Cohesion"), field);
}

TEST_F(AliasSetTest, InATransactionEveryTakenNameIsRefused) {
    auto const transaction = registry.CreateTransaction();
    ASSERT_TRUE(transaction->AssociateAlias("Soils[7]", "Soils[0]"));
    EXPECT_FALSE(transaction->AssociateAlias("Soils[7]", "Soils[1]"));
}

// ---- Elements with numbers

/// The soils, by the numbers 10, 20 and 30. The number 40 is one that the array has no element for.
class SoilsByNumber : public zo::ZOAssocByIDAlias {
public:
    explicit SoilsByNumber(std::string const& source, std::size_t regID = npos, zo::ZOSet* owner = nullptr)
        : ZOAssocByIDAlias(source, regID, owner) {}
    std::uint32_t IndexOfKey(std::uint32_t key) const override {
        return key % 10 == 0 && key >= 10 && key <= 40 ? key / 10 - 1 : 0xFFFFFFFFu;
    }
    IZO* Clone() override { return new SoilsByNumber(*this); }
};

class AssocByIDAliasTest : public AliasSetTest {
protected:
    AssocByIDAliasTest() { EXPECT_TRUE(Succeeds(registry.Insert("Numbered", H(new SoilsByNumber("Soils"))))); }
};

TEST_F(AssocByIDAliasTest, ANumberGivesItsElement) {
    EXPECT_EQ(NameOf(zo::Find("Numbered.At(20)")), "Soils[1]");
    EXPECT_EQ(NameOf(zo::Find("Numbered.At( 30 )")), "Soils[2]");
    EXPECT_EQ(NameOf(zo::Find("Numbered.At(10).Name")), "Soils[0].Name");
}

TEST_F(AssocByIDAliasTest, AnIndexStaysAnIndex) {
    EXPECT_EQ(NameOf(zo::Find("Numbered[1]")), "Soils[1]");
    EXPECT_FALSE(zo::Find("Numbered[20]"));
    EXPECT_EQ(TextOf(zo::Find("Numbered.Len")), L"3");
}

TEST_F(AssocByIDAliasTest, AKeyWithoutAnElementGivesNothing) {
    for (char const* const key : {"15", "0", "40", "4294967295", "4294967296", "4294967316", "sand", "\"20\"", ""})
        EXPECT_FALSE(zo::Find("Numbered.At(" + std::string(key) + ")")) << key;
    EXPECT_FALSE(zo::Find("Numbered.At(20"));
}

TEST_F(AssocByIDAliasTest, WithoutASourceThereIsNoElement) {
    H const alias(new SoilsByNumber("Nothing"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*alias, "At(20)"));
    EXPECT_FALSE(NodeAccess::GetSubZO(*alias, "1"));
}

TEST_F(AssocByIDAliasTest, NumbersAreUnderstoodThroughAnotherAlias) {
    ASSERT_TRUE(registry.AssociateAlias("Again", "Numbered"));
    EXPECT_EQ(NameOf(zo::Find("Again.At(20)")), "Soils[1]");
    EXPECT_EQ(zo::Find("Again")->Length(), 3u);
}

} // namespace
