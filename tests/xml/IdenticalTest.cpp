// The comparison of two branches by what a document would hold of them.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"

namespace {

using namespace plan;
using P = meta::MetaPersistTraits;

class IdenticalTest : public PlanTest {
protected:
    IdenticalTest() {
        AddProject(rows, project);
        AddProject(rows, variant, "Variant", L"Variant");
        rows.Finish();
        project = variant = Example();
    }
    static bool AreIdentical(char const* a, char const* b) {
        return zo::AreZOsIdenticalUsingPersistance(a ? zo::Find(a) : H(), b ? zo::Find(b) : H());
    }

    Project variant;
};

TEST_F(IdenticalTest, NodeIsIdenticalWithItself) {
    EXPECT_TRUE(AreIdentical("Project", "Project"));
    EXPECT_TRUE(AreIdentical("Project.Points", "Project.Points"));
    EXPECT_TRUE(AreIdentical("Project.Title", "Project.Title"));
}

TEST_F(IdenticalTest, BranchesWithTheSameValuesAreIdentical) {
    EXPECT_TRUE(AreIdentical("Project", "Variant"));
    variant.Points[2].Y = -4;
    EXPECT_FALSE(AreIdentical("Project", "Variant"));
    EXPECT_FALSE(AreIdentical("Variant", "Project"));
}

TEST_F(IdenticalTest, WhatOnlyTheOtherHasGoesUnnoticed) {
    variant.Points.push_back({7, 8});
    EXPECT_TRUE(AreIdentical("Project", "Variant"));
    EXPECT_FALSE(AreIdentical("Variant", "Project"));
}

TEST_F(IdenticalTest, DefaultsMatchWhatIsMissing) {
    variant.Points.push_back({0, 0});
    EXPECT_TRUE(AreIdentical("Variant", "Project"));
    EXPECT_TRUE(AreIdentical("Project.Tolerance", nullptr));
    project.Tolerance = 1;
    EXPECT_FALSE(AreIdentical("Project.Tolerance", nullptr));
}

TEST_F(IdenticalTest, EmptyHandleIsMatchedByAnything) {
    EXPECT_TRUE(AreIdentical(nullptr, "Project"));
    EXPECT_TRUE(AreIdentical(nullptr, nullptr));
}

TEST_F(IdenticalTest, NodesThatDoNotPersistAreMatchedByAnything) {
    Rows other;
    double a = 1, b = 2;
    other.Number("Scratch", L"Scratch", a, P::No);
    other.Number("Beta", L"Beta", b);
    other.Finish();
    EXPECT_TRUE(AreIdentical("Scratch", "Beta"));
    EXPECT_FALSE(AreIdentical("Beta", "Scratch"));
    // A node without a row persists nothing.
    EXPECT_TRUE(zo::AreZOsIdenticalUsingPersistance(H(new zo::ZOStructClone(IZO::npos, nullptr)), zo::Find("Beta")));
}

TEST_F(IdenticalTest, ValuesAreComparedAsText) {
    Rows other;
    double number = 2;
    std::wstring text = L"2";
    other.Number("Number", L"Number", number);
    other.Text("Text", L"Text", text);
    other.Finish();
    EXPECT_TRUE(AreIdentical("Number", "Text"));
    text = L"2.0";
    EXPECT_FALSE(AreIdentical("Number", "Text"));
}

} // namespace
