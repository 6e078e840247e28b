#pragma once

// The grid's columns are the template's: center/ speaks of them by these names. What a column is, the store
// says.

#include <string_view>

#include "store/template_columns.h"

namespace vicenter::center {

using store::CellKind;
using store::Column;
using store::Columns;
using store::ColumnSpec;
using store::kColumnCount;
using store::kCredit;
using store::kDebit;
using store::kLargestNumber;
using store::kLargestTemplateNumber;
namespace column = store::column;

inline constexpr int kFirstRowTotal = 100;  // rows that a fresh grid shows

// The choices of the direction column: two blanks, 借, 贷, separated by tabs as the control's list property
// holds them.
inline constexpr std::string_view kDirectionList = "  \t借\t贷";

}  // namespace vicenter::center
