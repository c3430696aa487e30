#include "Common/model/ZOArray.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/Embankment.h"

#include "support/describe.h"

#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace embankment;
using meta::MetaDataTraits;
using meta::MetaPersistTraits;
using zo::Find;
using zo::H;
using zo::IZO;
using zo::ZOArray;
using zo::ZOArrayClone;
using zo::ZOArrayWrapper;
using zo::impl::NodeAccess;
using zo::ZOError::array_memory_conflict;
using zo::ZOError::not_found;
using zo::ZOError::not_supported;

/// Readings of an instrument, some of which are gone.
struct Readings {
    std::vector<double> values;
    std::vector<bool> gone;
};

MetaDataTraits DoubleTraits() { return meta::AtomicTraits<double>(); }
MetaDataTraits WideTraits() { return meta::AtomicTraits<std::wstring>(); }
MetaDataTraits ReadingsTraits() {
    static MetaDataTraits const traits = [] {
        auto record = std::make_shared<meta::MetaTraitsArray>();
        record->kind = meta::Kind::Array;
        record->byteSize = sizeof(Readings);
        record->type = &typeid(Readings);
        record->length = [](void const* memory) {
            return memory ? static_cast<Readings const*>(memory)->values.size() : 0;
        };
        record->elementAt = [](void* memory, std::size_t i) -> void* {
            return &static_cast<Readings*>(memory)->values[i];
        };
        record->isHole = [](void const* memory, std::size_t i) -> bool {
            return static_cast<Readings const*>(memory)->gone[i];
        };
        record->elementTraits = DoubleTraits;
        return MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(record)));
    }();
    return traits;
}

class ArrayTest : public testing::Test {
protected:
    static ZOArray& Array(H const& node) { return dynamic_cast<ZOArray&>(*node); }
    static ZOArrayWrapper& View(H const& node) { return dynamic_cast<ZOArrayWrapper&>(*node); }
    static std::vector<std::size_t> Walk(H const& array) {
        std::vector<std::size_t> indices;
        for (zo::ZOFwrdIterator at = array->begin(); at.current; ++at) indices.push_back(at.index);
        return indices;
    }
    static MetaPersistTraits Tag(wchar_t const* tag) { return {MetaPersistTraits::No, tag}; }

    std::vector<double> loads{1, 2, 3};
    std::vector<std::wstring> labels{L"a", L"b", L"c"};
    Readings readings{{10, 11, 12, 13, 14}, {true, false, true, false, true}};
    // Elements with a default of their own, to tell them from what a container makes.
    std::vector<double> weights{5, 6};
    std::vector<double> bare{1, 2};
    Embankment embankment{[this](Embankment& rows) {
        auto const loadsTraits = meta::ArrayTraits<std::vector<double>>(DoubleTraits);
        rows.Row("Loads", ArrayPrototype(loadsTraits), Tag(L"Loads"), loadsTraits, &loads);
        rows.Row("Loads.[]", ValuePrototype<double>(DoubleTraits()), Tag(L""), DoubleTraits());
        auto const labelsTraits = meta::ArrayTraits<std::vector<std::wstring>>(WideTraits);
        rows.Row("Labels", ArrayPrototype(labelsTraits), Tag(L"Labels"), labelsTraits, &labels);
        rows.Row("Labels.[]", ValuePrototype<std::wstring>(WideTraits()), Tag(L""), WideTraits());
        rows.Row("Readings", ArrayPrototype(ReadingsTraits()), Tag(L"Readings"), ReadingsTraits(), &readings);
        rows.Row("Readings.[]", ValuePrototype<double>(DoubleTraits()), Tag(L""), DoubleTraits());
        auto const weight = meta::AtomicBuilder<double>().Default(9.81).Build();
        rows.Row("Weights", ArrayPrototype(loadsTraits), Tag(L"Weights"), loadsTraits, &weights);
        rows.Row("Weights.[]", ValuePrototype<double>(weight), Tag(L""), weight);
        rows.Row("Bare", ArrayPrototype(loadsTraits), Tag(L"Bare"), loadsTraits, &bare);
    }};
};

// Length and elements

TEST_F(ArrayTest, LengthIsThatOfTheContainer) {
    H const array = Find("Loads");
    EXPECT_EQ(array->Length(), 3u);
    loads.push_back(4);
    EXPECT_EQ(array->Length(), 4u);
    EXPECT_EQ(Find("Soils[0].Anisotropy")->Length(), 3u);
}

TEST_F(ArrayTest, AnElementIsAViewOfItsMemory) {
    H const element = Array(Find("Loads")).GetSubZO(std::size_t(2));
    EXPECT_EQ(TextOf(element), L"3");
    EXPECT_TRUE(Succeeds(element->Set(7)));
    EXPECT_EQ(loads[2], 7);
}

TEST_F(ArrayTest, AnIndexPastTheEndIsEmpty) {
    H const loadsNode = Find("Loads");
    ZOArray& array = Array(loadsNode);
    EXPECT_TRUE(array.GetSubZO(std::size_t(0)));
    EXPECT_FALSE(array.GetSubZO(std::size_t(3)));
    EXPECT_FALSE(array.GetSubZO(IZO::npos));
    EXPECT_FALSE(Find("Loads[3]"));
    EXPECT_FALSE(Find("Loads[18446744073709551616]"));
}

TEST_F(ArrayTest, AnArrayWithoutAnElementTemplateHasNoElements) {
    H const array = Find("Bare");
    EXPECT_EQ(array->Length(), 2u);
    EXPECT_FALSE(Find("Bare[0]"));
    EXPECT_TRUE(array->begin() == array->end());
    EXPECT_TRUE(Succeeds(array->SetLength(4)));
    EXPECT_EQ(bare.size(), 4u);
    H const clone(array->Clone());
    EXPECT_EQ(clone->Length(), 4u);
    EXPECT_FALSE(NodeAccess::GetSubZO(*clone, "0"));
}

TEST_F(ArrayTest, IndicesCountFromZeroAndTheAtFormFromOne) {
    for (char const* name : {"1", "01", "At(2)", "At( 2\t)", "At(2)x", "At(2))"})
        EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*Find("Loads"), name)), L"2") << name;
    EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*Find("Loads"), "0")), L"1");
    EXPECT_EQ(TextOf(NodeAccess::GetSubZO(*Find("Loads"), "At(1)")), L"1");
}

TEST_F(ArrayTest, OtherSubNamesAreEmpty) {
    for (char const* name : {"",
                             "At(0)",
                             "At()",
                             "At( )",
                             "At(2",
                             "At(-1)",
                             "At(x)",
                             "at(1)",
                             "1x",
                             "3",
                             "-1",
                             "+1",
                             " 1",
                             "len",
                             "Length",
                             "[0]",
                             "99999999999999999999",
                             "18446744073709551615",
                             "At(18446744073709551616)",
                             "At(18446744073709551615)"})
        EXPECT_FALSE(NodeAccess::GetSubZO(*Find("Loads"), name)) << name;
}

TEST_F(ArrayTest, EveryArrayHasALength) {
    loads.clear();
    EXPECT_EQ(TextOf(Find("Loads.Len")), L"0");
    EXPECT_EQ(TextOf(Find("Bare.Len")), L"2");
    H const clone(Find("Labels")->Clone());
    H const length = NodeAccess::GetSubZO(*clone, "Len");
    ASSERT_TRUE(length);
    EXPECT_EQ(length->RegID(), IZO::npos);
    EXPECT_EQ(length->GetDataTraits().Descriptor(), meta::AtomicTraits<htl::UInt64>().Descriptor());
}

// Walks

TEST_F(ArrayTest, AWalkShowsEveryIndex) {
    EXPECT_EQ(Walk(Find("Loads")), (std::vector<std::size_t>{0, 1, 2}));
    H const array = Find("Loads");
    zo::ZOFwrdIterator at = array->begin();
    EXPECT_EQ(at.parent, array);
    EXPECT_EQ(at.subID, IZO::npos);
    ++at;
    EXPECT_EQ(at.index, 1u);
    EXPECT_EQ(TextOf(at.current), L"2");
}

TEST_F(ArrayTest, AWalkOfAnEmptyArrayIsAtItsEnd) {
    loads.clear();
    H const array = Find("Loads");
    EXPECT_TRUE(array->begin() == array->end());
}

TEST_F(ArrayTest, AWalkNeverShowsAHole) {
    H const array = Find("Readings");
    EXPECT_EQ(Walk(array), (std::vector<std::size_t>{1, 3}));
    EXPECT_EQ(array->begin().index, 1u);
    EXPECT_EQ(TextOf(array->begin().current), L"11");
    readings.gone.assign(5, true);
    EXPECT_TRUE(array->begin() == array->end());
}

TEST_F(ArrayTest, AWalkOfADetachedArrayShowsDefaults) {
    H const clone(Find("Weights")->Clone());
    EXPECT_EQ(Walk(clone), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(TextOf(clone->begin().current), L"9.81");
}

// Length changes

TEST_F(ArrayTest, GrowingResetsTheNewElementsAlone) {
    EXPECT_TRUE(Succeeds(Find("Weights")->SetLength(4)));
    EXPECT_EQ(weights, (std::vector<double>{5, 6, 9.81, 9.81}));
    EXPECT_TRUE(Succeeds(Find("Weights")->SetLength(1)));
    EXPECT_EQ(weights, (std::vector<double>{5}));
}

TEST_F(ArrayTest, GrowingAnArrayOfStructuresResetsThem) {
    EXPECT_TRUE(Succeeds(Find("Soils")->SetLength(5)));
    ASSERT_EQ(embankment.model.soils.size(), 5u);
    EXPECT_EQ(embankment.model.soils[0].cohesion, 25);
    EXPECT_EQ(embankment.model.soils[4].name, L"");
    EXPECT_EQ(TextOf(Find("Soils[4].Drainage")), L"Drained");
}

TEST_F(ArrayTest, ALengthThatMemoryCantHoldIsNotSupported) {
    EXPECT_TRUE(FailsAs(Find("Loads")->SetLength(std::size_t(1) << 63), not_supported("")));
    EXPECT_TRUE(FailsAs(Find("Points")->SetLength(IZO::npos), not_supported("")));
    EXPECT_EQ(loads, (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(embankment.model.points.size(), 4u);
}

TEST_F(ArrayTest, AFixedArrayCantBeResized) {
    EXPECT_TRUE(FailsAs(Find("Soils[0].Anisotropy")->SetLength(4), not_supported("")));
    EXPECT_TRUE(Succeeds(Find("Soils[0].Anisotropy")->SetLength(3)));
    EXPECT_TRUE(FailsAs(Find("Readings")->SetLength(4), not_supported(""))) << "no function for it";
}

TEST_F(ArrayTest, ALiveElementKeepsItsArrayFromBeingResized) {
    H element = Find("Loads[0]");
    EXPECT_TRUE(FailsAs(Find("Loads")->SetLength(4), array_memory_conflict()));
    EXPECT_TRUE(FailsAs(Find("Loads")->SetLength(0), array_memory_conflict()));
    EXPECT_EQ(loads, (std::vector<double>{1, 2, 3}));
    element.release();
    EXPECT_TRUE(Succeeds(Find("Loads")->SetLength(4)));
}

TEST_F(ArrayTest, ThePresentLengthSucceedsWithLiveElements) {
    H const element = Find("Loads[0]");
    EXPECT_TRUE(Succeeds(Find("Loads")->SetLength(3)));
    EXPECT_TRUE(Succeeds(NodeAccess::Resize(*Find("Loads"), 3)));
}

TEST_F(ArrayTest, AnElementOfOneLookupProtectsFromAResizeThroughAnother) {
    H const first = Find("Loads");
    H const second = Find("Loads");
    ASSERT_NE(first, second);
    EXPECT_EQ(View(first).ChildMemMgr(), View(second).ChildMemMgr());
    H const element = Array(first).GetSubZO(std::size_t(1));
    EXPECT_TRUE(FailsAs(second->SetLength(9), array_memory_conflict()));
}

TEST_F(ArrayTest, ArraysOfOtherMemoryHaveOtherManagers) {
    EXPECT_NE(View(Find("Loads")).ChildMemMgr(), View(Find("Weights")).ChildMemMgr());
    H const element = Find("Loads[0]");
    EXPECT_TRUE(Succeeds(Find("Weights")->SetLength(3)));
}

TEST_F(ArrayTest, AViewDeepInsideProtectsEveryArrayAroundIt) {
    H element = Find("Regions[0].Points[1]");
    EXPECT_TRUE(FailsAs(Find("Regions[0].Points")->SetLength(1), array_memory_conflict()));
    EXPECT_TRUE(FailsAs(Find("Regions")->SetLength(1), array_memory_conflict()));
    EXPECT_TRUE(Succeeds(Find("Regions[1].Points")->SetLength(1)));
    element.release();
    EXPECT_TRUE(Succeeds(Find("Regions")->SetLength(1)));
    EXPECT_EQ(embankment.model.regions.size(), 1u);
}

TEST_F(ArrayTest, AMemberOfAnElementProtectsTheArray) {
    H const cohesion = Find("Soils[0].Cohesion");
    EXPECT_TRUE(FailsAs(Find("Soils")->SetLength(1), array_memory_conflict()));
}

TEST_F(ArrayTest, AViewOfTheArrayItselfProtectsNothing) {
    H const array = Find("Loads");
    EXPECT_TRUE(Succeeds(Find("Loads")->SetLength(5)));
    EXPECT_EQ(array->Length(), 5u);
}

TEST_F(ArrayTest, ManagersAreForgottenWithTheirLastView) {
    htl::handle<zo::ZOMemMgr> manager = View(Find("Loads")).ChildMemMgr();
    EXPECT_EQ(manager->RefCount(), 1);
    EXPECT_EQ(manager->Memory(), &loads);
    zo::ZOMemMgr* const raw = manager.get();
    H again = Find("Loads");
    EXPECT_EQ(View(again).ChildMemMgr().get(), raw) << "found as long as it lives";
    EXPECT_EQ(raw->WrapperCount(), 0u);
    raw->AddWrapper(); // tells this manager from the next, which may lie at the same address
    again.release();
    manager.release();
    EXPECT_EQ(View(Find("Loads")).ChildMemMgr()->WrapperCount(), 0u);
}

TEST_F(ArrayTest, ManyLiveArraysKeepTheirManagersApart) {
    std::vector<std::vector<double>> many(3000, {1, 2});
    std::size_t const row = Find("Loads")->RegID();
    std::vector<H> views, elements;
    for (auto& memory : many) {
        views.push_back(zo::GetWrapper(row, &memory));
        elements.push_back(Array(views.back()).GetSubZO(std::size_t(0)));
    }
    for (std::size_t i = 0; i < many.size(); ++i) {
        EXPECT_EQ(View(views[i]).ChildMemMgr()->Memory(), &many[i]);
        EXPECT_EQ(View(zo::GetWrapper(row, &many[i])).ChildMemMgr(), View(views[i]).ChildMemMgr());
    }
    for (std::size_t i = 0; i < many.size(); i += 2) elements[i].release();
    for (std::size_t i = 0; i < many.size(); ++i) EXPECT_EQ(views[i]->SetLength(3).IsError(), i % 2 == 1);
}

TEST(ArrayThreads, ThreadsWithARegistryEachWorkSideBySide) {
    auto const work = [](bool& done) {
        Embankment const project;
        bool good = true;
        for (int i = 0; i < 300; ++i) {
            H element = Find("Regions[0].Points[0]");
            good = good && element && Find("Regions")->SetLength(9).IsError();
            element.release();
            good = good && !Find("Regions[0].Points")->Set(i % 2 ? L"1,2" : L"3,4,5").IsError();
        }
        done = good;
    };
    bool first = false;
    bool second = false;
    std::thread one(work, std::ref(first));
    std::thread two(work, std::ref(second));
    one.join();
    two.join();
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
}

TEST_F(ArrayTest, APrototypesManagerIsNotShared) {
    zo::ZOMemMgr const* const prototype =
        dynamic_cast<ZOArrayWrapper&>(*zo::GetTemplate("Regions.[].Points")).ChildMemMgr().get();
    EXPECT_EQ(prototype->Memory(), reinterpret_cast<void*>(meta::OffsetOf(&Region::points)));
    EXPECT_NE(View(Find("Regions[0].Points")).ChildMemMgr().get(), prototype);
}

// Adding and removing

TEST_F(ArrayTest, AddNewAppendsAndStandsOnTheElement) {
    H const array = Find("Loads");
    zo::ZOFwrdIterator const added = Array(array).AddNew();
    EXPECT_EQ(added.index, 3u);
    EXPECT_EQ(added.parent, array);
    ASSERT_TRUE(added.current);
    EXPECT_EQ(added.current->Name(), "Loads[3]");
    EXPECT_EQ(loads.size(), 4u);
}

TEST_F(ArrayTest, AddNewIsTheEndWhereItCantBeDone) {
    H const fixed = Find("Soils[0].Anisotropy");
    EXPECT_TRUE(Array(fixed).AddNew() == fixed->end());
    H const clone(Find("Loads")->Clone());
    EXPECT_TRUE(Array(clone).AddNew() == clone->end());
    EXPECT_EQ(clone->Length(), 3u);
}

TEST_F(ArrayTest, AddNewIsTheEndWhereTheContainerRefuses) {
    auto record =
        std::make_shared<meta::MetaTraitsArray>(*meta::ArrayTraits<std::vector<double>>(DoubleTraits).AsArray());
    record->addNew = [](void*) { return 0xFFFFFFFFu; };
    htl::handle<zo::ZOMemMgr> const manager(
        new zo::ZOArrayMemMgr(&loads, MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(record))));
    H const array(new ZOArrayWrapper(Find("Loads")->RegID(), nullptr, {}, manager));
    EXPECT_TRUE(Array(array).AddNew() == array->end());
}

TEST_F(ArrayTest, WhatWouldMoveLiveElementsIsRefused) {
    H element = Find("Loads[0]");
    H const array = Find("Loads");
    EXPECT_TRUE(Array(array).AddNew() == array->end());
    EXPECT_TRUE(FailsAs(Array(array).RemoveAt(0), array_memory_conflict()));
    EXPECT_EQ(loads, (std::vector<double>{1, 2, 3}));
    element.release();
    EXPECT_TRUE(Succeeds(Array(array).RemoveAt(0)));
    EXPECT_EQ(loads, (std::vector<double>{2, 3}));
}

TEST_F(ArrayTest, AContainerWhoseElementsStayTakesNewOnesBesideLiveViews) {
    H const point = Find("Points[0].X");
    EXPECT_TRUE(Array(Find("Points")).AddNew().current);
    EXPECT_EQ(embankment.model.points.size(), 5u);
    EXPECT_EQ(TextOf(point), L"0");
}

TEST_F(ArrayTest, RemoveAtWithoutAFunctionFailsWithTheTypeName) {
    EXPECT_TRUE(FailsAs(Array(Find("Soils[0].Anisotropy")).RemoveAt(0), not_supported("double [3]")));
    H const clone(Find("Loads")->Clone());
    EXPECT_TRUE(FailsAs(Array(clone).RemoveAt(0), not_supported("")));
}

// Whole texts

TEST_F(ArrayTest, SetTakesTheLengthFromThePlaces) {
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L"4,5.5")));
    EXPECT_EQ(loads, (std::vector<double>{4, 5.5}));
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L"1,2,3,4")));
    EXPECT_EQ(loads, (std::vector<double>{1, 2, 3, 4}));
}

TEST_F(ArrayTest, AnEmptyTextEmptiesTheArray) {
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L"")));
    EXPECT_TRUE(loads.empty());
    EXPECT_EQ(TextOf(Find("Loads")), L"");
}

TEST_F(ArrayTest, AnEmptyPlaceLeavesItsElement) {
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L"7,,9")));
    EXPECT_EQ(loads, (std::vector<double>{7, 2, 9}));
}

TEST_F(ArrayTest, ACommaAtTheEndAddsNoPlace) {
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L"1,2,")));
    EXPECT_EQ(loads, (std::vector<double>{1, 2}));
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L",")));
    EXPECT_EQ(loads, (std::vector<double>{1}));
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L",,5,,")));
    EXPECT_EQ(loads, (std::vector<double>{1, 0, 5, 0}));
}

TEST_F(ArrayTest, ADefaultElementHasAnEmptyPlace) {
    loads = {1, 0, 3};
    EXPECT_EQ(TextOf(Find("Loads")), L"1,,3");
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(TextOf(Find("Loads")))));
    EXPECT_EQ(loads, (std::vector<double>{1, 0, 3}));
}

TEST_F(ArrayTest, ADefaultElementAtTheEndIsLostInTheText) {
    loads = {1, 2, 0};
    EXPECT_EQ(TextOf(Find("Loads")), L"1,2,");
    EXPECT_TRUE(Succeeds(Find("Loads")->Set(L"1,2,")));
    EXPECT_EQ(loads, (std::vector<double>{1, 2}));
    embankment.model.soils[0].anisotropy[2] = 0;
    EXPECT_EQ(TextOf(Find("Soils[0].Anisotropy")), L"1,0.5,");
    EXPECT_TRUE(Succeeds(Find("Soils[0].Anisotropy")->Set(L"1,0.5,")));
    EXPECT_EQ(Find("Soils[0].Anisotropy")->Length(), 3u) << "not where the length is fixed";
}

TEST_F(ArrayTest, GetDropsExactlyOneComma) {
    loads = {0, 0, 0};
    EXPECT_EQ(TextOf(Find("Loads")), L",,");
    loads = {0};
    EXPECT_EQ(TextOf(Find("Loads")), L"");
}

TEST_F(ArrayTest, ParenthesesHoldAPlaceTogether) {
    EXPECT_TRUE(Succeeds(Find("Labels")->Set(L"f(a,b),c")));
    EXPECT_EQ(labels, (std::vector<std::wstring>{L"f(a,b)", L"c"}));
    EXPECT_TRUE(Succeeds(Find("Labels")->Set(L"f(g(x),y),(,)(,)")));
    EXPECT_EQ(labels, (std::vector<std::wstring>{L"f(g(x)", L"y)", L"(,)(,)"}))
        << "up to the next one, not the matching";
    EXPECT_TRUE(Succeeds(Find("Labels")->Set(L"a),)b")));
    EXPECT_EQ(labels, (std::vector<std::wstring>{L"a)", L")b"})) << "a closing one alone is plain text";
}

TEST_F(ArrayTest, NoBlanksAreTrimmed) {
    EXPECT_TRUE(Succeeds(Find("Labels")->Set(L" a , b")));
    EXPECT_EQ(labels, (std::vector<std::wstring>{L" a ", L" b"}));
}

TEST_F(ArrayTest, AnOpenParenthesisFailsAndStoresNothing) {
    EXPECT_TRUE(FailsAs(Find("Labels")->Set(L"x,f(a,b"), HznError::syntax(L"x,f(a,b")));
    EXPECT_TRUE(FailsAs(Find("Loads")->Set(L"("), HznError::syntax(L"(")));
    EXPECT_EQ(labels, (std::vector<std::wstring>{L"a", L"b", L"c"}));
    EXPECT_EQ(loads.size(), 3u);
}

TEST_F(ArrayTest, AFailedElementStopsAndEarlierOnesStayChanged) {
    EXPECT_TRUE(Find("Loads")->Set(L"7,x,9").Is(90006));
    EXPECT_EQ(loads, (std::vector<double>{7, 2, 3}));
}

TEST_F(ArrayTest, AFixedArrayTakesFewerPlacesButNotMore) {
    double const* const values = embankment.model.soils[0].anisotropy;
    EXPECT_TRUE(Succeeds(Find("Soils[0].Anisotropy")->Set(L"2,3")));
    EXPECT_EQ(values[0], 2);
    EXPECT_EQ(values[1], 3);
    EXPECT_EQ(values[2], 0.25);
    EXPECT_TRUE(FailsAs(Find("Soils[0].Anisotropy")->Set(L"1,1,1,1"), not_found("Soils[0].Anisotropy[3]")));
    EXPECT_EQ(values[2], 1);
}

TEST_F(ArrayTest, ARefusedResizeShowsAsAMissingElement) {
    H const element = Find("Loads[0]");
    EXPECT_TRUE(FailsAs(Find("Loads")->Set(L"1,2,3,4"), not_found("Loads[3]")));
    EXPECT_EQ(loads.size(), 3u);
}

TEST_F(ArrayTest, AMissingElementFailsWithItsName) {
    EXPECT_TRUE(FailsAs(Find("Bare")->Set(L"1,2"), not_found("Bare[0]")));
    std::wstring text;
    EXPECT_TRUE(FailsAs(Find("Bare")->Get(text), not_found("Bare[0]")));
}

TEST_F(ArrayTest, AnElementWithoutATextFails) {
    std::wstring text;
    EXPECT_TRUE(FailsAs(Find("Soils")->Get(text), not_supported("embankment::Soil")));
    EXPECT_TRUE(FailsAs(Find("Soils")->Set(L"x,,"), not_supported("embankment::Soil")));
}

TEST_F(ArrayTest, LongTextsAreCutAtEveryComma) {
    for (std::size_t const length : {63u, 64u, 65u, 72u, 73u, 5000u}) {
        std::wstring text;
        std::vector<double> expected;
        for (std::size_t i = 1; i <= length; ++i) {
            text += (i > 1 ? L"," : L"") + std::to_wstring(i);
            expected.push_back(static_cast<double>(i));
        }
        EXPECT_TRUE(Succeeds(Find("Loads")->Set(text)));
        EXPECT_EQ(loads, expected);
        EXPECT_EQ(TextOf(Find("Loads")), text);
    }
}

TEST_F(ArrayTest, TextsOfAnyDepthOfParenthesesAreRead) {
    std::wstring const deep(1000000, L'(');
    EXPECT_TRUE(FailsAs(Find("Labels")->Set(deep), HznError::syntax(deep)));
    EXPECT_TRUE(Succeeds(Find("Labels")->Set(deep + L")")));
    EXPECT_EQ(labels.size(), 1u);
}

TEST_F(ArrayTest, TextsReadAndWriteTheSameWithoutNames) {
    zo::TrackingSuspension const suspended(*embankment.registry->Impl());
    H const array = Find("Loads");
    ASSERT_EQ(array->OwnerID(), IZO::npos);
    EXPECT_TRUE(Succeeds(array->Set(L"7,,9,")));
    EXPECT_EQ(loads, (std::vector<double>{7, 2, 9}));
    EXPECT_EQ(TextOf(array), L"7,2,9");
    EXPECT_TRUE(array->Set(L"1,x").Is(90006));
    EXPECT_EQ(loads, (std::vector<double>{1, 2}));
    H const fixed = Find("Soils[0].Anisotropy");
    EXPECT_TRUE(FailsAs(fixed->Set(L"1,1,1,1"), not_found("[3]")));
    EXPECT_EQ(View(array).ChildMemMgr()->WrapperCount(), 0u);
}

TEST_F(ArrayTest, ACheckMayKeepTheElementThatItIsGiven) {
    std::vector<H> kept;
    std::vector<double> memory{1, 2, 3};
    Embankment project([&](Embankment& rows) {
        auto const element = meta::AtomicBuilder<double>()
                                 .Valid([&kept](double const&, IZO const* node) {
                                     kept.push_back(H(const_cast<IZO*>(node)));
                                     return htl::status::Success;
                                 })
                                 .Build();
        auto const array = meta::ArrayTraits<std::vector<double>>(DoubleTraits);
        rows.Row("Kept", ArrayPrototype(array), Tag(L"Kept"), array, &memory);
        rows.Row("Kept.[]", ValuePrototype<double>(element), Tag(L""), element);
    });
    {
        H const array = NodeAccess::GetSubZO(*project.registry->Root(), "Kept");
        H const bareView = project.registry->Wrap(array->RegID(), &memory);
        EXPECT_TRUE(Succeeds(bareView->Set(L"4,5,6")));
    }
    ASSERT_EQ(kept.size(), 3u);
    EXPECT_EQ(TextOf(kept[0]), L"4");
    EXPECT_EQ(TextOf(kept[1]), L"5");
    EXPECT_EQ(TextOf(kept[2]), L"6");
    kept.clear();
}

// Assign, clear, clones

TEST_F(ArrayTest, AssignTakesTheLengthAlone) {
    EXPECT_TRUE(Succeeds(Find("Loads")->Assign(Find("Weights"))));
    EXPECT_EQ(loads, (std::vector<double>{1, 2}));
    EXPECT_TRUE(Succeeds(Find("Loads")->Assign(Find("Weights"))));
    EXPECT_TRUE(FailsAs(Find("Soils[0].Anisotropy")->Assign(Find("Loads")), not_supported("")));
}

TEST_F(ArrayTest, AssignOfAnythingButAnArrayChangesNothing) {
    EXPECT_TRUE(Succeeds(Find("Loads")->Assign(Find("Project.Title"))));
    EXPECT_TRUE(Succeeds(Find("Loads")->Assign(H())));
    EXPECT_EQ(loads, (std::vector<double>{1, 2, 3}));
}

TEST_F(ArrayTest, ClearOfAViewResetsTheElementsAndKeepsTheLength) {
    Find("Loads")->Clear();
    EXPECT_EQ(loads, (std::vector<double>{0, 0, 0}));
    Find("Soils")->Clear();
    EXPECT_EQ(embankment.model.soils.size(), 3u);
    EXPECT_EQ(embankment.model.soils[2].name, L"");
}

TEST_F(ArrayTest, AClonesLengthIsThatOfTheMoment) {
    H const clone(Find("Loads")->Clone());
    auto const& detached = dynamic_cast<ZOArrayClone&>(*clone);
    EXPECT_EQ(detached.Length(), 3u);
    EXPECT_FALSE(detached.IsFixedLen());
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
    EXPECT_EQ(clone->Owner(), embankment.registry.get());
    loads.clear();
    EXPECT_EQ(clone->Length(), 3u);
    EXPECT_EQ(clone->GetDataTraits().TypeName(), Find("Loads")->GetDataTraits().TypeName());
    H const copy(clone->Clone());
    EXPECT_EQ(copy->Length(), 3u);
}

TEST_F(ArrayTest, AnEmptyCloneIsEmptyUnlessItsLengthIsFixed) {
    H const empty(Find("Loads")->EmptyClone());
    EXPECT_EQ(empty->Length(), 0u);
    H const fixed(Find("Soils[0].Anisotropy")->EmptyClone());
    EXPECT_EQ(fixed->Length(), 3u);
    EXPECT_TRUE(dynamic_cast<ZOArrayClone&>(*fixed).IsFixedLen());
    H const clone(Find("Loads")->Clone());
    EXPECT_EQ(H(clone->EmptyClone())->Length(), 0u);
    EXPECT_EQ(H(fixed->EmptyClone())->Length(), 3u);
}

TEST_F(ArrayTest, ADetachedArrayTakesAnyLength) {
    H const clone(Find("Loads")->Clone());
    EXPECT_TRUE(Succeeds(clone->SetLength(std::size_t(1) << 63)));
    EXPECT_EQ(clone->Length(), std::size_t(1) << 63);
    EXPECT_TRUE(NodeAccess::GetSubZO(*clone, "9223372036854775807"));
    clone->Clear();
    EXPECT_EQ(clone->Length(), 0u);
    EXPECT_FALSE(NodeAccess::GetSubZO(*clone, "0"));
}

TEST_F(ArrayTest, ADetachedArrayOfFixedLengthKeepsIt) {
    H const fixed(Find("Soils[0].Anisotropy")->Clone());
    EXPECT_TRUE(FailsAs(fixed->SetLength(4), not_supported("")));
    fixed->Clear();
    EXPECT_EQ(fixed->Length(), 3u);
}

TEST_F(ArrayTest, ADetachedArrayWithoutARowHasTheTraitsOfAnyArray) {
    H const array(new ZOArrayClone(IZO::npos, nullptr, false, 2));
    EXPECT_EQ(array->GetDataTraits().Descriptor(), ZOArray::DefaultDataTraits().Descriptor());
    EXPECT_TRUE(ZOArray::DefaultDataTraits().AsArray());
    EXPECT_FALSE(ZOArray::DefaultDataTraits().AsArray()->fixedLength);
    EXPECT_FALSE(NodeAccess::GetSubZO(*array, "0"));
    EXPECT_FALSE(array->IsValueType());
    EXPECT_FALSE(array->IsDefault());
}

TEST_F(ArrayTest, AViewOverTraitsThatAreNoArraysIsFixedAndEmpty) {
    htl::handle<zo::ZOMemMgr> const manager(new zo::ZOArrayMemMgr(&loads, SoilTraits()));
    H const array(new ZOArrayWrapper(IZO::npos, nullptr, {}, manager));
    EXPECT_EQ(array->Length(), 0u);
    H const clone(array->Clone());
    EXPECT_TRUE(dynamic_cast<ZOArrayClone&>(*clone).IsFixedLen());
    EXPECT_EQ(clone->Length(), 0u);
    H const empty(array->EmptyClone());
    EXPECT_TRUE(dynamic_cast<ZOArrayClone&>(*empty).IsFixedLen());
    EXPECT_TRUE(FailsAs(array->SetLength(2), not_supported("")));
}

TEST_F(ArrayTest, RemappingBindsTheManagersAndDropsTheEntry) {
    std::vector<double> other{8};
    H const array = Find("Loads");
    H const remapped(View(array).RemapClone(&other, {}));
    EXPECT_EQ(remapped->RegID(), array->RegID());
    EXPECT_EQ(remapped->Owner(), array->Owner());
    EXPECT_EQ(remapped->OwnerID(), IZO::npos);
    EXPECT_EQ(View(remapped).Memory(), &other);
    EXPECT_FALSE(View(remapped).MemMgr());
    EXPECT_EQ(View(remapped).ChildMemMgr()->Memory(), &other);
    EXPECT_EQ(remapped->Length(), 1u);
    H const inner = Find("Regions[0].Points");
    EXPECT_EQ(View(inner).MemMgr(), View(Find("Regions")).ChildMemMgr());
}

} // namespace
