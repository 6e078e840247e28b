#include "store/template_rows.h"

#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

using entry::SqlQuote;

namespace {

// Quoted as it stands: a name keeps its blanks.
std::string Literal(const std::string& text) {
    return SqlQuote(text, true, false);
}

}  // namespace

std::optional<bool> UserHasTemplate(const std::string& name, const std::string& userId) {
    const ado::RecordsetRef same = GetRecordset(
        "select FID from t_VchTemplate where FName = " + Literal(name) + " and FUserID = " + userId);
    if (same == nullptr) return std::nullopt;
    return same->RecordCount() >= 1;
}

bool RenameTemplate(const std::string& id, const std::string& name) {
    return RunSql("update t_VchTemplate set FName = " + Literal(name) + " where FID = " + id);
}

std::string CountLinesSql(const std::string& templateId) {
    return "select count(*) as FCount from t_VchTemplateEntry where FID = " + templateId;
}

std::optional<std::int32_t> CountLines(const std::string& templateId) {
    const ado::RecordsetRef rows = GetRecordset(CountLinesSql(templateId));
    if (rows == nullptr || rows->AtEnd()) return std::nullopt;
    return rows->Value("FCount").ToInt32();
}

ado::RecordsetRef ReadControlRows(const std::string& templateId) {
    return GetRecordset(
        "select FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed from t_VchTpControl where FID = " + templateId +
        " order by FNo");
}

std::optional<std::string> ReadColumnProfile(const std::string& userId) {
    const auto rows = GetRecordset("select FValue from t_VchTpProfile where FUserID = " + userId);
    if (!rows) return std::nullopt;
    return rows->AtEnd() ? std::string() : rows->Value("FValue").ToTextOrEmpty();
}

void SaveColumnProfile(const std::string& userId, const std::string& profile) {
    RunSql("update t_VchTpProfile set FValue=" + Literal(profile) + " where FUserID = " + userId);
}

ado::RecordsetRef ReadAccount(const std::string& accountId) {
    return GetRecordset("select FName,FNumber from t_Account where FAccountID = " + accountId);
}

ado::RecordsetRef ReadUnitGroup(const std::string& accountId) {
    return GetRecordset("select FUnitGroupID from t_account where FAccountID = " + accountId +
                        " and FUnitGroupID <> 0");
}

}  // namespace vicenter::store
