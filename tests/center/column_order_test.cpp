// Columns in the order that the user has given them.

#include "tests/center/grid_fixture.h"

namespace vicenter::center {
namespace {

class ColumnOrderTest : public GridTest {
  protected:
    // The account's code and name before the explanation.
    static ColumnOrder Moved() {
        return {1, 5, 6, 2, 3, 4, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21};
    }
};

TEST_F(ColumnOrderTest, IsTheDesignedOneAtFirstAndHoldsEveryColumnOnce) {
    EXPECT_EQ(Grid().Order(), DesignedOrder());
    GridDiary diary(Grid());
    ColumnOrder twice = Moved();
    twice[0] = 2;
    Grid().SetOrder(twice);
    Grid().SetOrder({});
    EXPECT_EQ(Grid().Order(), DesignedOrder());
    Grid().SetOrder(Moved());
    EXPECT_EQ(Grid().Order(), Moved());
}

TEST_F(ColumnOrderTest, ComesBackFromItsText) {
    EXPECT_EQ(ColumnOrderText(Grid()), "");
    Grid().SetOrder(Moved());
    const std::string text = ColumnOrderText(Grid());
    EXPECT_EQ(text.substr(0, 9), "1,5,6,2,3");
    Grid().SetOrder(DesignedOrder());
    ApplyColumnOrder(Grid(), text);
    EXPECT_EQ(Grid().Order(), Moved());
    for (const char* broken : {"", "1,2", "x", "1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1"})
        ApplyColumnOrder(Grid(), broken);
    ApplyColumnOrder(Grid(), text + ",22");
    EXPECT_EQ(Grid().Order(), Moved());
}

TEST_F(ColumnOrderTest, TheProfileKnowsNothingOfIt) {
    const std::string before = ProfileOf(Grid());
    Grid().SetOrder(Moved());
    EXPECT_EQ(ProfileOf(Grid()), before);
}

TEST_F(ColumnOrderTest, BlocksAreCopiedAndPastedAsTheyAreSeen) {
    Grid().SetText(1, column::kNo, "1");
    Grid().SetText(1, column::kExplanation, "text");
    Grid().SetText(1, column::kAccountNumber, "1001");
    Grid().SetText(1, column::kAccountName, "cash");
    Grid().SetOrder(Moved());
    BlockEditing blocks(state_, [] {});
    const auto copied = blocks.Copy(CellSelection(std::vector<CellRange>{{1, 1, 1, 2}, {1, 5, 1, 6}}));
    ASSERT_TRUE(copied.has_value());
    EXPECT_EQ(copied->text, "1\t1001\tcash\ttext\r\n");
    blocks.Paste({2, column::kNo}, *copied);
    EXPECT_EQ(Text(2, column::kAccountNumber), "1001");
    EXPECT_EQ(Text(2, column::kExplanation), "text");
    EXPECT_EQ(Text(2, column::kDirection), "");
}

TEST_F(ColumnOrderTest, WholeRowsAreTheSameWhereverTheColumnsStand) {
    for (int c = 1; c <= 3; ++c)
        Grid().SetText(1, c, c == 3 ? std::string(kDebit) : std::to_string(c));
    BlockEditing blocks(state_, [] {});
    const auto before = blocks.Copy(CellSelection::Rows({{1, 1}}));
    Grid().SetOrder(Moved());
    const auto after = blocks.Copy(CellSelection::Rows({{1, 1}}));
    ASSERT_TRUE(before && after);
    EXPECT_EQ(after->rows, before->rows);
    blocks.Paste({2, column::kNo}, *before);
    EXPECT_EQ(Text(2, column::kDirection), "借");
}

}  // namespace
}  // namespace vicenter::center
