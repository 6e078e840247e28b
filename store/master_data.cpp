// The ledger's master data: resolving typed numbers, composing the items text, checking one cell. Read only.

#include <vector>

#include "entry/sql_text.h"
#include "store/cls_vi_data.h"

namespace vicenter::store {

using automation::Error;
using entry::kCrLf;
using entry::SqlText;

namespace {

std::vector<std::string> SplitPieces(const std::string& text) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1) {
        pieces.push_back(text.substr(start, comma - start));
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

// The account's currency 1 takes no other currency.
constexpr const char* kSoleCurrency = "1";

}  // namespace

RecordsetRef clsVIData::GetItemInfoByNumber(std::int32_t iType, const Variant& strValue) {
    const std::string number = SqlText(strValue);
    std::string sql;
    switch (LookUpOf(iType)) {
        case LookUp::Explanation:
            sql = std::string(
                      "select a.FExplanation,isnull(b.FAccountID,0) as FAccountID,isnull(b.FNumber,'') as "
                      "FNumber,isnull(b.FName,'') as FName ") +
                  kCrLf +
                  " from t_VoucherExp a left join t_Account b on a.FAccountID = b.FAccountID where a.FNumber "
                  "= " +
                  number;
            break;
        case LookUp::Account:
            sql = "select FAccountID,FNumber,FName from t_Account where FNumber = " + number;
            break;
        case LookUp::Settlement:
            sql = "select FItemID,FName from t_Settle where FNumber=" + number;
            break;
        case LookUp::Currency:
            sql = "select FCurrencyID,FName from t_Currency where FNumber = " + number;
            break;
        case LookUp::Unit:
            sql = "select FUnitGroupID,FName from t_MeasureUnit where FNumber = " + number;
            break;
        case LookUp::Items:
        case LookUp::None:
            return nullptr;
    }
    return GetRs(sql);
}

std::string clsVIData::MergeItemsInfo(const std::string& lDetailID) {
    return ItemsInfo(lDetailID).value_or(std::string());
}

std::optional<std::string> clsVIData::ItemsInfo(const std::string& lDetailID) {
    try {
        const RecordsetRef classes = Query(
            std::string(" select a.FItemClassID,b.FSQLTableName from t_ItemDetailV a ") + kCrLf +
            " inner join t_ItemClass b on a.FItemClassID = b.FItemClassID " + kCrLf +
            " where a.FDetailID = " + lDetailID + kCrLf + " and b.FItemClassID>0 order by a.FItemClassID ");
        if (classes->RecordCount() <= 0) return std::string();
        std::string selectList;
        std::string joinList;
        for (; !classes->AtEnd(); classes->MoveNext()) {
            const std::string alias = "F" + classes->Value("FItemClassID").ToText();
            if (!selectList.empty()) selectList += "+','+";
            selectList += "isnull(" + alias + ".FNumber,'')";
            joinList += " left join " + classes->Value("FSQLTableName").ToText() + " " + alias + " on a." +
                        alias + " = " + alias + ".FItemID ";
        }
        const RecordsetRef merged =
            QueryAgain("select " + selectList + " as FItemsInfo from t_ItemDetail a " + joinList +
                       " Where FDetailID = " + lDetailID);
        return merged->RecordCount() > 0 ? merged->Value("FItemsInfo").ToTextOrEmpty() : std::string();
    } catch (const Error&) {
        return std::nullopt;
    }
}

RecordsetRef clsVIData::GetItems(const Variant& accountNumber) {
    return GetRs(
        std::string("select a.FDetailID,isnull(b.FDetailCount,0) as FDetailCount from t_Account a ") + kCrLf +
        " left join t_ItemDetail b on a.FDetailID = b.FDetailID " + kCrLf +
        " where a.FNumber = " + SqlText(accountNumber) + " and a.FDetail = 1 and a.FDetailID <> 0 ");
}

RecordsetRef clsVIData::GetItemClassIDs(const std::string& FDetailID) {
    return GetRs(std::string("select a.FItemClassID,FName from t_ItemDetailv a ") + kCrLf +
                 " inner join t_ItemClass b on a.FItemClassID = b.FItemClassID " + kCrLf +
                 " where FDetailID = " + FDetailID + " and FItemID = -1 order by a.FItemClassID ");
}

bool clsVIData::CheckErrorCell(std::int32_t iType, const Variant& strAcctNumber, const Variant& strSettleName,
                               const Variant& strCyName, const Variant& strUnitName,
                               const Variant& strItems) {
    try {
        const std::string accountNumber = strAcctNumber.ToTextOrEmpty();
        switch (static_cast<CellCheck>(iType)) {
            case CellCheck::Account:
                return accountNumber.empty() || Query("select * from t_Account where FNumber = " +
                                                      SqlText(accountNumber) + " and FDetail = 1")
                                                        ->RecordCount() > 0;
            case CellCheck::Settlement: {
                const std::string settleName = strSettleName.ToTextOrEmpty();
                return settleName.empty() || SettlementIsValid(accountNumber, settleName);
            }
            case CellCheck::Currency: {
                const std::string currencyName = strCyName.ToTextOrEmpty();
                return currencyName.empty() || CurrencyIsValid(accountNumber, currencyName);
            }
            case CellCheck::Unit: {
                const std::string unitName = strUnitName.ToTextOrEmpty();
                return unitName.empty() ||
                       Query(std::string(
                                 " select FMeasureUnitID from t_MeasureUnit where FMeasureUnitID >0 and "
                                 "FUnitGroupID = (select FUnitGroupID from t_Account ") +
                             kCrLf + " where FNumber = " + SqlText(accountNumber) +
                             " and FDetail = 1) and FName = " + SqlText(unitName))
                               ->RecordCount() > 0;
            }
            case CellCheck::Items: {
                const std::string items = strItems.ToTextOrEmpty();
                return items.find_first_not_of(',') == std::string::npos ||
                       ItemsAreValid(accountNumber, items);
            }
            case CellCheck::None:
                break;
        }
        return true;
    } catch (const Error&) {
        return false;
    }
}

bool clsVIData::SettlementIsValid(const std::string& accountNumber, const std::string& settleName) {
    if (Query("select FItemID from t_Settle where FName = " + SqlText(settleName))->RecordCount() <= 0)
        return false;
    const RecordsetRef account = QueryAgain(
        "select FIsBank from t_Account where FNumber = " + SqlText(accountNumber) + " and FDetail = 1 ");
    return account->RecordCount() > 0 && account->Value("FIsBank").ToBoolean();
}

bool clsVIData::CurrencyIsValid(const std::string& accountNumber, const std::string& currencyName) {
    const RecordsetRef chosen =
        Query("select FCurrencyID from t_Currency where FName = " + SqlText(currencyName));
    if (chosen->RecordCount() <= 0) return false;
    const RecordsetRef account = QueryAgain(
        "select FCurrencyID from t_Account where FNumber = " + SqlText(accountNumber) + " and FDetail = 1 ");
    if (account->RecordCount() <= 0) return false;
    return account->Value("FCurrencyID").ToTextOrEmpty() != kSoleCurrency ||
           chosen->Value("FCurrencyID").ToTextOrEmpty() == kSoleCurrency;
}

bool clsVIData::ItemsAreValid(const std::string& accountNumber, const std::string& items) {
    const RecordsetRef classes = Query(
        std::string(" select a.FItemClassID,b.FSQLTableName from t_ItemDetailV a ") + kCrLf +
        " inner join t_ItemClass b on a.FItemClassID = b.FItemClassID " + kCrLf +
        " where a.FDetailID = (select FDetailID  from t_Account where FNumber = " + SqlText(accountNumber) +
        ")" + kCrLf + " and b.FItemClassID>0 order by a.FItemClassID ");
    if (classes->RecordCount() <= 0) return false;
    const std::vector<std::string> pieces = SplitPieces(items);
    for (std::size_t i = 0; !classes->AtEnd(); classes->MoveNext(), ++i) {
        if (i >= pieces.size()) return false;
        if (pieces[i].empty()) continue;
        const RecordsetRef item =
            QueryAgain("select FItemID from " + classes->Value("FSQLTableName").ToText() +
                       " where fnumber = " + SqlText(pieces[i]));
        if (item->RecordCount() <= 0) return false;
    }
    return true;
}

}  // namespace vicenter::store
