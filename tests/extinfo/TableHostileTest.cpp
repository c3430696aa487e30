// Tables that no sane program writes: read to the end or refused, within the memory that their size justifies.
#include "Common/extinfo/ExtendedInfoStore.h"
#include "tests/fixtures/Embankment.h"
#include "tests/fixtures/TableText.h"

#include "support/xml/XmlFile.h"

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace fixture;
using embankment::FailsAs;
using embankment::Succeeds;
using zo::ExtendedInfoStore;

htl::status ReadInto(ExtendedInfoStore& store, std::string_view document) {
    return store.ReadBytes(document.data(), document.data() + document.size());
}

/// What the document layer says of these bytes.
htl::status DocumentFailure(std::string_view document) {
    return sys::file::XmlStringRead({document.begin(), document.end()}, {});
}

std::string Small() {
    return "<T n='2'><R Tag='Soils' Label='B\xC3\xB6"
           "den' Physics='water,slope'><L n='1'><I SourceTag='Regions' "
           "RemoveFromSource='0'/></L></R><R Tag='Points' Style='table'/></T>";
}

TEST(TableHostileTest, BoundsWithoutBytesAreAnEmptyDocument) {
    ExtendedInfoStore store;
    char const text[] = "<T><R Tag='Soils'/></T>";
    htl::status const empty = DocumentFailure("");
    ASSERT_TRUE(empty.IsError());
    EXPECT_TRUE(FailsAs(store.ReadBytes(nullptr, nullptr), empty));
    EXPECT_TRUE(FailsAs(store.ReadBytes(text, text), empty));
    EXPECT_TRUE(FailsAs(store.ReadBytes(text + 10, text), empty));
    EXPECT_TRUE(FailsAs(store.ReadBytes(nullptr, text), empty));
    EXPECT_TRUE(FailsAs(store.ReadBytes(text, nullptr), empty));
    EXPECT_EQ(store.EntryCount(), 0u);
}

TEST(TableHostileTest, DocumentCutOffAnywhereIsRefusedAndLeavesNothing) {
    std::string const whole = Small();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ExtendedInfoStore store;
        std::string_view const part(whole.data(), length);
        EXPECT_TRUE(FailsAs(ReadInto(store, part), DocumentFailure(part))) << length;
        EXPECT_EQ(store.EntryCount(), 0u) << length;
    }
    ExtendedInfoStore store;
    EXPECT_TRUE(Succeeds(ReadInto(store, whole)));
    EXPECT_EQ(store.EntryCount(), 2u);
}

TEST(TableHostileTest, RandomBytesAreReadOrRefused) {
    std::mt19937 random(61);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(static_cast<std::size_t>(round % 97), ' ');
        for (char& c : bytes) c = static_cast<char>(byte(random));
        ExtendedInfoStore store;
        bool const refused = ReadInto(store, bytes).IsError();
        EXPECT_TRUE(!refused || store.EntryCount() == 0) << round;
    }
}

TEST(TableHostileTest, AnyByteOfATableMayBeAnother) {
    std::mt19937 random(62);
    std::uniform_int_distribution<int> byte(0, 255);
    std::string const whole = Small();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (int round = 0; round < 8; ++round) {
            std::string bytes = whole;
            bytes[at] = static_cast<char>(byte(random));
            ExtendedInfoStore store;
            htl::status const result = ReadInto(store, bytes);
            // Only the failure of equal tags leaves entries, and one byte can't make these tags equal.
            EXPECT_EQ(store.EntryCount() == 0, result.IsError()) << at;
        }
    }
}

TEST(TableHostileTest, HundredThousandRowsAreRead) {
    std::string document = "<T n='100000'>";
    for (int i = 100000; i > 0; --i) document += "<R Tag='Soils." + std::to_string(100000 + i) + "' Label='Soil'/>";
    document += "</T>";
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(ReadInto(store, document)));
    ASSERT_EQ(store.EntryCount(), 100000u);
    EXPECT_EQ(store.Entry(0).Tag, L"Soils.100001");
    EXPECT_EQ(store.Entry(99999).Tag, L"Soils.200000");
    EXPECT_EQ(store.Find(L"Soils.150000"), 49999u);
}

TEST(TableHostileTest, HundredThousandEqualTagsAreToldPairByPair) {
    std::string document = "<T>";
    for (int i = 0; i < 100000; ++i) document += "<R Tag='Soils'/>";
    document += "</T>";
    std::wstring text;
    for (int i = 1; i < 100000; ++i) text += L"Duplicate entry {Soils} found!\n";
    ExtendedInfoStore store;
    // Compared here: a failed comparison would print megabytes.
    EXPECT_TRUE(ReadInto(store, document).AsWString() == text);
    EXPECT_EQ(store.EntryCount(), 100000u);
}

TEST(TableHostileTest, MillionDeclaredRowsGiveNoEntries) {
    ExtendedInfoStore store;
    EXPECT_TRUE(Succeeds(ReadInto(store, "<T n='1000000'/>")));
    EXPECT_EQ(store.EntryCount(), 0u);
}

TEST(TableHostileTest, ListsDeclareAHundredItemsTogetherAndOneEach) {
    std::string document = "<T>";
    for (int i = 0; i < 20000; ++i)
        document += "<R Tag='Soils." + std::to_string(100000 + i) + "'><L n='61'><I SourceTag='Regions'/></L></R>";
    document += "<R Tag='Soils.X'><L n='1000000'/></R><R Tag='Soils.Y'><L n='1'/></R></T>";
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(ReadInto(store, document)));
    ASSERT_EQ(store.EntryCount(), 20002u);
    // The first list took 60 of the hundred and has an item of its own, the second one the other 40.
    EXPECT_EQ(store.Entry(0).viewTravList.size(), 61u);
    EXPECT_EQ(store.Entry(1).viewTravList.size(), 41u);
    EXPECT_EQ(store.Entry(2).viewTravList.size(), 2u);
    EXPECT_EQ(store.Entry(19999).viewTravList.size(), 2u);
    EXPECT_EQ(store.Entry(19999).viewTravList[0].SourceTag, L"Regions");
    EXPECT_EQ(store.Entry(20000).viewTravList.size(), 1u);
    EXPECT_EQ(store.Entry(20001).viewTravList.size(), 1u);
}

TEST(TableHostileTest, HundredThousandListsInOneRowAreOne) {
    std::string document = "<T><R Tag='Soils'>";
    for (int i = 0; i < 100000; ++i) document += "<L><I SourceTag='Regions'/></L>";
    document += "</R></T>";
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(ReadInto(store, document)));
    EXPECT_EQ(store.Entry(0).viewTravList.size(), 1u);
}

TEST(TableHostileTest, ListOfAHundredThousandItemsIsRead) {
    std::string document = "<T><R Tag='Soils'><L n='3'>";
    for (int i = 0; i < 100000; ++i) document += "<I SourceTag='.A" + std::to_string(i) + "'/>";
    document += "</L></R></T>";
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(ReadInto(store, document)));
    ASSERT_EQ(store.Entry(0).viewTravList.size(), 100000u);
    EXPECT_EQ(store.Entry(0).viewTravList[99999].SourceTag, L".A99999");
}

TEST(TableHostileTest, LongCellOfCommasIsRefusedWithTheWholeCell) {
    ExtendedInfoStore store;
    std::wstring const cell(100000, L',');
    EXPECT_TRUE(TableText().Entry(L"Soils", {{L"Mode", cell}}).ReadInto(store).AsWString() ==
                L"Error with entry Soils: Unable to parse \"" + cell + L"\". Expected one of {define,contour,all}");
}

TEST(TableHostileTest, HundredThousandWordsInACellAreRead) {
    std::wstring cell = L"water";
    for (int i = 1; i < 100000; ++i) cell += L",water";
    ExtendedInfoStore store;
    ASSERT_TRUE(Succeeds(TableText().Entry(L"Soils", {{L"Physics", cell}}).ReadInto(store)));
    EXPECT_EQ(store.Entry(0).mask, 0x60407u);
}

TEST(TableHostileTest, DeepDocumentIsRefused) {
    std::string document;
    for (int i = 0; i < 5000; ++i) document += "<R Tag='Soils'>";
    ExtendedInfoStore store;
    EXPECT_TRUE(FailsAs(ReadInto(store, document), DocumentFailure(document)));
    EXPECT_EQ(store.EntryCount(), 0u);
}

} // namespace
