#pragma once

// What a column of a template is, said once: its place in the grid, its field of t_VchTemplateEntry, its
// header, what it takes, how it is shown at first, where it stands in the workbook, what a code typed into it
// is looked up in and which check speaks about it. Grid, column profile, look-ups, save, workbook,
// generation, command line and demo templates ask here. Stateless; column numbers count from 1, column 0 is
// the grid's row header.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::store {

inline constexpr int kColumnCount = 21;

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

// The master data that a code is looked up in. Items have a look-up for each of their classes.
enum class LookUp { None, Explanation, Account, Settlement, Currency, Unit, Items };

// The checks of clsVIData::CheckErrorCell, by the numbers that hosts know.
enum class CellCheck : std::int32_t {
    None = 0,
    Account = 1,
    Settlement = 2,
    Currency = 3,
    Unit = 4,
    Items = 5
};

struct ColumnSpec {
    int column;
    std::string_view field;   // of t_VchTemplateEntry; the misspelled one is the table's own
    std::string_view header;  // as the workbook names it, too; (*) marks what a workbook must have
    CellKind kind;
    int maxCharacters = 0;  // UTF-16 code units of a typed text; 0: no limit of its own
    int decimals = 0;       // digits that may follow the point
    bool rightAligned = false;
    bool locked = false;
    int designedWidth = 0;  // twips
    bool designedHidden = false;
    bool optional = false;  // column settings may hide it, a generation may leave it out

    int workbookPlace = 0;            // from 1; 0: the workbook does not have it
    bool requiredInWorkbook = false;  // a cell of it may not be empty

    LookUp lookUp = LookUp::None;
    int idColumn = 0;               // the hidden column for the id of what a code stands for; 0: none
    std::string_view idField = {};  // which field of the record that a typed code finds goes there
    CellCheck check = CellCheck::None;

    // The header names it among what a workbook must have.
    bool IsMarked() const { return header.ends_with(kMark); }
    // The header without its mark, for sentences and lists.
    std::string_view Title() const {
        return header.substr(0, header.size() - (IsMarked() ? kMark.size() : 0));
    }

    static constexpr std::string_view kMark = "(*)";
};

// The largest value of the whole and decimal columns; the smallest is 0.
inline constexpr std::int64_t kLargestNumber = 999999999;
inline constexpr std::int64_t kLargestTemplateNumber = 2147483647;

const std::array<ColumnSpec, kColumnCount>& Columns();
// column from 1 to kColumnCount.
const ColumnSpec& Column(int column);
// Any number: no look-up and no check for what is no column.
LookUp LookUpOf(int column);
CellCheck CheckOf(int column);
// The column whose text a check is about; those right behind it that name the same check follow its answer.
int SubjectOf(CellCheck check);

// The columns that a template made from vouchers can have besides the first six: the optional ones but the
// remark, which no voucher has.
const std::vector<int>& VoucherColumns();

// The columns of the workbook, in its order.
inline constexpr std::size_t kWorkbookColumnCount = 17;
const std::array<const ColumnSpec*, kWorkbookColumnCount>& WorkbookColumns();

// The column profile that a new user gets: 21 pieces "column|hidden|twips" joined by ",".
std::string DefaultColumnProfile();

inline constexpr std::string_view kDebit = "借";
inline constexpr std::string_view kCredit = "贷";

}  // namespace vicenter::store
