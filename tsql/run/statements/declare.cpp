#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"
#include "tsql/types/old_text.h"

namespace vicenter::tsql::engine {

void Executor::DeclareAll(const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& statement : statements)
        Declare(*statement);
}

// A variable that nobody has declared keeps all of the text from running.
void Executor::CheckVariables() {
    for (const Name& used : frame_->program->usedVariables)
        FindVariable(used.text, used.position);
    frame_->program->usedVariables.clear();
}

// Variables exist from their place in the text on, whichever way the code runs.
void Executor::Declare(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kBlock:
            DeclareAll(As<BlockStatement>(statement).statements);
            break;
        case StatementKind::kIf:
            Declare(*As<IfStatement>(statement).then);
            if (As<IfStatement>(statement).otherwise) Declare(*As<IfStatement>(statement).otherwise);
            break;
        case StatementKind::kWhile:
            Declare(*As<WhileStatement>(statement).body);
            break;
        case StatementKind::kTryCatch:
            DeclareAll(As<TryCatchStatement>(statement).tried);
            DeclareAll(As<TryCatchStatement>(statement).caught);
            break;
        case StatementKind::kDeclare:
            for (const VariableDeclaration& declared : As<DeclareStatement>(statement).variables) {
                const std::string name = LowerAscii(declared.name);
                if (frame_->variables.contains(name))
                    throw MakeError(134, declared.position, {declared.name});
                Variable variable;
                variable.declaredAt = declared.position.offset;
                switch (declared.kind) {
                    case VariableDeclaration::Kind::kScalar:
                        variable.type = Translator::ResolveType(declared.type);
                        if (IsOldText(variable.type)) throw MakeError(2739, declared.position);
                        variable.isCursor = variable.type.kind == TypeKind::kCursor;
                        break;
                    case VariableDeclaration::Kind::kCursor:
                        variable.isCursor = true;
                        break;
                    case VariableDeclaration::Kind::kTable: {
                        std::string table = catalog_.SpareOfVariable(name);
                        if (table.empty()) table = "@" + std::to_string(++tableVariables_) + name;
                        catalog_.CreateTable(BuildTable(table, declared.table, true));
                        frame_->temporaries.push_back(catalog_.FindTable(table)->id);
                        variable.table = table;
                        variable.type = SqlType::Of(TypeKind::kTable);
                        break;
                    }
                }
                frame_->variables.emplace(name, std::move(variable));
            }
            break;
        default:
            break;
    }
}

// The variables are there already; what runs, each time, is the value that a declaration gives.
void Executor::DeclareVariables(const DeclareStatement& statement) {
    for (const VariableDeclaration& declared : statement.variables) {
        if (!declared.initial) continue;
        Variable& variable = FindVariable(declared.name, declared.position);
        Plan& plan = PlanFor(&declared, [&](Translator& translator) {
            return translator.Assignment(declared.name, variable.type, AssignOp::kSet, *declared.initial);
        });
        const ResetAtEnd reset(plan.statement);
        Bind(plan);
        StepPlan(plan);
        variable.value = ReadColumn(plan.statement.Handle(), 0, variable.type);
    }
}

}  // namespace vicenter::tsql::engine
