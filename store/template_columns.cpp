#include "store/template_columns.h"

namespace vicenter::store {

const std::array<ColumnSpec, kColumnCount>& Columns() {
    static constexpr std::array<ColumnSpec, kColumnCount> table{{
        {.column = column::kNo,
         .field = "FNo",
         .header = "模板编号(*)",
         .kind = CellKind::TemplateNumber,
         .maxCharacters = 10,
         .designedWidth = 1170,
         .workbookPlace = 1,
         .requiredInWorkbook = true},
        // Only the first line of a number needs its explanation: the workbook has a rule of its own for that.
        {.column = column::kExplanation,
         .field = "FExp",
         .header = "摘要(*)",
         .kind = CellKind::Text,
         .maxCharacters = 255,
         .designedWidth = 2820,
         .workbookPlace = 2,
         .lookUp = LookUp::Explanation},
        {.column = column::kDirection,
         .field = "FDC",
         .header = "借/贷(*)",
         .kind = CellKind::Direction,
         .maxCharacters = 150,
         .designedWidth = 1150,
         .workbookPlace = 3,
         .requiredInWorkbook = true},
        {.column = column::kAccountId,
         .field = "FAccountID",
         .header = "科目内码",
         .kind = CellKind::Id,
         .locked = true,
         .designedWidth = 800,
         .designedHidden = true},
        {.column = column::kAccountNumber,
         .field = "FAccountNumber",
         .header = "科目代码(*)",
         .kind = CellKind::Text,
         .maxCharacters = 80,
         .designedWidth = 1455,
         .workbookPlace = 4,
         .requiredInWorkbook = true,
         .lookUp = LookUp::Account,
         .idColumn = column::kAccountId,
         .idField = "FAccountID",
         .check = CellCheck::Account},
        {.column = column::kAccountName,
         .field = "FAcctountName",
         .header = "科目名称(*)",
         .kind = CellKind::Text,
         .maxCharacters = 160,
         .designedWidth = 1455,
         .workbookPlace = 5,
         .requiredInWorkbook = true,
         .check = CellCheck::Account},
        {.column = column::kFileCount,
         .field = "FFileCount",
         .header = "附件数",
         .kind = CellKind::Whole,
         .rightAligned = true,
         .designedWidth = 850,
         .optional = true,
         .workbookPlace = 6},
        {.column = column::kSettleId,
         .field = "FSettleID",
         .header = "结算方式内码",
         .kind = CellKind::Id,
         .locked = true,
         .designedWidth = 800,
         .designedHidden = true},
        {.column = column::kSettleName,
         .field = "FSettleName",
         .header = "结算方式",
         .kind = CellKind::Text,
         .maxCharacters = 80,
         .designedWidth = 1400,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 7,
         .lookUp = LookUp::Settlement,
         .idColumn = column::kSettleId,
         .idField = "FItemID",
         .check = CellCheck::Settlement},
        {.column = column::kSettleNumber,
         .field = "FSettleNumber",
         .header = "结算号",
         .kind = CellKind::Text,
         .maxCharacters = 100,
         .designedWidth = 1250,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 8},
        {.column = column::kItems,
         .field = "FItemsInfo",
         .header = "核算项目",
         .kind = CellKind::Text,
         .maxCharacters = 255,
         .designedWidth = 1800,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 9,
         .lookUp = LookUp::Items,
         .check = CellCheck::Items},
        {.column = column::kCurrencyId,
         .field = "FCurrencyID",
         .header = "币别内码",
         .kind = CellKind::Id,
         .locked = true,
         .designedWidth = 800,
         .designedHidden = true},
        {.column = column::kCurrencyName,
         .field = "FCurrencyName",
         .header = "币别",
         .kind = CellKind::Text,
         .maxCharacters = 30,
         .designedWidth = 1000,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 10,
         .lookUp = LookUp::Currency,
         .idColumn = column::kCurrencyId,
         .idField = "FCurrencyID",
         .check = CellCheck::Currency},
        {.column = column::kRate,
         .field = "FRate",
         .header = "汇率",
         .kind = CellKind::Decimal,
         .decimals = 10,
         .rightAligned = true,
         .designedWidth = 1600,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 11},
        {.column = column::kAmountFor,
         .field = "FAmountFor",
         .header = "原币金额",
         .kind = CellKind::Decimal,
         .decimals = 4,
         .rightAligned = true,
         .designedWidth = 1700,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 12},
        {.column = column::kUnitId,
         .field = "FUnitID",
         .header = "计量单位内码",
         .kind = CellKind::Id,
         .locked = true,
         .designedWidth = 800,
         .designedHidden = true},
        // What a typed code finds brings the unit's group, and that is what goes into the id column.
        {.column = column::kUnitName,
         .field = "FUnitName",
         .header = "计量单位",
         .kind = CellKind::Text,
         .maxCharacters = 80,
         .designedWidth = 1250,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 13,
         .lookUp = LookUp::Unit,
         .idColumn = column::kUnitId,
         .idField = "FUnitGroupID",
         .check = CellCheck::Unit},
        {.column = column::kQuantity,
         .field = "FQty",
         .header = "数量",
         .kind = CellKind::Decimal,
         .decimals = 4,
         .rightAligned = true,
         .designedWidth = 1600,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 14},
        {.column = column::kPrice,
         .field = "FPrice",
         .header = "单价",
         .kind = CellKind::Decimal,
         .decimals = 10,
         .rightAligned = true,
         .designedWidth = 1700,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 15},
        {.column = column::kAmount,
         .field = "FAmount",
         .header = "金额",
         .kind = CellKind::Decimal,
         .decimals = 4,
         .rightAligned = true,
         .designedWidth = 1700,
         .designedHidden = true,
         .optional = true,
         .workbookPlace = 16},
        {.column = column::kRemark,
         .field = "FRemark",
         .header = "备注",
         .kind = CellKind::Text,
         .maxCharacters = 80,
         .designedWidth = 4005,
         .optional = true,
         .workbookPlace = 17},
    }};
    return table;
}

const ColumnSpec& Column(int column) {
    return Columns()[static_cast<std::size_t>(column - 1)];
}

LookUp LookUpOf(int column) {
    return column >= 1 && column <= kColumnCount ? Column(column).lookUp : LookUp::None;
}

CellCheck CheckOf(int column) {
    return column >= 1 && column <= kColumnCount ? Column(column).check : CellCheck::None;
}

int SubjectOf(CellCheck check) {
    for (const ColumnSpec& spec : Columns()) {
        if (spec.check == check) return spec.column;
    }
    return 0;
}

const std::vector<int>& VoucherColumns() {
    static const std::vector<int> columns = [] {
        std::vector<int> found;
        for (const ColumnSpec& spec : Columns()) {
            if (spec.optional && spec.column != column::kRemark) found.push_back(spec.column);
        }
        return found;
    }();
    return columns;
}

const std::array<const ColumnSpec*, kWorkbookColumnCount>& WorkbookColumns() {
    static const auto columns = [] {
        std::array<const ColumnSpec*, kWorkbookColumnCount> found{};
        for (const ColumnSpec& spec : Columns()) {
            if (spec.workbookPlace > 0) found[static_cast<std::size_t>(spec.workbookPlace - 1)] = &spec;
        }
        return found;
    }();
    return columns;
}

std::string DefaultColumnProfile() {
    std::string profile;
    for (const ColumnSpec& spec : Columns()) {
        if (spec.column > 1) profile += ',';
        profile += std::to_string(spec.column) + (spec.designedHidden ? "|1|" : "|0|") +
                   std::to_string(spec.designedWidth);
    }
    return profile;
}

}  // namespace vicenter::store
