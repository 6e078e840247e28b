#include "tests/tsql/tree_dump/tree_dump.h"
#include "tests/tsql/tree_dump/tree_text.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql {
namespace {

std::string CursorText(const CursorName& cursor) {
    return " " + std::string(cursor.global ? "global " : "") + NameText(cursor.name);
}

std::string Altering(bool alter, bool createOrAlter) {
    return alter ? " alter" : createOrAlter ? " create or alter" : "";
}

}  // namespace

void TreeDump::AddDefinition(const Statement& statement) {
    const Position* at = &statement.position;
    switch (statement.kind) {
        case StatementKind::kCreateTable: {
            const auto& create = As<CreateTableStatement>(statement);
            Line("CreateTableStatement", at, " " + Print(create.table));
            const Deeper deeper(*this);
            return Add(create.definition);
        }
        case StatementKind::kAlterTable: {
            static constexpr std::string_view kActions[] = {"add",
                                                            "alter column",
                                                            "drop column",
                                                            "drop constraint",
                                                            "check constraint",
                                                            "nocheck constraint"};
            const auto& alter = As<AlterTableStatement>(statement);
            Line("AlterTableStatement", at,
                 " " + Print(alter.table) + " " +
                     std::string(kActions[static_cast<std::size_t>(alter.action)]) +
                     Attribute("names", NamesText(alter.names)) + Flag(alter.ifExists, "if exists") +
                     Flag(alter.all, "all") +
                     (alter.withCheck ? (*alter.withCheck ? " with check" : " with nocheck") : ""));
            const Deeper deeper(*this);
            return Add(alter.definition);
        }
        case StatementKind::kCreateIndex: {
            const auto& create = As<CreateIndexStatement>(statement);
            std::string columns;
            for (const IndexColumn& column : create.columns) {
                columns += (columns.empty() ? "" : ", ") + NameText(column.name) +
                           (column.descending ? " desc" : "");
            }
            Line("CreateIndexStatement", at,
                 Flag(create.unique, "unique") +
                     (create.clustered ? (*create.clustered ? " clustered" : " nonclustered") : "") + " " +
                     NameText(create.name) + Attribute("on", Print(create.table)) + " (" + columns + ")" +
                     Attribute("include", NamesText(create.include)));
            const Deeper deeper(*this);
            return Add("where", create.where);
        }
        case StatementKind::kCreateView: {
            const auto& create = As<CreateViewStatement>(statement);
            Line("CreateViewStatement", at,
                 Altering(create.alter, create.createOrAlter) + " " + Print(create.name) +
                     Attribute("columns", NamesText(create.columns)) +
                     Attribute("options", Joined(create.options)) +
                     Flag(create.withCheckOption, "with check option"));
            const Deeper deeper(*this);
            return Add(*create.query);
        }
        case StatementKind::kCreateProcedure: {
            const auto& create = As<CreateProcedureStatement>(statement);
            Line("CreateProcedureStatement", at,
                 Altering(create.alter, create.createOrAlter) + " " + Print(create.name) +
                     Attribute("options", Joined(create.options)));
            const Deeper deeper(*this);
            for (const ProcedureParameter& parameter : create.parameters) {
                Line("Parameter", &parameter.position,
                     " " + parameter.name + " " +
                         (parameter.cursor ? "cursor varying" : Print(parameter.type)) +
                         Flag(parameter.output, "output") + Flag(parameter.readOnly, "readonly"));
                const Deeper further(*this);
                if (parameter.defaultValue) Add(*parameter.defaultValue);
            }
            return Add("body", create.body);
        }
        default: {
            static constexpr std::string_view kObjects[] = {" table",     " index",    " view",
                                                            " procedure", " function", " trigger"};
            const auto& drop = As<DropStatement>(statement);
            std::string names;
            for (std::size_t i = 0; i < drop.names.size(); ++i) {
                names += (i == 0 ? " " : ", ") + Print(drop.names[i]);
                if (i < drop.onTables.size()) names += Attribute("on", Print(drop.onTables[i]));
            }
            return Line("DropStatement", at,
                        std::string(kObjects[static_cast<std::size_t>(drop.object)]) +
                            Flag(drop.ifExists, "if exists") + names);
        }
    }
}

void TreeDump::AddVariable(const Statement& statement) {
    const Position* at = &statement.position;
    switch (statement.kind) {
        case StatementKind::kDeclare: {
            Line("DeclareStatement", at);
            const Deeper deeper(*this);
            for (const VariableDeclaration& variable : As<DeclareStatement>(statement).variables) {
                const bool scalar = variable.kind == VariableDeclaration::Kind::kScalar;
                const bool table = variable.kind == VariableDeclaration::Kind::kTable;
                Line("Declaration", &variable.position,
                     " " + variable.name + " " +
                         (scalar  ? Print(variable.type)
                          : table ? "table"
                                  : "cursor"));
                const Deeper further(*this);
                if (variable.initial) Add(*variable.initial);
                Add(variable.table);
            }
            return;
        }
        case StatementKind::kSetVariable: {
            static constexpr std::string_view kOps[] = {
                " =", " +=", " -=", " *=", " /=", " %=", " &=", " |=", " ^="};
            const auto& set = As<SetVariableStatement>(statement);
            Line("SetVariableStatement", at,
                 " " + set.name + std::string(kOps[static_cast<std::size_t>(set.op)]));
            const Deeper deeper(*this);
            return Add(*set.value);
        }
        case StatementKind::kSetOption: {
            const auto& set = As<SetOptionStatement>(statement);
            Line("SetOptionStatement", at,
                 " " + Joined(set.options) + Attribute("table", Print(set.table)) +
                     Attribute("word", set.word) + (set.on ? (*set.on ? " on" : " off") : ""));
            const Deeper deeper(*this);
            return Add("value", set.value);
        }
        case StatementKind::kDeclareCursor: {
            Line("DeclareCursorStatement", at, " " + NameText(As<DeclareCursorStatement>(statement).name));
            const Deeper deeper(*this);
            return Add(As<DeclareCursorStatement>(statement).cursor);
        }
        case StatementKind::kSetCursor: {
            Line("SetCursorStatement", at, " " + As<SetCursorStatement>(statement).variable);
            const Deeper deeper(*this);
            return Add(As<SetCursorStatement>(statement).cursor);
        }
        default: {
            static constexpr std::string_view kDirections[] = {" next", " prior",    " first",
                                                               " last", " absolute", " relative"};
            const auto& fetch = As<FetchStatement>(statement);
            Line("FetchStatement", at,
                 std::string(kDirections[static_cast<std::size_t>(fetch.direction)]) +
                     CursorText(fetch.cursor) + Attribute("into", Joined(fetch.into)));
            const Deeper deeper(*this);
            return Add("amount", fetch.amount);
        }
    }
}

void TreeDump::AddFlow(const Statement& statement) {
    const Position* at = &statement.position;
    switch (statement.kind) {
        case StatementKind::kIf: {
            const auto& choice = As<IfStatement>(statement);
            Line("IfStatement", at);
            const Deeper deeper(*this);
            Add(*choice.condition);
            Line("then");
            {
                const Deeper further(*this);
                Add(*choice.then);
            }
            if (!choice.otherwise) return;
            Line("else");
            const Deeper further(*this);
            return Add(*choice.otherwise);
        }
        case StatementKind::kWhile: {
            Line("WhileStatement", at);
            const Deeper deeper(*this);
            Add(*As<WhileStatement>(statement).condition);
            return Add(*As<WhileStatement>(statement).body);
        }
        case StatementKind::kReturn: {
            Line("ReturnStatement", at);
            const Deeper deeper(*this);
            return Add("value", As<ReturnStatement>(statement).value);
        }
        case StatementKind::kTryCatch: {
            Line("TryCatchStatement", at);
            const Deeper deeper(*this);
            Add("try", As<TryCatchStatement>(statement).tried);
            return Add("catch", As<TryCatchStatement>(statement).caught);
        }
        case StatementKind::kRaiserror: {
            const auto& raise = As<RaiserrorStatement>(statement);
            Line("RaiserrorStatement", at, Attribute("options", Joined(raise.options)));
            const Deeper deeper(*this);
            Add(*raise.message);
            Add(*raise.severity);
            Add(*raise.state);
            for (const ExprPtr& argument : raise.arguments)
                Add(*argument);
            return;
        }
        case StatementKind::kThrow: {
            const auto& raise = As<ThrowStatement>(statement);
            Line("ThrowStatement", at);
            const Deeper deeper(*this);
            Add("number", raise.number);
            Add("message", raise.message);
            return Add("state", raise.state);
        }
        case StatementKind::kExecute: {
            const auto& execute = As<ExecuteStatement>(statement);
            Line("ExecuteStatement", at,
                 " " + (execute.procedure.IsEmpty() ? execute.procedureVariable : Print(execute.procedure)) +
                     Attribute("result", execute.resultVariable) +
                     Flag(execute.withRecompile, "with recompile"));
            const Deeper deeper(*this);
            for (const ExecuteArgument& argument : execute.arguments) {
                Line("Argument", &argument.position,
                     Attribute("name", argument.name) + Flag(argument.output, "output"));
                const Deeper further(*this);
                Add(*argument.value);
            }
            return;
        }
        default: {
            static constexpr std::string_view kActions[] = {" begin", " commit", " rollback", " save"};
            const auto& transaction = As<TransactionStatement>(statement);
            return Line("TransactionStatement", at,
                        std::string(kActions[static_cast<std::size_t>(transaction.action)]) +
                            Attribute("name", NameText(transaction.name)) +
                            Flag(transaction.workKeyword, "work"));
        }
    }
}

void TreeDump::Add(const Statement& statement) {
    const Position* at = &statement.position;
    switch (statement.kind) {
        case StatementKind::kSelect: {
            Line("SelectStatement", at);
            const Deeper deeper(*this);
            return Add(*As<SelectStatement>(statement).query);
        }
        case StatementKind::kInsert:
        case StatementKind::kUpdate:
        case StatementKind::kDelete:
        case StatementKind::kMerge:
            return AddData(statement);
        case StatementKind::kTruncate:
            return Line("TruncateStatement", at, " " + Print(As<TruncateStatement>(statement).table));
        case StatementKind::kCreateTable:
        case StatementKind::kAlterTable:
        case StatementKind::kCreateIndex:
        case StatementKind::kCreateView:
        case StatementKind::kCreateProcedure:
        case StatementKind::kDrop:
            return AddDefinition(statement);
        case StatementKind::kNoOperation:
            return Line("NoOperationStatement", at, " " + As<NoOperationStatement>(statement).text);
        case StatementKind::kDeclare:
        case StatementKind::kSetVariable:
        case StatementKind::kSetOption:
        case StatementKind::kDeclareCursor:
        case StatementKind::kSetCursor:
        case StatementKind::kFetch:
            return AddVariable(statement);
        case StatementKind::kOpenCursor:
            return Line("OpenCursorStatement", at, CursorText(As<OpenCursorStatement>(statement).cursor));
        case StatementKind::kCloseCursor:
            return Line("CloseCursorStatement", at, CursorText(As<CloseCursorStatement>(statement).cursor));
        case StatementKind::kDeallocate:
            return Line("DeallocateStatement", at, CursorText(As<DeallocateStatement>(statement).cursor));
        case StatementKind::kBlock:
            return Add("BlockStatement", As<BlockStatement>(statement).statements);
        case StatementKind::kBreak:
            return Line("BreakStatement", at);
        case StatementKind::kContinue:
            return Line("ContinueStatement", at);
        case StatementKind::kGoto:
            return Line("GotoStatement", at, " " + NameText(As<GotoStatement>(statement).label));
        case StatementKind::kLabel:
            return Line("LabelStatement", at, " " + NameText(As<LabelStatement>(statement).label));
        case StatementKind::kWaitFor: {
            const auto& wait = As<WaitForStatement>(statement);
            Line("WaitForStatement", at, wait.untilTime ? " time" : " delay");
            const Deeper deeper(*this);
            return Add(*wait.time);
        }
        case StatementKind::kPrint: {
            Line("PrintStatement", at);
            const Deeper deeper(*this);
            return Add(*As<PrintStatement>(statement).text);
        }
        case StatementKind::kExecuteText: {
            Line("ExecuteTextStatement", at);
            const Deeper deeper(*this);
            return Add(*As<ExecuteTextStatement>(statement).text);
        }
        default:
            return AddFlow(statement);
    }
}

std::string DumpTree(const Batch& batch, bool withPositions) {
    TreeDump dump(withPositions);
    for (const StatementPtr& statement : batch.statements)
        dump.Add(*statement);
    return dump.Finish();
}

}  // namespace vicenter::tsql
