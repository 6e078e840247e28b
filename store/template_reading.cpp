#include "store/template_reading.h"

#include "text/fnv.h"

namespace vicenter::store {

using automation::Decimal;
using automation::Variant;
using automation::VariantType;

namespace {

// Digits as the account set holds them, without the zeros that its column type adds behind.
std::string PlainNumber(const Variant& value) {
    if (value.Type() == VariantType::Decimal) return value.ToDecimal().ToShortText();
    if (value.Type() == VariantType::Double) return Decimal::FromDouble(value.ToDouble()).ToShortText();
    return value.ToTextOrEmpty();
}

bool IsZero(const Variant& value) {
    if (value.IsNull() || value.IsEmpty()) return true;
    if (value.Type() == VariantType::Decimal) return value.ToDecimal().IsZero();
    return value.IsNumeric() && value.ToDouble() == 0;
}

std::string DirectionText(const Variant& value) {
    if (value.IsNull() || !value.IsNumeric()) return {};
    const double code = value.ToDouble();
    if (code == 1) return std::string(kDebit);
    return code == 0 ? std::string(kCredit) : std::string();
}

constexpr unsigned kEndOfText = 0x100;  // no byte

}  // namespace

LineReader::LineReader(const ado::Recordset& records) : records_(records) {
    for (const ColumnSpec& spec : Columns()) {
        fields_[static_cast<std::size_t>(spec.column - 1)] = records.ColumnIndex(spec.field);
    }
}

std::string LineReader::CellText(int gridColumn, std::size_t record) const {
    const auto value = [&](int ofColumn) -> const Variant& {
        return records_.ValueAt(record, fields_[static_cast<std::size_t>(ofColumn - 1)]);
    };
    const Variant& own = value(gridColumn);
    switch (Column(gridColumn).kind) {
        case CellKind::Direction:
            return DirectionText(own);
        case CellKind::Id:
        case CellKind::Whole:
            return IsZero(own) ? std::string() : PlainNumber(own);
        case CellKind::Decimal:
            if (gridColumn == column::kRate && value(column::kCurrencyName).ToTextOrEmpty().empty())
                return {};
            return IsZero(own) ? std::string() : PlainNumber(own);
        case CellKind::TemplateNumber:
        case CellKind::Text:
            break;
    }
    return own.ToTextOrEmpty();
}

const LineTexts& LineReader::Read(std::size_t record) {
    for (int c = 1; c <= kColumnCount; ++c)
        texts_[static_cast<std::size_t>(c - 1)] = CellText(c, record);
    return texts_;
}

void LinesDigest::Add(const LineTexts& line) {
    text::Fnv all = lines == 0 ? text::Fnv() : text::Fnv(hash);
    for (const std::string& text : line) {
        all.Add(text);
        all.Add(kEndOfText);
    }
    ++lines;
    hash = all.Value();
}

LinesDigest DigestOf(const ado::Recordset& records) {
    LinesDigest digest;
    LineReader reader(records);
    const std::size_t entry = records.ColumnIndex("FEntryID");
    for (std::size_t record = 0; record < static_cast<std::size_t>(records.RecordCount()); ++record) {
        if (!records.ValueAt(record, entry).IsNull()) digest.Add(reader.Read(record));
    }
    return digest;
}

}  // namespace vicenter::store
