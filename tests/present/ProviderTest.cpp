// The functions by which an application says which units people see.
#include "tests/present/Basin.h"

#include "Common/model/ZOAtomicData.h"

namespace basin {
namespace {

using zo::RegisterUnitsProvider;
using zo::VisibleUnits;
using zo::ZOFunction;

char const* const activeName = "hzn::units::ActiveViewConsistentUnitSet()";
char const* const parameterName = "hzn::units::VisibleUnitSetForDataParamType()";
char const* const kindName = "hzn::units::VisibleUnitSetForUnitKind()";

template <class F>
H Function(std::function<F> function) {
    return H(new ZOFunction<F>(std::move(function)));
}

/// A basin without functions.
class ProviderTest : public testing::Test {
protected:
    void Add(std::string const& name, H const& node) {
        site.registry->RegisterZO(htl::handle<zo::IODS>(new zo::ODS(name, false, true)), node, {}, {});
    }
    std::wstring Length() { return zo::PrettyPrintValueWithUnits("Gauges.Length"); }

    Notation notation{classic};
    Site site{false};
};

TEST_F(ProviderTest, AFunctionIsFoundUnderItsName) {
    RegisterUnitsProvider([] { return metric; }, [](DataParamType) { return imperial; },
                          [](Kind::Type) { return imperial; });
    auto const* const active = dynamic_cast<zo::IZOKind<std::function<UnitSet()>> const*>(Find(activeName).get());
    ASSERT_TRUE(active);
    EXPECT_EQ(active->GetData()(), metric);
    EXPECT_TRUE((dynamic_cast<zo::IZOKind<std::function<UnitSet(DataParamType)>> const*>(Find(parameterName).get())));
    EXPECT_TRUE((dynamic_cast<zo::IZOKind<std::function<UnitSet(Kind::Type)>> const*>(Find(kindName).get())));
}

TEST_F(ProviderTest, AFunctionsNodeHasNoValueAndNoTag) {
    RegisterUnitsProvider([] { return metric; }, nullptr, nullptr);
    H const node = Find(activeName);
    EXPECT_FALSE(node->IsValueType());
    EXPECT_EQ(node->Tag(), L"");
    EXPECT_EQ(node->GetPersistTraits().Type, meta::MetaPersistTraits::No);
    EXPECT_EQ(zo::PrettyPrintValue(node), L"");
    double value = 1;
    EXPECT_TRUE(node->Get(value).IsError());
    EXPECT_TRUE(zo::ZOFwrdIterator(node->begin()) == node->end());
}

TEST_F(ProviderTest, ACloneHoldsTheSameFunction) {
    H const node = Function<UnitSet()>([] { return imperial; });
    H const clone(node->Clone());
    auto const* const function = dynamic_cast<ZOFunction<UnitSet()> const*>(clone.get());
    ASSERT_TRUE(function);
    EXPECT_EQ(function->Function()(), imperial);
}

TEST_F(ProviderTest, NobodysUnitsAreNone) {
    EXPECT_TRUE(VisibleUnits(Find("Gauges.Length")).IsZero());
    EXPECT_TRUE(VisibleUnits(DataParamType::Cohesion).IsZero());
    EXPECT_EQ(Length(), L"2.5");
}

TEST_F(ProviderTest, ActiveUnitsAloneAreShown) {
    RegisterUnitsProvider([] { return metric; }, nullptr, nullptr);
    EXPECT_EQ(VisibleUnits(Find("Gauges.Length")), metric);
    EXPECT_EQ(Length(), L"2.5 m");
}

TEST_F(ProviderTest, WithoutActiveUnitsNothingIsConverted) {
    RegisterUnitsProvider(nullptr, nullptr, [](Kind::Type) { return imperial; });
    EXPECT_EQ(VisibleUnits(Find("Gauges.Length")), imperial);
    EXPECT_EQ(zo::PrettyPrintValue("Gauges.Length"), L"2.5");
}

TEST_F(ProviderTest, FunctionsAreAskedEachTime) {
    UnitSet shown = imperial;
    RegisterUnitsProvider([] { return metric; }, nullptr, [&shown](Kind::Type) { return shown; });
    EXPECT_EQ(Length(), L"8.20209973753281 ft");
    shown = metric;
    EXPECT_EQ(Length(), L"2.5 m");
}

TEST_F(ProviderTest, FunctionsAreAskedAboutTheKindAndTheParameter) {
    RegisterParameters();
    std::vector<Kind::Type> kinds;
    std::vector<DataParamType> parameters;
    RegisterUnitsProvider([] { return metric; }, [&](DataParamType of) { return parameters.push_back(of), imperial; },
                          [&](Kind::Type of) { return kinds.push_back(of), imperial; });
    EXPECT_EQ(VisibleUnits(Find("Gauges.Stress")), imperial);
    EXPECT_EQ(kinds, std::vector<Kind::Type>{Kind::Stress});
    EXPECT_EQ(VisibleUnits(Find("Marks[0].Cohesion")), imperial);
    EXPECT_EQ(parameters, std::vector<DataParamType>{DataParamType::Cohesion});
    EXPECT_EQ(kinds.size(), 1u);
}

TEST_F(ProviderTest, FunctionsAreNotAskedAboutNothing) {
    RegisterUnitsProvider([] { return metric; },
                          [](DataParamType) {
                              ADD_FAILURE() << "asked about no parameter";
                              return imperial;
                          },
                          [](Kind::Type) {
                              ADD_FAILURE() << "asked about no kind";
                              return imperial;
                          });
    EXPECT_EQ(VisibleUnits(DataParamType::None), metric);
    EXPECT_EQ(VisibleUnits(Find("Gauges.Factor")), metric);
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Gauges.Factor"), L"0.125");
}

TEST_F(ProviderTest, OneValueWithItsUnitTakesTwoQuestions) {
    Site asked;
    asked.questions = 0;
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Gauges.Stress"), L"2088.54342331501 psf");
    EXPECT_EQ(asked.questions, 2);
    asked.questions = 0;
    EXPECT_EQ(zo::PrettyPrintValueWithUnits("Gauges.Factor"), L"0.125");
    EXPECT_EQ(asked.questions, 0);
}

TEST_F(ProviderTest, ANodeOfAnotherTypeCountsAsNone) {
    Add(activeName, Function<UnitSet(Kind::Type)>([](Kind::Type) { return imperial; }));
    Add(parameterName, Function<UnitSet()>([] { return imperial; }));
    Add(kindName, H(new zo::ZOAtomicData<double>(zo::IZO::npos, nullptr, meta::AtomicTraits<double>(), 2)));
    EXPECT_TRUE(VisibleUnits(Find("Gauges.Length")).IsZero());
    EXPECT_TRUE(VisibleUnits(DataParamType::Cohesion).IsZero());
    EXPECT_EQ(Length(), L"2.5");
}

TEST_F(ProviderTest, ANodeWithoutAFunctionCountsAsNone) {
    Add(activeName, Function<UnitSet()>(nullptr));
    Add(kindName, Function<UnitSet(Kind::Type)>(nullptr));
    EXPECT_TRUE(VisibleUnits(Find("Gauges.Length")).IsZero());
}

TEST_F(ProviderTest, ANodeOfTheApplicationMayHoldTheFunction) {
    class Chosen : public zo::IZO, public zo::IZOKind<std::function<UnitSet()>> {
    public:
        Chosen() : IZO(npos, nullptr, npos) {}
        std::function<UnitSet()> GetData() const override {
            return [] { return metresAndPounds; };
        }
        IZO* Clone() override { return new Chosen; }
    };
    Add(activeName, H(new Chosen));
    EXPECT_EQ(VisibleUnits(Find("Gauges.Length")), metresAndPounds);
}

TEST_F(ProviderTest, ASecondProviderIsRefused) {
    RegisterUnitsProvider([] { return metric; }, nullptr, nullptr);
    EXPECT_THROW(RegisterUnitsProvider([] { return imperial; }, nullptr, nullptr), htl::status_exception);
    EXPECT_EQ(Length(), L"2.5 m");
}

TEST_F(ProviderTest, FunctionsMayLookNodesUp) {
    RegisterUnitsProvider([] { return metric; }, nullptr,
                          [](Kind::Type) {
                              return TextOf(Find("Gauges.Lined")) == L"true" &&
                                             zo::PrettyPrintValueWithUnits("Gauges.Factor") == L"0.125"
                                         ? imperial
                                         : metric;
                          });
    EXPECT_EQ(Length(), L"8.20209973753281 ft");
}

} // namespace
} // namespace basin
