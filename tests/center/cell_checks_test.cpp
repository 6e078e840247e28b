#include "center/editing/cell_checks.h"

#include "center/editing/fault_text.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

class CellChecksTest : public GridTest {
  protected:
    // Marks row 1 afresh.
    void Mark() {
        CellChecks checks;
        MarkRow(Grid(), 1, checks);
    }
    std::vector<int> RedColumns() {
        std::vector<int> red;
        for (int c = 1; c <= kColumnCount; ++c) {
            if (Color(1, c) == color::kRed) red.push_back(c);
        }
        return red;
    }
    void Put(int gridColumn, const std::string& text) { Grid().SetText(1, gridColumn, text); }
};

}  // namespace

TEST_F(CellChecksTest, ARowWhoseCodesAllResolveIsBlack) {
    Put(5, "1002");
    Put(9, "支票");
    Put(13, "美元");
    Mark();
    EXPECT_THAT(RedColumns(), testing::IsEmpty());
}

TEST_F(CellChecksTest, AnAccountThatIsGoneIsRedByCodeAndName) {
    Put(5, "9999");
    Put(6, "旧科目");
    Mark();
    EXPECT_THAT(RedColumns(), testing::ElementsAre(5, 6));
}

TEST_F(CellChecksTest, EachFailedCheckReddensItsOwnCells) {
    Put(5, "1001");
    Put(9, "支票");   // no bank account
    Put(13, "美元");  // kept in currency 1
    Put(17, "千克");  // no unit group
    Put(11, "C1");    // no items
    Mark();
    EXPECT_THAT(RedColumns(), testing::ElementsAre(9, 11, 13, 17));
    EXPECT_EQ(Grid().FaultyCheck(1, 9), 2);
    EXPECT_EQ(Grid().FaultyCheck(1, 13), 3);
    EXPECT_EQ(Grid().FaultyCheck(1, 17), 4);
    EXPECT_EQ(Grid().FaultyCheck(1, 11), 5);
}

TEST_F(CellChecksTest, MarkingARowAgainTakesOldRedAway) {
    Put(5, "9999");
    Put(9, "支票");
    Mark();
    Put(5, "1002");
    Mark();
    EXPECT_THAT(RedColumns(), testing::IsEmpty());
    EXPECT_EQ(Grid().FaultyCheck(1, 5), 0);
}

TEST_F(CellChecksTest, MarkingIsOneRepaintAndLeavesRedrawingAsItWas) {
    Put(5, "9999");
    GridDiary diary(Grid());
    Mark();
    EXPECT_THAT(diary.Take(), testing::ElementsAre("looks 1,5..1,6"));
    EXPECT_TRUE(Grid().ReDraw());
    Grid().SetReDraw(false);
    Mark();
    EXPECT_FALSE(Grid().ReDraw());
}

TEST_F(CellChecksTest, ItemsAreCheckedPieceByPiece) {
    Put(5, "1122");
    for (const auto& [items, valid] : std::vector<std::pair<std::string, bool>>{{"C1,D1", true},
                                                                                {"C1,", true},
                                                                                {",D1", true},
                                                                                {",", true},
                                                                                {"C1", false},
                                                                                {"C9,D1", false},
                                                                                {"C1,D9", false}}) {
        Put(11, items);
        Mark();
        EXPECT_EQ(Color(1, 11) == color::kBlack, valid) << items;
    }
}

TEST_F(CellChecksTest, AnErrorInsideACheckCountsAsAFault) {
    set_.Fail("select * from t_Account", "connection lost");
    Put(5, "1001");
    Mark();
    EXPECT_THAT(RedColumns(), testing::ElementsAre(5, 6));
    EXPECT_THAT(Messages(), testing::IsEmpty());
}

TEST_F(CellChecksTest, TheSameQuestionIsAskedOnceAndADifferentOneAnew) {
    CellChecks checks;
    Grid().SetText(1, 5, "1001");
    Grid().SetText(2, 5, "1001");
    Grid().SetText(3, 5, "1002");
    for (int row = 1; row <= 3; ++row)
        EXPECT_TRUE(checks.IsValid(Grid(), row, 1));
    EXPECT_EQ(set_.Statements().size(), 2U);
    // The settlement's answer depends on the account beside it.
    for (int row = 1; row <= 3; ++row)
        Grid().SetText(row, 9, "支票");
    EXPECT_FALSE(checks.IsValid(Grid(), 2, 2));
    EXPECT_TRUE(checks.IsValid(Grid(), 3, 2));
}

TEST_F(CellChecksTest, WhereTheCodeEndsAndTheItemsBeginMakesADifference) {
    set_.Respond("select a.FItemClassID,b.FSQLTableName", [](const std::string& sql) {
        const bool known = sql.find("FNumber = '1122'") != std::string::npos;
        return known ? Rows({"FItemClassID", "FSQLTableName"}, {{Variant(1), "t_Organization"}})
                     : Rows({"FItemClassID", "FSQLTableName"});
    });
    set_.Answer("from t_Organization where fnumber = '1'", Rows({"FItemID"}, {{Variant(101)}}));
    Grid().SetText(1, 5, "1122");
    Grid().SetText(1, 11, "1");
    Grid().SetText(2, 5, "112");
    Grid().SetText(2, 11, "21");
    CellChecks checks;
    EXPECT_TRUE(checks.IsValid(Grid(), 1, 5));
    EXPECT_FALSE(checks.IsValid(Grid(), 2, 5)) << "1122 and 1 are not 112 and 21";
}

TEST_F(CellChecksTest, SeparatorsAloneAreNothingInTheItemsOnly) {
    for (const int c : {9, 13, 17, 11}) {
        Grid().SetText(1, 5, "1002");
        Grid().SetText(1, c, ",,");
        CellChecks checks;
        const int check = CheckOfColumn(c);
        EXPECT_EQ(checks.IsValid(Grid(), 1, check), check == 5) << c;
    }
}

TEST_F(CellChecksTest, OneAccountsCellsAreEachAQuestionOfTheirOwn) {
    CellChecks checks;
    struct Case {
        const char* account;
        int column;
        const char* sound;
        const char* faulty;
        int check;
    };
    for (const Case& each : {Case{"1002", 9, "支票", "本票", 2}, Case{"1002", 13, "美元", "日元", 3},
                             Case{"1403", 17, "千克", "吨", 4}, Case{"1122", 11, "C1,D1", "C1,D9", 5}}) {
        for (int row = 1; row <= 3; ++row)
            Grid().SetText(row, 5, each.account);
        Grid().SetText(1, each.column, each.sound);
        Grid().SetText(2, each.column, each.faulty);
        Grid().SetText(3, each.column, each.sound);
        EXPECT_TRUE(checks.IsValid(Grid(), 1, each.check)) << each.check;
        EXPECT_FALSE(checks.IsValid(Grid(), 2, each.check)) << each.check;
        set_.Forget();
        EXPECT_TRUE(checks.IsValid(Grid(), 3, each.check)) << each.check;
        EXPECT_TRUE(set_.Statements().empty()) << each.check;
    }
}

TEST(CheckColumns, EveryCheckHasItsColumns) {
    EXPECT_EQ(CheckOfColumn(5), 1);
    EXPECT_EQ(CheckOfColumn(6), 1);
    EXPECT_EQ(CheckOfColumn(9), 2);
    EXPECT_EQ(CheckOfColumn(13), 3);
    EXPECT_EQ(CheckOfColumn(17), 4);
    EXPECT_EQ(CheckOfColumn(11), 5);
    for (const int c : {1, 2, 3, 4, 7, 8, 10, 12, 14, 15, 16, 18, 19, 20, 21})
        EXPECT_EQ(CheckOfColumn(c), 0) << c;
}

// --- why a cell is red

TEST_F(CellChecksTest, ASoundCellHasNothingToExplain) {
    Put(5, "1001");
    Mark();
    set_.Forget();
    EXPECT_EQ(FaultText(Grid(), {1, 5}), "");
    EXPECT_EQ(FaultText(Grid(), {1, 1}), "");
    EXPECT_EQ(FaultText(Grid(), {0, 0}), "");
    EXPECT_THAT(set_.Statements(), testing::IsEmpty());
}

TEST_F(CellChecksTest, AnAccountIsUnknownOrNoDetailAccount) {
    Put(5, "99'99");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 5}), "科目代码不存在");
    EXPECT_EQ(set_.LastStatement(), "select FAccountID from t_Account where FNumber = '99''99'");
    EXPECT_EQ(FaultText(Grid(), {1, 6}), "科目代码不存在");
    set_.Answer("select FAccountID from t_Account where FNumber = '10'",
                Rows({"FAccountID"}, {{Variant(9)}}));
    Put(5, "10");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 5}), "不是明细科目，请选择明细科目");
}

TEST_F(CellChecksTest, ASettlementTypeIsUnknownOrOnTheWrongAccount) {
    Put(5, "1001");
    Put(9, "支票");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 9}), "结算方式只能用于银行科目");
    Put(9, "汇款");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 9}), "结算方式不存在");
}

TEST_F(CellChecksTest, ACurrencyIsUnknownOrNotTheAccounts) {
    Put(5, "1001");
    Put(13, "美元");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 13}), "科目不核算该币别");
    set_.Answer("select FName from t_Currency where FCurrencyID = 1", Rows({"FName"}, {{"人民币"}}));
    EXPECT_EQ(FaultText(Grid(), {1, 13}), "科目不核算该币别，可用：人民币");
    Put(13, "日元");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 13}), "币别不存在");
}

TEST_F(CellChecksTest, WithoutASoundAccountTheOthersAskForOneFirst) {
    Put(9, "支票");
    Put(17, "千克");
    Put(11, "C1");
    Mark();
    for (const int c : {9, 11, 17})
        EXPECT_EQ(FaultText(Grid(), {1, c}), "请先录入明细科目") << c;
    Put(5, "9999");
    Mark();
    for (const int c : {9, 11, 17})
        EXPECT_EQ(FaultText(Grid(), {1, c}), "请先更正科目：科目代码不存在") << c;
    EXPECT_EQ(FaultText(Grid(), {1, 5}), "科目代码不存在");
}

TEST_F(CellChecksTest, AUnitIsExplainedWithTheUnitsThatFit) {
    Put(5, "1001");
    Put(17, "千克");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 17}), "科目没有计量单位组");
    set_.Answer("select FName from t_MeasureUnit", Rows({"FName"}, {{"千克"}, {"吨"}}));
    Put(5, "1403");
    Put(17, "米");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 17}), "计量单位不属于科目的计量单位组，可用：千克、吨");
}

TEST_F(CellChecksTest, ItemsAreExplainedWithTheAccountsClasses) {
    Put(5, "1001");
    Put(11, "C1");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 11}), "科目不核算项目");
    set_.Answer("select a.FDetailID,isnull(b.FDetailCount,0)",
                Rows({"FDetailID", "FDetailCount"}, {{Variant(7), Variant(2)}}));
    set_.Answer("t_ItemDetailv",
                Rows({"FItemClassID", "FName"}, {{Variant(1), "客户"}, {Variant(2), "部门"}}));
    Put(5, "1122");
    Put(11, "C9");
    Mark();
    EXPECT_EQ(FaultText(Grid(), {1, 11}), "核算项目代码不存在或个数不符，应依次为：客户、部门");
}

}  // namespace vicenter::center
