// The writer of a table's texts, asked as the document layer asks it.
#include "Common/extinfo/LocTextWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Writer = htl::handle<sys::file::XmlElemWriter>;
using Attributes = std::vector<sys::file::XmlAttribute>;

Attributes AttributesOf(Writer const& writer) {
    auto const [begin, end] = writer->Attributes();
    return {begin, end};
}

class LocTextWriterTest : public testing::Test {
protected:
    void Add(std::wstring tag, std::wstring label, std::wstring description) {
        zo::ExtendedInfoEntry& entry = entries.emplace_back();
        entry.Tag = std::move(tag);
        entry.Label = std::move(label);
        entry.Description = std::move(description);
    }
    Writer Begin() const { return Writer(new zo::XmlExtendedZOWriter(entries)); }

    std::vector<zo::ExtendedInfoEntry> entries;
};

TEST_F(LocTextWriterTest, HeadCountsTheEntries) {
    Add(L"Points", L"Points", L"");
    Add(L"Soils", L"", L"Of the dam");
    Writer const writer = Begin();
    EXPECT_EQ(writer->Tag(), L"Meta_ExtendedInfo");
    EXPECT_EQ(writer->Text(), L"");
    EXPECT_EQ(AttributesOf(writer), (Attributes{{L"Len", L"2"}}));
    EXPECT_FALSE(writer->IsArrayEntry());
}

TEST_F(LocTextWriterTest, RowsAreTheSameWriter) {
    Add(L"Points", L"Points", L"");
    Add(L"Soils", L"", L"Of the dam");
    Writer const writer = Begin();
    EXPECT_EQ(writer->FirstChild(), writer);
    EXPECT_EQ(writer->Tag(), L"Entry");
    EXPECT_EQ(writer->Text(), L"");
    EXPECT_EQ(writer->Next(), writer);
    EXPECT_EQ(writer->Tag(), L"Entry");
}

TEST_F(LocTextWriterTest, RowHasItsTagAndBothTextsInThisOrder) {
    Add(L"Points", L"Points", L"");
    Add(L"Soils", L"", L"Of the dam");
    Writer const writer = Begin();
    writer->FirstChild();
    EXPECT_EQ(AttributesOf(writer), (Attributes{{L"Tag", L"Points"}, {L"Label", L"Points"}, {L"Description", L""}}));
    writer->Next();
    EXPECT_EQ(AttributesOf(writer), (Attributes{{L"Tag", L"Soils"}, {L"Label", L""}, {L"Description", L"Of the dam"}}));
}

TEST_F(LocTextWriterTest, LastRowHasNoNextAndNoRowAChild) {
    Add(L"Soils", L"Soils", L"");
    Writer const writer = Begin();
    writer->FirstChild();
    EXPECT_FALSE(writer->FirstChild());
    EXPECT_FALSE(writer->Next());
}

TEST_F(LocTextWriterTest, HeadHasNoNext) {
    Add(L"Soils", L"Soils", L"");
    EXPECT_FALSE(Begin()->Next());
}

TEST_F(LocTextWriterTest, WithoutEntriesTheHeadHasNoChild) {
    Writer const writer = Begin();
    EXPECT_EQ(AttributesOf(writer), (Attributes{{L"Len", L"0"}}));
    EXPECT_FALSE(writer->FirstChild());
}

} // namespace
