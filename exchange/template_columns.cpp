#include "exchange/template_columns.h"

#include "platform/system/collation.h"

namespace vicenter::exchange {

namespace {

CellType TypeOf(store::CellKind kind) {
    switch (kind) {
        case store::CellKind::TemplateNumber:
        case store::CellKind::Whole:
        case store::CellKind::Id:
            return CellType::WholeNumber;
        case store::CellKind::Decimal:
            return CellType::Number;
        case store::CellKind::Direction:
            return CellType::DebitCredit;
        case store::CellKind::Text:
            break;
    }
    return CellType::Text;
}

}  // namespace

const std::array<TemplateColumn, kWorkbookColumnCount> kColumns = [] {
    std::array<TemplateColumn, kWorkbookColumnCount> columns{};
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const store::ColumnSpec& spec = *store::WorkbookColumns()[i];
        columns[i] = {spec.header, spec.field, TypeOf(spec.kind), spec.requiredInWorkbook, spec.column};
    }
    return columns;
}();

std::optional<std::size_t> FindColumn(std::string_view header) {
    const auto& collator = system::Collator::Chinese();
    const std::string folded = collator.Fold(header);
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        if (collator.Fold(kColumns[i].header) == folded) return i;
    }
    return std::nullopt;
}

std::string ColumnLetter(std::int32_t column) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr auto kLetters = static_cast<std::int32_t>(kAlphabet.size());
    std::string letters;
    for (; column > 0; column = (column - 1) / kLetters) {
        letters.insert(letters.begin(), kAlphabet[static_cast<std::size_t>((column - 1) % kLetters)]);
    }
    return letters;
}

}  // namespace vicenter::exchange
