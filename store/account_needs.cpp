#include "store/account_needs.h"

#include <algorithm>
#include <string>

#include "automation/error.h"
#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

namespace {

constexpr const char* kFields = "FIsBank,FCurrencyID,FUnitGroupID,FDetailID from t_Account where FNumber ";
constexpr std::size_t kAccountsAtOnce = 200;

// Of the record that is current.
std::optional<AccountNeeds> NeedsOf(const ado::Recordset& account) {
    const auto number = [&](std::string_view field) {
        const automation::Variant& value = account.Value(field);
        return value.IsNumeric() ? value.ToDouble() : 0;
    };
    try {
        AccountNeeds needs;
        needs.settlement = account.Value("FIsBank").ToBoolean();
        needs.currency = number("FCurrencyID") != 1;
        needs.units = number("FUnitGroupID") != 0;
        needs.items = number("FDetailID") != 0;
        return needs;
    } catch (const automation::Error&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<AccountNeeds> ReadAccountNeeds(std::string_view accountNumber) {
    const ado::RecordsetRef account = GetRecordset(std::string("select ") + kFields + "= " +
                                                   entry::SqlQuote(accountNumber) + " and FDetail = 1");
    if (account == nullptr || account->RecordCount() < 1) return std::nullopt;
    return NeedsOf(*account);
}

std::map<std::string, AccountNeeds, std::less<>> ReadNeedsOfAccounts(
    const std::vector<std::string>& numbers) {
    std::map<std::string, AccountNeeds, std::less<>> known;
    for (std::size_t first = 0; first < numbers.size(); first += kAccountsAtOnce) {
        std::string list;
        for (std::size_t i = first; i < std::min(first + kAccountsAtOnce, numbers.size()); ++i)
            list.append(list.empty() ? "" : ",").append(entry::SqlQuote(numbers[i]));
        const ado::RecordsetRef accounts =
            GetRecordset(std::string("select FNumber,") + kFields + "in (" + list + ") and FDetail = 1");
        if (accounts == nullptr || accounts->ColumnCount() == 0) break;
        for (; !accounts->AtEnd(); accounts->MoveNext()) {
            if (const std::optional<AccountNeeds> needs = NeedsOf(*accounts))
                known.emplace(accounts->Value("FNumber").ToTextOrEmpty(), *needs);
        }
    }
    return known;
}

}  // namespace vicenter::store
