// EXEC of procedures, of texts, and sp_executesql.

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/run/system_procedures.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

bool IsDefault(const Expr* expression) {
    const auto* literal = TryAs<LiteralExpr>(expression);
    return literal != nullptr && literal->literal == LiteralKind::kDefault;
}

}  // namespace

void Executor::Execute(const ExecuteStatement& statement) {
    std::string name;
    if (statement.procedureVariable.empty()) {
        name = statement.procedure.Object();
    } else {
        const Variable& variable = FindVariable(statement.procedureVariable, statement.position);
        name = variable.value.IsNull() ? std::string() : variable.value.Text();
    }
    if (SameName(name, "sp_executesql")) return ExecuteSql(statement);
    CallProcedure(statement, name);
}

void Executor::CallProcedure(const ExecuteStatement& statement, const std::string& name) {
    // The server's own come before those of the account set.
    if (const SystemProcedure* system = FindSystemProcedure(LowerAscii(name)))
        return CallSystemProcedure(*system, statement);
    const ModuleInfo* found = CatalogNow().FindProcedure(name);
    if (found == nullptr) {
        // Another process may have made it in the meantime.
        catalog_.Refresh();
        found = catalog_.FindProcedure(name);
    }
    if (found == nullptr && IsServerProcedure(LowerAscii(name)))
        throw MakeError(40510, statement.position, {name});
    if (found == nullptr) throw MakeError(2812, statement.position, {name});
    Frame callee(*frame_, statement.position);
    callee.program = programs_.ForProcedure(*found);
    callee.procedure = found->name;
    callee.procedureId = found->id;
    const auto* procedure = TryAs<CreateProcedureStatement>(callee.program->items.front().statement);
    RunProcedure(*procedure, statement, 0, callee);
}

namespace {

// Which argument each parameter is given: by place until the first name, by names from there on.
std::vector<const ExecuteArgument*> ArgumentsByParameter(const std::vector<ProcedureParameter>& parameters,
                                                         const ExecuteStatement& statement,
                                                         std::size_t firstArgument,
                                                         const std::string& procedure) {
    std::vector<const ExecuteArgument*> given(parameters.size(), nullptr);
    std::size_t next = 0;
    bool named = false;
    for (std::size_t i = firstArgument; i < statement.arguments.size(); ++i) {
        const ExecuteArgument& argument = statement.arguments[i];
        std::size_t target = next++;
        if (!argument.name.empty()) {
            named = true;
            for (target = 0; target < parameters.size(); ++target) {
                if (SameName(parameters[target].name, argument.name)) break;
            }
            if (target == parameters.size())
                throw MakeError(8145, statement.position, {argument.name, procedure});
        } else if (named) {
            throw MakeError(119, statement.position, {static_cast<std::int32_t>(i - firstArgument + 1)});
        }
        if (target >= parameters.size())
            throw MakeError(parameters.empty() ? 8146 : 8144, statement.position, {procedure});
        if (given[target] != nullptr) throw MakeError(8143, statement.position, {parameters[target].name});
        given[target] = &argument;
    }
    return given;
}

// A wrong argument is told as 8114, whatever the conversion would say.
Value ConvertArgument(const Value& value, const SqlType& from, const SqlType& to, DateFormat format,
                      Position where) {
    try {
        if (!from.IsUnknown()) CheckConversion(from, to, false);
        return Convert(value, from, to, 0, format);
    } catch (const SqlError& error) {
        if (error.Number() != 245 && error.Number() != 241 && error.Number() != 242) throw;
        throw MakeError(8114, where, {MessageName(from), MessageName(to)});
    }
}

}  // namespace

void Executor::CallSystemProcedure(const SystemProcedure& system, const ExecuteStatement& statement) {
    Frame callee(*frame_, statement.position);
    callee.program = programs_.ForCall(std::string(system.text));
    callee.procedure = system.name;
    callee.isSystem = true;
    // What it selects for itself is not counted for its caller.
    callee.options.noCount = true;
    const auto* procedure = TryAs<CreateProcedureStatement>(callee.program->items.front().statement);
    RunProcedure(*procedure, statement, 0, callee);
}

void Executor::BindArguments(const CreateProcedureStatement& procedure, const ExecuteStatement& statement,
                             std::size_t firstArgument, Frame& callee) {
    const auto given = ArgumentsByParameter(procedure.parameters, statement, firstArgument, callee.procedure);
    for (std::size_t i = 0; i < procedure.parameters.size(); ++i) {
        const ProcedureParameter& parameter = procedure.parameters[i];
        Variable variable;
        variable.isCursor = parameter.cursor;
        if (!parameter.cursor) variable.type = Translator::ResolveType(parameter.type);
        const bool hasValue = given[i] != nullptr && !IsDefault(given[i]->value.get());
        if (!hasValue && !parameter.defaultValue && !parameter.cursor) {
            if (SameName(callee.procedure, "sp_executesql")) {
                throw MakeError(8178, statement.position, {"", parameter.name});
            }
            throw MakeError(201, statement.position, {callee.procedure, parameter.name});
        }
        if (hasValue && given[i]->output && !parameter.output) {
            throw MakeError(8162, statement.position, {parameter.name});
        }
        if (!parameter.cursor) {
            // An argument is worked out among the caller's variables, a default among the procedure's.
            SqlType type;
            Value value;
            if (hasValue) {
                value = Evaluate(*given[i]->value, &type);
            } else {
                const FrameScope inside(frame_, callee);
                value = Evaluate(*parameter.defaultValue, &type);
            }
            variable.value =
                ConvertArgument(value, type, variable.type, frame_->options.dateFormat, statement.position);
        }
        callee.variables.emplace(LowerAscii(parameter.name), std::move(variable));
    }
}

// A procedure that leaves another number of transactions is told so, and nothing comes of it, unless the
// batch is one unit, which any error undoes.
void Executor::CheckTransactionCount(int before, const ExecuteStatement& statement, const Frame& callee) {
    const int now = transactions_.Count();
    if (now == before || callee.isSystem || tryDepth_ > 0) return;
    const SqlError error = MakeError(266, statement.position, {before, now});
    if (options_.batchTransactions) throw error;
    lastError_ = error.Number();
    Report(Completed(error, static_cast<std::int32_t>(statement.position.line)).Details());
}

void Executor::RunProcedure(const CreateProcedureStatement& procedure, const ExecuteStatement& statement,
                            std::size_t firstArgument, Frame& callee) {
    BindArguments(procedure, statement, firstArgument, callee);
    const int transactionsBefore = transactions_.Count();
    callee.text = callee.program->text;
    const bool ended = RunCall(callee, procedure.body, [&] {
        if (callee.isSystem && callee.procedure == kSpRename.name) Rename();
        if (callee.isSystem && callee.procedure == kSpSpaceUsed.name) SpaceUsed();
        RunList(procedure.body);
    });
    // What it would give back stays as it was.
    if (!ended) return;
    CheckTransactionCount(transactionsBefore, statement, callee);
    std::size_t position = 0;
    for (std::size_t i = firstArgument; i < statement.arguments.size(); ++i, ++position) {
        const ExecuteArgument& argument = statement.arguments[i];
        if (!argument.output) continue;
        const auto* target = TryAs<VariableExpr>(argument.value.get());
        if (target == nullptr) throw MakeError(179, argument.position);
        const std::string& name = argument.name.empty() ? procedure.parameters[position].name : argument.name;
        const Variable& source = callee.variables.at(LowerAscii(name));
        Variable& variable = FindVariable(target->name, target->position);
        if (source.isCursor) {
            variable.cursor = source.cursor;
        } else {
            variable.value = Convert(source.value, source.type, variable.type, 0, frame_->options.dateFormat);
        }
    }
    if (!statement.resultVariable.empty()) {
        Variable& result = FindVariable(statement.resultVariable, statement.position);
        result.value = Convert(Value(callee.returnValue), SqlType::Int(), result.type);
    }
}

void Executor::ExecuteText(const ExecuteTextStatement& statement) {
    const std::string text = EvaluateText(*statement.text);
    Frame callee(*frame_, statement.position);
    try {
        callee.program = ParseProgram(text, false);
    } catch (const SqlError& error) {
        return EndCall(FailureOfText(error, callee));
    }
    callee.text = text;
    RunCall(callee, callee.program->statements, [&] { RunItems(*callee.program); });
}

// sp_executesql @statement: a batch, which may also be CREATE VIEW or nothing at all.
void Executor::ExecuteAlone(const ExecuteStatement& statement, const std::string& text) {
    Frame callee(*frame_, statement.position);
    try {
        callee.program = programs_.ForCall(text);
    } catch (const SqlError& error) {
        return EndCall(FailureOfText(error, callee));
    }
    callee.text = callee.program->text;
    callee.procedure = "sp_executesql";
    const bool ended = RunCall(callee, callee.program->statements, [&] { RunItems(*callee.program); });
    if (!ended || statement.resultVariable.empty()) return;
    Variable& result = FindVariable(statement.resultVariable, statement.position);
    result.value = Convert(Value(callee.returnValue), SqlType::Int(), result.type);
}

// sp_executesql @statement, @parameters, values…: a procedure that is made for one call.
void Executor::ExecuteSql(const ExecuteStatement& statement) {
    if (statement.arguments.empty())
        throw MakeError(201, statement.position, {"sp_executesql", "@statement"});
    SqlType type;
    const Value text = Evaluate(*statement.arguments[0].value, &type);
    if (!type.IsUnknown() && !type.IsUnicode())
        throw MakeError(214, statement.position, {"@statement", "ntext/nchar/nvarchar"});
    if (statement.arguments.size() == 1)
        return ExecuteAlone(statement, text.IsNull() ? std::string() : text.Text());
    const std::string body = text.IsNull() ? std::string() : text.Text();
    const std::string parameters = EvaluateText(*statement.arguments[1].value);
    Frame callee(*frame_, statement.position);
    try {
        callee.program = programs_.ForCall("create procedure sp_executesql " + parameters + " as " + body);
    } catch (const SqlError& error) {
        return EndCall(FailureOfText(error, callee));
    }
    callee.procedure = "sp_executesql";
    const auto* procedure = TryAs<CreateProcedureStatement>(callee.program->items.front().statement);
    RunProcedure(*procedure, statement, 2, callee);
}

}  // namespace vicenter::tsql::engine
