#pragma once

// Runs statements: variables, control flow, procedures, cursors. Each statement has a source of its own in
// statements/, holding only its execution; which one runs it, says dispatch.cpp. What belongs to a batch or a
// call is in its frame; here is what lives as long as the session. Internal to run/; see session.h.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/base/error_table.h"
#include "tsql/catalog/catalog.h"
#include "tsql/functions/functions.h"
#include "tsql/run/frame.h"
#include "tsql/run/frame_context.h"
#include "tsql/run/program.h"
#include "tsql/run/session.h"
#include "tsql/run/transaction.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

struct SystemProcedure;

// The error that ends a batch which is stopped from outside.
inline constexpr std::int32_t kCancelledBatch = 3617;
inline constexpr std::int32_t kInsufficientMemory = 701;

// What follows a statement.
enum class Flow { kNext, kBreak, kContinue, kReturn, kGoto };

// What ends a batch, or what TRY … CATCH takes: the error has been completed.
struct Abort {
    SqlError error;
    // The frame whose text names what there is not: no TRY of that frame takes the error.
    const Frame* unboundIn = nullptr;
    bool endsText = false;  // and no more than the text that it is in
    // By XACT_ABORT as it was where the error came up, and which a call takes with it.
    bool exactAbort = false;
};

class Executor {
  public:
    Executor(Database& database, Catalog& catalog, FunctionServices& services, const SessionOptions& options);
    Executor(const Executor&) = delete;
    Executor& operator=(const Executor&) = delete;
    ~Executor();

    ExecutionReport Run(std::string_view batch, ResultSink& sink);
    void Reset();

  private:
    // executor.cpp: batches, statement lists, errors
    // One INSERT of many.
    void RunRepeated(const ProgramItem& item);
    bool RunReporting(std::string_view batch);
    void EndStopping(ExecutionReport& report, bool& failed);
    void RunBatch(std::string_view batch, const ProgramStore::Batch& run);
    bool IsPlannedQuery(const Program& program) const;
    std::optional<const Statement*> ReadingBranch(const Program& program);
    Flow RunList(const std::vector<StatementPtr>& statements);
    Flow RunItems(const Program& program);
    Flow RunStatement(const Statement& statement);
    Flow Dispatch(const Statement& statement);  // dispatch.cpp
    void EndStatement(const Statement& statement);
    struct Handler;
    static const Handler& HandlerOf(StatementKind kind);
    // Records an error that the batch survives, or throws it on.
    void HandleError(SqlError error, std::int32_t line);
    // The transaction that is open can only be rolled back after this error.
    bool Dooms(const Abort& abort) const;
    SqlError Completed(const SqlError& error, std::int32_t line) const;
    void Report(const Diagnostic& error, bool goesOn = false);
    // Runs in a frame what a batch or a call is made of, and leaves it whichever way it ends.
    template <class Body>
    void RunIn(Frame& frame, Body body) {
        try {
            const FrameScope scope(frame_, frame);
            body();
        } catch (...) {
            LeaveFrame(frame);
            throw;
        }
        LeaveFrame(frame);
    }
    // The same for a call. False when an error has ended it.
    template <class Body>
    bool RunCall(Frame& callee, const std::vector<StatementPtr>& declarations, Body body) {
        try {
            RunIn(callee, [&] {
                try {
                    DeclareAll(declarations);
                    CheckVariables();
                    if (!callee.isSystem) CheckNames(*callee.program, declarations);
                } catch (const SqlError& error) {
                    throw FailureOfText(error, callee);
                }
                body();
            });
            return true;
        } catch (const Abort& abort) {
            EndCall(abort);
            return false;
        }
    }
    // name_check.cpp: names in a text before it runs
    void CheckNames(Program& program, const std::vector<StatementPtr>& statements);
    static bool IsPlain(const Statement& statement);
    bool CheckNamesIn(const std::vector<StatementPtr>& statements);
    bool CheckNamesOf(const Statement& statement);
    template <class Work>
    void CheckNamesBy(const Statement& statement, const Work& work);
    template <class Work>
    void CheckTold(const Statement& statement, const OutputClause& output, bool hasAction, const Work& rows);
    Abort FailureOfText(const SqlError& error, const Frame& callee);
    void EndCall(const Abort& abort);
    void LeaveFrame(Frame& frame);
    // Makes room for a temporary table of a call; false when the name is taken by one of its own.
    bool Shadow(const std::string& name);
    void BringBack(const TableInfo& shadowed);
    void DeclareAll(const std::vector<StatementPtr>& statements);
    void CheckVariables();
    void Declare(const Statement& statement);
    Variable& FindVariable(std::string_view name, Position where) {
        return frame_->FindVariable(name, where);
    }
    const TableInfo* FindTable(std::string_view name) const { return frame_->FindTable(catalog_, name); }
    Value SystemValue(std::string_view name) const;  // system_value.cpp
    std::string TemporaryTables() const;
    std::int64_t CursorRows() const;
    void ServeFacts();  // catalog_facts.cpp

    // plan.cpp: plans and their parameters
    using Make = std::function<Translation(Translator&)>;
    Plan& PlanFor(const void* key, const Make& make);
    bool IsOfThisFrame(const Plan& plan) const;
    bool RefreshForReading();
    const Catalog& CatalogNow();
    PreparedStatement Prepared(const std::string& sql);
    void MakePlan(Plan& plan, FrameContext& context, const Make& make);
    void MakePlan(std::unique_ptr<Plan>& slot, const Make& make);
    // A translation as the running frame sees its names.
    template <class Work>
    auto Translated(Work work) {
        FrameContext context(catalog_, programs_, *frame_);
        Ways ways;
        return Bound([&] { return TranslateAsNeeded(context, ways, work); });
    }
    // Does the work of a translator; its errors are those of names and types.
    template <class Work>
    auto Bound(Work work) {
        try {
            return work();
        } catch (const SqlError&) {
            unbound_ = true;
            throw;
        }
    }
    void Bind(Plan& plan, const std::vector<Value>* row = nullptr);
    Value ParameterValue(const Parameter& parameter, const std::vector<Value>* row) const;
    bool BindLiteral(PreparedStatement& statement, int index, const Parameter& parameter,
                     const LiteralValue& literal) const;
    bool StepPlan(Plan& plan);
    bool Stepped(Plan& plan, StepResult result);
    std::optional<bool> Begin(Plan& plan);
    [[noreturn]] void FailStep(const Plan& plan);
    [[noreturn]] void FailForeignKey(Plan& plan);  // broken_key.cpp
    Value Evaluate(const Expr& expression, SqlType* type = nullptr);
    bool IsTrue(const Expr& condition);
    std::string EvaluateText(const Expr& expression);
    std::int64_t EvaluateInt(const Expr& expression);
    void ReadRow(Plan& plan, std::vector<Value>& row) const;

    // statements, each in its own source
    void Select(const SelectStatement& statement);
    bool Answer(const SelectStatement& statement);
    void SelectInto(const SelectStatement& statement);
    void Insert(const InsertStatement& statement);
    void InsertExecute(const InsertStatement& statement);
    void InsertRows(const void* key, const ObjectName& table, const std::vector<Name>& columns,
                    const std::vector<SqlType>& types, std::vector<std::vector<Value>>& rows);
    void Update(const UpdateStatement& statement);
    void UpdateColumns(const UpdateStatement& statement, bool temporary);
    void UpdateVariables(const UpdateStatement& statement, bool temporary);
    void RewriteRows(const UpdateStatement& statement, bool temporary, bool collides);
    // Both give the numbers that the rows have then.
    std::vector<std::int64_t> ChangeRows(const Plan& plan, const std::vector<ResultColumn>& columns,
                                         const std::vector<std::vector<Value>>& rows, bool collides,
                                         Position where, bool areDeferred = false);
    std::vector<std::int64_t> PutAnew(const Plan& plan, const std::vector<ResultColumn>& columns,
                                      const std::vector<std::vector<Value>>& rows,
                                      const std::function<void(const std::vector<Value>&)>& tell);
    bool IsReferenced(const TableInfo& table) const;
    void Delete(const DeleteStatement& statement);
    void DeleteTold(const DeleteStatement& statement, bool temporary);
    void Modify(const void* key, bool temporary, const Make& make, const OutputClause* output);
    // What OUTPUT tells: the rows, whose first columns go into its target.
    struct Told {
        std::vector<ResultColumn> columns;
        std::vector<std::vector<Value>> rows;
        std::size_t goesInto = 0;
    };
    // A row that has been changed as OUTPUT sees it: all its columns afterwards and before, none where there
    // was no row, and those of the sources beside it.
    struct ChangedRow {
        std::string action;
        std::vector<Value> inserted;
        std::vector<Value> deleted;
        std::vector<Value> beside;
    };
    void Changing(bool temporary, const OutputClause* output, const std::function<void(Told& told)>& work);
    void OutputInto(const OutputClause& output, Told& told, std::int64_t affectedBefore);
    std::vector<Value> WholeRow(const OutputClause& output, const TableInfo& table, std::int64_t number);
    void TellRows(const OutputClause& output, const TableInfo& table, const std::vector<ToldSource>& sources,
                  const std::vector<ChangedRow>& rows, bool hasAction, Told& told);
    void RunModification(Plan& plan, std::vector<std::vector<Value>>* output,
                         const std::vector<Value>* given = nullptr);
    void CheckView(const std::string& view, const std::vector<std::int64_t>& numbers);
    void CountRows(std::int64_t count);
    bool OutlivesFailure() const;
    void StartIdentity(const TableInfo& table);
    // Error 8115 beyond what the column's type holds.
    std::int64_t NextIdentity() const;
    void HandIdentity(std::int64_t value);
    void KeepIdentity(const TableInfo& table);
    struct MergeChanges {
        struct Row {
            std::int64_t row = 0;
            std::vector<std::string> columns;
            std::vector<Value> values;
            std::size_t place = 0;  // among what OUTPUT tells
        };
        const TableInfo* table = nullptr;
        std::set<std::int64_t> seen;
        std::vector<Row> deleted;
        std::vector<Row> updated;
        std::vector<Row> anew;  // updated in a key: deleted and inserted
        std::vector<Row> inserted;
        std::vector<ChangedRow> told;       // of OUTPUT, in the order in which they were found
        std::vector<std::int64_t> numbers;  // of these, as they are afterwards
    };
    void Merge(const MergeStatement& statement);
    void LimitMerge(const MergeStatement& statement, std::vector<std::vector<Value>>& matched,
                    std::vector<std::vector<Value>>& missed);
    void CollectMerge(Plan& plan, std::vector<std::vector<Value>>& rows);
    void SortMerge(const Plan& plan, const std::vector<std::vector<Value>>& rows, MergeChanges& changes);
    void ApplyMerge(const Plan& plan, MergeChanges& changes, bool areDeferred);
    void RunMergeRow(const Plan& plan, const TableInfo& table, const MergeChanges::Row& change,
                     const std::string& sql);
    void Truncate(const TruncateStatement& statement);
    void CreateTable(const CreateTableStatement& statement);
    void AlterTable(const AlterTableStatement& statement);
    void NumberRows(const TableInfo& table, const ColumnInfo& column);
    void AddColumnTo(const AlterTableStatement& statement, const ColumnDefinition& definition);
    void CheckRows(const TableInfo& table, const TableInfo& before, Position where);
    [[noreturn]] void FailDependent(const char* operation, std::string_view kind, std::string_view dependent,
                                    const Name& column);
    void CheckDependents(const char* operation, const TableInfo& table, const ColumnInfo& column,
                         const Name& name);
    void CheckAlterable(const TableInfo& table, const ColumnInfo& column, const SqlType& type, bool nullable,
                        const Name& name);
    void AddConstraintTo(const AlterTableStatement& statement, const Constraint& constraint);
    void AlterColumn(const AlterTableStatement& statement);
    void DropColumnOf(const AlterTableStatement& statement, const Name& name);
    void DropConstraintOf(const AlterTableStatement& statement, const Name& name);
    // A translation that is no statement's own plan.
    void RunOnce(Translation translation);
    void CreateIndex(const CreateIndexStatement& statement);
    void CreateView(const CreateViewStatement& statement);
    void CreateProcedure(const CreateProcedureStatement& statement);
    void Drop(const DropStatement& statement);
    void DeclareVariables(const DeclareStatement& statement);
    void SetVariable(const SetVariableStatement& statement);
    void SetOption(const SetOptionStatement& statement);
    void SetFixedSwitch(const SetOptionStatement& statement, const std::string& option);
    // Throws 40510 for any statement but SET as long as a switch is refused.
    void RefuseBehindSwitch(const Statement& statement) const;
    void DeclareCursor(const DeclareCursorStatement& statement);
    void SetCursor(const SetCursorStatement& statement);
    void OpenCursor(const OpenCursorStatement& statement);
    void Fetch(const FetchStatement& statement);
    void TakeCurrentRow(const Name& name, const ObjectName& target);
    // Error 16932 for a column that the cursor is not FOR UPDATE OF.
    void CheckUpdateColumns(const UpdateStatement& statement);
    void CloseCursor(const CloseCursorStatement& statement);
    void Deallocate(const DeallocateStatement& statement);
    std::shared_ptr<Cursor> MakeCursor(const std::string& name, const CursorDefinition& definition);
    void PlanCursor(Cursor& cursor);
    void PlanCursorAnew(Cursor& cursor);
    void PlanReadingAgain(Cursor& cursor);
    bool IsCurrent(const Cursor& cursor) const;
    // False when the row is none of the query's any more.
    bool ReadAgain(Cursor& cursor, std::size_t row);
    bool HasGone(const Cursor& cursor, std::size_t row);
    void ReadKey(Cursor& cursor, PreparedStatement& statement, int first, std::size_t row) const;
    bool IsSameRow(const Cursor& cursor, const TableInfo& table, std::size_t row, Position where);
    void KeepCurrentRow(const Name& name, const ObjectName& target);
    std::shared_ptr<Cursor>& CursorSlot(const CursorName& name);
    Flow Block(const BlockStatement& statement) { return RunList(statement.statements); }
    Flow If(const IfStatement& statement);
    Flow While(const WhileStatement& statement);
    Flow Return(const ReturnStatement& statement);
    Flow Goto(const GotoStatement& statement);
    bool IsWantedLabel(const Statement& statement) const;
    // Runs items from the first on, and from a label on when one of them jumps there.
    template <class Items, class Each>
    Flow RunWithLabels(const Items& items, Each run);
    void WaitFor(const WaitForStatement& statement);
    Flow TryCatch(const TryCatchStatement& statement);
    void Print(const PrintStatement& statement);
    void Raiserror(const RaiserrorStatement& statement);
    [[noreturn]] void RaiseKnown(std::int32_t number, const RaiserrorStatement& statement);
    void Throw(const ThrowStatement& statement);
    void Execute(const ExecuteStatement& statement);
    void ExecuteText(const ExecuteTextStatement& statement);
    void ExecuteSql(const ExecuteStatement& statement);
    void ExecuteAlone(const ExecuteStatement& statement, const std::string& text);
    void CallProcedure(const ExecuteStatement& statement, const std::string& name);
    void CallSystemProcedure(const SystemProcedure& system, const ExecuteStatement& statement);
    // The work of sp_rename and sp_spaceused, whose arguments are the frame's variables.
    void Rename();
    void RenameColumn(const TableInfo& table, const std::string& name, const std::string& fresh);
    void SpaceUsed();
    std::int64_t NumberOf(const std::string& sql, std::string_view name);
    void BindArguments(const CreateProcedureStatement& procedure, const ExecuteStatement& statement,
                       std::size_t firstArgument, Frame& callee);
    void CheckTransactionCount(int before, const ExecuteStatement& statement, const Frame& callee);
    void RunProcedure(const CreateProcedureStatement& procedure, const ExecuteStatement& statement,
                      std::size_t firstArgument, Frame& callee);
    void Transaction(const TransactionStatement& statement);

    // definitions: create_table.cpp
    TableInfo BuildTable(const std::string& name, const TableDefinition& definition, bool temporary);
    void AddColumn(TableInfo& table, const ColumnDefinition& definition);
    void FindComputedTypes(TableInfo& table, const std::vector<ColumnDefinition>& definitions);
    void AddConstraint(TableInfo& table, const Constraint& constraint);
    void AddKey(TableInfo& table, const Constraint& constraint);
    void AddDefault(TableInfo& table, const Constraint& constraint);
    void AddCheck(TableInfo& table, const Constraint& constraint);
    void AddForeignKey(TableInfo& table, const Constraint& constraint);
    static void CheckIdentityType(const SqlType& type, const Name& column);
    // Checks the foreign keys from that place on.
    void TakeActions(TableInfo& table, std::size_t first);
    // Error 1750 behind what is wrong with a constraint.
    void Constraining(Position where, const std::function<void()>& work);
    static std::vector<std::string> KeyColumns(TableInfo& table, const Constraint& constraint,
                                               const std::string& name, bool makeNotNull);
    void CheckKeyTypes(const TableInfo& table, const KeyInfo& key, Position where) const;
    // Makes a key of an existing table; error 1505 when its rows do not allow it.
    void MakeKey(const TableInfo& table, const KeyInfo& key, Position position);
    std::string FirstDuplicate(const TableInfo& table, const KeyInfo& key);
    std::string ConstraintName(const TableInfo& table, const Constraint& constraint, const char* prefix,
                               const std::string& detail);
    void DropConstraint(TableInfo& table, const Name& name, bool& found);
    std::string ExpressionText(const Expr& expression) const;
    const TableInfo& DefinedTable(const ObjectName& name, std::int32_t error);

    Database& database_;
    Catalog& catalog_;
    FunctionServices& services_;
    const SessionOptions& options_;

    Frame* frame_ = nullptr;
    ResultSink* sink_ = nullptr;
    ExecutionReport* report_ = nullptr;
    ProgramStore programs_;
    std::map<std::string, std::shared_ptr<Cursor>> globalCursors_;
    Transactions transactions_;
    bool keepsTransaction_ = false;  // the batch failed, but what BEGIN TRANSACTION began goes on
    bool toUndo_ = false;            // a failed batch is still to be undone: there was no memory for it
    SetOptions setOptions_;          // between batches; while one runs, its frame's count
    std::set<std::string> refused_;  // switches that would have kept what follows from running, or undoable
    int tryDepth_ = 0;
    std::string label_;                       // that a GOTO is on its way to
    std::int64_t currentRow_ = 0;             // of the cursor that UPDATE or DELETE names
    std::weak_ptr<const Cursor> lastOpened_;  // that @@CURSOR_ROWS is about
    bool unbound_ = false;  // the error on its way was found while a statement was translated
    std::int64_t rowCount_ = 0;
    std::int32_t lastError_ = 0;
    std::int32_t firstError_ = 0;  // told before the one that is on its way, which ends what that ends
    std::int32_t fetchStatus_ = 0;
    Value identity_;
    std::int64_t lastIdentity_ = 0;      // that a row of the statement has got
    std::int64_t furthestIdentity_ = 0;  // of them all, in the direction of the step
    std::int64_t identityStep_ = 1;
    SqlType identityType_;
    std::vector<Diagnostic> caught_;  // of the CATCH blocks that run, innermost last
    std::int64_t tableVariables_ = 0;
    std::vector<int> countsBeforeInsert_;  // @@TRANCOUNT where each INSERT … EXEC that runs has begun
};

}  // namespace vicenter::tsql::engine
