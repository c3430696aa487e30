// The readers that the XML layer pushes into, call by call.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/SetImpl.h"
#include "Common/xml/ElemReader.h"

namespace {

using namespace plan;
using embankment::FailsAs;
using sys::file::XmlElemReader;
using zo::xml::Unknowns;
using zo::xml::impl::XMLError;
using zo::xml::impl::ZOElemReader;
using zo::xml::impl::ZORootReader;
using Reader = htl::handle<XmlElemReader>;

class ReaderTest : public PlanTest {
protected:
    ReaderTest() {
        AddProject(rows, project);
        rows.Number("Alpha", L"Alpha", alpha);
        rows.Numbers("Weights", L"Weights", weights);
        rows.Finish();
        root = htl::handle<ZORootReader>(new ZORootReader(rows.registry.get(), {}, {}));
    }
    static ZOElemReader& Of(Reader const& reader) { return dynamic_cast<ZOElemReader&>(*reader); }

    double alpha = 1;
    std::vector<double> weights{10, 20, 30};
    zo::TrackingSuspension const suspended{*rows.registry->Impl()};
    htl::handle<ZORootReader> root;
};

TEST_F(ReaderTest, ProjectIsPushedElementByElement) {
    root->Attribute({L"Version", L"12.03"});
    root->Attribute({L"AppVersion", L"11.2.0.4711"});
    EXPECT_EQ(root->Version(), 12.03);

    Reader const r1 = root->Element(L"Project");
    ASSERT_TRUE(r1);
    Reader const r2 = r1->Element(L"Title");
    ASSERT_TRUE(r2);
    r2->Text(L"Dam <A> & \"B\"");
    EXPECT_EQ(project.Title, L"Dam <A> & \"B\"");

    EXPECT_EQ(r1->Element(L"Points"), r2);
    r2->Attribute({L"Len", L"3"});
    EXPECT_EQ(project.Points.size(), 3u);
    Reader const r3 = r2->Element(L"Point");
    ASSERT_TRUE(r3);
    EXPECT_EQ(Of(r3).FullTag(), L"HZNData.Project.Points[1]");
    r3->Attribute({L"X", L"1.5"});
    EXPECT_EQ(project.Points[0].X, 1.5);
    EXPECT_EQ(r2->Element(L"Point"), r3);
    EXPECT_EQ(r2->Element(L"Point"), r3);
    EXPECT_EQ(Of(r3).LocalTag(), L"3");
    EXPECT_EQ(Of(r3).FullTag(), L"HZNData.Project.Points[3]");
    EXPECT_EQ(Of(r3).ErrorTag(), L"Points[3]");
    r3->Attribute({L"X", L"2"});
    r3->Attribute({L"Y", L"-3"});
    EXPECT_EQ(project.Points[2].X, 2);
    EXPECT_EQ(project.Points[2].Y, -3);

    EXPECT_EQ(r1->Element(L"Weights"), r2);
    r2->Text(L"1,0,2.5,0");
    EXPECT_EQ(project.Weights, (std::vector<double>{1, 0, 2.5, 0}));
    EXPECT_EQ(r1->Element(L"Comment"), r2);
    project.Comment = L"old";
    r2->Attribute({L"Missing", L"true"});
    EXPECT_EQ(project.Comment, L"");

    EXPECT_TRUE(root->Errors().GetErrors().empty());
    EXPECT_TRUE(root->UnknownItems().empty());
}

TEST_F(ReaderTest, AttributeThatIsAnIndexIsAnEntryCountedFromOne) {
    Reader const array = root->Element(L"Weights");
    array->Attribute({L"1", L"5"});
    array->Attribute({L"[3]", L"7"});
    EXPECT_EQ(weights, (std::vector<double>{5, 20, 7}));
    EXPECT_TRUE(root->UnknownItems().empty());
}

TEST_F(ReaderTest, IndexWithoutEntryIsUnknown) {
    Reader const array = root->Element(L"Weights");
    array->Attribute({L"4", L"5"});
    Reader const single = root->Element(L"Alpha");
    single->Attribute({L"1", L"5"});
    EXPECT_EQ(root->UnknownItems(), (Unknowns{{L"HZNData.Weights[4]", L"5"}, {L"HZNData.Alpha[1]", L"5"}}));
}

TEST_F(ReaderTest, ZeroAndOtherTextAreTagsAndNoIndices) {
    Reader const array = root->Element(L"Weights");
    for (wchar_t const* name : {L"0", L"[0]", L"1a", L"[]", L"[x]"}) array->Attribute({name, L"5"});
    EXPECT_EQ(root->UnknownItems(), (Unknowns{{L"HZNData.Weights[0]", L"5"},
                                              {L"HZNData.Weights[0]", L"5"},
                                              {L"HZNData.Weights[1a]", L"5"},
                                              {L"HZNData.Weights[]", L"5"},
                                              {L"HZNData.Weights[x]", L"5"}}));
    EXPECT_EQ(weights, (std::vector<double>{10, 20, 30}));
}

TEST_F(ReaderTest, AttributesAreFoundInAnyOrder) {
    Reader const r1 = root->Element(L"Project");
    Reader const r2 = r1->Element(L"Points");
    r2->Attribute({L"Len", L"4"});
    auto const point = [&](std::vector<std::pair<std::wstring, std::wstring>> const& items) {
        Reader const reader = r2->Element(L"Point");
        for (auto const& item : items) reader->Attribute(item);
    };
    point({{L"X", L"1"}, {L"Y", L"2"}});
    point({{L"Y", L"4"}, {L"X", L"3"}});
    point({{L"Y", L"5"}});
    point({{L"Z", L"9"}, {L"X", L"6"}, {L"X", L"7"}, {L"Y", L"8"}});
    EXPECT_EQ(project.Points[0].X, 1);
    EXPECT_EQ(project.Points[0].Y, 2);
    EXPECT_EQ(project.Points[1].X, 3);
    EXPECT_EQ(project.Points[1].Y, 4);
    EXPECT_EQ(project.Points[2].X, 0);
    EXPECT_EQ(project.Points[2].Y, 5);
    EXPECT_EQ(project.Points[3].X, 7);
    EXPECT_EQ(project.Points[3].Y, 8);
    EXPECT_EQ(root->UnknownItems(), (Unknowns{{L"HZNData.Project.Points[4].Z", L"9"}}));
}

TEST_F(ReaderTest, TextOfTheDocumentElementIsRefused) {
    root->Text(L"words");
    ASSERT_EQ(root->Errors().GetErrors().size(), 1u);
    EXPECT_TRUE(FailsAs(root->Errors().GetErrors()[0],
                        zo::ZOError::file_assign(L"HZNData", L"words", zo::ZOError::not_supported("void"))));
}

TEST_F(ReaderTest, FiltersLendTheirReadersForOneElement) {
    root = htl::handle<ZORootReader>(
        new ZORootReader(rows.registry.get(), {}, {{L"Project.Title", false}, {L"Alpha", true}}));
    Reader const project1 = root->Element(L"Project");
    ASSERT_TRUE(project1);
    EXPECT_FALSE(project1->Element(L"Comment"));
    ASSERT_TRUE(project1->Element(L"Title"));
    Reader const number = root->Element(L"Alpha");
    ASSERT_TRUE(number);
    EXPECT_NE(number, project1);
    EXPECT_FALSE(number->Element(L"Below"));
    EXPECT_FALSE(root->Element(L"Weights"));
    EXPECT_EQ(root->Element(L"Project"), project1);
}

TEST_F(ReaderTest, ReadersBelowLetGoOfTheirNodes) {
    Reader const r1 = root->Element(L"Project");
    Reader const r2 = r1->Element(L"Points");
    r2->Attribute({L"Len", L"2"});
    (void)r2->Element(L"Point");
    auto const points = rows.registry->Find("Project.Points");
    EXPECT_TRUE(FailsAs(points->SetLength(3), zo::ZOError::array_memory_conflict()));
    (void)root->Element(L"Alpha");
    EXPECT_TRUE(embankment::Succeeds(points->SetLength(3)));
}

TEST_F(ReaderTest, VeryDeepReadersEndWithoutRecursion) {
    std::vector<Reader> chain{root};
    for (int i = 0; i < 200000; ++i) chain.push_back(chain.back()->Element(L"Foo"));
    chain.clear();
    EXPECT_EQ(root->UnknownItems().size(), 200000u);
    root->DropBelow();
    root.release();
}

TEST(XMLErrorTest, OneMoreThanTheLimitIsKept) {
    XMLError errors(2);
    for (int i = 0; i < 5; ++i) errors.ReportError(zo::ZOError::not_found(std::to_string(i)));
    ASSERT_EQ(errors.GetErrors().size(), 3u);
    EXPECT_TRUE(FailsAs(errors.GetErrors()[2], zo::ZOError::not_found("2")));
}

} // namespace
