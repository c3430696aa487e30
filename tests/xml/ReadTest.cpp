// What a load makes of a document: values, failures, filters, and what is not in the document.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"
#include "Common/registry/SetImpl.h"

#include <array>
#include <thread>

namespace {

using namespace plan;
using embankment::ArrayPrototype;
using embankment::FailsAs;
using embankment::StructPrototype;
using embankment::Succeeds;
using embankment::ValuePrototype;
namespace ZOError = zo::ZOError;
using P = meta::MetaPersistTraits;

constexpr double noVersion = 1.7976931348623157e308;

htl::status NoNumber(wchar_t const* text) {
    return htl::Convert_error_status::InvalidCharStatus(text, htl::Convert_error_status::FloatingPointString());
}

class ReadTest : public PlanTest {
protected:
    ReadTest() {
        AddProject(rows, project);
        rows.Number("Alpha", L"Alpha", alpha);
        rows.Number("Idle", L"Idle", idle, P::Always, false);
        rows.Number("Scratch", L"Scratch", scratch, P::No);
        rows.Numbers("Depths", L"Depths", depths);
        rows.Finish();
    }

    double alpha = 1, idle = 2, scratch = 3;
    std::vector<double> depths{4, 5};
};

TEST_F(ReadTest, DocumentComesBackAsItWasSaved) {
    project = Example();
    std::wstring const text = Written();
    project = {L"other", {{9, 9}}, {7, 7, 7, 7, 7}, 5, L"comment"};
    Loaded const loaded = LoadText(text);
    ASSERT_TRUE(IsClean(loaded));
    EXPECT_EQ(loaded.version, 12.03);
    EXPECT_EQ(loaded.handled, 1);
    EXPECT_EQ(project.Title, L"Dam <A> & \"B\"");
    ASSERT_EQ(project.Points.size(), 3u);
    EXPECT_EQ(project.Points[0].X, 1.5);
    EXPECT_EQ(project.Points[0].Y, 0);
    EXPECT_EQ(project.Points[1].X, 0);
    EXPECT_EQ(project.Points[2].Y, -3);
    EXPECT_EQ(project.Weights, (std::vector<double>{1, 0, 2.5, 0}));
    EXPECT_EQ(project.Tolerance, 0);
    EXPECT_EQ(project.Comment, L"");
}

TEST_F(ReadTest, LoadClearsWhatTheDocumentLeavesOut) {
    project = Example();
    ASSERT_TRUE(IsClean(Load(L"")));
    EXPECT_EQ(project.Title, L"");
    EXPECT_TRUE(project.Points.empty());
    EXPECT_TRUE(project.Weights.empty());
    EXPECT_TRUE(depths.empty());
    EXPECT_EQ(alpha, 0);
    // Inactive branches are no part of the document.
    EXPECT_EQ(idle, 2);
}

TEST_F(ReadTest, ImportClearsNothing) {
    project = Example();
    ASSERT_TRUE(IsClean(Import(L"<Project><Tolerance>0.5</Tolerance></Project>")));
    EXPECT_EQ(project.Tolerance, 0.5);
    EXPECT_EQ(project.Points.size(), 3u);
    EXPECT_EQ(alpha, 1);
}

TEST_F(ReadTest, ArrayOfAnEmptyProjectComesBackEmpty) {
    std::wstring const text = Written();
    project = Example();
    ASSERT_TRUE(IsClean(LoadText(text)));
    EXPECT_TRUE(project.Points.empty());
}

TEST_F(ReadTest, ArraysWithinFixedArraysAreEmptied) {
    struct Side {
        std::vector<double> heights;
    };
    struct Dam {
        Side sides[2];
    } dam{{{{1, 2}}, {{3}}}};
    auto const sideTraits = meta::StructureBuilder<Side>().Build();
    auto const sidesTraits = meta::ArrayTraits<Side[2]>([] { return meta::StructureBuilder<Side>().Build(); });
    Rows other;
    other.Add("Sides", ArrayPrototype(sidesTraits), {P::Always, L"Sides[Side]"}, sidesTraits, &dam.sides);
    other.Add("Sides.[]", StructPrototype(sideTraits), {P::Always, L""}, sideTraits);
    other.Add("Sides.[].Heights", ArrayPrototype(NumbersTraits()), {P::Always, L"Heights", true}, NumbersTraits());
    other.Add("Sides.[].Heights.[]", ValuePrototype<double>(meta::AtomicTraits<double>()), {P::Always, L""},
              meta::AtomicTraits<double>());
    other.Finish();
    ASSERT_TRUE(IsClean(Load(L"<Sides Len=\"2\"><Side/><Side><Heights>8</Heights></Side></Sides>")));
    EXPECT_TRUE(dam.sides[0].heights.empty());
    EXPECT_EQ(dam.sides[1].heights, std::vector<double>{8});
}

TEST_F(ReadTest, NameOfTheDocumentElementIsNotCompared) {
    ASSERT_TRUE(IsClean(LoadText(L"<Plan><Alpha>7</Alpha></Plan>")));
    EXPECT_EQ(alpha, 7);
}

TEST_F(ReadTest, TagOfAnArrayEntryDoesNotMatter) {
    ASSERT_TRUE(IsClean(Load(L"<Project><Points Len=\"2\"><Corner X=\"1\"/><Y X=\"2\"/></Points></Project>")));
    ASSERT_EQ(project.Points.size(), 2u);
    EXPECT_EQ(project.Points[0].X, 1);
    EXPECT_EQ(project.Points[1].X, 2);
}

TEST_F(ReadTest, EntriesBeyondTheLengthAreReadIntoNothing) {
    ASSERT_TRUE(IsClean(
        Load(L"<Project><Points Len=\"1\"><Point X=\"1\"/><Point X=\"2\"><Z>3</Z></Point></Points></Project>")));
    ASSERT_EQ(project.Points.size(), 1u);
    EXPECT_EQ(project.Points[0].X, 1);
}

TEST_F(ReadTest, LengthMakesRoomForEntriesThatAreNotThere) {
    ASSERT_TRUE(IsClean(Load(L"<Project><Points Len=\"3\"/></Project>")));
    EXPECT_EQ(project.Points.size(), 3u);
}

TEST_F(ReadTest, MissingSetsEmptyTextWhateverItsValue) {
    project.Title = L"old";
    ASSERT_TRUE(IsClean(Import(L"<Project><Title Missing=\"no\"/></Project>")));
    EXPECT_EQ(project.Title, L"");
    ASSERT_TRUE(IsClean(Import(L"<Alpha Missing=\"true\"/>")));
    EXPECT_EQ(alpha, std::numeric_limits<double>::max());
}

TEST_F(ReadTest, MissingOnANodeThatRefusesItIsSilent) {
    project.Title = L"old";
    ASSERT_TRUE(IsClean(Import(L"<Project Missing=\"true\"><Title>new</Title></Project>")));
    EXPECT_EQ(project.Title, L"new");
}

TEST_F(ReadTest, TextAfterMissingIsStillStored) {
    ASSERT_TRUE(IsClean(Import(L"<Project><Title Missing=\"true\">text</Title></Project>")));
    EXPECT_EQ(project.Title, L"text");
}

TEST_F(ReadTest, ElementWithoutTextLeavesTheValue) {
    project.Title = L"old";
    ASSERT_TRUE(IsClean(Import(L"<Project><Title></Title></Project>")));
    EXPECT_EQ(project.Title, L"old");
}

TEST_F(ReadTest, BadValueIsReportedWithItsElementAndKeepsTheOldOne) {
    project.Tolerance = 0.25;
    Loaded const loaded = Import(L"<Project><Tolerance>wide</Tolerance><Comment>kept</Comment></Project>");
    ASSERT_TRUE(Succeeds(loaded.result));
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"Project.Tolerance", L"wide", NoNumber(L"wide"))));
    EXPECT_EQ(project.Tolerance, 0.25);
    EXPECT_EQ(project.Comment, L"kept");
    EXPECT_EQ(loaded.handled, 1);
}

TEST_F(ReadTest, FailureNamesTheLastStepsOfThePath) {
    Loaded const loaded =
        Load(L"<Alpha>a</Alpha><Project><Points Len=\"2\"><Point/><Point X=\"b\"/></Points></Project>");
    ASSERT_EQ(loaded.errors.size(), 2u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"HZNData.Alpha", L"a", NoNumber(L"a"))));
    EXPECT_TRUE(FailsAs(loaded.errors[1], ZOError::file_assign(L"Points[2].X", L"b", NoNumber(L"b"))));
}

TEST_F(ReadTest, TextOfAStructureIsReported) {
    Loaded const loaded = Load(L"<Project>words<Title>T</Title></Project>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"HZNData.Project", L"words",
                                                               ZOError::not_supported(ProjectTraits().TypeName()))));
    EXPECT_EQ(project.Title, L"T");
}

TEST_F(ReadTest, BadLengthIsReportedAndItsChildrenAreLookedUpByTag) {
    for (wchar_t const* length : {L"three", L"-1", L"", L" 2", L"2147483648", L"99999999999999999999"}) {
        project.Points.clear();
        Loaded const loaded =
            Load(L"<Project><Points Len=\"" + std::wstring(length) + L"\"><Point X=\"1\"/></Points></Project>");
        ASSERT_EQ(loaded.errors.size(), 1u) << str::as_cstring(length);
        EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"Project.Points", length,
                                                                   ZOError::file_invalid_element_attribute(
                                                                       L"Project.Points", L"Len", length))));
        EXPECT_TRUE(project.Points.empty());
    }
}

TEST_F(ReadTest, LengthThatTheDocumentCannotHoldIsRefused) {
    Loaded const loaded = Load(L"<Project><Points Len=\"2147483647\"/></Project>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"Project.Points", L"2147483647",
                                                               ZOError::file_invalid_element_attribute(
                                                                   L"Project.Points", L"Len", L"2147483647"))));
    EXPECT_TRUE(project.Points.empty());
}

TEST_F(ReadTest, LengthsOfASmallDocumentShareWhatTheyMayClaim) {
    // The whole document is shorter than 1,000 characters.
    Loaded const loaded = Load(L"<Project><Points Len=\"40000\"/><Points Len=\"40001\"/></Project>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"Project.Points", L"40001",
                                                               ZOError::file_invalid_element_attribute(
                                                                   L"Project.Points", L"Len", L"40001"))));
    EXPECT_EQ(project.Points.size(), 40000u);
}

TEST_F(ReadTest, LengthOfALargeDocumentMayBeAsLargeAsItsEntries) {
    constexpr std::size_t count = 200'000;
    std::wstring body = L"<Project><Points Len=\"200000\">";
    for (std::size_t i = 0; i < count; ++i) body += L"<P/>";
    ASSERT_TRUE(IsClean(Load(body + L"</Points></Project>")));
    EXPECT_EQ(project.Points.size(), count);
    std::string const file = TemporaryFile("large.xml");
    Store(file, "<HZNData>" + str::as_cstring(body) + "</Points></Project></HZNData>");
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::FileRead(Wide(file), errors)));
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(project.Points.size(), count);
}

TEST_F(ReadTest, LengthOfWhatCannotBeResizedIsReported) {
    Loaded const loaded = Load(L"<Alpha Len=\"2\">7</Alpha>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"HZNData.Alpha", L"2", ZOError::not_supported(""))));
    EXPECT_EQ(alpha, 7);
}

TEST_F(ReadTest, LengthOneOfASingleNodeIsGoodAndItsChildrenAreUnknown) {
    Loaded const loaded = Load(L"<Project Len=\"1\"><Title>T</Title></Project>");
    EXPECT_TRUE(loaded.errors.empty());
    EXPECT_EQ(loaded.unknown, (zo::xml::Unknowns{{L"HZNData.Project[1]", L"T"}}));
    EXPECT_EQ(project.Title, L"");
}

TEST_F(ReadTest, TwelveBadValuesGiveElevenFailures) {
    std::wstring body = L"<Project><Points Len=\"12\">";
    for (int i = 0; i < 12; ++i) body += L"<Point X=\"x" + std::to_wstring(i) + L"\"/>";
    Loaded const loaded = Load(body + L"</Points><Comment>last</Comment></Project>");
    ASSERT_TRUE(Succeeds(loaded.result));
    ASSERT_EQ(loaded.errors.size(), 11u);
    EXPECT_TRUE(FailsAs(loaded.errors[10], ZOError::file_assign(L"Points[11].X", L"x10", NoNumber(L"x10"))));
    EXPECT_EQ(project.Comment, L"last");
}

TEST_F(ReadTest, UnknownItemsCountForTheSameLimit) {
    std::wstring body;
    for (int i = 0; i < 4; ++i) body += L"<Alpha>bad</Alpha>";
    for (int i = 0; i < 9; ++i) body += L"<Odd" + std::to_wstring(i) + L"/>";
    std::vector<htl::status> errors;
    ASSERT_TRUE(Succeeds(zo::xml::StringRead(Document(body), errors, {}, zo::xml::impl::UnknownAreErrors())));
    ASSERT_EQ(errors.size(), 11u);
    EXPECT_TRUE(FailsAs(errors[3], ZOError::file_assign(L"HZNData.Alpha", L"bad", NoNumber(L"bad"))));
    EXPECT_TRUE(FailsAs(errors[4], ZOError::not_recognized(L"HZNData.Odd0")));
    EXPECT_TRUE(FailsAs(errors[10], ZOError::not_recognized(L"HZNData.Odd6")));
}

TEST_F(ReadTest, ErrorsAreReplacedOnSuccessAndKeptOnFailure) {
    std::vector<htl::status> errors{ZOError::not_found("before")};
    int handled = 0;
    auto const handler = [&](zo::ZOSet*, zo::xml::Unknowns&, double, zo::xml::impl::XMLError&) { ++handled; };
    EXPECT_TRUE(zo::xml::StringRead(L"<HZNData><Alpha>bad</Alpha>", errors, {}, handler).Is(90002));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(FailsAs(errors[0], ZOError::not_found("before")));
    EXPECT_EQ(handled, 0);
    EXPECT_TRUE(Succeeds(zo::xml::StringRead(L"<HZNData/>", errors, {}, handler)));
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(handled, 1);
}

TEST_F(ReadTest, HandlerMayAddFailuresAndResizeArrays) {
    std::vector<htl::status> errors;
    auto const handler = [&](zo::ZOSet* set, zo::xml::Unknowns&, double version, zo::xml::impl::XMLError& failures) {
        EXPECT_EQ(set, rows.registry.get());
        EXPECT_EQ(version, noVersion);
        EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
        failures.ReportError(ZOError::not_found("from the handler"));
        EXPECT_TRUE(Succeeds(zo::Find("Project.Points")->SetLength(5)));
    };
    ASSERT_TRUE(Succeeds(zo::xml::StringRead(
        L"<HZNData><Project><Points Len=\"1\"><Point X=\"1\"/></Points></Project></HZNData>", errors, {}, handler)));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(FailsAs(errors[0], ZOError::not_found("from the handler")));
    EXPECT_EQ(project.Points.size(), 5u);
}

TEST_F(ReadTest, ArrayIsResizedAlthoughItsEntriesWereRead) {
    // The reader of the first array's entries must not hold the last one.
    ASSERT_TRUE(IsClean(Load(L"<Project><Points Len=\"1\"><Point X=\"1\"/></Points>"
                             L"<Points Len=\"4\"><Point X=\"2\"/></Points></Project>")));
    EXPECT_EQ(project.Points.size(), 4u);
    ASSERT_TRUE(IsClean(Load(L"<Depths Len=\"1\"><Depth>5</Depth>1,2,3</Depths>")));
    EXPECT_EQ(depths, (std::vector<double>{1, 2, 3}));
}

TEST_F(ReadTest, VersionGoesToTheHandler) {
    EXPECT_EQ(LoadText(L"<HZNData Version=\"11.04\"/>").version, 11.04);
    EXPECT_EQ(LoadText(L"<HZNData/>").version, noVersion);
}

TEST_F(ReadTest, VersionBeyondANumberIsReported) {
    Loaded const loaded = LoadText(L"<HZNData Version=\"1e999\"/>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    htl::status const cause =
        htl::Convert_error_status::OutOfRangeStatus(L"1e999", htl::Convert_error_status::FloatingPointString());
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"HZNData.Version", L"1e999", cause)));
    EXPECT_EQ(loaded.version, noVersion);
}

TEST_F(ReadTest, BadVersionsAreReported) {
    Loaded const loaded = LoadText(L"<HZNData Version=\"new\" AppVersion=\"1.x\"/>");
    ASSERT_EQ(loaded.errors.size(), 2u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::file_assign(L"HZNData.Version", L"new", NoNumber(L"new"))));
    hzn::version::NumberKind<1> number;
    EXPECT_TRUE(FailsAs(loaded.errors[1],
                        ZOError::file_assign(L"HZNData.AppVersion", L"1.x", str::from_wstring(L"1.x", number))));
    EXPECT_EQ(loaded.version, noVersion);
}

TEST_F(ReadTest, OtherAttributesOfTheDocumentElementAreNotRecognized) {
    Loaded const loaded = LoadText(L"<HZNData Len=\"2\" Missing=\"true\" Author=\"x\"/>");
    ASSERT_EQ(loaded.errors.size(), 3u);
    EXPECT_TRUE(FailsAs(loaded.errors[0], ZOError::not_recognized(L"HZNData.Len")));
    EXPECT_TRUE(FailsAs(loaded.errors[1], ZOError::not_recognized(L"HZNData.Missing")));
    EXPECT_TRUE(FailsAs(loaded.errors[2], ZOError::not_recognized(L"HZNData.Author")));
    EXPECT_TRUE(loaded.unknown.empty());
}

TEST_F(ReadTest, InactiveBranchIsReadIntoNothing) {
    ASSERT_TRUE(IsClean(Load(L"<Idle>9<Below>1</Below></Idle>")));
    EXPECT_EQ(idle, 2);
}

TEST_F(ReadTest, NodeThatDoesNotPersistIsReadIfItsStoreIsActive) {
    ASSERT_TRUE(IsClean(Import(L"<Scratch>9</Scratch>")));
    EXPECT_EQ(scratch, 9);
    ASSERT_TRUE(IsClean(Load(L"<Scratch>8</Scratch>", {}, zo::xml::impl::UnknownTagIsMissing())));
    EXPECT_EQ(scratch, 8);
}

TEST_F(ReadTest, PolicyDecidesAboutNodesThatTakeNoPart) {
    std::vector<std::wstring> asked;
    auto const policy = [&](std::wstring const& tag) {
        asked.push_back(tag);
        return std::wstring(L"old name");
    };
    Loaded const loaded = Load(L"<Idle>9</Idle><Scratch>8</Scratch><Odd/><Alpha>6</Alpha>", {}, policy);
    EXPECT_EQ(asked, (std::vector<std::wstring>{L"HZNData.Idle", L"HZNData.Scratch"}));
    EXPECT_EQ(loaded.unknown,
              (zo::xml::Unknowns{{L"HZNData.Idle", L"9"}, {L"HZNData.Scratch", L"8"}, {L"HZNData.Odd", L""}}));
    EXPECT_EQ(idle, 2);
    EXPECT_NE(scratch, 8);
    EXPECT_EQ(alpha, 6);
    EXPECT_EQ(zo::xml::impl::UnknownTagIsMissing()(L"HZNData.Idle"), L"");
}

TEST_F(ReadTest, ValuesAreNotCheckedWhileADocumentIsRead) {
    Rows other;
    double cohesion = 1;
    other.Add("Cohesion", ValuePrototype<double>(embankment::CohesionTraits()), {P::Always, L"Cohesion", true},
              embankment::CohesionTraits(), &cohesion);
    other.Finish();
    EXPECT_TRUE(FailsAs(zo::Find("Cohesion")->Set(-5.0), embankment::NegativeCohesion()));
    ASSERT_TRUE(IsClean(Load(L"<Cohesion>-5</Cohesion>")));
    EXPECT_EQ(cohesion, -5);
    EXPECT_TRUE(FailsAs(zo::Find("Cohesion")->Set(-6.0), embankment::NegativeCohesion()));
}

TEST_F(ReadTest, EmptyPlaceKeepsTheElement) {
    ASSERT_TRUE(IsClean(Import(L"<Depths>7,,9</Depths>")));
    EXPECT_EQ(depths, (std::vector<double>{7, 5, 9}));
}

TEST_F(ReadTest, OpenParenthesisFailsTheWholeText) {
    Loaded const loaded = Import(L"<Depths>7,(8,9</Depths>");
    ASSERT_EQ(loaded.errors.size(), 1u);
    EXPECT_TRUE(
        FailsAs(loaded.errors[0], ZOError::file_assign(L"HZNData.Depths", L"7,(8,9", HznError::syntax(L"7,(8,9"))));
    EXPECT_EQ(depths, (std::vector<double>{4, 5}));
}

TEST_F(ReadTest, NothingIsReadFromAMissingFileAndTheRegistryIsCleared) {
    std::vector<htl::status> errors{ZOError::not_found("before")};
    EXPECT_TRUE(zo::xml::FileRead(Wide(TemporaryFile("missing.xml")), errors).Is(90001));
    EXPECT_EQ(errors.size(), 1u);
    EXPECT_EQ(alpha, 0);
    alpha = 1;
    EXPECT_TRUE(zo::xml::FileImport(Wide(TemporaryFile("missing.xml")), errors, {}, rows.registry.get()).Is(90001));
    EXPECT_EQ(alpha, 1);
}

TEST_F(ReadTest, ValuesBeforeTheEndOfABrokenDocumentStay) {
    EXPECT_TRUE(Import(L"<Alpha>7</Alpha><Project><Title>T</Title></Oops>").result.Is(90002));
    EXPECT_EQ(alpha, 7);
    EXPECT_EQ(project.Title, L"T");
    EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
    EXPECT_TRUE(rows.registry->Impl()->validateValues);
}

TEST_F(ReadTest, LoneSurrogateFailsTheLoad) {
    EXPECT_TRUE(
        LoadText(std::wstring(L"<HZNData><Alpha>1") + wchar_t(0xD800) + L"</Alpha></HZNData>").result.Is(90012));
}

TEST_F(ReadTest, WideTextThatClaimsEightBitsFails) {
    EXPECT_TRUE(LoadText(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?><HZNData/>").result.Is(90002));
}

TEST_F(ReadTest, ExceptionsLeaveTrackingOn) {
    std::vector<htl::status> errors;
    auto const policy = [](std::wstring const&) -> std::wstring { throw std::runtime_error("no answer"); };
    EXPECT_THROW((void)zo::xml::StringRead(Document(L"<Idle/>"), errors, {}, {}, policy), std::runtime_error);
    EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
    EXPECT_TRUE(rows.registry->Impl()->validateValues);
    auto const handler = [](zo::ZOSet*, zo::xml::Unknowns&, double, zo::xml::impl::XMLError&) {
        throw std::runtime_error("no help");
    };
    EXPECT_THROW((void)zo::xml::StringImport(Document(L""), errors, {}, rows.registry.get(), handler),
                 std::runtime_error);
    EXPECT_TRUE(rows.registry->Impl()->trackTemporaries);
}

TEST_F(ReadTest, NullSetIsTheCurrentRegistry) {
    ASSERT_TRUE(IsClean(Import(L"<Alpha>3</Alpha>", {}, nullptr)));
    EXPECT_EQ(alpha, 3);
}

/// A set that holds nothing, not even a root.
class EmptySet final : public zo::ZOSet {
public:
    EmptySet() : ZOSet(std::make_unique<zo::ZOSetImpl>(), {}, {}) {}
    using ZOSet::Find;
    H Find(zo::ZOArray*, std::size_t) override { return {}; }
    H Find(H const&, std::string const&) override { return {}; }
    H Find(std::string const&) override { return {}; }
    htl::status Insert(std::string const&, H const&) override { return ZOError::not_supported(""); }
    htl::status InsertTemporary(std::string const&, H const&) override { return ZOError::not_supported(""); }

protected:
    ~EmptySet() override = default;
};

TEST_F(ReadTest, SetWithoutRootReadsEverythingIntoNothing) {
    htl::handle<zo::ZOSet> const set(new EmptySet);
    std::vector<htl::status> errors;
    zo::xml::Unknowns unknown;
    auto const handler = [&](zo::ZOSet* given, zo::xml::Unknowns& items, double, zo::xml::impl::XMLError&) {
        EXPECT_EQ(given, set.get());
        unknown = items;
    };
    ASSERT_TRUE(Succeeds(zo::xml::StringImport(L"<HZNData Author=\"x\"><Alpha>3<Deep a=\"1\"/></Alpha></HZNData>",
                                               errors, {}, set.get(), handler)));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(FailsAs(errors[0], ZOError::not_recognized(L"HZNData.Author")));
    EXPECT_TRUE(unknown.empty());
    EXPECT_EQ(alpha, 1);
    EXPECT_TRUE(set->Impl()->validateValues);
}

/// A set that gives out another set's nodes and writes down what it was asked for.
class LentSet final : public zo::ZOSet {
public:
    explicit LentSet(htl::handle<zo::ZOSet> const& lender) : ZOSet(std::make_unique<zo::ZOSetImpl>(), lender, {}) {}
    using ZOSet::Find;
    H Find(zo::ZOArray* array, std::size_t index) override {
        asked.push_back(std::to_string(index));
        return source->Find(array, index);
    }
    H Find(H const& node, std::string const& name) override {
        asked.push_back(name);
        return source->Find(node, name);
    }
    H Find(std::string const& name) override {
        asked.push_back(name);
        return source->Find(name);
    }
    htl::status Insert(std::string const&, H const&) override { return ZOError::not_supported(""); }
    htl::status InsertTemporary(std::string const&, H const&) override { return ZOError::not_supported(""); }

    std::vector<std::string> asked;

protected:
    ~LentSet() override = default;
};

TEST_F(ReadTest, ImportResolvesNamesThroughTheSetItIsGiven) {
    htl::handle<LentSet> const set(new LentSet(rows.registry));
    Loaded const loaded = Import(
        L"<Alpha>7</Alpha><Project><Points Len=\"1\"><Point X=\"3\" Z=\"9\"/></Points></Project>", {}, set.get());
    EXPECT_TRUE(loaded.errors.empty());
    EXPECT_EQ(loaded.unknown, (zo::xml::Unknowns{{L"HZNData.Project.Points[1].Z", L"9"}}));
    EXPECT_EQ(alpha, 7);
    ASSERT_EQ(project.Points.size(), 1u);
    EXPECT_EQ(project.Points[0].X, 3);
    EXPECT_EQ(set->asked, (std::vector<std::string>{"HZNData", "Alpha", "Project", "Points", "0", "X"}));
    EXPECT_TRUE(set->Impl()->validateValues);
}

TEST_F(ReadTest, TwoThreadsLoadAndSaveRegistriesOfTheirOwn) {
    std::vector<std::thread> threads;
    std::array<std::wstring, 2> saved;
    for (std::size_t i = 0; i < saved.size(); ++i)
        threads.emplace_back([&text = saved[i], i] {
            Rows own;
            Project plan;
            AddProject(own, plan);
            own.Finish();
            for (int round = 0; round < 50; ++round) {
                plan = Example();
                plan.Title = std::to_wstring(i);
                std::wstring const document = Written();
                if (LoadText(document).result.IsError() || Written() != document) return;
            }
            text = Saved();
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_NE(saved[0].find(L"<Title>0</Title>"), std::wstring::npos);
    EXPECT_NE(saved[1].find(L"<Title>1</Title>"), std::wstring::npos);
}

TEST_F(ReadTest, DeepElementsBelowAnInactiveBranchAreReadIntoNothing) {
    std::wstring body;
    for (int i = 0; i < 4000; ++i) body += L"<Below>";
    for (int i = 0; i < 4000; ++i) body += L"</Below>";
    ASSERT_TRUE(IsClean(Load(L"<Idle>" + body + L"</Idle>")));
}

// Filters

class ReadFilterTest : public PlanTest {
protected:
    ReadFilterTest() {
        AddProject(rows, project);
        AddProject(rows, variant, "Variant", L"Variant");
        rows.Number("Alpha", L"Alpha", alpha);
        rows.Finish();
    }
    /// Loads one document through a filter and says what arrived.
    std::wstring Read(zo::xml::Filter const& filter) {
        Loaded const loaded =
            Load(L"<Alpha>1</Alpha>"
                 L"<Project><Title>P</Title><Points Len=\"2\"><Point X=\"1\"/><Point X=\"2\"/></Points>"
                 L"<Weights>5,6</Weights></Project>"
                 L"<Variant><Title>V</Title><Odd/></Variant>",
                 filter);
        EXPECT_TRUE(Succeeds(loaded.result));
        EXPECT_TRUE(loaded.errors.empty());
        std::wstring result = alpha == 1 ? L"A" : L"";
        result += project.Title;
        for (Point const& point : project.Points) result += str::as_wstring("x" + std::to_string(int(point.X)));
        if (!project.Weights.empty()) result += L"W";
        result += variant.Title;
        if (!loaded.unknown.empty()) result += L"?";
        return result;
    }

    Project variant;
    double alpha = 0;
};

TEST_F(ReadFilterTest, EmptyListReadsEverything) { EXPECT_EQ(Read({}), L"APx1x2WV?"); }

TEST_F(ReadFilterTest, EmptyPathReadsEverythingWithEitherFlag) {
    EXPECT_EQ(Read({{L"", false}}), L"APx1x2WV?");
    EXPECT_EQ(Read({{L"", true}}), L"APx1x2WV?");
}

TEST_F(ReadFilterTest, PathReadsAllBelowItAndSkipsItsSiblings) {
    EXPECT_EQ(Read({{L"Project", false}}), L"Px1x2W");
    EXPECT_EQ(Read({{L"Project.Points", false}}), L"x1x2");
    EXPECT_EQ(Read({{L"Project.Title", false}, {L"Variant.Title", false}}), L"P"
                                                                            L"V");
}

TEST_F(ReadFilterTest, FlagRefusesTheChildElements) {
    EXPECT_EQ(Read({{L"Project", true}}), L"");
    EXPECT_EQ(Read({{L"Alpha", true}}), L"A");
    // The length is an attribute and is read.
    EXPECT_EQ(Read({{L"Project.Points", true}}), L"x0x0");
}

TEST_F(ReadFilterTest, UnlistedElementsAreReadBesideListedOnesIfToldSo) {
    EXPECT_EQ(Read({{L"Project", true}, {L"", false}}), L"AV?");
    EXPECT_EQ(Read({{L"Project", true}, {L"", true}}), L"");
    // Only the level of the empty path reads what isn't listed.
    EXPECT_EQ(Read({{L"Project.Title", false}, {L"", false}}), L"APV?");
}

TEST_F(ReadFilterTest, FirstOfTwoPairsWithOneHeadCounts) {
    EXPECT_EQ(Read({{L"Project.Title", false}, {L"Project.Weights", false}}), L"P");
}

TEST_F(ReadFilterTest, EntriesAreNamedByTheirTag) {
    EXPECT_EQ(Read({{L"Project.Points[Point]", false}}), L"x1x2");
    EXPECT_EQ(Read({{L"Project.Points.Point", false}}), L"x1x2");
    EXPECT_EQ(Read({{L"Project.Points[1]", false}}), L"x0x0");
    EXPECT_EQ(Read({{L"Project.Points[Corner].X", false}}), L"x0x0");
    // Attributes are no elements: they are read from every entry on the path.
    EXPECT_EQ(Read({{L"Project.Points[Point].X", false}}), L"x1x2");
}

TEST_F(ReadFilterTest, SkippedEntriesTakeNoPosition) {
    Loaded const loaded = Load(L"<Project><Points Len=\"2\"><Corner X=\"1\"/><Point X=\"2\"/></Points></Project>",
                               {{L"Project.Points[Point]", false}});
    ASSERT_TRUE(IsClean(loaded));
    ASSERT_EQ(project.Points.size(), 2u);
    EXPECT_EQ(project.Points[0].X, 2);
    EXPECT_EQ(project.Points[1].X, 0);
}

TEST_F(ReadFilterTest, AttributesOfTheDocumentElementAreAlwaysRead) {
    EXPECT_EQ(Load(L"", {{L"Nowhere", true}}).version, 12.03);
}

} // namespace
