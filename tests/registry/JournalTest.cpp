// What a commit changed: recorded, taken back and done again, to the byte of the saved document.
#include "tests/registry/Staging.h"

#include "support/text.h"

#include <cmath>
#include <functional>
#include <ostream>
#include <random>

namespace zo {

/// How GoogleTest shows an entry; it looks for this beside the type.
void PrintTo(ZOJournal::Entry const& entry, std::ostream* out) {
    *out << entry.name << ": {" << str::as_cstring(entry.before) << "} {" << str::as_cstring(entry.after) << "} kind "
         << entry.kind << (entry.existedBefore ? "" : ", not before") << (entry.existsAfter ? "" : ", not after");
}

} // namespace zo

namespace staging {
namespace {

using zo::ZOJournal;
using Entry = ZOJournal::Entry;
namespace ZOError = zo::ZOError;

Entry Value(std::string name, std::wstring before, std::wstring after) {
    return {std::move(name), std::move(before), std::move(after), Entry::Value, true, true};
}
Entry Length(std::string name, std::wstring before, std::wstring after) {
    return {std::move(name), std::move(before), std::move(after), Entry::Length, true, true};
}
Entry Lost(std::string name, std::wstring before) {
    return {std::move(name), std::move(before), L"", Entry::Value, true, false};
}
Entry New(std::string name, std::wstring after) {
    return {std::move(name), L"", std::move(after), Entry::Value, false, true};
}

/// A value whose writing changes more than itself.
struct Switch {
    std::function<void(bool)> write;
    bool on = true;
};
struct SwitchValue {
    Switch* object;

    bool GetData(IZO const*) const { return object->on; }
    htl::status SetData(IZO*, bool const& value) const {
        object->on = value;
        object->write(value);
        return {};
    }
};

class JournalTest : public StagingTest {
protected:
    htl::status CommitTo(ZOJournal& to) const { return transaction->Commit("", "", &to); }
    htl::status Undo() const { return journal.Undo(*embankment.registry); }
    htl::status Redo() const { return journal.Redo(*embankment.registry); }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (Entry const& entry : journal.Entries()) names.push_back(entry.name);
        return names;
    }
    Entry EntryOf(std::string const& name) const {
        for (Entry const& entry : journal.Entries())
            if (entry.name == name) return entry;
        return {};
    }
    /// Commits what is staged; then the document goes back and forth between its bytes before and behind the commit.
    void ExpectUndoAndRedo() {
        std::wstring const before = Document();
        ASSERT_TRUE(Succeeds(CommitTo(journal)));
        std::wstring const after = Document();
        EXPECT_NE(after, before) << "nothing was committed";
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(Succeeds(Undo()));
            ASSERT_EQ(Document(), before);
            ASSERT_TRUE(Succeeds(Redo()));
            ASSERT_EQ(Document(), after);
        }
    }

    ZOJournal journal;
};

// --- what is recorded ---

TEST_F(JournalTest, AChangedValueIsRecordedWithItsTexts) {
    Stage("Soils[0].Cohesion", 40.5);
    EXPECT_TRUE(journal.IsEmpty());
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(journal.Entries(), std::vector<Entry>{Value("Soils[0].Cohesion", L"25", L"40.5")});
    EXPECT_FALSE(journal.IsEmpty());
}

TEST_F(JournalTest, WhatStayedAsItWasIsNotRecorded) {
    Stage("Soils[0].Cohesion", 25.0);
    ASSERT_TRUE(Staged("Soils[1].Name"));
    ASSERT_TRUE(Staged("Regions[1].Points.Len"));
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_TRUE(journal.IsEmpty());
    EXPECT_TRUE(Succeeds(Undo()));
    EXPECT_TRUE(Succeeds(Redo()));
}

TEST_F(JournalTest, AMissingValueIsAnEmptyText) {
    Stage("Points[1].X", missing);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(journal.Entries(), std::vector<Entry>{Value("Points[1].X", L"40", L"")});
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.points[1].x, 40);
    ASSERT_TRUE(Succeeds(Redo()));
    EXPECT_EQ(model.points[1].x, missing);
}

TEST_F(JournalTest, EntriesAreInTheOrderOfNamesWithIndicesAsNumbers) {
    model.regions[0].points.assign(12, 1);
    for (int const i : {11, 2, 0, 10, 1}) Stage("Regions[0].Points[" + std::to_string(i) + "]", 5);
    Stage("Regions[0].Soil", 2);
    Stage("Project.Title", L"Levee");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(Names(), (std::vector<std::string>{"Project.Title", "Regions[0].Points[0]", "Regions[0].Points[1]",
                                                 "Regions[0].Points[2]", "Regions[0].Points[10]",
                                                 "Regions[0].Points[11]", "Regions[0].Soil"}));
}

TEST_F(JournalTest, ALongerArrayIsRecordedBeforeItsElements) {
    StageLength("Regions[0].Points", 5);
    Stage("Regions[0].Points[4]", 9);
    Stage("Regions[0].Points[1]", 8);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    ASSERT_EQ(Names(), (std::vector<std::string>{"Regions[0].Points", "Regions[0].Points[1]", "Regions[0].Points[4]"}));
    EXPECT_EQ(journal.Entries()[0], Length("Regions[0].Points", L"3", L"5"));
    EXPECT_EQ(journal.Entries()[1], Value("Regions[0].Points[1]", L"2", L"8"));
    EXPECT_EQ(journal.Entries()[2], New("Regions[0].Points[4]", L"9"));
}

TEST_F(JournalTest, AShorterArrayIsRecordedWithTheValuesThatItLost) {
    StageLength("Regions[0].Points", 1);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(journal.Entries(),
              (std::vector<Entry>{Length("Regions[0].Points", L"3", L"1"), Lost("Regions[0].Points[1]", L"2"),
                                  Lost("Regions[0].Points[2]", L"3")}));
}

TEST_F(JournalTest, ALengthIsRecordedAsThatOfItsArray) {
    Stage("Regions[0].Points.Len", 4);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(journal.Entries(), std::vector<Entry>{Length("Regions[0].Points", L"3", L"4")});
}

TEST_F(JournalTest, ArraysWithinLostElementsAreRecorded) {
    StageLength("Regions", 1);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    Entry const points = EntryOf("Regions[1].Points");
    EXPECT_EQ(points.kind, Entry::Length);
    EXPECT_EQ(points.before, L"3");
    EXPECT_FALSE(points.existsAfter);
    EXPECT_EQ(EntryOf("Regions[1].Points[2]"), Lost("Regions[1].Points[2]", L"4"));
    EXPECT_EQ(EntryOf("Regions[1].Soil"), Lost("Regions[1].Soil", L"2"));
}

TEST_F(JournalTest, ARefusedValueIsNotRecorded) {
    Stage("Locked", 3.0);
    Stage("Soils[0].Cohesion", 40.0);
    EXPECT_TRUE(FailsAs(CommitTo(journal), locked.refusal));
    EXPECT_EQ(Names(), std::vector<std::string>{"Soils[0].Cohesion"});
}

TEST_F(JournalTest, ACommitReplacesWhatTheJournalHeld) {
    Stage("Soils[0].Cohesion", 40.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    transaction->Rollback();
    Stage("Soils[1].Cohesion", 5.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(Names(), std::vector<std::string>{"Soils[1].Cohesion"});
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_TRUE(journal.IsEmpty()) << "a second commit changes nothing";
}

TEST_F(JournalTest, AnEmptyPlaceToTakeFromEmptiesTheJournal) {
    Stage("Soils[0].Cohesion", 40.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    ASSERT_TRUE(Succeeds(transaction->CommitAs("Tunnels", "Final", "", "", &journal)));
    EXPECT_TRUE(journal.IsEmpty());
}

TEST_F(JournalTest, AClearedJournalTakesNothingBack) {
    Stage("Soils[0].Cohesion", 40.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    journal.Clear();
    EXPECT_TRUE(journal.IsEmpty());
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[0].cohesion, 40);
}

TEST_F(JournalTest, AJournalOutlivesItsTransaction) {
    std::wstring const before = Document();
    Stage("Soils[0].Cohesion", 40.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    transaction.release();
    ZOJournal const kept = journal;
    journal.Clear();
    ASSERT_TRUE(Succeeds(kept.Undo(*embankment.registry)));
    EXPECT_EQ(Document(), before);
}

// --- back and forth ---

TEST_F(JournalTest, ValuesOfEachSortGoBackAndForth) {
    Stage("Project.Title", L"");
    Stage("Project.Units", L"Imperial");
    Stage("Soils[0].Name", L"A \"<&> \u00E9, \u4E2D\nb");
    Stage("Soils[0].Drainage", L"Partial");
    Stage("Soils[0].Color", 4294967295u);
    Stage("Soils[0].Friction", 1.0 / 3);
    Stage("Soils[0].UnitWeight", missing);
    Stage("Soils[0].Anisotropy[1]", 5e-324);
    Stage("Regions[1].Soil", -2147483647 - 1);
    Stage("Site.Survey.Height", -1.7976931348623155e308);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, NumbersComeBackBitForBit) {
    std::mt19937_64 random(11);
    std::vector<double> values;
    for (int i = 0; i < 2000; ++i) {
        double const value = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 1900) - 1000);
        values.push_back(random() % 2 ? value : -value);
    }
    trial.slices = values;
    for (std::size_t i = 0; i < values.size(); ++i) Stage("Trial.Slices[" + std::to_string(i) + "]", 1.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(trial.slices, std::vector<double>(values.size(), 1.0));
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(trial.slices, values);
}

TEST_F(JournalTest, AShorterArrayGoesBackAndForth) {
    StageLength("Soils", 1);
    ExpectUndoAndRedo();
    EXPECT_EQ(model.soils.size(), 1u);
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[2].anisotropy[0], 0);
    EXPECT_EQ(model.soils[1].color, 65280u);
}

TEST_F(JournalTest, AnEmptiedArrayGoesBackAndForth) {
    StageLength("Soils", 0);
    StageLength("Points", 0);
    StageLength("Regions", 0);
    StageLength("WaterTable.Points", 0);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, ALongerArrayGoesBackAndForth) {
    StageLength("Soils", 12);
    Stage("Soils[11].Name", L"Clay");
    Stage("Soils[3].Cohesion", 5.0);
    Stage("Soils[1].Cohesion", 6.0);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, AnArrayThatWasEmptyGoesBackAndForth) {
    model.soils.clear();
    StageLength("Soils", 2);
    Stage("Soils[1].Name", L"Clay");
    Stage("Soils[1].Anisotropy[2]", 0.5);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, AShorterArrayWithChangesBeforeItsEndGoesBackAndForth) {
    Stage("Soils[0].Cohesion", 30.0);
    Stage("Soils[2].Cohesion", 31.0);
    StageLength("Soils", 2);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[2].cohesion, 10.5);
}

TEST_F(JournalTest, ArraysInArraysGoBackAndForth) {
    StageLength("Regions", 4);
    StageLength("Regions[3].Points", 12);
    for (int i = 0; i < 12; ++i) Stage("Regions[3].Points[" + std::to_string(i) + "]", i + 1);
    StageLength("Regions[0].Points", 1);
    Stage("Regions[1].Points[2]", 7);
    StageLength("Regions[2].Points", 2);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, LostArraysInArraysGoBackAndForth) {
    model.regions[1].points = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    model.regions.push_back({3, {}});
    model.regions.push_back({4, {7}});
    Stage("Regions[1].Points[12]", 99);
    StageLength("Regions", 1);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.regions[1].points.size(), 13u);
    EXPECT_TRUE(model.regions[2].points.empty());
}

TEST_F(JournalTest, AStagedLengthGoesBackAndForth) {
    Stage("Soils.Len", 1);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(Undo()));
    transaction->Rollback();
    Stage("Soils.Len", 5);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, AnArrayWithAStaleLengthGoesBackAndForth) {
    // The array is made longer and then cut by the number that was staged before.
    ASSERT_TRUE(Staged("Soils.Len"));
    StageLength("Soils", 5);
    Stage("Soils[4].Cohesion", 8.0);
    Stage("Soils[2].Cohesion", 9.0);
    ExpectUndoAndRedo();
    EXPECT_EQ(model.soils.size(), 3u);
}

TEST_F(JournalTest, AnArrayThatIsCutAndMadeLongAgainGoesBackAndForth) {
    // Assigned as 1 element and then as 3: the two at the end begin anew.
    Stage("Soils.Len", 3);
    StageLength("Soils", 1);
    ExpectUndoAndRedo();
    EXPECT_EQ(model.soils.size(), 3u);
    EXPECT_EQ(model.soils[2].name, L"");
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[2].name, L"Foundation");
}

TEST_F(JournalTest, AnArrayCutByItsLengthAndChangedGoesBackAndForth) {
    // The elements come behind the length in the order of names.
    Stage("Regions[0].Points.Len", 2);
    Stage("Regions[0].Points[0]", 7);
    Stage("Regions[0].Points[2]", 8);
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, AnElementThatIsCutOffAndWrittenAgainKeepsItsFirstText) {
    Stage("Regions[0].Points[2]", 3); // as it was
    StageLength("Regions[0].Points", 1);
    Stage("Regions[0].Points.Len", 5);
    ExpectUndoAndRedo();
    EXPECT_EQ(journal.Entries(),
              (std::vector<Entry>{Length("Regions[0].Points", L"3", L"5"), Value("Regions[0].Points[1]", L"2", L"0")}));
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.regions[0].points, (std::vector<int>{1, 2, 3}));
}

TEST_F(JournalTest, AppendedElementsGoBackAndForth) {
    H value(new zo::ZOAtomicData<int>(IZO::npos, nullptr, meta::AtomicTraits<int>(), 7));
    for (int i = 0; i < 9; ++i) ASSERT_TRUE(Succeeds(Staged("Regions[0].Points")->PushBack(value)));
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, AWholeTextGoesBackAndForth) {
    Stage("Regions[0].Points", L"9,8,7,6,5,4,3,2,1,0,11");
    Stage("Regions[1].Points", L"2");
    Stage("Soils[0].Anisotropy", L"3,2,1");
    ExpectUndoAndRedo();
}

TEST_F(JournalTest, AnInvalidOldValueIsRestored) {
    model.soils[0].cohesion = -5; // refused now
    model.soils[1].drainage = static_cast<embankment::Drainage>(5);
    Stage("Soils[0].Cohesion", 5.0);
    Stage("Soils[1].Drainage", L"Drained");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[0].cohesion, -5);
    EXPECT_EQ(static_cast<int>(model.soils[1].drainage), 5);
    EXPECT_TRUE(FailsAs(zo::Find("Soils[1].Cohesion")->Set(-1.0), embankment::NegativeCohesion()))
        << "values are checked again";
}

TEST_F(JournalTest, AnInvalidValueInALostElementIsRestored) {
    model.soils[2].cohesion = -5;
    StageLength("Soils", 2);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[2].cohesion, -5);
}

TEST_F(JournalTest, ChecksStayOffWhereTheyWereOff) {
    Stage("Soils[0].Cohesion", 5.0);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    zo::TrackingSuspension const suspension(*embankment.registry->Impl());
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.soils[0].cohesion, 25);
    EXPECT_TRUE(Succeeds(zo::Find("Soils[1].Cohesion")->Set(-1.0)));
}

TEST_F(JournalTest, ACommitWithFailuresGoesBackAndForth) {
    std::wstring const before = Document();
    Stage("Locked", 3.0);
    {
        zo::TrackingSuspension const unchecked(*transaction->Impl());
        Stage("Soils[1].Cohesion", -4.0);
    }
    StageLength("Soils", 4);
    Stage("Soils[3].Cohesion", 4.0);
    Stage("Soils[0].Name", L"Clay");
    EXPECT_TRUE(FailsAs(CommitTo(journal), locked.refusal));
    std::wstring const after = Document();
    ASSERT_NE(after, before);
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
    ASSERT_TRUE(Succeeds(Redo()));
    EXPECT_EQ(Document(), after);
}

TEST_F(JournalTest, ACommitThatCouldNotResizeGoesBackAndForth) {
    std::wstring const before = Document();
    StageLength("Soils", 5);
    Stage("Soils[4].Cohesion", 4.0);
    Stage("Soils[0].Cohesion", 30.0);
    {
        H const view = zo::Find("Soils[0]");
        EXPECT_TRUE(FailsAs(CommitTo(journal), ZOError::array_memory_conflict()));
    }
    EXPECT_EQ(Names(), std::vector<std::string>{"Soils[0].Cohesion"});
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
}

TEST_F(JournalTest, ACommitThatCouldNotShortenLosesNothing) {
    std::wstring const before = Document();
    StageLength("Soils", 1);
    {
        H const view = zo::Find("Soils[2].Name");
        EXPECT_TRUE(FailsAs(CommitTo(journal), ZOError::array_memory_conflict()));
    }
    EXPECT_TRUE(journal.IsEmpty());
    EXPECT_EQ(Document(), before);
}

TEST_F(JournalTest, ACommitToAnotherPlaceGoesBackAndForth) {
    std::wstring const before = Document();
    for (char const* const name : {"Name", "Cohesion", "Friction", "Drainage", "Anisotropy[0]", "Anisotropy[2]"})
        ASSERT_TRUE(Staged(std::string("Soils[0].") + name));
    ASSERT_TRUE(Succeeds(transaction->CommitAs("Soils[0]", "Soils[2]", "", "", &journal)));
    std::wstring const after = Document();
    EXPECT_NE(after, before);
    EXPECT_EQ(EntryOf("Soils[2].Cohesion"), Value("Soils[2].Cohesion", L"10.5", L"25"));
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
    ASSERT_TRUE(Succeeds(Redo()));
    EXPECT_EQ(Document(), after);
}

TEST_F(JournalTest, AnArrayCommittedToAnotherPlaceGoesBackAndForth) {
    trial.slices = {1, 2, 3};
    finalTrial.slices = {9, 8, 7, 6, 5};
    for (char const* const name : {"Trial.Slices[0]", "Trial.Slices[1]", "Trial.Slices[2]"}) ASSERT_TRUE(Staged(name));
    ASSERT_TRUE(Succeeds(transaction->CommitAs("Trial", "Final", "", "", &journal)));
    EXPECT_EQ(finalTrial.slices, (std::vector<double>{1, 2, 3}));
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(finalTrial.slices, (std::vector<double>{9, 8, 7, 6, 5}));
    ASSERT_TRUE(Succeeds(Redo()));
    EXPECT_EQ(finalTrial.slices, (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(trial.slices, (std::vector<double>{1, 2, 3}));
}

TEST_F(JournalTest, ConvertedValuesGoBackAndForth) {
    std::wstring const before = Document();
    Stage("Project.Units", 2);
    Stage("Points[1].X", 10.1);
    Stage("Soils[0].Cohesion", 1000.0 / 3);
    StageLength("Points", 6);
    Stage("Points[5].Y", 0.7);
    ASSERT_TRUE(Succeeds(transaction->Commit("Project.Units", "Project.Units", &journal)));
    std::wstring const after = Document();
    EXPECT_NEAR(model.points[1].x, 3.07848, 1e-12);
    double const stored = model.points[1].x;
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
    ASSERT_TRUE(Succeeds(Redo()));
    EXPECT_EQ(Document(), after);
    EXPECT_EQ(model.points[1].x, stored) << "bit for bit, and not converted again";
}

// --- branches that come and go ---

class SwitchTest : public JournalTest {
protected:
    /// `name` decides whether there is a water table; without one its data are gone.
    void AddSwitch(std::string const& name) {
        wet.write = [this](bool on) {
            if (!on) model.waterTable = {};
            embankment.ShowWaterTable(on);
        };
        embankment.Row(name,
                       H(new zo::ZOAtomicCustom<SwitchValue, zo::ZOAccessDataVMT<bool>>(
                           IZO::npos, nullptr, meta::AtomicTraits<bool>(), SwitchValue{&wet})),
                       {MetaPersistTraits::No, str::as_wstring(name)}, meta::AtomicTraits<bool>());
        embankment.registry->OnPostRegistration();
    }
    ~SwitchTest() override {
        wet.write = [](bool) {};
    }

    Switch wet;
};

TEST_F(SwitchTest, ABranchThatGoesAwayComesBackWithItsValues) {
    AddSwitch("HasWater");
    journal.Cover("WaterTable");
    Stage("HasWater", false);
    ExpectUndoAndRedo();
    EXPECT_FALSE(zo::Find("WaterTable"));
    ASSERT_TRUE(Succeeds(Undo()));
    ASSERT_EQ(model.waterTable.points.size(), 2u);
    EXPECT_EQ(model.waterTable.points[1].y, 4);
    EXPECT_EQ(model.waterTable.unitWeight, 9.81);
}

TEST_F(SwitchTest, ASwitchWhoseNameComesLateIsWrittenBackToo) {
    AddSwitch("Wet"); // behind "WaterTable"
    journal.Cover("WaterTable");
    Stage("Wet", false);
    ExpectUndoAndRedo();
}

TEST_F(SwitchTest, ABranchThatComesGoesAgain) {
    AddSwitch("HasWater");
    ASSERT_TRUE(Succeeds(zo::Find("HasWater")->Set(false)));
    wet.write = [this](bool on) {
        model.waterTable = on ? embankment::WaterTable{10, {{1, 2}, {3, 4}, {5, 6}}} : embankment::WaterTable{};
        embankment.ShowWaterTable(on);
    };
    journal.Cover("WaterTable");
    Stage("HasWater", true);
    ExpectUndoAndRedo();
    EXPECT_EQ(EntryOf("WaterTable.UnitWeight").after, L"10");
    EXPECT_FALSE(EntryOf("WaterTable.UnitWeight").existedBefore);
}

TEST_F(SwitchTest, WithoutCoverTheValuesOfTheBranchAreNotKnown) {
    AddSwitch("HasWater");
    Stage("HasWater", false);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(Names(), std::vector<std::string>{"HasWater"});
}

TEST_F(SwitchTest, ValuesStagedInABranchThatGoesAwayAreNoFailure) {
    AddSwitch("HasWater");
    journal.Cover("WaterTable");
    Stage("WaterTable.UnitWeight", 10.0);
    Stage("WaterTable.Points[0].X", 1.0);
    Stage("HasWater", false);
    ExpectUndoAndRedo();
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.waterTable.unitWeight, 9.81);
}

TEST_F(SwitchTest, WhatASetterChangesIsRecordedWhereItIsCovered) {
    AddSwitch("Doubled");
    wet.write = [this](bool) {
        for (embankment::Soil& soil : model.soils) soil.cohesion *= 2;
        model.soils.push_back({L"Fill"});
    };
    std::wstring const before = Document();
    journal.Cover("Soils");
    Stage("Doubled", false);
    Stage("Project.Title", L"Levee");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(EntryOf("Soils[0].Cohesion"), Value("Soils[0].Cohesion", L"25", L"50"));
    EXPECT_EQ(EntryOf("Soils"), Length("Soils", L"3", L"4"));
    EXPECT_EQ(EntryOf("Soils[3].Name"), New("Soils[3].Name", L"Fill"));
    EXPECT_EQ(EntryOf("Project.Title"), Value("Project.Title", L"Tailings dam", L"Levee"));
    wet.write = [](bool) {};
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
}

TEST_F(SwitchTest, AnAliasCoversWhatItLedToBeforeTheCommit) {
    AddSwitch("Doubled");
    ASSERT_TRUE(embankment.registry->AssociateAlias("Current", "Soils[0]"));
    ASSERT_TRUE(embankment.registry->AssociateAlias("Chosen", "Current"));
    embankment.registry->InvalidateMemory("Current");
    embankment.registry->InvalidateMemory("Chosen");
    wet.write = [this](bool) { model.soils[0].cohesion *= 2; };
    std::wstring const before = Document();
    journal.Cover("Chosen");
    Stage("Doubled", false);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(EntryOf("Soils[0].Cohesion"), Value("Soils[0].Cohesion", L"25", L"50"));
    wet.write = [](bool) {};
    ASSERT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
}

TEST_F(JournalTest, AnAliasToNothingCoversNothing) {
    ASSERT_TRUE(Succeeds(embankment.registry->Insert("Lost", H(new rows::OtherName("Tunnels", true)))));
    ASSERT_TRUE(Succeeds(embankment.registry->Insert("Round", H(new rows::OtherName("Round", true)))));
    journal.Cover("Lost");
    journal.Cover("Round");
    Stage("Soils[0].Cohesion", 40.0);
    ExpectUndoAndRedo();
    EXPECT_EQ(Names(), std::vector<std::string>{"Soils[0].Cohesion"});
}

TEST_F(JournalTest, CoveringEverythingChangesNothingElse) {
    journal.Cover("HZNData");
    journal.Cover("Soils");
    journal.Cover("Tunnels");
    journal.Cover("");
    Stage("Soils[0].Cohesion", 40.0);
    StageLength("Regions", 1);
    ExpectUndoAndRedo();
    EXPECT_EQ(EntryOf("Soils[0].Cohesion"), Value("Soils[0].Cohesion", L"25", L"40"));
}

TEST_F(JournalTest, CoversLastFromCommitToCommit) {
    journal.Cover("Soils");
    Stage("Project.Title", L"Levee");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    EXPECT_EQ(Names(), std::vector<std::string>{"Project.Title"});
    journal.Clear();
    transaction->Rollback();
    StageLength("Soils", 2);
    ExpectUndoAndRedo();
}

// --- what stands in the way ---

TEST_F(JournalTest, UndoingALongerArrayWaitsForItsViews) {
    std::wstring const before = Document();
    StageLength("Soils", 5);
    Stage("Soils[4].Cohesion", 8.0);
    Stage("Project.Title", L"Levee");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    {
        H const view = zo::Find("Soils[0].Cohesion");
        EXPECT_TRUE(FailsAs(Undo(), ZOError::array_memory_conflict()));
        EXPECT_EQ(model.soils.size(), 5u);
        EXPECT_EQ(model.project.title, L"Tailings dam") << "the others are written back";
        EXPECT_EQ(TextOf(view), L"25");
    }
    EXPECT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
}

TEST_F(JournalTest, UndoingAShorterArrayWaitsForItsViews) {
    std::wstring const before = Document();
    StageLength("Soils", 1);
    StageLength("Regions[0].Points", 1);
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    std::wstring const after = Document();
    {
        H const soil = zo::Find("Soils[0].Cohesion"), corner = zo::Find("Regions[0].Points[0]");
        EXPECT_TRUE(FailsAs(Undo(), ZOError::array_memory_conflict()));
        EXPECT_EQ(Document(), after);
    }
    EXPECT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(Document(), before);
}

TEST_F(JournalTest, AValueWhoseBranchIsGoneIsReported) {
    Stage("WaterTable.UnitWeight", 10.0);
    Stage("Project.Title", L"Levee");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    embankment.ShowWaterTable(false);
    EXPECT_TRUE(FailsAs(Undo(), ZOError::not_found("WaterTable.UnitWeight")));
    EXPECT_EQ(model.project.title, L"Tailings dam");
    EXPECT_EQ(model.waterTable.unitWeight, 10);
    embankment.ShowWaterTable(true);
    EXPECT_TRUE(Succeeds(Undo()));
    EXPECT_EQ(model.waterTable.unitWeight, 9.81);
}

TEST_F(JournalTest, AValueThatIsRefusedByItsObjectIsReported) {
    Stage("Level", 3.0);
    Stage("Project.Title", L"Levee");
    ASSERT_TRUE(Succeeds(CommitTo(journal)));
    level.refusal = htl::status::FromText(L"The gauge is full.");
    EXPECT_TRUE(FailsAs(Undo(), level.refusal));
    EXPECT_EQ(level.value, 3);
    EXPECT_EQ(model.project.title, L"Tailings dam");
}

TEST_F(JournalTest, AJournalOfANestedCommitIsTakenBackThere) {
    Stage("Soils[0].Cohesion", 40.0);
    Transaction const nested = transaction->CreateTransaction();
    ASSERT_TRUE(Succeeds(nested->Find("Soils[0].Cohesion")->Set(41.0)));
    ASSERT_TRUE(Succeeds(nested->Find("Soils")->SetLength(4)));
    ASSERT_TRUE(Succeeds(nested->Find("Soils[3].Name")->Set(L"Fill")));
    ASSERT_TRUE(Succeeds(nested->Commit("", "", &journal)));
    EXPECT_EQ(TextOf(Staged("Soils[3].Name")), L"Fill");
    ASSERT_TRUE(Succeeds(journal.Undo(*transaction)));
    EXPECT_EQ(TextOf(Staged("Soils[0].Cohesion")), L"40");
    EXPECT_EQ(Staged("Soils")->Length(), 3u);
    ASSERT_TRUE(Succeeds(journal.Redo(*transaction)));
    EXPECT_EQ(TextOf(Staged("Soils[3].Name")), L"Fill");
    EXPECT_TRUE(Succeeds(Commit()));
    ASSERT_EQ(model.soils.size(), 4u);
    EXPECT_EQ(model.soils[3].name, L"Fill");
    EXPECT_EQ(model.soils[0].cohesion, 41);
}

TEST_F(JournalTest, ANestedCommitThatShortensAnEndlessArrayEndsAndGoesBackAndForth) {
    // A staged array takes any length; only what was staged in it has values.
    constexpr std::size_t endless = 1'000'000'000'000'000;
    std::string const far = "Regions[" + std::to_string(endless - 1) + "].Points";
    for (bool const covers : {false, true}) {
        transaction->Rollback();
        StageLength("Regions", endless);
        StageLength(far, endless);
        Stage(far + "[77]", 7);
        Transaction const nested = transaction->CreateTransaction();
        ASSERT_TRUE(Succeeds(nested->Find("Regions")->SetLength(1)));
        ZOJournal kept;
        if (covers) kept.Cover("Regions");
        ASSERT_TRUE(Succeeds(nested->Commit("", "", &kept)));
        EXPECT_EQ(Staged("Regions")->Length(), 1u);
        EXPECT_EQ(kept.Entries().front(), Length("Regions", std::to_wstring(endless), L"1"));
        ASSERT_TRUE(Succeeds(Staged(far)->SetLength(0)));
        ASSERT_TRUE(Succeeds(Staged(far + "[77]")->Set(0)));
        ASSERT_TRUE(Succeeds(kept.Undo(*transaction)));
        EXPECT_EQ(Staged("Regions")->Length(), endless);
        EXPECT_EQ(Staged(far)->Length(), endless);
        EXPECT_EQ(TextOf(Staged(far + "[77]")), L"7");
        EXPECT_EQ(TextOf(Staged("Regions[1].Points[0]")), L"1");
        ASSERT_TRUE(Succeeds(kept.Redo(*transaction)));
        EXPECT_EQ(Staged("Regions")->Length(), 1u);
    }
}

// --- many commits ---

TEST_F(JournalTest, CommitsAreTakenBackInReverseOrder) {
    std::vector<ZOJournal> stack;
    std::vector<std::wstring> documents{Document()};
    auto const commit = [&] {
        stack.emplace_back();
        ASSERT_TRUE(Succeeds(CommitTo(stack.back())));
        transaction->Rollback();
        documents.push_back(Document());
    };
    Stage("Soils[2].Cohesion", 11.0);
    commit();
    StageLength("Soils", 2);
    commit();
    StageLength("Soils", 4);
    Stage("Soils[2].Name", L"Fill");
    commit();
    Stage("Soils[2].Cohesion", 12.0);
    StageLength("Regions", 0);
    commit();
    for (std::size_t i = stack.size(); i-- > 0;) {
        ASSERT_TRUE(Succeeds(stack[i].Undo(*embankment.registry))) << i;
        EXPECT_EQ(Document(), documents[i]) << i;
    }
    for (std::size_t i = 0; i < stack.size(); ++i) {
        ASSERT_TRUE(Succeeds(stack[i].Redo(*embankment.registry))) << i;
        EXPECT_EQ(Document(), documents[i + 1]) << i;
    }
}

class RandomEditsTest : public JournalTest, public testing::WithParamInterface<unsigned> {
protected:
    RandomEditsTest() : random(GetParam()) {}

    std::size_t Below(std::size_t bound) { return random() % bound; }
    /// Stages one edit that a user might make; what leads nowhere is left.
    void Edit() {
        std::string const soil = "Soils[" + std::to_string(Below(14)) + "]";
        std::string const region = "Regions[" + std::to_string(Below(4)) + "]";
        std::string const corner = region + ".Points[" + std::to_string(Below(14)) + "]";
        std::string const point = "Points[" + std::to_string(Below(14)) + "]";
        H node;
        switch (Below(12)) {
        case 0: (node = Staged("Soils")) ? (void)node->SetLength(Below(14)) : void(); break;
        case 1: (node = Staged("Regions")) ? (void)node->SetLength(Below(4)) : void(); break;
        case 2: (node = Staged(region + ".Points")) ? (void)node->SetLength(Below(14)) : void(); break;
        case 3: (node = Staged("Points")) ? (void)node->SetLength(Below(14)) : void(); break;
        case 4: (node = Staged("Soils.Len")) ? (void)node->Set(Below(14)) : void(); break;
        case 5: (node = Staged(region + ".Points.Len")) ? (void)node->Set(Below(14)) : void(); break;
        case 6: (node = Staged(soil + ".Name")) ? (void)node->Set(L"S" + std::to_wstring(Below(100))) : void(); break;
        case 7:
            (node = Staged(soil + ".Anisotropy[1]")) ? (void)node->Set(static_cast<double>(Below(9))) : void();
            break;
        case 8: (node = Staged(corner)) ? (void)node->Set(Below(1000)) : void(); break;
        case 9: (node = Staged(point + ".X")) ? (void)node->Set(static_cast<double>(Below(100)) / 8) : void(); break;
        case 10: (node = Staged(region + ".Points")) ? (void)node->Set(L"5,,7,8") : void(); break;
        default: (node = Staged(region + ".Soil")) ? (void)node->Set(Below(3)) : void(); break;
        }
    }

    std::mt19937 random;
};

TEST_P(RandomEditsTest, AreTakenBackAndDoneAgain) {
    std::vector<ZOJournal> stack;
    std::vector<std::wstring> documents{Document()};
    for (int i = 0; i < 25; ++i) {
        for (std::size_t edits = 1 + Below(8); edits > 0; --edits) Edit();
        stack.emplace_back();
        ASSERT_TRUE(Succeeds(CommitTo(stack.back())));
        transaction->Rollback();
        documents.push_back(Document());
    }
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = stack.size(); i-- > 0;) {
            ASSERT_TRUE(Succeeds(stack[i].Undo(*embankment.registry))) << i;
            ASSERT_EQ(Document(), documents[i]) << i;
        }
        for (std::size_t i = 0; i < stack.size(); ++i) {
            ASSERT_TRUE(Succeeds(stack[i].Redo(*embankment.registry))) << i;
            ASSERT_EQ(Document(), documents[i + 1]) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEditsTest, testing::Range(1u, 9u));

} // namespace
} // namespace staging
