// What registration writes into the columns: one row for each node, resolved against its parent.
#include "Common/model/NodeTables.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/registry/Rows.h"

namespace {

using rows::H;
using rows::IZO;
using rows::MetaPersistTraits;
using rows::RowOf;
using zo::ViewTravRecord;
using zo::ZORegistryImpl;

class ColumnsTest : public rows::RegistryTest {
protected:
    ZORegistryImpl& Tables() { return *registry->Tables(); }
    MetaPersistTraits Persist(std::string const& name) { return zo::GetTemplate(name)->GetPersistTraits(); }
    /// A row that persists, so that its type can be told.
    H Persisted(std::string const& name, std::wstring const& tag, std::uint32_t type = MetaPersistTraits::Always,
                meta::MetaDataTraits const& traits = rows::StructureTraits()) {
        H const node(new rows::Plain);
        registry.Add(name, node, tag, traits, nullptr, type);
        return node;
    }
};

TEST_F(ColumnsTest, TheRootIsRowZero) {
    ZORegistryImpl& tables = Tables();
    EXPECT_EQ(tables.RowCount(), 1u);
    EXPECT_EQ(tables.names[0], "HZNData");
    EXPECT_EQ(tables.subNames[0], "HZNData");
    EXPECT_EQ(tables.tagNames[0], L"HZNData");
    EXPECT_EQ(tables.parents[0], IZO::npos);
    EXPECT_EQ(tables.persistTraits[0].Type, MetaPersistTraits::Always);
    EXPECT_EQ(tables.nodes[0]->RegID(), 0u);
    EXPECT_EQ(tables.RowOfName("HZNData"), 0u);
    EXPECT_EQ(tables.RowOfTag(L"HZNData"), 0u);
    EXPECT_TRUE(tables.stores[0]->IsAvailable());
    EXPECT_FALSE(tables.dataTraits[0]);
    EXPECT_FALSE(tables.initializationComplete);
}

TEST_F(ColumnsTest, EveryColumnGrowsByOneRow) {
    H const soils = registry.AddPlain("Soils", L"Soils");
    ZORegistryImpl& tables = Tables();
    std::size_t const rows = tables.RowCount();
    EXPECT_EQ(rows, 2u);
    EXPECT_EQ(soils->RegID(), 1u);
    EXPECT_EQ(soils->Owner(), &*registry);
    EXPECT_EQ(soils->OwnerID(), IZO::npos);
    EXPECT_EQ(tables.nodes[1], soils);
    EXPECT_EQ(tables.parents[1], 0u);
    EXPECT_EQ(tables.wrappers[1], nullptr);
    EXPECT_EQ(tables.redirects[1], nullptr);
    EXPECT_FALSE(tables.aliasBits[1]);
    EXPECT_FALSE(tables.assocBits[1]);
    for (std::size_t const size : {tables.dataTraits.size(),
                                   tables.persistTraits.size(),
                                   tables.localTags.size(),
                                   tables.stores.size(),
                                   tables.nodes.size(),
                                   tables.subNames.size(),
                                   tables.tagNames.size(),
                                   tables.subTags.size(),
                                   tables.pathTags.size(),
                                   tables.wrappers.size(),
                                   tables.redirects.size(),
                                   tables.aliasBits.size(),
                                   tables.assocBits.size(),
                                   tables.parents.size(),
                                   tables.nextSiblings.size(),
                                   tables.firstChildren.size(),
                                   tables.viewFirstChildren.size(),
                                   tables.childrenByName.size(),
                                   tables.childrenByTag.size(),
                                   tables.viewRecords.size()})
        EXPECT_EQ(size, rows);
}

TEST_F(ColumnsTest, AWrapperIsKnownAsOne) {
    embankment::Embankment project;
    ZORegistryImpl& tables = *project.registry->Tables();
    std::size_t const row = RowOf("Soils.[].Cohesion");
    EXPECT_EQ(tables.wrappers[row], dynamic_cast<zo::IZOWrapper*>(tables.nodes[row].get()));
    EXPECT_NE(tables.wrappers[row], nullptr);
    EXPECT_EQ(tables.wrappers[RowOf("Summary")], nullptr);
}

TEST_F(ColumnsTest, ATopLevelNodeKeepsItsOwnTag) {
    Persisted("Soils", L"Layers");
    EXPECT_EQ(Persist("Soils").TagName, L"Layers");
    EXPECT_EQ(Persist("Soils").Tag, L"Layers");
    EXPECT_EQ(Persist("Soils").Type, MetaPersistTraits::Always);
    EXPECT_EQ(Tables().subTags[1], L"Layers");
}

TEST_F(ColumnsTest, ATagContinuesTheParentsTag) {
    Persisted("Soils", L"Layers");
    Persisted("Soils.Cohesion", L"Anything.C", MetaPersistTraits::IfNotDefined);
    EXPECT_EQ(Persist("Soils.Cohesion").TagName, L"Layers.C");
    EXPECT_EQ(Persist("Soils.Cohesion").Tag, L"C");
    EXPECT_EQ(Persist("Soils.Cohesion").Type, MetaPersistTraits::IfNotDefined);
    EXPECT_EQ(Tables().subTags[2], L"C");
    EXPECT_EQ(Tables().RowOfTag(L"Layers.C"), 2u);
}

TEST_F(ColumnsTest, BelowAParentWithoutTagThereIsNoTag) {
    Persisted("Soils", L"");
    Persisted("Soils.Cohesion", L"C");
    EXPECT_EQ(Persist("Soils.Cohesion").TagName, L"");
    EXPECT_EQ(Persist("Soils.Cohesion").Tag, L"");
    EXPECT_EQ(Tables().subTags[2], L"");
}

TEST_F(ColumnsTest, AnEmptyTagBelowATagEmptiesBoth) {
    Persisted("Soils", L"Layers");
    Persisted("Soils.Cohesion", L"");
    EXPECT_EQ(Persist("Soils.Cohesion").TagName, L"");
    EXPECT_EQ(Tables().pathTags[2], L"Layers.Cohesion") << "a path made of the name";
}

TEST_F(ColumnsTest, ChildrenOfWhatIsNotPersistedAreNotPersisted) {
    Persisted("Summary", L"Summary", MetaPersistTraits::No);
    Persisted("Summary.Count", L"Count", MetaPersistTraits::Always);
    EXPECT_EQ(Persist("Summary.Count").Type, MetaPersistTraits::No);
    EXPECT_EQ(Persist("Summary.Count").TagName, L"Summary.Count");
}

TEST_F(ColumnsTest, AnArraysElementIsTaggedByTheTextInBrackets) {
    Persisted("Points", L"Points[Point]", MetaPersistTraits::IfNotDefined, rows::ArrayKindTraits());
    Persisted("Points.[]", L"Whatever", MetaPersistTraits::Always);
    ZORegistryImpl& tables = Tables();
    EXPECT_EQ(Persist("Points").TagName, L"Points");
    EXPECT_EQ(Persist("Points").Tag, L"Points");
    EXPECT_EQ(tables.localTags[1], L"Points[Point]");
    EXPECT_EQ(tables.subTags[1], L"Points");
    EXPECT_EQ(Persist("Points.[]").TagName, L"Points[Point]");
    EXPECT_EQ(Persist("Points.[]").Tag, L"Point");
    EXPECT_EQ(Persist("Points.[]").Type, MetaPersistTraits::IfNotDefined) << "the array's";
    EXPECT_EQ(tables.tagNames[2], L"Points.[]");
    EXPECT_EQ(tables.subNames[2], "[]");
    EXPECT_EQ(tables.subTags[2], L"[]");
    EXPECT_EQ(zo::RegSubTag(2), L"[]");
    EXPECT_EQ(tables.RowOfTag(L"Points.[]"), 2u);
}

TEST_F(ColumnsTest, AnArrayWithoutBracketsNamesItsElementsWithAnUnderscore) {
    Persisted("V", L"V", MetaPersistTraits::Always, rows::ArrayKindTraits());
    Persisted("V.[]", L"");
    EXPECT_EQ(Persist("V.[]").TagName, L"V[V_]");
    EXPECT_EQ(Persist("V.[]").Tag, L"V_");
    EXPECT_EQ(zo::RegSubTag(2), L"[]");
    EXPECT_EQ(Tables().RowOfTag(L"V.[]"), 2u);
}

TEST_F(ColumnsTest, BracketsTheWrongWayRoundAreText) {
    Persisted("V", L"a]b[c", MetaPersistTraits::Always, rows::ArrayKindTraits());
    Persisted("V.[]", L"");
    EXPECT_EQ(Tables().localTags[2], L"a]b[c_");
    EXPECT_EQ(Persist("V.[]").Tag, L"a]b") << "cut at its last bracket as every tag is";
}

TEST_F(ColumnsTest, AnElementOfAnArrayWithoutTagHasNone) {
    Persisted("V", L"", MetaPersistTraits::Always, rows::ArrayKindTraits());
    Persisted("V.[]", L"X");
    EXPECT_EQ(Persist("V.[]").TagName, L"");
    EXPECT_EQ(Persist("V.[]").Tag, L"");
    EXPECT_EQ(Tables().subTags[2], L"[]") << "it is the element all the same";
}

TEST_F(ColumnsTest, BelowAnElementTagsGoOn) {
    Persisted("Points", L"Points[Point]", MetaPersistTraits::Always, rows::ArrayKindTraits());
    Persisted("Points.[]", L"");
    Persisted("Points.[].X", L"X");
    EXPECT_EQ(Persist("Points.[].X").TagName, L"Points[Point].X");
    EXPECT_EQ(Tables().tagNames[3], L"Points.[].X");
}

TEST_F(ColumnsTest, AttributesHaveNoPathOfTheirOwn) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.:Size", L"");
    registry.AddPlain("a.:Size.x", L"");
    registry.AddPlain("a.:Size.x.y", L"");
    registry.AddPlain("a.b", L"");
    ZORegistryImpl& tables = Tables();
    EXPECT_EQ(tables.pathTags[RowOf("a.:Size")], L"");
    EXPECT_EQ(tables.pathTags[RowOf("a.:Size.x")], L"");
    EXPECT_EQ(tables.pathTags[RowOf("a.:Size.x.y")], L"");
    EXPECT_EQ(tables.pathTags[RowOf("a.b")], L"A.b");
}

TEST_F(ColumnsTest, AnElementsTypeIsTheArrays) {
    Persisted("V", L"V", MetaPersistTraits::No, rows::ArrayKindTraits());
    Persisted("V.[]", L"", MetaPersistTraits::Always);
    EXPECT_EQ(Persist("V.[]").Type, MetaPersistTraits::No);
}

TEST_F(ColumnsTest, AnAliasIsListedByNameAndNotByTag) {
    registry.AddPlain("a", L"A");
    registry.Add("a.other", H(new rows::OtherName("x", true)), L"Other", rows::StructureTraits());
    registry.Add("a.link", H(new rows::OtherName("x", false)), L"Link", rows::StructureTraits());
    registry->OnPostRegistration();
    ZORegistryImpl& tables = Tables();
    EXPECT_TRUE(tables.aliasBits[2]);
    EXPECT_FALSE(tables.aliasBits[3]);
    EXPECT_NE(tables.redirects[2], nullptr);
    EXPECT_EQ(zo::SubRegID(1, "other"), 2u);
    EXPECT_EQ(zo::SubRegIDByTag(1, L"Other"), IZO::npos);
    EXPECT_EQ(zo::SubRegIDByTag(1, L"Link"), 3u);
    EXPECT_EQ(tables.RowOfTag(L"A.Other"), 2u);
    EXPECT_EQ(zo::SubRegID(1), 3u) << "an alias has no place in the tree of tags";
    EXPECT_EQ(zo::NextRegID(3), IZO::npos);
}

TEST_F(ColumnsTest, ADuplicateNameLeavesItsRow) {
    registry.AddPlain("a", L"A");
    H const first = registry.AddPlain("a.b", L"B");
    H const second(new rows::Plain);
    EXPECT_THROW(registry.Add("a.b", second, L"C", rows::StructureTraits()), htl::status_exception);
    ZORegistryImpl& tables = Tables();
    EXPECT_EQ(tables.RowCount(), 4u);
    EXPECT_EQ(tables.nodes[3], second);
    EXPECT_EQ(second->RegID(), IZO::npos);
    EXPECT_EQ(tables.RowOfName("a.b"), 2u);
    EXPECT_EQ(tables.RowOfTag(L"A.C"), IZO::npos);
    EXPECT_EQ(tables.childrenByName[1].size(), 2u);
    EXPECT_EQ(zo::SubRegID(1, "b"), first->RegID());
    registry->OnPostRegistration();
    EXPECT_EQ(zo::SubRegID(1, "b"), first->RegID()) << "the first stays the first";
}

TEST_F(ColumnsTest, ADuplicateTagLeavesItsName) {
    registry.AddPlain("a", L"A");
    H const second(new rows::Plain);
    EXPECT_THROW(registry.Add("b", second, L"A", rows::StructureTraits()), htl::status_exception);
    ZORegistryImpl& tables = Tables();
    EXPECT_EQ(tables.RowCount(), 3u);
    EXPECT_EQ(tables.RowOfName("b"), 2u);
    EXPECT_EQ(tables.RowOfTag(L"A"), 1u);
    EXPECT_EQ(second->RegID(), IZO::npos);
}

TEST_F(ColumnsTest, ViewRecordsFollowTheTreeAndNameTheirSources) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.b", L"B");
    registry.AddPlain("a.c", L"");
    registry.AddPlain("d", L"");
    registry->OnPostRegistration();
    ZORegistryImpl& tables = Tables();
    EXPECT_EQ(tables.viewFirstChildren, tables.firstChildren);
    auto const record = [&](char const* name) { return tables.viewRecords[RowOf(name)]; };
    EXPECT_EQ(record("a").kind, ViewTravRecord::AbsoluteTag);
    EXPECT_EQ(record("a").path, L"A");
    EXPECT_EQ(record("a").ViewTravNextID, RowOf("d"));
    EXPECT_EQ(record("a.b").kind, ViewTravRecord::RelativeTag);
    EXPECT_EQ(record("a.b").path, L"B");
    EXPECT_EQ(record("a.b").ViewTravNextID, RowOf("a.c"));
    EXPECT_EQ(record("a.c").kind, ViewTravRecord::RegistryName);
    EXPECT_EQ(record("a.c").path, L"");
    EXPECT_EQ(record("d").kind, ViewTravRecord::RegistryName);
    EXPECT_EQ(tables.viewParents[RowOf("a.b")], RowOf("a"));
    EXPECT_EQ(tables.viewParents[RowOf("a")], 0u);
    EXPECT_EQ(tables.viewParents[0], IZO::npos);
}

TEST_F(ColumnsTest, AHashedIndexStaysFilledLightly) {
    EXPECT_LE(Tables().nameIndex.max_load_factor(), 1.0f);
    EXPECT_GE(Tables().nameIndex.bucket_count(), 10'000u);
    EXPECT_GE(Tables().tagIndex.bucket_count(), 10'000u);
}

TEST_F(ColumnsTest, TheHintIsTakenOnceAndOnlyForItsParent) {
    registry.AddPlain("a", L"A");
    registry.AddPlain("a.b", L"B");
    registry.AddPlain("a.c", L"C");
    Tables().findHint = 2;
    EXPECT_EQ(zo::impl::tables::FindMember(1, "c").row, 2u) << "the hint spares the search";
    EXPECT_EQ(Tables().findHint, IZO::npos);
    EXPECT_EQ(zo::impl::tables::FindMember(1, "c").row, 3u);
    Tables().findHint = 2;
    EXPECT_EQ(zo::impl::tables::FindMember(2, "c").row, IZO::npos) << "no child of that row";
    EXPECT_EQ(Tables().findHint, IZO::npos);
    Tables().findHint = 77;
    EXPECT_EQ(zo::impl::tables::FindMember(1, "c").row, 3u) << "no such row";
}

} // namespace
