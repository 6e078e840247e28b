// TOP … PERCENT and TOP … WITH TIES: the rows by their rank among all.

#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

// SELECT c1, … FROM (SELECT items, rank() OVER (ORDER BY keys), count(*) OVER ()) WHERE rank <= n ORDER BY
// rank
void Translator::LimitByRank(const SelectBody& select, const Query& query, Scope& scope, SelectParts& parts) {
    const TopClause& top = *select.top;
    if (top.withTies && query.orderBy.empty()) throw MakeError(1062, select.position);
    if (!parts.assignments.empty()) throw MakeError(40510, select.position, {"SELECT TOP … @variable ="});
    if (query.offset) throw MakeError(10741, select.position);
    std::string keys;
    for (const OrderItem& item : query.orderBy)
        keys += (keys.empty() ? "ORDER BY " : ", ") + OrderKey(item, query, select, scope, parts, true);
    // Without the order of its own, equal rows are one group.
    if (select.distinct) {
        if (scope.grouped) throw MakeError(40510, select.position, {"TOP … PERCENT of DISTINCT groups"});
        std::string groups;
        for (const Operand& item : parts.items)
            groups += (groups.empty() ? " GROUP BY " : ", ") + Collated(item);
        parts.tail += groups;
        parts.head = "SELECT";
    }
    std::string list;
    std::string outer;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        const std::string name = "c" + std::to_string(i + 1);
        list += (i == 0 ? " " : ", ") + Collated(parts.items[i]) + " AS " + name;
        outer += (i == 0 ? "SELECT " : ", ") + name;
    }
    std::string most;
    Scope none;
    none.outer = scope.outer;
    if (top.percent) {
        const Operand percent = Value(*top.count, none);
        most = kPercentCall.Call({"\"rows$\"", RenderAs(percent, SqlType::Float())});
    } else {
        most = RowCount(*top.count, none, RowLimit::kTop);
    }
    list += ", row_number() OVER (" + keys + ") AS \"row$\", " + (top.withTies ? "rank" : "row_number") +
            "() OVER (" + keys + ") AS \"rank$\", count(*) OVER () AS \"rows$\"";
    parts.tail = outer + " FROM (" + parts.head + list + parts.tail + ") WHERE \"rank$\" <= " + most +
                 " ORDER BY \"row$\"";
    for (std::size_t i = 0; i < parts.items.size(); ++i)
        parts.items[i] = Computed("c" + std::to_string(i + 1), parts.items[i].type);
    parts.head.clear();
}

}  // namespace vicenter::tsql::engine
