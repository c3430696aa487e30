#include "support/diag.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

using hzn::diag::DeclareCategoryMask;
using hzn::diag::IsLogged;
using hzn::diag::SetLogged;
using hzn::diag::Severity;

class DiagnosticsTest : public testing::Test {
protected:
    void TearDown() override {
        SetLogged(0, Severity::Error);
        hzn::eventsink::SetInstance(nullptr);
    }

    DeclareCategoryMask const visibility{"Embankment.Visibility"};
    DeclareCategoryMask const reading{"Embankment.Reading"};
};

bool IsOneBit(int mask) { return mask > 0 && (mask & (mask - 1)) == 0; }

TEST_F(DiagnosticsTest, EachNameHasOneBitOfItsOwn) {
    EXPECT_TRUE(IsOneBit(visibility));
    EXPECT_TRUE(IsOneBit(reading));
    EXPECT_NE(int{visibility}, int{reading});
    EXPECT_EQ(int{DeclareCategoryMask(std::string("Embankment.Reading").c_str())}, int{reading});
}

TEST_F(DiagnosticsTest, NothingIsLoggedUntilItIsAskedFor) {
    EXPECT_FALSE(IsLogged(Severity::Error, visibility));
    EXPECT_FALSE(IsLogged(Severity::Error, -1));
}

TEST_F(DiagnosticsTest, LogsTheMaskedCategoriesFromTheMinimumOn) {
    SetLogged(visibility, Severity::Note);
    EXPECT_FALSE(IsLogged(Severity::Info, visibility));
    EXPECT_TRUE(IsLogged(Severity::Note, visibility));
    EXPECT_TRUE(IsLogged(Severity::Error, visibility));
    EXPECT_FALSE(IsLogged(Severity::Error, reading));
    EXPECT_TRUE(IsLogged(Severity::Error, visibility | reading));
    SetLogged(visibility | reading, Severity::Info);
    EXPECT_TRUE(IsLogged(Severity::Info, reading));
    SetLogged(0, Severity::Info);
    EXPECT_FALSE(IsLogged(Severity::Error, visibility));
}

class CollectingSink final : public hzn::IEventSink {
public:
    void Post(Severity::Type severity, int category, std::wstring const& text) override {
        rows.push_back({severity, category, text});
    }
    struct Row {
        Severity::Type severity;
        int category;
        std::wstring text;
    };
    std::vector<Row> rows;
};

TEST_F(DiagnosticsTest, ThereIsAlwaysASink) {
    hzn::IEventSink* const first = hzn::eventsink::Instance();
    ASSERT_NE(first, nullptr);
    first->Post(Severity::Error, visibility, L"dropped");
    EXPECT_EQ(hzn::eventsink::SetInstance(nullptr), first);
    EXPECT_EQ(hzn::eventsink::Instance(), first);
}

TEST_F(DiagnosticsTest, PostsGoToTheSinkInPlace) {
    CollectingSink sink;
    hzn::IEventSink* const before = hzn::eventsink::SetInstance(&sink);
    EXPECT_EQ(hzn::eventsink::Instance(), &sink);
    hzn::eventsink::Instance()->Post(Severity::Warning, reading, L"Soils[7] is not visible.");
    ASSERT_EQ(sink.rows.size(), 1u);
    EXPECT_EQ(sink.rows[0].severity, Severity::Warning);
    EXPECT_EQ(sink.rows[0].category, int{reading});
    EXPECT_EQ(sink.rows[0].text, L"Soils[7] is not visible.");
    EXPECT_EQ(hzn::eventsink::SetInstance(before), &sink);
    EXPECT_EQ(hzn::eventsink::Instance(), before);
}

TEST(FeatureTest, FeaturesAreOffUntilTheyAreSet) {
    EXPECT_FALSE(hzn::feature::IsFeatureEnabled(L"Embankment.Seepage"));
    hzn::feature::SetFeature(L"Embankment.Seepage", true);
    EXPECT_TRUE(hzn::feature::IsFeatureEnabled(L"Embankment.Seepage"));
    EXPECT_FALSE(hzn::feature::IsFeatureEnabled(L"embankment.seepage"));
    EXPECT_FALSE(hzn::feature::IsFeatureEnabled(L""));
    hzn::feature::SetFeature(L"Embankment.Seepage", false);
    EXPECT_FALSE(hzn::feature::IsFeatureEnabled(L"Embankment.Seepage"));
}

TEST(CategoryLimitTest, NamesBeyondTheBitsShareTheLast) {
    // Run in a process of its own: the names would use up the bits of the other tests.
    auto const declareMany = [] {
        int all = 0;
        for (int i = 0; i < 60; ++i) {
            int const bit = DeclareCategoryMask(("Embankment.Category" + std::to_string(i)).c_str());
            if (!IsOneBit(bit)) std::exit(1);
            all |= bit;
        }
        int const first = DeclareCategoryMask("Embankment.Beyond1");
        int const second = DeclareCategoryMask("Embankment.Beyond2");
        std::exit(first == 1 << 30 && second == first && (all & first) != 0 ? 0 : 2);
    };
    EXPECT_EXIT(declareMany(), testing::ExitedWithCode(0), "");
}

TEST(CategoryThreadTest, ThreadsThatDeclareTheSameNameGetTheSameBit) {
    std::vector<int> bits(8);
    {
        std::vector<std::jthread> threads;
        for (int& bit : bits) threads.emplace_back([&bit] { bit = DeclareCategoryMask("Embankment.Threads"); });
    }
    for (int const bit : bits) EXPECT_EQ(bit, bits[0]);
}

} // namespace
