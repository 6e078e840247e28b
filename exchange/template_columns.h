#pragma once

// The one layout of template workbooks: sheet name and seventeen columns, shared by export and import.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/template_columns.h"

namespace vicenter::exchange {

inline constexpr const char* kSheetName = "凭证模板";
inline constexpr std::int32_t kHeaderColor = 37;
inline constexpr double kFontSize = 10;
inline constexpr std::int32_t kContinuousLine = 1;

// How a cell is checked on import and written on export.
enum class CellType : std::int32_t { Text = 0, WholeNumber = 1, Number = 2, DebitCredit = 3 };

// A column of the workbook; what else it is, its limits among it, store::Column(gridColumn) says.
struct TemplateColumn {
    std::string_view header;
    std::string_view field;
    CellType type;
    bool required;            // the cell may not be empty
    std::int32_t gridColumn;  // of the entry grid, from 1
};

using store::kWorkbookColumnCount;
extern const std::array<TemplateColumn, kWorkbookColumnCount> kColumns;

// Places in kColumns that the rules name.
inline constexpr std::size_t kNumberColumn = 0;
inline constexpr std::size_t kExplanationColumn = 1;
inline constexpr std::size_t kAccountNumberColumn = 3;
inline constexpr std::size_t kRemarkColumn = 16;

// The place of the column with that header: compared as text, without case and width. Nothing for any other
// text.
std::optional<std::size_t> FindColumn(std::string_view header);

// Letters of a column number: 1 is "A", 27 is "AA".
std::string ColumnLetter(std::int32_t column);

}  // namespace vicenter::exchange
