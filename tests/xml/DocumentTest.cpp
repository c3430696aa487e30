// What a document looks like: one test for each form of element, for defaults, and for the document as a whole.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"

namespace {

using namespace plan;
using embankment::ArrayPrototype;
using embankment::StructPrototype;
using embankment::ValuePrototype;
using P = meta::MetaPersistTraits;

class DocumentTest : public PlanTest {};

TEST_F(DocumentTest, WholeProjectIsWrittenWithItsLayout) {
    AddProject(rows, project);
    rows.Finish();
    project = Example();
    EXPECT_EQ(Written(), L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
                         L"<HZNData Version=\"12.03\" AppVersion=\"11.2.0.4711\">\n"
                         L"  <Project>\n"
                         L"    <Title>Dam &lt;A&gt; &amp; &quot;B&quot;</Title>\n"
                         L"    <Points Len=\"3\">\n"
                         L"      <Point X=\"1.5\"/>\n"
                         L"      <Point/>\n"
                         L"      <Point X=\"2\" Y=\"-3\"/>\n"
                         L"    </Points>\n"
                         L"    <Weights>1,0,2.5,0</Weights>\n"
                         L"    <Comment Missing=\"true\"/>\n"
                         L"  </Project>\n"
                         L"</HZNData>\n");
}

TEST_F(DocumentTest, FileHoldsTheSameDocumentInUtf8) {
    AddProject(rows, project);
    rows.Finish();
    project.Title = L"Dämm \u4e2d \U0001d400";
    std::string const file = TemporaryFile("whole.xml");
    ASSERT_TRUE(embankment::Succeeds(zo::xml::FileWrite(Wide(file), formatVersion)));
    EXPECT_EQ(Bytes(file), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<HZNData Version=\"12.03\" AppVersion=\"11.2.0.4711\">\n"
                           "  <Project>\n"
                           "    <Title>D\xC3\xA4mm \xE4\xB8\xAD \xF0\x9D\x90\x80</Title>\n"
                           "    <Comment Missing=\"true\"/>\n"
                           "  </Project>\n"
                           "</HZNData>\n");
}

TEST_F(DocumentTest, RegistryWithoutRowsGivesAnEmptyDocumentElement) {
    rows.Finish();
    EXPECT_EQ(Written(), L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
                         L"<HZNData Version=\"12.03\" AppVersion=\"11.2.0.4711\"/>\n");
}

TEST_F(DocumentTest, RootAttributesHaveTheirNames) {
    EXPECT_EQ(zo::xml::rootattribute::FileVersion(), L"Version");
    EXPECT_EQ(zo::xml::rootattribute::AppVersion(), L"AppVersion");
}

TEST_F(DocumentTest, StructureWithoutChildrenIsWrittenEmpty) {
    rows.Branch("Loads", L"Loads");
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Loads/>");
}

TEST_F(DocumentTest, EmptyTextThatAlwaysPersistsIsMarkedAsMissing) {
    std::wstring title;
    rows.Text("Title", L"Title", title);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Title Missing=\"true\"/>");
}

TEST_F(DocumentTest, EmptyTextAtItsDefaultIsLeftOut) {
    std::wstring title;
    rows.Branch("Project", L"Project");
    rows.Text("Title", L"Title", title, P::IfNotDefined);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Project/>");
}

TEST_F(DocumentTest, NumberThatAlwaysPersistsIsWrittenAtItsDefault) {
    double tolerance = 0;
    rows.Number("Tolerance", L"Tolerance", tolerance);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Tolerance>0</Tolerance>");
}

TEST_F(DocumentTest, MissingNumberIsMarkedAsMissing) {
    double tolerance = std::numeric_limits<double>::max();
    rows.Number("Tolerance", L"Tolerance", tolerance);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Tolerance Missing=\"true\"/>");
}

TEST_F(DocumentTest, NodeThatDoesNotPersistIsLeftOutWithItsChildren) {
    double tolerance = 1;
    rows.Add("Hidden", H(new zo::ZOStructClone(IZO::npos, nullptr)), {P::No, L"Hidden"}, PointTraits());
    rows.Number("Hidden.Tolerance", L"Tolerance", tolerance);
    rows.Finish();
    EXPECT_EQ(Saved(), L"");
}

/// Rows over a list of points, with chosen flags.
class PointsDocumentTest : public PlanTest {
protected:
    void AddPoints(bool arrayAsValue, bool arrayAllChildren, bool elementAsValue, bool elementAllChildren,
                   std::uint32_t type = P::IfNotDefined) {
        rows.Add("Points", ArrayPrototype(PointsTraits()),
                 {P::Always, L"Points[Point]", arrayAsValue, arrayAllChildren}, PointsTraits(), &points);
        rows.Add("Points.[]", StructPrototype(PointTraits()), {P::Always, L"", elementAsValue, elementAllChildren},
                 PointTraits());
        rows.Add("Points.[].X", ValuePrototype<double>(meta::AtomicTraits<double>(), meta::OffsetOf(&Point::X)),
                 {type, L"X"}, meta::AtomicTraits<double>());
        rows.Add("Points.[].Y", ValuePrototype<double>(meta::AtomicTraits<double>(), meta::OffsetOf(&Point::Y)),
                 {type, L"Y"}, meta::AtomicTraits<double>());
        rows.Finish();
    }

    std::vector<Point> points{{1.5, 2}, {0, 0}, {0, -3}};
};

TEST_F(PointsDocumentTest, RecordAtItsDefaultsKeepsItsPlaceInTheArray) {
    AddPoints(false, false, false, true);
    EXPECT_EQ(Saved(), L"<Points Len=\"3\"><Point X=\"1.5\" Y=\"2\"/><Point/><Point Y=\"-3\"/></Points>");
}

TEST_F(PointsDocumentTest, EmptyAttributeHasNoMark) {
    AddPoints(false, false, false, true, P::Always);
    points = {{std::numeric_limits<double>::max(), 1}};
    EXPECT_EQ(Saved(), L"<Points Len=\"1\"><Point X=\"\" Y=\"1\"/></Points>");
}

TEST_F(PointsDocumentTest, ArrayWithChildrenAsValuesIsStillAnArrayOfElements) {
    AddPoints(false, true, false, true);
    points = {{1, 2}};
    EXPECT_EQ(Saved(), L"<Points Len=\"1\"><Point X=\"1\" Y=\"2\"/></Points>");
}

TEST_F(PointsDocumentTest, ValueFlagWinsOverChildrenFlag) {
    // A structure has no text: the getter fails, and the entry stays without any.
    AddPoints(false, false, true, true);
    points = {{1, 2}};
    EXPECT_EQ(Saved(), L"<Points Len=\"1\"><Point/></Points>");
}

TEST_F(PointsDocumentTest, ElementsThatArePlainStructuresLoseValuesWithoutForm) {
    AddPoints(false, false, false, false);
    points = {{1, 2}};
    // X and Y have neither flag, so they are empty structures.
    EXPECT_EQ(Saved(), L"<Points Len=\"1\"><Point><X/><Y/></Point></Points>");
}

TEST_F(PointsDocumentTest, ArrayWithoutElementsIsLeftOut) {
    AddPoints(false, false, false, true);
    points.clear();
    EXPECT_EQ(Saved(), L"");
}

TEST_F(DocumentTest, ArrayWithoutElementsLeavesItsStructureEmpty) {
    struct Slope {
        std::vector<Point> points;
    } slope;
    auto const traits = meta::StructureBuilder<Slope>().Member(&Slope::points, PointsTraits).Build();
    rows.Add("Slope", StructPrototype(traits), {P::Always, L"Slope"}, traits, &slope);
    rows.Add("Slope.Points", ArrayPrototype(PointsTraits()), {P::Always, L"Points[Point]"}, PointsTraits());
    rows.Add("Slope.Points.[]", StructPrototype(PointTraits()), {P::Always, L"", false, true}, PointTraits());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Slope/>");
}

TEST_F(DocumentTest, RecordWithoutAttributesIsLeftOut) {
    Point point;
    rows.Add("Origin", StructPrototype(PointTraits()), {P::Always, L"Origin", false, true}, PointTraits(), &point);
    rows.Add("Origin.X", ValuePrototype<double>(meta::AtomicTraits<double>(), meta::OffsetOf(&Point::X)),
             {P::IfNotDefined, L"X"}, meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"");
    point.X = 2;
    EXPECT_EQ(Saved(), L"<Origin X=\"2\"/>");
}

TEST_F(DocumentTest, StructureInsideARecordIsLeftOut) {
    struct Cut {
        double level = 0;
        Point start;
    } cut{7, {1, 2}};
    auto const traits = meta::StructureBuilder<Cut>().Build();
    rows.Add("Cut", StructPrototype(traits), {P::Always, L"Cut", false, true}, traits, &cut);
    rows.Add("Cut.Level", ValuePrototype<double>(meta::AtomicTraits<double>(), meta::OffsetOf(&Cut::level)),
             {P::Always, L"Level"}, meta::AtomicTraits<double>());
    rows.Add("Cut.Start", StructPrototype(PointTraits(), meta::OffsetOf(&Cut::start)), {P::Always, L"Start"},
             PointTraits());
    rows.Add("Cut.Start.X", ValuePrototype<double>(meta::AtomicTraits<double>(), meta::OffsetOf(&Point::X)),
             {P::Always, L"X", true}, meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Cut Level=\"7\"/>");
}

TEST_F(DocumentTest, ArrayInsideARecordIsOneAttribute) {
    struct Layer {
        std::vector<double> depths;
        double fixed[2] = {};
    } layer{{1, 2.5}, {3, 4}};
    auto const traits = meta::StructureBuilder<Layer>().Build();
    auto const fixedTraits = meta::ArrayTraits<double[2]>([] { return meta::AtomicTraits<double>(); });
    rows.Add("Layer", StructPrototype(traits), {P::Always, L"Layer", false, true}, traits, &layer);
    rows.Add("Layer.Depths", ArrayPrototype(NumbersTraits(), meta::OffsetOf(&Layer::depths)), {P::Always, L"Depths"},
             NumbersTraits());
    rows.Add("Layer.Depths.[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L""},
             meta::AtomicTraits<double>());
    rows.Add("Layer.Fixed", ArrayPrototype(fixedTraits, meta::OffsetOf(&Layer::fixed)), {P::Always, L"Fixed"},
             fixedTraits);
    rows.Add("Layer.Fixed.[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L""},
             meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Layer Depths=\"1,2.5\" Fixed=\"3,4\"/>");
    layer.depths.clear();
    EXPECT_EQ(Saved(), L"<Layer Depths=\"\" Fixed=\"3,4\"/>");
}

/// A value that knows nothing of formatting memory, as a client's own class may be.
H PlainPrototype(std::size_t offset = 0) {
    return H(new zo::ZOWrapperAtomicCustom<double, double>(IZO::npos, nullptr, meta::AtomicTraits<double>(),
                                                           reinterpret_cast<void*>(offset), {}));
}

struct FixedLevel {
    double GetData(IZO const*) const { return 12.5; }
    htl::status SetData(IZO*, double const&) const { return zo::ZOError::not_supported("FixedLevel"); }
};

TEST_F(DocumentTest, AttributesComeFromMemoryFromAViewOrFromANode) {
    Point point{1, 2};
    rows.Add("Gauge", StructPrototype(PointTraits()), {P::Always, L"Gauge", false, true}, PointTraits(), &point);
    rows.Add("Gauge.X", ValuePrototype<double>(meta::AtomicTraits<double>(), meta::OffsetOf(&Point::X)),
             {P::Always, L"X"}, meta::AtomicTraits<double>());
    rows.Add("Gauge.Y", PlainPrototype(meta::OffsetOf(&Point::Y)), {P::IfNotDefined, L"Y"},
             meta::AtomicTraits<double>());
    rows.Add("Gauge.Level",
             H(new zo::ZOAtomicCustom<FixedLevel, zo::ZOAccessDataVMT<double>>(IZO::npos, nullptr,
                                                                               meta::AtomicTraits<double>())),
             {P::Always, L"Level"}, meta::AtomicTraits<double>());
    rows.Finish();
    // The last one is a detached clone of its prototype: it has the policy's value.
    EXPECT_EQ(Saved(), L"<Gauge X=\"1\" Y=\"2\" Level=\"12.5\"/>");
    point.Y = 0;
    EXPECT_EQ(Saved(), L"<Gauge X=\"1\" Level=\"12.5\"/>");
}

TEST_F(DocumentTest, AttributesOfAPlainStructureComeFromItsNodes) {
    double load = 3;
    rows.Add("Loads", H(new zo::ZOStructClone(IZO::npos, nullptr)), {P::Always, L"Loads", false, true}, PointTraits());
    rows.Add("Loads.Crest", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L"Crest"},
             meta::AtomicTraits<double>(), &load);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Loads Crest=\"3\"/>");
}

TEST_F(DocumentTest, ArrayOfAClientsOwnValuesHasTheArraysText) {
    std::vector<double> weights{1, 0, 2};
    rows.Add("Weights", ArrayPrototype(NumbersTraits()), {P::Always, L"Weights", true}, NumbersTraits(), &weights);
    rows.Add("Weights.[]", PlainPrototype(), {P::Always, L""}, meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Weights>1,,2</Weights>");
}

TEST_F(DocumentTest, ArrayWithoutElementRowIsLeftOut) {
    std::vector<double> weights{1, 2};
    rows.Add("Weights", ArrayPrototype(NumbersTraits()), {P::Always, L"Weights", true}, NumbersTraits(), &weights);
    rows.Finish();
    EXPECT_EQ(Saved(), L"");
}

class NumbersDocumentTest : public PlanTest {
protected:
    std::vector<double> weights;
};

TEST_F(NumbersDocumentTest, NumbersAreSeparatedByCommasAlone) {
    rows.Numbers("Weights", L"Weights", weights);
    rows.Finish();
    weights = {1, 0, 2.5, 0};
    EXPECT_EQ(Saved(), L"<Weights>1,0,2.5,0</Weights>");
}

TEST_F(NumbersDocumentTest, DefaultsLeaveEmptyPlacesAndTheLastOnesAreCut) {
    rows.Numbers("Weights", L"Weights", weights, P::IfNotDefined);
    rows.Finish();
    weights = {1, 0, 2.5, 0, 0};
    EXPECT_EQ(Saved(), L"<Weights>1,,2.5</Weights>");
}

TEST_F(NumbersDocumentTest, MissingNumbersAtTheEndAreCutEvenIfAllArePersisted) {
    rows.Numbers("Weights", L"Weights", weights);
    rows.Finish();
    weights = {1, std::numeric_limits<double>::max()};
    EXPECT_EQ(Saved(), L"<Weights>1</Weights>");
    weights = {std::numeric_limits<double>::max()};
    EXPECT_EQ(Saved(), L"<Weights Missing=\"true\"/>");
}

TEST_F(NumbersDocumentTest, NumbersThatAreAllDefaultAreLeftOut) {
    rows.Numbers("Weights", L"Weights", weights, P::IfNotDefined);
    rows.Finish();
    weights = {0, 0};
    EXPECT_EQ(Saved(), L"");
}

TEST_F(NumbersDocumentTest, NumbersOutsideOneBlockHaveTheArraysOwnText) {
    // A deque isn't contiguous: the array's text leaves defaults empty, whatever persists, and drops one comma.
    std::deque<double> steps{1, 0, 2, 0};
    auto const traits = meta::ArrayTraits<std::deque<double>>([] { return meta::AtomicTraits<double>(); });
    rows.Add("Steps", ArrayPrototype(traits), {P::Always, L"Steps", true}, traits, &steps);
    rows.Add("Steps.[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L""},
             meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Steps>1,,2,</Steps>");
    steps = {0};
    EXPECT_EQ(Saved(), L"<Steps Missing=\"true\"/>");
}

TEST_F(DocumentTest, ArraysWithinArraysSkipTheEmptyOne) {
    struct Ring {
        std::vector<double> radii;
    };
    using Inner = std::vector<double>;
    std::vector<Inner> rings{{1}, {}, {2}};
    auto const traits = meta::ArrayTraits<std::vector<Inner>>(NumbersTraits);
    rows.Add("Rings", ArrayPrototype(traits), {P::Always, L"Rings[Ring]"}, traits, &rings);
    rows.Add("Rings.[]", ArrayPrototype(NumbersTraits()), {P::Always, L"", true}, NumbersTraits());
    rows.Add("Rings.[].[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L""},
             meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Rings Len=\"3\"><Ring>1</Ring><Ring>2</Ring></Rings>");
}

TEST_F(DocumentTest, ValueElementsOfAnArrayKeepTheirPlaceAtTheirDefault) {
    std::deque<double> steps{0, 2};
    auto const traits = meta::ArrayTraits<std::deque<double>>([] { return meta::AtomicTraits<double>(); });
    rows.Add("Steps", ArrayPrototype(traits), {P::IfNotDefined, L"Steps[Step]"}, traits, &steps);
    rows.Add("Steps.[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L"", true},
             meta::AtomicTraits<double>());
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Steps Len=\"2\"><Step/><Step>2</Step></Steps>");
}

TEST_F(DocumentTest, EnumerationIsWrittenAsItsWord) {
    auto drainage = embankment::Drainage::Partial;
    rows.Add("Drainage", ValuePrototype<int>(embankment::DrainageTraits()), {P::Always, L"Drainage", true},
             embankment::DrainageTraits(), &drainage);
    rows.Finish();
    EXPECT_EQ(Saved(), L"<Drainage>Partial</Drainage>");
    drainage = embankment::Drainage::Drained;
    ASSERT_TRUE(IsClean(Load(L"<Drainage>Undrained</Drainage>")));
    EXPECT_EQ(drainage, embankment::Drainage::Undrained);
}

TEST_F(DocumentTest, DeclarationInAValueIsNoDeclaration) {
    std::wstring title = L"encoding=\"UTF-8\"";
    rows.Text("Title", L"Title", title);
    rows.Finish();
    std::wstring const text = Written();
    title.clear();
    ASSERT_TRUE(IsClean(LoadText(text)));
    EXPECT_EQ(title, L"encoding=\"UTF-8\"");
}

class EmbankmentDocumentTest : public embankment::EmbankmentTest {};

TEST_F(EmbankmentDocumentTest, EmbankmentIsWrittenWhole) {
    // Top-level elements by tag; the members of a wrapper as they were registered.
    EXPECT_EQ(Saved().empty(), false);
    std::wstring const expected =
        L"<Points Len=\"4\"><Point/><Point X=\"40\"/><Point X=\"25\" Y=\"10\"/><Point X=\"15\" Y=\"10\"/></Points>"
        L"<Project><Title>Tailings dam</Title></Project>"
        L"<Regions Len=\"2\"><Region><Soil>1</Soil><Points>1,2,3</Points></Region>"
        L"<Region><Soil>2</Soil><Points>1,3,4</Points></Region></Regions>"
        L"<Results><Slips Len=\"2\"><Slip><FactorOfSafety>1.25</FactorOfSafety><Radius>30</Radius></Slip>"
        L"<Slip><FactorOfSafety>1.5</FactorOfSafety><Radius>42.5</Radius></Slip></Slips></Results>"
        L"<Soils Len=\"3\">"
        L"<Soil><Name>Clay core</Name><Cohesion>25</Cohesion><Friction>18</Friction><UnitWeight>19.5</UnitWeight>"
        L"<Drainage>Undrained</Drainage><Color>255</Color><Anisotropy>1,0.5,0.25</Anisotropy></Soil>"
        L"<Soil><Name>Sand shell</Name><Friction>34</Friction><UnitWeight>20</UnitWeight><Color>65280</Color></Soil>"
        L"<Soil><Name>Foundation</Name><Cohesion>10.5</Cohesion><Friction>27</Friction><UnitWeight>21</UnitWeight>"
        L"<Drainage>Partial</Drainage></Soil></Soils>"
        L"<WaterTable><UnitWeight>9.81</UnitWeight><Points Len=\"2\"><Point Y=\"2\"/><Point X=\"40\" Y=\"4\"/>"
        L"</Points></WaterTable>";
    std::wstring const text = Compact(Written());
    EXPECT_NE(text.find(expected), std::wstring::npos) << str::as_cstring(text);
}

TEST_F(EmbankmentDocumentTest, BranchThatIsAwayIsLeftOut) {
    embankment.ShowResults(false);
    EXPECT_EQ(Compact(Written()).find(L"<Results>"), std::wstring::npos);
}

} // namespace
