#include "center/template/line_loader.h"

#include "center/grid/quiet_grid.h"
#include "store/cls_vi_data.h"
#include "store/template_reading.h"

namespace vicenter::center {

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
    store::LineReader reader(*records);
    CellChecks checks;
    int filled = 0;
    try {
        for (; filled < count; ++filled) {
            const store::LineTexts& texts = reader.Read(static_cast<std::size_t>(filled));
            grid.FillRow(filled + 1, texts);
            if (digest != nullptr) digest->Add(texts);
        }
    } catch (const automation::Error&) {
        MarkRows(grid, 1, filled, checks);
        throw;
    }
    MarkRows(grid, 1, count, checks);
    return count;
}

LinesDigest DigestOfRows(const EntryGrid& grid, int rowCount) {
    LinesDigest digest;
    store::LineTexts texts;
    for (int row = 1; row <= rowCount; ++row) {
        for (int c = 1; c <= kColumnCount; ++c)
            texts[static_cast<std::size_t>(c - 1)] = grid.Text(row, c);
        digest.Add(texts);
    }
    return digest;
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
