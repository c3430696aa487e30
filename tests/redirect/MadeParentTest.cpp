// Parents that nobody registered: what is found below them, and how they are cleared.
#include "tests/registry/Rows.h"

namespace {

using embankment::TextOf;
using embankment::ValuePrototype;
using rows::H;
using rows::IZO;
using rows::NameOf;

meta::MetaDataTraits const& DoubleTraits() { return meta::AtomicTraits<double>(); }

class MadeParentTest : public rows::RegistryTest {
protected:
    htl::handle<zo::ODS> AddValue(std::string const& name, std::wstring const& tag, double& value) {
        return registry.Add(name, ValuePrototype<double>(DoubleTraits()), tag, DoubleTraits(), &value);
    }
};

TEST_F(MadeParentTest, AValueBelowIsReadThroughItsOwnStore) {
    double level = 3.5;
    AddValue("Site.North.Level", L"Site.North.Level", level);
    registry->OnPostRegistration();
    H const node = zo::Find("Site.North.Level");
    EXPECT_EQ(TextOf(node), L"3.5");
    EXPECT_EQ(NameOf(node), "Site.North.Level");
    EXPECT_EQ(node->TagName(zo::FullTagType), L"Site.North.Level");
    ASSERT_TRUE(embankment::Succeeds(node->Set(4.25)));
    EXPECT_EQ(level, 4.25);
    EXPECT_EQ(NameOf(zo::FindTag(L"Site.North.Level")), "Site.North.Level");
    EXPECT_EQ(NameOf(zo::GetParent(node, 2)), "Site");
}

TEST_F(MadeParentTest, AMadeParentIsAStructureWithoutType) {
    double level = 0;
    AddValue("Site.Level", L"Site.Level", level);
    H const site = zo::Find("Site");
    ASSERT_TRUE(site);
    EXPECT_NE(site->GetDataTraits().AsStructure(), nullptr);
    EXPECT_EQ(site->GetDataTraits().TypeName(), "void");
    EXPECT_EQ(site->GetDataTraits().Descriptor()->byteSize, 0u);
    EXPECT_TRUE(site->GetDataTraits().Descriptor()->visible(nullptr));
    H const clone(site->Clone());
    EXPECT_NE(dynamic_cast<zo::ZOParentPlaceholder*>(clone.get()), nullptr);
    EXPECT_EQ(clone->RegID(), site->RegID());
    EXPECT_EQ(clone->Owner(), site->Owner());
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
}

TEST_F(MadeParentTest, AnAbsentStoreBelowGivesADetachedValue) {
    double level = 3.5;
    auto const store = AddValue("Site.Level", L"Site.Level", level);
    registry->OnPostRegistration();
    store->SetObject(nullptr);
    H const node = zo::Find("Site.Level");
    ASSERT_TRUE(node);
    EXPECT_EQ(TextOf(node), L"0") << "its type's default, and no client memory is touched";
}

TEST_F(MadeParentTest, AnOwnChildComesBeforeATopLevelNamesake) {
    double own = 1.5, top = 2.5;
    AddValue("Name", L"Name", top);
    AddValue("g.Name", L"G.Name", own);
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("g.Name")), L"1.5");
    EXPECT_EQ(NameOf(zo::Find("g.Name")), "g.Name");
    EXPECT_EQ(TextOf(zo::Find("Name")), L"2.5");
    EXPECT_EQ(TextOf(zo::Find(zo::Find("g"), "Name")), L"1.5");
}

TEST_F(MadeParentTest, ATopLevelNodeAnswersForAChildThatIsNotThere) {
    double top = 2.5, own = 1.5;
    AddValue("q", L"Q", top);
    AddValue("p.x", L"P.X", own);
    registry->OnPostRegistration();
    H const node = zo::Find("p.q");
    EXPECT_EQ(TextOf(node), L"2.5");
    EXPECT_EQ(NameOf(node), "q");
    EXPECT_FALSE(zo::Find("p.z"));
}

TEST_F(MadeParentTest, AChildThatIsNamedLikeItsParentIsFound) {
    double value = 1.5;
    AddValue("a.a", L"A.A", value);
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("a.a")), L"1.5");
    EXPECT_FALSE(zo::Find("a.b"));
    EXPECT_FALSE(zo::Find("a.a.a"));
    int steps = 0;
    for (zo::ZORegistryIterator at = registry->begin(); !(at == registry->end()) && steps < 100; ++at) ++steps;
    EXPECT_EQ(steps, 2);
}

TEST_F(MadeParentTest, AMadeParentIsNoChildOfItself) {
    double value = 1.5;
    AddValue("a.b", L"A.B", value);
    registry->OnPostRegistration();
    EXPECT_FALSE(zo::Find("a.a"));
    EXPECT_FALSE(zo::Find("a.a.a.a.b"));
}

TEST_F(MadeParentTest, ATopLevelNameWithADeeperTagIsFoundBothWays) {
    double value = 1.5;
    AddValue("foo", L"Site.Foo", value);
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("foo")), L"1.5");
    EXPECT_EQ(NameOf(zo::FindTag(L"Site.Foo")), "foo");
    EXPECT_EQ(NameOf(zo::Find("placeholder_Site.foo")), "foo");
    std::vector<std::string> names;
    for (zo::ZORegistryIterator at = registry->begin(); !(at == registry->end()); ++at) names.push_back(at->Name());
    EXPECT_EQ(names, (std::vector<std::string>{"placeholder_Site", "foo"}));
}

TEST_F(MadeParentTest, ANodeWithADeeperTagThanItsNameAnswersToItsName) {
    double value = 1.5;
    AddValue("g.x", L"G.Q.X", value);
    registry->OnPostRegistration();
    EXPECT_EQ(zo::SubRegID(rows::RowOf("g.placeholder_Q"), "x"), rows::RowOf("g.x"));
    EXPECT_EQ(TextOf(zo::Find("g.x")), L"1.5");
    EXPECT_EQ(NameOf(zo::Find("g.x")), "g.x");
}

TEST_F(MadeParentTest, ClearClearsWhatIsAvailableWhetherActiveOrNot) {
    double active = 1.5, quiet = 2.5, away = 3.5, deep = 4.5;
    AddValue("Site.Active", L"Site.Active", active);
    AddValue("Site.Quiet", L"Site.Quiet", quiet)->SetActive(false);
    auto const store = AddValue("Site.Away", L"Site.Away", away);
    AddValue("Site.North.Deep", L"Site.North.Deep", deep);
    registry->OnPostRegistration();
    store->SetObject(nullptr);
    store->SetAvailable(false);
    zo::Find("Site")->Clear();
    EXPECT_EQ(active, 0);
    EXPECT_EQ(quiet, 0);
    EXPECT_EQ(away, 3.5);
    EXPECT_EQ(deep, 0);
}

TEST_F(MadeParentTest, ClearDoesNotTouchATopLevelNamesake) {
    double own = 1.5, top = 2.5;
    AddValue("Name", L"Name", top);
    AddValue("g.Name", L"G.Name", own);
    registry->OnPostRegistration();
    zo::Find("g")->Clear();
    EXPECT_EQ(own, 0);
    EXPECT_EQ(top, 2.5);
}

TEST_F(MadeParentTest, AStructureBelowIsBoundToItsOwnObject) {
    embankment::Soil soil{L"Core", 1, 2, 3, embankment::Drainage::Drained, 4, {}};
    auto const traits = embankment::SoilTraits();
    registry.Add("Site.Core", embankment::StructPrototype(traits), L"Site.Core", traits, &soil);
    registry.Add("Site.Core.Name",
                 ValuePrototype<std::wstring>(embankment::TitleTraits(), meta::OffsetOf(&embankment::Soil::name)),
                 L"Name", embankment::TitleTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("Site.Core.Name")), L"Core");
    EXPECT_EQ(TextOf(zo::FindTag(L"Site.Core.Name")), L"Core");
}

TEST_F(MadeParentTest, OneStepBelowAMadeParentIsOneLevel) {
    embankment::Soil soil;
    soil.name = L"Core";
    auto const traits = embankment::SoilTraits();
    registry.Add("Site.Core", embankment::StructPrototype(traits), L"Site.Core", traits, &soil);
    registry.Add("Site.Core.Name",
                 ValuePrototype<std::wstring>(embankment::TitleTraits(), meta::OffsetOf(&embankment::Soil::name)),
                 L"Name", embankment::TitleTraits());
    registry->OnPostRegistration();
    H const site = zo::Find("Site");
    EXPECT_FALSE(zo::Find(site, "Core.Name")) << "a value without its memory would swallow what is written";
    EXPECT_EQ(TextOf(zo::Find(zo::Find(site, "Core"), "Name")), L"Core");
}

TEST_F(MadeParentTest, ClearEndsWhereANameLeadsBackToTheMadeParent) {
    // The made parent of the tag "al" is called placeholder_al. Below it, in the tree of tags, stands the row
    // al.placeholder_al, and by its name the alias leads to the made parent itself.
    double value = 1.5;
    AddValue("foo", L"al.Foo", value);
    registry.Add("al", H(new rows::OtherName("HZNData", true)), L"", rows::StructureTraits());
    registry.AddPlain("al.placeholder_al", L"");
    registry->OnPostRegistration();
    H const made = zo::Find("placeholder_al");
    ASSERT_EQ(zo::NextRegID(rows::RowOf("foo")), rows::RowOf("al.placeholder_al"));
    ASSERT_EQ(zo::Find("al.placeholder_al"), made);
    made->Clear();
    EXPECT_EQ(value, 0);
}

TEST_F(MadeParentTest, AnUnregisteredMadeParentHasNoChildren) {
    H const loose(new zo::ZOParentPlaceholder(IZO::npos, nullptr));
    EXPECT_FALSE(rows::NodeAccess::GetSubZO(*loose, "x"));
    loose->Clear();
    EXPECT_EQ(loose->OwnerID(), IZO::npos);
}

TEST_F(MadeParentTest, ValuesBelowARegisteredNodeStayBoundWhicheverSetNamedIt) {
    double level = 3.5;
    registry.AddPlain("Site", L"Site");
    AddValue("Site.Level", L"Level", level);
    registry->OnPostRegistration();
    {
        htl::handle<zo::ZORegistry> const other(new zo::ZORegistry);
        H const site = other->Find("Site");
        ASSERT_EQ(site->Owner(), other.get());
        EXPECT_EQ(TextOf(zo::Find("Site.Level")), L"3.5");
    }
    ASSERT_EQ(zo::GetTemplate("Site")->Owner(), nullptr) << "the set that named it has ended";
    ASSERT_TRUE(embankment::Succeeds(zo::Find("Site.Level")->Set(4.25)));
    EXPECT_EQ(level, 4.25);
}

TEST_F(MadeParentTest, AValueBelowAPlainNodeIsBoundToItsOwnStoreToo) {
    double level = 3.5;
    registry.AddPlain("Site", L"Site");
    AddValue("Site.Level", L"Level", level);
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("Site.Level")), L"3.5");
    H const clone(zo::Find("Site")->Clone());
    rows::NodeAccess::SetOwner(*clone, nullptr, IZO::npos);
    EXPECT_EQ(TextOf(rows::NodeAccess::GetSubZO(*clone, "Level")), L"0") << "outside the registry values are detached";
}

} // namespace
