#pragma once

// The 21 columns of the entry grid: field, header, kind of cell and limits, in one table.
// Stateless; column numbers count from 1, column 0 is the row header.

#include <array>
#include <cstdint>
#include <string_view>

namespace vicenter::center {

inline constexpr int kColumnCount = 21;
inline constexpr int kFirstRowTotal = 100;  // rows that a fresh grid shows

namespace column {
inline constexpr int kNo = 1;
inline constexpr int kExplanation = 2;
inline constexpr int kDirection = 3;
inline constexpr int kAccountId = 4;
inline constexpr int kAccountNumber = 5;
inline constexpr int kAccountName = 6;
inline constexpr int kFileCount = 7;
inline constexpr int kSettleId = 8;
inline constexpr int kSettleName = 9;
inline constexpr int kSettleNumber = 10;
inline constexpr int kItems = 11;
inline constexpr int kCurrencyId = 12;
inline constexpr int kCurrencyName = 13;
inline constexpr int kRate = 14;
inline constexpr int kAmountFor = 15;
inline constexpr int kUnitId = 16;
inline constexpr int kUnitName = 17;
inline constexpr int kQuantity = 18;
inline constexpr int kPrice = 19;
inline constexpr int kAmount = 20;
inline constexpr int kRemark = 21;
}  // namespace column

enum class CellKind {
    TemplateNumber,  // digits only, at most 2147483647
    Text,
    Direction,  // drop-down list: blank, 借, 贷
    Id,         // locked, a whole number
    Whole,      // whole number, not negative
    Decimal,    // decimal number with thousands separators when shown, not negative
};

struct ColumnSpec {
    int column;
    std::string_view field;   // of t_VchTemplateEntry
    std::string_view header;  // as the workbook names it, too
    CellKind kind;
    int maxCharacters;  // of a typed text; 0: no limit of its own
    int decimals;       // digits that may follow the point
    bool rightAligned;
    bool locked;
    int designedWidth;  // twips
    bool designedHidden;
};

// The largest value of the whole and decimal columns; the smallest is 0.
inline constexpr std::int64_t kLargestNumber = 999999999;
inline constexpr std::int64_t kLargestTemplateNumber = 2147483647;

const std::array<ColumnSpec, kColumnCount>& Columns();
// column from 1 to kColumnCount.
const ColumnSpec& Column(int column);

// The choices of the direction column: two blanks, 借, 贷, separated by tabs as the control's list property
// holds them.
inline constexpr std::string_view kDirectionList = "  \t借\t贷";
inline constexpr std::string_view kDebit = "借";
inline constexpr std::string_view kCredit = "贷";

}  // namespace vicenter::center
