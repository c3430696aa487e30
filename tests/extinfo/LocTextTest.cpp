// The texts of a table, written for translators and read back as the second table.
#include "Common/extinfo/LocText.h"

#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/present/Text.h"
#include "Common/registry/Find.h"
#include "support/text.h"
#include "support/xml/XmlFile.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using zo::ExtendedInfoStore;
using zo::Find;
namespace fs = std::filesystem;

std::string ContentOf(fs::path const& path) {
    std::ifstream const file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void Put(fs::path const& path, std::string_view text) { std::ofstream(path, std::ios::binary) << text; }

void Replace(std::string& text, std::string_view from, std::string_view to) {
    std::size_t const place = text.find(from);
    ASSERT_NE(place, text.npos) << from;
    text.replace(place, from.size(), to);
}

/// A document as it is written, with its rows.
std::string Document(std::size_t count, std::string const& rows) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Meta_ExtendedInfo Len=\"" + std::to_string(count) + "\">\n" +
           rows + "</Meta_ExtendedInfo>\n";
}

/// No file of this process can get a byte while this lives: the next best thing to a disk that is full.
class NoGrowth {
public:
    NoGrowth() : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        rlimit limit = old;
        limit.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    NoGrowth(NoGrowth const&) = delete;
    NoGrowth& operator=(NoGrowth const&) = delete;
    ~NoGrowth() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, handler);
    }

private:
    void (*handler)(int);
    rlimit old = {};
};

/// Every test has an embankment and a directory of its own.
class LocTextTest : public embankment::EmbankmentTest {
protected:
    LocTextTest() {
        std::string name = testing::TempDir() + "zo-loctext-XXXXXX";
        directory = ::mkdtemp(name.data());
    }
    ~LocTextTest() override { fs::remove_all(directory); }

    fs::path Path(char const* name) const { return directory / name; }
    /// Merges with no earlier file, or with the one called "earlier.xml", into "out.xml".
    htl::status Merge() const { return zo::MergeExtendedInfoLocTextToFile(L"", Path("out.xml").wstring()); }
    htl::status MergeWithEarlier() const {
        return zo::MergeExtendedInfoLocTextToFile(Path("earlier.xml").wstring(), Path("out.xml").wstring());
    }
    std::string Written() const { return ContentOf(Path("out.xml")); }
    void PutEarlier(TableText const& table) const { Put(Path("earlier.xml"), table.Bytes()); }

    static void Read(TableText const& table) { ASSERT_TRUE(Succeeds(table.Read())); }
    /// Labels for the soils and the water, a description for the soils' cohesion.
    static TableText Table() {
        return TableText()
            .Entry(L"Default", {{L"Category", L"Model"}})
            .Entry(L"WaterTable", {{L"Label", L"Water"}, {L"Description", L"Where the ground is wet"}})
            .Entry(L"Soils", {{L"Label", L"Soils"}})
            .Entry(L"Soils.[].Cohesion", {{L"Description", L"What holds it together"}, {L"ViewExcl", L"data"}})
            .Entry(L"Points", {{L"Style", L"table"}});
    }

    fs::path directory;
};

TEST_F(LocTextTest, WithoutAnEarlierFileTheTablesOwnTextsAreWritten) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    EXPECT_EQ(Written(), Document(3, "  <Entry Tag=\"Soils\" Label=\"Soils\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"Soils.[].Cohesion\" Label=\"\" "
                                     "Description=\"What holds it together\"/>\n"
                                     "  <Entry Tag=\"WaterTable\" Label=\"Water\" "
                                     "Description=\"Where the ground is wet\"/>\n"));
}

TEST_F(LocTextTest, TheTablesOwnTextsAreTheSameOnceItIsCompiled) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    std::string const before = Written();
    EXPECT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_TRUE(Succeeds(Merge()));
    EXPECT_EQ(Written(), before);
}

TEST_F(LocTextTest, EntriesWithoutLabelAndDescriptionAreNotWritten) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    EXPECT_EQ(Written().find("Default"), std::string::npos);
    EXPECT_EQ(Written().find("Points"), std::string::npos);
}

TEST_F(LocTextTest, EarlierTextsTakeThePlaceOfTheTables) {
    Read(Table());
    PutEarlier(TableText()
                   .Entry(L"Soils", {{L"Label", L"B\u00F6den"}})
                   .Entry(L"WaterTable", {{L"Label", L"Wasser"}, {L"Description", L"Wo der Boden nass ist"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), Document(3, "  <Entry Tag=\"Soils\" Label=\"B\u00F6den\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"Soils.[].Cohesion\" Label=\"\" "
                                     "Description=\"What holds it together\"/>\n"
                                     "  <Entry Tag=\"WaterTable\" Label=\"Wasser\" "
                                     "Description=\"Wo der Boden nass ist\"/>\n"));
}

TEST_F(LocTextTest, AnEarlierLabelAloneKeepsTheDescriptionOfTheTable) {
    Read(TableText::WithDefault().Entry(L"Soils", {{L"Label", L"Soils"}, {L"Description", L"Of the dam"}}));
    PutEarlier(TableText().Entry(L"Soils", {{L"Label", L"B\u00F6den"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), Document(1, "  <Entry Tag=\"Soils\" Label=\"B\u00F6den\" Description=\"Of the dam\"/>\n"));
}

TEST_F(LocTextTest, AnEarlierDescriptionAloneKeepsTheLabelOfTheTable) {
    Read(TableText::WithDefault().Entry(L"Soils", {{L"Label", L"Soils"}, {L"Description", L"Of the dam"}}));
    PutEarlier(TableText().Entry(L"Soils", {{L"Label", L""}, {L"Description", L"Des Damms"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), Document(1, "  <Entry Tag=\"Soils\" Label=\"Soils\" Description=\"Des Damms\"/>\n"));
}

TEST_F(LocTextTest, EarlierRowsWhoseTagsAreGoneAreDropped) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    std::string const plain = Written();
    // Before all others, between them, behind them, and one whose entry has no text any more.
    PutEarlier(TableText()
                   .Entry(L"Anchors", {{L"Label", L"Anker"}})
                   .Entry(L"Soils.[]", {{L"Label", L"Boden"}})
                   .Entry(L"Zones", {{L"Label", L"Zonen"}})
                   .Entry(L"Points", {{L"Label", L"Punkte"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), plain);
}

TEST_F(LocTextTest, EarlierRowsWithoutTextsChangeNothing) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    std::string const plain = Written();
    PutEarlier(TableText().Entry(L"Soils").Entry(L"WaterTable", {{L"Label", L""}, {L"Description", L""}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), plain);
}

TEST_F(LocTextTest, EarlierRowsMayStandInAnyOrder) {
    Read(Table());
    PutEarlier(TableText()
                   .Entry(L"WaterTable", {{L"Label", L"Wasser"}})
                   .Entry(L"Soils.[].Cohesion", {{L"Description", L"Was ihn zusammenh\u00E4lt"}})
                   .Entry(L"Soils", {{L"Label", L"B\u00F6den"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), Document(3, "  <Entry Tag=\"Soils\" Label=\"B\u00F6den\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"Soils.[].Cohesion\" Label=\"\" "
                                     "Description=\"Was ihn zusammenh\u00E4lt\"/>\n"
                                     "  <Entry Tag=\"WaterTable\" Label=\"Wasser\" "
                                     "Description=\"Where the ground is wet\"/>\n"));
}

TEST_F(LocTextTest, TagsAreComparedByUnitsOf16Bits) {
    // U+10000 is the pair D800 DC00 and stands before U+FF21. By the number of the character it would stand behind, and
    // the walk would pass the earlier row over.
    Read(TableText::WithDefault().Entry(L"\uFF21", {{L"Label", L"wide"}}).Entry(L"\U00010000", {{L"Label", L"far"}}));
    PutEarlier(TableText().Entry(L"\uFF21", {{L"Label", L"breit"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), Document(2, "  <Entry Tag=\"\U00010000\" Label=\"far\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"\uFF21\" Label=\"breit\" Description=\"\"/>\n"));
}

TEST_F(LocTextTest, TextsComeBackWhateverTheyHold) {
    std::string const document = "<T><R Tag='Soils' Label=' &quot;A&amp;B&quot; &lt;1&gt;&#9;&#10;&#13;\u2265 "
                                 "\U0001F30A '/></T>";
    EXPECT_TRUE(Succeeds(zo::ZOExtendedInfoRead(document.data(), document.data() + document.size())));
    EXPECT_TRUE(Succeeds(Merge()));
    ExtendedInfoStore store;
    EXPECT_TRUE(Succeeds(store.ReadFile(Path("out.xml").wstring())));
    ASSERT_EQ(store.EntryCount(), 1u);
    EXPECT_EQ(store.Entry(0).Label, L" \"A&B\" <1>\t\n\r\u2265 \U0001F30A ");
}

TEST_F(LocTextTest, TextTakenOverFromAnotherEntryIsWrittenToo) {
    Read(TableText::WithDefault()
             .Entry(L"*.Name", {{L"Label", L"Name"}, {L"IsDynamic", L"1"}})
             .Entry(L"Soils.[].Name", {{L"Style", L"text"}}));
    EXPECT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_TRUE(Succeeds(Merge()));
    EXPECT_EQ(Written(), Document(1, "  <Entry Tag=\"*.Name\" Label=\"Name\" Description=\"\"/>\n"));
    EXPECT_EQ(zo::Label(Find("Soils[0].Name")), L"Name");
    EXPECT_TRUE(Succeeds(Merge()));
    EXPECT_EQ(Written(), Document(2, "  <Entry Tag=\"*.Name\" Label=\"Name\" Description=\"\"/>\n"
                                     "  <Entry Tag=\"Soils.[].Name\" Label=\"Name\" Description=\"\"/>\n"));
}

TEST_F(LocTextTest, TheEarlierFileMayBeTheOneThatIsWritten) {
    Read(Table());
    Put(Path("out.xml"), TableText().Entry(L"Soils", {{L"Label", L"B\u00F6den"}}).Bytes());
    std::wstring const file = Path("out.xml").wstring();
    EXPECT_TRUE(Succeeds(zo::MergeExtendedInfoLocTextToFile(file, file)));
    EXPECT_NE(Written().find("Tag=\"Soils\" Label=\"B\u00F6den\""), std::string::npos);
    EXPECT_NE(Written().find("Tag=\"WaterTable\" Label=\"Water\""), std::string::npos);
}

TEST_F(LocTextTest, ATranslationIsReadBackAsTheSecondTable) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    std::string text = Written();
    Replace(text, "Label=\"Soils\"", "Label=\"B\u00F6den\"");
    Replace(text, "What holds it together", "Was ihn zusammenh\u00E4lt");
    Replace(text, "Label=\"Water\"", "Label=\"Wasser\"");
    Put(Path("german.xml"), text);
    EXPECT_TRUE(Succeeds(zo::ZOExtendedInfoRead(Path("german.xml").wstring())));
    EXPECT_TRUE(Succeeds(zo::CompileExtendedInfo()));
    EXPECT_EQ(zo::Label(Find("Soils")), L"B\u00F6den");
    EXPECT_EQ(zo::Label(Find("WaterTable")), L"Wasser");
    EXPECT_EQ(zo::Description(Find("WaterTable")), L"Where the ground is wet");
    EXPECT_EQ(zo::Description(Find("Soils[1].Cohesion")), L"Was ihn zusammenh\u00E4lt");
    EXPECT_EQ(zo::Category(Find("Soils")), L"Model"); // which is no text for translators
}

TEST_F(LocTextTest, WhatWasMergedOnceMergesToItself) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    fs::rename(Path("out.xml"), Path("earlier.xml"));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), ContentOf(Path("earlier.xml")));
}

htl::status NothingFound() { return htl::status::FromText(L"No labels or descriptions found in metadata"); }

TEST_F(LocTextTest, WithoutATableThereIsNothingToWrite) {
    Put(Path("out.xml"), "the old file");
    EXPECT_TRUE(FailsAs(Merge(), NothingFound()));
    EXPECT_EQ(Written(), "the old file");
}

TEST_F(LocTextTest, ATableWithoutTextsHasNothingToWrite) {
    Read(TableText::WithDefault().Entry(L"Soils", {{L"Style", L"table"}}));
    EXPECT_TRUE(FailsAs(Merge(), NothingFound()));
    EXPECT_FALSE(fs::exists(Path("out.xml")));
}

TEST_F(LocTextTest, NothingToWriteIsToldBeforeTheEarlierFileIsRead) {
    Put(Path("earlier.xml"), "<broken");
    EXPECT_TRUE(FailsAs(MergeWithEarlier(), NothingFound()));
}

TEST_F(LocTextTest, AFileThatCanNotBeWrittenIsToldWithTheReason) {
    Read(Table());
    std::wstring const file = Path("missing/out.xml").wstring();
    htl::status const reason = sys::file::XmlFileWrite(file, {});
    ASSERT_TRUE(reason.IsError());
    EXPECT_TRUE(FailsAs(zo::MergeExtendedInfoLocTextToFile(L"", file),
                        htl::status::FromText(L"Could not write to file:" + reason.AsWString())));
    EXPECT_TRUE(FailsAs(zo::MergeExtendedInfoLocTextToFile(L"", directory.wstring()),
                        htl::status::FromText(L"Could not write to file:" +
                                              sys::file::XmlFileWrite(directory.wstring(), {}).AsWString())));
}

TEST_F(LocTextTest, AWriteThatFailsLeavesTheOldFile) {
    Read(Table());
    Put(Path("out.xml"), "the old file");
    htl::status merged;
    {
        NoGrowth const limit;
        merged = Merge();
    }
    EXPECT_TRUE(merged.AsWString().starts_with(L"Could not write to file:Cannot write ")) << merged.AsWString();
    EXPECT_EQ(Written(), "the old file");
    EXPECT_EQ(std::distance(fs::directory_iterator(directory), fs::directory_iterator()), 1);
}

TEST_F(LocTextTest, AnEarlierFileThatCanNotBeReadLeavesTheOldFile) {
    Read(Table());
    Put(Path("out.xml"), "the old file");
    Put(Path("earlier.xml"), "<broken");
    ASSERT_TRUE(MergeWithEarlier().IsError());
    EXPECT_EQ(Written(), "the old file");
}

TEST_F(LocTextTest, AnEarlierFileThatCanNotBeReadIsAFailureOfItsOwn) {
    Read(Table());
    std::wstring const earlier = Path("earlier.xml").wstring();
    EXPECT_TRUE(FailsAs(MergeWithEarlier(), sys::file::XmlFileRead(earlier, {}))); // not there
    for (std::string_view const text : {"", "no document", "<T><R Tag='Soils' Label='x'/>", "<T><R Tag='\xFF'/></T>",
                                        "<!DOCTYPE T [<!ENTITY a 'b'>]><T><R Tag='Soils' Label='&a;'/></T>"}) {
        Put(Path("earlier.xml"), text);
        htl::status const expected = sys::file::XmlFileRead(earlier, {});
        ASSERT_TRUE(expected.IsError()) << text;
        EXPECT_TRUE(FailsAs(MergeWithEarlier(), expected)) << text;
    }
    EXPECT_FALSE(fs::exists(Path("out.xml")));
}

TEST_F(LocTextTest, AnEarlierFileCutOffAnywhereIsRefused) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    std::string const whole = Written();
    std::size_t const end = whole.rfind('>'); // the document is complete with it
    for (std::size_t length = 0; length < end; ++length) {
        Put(Path("earlier.xml"), std::string_view(whole).substr(0, length));
        ASSERT_TRUE(MergeWithEarlier().IsError()) << length;
    }
    EXPECT_EQ(Written(), whole);
}

TEST_F(LocTextTest, AnEarlierFileWithACellThatCanNotBeReadIsRefused) {
    Read(Table());
    TableText const table = TableText().Entry(L"Soils", {{L"Label", L"B\u00F6den"}, {L"Style", L"loud"}});
    PutEarlier(table);
    ExtendedInfoStore store;
    htl::status const expected = table.ReadInto(store);
    ASSERT_TRUE(expected.IsError());
    EXPECT_TRUE(FailsAs(MergeWithEarlier(), expected));
}

TEST_F(LocTextTest, AnEarlierFileWithATagTwiceIsRefused) {
    Read(Table());
    PutEarlier(TableText().Entry(L"Soils", {{L"Label", L"a"}}).Entry(L"Soils", {{L"Label", L"b"}}));
    EXPECT_TRUE(FailsAs(MergeWithEarlier(), htl::status::FromText(L"Duplicate entry {Soils} found!\n")));
}

TEST_F(LocTextTest, AnotherDocumentHasNoTextsToTakeOver) {
    Read(Table());
    EXPECT_TRUE(Succeeds(Merge()));
    std::string const plain = Written();
    Put(Path("earlier.xml"), "<Model><Soil Name='Clay'><Label>x</Label></Soil><Tag>Soils</Tag></Model>");
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), plain);
}

TEST_F(LocTextTest, AnEarlierFileMayHaveVeryManyRows) {
    // Each tag is the beginning of the next ones, and only the last row is of use.
    Read(TableText::WithDefault().Entry(L"Soils", {{L"Label", L"Soils"}}));
    std::string text = "<T n='1000000'>";
    for (int i = 0; i < 100'000; ++i) text += "<R Tag='A" + std::to_string(i) + "' Label='x'/>";
    Put(Path("earlier.xml"), text + "<R Tag='Soils' Label='B\u00F6den'/></T>");
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    EXPECT_EQ(Written(), Document(1, "  <Entry Tag=\"Soils\" Label=\"B\u00F6den\" Description=\"\"/>\n"));
}

TEST_F(LocTextTest, ATableMayHaveVeryManyRows) {
    TableText table = TableText::WithDefault();
    for (int i = 0; i < 100'000; ++i) table.Entry(L"A" + std::to_wstring(i), {{L"Label", L"x"}, {L"IsDynamic", L"1"}});
    Read(table);
    PutEarlier(TableText().Entry(L"A99999", {{L"Label", L"y"}}));
    EXPECT_TRUE(Succeeds(MergeWithEarlier()));
    ExtendedInfoStore store;
    EXPECT_TRUE(Succeeds(store.ReadFile(Path("out.xml").wstring())));
    ASSERT_EQ(store.EntryCount(), 100'000u);
    EXPECT_EQ(store.Entry(store.Find(L"A99998")).Label, L"x");
    EXPECT_EQ(store.Entry(store.Find(L"A99999")).Label, L"y");
}

TEST_F(LocTextTest, TheStoreIsFreeAgainBeforeTheEarlierFileIsRead) {
    Read(Table());
    ASSERT_EQ(::mkfifo(Path("earlier.xml").c_str(), 0600), 0);
    ExtendedInfoStore& store = zo::extinfo::Store();
    // The reader of a pipe waits for its writer, which asks the store first.
    std::thread writer([&] {
        std::ofstream pipe(Path("earlier.xml"));
        sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
        pipe << "<T><R Tag='Soils' Label='" << store.EntryCount() << "'/></T>";
    });
    htl::status const merged = MergeWithEarlier();
    writer.join();
    EXPECT_TRUE(Succeeds(merged));
    EXPECT_NE(Written().find("Tag=\"Soils\" Label=\"5\""), std::string::npos);
}

} // namespace
