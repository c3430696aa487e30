// Which entry speaks for a node that was found, inserted or made, with a row or without one.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/ZOTransaction.h"
#include "tests/fixtures/ViewModel.h"
#include "tests/registry/Rows.h"

#include "support/describe.h"

#include <string>

namespace {

using namespace fixture;
using embankment::Succeeds;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoStore;
using zo::H;
using Field = zo::ExtendedInfoField;
namespace row = dam::row;

constexpr std::size_t none = ExtendedInfoStore::End;

ExtendedInfoStore& Store() { return zo::extinfo::Store(); }
ExtendedInfoEntry const& Of(std::wstring const& tag) { return Store().Entry(Store().Find(tag)); }
std::wstring LabelOf(H const& node) { return Store().Lookup(node, Field::Label).Label; }
/// The tag of the entry that answers, which is the default one at last.
std::wstring Speaker(H const& node, unsigned field) { return Store().Lookup(node, field).Tag; }

void Use(TableText const& table) {
    ASSERT_TRUE(Succeeds(table.Read()));
    htl::status const result = zo::CompileExtendedInfo();
    // Entries of single tests may be used by no row.
    ASSERT_TRUE(!result.IsError() || result.AsWString().starts_with(L"One or more extended info entries not used"))
        << testing::PrintToString(result.AsWString());
    ASSERT_TRUE(Store().IsCompiled());
}

/// A row of a table that no registered row has to use.
std::vector<Cell> Spare(std::wstring label) { return {{L"IsDynamic", L"1"}, {L"Label", std::move(label)}}; }

class LookupNodeTest : public dam::ViewModelTest {
protected:
    /// An alias without a row, under a name of its own.
    H Alias(std::string const& name, std::string const& source) {
        H const alias = dam.registry->AssociateAlias(name, source);
        EXPECT_TRUE(alias);
        return alias;
    }
};

// Nodes with a row.

TEST_F(LookupNodeTest, NodeIsSpokenForByTheEntryOfItsRow) {
    Use(TableText::WithDefault().Entry(L"Body.Crest", {{L"Label", L"Crest"}}));
    EXPECT_EQ(&Store().Lookup(zo::Find("Body.Crest"), Field::Label), &Of(L"Body.Crest"));
}

TEST_F(LookupNodeTest, NodeWithoutEntryIsAnsweredByTheDefaultEntry) {
    Use(TableText::WithDefault());
    EXPECT_EQ(&Store().Lookup(zo::Find("Body.Crest"), Field::Label), &Store().DefaultEntry());
}

TEST_F(LookupNodeTest, EmptyHandleIsAnsweredByTheDefaultEntry) {
    Use(TableText::WithDefault());
    for (unsigned const field : {0u, 1u, 13u, 14u, 15u, 16u, 99u})
        EXPECT_EQ(&Store().Lookup(H(), field), &Store().DefaultEntry());
}

TEST_F(LookupNodeTest, WholeQuestionForAValueFindsTheEntryOfItsType) {
    Use(TableText().Entry(L"Default", {{L"Category", L"default"}}).Entry(L"double", Spare(L"Number")));
    ExtendedInfoEntry const& entry = Store().Lookup(zo::Find("Body.Crest"), Field::Whole);
    EXPECT_EQ(entry.Tag, L"double");
    EXPECT_EQ(entry.Category, L"default");
    EXPECT_TRUE(entry.fields.all());
    EXPECT_EQ(Store().Lookup(row::Crest, Field::Whole), none); // by its row it has none
}

TEST_F(LookupNodeTest, QuestionForTheVisibilityCompletesItsThreeFields) {
    Use(TableText().Entry(L"Default", {{L"ViewExcl", L"report"}}).Entry(L"Drain"));
    ExtendedInfoEntry const& entry = Store().Lookup(zo::Find("Drain"), Field::Visibility);
    EXPECT_EQ(entry.Tag, L"Drain");
    EXPECT_EQ(entry.mask, 0x7FF03u);
    EXPECT_FALSE(entry.fields[Field::Label]);
}

TEST_F(LookupNodeTest, QuestionForTheWholeCompletesAllFields) {
    Use(TableText::WithDefault().Entry(L"Drain"));
    EXPECT_TRUE(Store().Lookup(zo::Find("Drain"), Field::Whole).fields.all());
}

TEST_F(LookupNodeTest, NodeOfATransactionIsSpokenForByItsRow) {
    Use(TableText::WithDefault().Entry(L"Points.[].X", {{L"Label", L"Station"}}));
    auto const transaction = dam.registry->CreateTransaction();
    H const staged = transaction->Find("Points[1].X");
    ASSERT_TRUE(staged);
    EXPECT_EQ(LabelOf(staged), L"Station");
}

// Nodes without one: by their tags.

TEST_F(LookupNodeTest, InsertedAliasIsSpokenForByTheEntryUnderItsOwnTag) {
    Use(TableText::WithDefault()
            .Entry(L"Drain.Flow", {{L"Label", L"of its source"}})
            .Entry(L"Body.Flow", Spare(L"of its own")));
    H const alias = Alias("Body.Outlet", "Drain.Flow");
    ASSERT_EQ(zo::FullTag(alias), L"Body.Flow"); // an alias has its source's tag
    EXPECT_EQ(LabelOf(alias), L"of its own");
}

TEST_F(LookupNodeTest, IndexOfATagIsLookedUpInNormalForm) {
    Use(TableText::WithDefault().Entry(L"Points.[].Flow", Spare(L"Flow at a point")));
    H const alias = Alias("Points[1].Outlet", "Drain.Flow");
    ASSERT_EQ(zo::FullTag(alias), L"Points[2].Flow");
    EXPECT_EQ(LabelOf(alias), L"Flow at a point");
}

TEST_F(LookupNodeTest, InsertedAliasIsFoundByTheTypeAbove) {
    Use(TableText::WithDefault().Entry(L"dam::DamPoint.Flow", Spare(L"below a point")));
    EXPECT_EQ(LabelOf(Alias("Points[1].Outlet", "Drain.Flow")), L"below a point");
}

TEST_F(LookupNodeTest, OutermostTypeWinsForATagToo) {
    Use(TableText::WithDefault()
            .Entry(L"dam::DamPoint.Flow", Spare(L"near"))
            .Entry(L"std::vector<dam::DamPoint, std::allocator<dam::DamPoint> >.[].Flow", Spare(L"far")));
    EXPECT_EQ(LabelOf(Alias("Points[1].Outlet", "Drain.Flow")), L"far");
}

TEST_F(LookupNodeTest, InsertedAliasIsFoundByAWildcard) {
    Use(TableText::WithDefault().Entry(L"Body.Fl*", Spare(L"wildcard")));
    EXPECT_EQ(LabelOf(Alias("Body.Outlet", "Drain.Flow")), L"wildcard");
}

TEST_F(LookupNodeTest, SearchesByTagGoFromTheTagOverTypeAndPathToTheWildcards) {
    std::vector<std::pair<std::wstring, std::wstring>> const entries{
        {L"Body.Flow", L"tag"}, {L"dam::DamBody.Flow", L"type and path"}, {L"Body.F*", L"wildcard"}};
    for (std::size_t first = 0; first < entries.size(); ++first) {
        dam::ViewModel other;
        TableText table = TableText::WithDefault();
        for (std::size_t i = first; i < entries.size(); ++i) table.Entry(entries[i].first, Spare(entries[i].second));
        Use(table);
        EXPECT_EQ(LabelOf(other.registry->AssociateAlias("Body.Outlet", "Drain.Flow")), entries[first].second);
    }
}

TEST_F(LookupNodeTest, DynamicEntryOfAnAliasTakesNothingOver) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Flow", Spare(L"Flow"))
            .Entry(L"Body.F*", {{L"IsDynamic", L"1"}, {L"Category", L"Water"}}));
    H const alias = Alias("Body.Outlet", "Drain.Flow");
    EXPECT_EQ(Speaker(alias, Field::Category), L"Body.F*"); // which speaks instead
    EXPECT_FALSE(Of(L"Body.Flow").fields[Field::Category]);
    EXPECT_EQ(Store().Lookup(alias, Field::Whole).fields.count(), 2u);
}

TEST_F(LookupNodeTest, FixedEntryOfAnAliasTakesOver) {
    Use(TableText::WithDefault()
            .Entry(L"Body.Flow", {{L"Label", L"Flow"}})
            .Entry(L"Body.F*", {{L"IsDynamic", L"1"}, {L"Category", L"Water"}}));
    H const alias = Alias("Body.Outlet", "Drain.Flow");
    EXPECT_EQ(Speaker(alias, Field::Category), L"Body.Flow");
    EXPECT_EQ(Of(L"Body.Flow").Category, L"Water");
    EXPECT_TRUE(Store().Lookup(alias, Field::Whole).fields.all());
}

// Nodes without one: by what they stand for.

TEST_F(LookupNodeTest, InsertedAliasIsSpokenForByItsSource) {
    Use(TableText::WithDefault().Entry(L"Drain.Flow", {{L"Label", L"Flow"}}));
    EXPECT_EQ(LabelOf(Alias("Body.Outlet", "Drain.Flow")), L"Flow");
}

TEST_F(LookupNodeTest, FieldsOfAQuestionAreCompletedInTheEntryOfTheSource) {
    Use(TableText().Entry(L"Default", {{L"ViewExcl", L"data"}}).Entry(L"Drain.Flow", {{L"Label", L"Flow"}}));
    ExtendedInfoEntry const& entry = Store().Lookup(Alias("Body.Outlet", "Drain.Flow"), Field::Whole);
    EXPECT_EQ(entry.Tag, L"Drain.Flow");
    EXPECT_EQ(entry.mask, 0x7FF06u);
    EXPECT_TRUE(entry.fields.all());
}

TEST_F(LookupNodeTest, AliasOfAnAliasIsSpokenForByTheLastSource) {
    Use(TableText::WithDefault().Entry(L"Drain.Flow", {{L"Label", L"Flow"}}));
    H const first = Alias("First", "Drain.Flow");
    EXPECT_EQ(LabelOf(Alias("Second", "First")), L"Flow");
}

TEST_F(LookupNodeTest, SourceWithoutEntryIsSpokenForByItsType) {
    Use(TableText::WithDefault().Entry(L"double", Spare(L"Number")));
    H const alias = Alias("Body.Outlet", "Drain.Flow");
    EXPECT_EQ(LabelOf(alias), L"Number");
    EXPECT_EQ(Speaker(alias, Field::Whole), L"double");
}

TEST_F(LookupNodeTest, AliasWithoutASourceIsAnsweredByTheDefaultEntry) {
    Use(TableText::WithDefault());
    H const lost(new zo::ZOAlias("Nowhere", zo::IZO::npos, nullptr));
    EXPECT_EQ(&Store().Lookup(lost, Field::Whole), &Store().DefaultEntry());
}

TEST_F(LookupNodeTest, NodeOutsideOfAnySetIsSpokenForByItsType) {
    Use(TableText()
            .Entry(L"Default", {{L"Category", L"default"}})
            .Entry(L"dam::DamDrain", {{L"Label", L"Drain"}})
            .Entry(L"*rain", {{L"Label", L"wildcard"}}));
    // A view without a name, as `Wrap` gives it, has its row; this one has nothing.
    H const alone = embankment::StructPrototype(dam.registry->Tables()->dataTraits[row::Drain]);
    ASSERT_EQ(alone->RegID(), zo::IZO::npos);
    EXPECT_EQ(LabelOf(alone), L"Drain");
    EXPECT_EQ(Speaker(alone, Field::Category), L"dam::DamDrain");
    EXPECT_EQ(Of(L"dam::DamDrain").Category, L"default");
}

TEST_F(LookupNodeTest, QuestionForTheWholeCompletesTheEntryOfAType) {
    Use(TableText().Entry(L"Default", {{L"ViewExcl", L"data"}}).Entry(L"dam::DamDrain", {{L"Label", L"Drain"}}));
    H const alone = embankment::StructPrototype(dam.registry->Tables()->dataTraits[row::Drain]);
    ExtendedInfoEntry const& entry = Store().Lookup(alone, Field::Visibility);
    EXPECT_EQ(entry.Tag, L"dam::DamDrain");
    EXPECT_EQ(entry.mask, 0x7FF06u);
}

TEST_F(LookupNodeTest, NodeOfATypeWithoutEntryIsAnsweredByTheDefaultEntry) {
    Use(TableText::WithDefault());
    EXPECT_EQ(&Store().Lookup(H(new rows::Plain), Field::Label), &Store().DefaultEntry());
}

/// Leads to a node that a test gives.
class Leads : public zo::IZO, public zo::ZORedirect {
public:
    Leads() : IZO(npos, nullptr, npos) {}
    IZO* Clone() override { return new Leads; }
    std::string RedirectName() const override { return {}; }
    H Redirect() const override {
        ++steps;
        return to;
    }

    H to;
    mutable int steps = 0;
};

TEST_F(LookupNodeTest, RedirectsInACircleAreAnsweredByTheDefaultEntry) {
    Use(TableText::WithDefault());
    htl::handle<Leads> const east(new Leads);
    htl::handle<Leads> const west(new Leads);
    east->to = H(west.get());
    west->to = H(east.get());
    EXPECT_EQ(&Store().Lookup(H(east.get()), Field::Label), &Store().DefaultEntry());
    EXPECT_LE(east->steps + west->steps, 1001);
    east->to = H();
    west->to = H();
}

TEST_F(LookupNodeTest, RedirectLeadsToTheEntryOfANodeWithARow) {
    Use(TableText::WithDefault().Entry(L"Drain", {{L"Label", L"Drain"}}));
    htl::handle<Leads> const leads(new Leads);
    leads->to = zo::Find("Drain");
    EXPECT_EQ(LabelOf(H(leads.get())), L"Drain");
}

// Registered redirects.

class LookupRedirectTest : public rows::RegistryTest {};

TEST_F(LookupRedirectTest, RegisteredAliasWithoutEntryIsSpokenForByItsSource) {
    registry.AddPlain("Pump", L"Pump");
    registry.Add("Shortcut", H(new zo::ZOAlias("Pump", zo::IZO::npos, nullptr)), L"Shortcut", rows::StructureTraits());
    registry->OnPostRegistration();
    Use(TableText::WithDefault().Entry(L"Pump", {{L"Label", L"Pump"}}));
    EXPECT_EQ(LabelOf(zo::Find("Shortcut")), L"Pump");
    EXPECT_EQ(Store().Lookup(rows::RowOf("Shortcut"), Field::Label), none);
}

TEST_F(LookupRedirectTest, RegisteredAliasWithAnEntryKeepsIt) {
    registry.AddPlain("Pump", L"Pump");
    registry.Add("Shortcut", H(new zo::ZOAlias("Pump", zo::IZO::npos, nullptr)), L"Shortcut", rows::StructureTraits());
    registry->OnPostRegistration();
    Use(TableText::WithDefault()
            .Entry(L"Pump", {{L"Label", L"Pump"}})
            .Entry(L"Shortcut", {{L"Label", L"To the pump"}}));
    EXPECT_EQ(LabelOf(zo::Find("Shortcut")), L"To the pump");
}

TEST_F(LookupRedirectTest, LinkIsNoAliasAndTakesTheEntryOfItsType) {
    registry.AddPlain("Pump", L"Pump");
    registry.Add("Field", H(new rows::OtherName("Pump", false)), L"Field", meta::AtomicTraits<int>());
    registry->OnPostRegistration();
    Use(TableText::WithDefault().Entry(L"Pump", {{L"Label", L"Pump"}}).Entry(L"int", Spare(L"Number")));
    EXPECT_EQ(LabelOf(zo::Find("Field")), L"Number");
    // The whole question passes over types of values, and so goes on to what the link leads to.
    EXPECT_EQ(Speaker(zo::Find("Field"), Field::Whole), L"Pump");
}

} // namespace
