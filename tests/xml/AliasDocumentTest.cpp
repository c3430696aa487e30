// Aliases in documents: one with a tag of its own is written under its tag and read back through it.
#include "tests/xml/Plan.h"

#include "Common/redirect/ZOAlias.h"

namespace {

using namespace plan;
using embankment::FailsAs;
using embankment::StructPrototype;
using embankment::Succeeds;
using embankment::ValuePrototype;
using zo::ZOAlias;
using P = meta::MetaPersistTraits;

constexpr std::size_t npos = IZO::npos;

MetaDataTraits const& TextTraits() { return meta::AtomicTraits<std::wstring>(); }

/// A title, and what each test adds. Tags of aliases come behind "Title" unless a test says otherwise.
class AliasDocumentTest : public PlanTest {
protected:
    AliasDocumentTest() { rows.Text("Title", L"Title", title); }

    htl::handle<zo::ODS> Alias(std::string const& name, std::wstring const& tag, std::string const& source,
                               std::uint32_t type = P::Always, bool asValue = true, bool active = true) {
        return rows.Add(name, H(new ZOAlias(source, npos, nullptr)), {type, tag, asValue}, TextTraits(), nullptr,
                        active);
    }

    std::wstring title = L"Tailings dam";
};

TEST_F(AliasDocumentTest, AValueIsWrittenUnderTheAliassTag) {
    Alias("Short", L"Zone", "Title");
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Title>Tailings dam</Title><Zone>Tailings dam</Zone>");
}

TEST_F(AliasDocumentTest, AValueIsReadBackThroughTheAlias) {
    Alias("Short", L"Zone", "Title");
    rows.Finish();
    EXPECT_TRUE(IsClean(Load(L"<Zone>Core</Zone>")));
    EXPECT_EQ(title, L"Core");
}

TEST_F(AliasDocumentTest, AMissingValueIsReadBackThroughTheAlias) {
    Alias("Short", L"Zone", "Title");
    rows.Finish();
    title.clear();
    EXPECT_EQ(Saved(), L"<Title Missing=\"true\"/><Zone Missing=\"true\"/>");
    title = L"Core";
    EXPECT_TRUE(IsClean(Import(L"<Zone Missing=\"true\"/>")));
    EXPECT_EQ(title, L"");
}

TEST_F(AliasDocumentTest, ASourceAtItsDefaultIsLeftOutWhereTheAliasSaysSo) {
    Alias("Short", L"Zone", "Title", P::IfNotDefined);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Title>Tailings dam</Title><Zone>Tailings dam</Zone>");
    title.clear();
    EXPECT_EQ(Saved(), L"<Title Missing=\"true\"/>");
}

TEST_F(AliasDocumentTest, AnAliasThatIsNotPersistedIsNotWritten) {
    Alias("Never", L"Zone", "Title", P::No);
    Alias("Untagged", L"", "Title");
    Alias("Inactive", L"Vault", "Title", P::Always, true, false);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Title>Tailings dam</Title>");
}

TEST_F(AliasDocumentTest, AnInactiveAliasIsNotRead) {
    Alias("Inactive", L"Vault", "Title", P::Always, true, false);
    rows.Finish();
    EXPECT_TRUE(IsClean(Import(L"<Vault>Core</Vault>")));
    EXPECT_EQ(title, L"Tailings dam");
}

TEST_F(AliasDocumentTest, AnAliasMayBeRegisteredBeforeItsSource) {
    std::wstring comment = L"none";
    Alias("Short", L"Zone", "Comment");
    rows.Text("Comment", L"Comment", comment);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Comment>none</Comment><Title>Tailings dam</Title><Zone>none</Zone>");
    EXPECT_TRUE(IsClean(Load(L"<Zone>some</Zone>")));
    EXPECT_EQ(comment, L"some");
}

TEST_F(AliasDocumentTest, AnAliasWithoutASourceIsLeftOut) {
    Alias("Short", L"Zone", "Nothing");
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Title>Tailings dam</Title>");
}

TEST_F(AliasDocumentTest, AValueForAnAliasWithoutASourceIsReported) {
    Alias("Short", L"Zone", "Nothing");
    rows.Finish();
    Loaded const loaded = Import(L"<Zone>Core</Zone>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(FailsAs(loaded.errors[0],
                        zo::ZOError::file_assign(L"HZNData.Zone", L"Core", zo::ZOError::not_found("Nothing"))));
}

TEST_F(AliasDocumentTest, ALengthForAnAliasWithoutASourceIsReported) {
    Alias("Short", L"Zone", "Nothing");
    rows.Finish();
    Loaded const loaded = Import(L"<Zone Len=\"2\"><A>1</A></Zone>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(
        FailsAs(loaded.errors[0], zo::ZOError::file_assign(L"HZNData.Zone", L"2", zo::ZOError::not_found("Nothing"))));
}

TEST_F(AliasDocumentTest, AliasesInACircleDoNoHarm) {
    Alias("One", L"Zone", "Two");
    Alias("Two", L"Zwei", "One", P::Always, false);
    rows.Finish();
    (void)Written();
    EXPECT_EQ(Import(L"<Zone>Core</Zone><Zwei Len=\"1\"><Zone/></Zwei>").errors.size(), 2u);
    EXPECT_EQ(title, L"Tailings dam");
}

// ---- Below structures

struct Frame {
    double width = 0;
};

MetaDataTraits FrameTraits() {
    static MetaDataTraits const traits =
        meta::StructureBuilder<Frame>().Member(&Frame::width, [] { return meta::AtomicTraits<double>(); }).Build();
    return traits;
}

TEST_F(AliasDocumentTest, AFieldThatIsAnAliasIsWrittenAndReadInItsStructure) {
    Frame frame{2.5};
    rows.Add("Frame", StructPrototype(FrameTraits()), {P::Always, L"Frame"}, FrameTraits(), &frame);
    rows.Add("Frame.Width", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L"Width", true},
             meta::AtomicTraits<double>());
    Alias("Frame.Label", L"Label", "Title");
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Frame><Width>2.5</Width><Label>Tailings dam</Label></Frame><Title>Tailings dam</Title>");
    EXPECT_TRUE(IsClean(Load(L"<Frame><Width>4</Width><Label>Core</Label></Frame>")));
    EXPECT_EQ(title, L"Core");
    EXPECT_EQ(frame.width, 4.0);
}

TEST_F(AliasDocumentTest, AnAttributeThatIsAnAliasIsWrittenAndRead) {
    Frame frame{2.5};
    rows.Add("Frame", StructPrototype(FrameTraits()), {P::Always, L"Frame", false, true}, FrameTraits(), &frame);
    rows.Add("Frame.Width", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L"Width", true},
             meta::AtomicTraits<double>());
    Alias("Frame.Label", L"Label", "Title");
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Frame Width=\"2.5\" Label=\"Tailings dam\"/><Title>Tailings dam</Title>");
    EXPECT_TRUE(IsClean(Load(L"<Frame Width=\"4\" Label=\"Core\"/>")));
    EXPECT_EQ(title, L"Core");
    EXPECT_EQ(frame.width, 4.0);
}

TEST_F(AliasDocumentTest, AnAttributeThatIsAnAliasOutsideDocumentsIsUnknown) {
    Frame frame{2.5};
    rows.Add("Frame", StructPrototype(FrameTraits()), {P::Always, L"Frame", false, true}, FrameTraits(), &frame);
    Alias("Frame.Label", L"Label", "Title", P::No);
    rows.Finish();
    Loaded const loaded = Import(L"<Frame Label=\"Core\"/>");
    ASSERT_EQ(loaded.unknown.size(), 1u);
    EXPECT_EQ(loaded.unknown[0].first, L"HZNData.Frame.Label");
    EXPECT_EQ(loaded.unknown[0].second, L"Core");
    EXPECT_EQ(title, L"Tailings dam");
}

TEST_F(AliasDocumentTest, ChildrenOfAnAliassSourceAreReadThroughIt) {
    AddProject(rows, project);
    Alias("Plan", L"Zone", "Project", P::Always, false);
    rows.Finish();
    EXPECT_TRUE(IsClean(Load(L"<Zone><Title>Dam</Title><Points Len=\"1\"><Point X=\"3\"/></Points></Zone>")));
    EXPECT_EQ(project.Title, L"Dam");
    ASSERT_EQ(project.Points.size(), 1u);
    EXPECT_EQ(project.Points[0].X, 3.0);
}

// ---- Arrays

TEST_F(AliasDocumentTest, AnArrayInOneTextIsWrittenAndReadThroughItsAlias) {
    std::vector<double> loads{1, 2.5};
    rows.Numbers("Loads", L"Loads", loads, P::No);
    Alias("Short", L"Zone", "Loads");
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Title>Tailings dam</Title><Zone>1,2.5</Zone>");
    EXPECT_TRUE(IsClean(Load(L"<Zone>7,8,9</Zone>")));
    EXPECT_EQ(loads, (std::vector<double>{7, 8, 9}));
}

TEST_F(AliasDocumentTest, AnArrayThatOnlyItsAliasWritesIsEmptyWhereTheDocumentHasNone) {
    std::vector<double> loads{1, 2.5};
    rows.Numbers("Loads", L"Loads", loads, P::No);
    Alias("Short", L"Zone", "Loads");
    rows.Finish();
    EXPECT_TRUE(IsClean(Load(L"<Title>Dam</Title>")));
    EXPECT_EQ(loads, std::vector<double>());
}

TEST_F(AliasDocumentTest, AnArraysLengthIsWrittenAndReadThroughItsAlias) {
    AddProject(rows, project);
    Alias("Before", L"Corners", "Project.Points", P::Always, false);
    Alias("Behind", L"Zone", "Project.Points", P::Always, false);
    rows.Finish();
    project.Points = {{1, 2}, {3, 4}};
    std::wstring const saved = Saved();
    EXPECT_NE(saved.find(L"<Corners Len=\"2\"/>"), saved.npos);
    EXPECT_NE(saved.find(L"<Zone Len=\"2\"/>"), saved.npos);
    std::wstring const document = Written();
    project.Points.clear();
    EXPECT_TRUE(IsClean(LoadText(document)));
    ASSERT_EQ(project.Points.size(), 2u);
    EXPECT_EQ(project.Points[1].Y, 4.0);
    EXPECT_EQ(Written(), document);
}

TEST_F(AliasDocumentTest, AKeptElementOfAnArrayIsLetGoForALoad) {
    AddProject(rows, project);
    rows.Add("First", H(new zo::ZOAliasAbsolute("Project.Points[0].X", npos, nullptr)), {P::Always, L"Zone", true},
             TextTraits());
    rows.Finish();
    project.Points = {{1, 2}};
    std::wstring const document = Written();
    project.Points = {{5, 6}, {7, 8}};
    rows.registry->InvalidateMemory(""); // the save went through the alias, too
    EXPECT_TRUE(zo::Find("First")->IsValueType());
    double value = 0;
    ASSERT_TRUE(Succeeds(zo::Find("First")->Get(value)));
    EXPECT_TRUE(IsClean(LoadText(document)));
    ASSERT_EQ(project.Points.size(), 1u);
    EXPECT_EQ(project.Points[0].X, 1.0);
}

TEST_F(AliasDocumentTest, AnElementThatAnAssociatedAliasKeepsIsLetGoForALoad) {
    AddProject(rows, project);
    rows.Finish();
    project.Points = {{1, 2}};
    std::wstring const document = Written();
    project.Points = {{5, 6}, {7, 8}};
    H const alias = rows.registry->AssociateAlias("First", "Project.Points[0].X");
    ASSERT_TRUE(alias);
    EXPECT_EQ(embankment::TextOf(alias), L"5");
    EXPECT_TRUE(IsClean(LoadText(document)));
    ASSERT_EQ(project.Points.size(), 1u);
    EXPECT_EQ(embankment::TextOf(alias), L"1");
}

TEST_F(AliasDocumentTest, AKeptArrayWithinAnArrayIsLetGoForALoad) {
    embankment::Embankment plan([](embankment::Embankment& more) {
        more.Row("Corners", H(new zo::ZOAliasAbsolute("Regions[0].Points", npos, nullptr)), {P::Always, L"Zone", true},
                 TextTraits());
        more.Row("AheadCorners", H(new zo::ZOAliasAbsolute("Regions[1].Points", npos, nullptr)),
                 {P::Always, L"Ahead", true}, TextTraits());
    });
    plan.model.regions = {{1, {1, 2, 3}}};
    std::wstring const document = Written();
    plan.model.regions = {{2, {4}}, {3, {5, 6}}};
    plan.registry->InvalidateMemory("");
    EXPECT_EQ(embankment::TextOf(zo::Find("Corners")), L"4");
    EXPECT_TRUE(IsClean(LoadText(document)));
    ASSERT_EQ(plan.model.regions.size(), 1u);
    EXPECT_EQ(plan.model.regions[0].points, (std::vector<int>{1, 2, 3}));
    plan.registry->InvalidateMemory("");
}

} // namespace
