#include "exchange/import_rows.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "entry/sql_text.h"
#include "exchange/cell_reading.h"
#include "exchange/import_checks.h"
#include "platform/system/utf8.h"
#include "store/number_text.h"

namespace vicenter::exchange {

namespace {

using automation::Variant;

std::string ErrorPlace(std::int32_t row, std::int32_t column) {
    return "第" + std::to_string(row) + "行，第" + ColumnLetter(column) + "列值存在错误";
}

// What an accepted cell becomes in the insert.
std::string SqlOf(const TemplateColumn& column, const std::string& text) {
    switch (column.type) {
        case CellType::DebitCredit:
            return ReadDebit(text).value_or(false) ? "1" : "0";
        case CellType::WholeNumber:
            return std::to_string(Variant(ReadTypedNumber(text).value_or(0)).ToInt16());
        case CellType::Number:
            return TypedNumberAsDecimal(text).value_or("0");
        case CellType::Text:
            break;
    }
    return entry::SqlQuote(text, true, true);
}

// What an accepted cell is read back as: sides by their names, numbers with the decimals that their column
// has room for and no zeros behind, no zero at all.
std::string StoredText(const TemplateColumn& column, const std::string& text) {
    const store::ColumnSpec& spec = store::Column(column.gridColumn);
    switch (column.type) {
        case CellType::DebitCredit:
            return std::string(ReadDebit(text).value_or(false) ? store::kDebit : store::kCredit);
        case CellType::Number:
        case CellType::WholeNumber: {
            std::string plain = SqlOf(column, text);
            if (spec.kind == store::CellKind::TemplateNumber) return plain;
            const auto number = automation::Decimal::Parse(plain);
            if (!number) return plain;
            const automation::Decimal stored =
                number->Scale() > spec.decimals ? number->Rescaled(spec.decimals) : *number;
            return stored.IsZero() ? std::string() : stored.ToShortText();
        }
        case CellType::Text:
            break;
    }
    return std::string(system::TrimBlanks(text));
}

}  // namespace

ImportRows::ImportRows(const ObjectRef& sheet, std::vector<std::int32_t> sheetColumns,
                       const std::string& fieldList)
    : cells_(sheet), sheetColumns_(std::move(sheetColumns)), texts_(sheetColumns_.size()) {
    std::string_view rest = fieldList;
    while (!rest.empty()) {
        const std::string_view field = rest.substr(0, rest.find(','));
        const auto column =
            std::find_if(kColumns.begin(), kColumns.end(),
                         [field](const TemplateColumn& known) { return known.field == field; });
        if (column == kColumns.end())
            throw automation::Error(automation::error_number::kInvalidProcedureCall);
        if (static_cast<std::size_t>(column - kColumns.begin()) == kNumberColumn)
            numberIndex_ = columns_.size();
        columns_.push_back(static_cast<std::size_t>(column - kColumns.begin()));
        rest.remove_prefix(std::min(rest.size(), field.size() + 1));
    }
    if (columns_.size() != texts_.size())
        throw automation::Error(automation::error_number::kInvalidProcedureCall);
}

// An error value, a result that was never calculated, digits that the sheet has lost.
void ImportRows::TakeFault(const Variant& value, CellType type, ReadText& read) {
    if (value.IsError()) {
        constexpr std::uint32_t kNotCalculated = 2050;
        const bool calculated = (static_cast<std::uint32_t>(value.AsErrorCode()) & 0xFFFF) != kNotCalculated;
        read.fault = calculated ? "公式结果为错误值" : "公式没有计算结果，请用 Excel 打开并保存后再引入";
        // That #N/A is no number needs no words; that it is no text does.
        read.told = !calculated || type == CellType::Text;
        return;
    }
    // A number keeps 15 digits; what a longer code became is not what was typed.
    constexpr double kFirstInexact = 1e15;
    if (type == CellType::Text && value.Type() == automation::VariantType::Double &&
        std::fabs(value.ToDouble()) >= kFirstInexact) {
        read.fault = "数字超过15位，请将单元格设为文本格式后重新录入";
        read.told = true;
    }
}

ImportRows::ReadText ImportRows::ReadCell(std::int32_t row, std::size_t index) {
    const std::int32_t column = sheetColumns_[index];
    const std::size_t place = columns_[index];
    const CellType type = kColumns[place].type;
    const Variant value = cells_.Value(row, column);
    ReadText read{CellAsTyped(value)};
    TakeFault(value, type, read);
    // Explanations and remarks are prose, where such blanks and marks may belong to what is told.
    const bool isProse = place == kExplanationColumn || place == kRemarkColumn;
    if (value.Type() == automation::VariantType::Text && !isProse) {
        read.text = store::TrimmedOfAnyBlanks(store::WithoutInvisibleMarks(read.text));
    }
    if (value.Type() == automation::VariantType::Double && type == CellType::Text) {
        const std::string format = cells_.At(row, column)->Get("NumberFormat").ToTextOrEmpty();
        read.text = WithZerosOf(std::move(read.text), format);
    }
    return read;
}

bool ImportRows::ReadRow(std::int32_t row) {
    row_ = row;
    bool any = false;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        texts_[i] = ReadCell(row, i);
        any = any || !texts_[i].text.empty();
    }
    return any;
}

bool ImportRows::IsFirstOfItsNumber() {
    std::string number = texts_[numberIndex_].text;
    // "1" and "1.0" are one template number.
    if (!number.empty() && CheckImportCell(number, CellType::WholeNumber, true)) {
        number = SqlOf(kColumns[kNumberColumn], number);
    }
    return numbersMet_.insert(std::move(number)).second;
}

std::string ImportRows::WhyNot(std::size_t index, bool& told) {
    const ReadText& read = texts_[index];
    const TemplateColumn& column = kColumns[columns_[index]];
    const bool isExplanation = columns_[index] == kExplanationColumn;
    const bool isFirst = isExplanation && IsFirstOfItsNumber();
    told = read.fault == nullptr || read.told;
    if (read.fault != nullptr) return read.fault;
    if (isFirst && read.text.empty()) return "相同凭证模板编号首行摘要不允许为空";
    if (std::string why = WhyNotStored(column, read.text); !why.empty()) return why;
    told = false;
    return WhyNotInCell(read.text, column.type, column.required);
}

void ImportRows::ValidateImportRow(std::int32_t row, std::string& values, std::string& errorText) {
    if (row != row_) ReadRow(row);
    values.clear();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) values += ',';
        const TemplateColumn& column = kColumns[columns_[i]];
        bool told = false;
        std::string why = WhyNot(i, told);
        if (why.empty()) {
            values += SqlOf(column, texts_[i].text);
            continue;
        }
        errorText += ErrorPlace(row, sheetColumns_[i]) + (told ? "(" + why + ")，" : "，") + entry::kCrLf;
        faults_.push_back(
            {row, sheetColumns_[i], std::string(column.header), texts_[i].text, std::move(why)});
    }
}

void ImportRows::FoldFaultsOf(std::int32_t row, const std::string& reason) {
    bool any = false;
    while (!faults_.empty() && faults_.back().row == row) {
        faults_.pop_back();
        any = true;
    }
    if (any) faults_.push_back({row, 0, "", "", reason});
}

store::LineTexts ImportRows::TextsAsStored() const {
    store::LineTexts line;
    const auto at = [&line](int gridColumn) -> std::string& {
        return line[static_cast<std::size_t>(gridColumn - 1)];
    };
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const TemplateColumn& column = kColumns[columns_[i]];
        const ReadText& read = texts_[i];
        const bool accepted = read.fault == nullptr && WhyNotStored(column, read.text).empty() &&
                              CheckImportCell(read.text, column.type, column.required);
        at(column.gridColumn) = accepted ? StoredText(column, read.text) : read.text;
    }
    // A rate is one of a currency.
    if (at(store::column::kCurrencyName).empty()) at(store::column::kRate).clear();
    return line;
}

}  // namespace vicenter::exchange
