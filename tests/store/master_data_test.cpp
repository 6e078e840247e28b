#include "tests/store/store_fixture.h"

namespace vicenter::store {
namespace {

TEST_F(StoreTest, EachColumnResolvesNumbersByItsOwnStatement) {
    const std::pair<int, std::string> expected[] = {
        {2,
         "select a.FExplanation,isnull(b.FAccountID,0) as FAccountID,isnull(b.FNumber,'') as "
         "FNumber,isnull(b.FName,'') "
         "as FName \r\n from t_VoucherExp a left join t_Account b on a.FAccountID = b.FAccountID where "
         "a.FNumber = "
         "'O''1'"},
        {5, "select FAccountID,FNumber,FName from t_Account where FNumber = 'O''1'"},
        {9, "select FItemID,FName from t_Settle where FNumber='O''1'"},
        {13, "select FCurrencyID,FName from t_Currency where FNumber = 'O''1'"},
        {17, "select FUnitGroupID,FName from t_MeasureUnit where FNumber = 'O''1'"},
    };
    for (const auto& [column, statement] : expected) {
        EXPECT_NE(clsVIData().GetItemInfoByNumber(column, " O'1 "), nullptr);
        EXPECT_EQ(set_.LastStatement(), statement);
    }
}

TEST_F(StoreTest, OtherColumnsResolveNothingAndLeaveTheDatabaseAlone) {
    clsVIData data;
    set_.Forget();
    for (const int column : {0, 1, 3, 4, 6, 11, 21})
        EXPECT_EQ(data.GetItemInfoByNumber(column, "1"), nullptr);
    EXPECT_TRUE(set_.Calls().empty());
}

TEST_F(StoreTest, ItemsAreMergedByClass) {
    set_.Answer("FSQLTableName",
                Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}, {3, "t_Emp"}}));
    set_.Answer("as FItemsInfo", Rows({"FItemsInfo"}, {{"01.01,"}}));
    EXPECT_EQ(clsVIData().MergeItemsInfo("17"), "01.01,");
    EXPECT_EQ(
        set_.Statements(),
        (Statements{
            " select a.FItemClassID,b.FSQLTableName from t_ItemDetailV a \r\n inner join t_ItemClass b on "
            "a.FItemClassID = b.FItemClassID \r\n where a.FDetailID = 17\r\n and b.FItemClassID>0 order by "
            "a.FItemClassID ",
            "select isnull(F1.FNumber,'')+','+isnull(F3.FNumber,'') as FItemsInfo from t_ItemDetail a  left "
            "join t_Organization F1 on a.F1 = F1.FItemID  left join t_Emp F3 on a.F3 = F3.FItemID  Where "
            "FDetailID = 17"}));
}

TEST_F(StoreTest, MergingWithoutClassesOrOnErrorIsEmpty) {
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}));
    EXPECT_EQ(clsVIData().MergeItemsInfo("0"), "");
    EXPECT_EQ(set_.Statements().size(), 1U);
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}}));
    set_.Answer("as FItemsInfo", Rows({"FItemsInfo"}));
    EXPECT_EQ(clsVIData().MergeItemsInfo("17"), "");
    set_.Fail("as FItemsInfo", "down");
    EXPECT_EQ(clsVIData().MergeItemsInfo("17"), "");
    set_.Fail("FSQLTableName", "down");
    EXPECT_EQ(clsVIData().MergeItemsInfo("17"), "");
}

TEST_F(StoreTest, ItemsOfAnAccountAreReadByItsNumber) {
    clsVIData().GetItems("1122.01");
    EXPECT_EQ(set_.LastStatement(),
              "select a.FDetailID,isnull(b.FDetailCount,0) as FDetailCount from t_Account a \r\n left join "
              "t_ItemDetail b "
              "on a.FDetailID = b.FDetailID \r\n where a.FNumber = '1122.01' and a.FDetail = 1 and "
              "a.FDetailID <> 0 ");
    clsVIData().GetItemClassIDs("17");
    EXPECT_EQ(
        set_.LastStatement(),
        "select a.FItemClassID,FName from t_ItemDetailv a \r\n inner join t_ItemClass b on a.FItemClassID = "
        "b.FItemClassID \r\n where FDetailID = 17 and FItemID = -1 order by a.FItemClassID ");
}

class CheckErrorCellTest : public StoreTest {
  protected:
    bool Check(int kind) {
        return clsVIData().CheckErrorCell(kind, account_, settle_, currency_, unit_, items_);
    }

    Variant account_ = "1002";
    Variant settle_ = "支票";
    Variant currency_ = "美元";
    Variant unit_ = "吨";
    Variant items_ = "01,02";
};

TEST_F(CheckErrorCellTest, EmptyTextsAreValidWithoutAsking) {
    account_ = settle_ = currency_ = unit_ = items_ = Variant("");
    for (int kind = 1; kind <= 5; ++kind)
        EXPECT_TRUE(Check(kind)) << kind;
    items_ = ",,";
    EXPECT_TRUE(Check(5));
    items_ = Variant::Null();
    EXPECT_TRUE(Check(5));
    EXPECT_TRUE(set_.Statements().empty());
}

TEST_F(CheckErrorCellTest, OtherKindsAreValid) {
    EXPECT_TRUE(Check(0));
    EXPECT_TRUE(Check(6));
    EXPECT_TRUE(set_.Statements().empty());
}

TEST_F(CheckErrorCellTest, OnlyDetailAccountsAreValid) {
    EXPECT_FALSE(Check(1));
    EXPECT_EQ(set_.LastStatement(), "select * from t_Account where FNumber = '1002' and FDetail = 1");
    set_.Answer("from t_Account", Rows({"FAccountID"}, {{1}}));
    EXPECT_TRUE(Check(1));
}

TEST_F(CheckErrorCellTest, SettlementNeedsABankAccount) {
    EXPECT_FALSE(Check(2));
    EXPECT_EQ(set_.Statements(), Statements{"select FItemID from t_Settle where FName = '支票'"});
    set_.Answer("from t_Settle", Rows({"FItemID"}, {{1}}));
    EXPECT_FALSE(Check(2));
    EXPECT_EQ(set_.LastStatement(), "select FIsBank from t_Account where FNumber = '1002' and FDetail = 1 ");
    set_.Answer("FIsBank", Rows({"FIsBank"}, {{0}}));
    EXPECT_FALSE(Check(2));
    set_.Answer("FIsBank", Rows({"FIsBank"}, {{true}}));
    EXPECT_TRUE(Check(2));
    set_.Answer("FIsBank", Rows({"FIsBank"}, {{Variant::Null()}}));
    EXPECT_FALSE(Check(2));
}

TEST_F(CheckErrorCellTest, AnAccountInCurrencyOneTakesNoOther) {
    EXPECT_FALSE(Check(3));
    EXPECT_EQ(set_.Statements(), Statements{"select FCurrencyID from t_Currency where FName = '美元'"});
    set_.Answer("from t_Currency", Rows({"FCurrencyID"}, {{1000}}));
    EXPECT_FALSE(Check(3));  // no such detail account
    EXPECT_EQ(set_.LastStatement(),
              "select FCurrencyID from t_Account where FNumber = '1002' and FDetail = 1 ");
    set_.Answer("from t_Account", Rows({"FCurrencyID"}, {{1}}));
    EXPECT_FALSE(Check(3));
    set_.Answer("from t_Currency", Rows({"FCurrencyID"}, {{1}}));
    EXPECT_TRUE(Check(3));
}

TEST_F(CheckErrorCellTest, AnAccountInAllCurrenciesTakesAnyExistingOne) {
    set_.Answer("from t_Currency", Rows({"FCurrencyID"}, {{1000}}));
    set_.Answer("from t_Account", Rows({"FCurrencyID"}, {{0}}));
    EXPECT_TRUE(Check(3));
}

TEST_F(CheckErrorCellTest, UnitsBelongToTheAccountsGroup) {
    EXPECT_FALSE(Check(4));
    EXPECT_EQ(set_.LastStatement(),
              " select FMeasureUnitID from t_MeasureUnit where FMeasureUnitID >0 and FUnitGroupID = (select "
              "FUnitGroupID "
              "from t_Account \r\n where FNumber = '1002' and FDetail = 1) and FName = '吨'");
    set_.Answer("from t_MeasureUnit", Rows({"FMeasureUnitID"}, {{1}}));
    EXPECT_TRUE(Check(4));
}

TEST_F(CheckErrorCellTest, EveryItemMustExistInItsClass) {
    EXPECT_FALSE(Check(5));  // the account has no item classes
    EXPECT_EQ(set_.LastStatement(),
              " select a.FItemClassID,b.FSQLTableName from t_ItemDetailV a \r\n inner join t_ItemClass b on "
              "a.FItemClassID "
              "= b.FItemClassID \r\n where a.FDetailID = (select FDetailID  from t_Account where FNumber = "
              "'1002')\r\n and "
              "b.FItemClassID>0 order by a.FItemClassID ");
    set_.Answer("FSQLTableName",
                Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}, {3, "t_Emp"}}));
    EXPECT_FALSE(Check(5));
    EXPECT_EQ(set_.LastStatement(), "select FItemID from t_Organization where fnumber = '01'");
    set_.Answer("fnumber = '01'", Rows({"FItemID"}, {{1}}));
    EXPECT_FALSE(Check(5));
    EXPECT_EQ(set_.LastStatement(), "select FItemID from t_Emp where fnumber = '02'");
    set_.Answer("fnumber = '02'", Rows({"FItemID"}, {{2}}));
    EXPECT_TRUE(Check(5));
}

TEST_F(CheckErrorCellTest, EmptyPiecesPassAndMissingPiecesDoNot) {
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"},
                                      {{1, "t_Organization"}, {2, "t_Department"}, {3, "t_Emp"}}));
    set_.Answer("fnumber = '01'", Rows({"FItemID"}, {{1}}));
    items_ = "01,,";
    EXPECT_TRUE(Check(5));
    items_ = "01,";
    EXPECT_FALSE(Check(5));
}

TEST_F(CheckErrorCellTest, MorePiecesThanClassesDoNoHarm) {
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}}));
    set_.Answer("fnumber = '01'", Rows({"FItemID"}, {{1}}));
    EXPECT_TRUE(Check(5));  // the second piece has no class to be found in
    EXPECT_EQ(set_.Statements().size(), 2U);
}

TEST_F(CheckErrorCellTest, ABlankPieceIsAskedForLikeAnyOther) {
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}}));
    items_ = " ";
    EXPECT_FALSE(Check(5));
    EXPECT_EQ(set_.LastStatement(), "select FItemID from t_Organization where fnumber = ''");
}

TEST_F(CheckErrorCellTest, AnAccountWithoutACurrencyTakesAnyExistingOne) {
    set_.Answer("from t_Currency", Rows({"FCurrencyID"}, {{1000}}));
    set_.Answer("from t_Account", Rows({"FCurrencyID"}, {{Variant::Null()}}));
    EXPECT_TRUE(Check(3));
}

TEST_F(CheckErrorCellTest, AConnectionThatIsLostBetweenTwoStatementsCountsAsInvalid) {
    set_.Answer("from t_Settle", Rows({"FItemID"}, {{1}}));
    set_.Answer("from t_Currency", Rows({"FCurrencyID"}, {{1}}));
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}}));
    set_.Fail("select FIsBank", "down");
    set_.Fail("select FCurrencyID from t_Account", "down");
    set_.Fail("from t_Organization", "down");
    for (const int kind : {2, 3, 5})
        EXPECT_FALSE(Check(kind)) << kind;
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(CheckErrorCellTest, AnErrorCountsAsInvalid) {
    set_.Fail("select", "down");
    for (int kind = 1; kind <= 5; ++kind)
        EXPECT_FALSE(Check(kind)) << kind;
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

}  // namespace
}  // namespace vicenter::store
