#include "store/choices.h"

#include "store/statements.h"

namespace vicenter::store {

namespace {

std::vector<std::string> Names(const std::string& sql) {
    std::vector<std::string> names;
    const ado::RecordsetRef rows = GetRecordset(sql);
    if (!rows) return names;
    for (; !rows->AtEnd(); rows->MoveNext())
        names.push_back(rows->Value("FName").ToTextOrEmpty());
    return names;
}

}  // namespace

Choices ReadChoices() {
    Choices choices;
    const ado::RecordsetRef accounts =
        GetRecordset("select FNumber,FName from t_Account where FDetail = 1 order by FNumber");
    for (; accounts && !accounts->AtEnd(); accounts->MoveNext()) {
        choices.accountNumbers.push_back(accounts->Value("FNumber").ToTextOrEmpty());
        choices.accountNames.push_back(accounts->Value("FName").ToTextOrEmpty());
    }
    choices.settlements = Names("select FName from t_Settle where FItemID > 0 order by FNumber");
    choices.currencies = Names("select FName from t_Currency where FCurrencyID > 0 order by FNumber");
    choices.units = Names("select distinct FName from t_MeasureUnit where FMeasureUnitID > 0 order by FName");
    return choices;
}

}  // namespace vicenter::store
