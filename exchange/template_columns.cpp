#include "exchange/template_columns.h"

#include "platform/system/collation.h"

namespace vicenter::exchange {

const std::array<TemplateColumn, kColumnCount> kColumns = {{
    {"模板编号(*)", "FNo", CellType::WholeNumber, true, 1},
    {"摘要(*)", "FExp", CellType::Text, false, 2},  // its own rule: required on the first row of a number
    {"借/贷(*)", "FDC", CellType::DebitCredit, true, 3},
    {"科目代码(*)", "FAccountNumber", CellType::Text, true, 5},
    {"科目名称(*)", "FAcctountName", CellType::Text, true, 6},
    {"附件数", "FFileCount", CellType::WholeNumber, false, 7},
    {"结算方式", "FSettleName", CellType::Text, false, 9},
    {"结算号", "FSettleNumber", CellType::Text, false, 10},
    {"核算项目", "FItemsInfo", CellType::Text, false, 11},
    {"币别", "FCurrencyName", CellType::Text, false, 13},
    {"汇率", "FRate", CellType::Number, false, 14},
    {"原币金额", "FAmountFor", CellType::Number, false, 15},
    {"计量单位", "FUnitName", CellType::Text, false, 17},
    {"数量", "FQty", CellType::Number, false, 18},
    {"单价", "FPrice", CellType::Number, false, 19},
    {"金额", "FAmount", CellType::Number, false, 20},
    {"备注", "FRemark", CellType::Text, false, 21},
}};

std::optional<std::size_t> FindColumn(std::string_view header) {
    const auto& collator = system::Collator::Chinese();
    const std::string folded = collator.Fold(header);
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        if (collator.Fold(kColumns[i].header) == folded) return i;
    }
    return std::nullopt;
}

std::string ColumnLetter(std::int32_t column) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr auto kLetters = static_cast<std::int32_t>(kAlphabet.size());
    std::string letters;
    for (; column > 0; column = (column - 1) / kLetters) {
        letters.insert(letters.begin(), kAlphabet[static_cast<std::size_t>((column - 1) % kLetters)]);
    }
    return letters;
}

}  // namespace vicenter::exchange
