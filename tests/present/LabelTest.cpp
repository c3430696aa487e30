// Labels, as they stand and as they are composed.
#include "tests/present/Levee.h"

#include <kit/kit.h>

#include "support/describe.h"

namespace levee {
namespace {

using zo::Find;
using zo::Label;
using zo::LabelWithAccel;

class LabelTest : public LeveeTest {};

TEST_F(LabelTest, ALabelIsThatOfTheTable) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[].Cohesion", {{L"Label", L"Cohesion c'"}})));
    EXPECT_EQ(Label(Find("Soils[0].Cohesion")), L"Cohesion c'");
    EXPECT_EQ(Label(Find("Soils[2].Cohesion")), L"Cohesion c'") << "all elements share an entry";
}

TEST_F(LabelTest, ANodeWithoutAnEntryHasTheDefaultLabel) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(Label(Find("Project.Title")), L"?");
    EXPECT_EQ(LabelWithAccel(Find("Project.Title")), L"?");
}

TEST_F(LabelTest, AnEmptyHandleHasTheDefaultLabel) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(Label(H()), L"?");
    EXPECT_EQ(LabelWithAccel(H()), L"?");
}

TEST_F(LabelTest, WithoutATableLabelsAreEmpty) {
    EXPECT_EQ(Label(Find("Project.Title")), L"");
    EXPECT_EQ(LabelWithAccel(Find("Project.Title")), L"");
}

TEST_F(LabelTest, LabelsAreFoundByName) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Project.Title", {{L"Label", L"&Title"}})));
    EXPECT_EQ(Label("Project.Title"), L"Title");
    EXPECT_EQ(LabelWithAccel("Project.Title"), L"&Title");
}

TEST_F(LabelTest, ANameThatLeadsNowhereHasNoLabelNotEvenTheDefault) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(Label("Project.Author"), L"");
    EXPECT_EQ(LabelWithAccel("Project.Author"), L"");
    EXPECT_EQ(Label(""), L"");
}

// ---- Accelerator marks

TEST_F(LabelTest, TheMarkStaysOnlyInTheLabelWithAccelerator) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Project.Title", {{L"Label", L"Project &title"}})));
    EXPECT_EQ(LabelWithAccel(Find("Project.Title")), L"Project &title");
    EXPECT_EQ(Label(Find("Project.Title")), L"Project title");
}

TEST_F(LabelTest, EveryMarkIsRemovedAndADoubledOneIsNoException) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Project.Title", {{L"Label", L"&R&&D &"}})));
    EXPECT_EQ(Label(Find("Project.Title")), L"RD ");
}

TEST_F(LabelTest, MarksInValuesAreRemovedToo) {
    levee.model.soils[0].name = L"Clay & silt";
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"&Soil"}, {L"LabelTag", L"!Label Name"}})));
    EXPECT_EQ(LabelWithAccel(Find("Soils[0]")), L"&Soil Clay & silt");
    EXPECT_EQ(Label(Find("Soils[0]")), L"Soil Clay  silt");
}

// ---- Composed labels

TEST_F(LabelTest, WordsAreReplacedByTheLabelAndByValuesAndJoinedWithABlank) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label Name"}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"Soil Clay");
    EXPECT_EQ(Label(Find("Soils[2]")), L"Soil Peat");
}

TEST_F(LabelTest, AComposedLabelNeedNotHoldTheLabel) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"Name"}})));
    EXPECT_EQ(Label(Find("Soils[1]")), L"Sand");
}

TEST_F(LabelTest, AComposedLabelFollowsTheModel) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label Name"}})));
    ASSERT_EQ(Label(Find("Soils[1]")), L"Soil Sand");
    levee.model.soils[1].name = L"Gravel";
    EXPECT_EQ(Label(Find("Soils[1]")), L"Soil Gravel");
}

TEST_F(LabelTest, BlanksBetweenWordsAreNoWords) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"  !Label   Name "}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"Soil Clay");
}

TEST_F(LabelTest, AnEmptyValueKeepsItsPlace) {
    levee.model.soils[0].name.clear();
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"Name !Label Name"}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L" Soil ");
}

TEST_F(LabelTest, ARuleOfBlanksGivesAnEmptyLabel) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"  "}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"");
}

TEST_F(LabelTest, AWordThatLeadsNowhereGivesThePlainLabelWithItsMarks) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"&Soil"}, {L"LabelTag", L"Name !Label Author"}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"&Soil");
    EXPECT_EQ(LabelWithAccel(Find("Soils[0]")), L"&Soil");
}

TEST_F(LabelTest, AnUnknownCommandIsAWordThatLeadsNowhere) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!label Name"}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"Soil");
}

TEST_F(LabelTest, AWordMayBeAPathOfSeveralTags) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Regions.[]", {{L"Label", L"Region"}, {L"LabelTag", L"!Label Soil.Cohesion"}})
                             .Entry(L"Profiles.[]", {{L"LabelTag", L"Points[2].Name"}})));
    EXPECT_EQ(Label(Find("Regions[0]")), L"Region 25");
    EXPECT_EQ(Label(Find("Profiles[1]")), L"P4") << "tags count from 1";
}

TEST_F(LabelTest, AWordMayClimb) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Profiles.[].Points.[]", {{L"LabelTag", L"@Parent.@Parent.Name Name"}})));
    EXPECT_EQ(Label(Find("Profiles[1].Points[0]")), L"East P3");
}

TEST_F(LabelTest, AWordPrintsItsNodeAsTheTableSays) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Regions.[]", {{L"LabelTag", L"Soil"}})
                             .Entry(L"Regions.[].Soil", {{L"PrettyPrintValueTag", L"Name"}})));
    EXPECT_EQ(Label(Find("Regions[1]")), L"Sand");
}

TEST_F(LabelTest, ALabelMayBeComposedAsAPatternSays) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}})
                             .Entry(L"Regions.[]", {{L"Label", L"Region"}})
                             .Entry(L"*s.[]", {{L"LabelTag", L"!Label Name"}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"Soil Clay");
    EXPECT_EQ(Label(Find("Regions[0]")), L"Region Core");
}

TEST_F(LabelTest, TagsThatLeadToEachOtherEnd) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label Substitute"}})
                             .Entry(L"Soils.[].Substitute", {{L"PrettyPrintValueTag", L"Substitute"}})));
    EXPECT_EQ(Label(Find("Soils[0]")), L"Soil ");
}

// ---- Redirects

TEST_F(LabelTest, AnAliasHasTheLabelOfItsSource) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label Name"}})));
    EXPECT_EQ(Label(Find("Cover")), L"Soil Clay");
    EXPECT_EQ(Label(Find("Top")), L"Soil Clay");
}

TEST_F(LabelTest, AnAliasWithALabelIsComposedAsItsSourceIs) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Cover", {{L"Label", L"Cover"}, {L"IsDynamic", L"1"}})
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label Name"}})));
    EXPECT_EQ(Label(Find("Cover")), L"Cover Clay");
}

TEST_F(LabelTest, AnAliasWithARuleComposesTheLabelOfItsSource) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Cover", {{L"LabelTag", L"!Label Color"}, {L"IsDynamic", L"1"}})
                             .Entry(L"Soils.[]", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label Name"}})));
    EXPECT_EQ(Label(Find("Cover")), L"Soil 255");
}

// ---- Data parameters

/// What the application calls its parameters.
htl::status ParameterName(void const* value, std::wstring& text, int format, zo::IZO const*) {
    if (*static_cast<DataParamType const*>(value) == DataParamType::Cohesion)
        text = format == 2 ? L"Cohesion" : format == 1 ? L"c'" : L"7";
    else
        text = format == 2 ? L"No parameter" : format == 1 ? L"-" : L"0";
    return htl::status::Success;
}

void RegisterParameterNames() {
    meta::MetaTraitsAtomic record = *meta::AtomicTraits<DataParamType>().AsAtomic();
    record.toWide = &ParameterName;
    meta::MetaDataTraits const traits(std::make_shared<meta::MetaTraitsAtomic const>(std::move(record)));
    H const node = zo::kit::prototype::Value<DataParamType>(traits);
    zo::ZORegistry::Instance()->RegisterZO(htl::handle<zo::ODS>(new zo::ODS("Parameter", true, true, nullptr)), node,
                                           {meta::MetaPersistTraits::No, L"Parameter"}, traits);
    zo::ZOTypeTemplate::Register(typeid(DataParamType), node);
}

TEST_F(LabelTest, TheDataParameterIsNamedInFullAndShort) {
    RegisterParameterNames();
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Soils.[].Cohesion", {{L"Label", L"Soil"},
                                                           {L"LabelTag", L"!Label !PrettyPrintDataParam "
                                                                         L"!AbbrevDataParam"}})
                             .Entry(L"Soils.[].Name", {{L"LabelTag", L"!AbbrevDataParam"}})));
    EXPECT_EQ(Label(Find("Soils[0].Cohesion")), L"Soil Cohesion c'");
    EXPECT_EQ(Label(Find("Soils[0].Name")), L"-") << "a node without one is of the parameter 0";
}

TEST_F(LabelTest, WithoutNamesOfDataParametersTheirPlaceIsEmpty) {
    ASSERT_TRUE(Compiles(Table().Entry(
        L"Soils.[].Cohesion", {{L"Label", L"Soil"}, {L"LabelTag", L"!Label !PrettyPrintDataParam !AbbrevDataParam"}})));
    EXPECT_EQ(Label(Find("Soils[0].Cohesion")), L"Soil  ");
}

} // namespace
} // namespace levee
