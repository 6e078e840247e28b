#include "tsql/translate/comparable.h"

#include <algorithm>

#include "tsql/base/error_table.h"
#include "tsql/types/convert.h"
#include "tsql/types/old_text.h"

namespace vicenter::tsql::engine {

namespace {

const char* NameOf(std::string_view sign) {
    if (sign == "=") return "equal to";
    if (sign == "<>") return "not equal to";
    if (sign == "<") return "less than";
    if (sign == "<=") return "less than or equal to";
    return sign == ">" ? "greater than" : "greater than or equal to";
}

void RefuseOldTexts(const std::vector<Operand>& items, std::int32_t error, Position where) {
    const auto found = std::ranges::find_if(items, [](const Operand& item) { return IsOldText(item.type); });
    if (found != items.end()) throw MakeError(error, where, {found->type.Name()});
}

}  // namespace

void CheckCompared(const SqlType& left, std::string_view sign, const SqlType& right, Position where) {
    if (left.IsUnknown() || right.IsUnknown() || !(IsOldText(left) || IsOldText(right))) return;
    throw MakeError(402, where, {MessageName(left), MessageName(right), NameOf(sign)});
}

void CheckSorted(const SqlType& type, Position where) {
    if (IsOldText(type)) throw MakeError(306, where);
}

void CheckDistinct(const std::vector<Operand>& items, Position where) {
    RefuseOldTexts(items, 421, where);
}

void CheckSetMembers(const std::vector<Operand>& items, Position where) {
    RefuseOldTexts(items, 5335, where);
}

}  // namespace vicenter::tsql::engine
