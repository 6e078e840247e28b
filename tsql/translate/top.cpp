// TOP … PERCENT and TOP … WITH TIES: the rows by their rank among all.

#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

// SELECT c1, … FROM (SELECT *, rank() OVER (ORDER BY keys), count(*) OVER () FROM (SELECT items, keys …))
// WHERE rank <= n ORDER BY rank
void Translator::LimitByRank(const SelectBody& select, const Query& query, Scope& scope, SelectParts& parts) {
    const TopClause& top = *select.top;
    if (top.withTies && query.orderBy.empty()) throw MakeError(1062, select.position);
    if (!parts.assignments.empty()) throw MakeError(40510, select.position, {"SELECT TOP … @variable ="});
    if (query.offset) throw MakeError(10741, select.position);
    std::string keys;
    const std::string rows = RowsToSort(query, select, scope, parts, keys);
    std::string most;
    Scope none;
    none.outer = scope.outer;
    if (top.percent) {
        const Operand percent = Value(*top.count, none);
        most = kPercentCall.Call({"\"rows$\"", RenderAs(percent, SqlType::Float())});
    } else {
        most = RowCount(*top.count, none, RowLimit::kTop);
    }
    std::string list;
    for (const Operand& item : parts.items)
        list += (list.empty() ? "" : ", ") + item.sql;
    const std::string window = "() OVER \"window$\" AS ";
    parts.tail = "SELECT " + list + " FROM (SELECT *, row_number" + window + "\"row$\", " +
                 (top.withTies ? "rank" : "row_number") + window +
                 "\"rank$\", count(*) OVER () AS \"rows$\" " + "FROM (" + rows + ") WINDOW \"window$\" AS (" +
                 keys + ")) WHERE \"rank$\" <= " + most + " ORDER BY \"row$\"";
    parts.head.clear();
}

}  // namespace vicenter::tsql::engine
