// The keys of the grid as the window hands them over: what is typed and what is pressed.

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

class GridKeys : public CenterTest {
  protected:
    void SetUp() override {
        lines_["0"] = {Line(1, "支付货款"), Line(1, ""), Line(1, "")};
        Open();
        Forget();
    }
    bool Press(char32_t character, int gridColumn) {
        Window().Cells().MoveActiveCell({1, gridColumn});
        return Window().Cells().KeyPress(character);
    }
};

TEST_F(GridKeys, ColumnOneTakesDigitsAndBackspaceOnly) {
    for (char32_t digit = U'0'; digit <= U'9'; ++digit)
        EXPECT_TRUE(Press(digit, column::kNo));
    EXPECT_TRUE(Press(8, column::kNo));
    for (const char32_t other : {U'a', U'-', U'+', U'.', U' ', U'／', U'٣', U'一'})
        EXPECT_FALSE(Press(other, column::kNo));
}

TEST_F(GridKeys, QuotesAndBarsAreRefusedInEveryColumn) {
    for (int c = 1; c <= kColumnCount; ++c) {
        EXPECT_FALSE(Press(U'\'', c)) << c;
        EXPECT_FALSE(Press(U'|', c)) << c;
        EXPECT_TRUE(Press(8, c)) << c;
    }
    EXPECT_TRUE(Press(U'"', column::kExplanation));
    EXPECT_TRUE(Press(U'款', column::kExplanation));
}

TEST_F(GridKeys, WithoutTheRightNothingIsTyped) {
    right_ = false;
    Open();
    EXPECT_FALSE(Press(U'1', column::kNo));
    EXPECT_FALSE(Press(U'a', column::kExplanation));
}

TEST_F(GridKeys, TheSecondPointOfTheKeypadRepeatsTheExplanationAbove) {
    Window().Cells().MoveActiveCell({2, column::kExplanation});
    EXPECT_TRUE(Window().Cells().KeyDown(110, "."));
    EXPECT_EQ(Cell(2, column::kExplanation), "支付货款");
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(GridKeys, OtherPointsOtherTextsAndOtherCellsRepeatNothing) {
    Window().Cells().MoveActiveCell({2, column::kExplanation});
    EXPECT_FALSE(Window().Cells().KeyDown(190, "."));  // the point beside the letters
    EXPECT_FALSE(Window().Cells().KeyDown(110, ""));
    EXPECT_FALSE(Window().Cells().KeyDown(110, "a"));
    Window().Cells().MoveActiveCell({1, column::kExplanation});
    EXPECT_FALSE(Window().Cells().KeyDown(110, "."));
    Window().Cells().MoveActiveCell({2, column::kRemark});
    EXPECT_FALSE(Window().Cells().KeyDown(110, "."));
    EXPECT_EQ(Cell(1, column::kExplanation), "支付货款");
    EXPECT_EQ(Cell(2, column::kExplanation), "");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(GridKeys, EveryOtherKeyIsLeftToTheEditor) {
    for (const int code : {8, 9, 13, 27, 32, 37, 38, 39, 40, 46, 48, 65, 112, 113, 119}) {
        Window().Cells().MoveActiveCell({2, column::kAccountNumber});
        EXPECT_FALSE(Window().Cells().KeyDown(code, "1")) << code;
    }
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(GridKeys, AColumnChosenByItsHeaderNamesNoRows) {
    auto& cells = Window().Cells();
    const int total = Window().Grid().RowTotal();
    const CellSelection column(std::vector<CellRange>{{1, 2, 1, 2}, {1, 5, total, 5}});
    cells.DeleteRows(column);
    cells.InsertRows(column);
    cells.DuplicateRows(column);
    EXPECT_EQ(cells.RowsInUse(), 3);
    EXPECT_EQ(Window().Grid().RowTotal(), total);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Messages(), Texts(3, "所选的是整列，请先选定要插入、删除或复制的行！"));
    // All rows as rows are meant so.
    cells.DeleteRows(CellSelection::Rows({{1, total - 2}}));
    EXPECT_EQ(cells.RowsInUse(), 0);
}

}  // namespace
}  // namespace vicenter::center::test
