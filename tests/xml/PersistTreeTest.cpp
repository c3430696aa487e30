// Which rows are saved, by which getter's rules, and in which order they stand in a document.
#include "tests/xml/Plan.h"

#include "Common/model/ZOArray.h"
#include "Common/xml/Ordering.h"
#include "Common/xml/PersistTree.h"

#include "support/diag.h"

#include <chrono>

namespace {

using namespace plan;
using embankment::StructPrototype;
using embankment::ValuePrototype;
using zo::xml::impl::PersistRoots;
using zo::xml::impl::ZOPersistEntry;
using P = meta::MetaPersistTraits;

class PersistTreeTest : public PlanTest {
protected:
    /// The entry under tags, null if there is none.
    static ZOPersistEntry* Entry(std::vector<std::wstring> const& tags) {
        ZOPersistEntry* at = PersistRoots(false).first;
        for (std::wstring const& tag : tags) {
            std::size_t const child = at->ChildByTag(tag);
            if (child == IZO::npos) return nullptr;
            at = &at->children[child];
        }
        return at;
    }
    static std::wstring Children(std::vector<std::wstring> const& tags, bool ordered = true) {
        (void)PersistRoots(ordered);
        std::wstring result;
        for (ZOPersistEntry const& child : Entry(tags)->children) result += child.tag + L" ";
        return result;
    }
};

TEST_F(PersistTreeTest, RootEntryIsThatOfTheRegistrysRoot) {
    auto const [first, last] = PersistRoots(false);
    ASSERT_EQ(last - first, 1);
    EXPECT_EQ(first->tag, L"HZNData");
    EXPECT_EQ(first->node, rows.registry->Root());
    EXPECT_EQ(first->wrapper, nullptr);
    EXPECT_FALSE(first->isArray);
    EXPECT_TRUE(first->fixedLength);
}

TEST_F(PersistTreeTest, EntryHoldsWhatTheRowSays) {
    AddProject(rows, project);
    ZOPersistEntry const* const points = Entry({L"Project", L"Points"});
    ASSERT_TRUE(points);
    EXPECT_EQ(points->name, "Points");
    EXPECT_EQ(points->tag, L"Points");
    EXPECT_TRUE(points->isArray);
    EXPECT_FALSE(points->fixedLength);
    EXPECT_FALSE(points->contiguous);
    EXPECT_EQ(points->length, 0u);
    EXPECT_NE(points->wrapper, nullptr);
    EXPECT_EQ(points->simple, nullptr);
    EXPECT_EQ(points->persist.TagName, L"Project.Points");
    ZOPersistEntry const* const element = Entry({L"Project", L"Points", L"Point"});
    ASSERT_TRUE(element);
    EXPECT_EQ(element->name, "[]");
    EXPECT_TRUE(element->persist.IsAllChildrenValue);
    EXPECT_TRUE(Entry({L"Project", L"Weights"})->contiguous);
    EXPECT_NE(Entry({L"Project", L"Weights", L"Weights_"})->simple, nullptr);
}

TEST_F(PersistTreeTest, FixedArrayKnowsItsLengthWithoutMemory) {
    double anisotropy[3] = {1, 2, 3};
    auto const traits = meta::ArrayTraits<double[3]>([] { return meta::AtomicTraits<double>(); });
    rows.Add("Anisotropy", embankment::ArrayPrototype(traits, 8), {P::Always, L"Anisotropy", true}, traits, anisotropy);
    EXPECT_TRUE(Entry({L"Anisotropy"})->fixedLength);
    EXPECT_EQ(Entry({L"Anisotropy"})->length, 3u);
}

TEST_F(PersistTreeTest, GettersFollowFormAndParent) {
    AddProject(rows, project);
    EXPECT_FALSE(Entry({L"Project"})->getter);
    EXPECT_FALSE(Entry({L"Project", L"Points"})->getter);
    EXPECT_FALSE(Entry({L"Project", L"Points", L"Point"})->getter);
    EXPECT_TRUE(Entry({L"Project", L"Points", L"Point", L"X"})->getter);
    EXPECT_TRUE(Entry({L"Project", L"Title"})->getter);
    EXPECT_TRUE(Entry({L"Project", L"Weights"})->getter);
    // Attributes are read from the parent's memory, values from their own node's.
    EXPECT_TRUE(Entry({L"Project", L"Points", L"Point", L"X"})->getter != Entry({L"Project", L"Tolerance"})->getter);
    EXPECT_TRUE(Entry({L"Project", L"Title"})->getter == Entry({L"Project", L"Comment"})->getter);
    EXPECT_TRUE(Entry({L"Project", L"Title"})->getter != Entry({L"Project", L"Weights"})->getter);
}

TEST_F(PersistTreeTest, NodeThatDoesNotPersistHasNoEntryAndNoneBelow) {
    double tolerance = 1;
    rows.Add("Hidden", H(new zo::ZOStructClone(IZO::npos, nullptr)), {P::No, L"Hidden"}, PointTraits());
    rows.Number("Hidden.Tolerance", L"Tolerance", tolerance);
    EXPECT_EQ(Entry({L"Hidden"}), nullptr);
    EXPECT_TRUE(PersistRoots(false).first->children.empty());
}

TEST_F(PersistTreeTest, RowWithoutTagHasNoEntry) {
    double tolerance = 1;
    rows.Branch("Project", L"Project");
    rows.Number("Project.Tolerance", L"", tolerance);
    EXPECT_TRUE(Entry({L"Project"})->children.empty());
}

TEST_F(PersistTreeTest, MembersOfAWrapperStayAsRegistered) {
    AddProject(rows, project);
    EXPECT_EQ(Children({L"Project"}), L"Title Points Weights Tolerance Comment ");
}

TEST_F(PersistTreeTest, ChildrenOfAPlainStructureAreOrderedByTag) {
    double value = 1;
    rows.Branch("Loads", L"Loads");
    for (wchar_t const* tag : {L"Wind", L"Crest", L"Crest2", L"Snow"})
        rows.Number("Loads." + str::as_cstring(tag), tag, value);
    EXPECT_EQ(Children({L"Loads"}, false), L"Wind Crest Crest2 Snow ");
    EXPECT_EQ(Children({L"Loads"}), L"Crest Crest2 Snow Wind ");
}

TEST_F(PersistTreeTest, TagsAreOrderedByTheirUtf16Units) {
    double value = 1;
    rows.Branch("Loads", L"Loads");
    // U+1D400 has the units D835 DC00 and so stands before U+FF21, though its number is greater.
    rows.Number("Loads.a", L"\uFF21", value);
    rows.Number("Loads.b", L"\U0001D400", value);
    rows.Number("Loads.c", L"z", value);
    EXPECT_EQ(Children({L"Loads"}), L"z \U0001D400 \uFF21 ");
}

TEST_F(PersistTreeTest, OrderingEntersBelowWrappers) {
    AddProject(rows, project);
    zo::xml::RegisterFirstOrdering(L"Project.Points.Point.Y");
    EXPECT_EQ(Children({L"Project", L"Points", L"Point"}), L"Y X ");
}

TEST_F(PersistTreeTest, LaterFirstOrderingComesOutEarlier) {
    AddProject(rows, project);
    zo::xml::RegisterFirstOrdering(L"Project.Weights");
    zo::xml::RegisterFirstOrdering(L"Project.Comment");
    EXPECT_EQ(Children({L"Project"}), L"Comment Weights Title Points Tolerance ");
}

TEST_F(PersistTreeTest, ExchangeLeavesAllBetweenInPlace) {
    AddProject(rows, project);
    zo::xml::RegisterPersistanceOrdering(L"Project.Title", L"Nowhere.Tolerance");
    EXPECT_EQ(Children({L"Project"}), L"Tolerance Points Weights Title Comment ");
}

TEST_F(PersistTreeTest, OrderingsApplyInTheSequenceOfTheirCalls) {
    AddProject(rows, project);
    zo::xml::RegisterPersistanceOrdering(L"Project.Title", L"Project.Comment");
    zo::xml::RegisterFirstOrdering(L"Project.Title");
    EXPECT_EQ(Children({L"Project"}), L"Title Comment Points Weights Tolerance ");
}

TEST_F(PersistTreeTest, TopLevelElementIsOrderedByAPathOfOneTag) {
    double value = 1;
    rows.Number("Alpha", L"Alpha", value);
    rows.Number("Beta", L"Beta", value);
    rows.Number("Gamma", L"Gamma", value);
    zo::xml::RegisterFirstOrdering(L"Gamma");
    EXPECT_EQ(Children({}), L"Gamma Alpha Beta ");
}

TEST_F(PersistTreeTest, OrderingThatLeadsNowhereIsIgnored) {
    AddProject(rows, project);
    for (wchar_t const* path :
         {L"", L".", L"Nowhere", L"Project.Nowhere", L"Nowhere.Title", L"Project..Title", L"Project.Points[Point].X"})
        zo::xml::RegisterFirstOrdering(path);
    zo::xml::RegisterPersistanceOrdering(L"Project.Title", L"Project.Nowhere");
    zo::xml::RegisterPersistanceOrdering(L"Project.Nowhere", L"Project.Title");
    zo::xml::RegisterPersistanceOrdering(L"Project.Title", L"Project.Title");
    EXPECT_EQ(Children({L"Project"}), L"Title Points Weights Tolerance Comment ");
}

TEST_F(PersistTreeTest, OrderIsSettledOnceAndLaterRowsStayAtTheEnd) {
    double value = 1;
    rows.Number("Beta", L"Beta", value);
    rows.Number("Gamma", L"Gamma", value);
    EXPECT_EQ(Children({}), L"Beta Gamma ");
    rows.Number("Alpha", L"Alpha", value);
    zo::xml::RegisterFirstOrdering(L"Gamma");
    EXPECT_EQ(Children({}), L"Beta Gamma Alpha ");
}

TEST_F(PersistTreeTest, SecondWriteHasTheSameOrder) {
    AddProject(rows, project);
    zo::xml::RegisterFirstOrdering(L"Project.Weights");
    zo::xml::RegisterPersistanceOrdering(L"Project.Title", L"Project.Comment");
    rows.Finish();
    project = Example();
    std::wstring const first = Written();
    EXPECT_EQ(Written(), first);
    EXPECT_LT(first.find(L"<Weights>"), first.find(L"<Comment"));
    EXPECT_LT(first.find(L"<Comment"), first.find(L"<Title>"));
}

TEST_F(PersistTreeTest, EachRegistryHasATreeOfItsOwn) {
    double value = 1;
    rows.Number("Alpha", L"Alpha", value);
    {
        Rows other;
        EXPECT_TRUE(PersistRoots(false).first->children.empty());
        zo::xml::RegisterFirstOrdering(L"Beta");
    }
    rows.Number("Beta", L"Beta", value);
    EXPECT_EQ(Children({}), L"Alpha Beta ");
}

TEST_F(PersistTreeTest, EntriesAreCopiedWithTheirChildren) {
    AddProject(rows, project);
    ZOPersistEntry const copy = *Entry({L"Project"});
    ZOPersistEntry assigned = *Entry({L"Project", L"Title"});
    assigned = copy;
    EXPECT_EQ(assigned.tag, L"Project");
    ASSERT_EQ(assigned.children.size(), 5u);
    EXPECT_EQ(assigned.ChildByTag(L"Tolerance"), 3u);
    ZOPersistEntry const moved = std::move(assigned);
    EXPECT_EQ(moved.children[4].tag, L"Comment");
}

TEST_F(PersistTreeTest, FirstOfManyChildrenWithATagIsFound) {
    double value = 1;
    rows.Branch("Loads", L"Loads");
    for (int i = 0; i < 40; ++i) {
        std::wstring const tag = L"Load" + std::to_wstring(i);
        rows.Number("Loads." + str::as_cstring(tag), tag, value);
    }
    ZOPersistEntry* const loads = Entry({L"Loads"});
    for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(loads->ChildByTag(L"Load" + std::to_wstring(i)), i);
    EXPECT_EQ(loads->ChildByTag(L"Load40"), IZO::npos);
    // Children that changed places are found where they are now.
    std::swap(loads->children[0], loads->children[39]);
    loads->ChildrenMoved();
    EXPECT_EQ(loads->ChildByTag(L"Load0"), 39u);
}

TEST_F(PersistTreeTest, RegistrationBelowManySiblingsTakesLinearTime) {
    // Rows of the most recent sibling, so that a scan would pass all others; it would take minutes.
    auto const seconds = [](int count) {
        Rows many;
        double value = 1;
        auto const start = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i) {
            std::string const name = "Load" + std::to_string(i);
            many.Branch(name, str::as_wstring(name));
            many.Number(name + ".Force", L"Force", value);
        }
        EXPECT_EQ(PersistRoots(false).first->children.size(), static_cast<std::size_t>(count));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    double const small = seconds(2000);
    EXPECT_LT(seconds(32000), 16 * 8 * small + 1);
}

/// Collects the diagnostics of one test.
class Diagnostics final : public hzn::IEventSink {
public:
    Diagnostics() : before(hzn::eventsink::SetInstance(this)) {
        hzn::diag::SetLogged(hzn::diag::DeclareCategoryMask("Persist"), hzn::diag::Severity::Warning);
    }
    ~Diagnostics() {
        hzn::diag::SetLogged(0, hzn::diag::Severity::Info);
        hzn::eventsink::SetInstance(before);
    }
    void Post(hzn::diag::Severity::Type, int, std::wstring const& text) override { texts.push_back(text); }

    std::vector<std::wstring> texts;

private:
    hzn::IEventSink* before;
};

TEST_F(PersistTreeTest, RowsThatADocumentWouldLoseAreReported) {
    double value = 1;
    Diagnostics diagnostics;
    rows.Branch("Loads", L"Loads");
    rows.Number("Loads.Good", L"Good", value);
    EXPECT_TRUE(diagnostics.texts.empty());
    rows.Number("Loads.A", L"Len", value);
    rows.Number("Loads.B", L"Missing", value);
    rows.Number("Loads.C", L"no name", value);
    rows.Number("Loads.D", L"Idle", value, P::Always, false);
    EXPECT_EQ(diagnostics.texts,
              (std::vector<std::wstring>{L"Loads.Len: the tag is reserved.", L"Loads.Missing: the tag is reserved.",
                                         L"Loads.no name: the tag is no XML name.",
                                         L"Loads.Idle: the row is persisted, but its data store is not active."}));
    diagnostics.texts.clear();
    rows.Number("Results.Radius", L"Radius", value);
    EXPECT_EQ(diagnostics.texts,
              std::vector<std::wstring>{L"Radius: the name and the tag have different parents; the row is not saved."});
}

} // namespace
