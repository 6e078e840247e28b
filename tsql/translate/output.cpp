// OUTPUT: what INSERT, UPDATE, DELETE and MERGE tell of the rows that they change.

#include <algorithm>
#include <utility>

#include "automation/object.h"
#include "tsql/translate/output_columns.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// A row that is changed through a view or query has its columns, by its names.
void NameAsView(const OutputClause& output, const std::vector<std::pair<std::string, std::string>>& names,
                const ObjectName& view, Source& source) {
    const std::vector<SourceColumn> stored = std::exchange(source.columns, {});
    for (const auto& name : names) {
        // No structured binding: Clang gives none of them to a lambda.
        const std::string& own = name.first;
        const std::string& behind = name.second;
        const auto found = std::ranges::find_if(
            stored, [&](const SourceColumn& column) { return SameName(column.name, behind); });
        if (found != stored.end()) {
            source.columns.push_back(*found);
            source.columns.back().name = own;
            continue;
        }
        VisitTold(output, [&](const std::string&, const std::string& column, Position where) {
            if (column.empty() || SameName(column, own))
                throw MakeError(40510, where, {"OUTPUT of query " + view.Text()});
        });
    }
}

}  // namespace

std::string Translator::Output(const OutputClause& output, const TableInfo& table, const char* pseudoTable) {
    Scope scope;
    Source source = SourceOf(table, pseudoTable);
    // What is computed names the columns of the pseudo table as well.
    const std::string prefix = source.alias + ".";
    for (SourceColumn& column : source.columns) {
        for (std::size_t at = column.sql.find(prefix); at != std::string::npos;
             at = column.sql.find(prefix, at))
            column.sql.erase(at, prefix.size());
    }
    if (changed_.table != nullptr) NameAsView(output, changed_.columns, *changed_.name, source);
    scope.sources.push_back(std::move(source));
    return " RETURNING " + OutputList(output, scope);
}

std::string Translator::OutputList(const OutputClause& output, Scope& scope) {
    SelectParts parts;
    for (const SelectItem& item : output.items)
        AddItem(item, scope, parts);
    translation_.goesInto = output.into.IsEmpty() ? 0 : parts.items.size();
    for (const SelectItem& item : output.beside)
        AddItem(item, scope, parts);
    std::string sql;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        sql += (i == 0 ? "" : ", ") + Render(parts.items[i]);
        const SqlType& type = parts.items[i].type;
        translation_.columns.push_back({parts.names[i], type.IsUnknown() ? SqlType::Int() : type});
    }
    translation_.hasOutput = true;
    return sql;
}

// The columns of FROM that OUTPUT may name, as the end of a list. The changed table is not among them: its
// rows are those of inserted and deleted.
std::string Translator::ToldColumns(const OutputClause& output, const Scope& scope,
                                    const std::string& target) {
    const std::string& changed = changed_.table != nullptr ? changed_.name->Object() : target;
    std::string list;
    for (const Source& source : scope.sources) {
        if (SameName(source.exposedName, changed) || !MayTellOf(output, source.exposedName)) continue;
        ToldSource told{source.exposedName, {}};
        for (const SourceColumn& column : source.columns) {
            if (column.name == kRowNumberName) continue;
            list += ", " + column.sql;
            told.columns.push_back({column.name, column.type.IsUnknown() ? SqlType::Int() : column.type});
        }
        for (const ResultColumn& column : told.columns)
            translation_.columns.push_back(column);
        translation_.told.push_back(std::move(told));
    }
    return list;
}

Translation Translator::WholeRow(const TableInfo& table) {
    Begin(table, "SELECT");
    const Source source = SourceOf(table, table.name);
    std::string list;
    for (const SourceColumn& column : source.columns) {
        list += (list.empty() ? "" : ", ") + column.sql;
        translation_.columns.push_back({column.name, column.type});
    }
    Operand row = System("", SqlType::Of(TypeKind::kBigInt));
    row.pending->source = Parameter::Source::kRow;
    row.pending->ordinal = 0;
    return Finished("SELECT " + list + " FROM " + table.Sql() + " AS " + source.alias +
                    " WHERE _rowid_ = " + Render(row));
}

Translation Translator::OutputOfRow(const OutputClause& output, const TableInfo& table,
                                    const std::vector<ToldSource>& told, bool hasAction) {
    Begin(table, "SELECT");
    Scope scope;
    std::string row;
    int place = 0;
    const auto add = [&](Source& source, const std::string& name, const SqlType& type) {
        Operand value = System("", type);
        value.pending->source = Parameter::Source::kRow;
        value.pending->ordinal = place++;
        const std::string own = "c" + std::to_string(place);
        row += (row.empty() ? "" : ", ") + Render(value) + " AS " + own;
        source.columns.push_back({name, type, "\"ts$row\"." + own, false});
    };
    for (const char* name : {"inserted", "deleted"}) {
        Source source;
        source.exposedName = name;
        source.table = &table;
        for (const SourceColumn& column : SourceOf(table, name).columns)
            add(source, column.name, column.type);
        scope.sources.push_back(std::move(source));
    }
    for (const ToldSource& one : told) {
        Source source;
        source.exposedName = one.name;
        for (const ResultColumn& column : one.columns)
            add(source, column.name, column.type);
        scope.sources.push_back(std::move(source));
    }
    if (hasAction) {
        Source source;
        add(source, kActionName, SqlType::NVarChar(10));
        scope.sources.push_back(std::move(source));
    }
    const std::string list = OutputList(output, scope);
    return Finished("SELECT " + list + " FROM (SELECT " + row + ") AS \"ts$row\"");
}

}  // namespace vicenter::tsql::engine
