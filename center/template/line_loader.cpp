#include "center/template/line_loader.h"

#include "center/grid/quiet_grid.h"
#include "store/cls_vi_data.h"

namespace vicenter::center {

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

// One step of a 64-bit FNV-1a.
void Mix(std::uint64_t& hash, unsigned value) {
    hash = ((hash == 0 ? 0xcbf29ce484222325U : hash) ^ value) * 0x100000001b3U;
}

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

void LineReader::ReadTexts(std::size_t record) {
    for (int c = 1; c <= kColumnCount; ++c)
        texts_[static_cast<std::size_t>(c - 1)] = CellText(c, record);
}

void LineReader::FillRow(EntryGrid& grid, int gridRow, std::size_t record) {
    ReadTexts(record);
    grid.FillRow(gridRow, texts_);
}

void LineReader::Add(std::size_t record, LinesDigest& digest) {
    ReadTexts(record);
    AddFilled(digest);
}

void LineReader::AddFilled(LinesDigest& digest) const {
    ++digest.lines;
    for (const std::string& text : texts_) {
        for (const char c : text)
            Mix(digest.hash, static_cast<unsigned char>(c));
        Mix(digest.hash, kEndOfText);
    }
}

LinesDigest DigestOf(const ado::Recordset& records) {
    LinesDigest digest;
    LineReader reader(records);
    const std::size_t entry = records.ColumnIndex("FEntryID");
    for (std::size_t record = 0; record < static_cast<std::size_t>(records.RecordCount()); ++record) {
        if (!records.ValueAt(record, entry).IsNull()) reader.Add(record, digest);
    }
    return digest;
}

std::optional<int> LoadLines(EntryGrid& grid, const std::string& templateId, LinesDigest* digest) {
    store::clsVIData data;
    const ado::RecordsetRef records = data.GetVchTemplateEntryInfo(templateId);
    if (records == nullptr) return std::nullopt;
    if (digest != nullptr) *digest = {};
    const auto count = static_cast<int>(records->RecordCount());
    if (count < 1) return 0;

    // Filling a grid is no change of its content.
    const Unpainted quiet(grid);
    const Unrecorded filling(grid);
    if (count >= kFirstRowTotal) grid.SetRowTotal(count + 2);
    LineReader reader(*records);
    CellChecks checks;
    int filled = 0;
    try {
        for (; filled < count; ++filled) {
            reader.FillRow(grid, filled + 1, static_cast<std::size_t>(filled));
            if (digest != nullptr) reader.AddFilled(*digest);
        }
    } catch (const automation::Error&) {
        MarkRows(grid, 1, filled, checks);
        throw;
    }
    MarkRows(grid, 1, count, checks);
    return count;
}

int RowOnceSorted(const EntryGrid& grid, int rowCount, int row) {
    if (row < 1 || row > rowCount) return row;
    // "01" and "1" are one number.
    const auto number = [&grid](int ofRow) {
        std::string_view digits = grid.Text(ofRow, column::kNo);
        while (digits.size() > 1 && digits.front() == '0')
            digits.remove_prefix(1);
        return digits;
    };
    const std::string_view own = number(row);
    int sorted = 1;
    for (int other = 1; other <= rowCount; ++other) {
        const std::string_view digits = number(other);
        const bool less = digits.size() != own.size() ? digits.size() < own.size() : digits < own;
        if (less || (digits == own && other < row)) ++sorted;
    }
    return sorted;
}

}  // namespace vicenter::center
