#pragma once

// Every statement that the component sends, to the character, with sample values put in. Line breaks are CR
// LF.

#include <string>
#include <vector>

namespace vicenter::tsql {

inline std::vector<std::string> ComponentStatements() {
    const std::string insertEntry =
        "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,"
        "FSettleID,FSettleName,FSettleNumber,FCurrencyID,FCurrencyName,FRate,FAmountFor,FAmount,"
        "FQty,FPrice,FUnitID,FUnitName,FRemark,FFileCount,FItemsInfo) values(";
    const std::string cursorHead =
        " declare @FNo int \r\n declare @Vch_cursor CURSOR \r\n Set @Vch_cursor = CURSOR FOR \r\n"
        "     select distinct FNo from t_VchTemplateEntry where FID = @MaxFID \r\n OPEN @Vch_cursor \r\n"
        " FETCH @Vch_cursor into @FNo \r\n while @@fetch_status=0 \r\n Begin \r\n     declare @FFileCount "
        "int \r\n"
        "     declare @Exp nvarchar(255) \r\n"
        "     select Top 1 @FFileCount=FFileCount,@Exp=FExp from t_VchTemplateEntry where FID = @MaxFID and "
        "FNo = @FNo "
        "order by FEntryID \r\n";
    const std::string cursorTail =
        "     fetch next from @Vch_cursor into @FNo \r\n End \r\n close @Vch_cursor \r\n deallocate "
        "@Vch_cursor ";
    return {
        // listing, profile, counting
        "if Not exists(select 1 from t_VchTemplate where FID = 0) \r\n begin \r\n insert into "
        "t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(0,'标准模板',0,'0',GETDATE()) \r\n end",
        "select a.* from (select FID,FName from t_VchTemplate where fid <> 0 and FUserID = 16394\r\n union "
        "all \r\n "
        "select FID,FName from t_VchTemplate where FID = 0 ) a order by a.FID ",
        "if Not exists(select 1 from t_VchTpProfile where FUserID = 16394) \r\n begin \r\n insert into "
        "t_VchTpProfile(FUserID,FValue) values(16394,'1|0|1170,2|0|2820') \r\n end",
        "select FValue from t_VchTpProfile where FUserID = 16394",
        "select count(*) as FCount from t_VchTemplateEntry where FID = 3",
        "select FID from t_VchTemplate where FName = 'it''s'",
        " delete t_VchTemplate where FID = 3\r\n delete t_VchTemplateEntry where FID = 3\r\n delete "
        "t_VchTpControl "
        "where FID = 3",
        "select REPLACE(REPLACE(fname,')',''),'自定义模板(','') as FNum from t_VchTemplate where FName like "
        "'%自定义模板(%'",
        " declare @MaxFID int \r\n select @MaxFID = MAX(FID)+1 from t_VchTemplate \r\n insert into "
        "t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
        "values(@MaxFID,'自定义模板(1)',16394,'0',GETDATE())\r\n",
        "select Max(FID) as FID from t_VchTemplate ",
        "select * from t_VchTemplateEntry where FID = 3 order by FNo,FEntryID ",
        "Select FValue From t_UserSetting Where FUserID=16394 And FCategory='Vela_APFC' And FKey "
        "='BillFontSize'",
        // master data
        "select a.FExplanation,isnull(b.FAccountID,0) as FAccountID,isnull(b.FNumber,'') as "
        "FNumber,isnull(b.FName,'') "
        "as FName \r\n from t_VoucherExp a left join t_Account b on a.FAccountID = b.FAccountID where "
        "a.FNumber = "
        "'001'",
        "select FAccountID,FNumber,FName from t_Account where FNumber = '1001'",
        "select FItemID,FName from t_Settle where FNumber='01'",
        "select FCurrencyID,FName from t_Currency where FNumber = 'RMB'",
        "select FUnitGroupID,FName from t_MeasureUnit where FNumber = '01'",
        " select a.FItemClassID,b.FSQLTableName from t_ItemDetailV a \r\n inner join t_ItemClass b on "
        "a.FItemClassID = "
        "b.FItemClassID \r\n where a.FDetailID = 5\r\n and b.FItemClassID>0 order by a.FItemClassID ",
        "select isnull(F1.FNumber,'')+','+isnull(F3.FNumber,'') as FItemsInfo from t_ItemDetail a  left join "
        "t_Customer F1 on a.F1 = F1.FItemID  left join t_Employee F3 on a.F3 = F3.FItemID  Where FDetailID = "
        "5",
        "select a.FDetailID,isnull(b.FDetailCount,0) as FDetailCount from t_Account a \r\n left join "
        "t_ItemDetail b on "
        "a.FDetailID = b.FDetailID \r\n where a.FNumber = '1122' and a.FDetail = 1 and a.FDetailID <> 0 ",
        "select a.FItemClassID,FName from t_ItemDetailv a \r\n inner join t_ItemClass b on a.FItemClassID = "
        "b.FItemClassID \r\n where FDetailID = 5 and FItemID = -1 order by a.FItemClassID ",
        // checks
        "select * from t_Account where FNumber = '1001' and FDetail = 1",
        "select FItemID from t_Settle where FName = '现金'",
        "select FIsBank from t_Account where FNumber = '1002' and FDetail = 1 ",
        "select FCurrencyID from t_Currency where FName = '人民币'",
        "select FCurrencyID from t_Account where FNumber = '1002' and FDetail = 1",
        " select FMeasureUnitID from t_MeasureUnit where FMeasureUnitID >0 and FUnitGroupID = (select "
        "FUnitGroupID from "
        "t_Account \r\n where FNumber = '1405' and FDetail = 1) and FName = '件'",
        " select a.FItemClassID,b.FSQLTableName from t_ItemDetailV a \r\n inner join t_ItemClass b on "
        "a.FItemClassID = "
        "b.FItemClassID \r\n where a.FDetailID = (select FDetailID  from t_Account where FNumber = "
        "'1122')\r\n and "
        "b.FItemClassID>0 order by a.FItemClassID ",
        "select FItemID from t_Customer where fnumber = '01.001'",
        // tree, layout, look-ups
        "select FID from t_VchTemplate where FName = '新模板' and FUserID = 16394",
        "update t_VchTemplate set FName = '新模板' where FID = 3",
        "update t_VchTpProfile set FValue='1|0|1170' where FUserID = 16394",
        "select FName,FNumber from t_Account where FAccountID = 1001",
        "select FUnitGroupID from t_account where FAccountID = 1001 and FUnitGroupID <> 0",
        // save
        "delete t_VchTemplateEntry where FID = 3 \r\nif Not exists(select 1 from t_VchTpControl where FID = "
        "3 and FNo = "
        "1) \r\nbegin \r\n    insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) "
        "values(3,1,0,'提现',2,0) \r\nend \r\nelse \r\nbegin \r\n    update t_VchTpControl set FKey = '提现' "
        "where FID = "
        "3 and FNo = 1\r\nend \r\n" +
            insertEntry +
            "3,1,1,'提现',1,1001,'1001','库存现金',0,'','',1,'人民币',1,100.25,100.25,0,0,0,'','it''s',2,'') "
            "\r\n" +
            insertEntry +
            "3,2,1,'',0,1002,'1002','银行存款',0,'','',1,'人民币',1,-100.25,-100.25,0,0,0,'','',0,'') \r\n"
            "Delete t_VchTpControl where FID = 3 and FNo not in (1,-1) exec pro_VchTpCanUsed 3 \r\n",
        "delete t_VchTemplateEntry where FID = 3 \r\nDelete t_VchTpControl where FID = 3 and FNo not in (-1) "
        "exec "
        "pro_VchTpCanUsed 3 \r\n",
        "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = 3 order by fno",
        // import and generation: a new template, and one that replaces
        " declare @MaxFID int \r\n select @MaxFID = Max(FID)+1 from t_VchTemplate \r\n insert into "
        "t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(@MaxFID,'费用',16394,'',GetDate()) \r\n "
        "insert into "
        "t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountNumber,FAcctountName,FFileCount) "
        "values(@MaxFID,2,1,'提现',1,'1001','库存现金',0) \r\n" +
            cursorHead +
            "     insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) "
            "values(@MaxFID,@FNo,0,@Exp,@FFileCount) \r\n" +
            cursorTail,
        " delete t_VchTemplateEntry where FID = 3\r\n delete t_VchTemplate where FID = 3\r\n declare @MaxFID "
        "int \r\n "
        "set @MaxFID = 3\r\n insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
        "values(@MaxFID,'费用',16394,'',GetDate()) \r\n insert into "
        "t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,"
        "FAccountID,FAccountNumber,FAcctountName,FRate) "
        "values(@MaxFID,1,1,Null,1,1001,'1001','库存现金',1.0000000000) "
        "\r\n" +
            cursorHead +
            "     update t_VchTpControl set FFileCount = @FFileCount,FKey = @Exp where FID = @MaxFID and FNo "
            "= @FNo \r\n" +
            cursorTail +
            "\r\n delete t_VchTpControl where FID = @MaxFID and FNo not in (select FNo from "
            "t_VchTemplateEntry where FID "
            "= @MaxFID) ",
        "exec pro_VchTpCanUsed 3",
        // voucher filter and query
        "select FGroupID,FName from t_VoucherGroup order by FGroupID ",
        "select isnull(MIN(FNumber),0) as FMinNum,isnull(MAX(FNumber),0) as FMaxNum from t_Voucher where "
        "FYear = 2026 "
        "and FPeriod = 1",
        " select a.FNumber as FNo,b.FExplanation as FExp,b.FDC,b.FAccountID,c.FNumber as "
        "FAccountNumber,c.FName as "
        "FAccountName, \r\n b.FSettleTypeID as FSettleID,isnull(d.FName,'') as "
        "FSettleName,ISNULL(d.FNumber,'') as "
        "FSettleNumber,\r\n b.FCurrencyID,e.FName as FCurrencyName,b.FExchangeRate as "
        "FRate,b.FAmountFor,b.FAmount,"
        "b.FQuantity as FQty,\r\n b.FUnitPrice as FPrice,b.FMeasureUnitID as FUnitID,ISNULL(f.FName,'') as "
        "FUnitName,'' as FRemark,\r\n a.FAttachments as FFileCount,b.FDetailID as FItemsInfo\r\n  from "
        "t_Voucher a\r\n "
        "inner join t_VoucherEntry b on a.FVoucherID = b.FVoucherID\r\n inner join t_Account c on "
        "b.FAccountID = "
        "c.FAccountID\r\n left join t_Settle d on b.FSettleTypeID = d.FItemID and b.FSettleTypeID >0\r\n "
        "inner join "
        "t_Currency e on b.FCurrencyID = e.FCurrencyID\r\n left join t_MeasureUnit f on b.FMeasureUnitID = "
        "f.FMeasureUnitID and b.FMeasureUnitID >0\r\n Where a.FYear = 2026 And a.FPeriod = 1\r\nand "
        "a.FGroupID = "
        "(select FGroupID from t_VoucherGroup where FName = '记') \r\n and a.FNumber >=1 and a.FNumber "
        "<=20\r\n and "
        "a.FTranType = 0\r\norder by b.FVoucherID,b.FEntryID",
    };
}

}  // namespace vicenter::tsql
