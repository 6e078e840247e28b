#include "exchange/import_rows.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "entry/sql_text.h"
#include "exchange/cell_reading.h"
#include "exchange/import_checks.h"

namespace vicenter::exchange {

namespace {

using automation::Variant;

std::string ErrorPlace(std::int32_t row, std::size_t index) {
    return "第" + std::to_string(row) + "行，第" + ColumnLetter(static_cast<std::int32_t>(index + 1)) +
           "列值存在错误";
}

// A code shown with zeros before or behind ("0000", "0.00") is typed with them. What the format would round
// is left as it is.
std::string WithZerosOf(std::string_view format, std::string text) {
    constexpr std::string_view kDigits = "0123456789";
    const auto parts = [](std::string_view number) {
        const std::size_t point = std::min(number.find('.'), number.size());
        return std::pair{number.substr(0, point), number.substr(std::min(number.size(), point + 1))};
    };
    const auto [wholeZeros, decimalZeros] = parts(format);
    const auto [whole, decimals] = parts(text);
    const bool zerosOnly = !wholeZeros.empty() && wholeZeros.find_first_not_of('0') == wholeZeros.npos &&
                           decimalZeros.find_first_not_of('0') == decimalZeros.npos;
    const bool digitsOnly = !whole.empty() && whole.find_first_not_of(kDigits) == whole.npos &&
                            decimals.find_first_not_of(kDigits) == decimals.npos;
    if (!zerosOnly || !digitsOnly || decimals.size() > decimalZeros.size()) return text;
    const std::size_t before = wholeZeros.size() - std::min(wholeZeros.size(), whole.size());
    const std::size_t behind = decimalZeros.size() - decimals.size();
    if (decimals.empty() && behind > 0) text += '.';
    return std::string(before, '0') + text + std::string(behind, '0');
}

// What an accepted cell becomes in the insert.
std::string SqlOf(const TemplateColumn& column, const std::string& text) {
    switch (column.type) {
        case CellType::DebitCredit:
            return text == "借" ? "1" : "0";
        case CellType::WholeNumber:
            return std::to_string(Variant(ReadTypedNumber(text).value_or(0)).ToInt16());
        case CellType::Number:
            return CanonicalNumber(ReadTypedNumber(text).value_or(0));
        case CellType::Text:
            break;
    }
    return entry::SqlQuote(text, true, true);
}

}  // namespace

ImportRows::ImportRows(const ObjectRef& sheet, std::int32_t columnCount, const std::string& fieldList)
    : cells_(sheet), texts_(static_cast<std::size_t>(columnCount)) {
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

std::string ImportRows::ReadCell(std::int32_t row, std::size_t index) {
    const auto column = static_cast<std::int32_t>(index + 1);
    const Variant value = cells_.Value(row, column);
    std::string text = CellAsTyped(value);
    if (value.Type() != automation::VariantType::Double || kColumns[columns_[index]].type != CellType::Text) {
        return text;
    }
    return WithZerosOf(cells_.At(row, column)->Get("NumberFormat").ToTextOrEmpty(), std::move(text));
}

bool ImportRows::ReadRow(std::int32_t row) {
    row_ = row;
    bool any = false;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        texts_[i] = ReadCell(row, i);
        any = any || !texts_[i].empty();
    }
    return any;
}

bool ImportRows::IsFirstOfItsNumber() {
    std::string number = texts_[numberIndex_];
    // "1" and "1.0" are one template number.
    if (!number.empty() && CheckImportCell(number, CellType::WholeNumber, true)) {
        number = SqlOf(kColumns[kNumberColumn], number);
    }
    return numbersMet_.insert(std::move(number)).second;
}

void ImportRows::CheckExplanation(std::int32_t row, std::size_t index, std::string& values,
                                  std::string& errorText) {
    if (IsFirstOfItsNumber() && texts_[index].empty()) {
        errorText += ErrorPlace(row, index) + "(相同凭证模板编号首行摘要不允许为空)，" + entry::kCrLf;
    }
    values += entry::SqlQuote(texts_[index], true, true);
}

void ImportRows::ValidateImportRow(std::int32_t row, std::string& values, std::string& errorText) {
    if (row != row_) ReadRow(row);
    values.clear();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) values += ',';
        if (columns_[i] == kExplanationColumn) {
            CheckExplanation(row, i, values, errorText);
            continue;
        }
        const TemplateColumn& column = kColumns[columns_[i]];
        if (CheckImportCell(texts_[i], column.type, column.required)) {
            values += SqlOf(column, texts_[i]);
        } else {
            errorText += ErrorPlace(row, i) + "，" + entry::kCrLf;
        }
    }
}

}  // namespace vicenter::exchange
