// The cursors that the XML layer pulls from, call by call.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/SetImpl.h"
#include "Common/xml/ElemWriter.h"
#include "Common/xml/PersistTree.h"

namespace {

using namespace plan;
using sys::file::XmlElemWriter;
using zo::xml::impl::ZOElemWriter;
using zo::xml::impl::ZOElemWriterRoot;
using P = meta::MetaPersistTraits;
using Cursor = htl::handle<XmlElemWriter>;

class WriterTest : public PlanTest {
protected:
    WriterTest() {
        AddProject(rows, project);
        project = Example();
    }
    Cursor Root(std::vector<std::wstring> const* filter = nullptr) {
        auto const [first, last] = zo::xml::impl::PersistRoots(true);
        return Cursor(new ZOElemWriterRoot(first, last, formatVersion, filter));
    }
    /// "Tag(name=value ...)text" of the current element.
    static std::wstring Shown(Cursor const& cursor) {
        std::wstring result = cursor->Tag() + L"(";
        auto const [first, last] = cursor->Attributes();
        for (auto const* item = first; item != last; ++item) {
            if (item != first) result += L' ';
            result += item->first + L"=" + item->second;
        }
        return result + L")" + cursor->Text();
    }
    static ZOElemWriter& Of(Cursor const& cursor) { return dynamic_cast<ZOElemWriter&>(*cursor); }
};

TEST_F(WriterTest, ProjectIsPulledElementByElement) {
    rows.Finish();
    zo::TrackingSuspension const suspended(*rows.registry->Impl());
    Cursor const root = Root();
    EXPECT_EQ(Shown(root), L"HZNData(Version=12.03 AppVersion=11.2.0.4711)");
    EXPECT_FALSE(root->IsArrayEntry());

    Cursor const c1 = root->FirstChild();
    ASSERT_TRUE(c1);
    EXPECT_EQ(Shown(c1), L"Project()");
    EXPECT_EQ(c1->Attributes().first, nullptr);
    EXPECT_EQ(c1->Attributes().second, nullptr);

    Cursor const c2 = c1->FirstChild();
    ASSERT_TRUE(c2);
    EXPECT_EQ(Shown(c2), L"Title()Dam <A> & \"B\"");
    EXPECT_FALSE(c2->FirstChild());
    EXPECT_FALSE(c2->IsArrayEntry());

    EXPECT_EQ(c2->Next(), c2);
    EXPECT_EQ(Shown(c2), L"Points(Len=3)");
    Cursor const c3 = c2->FirstChild();
    ASSERT_TRUE(c3);
    EXPECT_TRUE(c3->IsArrayEntry());
    EXPECT_EQ(Shown(c3), L"Point(X=1.5)");
    EXPECT_FALSE(c3->FirstChild());
    EXPECT_EQ(c3->Next(), c3);
    EXPECT_EQ(Shown(c3), L"Point()");
    EXPECT_EQ(c3->Attributes().first, nullptr);
    EXPECT_FALSE(c3->FirstChild());
    EXPECT_EQ(c3->Next(), c3);
    EXPECT_EQ(Shown(c3), L"Point(X=2 Y=-3)");
    EXPECT_FALSE(c3->FirstChild());
    EXPECT_FALSE(c3->Next());

    EXPECT_EQ(c2->Next(), c2);
    EXPECT_EQ(Shown(c2), L"Weights()1,0,2.5,0");
    EXPECT_FALSE(c2->FirstChild());
    EXPECT_EQ(c2->Next(), c2);
    EXPECT_EQ(c2->Tag(), L""); // Tolerance at its default
    EXPECT_EQ(c2->Next(), c2);
    EXPECT_EQ(Shown(c2), L"Comment(Missing=true)");
    EXPECT_FALSE(c2->FirstChild());
    EXPECT_FALSE(c2->Next());
    EXPECT_FALSE(c1->Next());
}

TEST_F(WriterTest, DocumentElementHasNoSibling) {
    rows.Finish();
    EXPECT_FALSE(Root()->Next());
}

TEST_F(WriterTest, PathsCountEntriesFromOne) {
    rows.Finish();
    Cursor const root = Root();
    Cursor const project1 = root->FirstChild();
    Cursor const member = project1->FirstChild();
    EXPECT_EQ(Of(root).FilterPath(), L"HZNData");
    EXPECT_EQ(Of(root).ErrorTag(), L"HZNData");
    EXPECT_EQ(Of(project1).FilterPath(), L"HZNData.Project");
    EXPECT_EQ(Of(project1).ErrorTag(), L"HZNData.Project");
    EXPECT_EQ(Of(member).FilterPath(), L"HZNData.Project.Title");
    EXPECT_EQ(Of(member).LocalTag(), L"Title");
    EXPECT_EQ(Of(member).ErrorTag(), L"Project.Title");
    (void)member->Next();
    Cursor const point = member->FirstChild();
    (void)point->Next();
    EXPECT_EQ(Of(point).FilterPath(), L"HZNData.Project.Points[2]");
    EXPECT_EQ(Of(point).LocalTag(), L"2");
    EXPECT_EQ(Of(point).ErrorTag(), L"Project.Points[2]");
}

TEST_F(WriterTest, ErrorTagNamesAnEntryWithItsArrayAndAMemberWithItsEntry) {
    embankment::Embankment plan;
    Cursor const root = Root();
    Cursor branch = root->FirstChild();
    while (branch->Tag() != L"Soils") branch = branch->Next();
    Cursor const soil = branch->FirstChild();
    (void)soil->Next();
    EXPECT_EQ(Of(soil).ErrorTag(), L"HZNData.Soils[2]");
    Cursor const member = soil->FirstChild();
    EXPECT_EQ(Of(member).FilterPath(), L"HZNData.Soils[2].Name");
    EXPECT_EQ(Of(member).ErrorTag(), L"2.Name");
}

TEST_F(WriterTest, CursorsOfChildrenAreUsedAgain) {
    embankment::Embankment plan;
    zo::TrackingSuspension const suspended(*plan.registry->Impl());
    Cursor const root = Root();
    Cursor branch = root->FirstChild();
    while (branch->Tag() != L"Soils") branch = branch->Next();
    Cursor soil = branch->FirstChild();
    XmlElemWriter const* const first = soil->FirstChild().get();
    EXPECT_EQ(soil->Next(), soil);
    Cursor held = soil->FirstChild();
    EXPECT_EQ(held.get(), first);
    // One that is still held stays as it is.
    EXPECT_EQ(soil->Next(), soil);
    Cursor const other = soil->FirstChild();
    EXPECT_NE(other, held);
    EXPECT_EQ(other->Text(), L"Foundation");
    EXPECT_EQ(held->Text(), L"Sand shell");
}

TEST_F(WriterTest, LongTextIsTheSameWheneverItIsAsked) {
    rows.Finish();
    project.Title = std::wstring(10000, L'a') + L"b";
    project.Weights.assign(5000, 1.5);
    zo::TrackingSuspension const suspended(*rows.registry->Impl());
    Cursor const root = Root();
    Cursor const project1 = root->FirstChild();
    Cursor const member = project1->FirstChild();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(member->Tag(), L"Title");
        EXPECT_TRUE(member->Text() == project.Title);
    }
    (void)member->Next();
    EXPECT_EQ(member->Text(), L"");
    (void)member->Next();
    EXPECT_EQ(member->Text().size(), 5000u * 4 - 1);
    EXPECT_EQ(member->Text().size(), 5000u * 4 - 1);
    EXPECT_EQ(member->Tag(), L"Weights");
}

TEST_F(WriterTest, ArrayThatShrinksEndsItsEntries) {
    rows.Finish();
    zo::TrackingSuspension const suspended(*rows.registry->Impl());
    Cursor const root = Root();
    Cursor const project1 = root->FirstChild();
    Cursor const member = project1->FirstChild();
    (void)member->Next();
    Cursor const point = member->FirstChild();
    project.Points.pop_back();
    EXPECT_TRUE(point->Next());
    EXPECT_FALSE(point->Next());
}

} // namespace
