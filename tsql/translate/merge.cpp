// MERGE: which rows each WHEN takes, and the values that they get, all worked out before the first change.

#include <algorithm>

#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kMerge = "MERGE";

}  // namespace

struct Translator::MergeParts {
    const TableInfo* table = nullptr;
    std::string alias;   // of the table
    std::string from;    // of the source
    std::string target;  // the target with its alias
    std::string behind;  // JOIN of the table behind it where it is a view or a query
    std::string on;
    Scope source;  // the source alone
    Scope both;
    Scope own;  // the target alone
};

Translator::MergeParts Translator::JoinOf(const MergeStatement& statement) {
    AddCommonTables(statement.with);
    MergeParts parts;
    const ObjectName& name = statement.target;
    const bool isQuery =
        (name.parts.size() == 1 && FindCommonTable(name.Object()) != nullptr) ||
        (FindTable(name.Object()) == nullptr && context_.ViewDefinition(name.Object()) != nullptr);
    if (isQuery) {
        TableRef query(name.Where());
        query.name = name;
        query.alias = statement.alias;
        changed_.name = &name;
        changed_.isOpen = true;
        parts.target = Table(query, parts.own);
        changed_.isOpen = false;
        // Which table of a join each WHEN changes, its columns would have to say.
        if (changed_.table == nullptr || changed_.renames != nullptr)
            throw MakeError(40510, name.Where(), {"MERGE of query " + name.Text()});
        const Source& behind =
            SourceBehind(parts.own.sources.front(), name, statement.position, parts.behind);
        parts.table = changed_.table;
        parts.alias = behind.alias;
    } else {
        parts.table = &TargetTable(name);
        parts.own.sources.push_back(
            SourceOf(*parts.table, statement.alias.IsEmpty() ? parts.table->name : statement.alias.text));
        parts.alias = parts.own.sources.front().alias;
        parts.target = parts.table->Sql() + " AS " + parts.alias;
    }
    Begin(*parts.table, kMerge);
    parts.from = SourceText(*statement.source, parts.source);
    parts.both.sources = parts.source.sources;
    AddSource(parts.own.sources.front(), parts.both, statement.position);
    parts.on = ConditionText(*statement.on, parts.both);
    return parts;
}

// CASE WHEN condition THEN number … END: the first WHEN of that kind whose condition holds.
std::string Translator::WhenText(const MergeStatement& statement, MergeMatch match, Scope& scope) {
    std::string sql;
    for (std::size_t i = 0; i < statement.clauses.size(); ++i) {
        const MergeClause& clause = statement.clauses[i];
        if (clause.match != match) continue;
        const std::string condition = clause.condition ? ConditionText(*clause.condition, scope) : "true";
        sql += " WHEN " + condition + " THEN " + std::to_string(i);
    }
    return sql.empty() ? "NULL" : "CASE" + sql + " END";
}

void Translator::AddStep(const MergeClause& clause, int number, const TableInfo& table,
                         const std::string& alias, const std::string& when, Scope& scope, std::string& list) {
    MergeStep step;
    step.clause = number;
    step.action = clause.action;
    step.first = translation_.columns.size();
    const auto add = [&](const ColumnInfo& column, const std::string& text) {
        list += ", CASE WHEN (" + when + ") = " + std::to_string(number) + " THEN " + text + " END";
        translation_.columns.push_back({column.name, column.type});
        step.columns.push_back(column.name);
    };
    // A literal that is bound is converted whether a row takes it or not.
    const auto stored = [&](const Operand& value, const ColumnInfo& column) {
        return RenderStored(Computed(Render(value), value.type), table, column, kMerge);
    };
    if (clause.action == MergeAction::kUpdate) {
        for (const tsql::Assignment& assignment : clause.assignments) {
            if (!assignment.variable.empty())
                throw MakeError(40510, assignment.position, {"MERGE … SET @variable = column = expression"});
        }
        const std::vector<Assigned> assigned = Assignments(clause.assignments, table, scope, alias);
        step.isWhole = std::any_of(assigned.begin(), assigned.end(), [&](const Assigned& entry) {
            return table.IsInUniqueKey(entry.column->name);
        });
        for (const ColumnInfo& column : table.columns) {
            if (!column.computedText.empty()) continue;
            const auto entry = std::find_if(assigned.begin(), assigned.end(),
                                            [&](const Assigned& other) { return other.column == &column; });
            if (entry != assigned.end()) {
                add(column, stored(entry->value, column));
            } else if (step.isWhole) {
                add(column, alias + "." + Quoted(column.name));
            }
        }
    } else if (clause.action == MergeAction::kInsert) {
        std::vector<const ColumnInfo*> columns;
        std::vector<Name> names = clause.columns;
        for (Name& name : names)
            name.text = BehindName(name.text, name.position);
        for (std::size_t i = 0; i < changed_.columns.size() && clause.columns.empty(); ++i) {
            const ColumnInfo* column = table.FindColumn(changed_.columns[i].second);
            if (column == nullptr) throw MakeError(4406, clause.position, {changed_.name->Text()});
            if (!column->identity && column->computedText.empty())
                names.push_back(Name{column->name, clause.position, false});
        }
        if (!clause.defaultValues) columns = TargetColumns(table, names);
        if (clause.values.size() != columns.size()) {
            if (clause.columns.empty()) throw MakeError(213, clause.position);
            throw MakeError(clause.values.size() < columns.size() ? 109 : 110, clause.position);
        }
        std::vector<std::string> values;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto* literal = TryAs<LiteralExpr>(clause.values[i].get());
            const bool isDefault = literal != nullptr && literal->literal == LiteralKind::kDefault;
            const Operand value = isDefault ? DefaultOf(*columns[i]) : Value(*clause.values[i], scope);
            values.push_back(RenderGiven(Computed(Render(value), value.type), table, *columns[i], kMerge));
        }
        AddDefaults(table, columns, values);
        for (std::size_t i = 0; i < columns.size(); ++i)
            add(*columns[i], values[i]);
    }
    translation_.steps.push_back(std::move(step));
}

Translation Translator::MergeRows(const MergeStatement& statement) {
    MergeParts parts = JoinOf(statement);
    const std::string row = parts.alias + "._rowid_";
    const std::string when = "CASE WHEN " + row + " IS NOT NULL THEN " +
                             WhenText(statement, MergeMatch::kMatched, parts.both) + " ELSE " +
                             WhenText(statement, MergeMatch::kNotMatchedByTarget, parts.source) + " END";
    translation_.columns.push_back({"when$", SqlType::Int()});
    translation_.columns.push_back({"row$", SqlType::Of(TypeKind::kBigInt)});
    std::string list;
    for (std::size_t i = 0; i < statement.clauses.size(); ++i) {
        const MergeClause& clause = statement.clauses[i];
        if (clause.match == MergeMatch::kNotMatchedBySource) continue;
        Scope& scope = clause.match == MergeMatch::kMatched ? parts.both : parts.source;
        AddStep(clause, static_cast<int>(i), *parts.table, parts.alias, when, scope, list);
    }
    if (statement.output) {
        CheckOutputBehind(*statement.output);
        list += ToldColumns(*statement.output, parts.source, {});
    }
    return Finished("SELECT " + when + ", " + row + list + " FROM " + parts.from + " LEFT JOIN " +
                    parts.target + " ON " + parts.on + (parts.behind.empty() ? "" : " LEFT" + parts.behind));
}

Translation Translator::MissedRows(const MergeStatement& statement) {
    MergeParts parts = JoinOf(statement);
    const std::string row = parts.alias + "._rowid_";
    const std::string when = WhenText(statement, MergeMatch::kNotMatchedBySource, parts.own);
    translation_.columns.push_back({"when$", SqlType::Int()});
    translation_.columns.push_back({"row$", SqlType::Of(TypeKind::kBigInt)});
    std::string list;
    for (std::size_t i = 0; i < statement.clauses.size(); ++i) {
        const MergeClause& clause = statement.clauses[i];
        if (clause.match == MergeMatch::kNotMatchedBySource)
            AddStep(clause, static_cast<int>(i), *parts.table, parts.alias, when, parts.own, list);
    }
    return Finished("SELECT " + when + ", " + row + list + " FROM " + parts.target + parts.behind +
                    " WHERE NOT EXISTS(SELECT 1 FROM " + parts.from + " WHERE " + parts.on + ")");
}

Translation Translator::TopOf(const TopClause& top) {
    Scope none;
    std::string sql;
    if (top.percent) {
        Operand rows = System("", SqlType::Of(TypeKind::kBigInt));
        rows.pending->source = Parameter::Source::kRow;
        rows.pending->ordinal = 0;
        sql = kPercentCall.Call({Render(rows), RenderAs(Value(*top.count, none), SqlType::Float())});
    } else {
        sql = RowCount(*top.count, none, RowLimit::kTop);
    }
    translation_.columns.push_back({"", SqlType::Of(TypeKind::kBigInt)});
    return Finished("SELECT " + sql);
}

}  // namespace vicenter::tsql::engine
