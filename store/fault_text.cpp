#include "store/fault_text.h"

#include "automation/error.h"
#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"

namespace vicenter::store {

namespace {

std::string Quoted(std::string_view text) {
    return entry::SqlQuote(text, true, true);
}

// The rows; a question without an answer ends the explanation.
RecordsetRef Read(const RecordsetRef& rows) {
    if (rows == nullptr) throw automation::Error(automation::error_number::kElementNotFound);
    return rows;
}

bool HasRow(const std::string& sql) {
    return Read(GetRecordset(sql))->RecordCount() > 0;
}

std::string Names(const RecordsetRef& rows) {
    std::string names;
    for (Read(rows); !rows->AtEnd(); rows->MoveNext()) {
        if (!names.empty()) names += "、";
        names += rows->Value("FName").ToTextOrEmpty();
    }
    return names;
}

std::string AccountFault(const CheckedTexts& line) {
    return HasRow("select FAccountID from t_Account where FNumber = " + Quoted(line.account))
               ? "不是明细科目，请选择明细科目"
               : "科目代码不存在";
}

std::string SettlementFault(const CheckedTexts& line) {
    return HasRow("select FItemID from t_Settle where FName = " + Quoted(line.settlement))
               ? "结算方式只能用于银行科目"
               : "结算方式不存在";
}

std::string CurrencyFault(const CheckedTexts& line) {
    if (!HasRow("select FCurrencyID from t_Currency where FName = " + Quoted(line.currency)))
        return "币别不存在";
    // Only accounts kept in the first currency refuse others.
    const std::string fitting = Names(GetRecordset("select FName from t_Currency where FCurrencyID = 1"));
    return fitting.empty() ? "科目不核算该币别" : "科目不核算该币别，可用：" + fitting;
}

std::string UnitFault(const CheckedTexts& line) {
    const std::string fitting =
        Names(GetRecordset("select FName from t_MeasureUnit where FMeasureUnitID >0 and FUnitGroupID = "
                           "(select FUnitGroupID from "
                           "t_Account where FNumber = " +
                           Quoted(line.account) + " and FDetail = 1) order by FNumber"));
    if (fitting.empty()) return "科目没有计量单位组";
    return "计量单位不属于科目的计量单位组，可用：" + fitting;
}

std::string ItemsFault(const CheckedTexts& line) {
    clsVIData data;
    const RecordsetRef items = Read(data.GetItems(line.account));
    if (items->RecordCount() < 1) return "科目不核算项目";
    const std::string classes = Names(data.GetItemClassIDs(items->Value("FDetailID").ToText()));
    return "核算项目代码不存在或个数不符，应依次为：" + classes;
}

}  // namespace

std::string FaultText(CellCheck failed, const CheckedTexts& line, bool accountIsSound) {
    if (failed != CellCheck::None && failed != CellCheck::Account) {
        if (line.account.empty()) return "请先录入明细科目";
        if (!accountIsSound) return "请先更正科目：" + AccountFault(line);
    }
    switch (failed) {
        case CellCheck::Account:
            return AccountFault(line);
        case CellCheck::Settlement:
            return SettlementFault(line);
        case CellCheck::Currency:
            return CurrencyFault(line);
        case CellCheck::Unit:
            return UnitFault(line);
        case CellCheck::Items:
            return ItemsFault(line);
        case CellCheck::None:
            break;
    }
    return {};
}

}  // namespace vicenter::store
