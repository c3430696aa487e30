// Triggers of calculations, nodes over function objects, the parameter that governs a value, and registered nodes.
#include "Common/present/Calculated.h"

#include "Common/extinfo/ExtendedInfo.h"
#include "Common/model/ZOAtomicData.h"
#include "Common/model/ZOWrapper.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/xml/Write.h"
#include "tests/present/Levee.h" // for the words of DataParamType
#include "tests/registry/Rows.h"

#include <kit/kit.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using embankment::TextOf;
using zo::Find;
using zo::H;
using zo::IsTemplate;
using zo::IZO;
using zo::LookupParam;
using zo::UpdateCalculatedValues;

/// In metres.
struct Point {
    double x = 0;
    double y = 0;
};
/// A pond between corners. Its area is worked out when somebody asks for it.
struct Pond {
    std::wstring name;
    std::vector<Point> corners;
    double area = 0; // m2, as of the last calculation
    int started = 0;
    int calculations = 0;

    int AtRest() const { return 0; }
    void Start(int on) {
        started = on;
        if (!on) return;
        ++calculations;
        double twice = 0;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            Point const& a = corners[i];
            Point const& b = corners[(i + 1) % corners.size()];
            twice += a.x * b.y - b.x * a.y;
        }
        area = twice / 2;
    }
    double Area() const { return area; }
};
/// Its trigger goes by a name of its own, and a field that is none bears the trigger's name.
struct Canal {
    int calculations = 0;
    int note = 0;

    int AtRest() const { return 0; }
    void Start(int on) { calculations += on; }
};
/// Its trigger can't be written.
struct Weir {
    int AtRest() const { return 0; }
};
/// Its trigger keeps what is written.
struct Sluice {
    int calculations = 0;
    int state = 0;

    int State() const { return state; }
    void Start(int on) {
        state = on;
        calculations += on;
    }
};

struct Curve {
    std::wstring name;
    DataParamType param = DataParamType::None;
    std::vector<Point> points;
};
struct Stage {
    std::wstring name;
    std::vector<Curve> curves;
};
struct Site {
    DataParamType param = DataParamType::Modulus;
    int number = 9;
    htl::Int64 large = 0;
    std::wstring text = L"cohesion";
    std::wstring digits = L"7";
    DataParamType tagged = DataParamType::Cohesion;
    std::vector<Stage> stages{{L"Filling", {{L"Strength", DataParamType::Cohesion, {{0, 5}, {10, 8}}}}},
                              {L"Emptying", {{L"Free", DataParamType::None, {{0, 1}}}}}};
};

struct Model {
    Pond pond{L"North", {{0, 0}, {30, 0}, {30, 20}, {0, 20}}};
    Canal canal;
    Weir weir;
    Sluice sluice;
    Site site;
};

void Declare(zo::kit::Kit& kit, Model& model) {
    using zo::kit::Kind;
    using zo::kit::Persist;
    constexpr auto trigger = L"UpdateCalculatedValues";
    kit.Record<Point>("Point").Field<&Point::x>("X", L"X").Field<&Point::y>("Y", L"Y");
    kit.Record<Pond>("Pond")
        .Field<&Pond::name>("Name", L"Name")
        .Array<&Pond::corners>("Corners", L"Corners[Corner]")
        .Computed<&Pond::Area>("Area", L"Area", {.unit = Kind::Area})
        .Property<&Pond::AtRest, &Pond::Start>("Update", trigger, {.persist = Persist::Never});
    kit.Record<Canal>("Canal")
        .Property<&Canal::AtRest, &Canal::Start>("Trigger", trigger, {.persist = Persist::Never})
        .Field<&Canal::note>("UpdateCalculatedValues", L"Note");
    kit.Record<Weir>("Weir").Computed<&Weir::AtRest>("Update", trigger);
    kit.Record<Sluice>("Sluice").Property<&Sluice::State, &Sluice::Start>("Update", trigger);
    kit.Record<Curve>("Curve")
        .Field<&Curve::name>("Name", L"Name")
        .Field<&Curve::param>("Param", L"Param")
        .Array<&Curve::points>("Points", L"Points[Point]");
    kit.Record<Stage>("Stage")
        .Field<&Stage::name>("Name", L"Name")
        .Array<&Stage::curves>("Curves", L"Curves[Curve]")
        .Alias("Site", L"Site", L"@Parent@Parent@Parent"); // around it
    kit.Record<Site>("Site")
        .Field<&Site::param>("Param", L"Param")
        .Field<&Site::number>("Number", L"Number")
        .Field<&Site::large>("Large", L"Large")
        .Field<&Site::text>("Text", L"Text")
        .Field<&Site::digits>("Digits", L"Digits")
        .Field<&Site::tagged>("Tagged", L"Governs")
        .Alias("Other", L"Other", L"@Parent.Governs")
        .Alias("Gone", L"Gone", L"@Parent.Stages.[9].Name")
        .Array<&Site::stages>("Stages", L"Stages[Stage]");
    kit.Branch<Pond>("Pond", L"Pond", [&model] { return &model.pond; });
    kit.Branch<Canal>("Canal", L"Canal", [&model] { return &model.canal; });
    kit.Branch<Weir>("Weir", L"Weir", [&model] { return &model.weir; });
    kit.Branch<Sluice>("Sluice", L"Sluice", [&model] { return &model.sluice; });
    kit.Branch<Site>("Site", L"Site", [&model] { return &model.site; });
    kit.Branch<DataParamType>("Param", L"Param", [&model] { return &model.site.tagged; });
    kit.Alias("Basin", L"Basin", "Pond");
}

/// A registry, current for as long as this lives.
class Current {
public:
    Current() : registry(new zo::ZORegistry), previous(zo::ZORegistry::SetInstance(registry.get())) {}
    Current(Current const&) = delete;
    Current& operator=(Current const&) = delete;
    ~Current() { zo::ZORegistry::SetInstance(previous); }

    htl::handle<zo::ZORegistry> const registry;

private:
    zo::ZORegistry* previous;
};

class SiteTest : public testing::Test {
protected:
    SiteTest() {
        zo::kit::Report const report =
            zo::kit::Register({{"Site", [this](zo::kit::Kit& kit) { Declare(kit, model); }}});
        EXPECT_TRUE(report.IsClean()) << str::as_cstring(report.Text());
    }

    static std::wstring Saved() {
        std::wstring document;
        EXPECT_TRUE(Succeeds(zo::xml::StringWrite(document, {1, 0})));
        return document;
    }

    Model model;
    Current current;
};

using TriggerTest = SiteTest;

TEST_F(TriggerTest, BringsWhatIsWorkedOutUpToDate) {
    EXPECT_EQ(TextOf(Find("Pond.Area")), L"0");
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Pond"))));
    EXPECT_EQ(TextOf(Find("Pond.Area")), L"600");
    EXPECT_TRUE(Succeeds(Find("Pond.Corners[1].X")->Set(50)));
    EXPECT_TRUE(Succeeds(Find("Pond.Corners[2].X")->Set(50)));
    EXPECT_EQ(TextOf(Find("Pond.Area")), L"600");
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Pond"))));
    EXPECT_EQ(TextOf(Find("Pond.Area")), L"1000");
}

TEST_F(TriggerTest, IsWrittenWithOne) {
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Pond"))));
    EXPECT_EQ(model.pond.started, 1);
    EXPECT_EQ(model.pond.calculations, 1);
}

TEST_F(TriggerTest, ThatIsAtRestAgainIsWrittenEachTime) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Pond"))));
    EXPECT_EQ(model.pond.calculations, 3);
}

TEST_F(TriggerTest, ThatReadsAsOneIsNotWrittenAgain) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Sluice"))));
    EXPECT_EQ(model.sluice.calculations, 1);
}

TEST_F(TriggerTest, ObjectWithoutOneSucceedsAndNothingIsWritten) {
    std::wstring const before = Saved();
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Site"))));
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Pond.Name"))));
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Pond.Corners"))));
    EXPECT_EQ(Saved(), before);
    EXPECT_EQ(model.pond.calculations + model.canal.calculations + model.sluice.calculations, 0);
}

TEST_F(TriggerTest, NoObjectHasNothingToUpdate) {
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(H())));
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Site.Gone"))));
}

TEST_F(TriggerTest, FailureOfTheWriteIsPassedOn) {
    EXPECT_TRUE(FailsAs(UpdateCalculatedValues(Find("Weir")), Find("Weir.Update")->Set(1)));
    EXPECT_TRUE(FailsAs(UpdateCalculatedValues(Find("Weir")), zo::ZOError::not_supported("Update")));
}

TEST_F(TriggerTest, IsKnownByItsTag) {
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Canal"))));
    EXPECT_EQ(model.canal.calculations, 1);
    EXPECT_EQ(model.canal.note, 0);
}

TEST_F(TriggerTest, OfAnAliasIsThatOfItsSource) {
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(Find("Basin"))));
    EXPECT_EQ(model.pond.area, 600);
}

TEST_F(TriggerTest, InATransactionRunsWithTheCommit) {
    htl::handle<zo::ZOTransaction> const edit = zo::ZORegistry::Instance()->CreateTransaction();
    EXPECT_TRUE(Succeeds(edit->Find("Pond.Corners[1].X")->Set(50)));
    EXPECT_TRUE(Succeeds(edit->Find("Pond.Corners[2].X")->Set(50)));
    EXPECT_TRUE(Succeeds(UpdateCalculatedValues(edit->Find("Pond"))));
    EXPECT_EQ(model.pond.calculations, 0);
    EXPECT_TRUE(Succeeds(edit->Commit("", "")));
    EXPECT_EQ(model.pond.calculations, 1);
    EXPECT_EQ(model.pond.area, 1000);
}

/// A calculation of the application.
class Drawdown : public IFn {
public:
    int runs = 0;
};

/// The application's node over one of its functions.
class FunctionView : public zo::ZOWrapperBase {
public:
    FunctionView(std::size_t regID, zo::ZOSet* owner, void* function, htl::handle<zo::ZOMemMgr> const& manager)
        : ZOWrapperBase(regID, owner, rows::StructureTraits(), function, manager) {}

    IZO* Clone() override { return RemapClone(Memory(), {}); }
    IZO* RemapClone(void* function, htl::handle<zo::ZOMemMgr> const& manager) override {
        // As careless as an application may be: the view comes with the owner of what it was made from.
        return new FunctionView(RegID(), Owner(), function, manager);
    }
    htl::status Run() override {
        ++static_cast<Drawdown*>(static_cast<IFn*>(Memory()))->runs;
        return {};
    }
};

class FunctionNodeTest : public testing::Test {
protected:
    /// Registers a row and makes it the template of functions.
    H RegisterTemplate(H const& prototype) {
        current.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODSName("Function")), prototype, {},
                                     rows::StructureTraits());
        zo::ZOTypeTemplate::Register(typeid(IFn), prototype);
        current.registry->OnPostRegistration();
        return prototype;
    }
    H RegisterFunctions() {
        return RegisterTemplate(H(new FunctionView(IZO::npos, current.registry.get(), nullptr, {})));
    }

    Drawdown drawdown;
    Current current;
};

TEST_F(FunctionNodeTest, RunsTheFunction) {
    RegisterFunctions();
    H const node = zo::GetAtomicWrapper<IFn>(&drawdown);
    ASSERT_TRUE(node);
    EXPECT_TRUE(Succeeds(node->Run()));
    EXPECT_EQ(drawdown.runs, 1);
}

TEST_F(FunctionNodeTest, HasTheRowOfTheTemplate) {
    H const prototype = RegisterFunctions();
    H const node = zo::GetAtomicWrapper<IFn>(&drawdown);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->RegID(), prototype->RegID());
    EXPECT_NE(node, prototype);
    EXPECT_EQ(zo::DataTraits(node->RegID()).TypeName(), "IFn");
}

TEST_F(FunctionNodeTest, BelongsToNoSetAndHasNoMemoryManager) {
    RegisterFunctions();
    H const node = zo::GetAtomicWrapper<IFn>(&drawdown);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->Owner(), nullptr);
    EXPECT_EQ(node->OwnerID(), IZO::npos);
    EXPECT_EQ(node->Name(), "");
    auto const& wrapper = dynamic_cast<zo::IZOWrapper const&>(*node);
    EXPECT_FALSE(wrapper.Manager());
    EXPECT_EQ(wrapper.Memory(), static_cast<void*>(static_cast<IFn*>(&drawdown)));
}

TEST_F(FunctionNodeTest, EachIsANodeOfItsOwn) {
    RegisterFunctions();
    EXPECT_NE(zo::GetAtomicWrapper<IFn>(&drawdown), zo::GetAtomicWrapper<IFn>(&drawdown));
}

TEST_F(FunctionNodeTest, WithoutATemplateThereIsNone) {
    current.registry->OnPostRegistration();
    EXPECT_FALSE(zo::GetAtomicWrapper<IFn>(&drawdown));
}

TEST_F(FunctionNodeTest, ATemplateThatWrapsNothingGivesNone) {
    RegisterTemplate(H(new rows::Plain));
    EXPECT_FALSE(zo::GetAtomicWrapper<IFn>(&drawdown));
}

TEST_F(FunctionNodeTest, TheTemplateIsThatOfTheCurrentRegistry) {
    RegisterFunctions();
    Current const other;
    EXPECT_FALSE(zo::GetAtomicWrapper<IFn>(&drawdown));
}

using ParameterTest = SiteTest;

TEST_F(ParameterTest, BesideTheNodeGovernsIt) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0].Name"), "Param"), DataParamType::Cohesion);
}

TEST_F(ParameterTest, FartherUpGovernsWhatHasNoneNearer) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0].Points[1].Y"), "Param"), DataParamType::Cohesion);
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Name"), "Param"), DataParamType::Modulus);
}

TEST_F(ParameterTest, OfItselfIsItsOwnSibling) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0].Param"), "Param"), DataParamType::Cohesion);
}

TEST_F(ParameterTest, BesideTheNodeIsNotInIt) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0]"), "Param"), DataParamType::Modulus);
}

TEST_F(ParameterTest, NearestThatIsNoneEndsTheSearch) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[1].Curves[0].Points[0].X"), "Param"), DataParamType::None);
}

TEST_F(ParameterTest, NoLevelHasGivesNone) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0].Points[1].Y"), "Stiffness"), DataParamType::None);
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0].Points[1].Y"), ""), DataParamType::None);
    EXPECT_EQ(LookupParam(H(), "Param"), DataParamType::None);
}

TEST_F(ParameterTest, BesideTopLevelNodesIsNotSeen) {
    ASSERT_EQ(TextOf(Find("Param")), L"7");
    EXPECT_EQ(LookupParam(Find("Pond.Name"), "Param"), DataParamType::None);
    EXPECT_EQ(LookupParam(Find("Pond"), "Param"), DataParamType::None);
    EXPECT_EQ(LookupParam(zo::ZORegistry::Instance()->Root(), "Param"), DataParamType::None);
}

TEST_F(ParameterTest, IsKnownByItsName) {
    EXPECT_EQ(LookupParam(Find("Site.Stages"), "Tagged"), DataParamType::Cohesion);
    EXPECT_EQ(LookupParam(Find("Site.Stages"), "Governs"), DataParamType::None);
}

TEST_F(ParameterTest, MayBeAnAliasOfTheField) {
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Name"), "Other"), DataParamType::Cohesion);
}

TEST_F(ParameterTest, OfAnAliasIsLookedForWhereTheAliasStands) {
    H const alias = Find("Site.Stages[0].Site");
    ASSERT_EQ(zo::GetSource(alias)->Name(), "Site");
    EXPECT_EQ(LookupParam(alias, "Param"), DataParamType::Modulus);
    EXPECT_EQ(LookupParam(zo::GetSource(alias), "Param"), DataParamType::None);
}

TEST_F(ParameterTest, IsReadFromAnyFieldThatHoldsANumber) {
    EXPECT_EQ(LookupParam(Find("Site.Stages"), "Number"), DataParamType::Modulus);
    EXPECT_EQ(LookupParam(Find("Site.Stages"), "Digits"), DataParamType::Cohesion);
}

TEST_F(ParameterTest, ThatCanNotBeReadIsNone) {
    EXPECT_EQ(LookupParam(Find("Site.Number"), "Text"), DataParamType::None);
    EXPECT_EQ(LookupParam(Find("Site.Number"), "Stages"), DataParamType::None);
    EXPECT_EQ(LookupParam(Find("Site.Number"), "Gone"), DataParamType::None);
}

TEST_F(ParameterTest, ThatIsNoNumberOf32BitsIsNone) {
    model.site.large = (htl::Int64(1) << 32) + 7;
    EXPECT_EQ(LookupParam(Find("Site.Number"), "Large"), DataParamType::None);
    model.site.large = std::numeric_limits<htl::Int64>::min();
    EXPECT_EQ(LookupParam(Find("Site.Number"), "Large"), DataParamType::None);
    model.site.large = 7;
    EXPECT_EQ(LookupParam(Find("Site.Number"), "Large"), DataParamType::Cohesion);
}

TEST(ParameterKindTest, ReadsTheParameterAndNotTheNumberThatTheApplicationKnowsItBy) {
    auto record = std::make_shared<meta::MetaTraitsAtomic>(*meta::AtomicTraits<DataParamType>().AsAtomic());
    record->toInt64 = [](void const* value, htl::Int64& out) {
        out = 100 + static_cast<htl::Int64>(*static_cast<DataParamType const*>(value));
        return htl::status();
    };
    meta::MetaDataTraits const traits{std::shared_ptr<meta::MetaTraits const>(record)};
    struct Levee {
        DataParamType param = DataParamType::Cohesion;
    } levee;
    rows::OwnRegistry registry;
    registry.Add("Levee", embankment::StructPrototype(rows::StructureTraits()), L"Levee", rows::StructureTraits(),
                 &levee);
    registry.Add("Levee.Param", H(new zo::ZOWrapperAtomic<DataParamType>(IZO::npos, nullptr, traits, nullptr, {})),
                 L"Param", traits);
    registry.Add("Levee.Other", H(new zo::ZOAlias("Levee.Param", IZO::npos, nullptr)), L"Other", traits);
    registry->OnPostRegistration();
    ASSERT_EQ(TextOf(Find("Levee.Param")), L"7");
    htl::Int64 number = 0;
    ASSERT_TRUE(Succeeds(Find("Levee.Param")->Get(number)));
    ASSERT_EQ(number, 107);
    EXPECT_EQ(LookupParam(Find("Levee.Param"), "Param"), DataParamType::Cohesion);
    EXPECT_EQ(LookupParam(Find("Levee.Param"), "Other"), DataParamType::Cohesion);
}

TEST(ParameterPathTest, ThatLeadsInACircleEnds) {
    rows::OwnRegistry registry;
    H const group = registry.AddPlain("Group", L"Group");
    registry.AddPlain("Group.Part", L"Part");
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(registry->Insert("Group.Part.Again", group)));
    ASSERT_EQ(zo::GetParent(zo::GetParent(group, 1), 1), group);
    EXPECT_EQ(LookupParam(group, "Param"), DataParamType::None);
}

TEST_F(ParameterTest, StagedInATransactionGovernsWhatIsStagedThere) {
    htl::handle<zo::ZOTransaction> const edit = zo::ZORegistry::Instance()->CreateTransaction();
    EXPECT_TRUE(Succeeds(edit->Find("Site.Stages[0].Curves[0].Param")->Set(9)));
    EXPECT_EQ(LookupParam(edit->Find("Site.Stages[0].Curves[0].Points[1].Y"), "Param"), DataParamType::Modulus);
    EXPECT_EQ(LookupParam(Find("Site.Stages[0].Curves[0].Points[1].Y"), "Param"), DataParamType::Cohesion);
}

class TemplateTest : public SiteTest {
protected:
    /// A row whose node holds its value itself, at the top level.
    static H RegisterCounter(zo::ZORegistry& registry) {
        H const node(new zo::ZOAtomicData<int>(IZO::npos, &registry, meta::AtomicTraits<int>(), 3));
        registry.RegisterZO(htl::handle<zo::IODS>(new zo::ODS("Counter", true, true)), node,
                            meta::MetaPersistTraits(meta::MetaPersistTraits::No, L"Counter"),
                            meta::AtomicTraits<int>());
        registry.OnPostRegistration();
        return node;
    }
};

TEST_F(TemplateTest, TopLevelNodeThatIsNoViewIsItsOwnTemplate) {
    RegisterCounter(*current.registry);
    H const counter = Find("Counter");
    ASSERT_TRUE(counter);
    EXPECT_TRUE(IsTemplate(counter));
    EXPECT_TRUE(IsTemplate(counter.get()));
    EXPECT_TRUE(IsTemplate(Find("Basin"))); // an alias
    EXPECT_TRUE(IsTemplate(current.registry->Root()));
}

TEST_F(TemplateTest, CloneIsNone) {
    RegisterCounter(*current.registry);
    H const clone(Find("Counter")->Clone());
    EXPECT_FALSE(IsTemplate(clone));
    EXPECT_FALSE(IsTemplate(clone.get()));
    EXPECT_FALSE(IsTemplate(H(Find("Basin")->Clone())));
}

TEST_F(TemplateTest, ViewOfMemoryIsNoneAndWhatItWasMadeFromIsOne) {
    EXPECT_FALSE(IsTemplate(Find("Pond")));
    EXPECT_FALSE(IsTemplate(Find("Pond.Name")));
    EXPECT_TRUE(IsTemplate(zo::GetTemplate("Pond")));
    EXPECT_TRUE(IsTemplate(zo::GetTemplate("Pond.Name")));
}

TEST_F(TemplateTest, NodeWithoutARowIsNone) {
    EXPECT_FALSE(IsTemplate(H(new zo::ZOAtomicData<int>(IZO::npos, nullptr, meta::AtomicTraits<int>(), 3))));
    EXPECT_FALSE(IsTemplate(H()));
    EXPECT_FALSE(IsTemplate(static_cast<IZO const*>(nullptr)));
}

TEST_F(TemplateTest, NodeOfAnotherRegistryIsNone) {
    H const counter = RegisterCounter(*current.registry);
    Current const other;
    EXPECT_FALSE(IsTemplate(counter)); // this registry has no such row
    zo::ZORegistry::SetInstance(current.registry.get());
    EXPECT_TRUE(IsTemplate(counter));
}

} // namespace
