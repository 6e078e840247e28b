#include "autovch/generation_sql.h"

#include "tests/autovch/autovch_fixture.h"

namespace vicenter::autovch {
namespace {

constexpr const char* kQueryHead =
    " select a.FNumber as FNo,b.FExplanation as FExp,b.FDC,b.FAccountID,c.FNumber as FAccountNumber,c.FName "
    "as "
    "FAccountName, \r\n"
    " b.FSettleTypeID as FSettleID,isnull(d.FName,'') as FSettleName,ISNULL(d.FNumber,'') as "
    "FSettleNumber,\r\n"
    " b.FCurrencyID,e.FName as FCurrencyName,b.FExchangeRate as FRate,b.FAmountFor,b.FAmount,b.FQuantity as "
    "FQty,\r\n"
    " b.FUnitPrice as FPrice,b.FMeasureUnitID as FUnitID,ISNULL(f.FName,'') as FUnitName,'' as FRemark,\r\n"
    " a.FAttachments as FFileCount,b.FDetailID as FItemsInfo\r\n"
    "  from t_Voucher a\r\n"
    " inner join t_VoucherEntry b on a.FVoucherID = b.FVoucherID\r\n"
    " inner join t_Account c on b.FAccountID = c.FAccountID\r\n"
    " left join t_Settle d on b.FSettleTypeID = d.FItemID and b.FSettleTypeID >0\r\n"
    " inner join t_Currency e on b.FCurrencyID = e.FCurrencyID\r\n"
    " left join t_MeasureUnit f on b.FMeasureUnitID = f.FMeasureUnitID and b.FMeasureUnitID >0\r\n"
    " Where a.FYear = 2024 And a.FPeriod = 3\r\n";

constexpr const char* kCursor =
    " declare @FNo int \r\n declare @Vch_cursor CURSOR \r\n Set @Vch_cursor = CURSOR FOR \r\n"
    "     select distinct FNo from t_VchTemplateEntry where FID = @MaxFID \r\n OPEN @Vch_cursor \r\n"
    " FETCH @Vch_cursor into @FNo \r\n while @@fetch_status=0 \r\n Begin \r\n     declare @FFileCount int "
    "\r\n"
    "     declare @Exp nvarchar(255) \r\n"
    "     select Top 1 @FFileCount=FFileCount,@Exp=FExp from t_VchTemplateEntry where FID = @MaxFID and FNo "
    "= @FNo order "
    "by FEntryID \r\n";

ado::RecordsetRef Vouchers() {
    return Rows(VoucherColumns(), {VoucherRow(2, "提'现 ", 17), VoucherRow(3, "", 0)});
}

std::vector<store::LineFault> faults;  // of the last batch

std::string ItemsOf(const std::string& detailId) {
    return detailId == "17" ? "01,02" : "";
}

TEST(VoucherQuery, ReadsManualVouchersOfAllGroups) {
    EXPECT_EQ(VoucherQuery(MarchFilter()),
              std::string(kQueryHead) +
                  " and a.FNumber >=1 and a.FNumber <=5\r\n and a.FTranType = 0\r\n"
                  "order by b.FVoucherID,b.FEntryID");
}

TEST(VoucherQuery, ReadsOneGroupWithSystemVouchers) {
    VoucherFilter filter = MarchFilter();
    filter.group = "记'账";
    filter.includeSystem = true;
    EXPECT_EQ(VoucherQuery(filter),
              std::string(kQueryHead) +
                  "and a.FGroupID = (select FGroupID from t_VoucherGroup where FName = '记''账') \r\n"
                  " and a.FNumber >=1 and a.FNumber <=5\r\norder by b.FVoucherID,b.FEntryID");
}

TEST(VoucherCountQuery, SelectsTheSameVouchers) {
    const std::string query = VoucherQuery(MarchFilter());
    const std::string count = VoucherCountQuery(MarchFilter());
    const std::size_t from = query.find("  from t_Voucher a");
    const std::size_t order = query.find("order by");
    EXPECT_TRUE(count.ends_with(query.substr(from, order - from))) << count;
}

TEST(EntryColumns, FollowTheFixedOrder) {
    EXPECT_EQ(EntryColumns({}), "FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName");
    ChosenColumns all(store::VoucherColumns().begin(), store::VoucherColumns().end());
    EXPECT_EQ(
        EntryColumns(all),
        "FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,FFileCount,FSettleID,FSettleName,FSettleNumber,"
        "FCurrencyID,FCurrencyName,FRate,FAmountFor,FUnitID,FUnitName,FQty,FPrice,FAmount,FItemsInfo");
}

TEST(GenerationBatch, WritesANewTemplate) {
    const auto vouchers = Vouchers();
    EXPECT_EQ(
        GenerationBatch({"新'模板", "16394", -1}, {}, *vouchers, ItemsOf, {}, faults),
        std::string(" declare @MaxFID int \r\n select @MaxFID = Max(FID)+1 from t_VchTemplate \r\n"
                    " insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                    "values(@MaxFID,'新''模板',16394,'',GetDate()) \r\n"
                    " insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountID,FAccountNumber,"
                    "FAcctountName) values(@MaxFID,1,2,'提''现',1,1002,'1002.01','工行') \r\n"
                    " insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountID,FAccountNumber,"
                    "FAcctountName) values(@MaxFID,2,3,'',1,1002,'1002.01','工行') \r\n") +
            kCursor +
            "     insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) "
            "values(@MaxFID,@FNo,0,@Exp,@FFileCount) \r\n"
            "     fetch next from @Vch_cursor into @FNo \r\n End \r\n close @Vch_cursor \r\n deallocate "
            "@Vch_cursor ");
}

TEST(GenerationBatch, ReplacesATemplateAndKeepsItsId) {
    const auto vouchers = Rows(VoucherColumns());
    EXPECT_EQ(
        GenerationBatch({"旧模板", "16394", 7}, {}, *vouchers, ItemsOf, {}, faults),
        std::string(" delete t_VchTemplateEntry where FID = 7\r\n delete t_VchTemplate where FID = 7\r\n"
                    " declare @MaxFID int \r\n set @MaxFID = 7\r\n"
                    " insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                    "values(@MaxFID,'旧模板',16394,'',GetDate()) \r\n") +
            kCursor +
            "     update t_VchTpControl set FFileCount = @FFileCount,FKey = @Exp where FID = @MaxFID and FNo "
            "= "
            "@FNo \r\n"
            "     fetch next from @Vch_cursor into @FNo \r\n End \r\n close @Vch_cursor \r\n deallocate "
            "@Vch_cursor \r\n"
            " delete t_VchTpControl where FID = @MaxFID and FNo not in (select FNo from t_VchTemplateEntry "
            "where "
            "FID = @MaxFID) ");
}

TEST(GenerationBatch, WritesEveryChosenFieldByItsKind) {
    const auto vouchers = Vouchers();
    const ChosenColumns all(store::VoucherColumns().begin(), store::VoucherColumns().end());
    const std::string batch = GenerationBatch({"x", "1", -1}, all, *vouchers, ItemsOf, {}, faults);
    // Numbers without loss, a missing settlement number as Null, the items last.
    EXPECT_NE(
        batch.find(
            "values(@MaxFID,1,2,'提''现',1,1002,'1002.01','工行',2,0,'',Null,1,'人民币',1,1000.5,0,'',0,"
            "0.1234567891,1000.5,'01,02') \r\n"),
        std::string::npos)
        << batch;
    EXPECT_NE(batch.find(",1000.5,'') \r\n"), std::string::npos);  // detail id 0: no items
}

TEST(GenerationBatch, GivesUpWithoutABatch) {
    const auto vouchers = Vouchers();
    std::int64_t asked = 0;
    EXPECT_EQ(GenerationBatch(
                  {"x", "1", -1}, {}, *vouchers, ItemsOf,
                  [&](std::int64_t, std::int64_t all) {
                      asked = all;
                      return false;
                  },
                  faults),
              "");
    EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace vicenter::autovch
