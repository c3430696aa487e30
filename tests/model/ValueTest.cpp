#include "Common/model/ZOAccessTrait.h"
#include "Common/model/ZOAtomicData.h"
#include "Common/model/ZOWrapper.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/Embankment.h"

#include "support/describe.h"

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace embankment;
using meta::AtomicTraits;
using zo::Find;
using zo::H;
using zo::IZO;
using zo::ZOAtomicData;
using zo::impl::NodeAccess;
using zo::ZOError::not_supported;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

template <class T>
H Detached(T const& value, meta::MetaDataTraits const& traits = AtomicTraits<T>()) {
    return H(new ZOAtomicData<T>(IZO::npos, nullptr, traits, value));
}

template <class T>
T ValueOf(H const& node) {
    return dynamic_cast<zo::IZOKind<T> const&>(*node).GetData();
}

template <class T>
class ValueRows : public testing::Test {
protected:
    /// 1 as a value of the row.
    static T One() {
        T value{};
        EXPECT_FALSE(AtomicTraits<T>().AsAtomic()->fromBool(true, &value).IsError());
        return value;
    }
};
using RowTypes = testing::Types<unsigned char, int, unsigned, long, unsigned long, float, double, htl::Int64,
                                htl::UInt64, bool, std::string, std::wstring, DataParamType>;
TYPED_TEST_SUITE(ValueRows, RowTypes);

TYPED_TEST(ValueRows, AFreshValueIsTheDefault) {
    H const node(new ZOAtomicData<TypeParam>(IZO::npos, nullptr, AtomicTraits<TypeParam>()));
    EXPECT_EQ(ValueOf<TypeParam>(node), TypeParam{});
    EXPECT_TRUE(node->IsDefault());
    EXPECT_TRUE(Succeeds(node->Verify()));
}

TYPED_TEST(ValueRows, WhatIsSetIsWhatIsGot) {
    H const node = Detached(TypeParam{});
    bool truth = false;
    EXPECT_TRUE(Succeeds(node->Set(true)));
    EXPECT_EQ(ValueOf<TypeParam>(node), this->One());
    EXPECT_TRUE(Succeeds(node->Get(truth)));
    EXPECT_TRUE(truth);
    EXPECT_FALSE(node->IsDefault());
    std::wstring text;
    EXPECT_TRUE(Succeeds(node->Get(text)));
    node->Clear();
    EXPECT_TRUE(node->IsDefault());
    EXPECT_TRUE(Succeeds(node->Set(text)));
    EXPECT_EQ(ValueOf<TypeParam>(node), this->One());
}

TYPED_TEST(ValueRows, ACloneCarriesTheValueAndAnEmptyCloneDoesNot) {
    H const node = Detached(this->One());
    H const clone(node->Clone());
    H const empty(node->EmptyClone());
    EXPECT_EQ(ValueOf<TypeParam>(clone), this->One());
    EXPECT_EQ(ValueOf<TypeParam>(empty), TypeParam{});
    EXPECT_EQ(clone->GetDataTraits().Descriptor(), node->GetDataTraits().Descriptor());
    EXPECT_EQ(clone->OwnerID(), IZO::npos);
    EXPECT_EQ(clone->RefCount(), 1);
}

TYPED_TEST(ValueRows, AViewReadsAndWritesMemory) {
    TypeParam memory = this->One();
    H const view = zo::GetAtomicWrapper(&memory, AtomicTraits<TypeParam>());
    ASSERT_TRUE(view);
    EXPECT_EQ(ValueOf<TypeParam>(view), this->One());
    EXPECT_TRUE(Succeeds(view->Set(false)));
    EXPECT_EQ(memory, ValueOf<TypeParam>(view));
    EXPECT_NE(memory, this->One());
    memory = this->One();
    EXPECT_EQ(ValueOf<TypeParam>(view), this->One());
}

TYPED_TEST(ValueRows, AssignTakesTheValueOfTheSameType) {
    TypeParam memory{};
    H const view = zo::GetAtomicWrapper(&memory, AtomicTraits<TypeParam>());
    EXPECT_TRUE(Succeeds(view->Assign(Detached(this->One()))));
    EXPECT_EQ(memory, this->One());
    H const node = Detached(TypeParam{});
    EXPECT_TRUE(Succeeds(node->Assign(view)));
    EXPECT_EQ(ValueOf<TypeParam>(node), this->One());
}

class ValueTest : public EmbankmentTest {
protected:
    double& Cohesion() { return embankment.model.soils[0].cohesion; }
};

TEST_F(ValueTest, AssignTakesNoOtherType) {
    EXPECT_TRUE(FailsAs(Detached(0u)->Assign(Detached(1)), not_supported("")));
    EXPECT_TRUE(FailsAs(Detached(0.0)->Assign(Detached(1)), not_supported("")));
    EXPECT_TRUE(FailsAs(Detached(0L)->Assign(Detached(htl::Int64(1))), not_supported("")));
    EXPECT_TRUE(FailsAs(Detached(0.0)->Assign(H()), not_supported("")));
    EXPECT_TRUE(FailsAs(Detached(0.0)->Assign(Find("Soils")), not_supported("")));
}

TEST_F(ValueTest, AssignChecksTheValue) {
    EXPECT_TRUE(FailsAs(Find("Soils[0].Cohesion")->Assign(Detached(-1.0)), NegativeCohesion()));
    EXPECT_EQ(Cohesion(), 25);
}

TEST_F(ValueTest, AFailedConversionLeavesTheValue) {
    EXPECT_TRUE(Find("Soils[0].Cohesion")->Set(L"soft").Is(90006));
    EXPECT_EQ(Cohesion(), 25);
    EXPECT_TRUE(Find("Soils[0].Drainage")->Set(L"wet").Is(21663));
    EXPECT_EQ(embankment.model.soils[0].drainage, Drainage::Undrained);
}

TEST_F(ValueTest, ARefusedValueLeavesTheValue) {
    EXPECT_TRUE(FailsAs(Find("Soils[0].Cohesion")->Set(-1.0), NegativeCohesion()));
    EXPECT_TRUE(FailsAs(Find("Soils[0].Cohesion")->Set(-1), NegativeCohesion()));
    EXPECT_TRUE(FailsAs(Find("Soils[0].Cohesion")->Set(L"-1"), NegativeCohesion()));
    EXPECT_EQ(Cohesion(), 25);
}

TEST_F(ValueTest, AnInvalidValueThatIsStoredIsNeverRefused) {
    Cohesion() = -5;
    EXPECT_TRUE(Succeeds(Find("Soils[0].Cohesion")->Set(-5.0)));
    EXPECT_TRUE(FailsAs(Find("Soils[0].Cohesion")->Verify(), NegativeCohesion()));
    EXPECT_TRUE(FailsAs(Find("Soils[0].Cohesion")->Set(-6.0), NegativeCohesion()));
    EXPECT_EQ(Cohesion(), -5);
}

TEST_F(ValueTest, ANumberThatIsNoneEqualsEveryNumber) {
    EXPECT_TRUE(Succeeds(Find("Soils[0].Cohesion")->Set(nan)));
    EXPECT_EQ(Cohesion(), 25) << "nothing is stored";
    Cohesion() = nan;
    EXPECT_TRUE(Succeeds(Find("Soils[0].Cohesion")->Set(3.0)));
    EXPECT_TRUE(std::isnan(Cohesion())) << "nothing replaces it";
    Find("Soils[0].Cohesion")->Clear();
    EXPECT_EQ(Cohesion(), 0);
}

TEST_F(ValueTest, TheTwoZerosAreEqual) {
    Cohesion() = 0.0;
    EXPECT_TRUE(Succeeds(Find("Soils[0].Cohesion")->Set(-0.0)));
    EXPECT_FALSE(std::signbit(Cohesion()));
}

TEST_F(ValueTest, AWriteThatChangesNothingIsNotChecked) {
    int checks = 0;
    auto const traits = meta::AtomicBuilder<double>()
                            .Valid([&checks](double const&, IZO const*) {
                                ++checks;
                                return htl::status::Success;
                            })
                            .Build();
    H const node = Detached(2.5, traits);
    EXPECT_TRUE(Succeeds(node->Set(2.5)));
    EXPECT_TRUE(Succeeds(node->Set(L"2.5")));
    EXPECT_TRUE(Succeeds(node->Assign(Detached(2.5))));
    EXPECT_EQ(checks, 0);
    EXPECT_TRUE(Succeeds(node->Set(3.5)));
    EXPECT_EQ(checks, 1);
}

TEST_F(ValueTest, TheCheckIsGivenTheNode) {
    IZO const* seen = nullptr;
    auto const traits = meta::AtomicBuilder<double>()
                            .Valid([&seen](double const&, IZO const* node) {
                                seen = node;
                                return htl::status::Success;
                            })
                            .Build();
    H const node = Detached(0.0, traits);
    EXPECT_TRUE(Succeeds(node->Set(1.0)));
    EXPECT_EQ(seen, node.get());
}

TEST_F(ValueTest, ClearStoresTheDefaultEvenIfItIsInvalid) {
    auto const traits = meta::AtomicBuilder<double>()
                            .Default(-1)
                            .Valid([](double const& value, IZO const*) {
                                return value < 0 ? NegativeCohesion() : htl::status::Success;
                            })
                            .Build();
    H const node = Detached(5.0, traits);
    node->Clear();
    EXPECT_EQ(ValueOf<double>(node), -1);
    double memory = 5;
    zo::GetAtomicWrapper(&memory, traits)->Clear();
    EXPECT_EQ(memory, -1);
}

TEST_F(ValueTest, NothingIsCheckedWhileTheOwnerSaysSo) {
    H const cohesion = Find("Soils[0].Cohesion");
    {
        zo::TrackingSuspension const suspended(*embankment.registry->Impl());
        EXPECT_TRUE(Succeeds(cohesion->Set(-3.0)));
        EXPECT_TRUE(Succeeds(cohesion->Verify()));
    }
    EXPECT_EQ(Cohesion(), -3);
    EXPECT_TRUE(FailsAs(cohesion->Verify(), NegativeCohesion()));
}

TEST_F(ValueTest, AValueWithoutAnOwnerIsAlwaysChecked) {
    zo::TrackingSuspension const suspended(*embankment.registry->Impl());
    H const node = Detached(-3.0, CohesionTraits());
    EXPECT_TRUE(FailsAs(node->Verify(), NegativeCohesion()));
    EXPECT_TRUE(FailsAs(node->Set(-4.0), NegativeCohesion()));
}

TEST_F(ValueTest, RegistrationBringsTheTraitsOfTheRow) {
    H const node(new ZOAtomicData<double>(IZO::npos, nullptr, AtomicTraits<double>()));
    Embankment const project([&](Embankment& rows) {
        rows.Row("Tolerance", node, {meta::MetaPersistTraits::No, L"Tolerance"}, CohesionTraits());
    });
    EXPECT_EQ(node->GetDataTraits().Descriptor(), CohesionTraits().Descriptor());
    EXPECT_EQ(node->Owner(), project.registry.get());
    EXPECT_EQ(Find("Tolerance"), node) << "a row without memory is its own value";
    EXPECT_TRUE(FailsAs(node->Set(-1.0), NegativeCohesion()));
}

TEST_F(ValueTest, APolicyDecidesOnReadsAndWrites) {
    H const count(zo::GetTemplate("Summary.SoilCount"));
    EXPECT_EQ(TextOf(count), L"3");
    EXPECT_TRUE(FailsAs(count->Set(4), not_supported("computed value")));
    EXPECT_TRUE(Succeeds(count->Set(3))) << "nothing to write";
    count->Clear();
    EXPECT_EQ(TextOf(count), L"3") << "a refused clear is nobody's failure";
    H const clone(count->Clone());
    EXPECT_TRUE(Succeeds(clone->Set(4)));
    EXPECT_EQ(TextOf(clone), L"4") << "a clone is a value of its own";
}

TEST_F(ValueTest, LenWithoutAnOwnerIsZeroAndCantBeSet) {
    H const node(new zo::ZOAtomicCustom<zo::ZOArrayLenPolicy, zo::ZOAccessDataVMT<htl::UInt64>>(
        IZO::npos, nullptr, AtomicTraits<htl::UInt64>()));
    EXPECT_EQ(TextOf(node), L"0");
    EXPECT_TRUE(FailsAs(node->Set(1), not_supported("Len")));
}

TEST_F(ValueTest, LenReadsAndWritesTheLengthOfItsArray) {
    H const length = Find("Soils.Len");
    ASSERT_TRUE(length);
    htl::Int64 value = 0;
    EXPECT_TRUE(Succeeds(length->Get(value)));
    EXPECT_EQ(value, 3);
    EXPECT_TRUE(Succeeds(length->Set(5)));
    EXPECT_EQ(embankment.model.soils.size(), 5u);
    EXPECT_EQ(TextOf(length), L"5");
    EXPECT_TRUE(Succeeds(length->Set(L"1")));
    EXPECT_EQ(embankment.model.soils.size(), 1u);
}

TEST_F(ValueTest, LenOfAFixedArrayCantBeChanged) {
    H const length = Find("Soils[0].Anisotropy.Len");
    EXPECT_EQ(TextOf(length), L"3");
    EXPECT_TRUE(FailsAs(length->Set(4), not_supported("")));
    EXPECT_TRUE(Succeeds(length->Set(3)));
}

TEST_F(ValueTest, LenTakesNoLengthThatMemoryCantHold) {
    EXPECT_TRUE(FailsAs(Find("Soils.Len")->Set(L"9223372036854775808"), not_supported("")));
    EXPECT_TRUE(FailsAs(Find("Soils.Len")->Set(L"18446744073709551615"), not_supported("")));
    EXPECT_TRUE(FailsAs(Find("Soils.Len")->Set(-1), not_supported("")));
    EXPECT_EQ(embankment.model.soils.size(), 3u);
}

TEST_F(ValueTest, ClearOfLenEmptiesTheArray) {
    Find("Soils.Len")->Clear();
    EXPECT_TRUE(embankment.model.soils.empty());
    EXPECT_EQ(TextOf(Find("Soils.Len")), L"0");
}

TEST_F(ValueTest, ACloneOfLenIsANumberOfItsOwn) {
    H const clone(Find("Soils.Len")->Clone());
    EXPECT_EQ(TextOf(clone), L"3");
    EXPECT_TRUE(Succeeds(clone->Set(7)));
    EXPECT_EQ(embankment.model.soils.size(), 3u);
}

TEST_F(ValueTest, LenWithoutANameIsZero) {
    zo::TrackingSuspension const suspended(*embankment.registry->Impl());
    H const length = NodeAccess::GetSubZO(*Find("Soils"), "Len");
    EXPECT_EQ(TextOf(length), L"0");
    EXPECT_TRUE(FailsAs(length->Set(2), not_supported("Len")));
}

/// Puts a value in the place of the one it is given, and notes what it was asked.
struct Replacing : zo::IZOAccessValueTypeTrait {
    double replacement;
    htl::status result;
    double seen = 0;
    int conversions = 0;
    htl::status converted;

    explicit Replacing(double replacement, htl::status result = {}) : replacement(replacement), result(result) {}
    htl::status CallValueTypeTrait(void* value) override {
        seen = *static_cast<double*>(value);
        *static_cast<double*>(value) = replacement;
        return result;
    }
    htl::status ConvertUnitsInStatusToVisible(htl::status const& failure) override {
        ++conversions;
        converted = failure;
        return failure.IsError() ? htl::status::FromText(L"in feet") : failure;
    }
};

TEST_F(ValueTest, ATraitReadsTheValueAndItsChangeIsWritten) {
    Replacing trait(7.5);
    EXPECT_TRUE(Succeeds(NodeAccess::CallValueTypeTrait(*Find("Soils[0].Cohesion"), trait)));
    EXPECT_EQ(trait.seen, 25);
    EXPECT_EQ(Cohesion(), 7.5);
    EXPECT_EQ(trait.conversions, 1) << "success is passed by, too";
}

TEST_F(ValueTest, AFailedTraitWritesNothing) {
    Replacing trait(7.5, htl::status::FromText(L"bad"));
    EXPECT_TRUE(
        FailsAs(NodeAccess::CallValueTypeTrait(*Find("Soils[0].Cohesion"), trait), htl::status::FromText(L"in feet")));
    EXPECT_TRUE(FailsAs(trait.converted, htl::status::FromText(L"bad")));
    EXPECT_EQ(Cohesion(), 25);
}

TEST_F(ValueTest, ARefusedChangeOfATraitIsReportedInVisibleUnits) {
    Replacing trait(-1);
    EXPECT_TRUE(
        FailsAs(NodeAccess::CallValueTypeTrait(*Find("Soils[0].Cohesion"), trait), htl::status::FromText(L"in feet")));
    EXPECT_TRUE(FailsAs(trait.converted, NegativeCohesion()));
    EXPECT_EQ(Cohesion(), 25);
}

TEST_F(ValueTest, ATraitPassesAFailureOnUnlessItRewritesIt) {
    struct Reading : zo::IZOAccessValueTypeTrait {
        htl::status CallValueTypeTrait(void*) override { return htl::status::FromText(L"bad"); }
    } trait;
    EXPECT_TRUE(FailsAs(NodeAccess::CallValueTypeTrait(*Detached(1.0), trait), htl::status::FromText(L"bad")));
}

TEST_F(ValueTest, AQuestionIsAnsweredByTheValue) {
    std::function<bool(void const*)> const isLarge = [](void const* value) {
        return *static_cast<double const*>(value) > 20;
    };
    zo::ZOAccessValueTypeTrait<bool> trait(isLarge);
    EXPECT_FALSE(trait.Result());
    EXPECT_TRUE(Succeeds(NodeAccess::CallValueTypeTrait(*Find("Soils[0].Cohesion"), trait)));
    EXPECT_TRUE(trait.Result());
    EXPECT_TRUE(Succeeds(NodeAccess::CallValueTypeTrait(*Find("Soils[1].Cohesion"), trait)));
    EXPECT_FALSE(trait.Result());
}

TEST_F(ValueTest, ValuesConvertBetweenAllForms) {
    H const friction = Find("Soils[1].Friction");
    EXPECT_TRUE(Succeeds(friction->Set(L"33.6")));
    double number = 0;
    htl::Int64 whole = 0;
    bool truth = false;
    EXPECT_TRUE(Succeeds(friction->Get(number)));
    EXPECT_TRUE(Succeeds(friction->Get(whole)));
    EXPECT_TRUE(Succeeds(friction->Get(truth)));
    EXPECT_EQ(number, 33.6);
    EXPECT_EQ(whole, 34);
    EXPECT_TRUE(truth);
}

} // namespace
