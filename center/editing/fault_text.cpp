#include "center/editing/fault_text.h"

#include "center/editing/cell_checks.h"
#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"

namespace vicenter::center {

namespace {

using store::CellCheck;

std::string Quoted(const EntryGrid& grid, int row, int gridColumn) {
    return entry::SqlQuote(grid.Text(row, gridColumn), true, true);
}

bool HasRow(const std::string& sql) {
    const ado::RecordsetRef rows = store::GetRecordset(sql);
    return rows != nullptr && rows->RecordCount() > 0;
}

std::string Names(const ado::RecordsetRef& rows) {
    std::string names;
    if (rows == nullptr) return names;
    for (; !rows->AtEnd(); rows->MoveNext()) {
        if (!names.empty()) names += "、";
        names += rows->Value("FName").ToTextOrEmpty();
    }
    return names;
}

std::string AccountFault(const EntryGrid& grid, int row) {
    const bool exists = HasRow("select FAccountID from t_Account where FNumber = " +
                               Quoted(grid, row, column::kAccountNumber));
    return exists ? "不是明细科目，请选择明细科目" : "科目代码不存在";
}

std::string SettlementFault(const EntryGrid& grid, int row) {
    const bool exists =
        HasRow("select FItemID from t_Settle where FName = " + Quoted(grid, row, column::kSettleName));
    return exists ? "结算方式只能用于银行科目" : "结算方式不存在";
}

std::string CurrencyFault(const EntryGrid& grid, int row) {
    const bool exists = HasRow("select FCurrencyID from t_Currency where FName = " +
                               Quoted(grid, row, column::kCurrencyName));
    if (!exists) return "币别不存在";
    // Only accounts kept in the first currency refuse others.
    const std::string fitting =
        Names(store::GetRecordset("select FName from t_Currency where FCurrencyID = 1"));
    return fitting.empty() ? "科目不核算该币别" : "科目不核算该币别，可用：" + fitting;
}

std::string UnitFault(const EntryGrid& grid, int row) {
    const std::string fitting = Names(store::GetRecordset(
        "select FName from t_MeasureUnit where FMeasureUnitID >0 and FUnitGroupID = (select FUnitGroupID "
        "from "
        "t_Account where FNumber = " +
        Quoted(grid, row, column::kAccountNumber) + " and FDetail = 1) order by FNumber"));
    if (fitting.empty()) return "科目没有计量单位组";
    return "计量单位不属于科目的计量单位组，可用：" + fitting;
}

std::string ItemsFault(const EntryGrid& grid, int row) {
    store::clsVIData data;
    const ado::RecordsetRef items = data.GetItems(grid.Text(row, column::kAccountNumber));
    if (items == nullptr || items->RecordCount() < 1) return "科目不核算项目";
    const std::string classes = Names(data.GetItemClassIDs(items->Value("FDetailID").ToText()));
    return "核算项目代码不存在或个数不符，应依次为：" + classes;
}

}  // namespace

std::string FaultText(const EntryGrid& grid, const CellAddress& cell) {
    if (const TextVerdict own = OwnVerdict(grid, cell); own != TextVerdict::Taken)
        return VerdictText(own, cell.column);
    const int check = grid.FaultyCheck(cell.row, cell.column);
    // The other four checks look at the row's account as well: without a sound one they fail for its sake.
    if (check > static_cast<int>(CellCheck::Account)) {
        if (grid.Text(cell.row, column::kAccountNumber).empty()) return "请先录入明细科目";
        if (grid.FaultyCheck(cell.row, column::kAccountNumber) != 0) {
            return "请先更正科目：" + AccountFault(grid, cell.row);
        }
    }
    switch (static_cast<CellCheck>(check)) {
        case CellCheck::Account:
            return AccountFault(grid, cell.row);
        case CellCheck::Settlement:
            return SettlementFault(grid, cell.row);
        case CellCheck::Currency:
            return CurrencyFault(grid, cell.row);
        case CellCheck::Unit:
            return UnitFault(grid, cell.row);
        case CellCheck::Items:
            return ItemsFault(grid, cell.row);
        case CellCheck::None:
            break;
    }
    return {};
}

}  // namespace vicenter::center
