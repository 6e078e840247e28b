// Common table expressions that refer to themselves: SQLite's own, level by level, up to the server's bound.

#include <algorithm>
#include <charconv>

#include "automation/object.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// The column that counts the levels.
constexpr const char* kLevel = "\"level$\"";

// How often a source refers to the table, and whether by an outer join or from within a query of its own.
struct References {
    int direct = 0;
    bool isOuter = false;
    bool isNested = false;
};

bool NamesTable(const TableSource& source, const std::string& name) {
    const auto* table = TryAs<TableRef>(&source);
    return table != nullptr && table->name.parts.size() == 1 && SameName(table->name.Object(), name);
}

void Count(const TableSource& source, const std::string& name, References& found);

bool RefersTo(const QueryBody& body, const std::string& name) {
    if (body.kind == QueryBodyKind::kSetOperation) {
        const auto& operation = As<SetOperation>(body);
        return RefersTo(*operation.first, name) ||
               std::any_of(operation.rest.begin(), operation.rest.end(),
                           [&](const SetOperation::Term& term) { return RefersTo(*term.body, name); });
    }
    References found;
    for (const TableSourcePtr& source : As<SelectBody>(body).from)
        Count(*source, name, found);
    return found.direct > 0 || found.isNested;
}

void Count(const TableSource& source, const std::string& name, References& found) {
    if (NamesTable(source, name)) {
        ++found.direct;
    } else if (const auto* join = TryAs<JoinedTable>(&source)) {
        const int before = found.direct;
        Count(*join->left, name, found);
        Count(*join->right, name, found);
        const bool outer = join->join == JoinKind::kLeft || join->join == JoinKind::kRight ||
                           join->join == JoinKind::kFull || join->join == JoinKind::kOuterApply;
        found.isOuter = found.isOuter || (outer && found.direct > before);
    } else if (const auto* derived = TryAs<DerivedTable>(&source)) {
        found.isNested = found.isNested || RefersTo(*derived->query->body, name);
    }
}

}  // namespace

bool Translator::IsRecursive(const CommonTable& table) const {
    return RefersTo(*table.query->body, table.name.text);
}

void Translator::CheckRecursiveTerm(const SelectBody& select, const CommonTable& table) const {
    const std::string& name = table.name.text;
    if (select.distinct) throw MakeError(460, select.position, {name});
    if (select.top) throw MakeError(461, select.position, {name});
    bool groups = !select.groupBy.empty() || !select.grouping.empty() || select.having;
    for (const SelectItem& item : select.items)
        groups = groups || (item.expression && HasAggregate(*item.expression));
    if (groups) throw MakeError(467, select.position, {name});
    References found;
    for (const TableSourcePtr& source : select.from)
        Count(*source, name, found);
    if (found.isOuter) throw MakeError(462, select.position, {name});
    if (found.isNested) throw MakeError(465, select.position);
    if (found.direct > 1) throw MakeError(253, select.position, {name});
}

// (WITH RECURSIVE "recursion$1"(c1, …, level) AS (anchors UNION ALL members) SELECT c1, … FROM it)
QueryText Translator::RecursiveQuery(const CommonTable& table) {
    const auto* operation = TryAs<SetOperation>(table.query->body.get());
    const bool isUnion = operation != nullptr && std::all_of(operation->rest.begin(), operation->rest.end(),
                                                             [](const SetOperation::Term& term) {
                                                                 return term.op == SetOp::kUnionAll;
                                                             });
    if (!isUnion || RefersTo(*operation->first, table.name.text))
        throw MakeError(252, table.name.position, {table.name.text});
    if (!table.query->orderBy.empty() || !table.query->with.empty())
        throw MakeError(40510, table.name.position, {"ORDER BY of a recursive query"});

    Recursion recursion;
    recursion.table = &table;
    recursion.name = "\"recursion$" + std::to_string(++aliasNumber_) + "\"";
    std::string sql;
    std::vector<std::string> names;
    std::size_t at = 0;
    const auto member = [&](const QueryBody& body, bool recursive) {
        SelectParts parts = BodyOf(body, nullptr, nullptr);
        if (sql.empty()) {
            names = parts.names;
            for (const Operand& item : parts.items)
                recursion.columns.push_back({"", item.type.IsUnknown() ? SqlType::Int() : item.type});
        }
        if (parts.items.size() != recursion.columns.size()) throw MakeError(205, body.position);
        for (std::size_t i = 0; i < parts.items.size(); ++i) {
            const SqlType& type = recursion.columns[i].type;
            const Operand& item = parts.items[i];
            if (!(item.type == type) && !item.type.IsUnknown() && !(sql.empty()))
                throw MakeError(240, body.position,
                                {table.columns.empty() ? names[i] : table.columns[i].text, table.name.text});
        }
        if (recursive) {
            const std::string above = recursions_.back().alias + "." + kLevel;
            parts.items.push_back(
                Computed(kRecursionCall.Call({above, std::to_string(mostRecursions_)}), SqlType::Int()));
            const std::string text = Assemble(parts, nullptr);
            if (text.find(" OVER (") != std::string::npos)
                throw MakeError(40510, body.position, {"OVER in a recursive query"});
            sql += " UNION ALL " + text;
            return;
        }
        std::string list;
        for (std::size_t i = 0; i < recursion.columns.size(); ++i)
            list += "c" + std::to_string(i + 1) + ", ";
        sql += (sql.empty() ? "SELECT " : " UNION ALL SELECT ") + list + "0 FROM (" +
               Assemble(parts, nullptr) + ")";
    };
    member(*operation->first, false);
    if (!table.columns.empty() && table.columns.size() != recursion.columns.size())
        throw MakeError(table.columns.size() < recursion.columns.size() ? 8158 : 8159, table.name.position,
                        {table.name.text});
    for (std::size_t i = 0; i < recursion.columns.size(); ++i)
        recursion.columns[i].name = table.columns.empty() ? names[i] : table.columns[i].text;
    while (at < operation->rest.size() && !RefersTo(*operation->rest[at].body, table.name.text))
        member(*operation->rest[at++].body, false);
    recursions_.push_back(recursion);
    for (; at < operation->rest.size(); ++at) {
        const auto* select = TryAs<SelectBody>(operation->rest[at].body.get());
        if (select == nullptr)
            throw MakeError(40510, operation->rest[at].body->position, {"recursive EXCEPT"});
        if (!RefersTo(*select, table.name.text)) throw MakeError(252, table.name.position, {table.name.text});
        CheckRecursiveTerm(*select, table);
        member(*select, true);
    }
    recursions_.pop_back();

    QueryText result;
    std::string list;
    for (std::size_t i = 0; i < recursion.columns.size(); ++i)
        list += (i == 0 ? "" : ", ") + ("c" + std::to_string(i + 1));
    result.sql = "WITH RECURSIVE " + recursion.name + "(" + list + ", " + kLevel + ") AS (" + sql +
                 ") SELECT " + list + " FROM " + recursion.name;
    result.columns = recursion.columns;
    result.natural.assign(recursion.columns.size(), false);
    return result;
}

}  // namespace vicenter::tsql::engine
