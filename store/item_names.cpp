#include "store/item_names.h"

#include <utility>

#include "entry/sql_text.h"
#include "store/statements.h"
#include "store/template_columns.h"

namespace vicenter::store {

namespace {

// Cuts the head of the text up to the next "," off and returns it.
std::string_view TakePiece(std::string_view& items) {
    const std::size_t comma = items.find(',');
    const std::string_view piece = items.substr(0, comma);
    items = comma == std::string_view::npos ? std::string_view() : items.substr(comma + 1);
    return piece;
}

}  // namespace

std::vector<NamedItem> NamedItems(std::string_view accountNumber, std::string_view items) {
    const ado::RecordsetRef classes = GetRecordset(
        "select b.FName,b.FSQLTableName from t_ItemDetailV a inner join t_ItemClass b on "
        "a.FItemClassID = b.FItemClassID where a.FDetailID = (select FDetailID from t_Account "
        "where FNumber = " +
        entry::SqlQuote(accountNumber) + ") and b.FItemClassID > 0 order by a.FItemClassID");
    std::vector<NamedItem> named;
    for (; classes != nullptr && !classes->AtEnd(); classes->MoveNext()) {
        NamedItem item{classes->Value("FName").ToTextOrEmpty(), std::string(TakePiece(items)), {}};
        if (!item.code.empty()) {
            const ado::RecordsetRef found =
                GetRecordset("select FName from " + classes->Value("FSQLTableName").ToTextOrEmpty() +
                             " where FNumber = " + entry::SqlQuote(item.code));
            if (found != nullptr && found->RecordCount() > 0)
                item.name = found->Value("FName").ToTextOrEmpty();
        }
        named.push_back(std::move(item));
    }
    return named;
}

std::string ItemNames(std::string_view accountNumber, std::string_view items) {
    std::string names;
    for (const NamedItem& item : NamedItems(accountNumber, items)) {
        if (item.code.empty()) continue;
        if (!names.empty()) names += "\n";
        names += item.className + "：" + item.code;
        if (!item.name.empty()) names += " " + item.name;
    }
    return names;
}

std::optional<std::string> CodeOfName(int gridColumn, std::string_view name, std::string_view accountNumber) {
    const std::string quoted = entry::SqlQuote(name);
    std::string sql;
    switch (LookUpOf(gridColumn)) {
        case LookUp::Settlement:
            sql = "select FNumber from t_Settle where FName = " + quoted;
            break;
        case LookUp::Currency:
            sql = "select FNumber from t_Currency where FName = " + quoted;
            break;
        case LookUp::Unit:
            sql = "select FNumber from t_MeasureUnit where FName = " + quoted +
                  " and FUnitGroupID = (select FUnitGroupID from t_Account where FNumber = " +
                  entry::SqlQuote(accountNumber) + " and FDetail = 1)";
            break;
        default:
            return std::string();
    }
    const ado::RecordsetRef found = GetRecordset(sql);
    if (found == nullptr) return std::nullopt;
    return found->RecordCount() == 1 ? found->Value("FNumber").ToTextOrEmpty() : std::string();
}

std::optional<bool> IsUnit(std::string_view id, std::string_view name) {
    const ado::RecordsetRef found = GetRecordset(
        "select FMeasureUnitID from t_MeasureUnit where FMeasureUnitID = " + entry::SqlQuote(id) +
        " and FName = " + entry::SqlQuote(name));
    if (found == nullptr) return std::nullopt;
    return found->RecordCount() > 0;
}

}  // namespace vicenter::store
