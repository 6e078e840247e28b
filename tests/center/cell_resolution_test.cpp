// Leaving a cell: the whole table, column by column and by the three states of the text.

#include "center/lookups/cell_resolution.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

class CellResolutionTest : public GridTest {
  protected:
    void Put(int gridColumn, const std::string& text) { ASSERT_TRUE(Grid().SetText(1, gridColumn, text)); }
    // Fills every other column, so that what is left alone shows.
    void FillAll() {
        for (int c = 1; c <= kColumnCount; ++c)
            Put(c, "9" + std::to_string(c));
    }
    Texts Row() {
        Texts texts;
        for (int c = 1; c <= kColumnCount; ++c)
            texts.push_back(Text(1, c));
        return texts;
    }
    void Leave(int gridColumn) {
        MasterRecords records;
        ResolveCell(Grid(), {1, gridColumn}, records);
    }
    // Leaves the column with that text in an otherwise filled row and returns the columns that changed.
    std::map<int, std::string> ChangesOnLeaving(int gridColumn, const std::string& text) {
        Grid().Clear(kFirstRowTotal);
        FillAll();
        Grid().RestoreText(1, gridColumn, text);
        const Texts before = Row();
        Leave(gridColumn);
        std::map<int, std::string> changes;
        for (int c = 1; c <= kColumnCount; ++c) {
            if (Text(1, c) != before[static_cast<std::size_t>(c - 1)]) changes[c] = Text(1, c);
        }
        return changes;
    }
    using Changes = std::map<int, std::string>;
};

}  // namespace

TEST_F(CellResolutionTest, AnEmptyTextClearsWhatDependsOnIt) {
    EXPECT_EQ(ChangesOnLeaving(2, ""), Changes{});
    EXPECT_EQ(ChangesOnLeaving(5, ""), (Changes{{4, ""}, {6, ""}}));
    EXPECT_EQ(ChangesOnLeaving(6, ""), (Changes{{4, ""}, {5, ""}}));
    EXPECT_EQ(ChangesOnLeaving(9, ""), (Changes{{8, ""}}));
    EXPECT_EQ(ChangesOnLeaving(11, ""), Changes{});
    EXPECT_EQ(ChangesOnLeaving(13, ""), (Changes{{12, ""}}));
    EXPECT_EQ(ChangesOnLeaving(17, ""), (Changes{{16, ""}}));
}

TEST_F(CellResolutionTest, BlanksCountAsEmpty) {
    EXPECT_EQ(ChangesOnLeaving(5, "  "), (Changes{{4, ""}, {6, ""}}));
    EXPECT_EQ(ChangesOnLeaving(13, " "), (Changes{{12, ""}}));
}

TEST_F(CellResolutionTest, AnAccountCodeBringsIdAndName) {
    EXPECT_EQ(ChangesOnLeaving(5, "1001"), (Changes{{4, "1"}, {6, "库存现金"}}));
    // The code itself stays as it was typed, blanks included.
    EXPECT_EQ(ChangesOnLeaving(5, " 1002 "), (Changes{{4, "2"}, {6, "银行存款"}}));
    EXPECT_EQ(ChangesOnLeaving(5, "0101"), (Changes{{4, "5"}, {6, "零一"}}));
}

TEST_F(CellResolutionTest, ATypedAccountNameIsNotLookedUp) {
    set_.Forget();
    EXPECT_EQ(ChangesOnLeaving(6, "库存现金"), Changes{});
    EXPECT_THAT(set_.Statements(), testing::IsEmpty());
}

TEST_F(CellResolutionTest, ASettlementCodeBecomesItsNameAndId) {
    EXPECT_EQ(ChangesOnLeaving(9, "01"), (Changes{{8, "51"}, {9, "支票"}}));
}

TEST_F(CellResolutionTest, ACurrencyCodeBecomesItsNameAndId) {
    EXPECT_EQ(ChangesOnLeaving(13, "USD"), (Changes{{12, "2"}, {13, "美元"}}));
}

TEST_F(CellResolutionTest, AUnitCodeBecomesItsNameAndItsGroupsId) {
    EXPECT_EQ(ChangesOnLeaving(17, "KG"), (Changes{{16, "7"}, {17, "千克"}}));
}

TEST_F(CellResolutionTest, AnExplanationCodeBecomesItsText) {
    EXPECT_EQ(ChangesOnLeaving(2, "2"), (Changes{{2, "付款"}}));
    // An account that is there is never replaced.
    EXPECT_EQ(ChangesOnLeaving(2, "1"), (Changes{{2, "提现"}}));
}

TEST_F(CellResolutionTest, AnExplanationBringsItsAccountIntoARowWithoutOne) {
    Put(2, "1");
    Leave(2);
    EXPECT_EQ(Text(1, 2), "提现");
    EXPECT_EQ(Text(1, 4), "1");
    EXPECT_EQ(Text(1, 5), "1001");
    EXPECT_EQ(Text(1, 6), "库存现金");
}

TEST_F(CellResolutionTest, AnExplanationWithoutAnAccountBringsNone) {
    Put(2, "2");
    Leave(2);
    EXPECT_EQ(Text(1, 2), "付款");
    EXPECT_EQ(Text(1, 4), "");
    EXPECT_EQ(Text(1, 5), "");
}

TEST_F(CellResolutionTest, OnlyTheAccountCodeDecidesWhetherARowHasAnAccount) {
    Put(2, "1");
    Put(6, "手工名称");
    Leave(2);
    EXPECT_EQ(Text(1, 5), "1001");
    EXPECT_EQ(Text(1, 6), "库存现金");
}

TEST_F(CellResolutionTest, ACodeThatIsNotFoundChangesNothing) {
    for (const int c : {2, 5, 9, 13, 17})
        EXPECT_EQ(ChangesOnLeaving(c, "nowhere"), Changes{}) << c;
}

TEST_F(CellResolutionTest, ACodeWhoseQuestionFailsChangesNothing) {
    set_.Fail("from t_Settle", "connection lost");
    EXPECT_EQ(ChangesOnLeaving(9, "01"), Changes{});
    EXPECT_THAT(Messages(), testing::IsEmpty());
}

TEST_F(CellResolutionTest, ItemsOfSeparatorsAloneBecomeEmpty) {
    EXPECT_EQ(ChangesOnLeaving(11, ",,,"), (Changes{{11, ""}}));
    EXPECT_EQ(ChangesOnLeaving(11, " , "), (Changes{{11, ""}}));
    EXPECT_EQ(ChangesOnLeaving(11, ",C1,"), Changes{});
    EXPECT_EQ(ChangesOnLeaving(11, "C1,D1"), Changes{});
}

TEST_F(CellResolutionTest, NoOtherColumnAsksOrChangesAnything) {
    set_.Forget();
    for (const int c : {1, 3, 4, 7, 8, 10, 12, 14, 15, 16, 18, 19, 20, 21}) {
        EXPECT_EQ(ChangesOnLeaving(c, "1"), Changes{}) << c;
        EXPECT_EQ(ChangesOnLeaving(c, ""), Changes{}) << c;
    }
    EXPECT_THAT(set_.Statements(), testing::IsEmpty());
}

TEST_F(CellResolutionTest, TheTrimmedTextIsAskedForWithApostrophesDoubled) {
    Grid().RestoreText(1, 5, " 10'01 ");
    set_.Forget();
    Leave(5);
    EXPECT_THAT(
        set_.Statements(),
        testing::ElementsAre("select FAccountID,FNumber,FName from t_Account where FNumber = '10''01'"));
}

TEST_F(CellResolutionTest, TheOrderOfEntryDecidesWhichAccountStands) {
    // Account first: the explanation does not replace it.
    Put(5, "1002");
    Leave(5);
    Put(2, "1");
    Leave(2);
    EXPECT_EQ(Text(1, 5), "1002");
    EXPECT_EQ(Text(1, 6), "银行存款");
    // Explanation first: the account typed afterwards replaces the one that came with it.
    Grid().Clear(kFirstRowTotal);
    Put(2, "1");
    Leave(2);
    Put(5, "1002");
    Leave(5);
    EXPECT_EQ(Text(1, 2), "提现");
    EXPECT_EQ(Text(1, 4), "2");
    EXPECT_EQ(Text(1, 6), "银行存款");
}

TEST_F(CellResolutionTest, WithinOneCommandTheSameCodeIsAskedForOnce) {
    MasterRecords records;
    set_.Forget();
    for (int row = 1; row <= 3; ++row) {
        Grid().SetText(row, 5, row == 2 ? "nowhere" : "1001");
        ResolveCell(Grid(), {row, 5}, records);
        ResolveCell(Grid(), {row, 5}, records);
    }
    EXPECT_EQ(set_.Statements().size(), 2U);
    EXPECT_EQ(Text(3, 6), "库存现金");
}

TEST(LookUpColumns, AreFive) {
    for (int c = 1; c <= kColumnCount; ++c) {
        const bool expected = c == 2 || c == 5 || c == 9 || c == 13 || c == 17;
        EXPECT_EQ(IsLookUpColumn(c), expected) << c;
    }
}

}  // namespace vicenter::center
