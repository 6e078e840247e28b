#include "store/account_uses.h"

#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

namespace {

bool IsDebit(const automation::Variant& side) {
    return side.IsNumeric() && side.ToDouble() > 0;
}

}  // namespace

std::optional<std::vector<AccountUse>> ReadAccountUses(std::string_view accountNumber,
                                                       const std::string& userId) {
    const ado::RecordsetRef rows = GetRecordset(
        "select distinct a.FDC,isnull(n.FAccountNumber,'') as FNextNumber,isnull(n.FDC,0) as FNextDC"
        " from t_VchTemplate t inner join t_VchTemplateEntry a on a.FID = t.FID"
        " left join t_VchTemplateEntry n on n.FID = a.FID and n.FEntryID = a.FEntryID + 1 and n.FNo = a.FNo"
        " where t.FUserID = " +
        userId + " and a.FAccountNumber = " + entry::SqlQuote(accountNumber));
    if (rows == nullptr) return std::nullopt;
    std::vector<AccountUse> uses;
    for (; !rows->AtEnd(); rows->MoveNext()) {
        uses.push_back({IsDebit(rows->Value("FDC")), rows->Value("FNextNumber").ToTextOrEmpty(),
                        IsDebit(rows->Value("FNextDC"))});
    }
    return uses;
}

std::optional<bool> ReadBalanceIsDebit(std::string_view accountNumber) {
    const ado::RecordsetRef account = GetRecordset(
        "select FDC from t_Account where FNumber = " + entry::SqlQuote(accountNumber) + " and FDetail = 1");
    if (account == nullptr || account->RecordCount() < 1) return std::nullopt;
    return IsDebit(account->Value("FDC"));
}

}  // namespace vicenter::store
