// Names of registered nodes: their normal form, and the way from a name to its template.
#include "tests/registry/Rows.h"

namespace {

using rows::H;
using rows::IZO;
using rows::RowOf;

class TemplateTest : public embankment::EmbankmentTest {};

TEST_F(TemplateTest, IndicesLeadToTheTemplateOfTheElements) {
    IZO* const cohesion = zo::GetTemplate("Soils.[].Cohesion");
    ASSERT_NE(cohesion, nullptr);
    EXPECT_EQ(zo::RegNormalizedName(cohesion->RegID()), "Soils.[].Cohesion");
    for (char const* const name : {"Soils[5].Cohesion", "Soils.[5].Cohesion", "Soils.5.Cohesion",
                                   "Soils.At(7).Cohesion", "Soils.At(any text).Cohesion"})
        EXPECT_EQ(zo::GetTemplate(name), cohesion) << name;
}

TEST_F(TemplateTest, AMalformedNameHasNoTemplate) {
    for (char const* const name : {"Soils[].Cohesion", "Soils[1", "[", "Soils.[1.Cohesion"})
        EXPECT_EQ(zo::GetTemplate(name), nullptr) << name;
}

TEST_F(TemplateTest, UnknownNamesHaveNoTemplate) {
    for (char const* const name : {"", ".", "Nobody", "Soils.Nobody", "Project.3", "Project.At(1)",
                                   "Soils.[].Cohesion.x", "Soils.At(1", "Soils..[]", "Project.", ".Project", "project"})
        EXPECT_EQ(zo::GetTemplate(name), nullptr) << name;
}

TEST_F(TemplateTest, ATemplateIsFoundWithoutItsData) {
    embankment.ShowResults(false);
    EXPECT_FALSE(zo::Find("Results.Slips"));
    EXPECT_NE(zo::GetTemplate("Results.Slips[0].Radius"), nullptr);
}

TEST_F(TemplateTest, AFieldOfATypeIsFoundUnderTheTypesTemplate) {
    rows::OwnRegistry registry;
    auto const soil = embankment::SoilTraits();
    registry.Add("Soil", embankment::StructPrototype(soil), L"", soil);
    H const name =
        embankment::ValuePrototype<std::wstring>(embankment::TitleTraits(), meta::OffsetOf(&embankment::Soil::name));
    registry.Add("Soil.Name", name, L"Name", embankment::TitleTraits());
    registry.Add("Core", embankment::StructPrototype(soil), L"Core", soil);
    zo::ZOTypeTemplate::Register(typeid(embankment::Soil), H(zo::GetTemplate("Soil")));
    registry->OnPostRegistration();
    EXPECT_EQ(zo::GetTemplate("Core.Name"), name.get());
    EXPECT_EQ(zo::GetTemplate("Core.Cohesion"), nullptr);
    std::string text = "Core.Name";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(text));
    EXPECT_EQ(text, "Soil.Name");
}

TEST_F(TemplateTest, RedirectsAreFollowedBeforeAStepAndNotAfterTheLast) {
    rows::OwnRegistry registry;
    H const alias(new rows::OtherName("a", true));
    registry.AddPlain("a", L"A");
    H const child = registry.AddPlain("a.b", L"B");
    registry.Add("al", alias, L"Al", rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(zo::GetTemplate("al"), alias.get());
    EXPECT_EQ(zo::GetTemplate("al.b"), child.get());
    std::string text = "al.b";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(text));
    EXPECT_EQ(text, "a.b") << "another path";
}

TEST_F(TemplateTest, BehindADeadRedirectTheWalkBeginsAtTheTop) {
    rows::OwnRegistry registry;
    registry.Add("dead", H(new rows::OtherName("nobody", true)), L"Dead", rows::StructureTraits());
    H const top = registry.AddPlain("q", L"Q");
    registry->OnPostRegistration();
    EXPECT_EQ(zo::GetTemplate("dead.q"), top.get());
    EXPECT_EQ(zo::GetTemplate("dead.z"), nullptr);
}

TEST_F(TemplateTest, RedirectsInACircleEnd) {
    rows::OwnRegistry registry;
    registry.Add("one", H(new rows::OtherName("two", true)), L"One", rows::StructureTraits());
    registry.Add("two", H(new rows::OtherName("one", true)), L"Two", rows::StructureTraits());
    registry.Add("self", H(new rows::OtherName("self", false)), L"Self", rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(zo::GetTemplate("one.b"), nullptr);
    EXPECT_EQ(zo::GetTemplate("self.b"), nullptr);
    EXPECT_FALSE(zo::FindTag(L"One.B"));
    EXPECT_FALSE(zo::FindTag(L"Self.B"));
    EXPECT_FALSE(zo::FindTag(zo::Find("one"), L"B"));
}

/// Leads to itself, and counts how often it is asked.
class Ring : public rows::OtherName {
public:
    Ring() : OtherName("Ring", true) {}
    std::string RedirectName() const override {
        ++timesAsked;
        return OtherName::RedirectName();
    }
    mutable int timesAsked = 0;
};

TEST_F(TemplateTest, ALongNameThroughARingAsksItNoOftenerThanAShortOne) {
    rows::OwnRegistry registry;
    htl::handle<Ring> const ring(new Ring);
    registry.Add("Ring", ring, L"Ring", rows::StructureTraits());
    registry->OnPostRegistration();
    std::string name = "Ring";
    for (int i = 0; i < 2000; ++i) name += ".Ring";
    EXPECT_EQ(zo::GetTemplate(name), ring.get()) << "behind a dead redirect the walk begins at the top";
    EXPECT_LE(ring->timesAsked, 1000);
    ring->timesAsked = 0;
    (void)zo::TagFromName(name);
    // A thousand for the template, and as many for the one live lookup that fails.
    EXPECT_LE(ring->timesAsked, 2100);
}

TEST_F(TemplateTest, NormalizeNameReplacesIndices) {
    std::string name = "Soils[2].Cohesion";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(name));
    EXPECT_EQ(name, "Soils.[].Cohesion");
    name = "x[12].y";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(name));
    EXPECT_EQ(name, "x.[].y");
}

TEST_F(TemplateTest, NormalizeNameKeepsANormalName) {
    std::string name = "x.[]";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(name));
    EXPECT_EQ(name, "x.[]");
    name = "Soils.[]";
    EXPECT_TRUE(zo::ZORegistry::NormalizeName(name));
    EXPECT_EQ(name, "Soils.[]");
}

TEST_F(TemplateTest, NormalizeNameRefusesMalformedText) {
    std::string name = "x[1";
    EXPECT_FALSE(zo::ZORegistry::NormalizeName(name));
    EXPECT_EQ(name, "x");
    name = "x[]";
    EXPECT_FALSE(zo::ZORegistry::NormalizeName(name));
    std::wstring tag = L"X[1";
    EXPECT_FALSE(zo::ZORegistry::NormalizeTag(tag));
    tag = L"Soils[Soil].Name";
    EXPECT_TRUE(zo::ZORegistry::NormalizeTag(tag));
    EXPECT_EQ(tag, L"Soils.[].Name");
}

TEST_F(TemplateTest, NamesMatchWhenTheyLeadToOneTemplate) {
    EXPECT_TRUE(zo::IsMatching("Soils[1].Name", "Soils.[].Name"));
    EXPECT_TRUE(zo::IsMatching("Soils[1].Name", "Soils.At(3).Name"));
    EXPECT_FALSE(zo::IsMatching("Soils[1].Name", "Soils[1].Color"));
    EXPECT_FALSE(zo::IsMatching("Soils[1].Name", "Nobody"));
}

TEST_F(TemplateTest, TwoUnknownNamesMatch) {
    EXPECT_TRUE(zo::IsMatching("Nobody", "Nothing.At.All"));
    EXPECT_TRUE(zo::IsMatching("", "x["));
}

TEST_F(TemplateTest, ColumnsAreReadByRow) {
    std::size_t const row = RowOf("Soils.[].Cohesion");
    EXPECT_EQ(zo::GetTemplate(row), zo::GetTemplate("Soils.[].Cohesion"));
    EXPECT_EQ(zo::RegNormalizedName(row), "Soils.[].Cohesion");
    EXPECT_EQ(zo::RegSubName(row), "Cohesion");
    EXPECT_EQ(zo::RegSubTag(row), L"Cohesion");
    EXPECT_EQ(zo::DataTraits(row).TypeName(), "double");
    EXPECT_EQ(zo::DataTraits(std::string("Soils[0].Cohesion")).TypeName(), "double");
    EXPECT_EQ(zo::DataTraits(zo::Find("Soils[0].Cohesion")).TypeName(), "double");
    EXPECT_EQ(zo::SubRegID(RowOf("Soils.[]"), "Cohesion"), row);
    EXPECT_EQ(zo::SubRegID(RowOf("Soils.[]"), "cohesion"), IZO::npos);
    EXPECT_EQ(zo::SubRegIDByTag(RowOf("Soils.[]"), L"Cohesion"), row);
    EXPECT_EQ(zo::SubRegIDByTag(RowOf("Soils.[]"), L"Nobody"), IZO::npos);
    EXPECT_EQ(zo::SubRegID(RowOf("Project")), RowOf("Project.Title"));
    EXPECT_EQ(zo::NextRegID(RowOf("Project.Title")), RowOf("Project.Units"));
    EXPECT_EQ(zo::NextRegID(RowOf("Project.Units")), IZO::npos);
    EXPECT_EQ(zo::SubRegID(RowOf("Project.Units")), IZO::npos);
}

TEST_F(TemplateTest, TraitsAreDefinedWhereARowHasThem) {
    EXPECT_TRUE(zo::IsDefinedDataTraits(RowOf("Soils")));
    EXPECT_FALSE(zo::IsDefinedDataTraits(IZO::npos));
    EXPECT_FALSE(zo::IsDefinedDataTraits(0)) << "the root has none";
    static meta::MetaTraits const unfilled;
    rows::OwnRegistry registry;
    registry.Add("a", H(new rows::Plain), L"A", meta::MetaDataTraits(unfilled));
    EXPECT_FALSE(zo::IsDefinedDataTraits(RowOf("a")));
}

} // namespace
