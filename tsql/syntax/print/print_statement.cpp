#include "tsql/syntax/print/printer.h"
#include "tsql/syntax/print/printer_core.h"

namespace vicenter::tsql {

void Printer::NewLine() {
    out_ += '\n';
    out_.append(static_cast<std::size_t>(indent_) * 4, ' ');
}

void Printer::PutStatements(const std::vector<StatementPtr>& statements) {
    ++indent_;
    for (const StatementPtr& statement : statements) {
        NewLine();
        Put(*statement);
        Text(";");
    }
    --indent_;
}

// Each prints the statements of its group, and says whether this is one of them.
void Printer::Put(const Statement& statement) {
    if (PutData(statement) || PutDefinition(statement) || PutVariable(statement)) return;
    PutFlow(statement);
}

bool Printer::PutData(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kSelect:
            Put(*As<SelectStatement>(statement).query);
            break;
        case StatementKind::kInsert:
            Put(As<InsertStatement>(statement));
            break;
        case StatementKind::kUpdate:
            Put(As<UpdateStatement>(statement));
            break;
        case StatementKind::kDelete:
            Put(As<DeleteStatement>(statement));
            break;
        case StatementKind::kMerge:
            Put(As<MergeStatement>(statement));
            break;
        case StatementKind::kTruncate:
            Text("truncate table ");
            Put(As<TruncateStatement>(statement).table);
            break;
        default:
            return false;
    }
    return true;
}

bool Printer::PutDefinition(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kCreateTable:
            Put(As<CreateTableStatement>(statement));
            break;
        case StatementKind::kAlterTable:
            Put(As<AlterTableStatement>(statement));
            break;
        case StatementKind::kCreateIndex:
            Put(As<CreateIndexStatement>(statement));
            break;
        case StatementKind::kCreateView:
            Put(As<CreateViewStatement>(statement));
            break;
        case StatementKind::kCreateProcedure:
            Put(As<CreateProcedureStatement>(statement));
            break;
        case StatementKind::kDrop:
            Put(As<DropStatement>(statement));
            break;
        case StatementKind::kNoOperation:
            Text(As<NoOperationStatement>(statement).text);
            break;
        default:
            return false;
    }
    return true;
}

bool Printer::PutVariable(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kDeclare:
            Put(As<DeclareStatement>(statement));
            break;
        case StatementKind::kSetVariable: {
            const auto& set = As<SetVariableStatement>(statement);
            Text("set " + set.name);
            Text(AssignText(set.op));
            Put(*set.value);
            break;
        }
        case StatementKind::kSetOption:
            Put(As<SetOptionStatement>(statement));
            break;
        case StatementKind::kDeclareCursor:
            Text("declare ");
            Put(As<DeclareCursorStatement>(statement).name);
            Text(" ");
            Put(As<DeclareCursorStatement>(statement).cursor);
            break;
        case StatementKind::kSetCursor:
            Text("set " + As<SetCursorStatement>(statement).variable + " = ");
            Put(As<SetCursorStatement>(statement).cursor);
            break;
        case StatementKind::kOpenCursor:
            Text("open ");
            Put(As<OpenCursorStatement>(statement).cursor);
            break;
        case StatementKind::kFetch:
            Put(As<FetchStatement>(statement));
            break;
        case StatementKind::kCloseCursor:
            Text("close ");
            Put(As<CloseCursorStatement>(statement).cursor);
            break;
        case StatementKind::kDeallocate:
            Text("deallocate ");
            Put(As<DeallocateStatement>(statement).cursor);
            break;
        default:
            return false;
    }
    return true;
}

void Printer::PutFlow(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kBlock:
            Put(As<BlockStatement>(statement));
            break;
        case StatementKind::kIf:
            Put(As<IfStatement>(statement));
            break;
        case StatementKind::kWhile:
            Text("while ");
            Put(*As<WhileStatement>(statement).condition);
            PutBranch(*As<WhileStatement>(statement).body);
            break;
        case StatementKind::kBreak:
            Text("break");
            break;
        case StatementKind::kContinue:
            Text("continue");
            break;
        case StatementKind::kReturn:
            Put(As<ReturnStatement>(statement));
            break;
        case StatementKind::kGoto:
            Text("goto ");
            Put(As<GotoStatement>(statement).label);
            break;
        case StatementKind::kLabel:
            Put(As<LabelStatement>(statement).label);
            Text(":");
            break;
        case StatementKind::kWaitFor:
            Text(As<WaitForStatement>(statement).untilTime ? "waitfor time " : "waitfor delay ");
            Put(*As<WaitForStatement>(statement).time);
            break;
        case StatementKind::kTryCatch:
            Put(As<TryCatchStatement>(statement));
            break;
        case StatementKind::kPrint:
            Text("print ");
            Put(*As<PrintStatement>(statement).text);
            break;
        case StatementKind::kRaiserror:
            Put(As<RaiserrorStatement>(statement));
            break;
        case StatementKind::kThrow:
            Put(As<ThrowStatement>(statement));
            break;
        case StatementKind::kExecute:
            Put(As<ExecuteStatement>(statement));
            break;
        case StatementKind::kExecuteText:
            Text("exec (");
            Put(*As<ExecuteTextStatement>(statement).text);
            Text(")");
            break;
        case StatementKind::kTransaction:
            Put(As<TransactionStatement>(statement));
            break;
        default:
            break;
    }
}

void Printer::Put(const DeclareStatement& declare) {
    for (const VariableDeclaration& variable : declare.variables) {
        Text(&variable == &declare.variables.front() ? "declare " : ", ");
        Text(variable.name + " ");
        switch (variable.kind) {
            case VariableDeclaration::Kind::kTable:
                Text("table ");
                Put(variable.table);
                break;
            case VariableDeclaration::Kind::kCursor:
                Text("cursor");
                break;
            case VariableDeclaration::Kind::kScalar:
                Put(variable.type);
                if (!variable.initial) break;
                Text(" = ");
                Put(*variable.initial);
                break;
        }
    }
}

void Printer::Put(const SetOptionStatement& set) {
    for (const std::string& option : set.options) {
        const bool first = &option == &set.options.front();
        Text(first ? "set " : ", ");
        // SET STATISTICS io, time: the first word is written once.
        const bool statistics = option.starts_with("statistics ");
        Text(statistics && !first ? std::string_view(option).substr(std::string_view("statistics ").size())
                                  : option);
    }
    if (!set.table.IsEmpty()) {
        Text(" ");
        Put(set.table);
    }
    if (!set.word.empty()) Text(" " + set.word);
    if (set.value) {
        Text(" ");
        Put(*set.value);
    }
    if (set.on) Text(*set.on ? " on" : " off");
}

void Printer::Put(const CursorDefinition& cursor) {
    // INSENSITIVE stands before the word CURSOR; SCROLL may stand behind it, too.
    bool insensitive = false;
    for (const std::string& option : cursor.options)
        insensitive = insensitive || option == "insensitive";
    if (insensitive) {
        for (const std::string& option : cursor.options)
            Text(option + " ");
    }
    Text("cursor");
    if (!insensitive) {
        for (const std::string& option : cursor.options)
            Text(" " + option);
    }
    Text(" for ");
    Put(*cursor.query);
    if (cursor.forReadOnly) Text(" for read only");
    if (cursor.forUpdate) Text(" for update");
    if (!cursor.updateColumns.empty()) {
        Text(" of ");
        PutNames(cursor.updateColumns);
    }
}

void Printer::Put(const CursorName& cursor) {
    if (cursor.global) Text("global ");
    Put(cursor.name);
}

void Printer::Put(const FetchStatement& fetch) {
    static constexpr std::string_view kDirections[] = {"next", "prior",    "first",
                                                       "last", "absolute", "relative"};
    Text("fetch ");
    Text(kDirections[static_cast<std::size_t>(fetch.direction)]);
    if (fetch.amount) {
        Text(" ");
        Put(*fetch.amount);
    }
    Text(" from ");
    Put(fetch.cursor);
    for (const std::string& variable : fetch.into) {
        Text(&variable == &fetch.into.front() ? " into " : ", ");
        Text(variable);
    }
}

// A block stands on the line of its IF or WHILE, any other statement on its own.
void Printer::PutBranch(const Statement& statement) {
    if (statement.kind == StatementKind::kBlock) {
        Text(" ");
        return Put(statement);
    }
    ++indent_;
    NewLine();
    Put(statement);
    --indent_;
}

void Printer::Put(const BlockStatement& block) {
    Text("begin");
    PutStatements(block.statements);
    NewLine();
    Text("end");
}

void Printer::Put(const IfStatement& statement) {
    Text("if ");
    Put(*statement.condition);
    PutBranch(*statement.then);
    if (!statement.otherwise) return;
    NewLine();
    Text("else");
    PutBranch(*statement.otherwise);
}

void Printer::Put(const TryCatchStatement& statement) {
    Text("begin try");
    PutStatements(statement.tried);
    NewLine();
    Text("end try");
    NewLine();
    Text("begin catch");
    PutStatements(statement.caught);
    NewLine();
    Text("end catch");
}

void Printer::Put(const RaiserrorStatement& raise) {
    Text("raiserror (");
    Put(*raise.message);
    Text(", ");
    Put(*raise.severity);
    Text(", ");
    Put(*raise.state);
    for (const ExprPtr& argument : raise.arguments) {
        Text(", ");
        Put(*argument);
    }
    Text(")");
    for (const std::string& option : raise.options) {
        Text(&option == &raise.options.front() ? " with " : ", ");
        Text(option);
    }
}

void Printer::Put(const ThrowStatement& raise) {
    Text("throw");
    if (!raise.number) return;
    Text(" ");
    Put(*raise.number);
    Text(", ");
    Put(*raise.message);
    Text(", ");
    Put(*raise.state);
}

void Printer::Put(const ReturnStatement& statement) {
    Text("return");
    if (!statement.value) return;
    Text(" ");
    Put(*statement.value);
}

void Printer::Put(const ExecuteStatement& execute) {
    Text("exec ");
    if (!execute.resultVariable.empty()) Text(execute.resultVariable + " = ");
    Text(execute.procedureVariable);
    Put(execute.procedure);
    for (const ExecuteArgument& argument : execute.arguments) {
        Text(&argument == &execute.arguments.front() ? " " : ", ");
        if (!argument.name.empty()) Text(argument.name + " = ");
        Put(*argument.value);
        if (argument.output) Text(" output");
    }
    if (execute.withRecompile) Text(" with recompile");
}

void Printer::Put(const TransactionStatement& transaction) {
    static constexpr std::string_view kActions[] = {"begin", "commit", "rollback", "save"};
    Text(kActions[static_cast<std::size_t>(transaction.action)]);
    if (transaction.workKeyword) return;
    Text(" transaction");
    if (transaction.name.IsEmpty()) return;
    Text(" ");
    Put(transaction.name);
}

namespace {

template <class T>
std::string PrintOne(const T& node) {
    Printer printer;
    printer.Put(node);
    return printer.Finish();
}

}  // namespace

std::string Print(const Expr& expr) {
    return PrintOne(expr);
}
std::string Print(const Query& query) {
    return PrintOne(query);
}
std::string Print(const TypeName& type) {
    return PrintOne(type);
}
std::string Print(const ObjectName& name) {
    return PrintOne(name);
}
std::string Print(const Statement& statement) {
    return PrintOne(statement);
}
std::string Print(const TableDefinition& definition) {
    return PrintOne(definition);
}

std::string Print(const Batch& batch) {
    std::string text;
    for (const StatementPtr& statement : batch.statements)
        text += PrintOne(*statement) + ";\n";
    return text;
}

}  // namespace vicenter::tsql
