#include "store/item_names.h"

#include "entry/sql_text.h"
#include "store/statements.h"

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

std::string ItemNames(std::string_view accountNumber, std::string_view items) {
    const ado::RecordsetRef classes = GetRecordset(
        "select b.FName,b.FSQLTableName from t_ItemDetailV a inner join t_ItemClass b on "
        "a.FItemClassID = b.FItemClassID where a.FDetailID = (select FDetailID from t_Account "
        "where FNumber = " +
        entry::SqlQuote(accountNumber) + ") and b.FItemClassID > 0 order by a.FItemClassID");
    std::string names;
    for (; classes != nullptr && !classes->AtEnd() && !items.empty(); classes->MoveNext()) {
        const std::string code(TakePiece(items));
        if (code.empty()) continue;
        const ado::RecordsetRef item =
            GetRecordset("select FName from " + classes->Value("FSQLTableName").ToTextOrEmpty() +
                         " where FNumber = " + entry::SqlQuote(code));
        if (!names.empty()) names += "\n";
        names += classes->Value("FName").ToTextOrEmpty() + "：" + code;
        if (item != nullptr && item->RecordCount() > 0) names += " " + item->Value("FName").ToTextOrEmpty();
    }
    return names;
}

}  // namespace vicenter::store
