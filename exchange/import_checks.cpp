#include "exchange/import_checks.h"

#include <cmath>

#include "automation/variant.h"
#include "entry/sql_text.h"
#include "exchange/cell_reading.h"
#include "platform/system/collation.h"
#include "store/column_room.h"

namespace vicenter::exchange {

namespace {

bool WasSeen(std::string_view seen, std::string_view header) {
    const auto& collator = system::Collator::Chinese();
    return collator.Fold(seen).find(collator.Fold("|" + std::string(header) + "|")) != std::string::npos;
}

std::string HeaderError(std::int32_t column, std::string_view header, std::string_view what) {
    std::string line = "第" + ColumnLetter(column) + "列[";
    line.append(header).append("]").append(what).append(entry::kCrLf);
    return line;
}

}  // namespace

bool MapImportHeader(std::string_view header, std::string& errorText, std::string_view seen,
                     std::int32_t column, std::string& fieldList) {
    const auto place = FindColumn(header);
    if (!place) {
        errorText += HeaderError(column, header, "列名错误！");
        return false;
    }
    if (WasSeen(seen, header)) {
        errorText += HeaderError(column, header, "存在同名列！");
        return false;
    }
    if (!fieldList.empty()) fieldList += ',';
    fieldList += kColumns[*place].field;
    return true;
}

bool CheckRequiredColumns(std::string_view seen, std::string& missing) {
    bool all = true;
    for (const TemplateColumn& column : kColumns) {
        // The mark in the header tells which columns must be there.
        if (!column.header.ends_with("(*)") || WasSeen(seen, column.header)) continue;
        all = false;
        if (!missing.empty()) missing += ',';
        missing += column.header;
    }
    return all;
}

// Hardly any number comes near a column's end, and to write one out costs more than to compare it.
constexpr double kFitsEveryColumn = 999999999;

std::string WhyNotStored(const TemplateColumn& column, std::string_view text) {
    if (text.empty()) return {};
    const store::ColumnSpec& spec = store::Column(column.gridColumn);
    if (column.type != CellType::Number) {
        // Whole numbers have a narrower rule of their own.
        return column.type == CellType::Text ? store::WhyNoRoom(spec, text) : std::string();
    }
    const auto number = ReadTypedNumber(text);
    if (!number || std::fabs(*number) <= kFitsEveryColumn) return {};
    return store::WhyNoRoom(spec, TypedNumberAsDecimal(text).value_or(std::string()));
}

std::string WhyNotInCell(std::string_view text, CellType type, bool required) {
    if (text.empty()) return required ? "不允许为空" : "";
    switch (type) {
        case CellType::Text:
            return {};
        case CellType::DebitCredit:
            return ReadDebit(text) ? "" : "必须是“借”或“贷”";
        case CellType::Number:
            return ReadTypedNumber(text) ? "" : "必须是数字";
        case CellType::WholeNumber: {
            const auto number = ReadTypedNumber(text);
            if (!number) return "必须是整数";
            try {
                automation::Variant(*number).ToInt16();
                return {};
            } catch (const automation::Error&) {
                return "必须是-32768到32767之间的整数";
            }
        }
    }
    return "必须是数字";
}

bool CheckImportCell(std::string_view text, CellType type, bool required) {
    return WhyNotInCell(text, type, required).empty();
}

}  // namespace vicenter::exchange
