// The fields of the table that are read as they stand: description, category, editor and style.
#include "tests/present/Levee.h"

#include "Common/redirect/Stores.h"
#include "tests/registry/Rows.h"

namespace levee {
namespace {

using zo::Category;
using zo::CustomView;
using zo::Description;
using zo::Find;
using zo::IsDescription;
using zo::Style;

class StyleTest : public LeveeTest {
protected:
    /// The list of the values that a node takes, as a module adds it.
    static void AddValidList(std::string const& name) {
        zo::ZORegistry::Instance()->RegisterZO(htl::handle<zo::ODS>(new zo::ODS(name, true, true, nullptr)),
                                               H(new rows::Plain), {meta::MetaPersistTraits::No, L""},
                                               rows::StructureTraits());
    }
};

TEST_F(StyleTest, DescriptionAndCategoryAreThoseOfTheTable) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[].Cohesion",
                                       {{L"Description", L"Effective cohesion & more"}, {L"Category", L"Strength"}})));
    EXPECT_EQ(Description(Find("Soils[0].Cohesion")), L"Effective cohesion & more");
    EXPECT_EQ(Category(Find("Soils[0].Cohesion")), L"Strength");
}

TEST_F(StyleTest, FieldsThatAnEntryLacksComeFromLessSpecificOnes) {
    ASSERT_TRUE(Compiles(TableText()
                             .Entry(L"Default", {{L"Category", L"General"}, {L"CustomView", L"text"}})
                             .Entry(L"Soils.[].*", {{L"Category", L"Ground"}})
                             .Entry(L"Soils.[].Cohesion", {{L"Description", L"Effective cohesion"}})));
    EXPECT_EQ(Category(Find("Soils[0].Cohesion")), L"Ground");
    EXPECT_EQ(CustomView(Find("Soils[0].Cohesion")), L"text");
    EXPECT_EQ(Description(Find("Soils[0].Name")), L"");
    EXPECT_EQ(Category(Find("Project")), L"General");
}

TEST_F(StyleTest, AnEmptyHandleHasTheFieldsOfTheDefaultEntry) {
    ASSERT_TRUE(Compiles(TableText().Entry(
        L"Default",
        {{L"Description", L"A value"}, {L"Category", L"General"}, {L"CustomView", L"text"}, {L"Style", L"header"}})));
    EXPECT_EQ(Description(H()), L"A value");
    EXPECT_EQ(Category(H()), L"General");
    EXPECT_EQ(CustomView(H()), L"text");
    EXPECT_EQ(Style(H()), zo::style::header);
}

TEST_F(StyleTest, AnAliasHasTheFieldsOfItsSource) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[]", {{L"Description", L"A soil"}, {L"Style", L"table"}})));
    EXPECT_EQ(Description(Find("Top")), L"A soil");
    EXPECT_EQ(Style(Find("Top")), zo::style::table);
}

TEST_F(StyleTest, AStyleIsThatOfTheTableAndElseText) {
    ASSERT_TRUE(Compiles(Table()
                             .Entry(L"Project", {{L"Style", L"header"}})
                             .Entry(L"Soils", {{L"Style", L"table"}})
                             .Entry(L"Regions", {{L"Style", L"text"}})));
    EXPECT_EQ(Style(Find("Project")), zo::style::header);
    EXPECT_EQ(Style(Find("Soils")), zo::style::table);
    EXPECT_EQ(Style(Find("Regions")), zo::style::text);
    EXPECT_EQ(Style(Find("Profiles")), zo::style::text);
}

// ---- The editor

TEST_F(StyleTest, TheEditorIsThatOfTheTable) {
    ASSERT_TRUE(Compiles(Table().Entry(L"Soils.[].Color", {{L"CustomView", L"colorPicker"}})));
    EXPECT_EQ(CustomView(Find("Soils[0].Color")), L"colorPicker");
}

TEST_F(StyleTest, ANodeWithAListOfValidValuesHasTheEditorOfEnumerations) {
    AddValidList("Project.Drainage.:Valid");
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(CustomView(Find("Project.Drainage")), L"zoEnumTemplate");
    EXPECT_EQ(CustomView(Find("Project.Title")), L"");
}

TEST_F(StyleTest, TheTableCountsMoreThanAListOfValidValues) {
    AddValidList("Project.Drainage.:Valid");
    ASSERT_TRUE(Compiles(Table().Entry(L"Project.Drainage", {{L"CustomView", L"radio"}})));
    EXPECT_EQ(CustomView(Find("Project.Drainage")), L"radio");
}

TEST_F(StyleTest, AnEmptyHandleHasNoListOfValidValues) {
    ASSERT_TRUE(Compiles(Table()));
    EXPECT_EQ(CustomView(H()), L"");
}

// ---- What a node is called

TEST_F(StyleTest, ADescriptionIsANodeOfThatName) {
    EXPECT_TRUE(IsDescription(Find("Project.Description")));
    EXPECT_FALSE(IsDescription(Find("Project.Title")));
    EXPECT_FALSE(IsDescription(H()));
}

} // namespace
} // namespace levee
