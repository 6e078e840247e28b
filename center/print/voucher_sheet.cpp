#include "center/print/voucher_sheet.h"

#include <map>

#include "automation/decimal.h"
#include "center/editing/cell_rules.h"
#include "center/grid/line_texts.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

constexpr std::size_t kDebitPlace = 3;
constexpr std::size_t kCreditPlace = 4;

std::string Shown(const EntryGrid& grid, int row, int c) {
    return DisplayText(c, grid.Text(row, c));
}

void Append(std::string& text, const std::string& more, const char* separator) {
    if (more.empty()) return;
    if (!text.empty()) text += separator;
    text += more;
}

std::string Joined(const EntryGrid& grid, int row, std::initializer_list<int> columns) {
    std::string text;
    for (const int c : columns)
        Append(text, Shown(grid, row, c), " ");
    return text;
}

std::string Named(const char* name, const std::string& value) {
    return value.empty() ? std::string() : name + value;
}

// What is kept of a line beside its amount.
std::string Details(const EntryGrid& grid, int row, const ItemsText& items) {
    std::string text;
    const auto add = [&text](const std::string& more) { Append(text, more, "；"); };
    add(Named("项目 ", items(grid, row)));
    add(Named("结算 ", Joined(grid, row, {column::kSettleName, column::kSettleNumber})));
    std::string foreign = Shown(grid, row, column::kCurrencyName);
    Append(foreign, Named("汇率 ", Shown(grid, row, column::kRate)), " ");
    Append(foreign, Named("原币 ", Shown(grid, row, column::kAmountFor)), " ");
    add(foreign);
    std::string quantity = Named("数量 ", Joined(grid, row, {column::kQuantity, column::kUnitName}));
    Append(quantity, Named("单价 ", Shown(grid, row, column::kPrice)), " ");
    add(quantity);
    add(Named("附件 ", Shown(grid, row, column::kFileCount)));
    add(Named("备注 ", Shown(grid, row, column::kRemark)));
    return text;
}

}  // namespace

std::vector<PrintColumn> SheetColumns() {
    return {{"摘要", 24, false},
            {"科目", 26, false},
            {"核算项目、外币、数量", 24, false},
            {"借方金额", 14, true},
            {"贷方金额", 14, true}};
}

std::vector<int> RowsOfNumber(const EntryGrid& grid, int rowCount, std::string_view number) {
    std::vector<int> rows;
    for (int row = 1; row <= rowCount; ++row) {
        if (NumberOfRow(grid, row) == number) rows.push_back(row);
    }
    return rows;
}

PrintBlock VoucherBlock(const EntryGrid& grid, const std::vector<int>& rows, std::string_view number,
                        const ItemsText& items) {
    PrintBlock block;
    block.caption = number.empty() ? "没有模板编号" : "模板编号 " + std::string(number);
    Decimal debit;
    Decimal credit;
    for (const int row : rows) {
        std::vector<std::string> texts(kCreditPlace + 1);
        texts[0] = Shown(grid, row, column::kExplanation);
        texts[1] = Joined(grid, row, {column::kAccountNumber, column::kAccountName});
        texts[2] = Details(grid, row, items);
        const bool credited = grid.Text(row, column::kDirection) == kCredit;
        // As in a voucher: what is credited stands one step in.
        if (credited && !texts[1].empty()) texts[1] = "　　" + texts[1];
        texts[credited ? kCreditPlace : kDebitPlace] = Shown(grid, row, column::kAmount);
        if (const auto value = DecimalIn(grid.Text(row, column::kAmount))) {
            Decimal& side = credited ? credit : debit;
            side = Decimal::Add(side, *value);
        }
        block.rows.push_back(std::move(texts));
    }
    const auto text = [](const Decimal& sum) { return DisplayText(column::kAmount, sum.ToText()); };
    block.foot = {"合计", "", "", text(debit), text(credit)};
    if (!(debit == credit)) block.notes.push_back("借贷不平，差额 " + text(Decimal::Subtract(debit, credit)));
    return block;
}

std::vector<PrintBlock> VoucherBlocks(const EntryGrid& grid, int rowCount, const ItemsText& items) {
    std::vector<std::string> order;
    std::map<std::string, std::vector<int>> rowsOf;
    for (int row = 1; row <= rowCount; ++row) {
        std::string number(NumberOfRow(grid, row));
        std::vector<int>& rows = rowsOf[number];
        if (rows.empty()) order.push_back(std::move(number));
        rows.push_back(row);
    }
    std::vector<PrintBlock> blocks;
    blocks.reserve(order.size());
    for (const std::string& number : order)
        blocks.push_back(VoucherBlock(grid, rowsOf[number], number, items));
    return blocks;
}

}  // namespace vicenter::center
