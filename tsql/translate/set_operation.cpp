// UNION, INTERSECT and EXCEPT: members that agree on the types of their columns.

#include <algorithm>

#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::size_t kMostTerms = 400;

const SelectBody* FirstSelect(const QueryBody& body) {
    const QueryBody* at = &body;
    while (at->kind == QueryBodyKind::kSetOperation)
        at = As<SetOperation>(*at).first.get();
    return &As<SelectBody>(*at);
}

}  // namespace

// The text of a SELECT; with types each item is converted to its own.
std::string Translator::Assemble(SelectParts& parts, const std::vector<SqlType>* types) {
    if (parts.head.empty()) return parts.tail + parts.order + parts.limit;
    std::string sql = parts.head;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        const Operand& item = parts.items[i];
        sql += i == 0 ? " " : ", ";
        if (types != nullptr && !((*types)[i] == item.type)) {
            const SqlType& type = (*types)[i];
            sql += RenderAs(item, type);
            if (type.IsText()) sql += std::string(" COLLATE ") + kTextCollationName;
            if (type.IsExact()) sql += std::string(" COLLATE ") + kNumberCollationName;
        } else {
            sql += Collated(item);
        }
        sql += " AS c" + std::to_string(i + 1);
    }
    return sql + parts.tail + parts.order + parts.limit;
}

SelectParts Translator::SetOf(const SetOperation& operation, const Query* orderFrom, const Scope* outer) {
    std::vector<SelectParts> members;
    members.push_back(BodyOf(*operation.first, nullptr, outer));
    for (const SetOperation::Term& term : operation.rest)
        members.push_back(BodyOf(*term.body, nullptr, outer));
    std::vector<SqlType> types;
    for (const Operand& item : members.front().items)
        types.push_back(item.type);
    for (const SelectParts& member : members) {
        if (member.items.size() != types.size()) throw MakeError(205, operation.position);
        for (std::size_t i = 0; i < types.size(); ++i)
            types[i] = CommonType(types[i], member.items[i].type);
    }
    SelectParts parts;
    // Scripts list hundreds of rows by UNION ALL; SQLite takes 500 terms at a time.
    const bool isLong =
        members.size() > kMostTerms &&
        std::all_of(operation.rest.begin(), operation.rest.end(),
                    [](const SetOperation::Term& term) { return term.op == SetOp::kUnionAll; });
    const bool isSetOfTexts =
        types.size() == 1 && types.front().IsText() &&
        std::any_of(operation.rest.begin(), operation.rest.end(),
                    [](const SetOperation::Term& term) { return term.op != SetOp::kUnionAll; });
    if (isLong) parts.tail = "SELECT * FROM (";
    for (std::size_t i = 0; i < members.size(); ++i) {
        SelectParts& member = members[i];
        const bool nested = member.head.empty() || !member.limit.empty() || !member.order.empty();
        std::string sql = Assemble(member, &types);
        if (nested) {
            std::string items;
            for (std::size_t c = 0; c < types.size(); ++c) {
                const Operand column = Computed("c" + std::to_string(c + 1), member.items[c].type);
                const std::string text = member.head.empty() ? RenderAs(column, types[c]) : column.sql;
                items += (c == 0 ? "" : ", ") + text + " AS c" + std::to_string(c + 1);
            }
            sql = "SELECT " + items + " FROM (" + sql + ")";
        }
        if (isSetOfTexts) {
            sql = "SELECT " + kMemberCall.Call({"c1"}) + " COLLATE " + kTextCollationName + " AS c1 FROM (" +
                  sql + ")";
        }
        if (i > 0 && isLong && i % kMostTerms == 0) {
            parts.tail += ") UNION ALL SELECT * FROM (";
        } else if (i > 0) {
            switch (operation.rest[i - 1].op) {
                case SetOp::kUnion:
                    parts.tail += " UNION ";
                    break;
                case SetOp::kUnionAll:
                    parts.tail += " UNION ALL ";
                    break;
                case SetOp::kExcept:
                    parts.tail += " EXCEPT ";
                    break;
                case SetOp::kIntersect:
                    parts.tail += " INTERSECT ";
                    break;
            }
        }
        parts.tail += sql;
    }
    if (isLong) parts.tail += ")";
    parts.names = members.front().names;
    for (std::size_t i = 0; i < types.size(); ++i) {
        Operand item = Computed("c" + std::to_string(i + 1), types[i]);
        item.column = false;
        parts.items.push_back(std::move(item));
    }
    if (orderFrom != nullptr) {
        Scope named;
        named.outer = outer;
        Source results;
        for (std::size_t i = 0; i < parts.items.size(); ++i) {
            results.columns.push_back({parts.names[i], types[i], parts.items[i].sql, false});
        }
        parts.order = OrderBy(*orderFrom, *FirstSelect(operation), named, parts);
        parts.limit = LimitOf(nullptr, orderFrom, named);
    }
    return parts;
}

}  // namespace vicenter::tsql::engine
