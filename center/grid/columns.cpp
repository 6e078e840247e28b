#include "center/grid/columns.h"

namespace vicenter::center {

const std::array<ColumnSpec, kColumnCount>& Columns() {
    static constexpr std::array<ColumnSpec, kColumnCount> table{{
        {1, "FNo", "模板编号(*)", CellKind::TemplateNumber, 10, 0, false, false, 1170, false},
        {2, "FExp", "摘要(*)", CellKind::Text, 255, 0, false, false, 2820, false},
        {3, "FDC", "借/贷(*)", CellKind::Direction, 150, 0, false, false, 1150, false},
        {4, "FAccountID", "科目内码", CellKind::Id, 0, 0, false, true, 800, true},
        {5, "FAccountNumber", "科目代码(*)", CellKind::Text, 80, 0, false, false, 1455, false},
        {6, "FAcctountName", "科目名称(*)", CellKind::Text, 160, 0, false, false, 1455, false},
        {7, "FFileCount", "附件数", CellKind::Whole, 0, 0, true, false, 850, false},
        {8, "FSettleID", "结算方式内码", CellKind::Id, 0, 0, false, true, 800, true},
        {9, "FSettleName", "结算方式", CellKind::Text, 80, 0, false, false, 1400, true},
        {10, "FSettleNumber", "结算号", CellKind::Text, 100, 0, false, false, 1250, true},
        {11, "FItemsInfo", "核算项目", CellKind::Text, 255, 0, false, false, 1800, true},
        {12, "FCurrencyID", "币别内码", CellKind::Id, 0, 0, false, true, 800, true},
        {13, "FCurrencyName", "币别", CellKind::Text, 30, 0, false, false, 1000, true},
        {14, "FRate", "汇率", CellKind::Decimal, 0, 10, true, false, 1600, true},
        {15, "FAmountFor", "原币金额", CellKind::Decimal, 0, 4, true, false, 1700, true},
        {16, "FUnitID", "计量单位内码", CellKind::Id, 0, 0, false, true, 800, true},
        {17, "FUnitName", "计量单位", CellKind::Text, 80, 0, false, false, 1250, true},
        {18, "FQty", "数量", CellKind::Decimal, 0, 4, true, false, 1600, true},
        {19, "FPrice", "单价", CellKind::Decimal, 0, 10, true, false, 1700, true},
        {20, "FAmount", "金额", CellKind::Decimal, 0, 4, true, false, 1700, true},
        {21, "FRemark", "备注", CellKind::Text, 80, 0, false, false, 4005, false},
    }};
    return table;
}

const ColumnSpec& Column(int column) {
    return Columns()[static_cast<std::size_t>(column - 1)];
}

}  // namespace vicenter::center
