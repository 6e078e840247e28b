// UNION, INTERSECT and EXCEPT: members that agree on the types of their columns.

#include <algorithm>

#include "tsql/functions/function.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/comparable.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::size_t kMostTerms = 400;

const char* OperationText(SetOp op) {
    switch (op) {
        case SetOp::kUnion:
            return " UNION ";
        case SetOp::kUnionAll:
            return " UNION ALL ";
        case SetOp::kExcept:
            return " EXCEPT ";
        case SetOp::kIntersect:
            return " INTERSECT ";
    }
    return "";
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

// One member with the types that all agree on. SQLite takes no ORDER BY, LIMIT or further set operation in a
// member but as a source of its own.
std::string Translator::MemberText(SelectParts& member, const std::vector<SqlType>& types,
                                   bool inSetOfTexts) {
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
    if (!inSetOfTexts) return sql;
    return "SELECT " + kMemberCall.Call({"c1"}) + " COLLATE " + kTextCollationName + " AS c1 FROM (" + sql +
           ")";
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
    const bool keepsAll =
        std::all_of(operation.rest.begin(), operation.rest.end(),
                    [](const SetOperation::Term& term) { return term.op == SetOp::kUnionAll; });
    // Scripts list hundreds of rows by UNION ALL; SQLite takes 500 terms at a time.
    const bool isLong = members.size() > kMostTerms && keepsAll;
    const bool isSetOfTexts = types.size() == 1 && types.front().IsText() && !keepsAll;
    SelectParts parts;
    if (isLong) parts.tail = "SELECT * FROM (";
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (i > 0) {
            const bool isNextGroup = isLong && i % kMostTerms == 0;
            parts.tail +=
                isNextGroup ? ") UNION ALL SELECT * FROM (" : OperationText(operation.rest[i - 1].op);
        }
        parts.tail += MemberText(members[i], types, isSetOfTexts);
    }
    if (isLong) parts.tail += ")";
    if (!keepsAll) {
        std::vector<Operand> columns;
        columns.reserve(types.size());
        for (const SqlType& type : types)
            columns.push_back(Computed("", type));
        CheckSetMembers(columns, operation.position);
        RefuseBytes(columns, "UNION, INTERSECT and EXCEPT", operation.position);
    }
    parts.names = members.front().names;
    for (std::size_t i = 0; i < types.size(); ++i) {
        Operand item = Computed("c" + std::to_string(i + 1), types[i]);
        item.column = false;
        for (const SelectParts& member : members)
            item.weight = std::max(item.weight, member.items[i].weight);
        parts.items.push_back(std::move(item));
    }
    if (orderFrom != nullptr) {
        Scope named;
        named.outer = outer;
        parts.order = OrderBy(*orderFrom, FirstSelect(operation), named, parts);
        parts.limit = LimitOf(nullptr, orderFrom, named);
    }
    return parts;
}

}  // namespace vicenter::tsql::engine
