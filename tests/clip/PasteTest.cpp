// What a paste makes of the contents of a clipboard.
#include "tests/clip/Valley.h"

#include "Common/clip/ZOClipImportTransaction.h"

#include <array>
#include <map>

namespace valley {
namespace {

using hzn::gid::PackedContainerGID;
using Names = std::vector<std::wstring>;

using PasteTest = ClipTest;

// ---- Between two projects

TEST_F(PasteTest, ObjectsGetTheNextNumbersOfTheirContainer) {
    auto const contents = Copy({"Materials[2]"});
    other.Use();
    other->materials = {{1, L"Peat", 2, 0}, {2, L"Sand", 0, 0}};
    Paste(materialGroup, contents);
    std::vector<Material> const expected{{1, L"Peat", 2, 0}, {2, L"Sand", 0, 0}, {3, L"Rock", 400, 0}};
    EXPECT_EQ(other->materials, expected);
    EXPECT_EQ(names, Names());
}

TEST_F(PasteTest, ALinkedObjectComesAlongAndTheLinkPointsAtItsNewNumber) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Peat", 2, 0}};
    Paste(regionGroup, contents);
    std::vector<Material> const materials{{1, L"Peat", 2, 0}, {2, L"Rock", 400, 0}};
    EXPECT_EQ(other->materials, materials);
    std::vector<Region> const regions{{1, L"Base", 90, 2, 0}};
    EXPECT_EQ(other->regions, regions);
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Rock");
}

TEST_F(PasteTest, TheSourceProjectStaysAsItIs) {
    auto const contents = Copy({"Regions[0]"});
    other.Use();
    Paste(regionGroup, contents);
    EXPECT_EQ(*project, Ground());
}

TEST_F(PasteTest, ObjectsThatLinkToEachOtherStillDoSo) {
    // Clay is merged first; it waits for fill, which needs clay's number before.
    auto const contents = Copy({"Regions[0]"});
    other.Use();
    Paste(regionGroup, contents);
    std::vector<Material> const materials{{1, L"Clay", 25, 2, {20, 30}}, {2, L"Fill", 5, 1}, {3, L"Rock", 400, 0}};
    EXPECT_EQ(other->materials, materials);
    // The slope's neighbour lies in the pasted container and so is merged before the slope.
    EXPECT_EQ(TextOf("Regions[0].Next"), other->regions[0].name == L"Slope" ? L"2" : L"");
    ASSERT_EQ(other->regions.size(), 2u);
    EXPECT_EQ(TextOf("Regions[0].Name"), L"Base");
    EXPECT_EQ(TextOf("Regions[1].Next.Name"), L"Base");
    EXPECT_EQ(TextOf("Regions[1].Material.Substitute.Name"), L"Fill");
}

TEST_F(PasteTest, AnObjectThatLinksToItselfDoesSoUnderItsNewNumber) {
    project->materials[2].substitute = 3;
    auto const contents = Copy({"Materials[2]"});
    Paste(materialGroup, contents);
    Material const expected{4, L"Rock (2)", 400, 4};
    EXPECT_EQ(project->materials.back(), expected);
}

TEST_F(PasteTest, ALinkedObjectThatIsThereAlreadyIsUsed) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Peat", 2, 0}, {2, L"Rock", 400, 0}};
    Paste(regionGroup, contents);
    EXPECT_EQ(other->materials.size(), 2u);
    EXPECT_EQ(other->regions.at(0).material, 2);
    EXPECT_EQ(names, Names());
}

TEST_F(PasteTest, ALinkedObjectOfTheSameNameThatDiffersIsReplacedAndNamed) {
    project->materials[2].strengths = {410};
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Peat", 2, 0}, {2, L"Rock", 350, 1, {1, 2, 3}}};
    Paste(regionGroup, contents);
    Material const expected{2, L"Rock", 400, 0, {410}};
    EXPECT_EQ(other->materials[1], expected) << "a link and readings that the copied rock doesn't have are gone";
    EXPECT_EQ(names, Names{L"Rock"});
}

TEST_F(PasteTest, WhatTheDocumentLeavesOutIsNotCompared) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    std::vector<Material> const materials{{1, L"Rock", 400, 1, {1, 2, 3}}};
    other->materials = materials;
    Paste(regionGroup, contents);
    EXPECT_EQ(other->materials, materials);
    EXPECT_EQ(names, Names());
}

TEST_F(PasteTest, AnArrayThatGoesOnWhereTheCopiedOneEndsCountsAsTheSameAndIsCut) {
    project->materials[2].strengths = {410};
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Rock", 400, 0, {410, 420}}};
    Paste(regionGroup, contents);
    EXPECT_EQ(other->materials[0].strengths, std::vector<double>{410});
    EXPECT_EQ(names, Names());
}

TEST_F(PasteTest, AnArrayWithoutElementsReplacesOneWithElements) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Rock", 350, 0, {1, 2, 3}}};
    Paste(regionGroup, contents);
    EXPECT_EQ(other->materials[0].strengths, std::vector<double>());
}

TEST_F(PasteTest, NamesAreComparedWithoutRegardToCase) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"ROCK", 350, 0}};
    Paste(regionGroup, contents);
    std::vector<Material> const expected{{1, L"Rock", 400, 0}};
    EXPECT_EQ(other->materials, expected);
    EXPECT_EQ(names, Names{L"Rock"});
}

TEST_F(PasteTest, TheFirstOfSeveralObjectsOfAName) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"", 0, 0}, {2, L"rock", 400, 0}, {3, L"Rock", 400, 0}};
    Paste(regionGroup, contents);
    EXPECT_EQ(other->regions.at(0).material, 2);
    EXPECT_EQ(other->materials.size(), 3u);
}

TEST_F(PasteTest, NamesAreAppended) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Rock", 350, 0}};
    names = {L"Peat"};
    Paste(regionGroup, contents);
    EXPECT_EQ(names, (Names{L"Peat", L"Rock"}));
}

TEST_F(PasteTest, AnObjectWithoutANameNeverMeetsAnother) {
    project->materials[2].name.clear();
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"", 400, 0}};
    Paste(regionGroup, contents);
    EXPECT_EQ(other->materials.size(), 2u);
    EXPECT_EQ(other->regions.at(0).material, 2);
}

TEST_F(PasteTest, LinksInAnArrayAreRewritten) {
    project->regions[1].layers = {3, 0, 2};
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    Paste(regionGroup, contents);
    ASSERT_EQ(other->regions.size(), 1u);
    std::vector<int> const& layers = other->regions[0].layers;
    ASSERT_EQ(layers.size(), 3u);
    EXPECT_EQ(TextOf("Regions[0].Material.Name"), L"Rock");
    EXPECT_EQ(layers[0], other->regions[0].material);
    EXPECT_EQ(layers[1], 0);
    EXPECT_EQ(other->materials.at(static_cast<std::size_t>(layers[2]) - 1).name, L"Clay");
}

TEST_F(PasteTest, ALinkToARecordByItselfStaysAndTheRecordDoes) {
    project->regions[1].settings = 1;
    project->settings.tolerance = 0.5;
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    Paste(regionGroup, contents);
    EXPECT_EQ(other->regions.at(0).settings, 1u);
    EXPECT_EQ(other->settings.tolerance, 0.01) << "the project's own";
}

TEST_F(PasteTest, WhatWasIncludedByItsPathIsNotPasted) {
    project->settings.tolerance = 0.5;
    auto const contents = Copy({"Materials[2]"}, "Settings");
    other.Use();
    Paste(materialGroup, contents);
    EXPECT_EQ(other->materials.size(), 1u);
    EXPECT_EQ(other->settings.tolerance, 0.01);
}

// ---- Within one project

TEST_F(PasteTest, PastingTwiceGivesTwoObjectsOfDifferentNames) {
    auto const contents = Copy({"Regions[1]"});
    Paste(regionGroup, contents);
    Paste(regionGroup, contents);
    std::vector<Region> const expected{
        {1, L"Slope", 60, 2, 2}, {2, L"Base", 90, 3, 0}, {3, L"Base (2)", 90, 3, 0}, {4, L"Base (3)", 90, 3, 0}};
    EXPECT_EQ(project->regions, expected);
    EXPECT_EQ(project->materials, Ground().materials) << "rock is found by its name and is the same";
    EXPECT_EQ(names, Names());
}

TEST_F(PasteTest, ALinkedObjectThatWasChangedInBetweenGetsItsCopiedStateBack) {
    auto const contents = Copy({"Regions[1]"});
    project->materials[2].cohesion = 1;
    Paste(regionGroup, contents);
    EXPECT_EQ(project->materials, Ground().materials);
    EXPECT_EQ(names, Names{L"Rock"});
}

TEST_F(PasteTest, ARemovedObjectComesBackByItsLink) {
    auto const contents = Copy({"Regions[1]"});
    project->materials.pop_back();
    Paste(regionGroup, contents);
    EXPECT_EQ(project->materials, Ground().materials);
    EXPECT_EQ(project->regions.back().material, 3);
}

TEST_F(PasteTest, NamesDifferFromThoseOfTheTargetAndFromEachOtherInMoreThanCase) {
    project->materials = {{1, L"clay", 1, 0}, {2, L"CLAY", 2, 0}};
    auto const contents = Copy({"Materials"});
    other.Use();
    other->materials = {{1, L"Clay", 25, 0}, {2, L"Clay (3)", 0, 0}};
    Paste(materialGroup, contents);
    std::vector<Material> const expected{
        {1, L"Clay", 25, 0}, {2, L"Clay (3)", 0, 0}, {3, L"clay (2)", 1, 0}, {4, L"CLAY (4)", 2, 0}};
    EXPECT_EQ(other->materials, expected);
    EXPECT_EQ(names, Names());
}

// ---- Containers inside records

class NestedTest : public ClipTest {
protected:
    NestedTest() {
        project->profiles = {{1, L"West", 3, {{1, L"W1", 12, 2}, {2, L"W2", 15, 1}}},
                             {2, L"East", 0, {{1, L"E1", 8, 0}}}};
    }
    static GID WellsOf(GID profile) { return PackedContainerGID({profileGroup, profile}, wellGroup); }
};

TEST_F(NestedTest, TheShortFormPastesIntoTheRecordOfTheSameNumber) {
    auto const contents = Copy({"Profiles[0].Wells[0]"});
    Paste(WellsOf(1), contents);
    std::vector<Well> const expected{
        {1, L"W1", 12, 2}, {2, L"W2", 15, 1}, {3, L"W1 (2)", 12, 4}, {4, L"W2 (2)", 15, 3}};
    EXPECT_EQ(project->profiles[0].wells, expected);
    EXPECT_EQ(project->profiles[1].wells.size(), 1u);
}

TEST_F(NestedTest, TheFullFormPastesIntoAnotherRecord) {
    auto contents = Copy({"Profiles[0].Wells[0]"});
    ASSERT_TRUE(Succeeds(zo::clip::Deserialize(wellGroup, {profileGroup, 1}, {profileGroup, 2}, contents, version,
                                               names, "", &reasons)));
    std::vector<Well> const expected{{1, L"E1", 8, 0}, {2, L"W1", 12, 3}, {3, L"W2", 15, 2}};
    EXPECT_EQ(project->profiles[1].wells, expected);
    EXPECT_EQ(project->profiles[0].wells.size(), 2u);
}

TEST_F(NestedTest, WhatIsLinkedToBesideTheContainerComesToTheSameRecord) {
    project->profiles[0].wells = {{1, L"W1", 12, 0, 2}};
    project->profiles[0].probes = {{1, L"P1", 30}, {2, L"P2", 40}};
    project->profiles[1].probes = {{1, L"P9", 50}};
    Profile const west = project->profiles[0];
    auto contents = Copy({"Profiles[0].Wells[0]"});
    EXPECT_EQ(contents.objects,
              std::to_wstring(WellsOf(1)) + L"," + std::to_wstring(PackedContainerGID({profileGroup, 1}, probeGroup)));
    ASSERT_TRUE(Succeeds(zo::clip::Deserialize(wellGroup, {profileGroup, 1}, {profileGroup, 2}, contents, version,
                                               names, "", &reasons)));
    std::vector<Well> const wells{{1, L"E1", 8, 0}, {2, L"W1", 12, 0, 2}};
    std::vector<Probe> const probes{{1, L"P9", 50}, {2, L"P2", 40}};
    EXPECT_EQ(project->profiles[1].wells, wells);
    EXPECT_EQ(project->profiles[1].probes, probes);
    EXPECT_EQ(project->profiles[0], west);

    Paste(WellsOf(1), contents);
    EXPECT_EQ(project->profiles[0].probes, west.probes) << "found by its name";
    EXPECT_EQ(project->profiles[0].wells.back(), (Well{2, L"W1 (2)", 12, 0, 2}));
    EXPECT_EQ(names, Names());
}

TEST_F(NestedTest, ATransactionThatIsNotLockedPastesTheSame) {
    project->profiles[0].probes = {{1, L"P1", 30}};
    project->profiles[0].wells[1].probe = 1;
    project->regions[0].layers = {3, 0, 1};
    auto const contents = Copy({"Regions", "Profiles"});
    Project third;
    Model const start{{{1, L"rock", 1, 0, {7}}}, {{1, L"Base", 5, 1}}, {{1, L"West", 1}}, {}};
    *other = start;
    *third = start;
    for (GID const id : {regionGroup, profileGroup}) {
        other.Use();
        Paste(id, contents);
        third.Use();
        htl::handle<zo::ZOSet> const base(third.registry.get());
        htl::handle<zo::ZOTransaction> const plain(
            new zo::ZOTransaction(htl::handle<zo::ZOSet>(new zo::ZOEmptyTransaction(base, false)), base, false));
        std::vector<std::wstring> replaced;
        ASSERT_TRUE(Succeeds(zo::clip::DeserializeToTransaction(plain, contents.document, version)));
        ASSERT_TRUE(Succeeds(zo::clip::DeserializeFromTransaction(id, {}, {}, plain, replaced, "")));
        EXPECT_EQ(replaced, id == regionGroup ? Names{L"Rock"} : Names());
    }
    EXPECT_EQ(names, Names{L"Rock"});
    EXPECT_EQ(other->regions.size(), 3u);
    EXPECT_EQ(other->profiles.size(), 3u);
    EXPECT_EQ(*third, *other);
}

TEST_F(NestedTest, RecordsInsideARecordGoAlongAndKeepTheirNumbers) {
    auto const contents = Copy({"Profiles[0]"});
    other.Use();
    Paste(profileGroup, contents);
    std::vector<Profile> const expected{{1, L"West", 1, {{1, L"W1", 12, 2}, {2, L"W2", 15, 1}}}};
    EXPECT_EQ(other->profiles, expected);
    EXPECT_EQ(TextOf("Profiles[0].Material.Name"), L"Rock");
}

TEST_F(NestedTest, ARecordOfWhichOnlyTheInsideWasCopiedIsNotPasted) {
    auto const contents = Copy({"Profiles[0].Wells[0]"});
    other.Use();
    Paste(profileGroup, contents);
    EXPECT_EQ(*other, Model());
}

TEST_F(NestedTest, ATargetRecordThatIsNotThereIsRefused) {
    auto contents = Copy({"Profiles[0].Wells[0]"});
    other.Use();
    std::wstring const saved = Save();
    EXPECT_TRUE(FailsAs(zo::clip::Deserialize(WellsOf(1), contents, version, names, "", &reasons), Failure(26502)));
    EXPECT_EQ(Save(), saved);
}

// ---- What a document may leave out

using PartialTest = ClipTest;

TEST_F(PartialTest, AContainerThatTheDocumentDoesNotHoldIsSuccessAndChangesNothing) {
    auto const contents = Copy({"Materials[2]"});
    std::wstring const saved = Save();
    Paste(regionGroup, contents);
    Paste(11, contents);
    Paste(0, contents);
    EXPECT_EQ(Save(), saved);
}

TEST_F(PartialTest, ALinkToWhatTheDocumentDoesNotHoldBecomesALinkToNothing) {
    auto const contents =
        Contents(L"<Regions Len=\"1\"><Region ID=\"1\" Name=\"Toe\" Area=\"7\" Material=\"2\" Next=\"5\""
                 L"/></Regions>");
    Paste(regionGroup, contents);
    Region const expected{3, L"Toe", 7, 0, 0};
    EXPECT_EQ(project->regions.back(), expected) << "the project's own second material is not what was meant";
}

TEST_F(PartialTest, ALinkToAnEmptyElementBecomesALinkToNothing) {
    auto const contents = Contents(L"<Materials Len=\"2\"><Material/><Material/></Materials><Regions Len=\"1\">"
                                   L"<Region ID=\"1\" Name=\"Toe\" Area=\"7\" Material=\"2\"/></Regions>");
    Paste(regionGroup, contents);
    EXPECT_EQ(project->regions.back().material, 0);
    EXPECT_EQ(project->materials, Ground().materials);
}

TEST_F(PartialTest, ObjectsWithoutANumberAreNotPasted) {
    auto const contents = Contents(L"<Materials Len=\"3\"><Material><Name>Peat</Name></Material>"
                                   L"<Material><ID>0</ID><Name>Sand</Name></Material>"
                                   L"<Material><ID>3</ID><Name>Silt</Name></Material></Materials>");
    Paste(materialGroup, contents);
    ASSERT_EQ(project->materials.size(), 4u);
    EXPECT_EQ(project->materials[3].name, L"Silt");
}

TEST_F(PartialTest, OfTwoObjectsWithOneNumberTheFirstIsPasted) {
    auto const contents = Contents(L"<Materials Len=\"2\"><Material><ID>1</ID><Name>Peat</Name></Material>"
                                   L"<Material><ID>1</ID><Name>Sand</Name></Material></Materials>");
    Paste(materialGroup, contents);
    ASSERT_EQ(project->materials.size(), 4u);
    EXPECT_EQ(project->materials[3].name, L"Peat");
}

TEST_F(PartialTest, TheSecondObjectOfANumberThatIsLinkedToReplacesNothing) {
    auto const contents =
        Contents(L"<Materials Len=\"2\"><Material><ID>1</ID><Name>Peat</Name><Substitute>2</Substitute></Material>"
                 L"<Material><ID>1</ID><Name>Clay</Name><Cohesion>9</Cohesion></Material></Materials>");
    Paste(materialGroup, contents);
    ASSERT_EQ(project->materials.size(), 5u);
    Material const clay{4, L"Clay (2)", 9, 0}, peat{5, L"Peat", 0, 4};
    EXPECT_EQ(project->materials[1], Ground().materials[1]) << "the project's own clay";
    EXPECT_EQ(project->materials[3], clay);
    EXPECT_EQ(project->materials[4], peat);
    EXPECT_EQ(names, Names());
}

TEST_F(PartialTest, ObjectsWithoutANameArePasted) {
    auto const contents = Contents(L"<Materials Len=\"2\"><Material><ID>1</ID><Cohesion>3</Cohesion></Material>"
                                   L"<Material><ID>2</ID><Name Missing=\"true\"/><Cohesion>4</Cohesion></Material>"
                                   L"</Materials>");
    Paste(materialGroup, contents);
    ASSERT_EQ(project->materials.size(), 5u);
    Material const third{4, L"", 3, 0}, fourth{5, L"", 4, 0};
    EXPECT_EQ(project->materials[3], third);
    EXPECT_EQ(project->materials[4], fourth);
}

TEST_F(PartialTest, ANumberThatIsNotThatOfThePlaceIsAsGood) {
    auto const contents =
        Contents(L"<Materials Len=\"1\"><Material><ID>77</ID><Name>Peat</Name></Material></Materials>");
    Paste(materialGroup, contents);
    ASSERT_EQ(project->materials.size(), 4u);
    EXPECT_EQ(project->materials[3].id, 4);
}

TEST_F(PartialTest, APresentObjectWithAWrongNumberIsReplacedInItsPlace) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{2, L"Rock", 1, 0}, {9, L"Peat", 2, 0}};
    Paste(regionGroup, contents);
    std::vector<Material> const expected{{1, L"Rock", 400, 0}, {9, L"Peat", 2, 0}};
    EXPECT_EQ(other->materials, expected);
    EXPECT_EQ(other->regions.at(0).material, 1) << "links go by places";
}

TEST_F(PartialTest, ALengthWithoutElementsIsNoHarm) {
    auto const contents =
        Contents(L"<Materials Len=\"5\"><Material><ID>1</ID><Name>Peat</Name></Material></Materials>");
    Paste(materialGroup, contents);
    EXPECT_EQ(project->materials.size(), 4u);
}

// ---- Failures inside the merge

class FailureTest : public ClipTest {
protected:
    htl::status PasteAll(GID id, ClipboardContents contents) {
        return zo::clip::Deserialize(id, contents, version, names, "", &reasons);
    }
};

TEST_F(FailureTest, TheFirstFailureIsReturnedAndTheOtherObjectsAreMerged) {
    auto const contents =
        Contents(L"<Materials Len=\"3\">"
                 L"<Material><ID>1</ID><Name>Peat</Name><Cohesion>-1</Cohesion></Material>"
                 L"<Material><ID>2</ID><Name>Sand</Name><Cohesion>2000</Cohesion></Material>"
                 L"<Material><ID>3</ID><Name>Silt</Name><Cohesion>8</Cohesion></Material></Materials>");
    htl::status const low = zo::Find("Materials[0].Cohesion")->Set(-1.0);
    htl::status const high = zo::Find("Materials[0].Cohesion")->Set(2000.0);
    ASSERT_TRUE(low.IsError() && high.IsError());
    EXPECT_TRUE(FailsAs(PasteAll(materialGroup, contents), low));
    EXPECT_EQ(Texts(reasons), Texts({low, high}));
    ASSERT_EQ(project->materials.size(), 6u);
    Material const peat{4, L"Peat", 0, 0}, silt{6, L"Silt", 8, 0};
    EXPECT_EQ(project->materials[3], peat) << "but for the value that was refused";
    EXPECT_EQ(project->materials[5], silt);
}

TEST_F(FailureTest, AnObjectWithoutAFieldForItsNumberFailsAndIsMergedAllTheSame) {
    auto const contents =
        Contents(L"<Materials Len=\"1\"><Material><Name>Rock</Name><Cohesion>9</Cohesion></Material>"
                 L"</Materials><Regions Len=\"1\"><Region ID=\"1\" Name=\"Toe\" Material=\"1\"/></Regions>");
    EXPECT_TRUE(FailsAs(PasteAll(regionGroup, contents), HznError::internal("", "zo::SetObjectIDByTag", 0)));
    EXPECT_EQ(project->regions.back().name, L"Toe");
    EXPECT_EQ(project->regions.back().material, 3);
    EXPECT_EQ(project->materials[2].cohesion, 9);
}

TEST_F(FailureTest, AContainerThatCannotGrowIsLeftAloneAndLinksToItsObjectsLeadNowhere) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Peat", 2, 0}};
    zo::H const held = zo::Find("Materials[0].Cohesion");
    EXPECT_TRUE(FailsAs(PasteAll(regionGroup, contents), zo::ZOError::array_memory_conflict()));
    EXPECT_EQ(other->materials.size(), 1u);
    std::vector<Region> const expected{{1, L"Base", 90, 0, 0}};
    EXPECT_EQ(other->regions, expected);
    EXPECT_EQ(TextOf(held), L"2") << "the view is as good as before";
}

TEST_F(FailureTest, AViewInsideAnObjectThatIsReplacedStaysGood) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Rock", 350, 0, {1, 2, 3}}};
    zo::H const held = zo::Find("Materials[0].Strengths[2]");
    ASSERT_EQ(TextOf(held), L"3");
    EXPECT_TRUE(FailsAs(PasteAll(regionGroup, contents), zo::ZOError::array_memory_conflict()));
    EXPECT_EQ(Texts(reasons), Texts({zo::ZOError::array_memory_conflict()}));
    EXPECT_EQ(other->materials.at(0).cohesion, 400);
    EXPECT_EQ(other->materials[0].strengths.size(), 3u) << "a held view keeps them";
    EXPECT_TRUE(Succeeds(held->Set(4.0)));
    EXPECT_EQ(other->materials[0].strengths[2], 4);
}

TEST_F(FailureTest, AnAliasThatHoldsAnElementOfAReplacedObjectIsNoHindrance) {
    auto const contents = Copy({"Regions[1]"});
    other.Use();
    other->materials = {{1, L"Rock", 350, 0, {1, 2, 3}}};
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Alias("Cover", L"Cover", "Materials[0].Strengths[1]", {.kept = true});
                }}).IsClean());
    ASSERT_EQ(TextOf("Cover"), L"2");
    Paste(regionGroup, contents);
    EXPECT_EQ(other->materials.at(0).strengths, std::vector<double>());
}

TEST_F(FailureTest, AnAliasThatHoldsAnElementIsNoHindrance) {
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Alias("Cover", L"Cover", "Materials[0]", {.kept = true});
                }}).IsClean());
    ASSERT_EQ(TextOf("Cover.Name"), L"Fill");
    Paste(materialGroup, Copy({"Materials[2]"}));
    EXPECT_EQ(project->materials.size(), 4u);
    EXPECT_EQ(TextOf("Cover.Name"), L"Fill");
}

TEST_F(FailureTest, AnObjectThatMayNotHaveANameOfItsOwnIsNotPasted) {
    struct Pile {
        int id = 0;
        std::wstring name;
        double length = 0; // m
    };
    static std::vector<Pile> piles;
    piles = {{1, L"P1", 9}, {2, L"P2", 8}};
    htl::status const refusal = htl::status::FromText(L"The names of piles have no brackets.");
    ASSERT_TRUE(zo::kit::Register({[&refusal](zo::kit::Kit& kit) {
                    kit.Record<Pile>("Pile")
                        .Field<&Pile::id>("ID", L"ID")
                        .Field<&Pile::name>("Name", L"Name",
                                            {.valid =
                                                 [refusal](std::wstring const& name, zo::IZO const*) {
                                                     return name.find(L'(') == name.npos ? htl::status() : refusal;
                                                 }})
                        .Field<&Pile::length>("Length", L"Length");
                    kit.Branch<std::vector<Pile>>("Piles", L"Piles[Pile]", [] { return &piles; }, {.recordGroup = 41});
                }}).IsClean());
    auto const contents = Copy({"Piles"});
    piles = {{1, L"P1", 7}};
    EXPECT_TRUE(FailsAs(PasteAll(41, contents), refusal));
    ASSERT_EQ(piles.size(), 2u);
    EXPECT_EQ(piles[0].length, 7) << "it is not replaced by the one of its name";
    EXPECT_EQ(piles[1].name, L"P2");
    EXPECT_EQ(piles[1].id, 2);
    EXPECT_EQ(names, Names());
}

TEST_F(FailureTest, ObjectsOfAContainerOfFixedLengthAreNotPasted) {
    struct Corner {
        int id = 0;
        std::wstring name;
    };
    static std::array<Corner, 2> corners;
    corners = {Corner{1, L"A"}, Corner{2, L"B"}};
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Record<Corner>("Corner").Field<&Corner::id>("ID", L"ID").Field<&Corner::name>("Name", L"Name");
                    kit.Branch<std::array<Corner, 2>>("Corners", L"Corners[Corner]", [] { return &corners; },
                                                      {.recordGroup = 42});
                }}).IsClean());
    auto const contents = Copy({"Corners"});
    std::wstring const saved = Save();
    EXPECT_TRUE(FailsAs(PasteAll(42, contents), zo::ZOError::not_supported("")));
    EXPECT_EQ(reasons.size(), 2u);
    EXPECT_EQ(Save(), saved);
}

TEST_F(FailureTest, ObjectsOfAContainerThatSortsThemFindTheirPlaces) {
    struct Works {
        std::map<int, std::wstring> stages;
    };
    static Works works;
    auto& stages = works.stages;
    stages = {{1, L"Dig"}, {2, L"Fill"}};
    ASSERT_TRUE(zo::kit::Register({[](zo::kit::Kit& kit) {
                    kit.Record<Works>("Works").Map<&Works::stages>(
                        "Stages", L"Stages[Stage]", {.keyTag = L"ID", .valueTag = L"Name", .recordGroup = 43});
                    kit.Branch<Works>("Works", L"Works", [] { return &works; });
                }}).IsClean());
    auto const contents = Copy({"Works.Stages"});
    stages = {{1, L"Survey"}};
    Paste(43, contents);
    std::map<int, std::wstring> const expected{{1, L"Survey"}, {2, L"Dig"}, {3, L"Fill"}};
    EXPECT_EQ(stages, expected);
}

TEST_F(FailureTest, PasteWithoutAListOfReasons) {
    auto contents = Copy({"Materials[2]"});
    EXPECT_TRUE(Succeeds(zo::clip::Deserialize(materialGroup, contents, version, names, "")));
    contents.document.clear();
    EXPECT_TRUE(FailsAs(zo::clip::Deserialize(materialGroup, contents, version, names, ""), Failure(26502)));
}

TEST_F(FailureTest, ReasonsAreEmptiedFirst) {
    reasons = {Failure(26502)};
    EXPECT_TRUE(Succeeds(PasteAll(materialGroup, Copy({"Materials[2]"}))));
    EXPECT_EQ(Texts(reasons), std::vector<std::wstring>());
}

// ---- In two steps

class StepTest : public ClipTest {
protected:
    htl::handle<zo::ZOTransaction> transaction = zo::clip::MakeClipImportTransaction();
};

TEST_F(StepTest, TheTransactionStartsEmptyAndSeesNothingOfTheRegistry) {
    EXPECT_EQ(TextOf(transaction->Find("Settings.Tolerance")), L"0.01") << "the default";
    project->settings.tolerance = 0.5;
    EXPECT_EQ(TextOf(transaction->Find("Settings.Tolerance")), L"0.01");
    EXPECT_EQ(transaction->Find("Materials")->Length(), 0u);
    EXPECT_FALSE(transaction->Find("Materials[0]"));
    EXPECT_EQ(transaction->Base(), project.registry.get());
}

TEST_F(StepTest, TheFirstStepLeavesTheRegistryAsItIs) {
    std::wstring const saved = Save();
    auto const contents = Copy({"Regions[0]"});
    EXPECT_TRUE(Succeeds(zo::clip::DeserializeToTransaction(transaction, contents.document, version, &reasons)));
    EXPECT_EQ(TextOf(transaction->Find("Regions[0].Name")), L"Slope");
    EXPECT_EQ(Save(), saved);
}

TEST_F(StepTest, TheSecondStepLocksTheTransaction) {
    auto const contents = Copy({"Materials[2]"});
    ASSERT_TRUE(Succeeds(zo::clip::DeserializeToTransaction(transaction, contents.document, version)));
    auto const& lockable = dynamic_cast<zo::clip::impl::ZOTransactionLockable const&>(*transaction);
    EXPECT_FALSE(lockable.locked);
    ASSERT_TRUE(
        Succeeds(zo::clip::DeserializeFromTransaction(materialGroup, {}, {}, transaction, names, "", &reasons)));
    EXPECT_TRUE(lockable.locked);
    EXPECT_EQ(TextOf(transaction->Find("Materials[2].Name")), L"Rock (2)");
    EXPECT_FALSE(transaction->Find("Settings"));
    EXPECT_FALSE(transaction->Find("Materials[2].Substitute")) << "the document doesn't hold it";
    EXPECT_EQ(project->materials.size(), 4u);
}

TEST_F(StepTest, WhatWasReadCanBeChangedBeforeItIsMerged) {
    auto const contents = Copy({"Materials[2]"});
    ASSERT_TRUE(Succeeds(zo::clip::DeserializeToTransaction(transaction, contents.document, version)));
    ASSERT_TRUE(Succeeds(transaction->Find("Materials[2].Name")->Set(L"Granite")));
    ASSERT_TRUE(Succeeds(zo::clip::DeserializeFromTransaction(materialGroup, {}, {}, transaction, names, "")));
    EXPECT_EQ(project->materials.at(3).name, L"Granite");
}

TEST_F(StepTest, AnOrdinaryTransactionCanBeMergedToo) {
    auto const plain = htl::handle<zo::ZOTransaction>(new zo::ZOTransaction(
        htl::handle<zo::ZOSet>(new zo::ZOEmptyTransaction(htl::handle<zo::ZOSet>(project.registry.get()), false)),
        htl::handle<zo::ZOSet>(project.registry.get()), false));
    auto const contents = Copy({"Regions[1]"});
    ASSERT_TRUE(Succeeds(zo::clip::DeserializeToTransaction(plain, contents.document, version, &reasons)));
    ASSERT_TRUE(Succeeds(zo::clip::DeserializeFromTransaction(regionGroup, {}, {}, plain, names, "", &reasons)));
    Region const expected{3, L"Base (2)", 90, 3, 0};
    EXPECT_EQ(project->regions.back(), expected);
}

TEST_F(StepTest, WithoutATransactionBothStepsAreRefused) {
    std::wstring const saved = Save();
    auto const contents = Copy({"Materials[2]"});
    EXPECT_TRUE(FailsAs(zo::clip::DeserializeToTransaction({}, contents.document, version), Failure(26502)));
    EXPECT_TRUE(FailsAs(zo::clip::DeserializeFromTransaction(materialGroup, {}, {}, {}, names, ""), Failure(26502)));
    EXPECT_EQ(Save(), saved);
}

} // namespace
} // namespace valley
