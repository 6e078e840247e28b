#include "store/column_room.h"

#include <cmath>
#include <limits>

#include "automation/decimal.h"
#include "automation/variant.h"
#include "platform/system/utf8.h"

namespace vicenter::store {

namespace {

// As the account set rounds it: to the column's decimals.
bool HasRoomForDecimal(std::string_view text, int decimals) {
    const int wholeDigits = kDecimalDigits - decimals;
    std::string limit(static_cast<std::size_t>(wholeDigits) + 1, '0');
    limit.front() = '1';
    try {
        if (const auto exact = automation::Decimal::Parse(text)) {
            const automation::Decimal rounded =
                exact->Scale() > decimals ? exact->Rescaled(decimals) : *exact;
            const automation::Decimal most = *automation::Decimal::Parse(limit);
            const automation::Decimal least = *automation::Decimal::Parse("-" + limit);
            return automation::Decimal::Compare(rounded, most) < 0 &&
                   automation::Decimal::Compare(rounded, least) > 0;
        }
    } catch (const automation::Error&) {
        // More digits than an exact decimal has.
    }
    const auto number = automation::ParseDouble(text);
    return !number || std::fabs(*number) < std::pow(10.0, wholeDigits);
}

bool HasRoomForWhole(std::string_view text) {
    const auto number = automation::ParseDouble(text);
    return !number || (*number > static_cast<double>(std::numeric_limits<std::int32_t>::min()) - 1 &&
                       *number < static_cast<double>(std::numeric_limits<std::int32_t>::max()) + 1);
}

}  // namespace

std::string WhyNoRoom(const ColumnSpec& column, std::string_view text) {
    switch (column.kind) {
        case CellKind::Text: {
            // No text has more UTF-16 code units than bytes.
            const auto room = static_cast<std::size_t>(column.maxCharacters);
            if (text.size() <= room || system::CodeUnitCount(system::TrimBlanks(text)) <= room) return {};
            return "长度不能超过" + std::to_string(room) + "个字符";
        }
        case CellKind::Decimal:
            if (HasRoomForDecimal(text, column.decimals)) return {};
            return "数字过大，整数部分不能超过" + std::to_string(kDecimalDigits - column.decimals) + "位";
        case CellKind::TemplateNumber:
        case CellKind::Whole:
        case CellKind::Id:
            if (HasRoomForWhole(text)) return {};
            return "数字过大，不能大于" + std::to_string(kLargestTemplateNumber);
        case CellKind::Direction:
            break;
    }
    return {};
}

}  // namespace vicenter::store
