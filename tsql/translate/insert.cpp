// INSERT: the columns that are given, the values of those that are not.

#include "tsql/functions/function.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kInsert = "INSERT";

bool IsDefault(const Expr& value) {
    const auto* literal = TryAs<LiteralExpr>(&value);
    return literal != nullptr && literal->literal == LiteralKind::kDefault;
}

// As a value of the type that it shares with other rows, the column would get another one: a number with
// other places, or what was a text.
bool ChangesAmong(const SqlType& type, const SqlType& common, const SqlType& column) {
    if (type.IsUnknown() || common == type) return false;
    const bool isAlike = type.IsText() == common.IsText() && type.IsNumber() == common.IsNumber();
    return !isAlike || (column.IsText() && type.IsNumber());
}

// Values without a list of columns: one too many is meant for the identity column.
[[noreturn]] void FailCount(const TableInfo& table, std::size_t values, std::size_t columns, Position where) {
    if (values == columns + 1 && table.IdentityColumn() != nullptr)
        throw MakeError(8101, where, {table.name});
    throw MakeError(213, where);
}

}  // namespace

std::vector<const ColumnInfo*> Translator::TargetColumns(const TableInfo& table,
                                                         const std::vector<Name>& columns) {
    std::vector<const ColumnInfo*> result;
    for (const Name& name : columns) {
        const ColumnInfo* column = table.FindColumn(name.text);
        if (column == nullptr) throw MakeError(207, name.position, {name.text});
        if (!column->computedText.empty()) throw MakeError(271, name.position, {name.text});
        for (const ColumnInfo* other : result) {
            if (other == column) throw MakeError(264, name.position, {name.text});
        }
        result.push_back(column);
    }
    // Without a list the values are those of all columns that can be given one, in the table's order.
    if (columns.empty()) {
        for (const ColumnInfo& column : table.columns) {
            if (column.computedText.empty() && !column.identity) result.push_back(&column);
        }
        return result;
    }
    // The option may be off when the plan runs again: the translation says that it needs it, and the plan
    // asks.
    for (const ColumnInfo* column : result) {
        if (!column->identity) continue;
        if (!context_.TakesIdentity(table)) throw MakeError(544, columns.front().position, {table.name});
        translation_.givesIdentity = true;
    }
    return result;
}

Operand Translator::DefaultOf(const ColumnInfo& column) {
    if (column.defaultText.empty()) return Computed("NULL", {});
    // A text of the catalog: its literals have places in that text, and must not be taken for the batch's
    // own.
    ownedExpressions_.push_back(ParseExpression(column.defaultText));
    Scope none;
    ++foreignDepth_;
    Operand value = Value(*ownedExpressions_.back(), none);
    --foreignDepth_;
    return value;
}

void Translator::AddDefaults(const TableInfo& table, std::vector<const ColumnInfo*>& columns,
                             std::vector<std::string>& values) {
    const std::size_t given = columns.size();
    for (const ColumnInfo& column : table.columns) {
        bool present = !column.computedText.empty();
        for (std::size_t i = 0; i < given; ++i)
            present = present || columns[i] == &column;
        if (present) continue;
        if (column.identity) {
            // Asked of the session row by row, so that rows of a query are numbered in their order.
            if (context_.TakesIdentity(table)) throw MakeError(545, {}, {table.name});
            translation_.usesIdentity = true;
            columns.push_back(&column);
            const Operand next = Computed(kNextIdentityCall.Call({}), SqlType::Of(TypeKind::kBigInt));
            values.push_back(RenderStored(next, table, column, kInsert));
        } else if (!column.defaultText.empty() || !column.nullable) {
            // A NULL that is refused is written all the same: storing it names column and table in its error,
            // where SQLite's own would not.
            columns.push_back(&column);
            values.push_back(RenderStored(DefaultOf(column), table, column, kInsert));
        }
    }
}

std::string Translator::InsertHead(const TableInfo& table,
                                   const std::vector<const ColumnInfo*>& columns) const {
    std::string sql = "INSERT INTO " + table.Sql() + "(";
    for (std::size_t i = 0; i < columns.size(); ++i)
        sql += (i == 0 ? "" : ", ") + Quoted(columns[i]->name);
    return sql + ")";
}

Translation Translator::Insert(const InsertStatement& statement) {
    std::vector<Name> names = statement.columns;
    const TableInfo& table = FilledTable(statement.table, names);
    if (statement.output && !translation_.checkedView.empty())
        throw MakeError(40510, statement.position, {"OUTPUT of query " + statement.table.Text()});
    Begin(table, kInsert);
    AddCommonTables(statement.with);
    const bool ofQuery = statement.source == InsertSource::kQuery;
    if (statement.top && (statement.top->percent || !ofQuery))
        throw MakeError(40510, statement.position,
                        {statement.top->percent ? "INSERT TOP … PERCENT" : "INSERT TOP … VALUES"});
    if (ofQuery) {
        Scope none;
        const std::string limit =
            statement.top ? " LIMIT " + RowCount(*statement.top->count, none, RowLimit::kTop) : "";
        Translation result = InsertQuery(table, names, *statement.query);
        result.sql += limit;
        translation_ = std::move(result);
        if (statement.output) translation_.sql += Output(*statement.output, table, "inserted");
        return Finished(translation_.sql + NumbersToCheck());
    }
    std::vector<const ColumnInfo*> columns;
    if (statement.source != InsertSource::kDefaultValues) columns = TargetColumns(table, names);
    const std::size_t given = columns.size();
    std::vector<std::string> rows;
    std::vector<std::vector<Operand>> operands;
    // Several rows are what UNION ALL would make of them: values of one type in each column.
    std::vector<SqlType> types(given);
    Scope scope;
    for (const auto& row : statement.rows) {
        if (row.size() != given) {
            if (names.empty()) FailCount(table, row.size(), given, statement.position);
            throw MakeError(row.size() < given ? 109 : 110, statement.position);
        }
        operands.emplace_back();
        for (std::size_t i = 0; i < given; ++i) {
            operands.back().push_back(IsDefault(*row[i]) ? DefaultOf(*columns[i]) : Value(*row[i], scope));
            if (!IsDefault(*row[i])) types[i] = CommonType(types[i], operands.back().back().type);
        }
    }
    for (std::size_t r = 0; r < operands.size(); ++r) {
        std::string values;
        for (std::size_t i = 0; i < given; ++i) {
            Operand& value = operands[r][i];
            if (!IsDefault(*statement.rows[r][i]) && ChangesAmong(value.type, types[i], columns[i]->type))
                value = Computed(RenderAs(value, types[i]), types[i]);
            values += (i == 0 ? "" : ", ") + RenderGiven(value, table, *columns[i], kInsert);
        }
        rows.push_back(std::move(values));
    }
    if (statement.source == InsertSource::kDefaultValues) rows.emplace_back();
    std::string sql;
    std::vector<const ColumnInfo*> all;
    // Each row works out its own defaults: newid() and the like differ from row to row.
    for (const std::string& row : rows) {
        all = columns;
        std::vector<std::string> defaults;
        AddDefaults(table, all, defaults);
        std::string values = row;
        for (const std::string& value : defaults)
            values += (values.empty() ? "" : ", ") + value;
        sql += (sql.empty() ? " VALUES (" : ", (") + values + ")";
    }
    translation_.oneRow = rows.size() == 1;
    sql = all.empty() ? "INSERT INTO " + table.Sql() + " DEFAULT VALUES" : InsertHead(table, all) + sql;
    if (statement.output) sql += Output(*statement.output, table, "inserted");
    return Finished(sql + NumbersToCheck());
}

// The rows that have come through a view, for whoever looks whether they are the view's own.
std::string Translator::NumbersToCheck() {
    if (translation_.checkedView.empty()) return {};
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
    return " RETURNING _rowid_";
}

Translation Translator::InsertRow(const TableInfo& table, const std::vector<Name>& names,
                                  const std::vector<SqlType>& types) {
    Begin(table, kInsert);
    std::vector<const ColumnInfo*> columns = TargetColumns(table, names);
    if (types.size() != columns.size() && names.empty())
        FailCount(table, types.size(), columns.size(), Position{});
    if (types.size() != columns.size()) throw MakeError(213, {});
    // Parameters without a value of their own: each run hands a row in.
    std::vector<std::string> values;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Operand row = System("", types[i]);
        row.pending->source = Parameter::Source::kRow;
        row.pending->ordinal = static_cast<int>(i);
        values.push_back(RenderGiven(row, table, *columns[i], kInsert));
    }
    AddDefaults(table, columns, values);
    std::string sql;
    for (const std::string& value : values)
        sql += (sql.empty() ? " VALUES (" : ", ") + value;
    translation_.oneRow = true;
    return Finished(InsertHead(table, columns) + sql + ")");
}

Translation Translator::InsertQuery(const TableInfo& table, const std::vector<Name>& names,
                                    const Query& query) {
    Begin(table, kInsert);
    std::vector<const ColumnInfo*> columns = TargetColumns(table, names);
    // The query stands inside another, which converts its columns: its own ORDER BY and TOP stay what they
    // are.
    const QueryText rows = QueryOf(query, nullptr, true);
    if (rows.columns.size() != columns.size()) {
        if (names.empty()) FailCount(table, rows.columns.size(), columns.size(), query.position);
        throw MakeError(rows.columns.size() < columns.size() ? 120 : 121, query.position);
    }
    std::vector<std::string> values;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const ColumnInfo& column = *columns[i];
        const Operand value = Computed("c" + std::to_string(i + 1), rows.columns[i].type);
        // What a column of the same type holds is in this one's form already.
        const bool fits = rows.natural[i] && rows.columns[i].type == column.type && column.nullable &&
                          !table.IsInUniqueKey(column.name);
        values.push_back(fits ? Render(value) : RenderGiven(value, table, column, kInsert));
    }
    AddDefaults(table, columns, values);
    std::string list;
    for (const std::string& value : values)
        list += (list.empty() ? " SELECT " : ", ") + value;
    return Finished(InsertHead(table, columns) + list + " FROM (" + rows.sql + ") WHERE true");
}

}  // namespace vicenter::tsql::engine
