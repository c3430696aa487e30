// Top-level objects, and levels without an object.
#include "tests/kit/Site.h"

#include <memory>

namespace site {
namespace {

using zo::kit::Kit;
using zo::kit::Persist;

class BranchTest : public KitTest {
protected:
    std::unique_ptr<Point> origin = std::make_unique<Point>(Point{1, 2});
    std::vector<Point> points{{3, 4}};
    std::vector<double> levels{0, 1.5, 0};
    std::map<int, double> loads{{7, 0.5}};
    double datum = 12.5;
    std::vector<std::vector<int>> rows{{}, {1}};
};

TEST_F(BranchTest, IsThereAsLongAsItsObject) {
    Register(
        {&PointModule, [this](Kit& kit) { kit.Branch<Point>("Origin", L"Origin", [this] { return origin.get(); }); }});
    EXPECT_EQ(TextOf("Origin.X"), L"1");
    origin.reset();
    EXPECT_FALSE(zo::Find("Origin"));
    EXPECT_FALSE(zo::Find("Origin.X"));
    EXPECT_FALSE(zo::ZORegistry::Instance()->Root()->begin().current);
    EXPECT_EQ(Body(), L"");
    origin = std::make_unique<Point>(Point{5, 6});
    EXPECT_EQ(TextOf("Origin.X"), L"5");
    EXPECT_EQ(Body(), L"<Origin X=\"5\" Y=\"6\"/>");
}

TEST_F(BranchTest, ElementOfAnAbsentBranchIsPassedOver) {
    Register({&PointModule, [this](Kit& kit) {
                  kit.Branch<Point>("Origin", L"Origin", [this] { return origin.get(); });
                  kit.Branch<double>("Datum", L"Datum", [this] { return &datum; });
              }});
    std::wstring const document = Save();
    origin.reset();
    datum = 0;
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::StringRead(document, errors)));
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(datum, 12.5);
}

TEST_F(BranchTest, ContainersAndValuesStandAtTheTop) {
    Register({&PointModule, [this](Kit& kit) {
                  kit.Branch<std::vector<Point>>("Points", L"Points[Point]", [this] { return &points; });
                  kit.Branch<std::vector<double>>("Levels", L"Levels", [this] { return &levels; });
                  kit.Branch<std::map<int, double>>("Loads", L"Loads[Load]", [this] { return &loads; });
                  kit.Branch<double>("Datum", L"Datum", [this] { return &datum; });
                  kit.Branch<std::vector<std::vector<int>>>("Rows", L"Rows[Row]", [this] { return &rows; });
              }});
    EXPECT_EQ(TextOf("Points[0].Y"), L"4");
    EXPECT_EQ(TextOf("Loads.At(7).second"), L"0.5");
    EXPECT_EQ(TextOf("Datum"), L"12.5");
    EXPECT_EQ(Body(), L"<Datum>12.5</Datum><Levels>0,1.5,0</Levels>"
                      L"<Loads Len=\"1\"><Load Key=\"7\" Value=\"0.5\"/></Loads>"
                      L"<Points Len=\"1\"><Point X=\"3\" Y=\"4\"/></Points>"
                      L"<Rows Len=\"2\"><Row/><Row><Items>1</Items></Row></Rows>");
    std::wstring const document = Save();
    points.clear();
    levels = {9, 9};
    loads.clear();
    datum = 0;
    rows.clear();
    Load(document);
    EXPECT_EQ(points, (std::vector<Point>{{3, 4}}));
    EXPECT_EQ(levels, (std::vector<double>{0, 1.5, 0}));
    EXPECT_EQ(loads, (std::map<int, double>{{7, 0.5}}));
    EXPECT_EQ(datum, 12.5);
    EXPECT_EQ(rows, (std::vector<std::vector<int>>{{}, {1}}));
}

TEST_F(BranchTest, BranchThatIsNeverSavedIsNotInDocumentsNorReset) {
    Register({&PointModule, [this](Kit& kit) {
                  kit.Branch<std::vector<Point>>("Points", L"Points[Point]", [this] { return &points; },
                                                 {.persist = Persist::Never});
                  kit.Branch<double>("Datum", L"Datum", [this] { return &datum; });
              }});
    std::wstring const document = Save();
    EXPECT_EQ(Body(), L"<Datum>12.5</Datum>");
    Load(document);
    EXPECT_EQ(points, (std::vector<Point>{{3, 4}}));
    EXPECT_EQ(TextOf("Points[0].Y"), L"4");
}

TEST_F(BranchTest, GroupHoldsBranches) {
    Register({[this](Kit& kit) {
                  kit.Branch<std::vector<Point>>("Results.Last.Points", L"Points[Point]", [this] { return &points; });
                  kit.Branch<double>("Results.Datum", L"Datum", [this] { return &datum; });
                  kit.Group("Results.Last", L"Latest");
                  kit.Group("Results", L"Outcome");
              },
              &PointModule});
    EXPECT_EQ(TextOf("Results.Last.Points[0].X"), L"3");
    EXPECT_EQ(TextOf(zo::FindTag(std::wstring(L"Outcome.Latest.Points[1].X"))), L"3");
    ASSERT_TRUE(Succeeds(zo::Find("Results.Datum")->Set(2)));
    EXPECT_EQ(datum, 2);
    EXPECT_EQ(Body(), L"<Outcome><Datum>2</Datum><Latest><Points Len=\"1\"><Point X=\"3\" Y=\"4\"/></Points></Latest>"
                      L"</Outcome>");
    std::wstring const document = Save();
    points = {{8, 8}, {9, 9}};
    datum = 7;
    Load(document);
    EXPECT_EQ(points, (std::vector<Point>{{3, 4}}));
    EXPECT_EQ(datum, 2);
}

TEST_F(BranchTest, LoadEmptiesWhatTheDocumentLeavesOut) {
    Register({&PointModule, [this](Kit& kit) {
                  kit.Group("Results", L"Results");
                  kit.Branch<std::vector<Point>>("Results.Points", L"Points[Point]", [this] { return &points; });
                  kit.Branch<double>("Datum", L"Datum", [this] { return &datum; });
              }});
    Load(Document(L""));
    EXPECT_TRUE(points.empty());
    EXPECT_EQ(datum, 0);
}

TEST_F(BranchTest, SameTypeServesManyBranches) {
    Point other{7, 8};
    Register({&PointModule, [&](Kit& kit) {
                  kit.Branch<Point>("Origin", L"Origin", [this] { return origin.get(); });
                  kit.Branch<Point>("Other", L"Other", [&other] { return &other; });
              }});
    EXPECT_EQ(TextOf("Origin.X"), L"1");
    EXPECT_EQ(TextOf("Other.X"), L"7");
    origin.reset();
    EXPECT_EQ(Body(), L"<Other X=\"7\" Y=\"8\"/>");
}

} // namespace
} // namespace site
