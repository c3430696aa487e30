#include "examples/slope/Aquifer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using slope::Cell;

TEST(AquiferTest, LargeCaseHasItsCountsAndRanges) {
    slope::Aquifer const aquifer = slope::MakeAquifer(slope::largeCellCount);
    auto const& cells = aquifer.cells;
    ASSERT_EQ(cells.size(), 106257u);
    EXPECT_EQ(aquifer.transmissivity.size(), 106257u);
    EXPECT_EQ(aquifer.head.size(), 106257u);
    EXPECT_EQ(std::count_if(cells.begin(), cells.end(), [](Cell const& cell) { return cell.active; }), 94696);
    auto const range = [&](double Cell::*field) {
        auto const [least, most] = std::minmax_element(
            cells.begin(), cells.end(), [&](Cell const& a, Cell const& b) { return a.*field < b.*field; });
        return std::pair{(*least).*field, (*most).*field};
    };
    EXPECT_EQ(range(&Cell::top), (std::pair{-40.6736, 4.57}));
    EXPECT_EQ(range(&Cell::bottom), (std::pair{-42.6101, -11.366}));
    EXPECT_EQ(range(&Cell::conductivity), (std::pair{76.5536, 9189.81}));
    for (std::size_t i = 0; i < cells.size(); ++i) {
        ASSERT_EQ(cells[i].number, static_cast<int>(i) + 1);
        ASSERT_LT(cells[i].bottom, cells[i].top) << i;
    }
}

TEST(AquiferTest, SameCountGivesTheSameCells) {
    slope::Aquifer const a = slope::MakeAquifer(500), b = slope::MakeAquifer(500);
    for (std::size_t i = 0; i < 500; ++i) {
        ASSERT_EQ(a.cells[i].top, b.cells[i].top) << i;
        ASSERT_EQ(a.cells[i].active, b.cells[i].active) << i;
    }
    EXPECT_EQ(a.transmissivity, b.transmissivity);
}

TEST(AquiferTest, AnyCountHasItsShareOfActiveCells) {
    for (std::size_t const count : {std::size_t(1), std::size_t(3), std::size_t(1000)}) {
        slope::Aquifer const aquifer = slope::MakeAquifer(count);
        EXPECT_EQ(static_cast<std::size_t>(std::count_if(aquifer.cells.begin(), aquifer.cells.end(),
                                                         [](Cell const& cell) { return cell.active; })),
                  slope::ActiveCells(count));
    }
    EXPECT_EQ(slope::ActiveCells(1), 1u);      // 0.891
    EXPECT_EQ(slope::ActiveCells(1000), 891u); // 891.2
}

TEST(AquiferTest, TransmissivityIsConductivityTimesThickness) {
    slope::Aquifer const aquifer = slope::MakeAquifer(4);
    // The first cell stands at the lower end of top and bottom.
    EXPECT_DOUBLE_EQ(aquifer.transmissivity[0], aquifer.cells[0].conductivity * (42.6101 - 40.6736));
}

} // namespace
