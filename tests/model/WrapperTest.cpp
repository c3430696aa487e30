#include "Common/model/ZOArray.h"
#include "Common/model/ZOWrapper.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/registry/SetImpl.h"
#include "tests/fixtures/Embankment.h"

#include "support/describe.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>

namespace {

using namespace embankment;
using zo::Find;
using zo::H;
using zo::IZO;
using zo::IZOWrapper;
using zo::impl::NodeAccess;
using zo::ZOError::not_found;

class WrapperTest : public EmbankmentTest {
protected:
    std::vector<Soil>& Soils() { return embankment.model.soils; }
    static IZOWrapper& Wrapper(H const& node) { return dynamic_cast<IZOWrapper&>(*node); }
    static std::size_t RowOf(char const* name) { return zo::GetTemplate(name)->RegID(); }
    std::size_t& Hint() { return embankment.registry->Tables()->findHint; }
};

TEST_F(WrapperTest, AViewFollowsTheMemory) {
    H const cohesion = Find("Soils[0].Cohesion");
    Soils()[0].cohesion = 30;
    EXPECT_EQ(TextOf(cohesion), L"30");
    EXPECT_TRUE(Succeeds(cohesion->Set(31)));
    EXPECT_EQ(Soils()[0].cohesion, 31);
}

TEST_F(WrapperTest, AClonesValueStaysWhenTheMemoryChanges) {
    H const clone(Find("Soils[0].Cohesion")->Clone());
    EXPECT_TRUE(dynamic_cast<zo::ZOAtomicData<double>*>(clone.get()));
    Soils()[0].cohesion = 30;
    EXPECT_EQ(TextOf(clone), L"25");
    EXPECT_TRUE(Succeeds(clone->Set(1)));
    EXPECT_EQ(Soils()[0].cohesion, 30);
}

TEST_F(WrapperTest, AnEmptyCloneIsTheDefault) {
    H const empty(Find("Soils[0].Cohesion")->EmptyClone());
    EXPECT_EQ(TextOf(empty), L"0");
}

TEST_F(WrapperTest, EachMemberLiesAtItsOffset) {
    EXPECT_EQ(Wrapper(Find("Soils[1]")).Memory(), &Soils()[1]);
    EXPECT_EQ(Wrapper(Find("Soils[1].Name")).Memory(), &Soils()[1].name);
    EXPECT_EQ(Wrapper(Find("Soils[1].UnitWeight")).Memory(), &Soils()[1].unitWeight);
    EXPECT_EQ(Wrapper(Find("Soils[1].Anisotropy")).Memory(), &Soils()[1].anisotropy);
    EXPECT_EQ(Wrapper(Find("Soils[1].Anisotropy[2]")).Memory(), &Soils()[1].anisotropy[2]);
}

TEST_F(WrapperTest, AnEnumerationWritesItsOwnBytesAlone) {
    EXPECT_TRUE(Succeeds(Find("Soils[0].Drainage")->Set(L"Partial")));
    EXPECT_EQ(Soils()[0].drainage, Drainage::Partial);
    EXPECT_EQ(Soils()[0].color, 255u);
    EXPECT_TRUE(FailsAs(Find("Soils[0].Drainage")->Set(L"300"), zo::ZOError::not_recognized(L"300")));
    EXPECT_EQ(Soils()[0].drainage, Drainage::Partial);
}

TEST_F(WrapperTest, ANumberThatAnEnumerationCantHoldIsRefusedAlsoWhileNothingIsChecked) {
    zo::TrackingSuspension const suspended(*embankment.registry->Impl());
    EXPECT_TRUE(FailsAs(Find("Soils[0].Drainage")->Set(L"300"), zo::ZOError::not_recognized(L"300")));
    EXPECT_EQ(Soils()[0].drainage, Drainage::Undrained);
}

TEST_F(WrapperTest, APrototypeIsUndefinedAndItsViewIsNot) {
    for (char const* name : {"Soils.[].Cohesion", "Soils.[]", "Soils.[].Anisotropy", "Project"}) {
        SCOPED_TRACE(name);
        H const prototype(zo::GetTemplate(name));
        EXPECT_TRUE(prototype->IsUndefined());
    }
    H const view(Wrapper(H(zo::GetTemplate("Soils.[].Cohesion"))).RemapClone(&Soils()[0].cohesion, {}));
    EXPECT_FALSE(view->IsUndefined());
    EXPECT_EQ(TextOf(view), L"25");
    H const array(Wrapper(H(zo::GetTemplate("Soils.[].Anisotropy"))).RemapClone(&Soils()[0].anisotropy, {}));
    EXPECT_FALSE(array->IsUndefined());
}

TEST_F(WrapperTest, EveryRegisteredWrapperKnowsThatItIsAPrototype) {
    auto const& tables = *embankment.registry->Tables();
    int wrappers = 0;
    for (H const& node : tables.nodes) {
        if (auto const* const value = dynamic_cast<zo::ZOWrapperBase const*>(node.get())) {
            EXPECT_TRUE(value->IsPrototype());
            ++wrappers;
        } else if (auto const* const array = dynamic_cast<zo::ZOArrayWrapper const*>(node.get())) {
            EXPECT_TRUE(array->IsPrototype());
            ++wrappers;
        }
    }
    EXPECT_GT(wrappers, 30);
    EXPECT_FALSE(dynamic_cast<zo::ZOWrapperBase&>(*Find("Soils[0].Cohesion")).IsPrototype());
    EXPECT_FALSE(dynamic_cast<zo::ZOArrayWrapper&>(*Find("Soils")).IsPrototype());
}

TEST_F(WrapperTest, APrototypeNeverReadsItsOffset) {
    H const value(zo::GetTemplate("Soils.[].Cohesion"));
    H const clone(value->Clone());
    EXPECT_EQ(TextOf(clone), L"0");
    H const structure(zo::GetTemplate("Soils.[]"));
    structure->Clear();
    EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*structure, "Cohesion")), L"0");
    H const fixed(zo::GetTemplate("Soils.[].Anisotropy"));
    EXPECT_EQ(fixed->Length(), 3u);
    H const fixedClone(fixed->Clone());
    EXPECT_EQ(fixedClone->Length(), 3u);
    H const resizable(zo::GetTemplate("Regions.[].Points"));
    EXPECT_EQ(resizable->Length(), 0u);
    EXPECT_TRUE(resizable->IsDefault());
    resizable->Clear();
    EXPECT_TRUE(resizable->begin() == resizable->end());
    EXPECT_TRUE(NodeAccess::Resize(*resizable, 2).IsError());
    EXPECT_TRUE(dynamic_cast<zo::ZOArray&>(*resizable).AddNew() == resizable->end());
    EXPECT_TRUE(dynamic_cast<zo::ZOArray&>(*resizable).RemoveAt(0).IsError());
}

TEST_F(WrapperTest, RegistrationBringsTheTraitsOfTheRow) {
    H const prototype = ValuePrototype<double>(meta::AtomicTraits<double>());
    Embankment const project([&](Embankment& rows) {
        rows.Row("Seepage", prototype, {meta::MetaPersistTraits::No, L"Seepage"}, CohesionTraits());
    });
    EXPECT_EQ(prototype->GetDataTraits().Descriptor(), CohesionTraits().Descriptor());
}

TEST_F(WrapperTest, GetWrapperGivesAViewWithoutAnOwner) {
    Soil loose = Soils()[1];
    H const view = zo::GetWrapper(RowOf("Soils.[]"), &loose);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->Owner(), nullptr);
    EXPECT_EQ(view->OwnerID(), IZO::npos);
    EXPECT_EQ(Wrapper(view).Memory(), &loose);
    EXPECT_FALSE(Wrapper(view).Manager());
    EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*view, "Friction")), L"34");
}

TEST_F(WrapperTest, WrapKeepsTheOwnerOfThePrototype) {
    Soil loose;
    H const view = embankment.registry->Wrap(RowOf("Soils.[]"), &loose);
    EXPECT_EQ(view->Owner(), embankment.registry.get());
    EXPECT_EQ(view->OwnerID(), IZO::npos);
}

TEST_F(WrapperTest, GetWrapperOfNoWrapperRowIsEmpty) {
    Soil loose;
    EXPECT_FALSE(zo::GetWrapper(IZO::npos, &loose));
    EXPECT_FALSE(zo::GetWrapper(1000000, &loose));
    EXPECT_FALSE(zo::GetWrapper(RowOf("Summary"), &loose));
}

TEST_F(WrapperTest, ARegisteredWrapperHasTheName) {
    Soil loose;
    H view;
    EXPECT_TRUE(Succeeds(zo::GetRegisteredWrapper(view, RowOf("Soils.[]"), &loose, "Loose")));
    ASSERT_TRUE(view);
    EXPECT_EQ(view->Name(), "Loose");
    EXPECT_EQ(Find("Loose"), view);
}

TEST_F(WrapperTest, ARegisteredWrapperOfNoRowLeavesTheOutput) {
    Soil loose;
    H view = Find("Soils");
    H const before = view;
    EXPECT_TRUE(FailsAs(zo::GetRegisteredWrapper(view, IZO::npos, &loose, "Loose"), not_found("Loose")));
    EXPECT_EQ(view, before);
    EXPECT_FALSE(Find("Loose"));
}

TEST_F(WrapperTest, AnAtomicWrapperNeedsMemoryAndOneOfTheValueTypes) {
    double number = 0;
    Drainage drainage{};
    EXPECT_TRUE(zo::GetAtomicWrapper(&number, CohesionTraits()));
    EXPECT_FALSE(zo::GetAtomicWrapper(nullptr, CohesionTraits()));
    EXPECT_FALSE(zo::GetAtomicWrapper(&number, {}));
    EXPECT_FALSE(zo::GetAtomicWrapper(&drainage, DrainageTraits())) << "an enumeration is no value type";
    EXPECT_FALSE(zo::GetAtomicWrapper(&Soils()[0], SoilTraits()));
}

TEST_F(WrapperTest, AnAtomicWrapperKeepsItsTraitsAlive) {
    double number = 4;
    H view;
    {
        auto const traits = meta::AtomicBuilder<double>().Default(4).Build();
        view = zo::GetAtomicWrapper(&number, traits);
    }
    EXPECT_TRUE(view->IsDefault());
    EXPECT_EQ(view->RegID(), IZO::npos);
    EXPECT_EQ(view->Owner(), nullptr);
}

TEST_F(WrapperTest, AnUnknownMemberIsEmpty) {
    EXPECT_FALSE(NodeAccess::GetSubZO(*Find("Soils[0]"), "Colour"));
    EXPECT_FALSE(Find("Soils[0].Colour"));
}

TEST_F(WrapperTest, AHintServesOneMemberAndIsGone) {
    H const soil = Find("Soils[0]");
    Hint() = RowOf("Soils.[].Cohesion");
    H const hinted = NodeAccess::GetSubZO(*soil, "Friction");
    EXPECT_EQ(hinted->SubName(), "Cohesion") << "the hint goes before the name";
    EXPECT_EQ(Wrapper(hinted).Memory(), &Soils()[0].cohesion);
    EXPECT_EQ(Hint(), IZO::npos);
    EXPECT_EQ(NodeAccess::GetSubZO(*soil, "Friction")->SubName(), "Friction");
}

TEST_F(WrapperTest, AHintForAnotherParentIsDroppedUnused) {
    Hint() = RowOf("Project.Title");
    EXPECT_EQ(NodeAccess::GetSubZO(*Find("Soils[0]"), "Friction")->SubName(), "Friction");
    EXPECT_EQ(Hint(), IZO::npos);
    Hint() = 1000000;
    EXPECT_FALSE(NodeAccess::GetSubZO(*Find("Soils[0]"), "Colour"));
    EXPECT_EQ(Hint(), IZO::npos);
}

TEST_F(WrapperTest, ClearOfAStructureResetsItsPartsAndKeepsItsShape) {
    Find("Regions[0]")->Clear();
    EXPECT_EQ(embankment.model.regions[0].soil, 0);
    EXPECT_EQ(embankment.model.regions[0].points, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(embankment.model.regions[1].points, (std::vector<int>{1, 3, 4}));
}

TEST_F(WrapperTest, ClearOfAValueWritesItsDefault) {
    Find("Soils[0].Drainage")->Clear();
    EXPECT_EQ(Soils()[0].drainage, Drainage::Drained);
    Find("Soils[0].Name")->Clear();
    EXPECT_EQ(Soils()[0].name, L"");
}

TEST_F(WrapperTest, AStructuresCloneIsDetached) {
    H const clone(Find("Soils[0]")->Clone());
    ASSERT_TRUE(dynamic_cast<zo::ZOStructClone*>(clone.get()));
    EXPECT_EQ(clone->RegID(), RowOf("Soils.[]"));
    EXPECT_EQ(clone->Owner(), embankment.registry.get());
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
    EXPECT_FALSE(clone->IsUndefined());
    clone->Clear();
    EXPECT_EQ(Soils()[0].cohesion, 25);
    for (H const& copy : {H(clone->Clone()), H(clone->EmptyClone()), H(Find("Soils[0]")->EmptyClone())})
        EXPECT_TRUE(dynamic_cast<zo::ZOStructClone*>(copy.get()));
}

/// A client's manager.
class Guard final : public zo::ZOMemMgr {
public:
    using ZOMemMgr::ZOMemMgr;
    ZOMemMgr* RemapClone(void* memory) const override { return new Guard(memory, Traits()); }
};

TEST_F(WrapperTest, AManagerCountsTheWrappersOverItsMemory) {
    htl::handle<zo::ZOMemMgr> const manager(new Guard(&Soils()[0], SoilTraits()));
    EXPECT_EQ(manager->WrapperCount(), 0u);
    {
        H const soil(Wrapper(H(zo::GetTemplate("Soils.[]"))).RemapClone(&Soils()[0], manager));
        EXPECT_EQ(manager->WrapperCount(), 1u);
        EXPECT_EQ(Wrapper(soil).Manager(), manager);
        H const member = NodeAccess::GetSubZO(*soil, "Cohesion");
        EXPECT_EQ(manager->WrapperCount(), 2u);
        H const copy(new zo::ZOWrapperStruct(dynamic_cast<zo::ZOWrapperStruct const&>(*soil)));
        EXPECT_EQ(manager->WrapperCount(), 3u);
    }
    EXPECT_EQ(manager->WrapperCount(), 0u);
}

TEST_F(WrapperTest, AManagersCountNeverGoesBelowZero) {
    htl::handle<zo::ZOMemMgr> const manager(new Guard(&Soils()[0], SoilTraits()));
    {
        H const soil(Wrapper(H(zo::GetTemplate("Soils.[]"))).RemapClone(&Soils()[0], manager));
        manager->RemoveWrapper();
        EXPECT_EQ(manager->WrapperCount(), 0u);
    }
    EXPECT_EQ(manager->WrapperCount(), 0u);
}

TEST_F(WrapperTest, AManagerLivesAsLongAsAWrapperOverItsMemory) {
    H soil;
    zo::ZOMemMgr* raw = nullptr;
    {
        htl::handle<zo::ZOMemMgr> const manager(new Guard(&Soils()[0], SoilTraits()));
        raw = manager.get();
        soil = H(Wrapper(H(zo::GetTemplate("Soils.[]"))).RemapClone(&Soils()[0], manager));
    }
    EXPECT_EQ(raw->RefCount(), 1);
    EXPECT_EQ(raw->WrapperCount(), 1u);
}

TEST_F(WrapperTest, AnInnerManagerCountsOnceInItsOuterOneUntilItEnds) {
    htl::handle<zo::ZOMemMgr> const outer(new Guard(&Soils()[0], SoilTraits()));
    htl::handle<zo::ZOMemMgr> const other(new Guard(&Soils()[1], SoilTraits()));
    {
        htl::handle<zo::ZOMemMgr> const inner(new Guard(&Soils()[0].anisotropy, SoilTraits()));
        inner->SetOuter({});
        inner->SetOuter(outer);
        inner->SetOuter(outer);
        inner->SetOuter(other);
        EXPECT_EQ(outer->WrapperCount(), 1u);
        EXPECT_EQ(other->WrapperCount(), 0u);
    }
    EXPECT_EQ(outer->WrapperCount(), 0u);
}

class FormatRangeTest : public testing::Test {
protected:
    template <class T>
    htl::status Format(std::vector<T> const& values, bool skipDefaults,
                       meta::MetaDataTraits const& traits = meta::AtomicTraits<T>()) {
        zo::ZOWrapperAtomic<T> const node(IZO::npos, nullptr, traits, nullptr, {});
        text = L"old";
        zo::IZOSimple const& simple = node;
        return simple.FormatRange(values.data(), values.data() + values.size(), skipDefaults, text, allDefault);
    }
    std::wstring text;
    bool allDefault = false;
};

TEST_F(FormatRangeTest, PutsCommasBetweenValues) {
    EXPECT_TRUE(Succeeds(Format<double>({1, 0, 2.5}, false)));
    EXPECT_EQ(text, L"1,0,2.5");
    EXPECT_FALSE(allDefault);
}

TEST_F(FormatRangeTest, LeavesPlacesOfDefaultsEmpty) {
    EXPECT_TRUE(Succeeds(Format<int>({0, 1, 0, 2, 0, 0}, true)));
    EXPECT_EQ(text, L",1,,2") << "the commas at the end are cut";
    EXPECT_FALSE(allDefault);
}

TEST_F(FormatRangeTest, SaysWhetherEveryValueIsDefault) {
    EXPECT_TRUE(Succeeds(Format<int>({0, 0, 0}, true)));
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(allDefault);
    EXPECT_TRUE(Succeeds(Format<int>({0, 0, 0}, false)));
    EXPECT_EQ(text, L"0,0,0");
    EXPECT_TRUE(allDefault);
    EXPECT_TRUE(Succeeds(Format<int>({5, 0}, true)));
    EXPECT_FALSE(allDefault);
    EXPECT_TRUE(Succeeds(Format<int>({0, 5}, true)));
    EXPECT_FALSE(allDefault);
}

TEST_F(FormatRangeTest, CutsThePlacesOfMissingValuesAtTheEnd) {
    EXPECT_TRUE(Succeeds(Format<int>({0x7FFFFFFF, 1, 0x7FFFFFFF, 0x7FFFFFFF}, false)));
    EXPECT_EQ(text, L",1");
}

TEST_F(FormatRangeTest, FormatsOneValueWithoutALast) {
    int const value = 7;
    zo::ZOWrapperAtomic<int> const node(IZO::npos, nullptr, meta::AtomicTraits<int>(), nullptr, {});
    EXPECT_TRUE(Succeeds(node.FormatRange(&value, nullptr, false, text, allDefault)));
    EXPECT_EQ(text, L"7");
    EXPECT_TRUE(Succeeds(node.FormatRange(&value, &value, false, text, allDefault)));
    EXPECT_EQ(text, L"7");
    int const none = 0;
    EXPECT_TRUE(Succeeds(node.FormatRange(&none, nullptr, true, text, allDefault)));
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(allDefault);
}

TEST_F(FormatRangeTest, KeepsTheCommasOfOneText) {
    std::wstring const value = L"a,,";
    zo::ZOWrapperAtomic<std::wstring> const node(IZO::npos, nullptr, meta::AtomicTraits<std::wstring>(), nullptr, {});
    EXPECT_TRUE(Succeeds(node.FormatRange(&value, nullptr, false, text, allDefault)));
    EXPECT_EQ(text, L"a,,");
}

TEST_F(FormatRangeTest, StepsByTheBytesOfTheClientType) {
    Drainage const values[3] = {Drainage::Partial, Drainage::Drained, Drainage::Undrained};
    zo::ZOWrapperAtomic<int> const node(IZO::npos, nullptr, DrainageTraits(), nullptr, {});
    EXPECT_TRUE(Succeeds(node.FormatRange(std::begin(values), std::end(values), false, text, allDefault)));
    EXPECT_EQ(text, L"Partial,Drained,Undrained");
}

TEST_F(FormatRangeTest, GoesOnBehindAFailureAndKeepsTheFirst) {
    auto record = std::make_shared<meta::MetaTraitsAtomic>(meta::MakeAtomic<int>(0, std::nullopt));
    record->toWide = [](void const* value, std::wstring& out, int, IZO const*) {
        int const number = *static_cast<int const*>(value);
        if (number < 0) return htl::status::FromText(L"bad " + std::to_wstring(number));
        out = std::to_wstring(number);
        return htl::status::Success;
    };
    meta::MetaDataTraits const traits{std::shared_ptr<meta::MetaTraits const>(record)};
    EXPECT_TRUE(FailsAs(Format<int>({1, -2, 3, -4, 5}, false, traits), htl::status::FromText(L"bad -2")));
    EXPECT_EQ(text, L"1,,3,,5");
}

} // namespace
