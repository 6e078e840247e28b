#include "center/frame/layout.h"

#include <gtest/gtest.h>

namespace vicenter::center {

TEST(FrameLayoutInTwips, TheTreeKeepsItsWidthAndBothPartsTakeTheWindowsHeight) {
    const FrameLayout layout = LayoutFrame({12000, 9000}, 2500);
    EXPECT_EQ(layout.tree, (Rectangle{40, 60, 2500, 8900}));
    EXPECT_EQ(layout.gridPanel, (Rectangle{2580, 60, 9380, 8900}));
}

TEST(FrameLayoutInTwips, AMinimisedWindowGivesNoNegativeLengths) {
    const FrameLayout layout = LayoutFrame({0, 0}, 2500);
    EXPECT_EQ(layout.tree, (Rectangle{40, 60, 2500, 0}));
    EXPECT_EQ(layout.gridPanel, (Rectangle{2580, 60, 0, 0}));
    EXPECT_EQ(LayoutGrid({0, 0}, 100, 300), (Rectangle{20, 460, 0, 0}));
}

TEST(FrameLayoutInTwips, TheGridStandsBelowTheNameFieldWithTheSameEdgeAround) {
    EXPECT_EQ(LayoutGrid({9380, 8900}, 100, 300), (Rectangle{20, 460, 9340, 8420}));
}

TEST(FrameLayoutInTwips, TheProgressFrameIsPlacedFromTheWindowsMiddle) {
    EXPECT_EQ(PlaceProgress({12000, 9000}), (Corner{6200, 4000}));
}

TEST(RowHeightsOfAFont, NinePointsKeepTheDesignedHeights) {
    EXPECT_EQ(HeightsForFont(180), (RowHeights{450, 285}));
}

TEST(RowHeightsOfAFont, ATallerLineMakesBothKindsOfRowTallerByTheSame) {
    EXPECT_EQ(HeightsForFont(300), (RowHeights{570, 405}));
}

TEST(RowHeightsOfAFont, ASmallerLineNeverGoesBelowTheDesign) {
    EXPECT_EQ(HeightsForFont(0), (RowHeights{450, 285}));
}

}  // namespace vicenter::center
