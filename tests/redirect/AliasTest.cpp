// Nodes that stand for another node: what they pass on, how long they keep their source, and what they say without one.
#include "Common/model/ZOAccessTrait.h"
#include "Common/model/ZOAtomicData.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/redirect/ZOAliasRegistrator.h"
#include "Common/registry/ZOTransaction.h"
#include "tests/registry/Rows.h"

#include <functional>
#include <limits>
#include <typeinfo>

namespace {

using embankment::Embankment;
using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using embankment::ValuePrototype;
using rows::H;
using rows::IZO;
using rows::NameOf;
using zo::ZOAlias;
using zo::ZOAliasAbsolute;
using zo::ZOAliasAbsoluteSlow;
using zo::ZOAliasBase;
using zo::ZOAliasRelative;
using zo::impl::NodeAccess;
using Persist = meta::MetaPersistTraits;

constexpr std::size_t npos = IZO::npos;

ZOAliasBase& AsAlias(H const& node) { return dynamic_cast<ZOAliasBase&>(*node); }
std::type_info const& TypeOf(IZO const& node) { return typeid(node); }
meta::MetaDataTraits const& DoubleTraits() { return meta::AtomicTraits<double>(); }
H Number(double value) { return H(new zo::ZOAtomicData<double>(npos, nullptr, DoubleTraits(), value)); }

/// An alias that nobody entered anywhere; it looks in the current registry.
H Loose(std::string const& source) { return H(new ZOAlias(source, npos, nullptr)); }

/// An alias to a node that it is given, as a client may write one.
class Pointing : public ZOAlias {
public:
    explicit Pointing(H node) : ZOAlias("its own way", npos, nullptr), node(std::move(node)) {}
    H Redirect() const override { return node; }

private:
    H node;
};

/// The project, a level that can be replaced, and aliases into both.
class AliasTest : public testing::Test {
protected:
    static void Add(Embankment& rows, std::string const& name, IZO* alias, std::wstring const& tag) {
        rows.Row(name, H(alias), {Persist::No, tag}, rows::StructureTraits());
    }

    // The registry lives on, and what its aliases keep would count as in use for the next test's soils.
    ~AliasTest() override { embankment.registry->InvalidateMemory(""); }

    double north = 3.5;
    double south = 4.25;
    htl::handle<zo::ODS> level;
    Embankment embankment{[this](Embankment& rows) {
        level =
            rows.Row("Level", ValuePrototype<double>(DoubleTraits()), {Persist::No, L"Level"}, DoubleTraits(), &north);
        Add(rows, "Water", new ZOAlias("Level", npos, nullptr), L"Water");
        Add(rows, "KeptWater", new ZOAliasAbsolute("Level", npos, nullptr), L"KeptWater");
        Add(rows, "SlowWater", new ZOAliasAbsoluteSlow(L"Level", npos, nullptr), L"SlowWater");
        Add(rows, "NearWater", new ZOAliasRelative(L"@Parent.Level", npos, nullptr), L"NearWater");
        Add(rows, "Core", new ZOAlias("Soils[0]", npos, nullptr), L"Core");
        Add(rows, "CoreCohesion", new ZOAlias("Soils[0].Cohesion", npos, nullptr), L"CoreCohesion");
        Add(rows, "ShellCohesion", new ZOAliasAbsoluteSlow(L"Soils[2].Cohesion", npos, nullptr), L"ShellCohesion");
        Add(rows, "Materials", new ZOAlias("Soils", npos, nullptr), L"Materials");
        Add(rows, "Untagged", new ZOAlias("Soils[0].Cohesion", npos, nullptr), L"");
        Add(rows, "Soils.[].Strength", new ZOAliasRelative(L"@Parent.Cohesion", npos, nullptr), L"Strength");
        Add(rows, "Soils.[].Owner", new ZOAliasRelative(L"@Parent", npos, nullptr), L"Owner");
        Add(rows, "Gone", new ZOAlias("Nothing.There", npos, nullptr), L"Gone");
    }};
};

// ---- What is passed on

TEST_F(AliasTest, ReadsTheSourceInEveryForm) {
    H const alias = zo::Find("CoreCohesion");
    double number = 0;
    __int64 whole = 0;
    bool flag = false;
    std::wstring text;
    ASSERT_TRUE(Succeeds(alias->Get(number)));
    ASSERT_TRUE(Succeeds(alias->Get(whole)));
    ASSERT_TRUE(Succeeds(alias->Get(flag)));
    ASSERT_TRUE(Succeeds(alias->Get(text)));
    EXPECT_EQ(number, 25.0);
    EXPECT_EQ(whole, 25);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, L"25");
}

TEST_F(AliasTest, WritesTheSourceInEveryForm) {
    H const alias = zo::Find("CoreCohesion");
    double& cohesion = embankment.model.soils[0].cohesion;
    ASSERT_TRUE(Succeeds(alias->Set(30.5)));
    EXPECT_EQ(cohesion, 30.5);
    ASSERT_TRUE(Succeeds(alias->Set(htl::Int64(31))));
    EXPECT_EQ(cohesion, 31.0);
    ASSERT_TRUE(Succeeds(alias->Set(true)));
    EXPECT_EQ(cohesion, 1.0);
    ASSERT_TRUE(Succeeds(alias->Set(L"32.25")));
    EXPECT_EQ(cohesion, 32.25);
}

TEST_F(AliasTest, ARefusedWriteFailsAsTheSourceDoes) {
    EXPECT_TRUE(FailsAs(zo::Find("CoreCohesion")->Set(-1.0), embankment::NegativeCohesion()));
    EXPECT_EQ(embankment.model.soils[0].cohesion, 25.0);
}

TEST_F(AliasTest, EveryClassFindsItsSource) {
    EXPECT_EQ(TextOf(zo::Find("Water")), L"3.5");
    EXPECT_EQ(TextOf(zo::Find("KeptWater")), L"3.5");
    EXPECT_EQ(TextOf(zo::Find("SlowWater")), L"3.5");
    EXPECT_EQ(TextOf(zo::Find("NearWater")), L"3.5");
    EXPECT_EQ(TextOf(zo::Find("ShellCohesion")), L"0") << "tags count from 1";
}

TEST_F(AliasTest, HasTheTypeAndTheLengthOfTheSource) {
    EXPECT_EQ(zo::Find("CoreCohesion")->GetDataTraits().Descriptor(), embankment::CohesionTraits().Descriptor());
    EXPECT_TRUE(zo::Find("CoreCohesion")->IsValueType());
    EXPECT_EQ(zo::Find("Core")->GetDataTraits().TypeName(), "embankment::Soil");
    EXPECT_EQ(zo::Find("CoreCohesion")->Length(), 1u);
    EXPECT_EQ(zo::Find("Materials")->Length(), 3u);
}

TEST_F(AliasTest, VerifiesTheSource) {
    EXPECT_TRUE(Succeeds(zo::Find("CoreCohesion")->Verify()));
    embankment.model.soils[0].cohesion = -5;
    EXPECT_TRUE(FailsAs(zo::Find("CoreCohesion")->Verify(), embankment::NegativeCohesion()));
}

TEST_F(AliasTest, IsAtItsDefaultWhenTheSourceIs) {
    EXPECT_FALSE(zo::Find("CoreCohesion")->IsDefault());
    embankment.model.soils[0].cohesion = 0;
    EXPECT_TRUE(zo::Find("CoreCohesion")->IsDefault());
}

TEST_F(AliasTest, IsUndefinedWhenTheSourceHoldsTheMissingValue) {
    EXPECT_FALSE(zo::Find("Water")->IsUndefined());
    north = std::numeric_limits<double>::max();
    EXPECT_TRUE(zo::Find("Water")->IsUndefined());
}

TEST_F(AliasTest, OfAnArrayIsUndefinedWhenTheArrayIsEmpty) {
    EXPECT_FALSE(zo::Find("Materials")->IsUndefined());
    embankment.model.soils.clear();
    EXPECT_TRUE(zo::Find("Materials")->IsUndefined());
}

/// Says of itself that it is undefined.
class Unsure : public zo::ZOAtomicData<double> {
public:
    explicit Unsure(double value) : ZOAtomicData(npos, nullptr, DoubleTraits(), value) {}
    bool IsUndefined() const override { return true; }
};

TEST_F(AliasTest, IsUndefinedByTheSourcesValueAndNotByItsOwnAnswer) {
    H const source(new Unsure(2.5));
    ASSERT_TRUE(source->IsUndefined());
    H const alias(new Pointing(source));
    EXPECT_FALSE(alias->IsUndefined());
}

TEST_F(AliasTest, ClearsTheSource) {
    zo::Find("CoreCohesion")->Clear();
    EXPECT_EQ(embankment.model.soils[0].cohesion, 0.0);
}

TEST_F(AliasTest, TakesOverAValueForTheSource) {
    ASSERT_TRUE(Succeeds(zo::Find("CoreCohesion")->Assign(Number(12.5))));
    EXPECT_EQ(embankment.model.soils[0].cohesion, 12.5);
}

TEST_F(AliasTest, ResizesTheSource) {
    ASSERT_TRUE(Succeeds(zo::Find("Materials")->SetLength(5)));
    EXPECT_EQ(embankment.model.soils.size(), 5u);
}

TEST_F(AliasTest, LetsATraitActOnTheSourcesValue) {
    struct Doubling : zo::IZOAccessValueTypeTrait {
        htl::status CallValueTypeTrait(void* value) override {
            *static_cast<double*>(value) *= 2;
            return {};
        }
    } doubling;
    ASSERT_TRUE(Succeeds(NodeAccess::CallValueTypeTrait(*zo::Find("CoreCohesion"), doubling)));
    EXPECT_EQ(embankment.model.soils[0].cohesion, 50.0);
}

TEST_F(AliasTest, RunsNothing) { EXPECT_TRUE(FailsAs(zo::Find("Core")->Run(), zo::ZOError::not_supported(""))); }

TEST_F(AliasTest, AWalkGoesOnAtTheSource) {
    H const alias = zo::Find("Materials");
    zo::ZOFwrdIterator position = alias->begin();
    EXPECT_EQ(NameOf(position.parent), "Soils");
    std::vector<std::string> names;
    for (; position.current; ++position) names.push_back(NameOf(position.current));
    EXPECT_EQ(names, (std::vector<std::string>{"Soils[0]", "Soils[1]", "Soils[2]"}));
}

TEST_F(AliasTest, AWalkThatHasTheAliasAsParentStepsOnTheSource) {
    H const alias = zo::Find("Materials");
    zo::ZOFwrdIterator position = alias->begin();
    position.parent = alias;
    ++position;
    EXPECT_EQ(NameOf(position.current), "Soils[1]");
}

TEST_F(AliasTest, ChildrenAreTheSourcesUnderTheirOwnNames) {
    EXPECT_EQ(NameOf(zo::Find("Core.Name")), "Soils[0].Name");
    EXPECT_EQ(NameOf(zo::Find("Materials[1].Name")), "Soils[1].Name");
    EXPECT_EQ(NameOf(zo::Find("Materials.At(3)")), "Soils[2]");
    EXPECT_EQ(TextOf(zo::Find("Materials.Len")), L"3");
    EXPECT_EQ(TextOf(zo::Find(zo::Find("Core"), "Name")), L"Clay core");
    EXPECT_FALSE(zo::Find("Materials[3]"));
    EXPECT_FALSE(zo::Find("Core.Nothing"));
}

TEST_F(AliasTest, NoChildHasAnEmptyName) { EXPECT_FALSE(NodeAccess::GetSubZO(*zo::Find("Core"), "")); }

TEST_F(AliasTest, ASourceWithoutOwnerHasNoChildren) {
    H const soil = zo::GetWrapper(rows::RowOf("Soils[0]"), &embankment.model.soils[0]);
    ASSERT_TRUE(NodeAccess::GetSubZO(*soil, "Name"));
    H const alias(new Pointing(soil));
    EXPECT_FALSE(NodeAccess::GetSubZO(*alias, "Name"));
}

// ---- How long the source is kept

TEST_F(AliasTest, SeesAReplacedSourceAtTheNextUse) {
    H const alias = zo::Find("Water");
    EXPECT_EQ(TextOf(alias), L"3.5");
    level->SetObject(&south);
    EXPECT_EQ(TextOf(alias), L"4.25");
}

TEST_F(AliasTest, AnAbsoluteAliasSeesAReplacedSourceWhenItIsTold) {
    H const alias = zo::Find("KeptWater");
    EXPECT_EQ(TextOf(alias), L"3.5");
    level->SetObject(&south);
    EXPECT_EQ(TextOf(alias), L"3.5");
    embankment.registry->InvalidateMemory("KeptWater");
    EXPECT_EQ(TextOf(alias), L"4.25");
}

TEST_F(AliasTest, AliasesByTagSeeAReplacedSourceWhenTheyAreTold) {
    for (char const* const name : {"SlowWater", "NearWater"}) {
        level->SetObject(&north);
        H const alias = zo::Find(name);
        EXPECT_EQ(TextOf(alias), L"3.5") << name;
        level->SetObject(&south);
        EXPECT_EQ(TextOf(alias), L"3.5") << name;
        EXPECT_TRUE(AsAlias(alias).Validate()) << name;
        EXPECT_EQ(TextOf(alias), L"4.25") << name;
    }
}

TEST_F(AliasTest, InvalidatingEverythingReachesTopLevelAliases) {
    std::vector<H> const aliases{zo::Find("KeptWater"), zo::Find("SlowWater"), zo::Find("NearWater")};
    for (H const& alias : aliases) EXPECT_EQ(TextOf(alias), L"3.5");
    level->SetObject(&south);
    embankment.registry->InvalidateMemory("");
    for (H const& alias : aliases) EXPECT_EQ(TextOf(alias), L"4.25");
}

TEST_F(AliasTest, InvalidatingEverythingReachesAssociatedAliases) {
    H const alias = embankment.registry->AssociateAlias("Pool", "Level");
    EXPECT_EQ(TextOf(alias), L"3.5");
    level->SetObject(&south);
    EXPECT_EQ(TextOf(alias), L"3.5");
    embankment.registry->InvalidateMemory("");
    EXPECT_EQ(TextOf(alias), L"4.25");
}

TEST_F(AliasTest, QuestionsOfTypeKeepNothing) {
    H const alias = zo::Find("KeptWater");
    (void)alias->GetDataTraits();
    (void)alias->Length();
    (void)alias->Verify();
    (void)alias->IsUndefined();
    (void)alias->GetPersistTraits();
    level->SetObject(&south);
    EXPECT_EQ(TextOf(alias), L"4.25");
}

TEST_F(AliasTest, ALooseAliasKeepsItsSource) {
    H const alias = Loose("Level");
    EXPECT_EQ(TextOf(alias), L"3.5");
    level->SetObject(&south);
    EXPECT_EQ(TextOf(alias), L"3.5");
}

TEST_F(AliasTest, ARegisteredAliasOfAnotherSetKeepsItsSource) {
    auto const transaction = embankment.registry->CreateTransaction();
    H const alias(zo::Find("Water")->Clone());
    ASSERT_TRUE(Succeeds(transaction->Insert("Water", alias)));
    EXPECT_EQ(TextOf(alias), L"3.5");
    ASSERT_TRUE(Succeeds(zo::Find("Level")->Set(5.0)));
    EXPECT_EQ(TextOf(alias), L"3.5") << "what it keeps is the transaction's staged level";
    EXPECT_EQ(AsAlias(alias).Redirect(), transaction->Find("Level"));
}

TEST_F(AliasTest, AKeptElementKeepsItsArrayFromBeingResized) {
    H const alias(new ZOAliasAbsolute("Soils[0].Cohesion", npos, nullptr));
    EXPECT_EQ(TextOf(alias), L"25");
    EXPECT_TRUE(FailsAs(zo::Find("Soils")->SetLength(4), zo::ZOError::array_memory_conflict()));
    NodeAccess::OnInvalidateMemory(*alias);
    EXPECT_TRUE(Succeeds(zo::Find("Soils")->SetLength(4)));
}

TEST_F(AliasTest, AKeptSourceStaysReachableWhenItsSetLetsItGo) {
    H source = Number(7.5);
    ASSERT_TRUE(Succeeds(embankment.registry->InsertTemporary("Noted", source)));
    H const alias(new ZOAliasAbsolute("Noted", npos, nullptr));
    EXPECT_EQ(TextOf(alias), L"7.5");
    source.release();
    EXPECT_EQ(TextOf(alias), L"7.5");
    EXPECT_EQ(TextOf(zo::Find("Noted")), L"7.5") << "the kept node is still named";
    NodeAccess::OnInvalidateMemory(*alias);
    EXPECT_FALSE(zo::Find("Noted"));
}

TEST_F(AliasTest, ACloneHasTheSameSourceAndKeepsNothing) {
    H const registered = zo::Find("KeptWater");
    EXPECT_EQ(TextOf(registered), L"3.5");
    H const clone(registered->Clone());
    level->SetObject(&south);
    EXPECT_EQ(TextOf(registered), L"3.5");
    EXPECT_EQ(TextOf(clone), L"4.25");
    EXPECT_EQ(clone->RegID(), registered->RegID());
    EXPECT_EQ(clone->Owner(), registered->Owner());
    EXPECT_EQ(clone->OwnerID(), npos);
}

TEST_F(AliasTest, ACloneIsOfTheSameClass) {
    H const absolute(zo::Find("KeptWater")->Clone()), slow(zo::Find("SlowWater")->Clone());
    H const relative(zo::Find("NearWater")->EmptyClone()), plain(zo::Find("Water")->EmptyClone());
    EXPECT_EQ(TypeOf(*absolute), typeid(ZOAliasAbsolute));
    EXPECT_EQ(TypeOf(*slow), typeid(ZOAliasAbsoluteSlow));
    EXPECT_EQ(TypeOf(*relative), typeid(ZOAliasRelative));
    EXPECT_EQ(TypeOf(*plain), typeid(ZOAlias));
    EXPECT_EQ(dynamic_cast<ZOAlias&>(*plain).SrcName(), "Level");
    EXPECT_EQ(dynamic_cast<ZOAliasRelative&>(*relative).SrcTag(), L"@Parent.Level");
}

TEST_F(AliasTest, ACopyKeepsNothingAndAnswersForItself) {
    auto const kept = htl::handle<ZOAliasAbsolute>(new ZOAliasAbsolute("Level", npos, nullptr));
    EXPECT_EQ(TextOf(kept), L"3.5");
    H const copy(new ZOAliasAbsolute(*kept));
    level->SetObject(&south);
    EXPECT_EQ(TextOf(copy), L"4.25");
}

// ---- Names, tags and templates

TEST_F(AliasTest, TheRedirectNameIsTheSourceOrTheAliassOwnName) {
    EXPECT_EQ(AsAlias(zo::Find("Water")).RedirectName(), "Level");
    EXPECT_EQ(AsAlias(zo::Find("KeptWater")).RedirectName(), "Level");
    EXPECT_EQ(AsAlias(zo::Find("SlowWater")).RedirectName(), "SlowWater");
    EXPECT_EQ(AsAlias(zo::Find("Soils[1].Strength")).RedirectName(), "Soils[1].Strength");
}

TEST_F(AliasTest, ARelativeAliasBelowAStructureBelongsToItsElement) {
    EXPECT_EQ(TextOf(zo::Find("Soils[0].Strength")), L"25");
    EXPECT_EQ(TextOf(zo::Find("Soils[2].Strength")), L"10.5");
    ASSERT_TRUE(Succeeds(zo::Find("Soils[1].Strength")->Set(4.0)));
    EXPECT_EQ(embankment.model.soils[1].cohesion, 4.0);
}

TEST_F(AliasTest, ANameLeadsThroughARelativeAliasBelowAnElement) {
    EXPECT_EQ(TextOf(zo::Find("Soils[2].Owner.Cohesion")), L"10.5");
    EXPECT_EQ(TextOf(zo::Find("Soils[0].Owner.Owner.Cohesion")), L"25");
    EXPECT_FALSE(zo::Find("Soils[0].Owner.Nothing"));
}

TEST_F(AliasTest, ARelativeAliasWithoutANameFindsNothingAboveIt) {
    H const alias(new ZOAliasRelative(L"@Parent.Level", npos, nullptr));
    EXPECT_FALSE(AsAlias(alias).Validate());
}

TEST_F(AliasTest, TemplatesAreFoundThroughAliases) {
    EXPECT_EQ(zo::GetTemplate("Core.Name"), zo::GetTemplate("Soils[0].Name"));
    EXPECT_EQ(zo::GetTemplate("Materials[7].Name"), zo::GetTemplate("Soils[0].Name"));
    EXPECT_EQ(zo::GetTemplate("Core"), zo::Find("Core").get());
    EXPECT_EQ(zo::GetTemplate("Gone.Name"), nullptr);
}

TEST_F(AliasTest, TagsAreFoundThroughAliases) {
    EXPECT_EQ(NameOf(zo::FindTag(L"CoreCohesion")), "CoreCohesion");
    EXPECT_EQ(NameOf(zo::FindTag(L"Core.Name")), "Soils[0].Name");
    EXPECT_EQ(NameOf(zo::FindTag(L"Materials[2].Name")), "Soils[1].Name");
    EXPECT_EQ(NameOf(zo::FindTag(zo::Find("Core"), L"Name")), "Soils[0].Name");
    EXPECT_EQ(NameOf(zo::FindTag(zo::Find("Soils[1]"), L"Strength")), "Soils[1].Strength");
    EXPECT_FALSE(zo::FindTag(zo::Find("Gone"), L"Name"));
}

TEST_F(AliasTest, AnAliasHasTheTagItWasRegisteredWith) {
    EXPECT_EQ(zo::FullTag(zo::Find("CoreCohesion")), L"CoreCohesion");
    EXPECT_EQ(zo::FullTag(zo::Find("Soils[1].Strength")), L"Soils[2].Strength");
    EXPECT_EQ(zo::FullTag(zo::Find("Core.Name")), L"Soils[1].Name");
}

TEST_F(AliasTest, AnAliasWithADottedTagMakesNoParents) {
    rows::OwnRegistry registry;
    registry.Add("Title", H(new ZOAlias("Project.Title", npos, nullptr)), L"Report.Title", rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(zo::GetTemplate("Report"), nullptr);
    EXPECT_EQ(zo::FullTag("Title"), L"Report.Title");
    EXPECT_EQ(NameOf(zo::FindTag(L"Report.Title")), "Title");
}

TEST_F(AliasTest, AWalkOfTheTreeSkipsAliases) {
    for (zo::ZOFwrdIterator at = embankment.registry->Root()->begin(); at.current; ++at)
        EXPECT_EQ(dynamic_cast<ZOAliasBase*>(at.current.get()), nullptr) << NameOf(at.current);
}

TEST_F(AliasTest, PersistsAsItsOwnRowWhereThatHasATag) {
    rows::OwnRegistry registry;
    registry.Add("Short", H(new ZOAlias("Long", npos, nullptr)), L"Short", rows::StructureTraits(), nullptr,
                 Persist::Always);
    Persist const own = zo::Find("Short")->GetPersistTraits();
    EXPECT_EQ(own.Type, Persist::Always);
    EXPECT_EQ(own.Tag, L"Short");
    EXPECT_EQ(own.TagName, L"Short");
}

TEST_F(AliasTest, CarriesTheSourcesTagWithoutOneOfItsOwn) {
    for (H const& alias : {Loose("Soils[1].Cohesion"), zo::Find("Untagged")}) {
        Persist const traits = alias->GetPersistTraits();
        EXPECT_EQ(traits.Type, Persist::No);
        EXPECT_EQ(traits.Tag, L"Cohesion");
    }
    EXPECT_EQ(Loose("Soils[1].Cohesion")->GetPersistTraits().TagName, L"Soils[2].Cohesion");
    EXPECT_EQ(zo::Find("Untagged")->GetPersistTraits().TagName, L"Soils[1].Cohesion");
}

TEST_F(AliasTest, CarriesTheTagOfTheNextAliasThatHasOne) {
    ASSERT_TRUE(Succeeds(embankment.registry->Insert("Inner", Loose("CoreCohesion"))));
    Persist const traits = Loose("Inner")->GetPersistTraits();
    EXPECT_EQ(traits.Tag, L"CoreCohesion");
    EXPECT_EQ(traits.TagName, L"CoreCohesion");
}

// ---- Without a source

TEST_F(AliasTest, ValidateTellsWhetherThereIsASource) {
    EXPECT_TRUE(AsAlias(zo::Find("Water")).Validate());
    H const gone = Loose("Results.Slips[0].Radius");
    EXPECT_TRUE(AsAlias(gone).Validate());
    embankment.ShowResults(false);
    EXPECT_FALSE(AsAlias(gone).Validate());
    EXPECT_FALSE(AsAlias(gone).Redirect()) << "nothing is kept";
    EXPECT_TRUE(gone->IsUndefined());
}

struct Dangling {
    char const* what;
    std::function<H()> make;
};

void PrintTo(Dangling const& dangling, std::ostream* out) { *out << dangling.what; }

/// An alias that leads nowhere, whatever the reason.
class DanglingAliasTest : public testing::TestWithParam<Dangling> {
protected:
    rows::OwnRegistry registry;
};

TEST_P(DanglingAliasTest, SaysSoInEveryOperation) {
    H const alias = GetParam().make();
    htl::status const failure = zo::ZOError::not_found(AsAlias(alias).RedirectName());
    double number = 1.5;
    __int64 whole = 2;
    bool flag = true;
    std::wstring text = L"as before";
    EXPECT_TRUE(FailsAs(alias->Set(number), failure));
    EXPECT_TRUE(FailsAs(alias->Set(whole), failure));
    EXPECT_TRUE(FailsAs(alias->Set(flag), failure));
    EXPECT_TRUE(FailsAs(alias->Set(text), failure));
    EXPECT_TRUE(FailsAs(alias->Get(number), failure));
    EXPECT_TRUE(FailsAs(alias->Get(whole), failure));
    EXPECT_TRUE(FailsAs(alias->Get(flag), failure));
    EXPECT_TRUE(FailsAs(alias->Get(text), failure));
    EXPECT_EQ(number, 1.5);
    EXPECT_EQ(whole, 2);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, L"as before");
    EXPECT_TRUE(FailsAs(alias->Assign(Number(1)), failure));
    EXPECT_TRUE(FailsAs(alias->SetLength(4), failure));
    zo::ZOAccessValueTypeTrait<bool> question(DoubleTraits().AsAtomic()->isDefault);
    EXPECT_TRUE(FailsAs(NodeAccess::CallValueTypeTrait(*alias, question), failure));
}

TEST_P(DanglingAliasTest, IsAnUndefinedNodeWithoutTypeOrChildren) {
    H const alias = GetParam().make();
    EXPECT_TRUE(alias->IsUndefined());
    EXPECT_FALSE(alias->IsDefault());
    EXPECT_FALSE(alias->GetDataTraits());
    EXPECT_EQ(alias->Length(), 0u);
    EXPECT_TRUE(Succeeds(alias->Verify()));
    EXPECT_EQ(alias->GetPersistTraits().Type, Persist::No);
    EXPECT_EQ(alias->Tag(), L"");
    alias->Clear();
    EXPECT_FALSE(alias->begin().current);
    EXPECT_FALSE(NodeAccess::GetSubZO(*alias, "Name"));
    EXPECT_FALSE(AsAlias(alias).Validate());
}

TEST_P(DanglingAliasTest, EndsAWalkThatIsAtIt) {
    zo::ZOFwrdIterator position;
    position.parent = GetParam().make();
    position.current = Number(1);
    ++position;
    EXPECT_FALSE(position.current);
}

INSTANTIATE_TEST_SUITE_P(
    All, DanglingAliasTest,
    testing::Values(
        Dangling{"NothingUnderTheName", [] { return Loose("Soils[7].Cohesion"); }},
        Dangling{"EmptyName", [] { return Loose(""); }}, Dangling{"MalformedName", [] { return Loose("..[]"); }},
        Dangling{"AbsoluteToNothing", [] { return H(new ZOAliasAbsolute("Soils", npos, nullptr)); }},
        Dangling{"RowOutOfRange", [] { return H(new ZOAlias("Soils", 1u << 30, zo::ZORegistry::Instance())); }},
        Dangling{"TagToNothing", [] { return H(new ZOAliasAbsoluteSlow(L"Soils[1]", npos, nullptr)); }},
        Dangling{"EmptyTag", [] { return H(new ZOAliasAbsoluteSlow(L"", npos, nullptr)); }},
        Dangling{"TagOfARowOutOfRange", [] { return H(new ZOAliasAbsoluteSlow(L"A", 1u << 30, nullptr)); }},
        Dangling{"RelativeWithoutName", [] { return H(new ZOAliasRelative(L"@Parent.Name", npos, nullptr)); }},
        Dangling{"RelativeToNothing", [] { return H(new ZOAliasRelative(L"Name", npos, zo::ZORegistry::Instance())); }},
        Dangling{"EmptyRelativeTag", [] { return H(new ZOAliasRelative(L"", npos, nullptr)); }}),
    [](auto const& instance) { return instance.param.what; });

TEST(UnfinishedRegistryTest, AnAliasMayBeRegisteredBeforeItsSourceAndHaveChildren) {
    rows::OwnRegistry registry;
    double value = 2.5;
    registry.Add("Short", H(new ZOAlias("Long", npos, nullptr)), L"Short", rows::StructureTraits());
    EXPECT_FALSE(AsAlias(zo::Find("Short")).Validate());
    registry.AddPlain("Short.Child", L"Child");
    registry.Add("Long", ValuePrototype<double>(DoubleTraits()), L"Long", DoubleTraits(), &value);
    registry->OnPostRegistration();
    EXPECT_EQ(TextOf(zo::Find("Short")), L"2.5");
}

// ---- Aliases of clients, and lifetimes

/// Shows cohesion in pascals.
class InPascal : public ZOAlias {
public:
    using ZOAlias::Get;
    using ZOAlias::ZOAlias;
    htl::status Get(double& value) override {
        htl::status result = ZOAlias::Get(value);
        value *= 1000;
        return result;
    }
};

TEST_F(AliasTest, AnAliasToAClientsAliasAsksThatOne) {
    ASSERT_TRUE(Succeeds(embankment.registry->Insert("Pascal", H(new InPascal("Soils[0].Cohesion", npos, nullptr)))));
    double value = 0;
    ASSERT_TRUE(Succeeds(Loose("Pascal")->Get(value)));
    EXPECT_EQ(value, 25000.0);
}

TEST_F(AliasTest, OutlivesItsTransaction) {
    H alias;
    {
        auto const transaction = embankment.registry->CreateTransaction();
        alias = transaction->AssociateAlias("Short", "Soils[0].Cohesion");
        ASSERT_TRUE(alias);
        EXPECT_EQ(TextOf(alias), L"25");
    }
    EXPECT_EQ(alias->Name(), "");
    EXPECT_EQ(alias->Owner(), nullptr);
    EXPECT_EQ(TextOf(alias), L"25") << "from the staged node, which it keeps";
    EXPECT_FALSE(NodeAccess::GetSubZO(*alias, "Name"));
}

TEST(AliasLifetimeTest, OutlivesItsRegistryAndItsSource) {
    std::vector<H> aliases;
    {
        rows::OwnRegistry registry;
        double value = 2.5;
        registry.Add("Long", ValuePrototype<double>(DoubleTraits()), L"Long", DoubleTraits(), &value);
        registry.Add("Plain", H(new ZOAlias("Long", npos, nullptr)), L"Plain", rows::StructureTraits());
        registry.Add("Slow", H(new ZOAliasAbsoluteSlow(L"Long", npos, nullptr)), L"Slow", rows::StructureTraits());
        registry.Add("Near", H(new ZOAliasRelative(L"@Parent.Long", npos, nullptr)), L"Near", rows::StructureTraits());
        registry->OnPostRegistration();
        aliases = {zo::Find("Plain"), zo::Find("Slow"), zo::Find("Near")};
        for (H const& alias : aliases) EXPECT_EQ(TextOf(alias), L"2.5");
        registry->InvalidateMemory("");
    }
    rows::OwnRegistry const other;
    for (H const& alias : aliases) {
        EXPECT_EQ(alias->Owner(), nullptr);
        EXPECT_TRUE(alias->IsUndefined());
        EXPECT_FALSE(AsAlias(alias).Validate());
    }
}

TEST(AliasRegistratorTest, RegistersAnAliasUnderTheStoresName) {
    rows::OwnRegistry registry;
    double value = 2.5;
    registry.Add("Long", ValuePrototype<double>(DoubleTraits()), L"Long", DoubleTraits(), &value);
    zo::ZOAliasRegistrator const registrator(H(new ZOAlias("Long", npos, nullptr)),
                                             htl::handle<zo::IODS>(new zo::ODSName("Short")),
                                             Persist(Persist::No, L"Kurz"));
    EXPECT_EQ(TextOf(zo::Find("Short")), L"2.5");
    EXPECT_EQ(zo::FullTag("Short"), L"Kurz");
    meta::MetaDataTraits const& traits = zo::DataTraits(rows::RowOf("Short"));
    ASSERT_NE(traits.AsStructure(), nullptr);
    EXPECT_TRUE(traits.Descriptor()->visible(nullptr));
    EXPECT_TRUE(traits.Descriptor()->editable(nullptr));
}

/// The least that a client's own alias has to say.
class Least final : public ZOAliasBase {
public:
    explicit Least(std::string source) : ZOAliasBase(npos, nullptr), source(std::move(source)) {}
    std::string RedirectName() const override { return source; }
    H Redirect() const override { return zo::Find(source); }
    IZO* Clone() override { return new Least(*this); }
    IZO* EmptyClone() override { return new Least(*this); }

private:
    std::string source;
};

TEST_F(AliasTest, AnAliasThatKeepsNothingIsValidWhileItHasASource) {
    H const friction(new Least("Soils[2].Friction"));
    EXPECT_EQ(TextOf(friction), L"27");
    EXPECT_TRUE(AsAlias(friction).Validate());
    EXPECT_TRUE(Succeeds(zo::Find("Soils")->SetLength(2))) << "no view is held";
    EXPECT_FALSE(AsAlias(friction).Validate());
}

} // namespace
