// Tables that nobody would write by hand.
#include "Common/extinfo/ExtendedInfo.h"
#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/kit/kit.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/ViewModel.h"
#include "tests/registry/Rows.h"

#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace dam {
namespace {

using embankment::FailsAs;
using embankment::Succeeds;
using zo::ExtendedInfoEntry;
using zo::ExtendedInfoField;
using zo::ViewTravItem;

htl::status Text(std::wstring const& text) { return htl::status::FromText(text); }

ExtendedInfoEntry Entry(std::wstring tag) {
    ExtendedInfoEntry entry;
    entry.Tag = std::move(tag);
    entry.fields.set(ExtendedInfoField::IsDynamic);
    return entry;
}
ExtendedInfoEntry Entry(std::wstring tag, std::vector<ViewTravItem> list) {
    ExtendedInfoEntry entry = Entry(std::move(tag));
    entry.viewTravList = std::move(list);
    entry.fields.set(ExtendedInfoField::ViewHierarchy);
    return entry;
}
htl::status CompileRows(std::vector<ExtendedInfoEntry> rows) {
    rows.push_back(Entry(L"Default"));
    if (htl::status failure = zo::extinfo::Store().Add(std::move(rows)); failure.IsError()) return failure;
    return zo::CompileExtendedInfo();
}

class CompileHostileTest : public ViewModelTest {};

constexpr std::size_t many = 100000;

TEST_F(CompileHostileTest, AListMayAddManyAliases) {
    constexpr std::size_t aliases = 30000; // rows are dearer than items
    std::vector<ViewTravItem> list;
    for (std::size_t i = 0; i < aliases; ++i) list.push_back({L"T" + std::to_wstring(i), L"Drain.Flow", false, false});
    ASSERT_TRUE(Succeeds(CompileRows({Entry(L"Body", std::move(list))})));
    EXPECT_EQ(ViewChildren(row::Body).size(), aliases + 2);
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileHostileTest, AListMayMoveTheSameNodeAHundredThousandTimes) {
    EXPECT_TRUE(
        FailsAs(CompileRows({Entry(L"Body", std::vector<ViewTravItem>(many, {L"", L"Drain.Flow", true, false}))}),
                Text(L"Body: Duplicate name {Body.Flow}")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,Flow");
    EXPECT_EQ(dam.registry->Tables()->RowCount(), row::count + 1); // the one that found its name free and its tag taken
}

TEST_F(CompileHostileTest, AListMayNameAHundredThousandThingsThatAreNot) {
    EXPECT_TRUE(
        FailsAs(CompileRows({Entry(L"Body", std::vector<ViewTravItem>(many, {L"", L"Weir.Sill", true, false}))}),
                Text(L"Unknown source tag: Weir.Sill")));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height");
}

TEST_F(CompileHostileTest, ManyChildrenMoveFromOneNodeToAnother) {
    rows::OwnRegistry registry;
    constexpr std::size_t children = 20000, cellar = 1, attic = 2;
    registry.AddPlain("Cellar", L"Cellar");
    registry.AddPlain("Attic", L"Attic");
    std::vector<ViewTravItem> backwards; // each is the last of those that are left
    for (std::size_t i = 0; i < children; ++i) {
        std::string const name = "Cellar.S" + std::to_string(i);
        registry.AddPlain(name, L"S" + std::to_wstring(i));
        backwards.push_back({L"", L"Cellar.S" + std::to_wstring(children - 1 - i), true, false});
    }
    registry->OnPostRegistration();
    ASSERT_TRUE(Succeeds(CompileRows({Entry(L"Attic", std::move(backwards))})));
    EXPECT_EQ(ViewChildren(attic).size(), children);
    EXPECT_EQ(ViewChildren(cellar).size(), 0u);
    EXPECT_EQ(ViewChildren(attic).front(), attic + children);
    EXPECT_TRUE(ViewIsSound());
}

TEST_F(CompileHostileTest, ASourceMayClimbAHundredThousandTimes) {
    std::wstring climb;
    for (std::size_t i = 0; i < many; ++i) climb += L"@Parent.";
    EXPECT_TRUE(
        FailsAs(CompileRows({Entry(L"Body", {{L"", climb, true, false}})}), Text(L"Unknown source tag: " + climb)));
}

TEST_F(CompileHostileTest, ASourceMayHaveAHundredThousandComponents) {
    std::wstring deep;
    for (std::size_t i = 0; i < many; ++i) deep += L".A";
    EXPECT_TRUE(
        FailsAs(CompileRows({Entry(L"Body", {{L"", deep, true, false}})}), Text(L"Unknown source tag: " + deep)));
    ViewModel other;
    // Looked for while the application runs: nothing is there, and nothing breaks.
    ASSERT_TRUE(Succeeds(CompileRows({Entry(L"Body", {{L"", deep, true, true}})})));
    EXPECT_EQ(ViewTags(row::Body), L"Crest,Height,A");
}

/// A table of random lists over the dam, of sources that fit, sources that don't, and nonsense.
class RandomTable {
public:
    explicit RandomTable(unsigned seed) : random(seed) {}

    std::vector<ExtendedInfoEntry> Rows() {
        static wchar_t const* const tags[] = {L"HZNData",       L"Body",           L"Body.Crest", L"Drain",
                                              L"Drain.Pitch",   L"Gallery",        L"Points",     L"Points.[]",
                                              L"Points.[].X",   L"*rain.Flow",     L"Gal*",       L"Body.*",
                                              L"dam::DamDrain", L"dam::DamPoint.X"};
        std::set<std::wstring> taken;
        std::vector<ExtendedInfoEntry> rows;
        for (unsigned count = Below(5) + 1; count > 0; --count) {
            std::wstring const tag = Pick(tags);
            if (!taken.insert(tag).second) continue;
            std::vector<ViewTravItem> list;
            for (unsigned items = Below(10) == 0 ? 20 : Below(4); items > 0; --items) list.push_back(Item());
            if (Below(6) == 0) list = {{Below(3) == 0 ? L"X*" : L"", L".*", true, false}};
            rows.push_back(Entry(tag, std::move(list)));
            rows.back().IsDynamic = Below(3) == 0;
        }
        return rows;
    }

private:
    unsigned Below(unsigned end) { return static_cast<unsigned>(random() % end); }
    template <std::size_t n>
    wchar_t const* Pick(wchar_t const* const (&words)[n]) {
        return words[Below(n)];
    }
    ViewTravItem Item() {
        static wchar_t const* const sources[] = {L"Body",
                                                 L"Drain",
                                                 L"Gallery",
                                                 L"Points",
                                                 L"Body.Crest",
                                                 L"Drain.Flow",
                                                 L".Crest",
                                                 L".Pitch",
                                                 L".Drain.Pitch",
                                                 L".Points.[].Name",
                                                 L"@Parent",
                                                 L"@Parent@Parent",
                                                 L"",
                                                 L"Points.[].X",
                                                 L"@Parent.Drain",
                                                 L".",
                                                 L"@Parent.",
                                                 L"HZNData",
                                                 L"Points[1]",
                                                 L".Drain.Other",
                                                 L"@Parent.Gallery.Width",
                                                 L"Body.Drain",
                                                 L"Drain.X_",
                                                 L"Body.Flow"};
        static wchar_t const* const tags[] = {L"X*", L"Crest", L"Other", L"Weir", L"2", L"A[1]"};
        ViewTravItem item;
        item.SourceTag = Pick(sources);
        if (Below(3) == 0) item.SourceTag += L".*";
        if (Below(3) == 0) item.DestTag = Pick(tags);
        item.RemoveFromSource = Below(3) != 0;
        item.IsDynamic = Below(6) == 0;
        return item;
    }

    std::mt19937 random;
};

TEST_F(CompileHostileTest, WhateverATableSaysTheListsOfViewChildrenEnd) {
    for (unsigned seed = 0; seed < 600; ++seed) {
        ViewModel other;
        (void)CompileRows(RandomTable(seed).Rows()); // most of them fail somewhere
        ASSERT_TRUE(ViewIsSound()) << seed;
        // Only children that are walked at run time are renamed.
        for (zo::ViewTravRecord const& record : other.registry->Tables()->viewRecords)
            ASSERT_TRUE(record.renamePattern.empty() ||
                        record.flags == (zo::ViewTravRecord::Splice | zo::ViewTravRecord::WalkChildren))
                << seed;
    }
}

TEST_F(CompileHostileTest, AfterSuccessEveryRowOfTheViewHangsBelowTheRootOrNowhere) {
    unsigned successes = 0;
    for (unsigned seed = 5000; seed < 5600; ++seed) {
        ViewModel other;
        if (CompileRows(RandomTable(seed).Rows()).IsError()) continue;
        ++successes;
        zo::ZORegistryImpl const& tables = *other.registry->Tables();
        for (std::size_t id = 0; id < tables.RowCount(); ++id) {
            std::size_t at = id;
            for (std::size_t steps = 0; at != zo::IZO::npos; at = tables.viewParents[at])
                ASSERT_LE(++steps, tables.RowCount()) << seed << ' ' << tables.names[id];
        }
    }
    EXPECT_GT(successes, 20u);
}

} // namespace
} // namespace dam
