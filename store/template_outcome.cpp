#include "store/template_outcome.h"

#include <string_view>

#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

namespace {

// The texts of one field, row by row; nothing on an error.
std::optional<std::vector<std::string>> ReadField(std::string_view field, const std::string& sql) {
    const ado::RecordsetRef rows = GetRecordset(sql);
    if (rows == nullptr) return std::nullopt;
    std::vector<std::string> texts;
    for (; !rows->AtEnd(); rows->MoveNext())
        texts.push_back(rows->Value(field).ToTextOrEmpty());
    return texts;
}

// What is to be known of the numbers of a template ("" for the one that is spoken of); "" when all are well.
std::string UnusableNote(const std::string& whose, const UnusableNumbers& unusable) {
    const std::string note = "注：" + whose;
    if (!unusable) return note + "哪些编号无法在当前账套中使用未能读取，请重新打开凭证模板查看！";
    if (unusable->empty()) return {};
    std::string joined;
    for (const std::string& number : *unusable)
        joined.append(joined.empty() ? "" : "、").append(number);
    return note + "编号为 " + joined + " 的凭证模板存在异常(标红)，无法在当前账套中使用！";
}

}  // namespace

UnusableNumbers ReadUnusableNumbers(const std::string& templateId) {
    return ReadField("FNo", "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = " + templateId +
                                " order by fno");
}

std::optional<std::vector<std::string>> ReadTemplatesWithUnusableNumbers(const std::string& userId) {
    return ReadField("FID",
                     "select distinct a.FID from t_VchTpControl a inner join t_VchTemplate b on a.FID = b.FID"
                     " where a.FIsCanUsed = 0 and (b.FUserID = " +
                         userId + " or b.FID = 0) order by a.FID");
}

std::string WithUnusableNote(std::string message, const UnusableNumbers& unusable) {
    const std::string note = UnusableNote("", unusable);
    if (note.empty()) return message;
    return message + entry::kCrLf + entry::kCrLf + note;
}

void AppendUnusableNote(std::string& message, const std::string& name, const UnusableNumbers& unusable) {
    const std::string note = UnusableNote("模板 " + name + " ", unusable);
    if (!note.empty()) message.append(entry::kCrLf).append(note);
}

}  // namespace vicenter::store
