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

const TableInfo& Translator::TargetTable(const ObjectName& name) {
    const TableInfo* table = FindTable(name.Object());
    if (table != nullptr) return *table;
    if (name.Object().front() == '@') throw MakeError(1087, name.Where(), {name.Object()});
    if (context_.ViewDefinition(name.Object()) != nullptr)
        throw MakeError(4406, name.Where(), {name.Object()});
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
    if (target->table == nullptr) throw MakeError(4406, where, {name.Text()});
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
