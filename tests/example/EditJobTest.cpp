// The edit of the main job, and edits in general: staged, committed, taken back, done again.
#include "examples/slope/EditJob.h"

#include "examples/slope/Import.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using example::Holds;
using slope::Document;
using slope::EditJob;
using slope::Message;
using slope::Project;

class EditTest : public example::ProblemTest {
protected:
    /// What a save writes.
    std::string Saved() {
        htl::status const failure = document.Save(File("saved.xml"));
        EXPECT_FALSE(failure.IsError()) << Message(failure);
        return example::ReadFile(File("saved.xml"));
    }
    void Stage(zo::ZOTransaction& transaction, std::string const& name, std::wstring const& text) {
        zo::H const node = transaction.Find(name);
        ASSERT_TRUE(node) << name;
        htl::status const refusal = node->Set(text);
        ASSERT_FALSE(refusal.IsError()) << name << ": " << Message(refusal);
    }

    std::ostringstream out;
};

TEST_F(EditTest, TryingOutShowsWhatIsStagedAndLeavesTheModel) {
    Import("AT1");
    std::string const before = Saved();
    EditJob job(document, File("scratch.xml"), out);
    EXPECT_TRUE(job.TryOut());
    EXPECT_EQ(out.str(), "  Found by  Asked for                     Node                     In the model  Staged\n"
                         "  --------  ----------------------------  -----------------------  ------------  ---------\n"
                         "  name      Materials[0].Cohesion         Materials[0].Cohesion    41.65         44.15\n"
                         "  tag       Materials[1].UnitWeight       Materials[0].UnitWeight  18.82         19.82\n"
                         "  link      Regions[0].Material.Friction  Materials[0].Friction    15            16\n"
                         "  name      Materials[0].Strength         Materials[0].Strength    MohrCoulomb   Undrained\n"
                         "  name      Project.CurrentAnalysis       Project.CurrentAnalysis  (none)        1\n"
                         "  Refused: Materials[0].Friction = 75: 75 is not between 0 and 60.\n"
                         "  The model has not changed: it would be saved as before, byte for byte.\n"
                         "  Rolled back: there is nothing left to commit.\n");
    EXPECT_EQ(Saved(), before);
    EXPECT_FALSE(std::filesystem::exists(File("scratch.xml")));
}

TEST_F(EditTest, CommitShowsWhatChanged) {
    Import("AT1");
    EditJob job(document, File("scratch.xml"), out);
    EXPECT_TRUE(job.Commit());
    EXPECT_EQ(out.str(), "  Changed                  Before       After\n"
                         "  -----------------------  -----------  ---------\n"
                         "  Materials[0].Cohesion    41.65        44.15\n"
                         "  Materials[0].Friction    15           16\n"
                         "  Materials[0].Strength    MohrCoulomb  Undrained\n"
                         "  Materials[0].UnitWeight  18.82        19.82\n"
                         "  Project.CurrentAnalysis  (none)       1\n"
                         "  CurrentAnalysis.FactorOfSafety is Analyses[0].FactorOfSafety now: 1.451\n"
                         "  The model holds all of it.\n");
    slope::Material const& soil = document.Content().materials[0];
    EXPECT_EQ(soil.cohesion, 44.15);
    EXPECT_EQ(soil.friction, 16);
    EXPECT_EQ(soil.strength, slope::StrengthModel::Undrained);
    EXPECT_EQ(document.Content().currentAnalysis, 1);
}

TEST_F(EditTest, UndoAndRedoGiveTheFilesToTheByte) {
    Import("AT1");
    std::string const before = Saved();
    EditJob job(document, File("scratch.xml"), out);
    ASSERT_TRUE(job.Commit());
    std::string const after = Saved();
    out.str({});
    EXPECT_TRUE(job.UndoAndRedo());
    EXPECT_EQ(out.str(), "  Undone: the file would be the one from before the edit, byte for byte (" +
                             slope::Count(before.size(), "byte", "bytes") +
                             ").\n"
                             "  Done again: the file would be the edited one, byte for byte (" +
                             slope::Count(after.size(), "byte", "bytes") + ").\n");
    EXPECT_EQ(Saved(), after);
}

TEST_F(EditTest, JobFailsWhenTheModelWasChangedBehindIt) {
    Import("AT1");
    EditJob job(document, File("scratch.xml"), out);
    document.Content().title = "Another title";
    EXPECT_FALSE(job.TryOut());
    EXPECT_TRUE(Holds(out.str(), "THE MODEL HAS CHANGED before the commit.\n"));
    ASSERT_TRUE(job.Commit());
    EXPECT_FALSE(job.UndoAndRedo());
    EXPECT_TRUE(Holds(out.str(), "UNDONE, BUT THE FILE WOULD BE ANOTHER ONE THAN BEFORE THE EDIT.\n"));
}

TEST_F(EditTest, JobFailsWhereNothingCanBeSaved) {
    Import("AT1");
    EditJob job(document, File("absent/scratch.xml"), out);
    EXPECT_FALSE(job.TryOut());
    EXPECT_TRUE(Holds(out.str(), "  Not saved: Cannot write " + File("absent/scratch.xml") + ": "));
}

TEST_F(EditTest, JobFailsWithoutASoil) {
    EditJob job(document, File("scratch.xml"), out);
    EXPECT_FALSE(job.TryOut());
    EXPECT_FALSE(job.Commit());
}

// 1 lbf/ft2 is 4.4482216152605 N / (0.3048 m)2 = 47.88025898 Pa, 1 lbf/ft3 is 157.0874638 N/m3.
TEST_F(EditTest, SoilInPoundsAndFeetIsConvertedByTheCommit) {
    Import("FK1"); // 600 lbf/ft2, 120 lbf/ft3, 20 degrees
    EXPECT_TRUE(slope::TakeIntoMetric(document.Content().materials[0], out));
    EXPECT_EQ(out.str(), "  Value                    Staged  Unit    Committed  Unit   By definition\n"
                         "  -----------------------  ------  ----  -----------  -----  -------------\n"
                         "  Materials[0].Cohesion       600  psf   28.72815539  kPa      28.72815539\n"
                         "  Materials[0].UnitWeight     120  pcf   18.85049566  kN/m³    18.85049566\n"
                         "  Materials[0].Friction        20  °              20  °                 20\n"
                         "  1 psf is 0.04788025898 kPa and 1 pcf is 0.1570874638 kN/m³: 1 ft is 0.3048 m and 1 lbf is "
                         "4.4482216152605 N.\n"
                         "  The values agree, and the project is still metric.\n");
}

TEST_F(EditTest, StagedValuesOutsideOfTheirRangeAreRefused) {
    Import("AT1");
    auto const transaction = document.Begin();
    htl::status const refusal = transaction->Find("Materials[0].Friction")->Set(L"75");
    EXPECT_EQ(Message(refusal), "75 is not between 0 and 60.");
    ASSERT_FALSE(transaction->Commit("", "").IsError());
    EXPECT_EQ(document.Content().materials[0].friction, 15);
}

TEST_F(EditTest, UndoBringsBackElementsAndLinks) {
    Import("AT2");
    std::string const before = Saved();
    zo::ZOJournal journal;
    {
        auto const transaction = document.Begin();
        Stage(*transaction, "Materials.Len", L"2");
        Stage(*transaction, "Regions[2].Material", L"1");
        ASSERT_FALSE(transaction->Find("Lines")->SetLength(4).IsError());
        Stage(*transaction, "Lines[3].Name", L"base3");
        ASSERT_FALSE(transaction->Commit("", "", &journal).IsError());
    }
    std::string const after = Saved();
    EXPECT_EQ(document.Content().materials.size(), 2u);
    EXPECT_EQ(document.Content().lines.at(3).name, "base3");
    ASSERT_FALSE(document.Undo(journal).IsError());
    EXPECT_EQ(Saved(), before);
    EXPECT_EQ(document.Content().materials.at(2).cohesion, 294);
    ASSERT_FALSE(document.Redo(journal).IsError());
    EXPECT_EQ(Saved(), after);
}

TEST_F(EditTest, UndoBringsBackTheWaterThatAJournalCovers) {
    Import("AT3");
    std::string const before = Saved();
    zo::ZOJournal journal;
    journal.Cover("Water");
    {
        auto const transaction = document.Begin();
        Stage(*transaction, "Project.HasWater", L"false");
        ASSERT_FALSE(transaction->Commit("", "", &journal).IsError());
    }
    EXPECT_FALSE(document.Content().water);
    ASSERT_FALSE(document.Undo(journal).IsError());
    EXPECT_EQ(Saved(), before);
    ASSERT_TRUE(document.Content().water);
    EXPECT_EQ(document.Content().water->points.at(2).y, 23);
}

TEST_F(EditTest, DocumentsAreEditedSideBySide) {
    Import("AT1");
    Document other;
    Project project;
    ASSERT_FALSE(slope::ImportProblem(slope::DefaultDataFolder(), "FK1", project).IsError());
    other.SetContent(std::move(project));
    zo::ZOJournal journal, otherJournal;
    {
        auto const transaction = document.Begin();
        Stage(*transaction, "Materials[0].Cohesion", L"40");
        ASSERT_FALSE(transaction->Commit("", "", &journal).IsError());
    }
    {
        auto const transaction = other.Begin();
        Stage(*transaction, "Materials[0].Cohesion", L"500");
        ASSERT_FALSE(transaction->Commit("", "", &otherJournal).IsError());
    }
    ASSERT_FALSE(document.Undo(journal).IsError());
    EXPECT_EQ(document.Content().materials[0].cohesion, 41.65);
    EXPECT_EQ(other.Content().materials[0].cohesion, 500);
}

} // namespace
