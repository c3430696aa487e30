// What two threads get that use a part of the library at the same moment, before anybody else did.
#include "tests/fixtures/Embankment.h"
#include "tests/threads/Dike.h"
#include "tests/threads/SideBySide.h"

#include "support/diag.h"
#include "support/locale.h"
#include "support/messages.h"
#include "support/typename.h"
#include "support/units.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace threads {
namespace {

namespace ZOError = zo::ZOError;

/// The answers of both threads.
template <class T>
using Both = std::array<T, 2>;

// What all threads share

TEST(FirstUseTest, DefaultRegistryIsTheSameForBoth) {
    Both<zo::ZORegistry*> registries{};
    SideBySide([&](int which, Meeting&) { registries[which] = zo::ZORegistry::Instance(); });
    ASSERT_NE(registries[0], nullptr);
    EXPECT_EQ(registries[0], registries[1]);
}

TEST(FirstUseTest, DescriptorsAreTheSameForBoth) {
    Both<std::vector<meta::MetaDataTraits const*>> descriptors;
    SideBySide([&](int which, Meeting&) {
        descriptors[which] = {&meta::AtomicTraits<bool>(), &meta::AtomicTraits<int>(), &meta::AtomicTraits<double>(),
                              &meta::AtomicTraits<std::wstring>(), &meta::AtomicTraits<htl::UInt64>()};
        EXPECT_EQ(meta::AtomicTraits<double>().TypeName(), "double");
    });
    EXPECT_EQ(descriptors[0], descriptors[1]);
}

TEST(FirstUseTest, TypeNamesAreTheSameForBoth) {
    Both<std::string const*> names{};
    SideBySide([&](int which, Meeting&) {
        EXPECT_EQ(meta::TypeName(typeid(std::wstring)), "std::wstring");
        EXPECT_EQ(meta::TypeName(typeid(Soil)), "threads::Soil");
        names[which] = &meta::TypeName(typeid(Dike));
    });
    EXPECT_EQ(*names[0], "threads::Dike");
    EXPECT_EQ(names[0], names[1]);
}

TEST(FirstUseTest, FailuresHaveTheirTexts) {
    SideBySide([](int which, Meeting&) {
        std::wstring const soil = L"Soils[" + std::to_wstring(which) + L"]";
        EXPECT_EQ(ZOError::not_found(str::as_cstring(soil)).AsWString(), L"Not found: " + soil);
        EXPECT_TRUE(ZOError::array_memory_conflict().Is(21654));
        EXPECT_EQ(htl::Convert_error_status::WholeNumberString(), L"whole number");
        EXPECT_EQ(htl::Convert_error_status::FloatingPointString(), L"number");
        EXPECT_EQ(str::load_wstring(1), L"Message 1");
    });
}

TEST(FirstUseTest, UnitsHaveTheirTextsAndFactors) {
    using hzn::units::Kind;
    SideBySide([](int, Meeting&) {
        math::UnitSet const metric = hzn::units::SystemUnitSet(math::unitsystem::Metric);
        math::UnitSet const imperial = hzn::units::SystemUnitSet(math::unitsystem::Imperial);
        EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::Stress, metric), L"kPa");
        EXPECT_EQ(hzn::units::GetEngUnitValueString(Kind::UnitWeight, imperial), L"pcf");
        EXPECT_EQ(hzn::units::KindName(Kind::UnitWeight), L"UnitWeight");
        Kind::Type kind = Kind::None;
        EXPECT_TRUE(hzn::units::KindFromName(L"Stress", kind));
        EXPECT_EQ(kind, Kind::Stress);
        EXPECT_DOUBLE_EQ(math::units::ConvertBetweenUnitSets(Kind::Length, 0.3048, metric, imperial), 1);
    });
}

TEST(FirstUseTest, LocaleOfPeopleIsTheSameForBoth) {
    setenv("LC_ALL", "C", 1); // before there are threads
    Both<str::locale::ID const*> locales{};
    SideBySide([&](int which, Meeting&) {
        locales[which] = &str::locale::native();
        std::wstring text;
        str::locale::AppendNumber(text, 2.5, str::locale::native());
        EXPECT_EQ(text, L"2.5");
    });
    EXPECT_EQ(locales[0], locales[1]);
}

TEST(FirstUseTest, CategoriesOfANameHaveOneBit) {
    Both<int> water{}, soil{};
    SideBySide([&](int which, Meeting&) {
        water[which] = hzn::diag::DeclareCategoryMask("Water");
        soil[which] = hzn::diag::DeclareCategoryMask("Soil");
    });
    EXPECT_EQ(water[0], water[1]);
    EXPECT_EQ(soil[0], soil[1]);
    EXPECT_NE(water[0], soil[0]);
}

TEST(FirstUseTest, SinkGetsTheMessagesOfBoth) {
    struct Counting final : hzn::IEventSink {
        void Post(hzn::diag::Severity::Type, int, std::wstring const&) override { ++posted; }
        std::atomic<int> posted = 0;
    } sink;
    hzn::diag::DeclareCategoryMask const category("Water");
    Both<hzn::IEventSink*> before{};
    SideBySide([&](int which, Meeting& meeting) {
        before[which] = hzn::eventsink::SetInstance(&sink);
        hzn::diag::SetLogged(category, hzn::diag::Severity::Warning);
        meeting.Wait();
        EXPECT_TRUE(hzn::diag::IsLogged(hzn::diag::Severity::Error, category));
        EXPECT_FALSE(hzn::diag::IsLogged(hzn::diag::Severity::Note, category));
        hzn::eventsink::Instance()->Post(hzn::diag::Severity::Error, category, L"flooded");
    });
    hzn::eventsink::SetInstance(nullptr);
    EXPECT_EQ(sink.posted, 2);
    EXPECT_NE(before[0], before[1]) << "one of them saw the sink of the other";
}

TEST(FirstUseTest, FeaturesOfBothAreOn) {
    SideBySide([](int which, Meeting& meeting) {
        std::wstring const own = which == 0 ? L"Seepage" : L"Slopes", other = which == 0 ? L"Slopes" : L"Seepage";
        hzn::feature::SetFeature(own, true);
        meeting.Wait();
        EXPECT_TRUE(hzn::feature::IsFeatureEnabled(own));
        EXPECT_TRUE(hzn::feature::IsFeatureEnabled(other));
        EXPECT_FALSE(hzn::feature::IsFeatureEnabled(L"Piles"));
    });
}

// Registries, one for each

TEST(FirstUseTest, EachThreadDeclaresAndFindsItsOwn) {
    SideBySide([](int which, Meeting&) {
        OwnDike const own(which);
        ASSERT_TRUE(own.report.IsClean());
        EXPECT_EQ(zo::ZORegistry::Instance(), own.registry.get());
        EXPECT_EQ(TextOf("Dike.Title"), L"Dike " + std::to_wstring(which));
        EXPECT_EQ(zo::FullTag(zo::Find("Dike.Soils[1].Name")), L"Dike.Soils[2].Name");
        EXPECT_EQ(zo::Find("Dike.Soils[1]")->Owner(), own.registry.get());
        EXPECT_TRUE(zo::FindTag(L"Dike.Regions[1].Levels[2]"));
        EXPECT_FALSE(zo::Find("Dike.Nobody"));
    });
}

TEST(FirstUseTest, EachThreadRegistersRowsByHand) {
    SideBySide([](int which, Meeting&) {
        embankment::Embankment project;
        project.model.soils[0].cohesion = which;
        EXPECT_EQ(TextOf("Soils[0].Cohesion"), std::to_wstring(which));
        EXPECT_EQ(TextOf("Summary.SoilCount"), L"3");
        EXPECT_TRUE(FailsAs(zo::Find("Soils[1].Cohesion")->Set(-1.0), embankment::NegativeCohesion()));
        EXPECT_EQ(TextOf("Soils[2].Drainage"), L"Partial");
    });
}

TEST(FirstUseTest, EachThreadReadsAndWritesItsOwnValues) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        meeting.Wait();
        zo::H const cohesion = zo::Find("Dike.Soils[1].Cohesion");
        EXPECT_TRUE(Succeeds(cohesion->Set(L"7.5")));
        double number = 0;
        EXPECT_TRUE(Succeeds(cohesion->Get(number)));
        EXPECT_EQ(number, 7.5);
        EXPECT_EQ(cohesion->Set(-1.0).AsWString(), L"-1 is less than 0.");
        EXPECT_TRUE(FailsAs(cohesion->Set(L"firm"), htl::Convert_error_status::InvalidCharStatus(L"firm", L"number")));
        EXPECT_TRUE(Succeeds(zo::Find("Dike.Soils[1].Drainage")->Set(L"Undrained")));
        EXPECT_TRUE(Succeeds(zo::Find("Dike.Regions[0].Levels")->Set(L"1,2,3.5")));
        EXPECT_EQ(own.dike.soils[1], (Soil{2, L"Sand", 7.5, Drainage::Undrained}));
        EXPECT_EQ(own.dike.regions[0].levels, (std::vector<double>{1, 2, 3.5}));
    });
}

TEST(FirstUseTest, EachThreadKeepsAnEyeOnItsOwnArrays) {
    int const count = 200; // many, since the table of arrays is locked in parts
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        own.dike.regions.assign(count, own.dike.regions[0]);
        std::vector<zo::H> views;
        meeting.Wait();
        for (int i = 0; i < count; ++i) views.push_back(zo::Find("Dike.Regions[$1].Levels[0]", i));
        for (int i = 0; i < count; ++i) {
            zo::H const levels = zo::Find("Dike.Regions[$1].Levels", i);
            EXPECT_TRUE(FailsAs(levels->SetLength(3), ZOError::array_memory_conflict()));
            views[static_cast<std::size_t>(i)] = {};
            EXPECT_TRUE(Succeeds(levels->SetLength(3)));
        }
        EXPECT_EQ(own.dike.regions, std::vector<Region>(count, {1, 1, {2.5, 4, 0}}));
    });
}

TEST(FirstUseTest, EachThreadFollowsItsOwnLinksAndAliases) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        own.dike.soils[1].name = L"Sand " + std::to_wstring(which);
        meeting.Wait();
        EXPECT_EQ(TextOf("Cover.Cohesion"), std::to_wstring(25 + which));
        EXPECT_TRUE(Succeeds(zo::SetLink(zo::Find("Dike.Regions[0].Soil"), GGID{soilGroup, 2})));
        EXPECT_EQ(TextOf("Dike.Regions[0].Soil.Name"), own.dike.soils[1].name);
        EXPECT_EQ(TextOf("Cover.Name"), own.dike.soils[1].name);
        EXPECT_EQ(zo::GetRecordID(zo::Find("Dike.Soils[1].Name"), zo::Link::Packed), (GGID{soilGroup, 2}));
    });
}

TEST(FirstUseTest, EachThreadCommitsAndTakesBackItsOwnEdits) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        meeting.Wait();
        zo::ZOJournal journal;
        {
            htl::handle<zo::ZOTransaction> const edit = own.registry->CreateTransaction();
            ASSERT_TRUE(Succeeds(edit->Find("Dike.Soils")->SetLength(3)));
            ASSERT_TRUE(Succeeds(edit->Find("Dike.Soils[2].Name")->Set(L"Peat")));
            ASSERT_TRUE(Succeeds(edit->Find("Dike.Soils[0].Cohesion")->Set(100.0 + which)));
            EXPECT_EQ(own.dike, Example(which));
            ASSERT_TRUE(Succeeds(edit->Commit("", "", &journal)));
        }
        ASSERT_EQ(own.dike.soils.size(), 3u);
        EXPECT_EQ(own.dike.soils[2].name, L"Peat");
        EXPECT_EQ(own.dike.soils[0].cohesion, 100.0 + which);
        EXPECT_TRUE(Succeeds(journal.Undo(*own.registry)));
        EXPECT_EQ(own.dike, Example(which));
    });
}

TEST(FirstUseTest, EachThreadSavesAndLoadsItsOwnDocument) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        meeting.Wait();
        std::wstring document;
        ASSERT_TRUE(Succeeds(zo::xml::StringWrite(document, {1, 2})));
        EXPECT_EQ(document, DocumentOf(which));
        own.dike = Dike();
        std::vector<htl::status> errors;
        ASSERT_TRUE(Succeeds(zo::xml::StringRead(document, errors, {}, zo::xml::impl::UnknownAreErrors())));
        EXPECT_TRUE(errors.empty());
        EXPECT_EQ(own.dike, Example(which));
    });
}

TEST(FirstUseTest, OfOneFileOneSaveStaysWhole) {
    std::string name = (std::filesystem::temp_directory_path() / "dike-XXXXXX").string();
    int const made = mkstemp(name.data());
    ASSERT_NE(made, -1);
    close(made);
    std::wstring const path = str::as_wstring(name);
    SideBySide([&](int which, Meeting& meeting) {
        OwnDike own(which);
        meeting.Wait();
        EXPECT_TRUE(Succeeds(zo::xml::FileWrite(path, {1, 2})));
        meeting.Wait();
        std::vector<htl::status> errors;
        EXPECT_TRUE(Succeeds(zo::xml::FileRead(path, errors)));
        EXPECT_TRUE(errors.empty());
        EXPECT_TRUE(own.dike == Example(0) || own.dike == Example(1));
    });
    EXPECT_TRUE(std::filesystem::remove(name));
}

TEST(FirstUseTest, EachThreadReportsTheFaultsOfItsOwnDocument) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        meeting.Wait();
        std::wstring const bad = which == 0 ? L"soft" : L"wet";
        std::vector<htl::status> errors;
        std::wstring const soil = L"<Soil><Cohesion>" + bad + L"</Cohesion></Soil>";
        ASSERT_TRUE(Succeeds(
            zo::xml::StringRead(L"<HZNData><Dike><Soils Len=\"1\">" + soil + L"</Soils></Dike></HZNData>", errors)));
        ASSERT_EQ(errors.size(), 1u);
        EXPECT_NE(errors[0].AsWString().find(L"\"" + bad + L"\""), std::wstring::npos)
            << str::as_cstring(errors[0].AsWString());
        EXPECT_TRUE(zo::xml::StringRead(L"<HZNData><Dike>", errors).IsError());
    });
}

// What stands on top: tables of labels, values for people, views, the clipboard, the schema

std::string TableOf(int which) {
    return R"(<Meta_ExtendedInfo Rows="5">
  <Row Tag="Default"/>
  <Row Tag="Dike" Label="Dike )" +
           std::to_string(which) + R"("/>
  <Row Tag="Dike.Soils" Label="Soils"/>
  <Row Tag="Dike.Soils.[]" Label="Soil" LabelTag="!Label Name"/>
  <Row Tag="Dike.Title" Label="Title" ViewExcl="all"/>
</Meta_ExtendedInfo>)";
}

htl::status ReadTable(int which) {
    std::string const table = TableOf(which);
    if (htl::status failure = zo::ZOExtendedInfoRead(table.data(), table.data() + table.size()); failure.IsError())
        return failure;
    return zo::CompileExtendedInfo();
}

TEST(FirstUseTest, EachThreadReadsItsOwnTableOfLabels) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike const own(which);
        meeting.Wait();
        ASSERT_TRUE(Succeeds(ReadTable(which)));
        EXPECT_EQ(zo::Label("Dike"), L"Dike " + std::to_wstring(which));
        EXPECT_EQ(zo::Label("Dike.Soils[0]"), L"Soil Clay");
        EXPECT_EQ(zo::PrettyPrintName(zo::Find("Dike.Soils"), L'.'), L" Dike " + std::to_wstring(which) + L" .Soils");
    });
}

TEST(FirstUseTest, EachThreadWalksItsOwnView) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike const own(which);
        ASSERT_TRUE(Succeeds(ReadTable(which)));
        meeting.Wait();
        int const query = 0x2 | zo::visible::Mask(hzn::apptype::Any) | zo::visible::Mask(hzn::appmode::Define);
        std::vector<std::wstring> shown;
        for (zo::H const& child : zo::view::Children(zo::Find("Dike"), query)) shown.push_back(zo::FullTag(child));
        EXPECT_EQ(shown, (std::vector<std::wstring>{L"Dike.Soils", L"Dike.Regions"}));
    });
}

TEST(FirstUseTest, EachThreadSeesValuesInItsOwnUnits) {
    setenv("LC_ALL", "C", 1);
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        own.dike.regions[0].levels = {0.3048};
        meeting.Wait();
        auto const system = which == 0 ? math::unitsystem::Metric : math::unitsystem::Imperial;
        zo::RegisterUnitsProvider([] { return hzn::units::SystemUnitSet(math::unitsystem::Metric); }, {},
                                  [system](hzn::units::Kind::Type) { return hzn::units::SystemUnitSet(system); });
        EXPECT_EQ(zo::PrettyPrintValueWithUnits("Dike.Regions[0].Levels[0]"), which == 0 ? L"0.3048 m" : L"1 ft");
        EXPECT_EQ(zo::UnitString(zo::Find("Dike.Regions[0].Levels[0]")), which == 0 ? L"m" : L"ft");
        EXPECT_TRUE(Succeeds(zo::SetPrettyPrintValue(zo::Find("Dike.Regions[0].Levels[0]"), L"2")));
        EXPECT_DOUBLE_EQ(own.dike.regions[0].levels[0], which == 0 ? 2 : 0.6096);
        EXPECT_EQ(zo::PrettyPrintValue("Dike.Soils[0].Drainage"), L"Not drained");
    });
}

TEST(FirstUseTest, EachThreadCopiesAndPastesIntoItsOwn) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike own(which);
        own.dike.soils[0].name = L"Clay " + std::to_wstring(which);
        zo::clip::ClipboardContents contents;
        std::vector<std::wstring> replaced;
        meeting.Wait();
        ASSERT_TRUE(Succeeds(zo::clip::Serialize(contents, {zo::Find("Dike.Soils[0]")}, {1, 2}, "")));
        own.dike.soils.pop_back();
        own.dike.soils[0] = {1, L"Peat", 4, Drainage::Drained};
        ASSERT_TRUE(zo::clip::Contains(soilGroup, contents, {1, 2}));
        ASSERT_TRUE(Succeeds(zo::clip::Deserialize(soilGroup, contents, {1, 2}, replaced, "")));
        ASSERT_EQ(own.dike.soils.size(), 2u);
        EXPECT_EQ(own.dike.soils[1], (Soil{2, L"Clay " + std::to_wstring(which), 25.0 + which, Drainage::Undrained}));
    });
}

TEST(FirstUseTest, EachThreadWritesTheSchemaOfItsOwn) {
    SideBySide([](int which, Meeting& meeting) {
        OwnDike const own(which);
        meeting.Wait();
        std::string schema;
        ASSERT_TRUE(Succeeds(zo::schema::XsdText(schema)));
        EXPECT_NE(schema.find(R"(<xs:complexType name="HZNData.Dike.Soils.Soil">)"), std::string::npos);
    });
}

} // namespace
} // namespace threads
