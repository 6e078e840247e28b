// The table that INSERT, UPDATE or DELETE changes, and the rows that they give back.

#include "automation/object.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// The place of the target among the sources of FROM: by alias, or by name when it stands there once.
const Source* FindTarget(const ObjectName& target, const Scope& scope) {
    for (const Source& source : scope.sources) {
        if (target.parts.size() == 1 && SameName(source.exposedName, target.Object())) return &source;
    }
    for (const Source& source : scope.sources) {
        if (source.table != nullptr && SameName(source.tableName, target.Object())) return &source;
    }
    return nullptr;
}

}  // namespace

void Translator::Begin(const TableInfo& table, const char* operation) {
    translation_.table = table.name;
    translation_.operation = operation;
    translation_.changesTemporary = table.temporary;
    // A later table of the same name is another one.
    if (table.temporary) translation_.temporaries.emplace_back(table.name, table.id);
}

// The server changes the table behind a view of plain columns of one table; here it is to be named itself.
void Translator::RefuseView(const ObjectName& name, const Query& query) {
    const SelectBody* select = query.Select();
    const bool plain = select != nullptr && !select->distinct && select->groupBy.empty() && !select->having;
    const bool single = plain && select->from.size() == 1 && select->from.front()->kind == SourceKind::kTable;
    if (plain && !single && !select->from.empty()) throw MakeError(4405, name.Where(), {name.Object()});
    bool derived = !single;
    if (single) {
        for (const SelectItem& item : select->items) {
            derived = derived || (item.kind != SelectItemKind::kStar &&
                                  (!item.expression || item.expression->kind != ExprKind::kColumn));
        }
    }
    if (derived) throw MakeError(4406, name.Where(), {name.Object()});
    throw MakeError(40510, name.Where(), {"INSERT, UPDATE and DELETE of view " + name.Object()});
}

const TableInfo& Translator::TargetTable(const ObjectName& name) {
    const TableInfo* table = FindTable(name.Object());
    if (table != nullptr) return *table;
    if (name.Object().front() == '@') throw MakeError(1087, name.Where(), {name.Object()});
    if (const CreateViewStatement* view = context_.ViewDefinition(name.Object()))
        RefuseView(name, *view->query);
    throw MakeError(208, name.Where(), {name.Text()});
}

// What UPDATE or DELETE changes: one of the sources of its FROM, or a table that is added to them.
const Source& Translator::ChangedSource(const ObjectName& name, Position where, Scope& scope,
                                        std::string& from) {
    const Source* target = FindTarget(name, scope);
    if (target == nullptr) {
        const TableInfo& named = TargetTable(name);
        scope.sources.push_back(SourceOf(named, named.name));
        target = &scope.sources.back();
        from += (from.empty() ? " FROM " : ", ") + named.Sql() + " AS " + target->alias;
    }
    if (target->table == nullptr) {
        if (const CreateViewStatement* view = context_.ViewDefinition(target->tableName))
            RefuseView(name, *view->query);
        throw MakeError(40510, where, {"UPDATE and DELETE of query " + name.Text()});
    }
    return *target;
}

std::string Translator::Output(const OutputClause& output, const TableInfo& table, const char* pseudoTable) {
    Scope scope;
    Source source = SourceOf(table, pseudoTable);
    for (SourceColumn& column : source.columns)
        column.sql = Quoted(column.name);
    scope.sources.push_back(std::move(source));
    SelectParts parts;
    for (const SelectItem& item : output.items)
        AddItem(item, scope, parts);
    std::string sql;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        sql += (i == 0 ? " RETURNING " : ", ") + Render(parts.items[i]);
        const SqlType& type = parts.items[i].type;
        translation_.columns.push_back({parts.names[i], type.IsUnknown() ? SqlType::Int() : type});
    }
    translation_.hasOutput = true;
    return sql;
}

}  // namespace vicenter::tsql::engine
