// What a filter selects, against a comparison of the path with each of its texts.
#include "Common/xml/WriteFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using zo::xml::impl::WriteFilter;
using Selection = WriteFilter::Selection;

TEST(WriteFilterTest, ATextSelectsWhatItNamesAllAboveAndAllBelow) {
    WriteFilter const filter({L"HZNData.Project.Soils"});
    EXPECT_EQ(filter.SelectionOf(L"HZNData"), Selection::Path);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Project"), Selection::Path);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Project.Soils"), Selection::All);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Project.Soils[2].Name"), Selection::All);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Project.Title"), Selection::Nothing);
}

TEST(WriteFilterTest, BesideASelectedEntryTheOthersKeepTheirPlaces) {
    WriteFilter const filter({L"HZNData.Soils[12]"});
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Soils[12]"), Selection::All);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Soils[1]"), Selection::Place);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Soils[1].Name"), Selection::Nothing);
    EXPECT_EQ(filter.SelectionOf(L"HZNData.Regions[12]"), Selection::Nothing);
}

TEST(WriteFilterTest, NoTextSelectsNothingAndAnEmptyOneEverything) {
    EXPECT_EQ(WriteFilter({}).SelectionOf(L"HZNData"), Selection::Nothing);
    EXPECT_EQ(WriteFilter({L"A", L""}).SelectionOf(L"HZNData.Soils[1]"), Selection::All);
}

/// One text after the other, as the selection is told.
Selection OneByOne(std::vector<std::wstring> const& texts, std::wstring const& path) {
    Selection result = Selection::Nothing;
    for (std::wstring const& text : texts) {
        if (path.starts_with(text)) return Selection::All;
        if (text.starts_with(path)) result = Selection::Path;
    }
    if (result == Selection::Path) return result;
    for (std::wstring const& text : texts) {
        std::size_t const bracket = path.rfind(L'[');
        if (path.ends_with(L']') && text.ends_with(L']') && bracket == text.rfind(L'[') && bracket != path.npos &&
            text.compare(0, bracket, path, 0, bracket) == 0)
            return Selection::Place;
    }
    return result;
}

TEST(WriteFilterTest, SelectsAsAComparisonWithEachText) {
    std::vector<std::wstring> const pieces{L"A", L"B", L"AB", L"[1]", L"[2]", L"[12]", L".", L"]", L"["};
    unsigned state = 7;
    auto const pick = [&state](std::size_t count) {
        state = state * 1664525u + 1013904223u;
        return (state >> 16) % count;
    };
    auto const text = [&] {
        std::wstring result;
        for (std::size_t left = pick(5); left > 0; --left) result += pieces[pick(pieces.size())];
        return result;
    };
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::wstring> texts;
        for (std::size_t left = pick(6); left > 0; --left)
            if (std::wstring fresh = text(); !fresh.empty()) texts.push_back(fresh);
        WriteFilter const filter(texts);
        for (int i = 0; i < 10; ++i) {
            std::wstring const path = L"A" + text();
            ASSERT_EQ(filter.SelectionOf(path), OneByOne(texts, path)) << round;
        }
    }
}

} // namespace
