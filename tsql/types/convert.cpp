#include "tsql/types/convert.h"

#include <cmath>

#include "text/hex.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/types/convert_binary.h"
#include "tsql/types/convert_number.h"
#include "tsql/types/convert_text.h"
#include "tsql/types/date_part.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

namespace {

Value ToDate(const Value& value, const SqlType& from, const SqlType& to, int style, DateFormat format) {
    std::optional<DateTime> date;
    switch (from.Storage()) {
        case StorageClass::kDate:
            date = value.Date();
            break;
        case StorageClass::kText: {
            bool outOfRange = false;
            const bool older = to.kind == TypeKind::kDateTime || to.kind == TypeKind::kSmallDateTime;
            date = ParseDate(value.Text(), {style, format, !older}, &outOfRange);
            if (date) break;
            // The older types tell a day that does not exist from a text that is no date.
            if (outOfRange && older) throw MakeError(242, {}, {from.Name(), to.Name()});
            throw MakeError(241, {});
        }
        case StorageClass::kInteger:
        case StorageClass::kReal:
        case StorageClass::kDecimal: {
            const double days = ToReal(value, from, SqlType::Float()).Real() + static_cast<double>(kZeroDay);
            const double milliseconds = days * static_cast<double>(kMillisecondsPerDay);
            if (!(std::fabs(milliseconds) < 3e14)) throw MakeError(8115, {}, {"expression", to.Name()});
            date = AddToDate(DatePart::kMillisecond, std::llround(milliseconds), DateTime());
            if (!date) throw MakeError(8115, {}, {"expression", to.Name()});
            break;
        }
        case StorageClass::kBinary:
            throw MakeError(529, {}, {from.Name(), to.Name()});
    }
    const auto rounded = RoundToType(*date, to);
    if (!rounded && from.IsNumber()) throw MakeError(8115, {}, {"expression", to.Name()});
    if (!rounded) throw MakeError(242, {}, {from.Name(), to.Name()});
    return Value(*rounded);
}

Value ToGuid(const Value& value, const SqlType& from, const SqlType& to) {
    if (from.IsText() || from.kind == TypeKind::kUniqueIdentifier) {
        std::string_view text = value.Text();
        if (text.size() > 36 && text.front() == '{') text = text.substr(1);
        text = text.substr(0, 36);
        std::string guid;
        for (std::size_t at = 0; at < text.size(); ++at) {
            const bool dash = at == 8 || at == 13 || at == 18 || at == 23;
            const char c = text[at];
            if (dash ? c != '-' : !text::IsHexDigit(c)) break;
            guid += text::UpperAscii(c);
        }
        if (guid.size() == 36) return Value(guid);
        throw MakeError(8169, {});
    }
    throw MakeError(529, {}, {from.Name(), to.Name()});
}

}  // namespace

std::string MessageName(const SqlType& type) {
    return type.kind == TypeKind::kDecimal ? "numeric" : std::string(type.Name());
}

bool SameRepresentation(const SqlType& from, const SqlType& to) {
    if (from.IsUnknown()) return true;
    if (from == to) return true;
    if (from.IsInteger() && to.IsInteger()) {
        // Upward nothing changes; bit and tinyint are the only ones with a lower end of 0.
        return from.kind <= to.kind && to.kind != TypeKind::kBit;
    }
    if (from.IsText() && to.IsText()) {
        if (to.IsFixedText()) return false;
        return to.IsMax() || (!from.IsMax() && from.length <= to.length);
    }
    if (from.kind == TypeKind::kReal && to.kind == TypeKind::kFloat) return true;
    if (from.IsExact() && to.IsExact()) {
        // The places are not part of what is kept, so that more room changes nothing.
        const bool isWider = from.scale <= to.scale && from.precision - from.scale <= to.precision - to.scale;
        return isWider && (!to.IsMoney() || from.IsMoney());
    }
    return false;
}

void CheckConversion(const SqlType& from, const SqlType& to, bool isExplicit) {
    if (from.IsUnknown() || from.kind == to.kind) return;
    const bool guidFrom = from.kind == TypeKind::kUniqueIdentifier;
    const bool guidTo = to.kind == TypeKind::kUniqueIdentifier;
    const bool clash =
        (guidFrom && !to.IsText() && !to.IsBinary()) || (guidTo && !from.IsText() && !from.IsBinary()) ||
        (from.kind == TypeKind::kDate && to.IsNumber()) || (to.kind == TypeKind::kDate && from.IsNumber()) ||
        (from.kind == TypeKind::kTime && to.IsNumber()) || (to.kind == TypeKind::kTime && from.IsNumber());
    if (clash) throw MakeError(isExplicit ? 529 : 206, {}, {MessageName(from), MessageName(to)});
    if (isExplicit) return;
    const bool onlyExplicit = (from.IsDate() && to.IsNumber()) || (from.IsText() && to.IsBinary());
    if (onlyExplicit) throw MakeError(257, {}, {MessageName(from), MessageName(to)});
}

Value Convert(const Value& value, const SqlType& from, const SqlType& to, int style, DateFormat format) {
    if (value.IsNull()) return {};
    if (from == to) return value;
    if (to.IsInteger()) return ToInteger(value, from, to);
    if (to.IsExact()) return ToDecimal(value, from, to);
    if (to.IsFloat()) return ToReal(value, from, to);
    if (to.IsText()) return ToText(value, from, to, style);
    if (to.IsDate()) return ToDate(value, from, to, style, format);
    if (to.kind == TypeKind::kUniqueIdentifier) return ToGuid(value, from, to);
    if (to.IsBinary()) return ToBinary(value, from, to, style);
    return value;
}

Value ConvertForColumn(const Value& value, const SqlType& from, const ColumnTarget& target,
                       std::string_view operation, DateFormat format) {
    if (value.IsNull()) {
        if (target.nullable) return {};
        throw MakeError(515, {}, {target.column, target.table, operation});
    }
    const SqlType& to = target.type;
    if (to.IsText()) {
        std::string text = ToPlainText(value, from, to, 0);
        if (IsTooLong(text, to)) {
            if (from.IsMoney()) throw MakeError(234, {}, {from.Name(), to.Name()});
            if (from.IsNumber()) {
                throw MakeError(8115, {}, {from.IsInteger() ? "expression" : MessageName(from), to.Name()});
            }
            // Blanks at the end are cut without a word.
            std::string_view kept = HeadUnits(text, static_cast<std::size_t>(to.length));
            if (!WithoutTrailingBlanks(std::string_view(text).substr(kept.size())).empty()) {
                throw MakeError(2628, {}, {target.table, target.column, kept});
            }
            text = std::string(kept);
        }
        return Value(Padded(std::move(text), to));
    }
    if (to.IsBinary() && to.length > 0) {
        SqlType whole = to;
        whole.length = kMaxLength;
        const Value bytes = ToBinary(value, from, whole, 0);
        if (bytes.Blob().size() > static_cast<std::size_t>(to.length) && !from.IsInteger()) {
            throw MakeError(2628, {}, {target.table, target.column, ""});
        }
    }
    return Convert(value, from, to, 0, format);
}

}  // namespace vicenter::tsql::engine
