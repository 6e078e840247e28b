#include <charconv>
#include <cmath>

#include "platform/office/cell_text.h"
#include "platform/office/dates.h"
#include "platform/office/excel_objects.h"
#include "platform/office/utf.h"

namespace vicenter::office {

namespace {

// Automation error values of cells: the facility of the program and 2000 plus the file's code.
constexpr std::uint32_t kErrorBase = 0x800A0000u + 2000;

bool IsPlainNumber(std::string_view text, double& number) {
    constexpr std::size_t kLongest = 24;
    if (text.empty() || text.size() > kLongest) return false;
    const char first = text.front();
    if (first != '-' && (first < '0' || first > '9')) return false;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || rest != text.data() + text.size() || !std::isfinite(number)) return false;
    // "0012", "1.10" and what a number cannot hold stay what they are.
    return NumberAsTyped(number) == text;
}

void SetText(Workbook& workbook, Sheet& sheet, std::uint32_t row, std::uint32_t column,
             std::string_view text) {
    const bool marked = text.starts_with('\'');
    if (marked) text.remove_prefix(1);
    if (text.size() > kMaxCellCodeUnits && CountCodeUnits(text) > kMaxCellCodeUnits) {
        FailExcel("单元格内容超过 32767 个字符！");
    }
    Cell& cell = sheet.At(row, column);
    double number = 0;
    if (!marked && !workbook.Formats().IsText(cell.format) && IsPlainNumber(text, number)) {
        cell.kind = CellKind::Number;
        cell.number = number;
        return;
    }
    if (text.empty() && !marked) {
        cell.kind = CellKind::Blank;
        return;
    }
    cell.kind = CellKind::Text;
    cell.text = workbook.Texts().Intern(text);
}

}  // namespace

void FailExcel(std::string text) {
    throw automation::Error(kExcelError, std::move(text), "Microsoft Excel");
}

void SetCellValue(Workbook& workbook, Sheet& sheet, std::uint32_t row, std::uint32_t column,
                  const Variant& value) {
    using automation::VariantType;
    switch (value.Type()) {
        case VariantType::Empty:
        case VariantType::Null:
            if (sheet.Find(row, column) != nullptr) sheet.At(row, column).kind = CellKind::Blank;
            return;
        case VariantType::Text:
            SetText(workbook, sheet, row, column, value.AsText());
            return;
        case VariantType::Boolean: {
            Cell& cell = sheet.At(row, column);
            cell.kind = CellKind::Boolean;
            cell.boolean = value.ToBoolean();
            return;
        }
        case VariantType::Date: {
            Cell& cell = sheet.At(row, column);
            if (!workbook.Formats().IsDate(cell.format)) {
                CellFormat format = workbook.Formats().At(cell.format);
                format.numberFormat = "yyyy/m/d";
                cell.format = workbook.Formats().Intern(format);
            }
            cell.kind = CellKind::Number;
            cell.number = SerialFromDate(value.ToDate(), workbook.dates1904);
            return;
        }
        case VariantType::Error: {
            const auto code = static_cast<std::uint32_t>(value.AsErrorCode()) - kErrorBase;
            Cell& cell = sheet.At(row, column);
            cell.kind = CellKind::Error;
            cell.error = CellErrorFromText(CellErrorText(static_cast<CellError>(code & 0xFF)));
            return;
        }
        default: {
            const double number = value.ToDouble();
            if (!std::isfinite(number)) throw automation::Error(automation::error_number::kOverflow);
            Cell& cell = sheet.At(row, column);
            cell.kind = CellKind::Number;
            cell.number = number;
            return;
        }
    }
}

Variant GetCellValue(const Workbook& workbook, const Cell* cell) {
    if (cell == nullptr) return {};
    switch (cell->kind) {
        case CellKind::Blank:
            return {};
        case CellKind::Number:
            if (workbook.Formats().IsDate(cell->format) && IsDateSerial(cell->number, workbook.dates1904)) {
                return DateFromSerial(cell->number, workbook.dates1904);
            }
            return cell->number;
        case CellKind::Text:
            return workbook.Texts().At(cell->text);
        case CellKind::Boolean:
            return cell->boolean;
        case CellKind::Error:
            return Variant::ErrorValue{
                static_cast<std::int32_t>(kErrorBase + static_cast<std::uint32_t>(cell->error))};
    }
    return {};
}

}  // namespace vicenter::office
