// The file that describes what is registered: its entries, their attributes, and the order of both.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/present/UnitsProvider.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/schema/Schema.h"
#include "Common/schema/XmlZOSchemaWriter.h"
#include "tests/fixtures/ViewModel.h"
#include "tests/kit/Site.h"
#include "tests/registry/Rows.h"
#include "tests/schema/Files.h"

#include "support/describe.h"
#include "support/text.h"

#include <array>
#include <functional>
#include <memory>

namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using embankment::ValuePrototype;
using files::Attributes;
using files::Value;
using fixture::Also;
using fixture::From;
using fixture::TableText;
using meta::MetaPersistTraits;
using rows::H;
using rows::IZO;
using rows::RowOf;
using Kind = hzn::units::Kind;

enum class Lining : unsigned char { None = 0, Clay = 1, Sheet = 4 };
constexpr std::array linings{
    meta::EnumWord{0, L"None", L"-", L"Not lined"},
    meta::EnumWord{1, L"Clay", L"C", L"Clay blanket"},
    meta::EnumWord{4, L"Sheet", L"S", L"Plastic sheet"},
};
meta::MetaDataTraits LiningTraits() {
    static meta::MetaDataTraits const traits = meta::EnumTraits<Lining>(linings, Lining::None);
    return traits;
}
/// An enumeration of which a test changes something.
meta::MetaDataTraits LiningTraits(std::function<void(meta::MetaTraitsAtomic&)> const& change) {
    auto record = std::make_shared<meta::MetaTraitsAtomic>(*LiningTraits().AsAtomic());
    change(*record);
    return meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(record)));
}
meta::MetaDataTraits LengthTraits() {
    static meta::MetaDataTraits const traits = meta::AtomicBuilder<double>().Units(Kind::Length).Build();
    return traits;
}

std::vector<Attributes> Flat() {
    EXPECT_TRUE(Succeeds(zo::schema::Save(files::WidePath("flat.xml"))));
    return files::Entries(files::Path("flat.xml"));
}
std::vector<Attributes> InView() {
    EXPECT_TRUE(Succeeds(zo::schema::Save(0, files::WidePath("view.xml"))));
    return files::Entries(files::Path("view.xml"));
}
std::vector<std::wstring> Column(std::vector<Attributes> const& entries, std::wstring const& name) {
    std::vector<std::wstring> column;
    for (Attributes const& entry : entries) column.push_back(Value(entry, name));
    return column;
}
using Texts = std::vector<std::wstring>;

/// The entry of the row with this name; no attributes without one.
Attributes Entry(std::wstring const& name) {
    for (Attributes const& entry : Flat())
        if (Value(entry, L"ZOName") == name) return entry;
    ADD_FAILURE() << "no entry " << testing::PrintToString(name);
    return {};
}

class SchemaTest : public rows::RegistryTest {
protected:
    /// A gallery with a length and a lining.
    void AddGallery(meta::MetaDataTraits const& lining = LiningTraits()) {
        registry.AddPlain("Gallery", L"Gallery");
        registry.Add("Gallery.Length", ValuePrototype<double>(LengthTraits()), L"Length", LengthTraits());
        registry.Add("Gallery.Lining", ValuePrototype<int>(lining), L"Lining", lining);
        registry->OnPostRegistration();
    }
    void ShowIn(math::unitsystem::Type system) {
        math::UnitSet const units = hzn::units::SystemUnitSet(system);
        zo::RegisterUnitsProvider([units] { return units; }, {}, [units](Kind::Type) { return units; });
    }
};

// ---- The file

TEST_F(SchemaTest, FileHoldsRowsAndTheWordsBehindTheFirstOne) {
    AddGallery();
    ASSERT_TRUE(Succeeds(zo::schema::Save(files::WidePath("whole.xml"))));
    EXPECT_EQ(files::Bytes(files::Path("whole.xml")),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<ZOSchema>
  <Entry RegID="0" ZOName="HZNData" NTag="HZNData" DataType="Missing" PersistBehaviour="Always" IsPersistedAsValue="false" IsAllChildrenValue="false" ViewTravSubID="1" ViewTravNextID="18446744073709551615"/>
  <Entry RegID="1" ZOName="Gallery" NTag="Gallery" DataType="void" PersistBehaviour="No" IsPersistedAsValue="false" IsAllChildrenValue="false" ViewTravSubID="2" ViewTravNextID="18446744073709551615"/>
  <Entry RegID="2" ZOName="Gallery.Length" NTag="Gallery.Length" DataType="double" UnitKind="Length" Units="" PersistBehaviour="No" IsPersistedAsValue="false" IsAllChildrenValue="false" ViewTravSubID="18446744073709551615" ViewTravNextID="3"/>
  <Entry RegID="3" ZOName="Gallery.Lining" NTag="Gallery.Lining" DataType="(anonymous namespace)::Lining" PersistBehaviour="No" IsPersistedAsValue="false" IsAllChildrenValue="false" ViewTravSubID="18446744073709551615" ViewTravNextID="18446744073709551615"/>
  <Entry RegID="3" ZOName="Gallery.Lining.Clay" NTag="Clay" DataType="Gallery.Lining" AbbrevValue="C" PrettyPrintValue="Clay blanket"/>
  <Entry RegID="3" ZOName="Gallery.Lining.Sheet" NTag="Sheet" DataType="Gallery.Lining" AbbrevValue="S" PrettyPrintValue="Plastic sheet"/>
</ZOSchema>
)");
}

TEST_F(SchemaTest, FlatFileHoldsTheRootAsRowZero) {
    registry->OnPostRegistration();
    std::vector<Attributes> const entries = Flat();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(Value(entries[0], L"RegID"), L"0");
    EXPECT_EQ(Value(entries[0], L"ZOName"), L"HZNData");
}

TEST_F(SchemaTest, FlatFileHoldsAllRowsByNumber) {
    registry.AddPlain("Spillway", L"Spillway");
    registry.AddPlain("Apron", L"Apron");
    registry->OnPostRegistration();
    EXPECT_EQ(Column(Flat(), L"RegID"), (Texts{L"0", L"1", L"2"}));
    EXPECT_EQ(Column(Flat(), L"ZOName"), (Texts{L"HZNData", L"Spillway", L"Apron"}));
}

TEST_F(SchemaTest, ViewFileLeavesOutTheRoot) {
    AddGallery();
    EXPECT_EQ(Column(InView(), L"RegID"), (Texts{L"1", L"2", L"3", L"3", L"3"}));
}

TEST_F(SchemaTest, ViewOfNothingIsADocumentWithoutEntries) {
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(zo::schema::Save(0, files::WidePath("empty.xml"))));
    EXPECT_EQ(files::Bytes(files::Path("empty.xml")), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ZOSchema/>\n");
}

TEST_F(SchemaTest, ViewFileStartsAtTheRootWhateverTheRow) {
    AddGallery();
    ASSERT_TRUE(Succeeds(zo::schema::Save(5, files::WidePath("five.xml"))));
    ASSERT_TRUE(Succeeds(zo::schema::Save(0, files::WidePath("zero.xml"))));
    EXPECT_EQ(files::Bytes(files::Path("five.xml")), files::Bytes(files::Path("zero.xml")));
    ASSERT_TRUE(Succeeds(zo::schema::Save(IZO::npos, files::WidePath("npos.xml"))));
    EXPECT_EQ(files::Bytes(files::Path("npos.xml")), files::Bytes(files::Path("zero.xml")));
}

TEST_F(SchemaTest, SecondSaveGivesTheSameFile) {
    AddGallery();
    (void)Flat();
    std::string const first = files::Bytes(files::Path("flat.xml"));
    (void)Flat();
    EXPECT_EQ(files::Bytes(files::Path("flat.xml")), first);
}

TEST_F(SchemaTest, CharactersThatNoDocumentCanHoldAreReplaced) {
    auto const traits = LiningTraits([](meta::MetaTraitsAtomic& record) {
        record.valueList = [](Texts& out, int) { out = {L"None", L"Clay\x01\"<&"}; };
    });
    AddGallery(traits);
    EXPECT_EQ(Value(Flat().back(), L"NTag"), L"Clay\xFFFD\"<&");
}

// ---- The view

class ViewSchemaTest : public dam::ViewModelTest {};

TEST_F(ViewSchemaTest, RowsStandDepthFirst) {
    EXPECT_EQ(Column(InView(), L"ZOName"),
              (Texts{L"Body", L"Body.Crest", L"Body.Height", L"Drain", L"Drain.Pitch", L"Drain.Flow", L"Gallery",
                     L"Gallery.Length", L"Gallery.Width", L"Points", L"Points.[]", L"Points.[].X", L"Points.[].Name"}));
}

TEST_F(ViewSchemaTest, RowsStandWhereTheTableMovedThem) {
    ASSERT_TRUE(Succeeds(dam::Compile(
        TableText::WithDefault().Entry(L"Body", {}, {From(L"Drain")}).Entry(L"Gallery", {}, {From(L"Body.Crest")}))));
    EXPECT_EQ(Column(InView(), L"ZOName"),
              (Texts{L"Body", L"Body.Height", L"Drain", L"Drain.Pitch", L"Drain.Flow", L"Gallery", L"Gallery.Length",
                     L"Gallery.Width", L"Body.Crest", L"Points", L"Points.[]", L"Points.[].X", L"Points.[].Name"}));
    // The drain stands below the body now.
    EXPECT_EQ(Value(Entry(L"Body"), L"ViewTravNextID"), std::to_wstring(dam::row::Gallery));
}

TEST_F(ViewSchemaTest, LinksAreThoseOfTheView) {
    Attributes const drain = Entry(L"Drain");
    EXPECT_EQ(Value(drain, L"ViewTravSubID"), std::to_wstring(dam::row::Pitch));
    EXPECT_EQ(Value(drain, L"ViewTravNextID"), std::to_wstring(dam::row::Gallery));
}

TEST_F(ViewSchemaTest, WalkEndsInAViewThatLeadsInACircle) {
    zo::ZORegistryImpl& tables = *dam.registry->Tables();
    tables.viewRecords[dam::row::Gallery].ViewTravNextID = dam::row::Body;
    EXPECT_LE(InView().size(), dam::row::count);
    tables.viewFirstChildren[dam::row::Crest] = dam::row::Body;
    EXPECT_LE(InView().size(), dam::row::count);
}

TEST_F(ViewSchemaTest, WalkEndsAtARowThatIsNone) {
    zo::ZORegistryImpl& tables = *dam.registry->Tables();
    tables.viewRecords[dam::row::Body].ViewTravNextID = dam::row::count;
    EXPECT_EQ(InView().size(), 3u); // the body and its two fields
}

// ---- Rows

TEST_F(SchemaTest, RowWithoutTraitsHasTheDataTypeMissing) {
    registry.Add("Stray", H(new rows::Plain), L"Stray", {});
    registry->OnPostRegistration();
    EXPECT_EQ(Value(Entry(L"Stray"), L"DataType"), L"Missing");
}

TEST_F(SchemaTest, RowWithoutEntryInATableStopsAtTheViewLinks) {
    AddGallery();
    EXPECT_EQ(files::NamesOf(Entry(L"Gallery")), L"RegID ZOName NTag DataType PersistBehaviour IsPersistedAsValue "
                                                 L"IsAllChildrenValue ViewTravSubID ViewTravNextID");
}

TEST_F(SchemaTest, NamesAndTagsAreThoseOfTheRegistry) {
    registry.AddArray("Wells", L"Wells[Well]");
    registry.AddPlain("Wells.[]", L"");
    registry.Add("Wells.[].Depth", ValuePrototype<double>(LengthTraits()), L"D", LengthTraits());
    registry->OnPostRegistration();
    Attributes const depth = Entry(L"Wells.[].Depth");
    EXPECT_EQ(Value(depth, L"NTag"), L"Wells.[].D");
    EXPECT_EQ(Value(Entry(L"Wells.[]"), L"NTag"), L"Wells.[]");
}

TEST_F(SchemaTest, UnitsAreThoseThatPeopleSee) {
    AddGallery();
    ShowIn(math::unitsystem::Imperial);
    Attributes const length = Entry(L"Gallery.Length");
    EXPECT_EQ(Value(length, L"UnitKind"), L"Length");
    EXPECT_EQ(Value(length, L"Units"), L"ft");
    EXPECT_EQ(files::NamesOf(length), L"RegID ZOName NTag DataType UnitKind Units PersistBehaviour IsPersistedAsValue "
                                      L"IsAllChildrenValue ViewTravSubID ViewTravNextID");
}

TEST_F(SchemaTest, ValueWithoutAKindHasNoUnits) {
    auto const none = meta::AtomicBuilder<double>().Units(Kind::None).Build();
    registry.Add("Factor", ValuePrototype<double>(none), L"Factor", none);
    registry.Add("Count", ValuePrototype<int>(meta::AtomicTraits<int>()), L"Count", meta::AtomicTraits<int>());
    registry->OnPostRegistration();
    for (wchar_t const* const name : {L"Factor", L"Count"}) {
        EXPECT_EQ(Value(Entry(name), L"UnitKind"), L"<none>");
        EXPECT_EQ(Value(Entry(name), L"Units"), L"<none>");
    }
}

TEST_F(SchemaTest, KindIsAskedOfTheRegisteredNodeWithoutAValue) {
    bool hadValue = true;
    IZO const* asked = nullptr;
    auto const traits = meta::AtomicBuilder<double>()
                            .Units([&](void const* value, IZO const* node) {
                                hadValue = value != nullptr;
                                asked = node;
                                return Kind::Stress;
                            })
                            .Build();
    H const node = ValuePrototype<double>(traits, 4096); // an offset that is no address
    registry.Add("Pressure", node, L"Pressure", traits);
    registry->OnPostRegistration();
    EXPECT_EQ(Value(Entry(L"Pressure"), L"UnitKind"), L"Stress");
    EXPECT_FALSE(hadValue);
    EXPECT_EQ(asked, node.get());
}

TEST_F(SchemaTest, PersistSettingsAreWords) {
    struct Row {
        char const* name;
        std::uint32_t type;
        std::wstring text;
    };
    std::array const rows{
        Row{"Draft", MetaPersistTraits::No, L"No"},
        Row{"Title", MetaPersistTraits::Always, L"Always"},
        Row{"Remark", MetaPersistTraits::IfNotDefined, L"IfNotDefined"},
        Row{"Odd", 7, L""},
    };
    auto const traits = meta::AtomicTraits<std::wstring>();
    for (Row const& row : rows)
        registry.Add(row.name, ValuePrototype<std::wstring>(traits), str::as_wstring(row.name), traits, nullptr,
                     row.type);
    registry->OnPostRegistration();
    for (Row const& row : rows)
        EXPECT_EQ(Value(Entry(str::as_wstring(row.name)), L"PersistBehaviour"), row.text) << row.name;
}

TEST_F(SchemaTest, PersistFlagsAreTrueOrFalse) {
    auto const traits = meta::AtomicTraits<double>();
    htl::handle<zo::ODS> const store(new zo::ODS("Area", true, true, nullptr));
    registry->RegisterZO(store, ValuePrototype<double>(traits), {MetaPersistTraits::No, L"Area", true, false}, traits);
    htl::handle<zo::ODS> const other(new zo::ODS("Corner", true, true, nullptr));
    registry->RegisterZO(other, H(new rows::Plain), {MetaPersistTraits::No, L"Corner", false, true},
                         rows::StructureTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(Value(Entry(L"Area"), L"IsPersistedAsValue"), L"true");
    EXPECT_EQ(Value(Entry(L"Area"), L"IsAllChildrenValue"), L"false");
    EXPECT_EQ(Value(Entry(L"Corner"), L"IsPersistedAsValue"), L"false");
    EXPECT_EQ(Value(Entry(L"Corner"), L"IsAllChildrenValue"), L"true");
}

// ---- Enumerations

TEST_F(SchemaTest, WordsHaveTheAttributesOfTheirOwnShape) {
    AddGallery();
    std::vector<Attributes> const entries = Flat();
    EXPECT_EQ(files::NamesOf(entries.back()), L"RegID ZOName NTag DataType AbbrevValue PrettyPrintValue");
}

TEST_F(SchemaTest, WordsHaveTheKindsOfTheirValues) {
    auto const traits = LiningTraits([](meta::MetaTraitsAtomic& record) {
        record.unitKind = [](void const* value, IZO const*) {
            if (!value) return Kind::None;
            return *static_cast<int const*>(value) == 4 ? Kind::Area : Kind::None;
        };
    });
    AddGallery(traits);
    ShowIn(math::unitsystem::Metric);
    std::vector<Attributes> const entries = Flat();
    // Behind root, gallery, length and lining.
    ASSERT_GT(entries.size(), 5u);
    EXPECT_EQ(files::NamesOf(entries[3]), files::NamesOf(entries[1])); // the row has no kind without a value
    EXPECT_EQ(files::NamesOf(entries[4]), L"RegID ZOName NTag DataType AbbrevValue PrettyPrintValue");
    EXPECT_EQ(files::NamesOf(entries[5]), L"RegID ZOName NTag DataType UnitKind Units AbbrevValue PrettyPrintValue");
    EXPECT_EQ(Value(entries[5], L"UnitKind"), L"Area");
    EXPECT_EQ(Value(entries[5], L"Units"), L"m²");
}

TEST_F(SchemaTest, WordThatTheValueRefusesHasNoKind) {
    auto const traits = LiningTraits([](meta::MetaTraitsAtomic& record) {
        record.unitKind = [](void const*, IZO const*) { return Kind::Area; };
        record.valueList = [](Texts& out, int) { out = {L"None", L"Straw", L"Sheet"}; };
    });
    AddGallery(traits);
    std::vector<Attributes> const entries = Flat();
    ASSERT_EQ(entries.size(), 6u);
    EXPECT_EQ(Value(entries[4], L"NTag"), L"Straw");
    EXPECT_EQ(Value(entries[4], L"UnitKind"), L"<none>");
    EXPECT_EQ(Value(entries[5], L"UnitKind"), L"Area");
}

TEST_F(SchemaTest, EnumerationOfOneWordHasNoEntryForIt) {
    AddGallery(LiningTraits(
        [](meta::MetaTraitsAtomic& record) { record.valueList = [](Texts& out, int) { out = {L"None"}; }; }));
    EXPECT_EQ(Column(Flat(), L"ZOName"), (Texts{L"HZNData", L"Gallery", L"Gallery.Length", L"Gallery.Lining"}));
}

TEST_F(SchemaTest, EnumerationWithoutWordsHasItsRowOnly) {
    AddGallery(LiningTraits([](meta::MetaTraitsAtomic& record) { record.valueList = [](Texts&, int) {}; }));
    EXPECT_EQ(Column(Flat(), L"RegID"), (Texts{L"0", L"1", L"2", L"3"}));
}

TEST_F(SchemaTest, WordsWithoutShownTextsHaveEmptyOnes) {
    AddGallery(LiningTraits([](meta::MetaTraitsAtomic& record) {
        record.valueList = [](Texts& out, int which) {
            if (which == 0) out = {L"None", L"Clay", L"Sheet"};
            if (which == 1) out = {L"-", L"C"};
        };
    }));
    std::vector<Attributes> const entries = Flat();
    ASSERT_EQ(entries.size(), 6u);
    EXPECT_EQ(Value(entries[4], L"AbbrevValue"), L"C");
    EXPECT_EQ(Value(entries[4], L"PrettyPrintValue"), L"");
    EXPECT_EQ(Value(entries[5], L"AbbrevValue"), L"");
}

TEST_F(SchemaTest, RowsBehindAnEnumerationFollowItsWords) {
    AddGallery();
    registry.AddPlain("Weir", L"Weir");
    registry->OnPostRegistration();
    EXPECT_EQ(Column(Flat(), L"RegID"), (Texts{L"0", L"1", L"2", L"3", L"3", L"3", L"4"}));
}

TEST_F(SchemaTest, EnumerationInAnArrayIsNamedByItsElement) {
    auto const traits = meta::ArrayTraits<std::vector<Lining>>([] { return LiningTraits(); });
    registry.Add("Linings", embankment::ArrayPrototype(traits), L"Linings[Lining]", traits);
    registry.Add("Linings.[]", ValuePrototype<int>(LiningTraits()), L"", LiningTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(Column(Flat(), L"ZOName"),
              (Texts{L"HZNData", L"Linings", L"Linings.[]", L"Linings.[].Clay", L"Linings.[].Sheet"}));
}

TEST_F(SchemaTest, RowWhoseNameLeadsToAnotherRowHasNoWords) {
    AddGallery();
    EXPECT_THROW(registry.Add("Gallery.Lining", ValuePrototype<int>(LiningTraits()), L"Lining2", LiningTraits()),
                 htl::status_exception);
    EXPECT_EQ(Column(Flat(), L"RegID"), (Texts{L"0", L"1", L"2", L"3", L"3", L"3", L"4"}));
}

TEST_F(SchemaTest, SavingLeavesTheValueBehindAnAliasAsItIs) {
    Lining lining = Lining::Clay;
    registry.Add("Lining", ValuePrototype<int>(LiningTraits()), L"Lining", LiningTraits(), &lining);
    registry.Add("Cover", H(new zo::ZOAlias("Lining", IZO::npos, nullptr)), L"Cover", LiningTraits());
    registry->OnPostRegistration();
    EXPECT_EQ(Column(Flat(), L"ZOName"),
              (Texts{L"HZNData", L"Lining", L"Lining.Clay", L"Lining.Sheet", L"Cover", L"Cover.Clay", L"Cover.Sheet"}));
    EXPECT_EQ(lining, Lining::Clay);
}

class Rig {
public:
    site::Method Method() const { return method; }
    void SetMethod(site::Method wanted) {
        method = wanted;
        ++timesSet;
    }

    int timesSet = 0;

private:
    site::Method method = site::Method::Auger;
};

class RigSchemaTest : public site::KitTest {};

TEST_F(RigSchemaTest, SavingCallsNoSetterOfTheApplication) {
    Rig rig;
    Register({[&rig](zo::kit::Kit& kit) {
        kit.Enum<site::Method>(site::methods);
        kit.Record<Rig>("Rig").Property<&Rig::Method, &Rig::SetMethod>("Method", L"Method",
                                                                       {.dflt = site::Method::Rotary});
        kit.Branch<Rig>("Rig", L"Rig", [&rig] { return &rig; });
    }});
    EXPECT_EQ(Column(Flat(), L"ZOName"),
              (Texts{L"HZNData", L"Rig", L"Rig.Method", L"Rig.Method.Percussion", L"Rig.Method.Auger"}));
    EXPECT_EQ(rig.timesSet, 0);
    EXPECT_EQ(rig.Method(), site::Method::Auger);
}

class EmbankmentSchemaTest : public embankment::EmbankmentTest {};

TEST_F(EmbankmentSchemaTest, SavingReadsAndChangesNoValue) {
    embankment.ShowResults(false); // without memory, to be sure
    std::size_t const entries = embankment.registry->Impl()->entries.Size();
    std::vector<Attributes> const saved = Flat();
    EXPECT_FALSE(saved.empty());
    EXPECT_EQ(embankment.model.soils[0].drainage, embankment::Drainage::Undrained);
    EXPECT_EQ(embankment.model.project.units, embankment::UnitSystem::Metric);
    EXPECT_EQ(embankment.registry->Impl()->entries.Size(), entries);
}

TEST_F(EmbankmentSchemaTest, EveryRowHasOneEntryOfItsOwn) {
    std::size_t rows = 0;
    for (Attributes const& entry : Flat())
        if (Value(entry, L"AbbrevValue") == L"<none>") {
            EXPECT_EQ(Value(entry, L"RegID"), std::to_wstring(rows));
            ++rows;
        }
    EXPECT_EQ(rows, embankment.registry->Tables()->RowCount());
}

// ---- The table of labels

class LabelledSchemaTest : public dam::ViewModelTest {
protected:
    /// The entry of the gallery under a table with these cells for it.
    Attributes Gallery(std::vector<fixture::Cell> const& cells) {
        EXPECT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"Gallery", cells))));
        return Entry(L"Gallery");
    }
};

TEST_F(LabelledSchemaTest, RowHasWhatTheTableSaysOfIt) {
    Attributes const gallery = Gallery({{L"Label", L"&Gallery"},
                                        {L"Description", L"Where seepage is collected"},
                                        {L"PrettyPrintNameTag", L"\"Gallery \",Length"},
                                        {L"PrettyPrintValueTag", L"Length"},
                                        {L"ColorTag", L"Width"},
                                        {L"CustomView", L"gallerySheet"},
                                        {L"Category", L"Drainage"}});
    Attributes const behind(gallery.begin() + 9, gallery.end());
    EXPECT_EQ(behind, (Attributes{{L"ExtendedInfoSearchTag", L"Gallery"},
                                  {L"Label", L"&Gallery"},
                                  {L"Description", L"Where seepage is collected"},
                                  {L"PrettyPrintNameSubTag", L"\"Gallery \",Length"},
                                  {L"PrettyPrintValueSubTag", L"Length"},
                                  {L"ColorSubTag", L"Width"},
                                  {L"CustomView", L"gallerySheet"},
                                  {L"Category", L"Drainage"},
                                  {L"ViewExcl", L"none"},
                                  {L"Physics", L"all"},
                                  {L"Modes", L"all"}}));
}

TEST_F(LabelledSchemaTest, FieldsThatTheTableLeavesOutAreEmpty) {
    Attributes const gallery = Gallery({{L"Label", L"Gallery"}});
    for (wchar_t const* const name : {L"Description", L"PrettyPrintNameSubTag", L"PrettyPrintValueSubTag",
                                      L"ColorSubTag", L"CustomView", L"Category"})
        EXPECT_EQ(Value(gallery, name), L"");
}

TEST_F(LabelledSchemaTest, FieldsAreNotTakenOverFromMoreGeneralEntries) {
    ASSERT_TRUE(Succeeds(dam::Compile(TableText::WithDefault()
                                          .Entry(L"Gallery.Length", {{L"Category", L"Drainage"}})
                                          .Entry(L"Gallery.*", {{L"Label", L"Size"}}))));
    EXPECT_EQ(Value(Entry(L"Gallery.Length"), L"Label"), L"");
    EXPECT_EQ(Value(Entry(L"Gallery.Width"), L"Label"), L"Size");
}

TEST_F(LabelledSchemaTest, RowThatOnlyTheDefaultEntrySpeaksForHasNoFields) {
    ASSERT_TRUE(Succeeds(dam::Compile(TableText::WithDefault())));
    EXPECT_EQ(Value(Entry(L"Gallery"), L"ExtendedInfoSearchTag"), L"<none>");
    EXPECT_EQ(Value(Entry(L"Gallery"), L"Physics"), L"<none>");
}

TEST_F(LabelledSchemaTest, EntryForSeveralRowsIsNamedByEach) {
    ASSERT_TRUE(Succeeds(dam::Compile(TableText::WithDefault().Entry(L"Gallery.*", {{L"Label", L"Size"}}))));
    EXPECT_EQ(Value(Entry(L"Gallery.Length"), L"ExtendedInfoSearchTag"), L"Gallery.*");
    EXPECT_EQ(Value(Entry(L"Gallery.Width"), L"ExtendedInfoSearchTag"), L"Gallery.*");
}

struct Bits {
    wchar_t const* column;
    wchar_t const* cell;
    wchar_t const* attribute;
    wchar_t const* text;
};
void PrintTo(Bits const& bits, std::ostream* out) { *out << testing::PrintToString(std::wstring(bits.cell)); }

class BitTextTest : public LabelledSchemaTest, public testing::WithParamInterface<Bits> {};

TEST_P(BitTextTest, IsOneWordWhereOneIsEnough) {
    Bits const bits = GetParam();
    EXPECT_EQ(Value(Gallery({{bits.column, bits.cell}}), bits.attribute), bits.text);
}

INSTANTIATE_TEST_SUITE_P(Views, BitTextTest,
                         testing::Values(Bits{L"ViewExcl", L"none", L"ViewExcl", L"none"},
                                         Bits{L"ViewExcl", L"data", L"ViewExcl", L"data"},
                                         Bits{L"ViewExcl", L"report", L"ViewExcl", L"report"},
                                         Bits{L"ViewExcl", L"report,data", L"ViewExcl", L"data,report"},
                                         Bits{L"ViewExcl", L"data,property,report", L"ViewExcl", L"all"}));
INSTANTIATE_TEST_SUITE_P(Physics, BitTextTest,
                         testing::Values(Bits{L"Physics", L"water", L"Physics", L"water"},
                                         Bits{L"Physics", L"slope,water", L"Physics", L"water,slope"},
                                         Bits{L"Physics", L"fe", L"Physics", L"fe"},
                                         Bits{L"Physics", L"any", L"Physics", L"any"},
                                         Bits{L"Physics", L"fe,slope", L"Physics", L"any"},
                                         Bits{L"Physics", L"project,any", L"Physics", L"all"}));
INSTANTIATE_TEST_SUITE_P(Modes, BitTextTest,
                         testing::Values(Bits{L"Mode", L"define", L"Modes", L"define"},
                                         Bits{L"Mode", L"contour,define", L"Modes", L"all"}));

// ---- Failures

TEST_F(SchemaTest, PathThatCanNotBeWrittenGivesTheFilesFailure) {
    AddGallery();
    std::wstring const path = files::WidePath("gone/schema.xml");
    htl::status const expected(90003, path, L"No such file or directory");
    EXPECT_TRUE(FailsAs(zo::schema::Save(path), expected));
    EXPECT_TRUE(FailsAs(zo::schema::Save(0, path), expected));
}

TEST_F(SchemaTest, PathThatIsNoFileNameIsRefused) {
    AddGallery();
    EXPECT_TRUE(zo::schema::Save(std::wstring(1, wchar_t(0xD800))).Is(90011));
}

TEST_F(SchemaTest, FailedSaveLeavesTheOldFileAndNothingElse) {
    AddGallery();
    files::Store(files::Path("old.xml"), "<ZOSchema/>");
    std::vector<std::string> const before = files::Names();
    htl::status flat, view;
    {
        files::SizeLimit const limit(100);
        flat = zo::schema::Save(files::WidePath("old.xml"));
        view = zo::schema::Save(0, files::WidePath("old.xml"));
    }
    htl::status const expected(90003, files::WidePath("old.xml"), L"File too large");
    EXPECT_TRUE(FailsAs(flat, expected));
    EXPECT_TRUE(FailsAs(view, expected));
    EXPECT_EQ(files::Bytes(files::Path("old.xml")), "<ZOSchema/>");
    EXPECT_EQ(files::Names(), before);
}

// ---- The cursor

TEST_F(SchemaTest, CursorStandsOnTheDocumentElementFirst) {
    registry->OnPostRegistration();
    htl::handle<zo::schema::XmlZOSchemaWriter> const cursor(new zo::schema::XmlZOSchemaWriter(true));
    EXPECT_EQ(cursor->Tag(), L"ZOSchema");
    EXPECT_EQ(cursor->Text(), L"");
    EXPECT_EQ(cursor->Attributes().first, nullptr);
    EXPECT_FALSE(cursor->Next());
    EXPECT_FALSE(cursor->IsArrayEntry());
    EXPECT_EQ(cursor->Tag(), L"ZOSchema");
}

TEST_F(SchemaTest, CursorIsItsOwnFirstChildAndEntriesHaveNone) {
    registry->OnPostRegistration();
    htl::handle<zo::schema::XmlZOSchemaWriter> const cursor(new zo::schema::XmlZOSchemaWriter(true));
    EXPECT_EQ(cursor->FirstChild().get(), cursor.get());
    EXPECT_EQ(cursor->Tag(), L"Entry");
    EXPECT_EQ(cursor->Text(), L"");
    EXPECT_FALSE(cursor->FirstChild());
}

TEST_F(SchemaTest, CursorAtTheEndStaysThere) {
    registry->OnPostRegistration();
    htl::handle<zo::schema::XmlZOSchemaWriter> const cursor(new zo::schema::XmlZOSchemaWriter(true));
    ASSERT_TRUE(cursor->FirstChild());
    EXPECT_FALSE(cursor->Next());
    EXPECT_FALSE(cursor->Next());
}

} // namespace
