// FROM: tables, views, subqueries and joins.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/functions/volatile.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/translate/translator.h"
#include "tsql/translate/view_nesting.h"

namespace vicenter::tsql::engine {

using automation::SameName;

const TableInfo* Translator::FindTable(std::string_view name) {
    const TableInfo* table = context_.FindTable(name);
    if (table != nullptr && table->temporary) NoteTemporary(*table);
    return table;
}

std::string Translator::From(const std::vector<TableSourcePtr>& sources, Scope& scope) {
    std::string sql;
    for (const TableSourcePtr& source : sources) {
        const bool first = sql.empty();
        sql += first ? " FROM " : ", ";
        // SQLite takes a comma for a join as good as any other; here it is the outermost.
        const bool apart = !first && source->kind == SourceKind::kJoin;
        sql += apart ? "(" + SourceText(*source, scope) + ")" : SourceText(*source, scope);
    }
    return sql;
}

std::string Translator::SourceText(const TableSource& source, Scope& scope) {
    switch (source.kind) {
        case SourceKind::kTable:
            return Table(As<TableRef>(source), scope);
        case SourceKind::kDerived: {
            const auto& derived = As<DerivedTable>(source);
            const QueryText query = IsChanged(derived.alias.text)
                                        ? ChangedQuery(*derived.query, derived.alias.text, derived.columns)
                                        : QueryOf(*derived.query, scope.outer, false);
            return Derived(query.sql, query, derived.alias.text, derived.columns, scope, source.position);
        }
        case SourceKind::kValues: {
            const auto& values = As<ValuesTable>(source);
            const QueryText query = ValuesQuery(values, scope.outer);
            return Derived(query.sql, query, values.alias.text, values.columns, scope, source.position);
        }
        case SourceKind::kJoin:
            return Joined(As<JoinedTable>(source), scope);
        case SourceKind::kFunction:
            return FunctionSource(As<FunctionTable>(source), scope, scope.outer);
        case SourceKind::kPivot:
            return Pivoted(As<PivotTable>(source), scope);
        case SourceKind::kUnpivot:
            return Unpivoted(As<UnpivotTable>(source), scope);
    }
    return {};
}

QueryText Translator::ValuesQuery(const ValuesTable& values, const Scope* outer) {
    QueryText query;
    std::vector<std::vector<Operand>> rows;
    std::vector<SqlType> types;
    for (const auto& row : values.rows) {
        rows.emplace_back();
        if (types.empty()) types.resize(row.size());
        if (row.size() != types.size()) throw MakeError(10709, values.position);
        Scope none;
        none.outer = outer;
        for (std::size_t i = 0; i < row.size(); ++i) {
            rows.back().push_back(Value(*row[i], none));
            types[i] = CommonType(types[i], rows.back().back().type);
        }
    }
    for (const auto& row : rows) {
        query.sql += query.sql.empty() ? "SELECT " : " UNION ALL SELECT ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            query.sql += (i == 0 ? "" : ", ") + RenderAs(row[i], types[i]) + " AS c" + std::to_string(i + 1);
        }
    }
    for (const SqlType& type : types)
        query.columns.push_back({"", type});
    query.natural.assign(types.size(), false);
    query.weights.assign(types.size(), static_cast<std::int64_t>(query.sql.size() / values.rows.size()));
    return query;
}

std::string Translator::Joined(const JoinedTable& join, Scope& scope) {
    const char* word = nullptr;
    switch (join.join) {
        case JoinKind::kInner:
            word = " INNER JOIN ";
            break;
        case JoinKind::kLeft:
            word = " LEFT JOIN ";
            break;
        case JoinKind::kRight:
            word = " RIGHT JOIN ";
            break;
        case JoinKind::kFull:
            word = " FULL JOIN ";
            break;
        case JoinKind::kCross:
            word = " CROSS JOIN ";
            break;
        case JoinKind::kCrossApply:
        case JoinKind::kOuterApply:
            return Applied(join, scope);
    }
    std::string sql = SourceText(*join.left, scope) + word;
    const std::string right = SourceText(*join.right, scope);
    sql += join.right->kind == SourceKind::kJoin ? "(" + right + ")" : right;
    if (join.on) sql += " ON " + ConditionText(*join.on, scope);
    return sql;
}

Source Translator::SourceOf(const TableInfo& table, const std::string& exposedName) {
    Source source;
    source.exposedName = exposedName;
    source.tableName = table.name;
    source.table = &table;
    source.alias = Quoted(exposedName);
    for (const ColumnInfo& column : table.columns) {
        SourceColumn entry;
        entry.name = column.name;
        entry.type = column.type;
        entry.sql = source.alias + "." + Quoted(column.name);
        if (!column.computedText.empty()) {
            // Computed where it is read.
            Scope own;
            own.sources.push_back(source);
            ownedExpressions_.push_back(ParseExpression(column.computedText));
            ++foreignDepth_;
            const Operand computed = Value(*ownedExpressions_.back(), own);
            --foreignDepth_;
            entry.sql = "(" + Render(computed) + ")";
            entry.type = computed.type;
            entry.natural = false;
            entry.weight = static_cast<std::int64_t>(entry.sql.size());
        }
        source.columns.push_back(std::move(entry));
    }
    return source;
}

void Translator::AddSource(Source source, Scope& scope, Position position) {
    for (const Source& other : scope.sources) {
        if (!SameName(other.exposedName, source.exposedName)) continue;
        const auto isNamed = [](const Source& one) { return !SameName(one.exposedName, one.tableName); };
        if (isNamed(other) && isNamed(source)) throw MakeError(1011, position, {source.exposedName});
        throw MakeError(1013, position, {source.exposedName, other.exposedName});
    }
    scope.sources.push_back(std::move(source));
}

std::string Translator::CommonTableText(const CommonTable& table, const std::string& exposed, Scope& scope,
                                        Position where, bool isInner) {
    if (!recursions_.empty() && recursions_.back().table == &table) {
        // A member of a recursive query sees the rows of the level above.
        Recursion& recursion = recursions_.back();
        Source source;
        source.exposedName = exposed;
        source.tableName = table.name.text;
        source.alias = Quoted(exposed);
        for (std::size_t i = 0; i < recursion.columns.size(); ++i) {
            const ResultColumn& column = recursion.columns[i];
            source.columns.push_back(
                {column.name, column.type, source.alias + ".c" + std::to_string(i + 1), false});
        }
        recursion.alias = source.alias;
        AddSource(std::move(source), scope, where);
        return recursion.name + " AS " + Quoted(exposed);
    }
    const bool recursive = IsRecursive(table);
    const bool changes = isInner || IsChanged(exposed) || IsChanged(table.name.text);
    const QueryText query = changes && !recursive ? ChangedQuery(*table.query, exposed, table.columns)
                                                  : CommonQuery(table, recursive);
    return Derived(query.sql, query, exposed, recursive ? std::vector<Name>() : table.columns, scope, where,
                   table.name.text);
}

std::string Translator::Table(const TableRef& table, Scope& scope) {
    const std::string& name = table.name.Object();
    const std::string exposed = table.alias.IsEmpty() ? name : table.alias.text;
    const bool isInner = changed_.inner == &table;
    if (isInner) changed_.inner = nullptr;
    if (table.name.parts.size() == 1) {
        if (const CommonTable* common = FindCommonTable(name))
            return CommonTableText(*common, exposed, scope, table.position, isInner);
    }
    if (const TableInfo* found = FindTable(name)) {
        const bool system =
            SameName(table.name.Schema(), "sys") || SameName(table.name.Schema(), "information_schema");
        if (!system) {
            Source source = SourceOf(*found, exposed);
            std::string sql = found->Sql() + " AS " + source.alias;
            AddSource(std::move(source), scope, table.position);
            return sql;
        }
    }
    if (table.IsVariable()) throw MakeError(1087, table.position, {name});
    if (const CreateViewStatement* view = context_.ViewDefinition(name)) {
        if (++viewDepth_ > kViewNesting) throw MakeError(4413, table.position, {name});
        std::vector<CommonTables> outside;
        outside.swap(commonTables_);
        ++foreignDepth_;
        const bool changes =
            isInner || IsChanged(exposed) || (changed_.isOpen && SameName(changed_.name->Object(), name));
        if (changes && view->withCheckOption && translation_.checkedView.empty())
            translation_.checkedView = name;
        const QueryText query = changes
                                    ? ChangedQuery(*view->query, exposed, view->columns)
                                    : UsedText(view, [&] { return QueryOf(*view->query, nullptr, false); });
        --foreignDepth_;
        outside.swap(commonTables_);
        --viewDepth_;
        return Derived(query.sql, query, exposed, view->columns, scope, table.position, name);
    }
    if (const SystemView* known = FindSystemView(table.name)) {
        SystemView own;
        const SystemView* view = known;
        if (SameName(table.name.Database(), "tempdb")) {
            const Operand tables = System("temporary tables", SqlType::NVarChar(kMaxLength));
            own = OfTemporary(*known, Render(tables));
            view = &own;
        }
        Source source;
        source.exposedName = exposed;
        source.tableName = name;
        source.alias = Quoted(exposed);
        source.viewSchema = table.name.Schema().empty() ? "dbo" : table.name.Schema();
        for (const ResultColumn& column : view->columns) {
            source.columns.push_back(
                {column.name, column.type, source.alias + "." + Quoted(column.name), false});
        }
        std::string sql = "(" + view->sql + ") AS " + source.alias;
        AddSource(std::move(source), scope, table.position);
        return sql;
    }
    if (IsServerView(table.name)) throw MakeError(40510, table.position, {table.name.Text()});
    throw MakeError(208, table.position, {table.name.Text()});
}

// SQLite puts the expressions of a query in FROM wherever the query around it names its columns, and those of
// queries within into these: a column used twice doubles at each level. Where the text of a column would so
// become several times that of the whole query, the query stays apart.
static bool IsCopiedTooOften(const QueryText& query) {
    constexpr std::int64_t kMostCopied = 1000;
    constexpr std::int64_t kMostTimes = 3;
    if (query.weights.empty()) return false;
    const std::int64_t most = *std::max_element(query.weights.begin(), query.weights.end());
    return most > kMostCopied && most > kMostTimes * static_cast<std::int64_t>(query.sql.size());
}

std::string Translator::Derived(const std::string& sql, const QueryText& query, const std::string& alias,
                                const std::vector<Name>& columns, Scope& scope, Position position,
                                const std::string& ownName) {
    Source source;
    source.exposedName = alias;
    source.tableName = ownName;
    source.alias = Quoted(alias.empty() ? "d" + std::to_string(++aliasNumber_) : alias);
    // The number of the row behind has a name of its own in any case.
    const std::size_t hidden = !query.columns.empty() && query.columns.back().name == kRowNumberName ? 1 : 0;
    const std::size_t shown = query.columns.size() - hidden;
    if (!columns.empty() && columns.size() != shown) {
        throw MakeError(columns.size() < shown ? 8158 : 8159, position, {alias});
    }
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        const std::string& name = columns.empty() || i >= shown ? query.columns[i].name : columns[i].text;
        if (name.empty()) throw MakeError(8155, position, {static_cast<std::int32_t>(i + 1), alias});
        for (const SourceColumn& other : source.columns) {
            if (SameName(other.name, name)) throw MakeError(8156, position, {name, alias});
        }
        source.columns.push_back({name, query.columns[i].type, source.alias + ".c" + std::to_string(i + 1),
                                  i < query.natural.size() && query.natural[i]});
    }
    // Packed rows are a table by themselves: in a subquery they could not see the tables before them.
    const bool isTable = sql.starts_with(kRowsTable);
    // Of a query that sorts SQLite would work out the values of the one around it before it sorts.
    const bool isSortedFirst = !assigning_.empty() && sql.find(" ORDER BY ") != std::string::npos;
    const bool isApart =
        !isTable && (ways_.separates || IsCopiedTooOften(query) || IsVolatile(sql) || isSortedFirst);
    for (std::size_t i = 0; i < query.weights.size() && !isApart; ++i)
        source.columns[i].weight = query.weights[i];
    std::string text = isApart   ? "(SELECT * FROM (" + sql + ") LIMIT -1 OFFSET 0)"
                       : isTable ? sql
                                 : "(" + sql + ")";
    text += " AS " + source.alias;
    AddSource(std::move(source), scope, position);
    return text;
}

}  // namespace vicenter::tsql::engine
