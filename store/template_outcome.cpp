#include "store/template_outcome.h"

#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

std::optional<std::vector<std::string>> ReadUnusableNumbers(const std::string& templateId) {
    const ado::RecordsetRef rows = GetRecordset(
        "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = " + templateId + " order by fno");
    if (rows == nullptr) return std::nullopt;
    std::vector<std::string> numbers;
    for (; !rows->AtEnd(); rows->MoveNext())
        numbers.push_back(rows->Value("FNo").ToTextOrEmpty());
    return numbers;
}

std::string WithUnusableNote(std::string message, const std::vector<std::string>& unusable) {
    if (unusable.empty()) return message;
    std::string joined;
    for (const std::string& number : unusable)
        joined.append(joined.empty() ? "" : "、").append(number);
    return message + entry::kCrLf + entry::kCrLf + "注：编号为 " + joined +
           " 的凭证模板存在异常(标红)，无法在当前账套中使用！";
}

}  // namespace vicenter::store
