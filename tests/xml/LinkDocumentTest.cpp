// Links in a document: a link is saved as its number, and the record behind it is saved where it stands.
#include "tests/xml/Plan.h"

#include "Common/redirect/ZOAlias.h"
#include "Common/redirect/ZOLink.h"
#include "Common/registry/ZOTransaction.h"

namespace {

using namespace plan;
using embankment::ArrayPrototype;
using embankment::StructPrototype;
using embankment::TextOf;
using embankment::ValuePrototype;
using P = meta::MetaPersistTraits;

constexpr GID layerGroup = 14;

/// A layer of soil and the one below it.
struct Layer {
    std::wstring name;
    int below = 0; // counted from 1, 0 for none
};

MetaDataTraits LayerTraits() {
    static MetaDataTraits const traits = meta::StructureBuilder<Layer>().Build();
    return traits;
}

class Names final : public zo::RecordNames {
    std::string NameOf(GGID const& record, zo::ZOSet&) const override {
        return "Layers[" + std::to_string(record.id - 1) + ']';
    }
};

class LinkDocumentTest : public PlanTest {
protected:
    LinkDocumentTest() {
        MetaDataTraits const array = meta::ArrayTraits<std::vector<Layer>>(LayerTraits);
        MetaDataTraits const& text = meta::AtomicTraits<std::wstring>();
        MetaDataTraits const link = meta::AtomicBuilder<int>().LinkGroup(layerGroup).Missing(0).Build();
        rows.Add("Layers", ArrayPrototype(array), {P::Always, L"Layers[Layer]"}, array, &layers);
        rows.Add("Layers.[]", StructPrototype(LayerTraits()), {P::Always, L""}, LayerTraits());
        rows.Add("Layers.[].Name", ValuePrototype<std::wstring>(text, meta::OffsetOf(&Layer::name)),
                 {P::Always, L"Name", true}, text);
        H const below(new zo::ZOWrapperLink<int>(IZO::npos, nullptr, link,
                                                 reinterpret_cast<void*>(meta::OffsetOf(&Layer::below)), {},
                                                 htl::handle<Names>(new Names)));
        rows.Add("Layers.[].Below", below, {P::IfNotDefined, L"Below", true}, link);
        rows.Finish();
    }

    std::vector<Layer> layers{{L"Fill", 2}, {L"Clay", 1}, {L"Rock", 0}};
    std::wstring const saved = L"<Layers Len=\"3\"><Layer><Name>Fill</Name><Below>2</Below></Layer>"
                               L"<Layer><Name>Clay</Name><Below>1</Below></Layer>"
                               L"<Layer><Name>Rock</Name></Layer></Layers>";
};

TEST_F(LinkDocumentTest, ALinkIsSavedAsItsNumber) {
    EXPECT_EQ(Saved(), saved) << "layers that lead to each other, each of them once";
}

TEST_F(LinkDocumentTest, LinksComeBackAsTheyWereSaved) {
    layers = {{L"Peat", 1}};
    ASSERT_TRUE(IsClean(Load(saved)));
    ASSERT_EQ(layers.size(), 3u);
    EXPECT_EQ(layers[0].below, 2);
    EXPECT_EQ(layers[1].below, 1);
    EXPECT_EQ(layers[2].below, 0);
    EXPECT_EQ(layers[1].name, L"Clay");
}

TEST_F(LinkDocumentTest, ALinkIsComparedByItsNumber) {
    EXPECT_TRUE(zo::AreZOsIdenticalUsingPersistance(zo::Find("Layers[0]"), zo::Find("Layers[0]")));
    layers[1] = {L"Fill", 3};
    EXPECT_FALSE(zo::AreZOsIdenticalUsingPersistance(zo::Find("Layers[0]"), zo::Find("Layers[1]")));
    layers[1].below = 2;
    EXPECT_TRUE(zo::AreZOsIdenticalUsingPersistance(zo::Find("Layers[0]"), zo::Find("Layers[1]")));
}

// ---- Documents that go on below a link, which no save makes

TEST_F(LinkDocumentTest, AFieldBelowALinkIsUnknownAndNoRecordChanges) {
    Loaded const loaded = Import(L"<Layers Len=\"3\"><Layer><Below>3<Name>Peat</Name></Below></Layer></Layers>");
    ASSERT_EQ(loaded.unknown.size(), 1u);
    EXPECT_EQ(loaded.unknown[0].first, L"HZNData.Layers[1].Below.Name");
    EXPECT_EQ(loaded.unknown[0].second, L"Peat");
    EXPECT_EQ(layers[0].below, 3);
    EXPECT_EQ(layers[1].name, L"Clay") << "where the link led before";
    EXPECT_EQ(layers[2].name, L"Rock") << "where it leads now";
}

TEST_F(LinkDocumentTest, AFieldBelowALinkIsUnknownInATransaction) {
    auto const transaction = rows.registry->CreateTransaction();
    Loaded const loaded =
        Import(L"<Layers Len=\"3\"><Layer><Below>3<Name>Peat</Name></Below></Layer></Layers>", {}, transaction.get());
    ASSERT_EQ(loaded.unknown.size(), 1u);
    EXPECT_EQ(loaded.unknown[0].first, L"HZNData.Layers[1].Below.Name");
    EXPECT_EQ(TextOf(transaction->Find("Layers[0].Below")), L"3");
    EXPECT_EQ(TextOf(transaction->Find("Layers[1].Name")), L"Clay");
}

TEST_F(LinkDocumentTest, AFieldBelowAnAliasOfALinkIsUnknown) {
    rows.Add("Top", H(new zo::ZOAlias("Layers[0].Below", IZO::npos, nullptr)), {P::Always, L"Top", true}, {});
    rows.Finish();
    Loaded const loaded = Import(L"<Top>3<Name>Peat</Name></Top>");
    ASSERT_EQ(loaded.unknown.size(), 1u);
    EXPECT_EQ(loaded.unknown[0].first, L"HZNData.Top.Name");
    EXPECT_EQ(layers[0].below, 3);
    EXPECT_EQ(layers[1].name, L"Clay");
}

TEST_F(LinkDocumentTest, AFieldOfALinksOwnIsReadEvenIfTheRecordHasOneOfTheTag) {
    std::wstring note, title;
    MetaDataTraits const& text = meta::AtomicTraits<std::wstring>();
    rows.Add("Layers.[].Below.Note", ValuePrototype<std::wstring>(text), {P::Always, L"Note", true}, text, &note);
    rows.Text("Title", L"Title", title);
    rows.Add("Layers.[].Below.Heading", H(new zo::ZOAlias("Title", IZO::npos, nullptr)), {P::Always, L"Name", true},
             text);
    rows.Finish();
    EXPECT_TRUE(IsClean(Import(L"<Layers Len=\"3\"><Layer><Below>2<Note>dry</Note><Name>Dam</Name></Below></Layer>"
                               L"</Layers>")));
    EXPECT_EQ(note, L"dry");
    EXPECT_EQ(title, L"Dam");
    EXPECT_EQ(layers[1].name, L"Clay");
}

} // namespace
