#include "tsql/run/write_forecast.h"

#include <algorithm>
#include <utility>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/system_procedures.h"
#include "tsql/syntax/ast_children.h"

namespace vicenter::tsql::engine {

namespace {

bool IsTemporary(const ObjectName& name) {
    return !name.IsEmpty() && (name.Object().front() == '#' || name.Object().front() == '@');
}

bool Into(const std::optional<OutputClause>& output) {
    return output && !output->into.IsEmpty() && !IsTemporary(output->into);
}

// The table behind an alias of FROM, where it is one.
const TableRef* Behind(const TableSource& source, const ObjectName& alias) {
    if (const auto* joined = TryAs<JoinedTable>(&source)) {
        const TableRef* left = Behind(*joined->left, alias);
        return left != nullptr ? left : Behind(*joined->right, alias);
    }
    const auto* table = TryAs<TableRef>(&source);
    return table != nullptr && automation::SameName(table->alias.text, alias.Object()) ? table : nullptr;
}

bool TargetIsTemporary(const ObjectName& target, const std::vector<TableSourcePtr>& from) {
    for (const TableSourcePtr& source : from) {
        if (const TableRef* table = Behind(*source, target)) return IsTemporary(table->name);
    }
    return IsTemporary(target);
}

// What is called runs with the literals of its own text.
class CalleesLiterals {
  public:
    explicit CalleesLiterals(LiteralRun& literals)
        : literals_(literals), callers_(std::exchange(literals, LiteralRun())) {}
    CalleesLiterals(const CalleesLiterals&) = delete;
    CalleesLiterals& operator=(const CalleesLiterals&) = delete;
    ~CalleesLiterals() { literals_ = callers_; }

  private:
    LiteralRun& literals_;
    const LiteralRun callers_;
};

bool SelectsInto(const Query& query) {
    const ObjectName& into = FirstSelect(*query.body).into;
    return !into.IsEmpty() && !IsTemporary(into);
}

}  // namespace

bool WriteForecast::MayWrite(const std::vector<StatementPtr>& statements) {
    return std::ranges::any_of(statements,
                               [this](const StatementPtr& statement) { return MayWrite(*statement); });
}

bool WriteForecast::MayWrite(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kSelect:
            return SelectsInto(*As<SelectStatement>(statement).query);
        case StatementKind::kInsert: {
            const auto& insert = As<InsertStatement>(statement);
            return !IsTemporary(insert.table) || Into(insert.output) ||
                   (insert.execute && MayWrite(*insert.execute));
        }
        case StatementKind::kUpdate: {
            const auto& update = As<UpdateStatement>(statement);
            return !TargetIsTemporary(update.target, update.from) || Into(update.output);
        }
        case StatementKind::kDelete: {
            const auto& deletion = As<DeleteStatement>(statement);
            return !TargetIsTemporary(deletion.target, deletion.from) || Into(deletion.output);
        }
        case StatementKind::kMerge: {
            const auto& merge = As<MergeStatement>(statement);
            return !IsTemporary(merge.target) || Into(merge.output);
        }
        case StatementKind::kTruncate:
            return !IsTemporary(As<TruncateStatement>(statement).table);
        case StatementKind::kCreateTable:
            return !IsTemporary(As<CreateTableStatement>(statement).table);
        case StatementKind::kAlterTable:
            return !IsTemporary(As<AlterTableStatement>(statement).table);
        case StatementKind::kCreateIndex:
            return !IsTemporary(As<CreateIndexStatement>(statement).table);
        case StatementKind::kDrop: {
            const auto& drop = As<DropStatement>(statement);
            const auto& tables = drop.onTables.empty() ? drop.names : drop.onTables;
            return !std::ranges::all_of(tables, IsTemporary);
        }
        case StatementKind::kCreateView:
        case StatementKind::kCreateProcedure:
            return true;
        case StatementKind::kBlock:
            return MayWrite(As<BlockStatement>(statement).statements);
        case StatementKind::kIf: {
            const auto& condition = As<IfStatement>(statement);
            return MayWrite(*condition.then) || (condition.otherwise && MayWrite(*condition.otherwise));
        }
        case StatementKind::kWhile:
            return MayWrite(*As<WhileStatement>(statement).body);
        case StatementKind::kTryCatch:
            return MayWrite(As<TryCatchStatement>(statement).tried) ||
                   MayWrite(As<TryCatchStatement>(statement).caught);
        case StatementKind::kExecute:
            return CallMayWrite(As<ExecuteStatement>(statement));
        case StatementKind::kExecuteText:
            return TextMayWrite(As<ExecuteTextStatement>(statement).text.get());
        default:
            return false;
    }
}

bool WriteForecast::CallMayWrite(const ExecuteStatement& call) {
    if (!call.procedureVariable.empty()) return true;
    const std::string name = LowerAscii(call.procedure.Object());
    if (name == "sp_executesql") {
        return call.arguments.empty() || TextMayWrite(call.arguments.front().value.get());
    }
    if (const SystemProcedure* system = FindSystemProcedure(name)) return system->writes;
    const ModuleInfo* procedure = catalog_.FindProcedure(name);
    if (procedure == nullptr) return true;
    if (!procedures_.insert(name).second) return false;
    const CalleesLiterals own(literals_);
    return std::ranges::any_of(programs_.ForProcedure(*procedure)->statements,
                               [this](const StatementPtr& statement) {
                                   const auto* made = TryAs<CreateProcedureStatement>(statement.get());
                                   return made == nullptr || MayWrite(made->body);
                               });
}

bool WriteForecast::TextMayWrite(const Expr* text) {
    const auto* literal = TryAs<LiteralExpr>(text);
    if (literal == nullptr) return true;
    const int ordinal = literals_.IsEmpty() ? -1 : literals_.OrdinalOf(*literal);
    const std::string called = ordinal < 0 ? literal->text : literals_.At(ordinal).Text();
    const CalleesLiterals own(literals_);
    try {
        return MayWrite(ParseProgram(called, false)->statements);
    } catch (const SqlError&) {
        // It will not run at all.
        return false;
    }
}

}  // namespace vicenter::tsql::engine
