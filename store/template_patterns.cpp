#include "store/template_patterns.h"

#include "store/statements.h"
#include "store/template_columns.h"

namespace vicenter::store {

std::vector<KnownPattern> ReadKnownPatterns(const std::string& userId) {
    std::vector<KnownPattern> patterns;
    const ado::RecordsetRef lines = GetRecordset(
        "select t.FID,t.FName,e.FNo,e.FDC,e.FAccountNumber from t_VchTemplate t inner join "
        "t_VchTemplateEntry e on e.FID = t.FID where t.FUserID = " +
        userId + " or t.FID = 0 order by t.FID,e.FNo,e.FEntryID");
    if (!lines) return patterns;
    std::string before;
    for (; !lines->AtEnd(); lines->MoveNext()) {
        const std::string number = lines->Value("FNo").ToTextOrEmpty();
        const std::string key = lines->Value("FID").ToTextOrEmpty() + "," + number;
        if (patterns.empty() || key != before)
            patterns.push_back({lines->Value("FName").ToTextOrEmpty(), number, {}});
        before = key;
        const bool debit = lines->Value("FDC").ToTextOrEmpty() == "1";
        patterns.back().lines.push_back(std::string(debit ? kDebit : kCredit) +
                                        lines->Value("FAccountNumber").ToTextOrEmpty());
    }
    return patterns;
}

}  // namespace vicenter::store
