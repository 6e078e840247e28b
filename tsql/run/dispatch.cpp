// Which function runs a statement, and what it leaves in @@ROWCOUNT and @@ERROR.

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

namespace {

enum class After : std::uint8_t {
    kCounts,   // @@ERROR is 0; @@ROWCOUNT is what the statement made it
    kForgets,  // both are 0: statements that have no rows to count
    kLeaves,   // both are what the statements within have made them
};

constexpr std::size_t kKinds = static_cast<std::size_t>(StatementKind::kTransaction) + 1;

// What a client is told the number of rows of.
bool CountsRows(StatementKind kind) {
    switch (kind) {
        case StatementKind::kSelect:
        case StatementKind::kInsert:
        case StatementKind::kUpdate:
        case StatementKind::kDelete:
        case StatementKind::kMerge:
        case StatementKind::kFetch:
            return true;
        default:
            return false;
    }
}

// Whoever changes to another database means that one by what follows.
void RefuseAnotherDatabase(const NoOperationStatement& statement) {
    constexpr std::string_view kUse = "use";
    if (statement.verb != kUse) return;
    std::string_view name = std::string_view(statement.text).substr(kUse.size());
    name.remove_prefix(std::min(name.find_first_not_of(" \t\r\n"), name.size()));
    if (name.size() > 1 && (name.front() == '[' || name.front() == '"'))
        name = name.substr(1, name.size() - 2);
    if (!automation::SameName(name, "accountset"))
        throw MakeError(911, statement.position, {std::string(name)});
}

}  // namespace

struct Executor::Handler {
    // One function of the executor and the tree that it takes.
    template <auto Method, class Tree>
    static Flow With(Executor& executor, const Statement& statement) {
        if constexpr (std::is_void_v<decltype((executor.*Method)(As<Tree>(statement)))>) {
            (executor.*Method)(As<Tree>(statement));
            return Flow::kNext;
        } else {
            return (executor.*Method)(As<Tree>(statement));
        }
    }
    template <Flow Result>
    static Flow Only(Executor&, const Statement&) {
        return Result;
    }

    static Flow NoOperation(Executor&, const Statement& statement) {
        RefuseAnotherDatabase(As<NoOperationStatement>(statement));
        return Flow::kNext;
    }

    Flow (*run)(Executor& executor, const Statement& statement) = nullptr;
    After after = After::kCounts;
};

const Executor::Handler& Executor::HandlerOf(StatementKind kind) {
    using K = StatementKind;
    struct Entry {
        K kind;
        Handler handler;
    };
    static constexpr Entry kEntries[] = {
        {K::kSelect, {Handler::With<&Executor::Select, SelectStatement>}},
        {K::kInsert, {Handler::With<&Executor::Insert, InsertStatement>}},
        {K::kUpdate, {Handler::With<&Executor::Update, UpdateStatement>}},
        {K::kDelete, {Handler::With<&Executor::Delete, DeleteStatement>}},
        {K::kMerge, {Handler::With<&Executor::Merge, MergeStatement>}},
        {K::kTruncate, {Handler::With<&Executor::Truncate, TruncateStatement>, After::kForgets}},

        {K::kCreateTable, {Handler::With<&Executor::CreateTable, CreateTableStatement>, After::kForgets}},
        {K::kAlterTable, {Handler::With<&Executor::AlterTable, AlterTableStatement>, After::kForgets}},
        {K::kCreateIndex, {Handler::With<&Executor::CreateIndex, CreateIndexStatement>, After::kForgets}},
        {K::kCreateView, {Handler::With<&Executor::CreateView, CreateViewStatement>, After::kForgets}},
        {K::kCreateProcedure,
         {Handler::With<&Executor::CreateProcedure, CreateProcedureStatement>, After::kForgets}},
        {K::kDrop, {Handler::With<&Executor::Drop, DropStatement>, After::kForgets}},
        {K::kNoOperation, {Handler::NoOperation, After::kForgets}},

        {K::kDeclare, {Handler::With<&Executor::DeclareVariables, DeclareStatement>, After::kLeaves}},
        {K::kSetVariable, {Handler::With<&Executor::SetVariable, SetVariableStatement>}},
        {K::kSetOption, {Handler::With<&Executor::SetOption, SetOptionStatement>, After::kForgets}},

        {K::kDeclareCursor, {Handler::With<&Executor::DeclareCursor, DeclareCursorStatement>}},
        {K::kSetCursor, {Handler::With<&Executor::SetCursor, SetCursorStatement>}},
        {K::kOpenCursor, {Handler::With<&Executor::OpenCursor, OpenCursorStatement>, After::kForgets}},
        {K::kFetch, {Handler::With<&Executor::Fetch, FetchStatement>}},
        {K::kCloseCursor, {Handler::With<&Executor::CloseCursor, CloseCursorStatement>, After::kForgets}},
        {K::kDeallocate, {Handler::With<&Executor::Deallocate, DeallocateStatement>, After::kForgets}},

        {K::kBlock, {Handler::With<&Executor::Block, BlockStatement>, After::kLeaves}},
        {K::kIf, {Handler::With<&Executor::If, IfStatement>, After::kLeaves}},
        {K::kWhile, {Handler::With<&Executor::While, WhileStatement>, After::kLeaves}},
        {K::kBreak, {Handler::Only<Flow::kBreak>, After::kLeaves}},
        {K::kContinue, {Handler::Only<Flow::kContinue>, After::kLeaves}},
        {K::kReturn, {Handler::With<&Executor::Return, ReturnStatement>, After::kLeaves}},
        {K::kGoto, {Handler::With<&Executor::Goto, GotoStatement>, After::kLeaves}},
        {K::kLabel, {Handler::Only<Flow::kNext>, After::kLeaves}},
        {K::kWaitFor, {Handler::With<&Executor::WaitFor, WaitForStatement>, After::kForgets}},
        {K::kTryCatch, {Handler::With<&Executor::TryCatch, TryCatchStatement>, After::kLeaves}},

        {K::kPrint, {Handler::With<&Executor::Print, PrintStatement>, After::kForgets}},
        {K::kRaiserror, {Handler::With<&Executor::Raiserror, RaiserrorStatement>, After::kForgets}},
        {K::kThrow, {Handler::With<&Executor::Throw, ThrowStatement>}},
        {K::kExecute, {Handler::With<&Executor::Execute, ExecuteStatement>, After::kLeaves}},
        {K::kExecuteText, {Handler::With<&Executor::ExecuteText, ExecuteTextStatement>, After::kLeaves}},
        {K::kTransaction, {Handler::With<&Executor::Transaction, TransactionStatement>, After::kForgets}},
    };
    static_assert(std::size(kEntries) == kKinds, "every statement is run by something");
    static constexpr auto kByKind = [] {
        std::array<Handler, kKinds> handlers{};
        for (const Entry& entry : kEntries)
            handlers[static_cast<std::size_t>(entry.kind)] = entry.handler;
        return handlers;
    }();
    return kByKind[static_cast<std::size_t>(kind)];
}

Flow Executor::Dispatch(const Statement& statement) {
    // A query that opens the batch goes on in the moment in which the catalog was read.
    if (statement.kind != StatementKind::kSelect && statement.kind != StatementKind::kIf)
        catalog_.EndSnapshot();
    const Handler& handler = HandlerOf(statement.kind);
    const Flow flow = handler.run(*this, statement);
    const bool calls =
        statement.kind == StatementKind::kExecute || statement.kind == StatementKind::kExecuteText;
    if (handler.after == After::kLeaves) {
        if (calls) EndStatement(statement);
        return flow;
    }
    // INSERT … EXEC leaves in @@ERROR what the call has left.
    const auto* insert = TryAs<InsertStatement>(&statement);
    if (insert == nullptr || insert->source != InsertSource::kExecute) lastError_ = 0;
    if (handler.after == After::kForgets) rowCount_ = 0;
    EndStatement(statement);
    return flow;
}

void Executor::EndStatement(const Statement& statement) {
    const bool counts = !frame_->options.noCount && CountsRows(statement.kind);
    sink_->StatementEnded({statement.kind, counts ? rowCount_ : -1, !frame_->procedure.empty()});
}

}  // namespace vicenter::tsql::engine
