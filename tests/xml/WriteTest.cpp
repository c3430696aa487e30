// What a save leaves out: inactive branches, filters, and saves that fail.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/SetImpl.h"

#include "support/xml/XmlFile.h"

#include <filesystem>

namespace {

using namespace plan;
using embankment::ArrayPrototype;
using embankment::StructPrototype;
using embankment::ValuePrototype;
using P = meta::MetaPersistTraits;

class WriteTest : public PlanTest {
protected:
    WriteTest() {
        AddProject(rows, project);
        project = Example();
    }
    /// Alpha, Beta and Gamma beside the project.
    void AddNumbers(bool betaActive = true) {
        rows.Number("Alpha", L"Alpha", alpha);
        rows.Number("Beta", L"Beta", beta, P::Always, betaActive);
        rows.Number("Gamma", L"Gamma", gamma);
    }

    double alpha = 1, beta = 2, gamma = 3;
    std::wstring const wholeProject =
        L"<Project><Title>Dam &lt;A&gt; &amp; &quot;B&quot;</Title><Points Len=\"3\"><Point X=\"1.5\"/><Point/>"
        L"<Point X=\"2\" Y=\"-3\"/></Points><Weights>1,0,2.5,0</Weights><Comment Missing=\"true\"/></Project>";
};

TEST_F(WriteTest, LaterSiblingOfAnInactiveStoreIsLeftOut) {
    AddNumbers(false);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Alpha>1</Alpha><Gamma>3</Gamma>" + wholeProject);
}

TEST_F(WriteTest, StoresThatComputeTheirObjectAreNeverWritten) {
    static double computed = 7;
    htl::handle<zo::IODS> const store(
        new zo::ODSAccessor("Zeta", [](zo::ODSAccessor const&) -> void* { return &computed; }));
    rows.registry->RegisterZO(store, ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L"Zeta", true},
                              meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(embankment::TextOf(zo::Find("Zeta")), L"7");
    EXPECT_EQ(Saved(), wholeProject);
    ASSERT_TRUE(IsClean(Import(L"<Zeta>8</Zeta>")));
    EXPECT_EQ(computed, 7);
}

TEST_F(WriteTest, FirstChildIsWrittenWhateverItsStore) {
    double value = 5;
    rows.Number("Aardvark", L"Aardvark", value, P::Always, false);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Aardvark>5</Aardvark>" + wholeProject);
}

TEST_F(WriteTest, FirstChildThatIsAwayGivesWayToTheNext) {
    double value = 5;
    auto const store = rows.Number("Aardvark", L"Aardvark", value);
    rows.Finish();
    store->SetObject(nullptr);
    store->SetAvailable(false);
    EXPECT_EQ(Saved(), wholeProject);
}

TEST_F(WriteTest, AllChildrenAwayLeaveTheDocumentElementEmpty) {
    Rows other;
    double value = 5;
    auto const store = other.Number("Alpha", L"Alpha", value);
    other.Finish();
    store->SetObject(nullptr);
    store->SetAvailable(false);
    EXPECT_EQ(Saved(), L"");
}

TEST_F(WriteTest, ParentThatNobodyRegisteredIsWrittenWithItsChildren) {
    double radius = 30;
    rows.Number("Results.Radius", L"Results.Radius", radius);
    rows.Finish();
    EXPECT_EQ(Saved(), wholeProject + L"<Results><Radius>30</Radius></Results>");
    radius = 0;
    ASSERT_TRUE(IsClean(Load(L"<Results><Radius>12</Radius></Results>")));
    EXPECT_EQ(radius, 12);
}

TEST_F(WriteTest, ValueThatFailsToReadIsLeftOut) {
    // The row says "value", and a structure has none.
    Point point{1, 2};
    rows.Add("Broken", StructPrototype(PointTraits()), {P::Always, L"Broken", true}, PointTraits(), &point);
    rows.Finish();
    EXPECT_EQ(Saved(), wholeProject);
}

TEST_F(WriteTest, SavingChangesNothingInTheRegistry) {
    rows.Finish();
    auto const& tables = *rows.registry->Impl();
    std::size_t const entries = tables.entries.Size();
    (void)Saved();
    EXPECT_EQ(tables.entries.Size(), entries);
    EXPECT_TRUE(tables.trackTemporaries);
    EXPECT_TRUE(tables.validateValues);
    EXPECT_EQ(project.Points.size(), 3u);
}

TEST_F(WriteTest, FilterWritesTheNamedNodeItsAncestorsAndAllBelow) {
    AddNumbers();
    rows.Finish();
    EXPECT_EQ(Saved({L"HZNData.Project.Points"}),
              L"<Project><Points Len=\"3\"><Point X=\"1.5\"/><Point/><Point X=\"2\" Y=\"-3\"/></Points></Project>");
    EXPECT_EQ(Saved({L"HZNData.Alpha", L"HZNData.Project.Weights"}),
              L"<Alpha>1</Alpha><Project><Weights>1,0,2.5,0</Weights></Project>");
}

TEST_F(WriteTest, FilterOnOneEntryKeepsThePlacesOfTheOthers) {
    rows.Finish();
    EXPECT_EQ(Saved({L"HZNData.Project.Points[3]"}),
              L"<Project><Points Len=\"3\"><Point/><Point/><Point X=\"2\" Y=\"-3\"/></Points></Project>");
}

TEST_F(WriteTest, FilterOnOneAttributeWritesItsWholeRecordAndDropsOtherEntries) {
    rows.Finish();
    EXPECT_EQ(Saved({L"HZNData.Project.Points[3].X"}),
              L"<Project><Points Len=\"3\"><Point X=\"2\" Y=\"-3\"/></Points></Project>");
}

TEST_F(WriteTest, FilterHoldsBackAttributesOfRecordsAndNoOtherContent) {
    std::deque<double> steps{1, 2};
    auto const traits = meta::ArrayTraits<std::deque<double>>([] { return meta::AtomicTraits<double>(); });
    rows.Add("Steps", ArrayPrototype(traits), {P::Always, L"Steps[Step]"}, traits, &steps);
    rows.Add("Steps.[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L"", true},
             meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved({L"HZNData.Steps[2]"}), L"<Steps Len=\"2\"><Step>1</Step><Step>2</Step></Steps>");
}

TEST_F(WriteTest, FilterIsAPrefixTestInBothDirections) {
    double ab = 4, abc = 5;
    rows.Number("Ab", L"Ab", ab);
    rows.Number("Abc", L"Abc", abc);
    double a = 6;
    rows.Number("A", L"A", a);
    rows.Finish();
    EXPECT_EQ(Saved({L"HZNData.Ab"}), L"<A>6</A><Ab>4</Ab><Abc>5</Abc>");
}

TEST_F(WriteTest, EmptyArrayIsLeftOutUnderAnyFilter) {
    rows.Finish();
    project.Points.clear();
    EXPECT_EQ(Saved({L"HZNData.Project.Points"}), L"<Project/>");
    EXPECT_EQ(Saved({L"HZNData.Project.Points[1]"}), L"<Project/>");
}

TEST_F(WriteTest, NullFilterAndEmptyTextSelectEverything) {
    rows.Finish();
    EXPECT_EQ(Compact(Written(nullptr)), L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>"
                                         L"<HZNData Version=\"12.03\" AppVersion=\"11.2.0.4711\">" +
                                             wholeProject + L"</HZNData>");
    EXPECT_EQ(Saved({L""}), wholeProject);
    EXPECT_EQ(Saved({L"HZNData"}), wholeProject);
}

TEST_F(WriteTest, FilterThatSelectsNothingFailsAndLeavesNoText) {
    rows.Finish();
    for (std::vector<std::wstring> const& filter : {std::vector<std::wstring>{}, {L"Elsewhere"}}) {
        std::wstring text = L"old";
        htl::status const result = zo::xml::StringWrite(text, formatVersion, 0, &filter);
        EXPECT_TRUE(result.Is(90010)) << str::as_cstring(result.AsWString());
        EXPECT_EQ(text, L"");
        EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
    }
}

TEST_F(WriteTest, FilterTextOfANodeCountsIndicesFromOne) {
    rows.Finish();
    EXPECT_EQ(zo::xml::TransformForWriteFilterList(zo::Find("Project.Points[1]")), L"HZNData.Project.Points[2]");
    EXPECT_EQ(zo::xml::TransformForWriteFilterList(zo::Find("Project.Points[1].X")), L"HZNData.Project.Points[2].X");
    EXPECT_EQ(zo::xml::TransformForWriteFilterList(rows.registry->Root()), L"HZNData.HZNData");
}

TEST_F(WriteTest, FilterTextOfNoNodeSelectsNone) {
    rows.Finish();
    EXPECT_EQ(Saved({zo::xml::TransformForWriteFilterList({})}), L"");
}

TEST_F(WriteTest, ReserveBeyondAnyVectorRaisesALengthError) {
    rows.Finish();
    std::wstring text = L"old";
    EXPECT_THROW((void)zo::xml::StringWrite(text, formatVersion, std::size_t(1) << 63, nullptr), std::length_error);
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
    EXPECT_TRUE(rows.registry->Impl()->validateValues);
}

TEST_F(WriteTest, TagThatIsNoNameFailsTheSave) {
    double value = 1;
    rows.Number("Bad", L"no name", value);
    rows.Finish();
    std::wstring text;
    EXPECT_TRUE(zo::xml::StringWrite(text, formatVersion).Is(90010));
    EXPECT_EQ(text, L"");
}

TEST_F(WriteTest, FailedSaveLeavesTheOldFile) {
    std::string const file = TemporaryFile("kept.xml");
    Store(file, "old content");
    double value = 1;
    rows.Number("Bad", L"no name", value);
    rows.Finish();
    EXPECT_TRUE(zo::xml::FileWrite(Wide(file), formatVersion).Is(90010));
    EXPECT_EQ(Bytes(file), "old content");
    for (auto const& entry : std::filesystem::directory_iterator(std::filesystem::path(file).parent_path()))
        EXPECT_EQ(entry.path().string().find("kept.xml."), std::string::npos) << entry.path();
}

TEST_F(WriteTest, SaveToAPlaceThatIsNotThereFails) {
    rows.Finish();
    EXPECT_TRUE(zo::xml::FileWrite(Wide(TemporaryFile("gone/plan.xml")), formatVersion).Is(90003));
    EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
}

/// An element whose value throws.
class Unreadable : public IZO {
public:
    Unreadable() : IZO(npos, nullptr, npos) {}
    IZO* Clone() override { return new Unreadable(*this); }
    bool IsDefault() const override { throw std::runtime_error("the instrument is off"); }
};

TEST_F(WriteTest, ExceptionOfANodeLeavesTrackingOn) {
    rows.Add("Gauge", H(new Unreadable), {P::Always, L"Gauge", true}, meta::AtomicTraits<double>());
    rows.Finish();
    std::wstring text;
    EXPECT_THROW((void)zo::xml::StringWrite(text, formatVersion), std::runtime_error);
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
    EXPECT_TRUE(rows.registry->Impl()->validateValues);
}

} // namespace
