#include "examples/slope/Aquifer.h"

#include "examples/slope/Document.h"
#include "examples/slope/Text.h"
#include "examples/slope/Tree.h"
#include "tests/example/Support.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using slope::Cell;
using slope::Document;

class LargeTest : public example::FolderTest {};

TEST_F(LargeTest, AquiferOfFullSizeSurvivesUnchanged) {
    slope::Project project;
    project.title = "Aquifer";
    project.aquifer = std::make_unique<slope::Aquifer>(slope::MakeAquifer(slope::largeCellCount));
    Document saved, loaded;
    saved.SetContent(std::move(project));
    htl::status const failure = saved.Save(File("large.xml"));
    ASSERT_FALSE(failure.IsError()) << slope::Message(failure);
    slope::LoadReport const report = loaded.Load(File("large.xml"));
    ASSERT_FALSE(report.failure.IsError()) << slope::Message(report.failure);
    EXPECT_TRUE(report.IsClean());

    ASSERT_TRUE(loaded.Content().aquifer);
    slope::Aquifer const &before = *saved.Content().aquifer, &after = *loaded.Content().aquifer;
    ASSERT_EQ(after.cells.size(), 106257u);
    for (std::size_t i = 0; i < after.cells.size(); ++i) {
        Cell const &a = before.cells[i], &b = after.cells[i];
        ASSERT_TRUE(a.number == b.number && a.top == b.top && a.bottom == b.bottom &&
                    a.conductivity == b.conductivity && a.active == b.active)
            << "cell " << a.number;
    }
    EXPECT_EQ(after.transmissivity, before.transmissivity);
    EXPECT_EQ(after.head, before.head);
    EXPECT_EQ(std::count_if(after.cells.begin(), after.cells.end(), [](Cell const& cell) { return cell.active; }),
              94696);
}

TEST_F(LargeTest, TreesOfASmallerAquiferAgreeNodeByNode) {
    slope::Project project;
    project.aquifer = std::make_unique<slope::Aquifer>(slope::MakeAquifer(2000));
    Document saved, loaded;
    saved.SetContent(std::move(project));
    ASSERT_FALSE(saved.Save(File("small.xml")).IsError());
    EXPECT_TRUE(loaded.Load(File("small.xml")).IsClean());
    slope::Comparison const comparison = slope::CompareTrees(saved, loaded);
    EXPECT_EQ(comparison.differing, 0u);
    EXPECT_GE(comparison.nodes, 2000u * 8); // a cell, its five fields and two values in arrays each
}

TEST_F(LargeTest, CommandComparesAndSaysSo) {
    example::Outcome const outcome = example::Slope({"large", "3000", "--out", folder});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.out << outcome.err;
    EXPECT_TRUE(example::Holds(outcome.out, "Aquifer of 3,000 cells, 2,674 active")); // 2673.6
    EXPECT_TRUE(example::Holds(outcome.out, " 0 differing."));
    EXPECT_TRUE(example::Holds(outcome.out, "Nothing changed."));
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(std::filesystem::exists(File("large.xml")));
}

TEST_F(LargeTest, CommandRefusesACountThatIsNone) {
    for (std::string const count : {"0", "many", "12x", "99999999999"}) {
        example::Outcome const outcome = example::Slope({"large", count});
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_TRUE(example::Holds(outcome.err, "COUNT is a whole number from 1 to 10,000,000."));
    }
}

} // namespace
