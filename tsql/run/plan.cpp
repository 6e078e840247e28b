// Plans: translated statements, their parameters and their rows.

#include <charconv>

#include <sqlite3.h>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

using automation::SameName;

bool Executor::IsCurrent(const Plan& plan) const {
    if (plan.generation != catalog_.Generation()) return false;
    for (const auto& [name, id] : plan.translation.temporaries) {
        const TableInfo* table = catalog_.FindTable(name);
        if (table == nullptr || table->id != id) return false;
    }
    return true;
}

Plan& Executor::PlanFor(const void* key, const Make& make) {
    std::unique_ptr<Plan>& slot = frame_->unit->plans[key];
    if (slot && IsCurrent(*slot)) return *slot;
    Translator translator(*this);
    auto plan = std::make_unique<Plan>();
    plan->translation = make(translator);
    plan->statement = database_.Prepare(plan->translation.sql);
    plan->generation = catalog_.Generation();
    slot = std::move(plan);
    return *slot;
}

Value Executor::ParameterValue(const Parameter& parameter, const std::vector<Value>* row) const {
    Value value;
    SqlType from = parameter.from;
    switch (parameter.source) {
        case Parameter::Source::kLiteral:
            if (parameter.ordinal >= 0 && literals_ != nullptr) {
                const LiteralValue& literal =
                    (*literals_)[literalBase_ + static_cast<std::size_t>(parameter.ordinal)];
                const bool negated = templateRun_ ? literal.negative : parameter.negated;
                const std::string text = literal.Text();
                from = LiteralType(literal.kind, text);
                value = ValueOfLiteral(literal.kind, text, negated);
            } else {
                value = ValueOfLiteral(parameter.literal, parameter.text, parameter.negated);
            }
            break;
        case Parameter::Source::kVariable: {
            const auto found = frame_->variables.find(parameter.text);
            if (found != frame_->variables.end()) value = found->second.value;
            break;
        }
        case Parameter::Source::kSystem:
            value = SystemValue(parameter.text);
            break;
        case Parameter::Source::kRow:
            value = (*row)[static_cast<std::size_t>(parameter.ordinal)];
            break;
    }
    if (!parameter.forColumn) return Convert(value, from, parameter.to);
    const ColumnTarget target{parameter.table, parameter.column, parameter.to, parameter.nullable};
    Value stored = ConvertForColumn(value, from, target, parameter.operation);
    if (parameter.isKey) services_.RememberKey(parameter.column, KeyText(stored, parameter.to));
    return stored;
}

// The literals of a long batch, without a detour: what is plain goes into SQLite as it stands in the text.
bool Executor::BindLiteral(sqlite3_stmt* statement, int index, const Parameter& parameter,
                           const LiteralValue& literal) {
    const SqlType& type = parameter.to;
    switch (literal.kind) {
        case LiteralKind::kNull:
            if (!parameter.nullable) return false;
            sqlite3_bind_null(statement, index);
            return true;
        case LiteralKind::kInteger: {
            if (type.kind != TypeKind::kInt && type.kind != TypeKind::kBigInt) return false;
            std::int32_t number = 0;
            const char* end = literal.text.data() + literal.text.size();
            const auto result = std::from_chars(literal.text.data(), end, number);
            if (result.ec != std::errc() || result.ptr != end) return false;
            sqlite3_bind_int64(
                statement, index,
                (templateRun_ ? literal.negative : parameter.negated) ? -std::int64_t{number} : number);
            return true;
        }
        case LiteralKind::kString:
        case LiteralKind::kNString:
            if (!type.IsText() || type.IsFixedText() || literal.doubled) return false;
            if (!type.IsMax() && literal.text.size() > static_cast<std::size_t>(type.length)) return false;
            // The batch text stays where it is until the statement has run.
            sqlite3_bind_text64(statement, index, literal.text.data(), literal.text.size(), SQLITE_STATIC,
                                SQLITE_UTF8);
            return true;
        default:
            return false;
    }
}

void Executor::Bind(Plan& plan, const std::vector<Value>* row) {
    services_.pending.reset();
    sqlite3_stmt* statement = plan.statement.Handle();
    int index = 0;
    for (const Parameter& parameter : plan.translation.parameters) {
        ++index;
        if (parameter.source == Parameter::Source::kLiteral && parameter.forColumn &&
            parameter.ordinal >= 0 && !parameter.isKey && literals_ != nullptr) {
            const LiteralValue& literal =
                (*literals_)[literalBase_ + static_cast<std::size_t>(parameter.ordinal)];
            if (BindLiteral(statement, index, parameter, literal)) continue;
        }
        BindValue(statement, index, ParameterValue(parameter, row), parameter.to);
    }
}

bool Executor::StepPlan(Plan& plan) {
    const int code = plan.statement.Step();
    catalog_.EndSnapshot();
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    FailStep(plan, code);
}

void Executor::FailStep(const Plan& plan, int code) {
    if (services_.pending) {
        const SqlError error = *services_.pending;
        services_.pending.reset();
        throw error;
    }
    if ((code & 0xFF) == SQLITE_CONSTRAINT) {
        throw ConstraintError(plan, sqlite3_extended_errcode(database_.Handle()),
                              sqlite3_errmsg(database_.Handle()));
    }
    throw database_.Failure(code);
}

namespace {

// "UNIQUE constraint failed: t.a, t.b" names the columns.
std::vector<std::string> FailedColumns(const std::string& text, const std::string& table) {
    std::vector<std::string> columns;
    const std::size_t colon = text.find(": ");
    if (colon == std::string::npos) return columns;
    const std::string prefix = table + ".";
    std::size_t at = colon + 2;
    while (at < text.size()) {
        std::size_t end = text.find(", " + prefix, at);
        if (end == std::string::npos) end = text.size();
        std::string column = text.substr(at, end - at);
        if (column.rfind(prefix, 0) == 0) column.erase(0, prefix.size());
        columns.push_back(std::move(column));
        at = end == text.size() ? end : end + 2;
    }
    return columns;
}

bool SameColumns(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!SameName(a[i], b[i])) return false;
    }
    return true;
}

}  // namespace

SqlError Executor::ConstraintError(const Plan& plan, int code, const std::string& text) const {
    const TableInfo* table = catalog_.FindTable(plan.translation.table);
    const std::string& operation = plan.translation.operation;
    if (table == nullptr) return MakeError(8624, {}, {text});
    if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY ||
        code == SQLITE_CONSTRAINT_ROWID) {
        const std::vector<std::string> columns = FailedColumns(text, table->physical);
        for (const KeyInfo& key : table->keys) {
            if (!key.IsUnique()) continue;
            // An index over expressions is named itself: "UNIQUE constraint failed: index 't$UX$null'".
            const bool hit = SameColumns(key.columns, columns) ||
                             text.find("'" + PhysicalNullIndexName(*table, key) + "'") != std::string::npos;
            if (!hit) continue;
            std::string values;
            for (const std::string& column : key.columns) {
                const std::string* value = services_.FindKey(table->FindColumn(column)->name);
                values += (values.empty() ? "(" : ", ") + (value != nullptr ? *value : std::string("?"));
            }
            values += ")";
            if (key.kind == KeyKind::kUniqueIndex)
                return MakeError(2601, {}, {table->FullName(), key.name, values});
            const char* kind = key.kind == KeyKind::kPrimary ? "PRIMARY KEY" : "UNIQUE KEY";
            return MakeError(2627, {}, {kind, key.name, table->FullName(), values});
        }
        return MakeError(2601, {}, {table->FullName(), text, "()"});
    }
    if (code == SQLITE_CONSTRAINT_CHECK) {
        const std::size_t colon = text.find(": ");
        const std::string name = colon == std::string::npos ? text : text.substr(colon + 2);
        return MakeError(547, {}, {operation, "CHECK", name, "accountset", table->FullName(), "", "", ""});
    }
    if (code == SQLITE_CONSTRAINT_FOREIGNKEY) {
        if (operation != "DELETE" && !table->foreignKeys.empty()) {
            const ForeignKeyInfo& key = table->foreignKeys.front();
            const bool single = key.referencedColumns.size() == 1;
            return MakeError(
                547, {},
                {operation, "FOREIGN KEY", key.name, "accountset", "dbo." + key.referencedTable,
                 single ? ", column '" : "", single ? key.referencedColumns.front() : "", single ? "'" : ""});
        }
        for (const TableInfo* other : catalog_.Tables()) {
            for (const ForeignKeyInfo& key : other->foreignKeys) {
                if (!SameName(key.referencedTable, table->name)) continue;
                const bool single = key.columns.size() == 1;
                return MakeError(
                    547, {},
                    {operation, "REFERENCE", key.name, "accountset", other->FullName(),
                     single ? ", column '" : "", single ? key.columns.front() : "", single ? "'" : ""});
            }
        }
    }
    return MakeError(8624, {}, {text});
}

void Executor::ReadRow(Plan& plan, std::vector<Value>& row) const {
    const std::vector<ResultColumn>& columns = plan.translation.columns;
    row.clear();
    row.reserve(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        row.push_back(ReadColumn(plan.statement.Handle(), static_cast<int>(i), columns[i].type));
    }
}

Value Executor::Evaluate(const Expr& expression, SqlType* type) {
    if (const auto* literal = TryAs<LiteralExpr>(&expression);
        literal != nullptr && literalOffsets_ == nullptr) {
        if (type != nullptr) *type = LiteralType(literal->literal, literal->text);
        return ValueOfLiteral(literal->literal, literal->text);
    }
    Plan& plan =
        PlanFor(&expression, [&](Translator& translator) { return translator.Expression(expression); });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    if (type != nullptr) *type = plan.translation.columns.front().type;
    if (!StepPlan(plan)) return {};
    return ReadColumn(plan.statement.Handle(), 0, plan.translation.columns.front().type);
}

bool Executor::IsTrue(const Expr& condition) {
    Plan& plan = PlanFor(&condition, [&](Translator& translator) { return translator.Condition(condition); });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    return StepPlan(plan) && plan.statement.Int(0) != 0;
}

std::string Executor::EvaluateText(const Expr& expression) {
    SqlType type;
    const Value value = Evaluate(expression, &type);
    if (value.IsNull()) return {};
    return Convert(value, type, SqlType::NVarChar(kMaxLength)).Text();
}

std::int64_t Executor::EvaluateInt(const Expr& expression) {
    SqlType type;
    const Value value = Evaluate(expression, &type);
    if (value.IsNull()) return 0;
    return Convert(value, type, SqlType::Of(TypeKind::kBigInt)).Int();
}

}  // namespace vicenter::tsql::engine
