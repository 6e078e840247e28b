#include "store/account_needs.h"

#include <string>

#include "automation/error.h"
#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

std::optional<AccountNeeds> ReadAccountNeeds(std::string_view accountNumber) {
    const ado::RecordsetRef account =
        GetRecordset("select FIsBank,FCurrencyID,FUnitGroupID,FDetailID from t_Account where FNumber = " +
                     entry::SqlQuote(accountNumber) + " and FDetail = 1");
    if (account == nullptr || account->RecordCount() < 1) return std::nullopt;
    const auto number = [&](std::string_view field) {
        const automation::Variant& value = account->Value(field);
        return value.IsNumeric() ? value.ToDouble() : 0;
    };
    try {
        AccountNeeds needs;
        needs.settlement = account->Value("FIsBank").ToBoolean();
        needs.currency = number("FCurrencyID") != 1;
        needs.units = number("FUnitGroupID") != 0;
        needs.items = number("FDetailID") != 0;
        return needs;
    } catch (const automation::Error&) {
        return std::nullopt;
    }
}

}  // namespace vicenter::store
